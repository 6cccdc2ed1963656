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

// The fit written out the plain way, row by row, for finite data: normal equations
// summed set by set, elimination with partial pivoting, back substitution. `lastTieWins`
// picks the later of two rows of equal pivot magnitude instead of the earlier.
std::vector<double> plainFit(RegressionProblem p, bool lastTieWins = false) {
  const int m = p.m;
  std::vector<std::vector<double>> M(m + 1, std::vector<double>(m + 2, 0.0));
  for (int i = 1; i <= p.N; ++i) {
    p.X(0, i) = 1;
    for (int j = 0; j <= m; ++j) {
      for (int k = j; k <= m; ++k) {
        M[j][k] = M[j][k] + p.X(j, i) * p.X(k, i);
        M[k][j] = M[j][k];
      }
      M[j][m + 1] = M[j][m + 1] + p.X(j, i) * p.X(m + 1, i);
    }
  }
  for (int k = 0; k < m; ++k) {
    double largest = std::fabs(M[k][k]);
    int pivot = k;
    for (int i = k + 1; i <= m; ++i) {
      const double a = std::fabs(M[i][k]);
      if (a > largest || (lastTieWins && a == largest)) {
        largest = a;
        pivot = i;
      }
    }
    if (largest == 0.0) continue;
    std::swap(M[k], M[pivot]);
    for (int i = k + 1; i <= m; ++i) {
      const double factor = M[i][k] / M[k][k];
      for (int c = k; c <= m + 1; ++c) M[i][c] = M[i][c] - factor * M[k][c];
    }
  }
  std::vector<double> A(m + 1, 0.0);
  for (int i = m; i >= 0; --i) {
    double sum = 0;
    for (int j = i + 1; j <= m; ++j) sum = sum + M[i][j] * A[j];
    A[i] = (M[i][m + 1] - sum) / M[i][i];
  }
  return A;
}

std::vector<double> coefficients(const RegressionProblem& p) {
  return std::vector<double>(p.A.begin(), p.A.begin() + p.m + 1);
}

// The fit must be bit for bit the one of the plain order of operations: a faster
// summation or a different pivot choice shows up here in the last bits.
TEST(Solver, SameBitsAsThePlainOrderOfOperations) {
  struct Case {
    const char* what;
    int m;
    std::vector<std::vector<double>> sets;
  };
  const std::vector<Case> cases = {
      {"line with noise", 1, {{0.1, 1.3}, {0.7, 2.9}, {1.9, 4.4}, {3.3, 7.7}, {4.1, 9.1}}},
      {"plane", 2, {{1, 0.5, 3.1}, {2, -1.5, 1.7}, {3, 2.25, 9.3}, {4, 0.1, 6.6}, {5.5, -3, 2.2}}},
      {"three variables, rows needing swaps",
       3,
       {{0.3, 10, -200, 1}, {0.1, 12, 150, 2}, {0.7, -9, 30, 3.5}, {0.2, 4, -70, 0.25},
        {0.9, 1, 5, 8}, {0.4, 7, 99, -2}}},
  };
  for (const Case& c : cases) {
    RegressionProblem p = makeProblem(c.m, c.sets);
    ASSERT_EQ(Compute(p), FitOutcome::Computed) << c.what;
    EXPECT_EQ(coefficients(p), plainFit(p)) << c.what;
    for (int i = 1; i <= p.N; ++i) EXPECT_EQ(p.X(0, i), 1.0) << c.what;
  }
}

TEST(Solver, PivotTieKeepsTheFirstRow) {
  // Column 0 holds N = 4, sum x1 = 10 and sum x2 = -10: rows 1 and 2 tie for the pivot.
  RegressionProblem p = makeProblem(2, {{1, -4, 1}, {2, 0, 3}, {3, -5, 2}, {4, -1, 5}});
  const std::vector<double> first = plainFit(p, false);
  const std::vector<double> last = plainFit(p, true);
  ASSERT_NE(first, last) << "these data must tell the two pivot choices apart";
  ASSERT_EQ(Compute(p), FitOutcome::Computed);
  EXPECT_EQ(coefficients(p), first);
}

TEST(Solver, StatisticsOfSmallFits) {
  struct Case {
    const char* what;
    int m;
    std::vector<std::vector<double>> sets;
    double correlation, standardError, residualSquares, averageGiven, averageEstimated;
    double A0, A1;
  };
  const std::vector<Case> cases = {
      // Three sets on a line: a perfect fit.
      {"straight line", 1, {{1, 3}, {2, 5}, {3, 7}}, 1, 0, 0, 5, 5, 1, 2},
      // Nothing to explain: the total sum is 0 and the correlation is still 1.
      {"all given equal", 1, {{1, 4}, {2, 4}, {3, 4}}, 1, 0, 0, 4, 4, 4, 0},
      // Slope 0.8, intercept 0.5, residuals -0.3, 0.9, -0.9, 0.3; divisor N - 2 = 2.
      {"noisy line", 1, {{1, 1}, {2, 3}, {3, 2}, {4, 4}}, 0.8, std::sqrt(0.9), 1.8, 2.5, 2.5, 0.5, 0.8},
  };
  for (const Case& c : cases) {
    RegressionProblem p = makeProblem(c.m, c.sets);
    ASSERT_EQ(Compute(p), FitOutcome::Computed) << c.what;
    EXPECT_TRUE(p.computed) << c.what;
    const FitStatistics& s = p.statistics;
    EXPECT_NEAR(s.correlation, c.correlation, 1e-14) << c.what;
    EXPECT_NEAR(s.standardError, c.standardError, 1e-7) << c.what;  // root of a rounding residue
    EXPECT_NEAR(s.residualSquares, c.residualSquares, 1e-14) << c.what;
    EXPECT_NEAR(s.averageGiven, c.averageGiven, 1e-14) << c.what;
    EXPECT_NEAR(s.averageEstimated, c.averageEstimated, 1e-14) << c.what;
    EXPECT_NEAR(p.A[0], c.A0, 1e-13) << c.what;
    EXPECT_NEAR(p.A[1], c.A1, 1e-13) << c.what;
    EXPECT_GE(s.correlation, 0.0) << c.what;
  }
}

TEST(Solver, StandardErrorDividesByNMinus2WhateverM) {
  struct Case {
    int m;
    std::vector<std::vector<double>> sets;
  };
  const std::vector<Case> cases = {
      {1, {{1, 1}, {2, 3}, {3, 2}}},                                              // divides by 1
      {2, {{1, 0, 1}, {2, 1, 3}, {3, 0, 2}, {4, 1, 4}, {5, 0, 9}}},               // 3, not 2
      {3, {{1, 0, 2, 1}, {2, 1, 3, 3}, {3, 0, 7, 2}, {4, 1, 1, 4}}},             // 2, not 0
  };
  for (const Case& c : cases) {
    RegressionProblem p = makeProblem(c.m, c.sets);
    p.statistics.standardError = 123;  // a divisor of 0 would leave this in place
    ASSERT_EQ(Compute(p), FitOutcome::Computed) << "m=" << c.m;
    const double divisor = p.N - 2;
    EXPECT_DOUBLE_EQ(p.statistics.standardError, std::sqrt(p.statistics.residualSquares / divisor))
        << "m=" << c.m;
  }
}

TEST(Solver, SingularSystemsGiveOneMessageAndKeepTheStatistics) {
  struct Case {
    const char* what;
    int m;
    std::vector<std::vector<double>> sets;
    bool dependentOnly;  // the message must be the "linearly dependent" one
  };
  const std::vector<Case> cases = {
      {"x2 equal to x1", 2, {{1, 1, 2}, {2, 2, 3}, {3, 3, 5}, {4, 4, 4}}, false},
      {"x2 equal to x1, other data", 2, {{0.1, 0.1, 7}, {0.3, 0.3, -1}, {2.9, 2.9, 4}}, false},
      // Column 1 is zero from the diagonal down: skipped, then caught in back substitution.
      {"x1 all zero, last column", 1, {{0, 1}, {0, 2}, {0, 3}}, true},
      {"x1 all zero, middle column", 2, {{0, 1, 1}, {0, 2, 5}, {0, 3, 2}, {0, 5, 1}}, true},
      {"no data sets", 1, {}, true},
  };
  for (const Case& c : cases) {
    RegressionProblem p = makeProblem(c.m, c.sets);
    p.statistics = {0.5, 1.5, 2.5, 3.5, 4.5};
    p.computed = true;
    const FitOutcome outcome = Compute(p);
    ASSERT_NE(outcome, FitOutcome::Computed) << c.what;
    EXPECT_FALSE(p.computed) << c.what;
    const std::string message = SingularMessage(outcome);
    if (c.dependentOnly)
      EXPECT_EQ(message, "YIELDS LINEARLY DEPENDENT SYSTEM") << c.what;
    else
      EXPECT_TRUE(message == "YIELDS LINEARLY DEPENDENT SYSTEM" || message == "YIELDS INCONSISTENT SYSTEM.")
          << c.what << ": " << message;
    EXPECT_EQ(p.statistics.correlation, 0.5) << c.what;
    EXPECT_EQ(p.statistics.standardError, 1.5) << c.what;
    EXPECT_EQ(p.statistics.residualSquares, 2.5) << c.what;
    EXPECT_EQ(p.statistics.averageGiven, 3.5) << c.what;
    EXPECT_EQ(p.statistics.averageEstimated, 4.5) << c.what;
  }
  EXPECT_EQ(SingularMessage(FitOutcome::Computed), "");
}

TEST(Solver, OnlyAnExactZeroPivotIsSingular) {
  // x of order 1e-150: the pivot left for x is about 2e-300, tiny but not zero.
  RegressionProblem p = makeProblem(1, {{0, 1}, {1e-150, 2}, {2e-150, 3}});
  ASSERT_EQ(Compute(p), FitOutcome::Computed);
  EXPECT_NEAR(p.A[0], 1, 1e-12);
  EXPECT_NEAR(p.A[1] / 1e150, 1, 1e-12);
}

TEST(Solver, ResultsListing) {
  RegressionProblem p = makeProblem(1, {{1, 1}, {2, 3}, {3, 2}, {4, 4}});
  ASSERT_EQ(Compute(p), FitOutcome::Computed);
  // Round the fit to what the listing shows, so the lines below are exact.
  p.A = {0.5, 0.8, 0};
  p.statistics = {0.8, 0.948683298050514, 1.8, 2.5, -2.5e-7};
  const std::vector<std::string> expected = {
      "              CORRELATION COEFFICIENT=0.8",
      "STANDARD ERROR OF ESTIMATE (UNBIASED)=0.948683298050514",
      "                    SUM (RESIDUALS)^2=1.8",
      "           AVERAGE OF FUNCTION(GIVEN)=2.5",
      "       AVERAGE OF FUNCTION(ESTIMATED)=-2.5E-07",
      "",
      "COEFFICIENTS:",
      "A0=0.5",
      "A1=0.8",
  };
  EXPECT_EQ(ResultsListing(p), expected);
  for (size_t i = 0; i < 5; ++i) EXPECT_EQ(expected[i].find('='), 37u) << expected[i];
  EXPECT_EQ(StatisticsLines(p.statistics), std::vector<std::string>(expected.begin(), expected.begin() + 5));

  RegressionProblem big = makeProblem(11, {});
  big.A.assign(13, -1);
  big.A[10] = 1e20;
  const std::vector<std::string> lines = ResultsListing(big);
  ASSERT_EQ(lines.size(), 5u + 2u + 12u);
  EXPECT_EQ(lines[7], "A0=-1");
  EXPECT_EQ(lines[17], "A10=1E+20");
  EXPECT_EQ(lines[18], "A11=-1");
}

TEST(Solver, EstimatesSumInOrder) {
  RegressionProblem p = makeProblem(2, {{3, 4, 0}, {-1, 0.5, 0}});
  p.A = {1, 2, 3, 99};  // the spare element is never used
  EXPECT_EQ(ComputeEstimates(p, 1), 1 + 3 * 2 + 4 * 3);
  EXPECT_EQ(ComputeEstimates(p, 2), 1 - 2 + 1.5);
  // 1e308 + 1e308 overflows: the sum keeps what it held before that term.
  p.A = {1e308, 1, 1e308};
  p.X(1, 1) = 5;
  p.X(2, 1) = 1;
  EXPECT_EQ(ComputeEstimates(p, 1), 1e308 + 5);
}

TEST(Solver, EstimateAtTypedPoint) {
  RegressionProblem one = makeProblem(1, {});
  one.A = {1, 2, 0};
  RegressionProblem two = makeProblem(2, {});
  two.A = {1, 2, 3, 0};
  struct Case {
    const RegressionProblem* p;
    std::vector<std::string> texts;
    double expected;
  };
  const std::vector<Case> cases = {
      {&one, {"3"}, 7},        {&one, {""}, 1},          {&one, {"2abc"}, 5}, {&one, {}, 1},
      {&one, {"abc"}, 1},      {&one, {" -1.5"}, -2},    {&two, {"1", "1e"}, 6}, {&two, {"", "e5"}, 1},
      {&two, {"2"}, 5},        {&two, {"1", "2", "9"}, 9},
  };
  for (const Case& c : cases) {
    std::string shown;
    for (const std::string& t : c.texts) shown += "[" + t + "]";
    EXPECT_EQ(EstimateAt(*c.p, c.texts), c.expected) << shown;
  }
  one.A = {1, 1e308, 0};
  try {
    EstimateAt(one, {"1e10"});
    FAIL() << "an overflowing estimate must be an error";
  } catch (const RuntimeError& e) {
    EXPECT_EQ(e.number(), err::Overflow);
  }
}

TEST(Solver, FittedFunctionText) {
  struct Case {
    int m;
    std::vector<double> A;
    bool computed;
    std::string expected;
  };
  const std::vector<Case> cases = {
      {1, {1, 2, 0}, true, "1+2*x"},
      {1, {-0.5, -2, 0}, true, "-0.5+-2*x"},
      {1, {1.5e-7, 1e20, 0}, true, "1.5E-07+1E+20*x"},
      {2, {2.5, -0.75, 3, 0}, true, "2.5+-0.75*x+3*y"},
      {1, {1, 2, 0}, false, ""},
      {3, {1, 2, 3, 4, 0}, true, ""},
  };
  for (const Case& c : cases) {
    RegressionProblem p = makeProblem(c.m, {});
    p.A = c.A;
    p.computed = c.computed;
    EXPECT_EQ(FittedFunctionText(p), c.expected);
  }
}

}  // namespace
}  // namespace orvane
