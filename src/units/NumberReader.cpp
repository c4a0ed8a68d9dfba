// SPDX-License-Identifier: Apache-2.0
//
// NumberReader.cpp - reading one number with its imaginary suffix and unit.
//
// The characters of the number are collected into an ASCII buffer and converted with
// std::from_chars, which reads like strtod in the "C" locale whatever the user's locale is.
#include "wycore/units/NumberReader.h"

#include <charconv>
#include <cmath>
#include <cwctype>
#include <limits>
#include <string>
#include <system_error>

#include "wycore/units/UnitDefinition.h"
#include "wycore/units/Units.h"

namespace {

const AChar kSpaceTab[] = u" \t";

bool IsDigit(AChar c) { return c >= u'0' && c <= u'9'; }

bool IsLetter(AChar c) { return c != 0 && std::iswalpha(static_cast<wint_t>(c)) != 0; }

bool IsNameChar(AChar c) { return IsLetter(c) || IsDigit(c) || c == u'_'; }

bool IsBlank(AChar c, const AString& whiteSpace) {
  return c != 0 && whiteSpace.find(c) != AString::npos;
}

const AChar* SkipBlanks(const AChar* p, const AString& whiteSpace) {
  while (IsBlank(*p, whiteSpace)) ++p;
  return p;
}

// The characters that may follow "inf" and "nan": those that start an operator or close a group.
bool IsOperatorChar(AChar c) {
  switch (c) {
    case u'+':
    case u'-':
    case u'*':
    case u'/':
    case u'^':
    case u'<':
    case u'>':
    case u'=':
    case u'!':
    case u'&':
    case u'|':
    case u')':
    case u']':
    case u',':
      return true;
    default:
      return false;
  }
}

// Case-blind comparison of [text, text + n) with an ASCII word of exactly n characters.
bool EqualsNoCase(const AChar* text, std::size_t n, const char* word) {
  for (std::size_t i = 0; i < n; ++i) {
    if (word[i] == 0) return false;
    AChar c = text[i];
    if (c >= u'A' && c <= u'Z') c = static_cast<AChar>(c + 32);
    if (c != static_cast<AChar>(word[i])) return false;
  }
  return word[n] == 0;
}

// Up to `n` characters from `p`, stopping at the end of the text; returns how many there are.
std::size_t Available(const AChar* p, std::size_t n) {
  std::size_t k = 0;
  while (k < n && p[k] != 0) ++k;
  return k;
}

// Converts the collected characters: an optional "-", digits, ".", "e", sign, digits.
double Convert(const std::string& text) {
  const char* first = text.data();
  const char* last = first + text.size();
  bool negative = false;
  if (first != last && (*first == '-' || *first == '+')) {
    negative = *first == '-';
    ++first;
  }
  double value = 0.0;
  auto [ptr, ec] = std::from_chars(first, last, value, std::chars_format::general);
  if (ec == std::errc::result_out_of_range) {
    // Overflow reads as an infinity and underflow as zero, as strtod gives them. The exponent's
    // sign tells which one it was: the mantissa always has a digit that is not all zero here.
    auto e = text.find_first_of("eE");
    bool negativeExponent = e != std::string::npos && e + 1 < text.size() && text[e + 1] == '-';
    value = negativeExponent ? 0.0 : std::numeric_limits<double>::infinity();
  } else if (ec != std::errc() || ptr != last) {
    value = 0.0;  // cannot happen for the characters collected by ReadNumber
  }
  return negative ? -value : value;
}

}  // namespace

const AString& NumberReader::DefaultWhiteSpace() {
  static const AString blanks(kSpaceTab);
  return blanks;
}

bool NumberReader::IsNumber2(const AChar*& p, double& value, bool& isReal,
                             const AString& whiteSpace) {
  if (p == nullptr) return false;
  const AChar* q = SkipBlanks(p, whiteSpace);
  const AChar* start = q;  // the sign, if any
  std::string text;
  if (*q == u'-' || *q == u'+') {
    text += static_cast<char>(*q);
    ++q;
  }
  const AChar* afterSign = q;
  std::size_t digits = 0;
  while (IsDigit(*q)) {
    text += static_cast<char>(*q++);
    ++digits;
  }
  if (*q == u'.' && (digits > 0 || IsDigit(q[1]))) {
    text += '.';
    ++q;
    while (IsDigit(*q)) {
      text += static_cast<char>(*q++);
      ++digits;
    }
  }

  double result = 0.0;
  bool finiteForm = true;
  if (digits == 0) {
    // "inf", "-inf" and "nan" stand only before an operator, a blank or the end of the text.
    std::size_t n = Available(afterSign, 3);
    if (n != 3) return false;
    const AChar next = afterSign[3];
    if (!(next == 0 || IsBlank(next, whiteSpace) || std::iswspace(static_cast<wint_t>(next)) ||
          IsOperatorChar(next))) {
      return false;
    }
    const bool minus = *start == u'-';
    const bool plus = *start == u'+';
    if (EqualsNoCase(afterSign, 3, "inf") && !plus) {
      result = minus ? -std::numeric_limits<double>::infinity()
                     : std::numeric_limits<double>::infinity();
    } else if (EqualsNoCase(afterSign, 3, "nan") && !plus && !minus) {
      result = std::numeric_limits<double>::quiet_NaN();
    } else {
      return false;
    }
    q = afterSign + 3;
    finiteForm = false;
  } else if ((*q == u'#' || *q == u'$') && (text == "1." || text == "-1.")) {
    // The non-finite texts written by old printf implementations.
    if (*q == u'$') {
      result = std::numeric_limits<double>::quiet_NaN();
      q += 1;
      finiteForm = false;
    } else if (Available(q, 4) == 4) {
      if (EqualsNoCase(q + 1, 3, "inf")) {
        result = text[0] == '-' ? -std::numeric_limits<double>::infinity()
                                : std::numeric_limits<double>::infinity();
        q += 4;
        finiteForm = false;
      } else if (EqualsNoCase(q + 1, 3, "ind")) {
        result = std::numeric_limits<double>::quiet_NaN();
        q += 4;
        finiteForm = false;
      }
    }
  }

  if (finiteForm) {
    const AChar* r = SkipBlanks(q, whiteSpace);
    if (*r == u'e' || *r == u'E') {
      const AChar* afterE = r + 1;
      const AChar* s = SkipBlanks(afterE, whiteSpace);
      const bool blankAfterE = s != afterE;
      const AChar* signAt = nullptr;
      if (*s == u'-' || *s == u'+') {
        signAt = s;
        s = SkipBlanks(s + 1, whiteSpace);
      }
      if (IsDigit(*s)) {
        text += 'e';
        if (signAt != nullptr) text += static_cast<char>(*signAt);
        while (IsDigit(*s)) text += static_cast<char>(*s++);
        q = s;
      } else if (signAt != nullptr) {
        q = signAt;  // "2e+x": the sign is an operator
      } else if (!blankAfterE && IsNameChar(*afterE)) {
        q = r;  // "2em": the "e" starts a unit name
      } else {
        q = s;  // a lone "e" is dropped
      }
    } else {
      q = r;
    }
    result = Convert(text);
  }

  const AChar* t = SkipBlanks(q, whiteSpace);
  bool real = true;
  if (IsIorJ(t)) {
    real = false;
    q = SkipBlanks(t, whiteSpace);
  }
  value = result;
  isReal = real;
  p = q;
  return true;
}

bool NumberReader::IsNumber(const AChar* p, const AString& whiteSpace) {
  double value = 0.0;
  bool isReal = true;
  return IsNumber2(p, value, isReal, whiteSpace);
}

bool NumberReader::ReadName(const AChar*& p, AString& name, const AString& whiteSpace) {
  if (p == nullptr) return false;
  const AChar* q = SkipBlanks(p, whiteSpace);
  if (!(IsLetter(*q) || *q == u'_')) return false;
  const AChar* first = q;
  while (IsNameChar(*q)) ++q;
  name.assign(first, static_cast<std::int64_t>(q - first));
  p = q;
  return true;
}

NumberReader::Status NumberReader::Read(const AChar*& p, Number& out, const AString& whiteSpace,
                                        bool readUnits) {
  const AChar* q = p;
  Number number;
  if (!IsNumber2(q, number.value, number.isReal, whiteSpace)) return kNoNumber;
  Status status = kNumber;
  if (readUnits && ReadName(q, number.unitName, whiteSpace)) {
    number.unit = Units::FindUnitDef(number.unitName);
    if (number.unit == nullptr) status = kUnknownUnit;
  }
  out = std::move(number);
  p = q;
  return status;
}

bool NumberReader::TextToNumber2(const AChar*& p, double& value, const UnitDefinition*& unit,
                                 bool& isReal, AString& unknownUnitName, const AString& whiteSpace,
                                 bool readUnits) {
  Number number;
  Status status = Read(p, number, whiteSpace, readUnits);
  if (status == kNoNumber) return false;
  value = number.value;
  isReal = number.isReal;
  unit = number.unit;
  if (status == kUnknownUnit) {
    unknownUnitName = number.unitName;
  } else {
    unknownUnitName.clear();
  }
  return true;
}

bool NumberReader::TextToNumber(const AChar*& p, double& value, const UnitDefinition*& unit,
                                bool& isReal, AString& unknownUnitName, const AString& whiteSpace) {
  return TextToNumber2(p, value, unit, isReal, unknownUnitName, whiteSpace, true);
}

bool NumberReader::IsNegative(const AChar*& p) {
  if (p == nullptr) return false;
  const AChar* q = SkipBlanks(p, DefaultWhiteSpace());
  if (*q == u'-') {
    p = q + 1;
    return true;
  }
  if (*q == u'+') p = q + 1;
  return false;
}

bool NumberReader::IsIorJ(const AChar*& p) {
  if (p == nullptr) return false;
  const AChar c = *p;
  if (!(c == u'i' || c == u'I' || c == u'j' || c == u'J')) return false;
  if (IsNameChar(p[1])) return false;
  p = SkipBlanks(p + 1, DefaultWhiteSpace());
  return true;
}
