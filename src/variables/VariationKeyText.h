// SPDX-License-Identifier: Apache-2.0
//
// VariationKeyText.h - (private) the writer and the reader of variation-key text, shared by
// VariableValues (which writes keys and answers questions about them) and VariationKey (the
// parser and the key variable server).
//
// A key is a sequence of named values of the token format: a keyword (the name), "=", and the
// value's text as one single-quoted text token; a plain number, boolean or keyword is accepted
// as a value too, so that hand-written keys (w=3) read. Pairs are separated by white space: a
// blank, or a tab where a long key was broken. The reader never fires checks; ParseKey does.
#pragma once

#include <string_view>
#include <vector>

#include "wycore/io/AString.h"
#include "wycore/io/TextStream.h"
#include "wycore/variables/VariableValues.h"

namespace varkey {

struct Pair {
  AString mName;
  AString mValue;
};

// Reads the pairs of a key one at a time.
class KeyReader {
 public:
  enum Status { kPair, kEnd, kBadName, kBadValue };

  explicit KeyReader(const AString& key);

  // The next pair. After kBadName or kBadValue the reader is failed and stays where it stopped.
  Status Next(Pair& pair);
  // The token at which reading stands (the bad one after a failure).
  const io::CToken& Token() const { return mIn.Token(); }
  bool fail() const { return mFail; }

 private:
  io::CToken_istream mIn;
  bool mFail = false;
};

// Every pair of `key` until the end or the first bad item; true when the whole key was read.
bool ReadPairs(const AString& key, std::vector<Pair>& out);

// Writes pairs as a key.
class KeyWriter {
 public:
  // `width`: break (a tab instead of a blank) once that many characters have been written since
  // the last break; 0 never breaks.
  explicit KeyWriter(unsigned int width);

  void Add(std::u16string_view name, std::u16string_view value);
  AString Text() const { return mBuf.OutputText(); }

 private:
  io::CToken_textstreambuf mBuf;
  unsigned int mWidth;
  std::size_t mBreak = 0;
  bool mFirst = true;
  bool mBreakDue = false;
};

// Sets the unit manager's default double format for its lifetime.
class DoubleFormatScope {
 public:
  explicit DoubleFormatScope(const AString& format);
  ~DoubleFormatScope();
  DoubleFormatScope(const DoubleFormatScope&) = delete;
  DoubleFormatScope& operator=(const DoubleFormatScope&) = delete;

 private:
  AString mPrevious;
};

// The text a key holds for `variable` assigned `value` (everything but the name), with the
// default double format already in force.
AString ValueText(const Variable& variable, const Value& value, bool evaluate,
                  const VariableValues::UnitMap* units, bool arrayElements,
                  val::enVariationKeyFileNameDisplayMode mode);

// Sorts pairs into the order of the variables of a key (names without regard to case, then
// exactly); stable, so pairs of one name keep their order.
void SortPairs(std::vector<Pair>& pairs);

// A value read from the text of a key, in the current name space: the texts values write
// (Value::ReadValueText), else anything CreateValueBase reads (expressions). Null when the text
// yields no value; the caller owns the result.
ValueBase* ReadValue(const AString& text);

}  // namespace varkey
