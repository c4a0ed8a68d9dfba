// SPDX-License-Identifier: Apache-2.0
//
// ValueManagerTest.cpp - constants, intrinsic variables, the "F" rule, text to value, switches.
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

#include "support/Capture.h"
#include "wycore/units/UnitDefinition.h"
#include "wycore/value/ComplexValue.h"
#include "wycore/value/FloatValue.h"
#include "wycore/value/Value.h"
#include "wycore/variables/ValueManager.h"
#include "wycore/variables/ValueParser.h"
#include "wycore/variables/Variable.h"

namespace wycore::test {
namespace {

TEST(ValueManager, TheNineConstantsHoldTheirExactValues) {
  const UnitDefinition* ohm = Units::FindUnitDef(AString(u"ohm"));
  ASSERT_NE(ohm, nullptr);
  EXPECT_EQ(ohm->GetFullUnitType(), 8);  // the code that stored "eta" values carry
  const struct {
    const char16_t* name;
    double value;
    Units::FullUnitType units;
  } cases[] = {
      {u"pi", 3.141592653589793, Units::NoUnits},
      {u"c0", 299792458.0, Units::NoUnits},
      {u"e0", 8.854187817e-12, Units::NoUnits},
      {u"u0", 1.2566370614359173e-6, Units::NoUnits},
      {u"boltz", 1.3806503e-23, Units::NoUnits},
      {u"elecq", 1.602176462e-19, Units::NoUnits},
      {u"eta", 376.730313461, ohm->GetFullUnitType()},
      {u"true", 1.0, Units::NoUnits},
      {u"false", 0.0, Units::NoUnits},
  };
  std::vector<Variable*> constants;
  Value::GetConstants(constants);
  EXPECT_EQ(constants.size(), 9u);
  for (const auto& c : cases) {
    SCOPED_TRACE(AString(c.name).TStr());
    const Variable* constant = Value::GetConstantVariable(c.name);
    ASSERT_NE(constant, nullptr);
    EXPECT_EQ(constant->GetName(), c.name);
    EXPECT_EQ(constant->GetValue(), c.value);  // exact
    EXPECT_EQ(constant->GetUnits(), c.units);
  }
}

TEST(ValueManager, NamesAreCaseBlindAndTheManagersVariablesAreKept) {
  Variable* pi = Value::GetConstantVariable(u"pi");
  EXPECT_EQ(Value::GetConstantVariable(u"PI"), pi);
  EXPECT_EQ(Value::GetConstantVariable(u"Pi"), pi);
  EXPECT_FALSE(pi->OKtoDelete());
  EXPECT_FALSE(pi->ChangeName(u"tau"));
  EXPECT_EQ(Value::GetIntrinsicVariable(u"SPECTRAL")->GetName(), u"Spectrum");
  EXPECT_EQ(Value::GetIntrinsicVariable(u"spectral"), Value::GetIntrinsicVariable(u"Spectrum"));
  EXPECT_TRUE(Value::DoesGlobalVariableExist(u"FREQ"));
  EXPECT_TRUE(Value::DoesGlobalVariableExist(u"boltz"));
  EXPECT_FALSE(Value::DoesGlobalVariableExist(u"boltzmann"));
}

TEST(ValueManager, IntrinsicVariablesHaveTheirUnitTypes) {
  ValueManager manager(std::nullopt);
  const struct {
    const char16_t* name;
    Units::UnitType type;
  } cases[] = {
      {u"Phase", Units::Angle},         {u"F2", Units::Frequency},
      {u"Time", Units::Time},           {u"Temp", Units::Temperature},
      {u"Rho", Units::NoUnit},          {u"Vbe", Units::Voltage},
      {u"Ib", Units::Current},          {u"OP", Units::Power},
      {u"_V9", Units::Voltage},         {u"_I1", Units::Current},
      {u"Budget_Index", Units::NoUnit}, {u"Z", Units::Length},
      {u"Distance", Units::Length},     {u"Freq", Units::Frequency},
      {u"IWaveTheta", Units::Angle},    {u"_v", Units::NoUnit},
      {u"RSpeed", Units::Speed},        {u"_Empty", Units::NoUnit},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(AString(c.name).TStr());
    const Variable* v = manager.FindIntrinsicVariable(c.name);
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(manager.GetIntrinsicVariableUnitType(c.name), c.type);
    EXPECT_EQ(v->GetValue(), 0.0);
    EXPECT_EQ(v->GetUnits(),
              c.type == Units::NoUnit ? Units::NoUnits : Units::GetDefaultUnits(c.type));
  }
  std::vector<Variable*> all;
  manager.GetIntrinsicVariables(all);
  EXPECT_EQ(all.size(), 59u);  // without "F", which is obsoleted by default
  EXPECT_EQ(static_cast<int>(Units::Power), 8);
  EXPECT_EQ(static_cast<int>(Units::Speed), 21);
}

TEST(ValueManager, CreationChecksRefuseDuplicatesConstantsAndTheAlias) {
  ValueManager manager(std::nullopt);
  CheckCapture checks;
  EXPECT_EQ(manager.CreateIntrinsicVariable(u"FREQ", Units::Frequency, val::kDoubleParam, false),
            nullptr);
  EXPECT_TRUE(checks.Fired("i == mIntrinsicVariables.end()"));
  EXPECT_EQ(manager.CreateIntrinsicVariable(u"Pi", Units::NoUnit, val::kDoubleParam, false),
            nullptr);
  EXPECT_TRUE(checks.Fired("i == mConstants.end()"));
  EXPECT_EQ(
      manager.CreateIntrinsicVariable(u"SPECTRAL", Units::Frequency, val::kDoubleParam, false),
      nullptr);
  EXPECT_TRUE(checks.Fired("name.CompareNoCase(kSpectralName) != 0"));
  EXPECT_EQ(checks.Reports().size(), 3u);
  checks.Clear();
  EXPECT_EQ(manager.CreateConstant(u"C0", 1.0, Units::NoUnits), nullptr);
  EXPECT_TRUE(checks.Fired("i == mConstants.end()"));
  EXPECT_EQ(manager.FindConstant(u"c0")->GetValue(), 299792458.0);
  Variable* added =
      manager.CreateIntrinsicVariable(u"Zeta", Units::Frequency, val::kComplexParam, false);
  ASSERT_NE(added, nullptr);
  EXPECT_EQ(added->GetParameterType(), val::kComplexParam);
}

TEST(ValueManager, TheFRuleFollowsTheEnvironmentSetting) {
  const struct {
    std::optional<std::string> setting;
    bool intrinsic;
  } cases[] = {
      {std::nullopt, false},    {std::string(""), false},    {std::string("1"), false},
      {std::string("0"), true}, {std::string("0abc"), true}, {std::string(" 0"), false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.setting.value_or("<unset>"));
    EXPECT_EQ(ValueManager::IsFIntrinsic(c.setting), c.intrinsic);
    ValueManager manager(c.setting);
    std::vector<std::pair<AString, AString>> obsoleted;
    EXPECT_EQ(manager.GetObsoletedIntrinsicVariables(obsoleted, 2019, 0), c.intrinsic ? 0 : 1);
    EXPECT_EQ(manager.FindIntrinsicVariable(u"f") != nullptr, c.intrinsic);
    EXPECT_EQ(manager.ReplaceObsoletedIntrinsicVariable(u"f"), c.intrinsic ? u"f" : u"Freq");
  }
  // The process's manager read the variable when it started.
  const char* env = std::getenv("HOLMWAYEM_REMOVE_F");
  const bool expected = env != nullptr && env[0] == '0';
  EXPECT_EQ(Value::GetIntrinsicVariable(u"F") != nullptr, expected);
}

TEST(ValueManager, ObsoletedIntrinsicVariablesByVersion) {
  ValueManager manager(std::nullopt);
  const struct {
    int major, minor;
    bool listed;
  } cases[] = {{2019, 0, true},  {2020, 0, true},  {2020, 1, true},
               {2020, 2, false}, {2021, 0, false}, {0, 0, true}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.major * 10 + c.minor);
    std::vector<std::pair<AString, AString>> out;
    EXPECT_EQ(manager.GetObsoletedIntrinsicVariables(out, c.major, c.minor), c.listed ? 1 : 0);
    if (c.listed) {
      ASSERT_EQ(out.size(), 1u);
      EXPECT_EQ(out[0].first, u"F");
      EXPECT_EQ(out[0].second, u"Freq");
    }
  }
  std::vector<std::pair<AString, AString>> out{{u"old", u"new"}};
  EXPECT_EQ(manager.GetObsoletedIntrinsicVariables(out, 2019, 0), 2);  // counts what is in out
}

TEST(ValueManager, ObsoletedNamesAreReplacedInTextAsWholeNames) {
  ValueManager manager(std::nullopt);
  const struct {
    const char16_t* in;
    const char16_t* out;
  } cases[] = {
      {u"F*2", u"Freq*2"},         {u"f + F1", u"Freq + F1"}, {u"10F", u"10F"},
      {u"\"F\"+F", u"\"F\"+Freq"}, {u"F(2)", u"F(2)"},        {u"aF+F_", u"aF+F_"},
      {u"2e-3F", u"2e-3F"},        {u"(F)", u"(Freq)"},       {u"\"F", u"\"F"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(AString(c.in).TStr());
    AString text(c.in);
    EXPECT_EQ(manager.ReplaceObsoletedNamesInText(text), AString(c.in) != c.out);
    EXPECT_EQ(text, c.out);
  }
}

class PrefixParser : public IValueParser {
 public:
  ValueBase* ParseText(const AString& text, Units::FullUnitType units) const override {
    return text == u"@seven" ? new FloatValue(7.0, units) : nullptr;
  }
};

TEST(ValueManager, CreateValueBaseReadsNumbersLiteralsAndAsksTheParser) {
  ValueManager& manager = *Value::GetValueManager();
  const Units::FullUnitType mm = Units::FindUnitDef(AString(u"mm"))->GetFullUnitType();
  std::unique_ptr<ValueBase> v(manager.CreateValueBase(u" 3mm ", Units::NoUnits));
  ASSERT_NE(v, nullptr);
  EXPECT_EQ(v->GetParameterType(), val::kDoubleParam);
  EXPECT_DOUBLE_EQ(v->GetValue(), 0.003);
  EXPECT_EQ(v->GetUnits(), mm);
  v.reset(manager.CreateValueBase(u"4", mm));  // default units
  EXPECT_DOUBLE_EQ(v->GetValue(), 0.004);
  v.reset(manager.CreateValueBase(u"1 + 2j", Units::NoUnits));
  ASSERT_NE(v, nullptr);
  EXPECT_EQ(v->GetComplexValue(), AComplex<double>(1.0, 2.0));
  v.reset(manager.CreateValueBase(u"\"a b\"", Units::NoUnits));
  ASSERT_NE(v, nullptr);
  EXPECT_EQ(v->GetStringValue(), u"\"a b\"");
  // Names and operators go to the expression parser: "pi" is an expression, "a+b" is not (no
  // such names), and neither are malformed texts.
  v.reset(manager.CreateValueBase(u"pi", Units::NoUnits));
  ASSERT_NE(v, nullptr);
  EXPECT_DOUBLE_EQ(v->GetValue(), 3.141592653589793);
  for (const char16_t* text : {u"", u"a+b", u"3 furlongs", u"1 2", u"\""}) {
    SCOPED_TRACE(AString(text).TStr());
    EXPECT_EQ(std::unique_ptr<ValueBase>(manager.CreateValueBase(text, Units::NoUnits)), nullptr);
    EXPECT_FALSE(Value::IsValidText(text));
  }
  const bool wasEnabled = Value::EnableComplexValues(false);
  EXPECT_EQ(std::unique_ptr<ValueBase>(manager.CreateValueBase(u"2j", Units::NoUnits)), nullptr);
  EXPECT_FALSE(Value::EnableComplexValues(wasEnabled));

  PrefixParser parser;
  EXPECT_EQ(Value::SetValueParser(&parser), nullptr);
  v.reset(Value::CreateValueBase(u"@seven", Units::NoUnits));
  ASSERT_NE(v, nullptr);
  EXPECT_EQ(v->GetValue(), 7.0);
  EXPECT_EQ(Value::SetValueParser(nullptr), &parser);
  EXPECT_FALSE(Value::IsValidText(u"@seven"));
}

class FreqParser : public IValueParser {
 public:
  ValueBase* ParseText(const AString& text, Units::FullUnitType) const override {
    return text == u"Freq*2" ? new FloatValue(2.0) : nullptr;
  }
};

TEST(ValueManager, ObsoleteSyntaxReadsTheNewName) {
  // Until the expression parser is wired in, a value parser stands in for it: it knows only
  // "Freq*2", so the old spelling yields a value only through the obsolete-syntax reader.
  FreqParser parser;
  IValueParser* previous = Value::SetValueParser(&parser);
  const bool fIsObsoleted = Value::GetIntrinsicVariable(u"F") == nullptr;
  std::unique_ptr<ValueBase> plain(Value::CreateValueBase(u"F*2", Units::NoUnits));
  std::unique_ptr<ValueBase> rewritten(
      Value::CreateValueBaseFromTextWithObsoletedVariable(u"F*2", Units::NoUnits));
  Variable v(u"v", 1.0);
  EXPECT_FALSE(v.SetVariableText(u"F*2", Units::NoUnits, false));
  EXPECT_EQ(v.SetVariableText(u"F*2", Units::NoUnits, true), fIsObsoleted);
  Value::SetValueParser(previous);
  EXPECT_EQ(plain, nullptr);
  EXPECT_EQ(rewritten != nullptr, fIsObsoleted);
}

TEST(ValueManager, SwitchSettersReturnThePreviousValue) {
  ValueManager manager(std::nullopt);
  EXPECT_TRUE(manager.EnableComplexValues(false));
  EXPECT_FALSE(manager.EnableComplexValues(true));
  EXPECT_FALSE(manager.SetMustSubstituteVariables(true));
  EXPECT_TRUE(manager.MustSubstituteVariables());
  EXPECT_FALSE(manager.AllowHComSyntaxForAngleBracketAppendToLabel(true));
  EXPECT_TRUE(manager.IsAllowHComSyntaxForAngleBracketAppendToLabel());
  EXPECT_FALSE(manager.DisablePostingErrorMessages(true));
  EXPECT_TRUE(manager.DisablePostingErrorMessages(false));
}

TEST(ValueManager, HandleMessagePostsUnlessPostingIsDisabled) {
  const AString name(u"v");
  const AString text(u"v+1");
  MessageCapture messages;
  DebugCapture debug;
  Value::HandleError(24540, &name, &text);
  ASSERT_EQ(messages.Messages().size(), 1u);
  EXPECT_EQ(messages.Messages()[0].text, u"Variable 'v' cannot be defined in terms of itself: v+1");
  const bool was = Value::DisablePostingErrorMessages(true);
  Value::HandleMessage(24540, Severity::Warning, &name, nullptr, &text);
  Value::DisablePostingErrorMessages(was);
  EXPECT_EQ(messages.Messages().size(), 1u);
  ASSERT_EQ(debug.Lines().size(), 1u);
  EXPECT_EQ(debug.Lines()[0],
            u"Message not posted: Variable 'v' cannot be defined in terms of itself: \n");
}

TEST(ValueManager, DefaultUnitsAreAppliedToIntrinsicVariables) {
  ValueManager manager(std::nullopt);
  const Units::FullUnitType ghz = Units::FindUnitDef(AString(u"GHz"))->GetFullUnitType();
  Variable* freq = manager.FindIntrinsicVariable(u"Freq");
  *freq = 5e9;
  const Units::FullUnitType previous = Units::SetDefaultUnits(ghz);
  manager.ApplyDefaultFullUnitTypesToIntrinsicVariables();
  Units::SetDefaultUnits(previous);
  EXPECT_EQ(freq->GetUnits(), ghz);
  EXPECT_EQ(freq->GetValue(), 5e9);
  EXPECT_EQ(manager.FindIntrinsicVariable(u"Rho")->GetUnits(), Units::NoUnits);
}

}  // namespace
}  // namespace wycore::test
