// SPDX-License-Identifier: Apache-2.0
//
// Check.cpp - the process-wide check handler.
#include "wycore/core/Check.h"

#include <cstring>
#include <mutex>
#include <utility>

#include "wycore/core/DebugLog.h"
#include "wycore/core/Utf.h"

namespace wycore {
namespace {

std::mutex& HandlerMutex() {
  static std::mutex mutex;
  return mutex;
}

CheckHandler& Handler() {
  static CheckHandler handler;
  return handler;
}

void DefaultHandler(const CheckReport& report) {
  std::string line = report.file + "(" + std::to_string(report.line) + "): check failed: " +
                     report.text + "\n";
  DebugLog(Utf8ToUtf16(line));
}

// `!"message"` reports the message itself, the way a reader of the log wants it.
std::string ReportedText(const char* text) {
  std::string_view view(text != nullptr ? text : "");
  if (view.size() >= 3 && view.front() == '!' && view[1] == '"' && view.back() == '"') {
    view = view.substr(2, view.size() - 3);
  }
  return std::string(view);
}

}  // namespace

CheckHandler SetCheckHandler(CheckHandler handler) {
  std::lock_guard<std::mutex> lock(HandlerMutex());
  return std::exchange(Handler(), std::move(handler));
}

bool ReportCheckFailure(const char* file, int line, const char* text) {
  CheckReport report{file != nullptr ? file : "", line, ReportedText(text)};
  CheckHandler handler;
  {
    std::lock_guard<std::mutex> lock(HandlerMutex());
    handler = Handler();
  }
  if (handler) {
    handler(report);
  } else {
    DefaultHandler(report);
  }
  return false;
}

}  // namespace wycore
