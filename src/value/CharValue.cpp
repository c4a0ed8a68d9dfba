// SPDX-License-Identifier: Apache-2.0
//
// CharValue.cpp - a one-character value.
#include "wycore/value/CharValue.h"

CharValue::~CharValue() = default;

AString CharValue::GetValueText() const {
  // The character code as a 16-bit unit (Latin-1 reading of the byte); the character 0 would end
  // the text of a block item, so it is written as nothing.
  const unsigned char code = static_cast<unsigned char>(mValue);
  if (code == 0) return AString();
  return AString(1, static_cast<AChar>(code));
}

ValueBase* CharValue::CloneValueBase() const { return new CharValue(*this); }

bool CharValue::IsEqual(const ValueBase& other) const {
  return other.GetParameterType() == val::kCharParam && other.GetCharValue() == mValue;
}
