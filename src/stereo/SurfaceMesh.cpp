#include "stereo/SurfaceMesh.h"

#include <chrono>
#include <limits>

namespace orvane {

namespace {

// One curve: `count` + 1 samples, the running position starting one step before `start`
// and stepped before each sample. The pen goes up at every sample without value.
bool traceCurve(SurfaceSampler& sampler, MeshPointSink sink, bool alongY, float fixed, float start,
                float step, int32_t count) {
  bool penDown = false;
  float running = start - step;
  for (int32_t k = 0; k <= count; ++k) {
    running += step;
    Point3 p;
    const int32_t e = alongY ? sampler.TrySample(fixed, running, p) : sampler.TrySample(running, fixed, p);
    if (e != 0) {
      penDown = false;
      continue;
    }
    if (!sink(p, penDown)) return false;
    penDown = true;
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
  for (int32_t k = 1; k <= s.ndots; ++k) {
    const float r1 = random.next();
    const float a = r1 * (s.rangegxu - s.rangelxu) + s.rangelxu;
    const float r2 = random.next();
    const float b = r2 * (s.rangegyv - s.rangelyv) + s.rangelyv;
    Point3 p;
    if (sampler.TrySample(a, b, p) != 0) continue;
    if (!sink(p)) return;
  }
}

}  // namespace orvane
