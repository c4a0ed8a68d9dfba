// SPDX-License-Identifier: Apache-2.0
//
// NumberReader.h - reads one number, with an optional imaginary suffix and unit, from text.
//
// The one reader of numbers written by users: the expression parser and Units::TextToFloat /
// TextToComplex share it, so that "3mm", "2.5e-3 m", "3j" or "1.#INF" mean the same everywhere.
// The syntax, read from a pointer into zero-terminated text:
//
//   1. optional blanks (the caller's white-space set), an optional "-" or "+";
//   2. digits, optionally "." and digits; at least one digit before or after the point;
//   3. the non-finite spellings, without regard to case: "1.#INF", "-1.#INF" (infinities),
//      "1.#IND", "-1.#IND", "1.$", "-1.$" (NaN); and, with no digit at all, "inf", "-inf" and
//      "nan", only when an operator character, a blank or the end of the text follows;
//   4. after optional blanks, "e"/"E", optional blanks, an optional sign, optional blanks and
//      digits form the exponent. With no digit: after a sign, the "e" is dropped and reading
//      resumes at the sign, which is then an operator ("2e+x" is 2 + x); with no sign and no blank
//      after the "e", a letter, digit or "_" behind it gives the "e" back to start a unit name
//      ("2em" is 2 with the unit "em"); otherwise the lone "e" and its blanks are dropped;
//   5. after optional blanks, "i" or "j" (either case) not followed by a letter, digit or "_"
//      makes the number imaginary ("3j", "2.5i"; "3jx" is 3 with the name "jx"); blanks after it
//      are skipped;
//   6. after optional blanks, a letter or "_" starts a unit name (letters, digits, "_"), looked
//      up without regard to case among all units.
//
// The digits are converted as the "C" locale reads them, whatever the user's locale. A number
// too large for a double reads as an infinity, one too small as zero, as wcstod does.
//
// Threading: the functions keep no state; unit lookups read the process's unit manager.
#pragma once

#include "wycore/Export.h"
#include "wycore/io/AString.h"

class UnitDefinition;

class WYCORE_API NumberReader {
 public:
  enum Status {
    kNoNumber = 0,     // no number starts at the pointer; the pointer is unchanged
    kNumber = 1,       // a number (and the unit behind it, if any) was read
    kUnknownUnit = 2,  // a number was read, but the name behind it is no unit
  };

  struct Number {
    double value = 0.0;                    // as written: in the unit behind it, not yet in SI
    bool isReal = true;                    // false when an imaginary suffix followed
    const UnitDefinition* unit = nullptr;  // the unit written behind the number, or null
    AString unitName;                      // that unit's text as written; empty when none
  };

  // The blanks of the static helpers of the expression parser: space and tab.
  static const AString& DefaultWhiteSpace();

  // Reads a number with its unit at `p`. On kNumber `p` stands after the unit (or after the
  // number and the blanks behind it); on kUnknownUnit after the unknown name; on kNoNumber it is
  // unchanged. With `readUnits` false, step 6 is skipped and `p` stands before any name.
  static Status Read(const AChar*& p, Number& out, const AString& whiteSpace,
                     bool readUnits = true);

  // Steps 1 to 5 only: the number and its imaginary suffix. False (p unchanged) when no number.
  static bool IsNumber2(const AChar*& p, double& value, bool& isReal, const AString& whiteSpace);
  // True when a number starts at `p` (nothing is consumed).
  static bool IsNumber(const AChar* p, const AString& whiteSpace);

  // The parser's shape of Read: true when a number was read. A name behind it that is no unit
  // leaves `unit` null and is returned in `unknownUnitName` (empty otherwise).
  static bool TextToNumber(const AChar*& p, double& value, const UnitDefinition*& unit,
                           bool& isReal, AString& unknownUnitName, const AString& whiteSpace);
  // As TextToNumber; `readUnits` false stops before any name behind the number.
  static bool TextToNumber2(const AChar*& p, double& value, const UnitDefinition*& unit,
                            bool& isReal, AString& unknownUnitName, const AString& whiteSpace,
                            bool readUnits);

  // After blanks (space, tab): a "-" is consumed and gives true; a "+" is consumed and gives
  // false; anything else leaves `p` unchanged and gives false.
  static bool IsNegative(const AChar*& p);
  // An "i" or "j" (either case) at `p` not followed by a letter, digit or "_": consumed with the
  // blanks (space, tab) behind it, true. Otherwise `p` is unchanged, false.
  static bool IsIorJ(const AChar*& p);

  // Reads a unit name (a letter or "_", then letters, digits, "_") after blanks. False and `p`
  // unchanged when no name starts there.
  static bool ReadName(const AChar*& p, AString& name, const AString& whiteSpace);
};
