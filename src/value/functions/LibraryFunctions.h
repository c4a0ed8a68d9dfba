// SPDX-License-Identifier: Apache-2.0
//
// LibraryFunctions.h - the built-in scalar function library: registration entry points of each
// group and the helpers they share (parameter and result-state rules, Taylor-series helpers).
//
// Each group file (trigonometric, exponential, rounding, complex helpers, decibel, Bessel,
// piecewise) registers its overloads through Add(); RegisterLibraryFunctions() runs every group
// and then checks the pairs of names that must exist together. Function::StaticInitializeFunctions
// calls it after the first table rows are in.
//
// Conventions of every routine, shared with the first rows: a plain routine pops its arguments
// (a real one entry, a complex two) and pushes exactly one result; NaN in gives NaN out; a value
// outside a function's domain gives NaN (or an infinity where the limit is one), never a failure
// of the evaluation. Derivative routines give Taylor series (ADValue) of the result from those of
// the arguments; a complex-series routine of a real-only function works on the real parts, which
// is exact while the variable and the operands are real.
//
// Private to the library.
#pragma once

#include <functional>
#include <vector>

#include "wycore/core/AComplex.h"
#include "wycore/value/ADValue.h"
#include "wycore/value/DoubleStack.h"
#include "wycore/value/ValueState.h"
#include "wycore/variables/Function.h"

namespace wycore::functions {

using AD = ADValue<double>;
using CAD = ADValue<AComplex<double>>;
using C = AComplex<double>;

// ---- Registration ----------------------------------------------------------------------------

// Registers every group of the library, then runs CheckRequiredFunctionPairs on the table.
void RegisterLibraryFunctions();

// Whether the library registers its own overloads of `name` in place of a first table row of
// that name (the table then skips the row): the library's versions carry the unit rules.
bool ReplacesTableRow(const char16_t* name);

void RegisterTrigonometricFunctions();
void RegisterExponentialFunctions();
void RegisterRoundingFunctions();
void RegisterComplexHelperFunctions();
void RegisterDecibelFunctions();
void RegisterBesselFunctions();
void RegisterPiecewiseFunctions();

// One overload as the group files describe it.
struct Overload {
  const char16_t* mName = nullptr;
  std::vector<Function::Parameter> mParameters;
  Function::ResultRule mResult;
  Function::StackRoutine mRoutine;        // the plain form (scalar functions)
  Function::ContextCalculation mContext;  // the newer form (dataset functions)
  Function::RealDerivative mRealDerivative;
  Function::ComplexDerivative mComplexDerivative;
  bool mVariadic = false;
  bool mConversion = false;
  // A plain routine that needs the kinds of the call's arguments (a complex parameter given a
  // real argument finds one entry on the stack, not two): it receives its own Function, for
  // double_stack::GetCallArgumentKind. Used instead of mRoutine when set.
  std::function<void(double_stack&, const Function&)> mKindAwareRoutine = nullptr;
};

// Builds the Function and registers it with the value manager.
void Add(Overload overload);
// The same with a kind-aware plain routine.
void Add(Overload overload, std::function<void(double_stack&, const Function&)> routine);

// ---- Plain routines -------------------------------------------------------------------------

// f applied in place to the real on top of the stack.
template <class F>
Function::StackRoutine RealUnary(F f) {
  return [f](double_stack& s) {
    double& x = s.Back();
    x = f(x);
  };
}
// f applied to the complex on top of the stack (two entries); its result, real or complex, is
// pushed in their place.
template <class F>
Function::StackRoutine ComplexUnary(F f) {
  return [f](double_stack& s) { s.Push(f(s.PopComplex())); };
}
// f(a, b) of the two reals on top of the stack (b on top).
template <class F>
Function::StackRoutine RealBinary(F f) {
  return [f](double_stack& s) {
    const double b = s.Pop();
    double& a = s.Back();
    a = f(a, b);
  };
}
// Argument i of a call of `function` at the top of the stack, as a complex number, whether it
// lies there as a real (one entry) or a complex (two). Pop the last argument first.
C PopAsComplex(double_stack& s, const Function& function, int i);

// f(a, b) of the two arguments on top of the stack taken as complex numbers (each may lie there
// as a real); its result is pushed.
template <class F>
std::function<void(double_stack&, const Function&)> ComplexBinary(F f) {
  return [f](double_stack& s, const Function& function) {
    const C b = PopAsComplex(s, function, 1);
    const C a = PopAsComplex(s, function, 0);
    s.Push(f(a, b));
  };
}

// ---- Parameters ------------------------------------------------------------------------------

Function::Parameter RealParam(const char16_t* name);
Function::Parameter ComplexParam(const char16_t* name);
Function::Parameter DatasetParam(const char16_t* name, val::ParameterType kind);

// ---- Result states ---------------------------------------------------------------------------

// A plain number of this kind (no unit).
Function::ResultRule NoUnits(val::ParameterType kind);
// The units, unit type and decibel kind of argument `argument`.
Function::ResultRule UnitsOf(int argument, val::ParameterType kind);
// The units of the arguments from `first` on, combined as "+" combines its operands: a unitless
// operand takes the other's units, equal units stay, units of one type but different scale give
// the type's default units, different types give a plain number of decibel kind 2.
Function::ResultRule CombinedUnits(int first, val::ParameterType kind);
// A plain number; of decibel kind 2 (units dropped) when argument `argument` had units.
Function::ResultRule DroppedUnits(int argument, val::ParameterType kind);
// A fixed unit, by name (a plain number when the unit manager does not know the name).
Function::ResultRule FixedUnits(const char16_t* unitName, val::ParameterType kind);
// A rule of its own.
Function::ResultRule CustomUnits(val::ParameterType kind,
                                 std::function<ValueState(const std::vector<ValueState>&)> rule);

// The "+" combination of two states (kind of `a` kept).
ValueState CombineStates(const ValueState& a, const ValueState& b);
// The state of a unit given by code; a plain number for 90 or an unknown code.
ValueState StateOfUnits(Units::FullUnitType units, val::ParameterType kind);
// The unitless state, with decibel kind 2 when `from` had units.
ValueState DroppedState(const ValueState& from, val::ParameterType kind);

// ---- Series helpers --------------------------------------------------------------------------

int CommonOrder(const AD* args, int count);
int CommonOrder(const CAD* args, int count);
AD RealPart(const CAD& z);
AD ImagPart(const CAD& z);
CAD FromReal(const AD& x);
// The series of conj(z) for a real variable.
CAD Conjugate(const CAD& z);
// A real-series derivative applied to the real parts of complex series.
Function::ComplexDerivative ViaReal(Function::RealDerivative real);
// A constant series: the value, every derivative 0.
AD ConstantSeries(double value, int order);
// g(f) from the derivatives g(f0), g'(f0), ..., g^(n)(f0) (n = the order of f; missing ones are
// taken as 0): the Taylor series sum of g^(k)(f0)/k! (f - f0)^k.
AD Compose(const AD& f, const std::vector<double>& derivatives);

}  // namespace wycore::functions
