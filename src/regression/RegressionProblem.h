#pragma once
// The regression problem the main window holds for the whole run: the variables, the
// data sets, and the fit once it has been computed.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace orvane {

// The data matrix X(j, i): column j = 0 the constant term (the solver's), 1..m the
// independent variables, m + 1 the given dependent value; row i = 1..N the data sets
// (row 0 exists and is unused). Stored column by column so that one variable over a
// million sets is one contiguous run.
class DataMatrix {
 public:
  DataMatrix() = default;
  // Zero-filled, columns 0..lastColumn by rows 0..lastRow.
  DataMatrix(int lastColumn, int lastRow);

  double& operator()(int column, int row) { return values_[index(column, row)]; }
  double operator()(int column, int row) const { return values_[index(column, row)]; }
  // Rows 0..lastRow() of one column.
  double* column(int column) { return values_.data() + index(column, 0); }
  const double* column(int column) const { return values_.data() + index(column, 0); }

  int lastColumn() const { return columns_ - 1; }
  int lastRow() const { return rows_ - 1; }
  bool empty() const { return values_.empty(); }

  // Cells a matrix of that shape would hold, to refuse sizes memory cannot take.
  static int64_t cellCount(int lastColumn, int lastRow);

 private:
  size_t index(int column, int row) const {
    return static_cast<size_t>(column) * static_cast<size_t>(rows_) + static_cast<size_t>(row);
  }

  // Leaves new cells unset, so that the constructor zeroes them on every core at once.
  template <typename T>
  struct Unset : std::allocator<T> {
    template <typename U>
    struct rebind {
      using other = Unset<U>;
    };
    template <typename U>
    void construct(U* p) noexcept {
      ::new (static_cast<void*>(p)) U;
    }
    template <typename U, typename... Args>
    void construct(U* p, Args&&... args) {
      ::new (static_cast<void*>(p)) U(std::forward<Args>(args)...);
    }
  };

  int columns_ = 0;
  int rows_ = 0;
  std::vector<double, Unset<double>> values_;
};

// The five figures of a fit, in the order they are listed, saved and printed.
struct FitStatistics {
  double correlation = 0;       // correlation coefficient, never negative
  double standardError = 0;     // standard error of estimate (unbiased), divisor N - 2
  double residualSquares = 0;   // sum of squared residuals
  double averageGiven = 0;      // average of the given dependent values
  double averageEstimated = 0;  // average of the estimates
};

struct RegressionProblem {
  int32_t m = 0;  // independent variables
  int32_t N = 0;  // data sets
  std::vector<std::string> names;  // m names, in the order of X's columns 1..m
  std::string dependentName;
  DataMatrix X;                  // 0..m+1 by 0..N (may have spare rows after a delete)
  std::vector<double> A;         // coefficients A(0)..A(m), plus one spare element
  FitStatistics statistics;
  bool computed = false;         // A and the statistics belong to the current data
  bool dataDimensioned = false;  // X has been created; N now changes only by adding sets

  // X zero-filled for the current m and N.
  void dimensionData();
  // Adds `count` zero-filled sets after the last one; the existing sets keep their values.
  // A count below 1 changes nothing.
  void addDataSets(int32_t count);
  // Whether a matrix for m variables and n sets is beyond what the program creates.
  static bool tooLarge(int32_t m, int64_t n);
  // Removes set `row` (1..N) by moving the last set into its place; any other row
  // changes nothing.
  void deleteDataSet(int32_t row);
};

// The problem's name rules. A dependent-variable name is an ASCII letter followed by
// letters and digits. The names field is split at every "," without trimming, and
// fits m only with exactly m non-empty parts.
bool isValidDependentName(const std::string& name);
std::vector<std::string> splitNames(const std::string& text);
bool namesFitOrder(const std::vector<std::string>& names, int32_t m);
std::string joinNames(const std::vector<std::string>& names);

// The largest matrix the program creates; a bigger problem is refused as "Out of memory"
// rather than left to exhaust the machine.
constexpr int64_t kMaxDataCells = int64_t{1} << 28;

}  // namespace orvane
