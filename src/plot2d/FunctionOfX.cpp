#include "plot2d/FunctionOfX.h"

#include <cmath>

#include "platform/RuntimeError.h"

namespace orvane {

FunctionOfX::~FunctionOfX() = default;

int32_t FunctionOfX::tryEval(double x, double& y) {
  try {
    y = (*this)(x);
  } catch (const RuntimeError& e) {
    return e.number();
  }
  return std::isfinite(y) ? 0 : err::Overflow;
}

int32_t FunctionOfX::tryEvalBlock(const double* xs, int32_t n, double* ys, int32_t& error) {
  error = n > 0 ? tryEval(xs[0], ys[0]) : 0;
  return n > 0 && !error ? 1 : 0;
}

}  // namespace orvane
