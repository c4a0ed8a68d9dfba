// SPDX-License-Identifier: Apache-2.0
//
// VariableInfo.h - how a variable may be swept: its sweep type and its sweep values.
//
// A discrete sweep lists its values (AddSweepValue, SetDiscreteSweepValues). A continuous sweep
// is given by a start value, an end value and a number of steps, and GetSweepValues(list&)
// generates its points (docs/variables.md has the formulas):
//   "Linear"   start + (end - start) * k / n,                   k = 0 .. n (n + 1 points);
//   "Sinusoid" start + (end - start) * (1 - cos(pi * k / n)) / 2, k = 0 .. n (denser at both ends);
//   "Harmonic" k * start, k = 1, 2, ... while k * start <= end (the harmonics of the start
//              value; the number of steps is not used).
// Generated points carry the start value's units. At most kMaxSweepPoints points are generated;
// a sweep that would need more, or whose start or end is not finite, generates nothing.
//
// Threading: a plain value type.
#pragma once

#include <cstddef>
#include <list>
#include <set>
#include <vector>

#include "wycore/Export.h"
#include "wycore/value/Value.h"

class WYCORE_API VariableInfo {
 public:
  enum SweepType : int { kLinear = 0, kSinusoid = 1, kHarmonic = 2, kNumOfSweepType = 3 };
  // The names of the sweep types, by type.
  static const AChar* const mSweepTypeNames[kNumOfSweepType];
  static constexpr std::size_t kMaxSweepPoints = 1000000;

  // Not intrinsic, discrete, start and end 0, no steps, type "Linear", start-stop editable.
  VariableInfo();
  // A continuous (or discrete) sweep from `start` to `end` in `numSteps` steps.
  VariableInfo(bool intrinsic, bool continuous, const Value& start, const Value& end, int numSteps);
  VariableInfo(const VariableInfo&) = default;
  VariableInfo& operator=(const VariableInfo&) = default;

  SweepType GetSweepType() const { return mSweepType; }
  // Checks "type>=0 && type<kNumOfSweepType"; the type is stored even when the check fails.
  void SetSweepType(SweepType type);
  // The type whose name equals `name` exactly; an unknown name leaves the type unchanged (false).
  bool SetSweepType(const AString& name);
  // The name of the current type; empty for a type out of range.
  AString GetSweepTypeName() const;
  void AddSupportedSweepType(SweepType type);
  // Appends the names of the supported types, in type order; returns how many were appended.
  int GetSupportedSweepTypes(std::vector<AString>& out) const;

  bool IsIntrinsic() const { return mIntrinsic; }
  bool IsContinuous() const { return mContinuous; }
  bool IsStartStopEditable() const { return mStartStopEditable; }
  void EnableStartStopEditable(bool enable) { mStartStopEditable = enable; }
  const Value& GetStartValue() const { return mStartValue; }
  const Value& GetEndValue() const { return mEndValue; }
  int GetNumSteps() const { return mNumSteps; }
  int GetDefaultSweepValueIndex() const { return mDefaultSweepValueIndex; }
  void SetDefaultSweepValueIndex(int index) { mDefaultSweepValueIndex = index; }

  // Discrete sweeps.
  void AddSweepValue(const Value& value);
  // Makes the sweep discrete with these values.
  void SetDiscreteSweepValues(const std::list<Value>& values);
  // Makes the sweep continuous from `values`: {start, end} or {start, end, number of steps}.
  // Start and end must be real numbers (kind kDoubleParam) with finite values; the number of
  // steps, when given, a real whole number from 0 to kMaxSweepPoints - 1 (without it the steps
  // stay as they are). `startStopEditable` is stored. False, with nothing changed, otherwise.
  bool SetContinousSweepValues(const std::vector<Value>& values, bool startStopEditable);

  // The stored list (the discrete values).
  const std::list<Value>& GetSweepValues() const { return mSweepValues; }
  // Replaces `out` by the values of the sweep: the stored list for a discrete sweep, the
  // generated points for a continuous one. False (and `out` empty) when a continuous sweep
  // cannot be generated.
  bool GetSweepValues(std::list<Value>& out) const;

 private:
  bool mIntrinsic = false;
  bool mContinuous = false;
  Value mStartValue;
  Value mEndValue;
  bool mStartStopEditable = true;
  SweepType mSweepType = kLinear;
  int mNumSteps = 0;
  int mDefaultSweepValueIndex = 0;
  std::list<Value> mSweepValues;
  std::set<SweepType> mSupportedSweepTypes;
};
