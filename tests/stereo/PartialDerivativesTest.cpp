#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "platform/RuntimeError.h"
#include "stereo/PartialDerivatives.h"
#include "stereo/StereoSettings.h"

namespace orvane {
namespace {

const auto x2y3 = [](float a, float b, float& z) {
  const double x = a, y = b;
  z = static_cast<float>(x * x * y * y * y);
  return int32_t{0};
};

TEST(PartialDerivatives, MatchTheAnalyticDerivativesOfX2Y3AtBothAccuracies) {
  struct Point {
    float x, y;
  } points[] = {{1.5f, 0.5f}, {-0.7f, 1.2f}, {0.3f, -0.9f}};
  for (const Point& p : points) {
    const double x = p.x, y = p.y;
    struct Row {
      int selector;
      double exact;
    } rows[] = {{kZx, 2 * x * y * y * y},
                {kZy, 3 * x * x * y * y},
                {kZxx, 2 * y * y * y},
                {kZyy, 6 * x * x * y},
                {kZxy, 6 * x * y * y}};
    for (const Row& r : rows) {
      for (bool high : {true, false}) {
        float out = 0;
        ASSERT_EQ(TryPartialDerivative(r.selector, high, p.x, p.y, x2y3, out), 0);
        // Single-precision samples and the h^2 terms of the three-point first differences
        // stay well inside half a percent; a wrong step, sign or constant does not.
        EXPECT_NEAR(out, r.exact, 5e-3 * std::max(1.0, std::fabs(r.exact)))
            << kDerivativeNames[static_cast<size_t>(r.selector)] << (high ? " High" : " Med") << " at " << p.x
            << "," << p.y;
      }
    }
  }
}

TEST(PartialDerivatives, FivePointFormulasAreExactForAQuadraticToRounding) {
  // f = x*x*y: Zx = 2xy, Zy = x^2, Zxx = 2y, Zyy = 0, Zxy = 2x.
  auto f = [](float a, float b, float& z) {
    z = a * a * b;
    return int32_t{0};
  };
  const float x = 0.8f, y = -1.1f;
  struct Row {
    int selector;
    double exact, tol;
  } rows[] = {{kZx, 2.0 * x * y, 1e-4}, {kZy, double(x) * x, 1e-4}, {kZxx, 2.0 * y, 5e-3},
              {kZyy, 0, 5e-3},         {kZxy, 2.0 * x, 5e-3}};
  for (const Row& r : rows)
    for (bool high : {true, false}) {
      float out = 1e9f;
      ASSERT_EQ(TryPartialDerivative(r.selector, high, x, y, f, out), 0);
      EXPECT_NEAR(out, r.exact, r.tol) << r.selector << (high ? " High" : " Med");
    }
}

// The points at which f is evaluated, as offsets in units of h from (x, y).
std::vector<std::pair<int, int>> evaluationOrder(int selector, bool high) {
  const float x = 0, y = 0;
  std::vector<std::pair<int, int>> calls;
  auto f = [&](float a, float b, float& z) {
    calls.emplace_back(static_cast<int>(std::lround((a - x) / pdstep::h)),
                       static_cast<int>(std::lround((b - y) / pdstep::h)));
    z = 0;
    return int32_t{0};
  };
  float out = 0;
  TryPartialDerivative(selector, high, x, y, f, out);
  return calls;
}

TEST(PartialDerivatives, EvaluateInTheFixedOrder) {
  using V = std::vector<std::pair<int, int>>;
  EXPECT_EQ(evaluationOrder(kZx, true), (V{{-1, 0}, {1, 0}, {2, 0}, {-2, 0}}));
  EXPECT_EQ(evaluationOrder(kZyy, true), (V{{0, -1}, {0, 0}, {0, 1}, {0, 2}, {0, -2}}));
  EXPECT_EQ(evaluationOrder(kZx, false), (V{{-1, 0}, {1, 0}}));
  EXPECT_EQ(evaluationOrder(kZxx, false), (V{{-2, 0}, {0, 0}, {2, 0}}));
  EXPECT_EQ(evaluationOrder(kZxy, false), (V{{-1, -1}, {-1, 1}, {1, -1}, {1, 1}}));
  const V zxy = evaluationOrder(kZxy, true);
  ASSERT_EQ(zxy.size(), 16u);
  // Zx taken at y-h, y+h, y+2h, y-2h.
  EXPECT_EQ(zxy[0].second, -1);
  EXPECT_EQ(zxy[4].second, 1);
  EXPECT_EQ(zxy[8].second, 2);
  EXPECT_EQ(zxy[12].second, -2);
}

TEST(PartialDerivatives, AnyFailingEvaluationInvalidatesTheSample) {
  // A pole just beyond x + h: only the five-point formulas reach it.
  auto pole = [](float a, float, float& z) {
    if (a > 1.03f) return err::DivisionByZero;
    z = a;
    return int32_t{0};
  };
  float out = 0;
  EXPECT_EQ(TryPartialDerivative(kZx, true, 1.0f, 0, pole, out), err::DivisionByZero);
  EXPECT_EQ(TryPartialDerivative(kZx, false, 1.0f, 0, pole, out), 0);
  EXPECT_NEAR(out, 1.0, 1e-3);
  // The first error met is the one returned: x-h fails with 5 before x+2h with 11.
  auto two = [](float a, float, float& z) {
    if (a < 0.99f) return err::InvalidCall;
    if (a > 1.03f) return err::DivisionByZero;
    z = 0;
    return int32_t{0};
  };
  EXPECT_EQ(TryPartialDerivative(kZx, true, 1.0f, 0, two, out), err::InvalidCall);
  // A result beyond single precision is an overflow.
  auto steep = [](float a, float, float& z) {
    z = a > 0 ? 3e38f : -3e38f;
    return int32_t{0};
  };
  EXPECT_EQ(TryPartialDerivative(kZx, false, 0, 0, steep, out), err::Overflow);
  EXPECT_EQ(TryPartialDerivative(9, false, 0, 0, steep, out), err::InvalidCall);
}

}  // namespace
}  // namespace orvane
