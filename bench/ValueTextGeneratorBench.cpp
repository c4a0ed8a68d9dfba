// SPDX-License-Identifier: Apache-2.0
//
// ValueTextGeneratorBench.cpp - regenerating the canonical text of parsed expressions: a sum of
// N products of a variable and a number with units, and the same expression with nested
// parentheses and negations. Reports the characters written per second.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "wycore/units/Units.h"
#include "wycore/value/Expression.h"
#include "wycore/value/ExpressionParser.h"
#include "wycore/value/Value.h"
#include "wycore/variables/ValueTextGenerator.h"
#include "wycore/variables/Variable.h"
#include "wycore/variables/VariableNameSpace.h"

namespace {

// The managers and a variable w for the whole run.
struct Environment {
  Environment() {
    Units::InitializeUnits(nullptr);
    Value::InitializeValues();
    w = std::make_unique<Variable>(u"w", 0.25);
    names = std::make_unique<VariableNameSpace>(w.get(), VariableNameSpace::kSearchIntrinsics,
                                                VariableNameSpace::kDontAppendToPrevious);
  }
  std::unique_ptr<Variable> w;
  std::unique_ptr<VariableNameSpace> names;
};

Environment& Env() {
  static Environment environment;
  return environment;
}

std::unique_ptr<Expression> ParseOrDie(const std::string& text) {
  try {
    ExpressionParser parser;
    return std::unique_ptr<Expression>(parser.Parse(AString(i18n::kUtf8, text.c_str())));
  } catch (int code) {
    std::fprintf(stderr, "benchmark expression does not parse: %d\n", code);
    std::abort();
  }
}

void Run(benchmark::State& state, const std::string& text, const std::string& expected) {
  Env();
  const std::unique_ptr<Expression> expression = ParseOrDie(text);
  ValueTextGenerator generator;
  AString out;
  if (!generator.GenerateText(*expression, out) || out.Serialize(i18n::kUtf8) != expected) {
    state.SkipWithError("unexpected text");
    return;
  }
  for (auto _ : state) {
    generator.GenerateText(*expression, out);
    benchmark::DoNotOptimize(out.data());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                          static_cast<std::int64_t>(out.size()));
}

void BM_GenerateSumOfProducts(benchmark::State& state) {
  std::string text;
  std::string expected;
  for (int i = 0; i < state.range(0); ++i) {
    text += i == 0 ? "" : "+";
    text += "w*1.5mm";
    expected += i == 0 ? "" : " + ";
    expected += "w*1.5mm";
  }
  Run(state, text, expected);
}
BENCHMARK(BM_GenerateSumOfProducts)->Arg(10)->Arg(100)->Arg(1000);

void BM_GenerateNestedNegations(benchmark::State& state) {
  std::string text = "w";
  std::string expected = "w";
  for (int i = 0; i < state.range(0); ++i) {
    text = "(" + text + ")-(-w*2)";
    expected += " + w*2";
  }
  Run(state, text, expected);
}
BENCHMARK(BM_GenerateNestedNegations)->Arg(10)->Arg(100);

}  // namespace

BENCHMARK_MAIN();
