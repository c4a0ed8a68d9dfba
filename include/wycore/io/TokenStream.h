// SPDX-License-Identifier: Apache-2.0
//
// TokenStream.h - the abstract token input and output streams.
//
// A token output stream decides how each token kind is printed: CToken::write hands integer kinds
// to the typed writers and everything else to the general token formatter. Above single tokens
// the block tree asks the stream for its structure (begin and end of a block, line ends,
// punctuation); the defaults express that structure as plain tokens, so a stream that only
// records tokens needs nothing beyond the six token members. The text stream (TextStream.h)
// implements both interfaces; a binary stream could implement them too.
//
// The input side hands the block reader one significant token at a time (white space and
// comments never reach it; line ends do, because the reader resynchronises at them), answers
// where that token stands (line and column, for error reports), and keeps the failure state and
// the nesting depth of the structure being read. The depth is bounded so that hostile input
// cannot recurse the reader off the stack.
//
// Threading: a stream is used by one thread at a time.
#pragma once

#include <cstdint>
#include <vector>

#include "wycore/Export.h"
#include "wycore/io/AString.h"

namespace io {

class CToken;

class WYCORE_API CAbstract_ostream {
 public:
  virtual ~CAbstract_ostream() = default;

  // Typed writers for the integer kinds whose value lies in the kind's range.
  virtual CAbstract_ostream& WriteShort(std::int16_t value) = 0;
  virtual CAbstract_ostream& WriteInt(std::int32_t value) = 0;
  virtual CAbstract_ostream& WriteUnsignedShort(std::uint16_t value) = 0;
  virtual CAbstract_ostream& WriteUnsignedInt(std::uint32_t value) = 0;
  // The general token formatter: every other kind, and integers outside their kind's range.
  virtual CAbstract_ostream& WriteToken(const CToken& token) = 0;

  // Hexadecimal output of integers; the setter returns the previous mode.
  virtual bool Hex() const = 0;
  virtual bool Hex(bool on) = 0;

  // ---- Structure, used by the block tree ------------------------------------------------
  //
  // The defaults write the structure as tokens: the keyword $begin (or $end) and the name, a
  // symbol token, an Eol token. The text stream overrides them to lay the text out.

  // Opens a block named `name` (its contents follow, one item per line).
  virtual void BeginBlock(const CToken& name);
  // Closes the block opened with `name`.
  virtual void EndBlock(const CToken& name);
  // Ends the current line.
  virtual void NewLine();
  // Writes one punctuation character ('=', '[', ']', ':', ',', '(', ')').
  virtual void WriteSymbol(AChar symbol);
  // A blank that only serves the reader's eye; streams without layout ignore it.
  virtual void WriteBlank() {}
  // True when vectors are to be written without the comma and blank between their tokens.
  virtual bool CompactVectors() const { return false; }
  // True when the stream could not write (its sink failed).
  virtual bool Fail() const { return false; }
};

class WYCORE_API CAbstract_istream {
 public:
  // The default bound on nested blocks and functions while reading.
  static constexpr int kDefaultMaxDepth = 1000;

  virtual ~CAbstract_istream() = default;

  // ---- Tokens ----------------------------------------------------------------------------

  // The current significant token: never WhiteSpace or Comment; Eof at the end of the input.
  virtual const CToken& Token() const = 0;
  // Moves to the next significant token.
  virtual void NextToken() = 0;
  // True when the current token is a text whose closing quote (or $end_cdata$) is missing.
  virtual bool TokenUnterminated() const { return false; }
  // Where the current token starts: 1-based line and column (columns count UTF-16 units).
  virtual int Line() const = 0;
  virtual int Column() const = 0;

  // Skips line ends: the reader's way over blank lines between items.
  void SkipEols();

  // ---- Blocks ----------------------------------------------------------------------------

  // True when the current token opens a block (the keyword $begin).
  virtual bool IsBeginBlock() const = 0;
  // True when the current block can go no further: the keyword $end, the end of the input, or
  // a failed stream.
  virtual bool IsEndBlock() const = 0;
  // Consumes the opening of a block and hands back its name as a SingleQuotedText token. A
  // missing name fails the stream (the block is still open, with an empty name).
  virtual bool OpenBlock(CToken& name) = 0;
  // Consumes the closing of the block named `name`. Fails the stream when the end of the input
  // comes first, when the closing name differs, or when it has no name. A closing line that
  // belongs to an enclosing block is left in place for that block.
  virtual bool CloseBlock(const CToken& name) = 0;
  // After a bad item: skips the rest of the current line (through its line end), so that
  // reading resumes with the next line.
  virtual void SkipToResumePoint() = 0;
  // With the current token at $begin: skips that whole block, nested blocks included, through
  // its closing name, without recursion.
  virtual void SkipBlock() = 0;

  // ---- Failure state ---------------------------------------------------------------------

  bool Fail() const { return mFail; }
  const AString& FailMessage() const { return mFailMessage; }
  // Fails the stream; the first message since the last ClearError is kept.
  void SetFail(const AString& message);
  void ClearError();

  // Throws io::XStreamioError with `code` and `message` at the current token's position.
  [[noreturn]] void Raise(int code, const AString& message) const;

  // ---- Nesting depth ---------------------------------------------------------------------

  // Enters one level of nesting; false (and no level entered) when that would exceed MaxDepth.
  bool EnterNesting();
  void LeaveNesting();
  int Depth() const { return mDepth; }
  int MaxDepth() const { return mMaxDepth; }
  void SetMaxDepth(int depth) { mMaxDepth = depth < 1 ? 1 : depth; }

 private:
  bool mFail = false;
  AString mFailMessage;
  int mDepth = 0;
  int mMaxDepth = kDefaultMaxDepth;
};

// The token rules of the block reader. A name is a keyword, a number, a boolean, or a quoted
// text or text block with text. A value is any of these, and an empty text as well.
WYCORE_API bool CanStandAsName(const CToken& token) noexcept;
WYCORE_API bool CanStandAsValue(const CToken& token) noexcept;

}  // namespace io
