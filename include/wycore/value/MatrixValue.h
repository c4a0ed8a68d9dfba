// SPDX-License-Identifier: Apache-2.0
//
// MatrixValue.h - the matrix values: real, complex and text matrices.
//
// MatrixValue holds the display units shared by all entries (numbers are SI) and adds the entry
// operations GetEntryText, GetNumRows, GetNumCols and GetValue(row, column). The text of a matrix
// lists its rows, "[[a, b], [c, d]]", each entry written like a value of its kind
// (docs/values.md). An entry outside the matrix reads as NaN with the empty text. Equality: the
// same kind and shape, entries by the value model's number equality (texts exactly).
#pragma once

#include "wycore/value/ValueBase.h"

class WYCORE_API MatrixValue : public ValueBase {
 public:
  ~MatrixValue() override;

  MatrixSizeInfo GetMatrixSize() const override;
  AString GetValueText() const override;
  void GetValueText(AString& text, AString& units, AString& suffix) const override;
  Units::FullUnitType GetUnits() const override { return mUnits; }

  // The text of one entry (the empty text out of range).
  virtual AString GetEntryText(int row, int column) const = 0;
  virtual int GetNumRows() const = 0;
  virtual int GetNumCols() const = 0;
  // One entry as a real number (real part; NaN out of range or not a number).
  using ValueBase::GetValue;
  virtual double GetValue(int row, int column) const = 0;

 protected:
  explicit MatrixValue(Units::FullUnitType units) : mUnits(units) {}
  MatrixValue(const MatrixValue&) = default;
  // "[[a, b], [c, d]]" with the entries written by EntryText.
  AString ListText(bool writeUnits) const;
  // One entry's text, with or without the units' names (the empty text out of range).
  virtual AString EntryText(int row, int column, bool writeUnits) const = 0;

  Units::FullUnitType mUnits;
};

class WYCORE_API DoubleMatrixValue : public MatrixValue {
 public:
  explicit DoubleMatrixValue(const TNT::Matrix<double>& matrix = TNT::Matrix<double>(),
                             Units::FullUnitType units = Units::NoUnits)
      : MatrixValue(units), mMatrix(matrix) {}
  ~DoubleMatrixValue() override;

  TNT::Matrix<double> GetDoubleMatrixValue() const override { return mMatrix; }
  TNT::Matrix<AComplex<double>> GetComplexMatrixValue() const override;
  ValueBase* CloneValueBase() const override;
  bool IsEqual(const ValueBase& other) const override;
  val::ParameterType GetParameterType() const override { return val::kDoubleMatrixParam; }
  AString GetEntryText(int row, int column) const override;
  int GetNumRows() const override { return mMatrix.num_rows(); }
  int GetNumCols() const override { return mMatrix.num_cols(); }
  using MatrixValue::GetValue;
  double GetValue(int row, int column) const override;

 protected:
  AString EntryText(int row, int column, bool writeUnits) const override;

 private:
  TNT::Matrix<double> mMatrix;  // SI
};

class WYCORE_API ComplexMatrixValue : public MatrixValue {
 public:
  explicit ComplexMatrixValue(
      const TNT::Matrix<AComplex<double>>& matrix = TNT::Matrix<AComplex<double>>(),
      Units::FullUnitType units = Units::NoUnits)
      : MatrixValue(units), mMatrix(matrix) {}
  ~ComplexMatrixValue() override;

  TNT::Matrix<AComplex<double>> GetComplexMatrixValue() const override { return mMatrix; }
  ValueBase* CloneValueBase() const override;
  bool IsEqual(const ValueBase& other) const override;
  val::ParameterType GetParameterType() const override { return val::kComplexMatrixParam; }
  AString GetEntryText(int row, int column) const override;
  int GetNumRows() const override { return mMatrix.num_rows(); }
  int GetNumCols() const override { return mMatrix.num_cols(); }
  using MatrixValue::GetValue;
  double GetValue(int row, int column) const override;

 protected:
  AString EntryText(int row, int column, bool writeUnits) const override;

 private:
  TNT::Matrix<AComplex<double>> mMatrix;  // SI
};

// Entries are plain texts (no quotes); their text in the matrix is the quoted literal.
class WYCORE_API StringMatrixValue : public MatrixValue {
 public:
  explicit StringMatrixValue(const T_2DMatrix<AString>& matrix = T_2DMatrix<AString>())
      : MatrixValue(Units::NoUnits), mMatrix(matrix) {}
  ~StringMatrixValue() override;

  T_2DMatrix<AString> GetStringMatrixValue() const override { return mMatrix; }
  ValueBase* CloneValueBase() const override;
  bool IsEqual(const ValueBase& other) const override;
  val::ParameterType GetParameterType() const override { return val::kStringMatrixParam; }
  AString GetEntryText(int row, int column) const override;
  int GetNumRows() const override { return mMatrix.GetNumRows(); }
  int GetNumCols() const override { return mMatrix.GetNumCols(); }
  using MatrixValue::GetValue;
  // The entry read as a number with optional units; NaN when it is not one.
  double GetValue(int row, int column) const override;

 protected:
  AString EntryText(int row, int column, bool writeUnits) const override;

 private:
  T_2DMatrix<AString> mMatrix;
};
