// SPDX-License-Identifier: Apache-2.0
//
// Expression.cpp - a parsed expression as a value: evaluation on demand, references, copies.
//
// Explicit units ("(a + b) mm"): a result without units of its own is a number written in the
// explicit units, so the getters convert it to SI; a result with units is SI already and the
// explicit units only choose how it is shown.
#include "wycore/value/Expression.h"

#include <memory>

#include "wycore/core/Check.h"
#include "wycore/units/UnitDefinition.h"
#include "wycore/value/ComplexValue.h"
#include "wycore/value/ExpressionEvaluator.h"
#include "wycore/value/FloatValue.h"
#include "wycore/value/MatrixValue.h"
#include "wycore/value/StringValue.h"
#include "wycore/value/Value.h"
#include "wycore/value/VariableReferenceValue.h"

namespace {

IReceiver* AsReceiver(Expression* expression) { return static_cast<IReceiver*>(expression); }

}  // namespace

Expression::Expression(const AString& text) : mText(text) {}

Expression::Expression(const Expression& other)
    : IReceiver(),
      ValueBase(other),
      mText(other.mText),
      mExplicitUnits(other.mExplicitUnits),
      mOperations(other.mOperations),
      mFunctionCalls(other.mFunctionCalls),
      mResultState(other.mResultState) {
  mValues.reserve(other.mValues.size());
  for (const ValueBase* value : other.mValues) mValues.push_back(value->CloneValueBase());
  if (other.mRegistered) RegisterWithValues();
}

Expression::~Expression() {
  UnregisterFromValues();
  for (ValueBase* value : mValues) delete value;
}

void Expression::AppendValue(ValueBase* value) {
  if (!WY_CHECK(value != nullptr)) return;
  mValues.push_back(value);
  if (mRegistered) value->AddRef(AsReceiver(this));
}

void Expression::RegisterWithValues() {
  if (mRegistered) return;
  mRegistered = true;
  for (ValueBase* value : mValues) value->AddRef(AsReceiver(this));
}

void Expression::UnregisterFromValues() {
  if (!mRegistered) return;
  mRegistered = false;
  for (ValueBase* value : mValues) value->Release(AsReceiver(this));
}

void Expression::RegenerateText() {
  if (mOperations.empty()) return;
  AString text = Value::GenerateExpressionText(*this);
  if (!text.empty()) mText = std::move(text);
}

void Expression::SetExplicitUnitsAndClearUnitsFromText(Units::FullUnitType units) {
  // The units are kept apart from the text: GetValueText writes them back behind it.
  mExplicitUnits = units;
}

bool Expression::IsSingleValued() const {
  return mOperations.size() == 3 && mOperations[0] == kStartOfExpressionOp &&
         IsValuePushOp(mOperations[1]) && mOperations[2] == kEndOfExpressionOp &&
         mValues.size() == 1;
}

// ---- Evaluation --------------------------------------------------------------------------

bool Expression::ResultTakesExplicitUnits() const {
  return mExplicitUnits != Units::NoUnits && mResultState.mUnits == Units::NoUnits;
}

double Expression::GetValue() const {
  ExpressionEvaluator evaluator(*this);
  const double value = evaluator.EvaluateRealExpression();
  return ResultTakesExplicitUnits() ? Units::ConvertToSI(value, mExplicitUnits) : value;
}

AComplex<double> Expression::GetComplexValue() const {
  ExpressionEvaluator evaluator(*this);
  const AComplex<double> value = evaluator.EvaluateComplexExpression();
  return ResultTakesExplicitUnits() ? Units::ConvertToSI(value, mExplicitUnits) : value;
}

TNT::Matrix<double> Expression::GetDoubleMatrixValue() const {
  ExpressionEvaluator evaluator(*this);
  TNT::Matrix<double> matrix = evaluator.EvaluateDoubleMatrixExpression();
  if (ResultTakesExplicitUnits()) {
    for (int r = 0; r < matrix.num_rows(); ++r) {
      for (int c = 0; c < matrix.num_cols(); ++c) {
        matrix[r][c] = Units::ConvertToSI(matrix[r][c], mExplicitUnits);
      }
    }
  }
  return matrix;
}

TNT::Matrix<AComplex<double>> Expression::GetComplexMatrixValue() const {
  ExpressionEvaluator evaluator(*this);
  TNT::Matrix<AComplex<double>> matrix = evaluator.EvaluateComplexMatrixExpression();
  if (ResultTakesExplicitUnits()) {
    for (int r = 0; r < matrix.num_rows(); ++r) {
      for (int c = 0; c < matrix.num_cols(); ++c) {
        matrix[r][c] = Units::ConvertToSI(matrix[r][c], mExplicitUnits);
      }
    }
  }
  return matrix;
}

MatrixSizeInfo Expression::GetMatrixSize() const {
  MatrixSizeInfo size;
  if (mResultState.mKind == val::kDoubleMatrixParam) {
    const TNT::Matrix<double> matrix = GetDoubleMatrixValue();
    size.mNumRows = matrix.num_rows();
    size.mNumCols = matrix.num_cols();
  } else if (mResultState.mKind == val::kComplexMatrixParam) {
    const TNT::Matrix<AComplex<double>> matrix = GetComplexMatrixValue();
    size.mNumRows = matrix.num_rows();
    size.mNumCols = matrix.num_cols();
  }
  return size;
}

std::vector<double> Expression::GetDoubleArrayValue() const {
  // A scalar result read as a list is a list of one.
  switch (mResultState.mKind) {
    case val::kDoubleParam:
      return {GetValue()};
    case val::kComplexParam:
      return {GetComplexValue().real()};
    default:
      return {};
  }
}

std::vector<AString> Expression::GetStringArrayValue() const {
  if (mResultState.mKind != val::kStringParam) return {};
  return {GetStringValue()};
}

AString Expression::GetStringValue() const {
  if (mResultState.mKind != val::kStringParam) return ValueBase::GetStringValue();
  ExpressionEvaluator evaluator(*this);
  return evaluator.EvaluateStringExpression();
}

ADValue<double> Expression::GetDValue(int order, const Variable& variable) const {
  ExpressionEvaluator evaluator(*this);
  return evaluator.EvaluateRealDerivative(order, variable);
}

ADValue<AComplex<double>> Expression::GetDComplexValue(int order, const Variable& variable) const {
  ExpressionEvaluator evaluator(*this);
  return evaluator.EvaluateComplexDerivative(order, variable);
}

// ---- Text --------------------------------------------------------------------------------

void Expression::GetValueText(AString& text, AString& units, AString& suffix) const {
  text = mText;
  units.clear();
  suffix.clear();
  if (mExplicitUnits != Units::NoUnits) {
    if (const UnitDefinition* unit = Units::FindUnitDef(mExplicitUnits)) {
      text = AString(u"(") + mText + AString(u")");
      units = unit->GetUnitString();
    }
  }
}

AString Expression::GetValueText() const {
  AString text;
  AString units;
  AString suffix;
  GetValueText(text, units, suffix);
  if (units.empty()) return text;
  return text + AString(u" ") + units;
}

AString Expression::GetValueTextIncorporateOverrideUnits() const { return GetValueText(); }

// ---- Identity and kind -------------------------------------------------------------------

ValueBase* Expression::CloneValueBase() const { return new Expression(*this); }

bool Expression::IsEqual(const ValueBase& other) const {
  if (&other == this) return true;
  const val::ParameterType otherKind = other.GetParameterType();
  switch (mResultState.mKind) {
    case val::kDoubleParam:
      if (otherKind == val::kDoubleParam || otherKind == val::kIntParam ||
          otherKind == val::kEnumParam) {
        return val::AreNumbersEqual(GetValue(), other.GetValue());
      }
      if (otherKind == val::kComplexParam) {
        return val::AreNumbersEqual(GetComplexValue(), other.GetComplexValue());
      }
      return false;
    case val::kComplexParam:
      if (otherKind == val::kDoubleParam || otherKind == val::kComplexParam) {
        return val::AreNumbersEqual(GetComplexValue(), other.GetComplexValue());
      }
      return false;
    case val::kStringParam:
      return otherKind == val::kStringParam && GetStringValue() == other.GetStringValue();
    default:
      return ValueBase::IsEqual(other);
  }
}

bool Expression::IsConstant() const {
  for (const ValueBase* value : mValues) {
    if (!value->IsConstant()) return false;
  }
  return true;
}

Units::FullUnitType Expression::GetUnits() const {
  return mExplicitUnits != Units::NoUnits ? mExplicitUnits : mResultState.mUnits;
}

// ---- Receivers ---------------------------------------------------------------------------

void Expression::AddRef(IReceiver* receiver) { mOwners.Add(receiver); }

void Expression::Release(IReceiver* receiver) { mOwners.Remove(receiver); }

bool Expression::HasRef(IReceiver* receiver) const { return mOwners.Has(receiver); }

void Expression::ChangeOwner(IReceiver* from, IReceiver* to) { mOwners.ChangeOwner(from, to); }

bool Expression::Receive(const ReceiverMessage& message) {
  switch (message.kind) {
    case ReceiverMessage::kMayDelete:
      // The expression holds the variable; it must not go while the expression reads it.
      return false;
    case ReceiverMessage::kValueChanged:
      // A renamed variable shows its new name in the regenerated text.
      RegenerateText();
      return mOwners.Send(message);
    case ReceiverMessage::kMayChangeName:
    case ReceiverMessage::kValidateUpstreamValue:
    case ReceiverMessage::kRefreshDatasetCache:
      return mOwners.Send(message);
  }
  return true;
}

// ---- Derived values ----------------------------------------------------------------------

ValueBase* Expression::AddConstant(const double& constant) const {
  if (mResultState.mKind != val::kDoubleParam) return nullptr;
  return new FloatValue(GetValue() + constant, GetUnits());
}

ValueBase* Expression::SubstituteVariables() const {
  bool readsVariable = false;
  for (const ValueBase* value : mValues) {
    readsVariable = readsVariable || dynamic_cast<const VariableReferenceValue*>(value) != nullptr;
  }
  if (!readsVariable) return nullptr;
  auto copy = std::make_unique<Expression>(*this);
  copy->UnregisterFromValues();
  for (ValueBase*& value : copy->mValues) {
    const auto* reference = dynamic_cast<const VariableReferenceValue*>(value);
    if (reference == nullptr) continue;
    ValueBase* evaluated = reference->SubstituteVariables();
    if (evaluated == nullptr) continue;
    delete value;
    value = evaluated;
  }
  copy->RegisterWithValues();
  copy->RegenerateText();
  return copy.release();
}

bool Expression::TrySubstituteVariables(IVariableChanger& changer) const {
  for (const ValueBase* value : mValues) {
    if (value->TrySubstituteVariables(changer)) return true;
  }
  return false;
}

bool Expression::DoSubstituteVariables(IVariableChanger& changer) {
  bool changed = false;
  for (ValueBase* value : mValues) changed = value->DoSubstituteVariables(changer) || changed;
  if (changed) RegenerateText();
  return changed;
}

ValueBase* Expression::CreateEvaluatedValueBase() const {
  switch (mResultState.mKind) {
    case val::kDoubleParam:
      return new FloatValue(GetValue(), GetUnits());
    case val::kComplexParam:
      return new ComplexValue(GetComplexValue(), GetUnits());
    case val::kDoubleMatrixParam:
      return new DoubleMatrixValue(GetDoubleMatrixValue(), GetUnits());
    case val::kComplexMatrixParam:
      return new ComplexMatrixValue(GetComplexMatrixValue(), GetUnits());
    case val::kStringParam:
      return new StringValue(GetStringValue());
    default:
      return CloneValueBase();
  }
}

int Expression::ReassignDatasets(const CValueDatasetReassigner& reassigner) {
  int changed = 0;
  for (ValueBase* value : mValues) changed += value->ReassignDatasets(reassigner);
  if (changed > 0) RegenerateText();
  return changed;
}

void Expression::GetReferencedVariables(std::vector<const Variable*>& out) const {
  for (const ValueBase* value : mValues) value->GetReferencedVariables(out);
}

void Expression::GetReferencedDatasets(std::map<const IDatasetServer*, std::set<int>>& out) const {
  for (const ValueBase* value : mValues) value->GetReferencedDatasets(out);
}
