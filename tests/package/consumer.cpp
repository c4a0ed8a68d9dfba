// consumer.cpp - the smallest program an application would write against the installed library.
#include <cstdio>

#include "wycore/io/AString.h"

int main() {
  AString name(u"Box9");
  AString next = i18n::IncrementName(name);
  if (next != u"Box10") {
    std::fprintf(stderr, "unexpected: %s\n", next.TStr().c_str());
    return 1;
  }
  std::printf("wycore consumer: %s -> %s\n", name.TStr().c_str(), next.TStr().c_str());
  return 0;
}
