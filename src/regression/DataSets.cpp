#include "regression/DataSets.h"

#include <algorithm>

namespace orvane {

void MatrixSets::forEachRun(int size, const std::function<void(const SetRun&)>& use) const {
  SetRun run;
  run.columns.resize(static_cast<size_t>(problem_.m) + 2);
  for (int64_t first = 1; first <= problem_.N; first += size) {
    run.first = static_cast<int32_t>(first);
    run.count = static_cast<int>(std::min<int64_t>(size, problem_.N - first + 1));
    for (int j = 0; j <= problem_.m + 1; ++j) run.columns[static_cast<size_t>(j)] = problem_.X.column(j) + first;
    use(run);
  }
}

}  // namespace orvane
