// SPDX-License-Identifier: Apache-2.0
//
// BlockTest.cpp - the block tree: text shapes, reading with error collection (codes, positions,
// resynchronisation), bounded nesting, round trips of random trees, extraction and queries.
#include <gtest/gtest.h>

#include <cmath>
#include <list>
#include <random>
#include <string>
#include <vector>

#include "support/Capture.h"
#include "wycore/core/Utf.h"
#include "wycore/io/Block.h"
#include "wycore/io/TextStream.h"

namespace {

using io::CBlock;
using io::CBlock_func;
using io::CBlock_named_value;
using io::CBlock_value;
using io::CBlock_vec;
using io::CBlockPtr;
using io::CToken;

AString U(const std::string& utf8) { return AString(wycore::Utf8ToUtf16(utf8)); }

std::string Write(const CBlock& root, bool compact = false) {
  io::CToken_ostream out;
  out.SetCompactVectors(compact);
  root.WriteItems(out);
  return out.Bytes();
}

CBlock Read(const std::string& text) {
  io::CToken_istream in(U(text));
  CBlock root;
  root.ReadItems(in);
  return root;
}

struct Err {
  int code, line, column;
};

std::vector<Err> Errors(const CBlock& root) {
  std::vector<Err> out;
  for (const auto& e : root.CollectErrors()) out.push_back({e.Code(), e.Line(), e.Column()});
  return out;
}

std::vector<std::string> Names(const CBlock& block) {
  std::vector<std::string> out;
  for (const CBlockPtr& item : block) out.push_back(wycore::Utf16ToUtf8(item->Name()));
  return out;
}

TEST(Block, WritesTheTextShapes) {
  CBlock root;
  CBlock project(u"Project");
  project << CBlock_named_value(u"Name", u"it's") << CBlock_named_value(u"Count", 3)
          << CBlock_named_value(u"Scale", 2.0) << CBlock_named_value(u"On", true)
          << CBlock_vec(u"Empty") << CBlock_vec(u"One", std::vector<int>{7})
          << CBlock_vec(
                 u"Three",
                 std::vector<CToken>{CToken(CToken::Keyword, AString(u"a")), CToken(CToken::Int, 2),
                                     CToken(CToken::SingleQuotedText, AString(u"c d"))});
  CBlock_func func(u"Func");
  CBlock_func inner(u"Inner");
  inner << CBlock_value(1.5);
  func << CBlock_value(CToken(CToken::Keyword, AString(u"a"))) << CBlock_named_value(u"Key", u"b")
       << CBlock_vec(u"V", std::vector<int>{1, 2}) << inner;
  project << func << CBlock_func(u"NoArgs") << CBlock(u"Nested two");
  root << project;
  EXPECT_EQ(Write(root),
            "$begin 'Project'\n"
            "\tName='it\\'s'\n"
            "\tCount=3\n"
            "\tScale=2.0\n"
            "\tOn=true\n"
            "\tEmpty[0:]\n"
            "\tOne[1: 7]\n"
            "\tThree[3: a, 2, 'c d']\n"
            "\tFunc(a, Key='b', V[2: 1, 2], Inner(1.5))\n"
            "\tNoArgs()\n"
            "\t$begin 'Nested two'\n"
            "\t$end 'Nested two'\n"
            "$end 'Project'\n");
  EXPECT_NE(Write(root, true).find("\tThree[3:a 2'c d']\n"), std::string::npos);
  // Whatever the layout, the text reads back to the same tree.
  for (bool compact : {false, true}) {
    const CBlock back = Read(Write(root, compact));
    EXPECT_TRUE(Errors(back).empty());
    EXPECT_TRUE(back.Equals(root)) << compact;
  }
}

TEST(Block, WritesTokensThatCannotStandInPlaceAsTexts) {
  CBlock root;
  root << CBlock_named_value(u"S", CToken(CToken::Symbol, u'=')) << CBlock_named_value(u"N")
       << CBlock_named_value(u"$end", 1)
       << CBlock_vec(u"V", std::vector<CToken>{CToken(CToken::Symbol, u','), CToken(CToken::Eol)});
  EXPECT_EQ(Write(root), "S='='\nN=''\n'$end'=1\nV[2: ',', '']\n");
  EXPECT_TRUE(Errors(Read(Write(root))).empty());
}

TEST(Block, KeepsItemsInOrderAndSameNamesTwice) {
  const CBlock root = Read("$begin 'B'\n z=1\n a=2\n z=3\n z[1: 4]\n$end 'B'\n");
  ASSERT_EQ(root.Size(), 1u);
  const CBlock& b = *root.FindBlock(u"B");
  EXPECT_EQ(Names(b), (std::vector<std::string>{"z", "a", "z", "z"}));
  int value = 0;
  EXPECT_TRUE(b.QueryValue(u"z", value));
  EXPECT_EQ(value, 1);
  // Extraction by name takes the items of that name in turn.
  CBlock_named_value z(u"z");
  b >> z;
  EXPECT_TRUE(b.Found());
  EXPECT_TRUE(z.Query(value) && value == 1);
  b >> z;
  EXPECT_TRUE(z.Query(value) && value == 3);
  b >> z;  // wraps around
  EXPECT_TRUE(z.Query(value) && value == 1);
}

TEST(Block, ReadErrorsCostOnlyTheirItem) {
  struct Case {
    const char* text;
    std::vector<std::string> names;  // items of block B that were read
    std::vector<Err> errors;
  };
  const Case cases[] = {
      {"$begin 'B'\n a=1\n b 5\n c=3\n$end 'B'\n", {"a", "c"}, {{7, 3, 4}}},
      {"$begin 'B'\n a=1\n ] x=2\n c=3\n$end 'B'\n", {"a", "c"}, {{11, 3, 2}}},
      {"$begin 'B'\n a=1\n b\n c=3\n$end 'B'\n", {"a", "c"}, {{7, 3, 3}}},
      {"$begin 'B'\n ''=1\n c=3\n$end 'B'\n", {"c"}, {{11, 2, 2}}},
      {"$begin 'B'\n a=\n c=3\n$end 'B'\n", {"c"}, {{12, 2, 4}}},
      {"$begin 'B'\n a='open\n c=3\n$end 'B'\n", {"c"}, {{12, 2, 4}}},
      {"$begin 'B'\n v[3: 1, 2]\n c=3\n$end 'B'\n", {"c"}, {{13, 2, 11}}},
      {"$begin 'B'\n v[1: 1, 2]\n c=3\n$end 'B'\n", {"c"}, {{13, 2, 8}}},
      {"$begin 'B'\n v[x: 1]\n v[-1:]\n v[1.5:]\n v[1 1]\n c=3\n$end 'B'\n",
       {"c"},
       {{13, 2, 4}, {13, 3, 4}, {13, 4, 4}, {13, 5, 6}}},
      {"$begin 'B'\n v[2: 1 = ]\n c=3\n$end 'B'\n", {"c"}, {{13, 2, 9}}},
      {"$begin 'B'\n f(a b)\n f(a,)\n f(,)\n c=3\n$end 'B'\n",
       {"c"},
       {{14, 2, 6}, {14, 3, 6}, {14, 4, 4}}},
      {"$begin 'B'\n f(''=1)\n c=3\n$end 'B'\n", {"c"}, {{11, 2, 6}}},
      {"$begin 'B'\n a=1\n", {"a"}, {{3, 3, 1}}},
      {"$begin 'B'\n a=1\n$end 'C'\nd=1\n", {"a"}, {{3, 3, 1}}},
      {"$begin 'B'\n a=1\n$end\n", {"a"}, {{3, 3, 1}}},
      {"$begin\n a=1\n$end 'B'\n", {"a"}, {{3, 1, 7}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    const CBlock root = Read(c.text);
    ASSERT_GE(root.Size(), 1u);
    ASSERT_TRUE(root.Items()[0]->IsBlock());
    EXPECT_EQ(Names(static_cast<const CBlock&>(*root.Items()[0])), c.names);
    const std::vector<Err> errors = Errors(root);
    ASSERT_EQ(errors.size(), c.errors.size());
    for (std::size_t i = 0; i < errors.size(); ++i) {
      SCOPED_TRACE(i);
      EXPECT_EQ(errors[i].code, c.errors[i].code);
      EXPECT_EQ(errors[i].line, c.errors[i].line);
      EXPECT_EQ(errors[i].column, c.errors[i].column);
    }
  }
}

TEST(Block, ReportsErrorTextsAndClearsThem) {
  CBlock root = Read("$begin 'A'\n x 5\n $begin 'B'\n  ]\n $end 'B'\n$end 'A'\n$end 'Z'\n");
  std::list<AString> messages;
  EXPECT_TRUE(root.Error(messages, false));
  ASSERT_EQ(messages.size(), 3u);
  auto it = messages.begin();
  EXPECT_EQ(*it++, U("line 2, column 4: 'x' is followed by the value 5, which starts no item "
                     "(expected '=', '(' or '[') (code 7)"));
  EXPECT_EQ(*it++, U("line 4, column 3: the symbol ']' cannot start an item (code 11)"));
  EXPECT_EQ(*it++, U("line 7, column 1: $end without a matching $begin (code 3)"));
  // The nested block keeps its own error; the outer list holds only the outer one.
  const CBlock& a = *root.FindBlock(u"A");
  EXPECT_EQ(std::distance(a.begin_error(), a.end_error()), 1);
  EXPECT_TRUE(root.Error(true));
  EXPECT_FALSE(root.Error());
  EXPECT_TRUE(root.CollectErrors().empty());
}

TEST(Block, MismatchedEndOfAnEnclosingBlockIsLeftToIt) {
  const CBlock root = Read("$begin 'A'\n $begin 'B'\n  x=1\n$end 'A'\n$begin 'C'\n$end 'C'\n");
  EXPECT_EQ(Names(root), (std::vector<std::string>{"A", "C"}));
  const std::vector<Err> errors = Errors(root);
  ASSERT_EQ(errors.size(), 1u);
  EXPECT_EQ(errors[0].code, 3);
  EXPECT_EQ(errors[0].line, 4);
  EXPECT_EQ(root.CollectErrors()[0].Message(),
            U("missing $end 'B' before $end 'A' (the block begins on line 2)"));
}

TEST(Block, ReadsAFailedStreamAsOneError) {
  io::CToken_istream in(U("$begin 'A'\n$end 'A'\n"));
  in.SetFail(AString(u"disk gone"));
  CBlock block;
  block.read(in);
  ASSERT_EQ(block.CollectErrors().size(), 1u);
  EXPECT_EQ(block.CollectErrors()[0].Code(), 3);
  EXPECT_TRUE(block.Empty());
}

TEST(Block, BoundsNestingOfBlocksAndFunctions) {
  std::string deep;
  for (int i = 0; i < 3000; ++i) deep += "$begin 'L'\n";
  for (int i = 0; i < 3000; ++i) deep += "$end 'L'\n";
  deep += "after=1\n";
  CBlock root = Read(deep);
  EXPECT_EQ(Names(root), (std::vector<std::string>{"L", "after"}));
  std::vector<io::XStreamioError> errors = root.CollectErrors();
  ASSERT_EQ(errors.size(), 1u);
  EXPECT_EQ(errors[0].Code(), 15);
  EXPECT_EQ(errors[0].Line(), io::CAbstract_istream::kDefaultMaxDepth + 1);

  std::string calls = "f=1\ng";
  for (int i = 0; i < 100000; ++i) calls += "(a";
  calls += "\nh=2\n";
  root = Read(calls);
  EXPECT_EQ(Names(root), (std::vector<std::string>{"f", "h"}));
  errors = root.CollectErrors();
  ASSERT_EQ(errors.size(), 1u);
  EXPECT_EQ(errors[0].Code(), 15);

  io::CToken_istream in(U("f(g(h(1)))\n"));
  in.SetMaxDepth(2);
  CBlock limited;
  limited.ReadItems(in);
  ASSERT_EQ(limited.CollectErrors().size(), 1u);
  EXPECT_EQ(limited.CollectErrors()[0].Code(), 15);
}

TEST(Block, SurvivesBinaryGarbage) {
  wycore::test::CheckCapture checks;  // unknown characters fire the lexer's check
  std::mt19937 rng(7);
  for (int round = 0; round < 200; ++round) {
    std::string bytes(static_cast<std::size_t>(rng() % 400), '\0');
    for (char& b : bytes) b = static_cast<char>(rng());
    if (round % 3 == 0) bytes = "$begin 'X'\n" + bytes;
    const CBlock root = Read(bytes);
    // Whatever was read writes out as text that reads back cleanly and identically.
    const std::string written = Write(root);
    const CBlock again = Read(written);
    EXPECT_TRUE(again.CollectErrors().empty()) << round;
    EXPECT_EQ(Write(again), written) << round;
  }
}

// A random tree of the kinds the text form keeps exactly.
class TreeMaker {
 public:
  explicit TreeMaker(unsigned seed) : mRng(seed) {}

  CBlock Root() {
    CBlock root;
    for (int i = Pick(1, 4); i > 0; --i) root << Block(0);
    return root;
  }

 private:
  int Pick(int lo, int hi) { return lo + static_cast<int>(mRng() % unsigned(hi - lo + 1)); }

  AString Word() {
    static const char* const words[] = {"a", "Name", "x_1", "$v", "caf\xc3\xa9", "e5", "X"};
    AString w = U(words[Pick(0, 6)]);
    if (Pick(0, 2) == 0) w += U(std::to_string(Pick(0, 99)));
    return w;
  }

  AString Text() {
    static const char16_t pool[] = u"ab '\"\\\t\n\r\x01 \x7f$#=[]()\u00e9\u4e2d,:";
    std::u16string s;
    for (int i = Pick(0, 12); i > 0; --i) {
      if (Pick(0, 10) == 0) {
        s += u"\U0001D11E";
      } else if (Pick(0, 30) == 0) {
        s += u'\0';
      } else {
        s += pool[Pick(0, static_cast<int>(std::size(pool)) - 2)];
      }
    }
    // CR LF inside a text is written as a line continuation and reads back as LF.
    for (std::size_t p; (p = s.find(u"\r\n")) != std::u16string::npos;) s.erase(p, 1);
    return AString(s);
  }

  CToken Value() {
    switch (Pick(0, 11)) {
      case 0:
        return CToken(CToken::Int, Pick(-100000, 100000));
      case 1:
        return CToken(CToken::Double, std::ldexp(Pick(-1000000, 1000000), Pick(-80, 80)));
      case 2:
        return CToken(CToken::Double, Pick(-5, 5) * 1.0);
      case 3:
        return CToken(CToken::Hex, Pick(0, 2147483646));
      case 4:
        return CToken(Pick(0, 1) ? CToken::True : CToken::False);
      case 5:
        return CToken(CToken::Keyword, Word());
      case 6:
      case 7:
        return CToken(CToken::SingleQuotedText, Text());
      case 8:
        return CToken(CToken::DoubleQuotedText, Text());
      case 9:
        return CToken(CToken::CData, Text());
      case 10:
        return CToken(CToken::Double, Pick(0, 2) == 0 ? std::nan("")
                                      : Pick(0, 1)    ? HUGE_VAL
                                                      : -HUGE_VAL);
      default:
        return CToken(CToken::Int, 1e15 + Pick(0, 1000));
    }
  }

  CToken Name() {
    switch (Pick(0, 5)) {
      case 0: {
        AString t = Text();
        return CToken(CToken::SingleQuotedText, t.empty() ? AString(u"t") : t);
      }
      case 1:
        return CToken(CToken::Int, Pick(0, 50));
      default:
        return CToken(CToken::Keyword, Word());
    }
  }

  CBlockPtr Vec() {
    io::CBlockVecPtr vec(new CBlock_vec);
    vec->SetNameToken(Name());
    for (int i = Pick(0, 5); i > 0; --i) vec->Append(Value());
    return vec;
  }

  CBlockPtr Func(int depth) {
    io::CBlockFuncPtr func(new CBlock_func);
    func->SetNameToken(Name());
    for (int i = Pick(0, 4); i > 0; --i) {
      switch (depth < 3 ? Pick(0, 3) : Pick(0, 2)) {
        case 0:
          *func << CBlock_value(Value());
          break;
        case 1: {
          CBlock_named_value nv;
          nv.SetNameToken(Name());
          nv.Value(Value());
          *func << nv;
          break;
        }
        case 2:
          *func << Vec();
          break;
        default:
          *func << Func(depth + 1);
          break;
      }
    }
    return func;
  }

  CBlock Block(int depth) {
    CBlock block(TokenNameOf(Name()));
    for (int i = Pick(0, 6); i > 0; --i) {
      switch (depth < 3 ? Pick(0, 3) : Pick(0, 2)) {
        case 0: {
          CBlock_named_value nv;
          nv.SetNameToken(Name());
          nv.Value(Value());
          block << nv;
          break;
        }
        case 1:
          block << Vec();
          break;
        case 2:
          block << Func(0);
          break;
        default:
          block << Block(depth + 1);
          break;
      }
    }
    return block;
  }

  static AString TokenNameOf(const CToken& t) { return io::TokenNameText(t); }

  std::mt19937 mRng;
};

TEST(Block, RandomTreesRoundTripExactly) {
  TreeMaker maker(12345);
  for (int round = 0; round < 300; ++round) {
    const CBlock tree = maker.Root();
    const std::string text = Write(tree);
    const CBlock back = Read(text);
    SCOPED_TRACE(text);
    ASSERT_TRUE(Errors(back).empty());
    EXPECT_TRUE(back.Equals(tree));
    EXPECT_EQ(Write(back), text);
    // The compact form reads back to the same tree too.
    EXPECT_TRUE(Read(Write(tree, true)).Equals(tree));
  }
}

TEST(Block, QueriesScalarsVectorsAndFunctionArguments) {
  const CBlock root =
      Read("v[4: 1, 2.5, 'x', true]\nf(3, Key=4, g(5), 6)\nn=70000\nb=false\ns='txt'\n");
  const CBlock_vec& v = static_cast<const CBlock_vec&>(*root.Find(u"v"));
  int i = 0;
  EXPECT_TRUE(v.Query(i));
  EXPECT_EQ(i, 1);
  std::vector<double> doubles;
  EXPECT_FALSE(v.QueryValues(doubles));
  EXPECT_TRUE(doubles.empty());
  unsigned int position = 0;
  double d = 0;
  EXPECT_TRUE(v.QueryUnamedValues(position, d));
  EXPECT_TRUE(v.QueryUnamedValues(position, d));
  EXPECT_EQ(d, 2.5);
  EXPECT_EQ(position, 2u);
  EXPECT_FALSE(v.QueryUnamedValues(position, d));
  AString text;
  EXPECT_TRUE(v.QueryUnamedValues(position, text));
  EXPECT_EQ(text, u"x");
  EXPECT_TRUE(v.Item(3).IsTrue());
  EXPECT_TRUE(v.Item(4).IsClear());
  EXPECT_TRUE(v.Item(4000000).IsClear());

  const CBlock_vec numbers(u"n", std::vector<double>{1, 2, 3});
  EXPECT_TRUE(numbers.QueryValues(doubles));
  EXPECT_EQ(doubles, (std::vector<double>{1, 2, 3}));

  const CBlock_func& f = static_cast<const CBlock_func&>(*root.Find(u"f"));
  EXPECT_TRUE(f.Query(i));
  EXPECT_EQ(i, 3);
  auto it = f.begin();
  std::vector<int> plain;
  while (f.QueryUnamedValues(it, i)) plain.push_back(i);
  EXPECT_EQ(plain, (std::vector<int>{3, 6}));
  it = f.begin();
  io::CBlockFuncPtr nested;
  EXPECT_TRUE(f.QueryUnamedValues(it, nested));
  EXPECT_EQ(nested->Name(), u"g");
  EXPECT_EQ(nested->RefCount(), 2u);  // shared with the tree
  EXPECT_FALSE(f.QueryUnamedValues(it, nested));

  short s = 0;
  EXPECT_FALSE(root.QueryValue(u"n", s));
  long n = 0;
  EXPECT_TRUE(root.QueryValue(u"n", n));
  EXPECT_EQ(n, 70000);
  bool b = true;
  EXPECT_TRUE(root.QueryValue(u"b", b));
  EXPECT_FALSE(b);
  EXPECT_FALSE(root.QueryValue(u"s", d));
  AChar buffer[8] = {};
  EXPECT_TRUE(root.Find(u"s")->Query(buffer));
  EXPECT_EQ(std::u16string(buffer), u"txt");
  EXPECT_FALSE(root.QueryValue(u"absent", n));
}

TEST(Block, ExtractsByKindNameAndCursor) {
  const CBlock root =
      Read("a=1\nv[1: 2]\n$begin 'S'\n x=1\n$end 'S'\nf(1)\n$begin 'T'\n$end 'T'\nb=2\n");
  CBlock_named_value a(u"a"), b(u"b"), missing(u"missing", 99);
  bool okA = false, okMissing = true, okB = false;
  root >> b >> io::CQuery_ok_manip(okB) >> a >> io::CQuery_ok_manip(okA) >> missing >>
      io::CQuery_ok_manip(okMissing);
  EXPECT_TRUE(okA && okB);
  EXPECT_FALSE(okMissing);
  EXPECT_FALSE(root.Found());
  int value = 0;
  EXPECT_TRUE(missing.Query(value) && value == 99);  // unchanged
  EXPECT_TRUE(b.Query(value) && value == 2);

  // Unnamed targets take the next item of their kind after the cursor.
  root.Rewind();
  CBlock first, second, third;
  root >> first >> second >> third;
  EXPECT_FALSE(root.Found());
  EXPECT_EQ(first.Name(), u"S");
  EXPECT_EQ(first.Size(), 1u);
  EXPECT_EQ(second.Name(), u"T");
  EXPECT_FALSE(third.IsNamed());
  // A target that carries a name (as `first` now does) is looked up by it.
  root >> first;
  EXPECT_TRUE(root.Found());
  EXPECT_EQ(first.Name(), u"S");

  root.Rewind();
  CBlock_vec vec;
  CBlock_func func;
  root >> vec >> func;
  EXPECT_TRUE(root.Found());
  EXPECT_EQ(vec.Name(), u"v");
  EXPECT_EQ(func.Name(), u"f");

  CBlockPtr any(new CBlock_named_value(u"S"));
  root >> any;
  ASSERT_TRUE(root.Found());
  EXPECT_TRUE(any->IsBlock());
  EXPECT_EQ(any.get(), root.Items()[2].get());
}

class Point : public io::CStreamio_item_object {
 public:
  double x = 0, y = 0;
  void WriteToBlock(CBlock& block) const override {
    block << CBlock_vec(u"Point", std::vector<double>{x, y});
  }
  bool ReadFromBlock(const CBlock& block) override {
    CBlock_vec vec(u"Point");
    block >> vec;
    std::vector<double> v;
    if (!block.Found() || !vec.QueryValues(v) || v.size() != 2) return false;
    x = v[0];
    y = v[1];
    return true;
  }
};

TEST(Block, ItemObjectsWriteAndReadThemselves) {
  Point p;
  p.x = 1.5;
  p.y = -2;
  CBlock root;
  root << p;
  EXPECT_EQ(Write(root), "Point[2: 1.5, -2.0]\n");
  Point q;
  bool ok = false;
  Read(Write(root)) >> q >> io::CQuery_ok_manip(ok);
  EXPECT_TRUE(ok);
  EXPECT_EQ(q.x, 1.5);
  EXPECT_EQ(q.y, -2.0);
}

TEST(Block, UnpacksItemsFromTheirText) {
  CBlock_vec vec;
  EXPECT_TRUE(vec.Unpack(U("V[2: x, 'y z']")));
  EXPECT_EQ(vec.Name(), u"V");
  EXPECT_EQ(vec.Item(1).GetAString(), u"y z");
  EXPECT_FALSE(vec.Unpack(U("V[3: x]")));
  EXPECT_FALSE(vec.Unpack(U("F(1)")));
  EXPECT_FALSE(vec.Unpack(U("V[1: x] W[1: y]")));
  EXPECT_EQ(vec.Size(), 2u);  // unchanged by the failures

  CBlock_func func;
  EXPECT_TRUE(func.Unpack(U("F(a, K=b, V[2: x, y], G())")));
  EXPECT_EQ(func.Size(), 4u);
  CBlock_named_value nv;
  EXPECT_TRUE(nv.Unpack(U("12=#nan")));
  EXPECT_EQ(nv.Name(), u"12");
  EXPECT_TRUE(std::isnan(nv.Value().Value()));
  CBlock_value value;
  EXPECT_TRUE(value.Unpack(U("'t'")));
  EXPECT_FALSE(value.Unpack(U("a b")));
  EXPECT_EQ(value.Value().GetAString(), u"t");
  CBlock block;
  EXPECT_TRUE(block.Unpack(U("$begin 'B'\n a=1\n$end 'B'")));
  EXPECT_EQ(block.Size(), 1u);
  EXPECT_FALSE(block.Unpack(U("$begin 'B'\n a 1\n$end 'B'")));
  EXPECT_EQ(block.Name(), u"B");
  EXPECT_EQ(block.Size(), 1u);
}

TEST(Block, SharesItemsThroughCountedPointers) {
  io::CBlockVecPtr vec(new CBlock_vec(u"V"));
  EXPECT_EQ(vec->RefCount(), 1u);
  {
    CBlock a, b;
    a << vec;
    b << vec;
    EXPECT_EQ(vec->RefCount(), 3u);
    vec->Append(CToken(CToken::Int, 1));
    EXPECT_EQ(Write(a), "V[1: 1]\n");
    EXPECT_EQ(Write(b), "V[1: 1]\n");
    CBlock copy(a);  // deep: the copy has its own vector
    EXPECT_EQ(vec->RefCount(), 3u);
    vec->Append(CToken(CToken::Int, 2));
    EXPECT_EQ(Write(copy), "V[1: 1]\n");
  }
  EXPECT_EQ(vec->RefCount(), 1u);

  wycore::test::CheckCapture checks;
  CBlock block;
  block << CBlockPtr(new CBlock_value(1)) << CBlockPtr();
  EXPECT_TRUE(block.Empty());
  EXPECT_EQ(checks.Reports().size(), 2u);
  CBlock_func func;
  func << CBlockPtr(new CBlock(u"no"));
  EXPECT_TRUE(func.Empty());
  CBlock_value plain(1);
  plain.Name(u"x");
  EXPECT_TRUE(checks.Fired("a plain value has no name"));
  EXPECT_FALSE(plain.IsNamed());
}

TEST(Block, AccountsSizes) {
  io::CToken_ostream out;
  const CBlock_named_value nv(u"Key", 5);
  // Keyword "Key": 1 + 4 + 6; '=': 1 + 4 + 2; Int: 1 + 8.
  EXPECT_EQ(nv.BinarySize(out), 27u);
  EXPECT_EQ(nv.SizeOf(false), 0u);  // both tokens inline
  EXPECT_EQ(nv.SizeOf(true), sizeof(CBlock_named_value));
  const CBlock_named_value longer(u"LongerKey", u"some text");
  EXPECT_EQ(longer.SizeOf(false), (9u * 2 + 3) + (9u * 2 + 3));
  CBlock_vec vec(u"V", std::vector<int>{1, 2, 3});
  // "V" 7, '[' ':' ']' 21, count 9, three Ints 27, two ',' 14.
  EXPECT_EQ(vec.BinarySize(out), 78u);
  out.SetCompactVectors(true);
  EXPECT_EQ(vec.BinarySize(out), 64u);
}

}  // namespace
