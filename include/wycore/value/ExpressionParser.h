// SPDX-License-Identifier: Apache-2.0
//
// ExpressionParser.h - turns expression text ("2*x + 3mm", "if(a > b, sin(pi/4), 0)") into an
// Expression: a postfix operation stream, the values it reads, and the state (units, kind) of
// its result.
//
// A hand-written recursive-descent parser over the raw text: no lexer pass, one token at a time
// from a read pointer. Loosest to tightest: "&&" "||"; comparisons; "+" "-"; "*" "/"; power
// ("^" or "**", grouping from the left, a leading minus applying to the whole power chain);
// primaries (numbers with units, parentheses, "-" and "!", names, calls, a[i], dataset
// literals). While it parses it keeps one ValueState per pending operand, so unit mismatches
// are found here and the result's units are known without evaluating. The language is
// described in docs/expressions.md.
//
// Errors: the first error ends the parse. Its message is formatted with the expression text and
// the position ("While parsing expression: ...") and reported through Value::HandleMessage under
// code 24464; then Parse throws the integer code of the error (24487, 24494, ...). Nothing of a
// failed parse survives. Nesting (parentheses, calls, indexes, prefix operators) deeper than
// kMaxNestingDepth fails with code 24488 instead of exhausting the stack.
//
// Array syntax (a[i]) is allowed by default: the library has no application interface to ask,
// and arrays are part of the language of every field. SetDefaultAllowArrayDerefSyntax changes
// the default for parsers made afterwards.
//
// Names resolve through Value::ResolveVariable (the name space in force), calls through the
// function table (Value::FunctionExists, GetFunction, GetFunctions), and what neither knows
// through the installed IValueParser (Value::GetValueParser), which also decides which extra
// characters may stand in a name (without one, only ".").
//
// Ownership: Parse returns a new Expression owned by the caller. Threading: a parser object is
// used by one thread at a time; it may be reused (each Parse starts afresh).
#pragma once

#include <memory>
#include <vector>

#include "wycore/Export.h"
#include "wycore/io/AString.h"
#include "wycore/units/Units.h"
#include "wycore/value/ExpressionParsingContext.h"
#include "wycore/value/Operation.h"
#include "wycore/value/ValueState.h"

class Expression;
class IValueParser;
class UnitDefinition;
class Value;
class ValueBase;

class WYCORE_API ExpressionParser {
 public:
  // Nesting depth beyond which a parse fails with 24488.
  static constexpr int kMaxNestingDepth = 256;

  // `allowExplicitUnits`: whether "(a + b) mm" may give the whole expression units (else
  // 24641). `whiteSpace`: the characters skipped between tokens.
  explicit ExpressionParser(bool allowExplicitUnits = true,
                            const AString& whiteSpace = AString(u" \t"));
  ExpressionParser(const ExpressionParser& other);
  ExpressionParser& operator=(const ExpressionParser&) = delete;
  ~ExpressionParser();

  // Parses `text`. `units`: when the whole expression is one number written without units, the
  // number is taken in these units (90: none), as the value readers do. With
  // `applyFunctionModifications` the function table's replacements (deprecated functions) are
  // applied to the calls. `*errorOut` (when not null) is 0 at the start and the error code on
  // failure. Returns a new Expression owned by the caller; on failure throws the int code after
  // reporting it.
  Expression* Parse(const AString& text, Units::FullUnitType units = Units::NoUnits,
                    bool applyFunctionModifications = true, int* errorOut = nullptr);

  // ---- Queries about the last parse ----------------------------------------------------------

  // A variable was read that is not a constant of the value manager, or that has units.
  bool HasAtLeastOneNonConstOrUnitedVariable() const { return mHasNonConstOrUnitedVariable; }
  // A number was written without units.
  bool HasNumberWithoutUnits() const { return mHasNumberWithoutUnits; }
  // Operands of incompatible units were combined ("1m + 2V"); the result was made unitless.
  bool HasUnitsError() const { return mHasUnitsError; }
  bool AllowingExplicitUnits() const { return mAllowExplicitUnits; }
  bool IsArrayDerefSyntaxAllowed() const { return m_bAllowArrayDerefSyntax; }
  void SetAllowArrayDerefSyntax(bool allow) { m_bAllowArrayDerefSyntax = allow; }
  // Whether a parse error is reported (Value::HandleMessage) before its code is thrown; on by
  // default. A silent parser still throws.
  void SetReportErrors(bool report) { mReportErrors = report; }
  bool IsReportingErrors() const { return mReportErrors; }
  // The default for parsers made afterwards (initially true); returns the previous default.
  static bool SetDefaultAllowArrayDerefSyntax(bool allow);

  // ---- Static helpers shared with the unit and value readers ---------------------------------
  // The number reader (units/NumberReader.h) in the parser's shape; see there for the syntax.

  static bool TextToNumber(const AChar*& p, double& value, const UnitDefinition*& unit,
                           bool& isReal, AString& unknownUnitName, const AString& whiteSpace);
  static bool TextToNumber2(const AChar*& p, double& value, const UnitDefinition*& unit,
                            bool& isReal, AString& unknownUnitName, const AString& whiteSpace,
                            bool readUnits);
  static bool IsNumber(const AChar* p, const AString& whiteSpace);
  static bool IsNumber2(const AChar*& p, double& value, bool& isReal, const AString& whiteSpace);
  static bool IsNegative(const AChar*& p);
  static bool IsIorJ(const AChar*& p);
  static const AString& GetStringCodeForOp(Operation op);

  // Appends the names in `text` that hold characters beyond letters, digits and "_" (as the
  // installed IValueParser, or ".", allows), outside string literals and numbers, each once.
  static void GetAlienLabels(const AString& text, std::vector<AString>& out);

  // Parses `text` with each of `parsers` in turn as the external hook (null entries: the
  // installed one), without reporting errors; the first success is installed in `value` and
  // true returned. Otherwise false, `*errorOut` (when not null) the last error code, and `value`
  // unchanged.
  static bool ValidateExpression(Value& value, const AString& text,
                                 const std::vector<IValueParser*>& parsers,
                                 Units::FullUnitType units = Units::NoUnits,
                                 int* errorOut = nullptr);

 private:
  // A place in the stream, the value list and the function list, to roll back to.
  struct Mark {
    std::size_t mOperations;
    std::size_t mValues;
    std::size_t mFunctionCalls;
    std::size_t mStates;
  };

  void Reset();

  // Tokens.
  void GetToken();
  void GetOperator();
  void ReadName(bool allowAlien);
  bool TryExplicitUnits();
  void SkipWhiteSpace();
  bool IsWhiteSpace(AChar c) const;
  bool IsNameCharacter(AChar c) const;
  bool IsAlienCharacter(AChar c) const;

  // Grammar.
  void ParseExpression();
  void ParseComparison();
  void ParseSum();
  void ParseProduct();
  void ParseFactor();
  void ParsePrimary();
  void ParseLabel();
  void ParseRegularLabel(const AString& name, const AString* alienName);
  void ParseFunction(const AString& name);
  void ParseArrayIndex(const AString& name);
  void ParseDataset();
  bool ReadDatasetNumber(double& value, const UnitDefinition*& unit);
  bool TryResolveAsValue(const AString& name);
  bool TryResolveAsDataset(const AString& name);
  bool TryExternalParser(const AString& text);
  bool IsDatasetExpectedHere() const;
  bool FunctionExpectsDataset(const AString& name, int argument) const;
  AString ReadParenthesizedText() const;

  // Emission.
  void Emit(Operation op) const;
  void EmitKind(val::ParameterType kind) const;
  // Appends `value` (owned) with its push code and state.
  void PushValue(ValueBase* value, Operation op, const ValueState& state);
  // The same with the push code chosen by the value's kind; refuses kinds expressions cannot
  // read (24508) and arrays without an index (24760).
  void PushValueByKind(ValueBase* value, const AString& name);
  ValueState StateOfValue(const ValueBase& value) const;
  ValueState PopState();
  Mark GetMark() const;
  // The place where the operand of the current token starts (before a number already pushed).
  Mark GetOperandMark() const;
  void Rollback(const Mark& mark);
  // Negates the operand that starts at `operand`: folded into a lone real constant when
  // `canFold`, else kUnaryMinusOp and the kind.
  void Negate(const Mark& operand, bool canFold);
  // Whether the operand that starts at `exponent` is the constant 1.
  bool IsConstantOne(const Mark& exponent) const;

  // Unit rules.
  void ApplyBinary(Operation op, bool exponentIsOne);
  void ApplyComparison(Operation op);
  void ApplyLogical(Operation op);
  void ApplyNot();
  ValueState CombineAdditive(const ValueState& left, const ValueState& right);
  ValueState CombineTemperature(const ValueState& left, const ValueState& right, Operation op,
                                bool& handled) const;

  // Errors: report and throw `code`.
  [[noreturn]] void Raise(int code, const AString* arg1 = nullptr, const AString* arg2 = nullptr,
                          const AString* arg3 = nullptr) const;
  [[noreturn]] void RaiseWithText(int code, const AString& messageText, bool withPosition) const;
  // `code` with the character at the read pointer as its argument.
  [[noreturn]] void RaiseChar(int code) const;
  [[noreturn]] void RaiseAlienFailure(const AString& alienName) const;

  // Nesting guard.
  class DepthGuard;

  std::unique_ptr<Expression> mExpression;
  AString mText;  // the text being parsed (mReadPointer points into it)
  const AChar* mReadPointer = nullptr;
  Operation mToken = kNoOp;
  Operation mPreviousToken = kNoOp;
  AString mCurrentName;
  AString mWhiteSpace;
  std::vector<ValueState> mValueStates;
  ExpressionParsingContext mContext;
  int mMissingOperandCode = 24534;  // raised when the text ends where an operand must stand
  int mDepth = 0;
  bool mLastPrimaryWasNumber = false;
  bool mHasNonConstOrUnitedVariable = false;
  bool mHasNumberWithoutUnits = false;
  bool m_bAllowArrayDerefSyntax = true;
  bool mCurrentNameIsAlien = false;
  bool mHasUnitsError = false;
  bool mAllowExplicitUnits = true;
  Units::FullUnitType mExplicitUnits = Units::NoUnits;
  IValueParser* mValueParser = nullptr;  // the hook of this parse (not owned)
  bool mHookOverride = false;            // ValidateExpression supplies the hook
  bool mReportErrors = true;
};
