// SPDX-License-Identifier: Apache-2.0
//
// ProcessLock.h - the library's one process-wide lock.
//
// The lock is recursive so that a guarded section may call another that takes it. Only the shared
// formatting buffer of AString::Format is guarded by it; everything else in these layers is used
// from one thread at a time or holds only per-object state.
#pragma once

#include <mutex>

#include "wycore/Export.h"

namespace wycore {

WYCORE_API std::recursive_mutex& ProcessLock();

}  // namespace wycore
