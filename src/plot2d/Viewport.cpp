#include "plot2d/Viewport.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/Canvas.h"
#include "platform/NumberText.h"
#include "platform/RuntimeError.h"
#include "plot2d/CheckedMath.h"
#include "plot2d/StudyDefaults.h"

namespace orvane {

namespace {

float toSingle(double v) {
  if (std::fabs(v) > std::numeric_limits<float>::max()) throw RuntimeError(err::Overflow);
  return static_cast<float>(v);
}

float singleOf(std::string_view text) { return toSingle(leadingNumber(text)); }

std::array<std::string, 4> textsOf(const WindowLimits& w) {
  return {formatSingle(w.lx), formatSingle(w.gx), formatSingle(w.ly), formatSingle(w.gy)};
}

// Limits the mouse may reach: a window narrower than this share of its distance from 0
// has fewer single-precision steps than the picture has pixels; a wider one leaves no
// room for the plot's arithmetic.
constexpr double kNarrowestShare = 1e-4;
constexpr double kSmallestExtent = 1e-30;
constexpr double kLargestLimit = 1e30;

bool drawableRange(double low, double high) {
  const double extent = high - low;
  return extent >= kSmallestExtent && extent >= kNarrowestShare * std::max(std::fabs(low), std::fabs(high)) &&
         std::fabs(low) <= kLargestLimit && std::fabs(high) <= kLargestLimit;
}

// The setup with the window [lx, gx] x [ly, gy] and divisions fitted to it, when it can
// be drawn.
std::optional<PlotSetup> movedTo(PlotSetup s, double lx, double gx, double ly, double gy) {
  if (!drawableRange(lx, gx) || !drawableRange(ly, gy)) return std::nullopt;
  s.windowlx = float(lx);
  s.windowgx = float(gx);
  s.windowly = float(ly);
  s.windowgy = float(gy);
  s.divx = fittingDivision(s.divx, s.windowgx - s.windowlx);
  s.divy = fittingDivision(s.divy, s.windowgy - s.windowly);
  return s;
}

}  // namespace

PlotSetup readPlotSetup(const PlotSetupTexts& t) {
  PlotSetup s;
  s.windowlx = singleOf(t.windowlx);
  s.windowgx = singleOf(t.windowgx);
  s.windowly = singleOf(t.windowly);
  s.windowgy = singleOf(t.windowgy);
  s.xorigin = singleOf(t.xorigin);
  s.yorigin = singleOf(t.yorigin);
  s.divx = singleOf(t.divx);
  s.divy = singleOf(t.divy);
  s.plotStep = toInt16(leadingNumber(t.plotStep));
  return s;
}

Viewport setUpViewport(const PlotSetup& setup, float width, float height, bool grid,
                       Canvas& picture) {
  using checked::value;
  Viewport v;
  v.setup = setup;
  const float extentX = value(setup.windowgx - setup.windowlx);
  const float extentY = value(setup.windowgy - setup.windowly);
  v.plotstep = value(checked::div(extentX, width) * static_cast<float>(setup.plotStep));
  v.pixelx = checked::div(extentX, width);
  v.pixely = checked::div(extentY, height);
  picture.Scale(setup.windowlx, setup.windowgy, setup.windowgx, setup.windowly);
  v.divh = extentX;
  v.divv = extentY;
  if (!grid) {
    v.divh /= 20;
    v.divv /= 20;
  }
  return v;
}

WindowLimits zoomLimits(int code, const WindowLimits& from) {
  using checked::value;
  WindowLimits w = from;
  const float windowcenterX = value((w.lx + w.gx) / 2);
  const float windowcenterY = value((w.ly + w.gy) / 2);
  const float hx = value((w.gx - w.lx) / 2);
  const float hy = value((w.gy - w.ly) / 2);
  switch (code) {
    case 0:
      w.lx -= hx;
      w.gx += hx;
      w.ly -= hy;
      w.gy += hy;
      break;
    case 1:
    case 2:
    case 3:
    case 4:
      // 1 and 2 keep the upper half, 3 and 4 the lower; 1 and 4 the right half.
      if (code <= 2) {
        w.ly = windowcenterY;
      } else {
        w.gy = windowcenterY;
      }
      if (code % 4 < 2) {
        w.lx = windowcenterX;
      } else {
        w.gx = windowcenterX;
      }
      break;
    case 5:
      w.lx = (w.lx + windowcenterX) / 2;
      w.gx = (w.gx + windowcenterX) / 2;
      w.ly = (w.ly + windowcenterY) / 2;
      w.gy = (w.gy + windowcenterY) / 2;
      break;
    case 6:
      w.lx += hx / 2;
      w.gx += hx / 2;
      break;
    case 7:
      w.ly += hy / 2;
      w.gy += hy / 2;
      break;
    case 8:
      w.lx -= hx / 2;
      w.gx -= hx / 2;
      break;
    case 9:
      w.ly -= hy / 2;
      w.gy -= hy / 2;
      break;
    case 10:
      w.lx -= hx / 2;
      w.gx += hx / 2;
      break;
    case 11:
      w.lx += hx / 3;
      w.gx -= hx / 3;
      break;
    case 12:
      w.ly -= hy / 2;
      w.gy += hy / 2;
      break;
    case 13:
      w.ly += hy / 3;
      w.gy -= hy / 3;
      break;
    default:
      break;
  }
  value(w.lx);
  value(w.gx);
  value(w.ly);
  value(w.gy);
  return w;
}

std::array<std::string, 4> zoomTexts(int code, std::string_view lx, std::string_view gx,
                                     std::string_view ly, std::string_view gy) {
  const WindowLimits from{singleOf(lx), singleOf(gx), singleOf(ly), singleOf(gy)};
  return textsOf(zoomLimits(code, from));
}

std::array<std::string, 4> centreTexts(const PlotSetup& plotted, float x, float y) {
  using checked::value;
  const float delwindx = value(plotted.windowgx - plotted.windowlx);
  const float delwindy = value(plotted.windowgy - plotted.windowly);
  const WindowLimits w{value(x - delwindx / 2), value(x + delwindx / 2),
                       value(y - delwindy / 2), value(y + delwindy / 2)};
  return textsOf(w);
}

float fittingDivision(float division, float extent) {
  constexpr double kFewest = 4, kMost = 12, kAimedMost = 10;
  const double ticks = double(extent) / division;
  if (ticks >= kFewest && ticks <= kMost) return division;
  if (!(extent > 0) || !std::isfinite(extent)) return division;
  return float(roundStepAtLeast(double(extent) / kAimedMost));
}

std::optional<PlotSetup> wheelZoom(const PlotSetup& from, float shareX, float shareY, int notches) {
  std::optional<PlotSetup> zoomed;
  const double factor = notches > 0 ? 0.5 : 2;
  double lx = from.windowlx, gx = from.windowgx, ly = from.windowly, gy = from.windowgy;
  const double x = lx + shareX * (gx - lx);
  const double y = gy - shareY * (gy - ly);
  for (int step = 0; step < std::abs(notches); ++step) {
    lx = x + (lx - x) * factor;
    gx = x + (gx - x) * factor;
    ly = y + (ly - y) * factor;
    gy = y + (gy - y) * factor;
    const std::optional<PlotSetup> next = movedTo(zoomed.value_or(from), lx, gx, ly, gy);
    if (!next) break;
    zoomed = next;
  }
  return zoomed;
}

std::optional<PlotSetup> dragPan(const PlotSetup& from, float shareX, float shareY) {
  const double dx = -double(shareX) * (double(from.windowgx) - from.windowlx);
  const double dy = double(shareY) * (double(from.windowgy) - from.windowly);
  return movedTo(from, from.windowlx + dx, from.windowgx + dx, from.windowly + dy, from.windowgy + dy);
}

std::array<std::string, 6> mouseMoveTexts(const PlotSetup& s) {
  return {formatSingle(s.windowlx), formatSingle(s.windowgx), formatSingle(s.windowly),
          formatSingle(s.windowgy), formatSingle(s.divx),     formatSingle(s.divy)};
}

std::string positionTooltip(float x, float y) {
  return "(" + formatSingle(x) + ", " + formatSingle(y) + "): Click to center graph here";
}

}  // namespace orvane
