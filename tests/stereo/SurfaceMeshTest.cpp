#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "engine/PointEvaluation.h"
#include "platform/RuntimeError.h"
#include "stereo/EngineSurface.h"
#include "stereo/PartialDerivatives.h"
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

// A window's engine with the math object registered and the engine's messages noted, in
// order, with whatever a test adds.
struct EngineWindow {
  ExpressionEngine engine;
  Class1 sh;
  int32_t shared = 0;
  EngineSurface surface{engine, sh};
  std::vector<std::string> seen;
  EngineWindow() {
    sh.sharedError = &shared;
    RegisterMathObject(engine, sh);
    engine.SetErrorHandler([this](const RuntimeError& e) { seen.push_back("error " + std::to_string(e.number())); });
  }
};

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
  // A pole at the middle lifts the pen without ending the mesh: no segment across it.
  std::vector<Step> lifted;
  for (size_t i = 0; i < whole.size(); ++i)
    if (whole[i].x != 0 || whole[i].y != 0)
      lifted.push_back({whole[i].x, whole[i].y, whole[i].penDown && (whole[i - 1].x != 0 || whole[i - 1].y != 0)});
  EXPECT_EQ(trace(grid(2, 1),
                  [](double x, double y, double, double) {
                    if (x == 0 && y == 0) throw RuntimeError(err::DivisionByZero);
                    return 1.0;
                  }),
            lifted);
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
  // Mesh, dots, then the generator's next number, u, v and the math object's errors.
  auto draw = [](EngineWindow& w, const StereoSettings& s, SurfaceEvaluator& evaluator, int32_t stopAfter) {
    SurfaceParameters uv;
    SurfaceSampler sampler(s, evaluator, uv);
    int32_t drawn = 0;
    auto note = [&](const Point3& p, const char* what) {
      w.seen.push_back(std::string(what) + " " + std::to_string(p.x) + " " + std::to_string(p.y) + " " +
                       std::to_string(p.z));
      return ++drawn < stopAfter;
    };
    TraceMesh(s, sampler, [&](const Point3& p, bool down) { return note(p, down ? "line" : "move"); }, nullptr);
    DotGenerator random(77);
    TraceDots(s, sampler, random, [&](const Point3& p) { return note(p, "dot"); });
    w.seen.push_back("then " + std::to_string(random.next()) + " u " + std::to_string(uv.u) + " v " +
                     std::to_string(uv.v) + " ierr " + std::to_string(w.sh.ierr) + " shared " +
                     std::to_string(w.shared));
  };
  // The surface itself on a large grid, its derivatives (whole stencils per block,
  // points failing within and between them) on a small one; x given: parametric.
  const struct {
    const char* z;
    int selector = kSurfaceItself, accuracy = kAccuracyHigh;
    const char *x = nullptr, *y = nullptr;
    int32_t stopAfter = 1 << 30;
  } rows[] = {
      {"Log(x+y)*Sin(3*x)"},                                                // no value on half the square
      {"1/(x-y)+Asin(2*x*y)"},                                              // poles, the math object's error
      {"Exp(400*x)*y"},                                                     // beyond single precision
      {"Sqr(x)*y", kSurfaceItself, kAccuracyHigh, nullptr, nullptr, 5000},  // the sink ends the mesh
      {"x*y", kSurfaceItself, kAccuracyHigh, nullptr, nullptr, 20000},      // ... and the dots
      {"Sqr(x)+Log(y)", kSurfaceItself, kAccuracyHigh, "Sqr(u)+v", "u/v"},  // each formula fails somewhere
      {"Sqr(x*y)", kZx},
      {"Log(x+y)/(x-0.3)", kZxy, kAccuracyMed},
      {"Asin(x+y)*Exp(300*y)", kZxy},
      {"Log(y)*x", kZyy, kAccuracyHigh, "Sqr(u)+v", "u*v"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.z);
    const bool large = row.selector == kSurfaceItself;
    StereoSettings s = large ? grid(20, 30) : grid(8, 10);
    s.ndots = large ? 3000 : 300;
    s.selector = row.selector;
    s.accuracy = row.accuracy;
    s.equationZ = row.z;
    s.parametric = row.x != nullptr;
    if (s.parametric) {
      s.equationX = row.x;
      s.equationY = row.y;
    }
    EngineWindow blocks, samples;
    SampleBySample oneByOne(samples.surface);
    draw(blocks, s, blocks.surface, row.stopAfter);
    draw(samples, s, oneByOne, row.stopAfter);
    ASSERT_EQ(blocks.seen.size(), samples.seen.size());
    for (size_t i = 0; i < blocks.seen.size(); ++i) ASSERT_EQ(blocks.seen[i], samples.seen[i]) << "entry " << i;
  }
}

TEST(EngineSurface, FormulasSeeTheFourVariablesAndFailuresBecomeErrorNumbers) {
  const struct {
    const char* formula;
    double x, y, u, v;
    int32_t error;  // -1: some error the window reports
    double value;
  } rows[] = {
      {"x*10+y", 2, 3, 0, 0, 0, 23},       {"u-v", 0, 0, 5, 1.5, 0, 3.5},
      {"Asin(x)", 2, 0, 0, 0, 5, 0},       {"Atanh(y)", 0, 1, 0, 0, 11, 0},  // the math object's error field
      {"1/(x-y)", 1, 1, 0, 0, 11, 0},      {"nosuchname*x", 1, 1, 0, 0, -1, 0},  // the engine's own
  };
  for (const auto& r : rows) {
    SCOPED_TRACE(r.formula);
    EngineWindow w;
    double value = -1;
    const int32_t error = w.surface.tryEvaluate(r.formula, r.x, r.y, r.u, r.v, value);
    EXPECT_TRUE(r.error < 0 ? error != 0 && !isSilencedError(error) : error == r.error) << error;
    if (r.error == 0) {
      EXPECT_DOUBLE_EQ(value, r.value);
    }
    try {  // the throwing form: the same value or the same error
      EXPECT_DOUBLE_EQ(w.surface.evaluate(r.formula, r.x, r.y, r.u, r.v), r.value);
      EXPECT_EQ(error, 0);
    } catch (const RuntimeError& e) {
      EXPECT_EQ(e.number(), error);
    }
  }
  // An error field left set by one failing point must not spoil the next point.
  EngineWindow w;
  double value = 1;
  EXPECT_EQ(w.surface.tryEvaluate("Acosh(x)", 0.5, 0, 0, 0, value), 5);
  EXPECT_EQ(w.surface.tryEvaluate("Acosh(x)", 1, 0, 0, 0, value), 0);
  EXPECT_DOUBLE_EQ(value, 0);

  // Setting fields are expressions too, user constants included; the window hears errors.
  EngineReader reader(w.engine);
  EXPECT_DOUBLE_EQ(reader.evalSetting("pi/2"), 1.5707963267948966);
  w.engine.ExecuteStatement("k=2.5");
  EXPECT_DOUBLE_EQ(reader.evalSetting("-k"), -2.5);
  EXPECT_THROW(reader.evalSetting("2*"), RuntimeError);
  EXPECT_EQ(w.seen.size(), 1u);
}

// Against the analytic derivatives of x^2 y^3 (none of the five zero), at both
// accuracies. Single-precision samples and the h^2 terms stay well inside half a
// percent; a wrong step, sign or constant does not.
TEST(PartialDerivatives, MatchTheAnalyticDerivatives) {
  const auto x2y3 = [](float a, float b, float& z) {
    z = static_cast<float>(double(a) * a * b * b * b);
    return int32_t{0};
  };
  for (const auto& [x, y] : {std::pair{1.5f, 0.5f}, {-0.7f, 1.2f}}) {
    const double X = x, Y = y;  // the selectors' order: the surface, Zx, Zy, Zxx, Zyy, Zxy
    const double exact[] = {0, 2 * X * Y * Y * Y, 3 * X * X * Y * Y, 2 * Y * Y * Y, 6 * X * X * Y, 6 * X * Y * Y};
    for (int selector : {kZx, kZy, kZxx, kZyy, kZxy})
      for (bool high : {true, false}) {
        float out = 1e9f;
        ASSERT_EQ(TryPartialDerivative(selector, high, x, y, x2y3, out), 0);
        EXPECT_NEAR(out, exact[selector], 5e-3 * std::max(1.0, std::fabs(exact[selector])))
            << kDerivativeNames[static_cast<size_t>(selector)] << (high ? " High" : " Med") << " at " << x << "," << y;
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
