// SPDX-License-Identifier: Apache-2.0
//
// UnitTablesAtoL.cpp - the unit rows of the unit types A to L (by the name of their registration
// step).
//
// Data, one row per unit: U(code, name, factor to SI, prefix, family[, alternate[, display]]) or
// UF(code, name, conversion function, ...) for the offset and logarithmic scales. Rows are
// registered in the order written; codes are stored in files and never change. Families: 0 is the
// metric ladder of a type, 1 the imperial ladder, 1000 and above a ladder or a single unit of its
// own that is never offered as a rescaling of the others. docs/units.md explains the choices.
#include "UnitTableBuilder.h"

using namespace wycore::units_detail;

void UnitTableBuilder::CreateAIGBFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(6, u"Fs2_per_ghalf_per_m", kRootKiloPerGram, kPlain, kMetric),
      U(7, u"F_per_ghalfs_per_m", kRootKiloPerGram, kPlain, kMetric),
  };
  AddRows(manager, Units::AIGB, kRows);
}

void UnitTableBuilder::CreateAccelerationFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(508, u"in_per_s2", kInch, kPlain, kImperial),
      U(9, u"mm_per_s2", 1e-3, kMilli, kMetric),
      U(10, u"cm_per_s2", 1e-2, kPlain, kMetric),
      U(11, u"m_per_s2", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::Acceleration, kRows);
}

void UnitTableBuilder::CreateAmountOfSubstanceFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(12, u"nmol", 1e-9, kNano, kMetric),  U(13, u"umol", 1e-6, kMicro, kMetric),
      U(14, u"mmol", 1e-3, kMilli, kMetric), U(15, u"mol", 1.0, kSI, kMetric),
      U(16, u"kmol", 1e3, kKilo, kMetric),
  };
  AddRows(manager, Units::AmountOfSubstance, kRows);
}

void UnitTableBuilder::CreateAngleCoefficientFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(17, u"per_deg", 1 / kDegree, kPlain, 1000),
      U(18, u"per_rad", 1.0, kSI, kMetric),
      U(19, u"V_per_V_per_deg", 1 / kDegree, kPlain, 1001),
      U(20, u"V_per_V_per_rad", 1.0, kPlain, 1001),
  };
  AddRows(manager, Units::AngleCoefficient, kRows);
}

void UnitTableBuilder::CreateAngleFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(51, u"deg", kDegree, kPlain, 1002),
      U(208, u"degsec", kDegree / 3600, kPlain, 1002),
      U(209, u"degmin", kDegree / 60, kPlain, 1002),
      U(52, u"rad", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::Angle, kRows);
}

void UnitTableBuilder::CreateAngularAccelerationFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(21, u"deg_per_s2", kDegree, kPlain, 1003),
      U(22, u"per_s2", 1.0, kPlain, 1004),
      U(23, u"rad_per_s2", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::AngularAcceleration, kRows);
}

void UnitTableBuilder::CreateAngularDampingFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(24, u"dNms_per_rad", 1e-1, kPlain, kMetric),
      U(25, u"Nms_per_rad", 1.0, kSI, kMetric),
      U(26, u"kNms_per_rad", 1e3, kKilo, kMetric),
  };
  AddRows(manager, Units::AngularDamping, kRows);
}

void UnitTableBuilder::CreateAngularJerkFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(27, u"deg_per_sec2", kDegree, kPlain, 1005),
      U(28, u"rad_per_sec2", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::AngularJerk, kRows);
}

void UnitTableBuilder::CreateAngularMomentumFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(29, u"kgm2_per_sec", 1.0, kSI, kMetric),
      U(30, u"nms", 1.0, kPlain, 1006),
  };
  AddRows(manager, Units::AngularMomentum, kRows);
}

void UnitTableBuilder::CreateAngularSpeedFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(31, u"rev_per_sec", 2 * kPi, kPlain, 1007),
      U(32, u"per_second", 1.0, kPlain, 1008),
      U(33, u"rpm", 2 * kPi / 60, kPlain, 1007),
      U(43, u"deg_per_sec", kDegree, kPlain, 1009),
      U(50, u"deg_per_min", kDegree / 60, kPlain, 1009),
      U(53, u"rad_per_sec", 1.0, kSI, kMetric),
      U(62, u"rad_per_hr", 1.0 / 3600, kPlain, kMetric),
      U(71, u"deg_per_hr", kDegree / 3600, kPlain, 1009),
      U(72, u"rad_per_min", 1.0 / 60, kPlain, kMetric),
  };
  AddRows(manager, Units::AngularSpeed, kRows);
}

void UnitTableBuilder::CreateAngularStiffnessFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(73, u"nm_per_deg", 1 / kDegree, kPlain, 1010),
      U(74, u"nm_per_rad", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::AngularStiffness, kRows);
}

void UnitTableBuilder::CreateAngularWindageFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(75, u"kgm2_per_rad2", 1.0, kSI, kMetric),
      U(76, u"nms2_per_rad2", 1.0, kPlain, 1011),
  };
  AddRows(manager, Units::AngularWindage, kRows);
}

void UnitTableBuilder::CreateAreaCoefficientFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(77, u"per_cm2", 1e4, kPlain, kMetric),
      U(78, u"per_m2", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::AreaCoefficient, kRows);
}

void UnitTableBuilder::CreateAreaFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(82, u"in2", kInch * kInch, kPlain, kImperial),
      U(83, u"ft2", kFoot * kFoot, kPlain, kImperial),
      U(84, u"mil2", kMil * kMil, kPlain, kImperial),
      U(85, u"um2", 1e-12, kMicro, kMetric),
      U(86, u"mm2", 1e-6, kMilli, kMetric),
      U(87, u"cm2", 1e-4, kPlain, kMetric),
      U(88, u"m2", 1.0, kSI, kMetric),
      U(89, u"km2", 1e6, kKilo, kMetric),
      U(91, u"micron2", 1e-12, kPlain, 1012),
  };
  AddRows(manager, Units::Area, kRows);
}

void UnitTableBuilder::CreateAreaPerPowerFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(92, u"m2_per_Js", 1.0, kPlain, 1013),
      U(93, u"m2_per_W", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::AreaPerPower, kRows);
}

void UnitTableBuilder::CreateAreaPerVoltageFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(94, u"Am2_per_kW", 1e-3, kPlain, 1014),
      U(95, u"Am2_per_W", 1.0, kPlain, 1014),
      U(96, u"m2_per_kV", 1e-3, kPlain, kMetric),
      U(97, u"m2_per_V", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::AreaPerVoltage, kRows);
}

void UnitTableBuilder::CreateAreaPerVoltageTemperatureFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(98, u"Am2_per_Wkel", 1.0, kPlain, 1015),
      U(99, u"m2_per_Vkel", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::AreaPerVoltageTemperature, kRows);
}

void UnitTableBuilder::CreateArealFlowRateFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(100, u"m2_per_hour", 1.0 / 3600, kPlain, 1016),
      U(101, u"m2_per_min", 1.0 / 60, kPlain, 1016),
      U(102, u"m2_per_s", 1.0, kSI, kMetric),
      U(103, u"cm2_per_s", 1e-4, kPlain, kMetric),
      U(104, u"ft2_per_s", kFoot * kFoot, kPlain, kImperial),
  };
  AddRows(manager, Units::ArealFlowRate, kRows);
}

void UnitTableBuilder::CreateBIGBFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(105, u"F_per_ghalfs_per_Vm", kRootKiloPerGram, kPlain, kMetric),
      U(106, u"Fs2_per_ghalf_per_Vm", kRootKiloPerGram, kPlain, kMetric),
  };
  AddRows(manager, Units::BIGB, kRows);
}

void UnitTableBuilder::CreateCapacitanceFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(107, u"fF", 1e-15, kFemto, kMetric), U(108, u"pF", 1e-12, kPico, kMetric),
      U(109, u"nF", 1e-9, kNano, kMetric),   U(110, u"uF", 1e-6, kMicro, kMetric),
      U(111, u"mF", 1e-3, kMilli, kMetric),  U(112, u"farad", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::Capacitance, kRows);
}

void UnitTableBuilder::CreateCapacitancePerAreaFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(113, u"F_per_cm2", 1e4, kPlain, kMetric),  U(114, u"nF_per_m2", 1e-9, kNano, kMetric),
      U(115, u"uF_per_m2", 1e-6, kMicro, kMetric), U(116, u"mF_per_m2", 1e-3, kMilli, kMetric),
      U(117, u"F_per_m2", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::CapacitancePerArea, kRows);
}

void UnitTableBuilder::CreateCapacitancePerAreaPerVoltageFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(118, u"pF_per_Vm2", 1e-12, kPico, kMetric), U(119, u"nF_per_Vm2", 1e-9, kNano, kMetric),
      U(120, u"uF_per_Vm2", 1e-6, kMicro, kMetric), U(121, u"mF_per_Vm2", 1e-3, kMilli, kMetric),
      U(122, u"F_per_Vm2", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::CapacitancePerAreaPerVoltage, kRows);
}

void UnitTableBuilder::CreateCapacitancePerLengthFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(123, u"pF_per_m", 1e-12, kPico, kMetric), U(124, u"nF_per_m", 1e-9, kNano, kMetric),
      U(125, u"uF_per_m", 1e-6, kMicro, kMetric), U(126, u"mF_per_m", 1e-3, kMilli, kMetric),
      U(127, u"F_per_m", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::CapacitancePerLength, kRows);
}

void UnitTableBuilder::CreateCapacitanceTemperatureCoeffFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(128, u"nF_per_Cel", 1e-9, kPlain, 1017),
      U(129, u"uF_per_Cel", 1e-6, kPlain, 1017),
      U(130, u"F_per_Cel", 1.0, kPlain, 1017),
      U(131, u"pF_per_Fah", 1e-12 * kPerFahrenheit, kPlain, kImperial),
      U(132, u"nF_per_Fah", 1e-9 * kPerFahrenheit, kPlain, kImperial),
      U(133, u"uF_per_Fah", 1e-6 * kPerFahrenheit, kPlain, kImperial),
      U(134, u"mF_per_Fah", 1e-3 * kPerFahrenheit, kPlain, kImperial),
      U(135, u"F_per_Fah", kPerFahrenheit, kPlain, kImperial),
      U(136, u"mF_per_Cel", 1e-3, kPlain, 1017),
      U(137, u"pF_per_Cel", 1e-12, kPlain, 1017),
      U(138, u"pF_per_Kel", 1e-12, kPico, kMetric),
      U(139, u"nF_per_Kel", 1e-9, kNano, kMetric),
      U(140, u"uF_per_Kel", 1e-6, kMicro, kMetric),
      U(141, u"mF_per_Kel", 1e-3, kMilli, kMetric),
      U(142, u"F_per_Kel", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::CapacitanceTemperatureCoeff, kRows);
}

void UnitTableBuilder::CreateChargeFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(143, u"As", 1.0, kPlain, 1018),
      U(144, u"Ahour", 3600.0, kPlain, 1018),
      U(145, u"q", kElementaryCharge, kPlain, 1019),
      U(146, u"nC", 1e-9, kNano, kMetric),
      U(147, u"uC", 1e-6, kMicro, kMetric),
      U(148, u"mC", 1e-3, kMilli, kMetric),
      U(149, u"Coulomb", 1.0, kSI, kMetric),
      U(150, u"kC", 1e3, kKilo, kMetric),
  };
  AddRows(manager, Units::Charge, kRows);
}

void UnitTableBuilder::CreateComplianceFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(151, u"in_per_lbf", kInch / kPoundForce, kPlain, kImperial),
      U(152, u"cm_per_N", 1e-2, kPlain, kMetric),
      U(153, u"m_per_N", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::Compliance, kRows);
}

void UnitTableBuilder::CreateConductanceFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(154, u"mho", 1.0, kPlain, 1020),      U(155, u"perohm", 1.0, kPlain, 1021),
      U(156, u"ApV", 1.0, kPlain, 1022),      U(157, u"fSie", 1e-15, kFemto, kMetric),
      U(158, u"pSie", 1e-12, kPico, kMetric), U(159, u"nSie", 1e-9, kNano, kMetric),
      U(160, u"uSie", 1e-6, kMicro, kMetric), U(161, u"mSie", 1e-3, kMilli, kMetric),
      U(164, u"sie", 1.0, kSI, kMetric),      U(165, u"kSie", 1e3, kKilo, kMetric),
      U(166, u"megSie", 1e6, kMega, kMetric),
  };
  AddRows(manager, Units::Conductance, kRows);
}

void UnitTableBuilder::CreateConductancePerLengthFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(167, u"uS_per_m", 1e-6, kMicro, kMetric), U(168, u"mS_per_m", 1e-3, kMilli, kMetric),
      U(169, u"cS_per_m", 1e-2, kPlain, kMetric), U(170, u"S_per_m", 1.0, kSI, kMetric),
      U(174, u"kS_per_m", 1e3, kKilo, kMetric),
  };
  AddRows(manager, Units::ConductancePerLength, kRows);
}

void UnitTableBuilder::CreateCurrentChangeRateFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(175, u"A_per_min", 1.0 / 60, kPlain, 1023), U(176, u"A_per_hour", 1.0 / 3600, kPlain, 1023),
      U(177, u"uA_per_s", 1e-6, kMicro, kMetric),   U(178, u"mA_per_s", 1e-3, kMilli, kMetric),
      U(179, u"A_per_s", 1.0, kSI, kMetric),        U(180, u"kA_per_s", 1e3, kKilo, kMetric),
  };
  AddRows(manager, Units::CurrentChangeRate, kRows);
}

void UnitTableBuilder::CreateCurrentDensityFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(181, u"uA_per_cm2", 1e-6 * 1e4, kPlain, 1024),
      U(182, u"mA_per_cm2", 1e-3 * 1e4, kPlain, 1024),
      U(183, u"A_per_cm2", 1e4, kPlain, 1024),
      U(184, u"uA_per_m2", 1e-6, kMicro, kMetric),
      U(185, u"mA_per_m2", 1e-3, kMilli, kMetric),
      U(186, u"A_per_m2", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::CurrentDensity, kRows);
}

void UnitTableBuilder::CreateCurrentFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(187, u"fA", 1e-15, kFemto, kMetric), U(188, u"pA", 1e-12, kPico, kMetric),
      U(189, u"nA", 1e-9, kNano, kMetric),   U(190, u"uA", 1e-6, kMicro, kMetric),
      U(191, u"mA", 1e-3, kMilli, kMetric),  U(192, u"A", 1.0, kSI, kMetric),
      U(193, u"kA", 1e3, kKilo, kMetric),
  };
  AddRows(manager, Units::Current, kRows);
}

void UnitTableBuilder::CreateCurrentGainFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(194, u"A_per_mA", 1e3, kPlain, kMetric),
      U(195, u"mA_per_A", 1e-3, kMilli, kMetric),
      U(196, u"A_per_A", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::CurrentGain, kRows);
}

void UnitTableBuilder::CreateCurrentLengthPerVoltageFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(197, u"uAm_per_V", 1e-6, kMicro, kMetric),
      U(198, u"mAm_per_V", 1e-3, kMilli, kMetric),
      U(199, u"Am_per_V", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::CurrentLengthPerVoltage, kRows);
}

void UnitTableBuilder::CreateCurrentPerChargeFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(200, u"A_per_C", 1.0, kSI, kMetric),
      U(201, u"A_per_Ahour", 1.0 / 3600, kPlain, 1025),
      U(202, u"A_per_As", 1.0, kPlain, 1025),
  };
  AddRows(manager, Units::CurrentPerCharge, kRows);
}

void UnitTableBuilder::CreateCurrentPerIrradianceFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(203, u"uA_per_W_per_m2", 1e-6, kMicro, kMetric),
      U(204, u"mA_per_W_per_m2", 1e-3, kMilli, kMetric),
      U(205, u"A_per_W_per_m2", 1.0, kSI, kMetric),
      U(206, u"kA_per_W_per_m2", 1e3, kKilo, kMetric),
  };
  AddRows(manager, Units::CurrentPerIrradiance, kRows);
}

void UnitTableBuilder::CreateCurrentPerLengthFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(207, u"uA_per_m", 1e-6, kMicro, kMetric),
      U(210, u"mA_per_m", 1e-3, kMilli, kMetric),
      U(211, u"A_per_m", 1.0, kSI, kMetric),
      U(212, u"kA_per_m", 1e3, kKilo, kMetric),
  };
  AddRows(manager, Units::CurrentPerLength, kRows);
}

void UnitTableBuilder::CreateCurrentPerTemperature2_halfFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(213, u"A_per_Kel2half", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::CurrentPerTemperature2_half, kRows);
}

void UnitTableBuilder::CreateCurrentPerTemperatureCubedFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(214, u"A_per_Kel3", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::CurrentPerTemperatureCubed, kRows);
}

void UnitTableBuilder::CreateCurrentPerTemperatureDiffCubedFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(215, u"A_per_Cel3", 1.0, kPlain, 1026),
      U(216, u"A_per_diff_Kel3", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::CurrentPerTemperatureDiffCubed, kRows);
}

void UnitTableBuilder::CreateCurrentSquaredTimeFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(217, u"mA2s", 1e-6, kMilli, kMetric),
      U(218, u"A2s", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::CurrentSquaredTime, kRows);
}

void UnitTableBuilder::CreateCurrentTemperatureCoeffFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(219, u"uA_per_Cel", 1e-6, kPlain, 1027),
      U(220, u"mA_per_Cel", 1e-3, kPlain, 1027),
      U(221, u"A_per_Cel", 1.0, kPlain, 1027),
      U(222, u"mA_per_Fah", 1e-3 * kPerFahrenheit, kPlain, kImperial),
      U(223, u"A_per_Fah", kPerFahrenheit, kPlain, kImperial),
      U(224, u"uA_per_Kel", 1e-6, kMicro, kMetric),
      U(225, u"mA_per_Kel", 1e-3, kMilli, kMetric),
      U(226, u"A_per_Kel", 1.0, kSI, kMetric),
      U(227, u"kA_per_Kel", 1e3, kKilo, kMetric),
  };
  AddRows(manager, Units::CurrentTemperatureCoeff, kRows);
}

void UnitTableBuilder::CreateDampingFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(228, u"mNs_per_m", 1e-3, kMilli, kMetric), U(229, u"cNs_per_m", 1e-2, kPlain, kMetric),
      U(230, u"dNs_per_m", 1e-1, kPlain, kMetric), U(231, u"Ns_per_m", 1.0, kSI, kMetric),
      U(232, u"kNs_per_m", 1e3, kKilo, kMetric),
  };
  AddRows(manager, Units::Damping, kRows);
}

void UnitTableBuilder::CreateDataRateFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(233, u"bps", 1.0, kSI, kMetric),
      U(234, u"kbps", 1e3, kKilo, kMetric),
      U(235, u"Mbps", 1e6, kMega, kMetric),
      U(236, u"Gbps", 1e9, kGiga, kMetric),
  };
  AddRows(manager, Units::DataRate, kRows);
}

void UnitTableBuilder::CreateDeltaHFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(237, u"kOe", 1e3 * kOersted, kPlain, 1028),
      U(238, u"Oe", kOersted, kPlain, 1028),
      U(239, u"A_per_meter", 1.0, kSI, kMetric),
      U(240, u"kA_per_meter", 1e3, kKilo, kMetric),
  };
  AddRows(manager, Units::DeltaH, kRows);
}

void UnitTableBuilder::CreateDensityFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(241, u"g_per_cm3", 1e-3 / 1e-6, kPlain, kMetric),
      U(242, u"g_per_l", 1e-3 / kLitre, kPlain, kMetric),
      U(243, u"kg_per_l", 1 / kLitre, kPlain, kMetric),
      U(244, u"kg_per_dm3", 1 / 1e-3, kPlain, kMetric),
      U(245, u"kg_per_m3", 1.0, kSI, kMetric),
      U(246, u"lbm_per_ft3", kPound / (kFoot * kFoot * kFoot), kPlain, kImperial),
      U(247, u"slug_per_ft3", kSlug / (kFoot * kFoot * kFoot), kPlain, kImperial),
  };
  AddRows(manager, Units::Density, kRows);
}

void UnitTableBuilder::CreateElectricFieldFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(248, u"V_per_meter", 1.0, kSI, kMetric),
      U(249, u"v_per_cm", 1e2, kPlain, kMetric),
  };
  AddRows(manager, Units::ElectricField, kRows);
}

void UnitTableBuilder::CreateElectricFluxDensityFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(250, u"nC_per_m2", 1e-9, kNano, kMetric),
      U(251, u"uC_per_m2", 1e-6, kMicro, kMetric),
      U(252, u"mC_per_m2", 1e-3, kMilli, kMetric),
      U(253, u"C_per_m2", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::ElectricFluxDensity, kRows);
}

void UnitTableBuilder::CreateEnergyDensityFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(254, u"J_per_m3", 1.0, kSI, kMetric),
      U(255, u"kJ_per_m3", 1e3, kKilo, kMetric),
  };
  AddRows(manager, Units::EnergyDensity, kRows);
}

void UnitTableBuilder::CreateEnergyFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(256, u"Whour", 3600.0, kPlain, 1030),     U(257, u"kWhour", 3.6e6, kPlain, 1030),
      U(258, u"eV", kElectronVolt, kPlain, 1031), U(259, u"erg", kErg, kPlain, 1032),
      U(260, u"Ws", 1.0, kPlain, 1030),           U(261, u"uJ", 1e-6, kMicro, kMetric),
      U(262, u"mJ", 1e-3, kMilli, kMetric),       U(263, u"Joule", 1.0, kSI, kMetric),
      U(264, u"kJ", 1e3, kKilo, kMetric),         U(265, u"megJ", 1e6, kMega, kMetric),
      U(266, u"GJ", 1e9, kGiga, kMetric),
  };
  AddRows(manager, Units::Energy, kRows);
}

void UnitTableBuilder::CreateFluidicCapacitanceFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(267, u"cm3_per_Pa", 1e-6, kPlain, kMetric),
      U(268, u"m3_per_Pa", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::FluidicCapacitance, kRows);
}

void UnitTableBuilder::CreateFluidicConductanceFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(269, u"cm3_per_Pas", 1e-6, kPlain, kMetric),
      U(270, u"m3_per_Pas", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::FluidicConductance, kRows);
}

void UnitTableBuilder::CreateFluidicResistanceFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(271, u"Ns_per_m5", 1.0, kPlain, 1033),
      U(272, u"Pas_per_m3", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::FluidicResistance, kRows);
}

void UnitTableBuilder::CreateFluxFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(273, u"mx", kMaxwell, kPlain, 1034),
      U(274, u"Wb", 1.0, kSI, kMetric),
      U(275, u"vh", 3600.0, kPlain, 1035),
      U(276, u"vs", 1.0, kPlain, 1035),
  };
  AddRows(manager, Units::Flux, kRows);
}

void UnitTableBuilder::CreateForceFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(277, u"dyne", kDyne, kPlain, 1036),
      U(278, u"kp", kGravity, kPlain, 1037),
      U(279, u"PoundsForce", kPoundForce, kPlain, kImperial),
      U(280, u"fNewton", 1e-15, kFemto, kMetric),
      U(281, u"pNewton", 1e-12, kPico, kMetric),
      U(282, u"nNewton", 1e-9, kNano, kMetric),
      U(283, u"uNewton", 1e-6, kMicro, kMetric),
      U(284, u"mNewton", 1e-3, kMilli, kMetric),
      U(285, u"newton", 1.0, kSI, kMetric),
      U(286, u"kNewton", 1e3, kKilo, kMetric),
      U(287, u"megNewton", 1e6, kMega, kMetric),
      U(288, u"gNewton", 1e9, kGiga, kMetric),
  };
  AddRows(manager, Units::Force, kRows);
}

void UnitTableBuilder::CreateFrequencyFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(383, u"per_sec", 1.0, kPlain, 1039), U(5, u"rps", kRpsFactor, kPlain, 1040),
      U(0, u"Hz", 1.0, kSI, kMetric),        U(1, u"kHz", 1e3, kKilo, kMetric),
      U(2, u"MHz", 1e6, kMega, kMetric),     U(3, u"GHz", 1e9, kGiga, kMetric),
      U(4, u"THz", 1e12, kTera, kMetric),
  };
  AddRows(manager, Units::Frequency, kRows);
}

void UnitTableBuilder::CreateIlluminanceFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(289, u"lm_per_m2", 1.0, kPlain, 1041),
      U(290, u"lm_per_cm2", 1e4, kPlain, 1041),
      U(291, u"W_per_m2", kLuminousEfficacy, kPlain, 1042),
      U(292, u"W_per_cm2", kLuminousEfficacy * 1e4, kPlain, 1042),
      U(293, u"lm_per_in2", 1 / (kInch * kInch), kPlain, kImperial),
      U(294, u"lx", 1.0, kSI, kMetric),
      U(295, u"klx", 1e3, kKilo, kMetric),
      U(296, u"meglx", 1e6, kMega, kMetric),
  };
  AddRows(manager, Units::Illuminance, kRows);
}

void UnitTableBuilder::CreateInductanceFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(297, u"fH", 1e-15, kFemto, kMetric), U(298, u"pH", 1e-12, kPico, kMetric),
      U(299, u"nH", 1e-9, kNano, kMetric),   U(300, u"uH", 1e-6, kMicro, kMetric),
      U(301, u"mH", 1e-3, kMilli, kMetric),  U(302, u"H", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::Inductance, kRows);
}

void UnitTableBuilder::CreateInductancePerLengthFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(303, u"pH_per_m", 1e-12, kPico, kMetric), U(304, u"nH_per_m", 1e-9, kNano, kMetric),
      U(305, u"uH_per_m", 1e-6, kMicro, kMetric), U(306, u"mH_per_m", 1e-3, kMilli, kMetric),
      U(307, u"H_per_m", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::InductancePerLength, kRows);
}

void UnitTableBuilder::CreateInertanceFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(308, u"kg_per_m4", 1.0, kSI, kMetric),
      U(309, u"Ns2_per_m5", 1.0, kPlain, 1043),
      U(310, u"Pas2_per_m3", 1.0, kPlain, 1044),
  };
  AddRows(manager, Units::Inertance, kRows);
}

void UnitTableBuilder::CreateIrradianceFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(311, u"irrad_W_per_cm2", 1e4, kPlain, 1045),
      U(312, u"W_per_in2", 1 / (kInch * kInch), kPlain, 1046),
      U(313, u"uW_per_m2", 1e-6, kMicro, kMetric),
      U(314, u"mW_per_m2", 1e-3, kMilli, kMetric),
      U(315, u"irrad_W_per_m2", 1.0, kSI, kMetric),
      U(316, u"kW_per_m2", 1e3, kKilo, kMetric),
      U(317, u"megW_per_m2", 1e6, kMega, kMetric),
      U(318, u"btu_per_s_per_ft2", kBtu / (kFoot * kFoot), kPlain, kImperial),
      U(319, u"btu_per_hr_per_ft2", kBtu / 3600 / (kFoot * kFoot), kPlain, kImperial),
      U(320, u"erg_per_s_per_cm2", kErg / 1e-4, kPlain, 1047),
      U(321, u"irrad_W_per_mm2", 1e6, kPlain, 1045),
      U(322, u"irrad_met", kMet, kPlain, 1048),
  };
  AddRows(manager, Units::Irradiance, kRows);
}

void UnitTableBuilder::CreateJerkFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(323, u"in_per_s3", kInch, kPlain, kImperial), U(324, u"nm_per_s3", 1e-9, kNano, kMetric),
      U(325, u"um_per_s3", 1e-6, kMicro, kMetric),    U(326, u"mm_per_s3", 1e-3, kMilli, kMetric),
      U(327, u"cm_per_s3", 1e-2, kPlain, kMetric),    U(328, u"m_per_s3", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::Jerk, kRows);
}

void UnitTableBuilder::CreateLength2PerVoltage2FullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(329, u"m2_per_V2", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::Length2PerVoltage2, kRows);
}

void UnitTableBuilder::CreateLengthCoefficientFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(330, u"per_cm", 1e2, kPlain, kMetric),
      U(331, u"per_mm", 1e3, kPlain, kMetric),
      U(332, u"per_um", 1e6, kPlain, kMetric),
      U(333, u"per_km", 1e-3, kPlain, kMetric),
      U(334, u"per_in", 1 / kInch, kPlain, kImperial),
      U(335, u"V_per_V_per_m", 1.0, kPlain, 1049),
      U(336, u"V_per_V_per_in", 1 / kInch, kPlain, 1049),
      U(337, u"per_m", 1.0, kSI, kMetric),
  };
  AddRows(manager, Units::LengthCoefficient, kRows);
}

void UnitTableBuilder::CreateLengthFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(42, u"uin", kInch * 1e-6, kPlain, kImperial),
      U(41, u"mil", kMil, kPlain, kImperial, u"mils", u"mils"),
      U(40, u"in", kInch, kPlain, kImperial),
      U(39, u"ft", kFoot, kPlain, kImperial),
      U(413, u"yd", kYard, kPlain, kImperial),
      U(414, u"mile", kMile, kPlain, kImperial),
      U(415, u"lightyear", kLightYear, kPlain, 1029),
      U(416, u"mileNaut", kNauticalMile, kPlain, 1038),
      U(417, u"fm", 1e-15, kFemto, kMetric),
      U(418, u"pm", 1e-12, kPico, kMetric),
      U(34, u"nm", 1e-9, kNano, kMetric),
      U(35, u"um", 1e-6, kMicro, kMetric),
      U(36, u"mm", 1e-3, kMilli, kMetric),
      U(38, u"cm", 1e-2, kPlain, kMetric),
      U(419, u"dm", 1e-1, kSI, kMetric),
      U(37, u"meter", 1.0, kSI, kMetric, u"meters", u"meters"),
      U(162, u"km", 1e3, kKilo, kMetric),
      U(420, u"mileTerr", kSurveyMile, kPlain, 1056),
      U(858, u"copper_oz_per_ft2", kCopperOunceThickness, kPlain, 1068, u"", u"Cu-oz/ft^2"),
  };
  AddRows(manager, Units::Length, kRows);
}

void UnitTableBuilder::CreateLengthPerVoltageFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(338, u"um_per_V", 1e-6, kMicro, kMetric), U(339, u"mm_per_V", 1e-3, kMilli, kMetric),
      U(340, u"cm_per_V", 1e-2, kPlain, kMetric), U(341, u"dm_per_V", 1e-1, kPlain, kMetric),
      U(342, u"m_per_V", 1.0, kSI, kMetric),      U(343, u"km_per_V", 1e3, kKilo, kMetric),
  };
  AddRows(manager, Units::LengthPerVoltage, kRows);
}

void UnitTableBuilder::CreateLengthPerVoltageRootFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(344, u"um_per_Vhalf", 1e-6, kMicro, kMetric),
      U(345, u"mm_per_Vhalf", 1e-3, kMilli, kMetric),
      U(346, u"cm_per_Vhalf", 1e-2, kPlain, kMetric),
      U(347, u"dm_per_Vhalf", 1e-1, kPlain, kMetric),
      U(348, u"m_per_Vhalf", 1.0, kSI, kMetric),
      U(349, u"km_per_Vhalf", 1e3, kKilo, kMetric),
  };
  AddRows(manager, Units::LengthPerVoltageRoot, kRows);
}

void UnitTableBuilder::CreateLuminousFluxFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(350, u"gm2_per_s3", 1e-3 * kLuminousEfficacy, kPlain, 1050),
      U(351, u"mlm", 1e-3, kMilli, kMetric),
      U(352, u"lm", 1.0, kSI, kMetric),
      U(353, u"klm", 1e3, kKilo, kMetric),
      U(354, u"meglm", 1e6, kMega, kMetric),
  };
  AddRows(manager, Units::LuminousFlux, kRows);
}

void UnitTableBuilder::CreateLuminousIntensityFullUnitTypes(UnitManager& manager) {
  static constexpr UnitRow kRows[] = {
      U(355, u"mCd", 1e-3, kMilli, kMetric), U(356, u"Cd", 1.0, kSI, kMetric),
      U(357, u"kCd", 1e3, kKilo, kMetric),   U(358, u"megCd", 1e6, kMega, kMetric),
      U(359, u"GCd", 1e9, kGiga, kMetric),
  };
  AddRows(manager, Units::LuminousIntensity, kRows);
}
