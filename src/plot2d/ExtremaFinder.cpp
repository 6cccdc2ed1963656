#include "plot2d/ExtremaFinder.h"

#include <cmath>

#include "platform/NumberText.h"
#include "platform/RuntimeError.h"
#include "plot2d/CheckedMath.h"
#include "plot2d/SignChangeScan.h"

namespace orvane {

std::string extremumListText(const Extremum& e) {
  std::string text = (e.isMaximum ? "Max " : "Min ") + formatGeneral(e.x);
  if (e.possibleRoot) text += " (possible root)";
  return text;
}

ExtremaResult findExtrema(DerivativeEvaluator& d, const StudySettings& s) {
  d.prepareForExtrema();
  ExtremaResult result;
  size_t maxima = 0;
  size_t minima = 0;

  auto slope = [&](const double* xs, int32_t n, double* ys) { return d.D(1, xs, n, ys); };
  auto newton = [&](double x) {
    const double d1 = d.D(1, x);
    const double d2 = d.D(2, x);
    return checked::value(x - checked::div(d1, d2));
  };
  auto add = [&](double x) {
    const double curvature = d.D(2, x);
    if (curvature == 0) return;  // a flat point, neither maximum nor minimum
    const double fx = d.f(x);
    Extremum e{x, curvature < 0, std::fabs(fx) < kPossibleRootTolerance};
    size_t& count = e.isMaximum ? maxima : minima;
    if (count >= kMaxStudyResults) throw RuntimeError(err::SubscriptOutOfRange);
    ++count;
    result.extrema.push_back(e);
    result.list.push_back(extremumListText(e));
  };

  const ScanEnd end = scanSignChanges(s, slope, newton, add);
  result.error = end.error;
  result.interrupted = end.interrupted;
  if (end.interrupted)
    result.label = std::string(kInterruptedText);
  else if (end.completed)
    result.label = std::to_string(result.extrema.size()) + " extrema";
  return result;
}

ExtremaResult findExtrema(DerivativeEvaluator& d, const StudyFieldTexts& texts) {
  try {
    return findExtrema(d, readStudySettings(texts));
  } catch (const RuntimeError& e) {
    ExtremaResult result;
    result.error = e.number();
    return result;
  }
}

}  // namespace orvane
