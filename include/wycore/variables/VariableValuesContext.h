// SPDX-License-Identifier: Apache-2.0
//
// VariableValuesContext.h - applying an assignment of values to variables for a while.
//
// While a VariableValuesContext lives, each variable of its assignment holds the assigned value
// (Variable::PassParameter with the context as client); its destructor gives every variable back
// what it held before (UnpassParameter, in the reverse order). Contexts nest like scopes: the
// innermost assignment wins, and destroying contexts in the reverse order of their construction
// restores each earlier state exactly. NonNestableVariableValuesContext is the same for code
// that must know whether an assignment is in force (a process-wide flag) and allows no nesting.
// VariableValuesRestorer takes a snapshot of variables and puts it back when it goes, whatever
// was done to the variables in between.
//
// The variables must outlive the context. Contexts are not copyable. Threading: one thread, the
// one that owns the design data (the flag of NonNestableVariableValuesContext is unlocked).
#pragma once

#include <vector>

#include "wycore/Export.h"
#include "wycore/variables/VariableValues.h"

class Variable;

class WYCORE_API VariableValuesContext {
 public:
  // Puts the values of `values` in force. The assignment is read now; later changes to it do not
  // reach the variables.
  explicit VariableValuesContext(const VariableValues& values);
  virtual ~VariableValuesContext();
  VariableValuesContext(const VariableValuesContext&) = delete;
  VariableValuesContext& operator=(const VariableValuesContext&) = delete;

 private:
  std::vector<Variable*> mVariables;  // in the order their values were passed
};

class WYCORE_API NonNestableVariableValuesContext : public VariableValuesContext {
 public:
  // A second context of this kind while one lives fires the check "!mParametersWerePassed"; the
  // values are applied all the same (they nest correctly), and the flag stays set until the
  // outer context goes.
  explicit NonNestableVariableValuesContext(const VariableValues& values);
  ~NonNestableVariableValuesContext() override;

  // Whether a context of this kind is in force.
  static bool AreParametersPassed() { return mParametersWerePassed; }

 private:
  static bool mParametersWerePassed;
  bool mPrevious;
};

class WYCORE_API VariableValuesRestorer {
 public:
  // Takes each variable (null entries skipped) with its current value and keeps that in force;
  // the variables may be changed meanwhile, and get the snapshot back when the restorer goes.
  explicit VariableValuesRestorer(const std::vector<Variable*>& variables);
  ~VariableValuesRestorer();
  VariableValuesRestorer(const VariableValuesRestorer&) = delete;
  VariableValuesRestorer& operator=(const VariableValuesRestorer&) = delete;

  const VariableValues& GetVariableValues() const { return mValues; }

 private:
  VariableValues mValues;
  VariableValuesContext mContext;  // after mValues: built from it, and gone before it
};
