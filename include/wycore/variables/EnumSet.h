// SPDX-License-Identifier: Apache-2.0
//
// EnumSet.h - a small set of enumerators held as bits.
//
// base::EnumSet_T<E, N> holds any subset of the N enumerators 0 .. N-1 of E; enumerator k is
// bit value 1 << k, so the set converts to and from the plain flag integer that files and older
// callers use (for the name-space search flags: 1 constants, 2 intrinsic, 4 predefined).
// Enumerators outside 0 .. N-1 are never members; adding one does nothing.
//
// Threading: a plain value type.
#pragma once

#include <cstdint>

namespace base {

template <class E, int N>
class EnumSet_T {
  static_assert(N > 0 && N <= 32, "EnumSet_T holds at most 32 enumerators");

 public:
  constexpr EnumSet_T() = default;

  // The set whose bits are `bits` (bits beyond N are dropped).
  static constexpr EnumSet_T FromInt(std::uint32_t bits) {
    EnumSet_T s;
    s.mBits = bits & kAll;
    return s;
  }
  constexpr std::uint32_t ToInt() const { return mBits; }

  constexpr bool Contains(E e) const { return InRange(e) && (mBits & Bit(e)) != 0; }
  constexpr EnumSet_T& Add(E e) {
    if (InRange(e)) mBits |= Bit(e);
    return *this;
  }
  constexpr EnumSet_T& Remove(E e) {
    if (InRange(e)) mBits &= ~Bit(e);
    return *this;
  }
  constexpr void Clear() { mBits = 0; }
  constexpr bool Empty() const { return mBits == 0; }

  friend constexpr bool operator==(const EnumSet_T&, const EnumSet_T&) = default;

 private:
  static constexpr std::uint32_t kAll =
      N == 32 ? 0xffffffffu : ((std::uint32_t{1} << N) - std::uint32_t{1});
  static constexpr bool InRange(E e) { return static_cast<int>(e) >= 0 && static_cast<int>(e) < N; }
  static constexpr std::uint32_t Bit(E e) { return std::uint32_t{1} << static_cast<int>(e); }

  std::uint32_t mBits = 0;
};

}  // namespace base
