// SPDX-License-Identifier: Apache-2.0
//
// Value.cpp - the value handle: ownership of the implementation, setters and references.
//
// The static registry functions declared in Value.h are defined by the variables area; the
// persistence of values is in ValuePersistence.cpp and the text reader in ValueReader.cpp.
#include "wycore/value/Value.h"

#include <algorithm>

#include "wycore/value/CharValue.h"
#include "wycore/value/ComplexValue.h"
#include "wycore/value/EnumValue.h"
#include "wycore/value/FloatValue.h"
#include "wycore/value/IntValue.h"
#include "wycore/value/MatrixValue.h"
#include "wycore/value/StringValue.h"

// ---- Construction ------------------------------------------------------------------------------

Value::Value() : mValueBase(new FloatValue(0.0, Units::NoUnits)) {}

Value::Value(double value, Units::FullUnitType units) : mValueBase(new FloatValue(value, units)) {}

Value::Value(const AComplex<double>& value, Units::FullUnitType units)
    : mValueBase(new ComplexValue(value, units)) {}

Value::Value(const TNT::Matrix<double>& value, Units::FullUnitType units)
    : mValueBase(new DoubleMatrixValue(value, units)) {}

Value::Value(const TNT::Matrix<AComplex<double>>& value, Units::FullUnitType units)
    : mValueBase(new ComplexMatrixValue(value, units)) {}

Value::Value(const AString& text, Units::FullUnitType units) : mValueBase(nullptr) {
  mValueBase = CreateValueBase(text, units);
  if (mValueBase == nullptr) mValueBase = new FloatValue(0.0, units);
}

Value::Value(const ValueBase& value) : mValueBase(value.CloneValueBase()) {
  if (mValueBase == nullptr) mValueBase = new FloatValue(0.0, Units::NoUnits);
}

Value::Value(ValueBase* value)
    : mValueBase(value != nullptr ? value : new FloatValue(0.0, Units::NoUnits)) {}

Value::Value(Units::FullUnitType units) : mValueBase(new FloatValue(0.0, units)) {}

Value::Value(Units::UnitType unitType)
    : mValueBase(new FloatValue(
          0.0, Units::IsInitialized() ? Units::GetDefaultUnits(unitType) : Units::NoUnits)) {}

Value::Value(const Value& other) : mValueBase(other.mValueBase->CloneValueBase()) {
  if (mValueBase == nullptr) mValueBase = new FloatValue(0.0, Units::NoUnits);
}

Value::Value(Value&& other) noexcept : mValueBase(other.mValueBase) {
  // The moved-from handle keeps a valid implementation; the owner stays with it.
  other.mValueBase = new FloatValue(0.0, Units::NoUnits);
  if (other.mOwner != nullptr) {
    mValueBase->Release(other.mOwner);
    other.mValueBase->AddRef(other.mOwner);
  }
}

Value& Value::operator=(const Value& other) {
  if (this != &other) {
    ValueBase* copy = other.mValueBase->CloneValueBase();
    if (copy != nullptr) Install(copy);
  }
  return *this;
}

Value& Value::operator=(Value&& other) noexcept {
  if (this != &other) {
    ValueBase* taken = other.mValueBase;
    other.mValueBase = new FloatValue(0.0, Units::NoUnits);
    if (other.mOwner != nullptr) {
      taken->Release(other.mOwner);
      other.mValueBase->AddRef(other.mOwner);
    }
    Install(taken);
  }
  return *this;
}

Value::~Value() {
  if (mOwner != nullptr) mValueBase->Release(mOwner);
  delete mValueBase;
}

void Value::Install(ValueBase* value) {
  if (value == mValueBase) return;
  if (mOwner != nullptr) {
    mValueBase->Release(mOwner);
    value->AddRef(mOwner);
  }
  delete mValueBase;
  mValueBase = value;
}

// ---- Getters -----------------------------------------------------------------------------------

Units::UnitType Value::GetUnitType() const {
  if (!Units::IsInitialized()) return Units::NoUnit;
  return Units::ConvertToUnitType(GetUnits());
}

AString Value::GetValueTextWithoutUnits() const {
  AString text, units, suffix;
  mValueBase->GetValueText(text, units, suffix);
  return text;
}

// ---- Setters -----------------------------------------------------------------------------------

void Value::SetValueBase(const ValueBase& value) {
  ValueBase* copy = value.CloneValueBase();
  if (copy != nullptr) Install(copy);
}

bool Value::SetValueBase(ValueBase* value) {
  if (value == nullptr) return false;
  Install(value);
  return true;
}

bool Value::SetValueText(const AString& text, Units::FullUnitType defaultUnits,
                         bool allowObsoleteVariable) {
  ValueBase* created = allowObsoleteVariable
                           ? CreateValueBaseFromTextWithObsoletedVariable(text, defaultUnits)
                           : CreateValueBase(text, defaultUnits);
  if (created == nullptr) return false;
  Install(created);
  return true;
}

void Value::SetIntValue(int value) { Install(new IntValue(value)); }

void Value::SetCharValue(char value) { Install(new CharValue(value)); }

void Value::SetEnumValue(int value) { Install(new EnumValue(value)); }

void Value::SetStringValueText(const AString& text) {
  if (StringValue* literal = StringValue::Parse(text)) {
    Install(literal);
    return;
  }
  Install(new StringValue(AString(u"\"") + text + AString(u"\"")));
}

// ---- References --------------------------------------------------------------------------------

void Value::GetReferencedVariables(std::vector<const Variable*>& out) const {
  std::vector<const Variable*> direct;
  mValueBase->GetReferencedVariables(direct);
  for (const Variable* v : direct) {
    if (v != nullptr && std::find(out.begin(), out.end(), v) == out.end()) out.push_back(v);
  }
}

bool Value::UsesVariable(const Variable* variable) const {
  if (variable == nullptr) return false;
  std::vector<const Variable*> direct;
  GetReferencedVariables(direct);
  return std::find(direct.begin(), direct.end(), variable) != direct.end();
}

bool Value::UsesIntrinsicVariable() const {
  std::vector<const Variable*> direct;
  GetReferencedVariables(direct);
  if (direct.empty()) return false;
  std::vector<Variable*> intrinsics;
  GetIntrinsicVariables(intrinsics);
  for (const Variable* v : direct) {
    if (std::find(intrinsics.begin(), intrinsics.end(), v) != intrinsics.end()) return true;
  }
  return false;
}

bool Value::UsesSpatialIntrinsics() const {
  std::vector<const Variable*> direct;
  GetReferencedVariables(direct);
  if (direct.empty()) return false;
  static const AChar* const kSpatial[] = {
      u"X", u"Y", u"Z", u"R", u"Theta", u"Phi", u"Rho", u"Distance", u"NormalizedDistance"};
  for (const AChar* name : kSpatial) {
    const Variable* v = GetIntrinsicVariable(AString(name));
    if (v != nullptr && std::find(direct.begin(), direct.end(), v) != direct.end()) return true;
  }
  return false;
}

void Value::GetReferencedDatasets(std::map<const IDatasetServer*, std::set<int>>& out) const {
  mValueBase->GetReferencedDatasets(out);
}

bool Value::SubstituteVariables() {
  ValueBase* substituted = mValueBase->SubstituteVariables();
  if (substituted == nullptr) return false;
  Install(substituted);
  return true;
}

bool Value::TrySubstituteVariables(IVariableChanger& changer) {
  if (!mValueBase->TrySubstituteVariables(changer)) return false;
  return mValueBase->DoSubstituteVariables(changer);
}

void Value::ReplaceWithEvaluatedValueBase() {
  ValueBase* evaluated = mValueBase->CreateEvaluatedValueBase();
  if (evaluated != nullptr) Install(evaluated);
}

void Value::UpdateSelfWithEvaluatedValueOf(const Value& other) {
  ValueBase* evaluated = other.mValueBase->CreateEvaluatedValueBase();
  if (evaluated != nullptr) Install(evaluated);
}

void Value::SetOwner(IReceiver* owner) {
  if (owner == mOwner) return;
  if (mOwner != nullptr) mValueBase->Release(mOwner);
  mOwner = owner;
  if (mOwner != nullptr) mValueBase->AddRef(mOwner);
}
