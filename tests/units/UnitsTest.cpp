// SPDX-License-Identifier: Apache-2.0
//
// UnitsTest.cpp - the Units facade: numbers to text and back with their error codes, decibels,
// default tokens, rescaling choices, and the checks of calls made before initialisation.
#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <limits>
#include <ostream>

#include "support/Capture.h"
#include "wycore/units/UnitDefinition.h"
#include "wycore/units/UnitManager.h"
#include "wycore/units/Units.h"

void PrintTo(const AString& s, std::ostream* os);

namespace {

using wycore::test::CheckCapture;
using wycore::test::DebugCapture;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

Units::FullUnitType Fut(const char16_t* name) {
  const UnitDefinition* unit = Units::FindUnitDef(AString(name));
  EXPECT_NE(nullptr, unit) << "no unit " << AString(name).TStr();
  return unit != nullptr ? unit->GetFullUnitType() : Units::NoUnits;
}

// Restores a default unit changed by a test of the process's manager.
class DefaultUnitsGuard {
 public:
  explicit DefaultUnitsGuard(Units::UnitType type)
      : mType(type), mPrevious(Units::GetDefaultUnits(type)) {}
  ~DefaultUnitsGuard() { Units::SetDefaultUnits(mPrevious); }

 private:
  Units::UnitType mType;
  Units::FullUnitType mPrevious;
};

TEST(Units, FloatToTextWritesUnitsWithoutBlankExceptAfterSpecialTexts) {
  struct Case {
    double x;
    const char16_t* unit;
    const char16_t* format;
    bool writeUnits;
    const char16_t* expected;
  };
  static const Case cases[] = {
      {0.001, u"mm", u"%-.15g", true, u"1mm"},
      {0.0762, u"mm", u"%-.15g", true, u"76.2mm"},
      {0.001, u"mm", u"%-.15g", false, u"1"},
      {kNaN, u"mm", u"%-.15g", true, u"nan mm"},
      {-kInf, u"mm", u"%-.15g", true, u"-inf mm"},
      {kInf, u"mm", u"%-.15g", true, u"inf mm"},
      {kInf, u"mm", u"%-.15g", false, u"inf"},
      {0.001, u"mm", u"%.3f", true, u"1.000mm"},
      {0.001, u"mm", u"x=%8.2e%%", true, u"x=1.00e+00%mm"},
      {0.1, u"meter", u"%-.15g", true, u"0.1meter"},
      {273.15, u"cel", u"%-.15g", true, u"0cel"},
      {1e-3, u"mils", u"%.4g", true, u"39.37mil"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(AString(c.expected).TStr());
    AString out;
    Units::FloatToText(c.x, Fut(c.unit), out, AString(c.format), c.writeUnits);
    EXPECT_EQ(AString(c.expected), out);
  }
}

TEST(Units, FloatToTextUsesTheDefaultFormatAndSwitch) {
  AString out;
  Units::FloatToText(0.0254, Fut(u"mm"), out);
  EXPECT_EQ(AString(u"25.4mm"), out);
  const bool previous = Units::SetMustWriteUnits(false);
  Units::FloatToText(0.0254, Fut(u"mm"), out);
  Units::SetMustWriteUnits(previous);
  EXPECT_EQ(AString(u"25.4"), out);
  const AString format = Units::SetDefaultDoubleFormat(AString(u"%.2f"));
  Units::FloatToText(0.0254, Fut(u"mm"), out);
  Units::SetDefaultDoubleFormat(format);
  EXPECT_EQ(AString(u"25.40mm"), out);
}

TEST(Units, FloatToTextChecksItsArguments) {
  CheckCapture checks;
  AString out;
  Units::FloatToText(DBL_MAX, Fut(u"meter"), out);
  EXPECT_TRUE(checks.Fired("x < DBL_MAX"));
  EXPECT_EQ(AString(u"1.79769313486232e+308meter"), out);

  // A format that does not take exactly one double falls back to the default one.
  checks.Clear();
  Units::FloatToText(0.001, Fut(u"mm"), out, AString(u"%s"), true);
  EXPECT_EQ(1u, checks.Reports().size());
  EXPECT_EQ(AString(u"1mm"), out);
  Units::FloatToText(0.001, Fut(u"mm"), out, AString(u"%g %g"), false);
  EXPECT_EQ(2u, checks.Reports().size());
  EXPECT_EQ(AString(u"1"), out);
}

struct TextCase {
  const char16_t* text;
  Units::UnitError error;
  double value;          // SI; checked on success
  const char16_t* unit;  // the unit found; checked on success
};

TEST(Units, TextToFloatErrorCodes) {
  static const TextCase cases[] = {
      {u"3mm", Units::kUnitErrorNone, 0.003, u"mm"},
      {u"3 mm", Units::kUnitErrorNone, 0.003, u"mm"},
      {u" \t3MM \t", Units::kUnitErrorNone, 0.003, u"mm"},
      {u"3", Units::kUnitErrorNone, 0.003, u"mm"},  // the default unit
      {u"3e-3meter", Units::kUnitErrorNone, 0.003, u"meter"},
      {u"1in", Units::kUnitErrorNone, 0.0254, u"in"},
      {u"-inf mm", Units::kUnitErrorNone, -kInf, u"mm"},
      {u"1.#IND", Units::kUnitErrorNone, kNaN, u"mm"},
      {u"0cel", Units::kUnitErrorNone, 273.15, u"cel"},
      {u"", Units::kUnitErrorNoNumber, 0, u""},
      {u"abc", Units::kUnitErrorNoNumber, 0, u""},
      {u"3 furlongs", Units::kUnitErrorNoNumber, 0, u""},
      {u"3mm x", Units::kUnitErrorTrailingText, 0, u""},
      {u"1+2j", Units::kUnitErrorTrailingText, 0, u""},
      {u"3mm)", Units::kUnitErrorTrailingText, 0, u""},
      {u"2j", Units::kUnitErrorNotReal, 0, u""},
  };
  for (const TextCase& c : cases) {
    SCOPED_TRACE(AString(c.text).TStr());
    double value = -1;
    Units::FullUnitType found = Units::NoUnits;
    Units::UnitError error = Units::kUnitErrorNone;
    const bool ok = Units::TextToFloat(AString(c.text), Fut(u"mm"), value, found, error);
    EXPECT_EQ(c.error, error);
    EXPECT_EQ(c.error == Units::kUnitErrorNone, ok);
    if (!ok) continue;
    if (std::isnan(c.value)) {
      EXPECT_TRUE(std::isnan(value));
    } else if (std::isinf(c.value)) {
      EXPECT_EQ(c.value, value);
    } else {
      EXPECT_NEAR(c.value, value, 1e-15 * std::max(1.0, std::fabs(c.value)));
    }
    EXPECT_EQ(Fut(c.unit), found);
  }
}

TEST(Units, TextToFloatStopsAtAnEmbeddedZero) {
  AString text(u"3mm");
  text.push_back(0);
  text += u"4";
  double value = 0;
  Units::FullUnitType found = Units::NoUnits;
  Units::UnitError error = Units::kUnitErrorNone;
  EXPECT_FALSE(Units::TextToFloat(text, Units::NoUnits, value, found, error));
  EXPECT_EQ(Units::kUnitErrorTrailingText, error);
}

TEST(Units, TextToComplexErrorCodes) {
  struct Case {
    const char16_t* text;
    Units::UnitError error;
    double re, im;  // SI; checked on success
    bool hasImaginary;
    const char16_t* unit;
  };
  static const Case cases[] = {
      {u"1+2j", Units::kUnitErrorNone, 1, 2, true, u"meter"},
      {u"1 - 2j", Units::kUnitErrorNone, 1, -2, true, u"meter"},
      {u"1 - -2j", Units::kUnitErrorNone, 1, 2, true, u"meter"},
      {u"3j", Units::kUnitErrorNone, 0, 3, true, u"meter"},
      {u"-3i mm", Units::kUnitErrorNone, 0, -0.003, true, u"mm"},
      {u"5", Units::kUnitErrorNone, 5, 0, false, u"meter"},
      {u"5mm  ", Units::kUnitErrorNone, 0.005, 0, false, u"mm"},
      {u"1mm+2j", Units::kUnitErrorNone, 0.001, 0.002, true, u"mm"},
      {u"1+2j mm", Units::kUnitErrorNone, 0.001, 0.002, true, u"mm"},
      {u"1mm + 2j in", Units::kUnitErrorNone, 0.001, 0.0508, true, u"mm"},
      {u"1+2", Units::kUnitErrorNotImaginary, 0, 0, false, u""},
      {u"1 + 2mm", Units::kUnitErrorNotImaginary, 0, 0, false, u""},
      {u"1+", Units::kUnitErrorNoNumber, 0, 0, false, u""},
      {u"1+x", Units::kUnitErrorNoNumber, 0, 0, false, u""},
      {u"abc", Units::kUnitErrorNoNumber, 0, 0, false, u""},
      {u"3jmm", Units::kUnitErrorNoNumber, 0, 0, false, u""},
      {u"1+2j x", Units::kUnitErrorNoNumber, 0, 0, false, u""},  // "x" is read as a unit
      {u"1+2j mm x", Units::kUnitErrorTrailingText, 0, 0, false, u""},
      {u"3j+1", Units::kUnitErrorTrailingText, 0, 0, false, u""},
      {u"3mm x", Units::kUnitErrorTrailingText, 0, 0, false, u""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(AString(c.text).TStr());
    AComplex<double> value;
    Units::FullUnitType found = Units::NoUnits;
    bool hasImaginary = false;
    Units::UnitError error = Units::kUnitErrorNone;
    const bool ok =
        Units::TextToComplex(AString(c.text), Fut(u"meter"), value, found, hasImaginary, error);
    EXPECT_EQ(c.error, error);
    EXPECT_EQ(c.error == Units::kUnitErrorNone, ok);
    if (!ok) continue;
    EXPECT_NEAR(c.re, value.real(), 1e-15);
    EXPECT_NEAR(c.im, value.imag(), 1e-15);
    EXPECT_EQ(c.hasImaginary, hasImaginary);
    EXPECT_EQ(Fut(c.unit), found);
  }
}

TEST(Units, TextRoundTrips) {
  for (double x : {0.0, 1e-3, -2.5e-7, 123456.789, 1.0 / 3.0, kInf, -kInf, kNaN}) {
    for (const char16_t* unit : {u"mm", u"in", u"cel", u"dBm"}) {
      SCOPED_TRACE(AString(unit).TStr());
      // A level in dBm exists only for a positive power.
      if (AString(unit) == u"dBm" && !(x > 0 && std::isfinite(x))) continue;
      AString text;
      Units::FloatToText(x, Fut(unit), text);
      double back = 0;
      Units::FullUnitType found = Units::NoUnits;
      Units::UnitError error = Units::kUnitErrorNone;
      ASSERT_TRUE(Units::TextToFloat(text, Units::NoUnits, back, found, error)) << text.TStr();
      EXPECT_EQ(Fut(unit), found);
      if (std::isnan(x)) {
        EXPECT_TRUE(std::isnan(back));
      } else if (std::isinf(x)) {
        EXPECT_EQ(x, back);
      } else {
        // Fifteen digits of the shown value: -272.816666666667 cel keeps 1e-12 K of 1/3 K.
        EXPECT_NEAR(x, back, 1e-14 * std::max(300.0, std::fabs(x)));
      }
    }
  }
  AString text;
  Units::ComplexToText(AComplex<double>(0.001, -0.002), Fut(u"mm"), text, true);
  EXPECT_EQ(AString(u"1 - 2j mm"), text);
  Units::ComplexToText(AComplex<double>(kNaN, kInf), Fut(u"mm"), text, false);
  EXPECT_EQ(AString(u"nan + inf j"), text);
  AComplex<double> back;
  Units::FullUnitType found = Units::NoUnits;
  bool hasImaginary = false;
  Units::UnitError error = Units::kUnitErrorNone;
  ASSERT_TRUE(Units::TextToComplex(text, Fut(u"mm"), back, found, hasImaginary, error));
  EXPECT_TRUE(std::isnan(back.real()));
  EXPECT_EQ(kInf, back.imag());
}

TEST(Units, GarbageGivesAnErrorCodeNeverACrash) {
  // Texts built from the characters the reader treats specially, plus a zero and a surrogate.
  const AString alphabet(u"0123456789.+-eEijJ#$ \tmMinfa_xIND\u00e9\xd800");
  unsigned state = 12345;
  for (int round = 0; round < 3000; ++round) {
    AString text;
    const int length = round % 17;
    for (int i = 0; i < length; ++i) {
      state = state * 1103515245u + 12345u;
      text.push_back(alphabet[(state >> 16) % alphabet.size()]);
    }
    if (round % 50 == 0) text.push_back(0);
    AComplex<double> value;
    Units::FullUnitType found = Units::NoUnits;
    bool hasImaginary = false;
    Units::UnitError error = Units::kUnitErrorNone;
    const bool ok = Units::TextToComplex(text, Units::NoUnits, value, found, hasImaginary, error);
    EXPECT_EQ(ok, error == Units::kUnitErrorNone);
    EXPECT_TRUE(error == Units::kUnitErrorNone || error == Units::kUnitErrorNoNumber ||
                error == Units::kUnitErrorTrailingText || error == Units::kUnitErrorNotImaginary)
        << error;
  }
}

TEST(Units, DecibelsByKindOfQuantity) {
  EXPECT_EQ(val::kDBPower, Units::GetDBType(Units::Power));
  EXPECT_EQ(val::kDBAmplitude, Units::GetDBType(Units::Voltage));
  EXPECT_EQ(val::kDBAmplitude, Units::GetDBType(Units::NoUnit));
  EXPECT_EQ(val::kDBPower, Units::GetDBType(Fut(u"mW")));
  EXPECT_DOUBLE_EQ(20.0, Units::ConvertToDB(100.0, Fut(u"W")));
  EXPECT_DOUBLE_EQ(40.0, Units::ConvertToDB(100.0, Fut(u"V")));
  EXPECT_DOUBLE_EQ(100.0, Units::ConvertFromDB(20.0, Fut(u"W")));
  EXPECT_DOUBLE_EQ(100.0, Units::ConvertFromDB(40.0, Fut(u"V")));
  EXPECT_EQ(Fut(u"dBW"), Units::GetDBUnits(Units::Power));
  EXPECT_EQ(Fut(u"dBV"), Units::GetDBUnits(Units::Voltage));
  EXPECT_EQ(Units::NoUnits, Units::GetDBUnits(Units::Length));

  CheckCapture checks;
  EXPECT_TRUE(std::isnan(Units::ConvertToDB(0.0, Fut(u"W"))));
  EXPECT_TRUE(std::isnan(Units::ConvertToDB(-1.0, Fut(u"V"))));
  EXPECT_EQ(2u, checks.Reports().size());
  EXPECT_TRUE(checks.Fired("value > 0.0"));

  for (val::DBType type : {val::kDBPower, val::kDBAmplitude, val::kDBUnknown}) {
    EXPECT_EQ(type, Units::GetDBTypeFromString(Units::GetDBTypeString(type).ToUpper()));
  }
  EXPECT_EQ(val::kDBAmplitude, Units::GetDBTypeFromString(AString(u"loud")));
}

TEST(Units, LookupsThroughTheFacade) {
  EXPECT_EQ(Fut(u"mm"), Units::GetUnitDef(AString(u"MM"), Units::Voltage)->GetFullUnitType());
  const UnitDefinition* none = Units::GetUnitDef(AString(), Units::Length);
  ASSERT_NE(nullptr, none);
  EXPECT_EQ(Units::NoUnits, none->GetFullUnitType());
  EXPECT_EQ(Fut(u"mm"), Units::GetFullUnitType(AString(u"mm"), Units::Length));
  EXPECT_EQ(Fut(u"mm"), Units::GetFullUnitType(Units::Length, Units::Milli));
  EXPECT_EQ(Units::Length, Units::ConvertToUnitType(Fut(u"mil")));
  EXPECT_EQ(Units::Length, Units::GetUnitType(AString(u"LENGTH")));
  EXPECT_EQ(AString(u"Temperature"), Units::GetUnitTypeString(Units::Temperature));
  EXPECT_EQ(Units::Milli, Units::GetQualifier(Fut(u"mm")));
  EXPECT_TRUE(Units::UsesStandardMetricQualifier(Fut(u"dm")));
  EXPECT_FALSE(Units::UsesStandardMetricQualifier(Fut(u"cm")));
  EXPECT_EQ(Fut(u"delta_kel"), Units::GetMatchingTemperatureDiffUnit(Fut(u"kel")));
  EXPECT_EQ(Fut(u"delta_cel"), Units::GetMatchingTemperatureDiffUnit(Fut(u"cel")));
  EXPECT_NEAR(76.2, Units::Convert(3, Fut(u"in"), Fut(u"mm")), 1e-12);
  const AComplex<double> si = Units::ConvertToSI(AComplex<double>(1, -2), Fut(u"mm"));
  EXPECT_EQ(AComplex<double>(0.001, -0.002), si);
  EXPECT_EQ(AComplex<double>(1, -2), Units::ConvertFromSI(si, Fut(u"mm")));

  CheckCapture checks;
  EXPECT_EQ(Units::NoUnits, Units::GetFullUnitType(AString(u"furlong"), Units::Length));
  EXPECT_TRUE(checks.Fired("Asking for UnitDefinition for unknown FUT name"));
}

TEST(Units, DefaultTokensAndCalcFullUnitType) {
  DefaultUnitsGuard lengthGuard(Units::Length);
  DefaultUnitsGuard temperatureGuard(Units::Temperature);
  DefaultUnitsGuard differenceGuard(Units::TemperatureDifference);
  const Units::FullUnitType token =
      Units::GetUnitManager()->GetUnitTypeMap().at(Units::Length).m_defaultToken;
  Units::SetDefaultUnits(Fut(u"mm"));
  EXPECT_EQ(Fut(u"mm"), Units::CalcFullUnitType(token, Units::NoUnits));
  EXPECT_EQ(0.001, Units::ConvertToSI(1.0, token));
  Units::SetDefaultUnitDef(Units::FindUnitDef(AString(u"in")));
  EXPECT_EQ(Fut(u"in"), Units::CalcFullUnitType(token, Units::NoUnits));
  EXPECT_EQ(Fut(u"in"), Units::GetDefaultUnitDef(Units::Length)->GetFullUnitType());
  EXPECT_EQ(Fut(u"km"), Units::CalcFullUnitType(Fut(u"km"), token));

  // A number written without unit is read in the default unit the token stands for.
  double value = 0;
  Units::FullUnitType found = Units::NoUnits;
  Units::UnitError error = Units::kUnitErrorNone;
  ASSERT_TRUE(Units::TextToFloat(AString(u"2"), token, value, found, error));
  EXPECT_EQ(Fut(u"in"), found);
  EXPECT_DOUBLE_EQ(0.0508, value);

  Units::SetDefaultUnits(Fut(u"fah"));
  EXPECT_EQ(Fut(u"delta_fah"), Units::GetDefaultUnits(Units::TemperatureDifference));
}

TEST(Units, RescalingChoices) {
  EXPECT_EQ(Fut(u"mm"), Units::GetNiceScaleUnits(Fut(u"meter"), 0.0, 0.5));
  EXPECT_EQ(Fut(u"km"), Units::GetNiceScaleUnits(Fut(u"meter"), -2500.0, 1.0));
  EXPECT_EQ(Fut(u"in"), Units::GetNiceScaleUnits(Fut(u"in"), 0.0, 1e-3));
  EXPECT_EQ(Fut(u"dm"), Units::GetScaleUnits(Fut(u"meter"), 0.0, 0.5));
  EXPECT_EQ(Fut(u"um"), Units::FindNiceUnitForLength(5e-4));
  EXPECT_EQ(Fut(u"km"), Units::FindNiceUnitForLength(-2500.0));
  EXPECT_EQ(Fut(u"meter"), Units::FindNiceUnitForLength(0.0));
  EXPECT_EQ(Fut(u"fm"), Units::FindNiceUnitForLength(1e-30));

  std::vector<AString> gui;
  EXPECT_EQ(static_cast<int>(Units::GetUnitManager()->GetFUTList(Units::Length).size()),
            Units::GetTypeChoices(Units::Length, gui, true));
  EXPECT_NE(gui.end(), std::find(gui.begin(), gui.end(), AString(u"Cu-oz/ft^2")));
  EXPECT_NE(AString::npos, Units::GetTypeChoices(Units::Length, false).find(u"copper_oz_per_ft2"));
  EXPECT_EQ(Units::GetUnitManager()->GetTypeIndex(Fut(u"ft")), Units::GetTypeIndex(Fut(u"ft")));
}

TEST(Units, CallsBeforeInitialisationReportAndReturnNeutralValues) {
  Units::UnInitializeUnits();
  {
    CheckCapture checks;
    EXPECT_FALSE(Units::IsInitialized());
    EXPECT_EQ(nullptr, Units::GetUnitDef(static_cast<Units::FullUnitType>(36)));
    EXPECT_EQ(static_cast<Units::FullUnitType>(905),
              Units::CalcFullUnitType(static_cast<Units::FullUnitType>(905), Units::NoUnits));
    EXPECT_EQ(Units::NoUnits, Units::GetDefaultUnits(Units::Length));
    EXPECT_EQ(Units::NoUnit, Units::GetUnitType(AString(u"Length")));
    double value = 1;
    Units::FullUnitType found = Units::NoUnits;
    Units::UnitError error = Units::kUnitErrorNone;
    EXPECT_FALSE(Units::TextToFloat(AString(u"3"), Units::NoUnits, value, found, error));
    EXPECT_EQ(Units::kUnitErrorNotInitialized, error);
    AString text(u"x");
    Units::FloatToText(1.0, Units::NoUnits, text);
    EXPECT_TRUE(text.empty());
    EXPECT_EQ(6u, checks.Reports().size());
    for (const auto& report : checks.Reports()) EXPECT_EQ("msUnitManager", report.text);
  }
  Units::InitializeUnits(nullptr);
  EXPECT_TRUE(Units::IsInitialized());
  EXPECT_EQ(nullptr, Units::GetApplication());
  EXPECT_EQ(Fut(u"mm"), Units::GetUnitDef(AString(u"mm"), Units::Length)->GetFullUnitType());
}

}  // namespace
