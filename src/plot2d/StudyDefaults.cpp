#include "plot2d/StudyDefaults.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/NumberText.h"

namespace orvane {

namespace {

// Beyond this the window's single-precision numbers lose the data's detail anyway.
constexpr double kLargest = 1e30;
// Aim for four to eight divisions across the window.
constexpr double kDivisions = 8;
// A margin on each side so that nothing sits on the frame.
constexpr double kMargin = 0.08;

struct Range {
  double lo = std::numeric_limits<double>::infinity();
  double hi = -std::numeric_limits<double>::infinity();
  void take(double v) {
    if (!std::isfinite(v) || std::fabs(v) > kLargest) return;
    lo = std::min(lo, v);
    hi = std::max(hi, v);
  }
  bool empty() const { return lo > hi; }
};

// The range with some extent, or [-5, 5] when there is nothing to show.
Range settled(Range r) {
  if (r.empty()) return {-5, 5};
  if (r.lo == r.hi) {
    const double half = r.lo == 0 ? 1 : std::fabs(r.lo) / 2;
    return {r.lo - half, r.hi + half};
  }
  return r;
}

struct Axis {
  float low = 0, high = 0, origin = 0, step = 0;
};

// The shown range around r: the origin drawn in when it is no farther away than the
// range is wide, a margin, and ends on whole divisions.
Axis axisAround(Range r) {
  const double extent = r.hi - r.lo;
  if (r.lo > 0 && r.lo <= extent) r.lo = 0;
  if (r.hi < 0 && -r.hi <= extent) r.hi = 0;
  const double margin = (r.hi - r.lo) * kMargin;
  r.lo -= margin;
  r.hi += margin;
  const double step = roundStepAtLeast((r.hi - r.lo) / kDivisions);
  Axis a;
  a.low = static_cast<float>(std::floor(r.lo / step) * step);
  a.high = static_cast<float>(std::ceil(r.hi / step) * step);
  a.step = static_cast<float>(step);
  a.origin = (a.low <= 0 && 0 <= a.high) ? 0.0f : a.low;
  return a;
}

}  // namespace

double roundStepAtLeast(double raw) {
  if (!(raw > 0) || !std::isfinite(raw)) return 1;
  const double power = std::pow(10.0, std::floor(std::log10(raw)));
  for (double m : {1.0, 2.0, 5.0, 10.0})
    if (m * power >= raw * (1 - 1e-12)) return m * power;
  return 10 * power;
}

StudyWindowDefaults defaultStudyWindow(std::span<const double> xs, std::span<const double> ys,
                                       std::optional<FittedLine> line) {
  Range x, y;
  const size_t n = std::min(xs.size(), ys.size());
  for (size_t i = 0; i < n; ++i) {
    if (!std::isfinite(xs[i]) || !std::isfinite(ys[i])) continue;
    x.take(xs[i]);
    y.take(ys[i]);
  }
  const bool hadData = !x.empty();
  x = settled(x);
  if (line) {
    y.take(line->a0 + line->a1 * x.lo);
    y.take(line->a0 + line->a1 * x.hi);
  }
  y = settled(y);

  const Axis ax = axisAround(x);
  const Axis ay = axisAround(y);
  StudyWindowDefaults d;
  d.xlower = formatGeneral(hadData ? x.lo : -5);
  d.xupper = formatGeneral(hadData ? x.hi : 5);
  d.plot.windowlx = formatSingle(ax.low);
  d.plot.windowgx = formatSingle(ax.high);
  d.plot.windowly = formatSingle(ay.low);
  d.plot.windowgy = formatSingle(ay.high);
  d.plot.xorigin = formatSingle(ax.origin);
  d.plot.yorigin = formatSingle(ay.origin);
  d.plot.divx = formatSingle(ax.step);
  d.plot.divy = formatSingle(ay.step);
  return d;
}

}  // namespace orvane
