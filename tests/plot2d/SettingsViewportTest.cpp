#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <string>

#include "platform/RuntimeError.h"
#include "plot2d/StudySettings.h"
#include "plot2d/Viewport.h"

namespace orvane {
namespace {

TEST(StudyFields, SubintervalsBecomeAPowerOfTwo) {
  struct Case {
    const char* typed;
    const char* validated;
    const char* left;
  };
  const Case cases[] = {
      {"100", "100", "128"}, {"1", "2", "2"},     {"256", "256", "256"}, {"257", "257", "512"},
      {"2.5", "2", "2"},     {"3.5", "4", "4"},   {"abc", "2", "2"},     {"-8", "2", "2"},
      {"1024", "1024", "1024"},
  };
  for (const Case& c : cases) {
    const std::string validated = subintervalsOnValidate(c.typed);
    EXPECT_EQ(validated, c.validated) << c.typed;
    EXPECT_EQ(subintervalsOnLostFocus(validated), c.left) << c.typed;
  }
}

TEST(StudyFields, IterationLimitCoversTheHalvings) {
  struct Case {
    const char* maxcy;
    const char* subintervals;
    const char* expected;
  };
  const Case cases[] = {
      {"3", "256", "7"}, {"7", "256", "7"}, {"10", "256", "10"}, {"0", "2", "0"},
      {"-5", "2", "0"},  {"", "4", "1"},    {"9", "", "9"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(maxcyOnValidate(c.maxcy, c.subintervals).text, c.expected)
        << c.maxcy << " with " << c.subintervals;
  }
  EXPECT_DOUBLE_EQ(maxcyOnValidate("3", "256").log2Subintervals, 8);
}

TEST(StudyFields, ErrorBoundMustBePositive) {
  EXPECT_TRUE(errorBoundAccepted(".01"));
  EXPECT_TRUE(errorBoundAccepted("1e-300"));
  EXPECT_FALSE(errorBoundAccepted("0"));
  EXPECT_FALSE(errorBoundAccepted("-1"));
  EXPECT_FALSE(errorBoundAccepted(""));
}

TEST(StudyFields, PlotStepKeptBetween1And80) {
  EXPECT_EQ(plotStepOnValidate("0"), "1");
  EXPECT_EQ(plotStepOnValidate("100"), "80");
  EXPECT_EQ(plotStepOnValidate("12.5"), "12");
  EXPECT_EQ(plotStepOnValidate("40"), "40");
}

TEST(StudyFields, LimitPairSendsTheFocusAcross) {
  using LF = LimitField;
  struct Case {
    LF leaving;
    const char* lower;
    const char* upper;
    std::optional<LF> focus;
  };
  const Case cases[] = {
      {LF::Lower, "1", "2", std::nullopt}, {LF::Upper, "1", "2", std::nullopt},
      {LF::Lower, "2", "2", LF::Upper},     {LF::Upper, "3", "2", LF::Lower},
      {LF::Lower, "5", "", LF::Upper},      {LF::Upper, "-5", "", std::nullopt},
  };
  for (const Case& c : cases)
    EXPECT_EQ(limitPairFocus(c.leaving, c.lower, c.upper), c.focus) << c.lower << " " << c.upper;
}

TEST(StudySettingsReader, ReadsLeadingNumbers) {
  StudyFieldTexts t{"x^2", "-2", "2abc", "255.5", ".01", "7", "3rd.derivative"};
  const StudySettings s = readStudySettings(t);
  EXPECT_EQ(s.equation, "x^2");
  EXPECT_EQ(s.xlower, -2);
  EXPECT_EQ(s.xupper, 2);
  EXPECT_EQ(s.n, 256);
  EXPECT_EQ(s.err, 0.01);
  EXPECT_EQ(s.maxcy, 7);
  EXPECT_EQ(s.k, 3);
  t.derivative = "Function";
  EXPECT_EQ(readStudySettings(t).k, 0);
  t.subintervals = "1e10";
  try {
    readStudySettings(t);
    ADD_FAILURE() << "no overflow";
  } catch (const RuntimeError& e) {
    EXPECT_EQ(e.number(), err::Overflow);
  }
}

using Texts = std::array<std::string, 4>;

TEST(Zoom, EveryCodeFromTheSameWindow) {
  struct Case {
    int code;
    Texts expected;
  };
  // From [-10, 10] x [-5, 5]: centre (0, 0), half extents 10 and 5.
  const Case cases[] = {
      {0, {"-20", "20", "-10", "10"}},
      {1, {"0", "10", "0", "5"}},
      {2, {"-10", "0", "0", "5"}},
      {3, {"-10", "0", "-5", "0"}},
      {4, {"0", "10", "-5", "0"}},
      {5, {"-5", "5", "-2.5", "2.5"}},
      {6, {"-5", "15", "-5", "5"}},
      {7, {"-10", "10", "-2.5", "7.5"}},
      {8, {"-15", "5", "-5", "5"}},
      {9, {"-10", "10", "-7.5", "2.5"}},
      {10, {"-15", "15", "-5", "5"}},
      {11, {"-6.666667", "6.666667", "-5", "5"}},
      {12, {"-10", "10", "-7.5", "7.5"}},
      {13, {"-10", "10", "-3.333333", "3.333333"}},
      {14, {"-10", "10", "-5", "5"}},
      {-1, {"-10", "10", "-5", "5"}},
  };
  for (const Case& c : cases)
    EXPECT_EQ(zoomTexts(c.code, "-10", "10", "-5", "5"), c.expected) << "code " << c.code;
}

TEST(Zoom, WorksInSinglePrecision) {
  // Zoom in then out comes back only up to single rounding; the texts show singles.
  Texts t = zoomTexts(5, "0.1", "0.7", "0", "1");
  EXPECT_EQ(t, (Texts{"0.25", "0.55", "0.25", "0.75"}));
  t = zoomTexts(0, t[0], t[1], t[2], t[3]);
  EXPECT_EQ(t, (Texts{"0.09999999", "0.7", "0", "1"}));
  EXPECT_EQ(zoomTexts(5, "1", "2", "0", "1")[0], "1.25");
  EXPECT_THROW(zoomTexts(0, "3e38", "3.4e38", "0", "1"), RuntimeError);
}

TEST(ClickToCentre, MovesTheLastPlottedWindow) {
  PlotSetup plotted;
  plotted.windowlx = -10;
  plotted.windowgx = 10;
  plotted.windowly = -5;
  plotted.windowgy = 5;
  EXPECT_EQ(centreTexts(plotted, 0, 0), (Texts{"-10", "10", "-5", "5"}));
  EXPECT_EQ(centreTexts(plotted, 2.5f, 1), (Texts{"-7.5", "12.5", "-4", "6"}));
  EXPECT_EQ(positionTooltip(1.25f, -0.3f), "(1.25, -0.3): Click to center graph here");
}

TEST(PlotSetupReader, SinglesFromTexts) {
  PlotSetupTexts t{"-1", "1", "-2", "2", "0.5", "x", "0.25", ".5", "12"};
  const PlotSetup s = readPlotSetup(t);
  EXPECT_EQ(s.windowlx, -1);
  EXPECT_EQ(s.windowgy, 2);
  EXPECT_EQ(s.xorigin, 0.5f);
  EXPECT_EQ(s.yorigin, 0);
  EXPECT_EQ(s.divy, 0.5f);
  EXPECT_EQ(s.plotStep, 12);
  t.windowgx = "1e39";
  EXPECT_THROW(readPlotSetup(t), RuntimeError);
}

}  // namespace
}  // namespace orvane
