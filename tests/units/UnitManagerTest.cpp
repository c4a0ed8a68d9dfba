// SPDX-License-Identifier: Apache-2.0
//
// UnitManagerTest.cpp - UnitManager and UnitDefinition: lookups without case, conversions,
// sorting within families, default tokens, registration rules and their reports, copies.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <ostream>

#include "support/Capture.h"
#include "wycore/units/UnitDefinition.h"
#include "wycore/units/UnitManager.h"
#include "wycore/units/Units.h"

void PrintTo(const AString& s, std::ostream* os);

// Drives the private registration rules of the manager, which only the table code uses.
class UnitManagerTestPeer {
 public:
  static UnitDefinition MakeUnit(int fut, Units::UnitType type, int family, const AString& name,
                                 const AString& alternate, double factor) {
    return UnitDefinition(static_cast<Units::FullUnitType>(fut), type,
                          static_cast<Units::Family>(family), name, alternate, AString(), factor,
                          false, Units::NoQualifier);
  }
  static UnitDefinition MakeFunctionUnit(int fut, const AString& name,
                                         Units::ConversionFunction function) {
    return UnitDefinition(static_cast<Units::FullUnitType>(fut), Units::Length, Units::Metric, name,
                          AString(), AString(u"shown"), function, true, Units::Milli);
  }
  static void Add(UnitManager& manager, const UnitDefinition& unit) { manager.Add(unit); }
  static void Add(UnitManager& manager, int type, const AString& name) {
    UnitManager::UnitTypeRep rep;
    rep.m_unitType = static_cast<Units::UnitType>(type);
    rep.m_name = name;
    manager.Add(static_cast<Units::UnitType>(type), rep);
  }
};

namespace {

using wycore::test::CheckCapture;
using wycore::test::DebugCapture;

const UnitManager& Manager() { return *Units::GetUnitManager(); }

Units::FullUnitType Fut(const char16_t* name) {
  const UnitDefinition* unit = Manager().FindUnitDef(AString(name));
  EXPECT_NE(nullptr, unit) << "no unit " << AString(name).TStr();
  return unit != nullptr ? unit->GetFullUnitType() : Units::NoUnits;
}

TEST(UnitManager, ResolvesNamesWithoutCase) {
  struct Case {
    const char16_t* name;
    int fut;
  };
  static const Case cases[] = {{u"MILS", 41},  {u"mils", 41},   {u"mil", 41},   {u"Mil", 41},
                               {u"meter", 37}, {u"meters", 37}, {u"METER", 37}, {u"MM", 36},
                               {u"mm", 36},    {u"Mm", 36},     {u"in", 40},    {u"kel", 79}};
  CheckCapture checks;
  for (const Case& c : cases) {
    SCOPED_TRACE(AString(c.name).TStr());
    const UnitDefinition* unit = Manager().GetUnitDef(AString(c.name));
    ASSERT_NE(nullptr, unit);
    EXPECT_EQ(c.fut, unit->GetFullUnitType());
    EXPECT_EQ(unit, Manager().GetUnitDef(static_cast<Units::FullUnitType>(c.fut)));
  }
  EXPECT_TRUE(checks.None());
  EXPECT_EQ(Units::Length, Manager().GetUnitType(AString(u"length")));
  EXPECT_EQ(Units::Temperature, Manager().GetUnitType(AString(u"TEMPERATURE")));
}

TEST(UnitManager, UnknownInputReportsAndGivesNeutralResults) {
  CheckCapture checks;
  DebugCapture lines;
  EXPECT_EQ(nullptr, Manager().GetUnitDef(static_cast<Units::FullUnitType>(-7)));
  EXPECT_TRUE(checks.Fired("Asking for UnitDefinition for unknown FUT"));
  EXPECT_TRUE(lines.Contains(u"Asking for UnitDefinition for unknown FUT=-7\n"));

  EXPECT_EQ(nullptr, Manager().GetUnitDef(AString(u"furlong")));
  EXPECT_TRUE(checks.Fired("Asking for UnitDefinition for unknown FUT name"));
  EXPECT_TRUE(lines.Contains(u"Asking for UnitDefinition for unknown FutName=furlong\n"));

  EXPECT_EQ(Units::NoUnit, Manager().GetUnitType(AString(u"Lenght")));
  EXPECT_TRUE(checks.Fired("Couldn't find a matching unitType for name\\n"));
  EXPECT_TRUE(lines.Contains(u"Count not find a matching UnitType for name: Lenght\n"));

  EXPECT_EQ(Units::NoUnits, Manager().GetDefaultUnits(static_cast<Units::UnitType>(9999)));
  EXPECT_TRUE(checks.Fired("citer != mUnitTypes.end()"));
  EXPECT_EQ(4u, checks.Reports().size());

  // The silent lookups report nothing.
  checks.Clear();
  EXPECT_EQ(nullptr, Manager().FindUnitDef(AString(u"furlong")));
  EXPECT_EQ(nullptr, Manager().FindUnitDef(static_cast<Units::FullUnitType>(-7)));
  EXPECT_EQ(-1, Manager().GetTypeIndex(static_cast<Units::FullUnitType>(-7)));
  EXPECT_TRUE(Manager().GetFamilyFUTList(static_cast<Units::FullUnitType>(-7)).empty());
  EXPECT_TRUE(checks.None());
}

TEST(UnitDefinition, ConvertsByFactorOrFunction) {
  const UnitDefinition* inch = Manager().FindUnitDef(AString(u"in"));
  ASSERT_NE(nullptr, inch);
  EXPECT_EQ(0.0254, inch->ConvertToSI(1.0));
  EXPECT_DOUBLE_EQ(1.0, inch->ConvertFromSI(0.0254));
  EXPECT_TRUE(inch->HasSimpleFactorConversion());
  EXPECT_TRUE(inch->IsValid());

  for (const char16_t* name : {u"fah", u"rank", u"kel", u"mkel", u"ckel", u"cel", u"dkel"}) {
    SCOPED_TRACE(AString(name).TStr());
    const UnitDefinition* unit = Manager().FindUnitDef(AString(name));
    ASSERT_NE(nullptr, unit);
    EXPECT_EQ(0.0, unit->GetFactor());
    EXPECT_FALSE(unit->HasSimpleFactorConversion());
    EXPECT_TRUE(unit->IsValid());
    EXPECT_NEAR(300.0, unit->ConvertToSI(unit->ConvertFromSI(300.0)), 1e-9);
  }
  const UnitDefinition* cel = Manager().FindUnitDef(AString(u"cel"));
  const UnitDefinition* fah = Manager().FindUnitDef(AString(u"fah"));
  EXPECT_NEAR(273.15, cel->ConvertToSI(0.0), 1e-12);
  EXPECT_NEAR(373.15, fah->ConvertToSI(212.0), 1e-9);
  EXPECT_NEAR(-40.0, fah->ConvertFromSI(cel->ConvertToSI(-40.0)), 1e-9);
}

TEST(UnitDefinition, ValueSemanticsAndDisplayStrings) {
  UnitDefinition empty;
  EXPECT_FALSE(empty.IsValid());
  EXPECT_EQ(Units::NoUnits, empty.GetFullUnitType());
  EXPECT_TRUE(std::isnan(empty.ConvertFromSI(1.0)));

  const UnitDefinition* mil = Manager().FindUnitDef(AString(u"mil"));
  const UnitDefinition* inch = Manager().FindUnitDef(AString(u"in"));
  ASSERT_TRUE(mil != nullptr && inch != nullptr);
  UnitDefinition copy(*mil);
  EXPECT_TRUE(copy == *mil);
  EXPECT_FALSE(copy == *inch);
  copy = *inch;
  EXPECT_TRUE(copy == *inch);
  EXPECT_TRUE(*mil < *inch);
  EXPECT_FALSE(*inch < *mil);
  EXPECT_FALSE(*inch < copy);

  EXPECT_EQ(AString(u"mils"), mil->GetGuiDisplayString());
  EXPECT_EQ(AString(u"in"), inch->GetGuiDisplayString());
  EXPECT_EQ(AString(u"Cu-oz/ft^2"),
            Manager().FindUnitDef(AString(u"copper_oz_per_ft2"))->GetGuiDisplayString());

  const UnitDefinition made = UnitManagerTestPeer::MakeFunctionUnit(
      5000, u"twice", [](double x, bool toSI) { return toSI ? 2 * x : x / 2; });
  EXPECT_TRUE(made.IsValid());
  EXPECT_EQ(0.0, made.GetFactor());
  EXPECT_EQ(8.0, made.ConvertToSI(4.0));
  EXPECT_EQ(2.0, made.ConvertFromSI(4.0));
  EXPECT_EQ(AString(u"shown"), made.GetGuiDisplayString());
  EXPECT_TRUE(made.UsesStandardMetricQualifier());
  EXPECT_EQ(Units::Milli, made.GetQualifier());
}

TEST(UnitDefinition, IsDBStillAnswersButComplains) {
  CheckCapture checks;
  for (const char16_t* name : {u"dBm", u"dBW", u"dBV", u"dbchz"}) {
    EXPECT_TRUE(Manager().FindUnitDef(AString(name))->IsDB()) << AString(name).TStr();
  }
  EXPECT_FALSE(Manager().FindUnitDef(AString(u"mm"))->IsDB());
  EXPECT_EQ(5u, checks.Reports().size());
  EXPECT_TRUE(checks.Fired("Don't call IsDB() anymore."));
}

TEST(UnitManager, SortsEveryFamilyFromSmallestToLargest) {
  const std::vector<Units::FullUnitType> imperial = Manager().GetFamilyFUTList(Fut(u"in"));
  const std::vector<Units::FullUnitType> expected = {Fut(u"uin"), Fut(u"mil"), Fut(u"in"),
                                                     Fut(u"ft"),  Fut(u"yd"),  Fut(u"mile")};
  EXPECT_EQ(expected, imperial);
  for (const auto& [type, rep] : Manager().GetUnitTypeMap()) {
    for (const auto& [family, units] : rep.m_families) {
      for (std::size_t i = 1; i < units.size(); ++i) {
        EXPECT_LE(units[i - 1]->ConvertToSI(1.0), units[i]->ConvertToSI(1.0))
            << rep.m_name.TStr() << " family " << family << " at "
            << units[i]->GetUnitString().TStr();
      }
    }
  }
}

TEST(UnitManager, ListsRangesAndChoices) {
  std::vector<Units::FullUnitType> range;
  Manager().GetFUTRange(Fut(u"mil"), Fut(u"ft"), range);
  EXPECT_EQ((std::vector<Units::FullUnitType>{Fut(u"mil"), Fut(u"in"), Fut(u"ft")}), range);
  Manager().GetFUTRange(Fut(u"ft"), Fut(u"uin"), range);  // `to` lies before `from`
  EXPECT_EQ((std::vector<Units::FullUnitType>{Fut(u"ft"), Fut(u"yd"), Fut(u"mile")}), range);
  Manager().GetFUTRange(Fut(u"km"), Fut(u"km"), range);
  EXPECT_EQ(std::vector<Units::FullUnitType>{Fut(u"km")}, range);

  const std::vector<Units::FullUnitType> length = Manager().GetFUTList(Units::Length);
  for (const char16_t* name :
       {u"uin", u"mil", u"in", u"ft", u"yd", u"mile", u"lightyear", u"mileNaut", u"fm", u"pm",
        u"nm", u"um", u"mm", u"cm", u"dm", u"meter", u"km", u"mileTerr", u"copper_oz_per_ft2"}) {
    EXPECT_NE(length.end(), std::find(length.begin(), length.end(), Fut(name)));
  }
  std::vector<AString> choices;
  EXPECT_EQ(static_cast<int>(length.size()), Manager().GetTypeChoices(Units::Length, choices));
  ASSERT_EQ(length.size(), choices.size());
  for (std::size_t i = 0; i < length.size(); ++i) {
    EXPECT_EQ(Manager().FindUnitDef(length[i])->GetUnitString(), choices[i]);
    EXPECT_EQ(static_cast<int>(i), Manager().GetTypeIndex(length[i]));
  }
  // The metric family (code 0) first, from the smallest unit.
  EXPECT_EQ(0u,
            Manager().GetTypeChoices(Units::Length).find(u"fm, pm, nm, um, mm, cm, dm, meter, km"));
}

TEST(UnitManager, FindsUnitsByTypeFamilyAndPrefix) {
  EXPECT_EQ(Fut(u"mm"), Manager().GetFullUnitType(Units::Length, Units::Metric, Units::Milli));
  EXPECT_EQ(Fut(u"meter"),
            Manager().GetFullUnitType(Units::Length, Units::Metric, Units::NoQualifier));
  EXPECT_EQ(Units::NoUnits, Manager().GetFullUnitType(Units::Length, Units::Metric, Units::Giga));
  EXPECT_EQ(Units::Imperial, Manager().GetFamily(Fut(u"mile")));
  EXPECT_EQ(1029, Manager().GetFamily(Fut(u"lightyear")));
  EXPECT_EQ(Units::Kilo, Manager().GetQualifier(Fut(u"km")));
  EXPECT_EQ(AString(u"Length"), Manager().GetUnitTypeString(Units::Length));
}

TEST(UnitManager, DefaultTokensResolveAtCallTime) {
  UnitManager manager(Manager());
  const UnitManager::UnitTypeRep& rep = manager.GetUnitTypeMap().at(Units::Length);
  const Units::FullUnitType token = rep.m_defaultToken;
  ASSERT_GE(token, Units::FirstDefaultToken);
  const Units::FullUnitType original = manager.GetDefaultUnits(Units::Length);
  EXPECT_EQ(original, manager.ResolveFUT(token, token));

  EXPECT_EQ(original, manager.SetDefaultUnits(Fut(u"mil")));
  EXPECT_EQ(Fut(u"mil"), manager.ResolveFUT(token, token));
  EXPECT_EQ(Fut(u"mil"), manager.GetUnitDef(token)->GetFullUnitType());
  EXPECT_EQ(Fut(u"mil"), manager.GetDefaultUnitsUnitsDef(Units::Length)->GetFullUnitType());
  // Setting through the token itself keeps the unit it stands for.
  EXPECT_EQ(Fut(u"mil"), manager.SetDefaultUnits(token));
  EXPECT_EQ(Fut(u"mil"), manager.GetDefaultUnits(Units::Length));

  // The process's manager is a different object: its default is untouched, the units shared.
  EXPECT_EQ(original, Manager().GetDefaultUnits(Units::Length));
  EXPECT_EQ(Manager().FindUnitDef(Fut(u"mm")), manager.FindUnitDef(Fut(u"mm")));

  // A token nobody registered stays itself, or falls back to the second argument.
  const auto stray = static_cast<Units::FullUnitType>(999999);
  EXPECT_EQ(Fut(u"km"), manager.ResolveFUT(stray, Fut(u"km")));
}

TEST(UnitManager, TemperatureDefaultCarriesItsDifference) {
  UnitManager manager(Manager());
  struct Case {
    const char16_t* temperature;
    const char16_t* difference;
  };
  static const Case cases[] = {{u"fah", u"delta_fah"},   {u"kel", u"delta_kel"},
                               {u"mkel", u"delta_mkel"}, {u"ckel", u"delta_ckel"},
                               {u"dkel", u"delta_dkel"}, {u"rank", u"delta_rank"},
                               {u"cel", u"delta_cel"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(AString(c.temperature).TStr());
    manager.SetDefaultUnits(Fut(c.temperature));
    EXPECT_EQ(Fut(c.temperature), manager.GetDefaultUnits(Units::Temperature));
    EXPECT_EQ(Fut(c.difference), manager.GetDefaultUnits(Units::TemperatureDifference));
  }
  EXPECT_EQ(Fut(u"delta_cel"), manager.GetMatchingTemperatureDiffUnit(Fut(u"mm")));

  CheckCapture checks;
  EXPECT_EQ(Units::NoUnits, manager.SetDefaultUnits(static_cast<Units::FullUnitType>(-7)));
  EXPECT_TRUE(checks.Fired("unit_def != NULL"));
  EXPECT_EQ(Fut(u"cel"), manager.GetDefaultUnits(Units::Temperature));
}

TEST(UnitManager, FirstUnitToClaimANameKeepsIt) {
  UnitManager manager(Manager());
  CheckCapture checks;
  DebugCapture lines;
  UnitManagerTestPeer::Add(
      manager, UnitManagerTestPeer::MakeUnit(5001, Units::Length, 0, u"MIL", u"zz_mil", 1.0));
  EXPECT_TRUE(checks.Fired("Trying to add the same FUT Name index more than once"));
  EXPECT_EQ(1u, checks.Reports().size());
  EXPECT_TRUE(lines.Contains(u"Trying to duplicate Fut Name index with name=MIL\n"));
  EXPECT_EQ(41, manager.FindUnitDef(AString(u"mil"))->GetFullUnitType());
  // The code and the free name still reach the new unit.
  ASSERT_NE(nullptr, manager.FindUnitDef(static_cast<Units::FullUnitType>(5001)));
  EXPECT_EQ(5001, manager.FindUnitDef(AString(u"ZZ_MIL"))->GetFullUnitType());
  // The process's manager did not change.
  EXPECT_EQ(nullptr, Manager().FindUnitDef(AString(u"zz_mil")));

  // An empty alternate name adds nothing and reports nothing.
  checks.Clear();
  UnitManagerTestPeer::Add(manager,
                           UnitManagerTestPeer::MakeUnit(5002, Units::Length, 0, u"zz_a", u"", 2));
  EXPECT_TRUE(checks.None());
  EXPECT_EQ(manager.GetFUTList(Units::Length).size(),
            Manager().GetFUTList(Units::Length).size() + 2);
}

TEST(UnitManager, RegistrationRulesOfUnitTypes) {
  UnitManager manager(Manager());
  CheckCapture checks;
  UnitManagerTestPeer::Add(
      manager, UnitManagerTestPeer::MakeUnit(5003, static_cast<Units::UnitType>(5000), 0,
                                             u"zz_orphan", u"", 1));
  EXPECT_TRUE(checks.Fired("iter != mUnitTypes.end()"));
  EXPECT_EQ(nullptr, manager.FindUnitDef(AString(u"zz_orphan")));

  checks.Clear();
  UnitManagerTestPeer::Add(manager, 5000, u"ZzFoo");
  EXPECT_EQ(5000, manager.GetUnitType(AString(u"zzfoo")));
  UnitManagerTestPeer::Add(manager, 5000, u"ZzBar");  // renaming a type without units
  EXPECT_TRUE(checks.None());
  EXPECT_EQ(5000, manager.GetUnitType(AString(u"ZZBAR")));
  EXPECT_EQ(Units::NoUnit, manager.GetUnitType(AString(u"ZzFoo")));
  checks.Clear();
  UnitManagerTestPeer::Add(manager, 5001, u"zzbar");  // the same name, without case
  EXPECT_EQ(5001, manager.GetUnitType(AString(u"ZzBar")));

  // A type that already has units keeps them when it is registered again.
  const std::size_t before = manager.GetFUTList(Units::Length).size();
  UnitManagerTestPeer::Add(manager, Units::Length, u"Length");
  EXPECT_TRUE(checks.Fired("utIter->second.m_families.empty()"));
  EXPECT_EQ(before, manager.GetFUTList(Units::Length).size());
}

TEST(UnitManager, ScaleUnitsPickTheLargestUnitReadingAtLeastOne) {
  struct Case {
    const char16_t* unit;
    double minSI, maxSI;
    const char16_t* expected;
  };
  static const Case cases[] = {
      {u"mm", 0.0, 0.5, u"dm"},   {u"mm", -2500.0, 10.0, u"km"}, {u"mm", 0.0, 2e-9, u"nm"},
      {u"mm", 0.0, 1e-20, u"fm"}, {u"in", 0.0, 0.5, u"ft"},      {u"in", 0.0, 1e7, u"mile"},
      {u"mm", 0.0, 0.0, u"mm"},   {u"cel", 0.0, 500.0, u"cel"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(AString(c.unit).TStr());
    EXPECT_EQ(Fut(c.expected), Manager().GetScaleUnits(Fut(c.unit), c.minSI, c.maxSI));
  }
}

TEST(UnitManager, FormatsAndSwitchesReturnThePreviousValue) {
  UnitManager manager(Manager());
  EXPECT_EQ(AString(u"%-.15g"), manager.GetDefaultDoubleFormat());
  EXPECT_EQ(AString(u"%-.15g"), manager.SetDefaultDoubleFormat(AString(u"%.3f")));
  EXPECT_EQ(AString(u"%.3f"), manager.GetDefaultDoubleFormat());
  EXPECT_TRUE(manager.GetMustWriteUnits());
  EXPECT_TRUE(manager.SetMustWriteUnits(false));
  EXPECT_FALSE(manager.SetMustWriteUnits(true));
  EXPECT_FALSE(manager.GetDontAllowUnitsForExpressions());
  EXPECT_FALSE(manager.SetDontAllowUnitsForExpressions(true));
  EXPECT_TRUE(manager.GetDontAllowUnitsForExpressions());

  UnitManager assigned(Manager());
  assigned = manager;
  EXPECT_EQ(AString(u"%.3f"), assigned.GetDefaultDoubleFormat());
  EXPECT_TRUE(assigned.GetDontAllowUnitsForExpressions());
}

}  // namespace
