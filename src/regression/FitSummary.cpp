#include "regression/FitSummary.h"

#include <Eigen/Dense>
#include <algorithm>
#include <boost/math/distributions/fisher_f.hpp>
#include <boost/math/distributions/students_t.hpp>
#include <cmath>
#include <limits>
#include <numeric>
#include <optional>

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

// The problem's columns as contiguous runs over the sets 1..N.
struct Columns {
  int n = 0, m = 0;
  std::vector<const double*> x;  // x[j] for j = 1..m (x[0] unused)
  const double* y = nullptr;

  explicit Columns(const RegressionProblem& p) : n(p.N), m(p.m), x(static_cast<size_t>(p.m) + 1) {
    for (int j = 1; j <= m; ++j) x[j] = p.X.column(j) + 1;
    y = p.X.column(m + 1) + 1;
  }

  bool allFinite() const {
    for (int j = 1; j <= m + 1; ++j) {
      const double* v = j <= m ? x[j] : y;
      for (int i = 0; i < n; ++i)
        if (!std::isfinite(v[i])) return false;
    }
    return true;
  }
};

Real mean(const double* v, int n) {
  Real sum = 0;
  for (int i = 0; i < n; ++i) sum += v[i];
  return sum / n;
}

// The variables' centred columns scaled to length 1, factorised with column pivoting.
// The scaled-down copy keeps the factorisation's digits for data of any magnitude.
struct CentredFactor {
  std::vector<Real> means;     // of x1..xm, index 0..m-1
  std::vector<double> scales;  // length of each centred column
  MatrixXd Z;
  std::optional<Eigen::ColPivHouseholderQR<Eigen::Ref<MatrixXd>>> qr;  // factorises Z in place

  // Empty (no qr) when the data do not determine the coefficients.
  explicit CentredFactor(const Columns& c) : Z(c.n, c.m) {
    bool determined = c.n > c.m;
    for (int j = 0; j < c.m; ++j) {
      const Real mu = mean(c.x[j + 1], c.n);
      means.push_back(mu);
      double* z = Z.col(j).data();
      for (int i = 0; i < c.n; ++i) z[i] = static_cast<double>(c.x[j + 1][i] - mu);
      const double length = Z.col(j).norm();
      scales.push_back(length);
      if (!(length > 0)) {
        determined = false;  // a constant variable repeats the constant term
        continue;
      }
      Z.col(j) /= length;
    }
    if (!determined) return;
    qr.emplace(Z);
    if (qr->rank() != c.m) qr.reset();
  }
};

// The least-squares coefficients B0..Bm of the uncentred data: solved through the
// factor, then corrected with residuals summed in extended precision until the
// corrections stop shrinking. `uncertainty` keeps the size of the last correction of
// each, an honest bound on what the reference itself still lacks.
struct ReferenceSolution {
  std::vector<Real> B;
  std::vector<double> uncertainty;
  Real residualSquares = 0;  // of the final residuals
  Real explainedSquares = 0;
};

// r = y - B0 - x1·B1 - ... - xm·Bm, set by set, in extended precision.
void residuals(const Columns& c, const std::vector<Real>& B, std::vector<Real>& r) {
  for (int i = 0; i < c.n; ++i) r[i] = c.y[i] - B[0];
  for (int j = 1; j <= c.m; ++j) {
    const double* x = c.x[j];
    const Real b = B[j];
    for (int i = 0; i < c.n; ++i) r[i] -= x[i] * b;
  }
}

ReferenceSolution solveReference(const Columns& c, CentredFactor& f) {
  constexpr int kMostSteps = 6;
  const int n = c.n, m = c.m;
  ReferenceSolution s;
  s.B.assign(static_cast<size_t>(m) + 1, 0);
  s.uncertainty.assign(static_cast<size_t>(m) + 1, 0);
  std::vector<Real> r(static_cast<size_t>(n));
  VectorXd centred(n);
  double previous = std::numeric_limits<double>::infinity();
  for (int step = 0; step < kMostSteps; ++step) {
    residuals(c, s.B, r);
    Real sum = 0;
    for (int i = 0; i < n; ++i) sum += r[i];
    const Real rbar = sum / n;
    for (int i = 0; i < n; ++i) centred[i] = static_cast<double>(r[i] - rbar);
    const VectorXd d = f.qr->solve(centred);
    std::vector<Real> delta(static_cast<size_t>(m) + 1);
    Real shift = rbar;
    for (int j = 1; j <= m; ++j) {
      delta[j] = Real(d[j - 1]) / f.scales[j - 1];
      shift -= f.means[j - 1] * delta[j];
    }
    delta[0] = shift;
    double size = 0;
    for (int j = 0; j <= m; ++j) {
      s.B[j] += delta[j];
      s.uncertainty[j] = static_cast<double>(std::fabs(delta[j]));
      const double scale = static_cast<double>(std::fabs(s.B[j]));
      if (scale > 0) size = std::max(size, s.uncertainty[j] / scale);
    }
    if (size < 1e-18 || (step > 0 && size > previous / 2)) break;
    previous = size;
  }
  residuals(c, s.B, r);
  Real sum = 0;
  for (int i = 0; i < n; ++i) sum += r[i];
  const Real rbar = sum / n;
  const Real ybar = mean(c.y, n);
  for (int i = 0; i < n; ++i) {
    s.residualSquares += r[i] * r[i];
    const Real explained = (c.y[i] - ybar) - (r[i] - rbar);
    s.explainedSquares += explained * explained;
  }
  return s;
}

// min over j of -log10(|A(j) - B(j)| / |B(j)|), within 0..15. Neither the listing nor
// the reference can be held to more than the reference's own uncertainty; a coefficient
// whose term is below the rounding of the given values counts against that size.
double digitsTrusted(const std::vector<double>& A, const ReferenceSolution& ref, const Columns& c,
                     const CentredFactor& f) {
  Real yy = 0;
  for (int i = 0; i < c.n; ++i) yy += Real(c.y[i]) * c.y[i];
  double digits = kMostDigits;
  for (int j = 0; j <= c.m; ++j) {
    const double b = static_cast<double>(ref.B[j]);
    const double length = j == 0 ? std::sqrt(double(c.n))
                                 : std::hypot(f.scales[j - 1], std::sqrt(double(c.n)) * double(f.means[j - 1]));
    const double negligible = kEpsilon * std::sqrt(double(yy)) / length;
    const double miss = std::max(static_cast<double>(std::fabs(Real(A[j]) - ref.B[j])), ref.uncertainty[j]);
    if (miss == 0) continue;
    const double relative = miss / std::max(std::fabs(b), negligible);
    digits = std::min(digits, std::clamp(-std::log10(relative), 0.0, kMostDigits));
  }
  return std::isnan(digits) ? 0 : digits;
}

// The condition number of the design [1 x1 ... xm] with each column scaled to length 1,
// from the factor of the centred columns: [1 | Xc] has the triangular factor
// diag(√N, R·Pᵀ·S), and X = [1 | Xc]·T with T adding the means back.
double conditionNumber(const Columns& c, const CentredFactor& f) {
  const int m = c.m;
  const double rootN = std::sqrt(double(c.n));
  const MatrixXd R = f.qr->matrixR().topLeftCorner(m, m).triangularView<Eigen::Upper>();
  const MatrixXd RPt = R * f.qr->colsPermutation().transpose();
  MatrixXd M = MatrixXd::Zero(m + 1, m + 1);
  M(0, 0) = 1;
  for (int j = 1; j <= m; ++j) {
    const double mu = double(f.means[j - 1]);
    const double length = std::hypot(f.scales[j - 1], rootN * mu);
    M(0, j) = rootN * mu / length;
    for (int a = 0; a < m; ++a) M(a + 1, j) = RPt(a, j - 1) * f.scales[j - 1] / length;
  }
  const VectorXd sigma = Eigen::JacobiSVD<MatrixXd>(M).singularValues();
  return sigma[m] > 0 ? sigma[0] / sigma[m] : std::numeric_limits<double>::infinity();
}

// (Xc'Xc)^-1 = S⁻¹·P·R⁻¹·R⁻ᵀ·Pᵀ·S⁻¹, and the constant term's unscaled variance
// 1/N + μᵀ(Xc'Xc)⁻¹μ as the square of R⁻ᵀPᵀS⁻¹μ, which cannot cancel.
void fillVariances(FitSummary& s, const CentredFactor& f, int n) {
  const int m = s.m;
  const MatrixXd Rinv = f.qr->matrixR()
                            .topLeftCorner(m, m)
                            .triangularView<Eigen::Upper>()
                            .solve(MatrixXd::Identity(m, m));
  const auto& P = f.qr->colsPermutation();
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
  for (int j = 1; j <= m; ++j) s.coefficients[j].stdError = sigma * std::sqrt(s.centredInverse[size_t(j - 1) * m + (j - 1)]);
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
  FitSummary s;
  s.N = problem.N;
  s.m = problem.m;
  s.dfResidual = int64_t{problem.N} - problem.m - 1;
  s.coefficients.resize(static_cast<size_t>(problem.m) + 1);
  for (int j = 0; j <= problem.m; ++j) s.coefficients[j].estimate = problem.A.at(j);

  const Columns c(problem);
  if (c.n < 2 || c.m < 1 || problem.X.lastRow() < c.n || !c.allFinite()) {
    markUndetermined(s);
    return s;
  }
  CentredFactor f(c);
  if (!f.qr) {
    markUndetermined(s);
    return s;
  }
  const ReferenceSolution ref = solveReference(c, f);
  s.determined = true;
  const double rss = static_cast<double>(ref.residualSquares);
  const double mss = static_cast<double>(ref.explainedSquares);
  const double df = static_cast<double>(s.dfResidual);
  s.rSquared = mss / (mss + rss);
  s.adjustedRSquared = 1 - (1 - s.rSquared) * ((c.n - 1) / df);
  s.residualStandardError = df > 0 ? std::sqrt(rss / df) : kNaN;
  s.fStatistic = df > 0 ? (mss / s.m) / (rss / df) : kNaN;
  fillVariances(s, f, c.n);
  fillTests(s);
  s.conditionNumber = conditionNumber(c, f);
  s.digitsTrusted = digitsTrusted(problem.A, ref, c, f);
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
