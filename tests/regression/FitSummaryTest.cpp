// The fit's statistics beside the listing: against R's lm and confint on four public
// data sets (data/r-lm), on fits the data cannot carry, as text and JSON, as bands and
// as the residual plot.

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "RegressionTestSupport.h"
#include "platform/RecordingCanvas.h"
#include "regression/FitSummary.h"
#include "regression/ResidualPlot.h"
#include "regression/Solver.h"
#include "regression/StatisticsReport.h"

namespace orvane {
namespace {

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

}  // namespace
}  // namespace orvane
