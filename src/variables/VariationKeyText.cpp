// SPDX-License-Identifier: Apache-2.0
//
// VariationKeyText.cpp - (private) writing and reading the text of variation keys.
#include "VariationKeyText.h"

#include <algorithm>
#include <memory>

#include "wycore/core/Check.h"
#include "wycore/value/StringValue.h"
#include "wycore/value/Value.h"
#include "wycore/variables/ArrayIndexVariable.h"
#include "wycore/variables/Variable.h"

namespace varkey {

// ---- Reading ------------------------------------------------------------------------------

KeyReader::KeyReader(const AString& key) {
  // Numbers keep their text, so that a hand-written w=1.50 hands over "1.50" and not a reprint.
  mIn.Buffer().SetRetainNumberText(true);
  mIn.SetInput(key);
}

namespace {

bool IsEquals(const io::CToken& token) {
  return token.IsSymbol() && token.ACharLen() == 1 && token.ACharPtr()[0] == u'=';
}

}  // namespace

KeyReader::Status KeyReader::Next(Pair& pair) {
  if (mFail) return kBadName;
  while (mIn.Token().IsEol()) mIn.NextToken();
  if (mIn.Token().IsEof()) return kEnd;
  if (!mIn.Token().IsKeyword()) {
    mFail = true;
    return kBadName;
  }
  AString name = mIn.Token().GetAString();
  const io::CToken_istream::Mark afterName = mIn.SaveStreamState();

  // First as a string value: the quoted text that this library writes.
  mIn.NextToken();
  if (IsEquals(mIn.Token())) {
    mIn.NextToken();
    const io::CToken& value = mIn.Token();
    if (value.IsText() && !mIn.TokenUnterminated()) {
      pair.mName = std::move(name);
      pair.mValue = value.GetAString();
      mIn.NextToken();
      return kPair;
    }
  }

  // Again from the same place as a plain value: a number, a boolean or a word.
  mIn.RestoreStreamState(afterName);
  mIn.NextToken();
  if (IsEquals(mIn.Token())) {
    mIn.NextToken();
    const io::CToken& value = mIn.Token();
    if (value.IsNumber() || value.IsBoolean() || value.IsKeyword()) {
      pair.mName = std::move(name);
      pair.mValue = io::TokenNameText(value);
      mIn.NextToken();
      return kPair;
    }
  }
  mFail = true;
  return kBadValue;
}

bool ReadPairs(const AString& key, std::vector<Pair>& out) {
  KeyReader in(key);
  Pair pair;
  for (;;) {
    switch (in.Next(pair)) {
      case KeyReader::kPair:
        out.push_back(pair);
        break;
      case KeyReader::kEnd:
        return true;
      case KeyReader::kBadName:
      case KeyReader::kBadValue:
        return false;
    }
  }
}

ValueBase* ReadValue(const AString& text) {
  if (ValueBase* value = Value::ReadValueText(text, Units::NoUnits)) return value;
  return Value::CreateValueBase(text, Units::NoUnits);
}

// ---- Writing ------------------------------------------------------------------------------

KeyWriter::KeyWriter(unsigned int width) : mWidth(width) {
  // Any encoding but UTF-8 collects the characters as they are; only the text is taken, so the
  // stream positions that measure the line count characters.
  mBuf.SetEncoding(i18n::kCp1252);
  // Values go out as texts, never as number tokens; the precision is set all the same so that a
  // number token, were one written, would carry the key's digits.
  mBuf.SetPrecision(14);
}

void KeyWriter::Add(std::u16string_view name, std::u16string_view value) {
  if (!mFirst) {
    if (mBreakDue) {
      mBuf.PutWord(io::CToken::WhiteSpace, u"\t");
      mBreak = mBuf.OutputSize();
    } else {
      mBuf.PutBlank();
    }
  }
  mFirst = false;
  const io::CToken_grammar& grammar = mBuf.Grammar();
  if (WY_CHECK(grammar.IsPlainKeyword(name))) {
    mBuf.PutWord(io::CToken::Keyword, name);
  } else {
    mBuf.QuoteText(name, u'\'');
  }
  mBuf.PutSymbol(u'=');
  mBuf.QuoteText(value, u'\'');
  mBreakDue = mWidth > 0 && mBuf.OutputSize() - mBreak >= mWidth;
}

DoubleFormatScope::DoubleFormatScope(const AString& format)
    : mPrevious(Units::SetDefaultDoubleFormat(format)) {}

DoubleFormatScope::~DoubleFormatScope() { Units::SetDefaultDoubleFormat(mPrevious); }

namespace {

bool IsLiteral(std::u16string_view text) {
  return text.size() >= 2 && text.front() == u'"' && text.back() == u'"';
}

// The file-name rule of `mode` applied to a string value's text (a literal, normally; a text
// without quotes is treated the same and stays without quotes).
AString FileNameText(const AString& text, val::enVariationKeyFileNameDisplayMode mode) {
  bool dropDirectories = false;
  bool dropExtension = false;
  switch (mode) {
    case val::kVariationKeyFullFileName:
    case val::kVariationKeyQuotedArrayElements:
      break;
    case val::kVariationKeyFileNameOnly:
      dropDirectories = true;
      break;
    case val::kVariationKeyFileNameNoExtension:
      dropDirectories = true;
      dropExtension = true;
      break;
  }
  if (!dropDirectories) return text;
  const bool literal = IsLiteral(text);
  std::u16string_view path(text);
  if (literal) path = path.substr(1, path.size() - 2);
  const std::size_t slash = path.find_last_of(u"/\\");
  std::u16string_view name = slash == path.npos ? path : path.substr(slash + 1);
  if (dropExtension) {
    // A leading point names a hidden file, not an extension (".profile" stays).
    const std::size_t dot = name.rfind(u'.');
    if (dot != name.npos && dot > 0) name = name.substr(0, dot);
  }
  AString out;
  if (literal) out.push_back(u'"');
  out.append(name);
  if (literal) out.push_back(u'"');
  return out;
}

}  // namespace

AString ValueText(const Variable& variable, const Value& value, bool evaluate,
                  const VariableValues::UnitMap* units, bool arrayElements,
                  val::enVariationKeyFileNameDisplayMode mode) {
  AString text;
  val::ParameterType kind = value.GetParameterType();
  if (evaluate && !value.IsConstant()) {
    Units::FullUnitType fut = value.GetUnits();
    if (units != nullptr) {
      const auto found = units->find(Units::ConvertToUnitType(fut));
      if (found != units->end()) fut = found->second;
    }
    switch (kind) {
      case val::kComplexParam:
        Units::ComplexToText(value.GetComplexValue(), fut, text, Units::MustWriteUnits());
        break;
      case val::kDoubleParam:
      case val::kIntParam:
      case val::kCharParam:
      case val::kEnumParam:
        Units::FloatToText(value.GetValue(), fut, text);
        break;
      default: {
        // Lists, matrices, strings and the rest have no single number: their evaluated value is
        // written as that value writes itself.
        const std::unique_ptr<ValueBase> evaluated(value.GetValueBase().CreateEvaluatedValueBase());
        if (evaluated != nullptr) {
          text = evaluated->GetValueText();
          kind = evaluated->GetParameterType();
        } else {
          text = value.GetValueText();
        }
        break;
      }
    }
  } else if (kind == val::kCharParam) {
    // A character as itself ('x') would read back as a name: it is written by its code, as the
    // evaluated form writes it too, and reads back as that number.
    Units::FloatToText(value.GetValue(), Units::NoUnits, text);
  } else {
    text = value.GetValueText();
  }
  if (kind == val::kStringParam) text = FileNameText(text, mode);

  if (arrayElements) {
    if (const auto* index = dynamic_cast<const ArrayIndexVariable*>(&variable)) {
      AString element;
      if (index->GetArrayElementText(value.GetIntValue(), element)) {
        if (IsLiteral(element) && mode != val::kVariationKeyQuotedArrayElements) {
          // Shown by the file-name rule, without the quotes of the literal.
          element = FileNameText(element, mode);
          element = AString(std::u16string_view(element).substr(1, element.size() - 2));
        }
        text = std::move(element);
      }
    }
  }
  return text;
}

void SortPairs(std::vector<Pair>& pairs) {
  std::stable_sort(pairs.begin(), pairs.end(), [](const Pair& a, const Pair& b) {
    const int blind = a.mName.CompareNoCase(b.mName);
    if (blind != 0) return blind < 0;
    return a.mName.Compare(b.mName) < 0;
  });
}

}  // namespace varkey
