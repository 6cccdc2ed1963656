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

int32_t SurfaceSampler::TryHeightBlock(const float* x, const float* y, const double* u, const double* v, int32_t n,
                                       float* out, int32_t& error) {
  double a[kBlock], b[kBlock];
  if (settings_.selector == kSurfaceItself) {
    std::copy(x, x + n, a);
    std::copy(y, y + n, b);
    return TryExpressionBlock(settings_.equationZ, a, b, u, v, n, out, error);
  }
  // A partial derivative: the points each difference asks for do not depend on the
  // values, so they are listed first (as many whole stencils as a block holds), taken
  // as one block, and the differences then replayed on those values in order.
  const bool high = settings_.accuracy == kAccuracyHigh;
  double pu[kBlock], pv[kBlock];
  int32_t points = 0, samples = 0;
  for (; samples < n; ++samples) {
    const int32_t before = points;
    bool fits = true;
    float unused = 0;
    TryPartialDerivative(settings_.selector, high, x[samples], y[samples],
                         [&](float pa, float pb, float& z) {
                           if (points == kBlock) return fits = false, err::Overflow;
                           a[points] = pa;
                           b[points] = pb;
                           pu[points] = u[samples];
                           pv[points++] = v[samples];
                           return z = 0, 0;
                         },
                         unused);
    if (!fits) {
      points = before;
      break;
    }
  }
  float values[kBlock];
  const int32_t got = TryExpressionBlock(settings_.equationZ, a, b, pu, pv, points, values, error);
  if (got == 0) return 0;  // the first sample's first point failed, and was reported
  int32_t next = 0;
  for (int32_t i = 0; i < samples; ++i) {
    bool complete = true;
    const int32_t e = TryPartialDerivative(settings_.selector, high, x[i], y[i],
                                           [&](float, float, float& z) {
                                             if (next == got) return complete = false, err::Overflow;
                                             return z = values[next++], 0;
                                           },
                                           out[i]);
    if (!complete) {  // a later point failed: met again in order by the next block...
      if (i > 0) return i;
      // ... unless it belongs to the first sample, which is then taken point by point.
      error = TrySurfacePoint(x[0], y[0], out[0]);
      return error ? 0 : 1;
    }
    if (e) {
      if (i == 0) error = e;
      return i;
    }
  }
  return samples;
}

int32_t SurfaceSampler::TrySamples(const float* s, const float* t, int32_t n, Point3* out, int32_t& error) {
  error = 0;
  if (n <= 0) return 0;
  n = std::min(n, kBlock);
  if (stop_ != nullptr) n = stop_->poll(n);
  float xs[kBlock], ys[kBlock], zs[kBlock];
  double us[kBlock], vs[kBlock];
  if (!settings_.parametric) {
    std::fill(us, us + n, double(uv_.u));
    std::fill(vs, vs + n, double(uv_.v));
    n = TryHeightBlock(s, t, us, vs, n, zs, error);
    for (int32_t i = 0; i < n; ++i) out[i] = {s[i], t[i], zs[i]};
    return n;
  }
  // y, then x, then the height there, each over the samples the previous one gave
  // values for: a failure is still met in the order of the samples.
  std::copy(s, s + n, us);
  std::copy(t, t + n, vs);
  n = TryExpressionBlock(settings_.equationY, us, vs, us, vs, n, ys, error);
  if (n > 0) n = TryExpressionBlock(settings_.equationX, us, vs, us, vs, n, xs, error);
  if (n > 0) {
    uv_.u = s[0];  // where a sample is taken point by point
    uv_.v = t[0];
    n = TryHeightBlock(xs, ys, us, vs, n, zs, error);
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
