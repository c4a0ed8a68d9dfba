// SPDX-License-Identifier: Apache-2.0
//
// ADValue.h - forward-mode automatic differentiation to any order.
//
// An ADValue<T> carries a value and its derivatives up to order n with respect to one variable,
// stored as truncated Taylor coefficients c[0..n] (c[k] = f^(k)(x0) / k!). Arithmetic and the
// elementary functions propagate the coefficients with the standard recurrences of Taylor
// arithmetic (Griewank & Walther, "Evaluating Derivatives", 2nd ed., ch. 13), each O(n^2), so a
// derivative of any order costs no symbolic work and no loss beyond ordinary rounding.
// T is double or AComplex<double>; the complex form differentiates analytic functions.
//
// Two operands of different orders combine at the smaller order (a constant made for a lower
// order cannot vouch for higher coefficients). Functions evaluated where their derivatives do not
// exist (sqrt or log at 0, a non-integer power of 0) give infinite or NaN coefficients, as the
// plain function would; nothing is checked or reported.
//
// Threading: a plain value type.
#pragma once

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <type_traits>
#include <vector>

#include "wycore/core/AComplex.h"

template <class T>
class ADValue {
 public:
  // The constant 0 of order 0.
  ADValue() : mC(1, T(0)) {}
  // The constant `value`, derivatives 0 up to `order` (negative orders count as 0).
  explicit ADValue(const T& value, int order = 0) : mC(Size(order), T(0)) { mC[0] = value; }

  static ADValue Constant(const T& value, int order) { return ADValue(value, order); }
  // The independent variable at `value`: first derivative 1, higher derivatives 0.
  static ADValue Variable(const T& value, int order) {
    ADValue r(value, order);
    if (r.Order() >= 1) r.mC[1] = T(1);
    return r;
  }
  // From Taylor coefficients c[0..n] (an empty list gives the constant 0).
  static ADValue FromCoefficients(std::vector<T> coefficients) {
    ADValue r;
    if (!coefficients.empty()) r.mC = std::move(coefficients);
    return r;
  }

  int Order() const { return static_cast<int>(mC.size()) - 1; }
  const T& GetValue() const { return mC[0]; }
  // The k-th Taylor coefficient, 0 beyond the order.
  T Coefficient(int k) const { return k >= 0 && k <= Order() ? mC[k] : T(0); }
  // The k-th derivative, k! * c[k]; 0 beyond the order.
  T Derivative(int k) const {
    if (k < 0 || k > Order()) return T(0);
    T r = mC[k];
    for (int i = 2; i <= k; ++i) r *= static_cast<double>(i);
    return r;
  }
  const std::vector<T>& Coefficients() const { return mC; }

  // ---- Arithmetic ------------------------------------------------------------------------

  ADValue operator-() const {
    ADValue r = *this;
    for (T& c : r.mC) c = -c;
    return r;
  }
  ADValue& operator+=(const ADValue& b) { return *this = *this + b; }
  ADValue& operator-=(const ADValue& b) { return *this = *this - b; }
  ADValue& operator*=(const ADValue& b) { return *this = *this * b; }
  ADValue& operator/=(const ADValue& b) { return *this = *this / b; }

  friend ADValue operator+(const ADValue& a, const ADValue& b) {
    ADValue r = Truncated(a, Common(a, b));
    for (int k = 0; k <= r.Order(); ++k) r.mC[k] += b.mC[k];
    return r;
  }
  friend ADValue operator-(const ADValue& a, const ADValue& b) {
    ADValue r = Truncated(a, Common(a, b));
    for (int k = 0; k <= r.Order(); ++k) r.mC[k] -= b.mC[k];
    return r;
  }
  friend ADValue operator*(const ADValue& a, const ADValue& b) {
    const int n = Common(a, b);
    ADValue r = Zero(n);
    for (int k = 0; k <= n; ++k) {
      T s(0);
      for (int j = 0; j <= k; ++j) s += a.mC[j] * b.mC[k - j];
      r.mC[k] = s;
    }
    return r;
  }
  friend ADValue operator/(const ADValue& a, const ADValue& b) {
    const int n = Common(a, b);
    ADValue r = Zero(n);
    for (int k = 0; k <= n; ++k) {
      T s = a.mC[k];
      for (int j = 1; j <= k; ++j) s -= b.mC[j] * r.mC[k - j];
      r.mC[k] = s / b.mC[0];
    }
    return r;
  }
  // Mixed forms with a plain number.
  friend ADValue operator+(const ADValue& a, const T& b) {
    ADValue r = a;
    r.mC[0] += b;
    return r;
  }
  friend ADValue operator+(const T& a, const ADValue& b) { return b + a; }
  friend ADValue operator-(const ADValue& a, const T& b) { return a + T(-b); }
  friend ADValue operator-(const T& a, const ADValue& b) { return -b + a; }
  friend ADValue operator*(const ADValue& a, const T& b) {
    ADValue r = a;
    for (T& c : r.mC) c *= b;
    return r;
  }
  friend ADValue operator*(const T& a, const ADValue& b) { return b * a; }
  friend ADValue operator/(const ADValue& a, const T& b) {
    ADValue r = a;
    for (T& c : r.mC) c /= b;
    return r;
  }
  friend ADValue operator/(const T& a, const ADValue& b) { return ADValue(a, b.Order()) / b; }

  // ---- Elementary functions --------------------------------------------------------------

  friend ADValue exp(const ADValue& f) {
    const int n = f.Order();
    ADValue h = Zero(n);
    h.mC[0] = std::exp(f.mC[0]);
    for (int k = 1; k <= n; ++k) {
      T s(0);
      for (int j = 1; j <= k; ++j) s += static_cast<double>(j) * f.mC[j] * h.mC[k - j];
      h.mC[k] = s / static_cast<double>(k);
    }
    return h;
  }
  friend ADValue log(const ADValue& f) {
    const int n = f.Order();
    ADValue h = Zero(n);
    h.mC[0] = std::log(f.mC[0]);
    for (int k = 1; k <= n; ++k) {
      T s(0);
      for (int j = 1; j < k; ++j) s += static_cast<double>(j) * h.mC[j] * f.mC[k - j];
      h.mC[k] = (f.mC[k] - s / static_cast<double>(k)) / f.mC[0];
    }
    return h;
  }
  friend ADValue log10(const ADValue& f) { return log(f) / T(std::log(10.0)); }
  friend ADValue sqrt(const ADValue& f) {
    const int n = f.Order();
    ADValue h = Zero(n);
    h.mC[0] = std::sqrt(f.mC[0]);
    for (int k = 1; k <= n; ++k) {
      T s(0);
      for (int j = 1; j < k; ++j) s += h.mC[j] * h.mC[k - j];
      h.mC[k] = (f.mC[k] - s) / (T(2) * h.mC[0]);
    }
    return h;
  }
  // f^a for a constant exponent. Whole exponents of moderate size multiply out, which also
  // serves a zero base; others use the power recurrence (h' f = a h f').
  friend ADValue pow(const ADValue& f, double a) {
    if (a == std::trunc(a) && std::fabs(a) <= 64.0) return IntegerPower(f, static_cast<int>(a));
    const int n = f.Order();
    ADValue h = Zero(n);
    h.mC[0] = std::pow(f.mC[0], a);
    for (int k = 1; k <= n; ++k) {
      T s(0);
      for (int j = 1; j <= k; ++j)
        s += ((a + 1.0) * static_cast<double>(j) - static_cast<double>(k)) * f.mC[j] * h.mC[k - j];
      h.mC[k] = s / (static_cast<double>(k) * f.mC[0]);
    }
    return h;
  }
  // f^g = exp(g log f); a constant g takes the form above so that negative real bases work.
  friend ADValue pow(const ADValue& f, const ADValue& g) {
    bool constantExponent = true;
    for (int k = 1; k <= g.Order(); ++k) constantExponent = constantExponent && g.mC[k] == T(0);
    if constexpr (std::is_same_v<T, double>) {
      if (constantExponent) return Truncated(pow(f, g.mC[0]), Common(f, g));
    } else {
      if (constantExponent && g.mC[0].imag() == 0.0)
        return Truncated(pow(f, g.mC[0].real()), Common(f, g));
    }
    return exp(g * log(f));
  }
  friend ADValue sin(const ADValue& f) { return SinCos(f, false); }
  friend ADValue cos(const ADValue& f) { return SinCos(f, true); }
  friend ADValue tan(const ADValue& f) { return SinCos(f, false) / SinCos(f, true); }
  friend ADValue sinh(const ADValue& f) { return SinhCosh(f, false); }
  friend ADValue cosh(const ADValue& f) { return SinhCosh(f, true); }
  friend ADValue tanh(const ADValue& f) { return SinhCosh(f, false) / SinhCosh(f, true); }
  // The inverse functions integrate their derivative series: h' = f' * q(f).
  friend ADValue asin(const ADValue& f) {
    const ADValue x = Lowered(f);
    return Integrated(std::asin(f.mC[0]), DerivativeSeries(f) / sqrt(T(1) - x * x), f.Order());
  }
  friend ADValue acos(const ADValue& f) {
    const ADValue x = Lowered(f);
    return Integrated(std::acos(f.mC[0]), -(DerivativeSeries(f) / sqrt(T(1) - x * x)), f.Order());
  }
  friend ADValue atan(const ADValue& f) {
    const ADValue x = Lowered(f);
    return Integrated(std::atan(f.mC[0]), DerivativeSeries(f) / (T(1) + x * x), f.Order());
  }
  friend ADValue asinh(const ADValue& f) {
    const ADValue x = Lowered(f);
    return Integrated(std::asinh(f.mC[0]), DerivativeSeries(f) / sqrt(x * x + T(1)), f.Order());
  }
  friend ADValue acosh(const ADValue& f) {
    const ADValue x = Lowered(f);
    return Integrated(std::acosh(f.mC[0]), DerivativeSeries(f) / sqrt(x * x - T(1)), f.Order());
  }
  friend ADValue atanh(const ADValue& f) {
    const ADValue x = Lowered(f);
    return Integrated(std::atanh(f.mC[0]), DerivativeSeries(f) / (T(1) - x * x), f.Order());
  }

  // ---- Series utilities ------------------------------------------------------------------

  // The series of f' (one order lower; order 0 for an order-0 f).
  static ADValue DerivativeSeries(const ADValue& f) {
    const int n = std::max(f.Order() - 1, 0);
    ADValue d = Zero(n);
    for (int k = 0; k < f.Order(); ++k) d.mC[k] = static_cast<double>(k + 1) * f.mC[k + 1];
    return d;
  }
  // f at one order lower (order 0 stays 0).
  static ADValue Lowered(const ADValue& f) { return Truncated(f, std::max(f.Order() - 1, 0)); }
  // The series h of order n with h(x0) = h0 and h' = d (d needs order n - 1 at least).
  static ADValue Integrated(const T& h0, const ADValue& d, int n) {
    ADValue h = Zero(n);
    h.mC[0] = h0;
    for (int k = 1; k <= h.Order(); ++k) h.mC[k] = d.Coefficient(k - 1) / static_cast<double>(k);
    return h;
  }
  // a at `order` (coefficients dropped or zero-filled).
  static ADValue Truncated(const ADValue& a, int order) {
    ADValue r = a;
    r.mC.resize(Size(order), T(0));
    return r;
  }

 private:
  static std::size_t Size(int order) { return static_cast<std::size_t>(order > 0 ? order : 0) + 1; }
  static int Common(const ADValue& a, const ADValue& b) { return std::min(a.Order(), b.Order()); }
  static ADValue Zero(int order) { return ADValue(T(0), order); }
  static ADValue IntegerPower(const ADValue& f, int e) {
    ADValue base = f;
    ADValue r(T(1), f.Order());
    unsigned int m = static_cast<unsigned int>(e < 0 ? -e : e);
    while (m != 0) {
      if (m & 1u) r = r * base;
      m >>= 1u;
      if (m != 0) base = base * base;
    }
    return e < 0 ? ADValue(T(1), f.Order()) / r : r;
  }
  static ADValue SinCos(const ADValue& f, bool wantCos) {
    const int n = f.Order();
    ADValue s = Zero(n), c = Zero(n);
    s.mC[0] = std::sin(f.mC[0]);
    c.mC[0] = std::cos(f.mC[0]);
    for (int k = 1; k <= n; ++k) {
      T ss(0), cc(0);
      for (int j = 1; j <= k; ++j) {
        ss += static_cast<double>(j) * f.mC[j] * c.mC[k - j];
        cc += static_cast<double>(j) * f.mC[j] * s.mC[k - j];
      }
      s.mC[k] = ss / static_cast<double>(k);
      c.mC[k] = -cc / static_cast<double>(k);
    }
    return wantCos ? c : s;
  }
  static ADValue SinhCosh(const ADValue& f, bool wantCosh) {
    const int n = f.Order();
    ADValue s = Zero(n), c = Zero(n);
    s.mC[0] = std::sinh(f.mC[0]);
    c.mC[0] = std::cosh(f.mC[0]);
    for (int k = 1; k <= n; ++k) {
      T ss(0), cc(0);
      for (int j = 1; j <= k; ++j) {
        ss += static_cast<double>(j) * f.mC[j] * c.mC[k - j];
        cc += static_cast<double>(j) * f.mC[j] * s.mC[k - j];
      }
      s.mC[k] = ss / static_cast<double>(k);
      c.mC[k] = cc / static_cast<double>(k);
    }
    return wantCosh ? c : s;
  }

  std::vector<T> mC;  // Taylor coefficients c[0..order]; never empty
};

// Real-only functions.
inline ADValue<double> fabs(const ADValue<double>& f) { return f.GetValue() < 0.0 ? -f : f; }
inline ADValue<double> abs(const ADValue<double>& f) { return fabs(f); }
// atan2(y, x): the angle of (x, y) in (-pi, pi], with derivative (x y' - y x') / (x^2 + y^2).
inline ADValue<double> atan2(const ADValue<double>& y, const ADValue<double>& x) {
  using AD = ADValue<double>;
  const int n = std::min(y.Order(), x.Order());
  const AD yl = AD::Lowered(AD::Truncated(y, n)), xl = AD::Lowered(AD::Truncated(x, n));
  const AD d = (xl * AD::DerivativeSeries(AD::Truncated(y, n)) -
                yl * AD::DerivativeSeries(AD::Truncated(x, n))) /
               (xl * xl + yl * yl);
  return AD::Integrated(std::atan2(y.GetValue(), x.GetValue()), d, n);
}
