// SPDX-License-Identifier: Apache-2.0
//
// BlockReadFuzzer.cpp - fuzz target for reading storage text into the block tree.
//
// Beyond surviving any input, it checks stability: whatever was read (T1) is written (W1); W1
// must read back without a single error (T2), T2 must write exactly W1 again, and T2 must equal
// T1 up to the normalisations the text form makes on purpose:
//  - a line end inside a quoted text (CR LF, or carriage returns running into LF) reads back
//    as LF;
//  - the keywords $begin and $end as values are written quoted, so they read back as texts;
//  - a Short (only "0x" makes one) is written as 0 and reads back as an Int.
// A broken property is reported on standard error and aborts.
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <typeinfo>

#include "wycore/core/Check.h"
#include "wycore/core/Utf.h"
#include "wycore/io/Block.h"
#include "wycore/io/StorageFile.h"

namespace {

using io::CToken;

[[noreturn]] void Fail(const char* what, const std::string& detail) {
  std::fprintf(stderr, "BlockReadFuzzer: %s\n%s\n", what, detail.c_str());
  std::abort();
}

AString NormalisedText(const CToken& token) {
  std::u16string text = token.GetAString();
  if (token.Type() == CToken::SingleQuotedText || token.Type() == CToken::DoubleQuotedText) {
    for (std::size_t p; (p = text.find(u"\r\n")) != std::u16string::npos;) text.erase(p, 1);
  }
  return AString(std::move(text));
}

CToken::TTokenType NormalisedKind(const CToken& token) {
  if (token.Type() == CToken::Short) return CToken::Int;
  if (token.IsKeyword() && (token.GetAString() == u"$begin" || token.GetAString() == u"$end")) {
    return CToken::SingleQuotedText;
  }
  return token.Type();
}

bool SameToken(const CToken& a, const CToken& b) {
  if (NormalisedKind(a) != NormalisedKind(b)) return false;
  if (a.IsNumber()) {
    return a.Value() == b.Value() || (std::isnan(a.Value()) && std::isnan(b.Value()));
  }
  return NormalisedText(a) == NormalisedText(b);
}

bool SameItem(const io::CBlock_item& a, const io::CBlock_item& b) {
  if (typeid(a) != typeid(b) || !SameToken(a.NameToken(), b.NameToken())) return false;
  if (a.IsBlock() || a.IsFunc()) {
    const auto& ia = a.IsBlock() ? static_cast<const io::CBlock&>(a).Items()
                                 : static_cast<const io::CBlock_func&>(a).Args();
    const auto& ib = b.IsBlock() ? static_cast<const io::CBlock&>(b).Items()
                                 : static_cast<const io::CBlock_func&>(b).Args();
    if (ia.size() != ib.size()) return false;
    for (std::size_t i = 0; i < ia.size(); ++i) {
      if (!SameItem(*ia[i], *ib[i])) return false;
    }
    return true;
  }
  if (a.IsVec()) {
    const auto& ta = static_cast<const io::CBlock_vec&>(a).Tokens();
    const auto& tb = static_cast<const io::CBlock_vec&>(b).Tokens();
    if (ta.size() != tb.size()) return false;
    for (std::size_t i = 0; i < ta.size(); ++i) {
      if (!SameToken(ta[i], tb[i])) return false;
    }
    return true;
  }
  return SameToken(static_cast<const io::CBlock_value&>(a).Value(),
                   static_cast<const io::CBlock_value&>(b).Value());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Unknown characters fire the lexer's check by design; keep them quiet.
  static const bool quiet = [] {
    wycore::SetCheckHandler([](const wycore::CheckReport&) {});
    return true;
  }();
  (void)quiet;

  const std::string input(reinterpret_cast<const char*>(data), size);
  io::CBlock first;
  io::CStorageFile::ReadText(io::CStorageFile::Decode(input), first);
  const std::string written = io::CStorageFile::WriteText(first);

  io::CBlock second;
  io::CStorageFile::ReadText(io::CStorageFile::Decode(written), second);
  const auto errors = second.CollectErrors();
  if (!errors.empty()) Fail("the writer's text does not read cleanly", errors.front().what());
  const std::string rewritten = io::CStorageFile::WriteText(second);
  if (rewritten != written) Fail("writing what was read changes the text", written);
  if (!SameItem(first, second)) Fail("the tree read back differs from the tree read", written);
  return 0;
}
