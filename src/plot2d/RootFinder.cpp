#include "plot2d/RootFinder.h"

#include "platform/NumberText.h"
#include "platform/RuntimeError.h"
#include "plot2d/CheckedMath.h"
#include "plot2d/SignChangeScan.h"

namespace orvane {

RootResult findRoots(DerivativeEvaluator& d, const StudySettings& s) {
  d.prepareForRoots();
  const double h = d.steps().h;
  const double h2 = d.steps().h2;
  RootResult result;

  auto f = [&](const double* xs, int32_t n, double* ys) { return d.f(xs, n, ys); };
  auto newton = [&](double x) {
    const double fx = d.f(x);
    const double ahead = d.f(x + h);
    const double behind = d.f(x - h);
    const double correction =
        checked::div(checked::value(fx * h2), checked::value(ahead - behind));
    return checked::value(x - correction);
  };
  auto add = [&](double x) {
    // The list takes the text before the table refuses a 256th root.
    result.list.push_back(formatGeneral(x));
    if (result.roots.size() >= kMaxStudyResults) throw RuntimeError(err::SubscriptOutOfRange);
    result.roots.push_back(x);
  };

  const ScanEnd end = scanSignChanges(s, f, newton, add);
  result.error = end.error;
  result.interrupted = end.interrupted;
  if (end.interrupted)
    result.label = std::string(kInterruptedText);
  else if (end.completed)
    result.label = std::to_string(result.roots.size()) + " roots";
  return result;
}

RootResult findRoots(DerivativeEvaluator& d, const StudyFieldTexts& texts) {
  try {
    return findRoots(d, readStudySettings(texts));
  } catch (const RuntimeError& e) {
    RootResult result;
    result.error = e.number();
    return result;
  }
}

}  // namespace orvane
