// The 2-D plot with functions that never give a usable value and with windows no one
// means to reach (zero or inverted extent, the ends of the single range), also through
// the zoom buttons and click-to-centre. A plot draws or is abandoned with the set-up's
// error (5, 6 or 11); it never hangs, crashes, or draws at a coordinate that is no number.

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "platform/NumberText.h"
#include "plot2d/Plot2dTestDoubles.h"
#include "plot2d/PlotDrawing.h"
#include "plot2d/Viewport.h"

namespace orvane {
namespace {

constexpr float kMax = std::numeric_limits<float>::max();

struct Function {
  const char* what;
  std::function<double(double)> f;
};

double ordinary(double x) { return x * x - 1; }

const Function kFunctions[] = {
    {"fails everywhere", [](double) -> double { throw RuntimeError(err::InvalidCall); }},
    {"overflows everywhere", [](double) -> double { throw RuntimeError(err::Overflow); }},
    {"divides by zero everywhere", [](double) -> double { throw RuntimeError(err::DivisionByZero); }},
    {"infinite", [](double) { return std::numeric_limits<double>::infinity(); }},
    {"not a number", [](double) { return std::nan(""); }},
    {"huge", [](double x) { return x >= 0 ? 1e300 : -1e300; }},
    {"beyond single", [](double x) { return 1e39 * std::sin(x); }},
    {"wild", [](double x) { return std::tan(x * 1e6) * 1e30; }},
    {"ordinary", ordinary},
};

PlotSetup window(float lx, float gx, float ly, float gy) {
  return {lx, gx, ly, gy, 0, 0, (gx - lx) / 4, (gy - ly) / 4, 15};
}

// A window and the set-up's error for it (kAnyError: none or one of the three), on a
// picture of 9000 x 6000 screen units unless given.
constexpr int32_t kAnyError = -1;
struct Window {
  const char* what;
  PlotSetup setup;
  int32_t error;
  float width = 9000;
};

const Window kWindows[] = {
    {"ordinary", window(-5, 5, -3, 3), 0},
    {"zero width", window(2, 2, -3, 3), err::InvalidCall},
    {"zero height", window(-5, 5, 1, 1), err::InvalidCall},
    {"inverted x", window(5, -5, -3, 3), 0},
    {"inverted y", window(-5, 5, 3, -3), 0},
    {"inverted both", window(5, -5, 3, -3), 0},
    {"whole single range", window(-kMax, kMax, -kMax, kMax), err::Overflow},
    {"tiny", window(1, 1 + 1e-6f, 1, 1 + 1e-6f), 0},
    {"far away", window(1e30f, 1e30f * 1.0000001f, -1, 1), 0},
    {"denormal", window(0, 1e-44f, 0, 1e-44f), 0},
    {"picture without width", window(-5, 5, -3, 3), err::DivisionByZero, 0},
    {"picture and window without width", window(1, 1, -3, 3), err::Overflow, 0},
};

// Nothing is drawn before the set-up's error.
void plotOnce(const char* fwhat, const std::function<double(double)>& fn, const Window& w, int derivative) {
  SCOPED_TRACE(std::string(fwhat) + " in " + w.what + ", derivative " + std::to_string(derivative));
  testing::Evaluated f(fn);
  RecordingCanvas picture;
  const double xs[] = {0, 1, 2}, ys[] = {1e300, -1e300, -1};
  const PlotOptions options{.shade = true, .labelWindow = true, .labelDivisions = true, .derivative = derivative,
                            .xlower = w.setup.windowlx, .xupper = w.setup.windowgx};
  const PlotRequest request{w.setup, options, w.width, 6000, xs, ys, {}};
  int32_t error = 0;
  try {
    drawPlot(picture, f.d, request);
  } catch (const RuntimeError& e) {
    error = e.number();
    EXPECT_EQ(picture.size(), 0u);
  }
  if (w.error == kAnyError)
    EXPECT_TRUE(!error || error == err::InvalidCall || error == err::Overflow || error == err::DivisionByZero) << error;
  else
    EXPECT_EQ(error, w.error);
  EXPECT_LT(picture.size(), 200000u);  // a bounded number of strokes
  for (size_t i = 0; i < picture.size(); ++i) {
    const CanvasCall& c = picture[i];
    if (c.kind == CanvasCall::Kind::Clear || c.kind == CanvasCall::Kind::SavePicture) continue;
    ASSERT_FALSE(std::isnan(c.x1) || std::isnan(c.y1) || std::isnan(c.x2) || std::isnan(c.y2))
        << picture.describe(i);
  }
}

TEST(PlotHostile, FunctionsWithoutUsableValuesInEveryWindow) {
  for (const Function& f : kFunctions)
    for (const Window& w : kWindows)
      for (int derivative : {0, 1, 2, 3}) plotOnce(f.what, f.f, w, derivative);
}

// The window reached by a zoom or a click, as the fields hold it, plotted; a window that
// leaves the single range, as a click makes it or as the fields read it back, is an overflow.
template <typename Reach>
void plotFields(Reach reach, const char* what) {
  try {
    const std::array<std::string, 4> texts = reach();
    const PlotSetup reached = readPlotSetup({texts[0], texts[1], texts[2], texts[3], "0", "0", "1", "1", "15"});
    plotOnce("ordinary", ordinary, {what, reached, kAnyError}, 0);
  } catch (const RuntimeError& e) {
    EXPECT_EQ(e.number(), err::Overflow);
  }
}

// Every zoom button pressed again and again from every window, and click-to-centre at
// the window's corners and beyond: the texts stay numbers the fields can read back, and
// a plot of the window reached is drawn or abandoned cleanly.
TEST(PlotHostile, ZoomAndCentreFromDegenerateWindows) {
  for (const auto& [what, setup, error, width] : kWindows) {
    for (int code = 0; code <= 13; ++code) {
      SCOPED_TRACE(std::string(what) + ", zoom " + std::to_string(code));
      std::array<std::string, 4> texts = {formatSingle(setup.windowlx), formatSingle(setup.windowgx),
                                          formatSingle(setup.windowly), formatSingle(setup.windowgy)};
      try {
        for (int press = 0; press < 60; ++press) texts = zoomTexts(code, texts[0], texts[1], texts[2], texts[3]);
      } catch (const RuntimeError& e) {
        EXPECT_EQ(e.number(), err::Overflow);  // the window left the single range
      }
      plotFields([&] { return texts; }, what);
    }
    for (const auto& [x, y] : std::vector<std::pair<float, float>>{
             {setup.windowlx, setup.windowly}, {setup.windowgx, setup.windowgy}, {kMax, -kMax}, {0, 0}}) {
      SCOPED_TRACE(std::string(what) + ", centre at " + std::to_string(x) + "," + std::to_string(y));
      plotFields([&] { return centreTexts(setup, x, y); }, what);
    }
  }
}

}  // namespace
}  // namespace orvane
