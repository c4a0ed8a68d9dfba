// SPDX-License-Identifier: Apache-2.0
//
// StorageFileTest.cpp - whole storage files: reading with error positions, CR LF line ends, the
// byte-order mark, other encodings, and writing through a temporary file and a rename.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "support/Capture.h"
#include "wycore/core/Utf.h"
#include "wycore/io/StorageFile.h"

namespace {

namespace fs = std::filesystem;
using io::CBlock;
using io::CStorageFile;

AString P(const fs::path& p) { return AString(wycore::Utf8ToUtf16(p.string())); }

class StorageFileTest : public ::testing::Test {
 protected:
  void SetUp() override {
    char pattern[] = "/tmp/wycore_storage_XXXXXX";
    ASSERT_NE(::mkdtemp(pattern), nullptr);
    mDir = pattern;
  }
  void TearDown() override { fs::remove_all(mDir); }

  fs::path Put(const std::string& name, const std::string& bytes) {
    const fs::path path = mDir / name;
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
  }
  static std::string Get(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
  }

  fs::path mDir;
};

const char kProject[] =
    "$begin 'Project'\n"
    "\tName='caf\xc3\xa9'\n"
    "\tNotes='two\\\nlines'\n"
    "\tV[2: 1, 2]\n"
    "\t$begin 'Inner'\n"
    "\t\tx 5\n"
    "\t\ty=2\n"
    "\t$end 'Inner'\n"
    "$end 'Project'\n";

TEST_F(StorageFileTest, ReadsItemsAndErrorPositions) {
  CBlock root;
  AString ioError;
  ASSERT_TRUE(CStorageFile::Read(P(Put("p.wyp", kProject)), root, &ioError));
  const CBlock* project = root.FindBlock(u"Project");
  ASSERT_NE(project, nullptr);
  AString name;
  EXPECT_TRUE(project->QueryValue(u"Name", name));
  EXPECT_EQ(name, u"caf\u00e9");
  EXPECT_TRUE(project->QueryValue(u"Notes", name));
  EXPECT_EQ(name, u"two\nlines");
  const auto errors = root.CollectErrors();
  ASSERT_EQ(errors.size(), 1u);
  EXPECT_EQ(errors[0].Code(), 7);
  EXPECT_EQ(errors[0].Line(), 7);
  EXPECT_EQ(errors[0].Column(), 5);
}

TEST_F(StorageFileTest, CrLfLineEndsAndByteOrderMarkReadLikeLf) {
  std::string crlf;
  for (char c : std::string(kProject)) {
    if (c == '\n') crlf += '\r';
    crlf += c;
  }
  CBlock lf, dos;
  ASSERT_TRUE(CStorageFile::Read(P(Put("lf.wyp", kProject)), lf));
  ASSERT_TRUE(CStorageFile::Read(P(Put("crlf.wyp", "\xef\xbb\xbf" + crlf)), dos));
  // The continued text keeps its line end as written, CR LF; written out, that becomes a
  // line continuation again, so both files have the same canonical text.
  EXPECT_EQ(CStorageFile::WriteText(dos), CStorageFile::WriteText(lf));
  AString notes;
  EXPECT_TRUE(dos.FindBlock(u"Project")->QueryValue(u"Notes", notes));
  EXPECT_EQ(notes, u"two\r\nlines");
  const auto errors = dos.CollectErrors();
  ASSERT_EQ(errors.size(), 1u);
  EXPECT_EQ(errors[0].Line(), 7);
  EXPECT_EQ(errors[0].Column(), 5);
}

TEST_F(StorageFileTest, WritesThroughATemporaryFileAndKeepsPermissions) {
  const fs::path path = Put("out.wyp", "old contents");
  ASSERT_EQ(::chmod(path.c_str(), 0640), 0);
  CBlock root;
  CStorageFile::ReadText(AString(wycore::Utf8ToUtf16(kProject)), root);
  AString ioError;
  ASSERT_TRUE(CStorageFile::Write(P(path), root, &ioError)) << ioError.TStr();
  const std::string written = Get(path);
  EXPECT_EQ(written, CStorageFile::WriteText(root));
  struct stat info {};
  ASSERT_EQ(::stat(path.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0640u);
  EXPECT_EQ(std::distance(fs::directory_iterator(mDir), fs::directory_iterator()), 1);
  // What was written reads back to the same tree (the bad item is gone, not the rest).
  CBlock back;
  ASSERT_TRUE(CStorageFile::Read(P(path), back));
  EXPECT_TRUE(back.CollectErrors().empty());
  root.Error(true);
  EXPECT_TRUE(back.Equals(root));
}

TEST_F(StorageFileTest, ReportsFilesThatCannotBeReadOrWritten) {
  CBlock root;
  AString ioError;
  EXPECT_FALSE(CStorageFile::Read(P(mDir / "absent.wyp"), root, &ioError));
  EXPECT_EQ(ioError, P(mDir / "absent.wyp") + u": cannot open: No such file or directory");
  EXPECT_FALSE(CStorageFile::Read(P(mDir), root, &ioError));
  EXPECT_NE(ioError.find(u"not a regular file"), AString::npos);
  EXPECT_FALSE(CStorageFile::Write(P(mDir / "no" / "dir.wyp"), root, &ioError));
  EXPECT_NE(ioError.find(u"cannot create a temporary file"), AString::npos);
}

TEST_F(StorageFileTest, ReadsAndWritesOtherEncodings) {
  CBlock root;
  ASSERT_TRUE(
      CStorageFile::Read(P(Put("w.wyp", "Name='caf\xe9 \x80'\n")), root, nullptr, i18n::kCp1252));
  AString name;
  EXPECT_TRUE(root.QueryValue(u"Name", name));
  EXPECT_EQ(name, u"caf\u00e9 \u20ac");
  EXPECT_EQ(CStorageFile::WriteText(root, i18n::kCp1252), "Name='caf\xe9 \x80'\n");
  EXPECT_EQ(CStorageFile::WriteText(root), "Name='caf\xc3\xa9 \xe2\x82\xac'\n");
  // Bytes that are not UTF-8 become U+FFFD, which cannot start an item.
  wycore::test::CheckCapture checks;
  CBlock bad;
  ASSERT_TRUE(CStorageFile::Read(P(Put("bad.wyp", "a=1\n\xff=2\nb=3\n")), bad));
  EXPECT_EQ(bad.Size(), 2u);
  ASSERT_EQ(bad.CollectErrors().size(), 1u);
  EXPECT_EQ(bad.CollectErrors()[0].Code(), 11);
}

}  // namespace
