// SPDX-License-Identifier: Apache-2.0
//
// TextStream.h - the text form of the structured storage: grammar, lexer/printer, and the text
// token input and output streams.
//
// io::CToken_grammar (over io::CBase_grammar) holds the lexical rules: a class for each of the
// characters 0..255 (all others are "other"), a state-transition table indexed by state and
// class, one action per state and the token kind each state yields when the token ends there,
// and the words the rules need: "true" and "false", the special floating-point words "#inf" and
// "#nan", and the text-block brackets $begin_cdata$ and $end_cdata$.
//
// io::CToken_textstreambuf runs the grammar over wide text (lexing, with line and column
// tracking and saved states for look-ahead) and prints tokens back as text (quoting, number
// formatting, separators between tokens, indentation, UTF-8 or another narrow encoding).
//
// io::CToken_istream and io::CToken_ostream put the buffer behind the abstract token streams
// that the block tree reads and writes (TokenStream.h).
//
// Choices of this text form (docs/storage.md describes the whole format):
//  - numbers print in their shortest form that reads back to the same double unless a precision
//    is set; a Double always shows a point or an exponent so that it reads back as a Double;
//  - +inf prints as "#inf", -inf as "-#inf", NaN as "#nan";
//  - hexadecimal mode prints integers 0..2147483646 as 0x...; other values in decimal, since a
//    larger hexadecimal text would not read back as a number;
//  - indentation is one tab per block level unless BeginIndent names another fill;
//  - a separator blank goes between two tokens only where they would otherwise run together.
//
// Reading shares text: a keyword or quoted text that recurs shares the buffer of its last
// occurrence, so the tokens of one read (and of the tree built from them) share buffers as copies
// of a token do, and are used by one thread at a time like them.
//
// Deliberately not here: files (StorageFile.h) and the block tree (Block.h).
// Threading: every object here is used by one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "wycore/Export.h"
#include "wycore/io/AString.h"
#include "wycore/io/Token.h"
#include "wycore/io/TokenStream.h"

namespace io {

// The character classes and the comment characters.
class WYCORE_API CBase_grammar {
 public:
  enum TCharClass : std::uint8_t {
    kOther,       // characters above 255, and nothing below: no rule accepts them
    kAlpha,       // letters that are none of the letters below
    kExp,         // 'e' 'E': exponent, and hexadecimal digit
    kHexLetter,   // 'a'..'d', 'f', 'A'..'D', 'F': hexadecimal digits
    kX,           // 'x' 'X': after a leading '0'
    kZero,        // '0'
    kDigit,       // '1'..'9'
    kDollar,      // '$': starts and continues keywords
    kUnderscore,  // '_': continues keywords, alone a symbol
    kSpace,       // blank, tab and the other control characters
    kEol,         // LF and NUL
    kCr,          // CR
    kDQuote,      // '"'
    kSQuote,      // '\''
    kBackslash,   // '\\': an escape inside quoted text, a symbol outside
    kDot,         // '.'
    kPlus,        // '+'
    kMinus,       // '-'
    kHash,        // '#': starts the special float words
    kComment,     // the configured comment characters
    kSymbol,      // everything else
    kClassCount
  };

  CBase_grammar();
  virtual ~CBase_grammar() = default;

  TCharClass ClassOf(AChar c) const noexcept { return c < 256 ? mClasses[c] : kOther; }

  // Comment characters (only characters below 256 can be one; none are by default). A comment
  // runs from its character to the end of the line. Returns false for a character above 255.
  bool CommentCharSet(AChar c);
  void CommentCharClear(AChar c);
  void CommentCharClear();
  bool IsCommentChar(AChar c) const noexcept { return c < 256 && mClasses[c] == kComment; }

  // Keyword characters: a keyword starts with a letter or '$' and goes on with letters, digits,
  // '_' and '$'.
  bool IsKeywordStart(AChar c) const noexcept;
  bool IsKeywordChar(AChar c) const noexcept;
  bool IsDigit(AChar c) const noexcept {
    const TCharClass k = ClassOf(c);
    return k == kZero || k == kDigit;
  }

 protected:
  TCharClass mClasses[256];
  TCharClass mPlainClasses[256];  // the classes without comment characters
};

// The lexical rules: states, transitions, actions and words.
class WYCORE_API CToken_grammar : public CBase_grammar {
 public:
  enum TState : std::uint8_t {
    kStart,
    kEolState,
    kCrState,
    kSpaceState,
    kCommentState,
    kKeyword,
    kSign,
    kSignDot,
    kDotState,
    kZeroState,
    kIntState,
    kPoint,
    kFraction,
    kExponent,
    kExponentSign,
    kExponentDigits,
    kHexPrefix,
    kHexDigits,
    kSqOpen,
    kSqText,
    kSqEscape,
    kSqEscaped,
    kSqEscapedCr,
    kSqEnd,
    kDqOpen,
    kDqText,
    kDqEscape,
    kDqEscaped,
    kDqEscapedCr,
    kDqEnd,
    kCData,
    kCDataDollar,
    kCDataEnd,
    kSpecial,
    kSymbolState,
    kErrorState,
    kStateCount,
    kStop = 0xff  // the token ends before the character
  };

  // What a state does with the character that brings the lexer into it.
  enum TAction : std::uint8_t {
    kAppend,           // keep the character in the token's text
    kDrop,             // consume it without keeping it (quotes, the escaping backslash)
    kEscape,           // keep the character that the escape stands for
    kKeywordChar,      // keep it; the word $begin_cdata$ switches into a text block
    kCDataDollarChar,  // '$' in a text block: the end word, or a '$' kept as text
    kSpecialWord,      // '#': a special float word, or given back
    kErrorChar,        // keep it and report an unknown character
  };

  CToken_grammar();

  TState Next(TState state, TCharClass cls) const noexcept { return mTransitions[state][cls]; }
  TAction Action(TState state) const noexcept { return mActions[state]; }
  // The kind a token has when it ends in `state` (before the adjustments of the number and
  // keyword rules).
  CToken::TTokenType Kind(TState state) const noexcept { return mKinds[state]; }

  // The character an escape stands for: \0 \a \b \f \n \r \t \v, any other character itself.
  static AChar Unescape(AChar c) noexcept;

  const AString& TrueWord() const { return mTrueWord; }
  const AString& FalseWord() const { return mFalseWord; }
  const AString& InfWord() const { return mInfWord; }
  const AString& NanWord() const { return mNanWord; }
  const AString& CDataBegin() const { return mCDataBegin; }
  const AString& CDataEnd() const { return mCDataEnd; }

  // True when `text` reads back as exactly one Keyword token with this text.
  bool IsPlainKeyword(std::u16string_view text) const noexcept;

 private:
  TState mTransitions[kStateCount][kClassCount];
  TAction mActions[kStateCount];
  CToken::TTokenType mKinds[kStateCount];
  AString mTrueWord{u"true"};
  AString mFalseWord{u"false"};
  AString mInfWord{u"#inf"};
  AString mNanWord{u"#nan"};
  AString mCDataBegin{u"$begin_cdata$"};
  AString mCDataEnd{u"$end_cdata$"};
};

// Turns wide text into tokens and tokens back into text.
class WYCORE_API CToken_textstreambuf {
 public:
  // A position in the input, for look-ahead and going back.
  struct StreamState {
    std::size_t position = 0;
    int line = 1;
    int column = 1;
  };

  CToken_textstreambuf();
  explicit CToken_textstreambuf(AString input);

  CToken_grammar& Grammar() { return mGrammar; }
  const CToken_grammar& Grammar() const { return mGrammar; }

  // ---- Input -----------------------------------------------------------------------------

  void SetInput(AString input);
  // Reads the input in pieces: `source` appends the next piece of text to its argument and
  // returns false when there is none. Only the text from the previous token on is held (and
  // all of a line that is being read), so a saved state from before the previous token can no
  // longer be restored; this is for reading large files from the start to the end.
  void SetInputSource(std::function<bool(AString&)> source);
  // The input text held: all of it, or for a source-fed stream the part from InputBase() on.
  const AString& Input() const { return mInput; }
  std::size_t InputBase() const { return mBase; }

  // The next token of the input, WhiteSpace, Comment and Eol included; Eof at the end, as often
  // as asked. An unknown character gives an Error token holding it, and fires a check.
  CToken GetToken();
  // The same, into `out` (no temporary token): the token stream's way.
  void GetToken(CToken& out);
  // Skips white space and comments; true when something was skipped. Cheaper than GetToken for
  // tokens the caller does not want.
  bool SkipWhiteSpace();
  // True when the last token was a text cut short by the end of its line or of the input.
  bool LastTokenUnterminated() const { return mUnterminated; }
  // Where the last token started (1-based; columns count UTF-16 units).
  int TokenLine() const { return mTokenLine; }
  int TokenColumn() const { return mTokenColumn; }
  // Where the next character stands.
  int Line() const { return mState.line; }
  int Column() const { return mState.column; }
  bool AtEnd() const { return !mSource && mState.position - mBase >= mInput.size(); }

  StreamState SaveStreamState() const { return mState; }
  void RestoreStreamState(const StreamState& state);
  StreamState CreateInitialStreamState() const { return StreamState{}; }

  // Whether "#inf" and "#nan" read as numbers (on by default).
  void SetParseSpecialFloats(bool on) { mParseSpecialFloats = on; }
  bool ParseSpecialFloats() const { return mParseSpecialFloats; }
  // Whether number tokens keep the text they were read from (off by default).
  void SetRetainNumberText(bool on) { mRetainNumberText = on; }
  bool RetainNumberText() const { return mRetainNumberText; }
  bool CommentCharSet(AChar c) { return mGrammar.CommentCharSet(c); }
  void CommentCharClear(AChar c) { mGrammar.CommentCharClear(c); }
  void CommentCharClear() { mGrammar.CommentCharClear(); }

  // ---- Output ----------------------------------------------------------------------------

  // UTF-8 (kUtf8, or kSystemEncoding which is UTF-8 here) is written as UTF-8 sequences; any
  // other encoding collects the characters and converts them when the output is taken.
  void SetEncoding(i18n::TEncoding encoding);
  i18n::TEncoding Encoding() const { return mEncoding; }

  // Significant digits of floating-point output; 0 (the default) means the shortest text that
  // reads back to the same double.
  void SetPrecision(int digits) { mPrecision = digits < 0 ? 0 : (digits > 17 ? 17 : digits); }
  int Precision() const { return mPrecision; }
  // Minimum field width of numbers (right-aligned with blanks); the setter returns the old one.
  int Width() const { return mWidth; }
  int Width(int width);
  bool Hex() const { return mHex; }
  bool Hex(bool on) {
    const bool previous = mHex;
    mHex = on;
    return previous;
  }
  // Whether texts are quoted and escaped (on by default); off, their characters go out bare.
  void SetQuoting(bool on) { mQuoting = on; }
  bool Quoting() const { return mQuoting; }

  // Indentation written at the start of each line: BeginIndent adds `count` fill characters,
  // EndIndent takes back the last BeginIndent.
  void BeginIndent(int count = 1, AChar fill = u'\t');
  void EndIndent();
  int IndentLevel() const { return static_cast<int>(mIndentSteps.size()); }
  const AString& Indentation() const { return mIndentation; }
  AChar Fill() const { return mFill; }
  // The fill character of the block indentation of CToken_ostream (a tab by default).
  void SetFill(AChar fill) { mFill = fill; }

  // Ends the line; the next token starts with the indentation.
  void NewLine();
  // The general token formatter.
  void PutToken(const CToken& token);
  // An integer, in hexadecimal when Hex() is set and the value allows it.
  void PutInteger(long long value);
  // A floating-point number as a Double (with a point or exponent).
  void PutDouble(double value);
  // A punctuation character.
  void PutSymbol(AChar symbol);
  // A word as it stands (keywords of the layout such as $begin), with a separator if needed.
  void PutWord(CToken::TTokenType kind, std::u16string_view text);
  // A blank (remembered, so that no second separator follows).
  void PutBlank();
  // A raw text: lexed with the grammar; one quoted text or text block goes out as it stands,
  // anything else single-quoted by the quoting rule.
  void FormatText(const AString& text);
  // `text` quoted with `quote` ('\'' or '"') by the quoting rule: a backslash before the quote
  // character and before control characters, backslashes doubled, a line end (CR LF, with any
  // carriage returns that run into it) as a line continuation, which reads back as LF.
  void QuoteText(std::u16string_view text, AChar quote);

  // True when a separator is needed between a token of kind `previous` ending in `last` and a
  // token of kind `next` starting with `first`.
  bool PadToken(CToken::TTokenType previous, AChar last, CToken::TTokenType next,
                AChar first) const;

  // The output so far: bytes in the stream's encoding, or as text.
  std::string OutputBytes() const;
  // The output bytes, moved out: the output is empty afterwards.
  std::string TakeOutputBytes();
  AString OutputText() const;
  std::size_t OutputSize() const { return mUtf8 ? mBytes.size() : mWide.size(); }
  void ClearOutput();

 private:
  // The helpers below are internal to the library (not exported), so that calls among them bind
  // directly and can be inlined; CToken_istream reads through the same fast path.
  friend class CToken_istream;
  WYCORE_NO_EXPORT bool SkipWhiteSpaceImpl();
  WYCORE_NO_EXPORT void GetTokenImpl(CToken& out);
  WYCORE_NO_EXPORT AChar Peek(std::size_t ahead = 0);
  WYCORE_NO_EXPORT void Advance();
  // Source-fed input: more text (false at the end), a held character at the position, and the
  // whole current line held.
  WYCORE_NO_EXPORT bool MoreInput();
  WYCORE_NO_EXPORT bool HaveInput();
  WYCORE_NO_EXPORT void EnsureLine();
  // Moves over `count` characters that hold no line end.
  void Consume(std::size_t count) noexcept {
    mState.position += count;
    mState.column += static_cast<int>(count);
  }
  // The classes kAlpha .. kUnderscore are exactly the characters that continue a keyword.
  static bool IsKeywordClass(CBase_grammar::TCharClass cls) noexcept {
    return (cls >= CBase_grammar::kAlpha && cls <= CBase_grammar::kUnderscore);
  }
  // Stores a text token, sharing the buffer of an earlier token with the same kind and text.
  WYCORE_NO_EXPORT void AssignText(CToken& out, CToken::TTokenType kind, std::u16string_view text);
  WYCORE_NO_EXPORT bool LexCommonToken(bool special, CToken& out);
  WYCORE_NO_EXPORT bool LexPlainNumber(std::size_t begin, CToken& out);
  WYCORE_NO_EXPORT bool LexEscapedText(CBase_grammar::TCharClass quote, std::size_t begin,
                                       std::size_t escape, CToken& out);
  WYCORE_NO_EXPORT CToken LexToken(bool special);
  WYCORE_NO_EXPORT CToken FinishToken(CToken_grammar::TState state, std::u16string_view text);
  WYCORE_NO_EXPORT CToken MakeNumber(CToken::TTokenType kind, CToken_grammar::TState state,
                                     std::u16string_view text);
  WYCORE_NO_EXPORT bool MatchSpecialFloat(CToken& out);
  WYCORE_NO_EXPORT bool MatchCDataEnd();
  WYCORE_NO_EXPORT void RecoverFromFalseEndOfTextBlock(const StreamState& dollar);
  WYCORE_NO_EXPORT void RecoverFromFalseSpecialFloatKeyword(const StreamState& start);

  void Emit(AChar c) {
    if (mUtf8 && c < 0x80 && mPendingHigh == 0) {
      mBytes.push_back(static_cast<char>(c));
    } else {
      EmitSlow(c);
    }
  }
  WYCORE_NO_EXPORT void EmitSlow(AChar c);
  WYCORE_NO_EXPORT void EmitText(std::u16string_view text);
  WYCORE_NO_EXPORT void EmitAscii(const char* text, std::size_t length);
  WYCORE_NO_EXPORT void BeginToken(CToken::TTokenType kind, AChar first);
  WYCORE_NO_EXPORT void EndToken(CToken::TTokenType kind, AChar last);
  WYCORE_NO_EXPORT void PutNumberText(const char* text, std::size_t length);

  CToken_grammar mGrammar;

  // Input.
  AString mInput;
  std::function<bool(AString&)> mSource;  // more input; empty when all of it is in mInput
  std::size_t mBase = 0;                  // the position of mInput[0]
  std::size_t mKeepFrom = 0;              // text before this may be let go
  std::size_t mTokenStart = 0;            // where the last token started
  std::size_t mLineEnd = 0;               // one past the last LF held
  StreamState mState;
  AString mText;  // the text of the token being collected
  int mTokenLine = 1;
  int mTokenColumn = 1;
  bool mUnterminated = false;
  bool mSuppressSpecial = false;
  bool mParseSpecialFloats = true;
  bool mRetainNumberText = false;
  // Recent texts, so that a name or value that recurs shares one buffer (see AssignText).
  static constexpr std::size_t kTextCacheSize = 256;
  CToken mTextCache[kTextCacheSize];
  std::uint8_t mTextCacheUses[kTextCacheSize] = {};  // shares handed out since the buffer was made

  // Output.
  i18n::TEncoding mEncoding = i18n::kUtf8;
  bool mUtf8 = true;
  std::string mBytes;      // UTF-8 output
  AString mWide;           // output in another encoding, converted when taken
  AChar mPendingHigh = 0;  // a high surrogate waiting for its low half
  int mPrecision = 0;
  int mWidth = 0;
  bool mHex = false;
  bool mQuoting = true;
  std::vector<int> mIndentSteps;
  AString mIndentation;
  AChar mFill = u'\t';
  bool mAtLineStart = true;
  bool mNeedNewLine = false;  // after a comment
  CToken::TTokenType mLastKind = CToken::Eol;
  AChar mLastChar = 0;
};

// The text token input stream: significant tokens of a text, for the block reader.
class WYCORE_API CToken_istream : public CAbstract_istream {
 public:
  CToken_istream();
  explicit CToken_istream(AString text);

  CToken_textstreambuf& Buffer() { return mBuf; }
  const CToken_textstreambuf& Buffer() const { return mBuf; }
  // Starts over on a new text (failure state and open blocks are reset).
  void SetInput(AString text);
  // Starts over on text read in pieces (see CToken_textstreambuf::SetInputSource).
  void SetInputSource(std::function<bool(AString&)> source);

  const CToken& Token() const override { return mCurrent; }
  void NextToken() override;
  bool TokenUnterminated() const override { return mUnterminated; }
  int Line() const override { return mLine; }
  int Column() const override { return mColumn; }

  bool IsBeginBlock() const override;
  bool IsEndBlock() const override;
  bool OpenBlock(CToken& name) override;
  bool CloseBlock(const CToken& name) override;
  void SkipToResumePoint() override;
  void SkipBlock() override;

  // A position to come back to: the buffer's position and the current token.
  struct Mark {
    CToken_textstreambuf::StreamState state;
    CToken current;
    int line = 1;
    int column = 1;
    bool unterminated = false;
  };
  Mark SaveStreamState() const;
  void RestoreStreamState(const Mark& mark);

 private:
  CToken_textstreambuf mBuf;
  CToken mCurrent;
  int mLine = 1;
  int mColumn = 1;
  bool mUnterminated = false;
  struct OpenName {
    CToken name;  // the name as OpenBlock handed it out
    bool named;   // false when $begin had no name: any closing name is taken
  };
  std::vector<OpenName> mOpenBlocks;  // the blocks opened and not yet closed
};

// The text token output stream: the block tree's layout in text.
//
//   $begin 'Name'
//   	Key=Value
//   	Vec[3: 1, 2, 3]
//   	Func(a, Key=b)
//   $end 'Name'
class WYCORE_API CToken_ostream : public CAbstract_ostream {
 public:
  CToken_ostream() = default;

  CToken_textstreambuf& Buffer() { return mBuf; }
  const CToken_textstreambuf& Buffer() const { return mBuf; }

  CAbstract_ostream& WriteShort(std::int16_t value) override;
  CAbstract_ostream& WriteInt(std::int32_t value) override;
  CAbstract_ostream& WriteUnsignedShort(std::uint16_t value) override;
  CAbstract_ostream& WriteUnsignedInt(std::uint32_t value) override;
  CAbstract_ostream& WriteToken(const CToken& token) override;
  bool Hex() const override { return mBuf.Hex(); }
  bool Hex(bool on) override { return mBuf.Hex(on); }

  void BeginBlock(const CToken& name) override;
  void EndBlock(const CToken& name) override;
  void NewLine() override { mBuf.NewLine(); }
  void WriteSymbol(AChar symbol) override { mBuf.PutSymbol(symbol); }
  void WriteBlank() override { mBuf.PutBlank(); }
  bool CompactVectors() const override { return mCompactVectors; }
  // Off by default: vectors are written with ", " between their tokens.
  void SetCompactVectors(bool on) { mCompactVectors = on; }

  std::string Bytes() const { return mBuf.OutputBytes(); }
  AString Text() const { return mBuf.OutputText(); }

 private:
  CToken_textstreambuf mBuf;
  bool mCompactVectors = false;
};

// The text of a token as a name or for messages: the token's text, or for a number without
// kept text its shortest printed form, or "true"/"false".
WYCORE_API AString TokenNameText(const CToken& token);

}  // namespace io
