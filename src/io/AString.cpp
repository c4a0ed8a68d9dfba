// SPDX-License-Identifier: Apache-2.0
//
// AString.cpp - construction, conversion, comparison, number reading, slicing and formatting of
// the library's string type.
//
// Number reading and number formatting run in the "C" locale whatever locale the process has set
// (wcstol_l/wcstod_l, and snprintf under uselocale), so stored files read and write the same
// everywhere. Character classes and case mapping use the process's current locale, as the C
// runtime's iswalpha/towlower do.
//
// Formatting uses the library's own printf engine: the wide printf of the platforms this library
// comes from takes 16-bit text for %s, which no C runtime here offers. Numeric conversions are
// handed one by one to snprintf with the same flags, width, precision and length, so they print
// exactly as C prints them. The engine writes into one process-wide scratch buffer guarded by the
// process-wide lock (see FormatV).
#include "wycore/io/AString.h"

#include <locale.h>
#include <wchar.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <cwctype>
#include <memory>
#include <mutex>

#include "io/StringInternal.h"
#include "wycore/core/Check.h"
#include "wycore/core/ProcessLock.h"
#include "wycore/core/Utf.h"

namespace {

using i18n::TEncoding;

// The "C" locale as an object, for the *_l functions and uselocale. Created once, never freed:
// it is used until the process ends.
locale_t CLocale() {
  static const locale_t locale = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
  return locale;
}

std::u16string_view FromUtf32(const wchar_t* text, std::int64_t length, std::u16string& storage) {
  if (length < 0) length = static_cast<std::int64_t>(std::wcslen(text));
  storage = wycore::Utf32ToUtf16(
      std::u32string_view(reinterpret_cast<const char32_t*>(text), static_cast<size_t>(length)));
  return storage;
}

int Sign(int value) { return value < 0 ? -1 : value > 0 ? 1 : 0; }

int CompareUnits(std::u16string_view a, std::u16string_view b) {
  return Sign(a.compare(b));  // char_traits<char16_t> compares code units as unsigned values
}

// The code units of `text`, one wchar_t each and zero-terminated, for the C runtime's number
// readers. They look only at ASCII characters, so an index into the copy is an index into the
// string; a character that is not ASCII simply ends the number.
class NumberText {
 public:
  explicit NumberText(std::u16string_view text) {
    wchar_t* buffer = mSmall;
    if (text.size() >= std::size(mSmall)) {
      mLarge = std::make_unique<wchar_t[]>(text.size() + 1);
      buffer = mLarge.get();
    }
    for (std::size_t i = 0; i < text.size(); ++i) buffer[i] = static_cast<wchar_t>(text[i]);
    buffer[text.size()] = 0;
    mText = buffer;
  }
  const wchar_t* Get() const { return mText; }

 private:
  wchar_t mSmall[64];
  std::unique_ptr<wchar_t[]> mLarge;
  const wchar_t* mText = nullptr;
};

// A leading integer as a 32-bit wcstol in the "C" locale reads it. `end` receives the index
// after the last character taken (0 when none was). False when nothing was taken or the value
// saturated (the saturated values 2147483647 and -2147483648 are taken as overflow).
bool ReadLong(std::u16string_view text, int base, long& value, std::size_t& end) {
  end = 0;
  value = 0;
  if (base < 0 || base == 1 || base > 36) return false;  // wcstol would not even set its end
  NumberText copy(text);
  wchar_t* stop = nullptr;
  long long wide = wcstoll_l(copy.Get(), &stop, base, CLocale());
  end = static_cast<std::size_t>(stop - copy.Get());
  const long long clamped = std::clamp<long long>(wide, INT32_MIN, INT32_MAX);
  value = static_cast<long>(clamped);
  return end > 0 && clamped != INT32_MAX && clamped != INT32_MIN;
}

// A leading double as wcstod in the "C" locale reads it. `begin` is the index of the first
// character after leading white space, `end` the index after the last character taken.
bool ReadDouble(std::u16string_view text, double& value, std::size_t& begin, std::size_t& end) {
  NumberText copy(text);
  wchar_t* stop = nullptr;
  value = wcstod_l(copy.Get(), &stop, CLocale());
  end = static_cast<std::size_t>(stop - copy.Get());
  begin = 0;
  while (begin < end && iswspace_l(static_cast<wint_t>(text[begin]), CLocale())) ++begin;
  return end > 0;
}

bool RestIsSpace(std::u16string_view text, std::size_t from) {
  for (std::size_t i = from; i < text.size(); ++i) {
    if (!iswspace_l(static_cast<wint_t>(text[i]), CLocale())) return false;
  }
  return true;
}

std::size_t ClampedIndex(std::int64_t index, std::size_t size) {
  if (index <= 0) return 0;
  return std::min(static_cast<std::size_t>(index), size);
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Construction and assignment

AString::AString(const char* text) { do_assign(i18n::kSystemEncoding, text, -1); }
AString::AString(const char* text, std::int64_t length) {
  do_assign(i18n::kSystemEncoding, text, length);
}
AString::AString(const AChar* text) { do_assign(i18n::kSystemEncoding, text, -1); }
AString::AString(const AChar* text, std::int64_t length) {
  do_assign(i18n::kSystemEncoding, text, length);
}
AString::AString(const wchar_t* text) { assign(text); }
AString::AString(const wchar_t* text, std::int64_t length) { assign(text, length); }
AString::AString(TEncoding encoding, const char* text) { do_assign(encoding, text, -1); }
AString::AString(TEncoding encoding, const char* text, std::int64_t length) {
  do_assign(encoding, text, length);
}
AString::AString(size_type count, char c) { assign(count, c); }
AString::AString(size_type count, char c, TEncoding encoding) { assign(count, c, encoding); }
AString::AString(size_type count, AChar c) : Base(count, c) {}
AString::AString(size_type count, wchar_t c) { assign(count, c); }

AString& AString::operator=(const Base& other) {
  Base::assign(other);
  return *this;
}
AString& AString::operator=(const char* text) { return assign(text); }
AString& AString::operator=(const AChar* text) { return assign(text); }
AString& AString::operator=(const wchar_t* text) { return assign(text); }
AString& AString::operator=(AChar c) {
  Base::assign(1, c);
  return *this;
}

AString& AString::assign(const AString& other) {
  Base::assign(other);
  return *this;
}
AString& AString::assign(const char* text) { return do_assign(i18n::kSystemEncoding, text, -1); }
AString& AString::assign(const char* text, std::int64_t length) {
  return do_assign(i18n::kSystemEncoding, text, length);
}
AString& AString::assign(const AChar* text) { return do_assign(i18n::kSystemEncoding, text, -1); }
AString& AString::assign(const AChar* text, std::int64_t length) {
  return do_assign(i18n::kSystemEncoding, text, length);
}
AString& AString::assign(const wchar_t* text) { return assign(text, -1); }
AString& AString::assign(const wchar_t* text, std::int64_t length) {
  const wchar_t* a_string = text;
  if (!WY_CHECK(a_string != 0) || length == 0) {
    clear();
    return *this;
  }
  std::u16string storage;
  FromUtf32(text, length < 0 ? -1 : length, storage);
  Base::operator=(std::move(storage));
  return *this;
}
AString& AString::assign(TEncoding encoding, const char* text) {
  return do_assign(encoding, text, -1);
}
AString& AString::assign(TEncoding encoding, const char* text, std::int64_t length) {
  return do_assign(encoding, text, length);
}
AString& AString::assign(size_type count, char c) {
  return assign(count, c, i18n::kSystemEncoding);
}
AString& AString::assign(size_type count, char c, TEncoding encoding) {
  AString one;
  i18n::detail::NarrowToWide(encoding, &c, 1, one);
  clear();
  reserve(count * one.size());
  for (size_type i = 0; i < count; ++i) append(one);
  return *this;
}
AString& AString::assign(size_type count, AChar c) {
  Base::assign(count, c);
  return *this;
}
AString& AString::assign(size_type count, wchar_t c) {
  std::u16string one =
      wycore::Utf32ToUtf16(std::u32string_view(reinterpret_cast<const char32_t*>(&c), 1));
  clear();
  reserve(count * one.size());
  for (size_type i = 0; i < count; ++i) append(one);
  return *this;
}

AString& AString::do_assign(TEncoding encoding, const char* text, std::int64_t length) {
  // "a_string != 0" is the check text callers and tests look for.
  const char* a_string = text;
  if (!WY_CHECK(a_string != 0)) {
    clear();
    return *this;
  }
  const std::size_t count = length < 0 ? std::strlen(text) : static_cast<std::size_t>(length);
  AString converted;
  i18n::detail::NarrowToWide(encoding, text, count, converted);
  swap(converted);
  return *this;
}

AString& AString::do_assign(TEncoding, const AChar* text, std::int64_t length) {
  const AChar* a_string = text;
  if (!WY_CHECK(a_string != 0)) {
    clear();
    return *this;
  }
  const std::size_t count =
      length < 0 ? std::char_traits<AChar>::length(text) : static_cast<std::size_t>(length);
  Base::assign(text, count);  // safe when `text` points into this string
  return *this;
}

// ---------------------------------------------------------------------------------------------
// Narrow and wide forms

std::string AString::Serialize(TEncoding encoding) const {
  std::string out;
  i18n::detail::WideToNarrow(encoding, data(), size(), out);
  return out;
}

std::wstring AString::Widen() const {
  std::u32string wide = wycore::Utf16ToUtf32(View());
  return std::wstring(wide.begin(), wide.end());
}

// ---------------------------------------------------------------------------------------------
// Comparison and case

int AString::Compare(const AString& other) const { return CompareUnits(View(), other.View()); }

int AString::Compare(size_type pos, size_type count, const AString& other) const {
  pos = std::min(pos, size());
  return CompareUnits(View().substr(pos, count), other.View());
}

int AString::CompareNoCase(const AString& other) const {
  return i18n::detail::CompareNoCase(View(), other.View());
}

int AString::CompareNoCase(size_type pos, size_type count, const AString& other) const {
  if (pos >= size() || count == 0) return other.empty() ? 0 : -1;
  return i18n::detail::CompareNoCase(View().substr(pos, count), other.View());
}

int AString::Collate(const AString& other) const {
  return Sign(std::wcscoll(Widen().c_str(), other.Widen().c_str()));
}

int AString::CollateNoCase(const AString& other) const {
  return Sign(std::wcscoll(ToLower().Widen().c_str(), other.ToLower().Widen().c_str()));
}

AString& AString::MakeLower() {
  for (AChar& c : *this) c = i18n::detail::Fold(c);
  return *this;
}

AString& AString::MakeUpper() {
  for (AChar& c : *this) c = i18n::UpperCase(c);
  return *this;
}

AString AString::ToLower() const {
  AString copy(*this);
  return copy.MakeLower();
}

AString AString::ToUpper() const {
  AString copy(*this);
  return copy.MakeUpper();
}

// ---------------------------------------------------------------------------------------------
// Classification and numbers

bool AString::IsLabel() const {
  if (empty()) return false;
  const AChar first = front();
  if (first != u'_' && !i18n::detail::IsAlpha(first)) return false;
  return std::all_of(begin() + 1, end(),
                     [](AChar c) { return c == u'_' || i18n::detail::IsAlnum(c); });
}

bool AString::IsNumber(long& value, int base) const {
  std::size_t end = 0;
  return ReadLong(View(), base, value, end) && RestIsSpace(View(), end);
}

bool AString::IsNumber(int& value, AString& rest, int base) const {
  long wide = 0;
  const bool ok = IsNumber(wide, rest, base);
  value = static_cast<int>(wide);  // within 32 bits by construction
  return ok;
}

bool AString::IsNumber(long& value, AString& rest, int base) const {
  std::size_t end = 0;
  const bool ok = ReadLong(View(), base, value, end);
  rest = Mid(static_cast<std::int64_t>(end));
  return ok;
}

bool AString::IsNumber(double& value) const {
  std::size_t begin = 0, end = 0;
  return ReadDouble(View(), value, begin, end) && RestIsSpace(View(), end);
}

bool AString::IsNumber(double& value, AString& rest) const {
  std::size_t begin = 0, end = 0;
  const bool ok = ReadDouble(View(), value, begin, end);
  rest = Mid(static_cast<std::int64_t>(end));
  return ok;
}

bool AString::IsNumber(AString& number, AString& rest) const {
  double value = 0;
  std::size_t begin = 0, end = 0;
  const bool ok = ReadDouble(View(), value, begin, end);
  AString taken = Mid(static_cast<std::int64_t>(begin), static_cast<std::int64_t>(end - begin));
  rest = Mid(static_cast<std::int64_t>(end));
  number.swap(taken);
  return ok;
}

// ---------------------------------------------------------------------------------------------
// Slicing and trimming

AString AString::Left(std::int64_t count) const {
  return AString(View().substr(0, ClampedIndex(count, size())));
}

AString AString::Mid(std::int64_t first, std::int64_t count) const {
  if (count <= 0) return AString();
  const std::size_t from = ClampedIndex(first, size());
  return AString(View().substr(from, static_cast<std::size_t>(count)));
}

AString AString::Mid(std::int64_t first) const {
  return AString(View().substr(ClampedIndex(first, size())));
}

AString AString::Right(std::int64_t count) const {
  const std::size_t n = ClampedIndex(count, size());
  return AString(View().substr(size() - n));
}

AString& AString::Trim() { return TrimRight().TrimLeft(); }

AString& AString::TrimLeft() {
  auto it = std::find_if(begin(), end(), [](AChar c) { return !i18n::detail::IsSpace(c); });
  erase(begin(), it);
  return *this;
}

AString& AString::TrimRight() {
  auto it = std::find_if(rbegin(), rend(), [](AChar c) { return !i18n::detail::IsSpace(c); });
  erase(it.base(), end());
  return *this;
}

AString& AString::Trim(const AChar* set) { return TrimRight(set).TrimLeft(set); }

AString& AString::TrimLeft(const AChar* set) {
  if (set == nullptr) return *this;
  erase(0, find_first_not_of(set));  // npos erases everything
  return *this;
}

AString& AString::TrimRight(const AChar* set) {
  if (set == nullptr) return *this;
  const size_type last = find_last_not_of(set);
  erase(last == npos ? 0 : last + 1);
  return *this;
}

// ---------------------------------------------------------------------------------------------
// Formatting

namespace {

// A va_list in a struct can be handed to helpers by reference on every ABI.
struct ArgList {
  va_list ap;
};

// Collects formatted output into a fixed buffer; overflows as vswprintf does (the text and its
// terminating zero must fit).
class Output {
 public:
  Output(AChar* buffer, std::size_t capacity) : mBuffer(buffer), mCapacity(capacity) {}

  bool Overflowed() const { return mNeeded != 0; }
  // After an overflow: a capacity below this can never hold the text.
  std::size_t Needed() const { return mNeeded; }
  std::size_t Length() const { return mLength; }
  std::size_t Room() const { return mLength + 1 < mCapacity ? mCapacity - mLength - 1 : 0; }

  void Put(AChar c) {
    if (Fits(1)) mBuffer[mLength++] = c;
  }
  void Put(std::u16string_view text) {
    if (!Fits(text.size())) return;
    std::copy(text.begin(), text.end(), mBuffer + mLength);
    mLength += text.size();
  }
  void PutAscii(const char* text, std::size_t n) {
    if (!Fits(n)) return;
    for (std::size_t i = 0; i < n; ++i) {
      mBuffer[mLength++] = static_cast<AChar>(static_cast<unsigned char>(text[i]));
    }
  }
  void Pad(std::size_t n) {
    if (!Fits(n)) return;
    std::fill_n(mBuffer + mLength, n, u' ');
    mLength += n;
  }
  void Terminate() { mBuffer[std::min(mLength, mCapacity - 1)] = 0; }

 private:
  bool Fits(std::size_t n) {
    if (n <= Room()) return true;
    mNeeded = mLength + n + 1;
    return false;
  }

  AChar* mBuffer;
  std::size_t mCapacity;
  std::size_t mLength = 0;
  std::size_t mNeeded = 0;
};

enum class Length {
  kNone,
  kChar,
  kShort,
  kLong,
  kLongLong,
  kLongDouble,
  kIntMax,
  kSize,
  kPtrDiff,
  kWide
};

struct Directive {
  std::string flags;
  bool leftAlign = false;
  int width = -1;      // -1: none
  int precision = -1;  // -1: none
  Length length = Length::kNone;
};

// Reads a decimal field, saturating at INT_MAX; a width that large can never fit anyway.
int ReadDecimal(const AChar*& p) {
  long long value = 0;
  while (*p >= u'0' && *p <= u'9') {
    value = std::min<long long>(value * 10 + (*p - u'0'), INT_MAX);
    ++p;
  }
  return static_cast<int>(value);
}

void PutText(Output& out, const Directive& directive, std::u16string_view text) {
  if (directive.precision >= 0 && text.size() > static_cast<std::size_t>(directive.precision)) {
    std::size_t n = static_cast<std::size_t>(directive.precision);
    // Never leave half of a surrogate pair behind.
    if (n > 0 && text[n - 1] >= 0xD800 && text[n - 1] <= 0xDBFF) --n;
    text = text.substr(0, n);
  }
  const std::size_t width = directive.width > 0 ? static_cast<std::size_t>(directive.width) : 0;
  const std::size_t pad = width > text.size() ? width - text.size() : 0;
  if (!directive.leftAlign) out.Pad(pad);
  out.Put(text);
  if (directive.leftAlign) out.Pad(pad);
}

// Prints one numeric conversion through snprintf with the same flags, width and precision.
template <typename T>
void PutNumber(Output& out, const Directive& directive, const char* length, char conversion,
               T value) {
  // The output is never shorter than the width: skip snprintf when it cannot fit.
  if (directive.width > 0 && static_cast<std::size_t>(directive.width) > out.Room()) {
    out.Pad(static_cast<std::size_t>(directive.width));
    return;
  }
  std::string format(1, '%');
  format += directive.flags;
  if (directive.leftAlign) format += '-';
  if (directive.width >= 0) format += std::to_string(directive.width);
  if (directive.precision >= 0) {
    format += '.';
    format += std::to_string(directive.precision);
  }
  format += length;
  format += conversion;
  char small[128];
  int n = std::snprintf(small, sizeof small, format.c_str(), value);
  if (n < 0) return;  // a conversion the C runtime refuses prints nothing
  if (static_cast<std::size_t>(n) < sizeof small) {
    out.PutAscii(small, static_cast<std::size_t>(n));
    return;
  }
  if (static_cast<std::size_t>(n) > out.Room()) {
    out.Pad(static_cast<std::size_t>(n));  // marks the overflow
    return;
  }
  std::string large(static_cast<std::size_t>(n) + 1, '\0');
  std::snprintf(large.data(), large.size(), format.c_str(), value);
  out.PutAscii(large.data(), static_cast<std::size_t>(n));
}

long long SignedArgument(ArgList& args, Length length) {
  switch (length) {
    case Length::kChar:
      return static_cast<signed char>(va_arg(args.ap, int));
    case Length::kShort:
      return static_cast<short>(va_arg(args.ap, int));
    case Length::kLong:
      return va_arg(args.ap, long);
    case Length::kLongLong:
      return va_arg(args.ap, long long);
    case Length::kIntMax:
      return va_arg(args.ap, std::intmax_t);
    case Length::kSize:
      return va_arg(args.ap, std::ptrdiff_t);  // the signed type of size_t's width
    case Length::kPtrDiff:
      return va_arg(args.ap, std::ptrdiff_t);
    case Length::kNone:
    case Length::kLongDouble:
    case Length::kWide:
      return va_arg(args.ap, int);
  }
  return 0;
}

unsigned long long UnsignedArgument(ArgList& args, Length length) {
  switch (length) {
    case Length::kChar:
      return static_cast<unsigned char>(va_arg(args.ap, unsigned));
    case Length::kShort:
      return static_cast<unsigned short>(va_arg(args.ap, unsigned));
    case Length::kLong:
      return va_arg(args.ap, unsigned long);
    case Length::kLongLong:
      return va_arg(args.ap, unsigned long long);
    case Length::kIntMax:
      return va_arg(args.ap, std::uintmax_t);
    case Length::kSize:
      return va_arg(args.ap, std::size_t);
    case Length::kPtrDiff:
      return static_cast<unsigned long long>(va_arg(args.ap, std::ptrdiff_t));
    case Length::kNone:
    case Length::kLongDouble:
    case Length::kWide:
      return va_arg(args.ap, unsigned);
  }
  return 0;
}

// Formats `format` into `buffer`; the number of characters written, or -1 when the text and its
// terminating zero do not fit in `capacity` characters (then `needed` is a capacity below which
// it can never fit).
int FormatInto(AChar* buffer, std::size_t capacity, const AChar* format, ArgList& args,
               std::size_t& needed) {
  Output out(buffer, capacity);
  const AChar* p = format;
  while (*p != 0 && !out.Overflowed()) {
    if (*p != u'%') {
      out.Put(*p++);
      continue;
    }
    const AChar* start = p++;
    if (*p == u'%') {
      out.Put(u'%');
      ++p;
      continue;
    }
    Directive directive;
    for (;; ++p) {
      if (*p == u'-') {
        directive.leftAlign = true;
      } else if (*p == u'+' || *p == u' ' || *p == u'#' || *p == u'0' || *p == u'\'') {
        directive.flags += static_cast<char>(*p);
      } else {
        break;
      }
    }
    if (*p == u'*') {
      ++p;
      int width = va_arg(args.ap, int);
      if (width < 0) {
        directive.leftAlign = true;
        width = width == INT_MIN ? INT_MAX : -width;
      }
      directive.width = width;
    } else if (*p >= u'0' && *p <= u'9') {
      directive.width = ReadDecimal(p);
    }
    if (*p == u'.') {
      ++p;
      if (*p == u'*') {
        ++p;
        int precision = va_arg(args.ap, int);
        directive.precision = precision < 0 ? -1 : precision;
      } else {
        directive.precision = ReadDecimal(p);
      }
    }
    switch (*p) {
      case u'h':
        ++p;
        directive.length = *p == u'h' ? (++p, Length::kChar) : Length::kShort;
        break;
      case u'l':
        ++p;
        directive.length = *p == u'l' ? (++p, Length::kLongLong) : Length::kLong;
        break;
      case u'q':
        ++p;
        directive.length = Length::kLongLong;
        break;
      case u'L':
        ++p;
        directive.length = Length::kLongDouble;
        break;
      case u'j':
        ++p;
        directive.length = Length::kIntMax;
        break;
      case u'z':
        ++p;
        directive.length = Length::kSize;
        break;
      case u't':
        ++p;
        directive.length = Length::kPtrDiff;
        break;
      case u'w':
        ++p;
        directive.length = Length::kWide;
        break;
      case u'I':  // I64, I32 and I (pointer-sized) of the wide printf this engine stands in for
        if (p[1] == u'6' && p[2] == u'4') {
          p += 3;
          directive.length = Length::kLongLong;
        } else if (p[1] == u'3' && p[2] == u'2') {
          p += 3;
        } else {
          ++p;
          directive.length = Length::kSize;
        }
        break;
      default:
        break;
    }
    const AChar conversion = *p;
    if (conversion == 0) {  // a format that ends inside a conversion is printed as it stands
      out.Put(std::u16string_view(start, static_cast<std::size_t>(p - start)));
      break;
    }
    ++p;
    switch (conversion) {
      case u'd':
      case u'i':
        PutNumber(out, directive, "ll", 'd', SignedArgument(args, directive.length));
        break;
      case u'u':
      case u'o':
      case u'x':
      case u'X':
        PutNumber(out, directive, "ll", static_cast<char>(conversion),
                  UnsignedArgument(args, directive.length));
        break;
      case u'e':
      case u'E':
      case u'f':
      case u'F':
      case u'g':
      case u'G':
      case u'a':
      case u'A':
        if (directive.length == Length::kLongDouble) {
          PutNumber(out, directive, "L", static_cast<char>(conversion),
                    va_arg(args.ap, long double));
        } else {
          PutNumber(out, directive, "", static_cast<char>(conversion), va_arg(args.ap, double));
        }
        break;
      case u'p': {
        Directive pointer = directive;
        pointer.precision = -1;
        PutNumber(out, pointer, "", 'p', va_arg(args.ap, void*));
        break;
      }
      case u'c':
      case u'C': {
        const int value = va_arg(args.ap, int);
        AString text;
        if (conversion == u'C' || directive.length == Length::kShort) {
          const char narrow = static_cast<char>(value);
          i18n::detail::NarrowToWide(i18n::kSystemEncoding, &narrow, 1, text);
        } else if (directive.length == Length::kLong || directive.length == Length::kWide) {
          const char32_t wide = static_cast<char32_t>(static_cast<unsigned>(value));
          text = AString(wycore::Utf32ToUtf16(std::u32string_view(&wide, 1)));
        } else {
          text.push_back(static_cast<AChar>(value));
        }
        Directive character = directive;
        character.precision = -1;
        PutText(out, character, text);
        break;
      }
      case u's':
      case u'S': {
        if (conversion == u'S' || directive.length == Length::kShort) {
          const char* narrow = va_arg(args.ap, const char*);
          AString text;
          if (narrow == nullptr) {
            text = u"(null)";
          } else {
            i18n::detail::NarrowToWide(i18n::kSystemEncoding, narrow, std::strlen(narrow), text);
          }
          PutText(out, directive, text);
        } else if (directive.length == Length::kLong || directive.length == Length::kWide) {
          const wchar_t* wide = va_arg(args.ap, const wchar_t*);
          std::u16string storage;
          PutText(out, directive, wide == nullptr ? u"(null)" : FromUtf32(wide, -1, storage));
        } else {
          const AChar* text = va_arg(args.ap, const AChar*);
          PutText(out, directive, text == nullptr ? u"(null)" : std::u16string_view(text));
        }
        break;
      }
      case u'n':
        // Writing the count through a pointer is refused, as the wide printf it stands in for
        // refuses it by default; the argument is still consumed.
        (void)va_arg(args.ap, void*);
        break;
      default:  // not a conversion: printed as it stands, no argument consumed
        out.Put(std::u16string_view(start, static_cast<std::size_t>(p - start)));
        break;
    }
  }
  if (out.Overflowed()) {
    needed = out.Needed();
    return -1;
  }
  out.Terminate();
  return static_cast<int>(out.Length());
}

// The shared scratch buffer of FormatV; used only under the process-wide lock.
struct Scratch {
  std::unique_ptr<AChar[]> buffer;
  std::size_t capacity = 0;
};

Scratch& SharedScratch() {
  static Scratch scratch;
  return scratch;
}

constexpr std::size_t kFirstCapacity = 4096;
constexpr std::size_t kKeepCapacity = 524288;       // larger buffers are released after the call
constexpr std::size_t kLargestCapacity = 1u << 30;  // 2 GiB of characters: a format gone wrong

// Switches the calling thread to the "C" locale for the lifetime of the object, so snprintf
// always writes '.' as radix separator.
class CLocaleScope {
 public:
  CLocaleScope() : mPrevious(uselocale(CLocale())) {}
  ~CLocaleScope() { uselocale(mPrevious); }
  CLocaleScope(const CLocaleScope&) = delete;
  CLocaleScope& operator=(const CLocaleScope&) = delete;

 private:
  locale_t mPrevious;
};

}  // namespace

AString& AString::Format(const AChar* format, ...) {
  va_list args;
  va_start(args, format);
  FormatV(format, args);
  va_end(args);
  return *this;
}

AString& AString::FormatV(const AChar* format, va_list args) {
  if (!WY_CHECK(format != 0)) {
    clear();
    return *this;
  }
  std::lock_guard<std::recursive_mutex> lock(wycore::ProcessLock());
  CLocaleScope cLocale;
  Scratch& scratch = SharedScratch();
  if (scratch.capacity == 0) {
    scratch.buffer = std::make_unique<AChar[]>(kFirstCapacity);
    scratch.capacity = kFirstCapacity;
  }
  int written = -1;
  for (;;) {
    ArgList attempt;
    va_copy(attempt.ap, args);
    std::size_t needed = 0;
    written = FormatInto(scratch.buffer.get(), scratch.capacity, format, attempt, needed);
    va_end(attempt.ap);
    if (written >= 0) break;
    // A text that can never fit (a runaway width, say) fails at once instead of doubling the
    // buffer up to the limit first.
    if (scratch.capacity >= kLargestCapacity || needed > kLargestCapacity) break;
    scratch.capacity *= 2;
    scratch.buffer = std::make_unique<AChar[]>(scratch.capacity);
  }
  if (written >= 0) {
    Base::assign(scratch.buffer.get(), static_cast<std::size_t>(written));
  } else {
    WY_CHECK(!"formatted text longer than 1073741824 characters");
    clear();
  }
  if (scratch.capacity > kKeepCapacity) {
    scratch.buffer.reset();
    scratch.capacity = 0;
  }
  return *this;
}

// ---------------------------------------------------------------------------------------------
// Tokenising and matching

std::size_t AString::TokenizeString(const AChar* delimiters, std::vector<AString>& out,
                                    bool keepDelimiters) const {
  return i18n::detail::Tokenize(View(), delimiters, out, keepDelimiters);
}

bool AString::GetNthToken(std::size_t n, const AChar* delimiters, AString* out) const {
  if (out == nullptr) return false;
  std::vector<AString> pieces;
  i18n::detail::Tokenize(View(), delimiters, pieces, false);
  if (n >= pieces.size()) return false;
  *out = std::move(pieces[n]);
  return true;
}

bool AString::Match(const AString& pattern) const {
  return i18n::detail::WildcardMatch(View(), pattern.View(), false, nullptr);
}

bool AString::MatchNoCase(const AString& pattern) const {
  return i18n::detail::WildcardMatch(View(), pattern.View(), true, nullptr);
}

bool AString::Match(const AString& pattern, std::vector<AString>& captures, bool noCase) const {
  return i18n::detail::WildcardMatch(View(), pattern.View(), noCase, &captures);
}

bool AString::Match(const AString& pattern, AString* c0, AString* c1, AString* c2, AString* c3,
                    AString* c4, AString* c5, AString* c6, AString* c7, AString* c8,
                    AString* c9) const {
  std::vector<AString> captures;
  if (!i18n::detail::WildcardMatch(View(), pattern.View(), false, &captures)) return false;
  AString* outputs[] = {c0, c1, c2, c3, c4, c5, c6, c7, c8, c9};
  for (std::size_t k = 0; k < std::size(outputs); ++k) {
    if (outputs[k] == nullptr) continue;
    if (k < captures.size()) {
      *outputs[k] = std::move(captures[k]);
    } else {
      outputs[k]->clear();
    }
  }
  return true;
}

// ---------------------------------------------------------------------------------------------
// Operators

bool operator==(const AString& a, const AString& b) { return a.View() == b.View(); }
bool operator==(const AString& a, const AChar* b) {
  return b != nullptr && a.View() == std::u16string_view(b);
}
bool operator==(const AChar* a, const AString& b) { return b == a; }
bool operator==(const AString& a, const wchar_t* b) {
  if (b == nullptr) return false;
  std::u16string storage;
  return a.View() == FromUtf32(b, -1, storage);
}
bool operator!=(const AString& a, const AString& b) { return !(a == b); }
bool operator!=(const AString& a, const AChar* b) { return !(a == b); }
bool operator!=(const AChar* a, const AString& b) { return !(b == a); }
bool operator!=(const AString& a, const wchar_t* b) { return !(a == b); }
bool operator<(const AString& a, const AString& b) { return a.View() < b.View(); }

AString operator+(const AString& a, const AString& b) {
  AString result;
  result.reserve(a.size() + b.size());
  result.append(a).append(b);
  return result;
}
AString operator+(const AString& a, const AChar* b) { return a + AString(b); }
AString operator+(const AChar* a, const AString& b) { return AString(a) + b; }
AString operator+(const AString& a, AChar b) {
  AString result(a);
  result.push_back(b);
  return result;
}
AString operator+(AChar a, const AString& b) {
  AString result;
  result.reserve(b.size() + 1);
  result.push_back(a);
  result.append(b);
  return result;
}
AString operator+(const AString& a, const wchar_t* b) { return a + AString(b); }
AString operator+(const wchar_t* a, const AString& b) { return AString(a) + b; }
