// SPDX-License-Identifier: Apache-2.0
//
// Dataset.cpp - the (x, y) point list and its block form.
#include "wycore/value/Dataset.h"

#include <algorithm>
#include <limits>

#include "wycore/io/Block.h"
#include "wycore/units/UnitDefinition.h"
#include "wycore/value/ValueBase.h"

namespace geom {

namespace {

constexpr const AChar* kDimUnits = u"DimUnits";
constexpr const AChar* kPoints = u"Points";

AString UnitName(Units::FullUnitType units) {
  if (units == Units::NoUnits || !Units::IsInitialized()) return AString();
  const UnitDefinition* unit = Units::FindUnitDef(units);
  return unit != nullptr ? unit->GetUnitString() : AString();
}

// The code of a unit name; '' is no units. False for an unknown name.
bool UnitCode(const AString& name, Units::FullUnitType& units) {
  if (name.empty()) {
    units = Units::NoUnits;
    return true;
  }
  if (!Units::IsInitialized()) return false;
  const UnitDefinition* unit = Units::FindUnitDef(name);
  if (unit == nullptr) return false;
  units = unit->GetFullUnitType();
  return true;
}

double ToUnits(double si, Units::FullUnitType units) {
  return units == Units::NoUnits || !Units::IsInitialized() ? si : Units::ConvertFromSI(si, units);
}

double ToSI(double value, Units::FullUnitType units) {
  return units == Units::NoUnits || !Units::IsInitialized() ? value
                                                            : Units::ConvertToSI(value, units);
}

}  // namespace

Dataset::Dataset(const std::vector<double>& x, const std::vector<double>& y,
                 Units::FullUnitType xUnits, Units::FullUnitType yUnits)
    : mXUnits(xUnits), mYUnits(yUnits) {
  const std::size_t n = std::min(x.size(), y.size());
  mPoints.reserve(n);
  for (std::size_t i = 0; i < n; ++i) mPoints.emplace_back(x[i], y[i]);
}

double Dataset::GetX(std::size_t i) const {
  return i < mPoints.size() ? mPoints[i].first : std::numeric_limits<double>::quiet_NaN();
}

double Dataset::GetY(std::size_t i) const {
  return i < mPoints.size() ? mPoints[i].second : std::numeric_limits<double>::quiet_NaN();
}

std::vector<double> Dataset::GetXValues() const {
  std::vector<double> out;
  out.reserve(mPoints.size());
  for (const auto& p : mPoints) out.push_back(p.first);
  return out;
}

std::vector<double> Dataset::GetYValues() const {
  std::vector<double> out;
  out.reserve(mPoints.size());
  for (const auto& p : mPoints) out.push_back(p.second);
  return out;
}

bool Dataset::IsEqual(const Dataset& other) const {
  if (mPoints.size() != other.mPoints.size()) return false;
  for (std::size_t i = 0; i < mPoints.size(); ++i) {
    if (!val::AreNumbersEqual(mPoints[i].first, other.mPoints[i].first) ||
        !val::AreNumbersEqual(mPoints[i].second, other.mPoints[i].second))
      return false;
  }
  return true;
}

void Dataset::Write(io::CBlock& block) const {
  block << io::CBlock_vec(AString(kDimUnits),
                          std::vector<AString>{UnitName(mXUnits), UnitName(mYUnits)});
  io::CBlock_vec points{AString(kPoints)};
  for (const auto& p : mPoints) {
    points << ToUnits(p.first, mXUnits);
    points << ToUnits(p.second, mYUnits);
  }
  block << points;
}

int Dataset::Read(const io::CBlock& block) {
  Units::FullUnitType xUnits = Units::NoUnits, yUnits = Units::NoUnits;
  if (const io::CBlock_item* item = block.Find(AString(kDimUnits))) {
    const io::CBlock_vec* dims = dynamic_cast<const io::CBlock_vec*>(item);
    std::vector<AString> names;
    if (dims == nullptr || !dims->QueryValues(names) || names.size() != 2) return -1;
    if (!UnitCode(names[0], xUnits) || !UnitCode(names[1], yUnits)) return -1;
  }
  std::vector<double> values;
  if (const io::CBlock_item* item = block.Find(AString(kPoints))) {
    const io::CBlock_vec* points = dynamic_cast<const io::CBlock_vec*>(item);
    if (points == nullptr || !points->QueryValues(values) || values.size() % 2 != 0) return -1;
  }
  mPoints.clear();
  mPoints.reserve(values.size() / 2);
  for (std::size_t i = 0; i < values.size(); i += 2)
    mPoints.emplace_back(ToSI(values[i], xUnits), ToSI(values[i + 1], yUnits));
  mXUnits = xUnits;
  mYUnits = yUnits;
  return 0;
}

bool Dataset::WriteToBlock(io::CBlock& parent, const AString& name) const {
  if (name.empty()) return false;
  io::CBlock block(name);
  Write(block);
  parent << block;
  return true;
}

int Dataset::ReadFromBlock(const io::CBlock& parent, const AString& name) {
  const io::CBlock* block = parent.FindBlock(name);
  if (block == nullptr) return 2;
  return Read(*block);
}

}  // namespace geom
