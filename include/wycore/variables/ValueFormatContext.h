// SPDX-License-Identifier: Apache-2.0
//
// ValueFormatContext.h - the value text strategy of the current output format.
//
// Whoever writes values out in a particular form (a file format that wants numbers in default
// units, an export that unrolls variables) sets the strategy here for the time of the write;
// Value::GenerateExpressionText, and so every expression whose text is regenerated meanwhile,
// writes with it. Null (the initial state) means the default strategy: the canonical text.
//
// Ownership: the strategy is not owned; it must outlive its time in the context. Threading:
// process-wide and unlocked, like the other output switches: set and read it on the thread that
// owns the design data. ScopedValueFormatStrategy restores the previous strategy on exit, so
// settings nest.
#pragma once

#include "wycore/Export.h"

class IValueTextGeneratorStrategy;

namespace io::globalmanip {

struct WYCORE_API ValueFormatContext {
  static IValueTextGeneratorStrategy* m_pStrategy;
};

// Sets the strategy for the life of the object and restores the previous one.
class WYCORE_API ScopedValueFormatStrategy {
 public:
  explicit ScopedValueFormatStrategy(IValueTextGeneratorStrategy* strategy)
      : mPrevious(ValueFormatContext::m_pStrategy) {
    ValueFormatContext::m_pStrategy = strategy;
  }
  ~ScopedValueFormatStrategy() { ValueFormatContext::m_pStrategy = mPrevious; }
  ScopedValueFormatStrategy(const ScopedValueFormatStrategy&) = delete;
  ScopedValueFormatStrategy& operator=(const ScopedValueFormatStrategy&) = delete;

 private:
  IValueTextGeneratorStrategy* mPrevious;
};

}  // namespace io::globalmanip
