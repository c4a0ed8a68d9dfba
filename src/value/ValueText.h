// SPDX-License-Identifier: Apache-2.0
//
// ValueText.h - private helpers that write and read the texts of the value classes.
//
// One place decides how numbers, complex numbers, quoted texts and lists are spelled, so that
// every class writes what Value::ReadValueText reads (layout in docs/values.md). Readers never
// recurse on user input: lists are split iteratively and at most two levels are descended.
#pragma once

#include <string_view>
#include <vector>

#include "wycore/core/AComplex.h"
#include "wycore/io/AString.h"
#include "wycore/units/Units.h"

namespace valtext {

// Whether texts are to carry the units' names now (the process-wide switch; true before the unit
// manager exists, without firing its check).
bool WriteUnits();
// `si` in `units` with the default double format, followed by the units' name when `writeUnits`.
AString Number(double si, Units::FullUnitType units, bool writeUnits);
// The same for a complex number: "re + imj" with the units' name at the end.
AString Complex(const AComplex<double>& si, Units::FullUnitType units, bool writeUnits);

// `text` between double quotes, with '"' and '\' escaped by '\'.
AString Quote(const AString& text);
// The reverse of Quote for a whole literal; false when `literal` is not one.
bool Unquote(std::u16string_view literal, AString& out);

// Blanks (space, tab) removed at both ends.
std::u16string_view Trim(std::u16string_view text);
// Splits `body` at the commas that stand outside quotes, brackets and parentheses; the parts are
// trimmed. An empty (or blank) body gives no parts. False when quotes, brackets or parentheses
// do not balance.
bool SplitTopLevel(std::u16string_view body, std::vector<std::u16string_view>& parts);
// When `text` is `tag(...)` (tag without regard to case, blanks allowed before "("), the text
// between the parentheses; false otherwise.
bool TaggedBody(std::u16string_view text, std::u16string_view tag, std::u16string_view& body);

// One real number with optional units (a number without units is in `defaultUnits`), into SI.
bool ReadReal(std::u16string_view text, Units::FullUnitType defaultUnits, double& si,
              Units::FullUnitType& units);
// One real or complex number with optional units, into SI.
bool ReadComplex(std::u16string_view text, Units::FullUnitType defaultUnits, AComplex<double>& si,
                 Units::FullUnitType& units, bool& hasImaginary);
// A whole 32-bit integer (optional sign, decimal digits, blanks around).
bool ReadInt(std::u16string_view text, std::int32_t& value);

// The unit code of degrees, for the angles of arcs (90 when the unit tables have none).
Units::FullUnitType DegreeUnits();

}  // namespace valtext
