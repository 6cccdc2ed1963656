#include "regression/Solver.h"

#include <cmath>

#include "platform/NumberText.h"
#include "platform/RuntimeError.h"

namespace orvane {
namespace {

// One statement under the fit's error trap: a result that overflowed, divided by zero or
// took the root of a negative is not stored, and the target keeps its value.
inline void let(double& target, double value) {
  if (std::isfinite(value)) target = value;
}

// The normal-equation matrix, rows 0..m by columns 0..m+1 (the last the right-hand side).
class NormalEquations {
 public:
  explicit NormalEquations(int m) : width_(m + 2), cells_(static_cast<size_t>(m + 1) * (m + 2), 0.0) {}
  double& operator()(int row, int column) { return cells_[static_cast<size_t>(row) * width_ + column]; }

 private:
  size_t width_;
  std::vector<double> cells_;
};

void buildNormalEquations(RegressionProblem& p, NormalEquations& M) {
  const int m = p.m;
  std::vector<const double*> col(m + 2);
  for (int j = 0; j <= m + 1; ++j) col[j] = p.X.column(j);
  double* constant = p.X.column(0);
  for (int i = 1; i <= p.N; ++i) {
    constant[i] = 1;
    for (int j = 0; j <= m; ++j) {
      const double xj = col[j][i];
      for (int k = j; k <= m; ++k) {
        let(M(j, k), M(j, k) + xj * col[k][i]);
        M(k, j) = M(j, k);
      }
      let(M(j, m + 1), M(j, m + 1) + xj * col[m + 1][i]);
    }
  }
}

// Forward elimination with partial pivoting; only an exact zero column is skipped.
void eliminate(NormalEquations& M, int m) {
  double factor = 0;
  for (int k = 0; k <= m - 1; ++k) {
    double largest = std::fabs(M(k, k));
    int p = k;
    for (int i = k + 1; i <= m; ++i) {
      if (std::fabs(M(i, k)) > largest) {
        largest = std::fabs(M(i, k));
        p = i;
      }
    }
    if (largest == 0.0) continue;
    if (p != k)
      for (int c = 0; c <= m + 1; ++c) std::swap(M(k, c), M(p, c));
    for (int i = k + 1; i <= m; ++i) {
      let(factor, M(i, k) / M(k, k));
      for (int c = k; c <= m + 1; ++c) let(M(i, c), M(i, c) - factor * M(k, c));
    }
  }
}

// Back substitution; returns the failing row, or -1 when every diagonal was non-zero.
int backSubstitute(NormalEquations& M, std::vector<double>& A, int m) {
  for (int i = m; i >= 0; --i) {
    A[i] = 0;
    double sum = 0;
    for (int j = i + 1; j <= m; ++j) let(sum, sum + M(i, j) * A[j]);
    if (M(i, i) == 0.0) return i;
    let(A[i], (M(i, m + 1) - sum) / M(i, i));
  }
  return -1;
}

FitOutcome singularOutcome(NormalEquations& M, const std::vector<double>& A, int m, int row) {
  double sum = 0;
  for (int j = row; j <= m; ++j) let(sum, sum + M(row, j) * A[j]);
  return M(row, m + 1) == sum ? FitOutcome::LinearlyDependent : FitOutcome::Inconsistent;
}

void computeStatistics(RegressionProblem& p) {
  FitStatistics& s = p.statistics;
  const int m = p.m;
  const double* given = p.X.column(m + 1);
  double total = 0;
  for (int i = 1; i <= p.N; ++i) let(total, total + given[i]);
  let(s.averageGiven, total / p.N);
  const double mean = s.averageGiven;

  double estimates = 0, explained = 0, residual = 0, spread = 0;
  for (int i = 1; i <= p.N; ++i) {
    const double e = ComputeEstimates(p, i);
    let(estimates, estimates + e);
    let(explained, explained + (mean - e) * (mean - e));
    let(residual, residual + (given[i] - e) * (given[i] - e));
    let(spread, spread + (mean - given[i]) * (mean - given[i]));
  }
  let(s.averageEstimated, estimates / p.N);
  if (spread == 0.0)
    s.correlation = 1;
  else
    let(s.correlation, std::sqrt(explained / spread));
  s.residualSquares = residual;
  // N - 2 whatever m is: the program's own rule, kept.
  let(s.standardError, std::sqrt(residual / (p.N - 2)));
}

std::string label38(std::string_view label) {
  return std::string(label.size() < 38 ? 38 - label.size() : 0, ' ') + std::string(label);
}

}  // namespace

FitOutcome Compute(RegressionProblem& problem) {
  const int m = problem.m;
  problem.computed = false;
  NormalEquations M(m);
  problem.A.assign(static_cast<size_t>(m) + 2, 0.0);
  buildNormalEquations(problem, M);
  eliminate(M, m);
  const int failing = backSubstitute(M, problem.A, m);
  if (failing >= 0) return singularOutcome(M, problem.A, m, failing);
  computeStatistics(problem);
  problem.computed = true;
  return FitOutcome::Computed;
}

double ComputeEstimates(const RegressionProblem& problem, int i) {
  double estimate = problem.A[0];
  for (int j = 1; j <= problem.m; ++j) {
    const double next = estimate + problem.X(j, i) * problem.A[j];
    if (!std::isfinite(next)) break;  // the trap resumes after the call, with the sum so far
    estimate = next;
  }
  return estimate;
}

std::string SingularMessage(FitOutcome outcome) {
  switch (outcome) {
    case FitOutcome::LinearlyDependent: return "YIELDS LINEARLY DEPENDENT SYSTEM";
    case FitOutcome::Inconsistent: return "YIELDS INCONSISTENT SYSTEM.";
    case FitOutcome::Computed: break;
  }
  return {};
}

std::vector<std::string> StatisticsLines(const FitStatistics& s) {
  return {
      label38("CORRELATION COEFFICIENT=") + formatGeneral(s.correlation),
      label38("STANDARD ERROR OF ESTIMATE (UNBIASED)=") + formatGeneral(s.standardError),
      label38("SUM (RESIDUALS)^2=") + formatGeneral(s.residualSquares),
      label38("AVERAGE OF FUNCTION(GIVEN)=") + formatGeneral(s.averageGiven),
      label38("AVERAGE OF FUNCTION(ESTIMATED)=") + formatGeneral(s.averageEstimated),
  };
}

std::vector<std::string> ResultsListing(const RegressionProblem& problem) {
  std::vector<std::string> lines = StatisticsLines(problem.statistics);
  lines.emplace_back();
  lines.emplace_back("COEFFICIENTS:");
  for (int j = 0; j <= problem.m; ++j)
    lines.push_back("A" + std::to_string(j) + "=" + formatGeneral(problem.A[j]));
  return lines;
}

double EstimateAt(const RegressionProblem& problem, const std::vector<std::string>& texts) {
  double estimate = problem.A[0];
  for (int i = 1; i <= problem.m; ++i) {
    const size_t k = static_cast<size_t>(i) - 1;
    const double v = k < texts.size() ? leadingNumber(texts[k]) : 0.0;
    estimate = estimate + v * problem.A[i];
  }
  if (!std::isfinite(estimate)) throw RuntimeError(err::Overflow);
  return estimate;
}

std::string FittedFunctionText(const RegressionProblem& problem) {
  if (!problem.computed) return {};
  const std::vector<double>& A = problem.A;
  if (problem.m == 1) return formatGeneral(A[0]) + "+" + formatGeneral(A[1]) + "*x";
  if (problem.m == 2)
    return formatGeneral(A[0]) + "+" + formatGeneral(A[1]) + "*x" + "+" + formatGeneral(A[2]) + "*y";
  return {};
}

}  // namespace orvane
