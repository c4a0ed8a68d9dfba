// SPDX-License-Identifier: Apache-2.0
//
// ADValueTest.cpp - ADValue: derivatives of every order against closed forms, order rules, and
// the complex form.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "wycore/value/ADValue.h"

namespace {

using AD = ADValue<double>;

double Factorial(int k) {
  double f = 1.0;
  for (int i = 2; i <= k; ++i) f *= i;
  return f;
}

struct DerivativeCase {
  const char* name;
  std::function<AD(const AD&)> f;
  double x0;
  std::vector<double> expected;  // f(x0), f'(x0), f''(x0), ...
};

TEST(ADValue, DerivativesMatchClosedForms) {
  const double e2 = std::exp(2.0);
  const DerivativeCase cases[] = {
      {"x^3", [](const AD& x) { return x * x * x; }, 2.0, {8, 12, 12, 6, 0, 0}},
      {"exp(2x)", [](const AD& x) { return exp(2.0 * x); }, 1.0, {e2, 2 * e2, 4 * e2, 8 * e2}},
      {"log(x)",
       [](const AD& x) { return log(x); },
       2.0,
       {std::log(2.0), 0.5, -0.25, 0.25, -0.375}},
      {"sqrt(x)", [](const AD& x) { return sqrt(x); }, 4.0, {2, 0.25, -1.0 / 32, 3.0 / 256}},
      {"1/x", [](const AD& x) { return 1.0 / x; }, 2.0, {0.5, -0.25, 0.25, -0.375}},
      {"sin(x)",
       [](const AD& x) { return sin(x); },
       0.5,
       {std::sin(0.5), std::cos(0.5), -std::sin(0.5), -std::cos(0.5), std::sin(0.5)}},
      {"cos(x)",
       [](const AD& x) { return cos(x); },
       0.5,
       {std::cos(0.5), -std::sin(0.5), -std::cos(0.5), std::sin(0.5)}},
      {"tan(x)", [](const AD& x) { return tan(x); }, 0.0, {0, 1, 0, 2, 0, 16}},
      {"sinh(x)", [](const AD& x) { return sinh(x); }, 0.0, {0, 1, 0, 1, 0, 1}},
      {"tanh(x)", [](const AD& x) { return tanh(x); }, 0.0, {0, 1, 0, -2, 0, 16}},
      {"atan(x)", [](const AD& x) { return atan(x); }, 1.0, {M_PI / 4, 0.5, -0.5, 0.5}},
      {"asin(x)", [](const AD& x) { return asin(x); }, 0.0, {0, 1, 0, 1, 0, 9}},
      {"acos(x)", [](const AD& x) { return acos(x); }, 0.0, {M_PI / 2, -1, 0, -1}},
      {"asinh(x)", [](const AD& x) { return asinh(x); }, 0.0, {0, 1, 0, -1, 0, 9}},
      {"atanh(x)", [](const AD& x) { return atanh(x); }, 0.0, {0, 1, 0, 2, 0, 24}},
      {"x^2.5", [](const AD& x) { return pow(x, 2.5); }, 4.0, {32, 20, 7.5, 15.0 / 16}},
      {"x^-2", [](const AD& x) { return pow(x, -2.0); }, 1.0, {1, -2, 6, -24}},
      {"x^x", [](const AD& x) { return pow(x, x); }, 1.0, {1, 1, 2, 3}},
      {"(x+1)/(x-1)", [](const AD& x) { return (x + 1.0) / (x - 1.0); }, 2.0, {3, -2, 4, -12}},
      {"atan2(x, 1)",
       [](const AD& x) { return atan2(x, AD(1.0, x.Order())); },
       1.0,
       {M_PI / 4, 0.5, -0.5}},
      {"atan2(1, x) at x=0",
       [](const AD& x) { return atan2(AD(1.0, x.Order()), x); },
       0.0,
       {M_PI / 2, -1, 0}},
      {"|x| at -3", [](const AD& x) { return abs(x); }, -3.0, {3, -1, 0}},
  };
  for (const DerivativeCase& c : cases) {
    SCOPED_TRACE(c.name);
    const int order = static_cast<int>(c.expected.size()) - 1;
    const AD y = c.f(AD::Variable(c.x0, order));
    ASSERT_EQ(order, y.Order());
    for (int k = 0; k <= order; ++k) {
      SCOPED_TRACE(k);
      EXPECT_NEAR(c.expected[k], y.Derivative(k), 1e-12 * (1.0 + std::fabs(c.expected[k])));
      EXPECT_NEAR(c.expected[k] / Factorial(k), y.Coefficient(k),
                  1e-12 * (1.0 + std::fabs(c.expected[k])));
    }
  }
}

TEST(ADValue, ConstantHasZeroDerivativesAndBeyondOrderIsZero) {
  const AD c = AD::Constant(7.5, 3);
  EXPECT_EQ(3, c.Order());
  EXPECT_EQ(7.5, c.GetValue());
  for (int k = 1; k <= 3; ++k) EXPECT_EQ(0.0, c.Derivative(k));
  EXPECT_EQ(0.0, AD::Variable(2.0, 1).Derivative(5));
  EXPECT_EQ(0.0, AD::Variable(2.0, 1).Derivative(-1));
  EXPECT_EQ(0, AD(1.0, -4).Order());  // negative orders count as 0
}

TEST(ADValue, OperandsOfDifferentOrderCombineAtTheSmallerOrder) {
  const AD x = AD::Variable(2.0, 4);
  const AD c = AD::Constant(3.0, 1);
  EXPECT_EQ(1, (x * c).Order());
  EXPECT_EQ(1, (x + c).Order());
  EXPECT_EQ(6.0, (x * c).GetValue());
  EXPECT_EQ(3.0, (x * c).Derivative(1));
}

TEST(ADValue, IntegerPowerOfZeroBaseIsExact) {
  const AD y = pow(AD::Variable(0.0, 4), 3.0);
  const double expected[] = {0, 0, 0, 6, 0};
  for (int k = 0; k <= 4; ++k) EXPECT_EQ(expected[k], y.Derivative(k)) << k;
}

TEST(ADValue, SqrtAtZeroGivesNonFiniteDerivative) {
  const AD y = sqrt(AD::Variable(0.0, 1));
  EXPECT_EQ(0.0, y.GetValue());
  EXPECT_FALSE(std::isfinite(y.Derivative(1)));
}

TEST(ADValue, ComplexExpDifferentiatesAnalytically) {
  using CAD = ADValue<AComplex<double>>;
  const AComplex<double> z0(0.5, 1.0);
  const CAD y = exp(CAD::Variable(z0, 3) * AComplex<double>(0.0, 2.0));  // exp(2iz)
  const AComplex<double> base = std::exp(AComplex<double>(0.0, 2.0) * z0);
  AComplex<double> factor(1.0, 0.0);
  for (int k = 0; k <= 3; ++k) {
    const AComplex<double> expected = factor * base;
    EXPECT_NEAR(expected.real(), y.Derivative(k).real(), 1e-12 * std::abs(expected)) << k;
    EXPECT_NEAR(expected.imag(), y.Derivative(k).imag(), 1e-12 * std::abs(expected)) << k;
    factor *= AComplex<double>(0.0, 2.0);
  }
}

}  // namespace
