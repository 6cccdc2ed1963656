#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/RecordingCanvas.h"
#include "platform/RecordingPrinterPage.h"

namespace orvane {
namespace {

TEST(RecordingPrinterPage, TabColumnsLineUpAsInAFixedPitchFont) {
  RecordingPrinterPage page;
  page.Write("DATA:");
  page.Tab(34);
  page.Write("ESTIMATE:");
  page.Tab(57);
  page.Write("RESIDUAL:");
  page.NewLine();
  page.Write("y= 3 ");
  page.Tab(34);
  page.Write(" 2.9 ");
  page.Tab(57);
  page.Write("-0.1 ");
  page.NewLine();

  ASSERT_EQ(page.lines().size(), 2u);
  const std::string& header = page.lines()[0].text;
  EXPECT_EQ(header.find("ESTIMATE:"), 33u);  // column 34 counted from 1
  EXPECT_EQ(header.find("RESIDUAL:"), 56u);
  EXPECT_EQ(header, "DATA:" + std::string(28, ' ') + "ESTIMATE:" + std::string(14, ' ') +
                        "RESIDUAL:");
  EXPECT_EQ(page.lines()[1].text[56], '-');
}

TEST(RecordingPrinterPage, TabBehindThePositionGoesToTheNextLine) {
  RecordingPrinterPage page;
  page.Write(std::string(40, 'x'));
  page.Tab(34);
  page.Write("v");
  page.Tab(3);  // column 3 is behind column 35 as well
  page.Write("w");
  page.Write("");
  page.Tab(4);  // already at column 4 after "  w": stays on the line
  page.Write("z");
  page.NewLine();
  EXPECT_EQ(page.texts(), (std::vector<std::string>{std::string(40, 'x'),
                                                    std::string(33, ' ') + "v", "  wz"}));
}

TEST(RecordingPrinterPage, LinesCarryTheirYAndOverflowToANewPage) {
  RecordingPrinterPage page(240, 1000);  // four lines to a page
  page.PrintLine("a");
  page.PrintLine();
  page.SetCurrentY(480);
  page.PrintLine("c");
  page.PrintLine("d");
  page.PrintLine("e");

  const std::vector<PrintedLine>& lines = page.lines();
  ASSERT_EQ(lines.size(), 5u);
  const double ys[] = {0, 240, 480, 720, 0};
  const int pages[] = {1, 1, 1, 1, 2};
  for (size_t i = 0; i < lines.size(); ++i) {
    EXPECT_EQ(lines[i].y, ys[i]) << i;
    EXPECT_EQ(lines[i].page, pages[i]) << i;
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
  EXPECT_EQ(page.pictures()[0].top, 200);
  EXPECT_EQ(page.pictures()[0].width, 5760);
  EXPECT_EQ(page.pictures()[0].pixelWidth, 400);
  ASSERT_EQ(page.lines().size(), 1u);
  EXPECT_EQ(page.lines()[0].y, 4500);
  EXPECT_EQ(page.lines()[0].fontName, "Courier New");
  EXPECT_EQ(page.endDocCount(), 1);

  page.PrintLine("next");  // a new document starts at the top
  EXPECT_EQ(page.lines()[1].y, 0);
  EXPECT_EQ(page.lines()[1].document, 1);
}

}  // namespace
}  // namespace orvane
