#include "engine/PointEvaluation.h"

#include <algorithm>
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

// The object's fields that take the points' lanes.
size_t blockInputs(Class1& object, const BlockPoints& points, BlockInput (&inputs)[4]) {
  size_t used = 0;
  for (const BlockInput& in : {BlockInput{&object.x, points.x}, BlockInput{&object.y, points.y},
                               BlockInput{&object.u, points.u}, BlockInput{&object.v, points.v}})
    if (in.lanes) inputs[used++] = in;
  return used;
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

void TryEvaluateBlock(ExpressionEngine& engine, Class1& object, std::string_view formula, const BlockPoints& points,
                      int32_t count, BlockOutcome& outcome) noexcept {
  count = std::clamp(count, 0, BlockLanes);
  BlockInput inputs[4];
  const size_t used = blockInputs(object, points, inputs);
  // The shared field is written as the lanes are taken, not for lanes past the caller's stop.
  int32_t* shared = std::exchange(object.sharedError, nullptr);
  object.ierr = 0;
  if (int32_t number = engine.EvalBlock(formula, std::span(inputs, used), count, outcome)) {
    outcome.count = count;
    outcome.program = nullptr;
    std::fill(outcome.error, outcome.error + count, number);
    std::fill(outcome.objectError, outcome.objectError + count, 0);
  }
  object.ierr = 0;
  object.sharedError = shared;
}

void TryEvaluateBlock(ExpressionEngine& engine, Class1& object, std::string_view formula, const double* first,
                      const double* second, int32_t count, BlockOutcome& outcome, SurfaceVariables variables) noexcept {
  const BlockPoints points = variables == SurfaceVariables::XY ? BlockPoints{first, second, nullptr, nullptr}
                                                               : BlockPoints{nullptr, nullptr, first, second};
  TryEvaluateBlock(engine, object, formula, points, count, outcome);
}

int32_t TryEvaluateRun(ExpressionEngine& engine, Class1& object, std::string_view formula, const BlockPoints& points,
                       int32_t count, double* values) noexcept {
  BlockInput inputs[4];
  const size_t used = blockInputs(object, points, inputs);
  return engine.EvalRun(formula, std::span(inputs, used), count, values);
}

int32_t TakeLeadingPoints(ExpressionEngine& engine, Class1& object, const BlockOutcome& outcome, double* values,
                          int32_t& error) noexcept {
  error = 0;
  const int32_t good = FirstPointWithoutValue(outcome);
  std::copy(outcome.value, outcome.value + good, values);
  if (good == 0 && outcome.count > 0) {
    ReportBlockPoint(engine, object, outcome, 0);
    error = BlockPointError(outcome, 0);
    if (!error) error = err::Overflow;
  }
  return good;
}

void ReportBlockPoint(ExpressionEngine& engine, Class1& object, const BlockOutcome& outcome, int32_t lane) noexcept {
  if (outcome.program) engine.ReportBlockFault(outcome, lane);
  if (int32_t number = outcome.objectError[lane]) {
    object.ierr = number;
    if (object.sharedError) *object.sharedError = number;
  }
}

}  // namespace orvane
