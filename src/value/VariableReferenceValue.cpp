// SPDX-License-Identifier: Apache-2.0
//
// VariableReferenceValue.cpp - a value-list entry that reads a variable at every call.
#include "wycore/value/VariableReferenceValue.h"

#include "wycore/value/Value.h"
#include "wycore/variables/Variable.h"

VariableReferenceValue::VariableReferenceValue(Variable* variable) : mVariable(variable) {}

VariableReferenceValue::~VariableReferenceValue() = default;

inline const ValueBase& VariableReferenceValue::Target() const { return *mVariable; }
inline ValueBase& VariableReferenceValue::Target() { return *mVariable; }

const AString& VariableReferenceValue::GetName() const { return mVariable->GetName(); }

val::DBType VariableReferenceValue::GetDBType() const { return Target().GetDBType(); }
MatrixSizeInfo VariableReferenceValue::GetMatrixSize() const { return Target().GetMatrixSize(); }
double VariableReferenceValue::GetValue() const { return Target().GetValue(); }
AComplex<double> VariableReferenceValue::GetComplexValue() const {
  return Target().GetComplexValue();
}
TNT::Matrix<double> VariableReferenceValue::GetDoubleMatrixValue() const {
  return Target().GetDoubleMatrixValue();
}
TNT::Matrix<AComplex<double>> VariableReferenceValue::GetComplexMatrixValue() const {
  return Target().GetComplexMatrixValue();
}
T_2DMatrix<AString> VariableReferenceValue::GetStringMatrixValue() const {
  return Target().GetStringMatrixValue();
}
std::vector<AString> VariableReferenceValue::GetStringArrayValue() const {
  return Target().GetStringArrayValue();
}
std::vector<double> VariableReferenceValue::GetDoubleArrayValue() const {
  return Target().GetDoubleArrayValue();
}
int VariableReferenceValue::GetIntValue() const { return Target().GetIntValue(); }
char VariableReferenceValue::GetCharValue() const { return Target().GetCharValue(); }
int VariableReferenceValue::GetEnumValue() const { return Target().GetEnumValue(); }
AString VariableReferenceValue::GetStringValue() const { return Target().GetStringValue(); }
ADValue<double> VariableReferenceValue::GetDValue(int order, const Variable& variable) const {
  return Target().GetDValue(order, variable);
}
ADValue<AComplex<double>> VariableReferenceValue::GetDComplexValue(int order,
                                                                   const Variable& variable) const {
  return Target().GetDComplexValue(order, variable);
}
ArcParam VariableReferenceValue::GetArcParam() const { return Target().GetArcParam(); }
CircleParam VariableReferenceValue::GetCircleParam() const { return Target().GetCircleParam(); }
RegionParam VariableReferenceValue::GetRegionParam() const { return Target().GetRegionParam(); }

void VariableReferenceValue::GetValueText(AString& text, AString& units, AString& suffix) const {
  text = GetName();
  units.clear();
  suffix.clear();
}

AString VariableReferenceValue::GetValueText() const { return GetName(); }

AString VariableReferenceValue::GetValueTextIncorporateOverrideUnits() const { return GetName(); }

ValueBase* VariableReferenceValue::CloneValueBase() const {
  return new VariableReferenceValue(mVariable);
}

bool VariableReferenceValue::IsEqual(const ValueBase& other) const {
  const auto* reference = dynamic_cast<const VariableReferenceValue*>(&other);
  return reference != nullptr && reference->mVariable == mVariable;
}

bool VariableReferenceValue::IsConstant() const {
  // The value manager's constants ("pi", "c0", ...) never change; every other variable may.
  return Value::GetConstantVariable(GetName()) == mVariable;
}

Units::FullUnitType VariableReferenceValue::GetUnits() const { return Target().GetUnits(); }
Units::FullUnitType VariableReferenceValue::GetExplicitUnits() const {
  return Target().GetExplicitUnits();
}
val::ParameterType VariableReferenceValue::GetParameterType() const {
  return Target().GetParameterType();
}

void VariableReferenceValue::AddRef(IReceiver* receiver) { Target().AddRef(receiver); }
void VariableReferenceValue::Release(IReceiver* receiver) { Target().Release(receiver); }
bool VariableReferenceValue::HasRef(IReceiver* receiver) const { return Target().HasRef(receiver); }
void VariableReferenceValue::ChangeOwner(IReceiver* from, IReceiver* to) {
  Target().ChangeOwner(from, to);
}

ValueBase* VariableReferenceValue::SubstituteVariables() const {
  return Target().CreateEvaluatedValueBase();
}

int VariableReferenceValue::GetDatasetID() const { return Target().GetDatasetID(); }
const IDatasetServer* VariableReferenceValue::GetDatasetServer() const {
  return Target().GetDatasetServer();
}
ValueBase* VariableReferenceValue::CreateEvaluatedValueBase() const {
  return Target().CreateEvaluatedValueBase();
}

void VariableReferenceValue::GetReferencedVariables(std::vector<const Variable*>& out) const {
  out.push_back(mVariable);
}

void VariableReferenceValue::GetReferencedDatasets(
    std::map<const IDatasetServer*, std::set<int>>& out) const {
  Target().GetReferencedDatasets(out);
}
