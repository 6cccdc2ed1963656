// The fit's results: against NIST's certified values and R's lm and confint on public
// data sets (data/), on fits the data cannot carry, as text and JSON, as bands, as the
// residual plot and as the printed report.

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "RegressionTestSupport.h"
#include "platform/RecordingCanvas.h"
#include "platform/RecordingPrinterPage.h"
#include "regression/FitSummary.h"
#include "regression/RegressionReport.h"
#include "regression/ResidualPlot.h"
#include "regression/Solver.h"
#include "regression/StatisticsReport.h"

namespace orvane {
namespace {

using orvane::testing::certified;
using orvane::testing::makeProblem;

QJsonObject parseObject(const std::string& text) {
  QJsonParseError error{};
  const QJsonDocument document = QJsonDocument::fromJson(QByteArray::fromStdString(text), &error);
  EXPECT_EQ(error.error, QJsonParseError::NoError) << error.errorString().toStdString() << "\n" << text;
  return document.object();
}

// Every value of `expected` is in `actual`, numbers to a relative 1e-9.
void expectSameValues(const QJsonValue& expected, const QJsonValue& actual, const std::string& where) {
  if (expected.isObject()) {
    const QJsonObject e = expected.toObject();
    for (auto it = e.begin(); it != e.end(); ++it)
      expectSameValues(it.value(), actual.toObject().value(it.key()), where + "." + it.key().toStdString());
  } else if (expected.isArray()) {
    const QJsonArray e = expected.toArray(), a = actual.toArray();
    ASSERT_EQ(a.size(), e.size()) << where;
    for (qsizetype i = 0; i < e.size(); ++i) expectSameValues(e[i], a[i], where + "[" + std::to_string(i) + "]");
  } else {
    ASSERT_TRUE(actual.isDouble()) << where;
    EXPECT_NEAR(actual.toDouble(), expected.toDouble(), 1e-9 * std::fabs(expected.toDouble())) << where;
  }
}

RegressionProblem computed(RegressionProblem p) {
  EXPECT_EQ(Compute(p), FitOutcome::Computed);
  return p;
}

class RLinearModel : public ::testing::TestWithParam<const char*> {};

TEST_P(RLinearModel, EveryJsonValueAsRGivesIt) {
  const std::string name = std::string("r-lm/") + GetParam();
  const RegressionProblem p = computed(testing::readDataCsv(name));
  const FitSummary s = SummarizeFit(p);
  const QJsonObject ours = parseObject(StatisticsJson(s, p));
  expectSameValues(testing::readDataJson(name + ".json"), ours, GetParam());
  EXPECT_EQ(ours.value("coefficients")[1].toObject().value("name").toString().toStdString(), p.names[0]);
  EXPECT_EQ(ours.value("sum_squared_residuals").toDouble(), p.statistics.residualSquares);
  EXPECT_GE(ours.value("digits_trusted").toDouble(), 12);  // well-conditioned data
  // At x = 0 the band of the mean is the constant term's interval.
  if (p.m == 1) {
    EXPECT_NEAR(BandsAt(s, 0).mean, (s.coefficients[0].high - s.coefficients[0].low) / 2,
                1e-12 * s.coefficients[0].stdError);
  }
}

INSTANTIATE_TEST_SUITE_P(Sets, RLinearModel, ::testing::Values("cars", "mtcars", "stackloss", "trees"));

// What the data cannot carry gives figures that say so, never a crash or an invented
// number; JSON stays valid with null in their place.
TEST(FitSummary, FitsTheDataCannotCarry) {
  const struct {
    const char* what;
    RegressionProblem p;
    bool determined;
    double rSquared, residualSe, digits;
  } cases[] = {
      {"a perfect line", makeProblem(1, {{1, 3}, {2, 5}, {3, 7}, {4, 9}}), true, 1, 0, 15},
      {"no degrees of freedom", makeProblem(2, {{1, 2, 1}, {2, 1, 5}, {4, 3, 2}}), true, 1, NAN, 15},
      {"a constant variable", makeProblem(2, {{1, 2, 1}, {2, 2, 5}, {4, 2, 2}, {5, 2, 7}}), false, NAN, NAN, 0},
      {"a value that is not a number", makeProblem(1, {{1, 3}, {NAN, 5}, {3, 7}, {4, 1}}), false, NAN, NAN, 0},
      {"fewer sets than coefficients", makeProblem(2, {{1, 2, 1}, {2, 1, 5}}), false, NAN, NAN, 0},
  };
  const auto expectFigure = [](double actual, double expected, const char* what) {
    if (std::isnan(expected)) EXPECT_TRUE(std::isnan(actual)) << what;
    else EXPECT_NEAR(actual, expected, 1e-14) << what;
  };
  for (const auto& c : cases) {
    RegressionProblem p = c.p;
    Compute(p);
    p.A.resize(static_cast<size_t>(p.m) + 2, 1.0);  // a listing, whatever the elimination made of it
    const FitSummary s = SummarizeFit(p);
    EXPECT_EQ(s.determined, c.determined) << c.what;
    EXPECT_NEAR(s.digitsTrusted, c.digits, 0.5) << c.what;
    EXPECT_EQ(DigitsWarning(s).empty(), c.digits >= 6) << c.what;
    expectFigure(s.rSquared, c.rSquared, c.what);
    expectFigure(s.residualStandardError, c.residualSe, c.what);
    EXPECT_EQ(parseObject(StatisticsJson(s, p)).value("residual_se").isNull(), std::isnan(c.residualSe)) << c.what;
    EXPECT_EQ(StatisticsText(s, p.names, true).size(), StatisticsText(s, p.names, false).size()) << c.what;
  }
}

TEST(StatisticsReport, TableColumnsLineUpAndTinyPValuesReadAsR) {
  const RegressionProblem p = computed(testing::readDataCsv("r-lm/trees"));
  const std::vector<std::string> lines = StatisticsText(SummarizeFit(p), p.names, true);
  ASSERT_GE(lines.size(), 5u);
  for (int row = 2; row <= 4; ++row) EXPECT_EQ(lines[row].size(), lines[1].size()) << lines[row];
  EXPECT_EQ(lines[2].rfind("A0 (constant)", 0), 0u);
  EXPECT_NE(lines[3].find("< 2e-16"), std::string::npos) << lines[3];  // Girth: 8.2e-17
  EXPECT_EQ(PValueText(0.0123188, 3), "0.0123");
  EXPECT_EQ(PValueText(1.4898e-12, 3), "1.49E-12");
  // A name may hold any character but a comma: JSON escapes what it must.
  const std::string name = "a\"b\\c\x01";
  const RegressionProblem named = computed(makeProblem(1, {{1, 1}, {2, 3}, {3, 2}}, {name}));
  EXPECT_EQ(parseObject(StatisticsJson(SummarizeFit(named), named)).value("names")[0].toString().toStdString(), name);
}

TEST(ResidualPlot, ResidualsAboutTheZeroLine) {
  const RegressionProblem p = computed(makeProblem(1, {{1, 1}, {2, 3}, {3, 2}, {4, 4}}));
  const ResidualPoints points = ResidualsAgainst(p, 0);
  EXPECT_EQ(points.xCaption, "Fitted values");
  EXPECT_EQ(ResidualsAgainst(p, 1).xCaption, "x1");
  const std::vector<double> expected{-0.3, 0.9, -0.9, 0.3};  // y - (0.5 + 0.8 x)
  for (size_t k = 0; k < expected.size(); ++k) EXPECT_NEAR(points.residual[k], expected[k], 1e-14);

  RecordingCanvas picture(400, 300);
  DrawResidualPlot(picture, points);
  std::vector<const CanvasCall*> zero, discs;
  for (const CanvasCall& call : picture.calls()) {
    if (call.kind == CanvasCall::Kind::Line && call.color == residualcolors::Zero) zero.push_back(&call);
    if (call.kind == CanvasCall::Kind::Circle) discs.push_back(&call);
  }
  ASSERT_EQ(zero.size(), 1u);
  ASSERT_EQ(discs.size(), 4u);
  // The largest residuals mirror each other about the zero line; x grows to the right.
  EXPECT_NEAR(discs[1]->y1 - zero[0]->y1, zero[0]->y1 - discs[2]->y1, 0.01);
  EXPECT_LT(discs[1]->y1, zero[0]->y1);  // a positive residual is above it
  EXPECT_LT(discs[0]->x1, discs[3]->x1);

  // Many sets set each pixel once instead of drawing a disc for each.
  std::vector<std::vector<double>> sets;
  for (int i = 0; i < 20000; ++i) sets.push_back({double(i % 100), double(i % 100) + (i % 7) * 0.1});
  RecordingCanvas crowded(200, 100);
  DrawResidualPlot(crowded, ResidualsAgainst(computed(makeProblem(1, sets)), 1));
  EXPECT_EQ(crowded.count(CanvasCall::Kind::Circle), 0u);
  EXPECT_GT(crowded.count(CanvasCall::Kind::Point), 100u);
  EXPECT_LE(crowded.count(CanvasCall::Kind::Point), 700u);  // 100 x values by 7 residuals
}

// The fit against the certified results of the NIST StRD linear regression sets (copied
// into data/). Accuracy is the log relative error, LRE = -log10(|ours - certified| /
// |certified|): correct significant digits. The normal equations square the condition
// number, so the listing's bounds are what this elimination reaches, a digit under the
// measured figure (coefficients: Norris 12.1, Pontius 11.2, Longley 7.4, Wampler1,3-5
// 6.6, Wampler2 9.6, Filip 0; 10 or more in the residual sums and R^2). The Statistics
// window's own solution holds 13 digits of the certified statistics (Filip's data,
// rounded to doubles, about 7.7), and its digits trusted is the listing's true figure.

double lre(double ours, double exact) {
  if (ours == exact) return 15;
  return std::min(15.0, -std::log10(exact == 0 ? std::fabs(ours) : std::fabs(ours - exact) / std::fabs(exact)));
}

struct Reference { const char* name; double coefficientDigits, residualDigits, statisticsDigits; };

class NistReference : public ::testing::TestWithParam<Reference> {};

TEST_P(NistReference, ListingAndSummaryToCertifiedDigits) {
  const Reference r = GetParam();
  RegressionProblem p = testing::readDataCsv(r.name);
  const QJsonObject json = testing::readDataJson(std::string(r.name) + ".json");
  const std::vector<double> B = certified(json, "coefficients");
  ASSERT_EQ(static_cast<int>(B.size()), p.m + 1);
  // Only an exact zero pivot is singular: even Filip's degree-10 polynomial computes.
  ASSERT_EQ(Compute(p), FitOutcome::Computed);
  double truth = 15;
  for (int j = 0; j <= p.m; ++j) truth = std::min(truth, std::max(0.0, lre(p.A[j], B[j])));
  EXPECT_GE(truth, r.coefficientDigits);
  const FitSummary s = SummarizeFit(p);
  EXPECT_NEAR(s.digitsTrusted, truth, 0.5);  // measured within 0.01 on every set
  EXPECT_EQ(DigitsWarning(s).empty(), truth >= 6) << DigitsWarning(s);

  const FitStatistics& listed = p.statistics;
  const double ssr = certified(json, "residual_ss").at(0);
  if (ssr == 0) {  // a perfect fit: ours must be tiny beside the data
    EXPECT_LT(listed.residualSquares, certified(json, "regression_ss").at(0) * 1e-24);
    EXPECT_GT(s.rSquared, 1 - 1e-15);
    return;
  }
  if (r.residualDigits == 0) {  // no digit right: still a fit of those coefficients, as measured
    EXPECT_GE(listed.residualSquares, ssr * (1 - 1e-9));
    EXPECT_LT(listed.residualSquares, ssr * 1.4);
    for (int i = 1; i <= p.N; ++i) ASSERT_TRUE(std::isfinite(ComputeEstimates(p, i)));
  } else {
    EXPECT_GE(lre(listed.residualSquares, ssr), r.residualDigits);
    EXPECT_GE(lre(listed.correlation * listed.correlation, certified(json, "r_squared").at(0)), r.residualDigits);
    EXPECT_GE(lre(listed.standardError, std::sqrt(ssr / (p.N - 2))), r.residualDigits - 0.3);
  }
  const std::vector<double> sd = certified(json, "coefficient_sd");
  for (int j = 0; j <= p.m; ++j) EXPECT_GE(lre(s.coefficients[j].stdError, sd[j]), r.statisticsDigits) << j;
  EXPECT_GE(lre(s.residualStandardError, certified(json, "residual_sd").at(0)), r.statisticsDigits);
  EXPECT_GE(lre(s.rSquared, certified(json, "r_squared").at(0)), r.statisticsDigits);
  EXPECT_GE(lre(s.fStatistic, certified(json, "f_statistic").at(0)), r.statisticsDigits);
}

INSTANTIATE_TEST_SUITE_P(Sets, NistReference,
                         ::testing::Values(Reference{"Norris", 11, 11, 13}, Reference{"Pontius", 10, 11, 13},
                                           Reference{"Longley", 6.5, 9.5, 13}, Reference{"Filip", 0, 0, 7},
                                           Reference{"Wampler1", 5.5, 0, 13}, Reference{"Wampler2", 8.5, 0, 13},
                                           Reference{"Wampler3", 5.5, 11, 13}, Reference{"Wampler4", 5.5, 11, 13},
                                           Reference{"Wampler5", 5.5, 11, 13}),
                         [](const auto& info) { return std::string(info.param.name); });

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
