// SPDX-License-Identifier: Apache-2.0
//
// UnitTableBuilder.h - private: the builder that fills a UnitManager with the unit tables.
//
// The tables are code, not data files: one registration step per unit type, each adding the
// type's units in a fixed order (the order matters, because the first unit to claim a name keeps
// it). UnitTableBuilder is a friend of UnitManager and UnitDefinition, so it may call the
// manager's private Add functions and the definitions' private constructors; nothing else in the
// library builds units. The rows live in UnitTables*.cpp; see docs/units.md for the meaning of
// every unit and the choices made where a unit name is ambiguous.
//
// Every factor is "SI units per one of this unit" and is written from the definition of the unit
// (an inch is 0.0254 m exactly, a pound 0.45359237 kg exactly, ...) with the named constants
// below, so that each row can be checked against its definition by reading it.
#pragma once

#include <cstddef>

#include "wycore/io/AString.h"
#include "wycore/units/UnitDefinition.h"
#include "wycore/units/UnitManager.h"
#include "wycore/units/Units.h"

namespace wycore::units_detail {

// ---- Defining constants (exact where the definition is exact) ---------------------------------
inline constexpr double kPi = 3.141592653589793;
inline constexpr double kDegree = kPi / 180;               // rad
inline constexpr double kInch = 0.0254;                    // m, international inch (1959)
inline constexpr double kMil = kInch / 1000;               // m
inline constexpr double kFoot = 12 * kInch;                // m
inline constexpr double kYard = 3 * kFoot;                 // m
inline constexpr double kMile = 1760 * kYard;              // m, international mile (1609.344 m)
inline constexpr double kSurveyMile = 6336000.0 / 3937.0;  // m, US survey mile (6336/3937 km)
inline constexpr double kNauticalMile = 1852;              // m, international nautical mile
inline constexpr double kLightYear = 9460730472580800.0;   // m, IAU: 365.25 d at c
inline constexpr double kPound = 0.45359237;               // kg, avoirdupois pound (1959)
inline constexpr double kOunce = kPound / 16;              // kg, avoirdupois ounce
inline constexpr double kGravity = 9.80665;               // m/s², standard acceleration of gravity
inline constexpr double kPoundForce = kPound * kGravity;  // N
inline constexpr double kOunceForce = kOunce * kGravity;  // N
inline constexpr double kSlug = kPoundForce / kFoot;      // kg
inline constexpr double kCalorie = 4.184;                 // J, thermochemical calorie
inline constexpr double kBtu = 1055.05585262;             // J, International Table Btu
inline constexpr double kErg = 1e-7;                      // J
inline constexpr double kDyne = 1e-5;                     // N
inline constexpr double kPoise = 0.1;                     // Pa·s
inline constexpr double kGauss = 1e-4;                    // T
inline constexpr double kMaxwell = 1e-8;                  // Wb
inline constexpr double kOersted = 1000 / (4 * kPi);      // A/m
inline constexpr double kElementaryCharge = 1.602176634e-19;      // C, exact since 2019
inline constexpr double kElectronVolt = kElementaryCharge;        // J per eV
inline constexpr double kLitre = 1e-3;                            // m³
inline constexpr double kGallonUS = 231 * kInch * kInch * kInch;  // m³ (3.785411784 L)
inline constexpr double kCupUS = kGallonUS / 16;                  // m³, US customary cup
inline constexpr double kGallonUK = 4.54609e-3;                   // m³, imperial gallon
inline constexpr double kStandardAtmosphere = 101325;             // Pa
inline constexpr double kTechnicalAtmosphere = 98066.5;           // Pa (1 kgf/cm²)
inline constexpr double kTorr = kStandardAtmosphere / 760;        // Pa
inline constexpr double kMillimetreOfMercury = 133.322387415;  // Pa, conventional (13595.1 kg/m³)
inline constexpr double kMillimetreOfWater = 1e-3 * 1000 * kGravity;  // Pa, conventional
inline constexpr double kInchOfWater = kInch * 1000 * kGravity;       // Pa, conventional
inline constexpr double kPsi = kPoundForce / (kInch * kInch);         // Pa
inline constexpr double kFahrenheitDegree = 5.0 / 9.0;                // K per °F (and per °R)
inline constexpr double kPerFahrenheit = 9.0 / 5.0;                   // (1/°F) in 1/K
inline constexpr double kElectricalHorsepower = 746;                  // W
inline constexpr double kLuminousEfficacy = 683;  // lm/W at 540 THz (defines the candela)
inline constexpr double kMet = 58.2;              // W/m², metabolic rate (ISO 7730)
inline constexpr double kCopperDensity = 8960;    // kg/m³
// Thickness of one ounce of copper spread over one square foot (3.405711242e-5 m).
inline constexpr double kCopperOunceThickness = kOunce / (kCopperDensity * kFoot * kFoot);
// (F·s²/g)^(1/2) in (F·s²/kg)^(1/2): the square root of 1000.
inline constexpr double kRootKiloPerGram = 31.622776601683793;
// One revolution per second counted as 2π in the frequency tables.
inline constexpr double kRpsFactor = 2 * kPi;

// How a unit's name carries a metric prefix: kPlain = no standard prefix (flag false, qualifier
// none); kSI = the coherent unit itself or a deci unit (flag true, qualifier none); the others
// set the flag and name the qualifier.
enum UnitPrefix : unsigned char {
  kPlain,
  kSI,
  kFemto,
  kPico,
  kNano,
  kMicro,
  kMilli,
  kKilo,
  kMega,
  kGiga,
  kTera
};

inline constexpr int kMetric = Units::Metric;
inline constexpr int kImperial = Units::Imperial;

// One unit row. `factor` is 0 exactly when `function` is set.
struct UnitRow {
  int fut;
  const AChar* name;
  double factor;  // SI units per one of this unit
  Units::ConversionFunction function;
  UnitPrefix prefix;
  int family;
  const AChar* alternate;
  const AChar* gui;
};

constexpr UnitRow U(int fut, const AChar* name, double factor, UnitPrefix prefix, int family,
                    const AChar* alternate = u"", const AChar* gui = u"") {
  return UnitRow{fut, name, factor, nullptr, prefix, family, alternate, gui};
}

constexpr UnitRow UF(int fut, const AChar* name, Units::ConversionFunction function,
                     UnitPrefix prefix, int family, const AChar* alternate = u"",
                     const AChar* gui = u"") {
  return UnitRow{fut, name, 0.0, function, prefix, family, alternate, gui};
}

}  // namespace wycore::units_detail

class UnitTableBuilder {
 public:
  // Registers every unit type (UnitManager::CreateUnitTypes).
  static void CreateUnitTypes(UnitManager& manager);
  // Registers every unit (UnitManager::CreateFullUnitTypes).
  static void CreateFullUnitTypes(UnitManager& manager);

  // Conversion functions of the offset and logarithmic scales: value in the unit <-> SI.
  static double KelvinToKelvin(double value, bool toSI);
  static double MillikelvinToKelvin(double value, bool toSI);
  static double CentikelvinToKelvin(double value, bool toSI);
  static double DecikelvinToKelvin(double value, bool toSI);
  static double CelsiusToKelvin(double value, bool toSI);
  static double FahrenheitToKelvin(double value, bool toSI);
  static double RankineToKelvin(double value, bool toSI);
  static double DBmToWatt(double value, bool toSI);  // 1 mW reference, power ratio
  static double DBWToWatt(double value, bool toSI);  // 1 W reference, power ratio
  static double DBVToVolt(double value, bool toSI);  // 1 V reference, amplitude ratio

 private:
  template <std::size_t N>
  static void AddRows(UnitManager& manager, Units::UnitType type,
                      const wycore::units_detail::UnitRow (&rows)[N]) {
    for (const auto& row : rows) AddRow(manager, type, row);
  }
  static void AddRow(UnitManager& manager, Units::UnitType type,
                     const wycore::units_detail::UnitRow& row);

  // One registration step per unit type, each adding the type's units in their fixed order.
  static void CreateAIGBFullUnitTypes(UnitManager& manager);
  static void CreateAccelerationFullUnitTypes(UnitManager& manager);
  static void CreateAmountOfSubstanceFullUnitTypes(UnitManager& manager);
  static void CreateAngleCoefficientFullUnitTypes(UnitManager& manager);
  static void CreateAngleFullUnitTypes(UnitManager& manager);
  static void CreateAngularAccelerationFullUnitTypes(UnitManager& manager);
  static void CreateAngularDampingFullUnitTypes(UnitManager& manager);
  static void CreateAngularJerkFullUnitTypes(UnitManager& manager);
  static void CreateAngularMomentumFullUnitTypes(UnitManager& manager);
  static void CreateAngularSpeedFullUnitTypes(UnitManager& manager);
  static void CreateAngularStiffnessFullUnitTypes(UnitManager& manager);
  static void CreateAngularWindageFullUnitTypes(UnitManager& manager);
  static void CreateAreaCoefficientFullUnitTypes(UnitManager& manager);
  static void CreateAreaFullUnitTypes(UnitManager& manager);
  static void CreateAreaPerPowerFullUnitTypes(UnitManager& manager);
  static void CreateAreaPerVoltageFullUnitTypes(UnitManager& manager);
  static void CreateAreaPerVoltageTemperatureFullUnitTypes(UnitManager& manager);
  static void CreateArealFlowRateFullUnitTypes(UnitManager& manager);
  static void CreateBIGBFullUnitTypes(UnitManager& manager);
  static void CreateCapacitanceFullUnitTypes(UnitManager& manager);
  static void CreateCapacitancePerAreaFullUnitTypes(UnitManager& manager);
  static void CreateCapacitancePerAreaPerVoltageFullUnitTypes(UnitManager& manager);
  static void CreateCapacitancePerLengthFullUnitTypes(UnitManager& manager);
  static void CreateCapacitanceTemperatureCoeffFullUnitTypes(UnitManager& manager);
  static void CreateChargeFullUnitTypes(UnitManager& manager);
  static void CreateComplianceFullUnitTypes(UnitManager& manager);
  static void CreateConductanceFullUnitTypes(UnitManager& manager);
  static void CreateConductancePerLengthFullUnitTypes(UnitManager& manager);
  static void CreateCurrentChangeRateFullUnitTypes(UnitManager& manager);
  static void CreateCurrentDensityFullUnitTypes(UnitManager& manager);
  static void CreateCurrentFullUnitTypes(UnitManager& manager);
  static void CreateCurrentGainFullUnitTypes(UnitManager& manager);
  static void CreateCurrentLengthPerVoltageFullUnitTypes(UnitManager& manager);
  static void CreateCurrentPerChargeFullUnitTypes(UnitManager& manager);
  static void CreateCurrentPerIrradianceFullUnitTypes(UnitManager& manager);
  static void CreateCurrentPerLengthFullUnitTypes(UnitManager& manager);
  static void CreateCurrentPerTemperature2_halfFullUnitTypes(UnitManager& manager);
  static void CreateCurrentPerTemperatureCubedFullUnitTypes(UnitManager& manager);
  static void CreateCurrentPerTemperatureDiffCubedFullUnitTypes(UnitManager& manager);
  static void CreateCurrentSquaredTimeFullUnitTypes(UnitManager& manager);
  static void CreateCurrentTemperatureCoeffFullUnitTypes(UnitManager& manager);
  static void CreateDampingFullUnitTypes(UnitManager& manager);
  static void CreateDataRateFullUnitTypes(UnitManager& manager);
  static void CreateDeltaHFullUnitTypes(UnitManager& manager);
  static void CreateDensityFullUnitTypes(UnitManager& manager);
  static void CreateElectricFieldFullUnitTypes(UnitManager& manager);
  static void CreateElectricFluxDensityFullUnitTypes(UnitManager& manager);
  static void CreateEnergyDensityFullUnitTypes(UnitManager& manager);
  static void CreateEnergyFullUnitTypes(UnitManager& manager);
  static void CreateFluidicCapacitanceFullUnitTypes(UnitManager& manager);
  static void CreateFluidicConductanceFullUnitTypes(UnitManager& manager);
  static void CreateFluidicResistanceFullUnitTypes(UnitManager& manager);
  static void CreateFluxFullUnitTypes(UnitManager& manager);
  static void CreateForceFullUnitTypes(UnitManager& manager);
  static void CreateFrequencyFullUnitTypes(UnitManager& manager);
  static void CreateIlluminanceFullUnitTypes(UnitManager& manager);
  static void CreateInductanceFullUnitTypes(UnitManager& manager);
  static void CreateInductancePerLengthFullUnitTypes(UnitManager& manager);
  static void CreateInertanceFullUnitTypes(UnitManager& manager);
  static void CreateIrradianceFullUnitTypes(UnitManager& manager);
  static void CreateJerkFullUnitTypes(UnitManager& manager);
  static void CreateLength2PerVoltage2FullUnitTypes(UnitManager& manager);
  static void CreateLengthCoefficientFullUnitTypes(UnitManager& manager);
  static void CreateLengthFullUnitTypes(UnitManager& manager);
  static void CreateLengthPerVoltageFullUnitTypes(UnitManager& manager);
  static void CreateLengthPerVoltageRootFullUnitTypes(UnitManager& manager);
  static void CreateLuminousFluxFullUnitTypes(UnitManager& manager);
  static void CreateLuminousIntensityFullUnitTypes(UnitManager& manager);
  static void CreateMagneticReluctanceFullUnitTypes(UnitManager& manager);
  static void CreateMagnetomotiveForceFullUnitTypes(UnitManager& manager);
  static void CreateMassFlowRateFullUnitTypes(UnitManager& manager);
  static void CreateMassFluxFullUnitTypes(UnitManager& manager);
  static void CreateMassFullUnitTypes(UnitManager& manager);
  static void CreateMolarDensityFullUnitTypes(UnitManager& manager);
  static void CreateMolarEnergyFullUnitTypes(UnitManager& manager);
  static void CreateMolarMassFullUnitTypes(UnitManager& manager);
  static void CreateMolarVelocityFullUnitTypes(UnitManager& manager);
  static void CreateMolarViscosityFullUnitTypes(UnitManager& manager);
  static void CreateMomentInertiaFullUnitTypes(UnitManager& manager);
  static void CreateMomentumFullUnitTypes(UnitManager& manager);
  static void CreateNoiseSpectrumFullUnitTypes(UnitManager& manager);
  static void CreatePercentageFullUnitTypes(UnitManager& manager);
  static void CreatePercentagePerTimeFullUnitTypes(UnitManager& manager);
  static void CreatePermeanceFullUnitTypes(UnitManager& manager);
  static void CreatePowerFullUnitTypes(UnitManager& manager);
  static void CreatePowerPerVolumeFullUnitTypes(UnitManager& manager);
  static void CreatePressureChangeRateFullUnitTypes(UnitManager& manager);
  static void CreatePressureCoefficientFullUnitTypes(UnitManager& manager);
  static void CreatePressureFullUnitTypes(UnitManager& manager);
  static void CreateRatioFullUnitTypes(UnitManager& manager);
  static void CreateReciprocalPowerFullUnitTypes(UnitManager& manager);
  static void CreateReciprocalResistanceChargeFullUnitTypes(UnitManager& manager);
  static void CreateReciprocalResistanceTimeFullUnitTypes(UnitManager& manager);
  static void CreateResistanceFullUnitTypes(UnitManager& manager);
  static void CreateResistancePerChargeFullUnitTypes(UnitManager& manager);
  static void CreateResistancePerLengthFullUnitTypes(UnitManager& manager);
  static void CreateResistanceTemperatureCoeffFullUnitTypes(UnitManager& manager);
  static void CreateResistivityFullUnitTypes(UnitManager& manager);
  static void CreateSaturateMagnetizationFullUnitTypes(UnitManager& manager);
  static void CreateSpecTurbDissRateFullUnitTypes(UnitManager& manager);
  static void CreateSpecificHeatCapacityFullUnitTypes(UnitManager& manager);
  static void CreateSpeedFullUnitTypes(UnitManager& manager);
  static void CreateStiffnessFullUnitTypes(UnitManager& manager);
  static void CreateSurfaceChargeDensityFullUnitTypes(UnitManager& manager);
  static void CreateSurfaceMobilityFullUnitTypes(UnitManager& manager);
  static void CreateSurfaceMobilityPerVoltageFullUnitTypes(UnitManager& manager);
  static void CreateTemperatureAreaPerPowerFullUnitTypes(UnitManager& manager);
  static void CreateTemperatureCoefficient2FullUnitTypes(UnitManager& manager);
  static void CreateTemperatureCoefficientFullUnitTypes(UnitManager& manager);
  static void CreateTemperatureDifferenceFullUnitTypes(UnitManager& manager);
  static void CreateTemperatureFullUnitTypes(UnitManager& manager);
  static void CreateThermalCapacitanceFullUnitTypes(UnitManager& manager);
  static void CreateThermalConductanceFullUnitTypes(UnitManager& manager);
  static void CreateThermalConductancePerAreaFullUnitTypes(UnitManager& manager);
  static void CreateThermalConductivityFullUnitTypes(UnitManager& manager);
  static void CreateThermalConvectionFullUnitTypes(UnitManager& manager);
  static void CreateThermalRadiationCoeffFullUnitTypes(UnitManager& manager);
  static void CreateThermalRadiationConstantFullUnitTypes(UnitManager& manager);
  static void CreateThermalResistanceFullUnitTypes(UnitManager& manager);
  static void CreateTimeFullUnitTypes(UnitManager& manager);
  static void CreateTimePerAngleFullUnitTypes(UnitManager& manager);
  static void CreateTimeSqPerAngleSqFullUnitTypes(UnitManager& manager);
  static void CreateTorqueFullUnitTypes(UnitManager& manager);
  static void CreateTransconductanceParameterFullUnitTypes(UnitManager& manager);
  static void CreateTransistorConstantFullUnitTypes(UnitManager& manager);
  static void CreateTranslationalAccelerationFullUnitTypes(UnitManager& manager);
  static void CreateTurbulenceKineticEnergyFullUnitTypes(UnitManager& manager);
  static void CreateTurbulentDissipationRateFullUnitTypes(UnitManager& manager);
  static void CreateVelocitySaturationFullUnitTypes(UnitManager& manager);
  static void CreateVelocitySaturationPerVoltageFullUnitTypes(UnitManager& manager);
  static void CreateViscocityFullUnitTypes(UnitManager& manager);
  static void CreateViscousFrictionFullUnitTypes(UnitManager& manager);
  static void CreateVoltageAccelerationCoefficientFullUnitTypes(UnitManager& manager);
  static void CreateVoltageChangeRateFullUnitTypes(UnitManager& manager);
  static void CreateVoltageCoefficient2FullUnitTypes(UnitManager& manager);
  static void CreateVoltageCoefficientFullUnitTypes(UnitManager& manager);
  static void CreateVoltageCubedFullUnitTypes(UnitManager& manager);
  static void CreateVoltageFullUnitTypes(UnitManager& manager);
  static void CreateVoltageGainFullUnitTypes(UnitManager& manager);
  static void CreateVoltageJerkCoefficientFullUnitTypes(UnitManager& manager);
  static void CreateVoltageLengthFullUnitTypes(UnitManager& manager);
  static void CreateVoltagePerCellFullUnitTypes(UnitManager& manager);
  static void CreateVoltagePerLengthRootFullUnitTypes(UnitManager& manager);
  static void CreateVoltagePressureRootCoeffFullUnitTypes(UnitManager& manager);
  static void CreateVoltageRootCoefficientFullUnitTypes(UnitManager& manager);
  static void CreateVoltageRootFullUnitTypes(UnitManager& manager);
  static void CreateVoltageTemperature10CoeffFullUnitTypes(UnitManager& manager);
  static void CreateVoltageTemperature11CoeffFullUnitTypes(UnitManager& manager);
  static void CreateVoltageTemperature12CoeffFullUnitTypes(UnitManager& manager);
  static void CreateVoltageTemperature13CoeffFullUnitTypes(UnitManager& manager);
  static void CreateVoltageTemperature14CoeffFullUnitTypes(UnitManager& manager);
  static void CreateVoltageTemperature15CoeffFullUnitTypes(UnitManager& manager);
  static void CreateVoltageTemperature2CoeffFullUnitTypes(UnitManager& manager);
  static void CreateVoltageTemperature3CoeffFullUnitTypes(UnitManager& manager);
  static void CreateVoltageTemperature4CoeffFullUnitTypes(UnitManager& manager);
  static void CreateVoltageTemperature5CoeffFullUnitTypes(UnitManager& manager);
  static void CreateVoltageTemperature6CoeffFullUnitTypes(UnitManager& manager);
  static void CreateVoltageTemperature7CoeffFullUnitTypes(UnitManager& manager);
  static void CreateVoltageTemperature8CoeffFullUnitTypes(UnitManager& manager);
  static void CreateVoltageTemperature9CoeffFullUnitTypes(UnitManager& manager);
  static void CreateVoltageTemperatureCoeffFullUnitTypes(UnitManager& manager);
  static void CreateVolumeCoefficientFullUnitTypes(UnitManager& manager);
  static void CreateVolumeFlowConductanceFullUnitTypes(UnitManager& manager);
  static void CreateVolumeFlowPerPressureRootFullUnitTypes(UnitManager& manager);
  static void CreateVolumeFlowRateChangeRateFullUnitTypes(UnitManager& manager);
  static void CreateVolumeFlowRateFullUnitTypes(UnitManager& manager);
  static void CreateVolumeFullUnitTypes(UnitManager& manager);
  static void CreateWireCrossSectionFullUnitTypes(UnitManager& manager);
};
