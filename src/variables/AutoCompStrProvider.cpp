// SPDX-License-Identifier: Apache-2.0
//
// AutoCompStrProvider.cpp - completion candidates for the word before the cursor.
#include "wycore/variables/AutoCompStrProvider.h"

#include <algorithm>

AutoCompStrProvider::AutoCompStrProvider(const VariableNameSpace& nameSpace, bool constants,
                                         bool intrinsics, bool predefined, bool functions)
    : mNameSpace(nameSpace),
      mConstants(constants),
      mIntrinsics(intrinsics),
      mPredefined(predefined),
      mFunctions(functions) {}

std::vector<AString> AutoCompStrProvider::GetMatchingStrings(const AString& prefix) const {
  std::vector<AString> out;
  mNameSpace.GetMatchingStrings(prefix, mConstants, mIntrinsics, mPredefined, out);
  if (mFunctions) mNameSpace.GetMatchingFunctions(prefix, out);
  return out;
}

AString AutoCompStrProvider::GetWordBeforeCursor(const AString& text, std::size_t cursor) {
  cursor = std::min(cursor, text.size());
  const AString& delimiters = VariableNameSpace::GetDelimiters();
  std::size_t begin = cursor;
  while (begin > 0 && delimiters.find(text[begin - 1]) == AString::npos) --begin;
  return text.substr(begin, cursor - begin);
}

std::vector<AString> AutoCompStrProvider::GetCompletions(const AString& text,
                                                         std::size_t cursor) const {
  return GetMatchingStrings(GetWordBeforeCursor(text, cursor));
}
