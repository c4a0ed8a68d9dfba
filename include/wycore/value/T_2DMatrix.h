// SPDX-License-Identifier: Apache-2.0
//
// T_2DMatrix.h - a small dense row-major matrix of any copyable element type.
//
// Used for matrices of texts (StringMatrixValue), where TNT's numeric matrix does not fit.
// Indices are zero-based; At() checks them and Get() answers a default element out of range.
#pragma once

#include <cstddef>
#include <vector>

template <class T>
class T_2DMatrix {
 public:
  T_2DMatrix() = default;
  T_2DMatrix(int rows, int cols, const T& fill = T()) { Resize(rows, cols, fill); }

  int GetNumRows() const { return mRows; }
  int GetNumCols() const { return mCols; }
  bool Empty() const { return mRows == 0 || mCols == 0; }

  // Replaces the content by rows x cols copies of `fill`. Negative sizes count as 0, and a matrix
  // with no rows or no columns is 0 x 0.
  void Resize(int rows, int cols, const T& fill = T()) {
    mRows = rows > 0 ? rows : 0;
    mCols = cols > 0 ? cols : 0;
    if (mRows == 0 || mCols == 0) mRows = mCols = 0;  // no half-empty shapes
    mData.assign(static_cast<std::size_t>(mRows) * static_cast<std::size_t>(mCols), fill);
  }

  bool InRange(int row, int col) const {
    return row >= 0 && row < mRows && col >= 0 && col < mCols;
  }

  // Unchecked element access (the indices must be in range).
  T& operator()(int row, int col) { return mData[Index(row, col)]; }
  const T& operator()(int row, int col) const { return mData[Index(row, col)]; }

  // The element, or a default-constructed one when the indices are out of range.
  T Get(int row, int col) const { return InRange(row, col) ? mData[Index(row, col)] : T(); }
  // Stores the element; false when the indices are out of range.
  bool Set(int row, int col, const T& value) {
    if (!InRange(row, col)) return false;
    mData[Index(row, col)] = value;
    return true;
  }

  const std::vector<T>& Data() const { return mData; }

  friend bool operator==(const T_2DMatrix& a, const T_2DMatrix& b) {
    return a.mRows == b.mRows && a.mCols == b.mCols && a.mData == b.mData;
  }

 private:
  std::size_t Index(int row, int col) const {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(mCols) +
           static_cast<std::size_t>(col);
  }

  int mRows = 0;
  int mCols = 0;
  std::vector<T> mData;
};
