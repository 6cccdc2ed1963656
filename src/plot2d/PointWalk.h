#pragma once
// The points of a walk in equal steps (the scans' grid, the curve's abscissas) and a
// function's values there, evaluated a block ahead of the walker. The points are the
// same whatever the walker does between two of them, so their values can be taken
// before they are needed; a point that fails is met, and its error reported, only when
// the walker asks for its value.

#include <cstdint>
#include <functional>
#include <memory>

#include "plot2d/FunctionOfX.h"

namespace orvane {

// A function over a block of points, as DerivativeEvaluator::f(xs, n, ys) takes it:
// how many leading values it gave, throwing the first point's error when that fails.
using BlockFunction = std::function<int32_t(const double* xs, int32_t n, double* ys)>;

class PointWalk {
 public:
  // Before: the walk ends before the first point at or past `end`. Past: it goes on
  // beyond it, one block of evaluations reaching no further than the first point past it.
  enum class End { Before, Past };

  // The points are first, first + step, ... each one the previous plus step.
  PointWalk(const BlockFunction& g, double first, double step, double end, End rule)
      : g_(g), step_(step), end_(end), rule_(rule), last_(first - step) {}

  // Moves to the next point; false at the end of the walk (or when the points no
  // longer move).
  bool next(double& x) {
    if (++at_ >= filled_ && !fill()) return false;
    x = xs_[at_];
    return true;
  }

  // The function at the current point; throws its error (RuntimeError, or
  // WorkInterrupted from the stop check).
  double value() {
    if (at_ >= ready_) evaluate();
    return ys_[at_];
  }

  // Passes the points just ahead whose values are already at hand and lie strictly on
  // the side of zero `side` gives (1 above, -1 below), to the last of them: a scan's
  // long stretches without a change of sign then cost a compare a point.
  void passSameSide(int side) {
    int32_t i = at_ + 1;
    if (side > 0)
      while (i < ready_ && ys_[i] > 0) ++i;
    else
      while (i < ready_ && ys_[i] < 0) ++i;
    at_ = i - 1;
  }

 private:
  static constexpr int32_t kRun = EvaluationRunPoints;
  bool fill();
  void evaluate();

  const BlockFunction& g_;
  const double step_;
  const double end_;
  const End rule_;
  double last_;  // the last point filled
  int32_t at_ = -1, filled_ = 0, ready_ = 0;
  int32_t run_ = kRun;  // how many points the next evaluation takes
  // Left uninitialised: a short walk (a curve across the picture) touches few of them.
  std::unique_ptr<double[]> xs_{new double[kRun]}, ys_{new double[kRun]};
};

}  // namespace orvane
