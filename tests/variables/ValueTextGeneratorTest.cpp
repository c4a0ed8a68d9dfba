// SPDX-License-Identifier: Apache-2.0
//
// ValueTextGeneratorTest.cpp - regenerated expression text: the parentheses the ranks require,
// the sign flip, round trips through the parser, number formatting and the strategies.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "support/Capture.h"
#include "wycore/units/UnitDefinition.h"
#include "wycore/value/DoubleArrayValue.h"
#include "wycore/value/Expression.h"
#include "wycore/value/ExpressionParser.h"
#include "wycore/value/FloatValue.h"
#include "wycore/value/Value.h"
#include "wycore/variables/ValueFormatContext.h"
#include "wycore/variables/ValueTextGenerator.h"
#include "wycore/variables/Variable.h"
#include "wycore/variables/VariableNameSpace.h"

namespace {

std::string Narrow(const AString& text) { return text.Serialize(i18n::kUtf8); }
AString Wide(const std::string& text) { return AString(i18n::kUtf8, text.c_str()); }

bool SameNumber(const AComplex<double>& x, const AComplex<double>& y) {
  const auto same = [](double p, double q) { return (std::isnan(p) && std::isnan(q)) || p == q; };
  return same(x.real(), y.real()) && same(x.imag(), y.imag());
}

class ValueTextGeneratorTest : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const auto& [name, value] : {std::pair{u"a", 2.0}, {u"b", 3.0}, {u"c", 5.0}, {u"x", 3.0}})
      Add(name, value);
  }
  void TearDown() override {
    // Expressions held by variables read other variables: drop them before the variables go.
    for (auto& v : mVariables) v->SetValueBase(new FloatValue(0.0));
  }

  Variable* Add(const AString& name, double value) {
    mVariables.push_back(std::make_unique<Variable>(name, value));
    mNameSpace.AddVariable(mVariables.back().get());
    return mVariables.back().get();
  }
  Variable* Add(const AString& name, const AString& text) {
    Variable* v = Add(name, 0.0);
    EXPECT_TRUE(v->SetVariableText(text, Units::NoUnits)) << Narrow(text);
    return v;
  }

  // Parses `text`; a parse error fails the test.
  std::unique_ptr<Expression> Parse(const AString& text) {
    try {
      ExpressionParser parser;
      return std::unique_ptr<Expression>(parser.Parse(text));
    } catch (int code) {
      ADD_FAILURE() << "\"" << Narrow(text) << "\" does not parse: " << code;
      return std::make_unique<Expression>(text);
    }
  }
  std::string Canonical(const std::string& text) { return Narrow(Parse(Wide(text))->GetText()); }
  std::string Generate(const std::string& text, IValueTextGeneratorStrategy* strategy) {
    const auto expression = Parse(Wide(text));
    ValueTextGenerator generator(strategy);
    AString out;
    EXPECT_TRUE(generator.GenerateText(*expression, out));
    return Narrow(out);
  }

  std::vector<std::unique_ptr<Variable>> mVariables;
  VariableNameSpace mNameSpace{VariableNameSpace::kSearchIntrinsics,
                               VariableNameSpace::kDontAppendToPrevious};
};

TEST_F(ValueTextGeneratorTest, WritesOnlyTheParenthesesTheRanksRequire) {
  struct Case {
    const char* text;
    const char* expected;
  };
  const Case cases[] = {
      {"(a+b)*c", "(a + b)*c"},
      {"a+b*c", "a + b*c"},
      {"a-(b-c)", "a - (b - c)"},
      {"(a-b)-c", "a - b - c"},
      {"a+(-b)", "a - b"},
      {"a-(-b)", "a + b"},
      {"a+-2", "a - 2"},
      {"a-(-b*c)", "a + b*c"},
      {"a+(-(b+c))", "a - (b + c)"},
      {"a&&b||c", "(a&&b)||c"},
      {"a||b&&c", "(a||b)&&c"},
      {"a&&b&&c", "a&&b&&c"},
      {"a||(b&&c)", "a||(b&&c)"},
      {"2^(3^4)", "2^(3^4)"},
      {"2^3^4", "2^3^4"},
      {"-(a + b)", "-(a + b)"},
      {"-a*b", "-a*b"},
      {"-(a*b)", "-(a*b)"},
      {"a*-b", "a*-b"},
      {"a/(b*c)", "a/(b*c)"},
      {"a/b*c", "a/b*c"},
      {"a<b", "a < b"},
      {"a>b+1", "a > b + 1"},
      {"a<=b", "a<=b"},
      {"a == (b < c)", "a==(b < c)"},
      {"a < b == c", "a < b==c"},
      {"(a==b) < c", "(a==b) < c"},
      {"a!=b&&c", "a!=b&&c"},
      // A negative constant reads like a negation; "!" takes only its operand.
      {"(-2)^2", "(-2)^2"},
      {"-2^2", "-2^2"},
      {"2^-1", "2^(-1)"},
      {"-(-3)", "-(-3)"},
      {"!(a^2)", "!(a^2)"},
      {"!a^2", "(!a)^2"},
      {"!(-a)", "!(-a)"},
      // Operands as the library writes them; names as they are defined.
      {"3mm + 2 mm", "3mm + 2mm"},
      {"1e-3*A", "0.001*a"},
      {"MAX(a, b+1)", "max(a, b + 1)"},
      {"abs( max(a,b) )", "abs(max(a, b))"},
      {"2j", "2j"},
      {"3j mm", "3j mm"},
      {"1.#INF", "inf"},
      {"1e400j", "1.#INFj"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(Canonical(c.text), c.expected);
  }
}

TEST_F(ValueTextGeneratorTest, RegeneratedTextReadsBackToTheSameTextAndValue) {
  const char* const texts[] = {
      "(a+b)*c",
      "a-(b-c)",
      "a+(-b)",
      "-(a+b)^2",
      "(-a)^b",
      "a^-b^c",
      "-(-3)*a",
      "2^(3^4)",
      "!(a^2)+1",
      "a==(b<c)",
      "(a||b)&&!c",
      "max(a-b, -c)",
      "abs(-(a-b))/c",
      "1in + 3mm",
      "2*x + 1e-20",
      "(1+2j)*(a-3j)",
      "a/(b/c)",
      "a-(b+c)-(a-b)",
      "-a^2*-b",
      "sin(a)^-2",
      "0.1+0.2",
      "a < b > c",
      "(a<b)==(c>=a)",
      "-(a<b)",
      "inf*a",
      // Complex numbers in units with an offset, as the expression fuzzer found them.
      "2j cel",
      "-1-2J cel",
      "a - 5cel - (1 + 2j kel)",
  };
  for (const char* text : texts) {
    SCOPED_TRACE(text);
    const auto first = Parse(Wide(text));
    const auto second = Parse(first->GetText());
    EXPECT_EQ(Narrow(second->GetText()), Narrow(first->GetText()));
    EXPECT_TRUE(SameNumber(second->GetComplexValue(), first->GetComplexValue()))
        << Narrow(first->GetText());
  }
}

// Random fully parenthesised expressions: the minimal parentheses must rebuild the same tree,
// so the value is bit for bit the same and a second regeneration changes nothing.
TEST_F(ValueTextGeneratorTest, RandomExpressionsSurviveTheRoundTrip) {
  std::mt19937 random(20240611u);
  const char* const operands[] = {"a", "b", "c", "1", "2", "0.5", "(-2)", "(-0.25)"};
  const char* const binary[] = {
      "+", "-", "*", "/", "^", "==", "!=", "<", ">", "<=", ">=", "&&", "||"};
  const auto pick = [&random](std::size_t n) { return static_cast<std::size_t>(random() % n); };
  std::function<std::string(int)> make = [&](int depth) -> std::string {
    if (depth == 0 || pick(4) == 0) return operands[pick(std::size(operands))];
    switch (pick(6)) {
      case 0:
        return "(-" + make(depth - 1) + ")";
      case 1:
        return "(!" + make(depth - 1) + ")";
      case 2:
        return "max(" + make(depth - 1) + ", " + make(depth - 1) + ")";
      default:
        return "(" + make(depth - 1) + binary[pick(std::size(binary))] + make(depth - 1) + ")";
    }
  };
  for (int i = 0; i < 3000; ++i) {
    const std::string text = make(5);
    SCOPED_TRACE(text);
    const auto original = Parse(Wide(text));
    const auto regenerated = Parse(original->GetText());
    const auto again = Parse(regenerated->GetText());
    ASSERT_EQ(Narrow(regenerated->GetText()), Narrow(original->GetText()));
    ASSERT_TRUE(SameNumber(regenerated->GetComplexValue(), original->GetComplexValue()))
        << Narrow(original->GetText());
    ASSERT_EQ(Narrow(again->GetText()), Narrow(regenerated->GetText()));
    ASSERT_EQ(again->GetOperations(), regenerated->GetOperations());
  }
}

TEST(ValueTextGeneratorFormat, NumbersAreWrittenSoThatTheParserReadsThemBack) {
  const UnitDefinition* mm = Units::FindUnitDef(AString(u"mm"));
  ASSERT_NE(mm, nullptr);
  const Units::FullUnitType mmUnits = mm->GetFullUnitType();
  const double inf = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  struct Case {
    AComplex<double> si;
    bool complex;
    Units::FullUnitType units;
    const char* expected;
  };
  const Case cases[] = {
      {{0.003, 0}, false, mmUnits, "3mm"},
      {{-0.5, 0}, false, Units::NoUnits, "-0.5"},
      {{inf, 0}, false, mmUnits, "inf mm"},
      {{-inf, 0}, false, Units::NoUnits, "-inf"},
      {{0, 2}, true, Units::NoUnits, "2j"},
      {{0, -2}, true, Units::NoUnits, "-2j"},
      {{0, 0.003}, true, mmUnits, "3j mm"},
      {{1, 2}, true, Units::NoUnits, "(1 + 2j)"},
      {{0.001, -0.002}, true, mmUnits, "(1mm - 2j mm)"},
      {{0, inf}, true, Units::NoUnits, "1.#INFj"},
      {{0, -inf}, true, Units::NoUnits, "-1.#INFj"},
      {{0, nan}, true, Units::NoUnits, "1.#INDj"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.expected);
    const AString text = c.complex ? ValueTextGeneratorStrategy::FormatComplex(c.si, c.units)
                                   : ValueTextGeneratorStrategy::FormatReal(c.si.real(), c.units);
    EXPECT_EQ(Narrow(text), c.expected);
    ExpressionParser parser;
    const std::unique_ptr<Expression> back(parser.Parse(text));
    EXPECT_TRUE(SameNumber(back->GetComplexValue(), c.si));
  }
}

TEST(ValueTextGeneratorStream, FlipsAndParenthesisesNegativeConstants) {
  struct Case {
    std::vector<int> ops;
    const char* expected;
  };
  const Case cases[] = {
      {{36, 1, 1, 31, 1, 1, 37}, "2 - 3"},
      {{36, 1, 1, 32, 1, 1, 37}, "2 + 3"},
      {{36, 1, 1, 33, 1, 1, 37}, "2*-3"},
      {{36, 1, 1, 35, 1, 1, 37}, "2^(-3)"},
      {{36, 1, 21, 1, 37}, "-2"},
      {{36, 1, 1, 23, 1, 37}, "2==-3"},
      {{36, 1, 1, 34, 1, 1, 22, 1, 37}, "!(2/-3)"},
  };
  FloatValue two(2.0);
  FloatValue minusThree(-3.0);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.expected);
    std::vector<Operation> ops;
    for (int op : c.ops) ops.push_back(static_cast<Operation>(op));
    std::vector<ValueBase*> values = {&two};
    if (ops.size() > 5) values.push_back(&minusThree);
    ValueTextGenerator generator;
    AString out;
    ASSERT_TRUE(generator.GenerateText(ops, values, {}, out));
    EXPECT_EQ(Narrow(out), c.expected);
  }
  // (-3)^2 and -(-3): the negative constant is an operand that needs parentheses.
  std::vector<ValueBase*> values = {&minusThree, &two};
  ValueTextGenerator generator;
  AString out;
  ASSERT_TRUE(generator.GenerateText({kStartOfExpressionOp, kDoubleOp, kDoubleOp, kRaiseToPowerOp,
                                      kDoubleOp, kDoubleOp, kEndOfExpressionOp},
                                     values, {}, out));
  EXPECT_EQ(Narrow(out), "(-3)^2");
  values = {&minusThree};
  ASSERT_TRUE(generator.GenerateText(
      {kStartOfExpressionOp, kDoubleOp, kUnaryMinusOp, kDoubleOp, kEndOfExpressionOp}, values, {},
      out));
  EXPECT_EQ(Narrow(out), "-(-3)");
}

TEST(ValueTextGeneratorStream, LongChainsAreWrittenWhole) {
  // 1 + 1 + ... + 1 and -1*1*...*1 with a hundred thousand operators each.
  constexpr int kTerms = 100000;
  FloatValue one(1.0);
  FloatValue minusOne(-1.0);
  for (const Operation op : {kPlusOp, kMultiplyOp}) {
    std::vector<Operation> ops = {kStartOfExpressionOp, kDoubleOp};
    std::vector<ValueBase*> values = {op == kPlusOp ? &one : &minusOne};
    for (int i = 1; i < kTerms; ++i) {
      ops.insert(ops.end(), {kDoubleOp, op, kDoubleOp, kDoubleOp});
      values.push_back(&one);
    }
    ops.push_back(kEndOfExpressionOp);
    ValueTextGenerator generator;
    AString out;
    ASSERT_TRUE(generator.GenerateText(ops, values, {}, out));
    const std::size_t opSize = op == kPlusOp ? 3 : 1;
    EXPECT_EQ(out.size(), kTerms + (kTerms - 1) * opSize + (op == kPlusOp ? 0 : 1));
    EXPECT_EQ(Narrow(out.substr(0, 7)), op == kPlusOp ? "1 + 1 +" : "-1*1*1*");
  }
}

TEST(ValueTextGeneratorStream, MalformedStreamGivesNoText) {
  FloatValue two(2.0);
  std::vector<ValueBase*> values = {&two};
  ValueTextGenerator generator;
  AString out(u"old");
  wycore::test::CheckCapture checks;
  EXPECT_FALSE(generator.GenerateText(
      {kStartOfExpressionOp, kDoubleOp, kPlusOp, kDoubleOp, kDoubleOp, kEndOfExpressionOp}, values,
      {}, out));
  EXPECT_TRUE(checks.Fired("Operator without its operands!!"));
  EXPECT_TRUE(out.empty());
  EXPECT_EQ(generator.GetTopOperation(), kNoOp);
}

TEST_F(ValueTextGeneratorTest, SimpleStrategyWritesNumbersInTheDefaultUnit) {
  const UnitDefinition* mm = Units::FindUnitDef(AString(u"mm"));
  ASSERT_NE(mm, nullptr);
  const Units::FullUnitType previous = Units::SetDefaultUnits(mm->GetFullUnitType());
  SimpleValueTextGeneratorStrategy simple;
  EXPECT_EQ(Generate("1in + 2mm*a + 3", &simple), "25.4mm + 2mm*a + 3");
  EXPECT_EQ(Generate("3j in", &simple), "76.2j mm");
  // Through the format context, Value::GenerateExpressionText writes with the strategy too.
  const auto expression = Parse(u"1in*a");
  {
    io::globalmanip::ScopedValueFormatStrategy scope(&simple);
    EXPECT_EQ(Narrow(Value::GenerateExpressionText(*expression)), "25.4mm*a");
  }
  EXPECT_EQ(io::globalmanip::ValueFormatContext::m_pStrategy, nullptr);
  EXPECT_EQ(Narrow(Value::GenerateExpressionText(*expression)), "1in*a");
  Units::SetDefaultUnits(previous);
}

TEST_F(ValueTextGeneratorTest, UnrollingStrategyWritesWhatVariablesHold) {
  Add(u"w", u"2*x");
  Add(u"v", u"w + 1");
  Add(u"n", u"-4");
  UnrollingValueTextGeneratorStrategy unrolling;
  // x holds a number: it unrolls to that number.
  EXPECT_EQ(Generate("v*w^2", &unrolling), "(2*3 + 1)*(2*3)^2");
  EXPECT_EQ(Generate("pi*w - n", &unrolling), "pi*(2*3) + 4");
  EXPECT_EQ(Generate("n^2", &unrolling), "(-4)^2");

  // A long chain unrolls kMaxUnrollDepth levels and keeps the rest by name.
  Add(u"v0", 1.0);
  const auto name = [](int i) {
    std::string n = "v";
    n += std::to_string(i);
    return n;
  };
  for (int i = 1; i < 70; ++i) Add(Wide(name(i)), Wide(name(i - 1)));
  EXPECT_EQ(Generate("v69", &unrolling),
            name(69 - UnrollingValueTextGeneratorStrategy::kMaxUnrollDepth));
}

TEST_F(ValueTextGeneratorTest, QueryOutermostFunctionFindsTheCallThatIsTheWholeExpression) {
  struct Case {
    const char* text;
    bool found;
    const char* name;
    std::vector<std::string> args;
  };
  const Case cases[] = {
      {"max(a, b)", true, "max", {"a", "b"}},
      {"abs(max(a, b+c))", true, "abs", {"max(a, b + c)"}},
      {"max(a, b) + 1", false, "", {}},
      {"2*max(a, b)", false, "", {}},
      {"-abs(a)", false, "", {}},
      {"a", false, "", {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    const auto expression = Parse(Wide(c.text));
    QueryOutermostFunction query;
    EXPECT_EQ(query.Visit(*expression), c.found);
    EXPECT_EQ(query.GetFunction() != nullptr, c.found);
    EXPECT_EQ(Narrow(query.GetFunctionName()), c.name);
    std::vector<std::string> args;
    for (const AString& arg : query.GetArgumentTexts()) args.push_back(Narrow(arg));
    EXPECT_EQ(args, c.args);
  }
  const auto trailing = Parse(u"max(a, b) + 1");
  EXPECT_TRUE(QueryOutermostFunction::IsFirstOpFunction(*trailing));
  EXPECT_EQ(QueryOutermostFunction::GetFunctionIfNoTrailingOps(*trailing), nullptr);
  EXPECT_FALSE(QueryOutermostFunction::IsExpressionSingleValued(*trailing));
  EXPECT_TRUE(QueryOutermostFunction::IsExpressionSingleValued(*Parse(u"a")));
}

TEST_F(ValueTextGeneratorTest, ComponentInstanceStrategyRenamesQualifiedNames) {
  Add(u"U1.w", 1.0);
  Add(u"top.u1.len", 2.0);
  Add(u"xU1.w", 3.0);
  ComponentInstanceValueTextGeneratorStrategy rename(u"U1", u"U2");
  EXPECT_EQ(Generate("U1.w*2 + top.u1.len - xU1.w", &rename), "U2.w*2 + top.U2.len - xU1.w");

  EXPECT_EQ(ComponentInstanceValueTextGeneratorStrategy::FindSubString(u"top.U1.w", u"u1."), 4u);
  EXPECT_EQ(ComponentInstanceValueTextGeneratorStrategy::FindSubString(u"U1.w", u"U1", 1),
            AString::npos);
  EXPECT_EQ(ComponentInstanceValueTextGeneratorStrategy::FindSubString(u"U1", u""), AString::npos);
}

// A strategy that renames one function, asks for parentheses around equal operations on the
// left, and can turn the exchange switch on.
class CustomStrategy : public DefaultValueTextGeneratorStrategy {
 public:
  bool mParenthesizeSame = false;
  bool DoOverrideFunctionAndArgs(AString& name, std::vector<AString>& args,
                                 const AString& givenName,
                                 const std::vector<AString>& givenArgs) override {
    if (givenName != u"max") return false;
    name = u"maximum";
    args.assign(givenArgs.rbegin(), givenArgs.rend());
    return true;
  }
  bool MustParenthesize(Operation, bool sameOperation) override {
    return mParenthesizeSame && sameOperation;
  }
};

TEST_F(ValueTextGeneratorTest, StrategiesOverrideCallsParenthesesAndBinding) {
  CustomStrategy custom;
  EXPECT_EQ(Generate("max(a, abs(b)) + 1", &custom), "maximum(abs(b), a) + 1");
  custom.mParenthesizeSame = true;
  EXPECT_EQ(Generate("a + b + c", &custom), "(a + b) + c");
  EXPECT_EQ(Generate("a*b + c", &custom), "a*b + c");
  custom.mParenthesizeSame = false;
  custom.SetExchangeUnaryAndPowerBinding(true);
  EXPECT_EQ(Generate("(-a)^2", &custom), "-a^2");
  EXPECT_EQ(Generate("-(a^2)", &custom), "-(a^2)");
  EXPECT_EQ(Generate("2^(-a)", &custom), "2^-a");
}

TEST_F(ValueTextGeneratorTest, ArrayElementsAreWrittenWithTheirIndex) {
  mVariables.push_back(std::make_unique<Variable>(
      u"arr", static_cast<ValueBase*>(new DoubleArrayValue({10.0, 20.0, 30.0}))));
  mNameSpace.AddVariable(mVariables.back().get());
  EXPECT_EQ(Canonical("ARR[ arr[0]/10 ]*-2"), "arr[arr[0]/10]*-2");
  EXPECT_EQ(Canonical("-arr[1]^2"), "-arr[1]^2");
  const auto expression = Parse(u"arr[a-1] + 1");
  EXPECT_DOUBLE_EQ(expression->GetValue(), 21.0);
  UnrollingValueTextGeneratorStrategy unrolling;
  EXPECT_EQ(Generate("arr[a-1]", &unrolling), "arr[2 - 1]");
}

TEST_F(ValueTextGeneratorTest, RenamedVariableShowsItsNewNameInTheText) {
  Variable* length = Add(u"len", 4.0);
  Variable* holder = Add(u"holder", u"len*2 + a");
  EXPECT_EQ(Narrow(holder->GetValueText()), "len*2 + a");
  ASSERT_TRUE(length->ChangeNameRegenerateExpressions(u"width"));
  EXPECT_EQ(Narrow(holder->GetValueText()), "width*2 + a");
}

}  // namespace
