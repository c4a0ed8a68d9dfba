// SPDX-License-Identifier: Apache-2.0
//
// DebugLog.h - the one sink for the library's debug lines.
//
// Debug lines are the newline-terminated diagnostic texts that the components write when they meet
// an unknown name or an inconsistent request ("Asking for UnitDefinition for unknown FUT=7\n").
// They are for developers, not users: by default they are discarded, unless the environment
// variable WYCORE_DEBUG_LOG is set (read once), in which case they go to standard error as UTF-8.
// Tests install a capturing sink.
#pragma once

#include <functional>
#include <string_view>

#include "wycore/Export.h"

namespace wycore {

using DebugSink = std::function<void(std::u16string_view line)>;

// Installs `sink` (an empty one restores the default) and returns the previous sink.
WYCORE_API DebugSink SetDebugSink(DebugSink sink);

// Writes one debug line, as given (callers end it with '\n').
WYCORE_API void DebugLog(std::u16string_view line);

}  // namespace wycore
