#pragma once
// "&Integral": the composite Boole rule over the study interval, halving the step and
// reusing every value already computed, with Simpson's rule as the first comparison.

#include "plot2d/Derivatives.h"
#include "plot2d/StudyResults.h"
#include "plot2d/StudySettings.h"

namespace orvane {

// Accepted when two successive estimates agree within s.err with at least s.n panels;
// at most s.maxcy halvings, else "No convergence". A failing evaluation ends it with
// the reason as the label ("division by zero", ...), or no label for an error that has
// no such text. Stopped through d's stop check, the label is "Interrupted".
IntegralResult integrate(DerivativeEvaluator& d, const StudySettings& s);
// The command as the window runs it, reading the settings from the field texts first;
// a count that does not fit shows "overflow".
IntegralResult integrate(DerivativeEvaluator& d, const StudyFieldTexts& texts);

// The label text for an error that ended the integral; empty when it has none.
std::string integralErrorText(int32_t error);

}  // namespace orvane
