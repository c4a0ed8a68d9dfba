// SPDX-License-Identifier: Apache-2.0
//
// StreamError.cpp - io::XStreamioError.
#include "wycore/io/StreamError.h"

#include <utility>

#include "wycore/core/Utf.h"

namespace io {

XStreamioError::XStreamioError(int code, AString message, int line, int column)
    : mCode(code), mMessage(std::move(message)), mLine(line), mColumn(column) {
  mWhat = wycore::Utf16ToUtf8(Text());
}

AString XStreamioError::Text() const {
  std::u16string text;
  if (mLine > 0) {
    text += u"line " + wycore::Utf8ToUtf16(std::to_string(mLine));
    if (mColumn > 0) text += u", column " + wycore::Utf8ToUtf16(std::to_string(mColumn));
    text += u": ";
  }
  text += mMessage;
  text += u" (code " + wycore::Utf8ToUtf16(std::to_string(mCode)) + u")";
  return AString(std::move(text));
}

}  // namespace io
