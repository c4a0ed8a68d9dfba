// SPDX-License-Identifier: Apache-2.0
//
// ValueTextGenerator.cpp - expression text from the expression tree, and the strategies that
// decide how operands are written.
#include "wycore/variables/ValueTextGenerator.h"

#include <cmath>
#include <memory>

#include "wycore/core/Check.h"
#include "wycore/units/UnitDefinition.h"
#include "wycore/units/UnitManager.h"
#include "wycore/units/Units.h"
#include "wycore/value/Expression.h"
#include "wycore/value/Value.h"
#include "wycore/value/VariableReferenceValue.h"
#include "wycore/variables/Function.h"
#include "wycore/variables/ValueFormatContext.h"
#include "wycore/variables/Variable.h"

namespace {

// The units' name written after a number, or empty (no units, unknown code, no manager).
AString UnitName(Units::FullUnitType units) {
  if (!Units::IsInitialized()) return AString();
  const UnitDefinition* unit = Units::FindUnitDef(units);
  return unit != nullptr ? unit->GetUnitString() : AString();
}

// A number without units in the default double format.
AString BareNumber(double si, Units::FullUnitType units) {
  AString out;
  if (!Units::IsInitialized()) return out;
  if (Units::FindUnitDef(units) == nullptr) units = Units::NoUnits;
  Units::FloatToText(si, units, out, Units::GetDefaultDoubleFormat(), false);
  return out;
}

bool IsComparison(Operation op) { return op >= kEqualOp && op <= kGreaterEqualOp; }

// Whether one rank is that of negation or "!" and the other that of "^".
bool IsUnaryAgainstPower(int a, int b) { return (a == 6 && b == 7) || (a == 7 && b == 6); }

// Values write their units while text is generated; the previous setting comes back after.
class MustWriteUnitsScope {
 public:
  MustWriteUnitsScope() : mActive(Units::IsInitialized()) {
    if (mActive) mPrevious = Units::SetMustWriteUnits(true);
  }
  ~MustWriteUnitsScope() {
    if (mActive) Units::SetMustWriteUnits(mPrevious);
  }
  MustWriteUnitsScope(const MustWriteUnitsScope&) = delete;
  MustWriteUnitsScope& operator=(const MustWriteUnitsScope&) = delete;

 private:
  bool mActive;
  bool mPrevious = true;
};

}  // namespace

// ---- ValueTextGeneratorStrategy --------------------------------------------------------------

AString ValueTextGeneratorStrategy::FormatReal(double si, Units::FullUnitType units) {
  AString out;
  if (!Units::IsInitialized()) return out;
  if (Units::FindUnitDef(units) == nullptr) units = Units::NoUnits;
  Units::FloatToText(si, units, out, Units::GetDefaultDoubleFormat(), true);
  return out;
}

namespace {

// A unit converted by a function with an offset (the temperatures) cannot carry a complex
// number through text: the parser converts both parts, so "2j cel" gains a real part of 273.15 K
// and its text would grow on every regeneration. Such a number is written in the unit of its type
// whose conversion is the identity (for temperatures "kel"), which reads back exactly.
Units::FullUnitType UnitForComplexText(Units::FullUnitType units) {
  const UnitDefinition* def = Units::FindUnitDef(units);
  if (def == nullptr || def->HasSimpleFactorConversion()) return units;
  const UnitManager* manager = Units::GetUnitManager();
  if (manager == nullptr) return Units::NoUnits;
  for (Units::FullUnitType candidate : manager->GetFUTList(def->GetUnitType())) {
    const UnitDefinition* other = Units::FindUnitDef(candidate);
    if (other != nullptr && other->ConvertToSI(0.0) == 0.0 && other->ConvertToSI(1.0) == 1.0 &&
        other->ConvertToSI(2.0) == 2.0) {
      return candidate;
    }
  }
  return Units::NoUnits;
}

}  // namespace

AString ValueTextGeneratorStrategy::FormatComplex(const AComplex<double>& si,
                                                  Units::FullUnitType units) {
  if (!Units::IsInitialized()) return AString();
  units = UnitForComplexText(units);
  const AString unitName = UnitName(units);
  const double imaginary = si.imag();
  const bool negative = !std::isnan(imaginary) && std::signbit(imaginary);
  // The magnitude of the imaginary part, "j" appended. "infj" and "nanj" would read as names;
  // the legacy spellings read back as numbers.
  AString magnitude;
  if (std::isnan(imaginary)) {
    magnitude = u"1.#IND";
  } else if (std::isinf(imaginary)) {
    magnitude = u"1.#INF";
  } else {
    magnitude = BareNumber(std::fabs(imaginary), units);
  }
  magnitude += u'j';
  if (!unitName.empty()) {
    magnitude += u' ';
    magnitude += unitName;
  }
  if (si.real() == 0.0) {
    // What the parser makes of "2j": a complex constant with real part 0.
    AString out = negative ? AString(u"-") : AString();
    out += magnitude;
    return out;
  }
  AString out(u"(");
  out += FormatReal(si.real(), units);
  out += negative ? u" - " : u" + ";
  out += magnitude;
  out += u')';
  return out;
}

void ValueTextGeneratorStrategy::DoubleValueToString(AString& out, const ValueBase& value) {
  out = FormatReal(value.GetValue(), value.GetUnits());
}

void ValueTextGeneratorStrategy::ComplexValueToString(AString& out, const ValueBase& value) {
  out = FormatComplex(value.GetComplexValue(), value.GetUnits());
}

void ValueTextGeneratorStrategy::GeometryValueToString(AString& out, const ValueBase& value) {
  out = value.GetValueText();
}

void ValueTextGeneratorStrategy::DatasetValueToString(AString& out, const ValueBase& value) {
  out = value.GetValueText();
}

void ValueTextGeneratorStrategy::MatrixValueToString(AString& out, const ValueBase& value) {
  out = value.GetValueText();
}

void ValueTextGeneratorStrategy::StringValueToString(AString& out, const ValueBase& value) {
  out = value.GetValueText();
}

void ValueTextGeneratorStrategy::ArrayValueToString(AString& out, const ValueBase& value) {
  out = value.GetValueText();
}

void ValueTextGeneratorStrategy::VariableToString(AString& out, Operation&,
                                                  const Variable& variable) {
  out = variable.GetName();
}

bool ValueTextGeneratorStrategy::DoOverrideFunctionAndArgs(AString&, std::vector<AString>&,
                                                           const AString&,
                                                           const std::vector<AString>&) {
  return false;
}

void ValueTextGeneratorStrategy::RegisterFunctionCall(const Function*, const AString&,
                                                      const std::vector<AString>&) {}

void ValueTextGeneratorStrategy::SetupBinaryOperationParenthesizer(Operation) {}

void ValueTextGeneratorStrategy::RegisterOperandTexts(Operation, const AString&, const AString&) {}

bool ValueTextGeneratorStrategy::MustParenthesize(Operation, bool) { return false; }

void ValueTextGeneratorStrategy::ValueToString(AString& out, const ValueBase& value) {
  out.clear();
  switch (value.GetParameterType()) {
    case val::kDoubleParam:
    case val::kIntParam:
    case val::kCharParam:
    case val::kEnumParam:
      DoubleValueToString(out, value);
      return;
    case val::kComplexParam:
      ComplexValueToString(out, value);
      return;
    case val::kCircleParam:
    case val::kArcParam:
    case val::kRegionParam:
      GeometryValueToString(out, value);
      return;
    case val::kDatasetParam:
    case val::kDynamicDoubleDoubleDatasetParam:
    case val::kDynamicDoubleComplexDatasetParam:
      DatasetValueToString(out, value);
      return;
    case val::kDoubleMatrixParam:
    case val::kComplexMatrixParam:
    case val::kStringMatrixParam:
      MatrixValueToString(out, value);
      return;
    case val::kStringParam:
      StringValueToString(out, value);
      return;
    case val::kTextStringArrayParam:
    case val::kDoubleArrayParam:
      ArrayValueToString(out, value);
      return;
    case val::kNotParam:
      out = value.GetValueText();
      return;
  }
  out = value.GetValueText();
}

void ValueTextGeneratorStrategy::ValueBaseToEvaluatedString(AString& out, const ValueBase& value) {
  out.clear();
  switch (value.GetParameterType()) {
    case val::kDoubleParam:
    case val::kIntParam:
    case val::kCharParam:
    case val::kEnumParam:
      out = FormatReal(value.GetValue(), value.GetUnits());
      return;
    case val::kComplexParam:
      out = FormatComplex(value.GetComplexValue(), value.GetUnits());
      return;
    default:
      break;  // every other kind writes its evaluated value
  }
  const std::unique_ptr<ValueBase> evaluated(value.CreateEvaluatedValueBase());
  if (evaluated != nullptr) ValueToString(out, *evaluated);
}

// ---- SimpleValueTextGeneratorStrategy ----------------------------------------------------------

Units::FullUnitType SimpleValueTextGeneratorStrategy::GetDefaultFullUnitTypeForFormatting(
    const ValueBase& value) const {
  const Units::FullUnitType units = value.GetUnits();
  if (!Units::IsInitialized() || units == Units::NoUnits || Units::FindUnitDef(units) == nullptr)
    return units;
  const Units::UnitType type = Units::ConvertToUnitType(units);
  if (type == Units::NoUnit) return units;
  const Units::FullUnitType chosen = Units::GetDefaultUnits(type);
  return Units::FindUnitDef(chosen) != nullptr ? chosen : units;
}

void SimpleValueTextGeneratorStrategy::DoubleValueToString(AString& out, const ValueBase& value) {
  out = FormatReal(value.GetValue(), GetDefaultFullUnitTypeForFormatting(value));
}

void SimpleValueTextGeneratorStrategy::ComplexValueToString(AString& out, const ValueBase& value) {
  out = FormatComplex(value.GetComplexValue(), GetDefaultFullUnitTypeForFormatting(value));
}

// ---- UnrollingValueTextGeneratorStrategy -------------------------------------------------------

bool UnrollingValueTextGeneratorStrategy::DoUnroll(const Variable& variable) const {
  // The manager's own variables stand for quantities the solver or the constant table supplies;
  // their contents are not what the user wrote.
  const AString& name = variable.GetName();
  if (Value::GetValueManager() == nullptr) return true;
  return Value::GetConstantVariable(name) != &variable &&
         Value::GetIntrinsicVariable(name) != &variable &&
         Value::GetPredefinedVariable(name) != &variable;
}

const ValueBase& UnrollingValueTextGeneratorStrategy::GetNestedValueBase(
    const Variable& variable) const {
  return variable.GetValueBase();
}

void UnrollingValueTextGeneratorStrategy::VariableToString(AString& out, Operation& textOperation,
                                                           const Variable& variable) {
  // An array element needs the array's name; too deep a chain keeps its names.
  if (textOperation == kDoubleArrayOp || textOperation == kTextStringArrayOp ||
      mDepth >= kMaxUnrollDepth || !DoUnroll(variable)) {
    ValueTextGeneratorStrategy::VariableToString(out, textOperation, variable);
    return;
  }
  const ValueBase& nested = GetNestedValueBase(variable);
  ++mDepth;
  if (const auto* expression = dynamic_cast<const Expression*>(&nested)) {
    ValueTextGenerator generator(this);
    AString text;
    if (generator.GenerateText(*expression, text)) {
      out = std::move(text);
      textOperation = generator.GetTopOperation();
    } else {
      ValueTextGeneratorStrategy::VariableToString(out, textOperation, variable);
    }
  } else if (const auto* inner = dynamic_cast<const Variable*>(&nested)) {
    VariableToString(out, textOperation, *inner);
  } else if (const auto* reference = dynamic_cast<const VariableReferenceValue*>(&nested)) {
    VariableToString(out, textOperation, *reference->GetVariable());
  } else {
    ValueToString(out, nested);
  }
  --mDepth;
}

// ---- OuterMostFunctionDetectorStrategy ---------------------------------------------------------

void OuterMostFunctionDetectorStrategy::RegisterFunctionCall(const Function* function,
                                                             const AString& name,
                                                             const std::vector<AString>& args) {
  RegisterLastFunctionAndArgs(function, name, args);
}

void OuterMostFunctionDetectorStrategy::RegisterOperandTexts(Operation, const AString&,
                                                             const AString&) {
  // An operator completed after a call has the call below it: the call is not outermost.
  ClearLastFunctionAndArgs();
}

void OuterMostFunctionDetectorStrategy::RegisterLastFunctionAndArgs(
    const Function* function, const AString& name, const std::vector<AString>& args) {
  mHasFunction = true;
  mFunction = function;
  mName = name;
  mArgs = args;
}

void OuterMostFunctionDetectorStrategy::ClearLastFunctionAndArgs() {
  mHasFunction = false;
  mFunction = nullptr;
  mName.clear();
  mArgs.clear();
}

bool OuterMostFunctionDetectorStrategy::GetOutermostFunction(const Function*& function,
                                                             AString& name,
                                                             std::vector<AString>& args) const {
  if (!mHasFunction) return false;
  function = mFunction;
  name = mName;
  args = mArgs;
  return true;
}

// ---- ComponentInstanceValueTextGeneratorStrategy -----------------------------------------------

ComponentInstanceValueTextGeneratorStrategy::ComponentInstanceValueTextGeneratorStrategy(
    const AString& oldInstanceName, const AString& newInstanceName)
    : mOldInstanceName(oldInstanceName), mNewInstanceName(newInstanceName) {}

std::size_t ComponentInstanceValueTextGeneratorStrategy::FindSubString(const AString& text,
                                                                       const AString& part,
                                                                       std::size_t from) {
  if (part.empty() || part.size() > text.size()) return AString::npos;
  for (std::size_t i = from; i + part.size() <= text.size(); ++i) {
    if (text.CompareNoCase(i, part.size(), part) == 0) return i;
  }
  return AString::npos;
}

void ComponentInstanceValueTextGeneratorStrategy::VariableToString(AString& out,
                                                                   Operation& textOperation,
                                                                   const Variable& variable) {
  ValueTextGeneratorStrategy::VariableToString(out, textOperation, variable);
  if (mOldInstanceName.empty()) return;
  AString qualifier = mOldInstanceName;
  qualifier += u'.';
  AString renamed;
  std::size_t done = 0;
  std::size_t found = FindSubString(out, qualifier, 0);
  while (found != AString::npos) {
    if (found == 0 || out[found - 1] == u'.') {
      renamed.append(out, done, found - done);
      renamed += mNewInstanceName;
      renamed += u'.';
      done = found + qualifier.size();
      found = FindSubString(out, qualifier, done);
    } else {
      found = FindSubString(out, qualifier, found + 1);
    }
  }
  renamed.append(out, done, AString::npos);
  out = std::move(renamed);
}

// ---- ValueTextGenerator ------------------------------------------------------------------------

ValueTextGenerator::ValueTextGenerator() : mStrategy(this) {}

ValueTextGenerator::ValueTextGenerator(IValueTextGeneratorStrategy* strategy)
    : mStrategy(strategy != nullptr ? strategy : this) {}

ValueTextGenerator::~ValueTextGenerator() = default;

int ValueTextGenerator::GetRank(Operation op) {
  switch (op) {
    case kAndOp:
    case kOrOp:
      return 1;
    case kEqualOp:
    case kNotEqualOp:
      return 2;
    case kLessOp:
    case kGreaterOp:
    case kLessEqualOp:
    case kGreaterEqualOp:
      return 3;
    case kPlusOp:
    case kMinusOp:
      return 4;
    case kMultiplyOp:
    case kDivideOp:
      return 5;
    case kUnaryMinusOp:
    case kNotOp:
      return 6;
    case kRaiseToPowerOp:
      return 7;
    default:
      return 8;  // operands, function calls, array elements
  }
}

const AString& ValueTextGenerator::GetOperatorText(Operation op) { return GetStringCodeForOp(op); }

ValueTextGenerator::Entry::~Entry() {
  std::unique_ptr<Entry> next = std::move(mWithoutNegation);
  while (next != nullptr) next = std::move(next->mWithoutNegation);
}

ValueTextGenerator::Entry ValueTextGenerator::Entry::Clone() const {
  Entry copy;
  copy.mOp = mOp;
  copy.mText = mText;
  Entry* to = &copy;
  for (const Entry* from = mWithoutNegation.get(); from != nullptr;
       from = from->mWithoutNegation.get()) {
    to->mWithoutNegation = std::make_unique<Entry>();
    to = to->mWithoutNegation.get();
    to->mOp = from->mOp;
    to->mText = from->mText;
  }
  return copy;
}

Operation ValueTextGenerator::EffectiveOperation(const Entry& entry) {
  // "-3" (a negative constant, or what a strategy wrote for a variable) reads like a negation:
  // without parentheses "(-3)^2" would come back as -(3^2), and "-(-3)" as the error "--3".
  if (GetRank(entry.mOp) == 8 && !entry.mText.empty() && entry.mText[0] == u'-')
    return kUnaryMinusOp;
  return entry.mOp;
}

bool ValueTextGenerator::ParenthesizeLHSArg(Operation parent, Operation child) {
  const int parentRank = GetRank(parent);
  const int childRank = GetRank(child);
  bool parenthesize = parentRank > childRank;
  if (parentRank == childRank && parentRank == 1) parenthesize = parent != child;
  if (mStrategy->ExchangesUnaryAndPowerBinding() && IsUnaryAgainstPower(parentRank, childRank))
    parenthesize = !parenthesize;
  if (!parenthesize) parenthesize = mStrategy->MustParenthesize(parent, parent == child);
  return parenthesize;
}

bool ValueTextGenerator::ParenthesizeRHSArg(Operation parent, Operation child) const {
  const int parentRank = GetRank(parent);
  const int childRank = GetRank(child);
  bool parenthesize = parentRank >= childRank;
  if (mStrategy->ExchangesUnaryAndPowerBinding() && IsUnaryAgainstPower(parentRank, childRank))
    parenthesize = !parenthesize;
  // Where the parser groups otherwise than the ranks say: "!" takes only its operand ("!a^2" is
  // (!a)^2), and the six comparisons share one level ("a==b < c" is (a==b) < c).
  if (parent == kNotOp && child == kRaiseToPowerOp) parenthesize = true;
  if (IsComparison(parent) && IsComparison(child)) parenthesize = true;
  return parenthesize;
}

ValueTextGenerator::Entry ValueTextGenerator::Pop() {
  if (!WY_CHECK(!mStack.empty())) return Entry{};
  Entry entry = std::move(mStack.back());
  mStack.pop_back();
  return entry;
}

void ValueTextGenerator::ProcessDataOp(Operation op, const ValueBase* value, DataMethod method) {
  Entry entry;
  entry.mOp = op;
  if (WY_CHECK(value != nullptr)) {
    if (const auto* reference = dynamic_cast<const VariableReferenceValue*>(value)) {
      if (WY_CHECK(reference->GetVariable() != nullptr))
        mStrategy->VariableToString(entry.mText, entry.mOp, *reference->GetVariable());
    } else if (const auto* variable = dynamic_cast<const Variable*>(value)) {
      mStrategy->VariableToString(entry.mText, entry.mOp, *variable);
    } else {
      (mStrategy->*method)(entry.mText, *value);
    }
  }
  // A negative number (or a strategy's text that starts with a negation of the whole): without
  // its "-" it is an operand of its own ("(a + b)" after "-" is one too). A "^" whose text starts
  // with "-" (exchange switch) is not negated as a whole and has no such form.
  const int rank = GetRank(entry.mOp);
  if (!entry.mText.empty() && entry.mText[0] == u'-' && rank != 7 && rank >= 5) {
    Entry without;
    without.mOp = rank == 6 ? kDoubleOp : entry.mOp;
    without.mText = entry.mText.substr(1);
    entry.mWithoutNegation = std::make_unique<Entry>(std::move(without));
  }
  mStack.push_back(std::move(entry));
}

ValueTextGenerator::Entry ValueTextGenerator::RenderBinary(Operation op, Entry left, Entry right,
                                                           bool notify) {
  bool rightParentheses = ParenthesizeRHSArg(op, EffectiveOperation(right));
  Operation written = op;
  // "a + -b" is "a - b", and "a - -b" (which would not even read back) is "a + b"; a right
  // operand negated twice flips twice.
  while (!rightParentheses && (written == kPlusOp || written == kMinusOp) && !right.mText.empty() &&
         right.mText[0] == u'-' && right.mWithoutNegation != nullptr) {
    written = written == kPlusOp ? kMinusOp : kPlusOp;
    Entry inner = std::move(*right.mWithoutNegation);
    right = std::move(inner);
    rightParentheses = ParenthesizeRHSArg(written, EffectiveOperation(right));
  }
  const bool leftParentheses = ParenthesizeLHSArg(written, EffectiveOperation(left));
  if (notify) mStrategy->RegisterOperandTexts(written, left.mText, right.mText);

  // "-b*c" negated once less is "b*c": the product rebuilt from its left operand's form.
  // (Decided before the left text is moved into the result.)
  std::unique_ptr<Entry> withoutNegation;
  if (!leftParentheses && (written == kMultiplyOp || written == kDivideOp) &&
      left.mWithoutNegation != nullptr && !left.mText.empty() && left.mText[0] == u'-') {
    Entry leftWithout = std::move(*left.mWithoutNegation);
    left.mWithoutNegation.reset();
    withoutNegation = std::make_unique<Entry>(
        RenderBinary(written, std::move(leftWithout), right.Clone(), false));
  }

  Entry result;
  result.mOp = written;
  result.mWithoutNegation = std::move(withoutNegation);
  const AString& opText = GetOperatorText(written);
  // The left text is taken over, not copied, so that a long chain "a + b + c + ..." costs time
  // in proportion to its length.
  AString& text = result.mText;
  if (leftParentheses) {
    text.reserve(left.mText.size() + opText.size() + right.mText.size() + 4);
    text += u'(';
    text += left.mText;
    text += u')';
  } else {
    text = std::move(left.mText);
  }
  text += opText;
  if (rightParentheses) text += u'(';
  text += right.mText;
  if (rightParentheses) text += u')';
  return result;
}

void ValueTextGenerator::ProcessBinaryOp(Operation op) {
  mStrategy->SetupBinaryOperationParenthesizer(op);
  Entry right = Pop();
  Entry left = Pop();
  mStack.push_back(RenderBinary(op, std::move(left), std::move(right), true));
}

void ValueTextGenerator::ProcessUnaryOp(Operation op) {
  Entry operand = Pop();
  const bool parentheses = ParenthesizeRHSArg(op, EffectiveOperation(operand));
  Entry result;
  result.mOp = op;
  result.mText = GetOperatorText(op);
  if (parentheses) result.mText += u'(';
  result.mText += operand.mText;
  if (parentheses) result.mText += u')';
  mStrategy->RegisterOperandTexts(op, AString(), operand.mText);
  // A negation without its "-" is its operand, as that is written on its own.
  if (op == kUnaryMinusOp) result.mWithoutNegation = std::make_unique<Entry>(std::move(operand));
  mStack.push_back(std::move(result));
}

bool ValueTextGenerator::GenerateText(const Expression& expression, AString& out) {
  return GenerateText(expression.GetOperations(), expression.GetValues(),
                      expression.GetFunctionCalls(), out);
}

bool ValueTextGenerator::GenerateText(const std::vector<Operation>& operations,
                                      const std::vector<ValueBase*>& values,
                                      const std::vector<FunctionCall>& functionCalls,
                                      AString& out) {
  out.clear();
  mStack.clear();
  mFunctionMarks.clear();
  mTopOperation = kNoOp;
  bool walked = false;
  {
    const MustWriteUnitsScope units;
    ExpressionASTWalker walker(operations, values, functionCalls);
    walked = walker.Walk(*this);
  }
  if (!walked || !WY_CHECK(mStack.size() == 1)) {
    mStack.clear();
    mFunctionMarks.clear();
    return false;
  }
  mTopOperation = mStack.back().mOp;
  out = std::move(mStack.back().mText);
  // A complex constant with a real part is written as "(re + imj)" so that it stays one operand
  // inside a larger expression; standing alone it needs no parentheses, and keeping them would
  // make the text change when it is read back (as a sum) and written again.
  if (mTopOperation == kComplexOp && out.size() > 2 && out.front() == u'(' && out.back() == u')') {
    out = out.substr(1, out.size() - 2);
  }
  mStack.clear();
  return true;
}

// ---- Walker callbacks --------------------------------------------------------------------------

void ValueTextGenerator::OnDoubleOp(const val::ASTPosition&, const ValueBase* value) {
  ProcessDataOp(kDoubleOp, value, &IValueTextGeneratorStrategy::DoubleValueToString);
}
void ValueTextGenerator::OnComplexOp(const val::ASTPosition&, const ValueBase* value) {
  ProcessDataOp(kComplexOp, value, &IValueTextGeneratorStrategy::ComplexValueToString);
}
void ValueTextGenerator::OnCircleOp(const val::ASTPosition&, const ValueBase* value) {
  ProcessDataOp(kCircleOp, value, &IValueTextGeneratorStrategy::GeometryValueToString);
}
void ValueTextGenerator::OnArcOp(const val::ASTPosition&, const ValueBase* value) {
  ProcessDataOp(kArcOp, value, &IValueTextGeneratorStrategy::GeometryValueToString);
}
void ValueTextGenerator::OnRegionOp(const val::ASTPosition&, const ValueBase* value) {
  ProcessDataOp(kRegionOp, value, &IValueTextGeneratorStrategy::GeometryValueToString);
}
void ValueTextGenerator::OnDatasetOp(const val::ASTPosition&, const ValueBase* value) {
  ProcessDataOp(kDatasetOp, value, &IValueTextGeneratorStrategy::DatasetValueToString);
}
void ValueTextGenerator::OnDoubleMatrixOp(const val::ASTPosition&, const ValueBase* value) {
  ProcessDataOp(kDoubleMatrixOp, value, &IValueTextGeneratorStrategy::MatrixValueToString);
}
void ValueTextGenerator::OnComplexMatrixOp(const val::ASTPosition&, const ValueBase* value) {
  ProcessDataOp(kComplexMatrixOp, value, &IValueTextGeneratorStrategy::MatrixValueToString);
}
void ValueTextGenerator::OnStringOp(const val::ASTPosition&, const ValueBase* value) {
  ProcessDataOp(kStringOp, value, &IValueTextGeneratorStrategy::StringValueToString);
}
void ValueTextGenerator::OnStringMatrixOp(const val::ASTPosition&, const ValueBase* value) {
  ProcessDataOp(kStringMatrixOp, value, &IValueTextGeneratorStrategy::MatrixValueToString);
}
void ValueTextGenerator::OnDynamicDoubleDoubleDatasetOp(const val::ASTPosition&,
                                                        const ValueBase* value) {
  ProcessDataOp(kDynamicDoubleDoubleDatasetOp, value,
                &IValueTextGeneratorStrategy::DatasetValueToString);
}
void ValueTextGenerator::OnDynamicDoubleComplexDatasetOp(const val::ASTPosition&,
                                                         const ValueBase* value) {
  ProcessDataOp(kDynamicDoubleComplexDatasetOp, value,
                &IValueTextGeneratorStrategy::DatasetValueToString);
}
void ValueTextGenerator::OnIntOp(const val::ASTPosition&, const ValueBase* value) {
  ProcessDataOp(kIntOp, value, &IValueTextGeneratorStrategy::DoubleValueToString);
}
void ValueTextGenerator::OnCharOp(const val::ASTPosition&, const ValueBase* value) {
  ProcessDataOp(kCharOp, value, &IValueTextGeneratorStrategy::DoubleValueToString);
}
void ValueTextGenerator::OnEnumOp(const val::ASTPosition&, const ValueBase* value) {
  ProcessDataOp(kEnumOp, value, &IValueTextGeneratorStrategy::DoubleValueToString);
}
void ValueTextGenerator::OnTextStringArrayOp(const val::ASTPosition&, const ValueBase* value) {
  ProcessDataOp(kTextStringArrayOp, value, &IValueTextGeneratorStrategy::ArrayValueToString);
}
void ValueTextGenerator::OnDoubleArrayOp(const val::ASTPosition&, const ValueBase* value) {
  ProcessDataOp(kDoubleArrayOp, value, &IValueTextGeneratorStrategy::ArrayValueToString);
}

void ValueTextGenerator::OnUnaryMinusOp(const val::ASTPosition&, Operation op, Operation) {
  ProcessUnaryOp(op);
}
void ValueTextGenerator::OnNotOp(const val::ASTPosition&, Operation op, Operation) {
  ProcessUnaryOp(op);
}
void ValueTextGenerator::OnEqualOp(const val::ASTPosition&, Operation op, Operation) {
  ProcessBinaryOp(op);
}
void ValueTextGenerator::OnNotEqualOp(const val::ASTPosition&, Operation op, Operation) {
  ProcessBinaryOp(op);
}
void ValueTextGenerator::OnLessOp(const val::ASTPosition&, Operation op, Operation) {
  ProcessBinaryOp(op);
}
void ValueTextGenerator::OnGreaterOp(const val::ASTPosition&, Operation op, Operation) {
  ProcessBinaryOp(op);
}
void ValueTextGenerator::OnLessEqualOp(const val::ASTPosition&, Operation op, Operation) {
  ProcessBinaryOp(op);
}
void ValueTextGenerator::OnGreaterEqualOp(const val::ASTPosition&, Operation op, Operation) {
  ProcessBinaryOp(op);
}
void ValueTextGenerator::OnAndOp(const val::ASTPosition&, Operation op, Operation) {
  ProcessBinaryOp(op);
}
void ValueTextGenerator::OnOrOp(const val::ASTPosition&, Operation op, Operation) {
  ProcessBinaryOp(op);
}
void ValueTextGenerator::OnPlusOp(const val::ASTPosition&, Operation op, Operation) {
  ProcessBinaryOp(op);
}
void ValueTextGenerator::OnMinusOp(const val::ASTPosition&, Operation op, Operation) {
  ProcessBinaryOp(op);
}
void ValueTextGenerator::OnMultiplyOp(const val::ASTPosition&, Operation op, Operation) {
  ProcessBinaryOp(op);
}
void ValueTextGenerator::OnDivideOp(const val::ASTPosition&, Operation op, Operation) {
  ProcessBinaryOp(op);
}
void ValueTextGenerator::OnRaiseToPowerOp(const val::ASTPosition&, Operation op, Operation) {
  ProcessBinaryOp(op);
}

void ValueTextGenerator::OnArrayIndexOpStart(const val::ASTPosition&) {}
void ValueTextGenerator::OnArrayIndexOpEnd(const val::ASTPosition&) {}

void ValueTextGenerator::OnArrayDereferenceOp(const val::ASTPosition&, Operation) {
  Entry index = Pop();
  Entry array = Pop();
  AString text = array.mText;
  text += GetStringCodeForOp(kArrayIndexStartOp);
  text += index.mText;
  text += GetStringCodeForOp(kArrayIndexEndOp);
  Entry result;
  result.mOp = kArrayDereferenceOp;
  result.mText = std::move(text);
  mStack.push_back(std::move(result));
  mStrategy->RegisterOperandTexts(kArrayDereferenceOp, array.mText, index.mText);
}

void ValueTextGenerator::OnStartFunctionOp(const val::ASTPosition&, const Function*) {
  mFunctionMarks.push_back(mStack.size());
}

void ValueTextGenerator::OnStartFunctionArg(const val::ASTPosition&) {}
void ValueTextGenerator::OnEndFunctionArg(const val::ASTPosition&) {}

void ValueTextGenerator::OnEndFunctionOp(const val::ASTPosition& position,
                                         const Function* function) {
  std::size_t mark = mStack.size();
  if (WY_CHECK(!mFunctionMarks.empty())) {
    mark = mFunctionMarks.back();
    mFunctionMarks.pop_back();
  }
  WY_CHECK(mStack.size() - mark == static_cast<std::size_t>(position.mArgumentCount));
  std::vector<AString> givenArgs;
  givenArgs.reserve(mStack.size() - mark);
  for (std::size_t i = mark; i < mStack.size(); ++i)
    givenArgs.push_back(std::move(mStack[i].mText));
  mStack.resize(mark);
  const AString givenName = function != nullptr ? function->GetName() : AString();

  AString name;
  std::vector<AString> args;
  if (!mStrategy->DoOverrideFunctionAndArgs(name, args, givenName, givenArgs)) {
    name = givenName;
    args = std::move(givenArgs);
  }
  AString text = name;
  text += u'(';
  for (std::size_t i = 0; i < args.size(); ++i) {
    if (i > 0) text += u", ";
    text += args[i];
  }
  text += u')';
  Entry result;
  result.mOp = kFunctionOp;
  result.mText = std::move(text);
  mStack.push_back(std::move(result));
  mStrategy->RegisterFunctionCall(function, name, args);
}

// ---- QueryOutermostFunction --------------------------------------------------------------------

bool QueryOutermostFunction::IsFirstOpFunction(const Expression& expression) {
  const std::vector<Operation>& operations = expression.GetOperations();
  return operations.size() > 1 && operations[0] == kStartOfExpressionOp &&
         operations[1] == kFunctionOp;
}

const Function* QueryOutermostFunction::GetFunctionIfNoTrailingOps(const Expression& expression) {
  if (!IsFirstOpFunction(expression)) return nullptr;
  const std::vector<Operation>& operations = expression.GetOperations();
  const std::vector<FunctionCall>& calls = expression.GetFunctionCalls();
  if (calls.empty() || calls.front().mOperationIndex != 1) return nullptr;
  const int last = calls.front().mArguments.empty() ? 1 : calls.front().mArguments.back().second;
  if (last < 1) return nullptr;
  const std::size_t end = static_cast<std::size_t>(last) + 1;
  if (end + 1 != operations.size() || operations[end] != kEndOfExpressionOp) return nullptr;
  return calls.front().mFunction;
}

bool QueryOutermostFunction::IsExpressionSingleValued(const Expression& expression) {
  return expression.IsSingleValued() || GetFunctionIfNoTrailingOps(expression) != nullptr;
}

bool QueryOutermostFunction::Visit(const Expression& expression) {
  mFunction = nullptr;
  mName.clear();
  mArgs.clear();
  if (!IsExpressionSingleValued(expression)) return false;
  const Function* function = GetFunctionIfNoTrailingOps(expression);
  if (function == nullptr) return false;
  OuterMostFunctionDetectorStrategy detector;
  ValueTextGenerator generator(&detector);
  AString text;
  if (!generator.GenerateText(expression, text)) return false;
  const Function* found = nullptr;
  if (!detector.GetOutermostFunction(found, mName, mArgs) || found != function) {
    mName.clear();
    mArgs.clear();
    return false;
  }
  mFunction = found;
  return true;
}

// ---- ValueFormatContext ------------------------------------------------------------------------

IValueTextGeneratorStrategy* io::globalmanip::ValueFormatContext::m_pStrategy = nullptr;
