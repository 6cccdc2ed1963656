// Work split over the cores: every part runs once per split, however many splits follow
// each other, a part may split its own work, and a failing part's exception comes back.

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <vector>

#include "platform/WorkParts.h"

namespace orvane {
namespace {

TEST(WorkParts, EachPartRunsOnceInSplitAfterSplitAndWithinAPart) {
  for (int round = 0; round < 2000; ++round) {
    const int count = 1 + round % 4;
    std::vector<std::atomic<int>> runs(static_cast<size_t>(count));
    RunParts(count, [&](int k) {
      // A part splitting its own work finds the kept threads taken and starts its own.
      if (round % 500 == 0) RunParts(2, [&](int inner) { runs[static_cast<size_t>(k)] += inner; });
      ++runs[static_cast<size_t>(k)];
    });
    for (int k = 0; k < count; ++k) ASSERT_EQ(runs[static_cast<size_t>(k)], round % 500 == 0 ? 2 : 1) << round;
  }
}

TEST(WorkParts, TheLowestFailingPartsExceptionIsThrownOnceAllHaveEnded) {
  std::atomic<int> ended{0};
  try {
    RunParts(3, [&](int k) {
      ++ended;
      if (k > 0) throw std::runtime_error("part " + std::to_string(k));
    });
    FAIL() << "no exception";
  } catch (const std::runtime_error& e) {
    EXPECT_STREQ(e.what(), "part 1");
  }
  EXPECT_EQ(ended, 3);
}

}  // namespace
}  // namespace orvane
