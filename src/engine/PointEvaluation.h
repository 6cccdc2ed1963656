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
double EvaluateAt(ExpressionEngine& engine, Class1& object, std::string_view formula, double x);
double EvaluateAt(ExpressionEngine& engine, Class1& object, std::string_view formula, double first,
                  double second, SurfaceVariables variables = SurfaceVariables::XY);

// The same without exceptions, for sampling loops: 0 and the value, else the error
// number (the engine's handler has seen engine errors; ierr errors are not its own).
int32_t TryEvaluateAt(ExpressionEngine& engine, Class1& object, std::string_view formula, double x,
                      double& result) noexcept;
int32_t TryEvaluateAt(ExpressionEngine& engine, Class1& object, std::string_view formula, double first,
                      double second, double& result, SurfaceVariables variables = SurfaceVariables::XY) noexcept;

}  // namespace orvane
