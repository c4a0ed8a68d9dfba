// SPDX-License-Identifier: Apache-2.0
//
// StorageFile.h - io::CStorageFile: whole storage files to and from the block tree.
//
// A storage file is a sequence of items (usually one or a few blocks) in the text form of
// TextStream.h. Reading decodes the file (UTF-8 unless the caller names another encoding; a
// UTF-8 byte-order mark is skipped; bytes that are not UTF-8 become U+FFFD, which the lexer
// reports) and reads its items into an unnamed root block, collecting every error with its line
// and column (CBlock::CollectErrors). A UTF-8 file is read and decoded a piece at a time as the
// reader goes, so that reading holds little more than the tree it builds; other encodings are
// decoded whole first. Writing produces the canonical text of the root's items and replaces the
// file atomically: the text goes to a temporary file in the same directory, is flushed to disk,
// takes over the old file's permissions and is renamed over it, so that a crash leaves either
// the old file or the new one, never a mixture.
//
// Deliberately not here: locking against other processes writing the same file, and any binary
// form. Threading: the functions share no state; two threads may read different files at once.
#pragma once

#include <string>

#include "wycore/Export.h"
#include "wycore/io/AString.h"
#include "wycore/io/Block.h"

namespace io {

class WYCORE_API CStorageFile {
 public:
  // Reads the file at `path` into `root` (its items are replaced; its name is left alone).
  // False only when the file cannot be read, with the reason in `*ioError`; errors in the text
  // are collected in the blocks and do not make the result false.
  static bool Read(const AString& path, CBlock& root, AString* ioError = nullptr,
                   i18n::TEncoding encoding = i18n::kUtf8);
  // Reads the items of `text` into `root`. The second form reads the text in place instead of
  // copying it (a decoded file is twice the size of its bytes).
  static void ReadText(const AString& text, CBlock& root);
  static void ReadText(AString&& text, CBlock& root);
  // Decodes file bytes: UTF-8 (without its byte-order mark) or the named encoding.
  static AString Decode(const std::string& bytes, i18n::TEncoding encoding = i18n::kUtf8);

  // The canonical text of the root's items (one per line, blocks indented by tabs), encoded.
  static std::string WriteText(const CBlock& root, i18n::TEncoding encoding = i18n::kUtf8);
  // Replaces the file at `path` with WriteText(root), through a temporary file and a rename.
  static bool Write(const AString& path, const CBlock& root, AString* ioError = nullptr,
                    i18n::TEncoding encoding = i18n::kUtf8);
  // Replaces the file at `path` with `bytes` the same way.
  static bool WriteBytes(const AString& path, const std::string& bytes, AString* ioError = nullptr);
};

}  // namespace io
