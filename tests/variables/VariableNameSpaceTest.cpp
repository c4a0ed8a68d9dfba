// SPDX-License-Identifier: Apache-2.0
//
// VariableNameSpaceTest.cpp - lookup order, the stack of name spaces, lifetimes, completion.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "VariablesTestSupport.h"
#include "support/Capture.h"
#include "wycore/value/FloatValue.h"
#include "wycore/value/Value.h"
#include "wycore/variables/AutoCompStrProvider.h"
#include "wycore/variables/DatasetServer.h"
#include "wycore/variables/ValueManager.h"
#include "wycore/variables/ValueParser.h"
#include "wycore/variables/Variable.h"
#include "wycore/variables/VariableNameSpace.h"

namespace wycore::test {
namespace {

using VNS = VariableNameSpace;

VariableSearchFlags Flags(std::initializer_list<VariableSearchFlag> flags) {
  VariableSearchFlags set;
  for (auto f : flags) set.Add(f);
  return set;
}

// A predefined variable of the process's manager, made once for these tests.
Variable* Predefined() {
  static Variable* variable =
      Value::GetValueManager()->CreatePredefinedVariable(u"vnsPredefined", FloatValue(4.0));
  return variable;
}

TEST(VariableNameSpace, OwnVariablesComeFirstInTheOrderAddedWithoutCase) {
  Variable len(u"Len", 1.0);
  Variable len2(u"LEN", 2.0);
  Variable pi(u"pi", 3.0);
  VNS space(&len, VNS::kSearchIntrinsics, VNS::kDontAppendToPrevious);
  space.AddVariable(&len2);
  space.AddVariable(&pi);
  space.AddVariable(nullptr);
  EXPECT_EQ(space.ResolveVariable(u"LEN"), &len);
  EXPECT_EQ(space.ResolveVariable(u"len"), &len);
  EXPECT_EQ(Value::ResolveVariable(u"Len"), &len);  // the name space is current
  EXPECT_EQ(space.ResolveVariable(u"PI"), &pi);     // own variable before the constant
  EXPECT_EQ(space.ResolveVariable(u"nothing"), nullptr);
}

TEST(VariableNameSpace, ServersAreAskedLastAddedFirstAfterOwnVariables) {
  Variable own(u"s", 1.0);
  Variable first(u"s", 2.0);
  Variable second(u"s", 3.0);
  Variable freq(u"Freq", 4.0);
  ListServer a({&first, &freq});
  ListServer b({&second});
  VNS space(&a, VNS::kSearchIntrinsics, VNS::kDontAppendToPrevious);
  space.AddVariableServer(&b);
  EXPECT_TRUE(space.ContainsIVariableServer(&a));
  EXPECT_EQ(space.ResolveVariable(u"s"), &second);
  EXPECT_EQ(space.ResolveVariable(u"Freq"), &freq);  // a server before the intrinsic variables
  space.AddVariable(&own);
  EXPECT_EQ(space.ResolveVariable(u"s"), &own);
  space.ClearVariablesAndServers();
  EXPECT_FALSE(space.ContainsIVariableServer(&a));
  EXPECT_EQ(space.ResolveVariable(u"Freq"), Value::GetIntrinsicVariable(u"Freq"));
}

TEST(VariableNameSpace, FlagsChooseIntrinsicElsePredefinedThenConstants) {
  ValueManager& manager = *Value::GetValueManager();
  Variable* predefined = Predefined();
  ASSERT_NE(predefined, nullptr);
  VNS space(VNS::kDontSearchIntrinsics, VNS::kDontAppendToPrevious);
  EXPECT_EQ(space.GetVariableSearchFlags().ToInt(), 1u);
  // Bits: 1 constants, 2 intrinsic, 4 predefined.
  const struct {
    unsigned flags;
    bool freq, predefined, pi;
  } cases[] = {
      {0, false, false, false}, {1, false, false, true}, {2, true, false, false},
      {4, false, true, false},  {6, true, false, false}, {7, true, false, true},
      {5, false, true, true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.flags);
    space.SetVariableSearchFlags(VariableSearchFlags::FromInt(c.flags));
    EXPECT_EQ(space.ResolveVariable(u"FREQ"),
              c.freq ? manager.FindIntrinsicVariable(u"Freq") : nullptr);
    EXPECT_EQ(space.ResolveVariable(u"VNSPREDEFINED"), c.predefined ? predefined : nullptr);
    EXPECT_EQ(space.ResolveVariable(u"Pi"), c.pi ? manager.FindConstant(u"pi") : nullptr);
  }
}

TEST(VariableNameSpace, AppendsToThePreviousByItsFlagsThenAsksTheLastChanceResolver) {
  Variable outerOnly(u"outerOnly", 1.0);
  Variable late(u"late", 2.0);
  ListServer lastChance({&late, &outerOnly});
  ValueManager& manager = *Value::GetValueManager();
  const IVariableServer* previousResolver = manager.SetLastChanceResolver(&lastChance);
  {
    VNS outer(&outerOnly, VNS::kDontSearchIntrinsics, VNS::kDontAppendToPrevious);
    VNS inner(VNS::kDontSearchIntrinsics, VNS::kAppendToPrevious);
    EXPECT_EQ(inner.GetPreviousNameSpace(), &outer);
    EXPECT_EQ(inner.ResolveVariable(u"outerOnly"), &outerOnly);
    EXPECT_EQ(inner.ResolveVariable(u"Freq"), nullptr);  // neither searches intrinsics
    outer.SetVariableSearchFlags(Flags({kSearchIntrinsicVariables}));
    EXPECT_EQ(inner.ResolveVariable(u"Freq"), manager.FindIntrinsicVariable(u"Freq"));
    EXPECT_EQ(inner.ResolveVariable(u"late"), &late);
    VNS isolated(VNS::kDontSearchIntrinsics, VNS::kDontAppendToPrevious);
    // Not appending: "outerOnly" now comes from the last-chance resolver, not the outer space.
    EXPECT_EQ(isolated.ResolveVariable(u"outerOnly"), &outerOnly);
    EXPECT_EQ(isolated.ResolveVariable(u"missing"), nullptr);
  }
  EXPECT_EQ(manager.SetLastChanceResolver(previousResolver), &lastChance);
  VNS after(VNS::kSearchIntrinsics, VNS::kAppendToPrevious);
  EXPECT_EQ(after.ResolveVariable(u"late"), nullptr);
}

TEST(VariableNameSpace, InnerNameWinsThenOuterAfterTheInnerIsDestroyed) {
  const VNS* before = VNS::GetCurrentVariableNameSpace();
  Variable outerX(u"x", 1.0);
  Variable innerX(u"X", 2.0);
  VNS outer(&outerX, VNS::kSearchIntrinsics, VNS::kAppendToPrevious);
  {
    VNS inner(&innerX, VNS::kSearchIntrinsics, VNS::kAppendToPrevious);
    EXPECT_EQ(VNS::GetCurrentVariableNameSpace(), &inner);
    EXPECT_EQ(Value::ResolveVariable(u"x"), &innerX);
  }
  EXPECT_EQ(VNS::GetCurrentVariableNameSpace(), &outer);
  EXPECT_EQ(Value::ResolveVariable(u"x"), &outerX);
  outer.StopSearching();
  EXPECT_EQ(VNS::GetCurrentVariableNameSpace(), before);
}

TEST(VariableNameSpace, StackMisuseFiresChecks) {
  CheckCapture checks;
  VNS space(VNS::kSearchIntrinsics, VNS::kAppendToPrevious, VNS::kDontStartSearching);
  EXPECT_FALSE(space.IsActive());
  space.StopSearching();
  EXPECT_TRUE(checks.Fired("mIsActive"));
  space.StartSearching();
  EXPECT_TRUE(space.IsActive());
  space.StartSearching();
  EXPECT_TRUE(checks.Fired("!mIsActive"));
  EXPECT_EQ(VNS::GetCurrentVariableNameSpace(), &space);
}

TEST(VariableNameSpace, OutOfOrderDestructionUnlinksWithoutDanglingPointers) {
  const VNS* before = VNS::GetCurrentVariableNameSpace();
  Variable a(u"a", 1.0);
  Variable b(u"b", 2.0);
  Variable c(u"c", 3.0);
  auto outer = std::make_unique<VNS>(&a, VNS::kSearchIntrinsics, VNS::kAppendToPrevious);
  auto middle = std::make_unique<VNS>(&b, VNS::kSearchIntrinsics, VNS::kAppendToPrevious);
  auto inner = std::make_unique<VNS>(&c, VNS::kSearchIntrinsics, VNS::kAppendToPrevious);
  {
    CheckCapture checks;
    middle.reset();
    EXPECT_TRUE(checks.Fired("Name space stopped out of stack order"));
  }
  EXPECT_EQ(inner->GetPreviousNameSpace(), outer.get());
  EXPECT_EQ(inner->ResolveVariable(u"b"), nullptr);
  EXPECT_EQ(inner->ResolveVariable(u"a"), &a);
  {
    CheckCapture checks;
    outer.reset();
    EXPECT_TRUE(checks.Fired("Name space stopped out of stack order"));
  }
  EXPECT_EQ(inner->GetPreviousNameSpace(), before);
  inner.reset();
  EXPECT_EQ(VNS::GetCurrentVariableNameSpace(), before);
}

TEST(VariableNameSpace, VariablesAndCopiesMayOutliveEachOther) {
  auto v = std::make_unique<Variable>(u"shortLived", 1.0);
  auto keep = std::make_unique<Variable>(u"kept", 2.0);
  auto space = std::make_unique<VNS>(v.get(), VNS::kSearchIntrinsics, VNS::kAppendToPrevious);
  space->AddVariable(keep.get());
  VNS copy(*space);
  EXPECT_FALSE(copy.IsActive());
  EXPECT_EQ(copy.ResolveVariable(u"shortLived"), v.get());
  v.reset();  // destroyed while listed
  EXPECT_EQ(space->ResolveVariable(u"shortLived"), nullptr);
  EXPECT_EQ(copy.ResolveVariable(u"shortLived"), nullptr);
  EXPECT_EQ(space->GetVariables(), std::vector<Variable*>{keep.get()});
  std::vector<std::pair<AString, val::ParameterType>> types;
  space->GetVariableTypes(types);
  ASSERT_EQ(types.size(), 1u);
  EXPECT_EQ(types[0].first, u"kept");
  space.reset();  // the copy keeps working without its original
  EXPECT_EQ(copy.ResolveVariable(u"kept"), keep.get());
  VNS assigned(VNS::kDontSearchIntrinsics, VNS::kDontAppendToPrevious, VNS::kDontStartSearching);
  assigned = copy;
  EXPECT_FALSE(assigned.IsActive());
  EXPECT_EQ(assigned.ResolveVariable(u"KEPT"), keep.get());
  keep.reset();
  EXPECT_EQ(assigned.ResolveVariable(u"kept"), nullptr);
}

class SuffixParser : public IValueParser {
 public:
  ValueBase* ParseText(const AString& text, Units::FullUnitType) const override {
    if (text.size() > 4 && text.Right(4) == u"_out") return new FloatValue(42.0);
    return nullptr;
  }
};

TEST(VariableNameSpace, FindVariableTypeAndOutputIntrinsics) {
  SuffixParser parser;
  VNS space(VNS::kDontSearchIntrinsics, VNS::kAppendToPrevious);
  EXPECT_EQ(space.SetOutputIntrinsicValueParser(&parser), nullptr);
  ASSERT_NE(Predefined(), nullptr);
  const struct {
    const char16_t* name;
    int type;
  } cases[] = {
      {u"vnsPredefined", 4}, {u"freq", 5},    {u"spectral", 5}, {u"V_out", 5}, {u"PI", 6},
      {u"eta", 6},           {u"unknown", 0}, {u"", 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(AString(c.name).TStr());
    EXPECT_EQ(VNS::FindVariableType(c.name), c.type);
  }
  EXPECT_EQ(VNS::GetCurrentVariableNameSpace(), &space);
  std::unique_ptr<ValueBase> parsed(space.OutputIntrinsicParseText(u"I_out"));
  ASSERT_NE(parsed, nullptr);
  EXPECT_EQ(parsed->GetValue(), 42.0);
}

TEST(VariableNameSpace, AutoCompletionOffersTheChosenKinds) {
  Variable mine(u"myVariable", 1.0);
  VNS space(&mine, VNS::kSearchIntrinsics, VNS::kAppendToPrevious);
  auto all = VNS::CreateAutoCompStrProvider(true, true, true, false);
  const auto contains = [](const std::vector<AString>& names, const char16_t* name) {
    return std::find(names.begin(), names.end(), AString(name)) != names.end();
  };
  EXPECT_TRUE(contains(all->GetMatchingStrings(u"MY"), u"myVariable"));
  EXPECT_TRUE(contains(all->GetMatchingStrings(u"p"), u"pi"));
  EXPECT_TRUE(contains(all->GetMatchingStrings(u"p"), u"Phase"));
  const auto underscore = all->GetMatchingStrings(u"_");
  EXPECT_TRUE(contains(underscore, u"_t"));
  EXPECT_FALSE(contains(underscore, u"_V1"));  // reserved for the analyses that set it
  EXPECT_TRUE(
      std::is_sorted(underscore.begin(), underscore.end(),
                     [](const AString& a, const AString& b) { return a.CompareNoCase(b) < 0; }));
  auto constantsOnly = VNS::CreateAutoCompStrProvider(space, true, false, false, false);
  EXPECT_FALSE(contains(constantsOnly->GetMatchingStrings(u"p"), u"Phase"));
  EXPECT_EQ(constantsOnly->GetCompletions(u"2*(m", 4), std::vector<AString>{u"myVariable"});
  const struct {
    const char16_t* text;
    std::size_t cursor;
    const char16_t* word;
  } words[] = {{u"2*fre", 5, u"fre"}, {u"a+b", 1, u"a"},    {u"f(x, yz", 7, u"yz"},
               {u"x ", 2, u""},       {u"abc", 99, u"abc"}, {u"", 0, u""}};
  for (const auto& w : words) {
    SCOPED_TRACE(AString(w.text).TStr());
    EXPECT_EQ(AutoCompStrProvider::GetWordBeforeCursor(w.text, w.cursor), w.word);
  }
}

class OneDatasetServer : public IDatasetServer {
 public:
  OneDatasetServer(const char16_t* name, int id) : mName(name), mID(id) {}
  int ResolveDataset(const AString& name) const override { return name == mName ? mID : -1; }
  val::ParameterType GetDatasetType(int id) const override {
    return id == mID ? val::kDynamicDoubleDoubleDatasetParam : val::kNotParam;
  }
  void GetDatasetNames(std::vector<AString>& out) const override { out.push_back(mName); }

 private:
  AString mName;
  int mID;
};

TEST(VariableNameSpace, DatasetsResolveLastServerFirstThenThePrevious) {
  OneDatasetServer outerServer(u"S11", 1);
  OneDatasetServer first(u"S21", 2);
  OneDatasetServer second(u"S21", 3);
  VNS outer(VNS::kSearchIntrinsics, VNS::kDontAppendToPrevious);
  outer.AddDatasetServer(&outerServer);
  VNS inner(VNS::kSearchIntrinsics, VNS::kAppendToPrevious);
  inner.AddDatasetServer(&first);
  inner.AddDatasetServer(&second);
  inner.AddDatasetServer(nullptr);
  const IDatasetServer* server = nullptr;
  EXPECT_EQ(Value::ResolveDatset(u"S21", server), 3);
  EXPECT_EQ(server, &second);
  EXPECT_EQ(inner.ResolveDatset(u"S11", server), 1);
  EXPECT_EQ(server, &outerServer);
  EXPECT_EQ(inner.ResolveDatset(u"S31", server), -1);
  EXPECT_EQ(server, nullptr);
  std::vector<const IDatasetServer*> servers;
  Value::GetDatasetServers(servers);
  EXPECT_EQ(servers, (std::vector<const IDatasetServer*>{&second, &first, &outerServer}));
  std::vector<std::pair<AString, val::ParameterType>> types;
  inner.GetDatasetTypes(types);
  ASSERT_EQ(types.size(), 2u);
  EXPECT_EQ(types[0].second, val::kDynamicDoubleDoubleDatasetParam);
}

}  // namespace
}  // namespace wycore::test
