// SPDX-License-Identifier: Apache-2.0
//
// Check.h - internal consistency checks that report and continue.
//
// WY_CHECK(condition) evaluates the condition once; when it is false it reports the source file,
// the line and the literal condition text through one process-wide handler and yields false, so
// the caller can fall back safely:
//
//     if (!WY_CHECK(unit_def != nullptr)) return 90;
//     WY_CHECK(!"Asking for UnitDefinition for unknown FUT");   // reported text: the literal string
//
// Checks guard programming errors only; user input is never checked with them. The default
// handler writes one line to the debug log (see DebugLog.h). Tests install a capturing handler.
#pragma once

#include <functional>
#include <string>

#include "wycore/Export.h"

namespace wycore {

struct CheckReport {
  std::string file;  // source path relative to the project
  int line = 0;
  std::string text;  // the literal condition, or the string of a !"..." check
};

using CheckHandler = std::function<void(const CheckReport&)>;

// Installs `handler` (an empty one restores the default) and returns the previous handler.
WYCORE_API CheckHandler SetCheckHandler(CheckHandler handler);

// Reports a failed check and returns false. `text` is the literal condition as written; the form
// !"message" is reported as message.
WYCORE_API bool ReportCheckFailure(const char* file, int line, const char* text);

}  // namespace wycore

#define WY_CHECK(condition) \
  (static_cast<bool>(condition) || ::wycore::ReportCheckFailure(__FILE__, __LINE__, #condition))
