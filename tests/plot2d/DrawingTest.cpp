#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "platform/RuntimeError.h"
#include "plot2d/PlotDrawing.h"
#include "PictureDoubles.h"
#include "Plot2dTestSupport.h"

namespace orvane {
namespace {

using testing::Call;
using testing::PictureLog;

std::string describe(const Call& c) {
  char b[200];
  if (c.kind == "line" || c.kind == "box") {
    std::snprintf(b, sizeof b, "%s %g,%g %g,%g %06X", c.kind.c_str(), c.x1, c.y1, c.x2, c.y2,
                  c.color);
  } else if (c.kind == "point") {
    std::snprintf(b, sizeof b, "point %g,%g %06X", c.x1, c.y1, c.color);
  } else if (c.kind == "circle") {
    std::snprintf(b, sizeof b, "circle %g,%g r%g %06X fill %06X", c.x1, c.y1, c.x2, c.color,
                  c.filled ? c.fill : 0xFFFFFFFFu);
  } else if (c.kind == "text") {
    std::snprintf(b, sizeof b, "text %s %06X", c.text.c_str(), c.color);
  } else {
    return c.kind;
  }
  return b;
}

// Window [-1, 1] x [-3, 3] on a picture 2000 x 3000 twips with plot step 500: samples
// every 0.5 (five across), divisions 1 and 3, axes through the origin.
PlotRequest tinyRequest() {
  PlotRequest r;
  r.setup = PlotSetup{-1, 1, -3, 3, 0, 0, 1, 3, 500};
  r.width = 2000;
  r.height = 3000;
  r.options.fittedFunction = true;
  r.options.xlower = -2;  // study interval outside the window: no end lines
  r.options.xupper = 2;
  return r;
}

std::vector<std::string> plot(const PlotRequest& r, double (*f)(double)) {
  LambdaFunction fn(f);
  DerivativeEvaluator d(fn);
  PictureLog picture;
  drawPlot(picture, d, r, [&] { picture.mark("pump"); });
  std::vector<std::string> out;
  for (const Call& c : picture.calls) out.push_back(describe(c));
  return out;
}

std::vector<std::string> after(const std::vector<std::string>& calls, const std::string& marker) {
  auto it = std::find(calls.begin(), calls.end(), marker);
  return it == calls.end() ? std::vector<std::string>{} : std::vector<std::string>(it + 1, calls.end());
}

std::vector<std::string> withColor(const std::vector<std::string>& calls, const char* color) {
  std::vector<std::string> out;
  for (const std::string& c : calls)
    if (c.find(color) != std::string::npos) out.push_back(c);
  return out;
}

TEST(PlotDriver, DrawsInOrderWithItsColours) {
  PlotRequest r = tinyRequest();
  const double xs[] = {0.5, -0.5};
  const double ys[] = {0.5, 1};
  r.dataX = xs;
  r.dataY = ys;
  const std::vector<std::string> expected = {
      "box -1,-2.998 0.999,3 00FFFF",
      "line 0,-0.15 0,0.15 00FF00",  // vertical ticks: up from the axis, then down
      "line 1,-0.15 1,0.15 00FF00",
      "line 0,-0.15 0,0.15 00FF00",
      "line -1,-0.15 -1,0.15 00FF00",
      "line -0.05,0 0.05,0 00FF00",  // horizontal ticks
      "line -0.05,3 0.05,3 00FF00",
      "line -0.05,0 0.05,0 00FF00",
      "line -0.05,-3 0.05,-3 00FF00",
      "line -1,0 1,0 0000FF",  // axes
      "line 0,-3 0,3 0000FF",
      "circle 0,0 r0.01 FF00FF fill FF00FF",
      "circle 0.5,0.5 r0.01 FF0000 fill FF0000",
      "circle -0.5,1 r0.01 FF0000 fill FF0000",
      "pump",
      "point -1,-1 000000",
      "line -1,-1 -0.5,-0.5 000000",
      "line -0.5,-0.5 0,0 000000",
      "line 0,0 0.5,0.5 000000",
      "line 0.5,0.5 1,1 000000",
      "line 1,1 1.5,1.5 000000",  // the last sample is past the edge; the picture clips it
  };
  EXPECT_EQ(plot(r, [](double x) { return x; }), expected);
}

TEST(PlotDriver, CurvePieces) {
  struct Case {
    const char* name;
    double (*f)(double);
    PlotSetup setup;
    std::vector<std::string> curve;
  };
  const PlotSetup five{-1, 1, -3, 3, 0, 0, 1, 3, 500};    // samples -1, -0.5, 0, 0.5, 1
  const PlotSetup four{-1, 1, -2.5, 2.5, 0, 0, 1, 1, 1000};  // plot step 2/3: no sample at 0
  const Case cases[] = {
      {"1/x broken at the sample at 0", testing::reciprocal, five,
       {"point -1,-1 000000", "line -1,-1 -0.5,-2 000000", "point 0.5,2 000000",
        "line 0.5,2 1,1 000000", "line 1,1 1.5,0.666667 000000"}},
      {"1/x without a sample at 0 joins the branches", testing::reciprocal, four,
       {"point -1,-1 000000", "line -1,-1 -0.333333,-3 000000",
        "line -0.333333,-3 0.333333,3 000000", "line 0.333333,3 1,1 000000"}},
      {"both ends beyond the same edge draw nothing",
       [](double x) { return x < 0 ? 10.0 : x > 0 ? -10.0 : 0.0; }, five,
       {"point -1,10 000000", "line -0.5,10 0,0 000000", "line 0,0 0.5,-10 000000"}},  // and past 1
      {"far above to far below is drawn", [](double x) { return x < -0.25 ? 10.0 : -10.0; }, five,
       {"point -1,10 000000", "line -0.5,10 0,-10 000000"}},
      {"no value anywhere, no curve",
       [](double) -> double { throw RuntimeError(err::TypeMismatch); }, five, {}},
  };
  for (const Case& c : cases) {
    PlotRequest r = tinyRequest();
    r.setup = c.setup;
    r.width = c.setup.plotStep == 1000 ? 3000 : 2000;
    EXPECT_EQ(after(plot(r, c.f), "pump"), c.curve) << c.name;
  }
}

TEST(PlotDriver, NoCurveUntilTheRegressionIsComputed) {
  PlotRequest r = tinyRequest();
  r.options.fittedFunction = false;
  const std::vector<std::string> calls = plot(r, [](double x) { return x; });
  EXPECT_TRUE(after(calls, "pump").empty());
  EXPECT_EQ(calls.front(), "box -1,-2.998 0.999,3 00FFFF");
  EXPECT_EQ(withColor(calls, "0000FF").size(), 2u);  // the axes are there
}

TEST(PlotDriver, ShadesTheStudiedAreaOfTheFunctionOnly) {
  PlotRequest r = tinyRequest();
  r.options.fittedFunction = false;
  r.options.shade = true;
  r.options.xlower = -0.5;
  r.options.xupper = 0.5;
  const std::vector<std::string> calls = plot(r, [](double) { return 1.0; });
  const std::vector<std::string> shading(calls.begin() + 1, calls.begin() + 8);
  const std::vector<std::string> expected = {
      "point -0.5,0 A0A0FF",  "line -0.5,0 -0.5,1 A0A0FF",       "point -0.0005,0 FF0000",
      "line -0.0005,0 -0.0005,1 A0A0FF", "point 0.499,0 FF0000", "line 0.499,0 0.499,1 A0A0FF",
      "line 0.499,1 0.5,1 A0A0FF",
  };
  EXPECT_EQ(shading, expected);
  const std::vector<std::string> ends(calls.begin() + 16, calls.begin() + 20);  // after 8 ticks
  EXPECT_EQ(ends, (std::vector<std::string>{"point -0.5,0 FF0000", "line -0.5,0 -0.5,1 FF0000",
                                            "point 0.5,0 FF0000", "line 0.5,0 0.5,1 FF0000"}));

  r.options.derivative = 1;
  const std::vector<std::string> derivative = plot(r, [](double) { return 1.0; });
  EXPECT_TRUE(withColor(derivative, "A0A0FF").empty());
  EXPECT_EQ(withColor(derivative, "FF0000").front(), "point -0.5,0 FF0000");
  EXPECT_EQ(withColor(derivative, "FF0000")[1], "line -0.5,0 -0.5,0 FF0000");  // f' = 0
}

TEST(PlotDriver, LowerEndLeftOfTheWindowMovesToTheEdgeOnlyWhenShading) {
  PlotRequest r = tinyRequest();
  r.options.fittedFunction = false;
  r.options.xlower = -5;
  r.options.xupper = 0.5;
  auto endPoints = [](const std::vector<std::string>& calls) {
    std::vector<std::string> points;
    for (const std::string& c : withColor(calls, "FF0000"))
      if (c.rfind("point", 0) == 0 && c.find(",0 ") != std::string::npos) points.push_back(c);
    return points;
  };
  const auto plain = endPoints(plot(r, [](double) { return 1.0; }));
  EXPECT_EQ(plain, (std::vector<std::string>{"point 0.5,0 FF0000"}));
  r.options.shade = true;
  const auto shaded = endPoints(plot(r, [](double) { return 1.0; }));
  EXPECT_EQ(shaded.back(), "point 0.5,0 FF0000");
  EXPECT_EQ(shaded[shaded.size() - 2], "point -1,0 FF0000");
}

TEST(PlotDriver, TicksNeverCloserThanOneScreenUnit) {
  PlotRequest r = tinyRequest();
  r.width = 4;  // one screen unit is 0.5 in x
  r.setup.divx = 0.1f;
  r.options.fittedFunction = false;
  const std::vector<std::string> ticks = withColor(plot(r, [](double x) { return x; }), "00FF00");
  const std::vector<std::string> vertical(ticks.begin(), ticks.begin() + 6);
  EXPECT_EQ(vertical, (std::vector<std::string>{
                          "line 0,-0.15 0,0.15 00FF00", "line 0.5,-0.15 0.5,0.15 00FF00",
                          "line 1,-0.15 1,0.15 00FF00", "line 0,-0.15 0,0.15 00FF00",
                          "line -0.5,-0.15 -0.5,0.15 00FF00", "line -1,-0.15 -1,0.15 00FF00"}));
}

TEST(PlotDriver, GridLinesSpanTheWindow) {
  PlotRequest r = tinyRequest();
  r.options.grid = true;
  r.options.fittedFunction = false;
  const std::vector<std::string> ticks = withColor(plot(r, [](double x) { return x; }), "00FF00");
  ASSERT_EQ(ticks.size(), 8u);
  EXPECT_EQ(ticks[1], "line 1,-3 1,3 00FF00");
  EXPECT_EQ(ticks[6], "line -1,0 1,0 00FF00");
}

TEST(PlotDriver, Labels) {
  PlotRequest r = tinyRequest();
  r.options.fittedFunction = false;
  r.options.labelWindow = true;
  r.options.labelDivisions = true;
  std::vector<std::string> texts;
  for (const std::string& c : plot(r, [](double x) { return x; }))
    if (c.rfind("text", 0) == 0) texts.push_back(c);
  const std::vector<std::string> expected = {
      "text -1 @verdana 20 16 C0C000", "text 1 @verdana 20 16 C0C000",
      "text -3 @verdana 20 16 C0C000", "text 3 @verdana 20 16 C0C000",
      "text 1 @verdana 11 6 C0C000",    "text -1 @verdana 11 6 C0C000",
      "text 3. @verdana 11 6 C0C000",   "text -3. @verdana 11 6 C0C000",
  };
  EXPECT_EQ(texts, expected);
  EXPECT_EQ(divisionLabel(2.5f, false), "3");
  EXPECT_EQ(divisionLabel(-2.5f, true), "-3.");
  EXPECT_EQ(divisionLabel(0.4f, false), "");
}

TEST(Viewport, NumbersForASimpleWindow) {
  PictureLog picture;
  const PlotSetup setup{-2, 4, -1, 1, 0, 0, 1, 1, 80};
  const Viewport v = setUpViewport(setup, 6000, 4000, false, picture);
  EXPECT_FLOAT_EQ(v.plotstep, 0.08f);
  EXPECT_FLOAT_EQ(v.pixelx, 0.001f);
  EXPECT_FLOAT_EQ(v.pixely, 0.0005f);
  EXPECT_FLOAT_EQ(v.divh, 0.3f);
  EXPECT_FLOAT_EQ(v.divv, 0.1f);
  EXPECT_NEAR(6 / v.plotstep, 75, 1e-4);  // plot step 80 on 6000 twips: 75 samples
  EXPECT_FLOAT_EQ(picture.ScaleLeft(), -2);
  EXPECT_FLOAT_EQ(picture.ScaleTop(), 1);
  EXPECT_FLOAT_EQ(picture.ScaleWidth(), 6);
  EXPECT_FLOAT_EQ(picture.ScaleHeight(), -2);
  const Viewport grid = setUpViewport(setup, 6000, 4000, true, picture);
  EXPECT_FLOAT_EQ(grid.divh, 6);
  EXPECT_FLOAT_EQ(grid.divv, 2);
}

TEST(Viewport, BadSizesAbandonThePlot) {
  struct Case {
    PlotSetup setup;
    float width;
    int32_t error;
  };
  const Case cases[] = {
      {{-1, 1, -1, 1, 0, 0, 1, 1, 10}, 0, err::DivisionByZero},
      {{1, 1, -1, 1, 0, 0, 1, 1, 10}, 0, err::Overflow},
      {{-3e38f, 3e38f, -1, 1, 0, 0, 1, 1, 10}, 100, err::Overflow},
  };
  for (const Case& c : cases) {
    PictureLog picture;
    LambdaFunction f([](double x) { return x; });
    DerivativeEvaluator d(f);
    PlotRequest r;
    r.setup = c.setup;
    r.width = c.width;
    r.height = 100;
    try {
      drawPlot(picture, d, r);
      ADD_FAILURE() << "plotted";
    } catch (const RuntimeError& e) {
      EXPECT_EQ(e.number(), c.error);
    }
    EXPECT_TRUE(picture.calls.empty());
  }
}

}  // namespace
}  // namespace orvane
