#pragma once
// The largest single allocation made since the last reset, from the test program's own
// operator new: proves that a refused file cost no memory.

#include <cstddef>

namespace orvane::test {

void resetLargestAllocation();
size_t largestAllocation();

}  // namespace orvane::test
