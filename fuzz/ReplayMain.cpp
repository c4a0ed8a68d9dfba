// SPDX-License-Identifier: Apache-2.0
//
// ReplayMain.cpp - a plain main() for the fuzz targets: runs LLVMFuzzerTestOneInput on every
// file named on the command line (directories: every regular file in them, in name order).
//
// Linked with each target's own source, it lets the normal compiler build and CTest run the
// seed corpus and any crash reproducer kept beside it. A target reports a broken property by
// aborting, which fails the run. Naming no readable input at all is a failure too, so that a
// mistyped corpus path cannot pass silently.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
  namespace fs = std::filesystem;
  std::vector<fs::path> inputs;
  for (int i = 1; i < argc; ++i) {
    std::error_code ec;
    if (fs::is_directory(argv[i], ec)) {
      for (const auto& entry : fs::directory_iterator(argv[i], ec)) {
        if (entry.is_regular_file()) inputs.push_back(entry.path());
      }
    } else if (fs::is_regular_file(argv[i], ec)) {
      inputs.emplace_back(argv[i]);
    } else {
      std::fprintf(stderr, "replay: %s: no such file or directory\n", argv[i]);
      return 1;
    }
  }
  std::sort(inputs.begin(), inputs.end());
  if (inputs.empty()) {
    std::fprintf(stderr, "replay: no inputs\n");
    return 1;
  }
  for (const fs::path& path : inputs) {
    std::ifstream in(path, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  }
  std::printf("replay: %zu inputs passed\n", inputs.size());
  return 0;
}
