// SPDX-License-Identifier: Apache-2.0
//
// DoubleStack.h - the stack machine on which expressions and functions are evaluated.
//
// double_stack has three stores:
//   - the number stack: a flat stack of doubles; a real takes one entry, a complex two (real
//     part below, imaginary part on top). The first 32 entries live inside the object, so the
//     common evaluation (real arithmetic on constants and variables) allocates nothing;
//   - the string stack: texts, kept as string literals (quotes included) the way string values
//     answer GetStringValue;
//   - the unified stack: typed entries (StackType) holding a real or complex matrix, moved in
//     rather than copied where the caller can give up its matrix; the ...New evaluations also
//     move scalar and text results here to validate them.
// Datasets travel on the number stack as one entry: a handle (an index into the stack's dataset
// list), which functions read through IFunctionContext.
//
// Functions run on the stack: a plain routine pops its arguments and pushes its result; for the
// newer form EvaluateFunction does that work, and while it runs the stack is the function's
// IFunctionContext. A stack of evaluation contexts says where a function is evaluated; a
// DatasetEvaluationContext carries the data of the dynamic datasets, over which functions of
// scalar arguments are evaluated point by point.
//
// Popping an empty store is a programming error (a malformed stream): it fires a check
// ("!\"Number stack underflow!!\"", "!\"String stack underflow!!\"",
// "!\"Unified stack underflow!!\"") and gives NaN, an empty text or an empty entry.
//
// Ownership: values and contexts pushed are not owned and must outlive the stack's use of them.
// Threading: one stack per evaluation, never shared.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

#include "wycore/Export.h"
#include "wycore/core/AComplex.h"
#include "wycore/io/AString.h"
#include "wycore/value/FunctionContext.h"
#include "wycore/value/ParameterType.h"
#include "wycore/value/TNTMatrix.h"
#include "wycore/value/ValueState.h"

class IDatasetServer;
class Function;
class FunctionContext;
class SimpleFunctionResult;

// Where functions are evaluated. The base context carries nothing; evaluation code asks for the
// dataset form with AsDatasetContext.
class WYCORE_API ExpressionEvaluationContext {
 public:
  virtual ~ExpressionEvaluationContext();
  virtual class DatasetEvaluationContext* AsDatasetContext() { return nullptr; }
};

// The data of the dynamic datasets an evaluation reads (a sweep's columns, for example), by
// server and ID, and the datasets computed during the evaluation (point-by-point results).
class WYCORE_API DatasetEvaluationContext : public ExpressionEvaluationContext {
 public:
  struct DynamicDataset {
    const IDatasetServer* mServer = nullptr;  // null for a computed dataset
    int mID = -1;
    val::ParameterType mType = val::kDynamicDoubleDoubleDatasetParam;
    std::vector<double> mX;                   // SI
    std::vector<double> mY;                   // real y (SI), for the real kind
    std::vector<AComplex<double>> mComplexY;  // complex y (SI), for the complex kind
    AString mOutermostFunction;  // the function whose results these are; empty when read as is
    std::size_t Size() const;
  };

  DatasetEvaluationContext* AsDatasetContext() override { return this; }

  // Adds the data of dataset `id` of `server`; returns its index. x and y lists of different
  // lengths are cut to the shorter.
  int AddDataset(const IDatasetServer* server, int id, std::vector<double> x,
                 std::vector<double> y);
  int AddComplexDataset(const IDatasetServer* server, int id, std::vector<double> x,
                        std::vector<AComplex<double>> y);
  // Adds a computed dataset (no server); returns its index.
  int AddComputedDataset(DynamicDataset dataset);
  // The index of the data of (server, id), or -1.
  int FindDataset(const IDatasetServer* server, int id) const;
  const DynamicDataset* GetDataset(int index) const;
  bool HoldsDatasets() const { return !mDatasets.empty(); }
  std::size_t GetDatasetCount() const { return mDatasets.size(); }

 private:
  std::vector<DynamicDataset> mDatasets;
};

class WYCORE_API double_stack : public IFunctionContext {
 public:
  // One entry of the unified stack.
  class WYCORE_API StackType {
   public:
    // An empty real matrix tagged kNotParam.
    StackType();
    // Copies of the matrix.
    explicit StackType(const TNT::Matrix<double>& matrix);
    explicit StackType(const TNT::Matrix<AComplex<double>>& matrix);
    // Takes the matrix over (null gives an empty one).
    explicit StackType(std::unique_ptr<TNT::Matrix<double>> matrix);
    explicit StackType(std::unique_ptr<TNT::Matrix<AComplex<double>>> matrix);
    // A scalar (a 1 x 1 matrix tagged kDoubleParam or kComplexParam) or a text (kStringParam).
    static StackType Scalar(double value);
    static StackType Scalar(const AComplex<double>& value);
    static StackType Text(const AString& text);

    StackType(const StackType& other);
    StackType& operator=(const StackType& other);
    StackType(StackType&&) noexcept = default;
    StackType& operator=(StackType&&) noexcept = default;
    ~StackType();

    val::ParameterType GetParamType() const { return mType; }
    // The held matrix; asking for the other kind fires "!\"StackType holds another kind!!\"" and
    // gives an empty matrix.
    const TNT::Matrix<double>& GetDoubleMatrix() const;
    const TNT::Matrix<AComplex<double>>& GetComplexMatrix() const;
    TNT::Matrix<double>& GetDoubleMatrixForEdit();
    TNT::Matrix<AComplex<double>>& GetComplexMatrixForEdit();
    const AString& GetText() const { return mText; }

   private:
    val::ParameterType mType = val::kNotParam;
    std::unique_ptr<TNT::Matrix<double>> mDouble;
    std::unique_ptr<TNT::Matrix<AComplex<double>>> mComplex;
    AString mText;
  };

  double_stack();
  double_stack(const double_stack&) = delete;
  double_stack& operator=(const double_stack&) = delete;
  ~double_stack() override;

  // Empties every store and forgets the state of any call, so that one stack can serve one
  // evaluation after another without allocating anew (a grown number stack keeps its storage up
  // to a bound).
  void Reset();

  // ---- Number stack -------------------------------------------------------------------------

  void Push(double value) {
    if (mSize == mCapacity) Grow();
    mData[mSize++] = value;
  }
  // Two entries: real part, then imaginary part.
  void Push(const AComplex<double>& value) { PushComplex(value.real(), value.imag()); }
  void PushComplex(double re, double im);
  // The top entry; with `pop` it is removed. False (value NaN) when the stack is empty.
  bool Top(double& value, bool pop);
  // The top two entries as a complex number; with `pop` both are removed. False (value
  // (NaN, NaN)) when fewer than two entries are there.
  bool Top(AComplex<double>& value, bool pop);
  // The top two entries as a complex number, kept / removed.
  AComplex<double> LastComplex() const;
  AComplex<double> PopComplex();
  // The entry below the top (NaN when there is none).
  double SecondToLast() const;
  // The top entry, removed (NaN and a check when empty).
  double Pop() { return mSize != 0 ? mData[--mSize] : PopFromEmpty(); }
  // The top entry for editing in place (a check and a scratch entry when empty).
  double& Back() { return mSize != 0 ? mData[mSize - 1] : BackOfEmpty(); }
  std::size_t size() const { return mSize; }
  bool empty() const { return mSize == 0; }
  // Entry i from the bottom (NaN out of range).
  double At(std::size_t i) const { return i < mSize ? mData[i] : NaN(); }
  // Cuts the stack back to `count` entries (no effect when it holds fewer).
  void Truncate(std::size_t count) {
    if (count < mSize) mSize = count;
  }

  // ---- String stack ---------------------------------------------------------------------------

  void PushString(const AString& text) { mStrings.push_back(text); }
  void PushString(AString&& text) { mStrings.push_back(std::move(text)); }
  AString PopString();
  // The top text (an empty text and a check when there is none).
  const AString& TopString() const;
  const std::vector<AString>& GetStringStack() const { return mStrings; }
  std::size_t StringStackSize() const { return mStrings.size(); }

  // ---- Unified stack --------------------------------------------------------------------------

  void Push2(const StackType& entry) { mUnified.push_back(entry); }
  void Push2(StackType&& entry) { mUnified.push_back(std::move(entry)); }
  void Pop2();
  const StackType& Top2() const;
  StackType TopAndPop2();
  std::size_t UnifiedStackSize() const { return mUnified.size(); }
  bool IsUnifiedStackEmpty() const { return mUnified.empty(); }

  // ---- Datasets -------------------------------------------------------------------------------

  // Pushes a handle (one entry) to `value`: a static dataset (kDatasetParam; its points are read
  // through GetDoubleMatrixValue as n x 2) or a dynamic one (kDynamic...; its data must be in the
  // current DatasetEvaluationContext: false and nothing pushed otherwise).
  bool PushDataset(const ValueBase* value);
  // Pushes a handle to the data of dataset `id` of `server` in the current
  // DatasetEvaluationContext (a dataset named inside a string array); false when there is none.
  bool PushDataset(const IDatasetServer* server, int id);
  // Pushes a handle to dataset `index` of the current DatasetEvaluationContext.
  bool PushContextDataset(int index);

  // ---- Evaluation contexts --------------------------------------------------------------------

  void PushEvaluationContext(ExpressionEvaluationContext* context);
  void PopEvaluationContext();
  // The innermost context; null when none was pushed.
  ExpressionEvaluationContext* GetEvaluationContext() const {
    return mContexts.empty() ? nullptr : mContexts.back();
  }

  // ---- Function calls -------------------------------------------------------------------------

  // The argument states of the call about to be made (set by the evaluator from its function
  // list; null: take the kinds of the function's parameters). Kept until the next call.
  void SetCallArgumentStates(const std::vector<ValueState>* states) { mCallStates = states; }
  // Runs a function of the newer form on its arguments at the top of the stack: notes the
  // function being evaluated (null fires the check "mFunctionBeingEvaluated" and fails), finds
  // where the arguments begin, then either evaluates it point by
  // point over the dynamic datasets of the current context (CalculateFunctionWithDatasets) or
  // runs it once with a fresh FunctionContext. Errors are shown and end the evaluation with
  // throw -1; so does a routine that refuses. Otherwise the arguments are replaced by the result,
  // pushed by the function's result kind (a real as one entry, a complex as two, a text on the
  // string stack, a dataset as a handle).
  void EvaluateFunction(const Function* function);
  // Whether a call of `function` with the current call states runs point by point: the current
  // context holds dynamic datasets and a dynamic dataset argument meets a real or complex
  // parameter. Plain routines are then run through EvaluateFunction too, once per point.
  bool IsPointByPointCall(const Function& function) const;
  // After a plain routine: throws -1 (after showing them) when the routine added errors.
  void ThrowIfFunctionErrors();

  // ---- IFunctionContext (valid while a function runs) ----------------------------------------

  int GetArgCount() const override;
  val::ParameterType GetArgKind(int i) const override;
  double GetDoubleArg(int i) const override;
  AComplex<double> GetComplexArg(int i) const override;
  std::vector<double> GetDoubleVectorArg_x(int i) const override;
  std::vector<double> GetDoubleVectorArg_y(int i) const override;
  std::vector<AComplex<double>> GetComplexVectorArg_y(int i) const override;
  const ValueBase* GetDatasetValueBaseArg(int i) const override;
  geom::Dataset GetStaticDataset(int i) const override;
  int GetInterpolationOrder(int i) const override;
  AString GetOutermostFunctionAppliedToYValues(int i) const override;
  double& GetDoubleResult() override;
  AComplex<double>& GetComplexResult() override;
  std::vector<double>& GetDoubleVectorResult_y() override;
  std::vector<AComplex<double>>& GetComplexVectorResult_y() override;
  AString GetFunctionName() const override;
  const Function* GetAuxiliaryFunction(const AString& name, int argumentCount) const override;
  void SetAuxiliaryFuncDoubleArg(int i, double value) override;
  void SetAuxiliaryFuncComplexArg(int i, const AComplex<double>& value) override;
  void SetAuxiliaryFuncDatasetValueBaseArg(int i, const ValueBase* value) override;
  bool FetchAuxiliaryFunctionResult(const Function& function,
                                    SimpleFunctionResult& result) override;
  void StoreAuxiliaryFunctionResult(const SimpleFunctionResult& result) override;
  void AddError(int code, std::vector<AString> arguments = {}) override;
  bool HasErrors() const override;

  // The argument kinds of a call of `function` with the current call states (for callers that
  // push arguments themselves).
  val::ParameterType GetCallArgumentKind(const Function& function, int i) const;

 private:
  // The evaluator's loop over real arithmetic works on the number stack's storage directly.
  friend class ExpressionEvaluator;

  struct ArgSlot {
    val::ParameterType mKind = val::kNotParam;
    std::size_t mPos = 0;  // number stack index, string stack index or unified stack index
  };
  struct DatasetRef {
    const ValueBase* mValue = nullptr;             // the dataset value (null: computed)
    DatasetEvaluationContext* mContext = nullptr;  // where its data lives (dynamic ones)
    int mIndex = -1;                               // its index there
  };
  struct AuxArg {
    val::ParameterType mKind = val::kDoubleParam;
    AComplex<double> mNumber;
    const ValueBase* mValue = nullptr;
  };
  struct CallFrame;

  static double NaN();
  void Grow();
  double PopFromEmpty();
  double& BackOfEmpty();
  // Argument slots of a call of `function` whose arguments are on top of the stores.
  bool BuildArgumentSlots(const Function& function, std::vector<ArgSlot>& slots) const;
  const DatasetRef* DatasetOfArg(int i) const;
  const DatasetEvaluationContext::DynamicDataset* DynamicDataOfArg(int i) const;
  void CalculateFunctionWithDatasets(const Function& function, CallFrame& frame);
  void RunOnce(const Function& function, CallFrame& frame);
  bool RunStackRoutineAtPoint(const Function& function, CallFrame& frame);
  void PushResult(const Function& function, CallFrame& frame);

  // Number stack with inline storage for the common case.
  static constexpr std::size_t kInlineEntries = 32;
  std::array<double, kInlineEntries> mInline;  // entries below mSize only are read
  std::unique_ptr<double[]> mHeap;
  double* mData = mInline.data();
  std::size_t mSize = 0;
  std::size_t mCapacity = kInlineEntries;
  double mScratch = 0.0;

  std::vector<AString> mStrings;
  std::vector<StackType> mUnified;
  std::vector<ExpressionEvaluationContext*> mContexts;
  std::vector<DatasetRef> mDatasets;
  std::vector<AuxArg> mAuxArgs;

  const std::vector<ValueState>* mCallStates = nullptr;
  const Function* mFunctionBeingEvaluated = nullptr;
  CallFrame* mFrame = nullptr;                           // the newer-form call in progress
  FunctionContext* mFunctionContext = nullptr;           // its errors
  std::unique_ptr<FunctionContext> mPlainRoutineErrors;  // errors added by plain routines
};
