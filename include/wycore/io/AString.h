// SPDX-License-Identifier: Apache-2.0
//
// AString.h - the library's one string type, and the i18n character rules beside it.
//
// AString holds 16-bit UTF-16 code units (AChar = char16_t) with the value semantics of
// std::basic_string<AChar>, from which it derives: it can stand wherever that string can, copies
// copy the characters, and nothing is shared. It converts to and from narrow text in five
// encodings (i18n::TEncoding) through glibc's iconv.
//
// Overloads taking `const wchar_t*` accept UTF-32 text (wchar_t is 32 bits here) for convenience;
// the library itself writes u"..." literals.
//
// Case-blind comparison everywhere folds by one rule (i18n::FoldCase): 'A'..'Z' by adding 32,
// characters above 127 through towlower (asked in the fixed locale C.UTF-8, never the
// application's), everything else unchanged. Number reading never depends
// on the user's locale: it behaves like wcstol/wcstod in the "C" locale. "long" in this interface
// is the 32-bit long of the stored data model: IsNumber(long&) saturates and refuses exactly as a
// 32-bit wcstol does, whatever the width of the platform's long.
//
// Threading: AString is a plain value type. Format/FormatV share one scratch buffer that is used
// only under the library's process-wide lock (wycore/core/ProcessLock.h). Code-page conversions
// keep their iconv descriptors per thread and may run on any number of threads at once.
//
// User documentation of these rules: docs/strings.md.
#pragma once

#include <cstdarg>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "wycore/Export.h"

using AChar = char16_t;

namespace i18n {

// The narrow encodings a conversion can use. The values are stored in files; never renumber.
enum TEncoding : int {
  kSystemEncoding = 0,  // the process's narrow encoding (UTF-8 in practice)
  kUtf8 = 1,            // UTF-8
  kOem = 2,             // the OEM code page: code page 437
  kCp1252 = 3,          // Western European single-byte
  kCp932 = 4,           // Japanese double-byte (Shift JIS)
};

}  // namespace i18n

class WYCORE_API AString : public std::basic_string<AChar> {
 public:
  using Base = std::basic_string<AChar>;
  static constexpr size_type npos = Base::npos;

  // Construction. A null pointer fires the check "a_string != 0" and yields an empty string.
  // A length of -1 means "up to the terminating zero".
  AString() = default;
  AString(const AString&) = default;
  AString(AString&&) noexcept = default;
  AString(const Base& other) : Base(other) {}
  AString(Base&& other) noexcept : Base(std::move(other)) {}
  AString(std::u16string_view view) : Base(view) {}
  AString(const char* text);                       // encoding 0
  AString(const char* text, std::int64_t length);  // encoding 0
  AString(const AChar* text);
  AString(const AChar* text, std::int64_t length);
  AString(const wchar_t* text);                       // UTF-32
  AString(const wchar_t* text, std::int64_t length);  // UTF-32
  AString(i18n::TEncoding encoding, const char* text);
  AString(i18n::TEncoding encoding, const char* text, std::int64_t length);
  AString(size_type count, char c);
  AString(size_type count, char c, i18n::TEncoding encoding);
  AString(size_type count, AChar c);
  AString(size_type count, wchar_t c);
  ~AString() = default;

  AString& operator=(const AString&) = default;
  AString& operator=(AString&&) noexcept = default;
  AString& operator=(const Base& other);
  AString& operator=(const char* text);
  AString& operator=(const AChar* text);
  AString& operator=(const wchar_t* text);
  AString& operator=(AChar c);

  // Each assign has the matching constructor above.
  AString& assign(const AString& other);
  AString& assign(const char* text);
  AString& assign(const char* text, std::int64_t length);
  AString& assign(const AChar* text);
  AString& assign(const AChar* text, std::int64_t length);
  AString& assign(const wchar_t* text);
  AString& assign(const wchar_t* text, std::int64_t length);
  AString& assign(i18n::TEncoding encoding, const char* text);
  AString& assign(i18n::TEncoding encoding, const char* text, std::int64_t length);
  AString& assign(size_type count, char c);
  AString& assign(size_type count, char c, i18n::TEncoding encoding);
  AString& assign(size_type count, AChar c);
  AString& assign(size_type count, wchar_t c);

  // The two workers: narrow text in `encoding`, and wide text (the encoding is not used for
  // wide text; it is kept so both workers share one shape).
  AString& do_assign(i18n::TEncoding encoding, const char* text, std::int64_t length);
  AString& do_assign(i18n::TEncoding encoding, const AChar* text, std::int64_t length);

  // Narrow forms. Characters the encoding cannot hold become '?' (one per character, a surrogate
  // pair included); malformed UTF-16 (an unpaired surrogate) becomes '?', or U+FFFD in UTF-8.
  // Narrow input that does not decode gives one U+FFFD per bad byte. An encoding value outside
  // 0..4 (say, read from a damaged file) is taken as encoding 0.
  std::string Serialize(i18n::TEncoding encoding) const;
  std::string TStr() const { return Serialize(i18n::kSystemEncoding); }
  // The text as UTF-32 wchar_t, for the C runtime's wide functions.
  std::wstring Widen() const;
  std::u16string_view View() const { return std::u16string_view(data(), size()); }

  // Ordinal comparison by 16-bit code unit; a prefix sorts first. Results are -1, 0 or 1.
  int Compare(const AString& other) const;
  // Slice form; a `pos` beyond the end gives an empty slice (no exception).
  int Compare(size_type pos, size_type count, const AString& other) const;
  // Case-blind comparison, character by character up to the first zero character.
  int CompareNoCase(const AString& other) const;
  // Slice form: -1 when the slice is empty (or starts beyond the end) and `other` is not empty;
  // 0 when both are empty.
  int CompareNoCase(size_type pos, size_type count, const AString& other) const;
  // wcscoll of UTF-32 copies in the current LC_COLLATE locale, reduced to -1, 0 or 1; the
  // no-case form collates the texts folded by the rule above.
  int Collate(const AString& other) const;
  int CollateNoCase(const AString& other) const;

  AString& MakeLower();
  AString& MakeUpper();
  AString ToLower() const;
  AString ToUpper() const;

  // Non-empty; first character alphabetic or '_', the rest alphanumeric or '_'.
  bool IsLabel() const;

  // Whole text (trailing white space allowed) as an integer in `base` (0, 2..36 as wcstol,
  // leading white space and sign accepted, "0x" with base 0 or 16). Refuses the saturated values
  // 2147483647 and -2147483648, so a number outside the 32-bit range is refused too. `value`
  // receives what was read even when the text is refused (0 when nothing was taken).
  bool IsNumber(long& value, int base = 10) const;
  // A leading integer; `rest` receives the unparsed remainder as it stands (" V" of "12 V"; the
  // whole text when nothing was taken). Fails when nothing was taken or the value saturated.
  bool IsNumber(int& value, AString& rest, int base = 10) const;
  bool IsNumber(long& value, AString& rest, int base = 10) const;
  // Whole text (trailing white space allowed) as a double, as wcstod reads it in the "C" locale:
  // hexadecimal, "inf", "infinity" and "nan" included; an overflow reads as infinity.
  bool IsNumber(double& value) const;
  // A leading double; `rest` receives the remaining text as it stands (empty when nothing
  // remains; the whole text when nothing was taken).
  bool IsNumber(double& value, AString& rest) const;
  // Splits into the leading number's characters (leading white space left out) and the rest.
  bool IsNumber(AString& number, AString& rest) const;

  // Slices return copies; out-of-range arguments are clamped. Negative counts give empty text.
  AString Left(std::int64_t count) const;
  AString Mid(std::int64_t first, std::int64_t count) const;
  AString Mid(std::int64_t first) const;
  AString Right(std::int64_t count) const;

  // Trimming in place; without a set, characters for which iswspace is true.
  AString& Trim();
  AString& TrimLeft();
  AString& TrimRight();
  AString& Trim(const AChar* set);
  AString& TrimLeft(const AChar* set);
  AString& TrimRight(const AChar* set);

  // printf-style formatting that replaces the text. Conversions follow the C runtime's rules in
  // the "C" locale, except that %s and %c take 16-bit text (const AChar*) and characters; %hs/%S
  // and %hc/%C take narrow (UTF-8) text and characters, %ls/%ws and %lc take wchar_t (UTF-32).
  // Widths and precisions of text count 16-bit units. %n writes nothing (its argument is
  // skipped); an unknown conversion is copied as it stands. A null format fires the check
  // "format != 0" and leaves the string empty, as does a result too long for any buffer.
  AString& Format(const AChar* format, ...);
  AString& FormatV(const AChar* format, va_list args);

  // Appends the pieces between delimiter characters to `out`; returns how many were appended.
  // Null delimiters count as none.
  std::size_t TokenizeString(const AChar* delimiters, std::vector<AString>& out,
                             bool keepDelimiters = false) const;
  // Copies the piece with index n (from 0); false when there is no such piece or out is null.
  bool GetNthToken(std::size_t n, const AChar* delimiters, AString* out) const;

  // Whole-text wildcard match: '*' any run, '?' one character, '\' makes the next one literal.
  bool Match(const AString& pattern) const;
  bool MatchNoCase(const AString& pattern) const;
  // With captures: the text that each wildcard matched, in pattern order (appended to
  // `captures`, only on a match); `noCase` selects case-blind comparison. Every '*' takes the
  // shortest run that still lets the whole text match ("*.*" on "a.b.c" gives "a", "b.c").
  bool Match(const AString& pattern, std::vector<AString>& captures, bool noCase) const;
  // Case-sensitive. On a match, output k receives capture k (a null pointer skips its capture; an
  // output without a capture is emptied); on no match the outputs are left alone.
  bool Match(const AString& pattern, AString* c0, AString* c1 = nullptr, AString* c2 = nullptr,
             AString* c3 = nullptr, AString* c4 = nullptr, AString* c5 = nullptr,
             AString* c6 = nullptr, AString* c7 = nullptr, AString* c8 = nullptr,
             AString* c9 = nullptr) const;
};

WYCORE_API bool operator==(const AString& a, const AString& b);
WYCORE_API bool operator==(const AString& a, const AChar* b);
WYCORE_API bool operator==(const AChar* a, const AString& b);
WYCORE_API bool operator==(const AString& a, const wchar_t* b);
WYCORE_API bool operator!=(const AString& a, const AString& b);
WYCORE_API bool operator!=(const AString& a, const AChar* b);
WYCORE_API bool operator!=(const AChar* a, const AString& b);
WYCORE_API bool operator!=(const AString& a, const wchar_t* b);
WYCORE_API bool operator<(const AString& a, const AString& b);

WYCORE_API AString operator+(const AString& a, const AString& b);
WYCORE_API AString operator+(const AString& a, const AChar* b);
WYCORE_API AString operator+(const AChar* a, const AString& b);
WYCORE_API AString operator+(const AString& a, AChar b);
WYCORE_API AString operator+(AChar a, const AString& b);
WYCORE_API AString operator+(const AString& a, const wchar_t* b);
WYCORE_API AString operator+(const wchar_t* a, const AString& b);

template <>
struct std::hash<AString> {
  std::size_t operator()(const AString& s) const noexcept {
    return std::hash<std::u16string_view>()(std::u16string_view(s.data(), s.size()));
  }
};

template <>
struct std::hash<const AString> : std::hash<AString> {};

namespace i18n {

// The fixed separators of the library; nothing changes them.
WYCORE_API extern const AChar GListSeparator;   // ','
WYCORE_API extern const AChar GRadixSeparator;  // '.'
WYCORE_API extern const AChar GUnderscore;      // '_'
WYCORE_API AChar ListSeparator();
WYCORE_API AChar RadixSeparator();
WYCORE_API AChar Underscore();

// The one case-folding rule, and its upper-case counterpart.
WYCORE_API AChar FoldCase(AChar c);
WYCORE_API AChar UpperCase(AChar c);

// Case-blind comparison up to the first zero character (or n characters); -1, 0 or 1.
WYCORE_API int ACharStrICmp(const AChar* a, const AChar* b);
WYCORE_API int ACharStrNICmp(const AChar* a, const AChar* b, std::size_t n);

// Conversions between wide and narrow text. `length` -1 means up to the terminating zero (other
// negative lengths fire the check "length >= -1"). Return the number of bytes (characters)
// written to `out`, which is replaced; 0 for empty or null input. The narrow buffer starts at
// four bytes per character (one per character, plus one, for encoding 3), is grown when that is
// short, and never exceeds 2,147,483,647 bytes.
WYCORE_API int WideToMultiByte(TEncoding encoding, const AChar* text, int length, std::string& out);
WYCORE_API int WideToMultiByteLen(TEncoding encoding, const AChar* text, int length);
WYCORE_API int MultiByteToWide(TEncoding encoding, const char* text, int length, AString& out);

WYCORE_API std::size_t TokenizeString(const AChar* text, const AChar* delimiters,
                                      std::vector<AString>& out, bool keepDelimiters);

WYCORE_API bool StrMatch(const AString& text, const AString& pattern);
WYCORE_API bool StrNoCaseMatch(const AString& text, const AString& pattern);
WYCORE_API bool StrMatch(const AString& text, const AString& pattern,
                         std::vector<AString>& captures, bool noCase);
WYCORE_API bool StrNoCaseMatch(const AString& text, const AString& pattern,
                               std::vector<AString>& captures);

WYCORE_API AString AddDoubleQuotes(const AString& s);
WYCORE_API AString AddSingleQuotes(const AString& s);
WYCORE_API AString RemoveDoubleQuotes(const AString& s);
WYCORE_API AString RemoveSingleQuotes(const AString& s);
WYCORE_API bool OpensWithDoubleQuote(const AString& s);
WYCORE_API bool ClosesWithDoubleQuote(const AString& s);
WYCORE_API AChar GetMatchingFirstAndLastChars(const AString& s);
// The trailing decimal number plus one in place of the trailing digits ("Box9" gives "Box10",
// "Box007" gives "Box8"); "1" appended when there is none. Numbers of any length are handled.
WYCORE_API AString IncrementName(const AString& s);
// Splits `s` into its base and trailing decimal number. With `keepLeadingZeros`, zeros leading
// the trailing digits stay in `name` so that name + number rebuilds `s` ("Box007" gives "Box00"
// and 7); without it they are dropped ("Box" and 7). True when there was a trailing number.
// Trailing digits beyond the 32-bit range do not count as a number: false, `name` = `s`, 0.
WYCORE_API bool ParseName(const AString& s, AString& name, long& number, bool keepLeadingZeros);
WYCORE_API bool IsAlphaNumeric(const AString& s, const AString& extra);
// Items joined by the list separator, with a blank after each separator when `addBlank`;
// numbers printed with `format` (null: "%g"), texts in double quotes when `quote`.
WYCORE_API AString GetCommaDelimitedString(const std::vector<double>& values, const AChar* format,
                                           bool addBlank);
WYCORE_API AString GetCommaDelimitedString(const std::vector<AString>& values, bool addBlank,
                                           bool quote);
// "%d" of the value, and the value printed with `format` (null: "%g").
WYCORE_API AString MakeNumberString(int value);
WYCORE_API AString MakeNumberString(const AChar* format, double value);
WYCORE_API AString ConvertNLtoNLCR(const AString& s);
WYCORE_API bool ACharIsSeparator(AChar c);
WYCORE_API bool ACharIsUnderscore(AChar c);

}  // namespace i18n
