#pragma once
// Floating-point arithmetic that fails the way the program's numbers always have: a
// division by zero is error 11, zero by zero and any result out of range are error 6.

#include <cmath>

#include "platform/RuntimeError.h"

namespace orvane::checked {

template <typename T>
inline T value(T v) {
  if (!std::isfinite(v)) throw RuntimeError(err::Overflow);
  return v;
}

template <typename T>
inline T div(T a, T b) {
  if (b == 0) throw RuntimeError(a == 0 || std::isnan(a) ? err::Overflow : err::DivisionByZero);
  return value(a / b);
}

}  // namespace orvane::checked
