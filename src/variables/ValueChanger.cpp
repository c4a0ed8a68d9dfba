// SPDX-License-Identifier: Apache-2.0
//
// ValueChanger.cpp - function replacements and the rules a replacement must meet.
#include "wycore/variables/ValueChanger.h"

#include "wycore/variables/Function.h"

namespace {

// Whether `to` accepts every call `from` accepts and answers it with the same kind of result.
bool FitsAsReplacement(const Function& from, const Function& to) {
  if (from.IsVariadic() != to.IsVariadic()) return false;
  if (from.GetArgumentCount() != to.GetArgumentCount()) return false;
  std::vector<ValueState> states;
  for (const Function::Parameter& parameter : from.GetParameters()) {
    ValueState state;
    state.mKind = parameter.mKind;
    states.push_back(state);
  }
  for (std::size_t i = 0; i < states.size(); ++i) {
    const val::ParameterType wanted = from.GetParameters()[i].mKind;
    const val::ParameterType offered = to.GetParameters()[i].mKind;
    const bool accepts = offered == wanted || offered == val::kNotParam ||
                         (offered == val::kComplexParam && wanted == val::kDoubleParam);
    if (!accepts) return false;
  }
  return from.GetResultType(states).mKind == to.GetResultType(states).mKind;
}

}  // namespace

bool ValueChanger::AddFunctionModifier(const Function* from, const Function* to) {
  if (from == nullptr || to == nullptr || from == to) return false;
  if (WillFunctionBeReplaced(from)) return false;
  if (!FitsAsReplacement(*from, *to)) return false;
  // Refuse a loop: following the replacements from `to` must never come back to `from`.
  const Function* step = to;
  for (std::size_t hops = 0; hops <= mModifiers.size(); ++hops) {
    const Function* next = nullptr;
    if (!GetReplacementFunction(next, step)) break;
    if (next == from) return false;
    step = next;
  }
  mModifiers.emplace_back(from, to);
  return true;
}

bool ValueChanger::ApplyFunctionModifications(std::vector<const Function*>& functions,
                                              bool followChains) const {
  bool replaced = false;
  for (const Function*& function : functions) {
    const Function* next = nullptr;
    if (!GetReplacementFunction(next, function)) continue;
    function = next;
    replaced = true;
    // Chains are loop-free (AddFunctionModifier refuses loops), so they end within as many hops
    // as there are modifiers.
    for (std::size_t hops = 0; followChains && hops < mModifiers.size(); ++hops) {
      if (!GetReplacementFunction(next, function)) break;
      function = next;
    }
  }
  return replaced;
}

bool ValueChanger::GetReplacementFunction(const Function*& out, const Function* in) const {
  for (const auto& [from, to] : mModifiers) {
    if (from == in) {
      out = to;
      return true;
    }
  }
  return false;
}

bool ValueChanger::WillFunctionBeReplaced(const Function* function) const {
  const Function* unused = nullptr;
  return GetReplacementFunction(unused, function);
}
