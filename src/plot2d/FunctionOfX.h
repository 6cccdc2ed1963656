#pragma once
// How the study routines reach the formula f(x): one point at a time. The window adapts
// its expression engine to this; tests use plain lambdas.

#include <cstdint>
#include <functional>

namespace orvane {

class FunctionOfX {
 public:
  virtual ~FunctionOfX();

  // The value at x; a formula or math-object failure throws RuntimeError with its number.
  virtual double operator()(double x) = 0;

  // The same without throwing: 0 and the value in y, or the error number. A value that
  // is not finite counts as an overflow (6), as it would in the formula itself.
  virtual int32_t tryEval(double x, double& y);
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
