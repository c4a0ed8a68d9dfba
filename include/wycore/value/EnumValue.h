// SPDX-License-Identifier: Apache-2.0
//
// EnumValue.h - a 32-bit signed index into an enumeration (a menu choice).
//
// Answers GetEnumValue, GetIntValue, GetValue and the text "%d". Equal only to another
// enumeration value of the same index.
#pragma once

#include <cstdint>

#include "wycore/value/ValueBase.h"

class WYCORE_API EnumValue : public ValueBase {
 public:
  explicit EnumValue(std::int32_t value = 0) : mValue(value) {}
  ~EnumValue() override;

  void SetValue(std::int32_t value) { mValue = value; }

  double GetValue() const override { return mValue; }
  int GetIntValue() const override { return mValue; }
  int GetEnumValue() const override { return mValue; }
  AString GetValueText() const override;
  ValueBase* CloneValueBase() const override;
  bool IsEqual(const ValueBase& other) const override;
  val::ParameterType GetParameterType() const override { return val::kEnumParam; }

 private:
  std::int32_t mValue;
};
