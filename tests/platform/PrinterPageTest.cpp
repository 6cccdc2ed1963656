#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/RecordingCanvas.h"
#include "platform/RecordingPrinterPage.h"

namespace orvane {
namespace {

TEST(RecordingPrinterPage, TabColumnsLineUpAsInAFixedPitchFont) {
  RecordingPrinterPage page;
  for (const char* last : {"RESIDUAL:", "-0.1 "}) {
    page.Write("DATA:");
    page.Tab(34);
    page.Write("ESTIMATE:");
    page.Tab(57);
    page.Write(last);
    page.NewLine();
  }
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
  EXPECT_EQ(page.texts(), (std::vector<std::string>{header + "RESIDUAL:", header + "-0.1 ", std::string(40, 'x'),
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

TEST(RecordingPrinterPage, FontsPicturesAndEndOfDocument) {
  RecordingPrinterPage page;
  const std::string previous = page.FontName();
  page.SetFontName("Courier New");
  RecordingCanvas picture(400, 300);
  page.PaintPicture(picture, 100, 200, 5760, 4320);
  page.SetCurrentY(4500);
  page.Write("Plot of Function");  // left open: EndDoc ends it
  page.EndDoc();
  page.SetFontName(previous);
  EXPECT_EQ(page.fontsSet(), (std::vector<std::string>{"Courier New", previous}));
  ASSERT_EQ(page.pictures().size(), 1u);
  EXPECT_EQ(page.pictures()[0].pixelWidth, 400);
  ASSERT_EQ(page.lines().size(), 1u);
  EXPECT_EQ(page.lines()[0].y, 4500);
  EXPECT_EQ(page.lines()[0].fontName, "Courier New");
  page.PrintLine("next");  // a new document starts at the top
  EXPECT_EQ(page.lines()[1].y, 0);
  EXPECT_EQ(page.lines()[1].document, 1);
}

}  // namespace
}  // namespace orvane
