#include "plot2d/Viewport.h"

#include <cmath>
#include <limits>

#include "platform/Canvas.h"
#include "platform/NumberText.h"
#include "platform/RuntimeError.h"
#include "plot2d/CheckedMath.h"

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

std::string positionTooltip(float x, float y) {
  return "(" + formatSingle(x) + ", " + formatSingle(y) + "): Click to center graph here";
}

}  // namespace orvane
