// SPDX-License-Identifier: Apache-2.0
//
// ExpressionEvaluator.h - runs an Expression's postfix operation stream on a double_stack.
//
// An evaluator is made for one Expression (or a stream given as an ExpressionStreamView) and
// keeps read positions into the operation stream, the value list and the function list; each
// Evaluate* call starts from the front on an empty double_stack, so an evaluator may be reused.
// The real and complex forms take their stack from a small per-thread pool (one per nesting
// level of evaluations) and empty it afterwards, so evaluating a real expression allocates
// nothing once the thread's pool exists; real arithmetic on constants and variables runs in a
// tight loop that reads plain constants and plain variables without virtual calls.
// Constants and variables are already SI, so evaluation converts no units. Logical operators and
// functions such as "if" do not short-circuit: every operand is evaluated before its operator.
//
// Results and failure values:
//   - real: the single number left; the real part when two entries (a complex result) are left;
//     NaN on failure or when nothing is left;
//   - complex: both entries (imaginary part 0 for a real result); (NaN, NaN) on failure, so that
//     neither part of a failed result can pass for a number;
//   - matrices: the single unified-stack entry (a scalar result as a 1 x 1 matrix); an empty
//     matrix with a debug line on failure;
//   - texts: string literals as string values give them ("\"abc\"", quotes included); the empty
//     literal "\"\"" on failure or when there is none.
// A stream that throws (a function that fails or collects errors, a dynamic dataset without
// data, an operand of a kind arithmetic cannot take, function calls nested deeper than
// kMaxCallNesting) ends the evaluation with the failure value. Nothing is reported to the user
// from here; functions report their own messages.
//
// Floating-point exceptions never escape: the exception flags are cleared before and after every
// evaluation, and after a failure the trap mask is reset to what it was when the evaluation
// began (a routine that enabled traps and then threw does not leave them enabled).
//
// Numeric forms pushed for geometric values: a circle its radius, an arc its length
// (radius x |end angle - start angle|), a region its area (absolute shoelace area), all SI.
// Complex powers use the principal branch (exp(b log a)); a complex base with a whole real
// exponent is raised by repeated multiplication, exactly as far as rounding allows.
//
// Malformed streams are programming errors reported through WY_CHECK with the texts of the walk
// ("!\"Illegal sentinel enum value kNoOp in operationStream!!\"", ...); the walk then skips the
// entry or, where the stack would no longer match the stream, fails.
//
// Threading: an evaluation uses only its own evaluator and stack; different expressions may be
// evaluated on different threads while the values and variables they read do not change.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

#include "wycore/Export.h"
#include "wycore/core/AComplex.h"
#include "wycore/io/AString.h"
#include "wycore/value/ADValue.h"
#include "wycore/value/Expression.h"
#include "wycore/value/Operation.h"
#include "wycore/value/TNTMatrix.h"

class Variable;
class double_stack;
class ExpressionEvaluationContext;
class IDatasetServer;

// The parts of an expression the evaluator reads. The vectors are not copied and must outlive
// the evaluator.
struct ExpressionStreamView {
  const std::vector<Operation>* mOperations = nullptr;
  const std::vector<ValueBase*>* mValues = nullptr;
  const std::vector<FunctionCall>* mFunctionCalls = nullptr;
  val::ParameterType mKind = val::kNotParam;  // the kind of the result

  val::ParameterType GetParameterType() const { return mKind; }
  static ExpressionStreamView Of(const Expression& expression) {
    return ExpressionStreamView{&expression.GetOperations(), &expression.GetValues(),
                                &expression.GetFunctionCalls(), expression.GetParameterType()};
  }
};

// Datasets named by the entries of string arrays: per string array of an expression (keyed by
// the value-list entry that reads it), a map from dataset name to the dataset's server and ID,
// resolved when the array was last synchronised. The expression that owns the cache rebuilds it
// when it hears that one of its string arrays changed.
class WYCORE_API StringArrayDatasetCache {
 public:
  struct CachedDataset {
    const IDatasetServer* mServer = nullptr;
    int mID = -1;
  };
  using DatasetMap = std::map<AString, CachedDataset>;  // by exact dataset name

  // Rebuilds the map of `array` from `names`, each resolved through Value::ResolveDatset; names
  // that resolve to nothing are left out (the map may be empty, but it exists).
  void Synchronize(const ValueBase* array, const std::vector<AString>& names);
  // The map of `array`, or null when it has none.
  const DatasetMap* Find(const ValueBase* array) const;
  void Clear() { mMaps.clear(); }
  bool Empty() const { return mMaps.empty(); }
  // The servers that resolved any cached name, distinct, in first-seen order.
  std::vector<const IDatasetServer*> GetResolvers() const;

 private:
  std::map<const ValueBase*, DatasetMap> mMaps;
};

class WYCORE_API ExpressionEvaluator {
 public:
  // Function calls nested deeper than this fail the evaluation (bounded recursion).
  static constexpr int kMaxCallNesting = 512;

  // `expression` must outlive the evaluator.
  explicit ExpressionEvaluator(const Expression& expression);
  explicit ExpressionEvaluator(const ExpressionStreamView& stream);
  ExpressionEvaluator(const ExpressionEvaluator&) = delete;
  ExpressionEvaluator& operator=(const ExpressionEvaluator&) = delete;

  // The context functions are evaluated in (for example a DatasetEvaluationContext with the
  // data of the dynamic datasets the expression reads); null for none. Not owned.
  void SetEvaluationContext(ExpressionEvaluationContext* context) { mContext = context; }
  // The dataset-name cache of the expression's string arrays; null for none. Not owned.
  void SetDatasetCache(const StringArrayDatasetCache* cache) { mDatasetCache = cache; }

  double EvaluateRealExpression();
  AComplex<double> EvaluateComplexExpression();
  // Failure: the debug line "Returning empty double matrix on evaluation error" (resp. "Returning
  // empty complex matrix on evaluation error") and an empty matrix.
  TNT::Matrix<double> EvaluateDoubleMatrixExpression();
  TNT::Matrix<AComplex<double>> EvaluateComplexMatrixExpression();
  AString EvaluateStringExpression();

  // The same, with the result moved onto the unified stack (numbers left as one scalar entry, a
  // pair as one complex entry, each text as a text entry) and validated there: exactly one entry
  // of the expected kind (kDoubleParam, kComplexParam, kStringParam) must be left, otherwise one
  // of the debug lines "ERROR: Unified stack is empty when expecting type %d\n", "ERROR: Unified
  // stack has 1 item but type %d is different from expected type \n" (the entry's kind) or
  // "ERROR: Epecting 1 item on Unified stack but it has %d\n" is written and the failure value
  // returned.
  double EvaluateRealExpressionNew();
  AComplex<double> EvaluateComplexExpressionNew();
  AString EvaluateStringExpressionNew();

  // The result with its derivatives up to `order` (>= 0) with respect to `variable`, by
  // forward-mode Taylor arithmetic (ADValue) over the same walk: each value answers GetDValue
  // (a reference to `variable` itself has derivative 1, constants 0, other variables what their
  // own value says), functions their derivative routines. The real form runs in real arithmetic
  // and switches to complex arithmetic (taking real parts) when the stream holds complex
  // operands. Failure, or a stream that leaves no single number (strings, matrices, datasets
  // cannot be differentiated), gives NaN in every coefficient.
  ADValue<double> EvaluateRealDerivative(int order, const Variable& variable);
  ADValue<AComplex<double>> EvaluateComplexDerivative(int order, const Variable& variable);

  static double FailureValue();
  static AComplex<double> ComplexFailureValue();

  // Runs the stream from the current position up to and including the next kEndOfExpressionOp
  // at this level (or to the end of the stream) onto `stack`. Function calls evaluate each
  // argument's sub-stream through it recursively. Throws on failure; the Evaluate* functions
  // catch.
  void Calculate(double_stack& stack);

  // ---- The dataset-name cache of string arrays ---------------------------------------------

  // Rebuilds the cache entry of every string array of the stream's value list.
  static void SynchronizeStringArrayDatasetCache(const ExpressionStreamView& stream,
                                                 StringArrayDatasetCache& cache);
  // The cached dataset `name` of the string array `pCachedWrtArray`, or null. A null array writes
  // "ExpressionEvaluator::GetCachedDatasetByName: Internal error. Called with null
  // pCachedWrtArray arg\n"; an array without a map (or no cache at all) writes
  // "ExpressionEvaluator::GetCachedDatasetByName: Could not find cachedDataset map for string
  // array %s\n" with the array's text.
  static const StringArrayDatasetCache::CachedDataset* GetCachedDatasetByName(
      const StringArrayDatasetCache* cache, const ValueBase* pCachedWrtArray, const AString& name);
  // Resolves `name` as a dataset of one of the servers that already resolved a cached name;
  // false when none of them has it.
  static bool TryResolveDatasetUsingCachedResolvers(const StringArrayDatasetCache& cache,
                                                    const AString& name,
                                                    StringArrayDatasetCache::CachedDataset& out);

 private:
  struct Impl;
  struct PendingArray {
    const ValueBase* mValue = nullptr;
    std::int32_t mOp = 0;
  };

  // Resets the read positions, runs the whole stream on `stack` with the floating-point
  // handling described above; false on failure.
  bool Run(double_stack& stack);
  // Runs the operations of real arithmetic on constants and variables (pushes, markers, the
  // arithmetic, comparison and logical operators on real operands) from the current position,
  // and stops before the first one it does not handle, which Calculate then runs. True when it
  // consumed the kEndOfExpressionOp that ends the current sub-stream.
  bool RunRealOperations(double_stack& stack);
  void CallFunction(double_stack& stack);
  const ValueBase* NextValue();
  std::int32_t NextKind();

  ExpressionStreamView mExpression;
  ExpressionEvaluationContext* mContext = nullptr;
  const StringArrayDatasetCache* mDatasetCache = nullptr;
  std::size_t mOperationPos = 0;  // next entry of the operation stream
  std::size_t mValuePos = 0;      // next entry of the value list
  std::size_t mFunctionPos = 0;   // next entry of the function list
  int mDepth = 0;                 // nesting of Calculate
  std::vector<PendingArray> mPendingArrays;
  const ValueBase* mLastTextArray = nullptr;  // the string array dereferenced last
};
