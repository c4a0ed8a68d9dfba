// SPDX-License-Identifier: Apache-2.0
//
// DebugLog.cpp - the debug-line sink.
#include "wycore/core/DebugLog.h"

#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <utility>

#include "wycore/core/Utf.h"

namespace wycore {
namespace {

std::mutex& SinkMutex() {
  static std::mutex mutex;
  return mutex;
}

DebugSink& Sink() {
  static DebugSink sink;
  return sink;
}

bool DefaultSinkEnabled() {
  static const bool enabled = std::getenv("WYCORE_DEBUG_LOG") != nullptr;
  return enabled;
}

}  // namespace

DebugSink SetDebugSink(DebugSink sink) {
  std::lock_guard<std::mutex> lock(SinkMutex());
  return std::exchange(Sink(), std::move(sink));
}

void DebugLog(std::u16string_view line) {
  DebugSink sink;
  {
    std::lock_guard<std::mutex> lock(SinkMutex());
    sink = Sink();
  }
  if (sink) {
    sink(line);
  } else if (DefaultSinkEnabled()) {
    std::string text = Utf16ToUtf8(line);
    std::fwrite(text.data(), 1, text.size(), stderr);
  }
}

}  // namespace wycore
