// SPDX-License-Identifier: Apache-2.0
//
// ExpressionParser.cpp - recursive descent over the raw text, the unit rules, and the reporting
// of parse errors.
//
// Every grammar level is a loop over its operators; each operand leaves exactly one ValueState
// on mValueStates and each operator replaces its operands' states by the state of its result,
// so that at the end exactly one state (the result's) remains. Errors are raised where they are
// found: the message is posted, then the integer code is thrown out of Parse.
#include "wycore/value/ExpressionParser.h"

#include <cwctype>
#include <memory>
#include <utility>

#include "wycore/core/Check.h"
#include "wycore/core/DebugLog.h"
#include "wycore/core/Messages.h"
#include "wycore/units/NumberReader.h"
#include "wycore/units/UnitDefinition.h"
#include "wycore/value/ComplexValue.h"
#include "wycore/value/DatasetValue.h"
#include "wycore/value/Expression.h"
#include "wycore/value/FloatValue.h"
#include "wycore/value/Value.h"
#include "wycore/value/VariableReferenceValue.h"
#include "wycore/variables/Function.h"
#include "wycore/variables/ValueParser.h"
#include "wycore/variables/Variable.h"

namespace {

bool gDefaultAllowArrayDerefSyntax = true;

constexpr int kMessageCode = 24464;  // the code under which every parse message is reported

bool IsLetter(AChar c) { return c != 0 && std::iswalpha(static_cast<wint_t>(c)) != 0; }
bool IsDigit(AChar c) { return c >= u'0' && c <= u'9'; }
bool IsUnitNameChar(AChar c) { return IsLetter(c) || IsDigit(c) || c == u'_'; }

const ValueState kUnitlessReal(Units::NoUnits, Units::NoUnit, val::kDBAmplitude, val::kDoubleParam);

// The units part of a state made unitless by a combination the unit rules cannot express.
void DropUnits(ValueState& state) {
  state.mUnits = Units::NoUnits;
  state.mUnitType = Units::NoUnit;
  state.mDBType = val::kDBUnknown;
}

// The kinds the evaluator computes with: arithmetic, negation and equality take these only.
bool IsNumberKind(val::ParameterType kind) {
  return kind == val::kDoubleParam || kind == val::kComplexParam;
}

bool IsDatasetKind(val::ParameterType kind) {
  return kind == val::kDatasetParam || kind == val::kDynamicDoubleDoubleDatasetParam ||
         kind == val::kDynamicDoubleComplexDatasetParam;
}

}  // namespace

// Bounds the recursion of one parse: every (sub-)expression (the whole text, a parenthesis, a
// call argument, an array index) and every prefix "-" or "!" in front of a primary counts one
// level.
class ExpressionParser::DepthGuard {
 public:
  explicit DepthGuard(ExpressionParser& parser) : mParser(parser) {
    if (mParser.mDepth >= kMaxNestingDepth) mParser.Raise(24488);
    ++mParser.mDepth;
  }
  DepthGuard(const DepthGuard&) = delete;
  DepthGuard& operator=(const DepthGuard&) = delete;
  ~DepthGuard() { --mParser.mDepth; }

 private:
  ExpressionParser& mParser;
};

// ---- Construction ------------------------------------------------------------------------

ExpressionParser::ExpressionParser(bool allowExplicitUnits, const AString& whiteSpace)
    : mWhiteSpace(whiteSpace),
      m_bAllowArrayDerefSyntax(gDefaultAllowArrayDerefSyntax),
      mAllowExplicitUnits(allowExplicitUnits) {}

// A copy takes the settings, not the state of a parse in progress.
ExpressionParser::ExpressionParser(const ExpressionParser& other)
    : mWhiteSpace(other.mWhiteSpace),
      m_bAllowArrayDerefSyntax(other.m_bAllowArrayDerefSyntax),
      mAllowExplicitUnits(other.mAllowExplicitUnits),
      mValueParser(other.mValueParser),
      mHookOverride(other.mHookOverride),
      mReportErrors(other.mReportErrors) {}

ExpressionParser::~ExpressionParser() = default;

bool ExpressionParser::SetDefaultAllowArrayDerefSyntax(bool allow) {
  const bool previous = gDefaultAllowArrayDerefSyntax;
  gDefaultAllowArrayDerefSyntax = allow;
  return previous;
}

void ExpressionParser::Reset() {
  mValueStates.clear();
  mCurrentName.clear();
  mContext = ExpressionParsingContext();
  mToken = kNoOp;
  mPreviousToken = kNoOp;
  mMissingOperandCode = 24534;
  mDepth = 0;
  mLastPrimaryWasNumber = false;
  mHasNonConstOrUnitedVariable = false;
  mHasNumberWithoutUnits = false;
  mCurrentNameIsAlien = false;
  mHasUnitsError = false;
  mExplicitUnits = Units::NoUnits;
}

// ---- The whole parse ---------------------------------------------------------------------

Expression* ExpressionParser::Parse(const AString& text, Units::FullUnitType units,
                                    bool applyFunctionModifications, int* errorOut) {
  if (errorOut != nullptr) *errorOut = 0;
  Reset();
  mText = text;
  mReadPointer = mText.c_str();
  mExpression = std::make_unique<Expression>(text);
  if (!mHookOverride) mValueParser = Value::GetValueParser();
  try {
    SkipWhiteSpace();
    if (*mReadPointer == 0) Raise(24534);
    mReadPointer = mText.c_str();

    Emit(kStartOfExpressionOp);
    mMissingOperandCode = 24534;
    GetToken();
    ParseExpression();
    Emit(kEndOfExpressionOp);
    if (mToken != kEndOfExpressionOp) {
      const AString& spelling = GetStringCodeForOp(mToken);
      const AString argument = spelling.empty() ? AString(u"Unexpected character")
                                                : AString(u"\"") + spelling + AString(u"\"");
      Raise(24487, &argument);
    }

    WY_CHECK(mValueStates.size() == 1);
    ValueState result = mValueStates.empty() ? ValueState() : mValueStates.back();
    if (mHasUnitsError) {
      result.mUnits = Units::NoUnits;
      result.mUnitType = Units::NoUnit;
    }
    Expression& expression = *mExpression;

    // A lone number written without units takes the caller's units, as the value readers do.
    if (units != Units::NoUnits && expression.IsSingleValued() && result.mUnits == Units::NoUnits) {
      const Units::FullUnitType resolved = Units::CalcFullUnitType(units, units);
      const UnitDefinition* unit = Units::FindUnitDef(resolved);
      ValueBase*& only = expression.mValues.front();
      if (unit != nullptr) {
        if (auto* real = dynamic_cast<FloatValue*>(only)) {
          real->Reset(unit->ConvertToSI(real->GetValue()), resolved);
          result = StateOfValue(*real);
        } else if (auto* complex = dynamic_cast<ComplexValue*>(only)) {
          const AComplex<double> z = complex->GetComplexValue();
          auto* converted = new ComplexValue(
              AComplex<double>(unit->ConvertToSI(z.real()), unit->ConvertToSI(z.imag())), resolved);
          delete only;
          only = converted;
          result = StateOfValue(*converted);
        }
      }
    }
    expression.mResultState = result;

    // Explicit units were refused with 24641 as they were read when they are not allowed.
    if (mExplicitUnits != Units::NoUnits && mAllowExplicitUnits) {
      expression.SetExplicitUnitsAndClearUnitsFromText(mExplicitUnits);
    }

    if (applyFunctionModifications && !expression.mFunctionCalls.empty()) {
      std::vector<const Function*> functions;
      functions.reserve(expression.mFunctionCalls.size());
      for (const FunctionCall& call : expression.mFunctionCalls) {
        functions.push_back(call.mFunction);
      }
      if (Value::ApplyFunctionModifications(functions)) {
        for (std::size_t i = 0; i < functions.size(); ++i) {
          expression.mFunctionCalls[i].mFunction = functions[i];
        }
      }
    }

    expression.RegisterWithValues();
    expression.RegenerateText();
  } catch (int code) {
    if (errorOut != nullptr) *errorOut = code;
    mExpression.reset();
    mValueStates.clear();
    throw;
  } catch (...) {
    // Only the integer codes of Raise are expected here; anything else (an external parser
    // that throws) is a programming error, turned into the general code of parse failures.
    WY_CHECK(!"Unexpected error thrown when parsing expression.");
    if (errorOut != nullptr) *errorOut = kMessageCode;
    mExpression.reset();
    mValueStates.clear();
    throw kMessageCode;
  }
  return mExpression.release();
}

// ---- Tokens ------------------------------------------------------------------------------

bool ExpressionParser::IsWhiteSpace(AChar c) const {
  return c != 0 && mWhiteSpace.find(c) != AString::npos;
}

void ExpressionParser::SkipWhiteSpace() {
  while (IsWhiteSpace(*mReadPointer)) ++mReadPointer;
}

bool ExpressionParser::IsNameCharacter(AChar c) const {
  return IsLetter(c) || IsDigit(c) || c == u'_';
}

bool ExpressionParser::IsAlienCharacter(AChar c) const {
  if (c == 0 || IsWhiteSpace(c)) return false;
  if (mValueParser != nullptr) return mValueParser->IsNameCharacter(c);
  return c == u'.';
}

void ExpressionParser::ReadName(bool allowAlien) {
  const AChar* start = mReadPointer;
  const AChar* q = start + 1;  // the first character ("_", "$" or a letter) is already known
  mCurrentNameIsAlien = false;
  while (*q != 0) {
    if (IsNameCharacter(*q)) {
      ++q;
    } else if (*q == u'[' && m_bAllowArrayDerefSyntax) {
      break;
    } else if (allowAlien && IsAlienCharacter(*q)) {
      mCurrentNameIsAlien = true;
      ++q;
    } else {
      break;
    }
  }
  mCurrentName.assign(start, static_cast<std::size_t>(q - start));
  mReadPointer = q;
}

void ExpressionParser::GetToken() {
  SkipWhiteSpace();
  const AChar c = *mReadPointer;
  if (c == u'-') {
    // "--2" and "1 - -2" are refused: a second minus must be written "-(-2)".
    if (mPreviousToken == kMinusOp || mPreviousToken == kUnaryMinusOp) Raise(24494);
    ++mReadPointer;
    mToken = mPreviousToken = kUnaryMinusOp;
    return;
  }
  mPreviousToken = kNoOp;

  const AChar* p = mReadPointer;
  NumberReader::Number number;
  switch (NumberReader::Read(p, number, mWhiteSpace, true)) {
    case NumberReader::kNoNumber:
      break;
    case NumberReader::kUnknownUnit:
      mReadPointer = p - number.unitName.size();
      Raise(24507, &number.unitName);
    case NumberReader::kNumber: {
      mReadPointer = p;
      Units::FullUnitType units = Units::NoUnits;
      double scaled = number.value;
      double imaginaryOfZero = 0.0;
      if (number.unit != nullptr) {
        units = number.unit->GetFullUnitType();
        scaled = number.unit->ConvertToSI(number.value);
        imaginaryOfZero = number.unit->ConvertToSI(0.0);
      } else {
        mHasNumberWithoutUnits = true;
      }
      ValueBase* value = nullptr;
      if (number.isReal) {
        value = new FloatValue(scaled, units);
        mToken = kDoubleOp;
      } else {
        // Both parts go through the unit's conversion: the real part is a 0 written in it.
        value = new ComplexValue(AComplex<double>(imaginaryOfZero, scaled), units);
        mToken = kComplexOp;
      }
      PushValue(value, mToken, StateOfValue(*value));
      return;
    }
  }

  switch (c) {
    case 0:
      mToken = kEndOfExpressionOp;
      return;
    case u'!':
      ++mReadPointer;
      mToken = kNotOp;
      return;
    case u'(':
      ++mReadPointer;
      mToken = kLeftParenOp;
      return;
    case u'[':
      if (m_bAllowArrayDerefSyntax) {
        ++mReadPointer;
        mToken = kLeftBracketOp;
        return;
      }
      break;
    default:
      break;
  }
  if (IsLetter(c) || c == u'_' || c == u'$') {
    ReadName(true);
    mToken = kLabelOp;
    return;
  }
  RaiseChar(24497);
}

void ExpressionParser::GetOperator() {
  SkipWhiteSpace();
  const AChar c = *mReadPointer;
  const AChar next = c != 0 ? mReadPointer[1] : AChar(0);
  Operation op = kNoOp;
  int length = 1;
  switch (c) {
    case 0:
      op = kEndOfExpressionOp;
      length = 0;
      break;
    case u'!':
      if (next == u'=') op = kNotEqualOp, length = 2;
      break;
    case u'&':
      if (next == u'&') op = kAndOp, length = 2;
      break;
    case u')':
      op = kRightParenOp;
      break;
    case u'*':
      if (next == u'*') {
        op = kRaiseToPowerOp, length = 2;
      } else {
        op = kMultiplyOp;
      }
      break;
    case u'+':
      op = kPlusOp;
      break;
    case u',':
      op = kCommaOp;
      break;
    case u'-':
      op = kMinusOp;
      break;
    case u'/':
      op = kDivideOp;
      break;
    case u'<':
      if (next == u'=') {
        op = kLessEqualOp, length = 2;
      } else {
        op = kLessOp;
      }
      break;
    case u'=':
      if (next == u'=') op = kEqualOp, length = 2;
      break;
    case u'>':
      if (next == u'=') {
        op = kGreaterEqualOp, length = 2;
      } else {
        op = kGreaterOp;
      }
      break;
    case u']':
      op = kRightBracketOp;
      break;
    case u'^':
      op = kRaiseToPowerOp;
      break;
    case u'|':
      if (next == u'|') op = kOrOp, length = 2;
      break;
    default:
      break;
  }
  if (op == kNoOp) {
    if (TryExplicitUnits()) {
      mToken = kEndOfExpressionOp;
      mPreviousToken = kNoOp;
      return;
    }
    RaiseChar(24496);
  }
  mReadPointer += length;
  mToken = mPreviousToken = op;
}

bool ExpressionParser::TryExplicitUnits() {
  const AChar* p = mReadPointer;
  if (!IsLetter(*p)) return false;
  const AChar* start = p;
  while (IsUnitNameChar(*p)) ++p;
  const AString name(start, static_cast<std::size_t>(p - start));
  const UnitDefinition* unit = Units::FindUnitDef(name);
  if (unit == nullptr) return false;
  while (IsWhiteSpace(*p)) ++p;
  if (*p != 0) return false;
  if (!mAllowExplicitUnits) Raise(24641, &name);
  mExplicitUnits = unit->GetFullUnitType();
  mReadPointer = p;
  return true;
}

// ---- Grammar -----------------------------------------------------------------------------

void ExpressionParser::ParseExpression() {
  DepthGuard depth(*this);
  ParseComparison();
  while (mToken == kAndOp || mToken == kOrOp) {
    const Operation op = mToken;
    mMissingOperandCode = 24513;
    GetToken();
    ParseComparison();
    ApplyLogical(op);
  }
}

void ExpressionParser::ParseComparison() {
  ParseSum();
  while (mToken >= kEqualOp && mToken <= kGreaterEqualOp) {
    const Operation op = mToken;
    mMissingOperandCode = 24517;
    GetToken();
    ParseSum();
    ApplyComparison(op);
  }
}

void ExpressionParser::ParseSum() {
  ParseProduct();
  while (mToken == kPlusOp || mToken == kMinusOp) {
    const Operation op = mToken;
    mMissingOperandCode = 24505;
    GetToken();
    ParseProduct();
    ApplyBinary(op, false);
  }
}

void ExpressionParser::ParseProduct() {
  ParseFactor();
  while (mToken == kMultiplyOp || mToken == kDivideOp) {
    const Operation op = mToken;
    mMissingOperandCode = 24504;
    GetToken();
    ParseFactor();
    ApplyBinary(op, false);
  }
}

void ExpressionParser::ParseFactor() {
  bool negate = false;
  if (mToken == kUnaryMinusOp) {
    negate = true;
    mMissingOperandCode = 24534;
    GetToken();
  }
  const Mark operand = GetOperandMark();
  ParsePrimary();
  const bool operandWasNumber = mLastPrimaryWasNumber;
  bool sawPower = false;
  while (mToken == kRaiseToPowerOp) {
    sawPower = true;
    mMissingOperandCode = 24503;
    GetToken();
    bool negateExponent = false;
    if (mToken == kUnaryMinusOp) {
      negateExponent = true;
      mMissingOperandCode = 24534;
      GetToken();
    }
    const Mark exponent = GetOperandMark();
    ParsePrimary();
    // A minus after "^" belongs to the exponent alone: 2^-1 is 0.5.
    if (negateExponent) Negate(exponent, mLastPrimaryWasNumber);
    ApplyBinary(kRaiseToPowerOp, IsConstantOne(exponent));
  }
  // A leading minus applies to the whole power chain (-2^2 is -4); only a bare number is folded.
  if (negate) Negate(operand, operandWasNumber && !sawPower);
  mLastPrimaryWasNumber = false;
}

void ExpressionParser::ParsePrimary() {
  const bool isNumber = mToken == kDoubleOp || mToken == kComplexOp;
  switch (mToken) {
    case kDoubleOp:
    case kComplexOp:
      // GetToken has pushed the constant already.
      GetOperator();
      break;
    case kLeftParenOp: {
      mMissingOperandCode = 24534;
      GetToken();
      ParseExpression();
      if (mToken != kRightParenOp) Raise(24535);
      GetOperator();
      break;
    }
    case kUnaryMinusOp: {
      DepthGuard depth(*this);
      mMissingOperandCode = 24534;
      GetToken();
      const Mark operand = GetOperandMark();
      ParsePrimary();
      Negate(operand, mLastPrimaryWasNumber);
      break;
    }
    case kNotOp: {
      DepthGuard depth(*this);
      mMissingOperandCode = 24534;
      GetToken();
      ParsePrimary();
      ApplyNot();
      break;
    }
    case kLabelOp:
      ParseLabel();
      break;
    case kLeftBracketOp:
      Raise(24752);
    case kEndOfExpressionOp:
      Raise(mMissingOperandCode);
    default:
      RaiseChar(24497);
  }
  mLastPrimaryWasNumber = isNumber;
}

void ExpressionParser::Negate(const Mark& operand, bool canFold) {
  if (!WY_CHECK(mValueStates.size() > 0)) return;
  Expression& expression = *mExpression;
  // A minus directly in front of a real number is folded into the constant, stored negated.
  if (canFold && expression.mOperations.size() == operand.mOperations + 1 &&
      expression.mOperations.back() == kDoubleOp &&
      expression.mValues.size() == operand.mValues + 1) {
    if (auto* real = dynamic_cast<FloatValue*>(expression.mValues.back())) {
      // The minus belongs to the number as written, in its units: -10cel is 263.15 K, not
      // -283.15 K, for units with an offset.
      const Units::FullUnitType units = real->GetUnits();
      const double negated =
          units == Units::NoUnits
              ? -real->GetValue()
              : Units::ConvertToSI(-Units::ConvertFromSI(real->GetValue(), units), units);
      real->Reset(negated, units);
      return;
    }
  }
  const val::ParameterType kind = mValueStates.back().mKind;
  if (!IsNumberKind(kind)) Raise(24509, &GetStringCodeForOp(kUnaryMinusOp));
  Emit(kUnaryMinusOp);
  EmitKind(kind);
}

bool ExpressionParser::IsConstantOne(const Mark& exponent) const {
  const Expression& expression = *mExpression;
  if (expression.mOperations.size() != exponent.mOperations + 1) return false;
  if (expression.mOperations.back() != kDoubleOp) return false;
  if (expression.mValues.size() != exponent.mValues + 1) return false;
  const auto* real = dynamic_cast<const FloatValue*>(expression.mValues.back());
  return real != nullptr && val::AreNumbersEqual(real->GetValue(), 1.0);
}

void ExpressionParser::ApplyNot() {
  const ValueState operand = PopState();
  if (operand.mKind != val::kDoubleParam) Raise(24516, &GetStringCodeForOp(kNotOp));
  Emit(kNotOp);
  EmitKind(operand.mKind);
  mValueStates.push_back(kUnitlessReal);
}

// ---- Names -------------------------------------------------------------------------------

void ExpressionParser::ParseLabel() {
  const AString name = mCurrentName;
  const AChar* nameStart = mReadPointer - name.size();
  const bool alien = mCurrentNameIsAlien;
  SkipWhiteSpace();
  if (*mReadPointer == u'[' && m_bAllowArrayDerefSyntax) {
    ParseArrayIndex(name);
    return;
  }
  if (!alien) {
    ParseRegularLabel(name, nullptr);
    return;
  }

  // A name with characters beyond letters, digits and "_" ("a.b", or what the external parser
  // allows): the name with any "(...)" behind it is one unit for the variable resolution and
  // the external parser.
  AString full = name;
  const AChar* after = mReadPointer;
  if (*mReadPointer == u'(') {
    const AString call = ReadParenthesizedText();
    full += call;
    after = mReadPointer + call.size();
  }
  if (TryResolveAsValue(full) || TryExternalParser(full)) {
    mReadPointer = after;
    GetOperator();
    return;
  }
  AString line(u"WARNING: Tessaly extended label \"");
  line += full;
  line += u"\" failed to parse. Not displaying error and backtracking to continue regular parse\n";
  wycore::DebugLog(line);
  mReadPointer = nameStart;
  ReadName(false);
  const AString regular = mCurrentName;
  ParseRegularLabel(regular, &full);
}

void ExpressionParser::ParseRegularLabel(const AString& name, const AString* alienName) {
  SkipWhiteSpace();
  if (*mReadPointer != u'(') {
    if (IsDatasetExpectedHere() && TryResolveAsDataset(name)) {
      GetOperator();
      return;
    }
    if (TryResolveAsValue(name) || TryExternalParser(name)) {
      GetOperator();
      return;
    }
    if (alienName != nullptr) RaiseAlienFailure(*alienName);
    Raise(24506, &name);
  }
  if (name.CompareNoCase(AString(u"dataset")) == 0) {
    ParseDataset();
    return;
  }
  if (alienName != nullptr && !Value::FunctionExists(name)) RaiseAlienFailure(*alienName);
  ParseFunction(name);
}

void ExpressionParser::RaiseAlienFailure(const AString& alienName) const {
  AString text(u"Extended Tessaly-syntax variable resolution \"");
  text += alienName;
  text += u"\" also failed";
  RaiseWithText(24506, text, true);
}

AString ExpressionParser::ReadParenthesizedText() const {
  // From the "(" at the read pointer to its matching ")", both included; the rest of the text
  // when it has none.
  const AChar* p = mReadPointer;
  int depth = 0;
  do {
    if (*p == u'(') ++depth;
    if (*p == u')') --depth;
    ++p;
  } while (*p != 0 && depth > 0);
  return AString(mReadPointer, static_cast<std::size_t>(p - mReadPointer));
}

bool ExpressionParser::TryResolveAsValue(const AString& name) {
  Variable* variable = Value::ResolveVariable(name);
  if (variable == nullptr) return false;
  PushValueByKind(new VariableReferenceValue(variable), name);
  return true;
}

bool ExpressionParser::TryExternalParser(const AString& text) {
  if (mValueParser == nullptr) return false;
  ValueBase* value = mValueParser->ParseText(text, Units::NoUnits);
  if (value == nullptr) return false;
  PushValueByKind(value, text);
  return true;
}

bool ExpressionParser::TryResolveAsDataset(const AString& name) {
  Variable* variable = Value::ResolveVariable(name);
  if (variable == nullptr) return false;
  const val::ParameterType kind = static_cast<const ValueBase&>(*variable).GetParameterType();
  // A list of dataset names is no dataset here; any other kind is left to the ordinary
  // resolution, where an overload of the function may take it.
  if (kind == val::kTextStringArrayParam) Raise(24582, &name);
  if (!IsDatasetKind(kind)) return false;
  PushValueByKind(new VariableReferenceValue(variable), name);
  return true;
}

bool ExpressionParser::IsDatasetExpectedHere() const {
  return mContext.GetCurrentParseType() == ExpressionParsingContext::kDatasetArgument;
}

bool ExpressionParser::FunctionExpectsDataset(const AString& name, int argument) const {
  std::vector<const Function*> functions;
  Value::GetFunctions(name, functions);
  for (const Function* function : functions) {
    const auto& parameters = function->GetParameters();
    if (parameters.empty()) continue;
    std::size_t i = static_cast<std::size_t>(argument);
    if (i >= parameters.size()) {
      if (!function->IsVariadic()) continue;
      i = parameters.size() - 1;
    }
    if (IsDatasetKind(parameters[i].mKind)) return true;
  }
  return false;
}

void ExpressionParser::PushValueByKind(ValueBase* value, const AString& name) {
  std::unique_ptr<ValueBase> owned(value);
  ValueState state = StateOfValue(*owned);
  Operation op = kNoOp;
  switch (state.mKind) {
    case val::kDoubleParam:
    case val::kComplexParam:
    case val::kCircleParam:
    case val::kArcParam:
    case val::kRegionParam:
    case val::kDatasetParam:
    case val::kDoubleMatrixParam:
    case val::kComplexMatrixParam:
    case val::kStringParam:
    case val::kDynamicDoubleDoubleDatasetParam:
    case val::kDynamicDoubleComplexDatasetParam:
      op = static_cast<Operation>(state.mKind);
      break;
    case val::kIntParam:
    case val::kCharParam:
    case val::kEnumParam:
      // Whole numbers take part in arithmetic as reals.
      op = kDoubleOp;
      state.mKind = val::kDoubleParam;
      break;
    case val::kTextStringArrayParam:
    case val::kDoubleArrayParam:
      Raise(24760, &name);
    case val::kNotParam:
    case val::kStringMatrixParam:
      Raise(24508, &name);
  }
  if (!owned->IsConstant() || state.mUnits != Units::NoUnits) {
    mHasNonConstOrUnitedVariable = true;
  }
  PushValue(owned.release(), op, state);
}

void ExpressionParser::ParseFunction(const AString& name) {
  if (!Value::FunctionExists(name)) {
    // "name(...)" may still be the name of a variable or something the external parser knows.
    const AString call = ReadParenthesizedText();
    const AString full = name + call;
    const AChar* after = mReadPointer + call.size();
    if (TryResolveAsValue(full) || TryExternalParser(full)) {
      mReadPointer = after;
      GetOperator();
      return;
    }
    Raise(24499, &name);
  }

  const AChar* callStart = mReadPointer;
  ++mReadPointer;  // "("
  const Mark mark = GetMark();
  Expression& expression = *mExpression;
  const std::size_t callIndex = expression.mFunctionCalls.size();
  FunctionCall call;
  call.mOperationIndex = static_cast<int>(expression.mOperations.size());
  Emit(kFunctionOp);
  // The slot keeps the list in stream order: calls inside the arguments come after this one.
  expression.mFunctionCalls.push_back(call);

  std::vector<std::pair<int, int>> arguments;
  {
    ExpressionParsingContext::ParseTypeGuard functionGuard(
        mContext, ExpressionParsingContext::kFunctionArguments);
    mContext.PushFunction(name);
    for (;;) {
      const bool datasetArgument = FunctionExpectsDataset(name, mContext.GetCurrentArgumentIndex());
      ExpressionParsingContext::ParseTypeGuard argumentGuard(
          mContext, datasetArgument ? ExpressionParsingContext::kDatasetArgument
                                    : ExpressionParsingContext::kFunctionArguments);
      const int start = static_cast<int>(expression.mOperations.size());
      Emit(kStartOfExpressionOp);
      mMissingOperandCode = 24534;
      GetToken();
      ParseExpression();
      const int end = static_cast<int>(expression.mOperations.size());
      Emit(kEndOfExpressionOp);
      arguments.emplace_back(start, end);
      if (mToken == kRightParenOp) break;
      if (mToken != kCommaOp) Raise(24498, &name);
      mContext.IncrementFunctionArgument();
    }
    mContext.PopFunction();
  }

  const int count = static_cast<int>(arguments.size());
  if (!WY_CHECK(mValueStates.size() >= arguments.size())) Raise(24498, &name);
  std::vector<ValueState> states(mValueStates.end() - count, mValueStates.end());
  int error = 0;
  const Function* function = Value::GetFunction(name, count, states, error);
  if (function == nullptr) {
    if (mValueParser != nullptr) {
      std::vector<const Function*> all;
      Value::GetFunctions(name, all);
      bool countExists = false;
      for (const Function* candidate : all) {
        countExists = countExists || candidate->AcceptsArgumentCount(count);
      }
      if (countExists) {
        const AString full =
            name + AString(callStart, static_cast<std::size_t>(mReadPointer - callStart));
        Rollback(mark);
        expression.mOperations.resize(static_cast<std::size_t>(call.mOperationIndex));
        expression.mFunctionCalls.resize(callIndex);
        if (TryExternalParser(full)) {
          GetOperator();
          return;
        }
      }
    }
    const AString countText = i18n::MakeNumberString(count);
    Raise(error != 0 ? error : 24499, &name, &countText);
  }

  for (int i = 0; i < count; ++i) {
    const val::ParameterType expected =
        function->GetParameters().empty()
            ? val::kNotParam
            : function
                  ->GetParameters()[std::min<std::size_t>(static_cast<std::size_t>(i),
                                                          function->GetParameters().size() - 1)]
                  .mKind;
    if (IsDatasetKind(expected) && !IsDatasetKind(states[static_cast<std::size_t>(i)].mKind)) {
      const AString position = i18n::MakeNumberString(i + 1);
      Raise(24841, &name, &position);
    }
  }

  FunctionCall& slot = expression.mFunctionCalls[callIndex];
  slot.mFunction = function;
  slot.mArguments = std::move(arguments);
  slot.mArgumentStates = states;
  mValueStates.resize(mValueStates.size() - static_cast<std::size_t>(count));
  mValueStates.push_back(function->GetResultType(states));
  GetOperator();
}

void ExpressionParser::ParseArrayIndex(const AString& name) {
  ++mReadPointer;  // "["
  mToken = kLeftBracketOp;
  Variable* variable = Value::ResolveVariable(name);
  if (variable == nullptr) Raise(24755, &name);
  const ValueBase& array = *variable;
  const val::ParameterType kind = array.GetParameterType();
  if (kind != val::kDoubleArrayParam && kind != val::kTextStringArrayParam) Raise(24756, &name);

  ValueState element = StateOfValue(array);
  PushValue(new VariableReferenceValue(variable), static_cast<Operation>(kind), element);
  mHasNonConstOrUnitedVariable = true;
  PopState();  // the array itself is no operand: the element is
  Emit(kArrayIndexStartOp);
  {
    ExpressionParsingContext::ParseTypeGuard guard(mContext, ExpressionParsingContext::kArrayIndex);
    mMissingOperandCode = 24534;
    GetToken();
    ParseExpression();
    if (mToken != kRightBracketOp) Raise(24754, &name);
  }
  const ValueState index = PopState();
  if (index.mKind != val::kDoubleParam) Raise(24489, &name);
  Emit(kArrayIndexEndOp);
  Emit(kArrayDereferenceOp);
  EmitKind(kind);
  EmitKind(val::kDoubleParam);
  if (kind == val::kDoubleArrayParam) {
    element.mKind = val::kDoubleParam;
  } else {
    element = ValueState(Units::NoUnits, Units::NoUnit, val::kDBAmplitude, val::kStringParam);
  }
  mValueStates.push_back(element);
  GetOperator();
}

// ---- Dataset literals --------------------------------------------------------------------
//
// dataset() or dataset((x, y), (x, y), ...): each coordinate a real number with optional units,
// optionally preceded by "-". Each axis takes the units of its first coordinate written with
// units; coordinates without units are taken in the axis units; a unit of another quantity on
// the same axis is an error (24726).

bool ExpressionParser::ReadDatasetNumber(double& value, const UnitDefinition*& unit) {
  SkipWhiteSpace();
  bool negative = false;
  if (*mReadPointer == u'-') {
    negative = true;
    ++mReadPointer;
  }
  const AChar* p = mReadPointer;
  NumberReader::Number number;
  const NumberReader::Status status = NumberReader::Read(p, number, mWhiteSpace, true);
  if (status == NumberReader::kNoNumber) return false;
  if (status == NumberReader::kUnknownUnit) {
    mReadPointer = p - number.unitName.size();
    Raise(24507, &number.unitName);
  }
  if (!number.isReal) return false;
  mReadPointer = p;
  value = negative ? -number.value : number.value;
  unit = number.unit;
  return true;
}

void ExpressionParser::ParseDataset() {
  ++mReadPointer;  // "("
  struct Coordinate {
    double mValue;
    const UnitDefinition* mUnit;
  };
  std::vector<std::pair<Coordinate, Coordinate>> points;
  SkipWhiteSpace();
  if (*mReadPointer == u')') {
    ++mReadPointer;
  } else {
    for (;;) {
      SkipWhiteSpace();
      if (*mReadPointer != u'(') RaiseChar(24579);
      ++mReadPointer;
      Coordinate x{};
      Coordinate y{};
      if (!ReadDatasetNumber(x.mValue, x.mUnit)) RaiseChar(24580);
      SkipWhiteSpace();
      if (*mReadPointer != u',') RaiseChar(24581);
      ++mReadPointer;
      if (!ReadDatasetNumber(y.mValue, y.mUnit)) RaiseChar(24580);
      SkipWhiteSpace();
      if (*mReadPointer != u')') RaiseChar(24581);
      ++mReadPointer;
      points.emplace_back(x, y);
      SkipWhiteSpace();
      if (*mReadPointer == u',') {
        ++mReadPointer;
        continue;
      }
      if (*mReadPointer == u')') {
        ++mReadPointer;
        break;
      }
      RaiseChar(24581);
    }
  }

  const UnitDefinition* xUnit = nullptr;
  const UnitDefinition* yUnit = nullptr;
  for (const auto& [x, y] : points) {
    if (xUnit == nullptr) xUnit = x.mUnit;
    if (yUnit == nullptr) yUnit = y.mUnit;
  }
  auto toSI = [this](const Coordinate& c, const UnitDefinition* axis) {
    const UnitDefinition* unit = c.mUnit != nullptr ? c.mUnit : axis;
    if (unit == nullptr) return c.mValue;
    if (axis != nullptr && unit->GetUnitType() != axis->GetUnitType()) {
      const AString name = unit->GetUnitString();
      Raise(24726, &name);
    }
    return unit->ConvertToSI(c.mValue);
  };
  geom::Dataset dataset(xUnit != nullptr ? xUnit->GetFullUnitType() : Units::NoUnits,
                        yUnit != nullptr ? yUnit->GetFullUnitType() : Units::NoUnits);
  for (const auto& [x, y] : points) dataset.AddPoint(toSI(x, xUnit), toSI(y, yUnit));
  if (xUnit == nullptr || yUnit == nullptr) mHasNumberWithoutUnits = true;

  auto* value = new DatasetValue(dataset);
  PushValue(value, kDatasetOp, StateOfValue(*value));
  GetOperator();
}

// ---- Emission and states -----------------------------------------------------------------

void ExpressionParser::Emit(Operation op) const { mExpression->AppendOperation(op); }

void ExpressionParser::EmitKind(val::ParameterType kind) const {
  mExpression->AppendOperation(static_cast<Operation>(kind));
}

void ExpressionParser::PushValue(ValueBase* value, Operation op, const ValueState& state) {
  mExpression->AppendValue(value);
  Emit(op);
  mValueStates.push_back(state);
}

ValueState ExpressionParser::StateOfValue(const ValueBase& value) const {
  ValueState state;
  const Units::FullUnitType units = value.GetUnits();
  state.mUnits = units == Units::NoUnits ? units : Units::CalcFullUnitType(units, units);
  state.mUnitType =
      state.mUnits == Units::NoUnits ? Units::NoUnit : Units::ConvertToUnitType(state.mUnits);
  state.mDBType =
      state.mUnitType == Units::Power ? Units::GetDBType(state.mUnitType) : value.GetDBType();
  state.mKind = value.GetParameterType();
  return state;
}

ValueState ExpressionParser::PopState() {
  if (!WY_CHECK(mValueStates.size() > 0)) return ValueState();
  ValueState state = mValueStates.back();
  mValueStates.pop_back();
  return state;
}

ExpressionParser::Mark ExpressionParser::GetMark() const {
  return Mark{mExpression->mOperations.size(), mExpression->mValues.size(),
              mExpression->mFunctionCalls.size(), mValueStates.size()};
}

ExpressionParser::Mark ExpressionParser::GetOperandMark() const {
  Mark mark = GetMark();
  // A number token has pushed its constant as it was read.
  if ((mToken == kDoubleOp || mToken == kComplexOp) && mark.mOperations > 0 && mark.mValues > 0 &&
      mark.mStates > 0) {
    --mark.mOperations;
    --mark.mValues;
    --mark.mStates;
  }
  return mark;
}

void ExpressionParser::Rollback(const Mark& mark) {
  Expression& expression = *mExpression;
  expression.mOperations.resize(mark.mOperations);
  while (expression.mValues.size() > mark.mValues) {
    delete expression.mValues.back();
    expression.mValues.pop_back();
  }
  expression.mFunctionCalls.resize(mark.mFunctionCalls);
  mValueStates.resize(mark.mStates);
}

// ---- Unit rules --------------------------------------------------------------------------

ValueState ExpressionParser::CombineAdditive(const ValueState& left, const ValueState& right) {
  ValueState result = left;
  if (right.mUnits == Units::NoUnits) return result;
  if (left.mUnits == Units::NoUnits) {
    result.mUnits = right.mUnits;
    result.mUnitType = right.mUnitType;
    result.mDBType = right.mDBType;
    return result;
  }
  if (left.mUnitType != right.mUnitType) {
    DropUnits(result);
    mHasUnitsError = true;
    return result;
  }
  if (left.mUnits == right.mUnits) return result;
  // Values are SI already, so the sum is right; only the display units change.
  result.mUnits = Units::GetDefaultUnits(left.mUnitType);
  result.mDBType = right.mDBType;
  return result;
}

ValueState ExpressionParser::CombineTemperature(const ValueState& left, const ValueState& right,
                                                Operation op, bool& handled) const {
  const bool leftT = left.mUnitType == Units::Temperature;
  const bool rightT = right.mUnitType == Units::Temperature;
  const bool leftD = left.mUnitType == Units::TemperatureDifference;
  const bool rightD = right.mUnitType == Units::TemperatureDifference;
  handled = true;
  ValueState result = left;
  if (leftT && rightD) return result;  // temperature +/- difference: a temperature
  if (leftD && rightT) {               // difference +/- temperature: a temperature too
    result.mUnits = right.mUnits;
    result.mUnitType = right.mUnitType;
    result.mDBType = right.mDBType;
    return result;
  }
  if (leftT && rightT && op == kMinusOp) {
    result.mUnitType = Units::TemperatureDifference;
    result.mUnits = left.mUnits == right.mUnits
                        ? Units::GetMatchingTemperatureDiffUnit(left.mUnits)
                        : Units::GetDefaultUnits(Units::TemperatureDifference);
    result.mDBType = Units::GetDBType(result.mUnits);
    return result;
  }
  if (leftD && rightD) {
    if (left.mUnits != right.mUnits) {
      result.mUnits = Units::GetDefaultUnits(Units::TemperatureDifference);
      result.mDBType = Units::GetDBType(result.mUnits);
    }
    return result;
  }
  handled = false;
  return result;
}

void ExpressionParser::ApplyBinary(Operation op, bool exponentIsOne) {
  if (!WY_CHECK(mValueStates.size() > 1)) Raise(24534);
  const ValueState right = PopState();
  const ValueState left = PopState();
  if (!IsNumberKind(left.mKind) || !IsNumberKind(right.mKind)) {
    Raise(24509, &GetStringCodeForOp(op));
  }
  Emit(op);
  EmitKind(right.mKind);
  EmitKind(left.mKind);

  ValueState result = left;
  switch (op) {
    case kPlusOp:
    case kMinusOp: {
      bool handled = false;
      result = CombineTemperature(left, right, op, handled);
      if (!handled) result = CombineAdditive(left, right);
      break;
    }
    case kMultiplyOp:
      if (right.mUnits != Units::NoUnits) {
        if (left.mUnits != Units::NoUnits) {
          DropUnits(result);
          mHasUnitsError = true;
        } else {
          result.mUnits = right.mUnits;
          result.mUnitType = right.mUnitType;
          result.mDBType = right.mDBType;
        }
      }
      break;
    case kDivideOp:
      if (right.mUnits != Units::NoUnits) {
        // A ratio of one quantity is a plain number; of two quantities a unit we cannot name.
        if (right.mUnitType != left.mUnitType) mHasUnitsError = true;
        DropUnits(result);
      }
      break;
    case kRaiseToPowerOp:
      if (left.mUnits != Units::NoUnits && !exponentIsOne) {
        DropUnits(result);
        mHasUnitsError = true;
      }
      break;
    default:
      WY_CHECK(!"ApplyBinary called for an operator that is not arithmetic");
      break;
  }
  result.mKind = left.mKind;
  if (right.mKind == val::kComplexParam) result.mKind = val::kComplexParam;
  mValueStates.push_back(result);
}

void ExpressionParser::ApplyComparison(Operation op) {
  const ValueState right = PopState();
  const ValueState left = PopState();
  // Ordering needs real numbers whatever the other operand is: (1+2j) < 3 is 24515.
  const bool ordering = op != kEqualOp && op != kNotEqualOp;
  if (ordering && (left.mKind != val::kDoubleParam || right.mKind != val::kDoubleParam)) {
    Raise(24515, &GetStringCodeForOp(op));
  }
  if (left.mKind != right.mKind) Raise(24514, &GetStringCodeForOp(op));
  if (!IsNumberKind(left.mKind)) Raise(24509, &GetStringCodeForOp(op));
  Emit(op);
  if (op == kEqualOp || op == kNotEqualOp) EmitKind(left.mKind);
  mValueStates.push_back(kUnitlessReal);
}

void ExpressionParser::ApplyLogical(Operation op) {
  const ValueState right = PopState();
  const ValueState left = PopState();
  if (left.mKind != val::kDoubleParam || right.mKind != val::kDoubleParam) {
    Raise(24516, &GetStringCodeForOp(op));
  }
  Emit(op);
  mValueStates.push_back(kUnitlessReal);
}

// ---- Errors ------------------------------------------------------------------------------

void ExpressionParser::Raise(int code, const AString* arg1, const AString* arg2,
                             const AString* arg3) const {
  std::vector<std::u16string> args;
  for (const AString* arg : {arg1, arg2, arg3}) {
    if (arg == nullptr) break;
    args.push_back(*arg);
  }
  AString text;
  if (!wycore::MessageTemplate(code).empty()) text = wycore::FormatMessageText(code, args);
  // Without any character but blanks there is no place to point at.
  bool positioned = false;
  for (AChar c : mText) positioned = positioned || !IsWhiteSpace(c);
  RaiseWithText(code, text, positioned);
}

void ExpressionParser::RaiseChar(int code) const {
  const AString character =
      *mReadPointer != 0 ? AString(1, *mReadPointer) : AString(u"end of text");
  Raise(code, &character);
}

void ExpressionParser::RaiseWithText(int code, const AString& messageText,
                                     bool withPosition) const {
  AString message;
  if (messageText.empty()) {
    message = AString(u"Error/Warning parsing expression:\"") + mText + AString(u"\"");
  } else if (withPosition) {
    std::size_t offset = static_cast<std::size_t>(mReadPointer - mText.c_str());
    if (offset >= mText.size()) offset = mText.empty() ? 0 : mText.size() - 1;
    message = AString(u"While parsing expression: \"") + mText +
              AString(u"\", an error was found near character ") +
              i18n::MakeNumberString(static_cast<int>(offset)) + AString(u". ") + messageText;
  } else {
    message = AString(u"An Error occurred parsing expression: \"") + mText + AString(u"\", ") +
              messageText;
  }
  if (mReportErrors) Value::HandleMessage(kMessageCode, wycore::Severity::Error, &message);
  throw code;
}

// ---- Static helpers ----------------------------------------------------------------------

bool ExpressionParser::TextToNumber(const AChar*& p, double& value, const UnitDefinition*& unit,
                                    bool& isReal, AString& unknownUnitName,
                                    const AString& whiteSpace) {
  return NumberReader::TextToNumber(p, value, unit, isReal, unknownUnitName, whiteSpace);
}

bool ExpressionParser::TextToNumber2(const AChar*& p, double& value, const UnitDefinition*& unit,
                                     bool& isReal, AString& unknownUnitName,
                                     const AString& whiteSpace, bool readUnits) {
  return NumberReader::TextToNumber2(p, value, unit, isReal, unknownUnitName, whiteSpace,
                                     readUnits);
}

bool ExpressionParser::IsNumber(const AChar* p, const AString& whiteSpace) {
  return NumberReader::IsNumber(p, whiteSpace);
}

bool ExpressionParser::IsNumber2(const AChar*& p, double& value, bool& isReal,
                                 const AString& whiteSpace) {
  return NumberReader::IsNumber2(p, value, isReal, whiteSpace);
}

bool ExpressionParser::IsNegative(const AChar*& p) { return NumberReader::IsNegative(p); }

bool ExpressionParser::IsIorJ(const AChar*& p) { return NumberReader::IsIorJ(p); }

const AString& ExpressionParser::GetStringCodeForOp(Operation op) {
  return ::GetStringCodeForOp(op);
}

void ExpressionParser::GetAlienLabels(const AString& text, std::vector<AString>& out) {
  const IValueParser* hook = Value::GetValueParser();
  auto isAlien = [hook](AChar c) {
    if (c == 0 || c == u' ' || c == u'\t') return false;
    return hook != nullptr ? hook->IsNameCharacter(c) : c == u'.';
  };
  const AChar* p = text.c_str();
  const AString& blanks = NumberReader::DefaultWhiteSpace();
  while (*p != 0) {
    if (*p == u'"') {  // a string literal is skipped whole
      ++p;
      while (*p != 0 && *p != u'"') ++p;
      if (*p != 0) ++p;
      continue;
    }
    const AChar* q = p;
    double value = 0.0;
    bool isReal = true;
    if ((IsDigit(*p) || *p == u'.') && NumberReader::IsNumber2(q, value, isReal, blanks)) {
      p = q;
      AString unit;
      NumberReader::ReadName(p, unit, blanks);  // the unit behind the number is no name
      continue;
    }
    if (IsLetter(*p) || *p == u'_' || *p == u'$') {
      const AChar* start = p++;
      bool alien = false;
      while (*p != 0) {
        if (IsLetter(*p) || IsDigit(*p) || *p == u'_') {
          ++p;
        } else if (isAlien(*p)) {
          alien = true;
          ++p;
        } else {
          break;
        }
      }
      if (alien) {
        const AString name(start, static_cast<std::size_t>(p - start));
        bool seen = false;
        for (const AString& known : out) seen = seen || known == name;
        if (!seen) out.push_back(name);
      }
      continue;
    }
    ++p;
  }
}

bool ExpressionParser::ValidateExpression(Value& value, const AString& text,
                                          const std::vector<IValueParser*>& parsers,
                                          Units::FullUnitType units, int* errorOut) {
  std::vector<IValueParser*> hooks = parsers;
  if (hooks.empty()) hooks.push_back(nullptr);
  int lastError = 0;
  bool accepted = false;
  for (IValueParser* hook : hooks) {
    ExpressionParser parser;
    parser.mValueParser = hook != nullptr ? hook : Value::GetValueParser();
    parser.mHookOverride = true;
    parser.mReportErrors = false;
    try {
      value.SetValueBase(parser.Parse(text, units, true, nullptr));
      accepted = true;
      lastError = 0;
      break;
    } catch (int code) {
      lastError = code;
    }
  }
  if (errorOut != nullptr) *errorOut = lastError;
  return accepted;
}
