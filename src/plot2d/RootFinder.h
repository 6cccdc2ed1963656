#pragma once
// "&Roots": the zeros of f on the study interval, by a sign-change scan refined with
// Newton steps.

#include "plot2d/Derivatives.h"
#include "plot2d/StudyResults.h"
#include "plot2d/StudySettings.h"

namespace orvane {

// Sets the root finder's steps on d. A zero grid point is listed as it is; a root
// reached twice is listed twice. Silenced errors skip the point or bracket; any other
// error ends the search with the roots found so far and no label. Stopped through d's
// stop check, it keeps the roots found so far and the label says "Interrupted".
RootResult findRoots(DerivativeEvaluator& d, const StudySettings& s);
// The command as the window runs it: the settings read from the field texts first; a
// count that does not fit ends it like any other error.
RootResult findRoots(DerivativeEvaluator& d, const StudyFieldTexts& texts);

}  // namespace orvane
