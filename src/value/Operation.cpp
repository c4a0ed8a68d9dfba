// SPDX-License-Identifier: Apache-2.0
//
// Operation.cpp - the spellings of the operation codes.
#include "wycore/value/Operation.h"

#include <array>

namespace {

constexpr int kOperationCount = kCommaOp + 1;

// Built once, under the runtime's thread-safe static initialisation.
const std::array<AString, kOperationCount>& Spellings() {
  static const std::array<AString, kOperationCount> table = [] {
    std::array<AString, kOperationCount> t;
    t[kLeftParenOp] = u"(";
    t[kUnaryMinusOp] = u"-";
    t[kNotOp] = u"!";
    t[kEqualOp] = u"==";
    t[kNotEqualOp] = u"!=";
    t[kLessOp] = u" < ";
    t[kGreaterOp] = u" > ";
    t[kLessEqualOp] = u"<=";
    t[kGreaterEqualOp] = u">=";
    t[kAndOp] = u"&&";
    t[kOrOp] = u"||";
    t[kPlusOp] = u" + ";
    t[kMinusOp] = u" - ";
    t[kMultiplyOp] = u"*";
    t[kDivideOp] = u"/";
    t[kRaiseToPowerOp] = u"^";
    t[kRightParenOp] = u")";
    t[kLeftBracketOp] = u"[";
    t[kRightBracketOp] = u"]";
    t[kArrayIndexStartOp] = u"[";
    t[kArrayIndexEndOp] = u"]";
    t[kCommaOp] = u",";
    return t;
  }();
  return table;
}

}  // namespace

const AString& GetStringCodeForOp(Operation op) {
  static const AString empty;
  if (op < 0 || op >= kOperationCount) return empty;
  return Spellings()[static_cast<std::size_t>(op)];
}
