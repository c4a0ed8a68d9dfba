// SPDX-License-Identifier: Apache-2.0
//
// GeometryValues.cpp - circle, arc and region values.
#include "wycore/value/GeometryValues.h"

#include "ValueText.h"

namespace {

// "Tag(a, b, ...)" from the already written arguments.
AString Tagged(const AChar* tag, const std::vector<AString>& args) {
  AString out(tag);
  out += u'(';
  for (std::size_t i = 0; i < args.size(); ++i) {
    if (i != 0) out += u", ";
    out += args[i];
  }
  out += u')';
  return out;
}

}  // namespace

CircleValue::~CircleValue() = default;

AString CircleValue::GetValueText() const {
  const bool w = valtext::WriteUnits();
  return Tagged(u"Circle", {valtext::Number(mCircle.mCenterX, mUnits, w),
                            valtext::Number(mCircle.mCenterY, mUnits, w),
                            valtext::Number(mCircle.mRadius, mUnits, w)});
}

ValueBase* CircleValue::CloneValueBase() const { return new CircleValue(*this); }

bool CircleValue::IsEqual(const ValueBase& other) const {
  return other.GetParameterType() == val::kCircleParam && mCircle.IsEqual(other.GetCircleParam());
}

ArcValue::~ArcValue() = default;

AString ArcValue::GetValueText() const {
  const bool w = valtext::WriteUnits();
  const Units::FullUnitType deg = valtext::DegreeUnits();
  return Tagged(
      u"Arc", {valtext::Number(mArc.mCenterX, mUnits, w), valtext::Number(mArc.mCenterY, mUnits, w),
               valtext::Number(mArc.mRadius, mUnits, w), valtext::Number(mArc.mStartAngle, deg, w),
               valtext::Number(mArc.mEndAngle, deg, w)});
}

ValueBase* ArcValue::CloneValueBase() const { return new ArcValue(*this); }

bool ArcValue::IsEqual(const ValueBase& other) const {
  return other.GetParameterType() == val::kArcParam && mArc.IsEqual(other.GetArcParam());
}

RegionValue::~RegionValue() = default;

AString RegionValue::GetValueText() const {
  const bool w = valtext::WriteUnits();
  std::vector<AString> args;
  args.reserve(mRegion.mVertices.size() * 2);
  for (const auto& v : mRegion.mVertices) {
    args.push_back(valtext::Number(v.first, mUnits, w));
    args.push_back(valtext::Number(v.second, mUnits, w));
  }
  return Tagged(u"Region", args);
}

ValueBase* RegionValue::CloneValueBase() const { return new RegionValue(*this); }

bool RegionValue::IsEqual(const ValueBase& other) const {
  return other.GetParameterType() == val::kRegionParam && mRegion.IsEqual(other.GetRegionParam());
}
