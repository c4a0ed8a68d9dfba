// SPDX-License-Identifier: Apache-2.0
//
// VariableReferenceValue.h - the entry of an expression's value list that reads a variable.
//
// The expression parser appends one of these for every name it resolves to a variable. Every
// getter reads the variable at the time of the call (so an expression sees the variable's
// current value); the text is the variable's name as it is now (a renamed variable shows its
// new name when the expression's text is regenerated). Registration (AddRef, Release, HasRef,
// ChangeOwner) is passed to the variable: the expression that owns the reference registers
// itself this way and so hears of the variable's changes.
//
// Ownership: the reference does not own the variable; the variable must outlive it (variables
// ask their owners before they are deleted, and an expression that reads one objects).
// Substitution by an IVariableChanger is not done here: the reference itself never changes.
#pragma once

#include "wycore/Export.h"
#include "wycore/value/ValueBase.h"

class WYCORE_API VariableReferenceValue : public ValueBase {
 public:
  // `variable` must not be null.
  explicit VariableReferenceValue(Variable* variable);
  VariableReferenceValue(const VariableReferenceValue&) = default;
  VariableReferenceValue& operator=(const VariableReferenceValue&) = delete;
  ~VariableReferenceValue() override;

  Variable* GetVariable() const { return mVariable; }
  // The variable's current name.
  const AString& GetName() const;

  val::DBType GetDBType() const override;
  MatrixSizeInfo GetMatrixSize() const override;
  double GetValue() const override;
  AComplex<double> GetComplexValue() const override;
  TNT::Matrix<double> GetDoubleMatrixValue() const override;
  TNT::Matrix<AComplex<double>> GetComplexMatrixValue() const override;
  T_2DMatrix<AString> GetStringMatrixValue() const override;
  std::vector<AString> GetStringArrayValue() const override;
  std::vector<double> GetDoubleArrayValue() const override;
  int GetIntValue() const override;
  char GetCharValue() const override;
  int GetEnumValue() const override;
  AString GetStringValue() const override;
  ADValue<double> GetDValue(int order, const Variable& variable) const override;
  ADValue<AComplex<double>> GetDComplexValue(int order, const Variable& variable) const override;
  ArcParam GetArcParam() const override;
  CircleParam GetCircleParam() const override;
  RegionParam GetRegionParam() const override;
  // The variable's name, no units piece.
  void GetValueText(AString& text, AString& units, AString& suffix) const override;
  AString GetValueText() const override;
  AString GetValueTextIncorporateOverrideUnits() const override;
  ValueBase* CloneValueBase() const override;
  // Another reference to the same variable.
  bool IsEqual(const ValueBase& other) const override;
  // False when the variable can change; a constant of the value manager that holds a constant
  // value answers true.
  bool IsConstant() const override;
  Units::FullUnitType GetUnits() const override;
  Units::FullUnitType GetExplicitUnits() const override;
  val::ParameterType GetParameterType() const override;
  void AddRef(IReceiver* receiver) override;
  void Release(IReceiver* receiver) override;
  bool HasRef(IReceiver* receiver) const override;
  void ChangeOwner(IReceiver* from, IReceiver* to) override;
  // The variable's current value, evaluated (a constant).
  ValueBase* SubstituteVariables() const override;
  int GetDatasetID() const override;
  const IDatasetServer* GetDatasetServer() const override;
  ValueBase* CreateEvaluatedValueBase() const override;
  // The variable itself.
  void GetReferencedVariables(std::vector<const Variable*>& out) const override;
  void GetReferencedDatasets(std::map<const IDatasetServer*, std::set<int>>& out) const override;

 private:
  const ValueBase& Target() const;
  ValueBase& Target();

  Variable* mVariable;
};
