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

RegressionProblem twoVariables() {
  return makeProblem(2, {{1, 2, 9}, {-0.5, 0, 1.25}}, {"x", "y"}, "z");
}

TEST(RegressionReport, BeforeComputing) {
  RecordingPrinterPage page(240, 15120, "Arial");
  PrintRegressionReport(page, twoVariables(), 2);
  const std::vector<std::string> expected = {
      "DEPENDENT VARIABLE: z",
      "INDEPENDENT VARIABLES: x,y",
      "",
      "",
      "DATA:",
      "",
      "SET # 1 :",
      "x= 1 ",
      "y= 2 ",
      "z= 9 ",
      "",
      "SET # 2 :",
      "x=-0.5 ",
      "y= 0 ",
      "z= 1.25 ",
      "",
  };
  EXPECT_EQ(page.texts(), expected);
  EXPECT_EQ(page.endDocCount(), 1);
  EXPECT_EQ(page.fontsSet(), (std::vector<std::string>{"Courier New", "Arial"}));
  EXPECT_EQ(page.FontName(), "Arial");
  for (const PrintedLine& line : page.lines()) EXPECT_EQ(line.fontName, "Courier New") << line.text;
}

TEST(RegressionReport, AfterComputingWithEstimatesAndResiduals) {
  RegressionProblem p = makeProblem(1, {{1, 1}, {2, 3}, {3, 2}, {4, 4}}, {"x"}, "y");
  ASSERT_EQ(Compute(p), FitOutcome::Computed);
  // The fit rounded to plain figures, so every printed number is exact.
  p.A = {0.5, 0.8, 0};
  p.statistics = {0.8, 0.948683298050514, 1.8, 2.5, 2.5};
  RecordingPrinterPage page(240, 15120, "Times");
  PrintRegressionReport(page, p, 2);  // the sets field may ask for fewer than N
  //                                          column 34 v              column 57 v
  const std::vector<std::string> expected = {
      "DEPENDENT VARIABLE: y",
      "INDEPENDENT VARIABLES: x",
      "",
      "              CORRELATION COEFFICIENT=0.8",
      "STANDARD ERROR OF ESTIMATE (UNBIASED)=0.948683298050514",
      "                    SUM (RESIDUALS)^2=1.8",
      "           AVERAGE OF FUNCTION(GIVEN)=2.5",
      "       AVERAGE OF FUNCTION(ESTIMATED)=2.5",
      "",
      "COEFFICIENTS:",
      "",
      "A 0 = 0.5 ",
      "A 1 = 0.8 ",
      "",
      "DATA:                            ESTIMATE:              RESIDUAL:",
      "",
      "SET # 1 :",
      "x= 1 ",
  };
  const std::vector<std::string> texts = page.texts();
  ASSERT_EQ(texts.size(), 24u);
  EXPECT_EQ(std::vector<std::string>(texts.begin(), texts.begin() + 18), expected);
  EXPECT_EQ(texts[14].find("ESTIMATE:"), 33u);
  EXPECT_EQ(texts[14].find("RESIDUAL:"), 56u);

  // Set 1: estimate 1.3, residual -0.3 with its sign in column 57. Set 2: estimate
  // 2.1, residual 0.9 with a blank there. The values are not exactly 1.3 and so on in
  // binary, so only the columns and the leading characters are asserted.
  const std::string& set1 = texts[18];
  ASSERT_EQ(set1.substr(0, 5), "y= 1 ") << set1;
  EXPECT_EQ(set1.substr(5, 28), std::string(28, ' ')) << set1;
  EXPECT_EQ(set1.substr(33, 5), " 1.3 ") << set1;
  EXPECT_EQ(set1.substr(56, 5), "-0.3 ") << set1;
  EXPECT_EQ(texts[19], "");
  EXPECT_EQ(texts[20], "SET # 2 :");
  const std::string& set2 = texts[22];
  EXPECT_EQ(set2.substr(0, 5), "y= 3 ") << set2;
  EXPECT_EQ(set2.substr(33, 5), " 2.1 ") << set2;
  EXPECT_EQ(set2.substr(56, 5), " 0.9 ") << set2;
  EXPECT_EQ(page.FontName(), "Times");
}

TEST(RegressionReport, SetsBeyondTheDataAreNotPrinted) {
  // The sets count comes from a text field; more than the matrix holds, or a negative
  // count, must print what there is and nothing else.
  for (int sets : {99, 2, -3, 0}) {
    RecordingPrinterPage page;
    PrintRegressionReport(page, twoVariables(), sets);
    const size_t printed = sets > 0 ? 2 : 0;
    EXPECT_EQ(page.texts().size(), 6u + 5 * printed) << sets;
    EXPECT_EQ(page.endDocCount(), 1) << sets;
  }
  // Names set, data not yet created: the header only.
  RegressionProblem bare;
  bare.m = 1;
  bare.N = 5;
  bare.names = {"x"};
  bare.dependentName = "y";
  RecordingPrinterPage page;
  PrintRegressionReport(page, bare, 5);
  EXPECT_EQ(page.texts().size(), 6u);
}

}  // namespace
}  // namespace orvane
