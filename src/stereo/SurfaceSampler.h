#pragma once
// One point of the surface being plotted: the single evaluation primitive, the height
// (the surface itself or the selected partial derivative) and, in parametric mode, the
// mapping of a sample (u, v) through x(u,v), y(u,v), z(u,v).

#include <cstdint>
#include <string>

#include "platform/StopCheck.h"
#include "stereo/StereoSettings.h"
#include "stereo/SurfaceEvaluator.h"
#include "stereo/ViewTransform.h"

namespace orvane {

// The current u and v the formulas see. They belong to the window and keep the values
// of the last parametric sample between plots.
struct SurfaceParameters {
  float u = 0, v = 0;
};

class SurfaceSampler {
 public:
  // Each evaluation polls `stop` first (none: never stops), which throws
  // WorkInterrupted once its owner says stop.
  SurfaceSampler(const StereoSettings& settings, SurfaceEvaluator& evaluator, SurfaceParameters& uv,
                 StopCheck* stop = nullptr)
      : settings_(settings), evaluator_(evaluator), uv_(uv), stop_(stop) {}

  // The expression with x = a, y = b and the current u, v, in single precision.
  // RuntimeError when it has no value there.
  float EvaluateExpressionAt(float a, float b, const std::string& expression);
  // The height of the surface shown: the surface itself, or its selected derivative.
  float EvaluateSurfacePoint(float a, float b);

  // Non-throwing forms for sampling loops: 0 and the value, or the error number.
  int32_t TryExpressionAt(float a, float b, const std::string& expression, float& out);
  int32_t TrySurfacePoint(float a, float b, float& out);

  // The point of the sample (s, t): (s, t, height) in explicit mode; in parametric mode
  // u = s and v = t, then y(u,v), x(u,v) and the height at that x and y. Non-zero when
  // the point has no value.
  int32_t TrySample(float s, float t, Point3& out);

  // TrySample at leading samples of (s[i], t[i]), i < n, in order: returns how many have
  // their points in `out`, at least one unless the first sample fails; only then (0,
  // with n > 0) does `error` hold its number. A failure further on is left to the next
  // call, which starts there.
  int32_t TrySamples(const float* s, const float* t, int32_t n, Point3* out, int32_t& error);

 private:
  static constexpr int32_t kBlock = 256;
  // One formula at leading points, its values in single precision as TryExpressionAt
  // keeps them.
  int32_t TryExpressionBlock(const std::string& expression, const double* x, const double* y, const double* u,
                             const double* v, int32_t n, float* out, int32_t& error);
  // The height shown (the surface or its selected derivative) at leading points.
  int32_t TryHeightBlock(const float* x, const float* y, const double* u, const double* v, int32_t n, float* out,
                         int32_t& error);

  const StereoSettings& settings_;
  SurfaceEvaluator& evaluator_;
  SurfaceParameters& uv_;
  StopCheck* stop_;
};

}  // namespace orvane
