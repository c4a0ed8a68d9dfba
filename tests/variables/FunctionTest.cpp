// SPDX-License-Identifier: Apache-2.0
//
// FunctionTest.cpp - the function table (registration, overload choice, IDs) and ValueChanger.
#include <gtest/gtest.h>

#include <optional>

#include "support/Capture.h"
#include "wycore/value/ComplexValue.h"
#include "wycore/value/FloatValue.h"
#include "wycore/value/StringValue.h"
#include "wycore/value/Value.h"
#include "wycore/variables/Function.h"
#include "wycore/variables/ValueChanger.h"
#include "wycore/variables/ValueManager.h"

namespace wycore::test {
namespace {

ValueState State(val::ParameterType kind, Units::FullUnitType units = Units::NoUnits) {
  return ValueState(units, Units::ConvertToUnitType(units), val::kDBAmplitude, kind);
}

Function* Twice(val::ParameterType kind) {
  Function::ResultRule result;
  result.mKind = kind;
  result.mUnitsFromArgument = 0;
  return new Function(u"twice", {{u"x", kind}}, result,
                      [kind](const IFunctionArguments& args, IFunctionResult& out) {
                        if (kind == val::kComplexParam) {
                          out.SetComplexResult(2.0 * args.GetComplexArg(0));
                        } else {
                          out.SetDoubleResult(2.0 * args.GetDoubleArg(0));
                        }
                        return true;
                      });
}

Function* Sum() {
  return new Function(
      u"sumAll", {{u"x", val::kDoubleParam}}, Function::ResultRule{},
      [](const IFunctionArguments& args, IFunctionResult& out) {
        double sum = 0.0;
        for (int i = 0; i < args.GetCount(); ++i) sum += args.GetDoubleArg(i);
        out.SetDoubleResult(sum);
        return true;
      },
      /*variadic=*/true);
}

class FunctionTable : public ::testing::Test {
 protected:
  FunctionTable() : mManager(std::nullopt) {
    Function* twiceReal = Twice(val::kDoubleParam);
    Function* twiceComplex = Twice(val::kComplexParam);
    mTwiceReal = twiceReal;
    mTwiceComplex = twiceComplex;
    EXPECT_TRUE(mManager.RegisterFunction(twiceReal));
    EXPECT_TRUE(mManager.RegisterFunction(twiceComplex));
    EXPECT_TRUE(mManager.RegisterFunction(Sum()));
    Function::ResultRule text;
    text.mKind = val::kStringParam;
    EXPECT_TRUE(mManager.RegisterFunction(
        new Function(u"dB", {{u"x", val::kNotParam}}, text, nullptr, false, true)));
  }

  ValueManager mManager;
  const Function* mTwiceReal;
  const Function* mTwiceComplex;
};

TEST_F(FunctionTable, PicksTheOverloadByCountAndKinds) {
  const struct {
    const char16_t* name;
    int count;
    std::vector<ValueState> states;
    int error;
    std::optional<val::ParameterType> chosen;  // the first parameter's kind of the choice
  } cases[] = {
      {u"twice", 1, {State(val::kDoubleParam)}, 0, val::kDoubleParam},
      {u"TWICE", 1, {State(val::kComplexParam)}, 0, val::kComplexParam},
      {u"twice", 1, {State(val::kIntParam)}, 0, val::kDoubleParam},  // tie: first registered
      {u"twice", 1, {State(val::kStringParam)}, 24501, std::nullopt},
      {u"twice", 2, {State(val::kDoubleParam), State(val::kDoubleParam)}, 24500, std::nullopt},
      {u"twice", 1, {}, 24501, std::nullopt},  // a missing state is of no kind
      {u"thrice", 1, {State(val::kDoubleParam)}, 24499, std::nullopt},
      {u"sumall",
       3,
       {State(val::kDoubleParam), State(val::kIntParam), State(val::kDoubleParam)},
       0,
       val::kDoubleParam},
      {u"sumAll", 0, {}, 24500, std::nullopt},
      {u"sumAll", 2, {State(val::kDoubleParam), State(val::kComplexParam)}, 24501, std::nullopt},
      {u"db", 1, {State(val::kStringParam)}, 0, val::kNotParam},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(AString(c.name).TStr() + " " + std::to_string(c.count));
    int error = -7;
    const Function* f = mManager.GetFunction(c.name, c.count, c.states, error);
    EXPECT_EQ(f != nullptr, c.chosen.has_value());
    if (f != nullptr) {
      EXPECT_EQ(error, 0);
      EXPECT_EQ(f->GetParameters()[0].mKind, *c.chosen);
    } else {
      EXPECT_EQ(error, c.error);
    }
  }
}

TEST_F(FunctionTable, NamesIdsAndConversionFunctions) {
  EXPECT_TRUE(mManager.FunctionExists(u"Twice"));
  EXPECT_FALSE(mManager.FunctionExists(u"twice2"));
  std::vector<const Function*> overloads;
  mManager.GetFunctions(u"twice", overloads);
  EXPECT_EQ(overloads, (std::vector<const Function*>{mTwiceReal, mTwiceComplex}));
  std::vector<AString> names;
  mManager.GetAllFunctionNames(names);
  EXPECT_EQ(names, (std::vector<AString>{u"twice", u"sumAll", u"dB"}));
  for (int id = 0; id < 3; ++id) {
    EXPECT_EQ(mManager.GetFunctionID(mManager.GetFunctionName(id)), id);
  }
  EXPECT_EQ(mManager.GetFunctionID(u"DB"), 2);
  EXPECT_EQ(mManager.GetFunctionID(u"none"), -1);
  EXPECT_EQ(mManager.GetFunctionName(3), u"");
  EXPECT_EQ(mManager.GetFunctionName(-1), u"");
  std::vector<AString> conversions;
  mManager.GetConversionFunctionNames(conversions);
  EXPECT_EQ(conversions, std::vector<AString>{u"dB"});
}

TEST_F(FunctionTable, RefusesDuplicatesAndNamelessFunctions) {
  CheckCapture checks;
  EXPECT_FALSE(mManager.RegisterFunction(Twice(val::kDoubleParam)));
  EXPECT_TRUE(checks.Fired("Function registered twice with the same parameters"));
  EXPECT_FALSE(mManager.RegisterFunction(nullptr));
  EXPECT_TRUE(checks.Fired("function != nullptr"));
  EXPECT_FALSE(mManager.RegisterFunction(new Function(u"", {}, Function::ResultRule{}, nullptr)));
  EXPECT_TRUE(checks.Fired("!function->GetName().empty()"));
  std::vector<const Function*> overloads;
  mManager.GetFunctions(u"twice", overloads);
  EXPECT_EQ(overloads.size(), 2u);
}

TEST_F(FunctionTable, CalculatesAndDerivesTheResultState) {
  const FloatValue three(3.0);
  const ComplexValue z(AComplex<double>(1.0, -1.0));
  SimpleFunctionResult result;
  EXPECT_TRUE(mTwiceReal->Calculate(ValueFunctionArguments({&three}), result));
  EXPECT_EQ(result.GetKind(), val::kDoubleParam);
  EXPECT_EQ(result.GetDouble(), 6.0);
  EXPECT_TRUE(mTwiceComplex->Calculate(ValueFunctionArguments({&z}), result));
  EXPECT_EQ(result.GetComplex(), AComplex<double>(2.0, -2.0));

  const Units::FullUnitType mm = Units::GetFullUnitType(AString(u"mm"), Units::Length);
  const ValueState state = mTwiceReal->GetResultType({State(val::kDoubleParam, mm)});
  EXPECT_EQ(state.mUnits, mm);
  EXPECT_EQ(state.mUnitType, Units::Length);
  EXPECT_EQ(state.mKind, val::kDoubleParam);

  std::vector<const Function*> db;
  mManager.GetFunctions(u"dB", db);
  ASSERT_EQ(db.size(), 1u);
  CheckCapture checks;
  EXPECT_FALSE(db[0]->Calculate(ValueFunctionArguments({&three}), result));
  EXPECT_TRUE(checks.Fired("Function has no calculation"));
}

TEST(FunctionRegistry, TheProcessTableIsReachedThroughValue) {
  Function::ResultRule rule;
  ASSERT_TRUE(
      Value::RegisterFunction(new Function(u"wyTestNegate", {{u"x", val::kDoubleParam}}, rule,
                                           [](const IFunctionArguments& a, IFunctionResult& r) {
                                             r.SetDoubleResult(-a.GetDoubleArg(0));
                                             return true;
                                           })));
  EXPECT_TRUE(Value::FunctionExists(u"WYTESTNEGATE"));
  int error = -1;
  const Function* f = Value::GetFunction(u"wyTestNegate", 1, {State(val::kDoubleParam)}, error);
  ASSERT_NE(f, nullptr);
  EXPECT_EQ(error, 0);
  EXPECT_EQ(Value::GetFunction(u"wyTestNegate", 2, {}, error), nullptr);
  EXPECT_EQ(error, 24500);
  EXPECT_GE(Value::GetFunctionID(u"wyTestNegate"), 0);
  EXPECT_EQ(Value::GetFunctionName(Value::GetFunctionID(u"wyTestNegate")), u"wyTestNegate");
}

TEST(ValueChanger, ReplacementsMustFitAndNeverLoop) {
  std::unique_ptr<Function> a(Twice(val::kDoubleParam));
  std::unique_ptr<Function> b(Twice(val::kDoubleParam));
  std::unique_ptr<Function> c(Twice(val::kDoubleParam));
  std::unique_ptr<Function> complexOnly(Twice(val::kComplexParam));
  std::unique_ptr<Function> variadic(Sum());
  ValueChanger changer;
  EXPECT_FALSE(changer.AddFunctionModifier(a.get(), a.get()));
  EXPECT_FALSE(changer.AddFunctionModifier(a.get(), nullptr));
  EXPECT_FALSE(changer.AddFunctionModifier(a.get(), variadic.get()));
  // A complex parameter accepts the real argument, but the result kind differs.
  EXPECT_FALSE(changer.AddFunctionModifier(a.get(), complexOnly.get()));
  EXPECT_TRUE(changer.AddFunctionModifier(a.get(), b.get()));
  EXPECT_FALSE(changer.AddFunctionModifier(a.get(), c.get()));  // one replacement per function
  EXPECT_TRUE(changer.AddFunctionModifier(b.get(), c.get()));
  EXPECT_FALSE(changer.AddFunctionModifier(c.get(), a.get()));  // would loop
  EXPECT_EQ(changer.GetNumModifiers(), 2);
  EXPECT_TRUE(changer.WillFunctionBeReplaced(b.get()));
  EXPECT_FALSE(changer.WillFunctionBeReplaced(c.get()));

  std::vector<const Function*> direct{a.get(), c.get()};
  EXPECT_TRUE(changer.ApplyFunctionModifications(direct, false));
  EXPECT_EQ(direct, (std::vector<const Function*>{b.get(), c.get()}));
  std::vector<const Function*> chained{a.get()};
  EXPECT_TRUE(changer.ApplyFunctionModifications(chained, true));
  EXPECT_EQ(chained[0], c.get());
  std::vector<const Function*> untouched{c.get()};
  EXPECT_FALSE(changer.ApplyFunctionModifications(untouched, true));
  const Function* out = nullptr;
  EXPECT_FALSE(changer.GetReplacementFunction(out, c.get()));
  EXPECT_EQ(out, nullptr);
  changer.Clear();
  EXPECT_EQ(changer.GetNumModifiers(), 0);
}

}  // namespace
}  // namespace wycore::test
