// SPDX-License-Identifier: Apache-2.0
//
// StorageBench.cpp - reading and writing storage text: a generated file of about 50 MB of
// blocks (materials with named values, vectors and functions, as a project holds them).
// Throughput is reported as bytes processed per second (of CPU time). Reading includes decoding
// the UTF-8 bytes and destroying the tree afterwards.
//
// BM_ReadStorageFile reads the same text from a file through CStorageFile::Read and reports the
// peak memory of the read as a multiple of the file size ("peak_x_file"): a fresh process of this
// program (option --measure-read-peak FILE) reads the file once and reports the growth of its
// peak resident set (VmHWM) over its resident set before the read (VmRSS).
#include <benchmark/benchmark.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

#include "wycore/io/Block.h"
#include "wycore/io/StorageFile.h"

namespace {

constexpr std::size_t kTargetBytes = 50u << 20;
constexpr const char* kMeasureFlag = "--measure-read-peak";

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

// A field of /proc/self/status ("VmRSS", "VmHWM") in KiB, or -1.
long StatusKiB(const char* field) {
  long value = -1;
  if (std::FILE* f = std::fopen("/proc/self/status", "r")) {
    char line[256];
    const std::size_t n = std::strlen(field);
    while (std::fgets(line, sizeof line, f) != nullptr) {
      if (std::strncmp(line, field, n) == 0 && line[n] == ':') value = std::atol(line + n + 1);
    }
    std::fclose(f);
  }
  return value;
}

// The growth of the resident set while `path` is read, in KiB: the peak (VmHWM) over what was
// resident before (VmRSS); -1 when the file does not read cleanly. Run in a fresh process.
long MeasureRead(const char* path) {
  const long before = StatusKiB("VmRSS");
  io::CBlock root;
  if (!io::CStorageFile::Read(AString(path), root) || !root.CollectErrors().empty()) return -1;
  return StatusKiB("VmHWM") - before;
}

// Runs MeasureRead in a new process of this program (so that nothing this process holds, or has
// freed and kept, is counted); -1 when that fails.
long PeakGrowthOfRead(const std::string& path) {
  int fds[2];
  if (pipe(fds) != 0) return -1;
  const pid_t child = fork();
  if (child == 0) {
    dup2(fds[1], STDOUT_FILENO);
    close(fds[0]);
    close(fds[1]);
    execl("/proc/self/exe", "wycore_StorageBench", kMeasureFlag, path.c_str(),
          static_cast<char*>(nullptr));
    _exit(1);
  }
  close(fds[1]);
  char text[64] = {};
  long growth = -1;
  if (child > 0 && read(fds[0], text, sizeof text - 1) > 0) growth = std::atol(text);
  close(fds[0]);
  int status = 0;
  if (child > 0) waitpid(child, &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? growth : -1;
}

void BM_ReadStorageFile(benchmark::State& state) {
  const std::string& text = Text();
  char name[] = "/tmp/wycore_storage_bench_XXXXXX";
  const int fd = mkstemp(name);
  if (fd < 0) {
    state.SkipWithError("cannot create a temporary file");
    return;
  }
  close(fd);
  std::ofstream(name, std::ios::binary) << text;
  const long growth = PeakGrowthOfRead(name);
  for (auto _ : state) {
    io::CBlock root;
    if (!io::CStorageFile::Read(AString(name), root)) state.SkipWithError("cannot read the file");
    benchmark::DoNotOptimize(root.Size());
  }
  std::remove(name);
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
  state.counters["MB"] = static_cast<double>(text.size()) / (1 << 20);
  state.counters["peak_x_file"] =
      static_cast<double>(growth) * 1024 / static_cast<double>(text.size());
}
BENCHMARK(BM_ReadStorageFile)->Unit(benchmark::kMillisecond)->MinTime(2.0);

}  // namespace

int main(int argc, char** argv) {
  if (argc == 3 && std::strcmp(argv[1], kMeasureFlag) == 0) {
    std::printf("%ld\n", MeasureRead(argv[2]));
    return 0;
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
