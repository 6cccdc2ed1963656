#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "RegressionTestSupport.h"
#include "platform/RuntimeError.h"
#include "regression/Solver.h"

namespace orvane {
namespace {

using testing::makeProblem;

std::vector<double> coefficients(const RegressionProblem& p) { return {p.A.begin(), p.A.begin() + p.m + 1}; }

// Coefficients to the last bit as the plain order of operations gives them: normal
// equations summed set by set, elimination with partial pivoting taking the first of
// equal rows, back substitution. A faster summation or another pivot choice changes the
// last bits.
TEST(Solver, SameBitsAsThePlainOrderOfOperations) {
  const struct { RegressionProblem p; std::vector<double> A; } cases[] = {
      {makeProblem(1, {{0.1, 1.3}, {0.7, 2.9}, {1.9, 4.4}, {3.3, 7.7}, {4.1, 9.1}}),
       {0x1.324fb55180e55p+0, 0x1.ec29a63d09b1fp+0}},
      {makeProblem(3, {{0.3, 10, -200, 1}, {0.1, 12, 150, 2}, {0.7, -9, 30, 3.5}, {0.2, 4, -70, 0.25},
                       {0.9, 1, 5, 8}, {0.4, 7, 99, -2}}),  // rows needing swaps
       {-0x1.4bbe2cb498197p+1, 0x1.3e08d97adca82p+3, 0x1.92c478fefed1dp-4, 0x1.13bdc6556cb43p-13}},
      // Column 0 holds N = 4, sum x1 = 10 and sum x2 = -10: rows 1 and 2 tie for the pivot.
      // Taking row 2 would give 0x1.5c71c71c71c75p+0, 0x1.e38e38e38e38dp-1, 0x1.8e38e38e38e3ap-2.
      {makeProblem(2, {{1, -4, 1}, {2, 0, 3}, {3, -5, 2}, {4, -1, 5}}),
       {0x1.5c71c71c71c63p+0, 0x1.e38e38e38e395p-1, 0x1.8e38e38e38e34p-2}},
  };
  for (auto c : cases) {
    bool overflowed = true;
    ASSERT_EQ(Compute(c.p, &overflowed), FitOutcome::Computed) << "m=" << c.p.m;
    EXPECT_EQ(coefficients(c.p), c.A) << "m=" << c.p.m;
    EXPECT_FALSE(overflowed);
    for (int i = 1; i <= c.p.N; ++i) EXPECT_EQ(c.p.X(0, i), 1.0);
  }
}

// Squares of 1e154 overflow from the second set on: the error trap skips those additions
// and the fit goes on with what the sums held, as it always has (a correlation above 1
// among them), and says that it overflowed.
TEST(Solver, AnOverflowingSumIsSkippedAndReported) {
  RegressionProblem p =
      makeProblem(2, {{1e154, 1, 1}, {1.5e154, 2, 2}, {-1e154, 3, 2}, {3, 5, 4}, {2e153, 4, 7}});
  bool overflowed = false;
  ASSERT_EQ(Compute(p, &overflowed), FitOutcome::Computed);
  EXPECT_TRUE(overflowed);
  EXPECT_EQ(coefficients(p), (std::vector<double>{0x1.a2e8ba2e8ba22p+1, -0x1.b3355de738676p-511, 0x1.0d79435e50d91p-2}));
  const FitStatistics& s = p.statistics;
  EXPECT_EQ((std::vector<double>{s.correlation, s.standardError, s.residualSquares}),
            (std::vector<double>{0x1.208e51c50ce2ep+0, 0x1.b921d333c9365p+1, 0x1.1d0e154c34d01p+5}));
}

// The statistics' values against certified ones: NistReferenceTest; here the rules of
// small fits.
TEST(Solver, StatisticsOfSmallFits) {
  // All given values equal: correlation 1, not 0 / 0.
  RegressionProblem flat = makeProblem(1, {{1, 4}, {2, 4}, {3, 4}});
  ASSERT_EQ(Compute(flat), FitOutcome::Computed);
  EXPECT_TRUE(flat.computed);
  const FitStatistics& s = flat.statistics;
  EXPECT_EQ(std::vector<double>({s.correlation, s.standardError, s.residualSquares, s.averageGiven,
                                 s.averageEstimated}),
            std::vector<double>({1, 0, 0, 4, 4}));
  // The standard error divides by N - 2 whatever m is: 3 not 2 for m = 2, 2 not 0 for m = 3.
  for (RegressionProblem p : {makeProblem(2, {{1, 0, 1}, {2, 1, 3}, {3, 0, 2}, {4, 1, 4}, {5, 0, 9}}),
                              makeProblem(3, {{1, 0, 2, 1}, {2, 1, 3, 3}, {3, 0, 7, 2}, {4, 1, 1, 4}})}) {
    ASSERT_EQ(Compute(p), FitOutcome::Computed) << "m=" << p.m;
    EXPECT_DOUBLE_EQ(p.statistics.standardError, std::sqrt(p.statistics.residualSquares / (p.N - 2))) << p.m;
  }
  // Only an exact zero pivot is singular: x of order 1e-150 leaves a pivot near 2e-300.
  RegressionProblem tiny = makeProblem(1, {{0, 1}, {1e-150, 2}, {2e-150, 3}});
  ASSERT_EQ(Compute(tiny), FitOutcome::Computed);
  EXPECT_NEAR(tiny.A[0], 1, 1e-12);
  EXPECT_NEAR(tiny.A[1] / 1e150, 1, 1e-12);
}

TEST(Solver, SingularSystemsGiveOneMessageAndKeepTheStatistics) {
  const std::string dependent = "YIELDS LINEARLY DEPENDENT SYSTEM", inconsistent = "YIELDS INCONSISTENT SYSTEM.";
  const struct { const char* what; RegressionProblem p; bool dependentOnly; } cases[] = {
      {"x2 equal to x1", makeProblem(2, {{1, 1, 2}, {2, 2, 3}, {3, 3, 5}, {4, 4, 4}}), false},
      // A zero column is skipped in elimination, then caught in back substitution.
      {"x1 all zero, last column", makeProblem(1, {{0, 1}, {0, 2}, {0, 3}}), true},
      {"x1 all zero, middle column", makeProblem(2, {{0, 1, 1}, {0, 2, 5}, {0, 3, 2}, {0, 5, 1}}), true},
      {"no data sets", makeProblem(1, {}), true},
  };
  for (auto c : cases) {
    c.p.statistics = {0.5, 1.5, 2.5, 3.5, 4.5};
    c.p.computed = true;
    const FitOutcome outcome = Compute(c.p);
    ASSERT_NE(outcome, FitOutcome::Computed) << c.what;
    EXPECT_FALSE(c.p.computed) << c.what;
    const std::string message = SingularMessage(outcome);
    EXPECT_TRUE(message == dependent || (!c.dependentOnly && message == inconsistent)) << c.what << ": " << message;
    const FitStatistics& s = c.p.statistics;
    EXPECT_EQ(std::vector<double>({s.correlation, s.standardError, s.residualSquares, s.averageGiven,
                                   s.averageEstimated}),
              std::vector<double>({0.5, 1.5, 2.5, 3.5, 4.5}))
        << c.what;
  }
  EXPECT_EQ(SingularMessage(FitOutcome::Computed), "");
}

// Every coefficient is listed, A10 and on included (the whole listing, as printed: the
// batch fit's tests).
TEST(Solver, ResultsListingNamesEveryCoefficient) {
  RegressionProblem big = makeProblem(11, {});
  big.A.assign(13, -1);
  big.A[10] = 1e20;
  const std::vector<std::string> lines = ResultsListing(big);
  ASSERT_EQ(lines.size(), 19u);
  EXPECT_EQ(lines[7], "A0=-1");
  EXPECT_EQ(lines[17], "A10=1E+20");
  EXPECT_EQ(lines[18], "A11=-1");
}

TEST(Solver, EstimatesAndFittedFunction) {
  RegressionProblem p = makeProblem(2, {{3, 4, 0}, {-1, 0.5, 0}});
  p.A = {1, 2, 3, 99};  // the spare element is never used
  EXPECT_EQ(ComputeEstimates(p, 1), 1 + 3 * 2 + 4 * 3);
  EXPECT_EQ(ComputeEstimates(p, 2), 1 - 2 + 1.5);
  p.A = {1e308, 1, 1e308};  // 1e308 + 1e308 overflows: the sum keeps what it held before
  p.X(1, 1) = 5;
  p.X(2, 1) = 1;
  EXPECT_EQ(ComputeEstimates(p, 1), 1e308 + 5);

  // Typed points: the leading number of each text, missing texts as 0.
  RegressionProblem one = makeProblem(1, {}), two = makeProblem(2, {});
  one.A = {1, 2, 0};
  two.A = {1, 2, 3, 0};
  const struct {
    const RegressionProblem* p;
    std::vector<std::string> texts;
    double expected;
  } points[] = {{&one, {"2abc"}, 5}, {&one, {}, 1}, {&two, {"", "e5"}, 1}, {&two, {"2"}, 5},
                {&two, {"1", "2", "9"}, 9}};
  for (const auto& c : points) EXPECT_EQ(EstimateAt(*c.p, c.texts), c.expected) << c.texts.size();
  one.A = {1, 1e308, 0};
  EXPECT_THROW(EstimateAt(one, {"1e10"}), RuntimeError);  // an overflowing estimate is an error, never inf

  const struct {
    int m;
    std::vector<double> A;
    bool computed;
    std::string expected;
  } texts[] = {{1, {-0.5, -2, 0}, true, "-0.5+-2*x"}, {2, {2.5, -0.75, 3, 0}, true, "2.5+-0.75*x+3*y"},
               {1, {1, 2, 0}, false, ""},              {3, {1, 2, 3, 4, 0}, true, ""}};
  for (const auto& c : texts) {
    RegressionProblem q = makeProblem(c.m, {});
    q.A = c.A;
    q.computed = c.computed;
    EXPECT_EQ(FittedFunctionText(q), c.expected);
  }
}

}  // namespace
}  // namespace orvane
