// SPDX-License-Identifier: Apache-2.0
//
// TextStream.cpp - the grammar tables, the lexer and printer of the text form, and the text token
// streams.
//
// The lexer's rules are one loop over the transition table (LexToken): a character whose
// transition is kStop ends the token before it; otherwise it is consumed and the new state's
// action decides what becomes of it. Two rules need more than one character of look-ahead (the
// end word of a text block and the special float words); they consume optimistically and give
// the characters back when the word turns out not to be there.
//
// In front of that loop sit fast paths for the shapes files are made of (LexCommonToken: words,
// quoted texts on one line, plain numbers, blanks, symbols). Each reads its run in one pass with
// the same character classes, so that a grammar with other comment characters is followed just
// the same, and hands back to the loop whatever it does not cover; the token comes out equal,
// with the same line, column and unterminated flag.
//
// Input fed by a source (SetInputSource) is held from the previous token on; the fast paths read
// within a line, and EnsureLine makes sure that the whole current line is held before a token.
#include "wycore/io/TextStream.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <system_error>
#include <utility>

#include "LocalCalls.h"
#include "NumberText.h"
#include "wycore/core/Check.h"
#include "wycore/core/Utf.h"

namespace io {

namespace {

using G = CToken_grammar;

bool IsControl(AChar c) noexcept { return c < 0x20 || c == 0x7f || (c >= 0x80 && c < 0xa0); }

bool IsHighSurrogate(AChar c) noexcept { return c >= 0xd800 && c <= 0xdbff; }
bool IsLowSurrogate(AChar c) noexcept { return c >= 0xdc00 && c <= 0xdfff; }

// A keyword token with exactly this text.
bool IsKeywordText(const CToken& token, std::u16string_view text) noexcept {
  return token.IsKeyword() && token.ACharLen() == text.size() &&
         std::memcmp(token.ACharPtr(), text.data(), text.size() * sizeof(AChar)) == 0;
}

bool IsBlockWord(std::u16string_view text) noexcept {
  return text == std::u16string_view(u"$begin") || text == std::u16string_view(u"$end");
}

// Integral and within the range where a long long holds it exactly.
bool FitsLongLong(double v) noexcept {
  return std::isfinite(v) && v == std::trunc(v) && v >= -9.2233720368547758e18 &&
         v < 9.2233720368547758e18;
}

// The shortest text of `v` that reads back to the same double, without any Double marker.
std::size_t ShortestDouble(double v, char* buf, std::size_t size) {
  const auto result = std::to_chars(buf, buf + size, v);
  return static_cast<std::size_t>(result.ptr - buf);
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// CBase_grammar

CBase_grammar::CBase_grammar() {
  for (int c = 0; c < 256; ++c) {
    TCharClass k = kSymbol;
    if (c == 0 || c == '\n') {
      k = kEol;
    } else if (c == '\r') {
      k = kCr;
    } else if (c == ' ' || IsControl(static_cast<AChar>(c)) || c == 0xa0) {
      k = kSpace;
    } else if (c == 'e' || c == 'E') {
      k = kExp;
    } else if ((c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F')) {
      k = kHexLetter;
    } else if (c == 'x' || c == 'X') {
      k = kX;
    } else if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z')) {
      k = kAlpha;
    } else if (c == '0') {
      k = kZero;
    } else if (c >= '1' && c <= '9') {
      k = kDigit;
    } else if (c == '$') {
      k = kDollar;
    } else if (c == '_') {
      k = kUnderscore;
    } else if (c == '"') {
      k = kDQuote;
    } else if (c == '\'') {
      k = kSQuote;
    } else if (c == '\\') {
      k = kBackslash;
    } else if (c == '.') {
      k = kDot;
    } else if (c == '+') {
      k = kPlus;
    } else if (c == '-') {
      k = kMinus;
    } else if (c == '#') {
      k = kHash;
    } else if ((c >= 0xc0 && c != 0xd7 && c != 0xf7) || c == 0xaa || c == 0xb5 || c == 0xba) {
      k = kAlpha;  // the letters of Latin-1
    }
    mClasses[c] = k;
    mPlainClasses[c] = k;
  }
}

bool CBase_grammar::CommentCharSet(AChar c) {
  if (c >= 256) return false;
  mClasses[c] = kComment;
  return true;
}

void CBase_grammar::CommentCharClear(AChar c) {
  if (c < 256) mClasses[c] = mPlainClasses[c];
}

void CBase_grammar::CommentCharClear() {
  for (int c = 0; c < 256; ++c) mClasses[c] = mPlainClasses[c];
}

bool CBase_grammar::IsKeywordStart(AChar c) const noexcept {
  const TCharClass k = ClassOf(c);
  return k == kAlpha || k == kExp || k == kHexLetter || k == kX || k == kDollar;
}

bool CBase_grammar::IsKeywordChar(AChar c) const noexcept {
  const TCharClass k = ClassOf(c);
  return k == kAlpha || k == kExp || k == kHexLetter || k == kX || k == kDollar ||
         k == kUnderscore || k == kZero || k == kDigit;
}

// ---------------------------------------------------------------------------------------------
// CToken_grammar

CToken_grammar::CToken_grammar() {
  for (auto& row : mTransitions) {
    for (auto& next : row) next = kStop;
  }
  for (auto& action : mActions) action = kAppend;
  for (auto& kind : mKinds) kind = CToken::Null;

  auto set = [this](TState from, std::initializer_list<TCharClass> classes, TState to) {
    for (TCharClass c : classes) mTransitions[from][c] = to;
  };
  auto setAll = [this](TState from, TState to) {
    for (int c = 0; c < kClassCount; ++c) mTransitions[from][c] = to;
  };
  const std::initializer_list<TCharClass> letters = {kAlpha, kExp, kHexLetter, kX};
  const std::initializer_list<TCharClass> digits = {kZero, kDigit};
  const std::initializer_list<TCharClass> hexDigits = {kZero, kDigit, kHexLetter, kExp};

  // Start: the first character chooses the rule.
  set(kStart, {kEol}, kEolState);
  set(kStart, {kCr}, kCrState);
  set(kStart, {kSpace}, kSpaceState);
  set(kStart, {kComment}, kCommentState);
  set(kStart, letters, kKeyword);
  set(kStart, {kDollar}, kKeyword);
  set(kStart, {kPlus, kMinus}, kSign);
  set(kStart, {kDot}, kDotState);
  set(kStart, {kZero}, kZeroState);
  set(kStart, {kDigit}, kIntState);
  set(kStart, {kSQuote}, kSqOpen);
  set(kStart, {kDQuote}, kDqOpen);
  set(kStart, {kHash}, kSpecial);
  set(kStart, {kUnderscore, kBackslash, kSymbol}, kSymbolState);
  set(kStart, {kOther}, kErrorState);

  // Line ends, white space, comments.
  set(kCrState, {kEol}, kEolState);
  set(kSpaceState, {kSpace}, kSpaceState);
  setAll(kCommentState, kCommentState);
  set(kCommentState, {kEol, kCr}, kStop);

  // Keywords.
  set(kKeyword, letters, kKeyword);
  set(kKeyword, digits, kKeyword);
  set(kKeyword, {kDollar, kUnderscore}, kKeyword);

  // Numbers, with their deliberate edge kinds: a sign or a point alone is a symbol, "-." too;
  // "1e" and "1e+" stay Doubles; "0x" is a Short.
  set(kSign, digits, kIntState);
  set(kSign, {kDot}, kSignDot);
  set(kSign, {kHash}, kSpecial);
  set(kSignDot, digits, kFraction);
  set(kDotState, digits, kFraction);
  set(kZeroState, digits, kIntState);
  set(kZeroState, {kX}, kHexPrefix);
  set(kZeroState, {kDot}, kPoint);
  set(kZeroState, {kExp}, kExponent);
  set(kIntState, digits, kIntState);
  set(kIntState, {kDot}, kPoint);
  set(kIntState, {kExp}, kExponent);
  set(kPoint, digits, kFraction);
  set(kPoint, {kExp}, kExponent);
  set(kFraction, digits, kFraction);
  set(kFraction, {kExp}, kExponent);
  set(kExponent, {kPlus, kMinus}, kExponentSign);
  set(kExponent, digits, kExponentDigits);
  set(kExponentSign, digits, kExponentDigits);
  set(kExponentDigits, digits, kExponentDigits);
  set(kHexPrefix, hexDigits, kHexDigits);
  set(kHexDigits, hexDigits, kHexDigits);

  // Quoted texts. The quotes and the escaping backslash are dropped by their states' actions;
  // the opening quote has a state of its own for that reason.
  auto quoted = [&](TState open, TState text, TState escape, TState escaped, TState escapedCr,
                    TState end, TCharClass quote) {
    for (TState s : {open, text, escaped, escapedCr}) {
      setAll(s, text);
      set(s, {kEol, kCr}, kStop);  // a line end inside quotes ends the text unterminated
      set(s, {kBackslash}, escape);
      set(s, {quote}, end);
    }
    set(escapedCr, {kEol}, text);  // backslash CR LF: the whole line end belongs to the text
    setAll(escape, escaped);
    set(escape, {kCr}, escapedCr);
    mActions[open] = kDrop;
    mActions[escape] = kDrop;
    mActions[escaped] = kEscape;
    mActions[end] = kDrop;
  };
  quoted(kSqOpen, kSqText, kSqEscape, kSqEscaped, kSqEscapedCr, kSqEnd, kSQuote);
  quoted(kDqOpen, kDqText, kDqEscape, kDqEscaped, kDqEscapedCr, kDqEnd, kDQuote);

  // Text blocks: everything up to $end_cdata$; a '$' that does not start it is text.
  setAll(kCData, kCData);
  set(kCData, {kDollar}, kCDataDollar);
  setAll(kCDataDollar, kCData);
  set(kCDataDollar, {kDollar}, kCDataDollar);

  mActions[kKeyword] = kKeywordChar;
  mActions[kCDataDollar] = kCDataDollarChar;
  mActions[kSpecial] = kSpecialWord;
  mActions[kErrorState] = kErrorChar;

  mKinds[kEolState] = CToken::Eol;
  mKinds[kCrState] = CToken::Eol;
  mKinds[kSpaceState] = CToken::WhiteSpace;
  mKinds[kCommentState] = CToken::Comment;
  mKinds[kKeyword] = CToken::Keyword;
  for (TState s : {kSign, kSignDot, kDotState, kSymbolState}) mKinds[s] = CToken::Symbol;
  mKinds[kZeroState] = CToken::Int;
  mKinds[kIntState] = CToken::Int;
  for (TState s : {kPoint, kFraction, kExponent, kExponentSign, kExponentDigits, kSpecial}) {
    mKinds[s] = CToken::Double;
  }
  mKinds[kHexPrefix] = CToken::Short;
  mKinds[kHexDigits] = CToken::Hex;
  for (TState s : {kSqOpen, kSqText, kSqEscape, kSqEscaped, kSqEscapedCr, kSqEnd}) {
    mKinds[s] = CToken::SingleQuotedText;
  }
  for (TState s : {kDqOpen, kDqText, kDqEscape, kDqEscaped, kDqEscapedCr, kDqEnd}) {
    mKinds[s] = CToken::DoubleQuotedText;
  }
  for (TState s : {kCData, kCDataDollar, kCDataEnd}) mKinds[s] = CToken::CData;
  mKinds[kErrorState] = CToken::Error;
}

AChar CToken_grammar::Unescape(AChar c) noexcept {
  switch (c) {
    case u'0':
      return 0;
    case u'a':
      return 7;
    case u'b':
      return 8;
    case u'f':
      return 12;
    case u'n':
      return 10;
    case u'r':
      return 13;
    case u't':
      return 9;
    case u'v':
      return 11;
    default:
      return c;
  }
}

bool CToken_grammar::IsPlainKeyword(std::u16string_view text) const noexcept {
  if (text.empty() || !IsKeywordStart(text[0])) return false;
  for (AChar c : text) {
    if (!IsKeywordChar(c)) return false;
  }
  if (text == std::u16string_view(mTrueWord) || text == std::u16string_view(mFalseWord)) {
    return false;
  }
  return text.substr(0, mCDataBegin.size()) != std::u16string_view(mCDataBegin);
}

// ---------------------------------------------------------------------------------------------
// CToken_textstreambuf: input

CToken_textstreambuf::CToken_textstreambuf() = default;

CToken_textstreambuf::CToken_textstreambuf(AString input) : mInput(std::move(input)) {}

void CToken_textstreambuf::SetInput(AString input) {
  mInput = std::move(input);
  mSource = nullptr;
  mBase = 0;
  mKeepFrom = 0;
  mTokenStart = 0;
  mLineEnd = 0;
  mState = CreateInitialStreamState();
  mUnterminated = false;
  mSuppressSpecial = false;
  mTokenLine = 1;
  mTokenColumn = 1;
}

void CToken_textstreambuf::SetInputSource(std::function<bool(AString&)> source) {
  SetInput(AString());
  mSource = std::move(source);
}

void CToken_textstreambuf::RestoreStreamState(const StreamState& state) {
  mState = state;
  // Text that a source-fed stream has already let go cannot be returned to.
  if (!WY_CHECK(mState.position >= mBase)) mState.position = mBase;
  if (mState.position > mBase + mInput.size()) mState.position = mBase + mInput.size();
}

bool CToken_textstreambuf::MoreInput() {
  if (!mSource) return false;
  // Let go of the text before the previous token when it is most of what is held, so that the
  // text held stays about one piece from the source (or one long line) whatever the file's size.
  const std::size_t keep = std::min(mKeepFrom, mState.position) - mBase;
  if (keep > 0 && keep >= mInput.size() / 2) {
    mInput.erase(0, keep);
    mBase += keep;
  }
  const std::size_t before = mInput.size();
  if (!mSource(mInput)) {
    mSource = nullptr;
    return mInput.size() > before;
  }
  return true;
}

void CToken_textstreambuf::EnsureLine() {
  // The fast paths of the lexer read within one line without asking for more input: make sure
  // that the text held reaches the end of the current line, or the end of the whole input.
  // mLineEnd is one past the last LF held, so every position before it has its line end held.
  while (mSource && mState.position >= mLineEnd) {
    const std::size_t searched = mBase + mInput.size();
    if (!MoreInput()) return;
    const std::u16string_view added = std::u16string_view(mInput).substr(searched - mBase);
    const std::size_t found = added.rfind(u'\n');
    if (found != std::u16string_view::npos) mLineEnd = searched + found + 1;
  }
}

AChar CToken_textstreambuf::Peek(std::size_t ahead) {
  const std::size_t at = mState.position - mBase + ahead;
  while (at >= mInput.size()) {
    if (!MoreInput()) return 0;
  }
  return mInput[at];
}

bool CToken_textstreambuf::HaveInput() {
  return mState.position - mBase < mInput.size() || MoreInput();
}

void CToken_textstreambuf::Advance() {
  const AChar c = mInput[mState.position++ - mBase];
  if (c == u'\n' || (c == u'\r' && Peek() != u'\n')) {
    ++mState.line;
    mState.column = 1;
  } else {
    ++mState.column;
  }
}

bool CToken_textstreambuf::SkipWhiteSpace() { return SkipWhiteSpaceImpl(); }

bool CToken_textstreambuf::SkipWhiteSpaceImpl() {
  if (mSource && mState.position >= mLineEnd) EnsureLine();
  const std::size_t start = mState.position;
  for (;;) {
    const std::size_t at = mState.position - mBase;
    if (at >= mInput.size()) break;  // the whole line is held: this is the end of the input
    const auto cls = mGrammar.ClassOf(mInput[at]);
    if (cls == CBase_grammar::kSpace) {
      // White space never holds a line end (LF, CR and NUL have classes of their own).
      ++mState.position;
      ++mState.column;
    } else if (cls == CBase_grammar::kComment) {
      while (HaveInput()) {
        const auto k = mGrammar.ClassOf(mInput[mState.position - mBase]);
        if (k == CBase_grammar::kEol || k == CBase_grammar::kCr) break;
        Advance();
      }
      if (mSource && mState.position >= mLineEnd) EnsureLine();
    } else {
      break;
    }
  }
  return mState.position != start;
}

CToken CToken_textstreambuf::GetToken() {
  CToken token;
  GetToken(token);
  return token;
}

void CToken_textstreambuf::GetToken(CToken& out) { GetTokenImpl(out); }

void CToken_textstreambuf::GetTokenImpl(CToken& out) {
  if (mSource) {
    mKeepFrom = mTokenStart;  // a reader may still go back to the previous token's end
    mTokenStart = mState.position;
    if (mState.position >= mLineEnd) EnsureLine();
  }
  mUnterminated = false;
  mTokenLine = mState.line;
  mTokenColumn = mState.column;
  const bool special = mParseSpecialFloats && !mSuppressSpecial;
  mSuppressSpecial = false;
  if (!HaveInput()) {
    out = CToken(CToken::Eof);
  } else if (!LexCommonToken(special, out)) {
    out = LexToken(special);
  }
}

void CToken_textstreambuf::AssignText(CToken& out, CToken::TTokenType kind,
                                      std::u16string_view text) {
  // Storage files repeat their names and many of their values thousands of times. A recurring
  // text shares the buffer of its last occurrence (copies of a token share their text anyway),
  // which saves an allocation per token and most of the memory the texts of a tree take. Texts
  // of up to 3 characters are inline, and long ones seldom recur.
  const std::size_t n = text.size();
  if (n <= 3 || n > 64) {
    out.Assign(kind, text, 0.0);
    return;
  }
  // Two-way sets with the most recent entry first, so that two texts that alternate in a file
  // do not keep evicting each other.
  // A buffer's share count stops at 255, after which every copy allocates; so a cached buffer
  // is handed out a bounded number of times (each use usually ends as one share in the tree,
  // and the reader holds a few more while it works) before a fresh one takes its place.
  constexpr std::uint8_t kMaxUses = 200;
  // The hash takes the length and the characters at both ends, in constant time.
  std::uint64_t ends = 0;
  std::memcpy(&ends, text.data(), 8);
  std::uint64_t tail = 0;
  std::memcpy(&tail, text.data() + n - 4, 8);
  const std::uint64_t hash =
      ((ends * 0x9e3779b97f4a7c15ull) ^ (tail * 0xc2b2ae3d27d4eb4full) ^ n) >> 32;
  const std::size_t first = (hash % (kTextCacheSize / 2)) * 2;
  CToken* const set = &mTextCache[first];
  std::uint8_t* const uses = &mTextCacheUses[first];
  for (int way = 0; way < 2; ++way) {
    CToken& cached = set[way];
    if (cached.Type() == kind && cached.ACharLen() == n &&
        std::memcmp(cached.ACharPtr(), text.data(), n * sizeof(AChar)) == 0) {
      if (++uses[way] >= kMaxUses) {
        out.Assign(kind, text, 0.0);
        cached = out;
        uses[way] = 0;
      } else {
        out = cached;
      }
      if (way == 1) {
        std::swap(set[0], set[1]);
        std::swap(uses[0], uses[1]);
      }
      return;
    }
  }
  out.Assign(kind, text, 0.0);
  set[1] = std::move(set[0]);
  uses[1] = uses[0];
  set[0] = out;
  uses[0] = 0;
}

bool CToken_textstreambuf::LexCommonToken(bool special, CToken& out) {
  // The shapes that make up almost every file, read in one pass over the characters without
  // collecting them: each case does exactly what the transition table does for its first
  // character, and hands anything unusual (escapes, line ends inside quotes, text blocks,
  // special float words) to the general loop, which starts again at the token's beginning.
  // None of these runs can hold a line end, so the column advances by the run's length.
  using B = CBase_grammar;
  const AChar* const data = mInput.data();
  const std::size_t size = mInput.size();
  const std::size_t begin = mState.position - mBase;
  const AChar first = data[begin];
  B::TCharClass cls = mGrammar.ClassOf(first);
  if (cls == B::kHash && !special) cls = B::kSymbol;
  switch (cls) {
    case B::kAlpha:
    case B::kExp:
    case B::kHexLetter:
    case B::kX:
    case B::kDollar: {
      std::size_t end = begin + 1;
      while (end < size && IsKeywordClass(mGrammar.ClassOf(data[end]))) ++end;
      const std::u16string_view text(data + begin, end - begin);
      const std::u16string_view cdata(mGrammar.CDataBegin());
      if (text.substr(0, cdata.size()) == cdata) return false;
      Consume(end - begin);
      if (text == std::u16string_view(mGrammar.TrueWord())) {
        out = CToken(CToken::True);
      } else if (text == std::u16string_view(mGrammar.FalseWord())) {
        out = CToken(CToken::False);
      } else {
        AssignText(out, CToken::Keyword, text);
      }
      return true;
    }
    case B::kSQuote:
    case B::kDQuote: {
      // '\n' and '\r' are line ends or comment characters, so the class tests see them all.
      std::size_t end = begin + 1;
      B::TCharClass k = B::kOther;
      for (; end < size; ++end) {
        k = mGrammar.ClassOf(data[end]);
        if (k == cls || k == B::kEol || k == B::kCr || k == B::kBackslash || k == B::kComment) {
          break;
        }
      }
      if (end == size || k != cls) {
        if (end == size || k != B::kBackslash) return false;  // unterminated, or a comment char
        return LexEscapedText(cls, begin, end, out);
      }
      AssignText(out, cls == B::kSQuote ? CToken::SingleQuotedText : CToken::DoubleQuotedText,
                 std::u16string_view(data + begin + 1, end - begin - 1));
      Consume(end + 1 - begin);
      return true;
    }
    case B::kZero:
    case B::kDigit:
    case B::kMinus:
      if (LexPlainNumber(begin, out)) return true;
      [[fallthrough]];
    case B::kPlus:
    case B::kDot: {
      G::TState state = G::kStart;
      std::size_t end = begin;
      while (end < size) {
        B::TCharClass k = mGrammar.ClassOf(data[end]);
        if (k == B::kHash && !special) k = B::kSymbol;
        const G::TState next = mGrammar.Next(state, k);
        if (next == G::kStop) break;
        if (next == G::kSpecial) return false;
        state = next;
        ++end;
      }
      Consume(end - begin);
      const std::u16string_view text(data + begin, end - begin);
      const CToken::TTokenType kind = mGrammar.Kind(state);
      double value = 0.0;
      if (kind == CToken::Int ||
          (kind == CToken::Double && state != G::kExponent && state != G::kExponentSign)) {
        if (detail::ParsePlainDecimal(text, value)) {
          out.Assign(kind, text, value, mRetainNumberText);
          return true;
        }
      }
      out = FinishToken(state, text);
      return true;
    }
    case B::kSymbol:
    case B::kUnderscore:
    case B::kBackslash:
      Consume(1);
      out = CToken(CToken::Symbol, first);
      return true;
    case B::kSpace: {
      std::size_t end = begin + 1;
      while (end < size && mGrammar.ClassOf(data[end]) == B::kSpace) ++end;
      Consume(end - begin);
      out.Assign(CToken::WhiteSpace, std::u16string_view(data + begin, end - begin), 0.0);
      return true;
    }
    case B::kEol:
      Advance();
      out = CToken(CToken::Eol);
      return true;
    case B::kOther:
    case B::kCr:
    case B::kHash:
    case B::kComment:
    case B::kClassCount:
      return false;
  }
  return false;
}

bool CToken_textstreambuf::LexPlainNumber(std::size_t begin, CToken& out) {
  // The numbers files are made of: an optional '-', digits, and a point with digits, read and
  // converted in one pass. The number states of the table accept exactly this, and end the token
  // at any character but a digit, a point (once), 'e' and, after a lone '0', 'x'; those two go
  // to the table-driven path. The value is exact when the digits fit a double and the point
  // moves them by at most 22 places: one correctly rounded division, as the C runtime reads it.
  using B = CBase_grammar;
  static constexpr double kPow10[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                      1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                      1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
  constexpr std::uint64_t kExactLimit = std::uint64_t{1} << 53;
  const AChar* const data = mInput.data();
  const std::size_t size = mInput.size();
  std::size_t p = begin;
  const bool negative = data[p] == u'-';
  if (negative) ++p;
  auto isDigit = [&](std::size_t at) {
    const B::TCharClass k = mGrammar.ClassOf(data[at]);
    return k == B::kZero || k == B::kDigit;
  };
  if (p == size || !isDigit(p)) return false;  // a sign without digits: the table decides
  std::uint64_t mantissa = 0;
  bool exact = true;
  for (; p < size && isDigit(p); ++p) {
    if (mantissa < kExactLimit) {
      mantissa = mantissa * 10 + static_cast<unsigned>(data[p] - u'0');
    } else {
      exact = false;
    }
  }
  int fraction = 0;
  bool point = false;
  if (p < size && mGrammar.ClassOf(data[p]) == B::kDot) {
    point = true;
    for (++p; p < size && isDigit(p); ++p) {
      ++fraction;
      if (mantissa < kExactLimit) {
        mantissa = mantissa * 10 + static_cast<unsigned>(data[p] - u'0');
      } else {
        exact = false;
      }
    }
  }
  if (p < size) {
    const B::TCharClass k = mGrammar.ClassOf(data[p]);
    if (k == B::kExp || k == B::kX) return false;
  }
  const std::u16string_view text(data + begin, p - begin);
  double value = 0.0;
  if (exact && mantissa <= kExactLimit && fraction <= 22) {
    value = static_cast<double>(mantissa) / kPow10[fraction];
    if (negative) value = -value;
  } else {
    // Too many digits for one exact operation: std::from_chars on an ASCII copy rounds correctly
    // too (a result beyond the double range, or a very long text, goes to the general path).
    char ascii[64];
    const std::size_t n = text.size();
    if (n > sizeof ascii) return false;
    for (std::size_t i = 0; i < n; ++i) ascii[i] = static_cast<char>(text[i]);
    const auto result = std::from_chars(ascii, ascii + n, value);
    if (result.ec != std::errc() || result.ptr != ascii + n) return false;
  }
  Consume(p - begin);
  out.Assign(point ? CToken::Double : CToken::Int, text, value, mRetainNumberText);
  return true;
}

bool CToken_textstreambuf::LexEscapedText(CBase_grammar::TCharClass quote, std::size_t begin,
                                          std::size_t escape, CToken& out) {
  // A quoted text with escapes on one line: what the quoted states of the table do, with the
  // text collected in mText. A line end, a comment character or the end of the input inside the
  // text leaves the token to the general loop (which starts again at `begin`).
  using B = CBase_grammar;
  const AChar* const data = mInput.data();
  const std::size_t size = mInput.size();
  mText.assign(data + begin + 1, escape - begin - 1);
  std::size_t i = escape;
  while (i < size) {
    const B::TCharClass k = mGrammar.ClassOf(data[i]);
    if (k == quote) {
      AssignText(out, quote == B::kSQuote ? CToken::SingleQuotedText : CToken::DoubleQuotedText,
                 mText);
      Consume(i + 1 - begin);
      return true;
    }
    if (k == B::kEol || k == B::kCr || k == B::kComment) return false;
    if (k == B::kBackslash) {
      if (++i == size) return false;
      const AChar c = data[i];
      const B::TCharClass escaped = mGrammar.ClassOf(c);
      if (escaped == B::kEol || escaped == B::kCr || escaped == B::kComment) return false;
      mText.push_back(G::Unescape(c));
    } else {
      mText.push_back(data[i]);
    }
    ++i;
  }
  return false;
}

CToken CToken_textstreambuf::LexToken(bool special) {
  const StreamState start = mState;
  mText.clear();
  G::TState state = G::kStart;
  while (HaveInput()) {
    const AChar c = mInput[mState.position - mBase];
    CBase_grammar::TCharClass cls = mGrammar.ClassOf(c);
    if (cls == CBase_grammar::kHash && !special) cls = CBase_grammar::kSymbol;
    const G::TState next = mGrammar.Next(state, cls);
    if (next == G::kStop) break;
    Advance();
    state = next;
    switch (mGrammar.Action(state)) {
      case G::kAppend:
        mText.push_back(c);
        break;
      case G::kDrop:
        break;
      case G::kEscape:
        mText.push_back(G::Unescape(c));
        break;
      case G::kKeywordChar:
        mText.push_back(c);
        if (c == u'$' && mText == mGrammar.CDataBegin()) {
          mText.clear();
          state = G::kCData;
        }
        break;
      case G::kCDataDollarChar:
        if (MatchCDataEnd()) {
          return FinishToken(G::kCDataEnd, mText);
        }
        mText.push_back(c);
        state = G::kCData;
        break;
      case G::kSpecialWord: {
        CToken word;
        if (MatchSpecialFloat(word)) return word;
        RecoverFromFalseSpecialFloatKeyword(start);
        return GetToken();
      }
      case G::kErrorChar:
        mText.push_back(c);
        WY_CHECK(!"unknown character in the token stream");
        break;
    }
    if (state == G::kSqEnd || state == G::kDqEnd) break;
  }
  return FinishToken(state, mText);
}

bool CToken_textstreambuf::MatchCDataEnd() {
  // Called with the '$' consumed. Consume the rest of the end word while it matches.
  const StreamState dollar = mState;
  const std::u16string_view rest = std::u16string_view(mGrammar.CDataEnd()).substr(1);
  for (AChar expected : rest) {
    if (!HaveInput() || mInput[mState.position - mBase] != expected) {
      RecoverFromFalseEndOfTextBlock(dollar);
      return false;
    }
    Advance();
  }
  return true;
}

void CToken_textstreambuf::RecoverFromFalseEndOfTextBlock(const StreamState& dollar) {
  // Give back what was taken for the end word; the '$' itself stays text.
  mState = dollar;
}

bool CToken_textstreambuf::MatchSpecialFloat(CToken& out) {
  // Called with the '#' consumed; mText holds the sign, if any.
  for (const AString* word : {&mGrammar.InfWord(), &mGrammar.NanWord()}) {
    const std::u16string_view rest = std::u16string_view(*word).substr(1);
    bool match = true;
    for (std::size_t i = 0; i < rest.size() && match; ++i) match = Peek(i) == rest[i];
    if (!match || mGrammar.IsKeywordChar(Peek(rest.size()))) continue;
    for (std::size_t i = 0; i < rest.size(); ++i) Advance();
    double value = word == &mGrammar.InfWord() ? HUGE_VAL : std::nan("");
    if (!mText.empty() && mText[0] == u'-') value = -value;
    out.SetType(CToken::Double, mText + *word, value, mRetainNumberText);
    return true;
  }
  return false;
}

void CToken_textstreambuf::RecoverFromFalseSpecialFloatKeyword(const StreamState& start) {
  // Not a special word after all: go back to the token's start and read it again with '#' as
  // an ordinary character.
  mState = start;
  mSuppressSpecial = true;
}

CToken CToken_textstreambuf::FinishToken(G::TState state, std::u16string_view text) {
  switch (state) {
    case G::kSqOpen:
    case G::kSqText:
    case G::kSqEscape:
    case G::kSqEscaped:
    case G::kSqEscapedCr:
    case G::kDqOpen:
    case G::kDqText:
    case G::kDqEscape:
    case G::kDqEscaped:
    case G::kDqEscapedCr:
    case G::kCData:
    case G::kCDataDollar:
      mUnterminated = true;
      break;
    default:
      break;
  }
  const CToken::TTokenType kind = mGrammar.Kind(state);
  CToken token;
  switch (kind) {
    case CToken::Keyword:
      if (text == std::u16string_view(mGrammar.TrueWord())) return CToken(CToken::True);
      if (text == std::u16string_view(mGrammar.FalseWord())) return CToken(CToken::False);
      token.Assign(CToken::Keyword, text, 0.0);
      return token;
    case CToken::Short:
    case CToken::Int:
    case CToken::Double:
    case CToken::Hex:
      return MakeNumber(kind, state, text);
    case CToken::Symbol:
      if (text.size() == 1) return CToken(CToken::Symbol, text[0]);
      token.Assign(CToken::Symbol, text, 0.0);
      return token;
    case CToken::Eol:
      return CToken(CToken::Eol);
    case CToken::Error:
      token.Assign(CToken::Error, text, 0.0, true);
      return token;
    default:
      // The string kinds keep their text; Null and the other control kinds take none.
      token.Assign(kind, text, 0.0);
      return token;
  }
}

namespace {

// The value of a number text of the lexer: the fast reader, else the C runtime's.
bool NumberValue(std::u16string_view text, double& value) {
  return detail::ParsePlainDecimal(text, value) || AString(text).IsNumber(value);
}

}  // namespace

CToken CToken_textstreambuf::MakeNumber(CToken::TTokenType kind, G::TState state,
                                        std::u16string_view text) {
  CToken token;
  if (kind == CToken::Hex) {
    // The digits after "0x" go through the token's own conversion, which refuses what does not
    // fit: such a text falls back to a SingleQuotedText like any number text that does not
    // convert.
    const CToken probe(CToken::Hex, AString(text.substr(2)));
    if (probe.Type() != CToken::Hex) {
      token.Assign(CToken::SingleQuotedText, text, 0.0);
      return token;
    }
    token.Assign(CToken::Hex, text, probe.Value(), mRetainNumberText);
    return token;
  }
  if (kind == CToken::Short) {  // "0x" without digits
    token.Assign(CToken::Short, text, 0.0, mRetainNumberText);
    return token;
  }
  double value = 0.0;
  // "1e" and "1e+": the mantissa's value; the dangling exponent is ignored.
  const std::u16string_view number = state == G::kExponent || state == G::kExponentSign
                                         ? text.substr(0, text.find_first_of(u"eE"))
                                         : text;
  if (!NumberValue(number, value)) {
    token.Assign(CToken::SingleQuotedText, text, 0.0);
    return token;
  }
  token.Assign(kind, text, value, mRetainNumberText);
  return token;
}

// ---------------------------------------------------------------------------------------------
// CToken_textstreambuf: output

void CToken_textstreambuf::SetEncoding(i18n::TEncoding encoding) {
  // Switch only on an empty output, so that nothing is ever written in two encodings.
  WY_CHECK(OutputSize() == 0);
  ClearOutput();
  mEncoding = encoding;
  mUtf8 = encoding == i18n::kUtf8 || encoding == i18n::kSystemEncoding;
}

int CToken_textstreambuf::Width(int width) {
  const int previous = mWidth;
  mWidth = width < 0 ? 0 : width;
  return previous;
}

void CToken_textstreambuf::BeginIndent(int count, AChar fill) {
  if (count < 0) count = 0;
  mIndentSteps.push_back(count);
  mIndentation.append(static_cast<std::size_t>(count), fill);
  mFill = fill;
}

void CToken_textstreambuf::EndIndent() {
  if (!WY_CHECK(!mIndentSteps.empty())) return;
  mIndentation.resize(mIndentation.size() - static_cast<std::size_t>(mIndentSteps.back()));
  mIndentSteps.pop_back();
}

void CToken_textstreambuf::EmitSlow(AChar c) {
  if (!mUtf8) {
    mWide.push_back(c);
    return;
  }
  char32_t cp = c;
  if (mPendingHigh != 0) {
    if (IsLowSurrogate(c)) {
      cp = 0x10000 + ((static_cast<char32_t>(mPendingHigh) - 0xd800) << 10) + (c - 0xdc00);
      mPendingHigh = 0;
    } else {
      mPendingHigh = 0;
      EmitSlow(0xfffd);  // an unpaired high surrogate
    }
  } else if (IsHighSurrogate(c)) {
    mPendingHigh = c;
    return;
  } else if (IsLowSurrogate(c)) {
    cp = 0xfffd;
  }
  if (cp < 0x80) {
    mBytes.push_back(static_cast<char>(cp));
  } else if (cp < 0x800) {
    mBytes.push_back(static_cast<char>(0xc0 | (cp >> 6)));
    mBytes.push_back(static_cast<char>(0x80 | (cp & 0x3f)));
  } else if (cp < 0x10000) {
    mBytes.push_back(static_cast<char>(0xe0 | (cp >> 12)));
    mBytes.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3f)));
    mBytes.push_back(static_cast<char>(0x80 | (cp & 0x3f)));
  } else {
    mBytes.push_back(static_cast<char>(0xf0 | (cp >> 18)));
    mBytes.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3f)));
    mBytes.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3f)));
    mBytes.push_back(static_cast<char>(0x80 | (cp & 0x3f)));
  }
}

void CToken_textstreambuf::EmitText(std::u16string_view text) {
  if (!mUtf8) {
    mWide.append(text);
    return;
  }
  // Runs of ASCII go to the output through a small buffer, a piece at a time; the rest character
  // by character.
  const std::size_t n = text.size();
  std::size_t i = 0;
  while (i < n) {
    if (mPendingHigh == 0) {
      char piece[64];
      std::size_t k = 0;
      while (i < n && k < sizeof piece && text[i] < 0x80) piece[k++] = static_cast<char>(text[i++]);
      if (k > 0) {
        mBytes.append(piece, k);
        continue;
      }
    }
    Emit(text[i++]);
  }
}

void CToken_textstreambuf::EmitAscii(const char* text, std::size_t length) {
  if (mUtf8 && mPendingHigh == 0) {
    mBytes.append(text, length);
    return;
  }
  for (std::size_t i = 0; i < length; ++i) Emit(static_cast<AChar>(text[i]));
}

namespace {

// PadToken's rule, inlinable into the printer (IsKeywordChar is the class range kAlpha ..
// kUnderscore).
static_assert(CBase_grammar::kUnderscore - CBase_grammar::kAlpha == 7,
              "the keyword classes are kAlpha, kExp, kHexLetter, kX, kZero, kDigit, kDollar and "
              "kUnderscore, in one range");
bool NeedsSeparator(const CToken_grammar& grammar, CToken::TTokenType previous, AChar last,
                    AChar first) noexcept {
  if (previous == CToken::Null || previous == CToken::Eol || previous == CToken::WhiteSpace) {
    return false;
  }
  using B = CBase_grammar;
  const B::TCharClass l = grammar.ClassOf(last);
  const B::TCharClass f = grammar.ClassOf(first);
  const bool wordLast = l >= B::kAlpha && l <= B::kUnderscore;
  const bool wordFirst = f >= B::kAlpha && f <= B::kUnderscore;
  const bool digitFirst = f == B::kZero || f == B::kDigit;
  // Keywords, numbers and booleans run together ("a" "1" -> "a1"; "1" ".5" -> "1.5").
  if (wordLast && (wordFirst || f == B::kDot)) return true;
  // A point before digits makes a number (". 5"; "-." "5").
  if (l == B::kDot && digitFirst) return true;
  // A sign before digits, a point or '#' makes a number or "-.".
  if ((l == B::kPlus || l == B::kMinus) && (digitFirst || f == B::kDot || f == B::kHash)) {
    return true;
  }
  // '#' before a word could make a special float word.
  if (l == B::kHash && wordFirst) return true;
  return false;
}

}  // namespace

bool CToken_textstreambuf::PadToken(CToken::TTokenType previous, AChar last,
                                    CToken::TTokenType /*next*/, AChar first) const {
  return NeedsSeparator(mGrammar, previous, last, first);
}

void CToken_textstreambuf::BeginToken(CToken::TTokenType kind, AChar first) {
  if (mNeedNewLine) NewLine();
  if (mAtLineStart) {
    EmitText(mIndentation);
    mAtLineStart = false;
    mLastKind = CToken::Eol;
    return;
  }
  (void)kind;
  if (NeedsSeparator(mGrammar, mLastKind, mLastChar, first)) Emit(u' ');
}

void CToken_textstreambuf::EndToken(CToken::TTokenType kind, AChar last) {
  mLastKind = kind;
  mLastChar = last;
  if (kind == CToken::Comment) mNeedNewLine = true;
}

void CToken_textstreambuf::NewLine() {
  Emit(u'\n');
  mAtLineStart = true;
  mNeedNewLine = false;
  mLastKind = CToken::Eol;
  mLastChar = 0;
}

void CToken_textstreambuf::PutWord(CToken::TTokenType kind, std::u16string_view text) {
  if (text.empty()) return;
  BeginToken(kind, text.front());
  EmitText(text);
  EndToken(kind, text.back());
}

void CToken_textstreambuf::PutSymbol(AChar symbol) {
  BeginToken(CToken::Symbol, symbol);
  Emit(symbol);
  EndToken(CToken::Symbol, symbol);
}

void CToken_textstreambuf::PutBlank() {
  if (mAtLineStart || mNeedNewLine) return;
  Emit(u' ');
  mLastKind = CToken::WhiteSpace;
  mLastChar = u' ';
}

void CToken_textstreambuf::PutNumberText(const char* text, std::size_t length) {
  if (length == 0) return;
  const std::size_t padding =
      static_cast<std::size_t>(mWidth) > length ? static_cast<std::size_t>(mWidth) - length : 0;
  BeginToken(CToken::Double, padding > 0 ? u' ' : static_cast<AChar>(text[0]));
  for (std::size_t i = 0; i < padding; ++i) Emit(u' ');
  EmitAscii(text, length);
  EndToken(CToken::Double, static_cast<AChar>(text[length - 1]));
}

void CToken_textstreambuf::PutInteger(long long value) {
  char buf[32];
  char* p = buf;
  if (mHex && value >= 0 && value <= 0x7ffffffe) {
    *p++ = '0';
    *p++ = 'x';
    p = std::to_chars(p, buf + sizeof buf, value, 16).ptr;
  } else {
    p = std::to_chars(p, buf + sizeof buf, value).ptr;
  }
  PutNumberText(buf, static_cast<std::size_t>(p - buf));
}

void CToken_textstreambuf::PutDouble(double value) {
  if (std::isnan(value)) {
    const std::string word = wycore::Utf16ToUtf8(mGrammar.NanWord());
    PutNumberText(word.data(), word.size());
    return;
  }
  if (std::isinf(value)) {
    std::string word(value < 0 ? 1 : 0, '-');
    word.append(wycore::Utf16ToUtf8(mGrammar.InfWord()));
    PutNumberText(word.data(), word.size());
    return;
  }
  char buf[64];
  std::size_t n = 0;
  if (mPrecision > 0) {
    n = static_cast<std::size_t>(
        std::to_chars(buf, buf + sizeof buf - 2, value, std::chars_format::general, mPrecision)
            .ptr -
        buf);
  } else {
    n = detail::FormatShortestDouble(value, buf);
  }
  if (std::memchr(buf, '.', n) == nullptr && std::memchr(buf, 'e', n) == nullptr) {
    buf[n++] = '.';  // so that it reads back as a Double, not an Int
    buf[n++] = '0';
  }
  PutNumberText(buf, n);
}

void CToken_textstreambuf::QuoteText(std::u16string_view text, AChar quote) {
  const CToken::TTokenType kind =
      quote == u'"' ? CToken::DoubleQuotedText : CToken::SingleQuotedText;
  if (!mQuoting) {
    if (text.empty()) return;
    BeginToken(kind, text.front());
    EmitText(text);
    EndToken(kind, text.back());
    return;
  }
  BeginToken(kind, quote);
  Emit(quote);
  std::size_t plain = 0;  // the start of the run of characters that need no escape
  for (std::size_t i = 0; i < text.size(); ++i) {
    const AChar c = text[i];
    if (c != quote && c != u'\\' && !IsControl(c)) continue;
    EmitText(text.substr(plain, i - plain));
    plain = i + 1;
    if (c == u'\r') {
      // CR LF is a line end, written as a line continuation (it reads back as LF). Carriage
      // returns that run into the line end belong to it: were they escaped one by one, the last
      // of them would pair with the line end when read back, and a second write would differ.
      std::size_t j = i;
      while (j < text.size() && text[j] == u'\r') ++j;
      if (j < text.size() && text[j] == u'\n') {
        Emit(u'\\');
        Emit(u'\n');
        i = j;
        plain = i + 1;
        continue;
      }
    }
    Emit(u'\\');
    Emit(c);  // the quote, a control character, or the second backslash
  }
  EmitText(text.substr(plain));
  Emit(quote);
  EndToken(kind, quote);
}

void CToken_textstreambuf::FormatText(const AString& text) {
  if (!mQuoting) {
    QuoteText(text, u'\'');
    return;
  }
  if (!text.empty()) {
    CToken_textstreambuf lexer(text);
    lexer.SetParseSpecialFloats(mParseSpecialFloats);
    const CToken token = lexer.GetToken();
    if (token.IsText() && !lexer.LastTokenUnterminated() && lexer.AtEnd()) {
      PutWord(token.Type(), text);  // already one quoted text or text block
      return;
    }
  }
  QuoteText(text, u'\'');
}

void CToken_textstreambuf::PutToken(const CToken& token) {
  const std::u16string_view text(token.ACharPtr(), token.ACharLen());
  switch (token.Type()) {
    case CToken::Null:
      QuoteText(u"", u'\'');
      break;
    case CToken::Short:
    case CToken::Int:
    case CToken::Long:
    case CToken::UnsignedShort:
    case CToken::UnsignedInt:
    case CToken::UnsignedLong:
    case CToken::Hex: {
      const double v = token.Value();
      // A Hex token handed here directly is hexadecimal whatever the stream's mode.
      const bool hex = mHex;
      if (token.IsHex()) mHex = true;
      if (FitsLongLong(v)) {
        PutInteger(static_cast<long long>(v));
      } else if (std::isfinite(v) && v == std::trunc(v)) {
        char buf[400];  // every digit of the largest double
        const auto r = std::to_chars(buf, buf + sizeof buf, v, std::chars_format::fixed);
        PutNumberText(buf, static_cast<std::size_t>(r.ptr - buf));
      } else {
        PutDouble(v);
      }
      mHex = hex;
      break;
    }
    case CToken::Double:
    case CToken::Float:
      PutDouble(token.Value());
      break;
    case CToken::True:
      PutWord(CToken::True, mGrammar.TrueWord());
      break;
    case CToken::False:
      PutWord(CToken::False, mGrammar.FalseWord());
      break;
    case CToken::Keyword:
      // $begin and $end as names would open and close blocks: they are written quoted.
      if (mGrammar.IsPlainKeyword(text) && !IsBlockWord(text)) {
        PutWord(CToken::Keyword, text);
      } else {
        QuoteText(text, u'\'');
      }
      break;
    case CToken::SingleQuotedText:
      QuoteText(text, u'\'');
      break;
    case CToken::DoubleQuotedText:
      QuoteText(text, u'"');
      break;
    case CToken::CData:
      if (mQuoting && text.find(std::u16string_view(mGrammar.CDataEnd())) == text.npos) {
        BeginToken(CToken::CData, u'$');
        EmitText(mGrammar.CDataBegin());
        EmitText(text);
        EmitText(mGrammar.CDataEnd());
        EndToken(CToken::CData, u'$');
      } else {
        QuoteText(text, u'\'');
      }
      break;
    case CToken::WhiteSpace:
      PutBlank();
      break;
    case CToken::Comment: {
      if (text.empty()) break;
      BeginToken(CToken::Comment, text.front());
      for (AChar c : text) {
        const auto cls = mGrammar.ClassOf(c);
        Emit(cls == CBase_grammar::kEol || cls == CBase_grammar::kCr ? u' ' : c);
      }
      EndToken(CToken::Comment, text.back());
      break;
    }
    case CToken::Symbol: {
      using B = CBase_grammar;
      bool plain = false;
      if (text.size() == 1) {
        const B::TCharClass k = mGrammar.ClassOf(text[0]);
        plain = k == B::kSymbol || k == B::kBackslash || k == B::kUnderscore || k == B::kPlus ||
                k == B::kMinus || k == B::kDot || k == B::kHash;
      } else if (text.size() == 2) {
        plain = (text == std::u16string_view(u"-.") || text == std::u16string_view(u"+.")) &&
                mGrammar.ClassOf(u'-') == B::kMinus && mGrammar.ClassOf(u'+') == B::kPlus &&
                mGrammar.ClassOf(u'.') == B::kDot;
      }
      if (plain) {
        PutWord(CToken::Symbol, text);
      } else {
        QuoteText(text, u'\'');
      }
      break;
    }
    case CToken::Eol:
      NewLine();
      break;
    case CToken::Eof:
      break;
    case CToken::Error:
      QuoteText(text, u'\'');
      break;
  }
}

std::string CToken_textstreambuf::TakeOutputBytes() {
  std::string bytes;
  if (mUtf8) {
    if (mPendingHigh != 0) mBytes += "\xef\xbf\xbd";
    bytes.swap(mBytes);
  } else {
    bytes = mWide.Serialize(mEncoding);
  }
  ClearOutput();
  return bytes;
}

std::string CToken_textstreambuf::OutputBytes() const {
  if (!mUtf8) return mWide.Serialize(mEncoding);
  if (mPendingHigh == 0) return mBytes;
  return mBytes + "\xef\xbf\xbd";
}

AString CToken_textstreambuf::OutputText() const {
  if (!mUtf8) return mWide;
  return AString(wycore::Utf8ToUtf16(OutputBytes()));
}

void CToken_textstreambuf::ClearOutput() {
  mBytes.clear();
  mWide.clear();
  mPendingHigh = 0;
  mAtLineStart = true;
  mNeedNewLine = false;
  mLastKind = CToken::Eol;
  mLastChar = 0;
}

// ---------------------------------------------------------------------------------------------
// Names

AString TokenNameText(const CToken& token) {
  if (token.IsBoolean()) return AString(token.IsTrue() ? u"true" : u"false");
  if (token.HasText() || !token.IsNumber()) return token.GetAString();
  const double v = token.Value();
  char buf[400];
  std::size_t n = 0;
  if (std::isnan(v)) return AString(u"#nan");
  if (std::isinf(v)) return AString(v < 0 ? u"-#inf" : u"#inf");
  if (v == std::trunc(v) && std::fabs(v) < 1e300) {
    n = static_cast<std::size_t>(
        std::to_chars(buf, buf + sizeof buf, v, std::chars_format::fixed).ptr - buf);
  } else {
    n = ShortestDouble(v, buf, sizeof buf);
  }
  return AString(wycore::Utf8ToUtf16(std::string_view(buf, n)));
}

// ---------------------------------------------------------------------------------------------
// CToken_istream

CToken_istream::CToken_istream() { NextToken(); }

CToken_istream::CToken_istream(AString text) : mBuf(std::move(text)) { NextToken(); }

void CToken_istream::SetInput(AString text) {
  mBuf.SetInput(std::move(text));
  ClearError();
  mOpenBlocks.clear();
  NextToken();
}

void CToken_istream::SetInputSource(std::function<bool(AString&)> source) {
  mBuf.SetInputSource(std::move(source));
  ClearError();
  mOpenBlocks.clear();
  NextToken();
}

void CToken_istream::NextToken() {
  for (;;) {
    // Most tokens follow no white space, or one blank: that much is skipped here, the rest by
    // the buffer.
    const std::size_t at = mBuf.mState.position - mBuf.mBase;
    if (at < mBuf.mInput.size()) {
      const auto cls = mBuf.mGrammar.ClassOf(mBuf.mInput[at]);
      if (cls == CBase_grammar::kSpace || cls == CBase_grammar::kComment) mBuf.SkipWhiteSpaceImpl();
    }
    mBuf.GetTokenImpl(mCurrent);
    if (mCurrent.Type() != CToken::WhiteSpace && !mCurrent.IsComment()) break;
  }
  mLine = mBuf.TokenLine();
  mColumn = mBuf.TokenColumn();
  mUnterminated = mBuf.LastTokenUnterminated();
}

bool CToken_istream::IsBeginBlock() const { return IsKeywordText(mCurrent, u"$begin"); }

bool CToken_istream::IsEndBlock() const {
  return Fail() || mCurrent.IsEof() || IsKeywordText(mCurrent, u"$end");
}

namespace {

// Block names may be empty texts: an unnamed block is written as $begin ''.
bool CanNameBlock(const CToken& token) { return CanStandAsName(token) || token.IsText(); }

}  // namespace

namespace {

// The text of a name token as TokenNameText gives it, without a copy for the text kinds.
std::u16string_view NameView(const CToken& token, AString& storage) {
  if (token.IsString()) return std::u16string_view(token.ACharPtr(), token.ACharLen());
  storage = TokenNameText(token);
  return storage;
}

}  // namespace

bool CToken_istream::OpenBlock(CToken& name) {
  if (!IsBeginBlock()) {
    SetFail(AString(u"$begin expected"));
    return false;
  }
  NextToken();
  if (CanNameBlock(mCurrent)) {
    // A quoted name is the usual case: the token is taken as it is (its buffer is shared).
    if (mCurrent.Type() == CToken::SingleQuotedText) {
      name = mCurrent;
    } else {
      name = CToken(CToken::SingleQuotedText, TokenNameText(mCurrent));
    }
    mOpenBlocks.push_back({name, true});
    NextToken();
    return true;
  }
  // The block is open all the same; its closing name cannot be checked.
  name = CToken(CToken::SingleQuotedText, AString());
  mOpenBlocks.push_back({name, false});
  SetFail(AString(u"$begin without a block name"));
  return false;
}

bool CToken_istream::CloseBlock(const CToken& name) {
  AString expectedStorage;
  const std::u16string_view expected = NameView(name, expectedStorage);
  const bool known = mOpenBlocks.empty() || mOpenBlocks.back().named;
  if (!mOpenBlocks.empty()) mOpenBlocks.pop_back();
  const bool isEnd = IsKeywordText(mCurrent, u"$end");
  if (!isEnd) {
    SetFail(u"missing $end '" + AString(expected) + u"'");
    return false;
  }
  const Mark atEnd = SaveStreamState();
  NextToken();
  if (!CanNameBlock(mCurrent)) {
    SetFail(u"$end without a block name (closing '" + AString(expected) + u"')");
    return false;
  }
  AString foundStorage;
  const std::u16string_view found = NameView(mCurrent, foundStorage);
  if (!known || found == expected) {
    NextToken();
    return true;
  }
  // A closing line of an enclosing block means this block's own $end is missing: leave the
  // line to its owner so that only one error is reported.
  const AString foundText(found);
  bool enclosing = false;
  for (const OpenName& open : mOpenBlocks) {
    AString storage;
    enclosing |= open.named && NameView(open.name, storage) == std::u16string_view(foundText);
  }
  if (enclosing) {
    RestoreStreamState(atEnd);
    SetFail(u"missing $end '" + AString(expected) + u"' before $end '" + foundText + u"'");
  } else {
    NextToken();
    SetFail(u"$end '" + foundText + u"' does not close $begin '" + AString(expected) + u"'");
  }
  return false;
}

void CToken_istream::SkipToResumePoint() {
  while (!mCurrent.IsEol() && !mCurrent.IsEof()) NextToken();
  if (mCurrent.IsEol()) NextToken();
}

void CToken_istream::SkipBlock() {
  int depth = 0;
  do {
    const bool begin = IsBeginBlock();
    const bool end = !begin && IsKeywordText(mCurrent, u"$end");
    if (mCurrent.IsEof()) break;
    NextToken();
    if (begin || end) {
      depth += begin ? 1 : -1;
      if (CanNameBlock(mCurrent)) NextToken();  // the block's name
    }
  } while (depth > 0);
}

CToken_istream::Mark CToken_istream::SaveStreamState() const {
  return Mark{mBuf.SaveStreamState(), mCurrent, mLine, mColumn, mUnterminated};
}

void CToken_istream::RestoreStreamState(const Mark& mark) {
  mBuf.RestoreStreamState(mark.state);
  mCurrent = mark.current;
  mLine = mark.line;
  mColumn = mark.column;
  mUnterminated = mark.unterminated;
}

// ---------------------------------------------------------------------------------------------
// CToken_ostream

CAbstract_ostream& CToken_ostream::WriteShort(std::int16_t value) {
  mBuf.PutInteger(value);
  return *this;
}

CAbstract_ostream& CToken_ostream::WriteInt(std::int32_t value) {
  mBuf.PutInteger(value);
  return *this;
}

CAbstract_ostream& CToken_ostream::WriteUnsignedShort(std::uint16_t value) {
  mBuf.PutInteger(value);
  return *this;
}

CAbstract_ostream& CToken_ostream::WriteUnsignedInt(std::uint32_t value) {
  mBuf.PutInteger(value);
  return *this;
}

CAbstract_ostream& CToken_ostream::WriteToken(const CToken& token) {
  mBuf.PutToken(token);
  return *this;
}

void CToken_ostream::BeginBlock(const CToken& name) {
  mBuf.PutWord(CToken::Keyword, u"$begin");
  mBuf.PutBlank();
  mBuf.QuoteText(TokenNameText(name), u'\'');
  mBuf.BeginIndent(1, mBuf.Fill());
  mBuf.NewLine();
}

void CToken_ostream::EndBlock(const CToken& name) {
  mBuf.EndIndent();
  mBuf.PutWord(CToken::Keyword, u"$end");
  mBuf.PutBlank();
  mBuf.QuoteText(TokenNameText(name), u'\'');
}

}  // namespace io
