// SPDX-License-Identifier: Apache-2.0
//
// StringValue.cpp - a text value held as its literal.
#include "wycore/value/StringValue.h"

#include <limits>

#include "wycore/core/Check.h"

StringValue::~StringValue() = default;

StringValue* StringValue::Parse(const AString& text) {
  AString trimmed = text;
  trimmed.Trim(u" \t");
  if (!StartsAndEndsWithDblQuotes(trimmed)) return nullptr;
  return new StringValue(trimmed);
}

bool StringValue::StartsAndEndsWithDblQuotes(const AString& text) {
  return text.size() >= 2 && text.front() == u'"' && text.back() == u'"';
}

AString StringValue::GetInvalidValue() { return AString(u"\"\""); }

AString StringValue::Unquote(const AString& text) {
  if (!StartsAndEndsWithDblQuotes(text)) return text;
  return text.substr(1, text.size() - 2);
}

double StringValue::GetValue() const {
  WY_CHECK(!"Nonsensical impl of GetValue! Examine use context!!");
  return std::numeric_limits<double>::quiet_NaN();
}

ValueBase* StringValue::CloneValueBase() const { return new StringValue(*this); }

bool StringValue::IsEqual(const ValueBase& other) const {
  const StringValue* s = dynamic_cast<const StringValue*>(&other);
  return s != nullptr && s->mText == mText;
}
