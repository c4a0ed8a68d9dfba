// SPDX-License-Identifier: Apache-2.0
//
// Messages.cpp - posting numbered messages and filling in their catalogue texts.
#include "wycore/core/Messages.h"

#include <cstdio>
#include <mutex>
#include <utility>

#include "MessageCatalogue.h"
#include "wycore/core/Check.h"
#include "wycore/core/Utf.h"

namespace wycore {
namespace {

std::mutex& HandlerMutex() {
  static std::mutex mutex;
  return mutex;
}

MessageHandler& Handler() {
  static MessageHandler handler;
  return handler;
}

void DefaultHandler(const PostedMessage& message) {
  std::string line = std::string(SeverityName(message.severity)) + " " +
                     std::to_string(message.code) + ": " + Utf16ToUtf8(message.text) + "\n";
  std::fwrite(line.data(), 1, line.size(), stderr);
}

}  // namespace

MessageHandler SetMessageHandler(MessageHandler handler) {
  std::lock_guard<std::mutex> lock(HandlerMutex());
  return std::exchange(Handler(), std::move(handler));
}

const char* SeverityName(Severity severity) {
  switch (severity) {
    case Severity::Info:
      return "Info";
    case Severity::Warning:
      return "Warning";
    case Severity::Error:
      return "Error";
    case Severity::Fatal:
      return "Fatal";
  }
  return "Unknown";
}

std::u16string_view MessageTemplate(int code) { return detail::LookUpMessage(code); }

std::u16string FormatMessageText(int code, const std::vector<std::u16string>& args) {
  std::u16string_view pattern = MessageTemplate(code);
  std::u16string out;
  if (pattern.empty()) {
    std::string head = "message " + std::to_string(code);
    out.assign(head.begin(), head.end());
    for (const auto& arg : args) {
      out += u" ";
      out += arg;
    }
    return out;
  }
  for (size_t i = 0; i < pattern.size(); ++i) {
    if (pattern[i] == u'%' && i + 1 < pattern.size() && pattern[i + 1] >= u'1' &&
        pattern[i + 1] <= u'3') {
      size_t index = static_cast<size_t>(pattern[i + 1] - u'1');
      if (index < args.size()) out += args[index];
      ++i;
    } else {
      out.push_back(pattern[i]);
    }
  }
  return out;
}

void PostMessage(int code, Severity severity, std::vector<std::u16string> args) {
  if (!WY_CHECK(args.size() <= 3)) args.resize(3);
  PostedMessage message{code, severity, std::move(args), {}};
  message.text = FormatMessageText(code, message.args);
  MessageHandler handler;
  {
    std::lock_guard<std::mutex> lock(HandlerMutex());
    handler = Handler();
  }
  if (handler) {
    handler(message);
  } else {
    DefaultHandler(message);
  }
}

}  // namespace wycore
