// SPDX-License-Identifier: Apache-2.0
//
// Verbs.h - the verbs of the wycore command.
//
// Each verb lives in its own Verb<Name>.cpp and is listed once in the table of main.cpp. A verb
// receives its own arguments (without the verb's name), writes its results to standard output and
// its diagnostics to standard error, and returns the process exit status: 0 success, 1 when the
// input had errors, 2 for a usage error.
#pragma once

#include <string>
#include <vector>

#include "wycore/io/AString.h"

namespace wycore::tool {

using Args = std::vector<std::string>;

struct Verb {
  const char* name;
  const char* summary;  // one line for `wycore --help`
  const char* usage;    // the full text of `wycore VERB --help`
  int (*run)(const Args& args);
};

// The verbs, in the order `wycore --help` lists them.
const std::vector<Verb>& AllVerbs();

// True when args hold --help or -h; verbs call this first.
bool WantsHelp(const Args& args);

// Reads the name of a file encoding as the verbs' --encoding option takes it: utf-8 (or utf8),
// system, oem, cp1252, cp932. False for any other name.
bool ParseEncoding(const std::string& name, i18n::TEncoding& encoding);

// Prints "wycore VERB: message" and the verb's usage line to standard error; returns 2.
int UsageError(const Verb& verb, const std::string& message);

}  // namespace wycore::tool
