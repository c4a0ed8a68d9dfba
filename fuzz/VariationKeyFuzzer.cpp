// SPDX-License-Identifier: Apache-2.0
//
// VariationKeyFuzzer.cpp - fuzz target for reading variation keys.
//
// Beyond surviving any input (the parser, and the key variable server that reads every value
// text as a value or an expression), it checks the reader against the writer:
//  - ParseKey hands over exactly as many pairs as it reports (or stops with -1);
//  - the pairs read (P1), written again as a key (W1, through GetSubsetVariationKey excluding
//    nothing), read back completely as the same pairs (P2), up to the one normalisation the text
//    form makes on purpose (a CR LF line end inside a quoted text reads back as LF);
//  - writing P2 gives W1 again;
//  - GetValueString finds the first pair's value under its name;
//  - a key that was read completely names the same variation as W1 (AreVariationKeysEqual).
// A broken property is reported on standard error and aborts.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "wycore/core/Check.h"
#include "wycore/core/Messages.h"
#include "wycore/core/Utf.h"
#include "wycore/units/Units.h"
#include "wycore/value/Value.h"
#include "wycore/variables/VariableValues.h"
#include "wycore/variables/VariationKey.h"

namespace {

[[noreturn]] void Fail(const char* what, const AString& key) {
  std::fprintf(stderr, "VariationKeyFuzzer: %s\n%s\n", what, key.Serialize(i18n::kUtf8).c_str());
  std::abort();
}

class Collector : public VariationKeyParserBase {
 public:
  std::vector<std::pair<AString, AString>> mPairs;

 protected:
  void HandleNameValue(const AString& name, const AString& valueText) override {
    mPairs.emplace_back(name, valueText);
  }
};

AString Normalised(const AString& text) {
  std::u16string out = text;
  for (std::size_t p; (p = out.find(u"\r\n")) != std::u16string::npos;) out.erase(p, 1);
  return AString(std::move(out));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Malformed keys fire the parser's checks by design, and value texts that do not parse post
  // messages: keep both quiet. The unit and value managers live for the whole run.
  static const bool initialised = [] {
    wycore::SetCheckHandler([](const wycore::CheckReport&) {});
    wycore::SetMessageHandler([](const wycore::PostedMessage&) {});
    Units::InitializeUnits(nullptr);
    Value::InitializeValues();
    return true;
  }();
  (void)initialised;

  const AString key(
      wycore::Utf8ToUtf16(std::string_view(reinterpret_cast<const char*>(data), size)));

  Collector first;
  const int read = first.ParseKey(key);
  if (read != -1 && read != static_cast<int>(first.mPairs.size())) {
    Fail("ParseKey reports another count than it handed over", key);
  }

  const AString written = VariableValues::GetSubsetVariationKey(key, {}, true);
  Collector second;
  if (second.ParseKey(written) != static_cast<int>(first.mPairs.size())) {
    Fail("the written key does not read back completely", written);
  }
  for (std::size_t i = 0; i < first.mPairs.size(); ++i) {
    if (first.mPairs[i].first != second.mPairs[i].first ||
        Normalised(first.mPairs[i].second) != Normalised(second.mPairs[i].second)) {
      Fail("a pair read back differs from the pair read", written);
    }
  }
  if (VariableValues::GetSubsetVariationKey(written, {}, true) != written) {
    Fail("writing what was read changes the key", written);
  }
  if (!first.mPairs.empty()) {
    AString value;
    if (!VariableValues::GetValueString(key, first.mPairs[0].first, value) ||
        value != first.mPairs[0].second) {
      Fail("GetValueString misses the first pair", key);
    }
  }

  // The servers read every value text as a value: keep the inputs small enough for a fast run.
  // (A value with a CR LF line end is left out: it reads back with LF, which is another string.)
  if (read >= 0 && size <= 4096 && key.find(u'\r') == std::u16string::npos) {
    const VariationKeyVariableServer server(key);
    if (!VariableValues::AreVariationKeysEqual(key, written)) {
      Fail("a key and its rewritten form name different variations", key);
    }
  }
  return 0;
}
