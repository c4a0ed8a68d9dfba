// SPDX-License-Identifier: Apache-2.0
//
// TokenTest.cpp - io::CToken: text storage and sharing, number parsing fall-backs, range
// queries at their bounds, comparison, size accounting and the writer each kind is handed to.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "support/Capture.h"
#include "wycore/io/Token.h"
#include "wycore/io/TokenStream.h"

namespace {

using io::CToken;

// Records which writer received what, and whether hexadecimal mode was on at the time.
class RecordingStream : public io::CAbstract_ostream {
 public:
  std::vector<std::string> calls;
  bool hex = false;

  CAbstract_ostream& WriteShort(std::int16_t v) override { return Record("short", v); }
  CAbstract_ostream& WriteInt(std::int32_t v) override { return Record("int", v); }
  CAbstract_ostream& WriteUnsignedShort(std::uint16_t v) override { return Record("ushort", v); }
  CAbstract_ostream& WriteUnsignedInt(std::uint32_t v) override { return Record("uint", v); }
  CAbstract_ostream& WriteToken(const CToken& token) override {
    calls.push_back("token " + token.GetAString().TStr() + "/" + std::to_string(token.Value()) +
                    (hex ? " hex" : ""));
    return *this;
  }
  bool Hex() const override { return hex; }
  bool Hex(bool on) override {
    const bool previous = hex;
    hex = on;
    return previous;
  }

 private:
  CAbstract_ostream& Record(const char* what, long long v) {
    calls.push_back(std::string(what) + " " + std::to_string(v) + (hex ? " hex" : ""));
    return *this;
  }
};

TEST(Token, LayoutAndInlineTextNeedNoBuffer) {
  EXPECT_EQ(sizeof(CToken), 24u);
  const CToken three(CToken::Keyword, AString(u"abc"));
  EXPECT_EQ(three.SizeOf(false), 0u);
  EXPECT_EQ(three.SizeOf(true), 24u);
  EXPECT_EQ(three.GetAString(), u"abc");
  const CToken four(CToken::Keyword, AString(u"abcd"));
  EXPECT_EQ(four.SizeOf(false), 11u);
  EXPECT_EQ(four.SizeOf(true), 35u);
  EXPECT_EQ(four.ACharLen(), 4u);
  EXPECT_EQ(four.GetAString(), u"abcd");
  // A zero character cannot end inline text early: such a text goes to a buffer.
  const CToken zero(CToken::Symbol, AString(std::u16string(u"a\0b", 3)));
  EXPECT_EQ(zero.ACharLen(), 3u);
  EXPECT_EQ(zero.SizeOf(false), 9u);
  EXPECT_EQ(CToken(CToken::Symbol, u'{').GetAString(), u"{");
  EXPECT_EQ(CToken(CToken::Int, u'{').ACharLen(), 0u);
}

TEST(Token, SetTypeParsesNumbersAndFallsBackToSingleQuotedText) {
  struct Case {
    CToken::TTokenType type;
    const char16_t* text;
    CToken::TTokenType kind;
    double value;
    const char16_t* kept;
  };
  const Case cases[] = {
      {CToken::Double, u"1.5e3", CToken::Double, 1500.0, u""},
      {CToken::Double, u"abc", CToken::SingleQuotedText, 0.0, u"abc"},
      {CToken::Short, u"70000", CToken::Short, 70000.0, u""},
      {CToken::Int, u"12x", CToken::SingleQuotedText, 0.0, u"12x"},
      {CToken::Hex, u"ff", CToken::Hex, 255.0, u""},
      {CToken::Hex, u"zz", CToken::SingleQuotedText, 0.0, u"zz"},
      {CToken::Hex, u"-1", CToken::SingleQuotedText, 0.0, u"-1"},
      {CToken::Keyword, u"ab", CToken::Keyword, 0.0, u"ab"},
      {CToken::Eol, u"xyz", CToken::Eol, 0.0, u""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(AString(c.text).TStr());
    CToken token(CToken::Comment, AString(u"old text"));
    token.SetType(c.type, AString(c.text));
    EXPECT_EQ(token.Type(), c.kind);
    EXPECT_EQ(token.Value(), c.value);
    EXPECT_EQ(token.GetAString(), c.kept);
    EXPECT_EQ(token.SizeOf(false), token.ACharLen() > 3 ? token.ACharLen() * 2 + 3 : 0u);
  }
}

TEST(Token, KeepTextKeepsTheNumberAsWritten) {
  CToken token(CToken::Double, AString(u"1.50"), true);
  EXPECT_EQ(token.Value(), 1.5);
  EXPECT_EQ(token.GetAString(), u"1.50");
  EXPECT_EQ(token.SizeOf(false), 11u);
  token.SetType(CToken::Float, AString(u"x"), 2.5, false);
  EXPECT_EQ(token.Type(), CToken::Float);
  EXPECT_EQ(token.Value(), 2.5);
  EXPECT_EQ(token.ACharLen(), 0u);
  token.SetType(CToken::Symbol, AString(u";"), 2.5, false);
  EXPECT_EQ(token.Value(), 0.0);
  EXPECT_EQ(token.GetAString(), u";");
}

TEST(Token, CopiesShareTheBufferUntilTheCountIsFull) {
  const CToken original(CToken::DoubleQuotedText, AString(u"a longer text"));
  std::vector<CToken> copies;
  copies.reserve(256);
  for (int i = 0; i < 256; ++i) copies.push_back(original);
  for (int i = 0; i < 256; ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(copies[i].ACharPtr() == original.ACharPtr(), i < 254);
    EXPECT_EQ(copies[i].GetAString(), u"a longer text");
  }
  // A copy of a copy with its own buffer shares that buffer.
  const CToken second(copies[255]);
  EXPECT_EQ(second.ACharPtr(), copies[255].ACharPtr());
  // Releasing shares frees nothing early: the survivors still read their text.
  copies.resize(10);
  CToken again(original);
  EXPECT_EQ(again.ACharPtr(), original.ACharPtr());
  EXPECT_EQ(again.GetAString(), u"a longer text");
}

TEST(Token, AssignmentMoveAndClear) {
  CToken a(CToken::Comment, AString(u"some comment"));
  const AChar* buffer = a.ACharPtr();
  a = a;  // self-assignment keeps the text
  EXPECT_EQ(a.ACharPtr(), buffer);
  CToken b(CToken::Keyword, AString(u"other keyword"));
  b = a;
  EXPECT_EQ(b.ACharPtr(), buffer);
  b = a;  // already sharing: the count must not change (a leak or a double free otherwise)
  b = CToken(CToken::Int, 3);
  EXPECT_EQ(b.Value(), 3.0);
  b = a;
  CToken c(std::move(b));
  EXPECT_TRUE(b.IsClear());
  EXPECT_EQ(c.ACharPtr(), buffer);
  b = std::move(c);
  EXPECT_EQ(b.GetAString(), u"some comment");
  b.Clear();
  EXPECT_TRUE(b.IsClear());
  EXPECT_EQ(b.Value(), 0.0);
  EXPECT_EQ(b.ACharPtr()[0], 0);
  EXPECT_EQ(a.GetAString(), u"some comment");
}

TEST(Token, EqualityByKind) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_NE(CToken(CToken::Double, nan), CToken(CToken::Double, nan));
  EXPECT_EQ(CToken(CToken::Double, 2.0), CToken(CToken::Double, 2.0));
  EXPECT_NE(CToken(CToken::Double, 2.0), CToken(CToken::Float, 2.0));
  EXPECT_EQ(CToken(CToken::Eol), CToken(CToken::Eol));
  EXPECT_NE(CToken(CToken::Eol), CToken(CToken::Eof));
  // A number's kept text does not count; a control kind carrying text is unequal.
  EXPECT_EQ(CToken(CToken::Int, AString(u"7"), true), CToken(CToken::Int, 7));
  EXPECT_NE(CToken(CToken::Eol, AString(u"x"), true), CToken(CToken::Eol));
  const CToken upper(CToken::Keyword, AString(u"A"));
  const CToken lower(CToken::Keyword, AString(u"a"));
  EXPECT_NE(upper, lower);
  EXPECT_EQ(upper.Compare(u"a", false), 0);
  EXPECT_EQ(upper.Compare(u"a", true), -1);
  EXPECT_EQ(CToken(CToken::Keyword, AString(u"long keyword")),
            CToken(CToken::Keyword, AString(u"long keyword")));
}

TEST(Token, CompareOrdersEmptyFirst) {
  const CToken empty(CToken::Keyword, AString());
  const CToken word(CToken::Keyword, AString(u"beta"));
  EXPECT_EQ(empty.Compare(u"", true), 0);
  EXPECT_EQ(empty.Compare(nullptr, false), 0);
  EXPECT_EQ(empty.Compare(u"a", true), -1);
  EXPECT_EQ(word.Compare(u"", true), 1);
  EXPECT_EQ(word.Compare(u"alpha", true), 1);
  EXPECT_EQ(word.Compare(u"betamax", true), -1);
  EXPECT_EQ(word.Compare(u"BETA", false), 0);
  EXPECT_EQ(word.Compare(u"Gamma", false), -1);
  EXPECT_EQ(word.Compare(u"Gamma", true), 1);  // 'b' > 'G' by code unit
  EXPECT_EQ(CToken(CToken::Int, 5).Compare(u"", true), -1);
  EXPECT_EQ(CToken(CToken::Int, AString(u"5"), true).Compare(u"5", true), 0);
}

TEST(Token, TypeStringsAndGroups) {
  const char16_t* names[] = {u"Null",
                             u"Short",
                             u"Int",
                             u"Long",
                             u"UnsignedShort",
                             u"UnsignedInt",
                             u"UnsignedLong",
                             u"Double",
                             u"Float",
                             u"Hex",
                             u"True",
                             u"False",
                             u"Keyword",
                             u"SingleQuotedText",
                             u"DoubleQuotedText",
                             u"CData",
                             u"WhiteSpace",
                             u"Comment",
                             u"Symbol",
                             u"Eol",
                             u"Eof",
                             u"Error"};
  for (int kind = 0; kind < 256; ++kind) {
    SCOPED_TRACE(kind);
    const CToken token(static_cast<CToken::TTokenType>(kind));
    EXPECT_EQ(token.GetTypeString(), kind < 22 ? AString(names[kind]) : AString());
    EXPECT_EQ(token.IsNumber(), kind >= 1 && kind <= 9);
    EXPECT_EQ(token.IsBoolean(), kind == 10 || kind == 11);
    EXPECT_EQ(token.IsString(), kind >= 12 && kind <= 18);
    EXPECT_EQ(token.IsText(), kind >= 13 && kind <= 15);
    EXPECT_EQ(token.IsEmpty(), kind == 0 || (kind >= 12 && kind <= 21));
  }
  EXPECT_FALSE(CToken(CToken::Symbol, u';').IsEmpty());
  EXPECT_FALSE(CToken(CToken::Double, 0.0).IsEmpty());
}

template <class T>
struct Edge {
  double value;
  bool ok;
  T stored;
};

// Each bound and one beyond, through the predicate and the Query of the type.
template <class T, class Predicate>
void CheckEdges(const char* type, const std::vector<Edge<T>>& edges, Predicate predicate) {
  for (const Edge<T>& edge : edges) {
    SCOPED_TRACE(testing::Message() << type << " " << std::to_string(edge.value));
    const CToken token(CToken::Double, edge.value);
    EXPECT_EQ(predicate(token), edge.ok);
    T out = T(42);
    EXPECT_EQ(token.Query(out), edge.ok);
    EXPECT_EQ(out, edge.ok ? edge.stored : T(42));
  }
  // NaN lies in no range, and no other kind is a number.
  const CToken nan(CToken::Double, std::numeric_limits<double>::quiet_NaN());
  const CToken word(CToken::Keyword, AString(u"1"));
  T out{};
  EXPECT_FALSE(predicate(nan)) << type;
  EXPECT_FALSE(nan.Query(out)) << type;
  EXPECT_FALSE(predicate(word)) << type;
  EXPECT_FALSE(word.Query(out)) << type;
}

TEST(Token, QueryRangeEdges) {
  const double p63 = 9223372036854775808.0;
  const double p64 = 18446744073709551616.0;
  const long long min64 = std::numeric_limits<long long>::min();
  CheckEdges<short>("short",
                    {{-32768, true, -32768},
                     {-32769, false, 0},
                     {32767, true, 32767},
                     {32768, false, 0},
                     {-7.9, true, -7}},
                    [](const CToken& t) { return t.IsShort(); });
  CheckEdges<unsigned short>(
      "unsigned short", {{0, true, 0}, {-1, false, 0}, {65535, true, 65535}, {65536, false, 0}},
      [](const CToken& t) { return t.IsUnsignedShort(); });
  CheckEdges<int>("int",
                  {{-2147483648.0, true, std::numeric_limits<int>::min()},
                   {-2147483649.0, false, 0},
                   {2147483647.0, true, 2147483647},
                   {2147483648.0, false, 0}},
                  [](const CToken& t) { return t.IsInt(); });
  CheckEdges<long>("long",
                   {{-2147483648.0, true, -2147483648L},
                    {-2147483649.0, false, 0},
                    {2147483647.0, true, 2147483647L},
                    {2147483648.0, false, 0}},
                   [](const CToken& t) { return t.IsLong(); });
  CheckEdges<unsigned int>(
      "unsigned int",
      {{0, true, 0}, {-1, false, 0}, {4294967295.0, true, 4294967295u}, {4294967296.0, false, 0}},
      [](const CToken& t) { return t.IsUnsignedInt(); });
  CheckEdges<unsigned long>(
      "unsigned long",
      {{0, true, 0}, {-1, false, 0}, {4294967295.0, true, 4294967295ul}, {4294967296.0, false, 0}},
      [](const CToken& t) { return t.IsUnsignedLong(); });
  CheckEdges<long long>("long long",
                        {{-p63, true, min64},
                         {-p63 - 2048, false, 0},
                         {p63 - 1024, true, 9223372036854774784LL},
                         {p63, true, min64},
                         {p63 + 2048, false, 0}},
                        [](const CToken& t) { return t.IsInt64(); });
  CheckEdges<unsigned long long>("unsigned long long",
                                 {{0, true, 0},
                                  {-1, false, 0},
                                  {p63, true, 1ull << 63},
                                  {p63 + 2048, true, (1ull << 63) + 2048},
                                  {p64 - 2048, true, 18446744073709549568ull},
                                  {p64, true, 1ull << 63},
                                  {p64 + 4096, false, 0}},
                                 [](const CToken& t) { return t.IsUInt64(); });
}

TEST(Token, FloatAndDoubleQueriesAcceptEveryNumber) {
  const double beyond = std::nextafter(3.4028234663852886e38, 1e300);
  struct Case {
    double value;
    bool inRange;
    float stored;
  };
  const float inf = std::numeric_limits<float>::infinity();
  const Case cases[] = {
      {3.4028234663852886e38, true, FLT_MAX},
      {-3.4028234663852886e38, true, -FLT_MAX},
      {beyond, false, inf},
      {-beyond, false, -inf},
      {1e300, false, inf},
      {0.1, true, 0.1f},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.value);
    const CToken token(CToken::Double, c.value);
    EXPECT_EQ(token.IsFloat(), c.inRange);
    float out = 0;
    EXPECT_TRUE(token.Query(out));
    EXPECT_EQ(out, c.stored);
    double d = 0;
    EXPECT_TRUE(token.Query(d));
    EXPECT_EQ(d, c.value);
  }
  const CToken nan(CToken::Double, std::numeric_limits<double>::quiet_NaN());
  float f = 0;
  EXPECT_FALSE(nan.IsFloat());
  EXPECT_TRUE(nan.Query(f));
  EXPECT_TRUE(std::isnan(f));
  double d = 0;
  EXPECT_FALSE(CToken(CToken::True).Query(d));
}

TEST(Token, BooleanAndTextQueries) {
  bool b = false;
  EXPECT_TRUE(CToken(CToken::True).Query(b));
  EXPECT_TRUE(b);
  EXPECT_TRUE(CToken(CToken::False).Query(b));
  EXPECT_FALSE(b);
  b = true;
  EXPECT_FALSE(CToken(CToken::Int, 0).Query(b));
  EXPECT_TRUE(b);

  AString text(u"unchanged");
  EXPECT_FALSE(CToken(CToken::Double, AString(u"1.5"), true).Query(text));
  EXPECT_EQ(text, u"unchanged");
  EXPECT_TRUE(CToken(CToken::CData, AString(u"payload")).Query(text));
  EXPECT_EQ(text, u"payload");
  AChar buffer[8] = {u'x', u'x', u'x', u'x', u'x', u'x', u'x', u'x'};
  EXPECT_TRUE(CToken(CToken::Symbol, u'=').Query(buffer));
  EXPECT_EQ(std::u16string(buffer), u"=");
  wycore::test::CheckCapture checks;
  EXPECT_FALSE(CToken(CToken::Symbol, u'=').Query(static_cast<AChar*>(nullptr)));
  EXPECT_TRUE(checks.Fired("buffer != 0"));
}

TEST(Token, WriteHandsIntegersInRangeToTypedWriters) {
  struct Case {
    CToken token;
    const char* call;
  };
  const Case cases[] = {
      {CToken(CToken::Short, -32768), "short -32768"},
      {CToken(CToken::Short, 70000), "token /70000.000000"},
      {CToken(CToken::Int, -7.9), "int -7"},
      {CToken(CToken::Long, 2147483648.0), "token /2147483648.000000"},
      {CToken(CToken::UnsignedShort, 65535), "ushort 65535"},
      {CToken(CToken::UnsignedShort, -1), "token /-1.000000"},
      {CToken(CToken::UnsignedInt, 4294967295.0), "uint 4294967295"},
      {CToken(CToken::UnsignedLong, 12), "uint 12"},
      {CToken(CToken::Double, 12), "token /12.000000"},
      {CToken(CToken::Keyword, AString(u"name")), "token name/0.000000"},
      {CToken(CToken::Eol), "token /0.000000"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.call);
    RecordingStream stream;
    c.token.write(stream);
    EXPECT_EQ(stream.calls, std::vector<std::string>{c.call});
  }
  short s = 0;
  EXPECT_FALSE(CToken(CToken::Short, 70000).Query(s));
  EXPECT_EQ(s, 0);
}

TEST(Token, WriteHexSwitchesHexModeForOneToken) {
  for (bool before : {false, true}) {
    SCOPED_TRACE(before);
    RecordingStream stream;
    stream.hex = before;
    CToken(CToken::Hex, AString(u"ff")).write(stream);
    CToken(CToken::Hex, 5e9).write(stream);
    CToken(CToken::Int, 3).write(stream);
    EXPECT_EQ(stream.calls,
              (std::vector<std::string>{"uint 255 hex", "token /5000000000.000000 hex",
                                        before ? "int 3 hex" : "int 3"}));
    EXPECT_EQ(stream.hex, before);
  }
}

TEST(Token, BinarySize) {
  RecordingStream stream;
  EXPECT_EQ(CToken(CToken::Eol).BinarySize(stream), 1u);
  EXPECT_EQ(CToken(CToken::Double, 1.0).BinarySize(stream), 9u);
  EXPECT_EQ(CToken(CToken::Double, AString(u"1.0"), true).BinarySize(stream), 9u + 4 + 6);
  EXPECT_EQ(CToken(CToken::Keyword, AString()).BinarySize(stream), 5u);
  EXPECT_EQ(CToken(CToken::Keyword, AString(u"abcd")).BinarySize(stream), 13u);
}

}  // namespace
