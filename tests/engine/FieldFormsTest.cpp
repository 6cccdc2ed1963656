// The instructions that read a field directly (Sin(x), Exp(x), Tanh(x)), share one
// Sin/Cos computation, or add a constant to a product (a*x+b, x*y+c) must give the
// plain code's bits and errors at every point, including where the plain code fails,
// and leave the same number in ierr.

#include <cmath>
#include <string>
#include <vector>

#include "engine/EngineCheck.h"

namespace orvane::test {
namespace {

// Ordinary points, the edges of each function's domain, and fields no formula could
// have produced (a caller may store any double).
const std::vector<double> points = {-1E300, -800, -710, -3.5, -1,    -1E-310, -0.0,   0,
                                    1E-310, 0.5,  1,    2,    3,     709,     710,    1E22,
                                    1E154,  1.3E154, 1E200, 1E308, INFINITY, -INFINITY, NAN};

TEST(FieldForms, AgreeWithThePlainCodeEverywhere) {
  const char* formulas[] = {
      "Abs(x)", "Atn(x)", "Cos(x)", "Exp(x)", "Log(x)", "Sin(x)", "Sqr(x)", "Tan(x)",
      "1 - Exp(x) / 2", "Log(Abs(x)+1)*Atn(x)",
      // Sin and Cos of one field, in either order, once or twice; of different fields not.
      "Sin(x)^2+Cos(x)^2", "Cos(x)-Sin(x)", "Sin(x)-Cos(x)*2", "Sin(x)*Cos(x)+Sin(x)*Cos(x)", "Sin(x)+Sin(x)",
      "Sin(x)-Cos(pi)", "Cos(x)+Sin(halfpi)", "Sin(x)+Tanh(x)*Cos(x)", "Cos(-x)+Sin(x)",
      // A product plus a constant, and the older fused pairs.
      "2*(x+1)", "1+x*2", "1-x*2", "x*x+1", "x*x-1", "2*x+1", "x*2-1", "x*1.5+1E308", "x*x+1E308", "x*pi+x*x-3", "Sqr(x*x+1)/Exp(x)",
      // A math-object function of a field: its error reaches ierr as a computed argument's does.
      "Asin(x)", "Acos(x)+Asin(x/2)", "Tanh(x)*2", "Atanh(x)", "Sinh(x)-Cosh(x)", "Cosh(x)", "Acosh(x)", "Asinh(x)+1",
  };
  for (const char* text : formulas)
    for (double x : points) evalEveryWay(text, x);
}

TEST(FieldForms, ErrorsKeepTheirNumberAndPosition) {
  checkErrors({
      {"Exp(x)", 6, 1, 1, 710}, {"1 + Exp(x)", 6, 5, 1, 1000}, {"Log(x)", 5, 1, 1, 0}, {"2 * Log(x)", 5, 5, 1, -1},
      {"Sqr(x)", 5, 1, 1, -1}, {"2*x-1", 6, 2, 1, 1E308}, {"x*1.5+1E308", 6, 6, 1, 1E308},
      {"x*x+1", 6, 2, 1, 1E200}, {"x*x+1E308", 6, 4, 1, 1.3E154},  // the product, then the sum
      {"Sin(x)+Cos(x)/0", 11, 14, 1, 1},
  });
}

}  // namespace
}  // namespace orvane::test
