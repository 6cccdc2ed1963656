// The fit against the certified results of the NIST StRD linear regression sets (copied
// into data/). Accuracy is the log relative error, LRE = -log10(|ours - certified| /
// |certified|): correct significant digits. The normal equations square the condition
// number, so the bounds are what this elimination reaches, a digit under the measured
// figure (coefficients: Norris 12.1, Pontius 11.2, Longley 7.4, Wampler1,3-5 6.6,
// Wampler2 9.6; 10 or more in the residual sums and R^2).

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "platform/NumberText.h"
#include "RegressionTestSupport.h"
#include "regression/FitSummary.h"
#include "regression/Solver.h"

namespace orvane {
namespace {

using orvane::testing::readDataCsv;
using orvane::testing::readDataText;

// The certified value, or array of values, under `key`, read from their quoted texts.
std::vector<double> certified(const std::string& json, const std::string& key) {
  size_t at = json.find(':', json.find("\"" + key + "\"")) + 1;
  const size_t first = json.find_first_not_of(" \n", at);
  const size_t end = json[first] == '[' ? json.find(']', first) : json.find('"', first + 1) + 1;
  std::vector<double> values;
  for (size_t open = json.find('"', at); open < end; open = json.find('"', open)) {
    const size_t close = json.find('"', open + 1);
    values.push_back(parseStrict(json.substr(open + 1, close - open - 1)));
    open = close + 1;
  }
  return values;
}

double lre(double ours, double exact) {
  if (ours == exact) return 15;
  return std::min(15.0, -std::log10(exact == 0 ? std::fabs(ours) : std::fabs(ours - exact) / std::fabs(exact)));
}

struct Reference { const char* name; double coefficientDigits, residualDigits; };

class NistReference : public ::testing::TestWithParam<Reference> {};

TEST_P(NistReference, CoefficientsAndResidualsToCertifiedDigits) {
  const Reference r = GetParam();
  RegressionProblem p = readDataCsv(r.name);
  const std::string json = readDataText(std::string(r.name) + ".json");
  const std::vector<double> B = certified(json, "coefficients");
  ASSERT_EQ(static_cast<int>(B.size()), p.m + 1);
  ASSERT_EQ(Compute(p), FitOutcome::Computed);
  double least = 15;
  for (int j = 0; j <= p.m; ++j) least = std::min(least, lre(p.A[j], B[j]));
  EXPECT_GE(least, r.coefficientDigits);

  const double ssr = certified(json, "residual_ss").at(0);
  if (ssr == 0) {  // a perfect fit: ours must be tiny beside the data
    EXPECT_LT(p.statistics.residualSquares, certified(json, "regression_ss").at(0) * 1e-24);
  } else {
    const FitStatistics& s = p.statistics;
    EXPECT_GE(lre(s.residualSquares, ssr), r.residualDigits);
    EXPECT_GE(lre(s.correlation * s.correlation, certified(json, "r_squared").at(0)), r.residualDigits);
    EXPECT_GE(lre(s.standardError, std::sqrt(ssr / (p.N - 2))), r.residualDigits - 0.3);
  }
}

INSTANTIATE_TEST_SUITE_P(Sets, NistReference,
                         ::testing::Values(Reference{"Norris", 11, 11}, Reference{"Pontius", 10, 11},
                                           Reference{"Longley", 6.5, 9.5}, Reference{"Wampler1", 5.5, 0},
                                           Reference{"Wampler2", 8.5, 0}, Reference{"Wampler3", 5.5, 11},
                                           Reference{"Wampler4", 5.5, 11}, Reference{"Wampler5", 5.5, 11}),
                         [](const auto& info) { return std::string(info.param.name); });

// The degree-10 polynomial squares a condition number near 1e15: no coefficient is right,
// but the fit still "computes" (only an exact zero pivot is singular; digits trusted tells
// how little it is worth) and is a valid fit of those coefficients, its residual sum at
// least the minimum and, as measured, within 1.4 times it.
TEST(NistReferenceFilip, IllConditionedFitStillComputes) {
  RegressionProblem p = readDataCsv("Filip");
  ASSERT_EQ(p.m, 10);
  ASSERT_EQ(Compute(p), FitOutcome::Computed);
  const double ssr = certified(readDataText("Filip.json"), "residual_ss").at(0);
  EXPECT_GE(p.statistics.residualSquares, ssr * (1 - 1e-9));
  EXPECT_LT(p.statistics.residualSquares, ssr * 1.4);
  for (int i = 1; i <= p.N; ++i) ASSERT_TRUE(std::isfinite(ComputeEstimates(p, i)));
}


// The summary beside the listing: digits trusted against the listing's true correct
// digits (its coefficients' least LRE), and, where the fit is not perfect, the standard
// deviations, residual standard deviation, R² and F of the summary's own solution
// against the certified ones (Filip's data, rounded to doubles, hold about 7.7).
class NistSummary : public ::testing::TestWithParam<const char*> {};

TEST_P(NistSummary, DigitsTrustedAsTheListingsTrueDigits) {
  RegressionProblem p = readDataCsv(GetParam());
  const std::string json = readDataText(std::string(GetParam()) + ".json");
  ASSERT_EQ(Compute(p), FitOutcome::Computed);
  const FitSummary s = SummarizeFit(p);
  const std::vector<double> B = certified(json, "coefficients");
  double truth = 15;
  for (int j = 0; j <= p.m; ++j) truth = std::min(truth, std::max(0.0, lre(p.A[j], B[j])));
  EXPECT_NEAR(s.digitsTrusted, truth, 0.5);  // measured within 0.01 on every set
  EXPECT_EQ(DigitsWarning(s).empty(), truth >= 6) << DigitsWarning(s);

  const double residualSd = certified(json, "residual_sd").at(0);
  const double statisticsDigits = std::string(GetParam()) == "Filip" ? 7 : 13;
  if (residualSd == 0) {
    EXPECT_GT(s.rSquared, 1 - 1e-15);
    return;
  }
  const std::vector<double> sd = certified(json, "coefficient_sd");
  for (int j = 0; j <= p.m; ++j) EXPECT_GE(lre(s.coefficients[j].stdError, sd[j]), statisticsDigits) << j;
  EXPECT_GE(lre(s.residualStandardError, residualSd), statisticsDigits);
  EXPECT_GE(lre(s.rSquared, certified(json, "r_squared").at(0)), statisticsDigits);
  EXPECT_GE(lre(s.fStatistic, certified(json, "f_statistic").at(0)), statisticsDigits);
}

INSTANTIATE_TEST_SUITE_P(AllNine, NistSummary,
                         ::testing::Values("Norris", "Pontius", "Longley", "Filip", "Wampler1", "Wampler2", "Wampler3",
                                           "Wampler4", "Wampler5"));

}  // namespace
}  // namespace orvane
