#include "plot2d/SignChangeScan.h"

#include <cmath>

#include "platform/RuntimeError.h"
#include "platform/StopCheck.h"
#include "plot2d/CheckedMath.h"

namespace orvane {

namespace {

int sign(double v) { return (v > 0) - (v < 0); }

}  // namespace

ScanEnd scanSignChanges(const StudySettings& s, const std::function<double(double)>& g,
                        const std::function<double(double)>& next,
                        const std::function<void(double)>& add) {
  double step = 0;
  try {
    step = checked::div(checked::value(s.xupper - s.xlower), static_cast<double>(s.n));
  } catch (const RuntimeError& e) {
    return {false, e.number()};
  }
  if (!(step > 0)) return {};  // an empty or inverted interval holds no grid point

  double x = s.xlower - step;
  double lastGrid = x;
  // The next grid point; false at the end of the interval (or when x no longer moves).
  auto advance = [&]() {
    const double moved = x + step;
    if (!(moved > x)) return false;
    x = moved;
    lastGrid = x;
    return x < s.xupper;
  };

  // A stop keeps the zeros already added.
  try {
    for (;;) {
      try {
        if (!advance()) return {};
        int previous = sign(g(x));
        if (previous == 0) {
          add(x);
          continue;
        }
        for (;;) {
          if (!advance()) return {};
          const int current = sign(g(x));
          if (current == 0) {
            add(x);
            break;
          }
          if (current == previous) continue;
          previous = current;
          const double rightEnd = x;
          x = x - step / 2;
          int32_t cycles = 0;
          double xold = x;
          do {
            ++cycles;
            xold = x;
            x = next(x);
          } while (!(std::fabs(xold - x) <= s.err || cycles >= s.maxcy));
          if (std::fabs(xold - x) <= s.err) add(x);
          if (rightEnd > s.xupper) return {};
          x = rightEnd;
        }
      } catch (const RuntimeError& e) {
        if (!isSilencedError(e.number())) return {false, e.number()};
        x = lastGrid;
      }
    }
  } catch (const WorkInterrupted&) {
    return {false, 0, true};
  }
}

}  // namespace orvane
