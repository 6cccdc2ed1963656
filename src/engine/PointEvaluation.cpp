#include "engine/PointEvaluation.h"

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

}  // namespace orvane
