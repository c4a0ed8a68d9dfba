// SPDX-License-Identifier: Apache-2.0
//
// Units.cpp - the static facade over the process's one unit manager: lifetime, lookups,
// conversions, decibels, rescaling and the text forms of numbers.
//
// Numbers are printed with the C library's printf under the "C" locale, so that the radix
// separator is always "." whatever the user's locale.
#include "wycore/units/Units.h"

#include <locale.h>

#include <cfloat>
#include <cmath>
#include <cstdio>
#include <limits>
#include <memory>
#include <string>

#include "wycore/core/Check.h"
#include "wycore/units/NumberReader.h"
#include "wycore/units/UnitDefinition.h"
#include "wycore/units/UnitManager.h"

namespace {

std::unique_ptr<UnitManager> msUnitManager;
ICorvaneApplication* msApplication = nullptr;

const AChar kDefaultDoubleFormat[] = u"%-.15g";

// One printf conversion of a double inside literal text: "%-.15g", "x=%8.3f units", "%.2e%%".
struct DoubleFormat {
  AString prefix;
  std::string directive;  // the conversion, ASCII, e.g. "%-.15g"
  AString suffix;
};

// Splits `format` around its single double conversion. False when the text holds no conversion,
// more than one, or one that does not take a double (so it can never read a wrong argument).
bool ParseDoubleFormat(const AString& format, DoubleFormat& out) {
  bool found = false;
  AString* literal = &out.prefix;
  for (std::size_t i = 0; i < format.size(); ++i) {
    const AChar c = format[i];
    if (c == 0) return false;
    if (c != u'%') {
      literal->push_back(c);
      continue;
    }
    if (i + 1 < format.size() && format[i + 1] == u'%') {
      literal->push_back(u'%');
      ++i;
      continue;
    }
    if (found) return false;
    std::string directive = "%";
    std::size_t j = i + 1;
    while (j < format.size() && std::u16string_view(u"-+ #0").find(format[j]) != AString::npos) {
      directive += static_cast<char>(format[j++]);
    }
    auto digits = [&]() {
      std::size_t count = 0;
      while (j < format.size() && format[j] >= u'0' && format[j] <= u'9') {
        directive += static_cast<char>(format[j++]);
        ++count;
      }
      return count;
    };
    if (digits() > 3) return false;  // widths up to 999
    if (j < format.size() && format[j] == u'.') {
      directive += '.';
      ++j;
      if (digits() > 3) return false;
    }
    if (j < format.size() && format[j] == u'l') ++j;  // "%lf" is "%f" for printf
    if (j >= format.size()) return false;
    const AChar conversion = format[j];
    if (std::u16string_view(u"eEfFgGaA").find(conversion) == std::u16string_view::npos) {
      return false;
    }
    directive += static_cast<char>(conversion);
    out.directive = directive;
    found = true;
    literal = &out.suffix;
    i = j;
  }
  return found;
}

AString PrintDouble(const std::string& directive, double value) {
  static const locale_t cLocale = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(0));
  const locale_t previous = cLocale != static_cast<locale_t>(0) ? uselocale(cLocale) : 0;
  char buffer[1200];
  int n = std::snprintf(buffer, sizeof buffer, directive.c_str(), value);
  if (previous != static_cast<locale_t>(0)) uselocale(previous);
  AString out;
  if (n < 0) return out;
  const std::size_t length = std::min(static_cast<std::size_t>(n), sizeof buffer - 1);
  for (std::size_t i = 0; i < length; ++i) {
    out.push_back(static_cast<AChar>(static_cast<unsigned char>(buffer[i])));
  }
  return out;
}

// `value` (already in the display unit) printed with `format`, which falls back to the default
// double format when it is no single double conversion.
AString FormatNumber(const AString& format, double value) {
  DoubleFormat parsed;
  if (!ParseDoubleFormat(format, parsed)) {
    WY_CHECK(!"The double format must hold exactly one floating-point conversion");
    parsed = DoubleFormat();
    ParseDoubleFormat(AString(kDefaultDoubleFormat), parsed);
  }
  return parsed.prefix + PrintDouble(parsed.directive, value) + parsed.suffix;
}

// The text of x in the unit `unit` (null: SI), without unit; the special texts for non-finite x.
AString NumberText(double x, const UnitDefinition* unit, const AString& format, bool& special) {
  special = true;
  if (std::isnan(x)) return AString(u"nan");
  if (std::isinf(x)) return AString(x < 0 ? u"-inf" : u"inf");
  special = false;
  WY_CHECK(x < DBL_MAX);
  const double shown = unit != nullptr ? unit->ConvertFromSI(x) : x;
  // A finite value may have no finite reading in a logarithmic unit (0 W in dBm): it is written
  // like a non-finite value so that the text still reads back.
  if (!std::isfinite(shown)) return NumberText(shown, nullptr, format, special);
  return FormatNumber(format, shown);
}

// The unit behind a number, as written in TextToFloat and TextToComplex: the unit written, else
// the one written behind the other part, else the default unit.
const UnitDefinition* PartUnit(const NumberReader::Number& part, const UnitDefinition* other,
                               const UnitDefinition* fallback) {
  if (part.unit != nullptr) return part.unit;
  if (other != nullptr) return other;
  return fallback;
}

double ToSI(double value, const UnitDefinition* unit) {
  return unit != nullptr ? unit->ConvertToSI(value) : value;
}

const AChar* SkipSpaceTab(const AChar* p) {
  while (*p == u' ' || *p == u'\t') ++p;
  return p;
}

// Decibel units of the quantities that have one, by name.
const AChar* DecibelUnitName(Units::UnitType unitType) {
  switch (unitType) {
    case Units::Power:
      return u"dBW";
    case Units::Voltage:
      return u"dBV";
    case Units::NoiseSpectrum:
      return u"dbchz";
    default:
      return nullptr;
  }
}

}  // namespace

// ---- Lifetime ----------------------------------------------------------------------------------

void Units::InitializeUnits(ICorvaneApplication* application) {
  auto manager = std::make_unique<UnitManager>();
  msUnitManager = std::move(manager);
  msApplication = application;
}

void Units::UnInitializeUnits() {
  msUnitManager.reset();
  msApplication = nullptr;
}

bool Units::IsInitialized() { return msUnitManager != nullptr; }

ICorvaneApplication* Units::GetApplication() { return msApplication; }

UnitManager* Units::GetUnitManager() { return msUnitManager.get(); }

// ---- Lookup ------------------------------------------------------------------------------------

const UnitDefinition* Units::GetUnitDef(FullUnitType fut) {
  if (!WY_CHECK(msUnitManager)) return nullptr;
  return msUnitManager->GetUnitDef(fut);
}

const UnitDefinition* Units::GetUnitDef(const AString& name, UnitType /*unitType*/) {
  if (!WY_CHECK(msUnitManager)) return nullptr;
  if (name.empty()) return msUnitManager->GetUnitDef(NoUnits);
  return msUnitManager->GetUnitDef(name.ToLower());
}

const UnitDefinition* Units::FindUnitDef(FullUnitType fut) {
  if (!WY_CHECK(msUnitManager)) return nullptr;
  return msUnitManager->FindUnitDef(fut);
}

const UnitDefinition* Units::FindUnitDef(const AString& name) {
  if (!WY_CHECK(msUnitManager)) return nullptr;
  return msUnitManager->FindUnitDef(name);
}

const UnitDefinition* Units::GetDefaultUnitDef(UnitType unitType) {
  if (!WY_CHECK(msUnitManager)) return nullptr;
  return msUnitManager->GetDefaultUnitsUnitsDef(unitType);
}

Units::FullUnitType Units::SetDefaultUnitDef(const UnitDefinition* unit) {
  if (!WY_CHECK(msUnitManager)) return NoUnits;
  if (unit == nullptr) return NoUnits;
  return msUnitManager->SetDefaultUnits(unit->GetFullUnitType());
}

Units::FullUnitType Units::GetDefaultUnits(UnitType unitType) {
  if (!WY_CHECK(msUnitManager)) return NoUnits;
  return msUnitManager->GetDefaultUnits(unitType);
}

Units::FullUnitType Units::SetDefaultUnits(FullUnitType fut) {
  if (!WY_CHECK(msUnitManager)) return NoUnits;
  return msUnitManager->SetDefaultUnits(fut);
}

Units::FullUnitType Units::GetFullUnitType(const AString& name, UnitType unitType) {
  const UnitDefinition* unit = GetUnitDef(name, unitType);
  return unit != nullptr ? unit->GetFullUnitType() : NoUnits;
}

Units::FullUnitType Units::GetFullUnitType(UnitType unitType, Qualifier qualifier) {
  return GetFullUnitType(unitType, Metric, qualifier);
}

Units::FullUnitType Units::GetFullUnitType(UnitType unitType, Family family, Qualifier qualifier) {
  if (!WY_CHECK(msUnitManager)) return NoUnits;
  return msUnitManager->GetFullUnitType(unitType, family, qualifier);
}

Units::UnitType Units::GetUnitType(const AString& unitTypeName) {
  if (!WY_CHECK(msUnitManager)) return NoUnit;
  return msUnitManager->GetUnitType(unitTypeName);
}

Units::UnitType Units::ConvertToUnitType(FullUnitType fut) {
  if (!WY_CHECK(msUnitManager)) return NoUnit;
  return msUnitManager->GetUnitType(fut);
}

AString Units::GetUnitTypeString(UnitType unitType) {
  if (!WY_CHECK(msUnitManager)) return AString();
  return msUnitManager->GetUnitTypeString(unitType);
}

Units::Qualifier Units::GetQualifier(FullUnitType fut) {
  if (!WY_CHECK(msUnitManager)) return NoQualifier;
  return msUnitManager->GetQualifier(fut);
}

bool Units::UsesStandardMetricQualifier(FullUnitType fut) {
  const UnitDefinition* unit = GetUnitDef(fut);
  return unit != nullptr && unit->UsesStandardMetricQualifier();
}

Units::FullUnitType Units::CalcFullUnitType(FullUnitType a, FullUnitType /*b*/) {
  if (!WY_CHECK(msUnitManager)) return a;
  return msUnitManager->ResolveFUT(a, a);
}

Units::FullUnitType Units::GetMatchingTemperatureDiffUnit(FullUnitType temperatureUnit) {
  if (!WY_CHECK(msUnitManager)) return NoUnits;
  return msUnitManager->GetMatchingTemperatureDiffUnit(temperatureUnit);
}

// ---- Conversion --------------------------------------------------------------------------------

double Units::ConvertToSI(double value, FullUnitType fut) {
  const UnitDefinition* unit = GetUnitDef(fut);
  return unit != nullptr ? unit->ConvertToSI(value) : value;
}

double Units::ConvertFromSI(double value, FullUnitType fut) {
  const UnitDefinition* unit = GetUnitDef(fut);
  return unit != nullptr ? unit->ConvertFromSI(value) : value;
}

AComplex<double> Units::ConvertToSI(const AComplex<double>& value, FullUnitType fut) {
  const UnitDefinition* unit = GetUnitDef(fut);
  if (unit == nullptr) return value;
  return {unit->ConvertToSI(value.real()), unit->ConvertToSI(value.imag())};
}

AComplex<double> Units::ConvertFromSI(const AComplex<double>& value, FullUnitType fut) {
  const UnitDefinition* unit = GetUnitDef(fut);
  if (unit == nullptr) return value;
  return {unit->ConvertFromSI(value.real()), unit->ConvertFromSI(value.imag())};
}

double Units::Convert(double value, FullUnitType from, FullUnitType to) {
  return ConvertFromSI(ConvertToSI(value, from), to);
}

double Units::ConvertToDB(double value, FullUnitType fut) {
  if (!WY_CHECK(value > 0.0)) return std::numeric_limits<double>::quiet_NaN();
  return GetDBType(fut) != val::kDBPower ? 20.0 * std::log10(value) : 10.0 * std::log10(value);
}

double Units::ConvertFromDB(double value, FullUnitType fut) {
  return GetDBType(fut) != val::kDBPower ? std::pow(10.0, value / 20.0)
                                         : std::pow(10.0, value / 10.0);
}

val::DBType Units::GetDBType(FullUnitType fut) {
  if (!WY_CHECK(msUnitManager)) return val::kDBAmplitude;
  const UnitDefinition* unit = msUnitManager->FindUnitDef(fut);
  return GetDBType(unit != nullptr ? unit->GetUnitType() : NoUnit);
}

val::DBType Units::GetDBType(UnitType unitType) {
  switch (unitType) {
    // Quantities whose level is a power ratio; everything else, plain numbers included, is
    // treated as an amplitude.
    case Power:
    case PowerPerVolume:
    case Irradiance:
    case Energy:
    case EnergyDensity:
    case NoiseSpectrum:
      return val::kDBPower;
    default:
      return val::kDBAmplitude;
  }
}

Units::FullUnitType Units::GetDBUnits(UnitType unitType) {
  if (!WY_CHECK(msUnitManager)) return NoUnits;
  const AChar* name = DecibelUnitName(unitType);
  if (name == nullptr) return NoUnits;
  const UnitDefinition* unit = msUnitManager->FindUnitDef(AString(name));
  return unit != nullptr ? unit->GetFullUnitType() : NoUnits;
}

AString Units::GetDBTypeString(val::DBType dbType) {
  switch (dbType) {
    case val::kDBPower:
      return AString(u"Power");
    case val::kDBAmplitude:
      return AString(u"Amplitude");
    case val::kDBUnknown:
      return AString(u"Unknown");
  }
  return AString();
}

val::DBType Units::GetDBTypeFromString(const AString& text) {
  for (val::DBType type : {val::kDBPower, val::kDBAmplitude, val::kDBUnknown}) {
    if (text.CompareNoCase(GetDBTypeString(type)) == 0) return type;
  }
  return val::kDBAmplitude;
}

// ---- Rescaling ---------------------------------------------------------------------------------

Units::FullUnitType Units::GetScaleUnits(FullUnitType fut, double minSI, double maxSI) {
  if (!WY_CHECK(msUnitManager)) return fut;
  return msUnitManager->GetScaleUnits(fut, minSI, maxSI);
}

Units::FullUnitType Units::GetNiceScaleUnits(FullUnitType fut, double minSI, double maxSI) {
  if (!WY_CHECK(msUnitManager)) return fut;
  const UnitDefinition* unit = msUnitManager->FindUnitDef(fut);
  if (unit == nullptr || !unit->HasSimpleFactorConversion()) return fut;
  const double magnitude = std::max(std::fabs(minSI), std::fabs(maxSI));
  if (!std::isfinite(magnitude) || magnitude == 0.0) return unit->GetFullUnitType();
  const UnitDefinition* best = nullptr;
  const UnitDefinition* smallest = nullptr;
  for (FullUnitType member : msUnitManager->GetFamilyFUTList(fut)) {
    const UnitDefinition* candidate = msUnitManager->FindUnitDef(member);
    if (candidate == nullptr || !candidate->HasSimpleFactorConversion() ||
        candidate->GetFactor() <= 0.0) {
      continue;
    }
    // Prefixed units a factor of a thousand apart ("cm" and "dm" are not), and fut itself.
    const bool thousands =
        candidate->UsesStandardMetricQualifier() &&
        (candidate->GetQualifier() != NoQualifier || candidate->GetFactor() == 1.0);
    if (candidate != unit && !thousands) continue;
    if (smallest == nullptr) smallest = candidate;
    if (candidate->GetFactor() <= magnitude) best = candidate;
  }
  if (best == nullptr) best = smallest;
  return best != nullptr ? best->GetFullUnitType() : unit->GetFullUnitType();
}

Units::FullUnitType Units::FindNiceUnitForLength(double meters) {
  if (!WY_CHECK(msUnitManager)) return NoUnits;
  const double magnitude = std::fabs(meters);
  const UnitDefinition* best = nullptr;
  const UnitDefinition* smallest = nullptr;
  const UnitDefinition* meter = nullptr;
  for (FullUnitType member : msUnitManager->GetFUTList(Length)) {
    const UnitDefinition* candidate = msUnitManager->FindUnitDef(member);
    // The prefixed metre units a thousand apart, and the metre itself.
    if (candidate == nullptr || candidate->GetFamily() != Metric ||
        !candidate->UsesStandardMetricQualifier() || !candidate->HasSimpleFactorConversion()) {
      continue;
    }
    const bool isMeter = candidate->GetQualifier() == NoQualifier && candidate->GetFactor() == 1.0;
    if (candidate->GetQualifier() == NoQualifier && !isMeter) continue;
    if (isMeter) meter = candidate;
    if (smallest == nullptr) smallest = candidate;
    if (candidate->GetFactor() <= magnitude) best = candidate;
  }
  if (!std::isfinite(magnitude) || magnitude == 0.0) best = meter;
  if (best == nullptr) best = smallest;
  return best != nullptr ? best->GetFullUnitType() : NoUnits;
}

AString Units::GetTypeChoices(UnitType unitType, bool guiStrings) {
  std::vector<AString> choices;
  GetTypeChoices(unitType, choices, guiStrings);
  AString text;
  for (std::size_t i = 0; i < choices.size(); ++i) {
    if (i > 0) text += u", ";
    text += choices[i];
  }
  return text;
}

int Units::GetTypeChoices(UnitType unitType, std::vector<AString>& choices, bool guiStrings) {
  if (!WY_CHECK(msUnitManager)) return 0;
  if (!guiStrings) return msUnitManager->GetTypeChoices(unitType, choices);
  int count = 0;
  for (FullUnitType fut : msUnitManager->GetFUTList(unitType)) {
    choices.push_back(msUnitManager->FindUnitDef(fut)->GetGuiDisplayString());
    ++count;
  }
  return count;
}

int Units::GetTypeIndex(FullUnitType fut) {
  if (!WY_CHECK(msUnitManager)) return -1;
  return msUnitManager->GetTypeIndex(fut);
}

// ---- Text --------------------------------------------------------------------------------------

AString Units::GetUnitErrorText(UnitError error) {
  switch (error) {
    case kUnitErrorNone:
      return AString(u"no error");
    case kUnitErrorNoNumber:
      return AString(u"no number at the start of the text, or an unknown unit behind it");
    case kUnitErrorTrailingText:
      return AString(u"text is left after the number");
    case kUnitErrorNotReal:
      return AString(u"an imaginary number where a real one is needed");
    case kUnitErrorNotImaginary:
      return AString(u"the part after \"+\" or \"-\" is not an imaginary number");
    case kUnitErrorNotInitialized:
      return AString(u"the unit system is not initialised");
  }
  return AString(u"unknown error");
}

bool Units::TextToComplex(const AString& text, FullUnitType defaultFut, AComplex<double>& value,
                          FullUnitType& unitsFound, bool& hasImaginary, UnitError& error) {
  value = AComplex<double>(0.0, 0.0);
  hasImaginary = false;
  unitsFound = defaultFut;
  if (!WY_CHECK(msUnitManager)) {
    error = kUnitErrorNotInitialized;
    return false;
  }
  const AString& blanks = NumberReader::DefaultWhiteSpace();
  const AChar* p = text.c_str();
  const AChar* const end = p + text.size();

  NumberReader::Number first;
  if (NumberReader::Read(p, first, blanks) != NumberReader::kNumber) {
    error = kUnitErrorNoNumber;
    return false;
  }
  NumberReader::Number second;
  bool haveSecond = false;
  bool negateSecond = false;
  if (first.isReal) {
    const AChar* q = SkipSpaceTab(p);
    if (*q == u'+' || *q == u'-') {
      negateSecond = *q == u'-';
      q = SkipSpaceTab(q + 1);
      if (NumberReader::Read(q, second, blanks) != NumberReader::kNumber) {
        error = kUnitErrorNoNumber;
        return false;
      }
      if (second.isReal) {
        error = kUnitErrorNotImaginary;
        return false;
      }
      haveSecond = true;
      p = q;
    }
  }
  p = SkipSpaceTab(p);
  if (p != end) {
    error = kUnitErrorTrailingText;
    return false;
  }

  const FullUnitType resolvedDefault = msUnitManager->ResolveFUT(defaultFut, defaultFut);
  const UnitDefinition* fallback = msUnitManager->FindUnitDef(resolvedDefault);
  const UnitDefinition* firstUnit = PartUnit(first, second.unit, fallback);
  if (first.unit != nullptr) {
    unitsFound = first.unit->GetFullUnitType();
  } else if (second.unit != nullptr) {
    unitsFound = second.unit->GetFullUnitType();
  } else {
    unitsFound = resolvedDefault;
  }
  if (!first.isReal) {
    value = AComplex<double>(0.0, ToSI(first.value, firstUnit));
    hasImaginary = true;
  } else {
    double imaginary = 0.0;
    if (haveSecond) {
      const UnitDefinition* secondUnit = PartUnit(second, first.unit, fallback);
      imaginary = ToSI(second.value, secondUnit);
      if (negateSecond) imaginary = -imaginary;
      hasImaginary = true;
    }
    value = AComplex<double>(ToSI(first.value, firstUnit), imaginary);
  }
  error = kUnitErrorNone;
  return true;
}

bool Units::TextToFloat(const AString& text, FullUnitType defaultFut, double& value,
                        FullUnitType& unitsFound, UnitError& error) {
  value = 0.0;
  unitsFound = defaultFut;
  if (!WY_CHECK(msUnitManager)) {
    error = kUnitErrorNotInitialized;
    return false;
  }
  const AChar* p = text.c_str();
  const AChar* const end = p + text.size();
  NumberReader::Number number;
  if (NumberReader::Read(p, number, NumberReader::DefaultWhiteSpace()) != NumberReader::kNumber) {
    error = kUnitErrorNoNumber;
    return false;
  }
  if (!number.isReal) {
    error = kUnitErrorNotReal;
    return false;
  }
  p = SkipSpaceTab(p);
  if (p != end) {
    error = kUnitErrorTrailingText;
    return false;
  }
  const FullUnitType resolvedDefault = msUnitManager->ResolveFUT(defaultFut, defaultFut);
  const UnitDefinition* unit =
      number.unit != nullptr ? number.unit : msUnitManager->FindUnitDef(resolvedDefault);
  unitsFound = number.unit != nullptr ? number.unit->GetFullUnitType() : resolvedDefault;
  value = ToSI(number.value, unit);
  error = kUnitErrorNone;
  return true;
}

void Units::FloatToText(const double& x, FullUnitType fut, AString& out) {
  if (!WY_CHECK(msUnitManager)) {
    out.clear();
    return;
  }
  FloatToText(x, fut, out, msUnitManager->GetDefaultDoubleFormat(),
              msUnitManager->GetMustWriteUnits());
}

void Units::FloatToText(const double& x, FullUnitType fut, AString& out, const AString& format,
                        bool writeUnits) {
  out.clear();
  if (!WY_CHECK(msUnitManager)) return;
  const UnitDefinition* unit = msUnitManager->GetUnitDef(fut);
  bool special = false;
  out = NumberText(x, unit, format, special);
  if (writeUnits && unit != nullptr && !unit->GetUnitString().empty()) {
    // After "nan", "-inf" and "inf" one blank separates the unit, so that the text reads back.
    if (special) out += u' ';
    out += unit->GetUnitString();
  }
}

void Units::ComplexToText(const AComplex<double>& z, FullUnitType fut, AString& out,
                          bool writeUnits) {
  out.clear();
  if (!WY_CHECK(msUnitManager)) return;
  const UnitDefinition* unit = msUnitManager->GetUnitDef(fut);
  const AString& format = msUnitManager->GetDefaultDoubleFormat();
  bool special = false;
  out = NumberText(z.real(), unit, format, special);
  const double imaginary = z.imag();
  const bool negative = !std::isnan(imaginary) && std::signbit(imaginary);
  out += negative ? u" - " : u" + ";
  out += NumberText(negative ? -imaginary : imaginary, unit, format, special);
  // "infj" would read as a name: the special texts take a blank before the suffix.
  out += special ? u" j" : u"j";
  if (writeUnits && unit != nullptr && !unit->GetUnitString().empty()) {
    out += u' ';
    out += unit->GetUnitString();
  }
}

// ---- Switches and formats ----------------------------------------------------------------------

bool Units::MustWriteUnits() {
  if (!WY_CHECK(msUnitManager)) return true;
  return msUnitManager->GetMustWriteUnits();
}

bool Units::SetMustWriteUnits(bool on) {
  if (!WY_CHECK(msUnitManager)) return true;
  return msUnitManager->SetMustWriteUnits(on);
}

bool Units::GetDontAllowUnitsForExpressions() {
  if (!WY_CHECK(msUnitManager)) return false;
  return msUnitManager->GetDontAllowUnitsForExpressions();
}

bool Units::SetDontAllowUnitsForExpressions(bool on) {
  if (!WY_CHECK(msUnitManager)) return false;
  return msUnitManager->SetDontAllowUnitsForExpressions(on);
}

AString Units::GetDefaultDoubleFormat() {
  if (!WY_CHECK(msUnitManager)) return AString(kDefaultDoubleFormat);
  return msUnitManager->GetDefaultDoubleFormat();
}

AString Units::SetDefaultDoubleFormat(const AString& format) {
  if (!WY_CHECK(msUnitManager)) return AString(kDefaultDoubleFormat);
  return msUnitManager->SetDefaultDoubleFormat(format);
}
