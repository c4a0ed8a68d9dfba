// SPDX-License-Identifier: Apache-2.0
//
// StringInternal.h - length-based workers shared by AString.cpp and I18n.cpp.
//
// The public functions take zero-terminated text or `int` lengths; these workers take explicit
// lengths so that AString methods see every stored character, embedded zeros included. Private to
// the library; never installed.
#pragma once

#include <locale.h>

#include <cstddef>
#include <cwctype>
#include <string>
#include <string_view>
#include <vector>

#include "wycore/io/AString.h"

namespace i18n::detail {

// The character rules (classification and case mapping above ASCII) of the whole library come
// from one fixed locale, "C.UTF-8" ("C" where the system lacks it), never from the locale the
// application happens to set: a name must compare and split the same way in every process that
// reads the same file.
locale_t CharacterLocale();

inline bool IsAlpha(AChar c) { return iswalpha_l(static_cast<wint_t>(c), CharacterLocale()) != 0; }
inline bool IsAlnum(AChar c) { return iswalnum_l(static_cast<wint_t>(c), CharacterLocale()) != 0; }
inline bool IsSpace(AChar c) { return iswspace_l(static_cast<wint_t>(c), CharacterLocale()) != 0; }

// The folding rule of i18n::FoldCase, inline for the comparison loops.
inline AChar Fold(AChar c) {
  if (c < 128) return c >= u'A' && c <= u'Z' ? static_cast<AChar>(c + 32) : c;
  return static_cast<AChar>(towlower_l(static_cast<wint_t>(c), CharacterLocale()));
}

// Narrow text in `encoding` to UTF-16; every undecodable byte becomes U+FFFD. Replaces `out`.
// False (and `out` empty) only when the result cannot be held.
bool NarrowToWide(TEncoding encoding, const char* text, std::size_t length, AString& out);

// UTF-16 to narrow text in `encoding`; characters the encoding cannot hold become '?', malformed
// UTF-16 becomes '?' (U+FFFD in UTF-8). Replaces `out`. False (and `out` empty) when the result
// would exceed 2,147,483,647 bytes.
bool WideToNarrow(TEncoding encoding, const AChar* text, std::size_t length, std::string& out);

// Case-blind comparison of two texts of known length; the end of a text acts as a zero
// character, and the comparison stops at the first zero. -1, 0 or 1.
int CompareNoCase(std::u16string_view a, std::u16string_view b);

// Appends the pieces of `text` between characters of `delimiters` (null: none) to `out`.
std::size_t Tokenize(std::u16string_view text, const AChar* delimiters, std::vector<AString>& out,
                     bool keepDelimiters);

// Whole-text wildcard match; when `captures` is not null, appends what each wildcard matched.
bool WildcardMatch(std::u16string_view text, std::u16string_view pattern, bool noCase,
                   std::vector<AString>* captures);

}  // namespace i18n::detail
