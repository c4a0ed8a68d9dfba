// SPDX-License-Identifier: Apache-2.0
//
// TokenBench.cpp - the costs that dominate reading a file: copying tokens with shared text,
// and making number and keyword tokens from lexed text.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <vector>

#include "wycore/io/AString.h"
#include "wycore/io/Token.h"

namespace {

using io::CToken;

// Copies of a token with a buffered text, made and released: one share-count increment and one
// decrement each, no allocation while the count lasts.
void BM_TokenCopyShared(benchmark::State& state) {
  const CToken original(CToken::SingleQuotedText, AString(u"ProjectMaterials"));
  const auto count = static_cast<std::size_t>(state.range(0));
  std::vector<CToken> copies;
  copies.reserve(count);
  for (auto _ : state) {
    for (std::size_t i = 0; i < count; ++i) copies.emplace_back(original);
    benchmark::DoNotOptimize(copies.data());
    copies.clear();
  }
  for (std::size_t i = 0; i < count; ++i) copies.emplace_back(original);
  if (copies.back().ACharPtr() != original.ACharPtr()) std::abort();
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_TokenCopyShared)->Arg(64)->Arg(254);

// A number token from its text: parse, no allocation.
void BM_TokenSetTypeNumber(benchmark::State& state) {
  const AString texts[] = {AString(u"1.5e3"), AString(u"42"), AString(u"-0.125"),
                           AString(u"6.02214076e23")};
  CToken token;
  double sum = 0.0;
  for (auto _ : state) {
    for (const AString& text : texts) {
      token.SetType(CToken::Double, text);
      sum += token.Value();
    }
    benchmark::DoNotOptimize(sum);
  }
  token.SetType(CToken::Double, texts[0]);
  if (token.Type() != CToken::Double || token.Value() != 1500.0 || token.ACharLen() != 0) {
    std::abort();
  }
  state.SetItemsProcessed(state.iterations() * 4);
}
BENCHMARK(BM_TokenSetTypeNumber);

// Keyword tokens of the given length: up to 3 characters stay inline, longer ones allocate.
void BM_TokenSetTypeKeyword(benchmark::State& state) {
  const AString text(AString::Base(static_cast<std::size_t>(state.range(0)), u'k'));
  CToken token;
  for (auto _ : state) {
    token.SetType(CToken::Keyword, text);
    benchmark::DoNotOptimize(token.ACharPtr());
  }
  if (token.GetAString() != text) std::abort();
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_TokenSetTypeKeyword)->Arg(3)->Arg(16);

}  // namespace

BENCHMARK_MAIN();
