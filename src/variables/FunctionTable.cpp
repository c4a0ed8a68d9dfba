// SPDX-License-Identifier: Apache-2.0
//
// FunctionTable.cpp - registration and overload choice of the function table.
#include "FunctionTable.h"

#include "wycore/core/Check.h"

bool FunctionTable::Register(Function* function) {
  if (!WY_CHECK(function != nullptr)) return false;
  std::unique_ptr<Function> owned(function);
  if (!WY_CHECK(!function->GetName().empty())) return false;
  Entry& entry = mByName[function->GetName()];
  for (const auto& existing : entry.mOverloads) {
    if (existing->HasSameSignature(*function)) {
      WY_CHECK(!"Function registered twice with the same parameters");
      return false;
    }
  }
  if (entry.mID < 0) {
    entry.mID = static_cast<int>(mNames.size());
    mNames.push_back(function->GetName());
  }
  entry.mOverloads.push_back(std::move(owned));
  return true;
}

bool FunctionTable::Exists(const AString& name) const {
  return mByName.find(name) != mByName.end();
}

const Function* FunctionTable::Get(const AString& name, int argumentCount,
                                   const std::vector<ValueState>& argumentStates,
                                   int& errorCode) const {
  auto it = mByName.find(name);
  if (it == mByName.end()) {
    errorCode = kUnknownFunction;
    return nullptr;
  }
  const Function* best = nullptr;
  int bestCost = -1;
  bool countFits = false;
  for (const auto& candidate : it->second.mOverloads) {
    if (!candidate->AcceptsArgumentCount(argumentCount)) continue;
    countFits = true;
    const int cost = candidate->GetMatchCost(argumentCount, argumentStates);
    if (cost >= 0 && (best == nullptr || cost < bestCost)) {
      best = candidate.get();
      bestCost = cost;
    }
  }
  if (best == nullptr) {
    errorCode = countFits ? kWrongArgumentKinds : kWrongArgumentCount;
    return nullptr;
  }
  errorCode = 0;
  return best;
}

void FunctionTable::GetAll(const AString& name, std::vector<const Function*>& out) const {
  auto it = mByName.find(name);
  if (it == mByName.end()) return;
  for (const auto& overload : it->second.mOverloads) out.push_back(overload.get());
}

void FunctionTable::GetAllNames(std::vector<AString>& out) const {
  out.insert(out.end(), mNames.begin(), mNames.end());
}

int FunctionTable::GetID(const AString& name) const {
  auto it = mByName.find(name);
  return it != mByName.end() ? it->second.mID : -1;
}

AString FunctionTable::GetName(int id) const {
  if (id < 0 || static_cast<std::size_t>(id) >= mNames.size()) return AString();
  return mNames[static_cast<std::size_t>(id)];
}

void FunctionTable::GetConversionNames(std::vector<AString>& out) const {
  for (const AString& name : mNames) {
    const Entry& entry = mByName.find(name)->second;
    for (const auto& overload : entry.mOverloads) {
      if (overload->IsConversionFunction()) {
        out.push_back(name);
        break;
      }
    }
  }
}

void FunctionTable::GetMatchingNames(const AString& prefix, IConstVisitor<AString>& visitor) const {
  for (const auto& [name, entry] : mByName) {
    if (wycore::detail::StartsWithNoCase(name, prefix)) visitor.Visit(name);
  }
}
