#include "regression/ResidualPlot.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "platform/NumberText.h"
#include "regression/Solver.h"

namespace orvane {

namespace {

// Beyond this many sets the points are single pixels.
constexpr size_t kMostDiscs = 5000;
constexpr double kDiscRadiusPx = 2.5;

// A range label: four significant digits in the program's number form.
std::string rangeLabel(double v) {
  char buffer[48];
  std::snprintf(buffer, sizeof buffer, "%.4g", v);
  return formatGeneral(std::strtod(buffer, nullptr));
}

struct Range {
  double low = -1, high = 1;
};

// The finite values' range, widened by `margin` of its span on each side; a single
// value gets a span of its own.
Range rangeOf(const std::vector<double>& values, double margin) {
  double low = INFINITY, high = -INFINITY;
  for (double v : values)
    if (std::isfinite(v)) {
      low = std::min(low, v);
      high = std::max(high, v);
    }
  if (!(low <= high)) return {};
  double span = high - low;
  if (!(span > 0) || !std::isfinite(span)) span = std::max(1.0, std::fabs(low) * 0.1);
  return {low - span * margin, high + span * margin};
}

}  // namespace

ResidualPoints ResidualsAgainst(const RegressionProblem& p, int axis) {
  ResidualPoints points;
  const auto n = static_cast<size_t>(std::max(0, p.N));
  points.x.resize(n);
  points.residual.resize(n);
  const bool fitted = axis < 1 || axis > p.m;
  points.xCaption = fitted ? "Fitted values" : p.names.at(static_cast<size_t>(axis) - 1);
  for (size_t k = 0; k < n; ++k) {
    const int i = static_cast<int>(k) + 1;
    const double estimate = ComputeEstimates(p, i);
    points.residual[k] = p.X(p.m + 1, i) - estimate;
    points.x[k] = fitted ? estimate : p.X(axis, i);
  }
  return points;
}

void DrawResidualPlot(Canvas& c, const ResidualPoints& points) {
  c.Cls();
  const int width = c.pixelWidth(), height = c.pixelHeight();
  if (width < 40 || height < 40) return;
  c.Scale(0, 0, float(width), float(height));  // pixels, y downward; the data are mapped here in double
  c.SetPixelFont("verdana", 12, 0);
  c.SetForeColor(residualcolors::Labels);

  double most = 0;
  for (double r : points.residual)
    if (std::isfinite(r)) most = std::max(most, std::fabs(r));
  const double ymax = most > 0 ? most * 1.1 : 1;
  const Range xr = rangeOf(points.x, 0.03);
  const std::string top = rangeLabel(ymax), bottom = rangeLabel(-ymax);

  const double h = std::fabs(c.TextHeight("0"));
  const double left = 8 + std::max({c.TextWidth(top), c.TextWidth(bottom), c.TextWidth("0")});
  const double right = width - 12.0, upper = h + 8, lower = height - 2 * h - 8;
  if (!(right - left > 10 && lower - upper > 10)) return;
  const auto px = [&](double x) { return left + (x - xr.low) / (xr.high - xr.low) * (right - left); };
  const auto py = [&](double r) { return upper + (ymax - r) / (2 * ymax) * (lower - upper); };
  const auto text = [&](double x, double y, const std::string& s) {
    c.SetCurrentX(float(x));
    c.SetCurrentY(float(y));
    c.Print(s, false);
  };

  c.Line(float(left), float(upper), float(right), float(lower), residualcolors::Frame, LineKind::Box);
  c.Line(float(left), float(py(0)), float(right), float(py(0)), residualcolors::Zero);

  const size_t count = std::min(points.x.size(), points.residual.size());
  if (count <= kMostDiscs) {
    c.SetFillColor(residualcolors::Points);
    c.SetFillStyle(FillStyle::Solid);
    for (size_t k = 0; k < count; ++k)
      if (std::isfinite(points.x[k]) && std::isfinite(points.residual[k]))
        c.Circle(float(px(points.x[k])), float(py(points.residual[k])), float(kDiscRadiusPx), residualcolors::Points);
    c.SetFillStyle(FillStyle::Transparent);
    c.SetFillColor(0);
  } else {
    std::vector<bool> taken(static_cast<size_t>(width) * height, false);
    for (size_t k = 0; k < count; ++k) {
      const double x = std::round(px(points.x[k])), y = std::round(py(points.residual[k]));
      if (!(x >= 0 && x < width && y >= 0 && y < height)) continue;
      const size_t cell = static_cast<size_t>(y) * width + static_cast<size_t>(x);
      if (taken[cell]) continue;
      taken[cell] = true;
      c.PSet(float(x), float(y), residualcolors::Points);
    }
  }

  text(left - 4 - c.TextWidth(top), upper - h / 2, top);
  text(left - 4 - c.TextWidth("0"), py(0) - h / 2, "0");
  text(left - 4 - c.TextWidth(bottom), lower - h / 2, bottom);
  text(left, 2, "Residuals");
  const std::string xlow = rangeLabel(xr.low), xhigh = rangeLabel(xr.high);
  text(left, lower + 4, xlow);
  text(right - c.TextWidth(xhigh), lower + 4, xhigh);
  text((left + right - c.TextWidth(points.xCaption)) / 2, lower + 4 + h, points.xCaption);
}

}  // namespace orvane
