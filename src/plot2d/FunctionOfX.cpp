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

}  // namespace orvane
