#pragma once
// The least-squares fit: the normal equations of the linear model with a constant term,
// solved by Gaussian elimination with partial pivoting, and the five fit statistics.
//
// Arithmetic faults: the fit has always run under an error trap that resumes with the
// next statement after an overflow, a division by zero or an invalid argument, so the
// statement's target keeps the value it had. Doubles do not raise here; they give inf
// or NaN instead. Every assignment below therefore stores its result only when it is
// finite, which is exactly "the statement failed and was skipped" for finite inputs.

#include <string>
#include <vector>

#include "regression/DataSets.h"
#include "regression/RegressionProblem.h"

namespace orvane {

enum class FitOutcome {
  Computed,            // coefficients and statistics set, problem.computed true
  LinearlyDependent,   // a zero pivot whose row is consistent
  Inconsistent,        // a zero pivot whose row contradicts the others
};

// Builds and solves the normal equations for sets 1..N and computes the statistics.
// Sets X(0, i) = 1 for every set and re-creates A. On a singular system the statistics
// keep their previous values and problem.computed is false. `overflowed`, when given,
// tells whether the error trap skipped a sum, product or quotient that overflowed: the
// results are then not those of the data (the window lists them all the same).
FitOutcome Compute(RegressionProblem& problem, bool* overflowed = nullptr);
// The same fit of `sets` (the problem's m and N), read pass by pass: the problem gets the
// coefficients, the statistics and the computed flag; its X is neither read nor set.
FitOutcome Compute(const DataSets& sets, RegressionProblem& problem, bool* overflowed = nullptr);

// The model's estimate for set i: A(0) + X(1,i)·A(1) + ... + X(m,i)·A(m), summed in that
// order. An overflowing term ends the sum with what it held before.
double ComputeEstimates(const RegressionProblem& problem, int i);

// The message line of a singular outcome.
std::string SingularMessage(FitOutcome outcome);

// The results list: the five statistics with their labels right-aligned to 38
// characters, an empty line, "COEFFICIENTS:", then "A0=" ... "Am=".
std::vector<std::string> ResultsListing(const RegressionProblem& problem);

// The five statistics lines alone (the first five lines of the listing).
std::vector<std::string> StatisticsLines(const FitStatistics& statistics);

// The estimate at a point typed into the evaluation window: A(0) + v1·A(1) + ... with
// each v the leading numeric part of its text (0 when empty or not a number); missing
// texts count as 0. RuntimeError 6 when the sum overflows.
double EstimateAt(const RegressionProblem& problem, const std::vector<std::string>& texts);

// The fitted function as an expression in x (one variable) or x and y (two variables)
// for the plot windows, such as "1+2*x" or "2.5+-0.75*x+3*y"; empty when nothing has
// been computed or m is not 1 or 2.
std::string FittedFunctionText(const RegressionProblem& problem);

}  // namespace orvane
