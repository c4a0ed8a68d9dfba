// SPDX-License-Identifier: Apache-2.0
//
// UnitTables.cpp - registers the unit types and drives the registration of every unit.
//
// UnitManager::CreateUnitTypes and UnitManager::CreateFullUnitTypes are defined here, beside the
// data, and hand the work to UnitTableBuilder (UnitTableBuilder.h). This file holds the type rows
// (code, name, default-units token, default unit), the order of the per-type steps, the units
// registered outside the per-type tables, and the conversion functions of the temperature and
// decibel scales. Called once per manager, from its constructor, on the constructing thread.
//
// It deliberately does not sort the families: the manager sorts them after the tables are in.
#include <cmath>
#include <limits>

#include "UnitTableBuilder.h"

using namespace wycore::units_detail;

void UnitManager::CreateUnitTypes() { UnitTableBuilder::CreateUnitTypes(*this); }

void UnitManager::CreateFullUnitTypes() { UnitTableBuilder::CreateFullUnitTypes(*this); }

namespace {

struct UnitTypeRow {
  Units::UnitType type;
  const AChar* name;
  int defaultToken;  // 904 and above; 90 for the pseudo types
  int defaultUnits;  // the type's initial default unit (its coherent SI unit where it has one)
};

// Registration order. NoUnit, LastUnit, AnyUnit and InvalidUnit are pseudo types: no token and no
// default unit of their own.
constexpr UnitTypeRow kUnitTypes[] = {
    {Units::Angle, u"Angle", 904, 52},                                   // rad
    {Units::AngularSpeed, u"AngularSpeed", 905, 53},                     // rad_per_sec
    {Units::Capacitance, u"Capacitance", 906, 112},                      // farad
    {Units::Conductance, u"Conductance", 907, 164},                      // sie
    {Units::Current, u"Current", 908, 192},                              // A
    {Units::ElectricField, u"ElectricField", 909, 248},                  // V_per_meter
    {Units::Flux, u"Flux", 910, 274},                                    // Wb
    {Units::Force, u"Force", 911, 285},                                  // newton
    {Units::Frequency, u"Frequency", 912, 0},                            // Hz
    {Units::Inductance, u"Inductance", 913, 302},                        // H
    {Units::Length, u"Length", 914, 37},                                 // meter
    {Units::DeltaH, u"DeltaH", 915, 239},                                // A_per_meter
    {Units::SaturateMagnetization, u"SaturateMagnetization", 916, 541},  // tesla
    {Units::NoiseSpectrum, u"NoiseSpectrum", 917, 405},                  // dbchz
    {Units::Power, u"Power", 918, 59},                                   // W
    {Units::Pressure, u"Pressure", 919, 480},                            // pascal
    {Units::Resistance, u"Resistance", 920, 8},                          // ohm
    {Units::Speed, u"Speed", 921, 566},                                  // m_per_sec
    {Units::Temperature, u"Temperature", 922, 79},                       // kel
    {Units::Time, u"Time", 923, 49},                                     // s
    {Units::Torque, u"Torque", 924, 665},                                // NewtonMeter
    {Units::Voltage, u"Voltage", 925, 68},                               // V
    {Units::Volume, u"Volume", 926, 852},                                // m3
    {Units::Mass, u"Mass", 927, 379},                                    // kg
    {Units::NoUnit, u"NoUnit", Units::NoUnits, Units::NoUnits},
    {Units::LastUnit, u"LastUnit", Units::NoUnits, Units::NoUnits},
    {Units::AnyUnit, u"AnyUnit", Units::NoUnits, Units::NoUnits},
    {Units::InvalidUnit, u"InvalidUnit", Units::NoUnits, Units::NoUnits},
    {Units::Acceleration, u"Acceleration", 928, 11},                // m_per_s2
    {Units::AIGB, u"AIGB", 929, 6},                                 // Fs2_per_ghalf_per_m
    {Units::AmountOfSubstance, u"AmountOfSubstance", 930, 15},      // mol
    {Units::AngleCoefficient, u"AngleCoefficient", 931, 18},        // per_rad
    {Units::AngularAcceleration, u"AngularAcceleration", 932, 23},  // rad_per_s2
    {Units::AngularDamping, u"AngularDamping", 933, 25},            // Nms_per_rad
    {Units::AngularJerk, u"AngularJerk", 934, 28},                  // rad_per_sec2
    {Units::AngularMomentum, u"AngularMomentum", 935, 29},          // kgm2_per_sec
    {Units::AngularStiffness, u"AngularStiffness", 936, 74},        // nm_per_rad
    {Units::AngularWindage, u"AngularWindage", 937, 75},            // kgm2_per_rad2
    {Units::AreaCoefficient, u"AreaCoefficient", 938, 78},          // per_m2
    {Units::Area, u"Area", 939, 88},                                // m2
    {Units::AreaPerPower, u"AreaPerPower", 940, 93},                // m2_per_W
    {Units::AreaPerVoltage, u"AreaPerVoltage", 941, 97},            // m2_per_V
    {Units::AreaPerVoltageTemperature, u"AreaPerVoltageTemperature", 942, 99},  // m2_per_Vkel
    {Units::ArealFlowRate, u"ArealFlowRate", 943, 102},                         // m2_per_s
    {Units::BIGB, u"BIGB", 944, 105},                              // F_per_ghalfs_per_Vm
    {Units::CapacitancePerArea, u"CapacitancePerArea", 945, 117},  // F_per_m2
    {Units::CapacitancePerAreaPerVoltage, u"CapacitancePerAreaPerVoltage", 946, 122},  // F_per_Vm2
    {Units::CapacitancePerLength, u"CapacitancePerLength", 947, 127},                  // F_per_m
    {Units::CapacitanceTemperatureCoeff, u"CapacitanceTemperatureCoeff", 948, 142},    // F_per_Kel
    {Units::Charge, u"Charge", 949, 149},                                              // Coulomb
    {Units::Compliance, u"Compliance", 950, 153},                                      // m_per_N
    {Units::ConductancePerLength, u"ConductancePerLength", 951, 170},                  // S_per_m
    {Units::CurrentChangeRate, u"CurrentChangeRate", 952, 179},                        // A_per_s
    {Units::CurrentDensity, u"CurrentDensity", 953, 186},                              // A_per_m2
    {Units::CurrentGain, u"CurrentGain", 954, 196},                                    // A_per_A
    {Units::CurrentLengthPerVoltage, u"CurrentLengthPerVoltage", 955, 199},            // Am_per_V
    {Units::CurrentPerCharge, u"CurrentPerCharge", 956, 200},                          // A_per_C
    {Units::CurrentPerIrradiance, u"CurrentPerIrradiance", 957, 205},  // A_per_W_per_m2
    {Units::CurrentPerLength, u"CurrentPerLength", 958, 211},          // A_per_m
    {Units::CurrentPerTemperature2_half, u"CurrentPerTemperature2_half", 959,
     213},                                                                         // A_per_Kel2half
    {Units::CurrentPerTemperatureCubed, u"CurrentPerTemperatureCubed", 960, 214},  // A_per_Kel3
    {Units::CurrentPerTemperatureDiffCubed, u"CurrentPerTemperatureDiffCubed", 961,
     216},                                                                   // A_per_diff_Kel3
    {Units::CurrentSquaredTime, u"CurrentSquaredTime", 962, 218},            // A2s
    {Units::CurrentTemperatureCoeff, u"CurrentTemperatureCoeff", 963, 226},  // A_per_Kel
    {Units::Damping, u"Damping", 964, 231},                                  // Ns_per_m
    {Units::Density, u"Density", 965, 245},                                  // kg_per_m3
    {Units::ElectricFluxDensity, u"ElectricFluxDensity", 966, 253},          // C_per_m2
    {Units::Energy, u"Energy", 967, 263},                                    // Joule
    {Units::FluidicCapacitance, u"FluidicCapacitance", 968, 268},            // m3_per_Pa
    {Units::FluidicConductance, u"FluidicConductance", 969, 270},            // m3_per_Pas
    {Units::FluidicResistance, u"FluidicResistance", 970, 272},              // Pas_per_m3
    {Units::Illuminance, u"Illuminance", 971, 294},                          // lx
    {Units::InductancePerLength, u"InductancePerLength", 972, 307},          // H_per_m
    {Units::Inertance, u"Inertance", 973, 308},                              // kg_per_m4
    {Units::Irradiance, u"Irradiance", 974, 315},                            // irrad_W_per_m2
    {Units::Jerk, u"Jerk", 975, 328},                                        // m_per_s3
    {Units::Length2PerVoltage2, u"Length2PerVoltage2", 976, 329},            // m2_per_V2
    {Units::LengthCoefficient, u"LengthCoefficient", 977, 337},              // per_m
    {Units::LengthPerVoltage, u"LengthPerVoltage", 978, 342},                // m_per_V
    {Units::LengthPerVoltageRoot, u"LengthPerVoltageRoot", 979, 348},        // m_per_Vhalf
    {Units::LuminousFlux, u"LuminousFlux", 980, 352},                        // lm
    {Units::LuminousIntensity, u"LuminousIntensity", 981, 356},              // Cd
    {Units::MagneticReluctance, u"MagneticReluctance", 982, 361},            // A_per_Wb
    {Units::MassFlowRate, u"MassFlowRate", 983, 368},                        // kg_per_s
    {Units::MolarDensity, u"MolarDensity", 984, 385},                        // mol_per_m3
    {Units::MolarEnergy, u"MolarEnergy", 985, 388},                          // J_per_mol
    {Units::MolarVelocity, u"MolarVelocity", 986, 397},                      // mol_per_s
    {Units::MolarViscosity, u"MolarViscosity", 987, 399},                    // Pas_per_mol
    {Units::MomentInertia, u"MomentInertia", 988, 402},                      // kgm2
    {Units::Momentum, u"Momentum", 989, 404},                                // kgm_per_s
    {Units::Percentage, u"Percentage", 990, 407},                            // fraction
    {Units::PercentagePerTime, u"PercentagePerTime", 991, 411},              // per_s
    {Units::Permeance, u"Permeance", 992, 425},                              // Wb_per_A
    {Units::PressureChangeRate, u"PressureChangeRate", 993, 457},            // Pa_per_s
    {Units::PressureCoefficient, u"PressureCoefficient", 994, 466},          // per_Pa
    {Units::Ratio, u"Ratio", 995, 493},                                      // bel
    {Units::ReciprocalPower, u"ReciprocalPower", 996, 499},                  // per_W
    {Units::ReciprocalResistanceCharge, u"ReciprocalResistanceCharge", 997, 502},   // per_OhmC
    {Units::ReciprocalResistanceTime, u"ReciprocalResistanceTime", 998, 505},       // per_Ohms
    {Units::ResistancePerCharge, u"ResistancePerCharge", 999, 517},                 // Ohm_per_C
    {Units::ResistancePerLength, u"ResistancePerLength", 1000, 524},                // Ohm_per_m
    {Units::ResistanceTemperatureCoeff, u"ResistanceTemperatureCoeff", 1001, 529},  // Ohm_per_Kel
    {Units::Resistivity, u"Resistivity", 1002, 534},                                // Ohmm
    {Units::SpecificHeatCapacity, u"SpecificHeatCapacity", 1003, 545},              // J_per_Kelkg
    {Units::Stiffness, u"Stiffness", 1004, 570},                                    // N_per_m
    {Units::SurfaceChargeDensity, u"SurfaceChargeDensity", 1005, 576},  // surf_charge_C_per_m2
    {Units::SurfaceMobility, u"SurfaceMobility", 1006, 578},            // m2_per_Vs
    {Units::SurfaceMobilityPerVoltage, u"SurfaceMobilityPerVoltage", 1007, 580},  // m2_per_V2s
    {Units::TemperatureAreaPerPower, u"TemperatureAreaPerPower", 1008, 581},      // kelm2_per_w
    {Units::TemperatureCoefficient2, u"TemperatureCoefficient2", 1009, 590},      // per_Kel2
    {Units::TemperatureCoefficient, u"TemperatureCoefficient", 1010, 596},        // per_Kel
    {Units::TemperatureDifference, u"TemperatureDifference", 1011, 599},          // delta_kel
    {Units::ThermalCapacitance, u"ThermalCapacitance", 1012, 603},                // J_per_Kel
    {Units::ThermalConductance, u"ThermalConductance", 1013, 608},                // W_per_Kel
    {Units::ThermalConductivity, u"ThermalConductivity", 1014, 618},              // W_per_Kelm
    {Units::ThermalConvection, u"ThermalConvection", 1015, 631},                  // w_per_m2kel
    {Units::ThermalRadiationCoeff, u"ThermalRadiationCoeff", 1016, 638},          // W_per_Kel4
    {Units::ThermalRadiationConstant, u"ThermalRadiationConstant", 1017, 641},    // W_per_m2Kel4
    {Units::ThermalResistance, u"ThermalResistance", 1018, 643},                  // Kel_per_W
    {Units::TimePerAngle, u"TimePerAngle", 1019, 649},                            // s_per_rad
    {Units::TimeSqPerAngleSq, u"TimeSqPerAngleSq", 1020, 651},                    // s2_per_rad2
    {Units::TransconductanceParameter, u"TransconductanceParameter", 1021, 670},  // A_per_V
    {Units::TransistorConstant, u"TransistorConstant", 1022, 673},                // A_per_V2
    {Units::TranslationalAcceleration, u"TranslationalAcceleration", 1023,
     677},                                                          // trans_accel_m_per_s2
    {Units::VelocitySaturation, u"VelocitySaturation", 1024, 685},  // vel_sat_m_per_V
    {Units::VelocitySaturationPerVoltage, u"VelocitySaturationPerVoltage", 1025, 689},  // m_per_V2
    {Units::Viscocity, u"Viscocity", 1026, 698},                                        // Pas
    {Units::ViscousFriction, u"ViscousFriction", 1027, 705},  // vis_fric_Ns_per_m
    {Units::VoltageAccelerationCoefficient, u"VoltageAccelerationCoefficient", 1028,
     708},                                                                        // V_per_m2_per_s2
    {Units::VoltageChangeRate, u"VoltageChangeRate", 1029, 712},                  // V_per_s
    {Units::VoltageCoefficient2, u"VoltageCoefficient2", 1030, 714},              // per_V2
    {Units::VoltageCoefficient, u"VoltageCoefficient", 1031, 717},                // per_V
    {Units::VoltageCubed, u"VoltageCubed", 1032, 719},                            // V3
    {Units::VoltageGain, u"VoltageGain", 1033, 722},                              // V_per_V
    {Units::VoltageJerkCoefficient, u"VoltageJerkCoefficient", 1034, 724},        // V_per_m_per_s3
    {Units::VoltageLength, u"VoltageLength", 1035, 727},                          // Vm
    {Units::VoltagePerCell, u"VoltagePerCell", 1036, 733},                        // V_per_cell
    {Units::VoltagePerLengthRoot, u"VoltagePerLengthRoot", 1037, 737},            // V_per_mhalf
    {Units::VoltagePressureRootCoeff, u"VoltagePressureRootCoeff", 1038, 739},    // V_per_Pahalf
    {Units::VoltageRootCoefficient, u"VoltageRootCoefficient", 1039, 740},        // per_Vhalf
    {Units::VoltageRoot, u"VoltageRoot", 1040, 741},                              // Vhalf
    {Units::VoltageTemperature10Coeff, u"VoltageTemperature10Coeff", 1041, 747},  // V_per_Kel10
    {Units::VoltageTemperature11Coeff, u"VoltageTemperature11Coeff", 1042, 753},  // V_per_Kel11
    {Units::VoltageTemperature12Coeff, u"VoltageTemperature12Coeff", 1043, 759},  // V_per_Kel12
    {Units::VoltageTemperature13Coeff, u"VoltageTemperature13Coeff", 1044, 765},  // V_per_Kel13
    {Units::VoltageTemperature14Coeff, u"VoltageTemperature14Coeff", 1045, 771},  // V_per_Kel14
    {Units::VoltageTemperature15Coeff, u"VoltageTemperature15Coeff", 1046, 777},  // V_per_Kel15
    {Units::VoltageTemperature2Coeff, u"VoltageTemperature2Coeff", 1047, 783},    // V_per_Kel2
    {Units::VoltageTemperature3Coeff, u"VoltageTemperature3Coeff", 1048, 789},    // V_per_Kel3
    {Units::VoltageTemperature4Coeff, u"VoltageTemperature4Coeff", 1049, 795},    // V_per_Kel4
    {Units::VoltageTemperature5Coeff, u"VoltageTemperature5Coeff", 1050, 801},    // V_per_Kel5
    {Units::VoltageTemperature6Coeff, u"VoltageTemperature6Coeff", 1051, 807},    // V_per_Kel6
    {Units::VoltageTemperature7Coeff, u"VoltageTemperature7Coeff", 1052, 813},    // V_per_Kel7
    {Units::VoltageTemperature8Coeff, u"VoltageTemperature8Coeff", 1053, 819},    // V_per_Kel8
    {Units::VoltageTemperature9Coeff, u"VoltageTemperature9Coeff", 1054, 828},    // V_per_Kel9
    {Units::VoltageTemperatureCoeff, u"VoltageTemperatureCoeff", 1055, 834},      // V_per_Kel
    {Units::VolumeCoefficient, u"VolumeCoefficient", 1056, 836},                  // per_m3
    {Units::VolumeFlowConductance, u"VolumeFlowConductance", 1057, 838},  // vol_flow_con_m3_per_Pas
    {Units::VolumeFlowPerPressureRoot, u"VolumeFlowPerPressureRoot", 1058, 839},  // m3_per_sPahalf
    {Units::VolumeFlowRateChangeRate, u"VolumeFlowRateChangeRate", 1059, 841},    // m3_per_s2
    {Units::VolumeFlowRate, u"VolumeFlowRate", 1060, 846},                        // m3_per_s
    {Units::WireCrossSection, u"WireCrossSection", 1061, 867},                    // m2wire
    {Units::EnergyDensity, u"EnergyDensity", 1062, 254},                          // J_per_m3
    {Units::MagnetomotiveForce, u"MagnetomotiveForce", 1063, 366},                // at
    {Units::MolarMass, u"MolarMass", 1064, 392},                                  // kg_per_mol
    {Units::PowerPerVolume, u"PowerPerVolume", 1065, 430},                        // w_per_m3
    {Units::TurbulentDissipationRate, u"TurbulentDissipationRate", 1066, 680},    // m2_per_s3
    {Units::TurbulenceKineticEnergy, u"TurbulenceKineticEnergy", 1067, 678},      // m2_per_s2
    {Units::SpecificTurbulenceDissipationRate, u"SpecificTurbulenceDissipationRate", 1068,
     543},                                      // diss_per_s
    {Units::DataRate, u"DataRate", 1069, 233},  // bps
    {Units::MassFlux, u"MassFlux", 1070, 371},  // kg_per_s_m2
    {Units::ThermalConductancePerArea, u"ThermalConductancePerArea", 1071,
     614},  // W_per_m2_per_Cel
};

// Units that users write but the per-type tables lack. Each sits in a family of its own so that
// it never appears as a rescaling of the table units of the same size. "m" is the metre as the
// expression language writes it ("3e-3m"); "g" and "N" are the SI symbols of the gram and the
// newton ("Pa" is not registered: without case it is "pA", the picoampere). "w_per_kg" and
// "w_per_lb" are the mass-specific loss units offered on core-loss axes: their number is the loss
// per kilogram, which only the material's mass density turns into a loss density (W/m³), so they
// are kept with the loss-density type for its choices.
struct ExtraUnitRow {
  Units::UnitType type;
  UnitRow row;
};

constexpr ExtraUnitRow kExtraUnits[] = {
    {Units::Length, U(868, u"m", 1.0, kSI, 1141)},
    {Units::Mass, U(869, u"g", 1e-3, kSI, 1142)},
    {Units::Force, U(870, u"N", 1.0, kSI, 1143)},
    {Units::PowerPerVolume, U(871, u"w_per_kg", 1.0, kPlain, 1144)},
    {Units::PowerPerVolume, U(872, u"w_per_lb", 1 / kPound, kPlain, 1145)},
};

}  // namespace

void UnitTableBuilder::CreateUnitTypes(UnitManager& manager) {
  for (const UnitTypeRow& row : kUnitTypes) {
    UnitManager::UnitTypeRep rep;
    rep.m_unitType = row.type;
    rep.m_name = AString(row.name);
    rep.m_defaultToken = static_cast<Units::FullUnitType>(row.defaultToken);
    rep.m_defaultUnits = static_cast<Units::FullUnitType>(row.defaultUnits);
    manager.Add(row.type, rep);
  }
}

void UnitTableBuilder::CreateFullUnitTypes(UnitManager& manager) {
  CreateAIGBFullUnitTypes(manager);
  CreateAccelerationFullUnitTypes(manager);
  CreateAmountOfSubstanceFullUnitTypes(manager);
  CreateAngleCoefficientFullUnitTypes(manager);
  CreateAngleFullUnitTypes(manager);
  CreateAngularAccelerationFullUnitTypes(manager);
  CreateAngularDampingFullUnitTypes(manager);
  CreateAngularJerkFullUnitTypes(manager);
  CreateAngularMomentumFullUnitTypes(manager);
  CreateAngularSpeedFullUnitTypes(manager);
  CreateAngularStiffnessFullUnitTypes(manager);
  CreateAngularWindageFullUnitTypes(manager);
  CreateAreaCoefficientFullUnitTypes(manager);
  CreateAreaFullUnitTypes(manager);
  CreateAreaPerPowerFullUnitTypes(manager);
  CreateAreaPerVoltageFullUnitTypes(manager);
  CreateAreaPerVoltageTemperatureFullUnitTypes(manager);
  CreateArealFlowRateFullUnitTypes(manager);
  CreateBIGBFullUnitTypes(manager);
  CreateCapacitanceFullUnitTypes(manager);
  CreateCapacitancePerAreaFullUnitTypes(manager);
  CreateCapacitancePerAreaPerVoltageFullUnitTypes(manager);
  CreateCapacitancePerLengthFullUnitTypes(manager);
  CreateCapacitanceTemperatureCoeffFullUnitTypes(manager);
  CreateChargeFullUnitTypes(manager);
  CreateComplianceFullUnitTypes(manager);
  CreateConductanceFullUnitTypes(manager);
  CreateConductancePerLengthFullUnitTypes(manager);
  CreateCurrentChangeRateFullUnitTypes(manager);
  CreateCurrentDensityFullUnitTypes(manager);
  CreateCurrentFullUnitTypes(manager);
  CreateCurrentGainFullUnitTypes(manager);
  CreateCurrentLengthPerVoltageFullUnitTypes(manager);
  CreateCurrentPerChargeFullUnitTypes(manager);
  CreateCurrentPerIrradianceFullUnitTypes(manager);
  CreateCurrentPerLengthFullUnitTypes(manager);
  CreateCurrentPerTemperature2_halfFullUnitTypes(manager);
  CreateCurrentPerTemperatureCubedFullUnitTypes(manager);
  CreateCurrentPerTemperatureDiffCubedFullUnitTypes(manager);
  CreateCurrentSquaredTimeFullUnitTypes(manager);
  CreateCurrentTemperatureCoeffFullUnitTypes(manager);
  CreateDampingFullUnitTypes(manager);
  CreateDataRateFullUnitTypes(manager);
  CreateDeltaHFullUnitTypes(manager);
  CreateDensityFullUnitTypes(manager);
  CreateElectricFieldFullUnitTypes(manager);
  CreateElectricFluxDensityFullUnitTypes(manager);
  CreateEnergyDensityFullUnitTypes(manager);
  CreateEnergyFullUnitTypes(manager);
  CreateFluidicCapacitanceFullUnitTypes(manager);
  CreateFluidicConductanceFullUnitTypes(manager);
  CreateFluidicResistanceFullUnitTypes(manager);
  CreateFluxFullUnitTypes(manager);
  CreateForceFullUnitTypes(manager);
  CreateFrequencyFullUnitTypes(manager);
  CreateIlluminanceFullUnitTypes(manager);
  CreateInductanceFullUnitTypes(manager);
  CreateInductancePerLengthFullUnitTypes(manager);
  CreateInertanceFullUnitTypes(manager);
  CreateIrradianceFullUnitTypes(manager);
  CreateJerkFullUnitTypes(manager);
  CreateLength2PerVoltage2FullUnitTypes(manager);
  CreateLengthCoefficientFullUnitTypes(manager);
  CreateLengthFullUnitTypes(manager);
  CreateLengthPerVoltageFullUnitTypes(manager);
  CreateLengthPerVoltageRootFullUnitTypes(manager);
  CreateLuminousFluxFullUnitTypes(manager);
  CreateLuminousIntensityFullUnitTypes(manager);
  CreateMagneticReluctanceFullUnitTypes(manager);
  CreateMagnetomotiveForceFullUnitTypes(manager);
  CreateMassFlowRateFullUnitTypes(manager);
  CreateMassFluxFullUnitTypes(manager);
  CreateMassFullUnitTypes(manager);
  CreateMolarDensityFullUnitTypes(manager);
  CreateMolarEnergyFullUnitTypes(manager);
  CreateMolarMassFullUnitTypes(manager);
  CreateMolarVelocityFullUnitTypes(manager);
  CreateMolarViscosityFullUnitTypes(manager);
  CreateMomentInertiaFullUnitTypes(manager);
  CreateMomentumFullUnitTypes(manager);
  CreateNoiseSpectrumFullUnitTypes(manager);
  CreatePercentageFullUnitTypes(manager);
  CreatePercentagePerTimeFullUnitTypes(manager);
  CreatePermeanceFullUnitTypes(manager);
  CreatePowerFullUnitTypes(manager);
  CreatePowerPerVolumeFullUnitTypes(manager);
  CreatePressureChangeRateFullUnitTypes(manager);
  CreatePressureCoefficientFullUnitTypes(manager);
  CreatePressureFullUnitTypes(manager);
  CreateRatioFullUnitTypes(manager);
  CreateReciprocalPowerFullUnitTypes(manager);
  CreateReciprocalResistanceChargeFullUnitTypes(manager);
  CreateReciprocalResistanceTimeFullUnitTypes(manager);
  CreateResistanceFullUnitTypes(manager);
  CreateResistancePerChargeFullUnitTypes(manager);
  CreateResistancePerLengthFullUnitTypes(manager);
  CreateResistanceTemperatureCoeffFullUnitTypes(manager);
  CreateResistivityFullUnitTypes(manager);
  CreateSaturateMagnetizationFullUnitTypes(manager);
  CreateSpecTurbDissRateFullUnitTypes(manager);
  CreateSpecificHeatCapacityFullUnitTypes(manager);
  CreateSpeedFullUnitTypes(manager);
  CreateStiffnessFullUnitTypes(manager);
  CreateSurfaceChargeDensityFullUnitTypes(manager);
  CreateSurfaceMobilityFullUnitTypes(manager);
  CreateSurfaceMobilityPerVoltageFullUnitTypes(manager);
  CreateTemperatureAreaPerPowerFullUnitTypes(manager);
  CreateTemperatureCoefficient2FullUnitTypes(manager);
  CreateTemperatureCoefficientFullUnitTypes(manager);
  CreateTemperatureDifferenceFullUnitTypes(manager);
  CreateTemperatureFullUnitTypes(manager);
  CreateThermalCapacitanceFullUnitTypes(manager);
  CreateThermalConductanceFullUnitTypes(manager);
  CreateThermalConductancePerAreaFullUnitTypes(manager);
  CreateThermalConductivityFullUnitTypes(manager);
  CreateThermalConvectionFullUnitTypes(manager);
  CreateThermalRadiationCoeffFullUnitTypes(manager);
  CreateThermalRadiationConstantFullUnitTypes(manager);
  CreateThermalResistanceFullUnitTypes(manager);
  CreateTimeFullUnitTypes(manager);
  CreateTimePerAngleFullUnitTypes(manager);
  CreateTimeSqPerAngleSqFullUnitTypes(manager);
  CreateTorqueFullUnitTypes(manager);
  CreateTransconductanceParameterFullUnitTypes(manager);
  CreateTransistorConstantFullUnitTypes(manager);
  CreateTranslationalAccelerationFullUnitTypes(manager);
  CreateTurbulenceKineticEnergyFullUnitTypes(manager);
  CreateTurbulentDissipationRateFullUnitTypes(manager);
  CreateVelocitySaturationFullUnitTypes(manager);
  CreateVelocitySaturationPerVoltageFullUnitTypes(manager);
  CreateViscocityFullUnitTypes(manager);
  CreateViscousFrictionFullUnitTypes(manager);
  CreateVoltageAccelerationCoefficientFullUnitTypes(manager);
  CreateVoltageChangeRateFullUnitTypes(manager);
  CreateVoltageCoefficient2FullUnitTypes(manager);
  CreateVoltageCoefficientFullUnitTypes(manager);
  CreateVoltageCubedFullUnitTypes(manager);
  CreateVoltageFullUnitTypes(manager);
  CreateVoltageGainFullUnitTypes(manager);
  CreateVoltageJerkCoefficientFullUnitTypes(manager);
  CreateVoltageLengthFullUnitTypes(manager);
  CreateVoltagePerCellFullUnitTypes(manager);
  CreateVoltagePerLengthRootFullUnitTypes(manager);
  CreateVoltagePressureRootCoeffFullUnitTypes(manager);
  CreateVoltageRootCoefficientFullUnitTypes(manager);
  CreateVoltageRootFullUnitTypes(manager);
  CreateVoltageTemperature10CoeffFullUnitTypes(manager);
  CreateVoltageTemperature11CoeffFullUnitTypes(manager);
  CreateVoltageTemperature12CoeffFullUnitTypes(manager);
  CreateVoltageTemperature13CoeffFullUnitTypes(manager);
  CreateVoltageTemperature14CoeffFullUnitTypes(manager);
  CreateVoltageTemperature15CoeffFullUnitTypes(manager);
  CreateVoltageTemperature2CoeffFullUnitTypes(manager);
  CreateVoltageTemperature3CoeffFullUnitTypes(manager);
  CreateVoltageTemperature4CoeffFullUnitTypes(manager);
  CreateVoltageTemperature5CoeffFullUnitTypes(manager);
  CreateVoltageTemperature6CoeffFullUnitTypes(manager);
  CreateVoltageTemperature7CoeffFullUnitTypes(manager);
  CreateVoltageTemperature8CoeffFullUnitTypes(manager);
  CreateVoltageTemperature9CoeffFullUnitTypes(manager);
  CreateVoltageTemperatureCoeffFullUnitTypes(manager);
  CreateVolumeCoefficientFullUnitTypes(manager);
  CreateVolumeFlowConductanceFullUnitTypes(manager);
  CreateVolumeFlowPerPressureRootFullUnitTypes(manager);
  CreateVolumeFlowRateChangeRateFullUnitTypes(manager);
  CreateVolumeFlowRateFullUnitTypes(manager);
  CreateVolumeFullUnitTypes(manager);
  CreateWireCrossSectionFullUnitTypes(manager);

  // The plain number: code 90, no name (so it never enters the name index), factor 1.
  manager.Add(UnitDefinition(Units::NoUnits, Units::NoUnit, Units::Metric, AString(), AString(),
                             AString(), 1.0, false, Units::NoQualifier));

  // Registered last: a table unit that claims one of these names keeps it.
  for (const ExtraUnitRow& extra : kExtraUnits) AddRow(manager, extra.type, extra.row);
}

void UnitTableBuilder::AddRow(UnitManager& manager, Units::UnitType type, const UnitRow& row) {
  bool metric = true;
  Units::Qualifier qualifier = Units::NoQualifier;
  switch (row.prefix) {
    case kPlain:
      metric = false;
      break;
    case kSI:
      break;
    case kFemto:
      qualifier = Units::Femto;
      break;
    case kPico:
      qualifier = Units::Pico;
      break;
    case kNano:
      qualifier = Units::Nano;
      break;
    case kMicro:
      qualifier = Units::Micro;
      break;
    case kMilli:
      qualifier = Units::Milli;
      break;
    case kKilo:
      qualifier = Units::Kilo;
      break;
    case kMega:
      qualifier = Units::Mega;
      break;
    case kGiga:
      qualifier = Units::Giga;
      break;
    case kTera:
      qualifier = Units::Tera;
      break;
  }
  const auto fut = static_cast<Units::FullUnitType>(row.fut);
  const auto family = static_cast<Units::Family>(row.family);
  if (row.function != nullptr) {
    manager.Add(UnitDefinition(fut, type, family, AString(row.name), AString(row.alternate),
                               AString(row.gui), row.function, metric, qualifier));
  } else {
    manager.Add(UnitDefinition(fut, type, family, AString(row.name), AString(row.alternate),
                               AString(row.gui), row.factor, metric, qualifier));
  }
}

// ---- Temperature scales (SI: kelvin) ---------------------------------------------------------
// Multiplying into kelvin and dividing back mirrors what a factor unit does, so that a value
// read and written again in the same unit comes back unchanged.

double UnitTableBuilder::KelvinToKelvin(double value, bool) { return value; }

double UnitTableBuilder::MillikelvinToKelvin(double value, bool toSI) {
  return toSI ? value * 1e-3 : value / 1e-3;
}

double UnitTableBuilder::CentikelvinToKelvin(double value, bool toSI) {
  return toSI ? value * 1e-2 : value / 1e-2;
}

double UnitTableBuilder::DecikelvinToKelvin(double value, bool toSI) {
  return toSI ? value * 1e-1 : value / 1e-1;
}

// T/K = t/°C + 273.15 (ITS-90 / SI definition of the Celsius scale).
double UnitTableBuilder::CelsiusToKelvin(double value, bool toSI) {
  return toSI ? value + 273.15 : value - 273.15;
}

// T/K = (t/°F − 32) · 5/9 + 273.15. Written around the ice point so that 32 °F is exactly
// 273.15 K and back.
double UnitTableBuilder::FahrenheitToKelvin(double value, bool toSI) {
  return toSI ? (value - 32.0) * kFahrenheitDegree + 273.15
              : (value - 273.15) * kPerFahrenheit + 32.0;
}

// T/K = T/°R · 5/9.
double UnitTableBuilder::RankineToKelvin(double value, bool toSI) {
  return toSI ? value * kFahrenheitDegree : value * kPerFahrenheit;
}

// ---- Decibel scales -----------------------------------------------------------------------
// Power levels: P = P0 · 10^(L/10); amplitude levels: U = U0 · 10^(L/20). A power or amplitude of
// 0 gives −inf dB, a negative one NaN (the logarithm's own results; nothing is reported here).

namespace {

double PowerLevel(double value, bool toSI, double reference) {
  return toSI ? reference * std::pow(10.0, value / 10.0) : 10.0 * std::log10(value / reference);
}

}  // namespace

double UnitTableBuilder::DBmToWatt(double value, bool toSI) {
  return PowerLevel(value, toSI, 1e-3);
}

double UnitTableBuilder::DBWToWatt(double value, bool toSI) { return PowerLevel(value, toSI, 1.0); }

double UnitTableBuilder::DBVToVolt(double value, bool toSI) {
  return toSI ? std::pow(10.0, value / 20.0) : 20.0 * std::log10(value);
}
