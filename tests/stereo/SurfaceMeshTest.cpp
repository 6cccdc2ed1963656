#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "stereo/StereoTestDoubles.h"
#include "stereo/SurfaceMesh.h"
#include "stereo/SurfaceSampler.h"

namespace orvane {
namespace {

using testing::LambdaSurface;

// One call of the mesh sink: where, and whether the pen was down.
struct Step {
  float x, y;
  bool penDown;
  bool operator==(const Step&) const = default;
};

StereoSettings grid(int32_t spaces, int32_t segs) {
  StereoSettings s;
  s.spacexu = s.spaceyv = spaces;
  s.segsxu = s.segsyv = segs;
  s.drxu = s.dryv = 2.0f / spaces;
  s.stepxu = s.stepyv = s.drxu / segs;
  return s;
}

std::vector<Step> trace(const StereoSettings& s, SurfaceEvaluator& surface, int* pumps = nullptr) {
  SurfaceParameters uv;
  SurfaceSampler sampler(s, surface, uv);
  std::vector<Step> steps;
  auto sink = [&](const Point3& p, bool penDown) {
    steps.push_back({p.x, p.y, penDown});
    return true;
  };
  TraceMesh(s, sampler, sink, [&] {
    if (pumps) ++*pumps;
  });
  return steps;
}

TEST(TraceMesh, TwoByTwoGridPenSequence) {
  LambdaSurface surface;
  const StereoSettings s = grid(2, 1);
  surface.formulas[s.equationZ] = [](double, double, double, double) { return 0.0; };
  int pumps = 0;
  const std::vector<Step> expected = {
      // curves of constant x
      {-1, -1, false}, {-1, 0, true}, {-1, 1, true},
      {0, -1, false},  {0, 0, true},  {0, 1, true},
      {1, -1, false},  {1, 0, true},  {1, 1, true},
      // curves of constant y
      {-1, -1, false}, {0, -1, true}, {1, -1, true},
      {-1, 0, false},  {0, 0, true},  {1, 0, true},
      {-1, 1, false},  {0, 1, true},  {1, 1, true},
  };
  EXPECT_EQ(trace(s, surface, &pumps), expected);
  EXPECT_EQ(pumps, 1);
}

TEST(TraceMesh, APoleLiftsThePenWithoutEndingTheMesh) {
  LambdaSurface surface;
  const StereoSettings s = grid(2, 1);
  surface.formulas[s.equationZ] = [](double x, double y, double, double) {
    if (x == 0 && y == 0) throw RuntimeError(err::DivisionByZero);
    return 1.0;
  };
  const std::vector<Step> steps = trace(s, surface);
  const std::vector<Step> expected = {
      {-1, -1, false}, {-1, 0, true}, {-1, 1, true},
      {0, -1, false},  {0, 1, false},  // the pole: no segment across it
      {1, -1, false},  {1, 0, true},  {1, 1, true},
      {-1, -1, false}, {0, -1, true}, {1, -1, true},
      {-1, 0, false},  {1, 0, false},
      {-1, 1, false},  {0, 1, true},  {1, 1, true},
  };
  EXPECT_EQ(steps, expected);
}

TEST(TraceMesh, CurveCountsAndAccumulatedPositions) {
  LambdaSurface surface;
  StereoSettings s = grid(1, 1);
  surface.formulas[s.equationZ] = [](double, double, double, double) { return 0.0; };
  s.spaceyv = 3;
  s.segsyv = 2;
  s.dryv = 2.0f / 3;
  s.stepyv = s.dryv / 2;
  const std::vector<Step> steps = trace(s, surface);
  // 2 curves of constant x with 3*2+1 samples, then 4 curves of constant y with 2.
  ASSERT_EQ(steps.size(), 2u * 7 + 4u * 2);
  // The last sample of a curve is reached by repeated addition, not as lower + n*step.
  float y = -1 - s.stepyv;
  for (int j = 0; j <= 6; ++j) y += s.stepyv;
  EXPECT_EQ(steps[6].y, y);
}

TEST(TraceMesh, AnUndefinedSurfaceGivesNoPointsAndASinkCanStopIt) {
  LambdaSurface surface;
  const StereoSettings s = grid(2, 1);
  surface.formulas[s.equationZ] = [](double, double, double, double) -> double { throw RuntimeError(5); };
  EXPECT_TRUE(trace(s, surface).empty());

  surface.formulas[s.equationZ] = [](double, double, double, double) { return 0.0; };
  SurfaceParameters uv;
  SurfaceSampler sampler(s, surface, uv);
  int seen = 0;
  auto stopAtFour = [&](const Point3&, bool) { return ++seen < 4; };
  EXPECT_FALSE(TraceMesh(s, sampler, stopAtFour, nullptr));
  EXPECT_EQ(seen, 4);
}

TEST(SurfaceSampler, ParametricPointsMapThroughYThenXThenZ) {
  LambdaSurface surface;
  StereoSettings s;
  s.parametric = true;
  s.equationX = "X";
  s.equationY = "Y";
  s.equationZ = "Z";
  std::string order;
  surface.formulas["X"] = [&](double, double, double u, double v) {
    order += 'x';
    return u + 10 * v;
  };
  surface.formulas["Y"] = [&](double, double, double u, double) {
    order += 'y';
    return 2 * u;
  };
  // z sees x and y set to the point's coordinates, and u and v still at the sample.
  surface.formulas["Z"] = [&](double x, double y, double u, double v) {
    order += 'z';
    return x + y + 100 * u + 1000 * v;
  };
  SurfaceParameters uv;
  SurfaceSampler sampler(s, surface, uv);
  Point3 p;
  ASSERT_EQ(sampler.TrySample(1, 2, p), 0);
  EXPECT_EQ(order, "yxz");
  EXPECT_EQ(p.x, 21);
  EXPECT_EQ(p.y, 2);
  EXPECT_EQ(p.z, 21 + 2 + 100 + 2000);
  EXPECT_EQ(uv.u, 1);
  EXPECT_EQ(uv.v, 2);

  surface.formulas["X"] = [](double, double, double, double) -> double { throw RuntimeError(6); };
  EXPECT_EQ(sampler.TrySample(1, 2, p), 6);
}

TEST(SurfaceSampler, SelectedDerivativeReplacesTheHeightAndValuesBeyondSingleOverflow) {
  LambdaSurface surface;
  StereoSettings s;
  surface.formulas[s.equationZ] = [](double x, double y, double, double) { return x * x * y; };
  SurfaceParameters uv;
  SurfaceSampler sampler(s, surface, uv);
  EXPECT_FLOAT_EQ(sampler.EvaluateSurfacePoint(2, 3), 12);
  s.selector = kZxx;
  s.accuracy = kAccuracyMed;
  EXPECT_NEAR(sampler.EvaluateSurfacePoint(2, 3), 6, 1e-3);  // 2y
  s.selector = kSurfaceItself;
  surface.formulas[s.equationZ] = [](double, double, double, double) { return 1e300; };
  float z = 0;
  EXPECT_EQ(sampler.TrySurfacePoint(0, 0, z), err::Overflow);
  try {
    sampler.EvaluateSurfacePoint(0, 0);
    FAIL() << "no error raised";
  } catch (const RuntimeError& e) {
    EXPECT_EQ(e.number(), err::Overflow);
  }
}

TEST(TraceDots, SamplesTheRangeAndSkipsPointsWithoutValue) {
  LambdaSurface surface;
  StereoSettings s;
  s.ndots = 400;
  s.rangelxu = 2;
  s.rangegxu = 3;
  s.rangelyv = -5;
  s.rangegyv = -4;
  int calls = 0;
  surface.formulas[s.equationZ] = [&](double x, double, double, double) {
    if (++calls % 2 == 0) throw RuntimeError(11);
    return x;
  };
  SurfaceParameters uv;
  SurfaceSampler sampler(s, surface, uv);
  DotGenerator random(1234);
  std::vector<Point3> dots;
  TraceDots(s, sampler, random, [&](const Point3& p) {
    dots.push_back(p);
    return true;
  });
  EXPECT_EQ(calls, 400);         // every dot tried once
  EXPECT_EQ(dots.size(), 200u);  // the failing half skipped
  for (const Point3& p : dots) {
    EXPECT_GE(p.x, 2);
    EXPECT_LT(p.x, 3);
    EXPECT_GE(p.y, -5);
    EXPECT_LT(p.y, -4);
  }
}

}  // namespace
}  // namespace orvane
