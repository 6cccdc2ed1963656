#pragma once
// What the test program's own operator new has handed out since the last reset: the
// largest single allocation, and the most held at once. Proves that a refused file cost
// no memory, and that reading a huge line costs a few times the line, not more.

#include <cstddef>

namespace orvane::test {

void resetLargestAllocation();
size_t largestAllocation();
// Counted above what was held at the reset.
size_t peakAllocated();

}  // namespace orvane::test
