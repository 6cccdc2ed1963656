#pragma once
// The one way numerical routines reach a formula: put the point into the math object,
// clear its error field, evaluate, and turn an error the math object recorded into a
// raised error of the caller.

#include <cstdint>
#include <string_view>

#include "engine/Class1.h"
#include "engine/ExpressionEngine.h"

namespace orvane {

// Window-load registration: the object as "sh" with its members global, then the
// statements that set halfpi, pi and e inside it.
void RegisterMathObject(ExpressionEngine& engine, Class1& object);

// Which pair of the math object's variables a surface formula uses.
enum class SurfaceVariables { XY, UV };

// The formula's value at x; RuntimeError from the engine or with the number in ierr.
// Inline, as is the engine's repeated-text path: a sampling loop then makes one call
// per point, into the evaluator.
[[noreturn]] void RaiseObjectError(const Class1& object);

inline double EvaluateAt(ExpressionEngine& engine, Class1& object, std::string_view formula, double x) {
  object.x = x;
  object.ierr = 0;
  double value = engine.Eval(formula);
  if (object.ierr != 0) [[unlikely]]
    RaiseObjectError(object);
  return value;
}

inline double EvaluateAt(ExpressionEngine& engine, Class1& object, std::string_view formula, double first,
                         double second, SurfaceVariables variables = SurfaceVariables::XY) {
  if (variables == SurfaceVariables::XY) {
    object.x = first;
    object.y = second;
  } else {
    object.u = first;
    object.v = second;
  }
  object.ierr = 0;
  double value = engine.Eval(formula);
  if (object.ierr != 0) [[unlikely]]
    RaiseObjectError(object);
  return value;
}

// The same without exceptions, for sampling loops: 0 and the value, else the error
// number (the engine's handler has seen engine errors; ierr errors are not its own).
int32_t TryEvaluateAt(ExpressionEngine& engine, Class1& object, std::string_view formula, double x,
                      double& result) noexcept;
int32_t TryEvaluateAt(ExpressionEngine& engine, Class1& object, std::string_view formula, double first,
                      double second, double& result, SurfaceVariables variables = SurfaceVariables::XY) noexcept;

// The math object's variables that take one value per point; the others keep theirs.
struct BlockPoints {
  const double* x = nullptr;
  const double* y = nullptr;
  const double* u = nullptr;
  const double* v = nullptr;
};

// The formula at `count` (at most BlockLanes) points at once. Each lane of `outcome` is
// what TryEvaluateAt would give at its point; nothing is reported and no error field is
// written until the caller takes a failing lane with ReportBlockPoint.
void TryEvaluateBlock(ExpressionEngine& engine, Class1& object, std::string_view formula, const BlockPoints& points,
                      int32_t count, BlockOutcome& outcome) noexcept;

// The same with `first` as x, or x and `second` as y, or u and v.
void TryEvaluateBlock(ExpressionEngine& engine, Class1& object, std::string_view formula, const double* first,
                      const double* second, int32_t count, BlockOutcome& outcome,
                      SurfaceVariables variables = SurfaceVariables::XY) noexcept;

// The formula at `count` points, any number, spread over the machine's cores where it
// can be (ExpressionEngine::EvalRun): the leading points with a finite value go to
// `values`, and their count is returned. Nothing is reported; the caller takes the
// first point without value through a block of its own (TryEvaluateBlock). 0 when the
// formula is not the one evaluated last or cannot be spread.
int32_t TryEvaluateRun(ExpressionEngine& engine, Class1& object, std::string_view formula, const BlockPoints& points,
                       int32_t count, double* values) noexcept;

// A lane's error number as TryEvaluateAt gives it: the engine's, else the math object's.
inline int32_t BlockPointError(const BlockOutcome& outcome, int32_t lane) {
  return outcome.error[lane] ? outcome.error[lane] : outcome.objectError[lane];
}

// The leading lanes with finite values, as a sampling loop takes them: copied to
// `values` and counted. When the first lane has none, it is reported (ReportBlockPoint)
// and its number is in `error`, Overflow for a value that is not finite; a later lane
// without value is left for a block that starts there.
int32_t TakeLeadingPoints(ExpressionEngine& engine, Class1& object, const BlockOutcome& outcome, double* values,
                          int32_t& error) noexcept;

// What evaluating the lane's point alone would have left: the error event for an engine
// error, ierr and the shared error field for a math-object failure.
void ReportBlockPoint(ExpressionEngine& engine, Class1& object, const BlockOutcome& outcome, int32_t lane) noexcept;

}  // namespace orvane
