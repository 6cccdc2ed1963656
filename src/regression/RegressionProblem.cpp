#include "regression/RegressionProblem.h"

#include <algorithm>
#include <stdexcept>

#include "platform/LargeBuffer.h"
#include "platform/WorkParts.h"

namespace orvane {

DataMatrix::DataMatrix(int lastColumn, int lastRow)
    : columns_(lastColumn + 1), rows_(lastRow + 1) {
  if (lastColumn < 0 || lastRow < 0) throw std::invalid_argument("negative matrix bound");
  const size_t cells = static_cast<size_t>(columns_) * static_cast<size_t>(rows_);
  ReserveLarge(values_, cells);
  values_.resize(cells);
  // Zeroed in parts at once: most of the time goes into first touching the memory.
  const int parts = cells >= (size_t{1} << 20) ? WorkPartCount() : 1;
  RunParts(parts, [&](int k) {
    const size_t first = cells / parts * k, last = k + 1 == parts ? cells : cells / parts * (k + 1);
    std::fill(values_.begin() + static_cast<std::ptrdiff_t>(first), values_.begin() + static_cast<std::ptrdiff_t>(last), 0.0);
  });
}

int64_t DataMatrix::cellCount(int lastColumn, int lastRow) {
  return (int64_t{lastColumn} + 1) * (int64_t{lastRow} + 1);
}

void RegressionProblem::dimensionData() {
  X = DataMatrix(m + 1, N);
  dataDimensioned = true;
}

void RegressionProblem::addDataSets(int32_t count) {
  if (count <= 0) return;  // a smaller matrix would not hold the sets copied into it
  const int32_t oldN = N;
  DataMatrix grown(m + 1, N + count);
  // Column 0 belongs to the solver, which sets it at every computation.
  for (int j = 1; j <= m + 1; ++j) std::copy_n(X.column(j) + 1, oldN, grown.column(j) + 1);
  X = std::move(grown);
  N = oldN + count;
}

bool RegressionProblem::tooLarge(int32_t m, int64_t n) {
  if (m < 1 || n < 0 || n >= INT32_MAX) return true;
  return (int64_t{m} + 2) * (n + 1) > kMaxDataCells;
}

void RegressionProblem::deleteDataSet(int32_t row) {
  if (row < 1 || row > N) return;
  for (int j = 1; j <= m + 1; ++j) X(j, row) = X(j, N);
  --N;
}

namespace {
bool isAsciiLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
bool isAsciiDigit(char c) { return c >= '0' && c <= '9'; }
}  // namespace

bool isValidDependentName(const std::string& name) {
  if (name.empty() || !isAsciiLetter(name[0])) return false;
  return std::all_of(name.begin() + 1, name.end(), [](char c) { return isAsciiLetter(c) || isAsciiDigit(c); });
}

std::vector<std::string> splitNames(const std::string& text) {
  std::vector<std::string> parts;
  size_t start = 0;
  for (;;) {
    const size_t comma = text.find(',', start);
    parts.push_back(text.substr(start, comma == std::string::npos ? std::string::npos : comma - start));
    if (comma == std::string::npos) return parts;
    start = comma + 1;
  }
}

bool namesFitOrder(const std::vector<std::string>& names, int32_t m) {
  if (m < 1 || names.size() != static_cast<size_t>(m)) return false;
  return std::none_of(names.begin(), names.end(), [](const std::string& n) { return n.empty(); });
}

std::string joinNames(const std::vector<std::string>& names) {
  std::string joined;
  for (size_t i = 0; i < names.size(); ++i) {
    if (i > 0) joined += ',';
    joined += names[i];
  }
  return joined;
}

}  // namespace orvane
