// SPDX-License-Identifier: Apache-2.0
//
// StorageVerbsTest.cpp - `wycore check` and `wycore fmt` as a user runs them: output lines,
// exit statuses, and in-place rewriting that refuses files with read errors.
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

struct ToolRun {
  int status;
  std::string out;
};

class StorageVerbs : public ::testing::Test {
 protected:
  void SetUp() override {
    mTool = fs::path(WYCORE_BINARY_DIR) / "tools" / "wycore" / "wycore";
    if (!fs::exists(mTool)) GTEST_SKIP() << "the wycore tool is not built";
    char pattern[] = "/tmp/wycore_verbs_XXXXXX";
    ASSERT_NE(::mkdtemp(pattern), nullptr);
    mDir = pattern;
  }
  void TearDown() override {
    if (!mDir.empty()) fs::remove_all(mDir);
  }

  // Runs the tool in the temporary directory; standard error goes to `err` when given.
  ToolRun Tool(const std::string& args, bool withStderr = false) {
    const std::string command = "cd '" + mDir.string() + "' && '" + mTool.string() + "' " + args +
                                (withStderr ? " 2>&1" : " 2>/dev/null");
    FILE* pipe = ::popen(command.c_str(), "r");
    ToolRun run{-1, {}};
    if (pipe == nullptr) return run;
    char buf[4096];
    for (std::size_t n; (n = std::fread(buf, 1, sizeof buf, pipe)) > 0;) run.out.append(buf, n);
    const int status = ::pclose(pipe);
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
  }
  void Put(const std::string& name, const std::string& text) {
    std::ofstream(mDir / name, std::ios::binary) << text;
  }
  std::string Get(const std::string& name) {
    std::ifstream in(mDir / name, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
  }

  fs::path mTool;
  fs::path mDir;
};

TEST_F(StorageVerbs, CheckListsEveryErrorWithFileAndLine) {
  Put("good.wyp", "$begin 'A'\n x=1\n $begin 'B'\n $end 'B'\n$end 'A'\n");
  Put("bad.wyp", "$begin 'A'\n x 1\n ]\n y=2\n");
  const ToolRun run = Tool("check good.wyp bad.wyp");
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.out,
            "good.wyp: ok (2 blocks, 3 items)\n"
            "bad.wyp:2: 'x' is followed by the value 1, which starts no item (expected '=', '(' "
            "or '[') (code 7)\n"
            "bad.wyp:3: the symbol ']' cannot start an item (code 11)\n"
            "bad.wyp:5: missing $end 'A' (the block begins on line 1) (code 3)\n");
  EXPECT_EQ(Tool("check good.wyp").status, 0);
  EXPECT_EQ(Tool("check absent.wyp").status, 1);
  EXPECT_EQ(Tool("check").status, 2);
  EXPECT_EQ(Tool("check --bogus good.wyp").status, 2);
  const ToolRun help = Tool("check --help");
  EXPECT_EQ(help.status, 0);
  EXPECT_EQ(help.out.rfind("usage: wycore check", 0), 0u);
}

TEST_F(StorageVerbs, FmtWritesCanonicalTextAndKeepsWhatItCouldRead) {
  Put("p.wyp", "$begin 'A'\n  x = 1.5e3\n  v[2:a,b]\n  bad 1\n  f( 1 ,k=2 )\n$end 'A'\n");
  ToolRun run = Tool("fmt p.wyp");
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.out, "$begin 'A'\n\tx=1500.0\n\tv[2: a, b]\n\tf(1, k=2)\n$end 'A'\n");
  run = Tool("fmt p.wyp", true);
  EXPECT_NE(run.out.find("p.wyp:4: 'bad' is followed by"), std::string::npos);

  // In place: refused with read errors, done through a rename without them.
  EXPECT_EQ(Tool("fmt -i p.wyp").status, 1);
  EXPECT_EQ(Get("p.wyp").substr(0, 14), "$begin 'A'\n  x");
  Put("q.wyp", "a = 'it\\'s'\nb[0:]\n");
  EXPECT_EQ(Tool("fmt -i q.wyp").status, 0);
  EXPECT_EQ(Get("q.wyp"), "a='it\\'s'\nb[0:]\n");
  EXPECT_EQ(std::distance(fs::directory_iterator(mDir), fs::directory_iterator()), 2);
  EXPECT_EQ(Tool("fmt q.wyp").out, Get("q.wyp"));
  EXPECT_EQ(Tool("fmt").status, 2);
}

}  // namespace
