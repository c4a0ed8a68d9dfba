// SPDX-License-Identifier: Apache-2.0
//
// ArrayIndexVariable.cpp - the index variable of a sweep over the entries of a list.
#include "wycore/variables/ArrayIndexVariable.h"

#include <memory>

#include "wycore/value/DoubleArrayValue.h"
#include "wycore/value/StringArrayValue.h"

ArrayIndexVariable::ArrayIndexVariable(const AString& name, int index, const Variable* array)
    : Variable(name, static_cast<double>(index)) {
  SetArrayVariable(array);
}

ArrayIndexVariable::~ArrayIndexVariable() = default;

void ArrayIndexVariable::SetArrayVariable(const Variable* array) {
  if (array == nullptr) {
    mArray.Reset();
  } else {
    mArray = base::WeakPtr<const Variable>(array, array->GetLifetime());
  }
}

namespace {

bool EntryText(const ValueBase& list, int index, AString& text) {
  if (index < 0) return false;
  const auto i = static_cast<std::size_t>(index);
  if (const auto* reals = dynamic_cast<const DoubleArrayValue*>(&list)) {
    if (i >= reals->Values().size()) return false;
    Units::FloatToText(reals->Values()[i], reals->GetEntryUnits(i), text);
    return true;
  }
  if (const auto* texts = dynamic_cast<const StringArrayValue*>(&list)) {
    if (i >= texts->Entries().size()) return false;
    AString literal(u"\"");
    literal += texts->Entries()[i];
    literal += u'"';
    text = std::move(literal);
    return true;
  }
  return false;
}

}  // namespace

bool ArrayIndexVariable::GetArrayElementText(int index, AString& text) const {
  const Variable* array = mArray.Get();
  if (array == nullptr) return false;
  const ValueBase& held = array->GetValueBase();
  if (EntryText(held, index, text)) return true;
  // An expression that yields a list (a function of other lists, say) is read at its value.
  const std::unique_ptr<ValueBase> evaluated(held.CreateEvaluatedValueBase());
  return evaluated != nullptr && EntryText(*evaluated, index, text);
}

bool ArrayIndexVariable::GetArrayElementText(AString& text) const {
  return GetArrayElementText(GetIntValue(), text);
}
