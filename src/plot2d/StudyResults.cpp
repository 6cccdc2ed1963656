#include "plot2d/StudyResults.h"

namespace orvane {

std::vector<double> ExtremaResult::maxima() const {
  std::vector<double> xs;
  for (const Extremum& e : extrema)
    if (e.isMaximum) xs.push_back(e.x);
  return xs;
}

std::vector<double> ExtremaResult::minima() const {
  std::vector<double> xs;
  for (const Extremum& e : extrema)
    if (!e.isMaximum) xs.push_back(e.x);
  return xs;
}

int32_t ExtremaResult::possibleRootCount() const {
  int32_t count = 0;
  for (const Extremum& e : extrema)
    if (e.possibleRoot) ++count;
  return count;
}

bool StudyResults::displayed() const {
  auto shown = [](const std::optional<std::string>& label) { return label && !label->empty(); };
  return shown(roots.label) || shown(extrema.label) || shown(integral.label) ||
         !roots.list.empty() || !extrema.list.empty();
}

}  // namespace orvane
