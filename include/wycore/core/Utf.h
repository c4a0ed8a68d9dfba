// SPDX-License-Identifier: Apache-2.0
//
// Utf.h - lossless UTF-16 <-> UTF-8 <-> UTF-32 transcoding for the lowest layer.
//
// The core layer sits below the string type, so it cannot use AString's encoding conversions;
// these helpers let it print debug lines and messages. Unpaired surrogates and invalid UTF-8
// become U+FFFD. AString uses the same functions for its wchar_t (UTF-32) overloads.
#pragma once

#include <string>
#include <string_view>

#include "wycore/Export.h"

namespace wycore {

WYCORE_API std::string Utf16ToUtf8(std::u16string_view text);
WYCORE_API std::u16string Utf8ToUtf16(std::string_view text);
WYCORE_API std::u16string Utf32ToUtf16(std::u32string_view text);
WYCORE_API std::u32string Utf16ToUtf32(std::u16string_view text);

}  // namespace wycore
