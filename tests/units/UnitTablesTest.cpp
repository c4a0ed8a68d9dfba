// SPDX-License-Identifier: Apache-2.0
//
// UnitTablesTest.cpp - the content of the unit tables: every type and unit name, the codes that
// files depend on, factors checked against the definitions of the units, the temperature and
// decibel scales, and the order of families.
//
// The expectations are written from the definitions of the units (an inch is 0.0254 m, a pound
// 0.45359237 kg, a Btu 1055.05585262 J, ...), not read back from the tables.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <string>
#include <vector>

#include "wycore/core/Utf.h"
#include "wycore/units/UnitDefinition.h"
#include "wycore/units/UnitManager.h"
#include "wycore/units/Units.h"

namespace {

std::string Narrow(const AString& s) { return wycore::Utf16ToUtf8(s); }

const UnitManager& Manager() { return *Units::GetUnitManager(); }

// Silent, case-blind lookup through the manager.
const UnitDefinition* Find(const char16_t* name) { return Manager().FindUnitDef(AString(name)); }

std::vector<AString> Split(const char16_t* text) {
  std::vector<AString> out;
  AString all(text);
  std::size_t start = 0;
  while (start < all.size()) {
    std::size_t end = all.find(u' ', start);
    if (end == AString::npos) end = all.size();
    if (end > start) out.emplace_back(all.substr(start, end - start));
    start = end + 1;
  }
  return out;
}

// Every table unit, type by type, as the unit list of the product defines it.
struct TypeUnits {
  Units::UnitType type;
  const char16_t* names;  // blank-separated
};

const TypeUnits kTableUnits[] = {
    {Units::AIGB, u"Fs2_per_ghalf_per_m F_per_ghalfs_per_m"},
    {Units::Acceleration, u"in_per_s2 mm_per_s2 cm_per_s2 m_per_s2"},
    {Units::AmountOfSubstance, u"nmol umol mmol mol kmol"},
    {Units::AngleCoefficient, u"per_deg per_rad V_per_V_per_deg V_per_V_per_rad"},
    {Units::Angle, u"deg degsec degmin rad"},
    {Units::AngularAcceleration, u"deg_per_s2 per_s2 rad_per_s2"},
    {Units::AngularDamping, u"dNms_per_rad Nms_per_rad kNms_per_rad"},
    {Units::AngularJerk, u"deg_per_sec2 rad_per_sec2"},
    {Units::AngularMomentum, u"kgm2_per_sec nms"},
    {Units::AngularSpeed,
     u"rev_per_sec per_second rpm deg_per_sec deg_per_min rad_per_sec rad_per_hr deg_per_hr "
     u"rad_per_min"},
    {Units::AngularStiffness, u"nm_per_deg nm_per_rad"},
    {Units::AngularWindage, u"kgm2_per_rad2 nms2_per_rad2"},
    {Units::AreaCoefficient, u"per_cm2 per_m2"},
    {Units::Area, u"in2 ft2 mil2 um2 mm2 cm2 m2 km2 micron2"},
    {Units::AreaPerPower, u"m2_per_Js m2_per_W"},
    {Units::AreaPerVoltage, u"Am2_per_kW Am2_per_W m2_per_kV m2_per_V"},
    {Units::AreaPerVoltageTemperature, u"Am2_per_Wkel m2_per_Vkel"},
    {Units::ArealFlowRate, u"m2_per_hour m2_per_min m2_per_s cm2_per_s ft2_per_s"},
    {Units::BIGB, u"F_per_ghalfs_per_Vm Fs2_per_ghalf_per_Vm"},
    {Units::Capacitance, u"fF pF nF uF mF farad"},
    {Units::CapacitancePerArea, u"F_per_cm2 nF_per_m2 uF_per_m2 mF_per_m2 F_per_m2"},
    {Units::CapacitancePerAreaPerVoltage, u"pF_per_Vm2 nF_per_Vm2 uF_per_Vm2 mF_per_Vm2 F_per_Vm2"},
    {Units::CapacitancePerLength, u"pF_per_m nF_per_m uF_per_m mF_per_m F_per_m"},
    {Units::CapacitanceTemperatureCoeff,
     u"nF_per_Cel uF_per_Cel F_per_Cel pF_per_Fah nF_per_Fah uF_per_Fah mF_per_Fah F_per_Fah "
     u"mF_per_Cel pF_per_Cel pF_per_Kel nF_per_Kel uF_per_Kel mF_per_Kel F_per_Kel"},
    {Units::Charge, u"As Ahour q nC uC mC Coulomb kC"},
    {Units::Compliance, u"in_per_lbf cm_per_N m_per_N"},
    {Units::Conductance, u"mho perohm ApV fSie pSie nSie uSie mSie sie kSie megSie"},
    {Units::ConductancePerLength, u"uS_per_m mS_per_m cS_per_m S_per_m kS_per_m"},
    {Units::CurrentChangeRate, u"A_per_min A_per_hour uA_per_s mA_per_s A_per_s kA_per_s"},
    {Units::CurrentDensity, u"uA_per_cm2 mA_per_cm2 A_per_cm2 uA_per_m2 mA_per_m2 A_per_m2"},
    {Units::Current, u"fA pA nA uA mA A kA"},
    {Units::CurrentGain, u"A_per_mA mA_per_A A_per_A"},
    {Units::CurrentLengthPerVoltage, u"uAm_per_V mAm_per_V Am_per_V"},
    {Units::CurrentPerCharge, u"A_per_C A_per_Ahour A_per_As"},
    {Units::CurrentPerIrradiance,
     u"uA_per_W_per_m2 mA_per_W_per_m2 A_per_W_per_m2 kA_per_W_per_m2"},
    {Units::CurrentPerLength, u"uA_per_m mA_per_m A_per_m kA_per_m"},
    {Units::CurrentPerTemperature2_half, u"A_per_Kel2half"},
    {Units::CurrentPerTemperatureCubed, u"A_per_Kel3"},
    {Units::CurrentPerTemperatureDiffCubed, u"A_per_Cel3 A_per_diff_Kel3"},
    {Units::CurrentSquaredTime, u"mA2s A2s"},
    {Units::CurrentTemperatureCoeff,
     u"uA_per_Cel mA_per_Cel A_per_Cel mA_per_Fah A_per_Fah uA_per_Kel mA_per_Kel A_per_Kel "
     u"kA_per_Kel"},
    {Units::Damping, u"mNs_per_m cNs_per_m dNs_per_m Ns_per_m kNs_per_m"},
    {Units::DataRate, u"bps kbps Mbps Gbps"},
    {Units::DeltaH, u"kOe Oe A_per_meter kA_per_meter"},
    {Units::Density, u"g_per_cm3 g_per_l kg_per_l kg_per_dm3 kg_per_m3 lbm_per_ft3 slug_per_ft3"},
    {Units::ElectricField, u"V_per_meter v_per_cm"},
    {Units::ElectricFluxDensity, u"nC_per_m2 uC_per_m2 mC_per_m2 C_per_m2"},
    {Units::EnergyDensity, u"J_per_m3 kJ_per_m3"},
    {Units::Energy, u"Whour kWhour eV erg Ws uJ mJ Joule kJ megJ GJ"},
    {Units::FluidicCapacitance, u"cm3_per_Pa m3_per_Pa"},
    {Units::FluidicConductance, u"cm3_per_Pas m3_per_Pas"},
    {Units::FluidicResistance, u"Ns_per_m5 Pas_per_m3"},
    {Units::Flux, u"mx Wb vh vs"},
    {Units::Force,
     u"dyne kp PoundsForce fNewton pNewton nNewton uNewton mNewton newton kNewton megNewton "
     u"gNewton"},
    {Units::Frequency, u"per_sec rps Hz kHz MHz GHz THz"},
    {Units::Illuminance, u"lm_per_m2 lm_per_cm2 W_per_m2 W_per_cm2 lm_per_in2 lx klx meglx"},
    {Units::Inductance, u"fH pH nH uH mH H"},
    {Units::InductancePerLength, u"pH_per_m nH_per_m uH_per_m mH_per_m H_per_m"},
    {Units::Inertance, u"kg_per_m4 Ns2_per_m5 Pas2_per_m3"},
    {Units::Irradiance,
     u"irrad_W_per_cm2 W_per_in2 uW_per_m2 mW_per_m2 irrad_W_per_m2 kW_per_m2 megW_per_m2 "
     u"btu_per_s_per_ft2 btu_per_hr_per_ft2 erg_per_s_per_cm2 irrad_W_per_mm2 irrad_met"},
    {Units::Jerk, u"in_per_s3 nm_per_s3 um_per_s3 mm_per_s3 cm_per_s3 m_per_s3"},
    {Units::Length2PerVoltage2, u"m2_per_V2"},
    {Units::LengthCoefficient,
     u"per_cm per_mm per_um per_km per_in V_per_V_per_m V_per_V_per_in per_m"},
    {Units::Length,
     u"uin mil in ft yd mile lightyear mileNaut fm pm nm um mm cm dm meter km mileTerr "
     u"copper_oz_per_ft2"},
    {Units::LengthPerVoltage, u"um_per_V mm_per_V cm_per_V dm_per_V m_per_V km_per_V"},
    {Units::LengthPerVoltageRoot,
     u"um_per_Vhalf mm_per_Vhalf cm_per_Vhalf dm_per_Vhalf m_per_Vhalf km_per_Vhalf"},
    {Units::LuminousFlux, u"gm2_per_s3 mlm lm klm meglm"},
    {Units::LuminousIntensity, u"mCd Cd kCd megCd GCd"},
    {Units::MagneticReluctance, u"A_per_Vs A_per_Wb"},
    {Units::MagnetomotiveForce, u"nat uat mat kat at"},
    {Units::MassFlowRate, u"g_per_s kg_per_s lbm_per_s lbm_per_min"},
    {Units::MassFlux, u"kg_per_s_m2 lbm_per_min_ft2 g_per_s_cm2"},
    {Units::Mass, u"oz lb ug mg gram kg ton"},
    {Units::MolarDensity, u"mol_per_dm3 mol_per_cm3 mol_per_l mol_per_m3"},
    {Units::MolarEnergy, u"uJ_per_mol mJ_per_mol J_per_mol kJ_per_mol megJ_per_mol gJ_per_mol"},
    {Units::MolarMass, u"kg_per_mol g_per_mol"},
    {Units::MolarVelocity, u"umol_per_s mmol_per_s cmol_per_s mol_per_s kmol_per_s"},
    {Units::MolarViscosity, u"Pas_per_mol"},
    {Units::MomentInertia, u"lbin2 lbft2 kgm2"},
    {Units::Momentum, u"gm_per_s kgm_per_s"},
    {Units::NoiseSpectrum, u"dbchz"},
    {Units::Percentage, u"percent fraction"},
    {Units::PercentagePerTime,
     u"percent_per_min percent_per_hour percent_per_day per_s per_min per_hour per_day "
     u"percent_per_s"},
    {Units::Permeance, u"Vs_per_A Wb_per_A"},
    {Units::Power, u"Btu_per_hr Btu_per_sec dBm dBW HP fW pW nW uW mW W kW megW gW erg_per_sec"},
    {Units::PowerPerVolume, u"w_per_m3 btu_per_secFt3 btu_per_hrFt3 erg_per_secCm3"},
    {Units::PressureChangeRate,
     u"psi_per_min statm_per_min techatm_per_min mmH2O_per_min torr_per_min Pa_per_hour "
     u"mbar_per_hour bar_per_hour psi_per_hour statm_per_hour techatm_per_hour mbar_per_s "
     u"bar_per_s mmH2O_per_hour torr_per_hour psi_per_s statm_per_s techatm_per_s mmH2O_per_s "
     u"torr_per_s Pa_per_min mbar_per_min bar_per_min Pa_per_s"},
    {Units::PressureCoefficient,
     u"per_bar per_mbar per_psi per_statm per_techatm per_mmHg per_mmH2O V_per_Vper_Pa per_Pa"},
    {Units::Pressure,
     u"mbar bar psi kpsi megpsi gpsi lbf_per_ft2 mmh2o mmHg uPascal mPascal cPascal dPascal pascal "
     u"hPascal kPascal megPascal gPascal stAtm n_per_meter_sq kn_per_meter_sq megn_per_meter_sq "
     u"gn_per_meter_sq techAtm torr in_water"},
    {Units::Ratio, u"bel"},
    {Units::ReciprocalPower, u"per_megW per_mW per_kW per_gW per_Js per_W"},
    {Units::ReciprocalResistanceCharge, u"per_OhmAs per_OhmAhour per_OhmC"},
    {Units::ReciprocalResistanceTime, u"per_Ohmmin per_Ohmhour per_Ohms"},
    {Units::Resistance, u"uOhm mOhm ohm kOhm megohm GOhm"},
    {Units::ResistancePerCharge,
     u"Ohm_per_As Ohm_per_Ahour nOhm_per_C uOhm_per_C mOhm_per_C Ohm_per_C kOhm_per_C megOhm_per_C "
     u"gOhm_per_C"},
    {Units::ResistancePerLength,
     u"Ohm_per_um uOhm_per_m mOhm_per_m Ohm_per_m kOhm_per_m megOhm_per_m"},
    {Units::ResistanceTemperatureCoeff, u"Ohm_per_Cel mOhm_per_Kel Ohm_per_Kel kOhm_per_Kel"},
    {Units::Resistivity, u"Ohmmm2_per_mm Ohmum Ohmcm Ohmm"},
    {Units::SaturateMagnetization, u"uGauss mGauss gauss kGauss uTesla mTesla tesla kTesla"},
    {Units::SpecificTurbulenceDissipationRate, u"diss_per_s"},
    {Units::SpecificHeatCapacity,
     u"mJ_per_Kelkg J_per_Kelkg kJ_per_Kelkg J_per_Celkg btu_per_lbmFah btu_per_lbmRank "
     u"cal_per_gKel cal_per_gCel erg_per_gKel kcal_per_kgKel kcal_per_kgCel"},
    {Units::Speed,
     u"feet_per_min inches_per_sec feet_per_sec m_per_hr km_per_hour km_per_min miles_per_hour "
     u"miles_per_min miles_per_sec mm_per_sec cm_per_sec m_per_sec km_per_sec"},
    {Units::Stiffness, u"N_per_cm lbf_per_in N_per_m kN_per_m"},
    {Units::SurfaceChargeDensity,
     u"As_per_m2 surf_charge_nC_per_m2 surf_charge_uC_per_m2 surf_charge_mC_per_m2 "
     u"surf_charge_C_per_m2"},
    {Units::SurfaceMobility, u"cm2_per_Vs m2_per_Vs"},
    {Units::SurfaceMobilityPerVoltage, u"cm2_per_V2s m2_per_V2s"},
    {Units::TemperatureAreaPerPower, u"kelm2_per_w celm2_per_w cel_in2_per_w cel_mm2_per_w"},
    {Units::TemperatureCoefficient2, u"per_Cel2 per_Fah2 per_Kel2"},
    {Units::TemperatureCoefficient,
     u"per_Cel per_Fah percent_per_Kel percent_per_Cel percent_per_Fah per_Kel per_Rank "
     u"percent_per_Rank"},
    {Units::TemperatureDifference,
     u"delta_fah delta_rank delta_cel delta_mkel delta_ckel delta_dkel delta_kel"},
    {Units::Temperature, u"fah rank kel mkel ckel cel dkel"},
    {Units::ThermalCapacitance, u"Ws_per_Kel J_per_Kel"},
    {Units::ThermalConductance,
     u"mW_per_Cel W_per_Cel kW_per_Cel mW_per_Kel W_per_Kel kW_per_Kel btu_per_fahSec "
     u"btu_per_rankSec btu_per_fahHr btu_per_rankHr"},
    {Units::ThermalConductancePerArea, u"W_per_m2_per_Cel W_per_in2_per_Cel W_per_mm2_per_Cel"},
    {Units::ThermalConductivity,
     u"mW_per_Kelm W_per_Kelm W_per_Celm btu_per_fahFtSec btu_per_rankFtSec btu_per_fahFtHr "
     u"btu_per_rankFtHr erg_per_cmSecKel cal_per_secCelM cal_per_secKelM"},
    {Units::ThermalConvection,
     u"w_per_cm2kel w_per_m2kel w_per_m2Cel btu_per_rankSecFt2 btu_per_fahSecFt2 btu_per_rankHrFt2 "
     u"btu_per_fahHrFt2"},
    {Units::ThermalRadiationCoeff, u"mW_per_Kel4 W_per_Kel4 kW_per_Kel4"},
    {Units::ThermalRadiationConstant, u"W_per_cm2Kel4 W_per_m2Kel4"},
    {Units::ThermalResistance, u"Kels_per_J Kel_per_W cel_per_w FahSec_per_btu"},
    {Units::Time, u"min hour day fs ps ns us ms s"},
    {Units::TimePerAngle, u"s_per_deg s_per_rev ms_per_rad s_per_rad"},
    {Units::TimeSqPerAngleSq, u"s2_per_deg2 s2_per_rad2"},
    {Units::Torque,
     u"oz_in lb_in lb_ft gm_cm kg_cm kg_m fNewtonMeter pNewtonMeter nNewtonMeter uNewtonMeter "
     u"mNewtonMeter cNewtonMeter NewtonMeter kNewtonMeter megNewtonMeter gNewtonMeter"},
    {Units::TransconductanceParameter, u"mA_per_V A_per_V kA_per_V"},
    {Units::TransistorConstant, u"mA_per_V2 A_per_V2"},
    {Units::TranslationalAcceleration,
     u"trans_accel_in_per_s2 trans_accel_cm_per_s2 dm_per_s2 trans_accel_m_per_s2"},
    {Units::TurbulenceKineticEnergy, u"m2_per_s2 ft2_per_s2"},
    {Units::TurbulentDissipationRate, u"m2_per_s3 ft2_per_s3"},
    {Units::VelocitySaturation,
     u"vel_sat_um_per_V vel_sat_mm_per_V vel_sat_cm_per_V vel_sat_m_per_V"},
    {Units::VelocitySaturationPerVoltage, u"um_per_V2 mm_per_V2 cm_per_V2 m_per_V2"},
    {Units::Viscocity,
     u"Ns_per_m2 kg_per_m_per_s cpoise poise uPas mPas cPas dPas Pas hPas kPas lbm_per_ft_per_s "
     u"slug_per_ft_per_s"},
    {Units::ViscousFriction,
     u"vis_fric_mNs_per_m vis_fric_cNs_per_m vis_fric_Ns_per_m vis_fric_kNs_per_m"},
    {Units::VoltageAccelerationCoefficient, u"mV_per_m2_per_s2 V_per_m2_per_s2"},
    {Units::VoltageChangeRate, u"V_per_min V_per_hour mV_per_s V_per_s kV_per_s"},
    {Units::VoltageCoefficient2, u"per_V2"},
    {Units::VoltageCoefficient, u"per_mV per_kV per_V"},
    {Units::VoltageCubed, u"mV3 V3"},
    {Units::Voltage, u"dBV fV pV nV uv mV V kV megV gv"},
    {Units::VoltageGain, u"V_per_mV mV_per_V V_per_V"},
    {Units::VoltageJerkCoefficient, u"mV_per_m_per_s3 V_per_m_per_s3"},
    {Units::VoltageLength, u"uVm mVm Vm kVm"},
    {Units::VoltagePerCell,
     u"pV_per_cell nV_per_cell uV_per_cell mV_per_cell V_per_cell kV_per_cell megV_per_cell "
     u"gV_per_cell"},
    {Units::VoltagePerLengthRoot, u"V_per_mhalf"},
    {Units::VoltagePressureRootCoeff, u"mV_per_Pahalf V_per_Pahalf"},
    {Units::VoltageRootCoefficient, u"per_Vhalf"},
    {Units::VoltageRoot, u"Vhalf"},
    {Units::VoltageTemperature10Coeff,
     u"uV_per_Cel10 mV_per_Cel10 V_per_Cel10 uV_per_Kel10 mV_per_Kel10 V_per_Kel10"},
    {Units::VoltageTemperature11Coeff,
     u"uV_per_Cel11 mV_per_Cel11 V_per_Cel11 uV_per_Kel11 mV_per_Kel11 V_per_Kel11"},
    {Units::VoltageTemperature12Coeff,
     u"uV_per_Cel12 mV_per_Cel12 V_per_Cel12 uV_per_Kel12 mV_per_Kel12 V_per_Kel12"},
    {Units::VoltageTemperature13Coeff,
     u"uV_per_Cel13 mV_per_Cel13 V_per_Cel13 uV_per_Kel13 mV_per_Kel13 V_per_Kel13"},
    {Units::VoltageTemperature14Coeff,
     u"uV_per_Cel14 mV_per_Cel14 V_per_Cel14 uV_per_Kel14 mV_per_Kel14 V_per_Kel14"},
    {Units::VoltageTemperature15Coeff,
     u"uV_per_Cel15 mV_per_Cel15 V_per_Cel15 uV_per_Kel15 mV_per_Kel15 V_per_Kel15"},
    {Units::VoltageTemperature2Coeff,
     u"uV_per_Cel2 mV_per_Cel2 V_per_Cel2 uV_per_Kel2 mV_per_Kel2 V_per_Kel2"},
    {Units::VoltageTemperature3Coeff,
     u"uV_per_Cel3 mV_per_Cel3 V_per_Cel3 uV_per_Kel3 mV_per_Kel3 V_per_Kel3"},
    {Units::VoltageTemperature4Coeff,
     u"uV_per_Cel4 mV_per_Cel4 V_per_Cel4 uV_per_Kel4 mV_per_Kel4 V_per_Kel4"},
    {Units::VoltageTemperature5Coeff,
     u"uV_per_Cel5 mV_per_Cel5 V_per_Cel5 uV_per_Kel5 mV_per_Kel5 V_per_Kel5"},
    {Units::VoltageTemperature6Coeff,
     u"uV_per_Cel6 mV_per_Cel6 V_per_Cel6 uV_per_Kel6 mV_per_Kel6 V_per_Kel6"},
    {Units::VoltageTemperature7Coeff,
     u"uV_per_Cel7 mV_per_Cel7 V_per_Cel7 uV_per_Kel7 mV_per_Kel7 V_per_Kel7"},
    {Units::VoltageTemperature8Coeff,
     u"uV_per_Cel8 mV_per_Cel8 V_per_Cel8 uV_per_Kel8 mV_per_Kel8 V_per_Kel8"},
    {Units::VoltageTemperature9Coeff,
     u"uV_per_Cel9 mV_per_Cel9 V_per_Cel9 uV_per_Kel9 mV_per_Kel9 V_per_Kel9"},
    {Units::VoltageTemperatureCoeff,
     u"uV_per_Cel mV_per_Cel V_per_Cel uV_per_Kel mV_per_Kel V_per_Kel"},
    {Units::VolumeCoefficient, u"per_cm3 per_m3"},
    {Units::VolumeFlowConductance, u"vol_flow_con_cm3_per_Pas vol_flow_con_m3_per_Pas"},
    {Units::VolumeFlowPerPressureRoot, u"m3_per_sPahalf"},
    {Units::VolumeFlowRateChangeRate, u"cm3_per_s2 m3_per_s2"},
    {Units::VolumeFlowRate,
     u"m3_per_min ltr_per_min m3_per_hour cm3_per_s m3_per_s ft3_per_min ft3_per_s cfm"},
    {Units::Volume, u"mm3 cm3 m3 inch3 foot3 yard3 ml l galUK cup galUS"},
    {Units::WireCrossSection, u"in2wire ft2wire um2wire mm2wire cm2wire m2wire"},
};

// Units registered outside the per-type tables.
const TypeUnits kExtraUnits[] = {
    {Units::Length, u"m"},
    {Units::Mass, u"g"},
    {Units::Force, u"N"},
    {Units::PowerPerVolume, u"w_per_kg w_per_lb"},
};

TEST(UnitTables, HasEveryTypeAndEveryUnitName) {
  const auto& types = Manager().GetUnitTypeMap();
  EXPECT_EQ(types.size(), 172u);

  std::size_t tableNames = 0;
  std::set<Units::UnitType> typesWithTableUnits;
  for (const TypeUnits& entry : kTableUnits) {
    typesWithTableUnits.insert(entry.type);
    for (const AString& name : Split(entry.names)) {
      SCOPED_TRACE(Narrow(name));
      ++tableNames;
      for (const AString& spelling : {name, name.ToUpper(), name.ToLower()}) {
        const UnitDefinition* unit = Manager().FindUnitDef(spelling);
        ASSERT_NE(unit, nullptr) << Narrow(spelling);
        EXPECT_EQ(unit->GetUnitString(), name);
        EXPECT_EQ(unit->GetUnitType(), entry.type);
        // The facade lower-cases before looking up and ignores the type argument.
        EXPECT_EQ(Units::GetUnitDef(spelling, Units::AnyUnit), unit);
        EXPECT_EQ(Manager().GetUnitDef(unit->GetFullUnitType()), unit);
      }
    }
  }
  EXPECT_EQ(tableNames, 869u);
  EXPECT_EQ(typesWithTableUnits.size(), 168u);

  // Every registered unit with a name is either a table unit or one of the extras.
  std::size_t extraNames = 0;
  for (const TypeUnits& entry : kExtraUnits) {
    for (const AString& name : Split(entry.names)) {
      SCOPED_TRACE(Narrow(name));
      ++extraNames;
      const UnitDefinition* unit = Manager().FindUnitDef(name.ToUpper());
      ASSERT_NE(unit, nullptr);
      EXPECT_EQ(unit->GetUnitString(), name);
      EXPECT_EQ(unit->GetUnitType(), entry.type);
    }
  }
  std::size_t registeredNames = 0;
  for (const auto& [type, rep] : types) {
    for (const auto& [family, units] : rep.m_families) {
      for (const auto& unit : units) registeredNames += unit->GetUnitString().empty() ? 0 : 1;
    }
  }
  EXPECT_EQ(registeredNames, tableNames + extraNames);
}

TEST(UnitTables, TypeNamesResolveToTheirCodes) {
  struct Case {
    const char16_t* name;
    Units::UnitType type;
    int code;
  };
  // Codes stored in files.
  const Case cases[] = {
      {u"Frequency", Units::Frequency, 0},
      {u"Resistance", Units::Resistance, 1},
      {u"Length", Units::Length, 5},
      {u"Time", Units::Time, 6},
      {u"Angle", Units::Angle, 7},
      {u"Power", Units::Power, 8},
      {u"Voltage", Units::Voltage, 9},
      {u"Current", Units::Current, 10},
      {u"Temperature", Units::Temperature, 11},
      {u"NoUnit", Units::NoUnit, 15},
      {u"Percentage", Units::Percentage, 87},
      {u"TemperatureDifference", Units::TemperatureDifference, 108},
      {u"SpecificTurbulenceDissipationRate", Units::SpecificTurbulenceDissipationRate, -1},
      {u"Viscocity", Units::Viscocity, -1},
      {u"ThermalConductancePerArea", Units::ThermalConductancePerArea, -1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(Narrow(c.name));
    if (c.code >= 0) {
      EXPECT_EQ(static_cast<int>(c.type), c.code);
    }
    EXPECT_EQ(Manager().GetUnitType(AString(c.name)), c.type);
    EXPECT_EQ(Manager().GetUnitType(AString(c.name).ToUpper()), c.type);
    EXPECT_EQ(Manager().GetUnitTypeString(c.type), AString(c.name));
  }
}

TEST(UnitTables, DefaultsAndTokensAreConsistent) {
  std::set<int> tokens;
  for (const auto& [type, rep] : Manager().GetUnitTypeMap()) {
    SCOPED_TRACE(Narrow(rep.m_name));
    const bool pseudo = type == Units::NoUnit || type == Units::LastUnit ||
                        type == Units::AnyUnit || type == Units::InvalidUnit;
    if (pseudo) {
      EXPECT_EQ(rep.m_defaultToken, Units::NoUnits);
      EXPECT_EQ(rep.m_defaultUnits, Units::NoUnits);
      continue;
    }
    EXPECT_GE(rep.m_defaultToken, Units::FirstDefaultToken);
    EXPECT_TRUE(tokens.insert(rep.m_defaultToken).second);
    const UnitDefinition* unit = Manager().FindUnitDef(rep.m_defaultUnits);
    ASSERT_NE(unit, nullptr);
    EXPECT_EQ(unit->GetUnitType(), type);
    // The token resolves to the default unit.
    EXPECT_EQ(Manager().FindUnitDef(rep.m_defaultToken), unit);
  }
  EXPECT_EQ(tokens.size(), 168u);
}

TEST(UnitTables, CodesAndNamesAreUniqueAndUnitsValid) {
  std::set<int> codes;
  std::set<AString> lowerNames;
  std::size_t nameCount = 0;
  for (const auto& [type, rep] : Manager().GetUnitTypeMap()) {
    for (const auto& [family, units] : rep.m_families) {
      for (const auto& unit : units) {
        SCOPED_TRACE(Narrow(unit->GetUnitString()));
        const int fut = unit->GetFullUnitType();
        EXPECT_TRUE(codes.insert(fut).second) << fut;
        EXPECT_GE(fut, 0);
        EXPECT_LT(fut, Units::FirstDefaultToken);
        if (fut == Units::NoUnits) continue;  // the plain number has no name
        EXPECT_TRUE(unit->IsValid());
        EXPECT_EQ(unit->GetFactor() == 0.0, !unit->HasSimpleFactorConversion());
        EXPECT_GT(unit->ConvertToSI(1.0), 0.0);
        for (const AString& name : {unit->GetUnitString(), unit->GetAlternateUnitString()}) {
          if (name.empty()) continue;
          ++nameCount;
          EXPECT_TRUE(lowerNames.insert(name.ToLower()).second) << Narrow(name);
        }
      }
    }
  }
  EXPECT_EQ(lowerNames.size(), nameCount);
  // The plain number: code 90, type NoUnit, no name, factor 1.
  const UnitDefinition* plain = Manager().FindUnitDef(Units::NoUnits);
  ASSERT_NE(plain, nullptr);
  EXPECT_EQ(plain->GetUnitType(), Units::NoUnit);
  EXPECT_TRUE(plain->GetUnitString().empty());
  EXPECT_EQ(plain->ConvertToSI(2.5), 2.5);
  EXPECT_EQ(Units::GetUnitDef(AString(), Units::Length), plain);
}

TEST(UnitTables, AlternateAndDisplayStrings) {
  struct Case {
    const char16_t* name;
    const char16_t* alternate;
    const char16_t* gui;
  };
  const Case cases[] = {
      {u"mil", u"mils", u"mils"},
      {u"meter", u"meters", u"meters"},
      {u"copper_oz_per_ft2", u"", u"Cu-oz/ft^2"},
      {u"delta_fah", u"fahdiff", u"delta_fah"},
      {u"delta_rank", u"rankdiff", u"delta_rank"},
      {u"delta_cel", u"celdiff", u"delta_cel"},
      {u"delta_mkel", u"mkeldiff", u"delta_mkel"},
      {u"delta_kel", u"keldiff", u"delta_kel"},
      {u"delta_ckel", u"", u"delta_ckel"},
      {u"in", u"", u"in"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(Narrow(c.name));
    const UnitDefinition* unit = Find(c.name);
    ASSERT_NE(unit, nullptr);
    EXPECT_EQ(unit->GetAlternateUnitString(), AString(c.alternate));
    EXPECT_EQ(unit->GetGuiDisplayString(), AString(c.gui));
    const AString alternate(c.alternate);
    if (!alternate.empty()) {
      EXPECT_EQ(Manager().FindUnitDef(alternate), unit);
      EXPECT_EQ(Manager().FindUnitDef(alternate.ToUpper()), unit);
    }
  }
  EXPECT_EQ(Find(u"MILS"), Find(u"mil"));
  EXPECT_EQ(Find(u"Meters"), Find(u"meter"));
}

TEST(UnitTables, CodesFixedInFiles) {
  struct Case {
    const char16_t* name;
    int fut;
  };
  const Case cases[] = {
      {u"ohm", 8},          {u"uin", 42},        {u"mil", 41},         {u"in", 40},
      {u"ft", 39},          {u"yd", 413},        {u"mile", 414},       {u"lightyear", 415},
      {u"mileNaut", 416},   {u"fm", 417},        {u"pm", 418},         {u"nm", 34},
      {u"um", 35},          {u"mm", 36},         {u"cm", 38},          {u"dm", 419},
      {u"meter", 37},       {u"km", 162},        {u"mileTerr", 420},   {u"copper_oz_per_ft2", 858},
      {u"fah", 81},         {u"rank", 880},      {u"kel", 79},         {u"mkel", 583},
      {u"ckel", 584},       {u"cel", 80},        {u"dkel", 585},       {u"delta_fah", 822},
      {u"delta_rank", 881}, {u"delta_cel", 597}, {u"delta_mkel", 598}, {u"delta_ckel", 823},
      {u"delta_dkel", 824}, {u"delta_kel", 599}, {u"Hz", 0},           {u"kHz", 1},
      {u"MHz", 2},          {u"GHz", 3},         {u"THz", 4},          {u"rps", 5},
      {u"per_sec", 383},    {u"fs", 44},         {u"ps", 45},          {u"ns", 46},
      {u"us", 47},          {u"ms", 48},         {u"s", 49},           {u"min", 619},
      {u"hour", 620},       {u"day", 621},       {u"deg", 51},         {u"rad", 52},
      {u"degmin", 209},     {u"degsec", 208},    {u"fW", 54},          {u"pW", 55},
      {u"nW", 56},          {u"uW", 57},         {u"mW", 58},          {u"W", 59},
      {u"dBm", 60},         {u"dBW", 61},        {u"kW", 171},         {u"HP", 172},
      {u"Btu_per_hr", 173}, {u"fV", 63},         {u"pV", 64},          {u"nV", 65},
      {u"uv", 66},          {u"mV", 67},         {u"V", 68},           {u"kV", 69},
      {u"dBV", 70},         {u"megV", 163},      {u"gv", 660},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(Narrow(c.name));
    const UnitDefinition* unit = Find(c.name);
    ASSERT_NE(unit, nullptr);
    EXPECT_EQ(unit->GetFullUnitType(), c.fut);
  }
}

TEST(UnitTables, LengthRowsAsDefined) {
  struct Case {
    const char16_t* name;
    bool metric;
    Units::Qualifier qualifier;
    int family;
  };
  const Case cases[] = {
      {u"uin", false, Units::NoQualifier, 1},
      {u"mil", false, Units::NoQualifier, 1},
      {u"in", false, Units::NoQualifier, 1},
      {u"ft", false, Units::NoQualifier, 1},
      {u"yd", false, Units::NoQualifier, 1},
      {u"mile", false, Units::NoQualifier, 1},
      {u"lightyear", false, Units::NoQualifier, 1029},
      {u"mileNaut", false, Units::NoQualifier, 1038},
      {u"fm", true, Units::Femto, 0},
      {u"pm", true, Units::Pico, 0},
      {u"nm", true, Units::Nano, 0},
      {u"um", true, Units::Micro, 0},
      {u"mm", true, Units::Milli, 0},
      {u"cm", false, Units::NoQualifier, 0},
      {u"dm", true, Units::NoQualifier, 0},
      {u"meter", true, Units::NoQualifier, 0},
      {u"km", true, Units::Kilo, 0},
      {u"mileTerr", false, Units::NoQualifier, 1056},
      {u"copper_oz_per_ft2", false, Units::NoQualifier, 1068},
      {u"kHz", true, Units::Kilo, 0},
      {u"MHz", true, Units::Mega, 0},
      {u"GHz", true, Units::Giga, 0},
      {u"THz", true, Units::Tera, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(Narrow(c.name));
    const UnitDefinition* unit = Find(c.name);
    ASSERT_NE(unit, nullptr);
    EXPECT_EQ(unit->UsesStandardMetricQualifier(), c.metric);
    EXPECT_EQ(unit->GetQualifier(), c.qualifier);
    EXPECT_EQ(static_cast<int>(unit->GetFamily()), c.family);
  }
}

TEST(UnitTables, FamiliesListSmallestFirst) {
  for (const auto& [type, rep] : Manager().GetUnitTypeMap()) {
    for (const auto& [family, units] : rep.m_families) {
      for (std::size_t i = 1; i < units.size(); ++i) {
        EXPECT_LE(units[i - 1]->ConvertToSI(1.0), units[i]->ConvertToSI(1.0))
            << Narrow(rep.m_name) << " family " << family << ": "
            << Narrow(units[i - 1]->GetUnitString()) << " before "
            << Narrow(units[i]->GetUnitString());
      }
    }
  }
  std::vector<AString> imperial;
  for (Units::FullUnitType fut : Manager().GetFamilyFUTList(Find(u"in")->GetFullUnitType())) {
    imperial.push_back(Manager().GetUnitDef(fut)->GetUnitString());
  }
  const std::vector<AString> expected = {u"uin", u"mil", u"in", u"ft", u"yd", u"mile"};
  EXPECT_EQ(imperial, expected);
  std::vector<AString> metric;
  for (Units::FullUnitType fut : Manager().GetFamilyFUTList(Find(u"mm")->GetFullUnitType())) {
    metric.push_back(Manager().GetUnitDef(fut)->GetUnitString());
  }
  const std::vector<AString> expectedMetric = {u"fm", u"pm", u"nm",    u"um", u"mm",
                                               u"cm", u"dm", u"meter", u"km"};
  EXPECT_EQ(metric, expectedMetric);
}

// ---- Factors from the definitions ------------------------------------------------------------

constexpr double kIn = 0.0254;                // m
constexpr double kFt = 0.3048;                // m
constexpr double kYd = 0.9144;                // m
constexpr double kMi = 1609.344;              // m
constexpr double kLb = 0.45359237;            // kg
constexpr double kGn = 9.80665;               // m/s²
constexpr double kLbf = 4.4482216152605;      // N (0.45359237 kg · 9.80665 m/s²)
constexpr double kPsiPa = 6894.757293168361;  // Pa (lbf/in²)
constexpr double kBtuJ = 1055.05585262;       // J
constexpr double kCal = 4.184;                // J
constexpr double kPiValue = 3.14159265358979323846;
constexpr double kDeg = kPiValue / 180;  // rad
constexpr double kDegF = 5.0 / 9.0;      // K

struct FactorCase {
  const char16_t* name;
  double si;  // SI value of one unit
};

// clang-format off
const FactorCase kFactors[] = {
    // Length
    {u"uin", 2.54e-8}, {u"mil", 2.54e-5}, {u"in", kIn}, {u"ft", kFt}, {u"yd", kYd}, {u"mile", kMi},
    {u"mileNaut", 1852}, {u"lightyear", 9.4607304725808e15}, {u"mileTerr", 1609.3472186944373},
    {u"fm", 1e-15}, {u"pm", 1e-12}, {u"nm", 1e-9}, {u"um", 1e-6}, {u"mm", 1e-3}, {u"cm", 1e-2},
    {u"dm", 0.1}, {u"meter", 1}, {u"km", 1e3}, {u"m", 1},
    {u"copper_oz_per_ft2", 3.4057112418966595e-5},
    // Area and wire cross-sections
    {u"in2", 6.4516e-4}, {u"ft2", 0.09290304}, {u"mil2", 6.4516e-10}, {u"um2", 1e-12},
    {u"micron2", 1e-12}, {u"mm2", 1e-6}, {u"cm2", 1e-4}, {u"km2", 1e6}, {u"in2wire", 6.4516e-4},
    {u"ft2wire", 0.09290304}, {u"mm2wire", 1e-6},
    // Volume
    {u"mm3", 1e-9}, {u"cm3", 1e-6}, {u"inch3", 1.6387064e-5}, {u"foot3", 0.028316846592},
    {u"yard3", 0.764554857984}, {u"ml", 1e-6}, {u"l", 1e-3}, {u"galUS", 3.785411784e-3},
    {u"galUK", 4.54609e-3}, {u"cup", 2.365882365e-4},
    // Mass, density
    {u"oz", 0.028349523125}, {u"lb", kLb}, {u"ug", 1e-9}, {u"mg", 1e-6}, {u"gram", 1e-3},
    {u"g", 1e-3}, {u"kg", 1}, {u"ton", 1000}, {u"g_per_cm3", 1000}, {u"g_per_l", 1},
    {u"kg_per_l", 1000}, {u"lbm_per_ft3", 16.018463373960138},
    {u"slug_per_ft3", 515.3788183931961},
    // Time, frequency, angle
    {u"fs", 1e-15}, {u"ps", 1e-12}, {u"ns", 1e-9}, {u"us", 1e-6}, {u"ms", 1e-3}, {u"s", 1},
    {u"min", 60}, {u"hour", 3600}, {u"day", 86400}, {u"Hz", 1}, {u"kHz", 1e3}, {u"MHz", 1e6},
    {u"GHz", 1e9}, {u"THz", 1e12}, {u"rps", 2 * kPiValue}, {u"per_sec", 1}, {u"deg", kDeg},
    {u"rad", 1}, {u"degmin", kDeg / 60}, {u"degsec", kDeg / 3600}, {u"rpm", 2 * kPiValue / 60},
    {u"rev_per_sec", 2 * kPiValue}, {u"deg_per_min", kDeg / 60}, {u"rad_per_hr", 1.0 / 3600},
    {u"s_per_rev", 1 / (2 * kPiValue)}, {u"s_per_deg", 1 / kDeg}, {u"per_deg", 180 / kPiValue},
    {u"nm_per_deg", 180 / kPiValue}, {u"s2_per_deg2", 1 / (kDeg * kDeg)},
    // Speed, acceleration
    {u"feet_per_min", 0.00508}, {u"inches_per_sec", kIn}, {u"feet_per_sec", kFt},
    {u"m_per_hr", 1 / 3600.0}, {u"km_per_hour", 1 / 3.6}, {u"km_per_min", 1000 / 60.0},
    {u"miles_per_hour", 0.44704}, {u"miles_per_min", 26.8224}, {u"miles_per_sec", kMi},
    {u"mm_per_sec", 1e-3}, {u"km_per_sec", 1e3}, {u"in_per_s2", kIn},
    {u"trans_accel_cm_per_s2", 0.01}, {u"dm_per_s2", 0.1}, {u"ft2_per_s2", 0.09290304},
    // Force, torque, stiffness, compliance
    {u"dyne", 1e-5}, {u"kp", kGn}, {u"PoundsForce", kLbf}, {u"newton", 1}, {u"N", 1},
    {u"kNewton", 1e3}, {u"oz_in", kLbf / 16 * kIn}, {u"lb_in", 0.1129848290276167},
    {u"lb_ft", 1.3558179483314004}, {u"gm_cm", 9.80665e-5}, {u"kg_cm", 0.0980665}, {u"kg_m", kGn},
    {u"cNewtonMeter", 0.01}, {u"lbf_per_in", 175.12683524647636}, {u"in_per_lbf", kIn / kLbf},
    {u"N_per_cm", 100},
    // Pressure
    {u"mbar", 100}, {u"bar", 1e5}, {u"psi", kPsiPa}, {u"kpsi", 1e3 * kPsiPa},
    {u"megpsi", 1e6 * kPsiPa}, {u"lbf_per_ft2", 47.88025898033584}, {u"mmh2o", 9.80665},
    {u"mmHg", 133.322387415}, {u"stAtm", 101325}, {u"techAtm", 98066.5}, {u"torr", 101325.0 / 760},
    {u"in_water", 249.08891}, {u"hPascal", 100}, {u"kn_per_meter_sq", 1e3},
    {u"per_psi", 1 / kPsiPa}, {u"per_bar", 1e-5}, {u"psi_per_min", kPsiPa / 60},
    {u"torr_per_hour", 101325.0 / 760 / 3600},
    // Energy and power
    {u"Whour", 3600}, {u"kWhour", 3.6e6}, {u"eV", 1.602176634e-19}, {u"erg", 1e-7}, {u"Joule", 1},
    {u"GJ", 1e9}, {u"Btu_per_hr", kBtuJ / 3600}, {u"Btu_per_sec", kBtuJ}, {u"HP", 746},
    {u"erg_per_sec", 1e-7}, {u"megW", 1e6}, {u"gW", 1e9}, {u"fW", 1e-15},
    {u"btu_per_hrFt3", kBtuJ / 3600 / 0.028316846592}, {u"erg_per_secCm3", 0.1},
    {u"btu_per_s_per_ft2", kBtuJ / 0.09290304}, {u"W_per_in2", 1 / 6.4516e-4},
    {u"irrad_met", 58.2},
    // Thermal
    {u"delta_fah", kDegF}, {u"delta_rank", kDegF}, {u"delta_cel", 1}, {u"delta_mkel", 1e-3},
    {u"delta_ckel", 1e-2}, {u"delta_dkel", 0.1}, {u"delta_kel", 1}, {u"per_Fah", 1.8},
    {u"per_Fah2", 3.24}, {u"percent_per_Rank", 0.018}, {u"btu_per_lbmFah", 4186.8},
    {u"cal_per_gKel", 4184}, {u"kcal_per_kgCel", 4184}, {u"erg_per_gKel", 1e-4},
    {u"btu_per_fahSec", kBtuJ * 1.8}, {u"btu_per_fahHr", kBtuJ * 1.8 / 3600},
    {u"btu_per_fahFtHr", 1.730734666371391}, {u"cal_per_secCelM", kCal},
    {u"erg_per_cmSecKel", 1e-5}, {u"w_per_cm2kel", 1e4}, {u"btu_per_fahHrFt2", 5.678263341113488},
    {u"FahSec_per_btu", kDegF / kBtuJ}, {u"cel_in2_per_w", 6.4516e-4}, {u"W_per_mm2_per_Cel", 1e6},
    // Electric and magnetic
    {u"Ahour", 3600}, {u"q", 1.602176634e-19}, {u"kC", 1e3}, {u"mho", 1}, {u"megSie", 1e6},
    {u"cS_per_m", 0.01}, {u"A_per_cm2", 1e4}, {u"uA_per_cm2", 0.01},
    {u"kOe", 1e6 / (4 * kPiValue)}, {u"Oe", 1e3 / (4 * kPiValue)}, {u"gauss", 1e-4},
    {u"kGauss", 0.1}, {u"uGauss", 1e-10}, {u"mx", 1e-8}, {u"vh", 3600}, {u"megohm", 1e6},
    {u"GOhm", 1e9}, {u"Ohmcm", 0.01}, {u"Ohmmm2_per_mm", 1e-3}, {u"Ohm_per_um", 1e6},
    {u"pF_per_Fah", 1.8e-12}, {u"F_per_cm2", 1e4}, {u"uv", 1e-6}, {u"megV", 1e6}, {u"gv", 1e9},
    {u"v_per_cm", 100}, {u"V_per_V_per_in", 1 / kIn}, {u"A_per_Ahour", 1 / 3600.0},
    {u"per_OhmAhour", 1 / 3600.0}, {u"mA2s", 1e-6}, {u"mV3", 1e-9},
    // Flow, viscosity, others
    {u"cpoise", 1e-3}, {u"poise", 0.1}, {u"hPas", 100}, {u"lbm_per_ft_per_s", kLb / kFt},
    {u"slug_per_ft_per_s", 47.88025898033584}, {u"ft3_per_min", 4.719474432e-4},
    {u"cfm", 4.719474432e-4}, {u"ltr_per_min", 1e-3 / 60}, {u"m3_per_hour", 1 / 3600.0},
    {u"lbm_per_s", kLb}, {u"lbm_per_min_ft2", kLb / 60 / 0.09290304}, {u"g_per_s_cm2", 10},
    {u"lbin2", 2.926396534292e-4}, {u"lbft2", 0.0421401100938048}, {u"gm_per_s", 1e-3},
    {u"percent", 0.01}, {u"percent_per_day", 0.01 / 86400}, {u"per_hour", 1 / 3600.0},
    {u"lm_per_in2", 1 / 6.4516e-4}, {u"W_per_m2", 683}, {u"gm2_per_s3", 0.683},
    {u"Fs2_per_ghalf_per_m", 31.622776601683793}, {u"kbps", 1e3}, {u"ft2_per_s3", 0.09290304},
    {u"w_per_lb", 1 / kLb},
};
// clang-format on

TEST(UnitTables, FactorsFollowTheDefinitions) {
  EXPECT_GE(std::size(kFactors), 150u);
  std::set<Units::UnitType> types;
  for (const FactorCase& c : kFactors) {
    SCOPED_TRACE(Narrow(c.name));
    const UnitDefinition* unit = Find(c.name);
    ASSERT_NE(unit, nullptr);
    types.insert(unit->GetUnitType());
    EXPECT_TRUE(unit->HasSimpleFactorConversion());
    EXPECT_DOUBLE_EQ(unit->ConvertToSI(1.0), c.si);
    EXPECT_NEAR(unit->ConvertFromSI(c.si), 1.0, 1e-15);
  }
  EXPECT_GE(types.size(), 60u);
}

// ---- Offset and logarithmic scales -----------------------------------------------------------

TEST(UnitTables, TemperatureScales) {
  struct Case {
    const char16_t* unit;
    double value;
    double kelvin;
  };
  const Case cases[] = {
      {u"kel", 0, 0},       {u"kel", 300, 300},        {u"cel", 0, 273.15},   {u"cel", 100, 373.15},
      {u"cel", -273.15, 0}, {u"fah", 32, 273.15},      {u"fah", 212, 373.15}, {u"fah", -459.67, 0},
      {u"rank", 0, 0},      {u"rank", 491.67, 273.15}, {u"mkel", 1000, 1},    {u"ckel", 250, 2.5},
      {u"dkel", 3, 0.3},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(Narrow(c.unit) + " " + std::to_string(c.value));
    const UnitDefinition* unit = Find(c.unit);
    ASSERT_NE(unit, nullptr);
    EXPECT_FALSE(unit->HasSimpleFactorConversion());
    EXPECT_EQ(unit->GetFactor(), 0.0);
    EXPECT_NEAR(unit->ConvertToSI(c.value), c.kelvin, 1e-12 * std::max(1.0, c.kelvin));
    EXPECT_NEAR(unit->ConvertFromSI(c.kelvin), c.value, 1e-12 * std::max(1.0, std::abs(c.value)));
  }
  // -40 is the same temperature on both scales; values survive a round trip through kelvin.
  EXPECT_DOUBLE_EQ(
      Units::Convert(-40, Find(u"cel")->GetFullUnitType(), Find(u"fah")->GetFullUnitType()), -40);
  // Scales without offset come back to within rounding; an offset scale keeps the absolute
  // precision of a kelvin value near room temperature (about 1e-13 K).
  for (const char16_t* name : {u"kel", u"mkel", u"ckel", u"dkel", u"rank"}) {
    const UnitDefinition* unit = Find(name);
    for (double x : {-12.5, 0.0, 1.0, 77.0, 1234.5678}) {
      EXPECT_DOUBLE_EQ(unit->ConvertFromSI(unit->ConvertToSI(x)), x) << Narrow(name) << " " << x;
    }
  }
  for (const char16_t* name : {u"cel", u"fah"}) {
    const UnitDefinition* unit = Find(name);
    for (double x : {-12.5, 0.0, 1.0, 77.0, 1234.5678}) {
      EXPECT_NEAR(unit->ConvertFromSI(unit->ConvertToSI(x)), x, 1e-12) << Narrow(name) << " " << x;
    }
  }
}

TEST(UnitTables, DecibelScales) {
  const UnitDefinition* dBm = Find(u"dBm");
  const UnitDefinition* dBW = Find(u"dBW");
  const UnitDefinition* dBV = Find(u"dBV");
  ASSERT_NE(dBm, nullptr);
  ASSERT_NE(dBW, nullptr);
  ASSERT_NE(dBV, nullptr);
  EXPECT_EQ(dBm->GetUnitType(), Units::Power);
  EXPECT_EQ(dBV->GetUnitType(), Units::Voltage);
  EXPECT_DOUBLE_EQ(dBm->ConvertToSI(0), 1e-3);
  EXPECT_DOUBLE_EQ(dBm->ConvertToSI(30), 1);
  EXPECT_DOUBLE_EQ(dBm->ConvertToSI(-30), 1e-6);
  EXPECT_DOUBLE_EQ(dBm->ConvertFromSI(1), 30);
  EXPECT_DOUBLE_EQ(dBW->ConvertToSI(0), 1);
  EXPECT_DOUBLE_EQ(dBW->ConvertToSI(10), 10);
  EXPECT_DOUBLE_EQ(dBW->ConvertToSI(3), std::pow(10.0, 0.3));
  EXPECT_DOUBLE_EQ(dBW->ConvertFromSI(1e-3), -30);
  EXPECT_DOUBLE_EQ(dBV->ConvertToSI(0), 1);
  EXPECT_DOUBLE_EQ(dBV->ConvertToSI(20), 10);
  EXPECT_DOUBLE_EQ(dBV->ConvertToSI(-6), std::pow(10.0, -0.3));
  EXPECT_DOUBLE_EQ(dBV->ConvertFromSI(100), 40);
  for (const UnitDefinition* unit : {dBm, dBW, dBV}) {
    for (double x : {-47.5, 0.0, 3.0, 60.0}) {
      EXPECT_NEAR(unit->ConvertFromSI(unit->ConvertToSI(x)), x, 1e-12);
    }
    // No power or amplitude at all is minus infinity dB; a negative one has no level.
    EXPECT_EQ(unit->ConvertFromSI(0.0), -std::numeric_limits<double>::infinity());
    EXPECT_TRUE(std::isnan(unit->ConvertFromSI(-1.0)));
  }
}

}  // namespace
