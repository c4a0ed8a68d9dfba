// SPDX-License-Identifier: Apache-2.0
//
// Utf.cpp - UTF-16/UTF-8/UTF-32 transcoding (RFC 3629, Unicode chapter 3).
#include "wycore/core/Utf.h"

namespace wycore {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDBFF; }
bool IsLowSurrogate(char32_t c) { return c >= 0xDC00 && c <= 0xDFFF; }

// Calls `emit` with each code point of `text`; unpaired surrogates become U+FFFD.
template <typename Emit>
void ForEachCodePoint(std::u16string_view text, Emit emit) {
  for (size_t i = 0; i < text.size(); ++i) {
    char32_t c = text[i];
    if (IsHighSurrogate(c) && i + 1 < text.size() && IsLowSurrogate(text[i + 1])) {
      c = 0x10000 + ((c - 0xD800) << 10) + (text[i + 1] - 0xDC00);
      ++i;
    } else if (IsHighSurrogate(c) || IsLowSurrogate(c)) {
      c = kReplacement;
    }
    emit(c);
  }
}

void AppendUtf16(std::u16string& out, char32_t c) {
  if (c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) c = kReplacement;
  if (c < 0x10000) {
    out.push_back(static_cast<char16_t>(c));
  } else {
    c -= 0x10000;
    out.push_back(static_cast<char16_t>(0xD800 + (c >> 10)));
    out.push_back(static_cast<char16_t>(0xDC00 + (c & 0x3FF)));
  }
}

}  // namespace

std::string Utf16ToUtf8(std::u16string_view text) {
  std::string out;
  out.reserve(text.size());
  ForEachCodePoint(text, [&out](char32_t c) {
    if (c < 0x80) {
      out.push_back(static_cast<char>(c));
    } else if (c < 0x800) {
      out.push_back(static_cast<char>(0xC0 | (c >> 6)));
      out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else if (c < 0x10000) {
      out.push_back(static_cast<char>(0xE0 | (c >> 12)));
      out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else {
      out.push_back(static_cast<char>(0xF0 | (c >> 18)));
      out.push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    }
  });
  return out;
}

std::u16string Utf8ToUtf16(std::string_view text) {
  std::u16string out;
  out.reserve(text.size());
  size_t i = 0;
  while (i < text.size()) {
    unsigned char lead = static_cast<unsigned char>(text[i]);
    int extra = lead < 0x80 ? 0 : (lead >> 5) == 0x6 ? 1 : (lead >> 4) == 0xE ? 2
              : (lead >> 3) == 0x1E ? 3 : -1;
    if (extra < 0 || i + extra >= text.size()) {  // stray or truncated sequence
      out.push_back(static_cast<char16_t>(kReplacement));
      ++i;
      continue;
    }
    char32_t c = extra == 0 ? lead : lead & (0x3F >> extra);
    bool valid = true;
    for (int k = 1; k <= extra; ++k) {
      unsigned char next = static_cast<unsigned char>(text[i + k]);
      if ((next & 0xC0) != 0x80) {
        valid = false;
        break;
      }
      c = (c << 6) | (next & 0x3F);
    }
    // Overlong forms are invalid: each length has a smallest code point.
    static constexpr char32_t kMinimum[4] = {0, 0x80, 0x800, 0x10000};
    if (!valid || c < kMinimum[extra]) {
      out.push_back(static_cast<char16_t>(kReplacement));
      ++i;
      continue;
    }
    AppendUtf16(out, c);
    i += extra + 1;
  }
  return out;
}

std::u16string Utf32ToUtf16(std::u32string_view text) {
  std::u16string out;
  out.reserve(text.size());
  for (char32_t c : text) AppendUtf16(out, c);
  return out;
}

std::u32string Utf16ToUtf32(std::u16string_view text) {
  std::u32string out;
  out.reserve(text.size());
  ForEachCodePoint(text, [&out](char32_t c) { out.push_back(c); });
  return out;
}

}  // namespace wycore
