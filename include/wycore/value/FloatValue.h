// SPDX-License-Identifier: Apache-2.0
//
// FloatValue.h - a real number in SI with its display units.
//
// The number is SI; the unit code says how it is shown (Units::FloatToText converts it for text)
// and what quantity it is. Explicit units, when set (not 90), override the display units for
// GetValueTextIncorporateOverrideUnits only. Equality is the value model's number equality
// against any value whose kind is real, integer or enumeration, through that value's GetValue, so
// a FloatValue equals an expression whose result matches; units take no part (numbers are SI).
#pragma once

#include "wycore/value/Value.h"
#include "wycore/value/ValueBase.h"

class WYCORE_API FloatValue : public ValueBase {
 public:
  explicit FloatValue(double value = 0.0, Units::FullUnitType units = Units::NoUnits);
  FloatValue(const FloatValue&) = default;
  FloatValue& operator=(const FloatValue&) = default;
  ~FloatValue() override;

  FloatValue& operator=(double value);
  FloatValue& operator+=(double value);
  void Reset(double value, Units::FullUnitType units);
  // Reads a number with optional units (Units::TextToFloat; a number without units is taken in
  // `defaultUnits`). False, with the value unchanged, when the text is not such a number.
  bool SetValueText(const AString& text, Units::FullUnitType defaultUnits);
  // The text in the unit of the same family that shows the value best (Units::GetNiceScaleUnits).
  AString GetValueTextScaledToNiceUnit() const;

  // name=text in `block`, with units. False when `name` is empty.
  bool WriteNamedFloatValue(io::CBlock& block, const AString& name) const;
  // Reads the item `name` as a number with optional units (`defaultUnits` when it has none).
  // kReadOk, kReadNotFound or kReadNoParse as Value::ReadFromBlock; unchanged on failure.
  Value::ReadResult ReadNamedFloatValue(const io::CBlock& block, const AString& name,
                                        Units::FullUnitType defaultUnits);

  double GetValue() const override { return mValue; }
  TNT::Matrix<double> GetDoubleMatrixValue() const override;
  void GetValueText(AString& text, AString& units, AString& suffix) const override;
  AString GetValueText() const override;
  AString GetValueTextIncorporateOverrideUnits() const override;
  ValueBase* CloneValueBase() const override;
  bool IsEqual(const ValueBase& other) const override;
  Units::FullUnitType GetUnits() const override { return mUnits; }
  Units::FullUnitType GetExplicitUnits() const override { return mExplicitUnits; }
  void SetExplicitUnits(Units::FullUnitType units) override { mExplicitUnits = units; }
  val::ParameterType GetParameterType() const override { return val::kDoubleParam; }
  ValueBase* AddConstant(const double& constant) const override;

  // The number in the display units printed with the printf-style `format`, followed by the
  // units' name when `writeUnits` (Units::FloatToText).
  virtual AString GetValueText(const AString& format, bool writeUnits) const;

 private:
  double mValue;               // SI
  Units::FullUnitType mUnits;  // display units
  Units::FullUnitType mExplicitUnits = Units::NoUnits;
};
