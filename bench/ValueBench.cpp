// SPDX-License-Identifier: Apache-2.0
//
// ValueBench.cpp - the value model's hot paths: copying values (every property and variable
// copy clones its implementation), the number equality, writing a value's text, reading list
// texts back, a block round trip of a value, and derivative propagation in ADValue.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdlib>
#include <memory>
#include <vector>

#include "wycore/io/Block.h"
#include "wycore/value/ADValue.h"
#include "wycore/value/DoubleArrayValue.h"
#include "wycore/value/FloatValue.h"
#include "wycore/value/Value.h"

namespace {

Units::FullUnitType Millimetres() { return Units::GetFullUnitType(AString(u"mm"), Units::NoUnit); }

void BM_ValueCopy(benchmark::State& state) {
  const Value source(0.0025, Millimetres());
  for (auto _ : state) {
    Value copy(source);
    benchmark::DoNotOptimize(copy);
  }
  if (!Value(source).IsEqual(source)) std::abort();
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ValueCopy);

void BM_NumberEquality(benchmark::State& state) {
  std::vector<double> a(1024), b(1024);
  for (std::size_t i = 0; i < a.size(); ++i) {
    a[i] = 1.0 + static_cast<double>(i) * 1e-3;
    b[i] = a[i] * (1.0 + ((i % 3) == 0 ? 1e-15 : 1e-12));
  }
  std::size_t equal = 0;
  for (auto _ : state) {
    equal = 0;
    for (std::size_t i = 0; i < a.size(); ++i) equal += val::AreNumbersEqual(a[i], b[i]) ? 1 : 0;
    benchmark::DoNotOptimize(equal);
  }
  if (equal != 342) std::abort();  // the entries with i % 3 == 0
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(a.size()));
}
BENCHMARK(BM_NumberEquality);

void BM_FloatValueText(benchmark::State& state) {
  const FloatValue value(0.0025, Millimetres());
  for (auto _ : state) {
    AString text = value.GetValueText();
    benchmark::DoNotOptimize(text);
  }
  if (value.GetValueText() != AString(u"2.5mm")) std::abort();
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_FloatValueText);

// Reading an array text of n entries with units.
void BM_ReadArrayText(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  std::vector<double> values(static_cast<std::size_t>(n));
  for (int i = 0; i < n; ++i) values[static_cast<std::size_t>(i)] = 1e-3 * (i + 1);
  const AString text = DoubleArrayValue(values, Millimetres()).GetValueText();
  for (auto _ : state) {
    std::unique_ptr<ValueBase> read(Value::ReadValueText(text, Units::NoUnits));
    benchmark::DoNotOptimize(read.get());
  }
  std::unique_ptr<ValueBase> check(Value::ReadValueText(text, Units::NoUnits));
  if (!check || !check->IsEqual(DoubleArrayValue(values, Millimetres()))) std::abort();
  state.SetItemsProcessed(state.iterations() * n);
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size() * 2));
}
BENCHMARK(BM_ReadArrayText)->Arg(16)->Arg(1024);

void BM_BlockRoundTrip(benchmark::State& state) {
  const Value value(0.0025, Millimetres());
  for (auto _ : state) {
    io::CBlock block(AString(u"B"));
    value.WriteToBlock(block, AString(u"V"));
    Value back;
    benchmark::DoNotOptimize(back.ReadFromBlock(block, AString(u"V")));
  }
  io::CBlock block(AString(u"B"));
  value.WriteToBlock(block, AString(u"V"));
  Value back;
  if (back.ReadFromBlock(block, AString(u"V")) != Value::kReadOk || !back.IsEqual(value))
    std::abort();
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_BlockRoundTrip);

// exp(sin(x)) with derivatives up to the given order.
void BM_ADValueOrder(benchmark::State& state) {
  const int order = static_cast<int>(state.range(0));
  for (auto _ : state) {
    const ADValue<double> y = exp(sin(ADValue<double>::Variable(0.5, order)));
    benchmark::DoNotOptimize(y.Coefficients().data());
  }
  const ADValue<double> y = exp(sin(ADValue<double>::Variable(0.5, order)));
  const double d1 = std::cos(0.5) * std::exp(std::sin(0.5));
  if (std::fabs(y.Derivative(1) - d1) > 1e-12) std::abort();
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ADValueOrder)->Arg(1)->Arg(4)->Arg(16);

}  // namespace

int main(int argc, char** argv) {
  Units::InitializeUnits(nullptr);
  Value::InitializeValues();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  Value::UnInitializeValues();
  Units::UnInitializeUnits();
  return 0;
}
