// SPDX-License-Identifier: Apache-2.0
//
// EvalVerbTest.cpp - `wycore eval` as scripts run it: the two output lines, --var definitions
// in any order, and the errors on standard error with their exit statuses.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace {

namespace fs = std::filesystem;

struct EvalRun {
  int status = -1;
  std::string out;
  std::string err;
};

class EvalVerb : public ::testing::Test {
 protected:
  void SetUp() override {
    mTool = fs::path(WYCORE_BINARY_DIR) / "tools" / "wycore" / "wycore";
    if (!fs::exists(mTool)) GTEST_SKIP() << "the wycore tool is not built";
    char pattern[] = "/tmp/wycore_eval_XXXXXX";
    ASSERT_NE(::mkdtemp(pattern), nullptr);
    mDir = pattern;
  }
  void TearDown() override {
    if (!mDir.empty()) fs::remove_all(mDir);
  }

  // `args` is passed to the shell as written (quote what needs quoting).
  EvalRun Eval(const std::string& args) {
    const fs::path errFile = mDir / "stderr.txt";
    std::string command = "'";
    command += mTool.string();
    command += "' eval ";
    command += args;
    command += " 2>'";
    command += errFile.string();
    command += "'";
    EvalRun run;
    FILE* pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr) return run;
    char buf[4096];
    for (std::size_t n; (n = std::fread(buf, 1, sizeof buf, pipe)) > 0;) run.out.append(buf, n);
    const int status = ::pclose(pipe);
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    std::ifstream in(errFile, std::ios::binary);
    run.err.assign(std::istreambuf_iterator<char>(in), {});
    return run;
  }

  fs::path mTool;
  fs::path mDir;
};

TEST_F(EvalVerb, PrintsTheValueWithUnitsAndTheCanonicalText) {
  struct Case {
    const char* args;
    const char* out;
  };
  const Case cases[] = {
      {"'2*w + 1in' --var w=3mm", "0.0314meter\n2*w + 1in\n"},
      {"'(a+b)*c' --var a=1 --var b=2 --var c=3", "9\n(a + b)*c\n"},
      {"'a+(-b)' --var a=1 --var b=2", "-1\na - b\n"},
      {"'1/3'", "0.333333333333333\n1/3\n"},
      {"'3 mm+2mm'", "5mm\n3mm + 2mm\n"},
      {"'2j*(1+1j)'", "-2 + 2j\n2j*(1 + 1j)\n"},
      {"'max(A, 2)' --var=a=5", "5\nmax(a, 2)\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.args);
    const EvalRun run = Eval(c.args);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, c.out);
    EXPECT_EQ(run.err, "");
  }
}

TEST_F(EvalVerb, DefinitionsMayReadEachOtherInAnyOrder) {
  // "a" is read before its definition sets its text, yet the units of b come through.
  const EvalRun run = Eval("'a*2' --var a=b+c --var c=d --var b=1mm --var d=2mm");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, "6mm\na*2\n");
}

TEST_F(EvalVerb, ReportsErrorsOnStandardError) {
  const EvalRun parse = Eval("'a+' --var a=1");
  EXPECT_EQ(parse.status, 1);
  EXPECT_EQ(parse.out, "");
  EXPECT_NE(parse.err.find("While parsing expression: \"a+\""), std::string::npos) << parse.err;

  const EvalRun cycle = Eval("a --var a=b --var b=a");
  EXPECT_EQ(cycle.status, 1);
  EXPECT_EQ(cycle.out, "");
  EXPECT_NE(cycle.err.find("--var b:"), std::string::npos) << cycle.err;

  const EvalRun badDefinition = Eval("a --var 'a=1+*2'");
  EXPECT_EQ(badDefinition.status, 1);
  EXPECT_NE(badDefinition.err.find("--var a: While parsing expression"), std::string::npos)
      << badDefinition.err;

  EXPECT_EQ(Eval("").status, 2);
  EXPECT_EQ(Eval("1 2").status, 2);
  EXPECT_EQ(Eval("1 --var").status, 2);
  EXPECT_EQ(Eval("1 --var 2x=1").status, 2);
  EXPECT_EQ(Eval("1 --var a=1 --var A=2").status, 1);
  const EvalRun help = Eval("--help");
  EXPECT_EQ(help.status, 0);
  EXPECT_EQ(help.out.rfind("usage: wycore eval", 0), 0u);
}

}  // namespace
