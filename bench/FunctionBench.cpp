// SPDX-License-Identifier: Apache-2.0
//
// FunctionBench.cpp - evaluating expressions that call the built-in scalar functions, next to the
// same expressions in muParser (Debian's libmuparser-dev, a yardstick only; the muParser
// benchmarks are left out when it is not found at configure time).
//
// The expressions: "sin(a)*cos(b) + sqrt(a*a+b*b)", and "if(a>b, pow(a,2), dB(b))", which
// muParser writes "a>b ? a^2 : dB(b)" with dB defined as a function of its own (it has neither
// "if", "pow" nor "dB"). muParser's "?:" evaluates one branch; "if" evaluates both.
#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>

#include "wycore/units/Units.h"
#include "wycore/value/Expression.h"
#include "wycore/value/ExpressionEvaluator.h"
#include "wycore/value/Value.h"
#include "wycore/variables/Variable.h"
#include "wycore/variables/VariableNameSpace.h"

#ifdef WYCORE_HAVE_MUPARSER
#include <muParser.h>
#endif

namespace {

constexpr double kA = 0.75;
constexpr double kB = 0.5;

// The managers, variables a and b and a name space that finds them, for the whole run.
struct Environment {
  Environment() {
    Units::InitializeUnits(nullptr);
    Value::InitializeValues();
    a = std::make_unique<Variable>(u"a", kA);
    b = std::make_unique<Variable>(u"b", kB);
    names = std::make_unique<VariableNameSpace>(a.get(), VariableNameSpace::kSearchIntrinsics,
                                                VariableNameSpace::kAppendToPrevious);
    names->AddVariable(b.get());
  }
  ~Environment() {
    names.reset();
    b.reset();
    a.reset();
    Value::UnInitializeValues();
    Units::UnInitializeUnits();
  }
  std::unique_ptr<Variable> a;
  std::unique_ptr<Variable> b;
  std::unique_ptr<VariableNameSpace> names;
};

Environment& Env() {
  static Environment environment;
  return environment;
}

std::unique_ptr<Expression> Parse(const char16_t* text) {
  Env();
  std::unique_ptr<ValueBase> value(Value::CreateValueBase(text, Units::NoUnits));
  auto* expression = dynamic_cast<Expression*>(value.get());
  if (expression == nullptr) return nullptr;
  value.release();
  return std::unique_ptr<Expression>(expression);
}

double DecibelOf(double x) { return 20.0 * std::log10(std::fabs(x)); }

const double kTrigExpected = std::sin(kA) * std::cos(kB) + std::sqrt(kA * kA + kB * kB);
const double kIfExpected = kA > kB ? std::pow(kA, 2) : DecibelOf(kB);

void Evaluate(benchmark::State& state, const char16_t* text, double expected) {
  const auto expression = Parse(text);
  if (!expression ||
      std::fabs(ExpressionEvaluator(*expression).EvaluateRealExpression() - expected) > 1e-15) {
    state.SkipWithError("wrong result");
    return;
  }
  for (auto _ : state) {
    ExpressionEvaluator evaluator(*expression);
    benchmark::DoNotOptimize(evaluator.EvaluateRealExpression());
  }
  state.SetItemsProcessed(state.iterations());
}

void BM_EvaluateTrigSqrt(benchmark::State& state) {
  Evaluate(state, u"sin(a)*cos(b) + sqrt(a*a+b*b)", kTrigExpected);
}
BENCHMARK(BM_EvaluateTrigSqrt);

// The arithmetic alone, to tell the cost of the three calls above from that of the evaluation.
void BM_EvaluateArithmeticOnly(benchmark::State& state) {
  Evaluate(state, u"a*a+b*b", kA * kA + kB * kB);
}
BENCHMARK(BM_EvaluateArithmeticOnly);

void BM_EvaluateIfPowDB(benchmark::State& state) {
  Evaluate(state, u"if(a>b, pow(a,2), dB(b))", kIfExpected);
}
BENCHMARK(BM_EvaluateIfPowDB);

#ifdef WYCORE_HAVE_MUPARSER

void EvaluateMuParser(benchmark::State& state, const char* text, double expected) {
  double a = kA;
  double b = kB;
  mu::Parser parser;
  try {
    parser.DefineVar("a", &a);
    parser.DefineVar("b", &b);
    parser.DefineFun("dB", DecibelOf);
    parser.SetExpr(text);
    if (std::fabs(parser.Eval() - expected) > 1e-15) {
      state.SkipWithError("wrong result");
      return;
    }
    for (auto _ : state) benchmark::DoNotOptimize(parser.Eval());
  } catch (const mu::Parser::exception_type&) {
    state.SkipWithError("muParser refused the expression");
    return;
  }
  state.SetItemsProcessed(state.iterations());
}

void BM_MuParserTrigSqrt(benchmark::State& state) {
  EvaluateMuParser(state, "sin(a)*cos(b) + sqrt(a*a+b*b)", kTrigExpected);
}
BENCHMARK(BM_MuParserTrigSqrt);

void BM_MuParserIfPowDB(benchmark::State& state) {
  EvaluateMuParser(state, "a>b ? a^2 : dB(b)", kIfExpected);
}
BENCHMARK(BM_MuParserIfPowDB);

#endif

}  // namespace

BENCHMARK_MAIN();
