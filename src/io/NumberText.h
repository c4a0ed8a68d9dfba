// SPDX-License-Identifier: Apache-2.0
//
// NumberText.h - fast number conversions shared by the token and the text stream (private).
//
// Storage files are mostly numbers, so both directions have a fast path for the common shapes
// and hand everything else to the general conversion, which stays the reference:
//  - ParsePlainDecimal reads [sign] digits [. digits] [e [sign] digits] from a short ASCII slice
//    with std::from_chars (correctly rounded, as the C runtime's wcstod); any other text, and a
//    result out of the double range, is refused so that the caller takes the general path.
//  - FormatShortestDouble writes exactly what std::to_chars(first, last, value) writes (the
//    shortest text that reads back to the same double, fixed or scientific, whichever is
//    shorter), with a fast path for doubles that have at most 15 significant digits.
// Both are pure functions; nothing here allocates.
#pragma once

#include <cstddef>
#include <string_view>

namespace io::detail {

bool ParsePlainDecimal(std::u16string_view text, double& value) noexcept;

// `buf` must hold at least 32 characters; returns the number of characters written.
std::size_t FormatShortestDouble(double value, char* buf) noexcept;

}  // namespace io::detail
