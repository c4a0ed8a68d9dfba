// SPDX-License-Identifier: Apache-2.0
//
// MatrixValue.cpp - real, complex and text matrices.
#include "wycore/value/MatrixValue.h"

#include <limits>

#include "ValueText.h"

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

template <class M>
bool InRange(const M& m, int row, int column) {
  return row >= 0 && column >= 0 && row < m.num_rows() && column < m.num_cols();
}

}  // namespace

// ---- MatrixValue ---------------------------------------------------------------------------

MatrixValue::~MatrixValue() = default;

MatrixSizeInfo MatrixValue::GetMatrixSize() const {
  return MatrixSizeInfo{GetNumRows(), GetNumCols()};
}

AString MatrixValue::ListText(bool writeUnits) const {
  const int rows = GetNumRows(), cols = GetNumCols();
  AString out(u"[");
  for (int r = 0; r < rows; ++r) {
    out += r == 0 ? u"[" : u", [";
    for (int c = 0; c < cols; ++c) {
      if (c != 0) out += u", ";
      out += EntryText(r, c, writeUnits);
    }
    out += u']';
  }
  out += u']';
  return out;
}

AString MatrixValue::GetValueText() const { return ListText(valtext::WriteUnits()); }

void MatrixValue::GetValueText(AString& text, AString& units, AString& suffix) const {
  text = ListText(false);
  units.clear();
  suffix.clear();
}

// ---- DoubleMatrixValue ---------------------------------------------------------------------

DoubleMatrixValue::~DoubleMatrixValue() = default;

TNT::Matrix<AComplex<double>> DoubleMatrixValue::GetComplexMatrixValue() const {
  TNT::Matrix<AComplex<double>> m(mMatrix.num_rows(), mMatrix.num_cols());
  for (int r = 0; r < mMatrix.num_rows(); ++r)
    for (int c = 0; c < mMatrix.num_cols(); ++c) m[r][c] = AComplex<double>(mMatrix[r][c], 0.0);
  return m;
}

ValueBase* DoubleMatrixValue::CloneValueBase() const { return new DoubleMatrixValue(*this); }

bool DoubleMatrixValue::IsEqual(const ValueBase& other) const {
  const DoubleMatrixValue* m = dynamic_cast<const DoubleMatrixValue*>(&other);
  if (m == nullptr || m->GetNumRows() != GetNumRows() || m->GetNumCols() != GetNumCols())
    return false;
  for (int r = 0; r < GetNumRows(); ++r)
    for (int c = 0; c < GetNumCols(); ++c)
      if (!val::AreNumbersEqual(mMatrix[r][c], m->mMatrix[r][c])) return false;
  return true;
}

AString DoubleMatrixValue::EntryText(int row, int column, bool writeUnits) const {
  if (!InRange(mMatrix, row, column)) return AString();
  return valtext::Number(mMatrix[row][column], mUnits, writeUnits);
}

AString DoubleMatrixValue::GetEntryText(int row, int column) const {
  return EntryText(row, column, valtext::WriteUnits());
}

double DoubleMatrixValue::GetValue(int row, int column) const {
  return InRange(mMatrix, row, column) ? mMatrix[row][column] : kNaN;
}

// ---- ComplexMatrixValue --------------------------------------------------------------------

ComplexMatrixValue::~ComplexMatrixValue() = default;

ValueBase* ComplexMatrixValue::CloneValueBase() const { return new ComplexMatrixValue(*this); }

bool ComplexMatrixValue::IsEqual(const ValueBase& other) const {
  const ComplexMatrixValue* m = dynamic_cast<const ComplexMatrixValue*>(&other);
  if (m == nullptr || m->GetNumRows() != GetNumRows() || m->GetNumCols() != GetNumCols())
    return false;
  for (int r = 0; r < GetNumRows(); ++r)
    for (int c = 0; c < GetNumCols(); ++c)
      if (!val::AreNumbersEqual(mMatrix[r][c], m->mMatrix[r][c])) return false;
  return true;
}

AString ComplexMatrixValue::EntryText(int row, int column, bool writeUnits) const {
  if (!InRange(mMatrix, row, column)) return AString();
  return valtext::Complex(mMatrix[row][column], mUnits, writeUnits);
}

AString ComplexMatrixValue::GetEntryText(int row, int column) const {
  return EntryText(row, column, valtext::WriteUnits());
}

double ComplexMatrixValue::GetValue(int row, int column) const {
  return InRange(mMatrix, row, column) ? mMatrix[row][column].real() : kNaN;
}

// ---- StringMatrixValue ---------------------------------------------------------------------

StringMatrixValue::~StringMatrixValue() = default;

ValueBase* StringMatrixValue::CloneValueBase() const { return new StringMatrixValue(*this); }

bool StringMatrixValue::IsEqual(const ValueBase& other) const {
  const StringMatrixValue* m = dynamic_cast<const StringMatrixValue*>(&other);
  return m != nullptr && m->mMatrix == mMatrix;
}

AString StringMatrixValue::EntryText(int row, int column, bool) const {
  if (!mMatrix.InRange(row, column)) return AString();
  return valtext::Quote(mMatrix(row, column));
}

AString StringMatrixValue::GetEntryText(int row, int column) const {
  return EntryText(row, column, false);
}

double StringMatrixValue::GetValue(int row, int column) const {
  if (!mMatrix.InRange(row, column)) return kNaN;
  double si = 0.0;
  Units::FullUnitType units = Units::NoUnits;
  return valtext::ReadReal(mMatrix(row, column), Units::NoUnits, si, units) ? si : kNaN;
}
