#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/RecordingCanvas.h"
#include "platform/RecordingPrinterPage.h"
#include "stereo/StereoReport.h"

namespace orvane {
namespace {

TEST(StereoReport, DefaultSettingsPrintTheseExactLines) {
  const std::vector<std::string> expected = {
      "FUNCTION:",
      "Z=(x-1)*x*(x+1)*(y-1)*y*(y+1)*5",
      "",
      "PLOT SETUP:",
      "                         AXES: [ 0 , 0 , 0 ]",
      "                    DIVISIONS: [ 1 , 1 , 1 ]",
      "                      X-RANGE: [-1 , 1 ]",
      "                      Y-RANGE: [-1 , 1 ]",
      "                     X-WINDOW: [-2.5 , 2.5 ]",
      "                     Y-WINDOW: [-2 , 2 ]",
      "                     Z-WINDOW: [-1.5 , 1.5 ]",
      "           NUMBER OF SPACINGS: [ 4 , 4 ]",
      "                     SPACINGS: [ 0.5 , 0.5 ]",
      "PLOTTING SEGMENTS PER SPACING: [ 1 , 1 ]",
      "          PLOTTING INCREMENTS: [ 0.5 , 0.5 ]",
      "                  TRANSLATION: [ 0 , 0 , 0 ]",
      "                     ROTATION: [ 0 , 0 , 0 ]",
      "               NUMBER OF DOTS:  5000 ",
      "          STEREOSCOPIC FACTOR: 1 ",
      "             REDUCTION FACTOR: 1 ",
  };
  RecordingPrinterPage page;
  PrintStereoReport(page, StereoFields{}, StereoSettings{}, {}, nullptr);
  EXPECT_EQ(page.texts(), expected);
  for (const std::string& line : page.texts()) {
    if (line.find(':') != std::string::npos && line.size() > 12) {
      EXPECT_EQ(line.find(':'), 29u) << line;
    }
  }
  EXPECT_EQ(page.lines().front().y, 4500);
  EXPECT_EQ(page.endDocCount(), 1);
  EXPECT_EQ(page.lines().front().fontName, "Courier New");
  EXPECT_EQ(page.FontName(), "Arial");  // set back at the end
}

TEST(StereoReport, ParametricDerivativeAndConstantsVariants) {
  StereoFields f;
  StereoSettings s;
  s.stepxu = 1.0f / 3;
  s.xrot = -30;
  f.xder = "1";
  f.yder = "1";
  const std::vector<std::string> constants = {"a=2.37", "b=1"};
  std::vector<std::string> lines = StereoReportLines(f, s, constants);
  const std::vector<std::string> head = {"FUNCTION:",
                                         "Z=(x-1)*x*(x+1)*(y-1)*y*(y+1)*5",
                                         "",
                                         "   CURRENT PARTIAL DERIVATIVE: [Zxy]",
                                         "",
                                         "CONSTANTS:",
                                         "a=2.37",
                                         "b=1",
                                         "",
                                         "PLOT SETUP:"};
  EXPECT_EQ(std::vector<std::string>(lines.begin(), lines.begin() + 10), head);
  EXPECT_EQ(lines[20], "          PLOTTING INCREMENTS: [ 0.3333333 , 0.5 ]");
  EXPECT_EQ(lines[22], "                     ROTATION: [-30 , 0 , 0 ]");

  f.parametric = true;
  lines = StereoReportLines(f, s, {});
  EXPECT_EQ(std::vector<std::string>(lines.begin(), lines.begin() + 5),
            (std::vector<std::string>{"PARAMETRIC EQUATIONS:", "X=v", "Y=u", "Z=(x-1)*x*(x+1)*(y-1)*y*(y+1)*5", ""}));
  bool uRange = false;
  for (const std::string& l : lines) {
    EXPECT_EQ(l.find("X-RANGE"), std::string::npos);
    EXPECT_EQ(l.find("PARTIAL"), std::string::npos);
    uRange = uRange || l == "                      U-RANGE: [-1 , 1 ]";
  }
  EXPECT_TRUE(uRange);
}

}  // namespace
}  // namespace orvane

namespace orvane {
namespace {

TEST(StereoReport, PicturesSideBySideRightOneAt5985Twips) {
  for (bool persist : {true, false}) {
    RecordingCanvas left(200, 200), right(200, 180);  // reduced pictures
    left.SetAutoRedraw(persist);
    right.SetAutoRedraw(persist);
    int replots = 0;
    ReportPictures pictures{left, right, true, persist, [&] {
                              ++replots;
                              EXPECT_TRUE(left.AutoRedraw() && right.AutoRedraw()) << "redrawn into images";
                            }};
    RecordingPrinterPage page;
    PrintStereoReport(page, StereoFields{}, StereoSettings{}, {}, &pictures);
    const auto& painted = page.pictures();
    ASSERT_EQ(painted.size(), 2u);
    EXPECT_EQ(painted[1].left, 5985);
    EXPECT_EQ(painted[1].width, 2200);
    EXPECT_EQ(painted[1].height, 1980);
    // The left one ends just before the right one, as on screen.
    EXPECT_EQ(painted[0].left + painted[0].width, 5985 - 120);
    EXPECT_EQ(painted[0].top, painted[1].top);
    EXPECT_EQ(replots, persist ? 0 : 1);
    EXPECT_EQ(left.AutoRedraw(), persist);  // switched back after painting
    EXPECT_EQ(right.AutoRedraw(), persist);
    EXPECT_EQ(page.lines().front().y, 4500);
  }
  // Nothing drawn yet: no pictures, the text still starts below their place.
  RecordingCanvas left, right;
  ReportPictures none{left, right, false, true, nullptr};
  RecordingPrinterPage page;
  PrintStereoReport(page, StereoFields{}, StereoSettings{}, {}, &none);
  EXPECT_TRUE(page.pictures().empty());
  EXPECT_EQ(page.lines().front().y, 4500);
}

}  // namespace
}  // namespace orvane
