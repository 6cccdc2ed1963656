#pragma once
// Sampling the surface for drawing: the mesh of curves of constant x (u) and constant y
// (v) with its pen logic, and the random dots.

#include <cstdint>
#include <functional>
#include <random>

#include "stereo/PartialDerivatives.h"
#include "stereo/StereoSettings.h"
#include "stereo/SurfaceSampler.h"
#include "stereo/ViewTransform.h"

namespace orvane {

// Receives each valid sample of a mesh curve: with `penDown` false it only sets the pen
// position (first point of a curve or of a piece after a gap), with `penDown` true it is
// joined to the pen position. Returning false ends the mesh there.
using MeshPointSink = FunctionRef<bool(const Point3& point, bool penDown)>;

// Walks the mesh: first the spacexu + 1 curves of constant x (u), each sampled at
// spaceyv * segsyv + 1 points, then the curves of constant y (v) likewise. Positions are
// accumulated by repeated single-precision addition. An invalid sample lifts the pen.
// `pump` is called once between the two families. Returns false when the sink ended it
// or a sample count does not fit 32 bits.
bool TraceMesh(const StereoSettings& settings, SurfaceSampler& sampler, MeshPointSink sink,
               const std::function<void()>& pump);

// The random numbers of the dots, uniform in [0, 1). Seeded once when the window loads;
// each plot continues the sequence.
class DotGenerator {
 public:
  explicit DotGenerator(uint32_t seed) : engine_(seed) {}
  float next() { return static_cast<float>(engine_() >> 8) * (1.0f / 16777216.0f); }
  // A seed from the system timer.
  static uint32_t SeedFromTimer();

 private:
  std::mt19937 engine_;
};

// Draws `ndots` random samples of the parameter rectangle (x then y, or u then v, from
// two successive numbers of the generator). A sample without value still counts.
// Each valid point goes to `sink`; returning false ends the dots there.
void TraceDots(const StereoSettings& settings, SurfaceSampler& sampler, DotGenerator& random,
               FunctionRef<bool(const Point3& point)> sink);

}  // namespace orvane
