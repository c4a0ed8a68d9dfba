// SPDX-License-Identifier: Apache-2.0
//
// ExpressionEvaluator.h - runs an Expression's postfix operation stream on a double_stack.
//
// An evaluator is made for one Expression and one evaluation: it keeps read positions into the
// operation stream, the value list and the function list, and walks the stream front to back
// (Calculate). Constants and variables are already SI, so evaluation converts no units. Logical
// operators and functions such as "if" do not short-circuit: every operand is evaluated first.
//
// Failure values: a stream that throws (a function that fails, a function context holding
// errors) ends the evaluation; the caller receives NaN for a real result, (NaN, NaN) for a
// complex one (so that neither part of a failed result can pass for a number), an empty matrix
// (with a debug line) or an empty text. Floating-point exceptions never escape: the exception
// flags are cleared before and after every evaluation, and after a failure the trap mask is reset
// to the environment the evaluation started with. Nothing is reported to the user from here;
// functions report their own messages.
//
// Malformed streams are programming errors reported through WY_CHECK with the texts of the walk
// ("!\"Illegal sentinel enum value kNoOp in operationStream!!\"", ...); the walk then goes on.
//
// Threading: an evaluation uses only its own evaluator and stack; different expressions may be
// evaluated on different threads while the values and variables they read do not change.
#pragma once

#include <cstddef>

#include "wycore/Export.h"
#include "wycore/core/AComplex.h"
#include "wycore/io/AString.h"
#include "wycore/value/ADValue.h"
#include "wycore/value/TNTMatrix.h"

class Expression;
class Variable;
class double_stack;

class WYCORE_API ExpressionEvaluator {
 public:
  // `expression` must outlive the evaluator.
  explicit ExpressionEvaluator(const Expression& expression);
  ExpressionEvaluator(const ExpressionEvaluator&) = delete;
  ExpressionEvaluator& operator=(const ExpressionEvaluator&) = delete;

  // The result as a real number: the single number left on the stack; the real part when two
  // entries (a complex result) are left; NaN on failure or when nothing is left.
  double EvaluateRealExpression();
  // The result as a complex number (a real result gets imaginary part 0); (NaN, NaN) on failure.
  AComplex<double> EvaluateComplexExpression();
  // The single matrix left on the unified stack (a scalar result as a 1 x 1 matrix); an empty
  // matrix with the debug line "Returning empty double matrix on evaluation error" (resp.
  // "... complex matrix ...") on failure.
  TNT::Matrix<double> EvaluateDoubleMatrixExpression();
  TNT::Matrix<AComplex<double>> EvaluateComplexMatrixExpression();
  // The top of the string stack; an empty text on failure or when there is none.
  AString EvaluateStringExpression();

  // The same, with the result moved onto the unified stack and validated there: exactly one
  // entry of the expected kind (kDoubleParam, kComplexParam, kStringParam) must be left,
  // otherwise a debug line ("ERROR: Unified stack is empty when expecting type %d\n", ...) is
  // written and the failure value returned.
  double EvaluateRealExpressionNew();
  AComplex<double> EvaluateComplexExpressionNew();
  AString EvaluateStringExpressionNew();

  // The result with its derivatives up to `order` (any order >= 0) with respect to `variable`,
  // by forward-mode Taylor arithmetic over the same walk: a reference to `variable` itself has
  // derivative 1, other values give what their own GetDValue says (0 for constants, the
  // derivative of their expression for variables holding one). The value is NaN (every
  // coefficient) on failure and for streams that leave no single number.
  ADValue<double> EvaluateRealDerivative(int order, const Variable& variable);
  ADValue<AComplex<double>> EvaluateComplexDerivative(int order, const Variable& variable);

  // The failure values.
  static double FailureValue();
  static AComplex<double> ComplexFailureValue();

  // Runs the stream from the current position up to the matching kEndOfExpressionOp (or the end
  // of the stream) onto `stack`. Used by the Evaluate* functions and, for each argument
  // sub-stream, by function calls. May throw (a failing function); the Evaluate* functions catch.
  void Calculate(double_stack& stack);

 private:
  struct Impl;
  const Expression& mExpression;
  std::size_t mOperationPos = 0;  // next entry of the operation stream
  std::size_t mValuePos = 0;      // next entry of the value list
  std::size_t mFunctionPos = 0;   // next entry of the function list
};
