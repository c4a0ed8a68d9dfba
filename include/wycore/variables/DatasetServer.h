// SPDX-License-Identifier: Apache-2.0
//
// DatasetServer.h - an object that serves datasets by name and ID.
//
// Post-processing results reach expressions as datasets: a server answers a dataset name with an
// ID of its own (IDs are meaningful only together with their server). Name spaces list dataset
// servers and resolve dataset names through them (the last server added first).
//
// Lifetime: name spaces keep plain pointers; a server must outlive the name spaces that list it.
#pragma once

#include <vector>

#include "wycore/io/AString.h"
#include "wycore/value/ParameterType.h"

class IDatasetServer {
 public:
  virtual ~IDatasetServer() = default;
  // The ID of the dataset called `name`, or -1 when the server has none of that name.
  virtual int ResolveDataset(const AString& name) const = 0;
  // The kind of dataset `id` (kDynamicDoubleDoubleDatasetParam: real y over real x, or
  // kDynamicDoubleComplexDatasetParam); kNotParam for an unknown ID.
  virtual val::ParameterType GetDatasetType(int id) const = 0;
  // Appends the names of the datasets served; none by default.
  virtual void GetDatasetNames(std::vector<AString>& out) const { (void)out; }
};
