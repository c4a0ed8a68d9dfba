// SPDX-License-Identifier: Apache-2.0
//
// VariableValuesContext.cpp - assignments in force for the life of a scope.
#include "wycore/variables/VariableValuesContext.h"

#include "wycore/core/Check.h"
#include "wycore/variables/Variable.h"

VariableValuesContext::VariableValuesContext(const VariableValues& values) {
  mVariables.reserve(values.size());
  for (const auto& [variable, value] : values.GetVariableValueMap()) {
    // A value that would make the variable read itself is refused with message 24540; the
    // variable then keeps a copy of its value for the context, so the unpassing still pairs.
    variable->PassParameter(value.GetValueBase(), this);
    mVariables.push_back(variable);
  }
}

VariableValuesContext::~VariableValuesContext() {
  for (auto it = mVariables.rbegin(); it != mVariables.rend(); ++it) (*it)->UnpassParameter(this);
}

bool NonNestableVariableValuesContext::mParametersWerePassed = false;

NonNestableVariableValuesContext::NonNestableVariableValuesContext(const VariableValues& values)
    : VariableValuesContext(values), mPrevious(mParametersWerePassed) {
  WY_CHECK(!mParametersWerePassed);
  mParametersWerePassed = true;
}

NonNestableVariableValuesContext::~NonNestableVariableValuesContext() {
  mParametersWerePassed = mPrevious;
}

VariableValuesRestorer::VariableValuesRestorer(const std::vector<Variable*>& variables)
    : mValues(variables), mContext(mValues) {}

VariableValuesRestorer::~VariableValuesRestorer() = default;
