// SPDX-License-Identifier: Apache-2.0
//
// ProcessLock.cpp - the library's one process-wide lock.
#include "wycore/core/ProcessLock.h"

namespace wycore {

std::recursive_mutex& ProcessLock() {
  static std::recursive_mutex lock;
  return lock;
}

}  // namespace wycore
