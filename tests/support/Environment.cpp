// SPDX-License-Identifier: Apache-2.0
//
// Environment.cpp - builds and tears down the process-wide managers for a test run.
#include "support/Environment.h"

#include "wycore/units/Units.h"
#include "wycore/value/Value.h"

namespace wycore::test {

void ProcessEnvironment::SetUp() {
  // A check that fires where no test expects it is a bug: fail the test that caused it.
  mPrevious = SetCheckHandler([](const CheckReport& r) {
    ADD_FAILURE_AT(r.file.c_str(), r.line) << "unexpected check: " << r.text;
  });
  Units::InitializeUnits(nullptr);
  Value::InitializeValues();
}

void ProcessEnvironment::TearDown() {
  Value::UnInitializeValues();
  Units::UnInitializeUnits();
  SetCheckHandler(std::move(mPrevious));
}

}  // namespace wycore::test
