// SPDX-License-Identifier: Apache-2.0
//
// StringBench.cpp - costs of the string operations every reader and writer leans on: case-blind
// comparison of names, formatting through the shared scratch buffer, and UTF-8 round trips of
// short texts (with and without characters beyond ASCII, which take the iconv path).
#include <benchmark/benchmark.h>

#include <cstdlib>

#include "wycore/io/AString.h"

namespace {

void BM_CompareNoCase(benchmark::State& state) {
  const auto length = static_cast<std::size_t>(state.range(0));
  AString a, b;
  for (std::size_t i = 0; i < length; ++i) {
    a.push_back(static_cast<AChar>(u'A' + i % 26));
    b.push_back(static_cast<AChar>(u'a' + i % 26));
  }
  if (a.CompareNoCase(b) != 0) state.SkipWithError("CompareNoCase result is wrong");
  for (auto _ : state) benchmark::DoNotOptimize(a.CompareNoCase(b));
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(length));
}
BENCHMARK(BM_CompareNoCase)->Arg(16)->Arg(256);

void BM_Format(benchmark::State& state) {
  const AString name(u"Permeability");
  AString out;
  out.Format(u"%s[%d] = %.6g", name.c_str(), 42, 1.25e-6);
  if (out != u"Permeability[42] = 1.25e-06") state.SkipWithError("Format result is wrong");
  int i = 0;
  for (auto _ : state) {
    out.Format(u"%s[%d] = %.6g", name.c_str(), ++i, 1.25e-6);
    benchmark::DoNotOptimize(out.data());
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_Format);

void Utf8RoundTrip(benchmark::State& state, const AString& text) {
  if (AString(i18n::kUtf8, text.Serialize(i18n::kUtf8).c_str()) != text) {
    state.SkipWithError("round trip changed the text");
  }
  for (auto _ : state) {
    std::string narrow = text.Serialize(i18n::kUtf8);
    AString back(i18n::kUtf8, narrow.data(), static_cast<std::int64_t>(narrow.size()));
    benchmark::DoNotOptimize(back.data());
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void BM_Utf8RoundTrip(benchmark::State& state) {
  AString text;
  while (text.size() < static_cast<std::size_t>(state.range(0))) text += u"Flu\u00dfdichte ";
  text.resize(static_cast<std::size_t>(state.range(0)));
  Utf8RoundTrip(state, text);
}
BENCHMARK(BM_Utf8RoundTrip)->Arg(16)->Arg(256);

void BM_Utf8RoundTripAscii(benchmark::State& state) {
  AString text;
  while (text.size() < static_cast<std::size_t>(state.range(0))) text += u"FluxDensity ";
  text.resize(static_cast<std::size_t>(state.range(0)));
  Utf8RoundTrip(state, text);
}
BENCHMARK(BM_Utf8RoundTripAscii)->Arg(16)->Arg(256);

}  // namespace

BENCHMARK_MAIN();
