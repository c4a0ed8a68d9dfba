// SPDX-License-Identifier: Apache-2.0
//
// ExpressionBench.cpp - evaluating and parsing expressions, side by side with muParser.
//
// Six expressions over the variables a, b, c (Variables of a VariableNameSpace, as a design
// holds them) are evaluated through Expression::GetValue and parsed through
// Value::CreateValueBase (unit look-ups and the regenerated text included); when Debian's
// muParser is installed the same texts run through it as a yardstick (BM_MuParser...). muParser
// has no separate parse step: its "parse" is SetExpr plus the first Eval, which compiles the
// bytecode, on a parser whose variables are already defined. Further benchmarks cover a
// function call, a complex expression and a third-order derivative. Each benchmark reports the
// heap allocations per iteration ("allocs"), counted by the global operator new of this program:
// evaluating a real expression is meant to make none.
#include <benchmark/benchmark.h>

#include <atomic>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>

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

std::atomic<long long> gAllocations{0};

}  // namespace

// The replacement pair allocates with malloc and frees with free; GCC cannot see that the two
// belong together where it inlines them into library code, hence the pragma.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
void* operator new(std::size_t size) {
  gAllocations.fetch_add(1, std::memory_order_relaxed);
  if (void* p = std::malloc(size == 0 ? 1 : size)) return p;
  throw std::bad_alloc();
}
void operator delete(void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
#pragma GCC diagnostic pop

namespace {

constexpr double kA = 1.5;
constexpr double kB = 2.5;
constexpr double kC = 0.75;

// The managers, a variable w = 0.25 and a name space that finds it, for the whole run.
struct Environment {
  Environment() {
    Units::InitializeUnits(nullptr);
    Value::InitializeValues();
    w = std::make_unique<Variable>(u"w", 0.25);
    a = std::make_unique<Variable>(u"a", kA);
    b = std::make_unique<Variable>(u"b", kB);
    c = std::make_unique<Variable>(u"c", kC);
    names = std::make_unique<VariableNameSpace>(w.get(), VariableNameSpace::kSearchIntrinsics,
                                                VariableNameSpace::kAppendToPrevious);
    names->AddVariable(a.get());
    names->AddVariable(b.get());
    names->AddVariable(c.get());
  }
  ~Environment() {
    names.reset();
    c.reset();
    b.reset();
    a.reset();
    w.reset();
    Value::UnInitializeValues();
    Units::UnInitializeUnits();
  }
  std::unique_ptr<Variable> w;
  std::unique_ptr<Variable> a;
  std::unique_ptr<Variable> b;
  std::unique_ptr<Variable> c;
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

void ReportAllocations(benchmark::State& state, long long before) {
  state.counters["allocs"] = benchmark::Counter(static_cast<double>(gAllocations.load() - before) /
                                                static_cast<double>(state.iterations()));
  state.SetItemsProcessed(state.iterations());
}

const double kExpected = 2 * 0.25 + 1e-3 * std::sin(0.25);

void BM_EvaluateReal(benchmark::State& state) {
  const auto expression = Parse(u"2*w + 1e-3*sin(w)");
  if (!expression || ExpressionEvaluator(*expression).EvaluateRealExpression() != kExpected) {
    state.SkipWithError("wrong result");
    return;
  }
  const long long before = gAllocations.load();
  for (auto _ : state) {
    ExpressionEvaluator evaluator(*expression);
    benchmark::DoNotOptimize(evaluator.EvaluateRealExpression());
  }
  ReportAllocations(state, before);
}
BENCHMARK(BM_EvaluateReal);

void BM_EvaluateRealLonger(benchmark::State& state) {
  const auto expression =
      Parse(u"(2*w + 1e-3*sin(w)) * (w - 3) / (1 + w^2) + if(w > 0, cos(w), 0) - max(w, 0.5)");
  const double w = 0.25;
  const double expected =
      (2 * w + 1e-3 * std::sin(w)) * (w - 3) / (1 + std::pow(w, 2)) + std::cos(w) - 0.5;
  if (!expression ||
      std::fabs(ExpressionEvaluator(*expression).EvaluateRealExpression() - expected) > 1e-15) {
    state.SkipWithError("wrong result");
    return;
  }
  const long long before = gAllocations.load();
  for (auto _ : state) {
    ExpressionEvaluator evaluator(*expression);
    benchmark::DoNotOptimize(evaluator.EvaluateRealExpression());
  }
  ReportAllocations(state, before);
}
BENCHMARK(BM_EvaluateRealLonger);

void BM_ExpressionGetValue(benchmark::State& state) {
  const auto expression = Parse(u"2*w + 1e-3*sin(w)");
  if (!expression || expression->GetValue() != kExpected) {
    state.SkipWithError("wrong result");
    return;
  }
  const long long before = gAllocations.load();
  for (auto _ : state) benchmark::DoNotOptimize(expression->GetValue());
  ReportAllocations(state, before);
}
BENCHMARK(BM_ExpressionGetValue);

void BM_EvaluateComplex(benchmark::State& state) {
  const auto expression = Parse(u"(2*w + 1j) * (w - 3j) + sqrt(-4 + 0j)");
  const AComplex<double> expected =
      AComplex<double>(0.5, 1.0) * AComplex<double>(0.25, -3.0) + AComplex<double>(0.0, 2.0);
  if (!expression || ExpressionEvaluator(*expression).EvaluateComplexExpression() != expected) {
    state.SkipWithError("wrong result");
    return;
  }
  const long long before = gAllocations.load();
  for (auto _ : state) {
    ExpressionEvaluator evaluator(*expression);
    benchmark::DoNotOptimize(evaluator.EvaluateComplexExpression());
  }
  ReportAllocations(state, before);
}
BENCHMARK(BM_EvaluateComplex);

void BM_EvaluateRealDerivative(benchmark::State& state) {
  const auto expression = Parse(u"2*w + 1e-3*sin(w)");
  if (!expression) {
    state.SkipWithError("no expression");
    return;
  }
  const Variable& w = *Env().w;
  const ADValue<double> d = ExpressionEvaluator(*expression).EvaluateRealDerivative(3, w);
  if (std::fabs(d.Derivative(3) + 1e-3 * std::cos(0.25)) > 1e-15) {
    state.SkipWithError("wrong derivative");
    return;
  }
  const long long before = gAllocations.load();
  for (auto _ : state) {
    ExpressionEvaluator evaluator(*expression);
    benchmark::DoNotOptimize(evaluator.EvaluateRealDerivative(3, w));
  }
  ReportAllocations(state, before);
}
BENCHMARK(BM_EvaluateRealDerivative);

// ---- Side by side with muParser -----------------------------------------------------------

// "1*a*b + 2*b*c + 3*c*a + ... + 50*b*c": a sum of 50 products.
std::string SumOfProductsText() {
  static const char* const kPairs[] = {"a*b", "b*c", "c*a"};
  std::string text;
  for (int k = 1; k <= 50; ++k) {
    if (k > 1) text += " + ";
    text += std::to_string(k) + "*" + kPairs[(k - 1) % 3];
  }
  return text;
}

double SumOfProducts() {
  const double pairs[] = {kA * kB, kB * kC, kC * kA};
  double sum = 0.0;
  for (int k = 1; k <= 50; ++k) sum += k * pairs[(k - 1) % 3];
  return sum;
}

struct Case {
  std::string text;
  double expected;
};

// The six expressions, by the benchmark's argument.
const Case& SideBySide(std::int64_t index) {
  const double a = kA;
  const double b = kB;
  const double c = kC;
  static const Case kCases[] = {
      {"a+b", a + b},
      {"2*a + 3*b - c", 2 * a + 3 * b - c},
      {"sin(a)*cos(b) + sqrt(a*a+b*b)", std::sin(a) * std::cos(b) + std::sqrt(a * a + b * b)},
      {"(a+b)*(a-b)/(c+1)^2", (a + b) * (a - b) / std::pow(c + 1, 2)},
      {"a<b && b>c || a==c", (a < b && b > c) || a == c ? 1.0 : 0.0},
      {SumOfProductsText(), SumOfProducts()},
  };
  return kCases[index];
}

AString Utf16(const std::string& text) { return AString(std::u16string(text.begin(), text.end())); }

bool Close(double value, double expected) {
  return std::fabs(value - expected) <= 1e-13 * std::fmax(1.0, std::fabs(expected));
}

void LabelCase(benchmark::State& state, const Case& c) {
  state.SetLabel(c.text.size() > 40 ? "sum of 50 products" : c.text);
}

void BM_Evaluate(benchmark::State& state) {
  const Case& c = SideBySide(state.range(0));
  LabelCase(state, c);
  const auto expression = Parse(Utf16(c.text).c_str());
  if (!expression || !Close(expression->GetValue(), c.expected)) {
    state.SkipWithError("wrong result");
    return;
  }
  const long long before = gAllocations.load();
  for (auto _ : state) benchmark::DoNotOptimize(expression->GetValue());
  ReportAllocations(state, before);
}
BENCHMARK(BM_Evaluate)->DenseRange(0, 5);

void BM_Parse(benchmark::State& state) {
  const Case& c = SideBySide(state.range(0));
  LabelCase(state, c);
  const AString text = Utf16(c.text);
  {
    const auto expression = Parse(text.c_str());
    if (!expression || !Close(expression->GetValue(), c.expected)) {
      state.SkipWithError("wrong result");
      return;
    }
  }
  const long long before = gAllocations.load();
  for (auto _ : state) {
    std::unique_ptr<ValueBase> value(Value::CreateValueBase(text, Units::NoUnits));
    benchmark::DoNotOptimize(value.get());
  }
  ReportAllocations(state, before);
}
BENCHMARK(BM_Parse)->DenseRange(0, 5);

#ifdef WYCORE_HAVE_MUPARSER

// A muParser with a, b and c defined (bound to its own members).
struct MuParserSetup {
  double a = kA;
  double b = kB;
  double c = kC;
  mu::Parser parser;
  MuParserSetup() {
    parser.DefineVar("a", &a);
    parser.DefineVar("b", &b);
    parser.DefineVar("c", &c);
  }
};

void BM_MuParserEvaluate(benchmark::State& state) {
  const Case& c = SideBySide(state.range(0));
  LabelCase(state, c);
  MuParserSetup mu;
  try {
    mu.parser.SetExpr(c.text);
    if (!Close(mu.parser.Eval(), c.expected)) {
      state.SkipWithError("wrong result");
      return;
    }
    const long long before = gAllocations.load();
    for (auto _ : state) benchmark::DoNotOptimize(mu.parser.Eval());
    ReportAllocations(state, before);
  } catch (const mu::Parser::exception_type&) {
    state.SkipWithError("muParser refused the expression");
  }
}
BENCHMARK(BM_MuParserEvaluate)->DenseRange(0, 5);

void BM_MuParserParse(benchmark::State& state) {
  const Case& c = SideBySide(state.range(0));
  LabelCase(state, c);
  MuParserSetup mu;
  try {
    mu.parser.SetExpr(c.text);
    if (!Close(mu.parser.Eval(), c.expected)) {
      state.SkipWithError("wrong result");
      return;
    }
    const long long before = gAllocations.load();
    for (auto _ : state) {
      mu.parser.SetExpr(c.text);
      benchmark::DoNotOptimize(mu.parser.Eval());
    }
    ReportAllocations(state, before);
  } catch (const mu::Parser::exception_type&) {
    state.SkipWithError("muParser refused the expression");
  }
}
BENCHMARK(BM_MuParserParse)->DenseRange(0, 5);

#endif

}  // namespace

BENCHMARK_MAIN();
