// SPDX-License-Identifier: Apache-2.0
//
// VerbEval.cpp - `wycore eval EXPR [--var NAME=EXPR ...] [--key KEY]`: evaluates an expression.
//
// Prints two lines on standard output, which scripts read:
//   1. the value with its units, written as the library writes values: a real number with the
//      unit manager's default double format ("%-.15g", so 15 significant digits) followed by
//      the units' name ("0.0314meter"); a complex number as "re + imj unit"; a string as its
//      text;
//   2. the expression's canonical text as the library regenerates it ("2*w + 1in").
// The --var definitions become variables of one name space, all created before any text is
// set, so that they may refer to each other in any order. A text that does not parse prints the
// parser's positioned message on standard error; a definition that would make a variable read
// itself (a cycle) prints the variable's message. Both give exit status 1; usage errors give 2.
// --key evaluates at a variation given as a variation key ("w='3mm' h='2mm'"): the key's names
// that are --var definitions take the key's values for the evaluation, the others are served
// as variables of their own; a key that does not parse, or whose values do not read, gives 1.
#include <cstdio>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Verbs.h"
#include "wycore/core/Messages.h"
#include "wycore/io/AString.h"
#include "wycore/units/NumberReader.h"
#include "wycore/units/UnitDefinition.h"
#include "wycore/units/Units.h"
#include "wycore/value/Expression.h"
#include "wycore/value/ExpressionParser.h"
#include "wycore/value/FloatValue.h"
#include "wycore/value/Value.h"
#include "wycore/variables/Variable.h"
#include "wycore/variables/VariableNameSpace.h"
#include "wycore/variables/VariableValues.h"
#include "wycore/variables/VariableValuesContext.h"
#include "wycore/variables/VariationKey.h"

namespace wycore::tool {

extern const char* const kEvalUsage =
    "usage: wycore eval EXPR [--var NAME=EXPR ...] [--key KEY]\n"
    "  Evaluates the expression EXPR and prints two lines: its value with its units\n"
    "  (15 significant digits; complex values as \"re + imj unit\"), then its canonical text.\n"
    "  --var NAME=EXPR   defines a variable NAME that EXPR and the other definitions may read;\n"
    "                    definitions may refer to each other in any order, but not in a cycle.\n"
    "  --key KEY         evaluates at the variation KEY names, a variation key such as\n"
    "                    \"w='3mm' h='2mm'\": its values replace those of the --var definitions\n"
    "                    of the same names, and its other names become variables.\n"
    "  Example: wycore eval \"2*w + 1in\" --var w=3mm\n"
    "           wycore eval \"w*h\" --key \"w='3mm' h='2mm'\"\n"
    "  Exit status: 0 success; 1 when a text or the key does not parse or a definition is\n"
    "  refused;\n"
    "  2 for a usage error.\n";

namespace {

const Verb& EvalVerb() {
  static const Verb verb{"eval", "", kEvalUsage, nullptr};
  return verb;
}

struct Definition {
  std::string mName;
  std::string mText;
};

AString FromUtf8(const std::string& text) { return AString(i18n::kUtf8, text.c_str()); }
std::string ToUtf8(const std::u16string& text) { return AString(text).Serialize(i18n::kUtf8); }

// Collects what the library posts while the verb runs, to print it on standard error.
class MessageCollector {
 public:
  MessageCollector()
      : mPrevious(SetMessageHandler([this](const PostedMessage& m) { mMessages.push_back(m); })) {}
  ~MessageCollector() { SetMessageHandler(std::move(mPrevious)); }
  MessageCollector(const MessageCollector&) = delete;
  MessageCollector& operator=(const MessageCollector&) = delete;

  // Prints every message collected, each line prefixed by `prefix`, and forgets them; returns
  // how many there were.
  std::size_t Flush(const std::string& prefix) {
    const std::size_t count = mMessages.size();
    for (const PostedMessage& m : mMessages)
      std::fprintf(stderr, "%s%s\n", prefix.c_str(), ToUtf8(m.text).c_str());
    mMessages.clear();
    return count;
  }

 private:
  std::vector<PostedMessage> mMessages;
  MessageHandler mPrevious;
};

// The first output line: the value as the library writes values.
std::string ValueLine(const Expression& expression) {
  const Units::FullUnitType units = expression.GetUnits();
  AString text;
  switch (expression.GetParameterType()) {
    case val::kDoubleParam:
    case val::kIntParam:
    case val::kCharParam:
    case val::kEnumParam:
      Units::FloatToText(expression.GetValue(), units, text, Units::GetDefaultDoubleFormat(), true);
      break;
    case val::kComplexParam:
      Units::ComplexToText(expression.GetComplexValue(), units, text, true);
      break;
    case val::kStringParam:
      text = expression.GetStringValue();
      break;
    default: {
      const std::unique_ptr<ValueBase> evaluated(expression.CreateEvaluatedValueBase());
      if (evaluated != nullptr) text = evaluated->GetValueText();
      break;
    }
  }
  return text.Serialize(i18n::kUtf8);
}

// The second output line: the canonical text, with the explicit units of "(a + b) mm".
std::string TextLine(const Expression& expression) {
  AString text = expression.GetText();
  const Units::FullUnitType explicitUnits = expression.GetExplicitUnits();
  const UnitDefinition* unit =
      explicitUnits != Units::NoUnits ? Units::FindUnitDef(explicitUnits) : nullptr;
  if (unit != nullptr && !unit->GetUnitString().empty()) {
    AString whole(u"(");
    whole += text;
    whole += u") ";
    whole += unit->GetUnitString();
    text = std::move(whole);
  }
  return text.Serialize(i18n::kUtf8);
}

// The indices of `variables` ordered so that each comes after the variables of the list it
// reads (the variables refuse cycles, so there is such an order). Iterative: the list is as long
// as the command line.
std::vector<std::size_t> DependencyOrder(const std::vector<std::unique_ptr<Variable>>& variables) {
  std::map<const Variable*, std::size_t> index;
  for (std::size_t i = 0; i < variables.size(); ++i) index[variables[i].get()] = i;
  std::vector<std::vector<std::size_t>> reads(variables.size());
  for (std::size_t i = 0; i < variables.size(); ++i) {
    std::vector<const Variable*> referenced;
    variables[i]->GetValueBase().GetReferencedVariables(referenced);
    for (const Variable* v : referenced) {
      const auto found = index.find(v);
      if (found != index.end()) reads[i].push_back(found->second);
    }
  }
  std::vector<std::size_t> order;
  std::vector<char> state(variables.size(), 0);  // 0 new, 1 on the path, 2 placed
  for (std::size_t root = 0; root < variables.size(); ++root) {
    if (state[root] != 0) continue;
    std::vector<std::pair<std::size_t, std::size_t>> path{{root, 0}};  // node, next edge
    state[root] = 1;
    while (!path.empty()) {
      auto& [node, edge] = path.back();
      if (edge < reads[node].size()) {
        const std::size_t next = reads[node][edge++];
        if (state[next] == 0) {
          state[next] = 1;
          path.emplace_back(next, 0);
        }
      } else {
        state[node] = 2;
        order.push_back(node);
        path.pop_back();
      }
    }
  }
  return order;
}

int Evaluate(const std::string& expressionText, const std::vector<Definition>& definitions,
             const std::optional<std::string>& keyText) {
  MessageCollector messages;
  VariableNameSpace nameSpace(VariableNameSpace::kSearchIntrinsics,
                              VariableNameSpace::kDontAppendToPrevious);
  // The key's variables, served after the --var definitions; declared before them so that it
  // goes after every value that may read its variables.
  std::unique_ptr<VariationKeyVariableServer> keyServer;
  if (keyText.has_value()) {
    const AString key = FromUtf8(*keyText);
    VariableValues none;
    if (VariableValues::ResolveVariationKey(none, key, nameSpace, false) < 0) {
      std::fprintf(stderr, "wycore eval: --key '%s' is not a variation key (Name='value' ...)\n",
                   keyText->c_str());
      return 1;
    }
    keyServer = std::make_unique<VariationKeyVariableServer>(key);
    if (!keyServer->IsValid()) {
      if (messages.Flush("wycore eval: --key: ") == 0)
        std::fprintf(stderr, "wycore eval: --key: a value does not read\n");
      return 1;
    }
    nameSpace.AddVariableServer(keyServer.get());
  }
  std::vector<std::unique_ptr<Variable>> variables;
  int status = 0;

  // Every variable exists before any text is read, so definitions may read each other in any
  // order.
  for (const Definition& d : definitions) {
    const AString name = FromUtf8(d.mName);
    for (const auto& v : variables) {
      if (v->GetName().CompareNoCase(name) == 0) {
        std::fprintf(stderr, "wycore eval: --var %s is defined twice\n", d.mName.c_str());
        return 1;
      }
    }
    variables.push_back(std::make_unique<Variable>(name, 0.0));
    nameSpace.AddVariable(variables.back().get());
  }
  for (std::size_t i = 0; i < definitions.size() && status == 0; ++i) {
    const Definition& d = definitions[i];
    if (!variables[i]->SetVariableText(FromUtf8(d.mText), Units::NoUnits)) {
      if (messages.Flush("wycore eval: --var " + d.mName + ": ") == 0)
        std::fprintf(stderr, "wycore eval: --var %s: '%s' was refused\n", d.mName.c_str(),
                     d.mText.c_str());
      status = 1;
    }
  }

  // The units and kinds of an expression are fixed when it is parsed, from what the variables it
  // reads held then; a definition read before its own text was set held 0 without units. So the
  // texts are read once more, each after every definition it reads.
  if (status == 0) {
    for (const std::size_t i : DependencyOrder(variables)) {
      if (!variables[i]->SetVariableText(FromUtf8(definitions[i].mText), Units::NoUnits)) {
        messages.Flush("wycore eval: --var " + definitions[i].mName + ": ");
        status = 1;
        break;
      }
    }
  }

  if (status == 0) {
    // The key's values of --var definitions are in force while the expression is read and
    // evaluated.
    std::optional<VariableValuesContext> variation;
    if (keyServer != nullptr) {
      VariableValues assigned;
      (void)VariableValues::ResolveVariationKey(assigned, keyServer->GetKey(), nameSpace, false);
      variation.emplace(assigned);
    }
    std::unique_ptr<Expression> expression;
    try {
      ExpressionParser parser(true, NumberReader::DefaultWhiteSpace());
      expression.reset(parser.Parse(FromUtf8(expressionText), Units::NoUnits, true, nullptr));
    } catch (int code) {
      if (messages.Flush("wycore eval: ") == 0)
        std::fprintf(stderr, "wycore eval: the expression does not parse (message %d)\n", code);
      status = 1;
    }
    if (expression != nullptr) {
      const std::string value = ValueLine(*expression);
      std::printf("%s\n%s\n", value.c_str(), TextLine(*expression).c_str());
      // What functions reported while evaluating (a domain error, say) goes to standard error.
      messages.Flush("wycore eval: ");
    }
  }

  // The variables' expressions read one another: drop those references before the variables go.
  for (auto& v : variables) v->SetValueBase(new FloatValue(0.0));
  variables.clear();
  return status;
}

}  // namespace

int RunEval(const Args& args) {
  std::string expressionText;
  bool haveExpression = false;
  std::vector<Definition> definitions;
  std::optional<std::string> key;
  for (std::size_t i = 0; i < args.size(); ++i) {
    std::string definition;
    if (args[i] == "--key" || args[i].rfind("--key=", 0) == 0) {
      if (key.has_value()) return UsageError(EvalVerb(), "more than one --key");
      if (args[i] == "--key") {
        if (i + 1 >= args.size()) return UsageError(EvalVerb(), "--key needs a variation key");
        key = args[++i];
      } else {
        key = args[i].substr(6);
      }
      continue;
    }
    if (args[i] == "--var") {
      if (i + 1 >= args.size()) return UsageError(EvalVerb(), "--var needs NAME=EXPR");
      definition = args[++i];
    } else if (args[i].rfind("--var=", 0) == 0) {
      definition = args[i].substr(6);
    } else if (args[i].size() > 1 && args[i][0] == '-' && args[i][1] == '-') {
      return UsageError(EvalVerb(), "unknown option '" + args[i] + "'");
    } else {
      if (haveExpression) return UsageError(EvalVerb(), "more than one expression");
      expressionText = args[i];
      haveExpression = true;
      continue;
    }
    const std::size_t equals = definition.find('=');
    if (equals == std::string::npos || equals == 0)
      return UsageError(EvalVerb(), "--var needs NAME=EXPR, got '" + definition + "'");
    Definition d{definition.substr(0, equals), definition.substr(equals + 1)};
    if (!FromUtf8(d.mName).IsLabel())
      return UsageError(EvalVerb(), "'" + d.mName + "' is not a variable name");
    definitions.push_back(std::move(d));
  }
  if (!haveExpression) return UsageError(EvalVerb(), "expected EXPR");

  Units::InitializeUnits(nullptr);
  Value::InitializeValues();
  const int status = Evaluate(expressionText, definitions, key);
  Value::UnInitializeValues();
  Units::UnInitializeUnits();
  return status;
}

}  // namespace wycore::tool
