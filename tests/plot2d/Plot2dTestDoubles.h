#pragma once
// Test doubles for the 2-D routines: formulas that fail where real ones would, a function
// that logs where it was evaluated, a function with the evaluator the routines take, and
// a recording picture that can save a stand-in file.

#include <cmath>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "platform/RecordingCanvas.h"
#include "platform/RuntimeError.h"
#include "plot2d/Derivatives.h"
#include "plot2d/FunctionOfX.h"

namespace orvane::testing {

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

// f(x) and its evaluator in one, for routines that take the evaluator.
struct Evaluated {
  explicit Evaluated(std::function<double(double)> fn) : f(std::move(fn)) {}
  Evaluated(const Evaluated&) = delete;  // d would read the other's f
  LambdaFunction f;
  DerivativeEvaluator d{f};
};

inline double reciprocal(double x) {
  if (x == 0) throw RuntimeError(err::DivisionByZero);
  return 1 / x;
}

inline double squareRoot(double x) {
  if (x < 0) throw RuntimeError(err::InvalidCall);
  return std::sqrt(x);
}

// 200 x 150 pixels; saving writes "BM" so that the caller can move the file into place.
class PictureLog final : public RecordingCanvas {
 public:
  PictureLog() : RecordingCanvas(200, 150) {}
  bool SavePicture(const std::string& path) const override {
    saved.push_back(path);
    if (saveSucceeds) std::ofstream(path, std::ios::binary) << "BM";
    return saveSucceeds;
  }
  mutable std::vector<std::string> saved;
  bool saveSucceeds = true;
};

}  // namespace orvane::testing
