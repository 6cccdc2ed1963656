#pragma once
// The statistics of a computed fit, beside its listing: for each coefficient its
// standard error, t value, p value and 95% interval; R², adjusted R², the residual
// standard error, the F test, the condition number of the design, and how many digits
// of the listed coefficients can be trusted.
//
// The listing solves the normal equations, which square the data's condition number and
// can lose every digit without a sign. The summary solves the same least-squares
// problem again by an orthogonal factorisation: Householder QR with column pivoting on
// the variables' centred and scaled columns, refined with residuals summed in extended
// precision. The standard errors, R² and F come from that solution's residuals and the
// factor's (X'X)^-1; digits trusted compares the listed coefficients with it. The
// estimates shown are the listing's own.

#include <cstdint>
#include <string>
#include <vector>

#include "regression/DataSets.h"
#include "regression/RegressionProblem.h"

namespace orvane {

struct CoefficientStatistics {
  double estimate = 0;  // the listed A(j)
  double stdError = 0;
  double t = 0;         // estimate / standard error
  double p = 0;         // two-sided, Student's t with N - m - 1 degrees of freedom
  double low = 0;       // the 95% confidence interval
  double high = 0;
};

struct FitSummary {
  int32_t N = 0;
  int32_t m = 0;
  int64_t dfResidual = 0;  // N - m - 1
  // False when the data do not determine the coefficients (a variable constant or a
  // combination of the others): then only N, m, the estimates and a digits trusted of 0
  // are meaningful; every other figure is NaN.
  bool determined = false;
  std::vector<CoefficientStatistics> coefficients;  // A0..Am
  double rSquared = 0;
  double adjustedRSquared = 0;
  double residualStandardError = 0;  // divisor N - m - 1
  double fStatistic = 0;             // on m and N - m - 1 degrees of freedom
  double fPValue = 0;
  double conditionNumber = 0;        // of the design matrix with its columns scaled to length 1
  double digitsTrusted = 0;          // correct significant digits of the listed coefficients, 0..15

  // What the bands around a fitted function need: the variables' means, (Xc'Xc)^-1 of
  // the centred columns (m x m, row by row) and the 97.5% point of Student's t.
  std::vector<double> means;
  std::vector<double> centredInverse;
  double tQuantile = 0;
};

// The summary of the problem's fit; the listing (problem.A) must have been computed.
// N below 2 or a matrix the memory cannot take is std::bad_alloc or an undetermined
// summary, never a crash.
FitSummary SummarizeFit(const RegressionProblem& problem);
// The same of `sets` read pass by pass, with the listed coefficients A(0)..A(m).
FitSummary SummarizeFit(const DataSets& sets, const std::vector<double>& A);

// Digits trusted below this are worth a warning beside the listing.
constexpr double kDigitsWorthAWarning = 6;

// "Warning: only about N digits of the coefficients can be trusted (ill-conditioned
// data); see Statistics." with N the whole digits trusted, or empty when there are
// kDigitsWorthAWarning or more.
std::string DigitsWarning(const FitSummary& summary);

// The half widths of the 95% bands around the fitted function of one variable at x:
// of the confidence band of the mean and of the prediction band of a new observation.
struct BandHalfWidths {
  double mean = 0;
  double prediction = 0;
};
BandHalfWidths BandsAt(const FitSummary& summary, double x);

}  // namespace orvane
