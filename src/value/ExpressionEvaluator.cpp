// SPDX-License-Identifier: Apache-2.0
//
// ExpressionEvaluator.cpp - the stream walk (Calculate), the Evaluate* entry points with their
// floating-point handling and result checks, the derivative walk over ADValue, and the
// dataset-name cache of string arrays.
#include "wycore/value/ExpressionEvaluator.h"

#include <algorithm>
#include <array>
#include <cfenv>
#include <climits>
#include <cmath>
#include <limits>
#include <memory>
#include <type_traits>
#include <typeinfo>

#include "ValueText.h"
#include "wycore/core/Check.h"
#include "wycore/core/DebugLog.h"
#include "wycore/value/DoubleArrayValue.h"
#include "wycore/value/DoubleStack.h"
#include "wycore/value/FloatValue.h"
#include "wycore/value/StringValue.h"
#include "wycore/value/Value.h"
#include "wycore/value/VariableReferenceValue.h"
#include "wycore/variables/Function.h"
#include "wycore/variables/Variable.h"

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Thrown by the real derivative walk when it meets a complex operand; the walk then restarts in
// complex arithmetic.
struct NeedsComplexWalk {};

bool IsComplexKind(std::int32_t kind) { return kind == val::kComplexParam; }

// Kinds that travel as one real number entry (a bit set over the kinds, tested on every
// operator of the walk).
constexpr std::uint32_t kRealKinds = (1u << val::kDoubleParam) | (1u << val::kIntParam) |
                                     (1u << val::kCharParam) | (1u << val::kEnumParam) |
                                     (1u << val::kCircleParam) | (1u << val::kArcParam) |
                                     (1u << val::kRegionParam);
inline bool IsRealKind(std::int32_t kind) {
  return static_cast<std::uint32_t>(kind) < 32u &&
         ((kRealKinds >> static_cast<std::uint32_t>(kind)) & 1u) != 0;
}

bool IsDatasetKind(val::ParameterType kind) {
  return kind == val::kDatasetParam || kind == val::kDynamicDoubleDoubleDatasetParam ||
         kind == val::kDynamicDoubleComplexDatasetParam;
}

// The numeric forms of the geometric values (see the header).
double CircleNumber(const ValueBase& v) { return v.GetCircleParam().mRadius; }

double ArcNumber(const ValueBase& v) {
  const ArcParam arc = v.GetArcParam();
  return arc.mRadius * std::fabs(arc.mEndAngle - arc.mStartAngle);
}

double RegionNumber(const ValueBase& v) {
  const RegionParam region = v.GetRegionParam();
  const auto& p = region.mVertices;
  double twiceArea = 0.0;
  for (std::size_t i = 0; i < p.size(); ++i) {
    const auto& a = p[i];
    const auto& b = p[(i + 1) % p.size()];
    twiceArea += a.first * b.second - b.first * a.second;
  }
  return std::fabs(twiceArea) / 2.0;
}

// A complex base raised to a whole exponent by repeated squaring.
AComplex<double> WholePower(AComplex<double> base, double exponent) {
  auto n = static_cast<unsigned long long>(std::fabs(exponent));
  AComplex<double> result(1.0, 0.0);
  while (n != 0) {
    if ((n & 1u) != 0) result *= base;
    n >>= 1u;
    if (n != 0) base *= base;
  }
  return exponent < 0.0 ? AComplex<double>(1.0, 0.0) / result : result;
}

AComplex<double> ComplexToRealPower(const AComplex<double>& base, double exponent) {
  // Whole exponents below 2^63 multiply out; beyond that every double is whole and the general
  // power is as good.
  if (exponent == std::trunc(exponent) && std::fabs(exponent) < 9.0e18) {
    return WholePower(base, exponent);
  }
  return std::pow(base, AComplex<double>(exponent, 0.0));
}

// The index rounded half away from zero, or nothing when it is no integer of int range.
bool RoundIndex(double index, int& out) {
  const double r = std::round(index);
  if (!(r >= static_cast<double>(INT_MIN) && r <= static_cast<double>(INT_MAX))) {
    out = INT_MIN;
    return false;
  }
  out = static_cast<int>(r);
  return true;
}

void WriteDebug(const char16_t* format, int value) {
  AString line;
  line.Format(format, value);
  wycore::DebugLog(line);
}

// Clears the processor's floating-point exception flags. glibc's feclearexcept stores and
// reloads the whole x87 environment, which costs more than a short evaluation itself; on x86-64
// the flags live in MXCSR (SSE arithmetic) and the x87 status word, and each is cleared directly
// and only when a flag is set. Elsewhere the C library does it.
inline void ClearFloatingPointFlags() {
#if defined(__x86_64__) && defined(__GNUC__)
  unsigned int csr = 0;
  __asm__ __volatile__("stmxcsr %0" : "=m"(csr));
  if ((csr & 0x3fu) != 0) {
    csr &= ~0x3fu;
    __asm__ __volatile__("ldmxcsr %0" : : "m"(csr));
  }
  unsigned short status = 0;
  __asm__ __volatile__("fnstsw %0" : "=am"(status));
  if ((status & 0x3fu) != 0) __asm__ __volatile__("fnclex");
#else
  std::feclearexcept(FE_ALL_EXCEPT);
#endif
}

// The stacks of the real and complex evaluations are kept per thread and reused, so that an
// evaluation allocates nothing once the thread's pool exists (made at the thread's first
// evaluation) and the stack has grown to fit. Evaluations nest (a variable whose value is itself
// an expression is read in the middle of a walk), so each nesting level up to kPooledLevels has
// a stack of its own; deeper levels make a fresh one. The pool is reached through a pointer in
// the initial-exec TLS model (a few bytes of static TLS, read without a call); its owner, reached
// only to make it, frees it when the thread ends.
class StackLease {
 public:
  StackLease() : mPool(ThreadPool()) {
    const int level = mPool.mLevel++;
    if (level < kPooledLevels) {
      mStack = &mPool.mStacks[static_cast<std::size_t>(level)];
    } else {
      mOwned = std::make_unique<double_stack>();
      mStack = mOwned.get();
    }
  }
  StackLease(const StackLease&) = delete;
  StackLease& operator=(const StackLease&) = delete;
  // The stack is emptied on the way out, so that texts and matrices of a result are not kept
  // alive per thread, and the next evaluation finds it clean.
  ~StackLease() {
    mStack->Reset();
    --mPool.mLevel;
  }
  double_stack& Get() { return *mStack; }

 private:
  static constexpr int kPooledLevels = 4;
  struct Pool {
    int mLevel = 0;
    std::array<double_stack, kPooledLevels> mStacks;
  };
  struct PoolOwner {
    Pool* mPool = nullptr;
    ~PoolOwner();
  };
  static Pool& ThreadPool() {
    if (tPool == nullptr) MakeThreadPool();
    return *tPool;
  }
  static void MakeThreadPool();
  static thread_local Pool* tPool __attribute__((tls_model("initial-exec")));
  static thread_local PoolOwner tOwner;
  Pool& mPool;
  double_stack* mStack = nullptr;
  std::unique_ptr<double_stack> mOwned;
};

thread_local StackLease::Pool* StackLease::tPool = nullptr;
thread_local StackLease::PoolOwner StackLease::tOwner;

StackLease::PoolOwner::~PoolOwner() {
  if (tPool == mPool) tPool = nullptr;
  delete mPool;
}

void StackLease::MakeThreadPool() {
  tOwner.mPool = new Pool();
  tPool = tOwner.mPool;
}

// The number of a value read by kDoubleOp. The two common entries of a value list, a constant
// (FloatValue) and a reference to a plain Variable that holds a constant, are recognised by the
// address of their exact type's type_info and read without a virtual call; any other value, or a
// type_info the comparison does not recognise (an address may differ across modules; that only
// costs the virtual call), answers GetValue as usual.
inline double ReadReal(const ValueBase* value) {
  const std::type_info& type = typeid(*value);
  if (&type == &typeid(FloatValue))
    return static_cast<const FloatValue*>(value)->FloatValue::GetValue();
  if (&type == &typeid(VariableReferenceValue)) {
    const Variable* variable = static_cast<const VariableReferenceValue*>(value)->GetVariable();
    if (&typeid(*variable) == &typeid(Variable)) {
      const ValueBase& held = variable->GetValueBase();
      if (&typeid(held) == &typeid(FloatValue)) {
        return static_cast<const FloatValue&>(held).FloatValue::GetValue();
      }
      return held.GetValue();
    }
  }
  return value->GetValue();
}

inline bool IsArithmeticOp(std::int32_t op) { return op >= kPlusOp && op <= kRaiseToPowerOp; }

// a op= b for the real arithmetic operators (IEEE semantics: no check of a zero divisor).
inline void ApplyRealArithmetic(std::int32_t op, double& a, double b) {
  switch (op) {
    case kPlusOp:
      a += b;
      break;
    case kMinusOp:
      a -= b;
      break;
    case kMultiplyOp:
      a *= b;
      break;
    case kDivideOp:
      a /= b;
      break;
    default:
      // The square, the most common power, is the product itself (as the C library's pow
      // gives it, without the call).
      a = b == 2.0 ? a * a : std::pow(a, b);
      break;
  }
}

// The exceptions whose traps are enabled (fegetexcept), read from the x87 control word as the C
// library does, without the call.
inline int EnabledFloatingPointTraps() {
#if defined(__x86_64__) && defined(__GNUC__)
  unsigned short control = 0;
  __asm__ __volatile__("fnstcw %0" : "=m"(control));
  return static_cast<int>(~control & FE_ALL_EXCEPT);
#else
  return fegetexcept();
#endif
}

// Clears the flags first: restoring a trap whose flag is still set would fire it at once.
void ResetFloatingPointMask(int savedMask) {
  std::feclearexcept(FE_ALL_EXCEPT);
  fedisableexcept(FE_ALL_EXCEPT & ~savedMask);
  if (savedMask != 0) feenableexcept(savedMask);
  std::feclearexcept(FE_ALL_EXCEPT);
}

}  // namespace

// ---- The derivative walk -----------------------------------------------------------------------

struct ExpressionEvaluator::Impl {
  template <class T>
  static void Walk(ExpressionEvaluator& e, std::vector<ADValue<T>>& stack, int order,
                   const Variable& variable);
  template <class T>
  static ADValue<T> Derivative(ExpressionEvaluator& e, int order, const Variable& variable);
};

template <class T>
void ExpressionEvaluator::Impl::Walk(ExpressionEvaluator& e, std::vector<ADValue<T>>& stack,
                                     int order, const Variable& variable) {
  constexpr bool kReal = std::is_same_v<T, double>;
  using AD = ADValue<T>;
  if (++e.mDepth > kMaxCallNesting) throw -1;
  struct DepthGuard {
    int& depth;
    ~DepthGuard() { --depth; }
  } guard{e.mDepth};

  const auto pop = [&stack]() {
    if (stack.empty()) {
      WY_CHECK(!"Number stack underflow!!");
      throw -1;
    }
    AD v = std::move(stack.back());
    stack.pop_back();
    return v;
  };
  const auto constant = [order](double v) { return AD(T(v), order); };
  const std::vector<Operation>& ops = *e.mExpression.mOperations;
  while (e.mOperationPos < ops.size()) {
    const std::int32_t op = ops[e.mOperationPos++];
    switch (op) {
      case kNoOp:
        WY_CHECK(!"Illegal sentinel enum value kNoOp in operationStream!!");
        break;
      case kDoubleOp:
        if constexpr (kReal) {
          stack.push_back(e.NextValue()->GetDValue(order, variable));
        } else {
          stack.push_back(e.NextValue()->GetDComplexValue(order, variable));
        }
        break;
      case kComplexOp:
        if constexpr (kReal) {
          throw NeedsComplexWalk();
        } else {
          stack.push_back(e.NextValue()->GetDComplexValue(order, variable));
        }
        break;
      case kCircleOp:
        stack.push_back(constant(CircleNumber(*e.NextValue())));
        break;
      case kArcOp:
        stack.push_back(constant(ArcNumber(*e.NextValue())));
        break;
      case kRegionOp:
        stack.push_back(constant(RegionNumber(*e.NextValue())));
        break;
      case kDatasetOp:
      case kDoubleMatrixOp:
      case kComplexMatrixOp:
      case kStringOp:
      case kDynamicDoubleDoubleDatasetOp:
      case kDynamicDoubleComplexDatasetOp:
        // Datasets, matrices and texts have no derivative.
        throw -1;
      case kTextStringArrayOp:
      case kDoubleArrayOp:
        e.mPendingArrays.push_back(PendingArray{e.NextValue(), op});
        break;
      case kFunctionOp: {
        const auto& calls = *e.mExpression.mFunctionCalls;
        if (!WY_CHECK(e.mFunctionPos < calls.size())) throw -1;
        const FunctionCall& call = calls[e.mFunctionPos++];
        if (!WY_CHECK(call.mFunction != nullptr)) throw -1;
        const std::size_t base = stack.size();
        for (std::size_t i = 0; i < call.mArguments.size(); ++i) Walk(e, stack, order, variable);
        if (stack.size() != base + call.mArguments.size()) throw -1;
        if constexpr (kReal) {
          if (call.mFunction->GetResultType(call.mArgumentStates).mKind == val::kComplexParam) {
            throw NeedsComplexWalk();
          }
          for (const ValueState& s : call.mArgumentStates) {
            if (s.mKind == val::kComplexParam) throw NeedsComplexWalk();
          }
        }
        AD result = call.mFunction->CalculateDerivative(stack.data() + base,
                                                        static_cast<int>(call.mArguments.size()));
        stack.resize(base);
        stack.push_back(std::move(result));
        break;
      }
      case kLabelOp:
      case kLeftBracketOp:
      case kRightBracketOp:
      case kCommaOp:
        WY_CHECK(!"Private parser use tokens in operationStream!!");
        break;
      case kLeftParenOp:
      case kStartOfExpressionOp:
      case kRightParenOp:
      case kArrayIndexStartOp:
      case kArrayIndexEndOp:
        break;
      case kUnaryMinusOp:
        e.NextKind();
        if (stack.empty()) throw -1;
        stack.back() = -stack.back();
        break;
      case kNotOp: {
        e.NextKind();
        const AD a = pop();
        stack.push_back(constant(a.GetValue() == T(0.0) ? 1.0 : 0.0));
        break;
      }
      case kEqualOp:
      case kNotEqualOp: {
        e.NextKind();
        const AD b = pop();
        const AD a = pop();
        const bool equal = a.GetValue() == b.GetValue();
        stack.push_back(constant((op == kEqualOp) == equal ? 1.0 : 0.0));
        break;
      }
      case kLessOp:
      case kGreaterOp:
      case kLessEqualOp:
      case kGreaterEqualOp: {
        const double b = std::real(pop().GetValue());
        const double a = std::real(pop().GetValue());
        const bool r = op == kLessOp        ? a < b
                       : op == kGreaterOp   ? a > b
                       : op == kLessEqualOp ? a <= b
                                            : a >= b;
        stack.push_back(constant(r ? 1.0 : 0.0));
        break;
      }
      case kAndOp:
      case kOrOp: {
        const T b = pop().GetValue();
        const T a = pop().GetValue();
        const bool r = op == kAndOp ? !(b == T(0.0) || a == T(0.0)) : (b != T(0.0) || a != T(0.0));
        stack.push_back(constant(r ? 1.0 : 0.0));
        break;
      }
      case kPlusOp:
      case kMinusOp:
      case kMultiplyOp:
      case kDivideOp:
      case kRaiseToPowerOp: {
        const std::int32_t rightKind = e.NextKind();
        const std::int32_t leftKind = e.NextKind();
        if constexpr (kReal) {
          if (IsComplexKind(rightKind) || IsComplexKind(leftKind)) throw NeedsComplexWalk();
        }
        const AD b = pop();
        const AD a = pop();
        switch (op) {
          case kPlusOp:
            stack.push_back(a + b);
            break;
          case kMinusOp:
            stack.push_back(a - b);
            break;
          case kMultiplyOp:
            stack.push_back(a * b);
            break;
          case kDivideOp:
            stack.push_back(a / b);
            break;
          default:
            stack.push_back(pow(a, b));
            break;
        }
        break;
      }
      case kEndOfExpressionOp:
        return;
      case kArrayDereferenceOp: {
        const std::int32_t arrayOp = e.NextKind();
        const std::int32_t indexOp = e.NextKind();
        WY_CHECK(arrayOp == kDoubleArrayOp || arrayOp == kTextStringArrayOp);
        WY_CHECK(indexOp == kDoubleOp);
        const double index = std::real(pop().GetValue());
        if (e.mPendingArrays.empty()) throw -1;
        const PendingArray array = e.mPendingArrays.back();
        e.mPendingArrays.pop_back();
        if (array.mOp != kDoubleArrayOp) throw -1;
        const std::vector<double> values = array.mValue->GetDoubleArrayValue();
        int i = 0;
        const bool inRange =
            RoundIndex(index, i) && i >= 0 && static_cast<std::size_t>(i) < values.size();
        stack.push_back(constant(inRange ? values[static_cast<std::size_t>(i)] : kNaN));
        break;
      }
      default:
        WY_CHECK(!"Unknown datatype operation!!");
        if (IsValuePushOp(op)) e.NextValue();
        break;
    }
  }
}

template <class T>
ADValue<T> ExpressionEvaluator::Impl::Derivative(ExpressionEvaluator& e, int order,
                                                 const Variable& variable) {
  ClearFloatingPointFlags();
  const int savedMask = EnabledFloatingPointTraps();
  e.mOperationPos = e.mValuePos = e.mFunctionPos = 0;
  e.mDepth = 0;
  e.mPendingArrays.clear();
  std::vector<ADValue<T>> stack;
  bool ok = false;
  try {
    if (e.mExpression.mOperations != nullptr) Walk(e, stack, order, variable);
    ok = stack.size() == 1;
  } catch (const NeedsComplexWalk&) {
    ClearFloatingPointFlags();
    throw;
  } catch (...) {
    ResetFloatingPointMask(savedMask);
  }
  ClearFloatingPointFlags();
  if (ok) return ADValue<T>::Truncated(stack.back(), order);
  return ADValue<T>::FromCoefficients(
      std::vector<T>(static_cast<std::size_t>(std::max(order, 0)) + 1, T(kNaN)));
}

// ---- Construction and entry points -------------------------------------------------------------

ExpressionEvaluator::ExpressionEvaluator(const Expression& expression)
    : mExpression(ExpressionStreamView::Of(expression)) {}

ExpressionEvaluator::ExpressionEvaluator(const ExpressionStreamView& stream)
    : mExpression(stream) {}

double ExpressionEvaluator::FailureValue() { return kNaN; }

AComplex<double> ExpressionEvaluator::ComplexFailureValue() { return AComplex<double>(kNaN, kNaN); }

bool ExpressionEvaluator::Run(double_stack& stack) {
  ClearFloatingPointFlags();
  const int savedMask = EnabledFloatingPointTraps();
  mOperationPos = mValuePos = mFunctionPos = 0;
  mDepth = 0;
  mPendingArrays.clear();
  mLastTextArray = nullptr;
  if (mContext != nullptr) stack.PushEvaluationContext(mContext);
  bool ok = true;
  try {
    if (mExpression.mOperations != nullptr) Calculate(stack);
  } catch (...) {
    ResetFloatingPointMask(savedMask);
    ok = false;
  }
  ClearFloatingPointFlags();
  return ok;
}

double ExpressionEvaluator::EvaluateRealExpression() {
  StackLease lease;
  double_stack& stak = lease.Get();
  if (!Run(stak)) return FailureValue();
  const std::vector<AString>& stringStack = stak.GetStringStack();
  WY_CHECK(stringStack.size() == 0);
  if (stak.size() == 2) {
    WY_CHECK(mExpression.GetParameterType() == val::kComplexParam);
    return stak.At(0);
  }
  if (stak.empty()) return FailureValue();
  WY_CHECK(stak.size() == 1);
  return stak.At(stak.size() - 1);
}

AComplex<double> ExpressionEvaluator::EvaluateComplexExpression() {
  StackLease lease;
  double_stack& stak = lease.Get();
  if (!Run(stak)) return ComplexFailureValue();
  const std::vector<AString>& stringStack = stak.GetStringStack();
  WY_CHECK(stringStack.size() == 0);
  if (stak.size() == 2) {
    WY_CHECK(mExpression.GetParameterType() == val::kComplexParam);
    return AComplex<double>(stak.At(0), stak.At(1));
  }
  if (stak.empty()) return ComplexFailureValue();
  WY_CHECK(stak.size() == 1);
  return AComplex<double>(stak.At(stak.size() - 1), 0.0);
}

TNT::Matrix<double> ExpressionEvaluator::EvaluateDoubleMatrixExpression() {
  double_stack stak;
  if (Run(stak)) {
    if (stak.UnifiedStackSize() == 1 && stak.empty()) {
      double_stack::StackType entry = stak.TopAndPop2();
      if (entry.GetParamType() == val::kDoubleMatrixParam) return entry.GetDoubleMatrix();
      if (entry.GetParamType() == val::kComplexMatrixParam) {
        const TNT::Matrix<AComplex<double>>& c = entry.GetComplexMatrix();
        TNT::Matrix<double> m(c.num_rows(), c.num_cols());
        for (int r = 0; r < c.num_rows(); ++r) {
          for (int k = 0; k < c.num_cols(); ++k) m[r][k] = c[r][k].real();
        }
        return m;
      }
    } else if (stak.IsUnifiedStackEmpty() && (stak.size() == 1 || stak.size() == 2)) {
      return TNT::Matrix<double>(1, 1, stak.At(0));
    }
  }
  wycore::DebugLog(u"Returning empty double matrix on evaluation error");
  return TNT::Matrix<double>();
}

TNT::Matrix<AComplex<double>> ExpressionEvaluator::EvaluateComplexMatrixExpression() {
  double_stack stak;
  if (Run(stak)) {
    if (stak.UnifiedStackSize() == 1 && stak.empty()) {
      double_stack::StackType entry = stak.TopAndPop2();
      if (entry.GetParamType() == val::kComplexMatrixParam) return entry.GetComplexMatrix();
      if (entry.GetParamType() == val::kDoubleMatrixParam) {
        const TNT::Matrix<double>& d = entry.GetDoubleMatrix();
        TNT::Matrix<AComplex<double>> m(d.num_rows(), d.num_cols());
        for (int r = 0; r < d.num_rows(); ++r) {
          for (int k = 0; k < d.num_cols(); ++k) m[r][k] = AComplex<double>(d[r][k], 0.0);
        }
        return m;
      }
    } else if (stak.IsUnifiedStackEmpty() && stak.size() == 1) {
      return TNT::Matrix<AComplex<double>>(1, 1, AComplex<double>(stak.At(0), 0.0));
    } else if (stak.IsUnifiedStackEmpty() && stak.size() == 2) {
      return TNT::Matrix<AComplex<double>>(1, 1, AComplex<double>(stak.At(0), stak.At(1)));
    }
  }
  wycore::DebugLog(u"Returning empty complex matrix on evaluation error");
  return TNT::Matrix<AComplex<double>>();
}

AString ExpressionEvaluator::EvaluateStringExpression() {
  double_stack stak;
  if (!Run(stak) || stak.StringStackSize() == 0) return StringValue::GetInvalidValue();
  return stak.TopString();
}

namespace {

// Moves what the walk left on the number and string stacks onto the unified stack: one number
// as a real scalar, a pair as a complex scalar, each text as a text entry.
void MoveResultToUnifiedStack(double_stack& stak) {
  if (stak.size() == 2) {
    stak.Push2(double_stack::StackType::Scalar(AComplex<double>(stak.At(0), stak.At(1))));
  } else {
    for (std::size_t i = 0; i < stak.size(); ++i) {
      stak.Push2(double_stack::StackType::Scalar(stak.At(i)));
    }
  }
  stak.Truncate(0);
  for (const AString& text : stak.GetStringStack()) {
    stak.Push2(double_stack::StackType::Text(text));
  }
  while (stak.StringStackSize() > 0) stak.PopString();
}

bool ValidateUnifiedStack(const double_stack& stak, val::ParameterType expected) {
  if (stak.IsUnifiedStackEmpty()) {
    WriteDebug(u"ERROR: Unified stack is empty when expecting type %d\n",
               static_cast<int>(expected));
    return false;
  }
  if (stak.UnifiedStackSize() == 1) {
    const val::ParameterType kind = stak.Top2().GetParamType();
    if (kind != expected) {
      WriteDebug(u"ERROR: Unified stack has 1 item but type %d is different from expected type \n",
                 static_cast<int>(kind));
      return false;
    }
    return true;
  }
  WriteDebug(u"ERROR: Epecting 1 item on Unified stack but it has %d\n",
             static_cast<int>(stak.UnifiedStackSize()));
  return false;
}

}  // namespace

double ExpressionEvaluator::EvaluateRealExpressionNew() {
  double_stack stak;
  if (!Run(stak)) return FailureValue();
  MoveResultToUnifiedStack(stak);
  if (!ValidateUnifiedStack(stak, val::kDoubleParam)) return FailureValue();
  return stak.Top2().GetDoubleMatrix()[0][0];
}

AComplex<double> ExpressionEvaluator::EvaluateComplexExpressionNew() {
  double_stack stak;
  if (!Run(stak)) return ComplexFailureValue();
  MoveResultToUnifiedStack(stak);
  if (!ValidateUnifiedStack(stak, val::kComplexParam)) return ComplexFailureValue();
  return stak.Top2().GetComplexMatrix()[0][0];
}

AString ExpressionEvaluator::EvaluateStringExpressionNew() {
  double_stack stak;
  if (!Run(stak)) return StringValue::GetInvalidValue();
  MoveResultToUnifiedStack(stak);
  if (!ValidateUnifiedStack(stak, val::kStringParam)) return StringValue::GetInvalidValue();
  return stak.Top2().GetText();
}

ADValue<double> ExpressionEvaluator::EvaluateRealDerivative(int order, const Variable& variable) {
  try {
    return Impl::Derivative<double>(*this, order, variable);
  } catch (const NeedsComplexWalk&) {
    const ADValue<AComplex<double>> c = Impl::Derivative<AComplex<double>>(*this, order, variable);
    std::vector<double> coefficients;
    for (const AComplex<double>& k : c.Coefficients()) coefficients.push_back(k.real());
    return ADValue<double>::FromCoefficients(std::move(coefficients));
  }
}

ADValue<AComplex<double>> ExpressionEvaluator::EvaluateComplexDerivative(int order,
                                                                         const Variable& variable) {
  return Impl::Derivative<AComplex<double>>(*this, order, variable);
}

// ---- The stream walk
// -----------------------------------------------------------------------------

const ValueBase* ExpressionEvaluator::NextValue() {
  const std::vector<ValueBase*>* values = mExpression.mValues;
  if (values == nullptr || mValuePos >= values->size()) {
    WY_CHECK(!"Value list exhausted by operationStream!!");
    throw -1;
  }
  const ValueBase* pVb = (*values)[mValuePos++];
  if (!WY_CHECK(pVb != nullptr)) throw -1;
  return pVb;
}

std::int32_t ExpressionEvaluator::NextKind() {
  const std::vector<Operation>& ops = *mExpression.mOperations;
  if (mOperationPos >= ops.size()) {
    WY_CHECK(!"Operation kind missing at the end of operationStream!!");
    throw -1;
  }
  return ops[mOperationPos++];
}

bool ExpressionEvaluator::RunRealOperations(double_stack& stack) {
  // The read positions and the number stack's top live in locals here: the values' getters are
  // virtual calls, after which members would have to be reloaded. The getters never touch this
  // stack (an expression read meanwhile runs on a stack of its own), so the locals stay valid
  // across them; they are written back before anything else may look. Anything unusual (a kind
  // that is not real, a stack too short for the operator, a value list that runs out) is left to
  // Calculate, which reports it.
  const std::vector<Operation>& operations = *mExpression.mOperations;
  const Operation* const ops = operations.data();
  const std::size_t opCount = operations.size();
  ValueBase* const* values = nullptr;
  std::size_t valueCount = 0;
  if (mExpression.mValues != nullptr) {
    values = mExpression.mValues->data();
    valueCount = mExpression.mValues->size();
  }
  std::size_t pos = mOperationPos;
  std::size_t valuePos = mValuePos;
  double* data = stack.mData;
  std::size_t size = stack.mSize;
  bool ended = false;
  while (pos < opCount) {
    const std::int32_t op = ops[pos];
    switch (op) {
      case kDoubleOp: {
        if (valuePos >= valueCount || values[valuePos] == nullptr) goto stop;
        const double value = ReadReal(values[valuePos]);
        ++valuePos;
        ++pos;
        // A value that is at once the right operand of real arithmetic combines with the entry
        // below it without going through the stack (the fused form of "push b; a op= b").
        if (size != 0 && pos + 2 < opCount && IsArithmeticOp(ops[pos]) &&
            IsRealKind(ops[pos + 1]) && IsRealKind(ops[pos + 2])) {
          ApplyRealArithmetic(ops[pos], data[size - 1], value);
          pos += 3;
          continue;
        }
        if (size == stack.mCapacity) {
          stack.mSize = size;
          stack.Grow();
          data = stack.mData;
        }
        data[size++] = value;
        continue;
      }
      case kLeftParenOp:
      case kStartOfExpressionOp:
      case kRightParenOp:
      case kArrayIndexStartOp:
      case kArrayIndexEndOp:
        ++pos;
        continue;
      case kEndOfExpressionOp:
        ++pos;
        ended = true;
        goto stop;
      case kUnaryMinusOp:
      case kNotOp: {
        if (pos + 1 >= opCount || !IsRealKind(ops[pos + 1]) || size == 0) goto stop;
        pos += 2;
        double& a = data[size - 1];
        // Negation flips the sign bit, so -0 is negative zero.
        a = op == kUnaryMinusOp ? -a : (a == 0.0 ? 1.0 : 0.0);
        continue;
      }
      case kEqualOp:
      case kNotEqualOp: {
        if (pos + 1 >= opCount || !IsRealKind(ops[pos + 1]) || size < 2) goto stop;
        pos += 2;
        const double b = data[--size];
        double& a = data[size - 1];
        a = (op == kEqualOp) == (a == b) ? 1.0 : 0.0;
        continue;
      }
      case kLessOp:
      case kGreaterOp:
      case kLessEqualOp:
      case kGreaterEqualOp:
      case kAndOp:
      case kOrOp: {
        if (size < 2) goto stop;
        ++pos;
        const double b = data[--size];
        double& a = data[size - 1];
        bool r = false;
        switch (op) {
          case kLessOp:
            r = a < b;
            break;
          case kGreaterOp:
            r = a > b;
            break;
          case kLessEqualOp:
            r = a <= b;
            break;
          case kGreaterEqualOp:
            r = a >= b;
            break;
          case kAndOp:
            r = !(b == 0.0 || a == 0.0);
            break;
          default:
            r = b != 0.0 || a != 0.0;
            break;
        }
        a = r ? 1.0 : 0.0;
        continue;
      }
      case kPlusOp:
      case kMinusOp:
      case kMultiplyOp:
      case kDivideOp:
      case kRaiseToPowerOp: {
        if (pos + 2 >= opCount || !IsRealKind(ops[pos + 1]) || !IsRealKind(ops[pos + 2]) ||
            size < 2) {
          goto stop;
        }
        pos += 3;
        const double b = data[--size];
        ApplyRealArithmetic(op, data[size - 1], b);
        continue;
      }
      default:
        goto stop;
    }
  }
stop:
  stack.mSize = size;
  mOperationPos = pos;
  mValuePos = valuePos;
  return ended;
}

void ExpressionEvaluator::Calculate(double_stack& stack) {
  if (++mDepth > kMaxCallNesting) {
    --mDepth;
    throw -1;
  }
  struct DepthGuard {
    int& depth;
    ~DepthGuard() { --depth; }
  } guard{mDepth};

  const std::vector<Operation>& ops = *mExpression.mOperations;
  while (mOperationPos < ops.size()) {
    if (RunRealOperations(stack)) return;
    if (mOperationPos >= ops.size()) break;
    const std::int32_t op = ops[mOperationPos++];
    switch (op) {
      case kNoOp:
        WY_CHECK(!"Illegal sentinel enum value kNoOp in operationStream!!");
        break;
      case kDoubleOp:
        stack.Push(NextValue()->GetValue());
        break;
      case kComplexOp:
        stack.Push(NextValue()->GetComplexValue());
        break;
      case kCircleOp:
        stack.Push(CircleNumber(*NextValue()));
        break;
      case kArcOp:
        stack.Push(ArcNumber(*NextValue()));
        break;
      case kRegionOp:
        stack.Push(RegionNumber(*NextValue()));
        break;
      case kDatasetOp:
        if (!stack.PushDataset(NextValue())) throw -1;
        break;
      case kDoubleMatrixOp: {
        const ValueBase* pVb = NextValue();
        WY_CHECK(pVb->GetParameterType() == val::kDoubleMatrixParam);
        stack.Push2(double_stack::StackType(
            std::make_unique<TNT::Matrix<double>>(pVb->GetDoubleMatrixValue())));
        break;
      }
      case kComplexMatrixOp: {
        const ValueBase* pVb = NextValue();
        WY_CHECK(pVb->GetParameterType() == val::kComplexMatrixParam);
        stack.Push2(double_stack::StackType(
            std::make_unique<TNT::Matrix<AComplex<double>>>(pVb->GetComplexMatrixValue())));
        break;
      }
      case kStringOp:
        stack.PushString(NextValue()->GetStringValue());
        break;
      case kDynamicDoubleDoubleDatasetOp: {
        const ValueBase* pVb = NextValue();
        if (!WY_CHECK(pVb->GetParameterType() == val::kDynamicDoubleDoubleDatasetParam)) throw -1;
        if (!stack.PushDataset(pVb)) throw -1;
        break;
      }
      case kDynamicDoubleComplexDatasetOp: {
        const ValueBase* pVb = NextValue();
        if (!WY_CHECK(pVb->GetParameterType() == val::kDynamicDoubleComplexDatasetParam)) throw -1;
        if (!stack.PushDataset(pVb)) throw -1;
        break;
      }
      case kTextStringArrayOp:
      case kDoubleArrayOp:
        mPendingArrays.push_back(PendingArray{NextValue(), op});
        break;
      case kFunctionOp:
        CallFunction(stack);
        break;
      case kLabelOp:
      case kLeftBracketOp:
      case kRightBracketOp:
      case kCommaOp:
        WY_CHECK(!"Private parser use tokens in operationStream!!");
        break;
      case kLeftParenOp:
      case kStartOfExpressionOp:
      case kRightParenOp:
      case kArrayIndexStartOp:
      case kArrayIndexEndOp:
        break;
      case kUnaryMinusOp:
        if (IsComplexKind(NextKind())) {
          stack.Push(-stack.PopComplex());
        } else {
          // Negation flips the sign bit, so -0 is negative zero.
          double& a = stack.Back();
          a = -a;
        }
        break;
      case kNotOp:
        if (IsComplexKind(NextKind())) {
          const AComplex<double> a = stack.PopComplex();
          stack.Push(a == AComplex<double>(0.0, 0.0) ? 1.0 : 0.0);
        } else {
          double& a = stack.Back();
          a = a == 0.0 ? 1.0 : 0.0;
        }
        break;
      case kEqualOp:
      case kNotEqualOp: {
        bool equal = false;
        if (IsComplexKind(NextKind())) {
          const AComplex<double> b = stack.PopComplex();
          const AComplex<double> a = stack.PopComplex();
          equal = a == b;
          stack.Push(0.0);
        } else {
          const double b = stack.Pop();
          equal = stack.Back() == b;
        }
        stack.Back() = (op == kEqualOp) == equal ? 1.0 : 0.0;
        break;
      }
      case kLessOp: {
        const double b = stack.Pop();
        double& a = stack.Back();
        a = a < b ? 1.0 : 0.0;
        break;
      }
      case kGreaterOp: {
        const double b = stack.Pop();
        double& a = stack.Back();
        a = a > b ? 1.0 : 0.0;
        break;
      }
      case kLessEqualOp: {
        const double b = stack.Pop();
        double& a = stack.Back();
        a = a <= b ? 1.0 : 0.0;
        break;
      }
      case kGreaterEqualOp: {
        const double b = stack.Pop();
        double& a = stack.Back();
        a = a >= b ? 1.0 : 0.0;
        break;
      }
      case kAndOp: {
        const double b = stack.Pop();
        double& a = stack.Back();
        a = (b == 0.0 || a == 0.0) ? 0.0 : 1.0;
        break;
      }
      case kOrOp: {
        const double b = stack.Pop();
        double& a = stack.Back();
        a = (b != 0.0 || a != 0.0) ? 1.0 : 0.0;
        break;
      }
      case kPlusOp:
      case kMinusOp:
      case kMultiplyOp:
      case kDivideOp:
      case kRaiseToPowerOp: {
        const std::int32_t rightKind = NextKind();
        const std::int32_t leftKind = NextKind();
        const bool rightComplex = IsComplexKind(rightKind);
        const bool leftComplex = IsComplexKind(leftKind);
        // Operands of other kinds (texts, matrices, datasets) cannot take part in arithmetic.
        if (!(rightComplex || IsRealKind(rightKind)) || !(leftComplex || IsRealKind(leftKind))) {
          throw -1;
        }
        if (!rightComplex && !leftComplex) {
          const double b = stack.Pop();
          double& a = stack.Back();
          switch (op) {
            case kPlusOp:
              a += b;
              break;
            case kMinusOp:
              a -= b;
              break;
            case kMultiplyOp:
              a *= b;
              break;
            case kDivideOp:
              a /= b;
              break;
            default:
              a = std::pow(a, b);
              break;
          }
          break;
        }
        const AComplex<double> b =
            rightComplex ? stack.PopComplex() : AComplex<double>(stack.Pop(), 0.0);
        const AComplex<double> a =
            leftComplex ? stack.PopComplex() : AComplex<double>(stack.Pop(), 0.0);
        AComplex<double> r;
        // A real operand combines as a real, not as (x, 0): 2 * (inf + 1j) must not meet 0 * inf.
        switch (op) {
          case kPlusOp:
            r = !leftComplex ? a.real() + b : !rightComplex ? a + b.real() : a + b;
            break;
          case kMinusOp:
            r = !leftComplex ? a.real() - b : !rightComplex ? a - b.real() : a - b;
            break;
          case kMultiplyOp:
            r = !leftComplex ? a.real() * b : !rightComplex ? a * b.real() : a * b;
            break;
          case kDivideOp:
            r = !rightComplex ? a / b.real() : a / b;
            break;
          default:
            r = !rightComplex ? ComplexToRealPower(a, b.real()) : std::pow(a, b);
            break;
        }
        stack.Push(r);
        break;
      }
      case kEndOfExpressionOp:
        return;
      case kArrayDereferenceOp: {
        const std::int32_t arrayOp = NextKind();
        const std::int32_t indexOp = NextKind();
        WY_CHECK(arrayOp == kDoubleArrayOp || arrayOp == kTextStringArrayOp);
        WY_CHECK(indexOp == kDoubleOp);
        const double index = IsComplexKind(indexOp) ? stack.PopComplex().real() : stack.Pop();
        if (mPendingArrays.empty()) {
          WY_CHECK(!"Array dereference without an array in operationStream!!");
          throw -1;
        }
        const PendingArray array = mPendingArrays.back();
        mPendingArrays.pop_back();
        int i = 0;
        const bool whole = RoundIndex(index, i);
        if (array.mOp == kTextStringArrayOp) {
          mLastTextArray = array.mValue;
          const std::vector<AString> entries = array.mValue->GetStringArrayValue();
          if (whole && i >= 0 && static_cast<std::size_t>(i) < entries.size()) {
            stack.PushString(valtext::Quote(entries[static_cast<std::size_t>(i)]));
          } else {
            WriteDebug(
                u"Returning empty string in OOB access in expression evaluation.  Index of %d", i);
            stack.PushString(StringValue::GetInvalidValue());
          }
        } else {
          // A plain array is read in place; anything else (a variable holding one) by copy.
          const auto* plain = dynamic_cast<const DoubleArrayValue*>(array.mValue);
          std::vector<double> copy;
          if (plain == nullptr) copy = array.mValue->GetDoubleArrayValue();
          const std::vector<double>& values = plain != nullptr ? plain->Values() : copy;
          if (whole && i >= 0 && static_cast<std::size_t>(i) < values.size()) {
            stack.Push(values[static_cast<std::size_t>(i)]);
          } else {
            WriteDebug(u"Returning NaN in OOB access in expression evaluation.  Index of %d", i);
            stack.Push(kNaN);
          }
        }
        break;
      }
      default:
        WY_CHECK(!"Unknown datatype operation!!");
        // Keep the value list in step with the stream.
        if (IsValuePushOp(op)) NextValue();
        break;
    }
  }
}

void ExpressionEvaluator::CallFunction(double_stack& stack) {
  const std::vector<FunctionCall>* calls = mExpression.mFunctionCalls;
  if (calls == nullptr || mFunctionPos >= calls->size()) {
    WY_CHECK(!"Function list exhausted by operationStream!!");
    throw -1;
  }
  const FunctionCall& call = (*calls)[mFunctionPos++];
  const Function* function = call.mFunction;
  if (!WY_CHECK(function != nullptr)) throw -1;

  const std::size_t count = call.mArguments.size();
  const std::vector<ValueState>* states =
      call.mArgumentStates.size() == count ? &call.mArgumentStates : nullptr;
  std::vector<ValueState> resolved;  // only when a dataset is named by a text
  const auto& parameters = function->GetParameters();
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t strings = stack.StringStackSize();
    const std::size_t numbers = stack.size();
    Calculate(stack);
    // A dataset parameter given a text (an entry of a string array of dataset names): the
    // dataset of that name, through the expression's dataset cache.
    const val::ParameterType parameter =
        parameters.empty() ? val::kNotParam : parameters[std::min(i, parameters.size() - 1)].mKind;
    if (IsDatasetKind(parameter) && stack.StringStackSize() == strings + 1 &&
        stack.size() == numbers) {
      const AString name = StringValue::Unquote(stack.PopString());
      StringArrayDatasetCache::CachedDataset found;
      if (const auto* cached = GetCachedDatasetByName(mDatasetCache, mLastTextArray, name)) {
        found = *cached;
      } else if (mDatasetCache == nullptr ||
                 !TryResolveDatasetUsingCachedResolvers(*mDatasetCache, name, found)) {
        found.mID = Value::ResolveDatset(name, found.mServer);
      }
      if (found.mID < 0 || !stack.PushDataset(found.mServer, found.mID)) throw -1;
      if (resolved.empty()) {
        resolved = states != nullptr ? *states : std::vector<ValueState>(count);
        states = &resolved;
      }
      resolved[i].mKind = val::kDynamicDoubleDoubleDatasetParam;
    }
  }
  stack.SetCallArgumentStates(states);
  function->CalculateFunction(stack);
  stack.SetCallArgumentStates(nullptr);
}

// ---- The dataset-name cache
// ----------------------------------------------------------------------

void StringArrayDatasetCache::Synchronize(const ValueBase* array,
                                          const std::vector<AString>& names) {
  if (array == nullptr) return;
  DatasetMap& map = mMaps[array];
  map.clear();
  for (const AString& name : names) {
    CachedDataset d;
    d.mID = Value::ResolveDatset(name, d.mServer);
    if (d.mID >= 0) map[name] = d;
  }
}

const StringArrayDatasetCache::DatasetMap* StringArrayDatasetCache::Find(
    const ValueBase* array) const {
  auto it = mMaps.find(array);
  return it != mMaps.end() ? &it->second : nullptr;
}

std::vector<const IDatasetServer*> StringArrayDatasetCache::GetResolvers() const {
  std::vector<const IDatasetServer*> out;
  for (const auto& [array, map] : mMaps) {
    for (const auto& [name, d] : map) {
      if (d.mServer != nullptr && std::find(out.begin(), out.end(), d.mServer) == out.end()) {
        out.push_back(d.mServer);
      }
    }
  }
  return out;
}

void ExpressionEvaluator::SynchronizeStringArrayDatasetCache(const ExpressionStreamView& stream,
                                                             StringArrayDatasetCache& cache) {
  cache.Clear();
  if (stream.mValues == nullptr) return;
  for (const ValueBase* value : *stream.mValues) {
    if (value != nullptr && value->GetParameterType() == val::kTextStringArrayParam) {
      cache.Synchronize(value, value->GetStringArrayValue());
    }
  }
}

const StringArrayDatasetCache::CachedDataset* ExpressionEvaluator::GetCachedDatasetByName(
    const StringArrayDatasetCache* cache, const ValueBase* pCachedWrtArray, const AString& name) {
  if (pCachedWrtArray == nullptr) {
    wycore::DebugLog(
        u"ExpressionEvaluator::GetCachedDatasetByName: Internal error. Called with null "
        u"pCachedWrtArray arg\n");
    return nullptr;
  }
  const StringArrayDatasetCache::DatasetMap* map =
      cache != nullptr ? cache->Find(pCachedWrtArray) : nullptr;
  if (map == nullptr) {
    AString line;
    line.Format(
        u"ExpressionEvaluator::GetCachedDatasetByName: Could not find cachedDataset map for "
        u"string array %s\n",
        pCachedWrtArray->GetValueText().c_str());
    wycore::DebugLog(line);
    return nullptr;
  }
  auto it = map->find(name);
  return it != map->end() ? &it->second : nullptr;
}

bool ExpressionEvaluator::TryResolveDatasetUsingCachedResolvers(
    const StringArrayDatasetCache& cache, const AString& name,
    StringArrayDatasetCache::CachedDataset& out) {
  // The name is resolved the usual way (through the name space's servers) and accepted only
  // from a server that already served this cache: a stale name must not pick up a dataset of an
  // unrelated source.
  const std::vector<const IDatasetServer*> resolvers = cache.GetResolvers();
  if (resolvers.empty()) return false;
  const IDatasetServer* server = nullptr;
  const int id = Value::ResolveDatset(name, server);
  if (id < 0 || std::find(resolvers.begin(), resolvers.end(), server) == resolvers.end()) {
    return false;
  }
  out.mServer = server;
  out.mID = id;
  return true;
}
