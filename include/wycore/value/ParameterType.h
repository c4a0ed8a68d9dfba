// SPDX-License-Identifier: Apache-2.0
//
// ParameterType.h - the kind code of a value.
//
// Every value reports one of these codes (ValueBase::GetParameterType); an expression reports the
// kind of its result. The codes that push a value in an expression's operation stream are the
// same numbers, so the evaluator can read a value's kind straight from the stream. The codes are
// stored beside values and in operation streams: never renumber them.
#pragma once

#include <cstdint>

namespace val {

enum ParameterType : std::int32_t {
  kNotParam = 0,                           // no value / unknown kind
  kDoubleParam = 1,                        // FloatValue
  kComplexParam = 2,                       // ComplexValue
  kCircleParam = 3,                        // CircleValue
  kArcParam = 4,                           // ArcValue
  kRegionParam = 5,                        // RegionValue
  kDatasetParam = 6,                       // DatasetValue: a static (x, y) point list
  kDoubleMatrixParam = 7,                  // DoubleMatrixValue
  kComplexMatrixParam = 8,                 // ComplexMatrixValue
  kStringParam = 9,                        // StringValue
  kStringMatrixParam = 10,                 // StringMatrixValue
  kDynamicDoubleDoubleDatasetParam = 11,   // dataset of real y over real x, served at run time
  kDynamicDoubleComplexDatasetParam = 12,  // dataset of complex y over real x, served at run time
  kIntParam = 13,                          // IntValue
  kCharParam = 14,                         // CharValue
  kEnumParam = 15,                         // EnumValue
  kTextStringArrayParam = 16,              // StringArrayValue
  kDoubleArrayParam = 17,                  // DoubleArrayValue
};

}  // namespace val
