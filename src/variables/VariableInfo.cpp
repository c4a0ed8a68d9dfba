// SPDX-License-Identifier: Apache-2.0
//
// VariableInfo.cpp - sweep types and the generation of continuous sweep points.
#include "wycore/variables/VariableInfo.h"

#include <cmath>
#include <numbers>

#include "wycore/core/Check.h"
#include "wycore/value/FloatValue.h"

const AChar* const VariableInfo::mSweepTypeNames[kNumOfSweepType] = {u"Linear", u"Sinusoid",
                                                                     u"Harmonic"};

VariableInfo::VariableInfo() = default;

VariableInfo::VariableInfo(bool intrinsic, bool continuous, const Value& start, const Value& end,
                           int numSteps)
    : mIntrinsic(intrinsic),
      mContinuous(continuous),
      mStartValue(start),
      mEndValue(end),
      mNumSteps(numSteps) {}

// The check texts are part of the interface: keep them exactly as written.
// clang-format off
void VariableInfo::SetSweepType(SweepType type) {
  WY_CHECK(type>=0 && type<kNumOfSweepType);
  mSweepType = type;
}
// clang-format on

bool VariableInfo::SetSweepType(const AString& name) {
  for (int type = 0; type < kNumOfSweepType; ++type) {
    if (name == mSweepTypeNames[type]) {
      mSweepType = static_cast<SweepType>(type);
      return true;
    }
  }
  return false;
}

AString VariableInfo::GetSweepTypeName() const {
  if (mSweepType < 0 || mSweepType >= kNumOfSweepType) return AString();
  return mSweepTypeNames[mSweepType];
}

// clang-format off
void VariableInfo::AddSupportedSweepType(SweepType type) {
  if (!WY_CHECK(type>=0 && type<kNumOfSweepType)) return;
  mSupportedSweepTypes.insert(type);
}
// clang-format on

int VariableInfo::GetSupportedSweepTypes(std::vector<AString>& out) const {
  for (SweepType type : mSupportedSweepTypes) out.emplace_back(mSweepTypeNames[type]);
  return static_cast<int>(mSupportedSweepTypes.size());
}

void VariableInfo::AddSweepValue(const Value& value) { mSweepValues.push_back(value); }

void VariableInfo::SetDiscreteSweepValues(const std::list<Value>& values) {
  mContinuous = false;
  mSweepValues = values;
}

bool VariableInfo::SetContinousSweepValues(const std::vector<Value>& values,
                                           bool startStopEditable) {
  if (values.size() != 2 && values.size() != 3) return false;
  for (std::size_t i = 0; i < 2; ++i) {
    if (values[i].GetParameterType() != val::kDoubleParam) return false;
    if (!std::isfinite(values[i].GetValue())) return false;
  }
  int steps = mNumSteps;
  if (values.size() == 3) {
    if (values[2].GetParameterType() != val::kDoubleParam) return false;
    const double count = values[2].GetValue();
    if (!(count >= 0.0) || count >= static_cast<double>(kMaxSweepPoints) ||
        count != std::trunc(count)) {
      return false;
    }
    steps = static_cast<int>(count);
  }
  mContinuous = true;
  mStartValue = values[0];
  mEndValue = values[1];
  mNumSteps = steps;
  mStartStopEditable = startStopEditable;
  return true;
}

bool VariableInfo::GetSweepValues(std::list<Value>& out) const {
  out.clear();
  if (!mContinuous) {
    out = mSweepValues;
    return true;
  }
  const double start = mStartValue.GetValue();
  const double end = mEndValue.GetValue();
  const Units::FullUnitType units = mStartValue.GetUnits();
  if (!std::isfinite(start) || !std::isfinite(end)) return false;
  switch (mSweepType) {
    case kLinear:
    case kSinusoid: {
      if (mNumSteps < 0 || static_cast<std::size_t>(mNumSteps) >= kMaxSweepPoints) return false;
      if (mNumSteps == 0) {
        out.emplace_back(start, units);
        return true;
      }
      const double n = static_cast<double>(mNumSteps);
      for (int k = 0; k <= mNumSteps; ++k) {
        // The last point is the end value exactly, not start plus a rounded span.
        double fraction = static_cast<double>(k) / n;
        if (mSweepType == kSinusoid) fraction = (1.0 - std::cos(std::numbers::pi * fraction)) / 2.0;
        const double x = k == mNumSteps ? end : start + (end - start) * fraction;
        out.emplace_back(x, units);
      }
      return true;
    }
    case kHarmonic: {
      if (!(start > 0.0) || end < start) return false;
      const double count = std::floor(end / start * (1.0 + 1e-14));
      if (!(count >= 1.0) || count > static_cast<double>(kMaxSweepPoints)) return false;
      const int harmonics = static_cast<int>(count);
      for (int k = 1; k <= harmonics; ++k) out.emplace_back(start * k, units);
      return true;
    }
    case kNumOfSweepType:
      break;
  }
  return false;  // a sweep type out of range generates nothing
}
