// SPDX-License-Identifier: Apache-2.0
//
// MessageCatalogue.h - private lookup into the table of numbered message texts.
#pragma once

#include <string_view>

namespace wycore::detail {

// The text of message `code`, or an empty view when the catalogue has none.
std::u16string_view LookUpMessage(int code);

}  // namespace wycore::detail
