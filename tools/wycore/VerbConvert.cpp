// SPDX-License-Identifier: Apache-2.0
//
// VerbConvert.cpp - `wycore convert VALUE UNIT`: a value with its unit, shown in another unit.
//
// VALUE is read as the library reads numbers in fields ("3in", "2.5e-3 m", "100cel"); a number
// without unit is taken in UNIT. The result is written with the default number format,
// "%-.15g", followed by the unit: `wycore convert 3in mm` prints "76.2mm". Text that does not
// read, an unknown UNIT, or units of different quantities are reported on standard error, with
// exit status 1.
#include <cstdio>
#include <string>

#include "Verbs.h"
#include "wycore/io/AString.h"
#include "wycore/units/UnitDefinition.h"
#include "wycore/units/UnitManager.h"
#include "wycore/units/Units.h"

namespace wycore::tool {

extern const char* const kConvertUsage =
    "usage: wycore convert VALUE UNIT\n"
    "  Converts VALUE (a number with an optional unit, e.g. 3in) into UNIT (e.g. mm).\n"
    "  A number without unit is taken in UNIT.\n";

namespace {

const Verb& ConvertVerb() {
  static const Verb verb{"convert", "", kConvertUsage, nullptr};
  return verb;
}

int Convert(const std::string& valueText, const std::string& unitText) {
  const UnitManager& manager = *Units::GetUnitManager();
  const UnitDefinition* target = manager.FindUnitDef(AString(i18n::kUtf8, unitText.c_str()));
  if (target == nullptr) {
    std::fprintf(stderr, "wycore convert: unknown unit '%s'\n", unitText.c_str());
    return 1;
  }
  double si = 0.0;
  Units::FullUnitType found = Units::NoUnits;
  Units::UnitError error = Units::kUnitErrorNone;
  if (!Units::TextToFloat(AString(i18n::kUtf8, valueText.c_str()), target->GetFullUnitType(), si,
                          found, error)) {
    std::fprintf(stderr, "wycore convert: '%s': %s\n", valueText.c_str(),
                 Units::GetUnitErrorText(error).TStr().c_str());
    return 1;
  }
  const Units::UnitType from = manager.GetUnitType(found);
  if (from != target->GetUnitType()) {
    std::fprintf(stderr, "wycore convert: cannot convert %s (%s) into %s (%s)\n", valueText.c_str(),
                 manager.GetUnitTypeString(from).TStr().c_str(), unitText.c_str(),
                 manager.GetUnitTypeString(target->GetUnitType()).TStr().c_str());
    return 1;
  }
  AString text;
  Units::FloatToText(si, target->GetFullUnitType(), text, Units::GetDefaultDoubleFormat(), true);
  std::printf("%s\n", text.TStr().c_str());
  return 0;
}

}  // namespace

int RunConvert(const Args& args) {
  if (args.size() != 2) return UsageError(ConvertVerb(), "expected VALUE and UNIT");
  Units::InitializeUnits(nullptr);
  const int status = Convert(args[0], args[1]);
  Units::UnInitializeUnits();
  return status;
}

}  // namespace wycore::tool
