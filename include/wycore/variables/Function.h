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
// A function computes in one of two ways:
//   - a plain routine over the evaluation stack (StackRoutine): it pops exactly its arguments
//     from the double_stack and pushes one result itself. The built-in scalar functions take this
//     form because it is the fastest (no argument objects, no allocation);
//   - a routine of the newer form (ContextCalculation, or the older Calculation without the
//     context): it reads its evaluated arguments through IFunctionArguments, writes its result
//     through IFunctionResult and reaches datasets, auxiliary functions and error reporting
//     through IFunctionContext. double_stack::EvaluateFunction does the stack work for it.
// CalculateFunction(double_stack&) runs either; a function with neither fires a check and fails.
// Optional derivative routines (real and complex) give the function's value with derivatives
// (ADValue) from its arguments' ones; without them a derivative evaluation through the function
// has NaN derivatives.
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
#include "wycore/value/ADValue.h"
#include "wycore/value/ValueState.h"

class ValueBase;
class double_stack;
class IFunctionContext;

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
  // The newer form: the same with the context of the call (datasets, auxiliary functions,
  // errors). False, or an error added to the context, fails the evaluation.
  using ContextCalculation =
      std::function<bool(const IFunctionArguments&, IFunctionResult&, IFunctionContext&)>;
  // The plain form: pops exactly the arguments (a real as one entry, a complex as two, in
  // argument order with the last on top) and pushes one result by the result kind. It signals
  // failure by throwing (the evaluation then gives its failure value); it reports its own
  // messages.
  using StackRoutine = std::function<void(double_stack&)>;
  // Value and derivatives of the result from those of the arguments (`count` entries).
  using RealDerivative = std::function<ADValue<double>(const ADValue<double>* args, int count)>;
  using ComplexDerivative =
      std::function<ADValue<AComplex<double>>(const ADValue<AComplex<double>>* args, int count)>;

  Function(const AString& name, std::vector<Parameter> parameters, ResultRule result,
           Calculation calculation, bool variadic = false, bool conversion = false);

  // The other forms and the derivatives, set before the function is registered (a registered
  // function is immutable). Each returns *this.
  Function& SetContextCalculation(ContextCalculation calculation);
  Function& SetStackRoutine(StackRoutine routine);
  Function& SetDerivatives(RealDerivative real, ComplexDerivative complex);

  // Registers the built-in scalar functions with the value manager (Value::RegisterFunction).
  // Called by Value::InitializeValues; defined with the functions (src/value/functions/).
  static void StaticInitializeFunctions();

  const AString& GetName() const { return mName; }
  // The number of parameters (for a variadic function, the least number of arguments).
  int GetArgumentCount() const { return static_cast<int>(mParameters.size()); }
  const std::vector<Parameter>& GetParameters() const { return mParameters; }
  bool IsVariadic() const { return mVariadic; }
  // A conversion function turns a quantity into a form for display ("dB", "mag", "re", ...);
  // Value::GetConversionFunctionNames lists them.
  bool IsConversionFunction() const { return mConversion; }
  // Whether the function can compute at all (any of the forms).
  bool HasCalculation() const {
    return static_cast<bool>(mCalculation) || static_cast<bool>(mContextCalculation) ||
           static_cast<bool>(mStackRoutine);
  }
  bool HasStackRoutine() const { return static_cast<bool>(mStackRoutine); }
  bool HasContextCalculation() const {
    return static_cast<bool>(mCalculation) || static_cast<bool>(mContextCalculation);
  }
  bool HasRealDerivative() const { return static_cast<bool>(mRealDerivative); }
  bool HasComplexDerivative() const { return static_cast<bool>(mComplexDerivative); }

  // Whether the function takes `count` arguments.
  bool AcceptsArgumentCount(int count) const;
  // The cost of calling with these states (see the file comment), or -1 when they do not fit.
  // A missing state counts as kind kNotParam.
  int GetMatchCost(int count, const std::vector<ValueState>& states) const;
  // The state of the result for these argument states.
  ValueState GetResultType(const std::vector<ValueState>& states) const;
  // Runs the calculation on arguments held outside an evaluation (any form: a plain routine runs
  // on a scratch stack). A function without one fires the check
  // "!\"Function has no calculation\"" and returns false; false also when the calculation fails.
  // Errors a newer-form routine adds to its context are shown (posted) before false returns.
  bool Calculate(const IFunctionArguments& arguments, IFunctionResult& result) const;
  // Runs the function on the evaluation stack: its arguments are the top entries (the call's
  // argument states, when the evaluator has set them, say how many entries each takes), and
  // they are replaced by the result. The plain routine is called directly; the newer form goes
  // through double_stack::EvaluateFunction. A function without any form fires the check
  // "!\"Function has no calculation\"". Throws -1 when the calculation fails.
  void CalculateFunction(double_stack& stack) const;
  // Runs the newer form for double_stack::EvaluateFunction; false when the function has none or
  // the routine refuses.
  bool CalculateWithContext(const IFunctionArguments& arguments, IFunctionResult& result,
                            IFunctionContext& context) const;
  // The value with derivatives of the result. Without a derivative routine for the type, the
  // value is computed by the calculation and every derivative is NaN. Throws -1 on failure.
  ADValue<double> CalculateDerivative(const ADValue<double>* args, int count) const;
  ADValue<AComplex<double>> CalculateDerivative(const ADValue<AComplex<double>>* args,
                                                int count) const;
  // Whether the parameter lists (and variadic flags) of the two are the same.
  bool HasSameSignature(const Function& other) const;

 private:
  AString mName;
  std::vector<Parameter> mParameters;
  ResultRule mResult;
  Calculation mCalculation;
  ContextCalculation mContextCalculation;
  StackRoutine mStackRoutine;
  RealDerivative mRealDerivative;
  ComplexDerivative mComplexDerivative;
  bool mVariadic = false;
  bool mConversion = false;
};
