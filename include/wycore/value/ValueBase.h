// SPDX-License-Identifier: Apache-2.0
//
// ValueBase.h - the abstract implementation behind every Value, and the value model's number
// equality.
//
// A value answers every representation a caller may ask for (a double, a complex number, a
// matrix, a text, ...). Each class answers what makes sense for it and inherits a neutral answer
// for the rest: 0.0, an empty matrix or list, the empty string literal "\"\"", no units (90),
// no dataset (-1). Numbers are SI; the unit code beside them is for display and for the
// parser's unit check only.
//
// The virtual operations keep a fixed order (slots 1 to 40 below, then the additions of this
// library after slot 40); derived classes and other areas rely on that order, so new operations
// go at the end.
//
// ValueBase derives virtually from IReceiver so that a value (an expression, a variable) can be
// told that something it reads has changed. The registration operations (AddRef ...) register
// the receivers that must hear about changes of *this* value; constant values never change by
// themselves and ignore them.
//
// Ownership: CloneValueBase, AddConstant, SubstituteVariables and CreateEvaluatedValueBase return
// new objects owned by the caller (null when they have nothing to return).
// Threading: values are used on the thread that owns the design data.
#pragma once

#include <map>
#include <set>
#include <vector>

#include "wycore/Export.h"
#include "wycore/core/AComplex.h"
#include "wycore/core/Receiver.h"
#include "wycore/io/AString.h"
#include "wycore/units/DBType.h"
#include "wycore/units/Units.h"
#include "wycore/value/ADValue.h"
#include "wycore/value/GeometryParams.h"
#include "wycore/value/ParameterType.h"
#include "wycore/value/TNTMatrix.h"
#include "wycore/value/T_2DMatrix.h"

// Types of the variables area, known here only by name.
class Variable;
class IVariableChanger;
class IDatasetServer;
class CValueDatasetReassigner;

// The shape of a value seen as a matrix.
struct MatrixSizeInfo {
  int mNumRows = 1;
  int mNumCols = 1;

  friend bool operator==(const MatrixSizeInfo&, const MatrixSizeInfo&) = default;
};

namespace val {

// The one number equality of the value model: a and b are equal when both are finite and either
// both are zero (of any sign) or |a - b| <= 1e-14 * max(|a|, |b|); when either is not finite they
// are equal only when a == b (so infinities of one sign are equal and NaN equals nothing).
WYCORE_API bool AreNumbersEqual(double a, double b);
// Both parts by AreNumbersEqual.
WYCORE_API bool AreNumbersEqual(const AComplex<double>& a, const AComplex<double>& b);

// `value` rounded half away from zero (2.5 -> 3, -2.5 -> -3), saturated to the int range; NaN
// gives 0.
WYCORE_API int RoundToInt(double value);

}  // namespace val

class WYCORE_API ValueBase : public virtual IReceiver {
 public:
  ValueBase() = default;
  ValueBase(const ValueBase&) = default;
  ValueBase& operator=(const ValueBase&) = default;
  ~ValueBase() override;

  // 1. The decibel kind of the units (Units::GetDBType of GetUnits()).
  virtual val::DBType GetDBType() const;
  // 2. Rows and columns; 1 x 1 by default.
  virtual MatrixSizeInfo GetMatrixSize() const;
  // 3. The value as a real number in SI; 0.0 by default.
  virtual double GetValue() const;
  // 4. As a complex number; by default (GetValue(), 0).
  virtual AComplex<double> GetComplexValue() const;
  // 5.-9. As a matrix or a list; empty by default.
  virtual TNT::Matrix<double> GetDoubleMatrixValue() const;
  virtual TNT::Matrix<AComplex<double>> GetComplexMatrixValue() const;
  virtual T_2DMatrix<AString> GetStringMatrixValue() const;
  virtual std::vector<AString> GetStringArrayValue() const;
  virtual std::vector<double> GetDoubleArrayValue() const;
  // 10. GetValue() rounded half away from zero (val::RoundToInt).
  virtual int GetIntValue() const;
  // 11. 0 by default.
  virtual char GetCharValue() const;
  // 12. GetIntValue() by default.
  virtual int GetEnumValue() const;
  // 13. The string literal "\"\"" by default.
  virtual AString GetStringValue() const;
  // 14.-15. The value with derivatives up to `order` with respect to `variable`; by default a
  // constant (every derivative 0).
  virtual ADValue<double> GetDValue(int order, const Variable& variable) const;
  virtual ADValue<AComplex<double>> GetDComplexValue(int order, const Variable& variable) const;
  // 16.-18. Geometric parameters; all zero (no vertices) by default.
  virtual ArcParam GetArcParam() const;
  virtual CircleParam GetCircleParam() const;
  virtual RegionParam GetRegionParam() const;
  // 19. The text in three pieces: `text` without units, `units` the name of the units written
  // after it (empty when none), `suffix` anything written after the units (empty for every class
  // of this library). By default GetValueText() and two empty pieces.
  virtual void GetValueText(AString& text, AString& units, AString& suffix) const;
  // 20. The text as the user sees and the value reader reads it; empty by default.
  virtual AString GetValueText() const;
  // 21. The text in the explicit units when set, else GetValueText().
  virtual AString GetValueTextIncorporateOverrideUnits() const;
  // 22. A copy owned by the caller.
  virtual ValueBase* CloneValueBase() const = 0;
  // 23. Same kind and same text by default; numbers compare by val::AreNumbersEqual.
  virtual bool IsEqual(const ValueBase& other) const;
  // 24. True when the value cannot change by itself (it reads no variable).
  virtual bool IsConstant() const;
  // 25.-27. Display units and the units explicitly requested for display; 90 by default. The
  // default SetExplicitUnits ignores the request.
  virtual Units::FullUnitType GetUnits() const;
  virtual Units::FullUnitType GetExplicitUnits() const;
  virtual void SetExplicitUnits(Units::FullUnitType units);
  // 28. kNotParam by default.
  virtual val::ParameterType GetParameterType() const;
  // 29.-32. Receivers that must hear about changes of this value. Registration is counted
  // (ReceiverManager). The defaults ignore it: HasRef answers false.
  virtual void AddRef(IReceiver* receiver);
  virtual void Release(IReceiver* receiver);
  virtual bool HasRef(IReceiver* receiver) const;
  virtual void ChangeOwner(IReceiver* from, IReceiver* to);
  // 33. A new value shifted by `constant` (SI), or null when the value cannot be shifted.
  virtual ValueBase* AddConstant(const double& constant) const;
  // 34. A new value in which every variable read is replaced by its current value, or null when
  // there is nothing to substitute.
  virtual ValueBase* SubstituteVariables() const;
  // 35. Whether DoSubstituteVariables with `changer` would change this value.
  virtual bool TrySubstituteVariables(IVariableChanger& changer) const;
  // 36. Substitutes in place as `changer` says; true when something changed.
  virtual bool DoSubstituteVariables(IVariableChanger& changer);
  // 37.-38. The dataset this value stands for: an ID of its server, -1 and null when none.
  virtual int GetDatasetID() const;
  virtual const IDatasetServer* GetDatasetServer() const;
  // 39. A new constant value holding the evaluated result; by default a clone.
  virtual ValueBase* CreateEvaluatedValueBase() const;
  // 40. Points the dataset references at new datasets; returns how many changed (0 by default).
  virtual int ReassignDatasets(const CValueDatasetReassigner& reassigner);

  // ---- Additions after slot 40 -----------------------------------------------------------

  // Appends every variable this value reads, directly (not through other variables); nothing by
  // default. The cycle check of variables walks this.
  virtual void GetReferencedVariables(std::vector<const Variable*>& out) const;
  // Adds the datasets this value reads, by server; by default the one of GetDatasetID and
  // GetDatasetServer when there is one.
  virtual void GetReferencedDatasets(std::map<const IDatasetServer*, std::set<int>>& out) const;
};
