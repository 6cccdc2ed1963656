#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "engine/PointEvaluation.h"
#include "stereo/EngineSurface.h"
#include "stereo/StereoTestDoubles.h"
#include "stereo/SurfaceMesh.h"
#include "stereo/SurfaceSampler.h"

namespace orvane {
namespace {

using testing::LambdaSurface;

struct Step {  // one call of the mesh sink
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

// The mesh's steps; a sink that refuses after `accept` steps stops it.
std::vector<Step> trace(const StereoSettings& s, testing::Formula z, int* pumps = nullptr, size_t accept = SIZE_MAX,
                        bool* finished = nullptr) {
  LambdaSurface surface;
  surface.formulas[s.equationZ] = std::move(z);
  SurfaceParameters uv;
  SurfaceSampler sampler(s, surface, uv);
  std::vector<Step> steps;
  const bool done = TraceMesh(
      s, sampler,
      [&](const Point3& p, bool penDown) {
        steps.push_back({p.x, p.y, penDown});
        return steps.size() < accept;
      },
      [&] {
        if (pumps) ++*pumps;
      });
  if (finished) *finished = done;
  return steps;
}

double flat(double, double, double, double) { return 0; }

TEST(TraceMesh, PenSequenceOnATwoByTwoGridWithAndWithoutAPole) {
  int pumps = 0;
  const std::vector<Step> whole = {
      {-1, -1, false}, {-1, 0, true}, {-1, 1, true},  // curves of constant x
      {0, -1, false},  {0, 0, true},  {0, 1, true},  {1, -1, false}, {1, 0, true}, {1, 1, true},
      {-1, -1, false}, {0, -1, true}, {1, -1, true},  // curves of constant y
      {-1, 0, false},  {0, 0, true},  {1, 0, true},  {-1, 1, false}, {0, 1, true}, {1, 1, true},
  };
  EXPECT_EQ(trace(grid(2, 1), flat, &pumps), whole);
  EXPECT_EQ(pumps, 1);  // between the two families
  // A pole lifts the pen without ending the mesh: no segment across it.
  const std::vector<Step> broken = trace(grid(2, 1), [](double x, double y, double, double) {
    if (x == 0 && y == 0) throw RuntimeError(err::DivisionByZero);
    return 1.0;
  });
  ASSERT_EQ(broken.size(), whole.size() - 2);
  for (size_t i = 1; i < broken.size(); ++i) {
    EXPECT_FALSE(broken[i].x == 0 && broken[i].y == 0) << i;
    if (broken[i].penDown) {  // one grid step from the point before
      EXPECT_EQ(std::fabs(broken[i].x - broken[i - 1].x) + std::fabs(broken[i].y - broken[i - 1].y), 1) << i;
    }
  }
  EXPECT_TRUE(trace(grid(2, 1), [](double, double, double, double) -> double { throw RuntimeError(5); }).empty());
  bool finished = true;  // a sink can stop it
  EXPECT_EQ(trace(grid(2, 1), flat, nullptr, 4, &finished).size(), 4u);
  EXPECT_FALSE(finished);
}

TEST(TraceMesh, CurveCountsAndAccumulatedPositions) {
  StereoSettings s = grid(1, 1);
  s.spaceyv = 3;
  s.segsyv = 2;
  s.dryv = 2.0f / 3;
  s.stepyv = s.dryv / 2;
  const std::vector<Step> steps = trace(s, flat);
  // 2 curves of constant x with 3*2+1 samples, then 4 curves of constant y with 2.
  ASSERT_EQ(steps.size(), 2u * 7 + 4u * 2);
  // The last sample of a curve is reached by repeated single addition, not lower + n*step.
  float y = -1 - s.stepyv;
  for (int j = 0; j <= 6; ++j) y += s.stepyv;
  EXPECT_EQ(steps[6].y, y);
}

TEST(SurfaceSampler, ParametricPointsMapThroughYThenXThenZ) {
  LambdaSurface surface;
  StereoSettings s;
  s.parametric = true;
  s.equationX = "X";
  s.equationY = "Y";
  s.equationZ = "Z";
  std::string order;
  surface.formulas["X"] = [&](double, double, double u, double v) { return order += 'x', u + 10 * v; };
  surface.formulas["Y"] = [&](double, double, double u, double) { return order += 'y', 2 * u; };
  // z sees x and y set to the point's coordinates, and u and v still at the sample.
  surface.formulas["Z"] = [&](double x, double y, double u, double v) {
    return order += 'z', x + y + 100 * u + 1000 * v;
  };
  SurfaceParameters uv;
  SurfaceSampler sampler(s, surface, uv);
  Point3 p;
  ASSERT_EQ(sampler.TrySample(1, 2, p), 0);
  EXPECT_EQ(order, "yxz");
  EXPECT_EQ(std::vector<float>({p.x, p.y, p.z, float(uv.u), float(uv.v)}),
            std::vector<float>({21, 2, 21 + 2 + 100 + 2000, 1, 2}));
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
  EXPECT_THROW(sampler.EvaluateSurfacePoint(0, 0), RuntimeError);
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
  TraceDots(s, sampler, random, [&](const Point3& p) { return dots.push_back(p), true; });
  EXPECT_EQ(calls, 400);         // every dot tried once
  EXPECT_EQ(dots.size(), 200u);  // the failing half skipped
  for (const Point3& p : dots) EXPECT_TRUE(p.x >= 2 && p.x < 3 && p.y >= -5 && p.y < -4);
  // A sink that ends the dots: the next plot's numbers follow the last dot tried.
  calls = 0;
  TraceDots(s, sampler, random, [&](const Point3&) { return calls < 19; });
  EXPECT_EQ(calls, 19);
  DotGenerator same(1234);
  for (int i = 0; i < 2 * (400 + 19); ++i) same.next();
  EXPECT_EQ(random.next(), same.next());
}

// The window's formulas through blocks of samples and one sample at a time: the same
// mesh, dots, generator state and u, v afterwards, and the same errors reported in the
// same order with the same math-object error left behind.
TEST(BlockEvaluation, MeshAndDotsAgreeWithSampleBySample) {
  class SampleBySample final : public SurfaceEvaluator {
   public:
    explicit SampleBySample(SurfaceEvaluator& e) : e_(e) {}
    double evaluate(std::string_view f, double x, double y, double u, double v) override {
      return e_.evaluate(f, x, y, u, v);
    }
    int32_t tryEvaluate(std::string_view f, double x, double y, double u, double v, double& value) override {
      return e_.tryEvaluate(f, x, y, u, v, value);
    }

   private:
    SurfaceEvaluator& e_;
  };
  struct Window {
    ExpressionEngine engine;
    Class1 sh;
    int32_t shared = 0;
    EngineSurface surface{engine, sh};
    std::vector<std::string> seen;  // reported errors and the points drawn, in order
    Window() {
      sh.sharedError = &shared;
      RegisterMathObject(engine, sh);
      engine.SetErrorHandler([this](const RuntimeError& e) { seen.push_back("error " + std::to_string(e.number())); });
    }
    void draw(const StereoSettings& s, SurfaceEvaluator& evaluator, int32_t stopAfter) {
      SurfaceParameters uv;
      SurfaceSampler sampler(s, evaluator, uv);
      int32_t drawn = 0;
      auto note = [&](const Point3& p, const char* what) {
        seen.push_back(std::string(what) + " " + std::to_string(p.x) + " " + std::to_string(p.y) + " " +
                       std::to_string(p.z));
        return ++drawn < stopAfter;
      };
      TraceMesh(s, sampler, [&](const Point3& p, bool down) { return note(p, down ? "line" : "move"); }, nullptr);
      DotGenerator random(77);
      TraceDots(s, sampler, random, [&](const Point3& p) { return note(p, "dot"); });
      seen.push_back("then " + std::to_string(random.next()) + " u " + std::to_string(uv.u) + " v " +
                     std::to_string(uv.v) + " ierr " + std::to_string(sh.ierr) + " shared " + std::to_string(shared));
    }
  };
  StereoSettings explicitSurface = grid(20, 30);
  explicitSurface.ndots = 3000;
  StereoSettings parametric = explicitSurface;
  parametric.parametric = true;
  StereoSettings zx = grid(8, 10);
  zx.ndots = 300;
  zx.selector = kZx;
  StereoSettings zxyLow = zx;
  zxyLow.selector = kZxy;
  zxyLow.accuracy = kAccuracyMed;
  StereoSettings zxyHigh = zx;
  zxyHigh.selector = kZxy;
  StereoSettings parametricZyy = zx;
  parametricZyy.parametric = true;
  parametricZyy.selector = kZyy;
  const struct {
    const StereoSettings* s;
    const char* z;
    const char* x = "v";
    const char* y = "u";
    int32_t stopAfter = 1 << 30;
  } rows[] = {
      {&explicitSurface, "Log(x+y)*Sin(3*x)"},                    // no value on half the square
      {&explicitSurface, "1/(x-y)+Asin(2*x*y)"},                  // poles, the math object's error
      {&explicitSurface, "Exp(400*x)*y"},                         // beyond single precision
      {&explicitSurface, "Sqr(x)*y", "v", "u", 5000},             // the sink ends the mesh
      {&explicitSurface, "x*y", "v", "u", 20000},                 // ... and the dots
      {&parametric, "Sqr(x)+Log(y)", "Sqr(u)+v", "u/v"},          // each formula fails somewhere
      {&zx, "Sqr(x*y)"},                                          // derivatives: whole stencils
      {&zxyLow, "Log(x+y)/(x-0.3)"},                               //   per block, points failing
      {&zxyHigh, "Asin(x+y)*Exp(300*y)"},                          //   within and between them
      {&parametricZyy, "Log(y)*x", "Sqr(u)+v", "u*v"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.z);
    StereoSettings s = *row.s;
    s.equationZ = row.z;
    s.equationX = row.x;
    s.equationY = row.y;
    Window blocks, samples;
    SampleBySample oneByOne(samples.surface);
    blocks.draw(s, blocks.surface, row.stopAfter);
    samples.draw(s, oneByOne, row.stopAfter);
    ASSERT_EQ(blocks.seen.size(), samples.seen.size());
    for (size_t i = 0; i < blocks.seen.size(); ++i) ASSERT_EQ(blocks.seen[i], samples.seen[i]) << "entry " << i;
  }
}

}  // namespace
}  // namespace orvane
