// SPDX-License-Identifier: Apache-2.0
//
// NumberText.cpp - fast paths of the number conversions of the text form (see NumberText.h).
//
// FormatShortestDouble's fast path. For a double a with 1e-5 <= |a| < 1e15 let E be its decimal
// exponent and R the integer nearest to x = |a| * 10^(14 - E), a number of 15 digits; x takes one
// rounding (the power of ten is exact), so R lies within 0.611 of the exact scaled value. A
// decimal of at most 15 significant digits that reads back to a lies within half an ulp of a,
// below 0.111 at this scale, so scaled to 15 digits it is an integer within 0.722 of R: R itself.
// Hence the shortest such decimal is R without its trailing zeros, if any decimal of at most 15
// digits reads back at all, and it is unique at its length, so its digits are those of
// std::to_chars. Whether it reads back is one test: (digits / 10^k) or (digits * 10^k) in double
// arithmetic must give a again, since both operands are exact and the operation rounds
// correctly, as reading the decimal text does. Doubles that need 16 or 17 digits, and all
// others, go to std::to_chars itself. The layout then follows the rule of std::to_chars: fixed
// notation unless scientific notation is shorter, with at least two exponent digits.
#include "NumberText.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>

#include "LocalCalls.h"

namespace io::detail {

namespace {

constexpr double kExactPow10[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                  1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                  1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr std::uint64_t kPow10[] = {1ull,
                                    10ull,
                                    100ull,
                                    1000ull,
                                    10000ull,
                                    100000ull,
                                    1000000ull,
                                    10000000ull,
                                    100000000ull,
                                    1000000000ull,
                                    10000000000ull,
                                    100000000000ull,
                                    1000000000000ull,
                                    10000000000000ull,
                                    100000000000000ull,
                                    1000000000000000ull};

// The double that the decimal digits * 10^-scale read back as (|scale| <= 22).
double DecimalValue(std::uint64_t digits, int scale) noexcept {
  const double d = static_cast<double>(digits);
  return scale >= 0 ? d / kExactPow10[scale] : d * kExactPow10[-scale];
}

// Writes digits * 10^-scale (digits has `count` digits and no trailing zero) in the layout of
// std::to_chars; `negative` adds the sign.
std::size_t Layout(bool negative, std::uint64_t digits, int count, int scale, char* buf) noexcept {
  static constexpr char kPairs[] =
      "00010203040506070809101112131415161718192021222324252627282930313233343536373839"
      "40414243444546474849505152535455565758596061626364656667686970717273747576777879"
      "8081828384858687888990919293949596979899";
  char text[16];
  char* q = text + count;
  while (digits >= 100) {
    const auto pair = static_cast<unsigned>(digits % 100) * 2;
    digits /= 100;
    *--q = kPairs[pair + 1];
    *--q = kPairs[pair];
  }
  if (digits >= 10) {
    const auto pair = static_cast<unsigned>(digits) * 2;
    *--q = kPairs[pair + 1];
    *--q = kPairs[pair];
  } else {
    *--q = static_cast<char>('0' + digits);
  }
  const int exponent = count - 1 - scale;
  const int absExponent = exponent < 0 ? -exponent : exponent;
  const int sciLength = count + (count > 1 ? 1 : 0) + 2 + (absExponent >= 100 ? 3 : 2);
  int fixedLength = 0;
  if (scale <= 0) {
    fixedLength = count - scale;
  } else if (scale < count) {
    fixedLength = count + 1;
  } else {
    fixedLength = 2 + scale;
  }
  char* p = buf;
  if (negative) *p++ = '-';
  if (fixedLength <= sciLength) {
    if (scale <= 0) {
      for (int i = 0; i < count; ++i) *p++ = text[i];
      for (int i = 0; i < -scale; ++i) *p++ = '0';
    } else if (scale < count) {
      for (int i = 0; i < count - scale; ++i) *p++ = text[i];
      *p++ = '.';
      for (int i = count - scale; i < count; ++i) *p++ = text[i];
    } else {
      *p++ = '0';
      *p++ = '.';
      for (int i = 0; i < scale - count; ++i) *p++ = '0';
      for (int i = 0; i < count; ++i) *p++ = text[i];
    }
  } else {
    *p++ = text[0];
    if (count > 1) {
      *p++ = '.';
      for (int i = 1; i < count; ++i) *p++ = text[i];
    }
    *p++ = 'e';
    *p++ = exponent < 0 ? '-' : '+';
    if (absExponent >= 100) *p++ = static_cast<char>('0' + absExponent / 100);
    *p++ = static_cast<char>('0' + absExponent / 10 % 10);
    *p++ = static_cast<char>('0' + absExponent % 10);
  }
  return static_cast<std::size_t>(p - buf);
}

}  // namespace

std::size_t FormatShortestDouble(double value, char* buf) noexcept {
  const double a = std::fabs(value);
  if (a >= 1e-5 && a < 1e15) {
    // The decimal exponent: estimated from the binary one (log10(2) ~ 1233 / 4096), then
    // corrected by one comparison with an exact power of ten.
    int e = 0;
    if (a >= 1.0) {
      const int binary = static_cast<int>((std::bit_cast<std::uint64_t>(a) >> 52) & 0x7ff) - 1023;
      e = (binary * 1233) >> 12;
      if (e < 14 && a >= kExactPow10[e + 1]) ++e;
    } else {
      e = -1;
      while (e > -5 && a * kExactPow10[-e] < 1.0) --e;
    }
    const int k15 = 14 - e;  // 0 .. 19
    // x + 0.5 is exact (x < 2^50), so truncating it rounds x to the nearest integer.
    auto r = static_cast<std::uint64_t>(a * kExactPow10[k15] + 0.5);
    if (r >= kPow10[14] && r < kPow10[15]) {
      int zeros = 0;
      if (r % 100000000 == 0) {
        r /= 100000000;
        zeros += 8;
      }
      if (r % 10000 == 0) {
        r /= 10000;
        zeros += 4;
      }
      if (r % 100 == 0) {
        r /= 100;
        zeros += 2;
      }
      if (r % 10 == 0) {
        r /= 10;
        zeros += 1;
      }
      const int scale = 14 - zeros - e;
      if (DecimalValue(r, scale) == a) {
        return Layout(std::signbit(value), r, 15 - zeros, scale, buf);
      }
    }
  }
  return static_cast<std::size_t>(std::to_chars(buf, buf + 32, value).ptr - buf);
}

}  // namespace io::detail
