// SPDX-License-Identifier: Apache-2.0
//
// VariableNameSpace.cpp - name lookup in order, and the stack of current name spaces.
#include "wycore/variables/VariableNameSpace.h"

#include <algorithm>

#include "NameLess.h"
#include "ValueManagerInstance.h"
#include "wycore/core/Check.h"
#include "wycore/value/ValueBase.h"
#include "wycore/variables/AutoCompStrProvider.h"
#include "wycore/variables/DatasetServer.h"
#include "wycore/variables/ValueManager.h"
#include "wycore/variables/ValueParser.h"
#include "wycore/variables/Variable.h"
#include "wycore/variables/VariableServer.h"

using wycore::detail::CurrentValueManager;

namespace {

class NameCollector : public IConstVisitor<AString> {
 public:
  explicit NameCollector(std::vector<AString>& out) : mOut(out) {}
  void Visit(const AString& name) override { mOut.push_back(name); }

 private:
  std::vector<AString>& mOut;
};

// Sorts case-blind and drops names equal without regard to case (the first spelling stays).
void SortUnique(std::vector<AString>& names) {
  std::stable_sort(names.begin(), names.end(), wycore::detail::NameLess());
  names.erase(
      std::unique(names.begin(), names.end(),
                  [](const AString& a, const AString& b) { return a.CompareNoCase(b) == 0; }),
      names.end());
}

}  // namespace

// ---- Construction ------------------------------------------------------------------------

void VariableNameSpace::Init(SearchIntrinsicVariables intrinsics, AppendToPreviousVNS append) {
  mSearchFlags.Add(kSearchConstants);
  if (intrinsics == kSearchIntrinsics) mSearchFlags.Add(kSearchIntrinsicVariables);
  mAppendToPrevious = append == kAppendToPrevious;
}

VariableNameSpace::VariableNameSpace(Variable* variable, SearchIntrinsicVariables intrinsics,
                                     AppendToPreviousVNS append) {
  Init(intrinsics, append);
  AddVariable(variable);
  StartSearching();
}

VariableNameSpace::VariableNameSpace(const IVariableServer* server,
                                     SearchIntrinsicVariables intrinsics,
                                     AppendToPreviousVNS append) {
  Init(intrinsics, append);
  AddVariableServer(server);
  StartSearching();
}

VariableNameSpace::VariableNameSpace(SearchIntrinsicVariables intrinsics,
                                     AppendToPreviousVNS append, InitialSearchState start) {
  Init(intrinsics, append);
  if (start == kStartSearching) StartSearching();
}

VariableNameSpace::VariableNameSpace(const VariableNameSpace& other)
    : base::WeakPointerProvider(other),
      mVariables(other.mVariables),
      mVariableServers(other.mVariableServers),
      mSearchFlags(other.mSearchFlags),
      mPrevious(other.mPrevious),
      mAppendToPrevious(other.mAppendToPrevious),
      mIsActive(false),
      mDatasetServers(other.mDatasetServers),
      mFirstChanceValueParser(other.mFirstChanceValueParser),
      mOutputIntrinsicValueParser(other.mOutputIntrinsicValueParser) {}

VariableNameSpace& VariableNameSpace::operator=(const VariableNameSpace& other) {
  if (this == &other) return *this;
  mVariables = other.mVariables;
  mVariableServers = other.mVariableServers;
  mSearchFlags = other.mSearchFlags;
  mAppendToPrevious = other.mAppendToPrevious;
  mDatasetServers = other.mDatasetServers;
  mFirstChanceValueParser = other.mFirstChanceValueParser;
  mOutputIntrinsicValueParser = other.mOutputIntrinsicValueParser;
  return *this;
}

VariableNameSpace::~VariableNameSpace() {
  if (mIsActive) StopSearching();
}

// ---- Contents ----------------------------------------------------------------------------

void VariableNameSpace::AddVariable(Variable* variable) {
  if (variable == nullptr) return;
  mVariables.emplace_back(variable, variable->GetLifetime());
}

void VariableNameSpace::AddVariableServer(const IVariableServer* server) {
  if (server == nullptr) return;
  mVariableServers.push_back(server);
}

void VariableNameSpace::AddDatasetServer(const IDatasetServer* server) {
  if (server == nullptr) return;
  mDatasetServers.push_back(server);
}

void VariableNameSpace::ClearVariablesAndServers() {
  mVariables.clear();
  mVariableServers.clear();
  mDatasetServers.clear();
}

bool VariableNameSpace::ContainsIVariableServer(const IVariableServer* server) const {
  return std::find(mVariableServers.begin(), mVariableServers.end(), server) !=
         mVariableServers.end();
}

std::vector<Variable*> VariableNameSpace::GetVariables() const {
  std::vector<Variable*> out;
  for (const auto& entry : mVariables) {
    if (Variable* variable = entry.Get()) out.push_back(variable);
  }
  return out;
}

// ---- Resolution --------------------------------------------------------------------------

Variable* VariableNameSpace::ResolveHere(const AString& name) const {
  for (const auto& entry : mVariables) {
    Variable* variable = entry.Get();
    if (variable != nullptr && variable->GetName().CompareNoCase(name) == 0) return variable;
  }
  for (auto it = mVariableServers.rbegin(); it != mVariableServers.rend(); ++it) {
    if (Variable* variable = (*it)->ResolveVariable(name)) return variable;
  }
  const ValueManager* manager = CurrentValueManager();
  if (manager == nullptr) return nullptr;
  if (mSearchFlags.Contains(kSearchIntrinsicVariables)) {
    if (Variable* variable = manager->FindIntrinsicVariable(name)) return variable;
  } else if (mSearchFlags.Contains(kSearchPredefinedVariables)) {
    if (Variable* variable = manager->FindPredefinedVariable(name)) return variable;
  }
  if (mSearchFlags.Contains(kSearchConstants)) {
    if (Variable* variable = manager->FindConstant(name)) return variable;
  }
  return nullptr;
}

Variable* VariableNameSpace::ResolveVariable(const AString& name) const {
  // The chain of previous name spaces is finite and free of loops: a name space joins it only
  // when it starts, on top of the current one, and leaves it when it stops.
  for (const VariableNameSpace* space = this; space != nullptr;
       space = space->mAppendToPrevious ? space->mPrevious.Get() : nullptr) {
    if (Variable* variable = space->ResolveHere(name)) return variable;
  }
  const ValueManager* manager = CurrentValueManager();
  if (manager != nullptr && manager->GetLastChanceResolver() != nullptr) {
    return manager->GetLastChanceResolver()->ResolveVariable(name);
  }
  return nullptr;
}

int VariableNameSpace::ResolveDatset(const AString& name, const IDatasetServer*& server) const {
  for (const VariableNameSpace* space = this; space != nullptr;
       space = space->mAppendToPrevious ? space->mPrevious.Get() : nullptr) {
    for (auto it = space->mDatasetServers.rbegin(); it != space->mDatasetServers.rend(); ++it) {
      const int id = (*it)->ResolveDataset(name);
      if (id >= 0) {
        server = *it;
        return id;
      }
    }
  }
  server = nullptr;
  return -1;
}

ValueBase* VariableNameSpace::OutputIntrinsicParseText(const AString& text) const {
  if (mOutputIntrinsicValueParser == nullptr) return nullptr;
  return mOutputIntrinsicValueParser->ParseText(text, Units::NoUnits);
}

ValueBase* VariableNameSpace::FirstChanceParseText(const AString& text,
                                                   Units::FullUnitType units) const {
  if (mFirstChanceValueParser == nullptr) return nullptr;
  return mFirstChanceValueParser->ParseText(text, units);
}

// ---- Flags and parsers -------------------------------------------------------------------

VariableSearchFlags VariableNameSpace::SetVariableSearchFlags(VariableSearchFlags flags) {
  const VariableSearchFlags previous = mSearchFlags;
  mSearchFlags = flags;
  return previous;
}

IValueParser* VariableNameSpace::SetFirstChanceValueParser(IValueParser* parser) {
  IValueParser* previous = mFirstChanceValueParser;
  mFirstChanceValueParser = parser;
  return previous;
}

IValueParser* VariableNameSpace::SetOutputIntrinsicValueParser(IValueParser* parser) {
  IValueParser* previous = mOutputIntrinsicValueParser;
  mOutputIntrinsicValueParser = parser;
  return previous;
}

void VariableNameSpace::GetVariableTypes(
    std::vector<std::pair<AString, val::ParameterType>>& out) const {
  for (const auto& entry : mVariables) {
    if (const Variable* variable = entry.Get()) {
      out.emplace_back(variable->GetName(), variable->GetParameterType());
    }
  }
}

void VariableNameSpace::GetDatasetTypes(
    std::vector<std::pair<AString, val::ParameterType>>& out) const {
  for (auto it = mDatasetServers.rbegin(); it != mDatasetServers.rend(); ++it) {
    std::vector<AString> names;
    (*it)->GetDatasetNames(names);
    for (const AString& name : names) {
      out.emplace_back(name, (*it)->GetDatasetType((*it)->ResolveDataset(name)));
    }
  }
}

void VariableNameSpace::GetDatasetServers(std::vector<const IDatasetServer*>& out) const {
  for (const VariableNameSpace* space = this; space != nullptr;
       space = space->mAppendToPrevious ? space->mPrevious.Get() : nullptr) {
    out.insert(out.end(), space->mDatasetServers.rbegin(), space->mDatasetServers.rend());
  }
}

// ---- The stack ---------------------------------------------------------------------------

void VariableNameSpace::StartSearching() {
  if (!WY_CHECK(!mIsActive)) return;
  ValueManager* msValueManager = CurrentValueManager();
  if (!WY_CHECK(msValueManager)) return;
  const VariableNameSpace* previous = msValueManager->SetVariableNameSpace(this);
  if (previous != nullptr) {
    auto* mutablePrevious = const_cast<VariableNameSpace*>(previous);
    mPrevious = base::WeakPtr<VariableNameSpace>(mutablePrevious, *previous);
  } else {
    mPrevious.Reset();
  }
  mIsActive = true;
}

void VariableNameSpace::StopSearching() {
  if (!WY_CHECK(mIsActive)) return;
  mIsActive = false;
  ValueManager* manager = CurrentValueManager();
  if (manager == nullptr) return;  // the manager is gone: there is no stack to restore
  if (manager->GetVariableNameSpace() == this) {
    manager->SetVariableNameSpace(mPrevious.Get());
    return;
  }
  // Stopped out of order: the name space started on top of this one must now continue below
  // it, or it would keep a pointer to a name space that no longer searches.
  for (const VariableNameSpace* space = manager->GetVariableNameSpace(); space != nullptr;
       space = space->mPrevious.Get()) {
    if (space->mPrevious.Address() == this) {
      space->mPrevious = mPrevious;
      break;
    }
  }
  WY_CHECK(!"Name space stopped out of stack order");
}

const VariableNameSpace* VariableNameSpace::GetCurrentVariableNameSpace() {
  const ValueManager* manager = CurrentValueManager();
  return manager != nullptr ? manager->GetVariableNameSpace() : nullptr;
}

int VariableNameSpace::FindVariableType(const AString& name) {
  const ValueManager* manager = CurrentValueManager();
  if (manager == nullptr) return kNotAVariable;
  if (manager->FindPredefinedVariable(name) != nullptr) return kPredefinedVariable;
  if (manager->FindIntrinsicVariable(name) != nullptr) return kIntrinsicVariable;
  if (const VariableNameSpace* current = GetCurrentVariableNameSpace()) {
    // The output parser may resolve names through the current name space: give it one that
    // sees the intrinsic variables, for the duration of this one parse.
    VariableNameSpace withIntrinsics(*current);
    withIntrinsics.mSearchFlags.Add(kSearchIntrinsicVariables);
    withIntrinsics.StartSearching();
    std::unique_ptr<ValueBase> parsed(withIntrinsics.OutputIntrinsicParseText(name));
    if (parsed != nullptr) return kIntrinsicVariable;
  }
  if (manager->FindConstant(name) != nullptr) return kConstantVariable;
  return kNotAVariable;
}

// ---- Auto-completion ---------------------------------------------------------------------

std::unique_ptr<AutoCompStrProvider> VariableNameSpace::CreateAutoCompStrProvider(bool constants,
                                                                                  bool intrinsics,
                                                                                  bool predefined,
                                                                                  bool functions) {
  if (const VariableNameSpace* current = GetCurrentVariableNameSpace()) {
    return CreateAutoCompStrProvider(*current, constants, intrinsics, predefined, functions);
  }
  const VariableNameSpace none(kSearchIntrinsics, kDontAppendToPrevious, kDontStartSearching);
  return CreateAutoCompStrProvider(none, constants, intrinsics, predefined, functions);
}

std::unique_ptr<AutoCompStrProvider> VariableNameSpace::CreateAutoCompStrProvider(
    const VariableNameSpace& nameSpace, bool constants, bool intrinsics, bool predefined,
    bool functions) {
  return std::make_unique<AutoCompStrProvider>(nameSpace, constants, intrinsics, predefined,
                                               functions);
}

void VariableNameSpace::GetMatchingStrings(const AString& prefix, bool constants, bool intrinsics,
                                           bool predefined, std::vector<AString>& out) const {
  std::vector<AString> names;
  for (const VariableNameSpace* space = this; space != nullptr;
       space = space->mAppendToPrevious ? space->mPrevious.Get() : nullptr) {
    for (const auto& entry : space->mVariables) {
      const Variable* variable = entry.Get();
      if (variable != nullptr && wycore::detail::StartsWithNoCase(variable->GetName(), prefix)) {
        names.push_back(variable->GetName());
      }
    }
    for (const IVariableServer* server : space->mVariableServers) {
      std::vector<AString> served;
      server->GetVariableNames(served);
      for (const AString& name : served) {
        if (wycore::detail::StartsWithNoCase(name, prefix)) names.push_back(name);
      }
    }
  }
  if (const ValueManager* manager = CurrentValueManager()) {
    NameCollector collect(names);
    if (constants) manager->GetMatchingConstantNames(prefix, collect);
    if (intrinsics) manager->GetMatchingIntrinsicVariableNames(prefix, collect);
    if (predefined) manager->GetMatchingPredefinedVariableNames(prefix, collect);
  }
  SortUnique(names);
  out.insert(out.end(), names.begin(), names.end());
}

void VariableNameSpace::GetMatchingFunctions(const AString& prefix,
                                             std::vector<AString>& out) const {
  std::vector<AString> names;
  if (const ValueManager* manager = CurrentValueManager()) {
    NameCollector collect(names);
    manager->GetMatchingFunctionNames(prefix, collect);
  }
  SortUnique(names);
  out.insert(out.end(), names.begin(), names.end());
}

const AString& VariableNameSpace::GetDelimiters() {
  static const AString delimiters(u" \t+-*/^(),<>=!&|[]\"");
  return delimiters;
}
