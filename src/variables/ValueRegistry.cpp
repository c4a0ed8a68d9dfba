// SPDX-License-Identifier: Apache-2.0
//
// ValueRegistry.cpp - the static functions of Value that reach the process's value manager.
//
// Value (value area) declares them; they are defined here because the manager, its tables and
// the name spaces belong to the variables area, and the value area must not depend on them.
// Each fires the check "msValueManager" and gives a neutral result when called before
// InitializeValues (or after UnInitializeValues); HandleError and HandleMessage still post.
#include <memory>

#include "ValueManagerInstance.h"
#include "wycore/core/Check.h"
#include "wycore/value/Value.h"
#include "wycore/variables/Function.h"
#include "wycore/variables/ValueFormatContext.h"
#include "wycore/variables/ValueManager.h"
#include "wycore/variables/ValueTextGenerator.h"
#include "wycore/variables/Variable.h"

namespace {

ValueManager* msValueManager = nullptr;

}  // namespace

namespace wycore::detail {

ValueManager* CurrentValueManager() { return msValueManager; }

}  // namespace wycore::detail

// ---- Lifetime ----------------------------------------------------------------------------

void Value::InitializeValues() {
  delete msValueManager;
  msValueManager = nullptr;
  msValueManager = new ValueManager();
  Function::StaticInitializeFunctions();
}

void Value::UnInitializeValues() {
  delete msValueManager;
  msValueManager = nullptr;
}

ValueManager* Value::GetValueManager() { return msValueManager; }

// ---- Text --------------------------------------------------------------------------------

ValueBase* Value::CreateValueBase(const AString& text, Units::FullUnitType units) {
  if (!WY_CHECK(msValueManager)) return nullptr;
  return msValueManager->CreateValueBase(text, units);
}

ValueBase* Value::CreateValueBaseFromTextWithObsoletedVariable(const AString& text,
                                                               Units::FullUnitType units) {
  if (!WY_CHECK(msValueManager)) return nullptr;
  AString current = text;
  msValueManager->ReplaceObsoletedNamesInText(current);
  return msValueManager->CreateValueBase(current, units);
}

bool Value::IsValidText(const AString& text) {
  if (!WY_CHECK(msValueManager)) return false;
  const bool wasDisabled = msValueManager->DisablePostingErrorMessages(true);
  std::unique_ptr<ValueBase> value(msValueManager->CreateValueBase(text, Units::NoUnits));
  msValueManager->DisablePostingErrorMessages(wasDisabled);
  return value != nullptr;
}

AString Value::GenerateExpressionText(const Expression& expression) {
  // The strategy of the current output format, or the canonical text.
  ValueTextGenerator generator(io::globalmanip::ValueFormatContext::m_pStrategy);
  AString text;
  if (!generator.GenerateText(expression, text)) return AString();
  return text;
}

// ---- Function table ----------------------------------------------------------------------

bool Value::RegisterFunction(Function* function) {
  if (!WY_CHECK(msValueManager)) {
    delete function;
    return false;
  }
  return msValueManager->RegisterFunction(function);
}

bool Value::FunctionExists(const AString& name) {
  if (!WY_CHECK(msValueManager)) return false;
  return msValueManager->FunctionExists(name);
}

const Function* Value::GetFunction(const AString& name, int argumentCount,
                                   const std::vector<ValueState>& argumentStates, int& errorCode) {
  if (!WY_CHECK(msValueManager)) {
    errorCode = 24499;
    return nullptr;
  }
  return msValueManager->GetFunction(name, argumentCount, argumentStates, errorCode);
}

void Value::GetFunctions(const AString& name, std::vector<const Function*>& out) {
  if (!WY_CHECK(msValueManager)) return;
  msValueManager->GetFunctions(name, out);
}

void Value::GetAllFunctionNames(std::vector<AString>& out) {
  if (!WY_CHECK(msValueManager)) return;
  msValueManager->GetAllFunctionNames(out);
}

int Value::GetFunctionID(const AString& name) {
  if (!WY_CHECK(msValueManager)) return -1;
  return msValueManager->GetFunctionID(name);
}

AString Value::GetFunctionName(int functionID) {
  if (!WY_CHECK(msValueManager)) return AString();
  return msValueManager->GetFunctionName(functionID);
}

void Value::GetConversionFunctionNames(std::vector<AString>& out) {
  if (!WY_CHECK(msValueManager)) return;
  msValueManager->GetConversionFunctionNames(out);
}

bool Value::ApplyFunctionModifications(std::vector<const Function*>& functions) {
  if (!WY_CHECK(msValueManager)) return false;
  return msValueManager->GetValueChanger().ApplyFunctionModifications(functions, true);
}

// ---- Intrinsic, predefined and constant variables ----------------------------------------

Variable* Value::AddCustomIntrinsicVariable(const AString& name, Units::UnitType unitType,
                                            val::ParameterType kind) {
  if (!WY_CHECK(msValueManager)) return nullptr;
  return msValueManager->CreateIntrinsicVariable(name, unitType, kind, false);
}

Variable* Value::GetIntrinsicVariable(const AString& name) {
  if (!WY_CHECK(msValueManager)) return nullptr;
  return msValueManager->FindIntrinsicVariable(name);
}

void Value::GetIntrinsicVariables(std::vector<Variable*>& out) {
  if (!WY_CHECK(msValueManager)) return;
  msValueManager->GetIntrinsicVariables(out);
}

Variable* Value::GetPredefinedVariable(const AString& name) {
  if (!WY_CHECK(msValueManager)) return nullptr;
  return msValueManager->FindPredefinedVariable(name);
}

void Value::GetPredefinedVariables(std::vector<Variable*>& out) {
  if (!WY_CHECK(msValueManager)) return;
  msValueManager->GetPredefinedVariables(out);
}

int Value::GetObsoletedIntrinsicVariables(std::vector<std::pair<AString, AString>>& out, int major,
                                          int minor) {
  if (!WY_CHECK(msValueManager)) return static_cast<int>(out.size());
  return msValueManager->GetObsoletedIntrinsicVariables(out, major, minor);
}

AString Value::ReplaceObsoletedIntrinsicVariable(const AString& name) {
  if (!WY_CHECK(msValueManager)) return name;
  return msValueManager->ReplaceObsoletedIntrinsicVariable(name);
}

void Value::ApplyDefaultFullUnitTypesToIntrinsicVariables() {
  if (!WY_CHECK(msValueManager)) return;
  msValueManager->ApplyDefaultFullUnitTypesToIntrinsicVariables();
}

Variable* Value::AddCustomConstant(const AString& name, double value, Units::FullUnitType units) {
  if (!WY_CHECK(msValueManager)) return nullptr;
  return msValueManager->CreateConstant(name, value, units);
}

void Value::GetConstants(std::vector<Variable*>& out) {
  if (!WY_CHECK(msValueManager)) return;
  msValueManager->GetConstants(out);
}

Variable* Value::GetConstantVariable(const AString& name) {
  if (!WY_CHECK(msValueManager)) return nullptr;
  return msValueManager->FindConstant(name);
}

// ---- Resolution --------------------------------------------------------------------------

Variable* Value::ResolveVariable(const AString& name) {
  if (!WY_CHECK(msValueManager)) return nullptr;
  return msValueManager->ResolveVariable(name);
}

bool Value::DoesGlobalVariableExist(const AString& name) {
  if (!WY_CHECK(msValueManager)) return false;
  return msValueManager->FindConstant(name) != nullptr ||
         msValueManager->FindIntrinsicVariable(name) != nullptr ||
         msValueManager->FindPredefinedVariable(name) != nullptr;
}

void Value::GetDatasetServers(std::vector<const IDatasetServer*>& out) {
  if (!WY_CHECK(msValueManager)) return;
  msValueManager->GetDatasetServers(out);
}

int Value::ResolveDatset(const AString& name, const IDatasetServer*& server) {
  server = nullptr;
  if (!WY_CHECK(msValueManager)) return -1;
  return msValueManager->ResolveDatset(name, server);
}

// ---- Parsers and servers -----------------------------------------------------------------

IValueParser* Value::SetValueParser(IValueParser* parser) {
  if (!WY_CHECK(msValueManager)) return nullptr;
  return msValueManager->SetValueParser(parser);
}

IValueParser* Value::GetValueParser() {
  if (!WY_CHECK(msValueManager)) return nullptr;
  return msValueManager->GetValueParser();
}

IVariableServer* Value::SetClipboardVariableServer(IVariableServer* server) {
  if (!WY_CHECK(msValueManager)) return nullptr;
  return msValueManager->SetClipboardVariableServer(server);
}

IVariableServer* Value::GetClipboardVariableServer() {
  if (!WY_CHECK(msValueManager)) return nullptr;
  return msValueManager->GetClipboardVariableServer();
}

// ---- Switches ----------------------------------------------------------------------------

bool Value::EnableComplexValues(bool on) {
  if (!WY_CHECK(msValueManager)) return false;
  return msValueManager->EnableComplexValues(on);
}

bool Value::AreComplexValuesEnabled() {
  if (!WY_CHECK(msValueManager)) return false;
  return msValueManager->AreComplexValuesEnabled();
}

bool Value::DisablePostingErrorMessages(bool disable) {
  if (!WY_CHECK(msValueManager)) return false;
  return msValueManager->DisablePostingErrorMessages(disable);
}

bool Value::SetMustSubstituteVariables(bool on) {
  if (!WY_CHECK(msValueManager)) return false;
  return msValueManager->SetMustSubstituteVariables(on);
}

bool Value::MustSubstituteVariables() {
  if (!WY_CHECK(msValueManager)) return false;
  return msValueManager->MustSubstituteVariables();
}

bool Value::AllowHComSyntaxForAngleBracketAppendToLabel(bool allow) {
  if (!WY_CHECK(msValueManager)) return false;
  return msValueManager->AllowHComSyntaxForAngleBracketAppendToLabel(allow);
}

bool Value::IsAllowHComSyntaxForAngleBracketAppendToLabel() {
  if (!WY_CHECK(msValueManager)) return false;
  return msValueManager->IsAllowHComSyntaxForAngleBracketAppendToLabel();
}

// ---- Messages ----------------------------------------------------------------------------

void Value::HandleError(int code, const AString* arg1, const AString* arg2, const AString* arg3) {
  HandleMessage(code, wycore::Severity::Error, arg1, arg2, arg3);
}

void Value::HandleMessage(int code, wycore::Severity severity, const AString* arg1,
                          const AString* arg2, const AString* arg3) {
  if (msValueManager != nullptr) {
    msValueManager->HandleMessage(code, severity, arg1, arg2, arg3);
    return;
  }
  // Without a manager there is no switch to consult: a message is never lost.
  std::vector<std::u16string> args;
  for (const AString* arg : {arg1, arg2, arg3}) {
    if (arg == nullptr) break;
    args.push_back(*arg);
  }
  wycore::PostMessage(code, severity, std::move(args));
}
