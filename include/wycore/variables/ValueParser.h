// SPDX-License-Identifier: Apache-2.0
//
// ValueParser.h - a hook through which an application parses texts the library does not know.
//
// Three places consult an IValueParser: the value manager's value parser (installed with
// Value::SetValueParser), tried by CreateValueBase after the library's own readers; a name space's
// first-chance parser, tried before them; and a name space's output-intrinsic parser, which turns
// the names of solver outputs into values (VariableNameSpace::OutputIntrinsicParseText). The
// expression parser also asks the installed value parser which extra characters may stand inside
// a name and hands it names and calls it cannot resolve.
//
// Lifetime: the library keeps plain pointers; an installed parser must outlive its installation.
#pragma once

#include "wycore/io/AString.h"
#include "wycore/units/Units.h"

class ValueBase;

class IValueParser {
 public:
  virtual ~IValueParser() = default;
  // A new value (owned by the caller) for `text`, with numbers written without units taken in
  // `defaultUnits`; null when the parser does not know the text. Reports nothing on failure.
  virtual ValueBase* ParseText(const AString& text, Units::FullUnitType defaultUnits) const = 0;
  // Whether `c` may continue a name ("a.b"); the library alone accepts only '.'.
  virtual bool IsNameCharacter(AChar c) const { return c == u'.'; }
};
