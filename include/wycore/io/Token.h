// SPDX-License-Identifier: Apache-2.0
//
// Token.h - io::CToken, one lexical token of the structured storage format.
//
// A token is a kind byte, a pointer to a shared text buffer (or null) and an 8-byte union that
// holds, depending on the kind, the number (always as a double, so integers are exact up to 2^53),
// the length of the buffered text, or up to 3 characters inline followed by a zero. Numbers and
// texts of up to 3 characters (every symbol, short keywords) need no allocation; longer texts are
// allocated once and shared by copies through a one-byte share count. The lexer, the block tree
// and the grammars pass tokens by value by the million, so the class has no virtual functions
// and its hot accessors are inline.
//
// Shared text buffer: one allocation of length * 2 + 3 bytes holding the characters, their
// terminating zero and the one-byte share count. The count sits after the terminating zero rather
// than before the characters so that the characters start on the allocation's own (aligned)
// address and ACharPtr() can hand out a valid `const AChar*`. A new buffer starts with the count 1;
// a copy increments it, except that once the count has reached 255 the copy allocates a buffer of
// its own (the count never overflows); a release decrements it and frees the buffer at zero.
//
// Threading: the share count is a plain byte. Tokens that share a buffer must not be copied or
// released on different threads at once; otherwise tokens are plain values.
//
// Deliberately not here: how a kind is printed (the token output stream decides, see
// wycore/io/TokenStream.h) and lexing (the text token stream).
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>

#include "wycore/Export.h"
#include "wycore/io/AString.h"

namespace io {

class CAbstract_ostream;

// Arithmetic types other than bool, the character types (char, wchar_t, char8/16/32_t) and
// double itself, which has its own constructor.
template <class T>
concept TokenNumberArgument =
    std::is_arithmetic_v<T> && !std::is_same_v<T, bool> && !std::is_same_v<T, char> &&
    !std::is_same_v<T, wchar_t> && !std::is_same_v<T, char8_t> && !std::is_same_v<T, char16_t> &&
    !std::is_same_v<T, char32_t> && !std::is_same_v<T, double>;

class WYCORE_API CToken {
 public:
  // The token kinds. The values are stored in files (binary token form); never renumber.
  // Groups are ranges: number 1..9, boolean 10..11, string kinds 12..18, text 13..15,
  // control 19..21. Long and UnsignedLong are 32-bit kinds, as wide as Int and UnsignedInt.
  enum TTokenType : std::uint8_t {
    Null = 0,
    Short = 1,
    Int = 2,
    Long = 3,
    UnsignedShort = 4,
    UnsignedInt = 5,
    UnsignedLong = 6,
    Double = 7,
    Float = 8,
    Hex = 9,
    True = 10,
    False = 11,
    Keyword = 12,
    SingleQuotedText = 13,
    DoubleQuotedText = 14,
    CData = 15,
    WhiteSpace = 16,
    Comment = 17,
    Symbol = 18,
    Eol = 19,
    Eof = 20,
    Error = 21,
  };

  // ---- Construction and assignment -------------------------------------------------------

  // A Null token.
  CToken() noexcept { mData.mValue = 0.0; }
  // A token of `type` with no value and no text.
  explicit CToken(TTokenType type) noexcept;
  // For a string kind, the one-character text `c` held inline (symbols); for any other kind only
  // the kind.
  CToken(TTokenType type, AChar c) noexcept;
  // For a number kind the value is stored; for any other kind only the kind.
  CToken(TTokenType type, const double& value) noexcept;
  // Integer and float arguments convert to the double a number token holds, so that
  // CToken(CToken::Int, 5) is not ambiguous between the character and the value forms. Character
  // types are excluded on purpose: write u'x' for a symbol.
  template <TokenNumberArgument T>
  CToken(TTokenType type, T value) noexcept : CToken(type, static_cast<double>(value)) {}
  // Same as SetType(type, text, keepText).
  CToken(TTokenType type, const AString& text, bool keepText = false);

  // Copies share the text buffer (see the file comment); moves take it over and leave the source
  // a Null token. Self-assignment is safe.
  CToken(const CToken& other) : mType(other.mType), mData(other.mData) {
    if (other.mText != nullptr) mText = other.AcquireShare();
  }
  CToken(CToken&& other) noexcept : mType(other.mType), mText(other.mText), mData(other.mData) {
    other.mType = Null;
    other.mText = nullptr;
    other.mData.mValue = 0.0;
  }
  CToken& operator=(const CToken& other);
  CToken& operator=(CToken&& other) noexcept {
    if (this != &other) {
      if (mText != nullptr) Release();
      mType = other.mType;
      mText = other.mText;
      mData = other.mData;
      other.mType = Null;
      other.mText = nullptr;
      other.mData.mValue = 0.0;
    }
    return *this;
  }
  ~CToken() {
    if (mText != nullptr) Release();
  }

  // Releases the text and makes the token Null with value 0.
  void Clear() noexcept;

  // Releases any old text, sets the value to 0 and the kind to `type`, then:
  //  - Hex: `text` is read as a base-16 integer (AString::IsNumber(long&, 16)); a result that is
  //    not negative becomes the value, otherwise the kind becomes SingleQuotedText;
  //  - any other number kind: the whole text must read as a double (AString::IsNumber(double&)),
  //    otherwise the kind becomes SingleQuotedText;
  //  - a string kind (as given, or after the fall-back) stores the text: up to 3 characters
  //    inline, more in a new shared buffer;
  //  - any other kind keeps the text in a new shared buffer only when `keepText` is set.
  // A text kept beside a kind that is not a string kind ends at its first zero character (a
  // number is never written with one); string kinds keep every character. A short text with a
  // zero character among its characters goes to a buffer, since inline text ends at a zero.
  void SetType(TTokenType type, const AString& text, bool keepText = false);
  // Sets kind and value directly, without reading the text. A string kind stores the text; any
  // other kind keeps it only when `keepText` is set.
  void SetType(TTokenType type, const AString& text, double value, bool keepText = false);
  // The same as the SetType above for a text held anywhere (no AString is made): the lexer's way
  // of turning a slice of its input into a token.
  void Assign(TTokenType type, std::u16string_view text, double value, bool keepText = false);

  // ---- Inspection --------------------------------------------------------------------------

  TTokenType Type() const noexcept { return mType; }
  // The number, or 0.0 for a kind that is not a number.
  double Value() const noexcept { return IsNumber(mType) ? mData.mValue : 0.0; }
  // The text, or an empty string.
  AString GetAString() const;
  // The text (zero-terminated), or a shared empty string; never null. Inline text lives inside
  // the token: the pointer is valid while the token lives and is not changed.
  const AChar* ACharPtr() const noexcept {
    if (mText != nullptr) return mText;
    if (IsString(mType)) return mData.mInline;
    return u"";
  }
  // The number of characters of the text (0 without text).
  std::size_t ACharLen() const noexcept {
    if (mText != nullptr) return BufferLength();
    if (!IsString(mType)) return 0;
    std::size_t length = 0;
    while (length < 3 && mData.mInline[length] != 0) ++length;
    return length;
  }
  // The kind's name ("Null", "Short", ..., "Error"); empty for a kind byte above 21.
  AString GetTypeString() const;

  static bool IsNumber(TTokenType type) noexcept { return type >= Short && type <= Hex; }
  static bool IsBoolean(TTokenType type) noexcept { return type == True || type == False; }
  static bool IsString(TTokenType type) noexcept { return type >= Keyword && type <= Symbol; }
  static bool IsText(TTokenType type) noexcept { return type >= SingleQuotedText && type <= CData; }

  bool IsClear() const noexcept { return mType == Null; }
  bool IsNumber() const noexcept { return IsNumber(mType); }
  bool IsBoolean() const noexcept { return IsBoolean(mType); }
  bool IsTrue() const noexcept { return mType == True; }
  bool IsFalse() const noexcept { return mType == False; }
  bool IsHex() const noexcept { return mType == Hex; }
  bool IsString() const noexcept { return IsString(mType); }
  bool IsKeyword() const noexcept { return mType == Keyword; }
  // SingleQuotedText, DoubleQuotedText or CData.
  bool IsText() const noexcept { return IsText(mType); }
  bool IsCData() const noexcept { return mType == CData; }
  bool IsComment() const noexcept { return mType == Comment; }
  bool IsSymbol() const noexcept { return mType == Symbol; }
  bool IsEol() const noexcept { return mType == Eol; }
  bool IsEof() const noexcept { return mType == Eof; }
  bool IsError() const noexcept { return mType == Error; }
  // Null, Eol, Eof and Error, and a string kind whose text is empty.
  bool IsEmpty() const noexcept;
  // True when the token carries text: a shared buffer, or inline characters.
  bool HasText() const noexcept { return mText != nullptr || ACharPtr()[0] != 0; }

  // ---- Range predicates and typed queries ------------------------------------------------
  //
  // A range predicate is true, and the Query of the matching type succeeds and stores the value
  // converted by truncation toward zero, only for a number kind whose value lies in the range;
  // both bounds are inclusive. NaN lies in no range. On failure the output is left unchanged.
  //
  //   short               IsShort          -32768 .. 32767
  //   unsigned short      IsUnsignedShort  0 .. 65535
  //   int, long           IsInt, IsLong    -2147483648 .. 2147483647
  //   unsigned int/long   IsUnsignedInt,   0 .. 4294967295
  //                       IsUnsignedLong
  //   long long           IsInt64          -2^63 .. 2^63
  //   unsigned long long  IsUInt64         0 .. 2^64
  //   float               IsFloat          -3.4028234663852886e38 .. 3.4028234663852886e38
  //   double              -                every number
  //
  // `long` and `unsigned long` are the 32-bit longs of the stored data: their queries use the
  // 32-bit ranges whatever the width of the platform's long. IsInt64 accepts 2^63 although it lies
  // one beyond the largest 64-bit value; Query(long long&) stores it as the bit pattern 2^63, which
  // reads as -2^63 (no undefined conversion is involved). Query(unsigned long long&) converts a
  // value from 2^63 up by subtracting 2^63 and setting the top bit, so 2^64 is stored as 2^63.
  // Query(float&) accepts every number: values inside the float range narrow with rounding to
  // nearest, values beyond it become an infinity of their sign, NaN stays NaN.
  bool IsShort() const noexcept;
  bool IsUnsignedShort() const noexcept;
  bool IsInt() const noexcept;
  bool IsLong() const noexcept { return IsInt(); }
  bool IsUnsignedInt() const noexcept;
  bool IsUnsignedLong() const noexcept { return IsUnsignedInt(); }
  bool IsInt64() const noexcept;
  bool IsUInt64() const noexcept;
  bool IsFloat() const noexcept;

  // Succeeds only for True (stores true) and False (stores false); a number is not a boolean.
  bool Query(bool& value) const noexcept;
  bool Query(short& value) const noexcept;
  bool Query(unsigned short& value) const noexcept;
  bool Query(int& value) const noexcept;
  bool Query(unsigned int& value) const noexcept;
  bool Query(long& value) const noexcept;
  bool Query(unsigned long& value) const noexcept;
  bool Query(long long& value) const noexcept;
  bool Query(unsigned long long& value) const noexcept;
  bool Query(float& value) const noexcept;
  bool Query(double& value) const noexcept;
  // Succeed only for the string kinds and copy the text. The buffer must hold ACharLen() + 1
  // characters (the text and a terminating zero); a null buffer fires the check "buffer != 0"
  // and fails.
  bool Query(AString& value) const;
  bool Query(AChar* buffer) const noexcept;

  // ---- Comparison --------------------------------------------------------------------------

  // The kinds must be equal. Number tokens are equal when their values are numerically equal (a
  // NaN equals nothing, itself included); the text a number keeps does not count. String-kind
  // tokens are equal when their texts are equal character by character, case counting. Tokens of
  // any other kind are equal when neither carries text.
  bool operator==(const CToken& other) const noexcept;
  bool operator!=(const CToken& other) const noexcept { return !(*this == other); }

  // Compares the token's text with `text` (null counts as empty); -1, 0 or 1. A token that is not
  // of a string kind and carries no text gives -1. Otherwise an empty text sorts before a
  // non-empty one and two empty texts are equal; non-empty texts compare ordinally by 16-bit unit
  // when `caseSensitive`, else by the library's case folding (i18n::ACharStrICmp, which stops at
  // the first zero character).
  int Compare(const AChar* text, bool caseSensitive) const noexcept;

  // ---- Size accounting and writing -------------------------------------------------------

  // The memory the token holds: its text buffer (length * 2 + 3 bytes; nothing for inline text or
  // no text) plus sizeof(CToken) when `includeSelf` is set. A shared buffer counts in full for
  // every token that shares it.
  std::size_t SizeOf(bool includeSelf) const noexcept;

  // The number of bytes the token takes in the binary token form:
  //   1 byte   the kind; its top bit (0x80) is set when a kind that is not a string kind carries
  //            a text (a number written with its text kept);
  //   8 bytes  for the number kinds: the value as a little-endian IEEE double;
  //   4 bytes  for the string kinds, and for any kind with the top bit set: the text's length in
  //            characters (little-endian, unsigned);
  //   2 bytes  per character of that text (UTF-16 code units, little-endian).
  // The stream is not consulted: the form is the same for every stream.
  std::size_t BinarySize(const CAbstract_ostream& stream) const noexcept;

  // Hands the token to `stream`, which decides how it is printed:
  //  - Short with a value in the short range: WriteShort; Int and Long in the int range: WriteInt;
  //    UnsignedShort in its range: WriteUnsignedShort; UnsignedInt and UnsignedLong in their range:
  //    WriteUnsignedInt; a value outside its kind's range goes to WriteToken;
  //  - Hex: the stream's hexadecimal mode is switched on for this token and set back to what it
  //    was afterwards; inside, a value in the unsigned int range goes to WriteUnsignedInt, any
  //    other value to WriteToken;
  //  - every other kind: WriteToken.
  // Values are truncated toward zero on the way to a typed writer.
  void write(CAbstract_ostream& stream) const;

 private:
  union TData {
    double mValue;          // number kinds (and any non-string kind)
    std::uint64_t mLength;  // string kinds with a buffer: characters in the buffer
    AChar mInline[4];       // string kinds without a buffer: up to 3 characters and a zero
  };

  // Stores `text` for the current kind: a string kind inline (up to 3 characters without a zero
  // among them) or in a new buffer; any other kind in a new buffer, cut at its first zero
  // character because such a buffer's length is found by its terminating zero.
  void StoreText(std::u16string_view text);
  // The number of characters in the buffer (mText must not be null).
  std::size_t BufferLength() const noexcept {
    if (IsString(mType)) return static_cast<std::size_t>(mData.mLength);
    return std::char_traits<AChar>::length(mText);
  }
  // The share count, the byte after the terminating zero (mText must not be null).
  unsigned char& ShareCount() const noexcept {
    return reinterpret_cast<unsigned char*>(mText)[BufferLength() * 2 + 2];
  }
  // A share of this token's buffer for a copy: the same buffer with its count incremented, or a
  // new buffer with the same characters when the count is full. mText must not be null. Inline,
  // as tokens are copied and released per token read.
  AChar* AcquireShare() const {
    unsigned char& count = ShareCount();
    if (count < 255) {
      ++count;
      return mText;
    }
    return CopyBuffer();
  }
  // A new buffer with this token's characters and the count 1.
  AChar* CopyBuffer() const;
  void Release() noexcept {
    if (--ShareCount() == 0) ::operator delete(mText);
    mText = nullptr;
  }

  TTokenType mType = Null;
  AChar* mText = nullptr;  // the characters of the shared buffer, or null
  TData mData;
};

static_assert(sizeof(CToken) == 24, "a token is a kind byte, a text pointer and an 8-byte union");

}  // namespace io
