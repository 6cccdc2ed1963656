#include "stereo/SurfaceSampler.h"

#include <cmath>
#include <limits>

#include "stereo/PartialDerivatives.h"

namespace orvane {

int32_t SurfaceSampler::TryExpressionAt(float a, float b, const std::string& expression, float& out) {
  if (stop_ != nullptr) stop_->poll();
  double value = 0;
  if (const int32_t e = evaluator_.tryEvaluate(expression, a, b, uv_.u, uv_.v, value)) return e;
  // Stored in single precision: what does not fit is an overflow.
  if (!std::isfinite(value) || std::fabs(value) > std::numeric_limits<float>::max())
    return err::Overflow;
  out = static_cast<float>(value);
  return 0;
}

int32_t SurfaceSampler::TrySurfacePoint(float a, float b, float& out) {
  if (settings_.selector == kSurfaceItself) return TryExpressionAt(a, b, settings_.equationZ, out);
  auto f = [this](float x, float y, float& z) { return TryExpressionAt(x, y, settings_.equationZ, z); };
  return TryPartialDerivative(settings_.selector, settings_.accuracy == kAccuracyHigh, a, b, f, out);
}

float SurfaceSampler::EvaluateExpressionAt(float a, float b, const std::string& expression) {
  float value = 0;
  if (const int32_t e = TryExpressionAt(a, b, expression, value)) throw RuntimeError(e);
  return value;
}

float SurfaceSampler::EvaluateSurfacePoint(float a, float b) {
  float value = 0;
  if (const int32_t e = TrySurfacePoint(a, b, value)) throw RuntimeError(e);
  return value;
}

int32_t SurfaceSampler::TrySample(float s, float t, Point3& out) {
  if (!settings_.parametric) {
    out.x = s;
    out.y = t;
    return TrySurfacePoint(s, t, out.z);
  }
  uv_.u = s;
  uv_.v = t;
  // y first, then x, then the height at that (x, y): the formulas see all four.
  if (const int32_t e = TryExpressionAt(s, t, settings_.equationY, out.y)) return e;
  if (const int32_t e = TryExpressionAt(s, t, settings_.equationX, out.x)) return e;
  return TrySurfacePoint(out.x, out.y, out.z);
}

}  // namespace orvane
