#include <gtest/gtest.h>

#include <array>
#include <string>

#include "stereo/ViewControls.h"

namespace orvane {
namespace {

using Window = std::array<std::string, 6>;

Window windowOf(const StereoFields& f) {
  return {f.windowlx, f.windowgx, f.windowly, f.windowgy, f.windowlz, f.windowgz};
}

TEST(ZoomView, CodesOnTheDefaultWindow) {
  struct Row {
    int code;
    Window expected;
  } rows[] = {
      {kZoomOut, {"-5", "5", "-4", "4", "-3", "3"}},
      {kZoomIn, {"-1.25", "1.25", "-1", "1", "-0.75", "0.75"}},
      {1, {"0", "2.5", "0", "2", "0", "1.5"}},
      {2, {"-2.5", "0", "0", "2", "0", "1.5"}},
      {3, {"-2.5", "0", "-2", "0", "0", "1.5"}},
      {4, {"0", "2.5", "-2", "0", "0", "1.5"}},
      {5, {"0", "2.5", "0", "2", "-1.5", "0"}},
      {7, {"-2.5", "0", "-2", "0", "-1.5", "0"}},
      {8, {"0", "2.5", "-2", "0", "-1.5", "0"}},
      {kPanRight, {"-2.5", "2.5", "-1.5", "2.5", "-1.5", "1.5"}},
      {kPanUp, {"-2.5", "2.5", "-2", "2", "-1.125", "1.875"}},
      {kPanLeft, {"-2.5", "2.5", "-2.5", "1.5", "-1.5", "1.5"}},
      {kPanDown, {"-2.5", "2.5", "-2", "2", "-1.875", "1.125"}},
      {kPanIn, {"-3.125", "1.875", "-2", "2", "-1.5", "1.5"}},
      {kPanOut, {"-1.875", "3.125", "-2", "2", "-1.5", "1.5"}},
      {16, {"-2.5", "2.5", "-2", "2", "-1.5", "1.5"}},
      {-1, {"-2.5", "2.5", "-2", "2", "-1.5", "1.5"}},
  };
  for (const Row& r : rows) {
    StereoFields f;
    EXPECT_TRUE(ZoomView(r.code, f));
    EXPECT_EQ(windowOf(f), r.expected) << "code " << r.code;
  }
}

TEST(ZoomView, ReadsPlainNumbersAndWritesSinglePrecision) {
  StereoFields f;
  f.windowlx = "pi";  // not evaluated: read as 0
  f.windowgx = "4";
  f.windowly = "0.1";
  f.windowgy = "0.7 units";
  ASSERT_TRUE(ZoomView(kZoomOut, f));
  EXPECT_EQ(f.windowlx, "-2");
  EXPECT_EQ(f.windowgx, "6");
  EXPECT_EQ(f.windowly, "-0.2");
  EXPECT_EQ(f.windowgy, "1");
  // An unknown code writes the values back in their single-precision form.
  f.windowlz = "0.1";
  ASSERT_TRUE(ZoomView(99, f));
  EXPECT_EQ(f.windowlz, "0.1");
}

TEST(ZoomView, AnOverflowLeavesTheTextsUnchanged) {
  StereoFields f;
  f.windowlx = "-3e38";
  f.windowgx = "3e38";
  const Window before = windowOf(f);
  EXPECT_FALSE(ZoomView(kZoomOut, f));
  EXPECT_EQ(windowOf(f), before);
  f.windowgx = "1e39";  // not a single at all
  EXPECT_FALSE(ZoomView(kZoomIn, f));
}

TEST(StepField, IncrementAndDecrementButtons) {
  struct Row {
    StepTarget target;
    StepDirection direction;
    std::string step;
    std::string lower, upper;  // expected; upper empty for single fields
  } rows[] = {
      {StepTarget::WindX, StepDirection::Inc, "1", "-3", "3"},
      {StepTarget::WindX, StepDirection::Dec, "1", "-2", "2"},
      {StepTarget::WindZ, StepDirection::Inc, "0.5", "-1.75", "1.75"},
      {StepTarget::RangXU, StepDirection::Inc, "1", "-1.5", "1.5"},
      {StepTarget::RangYV, StepDirection::Dec, "3", "0.5", "-0.5"},  // not checked
      {StepTarget::RotZ, StepDirection::Dec, "5", "-5", ""},
      {StepTarget::RotX, StepDirection::Inc, "7.5", "7.5", ""},
      {StepTarget::TranY, StepDirection::Inc, "abc", "0", ""},
  };
  for (const Row& r : rows) {
    StereoFields f;
    f.stepWindX = f.stepWindZ = f.stepRangXU = f.stepRangYV = f.stepRotZ = f.stepRotX = f.stepTranY = r.step;
    StepField(r.target, r.direction, f);
    switch (r.target) {
      case StepTarget::WindX: EXPECT_EQ(f.windowlx, r.lower); EXPECT_EQ(f.windowgx, r.upper); break;
      case StepTarget::WindZ: EXPECT_EQ(f.windowlz, r.lower); EXPECT_EQ(f.windowgz, r.upper); break;
      case StepTarget::RangXU: EXPECT_EQ(f.rangelxu, r.lower); EXPECT_EQ(f.rangegxu, r.upper); break;
      case StepTarget::RangYV: EXPECT_EQ(f.rangelyv, r.lower); EXPECT_EQ(f.rangegyv, r.upper); break;
      case StepTarget::RotZ: EXPECT_EQ(f.zrot, r.lower); break;
      case StepTarget::RotX: EXPECT_EQ(f.xrot, r.lower); break;
      case StepTarget::TranY: EXPECT_EQ(f.ytr, r.lower); break;
      default: FAIL();
    }
    // Nothing else moves.
    if (r.target != StepTarget::WindX) {
      EXPECT_EQ(f.windowlx, "-2.5");
    }
  }
}

}  // namespace
}  // namespace orvane
