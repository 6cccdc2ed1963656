#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <optional>
#include <string>
#include <vector>

#include "platform/NumberText.h"
#include "platform/RuntimeError.h"
#include "plot2d/ExtremaFinder.h"
#include "plot2d/Integrator.h"
#include "plot2d/RootFinder.h"
#include "Plot2dTestSupport.h"

namespace orvane {
namespace {

constexpr double pi = std::numbers::pi;

StudySettings study(double lower, double upper, int32_t n, double err, int32_t maxcy) {
  StudySettings s;
  s.xlower = lower;
  s.xupper = upper;
  s.n = n;
  s.err = err;
  s.maxcy = maxcy;
  return s;
}

struct RootCase {
  const char* name;
  std::function<double(double)> f;
  StudySettings s;
  std::vector<std::string> list;
  std::optional<std::string> label;
  int32_t error;
};

TEST(RootFinder, Cases) {
  const RootCase cases[] = {
      {"two roots of x^2-2", [](double x) { return x * x - 2; }, study(-2, 2, 100, 1e-10, 50),
       {"-1.4142135623731", "1.4142135623731"}, "2 roots", 0},
      {"zero grid point taken without Newton", [](double x) { return x; },
       study(-1, 1, 2, 1e-10, 50), {"0"}, "1 roots", 0},
      {"double root has no sign change", [](double x) { return x * x; },
       study(-1, 1, 3, 1e-10, 50), {}, "0 roots", 0},
      {"root at xupper is never sampled", [](double x) { return x - 1; },
       study(-1, 1, 2, 1e-10, 50), {}, "0 roots", 0},
      {"pole on the grid is skipped", testing::reciprocal, study(-1, 1, 2, 1e-10, 50), {},
       "0 roots", 0},
      {"pole inside a bracket is no root", testing::reciprocal, study(-1, 1, 3, 1e-10, 50), {},
       "0 roots", 0},
      {"Newton cut short by the iteration limit", [](double x) { return x * x - 2; },
       study(0, 2, 2, 1e-15, 1), {}, "0 roots", 0},
      {"other error ends the search, label kept",
       [](double x) {
         if (x > 0.6) throw RuntimeError(err::TypeMismatch);
         return x - 0.25;
       },
       study(-1, 1, 8, 1e-10, 50), {"0.25"}, std::nullopt, err::TypeMismatch},
      {"inverted interval has no grid", [](double x) { return x; }, study(1, -1, 4, 1e-10, 50),
       {}, "0 roots", 0},
      {"no subintervals ends before the scan", [](double x) { return x; },
       study(-1, 1, 0, 1e-10, 50), {}, std::nullopt, err::DivisionByZero},
  };
  for (const RootCase& c : cases) {
    LambdaFunction f(c.f);
    DerivativeEvaluator d(f);
    const RootResult r = findRoots(d, c.s);
    EXPECT_EQ(r.list, c.list) << c.name;
    EXPECT_EQ(r.label, c.label) << c.name;
    EXPECT_EQ(r.error, c.error) << c.name;
    EXPECT_EQ(r.roots.size(), c.list.size()) << c.name;
  }
}

TEST(RootFinder, UsesItsOwnSteps) {
  LambdaFunction f([](double x) { return x; });
  DerivativeEvaluator d(f);
  d.prepareForPlot(1);
  findRoots(d, study(-1, 1, 2, 1e-10, 5));
  EXPECT_EQ(d.steps().h, 1e-5);
  EXPECT_EQ(d.steps().h2, 2e-5);
}

TEST(RootFinder, StopsAtTheTableSize) {
  // sin has a root at every multiple of pi: 300 of them here.
  LambdaFunction f([](double x) { return std::sin(x); });
  DerivativeEvaluator d(f);
  const RootResult r = findRoots(d, study(0.5, 300 * pi + 0.5, 8192, 1e-9, 50));
  EXPECT_EQ(r.error, err::SubscriptOutOfRange);
  EXPECT_FALSE(r.label.has_value());
  EXPECT_EQ(r.roots.size(), 255u);
  EXPECT_EQ(r.list.size(), 256u);  // the list took the refused root's text first
  EXPECT_NEAR(r.roots.back(), 255 * pi, 1e-8);
}

struct ExtremaCase {
  const char* name;
  std::function<double(double)> f;
  StudySettings s;
  std::vector<Extremum> expected;
  std::optional<std::string> label;
};

TEST(ExtremaFinder, Cases) {
  auto parabola = [](double lift) {
    return [lift](double x) { return (x - 1) * (x - 1) + lift; };
  };
  const ExtremaCase cases[] = {
      {"sin over one period", [](double x) { return std::sin(x); }, study(0, 2 * pi, 64, 1e-9, 50),
       {{pi / 2, true, false}, {3 * pi / 2, false, false}}, "2 extrema"},
      {"cos: a zero slope on the grid", [](double x) { return std::cos(x); },
       study(0, 6, 64, 1e-9, 50), {{0, true, false}, {pi, false, false}}, "2 extrema"},
      {"touching the axis is a possible root", parabola(0), study(0, 3, 16, 1e-9, 50),
       {{1, false, true}}, "1 extrema"},
      {"just inside the tolerance", parabola(0.0079), study(0, 3, 16, 1e-9, 50),
       {{1, false, true}}, "1 extrema"},
      {"just outside the tolerance", parabola(0.0081), study(0, 3, 16, 1e-9, 50),
       {{1, false, false}}, "1 extrema"},
      {"a pole is no extremum", testing::reciprocal, study(-1, 1, 4, 1e-9, 50), {}, "0 extrema"},
      {"a straight line has none", [](double x) { return 2 * x + 1; }, study(-1, 1, 8, 1e-9, 50),
       {}, "0 extrema"},
  };
  for (const ExtremaCase& c : cases) {
    LambdaFunction f(c.f);
    DerivativeEvaluator d(f);
    const ExtremaResult r = findExtrema(d, c.s);
    EXPECT_EQ(r.label, c.label) << c.name;
    ASSERT_EQ(r.extrema.size(), c.expected.size()) << c.name;
    for (size_t i = 0; i < c.expected.size(); ++i) {
      EXPECT_NEAR(r.extrema[i].x, c.expected[i].x, 1e-7) << c.name << " #" << i;
      EXPECT_EQ(r.extrema[i].isMaximum, c.expected[i].isMaximum) << c.name << " #" << i;
      EXPECT_EQ(r.extrema[i].possibleRoot, c.expected[i].possibleRoot) << c.name << " #" << i;
    }
    EXPECT_EQ(r.list.size(), c.expected.size()) << c.name;
  }
}

TEST(ExtremaFinder, ListsAndCounts) {
  LambdaFunction f([](double x) { return std::sin(x); });
  DerivativeEvaluator d(f);
  const ExtremaResult r = findExtrema(d, study(0, 4 * pi, 128, 1e-9, 50));
  ASSERT_EQ(r.maxima().size(), 2u);
  ASSERT_EQ(r.minima().size(), 2u);
  EXPECT_NEAR(r.maxima()[1], 2.5 * pi, 1e-7);
  EXPECT_EQ(r.possibleRootCount(), 0);
  EXPECT_EQ(r.list[0], "Max " + formatGeneral(r.extrema[0].x));
  EXPECT_EQ(extremumListText({1, false, true}), "Min 1 (possible root)");
}

struct IntegralCase {
  const char* name;
  std::function<double(double)> f;
  StudySettings s;
  std::optional<std::string> label;
  bool computed;
};

TEST(Integrator, Cases) {
  auto throwing = [](int32_t number) {
    return [number](double x) -> double {
      if (x > 0.4) throw RuntimeError(number);
      return x;
    };
  };
  const IntegralCase cases[] = {
      {"cubic: Simpson and Boole agree at once", [](double x) { return x * x * x; },
       study(0, 2, 1, 0.01, 10), "4", true},
      {"x^5 refined up to the minimum panels", [](double x) { return std::pow(x, 5); },
       study(0, 1, 8, 1e-12, 10), "0.166666666666667", true},
      {"no halving allowed", [](double x) { return std::sin(x); }, study(0, 1, 2, 1e-12, 0),
       "No convergence", false},
      {"minimum panels out of reach", [](double x) { return x; }, study(0, 1, 64, 1, 3),
       "No convergence", false},
      {"empty interval", [](double x) { return x; }, study(1, 1, 2, 0.01, 5), "0", true},
      {"pole at a node", testing::reciprocal, study(-1, 1, 4, 0.01, 5), "division by zero", false},
      {"invalid argument", throwing(err::InvalidCall), study(0, 1, 4, 0.01, 5),
       "Invalid procedure call or argument", false},
      {"already reported script error", throwing(err::AlreadyReported), study(0, 1, 4, 0.01, 5),
       "Invalid procedure call or argument", false},
      {"overflow", throwing(err::Overflow), study(0, 1, 4, 0.01, 5), "overflow", false},
      {"other errors leave the label", throwing(err::TypeMismatch), study(0, 1, 4, 0.01, 5),
       std::nullopt, false},
  };
  for (const IntegralCase& c : cases) {
    LambdaFunction f(c.f);
    DerivativeEvaluator d(f);
    const IntegralResult r = integrate(d, c.s);
    EXPECT_EQ(r.label, c.label) << c.name;
    EXPECT_EQ(r.computed, c.computed) << c.name;
  }
}

TEST(Integrator, ConvergesOnSmoothFunctions) {
  LambdaFunction f([](double x) { return std::exp(x); });
  DerivativeEvaluator d(f);
  const IntegralResult r = integrate(d, study(0, 1, 4, 1e-10, 20));
  ASSERT_TRUE(r.computed);
  EXPECT_NEAR(r.value, std::exp(1.0) - 1, 1e-10);
}

TEST(Integrator, ReusesEveryValue) {
  // Each halving evaluates only the new odd nodes: 5 values, then 4, 8 and 16 more.
  testing::LoggedFunction f([](double x) { return x * x; });
  DerivativeEvaluator d(f);
  integrate(d, study(0, 1, 32, 1e-12, 3));
  EXPECT_EQ(f.calls.size(), 5u + 4 + 8 + 16);
  std::vector<double> sorted = f.calls;
  std::sort(sorted.begin(), sorted.end());
  EXPECT_EQ(std::adjacent_find(sorted.begin(), sorted.end()), sorted.end());
}

TEST(StudyCommands, ReadTheFieldsInsideTheTrap) {
  LambdaFunction f([](double x) { return x * x - 2; });
  DerivativeEvaluator d(f);
  StudyFieldTexts t{"x^2-2", "-2", "2", "100", "1e-10", "50", "Function"};
  EXPECT_EQ(findRoots(d, t).label, "2 roots");
  EXPECT_EQ(findExtrema(d, t).label, "1 extrema");
  EXPECT_TRUE(integrate(d, t).computed);
  t.maxcy = "1e12";  // beyond 32 bits
  const RootResult roots = findRoots(d, t);
  EXPECT_EQ(roots.error, err::Overflow);
  EXPECT_FALSE(roots.label.has_value());
  EXPECT_FALSE(findExtrema(d, t).label.has_value());
  EXPECT_EQ(integrate(d, t).label, "overflow");
}

}  // namespace
}  // namespace orvane
