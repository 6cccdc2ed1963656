#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "platform/NumberText.h"
#include "platform/RuntimeError.h"
#include "plot2d/Derivatives.h"
#include "Plot2dTestDoubles.h"

namespace orvane {
namespace {

// The plot's low orders are three-point differences with h = 0.0045, whose error terms are
// known exactly for low-degree polynomials, so a wrong step shows. High orders are checked
// against sin with the leading truncation bound (k/24)(2h)^2, h = (1e-5)^(1/k); they take
// the point stored for the plot's sample, whatever argument they are given.
TEST(DerivativeEvaluator, PlotStepsAndTruncation) {
  const double h = 0.0045, h2 = 0.009;
  const struct {
    double (*f)(double);
    int32_t k;
    double x, expected;
  } cases[] = {
      {[](double x) { return x * x * x; }, 0, 2, 8},
      {[](double x) { return x * x * x; }, 1, 2, 12 + h * h},
      {[](double x) { return x * x * x * x; }, 2, 1, 12 + 2 * h2 * h2},
  };
  for (const auto& c : cases) {
    testing::Evaluated e(c.f);
    e.d.prepareForPlot(c.k);
    EXPECT_NEAR(e.d.D(c.k, c.x), c.expected, 1e-8) << "k=" << c.k;
  }
  testing::Evaluated sine([](double x) { return std::sin(x); });
  DerivativeEvaluator& d = sine.d;
  const double x0 = 0.7, exact[] = {std::sin(x0), std::cos(x0), -std::sin(x0), -std::cos(x0)};
  for (int32_t k = 3; k <= 9; ++k) {
    d.prepareForPlot(k);
    d.storePoint(x0);
    const double hk = std::pow(1e-5, 1.0 / k);
    EXPECT_NEAR(d.D(k, x0 + 1), exact[k % 4], k / 24.0 * 4 * hk * hk) << "k=" << k;
  }
}

TEST(DerivativeEvaluator, FailuresComeBackAsNumbers) {
  testing::Evaluated pole(testing::reciprocal);
  DerivativeEvaluator& d = pole.d;
  d.prepareForPlot(1);
  double y = 0;
  EXPECT_EQ(d.tryD(0, 0, y), err::DivisionByZero);
  EXPECT_EQ(d.tryD(1, 1, y), 0);
  EXPECT_NEAR(y, -1, 1e-4);
  EXPECT_EQ(testing::Evaluated([](double) { return HUGE_VAL; }).d.tryD(0, 1, y), err::Overflow);
}

TEST(ValuePanel, ShowsValueOrStaysEmpty) {
  const double empty = std::nan("");
  auto cube = [](double x) { return x * x * x; };
  const struct {
    double (*f)(double);
    const char* order;
    const char* at;
    double expected, tolerance;
    int32_t error;
  } cases[] = {
      {cube, "0", "2", 8, 0, 0},
      {cube, "1", "2", 12, 1e-9, 0},        // five-point slope, exact for cubics
      {cube, "2", "2", 12, 1e-6, 0},
      {cube, "3", "2", 6, 1e-3, 0},
      {[](double x) { return x < 0 ? throw RuntimeError(err::InvalidCall) : x; }, "1", "0", empty, 0, err::InvalidCall},
      {cube, "34", "2", empty, 0, err::SubscriptOutOfRange},  // beyond the factorials' table
      {cube, "1e12", "2", empty, 0, err::Overflow},
      {[](double) -> double { throw RuntimeError(err::TypeMismatch); }, "0", "1", empty, 0,
       err::TypeMismatch},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.order) + " at " + c.at);
    testing::Evaluated e(c.f);
    const ValuePanelResult r = computeValuePanel(e.d, c.order, c.at);
    EXPECT_EQ(r.error, c.error);
    if (std::isnan(c.expected)) {
      EXPECT_EQ(r.text, "");
    } else {
      ASSERT_FALSE(r.text.empty());
      EXPECT_NEAR(leadingNumber(r.text), c.expected, c.tolerance) << r.text;
    }
  }
  // A negative order shows 0, keeping the scale the last order set.
  testing::Evaluated line([](double x) { return x; });
  DerivativeEvaluator& d = line.d;
  computeValuePanel(d, "3", "1");
  const DifferenceSteps steps = d.steps();
  EXPECT_EQ(computeValuePanel(d, "-2", "1").text, "0");
  EXPECT_EQ(d.steps().s, steps.s);
  EXPECT_EQ(d.steps().h, 0.0045);
}

}  // namespace
}  // namespace orvane
