// SPDX-License-Identifier: Apache-2.0
//
// UnitTypeList.h - every unit type (quantity), one row each, in registration order.
//
// An X-macro list: define WY_UNIT_TYPE(Name, code) before including this file. Units.h builds
// the enumeration Units::UnitType from it and the unit tables register the types in this order.
// Codes are stored in files: never change a code once given.
//
// (Being completed by the unit tables work; the rows below are the fixed codes.)
#ifndef WY_UNIT_TYPE
#error "define WY_UNIT_TYPE(Name, code) before including UnitTypeList.h"
#endif

WY_UNIT_TYPE(Frequency, 0)
WY_UNIT_TYPE(Resistance, 1)
WY_UNIT_TYPE(Length, 5)
WY_UNIT_TYPE(Time, 6)
WY_UNIT_TYPE(Angle, 7)
WY_UNIT_TYPE(Voltage, 9)
WY_UNIT_TYPE(Current, 10)
WY_UNIT_TYPE(Temperature, 11)
WY_UNIT_TYPE(NoUnit, 15)
WY_UNIT_TYPE(Percentage, 87)
