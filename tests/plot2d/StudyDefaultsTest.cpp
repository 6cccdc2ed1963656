// The window's opening study interval and plot window, and f(x) through the engine.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "engine/PointEvaluation.h"
#include "platform/RuntimeError.h"
#include "plot2d/EngineFunction.h"
#include "plot2d/StudyDefaults.h"

namespace orvane {
namespace {

struct WindowCase {
  const char* name;
  std::vector<double> xs, ys;
  std::optional<FittedLine> line;
  // xlower, xupper, lx, gx, ly, gy, xorigin, yorigin, divx, divy
  std::vector<std::string> texts;
};

TEST(StudyDefaults, WindowShowsDataLineAndAxes) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const WindowCase cases[] = {
      {"no data: around the origin", {}, {}, {},
       {"-5", "5", "-6", "6", "-6", "6", "0", "0", "2", "2"}},
      {"data near the origin takes the origin in", {1, 2, 3, 4, 5}, {3.1, 4.9, 7.2, 8.8, 11.1},
       FittedLine{1.05, 1.99}, {"1", "5", "-1", "6", "-2", "12", "0", "0", "1", "2"}},
      {"far data keeps its own range, the y-axis at the left edge", {1990, 2000, 2010}, {50, 60, 70}, {},
       {"1990", "2010", "1985", "2015", "45", "75", "1985", "45", "5", "5"}},
      {"line beyond the data widens y", {0, 1}, {0, 1}, FittedLine{0, 10},
       {"0", "1", "-0.2", "1.2", "-2", "12", "0", "0", "0.2", "2"}},
      {"one point: an interval around it", {2}, {-3}, {}, {"1", "3", "-0.5", "3.5", "-5", "1", "0", "0", "0.5", "1"}},
      {"non-finite points are left out", {nan, 1, 3}, {5, 1, 2}, {},
       {"1", "3", "-0.5", "3.5", "-0.5", "2.5", "0", "0", "0.5", "0.5"}},
      {"negative data", {-5, -3}, {-10, -2}, {},
       {"-5", "-3", "-5.5", "-2.5", "-12", "2", "-5.5", "0", "0.5", "2"}},
  };
  for (const WindowCase& c : cases) {
    const StudyWindowDefaults d = defaultStudyWindow(c.xs, c.ys, c.line);
    const std::vector<std::string> got = {d.xlower,       d.xupper,       d.plot.windowlx, d.plot.windowgx,
                                          d.plot.windowly, d.plot.windowgy, d.plot.xorigin, d.plot.yorigin,
                                          d.plot.divx,    d.plot.divy};
    EXPECT_EQ(got, c.texts) << c.name;
  }
}

TEST(StudyDefaults, RoundSteps) {
  const double cases[][2] = {{0.48, 0.5}, {1, 1}, {1.01, 2}, {3, 5}, {7, 10}, {0.00012, 0.0002}, {0, 1}};
  for (const auto& c : cases) EXPECT_DOUBLE_EQ(roundStepAtLeast(c[0]), c[1]) << c[0];
}

TEST(EngineFunction, ValuesAndErrorsComeFromTheFormula) {
  ExpressionEngine engine;
  Class1 sh;
  int32_t shared = 0;
  sh.sharedError = &shared;
  RegisterMathObject(engine, sh);
  EngineFunction square(engine, sh, "x^2");
  EXPECT_EQ(square(3), 9);
  EngineFunction asin(engine, sh, "Asin(x)");
  double y = 0;
  EXPECT_EQ(asin.tryEval(2, y), err::InvalidCall);  // the math object's error, not a value
  EXPECT_EQ(shared, err::InvalidCall);
  EXPECT_EQ(asin.tryEval(1, y), 0);
  EXPECT_DOUBLE_EQ(y, std::atan(1.0) * 2);
  EngineFunction pole(engine, sh, "1/x");
  EXPECT_EQ(pole.tryEval(0, y), err::DivisionByZero);
  try {
    pole(0);
    ADD_FAILURE() << "no error at the pole";
  } catch (const RuntimeError& e) {
    EXPECT_EQ(e.number(), err::DivisionByZero);
  }
  EngineFunction huge(engine, sh, "Exp(x)");
  EXPECT_EQ(huge.tryEval(1000, y), err::Overflow);
  int reported = 0;
  engine.SetErrorHandler([&](const RuntimeError&) { ++reported; });
  EngineFunction none(engine, sh, " ");
  EXPECT_EQ(none.tryEval(1, y), err::InvalidCall);
  EXPECT_THROW(none(1), RuntimeError);
  EXPECT_EQ(reported, 0);  // nothing for the engine to report
  EngineFunction typo(engine, sh, "x+");
  EXPECT_NE(typo.tryEval(1, y), 0);
  EXPECT_EQ(reported, 1);
}

}  // namespace
}  // namespace orvane
