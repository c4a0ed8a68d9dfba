// SPDX-License-Identifier: Apache-2.0
//
// DecibelFunctions.cpp - levels in decibels: dB, dB10, dB20, dBm, dBW, dBu and dBc.
//
// Every function takes the magnitude of its argument (real or complex) and gives a plain number:
//   dB(x)    = 20 log10 |x|                 amplitude ratio, reference 1
//   dB20(x)  = 20 log10 |x|                 the same, named for its factor
//   dB10(x)  = 10 log10 |x|                 power ratio, reference 1
//   dBm(p)   = 10 log10 (|p| / 1 mW)        power in W (SI) against 1 milliwatt
//   dBW(p)   = 10 log10 (|p| / 1 W)         power in W against 1 watt
//   dBu(v)   = 20 log10 (|v| / 0.7745967 V) voltage in V against sqrt(0.6) V, the voltage that
//                                            dissipates 1 mW in 600 ohm
//   dBc(x)   = 20 log10 |x|                 an amplitude already relative to the carrier
//   dBc(x, c) = 20 log10 (|x| / |c|)        an amplitude against the carrier amplitude c
// A zero magnitude gives -inf (the limit), NaN gives NaN. The arguments are SI numbers: dBm(1mW)
// reads 0.001 W and gives 0. Units of the argument are not checked (a level is a plain number);
// the functions are conversion functions, offered for display.
#include <cmath>
#include <numbers>

#include "LibraryFunctions.h"

namespace wycore::functions {
namespace {

// sqrt(0.6) V: 1 mW into 600 ohm.
const double kDbuReferenceVolts = std::sqrt(0.6);
// 20 log10 as a multiple of the natural logarithm.
constexpr double kRelativePerLog = 20.0 / std::numbers::ln10;

// Registers the real and complex overloads of factor * log10(|x| / reference).
void AddLevel(const char16_t* name, double factor, double reference) {
  const double offset = factor * std::log10(reference);
  const double perLog = factor / std::numbers::ln10;
  const auto level = [factor, offset](double magnitude) {
    return factor * std::log10(magnitude) - offset;
  };
  const Function::RealDerivative realSeries = [perLog, offset](const AD* a, int) {
    const AD x = a[0].GetValue() < 0.0 ? -a[0] : a[0];
    return log(x) * perLog - offset;
  };
  Add({name,
       {RealParam(u"x")},
       NoUnits(val::kDoubleParam),
       RealUnary([level](double x) { return level(std::fabs(x)); }),
       nullptr,
       realSeries,
       ViaReal(realSeries),
       false,
       true});
  Add({name,
       {ComplexParam(u"z")},
       NoUnits(val::kDoubleParam),
       ComplexUnary([level](const C& z) { return level(std::abs(z)); }),
       nullptr,
       realSeries,
       [perLog, offset](const CAD* a, int) {
         // log|z| = log(z conj(z)) / 2, for a real variable.
         return FromReal(log(RealPart(a[0] * Conjugate(a[0]))) * (perLog / 2.0) - offset);
       },
       false,
       true});
}

double RelativeLevel(double x, double carrier) {
  return 20.0 * std::log10(std::fabs(x)) - 20.0 * std::log10(std::fabs(carrier));
}

}  // namespace

void RegisterDecibelFunctions() {
  AddLevel(u"dB", 20.0, 1.0);
  AddLevel(u"dB20", 20.0, 1.0);
  AddLevel(u"dB10", 10.0, 1.0);
  AddLevel(u"dBm", 10.0, 1e-3);
  AddLevel(u"dBW", 10.0, 1.0);
  AddLevel(u"dBu", 20.0, kDbuReferenceVolts);
  AddLevel(u"dBc", 20.0, 1.0);

  // dBc(x, carrier): the level of x relative to the carrier.
  const Function::RealDerivative relativeSeries = [](const AD* a, int count) {
    const int order = CommonOrder(a, count);
    const AD x = AD::Truncated(a[0].GetValue() < 0.0 ? -a[0] : a[0], order);
    const AD c = AD::Truncated(a[1].GetValue() < 0.0 ? -a[1] : a[1], order);
    return (log(x) - log(c)) * kRelativePerLog;
  };
  Add({u"dBc",
       {RealParam(u"x"), RealParam(u"carrier")},
       NoUnits(val::kDoubleParam),
       RealBinary(RelativeLevel),
       nullptr,
       relativeSeries,
       ViaReal(relativeSeries),
       false,
       true});
  Add({u"dBc",
       {ComplexParam(u"x"), ComplexParam(u"carrier")},
       NoUnits(val::kDoubleParam),
       nullptr,
       nullptr,
       relativeSeries,
       [](const CAD* a, int count) {
         const int order = CommonOrder(a, count);
         const AD x = AD::Truncated(RealPart(a[0] * Conjugate(a[0])), order);
         const AD c = AD::Truncated(RealPart(a[1] * Conjugate(a[1])), order);
         return FromReal((log(x) - log(c)) * (kRelativePerLog / 2.0));
       },
       false,
       true},
      ComplexBinary([](const C& x, const C& carrier) {
        return RelativeLevel(std::abs(x), std::abs(carrier));
      }));
}

}  // namespace wycore::functions
