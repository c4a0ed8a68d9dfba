// SPDX-License-Identifier: Apache-2.0
//
// ExpressionParseFuzzer.cpp - fuzz target for the expression parser and the text it regenerates.
//
// The input is UTF-8 expression text, parsed in a name space with a few variables (reals with
// and without units, a complex number, a real array, a string array). Beyond surviving any
// input, it checks:
//  - a failed parse throws one of the parser's codes (24464 to 24841) after posting exactly one
//    message, code 24464, and fires no check;
//  - a successful parse leaves a well-formed stream: it starts with kStartOfExpressionOp and
//    ends with kEndOfExpressionOp, consumes exactly the value list and the function list;
//  - the regenerated text (T1) parses again (unless its added parentheses pass the nesting
//    limit) and regenerates to exactly T1; when it kept every
//    constant exactly, it evaluates to the same number (both NaN, or equal by the value model's
//    equality).
// A broken property is reported on standard error and aborts.
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "wycore/core/Check.h"
#include "wycore/core/Messages.h"
#include "wycore/io/AString.h"
#include "wycore/units/UnitDefinition.h"
#include "wycore/units/Units.h"
#include "wycore/value/ComplexValue.h"
#include "wycore/value/DoubleArrayValue.h"
#include "wycore/value/Expression.h"
#include "wycore/value/ExpressionParser.h"
#include "wycore/value/StringArrayValue.h"
#include "wycore/value/Value.h"
#include "wycore/variables/Variable.h"
#include "wycore/variables/VariableNameSpace.h"

namespace {

int gPosted = 0;
int gLastPostedCode = 0;

[[noreturn]] void Fail(const char* what, const AString& text) {
  std::fprintf(stderr, "ExpressionParseFuzzer: %s\n%s\n", what,
               text.Serialize(i18n::kUtf8).c_str());
  std::abort();
}

Units::FullUnitType Fut(const char16_t* name) {
  const UnitDefinition* unit = Units::FindUnitDef(AString(name));
  return unit != nullptr ? unit->GetFullUnitType() : Units::NoUnits;
}

// The process-wide set-up, made once and kept for the life of the fuzzing process.
struct World {
  World() {
    wycore::SetCheckHandler([](const wycore::CheckReport& report) {
      std::fprintf(stderr, "ExpressionParseFuzzer: check fired at %s:%d: %s\n", report.file.c_str(),
                   report.line, report.text.c_str());
      std::abort();
    });
    wycore::SetMessageHandler([](const wycore::PostedMessage& message) {
      ++gPosted;
      gLastPostedCode = message.code;
    });
    Units::InitializeUnits(nullptr);
    Value::InitializeValues();
    x = std::make_unique<Variable>(u"x", 2.0);
    y = std::make_unique<Variable>(u"y", 0.003, Fut(u"mm"));
    z = std::make_unique<Variable>(u"z", ComplexValue(AComplex<double>(1.0, -2.0)));
    arr = std::make_unique<Variable>(u"arr", DoubleArrayValue({1.0, 2.0, 3.0}));
    words = std::make_unique<Variable>(u"words", StringArrayValue({u"p", u"q"}));
    names = std::make_unique<VariableNameSpace>();
    for (Variable* v : {x.get(), y.get(), z.get(), arr.get(), words.get()}) names->AddVariable(v);
  }
  std::unique_ptr<Variable> x, y, z, arr, words;
  std::unique_ptr<VariableNameSpace> names;
};

// Walks the stream as the evaluator does; false when it is not well formed.
bool WellFormed(const Expression& e) {
  const auto& ops = e.GetOperations();
  if (ops.size() < 3 || ops.front() != kStartOfExpressionOp || ops.back() != kEndOfExpressionOp) {
    return false;
  }
  std::size_t values = 0;
  std::size_t calls = 0;
  for (std::size_t i = 0; i < ops.size(); ++i) {
    const std::int32_t op = ops[i];
    if (op == kNoOp || op == kLabelOp || op == kLeftParenOp || op == kLeftBracketOp ||
        op == kRightBracketOp || op == kCommaOp) {
      return false;
    }
    if (IsValuePushOp(op)) ++values;
    if (op == kFunctionOp) ++calls;
    if (IsOperationFollowedByTwoModifiers(op)) i += 2;
    if (IsOperationFollowedByOneModifier(op)) i += 1;
  }
  if (values != e.GetValues().size() || calls != e.GetFunctionCalls().size()) return false;
  for (const FunctionCall& call : e.GetFunctionCalls()) {
    if (call.mFunction == nullptr ||
        ops[static_cast<std::size_t>(call.mOperationIndex)] != kFunctionOp) {
      return false;
    }
  }
  return true;
}

bool SameNumber(const AComplex<double>& a, const AComplex<double>& b) {
  const bool nanA = std::isnan(a.real()) || std::isnan(a.imag());
  const bool nanB = std::isnan(b.real()) || std::isnan(b.imag());
  if (nanA || nanB) return nanA == nanB;
  return val::AreNumbersEqual(a, b);
}

// Same stream, and every constant of the value list bit for bit the same number.
bool SameConstants(const Expression& a, const Expression& b) {
  if (a.GetOperations() != b.GetOperations()) return false;
  const auto& va = a.GetValues();
  const auto& vb = b.GetValues();
  if (va.size() != vb.size()) return false;
  for (std::size_t i = 0; i < va.size(); ++i) {
    const val::ParameterType kind = va[i]->GetParameterType();
    if (kind != vb[i]->GetParameterType()) return false;
    if (kind != val::kDoubleParam && kind != val::kComplexParam) continue;
    const AComplex<double> x = va[i]->GetComplexValue();
    const AComplex<double> y = vb[i]->GetComplexValue();
    if (!(x == y) && !(SameNumber(x, y) && (std::isnan(x.real()) || std::isnan(x.imag())))) {
      return false;
    }
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static World world;
  if (size > 4096) return 0;  // long inputs add nothing the grammar has not seen
  const AString text(i18n::kUtf8, reinterpret_cast<const char*>(data),
                     static_cast<std::int64_t>(size));
  if (text.find(AChar(0)) != AString::npos) return 0;  // the parser reads zero-terminated text

  ExpressionParser parser;
  std::unique_ptr<Expression> first;
  gPosted = 0;
  try {
    first.reset(parser.Parse(text));
  } catch (int code) {
    if (code < 24464 || code > 24841) Fail("unexpected error code", text);
    if (gPosted != 1 || gLastPostedCode != 24464) Fail("a failure must post one message", text);
    return 0;
  }
  if (gPosted != 0) Fail("a successful parse posted a message", text);
  if (!WellFormed(*first)) Fail("malformed stream", text);

  const AString canonical = first->GetValueText();
  std::unique_ptr<Expression> second;
  try {
    second.reset(parser.Parse(canonical));
  } catch (int code) {
    // The canonical text may add parentheses ("!!x" is written "!(!x)"), and they count toward
    // the nesting limit: only that limit may refuse it.
    if (code == 24488) return 0;
    Fail("the regenerated text does not parse", text + u" -> " + canonical);
  }
  if (second->GetValueText() != canonical) {
    Fail("the regenerated text is not stable", canonical + u" -> " + second->GetValueText());
  }
  // Numbers are written with 15 significant digits, so the values can be compared only when the
  // text kept every constant exactly (a difference of two 18-digit numbers would not survive).
  const val::ParameterType kind = first->GetParameterType();
  if ((kind == val::kDoubleParam || kind == val::kComplexParam) && SameConstants(*first, *second)) {
    if (!SameNumber(first->GetComplexValue(), second->GetComplexValue())) {
      Fail("the regenerated text evaluates differently", text + u" -> " + canonical);
    }
  }
  return 0;
}
