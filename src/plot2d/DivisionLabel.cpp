#include "plot2d/DivisionLabel.h"

#include <charconv>
#include <cmath>
#include <string>

namespace orvane {

namespace {

// A spacing counts as having d decimals when 10^d times it is a whole number to within
// this share: single precision keeps 0.1 as 0.100000001.
constexpr double kWholeShare = 1e-5;
// Single precision goes down to about 1E-45.
constexpr int kMostDecimals = 46;

}  // namespace

int divisionDecimals(float spacing) {
  double scaled = std::fabs(double(spacing));
  if (!(scaled > 0) || !std::isfinite(scaled)) return 0;
  for (int d = 0; d < kMostDecimals; ++d, scaled *= 10)
    if (std::fabs(scaled - std::round(scaled)) <= kWholeShare * scaled) return d;
  return kMostDecimals;
}

std::string divisionLabel(float value, float spacing, bool trailingPoint) {
  // The value as single precision knows it, seven significant digits (as the window's
  // fields show it): 2E+11 is not written 200000004096. Always "." whatever the locale.
  char buffer[128];
  const char* end = std::to_chars(buffer, buffer + sizeof buffer, double(value), std::chars_format::scientific, 6).ptr;
  double single = 0;
  std::from_chars(buffer, end, single);
  const int decimals = divisionDecimals(spacing);
  const double scale = std::pow(10.0, decimals);
  const double rounded = std::round(single * scale) / scale;
  std::string text;
  if (rounded != 0) {
    end = std::to_chars(buffer, buffer + sizeof buffer, rounded, std::chars_format::fixed, decimals).ptr;
    text.assign(buffer, size_t(end - buffer));
  }
  if (trailingPoint && decimals == 0) text += '.';
  return text;
}

}  // namespace orvane
