#pragma once
// How the study routines reach the formula f(x): one point at a time. The window adapts
// its expression engine to this; tests use plain lambdas.

#include <cstdint>
#include <functional>

namespace orvane {

// Points worth passing to tryEvalBlock at once: enough for an engine to share them out
// over the machine's cores, few enough to stay in the second-level cache.
constexpr int32_t EvaluationRunPoints = 1 << 14;

class FunctionOfX {
 public:
  virtual ~FunctionOfX();

  // The value at x; a formula or math-object failure throws RuntimeError with its number.
  virtual double operator()(double x) = 0;

  // The same without throwing: 0 and the value in y, or the error number. A value that
  // is not finite counts as an overflow (6), as it would in the formula itself.
  virtual int32_t tryEval(double x, double& y);

  // tryEval at leading points of xs[0..n), in order: returns how many have their values
  // in ys, at least one unless the first point fails. Only then (0, with n > 0) does
  // `error` hold its number, as tryEval would have given and reported it; a failure
  // further on is left to the next call, which starts there. This one takes a single
  // point; a function that evaluates whole blocks at once takes them all.
  virtual int32_t tryEvalBlock(const double* xs, int32_t n, double* ys, int32_t& error);
};

// A FunctionOfX over any callable (the callable may throw RuntimeError).
class LambdaFunction final : public FunctionOfX {
 public:
  explicit LambdaFunction(std::function<double(double)> fn) : fn_(std::move(fn)) {}
  double operator()(double x) override { return fn_(x); }

 private:
  std::function<double(double)> fn_;
};

}  // namespace orvane
