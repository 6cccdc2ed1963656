#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/RecordingCanvas.h"
#include "platform/RecordingPrinterPage.h"
#include "stereo/StereoReport.h"

namespace orvane {
namespace {

using Lines = std::vector<std::string>;

// Values in the print form (a blank before all but negatives, one after), whole numbers
// without it; the derivative's name and the constants before the setup.
TEST(StereoReport, ExplicitSurfaceWithDerivativeAndConstants) {
  StereoFields f;
  StereoSettings s;
  s.stepxu = 1.0f / 3;
  s.xrot = -30;
  f.xder = f.yder = "1";
  const Lines expected = {
      "FUNCTION:",
      "Z=(x-1)*x*(x+1)*(y-1)*y*(y+1)*5",
      "",
      "   CURRENT PARTIAL DERIVATIVE: [Zxy]",
      "",
      "CONSTANTS:",
      "a=2.37",
      "b=1",
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
      "          PLOTTING INCREMENTS: [ 0.3333333 , 0.5 ]",
      "                  TRANSLATION: [ 0 , 0 , 0 ]",
      "                     ROTATION: [-30 , 0 , 0 ]",
      "               NUMBER OF DOTS:  5000 ",
      "          STEREOSCOPIC FACTOR: 1 ",
      "             REDUCTION FACTOR: 1 ",
  };
  RecordingPrinterPage page;
  PrintStereoReport(page, f, s, Lines{"a=2.37", "b=1"}, nullptr);
  EXPECT_EQ(page.texts(), expected);
  EXPECT_EQ(page.lines().front().y, 4500);  // below the pictures' place, drawn or not
  EXPECT_EQ(page.lines().front().fontName, "Courier New");
  EXPECT_EQ(page.endDocCount(), 1);
  EXPECT_EQ(page.FontName(), "Arial");  // set back at the end
  // Parametric: three equations, U/V ranges, no derivative line.
  f.parametric = true;
  const Lines lines = StereoReportLines(f, s, {});
  EXPECT_EQ(Lines(lines.begin(), lines.begin() + 5),
            (Lines{"PARAMETRIC EQUATIONS:", "X=v", "Y=u", "Z=(x-1)*x*(x+1)*(y-1)*y*(y+1)*5", ""}));
  EXPECT_EQ(Lines(lines.begin() + 8, lines.begin() + 10),
            (Lines{"                      U-RANGE: [-1 , 1 ]", "                      V-RANGE: [-1 , 1 ]"}));
  EXPECT_EQ(lines.size(), expected.size() - 4);
}

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
    EXPECT_EQ(std::vector<double>({painted[1].left, painted[1].width, painted[1].height}),
              std::vector<double>({5985, 2200, 1980}));
    EXPECT_EQ(painted[0].left + painted[0].width, 5985 - 120);  // the left one just before, as on screen
    EXPECT_EQ(painted[0].top, painted[1].top);
    EXPECT_EQ(replots, persist ? 0 : 1);
    EXPECT_TRUE(left.AutoRedraw() == persist && right.AutoRedraw() == persist);  // switched back
  }
  RecordingCanvas left, right;  // nothing drawn yet: no pictures
  ReportPictures none{left, right, false, true, nullptr};
  RecordingPrinterPage page;
  PrintStereoReport(page, StereoFields{}, StereoSettings{}, {}, &none);
  EXPECT_TRUE(page.pictures().empty());
  EXPECT_EQ(page.lines().front().y, 4500);
}

}  // namespace
}  // namespace orvane
