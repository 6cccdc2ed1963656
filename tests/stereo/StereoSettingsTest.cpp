#include <gtest/gtest.h>

#include "stereo/FieldRules.h"
#include "stereo/StereoSettings.h"
#include "stereo/StereoTestDoubles.h"

namespace orvane {
namespace {

using testing::TableReader;

TEST(ReadPlotSettings, DefaultFieldsGiveTheDefaultSettingsAndDerivedValues) {
  TableReader reader;
  const SettingsRead read = ReadPlotSettings(StereoFields{}, reader, StereoSettings{});
  EXPECT_EQ(read.error, 0);
  const StereoSettings& s = read.settings;
  EXPECT_EQ(s.drxu, 0.5f);
  EXPECT_EQ(s.dryv, 0.5f);
  EXPECT_EQ(s.stepxu, 0.5f);
  EXPECT_EQ(s.delwindx, 5.0f);
  EXPECT_EQ(s.delwindy, 4.0f);
  EXPECT_EQ(s.delwindz, 3.0f);
  EXPECT_EQ(s.windcex, 0.0f);
  EXPECT_FLOAT_EQ(s.depthSlopeY, 0.8f);
  EXPECT_FLOAT_EQ(s.depthSlopeZ, 0.6f);
  EXPECT_EQ(s.ndots, 5000);
  EXPECT_EQ(s.grid, 5);
  EXPECT_EQ(s.selector, kSurfaceItself);
}

TEST(ReadPlotSettings, ExpressionFieldsAreEvaluatedIntoSinglePrecision) {
  TableReader reader;
  StereoFields f;
  f.rangegxu = "pi/2";
  f.xrot = "pi";
  f.segsxu = "3";
  const StereoSettings s = ReadPlotSettings(f, reader).settings;
  EXPECT_EQ(s.rangegxu, static_cast<float>(1.5707963267948966));
  EXPECT_EQ(s.xrot, static_cast<float>(3.141592653589793));
  // drxu in single precision from the single limits, then stepxu from drxu.
  const float drxu = (static_cast<float>(1.5707963267948966) - -1.0f) / 4.0f;
  EXPECT_EQ(s.drxu, drxu);
  EXPECT_EQ(s.stepxu, drxu / 3.0f);
}

TEST(ReadPlotSettings, CountFieldsTakeTheLeadingNumberRoundedHalfToEven) {
  struct Row {
    const char* text;
    int32_t expected;
  } rows[] = {{"2.5", 2}, {"3.5", 4}, {"abc", 0}, {"7xyz", 7}, {" 12", 12}, {"-1.5", -2}, {"", 0}};
  TableReader reader;
  for (const Row& r : rows) {
    StereoFields f;
    f.spacexu = r.text;
    f.ndots = r.text;
    f.grid = r.text;
    f.segsyv = r.text;
    const StereoSettings s = ReadPlotSettings(f, reader).settings;
    EXPECT_EQ(s.spacexu, r.expected) << r.text;
    EXPECT_EQ(s.ndots, r.expected) << r.text;
    EXPECT_EQ(s.grid, r.expected) << r.text;
    EXPECT_EQ(s.segsyv, r.expected) << r.text;
  }
}

TEST(ReadPlotSettings, AFailingFieldKeepsItsPreviousValueAndTheRestIsRead) {
  TableReader reader;
  StereoFields f;
  f.windowly = "fail:13";
  f.windowgz = "fail:11";
  f.zrot = "30";
  StereoSettings previous;
  previous.windowly = -7;
  const SettingsRead read = ReadPlotSettings(f, reader, previous);
  EXPECT_EQ(read.error, 13);  // the first one met
  EXPECT_EQ(read.errorField, "windowly");
  EXPECT_EQ(read.settings.windowly, -7.0f);
  EXPECT_EQ(read.settings.zrot, 30.0f);
  EXPECT_EQ(read.settings.delwindy, 9.0f);  // 2 - (-7)
}

TEST(ReadPlotSettings, ZeroCountsAndOverflowsAreErrorsNotInfinities) {
  TableReader reader;
  {
    StereoFields f;
    f.spacexu = "0";
    const SettingsRead read = ReadPlotSettings(f, reader);
    EXPECT_EQ(read.error, 11);
    EXPECT_EQ(read.errorField, "drxu");
    EXPECT_EQ(read.settings.drxu, 0.5f);  // kept
  }
  {
    StereoFields f;
    f.rangelxu = "1";
    f.spacexu = "0";  // 0 / 0
    EXPECT_EQ(ReadPlotSettings(f, reader).error, 6);
  }
  {
    StereoFields f;
    f.windowgx = "1e300";  // beyond single precision
    const SettingsRead read = ReadPlotSettings(f, reader);
    EXPECT_EQ(read.error, 6);
    EXPECT_EQ(read.settings.windowgx, 2.5f);
  }
  {
    StereoFields f;
    f.xder = "3";  // outside the selector table
    EXPECT_EQ(ReadPlotSettings(f, reader).error, 9);
  }
}

TEST(DerivativeSelector, OrdersMapToTheFiveSurfacesAndBack) {
  struct Row {
    int32_t xder, yder;
    int selector;
  } rows[] = {{0, 0, 0}, {1, 0, 1}, {0, 1, 2}, {2, 0, 3}, {0, 2, 4}, {1, 1, 5}, {2, 1, 0}, {1, 2, 0}, {2, 2, 0}};
  for (const Row& r : rows) {
    EXPECT_EQ(DerivativeSelectorFor(r.xder, r.yder), r.selector) << r.xder << "," << r.yder;
    if (r.selector != 0 || (r.xder == 0 && r.yder == 0)) {
      const auto orders = DerivativeOrdersOf(r.selector);
      EXPECT_EQ(orders[0], r.xder);
      EXPECT_EQ(orders[1], r.yder);
    }
  }
  EXPECT_EQ(kDerivativeNames[kZxy], "Zxy");
  EXPECT_THROW(DerivativeOrdersOf(6), RuntimeError);
}

TEST(FieldRules, CountsGridAndOrders) {
  struct Row {
    const char* text;
    bool count, grid, order;
  } rows[] = {
      {"3", true, true, false}, {"1", true, true, true},   {"0", false, true, true},  {"2", true, true, true},
      {"2.5", false, false, false}, {"-1", false, false, false}, {"abc", false, true, true},
  };
  for (const Row& r : rows) {
    EXPECT_EQ(CountFieldValid(r.text), r.count) << r.text;
    EXPECT_EQ(GridFieldValid(r.text), r.grid) << r.text;
    EXPECT_EQ(DerivativeOrderValid(r.text), r.order) << r.text;
  }
  EXPECT_TRUE(DerivativeOrderSumValid("1", "1"));
  EXPECT_FALSE(DerivativeOrderSumValid("2", "1"));
}

TEST(FieldRules, RangeAcceptsEqualLimitsButWindowDoesNot) {
  TableReader reader;
  struct Row {
    const char* lower;
    const char* upper;
    bool range, window;
  } rows[] = {{"-1", "1", true, true},   {"1", "1", true, false},      {"2", "1", false, false},
              {"0", "pi/2", true, true}, {"fail:11", "1", false, false}};
  for (const Row& r : rows) {
    EXPECT_EQ(RangeLimitsValid(reader, r.lower, r.upper), r.range) << r.lower << " " << r.upper;
    EXPECT_EQ(WindowLimitsValid(reader, r.lower, r.upper), r.window) << r.lower << " " << r.upper;
  }
  EXPECT_TRUE(ReduceFieldValid(reader, "1"));
  EXPECT_TRUE(ReduceFieldValid(reader, "0.25"));
  EXPECT_FALSE(ReduceFieldValid(reader, "0"));
  EXPECT_FALSE(ReduceFieldValid(reader, "1.5"));
}

}  // namespace
}  // namespace orvane
