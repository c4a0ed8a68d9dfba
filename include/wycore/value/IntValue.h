// SPDX-License-Identifier: Apache-2.0
//
// IntValue.h - a 32-bit signed integer without units.
//
// Answers GetIntValue, GetValue (the integer as a double) and the text "%d". Equal only to
// another integer value of the same number.
#pragma once

#include <cstdint>

#include "wycore/value/ValueBase.h"

class WYCORE_API IntValue : public ValueBase {
 public:
  explicit IntValue(std::int32_t value = 0) : mValue(value) {}
  ~IntValue() override;

  void SetValue(std::int32_t value) { mValue = value; }

  double GetValue() const override { return mValue; }
  int GetIntValue() const override { return mValue; }
  AString GetValueText() const override;
  ValueBase* CloneValueBase() const override;
  bool IsEqual(const ValueBase& other) const override;
  val::ParameterType GetParameterType() const override { return val::kIntParam; }

 private:
  std::int32_t mValue;
};
