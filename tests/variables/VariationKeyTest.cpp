// SPDX-License-Identifier: Apache-2.0
//
// VariationKeyTest.cpp - writing variation keys and reading them back: order, tolerances, units,
// file names, array elements, breaks, failures, and the round trip over the kinds of values.
#include <gtest/gtest.h>

#include <memory>

#include "support/Capture.h"
#include "wycore/value/CharValue.h"
#include "wycore/value/ComplexValue.h"
#include "wycore/value/EnumValue.h"
#include "wycore/value/FloatValue.h"
#include "wycore/value/IntValue.h"
#include "wycore/value/StringArrayValue.h"
#include "wycore/value/StringValue.h"
#include "wycore/value/Value.h"
#include "wycore/variables/ArrayIndexVariable.h"
#include "wycore/variables/Variable.h"
#include "wycore/variables/VariableNameSpace.h"
#include "wycore/variables/VariableValues.h"
#include "wycore/variables/VariationKey.h"

namespace wycore::test {
namespace {

Units::FullUnitType Fut(const char16_t* name) {
  return Units::GetFullUnitType(AString(name), Units::NoUnit);
}

// Collects what ParseKey hands over.
class Recorder : public VariationKeyParserBase {
 public:
  std::vector<std::pair<AString, AString>> mPairs;

 protected:
  void HandleNameValue(const AString& name, const AString& valueText) override {
    mPairs.emplace_back(name, valueText);
  }
};

TEST(VariationKey, IsTheSameWhateverOrderTheVariablesWereAddedIn) {
  Variable w(u"w", 0.003, Fut(u"mm"));
  Variable H(u"H", 0.5);
  Variable alpha(u"alpha", AString(u"\"a.csv\""), Units::NoUnits);
  const AString key = VariableValues({&w, &H, &alpha}).GetVariationKey();
  EXPECT_EQ(key, u"alpha='\"a.csv\"' H='0.5' w='3mm'");
  EXPECT_EQ(VariableValues({&alpha, &w, &H}).GetVariationKey(), key);
  EXPECT_EQ(VariableValues::BuildVariationKey({&H, &alpha, &w}), key);
  EXPECT_EQ(VariableValues().GetVariationKey(), u"");
}

TEST(VariationKey, KeysDifferingOnlyInCaseAreEqual) {
  EXPECT_TRUE(
      VariableValues::AreVariationKeysEqual(AString(u"W='3mm' h='1'"), AString(u"w='3MM' H='1'")));
  // Not equal as texts, equal as values: 3mm is 0.003, and the order of the pairs is free.
  EXPECT_TRUE(VariableValues::AreVariationKeysEqual(AString(u"w='3mm' h='1'"),
                                                    AString(u"H='1' W='0.003meter'")));
  EXPECT_FALSE(VariableValues::AreVariationKeysEqual(AString(u"w='3mm'"), AString(u"w='4mm'")));
  EXPECT_FALSE(
      VariableValues::AreVariationKeysEqual(AString(u"w='3mm'"), AString(u"w='3mm' h='1'")));
}

TEST(VariationKey, ValuesWithinToleranceCompareEqualAndBeyondItNot) {
  struct Case {
    const char16_t* other;
    bool equal;
  } const cases[] = {
      {u"x='1.0000000000000002' y='2mm'", true},  // the last digit of %.17g
      {u"x='1.00000000000001' y='2mm'", true},    // 1e-14 relative
      {u"x='1.0000000000001' y='2mm'", false},    // 1e-13
      {u"x='1' y='2.000000000000001mm'", true},  {u"x='1' y='2.0001mm'", false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(AString(c.other).TStr());
    EXPECT_EQ(VariableValues::AreVariationKeysEqual(AString(u"x='1' y='2mm'"), AString(c.other)),
              c.equal);
  }
}

TEST(VariationKey, EvaluatesInTheUnitsOfTheUnitMap) {
  Variable w(u"w", 0.004, Fut(u"mm"));
  Variable len(u"len", 0.0);
  const VariableNameSpace scope(&w, VariableNameSpace::kSearchIntrinsics,
                                VariableNameSpace::kAppendToPrevious);
  ASSERT_TRUE(len.SetVariableText(AString(u"w/2 + 1mm"), Units::NoUnits));
  const VariableValues values({&len});
  const VariableValues::UnitMap millimetres{{Units::Length, Fut(u"mm")}};
  EXPECT_EQ(values.GetVariationKey(false, nullptr, &millimetres), u"len='w/2 + 1mm'");
  EXPECT_EQ(values.GetVariationKey(true, nullptr, &millimetres), u"len='3mm'");
  // Evaluated at the assignment: len reads the assigned w, not the 4mm w holds.
  VariableValues variation({&len});
  variation.SetVariableValue(&w, Value(0.006, Fut(u"mm")));
  EXPECT_EQ(variation.GetVariationKey(true, nullptr, &millimetres), u"len='4mm' w='6mm'");
  EXPECT_EQ(w.GetValue(), 0.004);
  const VariableValues::UnitMap microns{{Units::Length, Fut(u"um")}};
  EXPECT_EQ(values.GetVariationKey(true, nullptr, &microns), u"len='3000um'");
  // The format is the argument's while the key is written, and the old one afterwards.
  const AString before = Units::GetDefaultDoubleFormat();
  EXPECT_EQ(values.GetVariationKey(AString(u"%.3e"), true, nullptr, &millimetres, false, 0,
                                   val::kVariationKeyFullFileName),
            u"len='3.000e+00mm'");
  EXPECT_EQ(Units::GetDefaultDoubleFormat(), before);
}

TEST(VariationKey, WritesNameOverridesFileNameModesAndArrayElements) {
  Variable file(u"file", AString(u"\"/data/run 1/a.b.csv\""), Units::NoUnits);
  Variable list(u"list", new StringArrayValue({AString(u"C:\\in\\x.txt"), AString(u"y.txt")}));
  ArrayIndexVariable index(u"idx", 0, &list);
  const VariableValues values({&file, &index});
  const VariableValues::NameMap names{{&file, AString(u"F")}};
  struct Case {
    val::enVariationKeyFileNameDisplayMode mode;
    bool elements;
    const char16_t* key;
  } const cases[] = {
      {val::kVariationKeyFullFileName, false, u"F='\"/data/run 1/a.b.csv\"' idx='0'"},
      {val::kVariationKeyFileNameOnly, false, u"F='\"a.b.csv\"' idx='0'"},
      {val::kVariationKeyFileNameNoExtension, false, u"F='\"a.b\"' idx='0'"},
      {val::kVariationKeyFullFileName, true,
       u"F='\"/data/run 1/a.b.csv\"' idx='C:\\\\in\\\\x.txt'"},
      {val::kVariationKeyFileNameNoExtension, true, u"F='\"a.b\"' idx='x'"},
      {val::kVariationKeyQuotedArrayElements, true,
       u"F='\"/data/run 1/a.b.csv\"' idx='\"C:\\\\in\\\\x.txt\"'"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(AString(c.key).TStr());
    EXPECT_EQ(
        values.GetVariationKey(AString(u"%-.17g"), false, &names, nullptr, c.elements, 0, c.mode),
        c.key);
  }
  // An index outside the list, or a list gone, shows the index.
  VariableValues outside;
  outside.SetVariableValue(&index, Value(5.0));
  EXPECT_EQ(outside.GetVariationKey(AString(u"%g"), false, nullptr, nullptr, true, 0,
                                    val::kVariationKeyFullFileName),
            u"idx='5'");
}

TEST(VariationKey, BreaksWithATabOnceWidthCharactersAreWritten) {
  Variable a(u"a", 1.0);
  Variable b(u"b", 22.0);
  Variable c(u"c", 333.0);
  Variable d(u"d", 4.0);
  const VariableValues values({&a, &b, &c, &d});
  struct Case {
    unsigned int width;
    const char16_t* key;
  } const cases[] = {
      {0, u"a='1' b='22' c='333' d='4'"},   {5, u"a='1'\tb='22'\tc='333'\td='4'"},
      {12, u"a='1' b='22'\tc='333' d='4'"},  // "a='1' b='22'" is 12 characters
      {13, u"a='1' b='22' c='333'\td='4'"}, {100, u"a='1' b='22' c='333' d='4'"},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.width);
    const AString key = values.GetVariationKey(AString(u"%g"), false, nullptr, nullptr, false,
                                               k.width, val::kVariationKeyFullFileName);
    EXPECT_EQ(key, k.key);
    EXPECT_TRUE(VariableValues::AreVariationKeysEqual(key, AString(u"a=1 b=22 c=333 d=4")));
  }
}

TEST(VariationKey, AKeyThatFailsToParseKeepsWhatWasReadBeforeIt) {
  struct Case {
    const char16_t* key;
    int pairs;
    const char* check;
  } const cases[] = {
      {u"a='1' b=1.50 c=true", 3, nullptr},
      {u"", 0, nullptr},
      {u"a='1' 'b'='2' c='3'", 1, "tok.IsKeyword() == true"},
      {u"a='1' b '2'", 1, "in.fail() == false"},
      {u"a='1' b=( c='3'", 1, "in.fail() == false"},
      {u"a='1' b='unterminated", 1, "in.fail() == false"},
      {u"a='1' b='2' =", 2, "tok.IsKeyword() == true"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(AString(c.key).TStr());
    CheckCapture checks;
    Recorder recorder;
    EXPECT_EQ(recorder.ParseKey(AString(c.key)), c.check == nullptr ? c.pairs : -1);
    EXPECT_EQ(recorder.mPairs.size(), static_cast<std::size_t>(c.pairs));
    if (c.check != nullptr) {
      EXPECT_TRUE(checks.Fired(c.check));
    } else {
      EXPECT_TRUE(checks.None());
    }
    if (c.pairs > 0) {
      EXPECT_EQ(recorder.mPairs[0], std::make_pair(AString(u"a"), AString(u"1")));
    }
    if (c.pairs == 3) {
      EXPECT_EQ(recorder.mPairs[1].second, u"1.50");  // the number as written
    }
  }
  CheckCapture checks;
  const VariationKeyVariableServer server(AString(u"w='3mm' h '2mm'"));
  EXPECT_FALSE(server.IsValid());
  ASSERT_NE(server.ResolveVariable(AString(u"w")), nullptr);
  EXPECT_DOUBLE_EQ(server.ResolveVariable(AString(u"w"))->GetValue(), 0.003);
  EXPECT_EQ(server.ResolveVariable(AString(u"h")), nullptr);
}

TEST(VariationKey, GetValueStringOnPresentAndAbsentNames) {
  const AString key(u"w='3mm' H='1 + 2j' s='\"x\"' e=w");
  AString text(u"unchanged");
  EXPECT_FALSE(VariableValues::GetValueString(AString(), AString(u"w"), text));
  EXPECT_FALSE(VariableValues::GetValueString(key, AString(u"x"), text));
  EXPECT_FALSE(VariableValues::GetValueString(key, AString(u"3mm"), text));
  EXPECT_EQ(text, u"unchanged");
  EXPECT_TRUE(VariableValues::GetValueString(key, AString(u"h"), text));
  EXPECT_EQ(text, u"1 + 2j");

  AComplex<double> number(-1.0, -1.0);
  bool isComplex = true;
  EXPECT_FALSE(VariableValues::GetValueString(key, AString(u"nope"), number, isComplex));
  EXPECT_FALSE(VariableValues::GetValueString(key, AString(u"s"), number, isComplex));
  EXPECT_EQ(number, AComplex<double>(-1.0, -1.0));
  EXPECT_TRUE(isComplex);
  ASSERT_TRUE(VariableValues::GetValueString(key, AString(u"W"), number, isComplex));
  EXPECT_DOUBLE_EQ(number.real(), 0.003);
  EXPECT_FALSE(isComplex);
  ASSERT_TRUE(VariableValues::GetValueString(key, AString(u"h"), number, isComplex));
  EXPECT_EQ(number, AComplex<double>(1.0, 2.0));
  EXPECT_TRUE(isComplex);
}

// Every kind of value a key can hold reads back as an equal value, and the key read back writes
// the same key again.
TEST(VariationKey, RoundTripsEveryKindOfValue) {
  Variable w(u"w", 0.003, Fut(u"mm"));
  const VariableNameSpace scope(&w, VariableNameSpace::kSearchIntrinsics,
                                VariableNameSpace::kAppendToPrevious);
  struct Case {
    const char16_t* name;
    ValueBase* value;
  } const cases[] = {
      {u"real", new FloatValue(0.0031, Fut(u"mm"))},
      {u"third", new FloatValue(1.0 / 3.0)},
      {u"tiny", new FloatValue(-2.5e-300)},
      {u"big", new FloatValue(1.7976931348623155e308)},
      {u"nan", new FloatValue(std::nan(""), Fut(u"mm"))},
      {u"ninf", new FloatValue(-HUGE_VAL)},
      {u"temp", new FloatValue(300.0, Fut(u"cel"))},
      {u"cplx", new ComplexValue(AComplex<double>(1.0 / 3.0, -2e-9), Fut(u"V"))},
      {u"int", new IntValue(-7)},
      {u"enm", new EnumValue(3)},
      {u"chr", new CharValue('x')},
      {u"str", new StringValue(AString(u"\"it's a \\ 'quoted' text\""))},
      {u"empty", new StringValue(AString(u"\"\""))},
      {u"names", new StringArrayValue({AString(u"a"), AString(u"b, \"c\"")})},
      {u"reals", Value::ReadValueText(AString(u"[1mm, 2.5V, -3]"), Units::NoUnits)},
      {u"matrix", Value::ReadValueText(AString(u"[[1, 2], [3, 4]]"), Units::NoUnits)},
      {u"cmatrix", Value::ReadValueText(AString(u"[[1 + 2j, 3]]"), Units::NoUnits)},
      {u"circle", Value::ReadValueText(AString(u"Circle(1mm, -2mm, 0.5mm)"), Units::NoUnits)},
      {u"data", Value::ReadValueText(AString(u"dataset((1mm, 2), (2mm, 3))"), Units::NoUnits)},
      {u"expr", Value::CreateValueBase(AString(u"2*w + 1mm"), Units::NoUnits)},
      {u"$dollar", new FloatValue(1.0)},
  };
  std::vector<std::unique_ptr<Variable>> variables;
  std::vector<Variable*> list;
  for (const Case& c : cases) {
    ASSERT_NE(c.value, nullptr) << AString(c.name).TStr();
    variables.push_back(std::make_unique<Variable>(AString(c.name), c.value));
    list.push_back(variables.back().get());
  }
  const VariableValues values(list);
  for (const unsigned int width : {0u, 1u, 40u}) {
    SCOPED_TRACE(width);
    const AString key =
        values.GetVariationKey(AString(VariableValues::kKeyDoubleFormat), false, nullptr, nullptr,
                               false, width, val::kVariationKeyFullFileName);
    const VariationKeyVariableServer server(key);
    EXPECT_TRUE(server.IsValid()) << key.TStr();
    for (const auto& variable : variables) {
      SCOPED_TRACE(variable->GetName().TStr());
      const Variable* back = server.ResolveVariable(variable->GetName());
      ASSERT_NE(back, nullptr);
      EXPECT_EQ(
          VariableValues::Compare(Value(variable->GetValueBase()), Value(back->GetValueBase())),
          VariableValues::kEqual)
          << back->GetValueText().TStr();
    }
    std::vector<Variable*> readBack;
    server.GetVariables(readBack);
    EXPECT_EQ(VariableValues::BuildVariationKey(readBack, AString(VariableValues::kKeyDoubleFormat),
                                                false, nullptr, nullptr, false, width,
                                                val::kVariationKeyFullFileName),
              key);
    // Resolved into the design's own variables, the key gives the assignment back.
    VariableValues resolved;
    VariableNameSpace design(VariableNameSpace::kSearchIntrinsics,
                             VariableNameSpace::kAppendToPrevious);
    for (Variable* v : list) design.AddVariable(v);
    EXPECT_EQ(VariableValues::ResolveVariationKey(resolved, key, design, false), 0);
    EXPECT_TRUE(resolved.AreAllVariableValuesEqual(values, {}));
  }
}

TEST(VariationKey, SubsetAndCompleteKeys) {
  const AString key(u"a='1' B='2' c='3'");
  EXPECT_EQ(VariableValues::GetSubsetVariationKey(key, {AString(u"b"), AString(u"c")}),
            u"B='2' c='3'");
  EXPECT_EQ(VariableValues::GetSubsetVariationKey(key, {AString(u"b")}, true), u"a='1' c='3'");
  Variable b(u"b", 20.0);
  Variable aa(u"aa", 0.005, Fut(u"mm"));
  EXPECT_EQ(VariableValues::BuildCompleteVariationKey(key, {&b, &aa}),
            u"a='1' aa='5mm' B='2' c='3'");
}

TEST(VariationKey, ResolvesAKeyAgainstAServerOfTargets) {
  Variable w(u"w", 1.0);
  Variable h(u"h", 2.0);
  VariableNameSpace design(VariableNameSpace::kSearchIntrinsics,
                           VariableNameSpace::kAppendToPrevious);
  design.AddVariable(&w);
  design.AddVariable(&h);
  const VariationKeyVariableServer targets(AString(u"w='0' h='0'"));
  // A server of the design's variables stands in for a design: its names resolve to w and h.
  struct DesignServer : IVariableServer {
    Variable* mW;
    Variable* mH;
    Variable* ResolveVariable(const AString& name) const override {
      if (name.CompareNoCase(u"w") == 0) return mW;
      if (name.CompareNoCase(u"h") == 0) return mH;
      return nullptr;
    }
  } server;
  server.mW = &w;
  server.mH = &h;

  VariableValues evaluated;
  EXPECT_EQ(VariableValues::ResolveVariationKey(AString(u"W='5' h='2*W' z='1'"), nullptr, evaluated,
                                                &server, true),
            1);  // z is no variable of the design
  EXPECT_EQ(evaluated.GetVariableValue(&h).GetValue(), 10.0);
  EXPECT_TRUE(evaluated.GetVariableValue(&h).IsConstant());

  VariableValues symbolic;
  EXPECT_EQ(VariableValues::ResolveVariationKey(AString(u"W='5' h='2*W'"), nullptr, symbolic,
                                                &server, false),
            0);
  EXPECT_FALSE(symbolic.GetVariableValue(&h).IsConstant());
  std::vector<const Variable*> reads;
  symbolic.GetVariableValue(&h).GetReferencedVariables(reads);
  EXPECT_EQ(reads, std::vector<const Variable*>{&w});  // the design's w, not the key's
  symbolic.EvaluateDependentValues();
  EXPECT_EQ(symbolic.GetVariableValue(&h).GetValue(), 10.0);
  EXPECT_EQ(w.GetValue(), 1.0);
}

TEST(VariationKeyVariableServer, ValuesReadEachOtherInAnyOrder) {
  const VariationKeyVariableServer server(AString(u"area='w*h' h='2mm' w='3mm'"));
  EXPECT_TRUE(server.IsValid());
  const Variable* area = server.ResolveVariable(AString(u"AREA"));
  ASSERT_NE(area, nullptr);
  EXPECT_DOUBLE_EQ(area->GetValue(), 6e-6);
  std::vector<AString> names;
  server.GetVariableNames(names);
  EXPECT_EQ(names, (std::vector<AString>{u"area", u"h", u"w"}));
}

TEST(VariationKeyVariableServer, WithReleaseLeavesReadVariablesToTheirReaders) {
  std::unique_ptr<Value> reader;
  {
    const VariationKeyVariableServerWithRelease server(AString(u"w='3' h='w*2'"));
    const VariableNameSpace scope(&server, VariableNameSpace::kSearchIntrinsics,
                                  VariableNameSpace::kDontAppendToPrevious);
    reader = std::make_unique<Value>(AString(u"h + 1"), Units::NoUnits);
    EXPECT_EQ(reader->GetValue(), 7.0);
  }
  // The server is gone; h lives on for the expression, with its value made constant.
  EXPECT_EQ(reader->GetValue(), 7.0);
  reader.reset();  // releases h, which deletes itself (the sanitizer build checks for leaks)

  CheckCapture checks;
  {
    const VariationKeyVariableServer server(AString(u"w='3'"));
    const VariableNameSpace scope(&server, VariableNameSpace::kSearchIntrinsics,
                                  VariableNameSpace::kDontAppendToPrevious);
    reader = std::make_unique<Value>(AString(u"w"), Units::NoUnits);
  }
  EXPECT_TRUE(checks.Fired("no value still reads a variable of the key"));
  EXPECT_EQ(reader->GetValue(), 3.0);
  reader.reset();
}

}  // namespace
}  // namespace wycore::test
