// SPDX-License-Identifier: Apache-2.0
//
// UnitManager.h - the registry of unit types and units.
//
// The manager is filled once, when it is constructed, with every unit type and every unit; the
// process keeps one (see Units::InitializeUnits). Units are looked up by name without regard to
// case (both the unit string and the alternate string of each unit are names) and by code. Codes
// of 904 and above are default-unit tokens: each stands for the current default unit of its type
// and is resolved at the time of every lookup. Within a family units are kept from the smallest
// to the largest SI size, the order in which lists and rescaling walk them.
//
// Copies share the unit definitions (std::shared_ptr) and copy every index. The manager takes no
// locks: build it first, then read it; setters belong to the settings thread.
//
// Unknown input never throws: a check fires, a debug line is written and a neutral result (null,
// code 90, type 15) is returned. The Find* lookups are silent.
#pragma once

#include <map>
#include <memory>
#include <vector>

#include "wycore/Export.h"
#include "wycore/io/AString.h"
#include "wycore/units/Units.h"

class UnitDefinition;

class WYCORE_API UnitManager {
 public:
  // One unit type as the manager keeps it.
  struct UnitTypeRep {
    Units::UnitType m_unitType = Units::NoUnit;
    AString m_name;
    // The pseudo code standing for the current default of this type (>= 904), or 90 for none.
    Units::FullUnitType m_defaultToken = Units::NoUnits;
    Units::FullUnitType m_defaultUnits = Units::NoUnits;
    // Each family's units, sorted from the smallest to the largest after construction.
    std::map<Units::Family, std::vector<std::shared_ptr<UnitDefinition>>> m_families;
  };

  // Case-blind ordering of names (i18n::ACharStrICmp).
  struct NoCaseLess {
    bool operator()(const AString& a, const AString& b) const;
  };

  // Builds all unit types and units.
  UnitManager();
  UnitManager(const UnitManager& other);
  UnitManager& operator=(const UnitManager& other);
  ~UnitManager();

  // ---- Lookup (reporting: unknown input fires a check and writes a debug line) -------------
  const UnitDefinition* GetUnitDef(Units::FullUnitType fut) const;
  const UnitDefinition* GetUnitDef(const AString& name) const;
  // Silent forms, for user input.
  const UnitDefinition* FindUnitDef(Units::FullUnitType fut) const;
  const UnitDefinition* FindUnitDef(const AString& name) const;

  // The type of a unit (NoUnit when unknown) and a type by its name (NoUnit when unknown).
  Units::UnitType GetUnitType(Units::FullUnitType fut) const;
  Units::UnitType GetUnitType(const AString& unitTypeName) const;
  // The type's name; empty for an unknown type.
  AString GetUnitTypeString(Units::UnitType unitType) const;
  Units::Family GetFamily(Units::FullUnitType fut) const;
  Units::Qualifier GetQualifier(Units::FullUnitType fut) const;
  // The unit of the type, family and prefix; 90 when there is none.
  Units::FullUnitType GetFullUnitType(Units::UnitType unitType, Units::Family family,
                                      Units::Qualifier qualifier) const;

  // ---- Defaults -----------------------------------------------------------------------------
  Units::FullUnitType GetDefaultUnits(Units::UnitType unitType) const;
  // Resolves fut and makes it the default of its type; returns the previous default (90 when
  // fut is unknown). A temperature unit also sets the matching temperature-difference unit.
  Units::FullUnitType SetDefaultUnits(Units::FullUnitType fut);
  const UnitDefinition* GetDefaultUnitsUnitsDef(Units::UnitType unitType) const;
  // See Units::GetMatchingTemperatureDiffUnit; 90 when the difference unit is not registered.
  Units::FullUnitType GetMatchingTemperatureDiffUnit(Units::FullUnitType temperatureUnit) const;
  // fut resolved through the default tokens; when it remains an unknown token, `other` resolved.
  Units::FullUnitType ResolveFUT(Units::FullUnitType fut, Units::FullUnitType other) const;

  // ---- Lists --------------------------------------------------------------------------------
  // All units of a type: family by family (ascending code), each family in its sorted order.
  std::vector<Units::FullUnitType> GetFUTList(Units::UnitType unitType) const;
  // The sorted family holding fut; empty when fut is unknown.
  std::vector<Units::FullUnitType> GetFamilyFUTList(Units::FullUnitType fut) const;
  // From `from` to `to` (both included) along from's family; `from` alone when they are equal.
  void GetFUTRange(Units::FullUnitType from, Units::FullUnitType to,
                   std::vector<Units::FullUnitType>& out) const;
  // See Units::GetScaleUnits.
  Units::FullUnitType GetScaleUnits(Units::FullUnitType fut, double minSI, double maxSI) const;
  // The unit strings of a type in GetFUTList order, joined by ", ".
  AString GetTypeChoices(Units::UnitType unitType) const;
  // The same as a list (appended); returns the number appended.
  int GetTypeChoices(Units::UnitType unitType, std::vector<AString>& choices) const;
  // The position of fut in GetFUTList of its type; -1 when unknown.
  int GetTypeIndex(Units::FullUnitType fut) const;
  // Every registered unit type.
  const std::map<Units::UnitType, UnitTypeRep>& GetUnitTypeMap() const { return mUnitTypes; }

  // ---- Formats and switches (setters return the previous value) -----------------------------
  const AString& GetDefaultDoubleFormat() const { return mDefaultDoubleFormat; }
  AString SetDefaultDoubleFormat(const AString& format);
  const AString& GetDefaultNumberFormat() const { return mDefaultNumberFormat; }
  AString SetDefaultNumberFormat(const AString& format);
  bool GetMustWriteUnits() const { return mMustWriteUnits; }
  bool SetMustWriteUnits(bool on);
  bool GetDontAllowUnitsForExpressions() const { return mDontAllowUnitsForExpressions; }
  bool SetDontAllowUnitsForExpressions(bool on);

 private:
  using UnitDefPtr = std::shared_ptr<UnitDefinition>;

  // Registration, used while the tables are built.
  void Add(const UnitDefinition& unit);
  void Add(Units::UnitType unitType, const UnitTypeRep& rep);
  void doAddUnitDefinitionUpdateFutMap(const UnitDefPtr& unit);
  void doAddUnitDefinitionUpdateFutNameMap(const AString& name, const UnitDefPtr& unit);
  void SortUnitDefinitonsWithinFamilies();
  // The tables (defined with the table data).
  void CreateUnitTypes();
  void CreateFullUnitTypes();

  UnitDefPtr Get(Units::FullUnitType fut) const;  // resolved, silent
  const UnitDefinition* GetUnitDef(Units::UnitType unitType, Units::Family family,
                                   Units::Qualifier qualifier) const;
  Units::FullUnitType ResolveFUT(Units::FullUnitType fut) const;
  // Every index agrees with the families.
  bool IsValid() const;

  friend class UnitTableBuilder;
  friend class UnitManagerTestPeer;  // the tests of the registration rules

  std::map<Units::UnitType, UnitTypeRep> mUnitTypes;
  std::map<AString, UnitDefPtr, NoCaseLess> mFutNameMap;
  std::map<Units::FullUnitType, UnitDefPtr> mFutMap;
  std::map<AString, Units::UnitType, NoCaseLess> mUnitTypeNameMap;
  std::map<Units::FullUnitType, Units::FullUnitType> mDefaultTokenMap;
  AString mDefaultDoubleFormat;
  AString mDefaultNumberFormat;
  bool mMustWriteUnits = true;
  bool mDontAllowUnitsForExpressions = false;
};
