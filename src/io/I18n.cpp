// SPDX-License-Identifier: Apache-2.0
//
// I18n.cpp - the character-level rules of the library: case folding, code-page conversion,
// tokenising, wildcard matching, quoting and name helpers.
//
// Code-page conversion goes through glibc's iconv. An iconv descriptor carries conversion state
// and must not be used by two threads at once, so each thread opens its own descriptors on first
// use and keeps them until it ends (opening one per call costs more than the conversion of a
// typical name). Text that is pure ASCII is copied without iconv: all five encodings agree with
// ASCII on 0x00..0x7F.
//
// Wildcard matching runs in O(pattern x text) time without recursion (see WildcardMatch), so no
// pattern can make it blow up.
#include <errno.h>
#include <iconv.h>

#include <algorithm>
#include <bit>
#include <climits>
#include <cstring>
#include <cwctype>

#include "io/StringInternal.h"
#include "wycore/core/Check.h"
#include "wycore/core/DebugLog.h"
#include "wycore/core/Utf.h"
#include "wycore/io/AString.h"

namespace i18n {

const AChar GListSeparator = u',';
const AChar GRadixSeparator = u'.';
const AChar GUnderscore = u'_';

AChar ListSeparator() { return GListSeparator; }
AChar RadixSeparator() { return GRadixSeparator; }
AChar Underscore() { return GUnderscore; }

AChar FoldCase(AChar c) { return detail::Fold(c); }

AChar UpperCase(AChar c) {
  if (c >= u'a' && c <= u'z') return static_cast<AChar>(c - 32);
  if (c > 127)
    return static_cast<AChar>(towupper_l(static_cast<wint_t>(c), detail::CharacterLocale()));
  return c;
}

namespace {

std::size_t ZeroTerminatedLength(const AChar* text) {
  return text == nullptr ? 0 : std::char_traits<AChar>::length(text);
}

// ---------------------------------------------------------------------------------------------
// Code-page conversion

constexpr int kEncodingCount = 5;
constexpr std::size_t kMaxNarrowBytes = 2147483647;  // the largest count an int result can carry

// Encoding values come from stored data too; an unknown one falls back to encoding 0.
int EncodingIndex(TEncoding encoding) {
  int index = static_cast<int>(encoding);
  if (index < 0 || index >= kEncodingCount) return kSystemEncoding;
  // The process's narrow encoding is UTF-8: both share one descriptor pair.
  return index == kSystemEncoding ? kUtf8 : index;
}

const char* IconvName(int index) {
  switch (index) {
    case kSystemEncoding:
    case kUtf8:
      return "UTF-8";
    case kOem:
      return "IBM437";
    case kCp1252:
      return "CP1252";
    case kCp932:
      return "CP932";
  }
  return "UTF-8";
}

const char* WideIconvName() {
  return std::endian::native == std::endian::little ? "UTF-16LE" : "UTF-16BE";
}

const iconv_t kNoDescriptor = reinterpret_cast<iconv_t>(-1);

// Per-thread descriptors, opened on first use, closed when the thread ends.
class ConverterCache {
 public:
  ConverterCache() = default;
  ConverterCache(const ConverterCache&) = delete;
  ConverterCache& operator=(const ConverterCache&) = delete;
  ~ConverterCache() {
    for (auto& slot : mSlots) {
      if (slot.opened && slot.descriptor != kNoDescriptor) iconv_close(slot.descriptor);
    }
  }

  // kNoDescriptor when the system has no such conversion.
  iconv_t Get(int index, bool toWide) {
    Slot& slot = mSlots[index * 2 + (toWide ? 1 : 0)];
    if (!slot.opened) {
      slot.opened = true;
      slot.descriptor = toWide ? iconv_open(WideIconvName(), IconvName(index))
                               : iconv_open(IconvName(index), WideIconvName());
      if (slot.descriptor == kNoDescriptor) {
        std::string line = std::string("Code page conversion not available: ") + IconvName(index) +
                           (toWide ? " to UTF-16\n" : " from UTF-16\n");
        wycore::DebugLog(wycore::Utf8ToUtf16(line));
      }
    } else if (slot.descriptor != kNoDescriptor) {
      iconv(slot.descriptor, nullptr, nullptr, nullptr, nullptr);  // back to the initial state
    }
    return slot.descriptor;
  }

 private:
  struct Slot {
    bool opened = false;
    iconv_t descriptor = kNoDescriptor;
  };
  Slot mSlots[kEncodingCount * 2];
};

ConverterCache& Converters() {
  thread_local ConverterCache cache;
  return cache;
}

// Code page 1252 leaves five bytes undefined; the code page's own best-fit table maps them to the
// C1 control characters of the same value in both directions, while iconv refuses them. Follow
// the code page.
bool IsCp1252Gap(unsigned value) {
  return value == 0x81 || value == 0x8D || value == 0x8F || value == 0x90 || value == 0x9D;
}

bool IsHighSurrogate(AChar c) { return c >= 0xD800 && c <= 0xDBFF; }
bool IsLowSurrogate(AChar c) { return c >= 0xDC00 && c <= 0xDFFF; }

// Without iconv only ASCII survives; the rest takes the replacement.
void WideToNarrowFallback(int index, const AChar* text, std::size_t length, std::string& out) {
  if (index == kUtf8) {
    out = wycore::Utf16ToUtf8(std::u16string_view(text, length));
    return;
  }
  out.clear();
  for (std::size_t i = 0; i < length; ++i) {
    AChar c = text[i];
    if (IsHighSurrogate(c) && i + 1 < length && IsLowSurrogate(text[i + 1])) ++i;
    out.push_back(c < 0x80 ? static_cast<char>(c) : '?');
  }
}

void NarrowToWideFallback(int index, const char* text, std::size_t length, AString& out) {
  if (index == kUtf8) {
    out = AString(wycore::Utf8ToUtf16(std::string_view(text, length)));
    return;
  }
  out.clear();
  for (std::size_t i = 0; i < length; ++i) {
    unsigned char b = static_cast<unsigned char>(text[i]);
    out.push_back(b < 0x80 ? static_cast<AChar>(b) : static_cast<AChar>(0xFFFD));
  }
}

}  // namespace

namespace detail {

locale_t CharacterLocale() {
  // Made once and kept for the life of the process; newlocale never fails for "C".
  static const locale_t locale = [] {
    locale_t made = newlocale(LC_ALL_MASK, "C.UTF-8", static_cast<locale_t>(0));
    return made != static_cast<locale_t>(0) ? made
                                            : newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(0));
  }();
  return locale;
}

bool WideToNarrow(TEncoding encoding, const AChar* text, std::size_t length, std::string& out) {
  out.clear();
  if (text == nullptr || length == 0) return true;
  if (std::all_of(text, text + length, [](AChar c) { return c < 0x80; })) {
    if (length > kMaxNarrowBytes) {
      WY_CHECK(!"narrow text longer than 2147483647 bytes");
      return false;
    }
    out.resize(length);
    for (std::size_t i = 0; i < length; ++i) out[i] = static_cast<char>(text[i]);
    return true;
  }
  const int index = EncodingIndex(encoding);
  iconv_t cd = Converters().Get(index, false);
  if (cd == kNoDescriptor) {
    WideToNarrowFallback(index, text, length, out);
    return true;
  }

  // First guess: four bytes per character, one per character (plus one) for the single-byte code
  // page; grown when it does not fit, but never beyond what an int count can report.
  std::size_t capacity = index == kCp1252 ? length + 1 : length * 4;
  out.resize(std::min(capacity, kMaxNarrowBytes));

  char* in = reinterpret_cast<char*>(const_cast<AChar*>(text));
  std::size_t inLeft = length * sizeof(AChar);
  std::size_t written = 0;
  auto grow = [&](std::size_t needed) {
    if (out.size() >= kMaxNarrowBytes) return false;
    std::size_t size = std::max(out.size() * 2, written + needed);
    out.resize(std::min(size, kMaxNarrowBytes));
    return out.size() >= written + needed;
  };

  while (inLeft > 0) {
    char* outPtr = out.data() + written;
    std::size_t outLeft = out.size() - written;
    std::size_t result = iconv(cd, &in, &inLeft, &outPtr, &outLeft);
    const int error = errno;
    written = static_cast<std::size_t>(outPtr - out.data());
    if (result != static_cast<std::size_t>(-1)) break;
    if (error == E2BIG) {
      if (!grow(16)) {
        WY_CHECK(!"narrow text longer than 2147483647 bytes");
        out.clear();
        return false;
      }
      continue;
    }
    // EILSEQ (no mapping, or malformed UTF-16) or EINVAL (a surrogate cut off at the end): emit
    // the replacement for this character and go on after it.
    const AChar* at = reinterpret_cast<const AChar*>(in);
    std::size_t units = 1;
    if (IsHighSurrogate(at[0]) && inLeft >= 2 * sizeof(AChar) && IsLowSurrogate(at[1])) units = 2;
    char replacement[3] = {'?', 0, 0};
    std::size_t replacementLength = 1;
    if (index == kCp1252 && IsCp1252Gap(at[0])) {
      replacement[0] = static_cast<char>(at[0]);
    } else if (index == kUtf8) {
      // Only malformed UTF-16 reaches here; UTF-8 writes it as U+FFFD.
      replacement[0] = static_cast<char>(0xEF);
      replacement[1] = static_cast<char>(0xBF);
      replacement[2] = static_cast<char>(0xBD);
      replacementLength = 3;
    }
    if (out.size() - written < replacementLength && !grow(replacementLength)) {
      WY_CHECK(!"narrow text longer than 2147483647 bytes");
      out.clear();
      return false;
    }
    std::memcpy(out.data() + written, replacement, replacementLength);
    written += replacementLength;
    in += units * sizeof(AChar);
    inLeft -= units * sizeof(AChar);
    iconv(cd, nullptr, nullptr, nullptr, nullptr);
  }
  out.resize(written);
  if (out.capacity() > 4096 && out.capacity() > 2 * written) out.shrink_to_fit();
  return true;
}

bool NarrowToWide(TEncoding encoding, const char* text, std::size_t length, AString& out) {
  out.clear();
  if (text == nullptr || length == 0) return true;
  if (std::all_of(text, text + length,
                  [](char c) { return static_cast<unsigned char>(c) < 0x80; })) {
    out.resize(length);
    for (std::size_t i = 0; i < length; ++i) out[i] = static_cast<AChar>(text[i]);
    return true;
  }
  const int index = EncodingIndex(encoding);
  iconv_t cd = Converters().Get(index, true);
  if (cd == kNoDescriptor) {
    NarrowToWideFallback(index, text, length, out);
    return true;
  }

  // No byte of these encodings yields more than one UTF-16 unit, except four-byte UTF-8
  // sequences (two units); the buffer still grows if a guess is ever short.
  out.resize(length);
  char* in = const_cast<char*>(text);
  std::size_t inLeft = length;
  std::size_t written = 0;  // in units
  while (inLeft > 0) {
    char* outPtr = reinterpret_cast<char*>(out.data() + written);
    std::size_t outLeft = (out.size() - written) * sizeof(AChar);
    std::size_t result = iconv(cd, &in, &inLeft, &outPtr, &outLeft);
    const int error = errno;
    written = static_cast<std::size_t>(reinterpret_cast<AChar*>(outPtr) - out.data());
    if (result != static_cast<std::size_t>(-1)) break;
    if (error == E2BIG) {
      out.resize(std::max<std::size_t>(out.size() * 2, written + 4));
      continue;
    }
    // EILSEQ or EINVAL: one replacement per byte that does not decode.
    if (out.size() == written) out.resize(out.size() * 2 + 1);
    unsigned char bad = static_cast<unsigned char>(*in);
    out[written++] =
        index == kCp1252 && IsCp1252Gap(bad) ? static_cast<AChar>(bad) : static_cast<AChar>(0xFFFD);
    ++in;
    --inLeft;
    iconv(cd, nullptr, nullptr, nullptr, nullptr);
  }
  out.resize(written);
  if (out.capacity() > 4096 && out.capacity() > 2 * written) out.shrink_to_fit();
  return true;
}

int CompareNoCase(std::u16string_view a, std::u16string_view b) {
  const std::size_t common = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < common; ++i) {
    AChar ca = a[i], cb = b[i];
    if (ca == 0 || cb == 0) return ca == cb ? 0 : ca == 0 ? -1 : 1;
    if (ca == cb) continue;
    ca = Fold(ca);
    cb = Fold(cb);
    if (ca != cb) return ca < cb ? -1 : 1;
  }
  // The end of a text acts as its terminating zero.
  const AChar ca = common < a.size() ? a[common] : AChar(0);
  const AChar cb = common < b.size() ? b[common] : AChar(0);
  return ca == cb ? 0 : ca == 0 ? -1 : 1;
}

std::size_t Tokenize(std::u16string_view text, const AChar* delimiters, std::vector<AString>& out,
                     bool keepDelimiters) {
  if (text.empty()) return 0;
  std::u16string_view set(delimiters == nullptr ? u"" : delimiters);
  const std::size_t before = out.size();
  std::size_t start = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (set.find(text[i]) == std::u16string_view::npos) continue;
    out.emplace_back(text.substr(start, i - start));
    if (keepDelimiters) out.emplace_back(text.substr(i, 1));
    start = i + 1;
  }
  out.emplace_back(text.substr(start));  // the last piece; empty after a final delimiter
  return out.size() - before;
}

// The pattern is first reduced to tokens (a '\' makes the next character a literal). Matching
// uses the classic single-backtrack-point scan: on a mismatch only the most recent '*' grows by
// one character. Keeping the earliest fit for every earlier '*' never loses a match, because the
// next '*' can absorb whatever the earlier one would have taken, so the scan is complete, runs in
// O(pattern x text), and its captures are those of a backtracking matcher whose stars each try the
// shortest run first: every '*' takes the shortest run that still lets the whole text match.
bool WildcardMatch(std::u16string_view text, std::u16string_view pattern, bool noCase,
                   std::vector<AString>* captures) {
  enum Kind : unsigned char { kLiteral, kAny, kStar };
  struct Token {
    Kind kind;
    AChar c;
  };
  std::vector<Token> tokens;
  tokens.reserve(pattern.size());
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    AChar c = pattern[i];
    if (c == u'\\' && i + 1 < pattern.size()) {
      tokens.push_back({kLiteral, pattern[++i]});
    } else if (c == u'*') {
      tokens.push_back({kStar, c});
    } else if (c == u'?') {
      tokens.push_back({kAny, c});
    } else {
      tokens.push_back({kLiteral, c});  // also a '\' at the very end
    }
  }
  if (noCase) {
    for (Token& t : tokens) t.c = Fold(t.c);
  }

  const std::size_t count = tokens.size();
  std::vector<std::size_t> start(count, 0);  // where each token's text begins
  std::size_t ti = 0, pi = 0;
  std::size_t starToken = SIZE_MAX, starText = 0;
  while (ti < text.size()) {
    if (pi < count && tokens[pi].kind == kStar) {
      start[pi] = ti;
      starToken = pi++;
      starText = ti;
      continue;
    }
    if (pi < count) {
      const Token& t = tokens[pi];
      AChar c = noCase ? Fold(text[ti]) : text[ti];
      if (t.kind == kAny || t.c == c) {
        start[pi++] = ti++;
        continue;
      }
    }
    if (starToken == SIZE_MAX) return false;
    pi = starToken + 1;
    ti = ++starText;
  }
  while (pi < count && tokens[pi].kind == kStar) start[pi++] = ti;
  if (pi != count) return false;

  if (captures != nullptr) {
    for (std::size_t k = 0; k < count; ++k) {
      if (tokens[k].kind == kLiteral) continue;
      std::size_t end = tokens[k].kind == kAny ? start[k] + 1
                        : k + 1 < count        ? start[k + 1]
                                               : text.size();
      captures->emplace_back(text.substr(start[k], end - start[k]));
    }
  }
  return true;
}

}  // namespace detail

int ACharStrICmp(const AChar* a, const AChar* b) {
  return detail::CompareNoCase(std::u16string_view(a == nullptr ? u"" : a),
                               std::u16string_view(b == nullptr ? u"" : b));
}

int ACharStrNICmp(const AChar* a, const AChar* b, std::size_t n) {
  if (a == nullptr) a = u"";
  if (b == nullptr) b = u"";
  for (std::size_t i = 0; i < n; ++i) {
    AChar ca = detail::Fold(a[i]);
    AChar cb = detail::Fold(b[i]);
    if (ca != cb) return ca < cb ? -1 : 1;
    if (ca == 0) return 0;
  }
  return 0;
}

namespace {

// -1 means "up to the terminating zero"; any other negative length is a caller's mistake.
bool ResolveLength(int length, std::size_t zeroLength, std::size_t& resolved) {
  if (length == -1) {
    resolved = zeroLength;
    return true;
  }
  if (!WY_CHECK(length >= -1)) return false;
  resolved = static_cast<std::size_t>(length);
  return true;
}

}  // namespace

int WideToMultiByte(TEncoding encoding, const AChar* text, int length, std::string& out) {
  out.clear();
  if (text == nullptr || length == 0) return 0;
  std::size_t count = 0;
  if (!ResolveLength(length, length == -1 ? ZeroTerminatedLength(text) : 0, count)) return 0;
  if (!detail::WideToNarrow(encoding, text, count, out)) return 0;
  return static_cast<int>(out.size());
}

int WideToMultiByteLen(TEncoding encoding, const AChar* text, int length) {
  std::string out;
  return WideToMultiByte(encoding, text, length, out);
}

int MultiByteToWide(TEncoding encoding, const char* text, int length, AString& out) {
  out.clear();
  if (text == nullptr || length == 0) return 0;
  std::size_t count = 0;
  if (!ResolveLength(length, length == -1 ? std::strlen(text) : 0, count)) return 0;
  if (!detail::NarrowToWide(encoding, text, count, out)) return 0;
  return static_cast<int>(out.size());
}

std::size_t TokenizeString(const AChar* text, const AChar* delimiters, std::vector<AString>& out,
                           bool keepDelimiters) {
  if (text == nullptr) return 0;
  return detail::Tokenize(std::u16string_view(text), delimiters, out, keepDelimiters);
}

bool StrMatch(const AString& text, const AString& pattern) {
  return detail::WildcardMatch(text.View(), pattern.View(), false, nullptr);
}

bool StrNoCaseMatch(const AString& text, const AString& pattern) {
  return detail::WildcardMatch(text.View(), pattern.View(), true, nullptr);
}

bool StrMatch(const AString& text, const AString& pattern, std::vector<AString>& captures,
              bool noCase) {
  return detail::WildcardMatch(text.View(), pattern.View(), noCase, &captures);
}

bool StrNoCaseMatch(const AString& text, const AString& pattern, std::vector<AString>& captures) {
  return detail::WildcardMatch(text.View(), pattern.View(), true, &captures);
}

// ---------------------------------------------------------------------------------------------
// Quoting and names

AString AddDoubleQuotes(const AString& s) { return u'"' + s + u'"'; }
AString AddSingleQuotes(const AString& s) { return u'\'' + s + u'\''; }

namespace {

AString RemoveEnclosing(const AString& s, AChar quote) {
  if (s.size() >= 2 && s.front() == quote && s.back() == quote) return s.Mid(1, s.size() - 2);
  return s;
}

bool IsDigit(AChar c) { return c >= u'0' && c <= u'9'; }

// Index of the first of the trailing decimal digits (s.size() when there are none).
std::size_t TrailingDigitsStart(const AString& s) {
  std::size_t i = s.size();
  while (i > 0 && IsDigit(s[i - 1])) --i;
  return i;
}

}  // namespace

AString RemoveDoubleQuotes(const AString& s) { return RemoveEnclosing(s, u'"'); }
AString RemoveSingleQuotes(const AString& s) { return RemoveEnclosing(s, u'\''); }

bool OpensWithDoubleQuote(const AString& s) {
  auto it = std::find_if(s.begin(), s.end(), [](AChar c) { return !i18n::detail::IsSpace(c); });
  return it != s.end() && *it == u'"';
}

bool ClosesWithDoubleQuote(const AString& s) {
  auto it = std::find_if(s.rbegin(), s.rend(), [](AChar c) { return !i18n::detail::IsSpace(c); });
  return it != s.rend() && *it == u'"';
}

AChar GetMatchingFirstAndLastChars(const AString& s) {
  if (s.size() >= 2 && s.front() == s.back()) return s.front();
  return 0;
}

// The trailing number is incremented as decimal text, so a number of any length is handled; for
// numbers an int holds this prints exactly what "%i" of the incremented value prints.
AString IncrementName(const AString& s) {
  const std::size_t digits = TrailingDigitsStart(s);
  std::size_t first = digits;
  while (first < s.size() && s[first] == u'0') ++first;  // "007" reads as 7
  AString number = s.Mid(static_cast<std::int64_t>(first));
  std::size_t i = number.size();
  while (i > 0 && number[i - 1] == u'9') number[--i] = u'0';
  if (i == 0) {
    number.insert(number.begin(), u'1');
  } else {
    ++number[i - 1];
  }
  return s.Left(static_cast<std::int64_t>(digits)) + number;
}

bool ParseName(const AString& s, AString& name, long& number, bool keepLeadingZeros) {
  const std::size_t digits = TrailingDigitsStart(s);
  std::size_t first = digits;
  while (first + 1 < s.size() && s[first] == u'0') ++first;  // the last digit always counts
  long value = 0;
  bool fits = digits < s.size();
  for (std::size_t i = first; fits && i < s.size(); ++i) {
    value = value * 10 + (s[i] - u'0');
    if (value > INT32_MAX) fits = false;  // not a number of the 32-bit data model
  }
  if (!fits) {
    name = s;
    number = 0;
    return false;
  }
  name = s.Left(static_cast<std::int64_t>(keepLeadingZeros ? first : digits));
  number = value;
  return true;
}

bool IsAlphaNumeric(const AString& s, const AString& extra) {
  if (s.empty()) return false;
  return std::all_of(s.begin(), s.end(), [&extra](AChar c) {
    return detail::IsAlnum(c) || extra.find(c) != AString::npos;
  });
}

AString GetCommaDelimitedString(const std::vector<double>& values, const AChar* format,
                                bool addBlank) {
  if (format == nullptr) format = u"%g";
  AString result, item;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (i > 0) {
      result.push_back(GListSeparator);
      if (addBlank) result.push_back(u' ');
    }
    result += item.Format(format, values[i]);
  }
  return result;
}

AString GetCommaDelimitedString(const std::vector<AString>& values, bool addBlank, bool quote) {
  AString result;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (i > 0) {
      result.push_back(GListSeparator);
      if (addBlank) result.push_back(u' ');
    }
    result += quote ? AddDoubleQuotes(values[i]) : values[i];
  }
  return result;
}

AString MakeNumberString(int value) {
  AString result;
  result.Format(u"%d", value);
  return result;
}

AString MakeNumberString(const AChar* format, double value) {
  AString result;
  result.Format(format == nullptr ? u"%g" : format, value);
  return result;
}

AString ConvertNLtoNLCR(const AString& s) {
  AString result;
  result.reserve(s.size() + s.size() / 8);
  for (std::size_t i = 0; i < s.size(); ++i) {
    AChar c = s[i];
    if (c != u'\r' && c != u'\n') {
      result.push_back(c);
      continue;
    }
    // A pair of the two, in either order, is one line break.
    if (i + 1 < s.size() && (s[i + 1] == u'\r' || s[i + 1] == u'\n') && s[i + 1] != c) ++i;
    result.push_back(u'\r');
    result.push_back(u'\n');
  }
  return result;
}

bool ACharIsSeparator(AChar c) { return c == GListSeparator; }
bool ACharIsUnderscore(AChar c) { return c == GUnderscore; }

}  // namespace i18n
