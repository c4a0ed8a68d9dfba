// SPDX-License-Identifier: Apache-2.0
//
// StringArrayValue.cpp - a list of texts.
#include "wycore/value/StringArrayValue.h"

#include <limits>

#include "ValueText.h"

namespace {

// An entry read as a number with optional units; NaN when it is not one.
double EntryNumber(const AString& entry) {
  double si = 0.0;
  Units::FullUnitType units = Units::NoUnits;
  return valtext::ReadReal(entry, Units::NoUnits, si, units)
             ? si
             : std::numeric_limits<double>::quiet_NaN();
}

}  // namespace

StringArrayValue::~StringArrayValue() = default;

MatrixSizeInfo StringArrayValue::GetMatrixSize() const {
  return MatrixSizeInfo{1, static_cast<int>(mEntries.size())};
}

double StringArrayValue::GetValue() const {
  return mEntries.empty() ? 0.0 : EntryNumber(mEntries.front());
}

T_2DMatrix<AString> StringArrayValue::GetStringMatrixValue() const {
  T_2DMatrix<AString> m(1, static_cast<int>(mEntries.size()));
  for (std::size_t i = 0; i < mEntries.size(); ++i) m(0, static_cast<int>(i)) = mEntries[i];
  return m;
}

std::vector<double> StringArrayValue::GetDoubleArrayValue() const {
  std::vector<double> out;
  out.reserve(mEntries.size());
  for (const AString& e : mEntries) out.push_back(EntryNumber(e));
  return out;
}

AString StringArrayValue::GetStringValue() const {
  return mEntries.empty() ? AString(u"\"\"") : valtext::Quote(mEntries.front());
}

AString StringArrayValue::GetValueText() const {
  AString out(u"[");
  for (std::size_t i = 0; i < mEntries.size(); ++i) {
    if (i != 0) out += u", ";
    out += valtext::Quote(mEntries[i]);
  }
  out += u']';
  return out;
}

ValueBase* StringArrayValue::CloneValueBase() const { return new StringArrayValue(*this); }

bool StringArrayValue::IsEqual(const ValueBase& other) const {
  const StringArrayValue* a = dynamic_cast<const StringArrayValue*>(&other);
  return a != nullptr && a->mEntries == mEntries;
}
