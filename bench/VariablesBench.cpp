// SPDX-License-Identifier: Apache-2.0
//
// VariablesBench.cpp - name resolution, the cycle check and the function table.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

#include "wycore/units/Units.h"
#include "wycore/value/FloatValue.h"
#include "wycore/value/Value.h"
#include "wycore/variables/Function.h"
#include "wycore/variables/Variable.h"
#include "wycore/variables/VariableNameSpace.h"

namespace {

AString NameOf(int i) { return AString(("var" + std::to_string(i)).c_str()); }

// A value that reads other variables, standing in for an expression.
class Reads : public ValueBase {
 public:
  explicit Reads(std::vector<const Variable*> reads) : mReads(std::move(reads)) {}
  ValueBase* CloneValueBase() const override { return new Reads(*this); }
  void GetReferencedVariables(std::vector<const Variable*>& out) const override {
    out.insert(out.end(), mReads.begin(), mReads.end());
  }

 private:
  std::vector<const Variable*> mReads;
};

}  // namespace

// Resolves the last variable of a name space holding N variables, nested inside a second name
// space, so the walk covers the own list, the intrinsic and constant maps and the previous space.
static void BM_ResolveVariable(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  std::vector<std::unique_ptr<Variable>> variables;
  VariableNameSpace outer(VariableNameSpace::kSearchIntrinsics,
                          VariableNameSpace::kAppendToPrevious);
  VariableNameSpace inner(VariableNameSpace::kSearchIntrinsics,
                          VariableNameSpace::kAppendToPrevious);
  for (int i = 0; i < n; ++i) {
    variables.push_back(std::make_unique<Variable>(NameOf(i), static_cast<double>(i)));
    outer.AddVariable(variables.back().get());
  }
  const AString wanted = NameOf(n - 1).ToUpper();
  if (inner.ResolveVariable(wanted) != variables.back().get()) {
    state.SkipWithError("resolved the wrong variable");
    return;
  }
  for (auto _ : state) benchmark::DoNotOptimize(inner.ResolveVariable(wanted));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ResolveVariable)->Arg(8)->Arg(64)->Arg(512);

// Sets the head of a chain of N variables (each reading the next) to a value that reads the
// chain's tail: the cycle check walks the whole chain every time.
static void BM_SetValueBaseCycleCheck(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  std::vector<std::unique_ptr<Variable>> chain;
  chain.push_back(std::make_unique<Variable>(NameOf(0), 1.0));
  for (int i = 1; i < n; ++i) {
    chain.push_back(std::make_unique<Variable>(NameOf(i), new Reads({chain.back().get()})));
  }
  Variable head(u"head", 0.0);
  const Reads readsTail({chain.back().get()});
  if (!head.SetValueBase(readsTail)) {
    state.SkipWithError("the chain was refused");
    return;
  }
  for (auto _ : state) benchmark::DoNotOptimize(head.SetValueBase(readsTail));
  state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(BM_SetValueBaseCycleCheck)->Arg(16)->Arg(256)->Arg(4096);

// Picks one of two overloads among 64 registered names.
static void BM_GetFunction(benchmark::State& state) {
  static const bool registered = [] {
    for (int i = 0; i < 64; ++i) {
      for (val::ParameterType kind : {val::kDoubleParam, val::kComplexParam}) {
        Value::RegisterFunction(new Function(AString(u"bench_") + NameOf(i), {{u"x", kind}},
                                             Function::ResultRule{}, nullptr));
      }
    }
    return true;
  }();
  (void)registered;
  const std::vector<ValueState> states{
      ValueState(Units::NoUnits, Units::NoUnit, val::kDBAmplitude, val::kComplexParam)};
  const AString name = AString(u"BENCH_") + NameOf(40);
  int error = 0;
  const Function* f = Value::GetFunction(name, 1, states, error);
  if (f == nullptr || f->GetParameters()[0].mKind != val::kComplexParam) {
    state.SkipWithError("chose the wrong overload");
    return;
  }
  for (auto _ : state) benchmark::DoNotOptimize(Value::GetFunction(name, 1, states, error));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_GetFunction);

int main(int argc, char** argv) {
  Units::InitializeUnits(nullptr);
  Value::InitializeValues();
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  Value::UnInitializeValues();
  Units::UnInitializeUnits();
  return 0;
}
