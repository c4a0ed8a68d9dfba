// SPDX-License-Identifier: Apache-2.0
//
// RoundingFunctions.cpp - sign, rounding, remainders, parity tests, minimum and maximum, and
// "if" ("abs" is a first table row).
//
// Rounding works on the SI value, as every computation does: int(3.7mm) rounds 0.0037 m.
// Remainders: "mod" takes the sign of the divisor (floored division, mod(-7, 3) is 2), "fmod" the
// sign of the dividend (C fmod, fmod(-7, 3) is -1), "rem" is the IEEE remainder (nearest
// quotient, ties to even: rem(7, 2) is -1). A zero divisor or an infinite dividend gives NaN.
// Parity tests look at the whole part toward zero (even(2.5) is 1) and give 1 or 0; NaN and
// infinities give NaN. "min" and "max" take two or more arguments, "min2" and "max2" exactly two;
// a NaN argument makes the result NaN. "if" evaluates all three arguments (the evaluator never
// short-circuits); a NaN condition counts as true, as NaN does for "&&" and "||".
//
// Units: sgn, even and odd give plain numbers; int, nint and the remainders keep the units of
// their first argument; min, max and the branches of if combine their units as "+" does.
// Derivatives: steps (sgn, int, nint, parity) have derivative 0 where they are smooth; the
// remainders differentiate a - q*b with the quotient q held constant; min, max and if pass on
// the series of the argument they choose.
#include <cmath>
#include <limits>

#include "LibraryFunctions.h"

namespace wycore::functions {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

double Sign(double x) {
  if (std::isnan(x)) return kNaN;
  return x > 0.0 ? 1.0 : (x < 0.0 ? -1.0 : 0.0);
}

// z/|z|, 0 for 0.
C ComplexSign(const C& z) {
  const double m = std::abs(z);
  if (std::isnan(m)) return C(kNaN, kNaN);
  return m == 0.0 ? C(0.0, 0.0) : z / m;
}

// The remainders; each returns NaN for a zero divisor or a non-finite dividend.
double FlooredMod(double a, double b) {
  if (b == 0.0 || !std::isfinite(a)) return kNaN;
  double r = std::fmod(a, b);
  if (r != 0.0 && ((r < 0.0) != (b < 0.0))) r += b;
  return r;
}
double TruncatedMod(double a, double b) {
  if (b == 0.0 || !std::isfinite(a)) return kNaN;
  return std::fmod(a, b);
}
double IeeeRemainder(double a, double b) {
  if (b == 0.0 || !std::isfinite(a)) return kNaN;
  return std::remainder(a, b);
}

// The series of a remainder r = a - q*b with q held at its value.
template <double (*F)(double, double)>
AD RemainderSeries(const AD* args, int count) {
  const int order = CommonOrder(args, count);
  const double a = args[0].GetValue();
  const double b = args[1].GetValue();
  const double r = F(a, b);
  if (std::isnan(r) || std::isinf(b)) return AD(r, order);
  const double q = std::round((a - r) / b);
  AD series = AD::Truncated(args[0], order) - AD::Truncated(args[1], order) * q;
  std::vector<double> c = series.Coefficients();
  c[0] = r;  // the exact remainder, not a - q*b after rounding
  return AD::FromCoefficients(std::move(c));
}

double Parity(double x, bool even) {
  if (!std::isfinite(x)) return kNaN;
  const bool isEven = std::fmod(std::trunc(x), 2.0) == 0.0;
  return isEven == even ? 1.0 : 0.0;
}

// The value, derivatives 0: for functions that are piecewise constant.
template <double (*F)(double)>
AD StepSeries(const AD* a, int) {
  return AD(F(a[0].GetValue()), a[0].Order());
}

double Trunc(double x) { return std::trunc(x); }
double Round(double x) { return std::round(x); }
double Even(double x) { return Parity(x, true); }
double Odd(double x) { return Parity(x, false); }

// ---- min, max --------------------------------------------------------------------------------

template <bool kMax>
double Extreme(double a, double b) {
  if (std::isnan(a) || std::isnan(b)) return kNaN;
  return (kMax ? b > a : b < a) ? b : a;
}

template <bool kMax>
AD ExtremeSeries(const AD* a, int count) {
  const int order = CommonOrder(a, count);
  int chosen = 0;
  for (int i = 0; i < count; ++i) {
    const double v = a[i].GetValue();
    if (std::isnan(v)) return AD(kNaN, order);
    if (kMax ? v > a[chosen].GetValue() : v < a[chosen].GetValue()) chosen = i;
  }
  return AD::Truncated(a[chosen], order);
}

// Three or more arguments: the newer form, which knows the argument count.
template <bool kMax>
bool ExtremeOfMany(const IFunctionArguments& args, IFunctionResult& result, IFunctionContext&) {
  double value = args.GetDoubleArg(0);
  for (int i = 1; i < args.GetCount(); ++i) value = Extreme<kMax>(value, args.GetDoubleArg(i));
  result.SetDoubleResult(value);
  return true;
}

// ---- if --------------------------------------------------------------------------------------

void IfReal(double_stack& s) {
  const double otherwise = s.Pop();
  const double then = s.Pop();
  double& condition = s.Back();
  condition = condition != 0.0 ? then : otherwise;
}

// The branches may lie on the stack as reals (a real and a complex branch meet the complex
// overload).
void IfComplex(double_stack& s, const Function& function) {
  const C otherwise = PopAsComplex(s, function, 2);
  const C then = PopAsComplex(s, function, 1);
  const double condition = s.Pop();
  s.Push(condition != 0.0 ? then : otherwise);
}

AD IfSeries(const AD* a, int count) {
  return AD::Truncated(a[0].GetValue() != 0.0 ? a[1] : a[2], CommonOrder(a, count));
}

CAD IfComplexSeries(const CAD* a, int count) {
  return CAD::Truncated(a[0].GetValue().real() != 0.0 ? a[1] : a[2], CommonOrder(a, count));
}

}  // namespace

void RegisterRoundingFunctions() {
  // ---- sgn ----
  Add({u"sgn",
       {RealParam(u"x")},
       NoUnits(val::kDoubleParam),
       RealUnary(Sign),
       nullptr,
       StepSeries<Sign>,
       ViaReal(StepSeries<Sign>)});
  Add({u"sgn",
       {ComplexParam(u"z")},
       NoUnits(val::kComplexParam),
       ComplexUnary(ComplexSign),
       nullptr,
       StepSeries<Sign>,
       [](const CAD* a, int) {
         // z / |z| with |z| = sqrt(z conj(z)), for a real variable.
         const C z = a[0].GetValue();
         if (z == C(0.0, 0.0)) return CAD(C(0.0, 0.0), a[0].Order());
         const AD magnitude = sqrt(RealPart(a[0] * Conjugate(a[0])));
         return a[0] / FromReal(magnitude);
       }});

  // ---- int, nint ----
  Add({u"int",
       {RealParam(u"x")},
       UnitsOf(0, val::kDoubleParam),
       RealUnary(Trunc),
       nullptr,
       StepSeries<Trunc>,
       ViaReal(StepSeries<Trunc>)});
  Add({u"nint",
       {RealParam(u"x")},
       UnitsOf(0, val::kDoubleParam),
       RealUnary(Round),
       nullptr,
       StepSeries<Round>,
       ViaReal(StepSeries<Round>)});

  // ---- mod, fmod, rem ----
  Add({u"mod",
       {RealParam(u"a"), RealParam(u"b")},
       UnitsOf(0, val::kDoubleParam),
       RealBinary(FlooredMod),
       nullptr,
       RemainderSeries<FlooredMod>,
       ViaReal(RemainderSeries<FlooredMod>)});
  Add({u"fmod",
       {RealParam(u"a"), RealParam(u"b")},
       UnitsOf(0, val::kDoubleParam),
       RealBinary(TruncatedMod),
       nullptr,
       RemainderSeries<TruncatedMod>,
       ViaReal(RemainderSeries<TruncatedMod>)});
  Add({u"rem",
       {RealParam(u"a"), RealParam(u"b")},
       UnitsOf(0, val::kDoubleParam),
       RealBinary(IeeeRemainder),
       nullptr,
       RemainderSeries<IeeeRemainder>,
       ViaReal(RemainderSeries<IeeeRemainder>)});

  // ---- even, odd ----
  Add({u"even",
       {RealParam(u"x")},
       NoUnits(val::kDoubleParam),
       RealUnary(Even),
       nullptr,
       StepSeries<Even>,
       ViaReal(StepSeries<Even>)});
  Add({u"odd",
       {RealParam(u"x")},
       NoUnits(val::kDoubleParam),
       RealUnary(Odd),
       nullptr,
       StepSeries<Odd>,
       ViaReal(StepSeries<Odd>)});

  // ---- min, max, min2, max2 ----
  for (const bool isMax : {false, true}) {
    const Function::StackRoutine two =
        isMax ? RealBinary(Extreme<true>) : RealBinary(Extreme<false>);
    const Function::RealDerivative series = isMax ? ExtremeSeries<true> : ExtremeSeries<false>;
    const char16_t* names[] = {isMax ? u"max" : u"min", isMax ? u"max2" : u"min2"};
    for (const char16_t* name : names) {
      Add({name,
           {RealParam(u"x"), RealParam(u"y")},
           CombinedUnits(0, val::kDoubleParam),
           two,
           nullptr,
           series,
           ViaReal(series)});
    }
    Add({isMax ? u"max" : u"min",
         {RealParam(u"x"), RealParam(u"y"), RealParam(u"z")},
         CombinedUnits(0, val::kDoubleParam),
         nullptr,
         isMax ? Function::ContextCalculation(ExtremeOfMany<true>)
               : Function::ContextCalculation(ExtremeOfMany<false>),
         series,
         ViaReal(series),
         /*variadic=*/true});
  }

  // ---- if ----
  Add({u"if",
       {RealParam(u"condition"), RealParam(u"then"), RealParam(u"else")},
       CombinedUnits(1, val::kDoubleParam),
       IfReal,
       nullptr,
       IfSeries,
       ViaReal(IfSeries)});
  Add({u"if",
       {RealParam(u"condition"), ComplexParam(u"then"), ComplexParam(u"else")},
       CombinedUnits(1, val::kComplexParam),
       nullptr,
       nullptr,
       IfSeries,
       IfComplexSeries},
      IfComplex);
}

}  // namespace wycore::functions
