// SPDX-License-Identifier: Apache-2.0
//
// ComplexValue.h - a complex number in SI with its display units.
//
// Both parts are SI and shown in the same units. GetValue answers the real part. Equality: both
// parts by the value model's number equality, against any real or complex value.
#pragma once

#include "wycore/value/ValueBase.h"

class WYCORE_API ComplexValue : public ValueBase {
 public:
  explicit ComplexValue(const AComplex<double>& value = AComplex<double>(),
                        Units::FullUnitType units = Units::NoUnits);
  ~ComplexValue() override;

  void Reset(const AComplex<double>& value, Units::FullUnitType units);

  double GetValue() const override { return mValue.real(); }
  AComplex<double> GetComplexValue() const override { return mValue; }
  TNT::Matrix<AComplex<double>> GetComplexMatrixValue() const override;
  ADValue<AComplex<double>> GetDComplexValue(int order, const Variable& variable) const override;
  void GetValueText(AString& text, AString& units, AString& suffix) const override;
  AString GetValueText() const override;
  AString GetValueTextIncorporateOverrideUnits() const override;
  ValueBase* CloneValueBase() const override;
  bool IsEqual(const ValueBase& other) const override;
  Units::FullUnitType GetUnits() const override { return mUnits; }
  Units::FullUnitType GetExplicitUnits() const override { return mExplicitUnits; }
  void SetExplicitUnits(Units::FullUnitType units) override { mExplicitUnits = units; }
  val::ParameterType GetParameterType() const override { return val::kComplexParam; }
  // Shifts the real part.
  ValueBase* AddConstant(const double& constant) const override;

  // The text of `value` (SI) in `units`: "re + imj" or "re - imj" with each part followed by the
  // units' name when `writeUnits`; see docs/values.md.
  static AString ToText(const AComplex<double>& value, Units::FullUnitType units, bool writeUnits);

 private:
  AComplex<double> mValue;  // SI
  Units::FullUnitType mUnits;
  Units::FullUnitType mExplicitUnits = Units::NoUnits;
};
