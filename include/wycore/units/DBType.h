// SPDX-License-Identifier: Apache-2.0
//
// DBType.h - the decibel kind of a quantity.
//
// A decibel value is 10·log10 of a power-like ratio and 20·log10 of an amplitude-like (root-power)
// ratio. Every value and every operand of an expression carries one of these kinds beside its unit
// code so that conversions to and from decibels pick the right factor. The codes are stored beside
// values: never renumber them.
#pragma once

#include <cstdint>

namespace val {

enum DBType : std::int32_t {
  kDBPower = 0,      // power-like quantity (watts, joules, W/m²): 10·log10
  kDBAmplitude = 1,  // amplitude-like quantity (volts, amperes, plain numbers): 20·log10
  kDBUnknown = 2,    // the kind was lost when an expression dropped its units; treated as amplitude
};

}  // namespace val
