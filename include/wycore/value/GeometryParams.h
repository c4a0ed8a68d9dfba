// SPDX-License-Identifier: Apache-2.0
//
// GeometryParams.h - the plain geometric parameters carried by circle, arc and region values.
//
// Coordinates and radii are lengths in metres (SI); angles are in radians. The values that hold
// these parameters (GeometryValues.h) keep the display units beside them. Equality is the value
// model's tolerant number equality, field by field.
#pragma once

#include <utility>
#include <vector>

#include "wycore/Export.h"

struct WYCORE_API CircleParam {
  double mCenterX = 0.0;  // m
  double mCenterY = 0.0;  // m
  double mRadius = 0.0;   // m

  bool IsEqual(const CircleParam& other) const;
};

// A circular arc from mStartAngle to mEndAngle, counter-clockwise, around the centre.
struct WYCORE_API ArcParam {
  double mCenterX = 0.0;     // m
  double mCenterY = 0.0;     // m
  double mRadius = 0.0;      // m
  double mStartAngle = 0.0;  // rad
  double mEndAngle = 0.0;    // rad

  bool IsEqual(const ArcParam& other) const;
};

// A closed polygon given by its vertices in order; the last vertex connects back to the first.
struct WYCORE_API RegionParam {
  std::vector<std::pair<double, double>> mVertices;  // (x, y) in m

  bool IsEqual(const RegionParam& other) const;
};
