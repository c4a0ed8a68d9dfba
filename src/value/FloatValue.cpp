// SPDX-License-Identifier: Apache-2.0
//
// FloatValue.cpp - a real number with display units.
#include "wycore/value/FloatValue.h"

#include "ValueText.h"
#include "wycore/value/Value.h"

FloatValue::FloatValue(double value, Units::FullUnitType units) : mValue(value), mUnits(units) {}

FloatValue::~FloatValue() = default;

FloatValue& FloatValue::operator=(double value) {
  mValue = value;
  return *this;
}

FloatValue& FloatValue::operator+=(double value) {
  mValue += value;
  return *this;
}

void FloatValue::Reset(double value, Units::FullUnitType units) {
  mValue = value;
  mUnits = units;
}

bool FloatValue::SetValueText(const AString& text, Units::FullUnitType defaultUnits) {
  double si = 0.0;
  Units::FullUnitType units = defaultUnits;
  if (!valtext::ReadReal(text, defaultUnits, si, units)) return false;
  mValue = si;
  mUnits = units;
  return true;
}

AString FloatValue::GetValueTextScaledToNiceUnit() const {
  const Units::FullUnitType nice = Units::GetNiceScaleUnits(mUnits, mValue, mValue);
  return valtext::Number(mValue, nice, valtext::WriteUnits());
}

bool FloatValue::WriteNamedFloatValue(io::CBlock& block, const AString& name) const {
  return Value(*this).WriteToBlock(block, name, Value::kWriteUnits);
}

Value::ReadResult FloatValue::ReadNamedFloatValue(const io::CBlock& block, const AString& name,
                                                  Units::FullUnitType defaultUnits) {
  // Read into a value of the wanted units, so a number without units is taken in them; anything
  // that is not a plain number (an expression, a string) does not fit a FloatValue.
  Value value{FloatValue(0.0, defaultUnits)};
  const Value::ReadResult result = value.ReadFromBlock(block, name);
  if (result != Value::kReadOk) return result;
  if (value.GetParameterType() != val::kDoubleParam || !value.IsConstant())
    return Value::kReadNoParse;
  Reset(value.GetValue(), value.GetUnits());
  return Value::kReadOk;
}

TNT::Matrix<double> FloatValue::GetDoubleMatrixValue() const {
  return TNT::Matrix<double>(1, 1, mValue);
}

void FloatValue::GetValueText(AString& text, AString& units, AString& suffix) const {
  text = valtext::Number(mValue, mUnits, false);
  units =
      valtext::WriteUnits() ? valtext::Number(mValue, mUnits, true).substr(text.size()) : AString();
  // The special texts carry one blank before the units' name; the name itself has none.
  if (!units.empty() && units.front() == u' ') units.erase(0, 1);
  suffix.clear();
}

AString FloatValue::GetValueText() const {
  return valtext::Number(mValue, mUnits, valtext::WriteUnits());
}

AString FloatValue::GetValueText(const AString& format, bool writeUnits) const {
  AString out;
  if (Units::IsInitialized()) Units::FloatToText(mValue, mUnits, out, format, writeUnits);
  return out;
}

AString FloatValue::GetValueTextIncorporateOverrideUnits() const {
  const Units::FullUnitType units = mExplicitUnits != Units::NoUnits ? mExplicitUnits : mUnits;
  return valtext::Number(mValue, units, valtext::WriteUnits());
}

ValueBase* FloatValue::CloneValueBase() const { return new FloatValue(*this); }

bool FloatValue::IsEqual(const ValueBase& other) const {
  switch (other.GetParameterType()) {
    case val::kDoubleParam:
    case val::kIntParam:
    case val::kEnumParam:
      return val::AreNumbersEqual(mValue, other.GetValue());
    default:
      return false;
  }
}

ValueBase* FloatValue::AddConstant(const double& constant) const {
  FloatValue* shifted = new FloatValue(*this);
  shifted->mValue += constant;
  return shifted;
}
