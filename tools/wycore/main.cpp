// SPDX-License-Identifier: Apache-2.0
//
// main.cpp - the wycore command: checks, formats and inspects storage files, units and
// expressions from the shell. See `wycore --help`.
#include <cstdio>
#include <cstring>

#include "Verbs.h"

namespace wycore::tool {

bool WantsHelp(const Args& args) {
  for (const auto& a : args) {
    if (a == "--help" || a == "-h") return true;
  }
  return false;
}

bool ParseEncoding(const std::string& name, i18n::TEncoding& encoding) {
  if (name == "utf-8" || name == "utf8") {
    encoding = i18n::kUtf8;
  } else if (name == "system") {
    encoding = i18n::kSystemEncoding;
  } else if (name == "oem") {
    encoding = i18n::kOem;
  } else if (name == "cp1252") {
    encoding = i18n::kCp1252;
  } else if (name == "cp932") {
    encoding = i18n::kCp932;
  } else {
    return false;
  }
  return true;
}

int UsageError(const Verb& verb, const std::string& message) {
  std::fprintf(stderr, "wycore %s: %s\n%s", verb.name, message.c_str(), verb.usage);
  return 2;
}

namespace {

void PrintHelp(std::FILE* out) {
  std::fprintf(out,
               "usage: wycore VERB [ARGS...]\n"
               "       wycore VERB --help\n\n"
               "verbs:\n");
  for (const Verb& verb : AllVerbs()) std::fprintf(out, "  %-10s %s\n", verb.name, verb.summary);
}

}  // namespace
}  // namespace wycore::tool

int main(int argc, char** argv) {
  using namespace wycore::tool;
  if (argc < 2) {
    PrintHelp(stderr);
    return 2;
  }
  if (std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0 ||
      std::strcmp(argv[1], "help") == 0) {
    PrintHelp(stdout);
    return 0;
  }
  for (const Verb& verb : AllVerbs()) {
    if (std::strcmp(argv[1], verb.name) == 0) {
      Args args(argv + 2, argv + argc);
      if (WantsHelp(args)) {
        std::fputs(verb.usage, stdout);
        return 0;
      }
      return verb.run(args);
    }
  }
  std::fprintf(stderr, "wycore: unknown verb '%s'\n", argv[1]);
  PrintHelp(stderr);
  return 2;
}
