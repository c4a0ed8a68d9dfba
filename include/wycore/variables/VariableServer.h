// SPDX-License-Identifier: Apache-2.0
//
// VariableServer.h - an object that answers variable names it keeps itself.
//
// A name space consults its variable servers after its own variables (the last server added
// first); the value manager may hold one as its last-chance resolver and one as the clipboard
// variable server. A server owns the variables it returns; they must live as long as anyone may
// use the pointer (as long as the server, normally).
//
// Lifetime: name spaces and the value manager keep plain pointers to servers; a server must be
// removed (or its name space destroyed) before the server dies.
#pragma once

#include <vector>

#include "wycore/io/AString.h"

class Variable;

class IVariableServer {
 public:
  virtual ~IVariableServer() = default;
  // The variable called `name` (names compare without regard to case unless the server says
  // otherwise), or null.
  virtual Variable* ResolveVariable(const AString& name) const = 0;
  // Appends the names the server can answer, for auto-completion; none by default (a server
  // that computes its answers may not be able to list them).
  virtual void GetVariableNames(std::vector<AString>& out) const { (void)out; }
};
