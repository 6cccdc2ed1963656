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
  const std::pair<int, Window> rows[] = {
      {kZoomOut, {"-5", "5", "-4", "4", "-3", "3"}},
      {kZoomIn, {"-1.25", "1.25", "-1", "1", "-0.75", "0.75"}},
      {1, {"0", "2.5", "0", "2", "0", "1.5"}},
      {2, {"-2.5", "0", "0", "2", "0", "1.5"}},
      {3, {"-2.5", "0", "-2", "0", "0", "1.5"}},
      {4, {"0", "2.5", "-2", "0", "0", "1.5"}},
      {5, {"0", "2.5", "0", "2", "-1.5", "0"}},
      {6, {"-2.5", "0", "0", "2", "-1.5", "0"}},
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
  for (const auto& [code, expected] : rows) {
    StereoFields f;
    EXPECT_TRUE(ZoomView(code, f));
    EXPECT_EQ(windowOf(f), expected) << "code " << code;
  }
}

TEST(ZoomView, ReadsPlainNumbersWritesSinglesAndRefusesOverflow) {
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
      {StepTarget::WindZ, StepDirection::Inc, "0.5", &SF::windowlz, &SF::windowgz, "-1.75",
       "1.75"},
      {StepTarget::RangXU, StepDirection::Inc, "1", &SF::rangelxu, &SF::rangegxu, "-1.5", "1.5"},
      {StepTarget::RangYV, StepDirection::Dec, "3", &SF::rangelyv, &SF::rangegyv, "0.5",
       "-0.5"},  // not checked
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
    if (r.upperField) {
      EXPECT_EQ(f.*r.upperField, r.upper) << r.step;
    }
    if (r.target != StepTarget::WindX) {
      EXPECT_EQ(f.windowlx, "-2.5");  // nothing else moves
    }
  }
}

}  // namespace
}  // namespace orvane
