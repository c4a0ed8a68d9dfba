// SPDX-License-Identifier: Apache-2.0
//
// CharValue.h - one 8-bit character.
//
// Answers GetCharValue, GetValue and GetIntValue (the character code, 0..255) and the text
// "%c": the character itself (the character 0 has the empty text). Equal only to another
// character value of the same character.
#pragma once

#include "wycore/value/ValueBase.h"

class WYCORE_API CharValue : public ValueBase {
 public:
  explicit CharValue(char value = 0) : mValue(value) {}
  ~CharValue() override;

  void SetValue(char value) { mValue = value; }

  double GetValue() const override { return static_cast<unsigned char>(mValue); }
  int GetIntValue() const override { return static_cast<unsigned char>(mValue); }
  char GetCharValue() const override { return mValue; }
  AString GetValueText() const override;
  ValueBase* CloneValueBase() const override;
  bool IsEqual(const ValueBase& other) const override;
  val::ParameterType GetParameterType() const override { return val::kCharParam; }

 private:
  char mValue;
};
