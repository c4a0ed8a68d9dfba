// SPDX-License-Identifier: Apache-2.0
//
// DatasetValue.cpp - a value holding a static dataset.
#include "wycore/value/DatasetValue.h"

#include "ValueText.h"

DatasetValue::~DatasetValue() = default;

MatrixSizeInfo DatasetValue::GetMatrixSize() const {
  return MatrixSizeInfo{static_cast<int>(mDataset.Size()), 2};
}

TNT::Matrix<double> DatasetValue::GetDoubleMatrixValue() const {
  const int n = static_cast<int>(mDataset.Size());
  if (n == 0) return TNT::Matrix<double>();
  TNT::Matrix<double> m(n, 2);
  for (int i = 0; i < n; ++i) {
    m[i][0] = mDataset.Points()[i].first;
    m[i][1] = mDataset.Points()[i].second;
  }
  return m;
}

AString DatasetValue::GetValueText() const {
  const bool w = valtext::WriteUnits();
  AString out(u"dataset(");
  bool first = true;
  for (const auto& p : mDataset.Points()) {
    if (!first) out += u", ";
    first = false;
    out += u'(';
    out += valtext::Number(p.first, mDataset.GetXUnits(), w);
    out += u", ";
    out += valtext::Number(p.second, mDataset.GetYUnits(), w);
    out += u')';
  }
  out += u')';
  return out;
}

ValueBase* DatasetValue::CloneValueBase() const { return new DatasetValue(*this); }

bool DatasetValue::IsEqual(const ValueBase& other) const {
  const DatasetValue* d = dynamic_cast<const DatasetValue*>(&other);
  return d != nullptr && d->mDataset.IsEqual(mDataset);
}
