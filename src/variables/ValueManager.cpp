// SPDX-License-Identifier: Apache-2.0
//
// ValueManager.cpp - constants, intrinsic variables, the "F" rule, text to value, switches.
#include "wycore/variables/ValueManager.h"

#include <cstdlib>
#include <cwctype>

#include "FunctionTable.h"
#include "NameLess.h"
#include "wycore/core/Check.h"
#include "wycore/core/DebugLog.h"
#include "wycore/units/NumberReader.h"
#include "wycore/units/UnitDefinition.h"
#include "wycore/value/ComplexValue.h"
#include "wycore/value/Expression.h"
#include "wycore/value/ExpressionParser.h"
#include "wycore/value/FloatValue.h"
#include "wycore/value/StringValue.h"
#include "wycore/variables/ValueParser.h"
#include "wycore/variables/Variable.h"
#include "wycore/variables/VariableNameSpace.h"
#include "wycore/variables/VariableServer.h"

namespace {

// The environment is read once per process, however often the manager is rebuilt.
const std::optional<std::string>& RemoveFSettingAtStartUp() {
  static const std::optional<std::string> setting = []() -> std::optional<std::string> {
    const char* value = std::getenv(ValueManager::kRemoveFEnvironmentVariable);
    if (value == nullptr) return std::nullopt;
    return std::string(value);
  }();
  return setting;
}

Units::FullUnitType DefaultUnitsOf(Units::UnitType unitType) {
  if (unitType == Units::NoUnit) return Units::NoUnits;
  return Units::GetDefaultUnits(unitType);
}

ValueBase* ZeroOf(val::ParameterType kind, Units::FullUnitType units) {
  if (kind == val::kComplexParam) return new ComplexValue(AComplex<double>(), units);
  return new FloatValue(0.0, units);
}

template <class Map>
Variable* Find(const Map& map, const AString& name) {
  auto it = map.find(name);
  return it != map.end() ? it->second.get() : nullptr;
}

bool IsNameStart(AChar c) { return c == u'_' || c == u'$' || std::iswalpha(c); }
bool IsNameChar(AChar c) { return c == u'_' || c == u'.' || std::iswalnum(c); }

}  // namespace

bool ValueManager::NameLess::operator()(const AString& a, const AString& b) const {
  return a.CompareNoCase(b) < 0;
}

bool ValueManager::Keeper::Receive(const ReceiverMessage& message) {
  // The manager's variables live as long as the manager, under their own names.
  return message.kind != ReceiverMessage::kMayDelete &&
         message.kind != ReceiverMessage::kMayChangeName;
}

// ---- Construction ------------------------------------------------------------------------

ValueManager::ValueManager() : ValueManager(RemoveFSettingAtStartUp()) {}

ValueManager::ValueManager(const std::optional<std::string>& removeF)
    : mFunctions(std::make_unique<FunctionTable>()) {
  InitializeConstants();
  InitializeValueManager(IsFIntrinsic(removeF));
}

ValueManager::~ValueManager() = default;

bool ValueManager::IsFIntrinsic(const std::optional<std::string>& removeF) {
  return removeF.has_value() && !removeF->empty() && (*removeF)[0] == '0';
}

void ValueManager::InitializeConstants() {
  // "eta" is in ohms; the unit is found by its name so that the constant follows the tables.
  const UnitDefinition* ohm = Units::FindUnitDef(AString(u"ohm"));
  const Units::FullUnitType ohmUnits =
      ohm != nullptr ? ohm->GetFullUnitType() : static_cast<Units::FullUnitType>(8);
  // The values are kept exactly as the suite has always used them, including the older CODATA
  // values of boltz and elecq: results computed with them must not move.
  CreateConstant(u"pi", 3.141592653589793, Units::NoUnits);
  CreateConstant(u"c0", 299792458.0, Units::NoUnits);
  CreateConstant(u"e0", 8.854187817e-12, Units::NoUnits);
  CreateConstant(u"u0", 1.2566370614359173e-6, Units::NoUnits);
  CreateConstant(u"boltz", 1.3806503e-23, Units::NoUnits);
  CreateConstant(u"elecq", 1.602176462e-19, Units::NoUnits);
  CreateConstant(u"eta", 376.730313461, ohmUnits);
  CreateConstant(u"true", 1.0, Units::NoUnits);
  CreateConstant(u"false", 0.0, Units::NoUnits);
}

void ValueManager::InitializeValueManager(bool fIsIntrinsic) {
  struct Row {
    const AChar* mName;
    Units::UnitType mUnitType;
    bool mReserved;
  };
  // Unit-type codes 8 and 21 are Power and Speed in the unit tables.
  constexpr Units::UnitType kOperatingPointType = static_cast<Units::UnitType>(8);
  constexpr Units::UnitType kRotationalSpeedType = static_cast<Units::UnitType>(21);
  static const Row kRows[] = {
      {u"Phase", Units::Angle, false},
      {u"Theta", Units::Angle, false},
      {u"Phi", Units::Angle, false},
      {u"F1", Units::Frequency, true},
      {u"F2", Units::Frequency, true},
      {u"F3", Units::Frequency, true},
      {u"FNoi", Units::Frequency, false},
      {u"Time", Units::Time, true},
      {u"Spectrum", Units::Frequency, false},
      {u"Temp", Units::Temperature, true},
      {u"Rho", Units::NoUnit, false},
      {u"Ang", Units::Angle, false},
      {u"ZRho", Units::NoUnit, false},
      {u"ZAng", Units::Angle, false},
      {u"Vds", Units::Voltage, false},
      {u"Vgs", Units::Voltage, false},
      {u"Vac", Units::Voltage, false},
      {u"Vce", Units::Voltage, false},
      {u"Vbe", Units::Voltage, false},
      {u"Ia", Units::Current, false},
      {u"Ib", Units::Current, false},
      {u"OP", kOperatingPointType, false},
      {u"_V1", Units::Voltage, true},
      {u"_V2", Units::Voltage, true},
      {u"_V3", Units::Voltage, true},
      {u"_V4", Units::Voltage, true},
      {u"_V5", Units::Voltage, true},
      {u"_V6", Units::Voltage, true},
      {u"_V7", Units::Voltage, true},
      {u"_V8", Units::Voltage, true},
      {u"_V9", Units::Voltage, true},
      {u"_I1", Units::Current, true},
      {u"_I2", Units::Current, true},
      {u"_I3", Units::Current, true},
      {u"_I4", Units::Current, true},
      {u"_I5", Units::Current, true},
      {u"_I6", Units::Current, true},
      {u"_I7", Units::Current, true},
      {u"_I8", Units::Current, true},
      {u"_I9", Units::Current, true},
      {u"Index", Units::NoUnit, false},
      {u"Budget_Index", Units::NoUnit, false},
      {u"R", Units::Length, false},
      {u"X", Units::Length, false},
      {u"Y", Units::Length, false},
      {u"Z", Units::Length, false},
      {u"NormalizedDistance", Units::NoUnit, false},
      {u"Distance", Units::Length, false},
      {u"NormalizedDeformation", Units::NoUnit, false},
      {u"Freq", Units::Frequency, false},
      {u"Pass", Units::NoUnit, false},
      {u"IWavePhi", Units::Angle, false},
      {u"IWaveTheta", Units::Angle, false},
      {u"_t", Units::NoUnit, false},
      {u"_u", Units::NoUnit, false},
      {u"_v", Units::NoUnit, false},
      {u"ElectricalDegree", Units::Angle, false},
      {u"RSpeed", kRotationalSpeedType, false},
      {u"_Empty", Units::NoUnit, false},
  };
  for (const Row& row : kRows) {
    CreateIntrinsicVariable(row.mName, row.mUnitType, val::kDoubleParam, row.mReserved);
  }
  if (fIsIntrinsic) {
    CreateIntrinsicVariable(u"F", Units::Frequency, val::kDoubleParam, true);
  } else {
    mObsoletedIntrinsicVariables.push_back(ObsoletedIntrinsic{2020, 1, u"F", u"Freq"});
  }
}

Variable* ValueManager::Adopt(VariableMap& map, std::unique_ptr<Variable> variable) {
  variable->AddRef(&mKeeper);
  Variable* raw = variable.get();
  const AString name = raw->GetName();
  map.emplace(name, std::move(variable));
  return raw;
}

Variable* ValueManager::CreateConstant(const AString& name, double value,
                                       Units::FullUnitType units) {
  auto i = mConstants.find(name);
  if (!WY_CHECK(i == mConstants.end())) return nullptr;
  if (name.empty()) return nullptr;
  return Adopt(mConstants, std::make_unique<Variable>(name, value, units));
}

Variable* ValueManager::CreateIntrinsicVariable(const AString& name, Units::UnitType unitType,
                                                val::ParameterType kind, bool reserved) {
  auto i = mIntrinsicVariables.find(name);
  if (!WY_CHECK(i == mIntrinsicVariables.end())) return nullptr;
  i = mConstants.find(name);
  if (!WY_CHECK(i == mConstants.end())) return nullptr;
  if (!WY_CHECK(name.CompareNoCase(kSpectralName) != 0)) return nullptr;
  if (name.empty()) return nullptr;
  if (kind != val::kComplexParam) kind = val::kDoubleParam;
  mIntrinsicInfo[name] = IntrinsicInfo{unitType, kind, reserved};
  ValueBase* zero = ZeroOf(kind, DefaultUnitsOf(unitType));
  return Adopt(mIntrinsicVariables, std::make_unique<Variable>(name, zero));
}

Variable* ValueManager::CreatePredefinedVariable(const AString& name, const ValueBase& value) {
  auto i = mPredefinedVariables.find(name);
  if (!WY_CHECK(i == mPredefinedVariables.end())) return nullptr;
  i = mConstants.find(name);
  if (!WY_CHECK(i == mConstants.end())) return nullptr;
  if (name.empty()) return nullptr;
  return Adopt(mPredefinedVariables, std::make_unique<Variable>(name, value));
}

void ValueManager::ApplyDefaultFullUnitTypesToIntrinsicVariables() {
  for (auto& [name, variable] : mIntrinsicVariables) {
    auto info = mIntrinsicInfo.find(name);
    if (info == mIntrinsicInfo.end()) continue;
    const Units::FullUnitType units = DefaultUnitsOf(info->second.mUnitType);
    if (info->second.mKind == val::kComplexParam) {
      variable->SetValueBase(new ComplexValue(variable->GetComplexValue(), units));
    } else {
      variable->SetValueBase(new FloatValue(variable->GetValue(), units));
    }
  }
}

Units::UnitType ValueManager::GetIntrinsicVariableUnitType(const AString& name) const {
  auto it = mIntrinsicInfo.find(name);
  return it != mIntrinsicInfo.end() ? it->second.mUnitType : Units::NoUnit;
}

bool ValueManager::IsReservedIntrinsicVariable(const AString& name) const {
  auto it = mIntrinsicInfo.find(name);
  return it != mIntrinsicInfo.end() && it->second.mReserved;
}

// ---- Names -------------------------------------------------------------------------------

Variable* ValueManager::FindConstant(const AString& name) const { return Find(mConstants, name); }

Variable* ValueManager::FindIntrinsicVariable(const AString& name) const {
  if (name.CompareNoCase(kSpectralName) == 0) return Find(mIntrinsicVariables, u"Spectrum");
  return Find(mIntrinsicVariables, name);
}

Variable* ValueManager::FindPredefinedVariable(const AString& name) const {
  return Find(mPredefinedVariables, name);
}

Variable* ValueManager::ResolveVariable(const AString& name) const {
  if (mCurrentNameSpace != nullptr) return mCurrentNameSpace->ResolveVariable(name);
  if (Variable* constant = FindConstant(name)) return constant;
  return mLastChanceResolver != nullptr ? mLastChanceResolver->ResolveVariable(name) : nullptr;
}

int ValueManager::ResolveDatset(const AString& name, const IDatasetServer*& server) const {
  if (mCurrentNameSpace != nullptr) return mCurrentNameSpace->ResolveDatset(name, server);
  server = nullptr;
  return -1;
}

void ValueManager::GetDatasetServers(std::vector<const IDatasetServer*>& out) const {
  if (mCurrentNameSpace != nullptr) mCurrentNameSpace->GetDatasetServers(out);
}

const VariableNameSpace* ValueManager::SetVariableNameSpace(const VariableNameSpace* nameSpace) {
  const VariableNameSpace* previous = mCurrentNameSpace;
  mCurrentNameSpace = nameSpace;
  return previous;
}

const IVariableServer* ValueManager::SetLastChanceResolver(const IVariableServer* resolver) {
  const IVariableServer* previous = mLastChanceResolver;
  mLastChanceResolver = resolver;
  return previous;
}

int ValueManager::GetObsoletedIntrinsicVariables(std::vector<std::pair<AString, AString>>& out,
                                                 int major, int minor) const {
  for (const ObsoletedIntrinsic& record : mObsoletedIntrinsicVariables) {
    if (record.mMajor > major || (record.mMajor == major && record.mMinor >= minor)) {
      out.emplace_back(record.mOldName, record.mNewName);
    }
  }
  return static_cast<int>(out.size());
}

AString ValueManager::ReplaceObsoletedIntrinsicVariable(const AString& name) const {
  for (const ObsoletedIntrinsic& record : mObsoletedIntrinsicVariables) {
    if (name.CompareNoCase(record.mOldName) == 0) return record.mNewName;
  }
  return name;
}

void ValueManager::GetConstants(std::vector<Variable*>& out) const {
  for (const auto& [name, variable] : mConstants) out.push_back(variable.get());
}

void ValueManager::GetIntrinsicVariables(std::vector<Variable*>& out) const {
  for (const auto& [name, variable] : mIntrinsicVariables) out.push_back(variable.get());
}

void ValueManager::GetPredefinedVariables(std::vector<Variable*>& out) const {
  for (const auto& [name, variable] : mPredefinedVariables) out.push_back(variable.get());
}

void ValueManager::GetMatchingConstantNames(const AString& prefix,
                                            IConstVisitor<AString>& visitor) const {
  for (const auto& [name, variable] : mConstants) {
    if (wycore::detail::StartsWithNoCase(name, prefix)) visitor.Visit(variable->GetName());
  }
}

void ValueManager::GetMatchingIntrinsicVariableNames(const AString& prefix,
                                                     IConstVisitor<AString>& visitor,
                                                     bool includeReserved) const {
  for (const auto& [name, variable] : mIntrinsicVariables) {
    if (!includeReserved && IsReservedIntrinsicVariable(name)) continue;
    if (wycore::detail::StartsWithNoCase(name, prefix)) visitor.Visit(variable->GetName());
  }
}

void ValueManager::GetMatchingPredefinedVariableNames(const AString& prefix,
                                                      IConstVisitor<AString>& visitor) const {
  for (const auto& [name, variable] : mPredefinedVariables) {
    if (wycore::detail::StartsWithNoCase(name, prefix)) visitor.Visit(variable->GetName());
  }
}

void ValueManager::GetMatchingFunctionNames(const AString& prefix,
                                            IConstVisitor<AString>& visitor) const {
  mFunctions->GetMatchingNames(prefix, visitor);
}

// ---- Function table ----------------------------------------------------------------------

bool ValueManager::RegisterFunction(Function* function) { return mFunctions->Register(function); }

bool ValueManager::FunctionExists(const AString& name) const { return mFunctions->Exists(name); }

const Function* ValueManager::GetFunction(const AString& name, int argumentCount,
                                          const std::vector<ValueState>& argumentStates,
                                          int& errorCode) const {
  return mFunctions->Get(name, argumentCount, argumentStates, errorCode);
}

void ValueManager::GetFunctions(const AString& name, std::vector<const Function*>& out) const {
  mFunctions->GetAll(name, out);
}

void ValueManager::GetAllFunctionNames(std::vector<AString>& out) const {
  mFunctions->GetAllNames(out);
}

int ValueManager::GetFunctionID(const AString& name) const { return mFunctions->GetID(name); }

AString ValueManager::GetFunctionName(int functionID) const {
  return mFunctions->GetName(functionID);
}

void ValueManager::GetConversionFunctionNames(std::vector<AString>& out) const {
  mFunctions->GetConversionNames(out);
}

// ---- Text to value -----------------------------------------------------------------------

ValueBase* ValueManager::CreateValueBase(const AString& text, Units::FullUnitType units) const {
  if (mCurrentNameSpace != nullptr) {
    if (ValueBase* value = mCurrentNameSpace->FirstChanceParseText(text, units)) return value;
  }
  if (StringValue* literal = StringValue::Parse(text)) return literal;
  AComplex<double> number;
  Units::FullUnitType found = Units::NoUnits;
  bool hasImaginary = false;
  Units::UnitError error = Units::kUnitErrorNone;
  if (Units::TextToComplex(text, units, number, found, hasImaginary, error)) {
    if (!hasImaginary) return new FloatValue(number.real(), found);
    if (mComplexValuesEnabled) return new ComplexValue(number, found);
  }
  // Everything else is an expression. With an installed value parser the first attempt is
  // silent, so that a text only that parser knows reports nothing; the error of a text nobody
  // knows is reported by a second, reporting parse.
  ExpressionParser parser(true, NumberReader::DefaultWhiteSpace());
  if (mValueParser != nullptr) {
    parser.SetReportErrors(false);
    if (ValueBase* expression = ParseExpression(parser, text, units)) return expression;
    if (ValueBase* value = mValueParser->ParseText(text, units)) return value;
    parser.SetReportErrors(true);
  }
  return ParseExpression(parser, text, units);
}

ValueBase* ValueManager::ParseExpression(ExpressionParser& parser, const AString& text,
                                         Units::FullUnitType units) const {
  try {
    std::unique_ptr<Expression> expression(parser.Parse(text, units, true, nullptr));
    // While complex values are disabled an expression may not yield one either.
    if (!mComplexValuesEnabled && expression->GetParameterType() == val::kComplexParam) {
      return nullptr;
    }
    return expression.release();
  } catch (int) {
    return nullptr;  // the parser has reported the error
  }
}

bool ValueManager::ReplaceObsoletedNamesInText(AString& text) const {
  if (mObsoletedIntrinsicVariables.empty()) return false;
  AString out;
  bool replaced = false;
  std::size_t i = 0;
  const std::size_t n = text.size();
  while (i < n) {
    const AChar c = text[i];
    if (c == u'"') {  // a string literal is copied as it stands
      std::size_t end = text.find(u'"', i + 1);
      end = end == AString::npos ? n : end + 1;
      out.append(text, i, end - i);
      i = end;
    } else if (std::iswdigit(c) || (c == u'.' && i + 1 < n && std::iswdigit(text[i + 1]))) {
      // A number and the unit written behind it ("10F" is ten of unit F, not the variable F).
      std::size_t end = i;
      while (end < n &&
             (IsNameChar(text[end]) || ((text[end] == u'+' || text[end] == u'-') &&
                                        (text[end - 1] == u'e' || text[end - 1] == u'E')))) {
        ++end;
      }
      out.append(text, i, end - i);
      i = end;
    } else if (IsNameStart(c)) {
      std::size_t end = i + 1;
      while (end < n && IsNameChar(text[end])) ++end;
      const AString name = text.substr(i, end - i);
      std::size_t next = end;
      while (next < n && (text[next] == u' ' || text[next] == u'\t')) ++next;
      const bool isCall = next < n && text[next] == u'(';
      const AString current = isCall ? name : ReplaceObsoletedIntrinsicVariable(name);
      replaced = replaced || current != name;
      out += current;
      i = end;
    } else {
      out += c;
      ++i;
    }
  }
  if (replaced) text = out;
  return replaced;
}

// ---- Messages and switches ---------------------------------------------------------------

void ValueManager::HandleMessage(int code, wycore::Severity severity, const AString* arg1,
                                 const AString* arg2, const AString* arg3) const {
  std::vector<std::u16string> args;
  for (const AString* arg : {arg1, arg2, arg3}) {
    if (arg == nullptr) break;
    args.push_back(*arg);
  }
  if (mPostingErrorMessagesDisabled) {
    AString line(u"Message not posted: ");
    line += AString(wycore::FormatMessageText(code, args));
    line += u'\n';
    wycore::DebugLog(line);
    return;
  }
  wycore::PostMessage(code, severity, std::move(args));
}

bool ValueManager::EnableComplexValues(bool on) {
  const bool previous = mComplexValuesEnabled;
  mComplexValuesEnabled = on;
  return previous;
}

bool ValueManager::SetMustSubstituteVariables(bool on) {
  const bool previous = mMustSubstituteVariables;
  mMustSubstituteVariables = on;
  return previous;
}

bool ValueManager::DisablePostingErrorMessages(bool disable) {
  const bool previous = mPostingErrorMessagesDisabled;
  mPostingErrorMessagesDisabled = disable;
  return previous;
}

bool ValueManager::AllowHComSyntaxForAngleBracketAppendToLabel(bool allow) {
  const bool previous = mAllowHComSyntax;
  mAllowHComSyntax = allow;
  return previous;
}

IVariableServer* ValueManager::SetClipboardVariableServer(IVariableServer* server) {
  IVariableServer* previous = mClipboardVariableServer;
  mClipboardVariableServer = server;
  return previous;
}

IValueParser* ValueManager::SetValueParser(IValueParser* parser) {
  IValueParser* previous = mValueParser;
  mValueParser = parser;
  return previous;
}
