// SPDX-License-Identifier: Apache-2.0
//
// VerbTable.cpp - the list of verbs. Each verb file declares its entry point here.
#include "Verbs.h"

namespace wycore::tool {

// Add one declaration and one row per verb.
// int RunCheck(const Args&);  extern const char* const kCheckUsage;
int RunCheck(const Args&);
extern const char* const kCheckUsage;
int RunFmt(const Args&);
extern const char* const kFmtUsage;
int RunUnits(const Args&);
extern const char* const kUnitsUsage;
int RunConvert(const Args&);
extern const char* const kConvertUsage;
int RunEval(const Args&);
extern const char* const kEvalUsage;

const std::vector<Verb>& AllVerbs() {
  static const std::vector<Verb> verbs = {
      {"check", "read storage files and list every error with its line", kCheckUsage, RunCheck},
      {"fmt", "write a storage file in its canonical text form", kFmtUsage, RunFmt},
      {"units", "list the unit types, or the units of one type", kUnitsUsage, RunUnits},
      {"convert", "convert a value with its unit into another unit", kConvertUsage, RunConvert},
      {"eval", "evaluate an expression; print its value and its canonical text", kEvalUsage,
       RunEval},
  };
  return verbs;
}

}  // namespace wycore::tool
