// SPDX-License-Identifier: Apache-2.0
//
// DoubleArrayValue.h - an ordered list of real numbers in SI with their display units.
//
// The units are either one code for all entries or one code per entry. The array answers every
// getter: the list and matrix getters with all entries (matrices 1 x n), the scalar getters from
// its first entry (0.0 for an empty array), GetStringArrayValue with the entries' texts. An array
// is not a constant (expressions index it at evaluation); receivers registered with it are kept,
// counted, as the owners its holder notifies. Equality: same length and every entry equal by the
// value model's number equality (units take no part).
#pragma once

#include <vector>

#include "wycore/value/ValueBase.h"

class WYCORE_API DoubleArrayValue : public ValueBase {
 public:
  explicit DoubleArrayValue(std::vector<double> values = {},
                            Units::FullUnitType units = Units::NoUnits);
  // One unit per entry; a list of another length than `values` fires the check
  // "units.size() == values.size()" and falls back to the first code (or 90) for all.
  DoubleArrayValue(std::vector<double> values, std::vector<Units::FullUnitType> units);
  DoubleArrayValue(const DoubleArrayValue& other);
  ~DoubleArrayValue() override;

  const std::vector<double>& Values() const { return mValues; }
  bool HasUnitPerEntry() const { return !mEntryUnits.empty(); }
  // The units of entry i (the common units when there is one code for all; 90 out of range).
  Units::FullUnitType GetEntryUnits(std::size_t i) const;

  MatrixSizeInfo GetMatrixSize() const override;
  double GetValue() const override;
  TNT::Matrix<double> GetDoubleMatrixValue() const override;
  TNT::Matrix<AComplex<double>> GetComplexMatrixValue() const override;
  T_2DMatrix<AString> GetStringMatrixValue() const override;
  std::vector<AString> GetStringArrayValue() const override;
  std::vector<double> GetDoubleArrayValue() const override { return mValues; }
  AString GetStringValue() const override;
  void GetValueText(AString& text, AString& units, AString& suffix) const override;
  AString GetValueText() const override;
  ValueBase* CloneValueBase() const override;
  bool IsEqual(const ValueBase& other) const override;
  bool IsConstant() const override { return false; }
  // The common units, or those of the first entry.
  Units::FullUnitType GetUnits() const override { return GetEntryUnits(0); }
  val::ParameterType GetParameterType() const override { return val::kDoubleArrayParam; }
  void AddRef(IReceiver* receiver) override { mOwners.Add(receiver); }
  void Release(IReceiver* receiver) override { mOwners.Remove(receiver); }
  bool HasRef(IReceiver* receiver) const override { return mOwners.Has(receiver); }
  void ChangeOwner(IReceiver* from, IReceiver* to) override { mOwners.ChangeOwner(from, to); }

 private:
  AString ListText(bool writeUnits) const;

  std::vector<double> mValues;                   // SI
  Units::FullUnitType mUnits = Units::NoUnits;   // for all entries, when mEntryUnits is empty
  std::vector<Units::FullUnitType> mEntryUnits;  // one per entry, or empty
  ReceiverManager mOwners;
};
