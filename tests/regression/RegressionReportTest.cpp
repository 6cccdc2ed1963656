#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "RegressionTestSupport.h"
#include "platform/RecordingPrinterPage.h"
#include "regression/RegressionReport.h"

namespace orvane {
namespace {

using testing::makeProblem;

TEST(RegressionReport, BeforeComputingNamesAndDataOnly) {
  const RegressionProblem p = makeProblem(2, {{1, 2, 9}, {-0.5, 0, 1.25}}, {"x", "y"}, "z");
  RecordingPrinterPage page(240, 15120, "Arial");
  PrintRegressionReport(page, p, 2);
  EXPECT_EQ(page.texts(), (std::vector<std::string>{"DEPENDENT VARIABLE: z", "INDEPENDENT VARIABLES: x,y", "", "",
                                                    "DATA:", "", "SET # 1 :", "x= 1 ", "y= 2 ", "z= 9 ", "",
                                                    "SET # 2 :", "x=-0.5 ", "y= 0 ", "z= 1.25 ", ""}));
  EXPECT_EQ(page.endDocCount(), 1);
  EXPECT_EQ(page.fontsSet(), (std::vector<std::string>{"Courier New", "Arial"}));  // the user's font comes back
  for (const PrintedLine& line : page.lines()) EXPECT_EQ(line.fontName, "Courier New") << line.text;

  // The sets count comes from a text field: fewer than the data, beyond them or negative
  // prints what there is. (The computed report's columns: orvane-batch report --text.)
  for (int sets : {1, 99, -3, 0}) {
    RecordingPrinterPage other;
    PrintRegressionReport(other, p, sets);
    EXPECT_EQ(other.texts().size(), sets == 1 ? 11u : sets > 0 ? 16u : 6u) << sets;
  }
  RegressionProblem bare = makeProblem(1, {});  // names set, data not yet created: the header only
  bare.X = {};
  bare.N = 5;
  RecordingPrinterPage header;
  PrintRegressionReport(header, bare, 5);
  EXPECT_EQ(header.texts().size(), 6u);
}

}  // namespace
}  // namespace orvane
