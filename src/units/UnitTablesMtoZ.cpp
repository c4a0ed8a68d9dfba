// SPDX-License-Identifier: Apache-2.0
//
// UnitTablesMtoZ.cpp - the unit rows of the unit types M to Z (by the name of their registration
// step).
//
// Data, one row per unit: U(code, name, factor to SI, prefix, family[, alternate[, display]]) or
// UF(code, name, conversion function, ...) for the offset and logarithmic scales. Rows are
// registered in the order written; codes are stored in files and never change. Families: 0 is the
// metric ladder of a type, 1 the imperial ladder, 1000 and above a ladder or a single unit of its
// own that is never offered as a rescaling of the others. docs/units.md explains the choices.
#include "UnitTableBuilder.h"

using namespace wycore::units_detail;

void UnitTableBuilder::CreateMagneticReluctanceFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(360, u"A_per_Vs", 1.0, kPlain, 1051),
      U(361, u"A_per_Wb", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::MagneticReluctance, kRows);
}

void UnitTableBuilder::CreateMagnetomotiveForceFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(362, u"nat", 1e-9, kNano, kMetric),  U(363, u"uat", 1e-6, kMicro, kMetric),
      U(364, u"mat", 1e-3, kMilli, kMetric), U(365, u"kat", 1e3, kKilo, kMetric),
      U(366, u"at", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::MagnetomotiveForce, kRows);
}

void UnitTableBuilder::CreateMassFlowRateFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(367, u"g_per_s", 1e-3, kPlain, kMetric),
      U(368, u"kg_per_s", 1.0, kSI, kMetric),
      U(369, u"lbm_per_s", kPound, kPlain, kImperial),
      U(370, u"lbm_per_min", kPound / 60, kPlain, kImperial),
  };
  AddRows(manager, Units::MassFlowRate, kRows);
}

void UnitTableBuilder::CreateMassFluxFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(371, u"kg_per_s_m2", 1.0, kSI, kMetric),
      U(372, u"lbm_per_min_ft2", kPound / 60 / (kFoot * kFoot), kPlain, kImperial),
      U(373, u"g_per_s_cm2", 1e-3 / 1e-4, kPlain, kMetric),
  };
  AddRows(manager, Units::MassFlux, kRows);
}

void UnitTableBuilder::CreateMassFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(374, u"oz", kOunce, kPlain, kImperial), U(375, u"lb", kPound, kPlain, kImperial),
      U(376, u"ug", 1e-9, kMicro, kMetric),     U(377, u"mg", 1e-6, kMilli, kMetric),
      U(378, u"gram", 1e-3, kSI, kMetric),      U(379, u"kg", 1.0, kKilo, kMetric),
      U(380, u"ton", 1e3, kPlain, kMetric),
  };
  AddRows(manager, Units::Mass, kRows);
}

void UnitTableBuilder::CreateMolarDensityFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(381, u"mol_per_dm3", 1 / 1e-3, kPlain, kMetric),
      U(382, u"mol_per_cm3", 1 / 1e-6, kPlain, kMetric),
      U(384, u"mol_per_l", 1 / kLitre, kPlain, 1052),
      U(385, u"mol_per_m3", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::MolarDensity, kRows);
}

void UnitTableBuilder::CreateMolarEnergyFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(386, u"uJ_per_mol", 1e-6, kMicro, kMetric), U(387, u"mJ_per_mol", 1e-3, kMilli, kMetric),
      U(388, u"J_per_mol", 1.0, kSI, kMetric),      U(389, u"kJ_per_mol", 1e3, kKilo, kMetric),
      U(390, u"megJ_per_mol", 1e6, kMega, kMetric), U(391, u"gJ_per_mol", 1e9, kGiga, kMetric),
  };
  AddRows(manager, Units::MolarEnergy, kRows);
}

void UnitTableBuilder::CreateMolarMassFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(392, u"kg_per_mol", 1.0, kSI, kMetric),
      U(393, u"g_per_mol", 1e-3, kPlain, kMetric),
  };
  AddRows(manager, Units::MolarMass, kRows);
}

void UnitTableBuilder::CreateMolarVelocityFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(394, u"umol_per_s", 1e-6, kMicro, kMetric), U(395, u"mmol_per_s", 1e-3, kMilli, kMetric),
      U(396, u"cmol_per_s", 1e-2, kPlain, kMetric), U(397, u"mol_per_s", 1.0, kSI, kMetric),
      U(398, u"kmol_per_s", 1e3, kKilo, kMetric),
  };
  AddRows(manager, Units::MolarVelocity, kRows);
}

void UnitTableBuilder::CreateMolarViscosityFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(399, u"Pas_per_mol", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::MolarViscosity, kRows);
}

void UnitTableBuilder::CreateMomentInertiaFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(400, u"lbin2", kPound * kInch * kInch, kPlain, kImperial),
      U(401, u"lbft2", kPound * kFoot * kFoot, kPlain, kImperial),
      U(402, u"kgm2", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::MomentInertia, kRows);
}

void UnitTableBuilder::CreateMomentumFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(403, u"gm_per_s", 1e-3, kPlain, kMetric),
      U(404, u"kgm_per_s", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::Momentum, kRows);
}

void UnitTableBuilder::CreateNoiseSpectrumFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(405, u"dbchz", 1.0, kPlain, kMetric),
  };
  AddRows(manager, Units::NoiseSpectrum, kRows);
}

void UnitTableBuilder::CreatePercentageFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(406, u"percent", 1e-2, kPlain, kMetric),
      U(407, u"fraction", 1.0, kPlain, kMetric),
  };
  AddRows(manager, Units::Percentage, kRows);
}

void UnitTableBuilder::CreatePercentagePerTimeFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(408, u"percent_per_min", 1e-2 / 60, kPlain, 1053),
      U(409, u"percent_per_hour", 1e-2 / 3600, kPlain, 1053),
      U(410, u"percent_per_day", 1e-2 / 86400, kPlain, 1053),
      U(411, u"per_s", 1.0, kSI, kMetric),
      U(412, u"per_min", 1.0 / 60, kPlain, kMetric),
      U(421, u"per_hour", 1.0 / 3600, kPlain, kMetric),
      U(422, u"per_day", 1.0 / 86400, kPlain, kMetric),
      U(423, u"percent_per_s", 1e-2, kPlain, 1053),
  };
  AddRows(manager, Units::PercentagePerTime, kRows);
}

void UnitTableBuilder::CreatePermeanceFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(424, u"Vs_per_A", 1.0, kPlain, 1054),
      U(425, u"Wb_per_A", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::Permeance, kRows);
}

void UnitTableBuilder::CreatePowerFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(173, u"Btu_per_hr", kBtu / 3600, kPlain, kImperial),
      U(426, u"Btu_per_sec", kBtu, kPlain, kImperial),
      UF(60, u"dBm", &DBmToWatt, kPlain, 1055),
      UF(61, u"dBW", &DBWToWatt, kPlain, 1057),
      U(172, u"HP", kElectricalHorsepower, kPlain, 1058),
      U(54, u"fW", 1e-15, kFemto, kMetric),
      U(55, u"pW", 1e-12, kPico, kMetric),
      U(56, u"nW", 1e-9, kNano, kMetric),
      U(57, u"uW", 1e-6, kMicro, kMetric),
      U(58, u"mW", 1e-3, kMilli, kMetric),
      U(59, u"W", 1.0, kSI, kMetric),
      U(171, u"kW", 1e3, kKilo, kMetric),
      U(427, u"megW", 1e6, kMega, kMetric),
      U(428, u"gW", 1e9, kGiga, kMetric),
      U(429, u"erg_per_sec", kErg, kPlain, 1059),
  };
  AddRows(manager, Units::Power, kRows);
}

void UnitTableBuilder::CreatePowerPerVolumeFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(430, u"w_per_m3", 1.0, kSI, kMetric),
      U(431, u"btu_per_secFt3", kBtu / (kFoot * kFoot * kFoot), kPlain, kImperial),
      U(432, u"btu_per_hrFt3", kBtu / 3600 / (kFoot * kFoot * kFoot), kPlain, kImperial),
      U(433, u"erg_per_secCm3", kErg / 1e-6, kPlain, 1060),
  };
  AddRows(manager, Units::PowerPerVolume, kRows);
}

void UnitTableBuilder::CreatePressureChangeRateFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(434, u"psi_per_min", kPsi / 60, kPlain, kImperial),
      U(435, u"statm_per_min", kStandardAtmosphere / 60, kPlain, 1061),
      U(436, u"techatm_per_min", kTechnicalAtmosphere / 60, kPlain, 1062),
      U(437, u"mmH2O_per_min", kMillimetreOfWater / 60, kPlain, 1063),
      U(438, u"torr_per_min", kTorr / 60, kPlain, 1064),
      U(439, u"Pa_per_hour", 1.0 / 3600, kPlain, kMetric),
      U(440, u"mbar_per_hour", 1e2 / 3600, kPlain, 1065),
      U(441, u"bar_per_hour", 1e5 / 3600, kPlain, 1065),
      U(442, u"psi_per_hour", kPsi / 3600, kPlain, kImperial),
      U(443, u"statm_per_hour", kStandardAtmosphere / 3600, kPlain, 1061),
      U(444, u"techatm_per_hour", kTechnicalAtmosphere / 3600, kPlain, 1062),
      U(445, u"mbar_per_s", 1e2, kPlain, 1065),
      U(446, u"bar_per_s", 1e5, kPlain, 1065),
      U(447, u"mmH2O_per_hour", kMillimetreOfWater / 3600, kPlain, 1063),
      U(448, u"torr_per_hour", kTorr / 3600, kPlain, 1064),
      U(449, u"psi_per_s", kPsi, kPlain, kImperial),
      U(450, u"statm_per_s", kStandardAtmosphere, kPlain, 1061),
      U(451, u"techatm_per_s", kTechnicalAtmosphere, kPlain, 1062),
      U(452, u"mmH2O_per_s", kMillimetreOfWater, kPlain, 1063),
      U(453, u"torr_per_s", kTorr, kPlain, 1064),
      U(454, u"Pa_per_min", 1.0 / 60, kPlain, kMetric),
      U(455, u"mbar_per_min", 1e2 / 60, kPlain, 1065),
      U(456, u"bar_per_min", 1e5 / 60, kPlain, 1065),
      U(457, u"Pa_per_s", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::PressureChangeRate, kRows);
}

void UnitTableBuilder::CreatePressureCoefficientFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(458, u"per_bar", 1 / 1e5, kPlain, 1066),
      U(459, u"per_mbar", 1 / 1e2, kPlain, 1066),
      U(460, u"per_psi", 1 / kPsi, kPlain, kImperial),
      U(461, u"per_statm", 1 / kStandardAtmosphere, kPlain, 1067),
      U(462, u"per_techatm", 1 / kTechnicalAtmosphere, kPlain, 1069),
      U(463, u"per_mmHg", 1 / kMillimetreOfMercury, kPlain, 1070),
      U(464, u"per_mmH2O", 1 / kMillimetreOfWater, kPlain, 1071),
      U(465, u"V_per_Vper_Pa", 1.0, kPlain, 1072),
      U(466, u"per_Pa", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::PressureCoefficient, kRows);
}

void UnitTableBuilder::CreatePressureFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(467, u"mbar", 1e2, kPlain, 1073),
      U(468, u"bar", 1e5, kPlain, 1073),
      U(469, u"psi", kPsi, kPlain, kImperial),
      U(470, u"kpsi", 1e3 * kPsi, kPlain, kImperial),
      U(471, u"megpsi", 1e6 * kPsi, kPlain, kImperial),
      U(472, u"gpsi", 1e9 * kPsi, kPlain, kImperial),
      U(473, u"lbf_per_ft2", kPoundForce / (kFoot * kFoot), kPlain, kImperial),
      U(474, u"mmh2o", kMillimetreOfWater, kPlain, 1074),
      U(475, u"mmHg", kMillimetreOfMercury, kPlain, 1075),
      U(476, u"uPascal", 1e-6, kMicro, kMetric),
      U(477, u"mPascal", 1e-3, kMilli, kMetric),
      U(478, u"cPascal", 1e-2, kPlain, kMetric),
      U(479, u"dPascal", 1e-1, kPlain, kMetric),
      U(480, u"pascal", 1.0, kSI, kMetric),
      U(481, u"hPascal", 1e2, kPlain, kMetric),
      U(482, u"kPascal", 1e3, kKilo, kMetric),
      U(483, u"megPascal", 1e6, kMega, kMetric),
      U(484, u"gPascal", 1e9, kGiga, kMetric),
      U(485, u"stAtm", kStandardAtmosphere, kPlain, 1076),
      U(486, u"n_per_meter_sq", 1.0, kPlain, 1077),
      U(487, u"kn_per_meter_sq", 1e3, kPlain, 1077),
      U(488, u"megn_per_meter_sq", 1e6, kPlain, 1077),
      U(489, u"gn_per_meter_sq", 1e9, kPlain, 1077),
      U(490, u"techAtm", kTechnicalAtmosphere, kPlain, 1078),
      U(491, u"torr", kTorr, kPlain, 1079),
      U(492, u"in_water", kInchOfWater, kPlain, 1080),
  };
  AddRows(manager, Units::Pressure, kRows);
}

void UnitTableBuilder::CreateRatioFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(493, u"bel", 1.0, kPlain, kMetric),
  };
  AddRows(manager, Units::Ratio, kRows);
}

void UnitTableBuilder::CreateReciprocalPowerFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(494, u"per_megW", 1e-6, kPlain, kMetric), U(495, u"per_mW", 1e3, kPlain, kMetric),
      U(496, u"per_kW", 1e-3, kPlain, kMetric),   U(497, u"per_gW", 1e-9, kPlain, kMetric),
      U(498, u"per_Js", 1.0, kPlain, 1081),       U(499, u"per_W", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::ReciprocalPower, kRows);
}

void UnitTableBuilder::CreateReciprocalResistanceChargeFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(500, u"per_OhmAs", 1.0, kPlain, 1082),
      U(501, u"per_OhmAhour", 1.0 / 3600, kPlain, 1082),
      U(502, u"per_OhmC", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::ReciprocalResistanceCharge, kRows);
}

void UnitTableBuilder::CreateReciprocalResistanceTimeFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(503, u"per_Ohmmin", 1.0 / 60, kPlain, kMetric),
      U(504, u"per_Ohmhour", 1.0 / 3600, kPlain, kMetric),
      U(505, u"per_Ohms", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::ReciprocalResistanceTime, kRows);
}

void UnitTableBuilder::CreateResistanceFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(506, u"uOhm", 1e-6, kMicro, kMetric), U(507, u"mOhm", 1e-3, kMilli, kMetric),
      U(8, u"ohm", 1.0, kSI, kMetric),        U(509, u"kOhm", 1e3, kKilo, kMetric),
      U(510, u"megohm", 1e6, kMega, kMetric), U(511, u"GOhm", 1e9, kGiga, kMetric),
  };
  AddRows(manager, Units::Resistance, kRows);
}

void UnitTableBuilder::CreateResistancePerChargeFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(512, u"Ohm_per_As", 1.0, kPlain, 1083),
      U(513, u"Ohm_per_Ahour", 1.0 / 3600, kPlain, 1083),
      U(514, u"nOhm_per_C", 1e-9, kNano, kMetric),
      U(515, u"uOhm_per_C", 1e-6, kMicro, kMetric),
      U(516, u"mOhm_per_C", 1e-3, kMilli, kMetric),
      U(517, u"Ohm_per_C", 1.0, kSI, kMetric),
      U(518, u"kOhm_per_C", 1e3, kKilo, kMetric),
      U(519, u"megOhm_per_C", 1e6, kMega, kMetric),
      U(520, u"gOhm_per_C", 1e9, kGiga, kMetric),
  };
  AddRows(manager, Units::ResistancePerCharge, kRows);
}

void UnitTableBuilder::CreateResistancePerLengthFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(521, u"Ohm_per_um", 1 / 1e-6, kPlain, kMetric),
      U(522, u"uOhm_per_m", 1e-6, kMicro, kMetric),
      U(523, u"mOhm_per_m", 1e-3, kMilli, kMetric),
      U(524, u"Ohm_per_m", 1.0, kSI, kMetric),
      U(525, u"kOhm_per_m", 1e3, kKilo, kMetric),
      U(526, u"megOhm_per_m", 1e6, kMega, kMetric),
  };
  AddRows(manager, Units::ResistancePerLength, kRows);
}

void UnitTableBuilder::CreateResistanceTemperatureCoeffFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(527, u"Ohm_per_Cel", 1.0, kPlain, 1084),
      U(528, u"mOhm_per_Kel", 1e-3, kMilli, kMetric),
      U(529, u"Ohm_per_Kel", 1.0, kSI, kMetric),
      U(530, u"kOhm_per_Kel", 1e3, kKilo, kMetric),
  };
  AddRows(manager, Units::ResistanceTemperatureCoeff, kRows);
}

void UnitTableBuilder::CreateResistivityFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(531, u"Ohmmm2_per_mm", 1e-6 / 1e-3, kPlain, kMetric),
      U(532, u"Ohmum", 1e-6, kMicro, kMetric),
      U(533, u"Ohmcm", 1e-2, kPlain, kMetric),
      U(534, u"Ohmm", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::Resistivity, kRows);
}

void UnitTableBuilder::CreateSaturateMagnetizationFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(535, u"uGauss", 1e-6 * kGauss, kPlain, 1085),
      U(536, u"mGauss", 1e-3 * kGauss, kPlain, 1085),
      U(537, u"gauss", kGauss, kPlain, 1085),
      U(538, u"kGauss", 1e3 * kGauss, kPlain, 1085),
      U(539, u"uTesla", 1e-6, kMicro, kMetric),
      U(540, u"mTesla", 1e-3, kMilli, kMetric),
      U(541, u"tesla", 1.0, kSI, kMetric),
      U(542, u"kTesla", 1e3, kKilo, kMetric),
  };
  AddRows(manager, Units::SaturateMagnetization, kRows);
}

void UnitTableBuilder::CreateSpecTurbDissRateFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(543, u"diss_per_s", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::SpecificTurbulenceDissipationRate, kRows);
}

void UnitTableBuilder::CreateSpecificHeatCapacityFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(544, u"mJ_per_Kelkg", 1e-3, kMilli, kMetric),
      U(545, u"J_per_Kelkg", 1.0, kSI, kMetric),
      U(546, u"kJ_per_Kelkg", 1e3, kKilo, kMetric),
      U(547, u"J_per_Celkg", 1.0, kPlain, 1086),
      U(548, u"btu_per_lbmFah", kBtu / kPound * kPerFahrenheit, kPlain, kImperial),
      U(549, u"btu_per_lbmRank", kBtu / kPound * kPerFahrenheit, kPlain, 1087),
      U(550, u"cal_per_gKel", kCalorie / 1e-3, kPlain, 1088),
      U(551, u"cal_per_gCel", kCalorie / 1e-3, kPlain, 1088),
      U(552, u"erg_per_gKel", kErg / 1e-3, kPlain, 1089),
      U(553, u"kcal_per_kgKel", 1e3 * kCalorie, kPlain, 1088),
      U(554, u"kcal_per_kgCel", 1e3 * kCalorie, kPlain, 1088),
  };
  AddRows(manager, Units::SpecificHeatCapacity, kRows);
}

void UnitTableBuilder::CreateSpeedFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(555, u"feet_per_min", kFoot / 60, kPlain, kImperial),
      U(556, u"inches_per_sec", kInch, kPlain, kImperial),
      U(557, u"feet_per_sec", kFoot, kPlain, kImperial),
      U(558, u"m_per_hr", 1.0 / 3600, kPlain, 1090),
      U(559, u"km_per_hour", 1e3 / 3600, kPlain, 1090),
      U(560, u"km_per_min", 1e3 / 60, kPlain, 1090),
      U(561, u"miles_per_hour", kMile / 3600, kPlain, kImperial),
      U(562, u"miles_per_min", kMile / 60, kPlain, kImperial),
      U(563, u"miles_per_sec", kMile, kPlain, kImperial),
      U(564, u"mm_per_sec", 1e-3, kMilli, kMetric),
      U(565, u"cm_per_sec", 1e-2, kPlain, kMetric),
      U(566, u"m_per_sec", 1.0, kSI, kMetric),
      U(567, u"km_per_sec", 1e3, kKilo, kMetric),
  };
  AddRows(manager, Units::Speed, kRows);
}

void UnitTableBuilder::CreateStiffnessFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(568, u"N_per_cm", 1 / 1e-2, kPlain, kMetric),
      U(569, u"lbf_per_in", kPoundForce / kInch, kPlain, kImperial),
      U(570, u"N_per_m", 1.0, kSI, kMetric),
      U(571, u"kN_per_m", 1e3, kKilo, kMetric),
  };
  AddRows(manager, Units::Stiffness, kRows);
}

void UnitTableBuilder::CreateSurfaceChargeDensityFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(572, u"As_per_m2", 1.0, kPlain, 1091),
      U(573, u"surf_charge_nC_per_m2", 1e-9, kNano, kMetric),
      U(574, u"surf_charge_uC_per_m2", 1e-6, kMicro, kMetric),
      U(575, u"surf_charge_mC_per_m2", 1e-3, kMilli, kMetric),
      U(576, u"surf_charge_C_per_m2", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::SurfaceChargeDensity, kRows);
}

void UnitTableBuilder::CreateSurfaceMobilityFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(577, u"cm2_per_Vs", 1e-4, kPlain, kMetric),
      U(578, u"m2_per_Vs", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::SurfaceMobility, kRows);
}

void UnitTableBuilder::CreateSurfaceMobilityPerVoltageFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(579, u"cm2_per_V2s", 1e-4, kPlain, kMetric),
      U(580, u"m2_per_V2s", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::SurfaceMobilityPerVoltage, kRows);
}

void UnitTableBuilder::CreateTemperatureAreaPerPowerFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(581, u"kelm2_per_w", 1.0, kSI, kMetric),
      U(582, u"celm2_per_w", 1.0, kPlain, 1092),
      U(586, u"cel_in2_per_w", kInch * kInch, kPlain, kImperial),
      U(587, u"cel_mm2_per_w", 1e-6, kPlain, 1092),
  };
  AddRows(manager, Units::TemperatureAreaPerPower, kRows);
}

void UnitTableBuilder::CreateTemperatureCoefficient2FullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(588, u"per_Cel2", 1.0, kPlain, 1093),
      U(589, u"per_Fah2", kPerFahrenheit * kPerFahrenheit, kPlain, kImperial),
      U(590, u"per_Kel2", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::TemperatureCoefficient2, kRows);
}

void UnitTableBuilder::CreateTemperatureCoefficientFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(591, u"per_Cel", 1.0, kPlain, 1094),
      U(592, u"per_Fah", kPerFahrenheit, kPlain, kImperial),
      U(593, u"percent_per_Kel", 1e-2, kPlain, kMetric),
      U(594, u"percent_per_Cel", 1e-2, kPlain, 1094),
      U(595, u"percent_per_Fah", 1e-2 * kPerFahrenheit, kPlain, kImperial),
      U(596, u"per_Kel", 1.0, kSI, kMetric),
      U(600, u"per_Rank", kPerFahrenheit, kPlain, 1095),
      U(601, u"percent_per_Rank", 1e-2 * kPerFahrenheit, kPlain, 1095),
  };
  AddRows(manager, Units::TemperatureCoefficient, kRows);
}

void UnitTableBuilder::CreateTemperatureDifferenceFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(822, u"delta_fah", kFahrenheitDegree, kPlain, kImperial, u"fahdiff"),
      U(881, u"delta_rank", kFahrenheitDegree, kPlain, 1096, u"rankdiff"),
      U(597, u"delta_cel", 1.0, kPlain, 1097, u"celdiff"),
      U(598, u"delta_mkel", 1e-3, kMilli, kMetric, u"mkeldiff"),
      U(823, u"delta_ckel", 1e-2, kPlain, kMetric),
      U(824, u"delta_dkel", 1e-1, kPlain, kMetric),
      U(599, u"delta_kel", 1.0, kSI, kMetric, u"keldiff"),
  };
  AddRows(manager, Units::TemperatureDifference, kRows);
}

void UnitTableBuilder::CreateTemperatureFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      UF(81, u"fah", &FahrenheitToKelvin, kPlain, kImperial),
      UF(880, u"rank", &RankineToKelvin, kPlain, 1098),
      UF(79, u"kel", &KelvinToKelvin, kSI, kMetric),
      UF(583, u"mkel", &MillikelvinToKelvin, kMilli, kMetric),
      UF(584, u"ckel", &CentikelvinToKelvin, kPlain, kMetric),
      UF(80, u"cel", &CelsiusToKelvin, kPlain, 1099),
      UF(585, u"dkel", &DecikelvinToKelvin, kPlain, kMetric),
  };
  AddRows(manager, Units::Temperature, kRows);
}

void UnitTableBuilder::CreateThermalCapacitanceFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(602, u"Ws_per_Kel", 1.0, kPlain, 1100),
      U(603, u"J_per_Kel", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::ThermalCapacitance, kRows);
}

void UnitTableBuilder::CreateThermalConductanceFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(604, u"mW_per_Cel", 1e-3, kPlain, 1101),
      U(605, u"W_per_Cel", 1.0, kPlain, 1101),
      U(606, u"kW_per_Cel", 1e3, kPlain, 1101),
      U(607, u"mW_per_Kel", 1e-3, kMilli, kMetric),
      U(608, u"W_per_Kel", 1.0, kSI, kMetric),
      U(609, u"kW_per_Kel", 1e3, kKilo, kMetric),
      U(610, u"btu_per_fahSec", kBtu * kPerFahrenheit, kPlain, kImperial),
      U(611, u"btu_per_rankSec", kBtu * kPerFahrenheit, kPlain, 1102),
      U(612, u"btu_per_fahHr", kBtu / 3600 * kPerFahrenheit, kPlain, kImperial),
      U(613, u"btu_per_rankHr", kBtu / 3600 * kPerFahrenheit, kPlain, 1102),
  };
  AddRows(manager, Units::ThermalConductance, kRows);
}

void UnitTableBuilder::CreateThermalConductancePerAreaFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(614, u"W_per_m2_per_Cel", 1.0, kSI, kMetric),
      U(615, u"W_per_in2_per_Cel", 1 / (kInch * kInch), kPlain, kImperial),
      U(616, u"W_per_mm2_per_Cel", 1 / 1e-6, kPlain, kMetric),
  };
  AddRows(manager, Units::ThermalConductancePerArea, kRows);
}

void UnitTableBuilder::CreateThermalConductivityFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(617, u"mW_per_Kelm", 1e-3, kMilli, kMetric),
      U(618, u"W_per_Kelm", 1.0, kSI, kMetric),
      U(622, u"W_per_Celm", 1.0, kPlain, 1103),
      U(623, u"btu_per_fahFtSec", kBtu / kFoot * kPerFahrenheit, kPlain, kImperial),
      U(624, u"btu_per_rankFtSec", kBtu / kFoot * kPerFahrenheit, kPlain, 1104),
      U(625, u"btu_per_fahFtHr", kBtu / 3600 / kFoot * kPerFahrenheit, kPlain, kImperial),
      U(626, u"btu_per_rankFtHr", kBtu / 3600 / kFoot * kPerFahrenheit, kPlain, 1104),
      U(627, u"erg_per_cmSecKel", kErg / 1e-2, kPlain, 1105),
      U(628, u"cal_per_secCelM", kCalorie, kPlain, 1106),
      U(629, u"cal_per_secKelM", kCalorie, kPlain, 1106),
  };
  AddRows(manager, Units::ThermalConductivity, kRows);
}

void UnitTableBuilder::CreateThermalConvectionFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(630, u"w_per_cm2kel", 1 / 1e-4, kPlain, kMetric),
      U(631, u"w_per_m2kel", 1.0, kSI, kMetric),
      U(632, u"w_per_m2Cel", 1.0, kPlain, 1107),
      U(633, u"btu_per_rankSecFt2", kBtu / (kFoot * kFoot) * kPerFahrenheit, kPlain, 1108),
      U(634, u"btu_per_fahSecFt2", kBtu / (kFoot * kFoot) * kPerFahrenheit, kPlain, kImperial),
      U(635, u"btu_per_rankHrFt2", kBtu / 3600 / (kFoot * kFoot) * kPerFahrenheit, kPlain, 1108),
      U(636, u"btu_per_fahHrFt2", kBtu / 3600 / (kFoot * kFoot) * kPerFahrenheit, kPlain,
        kImperial),
  };
  AddRows(manager, Units::ThermalConvection, kRows);
}

void UnitTableBuilder::CreateThermalRadiationCoeffFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(637, u"mW_per_Kel4", 1e-3, kMilli, kMetric),
      U(638, u"W_per_Kel4", 1.0, kSI, kMetric),
      U(639, u"kW_per_Kel4", 1e3, kKilo, kMetric),
  };
  AddRows(manager, Units::ThermalRadiationCoeff, kRows);
}

void UnitTableBuilder::CreateThermalRadiationConstantFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(640, u"W_per_cm2Kel4", 1 / 1e-4, kPlain, kMetric),
      U(641, u"W_per_m2Kel4", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::ThermalRadiationConstant, kRows);
}

void UnitTableBuilder::CreateThermalResistanceFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(642, u"Kels_per_J", 1.0, kPlain, 1109),
      U(643, u"Kel_per_W", 1.0, kSI, kMetric),
      U(644, u"cel_per_w", 1.0, kPlain, 1110),
      U(645, u"FahSec_per_btu", kFahrenheitDegree / kBtu, kPlain, kImperial),
  };
  AddRows(manager, Units::ThermalResistance, kRows);
}

void UnitTableBuilder::CreateTimeFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(619, u"min", 60.0, kPlain, 1111),    U(620, u"hour", 3600.0, kPlain, 1111),
      U(621, u"day", 86400.0, kPlain, 1111), U(44, u"fs", 1e-15, kFemto, kMetric),
      U(45, u"ps", 1e-12, kPico, kMetric),   U(46, u"ns", 1e-9, kNano, kMetric),
      U(47, u"us", 1e-6, kMicro, kMetric),   U(48, u"ms", 1e-3, kMilli, kMetric),
      U(49, u"s", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::Time, kRows);
}

void UnitTableBuilder::CreateTimePerAngleFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(646, u"s_per_deg", 1 / kDegree, kPlain, 1112),
      U(647, u"s_per_rev", 1 / (2 * kPi), kPlain, 1113),
      U(648, u"ms_per_rad", 1e-3, kMilli, kMetric),
      U(649, u"s_per_rad", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::TimePerAngle, kRows);
}

void UnitTableBuilder::CreateTimeSqPerAngleSqFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(650, u"s2_per_deg2", 1 / (kDegree * kDegree), kPlain, 1114),
      U(651, u"s2_per_rad2", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::TimeSqPerAngleSq, kRows);
}

void UnitTableBuilder::CreateTorqueFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(652, u"oz_in", kOunceForce * kInch, kPlain, kImperial),
      U(653, u"lb_in", kPoundForce * kInch, kPlain, kImperial),
      U(654, u"lb_ft", kPoundForce * kFoot, kPlain, kImperial),
      U(655, u"gm_cm", 1e-3 * kGravity * 1e-2, kPlain, 1115),
      U(656, u"kg_cm", kGravity * 1e-2, kPlain, 1115),
      U(657, u"kg_m", kGravity, kPlain, 1115),
      U(658, u"fNewtonMeter", 1e-15, kFemto, kMetric),
      U(659, u"pNewtonMeter", 1e-12, kPico, kMetric),
      U(661, u"nNewtonMeter", 1e-9, kNano, kMetric),
      U(662, u"uNewtonMeter", 1e-6, kMicro, kMetric),
      U(663, u"mNewtonMeter", 1e-3, kMilli, kMetric),
      U(664, u"cNewtonMeter", 1e-2, kPlain, kMetric),
      U(665, u"NewtonMeter", 1.0, kSI, kMetric),
      U(666, u"kNewtonMeter", 1e3, kKilo, kMetric),
      U(667, u"megNewtonMeter", 1e6, kMega, kMetric),
      U(668, u"gNewtonMeter", 1e9, kGiga, kMetric),
  };
  AddRows(manager, Units::Torque, kRows);
}

void UnitTableBuilder::CreateTransconductanceParameterFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(669, u"mA_per_V", 1e-3, kMilli, kMetric),
      U(670, u"A_per_V", 1.0, kSI, kMetric),
      U(671, u"kA_per_V", 1e3, kKilo, kMetric),
  };
  AddRows(manager, Units::TransconductanceParameter, kRows);
}

void UnitTableBuilder::CreateTransistorConstantFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(672, u"mA_per_V2", 1e-3, kMilli, kMetric),
      U(673, u"A_per_V2", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::TransistorConstant, kRows);
}

void UnitTableBuilder::CreateTranslationalAccelerationFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(674, u"trans_accel_in_per_s2", kInch, kPlain, kImperial),
      U(675, u"trans_accel_cm_per_s2", 1e-2, kPlain, kMetric),
      U(676, u"dm_per_s2", 1e-1, kPlain, kMetric),
      U(677, u"trans_accel_m_per_s2", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::TranslationalAcceleration, kRows);
}

void UnitTableBuilder::CreateTurbulenceKineticEnergyFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(678, u"m2_per_s2", 1.0, kSI, kMetric),
      U(679, u"ft2_per_s2", kFoot * kFoot, kPlain, kImperial),
  };
  AddRows(manager, Units::TurbulenceKineticEnergy, kRows);
}

void UnitTableBuilder::CreateTurbulentDissipationRateFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(680, u"m2_per_s3", 1.0, kSI, kMetric),
      U(681, u"ft2_per_s3", kFoot * kFoot, kPlain, kImperial),
  };
  AddRows(manager, Units::TurbulentDissipationRate, kRows);
}

void UnitTableBuilder::CreateVelocitySaturationFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(682, u"vel_sat_um_per_V", 1e-6, kMicro, kMetric),
      U(683, u"vel_sat_mm_per_V", 1e-3, kMilli, kMetric),
      U(684, u"vel_sat_cm_per_V", 1e-2, kPlain, kMetric),
      U(685, u"vel_sat_m_per_V", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::VelocitySaturation, kRows);
}

void UnitTableBuilder::CreateVelocitySaturationPerVoltageFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(686, u"um_per_V2", 1e-6, kMicro, kMetric),
      U(687, u"mm_per_V2", 1e-3, kMilli, kMetric),
      U(688, u"cm_per_V2", 1e-2, kPlain, kMetric),
      U(689, u"m_per_V2", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::VelocitySaturationPerVoltage, kRows);
}

void UnitTableBuilder::CreateViscocityFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(690, u"Ns_per_m2", 1.0, kPlain, 1116),
      U(691, u"kg_per_m_per_s", 1.0, kPlain, 1117),
      U(692, u"cpoise", 1e-2 * kPoise, kPlain, 1118),
      U(693, u"poise", kPoise, kPlain, 1118),
      U(694, u"uPas", 1e-6, kMicro, kMetric),
      U(695, u"mPas", 1e-3, kMilli, kMetric),
      U(696, u"cPas", 1e-2, kPlain, kMetric),
      U(697, u"dPas", 1e-1, kPlain, kMetric),
      U(698, u"Pas", 1.0, kSI, kMetric),
      U(699, u"hPas", 1e2, kPlain, kMetric),
      U(700, u"kPas", 1e3, kKilo, kMetric),
      U(701, u"lbm_per_ft_per_s", kPound / kFoot, kPlain, kImperial),
      U(702, u"slug_per_ft_per_s", kSlug / kFoot, kPlain, kImperial),
  };
  AddRows(manager, Units::Viscocity, kRows);
}

void UnitTableBuilder::CreateViscousFrictionFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(703, u"vis_fric_mNs_per_m", 1e-3, kMilli, kMetric),
      U(704, u"vis_fric_cNs_per_m", 1e-2, kPlain, kMetric),
      U(705, u"vis_fric_Ns_per_m", 1.0, kSI, kMetric),
      U(706, u"vis_fric_kNs_per_m", 1e3, kKilo, kMetric),
  };
  AddRows(manager, Units::ViscousFriction, kRows);
}

void UnitTableBuilder::CreateVoltageAccelerationCoefficientFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(707, u"mV_per_m2_per_s2", 1e-3, kMilli, kMetric),
      U(708, u"V_per_m2_per_s2", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::VoltageAccelerationCoefficient, kRows);
}

void UnitTableBuilder::CreateVoltageChangeRateFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(709, u"V_per_min", 1.0 / 60, kPlain, 1119), U(710, u"V_per_hour", 1.0 / 3600, kPlain, 1119),
      U(711, u"mV_per_s", 1e-3, kMilli, kMetric),   U(712, u"V_per_s", 1.0, kSI, kMetric),
      U(713, u"kV_per_s", 1e3, kKilo, kMetric),
  };
  AddRows(manager, Units::VoltageChangeRate, kRows);
}

void UnitTableBuilder::CreateVoltageCoefficient2FullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(714, u"per_V2", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::VoltageCoefficient2, kRows);
}

void UnitTableBuilder::CreateVoltageCoefficientFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(715, u"per_mV", 1 / 1e-3, kPlain, kMetric),
      U(716, u"per_kV", 1 / 1e3, kPlain, kMetric),
      U(717, u"per_V", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::VoltageCoefficient, kRows);
}

void UnitTableBuilder::CreateVoltageCubedFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(718, u"mV3", 1e-9, kMilli, kMetric),
      U(719, u"V3", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::VoltageCubed, kRows);
}

void UnitTableBuilder::CreateVoltageFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      UF(70, u"dBV", &DBVToVolt, kPlain, 1120), U(63, u"fV", 1e-15, kFemto, kMetric),
      U(64, u"pV", 1e-12, kPico, kMetric),      U(65, u"nV", 1e-9, kNano, kMetric),
      U(66, u"uv", 1e-6, kMicro, kMetric),      U(67, u"mV", 1e-3, kMilli, kMetric),
      U(68, u"V", 1.0, kSI, kMetric),           U(69, u"kV", 1e3, kKilo, kMetric),
      U(163, u"megV", 1e6, kMega, kMetric),     U(660, u"gv", 1e9, kGiga, kMetric),
  };
  AddRows(manager, Units::Voltage, kRows);
}

void UnitTableBuilder::CreateVoltageGainFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(720, u"V_per_mV", 1 / 1e-3, kPlain, kMetric),
      U(721, u"mV_per_V", 1e-3, kMilli, kMetric),
      U(722, u"V_per_V", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::VoltageGain, kRows);
}

void UnitTableBuilder::CreateVoltageJerkCoefficientFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(723, u"mV_per_m_per_s3", 1e-3, kMilli, kMetric),
      U(724, u"V_per_m_per_s3", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::VoltageJerkCoefficient, kRows);
}

void UnitTableBuilder::CreateVoltageLengthFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(725, u"uVm", 1e-6, kMicro, kMetric),
      U(726, u"mVm", 1e-3, kMilli, kMetric),
      U(727, u"Vm", 1.0, kSI, kMetric),
      U(728, u"kVm", 1e3, kKilo, kMetric),
  };
  AddRows(manager, Units::VoltageLength, kRows);
}

void UnitTableBuilder::CreateVoltagePerCellFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(729, u"pV_per_cell", 1e-12, kPico, kMetric), U(730, u"nV_per_cell", 1e-9, kNano, kMetric),
      U(731, u"uV_per_cell", 1e-6, kMicro, kMetric), U(732, u"mV_per_cell", 1e-3, kMilli, kMetric),
      U(733, u"V_per_cell", 1.0, kSI, kMetric),      U(734, u"kV_per_cell", 1e3, kKilo, kMetric),
      U(735, u"megV_per_cell", 1e6, kMega, kMetric), U(736, u"gV_per_cell", 1e9, kGiga, kMetric),
  };
  AddRows(manager, Units::VoltagePerCell, kRows);
}

void UnitTableBuilder::CreateVoltagePerLengthRootFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(737, u"V_per_mhalf", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::VoltagePerLengthRoot, kRows);
}

void UnitTableBuilder::CreateVoltagePressureRootCoeffFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(738, u"mV_per_Pahalf", 1e-3, kMilli, kMetric),
      U(739, u"V_per_Pahalf", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::VoltagePressureRootCoeff, kRows);
}

void UnitTableBuilder::CreateVoltageRootCoefficientFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(740, u"per_Vhalf", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::VoltageRootCoefficient, kRows);
}

void UnitTableBuilder::CreateVoltageRootFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(741, u"Vhalf", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::VoltageRoot, kRows);
}

void UnitTableBuilder::CreateVoltageTemperature10CoeffFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(742, u"uV_per_Cel10", 1e-6, kPlain, 1121),
      U(743, u"mV_per_Cel10", 1e-3, kPlain, 1121),
      U(744, u"V_per_Cel10", 1.0, kPlain, 1121),
      U(745, u"uV_per_Kel10", 1e-6, kMicro, kMetric),
      U(746, u"mV_per_Kel10", 1e-3, kMilli, kMetric),
      U(747, u"V_per_Kel10", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::VoltageTemperature10Coeff, kRows);
}

void UnitTableBuilder::CreateVoltageTemperature11CoeffFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(748, u"uV_per_Cel11", 1e-6, kPlain, 1122),
      U(749, u"mV_per_Cel11", 1e-3, kPlain, 1122),
      U(750, u"V_per_Cel11", 1.0, kPlain, 1122),
      U(751, u"uV_per_Kel11", 1e-6, kMicro, kMetric),
      U(752, u"mV_per_Kel11", 1e-3, kMilli, kMetric),
      U(753, u"V_per_Kel11", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::VoltageTemperature11Coeff, kRows);
}

void UnitTableBuilder::CreateVoltageTemperature12CoeffFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(754, u"uV_per_Cel12", 1e-6, kPlain, 1123),
      U(755, u"mV_per_Cel12", 1e-3, kPlain, 1123),
      U(756, u"V_per_Cel12", 1.0, kPlain, 1123),
      U(757, u"uV_per_Kel12", 1e-6, kMicro, kMetric),
      U(758, u"mV_per_Kel12", 1e-3, kMilli, kMetric),
      U(759, u"V_per_Kel12", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::VoltageTemperature12Coeff, kRows);
}

void UnitTableBuilder::CreateVoltageTemperature13CoeffFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(760, u"uV_per_Cel13", 1e-6, kPlain, 1124),
      U(761, u"mV_per_Cel13", 1e-3, kPlain, 1124),
      U(762, u"V_per_Cel13", 1.0, kPlain, 1124),
      U(763, u"uV_per_Kel13", 1e-6, kMicro, kMetric),
      U(764, u"mV_per_Kel13", 1e-3, kMilli, kMetric),
      U(765, u"V_per_Kel13", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::VoltageTemperature13Coeff, kRows);
}

void UnitTableBuilder::CreateVoltageTemperature14CoeffFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(766, u"uV_per_Cel14", 1e-6, kPlain, 1125),
      U(767, u"mV_per_Cel14", 1e-3, kPlain, 1125),
      U(768, u"V_per_Cel14", 1.0, kPlain, 1125),
      U(769, u"uV_per_Kel14", 1e-6, kMicro, kMetric),
      U(770, u"mV_per_Kel14", 1e-3, kMilli, kMetric),
      U(771, u"V_per_Kel14", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::VoltageTemperature14Coeff, kRows);
}

void UnitTableBuilder::CreateVoltageTemperature15CoeffFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(772, u"uV_per_Cel15", 1e-6, kPlain, 1126),
      U(773, u"mV_per_Cel15", 1e-3, kPlain, 1126),
      U(774, u"V_per_Cel15", 1.0, kPlain, 1126),
      U(775, u"uV_per_Kel15", 1e-6, kMicro, kMetric),
      U(776, u"mV_per_Kel15", 1e-3, kMilli, kMetric),
      U(777, u"V_per_Kel15", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::VoltageTemperature15Coeff, kRows);
}

void UnitTableBuilder::CreateVoltageTemperature2CoeffFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(778, u"uV_per_Cel2", 1e-6, kPlain, 1127),    U(779, u"mV_per_Cel2", 1e-3, kPlain, 1127),
      U(780, u"V_per_Cel2", 1.0, kPlain, 1127),      U(781, u"uV_per_Kel2", 1e-6, kMicro, kMetric),
      U(782, u"mV_per_Kel2", 1e-3, kMilli, kMetric), U(783, u"V_per_Kel2", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::VoltageTemperature2Coeff, kRows);
}

void UnitTableBuilder::CreateVoltageTemperature3CoeffFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(784, u"uV_per_Cel3", 1e-6, kPlain, 1128),    U(785, u"mV_per_Cel3", 1e-3, kPlain, 1128),
      U(786, u"V_per_Cel3", 1.0, kPlain, 1128),      U(787, u"uV_per_Kel3", 1e-6, kMicro, kMetric),
      U(788, u"mV_per_Kel3", 1e-3, kMilli, kMetric), U(789, u"V_per_Kel3", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::VoltageTemperature3Coeff, kRows);
}

void UnitTableBuilder::CreateVoltageTemperature4CoeffFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(790, u"uV_per_Cel4", 1e-6, kPlain, 1129),    U(791, u"mV_per_Cel4", 1e-3, kPlain, 1129),
      U(792, u"V_per_Cel4", 1.0, kPlain, 1129),      U(793, u"uV_per_Kel4", 1e-6, kMicro, kMetric),
      U(794, u"mV_per_Kel4", 1e-3, kMilli, kMetric), U(795, u"V_per_Kel4", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::VoltageTemperature4Coeff, kRows);
}

void UnitTableBuilder::CreateVoltageTemperature5CoeffFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(796, u"uV_per_Cel5", 1e-6, kPlain, 1130),    U(797, u"mV_per_Cel5", 1e-3, kPlain, 1130),
      U(798, u"V_per_Cel5", 1.0, kPlain, 1130),      U(799, u"uV_per_Kel5", 1e-6, kMicro, kMetric),
      U(800, u"mV_per_Kel5", 1e-3, kMilli, kMetric), U(801, u"V_per_Kel5", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::VoltageTemperature5Coeff, kRows);
}

void UnitTableBuilder::CreateVoltageTemperature6CoeffFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(802, u"uV_per_Cel6", 1e-6, kPlain, 1131),    U(803, u"mV_per_Cel6", 1e-3, kPlain, 1131),
      U(804, u"V_per_Cel6", 1.0, kPlain, 1131),      U(805, u"uV_per_Kel6", 1e-6, kMicro, kMetric),
      U(806, u"mV_per_Kel6", 1e-3, kMilli, kMetric), U(807, u"V_per_Kel6", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::VoltageTemperature6Coeff, kRows);
}

void UnitTableBuilder::CreateVoltageTemperature7CoeffFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(808, u"uV_per_Cel7", 1e-6, kPlain, 1132),    U(809, u"mV_per_Cel7", 1e-3, kPlain, 1132),
      U(810, u"V_per_Cel7", 1.0, kPlain, 1132),      U(811, u"uV_per_Kel7", 1e-6, kMicro, kMetric),
      U(812, u"mV_per_Kel7", 1e-3, kMilli, kMetric), U(813, u"V_per_Kel7", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::VoltageTemperature7Coeff, kRows);
}

void UnitTableBuilder::CreateVoltageTemperature8CoeffFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(814, u"uV_per_Cel8", 1e-6, kPlain, 1133),    U(815, u"mV_per_Cel8", 1e-3, kPlain, 1133),
      U(816, u"V_per_Cel8", 1.0, kPlain, 1133),      U(817, u"uV_per_Kel8", 1e-6, kMicro, kMetric),
      U(818, u"mV_per_Kel8", 1e-3, kMilli, kMetric), U(819, u"V_per_Kel8", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::VoltageTemperature8Coeff, kRows);
}

void UnitTableBuilder::CreateVoltageTemperature9CoeffFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(820, u"uV_per_Cel9", 1e-6, kPlain, 1134),    U(821, u"mV_per_Cel9", 1e-3, kPlain, 1134),
      U(825, u"V_per_Cel9", 1.0, kPlain, 1134),      U(826, u"uV_per_Kel9", 1e-6, kMicro, kMetric),
      U(827, u"mV_per_Kel9", 1e-3, kMilli, kMetric), U(828, u"V_per_Kel9", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::VoltageTemperature9Coeff, kRows);
}

void UnitTableBuilder::CreateVoltageTemperatureCoeffFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(829, u"uV_per_Cel", 1e-6, kPlain, 1135),    U(830, u"mV_per_Cel", 1e-3, kPlain, 1135),
      U(831, u"V_per_Cel", 1.0, kPlain, 1135),      U(832, u"uV_per_Kel", 1e-6, kMicro, kMetric),
      U(833, u"mV_per_Kel", 1e-3, kMilli, kMetric), U(834, u"V_per_Kel", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::VoltageTemperatureCoeff, kRows);
}

void UnitTableBuilder::CreateVolumeCoefficientFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(835, u"per_cm3", 1 / 1e-6, kPlain, kMetric),
      U(836, u"per_m3", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::VolumeCoefficient, kRows);
}

void UnitTableBuilder::CreateVolumeFlowConductanceFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(837, u"vol_flow_con_cm3_per_Pas", 1e-6, kPlain, kMetric),
      U(838, u"vol_flow_con_m3_per_Pas", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::VolumeFlowConductance, kRows);
}

void UnitTableBuilder::CreateVolumeFlowPerPressureRootFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(839, u"m3_per_sPahalf", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::VolumeFlowPerPressureRoot, kRows);
}

void UnitTableBuilder::CreateVolumeFlowRateChangeRateFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(840, u"cm3_per_s2", 1e-6, kPlain, kMetric),
      U(841, u"m3_per_s2", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::VolumeFlowRateChangeRate, kRows);
}

void UnitTableBuilder::CreateVolumeFlowRateFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(842, u"m3_per_min", 1.0 / 60, kPlain, 1136),
      U(843, u"ltr_per_min", kLitre / 60, kPlain, 1136),
      U(844, u"m3_per_hour", 1.0 / 3600, kPlain, 1136),
      U(845, u"cm3_per_s", 1e-6, kPlain, kMetric),
      U(846, u"m3_per_s", 1.0, kSI, kMetric),
      U(847, u"ft3_per_min", kFoot * kFoot * kFoot / 60, kPlain, kImperial),
      U(848, u"ft3_per_s", kFoot * kFoot * kFoot, kPlain, kImperial),
      U(849, u"cfm", kFoot * kFoot * kFoot / 60, kPlain, 1137),
  };
  AddRows(manager, Units::VolumeFlowRate, kRows);
}

void UnitTableBuilder::CreateVolumeFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(850, u"mm3", 1e-9, kMilli, kMetric),
      U(851, u"cm3", 1e-6, kPlain, kMetric),
      U(852, u"m3", 1.0, kSI, kMetric),
      U(853, u"inch3", kInch * kInch * kInch, kPlain, kImperial),
      U(854, u"foot3", kFoot * kFoot * kFoot, kPlain, kImperial),
      U(855, u"yard3", kYard * kYard * kYard, kPlain, kImperial),
      U(856, u"ml", 1e-3 * kLitre, kPlain, 1138),
      U(857, u"l", kLitre, kPlain, 1138),
      U(859, u"galUK", kGallonUK, kPlain, 1139),
      U(860, u"cup", kCupUS, kPlain, 1140),
      U(861, u"galUS", kGallonUS, kPlain, 1140),
  };
  AddRows(manager, Units::Volume, kRows);
}

void UnitTableBuilder::CreateWireCrossSectionFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(862, u"in2wire", kInch * kInch, kPlain, kImperial),
      U(863, u"ft2wire", kFoot * kFoot, kPlain, kImperial),
      U(864, u"um2wire", 1e-12, kMicro, kMetric),
      U(865, u"mm2wire", 1e-6, kMilli, kMetric),
      U(866, u"cm2wire", 1e-4, kPlain, kMetric),
      U(867, u"m2wire", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::WireCrossSection, kRows);
}
