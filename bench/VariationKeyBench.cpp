// SPDX-License-Identifier: Apache-2.0
//
// VariationKeyBench.cpp - variation keys of a sweep's size: writing the key of an assignment of
// 20 variables, reading it back (the parser alone, and the key variable server that makes a
// variable of each pair), and comparing two keys that differ only in case. Results are stored
// and looked up by key for every solved variation, so these run once per variation and more.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "wycore/units/Units.h"
#include "wycore/value/Value.h"
#include "wycore/variables/Variable.h"
#include "wycore/variables/VariableValues.h"
#include "wycore/variables/VariationKey.h"

namespace {

// 20 variables as a design has them: lengths in mm, a few plain numbers, an angle.
struct Design {
  std::vector<std::unique_ptr<Variable>> owned;
  std::vector<Variable*> variables;

  Design() {
    const Units::FullUnitType mm = Units::GetFullUnitType(AString(u"mm"), Units::Length);
    const Units::FullUnitType deg = Units::GetFullUnitType(AString(u"deg"), Units::Angle);
    for (int i = 0; i < 20; ++i) {
      const AString name = AString(u"var_") + AString(std::u16string(1, u'a' + i));
      const Units::FullUnitType units = i % 5 == 4 ? deg : (i % 3 == 2 ? Units::NoUnits : mm);
      owned.push_back(std::make_unique<Variable>(name, 0.001 * (i + 1) / 3.0, units));
      variables.push_back(owned.back().get());
    }
  }
};

class Counter : public VariationKeyParserBase {
 public:
  int mCount = 0;

 protected:
  void HandleNameValue(const AString&, const AString&) override { ++mCount; }
};

void BM_WriteKey20(benchmark::State& state) {
  const Design design;
  const VariableValues values(design.variables);
  std::size_t bytes = 0;
  for (auto _ : state) {
    const AString key = values.GetVariationKey();
    bytes += key.size();
    benchmark::DoNotOptimize(key.data());
  }
  const AString key = values.GetVariationKey();
  const VariationKeyVariableServer server(key);
  std::vector<Variable*> back;
  server.GetVariables(back);
  if (!server.IsValid() || back.size() != 20 || VariableValues::BuildVariationKey(back) != key) {
    std::abort();
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(bytes * sizeof(AChar)));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_WriteKey20);

void BM_ParseKey20(benchmark::State& state) {
  const Design design;
  const AString key = VariableValues(design.variables).GetVariationKey();
  Counter counter;
  for (auto _ : state) benchmark::DoNotOptimize(counter.ParseKey(key));
  if (counter.ParseKey(key) != 20) std::abort();
  state.SetBytesProcessed(
      static_cast<std::int64_t>(state.iterations() * key.size() * sizeof(AChar)));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ParseKey20);

void BM_KeyVariableServer20(benchmark::State& state) {
  const Design design;
  const AString key = VariableValues(design.variables).GetVariationKey();
  for (auto _ : state) {
    const VariationKeyVariableServer server(key);
    benchmark::DoNotOptimize(server.ResolveVariable(AString(u"var_t")));
  }
  const VariationKeyVariableServer server(key);
  if (server.ResolveVariable(AString(u"VAR_T")) == nullptr) std::abort();
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_KeyVariableServer20);

void BM_AreVariationKeysEqual20(benchmark::State& state) {
  const Design design;
  const AString key = VariableValues(design.variables).GetVariationKey();
  AString upper = key;
  for (AChar& c : upper) {
    if (c >= u'a' && c <= u'z') c = static_cast<AChar>(c - u'a' + u'A');
  }
  for (auto _ : state) benchmark::DoNotOptimize(VariableValues::AreVariationKeysEqual(key, upper));
  if (!VariableValues::AreVariationKeysEqual(key, upper)) std::abort();
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_AreVariationKeysEqual20);

}  // namespace

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
