// SPDX-License-Identifier: Apache-2.0
//
// UnitManager.cpp - the registry of unit types and units: registration rules, lookups, default
// units and the lists that rescaling walks. The table content itself is registered by
// CreateUnitTypes and CreateFullUnitTypes, defined with the table data.
#include "wycore/units/UnitManager.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "wycore/core/Check.h"
#include "wycore/core/DebugLog.h"
#include "wycore/units/UnitDefinition.h"

namespace {

AString AsciiText(const std::string& text) {
  AString out;
  out.reserve(text.size());
  for (char c : text) out.push_back(static_cast<AChar>(static_cast<unsigned char>(c)));
  return out;
}

// Temperature scales with a difference unit of their own; every other scale pairs with Celsius.
constexpr const char16_t* kTemperaturePairs[][2] = {
    {u"kel", u"delta_kel"},   {u"mkel", u"delta_mkel"}, {u"fah", u"delta_fah"},
    {u"ckel", u"delta_ckel"}, {u"dkel", u"delta_dkel"}, {u"rank", u"delta_rank"},
};

}  // namespace

// The library's one folding rule (i18n::FoldCase), with its ASCII part inline: unit names are
// ASCII, and this comparison runs for every name lookup.
static inline AChar FoldForCompare(AChar c) {
  if (c < 128) return (c >= u'A' && c <= u'Z') ? static_cast<AChar>(c + 32) : c;
  return i18n::FoldCase(c);
}

bool UnitManager::NoCaseLess::operator()(const AString& a, const AString& b) const {
  const std::size_t n = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < n; ++i) {
    const AChar ca = FoldForCompare(a[i]);
    const AChar cb = FoldForCompare(b[i]);
    if (ca != cb) return ca < cb;
  }
  return a.size() < b.size();
}

UnitManager::UnitManager() : mDefaultDoubleFormat(u"%-.15g"), mDefaultNumberFormat(u"%g") {
  CreateUnitTypes();
  CreateFullUnitTypes();
  SortUnitDefinitonsWithinFamilies();
  WY_CHECK(IsValid());
}

UnitManager::UnitManager(const UnitManager& other) = default;
UnitManager& UnitManager::operator=(const UnitManager& other) = default;
UnitManager::~UnitManager() = default;

// ---- Registration ------------------------------------------------------------------------------

void UnitManager::Add(Units::UnitType unitType, const UnitTypeRep& rep) {
  auto utIter = mUnitTypes.find(unitType);
  if (utIter != mUnitTypes.end()) {
    // Re-registering a type is allowed only before it has units: its families stay as they are.
    WY_CHECK(utIter->second.m_families.empty());
    auto nameIter = mUnitTypeNameMap.find(utIter->second.m_name);
    if (nameIter != mUnitTypeNameMap.end() && nameIter->second == unitType) {
      mUnitTypeNameMap.erase(nameIter);
    }
  }
  UnitTypeRep& stored = mUnitTypes[unitType];
  stored.m_unitType = rep.m_unitType;
  stored.m_name = rep.m_name;
  stored.m_defaultToken = rep.m_defaultToken;
  stored.m_defaultUnits = rep.m_defaultUnits;
  if (rep.m_defaultToken != Units::NoUnits) {
    mDefaultTokenMap[rep.m_defaultToken] = rep.m_defaultUnits;
  }
  if (!rep.m_name.empty()) {
    // A later type of the same name (without regard to case) takes the name over, spelling too.
    mUnitTypeNameMap.erase(rep.m_name);
    mUnitTypeNameMap.emplace(rep.m_name, unitType);
  }
}

void UnitManager::Add(const UnitDefinition& unit) {
  auto iter = mUnitTypes.find(unit.GetUnitType());
  if (!WY_CHECK(iter != mUnitTypes.end())) return;
  auto shared = std::make_shared<UnitDefinition>(unit);
  iter->second.m_families[unit.GetFamily()].push_back(shared);
  doAddUnitDefinitionUpdateFutMap(shared);
  doAddUnitDefinitionUpdateFutNameMap(shared->GetUnitString(), shared);
  doAddUnitDefinitionUpdateFutNameMap(shared->GetAlternateUnitString(), shared);
}

void UnitManager::doAddUnitDefinitionUpdateFutMap(const UnitDefPtr& unit) {
  mFutMap[unit->GetFullUnitType()] = unit;
}

void UnitManager::doAddUnitDefinitionUpdateFutNameMap(const AString& name, const UnitDefPtr& unit) {
  if (name.empty()) return;
  if (mFutNameMap.find(name) != mFutNameMap.end()) {
    // The first unit to claim a name keeps it.
    WY_CHECK(!"Trying to add the same FUT Name index more than once");
    wycore::DebugLog(AString(u"Trying to duplicate Fut Name index with name=") + name + u"\n");
    return;
  }
  mFutNameMap.emplace(name, unit);
}

void UnitManager::SortUnitDefinitonsWithinFamilies() {
  for (auto& [type, rep] : mUnitTypes) {
    for (auto& [family, units] : rep.m_families) {
      // Stable, so that units of the same size keep their registration order.
      std::stable_sort(units.begin(), units.end(),
                       [](const UnitDefPtr& a, const UnitDefPtr& b) { return *a < *b; });
    }
  }
}

bool UnitManager::IsValid() const {
  for (const auto& [type, rep] : mUnitTypes) {
    if (rep.m_unitType != type) return false;
    for (const auto& [family, units] : rep.m_families) {
      for (const auto& unit : units) {
        if (unit == nullptr || unit->GetUnitType() != type || unit->GetFamily() != family) {
          return false;
        }
        auto found = mFutMap.find(unit->GetFullUnitType());
        if (found == mFutMap.end()) return false;
      }
    }
  }
  for (const auto& [name, unit] : mFutNameMap) {
    if (mFutMap.find(unit->GetFullUnitType()) == mFutMap.end()) return false;
  }
  return true;
}

// ---- Lookup ------------------------------------------------------------------------------------

Units::FullUnitType UnitManager::ResolveFUT(Units::FullUnitType fut) const {
  if (fut < Units::FirstDefaultToken) return fut;
  auto iter = mDefaultTokenMap.find(fut);
  return iter != mDefaultTokenMap.end() ? iter->second : fut;
}

Units::FullUnitType UnitManager::ResolveFUT(Units::FullUnitType fut,
                                            Units::FullUnitType other) const {
  Units::FullUnitType resolved = ResolveFUT(fut);
  if (resolved >= Units::FirstDefaultToken && mDefaultTokenMap.count(resolved) == 0) {
    return ResolveFUT(other);
  }
  return resolved;
}

UnitManager::UnitDefPtr UnitManager::Get(Units::FullUnitType fut) const {
  auto iter = mFutMap.find(ResolveFUT(fut));
  return iter != mFutMap.end() ? iter->second : nullptr;
}

const UnitDefinition* UnitManager::FindUnitDef(Units::FullUnitType fut) const {
  return Get(fut).get();
}

const UnitDefinition* UnitManager::FindUnitDef(const AString& name) const {
  auto iter = mFutNameMap.find(name);
  return iter != mFutNameMap.end() ? iter->second.get() : nullptr;
}

const UnitDefinition* UnitManager::GetUnitDef(Units::FullUnitType fut) const {
  const UnitDefinition* unit = FindUnitDef(fut);
  if (unit == nullptr) {
    WY_CHECK(!"Asking for UnitDefinition for unknown FUT");
    wycore::DebugLog(AsciiText("Asking for UnitDefinition for unknown FUT=" +
                               std::to_string(static_cast<int>(fut)) + "\n"));
  }
  return unit;
}

const UnitDefinition* UnitManager::GetUnitDef(const AString& name) const {
  const UnitDefinition* unit = FindUnitDef(name);
  if (unit == nullptr) {
    WY_CHECK(!"Asking for UnitDefinition for unknown FUT name");
    wycore::DebugLog(AString(u"Asking for UnitDefinition for unknown FutName=") + name + u"\n");
  }
  return unit;
}

const UnitDefinition* UnitManager::GetUnitDef(Units::UnitType unitType, Units::Family family,
                                              Units::Qualifier qualifier) const {
  auto typeIter = mUnitTypes.find(unitType);
  if (typeIter == mUnitTypes.end()) return nullptr;
  auto familyIter = typeIter->second.m_families.find(family);
  if (familyIter == typeIter->second.m_families.end()) return nullptr;
  // Several units may share a qualifier ("cm", "dm" and "meter" have none): prefer a unit formed
  // with a standard prefix, and for no prefix the SI unit itself.
  const UnitDefinition* first = nullptr;
  const UnitDefinition* prefixed = nullptr;
  for (const auto& unit : familyIter->second) {
    if (unit->GetQualifier() != qualifier) continue;
    if (first == nullptr) first = unit.get();
    if (unit->UsesStandardMetricQualifier()) {
      if (qualifier == Units::NoQualifier && unit->HasSimpleFactorConversion() &&
          unit->GetFactor() == 1.0) {
        return unit.get();
      }
      if (prefixed == nullptr) prefixed = unit.get();
    }
  }
  return prefixed != nullptr ? prefixed : first;
}

Units::UnitType UnitManager::GetUnitType(Units::FullUnitType fut) const {
  const UnitDefinition* unit = GetUnitDef(fut);
  return unit != nullptr ? unit->GetUnitType() : Units::NoUnit;
}

Units::UnitType UnitManager::GetUnitType(const AString& unitTypeName) const {
  auto iter = mUnitTypeNameMap.find(unitTypeName);
  if (iter == mUnitTypeNameMap.end()) {
    WY_CHECK(!"Couldn't find a matching unitType for name\n");
    wycore::DebugLog(AString(u"Count not find a matching UnitType for name: ") + unitTypeName +
                     u"\n");
    return Units::NoUnit;
  }
  return iter->second;
}

AString UnitManager::GetUnitTypeString(Units::UnitType unitType) const {
  auto iter = mUnitTypes.find(unitType);
  return iter != mUnitTypes.end() ? iter->second.m_name : AString();
}

Units::Family UnitManager::GetFamily(Units::FullUnitType fut) const {
  const UnitDefinition* unit = GetUnitDef(fut);
  return unit != nullptr ? unit->GetFamily() : Units::Metric;
}

Units::Qualifier UnitManager::GetQualifier(Units::FullUnitType fut) const {
  const UnitDefinition* unit = GetUnitDef(fut);
  return unit != nullptr ? unit->GetQualifier() : Units::NoQualifier;
}

Units::FullUnitType UnitManager::GetFullUnitType(Units::UnitType unitType, Units::Family family,
                                                 Units::Qualifier qualifier) const {
  const UnitDefinition* unit = GetUnitDef(unitType, family, qualifier);
  return unit != nullptr ? unit->GetFullUnitType() : Units::NoUnits;
}

// ---- Defaults ----------------------------------------------------------------------------------

Units::FullUnitType UnitManager::GetDefaultUnits(Units::UnitType unitType) const {
  auto citer = mUnitTypes.find(unitType);
  if (!WY_CHECK(citer != mUnitTypes.end())) return Units::NoUnits;
  return citer->second.m_defaultUnits;
}

Units::FullUnitType UnitManager::GetMatchingTemperatureDiffUnit(
    Units::FullUnitType temperatureUnit) const {
  const AChar* diffName = u"delta_cel";
  if (const UnitDefinition* unit = FindUnitDef(temperatureUnit)) {
    for (const auto& pair : kTemperaturePairs) {
      if (unit->GetUnitString() == pair[0]) diffName = pair[1];
    }
  }
  const UnitDefinition* diff = FindUnitDef(AString(diffName));
  return diff != nullptr ? diff->GetFullUnitType() : Units::NoUnits;
}

Units::FullUnitType UnitManager::SetDefaultUnits(Units::FullUnitType fut) {
  const Units::FullUnitType resolved = ResolveFUT(fut);
  const UnitDefinition* unit_def = FindUnitDef(resolved);
  if (!WY_CHECK(unit_def != NULL)) return Units::NoUnits;
  auto iter = mUnitTypes.find(unit_def->GetUnitType());
  if (iter == mUnitTypes.end()) return Units::NoUnits;  // Add() registers no unit without type
  UnitTypeRep& rep = iter->second;
  const Units::FullUnitType previous = rep.m_defaultUnits;
  rep.m_defaultUnits = resolved;
  if (rep.m_defaultToken != Units::NoUnits) mDefaultTokenMap[rep.m_defaultToken] = resolved;
  if (rep.m_unitType == Units::Temperature) {
    const Units::FullUnitType diff = GetMatchingTemperatureDiffUnit(resolved);
    if (diff != Units::NoUnits) SetDefaultUnits(diff);
  }
  return previous;
}

const UnitDefinition* UnitManager::GetDefaultUnitsUnitsDef(Units::UnitType unitType) const {
  auto citer = mUnitTypes.find(unitType);
  if (!WY_CHECK(citer != mUnitTypes.end())) return nullptr;
  return GetUnitDef(citer->second.m_defaultUnits);
}

// ---- Lists -------------------------------------------------------------------------------------

std::vector<Units::FullUnitType> UnitManager::GetFUTList(Units::UnitType unitType) const {
  std::vector<Units::FullUnitType> out;
  auto iter = mUnitTypes.find(unitType);
  if (iter == mUnitTypes.end()) return out;
  for (const auto& [family, units] : iter->second.m_families) {
    for (const auto& unit : units) out.push_back(unit->GetFullUnitType());
  }
  return out;
}

std::vector<Units::FullUnitType> UnitManager::GetFamilyFUTList(Units::FullUnitType fut) const {
  std::vector<Units::FullUnitType> out;
  const UnitDefPtr unit = Get(fut);
  if (unit == nullptr) return out;
  auto typeIter = mUnitTypes.find(unit->GetUnitType());
  if (typeIter == mUnitTypes.end()) return out;
  auto familyIter = typeIter->second.m_families.find(unit->GetFamily());
  if (familyIter == typeIter->second.m_families.end()) return out;
  for (const auto& member : familyIter->second) out.push_back(member->GetFullUnitType());
  return out;
}

void UnitManager::GetFUTRange(Units::FullUnitType from, Units::FullUnitType to,
                              std::vector<Units::FullUnitType>& out) const {
  out.clear();
  if (from == to) {
    out.push_back(from);
    return;
  }
  const Units::FullUnitType first = ResolveFUT(from);
  const Units::FullUnitType last = ResolveFUT(to);
  bool collecting = false;
  for (Units::FullUnitType fut : GetFamilyFUTList(first)) {
    if (fut == first) collecting = true;
    if (!collecting) continue;
    out.push_back(fut);
    if (fut == last) break;
  }
}

Units::FullUnitType UnitManager::GetScaleUnits(Units::FullUnitType fut, double minSI,
                                               double maxSI) const {
  const UnitDefPtr unit = Get(fut);
  if (unit == nullptr || !unit->HasSimpleFactorConversion()) return fut;
  const double magnitude = std::max(std::fabs(minSI), std::fabs(maxSI));
  if (!std::isfinite(magnitude) || magnitude == 0.0) return fut;
  auto typeIter = mUnitTypes.find(unit->GetUnitType());
  if (typeIter == mUnitTypes.end()) return fut;
  auto familyIter = typeIter->second.m_families.find(unit->GetFamily());
  if (familyIter == typeIter->second.m_families.end()) return fut;
  // The family is sorted by size: the last unit not larger than the magnitude reads it as >= 1.
  const UnitDefinition* best = nullptr;
  const UnitDefinition* smallest = nullptr;
  for (const auto& member : familyIter->second) {
    if (!member->HasSimpleFactorConversion() || member->GetFactor() <= 0.0) continue;
    if (smallest == nullptr) smallest = member.get();
    if (member->GetFactor() <= magnitude) best = member.get();
  }
  if (best == nullptr) best = smallest;
  return best != nullptr ? best->GetFullUnitType() : fut;
}

int UnitManager::GetTypeChoices(Units::UnitType unitType, std::vector<AString>& choices) const {
  int count = 0;
  auto iter = mUnitTypes.find(unitType);
  if (iter == mUnitTypes.end()) return 0;
  for (const auto& [family, units] : iter->second.m_families) {
    for (const auto& unit : units) {
      choices.push_back(unit->GetUnitString());
      ++count;
    }
  }
  return count;
}

AString UnitManager::GetTypeChoices(Units::UnitType unitType) const {
  std::vector<AString> choices;
  GetTypeChoices(unitType, choices);
  AString text;
  for (std::size_t i = 0; i < choices.size(); ++i) {
    if (i > 0) text += u", ";
    text += choices[i];
  }
  return text;
}

int UnitManager::GetTypeIndex(Units::FullUnitType fut) const {
  const UnitDefPtr unit = Get(fut);
  if (unit == nullptr) return -1;
  const auto list = GetFUTList(unit->GetUnitType());
  auto iter = std::find(list.begin(), list.end(), unit->GetFullUnitType());
  return iter != list.end() ? static_cast<int>(iter - list.begin()) : -1;
}

// ---- Formats and switches ----------------------------------------------------------------------

AString UnitManager::SetDefaultDoubleFormat(const AString& format) {
  AString previous = mDefaultDoubleFormat;
  mDefaultDoubleFormat = format;
  return previous;
}

AString UnitManager::SetDefaultNumberFormat(const AString& format) {
  AString previous = mDefaultNumberFormat;
  mDefaultNumberFormat = format;
  return previous;
}

bool UnitManager::SetMustWriteUnits(bool on) { return std::exchange(mMustWriteUnits, on); }

bool UnitManager::SetDontAllowUnitsForExpressions(bool on) {
  return std::exchange(mDontAllowUnitsForExpressions, on);
}
