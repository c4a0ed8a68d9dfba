// SPDX-License-Identifier: Apache-2.0
//
// Function.cpp - function table entries: argument matching, result states, calculation.
#include "wycore/variables/Function.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "wycore/core/Check.h"
#include "wycore/value/ValueBase.h"

// ---- ValueFunctionArguments --------------------------------------------------------------

ValueFunctionArguments::ValueFunctionArguments(std::vector<const ValueBase*> values)
    : mValues(std::move(values)) {}

int ValueFunctionArguments::GetCount() const { return static_cast<int>(mValues.size()); }

val::ParameterType ValueFunctionArguments::GetKind(int i) const {
  const ValueBase* value = GetValueBaseArg(i);
  return value != nullptr ? value->GetParameterType() : val::kNotParam;
}

double ValueFunctionArguments::GetDoubleArg(int i) const {
  const ValueBase* value = GetValueBaseArg(i);
  return value != nullptr ? value->GetValue() : std::numeric_limits<double>::quiet_NaN();
}

AComplex<double> ValueFunctionArguments::GetComplexArg(int i) const {
  const ValueBase* value = GetValueBaseArg(i);
  if (value == nullptr) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    return AComplex<double>(nan, nan);
  }
  return value->GetComplexValue();
}

AString ValueFunctionArguments::GetStringArg(int i) const {
  const ValueBase* value = GetValueBaseArg(i);
  if (value == nullptr || value->GetParameterType() != val::kStringParam) return AString();
  return value->GetStringValue();
}

const ValueBase* ValueFunctionArguments::GetValueBaseArg(int i) const {
  if (i < 0 || i >= GetCount()) return nullptr;
  return mValues[static_cast<std::size_t>(i)];
}

// ---- SimpleFunctionResult ----------------------------------------------------------------

void SimpleFunctionResult::SetDoubleResult(double value) {
  mKind = val::kDoubleParam;
  mNumber = AComplex<double>(value, 0.0);
  mText.clear();
}

void SimpleFunctionResult::SetComplexResult(const AComplex<double>& value) {
  mKind = val::kComplexParam;
  mNumber = value;
  mText.clear();
}

void SimpleFunctionResult::SetStringResult(const AString& value) {
  mKind = val::kStringParam;
  mNumber = AComplex<double>();
  mText = value;
}

// ---- Function ----------------------------------------------------------------------------

namespace {

bool IsIntegral(val::ParameterType kind) {
  return kind == val::kIntParam || kind == val::kCharParam || kind == val::kEnumParam;
}

// The cost of passing an argument of kind `argument` to a parameter of kind `parameter`; -1 when
// it cannot be passed.
int KindCost(val::ParameterType argument, val::ParameterType parameter) {
  if (parameter == val::kNotParam) return 2;
  if (argument == parameter) return 0;
  if (parameter == val::kComplexParam && (argument == val::kDoubleParam || IsIntegral(argument))) {
    return 1;
  }
  if (parameter == val::kDoubleParam && IsIntegral(argument)) return 1;
  return -1;
}

}  // namespace

Function::Function(const AString& name, std::vector<Parameter> parameters, ResultRule result,
                   Calculation calculation, bool variadic, bool conversion)
    : mName(name),
      mParameters(std::move(parameters)),
      mResult(std::move(result)),
      mCalculation(std::move(calculation)),
      mVariadic(variadic && !mParameters.empty()),
      mConversion(conversion) {}

bool Function::AcceptsArgumentCount(int count) const {
  const int parameters = GetArgumentCount();
  return mVariadic ? count >= parameters : count == parameters;
}

int Function::GetMatchCost(int count, const std::vector<ValueState>& states) const {
  if (!AcceptsArgumentCount(count)) return -1;
  int total = 0;
  for (int i = 0; i < count; ++i) {
    const std::size_t p = std::min(static_cast<std::size_t>(i), mParameters.size() - 1);
    const val::ParameterType kind = static_cast<std::size_t>(i) < states.size()
                                        ? states[static_cast<std::size_t>(i)].mKind
                                        : val::kNotParam;
    const int cost = KindCost(kind, mParameters[p].mKind);
    if (cost < 0) return -1;
    total += cost;
  }
  return total;
}

ValueState Function::GetResultType(const std::vector<ValueState>& states) const {
  if (mResult.mCustom) return mResult.mCustom(states);
  ValueState result(Units::NoUnits, Units::NoUnit, val::kDBAmplitude, mResult.mKind);
  const auto argument = [&states](int i) -> const ValueState* {
    if (i < 0 || static_cast<std::size_t>(i) >= states.size()) return nullptr;
    return &states[static_cast<std::size_t>(i)];
  };
  if (mResult.mKind == val::kNotParam) {
    if (const ValueState* from = argument(mResult.mKindFromArgument)) result.mKind = from->mKind;
  }
  if (const ValueState* from = argument(mResult.mUnitsFromArgument)) {
    result.mUnits = from->mUnits;
    result.mUnitType = from->mUnitType;
    result.mDBType = from->mDBType;
  }
  return result;
}

bool Function::Calculate(const IFunctionArguments& arguments, IFunctionResult& result) const {
  if (!mCalculation) {
    WY_CHECK(!"Function has no calculation");
    return false;
  }
  return mCalculation(arguments, result);
}

bool Function::HasSameSignature(const Function& other) const {
  if (mVariadic != other.mVariadic || mParameters.size() != other.mParameters.size()) return false;
  for (std::size_t i = 0; i < mParameters.size(); ++i) {
    if (mParameters[i].mKind != other.mParameters[i].mKind) return false;
  }
  return true;
}
