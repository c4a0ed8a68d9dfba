// SPDX-License-Identifier: Apache-2.0
//
// GeometryValues.h - values that hold a circle, an arc or a region (polygon).
//
// The parameters are SI (metres, radians); the value keeps the display units of its lengths.
// Texts: "Circle(x, y, r)", "Arc(x, y, r, start, end)" with the angles in degrees, and
// "Region(x1, y1, x2, y2, ...)", each length written like a FloatValue in the display units
// (docs/values.md). Equality: the same kind, parameters by the value model's number equality.
#pragma once

#include "wycore/value/GeometryParams.h"
#include "wycore/value/ValueBase.h"

class WYCORE_API CircleValue : public ValueBase {
 public:
  explicit CircleValue(const CircleParam& circle = CircleParam(),
                       Units::FullUnitType units = Units::NoUnits)
      : mCircle(circle), mUnits(units) {}
  ~CircleValue() override;

  CircleParam GetCircleParam() const override { return mCircle; }
  AString GetValueText() const override;
  ValueBase* CloneValueBase() const override;
  bool IsEqual(const ValueBase& other) const override;
  Units::FullUnitType GetUnits() const override { return mUnits; }
  val::ParameterType GetParameterType() const override { return val::kCircleParam; }

 private:
  CircleParam mCircle;
  Units::FullUnitType mUnits;  // of the lengths
};

class WYCORE_API ArcValue : public ValueBase {
 public:
  explicit ArcValue(const ArcParam& arc = ArcParam(), Units::FullUnitType units = Units::NoUnits)
      : mArc(arc), mUnits(units) {}
  ~ArcValue() override;

  ArcParam GetArcParam() const override { return mArc; }
  AString GetValueText() const override;
  ValueBase* CloneValueBase() const override;
  bool IsEqual(const ValueBase& other) const override;
  Units::FullUnitType GetUnits() const override { return mUnits; }
  val::ParameterType GetParameterType() const override { return val::kArcParam; }

 private:
  ArcParam mArc;
  Units::FullUnitType mUnits;  // of the lengths
};

class WYCORE_API RegionValue : public ValueBase {
 public:
  explicit RegionValue(const RegionParam& region = RegionParam(),
                       Units::FullUnitType units = Units::NoUnits)
      : mRegion(region), mUnits(units) {}
  ~RegionValue() override;

  RegionParam GetRegionParam() const override { return mRegion; }
  AString GetValueText() const override;
  ValueBase* CloneValueBase() const override;
  bool IsEqual(const ValueBase& other) const override;
  Units::FullUnitType GetUnits() const override { return mUnits; }
  val::ParameterType GetParameterType() const override { return val::kRegionParam; }

 private:
  RegionParam mRegion;
  Units::FullUnitType mUnits;  // of the vertex coordinates
};
