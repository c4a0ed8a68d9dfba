// SPDX-License-Identifier: Apache-2.0
//
// IntValue.cpp - a 32-bit integer value.
#include "wycore/value/IntValue.h"

IntValue::~IntValue() = default;

AString IntValue::GetValueText() const { return AString().Format(u"%d", mValue); }

ValueBase* IntValue::CloneValueBase() const { return new IntValue(*this); }

bool IntValue::IsEqual(const ValueBase& other) const {
  return other.GetParameterType() == val::kIntParam && other.GetIntValue() == mValue;
}
