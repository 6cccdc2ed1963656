// The math object's functions (exact formulas, trapped errors) and point evaluation.

#include <string>
#include <vector>

#include "engine/EngineCheck.h"

namespace orvane::test {
namespace {

const double halfpi = 1.5707963267948966;

struct Registered : Engine {
  int32_t shared = 0;
  std::vector<int32_t> engineErrors;
  Registered() {
    sh.sharedError = &shared;
    engine.SetErrorHandler([this](const RuntimeError& e) { engineErrors.push_back(e.number()); });
  }
};

TEST(MathObject, FunctionValues) {
  Registered t;  // registration sets the constants inside the object
  EXPECT_EQ(std::tuple(t.sh.halfpi, t.sh.pi, t.sh.e), std::tuple(halfpi, 2 * halfpi, 2.718281828459045));
  const ValueRow rows[] = {{"Asin(1)", halfpi},  {"Asin(-1)", -halfpi}, {"Acos(1)", 0}, {"Acos(-1)", 2 * halfpi},
                           {"Asin(0.5)", 0.523598775598299},     {"Acos(0)", halfpi}, {"Sinh(1)", 1.1752011936438014},
                           {"Cosh(1)", 1.5430806348152437},      {"Tanh(-0.5)", -0.46211715726000974},
                           {"Asinh(1)", 0.881373587019543},      {"Acosh(2)", 1.31695789692482},
                           {"Atanh(0.5)", 0.549306144334055}};
  for (const ValueRow& row : rows) {
    const Outcome o = evalEveryWay(row.text, row.x);
    EXPECT_EQ(o.number, 0) << row.text;
    EXPECT_NEAR(o.value, row.expected, 1e-14) << row.text;
  }
}

// Which number each domain error gives is FunctionsFollowTheirFormulasExactly's; here
// where it goes: ierr and the shared field, never cleared by a later call.
TEST(MathObject, DomainErrorsAreTrappedIntoIerrAndTheSharedField) {
  Class1 sh;
  int32_t shared = 0;
  sh.sharedError = &shared;
  sh.halfpi = halfpi;
  EXPECT_EQ(sh.Tanh(800), 0);  // not 1: Exp(X) is computed too
  EXPECT_EQ(sh.ierr, 6);
  EXPECT_EQ(shared, 6);
  EXPECT_NEAR(sh.Asin(0.5), 0.523598775598299, 1e-15);
  EXPECT_EQ(sh.ierr, 6);
  Class1 alone;  // works without a shared field
  alone.Atanh(1);
  EXPECT_EQ(alone.ierr, 11);
}

// Each function against its formula written in the script language and run by the
// engine: the same value to the last bit, or the same error.
TEST(MathObject, FunctionsFollowTheirFormulasExactly) {
  const char* asin = "Atn(x / Sqr(x * (x * (Abs(x) <> 1)) + 1))";
  const struct {
    double (Class1::*function)(double);
    std::string formula;
  } rows[] = {
      {&Class1::Asin, "(-(Abs(x) <> 1)) * " + std::string(asin) + " - halfpi * ((x = 1) - (x = -1))"},
      {&Class1::Acos, "halfpi + (((x = 1) - (x = -1)) * halfpi + (Abs(x) <> 1) * " + std::string(asin) + ")"},
      {&Class1::Sinh, "(Exp(x) - Exp(-x)) * 0.5"},
      {&Class1::Cosh, "(Exp(x) + Exp(-x)) * 0.5"},
      {&Class1::Tanh, "(-2 * Exp(-x)) / (Exp(-x) + Exp(x)) + 1"},
      {&Class1::Asinh, "Log(x + Sqr(x * x + 1))"},
      {&Class1::Acosh, "Log(x + Sqr(x * x - 1))"},
      {&Class1::Atanh, "Log((1 + x) / (1 - x)) * 0.5"},
  };
  std::vector<double> points = {-1,  1,   0,    -0.0, 1E-300, 1.0000000000000002, 0.9999999999999999, 709,
                                710, -710, 800, -800, 1E154,  1E155, -1E200, 1E308};
  for (double x = -3; x <= 3; x += 0.0625) points.push_back(x);
  Engine t;
  for (const auto& row : rows) {
    for (double x : points) {
      t.sh.x = x;
      const Outcome script = evalOnce(t.engine, row.formula);
      Class1 object;
      object.halfpi = t.sh.halfpi;
      const double value = (object.*row.function)(x);
      EXPECT_EQ(object.ierr, script.number) << row.formula << " at " << x;
      EXPECT_TRUE(sameBits(value, script.number ? 0.0 : script.value)) << row.formula << " at " << x;
    }
  }
  ExpressionEngine bare;  // without the start-up statements halfpi is 0
  Class1 sh;
  bare.AddObject("sh", sh, true);
  EXPECT_EQ(bare.Eval("Asin(1)"), 0);
  EXPECT_EQ(bare.Eval("Acos(0)"), 0);
}

TEST(PointEvaluation, ValuesAtPoints) {
  Registered t;
  EXPECT_EQ(EvaluateAt(t.engine, t.sh, "x^2", 3), 9);
  EXPECT_EQ(EvaluateAt(t.engine, t.sh, "(x-1)*x*(x+1)*(y-1)*y*(y+1)*5", 2, 3), 720);
  EXPECT_EQ(EvaluateAt(t.engine, t.sh, "u*10+v+x", 1, 2, SurfaceVariables::UV), 14);  // x kept from before
  EXPECT_EQ(t.sh.y, 3);
  double out = 0;
  EXPECT_EQ(TryEvaluateAt(t.engine, t.sh, "x+y", 1, 2, out), 0);
  EXPECT_EQ(out, 3);
  EXPECT_EQ(TryEvaluateAt(t.engine, t.sh, "x*10", 0.5, out), 0);
  EXPECT_EQ(out, 5);
  EXPECT_EQ(TryEvaluateAt(t.engine, t.sh, "u-v", 4, 1.5, out, SurfaceVariables::UV), 0);
  EXPECT_EQ(out, 2.5);
}

TEST(PointEvaluation, ObjectErrorsRaiseWithoutTheHandlerEngineErrorsThroughIt) {
  Registered t;
  try {
    EvaluateAt(t.engine, t.sh, "Asin(2) + 1", 0);
    ADD_FAILURE();
  } catch (const RuntimeError& e) {
    EXPECT_EQ(e.number(), 5);
    EXPECT_EQ(e.description(), "Invalid procedure call or argument");
  }
  EXPECT_EQ(t.shared, 5);
  double out = 0;
  EXPECT_EQ(TryEvaluateAt(t.engine, t.sh, "Atanh(x)", 1, out), 11);
  EXPECT_EQ(TryEvaluateAt(t.engine, t.sh, "Atanh(x)", 0.5, out), 0);  // ierr is cleared per point
  EXPECT_NEAR(out, 0.549306144334055, 1e-15);
  EXPECT_EQ(TryEvaluateAt(t.engine, t.sh, "Tanh(x)*y", 800, 1, out), 6);
  EXPECT_TRUE(t.engineErrors.empty());

  EXPECT_THROW(EvaluateAt(t.engine, t.sh, "1/x", 0), RuntimeError);
  EXPECT_EQ(TryEvaluateAt(t.engine, t.sh, "x + nosuch", 1, out), 500);
  EXPECT_EQ(t.engineErrors, (std::vector<int32_t>{11, 500}));
}

}  // namespace
}  // namespace orvane::test
