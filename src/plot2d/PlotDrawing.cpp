#include "plot2d/PlotDrawing.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "platform/NumberText.h"
#include "platform/RuntimeError.h"
#include "plot2d/DivisionLabel.h"
#include "plot2d/PointWalk.h"

namespace orvane {

namespace {

// Label fonts (pixel height and average width): small for the divisions, large for
// the window edges.
struct LabelFont {
  int height, width;
};
constexpr LabelFont kDivisionFont{7, 5};
constexpr LabelFont kWindowFont{20, 16};

// Beyond this many steps between the axis and the window the tick walk jumps ahead
// instead of stepping through positions that are never drawn.
constexpr double kLongWalk = 100000;

// v kept within [lo, hi]; unlike std::clamp it has an answer (hi) when an inverted
// window makes lo > hi.
template <typename T>
T between(T v, T lo, T hi) {
  return v > hi ? hi : (v < lo ? lo : v);
}

struct TickWalk {
  float spacing = 0;        // between neighbouring ticks
  std::vector<float> up;    // from the axis towards the high end
  std::vector<float> down;  // from the axis towards the low end
};

// The ticks from the axis at `origin` in steps of `spacing` towards the high end
// (direction 1) or the low end (-1) of [low, high], kept where they lie inside. Each
// position is reckoned from its number of steps, so far ticks carry no sum of rounding
// errors into their labels.
std::vector<float> walkFrom(float origin, float low, float high, float spacing, int direction) {
  std::vector<float> ticks;
  const double far = direction > 0 ? high : low;
  const double near = direction > 0 ? low : high;
  auto at = [&](double steps) { return float(origin + direction * steps * double(spacing)); };
  const double stepsBefore = (near - origin) * direction / spacing;
  double k = stepsBefore > kLongWalk ? std::floor(stepsBefore) : 0;
  for (float pos = at(k); (pos - far) * direction <= 0;) {
    if ((pos - near) * direction >= 0) ticks.push_back(pos);
    const float next = at(++k);
    if (!((next - pos) * direction > 0)) break;
    pos = next;
  }
  return ticks;
}

TickWalk walkTicks(float origin, float low, float high, float spacing) {
  TickWalk walk;
  walk.spacing = spacing;
  if (!(spacing > 0)) return walk;
  walk.up = walkFrom(origin, low, high, spacing, 1);
  walk.down = walkFrom(origin, low, high, spacing, -1);
  return walk;
}

class PlotPainter {
 public:
  PlotPainter(Canvas& c, DerivativeEvaluator& d, const PlotRequest& r, const Viewport& v)
      : c_(c), d_(d), r_(r), v_(v), s_(v.setup), k_(r.options.derivative) {}

  void frame() {
    c_.Line(s_.windowlx, s_.windowly + v_.pixely, s_.windowgx - v_.pixelx, s_.windowgy,
            plotcolors::Frame, LineKind::Box);
  }

  // Returns the lower end of the study interval as the rest of the plot uses it.
  double shading() {
    double a = r_.options.xlower;
    const double b = r_.options.xupper;
    if (!r_.options.shade || k_ != 0 || a > s_.windowgx) return a;
    if (a < s_.windowlx) a = s_.windowlx;
    c_.PSet(float(a), s_.yorigin, plotcolors::Shading);
    double x = a;
    double y = 0;
    for (;;) {
      if (!evaluate(x, y)) return a;
      c_.LineTo(float(x), clip(y), plotcolors::Shading);
      const double next = x + v_.plotstep * 0.999;
      if (!(next > x)) break;
      x = next;
      if (x >= s_.windowgx || x >= b) break;
      c_.PSet(float(x), s_.yorigin, plotcolors::Marks);
    }
    if (b <= s_.windowgx && evaluate(b, y)) c_.LineTo(float(b), clip(y), plotcolors::Shading);
    return a;
  }

  void ticks(const TickWalk& vertical, const TickWalk& horizontal) {
    const float y0 = r_.options.grid ? s_.windowly : s_.yorigin - v_.divv / 2;
    for (const auto* list : {&vertical.up, &vertical.down})
      for (float xg : *list) c_.Line(xg, y0, xg, y0 + v_.divv, plotcolors::Ticks);
    const float x0 = r_.options.grid ? s_.windowlx : s_.xorigin - v_.divh / 2;
    for (const auto* list : {&horizontal.up, &horizontal.down})
      for (float yg : *list) c_.Line(x0, yg, x0 + v_.divh, yg, plotcolors::Ticks);
  }

  void intervalEnds(double lower, double upper) {
    for (double end : {lower, upper}) {
      if (!(s_.windowlx <= end && end <= s_.windowgx)) continue;
      c_.PSet(float(end), s_.yorigin, plotcolors::Marks);
      double y = 0;
      if (evaluate(end, y)) {
        linecolor_ = plotcolors::Marks;
        c_.LineTo(float(end), clip(y), plotcolors::Marks);
      }
    }
  }

  void axes() {
    c_.Line(s_.windowlx, s_.yorigin, s_.windowgx, s_.yorigin, plotcolors::Axes);
    c_.Line(s_.xorigin, s_.windowly, s_.xorigin, s_.windowgy, plotcolors::Axes);
  }

  void originAndData() {
    const float radius = c_.ScaleWidth() / 200;
    disc(0, 0, radius, plotcolors::Origin);
    const size_t count = std::min(r_.dataX.size(), r_.dataY.size());
    for (size_t i = 0; i < count; ++i)
      disc(toCanvas(r_.dataX[i]), toCanvas(r_.dataY[i]), radius, plotcolors::Marks);
  }

  // The four window limits in the large teal font: the x ones at the ends of the
  // x-axis, above it, the y ones at the ends of the y-axis, right of it (the division
  // labels take the other sides), all kept inside the picture.
  void windowLabels() {
    c_.SetForeColor(plotcolors::WindowLabels);
    c_.SetPixelFont("verdana", kWindowFont.height, kWindowFont.width);
    const float h = std::fabs(c_.TextHeight("0"));
    const float axisY = between(s_.yorigin, s_.windowly, s_.windowgy);
    const float axisX = between(s_.xorigin, s_.windowlx, s_.windowgx);
    float above = axisY + h / 5 + h;
    if (above > s_.windowgy) above = axisY - h / 5;
    auto put = [&](float value, auto place) {
      const std::string text = formatSingle(value);
      const float w = std::fabs(c_.TextWidth(text));
      float right = axisX + w / 5;
      if (right + w > s_.windowgx) right = axisX - w - w / 5;
      const auto [x, y] = place(w, right);
      at(between(x, s_.windowlx, s_.windowgx - w), between(y, s_.windowly + h, s_.windowgy));
      c_.Print(text, false);
    };
    put(s_.windowlx, [&](float w, float) { return std::pair(s_.windowlx + w / 5, above); });
    put(s_.windowgx, [&](float w, float) { return std::pair(s_.windowgx - w - w / 5, above); });
    put(s_.windowly, [&](float, float right) { return std::pair(right, s_.windowly + h + h / 5); });
    put(s_.windowgy, [&](float, float right) { return std::pair(right, s_.windowgy - h / 5); });
  }

  // Each tick's value: below the x-axis past the tick's end and left of the y-axis,
  // or on the other side where the picture ends, and never cut by its edge.
  void divisionLabels(const TickWalk& vertical, const TickWalk& horizontal) {
    c_.SetPixelFont("verdana", kDivisionFont.height, kDivisionFont.width);
    const float h = std::fabs(c_.TextHeight("0"));
    const bool grid = r_.options.grid;
    const float tickUp = grid ? 0 : v_.divv / 2;
    const float tickSide = grid ? 0 : v_.divh / 2;
    auto label = [&](float value, const TickWalk& walk, bool trailingPoint, auto place) {
      const std::string text = divisionLabel(value, walk.spacing, trailingPoint);
      if (text.empty() || text == ".") return;
      const float w = std::fabs(c_.TextWidth(text));
      const auto [x, y] = place(w);
      at(between(x, s_.windowlx, s_.windowgx - w), between(y, s_.windowly + h, s_.windowgy));
      c_.Print(text, false);
    };
    std::vector<float> done;
    auto once = [&](float v) {
      if (std::find(done.begin(), done.end(), v) != done.end()) return false;
      done.push_back(v);
      return true;
    };
    float top = s_.yorigin - tickUp - h / 5;
    if (top - h < s_.windowly) top = s_.yorigin + tickUp + h / 5 + h;
    for (const auto* list : {&vertical.up, &vertical.down})
      for (float xg : *list)
        if (once(xg)) label(xg, vertical, false, [&](float w) { return std::pair(xg - w / 2, top); });
    done.clear();
    for (const auto* list : {&horizontal.up, &horizontal.down})
      for (float yg : *list)
        if (once(yg))
          label(yg, horizontal, true, [&](float w) {
            float left = s_.xorigin - tickSide - w / 5 - w;
            if (left < s_.windowlx) left = s_.xorigin + tickSide + w / 5;
            return std::pair(left, yg + h / 2);
          });
  }

  void curve() {
    linecolor_ = plotcolors::Curve;
    const double step = v_.plotstep;
    if (!(step > 0)) return;
    const double gx = s_.windowgx;
    const BlockFunction f = [this](const double* xs, int32_t n, double* ys) { return d_.D(k_, xs, n, ys); };
    PointWalk walk(f, s_.windowlx, step, gx, PointWalk::End::Past);
    double x = 0;
    double y = 0;
    for (;;) {
      bool ok = false;
      do {
        if (!walk.next(x)) return;
        ok = valueAt(walk, y);
      } while (!ok && x < gx && !interrupted_);
      if (!ok) return;
      c_.PSet(float(x), clip(y, false));
      if (x == gx) return;
      for (;;) {
        if (!walk.next(x)) return;
        if (!valueAt(walk, y)) {
          if (x < gx && !interrupted_) break;
          return;
        }
        segment(x, y);
        if (!(x <= gx)) return;
      }
    }
  }

  // The confidence band of the mean and the prediction band: the curve plus and minus
  // their half widths, as dotted chords one period of the dot pattern long.
  void bands() {
    if (!r_.bands || k_ != 0) return;
    const double step = c_.ScaleX(6, ScaleUnit::Pixels, ScaleUnit::User);
    if (!(step > 0)) return;
    const long samples = std::lround((double(s_.windowgx) - s_.windowlx) / step) + 1;
    if (samples < 2 || samples > 100000) return;
    struct Sample {
      double x;
      bool ok;
      double edge[4];  // mean below, mean above, prediction below, prediction above
    };
    std::vector<Sample> row;
    for (long k = 0; k < samples; ++k) {
      Sample s{std::min(s_.windowlx + k * step, double(s_.windowgx)), false, {}};
      double y = 0;
      if (evaluate(s.x, y)) {
        const BandHalfWidths w = r_.bands(s.x);
        s.edge[0] = y - w.mean;
        s.edge[1] = y + w.mean;
        s.edge[2] = y - w.prediction;
        s.edge[3] = y + w.prediction;
        s.ok = std::isfinite(w.mean) && std::isfinite(w.prediction);
      }
      row.push_back(s);
    }
    c_.SetDrawStyle(DrawStyle::Dot);
    for (int e = 0; e < 4; ++e)
      for (size_t k = 1; k < row.size(); ++k)
        if (row[k - 1].ok && row[k].ok)
          c_.Line(float(row[k - 1].x), clip(row[k - 1].edge[e], false), float(row[k].x), clip(row[k].edge[e], false),
                  plotcolors::Bands);
    c_.SetDrawStyle(DrawStyle::Solid);
  }

  void resetLineColor() { linecolor_ = plotcolors::Curve; }

  // Lets the owner's events run before the curve; false once the plot was stopped.
  bool askToGoOn() {
    if (StopCheck* stop = d_.stopCheck(); stop != nullptr && !interrupted_) {
      try {
        stop->askNow();
      } catch (const WorkInterrupted&) {
        interrupted_ = true;
      }
    }
    return !interrupted_;
  }
  bool interrupted() const { return interrupted_; }

 private:
  // False where f has no value, and everywhere once the plot was stopped.
  bool evaluate(double x, double& y) {
    if (interrupted_) return false;
    d_.storePoint(x);
    try {
      return d_.tryD(k_, x, y) == 0;
    } catch (const WorkInterrupted&) {
      interrupted_ = true;
      return false;
    }
  }

  // The same at the walk's current point.
  bool valueAt(PointWalk& walk, double& y) {
    if (interrupted_) return false;
    try {
      y = walk.value();
      return true;
    } catch (const RuntimeError&) {
      return false;
    } catch (const WorkInterrupted&) {
      interrupted_ = true;
      return false;
    }
  }

  // Draws from the current point to (x, y) unless both ends lie beyond the same
  // horizontal edge; then only the current point moves.
  void segment(double x, double y) {
    const double previous = c_.CurrentY();
    if ((y > s_.windowgy && previous > s_.windowgy) ||
        (y < s_.windowly && previous < s_.windowly)) {
      at(float(x), clip(y, false));
      return;
    }
    c_.LineTo(float(x), clip(y, false), linecolor_);
  }

  // y clipped into the window, or (far = false) only kept within a range the picture
  // can take: far enough out that the visible part of a line keeps its direction.
  float clip(double y, bool intoWindow = true) const {
    if (intoWindow) return float(between(y, double(s_.windowly), double(s_.windowgy)));
    const double margin = 1e4 * (std::fabs(double(s_.windowgy) - s_.windowly) + 1);
    return float(between(y, s_.windowly - margin, s_.windowgy + margin));
  }

  static float toCanvas(double v) {
    constexpr double big = 1e30;
    return float(between(v, -big, big));
  }

  void at(float x, float y) {
    c_.SetCurrentX(x);
    c_.SetCurrentY(y);
  }

  void disc(float x, float y, float radius, Color color) {
    c_.SetFillColor(color);
    c_.SetFillStyle(FillStyle::Solid);
    c_.Circle(x, y, radius, color);
    c_.SetFillColor(0);
    c_.SetFillStyle(FillStyle::Transparent);
  }

  Canvas& c_;
  DerivativeEvaluator& d_;
  const PlotRequest& r_;
  const Viewport& v_;
  const PlotSetup& s_;
  const int32_t k_;
  Color linecolor_ = plotcolors::Curve;
  bool interrupted_ = false;
};

}  // namespace

DrawnPlot drawPlot(Canvas& picture, DerivativeEvaluator& d, const PlotRequest& request) {
  d.prepareForPlot(request.options.derivative);
  const Viewport v =
      setUpViewport(request.setup, request.width, request.height, request.options.grid, picture);
  const PlotSetup& s = v.setup;
  PlotPainter painter(picture, d, request, v);

  // Ticks never closer than one screen unit.
  const float gridx = std::max(s.divx, v.pixelx);
  const float gridy = std::max(s.divy, v.pixely);
  const TickWalk vertical = walkTicks(s.xorigin, s.windowlx, s.windowgx, gridx);
  const TickWalk horizontal = walkTicks(s.yorigin, s.windowly, s.windowgy, gridy);

  painter.frame();
  const double lower = painter.shading();
  painter.ticks(vertical, horizontal);
  painter.intervalEnds(lower, request.options.xupper);
  painter.axes();
  painter.originAndData();
  if (request.options.labelWindow) painter.windowLabels();
  if (request.options.labelDivisions) painter.divisionLabels(vertical, horizontal);
  if (painter.askToGoOn() && request.options.fittedFunction) {
    painter.curve();
    if (request.bands) painter.bands();
  }
  painter.resetLineColor();
  return {v, painter.interrupted()};
}

}  // namespace orvane
