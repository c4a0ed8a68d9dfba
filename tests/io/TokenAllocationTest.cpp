// SPDX-License-Identifier: Apache-2.0
//
// TokenAllocationTest.cpp - tokens are made by the million while a file is read: numbers and
// texts of up to 3 characters must not allocate, and copies of a long text must share it.
//
// Counts calls of the global operator new made by this thread while a counter is armed. The
// sanitizer build keeps the sanitizer's own operator new (replacing it there mixes allocators), so
// the count is taken in the release build only.
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <vector>

#include "wycore/io/Token.h"

namespace {

thread_local bool gCounting = false;
thread_local std::size_t gAllocations = 0;

class AllocationCounter {
 public:
  AllocationCounter() {
    gAllocations = 0;
    gCounting = true;
  }
  ~AllocationCounter() { gCounting = false; }
  std::size_t Count() const { return gAllocations; }
};

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kCounting = false;
#else
constexpr bool kCounting = true;
#endif

}  // namespace

#if !defined(__SANITIZE_ADDRESS__)
void* operator new(std::size_t size) {
  if (gCounting) ++gAllocations;
  if (void* p = std::malloc(size == 0 ? 1 : size)) return p;
  throw std::bad_alloc();
}
void operator delete(void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
#endif

namespace io {
namespace {

TEST(TokenAllocation, NumbersAndShortTextsAllocateNothing) {
  if (!kCounting) GTEST_SKIP() << "allocations are counted in the release build";
  const AString one(u"=");
  const AString three(u"abc");
  const AString number(u"1.5e3");
  AllocationCounter counter;
  CToken a(CToken::Double, 2.5);
  CToken b(CToken::Symbol, u'=');
  CToken c(CToken::Keyword, three, false);
  CToken d(CToken::Symbol, one, false);
  CToken e(CToken::Double, number, false);  // parsed to 1500, text not kept
  CToken copies[4] = {a, b, c, e};
  CToken assigned;
  assigned = c;
  EXPECT_EQ(counter.Count(), 0u);
  EXPECT_EQ(e.Value(), 1500.0);
  EXPECT_EQ(copies[2].GetAString(), u"abc");
  EXPECT_EQ(d.GetAString(), u"=");
}

TEST(TokenAllocation, LongTextIsAllocatedOnceAndSharedByCopies) {
  if (!kCounting) GTEST_SKIP() << "allocations are counted in the release build";
  const AString text(u"a rather long keyword text");
  std::vector<CToken> copies;
  copies.reserve(100);
  std::size_t made;
  {
    AllocationCounter counter;
    CToken original(CToken::SingleQuotedText, text, false);
    made = counter.Count();
    for (int i = 0; i < 100; ++i) copies.push_back(original);
    EXPECT_EQ(counter.Count(), made) << "copies must share the text buffer";
  }
  EXPECT_EQ(made, 1u);
  for (const CToken& t : copies) EXPECT_EQ(t.ACharPtr(), copies.front().ACharPtr());
}

}  // namespace
}  // namespace io
