#include "regression/FitSummary.h"

#include <Eigen/Dense>
#include <algorithm>
#include <boost/math/distributions/fisher_f.hpp>
#include <boost/math/distributions/students_t.hpp>
#include <cmath>
#include <limits>

namespace orvane {

namespace {

using Real = long double;  // residuals and sums: the digits the comparison needs
using Eigen::MatrixXd;
using Eigen::VectorXd;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kEpsilon = std::numeric_limits<double>::epsilon();
constexpr double kMostDigits = 15;

// Distributions that answer NaN for what has no value (no degrees of freedom, a NaN
// statistic) instead of throwing.
using Quiet = boost::math::policies::policy<
    boost::math::policies::domain_error<boost::math::policies::ignore_error>,
    boost::math::policies::overflow_error<boost::math::policies::ignore_error>,
    boost::math::policies::evaluation_error<boost::math::policies::ignore_error>,
    boost::math::policies::pole_error<boost::math::policies::ignore_error>>;
using StudentsT = boost::math::students_t_distribution<double, Quiet>;
using FisherF = boost::math::fisher_f_distribution<double, Quiet>;

// Four running sums side by side, fed the terms of sets 0..n-1 in order: term i goes to
// sum i % 4, but the last n % 4 terms to the first sum. The order of every sum is fixed,
// so the result is the same on every run, however the terms arrive.
class Sum4 {
 public:
  explicit Sum4(int n) : lanes_(n - n % 4) {}
  // The terms of sets first .. first + count - 1, term(k) for k = 0 .. count - 1.
  template <typename Term>
  void add(int first, int count, Term term) {
    const int inLanes = std::clamp(lanes_ - first, 0, count);
    int k = 0;
    for (; k < inLanes && ((first + k) & 3) != 0; ++k) s_[(first + k) & 3] += term(k);
    double s0 = s_[0], s1 = s_[1], s2 = s_[2], s3 = s_[3];  // where the loop keeps them
    for (; k + 4 <= inLanes; k += 4) {
      s0 += term(k);
      s1 += term(k + 1);
      s2 += term(k + 2);
      s3 += term(k + 3);
    }
    s_[0] = s0, s_[1] = s1, s_[2] = s2, s_[3] = s3;
    for (; k < inLanes; ++k) s_[(first + k) & 3] += term(k);
    for (; k < count; ++k) s_[0] += term(k);
  }
  double total() const { return (s_[0] + s_[1]) + (s_[2] + s_[3]); }

 private:
  int lanes_;
  double s_[4] = {0, 0, 0, 0};
};

// A column's mean to about the last bit (the plain mean corrected by the mean
// deviation from it) and a power of two near its largest deviation, by which the
// centred column is divided without a rounding.
struct ColumnCentre {
  double mean = 0;
  double scale = 1;
};

// What a first pass over the sets tells: whether every value is finite, each column's
// plain mean (x1..xm, then y) and Σy².
struct FirstPass {
  bool finite = true;
  std::vector<double> rough;
  double yy = 0;
};

constexpr int kRun = 256;  // sets per run of the residual passes, whose sums it orders
// Sets per run of the passes whose sums do not depend on the runs: long runs of each
// column, read straight through.
constexpr int kLongRun = 1 << 16;

FirstPass firstPass(const DataSets& sets) {
  const int n = sets.N(), m = sets.m();
  std::vector<Sum4> sums(static_cast<size_t>(m) + 1, Sum4(n));
  Sum4 squares(n);
  FirstPass pass;
  sets.forEachRun(kLongRun, [&](const SetRun& run) {
    for (int j = 1; j <= m + 1; ++j) {
      const double* v = run.column(j);
      bool finite = true;
      for (int k = 0; k < run.count; ++k) finite &= std::isfinite(v[k]);
      pass.finite = pass.finite && finite;
      sums[static_cast<size_t>(j) - 1].add(run.first - 1, run.count, [v](int k) { return v[k]; });
    }
    const double* y = run.column(m + 1);
    squares.add(run.first - 1, run.count, [y](int k) { return y[k] * y[k]; });
  });
  for (const Sum4& sum : sums) pass.rough.push_back(sum.total() / n);
  pass.yy = squares.total();
  return pass;
}

// Each column's centre: its plain mean corrected by the sum of the deviations from it.
std::vector<ColumnCentre> centresOf(const DataSets& sets, const std::vector<double>& rough) {
  const int n = sets.N(), m = sets.m();
  std::vector<Sum4> corrections(static_cast<size_t>(m) + 1, Sum4(n));
  std::vector<double> largest(static_cast<size_t>(m) + 1, 0.0);
  sets.forEachRun(kLongRun, [&](const SetRun& run) {
    for (int j = 1; j <= m + 1; ++j) {
      const size_t c = static_cast<size_t>(j) - 1;
      const double* v = run.column(j);
      const double mean = rough[c];
      double most = largest[c];
      corrections[c].add(run.first - 1, run.count, [&](int k) {
        const double d = v[k] - mean;
        most = std::max(most, std::fabs(d));
        return d;
      });
      largest[c] = most;
    }
  });
  std::vector<ColumnCentre> centres;
  for (size_t c = 0; c < rough.size(); ++c) {
    int exponent = 0;
    std::frexp(largest[c], &exponent);
    centres.push_back({rough[c] + corrections[c].total() / n,
                       largest[c] > 0 && std::isfinite(largest[c]) ? std::ldexp(1.0, exponent) : 0.0});
  }
  return centres;
}

// The triangular factor of [x1 - μ1 ... xm - μm | y - ȳ], each column divided by its
// power of two, by Householder QR over runs of sets: each run is stacked under the
// factor so far and the stack factorised again. The data are read once, and nothing of
// the size of the data is written.
MatrixXd stackedFactor(const DataSets& sets, const std::vector<ColumnCentre>& centres) {
  const int p = sets.m() + 1;
  const int kBlock = std::max(2048, 4 * p);  // the stacked factor a small part of each run
  MatrixXd W(kBlock + p, p);
  int kept = 0;  // rows of the factor so far, on top of W
  sets.forEachRun(kBlock, [&](const SetRun& run) {
    const int count = run.count;
    for (int j = 0; j < p; ++j) {
      const double* v = run.column(j + 1);
      const double mu = centres[j].mean, inverse = 1 / centres[j].scale;
      double* w = W.col(j).data() + kept;
      for (int k = 0; k < count; ++k) w[k] = (v[k] - mu) * inverse;
    }
    auto stack = W.topRows(kept + count);
    Eigen::HouseholderQR<Eigen::Ref<MatrixXd>> qr(stack);
    kept = std::min(kept + count, p);
    W.topRows(kept).triangularView<Eigen::StrictlyLower>().setZero();
  });
  MatrixXd R = MatrixXd::Zero(p, p);
  R.topRows(kept) = W.topRows(kept);
  return R;
}

// The variables' centred columns factorised: Xc = Q·Rz·S with Rz's columns of length 1
// and S the columns' lengths; Rz factorised again with column pivoting, which tells the
// rank and gives the factor the corrections use. Also the factor's own least-squares
// solution for the centred given values.
struct CentredFactor {
  std::vector<double> means;   // of x1..xm, index 0..m-1
  std::vector<double> scales;  // length of each centred column
  double ybar = 0;
  MatrixXd Rz;
  Eigen::ColPivHouseholderQR<MatrixXd> qr;
  std::vector<double> slopes;  // the factor's solution for B1..Bm
  bool determined = false;

  CentredFactor(const DataSets& sets, const FirstPass& first) {
    const int m = sets.m();
    std::vector<ColumnCentre> centres = centresOf(sets, first.rough);
    ybar = centres[m].mean;
    if (!(centres[m].scale > 0)) centres[m].scale = 1;  // the given values all equal
    for (int j = 0; j < m; ++j) means.push_back(centres[j].mean);
    // A constant variable repeats the constant term.
    const auto constant = [](const ColumnCentre& k) { return !(k.scale > 0); };
    if (sets.N() <= m || std::any_of(centres.begin(), centres.end() - 1, constant)) return;
    const MatrixXd R = stackedFactor(sets, centres);
    Rz = R.topLeftCorner(m, m);
    for (int j = 0; j < m; ++j) {
      const double length = Rz.col(j).norm();
      scales.push_back(length * centres[j].scale);
      if (!(length > 0) || !std::isfinite(scales.back())) return;
      Rz.col(j) /= length;
    }
    qr.compute(Rz);
    if (qr.rank() != m) return;
    const VectorXd beta = R.topLeftCorner(m, m).triangularView<Eigen::Upper>().solve(R.col(m).head(m));
    for (int j = 0; j < m; ++j) slopes.push_back(beta[j] * centres[m].scale / centres[j].scale);
    determined = true;
  }
};

// The least-squares coefficients B0..Bm of the uncentred data: first the factor's own
// solution, then corrected through the factor's semi-normal equations with the
// gradient Xc'r summed in extended precision, until the corrections stop shrinking.
// With the gradient exact, the corrections converge to the exact solution however large
// the residuals are. `uncertainty` keeps the size of the last correction of each, an
// honest bound on what the reference itself still lacks.
struct ReferenceSolution {
  std::vector<Real> B;
  std::vector<double> uncertainty;
  Real residualSquares = 0;   // about the residuals' mean (0 once solved)
  Real explainedSquares = 0;  // of the fitted values about their mean
};

// One pass over the sets for the current B: r = y - B0 - x1·B1 - ... - xm·Bm in extended
// precision and what is summed of it. Sets go in blocks that stay in the cache.
struct ResidualPass {
  Real sum = 0, squares = 0;
  Real explained = 0, explainedSum = 0;  // Σ(a - r)² and Σ(a - r), a = y - ȳ
  std::vector<Real> gradient;            // Σ (xj - μj)·r for j = 1..m (index j - 1)
};

ResidualPass residualPass(const DataSets& sets, const std::vector<Real>& B, const std::vector<double>& means,
                          double ybar) {
  const int m = sets.m();
  ResidualPass pass;
  pass.gradient.assign(static_cast<size_t>(m), 0);
  sets.forEachRun(kRun, [&](const SetRun& run) {
    Real r[kRun];
    const int count = run.count;
    const double* y = run.column(m + 1);
    for (int k = 0; k < count; ++k) r[k] = y[k] - B[0];
    for (int j = 1; j <= m; ++j) {
      const double* x = run.column(j);
      const Real b = B[j];
      for (int k = 0; k < count; ++k) r[k] -= x[k] * b;
    }
    for (int j = 1; j <= m; ++j) {
      const double* x = run.column(j);
      const Real mu = means[j - 1];
      Real even = 0, odd = 0;
      int k = 0;
      for (; k + 2 <= count; k += 2) {
        even += (x[k] - mu) * r[k];
        odd += (x[k + 1] - mu) * r[k + 1];
      }
      if (k < count) even += (x[k] - mu) * r[k];
      pass.gradient[j - 1] += even + odd;
    }
    // The running sums held where the loop keeps them, in the same order.
    Real sum = pass.sum, squares = pass.squares, explainedSum = pass.explainedSum, explainedSquares = pass.explained;
    for (int k = 0; k < count; ++k) {
      sum += r[k];
      squares += r[k] * r[k];
      const Real explained = (y[k] - Real(ybar)) - r[k];
      explainedSum += explained;
      explainedSquares += explained * explained;
    }
    pass.sum = sum, pass.squares = squares, pass.explainedSum = explainedSum, pass.explained = explainedSquares;
  });
  return pass;
}

ReferenceSolution solveReference(const DataSets& sets, CentredFactor& f) {
  constexpr int kMostSteps = 6;
  // A correction this small relative to its coefficient changes nothing the summary
  // shows (digits are counted to 15), and the residual sums of the B before it stand.
  constexpr double kSettled = 1e-16;
  const int n = sets.N(), m = sets.m();
  ReferenceSolution s;
  s.B.assign(static_cast<size_t>(m) + 1, 0);
  s.uncertainty.assign(static_cast<size_t>(m) + 1, 0);

  // The factor's own solution.
  const double ybar = f.ybar;
  Real constant = ybar;
  for (int j = 1; j <= m; ++j) {
    s.B[j] = f.slopes[j - 1];
    constant -= f.means[j - 1] * s.B[j];
  }
  s.B[0] = constant;
  for (int j = 0; j <= m; ++j) s.uncertainty[j] = static_cast<double>(std::fabs(s.B[j]));  // unknown yet

  const auto& P = f.qr.colsPermutation();
  const auto R = f.qr.matrixR().topLeftCorner(m, m).triangularView<Eigen::Upper>();
  std::vector<Real> before = s.B;
  double previous = std::numeric_limits<double>::infinity();
  bool last = false;  // the pass about to run is for the final B
  for (int step = 0;; ++step) {
    const ResidualPass pass = residualPass(sets, s.B, f.means, ybar);
    const Real rbar = pass.sum / n;
    s.residualSquares = pass.squares - pass.sum * rbar;
    s.explainedSquares = pass.explained + 2 * rbar * pass.explainedSum + n * rbar * rbar;
    if (last) break;
    // (Z'Z)⁻¹ = P·R⁻¹·R⁻ᵀ·Pᵀ on the scaled gradient.
    VectorXd g(m);
    for (int j = 0; j < m; ++j) g[j] = static_cast<double>(pass.gradient[j]) / f.scales[j];
    VectorXd h = P.transpose() * g;
    R.transpose().solveInPlace(h);
    R.solveInPlace(h);
    const VectorXd d = P * h;
    std::vector<Real> delta(static_cast<size_t>(m) + 1);
    delta[0] = rbar;
    for (int j = 1; j <= m; ++j) {
      delta[j] = Real(d[j - 1]) / f.scales[j - 1];
      delta[0] -= f.means[j - 1] * delta[j];
    }
    double size = 0;
    for (int j = 0; j <= m; ++j) {
      const double scale = static_cast<double>(std::fabs(s.B[j]));
      if (scale > 0) size = std::max(size, static_cast<double>(std::fabs(delta[j])) / scale);
    }
    if (!(size <= previous / 2)) {
      // Not converging (the data's condition is too large for these corrections): back
      // to the last solution before a correction that did not pay, with that
      // correction's size as what it lacks.
      if (step > 0) s.B = before;
      last = true;
      continue;
    }
    before = s.B;
    for (int j = 0; j <= m; ++j) {
      s.B[j] += delta[j];
      s.uncertainty[j] = static_cast<double>(std::fabs(delta[j]));
    }
    if (size < kSettled) break;
    last = step + 2 >= kMostSteps;
    previous = size;
  }
  return s;
}

// min over j of -log10(|A(j) - B(j)| / |B(j)|), within 0..15. Neither the listing nor
// the reference can be held to more than the reference's own uncertainty; a coefficient
// whose term is below the rounding of the given values counts against that size.
double digitsTrusted(const std::vector<double>& A, const ReferenceSolution& ref, int n, int m, double yy,
                     const CentredFactor& f) {
  double digits = kMostDigits;
  for (int j = 0; j <= m; ++j) {
    const double b = static_cast<double>(ref.B[j]);
    const double length = j == 0 ? std::sqrt(double(n))
                                 : std::hypot(f.scales[j - 1], std::sqrt(double(n)) * f.means[j - 1]);
    const double negligible = kEpsilon * std::sqrt(yy) / length;
    const double miss = std::max(static_cast<double>(std::fabs(Real(A[j]) - ref.B[j])), ref.uncertainty[j]);
    if (miss == 0) continue;
    const double relative = miss / std::max(std::fabs(b), negligible);
    digits = std::min(digits, std::clamp(-std::log10(relative), 0.0, kMostDigits));
  }
  return std::isnan(digits) ? 0 : digits;
}

// The condition number of the design [1 x1 ... xm] with each column scaled to length 1,
// from the factor of the centred columns: [1 | Xc] = [1/√N | Q]·diag(√N, Rz·S), and
// X = [1 | Xc]·T with T adding the means back.
double conditionNumber(int n, int m, const CentredFactor& f) {
  const double rootN = std::sqrt(double(n));
  MatrixXd M = MatrixXd::Zero(m + 1, m + 1);
  M(0, 0) = 1;
  for (int j = 1; j <= m; ++j) {
    const double mu = double(f.means[j - 1]);
    const double length = std::hypot(f.scales[j - 1], rootN * mu);
    M(0, j) = rootN * mu / length;
    for (int a = 0; a < m; ++a) M(a + 1, j) = f.Rz(a, j - 1) * f.scales[j - 1] / length;
  }
  const VectorXd sigma = Eigen::BDCSVD<MatrixXd>(M).singularValues();
  return sigma[m] > 0 ? sigma[0] / sigma[m] : std::numeric_limits<double>::infinity();
}

// (Xc'Xc)^-1 = S⁻¹·P·R⁻¹·R⁻ᵀ·Pᵀ·S⁻¹, and the constant term's unscaled variance
// 1/N + μᵀ(Xc'Xc)⁻¹μ as the square of R⁻ᵀPᵀS⁻¹μ, which cannot cancel.
void fillVariances(FitSummary& s, const CentredFactor& f, int n) {
  const int m = s.m;
  const MatrixXd Rinv = f.qr.matrixR()
                            .topLeftCorner(m, m)
                            .triangularView<Eigen::Upper>()
                            .solve(MatrixXd::Identity(m, m));
  const auto& P = f.qr.colsPermutation();
  const MatrixXd W = P * (Rinv * Rinv.transpose()) * P.transpose();
  s.means.assign(f.means.begin(), f.means.end());
  s.centredInverse.assign(static_cast<size_t>(m) * m, 0);
  for (int j = 0; j < m; ++j)
    for (int k = 0; k < m; ++k) s.centredInverse[size_t(j) * m + k] = W(j, k) / (f.scales[j] * f.scales[k]);
  VectorXd scaledMeans(m);
  for (int j = 0; j < m; ++j) scaledMeans[j] = double(f.means[j]) / f.scales[j];
  const VectorXd u = Rinv.transpose() * (P.transpose() * scaledMeans);

  const double sigma = s.residualStandardError;
  s.coefficients[0].stdError = sigma * std::sqrt(1.0 / n + u.squaredNorm());
  for (int j = 1; j <= m; ++j)
    s.coefficients[j].stdError = sigma * std::sqrt(s.centredInverse[size_t(j - 1) * m + (j - 1)]);
}

void fillTests(FitSummary& s) {
  const double df = static_cast<double>(s.dfResidual);
  const StudentsT t(df);
  s.tQuantile = df > 0 ? quantile(complement(t, 0.025)) : kNaN;
  for (CoefficientStatistics& c : s.coefficients) {
    c.t = c.estimate / c.stdError;
    c.p = std::isinf(c.t) ? 0 : (std::isnan(c.t) || df <= 0 ? kNaN : 2 * cdf(complement(t, std::fabs(c.t))));
    c.low = c.estimate - s.tQuantile * c.stdError;
    c.high = c.estimate + s.tQuantile * c.stdError;
  }
  const double F = s.fStatistic;
  s.fPValue = std::isinf(F) ? 0 : (std::isnan(F) || df <= 0 ? kNaN : cdf(complement(FisherF(s.m, df), F)));
}

// N, m and the listed estimates, the rest to be filled.
FitSummary summaryHead(const std::vector<double>& A, int n, int m) {
  FitSummary s;
  s.N = n;
  s.m = m;
  s.dfResidual = int64_t{n} - m - 1;
  s.coefficients.resize(static_cast<size_t>(m) + 1);
  for (int j = 0; j <= m; ++j) s.coefficients[j].estimate = A.at(j);
  return s;
}

void markUndetermined(FitSummary& s) {
  s.determined = false;
  for (CoefficientStatistics& c : s.coefficients) c.stdError = c.t = c.p = c.low = c.high = kNaN;
  s.rSquared = s.adjustedRSquared = s.residualStandardError = s.fStatistic = s.fPValue = kNaN;
  s.conditionNumber = std::numeric_limits<double>::infinity();
  s.digitsTrusted = 0;
  s.tQuantile = kNaN;
}

}  // namespace

FitSummary SummarizeFit(const RegressionProblem& problem) {
  if (problem.X.lastRow() < problem.N || problem.X.lastColumn() < problem.m + 1) {
    FitSummary s = summaryHead(problem.A, problem.N, problem.m);
    markUndetermined(s);
    return s;
  }
  return SummarizeFit(MatrixSets(problem), problem.A);
}

FitSummary SummarizeFit(const DataSets& sets, const std::vector<double>& A) {
  const int n = sets.N(), m = sets.m();
  FitSummary s = summaryHead(A, n, m);
  if (n < 2 || m < 1) {
    markUndetermined(s);
    return s;
  }
  const FirstPass first = firstPass(sets);
  if (!first.finite) {
    markUndetermined(s);
    return s;
  }
  CentredFactor f(sets, first);
  if (!f.determined) {
    markUndetermined(s);
    return s;
  }
  const ReferenceSolution ref = solveReference(sets, f);
  s.determined = true;
  const double rss = static_cast<double>(ref.residualSquares);
  const double mss = static_cast<double>(ref.explainedSquares);
  const double df = static_cast<double>(s.dfResidual);
  s.rSquared = mss / (mss + rss);
  s.adjustedRSquared = 1 - (1 - s.rSquared) * ((n - 1) / df);
  s.residualStandardError = df > 0 ? std::sqrt(rss / df) : kNaN;
  s.fStatistic = df > 0 ? (mss / s.m) / (rss / df) : kNaN;
  fillVariances(s, f, n);
  fillTests(s);
  s.conditionNumber = conditionNumber(n, m, f);
  s.digitsTrusted = digitsTrusted(A, ref, n, m, first.yy, f);
  return s;
}

std::string DigitsWarning(const FitSummary& summary) {
  if (summary.digitsTrusted >= kDigitsWorthAWarning) return {};
  return "Warning: only about " + std::to_string(static_cast<int>(std::floor(summary.digitsTrusted))) +
         " digits of the coefficients can be trusted (ill-conditioned data); see Statistics.";
}

BandHalfWidths BandsAt(const FitSummary& s, double x) {
  if (s.m != 1 || s.centredInverse.empty()) return {kNaN, kNaN};
  const double d = x - s.means[0];
  const double leverage = 1.0 / s.N + d * d * s.centredInverse[0];
  const double scale = s.tQuantile * s.residualStandardError;
  return {scale * std::sqrt(leverage), scale * std::sqrt(1 + leverage)};
}

}  // namespace orvane
