#include "stereo/ViewControls.h"

#include <array>
#include <cmath>
#include <limits>

#include "platform/NumberText.h"

namespace orvane {

namespace {

struct Window {
  float lx, gx, ly, gy, lz, gz;
};

bool fitsSingle(double v) { return std::isfinite(v) && std::fabs(v) <= std::numeric_limits<float>::max(); }

bool allFinite(const Window& w) {
  for (float v : {w.lx, w.gx, w.ly, w.gy, w.lz, w.gz})
    if (!std::isfinite(v)) return false;
  return true;
}

// Keeps the upper or the lower half of one direction.
void keepHalf(bool upper, float centre, float& low, float& high) {
  if (upper)
    low = centre;
  else
    high = centre;
}

// Which half of x, y and z each octant keeps (true: upper half).
constexpr bool kOctantHalves[8][3] = {
    {true, true, true},   {false, true, true},   {false, false, true},  {true, false, true},
    {true, true, false},  {false, true, false},  {false, false, false}, {true, false, false},
};

// Step of the window and range pairs: half the step text, through text and back.
double halfStep(const std::string& stepText) { return leadingNumber(formatGeneral(leadingNumber(stepText) / 2)); }

void widen(StepDirection direction, const std::string& stepText, std::string& lower, std::string& upper) {
  const double s = direction == StepDirection::Inc ? halfStep(stepText) : -halfStep(stepText);
  const double lo = leadingNumber(lower) - s, hi = leadingNumber(upper) + s;
  if (!std::isfinite(lo) || !std::isfinite(hi)) return;  // an overflow leaves the texts
  lower = formatGeneral(lo);
  upper = formatGeneral(hi);
}

void shift(StepDirection direction, const std::string& stepText, std::string& field) {
  const double step = leadingNumber(stepText);
  const double v = direction == StepDirection::Inc ? leadingNumber(field) + step : leadingNumber(field) - step;
  if (std::isfinite(v)) field = formatGeneral(v);
}

// Rotation matrices acting on column vectors (x, y, z), with the signs of RotatePoint:
// a positive angle about x turns +y towards +z, about y +z towards +x, about z +x
// towards +y.
using Matrix = std::array<std::array<double, 3>, 3>;

constexpr double kRadiansPerDegree = 3.14159265358979323846 / 180;

Matrix product(const Matrix& a, const Matrix& b) {
  Matrix m{};
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j)
      for (int k = 0; k < 3; ++k) m[i][j] += a[i][k] * b[k][j];
  return m;
}

Matrix aboutX(double degrees) {
  const double c = std::cos(degrees * kRadiansPerDegree), s = std::sin(degrees * kRadiansPerDegree);
  return {{{1, 0, 0}, {0, c, -s}, {0, s, c}}};
}
Matrix aboutY(double degrees) {
  const double c = std::cos(degrees * kRadiansPerDegree), s = std::sin(degrees * kRadiansPerDegree);
  return {{{c, 0, s}, {0, 1, 0}, {-s, 0, c}}};
}
Matrix aboutZ(double degrees) {
  const double c = std::cos(degrees * kRadiansPerDegree), s = std::sin(degrees * kRadiansPerDegree);
  return {{{c, -s, 0}, {s, c, 0}, {0, 0, 1}}};
}

// RotatePoint turns about x first, then y, then z.
Matrix orientation(const ViewAngles& a) { return product(aboutZ(a.z), product(aboutY(a.y), aboutX(a.x))); }

// The angle equivalent to `degrees` (modulo 360) nearest to `near`.
double nearestTurn(double degrees, double near) { return near + std::remainder(degrees - near, 360.0); }

double distance(const ViewAngles& a, const ViewAngles& b) {
  return std::fabs(a.x - b.x) + std::fabs(a.y - b.y) + std::fabs(a.z - b.z);
}

// The angles of an orientation, of the two equivalent triples the one nearest to `near`.
ViewAngles anglesOf(const Matrix& r, const ViewAngles& near) {
  constexpr double kDegrees = 1 / kRadiansPerDegree;
  const double cosY = std::hypot(r[0][0], r[1][0]);
  ViewAngles first;
  first.y = std::atan2(-r[2][0], cosY) * kDegrees;
  if (cosY > 1e-9) {
    first.x = std::atan2(r[2][1], r[2][2]) * kDegrees;
    first.z = std::atan2(r[1][0], r[0][0]) * kDegrees;
  } else {
    // Turned a quarter about y: only x - z (or x + z) is fixed; x stays as it was.
    first.x = near.x;
    first.z = r[2][0] < 0 ? near.x - std::atan2(r[0][1], r[1][1]) * kDegrees
                          : std::atan2(-r[0][1], r[1][1]) * kDegrees - near.x;
  }
  const ViewAngles second{first.x + 180, 180 - first.y, first.z + 180};
  ViewAngles best;
  double bestDistance = std::numeric_limits<double>::infinity();
  for (const ViewAngles& a : {first, second}) {
    const ViewAngles t{nearestTurn(a.x, near.x), nearestTurn(a.y, near.y), nearestTurn(a.z, near.z)};
    if (distance(t, near) < bestDistance) {
      best = t;
      bestDistance = distance(t, near);
    }
  }
  return best;
}

double hundredths(double degrees) { return std::round(degrees * 100) / 100; }

}  // namespace

bool ZoomView(int code, StereoFields& f) {
  const double raw[6] = {leadingNumber(f.windowlx), leadingNumber(f.windowgx), leadingNumber(f.windowly),
                         leadingNumber(f.windowgy), leadingNumber(f.windowlz), leadingNumber(f.windowgz)};
  for (double v : raw)
    if (!fitsSingle(v)) return false;
  Window w{static_cast<float>(raw[0]), static_cast<float>(raw[1]), static_cast<float>(raw[2]),
           static_cast<float>(raw[3]), static_cast<float>(raw[4]), static_cast<float>(raw[5])};

  const float cx = (w.lx + w.gx) / 2, cy = (w.ly + w.gy) / 2, cz = (w.lz + w.gz) / 2;
  const float hx = (w.gx - w.lx) / 2, hy = (w.gy - w.ly) / 2, hz = (w.gz - w.lz) / 2;
  for (float v : {cx, cy, cz, hx, hy, hz})
    if (!std::isfinite(v)) return false;

  switch (code) {
    case kZoomOut:
      w = {w.lx - hx, w.gx + hx, w.ly - hy, w.gy + hy, w.lz - hz, w.gz + hz};
      break;
    case kZoomIn:
      w = {(w.lx + cx) / 2, (w.gx + cx) / 2, (w.ly + cy) / 2, (w.gy + cy) / 2, (w.lz + cz) / 2, (w.gz + cz) / 2};
      break;
    case kPanRight: w.ly += hy / 4; w.gy += hy / 4; break;
    case kPanLeft: w.ly -= hy / 4; w.gy -= hy / 4; break;
    case kPanUp: w.lz += hz / 4; w.gz += hz / 4; break;
    case kPanDown: w.lz -= hz / 4; w.gz -= hz / 4; break;
    case kPanIn: w.lx -= hx / 4; w.gx -= hx / 4; break;
    case kPanOut: w.lx += hx / 4; w.gx += hx / 4; break;
    default:
      if (code >= kZoomOctant1 && code < kZoomOctant1 + 8) {
        const bool* halves = kOctantHalves[code - kZoomOctant1];
        keepHalf(halves[0], cx, w.lx, w.gx);
        keepHalf(halves[1], cy, w.ly, w.gy);
        keepHalf(halves[2], cz, w.lz, w.gz);
      }
      break;
  }
  if (!allFinite(w)) return false;

  f.windowlx = formatSingle(w.lx);
  f.windowgx = formatSingle(w.gx);
  f.windowly = formatSingle(w.ly);
  f.windowgy = formatSingle(w.gy);
  f.windowlz = formatSingle(w.lz);
  f.windowgz = formatSingle(w.gz);
  return true;
}

void StepField(StepTarget target, StepDirection d, StereoFields& f) {
  switch (target) {
    case StepTarget::WindX: widen(d, f.stepWindX, f.windowlx, f.windowgx); break;
    case StepTarget::WindY: widen(d, f.stepWindY, f.windowly, f.windowgy); break;
    case StepTarget::WindZ: widen(d, f.stepWindZ, f.windowlz, f.windowgz); break;
    case StepTarget::RangXU: widen(d, f.stepRangXU, f.rangelxu, f.rangegxu); break;
    case StepTarget::RangYV: widen(d, f.stepRangYV, f.rangelyv, f.rangegyv); break;
    case StepTarget::RotX: shift(d, f.stepRotX, f.xrot); break;
    case StepTarget::RotY: shift(d, f.stepRotY, f.yrot); break;
    case StepTarget::RotZ: shift(d, f.stepRotZ, f.zrot); break;
    case StepTarget::TranX: shift(d, f.stepTranX, f.xtr); break;
    case StepTarget::TranY: shift(d, f.stepTranY, f.ytr); break;
    case StepTarget::TranZ: shift(d, f.stepTranZ, f.ztr); break;
  }
}

ViewAngles DragRotation(const ViewAngles& from, double dx, double dy) {
  if (!std::isfinite(from.x) || !std::isfinite(from.y) || !std::isfinite(from.z)) return from;
  // Pulled sideways, the front (low x) follows the pointer: a negative turn about z;
  // pulled down, the top comes forward: a negative turn about y.
  const Matrix turn = product(aboutY(-dy * kDragDegreesPerPixel), aboutZ(-dx * kDragDegreesPerPixel));
  const ViewAngles to = anglesOf(product(turn, orientation(from)), from);
  return {hundredths(to.x), hundredths(to.y), hundredths(to.z)};
}

void ShowAngles(const ViewAngles& angles, StereoFields& fields) {
  fields.xrot = formatGeneral(angles.x);
  fields.yrot = formatGeneral(angles.y);
  fields.zrot = formatGeneral(angles.z);
}

}  // namespace orvane
