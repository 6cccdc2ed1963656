// The drawing surface and the printed page, through the recorders the routines' tests use.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "platform/RecordingCanvas.h"
#include "platform/RecordingPrinterPage.h"
#include "platform/RuntimeError.h"

namespace orvane {
namespace {

// 200 x 100 pixels at 96 dpi: 3000 x 1500 twips; characters 8 x 16 pixels.
RecordingCanvas makeCanvas() { return RecordingCanvas(200, 100, 96, 8, 16); }

TEST(Canvas, ScalesConvertBetweenUnits) {
  RecordingCanvas canvas = makeCanvas();
  EXPECT_EQ(std::pair(canvas.ScaleWidth(), canvas.ScaleHeight()), std::pair(3000.0f, 1500.0f));  // twips by default
  EXPECT_DOUBLE_EQ(canvas.toPixelY(15), 1);

  canvas.Scale(-10, 10, 10, -10);  // y grows upward
  EXPECT_FLOAT_EQ(canvas.ScaleHeight(), -20);
  const struct { float x, y; double px, py; } points[] = {{-10, 10, 0, 0}, {10, -10, 200, 100}, {0, 0, 100, 50}};
  for (const auto& [x, y, px, py] : points)
    EXPECT_EQ(std::pair(canvas.toPixelX(x), canvas.toPixelY(y)), std::pair(px, py)) << x << "," << y;
  // The clipboard copy's way of finding the client area works under any scale.
  EXPECT_FLOAT_EQ(canvas.ScaleX(canvas.ScaleWidth(), ScaleUnit::User, ScaleUnit::Pixels), 200);
  EXPECT_FLOAT_EQ(canvas.ScaleY(canvas.ScaleHeight(), ScaleUnit::User, ScaleUnit::Pixels), 100);
  EXPECT_FLOAT_EQ(canvas.ScaleY(1500, ScaleUnit::Twips, ScaleUnit::User), -20);
  canvas.ScaleTwips();
  EXPECT_EQ(std::pair(canvas.ScaleLeft(), canvas.ScaleWidth()), std::pair(0.0f, 3000.0f));

  RecordingCanvas empty(0, 0);  // an empty surface converts to zero, not infinity
  EXPECT_EQ(std::pair(empty.toPixelX(100), empty.ScaleX(5, ScaleUnit::Pixels, ScaleUnit::User)), std::pair(0.0, 0.0f));
  empty.Print("x");
  EXPECT_TRUE(std::isfinite(empty.CurrentY()));
}

TEST(Canvas, DegenerateScaleIsAnErrorAndKeepsTheOldOne) {
  RecordingCanvas canvas = makeCanvas();
  canvas.Scale(0, 0, 4, 2);
  const float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
  const struct { float x1, y1, x2, y2; int32_t error; } cases[] = {
      {1, 0, 1, 5, err::InvalidCall}, {0, 3, 5, 3, err::InvalidCall}, {nan, 0, 1, 1, err::Overflow},
      {0, 0, inf, 1, err::Overflow},  {-3e38f, 0, 3e38f, 1, err::Overflow}};
  for (const auto& c : cases) {
    try {
      canvas.Scale(c.x1, c.y1, c.x2, c.y2);
      ADD_FAILURE() << "no error for " << c.x1 << "," << c.y1 << "-" << c.x2 << "," << c.y2;
    } catch (const RuntimeError& e) {
      EXPECT_EQ(e.number(), c.error);
    }
  }
  EXPECT_EQ(std::pair(canvas.ScaleWidth(), canvas.ScaleHeight()), std::pair(4.0f, 2.0f));
}

TEST(Canvas, SceneRecordsPrimitivesAndMovesTheCurrentPoint) {
  RecordingCanvas canvas = makeCanvas();
  canvas.Scale(-10, 10, 10, -10);
  canvas.SetForeColor(colors::Blue);
  canvas.Line(-10, 0, 10, 0, colors::Red);
  canvas.LineTo(0, 5);    // from the end of the last line, in ForeColor
  canvas.LineStep(1, 1);  // relative end point
  canvas.PSet(2, 3);
  canvas.SetFillStyle(FillStyle::Solid);
  canvas.SetFillColor(colors::Magenta);
  canvas.Circle(-4, -4, -0.5f, colors::Magenta);  // a negative radius draws its size
  EXPECT_EQ(std::pair(canvas.CurrentX(), canvas.CurrentY()), std::pair(-4.0f, -4.0f));
  canvas.SetFillStyle(FillStyle::Transparent);
  canvas.SetDrawStyle(DrawStyle::Dot);
  canvas.Line(-1, -1, 1, 1, colors::Green, LineKind::Box);
  canvas.SetDrawStyle(DrawStyle::Solid);
  canvas.Line(2, 2, 3, 3, colors::Yellow, LineKind::FilledBox);
  canvas.SetBackColor(colors::Yellow);
  EXPECT_FLOAT_EQ(canvas.CurrentX(), 3);  // the box's corner: a new background keeps the point, Cls resets it
  canvas.Cls();
  EXPECT_EQ(std::pair(canvas.CurrentX(), canvas.CurrentY()), std::pair(0.0f, 0.0f));
  EXPECT_TRUE(canvas.SavePicture("out.bmp"));
  EXPECT_EQ(canvas.describeAll(),
            (std::vector<std::string>{"line (-10,0)-(10,0) #0000FF", "line (10,0)-(0,5) #FF0000",
                                      "line (0,5)-(1,6) #FF0000", "pset (2,3) #FF0000",
                                      "circle (-4,-4) r=0.5 #FF00FF fill #FF00FF", "box (-1,-1)-(1,1) #00FF00 dot",
                                      "fbox (2,2)-(3,3) #00FFFF", "cls #00FFFF", "cls #00FFFF", "save \"out.bmp\""}));
}

TEST(Canvas, PrintMovesDownTheScreenWhicheverWayYGrows) {
  RecordingCanvas canvas = makeCanvas();
  canvas.Scale(-10, 10, 10, -10);  // 0.1 unit a pixel across, 0.2 down
  canvas.SetCurrentX(0);
  canvas.SetCurrentY(0);
  canvas.Print("ab");  // back to the left edge, a line down
  EXPECT_EQ(std::pair(canvas.CurrentX(), canvas.CurrentY()), std::pair(-10.0f, -3.2f));
  canvas.Print("c", false);
  EXPECT_EQ(std::pair(canvas.CurrentX(), canvas.CurrentY()), std::pair(-9.2f, -3.2f));
  canvas.Print("");  // an empty line is still a line
  EXPECT_FLOAT_EQ(canvas.CurrentY(), -6.4f);

  canvas.SetPixelFont("verdana", -7, -5);
  EXPECT_EQ(canvas.FontPixelHeight(), 7);
  EXPECT_EQ(std::pair(canvas.TextWidth("abcd"), canvas.TextHeight("1")), std::pair(2.0f, -1.4f));
  canvas.SetFont("Arial", 10);
  EXPECT_EQ(canvas.FontPixelHeight(), 0);
  ASSERT_EQ(canvas.count(CanvasCall::Kind::Text), 2u);
  EXPECT_EQ(canvas.describe(0), "text (0,0) \"ab\" #000000");
  EXPECT_EQ(canvas[1].text, "c");
}

TEST(RecordingPrinterPage, TabColumnsLineUpAsInAFixedPitchFont) {
  RecordingPrinterPage page;
  page.Write("DATA:");
  page.Tab(34);
  page.Write("ESTIMATE:");
  page.Tab(57);
  page.Write("RESIDUAL:");
  page.NewLine();
  page.Write(std::string(40, 'x'));
  page.Tab(34);  // behind the position: the next line
  page.Write("v");
  page.Tab(3);  // column 3 is behind column 35 as well
  page.Write("w");
  page.Write("");
  page.Tab(4);  // already at column 4 after "  w": stays on the line
  page.Write("z");
  page.NewLine();
  const std::string header = "DATA:" + std::string(28, ' ') + "ESTIMATE:" + std::string(14, ' ');
  EXPECT_EQ(page.texts(), (std::vector<std::string>{header + "RESIDUAL:", std::string(40, 'x'),
                                                    std::string(33, ' ') + "v", "  wz"}));
}

TEST(RecordingPrinterPage, LinesCarryTheirYInTwipsAndOverflowToANewPage) {
  RecordingPrinterPage page(240, 1000);  // four lines to a page
  page.PrintLine("a");
  page.PrintLine();
  page.SetCurrentY(480);
  for (const char* text : {"c", "d", "e"}) page.PrintLine(text);
  const std::vector<PrintedLine>& lines = page.lines();
  ASSERT_EQ(lines.size(), 5u);
  const double ys[] = {0, 240, 480, 720, 0};
  for (size_t i = 0; i < lines.size(); ++i) {
    EXPECT_EQ(lines[i].y, ys[i]) << i;
    EXPECT_EQ(lines[i].page, i < 4 ? 1 : 2) << i;
  }
  EXPECT_EQ(page.CurrentY(), 240);
}

}  // namespace
}  // namespace orvane
