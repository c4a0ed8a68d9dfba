// SPDX-License-Identifier: Apache-2.0
//
// StorageHostileTest.cpp - the storage layer on hostile input and on trees of any depth: broken
// texts give their documented errors and the rest is read, garbage never crashes or hangs, a
// line of 100 MB is read in one piece, nesting beyond the reader's limit is refused with code 15,
// and trees built in code 100,000 levels deep are copied, compared, measured, written and
// destroyed without running off the stack.
//
// Sizes are bounded so that the suite stays quick under the sanitizers too: the 100 MB line is
// read in the release build; the sanitizer build reads an 8 MB one, which takes the same paths,
// and one file of pieces instead of three.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "support/Capture.h"
#include "wycore/core/Utf.h"
#include "wycore/io/Block.h"
#include "wycore/io/StorageFile.h"
#include "wycore/io/TextStream.h"

namespace io {
namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr std::size_t kLongLine = 8u << 20;
constexpr unsigned kPieceFiles = 1;
#else
constexpr std::size_t kLongLine = 100u << 20;
constexpr unsigned kPieceFiles = 3;
#endif
constexpr int kDeep = 100000;

CBlock Read(const std::string& bytes) {
  CBlock root;
  CStorageFile::ReadText(CStorageFile::Decode(bytes), root);
  return root;
}

std::vector<std::string> Names(const CBlock& block) {
  std::vector<std::string> names;
  for (const CBlockPtr& item : block) names.push_back(wycore::Utf16ToUtf8(item->Name()));
  return names;
}

std::vector<int> Codes(const CBlock& block) {
  std::vector<int> codes;
  for (const XStreamioError& e : block.CollectErrors()) codes.push_back(e.Code());
  return codes;
}

bool KnownCode(int code) {
  return code == 3 || code == 7 || code == 11 || code == 12 || code == 13 || code == 14 ||
         code == 15;
}

TEST(StorageHostile, BrokenTextsGiveTheirErrorsAndKeepTheRest) {
  struct Case {
    const char* what;
    std::string text;
    std::vector<std::string> names;  // the top-level items read
    std::vector<int> codes;          // the errors, in line order
  };
  const Case cases[] = {
      {"unterminated quote", "A='abc\nB=1\n", {"B"}, {12}},
      {"unterminated quote at the end", "A=\"abc", {}, {12}},
      {"unterminated text block", "A=$begin_cdata$ x\nB=1\n", {}, {12}},
      {"unterminated block", "$begin 'a'\nX=1\n", {"a"}, {3}},
      {"$end with the wrong name", "$begin 'a'\nX=1\n$end 'b'\nY=2\n", {"a", "Y"}, {3}},
      {"$end without $begin", "$end 'a'\nX=1\n", {"X"}, {3}},
      {"$begin without a name", "$begin\nX=1\n$end 'x'\nY=2\n", {"", "Y"}, {3}},
      {"vector shorter than its count", "V[4000000000: 1]\nW=2\n", {"W"}, {13}},
      {"vector count out of range", "V[1e300: 1]\nW=2\n", {"W"}, {13}},
      {"function not closed", "F(1, 2\nG=1\n", {"G"}, {14}},
      {"NUL ends a line", std::string("A=1\0B=2\n", 8), {"A", "B"}, {}},
      {"NUL inside quotes", std::string("A='x\0y'\nB=1\n", 12), {"B"}, {12, 7}},
      {"invalid UTF-8 inside quotes", "A='\xc3\x28\xed\xa0\x80\xc0\xaf'\n", {"A"}, {}},
      {"invalid UTF-8 as a name", "\xff\xfe=1\nB=2\n", {"B"}, {11}},
      {"only a quote", "'", {}, {11}},
      {"only symbols", "=[](),:\n", {}, {11}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    wycore::test::CheckCapture checks;  // characters no rule accepts fire the lexer's check
    const CBlock root = Read(c.text);
    EXPECT_EQ(Names(root), c.names);
    EXPECT_EQ(Codes(root), c.codes);
  }
}

TEST(StorageHostile, InvalidUtf8BecomesReplacementCharacters) {
  const CBlock root = Read("A='\xc3\x28|\xed\xa0\x80|\xf0\x9f\x98'\n");
  AString text;
  ASSERT_TRUE(root.QueryValue(AString(u"A"), text));
  // A lead byte cut short by '(' gives one U+FFFD and the '(' stays; an encoded surrogate gives
  // one U+FFFD; a 4-byte sequence cut short by the quote gives one per byte.
  EXPECT_EQ(text, AString(u"\uFFFD(|\uFFFD|\uFFFD\uFFFD\uFFFD"));
  // The bulk decoder agrees with the general one on every split of ASCII and other bytes.
  std::mt19937 rng(11);
  for (int round = 0; round < 300; ++round) {
    std::string bytes(static_cast<std::size_t>(rng() % 64), '\0');
    for (char& b : bytes) b = static_cast<char>(rng() % 3 == 0 ? rng() % 0x80 : rng());
    EXPECT_EQ(CStorageFile::Decode(bytes), AString(wycore::Utf8ToUtf16(bytes))) << round;
  }
}

// Pieces of text, valid and broken, from which garbage is made.
const char* const kSoup[] = {"$begin",     "$end",
                             " 'n'",       "'",
                             "\"",         "[",
                             "]",          "(",
                             ")",          "=",
                             ",",          ":",
                             "\n",         "\r",
                             "\\",         "#inf",
                             "-#nan",      "#i",
                             "0x",         "0xff",
                             "1e",         "-.",
                             "7",          "1.5",
                             "$",          "\t",
                             "x",          "_",
                             "€",          "\0",
                             "\xff",       "\xc3",
                             "V[2:",       "$begin_cdata$",
                             "$end_cdata$"};

std::string SoupPiece(std::mt19937& rng) {
  const char* piece = kSoup[rng() % std::size(kSoup)];
  return *piece == '\0' ? std::string(1, '\0') : std::string(piece);
}

TEST(StorageHostile, GarbageNeverBreaksTheReader) {
  struct Generator {
    const char* what;
    std::string (*make)(std::mt19937&);
  };
  const Generator generators[] = {
      {"random bytes",
       [](std::mt19937& rng) {
         std::string s(static_cast<std::size_t>(rng() % 2000), '\0');
         for (char& b : s) b = static_cast<char>(rng());
         return s;
       }},
      {"token soup",
       [](std::mt19937& rng) {
         std::string s;
         const int n = static_cast<int>(rng() % 400);
         for (int i = 0; i < n; ++i) s += SoupPiece(rng);
         return s;
       }},
  };
  wycore::test::CheckCapture checks;
  for (const Generator& g : generators) {
    SCOPED_TRACE(g.what);
    std::mt19937 rng(2024);
    for (int round = 0; round < 300; ++round) {
      const CBlock root = Read(g.make(rng));
      for (int code : Codes(root)) EXPECT_TRUE(KnownCode(code)) << code;
      // What was read is written as text that reads back cleanly and writes back the same.
      const std::string written = CStorageFile::WriteText(root);
      const CBlock again = Read(written);
      EXPECT_TRUE(again.CollectErrors().empty()) << round;
      EXPECT_EQ(CStorageFile::WriteText(again), written) << round;
    }
  }
}

TEST(StorageHostile, FilesReadInPiecesAsTextsDo) {
  // CStorageFile::Read decodes and reads a file a piece (1 MiB) at a time. Files of a few
  // pieces, of good lines and garbage, with lines longer than a piece, text blocks and quoted
  // texts over several lines, multi-byte characters and CR line ends where pieces may cut them,
  // read exactly as their whole text does: same items, same errors at the same places.
  static const char* const kLines[] = {"$begin 'b'\n",
                                       "$begin 'd'\n",
                                       "$end 'b'\n",
                                       "Vector[3: 1, 2.5, -3]\n",
                                       "Name='quoted text'\n",
                                       "Text='two\\\nlines'\n",
                                       "Escaped='it\\'s'\n",
                                       "Wide='\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80'\n",
                                       "Mac=1\r",
                                       "Block=$begin_cdata$ a\nb $ c\n$end_cdata$\n",
                                       "Function(a, Key=1, W[1: 2], G(3))\n",
                                       "$end 'c'\n"};
  wycore::test::CheckCapture checks;
  char dir[] = "/tmp/wycore_hostile_XXXXXX";
  ASSERT_NE(::mkdtemp(dir), nullptr);
  const std::string path = std::string(dir) + "/file.wyp";
  for (unsigned seed = 1; seed <= kPieceFiles; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 rng(seed);
    std::string bytes = seed == 1 ? "\xef\xbb\xbf" : "";  // with a byte-order mark
    while (bytes.size() < (17u << 17)) {                  // a little over two pieces
      const unsigned pick = rng() % 100000;
      if (pick < 97000) {
        bytes += kLines[rng() % std::size(kLines)];
      } else if (pick < 99998) {
        for (int i = 0; i < 5; ++i) bytes += SoupPiece(rng);
        bytes += '\n';
      } else {
        bytes += "L='" + std::string(300000 + rng() % 1000, 'y') + "\xc3\xa9'\n";
      }
    }
    std::ofstream(path, std::ios::binary) << bytes;
    CBlock fromFile;
    AString ioError;
    ASSERT_TRUE(CStorageFile::Read(AString(path.c_str()), fromFile, &ioError));
    const CBlock fromText = Read(bytes);
    EXPECT_TRUE(fromFile.Equals(fromText));
    const std::vector<XStreamioError> a = fromFile.CollectErrors();
    const std::vector<XStreamioError> b = fromText.CollectErrors();
    ASSERT_EQ(a.size(), b.size());
    EXPECT_FALSE(a.empty());
    for (std::size_t i = 0; i < a.size(); ++i) {
      EXPECT_EQ(a[i].Text(), b[i].Text()) << i;
    }
    EXPECT_EQ(CStorageFile::WriteText(fromFile), CStorageFile::WriteText(fromText));
  }
  std::remove(path.c_str());
  ::rmdir(dir);
}

TEST(StorageHostile, ReadsAVeryLongLine) {
  // One text of kLongLine characters, then an item on the next line.
  std::string text = "A='";
  text.append(kLongLine, 'x');
  text += "'\nB=1\n";
  CBlock root = Read(text);
  ASSERT_EQ(Names(root), (std::vector<std::string>{"A", "B"}));
  const auto* value = static_cast<const CBlock_named_value*>(root.Find(AString(u"A")));
  EXPECT_EQ(value->Value().ACharLen(), kLongLine);
  EXPECT_TRUE(root.CollectErrors().empty());

  // A line of symbols where an item should start: one error, then the next line. (Every symbol
  // is a token of its own, so an eighth of the length is enough to show the linear skip.)
  text.assign(kLongLine / 8, '=');
  text += "\nB=1\n";
  root = Read(text);
  EXPECT_EQ(Names(root), (std::vector<std::string>{"B"}));
  EXPECT_EQ(Codes(root), (std::vector<int>{11}));
}

TEST(StorageHostile, RefusesNestingBeyondTheLimit) {
  const std::string tooDeep = "blocks and functions are nested deeper than 1000 levels";
  struct Case {
    const char* what;
    std::string text;
    std::vector<int> codes;
  };
  std::string blocks, unclosed, calls, mixed;
  for (int i = 0; i < kDeep; ++i) blocks += "$begin 'b'\n";
  unclosed = blocks;
  for (int i = 0; i < kDeep; ++i) blocks += "$end 'b'\n";
  calls = "F=1\nG";
  for (int i = 0; i < kDeep; ++i) calls += "(g";
  for (int i = 0; i < kDeep; ++i) calls += ")";
  for (int i = 0; i < 999; ++i) mixed += "$begin 'b'\n";
  mixed += "H(h(1))\n";  // the function takes the 1000th level, its argument the 1001st
  for (int i = 0; i < 999; ++i) mixed += "$end 'b'\n";
  const Case cases[] = {
      {"blocks", blocks + "after=1\n", {15}},
      {"blocks without $end", unclosed, std::vector<int>(1001, 3)},
      {"functions", calls + "\nafter=1\n", {15}},
      {"functions inside blocks", mixed + "after=1\n", {15}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const CBlock root = Read(c.text);
    std::vector<int> codes = Codes(root);
    std::sort(codes.begin(), codes.end());
    std::vector<int> expected = c.codes;
    if (c.codes.size() > 1) expected.back() = 15;  // the refused block, after the 1000 misses
    EXPECT_EQ(codes, expected);
    bool reported = false;
    for (const XStreamioError& e : root.CollectErrors()) {
      reported |= e.Code() == 15 && wycore::Utf16ToUtf8(e.Message()) == tooDeep;
    }
    EXPECT_TRUE(reported);
  }
}

// Counts the tokens of the structure, so that a deep tree can be written in linear time (the
// text form indents each level, which makes its size grow with the square of the depth).
class CountingStream : public CAbstract_ostream {
 public:
  CAbstract_ostream& WriteShort(std::int16_t) override { return Count(); }
  CAbstract_ostream& WriteInt(std::int32_t) override { return Count(); }
  CAbstract_ostream& WriteUnsignedShort(std::uint16_t) override { return Count(); }
  CAbstract_ostream& WriteUnsignedInt(std::uint32_t) override { return Count(); }
  CAbstract_ostream& WriteToken(const CToken&) override { return Count(); }
  bool Hex() const override { return false; }
  bool Hex(bool) override { return false; }
  std::size_t tokens = 0;

 private:
  CAbstract_ostream& Count() {
    ++tokens;
    return *this;
  }
};

TEST(StorageHostile, DeepBlockTreesNeedNoStack) {
  CBlock root(u"top");
  CBlock* bottom = &root;
  for (int i = 0; i < kDeep; ++i) {
    CBlockPtr child(new CBlock(u"level"));
    *bottom << child;
    bottom = static_cast<CBlock*>(child.get());
  }
  *bottom << CBlock_named_value(u"x", 1);

  CBlock copy(root);
  EXPECT_TRUE(copy.Equals(root));
  // Each level: the block, its list of one item and its name ("level": 5 * 2 + 3 bytes); the
  // top's name is inline; the bottom holds x=1, whose tokens are inline.
  const std::size_t level = sizeof(CBlock) + sizeof(CBlockPtr) + 13;
  EXPECT_EQ(root.SizeOf(true),
            sizeof(CBlock) + sizeof(CBlockPtr) + kDeep * level + sizeof(CBlock_named_value));
  EXPECT_EQ(copy.SizeOf(true), root.SizeOf(true));
  // Binary form: $begin 17 and $end 13 bytes, a name twice ("level" 15, "top" 11), an Eol after
  // $begin and after each item (1 each); x=1 takes 7 + 7 + 9.
  CountingStream counter;
  EXPECT_EQ(root.BinarySize(counter),
            (17u + 13 + 22 + 1 + 1) + kDeep * (17u + 13 + 30 + 1 + 1) + 23);
  // Tokens: $begin, name, Eol, $end, name a level, an Eol after each item, 3 tokens for x=1.
  root.write(counter);
  EXPECT_EQ(counter.tokens, 5u + 6u * kDeep + 4);
  EXPECT_FALSE(root.Error());

  bottom->Clear();  // the copy now differs only at the very bottom
  EXPECT_FALSE(copy.Equals(root));
  EXPECT_TRUE(copy.CollectErrors().empty());
}  // both trees are destroyed here, 100,000 levels each

TEST(StorageHostile, DeepFunctionsNeedNoStackAndReadBackRefused) {
  CBlock_func top(u"f");
  CBlock_func* bottom = &top;
  for (int i = 0; i < kDeep; ++i) {
    CBlockFuncPtr child(new CBlock_func(u"f"));
    *bottom << CBlockPtr(child);
    bottom = child.get();
  }
  *bottom << CBlock_value(42);

  int first = 0;
  EXPECT_TRUE(top.Query(first));  // the first scalar, at the bottom
  EXPECT_EQ(first, 42);
  const CBlock_func copy(top);
  EXPECT_TRUE(copy.Equals(top));
  EXPECT_EQ(copy.SizeOf(true), top.SizeOf(true));

  // Written, the nesting is linear text; read back, it is refused beyond the limit.
  CBlock holder;
  holder << CBlockFuncPtr(new CBlock_func(copy));
  const std::string text = CStorageFile::WriteText(holder);
  EXPECT_EQ(text.size(), 3u * (kDeep + 1) + std::string("42\n").size());  // "f(" and ")"
  const CBlock back = Read(text + "after=1\n");
  EXPECT_EQ(Names(back), (std::vector<std::string>{"after"}));
  EXPECT_EQ(Codes(back), (std::vector<int>{15}));
}

}  // namespace
}  // namespace io
