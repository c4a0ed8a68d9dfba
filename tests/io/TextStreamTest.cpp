// SPDX-License-Identifier: Apache-2.0
//
// TextStreamTest.cpp - the text token stream: every lexical rule with its edge kinds, line and
// column tracking, quoting and number output, separators between written tokens (checked by
// reading them back), indentation, encodings and saved states.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "support/Capture.h"
#include "wycore/core/Utf.h"
#include "wycore/io/TextStream.h"

namespace {

using io::CToken;
using io::CToken_textstreambuf;

AString U(const char* utf8) { return AString(wycore::Utf8ToUtf16(utf8)); }
std::string S(const AString& text) { return wycore::Utf16ToUtf8(text); }

// Every token of `text` but white space, as "Kind:text" or "Kind=value".
std::vector<std::string> Lex(const AString& text, CToken_textstreambuf* buf = nullptr) {
  CToken_textstreambuf local(text);
  CToken_textstreambuf& b = buf != nullptr ? *buf : local;
  if (buf != nullptr) b.SetInput(text);
  std::vector<std::string> out;
  for (CToken t = b.GetToken(); !t.IsEof(); t = b.GetToken()) {
    if (t.Type() == CToken::WhiteSpace) continue;
    std::string item = S(t.GetTypeString());
    if (t.IsNumber()) {
      char v[64];
      std::snprintf(v, sizeof v, "=%.17g", t.Value());
      item += v;
    } else if (t.HasText()) {
      item += ':';
      item += S(t.GetAString());
    }
    if (b.LastTokenUnterminated()) item += "(open)";
    out.push_back(item);
  }
  return out;
}

TEST(TextStream, LexesEveryRuleWithItsEdgeKinds) {
  struct Case {
    const char* text;
    std::vector<std::string> tokens;
  };
  const Case cases[] = {
      {"12", {"Int=12"}},
      {"1.5e3", {"Double=1500"}},
      {"1e", {"Double=1"}},
      {"2E+", {"Double=2"}},
      {"-.", {"Symbol:-."}},
      {"0x", {"Short=0"}},
      {"0xff", {"Hex=255"}},
      {"0x1g", {"Hex=1", "Keyword:g"}},
      {"0xffffffff", {"SingleQuotedText:0xffffffff"}},
      {"-5 +.5 .25 1.", {"Int=-5", "Double=0.5", "Double=0.25", "Double=1"}},
      {"- . +", {"Symbol:-", "Symbol:.", "Symbol:+"}},
      {"12abc", {"Int=12", "Keyword:abc"}},
      {"_", {"Symbol:_"}},
      {"_a", {"Symbol:_", "Keyword:a"}},
      {"$begin a_1$ caf\xc3\xa9", {"Keyword:$begin", "Keyword:a_1$", "Keyword:caf\xc3\xa9"}},
      {"true false True", {"True", "False", "Keyword:True"}},
      {"#inf -#inf", {"Double=inf", "Double=-inf"}},
      {"#info #in", {"Symbol:#", "Keyword:info", "Symbol:#", "Keyword:in"}},
      {"-#x", {"Symbol:-", "Symbol:#", "Keyword:x"}},
      {"'it\\'s'", {"SingleQuotedText:it's"}},
      {"\"say \\\"hi\\\" 'x'\"", {"DoubleQuotedText:say \"hi\" 'x'"}},
      {"'\\0\\a\\b\\f\\n\\r\\t\\v\\q\\\\'",
       {std::string("SingleQuotedText:") + std::string("\0\a\b\f\n\r\t\vq\\", 10)}},
      {"'a\\\nb'", {"SingleQuotedText:a\nb"}},
      {"'a\\\r\nb'", {"SingleQuotedText:a\r\nb"}},
      {"'abc\nx", {"SingleQuotedText:abc(open)", "Eol", "Keyword:x"}},
      {"'abc", {"SingleQuotedText:abc(open)"}},
      {"$begin_cdata$ a $b\n'$end_cdata$x", {"CData: a $b\n'", "Keyword:x"}},
      {"$begin_cdata$x$end_cdat$end_cdata$", {"CData:x$end_cdat"}},
      {"$begin_cdata$x$", {"CData:x$(open)"}},
      {"a\r\nb\rc\nd", {"Keyword:a", "Eol", "Keyword:b", "Eol", "Keyword:c", "Eol", "Keyword:d"}},
      {"= [ ] : , ( ) \\",
       {"Symbol:=", "Symbol:[", "Symbol:]", "Symbol::", "Symbol:,", "Symbol:(", "Symbol:)",
        "Symbol:\\"}},
      {"a ! b", {"Keyword:a", "Symbol:!", "Keyword:b"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(Lex(U(c.text)), c.tokens);
  }
  // NUL ends a line like LF.
  EXPECT_EQ(Lex(AString(std::u16string(u"a\0b", 3))),
            (std::vector<std::string>{"Keyword:a", "Eol", "Keyword:b"}));
}

TEST(TextStream, ConfiguredCommentCharactersRunToTheLineEnd) {
  CToken_textstreambuf buf;
  EXPECT_TRUE(buf.CommentCharSet(u'!'));
  EXPECT_FALSE(buf.CommentCharSet(u'\u4e2d'));
  EXPECT_EQ(Lex(U("a ! b 'c'\nd"), &buf),
            (std::vector<std::string>{"Keyword:a", "Comment:! b 'c'", "Eol", "Keyword:d"}));
  buf.CommentCharClear(u'!');
  EXPECT_EQ(Lex(U("a !"), &buf), (std::vector<std::string>{"Keyword:a", "Symbol:!"}));
}

TEST(TextStream, SpecialFloatsCanBeSwitchedOffAndNumberTextKept) {
  CToken_textstreambuf buf;
  buf.SetParseSpecialFloats(false);
  EXPECT_EQ(Lex(U("#nan"), &buf), (std::vector<std::string>{"Symbol:#", "Keyword:nan"}));
  buf.SetParseSpecialFloats(true);
  buf.SetRetainNumberText(true);
  buf.SetInput(U("1.50 0x1F"));
  CToken t = buf.GetToken();
  EXPECT_EQ(t.Type(), CToken::Double);
  EXPECT_EQ(t.GetAString(), u"1.50");
  buf.GetToken();
  t = buf.GetToken();
  EXPECT_EQ(t.Type(), CToken::Hex);
  EXPECT_EQ(t.Value(), 31.0);
  EXPECT_EQ(t.GetAString(), u"0x1F");
}

TEST(TextStream, UnknownCharacterGivesErrorTokenAndCheck) {
  wycore::test::CheckCapture checks;
  EXPECT_EQ(Lex(U("a\xe4\xb8\xad"
                  "b")),
            (std::vector<std::string>{"Keyword:a", "Error:\xe4\xb8\xad", "Keyword:b"}));
  EXPECT_TRUE(checks.Fired("unknown character in the token stream"));
  // Inside quotes every character is text.
  checks.Clear();
  EXPECT_EQ(Lex(U("'\xe4\xb8\xad'")), (std::vector<std::string>{"SingleQuotedText:\xe4\xb8\xad"}));
  EXPECT_TRUE(checks.None());
}

TEST(TextStream, TracksLinesAndColumnsOfTokens) {
  CToken_textstreambuf buf(U("a\n  bb\r\n\tc 'x\\\ny' d\r e"));
  struct Where {
    int line, column;
  };
  std::vector<Where> seen;
  for (CToken t = buf.GetToken(); !t.IsEof(); t = buf.GetToken()) {
    if (t.IsKeyword() || t.IsText()) seen.push_back({buf.TokenLine(), buf.TokenColumn()});
  }
  const Where expected[] = {{1, 1}, {2, 3}, {3, 2}, {3, 4}, {4, 4}, {5, 2}};
  ASSERT_EQ(seen.size(), std::size(expected));
  for (std::size_t i = 0; i < seen.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(seen[i].line, expected[i].line);
    EXPECT_EQ(seen[i].column, expected[i].column);
  }
}

TEST(TextStream, SavedStatesGoBack) {
  CToken_textstreambuf buf(U("a b\nc"));
  buf.GetToken();
  const auto state = buf.SaveStreamState();
  buf.GetToken();
  EXPECT_EQ(buf.GetToken().GetAString(), u"b");
  buf.GetToken();
  EXPECT_EQ(buf.Line(), 2);
  buf.RestoreStreamState(state);
  buf.GetToken();
  EXPECT_EQ(buf.GetToken().GetAString(), u"b");
  buf.RestoreStreamState(buf.CreateInitialStreamState());
  EXPECT_EQ(buf.GetToken().GetAString(), u"a");
}

std::string Written(const CToken& token, CToken_textstreambuf& buf) {
  buf.ClearOutput();
  buf.PutToken(token);
  return buf.OutputBytes();
}

TEST(TextStream, WritesTextsByTheQuotingRule) {
  using T = CToken;
  struct Case {
    CToken token;
    const char* text;
    CToken back;  // what the text reads back as
  };
  const CToken crlf(T::SingleQuotedText, U("a\r\nb\nc"));
  const CToken cdataEnd(T::CData, U("a$end_cdata$b"));
  const Case cases[] = {
      {T(T::SingleQuotedText, U("it's")), "'it\\'s'", T(T::SingleQuotedText, U("it's"))},
      {T(T::SingleQuotedText, U("a\tb")), "'a\\\tb'", T(T::SingleQuotedText, U("a\tb"))},
      {T(T::SingleQuotedText, U("back\\slash")), "'back\\\\slash'",
       T(T::SingleQuotedText, U("back\\slash"))},
      // CR LF goes out as a line continuation and reads back as the line end LF.
      {crlf, "'a\\\nb\\\nc'", T(T::SingleQuotedText, U("a\nb\nc"))},
      // Carriage returns that run into a line end belong to it; a lone one is escaped.
      {T(T::SingleQuotedText, U("a\r\r\nb\rc")), "'a\\\nb\\\rc'",
       T(T::SingleQuotedText, U("a\nb\rc"))},
      {T(T::SingleQuotedText, U("say \"x\"")), "'say \"x\"'",
       T(T::SingleQuotedText, U("say \"x\""))},
      {T(T::DoubleQuotedText, U("say \"x\" 'y'")), "\"say \\\"x\\\" 'y'\"",
       T(T::DoubleQuotedText, U("say \"x\" 'y'"))},
      {T(T::CData, U("any 'thing'\n$x")), "$begin_cdata$any 'thing'\n$x$end_cdata$",
       T(T::CData, U("any 'thing'\n$x"))},
      {cdataEnd, "'a$end_cdata$b'", T(T::SingleQuotedText, U("a$end_cdata$b"))},
      {T(T::Keyword, U("Name_1")), "Name_1", T(T::Keyword, U("Name_1"))},
      {T(T::Keyword, U("two words")), "'two words'", T(T::SingleQuotedText, U("two words"))},
      {T(T::Keyword, U("true")), "'true'", T(T::SingleQuotedText, U("true"))},
      {T(T::Keyword, U("$begin")), "'$begin'", T(T::SingleQuotedText, U("$begin"))},
      {T(T::Symbol, u'='), "=", T(T::Symbol, u'=')},
      {T(T::Symbol, u'\''), "'\\''", T(T::SingleQuotedText, U("'"))},
      {T(T::True), "true", T(T::True)},
      {T(T::False), "false", T(T::False)},
      {T(T::SingleQuotedText, U("\xc2\xb5\xe6\x97\xa5\xf0\x9d\x84\x9e")),
       "'\xc2\xb5\xe6\x97\xa5\xf0\x9d\x84\x9e'",
       T(T::SingleQuotedText, U("\xc2\xb5\xe6\x97\xa5\xf0\x9d\x84\x9e"))},
  };
  CToken_textstreambuf buf;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(Written(c.token, buf), c.text);
    CToken_textstreambuf reader(buf.OutputText());
    EXPECT_EQ(reader.GetToken(), c.back);
    EXPECT_TRUE(reader.GetToken().IsEof());
  }
}

TEST(TextStream, FormatTextKeepsOneQuotedTextAsItStands) {
  struct Case {
    const char* text;
    const char* written;
  };
  const Case cases[] = {
      {"'already quoted'", "'already quoted'"},
      {"\"double\"", "\"double\""},
      {"$begin_cdata$x$end_cdata$", "$begin_cdata$x$end_cdata$"},
      {"plain", "'plain'"},
      {"'a' 'b'", "'\\'a\\' \\'b\\''"},
      {"'open", "'\\'open'"},
      {"", "''"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    CToken_textstreambuf buf;
    buf.FormatText(U(c.text));
    EXPECT_EQ(buf.OutputBytes(), c.written);
  }
  CToken_textstreambuf raw;
  raw.SetQuoting(false);
  raw.FormatText(U("it's\t"));
  EXPECT_EQ(raw.OutputBytes(), "it's\t");
}

TEST(TextStream, WritesNumbers) {
  const double inf = HUGE_VAL;
  struct Case {
    CToken token;
    int precision;
    bool hex;
    int width;
    const char* text;
  };
  const Case cases[] = {
      {CToken(CToken::Int, 42), 0, false, 0, "42"},
      {CToken(CToken::Int, -7), 0, false, 0, "-7"},
      {CToken(CToken::Int, 1e20), 0, false, 0, "100000000000000000000"},
      {CToken(CToken::Double, 1500.0), 0, false, 0, "1500.0"},
      {CToken(CToken::Double, 0.1), 0, false, 0, "0.1"},
      {CToken(CToken::Double, 1e20), 0, false, 0, "1e+20"},
      {CToken(CToken::Double, -2.5e-300), 0, false, 0, "-2.5e-300"},
      {CToken(CToken::Double, 3.14159), 3, false, 0, "3.14"},
      {CToken(CToken::Double, 2.0), 3, false, 0, "2.0"},
      {CToken(CToken::Double, inf), 0, false, 0, "#inf"},
      {CToken(CToken::Double, -inf), 0, false, 0, "-#inf"},
      {CToken(CToken::Double, std::nan("")), 0, false, 0, "#nan"},
      {CToken(CToken::Int, 255), 0, true, 0, "0xff"},
      {CToken(CToken::Int, 2147483646.0), 0, true, 0, "0x7ffffffe"},
      {CToken(CToken::Int, 2147483647.0), 0, true, 0, "2147483647"},
      {CToken(CToken::Int, -1), 0, true, 0, "-1"},
      {CToken(CToken::Int, 42), 0, false, 5, "   42"},
      {CToken(CToken::Short, 70000), 0, false, 0, "70000"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    CToken_textstreambuf buf;
    buf.SetPrecision(c.precision);
    buf.Hex(c.hex);
    buf.Width(c.width);
    buf.PutToken(c.token);
    EXPECT_EQ(buf.OutputBytes(), c.text);
  }
  // A Hex token goes through the stream's hexadecimal mode only for itself.
  io::CToken_ostream out;
  CToken(CToken::Hex, 255).write(out);
  out.WriteSymbol(u',');
  CToken(CToken::Int, 255).write(out);
  EXPECT_EQ(out.Bytes(), "0xff,255");
}

TEST(TextStream, PadsOnlyWhereTokensWouldRunTogether) {
  struct Case {
    CToken first;
    CToken second;
    const char* text;
  };
  const Case cases[] = {
      {CToken(CToken::Keyword, U("a")), CToken(CToken::Int, 1), "a 1"},
      {CToken(CToken::Int, 1), CToken(CToken::Double, 0.5), "1 0.5"},
      {CToken(CToken::Int, 1), CToken(CToken::Symbol, u'.'), "1 ."},
      {CToken(CToken::Symbol, u'.'), CToken(CToken::Int, 5), ". 5"},
      {CToken(CToken::Symbol, u'-'), CToken(CToken::Int, 5), "- 5"},
      {CToken(CToken::Symbol, u'-'), CToken(CToken::Symbol, u'.'), "- ."},
      {CToken(CToken::Symbol, u'-'), CToken(CToken::Double, HUGE_VAL), "- #inf"},
      {CToken(CToken::Symbol, u'#'), CToken(CToken::Keyword, U("inf")), "# inf"},
      {CToken(CToken::Double, HUGE_VAL), CToken(CToken::Keyword, U("x")), "#inf x"},
      {CToken(CToken::Keyword, U("a")), CToken(CToken::Symbol, u'_'), "a _"},
      {CToken(CToken::Int, 0), CToken(CToken::Keyword, U("x1")), "0 x1"},
      {CToken(CToken::Symbol, u'='), CToken(CToken::Int, -5), "=-5"},
      {CToken(CToken::Keyword, U("a")), CToken(CToken::Symbol, u'='), "a="},
      {CToken(CToken::SingleQuotedText, U("a")), CToken(CToken::SingleQuotedText, U("b")),
       "'a''b'"},
      {CToken(CToken::Keyword, U("a")), CToken(CToken::Double, -0.5), "a-0.5"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    CToken_textstreambuf buf;
    buf.PutToken(c.first);
    buf.PutToken(c.second);
    EXPECT_EQ(buf.OutputBytes(), c.text);
    CToken_textstreambuf reader(buf.OutputText());
    reader.SkipWhiteSpace();
    EXPECT_EQ(reader.GetToken(), c.first);
    reader.SkipWhiteSpace();
    EXPECT_EQ(reader.GetToken(), c.second);
    EXPECT_TRUE(reader.GetToken().IsEof());
  }
}

// Any sequence of the kinds the lexer produces, written one after another, reads back as the
// same tokens: the separators are exactly sufficient.
TEST(TextStream, WrittenTokenSequencesReadBackUnchanged) {
  std::mt19937 rng(20240607);
  const char16_t* words[] = {u"a", u"x1", u"e", u"$v", u"n_2", u"inf", u"nan", u"_"};
  const char16_t symbols[] = {u'=', u'-', u'+', u'.', u'#', u'_', u'[', u':', u','};
  auto pick = [&](int n) { return static_cast<int>(rng() % static_cast<unsigned>(n)); };
  for (int round = 0; round < 300; ++round) {
    std::vector<CToken> tokens;
    for (int i = 0; i < 12; ++i) {
      switch (pick(8)) {
        case 0:
          tokens.emplace_back(CToken::Int, pick(2000) - 1000);
          break;
        case 1:
          tokens.emplace_back(CToken::Double, (pick(20000) - 10000) / 64.0);
          break;
        case 2:
          tokens.emplace_back(CToken::Hex, pick(5000));
          break;
        case 3: {
          const char16_t* w = words[pick(8)];
          if (w[0] == u'_') {
            tokens.emplace_back(CToken::Symbol, u'_');
          } else {
            tokens.emplace_back(CToken::Keyword, AString(w));
          }
          break;
        }
        case 4:
          tokens.emplace_back(CToken::Symbol, symbols[pick(9)]);
          break;
        case 5:
          tokens.emplace_back(CToken::SingleQuotedText, AString(words[pick(8)]));
          break;
        case 6:
          tokens.emplace_back(pick(2) ? CToken::True : CToken::False);
          break;
        default:
          tokens.emplace_back(CToken::Double, pick(2) ? HUGE_VAL : -HUGE_VAL);
          break;
      }
    }
    CToken_textstreambuf out;
    for (const CToken& t : tokens) out.PutToken(t);
    CToken_textstreambuf in(out.OutputText());
    std::vector<CToken> back;
    for (;;) {
      in.SkipWhiteSpace();
      CToken t = in.GetToken();
      if (t.IsEof()) break;
      back.push_back(t);
    }
    SCOPED_TRACE(S(out.OutputText()));
    ASSERT_EQ(back.size(), tokens.size());
    for (std::size_t i = 0; i < tokens.size(); ++i) EXPECT_EQ(back[i], tokens[i]) << i;
  }
}

TEST(TextStream, IndentsLazilyAndWritesBlockLines) {
  io::CToken_ostream out;
  out.BeginBlock(CToken(CToken::Keyword, U("Outer")));
  CToken(CToken::Keyword, U("a")).write(out);
  out.NewLine();
  out.BeginBlock(CToken(CToken::Int, 7));
  out.NewLine();  // a blank line carries no indentation
  out.EndBlock(CToken(CToken::Int, 7));
  out.NewLine();
  out.EndBlock(CToken(CToken::Keyword, U("Outer")));
  out.NewLine();
  EXPECT_EQ(out.Bytes(), "$begin 'Outer'\n\ta\n\t$begin '7'\n\n\t$end '7'\n$end 'Outer'\n");
  EXPECT_EQ(out.Buffer().IndentLevel(), 0);

  CToken_textstreambuf buf;
  buf.BeginIndent(2, u' ');
  buf.BeginIndent(1, u'-');
  EXPECT_EQ(buf.Indentation(), u"  -");
  EXPECT_EQ(buf.IndentLevel(), 2);
  buf.EndIndent();
  EXPECT_EQ(buf.Indentation(), u"  ");
  buf.EndIndent();
  wycore::test::CheckCapture checks;
  buf.EndIndent();
  EXPECT_TRUE(checks.Fired("!mIndentSteps.empty()"));
}

TEST(TextStream, EncodesOutputInTheStreamsEncoding) {
  const CToken text(CToken::SingleQuotedText, U("caf\xc3\xa9 \xe2\x82\xac"));
  CToken_textstreambuf utf8;
  utf8.PutToken(text);
  EXPECT_EQ(utf8.OutputBytes(), "'caf\xc3\xa9 \xe2\x82\xac'");
  CToken_textstreambuf cp1252;
  cp1252.SetEncoding(i18n::kCp1252);
  cp1252.PutToken(text);
  EXPECT_EQ(cp1252.OutputBytes(), "'caf\xe9 \x80'");
  EXPECT_EQ(cp1252.OutputText(), U("'caf\xc3\xa9 \xe2\x82\xac'"));
  // An unpaired surrogate cannot be UTF-8: it becomes U+FFFD.
  CToken_textstreambuf lone;
  lone.PutToken(CToken(CToken::SingleQuotedText, AString(std::u16string(u"a\xd800", 2))));
  EXPECT_EQ(lone.OutputBytes(), "'a\xef\xbf\xbd'");
}

}  // namespace
