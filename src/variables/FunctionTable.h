// SPDX-License-Identifier: Apache-2.0
//
// FunctionTable.h - the value manager's table of functions, by name (case-blind) and ID.
//
// Each distinct name gets an ID, in the order names are first registered, from 0; the
// overloads of one name keep their registration order, which breaks ties between equally good
// matches. The table owns its functions.
#pragma once

#include <map>
#include <memory>
#include <vector>

#include "NameLess.h"
#include "wycore/variables/ConstVisitor.h"
#include "wycore/variables/Function.h"

class FunctionTable {
 public:
  // The message codes GetFunction fails with.
  static constexpr int kUnknownFunction = 24499;
  static constexpr int kWrongArgumentCount = 24500;
  static constexpr int kWrongArgumentKinds = 24501;

  // Takes ownership. A null function fires "function != nullptr"; a nameless one
  // "!function->GetName().empty()"; a second overload with the same parameters "!\"Function
  // registered twice with the same parameters\"". Refused functions are deleted; false.
  bool Register(Function* function);
  bool Exists(const AString& name) const;
  const Function* Get(const AString& name, int argumentCount,
                      const std::vector<ValueState>& argumentStates, int& errorCode) const;
  void GetAll(const AString& name, std::vector<const Function*>& out) const;
  void GetAllNames(std::vector<AString>& out) const;
  int GetID(const AString& name) const;
  AString GetName(int id) const;
  void GetConversionNames(std::vector<AString>& out) const;
  void GetMatchingNames(const AString& prefix, IConstVisitor<AString>& visitor) const;

 private:
  struct Entry {
    int mID = -1;
    std::vector<std::unique_ptr<Function>> mOverloads;
  };

  std::map<AString, Entry, wycore::detail::NameLess> mByName;
  std::vector<AString> mNames;  // by ID, as first registered
};
