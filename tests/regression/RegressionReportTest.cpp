#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "RegressionTestSupport.h"
#include "platform/RecordingPrinterPage.h"
#include "regression/RegressionReport.h"
#include "regression/Solver.h"

namespace orvane {
namespace {

using testing::makeProblem;

TEST(RegressionReport, BeforeAndAfterComputing) {
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
  // prints what there is.
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

  // Computed: the listing, then each set with its estimate at column 34 and its residual
  // at 57, a negative one with its "-" there.
  RegressionProblem line = makeProblem(1, {{1, 3.5}, {2, 4.5}, {3, 7.5}, {4, 8}}, {"x"});
  ASSERT_EQ(Compute(line), FitOutcome::Computed);
  RecordingPrinterPage computed;
  PrintRegressionReport(computed, line, 4);
  const std::vector<std::string>& lines = computed.texts();
  const std::vector<std::string> listing = ResultsListing(line);
  ASSERT_EQ(lines.size(), 32u);
  EXPECT_EQ(std::vector<std::string>(lines.begin() + 3, lines.begin() + 8),
            std::vector<std::string>(listing.begin(), listing.begin() + 5));
  EXPECT_EQ(lines[11], "A 0 = 1.75 ");
  EXPECT_EQ(lines[14], "DATA:                            ESTIMATE:              RESIDUAL:");
  EXPECT_EQ(lines[18], "y= 3.5                            3.4                    0.100000000000001 ");
  EXPECT_EQ(lines[22], "y= 4.5                            5.05                  -0.549999999999999 ");
}

}  // namespace
}  // namespace orvane
