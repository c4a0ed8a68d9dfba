// SPDX-License-Identifier: Apache-2.0
//
// Variable.h - a named value that expressions refer to by name.
//
// A Variable is itself a value (it derives from ValueBase): it can stand wherever a value can,
// and reading it reads the value it holds. It owns that value (never null: an absent value is a
// float 0 without units) and keeps the objects that reference it (expressions, properties, other
// variables) in a receiver manager, its owners, which it tells about changes and asks before it is
// renamed or deleted.
//
// Setting a value never lets a variable come to depend on itself: a value that reads the
// variable, directly or through other variables, is refused with message 24540 (posted through
// Value::HandleError with the variable's name and the value's text), and the variable keeps what
// it had. The walk over the variables a value reads is bounded by the number of distinct
// variables met.
//
// Every name has one ID for the life of the process (names compared without regard to case): a
// variable deleted and re-created under the same name, in any case, gets the same ID.
//
// Ownership: the variable owns its value and any values saved while a parameter is passed; it
// never owns its owners. Name spaces list variables without owning them and notice when a
// variable is destroyed (GetLifetime). Threading: one thread, the one that owns the design data;
// the name-to-ID map is process-wide and unlocked.
#pragma once

#include <vector>

#include "wycore/Export.h"
#include "wycore/core/Receiver.h"
#include "wycore/value/ValueBase.h"
#include "wycore/variables/WeakPointer.h"

class Value;

class WYCORE_API Variable : public ValueBase, public SingleVisitReceiver<Variable> {
 public:
  // The value is read from `text` by Value::CreateValueBase with `units` as default units; text
  // that yields no value (or one that would read the variable itself) leaves a float 0 in `units`.
  Variable(const AString& name, const AString& text, Units::FullUnitType units);
  Variable(const AString& name, double value, Units::FullUnitType units = Units::NoUnits);
  // Holds a copy of `value`.
  Variable(const AString& name, const ValueBase& value);
  // Takes ownership of `value` (null: a float 0 without units).
  Variable(const AString& name, ValueBase* value);
  // Same name (and so the same ID) and a copy of the value; no owners, nothing saved.
  Variable(const Variable& other);
  Variable& operator=(const Variable&) = delete;
  ~Variable() override;

  // ---- Name and identity ------------------------------------------------------------------

  const AString& GetName() const { return mName; }
  // Asks the owners (kMayChangeName with the new name) whether the name may change. When none
  // objects the name is set and the ID follows it. When one objects only a change of letter case
  // is allowed. An empty name is always refused. True when the name was changed (or is already
  // exactly `name`).
  bool ChangeName(const AString& name);
  // ChangeName, then tells the owners that the variable changed so that expressions regenerate
  // their text with the new name.
  bool ChangeNameRegenerateExpressions(const AString& name);
  // Asks the owners (kMayDelete); true when none objects.
  bool OKtoDelete() const;
  // The process-wide ID of the name; -1 only for a variable made by the protected constructor
  // without an ID for a name never seen.
  int GetUniqueSessionIDForName() const { return mID; }
  // Removes every leading '$'; when the rest is a label (AString::IsLabel) puts `prefix` in front
  // and returns true, otherwise returns false with the '$'s removed.
  static bool CreateNameWithPrefix(AString& name, AChar prefix);
  // The lifetime token that name spaces watch.
  const base::WeakPointerProvider& GetLifetime() const { return mLifetime; }

  // ---- Value ------------------------------------------------------------------------------

  // Reads `text` (through Value::CreateValueBaseFromTextWithObsoletedVariable when
  // `obsoleteSyntax`, else Value::CreateValueBase) with `units` as default units and sets it.
  // False, and the old value kept, when the text yields no value or the value is refused.
  bool SetVariableText(const AString& text, Units::FullUnitType units, bool obsoleteSyntax = false);
  // Sets a copy of `value`; false when refused.
  bool SetValueBase(const ValueBase& value);
  // Takes ownership of `value` (null: a float 0 without units); false when refused (the value is
  // then deleted).
  bool SetValueBase(ValueBase* value);
  // Swaps the variable's value with `value`'s implementation, with the checks and notification of
  // SetValueBase; false (nothing swapped) when refused.
  bool ExchangeValueBase(Value& value);
  // Swaps without the cycle check and without telling the owners: for a short-lived substitution
  // that the caller undoes with a second call.
  void TempExchangeValueBase(Value& value);
  const ValueBase& GetValueBase() const { return *mValue; }
  const ValueBase* GetValueBasePointer() const { return mValue; }
  // A float in SI without units.
  Variable& operator=(double value);
  // A complex number in SI without units.
  Variable& operator=(const AComplex<double>& value);
  // A copy of `value` (refused like SetValueBase).
  Variable& operator=(const ValueBase& value);

  // ---- Parameter passing ------------------------------------------------------------------

  // Saves the current value for `client` and takes a copy of `value`, for the duration of one
  // call of a function body; calls nest. The owners are not told (the change is temporary). A
  // value that would read the variable itself is refused with message 24540: the variable then
  // keeps a copy of its current value for the call, so that UnpassParameter still pairs, and the
  // result is false.
  bool PassParameter(const ValueBase& value, const void* client);
  // Restores the value saved by the matching PassParameter of `client`. Checks
  // "mSavedValuesWhilePassingParameter.size() > 0" and "saved.mClient == client"; when either
  // fails nothing happens.
  void UnpassParameter(const void* client);

  // ---- Upstream owners --------------------------------------------------------------------

  // For a variable holding a string array: asks the owners (kValidateUpstreamValue) whether
  // `value` is acceptable. True at once for any other value.
  bool ValidateAgainstUpstreamOwners(const ValueBase& value) const;
  // For a variable holding a string array: tells the owners to refresh their dataset caches
  // (kRefreshDatasetCache) and returns whether none objected. True at once otherwise.
  bool UpdateUpstreamOwnersOnValueChange() const;

  // ---- ValueBase: forwarded to the held value ---------------------------------------------

  val::DBType GetDBType() const override;
  MatrixSizeInfo GetMatrixSize() const override;
  double GetValue() const override;
  AComplex<double> GetComplexValue() const override;
  TNT::Matrix<double> GetDoubleMatrixValue() const override;
  TNT::Matrix<AComplex<double>> GetComplexMatrixValue() const override;
  T_2DMatrix<AString> GetStringMatrixValue() const override;
  std::vector<AString> GetStringArrayValue() const override;
  std::vector<double> GetDoubleArrayValue() const override;
  int GetIntValue() const override;
  char GetCharValue() const override;
  int GetEnumValue() const override;
  AString GetStringValue() const override;
  // With respect to this variable itself: the value with first derivative 1.
  ADValue<double> GetDValue(int order, const Variable& variable) const override;
  ADValue<AComplex<double>> GetDComplexValue(int order, const Variable& variable) const override;
  ArcParam GetArcParam() const override;
  CircleParam GetCircleParam() const override;
  RegionParam GetRegionParam() const override;
  void GetValueText(AString& text, AString& units, AString& suffix) const override;
  AString GetValueText() const override;
  AString GetValueTextIncorporateOverrideUnits() const override;
  // A copy of the held value (not of the variable).
  ValueBase* CloneValueBase() const override;
  bool IsEqual(const ValueBase& other) const override;
  // False: a variable can always be set to something else.
  bool IsConstant() const override;
  Units::FullUnitType GetUnits() const override;
  Units::FullUnitType GetExplicitUnits() const override;
  void SetExplicitUnits(Units::FullUnitType units) override;
  val::ParameterType GetParameterType() const override;
  // The variable's owners (not the held value's).
  void AddRef(IReceiver* receiver) override;
  void Release(IReceiver* receiver) override;
  bool HasRef(IReceiver* receiver) const override;
  void ChangeOwner(IReceiver* from, IReceiver* to) override;
  ValueBase* AddConstant(const double& constant) const override;
  ValueBase* SubstituteVariables() const override;
  bool TrySubstituteVariables(IVariableChanger& changer) const override;
  bool DoSubstituteVariables(IVariableChanger& changer) override;
  int GetDatasetID() const override;
  const IDatasetServer* GetDatasetServer() const override;
  ValueBase* CreateEvaluatedValueBase() const override;
  int ReassignDatasets(const CValueDatasetReassigner& reassigner) override;
  // A variable used as a value reads itself.
  void GetReferencedVariables(std::vector<const Variable*>& out) const override;
  void GetReferencedDatasets(std::map<const IDatasetServer*, std::set<int>>& out) const override;

  // Whether `value` reads `variable`, directly or through the variables it reads (the cycle
  // check). Bounded by the number of distinct variables met.
  static bool ValueReadsVariable(const ValueBase& value, const Variable& variable);

 protected:
  // Uses `id` when it is not -1 (recording it for `name` when the name has none yet), otherwise
  // the ID already recorded for `name`, if any (else -1). The value is a float 0 without units.
  Variable(int id, const AString& name);

  // Messages from the held value (a variable it reads changed): forwarded to the owners.
  bool ReceiveOnce(const ReceiverMessage& message) override;

 private:
  struct SavedValue {
    ValueBase* mValue;
    const void* mClient;
  };

  void InternalSetUniqueID();
  // Installs `value` (owned; null means a float 0 without units) unless it would read this
  // variable: then reports 24540, deletes `value` and returns false.
  bool InternalSetValueBase(ValueBase* value);
  // Detaches the old value and attaches `value` (owned, not null); returns the old one.
  ValueBase* Attach(ValueBase* value);
  void ReportSelfReference(const ValueBase& value) const;
  void NotifyValueChanged() const;

  AString mName;
  ValueBase* mValue = nullptr;
  ReceiverManager mOwners;
  std::vector<SavedValue> mSavedValuesWhilePassingParameter;
  int mID = -1;
  base::WeakPointerProvider mLifetime;
};
