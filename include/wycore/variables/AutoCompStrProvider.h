// SPDX-License-Identifier: Apache-2.0
//
// AutoCompStrProvider.h - names to offer while a user types an expression.
//
// A provider works over one name space (a copy of it, taken when the provider is made, so the
// provider never dangles when the name space goes away) and offers four kinds of names besides
// the variables of that name space: constants, intrinsic variables, predefined variables and
// function names, each chosen when the provider is made. Intrinsic variables created with the
// flag set (docs/variables.md) are not offered. The word being completed is the text from the
// last delimiter before the cursor to the cursor; the delimiters are those of
// VariableNameSpace::GetDelimiters (blanks, operators, parentheses, brackets, comma, quote).
//
// Threading: one thread; it reads the value manager as it answers.
#pragma once

#include <vector>

#include "wycore/Export.h"
#include "wycore/io/AString.h"
#include "wycore/variables/VariableNameSpace.h"

class WYCORE_API AutoCompStrProvider {
 public:
  AutoCompStrProvider(const VariableNameSpace& nameSpace, bool constants, bool intrinsics,
                      bool predefined, bool functions);

  // The names (variables and the chosen kinds, then the function names when chosen) that start
  // with `prefix`, without regard to case; variables and names sorted case-blind, no duplicates.
  std::vector<AString> GetMatchingStrings(const AString& prefix) const;
  // The partial word that ends at `cursor` (clamped to the text) in `text`.
  static AString GetWordBeforeCursor(const AString& text, std::size_t cursor);
  // GetMatchingStrings of the word before the cursor.
  std::vector<AString> GetCompletions(const AString& text, std::size_t cursor) const;
  const AString& GetDelimiters() const { return VariableNameSpace::GetDelimiters(); }

 private:
  VariableNameSpace mNameSpace;
  bool mConstants;
  bool mIntrinsics;
  bool mPredefined;
  bool mFunctions;
};
