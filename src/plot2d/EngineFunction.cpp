#include "plot2d/EngineFunction.h"

#include <cmath>

#include "engine/PointEvaluation.h"
#include "platform/RuntimeError.h"

namespace orvane {

namespace {

bool blank(const std::string& text) { return text.find_first_not_of(" \t") == std::string::npos; }

}  // namespace

double EngineFunction::operator()(double x) {
  if (blank(formula_)) throw RuntimeError(err::InvalidCall);
  return EvaluateAt(engine_, sh_, formula_, x);
}

int32_t EngineFunction::tryEval(double x, double& y) {
  if (blank(formula_)) return err::InvalidCall;
  if (int32_t error = TryEvaluateAt(engine_, sh_, formula_, x, y)) return error;
  return std::isfinite(y) ? 0 : err::Overflow;
}

}  // namespace orvane
