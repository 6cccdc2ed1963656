// The fit against the certified results of the NIST StRD linear regression sets (copied
// into data/). Accuracy is the log relative error, LRE = -log10(|ours - certified| /
// |certified|): correct significant digits. The normal equations square the condition
// number, so the listing's bounds are what this elimination reaches, a digit under the
// measured figure (coefficients: Norris 12.1, Pontius 11.2, Longley 7.4, Wampler1,3-5
// 6.6, Wampler2 9.6, Filip 0; 10 or more in the residual sums and R^2). The Statistics
// window's own solution holds 13 digits of the certified statistics (Filip's data,
// rounded to doubles, about 7.7), and its digits trusted is the listing's true figure.

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "RegressionTestSupport.h"
#include "regression/FitSummary.h"
#include "regression/Solver.h"

namespace orvane {
namespace {

using orvane::testing::certified;

double lre(double ours, double exact) {
  if (ours == exact) return 15;
  return std::min(15.0, -std::log10(exact == 0 ? std::fabs(ours) : std::fabs(ours - exact) / std::fabs(exact)));
}

struct Reference { const char* name; double coefficientDigits, residualDigits, statisticsDigits; };

class NistReference : public ::testing::TestWithParam<Reference> {};

TEST_P(NistReference, ListingAndSummaryToCertifiedDigits) {
  const Reference r = GetParam();
  RegressionProblem p = testing::readDataCsv(r.name);
  const QJsonObject json = testing::readDataJson(std::string(r.name) + ".json");
  const std::vector<double> B = certified(json, "coefficients");
  ASSERT_EQ(static_cast<int>(B.size()), p.m + 1);
  // Only an exact zero pivot is singular: even Filip's degree-10 polynomial computes.
  ASSERT_EQ(Compute(p), FitOutcome::Computed);
  double truth = 15;
  for (int j = 0; j <= p.m; ++j) truth = std::min(truth, std::max(0.0, lre(p.A[j], B[j])));
  EXPECT_GE(truth, r.coefficientDigits);
  const FitSummary s = SummarizeFit(p);
  EXPECT_NEAR(s.digitsTrusted, truth, 0.5);  // measured within 0.01 on every set
  EXPECT_EQ(DigitsWarning(s).empty(), truth >= 6) << DigitsWarning(s);

  const FitStatistics& listed = p.statistics;
  const double ssr = certified(json, "residual_ss").at(0);
  if (ssr == 0) {  // a perfect fit: ours must be tiny beside the data
    EXPECT_LT(listed.residualSquares, certified(json, "regression_ss").at(0) * 1e-24);
    EXPECT_GT(s.rSquared, 1 - 1e-15);
    return;
  }
  if (r.residualDigits == 0) {  // no digit right: still a fit of those coefficients, as measured
    EXPECT_GE(listed.residualSquares, ssr * (1 - 1e-9));
    EXPECT_LT(listed.residualSquares, ssr * 1.4);
    for (int i = 1; i <= p.N; ++i) ASSERT_TRUE(std::isfinite(ComputeEstimates(p, i)));
  } else {
    EXPECT_GE(lre(listed.residualSquares, ssr), r.residualDigits);
    EXPECT_GE(lre(listed.correlation * listed.correlation, certified(json, "r_squared").at(0)), r.residualDigits);
    EXPECT_GE(lre(listed.standardError, std::sqrt(ssr / (p.N - 2))), r.residualDigits - 0.3);
  }
  const std::vector<double> sd = certified(json, "coefficient_sd");
  for (int j = 0; j <= p.m; ++j) EXPECT_GE(lre(s.coefficients[j].stdError, sd[j]), r.statisticsDigits) << j;
  EXPECT_GE(lre(s.residualStandardError, certified(json, "residual_sd").at(0)), r.statisticsDigits);
  EXPECT_GE(lre(s.rSquared, certified(json, "r_squared").at(0)), r.statisticsDigits);
  EXPECT_GE(lre(s.fStatistic, certified(json, "f_statistic").at(0)), r.statisticsDigits);
}

INSTANTIATE_TEST_SUITE_P(Sets, NistReference,
                         ::testing::Values(Reference{"Norris", 11, 11, 13}, Reference{"Pontius", 10, 11, 13},
                                           Reference{"Longley", 6.5, 9.5, 13}, Reference{"Filip", 0, 0, 7},
                                           Reference{"Wampler1", 5.5, 0, 13}, Reference{"Wampler2", 8.5, 0, 13},
                                           Reference{"Wampler3", 5.5, 11, 13}, Reference{"Wampler4", 5.5, 11, 13},
                                           Reference{"Wampler5", 5.5, 11, 13}),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace orvane
