#pragma once
// Test doubles for the 2-D study routines: formulas as lambdas, failing where a real
// formula would (poles, square roots of negatives), and a log of the points asked for.

#include <cmath>
#include <functional>
#include <vector>

#include "platform/RuntimeError.h"
#include "plot2d/FunctionOfX.h"

namespace orvane::testing {

// f with a log of every x it was evaluated at.
class LoggedFunction final : public FunctionOfX {
 public:
  explicit LoggedFunction(std::function<double(double)> fn) : fn_(std::move(fn)) {}
  double operator()(double x) override {
    calls.push_back(x);
    return fn_(x);
  }
  std::vector<double> calls;

 private:
  std::function<double(double)> fn_;
};

inline double reciprocal(double x) {
  if (x == 0) throw RuntimeError(err::DivisionByZero);
  return 1 / x;
}

inline double squareRoot(double x) {
  if (x < 0) throw RuntimeError(err::InvalidCall);
  return std::sqrt(x);
}

}  // namespace orvane::testing
