// SPDX-License-Identifier: Apache-2.0
//
// ValueManager.h - the process-wide registry behind expressions: constants, intrinsic and
// predefined variables, the function table, the current name space, the value parser and a few
// switches.
//
// Value::InitializeValues builds the one manager of the process and the static functions of Value
// forward to it. The manager creates on construction, in this order:
//   - the constants "pi", "c0", "e0", "u0", "boltz", "elecq", "eta" (in "ohm"), "true", "false";
//   - the intrinsic variables (the sweep and solver quantities such as "Freq" and "Time") with
//     the unit types listed in docs/variables.md, each 0 in its type's current default unit;
//   - "F": an intrinsic frequency variable when the environment variable HOLMWAYEM_REMOVE_F was
//     set to a value beginning with "0" when the process started; otherwise "F" is recorded as
//     obsoleted by "Freq" as of version 2020.1.
// "Spectral" is reserved as an alias of the intrinsic variable "Spectrum". Every name lookup is
// case-blind. Constants, intrinsic and predefined variables are owned by the manager and held by
// an anonymous owner that objects to their deletion and renaming.
//
// The flag of CreateIntrinsicVariable marks an intrinsic variable as reserved for the analyses
// that set it: it resolves like any other, but auto-completion does not offer it.
//
// Text to value (CreateValueBase), in this order: the current name space's first-chance parser;
// a string literal ("\"...\"", StringValue::Parse); a real or complex number with optional units
// (Units::TextToComplex; complex only while complex values are enabled); the expression parser
// (ExpressionParser, which reports its errors); and, when the expression does not parse, the
// installed value parser (the expression parser then tries first without reporting, so that only
// a text nobody knows is reported).
//
// Threading: one manager per process, built at start-up; the current name space and the switches
// are process-wide and unlocked.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "wycore/Export.h"
#include "wycore/core/Messages.h"
#include "wycore/core/Receiver.h"
#include "wycore/io/AString.h"
#include "wycore/units/Units.h"
#include "wycore/value/ParameterType.h"
#include "wycore/value/ValueState.h"
#include "wycore/variables/ConstVisitor.h"
#include "wycore/variables/ValueChanger.h"

class Variable;
class ValueBase;
class VariableNameSpace;
class IVariableServer;
class IDatasetServer;
class IValueParser;
class Function;
class FunctionTable;
class ExpressionParser;

class WYCORE_API ValueManager {
 public:
  // The environment variable read once at start-up, and the alias of "Spectrum".
  static constexpr const char* kRemoveFEnvironmentVariable = "HOLMWAYEM_REMOVE_F";
  static constexpr const AChar* kSpectralName = u"Spectral";

  // Reads HOLMWAYEM_REMOVE_F from the environment.
  ValueManager();
  // Uses `removeF` as the value of HOLMWAYEM_REMOVE_F (nullopt: not set).
  explicit ValueManager(const std::optional<std::string>& removeF);
  ValueManager(const ValueManager&) = delete;
  ValueManager& operator=(const ValueManager&) = delete;
  ~ValueManager();

  // The rule for "F": true (an intrinsic variable) exactly when the setting is present and
  // begins with "0".
  static bool IsFIntrinsic(const std::optional<std::string>& removeF);

  // ---- Names ------------------------------------------------------------------------------

  Variable* FindConstant(const AString& name) const;
  // "Spectral" (any case) answers "Spectrum".
  Variable* FindIntrinsicVariable(const AString& name) const;
  Variable* FindPredefinedVariable(const AString& name) const;
  // In the current name space; without one, the constants and then the last-chance resolver.
  Variable* ResolveVariable(const AString& name) const;
  int ResolveDatset(const AString& name, const IDatasetServer*& server) const;
  void GetDatasetServers(std::vector<const IDatasetServer*>& out) const;

  const VariableNameSpace* GetVariableNameSpace() const { return mCurrentNameSpace; }
  // Returns the previous current name space.
  const VariableNameSpace* SetVariableNameSpace(const VariableNameSpace* nameSpace);
  // Consulted last by every resolution; returns the previous resolver.
  const IVariableServer* SetLastChanceResolver(const IVariableServer* resolver);
  const IVariableServer* GetLastChanceResolver() const { return mLastChanceResolver; }

  // Checks "i == mConstants.end()" for a duplicate; returns the constant or null.
  Variable* CreateConstant(const AString& name, double value, Units::FullUnitType units);
  // Checks "i == mIntrinsicVariables.end()", "i == mConstants.end()" and
  // "name.CompareNoCase(kSpectralName) != 0"; a failing check leaves everything as it was and
  // returns null. The variable is 0 (complex 0 for kComplexParam) in the type's default unit.
  Variable* CreateIntrinsicVariable(const AString& name, Units::UnitType unitType,
                                    val::ParameterType kind, bool reserved);
  // A predefined variable holding a copy of `value`; checks
  // "i == mPredefinedVariables.end()" and "i == mConstants.end()". Null when refused.
  Variable* CreatePredefinedVariable(const AString& name, const ValueBase& value);
  // Every intrinsic variable takes its value (unchanged in SI) in its unit type's current
  // default unit.
  void ApplyDefaultFullUnitTypesToIntrinsicVariables();
  // The unit type an intrinsic variable was created with (NoUnit when unknown).
  Units::UnitType GetIntrinsicVariableUnitType(const AString& name) const;
  bool IsReservedIntrinsicVariable(const AString& name) const;

  // Appends (old, new) for each obsoleted intrinsic variable of version (major, minor) or later;
  // returns the number of pairs in `out`.
  int GetObsoletedIntrinsicVariables(std::vector<std::pair<AString, AString>>& out, int major,
                                     int minor) const;
  // The new name of an obsoleted name (any case), or `name` itself.
  AString ReplaceObsoletedIntrinsicVariable(const AString& name) const;

  void GetConstants(std::vector<Variable*>& out) const;
  void GetIntrinsicVariables(std::vector<Variable*>& out) const;
  void GetPredefinedVariables(std::vector<Variable*>& out) const;

  // Feed the names that start with `prefix` (case-blind) to `visitor`, in case-blind order.
  // Reserved intrinsic variables are skipped unless `includeReserved`.
  void GetMatchingConstantNames(const AString& prefix, IConstVisitor<AString>& visitor) const;
  void GetMatchingIntrinsicVariableNames(const AString& prefix, IConstVisitor<AString>& visitor,
                                         bool includeReserved = false) const;
  void GetMatchingPredefinedVariableNames(const AString& prefix,
                                          IConstVisitor<AString>& visitor) const;
  void GetMatchingFunctionNames(const AString& prefix, IConstVisitor<AString>& visitor) const;

  // ---- Function table (see Function.h and Value.h) ----------------------------------------

  bool RegisterFunction(Function* function);
  bool FunctionExists(const AString& name) const;
  // Null on failure with `errorCode` 24499 (no function of that name), 24500 (none takes that
  // many arguments) or 24501 (the arguments' kinds fit none).
  const Function* GetFunction(const AString& name, int argumentCount,
                              const std::vector<ValueState>& argumentStates, int& errorCode) const;
  void GetFunctions(const AString& name, std::vector<const Function*>& out) const;
  void GetAllFunctionNames(std::vector<AString>& out) const;
  int GetFunctionID(const AString& name) const;
  AString GetFunctionName(int functionID) const;
  void GetConversionFunctionNames(std::vector<AString>& out) const;
  // The deprecated function replacements applied when expressions are rewritten.
  ValueChanger& GetValueChanger() { return mValueChanger; }

  // ---- Text to value ----------------------------------------------------------------------

  ValueBase* CreateValueBase(const AString& text, Units::FullUnitType units) const;
  // Replaces the names of obsoleted intrinsic variables in `text` (whole names outside string
  // literals, any case) by their new names; true when something was replaced.
  bool ReplaceObsoletedNamesInText(AString& text) const;

  // ---- Messages and switches --------------------------------------------------------------

  // Posts message `code` with the given arguments (nulls end the list) unless posting is
  // disabled; then the text goes to the debug log instead.
  void HandleMessage(int code, wycore::Severity severity, const AString* arg1, const AString* arg2,
                     const AString* arg3) const;
  bool EnableComplexValues(bool on);
  bool AreComplexValuesEnabled() const { return mComplexValuesEnabled; }
  bool SetMustSubstituteVariables(bool on);
  bool MustSubstituteVariables() const { return mMustSubstituteVariables; }
  bool DisablePostingErrorMessages(bool disable);
  bool IsPostingErrorMessagesDisabled() const { return mPostingErrorMessagesDisabled; }
  bool AllowHComSyntaxForAngleBracketAppendToLabel(bool allow);
  bool IsAllowHComSyntaxForAngleBracketAppendToLabel() const { return mAllowHComSyntax; }
  IVariableServer* SetClipboardVariableServer(IVariableServer* server);
  IVariableServer* GetClipboardVariableServer() const { return mClipboardVariableServer; }
  IValueParser* SetValueParser(IValueParser* parser);
  IValueParser* GetValueParser() const { return mValueParser; }

 private:
  struct NameLess {
    bool operator()(const AString& a, const AString& b) const;
  };
  struct IntrinsicInfo {
    Units::UnitType mUnitType;
    val::ParameterType mKind;
    bool mReserved;
  };
  struct ObsoletedIntrinsic {
    int mMajor;
    int mMinor;
    AString mOldName;
    AString mNewName;
  };
  // The anonymous owner of the manager's variables: objects to their deletion and renaming.
  class Keeper : public IReceiver {
   public:
    bool Receive(const ReceiverMessage& message) override;
  };
  using VariableMap = std::map<AString, std::unique_ptr<Variable>, NameLess>;

  // Parses `text` as an expression; null when it does not parse (reported as the parser is set).
  ValueBase* ParseExpression(ExpressionParser& parser, const AString& text,
                             Units::FullUnitType units) const;
  void InitializeConstants();
  void InitializeValueManager(bool fIsIntrinsic);
  Variable* Adopt(VariableMap& map, std::unique_ptr<Variable> variable);

  Keeper mKeeper;  // declared first: outlives the variables it keeps
  VariableMap mConstants;
  VariableMap mIntrinsicVariables;
  VariableMap mPredefinedVariables;
  std::map<AString, IntrinsicInfo, NameLess> mIntrinsicInfo;
  std::vector<ObsoletedIntrinsic> mObsoletedIntrinsicVariables;
  const VariableNameSpace* mCurrentNameSpace = nullptr;
  const IVariableServer* mLastChanceResolver = nullptr;
  IVariableServer* mClipboardVariableServer = nullptr;
  IValueParser* mValueParser = nullptr;
  bool mComplexValuesEnabled = true;
  bool mMustSubstituteVariables = false;
  bool mPostingErrorMessagesDisabled = false;
  bool mAllowHComSyntax = false;
  std::unique_ptr<FunctionTable> mFunctions;
  ValueChanger mValueChanger;
};
