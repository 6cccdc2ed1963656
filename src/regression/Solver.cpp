#include "regression/Solver.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "platform/NumberText.h"
#include "platform/RuntimeError.h"

namespace orvane {
namespace {

// The fit's error trap: a statement whose result overflowed, divided by zero or took the
// root of a negative is skipped, and its target keeps its value. It notes that it fired;
// with finite data and a pivot never zero, only an overflow makes it fire.
class Trap {
 public:
  void let(double& target, double value) {
    if (std::isfinite(value))
      target = value;
    else
      fired_ = true;
  }
  void fire() { fired_ = true; }
  bool fired() const { return fired_; }

 private:
  bool fired_ = false;
};

// The estimate for a set whose variables are x(1) .. x(m), summed as ComputeEstimates
// says; the trap notes an overflow.
template <typename Variable>
double estimateOf(const std::vector<double>& A, int m, Variable x, Trap& trap) {
  double estimate = A[0];
  for (int j = 1; j <= m; ++j) {
    const double next = estimate + x(j) * A[j];
    if (!std::isfinite(next)) {  // the trap resumes after the call, with the sum so far
      trap.fire();
      break;
    }
    estimate = next;
  }
  return estimate;
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

// Each cell sums its products over the sets in order, under the fit's error trap. The
// sets go in runs that stay in the cache, and four cells run side by side so that
// their additions overlap; every cell still sees exactly its own sequence of sums.
void buildNormalEquations(const DataSets& sets, NormalEquations& M, Trap& trap) {
  const int m = sets.m();
  struct Cell {
    int row, column;  // -1: a filler that makes up the last group of four (ones times ones)
  };
  constexpr size_t kSide = 4;
  std::vector<Cell> cells;
  for (int j = 0; j <= m; ++j)
    for (int k = j; k <= m + 1; ++k) cells.push_back({j, k});
  while (cells.size() % kSide != 0) cells.push_back({-1, -1});

  // The error trap as a selection: an addition that overflows leaves the sum as it was.
  const auto add = [](double sum, double term) {
    const double next = sum + term;
    return std::fabs(next) <= std::numeric_limits<double>::max() ? next : sum;
  };
  constexpr int kRun = 512;
  sets.forEachRun(kRun, [&](const SetRun& run) {
    const int count = run.count;
    for (size_t c = 0; c < cells.size(); c += kSide) {
      const Cell* g = &cells[c];
      const double* left[kSide];
      const double* right[kSide];
      for (size_t t = 0; t < kSide; ++t) {
        left[t] = run.column(std::max(g[t].row, 0));
        right[t] = run.column(std::max(g[t].column, 0));
      }
      const double start[kSide] = {g[0].row < 0 ? 0 : M(g[0].row, g[0].column), g[1].row < 0 ? 0 : M(g[1].row, g[1].column),
                                   g[2].row < 0 ? 0 : M(g[2].row, g[2].column), g[3].row < 0 ? 0 : M(g[3].row, g[3].column)};
      // Plain additions first. Once a sum overflows it stays infinite (or NaN), so a
      // run whose four sums end finite never met the trap and is exact to the bit;
      // one that did not is summed again with the trap.
      double s0 = start[0], s1 = start[1], s2 = start[2], s3 = start[3];
      for (int i = 0; i < count; ++i) {
        s0 += left[0][i] * right[0][i];
        s1 += left[1][i] * right[1][i];
        s2 += left[2][i] * right[2][i];
        s3 += left[3][i] * right[3][i];
      }
      double sums[kSide] = {s0, s1, s2, s3};
      for (size_t t = 0; t < kSide; ++t) {
        if (std::isfinite(sums[t])) continue;
        trap.fire();
        sums[t] = start[t];
        for (int i = 0; i < count; ++i) sums[t] = add(sums[t], left[t][i] * right[t][i]);
      }
      for (size_t t = 0; t < kSide; ++t)
        if (g[t].row >= 0) M(g[t].row, g[t].column) = sums[t];
    }
  });
  for (int j = 0; j <= m; ++j)
    for (int k = j + 1; k <= m; ++k) M(k, j) = M(j, k);
}

// Forward elimination with partial pivoting; only an exact zero column is skipped.
void eliminate(NormalEquations& M, int m, Trap& trap) {
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
      trap.let(factor, M(i, k) / M(k, k));
      for (int c = k; c <= m + 1; ++c) trap.let(M(i, c), M(i, c) - factor * M(k, c));
    }
  }
}

// Back substitution; returns the failing row, or -1 when every diagonal was non-zero.
int backSubstitute(NormalEquations& M, std::vector<double>& A, int m, Trap& trap) {
  for (int i = m; i >= 0; --i) {
    A[i] = 0;
    double sum = 0;
    for (int j = i + 1; j <= m; ++j) trap.let(sum, sum + M(i, j) * A[j]);
    if (M(i, i) == 0.0) return i;
    trap.let(A[i], (M(i, m + 1) - sum) / M(i, i));
  }
  return -1;
}

FitOutcome singularOutcome(NormalEquations& M, const std::vector<double>& A, int m, int row, Trap& trap) {
  double sum = 0;
  for (int j = row; j <= m; ++j) trap.let(sum, sum + M(row, j) * A[j]);
  return M(row, m + 1) == sum ? FitOutcome::LinearlyDependent : FitOutcome::Inconsistent;
}

void computeStatistics(const DataSets& sets, RegressionProblem& p, Trap& trap) {
  FitStatistics& s = p.statistics;
  const int m = p.m;
  constexpr int kRun = 512;
  double total = 0;
  sets.forEachRun(kRun, [&](const SetRun& run) {
    const double* given = run.column(m + 1);
    for (int i = 0; i < run.count; ++i) trap.let(total, total + given[i]);
  });
  trap.let(s.averageGiven, total / p.N);
  const double mean = s.averageGiven;

  double estimates = 0, explained = 0, residual = 0, spread = 0;
  double estimate[kRun];
  sets.forEachRun(kRun, [&](const SetRun& run) {
    const double* given = run.column(m + 1);
    // The run's estimates variable by variable. A sum that overflows stays infinite (or
    // NaN), so an estimate that ends finite never met the trap; one that did not is
    // summed again set by set with it.
    std::fill_n(estimate, run.count, p.A[0]);
    for (int j = 1; j <= m; ++j) {
      const double* x = run.column(j);
      const double a = p.A[j];
      for (int i = 0; i < run.count; ++i) estimate[i] += x[i] * a;
    }
    for (int i = 0; i < run.count; ++i) {
      if (!std::isfinite(estimate[i]))
        estimate[i] = estimateOf(p.A, m, [&](int j) { return run.column(j)[i]; }, trap);
      const double e = estimate[i];
      trap.let(estimates, estimates + e);
      trap.let(explained, explained + (mean - e) * (mean - e));
      trap.let(residual, residual + (given[i] - e) * (given[i] - e));
      trap.let(spread, spread + (mean - given[i]) * (mean - given[i]));
    }
  });
  trap.let(s.averageEstimated, estimates / p.N);
  if (spread == 0.0)
    s.correlation = 1;
  else
    trap.let(s.correlation, std::sqrt(explained / spread));
  s.residualSquares = residual;
  // N - 2 whatever m is: the program's own rule, kept. With two sets or fewer it divides
  // by zero and the value stays as it was: the rule, not an overflow.
  const double unbiased = std::sqrt(residual / (p.N - 2));
  if (std::isfinite(unbiased)) s.standardError = unbiased;
}

std::string label38(std::string_view label) {
  return std::string(label.size() < 38 ? 38 - label.size() : 0, ' ') + std::string(label);
}

}  // namespace

FitOutcome Compute(RegressionProblem& problem, bool* overflowed) {
  double* constant = problem.X.column(0);
  for (int i = 1; i <= problem.N; ++i) constant[i] = 1;
  return Compute(MatrixSets(problem), problem, overflowed);
}

FitOutcome Compute(const DataSets& sets, RegressionProblem& problem, bool* overflowed) {
  const int m = problem.m;
  problem.computed = false;
  NormalEquations M(m);
  problem.A.assign(static_cast<size_t>(m) + 2, 0.0);
  Trap trap;
  buildNormalEquations(sets, M, trap);
  eliminate(M, m, trap);
  const int failing = backSubstitute(M, problem.A, m, trap);
  FitOutcome outcome = FitOutcome::Computed;
  if (failing >= 0) {
    outcome = singularOutcome(M, problem.A, m, failing, trap);
  } else {
    computeStatistics(sets, problem, trap);
    problem.computed = true;
  }
  if (overflowed) *overflowed = trap.fired();
  return outcome;
}

double ComputeEstimates(const RegressionProblem& problem, int i) {
  Trap ignored;
  return estimateOf(problem.A, problem.m, [&](int j) { return problem.X(j, i); }, ignored);
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
