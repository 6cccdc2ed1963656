#include "stereo/SurfaceMesh.h"

#include <algorithm>
#include <chrono>
#include <limits>

namespace orvane {

namespace {

constexpr int32_t kBlock = 256;

// Samples (s[i], t[i]), i < n, taken in order a block at a time: `take` gets each sample
// with its point, or without one (nullptr), and returns false to end there. After a
// sample without value the blocks grow again from one sample, as such samples come in runs.
template <class Take>
bool takeSamples(SurfaceSampler& sampler, const float* s, const float* t, int32_t n, Take take) {
  int32_t run = kBlock;
  Point3 points[kBlock];
  for (int32_t i = 0; i < n;) {
    int32_t error = 0;
    const int32_t taken = sampler.TrySamples(s + i, t + i, std::min(run, n - i), points, error);
    if (taken == 0) {
      run = 1;
      if (!take(i++, nullptr)) return false;
      continue;
    }
    run = std::min(run * 2, kBlock);
    for (int32_t k = 0; k < taken; ++k, ++i)
      if (!take(i, &points[k])) return false;
  }
  return true;
}

// One curve: `count` + 1 samples, the running position starting one step before `start`
// and stepped before each sample. The pen goes up at every sample without value.
bool traceCurve(SurfaceSampler& sampler, MeshPointSink sink, bool alongY, float fixed, float start,
                float step, int32_t count) {
  bool penDown = false;
  float running = start - step;
  float s[kBlock], t[kBlock];
  auto take = [&](int32_t, const Point3* p) {
    if (p == nullptr) {
      penDown = false;
      return true;
    }
    if (!sink(*p, penDown)) return false;
    penDown = true;
    return true;
  };
  for (int64_t k = 0; k <= count;) {
    const int32_t m = static_cast<int32_t>(std::min<int64_t>(kBlock, int64_t(count) + 1 - k));
    for (int32_t i = 0; i < m; ++i) {
      running += step;
      s[i] = alongY ? fixed : running;
      t[i] = alongY ? running : fixed;
    }
    if (!takeSamples(sampler, s, t, m, take)) return false;
    k += m;
  }
  return true;
}

bool samplesPerCurve(int32_t spaces, int32_t segs, int32_t& count) {
  const int64_t n = static_cast<int64_t>(spaces) * segs;
  if (n > std::numeric_limits<int32_t>::max() || n < std::numeric_limits<int32_t>::min()) return false;
  count = static_cast<int32_t>(n);
  return true;
}

}  // namespace

bool TraceMesh(const StereoSettings& s, SurfaceSampler& sampler, MeshPointSink sink,
               const std::function<void()>& pump) {
  int32_t alongY = 0, alongX = 0;
  if (!samplesPerCurve(s.spaceyv, s.segsyv, alongY) || !samplesPerCurve(s.spacexu, s.segsxu, alongX))
    return false;

  // Curves of constant x (u).
  float x = s.rangelxu - s.drxu;
  for (int32_t i = 0; i <= s.spacexu; ++i) {
    x += s.drxu;
    if (!traceCurve(sampler, sink, true, x, s.rangelyv, s.stepyv, alongY)) return false;
  }
  if (pump) pump();
  // Curves of constant y (v).
  float y = s.rangelyv - s.dryv;
  for (int32_t j = 0; j <= s.spaceyv; ++j) {
    y += s.dryv;
    if (!traceCurve(sampler, sink, false, y, s.rangelxu, s.stepxu, alongX)) return false;
  }
  return true;
}

uint32_t DotGenerator::SeedFromTimer() {
  const auto ticks = std::chrono::system_clock::now().time_since_epoch().count();
  return static_cast<uint32_t>(ticks ^ (ticks >> 32));
}

void TraceDots(const StereoSettings& s, SurfaceSampler& sampler, DotGenerator& random,
               FunctionRef<bool(const Point3& point)> sink) {
  float a[kBlock], b[kBlock];
  for (int32_t k = 1; k <= s.ndots;) {
    // The samples of a block are drawn from a copy of the generator; the window's own
    // one moves on by the samples taken, so the next plot continues where these ended.
    DotGenerator ahead = random;
    const int32_t m = static_cast<int32_t>(std::min<int64_t>(kBlock, int64_t(s.ndots) - k + 1));
    for (int32_t i = 0; i < m; ++i) {
      const float r1 = ahead.next();
      a[i] = r1 * (s.rangegxu - s.rangelxu) + s.rangelxu;
      const float r2 = ahead.next();
      b[i] = r2 * (s.rangegyv - s.rangelyv) + s.rangelyv;
    }
    int32_t taken = 0;
    const bool more = takeSamples(sampler, a, b, m, [&](int32_t i, const Point3* p) {
      taken = i + 1;
      return p == nullptr || sink(*p);
    });
    if (taken == m) {
      random = ahead;
    } else {
      for (int32_t i = 0; i < 2 * taken; ++i) random.next();
    }
    if (!more) return;
    k += m;
  }
}

}  // namespace orvane
