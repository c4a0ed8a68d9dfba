// SPDX-License-Identifier: Apache-2.0
//
// Function.h - one entry of the function table that expressions call by name.
//
// A Function has a name, a list of parameters (each with the kind of value it takes), a rule for
// the state (kind and units) of its result, and a calculation: a routine that receives the
// evaluated arguments and produces the result. One name may be registered several times, for
// real and for complex arguments or for different numbers of arguments; the table picks the
// overload for a call by the argument count and the arguments' states (Value::GetFunction).
//
// Matching one argument of kind a to a parameter of kind p costs:
//   0  when a == p;
//   1  when a real (or integer, character, enumeration) argument meets a complex parameter, or an
//      integer, character or enumeration argument meets a real parameter (promotion);
//   2  when the parameter takes any kind (kNotParam);
//   no match otherwise.
// The overload with the lowest total cost wins; among equals the one registered first.
// A variadic function repeats its last parameter for every further argument.
//
// The table itself (registration, lookup, IDs) lives in the value manager and is reached through
// the static functions of Value. This header includes nothing of the variables area, so that the
// expression parser and evaluator can use it.
//
// Ownership: the table owns its functions. Threading: the table is filled at start-up and read
// afterwards; a Function is immutable once registered.
#pragma once

#include <functional>
#include <vector>

#include "wycore/Export.h"
#include "wycore/core/AComplex.h"
#include "wycore/io/AString.h"
#include "wycore/value/ValueState.h"

class ValueBase;

// The evaluated arguments of one call. Numbers are SI.
class WYCORE_API IFunctionArguments {
 public:
  virtual ~IFunctionArguments() = default;
  virtual int GetCount() const = 0;
  // The kind of argument i (kNotParam when out of range).
  virtual val::ParameterType GetKind(int i) const = 0;
  // Argument i as a real number (the real part of a complex one; NaN when out of range).
  virtual double GetDoubleArg(int i) const = 0;
  // Argument i as a complex number (imaginary part 0 for a real one).
  virtual AComplex<double> GetComplexArg(int i) const = 0;
  // Argument i as a text (strings; empty otherwise).
  virtual AString GetStringArg(int i) const = 0;
  // The value behind argument i when the caller has one (datasets, arrays); may be null.
  virtual const ValueBase* GetValueBaseArg(int i) const = 0;
};

// Where a calculation puts its result.
class WYCORE_API IFunctionResult {
 public:
  virtual ~IFunctionResult() = default;
  virtual void SetDoubleResult(double value) = 0;
  virtual void SetComplexResult(const AComplex<double>& value) = 0;
  virtual void SetStringResult(const AString& value) = 0;
};

// Arguments held in a vector of values, for callers outside the evaluator (and for tests).
class WYCORE_API ValueFunctionArguments : public IFunctionArguments {
 public:
  // The values are not copied; they must outlive this object.
  explicit ValueFunctionArguments(std::vector<const ValueBase*> values);
  int GetCount() const override;
  val::ParameterType GetKind(int i) const override;
  double GetDoubleArg(int i) const override;
  AComplex<double> GetComplexArg(int i) const override;
  AString GetStringArg(int i) const override;
  const ValueBase* GetValueBaseArg(int i) const override;

 private:
  std::vector<const ValueBase*> mValues;
};

// A result kept as the last thing set.
class WYCORE_API SimpleFunctionResult : public IFunctionResult {
 public:
  void SetDoubleResult(double value) override;
  void SetComplexResult(const AComplex<double>& value) override;
  void SetStringResult(const AString& value) override;

  // kNotParam until something is set; then kDoubleParam, kComplexParam or kStringParam.
  val::ParameterType GetKind() const { return mKind; }
  double GetDouble() const { return mNumber.real(); }
  const AComplex<double>& GetComplex() const { return mNumber; }
  const AString& GetString() const { return mText; }

 private:
  val::ParameterType mKind = val::kNotParam;
  AComplex<double> mNumber;
  AString mText;
};

class WYCORE_API Function {
 public:
  // One parameter: a name for messages and documentation, and the kind of value it takes
  // (kNotParam: any kind).
  struct Parameter {
    AString mName;
    val::ParameterType mKind = val::kDoubleParam;
  };

  // The state of the result: of kind `mKind` (kNotParam: the kind of argument
  // `mKindFromArgument`), with the units, unit type and decibel kind of argument
  // `mUnitsFromArgument` (-1: no units). A custom rule, when set, replaces both.
  struct ResultRule {
    val::ParameterType mKind = val::kDoubleParam;
    int mKindFromArgument = -1;
    int mUnitsFromArgument = -1;
    std::function<ValueState(const std::vector<ValueState>&)> mCustom;
  };

  // Returns false when the arguments are not acceptable (the evaluation then fails).
  using Calculation = std::function<bool(const IFunctionArguments&, IFunctionResult&)>;

  Function(const AString& name, std::vector<Parameter> parameters, ResultRule result,
           Calculation calculation, bool variadic = false, bool conversion = false);

  const AString& GetName() const { return mName; }
  // The number of parameters (for a variadic function, the least number of arguments).
  int GetArgumentCount() const { return static_cast<int>(mParameters.size()); }
  const std::vector<Parameter>& GetParameters() const { return mParameters; }
  bool IsVariadic() const { return mVariadic; }
  // A conversion function turns a quantity into a form for display ("dB", "mag", "re", ...);
  // Value::GetConversionFunctionNames lists them.
  bool IsConversionFunction() const { return mConversion; }
  bool HasCalculation() const { return static_cast<bool>(mCalculation); }

  // Whether the function takes `count` arguments.
  bool AcceptsArgumentCount(int count) const;
  // The cost of calling with these states (see the file comment), or -1 when they do not fit.
  // A missing state counts as kind kNotParam.
  int GetMatchCost(int count, const std::vector<ValueState>& states) const;
  // The state of the result for these argument states.
  ValueState GetResultType(const std::vector<ValueState>& states) const;
  // Runs the calculation. A function without one fires the check
  // "!\"Function has no calculation\"" and returns false.
  bool Calculate(const IFunctionArguments& arguments, IFunctionResult& result) const;
  // Whether the parameter lists (and variadic flags) of the two are the same.
  bool HasSameSignature(const Function& other) const;

 private:
  AString mName;
  std::vector<Parameter> mParameters;
  ResultRule mResult;
  Calculation mCalculation;
  bool mVariadic = false;
  bool mConversion = false;
};
