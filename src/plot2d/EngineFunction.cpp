#include "plot2d/EngineFunction.h"

#include <algorithm>
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

int32_t EngineFunction::tryEvalBlock(const double* xs, int32_t n, double* ys, int32_t& error) {
  error = 0;
  if (n <= 0) return 0;
  if (blank(formula_)) {
    error = err::InvalidCall;
    return 0;
  }
  if (n > BlockLanes)
    if (const int32_t good = TryEvaluateRun(engine_, sh_, formula_, BlockPoints{xs}, n, ys)) return good;
  if (!block_) block_ = std::make_unique<BlockOutcome>();
  // One block: the caller comes back for the rest.
  TryEvaluateBlock(engine_, sh_, formula_, xs, nullptr, std::min(n, BlockLanes), *block_);
  return TakeLeadingPoints(engine_, sh_, *block_, ys, error);
}

}  // namespace orvane
