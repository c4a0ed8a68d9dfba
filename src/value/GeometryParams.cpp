// SPDX-License-Identifier: Apache-2.0
//
// GeometryParams.cpp - equality of the geometric parameters.
#include "wycore/value/GeometryParams.h"

#include "wycore/value/ValueBase.h"

bool CircleParam::IsEqual(const CircleParam& o) const {
  return val::AreNumbersEqual(mCenterX, o.mCenterX) && val::AreNumbersEqual(mCenterY, o.mCenterY) &&
         val::AreNumbersEqual(mRadius, o.mRadius);
}

bool ArcParam::IsEqual(const ArcParam& o) const {
  return val::AreNumbersEqual(mCenterX, o.mCenterX) && val::AreNumbersEqual(mCenterY, o.mCenterY) &&
         val::AreNumbersEqual(mRadius, o.mRadius) &&
         val::AreNumbersEqual(mStartAngle, o.mStartAngle) &&
         val::AreNumbersEqual(mEndAngle, o.mEndAngle);
}

bool RegionParam::IsEqual(const RegionParam& o) const {
  if (mVertices.size() != o.mVertices.size()) return false;
  for (std::size_t i = 0; i < mVertices.size(); ++i) {
    if (!val::AreNumbersEqual(mVertices[i].first, o.mVertices[i].first) ||
        !val::AreNumbersEqual(mVertices[i].second, o.mVertices[i].second))
      return false;
  }
  return true;
}
