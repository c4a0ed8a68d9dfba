// SPDX-License-Identifier: Apache-2.0
//
// Function.cpp - function table entries: argument matching, result states, and running the
// calculation in any of its forms (plain stack routine, newer form with context, derivatives).
#include "wycore/variables/Function.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "wycore/core/Check.h"
#include "wycore/value/DoubleStack.h"
#include "wycore/value/FunctionContext.h"
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

Function& Function::SetContextCalculation(ContextCalculation calculation) {
  mContextCalculation = std::move(calculation);
  return *this;
}

Function& Function::SetStackRoutine(StackRoutine routine) {
  mStackRoutine = std::move(routine);
  return *this;
}

Function& Function::SetDerivatives(RealDerivative real, ComplexDerivative complex) {
  mRealDerivative = std::move(real);
  mComplexDerivative = std::move(complex);
  return *this;
}

bool Function::Calculate(const IFunctionArguments& arguments, IFunctionResult& result) const {
  if (!HasCalculation()) {
    WY_CHECK(!"Function has no calculation");
    return false;
  }
  // The older form needs nothing of an evaluation.
  if (mCalculation && !mContextCalculation && !mStackRoutine) {
    return mCalculation(arguments, result);
  }
  // Any other form runs on a scratch stack holding the arguments.
  double_stack stack;
  std::vector<ValueState> states;
  for (int i = 0; i < arguments.GetCount(); ++i) {
    ValueState state;
    state.mKind = arguments.GetKind(i);
    switch (state.mKind) {
      case val::kComplexParam:
        stack.Push(arguments.GetComplexArg(i));
        break;
      case val::kStringParam:
        stack.PushString(arguments.GetStringArg(i));
        break;
      case val::kDatasetParam:
      case val::kDynamicDoubleDoubleDatasetParam:
      case val::kDynamicDoubleComplexDatasetParam:
        if (!stack.PushDataset(arguments.GetValueBaseArg(i))) return false;
        break;
      default:
        state.mKind = val::kDoubleParam;
        stack.Push(arguments.GetDoubleArg(i));
        break;
    }
    states.push_back(state);
  }
  stack.SetCallArgumentStates(&states);
  try {
    CalculateFunction(stack);
  } catch (...) {
    return false;
  }
  switch (GetResultType(states).mKind) {
    case val::kComplexParam:
      result.SetComplexResult(stack.PopComplex());
      return true;
    case val::kStringParam:
      result.SetStringResult(stack.PopString());
      return true;
    default: {
      double value = 0.0;
      if (!stack.Top(value, true)) return false;
      result.SetDoubleResult(value);
      return true;
    }
  }
}

void Function::CalculateFunction(double_stack& stack) const {
  if (mStackRoutine && !stack.IsPointByPointCall(*this)) {
    mStackRoutine(stack);
    stack.ThrowIfFunctionErrors();
    return;
  }
  if (HasCalculation()) {
    stack.EvaluateFunction(this);
    return;
  }
  WY_CHECK(!"Function has no calculation");
  throw -1;
}

bool Function::CalculateWithContext(const IFunctionArguments& arguments, IFunctionResult& result,
                                    IFunctionContext& context) const {
  if (mContextCalculation) return mContextCalculation(arguments, result, context);
  if (mCalculation) return mCalculation(arguments, result);
  return false;
}

namespace {

template <class T>
int CommonOrder(const ADValue<T>* args, int count) {
  int order = count > 0 ? args[0].Order() : 0;
  for (int i = 1; i < count; ++i) order = std::min(order, args[i].Order());
  return order;
}

// The value through the calculation, every derivative NaN: what can honestly be said of a
// function that has no derivative routine.
template <class T>
ADValue<T> ValueWithoutDerivatives(const Function& function, const ADValue<T>* args, int count) {
  double_stack stack;
  std::vector<ValueState> states(static_cast<std::size_t>(std::max(count, 0)));
  const auto& parameters = function.GetParameters();
  for (int i = 0; i < count; ++i) {
    // Each argument goes in the form its parameter takes (a complex walk still calls a real
    // parameter with the real part).
    const val::ParameterType parameter =
        parameters.empty()
            ? val::kNotParam
            : parameters[std::min(static_cast<std::size_t>(i), parameters.size() - 1)].mKind;
    const AComplex<double> value(args[i].GetValue());
    const bool complex = parameter == val::kComplexParam ||
                         (parameter == val::kNotParam && !std::is_same_v<T, double>);
    states[static_cast<std::size_t>(i)].mKind = complex ? val::kComplexParam : val::kDoubleParam;
    if (complex) {
      stack.Push(value);
    } else {
      stack.Push(value.real());
    }
  }
  stack.SetCallArgumentStates(&states);
  function.CalculateFunction(stack);
  T value{};
  if (function.GetResultType(states).mKind == val::kComplexParam) {
    const AComplex<double> z = stack.PopComplex();
    if constexpr (std::is_same_v<T, double>) {
      value = z.real();
    } else {
      value = z;
    }
  } else {
    value = T(stack.Pop());
  }
  std::vector<T> coefficients(static_cast<std::size_t>(CommonOrder(args, count)) + 1,
                              T(std::numeric_limits<double>::quiet_NaN()));
  coefficients[0] = value;
  return ADValue<T>::FromCoefficients(std::move(coefficients));
}

}  // namespace

ADValue<double> Function::CalculateDerivative(const ADValue<double>* args, int count) const {
  if (mRealDerivative) return mRealDerivative(args, count);
  return ValueWithoutDerivatives(*this, args, count);
}

ADValue<AComplex<double>> Function::CalculateDerivative(const ADValue<AComplex<double>>* args,
                                                        int count) const {
  if (mComplexDerivative) return mComplexDerivative(args, count);
  return ValueWithoutDerivatives(*this, args, count);
}

bool Function::HasSameSignature(const Function& other) const {
  if (mVariadic != other.mVariadic || mParameters.size() != other.mParameters.size()) return false;
  for (std::size_t i = 0; i < mParameters.size(); ++i) {
    if (mParameters[i].mKind != other.mParameters[i].mKind) return false;
  }
  return true;
}
