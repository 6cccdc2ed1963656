#pragma once
// "&Extrema": maxima and minima of f on the study interval. The scan of the root finder
// runs on D(1) with the extrema steps; each sign change is refined by Newton steps on
// D(1) with D(2), and D(2) decides between maximum (< 0) and minimum (> 0).

#include "plot2d/Derivatives.h"
#include "plot2d/StudyResults.h"
#include "plot2d/StudySettings.h"

namespace orvane {

// An extremum whose |f(x)| is below this is marked as a possible (double) root.
constexpr double kPossibleRootTolerance = 0.008;

// Sets the extrema steps on d. Silenced errors skip the point or bracket; any other
// error, or a 256th maximum or minimum (error 9), ends the search with no label. A stop
// keeps the extrema found so far, labelled "Interrupted".
ExtremaResult findExtrema(DerivativeEvaluator& d, const StudySettings& s);
// The command as the window runs it, reading the settings from the field texts first.
ExtremaResult findExtrema(DerivativeEvaluator& d, const StudyFieldTexts& texts);

// The line of lstExtrema for one extremum.
std::string extremumListText(const Extremum& e);

}  // namespace orvane
