// SPDX-License-Identifier: Apache-2.0
//
// Dataset.h - geom::Dataset, an ordered list of (x, y) points with the units of both axes.
//
// Material curves (B-H, B-P, D-E, J-E) and dataset values hold their points in this type. The
// points are SI and keep the order in which they were added; the axis units are for display and
// for the text of the points in files. Copyable and comparable: two datasets are equal when they
// have the same number of points and every coordinate is equal by the value model's number
// equality (units take no part; the numbers are SI).
//
// Persistence (docs/values.md): a dataset writes itself as a block
//     $begin 'BHCoordinates'
//       DimUnits[2: 'A_per_meter', 'tesla']
//       Points[6: 0, 0, 100, 0.5, 200, 0.8]
//     $end 'BHCoordinates'
// with the coordinates in the axis units (x1, y1, x2, y2, ...) and the units' names ('' for no
// units).
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "wycore/Export.h"
#include "wycore/io/AString.h"
#include "wycore/units/Units.h"

namespace io {
class CBlock;
}  // namespace io

namespace geom {

class WYCORE_API Dataset {
 public:
  Dataset() = default;
  Dataset(Units::FullUnitType xUnits, Units::FullUnitType yUnits)
      : mXUnits(xUnits), mYUnits(yUnits) {}
  // From coordinate lists (SI); the shorter length counts.
  Dataset(const std::vector<double>& x, const std::vector<double>& y,
          Units::FullUnitType xUnits = Units::NoUnits, Units::FullUnitType yUnits = Units::NoUnits);

  std::size_t Size() const { return mPoints.size(); }
  bool Empty() const { return mPoints.empty(); }
  void Clear() { mPoints.clear(); }
  void AddPoint(double x, double y) { mPoints.emplace_back(x, y); }
  // Coordinates of point i (SI); NaN out of range.
  double GetX(std::size_t i) const;
  double GetY(std::size_t i) const;
  const std::vector<std::pair<double, double>>& Points() const { return mPoints; }
  std::vector<double> GetXValues() const;
  std::vector<double> GetYValues() const;

  Units::FullUnitType GetXUnits() const { return mXUnits; }
  Units::FullUnitType GetYUnits() const { return mYUnits; }
  void SetUnits(Units::FullUnitType xUnits, Units::FullUnitType yUnits) {
    mXUnits = xUnits;
    mYUnits = yUnits;
  }

  bool IsEqual(const Dataset& other) const;
  friend bool operator==(const Dataset& a, const Dataset& b) { return a.IsEqual(b); }

  // Appends the block `name` (see the file comment) to `parent`. False when `name` is empty.
  bool WriteToBlock(io::CBlock& parent, const AString& name) const;
  // Reads the first sub-block `name` of `parent`: 0 when read (the dataset replaced), 2 when there
  // is no such block, -1 when it is malformed (unknown units, an odd or unreadable point list);
  // the dataset is unchanged unless 0 is returned.
  int ReadFromBlock(const io::CBlock& parent, const AString& name);
  // The same on the dataset's own block.
  void Write(io::CBlock& block) const;
  int Read(const io::CBlock& block);

 private:
  std::vector<std::pair<double, double>> mPoints;  // (x, y) in SI
  Units::FullUnitType mXUnits = Units::NoUnits;
  Units::FullUnitType mYUnits = Units::NoUnits;
};

}  // namespace geom
