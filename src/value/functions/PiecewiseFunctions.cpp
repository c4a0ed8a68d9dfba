// SPDX-License-Identifier: Apache-2.0
//
// PiecewiseFunctions.cpp - interpolation in a dataset: pwl, pwlx, pwl_periodic and pwc.
//
// Each takes a dataset (a dataset literal, "dataset((0, 0), (1, 10))", a dataset variable, or a
// dynamic dataset of a sweep) and a real x, and gives y at x:
//   pwl(ds, x)           linear between the points; outside the x range the first or last y
//                        (held constant);
//   pwlx(ds, x)          linear between the points; outside the range the first or last segment
//                        extended (linear extrapolation);
//   pwl_periodic(ds, x)  the points repeated with period x_last - x_first: x is wrapped into
//                        [x_first, x_last) and interpolated linearly (so at a whole number of
//                        periods the first point's y holds);
//   pwc(ds, x)           piecewise constant: the y of the last point whose x is at or below x;
//                        below the range the first y, above it the last.
// Points are taken in ascending x (a dataset given out of order is sorted, keeping the given
// order among equal x); where two points share an x (a step), the later one holds from that x
// on. Points with a NaN x are ignored. An empty dataset or a NaN x gives NaN; a dataset of one
// point gives its y everywhere. A dataset of complex y gives a complex result.
//
// The result carries the y units of the dataset. The functions run in the newer form (they read
// the dataset through IFunctionContext); a derivative evaluation through them fails, as
// derivatives of datasets are not taken.
#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "LibraryFunctions.h"

namespace wycore::functions {
namespace {

enum class Mode { kClamped, kExtrapolated, kPeriodic, kConstant };

template <class T>
T NaNOf() {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  if constexpr (std::is_same_v<T, double>) {
    return nan;
  } else {
    return T(nan, nan);
  }
}

template <class T>
struct Curve {
  std::vector<double> mX;
  std::vector<T> mY;
};

// The points in ascending x, without NaN x.
template <class T>
Curve<T> SortedCurve(const std::vector<double>& x, const std::vector<T>& y) {
  const std::size_t n = std::min(x.size(), y.size());
  Curve<T> curve;
  curve.mX.reserve(n);
  curve.mY.reserve(n);
  for (std::size_t i = 0; i < n; ++i) {
    if (std::isnan(x[i])) continue;
    curve.mX.push_back(x[i]);
    curve.mY.push_back(y[i]);
  }
  if (std::is_sorted(curve.mX.begin(), curve.mX.end())) return curve;
  std::vector<std::size_t> order(curve.mX.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(),
                   [&curve](std::size_t a, std::size_t b) { return curve.mX[a] < curve.mX[b]; });
  Curve<T> sorted;
  for (std::size_t i : order) {
    sorted.mX.push_back(curve.mX[i]);
    sorted.mY.push_back(curve.mY[i]);
  }
  return sorted;
}

// y on the segment from point i to point j at x (x[j] > x[i]).
template <class T>
T OnSegment(const Curve<T>& c, std::size_t i, std::size_t j, double x) {
  const double t = (x - c.mX[i]) / (c.mX[j] - c.mX[i]);
  return c.mY[i] + (c.mY[j] - c.mY[i]) * t;
}

// y beyond an end, on the line through the end segment (the end value when that segment is a
// step or flat).
template <class T>
T Extended(const Curve<T>& c, bool atEnd, double x) {
  const std::size_t n = c.mX.size();
  const std::size_t i = atEnd ? n - 2 : 0;
  const std::size_t j = atEnd ? n - 1 : 1;
  const T endValue = atEnd ? c.mY[j] : c.mY[i];
  if (!(c.mX[j] > c.mX[i]) || c.mY[j] == c.mY[i]) return endValue;
  return OnSegment(c, i, j, x);
}

template <class T>
T Interpolate(Mode mode, const Curve<T>& c, double x) {
  const std::size_t n = c.mX.size();
  if (n == 0 || std::isnan(x)) return NaNOf<T>();
  if (n == 1) return c.mY[0];
  const double first = c.mX[0];
  const double last = c.mX[n - 1];
  if (mode == Mode::kPeriodic) {
    const double period = last - first;
    if (!(period > 0.0)) return c.mY[0];
    if (!std::isfinite(x)) return NaNOf<T>();
    x = first + std::fmod(x - first, period);
    if (x < first) x += period;
    if (x >= last) x = first;  // rounding of the wrap
  }
  if (mode == Mode::kConstant) {
    if (x < first) return c.mY[0];
    const auto upper = std::upper_bound(c.mX.begin(), c.mX.end(), x);
    return c.mY[static_cast<std::size_t>(upper - c.mX.begin()) - 1];
  }
  if (x < first) return mode == Mode::kExtrapolated ? Extended(c, false, x) : c.mY[0];
  if (x >= last) {
    return mode == Mode::kExtrapolated && x > last ? Extended(c, true, x) : c.mY[n - 1];
  }
  const auto upper = std::upper_bound(c.mX.begin(), c.mX.end(), x);
  const auto j = static_cast<std::size_t>(upper - c.mX.begin());
  return OnSegment(c, j - 1, j, x);
}

template <Mode M>
bool RealPiecewise(const IFunctionArguments& args, IFunctionResult& result,
                   IFunctionContext& context) {
  const Curve<double> curve =
      SortedCurve(context.GetDoubleVectorArg_x(0), context.GetDoubleVectorArg_y(0));
  result.SetDoubleResult(Interpolate(M, curve, args.GetDoubleArg(1)));
  return true;
}

template <Mode M>
bool ComplexPiecewise(const IFunctionArguments& args, IFunctionResult& result,
                      IFunctionContext& context) {
  const Curve<C> curve =
      SortedCurve(context.GetDoubleVectorArg_x(0), context.GetComplexVectorArg_y(0));
  result.SetComplexResult(Interpolate(M, curve, args.GetDoubleArg(1)));
  return true;
}

template <Mode M>
void AddPiecewise(const char16_t* name) {
  for (const val::ParameterType kind :
       {val::kDatasetParam, val::kDynamicDoubleDoubleDatasetParam}) {
    Add({name,
         {DatasetParam(u"dataset", kind), RealParam(u"x")},
         UnitsOf(0, val::kDoubleParam),
         nullptr,
         RealPiecewise<M>,
         nullptr,
         nullptr});
  }
  Add({name,
       {DatasetParam(u"dataset", val::kDynamicDoubleComplexDatasetParam), RealParam(u"x")},
       UnitsOf(0, val::kComplexParam),
       nullptr,
       ComplexPiecewise<M>,
       nullptr,
       nullptr});
}

}  // namespace

void RegisterPiecewiseFunctions() {
  AddPiecewise<Mode::kClamped>(u"pwl");
  AddPiecewise<Mode::kExtrapolated>(u"pwlx");
  AddPiecewise<Mode::kPeriodic>(u"pwl_periodic");
  AddPiecewise<Mode::kConstant>(u"pwc");
}

}  // namespace wycore::functions
