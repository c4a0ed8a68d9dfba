// SPDX-License-Identifier: Apache-2.0
//
// VariableInfoTest.cpp - sweep types and sweep values.
#include <gtest/gtest.h>

#include <cmath>

#include "support/Capture.h"
#include "wycore/variables/VariableInfo.h"

namespace wycore::test {
namespace {

std::vector<double> Numbers(const std::list<Value>& values) {
  std::vector<double> out;
  for (const Value& v : values) out.push_back(v.GetValue());
  return out;
}

TEST(VariableInfo, SweepTypesByNameAndCode) {
  VariableInfo info;
  EXPECT_TRUE(info.IsStartStopEditable());
  EXPECT_EQ(info.GetSweepTypeName(), u"Linear");
  EXPECT_TRUE(info.SetSweepType(AString(u"Harmonic")));
  EXPECT_EQ(info.GetSweepType(), VariableInfo::kHarmonic);
  EXPECT_FALSE(info.SetSweepType(AString(u"Logarithmic")));
  EXPECT_FALSE(info.SetSweepType(AString(u"sinusoid")));  // names are exact
  EXPECT_EQ(info.GetSweepType(), VariableInfo::kHarmonic);
  info.SetSweepType(VariableInfo::kSinusoid);
  EXPECT_EQ(info.GetSweepTypeName(), u"Sinusoid");
  {
    CheckCapture checks;
    info.SetSweepType(static_cast<VariableInfo::SweepType>(3));
    EXPECT_TRUE(checks.Fired("type>=0 && type<kNumOfSweepType"));
    EXPECT_EQ(info.GetSweepType(), 3);  // stored even so
    EXPECT_EQ(info.GetSweepTypeName(), u"");
    std::list<Value> none;
    info.SetContinousSweepValues({Value(0.0), Value(1.0)}, true);
    EXPECT_FALSE(info.GetSweepValues(none));
  }
  info.AddSupportedSweepType(VariableInfo::kHarmonic);
  info.AddSupportedSweepType(VariableInfo::kLinear);
  std::vector<AString> names;
  EXPECT_EQ(info.GetSupportedSweepTypes(names), 2);
  EXPECT_EQ(names, (std::vector<AString>{u"Linear", u"Harmonic"}));
}

TEST(VariableInfo, ContinuousSweepsGenerateTheirPoints) {
  const struct {
    VariableInfo::SweepType type;
    double start, end;
    int steps;
    bool ok;
    std::vector<double> expected;
  } cases[] = {
      {VariableInfo::kLinear, 0.0, 1.0, 4, true, {0.0, 0.25, 0.5, 0.75, 1.0}},
      {VariableInfo::kLinear, 2.0, -2.0, 2, true, {2.0, 0.0, -2.0}},
      {VariableInfo::kLinear, 5.0, 9.0, 0, true, {5.0}},
      {VariableInfo::kLinear, 0.0, 1.0, -1, false, {}},
      {VariableInfo::kSinusoid, 0.0, 1.0, 2, true, {0.0, 0.5, 1.0}},
      {VariableInfo::kSinusoid,
       0.0,
       4.0,
       4,
       true,
       {0.0, 2.0 * (1.0 - std::sqrt(0.5)), 2.0, 2.0 * (1.0 + std::sqrt(0.5)), 4.0}},
      {VariableInfo::kHarmonic, 1e9, 3.5e9, 0, true, {1e9, 2e9, 3e9}},
      {VariableInfo::kHarmonic, 0.1, 0.3, 7, true, {0.1, 0.2, 0.30000000000000004}},
      {VariableInfo::kHarmonic, 0.0, 1.0, 3, false, {}},
      {VariableInfo::kHarmonic, 2.0, 1.0, 3, false, {}},
      {VariableInfo::kHarmonic, 1e-300, 1.0, 3, false, {}},  // far too many harmonics
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::to_string(c.type) + " " + std::to_string(c.steps));
    VariableInfo info(false, true, Value(c.start), Value(c.end), c.steps);
    info.SetSweepType(c.type);
    std::list<Value> out{Value(99.0)};
    EXPECT_EQ(info.GetSweepValues(out), c.ok);
    const std::vector<double> got = Numbers(out);
    ASSERT_EQ(got.size(), c.expected.size());
    for (std::size_t i = 0; i < got.size(); ++i) {
      EXPECT_NEAR(got[i], c.expected[i], 1e-12 * std::max(1.0, std::fabs(c.expected[i])));
    }
  }
}

TEST(VariableInfo, ContinuousValuesAreValidatedAndKeepUnits) {
  const Units::FullUnitType ghz = Units::GetFullUnitType(AString(u"GHz"), Units::Frequency);
  VariableInfo info;
  EXPECT_FALSE(info.SetContinousSweepValues({Value(1.0)}, false));
  EXPECT_FALSE(info.SetContinousSweepValues({Value(1.0), Value(std::nan(""))}, false));
  EXPECT_FALSE(info.SetContinousSweepValues({Value(1.0), Value(2.0), Value(2.5)}, false));
  EXPECT_FALSE(info.SetContinousSweepValues({Value(1.0), Value(2.0), Value(-1.0)}, false));
  EXPECT_FALSE(info.SetContinousSweepValues({Value(1.0), Value(2.0), Value(1e7)}, false));
  EXPECT_FALSE(
      info.SetContinousSweepValues({Value(AComplex<double>(1.0, 1.0)), Value(2.0)}, false));
  EXPECT_FALSE(info.IsContinuous());
  ASSERT_TRUE(info.SetContinousSweepValues({Value(1e9, ghz), Value(2e9, ghz), Value(2.0)}, false));
  EXPECT_TRUE(info.IsContinuous());
  EXPECT_FALSE(info.IsStartStopEditable());
  EXPECT_EQ(info.GetNumSteps(), 2);
  std::list<Value> out;
  ASSERT_TRUE(info.GetSweepValues(out));
  EXPECT_EQ(Numbers(out), (std::vector<double>{1e9, 1.5e9, 2e9}));
  for (const Value& v : out) EXPECT_EQ(v.GetUnits(), ghz);

  info.SetDiscreteSweepValues({Value(3.0), Value(1.0)});
  info.AddSweepValue(Value(2.0));
  EXPECT_FALSE(info.IsContinuous());
  ASSERT_TRUE(info.GetSweepValues(out));
  EXPECT_EQ(Numbers(out), (std::vector<double>{3.0, 1.0, 2.0}));
  EXPECT_EQ(info.GetSweepValues().size(), 3u);
}

}  // namespace
}  // namespace wycore::test
