#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "engine/PointEvaluation.h"
#include "platform/RuntimeError.h"
#include "stereo/EngineSurface.h"
#include "stereo/PartialDerivatives.h"
#include "stereo/StereoRender.h"
#include "stereo/StereoTestDoubles.h"
#include "stereo/SurfaceMesh.h"
#include "stereo/SurfaceSampler.h"

namespace orvane {
namespace {

using testing::callsOf;
using testing::LambdaSurface;
using testing::near;
using K = CanvasCall::Kind;

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

TEST(TraceMesh, PenSequencePolesCurveCountsAndAccumulatedPositions) {
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

TEST(SurfaceSampler, ParametricPointsMapThroughYThenXThenZAndDerivativesReplaceTheHeight) {
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
  // Explicit: a selected derivative replaces the height; values beyond single overflow.
  s.parametric = false;
  surface.formulas[s.equationZ] = [](double x, double y, double, double) { return x * x * y; };
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
TEST(PartialDerivatives, MatchTheAnalyticDerivativesAndAnyFailingEvaluationInvalidatesTheSample) {
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

constexpr float kTol = 1e-5f;

// A 2 x 2 mesh of the flat surface z = 0 on the default window.
struct Fixture {
  StereoSettings s = grid(2, 1);
  testing::LambdaSurface surface;
  SurfaceParameters uv;
  DotGenerator random{7};
  std::vector<Point3> marks;
  RecordingCanvas left{400, 400}, right{400, 400};

  Fixture() { surface.formulas[s.equationZ] = flat; }
  StereoPlot plot(StopCheck* stop = nullptr, bool shown = true) {
    return StereoPlot{s, surface, uv, random, marks, shown, stop};
  }
  void scale() { ScaleStereoPictures(left, right, s); }
};

// The colours of each background: the window's pixel test; a pole and the pen: TraceMesh.
TEST(DrawSurfaceMeshAndDots, TwoByTwoGridOnBothPicturesLeftShiftedAndDotsRotated) {
  Fixture f;
  f.scale();
  DrawSurfaceMesh(f.left, f.right, f.plot());
  const auto l = callsOf(f.left, K::Line), r = callsOf(f.right, K::Line);
  ASSERT_EQ(l.size(), 12u);
  ASSERT_EQ(r.size(), 12u);
  for (size_t i = 0; i < l.size(); ++i) {
    EXPECT_TRUE(l[i].color == Rgb(0, 0, 0) && r[i].color == Rgb(0, 0, 0)) << i;
    EXPECT_NEAR(l[i].y1, r[i].y1, kTol);  // the vertical is shared
  }
  // The first segment, (-1,-1,0) to (-1,0,0), at depth 1 from the centre plane: the left
  // picture adds depth * stereo shift 0.16. The third starts at (0,-1,0) in the centre
  // plane: no parallax. The last, of the curve y = 1, ends at (1,1,0).
  EXPECT_TRUE(near({r[0].x1, r[0].y1, r[0].x2, r[2].x1, r[11].x2}, {-0.2f, 0.6f, 0.8f, -1, 0.2f}));
  EXPECT_TRUE(near({l[0].x1, l[0].x2, l[2].x1, l[11].x2}, {-0.04f, 0.96f, -1, 0.04f}));
  // Dots at z = 1 turned half a turn about x land at z = -1 (without a value: TraceDots).
  Fixture g;
  g.s.ndots = 20;
  g.s.rangelxu = g.s.rangegxu = 0;
  g.s.xrot = 180;
  g.surface.formulas[g.s.equationZ] = [](double, double, double, double) { return 1.0; };
  g.scale();
  DrawSurfaceDots(g.left, g.right, g.plot());
  const auto p = callsOf(g.right, K::Point);
  ASSERT_EQ(p.size(), 20u);
  for (const auto& c : p) EXPECT_NEAR(c.y1, -1, kTol);
}

// The frame inset by one device unit on the right and bottom (else those edges fall off
// the picture), reference lines, the depth axis shifted in the left picture, the data
// marks last; the events pumped once before the surface.
TEST(DrawStereoPlot, FrameOnThePictureAndTheDepthAxisShifted) {
  Fixture f;
  f.s.lines = false;
  f.s.divx = f.s.divy = f.s.divz = 10;  // no division marks inside the window
  f.marks = {{0, 1, 0.25f}};
  int pumps = 0;
  StopCheck pump([&] { return ++pumps, false; }, std::chrono::hours(1));
  EXPECT_TRUE(DrawStereoPlot(f.left, f.right, f.plot(&pump)));
  EXPECT_EQ(pumps, 1);
  const std::vector<std::string> right = f.right.describeAll(), left = f.left.describeAll();
  ASSERT_EQ(right.size(), 14u);
  EXPECT_EQ(right.front(), "box (-2,-1.4925)-(1.99,1.5) #00C0C0");
  EXPECT_EQ(right[1], "line (-1.2,-1.5)-(-1.2,1.5) #C0C000 dot");  // the first of eight reference lines
  EXPECT_EQ(right.back(), "circle (1,0.25) r=0.02 #FF0000 fill #FF0000");
  EXPECT_EQ(right[9], "line (2,1.5)-(-2,-1.5) #008000");
  EXPECT_EQ(left[9], "line (2.4,1.5)-(-2.4,-1.5) #008000");
}

TEST(DrawStereoPlot, SurfaceOnlyWithTheFittedFunctionAndItsBoxes) {
  const struct {
    bool shown, lines, dots;
    int32_t ndots;
    size_t linesDrawn, points;
    int tried;
  } rows[] = {{true, true, false, 3, 12, 0, 18}, {true, false, true, 3, 0, 3, 3}, {false, true, true, 3, 0, 0, 0},
              {true, false, false, 3, 0, 0, 0},  {true, false, true, 1, 0, 1, 1}};
  for (const auto& r : rows) {
    SCOPED_TRACE(::testing::Message() << r.shown << r.lines << r.dots << " " << r.ndots);
    Fixture f;
    f.s.grid = 0;
    f.s.divx = f.s.divy = f.s.divz = 10;
    f.s.lines = r.lines;
    f.s.dots = r.dots;
    f.s.ndots = r.ndots;
    DrawStereoPlot(f.left, f.right, f.plot(nullptr, r.shown));
    EXPECT_EQ(callsOf(f.left, K::Line).size(), 3 + r.linesDrawn);  // after the three axes
    EXPECT_EQ(callsOf(f.right, K::Point).size(), r.points);
    EXPECT_EQ(f.surface.calls, r.tried);
  }
}

// A stop (asked here at every evaluation and reference line) ends the plot where it is:
// what was drawn stays, nothing more is evaluated, and the lines are solid again.
TEST(DrawStereoPlot, AStopKeepsWhatWasDrawn) {
  Fixture f;  // 2 x 2 mesh: stopped at the fifth sample, the start of the second curve
  f.s.grid = 0;
  f.s.divx = f.s.divy = f.s.divz = 10;
  StopCheck inMesh([&] { return f.surface.calls >= 4; }, StopCheck::Clock::duration::zero());
  EXPECT_FALSE(DrawStereoPlot(f.left, f.right, f.plot(&inMesh)));
  EXPECT_EQ(f.surface.calls, 4);
  EXPECT_EQ(callsOf(f.right, K::Line).size(), 3u + 2);  // the axes and the first curve

  Fixture g;  // two thousand million reference lines, stopped before the thousandth
  g.s.grid = 2147483647;
  int asks = 0;
  StopCheck inReferenceLines([&] { return ++asks >= 1000; }, StopCheck::Clock::duration::zero());
  EXPECT_FALSE(DrawStereoPlot(g.left, g.right, g.plot(&inReferenceLines)));
  EXPECT_EQ(callsOf(g.left, K::Line).size(), 999u);
  EXPECT_EQ(callsOf(g.right, K::Line).size(), 0u);
  EXPECT_EQ(g.surface.calls, 0);
  EXPECT_TRUE(g.left.DrawStyle() == DrawStyle::Solid && g.right.DrawStyle() == DrawStyle::Solid);
}

TEST(DrawStereoPlot, AppearanceDataMarksAndAWindowWithoutWidth) {
  StereoSettings s;  // the colours themselves: the window's pixel test
  s.background = kBackgroundBlack;
  s.persist = false;
  RecordingCanvas left{400, 400}, right{400, 400};
  ApplyPlotAppearance(left, right, s);
  for (RecordingCanvas* pic : {&left, &right})
    EXPECT_TRUE(pic->BackColor() == Rgb(0, 0, 0) && pic->ForeColor() == Rgb(255, 255, 255) && !pic->AutoRedraw());
  // Marks take both variables and the dependent value (column m + 1), X(k, j) = 10 k + j, m = 3.
  auto X = [](int32_t k, int32_t j) { return 10.0 * k + j; };
  const std::vector<Point3> marks = DataMarksFrom(2, 3, X);
  ASSERT_EQ(marks.size(), 2u);
  EXPECT_TRUE(marks[1].x == 21 && marks[1].y == 22 && marks[1].z == 24);
  EXPECT_TRUE(DataMarksFrom(5, 1, X).empty());
  EXPECT_TRUE(DataMarksFrom(0, 2, X).empty());
  for (float gy : {-2.0f, std::numeric_limits<float>::infinity()}) {  // a window without width
    Fixture g;
    g.s.windowgy = gy;
    g.s.delwindy = g.s.windowgy - g.s.windowly;
    EXPECT_NO_THROW(DrawStereoPlot(g.left, g.right, g.plot()));
    EXPECT_EQ(g.left.size(), 0u);
  }
}

}  // namespace
}  // namespace orvane
