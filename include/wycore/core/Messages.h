// SPDX-License-Identifier: Apache-2.0
//
// Messages.h - numbered user-facing messages and their catalogue.
//
// A component that must tell the user something (an expression that does not parse, a variable
// that depends on itself, a material that cannot be read) posts a numbered message with a severity
// and up to three text arguments. The texts live in one catalogue table (MessageCatalogue.cpp);
// a text refers to its arguments as %1, %2 and %3. Posting hands the message to one process-wide
// handler; the default handler writes "severity code: text" to standard error. Applications and
// tests install their own handler.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "wycore/Export.h"

namespace wycore {

enum class Severity { Info, Warning, Error, Fatal };

struct PostedMessage {
  int code = 0;
  Severity severity = Severity::Info;
  std::vector<std::u16string> args;  // at most three
  std::u16string text;               // the catalogue text with the arguments filled in
};

using MessageHandler = std::function<void(const PostedMessage&)>;

// Installs `handler` (an empty one restores the default) and returns the previous handler.
WYCORE_API MessageHandler SetMessageHandler(MessageHandler handler);

// Posts message `code`. Arguments beyond the third are ignored (and fire a check).
WYCORE_API void PostMessage(int code, Severity severity, std::vector<std::u16string> args = {});

// The catalogue text of `code` with its %1..%3 placeholders, or an empty view for an unknown code.
WYCORE_API std::u16string_view MessageTemplate(int code);

// The catalogue text of `code` with the arguments filled in. An unknown code gives
// "message <code>" followed by the arguments, so that nothing posted is ever lost.
WYCORE_API std::u16string FormatMessageText(int code, const std::vector<std::u16string>& args);

// "Info", "Warning", "Error" or "Fatal".
WYCORE_API const char* SeverityName(Severity severity);

}  // namespace wycore
