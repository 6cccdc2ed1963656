#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "platform/NumberText.h"
#include "platform/RuntimeError.h"
#include "plot2d/Derivatives.h"
#include "Plot2dTestSupport.h"

namespace orvane {
namespace {

using testing::LoggedFunction;

TEST(Factorial, TableEndsAt33) {
  EXPECT_EQ(factorial(0), 1);
  EXPECT_EQ(factorial(1), 1);
  EXPECT_EQ(factorial(10), 3628800);
  EXPECT_DOUBLE_EQ(factorial(33), std::tgamma(34.0));
  for (int32_t outside : {34, -1}) {
    try {
      factorial(outside);
      ADD_FAILURE() << outside;
    } catch (const RuntimeError& e) {
      EXPECT_EQ(e.number(), err::SubscriptOutOfRange) << outside;
    }
  }
}

// The plot's low orders are three-point differences with h = 0.0045: their error terms
// are known exactly for low-degree polynomials, so a wrong step shows.
TEST(DerivativeEvaluator, LowOrdersUsePlotSteps) {
  struct Case {
    const char* name;
    double (*f)(double);
    int32_t k;
    double x;
    double expected;
  };
  const double h = 0.0045, h2 = 0.009;
  const Case cases[] = {
      {"x^3 value", [](double x) { return x * x * x; }, 0, 2, 8},
      {"x^3 slope carries h^2", [](double x) { return x * x * x; }, 1, 2, 12 + h * h},
      {"x^3 curvature exact", [](double x) { return x * x * x; }, 2, 2, 12},
      {"x^4 curvature carries 2(h2)^2", [](double x) { return x * x * x * x; }, 2, 1,
       12 + 2 * h2 * h2},
  };
  for (const Case& c : cases) {
    LambdaFunction f(c.f);
    DerivativeEvaluator d(f);
    d.prepareForPlot(c.k);
    EXPECT_NEAR(d.D(c.k, c.x), c.expected, 1e-8) << c.name;
  }
}

// High orders against sin's derivatives: the leading truncation term is
// (k/24)(2h)^2 |f^(k+2)| with h = (1e-5)^(1/k), and |sin^(n)| <= 1.
TEST(DerivativeEvaluator, HighOrdersWithinTruncationBound) {
  LambdaFunction f([](double x) { return std::sin(x); });
  DerivativeEvaluator d(f);
  const double x0 = 0.7;
  for (int32_t k = 3; k <= 9; ++k) {
    d.prepareForPlot(k);
    d.storePoint(x0);
    const double h = std::pow(1e-5, 1.0 / k);
    const double bound = k / 24.0 * (2 * h) * (2 * h);
    const double exact[] = {std::sin(x0), std::cos(x0), -std::sin(x0), -std::cos(x0)};
    EXPECT_NEAR(d.D(k, x0), exact[k % 4], bound) << "k=" << k;
    EXPECT_DOUBLE_EQ(d.steps().h2, 2 * h);
  }
}

TEST(DerivativeEvaluator, HighOrdersIgnoreTheirArgumentAndUseTheStoredPoint) {
  LambdaFunction f([](double x) { return x * x * x * x; });  // f''' = 24x
  DerivativeEvaluator d(f);
  d.prepareForPlot(3);
  d.storePoint(1);
  EXPECT_NEAR(d.D(3, 2), 24, 1e-3);
  d.storePoint(2);
  EXPECT_NEAR(d.D(3, 1), 48, 1e-3);
}

TEST(DerivativeEvaluator, FailuresComeBackAsNumbers) {
  LambdaFunction pole(testing::reciprocal);
  DerivativeEvaluator d(pole);
  d.prepareForPlot(1);
  double y = 0;
  EXPECT_EQ(d.tryD(0, 0, y), err::DivisionByZero);
  EXPECT_EQ(d.tryD(1, 0.0045, y), err::DivisionByZero);  // x - h hits the pole
  EXPECT_EQ(d.tryD(1, 1, y), 0);
  EXPECT_NEAR(y, -1, 1e-4);
  LambdaFunction infinite([](double) { return HUGE_VAL; });
  DerivativeEvaluator e(infinite);
  EXPECT_EQ(e.tryD(0, 1, y), err::Overflow);
}

struct PanelCase {
  const char* name;
  double (*f)(double);
  const char* order;
  const char* at;
  double expected;  // NaN: the label stays empty
  double tolerance;
  int32_t error;
};

TEST(ValuePanel, ShowsValueOrStaysEmpty) {
  const double nan = std::nan("");
  auto cube = [](double x) { return x * x * x; };
  const PanelCase cases[] = {
      {"function itself", cube, "0", "2", 8, 0, 0},
      {"blank order is the function", cube, "", "2", 8, 0, 0},
      {"five-point slope exact for cubics", cube, "1", "2", 12, 1e-9, 0},
      {"five-point curvature", cube, "2", "2", 12, 1e-6, 0},
      {"third order", cube, "3", "2", 6, 1e-3, 0},
      {"tenth order is allowed", [](double x) { return std::pow(x, 10); }, "10", "1", 3628800,
       1e-3 * 3628800, 0},
      {"negative order shows 0", cube, "-1", "2", 0, 0, 0},
      {"text order reads as a number", cube, "1st", "2", 12, 1e-9, 0},
      {"square root below 0", testing::squareRoot, "1", "0", nan, 0, err::InvalidCall},
      {"order 34 beyond the factorials", cube, "34", "2", nan, 0, err::SubscriptOutOfRange},
      {"order too large for 32 bits", cube, "1e12", "2", nan, 0, err::Overflow},
      {"other errors end it too",
       [](double) -> double { throw RuntimeError(err::TypeMismatch); }, "0", "1", nan, 0,
       err::TypeMismatch},
  };
  for (const PanelCase& c : cases) {
    LambdaFunction f(c.f);
    DerivativeEvaluator d(f);
    const ValuePanelResult r = computeValuePanel(d, c.order, c.at);
    EXPECT_EQ(r.error, c.error) << c.name;
    if (std::isnan(c.expected)) {
      EXPECT_EQ(r.text, "") << c.name;
    } else {
      ASSERT_FALSE(r.text.empty()) << c.name;
      EXPECT_NEAR(leadingNumber(r.text), c.expected, c.tolerance) << c.name << ": " << r.text;
    }
  }
}

TEST(ValuePanel, EvaluatesInTheFixedOrder) {
  const double h = 0.0045, h2 = 0.009, x0 = 1;
  LoggedFunction f([](double x) { return x; });
  DerivativeEvaluator d(f);
  computeValuePanel(d, "1", "1");
  EXPECT_EQ(f.calls, (std::vector<double>{x0 - h, x0 + h, x0 + h2, x0 - h2}));
  f.calls.clear();
  computeValuePanel(d, "2", "1");
  EXPECT_EQ(f.calls, (std::vector<double>{x0 - h, x0, x0 + h, x0 + h2, x0 - h2}));
}

TEST(ValuePanel, NegativeOrderKeepsTheLastScaleFactor) {
  LambdaFunction f([](double x) { return x; });
  DerivativeEvaluator d(f);
  computeValuePanel(d, "3", "1");
  const double s = d.steps().s;
  EXPECT_GT(s, 0);
  EXPECT_EQ(computeValuePanel(d, "-2", "1").text, "0");
  EXPECT_EQ(d.steps().s, s);
  EXPECT_EQ(d.steps().h, 0.0045);
}

}  // namespace
}  // namespace orvane
