// SPDX-License-Identifier: Apache-2.0
//
// Units.h - the static facade over the process's one unit manager.
//
// Every number in the library is held in SI; beside it sits a unit code (Units::FullUnitType,
// "FUT") that says how the number is shown and which quantity (Units::UnitType) it belongs to.
// This facade is what the rest of the library calls: it looks units up by code and by name,
// converts values to and from SI and to and from decibels, and turns text into numbers and
// numbers into text.
//
// Lifetime and threading: InitializeUnits builds the single UnitManager with all its tables; it
// must run before any other call, and UnInitializeUnits releases it. A call made before
// initialisation fires the check "msUnitManager" and returns its input unchanged or a neutral
// result (null, NaN, 0, code 90 or 15). The manager is read without locks; the setters (default
// units, formats, switches) belong to the thread that owns the application's settings.
//
// Unknown codes and names are not exceptions: they fire a check, write a debug line and give a
// neutral result. The Find* functions are the silent lookups for user input.
#pragma once

#include <cstdint>
#include <vector>

#include "wycore/Export.h"
#include "wycore/core/AComplex.h"
#include "wycore/io/AString.h"
#include "wycore/units/DBType.h"

// The application that hosts the library. The unit system only keeps the pointer (which may be
// null) for the components that ask the application for their settings.
class ICorvaneApplication;

class UnitDefinition;
class UnitManager;

class WYCORE_API Units {
 public:
  // The physical quantity of a unit. Codes are stored in files; see UnitTypeList.h.
  enum UnitType : std::int32_t {
#define WY_UNIT_TYPE(name, code) name = code,
#include "wycore/units/UnitTypeList.h"
#undef WY_UNIT_TYPE
  };

  // The code of one unit. Every 32-bit value is a valid code: codes below FirstDefaultToken name
  // units, codes from FirstDefaultToken up stand for "the current default unit of a type" and
  // resolve at the time of each call. NoUnits (90) is the code of a plain number.
  enum FullUnitType : std::int32_t { NoUnits = 90, FirstDefaultToken = 904 };

  // A set of units of one quantity among which a value may be rescaled. Units that must never be
  // offered as a rescaling of another (a light year, a nautical mile) have a family of their own,
  // with a plain number as code (1029, 1038, ...).
  enum Family : std::int32_t { Metric = 0, Imperial = 1 };

  // The metric prefix of a unit.
  enum Qualifier : std::int32_t {
    Femto = 0,
    Pico,
    Nano,
    Micro,
    Milli,
    NoQualifier,
    Kilo,
    Mega,
    Giga,
    Tera
  };

  // The result of TextToFloat and TextToComplex.
  enum UnitError : int {
    kUnitErrorNone = 0,           // success
    kUnitErrorNoNumber = 1,       // no number at the start, or the unit behind it is unknown
    kUnitErrorTrailingText = 2,   // text other than blanks is left after the number
    kUnitErrorNotReal = 3,        // TextToFloat: the number is imaginary
    kUnitErrorNotImaginary = 4,   // the part after "+" or "-" is not an imaginary number
    kUnitErrorNotInitialized = 8  // the unit manager has not been built
  };

  // Converts between a unit's own scale and SI when a factor is not enough (an offset scale such
  // as a temperature, a logarithmic one such as decibels): toSI true converts into SI.
  using ConversionFunction = double (*)(double value, bool toSI);

  // ---- Lifetime ---------------------------------------------------------------------------
  // Builds the one unit manager (replacing one built earlier). `application` may be null.
  static void InitializeUnits(ICorvaneApplication* application);
  // Releases the manager; afterwards every call behaves as before initialisation.
  static void UnInitializeUnits();
  static bool IsInitialized();
  static ICorvaneApplication* GetApplication();
  // The manager itself, or null before initialisation (no check fires).
  static UnitManager* GetUnitManager();

  // ---- Lookup -----------------------------------------------------------------------------
  // By code (resolving default tokens). Unknown: check, debug line, null.
  static const UnitDefinition* GetUnitDef(FullUnitType fut);
  // By name without regard to case; `unitType` is accepted for old callers and ignored. An empty
  // name gives the unit with code 90. Unknown: check, debug line, null.
  static const UnitDefinition* GetUnitDef(const AString& name, UnitType unitType);
  // Silent lookups for user input: null when unknown, nothing reported.
  static const UnitDefinition* FindUnitDef(FullUnitType fut);
  static const UnitDefinition* FindUnitDef(const AString& name);

  static const UnitDefinition* GetDefaultUnitDef(UnitType unitType);
  // Makes `unit` the default of its type; returns the previous default (90 for a null unit).
  static FullUnitType SetDefaultUnitDef(const UnitDefinition* unit);
  static FullUnitType GetDefaultUnits(UnitType unitType);
  // Returns the previous default of the unit's type. Setting a temperature unit also sets the
  // matching temperature-difference unit.
  static FullUnitType SetDefaultUnits(FullUnitType fut);

  // The code of a unit name (90 for an empty name or an unknown one, which also fires a check).
  static FullUnitType GetFullUnitType(const AString& name, UnitType unitType);
  // The metric unit of a type with the given prefix (Family Metric); 90 when there is none.
  static FullUnitType GetFullUnitType(UnitType unitType, Qualifier qualifier);
  static FullUnitType GetFullUnitType(UnitType unitType, Family family, Qualifier qualifier);
  // By unit-type name without regard to case; unknown: check, debug line, NoUnit.
  static UnitType GetUnitType(const AString& unitTypeName);
  // The quantity of a unit code; NoUnit for 90 and for unknown codes.
  static UnitType ConvertToUnitType(FullUnitType fut);
  static AString GetUnitTypeString(UnitType unitType);
  static Qualifier GetQualifier(FullUnitType fut);
  static bool UsesStandardMetricQualifier(FullUnitType fut);
  // The resolved `a` (default tokens replaced by the current default unit). Before
  // initialisation `a` is returned unchanged.
  static FullUnitType CalcFullUnitType(FullUnitType a, FullUnitType b);
  // "kel" -> "delta_kel", "fah" -> "delta_fah", ...; every other input gives "delta_cel".
  static FullUnitType GetMatchingTemperatureDiffUnit(FullUnitType temperatureUnit);

  // ---- Conversion -------------------------------------------------------------------------
  // From the unit `fut` into SI and back. An unknown unit converts nothing (value returned).
  static double ConvertToSI(double value, FullUnitType fut);
  static double ConvertFromSI(double value, FullUnitType fut);
  static AComplex<double> ConvertToSI(const AComplex<double>& value, FullUnitType fut);
  static AComplex<double> ConvertFromSI(const AComplex<double>& value, FullUnitType fut);
  // From one unit into another, through SI.
  static double Convert(double value, FullUnitType from, FullUnitType to);

  // Decibels: 20·log10 for amplitude-like quantities (GetDBType non-zero), 10·log10 for
  // power-like ones. A value of 0 or less fires "value > 0.0" and gives NaN.
  static double ConvertToDB(double value, FullUnitType fut);
  static double ConvertFromDB(double value, FullUnitType fut);
  static val::DBType GetDBType(FullUnitType fut);
  static val::DBType GetDBType(UnitType unitType);
  // The decibel unit of a quantity ("dBW" for Power, "dBV" for Voltage), 90 when it has none.
  static FullUnitType GetDBUnits(UnitType unitType);
  static AString GetDBTypeString(val::DBType dbType);
  // Case-blind; an unknown text gives kDBAmplitude, the kind of a plain number.
  static val::DBType GetDBTypeFromString(const AString& text);

  // ---- Rescaling --------------------------------------------------------------------------
  // The unit of fut's family in which the larger magnitude of [minSI, maxSI] reads at least 1
  // with the fewest digits before the point (the largest unit that still gives >= 1); fut itself
  // when no unit of the family fits or fut converts by a function.
  static FullUnitType GetScaleUnits(FullUnitType fut, double minSI, double maxSI);
  // As GetScaleUnits, but the candidates are fut itself and the units of its family that carry a
  // standard metric prefix a factor of 1000 apart (nm, um, mm, the SI unit, km; not cm or dm),
  // so that the magnitude reads in [1, 1000) where the family allows.
  static FullUnitType GetNiceScaleUnits(FullUnitType fut, double minSI, double maxSI);
  // The metric length unit (nm ... km) for a length in metres.
  static FullUnitType FindNiceUnitForLength(double meters);

  // The units of a type as one text ("fm, pm, nm, ..."), or as a list returning its size. With
  // `guiStrings` the display strings are listed instead of the unit strings.
  static AString GetTypeChoices(UnitType unitType, bool guiStrings);
  static int GetTypeChoices(UnitType unitType, std::vector<AString>& choices, bool guiStrings);
  // The position of fut in its type's list (GetTypeChoices order); -1 when unknown.
  static int GetTypeIndex(FullUnitType fut);

  // ---- Text -------------------------------------------------------------------------------
  // Reads a real number with an optional unit directly behind it. `value` leaves in SI; a number
  // written without unit is taken in the (resolved) default unit. Error codes: see UnitError.
  // Returns true exactly when error is kUnitErrorNone.
  static bool TextToFloat(const AString& text, FullUnitType defaultFut, double& value,
                          FullUnitType& unitsFound, UnitError& error);
  // The meaning of an error code in words, for messages ("text is left after the number").
  static AString GetUnitErrorText(UnitError error);
  // Reads "re", "imj", or "re + imj" / "re - imj", each part with an optional unit. A part
  // written without unit takes the unit of the other part, else the default unit.
  static bool TextToComplex(const AString& text, FullUnitType defaultFut, AComplex<double>& value,
                            FullUnitType& unitsFound, bool& hasImaginary, UnitError& error);
  // x (in SI) as text in the unit fut, with the default double format and the must-write-units
  // switch. "nan", "-inf" and "inf" are followed by one blank before the unit; a number is not.
  static void FloatToText(const double& x, FullUnitType fut, AString& out);
  static void FloatToText(const double& x, FullUnitType fut, AString& out, const AString& format,
                          bool writeUnits);
  // "re + imj unit" (or "re - imj unit"); both parts in the unit fut, default double format.
  static void ComplexToText(const AComplex<double>& z, FullUnitType fut, AString& out,
                            bool writeUnits);

  // ---- Switches and formats ---------------------------------------------------------------
  static bool MustWriteUnits();
  static bool SetMustWriteUnits(bool on);  // returns the previous value
  static bool GetDontAllowUnitsForExpressions();
  static bool SetDontAllowUnitsForExpressions(bool on);  // returns the previous value
  static AString GetDefaultDoubleFormat();
  static AString SetDefaultDoubleFormat(const AString& format);  // returns the previous text
};
