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

TEST(StudyDefaults, WindowShowsDataLineAndAxes) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const struct {
    const char* name;
    std::vector<double> xs, ys;
    std::optional<FittedLine> line;
    std::vector<std::string> texts;  // xlower, xupper, lx, gx, ly, gy, xorigin, yorigin, divx, divy
  } cases[] = {
      {"no data", {}, {}, {}, {"-5", "5", "-6", "6", "-6", "6", "0", "0", "2", "2"}},
      {"far data: axes at the edges", {1990, 2000, 2010}, {50, 60, 70}, {},
       {"1990", "2010", "1985", "2015", "45", "75", "1985", "45", "5", "5"}},
      {"line beyond the data widens y", {0, 1}, {0, 1}, FittedLine{0, 10},
       {"0", "1", "-0.2", "1.2", "-2", "12", "0", "0", "0.2", "2"}},
      {"one point", {2}, {-3}, {}, {"1", "3", "-0.5", "3.5", "-5", "1", "0", "0", "0.5", "1"}},
      {"non-finite points left out", {nan, 1, 3}, {5, 1, 2}, {},
       {"1", "3", "-0.5", "3.5", "-0.5", "2.5", "0", "0", "0.5", "0.5"}},
  };
  for (const auto& c : cases) {
    const StudyWindowDefaults d = defaultStudyWindow(c.xs, c.ys, c.line);
    const PlotSetupTexts& p = d.plot;
    EXPECT_EQ((std::vector<std::string>{d.xlower, d.xupper, p.windowlx, p.windowgx, p.windowly,
                                        p.windowgy, p.xorigin, p.yorigin, p.divx, p.divy}),
              c.texts)
        << c.name;
  }
  const double steps[][2] = {{0.48, 0.5}, {1, 1}, {1.01, 2}, {3, 5}, {7, 10}, {0.00012, 0.0002}, {0, 1}};
  for (const auto& s : steps) EXPECT_DOUBLE_EQ(roundStepAtLeast(s[0]), s[1]) << s[0];
}

// What the study adds to point evaluation (MathObjectTest): a value beyond a double is an
// overflow, and a blank formula an error of its own that the engine never hears of.
TEST(EngineFunction, ValuesAndErrorsComeFromTheFormula) {
  ExpressionEngine engine;
  Class1 sh;
  RegisterMathObject(engine, sh);
  double y = 0;
  EXPECT_EQ(EngineFunction(engine, sh, "x^2")(3), 9);
  EXPECT_EQ(EngineFunction(engine, sh, "Exp(x)").tryEval(1000, y), err::Overflow);
  int reported = 0;
  engine.SetErrorHandler([&](const RuntimeError&) { ++reported; });
  EngineFunction none(engine, sh, " ");
  EXPECT_EQ(none.tryEval(1, y), err::InvalidCall);
  EXPECT_THROW(none(1), RuntimeError);
  EXPECT_EQ(reported, 0);
  EXPECT_NE(EngineFunction(engine, sh, "x+").tryEval(1, y), 0);
  EXPECT_EQ(reported, 1);
}

}  // namespace
}  // namespace orvane
