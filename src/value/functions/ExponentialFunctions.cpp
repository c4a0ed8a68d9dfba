// SPDX-License-Identifier: Apache-2.0
//
// ExponentialFunctions.cpp - logarithms, square root and square, powers and roots, for real and
// complex arguments ("exp" is a first table row).
//
// "ln" and "log" are both the natural logarithm (other code expects to find both names); "log10"
// is the common logarithm. Real arguments outside the real domain give NaN (log(-1),
// sqrt(-4), pow(-8, 1/3)); the limits at the edge are kept (log(0) is -inf). The complex
// overloads give principal values (log(-1+0j) is i*pi, sqrt(-4+0j) is 2i).
//
// Units: sqrt of an area is a length (in the matching unit: sqrt of mm2 gives mm), sqr of a
// length is an area; other quantities lose their units under sqrt, sqr, pow and root (decibel
// kind 2, as the parser marks dropped units). Logarithms take plain numbers and give plain ones.
#include <cmath>
#include <limits>

#include "LibraryFunctions.h"
#include "wycore/units/UnitDefinition.h"

namespace wycore::functions {
namespace {

// ---- Unit rules ------------------------------------------------------------------------------

// The unit of `type` named `name` whose SI factor is `factor` (within rounding); else the
// type's default units.
Units::FullUnitType MatchingUnit(const AString& name, Units::UnitType type, double factor) {
  const UnitDefinition* unit = Units::FindUnitDef(name);
  if (unit != nullptr && unit->GetUnitType() == type && unit->HasSimpleFactorConversion()) {
    const double candidate = unit->ConvertToSI(1.0);
    if (std::fabs(candidate - factor) <= 1e-12 * std::fabs(factor)) return unit->GetFullUnitType();
  }
  return Units::GetDefaultUnits(type);
}

ValueState SqrtState(const std::vector<ValueState>& states, val::ParameterType kind) {
  const ValueState none(Units::NoUnits, Units::NoUnit, val::kDBAmplitude, kind);
  if (states.empty() || states[0].mUnits == Units::NoUnits) return none;
  const UnitDefinition* unit = Units::FindUnitDef(states[0].mUnits);
  if (unit == nullptr || states[0].mUnitType != Units::Area || !unit->HasSimpleFactorConversion()) {
    return DroppedState(states[0], kind);
  }
  // "mm2" -> "mm", "in2" -> "in": the length whose square the area unit is.
  AString name = unit->GetUnitString();
  if (!name.empty() && name.back() == u'2') name.pop_back();
  return StateOfUnits(MatchingUnit(name, Units::Length, std::sqrt(unit->ConvertToSI(1.0))), kind);
}

ValueState SqrState(const std::vector<ValueState>& states, val::ParameterType kind) {
  const ValueState none(Units::NoUnits, Units::NoUnit, val::kDBAmplitude, kind);
  if (states.empty() || states[0].mUnits == Units::NoUnits) return none;
  const UnitDefinition* unit = Units::FindUnitDef(states[0].mUnits);
  if (unit == nullptr || states[0].mUnitType != Units::Length ||
      !unit->HasSimpleFactorConversion()) {
    return DroppedState(states[0], kind);
  }
  const double factor = unit->ConvertToSI(1.0);
  return StateOfUnits(MatchingUnit(unit->GetUnitString() + u"2", Units::Area, factor * factor),
                      kind);
}

// ---- Roots -----------------------------------------------------------------------------------

bool IsOddInteger(double n) { return n == std::trunc(n) && std::fmod(n, 2.0) != 0.0; }

// The real n-th root: negative radicands have one for odd whole n (root(-8, 3) is -2); n = 0
// has none.
double RealRoot(double x, double n) {
  if (n == 0.0) return std::numeric_limits<double>::quiet_NaN();
  if (x < 0.0 && IsOddInteger(n)) return -std::pow(-x, 1.0 / n);
  return std::pow(x, 1.0 / n);
}

AD RealRootSeries(const AD* a, int count) {
  const int order = CommonOrder(a, count);
  const AD x = AD::Truncated(a[0], order);
  const double n = a[1].GetValue();
  if (n == 0.0) return AD(std::numeric_limits<double>::quiet_NaN(), order);
  // The order n is read as a constant: a root of varying order has no use here.
  if (x.GetValue() < 0.0 && IsOddInteger(n)) return -pow(-x, 1.0 / n);
  return pow(x, 1.0 / n);
}

C ComplexRoot(const C& z, const C& n) {
  if (n == C(0.0, 0.0)) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    return C(nan, nan);
  }
  return std::pow(z, C(1.0, 0.0) / n);
}

// z^w. A whole real exponent multiplies out (exact for real bases, as "^" is: (-2)^2 is 4 with
// no imaginary residue); others take the principal value.
C ComplexPower(const C& z, const C& w) {
  const double e = w.real();
  if (w.imag() == 0.0 && e == std::trunc(e) && std::fabs(e) <= 1024.0) {
    C base = z;
    C result(1.0, 0.0);
    auto m = static_cast<unsigned int>(std::fabs(e));
    while (m != 0) {
      if ((m & 1u) != 0) result *= base;
      m >>= 1u;
      if (m != 0) base *= base;
    }
    return e < 0.0 ? C(1.0, 0.0) / result : result;
  }
  return w.imag() == 0.0 ? std::pow(z, e) : std::pow(z, w);
}

}  // namespace

void RegisterExponentialFunctions() {
  // ---- ln, log, log10 ----
  const Function::RealDerivative logDerivative = [](const AD* a, int) { return log(a[0]); };
  const Function::ComplexDerivative complexLogDerivative = [](const CAD* a, int) {
    return log(a[0]);
  };
  for (const char16_t* name : {u"ln", u"log"}) {
    Add({name,
         {RealParam(u"x")},
         DroppedUnits(0, val::kDoubleParam),
         RealUnary([](double x) { return std::log(x); }),
         nullptr,
         logDerivative,
         ViaReal(logDerivative)});
    Add({name,
         {ComplexParam(u"z")},
         DroppedUnits(0, val::kComplexParam),
         ComplexUnary([](const C& z) { return std::log(z); }),
         nullptr,
         logDerivative,
         complexLogDerivative});
  }
  const Function::RealDerivative log10Derivative = [](const AD* a, int) { return log10(a[0]); };
  Add({u"log10",
       {RealParam(u"x")},
       DroppedUnits(0, val::kDoubleParam),
       RealUnary([](double x) { return std::log10(x); }),
       nullptr,
       log10Derivative,
       ViaReal(log10Derivative)});
  Add({u"log10",
       {ComplexParam(u"z")},
       DroppedUnits(0, val::kComplexParam),
       ComplexUnary([](const C& z) { return std::log10(z); }),
       nullptr,
       log10Derivative,
       [](const CAD* a, int) { return log10(a[0]); }});

  // ---- sqrt, sqr ----
  const Function::RealDerivative sqrtDerivative = [](const AD* a, int) { return sqrt(a[0]); };
  Add({u"sqrt",
       {RealParam(u"x")},
       CustomUnits(
           val::kDoubleParam,
           [](const std::vector<ValueState>& s) { return SqrtState(s, val::kDoubleParam); }),
       RealUnary([](double x) { return std::sqrt(x); }),
       nullptr,
       sqrtDerivative,
       ViaReal(sqrtDerivative)});
  Add({u"sqrt",
       {ComplexParam(u"z")},
       CustomUnits(
           val::kComplexParam,
           [](const std::vector<ValueState>& s) { return SqrtState(s, val::kComplexParam); }),
       ComplexUnary([](const C& z) { return std::sqrt(z); }),
       nullptr,
       sqrtDerivative,
       [](const CAD* a, int) { return sqrt(a[0]); }});
  Add({u"sqr",
       {RealParam(u"x")},
       CustomUnits(val::kDoubleParam,
                   [](const std::vector<ValueState>& s) { return SqrState(s, val::kDoubleParam); }),
       RealUnary([](double x) { return x * x; }),
       nullptr,
       [](const AD* a, int) { return a[0] * a[0]; },
       [](const CAD* a, int) { return a[0] * a[0]; }});
  Add({u"sqr",
       {ComplexParam(u"z")},
       CustomUnits(
           val::kComplexParam,
           [](const std::vector<ValueState>& s) { return SqrState(s, val::kComplexParam); }),
       ComplexUnary([](const C& z) { return z * z; }),
       nullptr,
       [](const AD* a, int) { return a[0] * a[0]; },
       [](const CAD* a, int) { return a[0] * a[0]; }});

  // ---- pow, root ----
  const Function::RealDerivative powDerivative = [](const AD* a, int) { return pow(a[0], a[1]); };
  Add({u"pow",
       {RealParam(u"x"), RealParam(u"y")},
       DroppedUnits(0, val::kDoubleParam),
       RealBinary([](double x, double y) { return std::pow(x, y); }),
       nullptr,
       powDerivative,
       ViaReal(powDerivative)});
  Add({u"pow",
       {ComplexParam(u"z"), ComplexParam(u"w")},
       DroppedUnits(0, val::kComplexParam),
       nullptr,
       nullptr,
       powDerivative,
       [](const CAD* a, int) { return pow(a[0], a[1]); }},
      ComplexBinary(ComplexPower));
  Add({u"root",
       {RealParam(u"x"), RealParam(u"n")},
       DroppedUnits(0, val::kDoubleParam),
       RealBinary(RealRoot),
       nullptr,
       RealRootSeries,
       ViaReal(RealRootSeries)});
  Add({u"root",
       {ComplexParam(u"z"), ComplexParam(u"n")},
       DroppedUnits(0, val::kComplexParam),
       nullptr,
       nullptr,
       RealRootSeries,
       [](const CAD* a, int count) {
         const int order = CommonOrder(a, count);
         const C n = a[1].GetValue();
         if (n == C(0.0, 0.0)) {
           const double nan = std::numeric_limits<double>::quiet_NaN();
           return CAD(C(nan, nan), order);
         }
         return pow(CAD::Truncated(a[0], order), CAD(C(1.0, 0.0) / n, order));
       }},
      ComplexBinary(ComplexRoot));
}

}  // namespace wycore::functions
