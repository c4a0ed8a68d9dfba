// SPDX-License-Identifier: Apache-2.0
//
// ExpressionTest.cpp - an Expression as a value: evaluated results, references to variables and
// change notification, copies, equality, substitution, and text to value through
// Value::CreateValueBase.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "support/Capture.h"
#include "wycore/units/UnitDefinition.h"
#include "wycore/value/ComplexValue.h"
#include "wycore/value/DoubleArrayValue.h"
#include "wycore/value/Expression.h"
#include "wycore/value/ExpressionParser.h"
#include "wycore/value/FloatValue.h"
#include "wycore/value/StringArrayValue.h"
#include "wycore/value/Value.h"
#include "wycore/variables/Variable.h"
#include "wycore/variables/VariableNameSpace.h"

namespace {

using wycore::test::MessageCapture;

std::string Narrow(const AString& text) { return text.Serialize(i18n::kUtf8); }

Units::FullUnitType Fut(const char16_t* name) {
  const UnitDefinition* unit = Units::FindUnitDef(AString(name));
  return unit != nullptr ? unit->GetFullUnitType() : Units::NoUnits;
}

std::unique_ptr<Expression> Parse(const AString& text) {
  ExpressionParser parser;
  return std::unique_ptr<Expression>(parser.Parse(text));
}

// Counts the change notifications an owner hears.
class Listener : public IReceiver {
 public:
  bool Receive(const ReceiverMessage& message) override {
    if (message.kind == ReceiverMessage::kValueChanged) ++mChanges;
    return true;
  }
  int mChanges = 0;
};

class ExpressionTest : public ::testing::Test {
 protected:
  void SetUp() override {
    mNameSpace = std::make_unique<VariableNameSpace>();
    for (Variable* v : {&mX, &mY, &mArr, &mWords}) mNameSpace->AddVariable(v);
  }
  void TearDown() override { mNameSpace.reset(); }

  Variable mX{u"x", 2.0};
  Variable mY{u"y", 0.5, Fut(u"mm")};
  Variable mArr{u"arr", DoubleArrayValue({10.0, 20.0, 30.0})};
  Variable mWords{u"words", StringArrayValue({u"p", u"q"})};
  std::unique_ptr<VariableNameSpace> mNameSpace;
};

TEST_F(ExpressionTest, EvaluatesWithThePrecedenceOfTheLanguage) {
  struct Case {
    const char16_t* text;
    double value;
  };
  const Case cases[] = {
      {u"-2^2", -4.0},     {u"2^-1", 0.5},      {u"2^3^2", 64.0},
      {u"2**3", 8.0},      {u"1-(-2)", 3.0},    {u"1 + 2*3", 7.0},
      {u"(1 + 2)*3", 9.0}, {u"8/2/2", 2.0},     {u"2e+x", 4.0},
      {u"x*x - 1", 3.0},   {u"3mm", 0.003},     {u"1m + 3mm", 1.003},
      {u"1 < 2 < 3", 1.0}, {u"3 > 2 > 1", 0.0}, {u"1 && 0 || 1", 1.0},
      {u"!0", 1.0},        {u"!x", 0.0},        {u"x == 2", 1.0},
      {u"arr[1]", 20.0},   {u"arr[x]", 30.0},   {u"arr[arr[0]/10 - 1]", 10.0},
      {u"-x^2", -4.0},     {u"2*-x", -4.0},     {u"-(-x)", 2.0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(Narrow(c.text));
    auto e = Parse(c.text);
    EXPECT_DOUBLE_EQ(e->GetValue(), c.value);
  }
}

TEST_F(ExpressionTest, ComplexResults) {
  auto e = Parse(u"1 + 3j");
  EXPECT_EQ(e->GetParameterType(), val::kComplexParam);
  EXPECT_EQ(e->GetComplexValue(), AComplex<double>(1.0, 3.0));
  EXPECT_EQ(e->GetValue(), 1.0);  // the real part
  auto product = Parse(u"(1 + 2j)*(1 - 2j)");
  EXPECT_EQ(product->GetComplexValue(), AComplex<double>(5.0, 0.0));
}

TEST_F(ExpressionTest, ReadsVariablesAtEveryEvaluation) {
  auto e = Parse(u"x + 1");
  EXPECT_EQ(e->GetValue(), 3.0);
  mX = 10.0;
  EXPECT_EQ(e->GetValue(), 11.0);
  EXPECT_FALSE(e->IsConstant());
  EXPECT_TRUE(Parse(u"pi*2 + 1")->IsConstant());
  std::vector<const Variable*> read;
  Parse(u"x + y*x")->GetReferencedVariables(read);
  EXPECT_EQ(read, (std::vector<const Variable*>{&mX, &mY, &mX}));
}

TEST_F(ExpressionTest, AVariableCannotComeToDependOnItselfThroughExpressions) {
  MessageCapture messages;
  Variable b(u"b", 1.0);
  Variable a(u"a", 0.0);
  VariableNameSpace names;
  names.AddVariable(&a);
  names.AddVariable(&b);
  ASSERT_TRUE(a.SetVariableText(u"b+1", Units::NoUnits));
  EXPECT_EQ(a.GetValue(), 2.0);
  EXPECT_FALSE(b.SetVariableText(u"a*2", Units::NoUnits));
  EXPECT_TRUE(messages.Posted(24540));
  EXPECT_EQ(b.GetValue(), 1.0);
  EXPECT_FALSE(a.SetVariableText(u"a + 1", Units::NoUnits));
}

TEST_F(ExpressionTest, ChangesOfReadVariablesReachTheOwners) {
  Listener listener;
  auto e = Parse(u"x*2");
  e->AddRef(&listener);
  mX = 4.0;
  EXPECT_EQ(listener.mChanges, 1);
  EXPECT_EQ(e->GetValue(), 8.0);
  e->Release(&listener);
  mX = 5.0;
  EXPECT_EQ(listener.mChanges, 1);
  // The expression objects to the deletion of a variable it reads.
  EXPECT_FALSE(mX.OKtoDelete());
  e.reset();
  EXPECT_TRUE(mX.OKtoDelete());
}

TEST_F(ExpressionTest, ARenamedVariableShowsInTheRegeneratedText) {
  auto e = Parse(u"x+1");
  const AString before = e->GetValueText();
  EXPECT_NE(before.find(u"x"), AString::npos);
  ASSERT_TRUE(mX.ChangeNameRegenerateExpressions(u"speed"));
  EXPECT_NE(e->GetValueText().find(u"speed"), AString::npos);
  mX.ChangeNameRegenerateExpressions(u"x");
}

TEST_F(ExpressionTest, CopiesAreIndependentAndRegisterAnew) {
  auto e = Parse(u"x + 1");
  std::unique_ptr<ValueBase> copy(e->CloneValueBase());
  e.reset();
  EXPECT_EQ(copy->GetValue(), 3.0);
  EXPECT_FALSE(mX.OKtoDelete());  // the copy reads x too
  copy.reset();
  EXPECT_TRUE(mX.OKtoDelete());
}

TEST_F(ExpressionTest, EqualityIsByValue) {
  auto e = Parse(u"1 + 1");
  EXPECT_TRUE(e->IsEqual(FloatValue(2.0)));
  EXPECT_TRUE(FloatValue(2.0).IsEqual(*e));
  EXPECT_TRUE(e->IsEqual(FloatValue(2.0 + 1e-15)));
  EXPECT_FALSE(e->IsEqual(FloatValue(2.0 + 1e-12)));
  EXPECT_TRUE(e->IsEqual(*Parse(u"x")));
  EXPECT_TRUE(Parse(u"2j")->IsEqual(ComplexValue(AComplex<double>(0.0, 2.0))));
  EXPECT_FALSE(Parse(u"0/0")->IsEqual(*Parse(u"0/0")));  // NaN equals nothing
}

TEST_F(ExpressionTest, SubstitutionReplacesVariablesByTheirCurrentValues) {
  auto e = Parse(u"x*3");
  EXPECT_EQ(Parse(u"2*3")->SubstituteVariables(), nullptr);
  std::unique_ptr<ValueBase> fixed(e->SubstituteVariables());
  ASSERT_NE(fixed, nullptr);
  EXPECT_TRUE(fixed->IsConstant());
  mX = 100.0;
  EXPECT_EQ(fixed->GetValue(), 6.0);
  EXPECT_EQ(e->GetValue(), 300.0);
  std::unique_ptr<ValueBase> evaluated(e->CreateEvaluatedValueBase());
  EXPECT_EQ(evaluated->GetParameterType(), val::kDoubleParam);
  EXPECT_EQ(evaluated->GetValue(), 300.0);
  std::unique_ptr<ValueBase> shifted(e->AddConstant(1.5));
  EXPECT_EQ(shifted->GetValue(), 301.5);
}

TEST_F(ExpressionTest, UnitsAndExplicitUnits) {
  auto e = Parse(u"y*2");
  EXPECT_EQ(e->GetUnits(), Fut(u"mm"));
  EXPECT_DOUBLE_EQ(e->GetValue(), 1.0);  // SI: y is 0.5 in SI with display units mm
  auto explicitUnits = Parse(u"(2+3) mm");
  EXPECT_EQ(explicitUnits->GetUnits(), Fut(u"mm"));
  EXPECT_DOUBLE_EQ(explicitUnits->GetValue(), 0.005);
  // The text reads back to the same expression.
  auto again = Parse(explicitUnits->GetValueText());
  EXPECT_EQ(again->GetExplicitUnits(), Fut(u"mm"));
  EXPECT_DOUBLE_EQ(again->GetValue(), 0.005);
  auto unitsError = Parse(u"1m + 2V");
  EXPECT_EQ(unitsError->GetUnits(), Units::NoUnits);
  EXPECT_EQ(unitsError->GetValue(), 3.0);
}

TEST_F(ExpressionTest, RegeneratedTextReadsBackToTheSameExpression) {
  const char16_t* texts[] = {u"x+1",    u"(x+1)*2", u"-2^2",           u"2^-1",       u"2^3^2",
                             u"1-(-x)", u"3mm + y", u"x<2 && !(x>=3)", u"arr[x-1]*2", u"sqrt(x)*2",
                             u"1 + 2j", u"-x^2",    u"(2+3) mm",       u"1.#INF"};
  for (const char16_t* text : texts) {
    SCOPED_TRACE(Narrow(text));
    auto first = Parse(text);
    const AString canonical = first->GetValueText();
    auto second = Parse(canonical);
    EXPECT_EQ(second->GetValueText(), canonical);
    // "a - -b" is written "a + b": same value, another stream.
    if (AString(text).find(u"-(-") == AString::npos) {
      EXPECT_EQ(second->GetOperations(), first->GetOperations());
    }
    const AComplex<double> a = first->GetComplexValue();
    const AComplex<double> b = second->GetComplexValue();
    EXPECT_TRUE(val::AreNumbersEqual(a, b)) << Narrow(canonical);
  }
  EXPECT_EQ(Parse(u"x+1")->GetValueText(), AString(u"x + 1"));
  EXPECT_EQ(Parse(u"(x+1)*2")->GetValueText(), AString(u"(x + 1)*2"));
}

TEST_F(ExpressionTest, StringArrayElementsAreStrings) {
  auto e = Parse(u"words[1]");
  EXPECT_EQ(e->GetParameterType(), val::kStringParam);
  EXPECT_EQ(e->GetStringValue(), AString(u"\"q\""));
}

TEST_F(ExpressionTest, CreateValueBaseParsesExpressions) {
  std::unique_ptr<ValueBase> number(Value::CreateValueBase(u"3mm", Units::NoUnits));
  ASSERT_NE(number, nullptr);
  EXPECT_NE(dynamic_cast<FloatValue*>(number.get()), nullptr);
  EXPECT_DOUBLE_EQ(number->GetValue(), 0.003);
  std::unique_ptr<ValueBase> expression(Value::CreateValueBase(u"2*x", Units::NoUnits));
  ASSERT_NE(dynamic_cast<Expression*>(expression.get()), nullptr);
  EXPECT_EQ(expression->GetValue(), 4.0);
  MessageCapture messages;
  EXPECT_EQ(Value::CreateValueBase(u"2*", Units::NoUnits), nullptr);
  EXPECT_TRUE(messages.Posted(24464));
  messages.Clear();
  EXPECT_FALSE(Value::IsValidText(u"1 +"));
  EXPECT_TRUE(Value::IsValidText(u"sqrt(4) + x"));
  EXPECT_FALSE(messages.Posted(24464));
  Value value(u"x/4", Units::NoUnits);
  EXPECT_EQ(value.GetValue(), 0.5);
}

}  // namespace
