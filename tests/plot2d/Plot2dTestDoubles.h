#pragma once
// Test doubles for the 2-D routines: a formula that fails where a real one would, a function
// with the evaluator the routines take, and a recording picture that can save a stand-in file.

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
