#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <string>

#include "stereo/FieldRules.h"
#include "stereo/StereoSettings.h"
#include "stereo/StereoTestDoubles.h"
#include "stereo/ViewControls.h"
#include "stereo/ViewTransform.h"

namespace orvane {
namespace {

using testing::near;
using testing::TableReader;

TEST(ReadPlotSettings, DefaultsDerivedValuesExpressionsAndCounts) {
  TableReader reader;
  const SettingsRead read = ReadPlotSettings(StereoFields{}, reader, StereoSettings{});
  EXPECT_EQ(read.error, 0);
  const StereoSettings& s = read.settings;
  EXPECT_EQ(std::vector<float>({s.drxu, s.dryv, s.stepxu, s.delwindx, s.delwindy, s.delwindz, s.windcex}),
            std::vector<float>({0.5f, 0.5f, 0.5f, 5, 4, 3, 0}));
  EXPECT_FLOAT_EQ(s.depthSlopeY, 0.8f);
  EXPECT_FLOAT_EQ(s.depthSlopeZ, 0.6f);
  StereoFields f;
  f.rangegxu = "pi/2";  // expression fields go through the engine, into singles
  f.xrot = "pi";
  const StereoSettings e = ReadPlotSettings(f, reader).settings;
  EXPECT_EQ(e.rangegxu, static_cast<float>(1.5707963267948966));
  EXPECT_EQ(e.xrot, static_cast<float>(3.141592653589793));
  EXPECT_EQ(e.drxu, (static_cast<float>(1.5707963267948966) + 1.0f) / 4.0f);
  // Count fields take the leading number rounded half to even (the reading itself:
  // NumberTextTest; here, that every count field goes through it).
  f.spacexu = f.ndots = f.grid = f.segsyv = "3.5 units";
  const StereoSettings c = ReadPlotSettings(f, reader).settings;
  EXPECT_TRUE(c.spacexu == 4 && c.ndots == 4 && c.grid == 4 && c.segsyv == 4);
}

TEST(ReadPlotSettings, AFailingFieldKeepsItsValueZeroCountsAndOverflowsAreErrors) {
  TableReader reader;
  StereoFields typed;
  typed.windowly = "fail:13";
  typed.windowgz = "fail:11";
  typed.zrot = "30";
  StereoSettings previous;
  previous.windowly = -7;
  const SettingsRead failed = ReadPlotSettings(typed, reader, previous);
  EXPECT_EQ(failed.error, 13);  // the first one met
  EXPECT_EQ(failed.errorField, "windowly");
  EXPECT_EQ(failed.settings.windowly, -7.0f);
  EXPECT_EQ(failed.settings.zrot, 30.0f);
  EXPECT_EQ(failed.settings.delwindy, 9.0f);  // 2 - (-7)
  // Zero counts and overflows are errors too, not infinities.
  using F = std::string StereoFields::*;
  const struct {
    F field;
    const char* text;
    int32_t error;
    F other = nullptr;  // a second field typed, when the fault needs two
    const char* otherText = "";
  } rows[] = {
      {&StereoFields::spacexu, "0", 11},                           // 2 / 0
      {&StereoFields::rangelxu, "1", 6, &StereoFields::spacexu, "0"},  // 0 / 0
      {&StereoFields::windowgx, "1e300", 6},                       // beyond single precision
      {&StereoFields::ndots, "1e10", 6},                           // beyond a count
      {&StereoFields::rangegyv, "3e38", 6, &StereoFields::rangelyv, "-3e38"},  // an extent beyond single
      {&StereoFields::xder, "3", 9},                               // outside the selector table
  };
  for (const auto& r : rows) {
    StereoFields f;
    f.*r.field = r.text;
    if (r.other) f.*r.other = r.otherText;
    const SettingsRead read = ReadPlotSettings(f, reader);
    EXPECT_EQ(read.error, r.error) << r.text;
    EXPECT_EQ(read.settings.drxu, 0.5f) << r.text;  // values kept
    EXPECT_EQ(read.settings.windowgx, 2.5f) << r.text;
  }
}

// Which selector is which: StereoOutputTest, through the file and the printed name.
TEST(DerivativeSelector, OrdersAndSelectorsRoundTrip) {
  for (int selector = 0; selector <= 5; ++selector) {
    const std::array<int32_t, 2> orders = DerivativeOrdersOf(selector);
    EXPECT_EQ(DerivativeSelectorFor(orders[0], orders[1]), selector);
  }
  EXPECT_EQ(DerivativeSelectorFor(2, 1), 0);  // beyond the second order: no surface
  EXPECT_THROW(DerivativeOrdersOf(6), RuntimeError);
}

TEST(FieldRules, CountsGridOrdersRangesAndReduction) {
  const struct {
    const char* text;
    bool count, grid, order;
  } rows[] = {{"3", true, true, false},       {"1", true, true, true},    {"0", false, true, true},
              {"2", true, true, true},        {"2.5", false, false, false}, {"-1", false, false, false},
              {"abc", false, true, true}};
  for (const auto& r : rows) {
    EXPECT_EQ(CountFieldValid(r.text), r.count) << r.text;
    EXPECT_EQ(GridFieldValid(r.text), r.grid) << r.text;
    EXPECT_EQ(DerivativeOrderValid(r.text), r.order) << r.text;
  }
  EXPECT_TRUE(DerivativeOrderSumValid("1", "1"));
  EXPECT_FALSE(DerivativeOrderSumValid("2", "1"));
  TableReader reader;
  const struct {
    const char* lower;
    const char* upper;
    bool range, window;
  } limits[] = {{"-1", "1", true, true},   {"1", "1", true, false},     {"2", "1", false, false},
                {"0", "pi/2", true, true}, {"fail:11", "1", false, false}};
  for (const auto& r : limits) {
    EXPECT_EQ(RangeLimitsValid(reader, r.lower, r.upper), r.range) << r.lower << " " << r.upper;
    EXPECT_EQ(WindowLimitsValid(reader, r.lower, r.upper), r.window) << r.lower << " " << r.upper;
  }
  for (const char* ok : {"1", "0.25"}) EXPECT_TRUE(ReduceFieldValid(reader, ok)) << ok;
  for (const char* bad : {"0", "1.5"}) EXPECT_FALSE(ReduceFieldValid(reader, bad)) << bad;
}

using Window = std::array<std::string, 6>;

Window windowOf(const StereoFields& f) {
  return {f.windowlx, f.windowgx, f.windowly, f.windowgy, f.windowlz, f.windowgz};
}

// The octants share one routine: the first and the last code of its table.
TEST(ZoomView, CodesReadPlainNumbersWriteSinglesAndRefuseOverflow) {
  const std::pair<int, Window> rows[] = {
      {kZoomOut, {"-5", "5", "-4", "4", "-3", "3"}},
      {kZoomIn, {"-1.25", "1.25", "-1", "1", "-0.75", "0.75"}},
      {1, {"0", "2.5", "0", "2", "0", "1.5"}},
      {8, {"0", "2.5", "-2", "0", "-1.5", "0"}},
      {kPanRight, {"-2.5", "2.5", "-1.5", "2.5", "-1.5", "1.5"}},
      {kPanUp, {"-2.5", "2.5", "-2", "2", "-1.125", "1.875"}},
      {kPanLeft, {"-2.5", "2.5", "-2.5", "1.5", "-1.5", "1.5"}},
      {kPanDown, {"-2.5", "2.5", "-2", "2", "-1.875", "1.125"}},
      {kPanIn, {"-3.125", "1.875", "-2", "2", "-1.5", "1.5"}},
      {kPanOut, {"-1.875", "3.125", "-2", "2", "-1.5", "1.5"}},
  };
  for (const auto& [code, expected] : rows) {
    StereoFields f;
    EXPECT_TRUE(ZoomView(code, f));
    EXPECT_EQ(windowOf(f), expected) << "code " << code;
  }
  // Plain numbers read, singles written, overflow refused.
  StereoFields f;
  f.windowlx = "pi";  // not evaluated: read as 0
  f.windowgx = "4";
  f.windowly = "0.1";
  f.windowgy = "0.7 units";
  ASSERT_TRUE(ZoomView(kZoomOut, f));
  EXPECT_EQ(windowOf(f), (Window{"-2", "6", "-0.2", "1", "-3", "3"}));
  f.windowlz = "0.1";
  ASSERT_TRUE(ZoomView(99, f));  // an unknown code writes the values back as singles
  EXPECT_EQ(f.windowlz, "0.1");
  f.windowlx = "-3e38";
  f.windowgx = "3e38";
  const Window before = windowOf(f);
  EXPECT_FALSE(ZoomView(kZoomOut, f));
  EXPECT_EQ(windowOf(f), before);
  f.windowgx = "1e39";  // not a single at all
  EXPECT_FALSE(ZoomView(kZoomIn, f));
}

TEST(StepField, IncrementAndDecrementButtons) {
  using F = std::string StereoFields::*;
  using SF = StereoFields;
  const struct {
    StepTarget target;
    StepDirection direction;
    std::string step;
    F lowerField, upperField;  // upperField null for single fields
    std::string lower, upper;
  } rows[] = {
      {StepTarget::WindX, StepDirection::Inc, "1", &SF::windowlx, &SF::windowgx, "-3", "3"},
      {StepTarget::WindX, StepDirection::Dec, "1", &SF::windowlx, &SF::windowgx, "-2", "2"},
      {StepTarget::WindZ, StepDirection::Inc, "0.5", &SF::windowlz, &SF::windowgz, "-1.75", "1.75"},
      {StepTarget::RangXU, StepDirection::Inc, "1", &SF::rangelxu, &SF::rangegxu, "-1.5", "1.5"},
      {StepTarget::RangYV, StepDirection::Dec, "3", &SF::rangelyv, &SF::rangegyv, "0.5", "-0.5"},  // unchecked
      {StepTarget::RotZ, StepDirection::Dec, "5", &SF::zrot, nullptr, "-5", ""},
      {StepTarget::RotX, StepDirection::Inc, "7.5", &SF::xrot, nullptr, "7.5", ""},
      {StepTarget::TranY, StepDirection::Inc, "abc", &SF::ytr, nullptr, "0", ""},
      {StepTarget::WindY, StepDirection::Dec, "1", &SF::windowly, &SF::windowgy, "-1.5", "1.5"},
      {StepTarget::RotY, StepDirection::Inc, "2", &SF::yrot, nullptr, "2", ""},
      {StepTarget::TranX, StepDirection::Dec, "2", &SF::xtr, nullptr, "-2", ""},
      {StepTarget::TranZ, StepDirection::Inc, "0.5", &SF::ztr, nullptr, "0.5", ""},
  };
  for (const auto& r : rows) {
    StereoFields f;
    f.stepWindX = f.stepWindY = f.stepWindZ = f.stepRangXU = f.stepRangYV = r.step;
    f.stepRotX = f.stepRotY = f.stepRotZ = f.stepTranX = f.stepTranY = f.stepTranZ = r.step;
    StepField(r.target, r.direction, f);
    EXPECT_EQ(f.*r.lowerField, r.lower) << r.step;
    EXPECT_EQ(r.upperField ? f.*r.upperField : "", r.upper) << r.step;
    EXPECT_EQ(f.windowlx, r.target == StepTarget::WindX ? r.lower : "-2.5");  // nothing else moves
  }
}

// Where RotatePoint, the drawing's own arithmetic, puts a point for these angles.
Point3 turned(const ViewAngles& a, Point3 p) {
  StereoSettings s;
  s.xrot = static_cast<float>(a.x), s.yrot = static_cast<float>(a.y), s.zrot = static_cast<float>(a.z);
  RotatePoint(MakeViewTransform(s), p);
  return p;
}

TEST(DragRotation, TurnsAboutTheScreenAxesWhateverTheAnglesBeforeAndShowsTheAngles) {
  struct Row {
    ViewAngles from;
    double dx, dy;
  };
  const Row rows[] = {{{0, 0, 0}, 20, 0}, {{0, 0, 0}, 0, 10}, {{0, 0, 90}, 0, 30}, {{30, 20, 40}, -14, 0},
                      {{10, 80, -30}, 0, -24}, {{0, 89, 0}, 0, 8}, {{-45, 0, 135}, 40, 0}};
  for (const Row& r : rows) {
    const ViewAngles to = DragRotation(r.from, r.dx, r.dy);
    for (const Point3 p : {Point3{1, 0, 0}, Point3{0, 1, 0}, Point3{0, 0, 1}, Point3{0.3f, -0.8f, 0.5f}}) {
      const Point3 before = turned(r.from, p), after = turned(to, p);
      // Sideways drags keep the height of every point, up-and-down drags its place
      // across the screen.
      if (r.dy == 0) {
        EXPECT_NEAR(after.z, before.z, 1e-3) << r.from.z;
      }
      if (r.dx == 0) {
        EXPECT_NEAR(after.y, before.y, 1e-3) << r.from.z;
      }
    }
  }
  // Which way each drag turns, from views level and not: the rows; from the level view:
  // the window's drag test.
  const std::pair<ViewAngles, std::array<std::string, 3>> shown[] = {
      {DragRotation({30, 20, 40}, -7, 0), {"30", "20", "43.5"}},
      {DragRotation({30, 20, 0}, 0, 3), {"30", "18.5", "0"}},
      // Past a quarter turn about y the angles go on instead of jumping to the other triple.
      {DragRotation({0, -88, 0}, 0, 10), {"0", "-93", "0"}},
      {DragRotation({0, 0, 179}, -4, 0), {"0", "0", "181"}},
      {DragRotation({12.34, 0, 0}, 0, 0), {"12.34", "0", "0"}},
  };
  for (const auto& [angles, expected] : shown) {
    StereoFields f;
    ShowAngles(angles, f);
    EXPECT_EQ((std::array<std::string, 3>{f.xrot, f.yrot, f.zrot}), expected);
  }
}

TEST(RotatePoint, QuarterTurnsAboutEachAxisInOrderXYZ) {
  const struct {
    float xrot, yrot, zrot, ztr;
    Point3 in, out;
  } rows[] = {
      {90, 0, 0, 0, {0, 1, 0}, {0, 0, 1}},  // +y turns towards +z
      {90, 0, 0, 0, {0, 0, 1}, {0, -1, 0}},
      {0, 90, 0, 0, {1, 0, 0}, {0, 0, -1}},  // +z turns towards +x
      {180, 0, 0, 0, {0, 1, 2}, {0, -1, -2}},
      {90, 90, 0, 0, {0, 1, 0}, {1, 0, 0}},   // x first, then y: +z towards +x
      {90, 90, 90, 0, {0, 1, 0}, {0, 1, 0}},  // then z: +x towards +y
      {90, 0, 0, 1, {0, 0, 0}, {0, -1, 0}},   // translated before rotating
  };
  for (const auto& r : rows) {
    StereoSettings s;
    s.xrot = r.xrot;
    s.yrot = r.yrot;
    s.zrot = r.zrot;
    s.ztr = r.ztr;
    const ViewTransform view = MakeViewTransform(s);
    Point3 three;
    RotatePoint(view, r.in.x, r.in.y, r.in.z, three.x, three.y, three.z);
    EXPECT_TRUE(near({three.x, three.y, three.z}, {r.out.x, r.out.y, r.out.z}))
        << r.xrot << " " << r.yrot << " " << r.zrot << " " << r.ztr;
    Point3 inPlace = r.in;  // the in-place form does the same arithmetic
    RotatePoint(view, inPlace);
    EXPECT_TRUE(inPlace.x == three.x && inPlace.y == three.y && inPlace.z == three.z);
  }
  EXPECT_TRUE(MakeViewTransform(StereoSettings{}).identity);
}

TEST(ReducePictures, ShrinksTowardsTheMiddleAndClampsTheFactor) {
  const PictureGeometry designed{10, 400, 300, 400, 300};
  const struct {
    float reduce, used;
    int width, left0, height;
  } rows[] = {{1, 1, 400, 10, 300}, {0.5f, 0.5f, 200, 210, 150}, {1.5f, 1, 400, 10, 300}, {0, 1, 400, 10, 300}};
  for (const auto& r : rows) {
    const PictureLayout l = ReducePictures(designed, r.reduce);
    EXPECT_EQ(l.reduce, r.used) << r.reduce;
    EXPECT_EQ(l.ReducedPicWidth, r.width) << r.reduce;
    EXPECT_TRUE(l.width0 == r.width && l.width1 == r.width && l.height0 == r.height && l.height1 == r.height)
        << r.reduce;
    EXPECT_EQ(l.left0, r.left0) << r.reduce;  // the left picture keeps its right edge at 410
  }
  // Halves round to even: 200.5 -> 200, 201.5 -> 202.
  const PictureLayout odd = ReducePictures({0, 401, 403, 401, 403}, 0.5f);
  EXPECT_EQ(odd.ReducedPicWidth, 200);
  EXPECT_EQ(odd.left0, 201);
  EXPECT_EQ(odd.height0, 202);
}

}  // namespace
}  // namespace orvane
