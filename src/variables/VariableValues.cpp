// SPDX-License-Identifier: Apache-2.0
//
// VariableValues.cpp - assignments of values to variables: the map, evaluation, application,
// comparison, and writing variation keys. Reading keys is in VariationKey.cpp.
#include "wycore/variables/VariableValues.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <optional>

#include "VariationKeyText.h"
#include "wycore/core/Check.h"
#include "wycore/variables/Variable.h"
#include "wycore/variables/VariableValuesContext.h"

// ---- Order of the variables -----------------------------------------------------------------

bool VariableValues::CompareVariables::operator()(const Variable* a, const Variable* b) const {
  if (a == b) return false;
  if (a == nullptr || b == nullptr) return a == nullptr;
  const int blind = a->GetName().CompareNoCase(b->GetName());
  if (blind != 0) return blind < 0;
  // Names equal without regard to case share one ID; what is left to tell such variables apart
  // is the exact name and, for two variables of one name, their addresses.
  const int exact = a->GetName().Compare(b->GetName());
  if (exact != 0) return exact < 0;
  const int idA = a->GetUniqueSessionIDForName();
  const int idB = b->GetUniqueSessionIDForName();
  if (idA != idB) return idA < idB;
  return std::less<const Variable*>()(a, b);
}

// ---- Construction and the map ---------------------------------------------------------------

VariableValues::VariableValues() = default;

VariableValues::VariableValues(const std::vector<Variable*>& variables) {
  CopyVarValuesFrom(variables);
}

VariableValues::VariableValues(const VariableValues& other) = default;
VariableValues& VariableValues::operator=(const VariableValues& other) = default;
VariableValues::~VariableValues() = default;

bool VariableValues::AddVariableValue(Variable* variable, const Value& value) {
  if (variable == nullptr) return false;
  return mValues.emplace(variable, value).second;
}

bool VariableValues::SetVariableValue(Variable* variable, const Value& value) {
  if (variable == nullptr) return false;
  mValues.insert_or_assign(variable, value);
  return true;
}

bool VariableValues::SetVariableValue(const AString& name, const Value& value) {
  Variable* variable = GetVariable(name);
  if (variable == nullptr) return false;
  mValues.at(variable) = value;
  return true;
}

bool VariableValues::RemoveVariableValue(const Variable* variable) {
  return mValues.erase(const_cast<Variable*>(variable)) > 0;
}

Variable* VariableValues::GetVariable(const AString& name) const {
  for (const auto& [variable, value] : mValues) {
    if (variable->GetName().CompareNoCase(name) == 0) return variable;
  }
  return nullptr;
}

Value VariableValues::GetVariableValue(const AString& name) const {
  return GetVariableValue(GetVariable(name));
}

Value VariableValues::GetVariableValue(const Variable* variable) const {
  if (variable == nullptr) return Value();
  const auto found = mValues.find(const_cast<Variable*>(variable));
  return found == mValues.end() ? Value() : found->second;
}

bool VariableValues::DoesVariableExist(const AString& name) const {
  return GetVariable(name) != nullptr;
}

bool VariableValues::DoesVariableExist(const Variable* variable) const {
  return variable != nullptr && mValues.count(const_cast<Variable*>(variable)) > 0;
}

void VariableValues::CopyVarValuesFrom(const std::vector<Variable*>& variables) {
  for (Variable* variable : variables) {
    if (variable != nullptr) SetVariableValue(variable, Value(variable->GetValueBase()));
  }
}

// ---- Evaluation and application -------------------------------------------------------------

void VariableValues::ConvertToConstantValues(VariableValues& out) const {
  // Evaluate everything first, with this assignment in force, and only then fill `out`: `out`
  // may be this assignment, whose values the context refers to.
  std::vector<std::pair<Variable*, Value>> evaluated;
  evaluated.reserve(mValues.size());
  {
    const VariableValuesContext context(*this);
    for (const auto& [variable, value] : mValues) {
      if (value.IsConstant()) {
        evaluated.emplace_back(variable, value);
      } else {
        evaluated.emplace_back(variable, Value(value.GetValueBase().CreateEvaluatedValueBase()));
      }
    }
  }
  for (auto& [variable, value] : evaluated) out.SetVariableValue(variable, value);
}

void VariableValues::EvaluateDependentValues() { ConvertToConstantValues(*this); }

bool VariableValues::SetVariablesCurrentValue() const {
  bool all = true;
  for (const auto& [variable, value] : mValues) {
    if (!variable->SetValueBase(value.GetValueBase())) all = false;
  }
  return all;
}

void VariableValues::PassParameters() {
  if (!WY_CHECK(mParametersPassed == false)) return;
  for (auto& [variable, value] : mValues) variable->TempExchangeValueBase(value);
  mParametersPassed = true;
}

void VariableValues::UnpassParameters() {
  if (!WY_CHECK(mParametersPassed == true)) return;
  for (auto& [variable, value] : mValues) variable->TempExchangeValueBase(value);
  mParametersPassed = false;
}

// ---- Comparison -----------------------------------------------------------------------------

namespace {

using CR = VariableValues::CompareResult;

CR ComparePart(double x, double y, double absolute, double relative) {
  if (!std::isfinite(x) || !std::isfinite(y)) {
    const bool nx = std::isnan(x);
    const bool ny = std::isnan(y);
    if (nx || ny)
      return nx == ny ? VariableValues::kEqual
                      : (nx ? VariableValues::kGreater : VariableValues::kLess);
    if (x == y) return VariableValues::kEqual;
    return x < y ? VariableValues::kLess : VariableValues::kGreater;
  }
  const double d = std::fabs(x - y);
  if (d <= absolute || d <= relative * std::max(std::fabs(x), std::fabs(y))) {
    return VariableValues::kEqual;
  }
  return x < y ? VariableValues::kLess : VariableValues::kGreater;
}

template <class T>
CR CompareOrdered(const T& a, const T& b) {
  if (a < b) return VariableValues::kLess;
  if (b < a) return VariableValues::kGreater;
  return VariableValues::kEqual;
}

CR CompareTexts(const AString& a, const AString& b) {
  const int c = a.Compare(b);
  return c < 0 ? VariableValues::kLess
               : (c > 0 ? VariableValues::kGreater : VariableValues::kEqual);
}

// The groups in which kinds of values sort.
enum Group { kNumbers, kStrings, kNumberLists, kTextLists, kOthers };

Group GroupOf(val::ParameterType kind) {
  switch (kind) {
    case val::kDoubleParam:
    case val::kComplexParam:
    case val::kIntParam:
    case val::kCharParam:
    case val::kEnumParam:
      return kNumbers;
    case val::kStringParam:
      return kStrings;
    case val::kDoubleArrayParam:
    case val::kDoubleMatrixParam:
    case val::kComplexMatrixParam:
      return kNumberLists;
    case val::kTextStringArrayParam:
    case val::kStringMatrixParam:
      return kTextLists;
    case val::kNotParam:
    case val::kCircleParam:
    case val::kArcParam:
    case val::kRegionParam:
    case val::kDatasetParam:
    case val::kDynamicDoubleDoubleDatasetParam:
    case val::kDynamicDoubleComplexDatasetParam:
      return kOthers;
  }
  return kOthers;
}

// A list or matrix of numbers as its shape and entries, row by row.
struct NumberGrid {
  int rows = 0;
  int cols = 0;
  std::vector<AComplex<double>> entries;
};

NumberGrid NumbersOf(const Value& v) {
  NumberGrid grid;
  switch (v.GetParameterType()) {
    case val::kDoubleArrayParam: {
      const std::vector<double> values = v.GetDoubleArrayValue();
      grid.rows = 1;
      grid.cols = static_cast<int>(values.size());
      for (double x : values) grid.entries.emplace_back(x, 0.0);
      break;
    }
    case val::kDoubleMatrixParam: {
      const TNT::Matrix<double> m = v.GetDoubleMatrixValue();
      grid.rows = m.num_rows();
      grid.cols = m.num_cols();
      for (int r = 0; r < grid.rows; ++r)
        for (int c = 0; c < grid.cols; ++c) grid.entries.emplace_back(m[r][c], 0.0);
      break;
    }
    default: {
      const TNT::Matrix<AComplex<double>> m = v.GetComplexMatrixValue();
      grid.rows = m.num_rows();
      grid.cols = m.num_cols();
      for (int r = 0; r < grid.rows; ++r)
        for (int c = 0; c < grid.cols; ++c) grid.entries.push_back(m[r][c]);
      break;
    }
  }
  return grid;
}

struct TextGrid {
  int rows = 0;
  int cols = 0;
  std::vector<AString> entries;
};

TextGrid TextsOf(const Value& v) {
  TextGrid grid;
  if (v.GetParameterType() == val::kTextStringArrayParam) {
    grid.entries = v.GetStringArrayValue();
    grid.rows = 1;
    grid.cols = static_cast<int>(grid.entries.size());
    return grid;
  }
  const T_2DMatrix<AString> m = v.GetStringMatrixValue();
  grid.rows = m.GetNumRows();
  grid.cols = m.GetNumCols();
  for (int r = 0; r < grid.rows; ++r)
    for (int c = 0; c < grid.cols; ++c) grid.entries.push_back(m(r, c));
  return grid;
}

}  // namespace

VariableValues::CompareResult VariableValues::CompareComplexNumbers(const AComplex<double>& a,
                                                                    const AComplex<double>& b,
                                                                    const Tolerances& t) {
  const CR real = ComparePart(a.real(), b.real(), t.mAbsolute.real(), t.mRelative.real());
  if (real != kEqual) return real;
  return ComparePart(a.imag(), b.imag(), t.mAbsolute.imag(), t.mRelative.imag());
}

VariableValues::CompareResult VariableValues::ConstantCompare(const Value& a, const Value& b,
                                                              const Tolerances& t) {
  const Group ga = GroupOf(a.GetParameterType());
  const Group gb = GroupOf(b.GetParameterType());
  if (ga != gb) return ga < gb ? kLess : kGreater;
  switch (ga) {
    case kNumbers: {
      // A complex number's own getter; the real kinds answer through their number, so that an
      // integer 3 and a real 3 are one value.
      const auto number = [](const Value& v) {
        return v.GetParameterType() == val::kComplexParam ? v.GetComplexValue()
                                                          : AComplex<double>(v.GetValue(), 0.0);
      };
      return CompareComplexNumbers(number(a), number(b), t);
    }
    case kStrings:
      return CompareTexts(a.GetStringValue(), b.GetStringValue());
    case kNumberLists: {
      const NumberGrid na = NumbersOf(a);
      const NumberGrid nb = NumbersOf(b);
      if (const CR c =
              CompareOrdered(std::make_pair(na.rows, na.cols), std::make_pair(nb.rows, nb.cols));
          c != kEqual) {
        return c;
      }
      for (std::size_t i = 0; i < na.entries.size() && i < nb.entries.size(); ++i) {
        if (const CR c = CompareComplexNumbers(na.entries[i], nb.entries[i], t); c != kEqual) {
          return c;
        }
      }
      return CompareOrdered(na.entries.size(), nb.entries.size());
    }
    case kTextLists: {
      const TextGrid ta = TextsOf(a);
      const TextGrid tb = TextsOf(b);
      if (const CR c =
              CompareOrdered(std::make_pair(ta.rows, ta.cols), std::make_pair(tb.rows, tb.cols));
          c != kEqual) {
        return c;
      }
      for (std::size_t i = 0; i < ta.entries.size() && i < tb.entries.size(); ++i) {
        if (const CR c = CompareTexts(ta.entries[i], tb.entries[i]); c != kEqual) return c;
      }
      return CompareOrdered(ta.entries.size(), tb.entries.size());
    }
    case kOthers:
      if (a.IsEqual(b)) return kEqual;
      if (const CR c = CompareOrdered(a.GetParameterType(), b.GetParameterType()); c != kEqual) {
        return c;
      }
      return CompareTexts(a.GetValueText(), b.GetValueText());
  }
  return kEqual;
}

VariableValues::CompareResult VariableValues::Compare(const Value& a, const Value& b,
                                                      const Tolerances& t) {
  const bool constantA = a.IsConstant();
  const bool constantB = b.IsConstant();
  if (constantA && constantB) return ConstantCompare(a, b, t);
  const Value ea = constantA ? a : Value(a.GetValueBase().CreateEvaluatedValueBase());
  const Value eb = constantB ? b : Value(b.GetValueBase().CreateEvaluatedValueBase());
  return ConstantCompare(ea, eb, t);
}

namespace {

VariableValues::CompareResult CompareAssignments(const VariableValues& a, const VariableValues& b,
                                                 const VariableValues::Tolerances& t) {
  if (a.size() != b.size())
    return a.size() < b.size() ? VariableValues::kLess : VariableValues::kGreater;
  const VariableValues::CompareVariables less;
  auto ia = a.GetVariableValueMap().begin();
  auto ib = b.GetVariableValueMap().begin();
  for (; ia != a.GetVariableValueMap().end(); ++ia, ++ib) {
    if (less(ia->first, ib->first)) return VariableValues::kLess;
    if (less(ib->first, ia->first)) return VariableValues::kGreater;
  }
  ia = a.GetVariableValueMap().begin();
  ib = b.GetVariableValueMap().begin();
  for (; ia != a.GetVariableValueMap().end(); ++ia, ++ib) {
    const VariableValues::CompareResult c = VariableValues::Compare(ia->second, ib->second, t);
    if (c != VariableValues::kEqual) return c;
  }
  return VariableValues::kEqual;
}

}  // namespace

bool VariableValues::operator==(const VariableValues& other) const {
  return CompareAssignments(*this, other, Tolerances()) == kEqual;
}

bool VariableValues::operator<(const VariableValues& other) const {
  return CompareAssignments(*this, other, Tolerances()) == kLess;
}

bool VariableValues::AreAllVariableValuesEqual(const VariableValues& other,
                                               const Tolerances& tolerances) const {
  return CompareAssignments(*this, other, tolerances) == kEqual;
}

CompareVariableValues::CompareVariableValues(const AComplex<double>& absolute,
                                             const AComplex<double>& relative) {
  mTolerances.mAbsolute = absolute;
  mTolerances.mRelative = relative;
}

VariableValues::CompareResult CompareVariableValues::Compare(const VariableValues& a,
                                                             const VariableValues& b) const {
  return CompareAssignments(a, b, mTolerances);
}

// ---- Writing keys ---------------------------------------------------------------------------

AString VariableValues::GetVariationKey(const AString& doubleFormat, bool evaluate,
                                        const NameMap* names, const UnitMap* units,
                                        bool arrayElements, unsigned int width,
                                        val::enVariationKeyFileNameDisplayMode mode) const {
  const varkey::DoubleFormatScope format(doubleFormat);
  // Values that read other variables are evaluated at this assignment, not at whatever the
  // variables hold outside it.
  std::optional<VariableValuesContext> context;
  if (evaluate && std::any_of(mValues.begin(), mValues.end(),
                              [](const auto& entry) { return !entry.second.IsConstant(); })) {
    context.emplace(*this);
  }
  varkey::KeyWriter writer(width);
  for (const auto& [variable, value] : mValues) {
    const AString text = varkey::ValueText(*variable, value, evaluate, units, arrayElements, mode);
    const AString* name = &variable->GetName();
    if (names != nullptr) {
      const auto found = names->find(variable);
      if (found != names->end()) name = &found->second;
    }
    writer.Add(*name, text);
  }
  return writer.Text();
}

AString VariableValues::GetVariationKey(bool evaluate, const NameMap* names,
                                        const UnitMap* units) const {
  return GetVariationKey(AString(kKeyDoubleFormat), evaluate, names, units, false, 0,
                         val::kVariationKeyFullFileName);
}

AString VariableValues::BuildVariationKey(const std::vector<Variable*>& variables,
                                          const AString& doubleFormat, bool evaluate,
                                          const NameMap* names, const UnitMap* units,
                                          bool arrayElements, unsigned int width,
                                          val::enVariationKeyFileNameDisplayMode mode) {
  return VariableValues(variables).GetVariationKey(doubleFormat, evaluate, names, units,
                                                   arrayElements, width, mode);
}

AString VariableValues::BuildVariationKey(const std::vector<Variable*>& variables, bool evaluate,
                                          const NameMap* names, const UnitMap* units) {
  return VariableValues(variables).GetVariationKey(evaluate, names, units);
}
