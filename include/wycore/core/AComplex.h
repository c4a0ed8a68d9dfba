// SPDX-License-Identifier: Apache-2.0
//
// AComplex.h - the library's complex number type.
//
// An alias of std::complex, so that the standard functions, TNT matrices and user code meet on
// one type without conversions.
#pragma once

#include <complex>

template <typename T>
using AComplex = std::complex<T>;
