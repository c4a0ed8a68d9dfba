// SPDX-License-Identifier: Apache-2.0
//
// Expression.h - a parsed expression: postfix operation stream, the values and functions it
// reads, and the statically derived state (units, kind) of its result.
//
// An Expression is built by ExpressionParser (the only code that fills the stream) and is a
// ValueBase like any other value: every getter re-runs the stream through ExpressionEvaluator,
// so a change to a variable it reads shows at the next read. The stream layout is described in
// Operation.h.
//
// Data:
//   - the text (regenerated to its canonical form after a parse) and the explicit units (90 when
//     none): the units the whole expression is shown in when written "(a + b) mm";
//   - the operation stream (32-bit codes);
//   - the value list (owned): constants and variable references (VariableReferenceValue), in the
//     order the stream consumes them;
//   - the function list: per kFunctionOp of the stream, in stream order, the Function called,
//     the positions of its argument sub-streams and the argument states;
//   - the result ValueState (its mKind is GetParameterType()).
//
// References: the expression registers itself as a receiver with every value of its list
// (AddRef), which a variable reference forwards to its variable; so the expression hears when a
// variable it reads changes and passes the news to its own owners (the variable or property
// that holds it). It objects when a variable it reads asks to be deleted. GetReferencedVariables
// lists the variables read directly, which is what the variables' cycle check walks.
//
// Ownership: the expression owns its values; functions belong to the function table. Copies
// (CloneValueBase) clone every value and register anew. Threading: the thread that owns the
// design data; evaluation uses per-call state only.
#pragma once

#include <utility>
#include <vector>

#include "wycore/Export.h"
#include "wycore/core/Receiver.h"
#include "wycore/value/Operation.h"
#include "wycore/value/ValueBase.h"
#include "wycore/value/ValueState.h"

class Function;
class ExpressionParser;

// One call of the function list.
struct FunctionCall {
  const Function* mFunction = nullptr;  // owned by the function table
  int mOperationIndex = -1;             // index of the call's kFunctionOp in the stream
  // Per argument: the stream indices of its kStartOfExpressionOp and of its kEndOfExpressionOp.
  std::vector<std::pair<int, int>> mArguments;
  // Per argument: its state as the parser derived it (used to pick the overload).
  std::vector<ValueState> mArgumentStates;
};

class WYCORE_API Expression : public ValueBase {
 public:
  // An empty expression holding `text` (no stream: evaluates to NaN). The parser fills it.
  explicit Expression(const AString& text = AString());
  Expression(const Expression& other);
  Expression& operator=(const Expression&) = delete;
  ~Expression() override;

  // ---- Data, read by the evaluator, the walker and the text generator ---------------------

  const AString& GetText() const { return mText; }
  void SetText(const AString& text) { mText = text; }
  const std::vector<Operation>& GetOperations() const { return mOperations; }
  const std::vector<ValueBase*>& GetValues() const { return mValues; }
  const std::vector<FunctionCall>& GetFunctionCalls() const { return mFunctionCalls; }
  const ValueState& GetResultState() const { return mResultState; }
  // The stream holds nothing but start, one value, end (a lone constant or variable).
  bool IsSingleValued() const;

  // ---- ValueBase --------------------------------------------------------------------------

  val::DBType GetDBType() const override { return mResultState.mDBType; }
  MatrixSizeInfo GetMatrixSize() const override;
  double GetValue() const override;
  AComplex<double> GetComplexValue() const override;
  TNT::Matrix<double> GetDoubleMatrixValue() const override;
  TNT::Matrix<AComplex<double>> GetComplexMatrixValue() const override;
  std::vector<AString> GetStringArrayValue() const override;
  std::vector<double> GetDoubleArrayValue() const override;
  AString GetStringValue() const override;
  ADValue<double> GetDValue(int order, const Variable& variable) const override;
  ADValue<AComplex<double>> GetDComplexValue(int order, const Variable& variable) const override;
  // The canonical text; with explicit units "(text)" and the units' name as the units piece.
  void GetValueText(AString& text, AString& units, AString& suffix) const override;
  // The canonical text, or "(text) unit" with explicit units: the form Parse reads back.
  AString GetValueText() const override;
  AString GetValueTextIncorporateOverrideUnits() const override;
  ValueBase* CloneValueBase() const override;
  // By value: real results by the value model's number equality, complex results by both parts,
  // string results by text; other kinds by text.
  bool IsEqual(const ValueBase& other) const override;
  // True when no value of the list can change (no variable is read).
  bool IsConstant() const override;
  // The result units, or the explicit units when set.
  Units::FullUnitType GetUnits() const override;
  Units::FullUnitType GetExplicitUnits() const override { return mExplicitUnits; }
  void SetExplicitUnits(Units::FullUnitType units) override { mExplicitUnits = units; }
  val::ParameterType GetParameterType() const override { return mResultState.mKind; }
  void AddRef(IReceiver* receiver) override;
  void Release(IReceiver* receiver) override;
  bool HasRef(IReceiver* receiver) const override;
  void ChangeOwner(IReceiver* from, IReceiver* to) override;
  // A real expression plus a constant: a FloatValue of the evaluated result shifted by it in
  // the result units; null for other kinds.
  ValueBase* AddConstant(const double& constant) const override;
  // A copy in which every variable reference is replaced by a constant clone of the variable's
  // current value; null when the expression reads no variable.
  ValueBase* SubstituteVariables() const override;
  bool TrySubstituteVariables(IVariableChanger& changer) const override;
  bool DoSubstituteVariables(IVariableChanger& changer) override;
  // A FloatValue, ComplexValue, matrix or string value holding the evaluated result.
  ValueBase* CreateEvaluatedValueBase() const override;
  int ReassignDatasets(const CValueDatasetReassigner& reassigner) override;
  void GetReferencedVariables(std::vector<const Variable*>& out) const override;
  void GetReferencedDatasets(std::map<const IDatasetServer*, std::set<int>>& out) const override;

  // Messages from the variables read: a change is passed to the owners (after the text is
  // regenerated); a request to delete one is refused.
  bool Receive(const ReceiverMessage& message) override;

 private:
  friend class ExpressionParser;

  // Parser interface: appends an operation or a value (owned). The parser registers the
  // finished expression with its values (RegisterWithValues) once the parse has succeeded.
  void AppendOperation(Operation op) { mOperations.push_back(op); }
  void AppendValue(ValueBase* value);
  // Removes explicit units written inside the text: the whole expression is shown in `units`.
  void SetExplicitUnitsAndClearUnitsFromText(Units::FullUnitType units);
  void RegisterWithValues();
  void UnregisterFromValues();
  // A result without units of its own is a number in the explicit units.
  bool ResultTakesExplicitUnits() const;
  // Rebuilds the text from the stream (Value::GenerateExpressionText); keeps the old text when
  // nothing can be generated.
  void RegenerateText();

  AString mText;
  Units::FullUnitType mExplicitUnits = Units::NoUnits;
  std::vector<Operation> mOperations;
  std::vector<ValueBase*> mValues;  // owned
  std::vector<FunctionCall> mFunctionCalls;
  ValueState mResultState;
  ReceiverManager mOwners;
  bool mRegistered = false;  // registered as a receiver with the values of the list
};
