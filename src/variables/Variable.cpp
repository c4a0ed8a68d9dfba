// SPDX-License-Identifier: Apache-2.0
//
// Variable.cpp - named values: the cycle check, renaming with the owners' consent, parameter
// passing and the process-wide name IDs.
#include "wycore/variables/Variable.h"

#include <map>
#include <unordered_set>

#include "NameLess.h"
#include "wycore/core/Check.h"
#include "wycore/value/ComplexValue.h"
#include "wycore/value/FloatValue.h"
#include "wycore/value/Value.h"

namespace {

// One ID per name (case-blind) for the life of the process.
struct NameIDs {
  std::map<AString, int, wycore::detail::NameLess> mIDs;
  int mNextID = 0;
};

NameIDs& ProcessNameIDs() {
  static NameIDs ids;  // never destroyed before the variables of static objects that use it
  return ids;
}

IReceiver* AsReceiver(Variable* variable) { return static_cast<IReceiver*>(variable); }

}  // namespace

// ---- Construction ------------------------------------------------------------------------

Variable::Variable(const AString& name, const AString& text, Units::FullUnitType units)
    : mName(name) {
  InternalSetUniqueID();
  ValueBase* value = Value::CreateValueBase(text, units);
  if (value == nullptr) value = new FloatValue(0.0, units);
  InternalSetValueBase(value);
}

Variable::Variable(const AString& name, double value, Units::FullUnitType units) : mName(name) {
  InternalSetUniqueID();
  InternalSetValueBase(new FloatValue(value, units));
}

Variable::Variable(const AString& name, const ValueBase& value) : mName(name) {
  InternalSetUniqueID();
  InternalSetValueBase(value.CloneValueBase());
}

Variable::Variable(const AString& name, ValueBase* value) : mName(name) {
  InternalSetUniqueID();
  InternalSetValueBase(value);
}

Variable::Variable(const Variable& other)
    : IReceiver(),
      ValueBase(other),
      SingleVisitReceiver<Variable>(other),
      mName(other.mName),
      mID(other.mID) {
  delete Attach(other.mValue->CloneValueBase());
}

Variable::Variable(int id, const AString& name) : mName(name) {
  NameIDs& ids = ProcessNameIDs();
  if (id != -1) {
    mID = id;
    if (!mName.empty()) ids.mIDs.emplace(mName, id);  // keeps an ID already recorded
    if (id >= ids.mNextID) ids.mNextID = id + 1;
  } else {
    auto it = ids.mIDs.find(mName);
    if (it != ids.mIDs.end()) mID = it->second;
  }
  delete Attach(new FloatValue(0.0, Units::NoUnits));
}

Variable::~Variable() {
  if (mValue != nullptr) {
    mValue->Release(AsReceiver(this));
    delete mValue;
  }
  for (SavedValue& saved : mSavedValuesWhilePassingParameter) delete saved.mValue;
}

// ---- Name and identity -------------------------------------------------------------------

void Variable::InternalSetUniqueID() {
  if (!WY_CHECK(mName.size() != 0)) return;
  NameIDs& ids = ProcessNameIDs();
  auto [it, inserted] = ids.mIDs.emplace(mName, ids.mNextID);
  if (inserted) ++ids.mNextID;
  mID = it->second;
}

bool Variable::ChangeName(const AString& name) {
  if (name.empty()) return false;
  if (name == mName) return true;
  ReceiverMessage message;
  message.kind = ReceiverMessage::kMayChangeName;
  message.sender = this;
  message.data = &name;
  if (!mOwners.Send(message)) {
    // An owner that reads the variable by name still finds it after a change of case.
    const bool caseOnly = name.CompareNoCase(mName) == 0;
    if (!caseOnly) return false;
  }
  mName = name;
  InternalSetUniqueID();
  return true;
}

bool Variable::ChangeNameRegenerateExpressions(const AString& name) {
  const AString old = mName;
  if (!ChangeName(name)) return false;
  if (old != mName) NotifyValueChanged();
  return true;
}

bool Variable::OKtoDelete() const {
  ReceiverMessage message;
  message.kind = ReceiverMessage::kMayDelete;
  message.sender = this;
  return mOwners.Send(message);
}

bool Variable::CreateNameWithPrefix(AString& name, AChar prefix) {
  std::size_t dollars = 0;
  while (dollars < name.size() && name[dollars] == u'$') ++dollars;
  name.erase(0, dollars);
  if (!name.IsLabel()) return false;
  name.insert(name.begin(), prefix);
  return true;
}

// ---- Setting values ----------------------------------------------------------------------

bool Variable::ValueReadsVariable(const ValueBase& value, const Variable& variable) {
  std::vector<const Variable*> pending;
  value.GetReferencedVariables(pending);
  std::unordered_set<const Variable*> seen;
  while (!pending.empty()) {
    const Variable* read = pending.back();
    pending.pop_back();
    if (read == nullptr) continue;
    if (read == &variable) return true;
    if (!seen.insert(read).second) continue;  // each variable is walked once: no endless loops
    read->GetValueBase().GetReferencedVariables(pending);
  }
  return false;
}

ValueBase* Variable::Attach(ValueBase* value) {
  ValueBase* old = mValue;
  if (old != nullptr) old->Release(AsReceiver(this));
  mValue = value;
  mValue->AddRef(AsReceiver(this));
  return old;
}

void Variable::ReportSelfReference(const ValueBase& value) const {
  const AString text = value.GetValueText();
  Value::HandleError(24540, &mName, &text);
}

void Variable::NotifyValueChanged() const {
  ReceiverMessage message;
  message.kind = ReceiverMessage::kValueChanged;
  message.sender = this;
  mOwners.Send(message);
}

bool Variable::InternalSetValueBase(ValueBase* value) {
  if (value == nullptr) value = new FloatValue(0.0, Units::NoUnits);
  if (value == this || ValueReadsVariable(*value, *this)) {
    ReportSelfReference(*value);
    if (value != this) delete value;
    if (mValue == nullptr) delete Attach(new FloatValue(0.0, Units::NoUnits));
    return false;
  }
  delete Attach(value);
  NotifyValueChanged();
  return true;
}

bool Variable::SetVariableText(const AString& text, Units::FullUnitType units,
                               bool obsoleteSyntax) {
  ValueBase* value = obsoleteSyntax
                         ? Value::CreateValueBaseFromTextWithObsoletedVariable(text, units)
                         : Value::CreateValueBase(text, units);
  if (value == nullptr) return false;
  return InternalSetValueBase(value);
}

bool Variable::SetValueBase(const ValueBase& value) {
  if (&value == this) return true;  // a variable set to itself keeps what it has
  return InternalSetValueBase(value.CloneValueBase());
}

bool Variable::SetValueBase(ValueBase* value) { return InternalSetValueBase(value); }

bool Variable::ExchangeValueBase(Value& value) {
  const ValueBase& incoming = value.GetValueBase();
  if (&incoming == this || ValueReadsVariable(incoming, *this)) {
    ReportSelfReference(incoming);
    return false;
  }
  value.SetValueBase(Attach(value.CloneValueBase()));
  NotifyValueChanged();
  return true;
}

void Variable::TempExchangeValueBase(Value& value) {
  value.SetValueBase(Attach(value.CloneValueBase()));
}

Variable& Variable::operator=(double value) {
  InternalSetValueBase(new FloatValue(value, Units::NoUnits));
  return *this;
}

Variable& Variable::operator=(const AComplex<double>& value) {
  InternalSetValueBase(new ComplexValue(value, Units::NoUnits));
  return *this;
}

Variable& Variable::operator=(const ValueBase& value) {
  SetValueBase(value);
  return *this;
}

// ---- Parameter passing -------------------------------------------------------------------

bool Variable::PassParameter(const ValueBase& value, const void* client) {
  const bool refused = &value == this || ValueReadsVariable(value, *this);
  if (refused) ReportSelfReference(value);
  ValueBase* copy = refused ? mValue->CloneValueBase() : value.CloneValueBase();
  if (copy == nullptr) copy = new FloatValue(0.0, Units::NoUnits);
  mSavedValuesWhilePassingParameter.push_back(SavedValue{Attach(copy), client});
  return !refused;
}

void Variable::UnpassParameter(const void* client) {
  if (!WY_CHECK(mSavedValuesWhilePassingParameter.size() > 0)) return;
  SavedValue saved = mSavedValuesWhilePassingParameter.back();
  if (!WY_CHECK(saved.mClient == client)) return;
  mSavedValuesWhilePassingParameter.pop_back();
  delete Attach(saved.mValue);
}

// ---- Upstream owners ---------------------------------------------------------------------

bool Variable::ValidateAgainstUpstreamOwners(const ValueBase& value) const {
  if (mValue->GetParameterType() != val::kTextStringArrayParam) return true;
  ReceiverMessage message;
  message.kind = ReceiverMessage::kValidateUpstreamValue;
  message.sender = this;
  message.data = &value;
  return mOwners.Send(message);
}

bool Variable::UpdateUpstreamOwnersOnValueChange() const {
  if (mValue->GetParameterType() != val::kTextStringArrayParam) return true;
  ReceiverMessage message;
  message.kind = ReceiverMessage::kRefreshDatasetCache;
  message.sender = this;
  return mOwners.Send(message);
}

bool Variable::ReceiveOnce(const ReceiverMessage& message) {
  switch (message.kind) {
    case ReceiverMessage::kValueChanged:
    case ReceiverMessage::kRefreshDatasetCache: {
      // Something the held value reads changed: whoever reads this variable must hear of it.
      ReceiverMessage forwarded = message;
      forwarded.sender = this;
      return mOwners.Send(forwarded);
    }
    case ReceiverMessage::kMayChangeName:
    case ReceiverMessage::kMayDelete:
    case ReceiverMessage::kValidateUpstreamValue:
      // Questions about something the value reads are for that value to answer.
      return true;
  }
  return true;
}

// ---- ValueBase, forwarded ----------------------------------------------------------------

val::DBType Variable::GetDBType() const { return mValue->GetDBType(); }
MatrixSizeInfo Variable::GetMatrixSize() const { return mValue->GetMatrixSize(); }
double Variable::GetValue() const { return mValue->GetValue(); }
AComplex<double> Variable::GetComplexValue() const { return mValue->GetComplexValue(); }
TNT::Matrix<double> Variable::GetDoubleMatrixValue() const {
  return mValue->GetDoubleMatrixValue();
}
TNT::Matrix<AComplex<double>> Variable::GetComplexMatrixValue() const {
  return mValue->GetComplexMatrixValue();
}
T_2DMatrix<AString> Variable::GetStringMatrixValue() const {
  return mValue->GetStringMatrixValue();
}
std::vector<AString> Variable::GetStringArrayValue() const { return mValue->GetStringArrayValue(); }
std::vector<double> Variable::GetDoubleArrayValue() const { return mValue->GetDoubleArrayValue(); }
int Variable::GetIntValue() const { return mValue->GetIntValue(); }
char Variable::GetCharValue() const { return mValue->GetCharValue(); }
int Variable::GetEnumValue() const { return mValue->GetEnumValue(); }
AString Variable::GetStringValue() const { return mValue->GetStringValue(); }

ADValue<double> Variable::GetDValue(int order, const Variable& variable) const {
  if (&variable == this) return ADValue<double>::Variable(mValue->GetValue(), order);
  return mValue->GetDValue(order, variable);
}

ADValue<AComplex<double>> Variable::GetDComplexValue(int order, const Variable& variable) const {
  if (&variable == this) {
    return ADValue<AComplex<double>>::Variable(mValue->GetComplexValue(), order);
  }
  return mValue->GetDComplexValue(order, variable);
}

ArcParam Variable::GetArcParam() const { return mValue->GetArcParam(); }
CircleParam Variable::GetCircleParam() const { return mValue->GetCircleParam(); }
RegionParam Variable::GetRegionParam() const { return mValue->GetRegionParam(); }
void Variable::GetValueText(AString& text, AString& units, AString& suffix) const {
  mValue->GetValueText(text, units, suffix);
}
AString Variable::GetValueText() const { return mValue->GetValueText(); }
AString Variable::GetValueTextIncorporateOverrideUnits() const {
  return mValue->GetValueTextIncorporateOverrideUnits();
}
ValueBase* Variable::CloneValueBase() const { return mValue->CloneValueBase(); }
bool Variable::IsEqual(const ValueBase& other) const { return mValue->IsEqual(other); }
bool Variable::IsConstant() const { return false; }
Units::FullUnitType Variable::GetUnits() const { return mValue->GetUnits(); }
Units::FullUnitType Variable::GetExplicitUnits() const { return mValue->GetExplicitUnits(); }
void Variable::SetExplicitUnits(Units::FullUnitType units) { mValue->SetExplicitUnits(units); }
val::ParameterType Variable::GetParameterType() const { return mValue->GetParameterType(); }

void Variable::AddRef(IReceiver* receiver) { mOwners.Add(receiver); }
void Variable::Release(IReceiver* receiver) { mOwners.Remove(receiver); }
bool Variable::HasRef(IReceiver* receiver) const { return mOwners.Has(receiver); }
void Variable::ChangeOwner(IReceiver* from, IReceiver* to) { mOwners.ChangeOwner(from, to); }

ValueBase* Variable::AddConstant(const double& constant) const {
  return mValue->AddConstant(constant);
}

// Read as a value, a variable stands for what it holds now.
ValueBase* Variable::SubstituteVariables() const { return mValue->CreateEvaluatedValueBase(); }

bool Variable::TrySubstituteVariables(IVariableChanger& changer) const {
  return mValue->TrySubstituteVariables(changer);
}

bool Variable::DoSubstituteVariables(IVariableChanger& changer) {
  ValueBase* backup = mValue->CloneValueBase();
  if (!mValue->DoSubstituteVariables(changer)) {
    delete backup;
    return false;
  }
  if (backup != nullptr && ValueReadsVariable(*mValue, *this)) {
    // The substitution made the variable read itself: undo it.
    ReportSelfReference(*mValue);
    delete Attach(backup);
    return false;
  }
  delete backup;
  NotifyValueChanged();
  return true;
}

int Variable::GetDatasetID() const { return mValue->GetDatasetID(); }
const IDatasetServer* Variable::GetDatasetServer() const { return mValue->GetDatasetServer(); }
ValueBase* Variable::CreateEvaluatedValueBase() const { return mValue->CreateEvaluatedValueBase(); }
int Variable::ReassignDatasets(const CValueDatasetReassigner& reassigner) {
  return mValue->ReassignDatasets(reassigner);
}

void Variable::GetReferencedVariables(std::vector<const Variable*>& out) const {
  out.push_back(this);
}

void Variable::GetReferencedDatasets(std::map<const IDatasetServer*, std::set<int>>& out) const {
  mValue->GetReferencedDatasets(out);
}
