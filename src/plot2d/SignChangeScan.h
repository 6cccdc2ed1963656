#pragma once
// The scan shared by the root finder and the extrema search: walk the study interval in
// n steps, take a zero of g at a grid point as it is, refine each sign change by an
// iteration from the bracket's midpoint. Failures at a point skip it silently.

#include <cstdint>
#include <functional>

#include "plot2d/PointWalk.h"
#include "plot2d/StudySettings.h"

namespace orvane {

struct ScanEnd {
  bool completed = true;  // false: an error that is not silenced, or a stop, ended it
  int32_t error = 0;
  bool interrupted = false;  // stopped by the owner (WorkInterrupted from g or next)
};

// g: the function whose zeros are sought, over a block of points as
// DerivativeEvaluator::f(xs, n, ys) takes it; next: one refinement step from x; add: takes
// a zero (it may throw, e.g. error 9 when its table is full). The point xupper itself
// is never sampled. A zero is accepted when the last correction is within s.err; the
// iteration stops there or after s.maxcy steps. The zeros added before a stop stay.
ScanEnd scanSignChanges(const StudySettings& s, const BlockFunction& g,
                        const std::function<double(double)>& next,
                        const std::function<void(double)>& add);

}  // namespace orvane
