// SPDX-License-Identifier: Apache-2.0
//
// TestMain.cpp - main() of every test executable.
//
// Installs one GoogleTest environment that builds the process-wide managers once before any test
// and tears them down after the last (see Environment.cpp), and keeps stray checks visible: a check
// that fires outside a CheckCapture fails the running test.
#include <gtest/gtest.h>

#include "support/Environment.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  testing::AddGlobalTestEnvironment(new wycore::test::ProcessEnvironment);
  return RUN_ALL_TESTS();
}
