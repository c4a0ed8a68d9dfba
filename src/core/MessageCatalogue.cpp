// SPDX-License-Identifier: Apache-2.0
//
// MessageCatalogue.cpp - the texts of the library's numbered messages.
//
// One row per message; %1, %2 and %3 stand for the posted arguments. Codes group by area:
// 245xx-248xx expressions, 24540 and neighbours variables, 616xx-617xx materials.
// Keep the table sorted by code: lookup is a binary search.
#include <algorithm>
#include <iterator>

#include "MessageCatalogue.h"

namespace wycore::detail {
namespace {

struct Entry {
  int code;
  const char16_t* text;
};

constexpr Entry kCatalogue[] = {
    // The function table (the caller posts them with the function's name as %1 and, for 24500,
    // the number of arguments given as %2).
    {24499, u"Unknown function '%1'"},
    {24500, u"Function '%1' does not take %2 argument(s)"},
    {24501, u"Function '%1' does not take arguments of these kinds"},
    // Variables and name spaces.
    {24540, u"Variable '%1' cannot be defined in terms of itself: %2"},
};

static_assert(std::is_sorted(std::begin(kCatalogue), std::end(kCatalogue),
                             [](const Entry& a, const Entry& b) { return a.code < b.code; }),
              "the catalogue must stay sorted by code");

}  // namespace

std::u16string_view LookUpMessage(int code) {
  auto it = std::lower_bound(std::begin(kCatalogue), std::end(kCatalogue), code,
                             [](const Entry& e, int c) { return e.code < c; });
  if (it == std::end(kCatalogue) || it->code != code) return {};
  return it->text;
}

}  // namespace wycore::detail
