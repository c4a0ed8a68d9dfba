// SPDX-License-Identifier: Apache-2.0
//
// MessageCatalogue.cpp - the texts of the library's numbered messages.
//
// One row per message; %1, %2 and %3 stand for the posted arguments. Codes group by area:
// 245xx-248xx expressions, 24540 and neighbours variables, 616xx-617xx materials.
// Keep the table sorted by code: lookup is a binary search.
#include "MessageCatalogue.h"

#include <algorithm>
#include <iterator>

namespace wycore::detail {
namespace {

struct Entry {
  int code;
  const char16_t* text;
};

constexpr Entry kCatalogue[] = {
    // The expression parser. 24464 carries the whole positioned text of a parse error as %1;
    // the other codes are the errors themselves, whose texts are embedded in it.
    {24464, u"%1"},
    {24487, u"%1 found after the end of the expression"},
    {24488, u"The expression is nested too deeply"},
    {24489, u"The index of array '%1' must be a real number"},
    {24494, u"A minus sign cannot follow another minus sign; write -(-x)"},
    {24496, u"An operator was expected instead of '%1'"},
    {24497, u"A value was expected instead of '%1'"},
    {24498, u"',' or ')' expected in the arguments of function '%1'"},
    // The function table (the caller posts them with the function's name as %1 and, for 24500,
    // the number of arguments given as %2).
    {24499, u"Unknown function '%1'"},
    {24500, u"Function '%1' does not take %2 argument(s)"},
    {24501, u"Function '%1' does not take arguments of these kinds"},
    // The expression parser (continued).
    {24503, u"Nothing valid follows '^'"},
    {24504, u"Nothing valid follows '*' or '/'"},
    {24505, u"Nothing valid follows '+' or '-'"},
    {24506, u"Unknown name '%1'"},
    {24507, u"Unknown unit '%1'"},
    {24508, u"'%1' holds a value of a kind expressions cannot read"},
    {24509, u"Operator '%1' takes real or complex numbers only"},
    {24513, u"Nothing valid follows '&&' or '||'"},
    {24514, u"The operands of '%1' are of different kinds"},
    {24515, u"Operator '%1' compares real numbers only"},
    {24516, u"Logical operator '%1' takes real operands only"},
    {24517, u"Nothing valid follows a comparison operator"},
    {24534, u"The expression is empty or ends where a value is expected"},
    {24535, u"'(' without matching ')'"},
    // Variables and name spaces.
    {24540, u"Variable '%1' cannot be defined in terms of itself: %2"},
    // The expression parser (continued).
    {24579, u"Dataset: '(' expected to start a point instead of '%1'"},
    {24580, u"Dataset: a real number expected instead of '%1'"},
    {24581, u"Dataset: ',' or ')' expected instead of '%1'"},
    {24582, u"'%1' is not a dataset"},
    {24641, u"Units '%1' for the whole expression are not allowed here"},
    {24726, u"Dataset: unit '%1' does not match the units of its axis"},
    {24752, u"An array index needs the name of an array before '['"},
    {24754, u"The index of array '%1' must be one expression closed by ']'"},
    {24755, u"Unknown array '%1'"},
    {24756, u"'%1' is not an array"},
    {24760, u"Array '%1' must be used with an index, as in %1[0]"},
    {24841, u"Argument %2 of function '%1' is not a compatible dataset"},
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
