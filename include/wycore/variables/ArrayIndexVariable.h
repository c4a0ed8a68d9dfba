// SPDX-License-Identifier: Apache-2.0
//
// ArrayIndexVariable.h - a variable whose value is an index into the list another variable
// holds.
//
// A sweep over the entries of a list (the lengths [1mm, 2mm, 5mm], the files ["a.csv", "b.csv"])
// is a sweep of an index; the variation key can show the entry the index selects instead of the
// bare index (VariableValues::GetVariationKey with array elements). Indices count from 0, as in
// expressions (a[0] is the first entry).
//
// Ownership: the array variable is not owned; it is watched through its lifetime token, so an
// index whose array has gone selects nothing. Threading: as every variable, one thread.
#pragma once

#include "wycore/Export.h"
#include "wycore/variables/Variable.h"
#include "wycore/variables/WeakPointer.h"

class WYCORE_API ArrayIndexVariable : public Variable {
 public:
  // The value is the integer `index` (a float without units); `array` may be null.
  ArrayIndexVariable(const AString& name, int index, const Variable* array);
  ~ArrayIndexVariable() override;

  // The variable holding the list, or null (none given, or destroyed since).
  const Variable* GetArrayVariable() const { return mArray.Get(); }
  void SetArrayVariable(const Variable* array);

  // The text of entry `index` of the list: a real list's entry as FloatValue writes it (number
  // and units, with the unit manager's default double format), a string list's entry as a
  // string literal ("\"b.csv\""). A value that is not a list itself is evaluated first. False,
  // with `text` unchanged, when there is no array, it holds no list of these kinds, or `index`
  // lies outside it.
  bool GetArrayElementText(int index, AString& text) const;
  // The same for the variable's current index.
  bool GetArrayElementText(AString& text) const;

 private:
  base::WeakPtr<const Variable> mArray;
};
