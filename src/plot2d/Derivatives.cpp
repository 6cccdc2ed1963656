#include "plot2d/Derivatives.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "platform/NumberText.h"
#include "platform/RuntimeError.h"
#include "plot2d/CheckedMath.h"

namespace orvane {

namespace {

constexpr int kFactorials = 34;

std::array<double, kFactorials> makeFactorials() {
  std::array<double, kFactorials> table{};
  table[0] = 1;
  for (int i = 1; i < kFactorials; ++i) table[i] = i * table[i - 1];
  return table;
}

const std::array<double, kFactorials> kFactorialTable = makeFactorials();

// Steps of the plot and of the value panel for orders 1 and 2.
constexpr double kLowOrderStep = 0.0045;
constexpr double kLowOrderStep2 = 0.009;
constexpr double kLowOrderStep2Sq = 0.000081;

}  // namespace

double factorial(int32_t i) {
  if (i < 0 || i >= kFactorials) throw RuntimeError(err::SubscriptOutOfRange);
  return kFactorialTable[static_cast<size_t>(i)];
}

double DerivativeEvaluator::f(double x) {
  if (stop_ != nullptr) stop_->poll();
  double y = 0;
  if (int32_t e = f_.tryEval(x, y); e != 0) throw RuntimeError(e);
  return checked::value(y);
}

void DerivativeEvaluator::prepareForPlot(int32_t k) {
  if (k <= 2) {
    steps_.h = kLowOrderStep;
    steps_.h2 = kLowOrderStep2;
    steps_.h2sq = kLowOrderStep2Sq;
    return;
  }
  steps_.h = std::pow(1e-5, 1.0 / k);
  steps_.h2 = steps_.h + steps_.h;
  steps_.s = checked::value(factorial(k) / std::pow(steps_.h2, k));
}

void DerivativeEvaluator::prepareForValuePanel(int32_t k) {
  steps_.h = kLowOrderStep;
  steps_.h2 = kLowOrderStep2;
  if (k > 2) {
    steps_.h = std::pow(1e-5, 1.0 / k);
    steps_.h2 = steps_.h + steps_.h;
    steps_.s = checked::value(factorial(k) / std::pow(steps_.h2, k));
  }
}

void DerivativeEvaluator::prepareForRoots() {
  steps_.h = 1e-5;
  steps_.h2 = 2e-5;
}

void DerivativeEvaluator::prepareForExtrema() {
  // The extrema search refines with D(2), so it needs the squared step as well.
  steps_.h = kLowOrderStep;
  steps_.h2 = kLowOrderStep2;
  steps_.h2sq = kLowOrderStep2Sq;
}

double DerivativeEvaluator::D(int32_t k, double x) {
  const DifferenceSteps& st = steps_;
  switch (k) {
    case 0:
      return f(x);
    case 1: {
      const double ahead = f(x + st.h);
      const double behind = f(x - st.h);
      return firstDifference(ahead, behind);
    }
    case 2: {
      const double ahead = f(x + st.h2);
      const double here = f(x);
      const double behind = f(x - st.h2);
      return secondDifference(ahead, here, behind);
    }
    default:
      return highOrder(k);
  }
}

double DerivativeEvaluator::firstDifference(double ahead, double behind) const {
  return checked::div(checked::value(ahead - behind), steps_.h2);
}

double DerivativeEvaluator::secondDifference(double ahead, double here, double behind) const {
  return checked::div(checked::value(ahead - (here + here) + behind), steps_.h2sq);
}

int32_t DerivativeEvaluator::f(const double* xs, int32_t n, double* ys) {
  if (n <= 0) return 0;
  if (stop_ != nullptr) n = stop_->poll(n);
  int32_t error = 0;
  const int32_t taken = f_.tryEvalBlock(xs, n, ys, error);
  if (taken == 0) throw RuntimeError(error);
  return taken;
}

int32_t DerivativeEvaluator::D(int32_t k, const double* xs, int32_t n, double* ys) {
  if (n <= 0) return 0;
  if (k == 0) return f(xs, n, ys);
  if (k > 2) {  // taken at the point itself
    storePoint(xs[0]);
    ys[0] = highOrder(k);
    return 1;
  }
  // The points each difference takes, in the order D(k, x) takes them.
  const int32_t per = k == 1 ? 2 : 3;
  const double reach = k == 1 ? steps_.h : steps_.h2;
  constexpr int32_t kPoints = 3 * 128;
  double at[kPoints];
  double values[kPoints];
  const int32_t m = std::min(n, kPoints / per);
  for (int32_t j = 0; j < m; ++j) {
    double* p = at + per * j;
    *p++ = xs[j] + reach;
    if (k == 2) *p++ = xs[j];
    *p = xs[j] - reach;
  }
  // Throws only when the very first sample fails, where D(k, xs[0]) fails first too.
  const int32_t taken = f(at, per * m, values);
  for (int32_t t = taken; t < per; ++t) values[t] = f(at[t]);  // the rest of the first point's
  const int32_t complete = std::max(taken / per, 1);
  for (int32_t j = 0; j < complete; ++j) {
    const double* v = values + per * j;
    try {
      ys[j] = k == 1 ? firstDifference(v[0], v[1]) : secondDifference(v[0], v[1], v[2]);
    } catch (const RuntimeError&) {
      if (j > 0) return j;
      throw;
    }
  }
  return complete;
}

double DerivativeEvaluator::highOrder(int32_t k) {
  // The samples are 2h apart, symmetric about the stored point.
  double sum = 0;
  for (int32_t i = 0; i <= k; ++i) {
    const double sign = (i % 2 == 0) ? 1.0 : -1.0;
    const double value = f(x0_ + (k - 2 * i) * steps_.h);
    sum = checked::value(sum + sign * value / factorial(k - i) / factorial(i));
  }
  return checked::value(steps_.s * sum);
}

int32_t DerivativeEvaluator::tryD(int32_t k, double x, double& y) {
  try {
    y = D(k, x);
  } catch (const RuntimeError& e) {
    return e.number();
  }
  return 0;
}

ValuePanelResult computeValuePanel(DerivativeEvaluator& d, std::string_view derNumText,
                                   std::string_view xEvalText) {
  try {
    const int32_t k = toInt32(leadingNumber(derNumText));
    d.prepareForValuePanel(k);
    const double x0 = leadingNumber(xEvalText);
    d.storePoint(x0);
    const double h = d.steps().h;
    const double h2 = d.steps().h2;
    double value = 0;
    if (k == 0) {
      value = d.f(x0);
    } else if (k == 1) {
      // Evaluated in this order so that the first failing point is the one reported.
      const double behind = d.f(x0 - h);
      const double ahead = d.f(x0 + h);
      const double ahead2 = d.f(x0 + h2);
      const double behind2 = d.f(x0 - h2);
      value = checked::value((behind2 - 8 * behind + 8 * ahead - ahead2) / 12 / h);
    } else if (k == 2) {
      const double behind = d.f(x0 - h);
      const double here = d.f(x0);
      const double ahead = d.f(x0 + h);
      const double ahead2 = d.f(x0 + h2);
      const double behind2 = d.f(x0 - h2);
      value = checked::value((16 * behind - behind2 - 30 * here + 16 * ahead - ahead2) / h / h / 12);
    } else {
      value = d.D(k, x0);
    }
    return {formatGeneral(value), 0};
  } catch (const RuntimeError& e) {
    return {std::string(), e.number()};
  }
}

}  // namespace orvane
