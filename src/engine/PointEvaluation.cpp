#include "engine/PointEvaluation.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

namespace orvane {

namespace {

void place(Class1& object, double first, double second, SurfaceVariables variables) {
  if (variables == SurfaceVariables::XY) {
    object.x = first;
    object.y = second;
  } else {
    object.u = first;
    object.v = second;
  }
}

int32_t tryEval(ExpressionEngine& engine, Class1& object, std::string_view formula, double& result) noexcept {
  object.ierr = 0;
  if (int32_t number = engine.TryEval(formula, result)) return number;
  return object.ierr;
}

}  // namespace

void RegisterMathObject(ExpressionEngine& engine, Class1& object) {
  engine.AddObject("sh", object, true);
  engine.ExecuteStatement("halfpi = Atn(1) * 2");
  engine.ExecuteStatement("pi = Atn(1) * 4");
  engine.ExecuteStatement("e = Exp(1)");
}

void RaiseObjectError(const Class1& object) { throw RuntimeError(object.ierr); }

int32_t TryEvaluateAt(ExpressionEngine& engine, Class1& object, std::string_view formula, double x,
                      double& result) noexcept {
  object.x = x;
  return tryEval(engine, object, formula, result);
}

int32_t TryEvaluateAt(ExpressionEngine& engine, Class1& object, std::string_view formula, double first,
                      double second, double& result, SurfaceVariables variables) noexcept {
  place(object, first, second, variables);
  return tryEval(engine, object, formula, result);
}

void TryEvaluateBlock(ExpressionEngine& engine, Class1& object, std::string_view formula, const double* first,
                      const double* second, int32_t count, BlockOutcome& outcome, SurfaceVariables variables) noexcept {
  count = std::clamp(count, 0, BlockLanes);
  const bool xy = variables == SurfaceVariables::XY;
  const BlockInput inputs[2] = {{xy ? &object.x : &object.u, first}, {xy ? &object.y : &object.v, second}};
  // The shared field is written as the lanes are taken, not for lanes past the caller's stop.
  int32_t* shared = std::exchange(object.sharedError, nullptr);
  object.ierr = 0;
  if (int32_t number = engine.EvalBlock(formula, std::span(inputs, second ? 2 : 1), count, outcome)) {
    outcome.count = count;
    outcome.program = nullptr;
    std::fill(outcome.error, outcome.error + count, number);
    std::fill(outcome.objectError, outcome.objectError + count, 0);
  }
  object.ierr = 0;
  object.sharedError = shared;
}

int32_t FirstPointWithoutValue(const BlockOutcome& outcome) noexcept {
  // One pass over the whole block first: (v - v) is +0 exactly for a finite v.
  uint64_t missing = 0;
  for (int32_t i = 0; i < outcome.count; ++i)
    missing |= static_cast<uint32_t>(outcome.error[i] | outcome.objectError[i]) |
               std::bit_cast<uint64_t>(outcome.value[i] - outcome.value[i]);
  if (!missing) return outcome.count;
  for (int32_t i = 0; i < outcome.count; ++i)
    if (outcome.error[i] || outcome.objectError[i] || !std::isfinite(outcome.value[i])) return i;
  return outcome.count;
}

void ReportBlockPoint(ExpressionEngine& engine, Class1& object, const BlockOutcome& outcome, int32_t lane) noexcept {
  if (outcome.program) engine.ReportBlockFault(outcome, lane);
  if (int32_t number = outcome.objectError[lane]) {
    object.ierr = number;
    if (object.sharedError) *object.sharedError = number;
  }
}

}  // namespace orvane
