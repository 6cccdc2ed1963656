#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "stereo/StereoRender.h"
#include "stereo/StereoTestDoubles.h"

namespace orvane {
namespace {

using testing::LambdaSurface;
using testing::callsOf;
using K = CanvasCall::Kind;

constexpr float kTol = 1e-5f;

struct Fixture {
  StereoSettings s;
  LambdaSurface surface;
  SurfaceParameters uv;
  DotGenerator random{7};
  std::vector<Point3> marks;
  RecordingCanvas left{400, 400}, right{400, 400};

  Fixture() {
    s.spacexu = s.spaceyv = 2;
    s.drxu = s.dryv = s.stepxu = s.stepyv = 1;
    surface.formulas[s.equationZ] = [](double, double, double, double) { return 0.0; };
  }
  StereoPlot plot() { return StereoPlot{s, surface, uv, random, marks, true, nullptr}; }
  void scale() { ScaleStereoPictures(left, right, s); }
};

TEST(DrawSurfaceMesh, TwoByTwoGridOnBothPicturesLeftShifted) {
  for (int background : {kBackgroundWhite, kBackgroundBlack}) {
    Fixture f;
    f.s.background = background;
    f.scale();
    DrawSurfaceMesh(f.left, f.right, f.plot());
    const auto l = callsOf(f.left, K::Line), r = callsOf(f.right, K::Line);
    ASSERT_EQ(l.size(), 12u);
    ASSERT_EQ(r.size(), 12u);
    const Color expected = background == kBackgroundWhite ? Rgb(0, 0, 0) : Rgb(255, 255, 255);
    for (size_t i = 0; i < l.size(); ++i) {
      EXPECT_EQ(l[i].color, expected);
      EXPECT_EQ(r[i].color, expected);
      EXPECT_NEAR(l[i].y1, r[i].y1, kTol);  // the vertical is shared
    }
    // First segment, (-1,-1,0) to (-1,0,0): depth 1 from the centre plane.
    EXPECT_NEAR(r[0].x1, -0.2f, kTol);
    EXPECT_NEAR(r[0].y1, 0.6f, kTol);
    EXPECT_NEAR(r[0].x2, 0.8f, kTol);
    EXPECT_NEAR(l[0].x1, -0.04f, kTol);  // + depth * stereo shift 0.16
    EXPECT_NEAR(l[0].x2, 0.96f, kTol);
    // A segment in the centre plane, (0,-1,0) to (0,0,0): no parallax.
    EXPECT_NEAR(l[2].x1, -1, kTol);
    EXPECT_NEAR(r[2].x1, -1, kTol);
    // Last segment, of the curve y = 1: (0,1,0) to (1,1,0).
    EXPECT_NEAR(r[11].x1, 1, kTol);
    EXPECT_NEAR(r[11].x2, 0.2f, kTol);
    EXPECT_NEAR(l[11].x2, 0.04f, kTol);
  }
}

TEST(DrawSurfaceMesh, APoleBreaksTheCurvesThroughItOnly) {
  Fixture f;
  f.surface.formulas[f.s.equationZ] = [](double x, double y, double, double) {
    if (x == 0 && y == 0) throw RuntimeError(err::DivisionByZero);
    return 0.5;
  };
  f.scale();
  DrawSurfaceMesh(f.left, f.right, f.plot());
  const auto r = callsOf(f.right, K::Line);
  EXPECT_EQ(r.size(), 8u);
  EXPECT_EQ(callsOf(f.left, K::Line).size(), 8u);
  // The pole projects to (0, 0.5) in the right picture; no segment reaches it.
  for (const auto& c : r) {
    EXPECT_FALSE(std::fabs(c.x1) < kTol && std::fabs(c.y1 - 0.5f) < kTol);
    EXPECT_FALSE(std::fabs(c.x2) < kTol && std::fabs(c.y2 - 0.5f) < kTol);
  }
}

TEST(DrawSurfaceMesh, RotatedPathRotatesEveryPoint) {
  Fixture f;
  f.s.spacexu = f.s.spaceyv = 1;
  f.s.drxu = f.s.dryv = f.s.stepxu = f.s.stepyv = 2;
  f.s.zrot = 90;  // (x, y) -> (-y, x)
  f.scale();
  DrawSurfaceMesh(f.left, f.right, f.plot());
  const auto r = callsOf(f.right, K::Line);
  ASSERT_EQ(r.size(), 4u);
  // (-1,-1,0) turns to (1,-1,0): depth -1, so hR = -1 - 0.8, v = -0.6.
  EXPECT_NEAR(r[0].x1, -1.8f, kTol);
  EXPECT_NEAR(r[0].y1, -0.6f, kTol);
}

TEST(DrawStereoPlot, FrameReferenceLinesAxesAndMarksInOrder) {
  Fixture f;
  f.s.lines = false;
  f.s.divx = f.s.divy = f.s.divz = 10;  // no marks inside the window: only the axes
  f.marks = {{0, 1, 0.25f}};
  int pumps = 0;
  StereoPlot plot = f.plot();
  plot.pump = [&] { ++pumps; };
  DrawStereoPlot(f.left, f.right, plot);
  EXPECT_EQ(pumps, 1);
  for (RecordingCanvas* pic : {&f.left, &f.right}) {
    const auto& c = pic->calls();
    ASSERT_EQ(c.size(), 1u + 8 + 3 + 2);
    // Border, inset by one device unit on the right and bottom.
    EXPECT_EQ(c[0].kind, K::Box);
    EXPECT_EQ(c[0].color, Rgb(192, 192, 0));
    EXPECT_NEAR(c[0].x1, -2, kTol);
    EXPECT_NEAR(c[0].y1, -1.5f + 3.0f / 400, kTol);
    EXPECT_NEAR(c[0].x2, 2 - 4.0f / 400, kTol);
    EXPECT_NEAR(c[0].y2, 1.5f, kTol);
    // Dotted reference lines: vertical, then horizontal.
    const float ys[] = {-1.2f, -0.4f, 0.4f, 1.2f}, zs[] = {-0.9f, -0.3f, 0.3f, 0.9f};
    for (int i = 0; i < 4; ++i) {
      EXPECT_EQ(c[1 + i].drawStyle, DrawStyle::Dot);
      EXPECT_EQ(c[1 + i].color, Rgb(0, 192, 192));
      EXPECT_NEAR(c[1 + i].x1, ys[i], kTol);
      EXPECT_NEAR(c[1 + i].x2, ys[i], kTol);
      EXPECT_NEAR(c[5 + i].y1, zs[i], kTol);
      EXPECT_NEAR(c[5 + i].x1, -2, kTol);
      EXPECT_NEAR(c[5 + i].x2, 2, kTol);
    }
    // Three solid axes in the axes colour.
    for (int i = 9; i < 12; ++i) {
      EXPECT_EQ(c[i].kind, K::Line);
      EXPECT_EQ(c[i].drawStyle, DrawStyle::Solid);
      EXPECT_EQ(c[i].color, Rgb(0, 128, 0));
    }
    // The origin mark, then the data mark, both filled.
    EXPECT_EQ(c[12].kind, K::Circle);
    EXPECT_EQ(c[12].color, Rgb(255, 0, 0));
    EXPECT_EQ(c[12].fillStyle, FillStyle::Solid);
    EXPECT_NEAR(c[12].radius, 4.0f / 100, kTol);
    EXPECT_EQ(c[13].kind, K::Circle);
    EXPECT_EQ(c[13].color, Rgb(0, 0, 255));
    EXPECT_EQ(c[13].fillColor, Rgb(0, 0, 255));
    EXPECT_NEAR(c[13].x1, 1, kTol);  // in the centre plane: same place in both pictures
    EXPECT_NEAR(c[13].y1, 0.25f, kTol);
    EXPECT_NEAR(c[13].radius, 4.0f / 200, kTol);
    EXPECT_EQ(pic->FillStyle(), FillStyle::Transparent);
    EXPECT_EQ(pic->DrawStyle(), DrawStyle::Solid);
  }
  // The x axis runs through the depth: its ends differ between the pictures.
  EXPECT_NEAR(f.right[9].x1, 2, kTol);
  EXPECT_NEAR(f.left[9].x1, 2.4f, kTol);
}

TEST(DrawStereoPlot, SurfaceOnlyWithTheFittedFunctionAndItsBoxes) {
  struct Row {
    bool shown, lines, dots;
    size_t linesDrawn, points;
  } rows[] = {{true, true, false, 12, 0},  {true, false, true, 0, 3}, {true, true, true, 12, 3},
              {false, true, true, 0, 0},   {true, false, false, 0, 0}};
  for (const Row& r : rows) {
    Fixture f;
    f.s.grid = 0;
    f.s.divx = f.s.divy = f.s.divz = 10;
    f.s.lines = r.lines;
    f.s.dots = r.dots;
    f.s.ndots = 3;
    StereoPlot plot = f.plot();
    plot.surfaceShown = r.shown;
    DrawStereoPlot(f.left, f.right, plot);
    const size_t frame = 3;  // the axes
    EXPECT_EQ(callsOf(f.left, K::Line).size(), frame + r.linesDrawn) << r.shown << r.lines << r.dots;
    EXPECT_EQ(callsOf(f.right, K::Point).size(), r.points) << r.shown << r.lines << r.dots;
  }
}

TEST(DrawSurfaceDots, UndefinedEverywhereDrawsNothingAndDotsAreRotated) {
  Fixture f;
  f.s.ndots = 50;
  f.surface.formulas[f.s.equationZ] = [](double, double, double, double) -> double { throw RuntimeError(5); };
  f.scale();
  DrawSurfaceDots(f.left, f.right, f.plot());
  EXPECT_EQ(f.left.size(), 0u);

  // Dots at z = 1 turned half a turn about x land at z = -1 (in the centre plane x = 0).
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

TEST(ApplyPlotAppearance, BackgroundPersistenceAndColours) {
  StereoSettings s;
  s.background = kBackgroundBlack;
  s.persist = false;
  RecordingCanvas left{400, 400}, right{400, 400};
  ApplyPlotAppearance(left, right, s);
  for (RecordingCanvas* pic : {&left, &right}) {
    EXPECT_EQ(pic->BackColor(), Rgb(0, 0, 0));
    EXPECT_EQ(pic->ForeColor(), Rgb(255, 255, 255));
    EXPECT_FALSE(pic->AutoRedraw());
  }
  EXPECT_EQ(ColorsFor(kBackgroundBlack).axes, Rgb(0, 255, 0));
  EXPECT_EQ(ColorsFor(kBackgroundBlack).dotcolor, Rgb(255, 255, 0));
  EXPECT_EQ(Rgb(255, 0, 0), colors::Red);
}

}  // namespace
}  // namespace orvane

namespace orvane {
namespace {

TEST(DataMarksFrom, TakesBothVariablesAndTheDependentValueOfEachDataSet) {
  // X(k, j) = 10 k + j, with m = 3: the dependent value is column 4.
  auto X = [](int32_t k, int32_t j) { return 10.0 * k + j; };
  const std::vector<Point3> marks = DataMarksFrom(2, 3, X);
  ASSERT_EQ(marks.size(), 2u);
  EXPECT_EQ(marks[1].x, 21);
  EXPECT_EQ(marks[1].y, 22);
  EXPECT_EQ(marks[1].z, 24);
  EXPECT_TRUE(DataMarksFrom(5, 1, X).empty());
  EXPECT_TRUE(DataMarksFrom(0, 2, X).empty());
}

}  // namespace
}  // namespace orvane

namespace orvane {
namespace {

TEST(DrawStereoPlot, AWindowWithoutWidthDrawsNothing) {
  for (float gy : {-2.0f, std::numeric_limits<float>::infinity()}) {
    StereoSettings s;
    s.windowgy = gy;
    s.delwindy = s.windowgy - s.windowly;
    LambdaSurface surface;
    SurfaceParameters uv;
    DotGenerator random(1);
    RecordingCanvas left(400, 400), right(400, 400);
    EXPECT_NO_THROW(DrawStereoPlot(left, right, StereoPlot{s, surface, uv, random, {}, true, nullptr}));
    EXPECT_EQ(left.size(), 0u);
  }
}

}  // namespace
}  // namespace orvane
