// SPDX-License-Identifier: Apache-2.0
//
// NameLess.h - the ordering of names in this area's maps: case-blind, by the library's one
// folding rule (AString::CompareNoCase), so "Len", "LEN" and "len" are one key.
#pragma once

#include "wycore/io/AString.h"

namespace wycore::detail {

struct NameLess {
  bool operator()(const AString& a, const AString& b) const { return a.CompareNoCase(b) < 0; }
};

}  // namespace wycore::detail

namespace wycore::detail {

// Whether `name` begins with `prefix`, without regard to case (an empty prefix matches all).
inline bool StartsWithNoCase(const AString& name, const AString& prefix) {
  if (prefix.empty()) return true;
  return name.size() >= prefix.size() && name.CompareNoCase(0, prefix.size(), prefix) == 0;
}

}  // namespace wycore::detail
