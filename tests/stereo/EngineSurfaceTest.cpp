#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "engine/PointEvaluation.h"
#include "stereo/EngineSurface.h"

namespace orvane {
namespace {

// A window's engine with the math object registered and the engine's messages noted.
struct Window {
  ExpressionEngine engine;
  Class1 sh;
  std::vector<int32_t> reported;
  Window() {
    engine.SetErrorHandler([this](const RuntimeError& e) { reported.push_back(e.number()); });
    RegisterMathObject(engine, sh);
    reported.clear();
  }
};

TEST(EngineSurface, FormulasSeeTheFourVariablesAndFailuresBecomeErrorNumbers) {
  const struct {
    const char* formula;
    double x, y, u, v;
    int32_t error;  // -1: some error the window reports
    double value;
  } rows[] = {
      {"x*10+y", 2, 3, 0, 0, 0, 23},       {"u-v", 0, 0, 5, 1.5, 0, 3.5},
      {"Asin(x)", 2, 0, 0, 0, 5, 0},       {"Atanh(y)", 0, 1, 0, 0, 11, 0},  // the math object's error field
      {"1/(x-y)", 1, 1, 0, 0, 11, 0},      {"nosuchname*x", 1, 1, 0, 0, -1, 0},  // the engine's own
  };
  for (const auto& r : rows) {
    SCOPED_TRACE(r.formula);
    Window w;
    EngineSurface surface(w.engine, w.sh);
    double value = -1;
    const int32_t error = surface.tryEvaluate(r.formula, r.x, r.y, r.u, r.v, value);
    EXPECT_TRUE(r.error < 0 ? error != 0 && !isSilencedError(error) : error == r.error) << error;
    if (r.error == 0) {
      EXPECT_DOUBLE_EQ(value, r.value);
      EXPECT_DOUBLE_EQ(surface.evaluate(r.formula, r.x, r.y, r.u, r.v), r.value);
    } else {
      try {
        surface.evaluate(r.formula, r.x, r.y, r.u, r.v);
        ADD_FAILURE() << "gave a value";
      } catch (const RuntimeError& e) {
        EXPECT_EQ(e.number(), error);
      }
    }
  }
  // An error field left set by one failing point must not spoil the next point.
  Window w;
  EngineSurface surface(w.engine, w.sh);
  double value = 1;
  EXPECT_EQ(surface.tryEvaluate("Acosh(x)", 0.5, 0, 0, 0, value), 5);
  EXPECT_EQ(surface.tryEvaluate("Acosh(x)", 1, 0, 0, 0, value), 0);
  EXPECT_DOUBLE_EQ(value, 0);

  // Setting fields are expressions too, user constants included; the window hears errors.
  EngineReader reader(w.engine);
  EXPECT_DOUBLE_EQ(reader.evalSetting("pi/2"), 1.5707963267948966);
  w.engine.ExecuteStatement("k=2.5");
  EXPECT_DOUBLE_EQ(reader.evalSetting("-k"), -2.5);
  EXPECT_THROW(reader.evalSetting("2*"), RuntimeError);
  EXPECT_EQ(w.reported.size(), 1u);
}

}  // namespace
}  // namespace orvane
