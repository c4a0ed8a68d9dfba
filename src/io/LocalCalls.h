// SPDX-License-Identifier: Apache-2.0
//
// LocalCalls.h - lets GCC bind the storage layer's calls among the library's own exported
// functions locally (private; include it after the file's own header).
//
// The library is built position-independent, and GCC then assumes that any exported function
// could be replaced by another definition at load time ("semantic interposition"): it calls such
// functions through the procedure linkage table and never inlines them, not even into functions
// of the same file. The token and block code is made of many small exported functions called per
// character and per token, and loses a quarter of its speed to that. Nothing replaces the
// library's functions, so the files of the storage layer compile as with
// -fno-semantic-interposition (the default of Clang). Building the whole library with that option
// would make this header unnecessary.
#pragma once

#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC optimize("no-semantic-interposition")
#endif
