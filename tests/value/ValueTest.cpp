// SPDX-License-Identifier: Apache-2.0
//
// ValueTest.cpp - the Value handle: construction, setters, ownership and owner registration,
// the value text reader, and persistence in blocks (round trips of every value class through the
// text form of a block, error codes, the must-write-units switch).
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <ostream>

#include "support/Capture.h"
#include "wycore/core/Utf.h"
#include "wycore/io/Block.h"
#include "wycore/io/TextStream.h"
#include "wycore/value/CharValue.h"
#include "wycore/value/ComplexValue.h"
#include "wycore/value/DatasetValue.h"
#include "wycore/value/DoubleArrayValue.h"
#include "wycore/value/EnumValue.h"
#include "wycore/value/FloatValue.h"
#include "wycore/value/GeometryValues.h"
#include "wycore/value/IntValue.h"
#include "wycore/value/MatrixValue.h"
#include "wycore/value/StringArrayValue.h"
#include "wycore/value/StringValue.h"
#include "wycore/value/Value.h"

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

std::string U8(const AString& s) { return wycore::Utf16ToUtf8(s); }

Units::FullUnitType Unit(const char16_t* name) {
  return Units::GetFullUnitType(AString(name), Units::NoUnit);
}

// The block written as text and read back from that text.
io::CBlock ThroughText(const io::CBlock& block) {
  io::CToken_ostream out;
  block.write(out);
  io::CToken_istream in(out.Text());
  io::CBlock read;
  read.read(in);
  EXPECT_FALSE(read.Error()) << U8(out.Text());
  return read;
}

struct RoundTripCase {
  const char* name;
  std::shared_ptr<ValueBase> value;
  // A value of the same class (the kind the reading owner expects).
  std::shared_ptr<ValueBase> blank;
  // Whether a plain Value (a real number) recognises the text by its shape alone.
  bool byShape;
};

std::vector<RoundTripCase> RoundTripCases() {
  const Units::FullUnitType mm = Unit(u"mm"), volt = Unit(u"V"), tesla = Unit(u"tesla");
  TNT::Matrix<double> dm(2, 3);
  for (int r = 0; r < 2; ++r)
    for (int c = 0; c < 3; ++c) dm[r][c] = 0.001 * (r * 3 + c) - 0.0025;
  TNT::Matrix<AComplex<double>> cm(2, 1);
  cm[0][0] = AComplex<double>(1, -2);
  cm[1][0] = AComplex<double>(-0.5, 1e-9);
  T_2DMatrix<AString> sm(2, 2);
  sm(0, 0) = u"a, b";
  sm(0, 1) = u"[x]";
  sm(1, 0) = u"it's \"quoted\"";
  sm(1, 1) = u"";
  geom::Dataset ds(mm, tesla);
  ds.AddPoint(0.0, 0.0);
  ds.AddPoint(0.001, 0.5);
  ds.AddPoint(0.0025, 1.25);
  auto f = [](double v, Units::FullUnitType u) { return std::make_shared<FloatValue>(v, u); };
  return {
      {"float mm", f(0.0025, mm), f(0, mm), true},
      {"float no units", f(-1.25e-7, Units::NoUnits), f(0, Units::NoUnits), true},
      {"float 1+1e-15", f(1.0 + 1e-15, Units::NoUnits), f(0, Units::NoUnits), true},
      {"float nan", f(kNaN, mm), f(0, mm), true},
      {"float -inf", f(-kInf, volt), f(0, Units::NoUnits), true},
      {"float -0", f(-0.0, Units::NoUnits), f(0, Units::NoUnits), true},
      {"complex", std::make_shared<ComplexValue>(AComplex<double>(0.001, -0.002), mm),
       std::make_shared<ComplexValue>(), true},
      {"complex real only", std::make_shared<ComplexValue>(AComplex<double>(3, 0)),
       std::make_shared<ComplexValue>(), true},
      {"int", std::make_shared<IntValue>(-2147483647 - 1), std::make_shared<IntValue>(), false},
      {"enum", std::make_shared<EnumValue>(12), std::make_shared<EnumValue>(), false},
      {"char", std::make_shared<CharValue>('x'), std::make_shared<CharValue>(), false},
      {"char blank", std::make_shared<CharValue>(' '), std::make_shared<CharValue>(), false},
      {"char quote", std::make_shared<CharValue>('\''), std::make_shared<CharValue>(), false},
      {"char 0", std::make_shared<CharValue>(0), std::make_shared<CharValue>('q'), false},
      {"string", std::make_shared<StringValue>(AString(u"\"it's a \"test\"\"")),
       std::make_shared<StringValue>(), true},
      {"empty string", std::make_shared<StringValue>(AString(u"\"\"")),
       std::make_shared<StringValue>(AString(u"\"x\"")), true},
      {"string array",
       std::make_shared<StringArrayValue>(
           std::vector<AString>{u"a", u"b, c", u"q\"x\\", u"", u"[1]"}),
       std::make_shared<StringArrayValue>(), true},
      {"empty string array", std::make_shared<StringArrayValue>(),
       std::make_shared<StringArrayValue>(std::vector<AString>{u"z"}), false},
      {"double array", std::make_shared<DoubleArrayValue>(std::vector<double>{0.001, 0.0025}, mm),
       std::make_shared<DoubleArrayValue>(), true},
      {"double array per entry",
       std::make_shared<DoubleArrayValue>(std::vector<double>{0.001, 5.0},
                                          std::vector<Units::FullUnitType>{mm, volt}),
       std::make_shared<DoubleArrayValue>(), true},
      {"empty double array", std::make_shared<DoubleArrayValue>(),
       std::make_shared<DoubleArrayValue>(std::vector<double>{1.0}), true},
      {"double matrix", std::make_shared<DoubleMatrixValue>(dm, mm),
       std::make_shared<DoubleMatrixValue>(), true},
      {"complex matrix", std::make_shared<ComplexMatrixValue>(cm),
       std::make_shared<ComplexMatrixValue>(), true},
      {"string matrix", std::make_shared<StringMatrixValue>(sm),
       std::make_shared<StringMatrixValue>(), true},
      {"empty double matrix", std::make_shared<DoubleMatrixValue>(),
       std::make_shared<DoubleMatrixValue>(TNT::Matrix<double>(1, 1, 2.0)), false},
      {"circle", std::make_shared<CircleValue>(CircleParam{0.001, -0.002, 0.0005}, mm),
       std::make_shared<CircleValue>(), true},
      {"arc", std::make_shared<ArcValue>(ArcParam{0.001, 0.002, 0.003, 0.25, -M_PI / 2}, mm),
       std::make_shared<ArcValue>(), true},
      {"region",
       std::make_shared<RegionValue>(RegionParam{{{0, 0}, {0.001, 0}, {0.001, 0.002}}}, mm),
       std::make_shared<RegionValue>(), true},
      {"empty region", std::make_shared<RegionValue>(), std::make_shared<RegionValue>(), true},
      {"dataset", std::make_shared<DatasetValue>(ds), std::make_shared<DatasetValue>(), true},
      {"empty dataset", std::make_shared<DatasetValue>(), std::make_shared<DatasetValue>(), true},
  };
}

TEST(Value, EveryClassRoundTripsThroughABlockAsText) {
  for (const RoundTripCase& c : RoundTripCases()) {
    SCOPED_TRACE(c.name);
    const Value original(*c.value);
    io::CBlock block(AString(u"Values"));
    ASSERT_TRUE(original.WriteToBlock(block, AString(u"V")));
    const io::CBlock read = ThroughText(block);
    SCOPED_TRACE(U8(original.GetValueText()));

    Value target(*c.blank);
    ASSERT_EQ(Value::kReadOk, target.ReadFromBlock(read, AString(u"V")));
    EXPECT_EQ(c.value->GetParameterType(), target.GetParameterType());
    // NaN equals nothing, not even itself: it must come back as NaN.
    const bool nan =
        c.value->GetParameterType() == val::kDoubleParam && std::isnan(c.value->GetValue());
    EXPECT_EQ(!nan, original.IsEqual(target)) << U8(target.GetValueText());
    if (nan) {
      EXPECT_TRUE(std::isnan(target.GetValue()));
    }
    EXPECT_EQ(original.GetUnits(), target.GetUnits());
    EXPECT_EQ(original.GetValueText(), target.GetValueText());

    Value plain;
    const Value::ReadResult result = plain.ReadFromBlock(read, AString(u"V"));
    if (c.byShape) {
      ASSERT_EQ(Value::kReadOk, result);
      EXPECT_EQ(!nan, original.IsEqual(plain)) << U8(plain.GetValueText());
    }
  }
}

TEST(Value, FunctionArgumentsRoundTrip) {
  const Value a(0.004, Unit(u"mm"));
  const Value b(AComplex<double>(1, 2));
  io::CBlock block(AString(u"B"));
  io::CBlock_func func(AString(u"F"));
  ASSERT_TRUE(a.Write(func, u"A"));
  ASSERT_TRUE(b.Write(func, nullptr));
  block << func;
  const io::CBlock read = ThroughText(block);
  io::CBlock_func got;
  read >> got;
  ASSERT_TRUE(read.Found());
  Value ra, rb, missing(7.0);
  EXPECT_EQ(Value::kReadOk, ra.Read(got, u"A"));
  EXPECT_EQ(Value::kReadOk, rb.Read(got, u""));
  EXPECT_EQ(Value::kReadNotFound, missing.Read(got, u"B"));
  EXPECT_TRUE(a.IsEqual(ra));
  EXPECT_TRUE(b.IsEqual(rb));
  EXPECT_EQ(7.0, missing.GetValue());
}

TEST(Value, ReadFailuresLeaveTheValueUnchanged) {
  io::CBlock block(AString(u"B"));
  block << io::CBlock_named_value(AString(u"Bad"), io::ValueToken(AString(u"3 furlongs")));
  block << io::CBlock_named_value(AString(u"Ragged"), io::ValueToken(AString(u"[[1, 2], [3]]")));
  io::CBlock inner(AString(u"Inner"));
  block << inner;
  Value v(0.002, Unit(u"mm"));
  const AString before = v.GetValueText();
  EXPECT_EQ(Value::kReadNotFound, v.ReadFromBlock(block, AString(u"Missing")));
  EXPECT_EQ(Value::kReadNoParse, v.ReadFromBlock(block, AString(u"Bad")));
  EXPECT_EQ(Value::kReadNoParse, v.ReadFromBlock(block, AString(u"Ragged")));
  EXPECT_EQ(Value::kReadNoParse, v.ReadFromBlock(block, AString(u"Inner")));
  EXPECT_EQ(before, v.GetValueText());
  EXPECT_EQ(val::kDoubleParam, v.GetParameterType());

  wycore::test::CheckCapture checks;
  EXPECT_EQ(Value::kReadNotFound, v.ReadFromBlock(block, AString()));
  EXPECT_TRUE(checks.Fired("!name.empty()"));
  EXPECT_EQ(before, v.GetValueText());
  EXPECT_FALSE(v.WriteToBlock(block, AString()));
}

TEST(Value, WriteSetsAndRestoresTheMustWriteUnitsSwitch) {
  const Units::FullUnitType mm = Unit(u"mm");
  const Value v(0.003, mm);
  for (bool initially : {false, true}) {
    SCOPED_TRACE(initially);
    const bool saved = Units::SetMustWriteUnits(initially);
    io::CBlock block(AString(u"B"));
    ASSERT_TRUE(v.WriteToBlock(block, AString(u"With"), Value::kWriteUnits));
    EXPECT_EQ(initially, Units::MustWriteUnits());
    ASSERT_TRUE(v.WriteToBlock(block, AString(u"Without"), Value::kDontWriteUnits));
    EXPECT_EQ(initially, Units::MustWriteUnits());
    Units::SetMustWriteUnits(saved);

    AString with, without;
    ASSERT_TRUE(block.QueryValue(AString(u"With"), with));
    ASSERT_TRUE(block.QueryValue(AString(u"Without"), without));
    EXPECT_EQ(AString(u"3mm"), with);
    EXPECT_EQ(AString(u"3"), without);
    // Text without units reads back in the units of the value being replaced.
    Value back(0.0, mm);
    ASSERT_EQ(Value::kReadOk, back.ReadFromBlock(block, AString(u"Without")));
    EXPECT_TRUE(v.IsEqual(back));
  }
}

TEST(Value, ReadValueTextRefusesMalformedText) {
  const char16_t* const bad[] = {
      u"",
      u"   ",
      u"[1, 2",
      u"[1, 2]]",
      u"[1, , 2]",
      u"[[1, 2], [3]]",
      u"[[[1]]]",
      u"[1, \"a\"]",
      u"[[1], 2]",
      u"[\"a\", b]",
      u"[\"a\\\"]",
      u"\"abc",
      u"Circle(1, 2)",
      u"Circle(1, 2, x)",
      u"Arc(1, 2, 3, 4)",
      u"Region(1, 2, 3)",
      u"dataset((1, 2), (3))",
      u"dataset(1, 2)",
      u"3 furlongs",
      u"1 + ",
      u"\xFFFF\xD800",
  };
  for (const char16_t* text : bad) {
    SCOPED_TRACE(U8(AString(text)));
    std::unique_ptr<ValueBase> v(Value::ReadValueText(AString(text), Units::NoUnits));
    EXPECT_EQ(nullptr, v);
  }
  // Deep nesting is refused without descending into it.
  AString deep(200000, u'[');
  deep += AString(200000, u']');
  EXPECT_EQ(nullptr, std::unique_ptr<ValueBase>(Value::ReadValueText(deep, Units::NoUnits)));
}

TEST(Value, ReadValueTextChoosesTheKindByShapeAndHint) {
  struct Case {
    const char16_t* text;
    val::ParameterType hint;
    val::ParameterType kind;
  } const cases[] = {
      {u"42", val::kNotParam, val::kDoubleParam},
      {u"42", val::kIntParam, val::kIntParam},
      {u" +42 ", val::kEnumParam, val::kEnumParam},
      {u"2.5", val::kIntParam, val::kDoubleParam},
      {u"4", val::kCharParam, val::kCharParam},
      {u"1 + 2j", val::kNotParam, val::kComplexParam},
      {u"3", val::kComplexParam, val::kComplexParam},
      {u"[]", val::kNotParam, val::kDoubleArrayParam},
      {u"[]", val::kTextStringArrayParam, val::kTextStringArrayParam},
      {u"[]", val::kComplexMatrixParam, val::kComplexMatrixParam},
      {u"[[1, 2]]", val::kNotParam, val::kDoubleMatrixParam},
      {u"[[1, 2j]]", val::kNotParam, val::kComplexMatrixParam},
      {u"[[1, 2]]", val::kComplexMatrixParam, val::kComplexMatrixParam},
      {u"[[\"a\"]]", val::kNotParam, val::kStringMatrixParam},
      {u"circle(1mm, 2mm, 3mm)", val::kNotParam, val::kCircleParam},
      {u"DATASET()", val::kNotParam, val::kDatasetParam},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(U8(AString(c.text)));
    std::unique_ptr<ValueBase> v(Value::ReadValueText(AString(c.text), Units::NoUnits, c.hint));
    ASSERT_NE(nullptr, v);
    EXPECT_EQ(c.kind, v->GetParameterType());
  }
}

TEST(Value, DoubleArrayKeepsUnitsPerEntryOnlyWhenTheyDiffer) {
  const Units::FullUnitType mm = Unit(u"mm");
  std::unique_ptr<ValueBase> same(Value::ReadValueText(AString(u"[1mm, 2mm]"), Units::NoUnits));
  auto* a = dynamic_cast<DoubleArrayValue*>(same.get());
  ASSERT_NE(nullptr, a);
  EXPECT_FALSE(a->HasUnitPerEntry());
  EXPECT_EQ(mm, a->GetUnits());
  EXPECT_EQ((std::vector<double>{0.001, 0.002}), a->Values());
  std::unique_ptr<ValueBase> mixed(Value::ReadValueText(AString(u"[1mm, 2]"), Units::NoUnits));
  auto* b = dynamic_cast<DoubleArrayValue*>(mixed.get());
  ASSERT_NE(nullptr, b);
  EXPECT_TRUE(b->HasUnitPerEntry());
  EXPECT_EQ(Units::NoUnits, b->GetEntryUnits(1));
  EXPECT_EQ(AString(u"[1mm, 2]"), b->GetValueText());
}

TEST(Value, ConstructorsMakeTheirClasses) {
  const Units::FullUnitType mm = Unit(u"mm");
  EXPECT_EQ(val::kDoubleParam, Value().GetParameterType());
  EXPECT_EQ(Units::NoUnits, Value().GetUnits());
  EXPECT_EQ(val::kComplexParam, Value(AComplex<double>(1, 1)).GetParameterType());
  EXPECT_EQ(val::kDoubleMatrixParam, Value(TNT::Matrix<double>(2, 2, 1.0)).GetParameterType());
  EXPECT_EQ(val::kComplexMatrixParam,
            Value(TNT::Matrix<AComplex<double>>(1, 1)).GetParameterType());
  const Value zeroMm(mm);
  EXPECT_EQ(0.0, zeroMm.GetValue());
  EXPECT_EQ(mm, zeroMm.GetUnits());
  EXPECT_EQ(Units::Length, zeroMm.GetUnitType());
  const Value zeroLength(Units::Length);
  EXPECT_EQ(Units::GetDefaultUnits(Units::Length), zeroLength.GetUnits());
  EXPECT_EQ(Units::NoUnit, Value().GetUnitType());
  EXPECT_EQ(AString(u"\"\""), Value(new StringValue()).GetStringValue());
  EXPECT_EQ(val::kDoubleParam, Value(static_cast<ValueBase*>(nullptr)).GetParameterType());

  // Through the value manager.
  const Value parsed(AString(u"3mm"), Units::NoUnits);
  EXPECT_DOUBLE_EQ(0.003, parsed.GetValue());
  EXPECT_EQ(mm, parsed.GetUnits());
  const Value text(AString(u"  \"abc\" "), Units::NoUnits);
  EXPECT_EQ(AString(u"\"abc\""), text.GetStringValue());
  const Value nothing(AString(u"3 furlongs"), mm);
  EXPECT_EQ(0.0, nothing.GetValue());
  EXPECT_EQ(mm, nothing.GetUnits());
}

TEST(Value, GetIntValueRoundsHalfAwayFromZero) {
  EXPECT_EQ(3, Value(2.5).GetIntValue());
  EXPECT_EQ(-3, Value(-2.5).GetIntValue());
}

TEST(Value, SettersReplaceTheImplementation) {
  Value v(1.0);
  EXPECT_TRUE(v.SetValueText(AString(u"2mm"), Units::NoUnits));
  EXPECT_DOUBLE_EQ(0.002, v.GetValue());
  EXPECT_FALSE(v.SetValueText(AString(u"3 furlongs"), Units::NoUnits));
  EXPECT_DOUBLE_EQ(0.002, v.GetValue());  // kept
  EXPECT_TRUE(v.SetValueText(AString(u"4"), Unit(u"mm"), true));
  EXPECT_DOUBLE_EQ(0.004, v.GetValue());

  v.SetIntValue(-9);
  EXPECT_EQ(val::kIntParam, v.GetParameterType());
  EXPECT_EQ(AString(u"-9"), v.GetValueText());
  v.SetEnumValue(2);
  EXPECT_EQ(2, v.GetEnumValue());
  EXPECT_EQ(val::kEnumParam, v.GetParameterType());
  v.SetCharValue('z');
  EXPECT_EQ('z', v.GetCharValue());
  EXPECT_EQ(AString(u"z"), v.GetValueText());
  v.SetStringValueText(AString(u"abc"));
  EXPECT_EQ(AString(u"\"abc\""), v.GetStringValue());
  v.SetStringValueText(AString(u" \"q\" "));
  EXPECT_EQ(AString(u"\"q\""), v.GetStringValue());
  EXPECT_FALSE(v.SetValueBase(nullptr));
  EXPECT_EQ(AString(u"\"q\""), v.GetStringValue());
  v.SetValueBase(FloatValue(5.0));
  EXPECT_EQ(5.0, v.GetValue());
}

TEST(Value, TextPiecesSeparateUnits) {
  const Value v(0.0015, Unit(u"mm"));
  AString text, units, suffix;
  v.GetValueText(text, units, suffix);
  EXPECT_EQ(AString(u"1.5"), text);
  EXPECT_EQ(AString(u"mm"), units);
  EXPECT_EQ(AString(), suffix);
  EXPECT_EQ(AString(u"1.5"), v.GetValueTextWithoutUnits());
  EXPECT_EQ(AString(u"1.5mm"), v.GetValueText());
  Value n(kNaN, Unit(u"mm"));
  n.GetValueText(text, units, suffix);
  EXPECT_EQ(AString(u"nan"), text);
  EXPECT_EQ(AString(u"mm"), units);
  EXPECT_EQ(AString(u"nan mm"), n.GetValueText());
  Value e(0.0015, Unit(u"mm"));
  e.SetExplicitUnits(Unit(u"meter"));
  EXPECT_EQ(Unit(u"meter"), e.GetExplicitUnits());
  EXPECT_EQ(AString(u"0.0015meter"), e.GetValueTextIncorporateOverrideUnits());
  EXPECT_EQ(AString(u"1.5mm"), e.GetValueText());
}

// A receiver that only needs to be registrable.
struct Owner : IReceiver {};

TEST(Value, OwnerRegistrationFollowsTheImplementation) {
  Owner owner;
  Value v(new DoubleArrayValue({1.0, 2.0}));
  v.SetOwner(&owner);
  EXPECT_TRUE(v.GetValueBase().HasRef(&owner));

  // Replacing the implementation moves the registration to the new one.
  v.SetValueBase(StringArrayValue({AString(u"a")}));
  EXPECT_TRUE(v.GetValueBase().HasRef(&owner));

  // Copies have no owner; assigning into an owned value keeps its owner.
  Value copy(v);
  EXPECT_EQ(nullptr, copy.GetOwner());
  EXPECT_FALSE(copy.GetValueBase().HasRef(&owner));
  Value other(new DoubleArrayValue({3.0}));
  v = other;
  EXPECT_TRUE(v.GetValueBase().HasRef(&owner));
  EXPECT_FALSE(other.GetValueBase().HasRef(&owner));
  v = Value(new DoubleArrayValue({4.0}));
  EXPECT_TRUE(v.GetValueBase().HasRef(&owner));
  EXPECT_EQ(4.0, v.GetValue());

  v.SetOwner(nullptr);
  EXPECT_FALSE(v.GetValueBase().HasRef(&owner));
}

TEST(Value, CopiesAssignmentsAndMovesInEveryOrderAreIndependent) {
  // Run under AddressSanitizer this also proves that no order leaks or double-frees.
  Value a(1.0), b(AComplex<double>(2, 3)), c(new StringArrayValue({AString(u"s")}));
  Value d(a);
  d = b;
  d = d;  // self-assignment keeps the value
  EXPECT_TRUE(d.IsEqual(b));
  Value e(std::move(d));
  EXPECT_TRUE(e.IsEqual(b));
  EXPECT_EQ(val::kDoubleParam, d.GetParameterType());  // the moved-from value stays usable
  d = c;
  c = a;
  a = std::move(e);
  e = Value(9.0);
  EXPECT_TRUE(a.IsEqual(b));
  EXPECT_TRUE(c.IsEqual(Value(1.0)));
  EXPECT_EQ(val::kTextStringArrayParam, d.GetParameterType());
  EXPECT_EQ(9.0, e.GetValue());
  std::vector<Value> many(50, Value(new DoubleArrayValue({1, 2, 3})));
  many.erase(many.begin() + 10, many.begin() + 20);
  many.insert(many.begin(), Value(AString(u"\"x\""), Units::NoUnits));
  EXPECT_EQ(41u, many.size());
  EXPECT_EQ(val::kStringParam, many.front().GetParameterType());
}

TEST(Value, EvaluatedFormsAndShifts) {
  Value v(2.0, Unit(u"mm"));
  v.ReplaceWithEvaluatedValueBase();
  EXPECT_EQ(2.0, v.GetValue());
  Value w;
  w.UpdateSelfWithEvaluatedValueOf(Value(AComplex<double>(1, 1)));
  EXPECT_EQ(val::kComplexParam, w.GetParameterType());
  EXPECT_FALSE(v.SubstituteVariables());
  EXPECT_FALSE(v.UsesVariable(nullptr));
  EXPECT_FALSE(v.UsesIntrinsicVariable());
  EXPECT_FALSE(v.UsesSpatialIntrinsics());
}

TEST(FloatValue, NamedPersistenceAndText) {
  const Units::FullUnitType mm = Unit(u"mm");
  FloatValue f(0.0025, mm);
  io::CBlock block(AString(u"B"));
  ASSERT_TRUE(f.WriteNamedFloatValue(block, AString(u"Len")));
  block << io::CBlock_named_value(AString(u"Plain"), io::ValueToken(AString(u"7")));
  block << io::CBlock_named_value(AString(u"Text"), io::ValueToken(AString(u"\"x\"")));
  const io::CBlock read = ThroughText(block);
  FloatValue g;
  EXPECT_EQ(Value::kReadOk, g.ReadNamedFloatValue(read, AString(u"Len"), Units::NoUnits));
  EXPECT_TRUE(f.IsEqual(g));
  EXPECT_EQ(mm, g.GetUnits());
  EXPECT_EQ(Value::kReadOk, g.ReadNamedFloatValue(read, AString(u"Plain"), mm));
  EXPECT_DOUBLE_EQ(0.007, g.GetValue());
  EXPECT_EQ(Value::kReadNoParse, g.ReadNamedFloatValue(read, AString(u"Text"), mm));
  EXPECT_EQ(Value::kReadNotFound, g.ReadNamedFloatValue(read, AString(u"None"), mm));
  EXPECT_DOUBLE_EQ(0.007, g.GetValue());

  f = 0.5;
  f += 0.25;
  EXPECT_EQ(0.75, f.GetValue());
  EXPECT_EQ(AString(u"750mm"), f.GetValueText());
  EXPECT_EQ(AString(u"750.00"), f.GetValueText(AString(u"%.2f"), false));
  EXPECT_EQ(AString(u"750mm"), f.GetValueText(AString(u"%g"), true));
  f.Reset(1500.0, Unit(u"meter"));
  EXPECT_EQ(AString(u"1.5km"), f.GetValueTextScaledToNiceUnit());
  EXPECT_TRUE(f.SetValueText(AString(u"2 mm"), Units::NoUnits));
  EXPECT_EQ(mm, f.GetUnits());
  EXPECT_FALSE(f.SetValueText(AString(u"2 + x"), Units::NoUnits));
  EXPECT_DOUBLE_EQ(0.002, f.GetValue());
  const std::unique_ptr<ValueBase> shifted(f.AddConstant(1.0));
  EXPECT_DOUBLE_EQ(1.002, shifted->GetValue());
  EXPECT_EQ(mm, shifted->GetUnits());
}

TEST(Dataset, BlockFormRoundTripsAndRefusesMalformedBlocks) {
  const Units::FullUnitType am = Unit(u"A_per_meter"), tesla = Unit(u"tesla");
  geom::Dataset bh(am, tesla);
  bh.AddPoint(0, 0);
  bh.AddPoint(100, 0.5);
  bh.AddPoint(200, 0.8);
  io::CBlock parent(AString(u"Material"));
  ASSERT_TRUE(bh.WriteToBlock(parent, AString(u"BHCoordinates")));
  const io::CBlock read = ThroughText(parent);
  geom::Dataset back;
  EXPECT_EQ(0, back.ReadFromBlock(read, AString(u"BHCoordinates")));
  EXPECT_TRUE(back == bh);
  EXPECT_EQ(am, back.GetXUnits());
  EXPECT_EQ(tesla, back.GetYUnits());
  EXPECT_EQ(2, back.ReadFromBlock(read, AString(u"Missing")));

  io::CBlock odd(AString(u"C"));
  odd << io::CBlock_vec(AString(u"Points"), std::vector<double>{1, 2, 3});
  io::CBlock unknownUnit(AString(u"C"));
  unknownUnit << io::CBlock_vec(AString(u"DimUnits"), std::vector<AString>{u"furlong", u""});
  io::CBlock notAVector(AString(u"C"));
  notAVector << io::CBlock_named_value(AString(u"Points"), 4.0);
  for (const io::CBlock* bad : {&odd, &unknownUnit, &notAVector}) {
    geom::Dataset d = bh;
    EXPECT_EQ(-1, d.Read(*bad));
    EXPECT_TRUE(d == bh);  // unchanged
    EXPECT_EQ(am, d.GetXUnits());
  }
  EXPECT_EQ(3u, bh.Size());
  EXPECT_TRUE(std::isnan(bh.GetX(3)));
  EXPECT_EQ((std::vector<double>{0, 0.5, 0.8}), bh.GetYValues());
}

}  // namespace
