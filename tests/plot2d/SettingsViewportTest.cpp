#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <string>

#include "platform/RuntimeError.h"
#include "plot2d/StudySettings.h"
#include "plot2d/Viewport.h"

namespace orvane {
namespace {

TEST(StudyFields, CorrectionsOnLeaving) {
  const char* subintervals[][3] = {  // typed, after Validate, after LostFocus
      {"100", "100", "128"}, {"1", "2", "2"}, {"256", "256", "256"}, {"2.5", "2", "2"}, {"3.5", "4", "4"}};
  for (const auto& c : subintervals) {
    const std::string validated = subintervalsOnValidate(c[0]);
    EXPECT_EQ(validated, c[1]) << c[0];
    EXPECT_EQ(subintervalsOnLostFocus(validated), c[2]) << c[0];
  }
  const char* maxcy[][3] = {  // maxcy, subintervals, shown: at least log2 of the panels
      {"3", "256", "7"}, {"7", "256", "7"}, {"10", "256", "10"}, {"9", "", "9"}};
  for (const auto& c : maxcy) EXPECT_EQ(maxcyOnValidate(c[0], c[1]).text, c[2]) << c[0] << " " << c[1];
  EXPECT_TRUE(errorBoundAccepted("1e-300"));
  EXPECT_FALSE(errorBoundAccepted("0"));
  const char* steps[][2] = {{"0", "1"}, {"100", "80"}, {"12.5", "12"}};
  for (const auto& c : steps) EXPECT_EQ(plotStepOnValidate(c[0]), c[1]) << c[0];
}

TEST(StudyFields, LimitPairSendsTheFocusAcross) {
  using LF = LimitField;
  const struct {
    LF leaving;
    const char* lower;
    const char* upper;
    std::optional<LF> focus;
  } cases[] = {
      {LF::Lower, "1", "2", std::nullopt}, {LF::Lower, "2", "2", LF::Upper},
      {LF::Upper, "3", "2", LF::Lower},    {LF::Upper, "-5", "", std::nullopt},
  };
  for (const auto& c : cases)
    EXPECT_EQ(limitPairFocus(c.leaving, c.lower, c.upper), c.focus) << c.lower << " " << c.upper;
}

TEST(StudySettingsReader, ReadsLeadingNumbers) {
  StudyFieldTexts t{"x^2", "-2", "2abc", "255.5", ".01", "7", "3rd.derivative"};
  const StudySettings s = readStudySettings(t);
  EXPECT_EQ(s.xupper, 2);
  EXPECT_EQ(s.n, 256);
  EXPECT_EQ(s.k, 3);
  t.derivative = "Function";
  EXPECT_EQ(readStudySettings(t).k, 0);  // a count beyond 32 bits: StudyCommands
  PlotSetupTexts p{"-1", "1", "-2", "2", "0.5", "x", "0.25", ".5", "12"};
  const PlotSetup setup = readPlotSetup(p);
  EXPECT_EQ(setup.xorigin, 0.5f);
  EXPECT_EQ(setup.yorigin, 0);
  p.windowgx = "1e39";  // beyond single precision
  EXPECT_THROW(readPlotSetup(p), RuntimeError);
}

using Texts = std::array<std::string, 4>;

TEST(Zoom, EveryCodeFromTheSameWindow) {
  const std::pair<int, Texts> cases[] = {  // from [-10, 10] x [-5, 5]
      {0, {"-20", "20", "-10", "10"}},   {1, {"0", "10", "0", "5"}},  // 2 and 4 mix 1's and 3's halves
      {3, {"-10", "0", "-5", "0"}},      {5, {"-5", "5", "-2.5", "2.5"}},
      {6, {"-5", "15", "-5", "5"}},      {7, {"-10", "10", "-2.5", "7.5"}},
      {8, {"-15", "5", "-5", "5"}},      {9, {"-10", "10", "-7.5", "2.5"}},
      {10, {"-15", "15", "-5", "5"}},    {11, {"-6.666667", "6.666667", "-5", "5"}},
      {12, {"-10", "10", "-7.5", "7.5"}}, {13, {"-10", "10", "-3.333333", "3.333333"}},
      {14, {"-10", "10", "-5", "5"}},
  };
  for (const auto& [code, expected] : cases)
    EXPECT_EQ(zoomTexts(code, "-10", "10", "-5", "5"), expected) << "code " << code;
}

TEST(Zoom, WorksInSinglePrecision) {
  Texts t = zoomTexts(5, "0.1", "0.7", "0", "1");
  EXPECT_EQ(t, (Texts{"0.25", "0.55", "0.25", "0.75"}));
  EXPECT_EQ(zoomTexts(0, t[0], t[1], t[2], t[3]), (Texts{"0.09999999", "0.7", "0", "1"}));
}

// The wheel's and the drag's ordinary steps, from the pointer's pixel: PlotWindowTest.
TEST(MouseMoves, TheWheelStopsAtTheSingleRangeAndTheDivisionsFit) {
  const PlotSetup from{-10, 10, -5, 5, 0, 0, 1, 1, 5};
  // The wheel stops where single precision can no longer draw the window, or at 1E+30;
  // of many steps, those that fit are taken.
  const std::optional<PlotSetup> deep = wheelZoom({990, 1010, -5, 5, 0, 0, 1, 1, 5}, 0.5f, 0.5f, 60);
  ASSERT_TRUE(deep.has_value());
  EXPECT_GE(deep->windowgx - deep->windowlx, 1e-4f * 1000);  // 20 halved 7 times about 1000
  EXPECT_LT(deep->windowgx - deep->windowlx, 2e-4f * 1000);
  EXPECT_LE(wheelZoom(from, 0.5f, 0.5f, -200)->windowgx, 1e30f);
  EXPECT_FALSE(wheelZoom({1e-30f, 1.5e-30f, -5, 5, 0, 0, 1, 1, 5}, 0, 0.5f, 1).has_value());
  EXPECT_FALSE(dragPan({-10, -10, -5, 5, 0, 0, 1, 1, 5}, 0.1f, 0).has_value());  // no extent
  // Divisions: kept from 4 to 12 across, else 1, 2 or 5 times a power of ten, 4 to 10 across.
  const float divisions[][3] = {{1, 4, 1}, {1, 12, 1}, {1, 13, 2}, {1, 3.9f, 0.5f}, {0, 10, 1}, {-1, 10, 1}};
  for (const auto& d : divisions) EXPECT_FLOAT_EQ(fittingDivision(d[0], d[1]), d[2]) << d[0] << " on " << d[1];
}

}  // namespace
}  // namespace orvane
