// SPDX-License-Identifier: Apache-2.0
//
// EvalKeyTest.cpp - `wycore eval --key`: evaluating an expression at a variation given as a
// variation key, alone and together with --var definitions, and its errors.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <filesystem>
#include <string>

namespace {

struct KeyRun {
  int status = -1;
  std::string output;  // standard output and standard error together
};

// `args` goes to the shell as written.
KeyRun Eval(const std::string& args) {
  const std::filesystem::path tool =
      std::filesystem::path(WYCORE_BINARY_DIR) / "tools" / "wycore" / "wycore";
  KeyRun run;
  if (!std::filesystem::exists(tool)) return run;
  // Appended piece by piece: GCC 12 warns falsely (-Wrestrict) on a chain of operator+ here.
  std::string command = "'";
  command += tool.string();
  command += "' eval ";
  command += args;
  command += " 2>&1";
  FILE* pipe = ::popen(command.c_str(), "r");
  if (pipe == nullptr) return run;
  char buf[4096];
  for (std::size_t n; (n = std::fread(buf, 1, sizeof buf, pipe)) > 0;) run.output.append(buf, n);
  const int status = ::pclose(pipe);
  run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return run;
}

TEST(EvalKey, EvaluatesAtTheVariationOfTheKey) {
  if (!std::filesystem::exists(std::filesystem::path(WYCORE_BINARY_DIR) / "tools" / "wycore" /
                               "wycore")) {
    GTEST_SKIP() << "the wycore tool is not built";
  }
  struct Case {
    const char* args;
    int status;
    const char* output;
  } const cases[] = {
      {"'w/h' --key \"w='3mm' h='2mm'\"", 0, "1.5\nw/h\n"},
      // The key's value replaces the definition's; the other definitions read it.
      {"'2*w + 1in' --var w=1mm --key \"W='3mm'\"", 0, "0.0314meter\n2*w + 1in\n"},
      {"'a/1mm' --var 'a=w+h' --key=\"w='3mm' h='2mm'\"", 0, "5\na/1mm\n"},
      {"'x' --key \"x='1' y 2\"", 1,
       "wycore eval: --key 'x='1' y 2' is not a variation key (Name='value' ...)\n"},
      {"'y' --key \"y='x*3' x='2'\"", 0, "6\ny\n"},
      {"'x' --key \"x='1'\" --key \"y='2'\"", 2, nullptr},
      {"'x' --key", 2, nullptr},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.args);
    const KeyRun run = Eval(c.args);
    EXPECT_EQ(run.status, c.status);
    if (c.output != nullptr) {
      EXPECT_EQ(run.output, c.output);
    } else {
      EXPECT_NE(run.output.find("--key"), std::string::npos) << run.output;
    }
  }
  const KeyRun bad = Eval("'x' --key \"x='1+*2'\"");
  EXPECT_EQ(bad.status, 1);
  EXPECT_EQ(bad.output.rfind("wycore eval: --key: While parsing expression", 0), 0u) << bad.output;
}

}  // namespace
