// SPDX-License-Identifier: Apache-2.0
//
// TNTMatrix.h - the one place that includes TNT's matrix, TNT::Matrix<T>.
//
// TNT keeps 1-based row pointers one element before its allocations and steps back before
// freeing them; GCC's late -Wfree-nonheap-object analysis takes that for freeing a pointer into
// the middle of a block and warns wherever a matrix destructor is inlined into our code. The
// diagnostic is suppressed for the library's own text only, here, so that every other warning
// stays on for the code that uses matrices. Include this header instead of <tnt/tnt_cmat.h>.
#pragma once

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wfree-nonheap-object"
#include <tnt/tnt_cmat.h>
#pragma GCC diagnostic pop
