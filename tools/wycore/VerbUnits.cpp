// SPDX-License-Identifier: Apache-2.0
//
// VerbUnits.cpp - `wycore units [TYPE]`: the unit types, or the units of one type.
//
// Without argument every unit type is listed with its code, in code order. With a type name
// (without regard to case) that type's units are listed, family by family and smallest first:
// code, unit string, factor to SI (or "function" for offset and logarithmic scales), family,
// and a "*" for the current default unit.
#include <cstdio>
#include <string>

#include "Verbs.h"
#include "wycore/io/AString.h"
#include "wycore/units/UnitDefinition.h"
#include "wycore/units/UnitManager.h"
#include "wycore/units/Units.h"

namespace wycore::tool {

extern const char* const kUnitsUsage =
    "usage: wycore units [TYPE]\n"
    "  Without TYPE, lists every unit type: name and code.\n"
    "  With TYPE (a unit-type name such as Length, any case), lists its units:\n"
    "  code, unit, factor to SI (or \"function\"), family, and \"*\" for the default unit.\n";

namespace {

const Verb& UnitsVerb() {
  static const Verb verb{"units", "", kUnitsUsage, nullptr};
  return verb;
}

// A unit type by name without regard to case, silently: the name is user input.
bool FindUnitType(const UnitManager& manager, const AString& name, Units::UnitType& type) {
  for (const auto& [code, rep] : manager.GetUnitTypeMap()) {
    if (rep.m_name.CompareNoCase(name) == 0) {
      type = code;
      return true;
    }
  }
  return false;
}

void ListTypes(const UnitManager& manager) {
  for (const auto& [code, rep] : manager.GetUnitTypeMap()) {
    std::printf("%-34s %4d\n", rep.m_name.TStr().c_str(), static_cast<int>(code));
  }
}

void ListUnits(const UnitManager& manager, Units::UnitType type) {
  const Units::FullUnitType defaultUnits = manager.GetDefaultUnits(type);
  std::printf("%6s  %-28s %-24s %6s  %s\n", "code", "unit", "factor to SI", "family", "default");
  for (Units::FullUnitType fut : manager.GetFUTList(type)) {
    const UnitDefinition* unit = manager.FindUnitDef(fut);
    char factor[64];
    if (unit->HasSimpleFactorConversion()) {
      std::snprintf(factor, sizeof factor, "%.15g", unit->GetFactor());
    } else {
      std::snprintf(factor, sizeof factor, "function");
    }
    std::printf("%6d  %-28s %-24s %6d  %s\n", static_cast<int>(fut),
                unit->GetUnitString().TStr().c_str(), factor, static_cast<int>(unit->GetFamily()),
                fut == defaultUnits ? "*" : "");
  }
}

}  // namespace

int RunUnits(const Args& args) {
  if (args.size() > 1) return UsageError(UnitsVerb(), "expected at most one unit-type name");
  Units::InitializeUnits(nullptr);
  const UnitManager& manager = *Units::GetUnitManager();
  int status = 0;
  if (args.empty()) {
    ListTypes(manager);
  } else {
    Units::UnitType type = Units::NoUnit;
    if (FindUnitType(manager, AString(i18n::kUtf8, args[0].c_str()), type)) {
      ListUnits(manager, type);
    } else {
      std::fprintf(stderr, "wycore units: unknown unit type '%s'\n", args[0].c_str());
      status = 1;
    }
  }
  Units::UnInitializeUnits();
  return status;
}

}  // namespace wycore::tool
