// SPDX-License-Identifier: Apache-2.0
//
// UnitsBench.cpp - the unit system's hot paths: reading numbers with units from text (every
// numeric field of a file goes through it) and looking units up by name without regard to case.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <vector>

#include "wycore/io/AString.h"
#include "wycore/units/UnitDefinition.h"
#include "wycore/units/Units.h"

namespace {

// Numbers as they stand in files and fields: plain, with exponent, with unit, with blank.
void BM_TextToFloat(benchmark::State& state) {
  const std::vector<AString> texts = {AString(u"3mm"), AString(u"2.5e-3 meter"), AString(u"-17.25"),
                                      AString(u"100cel"), AString(u"1.0000000000000002GHz")};
  const Units::FullUnitType meter = Units::FindUnitDef(AString(u"meter"))->GetFullUnitType();
  double sum = 0.0;
  for (auto _ : state) {
    for (const AString& text : texts) {
      double value = 0.0;
      Units::FullUnitType found = Units::NoUnits;
      Units::UnitError error = Units::kUnitErrorNone;
      Units::TextToFloat(text, meter, value, found, error);
      sum += value;
    }
    benchmark::DoNotOptimize(sum);
  }
  double value = 0.0;
  Units::FullUnitType found = Units::NoUnits;
  Units::UnitError error = Units::kUnitErrorNone;
  if (!Units::TextToFloat(texts[1], meter, value, found, error) || value != 2.5e-3 ||
      found != meter) {
    std::abort();
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(texts.size()));
}
BENCHMARK(BM_TextToFloat);

// Names in the spellings users type: exact, other case, alternate names, long names.
void BM_LookupByName(benchmark::State& state) {
  const std::vector<AString> names = {AString(u"mm"),        AString(u"MILS"),
                                      AString(u"meters"),    AString(u"kOhm"),
                                      AString(u"GHZ"),       AString(u"copper_oz_per_ft2"),
                                      AString(u"delta_cel"), AString(u"W_per_m2_per_Cel")};
  std::size_t found = 0;
  for (auto _ : state) {
    for (const AString& name : names) found += Units::FindUnitDef(name) != nullptr;
    benchmark::DoNotOptimize(found);
  }
  for (const AString& name : names) {
    if (Units::FindUnitDef(name) == nullptr) std::abort();
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(names.size()));
}
BENCHMARK(BM_LookupByName);

// The single text the issue names: a number with a metric unit.
void BM_TextToFloatMillimetre(benchmark::State& state) {
  const AString text(u"3.5mm");
  double value = 0.0;
  Units::FullUnitType found = Units::NoUnits;
  Units::UnitError error = Units::kUnitErrorNone;
  for (auto _ : state) {
    Units::TextToFloat(text, Units::NoUnits, value, found, error);
    benchmark::DoNotOptimize(value);
  }
  if (value != 3.5e-3 || error != Units::kUnitErrorNone) std::abort();
}
BENCHMARK(BM_TextToFloatMillimetre);

// Every lookup by code resolves default tokens first, then reads the code index.
void BM_LookupByFut(benchmark::State& state) {
  const std::vector<Units::FullUnitType> futs = {
      static_cast<Units::FullUnitType>(36), static_cast<Units::FullUnitType>(40),
      static_cast<Units::FullUnitType>(3), static_cast<Units::FullUnitType>(80)};
  std::size_t found = 0;
  for (auto _ : state) {
    for (Units::FullUnitType fut : futs) found += Units::FindUnitDef(fut) != nullptr;
    benchmark::DoNotOptimize(found);
  }
  for (Units::FullUnitType fut : futs) {
    if (Units::FindUnitDef(fut) == nullptr) std::abort();
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(futs.size()));
}
BENCHMARK(BM_LookupByFut);

void BM_ConvertToSI(benchmark::State& state) {
  const auto inch = static_cast<Units::FullUnitType>(40);
  double x = 1.0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(Units::ConvertToSI(x, inch));
  }
  if (Units::ConvertToSI(1.0, inch) != 0.0254) std::abort();
}
BENCHMARK(BM_ConvertToSI);

// Building the manager with every table, as each process does once at start-up.
void BM_InitializeUnits(benchmark::State& state) {
  for (auto _ : state) {
    Units::UnInitializeUnits();
    Units::InitializeUnits(nullptr);
  }
  if (Units::FindUnitDef(AString(u"mil")) == nullptr) std::abort();
}
BENCHMARK(BM_InitializeUnits)->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv) {
  Units::InitializeUnits(nullptr);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  Units::UnInitializeUnits();
  return 0;
}
