// SPDX-License-Identifier: Apache-2.0
//
// UnitDefinition.h - one unit: its names, its code, and how it converts to SI.
//
// A unit converts by a factor (one of this unit equals `factor` SI units) or, when an offset or a
// logarithm is involved (temperatures, decibels), by a conversion function; then the factor is 0.
// Definitions are made only by the unit manager while it builds its tables and are shared through
// std::shared_ptr afterwards; the public copy operations exist so callers can keep a snapshot.
// A definition is immutable once registered and may be read from any thread.
#pragma once

#include "wycore/Export.h"
#include "wycore/io/AString.h"
#include "wycore/units/Units.h"

class WYCORE_API UnitDefinition {
 public:
  // An empty, invalid unit (no name, factor 0, code 90).
  UnitDefinition();
  UnitDefinition(const UnitDefinition& other);
  UnitDefinition& operator=(const UnitDefinition& other);
  ~UnitDefinition();

  const AString& GetUnitString() const { return mUnitString; }
  const AString& GetAlternateUnitString() const { return mAlternateUnitString; }
  // The display string, or the unit string when no display string was given.
  const AString& GetGuiDisplayString() const;
  Units::FullUnitType GetFullUnitType() const { return mFullUnitType; }
  Units::UnitType GetUnitType() const { return mUnitType; }
  Units::Family GetFamily() const { return mFamily; }
  Units::Qualifier GetQualifier() const { return mQualifier; }
  // The factor to SI; 0 for a unit that converts by a function.
  double GetFactor() const { return mFactor; }
  bool UsesStandardMetricQualifier() const { return mUsesStandardMetricQualifier; }
  bool HasSimpleFactorConversion() const { return mConversionFunction == nullptr; }
  // A name, and a factor or a function to convert with.
  bool IsValid() const;

  // x in this unit -> SI, and back.
  double ConvertToSI(double x) const;
  double ConvertFromSI(double x) const;

  // Same code, names, conversion, flags, type and family.
  bool operator==(const UnitDefinition& other) const;
  // Ordered by the SI size of one unit, smallest first.
  bool operator<(const UnitDefinition& other) const;

  // Kept only for old callers: fires the check "Don't call IsDB() anymore." on every call, then
  // answers from the fixed list of decibel unit codes. Use Units::GetDBType instead.
  bool IsDB() const;

 private:
  UnitDefinition(Units::FullUnitType fut, Units::UnitType unitType, Units::Family family,
                 const AString& unitString, const AString& alternateUnitString,
                 const AString& guiDisplayString, double factor, bool usesStandardMetricQualifier,
                 Units::Qualifier qualifier);
  UnitDefinition(Units::FullUnitType fut, Units::UnitType unitType, Units::Family family,
                 const AString& unitString, const AString& alternateUnitString,
                 const AString& guiDisplayString, Units::ConversionFunction conversionFunction,
                 bool usesStandardMetricQualifier, Units::Qualifier qualifier);

  friend class UnitManager;
  friend class UnitTableBuilder;
  friend class UnitManagerTestPeer;  // the tests of the registration rules

  AString mUnitString;
  AString mAlternateUnitString;
  AString mGuiDisplayString;
  Units::FullUnitType mFullUnitType = Units::NoUnits;
  double mFactor = 0.0;  // SI units per one of this unit
  Units::ConversionFunction mConversionFunction = nullptr;
  bool mUsesStandardMetricQualifier = false;
  Units::Qualifier mQualifier = Units::NoQualifier;
  Units::UnitType mUnitType = Units::NoUnit;
  Units::Family mFamily = Units::Metric;
};
