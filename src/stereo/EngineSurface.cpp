#include "stereo/EngineSurface.h"

#include <algorithm>

#include "engine/PointEvaluation.h"

namespace orvane {

namespace {

void place(Class1& sh, double x, double y, double u, double v) {
  sh.x = x;
  sh.y = y;
  sh.u = u;
  sh.v = v;
  sh.ierr = 0;
}

}  // namespace

double EngineSurface::evaluate(std::string_view formula, double x, double y, double u, double v) {
  place(sh_, x, y, u, v);
  const double value = engine_.Eval(formula);
  if (sh_.ierr != 0) throw RuntimeError(sh_.ierr);
  return value;
}

int32_t EngineSurface::tryEvaluate(std::string_view formula, double x, double y, double u, double v,
                                   double& value) {
  place(sh_, x, y, u, v);
  if (const int32_t number = engine_.TryEval(formula, value)) return number;
  return sh_.ierr;
}

int32_t EngineSurface::tryEvaluateBlock(std::string_view formula, const double* x, const double* y, const double* u,
                                        const double* v, int32_t n, double* values, int32_t& error) {
  error = 0;
  if (n <= 0) return 0;
  if (!block_) block_ = std::make_unique<BlockOutcome>();
  TryEvaluateBlock(engine_, sh_, formula, BlockPoints{x, y, u, v}, std::min(n, BlockLanes), *block_);
  return TakeLeadingPoints(engine_, sh_, *block_, values, error);
}

}  // namespace orvane
