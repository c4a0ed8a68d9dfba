// SPDX-License-Identifier: Apache-2.0
//
// CoreTest.cpp - checks, debug log, numbered messages, the process lock and UTF transcoding.
#include <gtest/gtest.h>

#include <thread>

#include "support/Capture.h"
#include "wycore/core/ProcessLock.h"
#include "wycore/core/Utf.h"

namespace wycore {
namespace {

TEST(Check, ReportsFileLineAndLiteralCondition) {
  test::CheckCapture checks;
  int value = 3;
  const int line = __LINE__ + 1;
  bool ok = WY_CHECK(value == 4);
  EXPECT_FALSE(ok);
  ASSERT_EQ(checks.Reports().size(), 1u);
  EXPECT_EQ(checks.Reports()[0].text, "value == 4");
  EXPECT_EQ(checks.Reports()[0].line, line);
  EXPECT_EQ(checks.Reports()[0].file, "tests/core/CoreTest.cpp");
}

TEST(Check, PassingCheckReportsNothingAndEvaluatesOnce) {
  test::CheckCapture checks;
  int calls = 0;
  EXPECT_TRUE(WY_CHECK(++calls == 1));
  EXPECT_EQ(calls, 1);
  EXPECT_TRUE(checks.None());
}

TEST(Check, NotStringFormReportsTheMessage) {
  test::CheckCapture checks;
  WY_CHECK(!"Asking for UnitDefinition for unknown FUT");
  EXPECT_TRUE(checks.Fired("Asking for UnitDefinition for unknown FUT"));
}

TEST(Check, DefaultHandlerWritesOneDebugLine) {
  CheckHandler outer = SetCheckHandler({});
  test::DebugCapture debug;
  WY_CHECK(1 + 1 == 3);
  SetCheckHandler(std::move(outer));
  ASSERT_EQ(debug.Lines().size(), 1u);
  std::string line = Utf16ToUtf8(debug.Lines()[0]);
  EXPECT_NE(line.find("check failed: 1 + 1 == 3"), std::string::npos);
  EXPECT_EQ(line.back(), '\n');
}

TEST(Check, CapturesNestAndRestore) {
  test::CheckCapture outer;
  {
    test::CheckCapture inner;
    WY_CHECK(false);
    EXPECT_EQ(inner.Reports().size(), 1u);
  }
  WY_CHECK(false && "outer");
  ASSERT_EQ(outer.Reports().size(), 1u);
  EXPECT_EQ(outer.Reports()[0].text, "false && \"outer\"");
}

TEST(Messages, PostFillsCatalogueTextAndArguments) {
  test::MessageCapture messages;
  PostMessage(24540, Severity::Error, {u"w", u"w = 2*w"});
  ASSERT_EQ(messages.Messages().size(), 1u);
  const PostedMessage& m = messages.Messages()[0];
  EXPECT_EQ(m.code, 24540);
  EXPECT_EQ(m.severity, Severity::Error);
  EXPECT_EQ(m.text, u"Variable 'w' cannot be defined in terms of itself: w = 2*w");
  EXPECT_TRUE(messages.Posted(24540));
  EXPECT_FALSE(messages.Posted(1));
}

TEST(Messages, UnknownCodeKeepsItsArguments) {
  EXPECT_TRUE(MessageTemplate(1).empty());
  EXPECT_EQ(FormatMessageText(1, {u"a", u"b"}), u"message 1 a b");
}

TEST(Messages, MissingArgumentsLeaveEmptyText) {
  EXPECT_EQ(FormatMessageText(24540, {}), u"Variable '' cannot be defined in terms of itself: ");
}

TEST(Messages, MoreThanThreeArgumentsFireACheck) {
  test::CheckCapture checks;
  test::MessageCapture messages;
  PostMessage(24540, Severity::Warning, {u"a", u"b", u"c", u"d"});
  EXPECT_TRUE(checks.Fired("args.size() <= 3"));
  ASSERT_EQ(messages.Messages().size(), 1u);
  EXPECT_EQ(messages.Messages()[0].args.size(), 3u);
}

TEST(Messages, SeverityNames) {
  EXPECT_STREQ(SeverityName(Severity::Info), "Info");
  EXPECT_STREQ(SeverityName(Severity::Warning), "Warning");
  EXPECT_STREQ(SeverityName(Severity::Error), "Error");
  EXPECT_STREQ(SeverityName(Severity::Fatal), "Fatal");
}

TEST(ProcessLock, IsRecursiveAndShared) {
  std::lock_guard<std::recursive_mutex> outer(ProcessLock());
  std::lock_guard<std::recursive_mutex> inner(ProcessLock());
  bool other_got_it = true;
  std::thread t([&] { other_got_it = ProcessLock().try_lock(); });
  t.join();
  EXPECT_FALSE(other_got_it);
}

TEST(Utf, RoundTripsEveryPlane) {
  std::u16string text = u"a\u00e9\u20ac\U0001F600z";
  EXPECT_EQ(Utf16ToUtf8(text), "a\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80z");
  EXPECT_EQ(Utf8ToUtf16(Utf16ToUtf8(text)), text);
  EXPECT_EQ(Utf32ToUtf16(Utf16ToUtf32(text)), text);
  EXPECT_EQ(Utf16ToUtf32(text).size(), 5u);
}

TEST(Utf, InvalidInputBecomesReplacementCharacters) {
  struct Case {
    std::string input;
    std::u16string expected;
  } cases[] = {
      {"\xff", u"\uFFFD"},              // never a lead byte
      {"a\xc3", u"a\uFFFD"},            // truncated sequence
      {"\xc0\xaf", u"\uFFFD\uFFFD"},    // overlong '/'
      {"\xe2\x28\xa1", u"\uFFFD(\uFFFD"},  // bad continuation
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.input);
    EXPECT_EQ(Utf8ToUtf16(c.input), c.expected);
  }
  EXPECT_EQ(Utf16ToUtf8(std::u16string(1, u'\xD800')), "\xef\xbf\xbd");
}

}  // namespace
}  // namespace wycore
