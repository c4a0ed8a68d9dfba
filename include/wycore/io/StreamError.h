// SPDX-License-Identifier: Apache-2.0
//
// StreamError.h - io::XStreamioError, the error of reading one item from a token stream.
//
// Item reading throws it to the block that is reading; the block records it in its error list,
// resynchronises the stream at the next line and goes on, so nothing outside the storage layer
// sees it thrown. Each error carries its code, a message for people, and where the offending
// token starts (1-based line and column; 0 where unknown).
//
// Codes (kept stable; tools print them):
//    3  the stream failed where a block begins or ends (missing or mismatched $end, no name)
//    7  a name is followed by a token that starts no item (no '=', '(' or '[')
//   11  a token that cannot stand as a name where an item should start
//   12  a value is missing or malformed (including a text whose closing quote is missing)
//   13  a malformed vector (count, ':', separators, ']', more or fewer tokens than its count)
//   14  a malformed function argument list (arguments, ',' or ')')
//   15  blocks or functions nested deeper than the stream allows
#pragma once

#include <exception>
#include <string>

#include "wycore/Export.h"
#include "wycore/io/AString.h"

namespace io {

class WYCORE_API XStreamioError : public std::exception {
 public:
  enum TCode : int {
    kStreamFailed = 3,
    kNoItem = 7,
    kNotAName = 11,
    kBadValue = 12,
    kBadVector = 13,
    kBadFunction = 14,
    kTooDeep = 15,
  };

  XStreamioError(int code, AString message, int line = 0, int column = 0);

  int Code() const noexcept { return mCode; }
  const AString& Message() const noexcept { return mMessage; }
  int Line() const noexcept { return mLine; }
  int Column() const noexcept { return mColumn; }

  // "line L, column C: message (code N)"; the place is left out where it is unknown.
  AString Text() const;
  // Text() as UTF-8.
  const char* what() const noexcept override { return mWhat.c_str(); }

 private:
  int mCode;
  AString mMessage;
  int mLine;
  int mColumn;
  std::string mWhat;
};

}  // namespace io
