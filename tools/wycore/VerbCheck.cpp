// SPDX-License-Identifier: Apache-2.0
//
// VerbCheck.cpp - `wycore check FILE...`: reads storage files and lists every error.
//
// Each error goes to standard output as "FILE:LINE: message (code N)", in line order; a file
// without errors gets one "FILE: ok" line with its item counts. The exit status is 1 when any
// file has errors or cannot be read.
#include <cstdio>
#include <string>

#include "Verbs.h"
#include "wycore/core/Utf.h"
#include "wycore/io/Block.h"
#include "wycore/io/StorageFile.h"

namespace wycore::tool {

extern const char* const kCheckUsage =
    "usage: wycore check [--encoding NAME] FILE...\n"
    "  Reads each storage file and lists every error as FILE:LINE: message (code N).\n"
    "  A file without errors is reported as FILE: ok, with its numbers of blocks and items.\n"
    "  --encoding NAME  the files' encoding: utf-8 (default), system, oem, cp1252 or cp932\n"
    "  Exit status: 0 all files clean, 1 errors or unreadable files, 2 usage error.\n";

namespace {

const Verb& CheckVerb() {
  static const Verb verb{"check", "", kCheckUsage, nullptr};
  return verb;
}

void Count(const io::CBlock& block, long& blocks, long& items) {
  for (const io::CBlockPtr& item : block) {
    ++items;
    if (item->IsBlock()) {
      ++blocks;
      Count(static_cast<const io::CBlock&>(*item), blocks, items);
    }
  }
}

}  // namespace

int RunCheck(const Args& args) {
  i18n::TEncoding encoding = i18n::kUtf8;
  std::vector<std::string> files;
  for (std::size_t i = 0; i < args.size(); ++i) {
    if (args[i] == "--encoding" || args[i] == "-e") {
      if (i + 1 >= args.size() || !ParseEncoding(args[i + 1], encoding)) {
        return UsageError(CheckVerb(), "--encoding needs utf-8, system, oem, cp1252 or cp932");
      }
      ++i;
    } else if (args[i].size() > 1 && args[i][0] == '-') {
      return UsageError(CheckVerb(), "unknown option '" + args[i] + "'");
    } else {
      files.push_back(args[i]);
    }
  }
  if (files.empty()) return UsageError(CheckVerb(), "no file named");

  int status = 0;
  for (const std::string& file : files) {
    io::CBlock root;
    AString ioError;
    if (!io::CStorageFile::Read(AString(Utf8ToUtf16(file)), root, &ioError, encoding)) {
      std::fprintf(stderr, "%s\n", Utf16ToUtf8(ioError).c_str());
      status = 1;
      continue;
    }
    const std::vector<io::XStreamioError> errors = root.CollectErrors();
    for (const io::XStreamioError& error : errors) {
      std::printf("%s:%d: %s (code %d)\n", file.c_str(), error.Line(),
                  Utf16ToUtf8(error.Message()).c_str(), error.Code());
    }
    if (errors.empty()) {
      long blocks = 0;
      long items = 0;
      Count(root, blocks, items);
      std::printf("%s: ok (%ld blocks, %ld items)\n", file.c_str(), blocks, items);
    } else {
      status = 1;
    }
  }
  return status;
}

}  // namespace wycore::tool
