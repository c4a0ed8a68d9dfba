// SPDX-License-Identifier: Apache-2.0
//
// StorageBench.cpp - reading and writing storage text: a generated file of about 50 MB of
// blocks (materials with named values, vectors and functions, as a project holds them).
// Throughput is reported as bytes processed per second.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "wycore/io/Block.h"
#include "wycore/io/StorageFile.h"

namespace {

constexpr std::size_t kTargetBytes = 50u << 20;

io::CBlock MakeMaterial(int i) {
  io::CBlock material(AString(u"material_") + AString(std::to_string(i).c_str()));
  material << io::CBlock_named_value(u"CoordinateSystemType", u"Cartesian")
           << io::CBlock_named_value(u"BulkOrSurfaceType", 1)
           << io::CBlock_named_value(u"permeability", AString(std::to_string(1 + i % 5000).c_str()))
           << io::CBlock_named_value(u"conductivity", 5.8e7 / (1 + i % 17))
           << io::CBlock_named_value(u"Notes", u"generated for the storage benchmark, it's text");
  std::vector<double> h, b;
  for (int k = 0; k < 12; ++k) {
    h.push_back(k * 125.5 + i % 7);
    b.push_back(0.1 * k + 1e-3 * (i % 11));
  }
  io::CBlock curve(u"BHCoordinates");
  curve << io::CBlock_vec(u"H", h) << io::CBlock_vec(u"B", b);
  io::CBlock_func physics(u"PhysicsTypes");
  io::CBlock_func set(u"set");
  set << io::CBlock_value(u"Electromagnetic") << io::CBlock_value(u"Thermal");
  physics << set << io::CBlock_named_value(u"Level", i % 3);
  material << curve << physics;
  return material;
}

const std::string& Text() {
  static const std::string text = [] {
    io::CBlock root;
    io::CBlock materials(u"ProjectMaterials");
    std::size_t estimate = 0;
    for (int i = 0; estimate < kTargetBytes; ++i) {
      materials << MakeMaterial(i);
      estimate += 560;  // about one material's text
    }
    root << materials;
    return io::CStorageFile::WriteText(root);
  }();
  return text;
}

void BM_ReadStorageText(benchmark::State& state) {
  const std::string& text = Text();
  {
    // Verified once, outside the timed loop: the text reads cleanly and writes back unchanged.
    io::CBlock root;
    io::CStorageFile::ReadText(io::CStorageFile::Decode(text), root);
    if (!root.CollectErrors().empty() || io::CStorageFile::WriteText(root) != text) {
      state.SkipWithError("the generated text does not round-trip");
      return;
    }
  }
  for (auto _ : state) {
    io::CBlock root;
    io::CStorageFile::ReadText(io::CStorageFile::Decode(text), root);
    benchmark::DoNotOptimize(root.Size());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
  state.counters["MB"] = static_cast<double>(text.size()) / (1 << 20);
}
BENCHMARK(BM_ReadStorageText)->Unit(benchmark::kMillisecond)->MinTime(2.0);

void BM_WriteStorageText(benchmark::State& state) {
  const std::string& text = Text();
  io::CBlock root;
  io::CStorageFile::ReadText(io::CStorageFile::Decode(text), root);
  if (io::CStorageFile::WriteText(root) != text) {
    state.SkipWithError("the generated text does not round-trip");
    return;
  }
  for (auto _ : state) {
    std::string out = io::CStorageFile::WriteText(root);
    benchmark::DoNotOptimize(out.data());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
  state.counters["MB"] = static_cast<double>(text.size()) / (1 << 20);
}
BENCHMARK(BM_WriteStorageText)->Unit(benchmark::kMillisecond)->MinTime(2.0);

}  // namespace

BENCHMARK_MAIN();
