// SPDX-License-Identifier: Apache-2.0
//
// DoubleStack.cpp - the evaluation stack, its unified entries, evaluation contexts, and the
// stack work of a function call of the newer form (argument slots, point-by-point evaluation
// over datasets, result push).
#include "wycore/value/DoubleStack.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "wycore/core/Check.h"
#include "wycore/core/DebugLog.h"
#include "wycore/value/Value.h"
#include "wycore/value/ValueBase.h"
#include "wycore/variables/Function.h"

namespace {

bool IsDatasetKind(val::ParameterType kind) {
  return kind == val::kDatasetParam || kind == val::kDynamicDoubleDoubleDatasetParam ||
         kind == val::kDynamicDoubleComplexDatasetParam;
}

bool IsDynamicDatasetKind(val::ParameterType kind) {
  return kind == val::kDynamicDoubleDoubleDatasetParam ||
         kind == val::kDynamicDoubleComplexDatasetParam;
}

bool IsUnifiedKind(val::ParameterType kind) {
  return kind == val::kDoubleMatrixParam || kind == val::kComplexMatrixParam ||
         kind == val::kStringMatrixParam;
}

// Arrays pushed without a dereference leave nothing on the stores.
bool IsArrayKind(val::ParameterType kind) {
  return kind == val::kTextStringArrayParam || kind == val::kDoubleArrayParam;
}

// The arguments of the call in progress, read through the stack.
class StackArguments : public IFunctionArguments {
 public:
  explicit StackArguments(const double_stack& stack) : mStack(stack) {}
  int GetCount() const override { return mStack.GetArgCount(); }
  val::ParameterType GetKind(int i) const override { return mStack.GetArgKind(i); }
  double GetDoubleArg(int i) const override { return mStack.GetDoubleArg(i); }
  AComplex<double> GetComplexArg(int i) const override { return mStack.GetComplexArg(i); }
  AString GetStringArg(int i) const override;
  const ValueBase* GetValueBaseArg(int i) const override {
    return mStack.GetDatasetValueBaseArg(i);
  }

  // Set by the stack for string arguments.
  std::vector<const AString*> mTexts;

 private:
  const double_stack& mStack;
};

AString StackArguments::GetStringArg(int i) const {
  if (i < 0 || static_cast<std::size_t>(i) >= mTexts.size() || mTexts[i] == nullptr) {
    return AString();
  }
  return *mTexts[static_cast<std::size_t>(i)];
}

// The result slots of one call.
class FrameResult : public IFunctionResult {
 public:
  void SetDoubleResult(double value) override {
    mKind = val::kDoubleParam;
    mNumber = AComplex<double>(value, 0.0);
  }
  void SetComplexResult(const AComplex<double>& value) override {
    mKind = val::kComplexParam;
    mNumber = value;
  }
  void SetStringResult(const AString& value) override {
    mKind = val::kStringParam;
    mText = value;
  }
  void Reset() {
    mKind = val::kNotParam;
    mNumber = AComplex<double>();
    mText.clear();
  }

  val::ParameterType mKind = val::kNotParam;
  AComplex<double> mNumber;
  AString mText;
};

}  // namespace

struct double_stack::CallFrame {
  const Function* mFunction = nullptr;
  std::vector<ArgSlot> mSlots;
  std::size_t mNumberBase = 0;
  std::size_t mStringBase = 0;
  std::size_t mUnifiedBase = 0;
  FrameResult mResult;
  std::vector<double> mVectorResult;
  std::vector<AComplex<double>> mComplexVectorResult;
  int mPointIndex = -1;    // >= 0 during a point-by-point evaluation
  int mPointDataset = -1;  // the argument whose x values a dataset result takes
};

// ---- Contexts ------------------------------------------------------------------------------

ExpressionEvaluationContext::~ExpressionEvaluationContext() = default;

std::size_t DatasetEvaluationContext::DynamicDataset::Size() const {
  const std::size_t y =
      mType == val::kDynamicDoubleComplexDatasetParam ? mComplexY.size() : mY.size();
  return std::min(mX.size(), y);
}

int DatasetEvaluationContext::AddDataset(const IDatasetServer* server, int id,
                                         std::vector<double> x, std::vector<double> y) {
  DynamicDataset d;
  d.mServer = server;
  d.mID = id;
  d.mType = val::kDynamicDoubleDoubleDatasetParam;
  const std::size_t n = std::min(x.size(), y.size());
  x.resize(n);
  y.resize(n);
  d.mX = std::move(x);
  d.mY = std::move(y);
  mDatasets.push_back(std::move(d));
  return static_cast<int>(mDatasets.size()) - 1;
}

int DatasetEvaluationContext::AddComplexDataset(const IDatasetServer* server, int id,
                                                std::vector<double> x,
                                                std::vector<AComplex<double>> y) {
  DynamicDataset d;
  d.mServer = server;
  d.mID = id;
  d.mType = val::kDynamicDoubleComplexDatasetParam;
  const std::size_t n = std::min(x.size(), y.size());
  x.resize(n);
  y.resize(n);
  d.mX = std::move(x);
  d.mComplexY = std::move(y);
  mDatasets.push_back(std::move(d));
  return static_cast<int>(mDatasets.size()) - 1;
}

int DatasetEvaluationContext::AddComputedDataset(DynamicDataset dataset) {
  dataset.mServer = nullptr;
  dataset.mID = -1;
  mDatasets.push_back(std::move(dataset));
  return static_cast<int>(mDatasets.size()) - 1;
}

int DatasetEvaluationContext::FindDataset(const IDatasetServer* server, int id) const {
  for (std::size_t i = 0; i < mDatasets.size(); ++i) {
    if (mDatasets[i].mServer != nullptr && mDatasets[i].mServer == server &&
        mDatasets[i].mID == id) {
      return static_cast<int>(i);
    }
  }
  return -1;
}

const DatasetEvaluationContext::DynamicDataset* DatasetEvaluationContext::GetDataset(
    int index) const {
  if (index < 0 || static_cast<std::size_t>(index) >= mDatasets.size()) return nullptr;
  return &mDatasets[static_cast<std::size_t>(index)];
}

// ---- StackType -------------------------------------------------------------------------------

namespace {

const TNT::Matrix<double>& EmptyDoubleMatrix() {
  static const TNT::Matrix<double> empty;
  return empty;
}

const TNT::Matrix<AComplex<double>>& EmptyComplexMatrix() {
  static const TNT::Matrix<AComplex<double>> empty;
  return empty;
}

}  // namespace

double_stack::StackType::StackType() : mDouble(std::make_unique<TNT::Matrix<double>>()) {}

double_stack::StackType::StackType(const TNT::Matrix<double>& matrix)
    : mType(val::kDoubleMatrixParam), mDouble(std::make_unique<TNT::Matrix<double>>(matrix)) {}

double_stack::StackType::StackType(const TNT::Matrix<AComplex<double>>& matrix)
    : mType(val::kComplexMatrixParam),
      mComplex(std::make_unique<TNT::Matrix<AComplex<double>>>(matrix)) {}

double_stack::StackType::StackType(std::unique_ptr<TNT::Matrix<double>> matrix)
    : mType(val::kDoubleMatrixParam), mDouble(std::move(matrix)) {
  if (!mDouble) mDouble = std::make_unique<TNT::Matrix<double>>();
}

double_stack::StackType::StackType(std::unique_ptr<TNT::Matrix<AComplex<double>>> matrix)
    : mType(val::kComplexMatrixParam), mComplex(std::move(matrix)) {
  if (!mComplex) mComplex = std::make_unique<TNT::Matrix<AComplex<double>>>();
}

double_stack::StackType double_stack::StackType::Scalar(double value) {
  StackType entry(std::make_unique<TNT::Matrix<double>>(1, 1, value));
  entry.mType = val::kDoubleParam;
  return entry;
}

double_stack::StackType double_stack::StackType::Scalar(const AComplex<double>& value) {
  StackType entry(std::make_unique<TNT::Matrix<AComplex<double>>>(1, 1, value));
  entry.mType = val::kComplexParam;
  return entry;
}

double_stack::StackType double_stack::StackType::Text(const AString& text) {
  StackType entry;
  entry.mType = val::kStringParam;
  entry.mText = text;
  return entry;
}

double_stack::StackType::StackType(const StackType& other)
    : mType(other.mType),
      mDouble(other.mDouble ? std::make_unique<TNT::Matrix<double>>(*other.mDouble) : nullptr),
      mComplex(other.mComplex ? std::make_unique<TNT::Matrix<AComplex<double>>>(*other.mComplex)
                              : nullptr),
      mText(other.mText) {}

double_stack::StackType& double_stack::StackType::operator=(const StackType& other) {
  if (this != &other) *this = StackType(other);
  return *this;
}

double_stack::StackType::~StackType() = default;

const TNT::Matrix<double>& double_stack::StackType::GetDoubleMatrix() const {
  if (!mDouble) {
    WY_CHECK(!"StackType holds another kind!!");
    return EmptyDoubleMatrix();
  }
  return *mDouble;
}

const TNT::Matrix<AComplex<double>>& double_stack::StackType::GetComplexMatrix() const {
  if (!mComplex) {
    WY_CHECK(!"StackType holds another kind!!");
    return EmptyComplexMatrix();
  }
  return *mComplex;
}

TNT::Matrix<double>& double_stack::StackType::GetDoubleMatrixForEdit() {
  if (!mDouble) {
    // Give the caller a matrix of its own to edit rather than one shared by everyone.
    WY_CHECK(!"StackType holds another kind!!");
    mDouble = std::make_unique<TNT::Matrix<double>>();
  }
  return *mDouble;
}

TNT::Matrix<AComplex<double>>& double_stack::StackType::GetComplexMatrixForEdit() {
  if (!mComplex) {
    WY_CHECK(!"StackType holds another kind!!");
    mComplex = std::make_unique<TNT::Matrix<AComplex<double>>>();
  }
  return *mComplex;
}

// ---- Number stack ------------------------------------------------------------------------------

double_stack::double_stack() = default;
double_stack::~double_stack() = default;

double double_stack::NaN() { return std::numeric_limits<double>::quiet_NaN(); }

void double_stack::Grow() {
  const std::size_t capacity = mCapacity * 2;
  std::unique_ptr<double[]> heap(new double[capacity]);
  std::memcpy(heap.get(), mData, mSize * sizeof(double));
  mHeap = std::move(heap);
  mData = mHeap.get();
  mCapacity = capacity;
}

void double_stack::Reset() {
  // Storage grown for an unusually deep expression is given back rather than kept per thread.
  constexpr std::size_t kKeptEntries = 4096;
  if (mCapacity > kKeptEntries) {
    mHeap.reset();
    mData = mInline.data();
    mCapacity = kInlineEntries;
  }
  mSize = 0;
  mStrings.clear();
  mUnified.clear();
  mContexts.clear();
  mDatasets.clear();
  mAuxArgs.clear();
  mCallStates = nullptr;
  mFunctionBeingEvaluated = nullptr;
  mFrame = nullptr;
  mFunctionContext = nullptr;
  mPlainRoutineErrors.reset();
}

void double_stack::PushComplex(double re, double im) {
  if (mSize + 2 > mCapacity) Grow();
  mData[mSize++] = re;
  mData[mSize++] = im;
}

bool double_stack::Top(double& value, bool pop) {
  if (mSize == 0) {
    value = NaN();
    return false;
  }
  value = mData[mSize - 1];
  if (pop) --mSize;
  return true;
}

bool double_stack::Top(AComplex<double>& value, bool pop) {
  if (mSize < 2) {
    value = AComplex<double>(NaN(), NaN());
    return false;
  }
  value = AComplex<double>(mData[mSize - 2], mData[mSize - 1]);
  if (pop) mSize -= 2;
  return true;
}

AComplex<double> double_stack::LastComplex() const {
  if (mSize < 2) {
    WY_CHECK(!"Number stack underflow!!");
    return AComplex<double>(NaN(), NaN());
  }
  return AComplex<double>(mData[mSize - 2], mData[mSize - 1]);
}

AComplex<double> double_stack::PopComplex() {
  if (mSize < 2) {
    WY_CHECK(!"Number stack underflow!!");
    mSize = 0;
    return AComplex<double>(NaN(), NaN());
  }
  mSize -= 2;
  return AComplex<double>(mData[mSize], mData[mSize + 1]);
}

double double_stack::SecondToLast() const { return mSize >= 2 ? mData[mSize - 2] : NaN(); }

double double_stack::PopFromEmpty() {
  WY_CHECK(!"Number stack underflow!!");
  return NaN();
}

double& double_stack::BackOfEmpty() {
  WY_CHECK(!"Number stack underflow!!");
  mScratch = NaN();
  return mScratch;
}

// ---- String and unified stacks -----------------------------------------------------------------

AString double_stack::PopString() {
  if (mStrings.empty()) {
    WY_CHECK(!"String stack underflow!!");
    return AString();
  }
  AString text = std::move(mStrings.back());
  mStrings.pop_back();
  return text;
}

const AString& double_stack::TopString() const {
  static const AString empty;
  if (mStrings.empty()) {
    WY_CHECK(!"String stack underflow!!");
    return empty;
  }
  return mStrings.back();
}

void double_stack::Pop2() {
  if (mUnified.empty()) {
    WY_CHECK(!"Unified stack underflow!!");
    return;
  }
  mUnified.pop_back();
}

const double_stack::StackType& double_stack::Top2() const {
  static const StackType empty;
  if (mUnified.empty()) {
    WY_CHECK(!"Unified stack underflow!!");
    return empty;
  }
  return mUnified.back();
}

double_stack::StackType double_stack::TopAndPop2() {
  if (mUnified.empty()) {
    WY_CHECK(!"Unified stack underflow!!");
    return StackType();
  }
  StackType entry = std::move(mUnified.back());
  mUnified.pop_back();
  return entry;
}

// ---- Datasets ---------------------------------------------------------------------------------

bool double_stack::PushDataset(const ValueBase* value) {
  if (value == nullptr) return false;
  DatasetRef ref;
  ref.mValue = value;
  const val::ParameterType kind = value->GetParameterType();
  if (IsDynamicDatasetKind(kind)) {
    ExpressionEvaluationContext* context = GetEvaluationContext();
    DatasetEvaluationContext* datasets = context != nullptr ? context->AsDatasetContext() : nullptr;
    if (datasets == nullptr) return false;
    const int index = datasets->FindDataset(value->GetDatasetServer(), value->GetDatasetID());
    if (index < 0) return false;
    ref.mContext = datasets;
    ref.mIndex = index;
  }
  mDatasets.push_back(ref);
  Push(static_cast<double>(mDatasets.size() - 1));
  return true;
}

bool double_stack::PushDataset(const IDatasetServer* server, int id) {
  ExpressionEvaluationContext* context = GetEvaluationContext();
  DatasetEvaluationContext* datasets = context != nullptr ? context->AsDatasetContext() : nullptr;
  if (datasets == nullptr) return false;
  return PushContextDataset(datasets->FindDataset(server, id));
}

bool double_stack::PushContextDataset(int index) {
  ExpressionEvaluationContext* context = GetEvaluationContext();
  DatasetEvaluationContext* datasets = context != nullptr ? context->AsDatasetContext() : nullptr;
  if (datasets == nullptr || datasets->GetDataset(index) == nullptr) return false;
  DatasetRef ref;
  ref.mContext = datasets;
  ref.mIndex = index;
  mDatasets.push_back(ref);
  Push(static_cast<double>(mDatasets.size() - 1));
  return true;
}

void double_stack::PushEvaluationContext(ExpressionEvaluationContext* context) {
  mContexts.push_back(context);
}

void double_stack::PopEvaluationContext() {
  if (!WY_CHECK(!mContexts.empty())) return;
  mContexts.pop_back();
}

// ---- Function calls -----------------------------------------------------------------------------

val::ParameterType double_stack::GetCallArgumentKind(const Function& function, int i) const {
  if (mCallStates != nullptr) {
    if (i >= 0 && static_cast<std::size_t>(i) < mCallStates->size()) {
      return (*mCallStates)[static_cast<std::size_t>(i)].mKind;
    }
    return val::kNotParam;
  }
  const auto& parameters = function.GetParameters();
  if (parameters.empty() || i < 0) return val::kNotParam;
  const std::size_t p = std::min(static_cast<std::size_t>(i), parameters.size() - 1);
  return parameters[p].mKind;
}

bool double_stack::BuildArgumentSlots(const Function& function, std::vector<ArgSlot>& slots) const {
  const int count =
      mCallStates != nullptr ? static_cast<int>(mCallStates->size()) : function.GetArgumentCount();
  slots.assign(static_cast<std::size_t>(std::max(count, 0)), ArgSlot());
  std::size_t numbers = mSize;
  std::size_t strings = mStrings.size();
  std::size_t unified = mUnified.size();
  for (int i = count - 1; i >= 0; --i) {
    ArgSlot& slot = slots[static_cast<std::size_t>(i)];
    val::ParameterType kind = GetCallArgumentKind(function, i);
    if (kind == val::kNotParam) kind = val::kDoubleParam;
    slot.mKind = kind;
    if (kind == val::kStringParam) {
      if (strings == 0) return false;
      slot.mPos = --strings;
    } else if (IsUnifiedKind(kind)) {
      if (unified == 0) return false;
      slot.mPos = --unified;
    } else if (IsArrayKind(kind)) {
      slot.mPos = 0;
    } else {
      const std::size_t entries = kind == val::kComplexParam ? 2 : 1;
      if (numbers < entries) return false;
      numbers -= entries;
      slot.mPos = numbers;
    }
  }
  return true;
}

void double_stack::EvaluateFunction(const Function* function) {
  mFunctionBeingEvaluated = function;
  if (!WY_CHECK(mFunctionBeingEvaluated)) throw -1;

  CallFrame frame;
  frame.mFunction = function;
  if (!BuildArgumentSlots(*function, frame.mSlots)) {
    WY_CHECK(!"Function arguments missing on the stack!!");
    throw -1;
  }
  frame.mNumberBase = mSize;
  frame.mStringBase = mStrings.size();
  frame.mUnifiedBase = mUnified.size();
  for (const ArgSlot& slot : frame.mSlots) {
    if (slot.mKind == val::kStringParam) {
      frame.mStringBase = std::min(frame.mStringBase, slot.mPos);
    } else if (IsUnifiedKind(slot.mKind)) {
      frame.mUnifiedBase = std::min(frame.mUnifiedBase, slot.mPos);
    } else if (!IsArrayKind(slot.mKind)) {
      frame.mNumberBase = std::min(frame.mNumberBase, slot.mPos);
    }
  }

  // Nested calls (auxiliary functions) keep the outer frame.
  CallFrame* outerFrame = mFrame;
  FunctionContext* outerContext = mFunctionContext;
  const Function* outerFunction = mFunctionBeingEvaluated;
  struct Restore {
    double_stack& s;
    CallFrame* frame;
    FunctionContext* context;
    const Function* function;
    ~Restore() {
      s.mFrame = frame;
      s.mFunctionContext = context;
      s.mFunctionBeingEvaluated = function;
    }
  } restore{*this, outerFrame, outerContext, outerFunction};
  mFrame = &frame;

  const bool overDatasets = IsPointByPointCall(*function);
  if (overDatasets) {
    CalculateFunctionWithDatasets(*function, frame);
  } else {
    RunOnce(*function, frame);
  }
}

bool double_stack::IsPointByPointCall(const Function& function) const {
  if (mContexts.empty()) return false;
  ExpressionEvaluationContext* context = GetEvaluationContext();
  DatasetEvaluationContext* datasets = context != nullptr ? context->AsDatasetContext() : nullptr;
  if (datasets == nullptr || !datasets->HoldsDatasets()) return false;
  const auto& parameters = function.GetParameters();
  const int count =
      mCallStates != nullptr ? static_cast<int>(mCallStates->size()) : function.GetArgumentCount();
  for (int i = 0; i < count && !parameters.empty(); ++i) {
    const val::ParameterType expected =
        parameters[std::min(static_cast<std::size_t>(i), parameters.size() - 1)].mKind;
    const bool scalarParameter = expected == val::kDoubleParam || expected == val::kComplexParam;
    if (scalarParameter && IsDynamicDatasetKind(GetCallArgumentKind(function, i))) return true;
  }
  return false;
}

void double_stack::RunOnce(const Function& function, CallFrame& frame) {
  FunctionContext errors(function.GetName());
  mFunctionContext = &errors;
  StackArguments arguments(*this);
  arguments.mTexts.assign(frame.mSlots.size(), nullptr);
  for (std::size_t i = 0; i < frame.mSlots.size(); ++i) {
    if (frame.mSlots[i].mKind == val::kStringParam) {
      arguments.mTexts[i] = &mStrings[frame.mSlots[i].mPos];
    }
  }
  frame.mResult.Reset();
  const bool ok = function.CalculateWithContext(arguments, frame.mResult, *this);
  if (errors.HasErrors()) {
    errors.ShowErrors();
    throw -1;
  }
  if (!ok) throw -1;
  PushResult(function, frame);
}

void double_stack::CalculateFunctionWithDatasets(const Function& function, CallFrame& frame) {
  // Every dynamic dataset argument must have the same number of points; the first gives the x
  // values of the result.
  std::size_t points = 0;
  for (std::size_t i = 0; i < frame.mSlots.size(); ++i) {
    if (!IsDynamicDatasetKind(frame.mSlots[i].mKind)) continue;
    const auto* data = DynamicDataOfArg(static_cast<int>(i));
    if (data == nullptr) throw -1;
    if (frame.mPointDataset < 0) {
      frame.mPointDataset = static_cast<int>(i);
      points = data->Size();
    } else if (data->Size() != points) {
      AString line;
      line.Format(u"ERROR: Datasets of %d and %d points cannot be combined point by point in %s\n",
                  static_cast<int>(points), static_cast<int>(data->Size()),
                  function.GetName().c_str());
      wycore::DebugLog(line);
      throw -1;
    }
  }
  const val::ParameterType resultKind =
      mCallStates != nullptr ? function.GetResultType(*mCallStates).mKind : val::kNotParam;
  DatasetEvaluationContext::DynamicDataset result;
  result.mX = DynamicDataOfArg(frame.mPointDataset)->mX;
  result.mX.resize(points);
  result.mOutermostFunction = function.GetName();
  bool complexResult = resultKind == val::kComplexParam;

  FunctionContext errors(function.GetName());
  mFunctionContext = &errors;
  StackArguments arguments(*this);
  arguments.mTexts.assign(frame.mSlots.size(), nullptr);
  for (std::size_t i = 0; i < frame.mSlots.size(); ++i) {
    if (frame.mSlots[i].mKind == val::kStringParam) {
      arguments.mTexts[i] = &mStrings[frame.mSlots[i].mPos];
    }
  }
  std::vector<AComplex<double>> values;
  values.reserve(points);
  for (std::size_t k = 0; k < points; ++k) {
    frame.mPointIndex = static_cast<int>(k);
    frame.mResult.Reset();
    const bool ok = function.HasContextCalculation()
                        ? function.CalculateWithContext(arguments, frame.mResult, *this)
                        : RunStackRoutineAtPoint(function, frame);
    if (errors.HasErrors()) {
      errors.ShowErrors();
      throw -1;
    }
    if (!ok ||
        (frame.mResult.mKind != val::kDoubleParam && frame.mResult.mKind != val::kComplexParam)) {
      throw -1;
    }
    if (frame.mResult.mKind == val::kComplexParam && resultKind != val::kDoubleParam) {
      complexResult = true;
    }
    values.push_back(frame.mResult.mNumber);
  }
  frame.mPointIndex = -1;
  if (complexResult) {
    result.mType = val::kDynamicDoubleComplexDatasetParam;
    result.mComplexY = std::move(values);
  } else {
    result.mType = val::kDynamicDoubleDoubleDatasetParam;
    result.mY.reserve(values.size());
    for (const auto& v : values) result.mY.push_back(v.real());
  }
  DatasetEvaluationContext* datasets = GetEvaluationContext()->AsDatasetContext();
  const int index = datasets->AddComputedDataset(std::move(result));
  Truncate(frame.mNumberBase);
  mStrings.resize(std::min(mStrings.size(), frame.mStringBase));
  mUnified.resize(std::min(mUnified.size(), frame.mUnifiedBase));
  PushContextDataset(index);
}

bool double_stack::RunStackRoutineAtPoint(const Function& function, CallFrame& frame) {
  // The routine sees the point's scalar arguments on a stack of its own.
  double_stack point;
  std::vector<ValueState> states(frame.mSlots.size());
  const auto& parameters = function.GetParameters();
  for (std::size_t i = 0; i < frame.mSlots.size(); ++i) {
    const val::ParameterType parameter = parameters.empty()
                                             ? val::kDoubleParam
                                             : parameters[std::min(i, parameters.size() - 1)].mKind;
    const AComplex<double> value = GetComplexArg(static_cast<int>(i));
    if (parameter == val::kComplexParam) {
      states[i].mKind = val::kComplexParam;
      point.Push(value);
    } else {
      states[i].mKind = val::kDoubleParam;
      point.Push(value.real());
    }
  }
  point.SetCallArgumentStates(&states);
  function.CalculateFunction(point);
  if (function.GetResultType(states).mKind == val::kComplexParam) {
    frame.mResult.SetComplexResult(point.PopComplex());
  } else {
    frame.mResult.SetDoubleResult(point.Pop());
  }
  return true;
}

void double_stack::PushResult(const Function& function, CallFrame& frame) {
  val::ParameterType kind =
      mCallStates != nullptr ? function.GetResultType(*mCallStates).mKind : val::kNotParam;
  const bool vectorResult = !frame.mVectorResult.empty() || !frame.mComplexVectorResult.empty();
  if (kind == val::kNotParam || (vectorResult && !IsDatasetKind(kind))) {
    kind = vectorResult ? val::kDynamicDoubleDoubleDatasetParam : frame.mResult.mKind;
  }
  // Build the result before cutting the arguments away: a dataset result reads their x values.
  int datasetIndex = -1;
  if (IsDatasetKind(kind)) {
    ExpressionEvaluationContext* context = GetEvaluationContext();
    DatasetEvaluationContext* datasets = context != nullptr ? context->AsDatasetContext() : nullptr;
    if (datasets == nullptr || !vectorResult) throw -1;
    DatasetEvaluationContext::DynamicDataset result;
    for (std::size_t i = 0; i < frame.mSlots.size() && result.mX.empty(); ++i) {
      if (IsDatasetKind(frame.mSlots[i].mKind))
        result.mX = GetDoubleVectorArg_x(static_cast<int>(i));
    }
    result.mOutermostFunction = function.GetName();
    if (!frame.mComplexVectorResult.empty()) {
      result.mType = val::kDynamicDoubleComplexDatasetParam;
      result.mComplexY = std::move(frame.mComplexVectorResult);
      result.mX.resize(result.mComplexY.size(), NaN());
    } else {
      result.mType = val::kDynamicDoubleDoubleDatasetParam;
      result.mY = std::move(frame.mVectorResult);
      result.mX.resize(result.mY.size(), NaN());
    }
    datasetIndex = datasets->AddComputedDataset(std::move(result));
  }
  Truncate(frame.mNumberBase);
  mStrings.resize(std::min(mStrings.size(), frame.mStringBase));
  mUnified.resize(std::min(mUnified.size(), frame.mUnifiedBase));

  const FrameResult& r = frame.mResult;
  switch (kind) {
    case val::kComplexParam:
      if (r.mKind != val::kDoubleParam && r.mKind != val::kComplexParam) throw -1;
      Push(r.mNumber);
      return;
    case val::kStringParam:
      if (r.mKind != val::kStringParam) throw -1;
      PushString(r.mText);
      return;
    case val::kDatasetParam:
    case val::kDynamicDoubleDoubleDatasetParam:
    case val::kDynamicDoubleComplexDatasetParam:
      PushContextDataset(datasetIndex);
      return;
    case val::kDoubleParam:
    case val::kIntParam:
    case val::kCharParam:
    case val::kEnumParam:
      if (r.mKind != val::kDoubleParam && r.mKind != val::kComplexParam) throw -1;
      Push(r.mNumber.real());
      return;
    case val::kNotParam:
      WY_CHECK(!"Function produced no result!!");
      throw -1;
    case val::kCircleParam:
    case val::kArcParam:
    case val::kRegionParam:
    case val::kDoubleMatrixParam:
    case val::kComplexMatrixParam:
    case val::kStringMatrixParam:
    case val::kTextStringArrayParam:
    case val::kDoubleArrayParam:
      // Results of these kinds cannot be given through IFunctionResult.
      throw -1;
  }
  throw -1;
}

void double_stack::ThrowIfFunctionErrors() {
  if (mPlainRoutineErrors && mPlainRoutineErrors->HasErrors()) {
    mPlainRoutineErrors->ShowErrors();
    throw -1;
  }
}

// ---- IFunctionContext ---------------------------------------------------------------------------

int double_stack::GetArgCount() const {
  return mFrame != nullptr ? static_cast<int>(mFrame->mSlots.size()) : 0;
}

val::ParameterType double_stack::GetArgKind(int i) const {
  if (mFrame == nullptr || i < 0 || static_cast<std::size_t>(i) >= mFrame->mSlots.size()) {
    return val::kNotParam;
  }
  return mFrame->mSlots[static_cast<std::size_t>(i)].mKind;
}

const double_stack::DatasetRef* double_stack::DatasetOfArg(int i) const {
  if (!IsDatasetKind(GetArgKind(i))) return nullptr;
  const double handle = mData[mFrame->mSlots[static_cast<std::size_t>(i)].mPos];
  if (!(handle >= 0.0) || handle >= static_cast<double>(mDatasets.size())) return nullptr;
  return &mDatasets[static_cast<std::size_t>(handle)];
}

const DatasetEvaluationContext::DynamicDataset* double_stack::DynamicDataOfArg(int i) const {
  const DatasetRef* ref = DatasetOfArg(i);
  if (ref == nullptr || ref->mContext == nullptr) return nullptr;
  return ref->mContext->GetDataset(ref->mIndex);
}

double double_stack::GetDoubleArg(int i) const { return GetComplexArg(i).real(); }

AComplex<double> double_stack::GetComplexArg(int i) const {
  const val::ParameterType kind = GetArgKind(i);
  const std::size_t pos =
      kind != val::kNotParam ? mFrame->mSlots[static_cast<std::size_t>(i)].mPos : 0;
  switch (kind) {
    case val::kComplexParam:
      return AComplex<double>(mData[pos], mData[pos + 1]);
    case val::kDynamicDoubleDoubleDatasetParam:
    case val::kDynamicDoubleComplexDatasetParam: {
      // Read over a sweep: the y value at the current point.
      const auto* data = DynamicDataOfArg(i);
      if (data == nullptr || mFrame->mPointIndex < 0) break;
      const auto k = static_cast<std::size_t>(mFrame->mPointIndex);
      if (k >= data->Size()) break;
      return data->mType == val::kDynamicDoubleComplexDatasetParam
                 ? data->mComplexY[k]
                 : AComplex<double>(data->mY[k], 0.0);
    }
    case val::kNotParam:
    case val::kStringParam:
    case val::kDoubleMatrixParam:
    case val::kComplexMatrixParam:
    case val::kStringMatrixParam:
    case val::kTextStringArrayParam:
    case val::kDoubleArrayParam:
    case val::kDatasetParam:
      break;
    case val::kDoubleParam:
    case val::kCircleParam:
    case val::kArcParam:
    case val::kRegionParam:
    case val::kIntParam:
    case val::kCharParam:
    case val::kEnumParam:
      return AComplex<double>(mData[pos], 0.0);
  }
  return AComplex<double>(NaN(), NaN());
}

std::vector<double> double_stack::GetDoubleVectorArg_x(int i) const {
  const DatasetRef* ref = DatasetOfArg(i);
  if (ref == nullptr) return {};
  if (ref->mContext != nullptr) {
    const auto* data = ref->mContext->GetDataset(ref->mIndex);
    if (data == nullptr) return {};
    std::vector<double> x = data->mX;
    x.resize(data->Size());
    return x;
  }
  return GetStaticDataset(i).GetXValues();
}

std::vector<double> double_stack::GetDoubleVectorArg_y(int i) const {
  const DatasetRef* ref = DatasetOfArg(i);
  if (ref == nullptr) return {};
  if (ref->mContext != nullptr) {
    const auto* data = ref->mContext->GetDataset(ref->mIndex);
    if (data == nullptr) return {};
    if (data->mType != val::kDynamicDoubleComplexDatasetParam) {
      std::vector<double> y = data->mY;
      y.resize(data->Size());
      return y;
    }
    std::vector<double> y;
    for (std::size_t k = 0; k < data->Size(); ++k) y.push_back(data->mComplexY[k].real());
    return y;
  }
  return GetStaticDataset(i).GetYValues();
}

std::vector<AComplex<double>> double_stack::GetComplexVectorArg_y(int i) const {
  const DatasetRef* ref = DatasetOfArg(i);
  if (ref == nullptr) return {};
  if (ref->mContext != nullptr) {
    const auto* data = ref->mContext->GetDataset(ref->mIndex);
    if (data == nullptr) return {};
    std::vector<AComplex<double>> y;
    for (std::size_t k = 0; k < data->Size(); ++k) {
      y.push_back(data->mType == val::kDynamicDoubleComplexDatasetParam
                      ? data->mComplexY[k]
                      : AComplex<double>(data->mY[k], 0.0));
    }
    return y;
  }
  std::vector<AComplex<double>> y;
  for (double v : GetStaticDataset(i).GetYValues()) y.emplace_back(v, 0.0);
  return y;
}

const ValueBase* double_stack::GetDatasetValueBaseArg(int i) const {
  const DatasetRef* ref = DatasetOfArg(i);
  return ref != nullptr ? ref->mValue : nullptr;
}

geom::Dataset double_stack::GetStaticDataset(int i) const {
  const DatasetRef* ref = DatasetOfArg(i);
  if (ref == nullptr) return geom::Dataset();
  if (ref->mContext != nullptr) {
    return geom::Dataset(GetDoubleVectorArg_x(i), GetDoubleVectorArg_y(i));
  }
  if (ref->mValue == nullptr) return geom::Dataset();
  // A dataset value answers its points as an n x 2 matrix, also through a variable.
  const TNT::Matrix<double> points = ref->mValue->GetDoubleMatrixValue();
  geom::Dataset dataset(Units::NoUnits, ref->mValue->GetUnits());
  if (points.num_cols() == 2) {
    for (int r = 0; r < points.num_rows(); ++r) dataset.AddPoint(points[r][0], points[r][1]);
  }
  return dataset;
}

int double_stack::GetInterpolationOrder(int i) const { return DatasetOfArg(i) != nullptr ? 1 : -1; }

AString double_stack::GetOutermostFunctionAppliedToYValues(int i) const {
  const auto* data = DynamicDataOfArg(i);
  return data != nullptr ? data->mOutermostFunction : AString();
}

double& double_stack::GetDoubleResult() {
  if (mFrame == nullptr) {
    WY_CHECK(!"No function call in progress!!");
    mScratch = NaN();
    return mScratch;
  }
  mFrame->mResult.mKind = val::kDoubleParam;
  mFrame->mResult.mNumber.imag(0.0);
  // std::complex guarantees array-like access to its two parts.
  return reinterpret_cast<double(&)[2]>(mFrame->mResult.mNumber)[0];
}

AComplex<double>& double_stack::GetComplexResult() {
  static thread_local AComplex<double> scratch;
  if (mFrame == nullptr) {
    WY_CHECK(!"No function call in progress!!");
    scratch = AComplex<double>(NaN(), NaN());
    return scratch;
  }
  mFrame->mResult.mKind = val::kComplexParam;
  return mFrame->mResult.mNumber;
}

std::vector<double>& double_stack::GetDoubleVectorResult_y() {
  static thread_local std::vector<double> scratch;
  if (mFrame == nullptr) {
    WY_CHECK(!"No function call in progress!!");
    scratch.clear();
    return scratch;
  }
  return mFrame->mVectorResult;
}

std::vector<AComplex<double>>& double_stack::GetComplexVectorResult_y() {
  static thread_local std::vector<AComplex<double>> scratch;
  if (mFrame == nullptr) {
    WY_CHECK(!"No function call in progress!!");
    scratch.clear();
    return scratch;
  }
  return mFrame->mComplexVectorResult;
}

AString double_stack::GetFunctionName() const {
  return mFunctionBeingEvaluated != nullptr ? mFunctionBeingEvaluated->GetName() : AString();
}

const Function* double_stack::GetAuxiliaryFunction(const AString& name, int argumentCount) const {
  if (Value::GetValueManager() == nullptr) return nullptr;
  std::vector<const Function*> overloads;
  Value::GetFunctions(name, overloads);
  for (const Function* f : overloads) {
    if (f->AcceptsArgumentCount(argumentCount)) return f;
  }
  return nullptr;
}

void double_stack::SetAuxiliaryFuncDoubleArg(int i, double value) {
  if (i < 0) return;
  if (static_cast<std::size_t>(i) >= mAuxArgs.size()) mAuxArgs.resize(i + 1);
  mAuxArgs[static_cast<std::size_t>(i)] = AuxArg{val::kDoubleParam, {value, 0.0}, nullptr};
}

void double_stack::SetAuxiliaryFuncComplexArg(int i, const AComplex<double>& value) {
  if (i < 0) return;
  if (static_cast<std::size_t>(i) >= mAuxArgs.size()) mAuxArgs.resize(i + 1);
  mAuxArgs[static_cast<std::size_t>(i)] = AuxArg{val::kComplexParam, value, nullptr};
}

void double_stack::SetAuxiliaryFuncDatasetValueBaseArg(int i, const ValueBase* value) {
  if (i < 0) return;
  if (static_cast<std::size_t>(i) >= mAuxArgs.size()) mAuxArgs.resize(i + 1);
  const val::ParameterType kind = value != nullptr ? value->GetParameterType() : val::kDatasetParam;
  mAuxArgs[static_cast<std::size_t>(i)] = AuxArg{kind, {}, value};
}

bool double_stack::FetchAuxiliaryFunctionResult(const Function& function,
                                                SimpleFunctionResult& result) {
  std::vector<AuxArg> args;
  args.swap(mAuxArgs);
  double_stack sub;
  sub.mContexts = mContexts;
  std::vector<ValueState> states;
  for (const AuxArg& arg : args) {
    ValueState state;
    state.mKind = arg.mKind;
    states.push_back(state);
    if (arg.mKind == val::kComplexParam) {
      sub.Push(arg.mNumber);
    } else if (IsDatasetKind(arg.mKind)) {
      if (!sub.PushDataset(arg.mValue)) return false;
    } else {
      sub.Push(arg.mNumber.real());
    }
  }
  sub.SetCallArgumentStates(&states);
  try {
    function.CalculateFunction(sub);
  } catch (...) {
    return false;
  }
  switch (function.GetResultType(states).mKind) {
    case val::kComplexParam:
      result.SetComplexResult(sub.PopComplex());
      return true;
    case val::kStringParam:
      result.SetStringResult(sub.PopString());
      return true;
    default:
      result.SetDoubleResult(sub.Pop());
      return true;
  }
}

void double_stack::StoreAuxiliaryFunctionResult(const SimpleFunctionResult& result) {
  if (mFrame == nullptr) {
    WY_CHECK(!"No function call in progress!!");
    return;
  }
  switch (result.GetKind()) {
    case val::kDoubleParam:
      mFrame->mResult.SetDoubleResult(result.GetDouble());
      break;
    case val::kComplexParam:
      mFrame->mResult.SetComplexResult(result.GetComplex());
      break;
    case val::kStringParam:
      mFrame->mResult.SetStringResult(result.GetString());
      break;
    default:
      mFrame->mResult.Reset();
      break;
  }
}

void double_stack::AddError(int code, std::vector<AString> arguments) {
  if (mFunctionContext != nullptr) {
    mFunctionContext->AddError(code, std::move(arguments));
    return;
  }
  if (!mPlainRoutineErrors) mPlainRoutineErrors = std::make_unique<FunctionContext>();
  mPlainRoutineErrors->AddError(code, std::move(arguments));
}

bool double_stack::HasErrors() const {
  if (mFunctionContext != nullptr) return mFunctionContext->HasErrors();
  return mPlainRoutineErrors && mPlainRoutineErrors->HasErrors();
}
