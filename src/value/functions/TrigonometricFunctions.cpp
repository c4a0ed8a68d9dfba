// SPDX-License-Identifier: Apache-2.0
//
// TrigonometricFunctions.cpp - tan, the inverse trigonometric functions, atan2, and the
// hyperbolic functions with their inverses, for real and complex arguments ("sin" and "cos" are
// first table rows), and "degel", the electrical angle of a mechanical one.
//
// Angles are radians: a number is SI inside the system, so an argument written in degrees
// ("30deg") arrives already in radians. Results are plain numbers. Real arguments outside a real
// domain (asin(2), acosh(0.5), atanh(3)) give NaN; the complex overloads give the principal
// values of the C++ library (branch cuts as std::asin etc. define them). Derivatives are the
// Taylor-series recurrences of ADValue.
#include <cmath>

#include "LibraryFunctions.h"

namespace wycore::functions {
namespace {

using RealFn = double (*)(double);
using ComplexFn = C (*)(const C&);
using RealSeriesFn = AD (*)(const AD&);
using ComplexSeriesFn = CAD (*)(const CAD&);

// A function analytic where it is defined: real and complex overloads, result without units.
// The real overload's complex-series derivative works on real parts, so that a complex walk
// through it agrees with its real value (NaN outside the real domain).
void AddAnalytic(const char16_t* name, RealFn real, ComplexFn complex, RealSeriesFn realSeries,
                 ComplexSeriesFn complexSeries) {
  const Function::RealDerivative realDerivative = [realSeries](const AD* a, int) {
    return realSeries(a[0]);
  };
  Add({name,
       {RealParam(u"x")},
       NoUnits(val::kDoubleParam),
       RealUnary(real),
       nullptr,
       realDerivative,
       ViaReal(realDerivative)});
  Add({name,
       {ComplexParam(u"z")},
       NoUnits(val::kComplexParam),
       ComplexUnary(complex),
       nullptr,
       [realSeries](const AD* a, int) { return realSeries(a[0]); },
       [complexSeries](const CAD* a, int) { return complexSeries(a[0]); }});
}

}  // namespace

void RegisterTrigonometricFunctions() {
  AddAnalytic(
      u"tan", [](double x) { return std::tan(x); }, [](const C& z) { return std::tan(z); },
      [](const AD& x) { return tan(x); }, [](const CAD& z) { return tan(z); });
  AddAnalytic(
      u"asin", [](double x) { return std::asin(x); }, [](const C& z) { return std::asin(z); },
      [](const AD& x) { return asin(x); }, [](const CAD& z) { return asin(z); });
  AddAnalytic(
      u"acos", [](double x) { return std::acos(x); }, [](const C& z) { return std::acos(z); },
      [](const AD& x) { return acos(x); }, [](const CAD& z) { return acos(z); });
  AddAnalytic(
      u"atan", [](double x) { return std::atan(x); }, [](const C& z) { return std::atan(z); },
      [](const AD& x) { return atan(x); }, [](const CAD& z) { return atan(z); });
  AddAnalytic(
      u"sinh", [](double x) { return std::sinh(x); }, [](const C& z) { return std::sinh(z); },
      [](const AD& x) { return sinh(x); }, [](const CAD& z) { return sinh(z); });
  AddAnalytic(
      u"cosh", [](double x) { return std::cosh(x); }, [](const C& z) { return std::cosh(z); },
      [](const AD& x) { return cosh(x); }, [](const CAD& z) { return cosh(z); });
  AddAnalytic(
      u"tanh", [](double x) { return std::tanh(x); }, [](const C& z) { return std::tanh(z); },
      [](const AD& x) { return tanh(x); }, [](const CAD& z) { return tanh(z); });
  AddAnalytic(
      u"asinh", [](double x) { return std::asinh(x); }, [](const C& z) { return std::asinh(z); },
      [](const AD& x) { return asinh(x); }, [](const CAD& z) { return asinh(z); });
  AddAnalytic(
      u"acosh", [](double x) { return std::acosh(x); }, [](const C& z) { return std::acosh(z); },
      [](const AD& x) { return acosh(x); }, [](const CAD& z) { return acosh(z); });
  AddAnalytic(
      u"atanh", [](double x) { return std::atanh(x); }, [](const C& z) { return std::atanh(z); },
      [](const AD& x) { return atanh(x); }, [](const CAD& z) { return atanh(z); });

  // atan2(y, x): the angle of the point (x, y) in (-pi, pi]. y and x are lengths, voltages, ...
  // of one kind; the result is a plain number (radians).
  const Function::RealDerivative atan2Derivative = [](const AD* a, int) {
    return atan2(a[0], a[1]);
  };
  Add({u"atan2",
       {RealParam(u"y"), RealParam(u"x")},
       NoUnits(val::kDoubleParam),
       RealBinary([](double y, double x) { return std::atan2(y, x); }),
       nullptr,
       atan2Derivative,
       ViaReal(atan2Derivative)});

  // degel(angle, polePairs): the electrical angle of a machine with that many pole pairs at the
  // mechanical angle `angle` (SI radians; the result keeps the angle's units, so 10deg with 2
  // pole pairs reads 20deg).
  const Function::RealDerivative degelDerivative = [](const AD* a, int) { return a[0] * a[1]; };
  Add({u"degel",
       {RealParam(u"angle"), RealParam(u"polePairs")},
       UnitsOf(0, val::kDoubleParam),
       RealBinary([](double angle, double polePairs) { return angle * polePairs; }),
       nullptr,
       degelDerivative,
       ViaReal(degelDerivative)});
}

}  // namespace wycore::functions
