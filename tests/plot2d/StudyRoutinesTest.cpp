#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>
#include <optional>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "engine/PointEvaluation.h"
#include "platform/RecordingCanvas.h"
#include "platform/RuntimeError.h"
#include "platform/StopCheck.h"
#include "plot2d/EngineFunction.h"
#include "plot2d/ExtremaFinder.h"
#include "plot2d/Integrator.h"
#include "plot2d/PlotDrawing.h"
#include "plot2d/RootFinder.h"
#include "Plot2dTestDoubles.h"

namespace orvane {
namespace {

constexpr double pi = std::numbers::pi;
using Fn = std::function<double(double)>;

StudySettings study(double lower, double upper, int32_t n, double err = 1e-10, int32_t maxcy = 50) {
  return {"", lower, upper, n, err, maxcy, 0};
}

Fn failAbove(double at, int32_t number, double offset = 0) {
  return [=](double x) -> double {
    if (x > at) throw RuntimeError(number);
    return x - offset;
  };
}

TEST(RootFinder, Cases) {
  const Fn line = [](double x) { return x; }, x2m2 = [](double x) { return x * x - 2; };
  const struct {
    const char* name;
    Fn f;
    StudySettings s;
    std::vector<std::string> list;
    std::optional<std::string> label;
    int32_t error;
  } cases[] = {
      {"two roots of x^2-2", x2m2, study(-2, 2, 100), {"-1.4142135623731", "1.4142135623731"}, "2 roots", 0},
      {"zero on the grid taken as is", line, study(-1, 1, 2), {"0"}, "1 roots", 0},
      {"root at xupper never sampled", [](double x) { return x - 1; }, study(-1, 1, 2), {}, "0 roots", 0},
      {"pole on the grid skipped", testing::reciprocal, study(-1, 1, 2), {}, "0 roots", 0},
      {"pole inside a bracket is no root", testing::reciprocal, study(-1, 1, 3), {}, "0 roots", 0},
      {"Newton cut short", x2m2, study(0, 2, 2, 1e-15, 1), {}, "0 roots", 0},
      {"other error ends the search, label kept", failAbove(0.6, err::TypeMismatch, 0.25),
       study(-1, 1, 8), {"0.25"}, std::nullopt, err::TypeMismatch},
      {"inverted interval", line, study(1, -1, 4), {}, "0 roots", 0},
      {"no subintervals", line, study(-1, 1, 0), {}, std::nullopt, err::DivisionByZero},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    testing::Evaluated e(c.f);
    const RootResult r = findRoots(e.d, c.s);
    EXPECT_EQ(r.list, c.list);
    EXPECT_EQ(r.label, c.label);
    EXPECT_EQ(r.error, c.error);
    EXPECT_EQ(r.roots.size(), c.list.size());
    EXPECT_EQ(e.d.steps().h, 1e-5);  // its own step, whatever the plot used
  }
}

TEST(RootFinder, StopsAtTheTableSize) {
  testing::Evaluated sine([](double x) { return std::sin(x); });  // 300 roots in the interval
  const RootResult r = findRoots(sine.d, study(0.5, 300 * pi + 0.5, 8192, 1e-9));
  EXPECT_EQ(r.error, err::SubscriptOutOfRange);
  EXPECT_FALSE(r.label.has_value());
  EXPECT_EQ(r.roots.size(), 255u);
  EXPECT_EQ(r.list.size(), 256u);  // the list took the refused root's text first
  EXPECT_NEAR(r.roots.back(), 255 * pi, 1e-8);
}

TEST(ExtremaFinder, Cases) {
  auto parabola = [](double lift) { return [lift](double x) { return (x - 1) * (x - 1) + lift; }; };
  const struct {
    const char* name;
    Fn f;
    StudySettings s;
    std::vector<Extremum> expected;
  } cases[] = {
      {"x^3-3x: the zeros of the three-point slope (h = 0.0045), 1 - h^2/6 from +-1",
       [](double x) { return x * x * x - 3 * x; }, study(-2, 2, 64, 1e-9),
       {{-std::sqrt(1 - 0.0045 * 0.0045 / 3), true, false}, {std::sqrt(1 - 0.0045 * 0.0045 / 3), false, false}}},
      {"cos: zero slope on the grid", [](double x) { return std::cos(x); }, study(0, 6, 64, 1e-9),
       {{0, true, false}, {pi, false, false}}},
      {"just inside the tolerance", parabola(0.0079), study(0, 3, 16, 1e-9), {{1, false, true}}},
      {"just outside the tolerance", parabola(0.0081), study(0, 3, 16, 1e-9), {{1, false, false}}},
      {"a pole is no extremum", testing::reciprocal, study(-1, 1, 4, 1e-9), {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    testing::Evaluated e(c.f);
    const ExtremaResult r = findExtrema(e.d, c.s);
    EXPECT_EQ(r.label, std::to_string(c.expected.size()) + " extrema");
    ASSERT_EQ(r.extrema.size(), c.expected.size());
    ASSERT_EQ(r.list.size(), c.expected.size());
    for (size_t i = 0; i < c.expected.size(); ++i) {
      EXPECT_NEAR(r.extrema[i].x, c.expected[i].x, 1e-7) << i;
      EXPECT_EQ(r.extrema[i].isMaximum, c.expected[i].isMaximum) << i;
      EXPECT_EQ(r.extrema[i].possibleRoot, c.expected[i].possibleRoot) << i;
      EXPECT_EQ(r.list[i], extremumListText(r.extrema[i])) << i;
    }
  }
  EXPECT_EQ(extremumListText({1, false, true}), "Min 1 (possible root)");
  EXPECT_EQ(extremumListText({-2.5, true, false}), "Max -2.5");
}

TEST(Integrator, Cases) {
  const Fn line = [](double x) { return x; };
  const struct {
    const char* name;
    Fn f;
    StudySettings s;
    std::optional<std::string> label;
    bool computed;
  } cases[] = {
      {"x^3 on [0, 2]", [](double x) { return x * x * x; }, study(0, 2, 1, 0.01, 10), "4", true},
      {"x^5 on [0, 1]", [](double x) { return std::pow(x, 5); }, study(0, 1, 8, 1e-12, 10),
       "0.166666666666667", true},
      {"no halving allowed", [](double x) { return std::sin(x); }, study(0, 1, 2, 1e-12, 0),
       "No convergence", false},
      {"minimum panels out of reach", line, study(0, 1, 64, 1, 3), "No convergence", false},
      {"empty interval", line, study(1, 1, 2, 0.01, 5), "0", true},
      {"pole at a node", testing::reciprocal, study(-1, 1, 4, 0.01, 5), "division by zero", false},
      {"invalid argument", failAbove(0.4, err::InvalidCall), study(0, 1, 4, 0.01, 5),
       "Invalid procedure call or argument", false},
      {"overflow", failAbove(0.4, err::Overflow), study(0, 1, 4, 0.01, 5), "overflow", false},
      {"other errors leave the label", failAbove(0.4, err::TypeMismatch), study(0, 1, 4, 0.01, 5),
       std::nullopt, false},
  };
  for (const auto& c : cases) {
    testing::Evaluated e(c.f);
    const IntegralResult r = integrate(e.d, c.s);
    EXPECT_EQ(r.label, c.label) << c.name;
    EXPECT_EQ(r.computed, c.computed) << c.name;
  }
}

TEST(Integrator, RefinesByHalvingAndReusesEveryValue) {
  // Each halving evaluates only the new odd nodes: 5 values, then 4, 8 and 16 more, up to
  // the halvings allowed or, once converged (exactly, for x^2), the panels asked for.
  for (const auto& [n, maxcy, values] : {std::tuple{32, 3, 5u + 4 + 8 + 16}, std::tuple{8, 10, 5u + 4 + 8}}) {
    std::vector<double> calls;
    testing::Evaluated f([&](double x) { return calls.push_back(x), x * x; });
    integrate(f.d, study(0, 1, n, 1e-12, maxcy));
    EXPECT_EQ(calls.size(), values) << n;
    std::ranges::sort(calls);
    EXPECT_EQ(std::ranges::adjacent_find(calls), calls.end()) << n;
  }
}

TEST(StudyCommands, ReadTheFieldsInsideTheTrap) {
  // (The fields' ordinary way through, from the window: PlotWindowTest.)
  testing::Evaluated e([](double x) { return x * x - 2; });
  const StudyFieldTexts t{"x^2-2", "-2", "2", "100", "1e-10", "1e12", "Function"};  // maxcy beyond 32 bits
  const RootResult roots = findRoots(e.d, t);
  EXPECT_EQ(roots.error, err::Overflow);
  EXPECT_FALSE(roots.label.has_value());
  EXPECT_FALSE(findExtrema(e.d, t).label.has_value());
  EXPECT_EQ(integrate(e.d, t).label, "overflow");
}

// Long work ends at the first evaluation after its owner says stop (Esc, the close box,
// a signal) and keeps what it found. Here the owner is asked at every evaluation.
TEST(LongWork, StopsAtTheNextEvaluationKeepingWhatWasFound) {
  // Three roots and two extrema near the start, then minutes of scanning or refining.
  const StudySettings s = study(0.5, 1e6, 1 << 30, 1e-10, 40);
  constexpr int kStopAt = 100000;
  const auto stopsKeeping = [&](const char* name, size_t found, auto command) {
    SCOPED_TRACE(name);
    int calls = 0;
    testing::Evaluated e([&](double x) { return ++calls, (x - 1) * (x - 2) * (x - 3); });
    StopCheck stop([&] { return calls >= kStopAt; }, StopCheck::Clock::duration::zero());
    e.d.setStopCheck(&stop);
    const auto result = command(e.d);
    EXPECT_EQ(calls, kStopAt);
    EXPECT_EQ(result.label, "Interrupted");
    EXPECT_TRUE(result.interrupted);
    if constexpr (requires { result.list; }) {
      EXPECT_EQ(result.list.size(), found);
    }
  };
  stopsKeeping("roots", 3, [&](DerivativeEvaluator& d) { return findRoots(d, s); });
  stopsKeeping("extrema", 2, [&](DerivativeEvaluator& d) { return findExtrema(d, s); });
  stopsKeeping("integral", 0, [&](DerivativeEvaluator& d) { return integrate(d, s); });
}

// A formula of 2 ms: the owner (a window letting its events run) is still asked at least
// every 20 ms, so Esc is seen well within 0.2 s whatever one evaluation costs.
TEST(LongWork, ASlowFormulaIsAskedEveryFewEvaluations) {
  int calls = 0;
  std::vector<int> askedAt;
  testing::Evaluated e([&](double x) {
    ++calls;
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
    return x;
  });
  StopCheck stop([&] { return askedAt.push_back(calls), askedAt.size() == 4; });
  e.d.setStopCheck(&stop);
  EXPECT_EQ(integrate(e.d, study(0, 1, 1 << 20, 1e-12, 30)).label, "Interrupted");
  ASSERT_EQ(askedAt.size(), 4u);
  EXPECT_EQ(calls, askedAt.back());
  for (size_t i = 0; i < askedAt.size(); ++i) EXPECT_LE(askedAt[i] - (i ? askedAt[i - 1] : 0), 11) << i;
}

// The window's formula through blocks of points and point by point: the same roots,
// extrema, integral and curves, the same error, and the same errors reported in the
// same order with the same math-object error left behind, failing points among the blocks.
TEST(BlockEvaluation, StudiesAgreeWithPointByPoint) {
  // The formula one point at a time, as before blocks.
  class PointByPoint final : public FunctionOfX {
   public:
    explicit PointByPoint(FunctionOfX& f) : f_(f) {}
    double operator()(double x) override { return f_(x); }
    int32_t tryEval(double x, double& y) override { return f_.tryEval(x, y); }

   private:
    FunctionOfX& f_;
  };
  struct Window {
    ExpressionEngine engine;
    Class1 sh;
    int32_t shared = 0;
    std::vector<std::pair<int32_t, int32_t>> reported;  // error number and column, in order
    Window() {
      sh.sharedError = &shared;
      RegisterMathObject(engine, sh);
      engine.SetErrorHandler([this](const RuntimeError& e) { reported.emplace_back(e.number(), e.column()); });
    }
    auto state() const { return std::tie(sh.ierr, shared, reported); }
  };
  const struct {
    const char* formula;
    StudySettings s;
  } rows[] = {
      {"Log(x)*Sin(3*x)", study(-2, 4, 1000)},           // no value below 0, roots above
      {"Sqr(1-x*x)-0.5", study(-3, 3, 999)},             // a value only between -1 and 1
      {"1/x-x", study(-2, 2, 1000)},                      // a pole on the grid
      {"Asin(x/2)*x-0.3", study(-3, 3, 777)},            // the math object's error outside
      {"CInt(x*1e4)/1e4-0.25", study(-5, 5, 600)},       // overflow beyond 3.2767
      {"x*x-2+Exp(x*200)", study(-4, 4, 1000)},          // overflow on the right
      {"Sin(x)-undefinedName", study(-1, 1, 50)},         // an error that ends the scan
      {"x^5-x", study(-2, 2, 3000)},                      // no failure at all
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.formula);
    Window blocks, points;
    EngineFunction byBlocks(blocks.engine, blocks.sh, row.formula);
    EngineFunction engineAlone(points.engine, points.sh, row.formula);
    PointByPoint byPoints(engineAlone);
    DerivativeEvaluator db(byBlocks), dp(byPoints);

    const RootResult rb = findRoots(db, row.s), rp = findRoots(dp, row.s);
    EXPECT_EQ(std::tie(rb.list, rb.label, rb.error), std::tie(rp.list, rp.label, rp.error));
    EXPECT_EQ(blocks.state(), points.state());
    const ExtremaResult eb = findExtrema(db, row.s), ep = findExtrema(dp, row.s);
    EXPECT_EQ(std::tie(eb.list, eb.label, eb.error), std::tie(ep.list, ep.label, ep.error));
    EXPECT_EQ(blocks.state(), points.state());

    StudySettings fine = row.s;
    fine.n = 4096;
    const IntegralResult ib = integrate(db, fine), ip = integrate(dp, fine);
    EXPECT_EQ(std::tuple(ib.label, ib.error, std::bit_cast<uint64_t>(ib.value)),
              std::tuple(ip.label, ip.error, std::bit_cast<uint64_t>(ip.value)));
    EXPECT_EQ(blocks.state(), points.state());

    // The curve and its derivatives over the same interval, a sample every pixel.
    PlotRequest r;
    r.setup = {float(row.s.xlower), float(row.s.xupper), -3, 3, 0, 0, 1, 1, 15};
    r.options.fittedFunction = true;
    r.width = 6000;
    r.height = 3000;
    for (int32_t k : {0, 1, 2, 3}) {
      SCOPED_TRACE("derivative " + std::to_string(k));
      r.options.derivative = k;
      RecordingCanvas pb, pp;
      drawPlot(pb, db, r);
      drawPlot(pp, dp, r);
      EXPECT_EQ(pb.describeAll(), pp.describeAll());
      EXPECT_EQ(blocks.state(), points.state());
    }
  }
}

}  // namespace
}  // namespace orvane
