// SPDX-License-Identifier: Apache-2.0
//
// TokenStream.h - the abstract token input and output streams.
//
// A token output stream decides how each token kind is printed: CToken::write hands integer kinds
// to the typed writers and everything else to the general token formatter. The text stream
// implements these interfaces; a binary stream could implement them too.
#pragma once

#include <cstdint>

#include "wycore/Export.h"

namespace io {

class CToken;

class WYCORE_API CAbstract_ostream {
 public:
  virtual ~CAbstract_ostream() = default;

  // Typed writers for the integer kinds whose value lies in the kind's range.
  virtual CAbstract_ostream& WriteShort(std::int16_t value) = 0;
  virtual CAbstract_ostream& WriteInt(std::int32_t value) = 0;
  virtual CAbstract_ostream& WriteUnsignedShort(std::uint16_t value) = 0;
  virtual CAbstract_ostream& WriteUnsignedInt(std::uint32_t value) = 0;
  // The general token formatter: every other kind, and integers outside their kind's range.
  virtual CAbstract_ostream& WriteToken(const CToken& token) = 0;

  // Hexadecimal output of integers; the setter returns the previous mode.
  virtual bool Hex() const = 0;
  virtual bool Hex(bool on) = 0;
};

class WYCORE_API CAbstract_istream {
 public:
  virtual ~CAbstract_istream() = default;
};

}  // namespace io
