// A long run of points, shared out over the cores, against the same points one at a
// time: the same bits for every point it gives, and an end exactly at the first point
// without a value, in whichever part of the run it falls.

#include <vector>

#include "EngineCheck.h"

namespace orvane::test {
namespace {

// Enough blocks for every core to take a part, and a ragged last block.
constexpr int32_t kRun = 64 * BlockLanes + 77;

struct RunRow {
  const char* text;
  double without;  // a point where the formula has no value
  int32_t number;  // and the error it stops at there
};

TEST(LongRunTest, GivesThePointBitsAndStopsAtTheFirstPointWithoutValue) {
  const RunRow rows[] = {
      {"Sin(x)*Exp(-x/5)", -1e4, err::Overflow},
      {"Sin(x)*x^2 - 0.3", 1e200, err::Overflow},
      {"Log(x) + Sqr(x)", -1, err::InvalidCall},
      {"1/(x - 2.1234567) + Atn(x)", 2.1234567, err::DivisionByZero},
      {"x Mod 3 + Int(x * 7) \\ 2", 1e300, err::Overflow},
  };
  for (const RunRow& row : rows) {
    for (int32_t without : {-1, 0, 255, 256, kRun / 2 + 3, kRun - 1}) {
      SCOPED_TRACE(std::string(row.text) + ", no value at point " + std::to_string(without));
      Engine t;
      std::vector<double> xs(kRun), values(kRun);
      for (int32_t i = 0; i < kRun; ++i) xs[i] = 0.5 + i / 1000.0;
      if (without >= 0) xs[without] = row.without;
      BlockOutcome block;
      TryEvaluateBlock(t.engine, t.sh, row.text, xs.data(), nullptr, 1, block);  // compiles it

      const int32_t taken = TryEvaluateRun(t.engine, t.sh, row.text, BlockPoints{xs.data()}, kRun, values.data());
      ASSERT_EQ(taken, without >= 0 ? without : kRun);
      for (int32_t i = 0; i < taken; ++i) {
        double value = 0;
        ASSERT_EQ(TryEvaluateAt(t.engine, t.sh, row.text, xs[i], value), 0);
        ASSERT_TRUE(sameBits(values[i], value)) << "point " << i;
      }
      if (without < 0) continue;
      // The caller learns why from a block that starts there.
      TryEvaluateBlock(t.engine, t.sh, row.text, xs.data() + taken, nullptr, 4, block);
      EXPECT_EQ(BlockPointError(block, 0), row.number);
    }
  }
}

TEST(LongRunTest, RunsOnlyWhatCanBeSharedOut) {
  Engine t;
  std::vector<double> xs(kRun, 1.5), values(kRun);
  BlockOutcome block;
  TryEvaluateBlock(t.engine, t.sh, "x * 2", xs.data(), nullptr, 1, block);
  // Any text but the one evaluated last is left to a block, which compiles and reports it.
  EXPECT_EQ(TryEvaluateRun(t.engine, t.sh, "x * 3", BlockPoints{xs.data()}, kRun, values.data()), 0);
  EXPECT_EQ(TryEvaluateRun(t.engine, t.sh, "x * 2", BlockPoints{xs.data()}, kRun, values.data()), kRun);
  EXPECT_EQ(values[kRun - 1], 3.0);
  // A text that fails everywhere, and one read by name late, stay with the block.
  for (const char* text : {"1/0 + x", "x & \"a\""}) {
    SCOPED_TRACE(text);
    TryEvaluateBlock(t.engine, t.sh, text, xs.data(), nullptr, 1, block);
    EXPECT_EQ(TryEvaluateRun(t.engine, t.sh, text, BlockPoints{xs.data()}, kRun, values.data()), 0);
  }
}

}  // namespace
}  // namespace orvane::test
