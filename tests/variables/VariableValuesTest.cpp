// SPDX-License-Identifier: Apache-2.0
//
// VariableValuesTest.cpp - assignments: their order, comparisons with tolerances, evaluation at
// the assignment, and applying them (parameter passing, contexts, restorers).
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <set>

#include "support/Capture.h"
#include "wycore/value/ComplexValue.h"
#include "wycore/value/FloatValue.h"
#include "wycore/value/IntValue.h"
#include "wycore/value/StringValue.h"
#include "wycore/value/Value.h"
#include "wycore/variables/Variable.h"
#include "wycore/variables/VariableNameSpace.h"
#include "wycore/variables/VariableValues.h"
#include "wycore/variables/VariableValuesContext.h"

namespace wycore::test {
namespace {

using CR = VariableValues::CompareResult;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

// A value from the text values write (lists, geometry, ...).
Value Read(const char16_t* text) {
  return Value(Value::ReadValueText(AString(text), Units::NoUnits));
}

TEST(VariableValues, OrdersVariablesByNameWithoutCaseWhateverTheInsertionOrder) {
  Variable b(u"beta", 1.0);
  Variable a(u"Alpha", 2.0);
  Variable c(u"gamma", 3.0);
  VariableValues first;
  first.AddVariableValue(&c, Value(3.0));
  first.AddVariableValue(&a, Value(2.0));
  first.AddVariableValue(&b, Value(1.0));
  const VariableValues second({&b, &c, &a});

  std::vector<AString> names;
  for (const auto& [variable, value] : first.GetVariableValueMap())
    names.push_back(variable->GetName());
  EXPECT_EQ(names, (std::vector<AString>{u"Alpha", u"beta", u"gamma"}));
  EXPECT_TRUE(first == second);
}

TEST(VariableValues, MapOperationsFindNamesWithoutCase) {
  Variable w(u"w", 1.0);
  Variable h(u"h", 2.0);
  VariableValues values({&w});
  EXPECT_FALSE(values.AddVariableValue(&w, Value(5.0)));  // present: unchanged
  EXPECT_EQ(values.GetVariableValue(&w).GetValue(), 1.0);
  EXPECT_TRUE(values.SetVariableValue(AString(u"W"), Value(7.0)));
  EXPECT_EQ(values.GetVariableValue(AString(u"w")).GetValue(), 7.0);
  EXPECT_FALSE(values.SetVariableValue(AString(u"h"), Value(1.0)));
  EXPECT_FALSE(values.AddVariableValue(nullptr, Value(1.0)));
  EXPECT_EQ(values.GetVariable(AString(u"W")), &w);
  EXPECT_EQ(values.GetVariable(AString(u"x")), nullptr);
  EXPECT_FALSE(values.DoesVariableExist(&h));
  EXPECT_EQ(values.GetVariableValue(&h).GetValue(), 0.0);  // absent: 0 without units
  values.CopyVarValuesFrom({&h, &w});
  EXPECT_EQ(values.size(), 2u);
  EXPECT_EQ(values.GetVariableValue(&w).GetValue(), 1.0);  // the current value again
  EXPECT_TRUE(values.RemoveVariableValue(&h));
  EXPECT_FALSE(values.RemoveVariableValue(&h));
  EXPECT_FALSE(values.DoesVariableExist(AString(u"H")));
}

TEST(VariableValues, ComparesComplexNumbersWithAbsoluteAndRelativeTolerances) {
  struct Case {
    AComplex<double> a, b, absolute, relative;
    CR expected;
  } const cases[] = {
      {{1.0, 0}, {1.0 + 1e-15, 0}, {0, 0}, {1e-14, 1e-14}, VariableValues::kEqual},
      {{1.0, 0}, {1.0 + 1e-13, 0}, {0, 0}, {1e-14, 1e-14}, VariableValues::kLess},
      {{1.0, 0}, {1.001, 0}, {0, 0}, {1e-3, 0}, VariableValues::kEqual},
      {{1.0, 0}, {1.0011, 0}, {0, 0}, {1e-3, 0}, VariableValues::kLess},
      {{0.0, 0}, {1e-9, 0}, {1e-9, 0}, {0, 0}, VariableValues::kEqual},
      {{0.0, 0}, {2e-9, 0}, {1e-9, 0}, {0, 0}, VariableValues::kLess},
      {{2.0, 0}, {1.0, 0}, {0, 0}, {0, 0}, VariableValues::kGreater},
      // The imaginary part decides only when the real parts are equal, with its own tolerance.
      {{1.0, 5.0}, {1.0, 5.5}, {0, 1.0}, {0, 0}, VariableValues::kEqual},
      {{1.0, 5.0}, {1.0, 5.5}, {1.0, 0}, {0, 0}, VariableValues::kLess},
      {{1.0, 9.0}, {2.0, 0.0}, {0, 0}, {0, 0}, VariableValues::kLess},
      {{kNaN, 0}, {kNaN, 0}, {0, 0}, {0, 0}, VariableValues::kEqual},
      {{kNaN, 0}, {kInf, 0}, {0, 0}, {0, 0}, VariableValues::kGreater},
      {{kInf, 0}, {kInf, 0}, {0, 0}, {0, 0}, VariableValues::kEqual},
      {{-kInf, 0}, {-1e308, 0}, {kInf, 0}, {0, 0}, VariableValues::kLess},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::Message() << c.a << " vs " << c.b);
    const VariableValueTolerances t{c.absolute, c.relative};
    EXPECT_EQ(VariableValues::CompareComplexNumbers(c.a, c.b, t), c.expected);
    EXPECT_EQ(VariableValues::CompareComplexNumbers(c.b, c.a, t), static_cast<CR>(-c.expected));
  }
}

TEST(VariableValues, ComparesValuesAcrossKinds) {
  struct Case {
    Value a, b;
    CR expected;
  } const cases[] = {
      {Value(IntValue(3)), Value(3.0), VariableValues::kEqual},
      {Value(AComplex<double>(3.0, 0.0)), Value(3.0), VariableValues::kEqual},
      {Value(2.0), Value(StringValue(u"\"a\"")), VariableValues::kLess},
      {Value(StringValue(u"\"a\"")), Value(StringValue(u"\"A\"")), VariableValues::kGreater},
      {Read(u"[1mm, 2mm]"), Read(u"[0.001, 0.002]"), VariableValues::kEqual},
      {Read(u"[1, 2]"), Read(u"[1, 2, 0]"), VariableValues::kLess},
      {Read(u"[\"a\", \"b\"]"), Read(u"[\"a\", \"c\"]"), VariableValues::kLess},
      {Read(u"Circle(1mm, 2mm, 3mm)"), Read(u"Circle(1mm, 2mm, 3mm)"), VariableValues::kEqual},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE((c.a.GetValueText() + u" vs " + c.b.GetValueText()).TStr());
    EXPECT_EQ(VariableValues::ConstantCompare(c.a, c.b), c.expected);
    EXPECT_EQ(VariableValues::ConstantCompare(c.b, c.a), static_cast<CR>(-c.expected));
  }
}

TEST(VariableValues, CompareEvaluatesExpressionsAtTheCurrentValues) {
  Variable w(u"w", 2.0);
  const VariableNameSpace scope(&w, VariableNameSpace::kSearchIntrinsics,
                                VariableNameSpace::kAppendToPrevious);
  const Value expression(AString(u"w*3"), Units::NoUnits);
  ASSERT_FALSE(expression.IsConstant());
  EXPECT_EQ(VariableValues::Compare(expression, Value(6.0)), VariableValues::kEqual);
  w = 3.0;
  EXPECT_EQ(VariableValues::Compare(expression, Value(6.0)), VariableValues::kGreater);
}

TEST(VariableValues, AssignmentsCompareWithinToleranceAndSortInSets) {
  Variable w(u"w", 0.0);
  Variable h(u"h", 0.0);
  VariableValues a;
  a.SetVariableValue(&w, Value(1.0));
  a.SetVariableValue(&h, Value(2.0));
  VariableValues b = a;
  b.SetVariableValue(&h, Value(2.0 + 1e-9));

  EXPECT_FALSE(a == b);
  EXPECT_TRUE(a < b);
  EXPECT_FALSE(b < a);
  EXPECT_TRUE(a.AreAllVariableValuesEqual(b, {{1e-8, 0}, {0, 0}}));
  EXPECT_FALSE(a.AreAllVariableValuesEqual(b, {{1e-10, 0}, {0, 0}}));
  const CompareVariableValues tolerant({0, 0}, {1e-6, 0});
  EXPECT_EQ(tolerant.Compare(a, b), VariableValues::kEqual);
  EXPECT_FALSE(tolerant(a, b));

  VariableValues onlyW;
  onlyW.SetVariableValue(&w, Value(100.0));
  std::set<VariableValues, LessVariableValues> sweep{b, a, onlyW, a};
  ASSERT_EQ(sweep.size(), 3u);
  EXPECT_TRUE(*sweep.begin() == onlyW);  // fewer variables first
  EXPECT_TRUE(*std::next(sweep.begin()) == a);
  std::set<VariableValues, CompareVariableValues> merged({a, b}, tolerant);
  EXPECT_EQ(merged.size(), 1u);
}

TEST(VariableValues, ConvertsToConstantValuesAtTheAssignment) {
  Variable w(u"w", 1.0);
  Variable h(u"h", 0.0);
  const VariableNameSpace scope(&w, VariableNameSpace::kSearchIntrinsics,
                                VariableNameSpace::kAppendToPrevious);
  VariableValues values;
  values.SetVariableValue(&w, Value(5.0));
  values.SetVariableValue(&h, Value(AString(u"w*2"), Units::NoUnits));

  VariableValues constants;
  values.ConvertToConstantValues(constants);
  EXPECT_TRUE(constants.GetVariableValue(&h).IsConstant());
  EXPECT_EQ(constants.GetVariableValue(&h).GetValue(), 10.0);  // w at 5, not its own 1
  EXPECT_FALSE(values.GetVariableValue(&h).IsConstant());
  EXPECT_EQ(w.GetValue(), 1.0);  // the variables are left as they were

  values.EvaluateDependentValues();
  EXPECT_TRUE(values.GetVariableValue(&h).IsConstant());
  EXPECT_EQ(values.GetVariableValue(&h).GetValue(), 10.0);
}

TEST(VariableValues, PassParametersSwapsAndUnpassRestores) {
  Variable w(u"w", 1.0);
  VariableValues values;
  values.SetVariableValue(&w, Value(4.0));
  values.PassParameters();
  EXPECT_EQ(w.GetValue(), 4.0);
  EXPECT_EQ(values.GetVariableValue(&w).GetValue(), 1.0);
  {
    CheckCapture checks;
    values.PassParameters();
    EXPECT_TRUE(checks.Fired("mParametersPassed == false"));
  }
  values.UnpassParameters();
  EXPECT_EQ(w.GetValue(), 1.0);
  EXPECT_EQ(values.GetVariableValue(&w).GetValue(), 4.0);

  EXPECT_TRUE(values.SetVariablesCurrentValue());
  EXPECT_EQ(w.GetValue(), 4.0);
}

TEST(VariableValuesContext, NestedContextsRestoreExactly) {
  Variable w(u"w", 1.0, Units::GetFullUnitType(AString(u"mm"), Units::Length));
  Variable h(u"h", 2.0);
  VariableValues outer;
  outer.SetVariableValue(&w, Value(10.0));
  outer.SetVariableValue(&h, Value(20.0));
  VariableValues inner;
  inner.SetVariableValue(&w, Value(100.0));
  {
    const VariableValuesContext first(outer);
    EXPECT_EQ(w.GetValue(), 10.0);
    {
      const VariableValuesContext second(inner);
      EXPECT_EQ(w.GetValue(), 100.0);  // the innermost wins
      EXPECT_EQ(h.GetValue(), 20.0);
    }
    EXPECT_EQ(w.GetValue(), 10.0);
    EXPECT_EQ(h.GetValue(), 20.0);
  }
  EXPECT_EQ(w.GetValue(), 1.0);
  EXPECT_EQ(w.GetUnits(), Units::GetFullUnitType(AString(u"mm"), Units::Length));
  EXPECT_EQ(h.GetValue(), 2.0);
}

TEST(VariableValuesContext, NonNestableContextSetsTheFlagAndRefusesNesting) {
  Variable w(u"w", 1.0);
  VariableValues values;
  values.SetVariableValue(&w, Value(2.0));
  EXPECT_FALSE(NonNestableVariableValuesContext::AreParametersPassed());
  {
    const NonNestableVariableValuesContext context(values);
    EXPECT_TRUE(NonNestableVariableValuesContext::AreParametersPassed());
    CheckCapture checks;
    {
      const NonNestableVariableValuesContext nested(values);
      EXPECT_TRUE(checks.Fired("!mParametersWerePassed"));
    }
    EXPECT_TRUE(NonNestableVariableValuesContext::AreParametersPassed());
    EXPECT_EQ(w.GetValue(), 2.0);
  }
  EXPECT_FALSE(NonNestableVariableValuesContext::AreParametersPassed());
  EXPECT_EQ(w.GetValue(), 1.0);
}

TEST(VariableValuesRestorer, PutsBackWhatWasChangedMeanwhile) {
  Variable w(u"w", 1.0);
  Variable h(u"h", AString(u"\"text\""), Units::NoUnits);
  {
    const VariableValuesRestorer restorer({&w, nullptr, &h});
    EXPECT_EQ(restorer.GetVariableValues().size(), 2u);
    w = 5.0;
    EXPECT_TRUE(h.SetVariableText(AString(u"3mm"), Units::NoUnits));
    EXPECT_EQ(w.GetValue(), 5.0);
  }
  EXPECT_EQ(w.GetValue(), 1.0);
  EXPECT_EQ(h.GetValueText(), u"\"text\"");
}

TEST(VariableValues, RecognisesItsConstantKey) {
  Variable w(u"w", 0.0);
  Variable h(u"h", 0.0);
  const VariableNameSpace scope(&w, VariableNameSpace::kSearchIntrinsics,
                                VariableNameSpace::kAppendToPrevious);
  VariableValues values;
  values.SetVariableValue(&w, Value(0.003));
  values.SetVariableValue(&h, Value(AString(u"2*w"), Units::NoUnits));
  const VariableValueTolerances exact;
  EXPECT_TRUE(values.IsEqualToConstantKey(AString(u"H='6mm' w='3mm'"), exact));
  EXPECT_TRUE(values.IsEqualToConstantKey(AString(u"h='0.006' w=0.003"), exact));
  EXPECT_FALSE(values.IsEqualToConstantKey(AString(u"h='6.1mm' w='3mm'"), exact));
  EXPECT_TRUE(values.IsEqualToConstantKey(AString(u"h='6.1mm' w='3mm'"), {{2e-4, 0}, {0, 0}}));
  EXPECT_FALSE(values.IsEqualToConstantKey(AString(u"w='3mm'"), exact));
  EXPECT_FALSE(values.IsEqualToConstantKey(AString(u"w='3mm' W='3mm'"), exact));
}

}  // namespace
}  // namespace wycore::test
