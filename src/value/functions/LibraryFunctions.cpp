// SPDX-License-Identifier: Apache-2.0
//
// LibraryFunctions.cpp - registration of the scalar function library, the rules for the states
// (units and kind) of function results, the Taylor-series helpers shared by the derivative
// routines, and the check of the required name pairs.
//
// Unit rules follow the expression parser's: units travel with a result only where they still
// describe it (abs, min, max, re, mag, int, mod keep them); a function that changes the dimension
// in a way no unit code describes (pow of a quantity, exp, log) gives a plain number, marked with
// decibel kind 2 where units were dropped. Numbers are SI throughout, so no rule changes a value.
#include "LibraryFunctions.h"

#include <cmath>
#include <string_view>

#include "wycore/core/Check.h"
#include "wycore/units/UnitDefinition.h"
#include "wycore/units/Units.h"
#include "wycore/value/FunctionLibrary.h"
#include "wycore/value/Value.h"

namespace wycore::functions {

// ---- Registration ----------------------------------------------------------------------------

void RegisterLibraryFunctions() {
  RegisterTrigonometricFunctions();
  RegisterExponentialFunctions();
  RegisterRoundingFunctions();
  RegisterComplexHelperFunctions();
  RegisterDecibelFunctions();
  RegisterBesselFunctions();
  RegisterPiecewiseFunctions();
  CheckRequiredFunctionPairs();
}

bool ReplacesTableRow(const char16_t* name) {
  // sqrt gives a length from an area; min, max and if combine the units of their operands.
  static constexpr std::u16string_view kReplaced[] = {u"sqrt", u"min", u"max", u"if"};
  if (name == nullptr) return false;
  for (std::u16string_view replaced : kReplaced) {
    if (replaced == std::u16string_view(name)) return true;
  }
  return false;
}

void Add(Overload overload, std::function<void(double_stack&, const Function&)> routine) {
  overload.mKindAwareRoutine = std::move(routine);
  Add(std::move(overload));
}

void Add(Overload overload) {
  auto* function =
      new Function(overload.mName, std::move(overload.mParameters), std::move(overload.mResult),
                   nullptr, overload.mVariadic, overload.mConversion);
  if (overload.mKindAwareRoutine) {
    // The table owns the function for as long as the routine can run.
    function->SetStackRoutine([function, routine = std::move(overload.mKindAwareRoutine)](
                                  double_stack& s) { routine(s, *function); });
  } else if (overload.mRoutine) {
    function->SetStackRoutine(std::move(overload.mRoutine));
  }
  if (overload.mContext) function->SetContextCalculation(std::move(overload.mContext));
  function->SetDerivatives(std::move(overload.mRealDerivative),
                           std::move(overload.mComplexDerivative));
  Value::RegisterFunction(function);
}

C PopAsComplex(double_stack& s, const Function& function, int i) {
  if (s.GetCallArgumentKind(function, i) == val::kComplexParam) return s.PopComplex();
  return C(s.Pop(), 0.0);
}

// ---- Parameters ------------------------------------------------------------------------------

Function::Parameter RealParam(const char16_t* name) {
  return Function::Parameter{name, val::kDoubleParam};
}

Function::Parameter ComplexParam(const char16_t* name) {
  return Function::Parameter{name, val::kComplexParam};
}

Function::Parameter DatasetParam(const char16_t* name, val::ParameterType kind) {
  return Function::Parameter{name, kind};
}

// ---- Result states ---------------------------------------------------------------------------

namespace {

bool HasUnits(const ValueState& s) { return s.mUnits != Units::NoUnits; }

}  // namespace

ValueState StateOfUnits(Units::FullUnitType units, val::ParameterType kind) {
  ValueState state(Units::NoUnits, Units::NoUnit, val::kDBAmplitude, kind);
  if (units == Units::NoUnits) return state;
  const UnitDefinition* unit = Units::FindUnitDef(units);
  if (unit == nullptr) return state;
  state.mUnits = units;
  state.mUnitType = unit->GetUnitType();
  state.mDBType = Units::GetDBType(state.mUnitType);
  return state;
}

ValueState DroppedState(const ValueState& from, val::ParameterType kind) {
  ValueState state(Units::NoUnits, Units::NoUnit, val::kDBAmplitude, kind);
  if (HasUnits(from)) state.mDBType = val::kDBUnknown;
  return state;
}

ValueState CombineStates(const ValueState& a, const ValueState& b) {
  ValueState result = a;
  if (!HasUnits(b)) return result;
  if (!HasUnits(a)) {
    result.mUnits = b.mUnits;
    result.mUnitType = b.mUnitType;
    result.mDBType = b.mDBType;
    return result;
  }
  if (a.mUnitType != b.mUnitType) return DroppedState(a, a.mKind);
  if (a.mUnits != b.mUnits) {
    result.mUnits = Units::GetDefaultUnits(a.mUnitType);
    result.mDBType = b.mDBType;
  }
  return result;
}

Function::ResultRule NoUnits(val::ParameterType kind) {
  Function::ResultRule rule;
  rule.mKind = kind;
  return rule;
}

Function::ResultRule UnitsOf(int argument, val::ParameterType kind) {
  Function::ResultRule rule;
  rule.mKind = kind;
  rule.mUnitsFromArgument = argument;
  return rule;
}

Function::ResultRule CombinedUnits(int first, val::ParameterType kind) {
  return CustomUnits(kind, [first, kind](const std::vector<ValueState>& states) {
    ValueState result(Units::NoUnits, Units::NoUnit, val::kDBAmplitude, kind);
    for (std::size_t i = static_cast<std::size_t>(first); i < states.size(); ++i) {
      result = i == static_cast<std::size_t>(first) ? states[i] : CombineStates(result, states[i]);
    }
    result.mKind = kind;
    return result;
  });
}

Function::ResultRule DroppedUnits(int argument, val::ParameterType kind) {
  return CustomUnits(kind, [argument, kind](const std::vector<ValueState>& states) {
    if (argument < 0 || static_cast<std::size_t>(argument) >= states.size()) {
      return ValueState(Units::NoUnits, Units::NoUnit, val::kDBAmplitude, kind);
    }
    return DroppedState(states[static_cast<std::size_t>(argument)], kind);
  });
}

Function::ResultRule FixedUnits(const char16_t* unitName, val::ParameterType kind) {
  const AString name(unitName);
  return CustomUnits(kind, [name, kind](const std::vector<ValueState>&) {
    const UnitDefinition* unit = Units::FindUnitDef(name);
    return StateOfUnits(unit != nullptr ? unit->GetFullUnitType() : Units::NoUnits, kind);
  });
}

Function::ResultRule CustomUnits(val::ParameterType kind,
                                 std::function<ValueState(const std::vector<ValueState>&)> rule) {
  Function::ResultRule result;
  result.mKind = kind;
  result.mCustom = std::move(rule);
  return result;
}

// ---- Series helpers --------------------------------------------------------------------------

int CommonOrder(const AD* args, int count) {
  int order = count > 0 ? args[0].Order() : 0;
  for (int i = 1; i < count; ++i) order = std::min(order, args[i].Order());
  return order;
}

int CommonOrder(const CAD* args, int count) {
  int order = count > 0 ? args[0].Order() : 0;
  for (int i = 1; i < count; ++i) order = std::min(order, args[i].Order());
  return order;
}

AD RealPart(const CAD& z) {
  std::vector<double> c;
  c.reserve(z.Coefficients().size());
  for (const C& k : z.Coefficients()) c.push_back(k.real());
  return AD::FromCoefficients(std::move(c));
}

AD ImagPart(const CAD& z) {
  std::vector<double> c;
  c.reserve(z.Coefficients().size());
  for (const C& k : z.Coefficients()) c.push_back(k.imag());
  return AD::FromCoefficients(std::move(c));
}

CAD FromReal(const AD& x) {
  std::vector<C> c;
  c.reserve(x.Coefficients().size());
  for (double k : x.Coefficients()) c.emplace_back(k, 0.0);
  return CAD::FromCoefficients(std::move(c));
}

CAD Conjugate(const CAD& z) {
  std::vector<C> c;
  c.reserve(z.Coefficients().size());
  for (const C& k : z.Coefficients()) c.push_back(std::conj(k));
  return CAD::FromCoefficients(std::move(c));
}

Function::ComplexDerivative ViaReal(Function::RealDerivative real) {
  return [real](const CAD* args, int count) {
    std::vector<AD> parts;
    parts.reserve(static_cast<std::size_t>(std::max(count, 0)));
    for (int i = 0; i < count; ++i) parts.push_back(RealPart(args[i]));
    return FromReal(real(parts.data(), count));
  };
}

AD ConstantSeries(double value, int order) { return AD(value, order); }

AD Compose(const AD& f, const std::vector<double>& derivatives) {
  const int n = f.Order();
  // d = f - f0 has no constant term, so d^k starts at t^k and only k <= n matter.
  const AD d = f - f.GetValue();
  AD result(derivatives.empty() ? 0.0 : derivatives[0], n);
  AD power(1.0, n);
  double factorial = 1.0;
  for (int k = 1; k <= n; ++k) {
    power = power * d;
    factorial *= static_cast<double>(k);
    const double g = static_cast<std::size_t>(k) < derivatives.size()
                         ? derivatives[static_cast<std::size_t>(k)]
                         : 0.0;
    if (g != 0.0 || std::isnan(g)) result = result + power * (g / factorial);
  }
  return result;
}

// ---- Required pairs --------------------------------------------------------------------------

namespace {

bool Takes(const Function& function, const char16_t* name, int count, val::ParameterType kind) {
  if (function.GetName().CompareNoCase(AString(name)) != 0) return false;
  if (!function.AcceptsArgumentCount(count)) return false;
  const auto& parameters = function.GetParameters();
  for (int i = 0; i < count; ++i) {
    if (parameters.empty()) return false;
    const auto p = std::min(static_cast<std::size_t>(i), parameters.size() - 1);
    if (parameters[p].mKind != kind) return false;
  }
  return true;
}

bool HasOverload(const std::vector<const Function*>& functions, const char16_t* name, int count,
                 val::ParameterType kind) {
  for (const Function* function : functions) {
    if (function != nullptr && Takes(*function, name, count, kind)) return true;
  }
  return false;
}

}  // namespace

bool CheckRequiredFunctionPairs(const std::vector<const Function*>& functions) {
  struct Pair {
    const char16_t* mFirst;
    const char16_t* mSecond;
    int mCount;
    val::ParameterType mKind;
  };
  static constexpr Pair kPairs[] = {
      {u"ln", u"log", 1, val::kDoubleParam},      {u"ln", u"log", 1, val::kComplexParam},
      {u"ang", u"ang_deg", 1, val::kDoubleParam}, {u"ang", u"ang_deg", 1, val::kComplexParam},
      {u"min2", u"min", 2, val::kDoubleParam},    {u"max2", u"max", 2, val::kDoubleParam},
  };
  const auto complete = [&functions](const Pair& pair) {
    return HasOverload(functions, pair.mFirst, pair.mCount, pair.mKind) &&
           HasOverload(functions, pair.mSecond, pair.mCount, pair.mKind);
  };
  // One literal check per pair, so that the report names the pair.
  bool ok = true;
  if (!complete(kPairs[0])) {
    ok = WY_CHECK(!"One of ln and log taking double args are not defined");
  }
  if (!complete(kPairs[1])) {
    ok = WY_CHECK(!"One of ln and log taking complex args are not defined");
  }
  if (!complete(kPairs[2])) {
    ok = WY_CHECK(!"One of ang and ang_deg taking double args are not defined");
  }
  if (!complete(kPairs[3])) {
    ok = WY_CHECK(!"One of ang and ang_deg taking complex args are not defined");
  }
  if (!complete(kPairs[4])) {
    ok = WY_CHECK(!"One of min2 and min taking two double args are not defined");
  }
  if (!complete(kPairs[5])) {
    ok = WY_CHECK(!"One of max2 and max taking two double args are not defined");
  }
  return ok;
}

bool CheckRequiredFunctionPairs() {
  std::vector<AString> names;
  Value::GetAllFunctionNames(names);
  std::vector<const Function*> functions;
  for (const AString& name : names) Value::GetFunctions(name, functions);
  return CheckRequiredFunctionPairs(functions);
}

}  // namespace wycore::functions
