// SPDX-License-Identifier: Apache-2.0
//
// FunctionContext.h - what a function sees of the evaluation that calls it.
//
// IFunctionContext is the interface a function routine of the newer form receives beside its
// arguments and result: dataset arguments (their x and y values, the dataset value itself,
// static datasets, interpolation order, the function already applied to their y values), result
// slots for real, complex and dataset (vector) results, the name of the function being
// evaluated, calls of auxiliary functions, and error reporting. The evaluation stack
// (double_stack) implements it for the call in progress.
//
// FunctionContext collects the errors of one call. When a call ends with errors they are shown
// (ShowErrors posts each as a numbered message through Value::HandleError) and the evaluation
// fails; a function therefore reports a problem by adding an error and returning, rather than by
// posting and throwing itself.
//
// Ownership: the context refers to the stack's data only for the duration of the call.
// Threading: per evaluation; never shared.
#pragma once

#include <vector>

#include "wycore/Export.h"
#include "wycore/core/AComplex.h"
#include "wycore/io/AString.h"
#include "wycore/value/Dataset.h"
#include "wycore/value/ParameterType.h"

class ValueBase;
class Function;
class SimpleFunctionResult;

// One error of a function call: a message code and up to three text arguments.
struct FunctionError {
  int mCode = 0;
  std::vector<AString> mArguments;
};

class WYCORE_API IFunctionContext {
 public:
  virtual ~IFunctionContext() = default;

  // ---- Arguments (i from 0; out of range: NaN, empty lists, null, -1) ----------------------

  virtual int GetArgCount() const = 0;
  // The kind of argument i as it lies on the stack (kDynamicDouble...DatasetParam for a dataset
  // read over a sweep, kDatasetParam for a static one).
  virtual val::ParameterType GetArgKind(int i) const = 0;
  // A real argument (the real part of a complex one); during a point-by-point evaluation over
  // datasets, a dataset argument gives its y value at the current point.
  virtual double GetDoubleArg(int i) const = 0;
  virtual AComplex<double> GetComplexArg(int i) const = 0;
  // The x values and the y values (real, or complex; a real dataset's y values with imaginary
  // part 0) of dataset argument i, SI.
  virtual std::vector<double> GetDoubleVectorArg_x(int i) const = 0;
  virtual std::vector<double> GetDoubleVectorArg_y(int i) const = 0;
  virtual std::vector<AComplex<double>> GetComplexVectorArg_y(int i) const = 0;
  // The value behind dataset argument i (null for a dataset computed during this evaluation).
  virtual const ValueBase* GetDatasetValueBaseArg(int i) const = 0;
  // Dataset argument i as a point list (empty when it is no dataset).
  virtual geom::Dataset GetStaticDataset(int i) const = 0;
  // The order of interpolation between the points of dataset argument i: 1 (linear) for every
  // dataset of this library; -1 when argument i is no dataset.
  virtual int GetInterpolationOrder(int i) const = 0;
  // The name of the function whose point-by-point results make up dataset argument i (so that
  // "max(mag(V))" knows its y values are magnitudes); empty for a dataset read as it is.
  virtual AString GetOutermostFunctionAppliedToYValues(int i) const = 0;

  // ---- Results ------------------------------------------------------------------------------

  // The result slots of the call. Asking for a scalar slot makes the call's result of that
  // kind; a filled vector slot makes the result a dataset over the x values of the first dataset
  // argument.
  virtual double& GetDoubleResult() = 0;
  virtual AComplex<double>& GetComplexResult() = 0;
  virtual std::vector<double>& GetDoubleVectorResult_y() = 0;
  virtual std::vector<AComplex<double>>& GetComplexVectorResult_y() = 0;
  virtual AString GetFunctionName() const = 0;

  // ---- Auxiliary functions ----------------------------------------------------------------

  // A function of the table this function may call: the first overload of `name` that takes
  // `argumentCount` arguments; null when there is none.
  virtual const Function* GetAuxiliaryFunction(const AString& name, int argumentCount) const = 0;
  // Stage argument i of the next auxiliary call.
  virtual void SetAuxiliaryFuncDoubleArg(int i, double value) = 0;
  virtual void SetAuxiliaryFuncComplexArg(int i, const AComplex<double>& value) = 0;
  virtual void SetAuxiliaryFuncDatasetValueBaseArg(int i, const ValueBase* value) = 0;
  // Calls `function` with the staged arguments (which are then cleared) and gives its result;
  // false when it fails (its own errors have then been shown).
  virtual bool FetchAuxiliaryFunctionResult(const Function& function,
                                            SimpleFunctionResult& result) = 0;
  // Makes `result` (say, an auxiliary function's) the result of this call.
  virtual void StoreAuxiliaryFunctionResult(const SimpleFunctionResult& result) = 0;

  // ---- Errors ---------------------------------------------------------------------------------

  // Records an error of this call; the evaluation fails when the call returns.
  virtual void AddError(int code, std::vector<AString> arguments = {}) = 0;
  virtual bool HasErrors() const = 0;
};

// The errors of one function call.
class WYCORE_API FunctionContext {
 public:
  explicit FunctionContext(const AString& functionName = AString()) : mFunctionName(functionName) {}

  const AString& GetFunctionName() const { return mFunctionName; }
  void AddError(int code, std::vector<AString> arguments = {});
  bool HasErrors() const { return !mErrors.empty(); }
  const std::vector<FunctionError>& GetErrors() const { return mErrors; }
  void ClearErrors() { mErrors.clear(); }
  // Posts every error (Value::HandleError with up to three arguments; further ones are dropped)
  // and clears them.
  void ShowErrors();

 private:
  AString mFunctionName;
  std::vector<FunctionError> mErrors;
};
