// SPDX-License-Identifier: Apache-2.0
//
// ExpressionASTWalkerTest.cpp - the tree rebuilt from hand-made postfix streams: callback order,
// parent operations and depths, and the checks on malformed streams.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "support/Capture.h"
#include "wycore/value/Expression.h"
#include "wycore/value/ExpressionASTWalker.h"
#include "wycore/value/FloatValue.h"

namespace {

// Records every callback as a short token: "v<value index>" for data, "<op>^<parent op>" for
// operators, "f<function index>(" ... ")" for calls with "a<k>" / "/a<k>" around argument k,
// "[" and "]" around an index and "@^<parent>" for the dereference.
class Recorder : public IExpressionASTWalkerStrategy {
 public:
  std::string mLog;
  std::vector<int> mDepths;  // of the data nodes, in order

  // `prefix` followed by the number (built by appending: GCC 12 warns falsely about
  // "literal" + std::string temporaries).
  static std::string Token(const char* prefix, int number) {
    std::string token(prefix);
    token += std::to_string(number);
    return token;
  }
  void Add(const std::string& token) {
    if (!mLog.empty()) mLog += ' ';
    mLog += token;
  }
  void Data(const val::ASTPosition& p, const ValueBase* value) {
    ASSERT_NE(value, nullptr);
    Add(Token("v", p.mValueIndex));
    mDepths.push_back(p.mDepth);
  }
  void Op(Operation op, Operation parent) { Add(Token("", op) + Token("^", parent)); }

  void OnDoubleOp(const val::ASTPosition& p, const ValueBase* v) override { Data(p, v); }
  void OnComplexOp(const val::ASTPosition& p, const ValueBase* v) override { Data(p, v); }
  void OnDoubleArrayOp(const val::ASTPosition& p, const ValueBase* v) override { Data(p, v); }
  void OnTextStringArrayOp(const val::ASTPosition& p, const ValueBase* v) override { Data(p, v); }
  void OnUnaryMinusOp(const val::ASTPosition&, Operation op, Operation parent) override {
    Op(op, parent);
  }
  void OnNotOp(const val::ASTPosition&, Operation op, Operation parent) override { Op(op, parent); }
  void OnEqualOp(const val::ASTPosition&, Operation op, Operation parent) override {
    Op(op, parent);
  }
  void OnLessOp(const val::ASTPosition&, Operation op, Operation parent) override {
    Op(op, parent);
  }
  void OnAndOp(const val::ASTPosition&, Operation op, Operation parent) override { Op(op, parent); }
  void OnPlusOp(const val::ASTPosition&, Operation op, Operation parent) override {
    Op(op, parent);
  }
  void OnMinusOp(const val::ASTPosition&, Operation op, Operation parent) override {
    Op(op, parent);
  }
  void OnMultiplyOp(const val::ASTPosition&, Operation op, Operation parent) override {
    Op(op, parent);
  }
  void OnRaiseToPowerOp(const val::ASTPosition&, Operation op, Operation parent) override {
    Op(op, parent);
  }
  void OnArrayIndexOpStart(const val::ASTPosition&) override { Add("["); }
  void OnArrayIndexOpEnd(const val::ASTPosition&) override { Add("]"); }
  void OnArrayDereferenceOp(const val::ASTPosition&, Operation parent) override {
    Add(Token("@^", parent));
  }
  void OnStartFunctionOp(const val::ASTPosition& p, const Function*) override {
    Add(Token("f", p.mFunctionIndex) + Token("/", p.mArgumentCount) + "(");
  }
  void OnStartFunctionArg(const val::ASTPosition& p) override { Add(Token("a", p.mArgumentIndex)); }
  void OnEndFunctionArg(const val::ASTPosition& p) override { Add(Token("/a", p.mArgumentIndex)); }
  void OnEndFunctionOp(const val::ASTPosition&, const Function*) override { Add(")"); }
};

// A stream with `valueCount` real constants and the given calls.
struct Stream {
  std::vector<Operation> mOps;
  std::vector<std::unique_ptr<FloatValue>> mOwned;
  std::vector<ValueBase*> mValues;
  std::vector<FunctionCall> mCalls;

  Stream(std::vector<int> ops, int valueCount, std::vector<FunctionCall> calls = {})
      : mCalls(std::move(calls)) {
    for (int op : ops) mOps.push_back(static_cast<Operation>(op));
    for (int i = 0; i < valueCount; ++i) {
      mOwned.push_back(std::make_unique<FloatValue>(i + 1.0));
      mValues.push_back(mOwned.back().get());
    }
  }
};

FunctionCall Call(int opIndex, std::vector<std::pair<int, int>> arguments) {
  FunctionCall call;
  call.mOperationIndex = opIndex;
  call.mArguments = std::move(arguments);
  return call;
}

TEST(ExpressionASTWalker, VisitsOperandsBeforeOperatorsWithTheirParents) {
  struct Case {
    const char* what;
    std::vector<int> ops;
    int values;
    const char* expected;
  };
  const Case cases[] = {
      {"1 + 2", {36, 1, 1, 31, 1, 1, 37}, 2, "v0 v1 31^36"},
      {"(1 + 2)*3", {36, 1, 1, 31, 1, 1, 1, 33, 1, 1, 37}, 3, "v0 v1 31^33 v2 33^36"},
      {"1 - 2*3", {36, 1, 1, 1, 33, 1, 1, 32, 1, 1, 37}, 3, "v0 v1 v2 33^32 32^36"},
      {"-1^2", {36, 1, 1, 35, 1, 1, 21, 1, 37}, 2, "v0 v1 35^21 21^36"},
      {"!1 && 2 < 3", {36, 1, 22, 1, 1, 1, 25, 29, 37}, 3, "v0 22^29 v1 v2 25^29 29^36"},
      {"1 == 2", {36, 1, 1, 23, 1, 37}, 2, "v0 v1 23^36"},
      {"lone value", {36, 1, 37}, 1, "v0"},
      {"markers are skipped", {36, 20, 1, 38, 37}, 1, "v0"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Stream s(c.ops, c.values);
    Recorder recorder;
    ExpressionASTWalker walker(s.mOps, s.mValues, s.mCalls);
    EXPECT_TRUE(walker.Walk(recorder));
    EXPECT_EQ(recorder.mLog, c.expected);
  }
}

TEST(ExpressionASTWalker, FunctionArgumentsAreSubExpressions) {
  // f(1, 2 + g(3)): the outer call comes first in the function list.
  Stream s({36, 18, 36, 1, 37, 36, 1, 18, 36, 1, 37, 31, 1, 1, 37, 37}, 3,
           {Call(1, {{2, 4}, {5, 14}}), Call(7, {{8, 10}})});
  Recorder recorder;
  ExpressionASTWalker walker(s.mOps, s.mValues, s.mCalls);
  ASSERT_TRUE(walker.Walk(recorder));
  EXPECT_EQ(recorder.mLog, "f0/2( a0 v0 /a0 a1 v1 f1/1( a0 v2 /a0 ) 31^36 /a1 )");
  // Depths: 1 in f's arguments, 2 for the operand of "+", 3 inside g.
  EXPECT_EQ(recorder.mDepths, (std::vector<int>{1, 2, 3}));
}

TEST(ExpressionASTWalker, NestedArrayIndexesUseTheArrayPushedLast) {
  // a[b[1]] + 2
  Stream s({36, 17, 42, 17, 42, 1, 43, 39, 17, 1, 43, 39, 17, 1, 1, 31, 1, 1, 37}, 4);
  Recorder recorder;
  ExpressionASTWalker walker(s.mOps, s.mValues, s.mCalls);
  ASSERT_TRUE(walker.Walk(recorder));
  EXPECT_EQ(recorder.mLog, "v0 [ v1 [ v2 ] @^39 ] @^31 v3 31^36");
}

TEST(ExpressionASTWalker, WalksAParsedExpression) {
  Expression empty(u"");
  Recorder recorder;
  wycore::test::CheckCapture checks;
  ExpressionASTWalker walker(empty);
  // An expression the parser never filled has no stream at all.
  EXPECT_FALSE(walker.Walk(recorder));
  EXPECT_TRUE(checks.Fired("A well formed expression must start with kStartOfExpressionOp!!"));
}

TEST(ExpressionASTWalker, MalformedStreamsFireTheirCheckAndCallNothing) {
  struct Case {
    std::vector<int> ops;
    int values;
    std::vector<FunctionCall> calls;
    const char* check;
  };
  const Case cases[] = {
      {{}, 0, {}, "A well formed expression must start with kStartOfExpressionOp!!"},
      {{1, 37}, 1, {}, "A well formed expression must start with kStartOfExpressionOp!!"},
      {{36, 1, 1, 31, 1, 37}, 2, {}, "IsOperationFollowedByTwoModifiers(kPlusOp)"},
      {{36, 1, 1, 32, 37}, 2, {}, "IsOperationFollowedByTwoModifiers(kMinusOp)"},
      {{36, 1, 1, 33, 1}, 2, {}, "IsOperationFollowedByTwoModifiers(kMultiplyOp)"},
      {{36, 1, 1, 34, 1, 99, 37}, 2, {}, "IsOperationFollowedByTwoModifiers(kDivideOp)"},
      {{36, 1, 1, 35, 37, 1, 37}, 2, {}, "IsOperationFollowedByTwoModifiers(kRaiseToPowerOp)"},
      {{36, 17, 42, 1, 43, 39, 17, 37},
       2,
       {},
       "IsOperationFollowedByTwoModifiers(kArrayDereferenceOp)"},
      {{36, 1, 21, 37}, 1, {}, "IsOperationFollowedByOneModifier(kUnaryMinusOp)"},
      {{36, 1, 1, 23, 37}, 2, {}, "IsOperationFollowedByOneModifier(kEqualOp)"},
      {{36, 1, 36, 1, 37, 31, 1, 1, 37}, 2, {}, "SubExpressions are prohibited!!"},
      {{36, 1, 99, 37}, 1, {}, "Unknown operation!!"},
      {{36, 1, 0, 37}, 1, {}, "Unknown operation!!"},
      {{36, 1, 19, 37}, 1, {}, "Unknown operation!!"},
      {{36, 1, 1, 44, 37}, 2, {}, "Unknown operation!!"},
      {{36, 1, -5, 37}, 1, {}, "Unknown operation!!"},
      {{36, 31, 1, 1, 37}, 0, {}, "Operator without its operands!!"},
      {{36, 1, 22, 1, 37, 21}, 1, {}, "Operations after the end of the expression!!"},
      {{36, 1, 1, 37}, 2, {}, "A sub-expression must leave exactly one operand!!"},
      {{36, 37}, 0, {}, "A sub-expression must leave exactly one operand!!"},
      {{36, 1, 1, 31, 1, 1}, 2, {}, "The operation stream ends inside an expression!!"},
      {{36, 1, 1, 31, 1, 1, 37}, 1, {}, "Value list does not match the operation stream!!"},
      {{36, 1, 37}, 2, {}, "Value list does not match the operation stream!!"},
      {{36, 18, 36, 1, 37, 37}, 1, {}, "Function list does not match the operation stream!!"},
      {{36, 18, 36, 1, 37, 37},
       1,
       {Call(1, {{2, 3}})},
       "Function list does not match the operation stream!!"},
      {{36, 1, 37}, 1, {Call(1, {})}, "Function list does not match the operation stream!!"},
      {{36, 1, 42, 1, 43, 39, 17, 1, 37}, 2, {}, "Array index without its array!!"},
      {{36, 17, 42, 1, 37}, 2, {}, "Array index is not closed!!"},
      {{36, 17, 1, 39, 17, 1, 37}, 2, {}, "Array dereference without its index!!"},
      {{36, 1, 43, 39, 17, 1, 37}, 1, {}, "Array index is not well formed!!"},
  };
  for (const Case& c : cases) {
    std::string trace;
    for (int op : c.ops) trace += std::to_string(op) + " ";
    SCOPED_TRACE(trace);
    Stream s(c.ops, c.values, c.calls);
    Recorder recorder;
    wycore::test::CheckCapture checks;
    ExpressionASTWalker walker(s.mOps, s.mValues, s.mCalls);
    EXPECT_FALSE(walker.Walk(recorder));
    EXPECT_TRUE(checks.Fired(c.check)) << (checks.None() ? "no check" : checks.Reports()[0].text);
    EXPECT_EQ(checks.Reports().size(), 1u);
    EXPECT_EQ(recorder.mLog, "");
  }
}

TEST(ExpressionASTWalker, DeepStreamsNeedNoRecursion) {
  // -(-(-(... 1))) two hundred thousand levels deep: built and walked with explicit stacks.
  constexpr int kDepth = 200000;
  std::vector<int> ops = {36, 1};
  for (int i = 0; i < kDepth; ++i) {
    ops.push_back(21);
    ops.push_back(1);
  }
  ops.push_back(37);
  Stream s(ops, 1);
  Recorder recorder;
  ExpressionASTWalker walker(s.mOps, s.mValues, s.mCalls);
  ASSERT_TRUE(walker.Walk(recorder));
  ASSERT_EQ(recorder.mDepths.size(), 1u);
  EXPECT_EQ(recorder.mDepths[0], kDepth);
}

}  // namespace
