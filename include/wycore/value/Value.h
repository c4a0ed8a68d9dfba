// SPDX-License-Identifier: Apache-2.0
//
// Value.h - the handle through which the library stores and passes every quantity.
//
// A Value owns exactly one ValueBase (never null): copying a Value clones it, assigning replaces
// it, destroying deletes it. The getters forward to the implementation, so a Value answers every
// representation its implementation answers (and the neutral defaults of ValueBase otherwise).
//
// A Value may have an owner: the receiver (a variable, a property) that must hear when something
// the implementation reads changes. SetOwner registers the owner with the implementation; each
// replacement of the implementation moves the registration to the new one, and the destructor
// releases it. Copies have no owner.
//
// Persistence: a value is one named item of a block whose content is the value's text (layout in
// docs/values.md). Reading uses the text reader of this area (ReadValueText) for the kinds it
// knows and the value manager (CreateValueBase) for everything else (expressions).
//
// The static functions in the section "process-wide registries" reach the one value manager and
// its tables (function table, constants, intrinsic variables, the current name space); they are
// defined by the variables area (src/variables/ValueRegistry.cpp), which builds that manager in
// InitializeValues. Called before InitializeValues they fire the check "msValueManager" and give a
// neutral result.
//
// Threading: a Value is used on the thread that owns the design data; the registries are filled
// at start-up and read afterwards.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "wycore/Export.h"
#include "wycore/core/Messages.h"
#include "wycore/value/ValueBase.h"
#include "wycore/value/ValueState.h"

namespace io {
class CBlock;
class CBlock_func;
}  // namespace io

// Types of the variables area, known here only by name.
class Variable;
class ValueManager;
class Function;
class IVariableServer;
class IValueParser;
class Expression;

class WYCORE_API Value {
 public:
  // Whether Write puts the units' names into the text: the process-wide switch
  // Units::SetMustWriteUnits is set to this mode for the duration of one write.
  enum MustWriteUnits : std::int32_t { kDontWriteUnits = 0, kWriteUnits = 1 };

  // Read results, the block layer's codes.
  enum ReadResult : std::int32_t { kReadOk = 0, kReadNotFound = 2, kReadNoParse = -1 };

  // ---- Construction ------------------------------------------------------------------------

  // Zero without units.
  Value();
  Value(double value, Units::FullUnitType units = Units::NoUnits);
  Value(const AComplex<double>& value, Units::FullUnitType units = Units::NoUnits);
  Value(const TNT::Matrix<double>& value, Units::FullUnitType units = Units::NoUnits);
  Value(const TNT::Matrix<AComplex<double>>& value, Units::FullUnitType units = Units::NoUnits);
  // Parsed through CreateValueBase; text that yields no value gives 0 in `units` (the failure is
  // reported by the value manager as it parses).
  Value(const AString& text, Units::FullUnitType units);
  // A clone of `value`.
  explicit Value(const ValueBase& value);
  // Takes ownership of `value`; null gives 0 without units.
  explicit Value(ValueBase* value);
  // Zero in `units`, or in the current default unit of `unitType`.
  explicit Value(Units::FullUnitType units);
  explicit Value(Units::UnitType unitType);
  Value(const Value& other);
  Value(Value&& other) noexcept;
  Value& operator=(const Value& other);
  Value& operator=(Value&& other) noexcept;
  ~Value();

  // ---- Getters (forwarded) ------------------------------------------------------------------

  val::DBType GetDBType() const { return mValueBase->GetDBType(); }
  MatrixSizeInfo GetMatrixSize() const { return mValueBase->GetMatrixSize(); }
  double GetValue() const { return mValueBase->GetValue(); }
  AComplex<double> GetComplexValue() const { return mValueBase->GetComplexValue(); }
  TNT::Matrix<double> GetDoubleMatrixValue() const { return mValueBase->GetDoubleMatrixValue(); }
  TNT::Matrix<AComplex<double>> GetComplexMatrixValue() const {
    return mValueBase->GetComplexMatrixValue();
  }
  T_2DMatrix<AString> GetStringMatrixValue() const { return mValueBase->GetStringMatrixValue(); }
  std::vector<AString> GetStringArrayValue() const { return mValueBase->GetStringArrayValue(); }
  std::vector<double> GetDoubleArrayValue() const { return mValueBase->GetDoubleArrayValue(); }
  AString GetStringValue() const { return mValueBase->GetStringValue(); }
  int GetIntValue() const { return mValueBase->GetIntValue(); }
  char GetCharValue() const { return mValueBase->GetCharValue(); }
  int GetEnumValue() const { return mValueBase->GetEnumValue(); }
  ADValue<double> GetDValue(int order, const Variable& variable) const {
    return mValueBase->GetDValue(order, variable);
  }
  ADValue<AComplex<double>> GetDComplexValue(int order, const Variable& variable) const {
    return mValueBase->GetDComplexValue(order, variable);
  }
  ArcParam GetArcParam() const { return mValueBase->GetArcParam(); }
  CircleParam GetCircleParam() const { return mValueBase->GetCircleParam(); }
  RegionParam GetRegionParam() const { return mValueBase->GetRegionParam(); }
  Units::FullUnitType GetUnits() const { return mValueBase->GetUnits(); }
  // The quantity of the units (NoUnit for none).
  Units::UnitType GetUnitType() const;
  Units::FullUnitType GetExplicitUnits() const { return mValueBase->GetExplicitUnits(); }
  void SetExplicitUnits(Units::FullUnitType units) { mValueBase->SetExplicitUnits(units); }
  val::ParameterType GetParameterType() const { return mValueBase->GetParameterType(); }
  bool IsConstant() const { return mValueBase->IsConstant(); }
  AString GetValueText() const { return mValueBase->GetValueText(); }
  void GetValueText(AString& text, AString& units, AString& suffix) const {
    mValueBase->GetValueText(text, units, suffix);
  }
  // The first piece of the three-piece text: the value without the units' names.
  AString GetValueTextWithoutUnits() const;
  AString GetValueTextIncorporateOverrideUnits() const {
    return mValueBase->GetValueTextIncorporateOverrideUnits();
  }
  bool IsEqual(const Value& other) const { return mValueBase->IsEqual(*other.mValueBase); }
  bool IsEqual(const ValueBase& other) const { return mValueBase->IsEqual(other); }
  const ValueBase& GetValueBase() const { return *mValueBase; }
  ValueBase& GetValueBase() { return *mValueBase; }
  // A clone owned by the caller.
  ValueBase* CloneValueBase() const { return mValueBase->CloneValueBase(); }

  // ---- Setters -----------------------------------------------------------------------------

  // Installs a clone of `value`.
  void SetValueBase(const ValueBase& value);
  // Installs `value`, taking ownership; null is refused (false, nothing changes).
  bool SetValueBase(ValueBase* value);
  // Builds a new implementation from `text` (CreateValueBaseFromTextWithObsoletedVariable when
  // `allowObsoleteVariable`, else CreateValueBase) and installs it; false, with the old
  // implementation kept, when the text yields no value.
  bool SetValueText(const AString& text, Units::FullUnitType defaultUnits,
                    bool allowObsoleteVariable = false);
  void SetIntValue(int value);
  void SetCharValue(char value);
  void SetEnumValue(int value);
  // `text` as a string value: a string literal ("\"abc\"", blanks around it allowed) is taken as
  // it stands, any other text is enclosed in double quotes.
  void SetStringValueText(const AString& text);

  // ---- Persistence -------------------------------------------------------------------------

  // Appends the item name=text to `block` (see docs/values.md). False when `name` is empty.
  bool WriteToBlock(io::CBlock& block, const AString& name,
                    MustWriteUnits mode = kWriteUnits) const;
  // Reads the item `name`: kReadOk and the value replaced; kReadNotFound when there is no such
  // item and kReadNoParse when its text yields no value, the value unchanged in both. An empty
  // name fires the check "!name.empty()" and gives kReadNotFound.
  ReadResult ReadFromBlock(const io::CBlock& block, const AString& name);
  // The same as an argument of a function item: Write appends Name=text (or the bare text when
  // `name` is null or empty); Read takes the first named argument `name` (or the first bare
  // argument when `name` is null or empty).
  bool Write(io::CBlock_func& func, const AChar* name, MustWriteUnits mode = kWriteUnits) const;
  ReadResult Read(const io::CBlock_func& func, const AChar* name);

  // The implementation read from a text this area writes (docs/values.md): numbers with units,
  // complex numbers, string literals, arrays, matrices, geometric parameters and datasets. `kind`
  // steers the ambiguous cases (an empty list, "42" as an integer, a character); kNotParam
  // leaves them to the shape of the text. A number written without units is taken in
  // `defaultUnits`. Null when the text is none of these (an expression, or malformed); the caller
  // owns the result.
  static ValueBase* ReadValueText(const AString& text, Units::FullUnitType defaultUnits,
                                  val::ParameterType kind = val::kNotParam);

  // ---- References ---------------------------------------------------------------------------

  // Whether the value reads `variable` directly. What variables read in turn is the business of
  // the variables area, which knows them (and refuses cycles).
  bool UsesVariable(const Variable* variable) const;
  // Whether it reads an intrinsic variable directly.
  bool UsesIntrinsicVariable() const;
  // Whether it reads directly one of the spatial intrinsic variables "X", "Y", "Z", "R",
  // "Theta", "Phi", "Rho", "Distance", "NormalizedDistance".
  bool UsesSpatialIntrinsics() const;
  // The variables read directly (duplicates removed, first-read order).
  void GetReferencedVariables(std::vector<const Variable*>& out) const;
  void GetReferencedDatasets(std::map<const IDatasetServer*, std::set<int>>& out) const;
  // Replaces the implementation by one in which every variable read is replaced by its current
  // value; false when there was nothing to substitute.
  bool SubstituteVariables();
  // Substitutes as `changer` says; true when something changed.
  bool TrySubstituteVariables(IVariableChanger& changer);
  // Replaces the implementation by its evaluated, constant form.
  void ReplaceWithEvaluatedValueBase();
  // Replaces the implementation by the evaluated, constant form of `other`.
  void UpdateSelfWithEvaluatedValueOf(const Value& other);
  int ReassignDatasets(const CValueDatasetReassigner& reassigner) {
    return mValueBase->ReassignDatasets(reassigner);
  }
  // Registers `owner` (null: none) with the implementation, releasing the previous owner.
  void SetOwner(IReceiver* owner);
  IReceiver* GetOwner() const { return mOwner; }

  // ---- Process-wide registries (defined by the variables area) -----------------------------

  // A new value from text (number, string literal, expression, ...) owned by the caller, or null
  // when the text yields none; the parser reports its errors.
  static ValueBase* CreateValueBase(const AString& text, Units::FullUnitType units);
  // The same, accepting the names of obsoleted intrinsic variables (replaced by their new names).
  static ValueBase* CreateValueBaseFromTextWithObsoletedVariable(const AString& text,
                                                                 Units::FullUnitType units);
  // Whether CreateValueBase would yield a value for `text` (nothing is reported).
  static bool IsValidText(const AString& text);
  // The canonical text of a parsed expression, rebuilt from its operation stream by the value
  // text generator with the strategy of the current value format context (the default strategy
  // when none is set): operators spelled as the parser spells them, only the parentheses the
  // operator ranks need, numbers in "%-.15g" with their units' names. Empty when the stream is
  // malformed (a check has fired then); the expression's text is left to the caller.
  static AString GenerateExpressionText(const Expression& expression);

  // The function table. RegisterFunction takes ownership; a name may be registered several
  // times (argument kinds or counts differ). GetFunction picks the overload for the argument
  // count and states; on failure it returns null and stores the message code in `errorCode`.
  static bool RegisterFunction(Function* function);
  static bool FunctionExists(const AString& name);
  static const Function* GetFunction(const AString& name, int argumentCount,
                                     const std::vector<ValueState>& argumentStates, int& errorCode);
  static void GetFunctions(const AString& name, std::vector<const Function*>& out);
  static void GetAllFunctionNames(std::vector<AString>& out);
  // The ID of a function name (-1 when unknown) and back (empty when unknown).
  static int GetFunctionID(const AString& name);
  static AString GetFunctionName(int functionID);
  static void GetConversionFunctionNames(std::vector<AString>& out);
  // Replaces each function of `functions` that the value manager's ValueChanger replaces
  // (following chains); true when anything was replaced. Used by the expression parser.
  static bool ApplyFunctionModifications(std::vector<const Function*>& functions);

  // Intrinsic and predefined variables (owned by the value manager).
  static Variable* AddCustomIntrinsicVariable(const AString& name, Units::UnitType unitType,
                                              val::ParameterType kind = val::kDoubleParam);
  static Variable* GetIntrinsicVariable(const AString& name);
  static void GetIntrinsicVariables(std::vector<Variable*>& out);
  static Variable* GetPredefinedVariable(const AString& name);
  static void GetPredefinedVariables(std::vector<Variable*>& out);
  // Appends (old name, new name) of the intrinsic variables obsoleted at or after the version;
  // returns the number of pairs in `out`.
  static int GetObsoletedIntrinsicVariables(std::vector<std::pair<AString, AString>>& out,
                                            int major, int minor);
  // The current name of an obsoleted intrinsic variable (`name` itself when not obsoleted).
  static AString ReplaceObsoletedIntrinsicVariable(const AString& name);
  static void ApplyDefaultFullUnitTypesToIntrinsicVariables();

  // Constants (owned by the value manager).
  static Variable* AddCustomConstant(const AString& name, double value, Units::FullUnitType units);
  static void GetConstants(std::vector<Variable*>& out);
  static Variable* GetConstantVariable(const AString& name);

  // Name resolution in the current name space; null when not found.
  static Variable* ResolveVariable(const AString& name);
  static bool DoesGlobalVariableExist(const AString& name);

  // The optional external parser; the setter returns the previous one.
  static IValueParser* SetValueParser(IValueParser* parser);
  static IValueParser* GetValueParser();
  static ValueManager* GetValueManager();
  static void GetDatasetServers(std::vector<const IDatasetServer*>& out);
  // The dataset ID of `name` (-1 when unknown) and its server.
  static int ResolveDatset(const AString& name, const IDatasetServer*& server);
  static IVariableServer* SetClipboardVariableServer(IVariableServer* server);
  static IVariableServer* GetClipboardVariableServer();

  // Switches; each setter returns the previous value.
  static bool EnableComplexValues(bool on);
  static bool AreComplexValuesEnabled();
  static bool DisablePostingErrorMessages(bool disable);
  static bool SetMustSubstituteVariables(bool on);
  static bool MustSubstituteVariables();
  static bool AllowHComSyntaxForAngleBracketAppendToLabel(bool allow);
  static bool IsAllowHComSyntaxForAngleBracketAppendToLabel();

  // Reports a numbered message with up to three arguments (HandleError: severity Error), unless
  // posting is disabled.
  static void HandleError(int code, const AString* arg1 = nullptr, const AString* arg2 = nullptr,
                          const AString* arg3 = nullptr);
  static void HandleMessage(int code, wycore::Severity severity, const AString* arg1 = nullptr,
                            const AString* arg2 = nullptr, const AString* arg3 = nullptr);

  // Builds and tears down the value manager with its constants, intrinsic variables and function
  // table. Units::InitializeUnits must have run before.
  static void InitializeValues();
  static void UnInitializeValues();

 private:
  // Installs `value` (owned, not null), moving the owner's registration to it.
  void Install(ValueBase* value);

  ValueBase* mValueBase;
  IReceiver* mOwner = nullptr;
};
