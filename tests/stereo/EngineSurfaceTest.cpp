#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "engine/PointEvaluation.h"
#include "stereo/EngineSurface.h"
#include "stereo/SurfaceSampler.h"

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
  struct Row {
    const char* formula;
    double x, y, u, v;
    int32_t error;  // 0: the value is `value`
    double value;
  } rows[] = {
      {"x*10+y", 2, 3, 0, 0, 0, 23},
      {"u-v", 0, 0, 5, 1.5, 0, 3.5},
      {"Asin(halfpi*0+x)", 1, 0, 0, 0, 0, 1.5707963267948966},
      {"Asin(x)", 2, 0, 0, 0, 5, 0},       // the math object's error field
      {"Atanh(y)", 0, 1, 0, 0, 11, 0},
      {"1/(x-y)", 1, 1, 0, 0, 11, 0},      // the engine's own error
      {"nosuchname*x", 1, 1, 0, 0, 500, 0},  // an undefined name
  };
  for (const Row& r : rows) {
    Window w;
    EngineSurface surface(w.engine, w.sh);
    double value = -1;
    const int32_t error = surface.tryEvaluate(r.formula, r.x, r.y, r.u, r.v, value);
    if (r.error == 500) {
      EXPECT_NE(error, 0) << r.formula;
      EXPECT_FALSE(isSilencedError(error)) << r.formula;
    } else {
      EXPECT_EQ(error, r.error) << r.formula;
    }
    if (r.error == 0) {
      EXPECT_DOUBLE_EQ(value, r.value) << r.formula;
      EXPECT_DOUBLE_EQ(surface.evaluate(r.formula, r.x, r.y, r.u, r.v), r.value) << r.formula;
    } else {
      try {
        surface.evaluate(r.formula, r.x, r.y, r.u, r.v);
        ADD_FAILURE() << r.formula << " gave a value";
      } catch (const RuntimeError& e) {
        EXPECT_EQ(e.number(), error) << r.formula;
      }
    }
  }
}

// An error field left set by one failing point must not spoil the next point.
TEST(EngineSurface, EachEvaluationStartsWithACleanErrorField) {
  Window w;
  EngineSurface surface(w.engine, w.sh);
  double value = 0;
  EXPECT_EQ(surface.tryEvaluate("Acosh(x)", 0.5, 0, 0, 0, value), 5);
  EXPECT_EQ(surface.tryEvaluate("Acosh(x)", 1, 0, 0, 0, value), 0);
  EXPECT_DOUBLE_EQ(value, 0);
}

TEST(EngineReader, SettingFieldsAreExpressionsIncludingConstants) {
  Window w;
  EngineReader reader(w.engine);
  EXPECT_DOUBLE_EQ(reader.evalSetting("pi/2"), 1.5707963267948966);
  w.engine.ExecuteStatement("k=2.5");
  EXPECT_DOUBLE_EQ(reader.evalSetting("-k"), -2.5);
  EXPECT_THROW(reader.evalSetting("2*"), RuntimeError);
  EXPECT_EQ(w.reported.size(), 1u);  // the window's error event heard it
}

// The parametric mesh through the real engine: with the default x(u,v) = v, y(u,v) = u
// the surface is drawn over swapped axes, and z sees x and y as well as u and v.
TEST(EngineSurface, ParametricSampleMapsThroughTheThreeFormulas) {
  Window w;
  EngineSurface surface(w.engine, w.sh);
  StereoSettings s;
  s.parametric = true;
  s.equationX = "v";
  s.equationY = "u";
  s.equationZ = "x*100+y*10+u";
  SurfaceParameters uv;
  SurfaceSampler sampler(s, surface, uv);
  Point3 p;
  ASSERT_EQ(sampler.TrySample(0.25f, 0.5f, p), 0);
  EXPECT_FLOAT_EQ(p.x, 0.5f);
  EXPECT_FLOAT_EQ(p.y, 0.25f);
  EXPECT_FLOAT_EQ(p.z, 0.5f * 100 + 0.25f * 10 + 0.25f);
}

}  // namespace
}  // namespace orvane
