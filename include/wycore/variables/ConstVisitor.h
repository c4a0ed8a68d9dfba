// SPDX-License-Identifier: Apache-2.0
//
// ConstVisitor.h - a callback interface for walking a collection without exposing it.
//
// The value manager feeds the names it matches (constants, intrinsic variables, functions) to an
// IConstVisitor<AString> one at a time; callers collect, filter or count them as they like.
#pragma once

template <class T>
class IConstVisitor {
 public:
  virtual ~IConstVisitor() = default;
  virtual void Visit(const T& item) = 0;
};
