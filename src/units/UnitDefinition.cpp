// SPDX-License-Identifier: Apache-2.0
//
// UnitDefinition.cpp - one unit and its conversion to and from SI.
#include "wycore/units/UnitDefinition.h"

#include <algorithm>
#include <iterator>
#include <limits>

#include "wycore/core/Check.h"

namespace {

// The decibel units, for the old IsDB question only; the decibel kind of a quantity is answered
// by Units::GetDBType. The codes are those of the unit tables; a decibel unit added to the tables
// is added here too.
constexpr Units::FullUnitType kDecibelUnits[] = {
    static_cast<Units::FullUnitType>(60),   // dBm
    static_cast<Units::FullUnitType>(61),   // dBW
    static_cast<Units::FullUnitType>(70),   // dBV
    static_cast<Units::FullUnitType>(405),  // dbchz (dBc/Hz)
};

}  // namespace

UnitDefinition::UnitDefinition() = default;
UnitDefinition::UnitDefinition(const UnitDefinition& other) = default;
UnitDefinition& UnitDefinition::operator=(const UnitDefinition& other) = default;
UnitDefinition::~UnitDefinition() = default;

UnitDefinition::UnitDefinition(Units::FullUnitType fut, Units::UnitType unitType,
                               Units::Family family, const AString& unitString,
                               const AString& alternateUnitString, const AString& guiDisplayString,
                               double factor, bool usesStandardMetricQualifier,
                               Units::Qualifier qualifier)
    : mUnitString(unitString),
      mAlternateUnitString(alternateUnitString),
      mGuiDisplayString(guiDisplayString),
      mFullUnitType(fut),
      mFactor(factor),
      mConversionFunction(nullptr),
      mUsesStandardMetricQualifier(usesStandardMetricQualifier),
      mQualifier(qualifier),
      mUnitType(unitType),
      mFamily(family) {}

UnitDefinition::UnitDefinition(Units::FullUnitType fut, Units::UnitType unitType,
                               Units::Family family, const AString& unitString,
                               const AString& alternateUnitString, const AString& guiDisplayString,
                               Units::ConversionFunction conversionFunction,
                               bool usesStandardMetricQualifier, Units::Qualifier qualifier)
    : mUnitString(unitString),
      mAlternateUnitString(alternateUnitString),
      mGuiDisplayString(guiDisplayString),
      mFullUnitType(fut),
      mFactor(0.0),
      mConversionFunction(conversionFunction),
      mUsesStandardMetricQualifier(usesStandardMetricQualifier),
      mQualifier(qualifier),
      mUnitType(unitType),
      mFamily(family) {}

const AString& UnitDefinition::GetGuiDisplayString() const {
  return mGuiDisplayString.empty() ? mUnitString : mGuiDisplayString;
}

bool UnitDefinition::IsValid() const {
  return !mUnitString.empty() && (mFactor != 0.0 || mConversionFunction != nullptr);
}

double UnitDefinition::ConvertToSI(double x) const {
  if (mConversionFunction != nullptr) return mConversionFunction(x, true);
  return x * mFactor;
}

double UnitDefinition::ConvertFromSI(double x) const {
  if (mConversionFunction != nullptr) return mConversionFunction(x, false);
  // An invalid unit (factor 0) has no scale to convert into.
  if (mFactor == 0.0) return std::numeric_limits<double>::quiet_NaN();
  return x / mFactor;
}

bool UnitDefinition::operator==(const UnitDefinition& other) const {
  return mFullUnitType == other.mFullUnitType && mUnitString == other.mUnitString &&
         mAlternateUnitString == other.mAlternateUnitString &&
         mGuiDisplayString == other.mGuiDisplayString && mFactor == other.mFactor &&
         mConversionFunction == other.mConversionFunction &&
         mUsesStandardMetricQualifier == other.mUsesStandardMetricQualifier &&
         mQualifier == other.mQualifier && mUnitType == other.mUnitType && mFamily == other.mFamily;
}

bool UnitDefinition::operator<(const UnitDefinition& other) const {
  return ConvertToSI(1.0) < other.ConvertToSI(1.0);
}

bool UnitDefinition::IsDB() const {
  WY_CHECK(!"Don't call IsDB() anymore.");
  return std::find(std::begin(kDecibelUnits), std::end(kDecibelUnits), mFullUnitType) !=
         std::end(kDecibelUnits);
}
