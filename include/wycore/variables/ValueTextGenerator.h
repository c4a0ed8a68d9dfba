// SPDX-License-Identifier: Apache-2.0
//
// ValueTextGenerator.h - writing a parsed expression back as expression text.
//
// ValueTextGenerator walks an expression's tree (ExpressionASTWalker) and rebuilds its text
// bottom-up on a stack of partial results, each the text of one sub-expression and the operation
// at its top. Operators are spelled as the parser spells them (" + ", " - ", "*", "/", "^",
// " < ", "<=", "==", "&&", ...), and only the parentheses that the operator ranks require are
// written:
//
//   rank 1 "&&" "||"   2 "==" "!="   3 " < " " > " "<=" ">="   4 " + " " - "   5 "*" "/"
//   6 "-" (negation) "!"   7 "^"   8 operands, function calls, array elements
//
// so "(a+b)*c" is written "(a + b)*c", "(a-b)-c" is written "a - b - c" while "a-(b-c)" keeps
// its parentheses, and a right operand that starts with a negation turns " + " into " - " and
// back ("a+(-b)" is written "a - b"); an operand negated twice flips twice ("a + -(-b)" is
// "a + b"), and what is left after the flip is written as it would be on its own ("a + -(b*c)" is
// "a - b*c"), so that the text reads back as itself. Three cases are added to the ranks so that
// the text always reads back as the same tree: an operand whose text starts with "-" (a negative
// number) counts as a negation; the operand of "!" is put in parentheses when it is a "^" (the
// parser reads "!" as part of its operand); and the right operand of a comparison is put in
// parentheses when it is a comparison too (the parser has one level for all six of them).
//
// What is written for each operand (a number, a variable, a dataset) is decided by a strategy
// (IValueTextGeneratorStrategy); the strategies of this file cover regenerating the canonical
// text, writing numbers in default units, unrolling variables into their contents, finding the
// outermost function call and renaming a component instance's parameters. Their formatting
// choices are listed in docs/expressions.md, section "Regenerated text".
//
// Ownership: a generator does not own its strategy; the strategy must outlive it. Values are
// read, never changed. Threading: a generator is used by one thread; generating reads the unit
// manager and the value manager, and for the time of one generation sets the process-wide
// "must write units" switch (so that values write their units), which it then restores.
#pragma once

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "wycore/Export.h"
#include "wycore/core/AComplex.h"
#include "wycore/io/AString.h"
#include "wycore/units/Units.h"
#include "wycore/value/ExpressionASTWalker.h"
#include "wycore/value/Operation.h"

class ValueBase;
class Variable;
class Function;
class Expression;
struct FunctionCall;

// What a text generator asks of its strategy.
class WYCORE_API IValueTextGeneratorStrategy {
 public:
  virtual ~IValueTextGeneratorStrategy() = default;

  // ---- Operand texts (`out` is empty on entry) ---------------------------------------------
  // Real numbers (push codes 1, 13, 14, 15).
  virtual void DoubleValueToString(AString& out, const ValueBase& value) = 0;
  // Complex numbers (2).
  virtual void ComplexValueToString(AString& out, const ValueBase& value) = 0;
  // Circles, arcs, regions (3, 4, 5).
  virtual void GeometryValueToString(AString& out, const ValueBase& value) = 0;
  // Static and dynamic datasets (6, 11, 12).
  virtual void DatasetValueToString(AString& out, const ValueBase& value) = 0;
  // Matrices (7, 8, 10).
  virtual void MatrixValueToString(AString& out, const ValueBase& value) = 0;
  // Strings (9).
  virtual void StringValueToString(AString& out, const ValueBase& value) = 0;
  // Arrays (16, 17).
  virtual void ArrayValueToString(AString& out, const ValueBase& value) = 0;
  // A value read by name, whatever its kind. `textOperation` enters as the node's push code; a
  // strategy that writes a whole sub-expression for the variable sets it to that sub-
  // expression's top operation, so that the generator adds the parentheses it needs.
  virtual void VariableToString(AString& out, Operation& textOperation,
                                const Variable& variable) = 0;

  // ---- Function calls ----------------------------------------------------------------------
  // May replace the name and the argument texts of a call (`givenName`, `givenArgs`: as the
  // generator would write them). True when `name` and `args` are to be used instead.
  virtual bool DoOverrideFunctionAndArgs(AString& name, std::vector<AString>& args,
                                         const AString& givenName,
                                         const std::vector<AString>& givenArgs) = 0;
  // Told of every call once its text is complete (inner calls before outer ones).
  virtual void RegisterFunctionCall(const Function* function, const AString& name,
                                    const std::vector<AString>& args) = 0;

  // ---- Operators ---------------------------------------------------------------------------
  // Told before the parentheses of a binary operation are decided.
  virtual void SetupBinaryOperationParenthesizer(Operation op) = 0;
  // Told of the operand texts of every operator once its text is complete (`lhs` is empty for
  // "-" and "!"; for an array element, the array and the index).
  virtual void RegisterOperandTexts(Operation op, const AString& lhs, const AString& rhs) = 0;
  // Asked for parentheses around a left operand that the ranks would not add; `op` is the
  // operation, `sameOperation` whether the operand's top operation is the same.
  virtual bool MustParenthesize(Operation op, bool sameOperation) = 0;
  // The exchange switch: when on, negation and "!" bind tighter than "^" (the rank decision
  // between rank 6 and rank 7 is inverted).
  virtual bool ExchangesUnaryAndPowerBinding() const = 0;
};

// The common base of the strategies: writes every operand as the value writes itself, with
// numbers in "%-.15g" (Units::FloatToText with the default double format) and their units'
// names; variables by name; function calls as they are; no extra parentheses.
class WYCORE_API ValueTextGeneratorStrategy : public IValueTextGeneratorStrategy {
 public:
  void DoubleValueToString(AString& out, const ValueBase& value) override;
  void ComplexValueToString(AString& out, const ValueBase& value) override;
  void GeometryValueToString(AString& out, const ValueBase& value) override;
  void DatasetValueToString(AString& out, const ValueBase& value) override;
  void MatrixValueToString(AString& out, const ValueBase& value) override;
  void StringValueToString(AString& out, const ValueBase& value) override;
  void ArrayValueToString(AString& out, const ValueBase& value) override;
  void VariableToString(AString& out, Operation& textOperation, const Variable& variable) override;
  bool DoOverrideFunctionAndArgs(AString& name, std::vector<AString>& args,
                                 const AString& givenName,
                                 const std::vector<AString>& givenArgs) override;
  void RegisterFunctionCall(const Function* function, const AString& name,
                            const std::vector<AString>& args) override;
  void SetupBinaryOperationParenthesizer(Operation op) override;
  void RegisterOperandTexts(Operation op, const AString& lhs, const AString& rhs) override;
  bool MustParenthesize(Operation op, bool sameOperation) override;
  bool ExchangesUnaryAndPowerBinding() const override { return mExchangeUnaryAndPower; }
  // Turns the exchange switch on or off (off by default: the binding of the library's parser).
  void SetExchangeUnaryAndPowerBinding(bool on) { mExchangeUnaryAndPower = on; }

  // The text of `value`'s current value as a constant: numbers as DoubleValueToString and
  // ComplexValueToString write them, other kinds as their evaluated value writes itself.
  void ValueBaseToEvaluatedString(AString& out, const ValueBase& value);
  // The operand text of a constant `value`, by its kind (the method of that kind).
  void ValueToString(AString& out, const ValueBase& value);

  // `si` in `units` as an expression operand: "%-.15g" and the units' name ("3mm", "-0.5",
  // "inf mm").
  static AString FormatReal(double si, Units::FullUnitType units);
  // A complex constant as an expression operand: "2j", "2j mm", "-2j" when the real part is
  // zero, otherwise "(1 + 2j)" or "(1mm - 2j mm)" in parentheses. Non-finite imaginary parts
  // are written "1.#INFj", "-1.#INFj", "1.#INDj", which the parser reads back.
  static AString FormatComplex(const AComplex<double>& si, Units::FullUnitType units);

 protected:
  ValueTextGeneratorStrategy() = default;

 private:
  bool mExchangeUnaryAndPower = false;
};

// Writes each operand as its own text: the canonical text of an expression.
class WYCORE_API DefaultValueTextGeneratorStrategy : public ValueTextGeneratorStrategy {
 public:
  DefaultValueTextGeneratorStrategy() = default;
};

// Writes numbers in a unit chosen per value: the current default unit of the value's unit type
// (so "1in" comes out as "25.4mm" while millimetres are the default length unit); numbers
// without units stay without.
class WYCORE_API SimpleValueTextGeneratorStrategy : public DefaultValueTextGeneratorStrategy {
 public:
  void DoubleValueToString(AString& out, const ValueBase& value) override;
  void ComplexValueToString(AString& out, const ValueBase& value) override;
  // The unit `value` is written in.
  virtual Units::FullUnitType GetDefaultFullUnitTypeForFormatting(const ValueBase& value) const;
};

// Writes, in place of a variable, what the variable holds: its expression's text (generated with
// this same strategy, so nested variables unroll too, in parentheses where the ranks need them)
// or its constant's text. The value manager's constants, intrinsic and predefined variables are
// kept by name. Unrolling stops at kMaxUnrollDepth nested variables; deeper ones keep their
// names.
class WYCORE_API UnrollingValueTextGeneratorStrategy : public DefaultValueTextGeneratorStrategy {
 public:
  static constexpr int kMaxUnrollDepth = 64;

  void VariableToString(AString& out, Operation& textOperation, const Variable& variable) override;
  // Whether `variable` is replaced by its contents.
  virtual bool DoUnroll(const Variable& variable) const;
  // What `variable` holds (its value; never null).
  virtual const ValueBase& GetNestedValueBase(const Variable& variable) const;

 private:
  int mDepth = 0;
};

// Writes the canonical text and remembers the last function call completed and its argument
// texts; an operator completed after it forgets it. After a generation, GetOutermostFunction
// therefore tells the call that is the whole expression, if there is one.
class WYCORE_API OuterMostFunctionDetectorStrategy : public DefaultValueTextGeneratorStrategy {
 public:
  void RegisterFunctionCall(const Function* function, const AString& name,
                            const std::vector<AString>& args) override;
  void RegisterOperandTexts(Operation op, const AString& lhs, const AString& rhs) override;

  void RegisterLastFunctionAndArgs(const Function* function, const AString& name,
                                   const std::vector<AString>& args);
  void ClearLastFunctionAndArgs();
  // False when no call is remembered; else the function (null only from hand-made function
  // lists), its name as written and its argument texts.
  bool GetOutermostFunction(const Function*& function, AString& name,
                            std::vector<AString>& args) const;

 private:
  bool mHasFunction = false;
  const Function* mFunction = nullptr;
  AString mName;
  std::vector<AString> mArgs;
};

// Renames the parameters of a component instance: a variable whose name is qualified by the
// instance ("U1.w", "top.U1.w") is written with the new instance name ("U2.w", "top.U2.w").
// Instance names are matched without regard to case, and only as a whole qualifier: the old
// name followed by "." at the start of the name or after a ".".
class WYCORE_API ComponentInstanceValueTextGeneratorStrategy
    : public DefaultValueTextGeneratorStrategy {
 public:
  ComponentInstanceValueTextGeneratorStrategy(const AString& oldInstanceName,
                                              const AString& newInstanceName);
  void VariableToString(AString& out, Operation& textOperation, const Variable& variable) override;
  // The position of `part` in `text` at or after `from`, compared without regard to case;
  // AString::npos when absent (or when `part` is empty).
  static std::size_t FindSubString(const AString& text, const AString& part, std::size_t from = 0);

 private:
  AString mOldInstanceName;
  AString mNewInstanceName;
};

class WYCORE_API ValueTextGenerator : public DefaultValueTextGeneratorStrategy,
                                      public IExpressionASTWalkerStrategy {
 public:
  // Uses itself (the default strategy).
  ValueTextGenerator();
  // Uses `strategy` (null: itself); not owned.
  explicit ValueTextGenerator(IValueTextGeneratorStrategy* strategy);
  ValueTextGenerator(const ValueTextGenerator&) = delete;
  ValueTextGenerator& operator=(const ValueTextGenerator&) = delete;
  ~ValueTextGenerator() override;

  // The text of `expression`; false (a check has fired, `out` empty) when its stream is
  // malformed.
  bool GenerateText(const Expression& expression, AString& out);
  bool GenerateText(const std::vector<Operation>& operations, const std::vector<ValueBase*>& values,
                    const std::vector<FunctionCall>& functionCalls, AString& out);
  // The operation at the top of the text last generated (kNoOp before the first success).
  Operation GetTopOperation() const { return mTopOperation; }
  IValueTextGeneratorStrategy* GetStrategy() const { return mStrategy; }

  // The rank of an operation (the table in the file comment; 8 for anything else).
  static int GetRank(Operation op);
  // The operator's text as written: GetStringCodeForOp, "-" for negation.
  static const AString& GetOperatorText(Operation op);
  // Whether the left (right) operand `child` of `parent` is put in parentheses.
  bool ParenthesizeLHSArg(Operation parent, Operation child);
  bool ParenthesizeRHSArg(Operation parent, Operation child) const;

  // ---- Walker callbacks --------------------------------------------------------------------
  void OnDoubleOp(const val::ASTPosition& position, const ValueBase* value) override;
  void OnComplexOp(const val::ASTPosition& position, const ValueBase* value) override;
  void OnCircleOp(const val::ASTPosition& position, const ValueBase* value) override;
  void OnArcOp(const val::ASTPosition& position, const ValueBase* value) override;
  void OnRegionOp(const val::ASTPosition& position, const ValueBase* value) override;
  void OnDatasetOp(const val::ASTPosition& position, const ValueBase* value) override;
  void OnDoubleMatrixOp(const val::ASTPosition& position, const ValueBase* value) override;
  void OnComplexMatrixOp(const val::ASTPosition& position, const ValueBase* value) override;
  void OnStringOp(const val::ASTPosition& position, const ValueBase* value) override;
  void OnStringMatrixOp(const val::ASTPosition& position, const ValueBase* value) override;
  void OnDynamicDoubleDoubleDatasetOp(const val::ASTPosition& position,
                                      const ValueBase* value) override;
  void OnDynamicDoubleComplexDatasetOp(const val::ASTPosition& position,
                                       const ValueBase* value) override;
  void OnIntOp(const val::ASTPosition& position, const ValueBase* value) override;
  void OnCharOp(const val::ASTPosition& position, const ValueBase* value) override;
  void OnEnumOp(const val::ASTPosition& position, const ValueBase* value) override;
  void OnTextStringArrayOp(const val::ASTPosition& position, const ValueBase* value) override;
  void OnDoubleArrayOp(const val::ASTPosition& position, const ValueBase* value) override;

  void OnUnaryMinusOp(const val::ASTPosition& position, Operation op, Operation parent) override;
  void OnNotOp(const val::ASTPosition& position, Operation op, Operation parent) override;
  void OnEqualOp(const val::ASTPosition& position, Operation op, Operation parent) override;
  void OnNotEqualOp(const val::ASTPosition& position, Operation op, Operation parent) override;
  void OnLessOp(const val::ASTPosition& position, Operation op, Operation parent) override;
  void OnGreaterOp(const val::ASTPosition& position, Operation op, Operation parent) override;
  void OnLessEqualOp(const val::ASTPosition& position, Operation op, Operation parent) override;
  void OnGreaterEqualOp(const val::ASTPosition& position, Operation op, Operation parent) override;
  void OnAndOp(const val::ASTPosition& position, Operation op, Operation parent) override;
  void OnOrOp(const val::ASTPosition& position, Operation op, Operation parent) override;
  void OnPlusOp(const val::ASTPosition& position, Operation op, Operation parent) override;
  void OnMinusOp(const val::ASTPosition& position, Operation op, Operation parent) override;
  void OnMultiplyOp(const val::ASTPosition& position, Operation op, Operation parent) override;
  void OnDivideOp(const val::ASTPosition& position, Operation op, Operation parent) override;
  void OnRaiseToPowerOp(const val::ASTPosition& position, Operation op, Operation parent) override;

  void OnArrayIndexOpStart(const val::ASTPosition& position) override;
  void OnArrayIndexOpEnd(const val::ASTPosition& position) override;
  void OnArrayDereferenceOp(const val::ASTPosition& position, Operation parent) override;

  void OnStartFunctionOp(const val::ASTPosition& position, const Function* function) override;
  void OnStartFunctionArg(const val::ASTPosition& position) override;
  void OnEndFunctionArg(const val::ASTPosition& position) override;
  void OnEndFunctionOp(const val::ASTPosition& position, const Function* function) override;

 private:
  // One partial result: the text of a sub-expression and the operation at its top.
  struct Entry {
    Operation mOp = kNoOp;
    AString mText;
    // When the text starts with a "-" that negates the whole sub-expression ("-b", "-2",
    // "-b*c"): the sub-expression negated once less, as it is written on its own ("b", "2",
    // "b*c"). A right operand of " + " or " - " sheds its negation into the operator through
    // this, as often as it has one, so that "a + -(-b)" comes out as "a + b" and reads back as
    // the same text.
    std::unique_ptr<Entry> mWithoutNegation;

    Entry() = default;
    Entry(Entry&&) noexcept = default;
    Entry& operator=(Entry&&) noexcept = default;
    // Unlinks the chain of forms one by one: a long chain never recurses.
    ~Entry();
    // A deep copy.
    Entry Clone() const;
  };
  using DataMethod = void (IValueTextGeneratorStrategy::*)(AString&, const ValueBase&);

  void ProcessDataOp(Operation op, const ValueBase* value, DataMethod method);
  void ProcessBinaryOp(Operation op);
  void ProcessUnaryOp(Operation op);
  // The text of `left` `op` `right` with the parentheses, the sign flip and the form without
  // negation; the strategy is told the operand texts when `notify`.
  Entry RenderBinary(Operation op, Entry left, Entry right, bool notify);
  // The operation an entry counts as for parentheses: a negation when its text starts with "-".
  static Operation EffectiveOperation(const Entry& entry);
  Entry Pop();

  IValueTextGeneratorStrategy* mStrategy;
  std::vector<Entry> mStack;
  std::vector<std::size_t> mFunctionMarks;  // stack size at the start of each open call
  Operation mTopOperation = kNoOp;
};

// Tells whether an expression is one function call as a whole ("max(a, b)", not "max(a, b) + 1"
// and not "2*max(a, b)"), and which.
class WYCORE_API QueryOutermostFunction {
 public:
  // True when the whole of `expression` is one call; then GetFunction and GetArgumentTexts
  // answer for it. False otherwise (and for a malformed stream).
  bool Visit(const Expression& expression);
  const Function* GetFunction() const { return mFunction; }
  const AString& GetFunctionName() const { return mName; }
  const std::vector<AString>& GetArgumentTexts() const { return mArgs; }

  // Whether the first operation of the body is a function call.
  static bool IsFirstOpFunction(const Expression& expression);
  // The function of that first call when nothing follows its arguments but the end of the
  // expression; null otherwise.
  static const Function* GetFunctionIfNoTrailingOps(const Expression& expression);
  // Whether the expression is a single operand: one value or one function call, no operator at
  // its top.
  static bool IsExpressionSingleValued(const Expression& expression);

 private:
  const Function* mFunction = nullptr;
  AString mName;
  std::vector<AString> mArgs;
};
