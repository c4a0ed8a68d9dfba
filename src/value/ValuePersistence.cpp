// SPDX-License-Identifier: Apache-2.0
//
// ValuePersistence.cpp - a value as one item of a block or an argument of a function item.
//
// The item holds the value's text as a single-quoted text token. Writing sets the process-wide
// must-write-units switch to the requested mode for the duration of the write (the value texts
// consult it) and restores the previous mode afterwards. Reading takes the text back through the
// value reader of this area, steered by the kind and units of the value being replaced, and
// falls back to the value manager for everything else (expressions); the value changes only when
// the text yields a value.
#include <memory>

#include "wycore/core/Check.h"
#include "wycore/io/Block.h"
#include "wycore/value/Value.h"

namespace {

// Sets the must-write-units switch for one scope.
class MustWriteUnitsScope {
 public:
  explicit MustWriteUnitsScope(bool on)
      : mActive(Units::IsInitialized()), mPrevious(mActive && Units::SetMustWriteUnits(on)) {}
  ~MustWriteUnitsScope() {
    if (mActive) Units::SetMustWriteUnits(mPrevious);
  }
  MustWriteUnitsScope(const MustWriteUnitsScope&) = delete;
  MustWriteUnitsScope& operator=(const MustWriteUnitsScope&) = delete;

 private:
  bool mActive;
  bool mPrevious;
};

}  // namespace

bool Value::WriteToBlock(io::CBlock& block, const AString& name, MustWriteUnits mode) const {
  if (name.empty()) return false;
  MustWriteUnitsScope scope(mode == kWriteUnits);
  block << io::CBlock_named_value(name, io::ValueToken(GetValueText()));
  return true;
}

Value::ReadResult Value::ReadFromBlock(const io::CBlock& block, const AString& name) {
  if (!WY_CHECK(!name.empty())) return kReadNotFound;
  const io::CBlock_item* item = block.Find(name);
  if (item == nullptr) return kReadNotFound;
  AString text;
  if (item->IsBlock() || !item->Query(text)) return kReadNoParse;
  ValueBase* read = ReadValueText(text, GetUnits(), GetParameterType());
  if (read == nullptr) read = CreateValueBase(text, GetUnits());
  if (read == nullptr) return kReadNoParse;
  Install(read);
  return kReadOk;
}

bool Value::Write(io::CBlock_func& func, const AChar* name, MustWriteUnits mode) const {
  MustWriteUnitsScope scope(mode == kWriteUnits);
  const io::CToken token = io::ValueToken(GetValueText());
  if (name == nullptr || name[0] == 0) {
    func << io::CBlock_value(token);
  } else {
    func << io::CBlock_named_value(AString(name), token);
  }
  return true;
}

Value::ReadResult Value::Read(const io::CBlock_func& func, const AChar* name) {
  const bool named = name != nullptr && name[0] != 0;
  const AString wanted = named ? AString(name) : AString();
  const io::CBlock_item* item = nullptr;
  for (const io::CBlockPtr& arg : func.Args()) {
    if (named ? (arg->IsNamedValue() && arg->Name() == wanted) : arg->IsValue()) {
      item = arg.get();
      break;
    }
  }
  if (item == nullptr) return kReadNotFound;
  AString text;
  if (!item->Query(text)) return kReadNoParse;
  ValueBase* read = ReadValueText(text, GetUnits(), GetParameterType());
  if (read == nullptr) read = CreateValueBase(text, GetUnits());
  if (read == nullptr) return kReadNoParse;
  Install(read);
  return kReadOk;
}
