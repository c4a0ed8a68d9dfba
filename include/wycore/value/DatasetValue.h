// SPDX-License-Identifier: Apache-2.0
//
// DatasetValue.h - a value that holds a static dataset of (x, y) points.
//
// Answers GetMatrixSize and GetDoubleMatrixValue as an n x 2 matrix of the points (SI),
// GetDoubleArrayValue with the y values, GetUnits with the y units, and the text
// "dataset((x1, y1), (x2, y2), ...)" with each coordinate written like a FloatValue in its axis
// units. The text of an empty dataset, "dataset()", carries no units. Equality: another dataset
// value with an equal dataset.
#pragma once

#include "wycore/value/Dataset.h"
#include "wycore/value/ValueBase.h"

class WYCORE_API DatasetValue : public ValueBase {
 public:
  explicit DatasetValue(const geom::Dataset& dataset = geom::Dataset()) : mDataset(dataset) {}
  ~DatasetValue() override;

  const geom::Dataset& GetDataset() const { return mDataset; }
  void SetDataset(const geom::Dataset& dataset) { mDataset = dataset; }

  MatrixSizeInfo GetMatrixSize() const override;
  TNT::Matrix<double> GetDoubleMatrixValue() const override;
  std::vector<double> GetDoubleArrayValue() const override { return mDataset.GetYValues(); }
  AString GetValueText() const override;
  ValueBase* CloneValueBase() const override;
  bool IsEqual(const ValueBase& other) const override;
  Units::FullUnitType GetUnits() const override { return mDataset.GetYUnits(); }
  val::ParameterType GetParameterType() const override { return val::kDatasetParam; }

 private:
  geom::Dataset mDataset;
};
