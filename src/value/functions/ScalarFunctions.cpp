// SPDX-License-Identifier: Apache-2.0
//
// ScalarFunctions.cpp - the built-in scalar functions: routines on the evaluation stack, their
// derivatives, the table, and its registration (Function::StaticInitializeFunctions).
//
// Conventions of every routine: arguments are popped last first (a real is one entry, a complex
// two), exactly one result is pushed, and NaN in gives NaN out rather than a choice of the other
// argument (a failed operand must not vanish into max or min). A NaN condition of "if" counts as
// true, as NaN does for "&&" and "||".
//
// Derivatives: the real routines work on real Taylor series; in complex arithmetic the analytic
// functions (sin, cos, sqrt, exp) use their complex series, the others (abs, max, min, if) act on
// the real parts of the coefficients, which is exact while the variable and the operands are
// real. abs of a complex operand differentiates |z| = sqrt(z conj(z)), valid for a real
// variable.
#include "ScalarFunctions.h"

#include <cmath>
#include <limits>

#include "LibraryFunctions.h"
#include "wycore/core/Check.h"
#include "wycore/value/DoubleStack.h"
#include "wycore/value/Value.h"
#include "wycore/variables/Function.h"

namespace wycore::functions {
namespace {

using AD = ADValue<double>;
using CAD = ADValue<AComplex<double>>;
using C = AComplex<double>;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// ---- Series helpers ------------------------------------------------------------------------

int CommonOrder(const AD* args, int count) {
  int order = count > 0 ? args[0].Order() : 0;
  for (int i = 1; i < count; ++i) order = std::min(order, args[i].Order());
  return order;
}

AD RealPart(const CAD& z) {
  std::vector<double> c;
  for (const C& k : z.Coefficients()) c.push_back(k.real());
  return AD::FromCoefficients(std::move(c));
}

CAD FromReal(const AD& x) {
  std::vector<C> c;
  for (double k : x.Coefficients()) c.emplace_back(k, 0.0);
  return CAD::FromCoefficients(std::move(c));
}

// A real-series derivative applied to the real parts of complex series.
template <AD (*F)(const AD*, int)>
CAD ViaReal(const CAD* args, int count) {
  std::vector<AD> real;
  for (int i = 0; i < count; ++i) real.push_back(RealPart(args[i]));
  return FromReal(F(real.data(), count));
}

// ---- sin, cos, sqrt ------------------------------------------------------------------------

void SinReal(double_stack& s) {
  double& x = s.Back();
  x = std::sin(x);
}
void SinComplex(double_stack& s) { s.Push(std::sin(s.PopComplex())); }
AD SinRealD(const AD* a, int) { return sin(a[0]); }
CAD SinComplexD(const CAD* a, int) { return sin(a[0]); }

void CosReal(double_stack& s) {
  double& x = s.Back();
  x = std::cos(x);
}
void CosComplex(double_stack& s) { s.Push(std::cos(s.PopComplex())); }
AD CosRealD(const AD* a, int) { return cos(a[0]); }
CAD CosComplexD(const CAD* a, int) { return cos(a[0]); }

// The real square root of a negative number is NaN; the complex overload gives the principal
// root.
void SqrtReal(double_stack& s) {
  double& x = s.Back();
  x = std::sqrt(x);
}
void SqrtComplex(double_stack& s) { s.Push(std::sqrt(s.PopComplex())); }
AD SqrtRealD(const AD* a, int) { return sqrt(a[0]); }
CAD SqrtComplexD(const CAD* a, int) { return sqrt(a[0]); }

// ---- exp -------------------------------------------------------------------------------------

void ExpReal(double_stack& s) {
  double& x = s.Back();
  x = std::exp(x);
}
void ExpComplex(double_stack& s) { s.Push(std::exp(s.PopComplex())); }
AD ExpRealD(const AD* a, int) { return exp(a[0]); }
CAD ExpComplexD(const CAD* a, int) { return exp(a[0]); }

// ---- abs ---------------------------------------------------------------------------------------

void AbsReal(double_stack& s) {
  double& x = s.Back();
  x = std::fabs(x);
}
void AbsComplex(double_stack& s) { s.Push(std::abs(s.PopComplex())); }
AD AbsRealD(const AD* a, int) { return fabs(a[0]); }
CAD AbsComplexD(const CAD* a, int) {
  // |z|^2 = z conj(z); with a real variable the series of conj(z) is the conjugated series.
  std::vector<C> conjugate;
  for (const C& k : a[0].Coefficients()) conjugate.push_back(std::conj(k));
  const CAD square = a[0] * CAD::FromCoefficients(std::move(conjugate));
  return FromReal(sqrt(RealPart(square)));
}

// ---- max, min ----------------------------------------------------------------------------------

template <bool kMax>
void Extreme(double_stack& s) {
  const double b = s.Pop();
  double& a = s.Back();
  if (std::isnan(a) || std::isnan(b)) {
    a = kNaN;
  } else if (kMax ? b > a : b < a) {
    a = b;
  }
}

template <bool kMax>
AD ExtremeD(const AD* a, int count) {
  const int n = CommonOrder(a, count);
  const double x = a[0].GetValue();
  const double y = a[1].GetValue();
  if (std::isnan(x) || std::isnan(y)) return AD(kNaN, n);
  const bool second = kMax ? y > x : y < x;
  return AD::Truncated(second ? a[1] : a[0], n);
}

// ---- if ----------------------------------------------------------------------------------------

void IfReal(double_stack& s) {
  const double b = s.Pop();
  const double a = s.Pop();
  double& condition = s.Back();
  condition = condition != 0.0 ? a : b;
}

void IfComplex(double_stack& s) {
  const C b = s.PopComplex();
  const C a = s.PopComplex();
  const double condition = s.Pop();
  s.Push(condition != 0.0 ? a : b);
}

AD IfRealD(const AD* a, int count) {
  return AD::Truncated(a[0].GetValue() != 0.0 ? a[1] : a[2], CommonOrder(a, count));
}

CAD IfComplexD(const CAD* a, int count) {
  int n = count > 0 ? a[0].Order() : 0;
  for (int i = 1; i < count; ++i) n = std::min(n, a[i].Order());
  return CAD::Truncated(a[0].GetValue() != C(0.0, 0.0) ? a[1] : a[2], n);
}

// ---- The table ---------------------------------------------------------------------------------

constexpr val::ParameterType R = val::kDoubleParam;
constexpr val::ParameterType Z = val::kComplexParam;

const ScalarFunctionRow kRows[] = {
    // name, count, parameters, result kind, units from, routine, derivatives
    {u"sin", 1, {{{u"x", R}}}, R, -1, SinReal, SinRealD, SinComplexD},
    {u"sin", 1, {{{u"x", Z}}}, Z, -1, SinComplex, SinRealD, SinComplexD},
    {u"cos", 1, {{{u"x", R}}}, R, -1, CosReal, CosRealD, CosComplexD},
    {u"cos", 1, {{{u"x", Z}}}, Z, -1, CosComplex, CosRealD, CosComplexD},
    {u"sqrt", 1, {{{u"x", R}}}, R, -1, SqrtReal, SqrtRealD, SqrtComplexD},
    {u"sqrt", 1, {{{u"x", Z}}}, Z, -1, SqrtComplex, SqrtRealD, SqrtComplexD},
    {u"exp", 1, {{{u"x", R}}}, R, -1, ExpReal, ExpRealD, ExpComplexD},
    {u"exp", 1, {{{u"x", Z}}}, Z, -1, ExpComplex, ExpRealD, ExpComplexD},
    {u"abs", 1, {{{u"x", R}}}, R, 0, AbsReal, AbsRealD, ViaReal<AbsRealD>},
    {u"abs", 1, {{{u"z", Z}}}, R, 0, AbsComplex, AbsRealD, AbsComplexD},
    {u"max",
     2,
     {{{u"x", R}, {u"y", R}}},
     R,
     0,
     Extreme<true>,
     ExtremeD<true>,
     ViaReal<ExtremeD<true>>},
    {u"min",
     2,
     {{{u"x", R}, {u"y", R}}},
     R,
     0,
     Extreme<false>,
     ExtremeD<false>,
     ViaReal<ExtremeD<false>>},
    {u"if",
     3,
     {{{u"condition", R}, {u"then", R}, {u"else", R}}},
     R,
     1,
     IfReal,
     IfRealD,
     ViaReal<IfRealD>},
    {u"if",
     3,
     {{{u"condition", R}, {u"then", Z}, {u"else", Z}}},
     Z,
     1,
     IfComplex,
     IfRealD,
     IfComplexD},
};

}  // namespace

const ScalarFunctionRow* ScalarFunctionTable(std::size_t& count) {
  count = std::size(kRows);
  return kRows;
}

}  // namespace wycore::functions

void Function::StaticInitializeFunctions() {
  std::size_t count = 0;
  const wycore::functions::ScalarFunctionRow* rows = wycore::functions::ScalarFunctionTable(count);
  for (std::size_t i = 0; i < count; ++i) {
    const auto& row = rows[i];
    if (wycore::functions::ReplacesTableRow(row.mName)) continue;  // the library's rows replace it
    std::vector<Parameter> parameters;
    for (int p = 0; p < row.mParamCount; ++p) {
      parameters.push_back(Parameter{row.mParams[static_cast<std::size_t>(p)].mName,
                                     row.mParams[static_cast<std::size_t>(p)].mKind});
    }
    ResultRule result;
    result.mKind = row.mResultKind;
    result.mUnitsFromArgument = row.mUnitsFromArgument;
    auto* function = new Function(row.mName, std::move(parameters), std::move(result), nullptr);
    function->SetStackRoutine(row.mRoutine);
    function->SetDerivatives(row.mRealDerivative, row.mComplexDerivative);
    Value::RegisterFunction(function);
  }
  wycore::functions::RegisterLibraryFunctions();
}
