#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "stereo/StereoRender.h"
#include "stereo/StereoTestDoubles.h"

namespace orvane {
namespace {

using testing::callsOf;
using testing::near;
using K = CanvasCall::Kind;

constexpr float kTol = 1e-5f;

// A 2 x 2 mesh of the flat surface z = 0 on the default window.
struct Fixture {
  StereoSettings s;
  testing::LambdaSurface surface;
  SurfaceParameters uv;
  DotGenerator random{7};
  std::vector<Point3> marks;
  RecordingCanvas left{400, 400}, right{400, 400};

  Fixture() {
    s.spacexu = s.spaceyv = 2;
    s.drxu = s.dryv = s.stepxu = s.stepyv = 1;
    surface.formulas[s.equationZ] = [](double, double, double, double) { return 0.0; };
  }
  StereoPlot plot(StopCheck* stop = nullptr, bool shown = true) {
    return StereoPlot{s, surface, uv, random, marks, shown, stop};
  }
  void scale() { ScaleStereoPictures(left, right, s); }
};

// The colours of each background: the window's pixel test; a pole and the pen: TraceMesh.
TEST(DrawSurfaceMesh, TwoByTwoGridOnBothPicturesLeftShifted) {
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
  } rows[] = {{true, true, false, 3, 12, 0, 18}, {true, false, true, 3, 0, 3, 3},
              {true, true, true, 3, 12, 3, 21},  {false, true, true, 3, 0, 0, 0},
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

// Dots at z = 1 turned half a turn about x land at z = -1 (in the centre plane x = 0);
// dots without a value: TraceDots.
TEST(DrawSurfaceDots, DotsAreRotated) {
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
