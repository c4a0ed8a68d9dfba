// SPDX-License-Identifier: Apache-2.0
//
// ComplexValue.cpp - a complex number with display units.
#include "wycore/value/ComplexValue.h"

#include "ValueText.h"

ComplexValue::ComplexValue(const AComplex<double>& value, Units::FullUnitType units)
    : mValue(value), mUnits(units) {}

ComplexValue::~ComplexValue() = default;

void ComplexValue::Reset(const AComplex<double>& value, Units::FullUnitType units) {
  mValue = value;
  mUnits = units;
}

TNT::Matrix<AComplex<double>> ComplexValue::GetComplexMatrixValue() const {
  return TNT::Matrix<AComplex<double>>(1, 1, mValue);
}

ADValue<AComplex<double>> ComplexValue::GetDComplexValue(int order, const Variable&) const {
  return ADValue<AComplex<double>>::Constant(mValue, order);
}

AString ComplexValue::ToText(const AComplex<double>& value, Units::FullUnitType units,
                             bool writeUnits) {
  return valtext::Complex(value, units, writeUnits);
}

void ComplexValue::GetValueText(AString& text, AString& units, AString& suffix) const {
  text = valtext::Complex(mValue, mUnits, false);
  units = valtext::WriteUnits() ? valtext::Complex(mValue, mUnits, true).substr(text.size())
                                : AString();
  if (!units.empty() && units.front() == u' ') units.erase(0, 1);
  suffix.clear();
}

AString ComplexValue::GetValueText() const {
  return valtext::Complex(mValue, mUnits, valtext::WriteUnits());
}

AString ComplexValue::GetValueTextIncorporateOverrideUnits() const {
  const Units::FullUnitType units = mExplicitUnits != Units::NoUnits ? mExplicitUnits : mUnits;
  return valtext::Complex(mValue, units, valtext::WriteUnits());
}

ValueBase* ComplexValue::CloneValueBase() const { return new ComplexValue(*this); }

bool ComplexValue::IsEqual(const ValueBase& other) const {
  switch (other.GetParameterType()) {
    case val::kDoubleParam:
    case val::kComplexParam:
      return val::AreNumbersEqual(mValue, other.GetComplexValue());
    default:
      return false;
  }
}

ValueBase* ComplexValue::AddConstant(const double& constant) const {
  ComplexValue* shifted = new ComplexValue(*this);
  shifted->mValue += constant;
  return shifted;
}
