// SPDX-License-Identifier: Apache-2.0
//
// I18nTest.cpp - the i18n helpers beside AString: quoting, names, joining, line breaks and the
// fixed separators.
#include <gtest/gtest.h>

#include "support/Capture.h"
#include "wycore/core/Utf.h"
#include "wycore/io/AString.h"

namespace {

std::string Narrow(const AString& s) { return wycore::Utf16ToUtf8(s); }

TEST(I18n, FixedSeparators) {
  EXPECT_EQ(i18n::ListSeparator(), u',');
  EXPECT_EQ(i18n::RadixSeparator(), u'.');
  EXPECT_EQ(i18n::Underscore(), u'_');
  EXPECT_EQ(i18n::GListSeparator, u',');
  EXPECT_TRUE(i18n::ACharIsSeparator(u','));
  EXPECT_FALSE(i18n::ACharIsSeparator(u';'));
  EXPECT_TRUE(i18n::ACharIsUnderscore(u'_'));
  EXPECT_FALSE(i18n::ACharIsUnderscore(u'-'));
}

TEST(I18n, FoldCaseRule) {
  EXPECT_EQ(i18n::FoldCase(u'A'), u'a');
  EXPECT_EQ(i18n::FoldCase(u'Z'), u'z');
  EXPECT_EQ(i18n::FoldCase(u'@'), u'@');  // the neighbours of A..Z stay
  EXPECT_EQ(i18n::FoldCase(u'['), u'[');
  EXPECT_EQ(i18n::UpperCase(u'a'), u'A');
  EXPECT_EQ(i18n::UpperCase(u'{'), u'{');
}

TEST(I18n, Quotes) {
  EXPECT_EQ(i18n::AddDoubleQuotes(u"a b"), u"\"a b\"");
  EXPECT_EQ(i18n::AddSingleQuotes(u""), u"''");
  const std::pair<const char16_t*, const char16_t*> doubles[] = {
      {u"\"x\"", u"x"}, {u"\"\"", u""}, {u"\"", u"\""}, {u"\"x", u"\"x"}, {u"'x'", u"'x'"}};
  for (const auto& [in, out] : doubles) {
    SCOPED_TRACE(Narrow(in));
    EXPECT_EQ(i18n::RemoveDoubleQuotes(in), out);
  }
  EXPECT_EQ(i18n::RemoveSingleQuotes(u"'x'"), u"x");
  EXPECT_TRUE(i18n::OpensWithDoubleQuote(u" \t\"x"));
  EXPECT_FALSE(i18n::OpensWithDoubleQuote(u"x\""));
  EXPECT_FALSE(i18n::OpensWithDoubleQuote(u"   "));
  EXPECT_TRUE(i18n::ClosesWithDoubleQuote(u"x\"  \n"));
  EXPECT_FALSE(i18n::ClosesWithDoubleQuote(u"\"x"));
  EXPECT_EQ(i18n::GetMatchingFirstAndLastChars(u"'abc'"), u'\'');
  EXPECT_EQ(i18n::GetMatchingFirstAndLastChars(u"aa"), u'a');
  EXPECT_EQ(i18n::GetMatchingFirstAndLastChars(u"a"), 0);
  EXPECT_EQ(i18n::GetMatchingFirstAndLastChars(u"ab"), 0);
}

TEST(I18n, IncrementName) {
  const std::pair<const char16_t*, const char16_t*> cases[] = {
      {u"Box", u"Box1"},
      {u"Box9", u"Box10"},
      {u"Box007", u"Box8"},
      {u"Box99", u"Box100"},
      {u"Box000", u"Box1"},
      {u"", u"1"},
      {u"12", u"13"},
      {u"a1b", u"a1b1"},
      {u"x2147483647", u"x2147483648"},
      {u"n99999999999999999999", u"n100000000000000000000"},
  };
  for (const auto& [in, out] : cases) {
    SCOPED_TRACE(Narrow(in));
    EXPECT_EQ(i18n::IncrementName(in), out);
  }
}

TEST(I18n, ParseName) {
  struct Case {
    const char16_t* text;
    bool keepZeros;
    bool hasNumber;
    const char16_t* name;
    long number;
  } cases[] = {
      {u"Box12", false, true, u"Box", 12},
      {u"Box007", false, true, u"Box", 7},
      {u"Box007", true, true, u"Box00", 7},
      {u"Box000", true, true, u"Box00", 0},
      {u"Box0", true, true, u"Box", 0},
      {u"Box", false, false, u"Box", 0},
      {u"", true, false, u"", 0},
      {u"42", false, true, u"", 42},
      {u"a1b", false, false, u"a1b", 0},
      {u"x2147483647", false, true, u"x", 2147483647},
      {u"x2147483648", false, false, u"x2147483648", 0},  // beyond the 32-bit data model
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(Narrow(c.text) + (c.keepZeros ? " keeping zeros" : ""));
    AString name(u"stale");
    long number = -1;
    EXPECT_EQ(i18n::ParseName(c.text, name, number, c.keepZeros), c.hasNumber);
    EXPECT_EQ(name, c.name);
    EXPECT_EQ(number, c.number);
  }
}

TEST(I18n, IsAlphaNumeric) {
  EXPECT_TRUE(i18n::IsAlphaNumeric(u"abc123", u""));
  EXPECT_FALSE(i18n::IsAlphaNumeric(u"", u""));
  EXPECT_FALSE(i18n::IsAlphaNumeric(u"a_b", u""));
  EXPECT_TRUE(i18n::IsAlphaNumeric(u"a_b-c", u"_-"));
  EXPECT_FALSE(i18n::IsAlphaNumeric(u"a b", u"_"));
}

TEST(I18n, CommaDelimitedStrings) {
  EXPECT_EQ(i18n::GetCommaDelimitedString(std::vector<double>{1.5, -2, 1e-7}, u"%g", false),
            u"1.5,-2,1e-07");
  EXPECT_EQ(i18n::GetCommaDelimitedString(std::vector<double>{1, 2}, u"%.2f", true), u"1.00, 2.00");
  EXPECT_EQ(i18n::GetCommaDelimitedString(std::vector<double>{}, u"%g", true), u"");
  const std::vector<AString> words{u"a", u"", u"b c"};
  EXPECT_EQ(i18n::GetCommaDelimitedString(words, false, false), u"a,,b c");
  EXPECT_EQ(i18n::GetCommaDelimitedString(words, true, true), u"\"a\", \"\", \"b c\"");
}

TEST(I18n, MakeNumberString) {
  EXPECT_EQ(i18n::MakeNumberString(-42), u"-42");
  EXPECT_EQ(i18n::MakeNumberString(u"%.3e", 12345.678), u"1.235e+04");
  EXPECT_EQ(i18n::MakeNumberString(u"%g", 0.1), u"0.1");
}

TEST(I18n, ConvertNLtoNLCR) {
  const std::pair<const char16_t*, const char16_t*> cases[] = {
      {u"a\nb", u"a\r\nb"},     {u"a\rb", u"a\r\nb"},
      {u"a\r\nb", u"a\r\nb"},   {u"a\n\rb", u"a\r\nb"},
      {u"\n\n", u"\r\n\r\n"},   {u"\r\n\r", u"\r\n\r\n"},
      {u"\r\r\n", u"\r\n\r\n"}, {u"", u""},
      {u"plain", u"plain"},
  };
  for (const auto& [in, out] : cases) {
    SCOPED_TRACE(testing::PrintToString(std::u16string(in)));
    EXPECT_EQ(i18n::ConvertNLtoNLCR(in), out);
  }
}

TEST(I18n, ConversionRejectsNegativeLengthsOtherThanMinusOne) {
  wycore::test::CheckCapture checks;
  std::string out;
  AString wide;
  EXPECT_EQ(i18n::WideToMultiByte(i18n::kUtf8, u"abc", -2, out), 0);
  EXPECT_EQ(i18n::MultiByteToWide(i18n::kUtf8, "abc", -5, wide), 0);
  EXPECT_EQ(checks.Reports().size(), 2u);
  EXPECT_TRUE(checks.Fired("length >= -1"));
}

}  // namespace
