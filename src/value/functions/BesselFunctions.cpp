// SPDX-License-Identifier: Apache-2.0
//
// BesselFunctions.cpp - Bessel functions of the first kind (j0, j1, jn) and of the second kind
// (y0, y1, yn) of whole order, for real arguments, computed by the C library (POSIX j0, j1, jn,
// y0, y1, yn).
//
// jn(n, x) and yn(n, x) take the order first. The order must be a whole number of magnitude at
// most kMaxOrder (the library's recurrences take time in proportion to the order); other orders
// give NaN. Negative orders follow J(-n) = (-1)^n J(n), likewise for Y. The second kind is
// singular at 0 (y0(0) is -inf) and undefined for negative x (NaN). Complex arguments are not
// taken: the lookup refuses them.
//
// Derivatives: d^k/dx^k C_n(x) = 2^-k sum_j (-1)^j binom(k, j) C_(n-k+2j)(x) for C = J or Y
// (Abramowitz & Stegun 9.1.31), composed with the argument's series. The order is held
// constant.
#include <cmath>
#include <limits>

#include "LibraryFunctions.h"

namespace wycore::functions {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kMaxOrder = 100000.0;

bool ValidOrder(double n) { return n == std::trunc(n) && std::fabs(n) <= kMaxOrder; }

// C_n(x) of the first (J) or second (Y) kind for a whole order n.
double Bessel(bool secondKind, int n, double x) { return secondKind ? ::yn(n, x) : ::jn(n, x); }

double BesselOfOrder(bool secondKind, double n, double x) {
  if (!ValidOrder(n)) return kNaN;
  return Bessel(secondKind, static_cast<int>(n), x);
}

// The series of C_n(f).
AD BesselSeries(bool secondKind, double n, const AD& f) {
  const int order = f.Order();
  if (!ValidOrder(n)) return AD(kNaN, order);
  const int m = static_cast<int>(n);
  const double x = f.GetValue();
  std::vector<double> derivatives(static_cast<std::size_t>(order) + 1);
  for (int k = 0; k <= order; ++k) {
    double sum = 0.0;
    double binomial = 1.0;
    for (int j = 0; j <= k; ++j) {
      sum += (j % 2 == 0 ? 1.0 : -1.0) * binomial * Bessel(secondKind, m - k + 2 * j, x);
      binomial = binomial * static_cast<double>(k - j) / static_cast<double>(j + 1);
    }
    derivatives[static_cast<std::size_t>(k)] = std::ldexp(sum, -k);
  }
  // Compose reads f - f0; a NaN or infinite value of C_n already fills the series.
  return Compose(f, derivatives);
}

void AddFixedOrder(const char16_t* name, bool secondKind, int n) {
  const Function::RealDerivative series = [secondKind, n](const AD* a, int) {
    return BesselSeries(secondKind, n, a[0]);
  };
  Add({name,
       {RealParam(u"x")},
       DroppedUnits(0, val::kDoubleParam),
       RealUnary([secondKind, n](double x) { return Bessel(secondKind, n, x); }),
       nullptr,
       series,
       ViaReal(series)});
}

void AddAnyOrder(const char16_t* name, bool secondKind) {
  const Function::RealDerivative series = [secondKind](const AD* a, int count) {
    const int order = CommonOrder(a, count);
    return BesselSeries(secondKind, a[0].GetValue(), AD::Truncated(a[1], order));
  };
  Add({name,
       {RealParam(u"n"), RealParam(u"x")},
       DroppedUnits(1, val::kDoubleParam),
       RealBinary([secondKind](double n, double x) { return BesselOfOrder(secondKind, n, x); }),
       nullptr,
       series,
       ViaReal(series)});
}

}  // namespace

void RegisterBesselFunctions() {
  AddFixedOrder(u"j0", false, 0);
  AddFixedOrder(u"j1", false, 1);
  AddAnyOrder(u"jn", false);
  AddFixedOrder(u"y0", true, 0);
  AddFixedOrder(u"y1", true, 1);
  AddAnyOrder(u"yn", true);
}

}  // namespace wycore::functions
