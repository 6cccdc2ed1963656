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

  // tryEvaluate at leading points of (x[i], y[i], u[i], v[i]), i < n, in order: returns
  // how many have their values in `values`, at least one unless the first point fails.
  // Only then (0, with n > 0) does `error` hold its number, as tryEvaluate would have
  // given and reported it; a failure further on is left to the next call, which starts
  // there. A value that is not finite may count as a failure (overflow). This one takes
  // a single point; an engine that evaluates whole blocks takes them all.
  virtual int32_t tryEvaluateBlock(std::string_view formula, const double* x, const double* y, const double* u,
                                   const double* v, int32_t n, double* values, int32_t& error) {
    error = n > 0 ? tryEvaluate(formula, x[0], y[0], u[0], v[0], values[0]) : 0;
    return n > 0 && !error ? 1 : 0;
  }
};

}  // namespace orvane
