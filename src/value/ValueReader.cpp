// SPDX-License-Identifier: Apache-2.0
//
// ValueReader.cpp - Value::ReadValueText, the reader of the texts the value classes write.
//
// The shapes, tried in this order (docs/values.md):
//   kind hints: a character (the text as it stands, one character or none), an integer or an
//   enumeration index (a whole decimal number);
//   "\"...\""                      a string literal;
//   "[...]"                        a list: an array, or a matrix when every entry is a "[...]" row;
//   Circle(...), Arc(...), Region(...), dataset(...)   geometric parameters and datasets;
//   anything else                  one real or complex number with optional units.
// Lists are split without recursion and rows are one level deep, so no input can nest the
// reader deeper than that.
#include <memory>

#include "ValueText.h"
#include "wycore/value/CharValue.h"
#include "wycore/value/ComplexValue.h"
#include "wycore/value/DatasetValue.h"
#include "wycore/value/DoubleArrayValue.h"
#include "wycore/value/EnumValue.h"
#include "wycore/value/FloatValue.h"
#include "wycore/value/GeometryValues.h"
#include "wycore/value/IntValue.h"
#include "wycore/value/MatrixValue.h"
#include "wycore/value/StringArrayValue.h"
#include "wycore/value/StringValue.h"
#include "wycore/value/Value.h"

namespace {

using Parts = std::vector<std::u16string_view>;
using FUT = Units::FullUnitType;

bool IsQuoted(std::u16string_view t) { return !t.empty() && t.front() == u'"'; }
bool IsList(std::u16string_view t) { return !t.empty() && t.front() == u'['; }

// The inside of "[...]"; false when `t` is not one list.
bool ListBody(std::u16string_view t, std::u16string_view& body) {
  t = valtext::Trim(t);
  if (t.size() < 2 || t.front() != u'[' || t.back() != u']') return false;
  body = t.substr(1, t.size() - 2);
  return true;
}

// Quoted entries into texts; false unless every entry is a literal.
bool ReadTexts(const Parts& parts, std::vector<AString>& out) {
  out.clear();
  for (std::u16string_view p : parts) {
    AString text;
    if (!valtext::Unquote(p, text)) return false;
    out.push_back(std::move(text));
  }
  return true;
}

// Real entries with their units; false unless every entry is one real number.
bool ReadReals(const Parts& parts, FUT defaultUnits, std::vector<double>& values,
               std::vector<FUT>& units) {
  values.clear();
  units.clear();
  for (std::u16string_view p : parts) {
    double v = 0.0;
    FUT u = defaultUnits;
    bool imaginary = false;
    AComplex<double> z;
    if (!valtext::ReadComplex(p, defaultUnits, z, u, imaginary) || imaginary) return false;
    v = z.real();
    values.push_back(v);
    units.push_back(u);
  }
  return true;
}

ValueBase* ReadArray(const Parts& parts, FUT defaultUnits, val::ParameterType kind) {
  if (parts.empty()) {
    if (kind == val::kTextStringArrayParam) return new StringArrayValue();
    return new DoubleArrayValue({}, defaultUnits);
  }
  if (IsQuoted(parts.front())) {
    std::vector<AString> texts;
    if (!ReadTexts(parts, texts)) return nullptr;
    return new StringArrayValue(std::move(texts));
  }
  std::vector<double> values;
  std::vector<FUT> units;
  if (!ReadReals(parts, defaultUnits, values, units)) return nullptr;
  bool common = true;
  for (FUT u : units) common = common && u == units.front();
  if (common) return new DoubleArrayValue(std::move(values), units.front());
  return new DoubleArrayValue(std::move(values), std::move(units));
}

ValueBase* ReadMatrix(const Parts& rows, FUT defaultUnits, val::ParameterType kind) {
  std::vector<Parts> cells(rows.size());
  for (std::size_t r = 0; r < rows.size(); ++r) {
    std::u16string_view body;
    if (!ListBody(rows[r], body) || !valtext::SplitTopLevel(body, cells[r])) return nullptr;
    if (cells[r].size() != cells.front().size()) return nullptr;  // ragged
    for (std::u16string_view c : cells[r])
      if (IsList(c)) return nullptr;  // a matrix has two levels
  }
  const int nRows = static_cast<int>(rows.size());
  const int nCols = static_cast<int>(cells.front().size());
  const bool texts = nCols > 0 ? IsQuoted(cells.front().front()) : kind == val::kStringMatrixParam;
  if (texts) {
    T_2DMatrix<AString> m(nRows, nCols);
    std::vector<AString> row;
    for (int r = 0; r < nRows; ++r) {
      if (!ReadTexts(cells[r], row)) return nullptr;
      for (int c = 0; c < nCols; ++c) m(r, c) = row[c];
    }
    return new StringMatrixValue(m);
  }
  // Numbers: a complex matrix when asked for or when any entry has an imaginary part.
  TNT::Matrix<AComplex<double>> z(nRows, nCols);
  bool anyImaginary = kind == val::kComplexMatrixParam;
  FUT units = defaultUnits;
  for (int r = 0; r < nRows; ++r) {
    for (int c = 0; c < nCols; ++c) {
      FUT u = defaultUnits;
      bool imaginary = false;
      if (!valtext::ReadComplex(cells[r][c], defaultUnits, z[r][c], u, imaginary)) return nullptr;
      anyImaginary = anyImaginary || imaginary;
      if (r == 0 && c == 0) units = u;
    }
  }
  if (anyImaginary) return new ComplexMatrixValue(z, units);
  TNT::Matrix<double> m(nRows, nCols);
  for (int r = 0; r < nRows; ++r)
    for (int c = 0; c < nCols; ++c) m[r][c] = z[r][c].real();
  return new DoubleMatrixValue(m, units);
}

ValueBase* ReadList(std::u16string_view text, FUT defaultUnits, val::ParameterType kind) {
  std::u16string_view body;
  Parts parts;
  if (!ListBody(text, body) || !valtext::SplitTopLevel(body, parts)) return nullptr;
  const bool matrixKind = kind == val::kDoubleMatrixParam || kind == val::kComplexMatrixParam ||
                          kind == val::kStringMatrixParam;
  if (parts.empty() && matrixKind) {
    if (kind == val::kComplexMatrixParam) return new ComplexMatrixValue({}, defaultUnits);
    if (kind == val::kStringMatrixParam) return new StringMatrixValue();
    return new DoubleMatrixValue({}, defaultUnits);
  }
  std::size_t rows = 0;
  for (std::u16string_view p : parts) rows += IsList(p) ? 1 : 0;
  if (rows == 0) return ReadArray(parts, defaultUnits, kind);
  if (rows != parts.size()) return nullptr;  // rows mixed with scalars
  return ReadMatrix(parts, defaultUnits, kind);
}

// Reals of "Tag(...)" arguments: lengths in `defaultUnits`; the units of the first found.
bool ReadLengths(const Parts& parts, FUT defaultUnits, std::vector<double>& values, FUT& units) {
  std::vector<FUT> found;
  if (!ReadReals(parts, defaultUnits, values, found)) return false;
  units = found.empty() ? defaultUnits : found.front();
  return true;
}

ValueBase* ReadGeometry(std::u16string_view text, FUT defaultUnits) {
  std::u16string_view body;
  Parts parts;
  std::vector<double> v;
  FUT units = defaultUnits;
  if (valtext::TaggedBody(text, u"Circle", body)) {
    if (!valtext::SplitTopLevel(body, parts) || parts.size() != 3) return nullptr;
    if (!ReadLengths(parts, defaultUnits, v, units)) return nullptr;
    return new CircleValue(CircleParam{v[0], v[1], v[2]}, units);
  }
  if (valtext::TaggedBody(text, u"Arc", body)) {
    if (!valtext::SplitTopLevel(body, parts) || parts.size() != 5) return nullptr;
    if (!ReadLengths(Parts(parts.begin(), parts.begin() + 3), defaultUnits, v, units))
      return nullptr;
    std::vector<double> angles;
    FUT angleUnits;
    if (!ReadLengths(Parts(parts.begin() + 3, parts.end()), valtext::DegreeUnits(), angles,
                     angleUnits))
      return nullptr;
    return new ArcValue(ArcParam{v[0], v[1], v[2], angles[0], angles[1]}, units);
  }
  if (valtext::TaggedBody(text, u"Region", body)) {
    if (!valtext::SplitTopLevel(body, parts) || parts.size() % 2 != 0) return nullptr;
    if (!ReadLengths(parts, defaultUnits, v, units)) return nullptr;
    RegionParam region;
    for (std::size_t i = 0; i < v.size(); i += 2) region.mVertices.emplace_back(v[i], v[i + 1]);
    return new RegionValue(region, units);
  }
  if (valtext::TaggedBody(text, u"dataset", body)) {
    if (!valtext::SplitTopLevel(body, parts)) return nullptr;
    geom::Dataset dataset(defaultUnits, defaultUnits);
    for (std::size_t i = 0; i < parts.size(); ++i) {
      std::u16string_view point = parts[i];
      Parts xy;
      if (point.size() < 2 || point.front() != u'(' || point.back() != u')') return nullptr;
      if (!valtext::SplitTopLevel(point.substr(1, point.size() - 2), xy) || xy.size() != 2)
        return nullptr;
      double x = 0.0, y = 0.0;
      FUT xu = defaultUnits, yu = defaultUnits;
      if (!valtext::ReadReal(xy[0], defaultUnits, x, xu) ||
          !valtext::ReadReal(xy[1], defaultUnits, y, yu))
        return nullptr;
      if (i == 0) dataset.SetUnits(xu, yu);
      dataset.AddPoint(x, y);
    }
    return new DatasetValue(dataset);
  }
  return nullptr;
}

}  // namespace

ValueBase* Value::ReadValueText(const AString& text, Units::FullUnitType defaultUnits,
                                val::ParameterType kind) {
  // A character is the text as it stands: a blank or a quote is a character too.
  if (kind == val::kCharParam) {
    if (text.empty()) return new CharValue(0);
    if (text.size() == 1 && text[0] <= 0xFF) return new CharValue(static_cast<char>(text[0]));
  }
  const std::u16string_view t = valtext::Trim(text);
  if (t.empty()) return nullptr;
  if (kind == val::kIntParam || kind == val::kEnumParam) {
    std::int32_t i = 0;
    if (valtext::ReadInt(t, i)) {
      if (kind == val::kIntParam) return new IntValue(i);
      return new EnumValue(i);
    }
  }
  if (IsQuoted(t)) return StringValue::Parse(AString(t));
  if (IsList(t)) return ReadList(t, defaultUnits, kind);
  if (ValueBase* geometry = ReadGeometry(t, defaultUnits)) return geometry;

  AComplex<double> z;
  Units::FullUnitType units = defaultUnits;
  bool imaginary = false;
  if (!valtext::ReadComplex(t, defaultUnits, z, units, imaginary)) return nullptr;
  if (imaginary || kind == val::kComplexParam) return new ComplexValue(z, units);
  return new FloatValue(z.real(), units);
}
