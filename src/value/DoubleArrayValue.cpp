// SPDX-License-Identifier: Apache-2.0
//
// DoubleArrayValue.cpp - a list of real numbers with one unit or one unit per entry.
#include "wycore/value/DoubleArrayValue.h"

#include "ValueText.h"
#include "wycore/core/Check.h"

DoubleArrayValue::DoubleArrayValue(std::vector<double> values, Units::FullUnitType units)
    : mValues(std::move(values)), mUnits(units) {}

DoubleArrayValue::DoubleArrayValue(std::vector<double> values,
                                   std::vector<Units::FullUnitType> units)
    : mValues(std::move(values)) {
  if (WY_CHECK(units.size() == mValues.size())) {
    mEntryUnits = std::move(units);
  } else {
    mUnits = units.empty() ? Units::NoUnits : units.front();
  }
}

DoubleArrayValue::DoubleArrayValue(const DoubleArrayValue& other)
    : ValueBase(other),
      mValues(other.mValues),
      mUnits(other.mUnits),
      mEntryUnits(other.mEntryUnits) {}

DoubleArrayValue::~DoubleArrayValue() = default;

Units::FullUnitType DoubleArrayValue::GetEntryUnits(std::size_t i) const {
  if (mEntryUnits.empty()) return mUnits;
  return i < mEntryUnits.size() ? mEntryUnits[i] : Units::NoUnits;
}

MatrixSizeInfo DoubleArrayValue::GetMatrixSize() const {
  return MatrixSizeInfo{1, static_cast<int>(mValues.size())};
}

double DoubleArrayValue::GetValue() const { return mValues.empty() ? 0.0 : mValues.front(); }

TNT::Matrix<double> DoubleArrayValue::GetDoubleMatrixValue() const {
  if (mValues.empty()) return TNT::Matrix<double>();
  return TNT::Matrix<double>(1, static_cast<int>(mValues.size()), mValues.data());
}

TNT::Matrix<AComplex<double>> DoubleArrayValue::GetComplexMatrixValue() const {
  if (mValues.empty()) return TNT::Matrix<AComplex<double>>();
  TNT::Matrix<AComplex<double>> m(1, static_cast<int>(mValues.size()));
  for (std::size_t i = 0; i < mValues.size(); ++i) m[0][i] = AComplex<double>(mValues[i], 0.0);
  return m;
}

T_2DMatrix<AString> DoubleArrayValue::GetStringMatrixValue() const {
  const std::vector<AString> texts = GetStringArrayValue();
  T_2DMatrix<AString> m(1, static_cast<int>(texts.size()));
  for (std::size_t i = 0; i < texts.size(); ++i) m(0, static_cast<int>(i)) = texts[i];
  return m;
}

std::vector<AString> DoubleArrayValue::GetStringArrayValue() const {
  std::vector<AString> out;
  out.reserve(mValues.size());
  const bool writeUnits = valtext::WriteUnits();
  for (std::size_t i = 0; i < mValues.size(); ++i)
    out.push_back(valtext::Number(mValues[i], GetEntryUnits(i), writeUnits));
  return out;
}

AString DoubleArrayValue::GetStringValue() const {
  if (mValues.empty()) return AString(u"\"\"");
  return valtext::Quote(valtext::Number(mValues.front(), GetEntryUnits(0), valtext::WriteUnits()));
}

AString DoubleArrayValue::ListText(bool writeUnits) const {
  AString out(u"[");
  for (std::size_t i = 0; i < mValues.size(); ++i) {
    if (i != 0) out += u", ";
    out += valtext::Number(mValues[i], GetEntryUnits(i), writeUnits);
  }
  out += u']';
  return out;
}

void DoubleArrayValue::GetValueText(AString& text, AString& units, AString& suffix) const {
  text = ListText(false);
  units.clear();
  suffix.clear();
}

AString DoubleArrayValue::GetValueText() const { return ListText(valtext::WriteUnits()); }

ValueBase* DoubleArrayValue::CloneValueBase() const { return new DoubleArrayValue(*this); }

bool DoubleArrayValue::IsEqual(const ValueBase& other) const {
  const DoubleArrayValue* a = dynamic_cast<const DoubleArrayValue*>(&other);
  if (a == nullptr || a->mValues.size() != mValues.size()) return false;
  for (std::size_t i = 0; i < mValues.size(); ++i) {
    if (!val::AreNumbersEqual(mValues[i], a->mValues[i])) return false;
  }
  return true;
}
