// SPDX-License-Identifier: Apache-2.0
//
// ExpressionEvaluatorTest.cpp - the stream walk, its checks and edge cases, the ...New
// validations, function forms, floating-point handling, derivatives, datasets and the
// dataset-name cache; on hand-built streams and on parsed text.
#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <limits>
#include <memory>

#include "support/Capture.h"
#include "wycore/value/ComplexValue.h"
#include "wycore/value/DoubleArrayValue.h"
#include "wycore/value/DoubleStack.h"
#include "wycore/value/ExpressionEvaluator.h"
#include "wycore/value/FloatValue.h"
#include "wycore/value/MatrixValue.h"
#include "wycore/value/StringArrayValue.h"
#include "wycore/value/StringValue.h"
#include "wycore/value/Value.h"
#include "wycore/variables/Function.h"
#include "wycore/variables/Variable.h"
#include "wycore/variables/VariableNameSpace.h"

namespace wycore::test {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

// A stream built by hand, in the layout the parser writes.
class Stream {
 public:
  explicit Stream(val::ParameterType kind = val::kDoubleParam) : mKind(kind) {
    mOps.push_back(kStartOfExpressionOp);
  }
  Stream& Op(int op) {
    mOps.push_back(static_cast<Operation>(op));
    return *this;
  }
  Stream& Ops(std::initializer_list<int> ops) {
    for (int op : ops) Op(op);
    return *this;
  }
  // Pushes a value the stream owns (code = its kind) or one it does not (a variable).
  Stream& Val(ValueBase* value, int op) {
    mOwned.emplace_back(value);
    return Ref(value, op);
  }
  Stream& Ref(ValueBase* value, int op = kDoubleOp) {
    mValues.push_back(value);
    return Op(op);
  }
  Stream& Real(double v) { return Val(new FloatValue(v), kDoubleOp); }
  Stream& Cplx(double re, double im) { return Val(new ComplexValue({re, im}), kComplexOp); }
  // kFunctionOp; then Arg()/EndArg() around each argument.
  Stream& Call(const Function* f, std::vector<ValueState> states) {
    FunctionCall call;
    call.mFunction = f;
    call.mOperationIndex = static_cast<int>(mOps.size());
    call.mArgumentStates = std::move(states);
    mOpen.push_back(mCalls.size());
    mCalls.push_back(std::move(call));
    return Op(kFunctionOp);
  }
  Stream& Arg() {
    mArgStart = static_cast<int>(mOps.size());
    return Op(kStartOfExpressionOp);
  }
  Stream& EndArg() {
    mCalls[mOpen.back()].mArguments.emplace_back(mArgStart, static_cast<int>(mOps.size()));
    return Op(kEndOfExpressionOp);
  }
  Stream& EndCall() {
    mOpen.pop_back();
    return *this;
  }
  // Closes the whole expression.
  Stream& End() { return Op(kEndOfExpressionOp); }
  ExpressionStreamView View() const { return {&mOps, &mValues, &mCalls, mKind}; }

 private:
  val::ParameterType mKind;
  std::vector<Operation> mOps;
  std::vector<ValueBase*> mValues;
  std::vector<std::shared_ptr<ValueBase>> mOwned;  // shared: table rows copy streams
  std::vector<FunctionCall> mCalls;
  std::vector<std::size_t> mOpen;
  int mArgStart = 0;
};

ValueState State(val::ParameterType kind) {
  return ValueState(Units::NoUnits, Units::NoUnit, val::kDBAmplitude, kind);
}

double Real(const Stream& s) { return ExpressionEvaluator(s.View()).EvaluateRealExpression(); }

bool SameDouble(double a, double b) {
  return (std::isnan(a) && std::isnan(b)) || (a == b && std::signbit(a) == std::signbit(b));
}

const Function* Table(const char16_t* name, std::vector<val::ParameterType> kinds) {
  std::vector<ValueState> states;
  for (auto k : kinds) states.push_back(State(k));
  int error = 0;
  const Function* f = Value::GetFunction(name, static_cast<int>(kinds.size()), states, error);
  EXPECT_NE(f, nullptr) << AString(name).TStr();
  return f;
}

// ---- Operators -----------------------------------------------------------------------------

TEST(ExpressionEvaluator, OperatorEdgeCases) {
  const struct {
    const char* what;
    Stream stream;
    double expected;
  } cases[] = {
      {"-0 has its sign bit set", Stream().Real(0.0).Ops({kUnaryMinusOp, 1}).End(), -0.0},
      {"-(-0) is +0", Stream().Real(-0.0).Ops({kUnaryMinusOp, 1}).End(), 0.0},
      {"!0", Stream().Real(0.0).Ops({kNotOp, 1}).End(), 1.0},
      {"!-0", Stream().Real(-0.0).Ops({kNotOp, 1}).End(), 1.0},
      {"!NaN", Stream().Real(kNaN).Ops({kNotOp, 1}).End(), 0.0},
      {"!2", Stream().Real(2.0).Ops({kNotOp, 1}).End(), 0.0},
      {"1/0", Stream().Real(1).Real(0).Ops({kDivideOp, 1, 1}).End(), kInf},
      {"-1/0", Stream().Real(-1).Real(0).Ops({kDivideOp, 1, 1}).End(), -kInf},
      {"0/0", Stream().Real(0).Real(0).Ops({kDivideOp, 1, 1}).End(), kNaN},
      {"1 == 1+1e-15 is exact",
       Stream().Real(1).Real(1).Real(1e-15).Ops({kPlusOp, 1, 1, kEqualOp, 1}).End(), 0.0},
      {"1 != 1+1e-15", Stream().Real(1).Real(1 + 1e-15).Ops({kNotEqualOp, 1}).End(), 1.0},
      {"(1+2j) == (1+2j)", Stream().Cplx(1, 2).Cplx(1, 2).Ops({kEqualOp, 2}).End(), 1.0},
      {"(1+2j) == (1-2j)", Stream().Cplx(1, 2).Cplx(1, -2).Ops({kEqualOp, 2}).End(), 0.0},
      {"(1+2j) != (1+2j)", Stream().Cplx(1, 2).Cplx(1, 2).Ops({kNotEqualOp, 2}).End(), 0.0},
      {"NaN == NaN", Stream().Real(kNaN).Real(kNaN).Ops({kEqualOp, 1}).End(), 0.0},
      {"NaN < 1", Stream().Real(kNaN).Real(1).Op(kLessOp).End(), 0.0},
      {"NaN >= 1", Stream().Real(kNaN).Real(1).Op(kGreaterEqualOp).End(), 0.0},
      {"2 > 1", Stream().Real(2).Real(1).Op(kGreaterOp).End(), 1.0},
      {"1 <= 1", Stream().Real(1).Real(1).Op(kLessEqualOp).End(), 1.0},
      {"NaN && 1", Stream().Real(kNaN).Real(1).Op(kAndOp).End(), 1.0},
      {"1 && 0", Stream().Real(1).Real(0).Op(kAndOp).End(), 0.0},
      {"-0 || 0", Stream().Real(-0.0).Real(0).Op(kOrOp).End(), 0.0},
      {"0 || NaN", Stream().Real(0).Real(kNaN).Op(kOrOp).End(), 1.0},
      {"2^-1", Stream().Real(2).Real(-1).Ops({kRaiseToPowerOp, 1, 1}).End(), 0.5},
      {"(-8)^(1/3) by pow", Stream().Real(-8).Real(1.0 / 3).Ops({kRaiseToPowerOp, 1, 1}).End(),
       kNaN},
      {"5 - 7", Stream().Real(5).Real(7).Ops({kMinusOp, 1, 1}).End(), -2.0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const double r = Real(c.stream);
    EXPECT_TRUE(SameDouble(r, c.expected)) << r;
  }
}

TEST(ExpressionEvaluator, ComplexPromotionAndPowers) {
  const struct {
    const char* what;
    Stream stream;
    AComplex<double> expected;
  } cases[] = {
      {"1 + 2j", Stream(val::kComplexParam).Real(1).Cplx(0, 2).Ops({kPlusOp, 2, 1}).End(), {1, 2}},
      {"2j - 1",
       Stream(val::kComplexParam).Cplx(0, 2).Real(1).Ops({kMinusOp, 1, 2}).End(),
       {-1, 2}},
      {"2 * (inf + 1j) keeps the real part infinite",
       Stream(val::kComplexParam).Real(2).Cplx(kInf, 1).Ops({kMultiplyOp, 2, 1}).End(),
       {kInf, 2}},
      {"1 / 2j",
       Stream(val::kComplexParam).Real(1).Cplx(0, 2).Ops({kDivideOp, 2, 1}).End(),
       {0, -0.5}},
      {"(1+1j)^2 is whole-power exact",
       Stream(val::kComplexParam).Cplx(1, 1).Real(2).Ops({kRaiseToPowerOp, 1, 2}).End(),
       {0, 2}},
      {"(1j)^4 is exactly 1",
       Stream(val::kComplexParam).Cplx(0, 1).Real(4).Ops({kRaiseToPowerOp, 1, 2}).End(),
       {1, 0}},
      {"(2j)^-2",
       Stream(val::kComplexParam).Cplx(0, 2).Real(-2).Ops({kRaiseToPowerOp, 1, 2}).End(),
       {-0.25, 0}},
      {"-(1+2j)", Stream(val::kComplexParam).Cplx(1, 2).Ops({kUnaryMinusOp, 2}).End(), {-1, -2}},
      {"a real result", Stream().Real(3).End(), {3, 0}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const AComplex<double> r = ExpressionEvaluator(c.stream.View()).EvaluateComplexExpression();
    EXPECT_EQ(r, c.expected) << r;
  }
  // The general power for a fractional exponent: principal branch of (-1)^0.5 is j.
  const Stream root = std::move(
      Stream(val::kComplexParam).Cplx(-1, 0).Real(0.5).Ops({kRaiseToPowerOp, 1, 2}).End());
  const AComplex<double> j = ExpressionEvaluator(root.View()).EvaluateComplexExpression();
  EXPECT_NEAR(j.real(), 0.0, 1e-15);
  EXPECT_NEAR(j.imag(), 1.0, 1e-15);
}

TEST(ExpressionEvaluator, TwoEntriesAreComplexAndRealEvaluationGivesTheRealPart) {
  Stream s(val::kComplexParam);
  s.Real(1.5).Cplx(0, 2).Ops({kPlusOp, 2, 1}).End();
  CheckCapture checks;
  EXPECT_EQ(Real(s), 1.5);
  EXPECT_TRUE(checks.None());
  // The same stream declared real: the kind check fires, the real part is still given.
  Stream wrong(val::kDoubleParam);
  wrong.Real(1.5).Cplx(0, 2).Ops({kPlusOp, 2, 1}).End();
  EXPECT_EQ(Real(wrong), 1.5);
  EXPECT_TRUE(checks.Fired("mExpression.GetParameterType() == val::kComplexParam"));
}

TEST(ExpressionEvaluator, EmptyStreamAndFailureValues) {
  Stream empty;
  empty.End();
  ExpressionEvaluator e(empty.View());
  EXPECT_TRUE(std::isnan(e.EvaluateRealExpression()));
  const AComplex<double> c = e.EvaluateComplexExpression();
  EXPECT_TRUE(std::isnan(c.real()) && std::isnan(c.imag()));
  EXPECT_EQ(e.EvaluateStringExpression(), u"\"\"");
  DebugCapture debug;
  EXPECT_EQ(e.EvaluateDoubleMatrixExpression().num_rows(), 0);
  EXPECT_EQ(e.EvaluateComplexMatrixExpression().num_rows(), 0);
  EXPECT_EQ(debug.Lines(),
            (std::vector<std::u16string>{u"Returning empty double matrix on evaluation error",
                                         u"Returning empty complex matrix on evaluation error"}));
}

// ---- Checks of the walk ------------------------------------------------------------------------

TEST(ExpressionEvaluator, MalformedStreamsFireTheirChecks) {
  const struct {
    const char* what;
    Stream stream;
    std::string check;
    double expected;
  } cases[] = {
      {"kNoOp", Stream().Real(2).Op(kNoOp).End(),
       "Illegal sentinel enum value kNoOp in operationStream!!", 2.0},
      {"label", Stream().Real(2).Op(kLabelOp).End(),
       "Private parser use tokens in operationStream!!", 2.0},
      {"[", Stream().Real(2).Op(kLeftBracketOp).End(),
       "Private parser use tokens in operationStream!!", 2.0},
      {"]", Stream().Real(2).Op(kRightBracketOp).End(),
       "Private parser use tokens in operationStream!!", 2.0},
      {"comma", Stream().Real(2).Op(kCommaOp).End(),
       "Private parser use tokens in operationStream!!", 2.0},
      {"unknown code", Stream().Real(2).Op(99).End(), "Unknown datatype operation!!", 2.0},
      {"int push code, value kept in step", Stream().Val(new FloatValue(7), kIntOp).Real(2).End(),
       "Unknown datatype operation!!", 2.0},
      {"three numbers left", Stream().Real(1).Real(2).Real(3).End(), "stak.size() == 1", 3.0},
      {"double matrix code on a float",
       Stream().Val(new FloatValue(1), kDoubleMatrixOp).Real(4).End(),
       "pVb->GetParameterType() == val::kDoubleMatrixParam", 4.0},
      {"complex matrix code on a float",
       Stream().Val(new FloatValue(1), kComplexMatrixOp).Real(4).End(),
       "pVb->GetParameterType() == val::kComplexMatrixParam", 4.0},
      {"real dataset code on a float", Stream().Val(new FloatValue(1), 11).End(),
       "pVb->GetParameterType() == val::kDynamicDoubleDoubleDatasetParam", kNaN},
      {"complex dataset code on a float", Stream().Val(new FloatValue(1), 12).End(),
       "pVb->GetParameterType() == val::kDynamicDoubleComplexDatasetParam", kNaN},
      {"dereference of a non-array kind",
       Stream()
           .Val(new DoubleArrayValue({5, 6}), kDoubleArrayOp)
           .Op(kArrayIndexStartOp)
           .Real(1)
           .Ops({kArrayIndexEndOp, kArrayDereferenceOp, kDoubleOp, kDoubleOp})
           .End(),
       "arrayOp == kDoubleArrayOp || arrayOp == kTextStringArrayOp", 6.0},
      {"complex index",
       Stream()
           .Val(new DoubleArrayValue({5, 6}), kDoubleArrayOp)
           .Op(kArrayIndexStartOp)
           .Cplx(1, 0)
           .Ops({kArrayIndexEndOp, kArrayDereferenceOp, kDoubleArrayOp, kComplexOp})
           .End(),
       "indexOp == kDoubleOp", 6.0},
      {"value list exhausted", Stream().Op(kDoubleOp).End(),
       "Value list exhausted by operationStream!!", kNaN},
      {"missing kind at the end", Stream().Real(1).Op(kUnaryMinusOp),
       "Operation kind missing at the end of operationStream!!", kNaN},
      {"function list exhausted", Stream().Op(kFunctionOp).End(),
       "Function list exhausted by operationStream!!", kNaN},
      {"underflow", Stream().Ops({kUnaryMinusOp, 1}).End(), "Number stack underflow!!", kNaN},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    CheckCapture checks;
    EXPECT_TRUE(SameDouble(Real(c.stream), c.expected));
    EXPECT_TRUE(checks.Fired(c.check));
  }
}

TEST(ExpressionEvaluator, StringLeftDuringRealEvaluationFiresItsCheck) {
  Stream s(val::kDoubleParam);
  s.Val(new StringValue(u"\"x\""), kStringOp).Real(1).End();
  CheckCapture checks;
  EXPECT_EQ(Real(s), 1.0);
  EXPECT_TRUE(checks.Fired("stringStack.size() == 0"));
}

// ---- Matrices, strings and the ...New forms ---------------------------------------------------

TEST(ExpressionEvaluator, MatricesTravelOnTheUnifiedStack) {
  TNT::Matrix<double> m(2, 2, 0.0);
  m[0][1] = 3.0;
  Stream s(val::kDoubleMatrixParam);
  s.Val(new DoubleMatrixValue(m), kDoubleMatrixOp).End();
  ExpressionEvaluator e(s.View());
  const TNT::Matrix<double> r = e.EvaluateDoubleMatrixExpression();
  ASSERT_EQ(r.num_rows(), 2);
  EXPECT_EQ(r[0][1], 3.0);
  const TNT::Matrix<AComplex<double>> c = e.EvaluateComplexMatrixExpression();
  ASSERT_EQ(c.num_cols(), 2);
  EXPECT_EQ(c[0][1], AComplex<double>(3.0, 0.0));
  // A scalar result reads as a 1 x 1 matrix.
  Stream scalar;
  scalar.Cplx(1, 2).End();
  const TNT::Matrix<AComplex<double>> one =
      ExpressionEvaluator(scalar.View()).EvaluateComplexMatrixExpression();
  ASSERT_EQ(one.num_rows(), 1);
  EXPECT_EQ(one[0][0], AComplex<double>(1, 2));
}

TEST(ExpressionEvaluator, NewFormsValidateTheUnifiedStack) {
  Stream real;
  real.Real(2.5).End();
  Stream complex(val::kComplexParam);
  complex.Cplx(1, -1).End();
  Stream text(val::kStringParam);
  text.Val(new StringValue(u"\"ab\""), kStringOp).End();
  Stream empty;
  empty.End();
  Stream two;
  two.Val(new DoubleMatrixValue(TNT::Matrix<double>(1, 1, 1.0)), kDoubleMatrixOp).Real(1).End();

  DebugCapture debug;
  EXPECT_EQ(ExpressionEvaluator(real.View()).EvaluateRealExpressionNew(), 2.5);
  EXPECT_EQ(ExpressionEvaluator(complex.View()).EvaluateComplexExpressionNew(),
            AComplex<double>(1, -1));
  EXPECT_EQ(ExpressionEvaluator(text.View()).EvaluateStringExpressionNew(), u"\"ab\"");
  EXPECT_TRUE(debug.Lines().empty());

  const struct {
    const char* what;
    std::function<bool()> failed;
    std::u16string line;
  } cases[] = {
      {"empty",
       [&] { return std::isnan(ExpressionEvaluator(empty.View()).EvaluateRealExpressionNew()); },
       u"ERROR: Unified stack is empty when expecting type 1\n"},
      {"text for a real",
       [&] { return std::isnan(ExpressionEvaluator(text.View()).EvaluateRealExpressionNew()); },
       u"ERROR: Unified stack has 1 item but type 9 is different from expected type \n"},
      {"real for a complex",
       [&] {
         return std::isnan(ExpressionEvaluator(real.View()).EvaluateComplexExpressionNew().imag());
       },
       u"ERROR: Unified stack has 1 item but type 1 is different from expected type \n"},
      {"real for a text",
       [&] { return ExpressionEvaluator(real.View()).EvaluateStringExpressionNew() == u"\"\""; },
       u"ERROR: Unified stack has 1 item but type 1 is different from expected type \n"},
      {"matrix and number",
       [&] { return std::isnan(ExpressionEvaluator(two.View()).EvaluateRealExpressionNew()); },
       u"ERROR: Epecting 1 item on Unified stack but it has 2\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    debug.Clear();
    EXPECT_TRUE(c.failed());
    EXPECT_EQ(debug.Lines(), std::vector<std::u16string>{c.line});
  }
}

// ---- Arrays -------------------------------------------------------------------------------------

Stream Dereference(ValueBase* array, int arrayOp, double index) {
  Stream s(arrayOp == kTextStringArrayOp ? val::kStringParam : val::kDoubleParam);
  s.Val(array, arrayOp)
      .Op(kArrayIndexStartOp)
      .Real(index)
      .Ops({kArrayIndexEndOp, kArrayDereferenceOp, arrayOp, kDoubleOp})
      .End();
  return s;
}

TEST(ExpressionEvaluator, ArrayIndexRoundsHalfAwayFromZeroAndOutOfRangeIsNaN) {
  const struct {
    double index;
    double expected;
    const char16_t* line;  // null: no debug line
  } cases[] = {
      {0, 10, nullptr},
      {-0.4, 10, nullptr},
      {1.49, 20, nullptr},
      {1.5, 30, nullptr},
      {2.5, kNaN, u"Returning NaN in OOB access in expression evaluation.  Index of 3"},
      {-0.5, kNaN, u"Returning NaN in OOB access in expression evaluation.  Index of -1"},
      {kNaN, kNaN, u"Returning NaN in OOB access in expression evaluation.  Index of -2147483648"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.index);
    DebugCapture debug;
    const Stream s = Dereference(new DoubleArrayValue({10, 20, 30}), kDoubleArrayOp, c.index);
    EXPECT_TRUE(SameDouble(Real(s), c.expected));
    if (c.line == nullptr) {
      EXPECT_TRUE(debug.Lines().empty());
    } else {
      EXPECT_EQ(debug.Lines(), std::vector<std::u16string>{c.line});
    }
  }
}

TEST(ExpressionEvaluator, TextArrayEntriesAndOutOfRangeGiveEmptyText) {
  DebugCapture debug;
  const Stream in = Dereference(new StringArrayValue({u"a", u"b"}), kTextStringArrayOp, 1);
  EXPECT_EQ(ExpressionEvaluator(in.View()).EvaluateStringExpression(), u"\"b\"");
  EXPECT_TRUE(debug.Lines().empty());
  const Stream out = Dereference(new StringArrayValue({u"a", u"b"}), kTextStringArrayOp, 5);
  EXPECT_EQ(ExpressionEvaluator(out.View()).EvaluateStringExpression(), u"\"\"");
  EXPECT_EQ(debug.Lines(),
            std::vector<std::u16string>{
                u"Returning empty string in OOB access in expression evaluation.  Index of 5"});
}

TEST(ExpressionEvaluator, NestedDereferenceUsesTheInnermostArrayFirst) {
  // a[b[1]] with a = [10, 20, 30], b = [0, 2]
  Stream s;
  s.Val(new DoubleArrayValue({10, 20, 30}), kDoubleArrayOp)
      .Op(kArrayIndexStartOp)
      .Val(new DoubleArrayValue({0, 2}), kDoubleArrayOp)
      .Op(kArrayIndexStartOp)
      .Real(1)
      .Ops({kArrayIndexEndOp, kArrayDereferenceOp, kDoubleArrayOp, kDoubleOp})
      .Ops({kArrayIndexEndOp, kArrayDereferenceOp, kDoubleArrayOp, kDoubleOp})
      .End();
  EXPECT_EQ(Real(s), 30.0);
}

// ---- Functions ----------------------------------------------------------------------------------

Function* Counting(int& calls) {
  auto* f = new Function(u"counted", {{u"x", val::kDoubleParam}}, Function::ResultRule{}, nullptr);
  f->SetStackRoutine([&calls](double_stack& s) {
    ++calls;
    s.Back() += 100.0;
  });
  return f;
}

TEST(ExpressionEvaluator, LogicalOperatorsAndIfDoNotShortCircuit) {
  int calls = 0;
  std::unique_ptr<Function> f(Counting(calls));
  const auto real = std::vector<ValueState>{State(val::kDoubleParam)};
  // 0 && counted(1)
  Stream a;
  a.Real(0).Call(f.get(), real).Arg().Real(1).EndArg().EndCall().Op(kAndOp).End();
  EXPECT_EQ(Real(a), 0.0);
  EXPECT_EQ(calls, 1);
  // 1 || counted(1)
  Stream o;
  o.Real(1).Call(f.get(), real).Arg().Real(1).EndArg().EndCall().Op(kOrOp).End();
  EXPECT_EQ(Real(o), 1.0);
  EXPECT_EQ(calls, 2);
  // if(1, counted(1), counted(2)) evaluates both branches and takes the first.
  const Function* iff = Table(u"if", {val::kDoubleParam, val::kDoubleParam, val::kDoubleParam});
  Stream i;
  i.Call(iff, {State(val::kDoubleParam), State(val::kDoubleParam), State(val::kDoubleParam)})
      .Arg()
      .Real(1)
      .EndArg()
      .Arg()
      .Call(f.get(), real)
      .Arg()
      .Real(1)
      .EndArg()
      .EndCall()
      .EndArg()
      .Arg()
      .Call(f.get(), real)
      .Arg()
      .Real(2)
      .EndArg()
      .EndCall()
      .EndArg()
      .EndCall()
      .End();
  EXPECT_EQ(Real(i), 101.0);
  EXPECT_EQ(calls, 4);
}

TEST(ExpressionEvaluator, BuiltInFunctions) {
  const auto R = val::kDoubleParam;
  const auto Z = val::kComplexParam;
  const struct {
    const char16_t* name;
    std::vector<double> args;  // reals
    double expected;
  } reals[] = {
      {u"sin", {0.5}, std::sin(0.5)},
      {u"cos", {0.5}, std::cos(0.5)},
      {u"sqrt", {2.0}, std::sqrt(2.0)},
      {u"sqrt", {-1.0}, kNaN},
      {u"exp", {1.0}, std::exp(1.0)},
      {u"abs", {-3.0}, 3.0},
      {u"max", {1, 2}, 2},
      {u"max", {kNaN, 2}, kNaN},
      {u"min", {1, 2}, 1},
      {u"min", {2, kNaN}, kNaN},
      {u"if", {0, 5, 6}, 6},
      {u"if", {kNaN, 5, 6}, 5},
  };
  for (const auto& c : reals) {
    SCOPED_TRACE(AString(c.name).TStr());
    std::vector<ValueState> states(c.args.size(), State(R));
    const Function* f = Table(c.name, std::vector<val::ParameterType>(c.args.size(), R));
    Stream s;
    s.Call(f, states);
    for (double a : c.args) s.Arg().Real(a).EndArg();
    s.EndCall().End();
    EXPECT_TRUE(SameDouble(Real(s), c.expected));
  }
  // Complex overloads.
  Stream sq(Z);
  sq.Call(Table(u"sqrt", {Z}), {State(Z)}).Arg().Cplx(-4, 0).EndArg().EndCall().End();
  EXPECT_EQ(ExpressionEvaluator(sq.View()).EvaluateComplexExpression(), AComplex<double>(0, 2));
  Stream ab;
  ab.Call(Table(u"abs", {Z}), {State(Z)}).Arg().Cplx(3, 4).EndArg().EndCall().End();
  EXPECT_EQ(Real(ab), 5.0);
  Stream iz(Z);
  iz.Call(Table(u"if", {R, Z, Z}), {State(R), State(Z), State(Z)})
      .Arg()
      .Real(0)
      .EndArg()
      .Arg()
      .Cplx(1, 1)
      .EndArg()
      .Arg()
      .Cplx(2, 2)
      .EndArg()
      .EndCall()
      .End();
  EXPECT_EQ(ExpressionEvaluator(iz.View()).EvaluateComplexExpression(), AComplex<double>(2, 2));
}

TEST(ExpressionEvaluator, BuiltInResultStates) {
  const Units::FullUnitType meter = Units::GetDefaultUnits(Units::Length);
  const ValueState length(meter, Units::Length, val::kDBAmplitude, val::kDoubleParam);
  const ValueState none = State(val::kDoubleParam);
  const struct {
    const char16_t* name;
    std::vector<ValueState> args;
    Units::FullUnitType units;
  } cases[] = {
      {u"sin", {length}, Units::NoUnits}, {u"cos", {length}, Units::NoUnits},
      {u"abs", {length}, meter},          {u"max", {length, length}, meter},
      {u"min", {length, none}, meter},    {u"if", {none, length, length}, meter},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(AString(c.name).TStr());
    int error = 0;
    const Function* f = Value::GetFunction(c.name, static_cast<int>(c.args.size()), c.args, error);
    ASSERT_NE(f, nullptr);
    EXPECT_EQ(f->GetResultType(c.args).mUnits, c.units);
    EXPECT_EQ(f->GetResultType(c.args).mKind, val::kDoubleParam);
  }
}

TEST(ExpressionEvaluator, NewerFormFunctionsUseTheContextAndReportErrors) {
  AString seenName;
  Function twice(u"twice", {{u"x", val::kComplexParam}}, {val::kComplexParam, -1, -1, {}}, nullptr);
  twice.SetContextCalculation(
      [&seenName](const IFunctionArguments& args, IFunctionResult& result, IFunctionContext& ctx) {
        seenName = ctx.GetFunctionName();
        EXPECT_EQ(ctx.GetArgCount(), 1);
        result.SetComplexResult(2.0 * args.GetComplexArg(0));
        return true;
      });
  Stream s(val::kComplexParam);
  s.Real(1)
      .Call(&twice, {State(val::kComplexParam)})
      .Arg()
      .Cplx(1, 2)
      .EndArg()
      .EndCall()
      .Ops({kPlusOp, 2, 1})
      .End();
  EXPECT_EQ(ExpressionEvaluator(s.View()).EvaluateComplexExpression(), AComplex<double>(3, 4));
  EXPECT_EQ(seenName, u"twice");

  // Errors added to the context are shown and end the evaluation with the failure value.
  Function failing(u"failing", {{u"x", val::kDoubleParam}}, Function::ResultRule{}, nullptr);
  failing.SetContextCalculation(
      [](const IFunctionArguments&, IFunctionResult& result, IFunctionContext& ctx) {
        result.SetDoubleResult(1.0);
        ctx.AddError(24499, {u"failing"});
        return true;
      });
  Stream f;
  f.Call(&failing, {State(val::kDoubleParam)}).Arg().Real(1).EndArg().EndCall().End();
  MessageCapture messages;
  const AComplex<double> c = ExpressionEvaluator(f.View()).EvaluateComplexExpression();
  EXPECT_TRUE(std::isnan(c.real()) && std::isnan(c.imag()));
  ASSERT_EQ(messages.Messages().size(), 1u);
  EXPECT_EQ(messages.Messages()[0].code, 24499);
  EXPECT_EQ(messages.Messages()[0].args, std::vector<std::u16string>{u"failing"});

  // A function with no form at all.
  Function none(u"none", {{u"x", val::kDoubleParam}}, Function::ResultRule{}, nullptr);
  Stream n;
  n.Call(&none, {State(val::kDoubleParam)}).Arg().Real(1).EndArg().EndCall().End();
  CheckCapture checks;
  EXPECT_TRUE(std::isnan(Real(n)));
  EXPECT_TRUE(checks.Fired("Function has no calculation"));
  // The stack refuses to evaluate no function.
  double_stack stack;
  EXPECT_THROW(stack.EvaluateFunction(nullptr), int);
  EXPECT_TRUE(checks.Fired("mFunctionBeingEvaluated"));
}

TEST(ExpressionEvaluator, FloatingPointStateNeverEscapes) {
  Stream s;
  s.Real(1).Real(0).Ops({kDivideOp, 1, 1}).End();
  std::feraiseexcept(FE_INEXACT);
  EXPECT_EQ(Real(s), kInf);
  EXPECT_EQ(std::fetestexcept(FE_ALL_EXCEPT), 0);

  // A routine that enables a trap and then fails leaves the mask as it found it.
  Function trapping(u"trapping", {{u"x", val::kDoubleParam}}, Function::ResultRule{}, nullptr);
  trapping.SetStackRoutine([](double_stack&) {
    feenableexcept(FE_DIVBYZERO);
    throw -1;
  });
  Stream t;
  t.Call(&trapping, {State(val::kDoubleParam)}).Arg().Real(1).EndArg().EndCall().End();
  const int before = fegetexcept();
  EXPECT_TRUE(std::isnan(Real(t)));
  EXPECT_EQ(fegetexcept(), before);
  EXPECT_EQ(std::fetestexcept(FE_ALL_EXCEPT), 0);
}

TEST(ExpressionEvaluator, DeepNestingFailsInsteadOfOverflowing) {
  int calls = 0;
  std::unique_ptr<Function> f(Counting(calls));
  const auto real = std::vector<ValueState>{State(val::kDoubleParam)};
  Stream s;
  const int depth = ExpressionEvaluator::kMaxCallNesting + 5;
  for (int i = 0; i < depth; ++i) s.Call(f.get(), real).Arg();
  s.Real(0);
  for (int i = 0; i < depth; ++i) s.EndArg().EndCall();
  s.End();
  EXPECT_TRUE(std::isnan(Real(s)));
  EXPECT_EQ(calls, 0);
}

// ---- Variables and derivatives ------------------------------------------------------------------

TEST(ExpressionEvaluator, VariableChangesShowAtTheNextEvaluation) {
  Variable w(u"w", 1.0);
  Stream s;
  s.Real(2).Ref(&w).Ops({kMultiplyOp, 1, 1}).End();
  ExpressionEvaluator e(s.View());
  EXPECT_EQ(e.EvaluateRealExpression(), 2.0);
  w = 5.0;
  EXPECT_EQ(e.EvaluateRealExpression(), 10.0);
}

// Each thread keeps a few stacks for nested evaluations and makes fresh ones deeper down; a
// chain of variables deeper than that reads right, and a failed evaluation leaves nothing behind
// on the reused stack for the next one.
TEST(ExpressionEvaluator, NestedEvaluationsAndReusedStacks) {
  Variable v0(u"v0", 1.0);
  VariableNameSpace names(&v0, VariableNameSpace::kSearchIntrinsics,
                          VariableNameSpace::kAppendToPrevious);
  std::vector<std::unique_ptr<Variable>> chain;
  for (int i = 1; i <= 9; ++i) {
    const AString previous = i == 1 ? AString(u"v0") : chain.back()->GetName();
    AString name(u"v");
    name += AString(std::u16string(1, static_cast<char16_t>(u'0' + i)));
    chain.push_back(
        std::make_unique<Variable>(name, previous + AString(u" * 2 + 1"), Units::NoUnits));
    names.AddVariable(chain.back().get());
  }
  std::unique_ptr<ValueBase> top(Value::CreateValueBase(u"v9 - 1", Units::NoUnits));
  ASSERT_NE(top, nullptr);
  EXPECT_EQ(top->GetValue(), 1022.0);  // v9 = 2^10 - 1
  // Readers go before the variables they read.
  top.reset();
  while (!chain.empty()) chain.pop_back();

  // A string left on the stack fails its check; the next evaluation starts clean.
  Stream bad;
  bad.Val(new StringValue(u"\"x\""), kStringOp).Real(1).End();
  {
    CheckCapture checks;
    (void)Real(bad);
  }
  Stream good;
  good.Real(3).Real(2).Ops({kRaiseToPowerOp, 1, 1}).End();
  EXPECT_EQ(Real(good), 9.0);
}

// The square is the product itself, signs, zeros and non-finite values included.
TEST(ExpressionEvaluator, SquaresMatchThePowerFunction) {
  for (const double x : {0.1, -3.0, -0.0, 1e200, -kInf, kNaN, 1.0000000000000002}) {
    SCOPED_TRACE(x);
    Stream s;
    s.Real(x).Real(2).Ops({kRaiseToPowerOp, 1, 1}).End();
    EXPECT_TRUE(SameDouble(Real(s), std::pow(x, 2.0)));
  }
}

void ExpectDerivatives(const ADValue<double>& d, std::vector<double> expected) {
  ASSERT_EQ(d.Order() + 1, static_cast<int>(expected.size()));
  for (std::size_t k = 0; k < expected.size(); ++k) {
    SCOPED_TRACE(k);
    EXPECT_NEAR(d.Derivative(static_cast<int>(k)), expected[k],
                1e-12 * (1 + std::fabs(expected[k])));
  }
}

TEST(ExpressionEvaluator, DerivativesToOrderThree) {
  Variable x(u"x", 2.0);
  Variable y(u"y", 5.0);
  const auto R = val::kDoubleParam;
  // x^3 + 2*x*y at x = 2: 8 + 20, 3x^2 + 2y, 6x, 6
  Stream poly;
  poly.Ref(&x)
      .Real(3)
      .Ops({kRaiseToPowerOp, 1, 1})
      .Real(2)
      .Ref(&x)
      .Ops({kMultiplyOp, 1, 1})
      .Ref(&y)
      .Ops({kMultiplyOp, 1, 1})
      .Ops({kPlusOp, 1, 1})
      .End();
  ExpectDerivatives(ExpressionEvaluator(poly.View()).EvaluateRealDerivative(3, x), {28, 22, 12, 6});
  ExpectDerivatives(ExpressionEvaluator(poly.View()).EvaluateRealDerivative(2, y), {28, 4, 0});

  // sin(2*x) and exp(-x) at x = 2.
  Stream sine;
  sine.Call(Table(u"sin", {R}), {State(R)})
      .Arg()
      .Real(2)
      .Ref(&x)
      .Ops({kMultiplyOp, 1, 1})
      .EndArg()
      .EndCall()
      .End();
  const double s4 = std::sin(4.0), c4 = std::cos(4.0);
  ExpectDerivatives(ExpressionEvaluator(sine.View()).EvaluateRealDerivative(3, x),
                    {s4, 2 * c4, -4 * s4, -8 * c4});
  Stream ex;
  ex.Call(Table(u"exp", {R}), {State(R)})
      .Arg()
      .Ref(&x)
      .Ops({kUnaryMinusOp, 1})
      .EndArg()
      .EndCall()
      .End();
  const double e2 = std::exp(-2.0);
  ExpectDerivatives(ExpressionEvaluator(ex.View()).EvaluateRealDerivative(3, x),
                    {e2, -e2, e2, -e2});
  // 1/x and sqrt(x): 1/2, -1/4, 2/8, -6/16; sqrt(2), 1/(2 sqrt 2), ...
  Stream inv;
  inv.Real(1).Ref(&x).Ops({kDivideOp, 1, 1}).End();
  ExpectDerivatives(ExpressionEvaluator(inv.View()).EvaluateRealDerivative(3, x),
                    {0.5, -0.25, 0.25, -0.375});
  // abs and max pick the branch at the point; if differentiates the chosen branch.
  Stream mx;
  mx.Call(Table(u"max", {R, R}), {State(R), State(R)})
      .Arg()
      .Ref(&x)
      .Ref(&x)
      .Ops({kMultiplyOp, 1, 1})
      .EndArg()
      .Arg()
      .Real(1)
      .EndArg()
      .EndCall()
      .End();
  ExpectDerivatives(ExpressionEvaluator(mx.View()).EvaluateRealDerivative(3, x), {4, 4, 2, 0});
}

TEST(ExpressionEvaluator, ComplexDerivatives) {
  Variable x(u"x", 1.0);
  // (x + 1j)^2 at x = 1: 2j, 2 + 2j, 2, 0
  Stream sq(val::kComplexParam);
  sq.Ref(&x).Cplx(0, 1).Ops({kPlusOp, 2, 1}).Real(2).Ops({kRaiseToPowerOp, 1, 2}).End();
  const ADValue<AComplex<double>> d =
      ExpressionEvaluator(sq.View()).EvaluateComplexDerivative(3, x);
  EXPECT_EQ(d.Derivative(0), AComplex<double>(0, 2));
  EXPECT_EQ(d.Derivative(1), AComplex<double>(2, 2));
  EXPECT_EQ(d.Derivative(2), AComplex<double>(2, 0));
  EXPECT_EQ(d.Derivative(3), AComplex<double>(0, 0));
  // The real form of a stream with complex operands: (x + 1j) * (x - 1j) = x^2 + 1 at x = 3.
  x = 3.0;
  Stream prod(val::kComplexParam);
  prod.Ref(&x)
      .Cplx(0, 1)
      .Ops({kPlusOp, 2, 1})
      .Ref(&x)
      .Cplx(0, 1)
      .Ops({kMinusOp, 2, 1})
      .Ops({kMultiplyOp, 2, 2})
      .End();
  ExpectDerivatives(ExpressionEvaluator(prod.View()).EvaluateRealDerivative(3, x), {10, 6, 2, 0});
  // A failed derivative: NaN in every coefficient.
  Stream text;
  text.Val(new StringValue(u"\"a\""), kStringOp).End();
  const ADValue<double> failed = ExpressionEvaluator(text.View()).EvaluateRealDerivative(2, x);
  ASSERT_EQ(failed.Order(), 2);
  for (double c : failed.Coefficients()) EXPECT_TRUE(std::isnan(c));
}

// ---- Datasets -----------------------------------------------------------------------------------

// A dynamic dataset value: only its kind, server and ID matter to the evaluator.
class SweepValue : public ValueBase {
 public:
  SweepValue(const IDatasetServer* server, int id) : mServer(server), mID(id) {}
  ValueBase* CloneValueBase() const override { return new SweepValue(*this); }
  val::ParameterType GetParameterType() const override {
    return val::kDynamicDoubleDoubleDatasetParam;
  }
  int GetDatasetID() const override { return mID; }
  const IDatasetServer* GetDatasetServer() const override { return mServer; }

 private:
  const IDatasetServer* mServer;
  int mID;
};

TEST(ExpressionEvaluator, ScalarFunctionsRunPointByPointOverDatasets) {
  const auto* server = reinterpret_cast<const IDatasetServer*>(0x1000);
  DatasetEvaluationContext context;
  context.AddDataset(server, 7, {1, 2, 3}, {0.1, 0.2, 0.3});

  AString outermost;
  std::vector<double> x;
  Function sumY(u"sumY", {{u"data", val::kDynamicDoubleDoubleDatasetParam}}, Function::ResultRule{},
                nullptr);
  sumY.SetContextCalculation(
      [&](const IFunctionArguments&, IFunctionResult& result, IFunctionContext& ctx) {
        double sum = 0.0;
        for (double y : ctx.GetDoubleVectorArg_y(0)) sum += y;
        outermost = ctx.GetOutermostFunctionAppliedToYValues(0);
        x = ctx.GetDoubleVectorArg_x(0);
        EXPECT_EQ(ctx.GetInterpolationOrder(0), 1);
        result.SetDoubleResult(sum);
        return true;
      });
  const auto D = val::kDynamicDoubleDoubleDatasetParam;
  // sumY(sin(V))
  Stream s;
  s.Call(&sumY, {State(D)})
      .Arg()
      .Call(Table(u"sin", {val::kDoubleParam}), {State(D)})
      .Arg()
      .Val(new SweepValue(server, 7), D)
      .EndArg()
      .EndCall()
      .EndArg()
      .EndCall()
      .End();
  ExpressionEvaluator e(s.View());
  e.SetEvaluationContext(&context);
  EXPECT_NEAR(e.EvaluateRealExpression(), std::sin(0.1) + std::sin(0.2) + std::sin(0.3), 1e-15);
  EXPECT_EQ(outermost, u"sin");
  EXPECT_EQ(x, (std::vector<double>{1, 2, 3}));
  // Without the data the evaluation fails.
  EXPECT_TRUE(std::isnan(ExpressionEvaluator(s.View()).EvaluateRealExpression()));
}

TEST(ExpressionEvaluator, DatasetCacheDebugLines) {
  DebugCapture debug;
  EXPECT_EQ(ExpressionEvaluator::GetCachedDatasetByName(nullptr, nullptr, u"V1"), nullptr);
  StringArrayValue names({u"V1", u"V2"});
  StringArrayDatasetCache cache;
  EXPECT_EQ(ExpressionEvaluator::GetCachedDatasetByName(&cache, &names, u"V1"), nullptr);
  EXPECT_EQ(debug.Lines(),
            (std::vector<std::u16string>{
                u"ExpressionEvaluator::GetCachedDatasetByName: Internal error. Called with null "
                u"pCachedWrtArray arg\n",
                u"ExpressionEvaluator::GetCachedDatasetByName: Could not find cachedDataset map "
                u"for string array [\"V1\", \"V2\"]\n"}));
  // Once synchronised the map exists (empty here: no server knows the names) and is quiet.
  std::vector<ValueBase*> values{&names};
  ExpressionStreamView view{nullptr, &values, nullptr, val::kDoubleParam};
  ExpressionEvaluator::SynchronizeStringArrayDatasetCache(view, cache);
  debug.Clear();
  EXPECT_EQ(ExpressionEvaluator::GetCachedDatasetByName(&cache, &names, u"V1"), nullptr);
  EXPECT_TRUE(debug.Lines().empty());
  ASSERT_NE(cache.Find(&names), nullptr);
  StringArrayDatasetCache::CachedDataset found;
  EXPECT_FALSE(ExpressionEvaluator::TryResolveDatasetUsingCachedResolvers(cache, u"V1", found));
}

// ---- Parsed text --------------------------------------------------------------------------------

TEST(ExpressionEvaluator, ParsedExpressions) {
  Variable w(u"w", 2.0);
  VariableNameSpace names(&w, VariableNameSpace::kSearchIntrinsics,
                          VariableNameSpace::kAppendToPrevious);
  Variable v(u"v", u"3*w", Units::NoUnits);
  names.AddVariable(&v);
  const struct {
    const char16_t* text;
    double expected;
  } cases[] = {
      {u"2*w + 1e-3*sin(w)", 4.0 + 1e-3 * std::sin(2.0)},
      {u"-0", -0.0},
      {u"!0", 1.0},
      {u"1/0", kInf},
      {u"0/0", kNaN},
      {u"(1+2j) == (1+2j)", 1.0},
      {u"1 == 1+1e-15", 0.0},
      {u"if(w > 1, max(w, 7), min(w, -7))", 7.0},
      {u"abs(-w) + sqrt(16) + cos(0)", 7.0},
      {u"1 + 2j", 1.0},
      {u"v + 1", 7.0},
      {u"-2^2 + 2^3^2", 60.0},
      {u"(1+2j)*(3-1j) - 2", 3.0},
      {u"-(1+2j) + 4", 3.0},
      {u"!(w == 2) || w >= 3", 0.0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(AString(c.text).TStr());
    std::unique_ptr<ValueBase> value(Value::CreateValueBase(c.text, Units::NoUnits));
    ASSERT_NE(value, nullptr);
    EXPECT_TRUE(SameDouble(value->GetValue(), c.expected)) << value->GetValue();
  }
  // The derivative through a variable holding an expression: d(v*w)/dw = d(3w^2)/dw = 6w.
  std::unique_ptr<ValueBase> product(Value::CreateValueBase(u"v*w", Units::NoUnits));
  ASSERT_NE(product, nullptr);
  ExpectDerivatives(product->GetDValue(2, w), {12, 12, 6});
  w = 3.0;
  EXPECT_EQ(product->GetValue(), 27.0);
}

}  // namespace
}  // namespace wycore::test
