#include "stereo/SurfaceSampler.h"

#include <algorithm>
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

int32_t SurfaceSampler::TryExpressionBlock(const std::string& expression, const double* x, const double* y,
                                           const double* u, const double* v, int32_t n, float* out,
                                           int32_t& error) {
  double values[kBlock];
  int32_t taken = evaluator_.tryEvaluateBlock(expression, x, y, u, v, std::min(n, kBlock), values, error);
  for (int32_t i = 0; i < taken; ++i) {
    // Stored in single precision: what does not fit is an overflow.
    if (!std::isfinite(values[i]) || std::fabs(values[i]) > std::numeric_limits<float>::max()) {
      if (i == 0) error = err::Overflow;
      return i;
    }
    out[i] = static_cast<float>(values[i]);
  }
  return taken;
}

int32_t SurfaceSampler::TrySamples(const float* s, const float* t, int32_t n, Point3* out, int32_t& error) {
  error = 0;
  if (n <= 0) return 0;
  if (settings_.selector != kSurfaceItself) {
    error = TrySample(s[0], t[0], out[0]);
    return error ? 0 : 1;
  }
  n = std::min(n, kBlock);
  if (stop_ != nullptr) n = stop_->poll(n);
  double a[kBlock], b[kBlock];
  for (int32_t i = 0; i < n; ++i) {
    a[i] = s[i];
    b[i] = t[i];
  }
  float xs[kBlock], ys[kBlock], zs[kBlock];
  if (!settings_.parametric) {
    const double u = uv_.u, v = uv_.v;
    double us[kBlock], vs[kBlock];
    std::fill(us, us + n, u);
    std::fill(vs, vs + n, v);
    n = TryExpressionBlock(settings_.equationZ, a, b, us, vs, n, zs, error);
    for (int32_t i = 0; i < n; ++i) out[i] = {s[i], t[i], zs[i]};
    return n;
  }
  // y, then x, then the height there, each formula over the samples the previous one
  // gave values for: a failure is still met in the order of the samples.
  n = TryExpressionBlock(settings_.equationY, a, b, a, b, n, ys, error);
  if (n > 0) {
    n = TryExpressionBlock(settings_.equationX, a, b, a, b, n, xs, error);
    if (n > 0) {
      double x[kBlock], y[kBlock];
      for (int32_t i = 0; i < n; ++i) {
        x[i] = xs[i];
        y[i] = ys[i];
      }
      n = TryExpressionBlock(settings_.equationZ, x, y, a, b, n, zs, error);
    }
  }
  // The last sample taken (or failed) leaves its u and v, as TrySample does.
  const int32_t last = std::max(n, 1) - 1;
  uv_.u = s[last];
  uv_.v = t[last];
  for (int32_t i = 0; i < n; ++i) out[i] = {xs[i], ys[i], zs[i]};
  return n;
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
