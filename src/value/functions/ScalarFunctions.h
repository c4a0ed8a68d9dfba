// SPDX-License-Identifier: Apache-2.0
//
// ScalarFunctions.h - the table of built-in scalar functions registered at start-up.
//
// One row per overload: name, parameters, result kind and units, the plain stack routine and the
// derivative routines. Function::StaticInitializeFunctions registers every row with the value
// manager. The whole scalar library grows by adding rows (and their routines) here; nothing else
// needs to change.
//
// Private to the library.
#pragma once

#include <array>

#include "wycore/value/ADValue.h"
#include "wycore/value/ParameterType.h"

class double_stack;

namespace wycore::functions {

struct ScalarFunctionRow {
  struct Param {
    const char16_t* mName;
    val::ParameterType mKind;
  };

  const char16_t* mName;
  int mParamCount;
  std::array<Param, 3> mParams;
  val::ParameterType mResultKind;
  int mUnitsFromArgument;  // -1: the result has no units
  void (*mRoutine)(double_stack&);
  ADValue<double> (*mRealDerivative)(const ADValue<double>* args, int count);
  ADValue<AComplex<double>> (*mComplexDerivative)(const ADValue<AComplex<double>>* args, int count);
};

// The rows, in registration order (real overloads before complex ones, so that ties between
// equally good matches go to the real form).
const ScalarFunctionRow* ScalarFunctionTable(std::size_t& count);

}  // namespace wycore::functions
