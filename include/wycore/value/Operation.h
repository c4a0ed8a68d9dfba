// SPDX-License-Identifier: Apache-2.0
//
// Operation.h - the codes of an expression's postfix operation stream.
//
// The expression parser writes these codes, the evaluator and the tree walker read them, and
// the parser also uses them as its current-token code (a few codes are parser-private and never
// appear in a finished stream). The codes are stored in streams: never renumber them.
//
// Stream layout (the contract between parser, evaluator and walker):
//   - a whole expression:     kStartOfExpressionOp, body, kEndOfExpressionOp
//   - a value (constant or variable reference): its push code (1 to 17, the value's
//     val::ParameterType); the value object is the next entry of the expression's value list
//   - binary arithmetic (+ - * / ^): op, kind of the right operand, kind of the left operand
//   - "==" and "!=":          op, the common kind of the operands
//   - " < ", " > ", "<=", ">=", "&&", "||": op alone
//   - unary minus and "!":    op, the operand's kind
//   - function call:          kFunctionOp, then per argument kStartOfExpressionOp, argument body,
//                             kEndOfExpressionOp; the call's Function is the next entry of the
//                             expression's function list (list order = order of kFunctionOp in
//                             the stream, so an outer call comes before the calls in its
//                             arguments)
//   - array element a[i]:     kDoubleArrayOp or kTextStringArrayOp (the array value is the next
//                             value), kArrayIndexStartOp, index body, kArrayIndexEndOp,
//                             kArrayDereferenceOp, the array's kind (16 or 17), the index's kind
//                             (1). Index bodies may themselves dereference arrays (a[b[1]]), so a
//                             reader keeps the pending arrays on a stack: the dereference uses the
//                             array pushed last and not yet dereferenced.
//   - a dataset argument:     kDatasetOp; the DatasetValue is the next value
//
// Kinds in the stream are val::ParameterType codes (1 real, 2 complex, ...).
//
// Threading: GetStringCodeForOp reads a table built once under thread-safe static
// initialisation.
#pragma once

#include <cstdint>

#include "wycore/Export.h"
#include "wycore/io/AString.h"

enum Operation : std::int32_t {
  kNoOp = 0,  // sentinel: never in a finished stream

  // Push the next value of the value list; the codes equal the value's val::ParameterType.
  kDoubleOp = 1,
  kComplexOp = 2,
  kCircleOp = 3,
  kArcOp = 4,
  kRegionOp = 5,
  kDatasetOp = 6,
  kDoubleMatrixOp = 7,
  kComplexMatrixOp = 8,
  kStringOp = 9,
  kStringMatrixOp = 10,  // not emitted by the parser
  kDynamicDoubleDoubleDatasetOp = 11,
  kDynamicDoubleComplexDatasetOp = 12,
  kIntOp = 13,   // not emitted: integer variables are pushed as kDoubleOp
  kCharOp = 14,  // not emitted: character variables are pushed as kDoubleOp
  kEnumOp = 15,  // not emitted: enumeration variables are pushed as kDoubleOp
  kTextStringArrayOp = 16,
  kDoubleArrayOp = 17,

  kFunctionOp = 18,           // function call; argument sub-streams follow
  kLabelOp = 19,              // parser-private: the current token is a name
  kLeftParenOp = 20,          // parser-private: "(" in operand position
  kUnaryMinusOp = 21,         // "-", then the operand's kind
  kNotOp = 22,                // "!", then the operand's kind
  kEqualOp = 23,              // "==", then the common kind
  kNotEqualOp = 24,           // "!=", then the common kind
  kLessOp = 25,               // " < "
  kGreaterOp = 26,            // " > "
  kLessEqualOp = 27,          // "<="
  kGreaterEqualOp = 28,       // ">="
  kAndOp = 29,                // "&&"
  kOrOp = 30,                 // "||"
  kPlusOp = 31,               // " + ", then right kind, left kind
  kMinusOp = 32,              // " - ", then right kind, left kind
  kMultiplyOp = 33,           // "*", then right kind, left kind
  kDivideOp = 34,             // "/", then right kind, left kind
  kRaiseToPowerOp = 35,       // "^" (also written "**"), then right kind, left kind
  kStartOfExpressionOp = 36,  // opens a (sub-)expression
  kEndOfExpressionOp = 37,    // closes it; as a token: the end of the text
  kRightParenOp = 38,         // ")"
  kArrayDereferenceOp = 39,   // then the array's kind (16 or 17) and the index's kind (1)
  kLeftBracketOp = 40,        // parser-private: "["
  kRightBracketOp = 41,       // parser-private: "]"
  kArrayIndexStartOp = 42,    // marker before an array index body ("["); no action
  kArrayIndexEndOp = 43,      // marker after it ("]"); no action
  kCommaOp = 44,              // parser-private: ","
};

// The spelling of an operation as shown in messages and regenerated text (" < ", " > ", " + "
// and " - " carry their blanks; 40 and 42 spell "[", 41 and 43 "]"); the empty string for codes
// without one (the push codes, 18, 19, 36, 37, 39 and unknown codes).
WYCORE_API const AString& GetStringCodeForOp(Operation op);

// Whether `op` pushes the next value of the value list (codes 1 to 17).
constexpr bool IsValuePushOp(std::int32_t op) { return op >= kDoubleOp && op <= kDoubleArrayOp; }

// Whether `op` is followed by two kind entries in a stream (binary arithmetic and the array
// dereference), or by one ("==", "!=", unary minus, "!").
constexpr bool IsOperationFollowedByTwoModifiers(std::int32_t op) {
  return (op >= kPlusOp && op <= kRaiseToPowerOp) || op == kArrayDereferenceOp;
}
constexpr bool IsOperationFollowedByOneModifier(std::int32_t op) {
  return op == kUnaryMinusOp || op == kNotOp || op == kEqualOp || op == kNotEqualOp;
}
