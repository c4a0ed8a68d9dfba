// SPDX-License-Identifier: Apache-2.0
//
// ValueText.cpp - spelling and reading the texts of the value classes.
#include "ValueText.h"

#include <charconv>
#include <string>

#include "wycore/units/UnitDefinition.h"

namespace valtext {

bool WriteUnits() { return !Units::IsInitialized() || Units::MustWriteUnits(); }

AString Number(double si, Units::FullUnitType units, bool writeUnits) {
  AString out;
  if (!Units::IsInitialized()) return out;
  Units::FloatToText(si, units, out, Units::GetDefaultDoubleFormat(), writeUnits);
  return out;
}

AString Complex(const AComplex<double>& si, Units::FullUnitType units, bool writeUnits) {
  AString out;
  if (!Units::IsInitialized()) return out;
  Units::ComplexToText(si, units, out, writeUnits);
  return out;
}

AString Quote(const AString& text) {
  AString out;
  out.reserve(text.size() + 2);
  out += u'"';
  for (AChar c : text) {
    if (c == u'"' || c == u'\\') out += u'\\';
    out += c;
  }
  out += u'"';
  return out;
}

bool Unquote(std::u16string_view literal, AString& out) {
  if (literal.size() < 2 || literal.front() != u'"' || literal.back() != u'"') return false;
  AString result;
  for (std::size_t i = 1; i + 1 < literal.size(); ++i) {
    AChar c = literal[i];
    if (c == u'\\') {
      if (i + 2 >= literal.size()) return false;  // a lone '\' before the closing quote
      c = literal[++i];
    } else if (c == u'"') {
      return false;  // an unescaped quote inside
    }
    result += c;
  }
  out = std::move(result);
  return true;
}

std::u16string_view Trim(std::u16string_view text) {
  while (!text.empty() && (text.front() == u' ' || text.front() == u'\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == u' ' || text.back() == u'\t')) text.remove_suffix(1);
  return text;
}

bool SplitTopLevel(std::u16string_view body, std::vector<std::u16string_view>& parts) {
  parts.clear();
  if (Trim(body).empty()) return true;
  std::u16string closers;  // expected closing characters, innermost last
  bool inQuote = false;
  std::size_t start = 0;
  for (std::size_t i = 0; i < body.size(); ++i) {
    const AChar c = body[i];
    if (inQuote) {
      if (c == u'\\') {
        ++i;
      } else if (c == u'"') {
        inQuote = false;
      }
      continue;
    }
    switch (c) {
      case u'"':
        inQuote = true;
        break;
      case u'[':
        closers += u']';
        break;
      case u'(':
        closers += u')';
        break;
      case u']':
      case u')':
        if (closers.empty() || closers.back() != c) return false;
        closers.pop_back();
        break;
      case u',':
        if (closers.empty()) {
          parts.push_back(Trim(body.substr(start, i - start)));
          start = i + 1;
        }
        break;
      default:
        break;
    }
  }
  if (inQuote || !closers.empty()) return false;
  parts.push_back(Trim(body.substr(start)));
  return true;
}

bool TaggedBody(std::u16string_view text, std::u16string_view tag, std::u16string_view& body) {
  text = Trim(text);
  if (text.size() < tag.size() + 2) return false;
  for (std::size_t i = 0; i < tag.size(); ++i) {
    if (i18n::FoldCase(text[i]) != i18n::FoldCase(tag[i])) return false;
  }
  std::u16string_view rest = Trim(text.substr(tag.size()));
  if (rest.size() < 2 || rest.front() != u'(' || rest.back() != u')') return false;
  body = rest.substr(1, rest.size() - 2);
  return true;
}

bool ReadReal(std::u16string_view text, Units::FullUnitType defaultUnits, double& si,
              Units::FullUnitType& units) {
  text = Trim(text);
  if (text.empty() || !Units::IsInitialized()) return false;
  Units::UnitError error = Units::kUnitErrorNone;
  double value = 0.0;
  Units::FullUnitType found = defaultUnits;
  if (!Units::TextToFloat(AString(text), defaultUnits, value, found, error)) return false;
  si = value;
  units = found;
  return true;
}

bool ReadComplex(std::u16string_view text, Units::FullUnitType defaultUnits, AComplex<double>& si,
                 Units::FullUnitType& units, bool& hasImaginary) {
  text = Trim(text);
  if (text.empty() || !Units::IsInitialized()) return false;
  Units::UnitError error = Units::kUnitErrorNone;
  AComplex<double> value;
  Units::FullUnitType found = defaultUnits;
  bool imaginary = false;
  if (!Units::TextToComplex(AString(text), defaultUnits, value, found, imaginary, error))
    return false;
  si = value;
  units = found;
  hasImaginary = imaginary;
  return true;
}

bool ReadInt(std::u16string_view text, std::int32_t& value) {
  text = Trim(text);
  if (text.empty() || text.size() > 16) return false;
  std::string ascii;
  for (AChar c : text) {
    if (c > 127) return false;
    ascii += static_cast<char>(c);
  }
  const char* first = ascii.data();
  if (*first == '+') {  // from_chars takes no '+'
    ++first;
    if (*first == '-') return false;
  }
  const char* last = ascii.data() + ascii.size();
  std::int32_t v = 0;
  auto [ptr, ec] = std::from_chars(first, last, v);
  if (ec != std::errc() || ptr != last) return false;
  value = v;
  return true;
}

Units::FullUnitType DegreeUnits() {
  if (!Units::IsInitialized()) return Units::NoUnits;
  const UnitDefinition* deg = Units::FindUnitDef(AString(u"deg"));
  return deg != nullptr ? deg->GetFullUnitType() : Units::NoUnits;
}

}  // namespace valtext
