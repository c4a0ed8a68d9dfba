// SPDX-License-Identifier: Apache-2.0
//
// TextStream.cpp - the grammar tables, the lexer and printer of the text form, and the text token
// streams.
//
// The lexer is one loop over the transition table: a character whose transition is kStop ends
// the token before it; otherwise it is consumed and the new state's action decides what becomes
// of it. Two rules need more than one character of look-ahead (the end word of a text block and
// the special float words); they consume optimistically and give the characters back when the
// word turns out not to be there.
#include "wycore/io/TextStream.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <system_error>
#include <utility>

#include "wycore/core/Check.h"
#include "wycore/core/Utf.h"

namespace io {

namespace {

using G = CToken_grammar;

bool IsControl(AChar c) noexcept { return c < 0x20 || c == 0x7f || (c >= 0x80 && c < 0xa0); }

bool IsHighSurrogate(AChar c) noexcept { return c >= 0xd800 && c <= 0xdbff; }
bool IsLowSurrogate(AChar c) noexcept { return c >= 0xdc00 && c <= 0xdfff; }

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
  mState = CreateInitialStreamState();
  mUnterminated = false;
  mSuppressSpecial = false;
  mTokenLine = 1;
  mTokenColumn = 1;
}

void CToken_textstreambuf::RestoreStreamState(const StreamState& state) {
  mState = state;
  if (mState.position > mInput.size()) mState.position = mInput.size();
}

AChar CToken_textstreambuf::Peek(std::size_t ahead) const noexcept {
  const std::size_t at = mState.position + ahead;
  return at < mInput.size() ? mInput[at] : 0;
}

void CToken_textstreambuf::Advance() noexcept {
  const AChar c = mInput[mState.position++];
  if (c == u'\n' || (c == u'\r' && Peek() != u'\n')) {
    ++mState.line;
    mState.column = 1;
  } else {
    ++mState.column;
  }
}

bool CToken_textstreambuf::SkipWhiteSpace() {
  const std::size_t start = mState.position;
  while (!AtEnd()) {
    const auto cls = mGrammar.ClassOf(mInput[mState.position]);
    if (cls == CBase_grammar::kSpace) {
      Advance();
    } else if (cls == CBase_grammar::kComment) {
      while (!AtEnd()) {
        const auto k = mGrammar.ClassOf(mInput[mState.position]);
        if (k == CBase_grammar::kEol || k == CBase_grammar::kCr) break;
        Advance();
      }
    } else {
      break;
    }
  }
  return mState.position != start;
}

CToken CToken_textstreambuf::GetToken() {
  mUnterminated = false;
  mTokenLine = mState.line;
  mTokenColumn = mState.column;
  const bool special = mParseSpecialFloats && !mSuppressSpecial;
  mSuppressSpecial = false;
  if (AtEnd()) return CToken(CToken::Eof);

  const StreamState start = mState;
  mText.clear();
  G::TState state = G::kStart;
  while (!AtEnd()) {
    const AChar c = mInput[mState.position];
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
          return FinishToken(G::kCDataEnd);
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
  return FinishToken(state);
}

bool CToken_textstreambuf::MatchCDataEnd() {
  // Called with the '$' consumed. Consume the rest of the end word while it matches.
  const StreamState dollar = mState;
  const std::u16string_view rest = std::u16string_view(mGrammar.CDataEnd()).substr(1);
  for (AChar expected : rest) {
    if (AtEnd() || mInput[mState.position] != expected) {
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

CToken CToken_textstreambuf::FinishToken(G::TState state) {
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
  switch (kind) {
    case CToken::Keyword:
      if (mText == mGrammar.TrueWord()) return CToken(CToken::True);
      if (mText == mGrammar.FalseWord()) return CToken(CToken::False);
      return CToken(CToken::Keyword, mText);
    case CToken::Short:
    case CToken::Int:
    case CToken::Double:
    case CToken::Hex:
      return MakeNumber(kind, state);
    case CToken::Symbol:
      if (mText.size() == 1) return CToken(CToken::Symbol, mText[0]);
      return CToken(CToken::Symbol, mText);
    case CToken::Eol:
      return CToken(CToken::Eol);
    case CToken::Error: {
      CToken error;
      error.SetType(CToken::Error, mText, 0.0, true);
      return error;
    }
    default:
      return CToken(kind, mText);
  }
}

CToken CToken_textstreambuf::MakeNumber(CToken::TTokenType kind, G::TState state) {
  CToken token;
  if (kind == CToken::Hex) {
    // The digits after "0x" go through the token's own conversion, which refuses what does not
    // fit: such a text falls back to a SingleQuotedText like any number text that does not
    // convert.
    const CToken probe(CToken::Hex, AString(mText.substr(2)));
    if (probe.Type() != CToken::Hex) return CToken(CToken::SingleQuotedText, mText);
    token.SetType(CToken::Hex, mText, probe.Value(), mRetainNumberText);
    return token;
  }
  if (kind == CToken::Short) {  // "0x" without digits
    token.SetType(CToken::Short, mText, 0.0, mRetainNumberText);
    return token;
  }
  if (state == G::kExponent || state == G::kExponentSign) {
    // "1e" and "1e+": the mantissa's value; the dangling exponent is ignored.
    const AString mantissa(mText.substr(0, mText.find_first_of(u"eE")));
    double value = 0.0;
    if (!mantissa.IsNumber(value)) return CToken(CToken::SingleQuotedText, mText);
    token.SetType(CToken::Double, mText, value, mRetainNumberText);
    return token;
  }
  return CToken(kind, mText, mRetainNumberText);
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

void CToken_textstreambuf::Emit(AChar c) {
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
      Emit(0xfffd);  // an unpaired high surrogate
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
  for (AChar c : text) Emit(c);
}

bool CToken_textstreambuf::PadToken(CToken::TTokenType previous, AChar last,
                                    CToken::TTokenType next, AChar first) const {
  (void)next;
  if (previous == CToken::Null || previous == CToken::Eol || previous == CToken::WhiteSpace) {
    return false;
  }
  using B = CBase_grammar;
  const B::TCharClass l = mGrammar.ClassOf(last);
  const B::TCharClass f = mGrammar.ClassOf(first);
  const bool wordLast = mGrammar.IsKeywordChar(last);
  const bool wordFirst = mGrammar.IsKeywordChar(first);
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

void CToken_textstreambuf::BeginToken(CToken::TTokenType kind, AChar first) {
  if (mNeedNewLine) NewLine();
  if (mAtLineStart) {
    EmitText(mIndentation);
    mAtLineStart = false;
    mLastKind = CToken::Eol;
    return;
  }
  if (PadToken(mLastKind, mLastChar, kind, first)) Emit(u' ');
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
  PutWord(CToken::Symbol, std::u16string_view(&symbol, 1));
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
  for (std::size_t i = 0; i < length; ++i) Emit(static_cast<AChar>(text[i]));
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
    n = ShortestDouble(value, buf, sizeof buf - 2);
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
  for (std::size_t i = 0; i < text.size(); ++i) {
    const AChar c = text[i];
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
        continue;
      }
    }
    if (c == quote || IsControl(c)) {
      Emit(u'\\');
      Emit(c);
    } else if (c == u'\\') {
      Emit(u'\\');
      Emit(u'\\');
    } else {
      Emit(c);
    }
  }
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

void CToken_istream::NextToken() {
  for (;;) {
    mBuf.SkipWhiteSpace();
    mCurrent = mBuf.GetToken();
    if (mCurrent.Type() != CToken::WhiteSpace && !mCurrent.IsComment()) break;
  }
  mLine = mBuf.TokenLine();
  mColumn = mBuf.TokenColumn();
  mUnterminated = mBuf.LastTokenUnterminated();
}

bool CToken_istream::IsBeginBlock() const {
  return mCurrent.IsKeyword() && mCurrent.Compare(u"$begin", true) == 0;
}

bool CToken_istream::IsEndBlock() const {
  return Fail() || mCurrent.IsEof() ||
         (mCurrent.IsKeyword() && mCurrent.Compare(u"$end", true) == 0);
}

namespace {

// Block names may be empty texts: an unnamed block is written as $begin ''.
bool CanNameBlock(const CToken& token) { return CanStandAsName(token) || token.IsText(); }

}  // namespace

bool CToken_istream::OpenBlock(CToken& name) {
  if (!IsBeginBlock()) {
    SetFail(AString(u"$begin expected"));
    return false;
  }
  NextToken();
  if (CanNameBlock(mCurrent)) {
    const AString text = TokenNameText(mCurrent);
    name = CToken(CToken::SingleQuotedText, text);
    mOpenBlocks.push_back({text, true});
    NextToken();
    return true;
  }
  // The block is open all the same; its closing name cannot be checked.
  name = CToken(CToken::SingleQuotedText, AString());
  mOpenBlocks.push_back({AString(), false});
  SetFail(AString(u"$begin without a block name"));
  return false;
}

bool CToken_istream::CloseBlock(const CToken& name) {
  const AString expected = TokenNameText(name);
  const bool known = mOpenBlocks.empty() || mOpenBlocks.back().named;
  if (!mOpenBlocks.empty()) mOpenBlocks.pop_back();
  const bool isEnd = mCurrent.IsKeyword() && mCurrent.Compare(u"$end", true) == 0;
  if (!isEnd) {
    SetFail(u"missing $end '" + expected + u"'");
    return false;
  }
  const Mark atEnd = SaveStreamState();
  NextToken();
  if (!CanNameBlock(mCurrent)) {
    SetFail(u"$end without a block name (closing '" + expected + u"')");
    return false;
  }
  const AString found = TokenNameText(mCurrent);
  if (!known || found == expected) {
    NextToken();
    return true;
  }
  // A closing line of an enclosing block means this block's own $end is missing: leave the
  // line to its owner so that only one error is reported.
  bool enclosing = false;
  for (const OpenName& open : mOpenBlocks) enclosing |= open.named && open.name == found;
  if (enclosing) {
    RestoreStreamState(atEnd);
    SetFail(u"missing $end '" + expected + u"' before $end '" + found + u"'");
  } else {
    NextToken();
    SetFail(u"$end '" + found + u"' does not close $begin '" + expected + u"'");
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
    const bool end = !begin && mCurrent.IsKeyword() && mCurrent.Compare(u"$end", true) == 0;
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
