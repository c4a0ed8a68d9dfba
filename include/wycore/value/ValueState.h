// SPDX-License-Identifier: Apache-2.0
//
// ValueState.h - the static description of one operand: units, unit type, decibel kind, kind.
//
// The expression parser tracks one ValueState per pending operand so that unit mismatches are
// found at parse time, and the function table chooses an overload by the states of the
// arguments. The four fields are 32-bit and stay in this order.
#pragma once

#include "wycore/units/DBType.h"
#include "wycore/units/Units.h"
#include "wycore/value/ParameterType.h"

struct ValueState {
  Units::FullUnitType mUnits = static_cast<Units::FullUnitType>(90);  // 90: no unit
  Units::UnitType mUnitType = static_cast<Units::UnitType>(15);       // 15: no unit
  val::DBType mDBType = val::kDBAmplitude;
  val::ParameterType mKind = val::kNotParam;

  ValueState() = default;
  ValueState(Units::FullUnitType units, Units::UnitType unitType, val::DBType dbType,
             val::ParameterType kind)
      : mUnits(units), mUnitType(unitType), mDBType(dbType), mKind(kind) {}

  friend bool operator==(const ValueState&, const ValueState&) = default;
};
