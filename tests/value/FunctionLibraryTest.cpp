// SPDX-License-Identifier: Apache-2.0
//
// FunctionLibraryTest.cpp - the built-in scalar functions through parsed expressions: values
// against the C library, identities and published tables, complex overloads against
// std::complex, domain edges, result units, lookup failures, the required-pair checks,
// derivatives against central differences, and the names and argument counts that
// docs/functions.md documents.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstring>
#include <fstream>
#include <limits>
#include <map>
#include <memory>
#include <numbers>
#include <set>
#include <sstream>
#include <string>

#include "support/Capture.h"
#include "wycore/units/UnitDefinition.h"
#include "wycore/units/Units.h"
#include "wycore/value/DatasetValue.h"
#include "wycore/value/Expression.h"
#include "wycore/value/ExpressionParser.h"
#include "wycore/value/FloatValue.h"
#include "wycore/value/FunctionLibrary.h"
#include "wycore/value/Value.h"
#include "wycore/value/ValueBase.h"
#include "wycore/variables/Function.h"
#include "wycore/variables/Variable.h"
#include "wycore/variables/VariableNameSpace.h"

namespace wycore::test {
namespace {

using C = std::complex<double>;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kPi = std::numbers::pi;

std::unique_ptr<ValueBase> Parse(const AString& text) {
  return std::unique_ptr<ValueBase>(Value::CreateValueBase(text, Units::NoUnits));
}

Units::FullUnitType Fut(const char16_t* name) {
  const UnitDefinition* unit = Units::FindUnitDef(AString(name));
  return unit != nullptr ? unit->GetFullUnitType() : Units::NoUnits;
}

// Equal within a relative tolerance; NaN matches NaN, infinities match exactly.
::testing::AssertionResult Near(double actual, double expected, double tolerance = 1e-14) {
  if (std::isnan(expected) ? std::isnan(actual)
      : std::isinf(expected)
          ? actual == expected
          : std::fabs(actual - expected) <= tolerance * std::max(1.0, std::fabs(expected))) {
    return ::testing::AssertionSuccess();
  }
  return ::testing::AssertionFailure() << actual << " is not " << expected;
}

// Parses and evaluates texts in a name space that holds the variable x.
class FunctionLibraryTest : public ::testing::Test {
 protected:
  double Real(const AString& text) {
    auto value = Parse(text);
    EXPECT_NE(value, nullptr);
    return value != nullptr ? value->GetValue() : kNaN;
  }
  C Complex(const AString& text) {
    auto value = Parse(text);
    EXPECT_NE(value, nullptr);
    return value != nullptr ? value->GetComplexValue() : C(kNaN, kNaN);
  }

  Variable mX{u"x", 0.0};
  VariableNameSpace mNames{&mX, VariableNameSpace::kSearchIntrinsics,
                           VariableNameSpace::kAppendToPrevious};
};

// ---- Real values -------------------------------------------------------------------------------

TEST_F(FunctionLibraryTest, RealValuesMatchTheCLibraryAndIdentities) {
  const double e = std::exp(1.0);
  const struct {
    const char16_t* text;
    double expected;
  } cases[] = {
      // Trigonometric and hyperbolic (angles in SI radians, so degrees arrive converted).
      {u"sin(30deg)", 0.5},
      {u"tan(0.5)", std::tan(0.5)},
      {u"asin(0.5)", kPi / 6},
      {u"acos(0.5)", kPi / 3},
      {u"atan(1)", kPi / 4},
      {u"atan2(1, -1)", 3 * kPi / 4},
      {u"atan2(-1, -1)", -3 * kPi / 4},
      {u"sinh(1)", (e - 1 / e) / 2},
      {u"cosh(1)", (e + 1 / e) / 2},
      {u"tanh(0.5)", (e - 1) / (e + 1)},
      {u"asinh(1)", std::log(1 + std::sqrt(2.0))},
      {u"acosh(2)", std::log(2 + std::sqrt(3.0))},
      {u"atanh(0.5)", 0.5 * std::log(3.0)},
      {u"degel(10deg, 2)", 20 * kPi / 180},
      // Exponentials, logarithms, powers.
      {u"ln(exp(2))", 2.0},
      {u"log(10)", std::log(10.0)},
      {u"log10(1000)", 3.0},
      {u"sqrt(2)", std::sqrt(2.0)},
      {u"sqr(-3)", 9.0},
      {u"pow(2, 10)", 1024.0},
      {u"pow(2, 0.5)", std::sqrt(2.0)},
      {u"root(-8, 3)", -2.0},
      {u"root(16, 4)", 2.0},
      // Sign, rounding, remainders, parity.
      {u"sgn(-3)", -1.0},
      {u"sgn(0)", 0.0},
      {u"sgn(2)", 1.0},
      {u"int(-2.7)", -2.0},
      {u"int(2.7)", 2.0},
      {u"nint(2.5)", 3.0},
      {u"nint(-2.5)", -3.0},
      {u"nint(-2.4)", -2.0},
      {u"mod(-7, 3)", 2.0},
      {u"mod(7, -3)", -2.0},
      {u"fmod(-7, 3)", -1.0},
      {u"rem(7, 2)", -1.0},
      {u"rem(5, 2)", 1.0},
      {u"even(4)", 1.0},
      {u"even(3)", 0.0},
      {u"odd(3)", 1.0},
      {u"odd(-3)", 1.0},
      {u"even(2.5)", 1.0},
      {u"even(-4)", 1.0},
      {u"max(1, 5, 3)", 5.0},
      {u"min(4, -2, 7, 0)", -2.0},
      {u"min2(3, 1)", 1.0},
      {u"max2(3, 1)", 3.0},
      {u"if(0, 1, 2)", 2.0},
      {u"if(0/0, 1, 2)", 1.0},
      // Complex helpers on real and complex arguments.
      {u"re(3)", 3.0},
      {u"im(3)", 0.0},
      {u"mag(-3)", 3.0},
      {u"ang(-1)", kPi},
      {u"ang_deg_val(-1)", 180.0},
      {u"arg(2)", 0.0},
      {u"conjg(4)", 4.0},
      {u"re(3+4j)", 3.0},
      {u"im(3+4j)", 4.0},
      {u"mag(3+4j)", 5.0},
      {u"ang_rad(1+1j)", kPi / 4},
      {u"ang_deg(-1j)", -kPi / 2},
      {u"ang_deg_val(1+1j)", 45.0},
      {u"arg(0)", 0.0},
      // Decibels and their reference levels.
      {u"dB(10)", 20.0},
      {u"dB(-10)", 20.0},
      {u"dB20(100)", 40.0},
      {u"dB10(100)", 20.0},
      {u"dBm(1W)", 30.0},
      {u"dBm(1mW)", 0.0},
      {u"dBW(100)", 20.0},
      {u"dBu(sqrt(0.6))", 0.0},
      {u"dBu(10*sqrt(0.6))", 20.0},
      {u"dBc(0.1)", -20.0},
      {u"dBc(1, 10)", -20.0},
      {u"dB(3+4j)", 20 * std::log10(5.0)},
      {u"dBc(3+4j, 5j)", 0.0},
      // Bessel functions: published values (Abramowitz & Stegun, table 9.1) and the C library.
      {u"j0(1)", 0.7651976865579666},
      {u"j1(1)", 0.4400505857449335},
      {u"y0(1)", 0.08825696421567696},
      {u"y1(1)", -0.7812128213002887},
      {u"jn(2, 1)", 0.1149034849319005},
      {u"yn(2, 1)", -1.650682606816254},
      {u"jn(0, 2.5)", ::j0(2.5)},
      {u"jn(-1, 1)", -0.4400505857449335},
      {u"yn(5, 3)", ::yn(5, 3.0)},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(AString(c.text).TStr());
    EXPECT_TRUE(Near(Real(c.text), c.expected, 1e-13));
  }
}

TEST_F(FunctionLibraryTest, BesselFunctionsSatisfyTheirRecurrence) {
  // C(n-1) + C(n+1) = (2n/x) C(n) for both kinds.
  for (const char16_t* kind : {u"jn", u"yn"}) {
    for (int n = 1; n <= 6; ++n) {
      for (double x : {0.3, 1.7, 9.2}) {
        const AString k(kind);
        const AString sum = k + u"(" + i18n::MakeNumberString(n - 1) + u", x) + " + k + u"(" +
                            i18n::MakeNumberString(n + 1) + u", x)";
        const AString rhs = AString(u"2*") + i18n::MakeNumberString(n) + u"/x*" + k + u"(" +
                            i18n::MakeNumberString(n) + u", x)";
        mX = x;
        SCOPED_TRACE(sum.TStr());
        EXPECT_TRUE(Near(Real(sum), Real(rhs), 1e-10));
      }
    }
  }
}

TEST_F(FunctionLibraryTest, PiecewiseFunctionsInterpolateADataset) {
  const AString ds = u"dataset((0, 0), (1, 10), (3, 30))";
  const struct {
    const char16_t* function;
    double x;
    double expected;
  } cases[] = {
      {u"pwl", 0.5, 5},          {u"pwl", 2, 20},
      {u"pwl", -1, 0},           {u"pwl", 5, 30},
      {u"pwl", 3, 30},           {u"pwlx", 5, 50},
      {u"pwlx", -1, -10},        {u"pwlx", 2, 20},
      {u"pwl_periodic", 3.5, 5}, {u"pwl_periodic", -0.5, 25},
      {u"pwl_periodic", 3, 0},   {u"pwl_periodic", 1e300, kNaN},
      {u"pwc", 0.99, 0},         {u"pwc", 1, 10},
      {u"pwc", -5, 0},           {u"pwc", 7, 30},
      {u"pwl", kInf, 30},        {u"pwlx", kInf, kInf},
      {u"pwc", kNaN, kNaN},
  };
  for (const auto& c : cases) {
    mX = c.x;
    const AString text = AString(c.function) + u"(" + ds + u", x)";
    SCOPED_TRACE(text.TStr() + std::string(" at ") + std::to_string(c.x));
    const double value = Real(text);
    if (c.x == 1e300) {
      // A huge x wraps to some point of the period: a value of the curve, not a failure.
      EXPECT_TRUE(value >= 0 && value <= 30) << value;
    } else {
      EXPECT_TRUE(Near(value, c.expected));
    }
  }
  // Unsorted points are sorted; at a step the later point holds; empty and single-point sets.
  EXPECT_TRUE(Near(Real(u"pwl(dataset((3, 30), (0, 0), (1, 10)), 2)"), 20));
  EXPECT_TRUE(Near(Real(u"pwl(dataset((0, 0), (1, 5), (1, 10), (2, 10)), 1)"), 10));
  EXPECT_TRUE(Near(Real(u"pwc(dataset((0, 0), (1, 5), (1, 10)), 1)"), 10));
  EXPECT_TRUE(Near(Real(u"pwl(dataset(), 1)"), kNaN));
  EXPECT_TRUE(Near(Real(u"pwlx(dataset((2, 7)), -100)"), 7));
  EXPECT_TRUE(Near(Real(u"pwl_periodic(dataset((2, 7)), 5)"), 7));
}

TEST_F(FunctionLibraryTest, PiecewiseFunctionsRunOutsideAnEvaluation) {
  // The newer form through Function::Calculate: a dataset value and a number as arguments.
  const DatasetValue points(geom::Dataset({0, 1, 3}, {0, 10, 30}, Units::NoUnits, Fut(u"V")));
  const std::vector<ValueState> states{
      ValueState(Fut(u"V"), Units::Voltage, val::kDBAmplitude, val::kDatasetParam),
      ValueState(Units::NoUnits, Units::NoUnit, val::kDBAmplitude, val::kDoubleParam)};
  const struct {
    const char16_t* name;
    double x;
    double expected;
  } cases[] = {{u"pwl", 2, 20}, {u"pwlx", 4, 40}, {u"pwl_periodic", 4, 10}, {u"pwc", 2.5, 10}};
  for (const auto& c : cases) {
    SCOPED_TRACE(AString(c.name).TStr());
    int error = -1;
    const Function* f = Value::GetFunction(c.name, 2, states, error);
    ASSERT_NE(f, nullptr);
    EXPECT_EQ(f->GetResultType(states).mUnits, Fut(u"V"));
    const FloatValue x(c.x);
    SimpleFunctionResult result;
    ASSERT_TRUE(f->Calculate(ValueFunctionArguments({&points, &x}), result));
    EXPECT_TRUE(Near(result.GetDouble(), c.expected));
  }
}

// ---- Complex values ----------------------------------------------------------------------------

TEST_F(FunctionLibraryTest, ComplexOverloadsMatchStdComplex) {
  const C z(0.3, -1.2);
  const C w(1.5, 0.25);
  mX = 0.0;
  const struct {
    const char16_t* text;
    C expected;
  } cases[] = {
      {u"tan(0.3-1.2j)", std::tan(z)},
      {u"asin(0.3-1.2j)", std::asin(z)},
      {u"acos(0.3-1.2j)", std::acos(z)},
      {u"atan(0.3-1.2j)", std::atan(z)},
      {u"sinh(0.3-1.2j)", std::sinh(z)},
      {u"cosh(0.3-1.2j)", std::cosh(z)},
      {u"tanh(0.3-1.2j)", std::tanh(z)},
      {u"asinh(0.3-1.2j)", std::asinh(z)},
      {u"acosh(0.3-1.2j)", std::acosh(z)},
      {u"atanh(0.3-1.2j)", std::atanh(z)},
      {u"ln(0.3-1.2j)", std::log(z)},
      {u"log(0.3-1.2j)", std::log(z)},
      {u"log10(0.3-1.2j)", std::log10(z)},
      {u"sqrt(0.3-1.2j)", std::sqrt(z)},
      {u"sqr(0.3-1.2j)", z * z},
      {u"pow(0.3-1.2j, 1.5+0.25j)", std::pow(z, w)},
      {u"root(0.3-1.2j, 1.5+0.25j)", std::pow(z, 1.0 / w)},
      {u"sgn(0.3-1.2j)", z / std::abs(z)},
      {u"conjg(0.3-1.2j)", std::conj(z)},
      {u"cmplx(3, 4)", C(3, 4)},
      {u"rect(-1, 2)", C(-1, 2)},
      {u"polar(2, 0.7)", std::polar(2.0, 0.7)},
      {u"if(1, 0.3-1.2j, 2)", z},
      {u"if(0, 0.3-1.2j, 2)", C(2, 0)},
      // Identities at the branch points and whole powers.
      {u"sqrt(-4+0j)", C(0, 2)},
      {u"ln(-1+0j)", C(0, kPi)},
      {u"pow(1j, 2)", C(-1, 0)},
      {u"pow(-2+0j, 3)", C(-8, 0)},
      {u"pow(2j, -1)", C(0, -0.5)},
      {u"asin(2+0j)", std::asin(C(2, 0))},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(AString(c.text).TStr());
    const C actual = Complex(c.text);
    EXPECT_TRUE(Near(actual.real(), c.expected.real(), 1e-13));
    EXPECT_TRUE(Near(actual.imag(), c.expected.imag(), 1e-13));
  }
  EXPECT_EQ(Complex(u"pow(1j, 2)").imag(), 0.0);  // exact: no residue from exp/log
}

// ---- Domain edges ------------------------------------------------------------------------------

TEST_F(FunctionLibraryTest, OutsideTheDomainGivesNaNOrTheLimit) {
  const struct {
    const char16_t* text;
    double expected;
  } cases[] = {
      {u"log(0)", -kInf},        {u"ln(-1)", kNaN},       {u"log10(-1)", kNaN},
      {u"sqrt(-4)", kNaN},       {u"asin(2)", kNaN},      {u"acos(-1.5)", kNaN},
      {u"acosh(0.5)", kNaN},     {u"atanh(1)", kInf},     {u"atanh(3)", kNaN},
      {u"pow(-8, 1/3)", kNaN},   {u"root(-16, 2)", kNaN}, {u"root(5, 0)", kNaN},
      {u"mod(7, 0)", kNaN},      {u"fmod(1/0, 2)", kNaN}, {u"rem(1, 0)", kNaN},
      {u"even(0/0)", kNaN},      {u"odd(1/0)", kNaN},     {u"max(1, 0/0)", kNaN},
      {u"min2(0/0, 1)", kNaN},   {u"sgn(0/0)", kNaN},     {u"dB(0)", -kInf},
      {u"dBm(0/0)", kNaN},       {u"y0(0)", -kInf},       {u"y1(-1)", kNaN},
      {u"yn(2, -1)", kNaN},      {u"jn(2.5, 1)", kNaN},   {u"jn(1e9, 1)", kNaN},
      {u"exp(1000)", kInf},      {u"sinh(1000)", kInf},   {u"tanh(1000)", 1.0},
      {u"atan(1e308)", kPi / 2}, {u"ang(0/0)", kNaN},     {u"log(1e-320)", std::log(1e-320)},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(AString(c.text).TStr());
    EXPECT_TRUE(Near(Real(c.text), c.expected));
  }
  // Huge arguments stay in range.
  for (const char16_t* text : {u"sin(1e300)", u"cos(-1e300)", u"j0(1e300)", u"y1(1e300)"}) {
    SCOPED_TRACE(AString(text).TStr());
    const double v = Real(text);
    EXPECT_TRUE(std::isfinite(v) && std::fabs(v) <= 1.0) << v;
  }
  const double m = Real(u"mod(1e300, 3)");
  EXPECT_TRUE(m >= 0.0 && m < 3.0) << m;
}

// ---- Units -------------------------------------------------------------------------------------

TEST_F(FunctionLibraryTest, ResultsCarryUnitsByTheirRule) {
  const struct {
    const char16_t* text;
    double value;           // SI
    const char16_t* units;  // nullptr: no units
  } cases[] = {
      {u"sqrt(4mm2)", 0.002, u"mm"},
      {u"sqrt(9in2)", 3 * 0.0254, u"in"},
      {u"sqrt(4mm*1mm)", 0.002, nullptr},  // the parser drops the units of the product
      {u"sqrt(4V)", 2.0, nullptr},
      {u"sqr(3mm)", 9e-6, u"mm2"},
      {u"abs(-3mm)", 0.003, u"mm"},
      {u"max(1mm, 2mm)", 0.002, u"mm"},
      {u"max(1mm, 2)", 2.0, u"mm"},
      {u"min(2, 1mm)", 0.001, u"mm"},
      {u"max(1mm, 2mm, 3mm)", 0.003, u"mm"},
      {u"if(1, 2mm, 3mm)", 0.002, u"mm"},
      {u"if(0, 2, 3V)", 3.0, u"V"},
      {u"sin(30deg)", 0.5, nullptr},
      {u"re(3mm)", 0.003, u"mm"},
      {u"int(3.7mm)", 0.0, u"mm"},
      {u"mod(7mm, 3mm)", 0.001, u"mm"},
      {u"mag((3+4j)*1V)", 5.0, u"V"},
      {u"cmplx(3V, 4V)", 3.0, u"V"},
      {u"ang(1j)", kPi / 2, u"deg"},
      {u"ang_rad(1j)", kPi / 2, u"rad"},
      {u"ang_deg_val(1j)", 90.0, nullptr},
      {u"dBm(1mW)", 0.0, nullptr},
      {u"degel(10deg, 2)", 20 * kPi / 180, u"deg"},
      {u"pwl(dataset((0, 0V), (1, 10V)), 0.5)", 5.0, u"V"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(AString(c.text).TStr());
    auto value = Parse(c.text);
    ASSERT_NE(value, nullptr);
    EXPECT_TRUE(Near(value->GetValue(), c.value));
    EXPECT_EQ(value->GetUnits(), c.units != nullptr ? Fut(c.units) : Units::NoUnits);
  }
}

TEST_F(FunctionLibraryTest, ResultStatesFromTheLookup) {
  const ValueState mm(Fut(u"mm"), Units::Length, val::kDBAmplitude, val::kDoubleParam);
  const ValueState inch(Fut(u"in"), Units::Length, val::kDBAmplitude, val::kDoubleParam);
  const ValueState volt(Fut(u"V"), Units::Voltage, val::kDBAmplitude, val::kDoubleParam);
  const ValueState plain(Units::NoUnits, Units::NoUnit, val::kDBAmplitude, val::kDoubleParam);
  const auto result = [](const char16_t* name, std::vector<ValueState> states) {
    int error = -1;
    const Function* f = Value::GetFunction(name, static_cast<int>(states.size()), states, error);
    EXPECT_EQ(error, 0) << AString(name).TStr();
    return f != nullptr ? f->GetResultType(states) : ValueState();
  };
  // Same quantity at different scales: the default unit of the quantity.
  EXPECT_EQ(result(u"max", {mm, inch}).mUnits, Units::GetDefaultUnits(Units::Length));
  // Different quantities: a plain number marked as having dropped its units.
  const ValueState mixed = result(u"min", {mm, volt});
  EXPECT_EQ(mixed.mUnits, Units::NoUnits);
  EXPECT_EQ(mixed.mDBType, val::kDBUnknown);
  EXPECT_EQ(result(u"log", {mm}).mDBType, val::kDBUnknown);
  EXPECT_EQ(result(u"log", {plain}).mDBType, val::kDBAmplitude);
  EXPECT_EQ(result(u"pow", {volt, plain}).mUnits, Units::NoUnits);
  EXPECT_EQ(result(u"sqrt", {volt}).mDBType, val::kDBUnknown);
  EXPECT_EQ(result(u"dB", {volt}), plain);
  EXPECT_EQ(result(u"cmplx", {mm, mm}).mKind, val::kComplexParam);
  EXPECT_EQ(
      result(u"abs", {ValueState(Fut(u"mm"), Units::Length, val::kDBAmplitude, val::kComplexParam)})
          .mKind,
      val::kDoubleParam);
}

// ---- Lookup failures ---------------------------------------------------------------------------

TEST_F(FunctionLibraryTest, ArgumentsAFunctionCannotTakeFailTheLookup) {
  const struct {
    const char16_t* text;
    int code;
    const char16_t* message;
  } cases[] = {
      {u"j0(1+2j)", 24501, u"Function 'j0' does not take arguments of these kinds"},
      {u"mod(1j, 2)", 24501, u"Function 'mod' does not take arguments of these kinds"},
      {u"atan2(1, 1j)", 24501, u"Function 'atan2' does not take arguments of these kinds"},
      {u"if(1j, 1, 2)", 24501, u"Function 'if' does not take arguments of these kinds"},
      {u"jn(1)", 24500, u"Function 'jn' does not take 1 argument(s)"},
      {u"max(1)", 24500, u"Function 'max' does not take 1 argument(s)"},
      {u"min2(1, 2, 3)", 24500, u"Function 'min2' does not take 3 argument(s)"},
      {u"dBc(1, 2, 3)", 24500, u"Function 'dBc' does not take 3 argument(s)"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(AString(c.text).TStr());
    MessageCapture capture;
    ExpressionParser parser;
    int code = 0;
    try {
      delete parser.Parse(c.text);
    } catch (int thrown) {
      code = thrown;
    }
    EXPECT_EQ(code, c.code);
    ASSERT_EQ(capture.Messages().size(), 1u);
    ASSERT_FALSE(capture.Messages()[0].args.empty());
    EXPECT_NE(capture.Messages()[0].args[0].find(c.message), std::u16string::npos)
        << AString(capture.Messages()[0].args[0]).TStr();
  }
}

TEST(FunctionLibraryLookup, GetFunctionFailsWithTheMessageCode) {
  const ValueState real(Units::NoUnits, Units::NoUnit, val::kDBAmplitude, val::kDoubleParam);
  const ValueState complex(Units::NoUnits, Units::NoUnit, val::kDBAmplitude, val::kComplexParam);
  const struct {
    const char16_t* name;
    std::vector<ValueState> states;
    int code;
  } cases[] = {
      {u"nosuchfunction", {real}, 24499}, {u"jn", {real}, 24500},
      {u"yn", {real, complex}, 24501},    {u"even", {complex}, 24501},
      {u"pwl", {real, real}, 24501},      {u"LOG10", {complex}, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(AString(c.name).TStr());
    int error = -1;
    const Function* f =
        Value::GetFunction(c.name, static_cast<int>(c.states.size()), c.states, error);
    EXPECT_EQ(error, c.code);
    EXPECT_EQ(f != nullptr, c.code == 0);
  }
}

// ---- Required pairs ----------------------------------------------------------------------------

std::vector<const Function*> AllFunctions() {
  std::vector<AString> names;
  Value::GetAllFunctionNames(names);
  std::vector<const Function*> functions;
  for (const AString& name : names) Value::GetFunctions(name, functions);
  return functions;
}

TEST(FunctionLibraryPairs, TheBuiltInTableIsComplete) {
  CheckCapture checks;
  EXPECT_TRUE(functions::CheckRequiredFunctionPairs());
  EXPECT_TRUE(checks.None());
}

TEST(FunctionLibraryPairs, AnIncompletePairFiresItsCheck) {
  const struct {
    const char16_t* removed;
    val::ParameterType kind;
    int count;
    const char* check;
  } cases[] = {
      {u"log", val::kDoubleParam, 1, "One of ln and log taking double args are not defined"},
      {u"ln", val::kComplexParam, 1, "One of ln and log taking complex args are not defined"},
      {u"ang_deg", val::kDoubleParam, 1,
       "One of ang and ang_deg taking double args are not defined"},
      {u"ang", val::kComplexParam, 1, "One of ang and ang_deg taking complex args are not defined"},
      {u"min2", val::kDoubleParam, 2, "One of min2 and min taking two double args are not defined"},
      {u"max", val::kDoubleParam, 2, "One of max2 and max taking two double args are not defined"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.check);
    std::vector<const Function*> functions;
    for (const Function* f : AllFunctions()) {
      const bool drop = f->GetName() == AString(c.removed) && f->AcceptsArgumentCount(c.count) &&
                        f->GetParameters()[0].mKind == c.kind;
      if (!drop) functions.push_back(f);
    }
    CheckCapture checks;
    EXPECT_FALSE(functions::CheckRequiredFunctionPairs(functions));
    ASSERT_EQ(checks.Reports().size(), 1u);
    EXPECT_TRUE(checks.Fired(c.check));
  }
  CheckCapture checks;
  EXPECT_FALSE(functions::CheckRequiredFunctionPairs({}));
  EXPECT_EQ(checks.Reports().size(), 6u);
}

// ---- Derivatives -------------------------------------------------------------------------------

TEST_F(FunctionLibraryTest, DerivativesMatchCentralDifferences) {
  const struct {
    const char16_t* text;  // a function of x
    double x;
  } cases[] = {
      {u"tan(x)", 0.4},
      {u"asin(x)", 0.3},
      {u"acos(x)", -0.6},
      {u"atan(x)", 1.7},
      {u"atan2(x, 2)", 0.8},
      {u"atan2(1.5, x)", -0.9},
      {u"sinh(x)", 0.9},
      {u"cosh(x)", -1.1},
      {u"tanh(x)", 0.6},
      {u"asinh(x)", 2.2},
      {u"acosh(x)", 1.8},
      {u"atanh(x)", 0.35},
      {u"ln(x)", 2.5},
      {u"log(x*x)", 1.3},
      {u"log10(x)", 0.7},
      {u"sqrt(x)", 3.1},
      {u"sqr(x)", -1.4},
      {u"pow(x, 3)", 1.2},
      {u"pow(2, x)", 0.6},
      {u"pow(x, x)", 1.6},
      {u"root(x, 3)", 2.7},
      {u"root(-x, 3)", 2.7},
      {u"mod(7*x, 3)", 1.1},
      {u"fmod(-7*x, 3)", 1.1},
      {u"rem(7*x, 2)", 1.2},
      {u"mod(5, x)", 1.3},
      {u"sgn(x)*x", -2.0},
      {u"int(x) + x", 2.3},
      {u"nint(x)*x", 2.3},
      {u"even(x) + odd(x)*x", 3.2},
      {u"max(x, 1)", 2.0},
      {u"min(x*x, 2, 3*x)", 0.5},
      {u"max2(x, -x)", -1.5},
      {u"min2(x, 2)", 0.5},
      {u"if(x > 1, x*x, -x)", 1.5},
      {u"if(x > 1, x*x, -x)", 0.5},
      {u"re(x*(1+2j))", 0.8},
      {u"im(x*(1+2j))", 0.8},
      {u"mag(x + 2j)", 0.7},
      {u"mag(-x)", 0.7},
      {u"ang_rad(x + 1j)", 0.4},
      {u"arg(1 + x*1j)", -0.4},
      {u"ang_deg_val(x - 2j)", 1.2},
      {u"re(conjg(x*x + x*1j))", 0.9},
      {u"im(conjg(x*x + x*1j))", 0.9},
      {u"im(cmplx(x, x*x))", 1.3},
      {u"re(polar(x, x))", 0.9},
      {u"im(polar(2, x))", 0.9},
      {u"re(rect(x*x, 1))", 0.9},
      {u"dB(x)", 0.3},
      {u"dB10(-x)", 0.3},
      {u"dBm(x)", 2.0},
      {u"dBW(x)", 2.0},
      {u"dBu(x)", 2.0},
      {u"dBc(x)", 2.0},
      {u"dBc(x, x*x)", 1.7},
      {u"dB(x + 1j)", 0.6},
      {u"dB20(x)", 5.0},
      {u"j0(x)", 1.3},
      {u"j1(x)", 2.4},
      {u"jn(3, x)", 4.1},
      {u"y0(x)", 1.3},
      {u"y1(x)", 2.4},
      {u"yn(2, x)", 3.3},
      {u"jn(-2, x)", 0.9},
      {u"degel(x, 3)", 0.2},
      {u"re(sqrt(x + 1j))", 0.5},
      {u"im(ln(x + 1j))", 0.5},
      {u"re(tan(x + 0.5j))", 0.3},
      {u"im(asinh(x*(1+1j)))", 0.3},
      {u"re(pow(x + 1j, 2.5))", 0.7},
      {u"mag(sgn(x + 1j))*x", 0.7},
      {u"re(if(1, x*(1+1j), 2j))", 0.3},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(AString(c.text).TStr() + std::string(" at ") + std::to_string(c.x));
    auto f = Parse(c.text);
    ASSERT_NE(f, nullptr);
    const double h = 1e-4 * std::max(1.0, std::fabs(c.x));
    const auto at = [&](double x) {
      mX = x;
      return f->GetValue();
    };
    const double minus = at(c.x - h), plus = at(c.x + h), centre = at(c.x);
    mX = c.x;
    const ADValue<double> d = f->GetDValue(2, mX);
    ASSERT_EQ(d.Order(), 2);
    EXPECT_TRUE(Near(d.Derivative(0), centre, 1e-13));
    const double first = (plus - minus) / (2 * h);
    const double second = (plus - 2 * centre + minus) / (h * h);
    EXPECT_TRUE(Near(d.Derivative(1), first, 1e-6));
    EXPECT_TRUE(Near(d.Derivative(2), second, 2e-4));
  }
}

TEST_F(FunctionLibraryTest, HigherBesselDerivativesFollowTheDifferentialEquation) {
  // x^2 y'' + x y' + (x^2 - n^2) y = 0 for y = C_n(x), to third order through the series.
  for (const char16_t* text : {u"jn(3, x)", u"yn(2, x)", u"j0(x)", u"y1(x)"}) {
    const double n = AString(text) == u"j0(x)"      ? 0
                     : AString(text) == u"y1(x)"    ? 1
                     : AString(text) == u"jn(3, x)" ? 3
                                                    : 2;
    auto f = Parse(text);
    ASSERT_NE(f, nullptr);
    const double x = 2.3;
    mX = x;
    const ADValue<double> d = f->GetDValue(3, mX);
    SCOPED_TRACE(AString(text).TStr());
    EXPECT_NEAR(x * x * d.Derivative(2) + x * d.Derivative(1) + (x * x - n * n) * d.Derivative(0),
                0.0, 1e-12);
    // Differentiated once more: x^2 y''' + 3x y'' + (x^2 + 1 - n^2) y' + 2x y = 0.
    EXPECT_NEAR(x * x * d.Derivative(3) + 3 * x * d.Derivative(2) +
                    (x * x + 1 - n * n) * d.Derivative(1) + 2 * x * d.Derivative(0),
                0.0, 1e-12);
  }
}

// ---- Names and argument counts -----------------------------------------------------------------

// The "| `name` | counts |" rows of the table under "## Summary" in docs/functions.md.
std::map<std::string, std::string> DocumentedCounts() {
  std::ifstream in(std::string(WYCORE_SOURCE_DIR) + "/docs/functions.md");
  std::map<std::string, std::string> rows;
  std::string line;
  bool inSummary = false;
  while (std::getline(in, line)) {
    if (line.rfind("## ", 0) == 0) inSummary = line == "## Summary";
    if (!inSummary || line.rfind("| `", 0) != 0) continue;
    const auto nameEnd = line.find('`', 3);
    const auto cellEnd = line.find('|', nameEnd);
    const auto countEnd = line.find('|', cellEnd + 1);
    if (nameEnd == std::string::npos || countEnd == std::string::npos) continue;
    std::string counts = line.substr(cellEnd + 1, countEnd - cellEnd - 1);
    counts.erase(0, counts.find_first_not_of(' '));
    counts.erase(counts.find_last_not_of(' ') + 1);
    rows.emplace(line.substr(3, nameEnd - 3), counts);
  }
  return rows;
}

TEST(FunctionLibraryNames, EveryScalarNameExistsWithItsDocumentedCounts) {
  static const char* const kScalarNames[] = {
      "abs",   "acos",  "acosh", "ang",   "ang_deg", "ang_rad", "ang_deg_val", "asin",
      "asinh", "atan",  "atan2", "atanh", "cmplx",   "cos",     "cosh",        "dB",
      "dBc",   "dB10",  "dB20",  "dBm",   "dBu",     "dBW",     "even",        "exp",
      "if",    "im",    "int",   "j0",    "j1",      "jn",      "ln",          "log",
      "mag",   "log10", "max2",  "min2",  "max",     "min",     "mod",         "fmod",
      "nint",  "odd",   "polar", "pow",   "re",      "rect",    "rem",         "sgn",
      "sin",   "sinh",  "sqr",   "sqrt",  "tan",     "tanh",    "y0",          "y1",
      "yn",    "root",  "degel", "conjg", "arg",     "pwlx",    "pwl",         "pwl_periodic",
      "pwc"};
  const auto documented = DocumentedCounts();
  ASSERT_FALSE(documented.empty());
  std::set<std::string> listed(std::begin(kScalarNames), std::end(kScalarNames));
  for (const auto& [name, counts] : documented) {
    EXPECT_TRUE(listed.count(name) != 0) << name << " is documented but not in the list";
  }
  for (const char* name : kScalarNames) {
    SCOPED_TRACE(name);
    const AString wide(std::u16string(name, name + std::strlen(name)));
    EXPECT_TRUE(Value::FunctionExists(wide));
    const auto row = documented.find(name);
    ASSERT_NE(row, documented.end()) << "not documented";
    // "1", "1, 2" or "2 or more".
    std::set<int> counts;
    bool orMore = false;
    std::istringstream cells(row->second);
    std::string token;
    while (cells >> token) {
      if (token == "or") orMore = true;
      if (std::isdigit(static_cast<unsigned char>(token[0]))) counts.insert(std::stoi(token));
    }
    ASSERT_FALSE(counts.empty());
    std::vector<const Function*> overloads;
    Value::GetFunctions(wide, overloads);
    const auto accepts = [&overloads](int count) {
      for (const Function* f : overloads) {
        if (f->AcceptsArgumentCount(count)) return true;
      }
      return false;
    };
    const int top = orMore ? 8 : *counts.rbegin() + 1;
    for (int count = 0; count <= top; ++count) {
      const bool expected = counts.count(count) != 0 || (orMore && count >= *counts.begin());
      EXPECT_EQ(accepts(count), expected) << count << " arguments";
    }
  }
}

TEST(FunctionLibraryNames, DecibelsPartsAndAnglesAreConversionFunctions) {
  std::vector<AString> names;
  Value::GetConversionFunctionNames(names);
  const std::set<AString> conversions(names.begin(), names.end());
  for (const char16_t* name : {u"dB", u"dB10", u"dB20", u"dBm", u"dBW", u"dBu", u"dBc", u"re",
                               u"im", u"mag", u"ang", u"ang_deg", u"ang_rad", u"ang_deg_val"}) {
    EXPECT_EQ(conversions.count(AString(name)), 1u) << AString(name).TStr();
  }
  EXPECT_EQ(conversions.count(AString(u"sin")), 0u);
}

}  // namespace
}  // namespace wycore::test
