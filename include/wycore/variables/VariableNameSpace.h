// SPDX-License-Identifier: Apache-2.0
//
// VariableNameSpace.h - the scope in which names in expression text are resolved.
//
// A name space lists variables and variable servers of its own and, by its search flags, also
// searches the value manager's intrinsic, predefined and constant names and, when it appends to
// the previous name space, the name space that was current before it. ResolveVariable looks a
// name up in this order, the first hit winning:
//   1. the own variables, in the order added, names compared without regard to case;
//   2. the variable servers, the last added first;
//   3. with flag 2 the intrinsic variables; otherwise, with flag 4, the predefined variables;
//   4. with flag 1 the constants;
//   5. with append-to-previous, the previous name space (by its own flags, recursively);
//   6. last, the value manager's last-chance resolver, when one is installed.
//
// Name spaces form a stack held by the value manager: starting one makes it current and
// remembers the one that was current; stopping it (its destructor does) makes that one current
// again. They are meant to be destroyed in the reverse order of their construction, like nested
// scopes. Destroying one out of order fires the check "!\"Name space stopped out of stack
// order\"" and unlinks it, so no other name space is left pointing at it.
//
// Ownership: nothing listed is owned. Variables may be destroyed while listed (the entry is then
// skipped); servers and parsers must outlive their entry. Threading: the current name space is
// process-wide; create, destroy and resolve on the thread that evaluates expressions.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "wycore/Export.h"
#include "wycore/io/AString.h"
#include "wycore/units/Units.h"
#include "wycore/value/ParameterType.h"
#include "wycore/variables/EnumSet.h"
#include "wycore/variables/WeakPointer.h"

class Variable;
class ValueBase;
class IVariableServer;
class IDatasetServer;
class IValueParser;
class AutoCompStrProvider;

// The kinds of names a name space searches besides its own; bit values 1, 2 and 4.
enum VariableSearchFlag : int {
  kSearchConstants = 0,
  kSearchIntrinsicVariables = 1,
  kSearchPredefinedVariables = 2,
};
using VariableSearchFlags = base::EnumSet_T<VariableSearchFlag, 3>;

class WYCORE_API VariableNameSpace : public base::WeakPointerProvider {
 public:
  // The constructors' choices; in each, 0 is "yes".
  enum SearchIntrinsicVariables : int { kSearchIntrinsics = 0, kDontSearchIntrinsics = 1 };
  enum AppendToPreviousVNS : int { kAppendToPrevious = 0, kDontAppendToPrevious = 1 };
  enum InitialSearchState : int { kStartSearching = 0, kDontStartSearching = 1 };

  // What FindVariableType answers.
  enum VariableType : int {
    kNotAVariable = 0,
    kPredefinedVariable = 4,
    kIntrinsicVariable = 5,
    kConstantVariable = 6,
  };

  // Each constructor searches constants, adds the intrinsic flag when asked, and starts searching
  // (the third only when `start` is kStartSearching). A null variable or server is ignored.
  VariableNameSpace(Variable* variable, SearchIntrinsicVariables intrinsics,
                    AppendToPreviousVNS append);
  VariableNameSpace(const IVariableServer* server, SearchIntrinsicVariables intrinsics,
                    AppendToPreviousVNS append);
  explicit VariableNameSpace(SearchIntrinsicVariables intrinsics = kSearchIntrinsics,
                             AppendToPreviousVNS append = kAppendToPrevious,
                             InitialSearchState start = kStartSearching);
  // A copy lists what the original lists, with its flags, parsers and previous name space, but is
  // not started: it never changes the current name space unless StartSearching is called.
  VariableNameSpace(const VariableNameSpace& other);
  // Copies the lists, flags and parsers; this name space keeps its own place in the stack.
  VariableNameSpace& operator=(const VariableNameSpace& other);
  // Stops searching when active.
  ~VariableNameSpace();

  // ---- Contents ---------------------------------------------------------------------------

  void AddVariable(Variable* variable);
  void AddVariableServer(const IVariableServer* server);
  void AddDatasetServer(const IDatasetServer* server);
  // Removes the variables, the variable servers and the dataset servers.
  void ClearVariablesAndServers();
  bool ContainsIVariableServer(const IVariableServer* server) const;
  // The own variables still alive, in the order added.
  std::vector<Variable*> GetVariables() const;

  // ---- Resolution -------------------------------------------------------------------------

  Variable* ResolveVariable(const AString& name) const;
  // The ID of dataset `name` from the dataset servers (the last added first, then the previous
  // name space when appending); -1 and a null server when none knows it.
  int ResolveDatset(const AString& name, const IDatasetServer*& server) const;
  // A new value (owned by the caller) from the output-intrinsic parser, or null.
  ValueBase* OutputIntrinsicParseText(const AString& text) const;
  // A new value from the first-chance parser, or null.
  ValueBase* FirstChanceParseText(const AString& text, Units::FullUnitType units) const;

  // ---- Flags and parsers ------------------------------------------------------------------

  VariableSearchFlags GetVariableSearchFlags() const { return mSearchFlags; }
  // Returns the previous flags.
  VariableSearchFlags SetVariableSearchFlags(VariableSearchFlags flags);
  bool IsAppendingToPrevious() const { return mAppendToPrevious; }
  bool IsActive() const { return mIsActive; }
  // The name space that was current when this one started searching (null when none or gone).
  const VariableNameSpace* GetPreviousNameSpace() const { return mPrevious.Get(); }
  // Each returns the previous parser.
  IValueParser* SetFirstChanceValueParser(IValueParser* parser);
  IValueParser* SetOutputIntrinsicValueParser(IValueParser* parser);
  IValueParser* GetFirstChanceValueParser() const { return mFirstChanceValueParser; }
  IValueParser* GetOutputIntrinsicValueParser() const { return mOutputIntrinsicValueParser; }

  // Appends (name, kind) of every own variable still alive, in the order added.
  void GetVariableTypes(std::vector<std::pair<AString, val::ParameterType>>& out) const;
  // Appends (name, kind) of every dataset the dataset servers list, the last server first.
  void GetDatasetTypes(std::vector<std::pair<AString, val::ParameterType>>& out) const;
  // The dataset servers of this name space (the last added first), then those of the previous
  // name spaces while appending.
  void GetDatasetServers(std::vector<const IDatasetServer*>& out) const;

  // ---- The stack --------------------------------------------------------------------------

  // Makes this name space current (check "!mIsActive" when it is already).
  void StartSearching();
  // Makes the previous name space current again (check "mIsActive" when it is not active).
  void StopSearching();
  // The current name space, or null.
  static const VariableNameSpace* GetCurrentVariableNameSpace();
  // 4 for a predefined variable; 5 for an intrinsic variable or a name the current name space's
  // output-intrinsic parser accepts; 6 for a constant; otherwise 0.
  static int FindVariableType(const AString& name);

  // ---- Auto-completion --------------------------------------------------------------------

  // A provider over the current name space (or `nameSpace`), offering the chosen kinds of names
  // besides the variables of the name space and its servers.
  static std::unique_ptr<AutoCompStrProvider> CreateAutoCompStrProvider(bool constants,
                                                                        bool intrinsics,
                                                                        bool predefined,
                                                                        bool functions);
  static std::unique_ptr<AutoCompStrProvider> CreateAutoCompStrProvider(
      const VariableNameSpace& nameSpace, bool constants, bool intrinsics, bool predefined,
      bool functions);
  // Appends, sorted without regard to case and without duplicates, the names starting with
  // `prefix` (case-blind): the variables of this name space, of its servers and, while
  // appending, of the previous name spaces, plus the chosen kinds of the value manager's names.
  void GetMatchingStrings(const AString& prefix, bool constants, bool intrinsics, bool predefined,
                          std::vector<AString>& out) const;
  // Appends the function names starting with `prefix`, sorted, without duplicates.
  void GetMatchingFunctions(const AString& prefix, std::vector<AString>& out) const;
  // The characters that end a name in expression text: blanks, operators, parentheses,
  // brackets, the comma and the double quote.
  static const AString& GetDelimiters();

 private:
  void Init(SearchIntrinsicVariables intrinsics, AppendToPreviousVNS append);
  // Steps 1 to 4 of the lookup, in this name space alone.
  Variable* ResolveHere(const AString& name) const;

  std::vector<base::WeakPtr<Variable>> mVariables;
  std::vector<const IVariableServer*> mVariableServers;
  VariableSearchFlags mSearchFlags;
  // Mutable so that a name space stopped out of order can unlink itself from the one above it.
  mutable base::WeakPtr<VariableNameSpace> mPrevious;
  bool mAppendToPrevious = false;
  bool mIsActive = false;
  std::vector<const IDatasetServer*> mDatasetServers;
  IValueParser* mFirstChanceValueParser = nullptr;
  IValueParser* mOutputIntrinsicValueParser = nullptr;
};
