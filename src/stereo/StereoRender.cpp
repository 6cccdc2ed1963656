#include "stereo/StereoRender.h"

#include <cmath>

#include "platform/RuntimeError.h"

namespace orvane {

namespace {

// More division marks than this on one axis would only smear it; none are drawn then.
constexpr double kMaxMarksPerAxis = 1000;

// The horizontal coordinate of a projected point in picture 0 (left) or 1 (right).
float across(const StereoPoint& p, int picture) { return picture == 0 ? p.hL : p.hR; }

enum class MarkDirection { Vertical, Horizontal };

// Division marks of one axis: at origin + k * spacing (k != 0) inside [low, high], each a
// short segment centred on the axis. `at` gives the point of the axis at a position.
template <class AxisPoint>
bool drawMarks(Canvas& c, int picture, const ViewTransform& view, const StereoSettings& s, float origin,
               float spacing, float low, float high, MarkDirection direction, Color color, AxisPoint at) {
  if (!(spacing > 0) || !std::isfinite(spacing)) return true;
  const double kLow = std::ceil((static_cast<double>(low) - origin) / spacing);
  const double kHigh = std::floor((static_cast<double>(high) - origin) / spacing);
  if (!(kHigh - kLow <= kMaxMarksPerAxis)) return true;
  const float halfV = s.delwindz / 40, halfH = s.delwindy / 40;
  for (double k = kLow; k <= kHigh; ++k) {
    if (k == 0) continue;
    const StereoPoint p = StereoProjection(view, at(origin + static_cast<float>(k) * spacing));
    if (!p.finite()) return false;
    const float h = across(p, picture);
    if (direction == MarkDirection::Vertical)
      c.Line(h, p.v - halfV, h, p.v + halfV, color);
    else
      c.Line(h - halfH, p.v, h + halfH, p.v, color);
  }
  return true;
}

bool drawAxis(Canvas& c, int picture, const ViewTransform& view, const Point3& from, const Point3& to,
              Color color) {
  const StereoPoint a = StereoProjection(view, from), b = StereoProjection(view, to);
  if (!a.finite() || !b.finite()) return false;
  c.Line(across(a, picture), a.v, across(b, picture), b.v, color);
  return true;
}

// The three axes of one picture with their marks; false after a fault in the arithmetic.
bool drawAxesOf(Canvas& c, int picture, const ViewTransform& view, const StereoSettings& s, Color color) {
  const float xo = s.xorigin, yo = s.yorigin, zo = s.zorigin;
  if (!drawAxis(c, picture, view, {s.windowlx, yo, zo}, {s.windowgx, yo, zo}, color)) return false;
  if (!drawMarks(c, picture, view, s, xo, s.divx, s.windowlx, s.windowgx, MarkDirection::Vertical, color,
                 [&](float x) { return Point3{x, yo, zo}; }))
    return false;
  if (!drawAxis(c, picture, view, {xo, s.windowly, zo}, {xo, s.windowgy, zo}, color)) return false;
  if (!drawMarks(c, picture, view, s, yo, s.divy, s.windowly, s.windowgy, MarkDirection::Vertical, color,
                 [&](float y) { return Point3{xo, y, zo}; }))
    return false;
  if (!drawAxis(c, picture, view, {xo, yo, s.windowlz}, {xo, yo, s.windowgz}, color)) return false;
  return drawMarks(c, picture, view, s, zo, s.divz, s.windowlz, s.windowgz, MarkDirection::Horizontal, color,
                   [&](float z) { return Point3{xo, yo, z}; });
}

void filledCircle(Canvas& c, float x, float y, float radius, Color color) {
  c.SetFillStyle(FillStyle::Solid);
  c.SetFillColor(color);
  c.Circle(x, y, radius, color);
  c.SetFillStyle(FillStyle::Transparent);
}

}  // namespace

StereoColors ColorsFor(int background) {
  if (background == kBackgroundWhite)
    return {Rgb(255, 255, 255), Rgb(0, 0, 0), Rgb(0, 128, 0), Rgb(0, 0, 255)};
  return {Rgb(0, 0, 0), Rgb(255, 255, 255), Rgb(0, 255, 0), Rgb(255, 255, 0)};
}

void ApplyPlotAppearance(Canvas& left, Canvas& right, const StereoSettings& s) {
  const StereoColors colors = ColorsFor(s.background);
  for (Canvas* pic : {&left, &right}) {
    pic->SetAutoRedraw(s.persist);
    pic->SetBackColor(colors.background);
    pic->SetForeColor(colors.linecolorfunction);
  }
}

void DrawBorder(Canvas& left, Canvas& right, const StereoSettings& s, DeviceUnit unit) {
  for (Canvas* pic : {&left, &right})
    pic->Line(s.windowly, s.windowlz + unit.v, s.windowgy - unit.h, s.windowgz, StereoColors::border,
              LineKind::Box);
}

void DrawReferenceLines(Canvas& left, Canvas& right, const StereoSettings& s, StopCheck* stop) {
  const int32_t n = s.grid;
  if (n < 2) return;
  const float stepY = s.delwindy / static_cast<float>(n);
  const float stepZ = s.delwindz / static_cast<float>(n);
  auto poll = [stop] {
    if (stop != nullptr) stop->poll();
  };
  for (Canvas* pic : {&left, &right}) {
    pic->SetDrawStyle(DrawStyle::Dot);
    try {
      float y = s.windowly;
      for (int32_t i = 1; i < n; ++i) {
        poll();
        y += stepY;
        pic->Line(y, s.windowlz, y, s.windowgz, StereoColors::reference);
      }
      float z = s.windowlz;
      for (int32_t i = 1; i < n; ++i) {
        poll();
        z += stepZ;
        pic->Line(s.windowly, z, s.windowgy, z, StereoColors::reference);
      }
    } catch (const WorkInterrupted&) {
      pic->SetDrawStyle(DrawStyle::Solid);  // the next plot's border is solid again
      throw;
    }
    pic->SetDrawStyle(DrawStyle::Solid);
  }
}

void DrawAxes(Canvas& left, Canvas& right, const StereoSettings& s) {
  const ViewTransform view = MakeViewTransform(s);
  const Color color = ColorsFor(s.background).axes;
  if (!drawAxesOf(left, 0, view, s, color)) return;
  drawAxesOf(right, 1, view, s, color);
}

void DrawOriginMark(Canvas& left, Canvas& right, const StereoSettings& s) {
  const StereoPoint p = StereoProjection(MakeViewTransform(s), 0, 0, 0);
  if (!p.finite()) return;
  filledCircle(left, p.hL, p.v, left.ScaleWidth() / 100, StereoColors::origin);
  filledCircle(right, p.hR, p.v, right.ScaleWidth() / 100, StereoColors::origin);
}

void DrawDataMarks(Canvas& left, Canvas& right, const StereoSettings& s, std::span<const Point3> marks) {
  const ViewTransform view = MakeViewTransform(s);
  const Color color = ColorsFor(s.background).dotcolor;
  for (Point3 p : marks) {
    RotatePoint(view, p);
    const StereoPoint sp = StereoProjection(view, p);
    if (!sp.finite()) return;
    filledCircle(left, sp.hL, sp.v, left.ScaleWidth() / 200, color);
    filledCircle(right, sp.hR, sp.v, right.ScaleWidth() / 200, color);
  }
}

void DrawSurfaceMesh(Canvas& left, Canvas& right, const StereoPlot& plot) {
  const StereoSettings& s = plot.settings;
  const ViewTransform view = MakeViewTransform(s);
  const Color color = ColorsFor(s.background).linecolorfunction;
  SurfaceSampler sampler(s, plot.evaluator, plot.uv, plot.stop);
  StereoPoint pen;
  auto segment = [&](const Point3& p, bool penDown) {
    Point3 q = p;
    if (!view.identity) RotatePoint(view, p.x, p.y, p.z, q.x, q.y, q.z);
    const StereoPoint to = StereoProjection(view, q);
    if (!to.finite()) return false;
    if (penDown) {
      left.Line(pen.hL, pen.v, to.hL, to.v, color);
      right.Line(pen.hR, pen.v, to.hR, to.v, color);
    }
    pen = to;
    return true;
  };
  TraceMesh(s, sampler, segment, [&plot] {
    if (plot.stop != nullptr) plot.stop->askNow();
  });
}

void DrawSurfaceDots(Canvas& left, Canvas& right, const StereoPlot& plot) {
  const StereoSettings& s = plot.settings;
  const ViewTransform view = MakeViewTransform(s);
  const Color color = ColorsFor(s.background).linecolorfunction;
  SurfaceSampler sampler(s, plot.evaluator, plot.uv, plot.stop);
  auto dot = [&](const Point3& p) {
    Point3 q = p;
    RotatePoint(view, q);
    const StereoPoint sp = StereoProjection(view, q);
    if (!sp.finite()) return false;
    left.PSet(sp.hL, sp.v, color);
    right.PSet(sp.hR, sp.v, color);
    return true;
  };
  TraceDots(s, sampler, plot.random, dot);
}

std::vector<Point3> DataMarksFrom(int32_t n, int32_t m, FunctionRef<double(int32_t row, int32_t column)> X) {
  std::vector<Point3> marks;
  if (m < 2 || n < 1) return marks;
  marks.reserve(static_cast<size_t>(n));
  for (int32_t k = 1; k <= n; ++k)
    marks.push_back({static_cast<float>(X(k, 1)), static_cast<float>(X(k, 2)), static_cast<float>(X(k, m + 1))});
  return marks;
}

bool DrawStereoPlot(Canvas& left, Canvas& right, const StereoPlot& plot) {
  const StereoSettings& s = plot.settings;
  DeviceUnit unit;
  try {
    unit = ScaleStereoPictures(left, right, s);
  } catch (const RuntimeError&) {
    return true;
  }
  try {
    DrawBorder(left, right, s, unit);
    DrawReferenceLines(left, right, s, plot.stop);
    DrawAxes(left, right, s);
    DrawOriginMark(left, right, s);
    DrawDataMarks(left, right, s, plot.marks);
    if (plot.stop != nullptr) plot.stop->askNow();
    if (!plot.surfaceShown) return true;
    if (s.lines) DrawSurfaceMesh(left, right, plot);
    if (s.dots) DrawSurfaceDots(left, right, plot);
  } catch (const WorkInterrupted&) {
    return false;
  }
  return true;
}

}  // namespace orvane
