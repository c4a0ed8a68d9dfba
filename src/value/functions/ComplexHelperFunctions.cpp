// SPDX-License-Identifier: Apache-2.0
//
// ComplexHelperFunctions.cpp - parts, magnitude, angle and conjugate of complex numbers, and the
// constructors "cmplx", "rect" and "polar".
//
// Each part function also takes a real argument (a real number is a complex number with
// imaginary part 0): re(x) is x, im(x) is 0, mag(x) is |x|, conjg(x) is x, the angle of a
// negative real is pi. Angles: "ang_rad" and "arg" give the principal angle in (-pi, pi]
// (radians; "ang_rad" with the unit rad for display, "arg" as a plain number); "ang" and
// "ang_deg" give the same SI value with the unit deg, so that it displays in degrees;
// "ang_deg_val" gives the angle in degrees as a plain number (45 for 1+1j). The angle of 0 is 0.
//
// Units: re, im, mag and conjg keep the units of their argument; cmplx and rect combine the
// units of their two parts as "+" does; polar takes the units of the magnitude.
// Derivatives are taken for a real variable: the series of conj(z) is the conjugated series.
#include <cmath>
#include <numbers>

#include "LibraryFunctions.h"

namespace wycore::functions {
namespace {

constexpr double kDegreesPerRadian = 180.0 / std::numbers::pi;

// The angle of a real number.
double RealAngle(double x) {
  if (std::isnan(x)) return x;
  return x < 0.0 ? std::numbers::pi : 0.0;
}

AD RealAngleSeries(const AD* a, int) { return AD(RealAngle(a[0].GetValue()), a[0].Order()); }

// atan2(im, re) of the series.
AD AngleSeries(const CAD& z) { return atan2(ImagPart(z), RealPart(z)); }

CAD MagnitudeSeries(const CAD& z) { return FromReal(sqrt(RealPart(z * Conjugate(z)))); }

// Registers a real and a complex overload of an angle function scaled by `scale` with result
// rule `rule`.
void AddAngle(const char16_t* name, double scale, const Function::ResultRule& rule) {
  Add({name,
       {RealParam(u"x")},
       rule,
       RealUnary([scale](double x) { return RealAngle(x) * scale; }),
       nullptr,
       [scale](const AD* a, int n) { return RealAngleSeries(a, n) * scale; },
       [scale](const CAD* a, int) {
         return FromReal(AD(RealAngle(a[0].GetValue().real()) * scale, a[0].Order()));
       },
       false,
       true});
  Add({name,
       {ComplexParam(u"z")},
       rule,
       ComplexUnary([scale](const C& z) { return std::arg(z) * scale; }),
       nullptr,
       [scale](const AD* a, int n) { return RealAngleSeries(a, n) * scale; },
       [scale](const CAD* a, int) { return FromReal(AngleSeries(a[0]) * scale); },
       false,
       true});
}

}  // namespace

void RegisterComplexHelperFunctions() {
  // ---- re, im ----
  Add({u"re",
       {RealParam(u"x")},
       UnitsOf(0, val::kDoubleParam),
       RealUnary([](double x) { return x; }),
       nullptr,
       [](const AD* a, int) { return a[0]; },
       [](const CAD* a, int) { return FromReal(RealPart(a[0])); },
       false,
       true});
  Add({u"re",
       {ComplexParam(u"z")},
       UnitsOf(0, val::kDoubleParam),
       ComplexUnary([](const C& z) { return z.real(); }),
       nullptr,
       [](const AD* a, int) { return a[0]; },
       [](const CAD* a, int) { return FromReal(RealPart(a[0])); },
       false,
       true});
  Add({u"im",
       {RealParam(u"x")},
       UnitsOf(0, val::kDoubleParam),
       RealUnary([](double x) { return std::isnan(x) ? x : 0.0; }),
       nullptr,
       [](const AD* a, int) { return a[0] * 0.0; },
       [](const CAD* a, int) { return FromReal(ImagPart(a[0])); },
       false,
       true});
  Add({u"im",
       {ComplexParam(u"z")},
       UnitsOf(0, val::kDoubleParam),
       ComplexUnary([](const C& z) { return z.imag(); }),
       nullptr,
       [](const AD* a, int) { return a[0] * 0.0; },
       [](const CAD* a, int) { return FromReal(ImagPart(a[0])); },
       false,
       true});

  // ---- mag ----
  Add({u"mag",
       {RealParam(u"x")},
       UnitsOf(0, val::kDoubleParam),
       RealUnary([](double x) { return std::fabs(x); }),
       nullptr,
       [](const AD* a, int) { return fabs(a[0]); },
       [](const CAD* a, int) { return MagnitudeSeries(a[0]); },
       false,
       true});
  Add({u"mag",
       {ComplexParam(u"z")},
       UnitsOf(0, val::kDoubleParam),
       ComplexUnary([](const C& z) { return std::abs(z); }),
       nullptr,
       [](const AD* a, int) { return fabs(a[0]); },
       [](const CAD* a, int) { return MagnitudeSeries(a[0]); },
       false,
       true});

  // ---- angles ----
  AddAngle(u"ang", 1.0, FixedUnits(u"deg", val::kDoubleParam));
  AddAngle(u"ang_deg", 1.0, FixedUnits(u"deg", val::kDoubleParam));
  AddAngle(u"ang_rad", 1.0, FixedUnits(u"rad", val::kDoubleParam));
  AddAngle(u"ang_deg_val", kDegreesPerRadian, NoUnits(val::kDoubleParam));
  AddAngle(u"arg", 1.0, NoUnits(val::kDoubleParam));

  // ---- conjg ----
  Add({u"conjg",
       {RealParam(u"x")},
       UnitsOf(0, val::kDoubleParam),
       RealUnary([](double x) { return x; }),
       nullptr,
       [](const AD* a, int) { return a[0]; },
       [](const CAD* a, int) { return Conjugate(a[0]); }});
  Add({u"conjg",
       {ComplexParam(u"z")},
       UnitsOf(0, val::kComplexParam),
       ComplexUnary([](const C& z) { return std::conj(z); }),
       nullptr,
       [](const AD* a, int) { return a[0]; },
       [](const CAD* a, int) { return Conjugate(a[0]); }});

  // ---- cmplx, rect, polar ----
  const auto rectangular = [](double_stack& s) {
    const double im = s.Pop();
    const double re = s.Pop();
    s.PushComplex(re, im);
  };
  const Function::ComplexDerivative rectangularSeries = [](const CAD* a, int count) {
    const int order = CommonOrder(a, count);
    return CAD::Truncated(FromReal(RealPart(a[0])), order) +
           CAD::Truncated(FromReal(RealPart(a[1])), order) * C(0.0, 1.0);
  };
  for (const char16_t* name : {u"cmplx", u"rect"}) {
    Add({name,
         {RealParam(u"re"), RealParam(u"im")},
         CombinedUnits(0, val::kComplexParam),
         rectangular,
         nullptr,
         nullptr,
         rectangularSeries});
  }
  Add({u"polar",
       {RealParam(u"magnitude"), RealParam(u"angle")},
       UnitsOf(0, val::kComplexParam),
       [](double_stack& s) {
         const double angle = s.Pop();
         const double magnitude = s.Pop();
         // Written out: std::polar requires a magnitude of 0 or more.
         s.PushComplex(magnitude * std::cos(angle), magnitude * std::sin(angle));
       },
       nullptr,
       nullptr,
       [](const CAD* a, int count) {
         const int order = CommonOrder(a, count);
         const CAD magnitude = CAD::Truncated(FromReal(RealPart(a[0])), order);
         const CAD angle = CAD::Truncated(FromReal(RealPart(a[1])), order);
         return magnitude * exp(angle * C(0.0, 1.0));
       }});
}

}  // namespace wycore::functions
