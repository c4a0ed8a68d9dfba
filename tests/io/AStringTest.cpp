// SPDX-License-Identifier: Apache-2.0
//
// AStringTest.cpp - AString: construction and code pages, comparison and folding, number
// reading, slicing, formatting, tokenising and wildcard matching.
#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdarg>
#include <ostream>
#include <thread>
#include <unordered_set>

#include "support/Capture.h"
#include "wycore/core/Utf.h"
#include "wycore/io/AString.h"

// Readable failure output for AString values.
void PrintTo(const AString& s, std::ostream* os) { *os << '"' << wycore::Utf16ToUtf8(s) << '"'; }

namespace {

using wycore::test::CheckCapture;

std::string Bytes(std::initializer_list<int> values) {
  std::string out;
  for (int v : values) out.push_back(static_cast<char>(v));
  return out;
}

// Switches LC_CTYPE for one test and restores it.
class CtypeLocale {
 public:
  explicit CtypeLocale(const char* name) : mPrevious(std::setlocale(LC_CTYPE, nullptr)) {
    mActive = std::setlocale(LC_CTYPE, name) != nullptr;
  }
  ~CtypeLocale() { std::setlocale(LC_CTYPE, mPrevious.c_str()); }
  bool Active() const { return mActive; }

 private:
  std::string mPrevious;
  bool mActive = false;
};

// ---------------------------------------------------------------------------------------------
// Construction and code pages

TEST(AString, NullPointerFiresCheckAndYieldsEmpty) {
  CheckCapture checks;
  AString a(static_cast<const char*>(nullptr));
  AString b(static_cast<const AChar*>(nullptr));
  AString c(i18n::kCp1252, nullptr, 3);
  AString d(static_cast<const wchar_t*>(nullptr));
  EXPECT_TRUE(a.empty() && b.empty() && c.empty() && d.empty());
  EXPECT_EQ(checks.Reports().size(), 4u);
  EXPECT_TRUE(checks.Fired("a_string != 0"));
}

TEST(AString, ConstructorsTakeLengthsAndRepeats) {
  EXPECT_EQ(AString("abcdef", 3), u"abc");
  EXPECT_EQ(AString(u"abcdef", 2), u"ab");
  EXPECT_EQ(AString(u"abc", -1), u"abc");
  EXPECT_EQ(AString(L"x\U0001F600y"), u"x\U0001F600y");  // UTF-32 in, surrogate pair out
  EXPECT_EQ(AString(L"abc", 2), u"ab");
  EXPECT_EQ(AString(3, 'z'), u"zzz");
  EXPECT_EQ(AString(2, static_cast<char>(0xE9), i18n::kCp1252), u"\u00e9\u00e9");
  EXPECT_EQ(AString(2, L'\U0001F600'), u"\U0001F600\U0001F600");
  EXPECT_EQ(AString(i18n::kUtf8, "\xC3\xA9t\xC3\xA9"), u"\u00e9t\u00e9");
  AString embedded(u"a\0b", 3);
  EXPECT_EQ(embedded.size(), 3u);
  EXPECT_EQ(embedded.Serialize(i18n::kUtf8), std::string("a\0b", 3));
}

struct CodePageCase {
  const char* name;
  i18n::TEncoding encoding;
  std::u16string wide;
  std::string narrow;
};

TEST(AString, CodePagesWriteTheNamedCodePageBytesAndReadThemBack) {
  const CodePageCase cases[] = {
      {"utf8", i18n::kUtf8, u"Z\u00fcrich \u65e5\U0001F600",
       Bytes({'Z', 0xC3, 0xBC, 'r', 'i', 'c', 'h', ' ', 0xE6, 0x97, 0xA5, 0xF0, 0x9F, 0x98, 0x80})},
      {"system is utf8", i18n::kSystemEncoding, u"\u00e9", Bytes({0xC3, 0xA9})},
      {"cp1252", i18n::kCp1252, u"\u20ac \u00e9\u00ff\u2122", Bytes({0x80, ' ', 0xE9, 0xFF, 0x99})},
      {"cp1252 gaps", i18n::kCp1252, u"\u0081\u008d\u008f\u0090\u009d",
       Bytes({0x81, 0x8D, 0x8F, 0x90, 0x9D})},
      {"cp437 box", i18n::kOem, u"\u2554\u2550\u2557\u2502\u00e9",
       Bytes({0xC9, 0xCD, 0xBB, 0xB3, 0x82})},
      {"cp932", i18n::kCp932, u"\u65e5\u672c\u8a9e\uff71A\\",
       Bytes({0x93, 0xFA, 0x96, 0x7B, 0x8C, 0xEA, 0xB1, 'A', '\\'})},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    AString wide(c.wide);
    EXPECT_EQ(wide.Serialize(c.encoding), c.narrow);
    EXPECT_EQ(AString(c.encoding, c.narrow.c_str(), static_cast<std::int64_t>(c.narrow.size())),
              wide);
    std::string out;
    EXPECT_EQ(i18n::WideToMultiByte(c.encoding, wide.c_str(), -1, out),
              static_cast<int>(c.narrow.size()));
    EXPECT_EQ(i18n::WideToMultiByteLen(c.encoding, wide.c_str(), static_cast<int>(wide.size())),
              static_cast<int>(c.narrow.size()));
    AString back;
    EXPECT_EQ(i18n::MultiByteToWide(c.encoding, out.c_str(), -1, back),
              static_cast<int>(wide.size()));
    EXPECT_EQ(back, wide);
  }
}

TEST(AString, CodePagesReplaceWhatTheyCannotHold) {
  // Every character outside code page 1252 is lost; one '?' per character, pairs included.
  AString mixed(u"a\u00e9\u03a9\u65e5\U0001F600\u20acz");
  EXPECT_EQ(mixed.Serialize(i18n::kCp1252), Bytes({'a', 0xE9, '?', '?', '?', 0x80, 'z'}));
  EXPECT_EQ(AString(i18n::kCp1252, mixed.Serialize(i18n::kCp1252).c_str()), u"a\u00e9???\u20acz");
  EXPECT_EQ(AString(u"\u00e9\U0001F600\u03a9").Serialize(i18n::kCp932), "??\x83\xb6");
  // Malformed UTF-16 is '?' in single- and double-byte pages, U+FFFD in UTF-8.
  AString lone(u"x\xD800y\xDC00");
  EXPECT_EQ(lone.Serialize(i18n::kCp1252), "x?y?");
  EXPECT_EQ(lone.Serialize(i18n::kUtf8), Bytes({'x', 0xEF, 0xBF, 0xBD, 'y', 0xEF, 0xBF, 0xBD}));
}

TEST(AString, EverySingleBytePageByteSurvivesARoundTrip) {
  std::string all;
  for (int b = 1; b < 256; ++b) all.push_back(static_cast<char>(b));
  for (i18n::TEncoding encoding : {i18n::kCp1252, i18n::kOem}) {
    SCOPED_TRACE(static_cast<int>(encoding));
    AString wide(encoding, all.c_str());
    EXPECT_EQ(wide.size(), 255u);
    EXPECT_EQ(wide.find(u'\uFFFD'), AString::npos);
    EXPECT_EQ(wide.Serialize(encoding), all);
  }
}

TEST(AString, InvalidNarrowInputBecomesOneReplacementPerBadByte) {
  EXPECT_EQ(AString(i18n::kUtf8,
                    "a\xFF"
                    "b"),
            u"a\uFFFDb");
  EXPECT_EQ(AString(i18n::kUtf8, "\xE6\x97"), u"\uFFFD\uFFFD");    // cut-off sequence
  EXPECT_EQ(AString(i18n::kUtf8, "\xC0\xAFz"), u"\uFFFD\uFFFDz");  // overlong form
  EXPECT_EQ(AString(i18n::kCp932, "\x81 x"), u"\uFFFD x");         // lead byte, bad trail
  EXPECT_EQ(AString(static_cast<i18n::TEncoding>(42), "\xC3\xA9"), u"\u00e9");  // unknown: UTF-8
}

TEST(AString, ConversionsOfEmptyAndLargeTexts) {
  std::string out = "stale";
  AString wide = u"stale";
  EXPECT_EQ(i18n::WideToMultiByte(i18n::kUtf8, nullptr, -1, out), 0);
  EXPECT_TRUE(out.empty());
  EXPECT_EQ(i18n::MultiByteToWide(i18n::kUtf8, "abc", 0, wide), 0);
  EXPECT_TRUE(wide.empty());
  AString big(200000, u'\u65e5');
  big += u"\U0001F600";
  std::string narrow = big.Serialize(i18n::kUtf8);
  EXPECT_EQ(narrow.size(), 600004u);
  EXPECT_EQ(AString(i18n::kUtf8, narrow.c_str()), big);
  EXPECT_EQ(AString(i18n::kCp932, big.Serialize(i18n::kCp932).c_str()).size(), 200001u);
}

TEST(AString, ConversionsFromManyThreadsAtOnce) {
  std::vector<std::thread> threads;
  std::atomic<int> failures{0};
  for (int t = 0; t < 6; ++t) {
    threads.emplace_back([&failures, t] {
      const i18n::TEncoding encoding = t % 2 ? i18n::kCp932 : i18n::kCp1252;
      AString text = t % 2 ? AString(u"\u65e5\u672c") : AString(u"\u00e9t\u00e9");
      for (int i = 0; i < 2000; ++i) {
        if (AString(encoding, text.Serialize(encoding).c_str()) != text) ++failures;
      }
    });
  }
  for (auto& t : threads) t.join();
  EXPECT_EQ(failures.load(), 0);
}

// ---------------------------------------------------------------------------------------------
// Comparison, case and classification

TEST(AString, ComparisonResults) {
  struct Case {
    std::u16string a, b;
    int ordinal, noCase;
  } cases[] = {
      {u"ABC", u"abc", -1, 0},
      {u"a", u"B", 1, -1},
      {u"ab", u"abc", -1, -1},
      {u"", u"", 0, 0},
      {u"z", u"\u00e9", -1, -1},
      {u"\xD800\xDC00", u"\uFFFF", -1, -1},  // code units, not code points
      {std::u16string(u"ab\0X", 4), std::u16string(u"AB\0Y", 4), 1, 0},  // stops at the zero
      {std::u16string(u"ab\0X", 4), u"ab", 1, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(wycore::Utf16ToUtf8(c.a) + " vs " + wycore::Utf16ToUtf8(c.b));
    EXPECT_EQ(AString(c.a).Compare(c.b), c.ordinal);
    EXPECT_EQ(AString(c.a).CompareNoCase(c.b), c.noCase);
    EXPECT_EQ(AString(c.b).CompareNoCase(c.a), -c.noCase);
  }
  EXPECT_EQ(i18n::ACharStrICmp(u"Hello", u"hELLO"), 0);
  EXPECT_EQ(i18n::ACharStrNICmp(u"abcX", u"ABCy", 3), 0);
  EXPECT_EQ(i18n::ACharStrNICmp(u"abcX", u"ABCy", 4), -1);
}

TEST(AString, SliceComparisons) {
  AString s(u"abcdef");
  EXPECT_EQ(s.Compare(1, 3, AString(u"bcd")), 0);
  EXPECT_EQ(s.Compare(4, AString::npos, AString(u"ef")), 0);
  EXPECT_EQ(s.Compare(9, 2, AString()), 0);
  EXPECT_EQ(s.CompareNoCase(1, 2, AString(u"BC")), 0);
  EXPECT_EQ(s.CompareNoCase(1, 2, AString(u"BCD")), -1);
  EXPECT_EQ(s.CompareNoCase(6, 2, AString(u"x")), -1);  // starts at the end
  EXPECT_EQ(s.CompareNoCase(9, 2, AString()), 0);       // both empty
  EXPECT_EQ(s.CompareNoCase(2, 0, AString(u"c")), -1);  // empty slice
}

TEST(AString, FoldingAboveAsciiIsTheSameInEveryLocale) {
  AString upper(u"\u00c9COLE"), lower(u"\u00e9cole");
  for (const char* name : {"C", "C.UTF-8"}) {
    SCOPED_TRACE(name);
    CtypeLocale locale(name);  // what the application sets must not matter
    EXPECT_EQ(upper.CompareNoCase(lower), 0);
    EXPECT_EQ(upper.ToLower(), lower);
    EXPECT_EQ(lower.ToUpper(), upper);
    EXPECT_TRUE(AString(u"\u00e9t\u00e9").IsLabel());
    EXPECT_EQ(i18n::FoldCase(u'\u0416'), u'\u0436');  // Cyrillic Zhe
    EXPECT_EQ(i18n::FoldCase(u'\u00ff'), u'\u00ff');  // already lower case
  }
  CtypeLocale utf8("C.UTF-8");
  if (!utf8.Active()) GTEST_SKIP() << "no C.UTF-8 locale for wcscoll";
  EXPECT_EQ(AString(u"\u00c9").CollateNoCase(AString(u"\u00e9")), 0);
}

TEST(AString, CollateAndHash) {
  EXPECT_EQ(AString(u"apple").Collate(AString(u"banana")), -1);
  EXPECT_EQ(AString(u"ABC").CollateNoCase(AString(u"abd")), -1);
  EXPECT_EQ(AString(u"ABC").CollateNoCase(AString(u"abc")), 0);
  std::unordered_set<AString> set{AString(u"a"), AString(u"b"), AString(u"a")};
  EXPECT_EQ(set.size(), 2u);
  EXPECT_EQ(std::hash<const AString>()(AString(u"x")), std::hash<AString>()(AString(u"x")));
}

TEST(AString, IsLabel) {
  const std::pair<const char16_t*, bool> cases[] = {
      {u"", false}, {u"1a", false}, {u"a-b", false}, {u"a b", false},
      {u"_", true}, {u"a1", true},  {u"_x_2", true}, {u"Z", true},
  };
  for (const auto& [text, expected] : cases) {
    SCOPED_TRACE(wycore::Utf16ToUtf8(text));
    EXPECT_EQ(AString(text).IsLabel(), expected);
  }
}

TEST(AString, IsNumberLongAcceptsWhatA32BitWcstolReadsCompletely) {
  struct Case {
    std::u16string text;
    int base;
    bool ok;
    long value;
  } cases[] = {
      {u"12", 10, true, 12},
      {u"12 ", 10, true, 12},
      {u" \t-12\n", 10, true, -12},
      {u"+7", 10, true, 7},
      {u"12x", 10, false, 0},
      {u"", 10, false, 0},
      {u" ", 10, false, 0},
      {u"-", 10, false, 0},
      {u"1 2", 10, false, 0},
      {std::u16string(u"12\0", 3), 10, false, 0},
      {u"2147483647", 10, false, 0},
      {u"-2147483648", 10, false, 0},
      {u"2147483646", 10, true, 2147483646},
      {u"-2147483647", 10, true, -2147483647},
      {u"99999999999", 10, false, 0},
      {u"0x1A", 16, true, 26},
      {u"1a", 16, true, 26},
      {u"0x1A", 0, true, 26},
      {u"010", 0, true, 8},
      {u"010", 10, true, 10},
      {u"08", 0, false, 0},
      {u"0x1A", 10, false, 0},
      {u"0x", 16, false, 0},
      {u"101", 2, true, 5},
      {u"z", 36, true, 35},
      {u"5", 1, false, 0},
      {u"\uff11", 10, false, 0},  // full-width digit: not a "C" locale digit
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(wycore::Utf16ToUtf8(c.text) + " base " + std::to_string(c.base));
    long value = -99;
    EXPECT_EQ(AString(c.text).IsNumber(value, c.base), c.ok);
    if (c.ok) {
      EXPECT_EQ(value, c.value);
    }
  }
}

TEST(AString, IsNumberWithRestHandsBackTheRemainder) {
  int i = 0;
  long l = 0;
  AString rest;
  EXPECT_TRUE(AString(u"12mm").IsNumber(i, rest));
  EXPECT_EQ(i, 12);
  EXPECT_EQ(rest, u"mm");
  EXPECT_TRUE(AString(u"-0x10 V").IsNumber(l, rest, 16));
  EXPECT_EQ(l, -16);
  EXPECT_EQ(rest, u" V");
  EXPECT_FALSE(AString(u"mm").IsNumber(i, rest));
  EXPECT_EQ(rest, u"mm");
  EXPECT_FALSE(AString(u"4294967296kg").IsNumber(l, rest));
}

TEST(AString, IsNumberDoubleAcceptsWhatWcstodReadsCompletely) {
  struct Case {
    const char16_t* text;
    bool ok;
    double value;
  } cases[] = {
      {u"1.5", true, 1.5},        {u"1.5 ", true, 1.5},
      {u" 1e3", true, 1000},      {u"-.5E-1", true, -0.05},
      {u"0x1p4", true, 16},       {u"0X.8", true, 0.5},
      {u"inf", true, INFINITY},   {u"-Infinity", true, -INFINITY},
      {u"1e400", true, INFINITY}, {u"1e", false, 0},
      {u"1,5", false, 0},         {u"", false, 0},
      {u".", false, 0},           {u"e5", false, 0},
      {u"1.5mm", false, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(wycore::Utf16ToUtf8(c.text));
    double value = -99;
    EXPECT_EQ(AString(c.text).IsNumber(value), c.ok);
    if (c.ok) {
      EXPECT_EQ(value, c.value);
    }
  }
  double nan = 0;
  EXPECT_TRUE(AString(u"nan(123)").IsNumber(nan));
  EXPECT_TRUE(std::isnan(nan));
}

TEST(AString, IsNumberDoubleSplitsNumberAndRest) {
  double value = 0;
  AString rest, number;
  EXPECT_TRUE(AString(u"2.5e-3 V").IsNumber(value, rest));
  EXPECT_EQ(value, 2.5e-3);
  EXPECT_EQ(rest, u" V");
  EXPECT_TRUE(AString(u"12").IsNumber(value, rest));
  EXPECT_TRUE(rest.empty());
  EXPECT_TRUE(AString(u" 3.5kg").IsNumber(number, rest));
  EXPECT_EQ(number, u"3.5");
  EXPECT_EQ(rest, u"kg");
  EXPECT_FALSE(AString(u"kg").IsNumber(number, rest));
  EXPECT_TRUE(number.empty());
}

// ---------------------------------------------------------------------------------------------
// Slicing and trimming

TEST(AString, SlicesClampTheirArguments) {
  AString s(u"abcdef");
  EXPECT_EQ(s.Left(2), u"ab");
  EXPECT_EQ(s.Left(-1), u"");
  EXPECT_EQ(s.Left(99), u"abcdef");
  EXPECT_EQ(s.Mid(2, 3), u"cde");
  EXPECT_EQ(s.Mid(-2, 3), u"abc");
  EXPECT_EQ(s.Mid(4, 99), u"ef");
  EXPECT_EQ(s.Mid(2, -1), u"");
  EXPECT_EQ(s.Mid(9), u"");
  EXPECT_EQ(s.Mid(3), u"def");
  EXPECT_EQ(s.Right(2), u"ef");
  EXPECT_EQ(s.Right(-2), u"");
  EXPECT_EQ(s.Right(99), u"abcdef");
}

TEST(AString, Trimming) {
  EXPECT_EQ(AString(u" \t a b \r\n").Trim(), u"a b");
  EXPECT_EQ(AString(u"  a ").TrimLeft(), u"a ");
  EXPECT_EQ(AString(u"  a ").TrimRight(), u"  a");
  EXPECT_EQ(AString(u"   ").Trim(), u"");
  EXPECT_EQ(AString(u"xyaxbyx").Trim(u"xy"), u"axb");
  EXPECT_EQ(AString(u"xyaxbyx").TrimLeft(u"xy"), u"axbyx");
  EXPECT_EQ(AString(u"xyaxbyx").TrimRight(u"xy"), u"xyaxb");
  EXPECT_EQ(AString(u"xxx").Trim(u"x"), u"");
}

TEST(AString, ConcatenationAndEquality) {
  AString a(u"ab");
  EXPECT_EQ(a + u"c", u"abc");
  EXPECT_EQ(u"c" + a, u"cab");
  EXPECT_EQ(a + u'!', u"ab!");
  EXPECT_EQ(u'!' + a, u"!ab");
  EXPECT_EQ(a + L"\u00e9", u"ab\u00e9");
  EXPECT_TRUE(a == L"ab");
  EXPECT_TRUE(a != L"abc");
  EXPECT_TRUE(a != static_cast<const AChar*>(nullptr));
  EXPECT_EQ(AString(u"x\U0001F600").Widen(), std::wstring(L"x\U0001F600"));
}

// ---------------------------------------------------------------------------------------------
// Formatting

TEST(AString, FormatNumbersAsCAndTextAsSixteenBit) {
  struct Case {
    const char* name;
    AString result;
    std::u16string expected;
  } cases[] = {
      {"f", AString().Format(u"%5.2f|", 3.14159), u" 3.14|"},
      {"d", AString().Format(u"%-5d|%+d|%05d", 42, 7, -3), u"42   |+7|-0003"},
      {"x o", AString().Format(u"%x %#X %#o", 255, 255u, 8), u"ff 0XFF 010"},
      {"ll z", AString().Format(u"%lld %zu", -9000000000LL, size_t{7}), u"-9000000000 7"},
      {"I64", AString().Format(u"%I64d", 1LL << 40), u"1099511627776"},
      {"h hh", AString().Format(u"%hd %hhu", 70000, 300), u"4464 44"},
      {"star", AString().Format(u"%*d|%-*d|%.*f", 4, 1, -3, 2, 3, 1.0), u"   1|2  |1.000"},
      {"e g a", AString().Format(u"%e %G %a", 1500.0, 1e-10, 1.0), u"1.500000e+03 1E-10 0x1p+0"},
      {"L", AString().Format(u"%.3Lf", 2.5L), u"2.500"},
      {"percent", AString().Format(u"100%%"), u"100%"},
      {"s", AString().Format(u"[%s][%5s][%-4s][%.2s]", u"abc", u"ab", u"x", u"\u00e9t\u00e9"),
       u"[abc][   ab][x   ][\u00e9t]"},
      {"hs ls", AString().Format(u"%hs|%ls|%S", "n\xC3\xA9", L"w\U0001F600", "N"),
       u"n\u00e9|w\U0001F600|N"},
      {"c", AString().Format(u"%c%c%3c|%lc", u'x', 0x3A9, u'y', 0x1F600), u"x\u03a9  y|\U0001F600"},
      {"null s", AString().Format(u"%s", static_cast<const AChar*>(nullptr)), u"(null)"},
      {"unknown", AString().Format(u"%y %d", 5), u"%y 5"},
      {"cut", AString().Format(u"ab%-"), u"ab%-"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(c.result, c.expected);
  }
}

TEST(AString, FormatNullFormatFiresCheck) {
  CheckCapture checks;
  AString s(u"old");
  s.Format(nullptr);
  EXPECT_TRUE(checks.Fired("format != 0"));
  EXPECT_TRUE(s.empty());
  // A width no buffer can hold fails at once rather than growing the buffer without end.
  checks.Clear();
  EXPECT_TRUE(AString(u"x").Format(u"%2000000000d|%s", 1, u"y").empty());
  EXPECT_TRUE(checks.Fired("formatted text longer than 1073741824 characters"));
}

TEST(AString, FormatGrowsTheScratchBufferForLongResults) {
  for (std::size_t length : {4095u, 4096u, 10000u, 600000u}) {
    SCOPED_TRACE(length);
    AString text(length, u'q');
    text.back() = u'!';
    AString formatted;
    formatted.Format(u"<%s>", text.c_str());
    EXPECT_EQ(formatted, u"<" + text + u">");
    EXPECT_EQ(formatted.Format(u"%0*d", static_cast<int>(length), 5).size(), length);
    EXPECT_EQ(formatted.back(), u'5');
  }
  // A format given its own result as argument still reads it intact.
  AString self(u"abc");
  self.Format(u"%s-%s", self.c_str(), self.c_str());
  EXPECT_EQ(self, u"abc-abc");
  EXPECT_EQ(AString().Format(u"%d", 1), u"1");  // after a released buffer
}

AString FormatThroughV(const AChar* format, ...) {
  va_list args;
  va_start(args, format);
  AString s;
  s.FormatV(format, args);
  va_end(args);
  return s;
}

TEST(AString, FormatFromSeveralThreadsAtOnce) {
  EXPECT_EQ(FormatThroughV(u"%s=%d", u"v", 3), u"v=3");
  std::atomic<int> failures{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < 8; ++t) {
    threads.emplace_back([t, &failures] {
      AString name(static_cast<std::size_t>(100 + t * 1000), static_cast<AChar>(u'a' + t));
      for (int i = 0; i < 300; ++i) {
        AString s = FormatThroughV(u"%s:%d:%.1f", name.c_str(), i, t + 0.5);
        AString expected = name + u":" + i18n::MakeNumberString(i) + u":" +
                           i18n::MakeNumberString(u"%.1f", t + 0.5);
        if (s != expected) ++failures;
      }
    });
  }
  for (auto& t : threads) t.join();
  EXPECT_EQ(failures.load(), 0);
}

// ---------------------------------------------------------------------------------------------
// Tokenising and matching

TEST(AString, TokenizeKeepsEmptyPiecesAndOptionallyTheDelimiters) {
  std::vector<AString> out{AString(u"old")};
  EXPECT_EQ(AString(u"a,,b,").TokenizeString(u",", out), 4u);
  EXPECT_EQ(out, (std::vector<AString>{u"old", u"a", u"", u"b", u""}));
  out.clear();
  EXPECT_EQ(i18n::TokenizeString(u"a,,b,", u",", out, true), 7u);
  EXPECT_EQ(out, (std::vector<AString>{u"a", u",", u"", u",", u"b", u",", u""}));
  out.clear();
  EXPECT_EQ(AString().TokenizeString(u",", out), 0u);
  EXPECT_EQ(AString(u"a;b,c").TokenizeString(u",;", out), 3u);
  EXPECT_EQ(AString(u"abc").TokenizeString(u",", out), 1u);
  EXPECT_EQ(i18n::TokenizeString(nullptr, u",", out, false), 0u);
}

TEST(AString, GetNthToken) {
  AString s(u"x, y,,z");
  AString piece;
  EXPECT_TRUE(s.GetNthToken(1, u",", &piece));
  EXPECT_EQ(piece, u" y");
  EXPECT_TRUE(s.GetNthToken(2, u",", &piece));
  EXPECT_EQ(piece, u"");
  EXPECT_FALSE(s.GetNthToken(4, u",", &piece));
  EXPECT_FALSE(s.GetNthToken(0, u",", nullptr));
}

TEST(AString, WildcardMatching) {
  struct Case {
    const char16_t* text;
    const char16_t* pattern;
    bool match, noCase;
  } cases[] = {
      {u"abbcd", u"a*c?", true, true}, {u"a*", u"a\\*", true, true},
      {u"ab", u"a\\*", false, false},  {u"a\\", u"a\\", true, true},
      {u"a?", u"a\\?", true, true},    {u"ab", u"a\\?", false, false},
      {u"", u"*", true, true},         {u"", u"?", false, false},
      {u"", u"", true, true},          {u"x", u"", false, false},
      {u"ABC", u"a?c", false, true},   {u"abc", u"*b*", true, true},
      {u"abc", u"*d*", false, false},  {u"aXbXc", u"a*b*c", true, true},
      {u"ab", u"ab*?", false, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(wycore::Utf16ToUtf8(c.text) + " ~ " + wycore::Utf16ToUtf8(c.pattern));
    EXPECT_EQ(AString(c.text).Match(c.pattern), c.match);
    EXPECT_EQ(i18n::StrMatch(c.text, c.pattern), c.match);
    EXPECT_EQ(AString(c.text).MatchNoCase(c.pattern), c.noCase);
    EXPECT_EQ(i18n::StrNoCaseMatch(c.text, c.pattern), c.noCase);
  }
}

TEST(AString, WildcardCapturesInPatternOrder) {
  std::vector<AString> captures;
  EXPECT_TRUE(AString(u"abbcd").Match(u"a*c?", captures, false));
  EXPECT_EQ(captures, (std::vector<AString>{u"bb", u"d"}));
  captures.clear();
  // Each star takes the shortest run that still lets the whole text match.
  EXPECT_TRUE(i18n::StrMatch(u"a.b.c", u"*.*", captures, false));
  EXPECT_EQ(captures, (std::vector<AString>{u"a", u"b.c"}));
  captures.clear();
  EXPECT_TRUE(i18n::StrNoCaseMatch(u"XAYBZ", u"*a*b?", captures));
  EXPECT_EQ(captures, (std::vector<AString>{u"X", u"Y", u"Z"}));
  captures.clear();
  EXPECT_FALSE(AString(u"abc").Match(u"x*", captures, false));
  EXPECT_TRUE(captures.empty());

  AString first(u"keep"), third(u"keep");
  EXPECT_TRUE(AString(u"abbcd").Match(u"a*c?", &first, nullptr, &third));
  EXPECT_EQ(first, u"bb");  // capture 0
  EXPECT_EQ(third, u"");    // there is no capture 2
  EXPECT_FALSE(AString(u"zz").Match(u"a*", &first));
  EXPECT_EQ(first, u"bb");  // untouched on failure
}

TEST(AString, WildcardMatchingHasNoExponentialBlowUp) {
  AString text(200000, u'a');
  EXPECT_FALSE(text.Match(u"*a*a*a*a*a*a*a*a*b"));
  EXPECT_FALSE(text.MatchNoCase(u"*A*A*A*A*A*A*A*A*?b"));
  text.back() = u'b';
  std::vector<AString> captures;
  EXPECT_TRUE(text.Match(u"*a*a*a*b", captures, false));
  ASSERT_EQ(captures.size(), 4u);
  EXPECT_EQ(captures[0].size() + captures[1].size() + captures[2].size(), 0u);
  EXPECT_EQ(captures[3].size(), 199996u);
}

}  // namespace
