// SPDX-License-Identifier: Apache-2.0
//
// ValueChanger.h - replacements of one function by another, applied when expressions are
// rewritten.
//
// An ordered list of (function to replace, replacement). A replacement must be callable wherever
// the replaced function was: it takes the same number of arguments (and is variadic exactly when
// the replaced one is), each parameter accepts what the replaced one's parameter accepted (the
// same kind, a parameter of any kind, or complex where real was taken), and its result has the
// same kind for the same arguments. A function has at most one replacement, and no chain of
// replacements may lead back to where it started.
//
// Ownership: the functions belong to the function table; the changer keeps plain pointers.
// Threading: one thread.
#pragma once

#include <utility>
#include <vector>

#include "wycore/Export.h"

class Function;

class WYCORE_API ValueChanger {
 public:
  // False (nothing added) for a null function, a function replaced by itself, a function that
  // already has a replacement, a replacement that does not fit (see the file comment), or one
  // that would close a chain into a loop.
  bool AddFunctionModifier(const Function* from, const Function* to);
  // Replaces every function of `functions` that has a replacement; with `followChains` a
  // replacement that is itself replaced is followed to the end of its chain. True when anything
  // was replaced.
  bool ApplyFunctionModifications(std::vector<const Function*>& functions, bool followChains) const;
  // The direct replacement of `in` in `out`; false (and `out` unchanged) when there is none.
  bool GetReplacementFunction(const Function*& out, const Function* in) const;
  bool WillFunctionBeReplaced(const Function* function) const;
  int GetNumModifiers() const { return static_cast<int>(mModifiers.size()); }
  void Clear() { mModifiers.clear(); }

 private:
  std::vector<std::pair<const Function*, const Function*>> mModifiers;
};
