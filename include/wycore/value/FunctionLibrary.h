// SPDX-License-Identifier: Apache-2.0
//
// FunctionLibrary.h - consistency checks over the built-in scalar function library.
//
// Some names of the library are aliases that other code relies on finding together: "ln" and
// "log" (natural logarithm) for real and for complex arguments, "ang" and "ang_deg" for real and
// for complex arguments, and "min2"/"min" and "max2"/"max" for two real arguments. The table is
// checked after the built-in functions are registered at start-up; these functions make the same
// check available for any list of functions, so that a table assembled elsewhere can be verified.
//
// Threading: reads the function table; call where the table may be read.
#pragma once

#include <vector>

#include "wycore/Export.h"

class Function;

namespace wycore::functions {

// Checks that every required pair is complete in `functions`: for each pair, both names must
// have an overload that takes the pair's argument count with every parameter of the pair's kind
// (names compared without regard to case). For each incomplete pair one check fires:
//   "One of ln and log taking double args are not defined"
//   "One of ln and log taking complex args are not defined"
//   "One of ang and ang_deg taking double args are not defined"
//   "One of ang and ang_deg taking complex args are not defined"
//   "One of min2 and min taking two double args are not defined"
//   "One of max2 and max taking two double args are not defined"
// Returns true when every pair is complete. Null entries are skipped.
WYCORE_API bool CheckRequiredFunctionPairs(const std::vector<const Function*>& functions);

// The same check over every function of the process's table (Value::GetFunctions).
WYCORE_API bool CheckRequiredFunctionPairs();

}  // namespace wycore::functions
