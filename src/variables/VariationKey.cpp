// SPDX-License-Identifier: Apache-2.0
//
// VariationKey.cpp - reading variation keys: the parser, the key variable servers, and the
// functions of VariableValues that read keys (GetValueString, AreVariationKeysEqual,
// ResolveVariationKey, GetSubsetVariationKey, BuildCompleteVariationKey, IsEqualToConstantKey).
#include "wycore/variables/VariationKey.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <set>

#include "VariationKeyText.h"
#include "wycore/core/Check.h"
#include "wycore/value/Value.h"
#include "wycore/variables/Variable.h"
#include "wycore/variables/VariableNameSpace.h"
#include "wycore/variables/VariableValues.h"

// ---- The parser -----------------------------------------------------------------------------

VariationKeyParserBase::~VariationKeyParserBase() = default;

int VariationKeyParserBase::ParseKey(const AString& key) {
  varkey::KeyReader in(key);
  varkey::Pair pair;
  int count = 0;
  for (;;) {
    switch (in.Next(pair)) {
      case varkey::KeyReader::kPair:
        HandleNameValue(pair.mName, pair.mValue);
        ++count;
        break;
      case varkey::KeyReader::kEnd:
        return count;
      case varkey::KeyReader::kBadName: {
        const io::CToken& tok = in.Token();
        WY_CHECK(tok.IsKeyword() == true);
        return -1;
      }
      case varkey::KeyReader::kBadValue:
        WY_CHECK(in.fail() == false);
        return -1;
    }
  }
}

// ---- The key variable servers ---------------------------------------------------------------

namespace {

// A variable of a key. It counts the registrations of the values that read it, so that the
// server can tell, when it goes, whether a value outside the key still reads it; such a variable
// is orphaned and deletes itself when the last registration is released.
class KeyVariable final : public Variable {
 public:
  explicit KeyVariable(const AString& name) : Variable(name, 0.0) {}

  void AddRef(IReceiver* receiver) override {
    Variable::AddRef(receiver);
    if (receiver != nullptr) ++mRegistrations;
  }
  void Release(IReceiver* receiver) override {
    const bool registered = HasRef(receiver);
    Variable::Release(receiver);
    if (registered) --mRegistrations;
    if (mOrphaned && mRegistrations == 0) delete this;
  }
  int Registrations() const { return mRegistrations; }
  void Orphan() { mOrphaned = true; }

 private:
  int mRegistrations = 0;
  bool mOrphaned = false;
};

class PairCollector : public VariationKeyParserBase {
 public:
  explicit PairCollector(std::vector<varkey::Pair>& out) : mOut(out) {}

 protected:
  void HandleNameValue(const AString& name, const AString& valueText) override {
    mOut.push_back(varkey::Pair{name, valueText});
  }

 private:
  std::vector<varkey::Pair>& mOut;
};

// The indices of `variables` ordered so that each comes after the variables of the list its
// value reads (variables refuse cycles, so there is such an order). Iterative: keys may be long.
std::vector<std::size_t> DependencyOrder(const std::vector<KeyVariable*>& variables) {
  std::map<const Variable*, std::size_t> index;
  for (std::size_t i = 0; i < variables.size(); ++i) index[variables[i]] = i;
  std::vector<std::vector<std::size_t>> reads(variables.size());
  for (std::size_t i = 0; i < variables.size(); ++i) {
    std::vector<const Variable*> referenced;
    variables[i]->GetValueBase().GetReferencedVariables(referenced);
    for (const Variable* v : referenced) {
      const auto found = index.find(v);
      if (found != index.end() && found->second != i) reads[i].push_back(found->second);
    }
  }
  std::vector<std::size_t> order;
  std::vector<char> state(variables.size(), 0);  // 0 new, 1 on the path, 2 placed
  for (std::size_t root = 0; root < variables.size(); ++root) {
    if (state[root] != 0) continue;
    std::vector<std::pair<std::size_t, std::size_t>> path{{root, 0}};  // node, next edge
    state[root] = 1;
    while (!path.empty()) {
      auto& [node, edge] = path.back();
      if (edge < reads[node].size()) {
        const std::size_t next = reads[node][edge++];
        if (state[next] == 0) {
          state[next] = 1;
          path.emplace_back(next, 0);
        }
      } else {
        state[node] = 2;
        order.push_back(node);
        path.pop_back();
      }
    }
  }
  return order;
}

bool ReadsAnyVariable(const ValueBase& value) {
  std::vector<const Variable*> referenced;
  value.GetReferencedVariables(referenced);
  return !referenced.empty();
}

}  // namespace

VariationKeyVariableServer::VariationKeyVariableServer(const AString& key)
    : VariationKeyVariableServer(key, false) {}

VariationKeyVariableServer::VariationKeyVariableServer(const AString& key, bool releaseToOwners)
    : mKey(key), mReleaseToOwners(releaseToOwners) {
  Build();
}

void VariationKeyVariableServer::Build() {
  std::vector<varkey::Pair> pairs;
  PairCollector collector(pairs);
  mValid = collector.ParseKey(mKey) >= 0;

  std::vector<KeyVariable*> made;
  std::vector<const AString*> texts;
  for (const varkey::Pair& pair : pairs) {
    if (mVariables.count(pair.mName) > 0) continue;
    auto* variable = new KeyVariable(pair.mName);
    mVariables.emplace(pair.mName, variable);
    made.push_back(variable);
    texts.push_back(&pair.mValue);
  }

  // Every variable exists before any text is read, so that values may read each other in any
  // order; the key's variables come before those of the current name space.
  const VariableNameSpace scope(this, VariableNameSpace::kSearchIntrinsics,
                                VariableNameSpace::kAppendToPrevious);
  for (std::size_t i = 0; i < made.size(); ++i) {
    ValueBase* value = varkey::ReadValue(*texts[i]);
    if (value == nullptr || !made[i]->SetValueBase(value)) mValid = false;
  }
  // The kind and units of an expression are fixed when it is parsed, from what the variables it
  // reads held then (0 without units for one not read yet). So expressions are read once more,
  // each after every variable of the key it reads.
  for (const std::size_t i : DependencyOrder(made)) {
    if (!ReadsAnyVariable(made[i]->GetValueBase())) continue;
    ValueBase* value = varkey::ReadValue(*texts[i]);
    if (value != nullptr) made[i]->SetValueBase(value);
  }
}

VariationKeyVariableServer::~VariationKeyVariableServer() {
  // Values that read other variables of the key are replaced by their constant values first, so
  // that no variable of the key is read by another one when they go.
  std::vector<std::pair<Variable*, ValueBase*>> constants;
  for (const auto& [name, variable] : mVariables) {
    if (ReadsAnyVariable(variable->GetValueBase())) {
      constants.emplace_back(variable, variable->GetValueBase().CreateEvaluatedValueBase());
    }
  }
  for (auto& [variable, value] : constants) variable->SetValueBase(value);

  for (auto& [name, variable] : mVariables) {
    auto* keyVariable = static_cast<KeyVariable*>(variable);
    if (keyVariable->Registrations() == 0) {
      delete keyVariable;
      continue;
    }
    // Deleting it would leave a value outside with a dangling reference: the variable is left to
    // the values that read it.
    if (!mReleaseToOwners) WY_CHECK(!"no value still reads a variable of the key");
    keyVariable->Orphan();
  }
  mVariables.clear();
}

Variable* VariationKeyVariableServer::ResolveVariable(const AString& name) const {
  const auto found = mVariables.find(name);
  if (found != mVariables.end()) return found->second;
  for (const auto& [own, variable] : mVariables) {
    if (own.CompareNoCase(name) == 0) return variable;
  }
  return nullptr;
}

void VariationKeyVariableServer::GetVariableNames(std::vector<AString>& out) const {
  for (const auto& [name, variable] : mVariables) out.push_back(name);
}

void VariationKeyVariableServer::GetVariables(std::vector<Variable*>& out) const {
  for (const auto& [name, variable] : mVariables) out.push_back(variable);
}

VariationKeyVariableServerWithRelease::VariationKeyVariableServerWithRelease(const AString& key)
    : VariationKeyVariableServer(key, true) {}

VariationKeyVariableServerWithRelease::~VariationKeyVariableServerWithRelease() = default;

// ---- VariableValues: reading keys -----------------------------------------------------------

namespace {

// A value from a key's text without a message for text that reads as none.
ValueBase* ReadValueQuietly(const AString& text) {
  if (ValueBase* value = Value::ReadValueText(text, Units::NoUnits)) return value;
  if (!Value::IsValidText(text)) return nullptr;
  return Value::CreateValueBase(text, Units::NoUnits);
}

bool SameNames(std::vector<varkey::Pair> a, std::vector<varkey::Pair> b) {
  const auto order = [](const varkey::Pair& x, const varkey::Pair& y) {
    return x.mName.CompareNoCase(y.mName) < 0;
  };
  const auto same = [](const varkey::Pair& x, const varkey::Pair& y) {
    return x.mName.CompareNoCase(y.mName) == 0;
  };
  std::sort(a.begin(), a.end(), order);
  std::sort(b.begin(), b.end(), order);
  a.erase(std::unique(a.begin(), a.end(), same), a.end());
  b.erase(std::unique(b.begin(), b.end(), same), b.end());
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), same);
}

bool HasName(const std::vector<varkey::Pair>& pairs, const AString& name) {
  return std::any_of(pairs.begin(), pairs.end(),
                     [&](const varkey::Pair& p) { return p.mName.CompareNoCase(name) == 0; });
}

}  // namespace

bool VariableValues::GetValueString(const AString& key, const AString& name, AString& valueText) {
  if (key.empty()) return false;
  varkey::KeyReader in(key);
  varkey::Pair pair;
  while (in.Next(pair) == varkey::KeyReader::kPair) {
    if (pair.mName.CompareNoCase(name) == 0) {
      valueText = std::move(pair.mValue);
      return true;
    }
  }
  return false;
}

bool VariableValues::GetValueString(const AString& key, const AString& name,
                                    AComplex<double>& value, bool& isComplex) {
  AString text;
  if (!GetValueString(key, name, text)) return false;
  AComplex<double> number;
  Units::FullUnitType found = Units::NoUnits;
  bool hasImaginary = false;
  Units::UnitError error = Units::kUnitErrorNone;
  if (Units::TextToComplex(text, Units::NoUnits, number, found, hasImaginary, error)) {
    value = number;
    isComplex = hasImaginary;
    return true;
  }
  const std::unique_ptr<ValueBase> read(ReadValueQuietly(text));
  if (read == nullptr) return false;
  switch (read->GetParameterType()) {
    case val::kComplexParam:
      value = read->GetComplexValue();
      isComplex = true;
      return true;
    case val::kDoubleParam:
    case val::kIntParam:
    case val::kCharParam:
    case val::kEnumParam:
      value = AComplex<double>(read->GetValue(), 0.0);
      isComplex = false;
      return true;
    default:
      return false;
  }
}

bool VariableValues::AreVariationKeysEqual(const AString& key1, const AString& key2) {
  if (key1.CompareNoCase(key2) == 0) return true;
  const VariationKeyVariableServer server1(key1);
  const VariationKeyVariableServer server2(key2);
  return AreVariationKeysEqual(key1, key2, &server1, &server2, true);
}

bool VariableValues::AreVariationKeysEqual(const AString& key1, const AString& key2,
                                           const IVariableServer* server1,
                                           const IVariableServer* server2, bool sameVariables) {
  std::vector<varkey::Pair> pairs1;
  std::vector<varkey::Pair> pairs2;
  if (!varkey::ReadPairs(key1, pairs1) || !varkey::ReadPairs(key2, pairs2)) return false;
  if (sameVariables && !SameNames(pairs1, pairs2)) return false;
  std::unique_ptr<VariationKeyVariableServer> own1;
  std::unique_ptr<VariationKeyVariableServer> own2;
  if (server1 == nullptr) {
    own1 = std::make_unique<VariationKeyVariableServer>(key1);
    server1 = own1.get();
  }
  if (server2 == nullptr) {
    own2 = std::make_unique<VariationKeyVariableServer>(key2);
    server2 = own2.get();
  }
  for (const varkey::Pair& pair : pairs1) {
    const Variable* v1 = server1->ResolveVariable(pair.mName);
    const Variable* v2 = server2->ResolveVariable(pair.mName);
    if (v1 == nullptr || v2 == nullptr) {
      if (sameVariables) return false;
      continue;
    }
    if (Compare(Value(v1->GetValueBase()), Value(v2->GetValueBase())) != kEqual) return false;
  }
  return true;
}

int VariableValues::ResolveVariationKey(VariableValues& out, const AString& key,
                                        const VariableNameSpace& nameSpace, bool evaluate) {
  std::vector<varkey::Pair> pairs;
  const bool whole = varkey::ReadPairs(key, pairs);
  int skipped = 0;
  {
    // The texts are read in `nameSpace`: made current for the time being unless it is already.
    std::optional<VariableNameSpace> scope;
    if (VariableNameSpace::GetCurrentVariableNameSpace() != &nameSpace) {
      scope.emplace(nameSpace);
      scope->StartSearching();
    }
    for (const varkey::Pair& pair : pairs) {
      Variable* variable = nameSpace.ResolveVariable(pair.mName);
      ValueBase* value = variable != nullptr ? varkey::ReadValue(pair.mValue) : nullptr;
      if (value == nullptr) {
        ++skipped;
        continue;
      }
      out.SetVariableValue(variable, Value(value));
    }
  }
  if (evaluate) out.EvaluateDependentValues();
  return whole ? skipped : -1;
}

int VariableValues::ResolveVariationKey(const AString& key, const IVariableServer* keyServer,
                                        VariableValues& out, const IVariableServer* targetServer,
                                        bool evaluate) {
  std::vector<varkey::Pair> pairs;
  const bool whole = varkey::ReadPairs(key, pairs);
  std::unique_ptr<VariationKeyVariableServer> own;
  if (keyServer == nullptr) {
    own = std::make_unique<VariationKeyVariableServer>(key);
    keyServer = own.get();
  }
  int skipped = 0;
  // Texts read again are read with the target's variables in scope.
  const VariableNameSpace scope(targetServer, VariableNameSpace::kSearchIntrinsics,
                                VariableNameSpace::kAppendToPrevious);
  for (const varkey::Pair& pair : pairs) {
    Variable* target =
        targetServer != nullptr ? targetServer->ResolveVariable(pair.mName) : nullptr;
    const Variable* source = keyServer->ResolveVariable(pair.mName);
    if (target == nullptr || source == nullptr) {
      ++skipped;
      continue;
    }
    const ValueBase& held = source->GetValueBase();
    ValueBase* value = nullptr;
    if (!ReadsAnyVariable(held)) {
      value = held.CloneValueBase();
    } else if (evaluate) {
      value = held.CreateEvaluatedValueBase();
    } else {
      value = varkey::ReadValue(held.GetValueText());
    }
    if (value == nullptr) {
      ++skipped;
      continue;
    }
    out.SetVariableValue(target, Value(value));
  }
  return whole ? skipped : -1;
}

AString VariableValues::GetSubsetVariationKey(const AString& key, const std::vector<AString>& names,
                                              bool exclude) {
  std::vector<varkey::Pair> pairs;
  varkey::ReadPairs(key, pairs);
  varkey::KeyWriter writer(0);
  for (const varkey::Pair& pair : pairs) {
    const bool named = std::any_of(names.begin(), names.end(), [&](const AString& name) {
      return name.CompareNoCase(pair.mName) == 0;
    });
    if (named != exclude) writer.Add(pair.mName, pair.mValue);
  }
  return writer.Text();
}

AString VariableValues::BuildCompleteVariationKey(const AString& key,
                                                  const std::vector<Variable*>& variables,
                                                  const AString& doubleFormat, bool evaluate,
                                                  const NameMap* names, const UnitMap* units,
                                                  bool arrayElements, unsigned int width,
                                                  val::enVariationKeyFileNameDisplayMode mode) {
  std::vector<varkey::Pair> pairs;
  varkey::ReadPairs(key, pairs);
  const varkey::DoubleFormatScope format(doubleFormat);
  for (Variable* variable : variables) {
    if (variable == nullptr) continue;
    const AString* name = &variable->GetName();
    if (names != nullptr) {
      const auto found = names->find(variable);
      if (found != names->end()) name = &found->second;
    }
    if (HasName(pairs, *name)) continue;
    pairs.push_back(
        varkey::Pair{*name, varkey::ValueText(*variable, Value(variable->GetValueBase()), evaluate,
                                              units, arrayElements, mode)});
  }
  varkey::SortPairs(pairs);
  varkey::KeyWriter writer(width);
  for (const varkey::Pair& pair : pairs) writer.Add(pair.mName, pair.mValue);
  return writer.Text();
}

AString VariableValues::BuildCompleteVariationKey(const AString& key,
                                                  const std::vector<Variable*>& variables,
                                                  bool evaluate) {
  return BuildCompleteVariationKey(key, variables, AString(kKeyDoubleFormat), evaluate, nullptr,
                                   nullptr, false, 0, val::kVariationKeyFullFileName);
}

bool VariableValues::IsEqualToConstantKey(const AString& key, const Tolerances& tolerances) const {
  std::vector<varkey::Pair> pairs;
  if (!varkey::ReadPairs(key, pairs) || pairs.size() != mValues.size()) return false;
  VariableValues evaluated;
  ConvertToConstantValues(evaluated);
  std::set<const Variable*> matched;
  for (const varkey::Pair& pair : pairs) {
    const Variable* variable = evaluated.GetVariable(pair.mName);
    if (variable == nullptr || !matched.insert(variable).second) return false;
    ValueBase* read = ReadValueQuietly(pair.mValue);
    if (read == nullptr) return false;
    if (Compare(Value(read), evaluated.GetVariableValue(variable), tolerances) != kEqual) {
      return false;
    }
  }
  return true;
}
