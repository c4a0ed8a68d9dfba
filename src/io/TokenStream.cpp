// SPDX-License-Identifier: Apache-2.0
//
// TokenStream.cpp - the defaults of the abstract token streams: structure as plain tokens, the
// failure state, and the nesting bound.
#include "wycore/io/TokenStream.h"

#include "LocalCalls.h"
#include "wycore/io/StreamError.h"
#include "wycore/io/Token.h"

namespace io {

bool CanStandAsName(const CToken& token) noexcept {
  if (token.IsKeyword() || token.IsNumber() || token.IsBoolean()) return true;
  return token.IsText() && token.ACharLen() > 0;
}

bool CanStandAsValue(const CToken& token) noexcept {
  return token.IsKeyword() || token.IsNumber() || token.IsBoolean() || token.IsText();
}

void CAbstract_ostream::BeginBlock(const CToken& name) {
  WriteToken(CToken(CToken::Keyword, AString(u"$begin")));
  WriteToken(name);
  NewLine();
}

void CAbstract_ostream::EndBlock(const CToken& name) {
  WriteToken(CToken(CToken::Keyword, AString(u"$end")));
  WriteToken(name);
}

void CAbstract_ostream::NewLine() { WriteToken(CToken(CToken::Eol)); }

void CAbstract_ostream::WriteSymbol(AChar symbol) { WriteToken(CToken(CToken::Symbol, symbol)); }

void CAbstract_istream::SkipEols() {
  while (Token().IsEol()) NextToken();
}

void CAbstract_istream::SetFail(const AString& message) {
  if (mFail) return;
  mFail = true;
  mFailMessage = message;
}

void CAbstract_istream::ClearError() {
  mFail = false;
  mFailMessage.clear();
}

void CAbstract_istream::Raise(int code, const AString& message) const {
  throw XStreamioError(code, message, Line(), Column());
}

bool CAbstract_istream::EnterNesting() {
  if (mDepth >= mMaxDepth) return false;
  ++mDepth;
  return true;
}

void CAbstract_istream::LeaveNesting() {
  if (mDepth > 0) --mDepth;
}

}  // namespace io
