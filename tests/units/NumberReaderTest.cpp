// SPDX-License-Identifier: Apache-2.0
//
// NumberReaderTest.cpp - NumberReader: signs, digits and point, the non-finite spellings, the
// exponent and its give-backs, imaginary suffixes and units behind numbers.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <ostream>

#include "support/Capture.h"
#include "wycore/core/Utf.h"
#include "wycore/units/NumberReader.h"
#include "wycore/units/UnitDefinition.h"

// Readable failure output for AString values (defined once for the units tests).
void PrintTo(const AString& s, std::ostream* os) { *os << '"' << wycore::Utf16ToUtf8(s) << '"'; }

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct ReadCase {
  const char16_t* text;
  NumberReader::Status status;
  double value;  // ignored for kNoNumber
  bool isReal;
  const char16_t* unit;  // the unit name read ("" when none)
  const char16_t* rest;  // the text left at the pointer
};

void ExpectSameDouble(double expected, double actual) {
  if (std::isnan(expected)) {
    EXPECT_TRUE(std::isnan(actual)) << actual;
  } else {
    EXPECT_EQ(expected, actual);
  }
}

void RunCases(const ReadCase* cases, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    const ReadCase& c = cases[i];
    const AString text(c.text);
    SCOPED_TRACE(wycore::Utf16ToUtf8(text));
    const AChar* p = text.c_str();
    NumberReader::Number number;
    const NumberReader::Status status =
        NumberReader::Read(p, number, NumberReader::DefaultWhiteSpace());
    EXPECT_EQ(c.status, status);
    EXPECT_EQ(AString(c.rest), AString(p));
    if (status == NumberReader::kNoNumber) {
      EXPECT_EQ(text.c_str(), p);
      continue;
    }
    ExpectSameDouble(c.value, number.value);
    EXPECT_EQ(c.isReal, number.isReal);
    EXPECT_EQ(AString(c.unit), number.unitName);
    EXPECT_EQ(status == NumberReader::kNumber && !number.unitName.empty(), number.unit != nullptr);
  }
}

TEST(NumberReader, ReadsSignsDigitsAndPoint) {
  static const ReadCase cases[] = {
      {u"3", NumberReader::kNumber, 3, true, u"", u""},
      {u"  \t42", NumberReader::kNumber, 42, true, u"", u""},
      {u"-3", NumberReader::kNumber, -3, true, u"", u""},
      {u"+3", NumberReader::kNumber, 3, true, u"", u""},
      {u".5", NumberReader::kNumber, 0.5, true, u"", u""},
      {u"5.", NumberReader::kNumber, 5, true, u"", u""},
      {u"1.25)", NumberReader::kNumber, 1.25, true, u"", u")"},
      {u"1,5", NumberReader::kNumber, 1, true, u"", u",5"},  // never the locale's comma
      {u"1.2.3", NumberReader::kNumber, 1.2, true, u"", u".3"},
      {u".", NumberReader::kNoNumber, 0, true, u"", u"."},
      {u"-", NumberReader::kNoNumber, 0, true, u"", u"-"},
      {u"-.", NumberReader::kNoNumber, 0, true, u"", u"-."},
      {u"", NumberReader::kNoNumber, 0, true, u"", u""},
      {u"abc", NumberReader::kNoNumber, 0, true, u"", u"abc"},
      {u"(1)", NumberReader::kNoNumber, 0, true, u"", u"(1)"},
      {u"--3", NumberReader::kNoNumber, 0, true, u"", u"--3"},
  };
  RunCases(cases, std::size(cases));
}

TEST(NumberReader, ReadsNonFiniteSpellings) {
  static const ReadCase cases[] = {
      {u"1.#INF", NumberReader::kNumber, kInf, true, u"", u""},
      {u"-1.#INF", NumberReader::kNumber, -kInf, true, u"", u""},
      {u"1.#inf*2", NumberReader::kNumber, kInf, true, u"", u"*2"},
      {u"1.#IND", NumberReader::kNumber, kNaN, true, u"", u""},
      {u"-1.#ind", NumberReader::kNumber, kNaN, true, u"", u""},
      {u"1.$", NumberReader::kNumber, kNaN, true, u"", u""},
      {u"-1.$", NumberReader::kNumber, kNaN, true, u"", u""},
      {u"2.#INF", NumberReader::kNumber, 2, true, u"", u"#INF"},  // only the spelling of one
      {u"1.#XYZ", NumberReader::kNumber, 1, true, u"", u"#XYZ"},
      {u"1.#IN", NumberReader::kNumber, 1, true, u"", u"#IN"},
      {u"inf", NumberReader::kNumber, kInf, true, u"", u""},
      {u"INF+1", NumberReader::kNumber, kInf, true, u"", u"+1"},
      {u"-inf", NumberReader::kNumber, -kInf, true, u"", u""},
      {u"nan", NumberReader::kNumber, kNaN, true, u"", u""},
      {u"NaN)", NumberReader::kNumber, kNaN, true, u"", u")"},
      {u"inf mm", NumberReader::kNumber, kInf, true, u"mm", u""},
      {u"infinity", NumberReader::kNoNumber, 0, true, u"", u"infinity"},
      {u"nanx", NumberReader::kNoNumber, 0, true, u"", u"nanx"},
      {u"in", NumberReader::kNoNumber, 0, true, u"", u"in"},
      {u"+inf", NumberReader::kNoNumber, 0, true, u"", u"+inf"},
      {u"-nan", NumberReader::kNoNumber, 0, true, u"", u"-nan"},
  };
  RunCases(cases, std::size(cases));
}

TEST(NumberReader, ExponentGivesBackWhatIsNotAnExponent) {
  static const ReadCase cases[] = {
      {u"3e-3", NumberReader::kNumber, 3e-3, true, u"", u""},
      {u"3E+2", NumberReader::kNumber, 300, true, u"", u""},
      {u"3e-3meter", NumberReader::kNumber, 3e-3, true, u"meter", u""},
      {u"2 e 5", NumberReader::kNumber, 2e5, true, u"", u""},
      {u"2e - 1", NumberReader::kNumber, 0.2, true, u"", u""},
      {u"2em", NumberReader::kUnknownUnit, 2, true, u"em", u""},
      {u"2eV", NumberReader::kNumber, 2, true, u"eV", u""},
      {u"2e+x", NumberReader::kNumber, 2, true, u"", u"+x"},
      {u"2e -x", NumberReader::kNumber, 2, true, u"", u"-x"},
      {u"2e", NumberReader::kNumber, 2, true, u"", u""},
      {u"2e)", NumberReader::kNumber, 2, true, u"", u")"},
      {u"2e mm", NumberReader::kNumber, 2, true, u"mm", u""},
      {u"1e999", NumberReader::kNumber, kInf, true, u"", u""},
      {u"-1e999", NumberReader::kNumber, -kInf, true, u"", u""},
      {u"1e-999", NumberReader::kNumber, 0, true, u"", u""},
      {u"0e999", NumberReader::kNumber, 0, true, u"", u""},
  };
  RunCases(cases, std::size(cases));
}

TEST(NumberReader, ReadsImaginarySuffixesAndUnits) {
  static const ReadCase cases[] = {
      {u"3j", NumberReader::kNumber, 3, false, u"", u""},
      {u"2.5i", NumberReader::kNumber, 2.5, false, u"", u""},
      {u"2.5I+1", NumberReader::kNumber, 2.5, false, u"", u"+1"},
      {u"3J mm", NumberReader::kNumber, 3, false, u"mm", u""},
      {u"3 j", NumberReader::kNumber, 3, false, u"", u""},
      {u"3jx", NumberReader::kUnknownUnit, 3, true, u"jx", u""},
      {u"3j_", NumberReader::kUnknownUnit, 3, true, u"j_", u""},
      {u"3mm", NumberReader::kNumber, 3, true, u"mm", u""},
      {u"3 MM ", NumberReader::kNumber, 3, true, u"MM", u" "},
      {u"3 in*2", NumberReader::kNumber, 3, true, u"in", u"*2"},
      {u"3mils", NumberReader::kNumber, 3, true, u"mils", u""},
      {u"3 furlongs", NumberReader::kUnknownUnit, 3, true, u"furlongs", u""},
      {u"3_x", NumberReader::kUnknownUnit, 3, true, u"_x", u""},
      {u"3mm+2", NumberReader::kNumber, 3, true, u"mm", u"+2"},
  };
  RunCases(cases, std::size(cases));
}

TEST(NumberReader, ManyDigitsOverflowToInfinity) {
  AString text(u"1");
  text.append(400, u'0');
  const AChar* p = text.c_str();
  NumberReader::Number number;
  ASSERT_EQ(NumberReader::kNumber,
            NumberReader::Read(p, number, NumberReader::DefaultWhiteSpace()));
  EXPECT_EQ(kInf, number.value);
  EXPECT_EQ(text.c_str() + text.size(), p);
}

TEST(NumberReader, WithoutUnitsStopsBeforeTheName) {
  const AString text(u"3 mm");
  const AChar* p = text.c_str();
  NumberReader::Number number;
  EXPECT_EQ(NumberReader::kNumber,
            NumberReader::Read(p, number, NumberReader::DefaultWhiteSpace(), false));
  EXPECT_EQ(AString(u"mm"), AString(p));
  EXPECT_TRUE(number.unitName.empty());
}

TEST(NumberReader, TextToNumberReportsUnknownUnitName) {
  const AString text(u"3 furlongs");
  const AChar* p = text.c_str();
  double value = 0;
  const UnitDefinition* unit = nullptr;
  bool isReal = false;
  AString unknown;
  ASSERT_TRUE(NumberReader::TextToNumber(p, value, unit, isReal, unknown,
                                         NumberReader::DefaultWhiteSpace()));
  EXPECT_EQ(3, value);
  EXPECT_TRUE(isReal);
  EXPECT_EQ(nullptr, unit);
  EXPECT_EQ(AString(u"furlongs"), unknown);

  const AString known(u"2.5i mm");
  p = known.c_str();
  ASSERT_TRUE(NumberReader::TextToNumber(p, value, unit, isReal, unknown,
                                         NumberReader::DefaultWhiteSpace()));
  EXPECT_FALSE(isReal);
  ASSERT_NE(nullptr, unit);
  EXPECT_EQ(AString(u"mm"), unit->GetUnitString());
  EXPECT_TRUE(unknown.empty());

  const AString none(u"x");
  p = none.c_str();
  EXPECT_FALSE(NumberReader::TextToNumber(p, value, unit, isReal, unknown,
                                          NumberReader::DefaultWhiteSpace()));
  EXPECT_EQ(none.c_str(), p);
}

TEST(NumberReader, CallerChoosesTheBlanks) {
  const AString text(u"\n3\nmm");
  const AChar* p = text.c_str();
  NumberReader::Number number;
  EXPECT_EQ(NumberReader::kNoNumber, NumberReader::Read(p, number, AString(u" ")));
  EXPECT_EQ(NumberReader::kNumber, NumberReader::Read(p, number, AString(u"\n")));
  EXPECT_EQ(AString(u"mm"), number.unitName);
}

TEST(NumberReader, SignAndSuffixHelpers) {
  struct Case {
    const char16_t* text;
    bool result;
    const char16_t* rest;
  };
  static const Case negatives[] = {
      {u"-3", true, u"3"}, {u" \t- 3", true, u" 3"}, {u"+3", false, u"3"}, {u"3", false, u"3"}};
  for (const Case& c : negatives) {
    const AString text(c.text);
    SCOPED_TRACE(wycore::Utf16ToUtf8(text));
    const AChar* p = text.c_str();
    EXPECT_EQ(c.result, NumberReader::IsNegative(p));
    EXPECT_EQ(AString(c.rest), AString(p));
  }
  static const Case suffixes[] = {{u"j", true, u""},     {u"I  +", true, u"+"},
                                  {u"jx", false, u"jx"}, {u"j2", false, u"j2"},
                                  {u"k", false, u"k"},   {u"", false, u""}};
  for (const Case& c : suffixes) {
    const AString text(c.text);
    SCOPED_TRACE(wycore::Utf16ToUtf8(text));
    const AChar* p = text.c_str();
    EXPECT_EQ(c.result, NumberReader::IsIorJ(p));
    EXPECT_EQ(AString(c.rest), AString(p));
  }
  EXPECT_TRUE(NumberReader::IsNumber(u" -2e3", NumberReader::DefaultWhiteSpace()));
  EXPECT_FALSE(NumberReader::IsNumber(u"e3", NumberReader::DefaultWhiteSpace()));
}

}  // namespace
