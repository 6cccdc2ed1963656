#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/RuntimeError.h"
#include "plot2d/DivisionLabel.h"
#include "plot2d/PlotDrawing.h"
#include "Plot2dTestDoubles.h"

namespace orvane {
namespace {

using Calls = std::vector<std::string>;

// Window [-1, 1] x [-3, 3] on 2000 x 3000 twips with plot step 500: samples every 0.5,
// divisions 1 and 3, axes through the origin, study interval outside the window.
PlotRequest tinyRequest(bool fitted = true) {
  PlotRequest r;
  r.setup = {-1, 1, -3, 3, 0, 0, 1, 3, 500};
  r.options = {.fittedFunction = fitted, .xlower = -2, .xupper = 2};
  r.width = 2000;
  r.height = 3000;
  return r;
}

// Every call described, texts by their text.
Calls plot(const PlotRequest& r, double (*f)(double)) {
  testing::Evaluated fn(f);
  RecordingCanvas picture(200, 150);
  drawPlot(picture, fn.d, r);
  Calls out;
  for (size_t i = 0; i < picture.size(); ++i)
    out.push_back(picture[i].kind == CanvasCall::Kind::Text ? "text " + picture[i].text : picture.describe(i));
  return out;
}

Calls matching(const Calls& calls, const char* piece) {
  Calls out;
  std::copy_if(calls.begin(), calls.end(), std::back_inserter(out),
               [&](const std::string& c) { return c.find(piece) != std::string::npos; });
  return out;
}

TEST(PlotDriver, CurvePieces) {
  const PlotSetup five{-1, 1, -3, 3, 0, 0, 1, 3, 500};       // samples -1, -0.5, 0, 0.5, 1
  const PlotSetup four{-1, 1, -2.5, 2.5, 0, 0, 1, 1, 1000};  // step 2/3 on 3000: no sample at 0
  const struct {
    const char* name;
    double (*f)(double);
    PlotSetup setup;
    Calls curve;
  } cases[] = {
      {"1/x broken at the sample at 0", testing::reciprocal, five,
       {"pset (-1,-1) #000000", "line (-1,-1)-(-0.5,-2) #000000", "pset (0.5,2) #000000",
        "line (0.5,2)-(1,1) #000000", "line (1,1)-(1.5,0.666667) #000000"}},
      {"1/x without a sample at 0 joins the branches", testing::reciprocal, four,
       {"pset (-1,-1) #000000", "line (-1,-1)-(-0.333333,-3) #000000",
        "line (-0.333333,-3)-(0.333333,3) #000000", "line (0.333333,3)-(1,1) #000000"}},
      {"both ends beyond the same edge draw nothing",  // -1 to -0.5, and 0.5 to 1
       [](double x) { return x < 0 ? 10.0 : x > 0 ? -10.0 : 0.0; }, five,
       {"pset (-1,10) #000000", "line (-0.5,10)-(0,0) #000000", "line (0,0)-(0.5,-10) #000000"}},
      {"far above to far below is drawn", [](double x) { return x < -0.25 ? 10.0 : -10.0; }, five,
       {"pset (-1,10) #000000", "line (-0.5,10)-(0,-10) #000000"}},
      {"no value anywhere", [](double) -> double { throw RuntimeError(err::TypeMismatch); }, five, {}},
  };
  for (const auto& c : cases) {
    PlotRequest r = tinyRequest();
    r.setup = c.setup;
    r.width = c.setup.plotStep == 1000 ? 3000 : 2000;
    EXPECT_EQ(matching(plot(r, c.f), "#000000"), c.curve) << c.name;  // the curve's colour
  }
}

TEST(PlotDriver, ShadingAndIntervalEnds) {
  PlotRequest r = tinyRequest(false);
  r.options = {.shade = true, .xlower = -0.5, .xupper = 0.5};
  const Calls shaded = plot(r, [](double) { return 1.0; });
  EXPECT_EQ(matching(shaded, "#A0A0FF").front(), "pset (-0.5,0) #A0A0FF");
  EXPECT_EQ(matching(shaded, "#A0A0FF").back(), "line (0.499,1)-(0.5,1) #A0A0FF");
  EXPECT_EQ(matching(shaded, "line (0.5,0)-(0.5,1) #FF0000").size(), 1u);
  // A derivative is never shaded; its end lines follow f' = 0.
  r.options.derivative = 1;
  const Calls derivative = plot(r, [](double) { return 1.0; });
  EXPECT_TRUE(matching(derivative, "#A0A0FF").empty());
  EXPECT_EQ(matching(derivative, "#FF0000")[1], "line (-0.5,0)-(-0.5,0) #FF0000");
  // A lower end left of the window moves to the edge only when shading.
  r.options.derivative = 0;
  r.options.xlower = -5;
  EXPECT_EQ(matching(plot(r, [](double) { return 1.0; }), "pset (-1,0) #FF0000").size(), 1u);
  r.options.shade = false;
  EXPECT_EQ(matching(plot(r, [](double) { return 1.0; }), ",0) #FF0000"), (Calls{"pset (0.5,0) #FF0000"}));
}

// A stop (asked here at every evaluation) ends the shading, the interval-end lines and
// the curve where they are; the frame, ticks, axes and marks are drawn all the same.
TEST(PlotDriver, AStopEndsOnlyTheEvaluatingParts) {
  const struct {
    bool shade;  // of [-0.5, 0.5]; else the study interval lies outside the window
    int stopAt;
    size_t shadingLines, curveLines;
  } cases[] = {{true, 2, 2, 0}, {false, 3, 0, 2}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.stopAt);
    PlotRequest r = tinyRequest();
    if (c.shade) r.options = {.shade = true, .fittedFunction = true, .xlower = -0.5, .xupper = 0.5};
    int calls = 0;
    testing::Evaluated fn([&](double x) { return ++calls, x; });
    StopCheck stop([&] { return calls >= c.stopAt; }, StopCheck::Clock::duration::zero());
    fn.d.setStopCheck(&stop);
    RecordingCanvas picture(200, 150);
    EXPECT_TRUE(drawPlot(picture, fn.d, r).interrupted);
    EXPECT_EQ(calls, c.stopAt);
    const Calls all = picture.describeAll();
    EXPECT_TRUE(matching(matching(all, "line"), "#FF0000").empty());  // no interval-end line
    EXPECT_EQ(matching(all, "line (0,-3)-(0,3) #0000FF").size(), 1u);
    EXPECT_EQ(matching(all, "circle (0,0)").size(), 1u);
    EXPECT_EQ(matching(matching(all, "line"), "#A0A0FF").size(), c.shadingLines);
    EXPECT_EQ(matching(matching(all, "line"), "#000000").size(), c.curveLines);
  }
}

TEST(PlotDriver, TicksGridAndLabels) {
  PlotRequest r = tinyRequest(false);
  r.width = 4;  // one screen unit is 0.5 in x: ticks of 0.1 are drawn no closer than that
  r.setup.divx = 0.1f;
  EXPECT_EQ(matching(matching(plot(r, [](double x) { return x; }), "#00FF00"), "-0.15)-(").size(), 6u);
  r = tinyRequest(false);
  r.options.grid = true;  // the ticks run across the whole window
  const Calls grid = matching(plot(r, [](double x) { return x; }), "#00FF00");
  ASSERT_EQ(grid.size(), 8u);
  EXPECT_EQ(grid[1], "line (1,-3)-(1,3) #00FF00");
  EXPECT_EQ(grid[6], "line (-1,0)-(1,0) #00FF00");
  r = tinyRequest(false);
  r.options.labelWindow = true;
  EXPECT_EQ(matching(plot(r, [](double x) { return x; }), "text "), (Calls{"text -1", "text 1", "text -3", "text 3"}));
  r.options.labelWindow = false;
  r.options.labelDivisions = true;
  // Fractional divisions on y: the decimals they need, not the integer form.
  r.setup.divy = 1.5f;
  EXPECT_EQ(matching(plot(r, [](double x) { return x; }), "text "),
            (Calls{"text 1", "text -1", "text 1.5", "text 3.0", "text -1.5", "text -3.0"}));
}

TEST(DivisionLabel, WholeSpacingsKeepTheIntegerFormOthersShowTheirDecimals) {
  const struct {
    float value, spacing;
    bool trailingPoint;
    const char* text;
  } cases[] = {
      {2.5f, 1, false, "3"},      {-2.5f, 1, true, "-3."},          {0.4f, 1, false, ""},
      {0, 1, true, "."},          {0.75f, 0.25f, true, "0.75"},     {1, 0.25f, true, "1.00"},
      {0.3f, 0.1f, false, "0.3"}, {-0.0000001f, 0.25f, true, ""},  // no "-0.00"
      {2e-5f, 1e-5f, false, "0.00002"},  {2e11f, 1e10f, true, "200000000000."},  // not 200000004096
      {-1.23456789e9f, 1e8f, false, "-1234568000"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(divisionLabel(c.value, c.spacing, c.trailingPoint), c.text) << c.value << " every " << c.spacing;
  // Ticks walked from an axis at 0.1 as the picture walks them: no two read the same.
  for (float spacing : {0.25f, 0.5f, 2.5f, 1e-3f, 1.0f, 0.1f, 1.5f, 0.2f}) {
    std::vector<std::string> texts;
    float at = 0.1f - 20 * spacing;
    for (int k = 0; k < 40; ++k, at += spacing) texts.push_back(divisionLabel(at, spacing, false));
    std::sort(texts.begin(), texts.end());
    EXPECT_EQ(std::adjacent_find(texts.begin(), texts.end()), texts.end()) << "every " << spacing;
  }
}

}  // namespace
}  // namespace orvane
