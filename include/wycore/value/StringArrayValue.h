// SPDX-License-Identifier: Apache-2.0
//
// StringArrayValue.h - an ordered list of texts (for example the names of datasets).
//
// Entries are plain texts, without quotes. The array answers every getter: the list getters with
// all entries (a 1 x n matrix for GetStringMatrixValue), the scalar getters from its first entry
// (GetValue reads it as a number with optional units, NaN when it is not one, 0.0 for an empty
// array; GetStringValue gives it as a literal). An array is not a constant: expressions index it
// when they are evaluated. Receivers registered with it (AddRef) are kept, counted, and hear
// nothing from the array itself; they are the owners its holder notifies.
#pragma once

#include <vector>

#include "wycore/value/ValueBase.h"

class WYCORE_API StringArrayValue : public ValueBase {
 public:
  explicit StringArrayValue(std::vector<AString> entries = {}) : mEntries(std::move(entries)) {}
  StringArrayValue(const StringArrayValue& other) : ValueBase(other), mEntries(other.mEntries) {}
  ~StringArrayValue() override;

  const std::vector<AString>& Entries() const { return mEntries; }
  void SetEntries(std::vector<AString> entries) { mEntries = std::move(entries); }

  MatrixSizeInfo GetMatrixSize() const override;
  double GetValue() const override;
  T_2DMatrix<AString> GetStringMatrixValue() const override;
  std::vector<AString> GetStringArrayValue() const override { return mEntries; }
  std::vector<double> GetDoubleArrayValue() const override;
  AString GetStringValue() const override;
  AString GetValueText() const override;
  ValueBase* CloneValueBase() const override;
  bool IsEqual(const ValueBase& other) const override;
  bool IsConstant() const override { return false; }
  val::ParameterType GetParameterType() const override { return val::kTextStringArrayParam; }
  void AddRef(IReceiver* receiver) override { mOwners.Add(receiver); }
  void Release(IReceiver* receiver) override { mOwners.Remove(receiver); }
  bool HasRef(IReceiver* receiver) const override { return mOwners.Has(receiver); }
  void ChangeOwner(IReceiver* from, IReceiver* to) override { mOwners.ChangeOwner(from, to); }

 private:
  std::vector<AString> mEntries;
  ReceiverManager mOwners;
};
