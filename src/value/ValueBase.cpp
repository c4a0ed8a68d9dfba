// SPDX-License-Identifier: Apache-2.0
//
// ValueBase.cpp - the neutral answers of every value and the number equality of the value model.
#include "wycore/value/ValueBase.h"

#include <climits>
#include <cmath>

#include "wycore/core/Check.h"

namespace val {

bool AreNumbersEqual(double a, double b) {
  if (!std::isfinite(a) || !std::isfinite(b)) return a == b;
  const double fa = std::fabs(a), fb = std::fabs(b);
  if (fa == 0.0 && fb == 0.0) return true;
  return std::fabs(a - b) <= 1e-14 * (fa > fb ? fa : fb);
}

bool AreNumbersEqual(const AComplex<double>& a, const AComplex<double>& b) {
  return AreNumbersEqual(a.real(), b.real()) && AreNumbersEqual(a.imag(), b.imag());
}

int RoundToInt(double value) {
  if (std::isnan(value)) return 0;
  const double r = std::round(value);  // halves away from zero
  if (r >= static_cast<double>(INT_MAX)) return INT_MAX;
  if (r <= static_cast<double>(INT_MIN)) return INT_MIN;
  return static_cast<int>(r);
}

}  // namespace val

ValueBase::~ValueBase() = default;

val::DBType ValueBase::GetDBType() const { return Units::GetDBType(GetUnits()); }

MatrixSizeInfo ValueBase::GetMatrixSize() const { return MatrixSizeInfo{}; }

double ValueBase::GetValue() const { return 0.0; }

AComplex<double> ValueBase::GetComplexValue() const { return AComplex<double>(GetValue(), 0.0); }

TNT::Matrix<double> ValueBase::GetDoubleMatrixValue() const { return TNT::Matrix<double>(); }

TNT::Matrix<AComplex<double>> ValueBase::GetComplexMatrixValue() const {
  return TNT::Matrix<AComplex<double>>();
}

T_2DMatrix<AString> ValueBase::GetStringMatrixValue() const { return T_2DMatrix<AString>(); }

std::vector<AString> ValueBase::GetStringArrayValue() const { return {}; }

std::vector<double> ValueBase::GetDoubleArrayValue() const { return {}; }

int ValueBase::GetIntValue() const { return val::RoundToInt(GetValue()); }

char ValueBase::GetCharValue() const { return 0; }

int ValueBase::GetEnumValue() const { return GetIntValue(); }

AString ValueBase::GetStringValue() const { return AString(u"\"\""); }

ADValue<double> ValueBase::GetDValue(int order, const Variable&) const {
  return ADValue<double>::Constant(GetValue(), order);
}

ADValue<AComplex<double>> ValueBase::GetDComplexValue(int order, const Variable&) const {
  return ADValue<AComplex<double>>::Constant(GetComplexValue(), order);
}

ArcParam ValueBase::GetArcParam() const { return ArcParam(); }

CircleParam ValueBase::GetCircleParam() const { return CircleParam(); }

RegionParam ValueBase::GetRegionParam() const { return RegionParam(); }

void ValueBase::GetValueText(AString& text, AString& units, AString& suffix) const {
  text = GetValueText();
  units.clear();
  suffix.clear();
}

AString ValueBase::GetValueText() const { return AString(); }

AString ValueBase::GetValueTextIncorporateOverrideUnits() const { return GetValueText(); }

bool ValueBase::IsEqual(const ValueBase& other) const {
  if (this == &other) return true;
  return GetParameterType() == other.GetParameterType() && GetValueText() == other.GetValueText();
}

bool ValueBase::IsConstant() const { return true; }

Units::FullUnitType ValueBase::GetUnits() const { return Units::NoUnits; }

Units::FullUnitType ValueBase::GetExplicitUnits() const { return Units::NoUnits; }

void ValueBase::SetExplicitUnits(Units::FullUnitType) {}

val::ParameterType ValueBase::GetParameterType() const { return val::kNotParam; }

void ValueBase::AddRef(IReceiver*) {}

void ValueBase::Release(IReceiver*) {}

bool ValueBase::HasRef(IReceiver*) const { return false; }

void ValueBase::ChangeOwner(IReceiver*, IReceiver*) {}

ValueBase* ValueBase::AddConstant(const double&) const { return nullptr; }

ValueBase* ValueBase::SubstituteVariables() const { return nullptr; }

bool ValueBase::TrySubstituteVariables(IVariableChanger&) const { return false; }

bool ValueBase::DoSubstituteVariables(IVariableChanger&) { return false; }

int ValueBase::GetDatasetID() const { return -1; }

const IDatasetServer* ValueBase::GetDatasetServer() const { return nullptr; }

ValueBase* ValueBase::CreateEvaluatedValueBase() const { return CloneValueBase(); }

int ValueBase::ReassignDatasets(const CValueDatasetReassigner&) { return 0; }

void ValueBase::GetReferencedVariables(std::vector<const Variable*>&) const {}

void ValueBase::GetReferencedDatasets(std::map<const IDatasetServer*, std::set<int>>& out) const {
  const IDatasetServer* server = GetDatasetServer();
  const int id = GetDatasetID();
  if (server != nullptr && id >= 0) out[server].insert(id);
}
