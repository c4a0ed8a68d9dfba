// SPDX-License-Identifier: Apache-2.0
//
// ExpressionParserTest.cpp - the grammar, the operation streams, the unit rules and every parse
// error with its posted text.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "support/Capture.h"
#include "wycore/units/UnitDefinition.h"
#include "wycore/value/ComplexValue.h"
#include "wycore/value/DatasetValue.h"
#include "wycore/value/DoubleArrayValue.h"
#include "wycore/value/Expression.h"
#include "wycore/value/ExpressionParser.h"
#include "wycore/value/ExpressionParsingContext.h"
#include "wycore/value/FloatValue.h"
#include "wycore/value/StringArrayValue.h"
#include "wycore/value/Value.h"
#include "wycore/value/VariableReferenceValue.h"
#include "wycore/variables/Function.h"
#include "wycore/variables/ValueParser.h"
#include "wycore/variables/Variable.h"
#include "wycore/variables/VariableNameSpace.h"

namespace {

using wycore::test::CheckCapture;
using wycore::test::DebugCapture;
using wycore::test::MessageCapture;

std::string Narrow(const AString& text) { return text.Serialize(i18n::kUtf8); }

Units::FullUnitType Fut(const char16_t* name) {
  const UnitDefinition* unit = Units::FindUnitDef(AString(name));
  return unit != nullptr ? unit->GetFullUnitType() : Units::NoUnits;
}

// "max" of two reals (the function library registers its own; this one stands in only while
// it is absent) and "pair", a function of any two reals used for stream layouts.
void EnsureTestFunctions() {
  auto sum = [](const IFunctionArguments& a, IFunctionResult& r) {
    r.SetDoubleResult(a.GetDoubleArg(0) + a.GetDoubleArg(1));
    return true;
  };
  const std::vector<Function::Parameter> two = {{u"a", val::kDoubleParam},
                                                {u"b", val::kDoubleParam}};
  if (!Value::FunctionExists(u"max")) {
    Value::RegisterFunction(new Function(u"max", two, Function::ResultRule{}, sum));
  }
  if (!Value::FunctionExists(u"points")) {  // the number of points of a dataset
    Function::ResultRule rule;
    Value::RegisterFunction(
        new Function(u"points", {{u"data", val::kDatasetParam}}, rule,
                     [](const IFunctionArguments& a, IFunctionResult& r) {
                       const ValueBase* data = a.GetValueBaseArg(0);
                       r.SetDoubleResult(data != nullptr ? data->GetMatrixSize().mNumRows : -1.0);
                       return true;
                     }));
  }
  if (!Value::FunctionExists(u"pair")) {
    Function::ResultRule rule;
    rule.mUnitsFromArgument = 0;
    Value::RegisterFunction(new Function(u"pair", two, rule, sum));
  }
}

class ExpressionParserTest : public ::testing::Test {
 protected:
  void SetUp() override {
    EnsureTestFunctions();
    mNameSpace = std::make_unique<VariableNameSpace>();
    for (Variable* v : {&mX, &mLen, &mZ, &mArr, &mDotted, &mWords}) mNameSpace->AddVariable(v);
  }
  void TearDown() override { mNameSpace.reset(); }

  std::unique_ptr<Expression> Parse(const AString& text, bool explicitUnits = true,
                                    Units::FullUnitType units = Units::NoUnits) {
    ExpressionParser parser(explicitUnits);
    std::unique_ptr<Expression> e(parser.Parse(text, units));
    mUnitsError = parser.HasUnitsError();
    mNumberWithoutUnits = parser.HasNumberWithoutUnits();
    mNonConst = parser.HasAtLeastOneNonConstOrUnitedVariable();
    return e;
  }

  // The code thrown for `text` (0 when it parses) and the message posted for it.
  int ErrorOf(const AString& text, bool explicitUnits = true) {
    MessageCapture capture;
    ExpressionParser parser(explicitUnits);
    int out = -1;
    int thrown = 0;
    try {
      delete parser.Parse(text, Units::NoUnits, true, &out);
    } catch (int code) {
      thrown = code;
    }
    EXPECT_EQ(out, thrown);
    mPosted.clear();
    for (const auto& m : capture.Messages()) {
      EXPECT_EQ(m.code, 24464);
      mPosted = m.args.empty() ? std::u16string() : m.args[0];
    }
    EXPECT_EQ(thrown == 0, capture.Messages().empty());
    return thrown;
  }

  Variable mX{u"x", 2.0};
  Variable mLen{u"len", 0.004, Fut(u"mm")};
  Variable mZ{u"z", ComplexValue(AComplex<double>(1.0, 2.0))};
  Variable mArr{u"arr", DoubleArrayValue({1.0, 2.0, 3.0}, Fut(u"mm"))};
  Variable mDotted{u"a.b", 5.0};
  Variable mWords{u"words", StringArrayValue({u"\"p\"", u"\"q\""})};
  std::unique_ptr<VariableNameSpace> mNameSpace;
  std::u16string mPosted;
  bool mUnitsError = false;
  bool mNumberWithoutUnits = false;
  bool mNonConst = false;
};

std::vector<int> Codes(const Expression& e) {
  return std::vector<int>(e.GetOperations().begin(), e.GetOperations().end());
}

double Constant(const Expression& e, std::size_t i) { return e.GetValues().at(i)->GetValue(); }

TEST_F(ExpressionParserTest, StreamsFollowTheLayoutContract) {
  struct Case {
    const char16_t* text;
    std::vector<int> ops;
  };
  const Case cases[] = {
      {u"2", {36, 1, 37}},
      {u"1 + 2j", {36, 1, 2, 31, 2, 1, 37}},
      {u"2j - 1", {36, 2, 1, 32, 1, 2, 37}},
      {u"1 == 2", {36, 1, 1, 23, 1, 37}},
      {u"z != z", {36, 2, 2, 24, 2, 37}},
      {u"1 < 2", {36, 1, 1, 25, 37}},
      {u"1 >= 2 && 0 || 1", {36, 1, 1, 28, 1, 29, 1, 30, 37}},
      {u"-x", {36, 1, 21, 1, 37}},
      {u"-2", {36, 1, 37}},
      {u"!1", {36, 1, 22, 1, 37}},
      {u"-2^2", {36, 1, 1, 35, 1, 1, 21, 1, 37}},
      {u"2^-1", {36, 1, 1, 35, 1, 1, 37}},
      {u"2^-x", {36, 1, 1, 21, 1, 35, 1, 1, 37}},
      {u"2^3^2", {36, 1, 1, 35, 1, 1, 1, 35, 1, 1, 37}},
      {u"2**3", {36, 1, 1, 35, 1, 1, 37}},
      {u"2*3/4", {36, 1, 1, 33, 1, 1, 1, 34, 1, 1, 37}},
      {u"1 + 2*3", {36, 1, 1, 1, 33, 1, 1, 31, 1, 1, 37}},
      {u"(1 + 2)*3", {36, 1, 1, 31, 1, 1, 1, 33, 1, 1, 37}},
      {u"1-(-2)", {36, 1, 1, 32, 1, 1, 37}},
      {u"pair(1, x)", {36, 18, 36, 1, 37, 36, 1, 37, 37}},
      {u"arr[1]", {36, 17, 42, 1, 43, 39, 17, 1, 37}},
      {u"words[0]", {36, 16, 42, 1, 43, 39, 16, 1, 37}},
      {u"dataset((1, 2))", {36, 6, 37}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(Narrow(c.text));
    auto e = Parse(c.text);
    EXPECT_EQ(Codes(*e), c.ops);
  }
}

TEST_F(ExpressionParserTest, UnaryMinusFoldsOnlyIntoABareRealNumber) {
  auto e = Parse(u"-2");
  EXPECT_EQ(Constant(*e, 0), -2.0);
  e = Parse(u"2^-1");
  EXPECT_EQ(Constant(*e, 1), -1.0);
  e = Parse(u"-2^2");  // the minus applies to the power: the constant stays 2
  EXPECT_EQ(Constant(*e, 0), 2.0);
  e = Parse(u"-3mm");
  EXPECT_DOUBLE_EQ(Constant(*e, 0), -0.003);
  EXPECT_EQ(e->GetValues()[0]->GetUnits(), Fut(u"mm"));
  e = Parse(u"-10cel");  // negated as written, in its units
  EXPECT_DOUBLE_EQ(Constant(*e, 0), 263.15);
  EXPECT_EQ(Codes(*e), (std::vector<int>{36, 1, 37}));
  e = Parse(u"-2j");  // complex constants are negated by the stream
  EXPECT_EQ(Codes(*e), (std::vector<int>{36, 2, 21, 2, 37}));
}

TEST_F(ExpressionParserTest, FunctionListRecordsArgumentBoundariesInStreamOrder) {
  auto e = Parse(u"pair(pair(1, 2), x)");
  ASSERT_EQ(e->GetFunctionCalls().size(), 2u);
  const FunctionCall& outer = e->GetFunctionCalls()[0];
  const FunctionCall& inner = e->GetFunctionCalls()[1];
  EXPECT_EQ(outer.mOperationIndex, 1);
  EXPECT_EQ(inner.mOperationIndex, 3);
  ASSERT_EQ(outer.mArguments.size(), 2u);
  EXPECT_EQ(e->GetOperations()[outer.mArguments[0].first], kStartOfExpressionOp);
  EXPECT_EQ(e->GetOperations()[outer.mArguments[1].second], kEndOfExpressionOp);
  EXPECT_EQ(outer.mArguments[1].second + 2, static_cast<int>(e->GetOperations().size()));
  EXPECT_NE(outer.mFunction, nullptr);
  EXPECT_EQ(outer.mFunction->GetName(), AString(u"pair"));
}

TEST_F(ExpressionParserTest, NumbersWithUnitsAreStoredInSI) {
  struct Case {
    const char16_t* text;
    double si;
    const char16_t* unit;  // null: no units
  };
  const Case cases[] = {
      {u"3mm", 0.003, u"mm"},    {u"3 mm", 0.003, u"mm"},   {u"3e-3m", 0.003, u"m"},
      {u"3e -3 m", 0.003, u"m"}, {u"1in", 0.0254, u"in"},   {u"2.5", 2.5, nullptr},
      {u".5", 0.5, nullptr},     {u"1e3", 1000.0, nullptr}, {u"+4", 4.0, nullptr},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(Narrow(c.text));
    auto e = Parse(c.text);
    ASSERT_EQ(e->GetValues().size(), 1u);
    EXPECT_DOUBLE_EQ(Constant(*e, 0), c.si);
    const Units::FullUnitType fut = c.unit != nullptr ? Fut(c.unit) : Units::NoUnits;
    EXPECT_EQ(e->GetValues()[0]->GetUnits(), fut);
    EXPECT_EQ(e->GetResultState().mUnits, fut);
    EXPECT_EQ(mNumberWithoutUnits, c.unit == nullptr);
  }
}

TEST_F(ExpressionParserTest, NonFiniteSpellingsAreNumbers) {
  const double inf = std::numeric_limits<double>::infinity();
  EXPECT_EQ(Constant(*Parse(u"1.#INF"), 0), inf);
  EXPECT_EQ(Constant(*Parse(u"-1.#INF"), 0), -inf);
  EXPECT_TRUE(std::isnan(Constant(*Parse(u"-1.#IND"), 0)));
  EXPECT_TRUE(std::isnan(Constant(*Parse(u"1.$"), 0)));
  EXPECT_EQ(Constant(*Parse(u"inf"), 0), inf);
  EXPECT_EQ(Constant(*Parse(u"inf+1"), 0), inf);
  EXPECT_TRUE(std::isnan(Constant(*Parse(u"NaN"), 0)));
}

TEST_F(ExpressionParserTest, ExponentGiveBackRules) {
  // "2e+x": the "e" is dropped and "+" is an operator.
  auto e = Parse(u"2e+x");
  EXPECT_EQ(Codes(*e), (std::vector<int>{36, 1, 1, 31, 1, 1, 37}));
  EXPECT_EQ(Constant(*e, 0), 2.0);
  // "2em": the "e" starts a unit name; there is no unit "em".
  ASSERT_EQ(Units::FindUnitDef(AString(u"em")), nullptr);
  EXPECT_EQ(ErrorOf(u"2em"), 24507);
  EXPECT_NE(mPosted.find(u"Unknown unit 'em'"), std::u16string::npos);
}

TEST_F(ExpressionParserTest, ImaginarySuffix) {
  auto e = Parse(u"3j");
  EXPECT_EQ(e->GetParameterType(), val::kComplexParam);
  EXPECT_EQ(e->GetValues()[0]->GetComplexValue(), AComplex<double>(0.0, 3.0));
  e = Parse(u"2.5 I");
  EXPECT_EQ(e->GetValues()[0]->GetComplexValue(), AComplex<double>(0.0, 2.5));
  // "3jx" is not imaginary: "jx" is read as a unit, and there is none of that name.
  EXPECT_EQ(ErrorOf(u"3jx"), 24507);
  EXPECT_NE(mPosted.find(u"'jx'"), std::u16string::npos);
}

TEST_F(ExpressionParserTest, ErrorCodes) {
  struct Case {
    const char16_t* text;
    int code;
  };
  const Case cases[] = {
      {u"1 - -2", 24494},
      {u"--2", 24494},
      {u"2*--1", 24494},
      {u"", 24534},
      {u"  \t ", 24534},
      {u")", 24497},
      {u"1)", 24487},
      {u"1]", 24487},
      {u"1,2", 24487},
      {u"max(1, 2", 24498},
      {u"max(1 2)", 24496},
      {u"max(1; 2)", 24496},
      {u"max()", 24497},
      {u"nosuch(1)", 24499},
      {u"max(1)", 24500},
      {u"max(1, z)", 24501},
      {u"2 ^", 24503},
      {u"2*", 24504},
      {u"2 /", 24504},
      {u"1 +", 24505},
      {u"1-", 24505},
      {u"nosuchname", 24506},
      {u"3 furlongs", 24507},
      {u"1 &&", 24513},
      {u"1 ||", 24513},
      {u"z == 1", 24514},
      {u"(1+2j) < 3", 24515},
      {u"z >= z", 24515},
      {u"z && 1", 24516},
      {u"!z", 24516},
      {u"1 <", 24517},
      {u"(1", 24535},
      {u"(1, 2)", 24535},
      {u"(2+3) mm + 1", 24496},
      {u"1 = 2", 24496},
      {u"1 & 2", 24496},
      {u"1 | 2", 24496},
      {u"2 ! 3", 24496},
      {u"1 2", 24496},
      {u"#", 24497},
      {u"-", 24534},
      {u"!", 24534},
      {u"[1]", 24752},
      {u"arr[1, 2]", 24754},
      {u"arr[1", 24754},
      {u"nope[1]", 24755},
      {u"x[1]", 24756},
      {u"arr[z]", 24489},
      {u"arr", 24760},
      {u"arr + 1", 24760},
      {u"dataset(1)", 24579},
      {u"dataset((a, 1))", 24580},
      {u"dataset((1 2))", 24581},
      {u"dataset((1, 2)", 24581},
      {u"dataset((1mm, 2), (1V, 3))", 24726},
      {u"\"s\"", 24497},
      {u"words[0] + 1", 24509},
      {u"-words[0]", 24509},
      {u"words[0] == words[1]", 24509},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(Narrow(c.text));
    EXPECT_EQ(ErrorOf(c.text), c.code);
  }
  EXPECT_EQ(ErrorOf(u"(2+3) mm", false), 24641);
}

TEST_F(ExpressionParserTest, PostedMessagesCarryTheTextAndThePosition) {
  struct Case {
    const char16_t* text;
    const char16_t* posted;
  };
  const Case cases[] = {
      {u"1)",
       u"While parsing expression: \"1)\", an error was found near character 1. \")\" "
       u"found after the end of the expression"},
      {u")",
       u"While parsing expression: \")\", an error was found near character 0. A value "
       u"was expected instead of ')'"},
      {u"1 - -2",
       u"While parsing expression: \"1 - -2\", an error was found near character 4. "
       u"A minus sign cannot follow another minus sign; write -(-x)"},
      {u"3 furlongs",
       u"While parsing expression: \"3 furlongs\", an error was found near "
       u"character 2. Unknown unit 'furlongs'"},
      {u"max(1, 2",
       u"While parsing expression: \"max(1, 2\", an error was found near character "
       u"7. ',' or ')' expected in the arguments of function 'max'"},
      {u"",
       u"An Error occurred parsing expression: \"\", The expression is empty or ends where a "
       u"value is expected"},
      {u"(2+3) mm",
       u"While parsing expression: \"(2+3) mm\", an error was found near character "
       u"6. Units 'mm' for the whole expression are not allowed here"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(Narrow(c.text));
    ErrorOf(c.text, false);
    EXPECT_EQ(mPosted, std::u16string(c.posted));
  }
}

TEST_F(ExpressionParserTest, ASilentParserThrowsWithoutPosting) {
  MessageCapture capture;
  ExpressionParser parser;
  parser.SetReportErrors(false);
  EXPECT_THROW(parser.Parse(u"1 +"), int);
  EXPECT_TRUE(capture.Messages().empty());
}

TEST_F(ExpressionParserTest, DeepNestingFailsCleanly) {
  const int depth = ExpressionParser::kMaxNestingDepth + 10;
  EXPECT_EQ(ErrorOf(AString(static_cast<std::size_t>(depth), u'(') + u"1" +
                    AString(static_cast<std::size_t>(depth), u')')),
            24488);
  EXPECT_EQ(ErrorOf(AString(static_cast<std::size_t>(depth), u'!') + u"1"), 24488);
  AString calls;
  for (int i = 0; i < depth; ++i) calls += u"max(1, ";
  EXPECT_EQ(ErrorOf(calls + u"1"), 24488);
  // Just inside the bound it parses.
  const auto inside = static_cast<std::size_t>(ExpressionParser::kMaxNestingDepth - 2);
  EXPECT_EQ(ErrorOf(AString(inside, u'(') + u"1" + AString(inside, u')')), 0);
}

TEST_F(ExpressionParserTest, AdditiveUnitRules) {
  struct Case {
    const char16_t* text;
    const char16_t* units;  // null: unitless
    val::DBType db;
    bool unitsError;
  };
  const Units::FullUnitType defaultLength = Units::GetDefaultUnits(Units::Length);
  const Case cases[] = {
      {u"1mm + 2mm", u"mm", val::kDBAmplitude, false},
      {u"1mm + 2", u"mm", val::kDBAmplitude, false},
      {u"1 + 2mm", u"mm", val::kDBAmplitude, false},
      {u"1m + 2V", nullptr, val::kDBUnknown, true},
      {u"3mm - 2V", nullptr, val::kDBUnknown, true},
      {u"1 + 2", nullptr, val::kDBAmplitude, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(Narrow(c.text));
    auto e = Parse(c.text);
    EXPECT_EQ(e->GetResultState().mUnits, c.units ? Fut(c.units) : Units::NoUnits);
    EXPECT_EQ(e->GetResultState().mDBType, c.db);
    EXPECT_EQ(mUnitsError, c.unitsError);
  }
  auto e = Parse(u"1m + 3mm");  // same quantity, different units: the type's default units
  EXPECT_EQ(e->GetResultState().mUnits, defaultLength);
  EXPECT_FALSE(mUnitsError);
}

TEST_F(ExpressionParserTest, TemperatureUnitRules) {
  struct Case {
    const char16_t* text;
    Units::FullUnitType units;
    Units::UnitType type;
  };
  const Units::FullUnitType cel = Fut(u"cel");
  const Units::FullUnitType dcel = Fut(u"delta_cel");
  const Units::FullUnitType defaultDiff = Units::GetDefaultUnits(Units::TemperatureDifference);
  const Units::FullUnitType defaultTemp = Units::GetDefaultUnits(Units::Temperature);
  const Case cases[] = {
      {u"10cel + 5delta_cel", cel, Units::Temperature},
      {u"5delta_cel + 10cel", cel, Units::Temperature},
      {u"10cel - 5delta_cel", cel, Units::Temperature},
      {u"10fah - 5fah", Fut(u"delta_fah"), Units::TemperatureDifference},
      {u"10cel - 5cel", dcel, Units::TemperatureDifference},
      {u"10cel - 5kel", defaultDiff, Units::TemperatureDifference},
      {u"1delta_cel + 2delta_cel", dcel, Units::TemperatureDifference},
      {u"1delta_cel - 2delta_kel", defaultDiff, Units::TemperatureDifference},
      {u"10cel + 5cel", cel, Units::Temperature},
      {u"10cel + 5kel", defaultTemp, Units::Temperature},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(Narrow(c.text));
    auto e = Parse(c.text);
    EXPECT_EQ(e->GetResultState().mUnits, c.units);
    EXPECT_EQ(e->GetResultState().mUnitType, c.type);
    EXPECT_FALSE(mUnitsError);
  }
}

TEST_F(ExpressionParserTest, MultiplicativeAndPowerUnitRules) {
  struct Case {
    const char16_t* text;
    const char16_t* units;
    bool unitsError;
  };
  const Case cases[] = {
      {u"2mm*3", u"mm", false},    {u"2*3mm", u"mm", false},     {u"2mm*3mm", nullptr, true},
      {u"6mm/2", u"mm", false},    {u"6mm/2mm", nullptr, false}, {u"6mm/2s", nullptr, true},
      {u"6/2mm", nullptr, true},   {u"(2mm)^2", nullptr, true},  {u"(2mm)^1", u"mm", false},
      {u"(2mm)^x", nullptr, true}, {u"2^2mm", nullptr, false},   {u"len*2", u"mm", false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(Narrow(c.text));
    auto e = Parse(c.text);
    EXPECT_EQ(e->GetResultState().mUnits, c.units ? Fut(c.units) : Units::NoUnits);
    EXPECT_EQ(mUnitsError, c.unitsError);
    if (c.units == nullptr && e->GetResultState().mUnitType != Units::NoUnit) {
      ADD_FAILURE() << "unit type kept without units";
    }
  }
}

TEST_F(ExpressionParserTest, ComparisonAndLogicalResultsAreUnitlessReals) {
  for (const char16_t* text : {u"1mm < 2mm", u"z == z", u"1 && 0", u"!len"}) {
    SCOPED_TRACE(Narrow(text));
    auto e = Parse(text);
    EXPECT_EQ(e->GetResultState(),
              ValueState(Units::NoUnits, Units::NoUnit, val::kDBAmplitude, val::kDoubleParam));
  }
  // A complex operand on the right makes arithmetic complex; the left kind stays otherwise.
  EXPECT_EQ(Parse(u"1 + z")->GetParameterType(), val::kComplexParam);
  EXPECT_EQ(Parse(u"z * 2")->GetParameterType(), val::kComplexParam);
}

TEST_F(ExpressionParserTest, NamesResolveToVariableReferences) {
  auto e = Parse(u"x + len");
  ASSERT_EQ(e->GetValues().size(), 2u);
  const auto* ref = dynamic_cast<const VariableReferenceValue*>(e->GetValues()[0]);
  ASSERT_NE(ref, nullptr);
  EXPECT_EQ(ref->GetVariable(), &mX);
  EXPECT_EQ(e->GetResultState().mUnits, Fut(u"mm"));
  EXPECT_TRUE(mNonConst);
  EXPECT_FALSE(mNumberWithoutUnits);
  // Constants of the value manager without units do not count as variables.
  Parse(u"pi*2");
  EXPECT_FALSE(mNonConst);
  EXPECT_TRUE(mNumberWithoutUnits);
  // A name with "." is one name.
  e = Parse(u"a.b*2");
  EXPECT_EQ(dynamic_cast<const VariableReferenceValue*>(e->GetValues()[0])->GetVariable(),
            &mDotted);
}

TEST_F(ExpressionParserTest, AlienNamesBacktrackToTheRegularName) {
  DebugCapture debug;
  // "x.y" is no variable: the parse goes on with "x", and the "." is no operator.
  EXPECT_EQ(ErrorOf(u"x.y"), 24496);
  EXPECT_TRUE(
      debug.Contains(u"WARNING: Tessaly extended label \"x.y\" failed to parse. Not "
                     u"displaying error and backtracking to continue regular parse\n"));
  // When the regular name is unknown too, the extended resolution is what is reported.
  EXPECT_EQ(ErrorOf(u"q.r + 1"), 24506);
  EXPECT_NE(mPosted.find(u"Extended Tessaly-syntax variable resolution \"q.r\" also failed"),
            std::u16string::npos);
}

class HookParser : public IValueParser {
 public:
  ValueBase* ParseText(const AString& text, Units::FullUnitType) const override {
    if (text == AString(u"sig@1")) return new FloatValue(7.0);
    if (text == AString(u"probe(1, 2)")) return new FloatValue(8.0);
    return nullptr;
  }
  bool IsNameCharacter(AChar c) const override { return c == u'.' || c == u'@'; }
};

TEST_F(ExpressionParserTest, TheExternalParserResolvesWhatTheLibraryDoesNotKnow) {
  HookParser hook;
  IValueParser* previous = Value::SetValueParser(&hook);
  auto e = Parse(u"sig@1 + 1");
  EXPECT_EQ(Constant(*e, 0), 7.0);
  e = Parse(u"probe(1, 2)*2");  // an unknown function name with its arguments
  EXPECT_EQ(Constant(*e, 0), 8.0);
  std::vector<AString> alien;
  ExpressionParser::GetAlienLabels(u"sig@1 + a.b + 2.5mm + \"c.d\" + sig@1", alien);
  EXPECT_EQ(alien, (std::vector<AString>{u"sig@1", u"a.b"}));
  Value::SetValueParser(previous);
  EXPECT_EQ(ErrorOf(u"sig@1"), 24506);

  // ValidateExpression tries each hook in turn and reports nothing.
  MessageCapture capture;
  Value value(1.0);
  int code = 0;
  EXPECT_FALSE(ExpressionParser::ValidateExpression(value, u"sig@1*2", {}, Units::NoUnits, &code));
  EXPECT_EQ(code, 24506);
  EXPECT_EQ(value.GetValue(), 1.0);
  EXPECT_TRUE(ExpressionParser::ValidateExpression(value, u"sig@1*2", {nullptr, &hook},
                                                   Units::NoUnits, &code));
  EXPECT_EQ(code, 0);
  EXPECT_EQ(value.GetValue(), 14.0);
  EXPECT_TRUE(capture.Messages().empty());
}

TEST_F(ExpressionParserTest, ExplicitUnitsApplyToTheWholeExpression) {
  auto e = Parse(u"(2+3) mm");
  EXPECT_EQ(e->GetExplicitUnits(), Fut(u"mm"));
  EXPECT_EQ(e->GetUnits(), Fut(u"mm"));
  e = Parse(u"x mm");
  EXPECT_EQ(e->GetExplicitUnits(), Fut(u"mm"));
  e = Parse(u"2 mm");  // a unit directly on a number is the number's own
  EXPECT_EQ(e->GetExplicitUnits(), Units::NoUnits);
  EXPECT_EQ(Constant(*e, 0), 0.002);
}

TEST_F(ExpressionParserTest, DatasetLiterals) {
  auto e = Parse(u"dataset((1mm, 2V), (3, 4mV))");
  const auto* dataset = dynamic_cast<const DatasetValue*>(e->GetValues().at(0));
  ASSERT_NE(dataset, nullptr);
  const geom::Dataset& d = dataset->GetDataset();
  ASSERT_EQ(d.Size(), 2u);
  EXPECT_DOUBLE_EQ(d.GetX(0), 0.001);
  EXPECT_DOUBLE_EQ(d.GetX(1), 0.003);  // taken in the axis units
  EXPECT_DOUBLE_EQ(d.GetY(0), 2.0);
  EXPECT_DOUBLE_EQ(d.GetY(1), 0.004);
  EXPECT_EQ(d.GetXUnits(), Fut(u"mm"));
  EXPECT_EQ(d.GetYUnits(), Fut(u"V"));
  EXPECT_EQ(e->GetParameterType(), val::kDatasetParam);
  // The text a dataset value writes reads back to an equal dataset.
  auto again = Parse(dataset->GetValueText());
  EXPECT_TRUE(again->GetValues().at(0)->IsEqual(*dataset));
  EXPECT_EQ(dynamic_cast<const DatasetValue*>(Parse(u"DataSet( )")->GetValues().at(0))
                ->GetDataset()
                .Size(),
            0u);
  EXPECT_EQ(dynamic_cast<const DatasetValue*>(Parse(u"dataset((-1, -2))")->GetValues().at(0))
                ->GetDataset()
                .GetY(0),
            -2.0);
}

TEST_F(ExpressionParserTest, DatasetArgumentsTakeDatasetVariablesAndLiterals) {
  geom::Dataset data;
  data.AddPoint(1.0, 2.0);
  Variable curve(u"curve", DatasetValue(data));
  mNameSpace->AddVariable(&curve);
  auto e = Parse(u"points(curve) + points(dataset((1, 2), (3, 4)))");
  EXPECT_EQ(Codes(*e), (std::vector<int>{36, 18, 36, 6, 37, 18, 36, 6, 37, 31, 1, 1, 37}));
  EXPECT_EQ(e->GetValue(), 3.0);
  EXPECT_EQ(e->GetFunctionCalls().at(0).mArgumentStates.at(0).mKind, val::kDatasetParam);
  EXPECT_EQ(ErrorOf(u"points(words)"), 24582);
  EXPECT_EQ(ErrorOf(u"points(x)"), 24501);  // no overload takes a real there
}

TEST_F(ExpressionParserTest, ArraySyntaxCanBeSwitchedOff) {
  ExpressionParser parser;
  parser.SetAllowArrayDerefSyntax(false);
  MessageCapture capture;
  EXPECT_THROW(parser.Parse(u"x[1]"), int);
  EXPECT_TRUE(capture.Posted(24464));
  EXPECT_NE(capture.Messages()[0].args[0].find(u"An operator was expected instead of '['"),
            std::u16string::npos);
}

TEST_F(ExpressionParserTest, ALoneUnitlessNumberTakesTheCallersUnits) {
  auto e = Parse(u"3", true, Fut(u"mm"));
  EXPECT_DOUBLE_EQ(Constant(*e, 0), 0.003);
  EXPECT_EQ(e->GetUnits(), Fut(u"mm"));
  e = Parse(u"3 + 1", true, Fut(u"mm"));
  EXPECT_EQ(Constant(*e, 0), 3.0);
  EXPECT_EQ(e->GetUnits(), Units::NoUnits);
  e = Parse(u"3V", true, Fut(u"mm"));
  EXPECT_EQ(e->GetUnits(), Fut(u"V"));
}

TEST_F(ExpressionParserTest, AParserIsReusableAfterAFailure) {
  MessageCapture capture;
  ExpressionParser parser;
  EXPECT_THROW(parser.Parse(u"1m + 2V +"), int);
  std::unique_ptr<Expression> e(parser.Parse(u"1 + 2"));
  EXPECT_FALSE(parser.HasUnitsError());
  EXPECT_EQ(Codes(*e), (std::vector<int>{36, 1, 1, 31, 1, 1, 37}));
}

TEST(ExpressionParsingContext, GuardsPairPushesAndPops) {
  ExpressionParsingContext context;
  {
    ExpressionParsingContext::ParseTypeGuard guard(context,
                                                   ExpressionParsingContext::kDatasetArgument);
    EXPECT_EQ(context.GetCurrentParseType(), ExpressionParsingContext::kDatasetArgument);
  }
  EXPECT_EQ(context.GetCurrentParseType(), ExpressionParsingContext::kTopLevel);
  context.PushFunction(u"f");
  EXPECT_TRUE(context.IncrementFunctionArgument());
  EXPECT_EQ(context.GetCurrentArgumentIndex(), 1);
  EXPECT_EQ(context.GetCurrentFunctionName(), AString(u"f"));
  EXPECT_TRUE(context.PopFunction());
  EXPECT_EQ(context.GetCurrentArgumentIndex(), -1);
}

TEST(ExpressionParsingContext, UnbalancedUseFiresItsChecks) {
  CheckCapture checks;
  ExpressionParsingContext context;
  {
    ExpressionParsingContext::ParseTypeGuard guard(context, ExpressionParsingContext::kArrayIndex);
    context.PushParseType(ExpressionParsingContext::kTopLevel);
  }
  EXPECT_TRUE(checks.Fired("Unbalanced push/pop paris for parseType stack!!!"));
  EXPECT_TRUE(context.PopParseType());
  EXPECT_FALSE(context.PopParseType());
  EXPECT_TRUE(checks.Fired("Trying to pop and emptyParseType stack!!"));
  EXPECT_FALSE(context.IncrementFunctionArgument());
  EXPECT_TRUE(checks.Fired("Incrementing function argument counter on empty stack."));
  EXPECT_FALSE(context.PopFunction());
  EXPECT_TRUE(checks.Fired("Popping function argument off empty stack."));
}

TEST(Operation, Spellings) {
  struct Case {
    Operation op;
    const char16_t* spelling;
  };
  const Case cases[] = {
      {kLessOp, u" < "},         {kGreaterOp, u" > "},
      {kPlusOp, u" + "},         {kMinusOp, u" - "},
      {kRaiseToPowerOp, u"^"},   {kOrOp, u"||"},
      {kRightParenOp, u")"},     {kArrayIndexStartOp, u"["},
      {kArrayIndexEndOp, u"]"},  {kCommaOp, u","},
      {kDoubleOp, u""},          {kFunctionOp, u""},
      {kEndOfExpressionOp, u""}, {static_cast<Operation>(99), u""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(static_cast<int>(c.op));
    EXPECT_EQ(GetStringCodeForOp(c.op), AString(c.spelling));
  }
}

}  // namespace
