#include "plot2d/Integrator.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "platform/NumberText.h"
#include "platform/RuntimeError.h"
#include "platform/StopCheck.h"
#include "plot2d/CheckedMath.h"

namespace orvane {

std::string integralErrorText(int32_t error) {
  switch (error) {
    case err::InvalidCall:
    case err::AlreadyReported:
      return "Invalid procedure call or argument";
    case err::Overflow:
      return "overflow";
    case err::DivisionByZero:
      return "division by zero";
    default:
      return std::string();
  }
}

IntegralResult integrate(DerivativeEvaluator& d, const StudySettings& s) {
  using checked::value;
  IntegralResult result;
  try {
    const double a = s.xlower;
    double q = value((s.xupper - a) / 2);
    const double fb = d.f(s.xupper);
    const double ends = value(fb + d.f(a));
    const double middle = d.f(a + q);
    double previous = value((4 * middle + ends) * (q / 3));

    // Sums of the values at the nodes by their Boole weight: 14 at the joints of two
    // panels, 12 at the panel middles, 32 at the odd nodes.
    double w12 = middle;
    double w14 = 0;
    const double upperOdd = d.f(a + 3 * q / 2);
    double w32 = value(upperOdd + d.f(a + q / 2));
    double current = value((12 * w12 + 7 * ends + 32 * w32) * q / 45);
    int32_t panels = 2;
    std::vector<double> xs(EvaluationRunPoints), ys(EvaluationRunPoints);

    for (int32_t cycles = 0;;) {
      if ((std::fabs(current - previous) <= s.err && panels >= s.n) || cycles >= s.maxcy) break;
      if (panels > std::numeric_limits<int32_t>::max() / 2) throw RuntimeError(err::Overflow);
      panels *= 2;
      q *= 0.5;
      ++cycles;
      w14 = value(w14 + w12);
      w12 = w32;
      previous = current;
      w32 = 0;
      double x = a + q / 2;
      // The new nodes a run at a time, summed in their order.
      for (int32_t j = 0; j < panels;) {
        const int32_t m = std::min(EvaluationRunPoints, panels - j);
        for (int32_t k = 0; k < m; ++k) {
          xs[k] = x;
          x += q;
        }
        for (int32_t k = 0; k < m;) {
          const int32_t taken = d.f(xs.data() + k, m - k, ys.data() + k);
          for (const int32_t end = k + taken; k < end; ++k) w32 = value(w32 + ys[k]);
        }
        j += m;
      }
      current = value((7 * ends + 12 * w12 + 14 * w14 + 32 * w32) * q / 45);
    }

    if (std::fabs(current - previous) > s.err || panels < s.n) {
      result.label = "No convergence";
    } else {
      result.computed = true;
      result.value = current;
      result.label = formatGeneral(current);
    }
  } catch (const RuntimeError& e) {
    result.error = e.number();
    std::string text = integralErrorText(e.number());
    if (!text.empty()) result.label = std::move(text);
  } catch (const WorkInterrupted&) {
    result.interrupted = true;
    result.label = std::string(kInterruptedText);
  }
  return result;
}

IntegralResult integrate(DerivativeEvaluator& d, const StudyFieldTexts& texts) {
  try {
    return integrate(d, readStudySettings(texts));
  } catch (const RuntimeError& e) {
    IntegralResult result;
    result.error = e.number();
    std::string text = integralErrorText(e.number());
    if (!text.empty()) result.label = std::move(text);
    return result;
  }
}

}  // namespace orvane
