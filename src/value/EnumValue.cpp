// SPDX-License-Identifier: Apache-2.0
//
// EnumValue.cpp - an enumeration index value.
#include "wycore/value/EnumValue.h"

EnumValue::~EnumValue() = default;

AString EnumValue::GetValueText() const { return AString().Format(u"%d", mValue); }

ValueBase* EnumValue::CloneValueBase() const { return new EnumValue(*this); }

bool EnumValue::IsEqual(const ValueBase& other) const {
  return other.GetParameterType() == val::kEnumParam && other.GetEnumValue() == mValue;
}
