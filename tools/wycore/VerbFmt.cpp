// SPDX-License-Identifier: Apache-2.0
//
// VerbFmt.cpp - `wycore fmt [-i] FILE`: a storage file in its canonical text form.
//
// The canonical text is what the block tree writes for what it read: one item per line, blocks
// indented by one tab per level, texts single-quoted, numbers in their shortest exact form.
// With read errors, every item that could be read is still written and the errors are listed
// on standard error; rewriting in place is refused then, since it would drop the bad items.
#include <cstdio>
#include <string>

#include "Verbs.h"
#include "wycore/core/Utf.h"
#include "wycore/io/Block.h"
#include "wycore/io/StorageFile.h"

namespace wycore::tool {

extern const char* const kFmtUsage =
    "usage: wycore fmt [-i] [--encoding NAME] FILE\n"
    "  Reads the storage file FILE and writes its canonical text to standard output.\n"
    "  Read errors are listed on standard error as FILE:LINE: message (code N); the items\n"
    "  that could be read are still written, and the exit status is 1.\n"
    "  -i               rewrite FILE in place (through a temporary file and a rename);\n"
    "                   refused, leaving FILE untouched, when FILE has read errors\n"
    "  --encoding NAME  the file's encoding: utf-8 (default), system, oem, cp1252 or cp932\n"
    "  Exit status: 0 success, 1 read errors or unreadable file, 2 usage error.\n";

namespace {

const Verb& FmtVerb() {
  static const Verb verb{"fmt", "", kFmtUsage, nullptr};
  return verb;
}

}  // namespace

int RunFmt(const Args& args) {
  i18n::TEncoding encoding = i18n::kUtf8;
  bool inPlace = false;
  std::vector<std::string> files;
  for (std::size_t i = 0; i < args.size(); ++i) {
    if (args[i] == "-i" || args[i] == "--in-place") {
      inPlace = true;
    } else if (args[i] == "--encoding" || args[i] == "-e") {
      if (i + 1 >= args.size() || !ParseEncoding(args[i + 1], encoding)) {
        return UsageError(FmtVerb(), "--encoding needs utf-8, system, oem, cp1252 or cp932");
      }
      ++i;
    } else if (args[i].size() > 1 && args[i][0] == '-') {
      return UsageError(FmtVerb(), "unknown option '" + args[i] + "'");
    } else {
      files.push_back(args[i]);
    }
  }
  if (files.size() != 1) return UsageError(FmtVerb(), "name exactly one file");
  const std::string& file = files.front();
  const AString path(Utf8ToUtf16(file));

  io::CBlock root;
  AString ioError;
  if (!io::CStorageFile::Read(path, root, &ioError, encoding)) {
    std::fprintf(stderr, "%s\n", Utf16ToUtf8(ioError).c_str());
    return 1;
  }
  const std::vector<io::XStreamioError> errors = root.CollectErrors();
  for (const io::XStreamioError& error : errors) {
    std::fprintf(stderr, "%s:%d: %s (code %d)\n", file.c_str(), error.Line(),
                 Utf16ToUtf8(error.Message()).c_str(), error.Code());
  }
  const std::string text = io::CStorageFile::WriteText(root, encoding);
  if (!inPlace) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    return errors.empty() ? 0 : 1;
  }
  if (!errors.empty()) {
    std::fprintf(stderr, "wycore fmt: %s has read errors; not rewritten\n", file.c_str());
    return 1;
  }
  if (!io::CStorageFile::WriteBytes(path, text, &ioError)) {
    std::fprintf(stderr, "%s\n", Utf16ToUtf8(ioError).c_str());
    return 1;
  }
  return 0;
}

}  // namespace wycore::tool
