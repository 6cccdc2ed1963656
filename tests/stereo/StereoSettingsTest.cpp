#include <gtest/gtest.h>

#include "stereo/FieldRules.h"
#include "stereo/StereoSettings.h"
#include "stereo/StereoTestDoubles.h"

namespace orvane {
namespace {

using testing::TableReader;

TEST(ReadPlotSettings, DefaultsDerivedValuesAndExpressions) {
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
}

// The reading itself: NumberTextTest; here, that every count field goes through it.
TEST(ReadPlotSettings, CountFieldsTakeTheLeadingNumberRoundedHalfToEven) {
  StereoFields f;
  f.spacexu = f.ndots = f.grid = f.segsyv = "3.5 units";
  TableReader reader;
  const StereoSettings s = ReadPlotSettings(f, reader).settings;
  EXPECT_TRUE(s.spacexu == 4 && s.ndots == 4 && s.grid == 4 && s.segsyv == 4);
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

// Which selector is which: StereoExportTest and StereoReportTest, through the file and
// the printed name.
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

}  // namespace
}  // namespace orvane
