// SPDX-License-Identifier: Apache-2.0
//
// VariationKey.h - reading variation keys: the parser, and the variable server that serves the
// variables a key names.
//
// A key (written by VariableValues::GetVariationKey) is a sequence of named values Name='text'
// separated by white space. VariationKeyParserBase reads one and hands each (name, value text)
// to its handler; VariationKeyVariableServer makes a variable of each pair, so that expressions
// can be parsed and evaluated against a key without touching the design's variables.
//
// Ownership: a server owns the variables it makes. Expressions parsed against them register
// with them and must be gone before the plain server is (its destructor checks
// "no value still reads a variable of the key"); VariationKeyVariableServerWithRelease instead
// lets such variables live on until the last value reading them lets go.
// Threading: one thread; making the variables parses their texts in the current name space.
#pragma once

#include <map>
#include <vector>

#include "wycore/Export.h"
#include "wycore/io/AString.h"
#include "wycore/variables/VariableServer.h"

class Variable;

class WYCORE_API VariationKeyParserBase {
 public:
  virtual ~VariationKeyParserBase();

  // Reads `key` from the start: each item must be a keyword (the name; check
  // "tok.IsKeyword() == true" otherwise), "=" and a value, read first as a quoted text and,
  // failing that, from the same place as a plain number, boolean or word (check
  // "in.fail() == false" when that fails too). HandleNameValue is called for each pair in the
  // key's order. Returns the number of pairs when the whole key was read (0 for an empty key);
  // -1 when reading stopped at a bad item, after the pairs before it were handed over.
  int ParseKey(const AString& key);

 protected:
  // One pair of the key: the name as written and the value's text (without the quotes).
  virtual void HandleNameValue(const AString& name, const AString& valueText) = 0;
};

class WYCORE_API VariationKeyVariableServer : public IVariableServer {
 public:
  // Reads `key` and makes a variable for each pair (a name written twice keeps its first value).
  // Values are read as values write themselves (Value::ReadValueText), else as expressions
  // (Value::CreateValueBase) in a name space that holds the key's variables before the current
  // one, so that a value may read other variables of the key in any order and variables of the
  // current name space besides. A text that reads as no value leaves its variable 0 without
  // units (the parser has posted its message); a key that does not parse fires ParseKey's checks
  // and keeps the pairs before the bad item.
  explicit VariationKeyVariableServer(const AString& key);
  ~VariationKeyVariableServer() override;
  VariationKeyVariableServer(const VariationKeyVariableServer&) = delete;
  VariationKeyVariableServer& operator=(const VariationKeyVariableServer&) = delete;

  // The variable of exactly this name, else the first whose name equals it without regard to
  // case, else null.
  Variable* ResolveVariable(const AString& name) const override;
  void GetVariableNames(std::vector<AString>& out) const override;
  // The variables in the order of their names (exact, case counting).
  void GetVariables(std::vector<Variable*>& out) const;

  const AString& GetKey() const { return mKey; }
  // Whether the whole key was read and every value text yielded a value.
  bool IsValid() const { return mValid; }

 protected:
  // Whether the destructor hands variables that values still read over to those values
  // (VariationKeyVariableServerWithRelease) instead of deleting them.
  explicit VariationKeyVariableServer(const AString& key, bool releaseToOwners);

 private:
  void Build();

  AString mKey;
  std::map<AString, Variable*> mVariables;  // owned; names compared exactly
  bool mValid = true;
  bool mReleaseToOwners = false;
};

// A key server whose variables are released when their owners go away: at its destruction,
// a variable that no value reads is deleted, and one that values still read is left to them and
// deletes itself when the last of them releases it. The values of the variables are made
// constant (evaluated) first, so that no variable of the key keeps another one alive.
class WYCORE_API VariationKeyVariableServerWithRelease : public VariationKeyVariableServer {
 public:
  explicit VariationKeyVariableServerWithRelease(const AString& key);
  ~VariationKeyVariableServerWithRelease() override;
};
