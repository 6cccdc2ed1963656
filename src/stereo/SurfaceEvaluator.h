#pragma once
// How the stereo routines reach the formulas the user typed. The window adapts its
// expression engine to this: set the math object's x, y, u and v, clear its error
// field, evaluate, and turn a non-zero error field into an error of that number.

#include <cstdint>
#include <string_view>

#include "platform/RuntimeError.h"

namespace orvane {

class SurfaceEvaluator {
 public:
  virtual ~SurfaceEvaluator() = default;

  // The formula's value at the point; RuntimeError when it has none there (an engine
  // error or the math object's error field).
  virtual double evaluate(std::string_view formula, double x, double y, double u, double v) = 0;

  // The same for sampling loops: 0 and the value, or the error number. An engine with a
  // non-throwing path overrides it; the observable result is the same.
  virtual int32_t tryEvaluate(std::string_view formula, double x, double y, double u, double v,
                              double& value) {
    try {
      value = evaluate(formula, x, y, u, v);
      return 0;
    } catch (const RuntimeError& e) {
      return e.number() != 0 ? e.number() : err::InvalidCall;
    }
  }
};

}  // namespace orvane
