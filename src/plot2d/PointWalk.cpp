#include "plot2d/PointWalk.h"

#include <algorithm>

#include "platform/RuntimeError.h"

namespace orvane {

void PointWalk::evaluate() {
  const int32_t count = std::min(run_, filled_ - at_);
  try {
    ready_ = at_ + g_(xs_.get() + at_, count, ys_.get() + at_);
  } catch (const RuntimeError&) {
    run_ = 1;  // failures come in runs: grow again from one point
    throw;
  }
  run_ = std::min(run_ * 2, kRun);
}

bool PointWalk::fill() {
  filled_ = ready_ = at_ = 0;
  for (double x = last_; filled_ < kRun;) {
    const double moved = x + step_;
    if (!(moved > x)) break;
    if (rule_ == End::Before && !(moved < end_)) break;
    x = xs_[filled_++] = moved;
    if (rule_ == End::Past && !(moved <= end_)) break;
  }
  if (filled_ == 0) return false;
  last_ = xs_[filled_ - 1];
  return true;
}

}  // namespace orvane
