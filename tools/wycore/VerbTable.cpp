// SPDX-License-Identifier: Apache-2.0
//
// VerbTable.cpp - the list of verbs. Each verb file declares its entry point here.
#include "Verbs.h"

namespace wycore::tool {

// Add one declaration and one row per verb.
// int RunCheck(const Args&);  extern const char* const kCheckUsage;

const std::vector<Verb>& AllVerbs() {
  static const std::vector<Verb> verbs = {
  };
  return verbs;
}

}  // namespace wycore::tool
