// SPDX-License-Identifier: Apache-2.0
//
// StringValue.h - a text value, held as its string literal.
//
// The value keeps the literal as written, double quotes included ("\"abc\""), which is what
// GetStringValue and GetValueText answer; the neutral string of the value model, "\"\"", is the
// empty literal. A string has no number: GetValue fires the check
// "!\"Nonsensical impl of GetValue! Examine use context!!\"" and answers NaN, and so does every
// numeric getter that goes through it. Equality: only with another string value, by exact
// comparison of the texts (case counts).
#pragma once

#include "wycore/value/ValueBase.h"

class WYCORE_API StringValue : public ValueBase {
 public:
  // `text` is stored as given; it should be a string literal (see Parse).
  explicit StringValue(const AString& text = GetInvalidValue()) : mText(text) {}
  ~StringValue() override;

  // Trims blanks at both ends; when at least two characters remain and the first and the last
  // are double quotes, a new StringValue of that text (owned by the caller), else null.
  static StringValue* Parse(const AString& text);
  // Whether `text`, as it stands, has at least two characters and begins and ends with '"'.
  static bool StartsAndEndsWithDblQuotes(const AString& text);
  // The string of no text: the empty literal "\"\"".
  static AString GetInvalidValue();
  // The characters between the quotes of a literal (`text` itself when it is not one).
  static AString Unquote(const AString& text);

  void SetText(const AString& text) { mText = text; }

  double GetValue() const override;
  AString GetStringValue() const override { return mText; }
  AString GetValueText() const override { return mText; }
  ValueBase* CloneValueBase() const override;
  bool IsEqual(const ValueBase& other) const override;
  val::ParameterType GetParameterType() const override { return val::kStringParam; }

 private:
  AString mText;  // the literal, quotes included
};
