// SPDX-License-Identifier: Apache-2.0
//
// DoubleStackTest.cpp - the evaluation stack: number layout, underflow checks, growth, the
// string and unified stacks, contexts, and functions called on the stack in each form.
#include <gtest/gtest.h>

#include <cmath>

#include "support/Capture.h"
#include "wycore/value/DatasetValue.h"
#include "wycore/value/DoubleStack.h"
#include "wycore/value/FloatValue.h"
#include "wycore/value/Value.h"
#include "wycore/variables/Function.h"

namespace wycore::test {
namespace {

TEST(DoubleStack, ComplexTakesTwoEntriesImaginaryOnTop) {
  double_stack s;
  s.Push(7.0);
  s.Push(AComplex<double>(1.0, 2.0));
  ASSERT_EQ(s.size(), 3u);
  EXPECT_EQ(s.At(1), 1.0);
  EXPECT_EQ(s.At(2), 2.0);
  EXPECT_EQ(s.SecondToLast(), 1.0);
  EXPECT_EQ(s.LastComplex(), AComplex<double>(1.0, 2.0));
  AComplex<double> z;
  EXPECT_TRUE(s.Top(z, false));
  EXPECT_EQ(s.size(), 3u);
  EXPECT_TRUE(s.Top(z, true));
  EXPECT_EQ(z, AComplex<double>(1.0, 2.0));
  double d = 0.0;
  EXPECT_TRUE(s.Top(d, true));
  EXPECT_EQ(d, 7.0);
  EXPECT_FALSE(s.Top(d, true));
  EXPECT_TRUE(std::isnan(d));
  EXPECT_FALSE(s.Top(z, false));
}

TEST(DoubleStack, GrowsPastItsInlineEntriesKeepingValues) {
  double_stack s;
  for (int i = 0; i < 1000; ++i) s.Push(static_cast<double>(i));
  for (int i = 999; i >= 0; --i) ASSERT_EQ(s.Pop(), static_cast<double>(i));
  EXPECT_TRUE(s.empty());
}

TEST(DoubleStack, UnderflowFiresChecksAndGivesNeutralValues) {
  double_stack s;
  CheckCapture checks;
  EXPECT_TRUE(std::isnan(s.Pop()));
  const AComplex<double> z = s.PopComplex();
  EXPECT_TRUE(std::isnan(z.real()) && std::isnan(z.imag()));
  EXPECT_TRUE(std::isnan(s.Back()));
  EXPECT_TRUE(checks.Fired("Number stack underflow!!"));
  EXPECT_EQ(s.PopString(), u"");
  EXPECT_EQ(s.TopString(), u"");
  EXPECT_TRUE(checks.Fired("String stack underflow!!"));
  s.Pop2();
  EXPECT_EQ(s.Top2().GetParamType(), val::kNotParam);
  EXPECT_EQ(s.TopAndPop2().GetParamType(), val::kNotParam);
  EXPECT_TRUE(checks.Fired("Unified stack underflow!!"));
  s.PopEvaluationContext();
  EXPECT_TRUE(checks.Fired("!mContexts.empty()"));
  EXPECT_EQ(checks.Reports().size(), 9u);
}

TEST(DoubleStack, UnifiedEntriesCopyMoveAndCheckTheirKind) {
  TNT::Matrix<double> m(2, 3, 1.5);
  double_stack::StackType copied(m);
  m[0][0] = 9.0;  // the entry holds its own copy
  EXPECT_EQ(copied.GetDoubleMatrix()[0][0], 1.5);
  EXPECT_EQ(copied.GetParamType(), val::kDoubleMatrixParam);

  auto owned = std::make_unique<TNT::Matrix<AComplex<double>>>(1, 1, AComplex<double>(0, 1));
  const TNT::Matrix<AComplex<double>>* address = owned.get();
  double_stack s;
  s.Push2(double_stack::StackType(std::move(owned)));
  EXPECT_EQ(&s.Top2().GetComplexMatrix(), address);  // moved in, not copied
  s.Push2(copied);
  EXPECT_EQ(s.UnifiedStackSize(), 2u);
  double_stack::StackType top = s.TopAndPop2();
  top.GetDoubleMatrixForEdit()[1][2] = -1.0;
  EXPECT_EQ(top.GetDoubleMatrix()[1][2], -1.0);
  EXPECT_EQ(copied.GetDoubleMatrix()[1][2], 1.5);

  CheckCapture checks;
  EXPECT_EQ(s.Top2().GetDoubleMatrix().num_rows(), 0);
  EXPECT_TRUE(checks.Fired("StackType holds another kind!!"));
  s.Pop2();
  EXPECT_TRUE(s.IsUnifiedStackEmpty());

  EXPECT_EQ(double_stack::StackType::Scalar(2.0).GetParamType(), val::kDoubleParam);
  EXPECT_EQ(double_stack::StackType::Scalar(AComplex<double>(1, 1)).GetComplexMatrix()[0][0],
            AComplex<double>(1, 1));
  EXPECT_EQ(double_stack::StackType::Text(u"\"t\"").GetText(), u"\"t\"");
}

TEST(DoubleStack, EvaluationContextsNest) {
  double_stack s;
  EXPECT_EQ(s.GetEvaluationContext(), nullptr);
  ExpressionEvaluationContext plain;
  DatasetEvaluationContext datasets;
  s.PushEvaluationContext(&datasets);
  s.PushEvaluationContext(&plain);
  EXPECT_EQ(s.GetEvaluationContext(), &plain);
  EXPECT_EQ(s.GetEvaluationContext()->AsDatasetContext(), nullptr);
  s.PopEvaluationContext();
  EXPECT_EQ(s.GetEvaluationContext()->AsDatasetContext(), &datasets);
}

TEST(DoubleStack, DatasetContextMatchesByServerAndID) {
  DatasetEvaluationContext c;
  const auto* a = reinterpret_cast<const IDatasetServer*>(0x10);
  const auto* b = reinterpret_cast<const IDatasetServer*>(0x20);
  EXPECT_EQ(c.AddDataset(a, 1, {1, 2, 3}, {4, 5}), 0);  // cut to the shorter list
  EXPECT_EQ(c.AddComplexDataset(b, 1, {1}, {{0, 1}}), 1);
  EXPECT_EQ(c.FindDataset(a, 1), 0);
  EXPECT_EQ(c.FindDataset(b, 1), 1);
  EXPECT_EQ(c.FindDataset(a, 2), -1);
  EXPECT_EQ(c.GetDataset(0)->Size(), 2u);
  EXPECT_EQ(c.GetDataset(1)->mType, val::kDynamicDoubleComplexDatasetParam);
  EXPECT_EQ(c.GetDataset(2), nullptr);
}

TEST(DoubleStack, FunctionCalculateRunsEveryForm) {
  const FloatValue x(0.25);
  ValueFunctionArguments args({&x});
  // A built-in plain routine on a scratch stack.
  int error = 0;
  const Function* sin = Value::GetFunction(
      u"sin", 1, {ValueState(Units::NoUnits, Units::NoUnit, val::kDBAmplitude, val::kDoubleParam)},
      error);
  ASSERT_NE(sin, nullptr);
  SimpleFunctionResult r;
  EXPECT_TRUE(sin->Calculate(args, r));
  EXPECT_EQ(r.GetKind(), val::kDoubleParam);
  EXPECT_EQ(r.GetDouble(), std::sin(0.25));
  // A newer-form routine that calls an auxiliary function through its context.
  Function outer(u"outer", {{u"x", val::kDoubleParam}}, Function::ResultRule{}, nullptr);
  outer.SetContextCalculation(
      [](const IFunctionArguments& a, IFunctionResult&, IFunctionContext& ctx) {
        const Function* cos = ctx.GetAuxiliaryFunction(u"cos", 1);
        if (cos == nullptr) return false;
        ctx.SetAuxiliaryFuncDoubleArg(0, a.GetDoubleArg(0));
        SimpleFunctionResult inner;
        if (!ctx.FetchAuxiliaryFunctionResult(*cos, inner)) return false;
        ctx.StoreAuxiliaryFunctionResult(inner);
        return true;
      });
  SimpleFunctionResult o;
  EXPECT_TRUE(outer.Calculate(args, o));
  EXPECT_EQ(o.GetDouble(), std::cos(0.25));
  // A routine that refuses.
  Function refusing(u"refusing", {{u"x", val::kDoubleParam}}, Function::ResultRule{}, nullptr);
  refusing.SetContextCalculation(
      [](const IFunctionArguments&, IFunctionResult&, IFunctionContext&) { return false; });
  SimpleFunctionResult n;
  EXPECT_FALSE(refusing.Calculate(args, n));
}

TEST(DoubleStack, StaticDatasetArgumentsReadTheirPoints) {
  const DatasetValue points(geom::Dataset({0, 1, 2}, {5, 6, 7}));
  Function count(u"count", {{u"data", val::kDatasetParam}}, Function::ResultRule{}, nullptr);
  count.SetContextCalculation(
      [&points](const IFunctionArguments&, IFunctionResult&, IFunctionContext& ctx) {
        EXPECT_EQ(ctx.GetDatasetValueBaseArg(0), &points);
        EXPECT_EQ(ctx.GetDoubleVectorArg_x(0), (std::vector<double>{0, 1, 2}));
        EXPECT_EQ(ctx.GetStaticDataset(0).Size(), 3u);
        EXPECT_EQ(ctx.GetInterpolationOrder(0), 1);
        EXPECT_EQ(ctx.GetInterpolationOrder(1), -1);
        double sum = 0;
        for (double y : ctx.GetDoubleVectorArg_y(0)) sum += y;
        ctx.GetDoubleResult() = sum;
        return true;
      });
  ValueFunctionArguments args({&points});
  SimpleFunctionResult r;
  EXPECT_TRUE(count.Calculate(args, r));
  EXPECT_EQ(r.GetDouble(), 18.0);
}

}  // namespace
}  // namespace wycore::test
