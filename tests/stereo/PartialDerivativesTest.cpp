#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "platform/RuntimeError.h"
#include "stereo/PartialDerivatives.h"
#include "stereo/StereoSettings.h"

namespace orvane {
namespace {

// Against the analytic derivatives of x*x*y (exact for the five-point formulas up to
// rounding) and of x^2 y^3, at both accuracies. Single-precision samples and the h^2 terms
// stay well inside half a percent; a wrong step, sign or constant does not.
TEST(PartialDerivatives, MatchTheAnalyticDerivatives) {
  using Fn = int32_t (*)(float, float, float&);
  const Fn xxy = [](float a, float b, float& z) {
    z = a * a * b;
    return int32_t{0};
  };
  const Fn x2y3 = [](float a, float b, float& z) {
    z = static_cast<float>(double(a) * a * b * b * b);
    return int32_t{0};
  };
  const double x = 0.8, y = -1.1;  // both exact enough as singles for the tolerance
  const struct {
    Fn f;
    float x, y;
    double zx, zy, zxx, zyy, zxy;
  } rows[] = {
      {xxy, 0.8f, -1.1f, 2 * x * y, x * x, 2 * y, 0, 2 * x},
      {x2y3, 1.5f, 0.5f, 2 * 1.5 * 0.125, 3 * 2.25 * 0.25, 2 * 0.125, 6 * 2.25 * 0.5, 6 * 1.5 * 0.25},
      {x2y3, -0.7f, 1.2f, 2 * -0.7 * 1.728, 3 * 0.49 * 1.44, 2 * 1.728, 6 * 0.49 * 1.2, 6 * -0.7 * 1.44},
  };
  for (const auto& r : rows) {
    const double exact[] = {0, r.zx, r.zy, r.zxx, r.zyy, r.zxy};
    for (int selector : {kZx, kZy, kZxx, kZyy, kZxy})
      for (bool high : {true, false}) {
        float out = 1e9f;
        ASSERT_EQ(TryPartialDerivative(selector, high, r.x, r.y, r.f, out), 0);
        EXPECT_NEAR(out, exact[selector], 5e-3 * std::max(1.0, std::fabs(exact[selector])))
            << kDerivativeNames[static_cast<size_t>(selector)] << (high ? " High" : " Med") << " at " << r.x
            << "," << r.y;
      }
  }
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
    z = 0;
    return a < 0.99f ? err::InvalidCall : a > 1.03f ? err::DivisionByZero : int32_t{0};
  };
  EXPECT_EQ(TryPartialDerivative(kZx, true, 1.0f, 0, two, out), err::InvalidCall);
  auto steep = [](float a, float, float& z) {  // a result beyond single precision
    z = a > 0 ? 3e38f : -3e38f;
    return int32_t{0};
  };
  EXPECT_EQ(TryPartialDerivative(kZx, false, 0, 0, steep, out), err::Overflow);
  EXPECT_EQ(TryPartialDerivative(9, false, 0, 0, steep, out), err::InvalidCall);
}

}  // namespace
}  // namespace orvane
