#include "plot2d/SignChangeScan.h"

#include <cmath>

#include "platform/RuntimeError.h"
#include "platform/StopCheck.h"
#include "plot2d/CheckedMath.h"
#include "plot2d/PointWalk.h"

namespace orvane {

namespace {

int sign(double v) { return (v > 0) - (v < 0); }

}  // namespace

ScanEnd scanSignChanges(const StudySettings& s, const BlockFunction& g,
                        const std::function<double(double)>& next,
                        const std::function<void(double)>& add) {
  double step = 0;
  try {
    step = checked::div(checked::value(s.xupper - s.xlower), static_cast<double>(s.n));
  } catch (const RuntimeError& e) {
    return {false, e.number()};
  }
  if (!(step > 0)) return {};  // an empty or inverted interval holds no grid point

  PointWalk grid(g, s.xlower, step, s.xupper, PointWalk::End::Before);
  // A stop keeps the zeros already added.
  try {
    for (;;) {
      try {
        double x = 0;
        if (!grid.next(x)) return {};
        int previous = sign(grid.value());
        if (previous == 0) {
          add(x);
          continue;
        }
        for (;;) {
          grid.passSameSide(previous);
          if (!grid.next(x)) return {};
          const int current = sign(grid.value());
          if (current == 0) {
            add(x);
            break;
          }
          if (current == previous) continue;
          previous = current;
          // Refined from the bracket's midpoint; the scan goes on at the next grid point.
          double r = x - step / 2;
          int32_t cycles = 0;
          double rold = r;
          do {
            ++cycles;
            rold = r;
            r = next(r);
          } while (!(std::fabs(rold - r) <= s.err || cycles >= s.maxcy));
          if (std::fabs(rold - r) <= s.err) add(r);
        }
      } catch (const RuntimeError& e) {
        // A point without value (or a failed refinement) is passed over.
        if (!isSilencedError(e.number())) return {false, e.number()};
      }
    }
  } catch (const WorkInterrupted&) {
    return {false, 0, true};
  }
}

}  // namespace orvane
