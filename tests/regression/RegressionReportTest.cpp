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

  // The sets count comes from a text field: beyond the data or negative prints what there is.
  for (int sets : {99, -3, 0}) {
    RecordingPrinterPage other;
    PrintRegressionReport(other, p, sets);
    EXPECT_EQ(other.texts().size(), sets > 0 ? 16u : 6u) << sets;
  }
  RegressionProblem bare;  // names set, data not yet created: the header only
  bare.m = 1;
  bare.N = 5;
  bare.names = {"x"};
  bare.dependentName = "y";
  RecordingPrinterPage header;
  PrintRegressionReport(header, bare, 5);
  EXPECT_EQ(header.texts().size(), 6u);
}

TEST(RegressionReport, AfterComputingWithEstimatesAndResidualsInColumns34And57) {
  RegressionProblem p = makeProblem(1, {{1, 1}, {2, 3}, {3, 2}, {4, 4}}, {"x"}, "y");
  p.computed = true;
  p.A = {0.5, 0.8, 0};
  p.statistics = {0.8, 0.948683298050514, 1.8, 2.5, 2.5};
  RecordingPrinterPage page;
  PrintRegressionReport(page, p, 2);  // the sets field may ask for fewer than N
  std::vector<std::string> expected = {"DEPENDENT VARIABLE: y", "INDEPENDENT VARIABLES: x", ""};
  for (const std::string& line : StatisticsLines(p.statistics)) expected.push_back(line);  // as listed
  for (const char* line : {"", "COEFFICIENTS:", "", "A 0 = 0.5 ", "A 1 = 0.8 ", "",
                           "DATA:                            ESTIMATE:              RESIDUAL:", "", "SET # 1 :", "x= 1 "})
    expected.push_back(line);
  const std::vector<std::string> texts = page.texts();
  ASSERT_EQ(texts.size(), 24u);
  EXPECT_EQ(std::vector<std::string>(texts.begin(), texts.begin() + 18), expected);
  EXPECT_EQ(texts[20], "SET # 2 :");
  // Estimates 1.3 and 2.1, residuals -0.3 and 0.9 (sign or blank in column 57); not exact
  // in binary, so only the columns and leading characters are asserted.
  const struct {
    size_t line;
    const char *given, *estimate, *residual;
  } sets[] = {{18, "y= 1 ", " 1.3 ", "-0.3 "}, {22, "y= 3 ", " 2.1 ", " 0.9 "}};
  for (const auto& s : sets) {
    const std::string& t = texts[s.line];
    ASSERT_GE(t.size(), 61u) << t;
    EXPECT_EQ(t.substr(0, 5), s.given) << t;
    EXPECT_EQ(t.substr(5, 28), std::string(28, ' ')) << t;
    EXPECT_EQ(t.substr(33, 5), s.estimate) << t;
    EXPECT_EQ(t.substr(56, 5), s.residual) << t;
  }
}

}  // namespace
}  // namespace orvane
