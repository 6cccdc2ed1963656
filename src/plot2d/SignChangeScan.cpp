#include "plot2d/SignChangeScan.h"

#include <algorithm>
#include <cmath>

#include "platform/RuntimeError.h"
#include "platform/StopCheck.h"
#include "plot2d/CheckedMath.h"

namespace orvane {

namespace {

int sign(double v) { return (v > 0) - (v < 0); }

}  // namespace

// The grid points and g's values there, a block ahead of the scan. The grid is the
// same whatever the scan does between two of its points, so its values can be taken
// before they are needed; a point that fails is met, and reported, only when the scan
// asks for its value.
class GridWalk {
 public:
  GridWalk(const BlockFunction& g, double first, double step, double xupper)
      : g_(g), step_(step), xupper_(xupper), last_(first - step) {}

  // Moves to the next grid point; false at the end of the interval (or when the points
  // no longer move).
  bool next(double& x) {
    if (++at_ >= filled_ && !fill()) return false;
    x = xs_[at_];
    return true;
  }

  // g at the current point; throws its error.
  double value() {
    if (at_ >= ready_) {
      const int32_t count = std::min(run_, filled_ - at_);
      try {
        ready_ = at_ + g_(xs_ + at_, count, ys_ + at_);
      } catch (const RuntimeError&) {
        run_ = 1;  // failures come in runs: grow again from one point
        throw;
      }
      run_ = std::min(run_ * 2, kBlock);
    }
    return ys_[at_];
  }

 private:
  static constexpr int32_t kBlock = 256;

  bool fill() {
    filled_ = ready_ = at_ = 0;
    for (double x = last_; filled_ < kBlock; ++filled_) {
      const double moved = x + step_;
      if (!(moved > x) || !(moved < xupper_)) break;
      x = xs_[filled_] = moved;
    }
    if (filled_ == 0) return false;
    last_ = xs_[filled_ - 1];
    return true;
  }

  const BlockFunction& g_;
  const double step_;
  const double xupper_;
  double last_;  // the last point filled
  int32_t at_ = -1, filled_ = 0, ready_ = 0;
  int32_t run_ = kBlock;  // how many points the next evaluation takes
  double xs_[kBlock];
  double ys_[kBlock];
};

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

  GridWalk grid(g, s.xlower, step, s.xupper);
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
