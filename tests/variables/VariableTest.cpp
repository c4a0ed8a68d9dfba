// SPDX-License-Identifier: Apache-2.0
//
// VariableTest.cpp - the cycle check, renaming, parameter passing, IDs and prefixed names.
#include <gtest/gtest.h>

#include <memory>

#include "VariablesTestSupport.h"
#include "support/Capture.h"
#include "wycore/units/UnitDefinition.h"
#include "wycore/value/FloatValue.h"
#include "wycore/value/StringArrayValue.h"
#include "wycore/value/Value.h"
#include "wycore/variables/Variable.h"

namespace wycore::test {
namespace {

TEST(Variable, RefusesACycleThroughAChainWithMessage24540) {
  Variable a(u"a", 1.0);
  Variable b(u"b", new RefValue({&a}, u"a*2"));
  Variable c(u"c", new RefValue({&b}, u"b+1"));
  MessageCapture messages;

  EXPECT_FALSE(a.SetValueBase(new RefValue({&c}, u"c-3")));

  ASSERT_EQ(messages.Messages().size(), 1u);
  const PostedMessage& m = messages.Messages()[0];
  EXPECT_EQ(m.code, 24540);
  EXPECT_EQ(m.severity, Severity::Error);
  ASSERT_EQ(m.args.size(), 2u);
  EXPECT_EQ(m.args[0], u"a");
  EXPECT_EQ(m.args[1], u"c-3");
  EXPECT_EQ(a.GetValue(), 1.0);
  EXPECT_EQ(a.GetParameterType(), val::kDoubleParam);
  // The chain itself still reads through: c = (a * 1) + nothing else in this stand-in.
  EXPECT_EQ(c.GetValue(), 1.0);
}

TEST(Variable, RefusesDirectSelfReferenceButAcceptsSharedReads) {
  Variable a(u"a", 2.0);
  Variable b(u"b", 3.0);
  MessageCapture messages;
  EXPECT_FALSE(a.SetValueBase(new RefValue({&b, &a}, u"b+a")));
  EXPECT_TRUE(messages.Posted(24540));
  messages.Clear();
  // A diamond (c reads a twice, through b and directly) is no cycle.
  Variable c(u"c", new RefValue({&a, &a}, u"a+a"));
  EXPECT_TRUE(b.SetValueBase(new RefValue({&a, &c}, u"a+c")));
  EXPECT_EQ(b.GetValue(), 6.0);
  EXPECT_TRUE(messages.Messages().empty());
}

TEST(Variable, SetVariableTextReadsNumbersUnitsAndLiterals) {
  Variable v(u"v", 5.0);
  ASSERT_TRUE(v.SetVariableText(u"3mm", Units::NoUnits));
  EXPECT_DOUBLE_EQ(v.GetValue(), 0.003);
  EXPECT_EQ(Units::GetUnitDef(v.GetUnits())->GetUnitString(), u"mm");
  ASSERT_TRUE(v.SetVariableText(u"\"text\"", Units::NoUnits));
  EXPECT_EQ(v.GetParameterType(), val::kStringParam);
  EXPECT_EQ(v.GetStringValue(), u"\"text\"");
  // Text that yields no value leaves the old one.
  EXPECT_FALSE(v.SetVariableText(u"2 furlongs", Units::NoUnits));
  EXPECT_FALSE(v.SetVariableText(u"", Units::NoUnits));
  EXPECT_EQ(v.GetStringValue(), u"\"text\"");
}

TEST(Variable, RenameIsAskedOfOwnersAndCaseOnlyChangesAlwaysPass) {
  Variable w(u"w", 1.0);
  RecordingOwner objecting({ReceiverMessage::kMayChangeName});
  w.AddRef(&objecting);
  EXPECT_TRUE(w.ChangeName(u"W"));
  EXPECT_EQ(w.GetName(), u"W");
  EXPECT_FALSE(w.ChangeName(u"x"));
  EXPECT_EQ(w.GetName(), u"W");
  EXPECT_EQ(objecting.Count(ReceiverMessage::kMayChangeName), 2);
  w.Release(&objecting);
  EXPECT_TRUE(w.ChangeName(u"x"));
  EXPECT_EQ(w.GetName(), u"x");
  EXPECT_FALSE(w.ChangeName(u""));
}

TEST(Variable, OwnersHearOfChangesAndMayRefuseDeletion) {
  Variable v(u"v", 1.0);
  RecordingOwner owner({ReceiverMessage::kMayDelete});
  v.AddRef(&owner);
  EXPECT_FALSE(v.OKtoDelete());
  v = 2.0;
  EXPECT_TRUE(v.SetValueBase(FloatValue(3.0)));
  EXPECT_EQ(owner.Count(ReceiverMessage::kValueChanged), 2);
  // Passing a parameter is temporary: nobody is told.
  v.PassParameter(FloatValue(4.0), &owner);
  v.UnpassParameter(&owner);
  EXPECT_EQ(owner.Count(ReceiverMessage::kValueChanged), 2);
  EXPECT_TRUE(v.ChangeNameRegenerateExpressions(u"v2"));
  EXPECT_EQ(owner.Count(ReceiverMessage::kValueChanged), 3);
  v.Release(&owner);
  EXPECT_TRUE(v.OKtoDelete());
}

TEST(Variable, NestedParameterPassingRestoresTheFirstValue) {
  Variable p(u"p", 1.0);
  int client1 = 0;
  int client2 = 0;
  EXPECT_TRUE(p.PassParameter(FloatValue(2.0), &client1));
  EXPECT_TRUE(p.PassParameter(FloatValue(3.0), &client2));
  EXPECT_EQ(p.GetValue(), 3.0);
  p.UnpassParameter(&client2);
  EXPECT_EQ(p.GetValue(), 2.0);
  p.UnpassParameter(&client1);
  EXPECT_EQ(p.GetValue(), 1.0);

  CheckCapture checks;
  p.UnpassParameter(&client1);
  EXPECT_TRUE(checks.Fired("mSavedValuesWhilePassingParameter.size() > 0"));
  EXPECT_TRUE(p.PassParameter(FloatValue(5.0), &client1));
  p.UnpassParameter(&client2);  // not the client on top: nothing happens
  EXPECT_TRUE(checks.Fired("saved.mClient == client"));
  EXPECT_EQ(p.GetValue(), 5.0);
  p.UnpassParameter(&client1);
  EXPECT_EQ(p.GetValue(), 1.0);
}

TEST(Variable, PassingAValueThatReadsTheVariableIsRefusedButStillPairs) {
  Variable p(u"p", 1.0);
  int client = 0;
  MessageCapture messages;
  EXPECT_FALSE(p.PassParameter(RefValue({&p}, u"p+1"), &client));
  EXPECT_TRUE(messages.Posted(24540));
  EXPECT_EQ(p.GetValue(), 1.0);
  p.UnpassParameter(&client);
  EXPECT_EQ(p.GetValue(), 1.0);
}

TEST(Variable, OneIdPerNameForTheLifeOfTheProcess) {
  int id = -1;
  {
    Variable first(u"IdProbe", 1.0);
    id = first.GetUniqueSessionIDForName();
    EXPECT_GE(id, 0);
    Variable sameName(u"IDPROBE", 2.0);
    EXPECT_EQ(sameName.GetUniqueSessionIDForName(), id);
    Variable other(u"IdProbe2", 1.0);
    EXPECT_NE(other.GetUniqueSessionIDForName(), id);
  }
  Variable again(u"idprobe", 3.0);
  EXPECT_EQ(again.GetUniqueSessionIDForName(), id);
  Variable renamed(u"IdProbe3", 0.0);
  ASSERT_TRUE(renamed.ChangeName(u"idPROBE"));
  EXPECT_EQ(renamed.GetUniqueSessionIDForName(), id);
  CheckCapture checks;
  Variable nameless(u"", 1.0);
  EXPECT_TRUE(checks.Fired("mName.size() != 0"));
  EXPECT_EQ(nameless.GetUniqueSessionIDForName(), -1);
}

TEST(Variable, CreateNameWithPrefix) {
  const struct {
    const char16_t* in;
    bool ok;
    const char16_t* out;
  } cases[] = {
      {u"$$abc", true, u"_abc"},  {u"abc", true, u"_abc"}, {u"$a_1", true, u"_a_1"},
      {u"$1abc", false, u"1abc"}, {u"$$", false, u""},     {u"$a b", false, u"a b"},
      {u"", false, u""},          {u"$_x", true, u"__x"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(AString(c.in).TStr());
    AString name(c.in);
    EXPECT_EQ(Variable::CreateNameWithPrefix(name, u'_'), c.ok);
    EXPECT_EQ(name, c.out);
  }
}

TEST(Variable, UpstreamOwnersAreAskedOnlyForStringArrays) {
  RecordingOwner owner({ReceiverMessage::kValidateUpstreamValue});
  Variable number(u"n", 1.0);
  number.AddRef(&owner);
  EXPECT_TRUE(number.ValidateAgainstUpstreamOwners(FloatValue(2.0)));
  EXPECT_TRUE(number.UpdateUpstreamOwnersOnValueChange());
  EXPECT_EQ(owner.Count(ReceiverMessage::kValidateUpstreamValue), 0);

  Variable names(u"names", new StringArrayValue({u"\"d1\"", u"\"d2\""}));
  names.AddRef(&owner);
  EXPECT_FALSE(names.ValidateAgainstUpstreamOwners(StringArrayValue({u"\"d3\""})));
  EXPECT_TRUE(names.UpdateUpstreamOwnersOnValueChange());
  EXPECT_EQ(owner.Count(ReceiverMessage::kRefreshDatasetCache), 1);
  number.Release(&owner);
  names.Release(&owner);
}

TEST(Variable, ReadsAsItsValueAndDifferentiatesWithRespectToItself) {
  Variable x(u"x", 2.5);
  Variable y(u"y", 1.0);
  EXPECT_EQ(x.GetIntValue(), 3);
  std::unique_ptr<ValueBase> copy(x.CloneValueBase());
  EXPECT_EQ(copy->GetParameterType(), val::kDoubleParam);
  EXPECT_EQ(copy->GetValue(), 2.5);
  EXPECT_EQ(x.GetDValue(2, x).Derivative(1), 1.0);
  EXPECT_EQ(x.GetDValue(2, y).Derivative(1), 0.0);
  Value held(x);  // a Value made from a variable holds a copy of its value
  x = 7.0;
  EXPECT_EQ(held.GetValue(), 2.5);
  // A null value is a float 0 without units.
  Variable empty(u"empty", static_cast<ValueBase*>(nullptr));
  EXPECT_EQ(empty.GetValue(), 0.0);
  EXPECT_EQ(empty.GetUnits(), Units::NoUnits);
}

TEST(Variable, ExchangeValueBaseSwapsWithTheChecks) {
  Variable v(u"v", 1.0);
  Value other(2.0);
  EXPECT_TRUE(v.ExchangeValueBase(other));
  EXPECT_EQ(v.GetValue(), 2.0);
  EXPECT_EQ(other.GetValue(), 1.0);
  Value reading(static_cast<ValueBase*>(new RefValue({&v}, u"v")));
  MessageCapture messages;
  EXPECT_FALSE(v.ExchangeValueBase(reading));
  EXPECT_TRUE(messages.Posted(24540));
  EXPECT_EQ(v.GetValue(), 2.0);
  v.TempExchangeValueBase(other);
  EXPECT_EQ(v.GetValue(), 1.0);
  v.TempExchangeValueBase(other);
  EXPECT_EQ(v.GetValue(), 2.0);
}

}  // namespace
}  // namespace wycore::test
