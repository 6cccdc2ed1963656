#include <gtest/gtest.h>

#include <string>
#include <vector>

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

}  // namespace
}  // namespace orvane
