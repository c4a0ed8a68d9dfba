// SPDX-License-Identifier: Apache-2.0
//
// ValueBaseTest.cpp - the number equality and rounding of the value model, and the neutral
// answers every value class gives to the representations it does not have.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <memory>

#include "support/Capture.h"
#include "wycore/core/Utf.h"
#include "wycore/value/CharValue.h"
#include "wycore/value/ComplexValue.h"
#include "wycore/value/DatasetValue.h"
#include "wycore/value/DoubleArrayValue.h"
#include "wycore/value/EnumValue.h"
#include "wycore/value/FloatValue.h"
#include "wycore/value/GeometryValues.h"
#include "wycore/value/IntValue.h"
#include "wycore/value/MatrixValue.h"
#include "wycore/value/StringArrayValue.h"
#include "wycore/value/StringValue.h"
#include "wycore/value/ValueBase.h"
#include "wycore/variables/Variable.h"

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(ValueBase, NumberEqualityIsRelativeAndExactForNonFinite) {
  struct Case {
    double a, b;
    bool equal;
  } const cases[] = {
      {1.0, 1.0 + 1e-15, true},
      {1.0, 1.0 + 1e-13, false},
      {0.0, -0.0, true},
      {0.0, 1e-300, false},  // only two zeros are equal near zero
      {1e-300, 1e-300 * (1 + 1e-15), true},
      {-5e20, -5e20 * (1 - 5e-15), true},
      {-5e20, 5e20, false},
      {kNaN, kNaN, false},
      {kNaN, 1.0, false},
      {kInf, kInf, true},
      {-kInf, -kInf, true},
      {kInf, -kInf, false},
      {kInf, 1e308, false},
      {std::numeric_limits<double>::max(), std::numeric_limits<double>::max(), true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.a << " vs " << c.b);
    EXPECT_EQ(c.equal, val::AreNumbersEqual(c.a, c.b));
    EXPECT_EQ(c.equal, val::AreNumbersEqual(c.b, c.a));
    // FloatValue::IsEqual uses the same rule.
    EXPECT_EQ(c.equal, FloatValue(c.a).IsEqual(FloatValue(c.b)));
  }
  EXPECT_TRUE(val::AreNumbersEqual(AComplex<double>(1, 2), AComplex<double>(1, 2 + 1e-15)));
  EXPECT_FALSE(val::AreNumbersEqual(AComplex<double>(1, 2), AComplex<double>(1 + 1e-13, 2)));
}

TEST(ValueBase, IntValueRoundsHalfAwayFromZeroAndSaturates) {
  struct Case {
    double in;
    int out;
  } const cases[] = {
      {2.5, 3},
      {-2.5, -3},
      {2.4999, 2},
      {-0.5, -1},
      {0.49, 0},
      {1e12, INT_MAX},
      {-1e12, INT_MIN},
      {kInf, INT_MAX},
      {-kInf, INT_MIN},
      {kNaN, 0},
      {2147483646.5, INT_MAX},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.in);
    EXPECT_EQ(c.out, val::RoundToInt(c.in));
    EXPECT_EQ(c.out, FloatValue(c.in).GetIntValue());
  }
}

// What each class answers to every getter; "answers" lists the getters it has of its own.
TEST(ValueBase, EveryClassGivesNeutralAnswersItDoesNotHave) {
  const Units::FullUnitType mm = Units::GetFullUnitType(AString(u"mm"), Units::Length);
  TNT::Matrix<double> dm(2, 3, 1.5);
  TNT::Matrix<AComplex<double>> cm(1, 2, AComplex<double>(1, -1));
  T_2DMatrix<AString> sm(2, 2, AString(u"s"));
  geom::Dataset ds(mm, Units::NoUnits);
  ds.AddPoint(0.001, 2.0);
  ds.AddPoint(0.002, 3.0);

  struct Case {
    const char* name;
    std::shared_ptr<ValueBase> v;
    val::ParameterType kind;
    double value;  // GetValue
    int rows, cols;
    bool constant;
    Units::FullUnitType units;
    const char16_t* stringValue;
  };
  const Case cases[] = {
      {"float", std::make_shared<FloatValue>(0.0025, mm), val::kDoubleParam, 0.0025, 1, 1, true, mm,
       u"\"\""},
      {"complex", std::make_shared<ComplexValue>(AComplex<double>(2, 3)), val::kComplexParam, 2, 1,
       1, true, Units::NoUnits, u"\"\""},
      {"int", std::make_shared<IntValue>(-7), val::kIntParam, -7, 1, 1, true, Units::NoUnits,
       u"\"\""},
      {"char", std::make_shared<CharValue>('A'), val::kCharParam, 65, 1, 1, true, Units::NoUnits,
       u"\"\""},
      {"enum", std::make_shared<EnumValue>(4), val::kEnumParam, 4, 1, 1, true, Units::NoUnits,
       u"\"\""},
      {"double array", std::make_shared<DoubleArrayValue>(std::vector<double>{0.004, 5}, mm),
       val::kDoubleArrayParam, 0.004, 1, 2, false, mm, u"\"4mm\""},
      {"string array",
       std::make_shared<StringArrayValue>(std::vector<AString>{AString(u"3mm"), AString(u"x")}),
       val::kTextStringArrayParam, 0.003, 1, 2, false, Units::NoUnits, u"\"3mm\""},
      {"double matrix", std::make_shared<DoubleMatrixValue>(dm, mm), val::kDoubleMatrixParam, 0, 2,
       3, true, mm, u"\"\""},
      {"complex matrix", std::make_shared<ComplexMatrixValue>(cm), val::kComplexMatrixParam, 0, 1,
       2, true, Units::NoUnits, u"\"\""},
      {"string matrix", std::make_shared<StringMatrixValue>(sm), val::kStringMatrixParam, 0, 2, 2,
       true, Units::NoUnits, u"\"\""},
      {"circle", std::make_shared<CircleValue>(CircleParam{1, 2, 3}, mm), val::kCircleParam, 0, 1,
       1, true, mm, u"\"\""},
      {"arc", std::make_shared<ArcValue>(ArcParam{1, 2, 3, 0, 1}, mm), val::kArcParam, 0, 1, 1,
       true, mm, u"\"\""},
      {"region", std::make_shared<RegionValue>(RegionParam{{{0, 0}, {1, 0}, {0, 1}}}),
       val::kRegionParam, 0, 1, 1, true, Units::NoUnits, u"\"\""},
      {"dataset", std::make_shared<DatasetValue>(ds), val::kDatasetParam, 0, 2, 2, true,
       Units::NoUnits, u"\"\""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const ValueBase& v = *c.v;
    EXPECT_EQ(c.kind, v.GetParameterType());
    EXPECT_EQ(c.value, v.GetValue());
    EXPECT_EQ(AComplex<double>(c.value, c.kind == val::kComplexParam ? 3 : 0), v.GetComplexValue());
    EXPECT_EQ(val::RoundToInt(c.value), v.GetIntValue());
    EXPECT_EQ(c.kind == val::kCharParam ? 'A' : 0, v.GetCharValue());
    EXPECT_EQ(val::RoundToInt(c.value), v.GetEnumValue());
    EXPECT_EQ(AString(c.stringValue), v.GetStringValue());
    EXPECT_EQ((MatrixSizeInfo{c.rows, c.cols}), v.GetMatrixSize());
    EXPECT_EQ(c.constant, v.IsConstant());
    EXPECT_EQ(c.units, v.GetUnits());
    EXPECT_EQ(Units::NoUnits, v.GetExplicitUnits());
    EXPECT_EQ(-1, v.GetDatasetID());
    EXPECT_EQ(nullptr, v.GetDatasetServer());
    EXPECT_EQ(nullptr, v.SubstituteVariables());
    EXPECT_EQ(c.kind == val::kCircleParam ? 3.0 : 0.0, v.GetCircleParam().mRadius);
    EXPECT_EQ(c.kind == val::kArcParam ? 3.0 : 0.0, v.GetArcParam().mRadius);
    EXPECT_EQ(c.kind == val::kRegionParam ? 3u : 0u, v.GetRegionParam().mVertices.size());
    std::vector<const Variable*> refs;
    v.GetReferencedVariables(refs);
    EXPECT_TRUE(refs.empty());
    const bool numeric = c.kind == val::kDoubleParam || c.kind == val::kComplexParam;
    std::unique_ptr<ValueBase> shifted(v.AddConstant(1.0));
    EXPECT_EQ(numeric, shifted != nullptr);
    if (shifted) {
      EXPECT_EQ(c.value + 1.0, shifted->GetValue());
    }
    // Each value equals its clone and its evaluated form, and differs from every other case.
    std::unique_ptr<ValueBase> clone(v.CloneValueBase());
    std::unique_ptr<ValueBase> evaluated(v.CreateEvaluatedValueBase());
    EXPECT_TRUE(v.IsEqual(*clone));
    EXPECT_TRUE(clone->IsEqual(v));
    EXPECT_TRUE(v.IsEqual(*evaluated));
    for (const Case& other : cases) {
      if (&other != &c) {
        EXPECT_FALSE(v.IsEqual(*other.v)) << "vs " << other.name;
      }
    }
  }
}

TEST(ValueBase, MatrixAndListGettersOfEachClass) {
  FloatValue f(2.0);
  EXPECT_EQ(1, f.GetDoubleMatrixValue().num_rows());
  EXPECT_EQ(2.0, f.GetDoubleMatrixValue()[0][0]);
  EXPECT_EQ(0, f.GetComplexMatrixValue().num_rows());
  EXPECT_TRUE(f.GetDoubleArrayValue().empty());
  EXPECT_TRUE(f.GetStringArrayValue().empty());
  EXPECT_TRUE(f.GetStringMatrixValue().Empty());

  ComplexValue z(AComplex<double>(1, 2));
  EXPECT_EQ(AComplex<double>(1, 2), z.GetComplexMatrixValue()[0][0]);
  EXPECT_EQ(0, z.GetDoubleMatrixValue().num_rows());

  DoubleArrayValue a({1.0, 2.0, 3.0});
  EXPECT_EQ(3, a.GetDoubleMatrixValue().num_cols());
  EXPECT_EQ(AComplex<double>(3, 0), a.GetComplexMatrixValue()[0][2]);
  EXPECT_EQ((std::vector<AString>{u"1", u"2", u"3"}), a.GetStringArrayValue());
  EXPECT_EQ(AString(u"2"), a.GetStringMatrixValue()(0, 1));

  StringArrayValue s({AString(u"1.5"), AString(u"abc")});
  const std::vector<double> numbers = s.GetDoubleArrayValue();
  ASSERT_EQ(2u, numbers.size());
  EXPECT_EQ(1.5, numbers[0]);
  EXPECT_TRUE(std::isnan(numbers[1]));
  EXPECT_EQ(0.0, StringArrayValue().GetValue());
  EXPECT_EQ(0.0, DoubleArrayValue().GetValue());

  DoubleMatrixValue m(TNT::Matrix<double>(2, 2, 4.0));
  EXPECT_EQ(4.0, m.GetValue(1, 1));
  EXPECT_TRUE(std::isnan(m.GetValue(2, 0)));
  EXPECT_EQ(AString(), m.GetEntryText(-1, 0));
  EXPECT_EQ(AComplex<double>(4, 0), m.GetComplexMatrixValue()[1][0]);
  StringMatrixValue sm(T_2DMatrix<AString>(1, 2, AString(u"7mm")));
  EXPECT_DOUBLE_EQ(0.007, sm.GetValue(0, 1));
  EXPECT_EQ(AString(u"\"7mm\""), sm.GetEntryText(0, 0));
}

TEST(ValueBase, DerivativesOfConstantsAreZero) {
  // The variable is only the direction of differentiation; no constant reads it.
  const Variable anyVariable(AString(u"x"), 1.0);
  const ADValue<double> d = FloatValue(3.5).GetDValue(2, anyVariable);
  EXPECT_EQ(3.5, d.GetValue());
  EXPECT_EQ(2, d.Order());
  EXPECT_EQ(0.0, d.Derivative(1));
  EXPECT_EQ(0.0, d.Derivative(2));
  const ADValue<AComplex<double>> dz =
      ComplexValue(AComplex<double>(1, 2)).GetDComplexValue(1, anyVariable);
  EXPECT_EQ(AComplex<double>(1, 2), dz.GetValue());
  EXPECT_EQ(AComplex<double>(0, 0), dz.Derivative(1));
}

TEST(ValueBase, StringValueHasNoNumber) {
  StringValue s(AString(u"\"abc\""));
  wycore::test::CheckCapture checks;
  EXPECT_TRUE(std::isnan(s.GetValue()));
  ASSERT_EQ(1u, checks.Reports().size());
  EXPECT_EQ("Nonsensical impl of GetValue! Examine use context!!", checks.Reports()[0].text);
  checks.Clear();
  EXPECT_EQ(0, s.GetIntValue());  // through GetValue: NaN rounds to 0
  EXPECT_TRUE(checks.Fired("Nonsensical impl of GetValue! Examine use context!!"));
  EXPECT_EQ(AString(u"\"abc\""), s.GetStringValue());
  EXPECT_EQ(AString(u"\"abc\""), s.GetValueText());
}

TEST(ValueBase, StringValueEqualityIsExactAndOnlyWithStrings) {
  StringValue a(AString(u"\"abc\""));
  EXPECT_TRUE(a.IsEqual(StringValue(AString(u"\"abc\""))));
  EXPECT_FALSE(a.IsEqual(StringValue(AString(u"\"ABC\""))));
  EXPECT_FALSE(a.IsEqual(StringArrayValue({AString(u"abc")})));
  EXPECT_FALSE(FloatValue(1.0).IsEqual(a));  // and no check fires: a's GetValue is not asked
}

TEST(ValueBase, StringValueParse) {
  struct Case {
    const char16_t* text;
    const char16_t* result;  // null: not a literal
  } const cases[] = {
      {u"  \"abc\"  ", u"\"abc\""},
      {u"\"\"", u"\"\""},
      {u"\t\"a b\"\t", u"\"a b\""},
      {u"\"a\"b\"", u"\"a\"b\""},
      {u"\"", nullptr},
      {u"  \"  ", nullptr},
      {u"abc", nullptr},
      {u"\"abc", nullptr},
      {u"", nullptr},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(wycore::Utf16ToUtf8(AString(c.text)));
    std::unique_ptr<StringValue> v(StringValue::Parse(AString(c.text)));
    if (c.result == nullptr) {
      EXPECT_EQ(nullptr, v);
    } else {
      ASSERT_NE(nullptr, v);
      EXPECT_EQ(AString(c.result), v->GetStringValue());
    }
  }
  EXPECT_FALSE(StringValue::StartsAndEndsWithDblQuotes(AString(u" \"a\"")));
  EXPECT_EQ(AString(u"\"\""), StringValue::GetInvalidValue());
  EXPECT_EQ(AString(u"a\"b"), StringValue::Unquote(AString(u"\"a\"b\"")));
}

TEST(ValueBase, FloatValueComparesWithOtherNumericKinds) {
  EXPECT_TRUE(FloatValue(3.0).IsEqual(IntValue(3)));
  EXPECT_TRUE(FloatValue(4.0).IsEqual(EnumValue(4)));
  EXPECT_FALSE(FloatValue(3.0).IsEqual(ComplexValue(AComplex<double>(3, 0))));
  EXPECT_TRUE(ComplexValue(AComplex<double>(3, 0)).IsEqual(FloatValue(3.0)));
  EXPECT_FALSE(IntValue(3).IsEqual(FloatValue(3.0)));  // an integer equals integers only
}

}  // namespace
