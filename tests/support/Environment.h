// SPDX-License-Identifier: Apache-2.0
//
// Environment.h - the GoogleTest environment that owns the process-wide state of a test run.
#pragma once

#include <gtest/gtest.h>

#include "wycore/core/Check.h"

namespace wycore::test {

class ProcessEnvironment : public testing::Environment {
 public:
  void SetUp() override;
  void TearDown() override;

 private:
  CheckHandler mPrevious;
};

}  // namespace wycore::test
