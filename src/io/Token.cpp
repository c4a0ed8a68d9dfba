// SPDX-License-Identifier: Apache-2.0
//
// Token.cpp - io::CToken: text storage, parsing of number texts, range queries and writing.
//
// The shared text buffer is managed by hand (one allocation, one-byte count after the
// terminating zero) because tokens are copied far more often than they are created and most of
// them carry no buffer at all. Nothing here allocates for numbers or for texts of up to 3
// characters.
#include "wycore/io/Token.h"

#include <algorithm>
#include <bit>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>
#include <string>
#include <string_view>

#include "LocalCalls.h"
#include "NumberText.h"
#include "wycore/core/Check.h"
#include "wycore/io/TokenStream.h"

namespace io {

namespace {

constexpr double kTwoPow63 = 9223372036854775808.0;   // 2^63
constexpr double kTwoPow64 = 18446744073709551616.0;  // 2^64
constexpr double kFloatMax = 3.4028234663852886e38;   // the largest float, exactly

static_assert(kFloatMax == static_cast<double>(FLT_MAX));

// Bytes of a buffer holding `length` characters: the characters, the zero and the count.
constexpr std::size_t BufferBytes(std::size_t length) { return length * 2 + 3; }

unsigned char& ShareCount(AChar* chars, std::size_t length) {
  return reinterpret_cast<unsigned char*>(chars)[length * 2 + 2];
}

// A new buffer with the count 1. The characters start at the allocation's address, which
// operator new aligns for any fundamental type.
AChar* NewBuffer(const AChar* text, std::size_t length) {
  auto* chars = static_cast<AChar*>(::operator new(BufferBytes(length)));
  if (length != 0) std::memcpy(chars, text, length * sizeof(AChar));
  chars[length] = 0;
  ShareCount(chars, length) = 1;
  return chars;
}

int Sign(int value) { return (value > 0) - (value < 0); }

// Restores a stream's hexadecimal mode when a Hex token has been written, also when the stream
// throws.
class HexModeScope {
 public:
  explicit HexModeScope(CAbstract_ostream& stream) : mStream(stream), mPrevious(stream.Hex(true)) {}
  ~HexModeScope() { mStream.Hex(mPrevious); }
  HexModeScope(const HexModeScope&) = delete;
  HexModeScope& operator=(const HexModeScope&) = delete;

 private:
  CAbstract_ostream& mStream;
  bool mPrevious;
};

}  // namespace

// ---- Construction and assignment ---------------------------------------------------------

CToken::CToken(TTokenType type) noexcept : mType(type) { mData.mValue = 0.0; }

CToken::CToken(TTokenType type, AChar c) noexcept : mType(type) {
  if (IsString(type)) {
    mData.mInline[0] = c;
    mData.mInline[1] = mData.mInline[2] = mData.mInline[3] = 0;
  } else {
    mData.mValue = 0.0;
  }
}

CToken::CToken(TTokenType type, const double& value) noexcept : mType(type) {
  // All-zero bits are both the value 0.0 and an empty inline text.
  mData.mValue = IsNumber(type) ? value : 0.0;
}

CToken::CToken(TTokenType type, const AString& text, bool keepText) {
  mData.mValue = 0.0;
  SetType(type, text, keepText);
}

CToken& CToken::operator=(const CToken& other) {
  if (mText == other.mText) {
    // No text on either side, the same shared buffer, or self-assignment: no count changes.
    mType = other.mType;
    mData = other.mData;
    return *this;
  }
  // The share is taken before the old text goes, so that a failed allocation leaves this token
  // as it was.
  AChar* text = other.mText != nullptr ? other.AcquireShare() : nullptr;
  if (mText != nullptr) Release();
  mType = other.mType;
  mText = text;
  mData = other.mData;
  return *this;
}

void CToken::Clear() noexcept {
  if (mText != nullptr) Release();
  mType = Null;
  mData.mValue = 0.0;
}

AChar* CToken::CopyBuffer() const { return NewBuffer(mText, BufferLength()); }

void CToken::StoreText(std::u16string_view text) {
  std::size_t length = text.size();
  if (IsString(mType)) {
    if (length <= 3 && text.find(AChar(0)) == text.npos) {
      for (std::size_t i = 0; i < 4; ++i) mData.mInline[i] = i < length ? text[i] : AChar(0);
    } else {
      mText = NewBuffer(text.data(), length);
      mData.mLength = length;
    }
    return;
  }
  length = std::min(length, text.find(AChar(0)));
  mText = NewBuffer(text.data(), length);
}

void CToken::SetType(TTokenType type, const AString& text, bool keepText) {
  if (mText != nullptr) Release();
  mData.mValue = 0.0;
  mType = type;
  if (type == Hex) {
    long value = 0;
    if (text.IsNumber(value, 16) && value >= 0) {
      mData.mValue = static_cast<double>(value);
    } else {
      mType = SingleQuotedText;
    }
  } else if (IsNumber(type)) {
    double value = 0.0;
    if (detail::ParsePlainDecimal(text, value) || text.IsNumber(value)) {
      mData.mValue = value;
    } else {
      mType = SingleQuotedText;
    }
  }
  if (IsString(mType) || keepText) StoreText(text);
}

void CToken::SetType(TTokenType type, const AString& text, double value, bool keepText) {
  Assign(type, text, value, keepText);
}

void CToken::Assign(TTokenType type, std::u16string_view text, double value, bool keepText) {
  if (mText != nullptr) Release();
  mData.mValue = 0.0;
  mType = type;
  if (IsString(type)) {
    StoreText(text);
    return;
  }
  mData.mValue = value;
  if (keepText) StoreText(text);
}

bool detail::ParsePlainDecimal(std::u16string_view text, double& value) noexcept {
  // Only the plain form [sign] digits [. digits] [e [sign] digits]; everything else (blanks,
  // words, hexadecimal) is left to the C runtime.
  constexpr std::uint64_t kExactLimit = std::uint64_t{1} << 53;
  static constexpr double kPow10[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                      1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                      1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
  const std::size_t n = text.size();
  std::size_t i = 0;
  const bool negative = n > 0 && text[0] == u'-';
  if (n > 0 && (text[0] == u'+' || text[0] == u'-')) ++i;
  std::uint64_t mantissa = 0;
  bool exact = true;  // the digits fit a double exactly
  int digits = 0;
  int fraction = 0;
  bool point = false;
  for (; i < n; ++i) {
    const AChar c = text[i];
    if (c >= u'0' && c <= u'9') {
      ++digits;
      if (point) ++fraction;
      if (mantissa < kExactLimit) {
        mantissa = mantissa * 10 + static_cast<unsigned>(c - u'0');
      } else {
        exact = false;
      }
    } else if (c == u'.' && !point) {
      point = true;
    } else {
      break;
    }
  }
  if (digits == 0) return false;
  int exponent = 0;
  if (i < n) {
    if (text[i] != u'e' && text[i] != u'E') return false;
    ++i;
    bool negativeExponent = false;
    if (i < n && (text[i] == u'+' || text[i] == u'-')) negativeExponent = text[i++] == u'-';
    if (i == n) return false;
    for (; i < n; ++i) {
      if (text[i] < u'0' || text[i] > u'9') return false;
      if (exponent < 100000) exponent = exponent * 10 + (text[i] - u'0');
    }
    if (negativeExponent) exponent = -exponent;
  }
  // Both operands exact and one correctly rounded operation: the correctly rounded value, as
  // the C runtime reads it (Clinger's fast path).
  const int scale = exponent - fraction;
  if (exact && mantissa <= kExactLimit && scale >= -22 && scale <= 22) {
    const double m = static_cast<double>(mantissa);
    const double result = scale >= 0 ? m * kPow10[scale] : m / kPow10[-scale];
    value = negative ? -result : result;
    return true;
  }
  // Longer or larger numbers: std::from_chars on an ASCII copy (it takes no '+' sign). It
  // rounds correctly too; a result out of the double range is left to the C runtime.
  constexpr std::size_t kMaxLength = 64;
  if (n > kMaxLength) return false;
  char buf[kMaxLength];
  const std::size_t from = text[0] == u'+' ? 1 : 0;
  for (std::size_t k = from; k < n; ++k) buf[k - from] = static_cast<char>(text[k]);
  double result = 0.0;
  const auto r = std::from_chars(buf, buf + (n - from), result);
  if (r.ec != std::errc() || r.ptr != buf + (n - from)) return false;
  value = result;
  return true;
}

// ---- Inspection ----------------------------------------------------------------------------

AString CToken::GetAString() const { return AString(std::u16string_view(ACharPtr(), ACharLen())); }

AString CToken::GetTypeString() const {
  static constexpr const AChar* kNames[] = {u"Null",
                                            u"Short",
                                            u"Int",
                                            u"Long",
                                            u"UnsignedShort",
                                            u"UnsignedInt",
                                            u"UnsignedLong",
                                            u"Double",
                                            u"Float",
                                            u"Hex",
                                            u"True",
                                            u"False",
                                            u"Keyword",
                                            u"SingleQuotedText",
                                            u"DoubleQuotedText",
                                            u"CData",
                                            u"WhiteSpace",
                                            u"Comment",
                                            u"Symbol",
                                            u"Eol",
                                            u"Eof",
                                            u"Error"};
  static_assert(std::size(kNames) == Error + 1);
  if (mType > Error) return AString();
  return AString(kNames[mType]);
}

bool CToken::IsEmpty() const noexcept {
  switch (mType) {
    case Null:
    case Eol:
    case Eof:
    case Error:
      return true;
    default:
      return IsString(mType) && ACharLen() == 0;
  }
}

// ---- Range predicates and typed queries ----------------------------------------------------

namespace {

// Both bounds inclusive; NaN fails both comparisons.
bool Within(double value, double low, double high) { return value >= low && value <= high; }

}  // namespace

bool CToken::IsShort() const noexcept {
  return IsNumber() && Within(mData.mValue, -32768.0, 32767.0);
}
bool CToken::IsUnsignedShort() const noexcept {
  return IsNumber() && Within(mData.mValue, 0.0, 65535.0);
}
bool CToken::IsInt() const noexcept {
  return IsNumber() && Within(mData.mValue, -2147483648.0, 2147483647.0);
}
bool CToken::IsUnsignedInt() const noexcept {
  return IsNumber() && Within(mData.mValue, 0.0, 4294967295.0);
}
bool CToken::IsInt64() const noexcept {
  return IsNumber() && Within(mData.mValue, -kTwoPow63, kTwoPow63);
}
bool CToken::IsUInt64() const noexcept {
  return IsNumber() && Within(mData.mValue, 0.0, kTwoPow64);
}
bool CToken::IsFloat() const noexcept {
  return IsNumber() && Within(mData.mValue, -kFloatMax, kFloatMax);
}

bool CToken::Query(bool& value) const noexcept {
  if (mType == True) {
    value = true;
    return true;
  }
  if (mType == False) {
    value = false;
    return true;
  }
  return false;
}

bool CToken::Query(short& value) const noexcept {
  if (!IsShort()) return false;
  value = static_cast<short>(mData.mValue);
  return true;
}

bool CToken::Query(unsigned short& value) const noexcept {
  if (!IsUnsignedShort()) return false;
  value = static_cast<unsigned short>(mData.mValue);
  return true;
}

bool CToken::Query(int& value) const noexcept {
  if (!IsInt()) return false;
  value = static_cast<int>(mData.mValue);
  return true;
}

bool CToken::Query(unsigned int& value) const noexcept {
  if (!IsUnsignedInt()) return false;
  value = static_cast<unsigned int>(mData.mValue);
  return true;
}

bool CToken::Query(long& value) const noexcept {
  if (!IsLong()) return false;
  value = static_cast<long>(mData.mValue);
  return true;
}

bool CToken::Query(unsigned long& value) const noexcept {
  if (!IsUnsignedLong()) return false;
  value = static_cast<unsigned long>(mData.mValue);
  return true;
}

bool CToken::Query(long long& value) const noexcept {
  if (!IsInt64()) return false;
  // 2^63 itself is accepted but has no long long value: it is stored as the bit pattern 2^63.
  if (mData.mValue >= kTwoPow63) {
    value = std::bit_cast<long long>(std::uint64_t{1} << 63);
  } else {
    value = static_cast<long long>(mData.mValue);
  }
  return true;
}

bool CToken::Query(unsigned long long& value) const noexcept {
  if (!IsUInt64()) return false;
  if (mData.mValue >= kTwoPow63) {
    // mValue - 2^63 lies in 0 .. 2^63 and converts exactly; 2^64 thus ends as 2^63.
    value = static_cast<unsigned long long>(mData.mValue - kTwoPow63) | (1ull << 63);
  } else {
    value = static_cast<unsigned long long>(mData.mValue);
  }
  return true;
}

bool CToken::Query(float& value) const noexcept {
  if (!IsNumber()) return false;
  const double v = mData.mValue;
  if (std::isnan(v)) {
    value = std::numeric_limits<float>::quiet_NaN();
  } else if (v > kFloatMax || v < -kFloatMax) {
    // Converting a double beyond the float range is undefined; an infinity is what narrowing
    // means for such a number.
    value =
        v > 0 ? std::numeric_limits<float>::infinity() : -std::numeric_limits<float>::infinity();
  } else {
    value = static_cast<float>(v);
  }
  return true;
}

bool CToken::Query(double& value) const noexcept {
  if (!IsNumber()) return false;
  value = mData.mValue;
  return true;
}

bool CToken::Query(AString& value) const {
  if (!IsString()) return false;
  static_cast<AString::Base&>(value).assign(ACharPtr(), ACharLen());
  return true;
}

bool CToken::Query(AChar* buffer) const noexcept {
  if (!WY_CHECK(buffer != 0)) return false;
  if (!IsString()) return false;
  const std::size_t length = ACharLen();
  std::memcpy(buffer, ACharPtr(), length * sizeof(AChar));
  buffer[length] = 0;
  return true;
}

// ---- Comparison --------------------------------------------------------------------------

bool CToken::operator==(const CToken& other) const noexcept {
  if (mType != other.mType) return false;
  if (IsNumber(mType)) return mData.mValue == other.mData.mValue;  // NaN is unequal
  if (IsString(mType)) {
    const std::size_t length = ACharLen();
    return length == other.ACharLen() &&
           std::memcmp(ACharPtr(), other.ACharPtr(), length * sizeof(AChar)) == 0;
  }
  return mText == nullptr && other.mText == nullptr;
}

int CToken::Compare(const AChar* text, bool caseSensitive) const noexcept {
  if (!IsString(mType) && mText == nullptr) return -1;
  const std::size_t length = ACharLen();
  const std::size_t otherLength = text != nullptr ? std::char_traits<AChar>::length(text) : 0;
  if (length == 0) return otherLength == 0 ? 0 : -1;
  if (otherLength == 0) return 1;
  if (caseSensitive) {
    return Sign(
        std::u16string_view(ACharPtr(), length).compare(std::u16string_view(text, otherLength)));
  }
  return Sign(i18n::ACharStrICmp(ACharPtr(), text));
}

// ---- Size accounting and writing ---------------------------------------------------------

std::size_t CToken::SizeOf(bool includeSelf) const noexcept {
  std::size_t size = mText != nullptr ? BufferBytes(BufferLength()) : 0;
  if (includeSelf) size += sizeof(CToken);
  return size;
}

std::size_t CToken::BinarySize(const CAbstract_ostream& /*stream*/) const noexcept {
  std::size_t size = 1;
  if (IsNumber(mType)) size += 8;
  if (IsString(mType) || mText != nullptr) size += 4 + 2 * ACharLen();
  return size;
}

void CToken::write(CAbstract_ostream& stream) const {
  const double value = mData.mValue;
  switch (mType) {
    case Short:
      if (IsShort()) {
        stream.WriteShort(static_cast<std::int16_t>(value));
        return;
      }
      break;
    case Int:
    case Long:
      if (IsInt()) {
        stream.WriteInt(static_cast<std::int32_t>(value));
        return;
      }
      break;
    case UnsignedShort:
      if (IsUnsignedShort()) {
        stream.WriteUnsignedShort(static_cast<std::uint16_t>(value));
        return;
      }
      break;
    case UnsignedInt:
    case UnsignedLong:
      if (IsUnsignedInt()) {
        stream.WriteUnsignedInt(static_cast<std::uint32_t>(value));
        return;
      }
      break;
    case Hex: {
      HexModeScope hexMode(stream);
      if (IsUnsignedInt()) {
        stream.WriteUnsignedInt(static_cast<std::uint32_t>(value));
      } else {
        stream.WriteToken(*this);
      }
      return;
    }
    default:
      break;
  }
  stream.WriteToken(*this);
}

}  // namespace io
