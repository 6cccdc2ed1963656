#include "stereo/PartialDerivatives.h"

#include <cmath>
#include <limits>

#include "platform/RuntimeError.h"
#include "stereo/StereoSettings.h"

namespace orvane {

namespace {

using namespace pdstep;

// Evaluates f at the listed points in order, stopping at the first failure; the
// values are kept as doubles for the formula's arithmetic.
template <size_t N>
int32_t sample(HeightFunction f, const float (&a)[N], const float (&b)[N], double (&z)[N]) {
  for (size_t i = 0; i < N; ++i) {
    float value = 0;
    if (const int32_t e = f(a[i], b[i], value)) return e;
    z[i] = value;
  }
  return 0;
}

int32_t store(double value, float& out) {
  if (!std::isfinite(value) || std::fabs(value) > std::numeric_limits<float>::max())
    return err::Overflow;
  out = static_cast<float>(value);
  return 0;
}

// Five-point first difference along x; f evaluated at x-h, x+h, x+2h, x-2h.
int32_t zx5(HeightFunction f, float x, float y, float& out) {
  double z[4];
  if (const int32_t e = sample(f, {x - h, x + h, x + h2, x - h2}, {y, y, y, y}, z)) return e;
  return store((z[3] - 8 * z[0] + 8 * z[1] - z[2]) / h12, out);
}

int32_t zy5(HeightFunction f, float x, float y, float& out) {
  double z[4];
  if (const int32_t e = sample(f, {x, x, x, x}, {y - h, y + h, y + h2, y - h2}, z)) return e;
  return store((z[3] - 8 * z[0] + 8 * z[1] - z[2]) / h12, out);
}

// Five-point second difference; f evaluated at -h, 0, +h, +2h, -2h.
int32_t zxx5(HeightFunction f, float x, float y, float& out) {
  double z[5];
  if (const int32_t e = sample(f, {x - h, x, x + h, x + h2, x - h2}, {y, y, y, y, y}, z)) return e;
  return store((-z[4] + 16 * z[0] - 30 * z[1] + 16 * z[2] - z[3]) / hh12, out);
}

int32_t zyy5(HeightFunction f, float x, float y, float& out) {
  double z[5];
  if (const int32_t e = sample(f, {x, x, x, x, x}, {y - h, y, y + h, y + h2, y - h2}, z)) return e;
  return store((-z[4] + 16 * z[0] - 30 * z[1] + 16 * z[2] - z[3]) / hh12, out);
}

// Five-point difference in y of five-point Zx, taken at y-h, y+h, y+2h, y-2h.
int32_t zxy5(HeightFunction f, float x, float y, float& out) {
  const float ys[4] = {y - h, y + h, y + h2, y - h2};
  double zx[4];
  for (int i = 0; i < 4; ++i) {
    float value = 0;
    if (const int32_t e = zx5(f, x, ys[i], value)) return e;
    zx[i] = value;
  }
  return store((zx[3] - 8 * zx[0] + 8 * zx[1] - zx[2]) / h12, out);
}

// Three-point formulas.
int32_t zx3(HeightFunction f, float x, float y, float& out) {
  double z[2];
  if (const int32_t e = sample(f, {x - h, x + h}, {y, y}, z)) return e;
  return store((z[1] - z[0]) / h2, out);
}

int32_t zy3(HeightFunction f, float x, float y, float& out) {
  double z[2];
  if (const int32_t e = sample(f, {x, x}, {y - h, y + h}, z)) return e;
  return store((z[1] - z[0]) / h2, out);
}

// The second differences step by 2h, not h.
int32_t zxx3(HeightFunction f, float x, float y, float& out) {
  double z[3];
  if (const int32_t e = sample(f, {x - h2, x, x + h2}, {y, y, y}, z)) return e;
  return store((z[0] - 2 * z[1] + z[2]) / h4sq, out);
}

int32_t zyy3(HeightFunction f, float x, float y, float& out) {
  double z[3];
  if (const int32_t e = sample(f, {x, x, x}, {y - h2, y, y + h2}, z)) return e;
  return store((z[0] - 2 * z[1] + z[2]) / h4sq, out);
}

// Corners in the order (-h,-h), (-h,+h), (+h,-h), (+h,+h).
int32_t zxy3(HeightFunction f, float x, float y, float& out) {
  double z[4];
  if (const int32_t e = sample(f, {x - h, x - h, x + h, x + h}, {y - h, y + h, y - h, y + h}, z))
    return e;
  return store((z[0] + z[3] - z[1] - z[2]) / h4sq, out);
}

}  // namespace

int32_t TryPartialDerivative(int selector, bool high, float x, float y, HeightFunction f,
                             float& out) {
  switch (selector) {
    case kZx: return high ? zx5(f, x, y, out) : zx3(f, x, y, out);
    case kZy: return high ? zy5(f, x, y, out) : zy3(f, x, y, out);
    case kZxx: return high ? zxx5(f, x, y, out) : zxx3(f, x, y, out);
    case kZyy: return high ? zyy5(f, x, y, out) : zyy3(f, x, y, out);
    case kZxy: return high ? zxy5(f, x, y, out) : zxy3(f, x, y, out);
    default: return err::InvalidCall;
  }
}

}  // namespace orvane
