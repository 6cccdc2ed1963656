#pragma once
// The data sets of a fit as the fit reads them: pass after pass over the sets in order,
// a run of consecutive sets at a time. They come from the problem's own matrix, or from
// a file read again for every pass, so that a fit of any number of sets needs no more
// memory than one run.

#include <cstdint>
#include <functional>
#include <vector>

#include "regression/RegressionProblem.h"

namespace orvane {

// Sets first .. first + count - 1: column(j)[k] is X(j, first + k) for j = 0 (all ones,
// the constant term) to m + 1 (the given dependent value).
struct SetRun {
  int32_t first = 1;
  int count = 0;
  std::vector<const double*> columns;
  const double* column(int j) const { return columns[static_cast<size_t>(j)]; }
};

class DataSets {
 public:
  virtual ~DataSets() = default;
  virtual int32_t m() const = 0;
  virtual int32_t N() const = 0;
  // Calls `use` with sets 1..N in order, in runs of `size` sets (the last may be
  // shorter). A run is valid only during its call.
  virtual void forEachRun(int size, const std::function<void(const SetRun&)>& use) const = 0;
};

// The sets of a problem's matrix, whose column 0 must hold ones (Compute sets them).
class MatrixSets : public DataSets {
 public:
  explicit MatrixSets(const RegressionProblem& problem) : problem_(problem) {}
  int32_t m() const override { return problem_.m; }
  int32_t N() const override { return problem_.N; }
  void forEachRun(int size, const std::function<void(const SetRun&)>& use) const override;

 private:
  const RegressionProblem& problem_;
};

}  // namespace orvane
