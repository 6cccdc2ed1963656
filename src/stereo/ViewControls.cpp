#include "stereo/ViewControls.h"

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

}  // namespace orvane
