// SPDX-License-Identifier: Apache-2.0
//
// VariableValues.h - one assignment of values to variables (a variation), and its variation key.
//
// VariableValues maps Variable* to Value. The variables are not owned (they must outlive the
// assignment and must not be renamed while it holds them); the values are owned copies. The map
// is ordered by VariableValues::CompareVariables (names without regard to case, then exactly,
// then the per-process ID, then the address), so that one set of variables always comes out in
// the same order whatever order it was added in: two assignments of the same values give the
// same key.
//
// A variation key is the text that names an assignment: one named value Name='text' per variable,
// in map order, written with the token format of the storage layer (names are keywords, values
// single-quoted texts), a blank between the pairs, and a tab instead of the blank where a long
// key is broken. docs/variations.md describes the text and the choices made here (comparison
// tolerances, the file-name display modes, array elements, what subset and complete keys keep).
// Reading keys is in VariationKey.h.
//
// Applying an assignment (so that expressions evaluate at the variation) is done by the contexts
// of VariableValuesContext.h, or by PassParameters/UnpassParameters here.
//
// Threading: like the variables it holds, an assignment is used on the thread that owns the
// design data. Writing a key swaps the unit manager's default double format for the time of the
// call: it must not run beside other code that formats numbers.
#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "wycore/Export.h"
#include "wycore/core/AComplex.h"
#include "wycore/io/AString.h"
#include "wycore/units/Units.h"
#include "wycore/value/Value.h"

class Variable;
class VariableNameSpace;
class IVariableServer;

namespace val {

// How a string value (a file name, typically) is shown in a variation key. Modes 0 to 2 are the
// three file-name rules; mode 3 shows strings as mode 0 does and, with array elements, keeps the
// element of a string array as a string literal (see docs/variations.md).
enum enVariationKeyFileNameDisplayMode : std::int32_t {
  kVariationKeyFullFileName = 0,         // the literal as it stands: "\"/data/run/a.csv\""
  kVariationKeyFileNameOnly = 1,         // without directories: "\"a.csv\""
  kVariationKeyFileNameNoExtension = 2,  // without directories and extension: "\"a\""
  kVariationKeyQuotedArrayElements = 3,  // as 0; array elements of string arrays stay literals
};

}  // namespace val

// Tolerances of the number comparisons of VariableValues, one for real parts and one for
// imaginary parts (the real and imaginary members of each complex number). Two parts x and y are
// equal when both are finite and |x - y| <= absolute or |x - y| <= relative * max(|x|, |y|); when
// either is not finite they are equal only when identical (NaN equals NaN here, so that keys
// holding "nan" name one variation). The default is the value model's equality: 0 absolute,
// 1e-14 relative.
struct VariableValueTolerances {
  AComplex<double> mAbsolute{0.0, 0.0};
  AComplex<double> mRelative{1e-14, 1e-14};
};

class WYCORE_API VariableValues {
 public:
  // The result of the comparisons: the first operand sorts before, with, or after the second.
  enum CompareResult : std::int32_t { kLess = -1, kEqual = 0, kGreater = 1 };

  // Tolerances of the number comparisons (see VariableValueTolerances).
  using Tolerances = VariableValueTolerances;

  // The order of the variables in an assignment and in its key.
  struct WYCORE_API CompareVariables {
    bool operator()(const Variable* a, const Variable* b) const;
  };

  using VariableValueMap = std::map<Variable*, Value, CompareVariables>;
  // Names written in place of a variable's own name.
  using NameMap = std::map<Variable*, AString>;
  // The unit to write evaluated values of a quantity in.
  using UnitMap = std::map<Units::UnitType, Units::FullUnitType>;

  // The format of the short forms of GetVariationKey and BuildVariationKey: enough digits for
  // every double to read back exactly.
  static constexpr const AChar* kKeyDoubleFormat = u"%-.17g";

  VariableValues();
  // Each variable with (a copy of) its current value; null entries are skipped.
  explicit VariableValues(const std::vector<Variable*>& variables);
  VariableValues(const VariableValues& other);
  VariableValues& operator=(const VariableValues& other);
  ~VariableValues();

  // ---- The map ----------------------------------------------------------------------------

  // Adds `variable` with a copy of `value`; false (nothing changes) when the variable is null or
  // already present.
  bool AddVariableValue(Variable* variable, const Value& value);
  // Adds or replaces; false for a null variable.
  bool SetVariableValue(Variable* variable, const Value& value);
  // Replaces the value of the variable of the assignment called `name` (without regard to case);
  // false when there is none.
  bool SetVariableValue(const AString& name, const Value& value);
  bool RemoveVariableValue(const Variable* variable);
  // The variable of the assignment called `name` (without regard to case), or null.
  Variable* GetVariable(const AString& name) const;
  // The value of a variable of the assignment; 0 without units when it is absent.
  Value GetVariableValue(const AString& name) const;
  Value GetVariableValue(const Variable* variable) const;
  bool DoesVariableExist(const AString& name) const;
  bool DoesVariableExist(const Variable* variable) const;
  const VariableValueMap& GetVariableValueMap() const { return mValues; }
  std::size_t size() const { return mValues.size(); }
  // Adds or replaces each variable of the list with its current value.
  void CopyVarValuesFrom(const std::vector<Variable*>& variables);

  // ---- Evaluation and application ---------------------------------------------------------

  // `out` receives every variable with its value evaluated while this assignment is in force
  // (so values that read other variables of the assignment see the assigned values). Values
  // already constant are copied. `out` may be this assignment.
  void ConvertToConstantValues(VariableValues& out) const;
  // The same in place: every value that is not constant is replaced by its evaluated value.
  void EvaluateDependentValues();
  // Gives each variable its value of the assignment for good (Variable::SetValueBase, with its
  // cycle check and owner notification); false when one was refused (the others are set).
  bool SetVariablesCurrentValue() const;
  // Swaps each variable's value with the assignment's (Variable::TempExchangeValueBase): the
  // variables hold the assigned values, the assignment the previous ones. UnpassParameters swaps
  // back. No cycle check and no notification: for a short evaluation only. Calling either twice
  // in a row fires the check "mParametersPassed == false" (or "mParametersPassed == true") and
  // does nothing.
  void PassParameters();
  void UnpassParameters();
  bool AreParametersPassed() const { return mParametersPassed; }

  // ---- Comparison -------------------------------------------------------------------------

  // The same variables and values equal by the value model's equality (Compare with the default
  // tolerances).
  bool operator==(const VariableValues& other) const;
  bool operator!=(const VariableValues& other) const { return !(*this == other); }
  // A strict order for sets of assignments: fewer variables first, then variable by variable in
  // map order (the order of the variables, then Compare of the values).
  bool operator<(const VariableValues& other) const;
  // The same variables and every value equal within `tolerances` (Compare).
  bool AreAllVariableValuesEqual(const VariableValues& other, const Tolerances& tolerances) const;
  // Whether `key` names this assignment: the key's names are the names of the variables (one to
  // one, without regard to case), and each value of the key, read as a value, equals the
  // variable's evaluated value within `tolerances`. False for a key that does not parse.
  bool IsEqualToConstantKey(const AString& key, const Tolerances& tolerances) const;

  // ---- Variation keys ---------------------------------------------------------------------

  // The key of this assignment, written with `doubleFormat` as the unit manager's default double
  // format (restored afterwards). For each variable, in map order:
  //  - the value's text; when `evaluate` is set and the value is not constant, its value
  //    evaluated while this assignment is in force, in its own units or in the unit `units`
  //    gives for their quantity (real values as one real number, complex values as a complex
  //    number); a character by its code;
  //  - a string value shown by the file-name rule of `mode`;
  //  - with `arrayElements`, for an ArrayIndexVariable, the array element it selects;
  //  - written under the name `names` gives for the variable, else its own name.
  // Once `width` characters or more have been written since the last break, the next pair is
  // separated by a tab instead of a blank (0: never). A name that is not a keyword of the token
  // format fires the check "grammar.IsPlainKeyword(name)" and is written quoted; such a key
  // does not read back.
  AString GetVariationKey(const AString& doubleFormat, bool evaluate, const NameMap* names,
                          const UnitMap* units, bool arrayElements, unsigned int width,
                          val::enVariationKeyFileNameDisplayMode mode) const;
  // kKeyDoubleFormat, no array elements, no breaks, full file names.
  AString GetVariationKey(bool evaluate = false, const NameMap* names = nullptr,
                          const UnitMap* units = nullptr) const;

  // The key of the variables with their current values.
  static AString BuildVariationKey(const std::vector<Variable*>& variables,
                                   const AString& doubleFormat, bool evaluate, const NameMap* names,
                                   const UnitMap* units, bool arrayElements, unsigned int width,
                                   val::enVariationKeyFileNameDisplayMode mode);
  static AString BuildVariationKey(const std::vector<Variable*>& variables, bool evaluate = false,
                                   const NameMap* names = nullptr, const UnitMap* units = nullptr);
  // `key` completed with the variables it lacks: every pair of `key` is kept with its text, each
  // variable of the list whose name (without regard to case) the key does not hold is added with
  // its current value written as GetVariationKey writes it, and the whole is written again in
  // the order of the names. A key that does not parse contributes the pairs before its bad item.
  static AString BuildCompleteVariationKey(const AString& key,
                                           const std::vector<Variable*>& variables,
                                           const AString& doubleFormat, bool evaluate,
                                           const NameMap* names, const UnitMap* units,
                                           bool arrayElements, unsigned int width,
                                           val::enVariationKeyFileNameDisplayMode mode);
  static AString BuildCompleteVariationKey(const AString& key,
                                           const std::vector<Variable*>& variables,
                                           bool evaluate = false);
  // The pairs of `key` whose names are in `names` (without regard to case), in the key's order;
  // with `exclude` the pairs whose names are not. A key that does not parse contributes the
  // pairs before its bad item.
  static AString GetSubsetVariationKey(const AString& key, const std::vector<AString>& names,
                                       bool exclude = false);
  // The text of `name`'s value in `key` (names without regard to case). False, with `valueText`
  // unchanged, for an empty key, a name the key does not hold, or a key that breaks off before
  // the name's pair.
  static bool GetValueString(const AString& key, const AString& name, AString& valueText);
  // The value of `name` as a number in SI: a number with optional units, or any text that reads
  // as a value of real or complex kind (an expression is evaluated). `isComplex` tells whether
  // the value was complex. False, with both outputs unchanged, when there is no such number.
  static bool GetValueString(const AString& key, const AString& name, AComplex<double>& value,
                             bool& isComplex);
  // Keys equal without regard to case are equal; otherwise both are read (VariationKeyVariable-
  // Server) and compared by the five-argument form with `sameVariables` set.
  static bool AreVariationKeysEqual(const AString& key1, const AString& key2);
  // Variable by variable: each name of key1 is looked up in server1 and server2 (a null server
  // is built from its key), and the two values must be equal by Compare with the default
  // tolerances. With `sameVariables` both keys must hold the same names; without it names found
  // in only one of the servers are skipped. False when either key does not parse.
  static bool AreVariationKeysEqual(const AString& key1, const AString& key2,
                                    const IVariableServer* server1, const IVariableServer* server2,
                                    bool sameVariables);
  // Puts the assignment `key` names into `out`: each name is resolved in `nameSpace` and its text
  // read as a value in that name space (so an expression reads the name space's variables, which
  // the assignment itself may assign). With `evaluate` the values are then evaluated at the
  // assignment (EvaluateDependentValues). Result: 0 when every pair was resolved and read; the
  // number of pairs skipped (name not found, or text that reads as no value) otherwise; -1 when
  // the key does not parse (the pairs before the bad item are still put into `out`).
  static int ResolveVariationKey(VariableValues& out, const AString& key,
                                 const VariableNameSpace& nameSpace, bool evaluate);
  // The same with servers: names are resolved by `targetServer`; the values are those of
  // `keyServer`'s variables (null: built from `key`). A value that reads other variables is
  // evaluated when `evaluate` is set and otherwise read again from its text with the target
  // server's variables in scope, so that `out` never refers to the key server's variables.
  static int ResolveVariationKey(const AString& key, const IVariableServer* keyServer,
                                 VariableValues& out, const IVariableServer* targetServer,
                                 bool evaluate);

  // Two values: non-constant values are evaluated first (CreateEvaluatedValueBase), then
  // ConstantCompare.
  static CompareResult Compare(const Value& a, const Value& b,
                               const Tolerances& tolerances = Tolerances());
  // Two values as they stand. Kinds sort in groups: numbers (real, complex, integer, character,
  // enumeration: compared as complex numbers), strings (exactly, case counting), real and complex
  // lists and matrices (shape, then entry by entry as complex numbers), string lists and
  // matrices (shape, then entries exactly), everything else (equal when IsEqual, else by text).
  static CompareResult ConstantCompare(const Value& a, const Value& b,
                                       const Tolerances& tolerances = Tolerances());
  // Real parts first, then imaginary parts, each with its tolerance (see Tolerances); NaN sorts
  // after every number.
  static CompareResult CompareComplexNumbers(const AComplex<double>& a, const AComplex<double>& b,
                                             const Tolerances& tolerances = Tolerances());

 private:
  VariableValueMap mValues;
  bool mParametersPassed = false;
};

// Orders sets of assignments by VariableValues::operator<.
struct WYCORE_API LessVariableValues {
  bool operator()(const VariableValues& a, const VariableValues& b) const { return a < b; }
};

// Compares assignments with tolerances: as a predicate, true when `a` sorts before `b`. With
// non-zero tolerances equality is not transitive (a ~ b and b ~ c without a ~ c), so a set
// ordered by it keeps the first of several assignments that lie within tolerance of each other.
class WYCORE_API CompareVariableValues {
 public:
  CompareVariableValues() = default;
  CompareVariableValues(const AComplex<double>& absolute, const AComplex<double>& relative);

  bool operator()(const VariableValues& a, const VariableValues& b) const {
    return Compare(a, b) == VariableValues::kLess;
  }
  // Fewer variables first, then variable by variable (the variables' order, then the values by
  // VariableValues::Compare with the tolerances).
  VariableValues::CompareResult Compare(const VariableValues& a, const VariableValues& b) const;
  const VariableValues::Tolerances& GetTolerances() const { return mTolerances; }

 private:
  VariableValues::Tolerances mTolerances;
};
