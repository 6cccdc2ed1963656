#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "RegressionTestSupport.h"
#include "regression/CsvProblem.h"
#include "regression/RegressionProblem.h"

namespace orvane {
namespace {

using testing::column;
using testing::makeProblem;

TEST(RegressionProblem, NameRules) {
  const struct {
    std::string name;
    bool valid;
  } dependents[] = {{"y", true}, {"Z9a", true}, {"", false}, {"2y", false}, {"y-", false}, {"\xc3\xa9t", false}};
  for (const auto& d : dependents) EXPECT_EQ(isValidDependentName(d.name), d.valid) << "[" << d.name << "]";

  const struct { std::string text; int m; std::vector<std::string> parts; bool fits; } names[] = {
      {"x, y", 2, {"x", " y"}, true},  // not trimmed
      {"x,,z", 3, {"x", "", "z"}, false}, {"x,y", 1, {"x", "y"}, false}, {"x,y", 3, {"x", "y"}, false},
      {"", 1, {""}, false},
      {"a b,c_d,e-f", 3, {"a b", "c_d", "e-f"}, true},  // anything but "," goes
  };
  for (const auto& n : names) {
    const std::vector<std::string> parts = splitNames(n.text);
    EXPECT_EQ(parts, n.parts) << "[" << n.text << "]";
    EXPECT_EQ(namesFitOrder(parts, n.m), n.fits) << "[" << n.text << "] m=" << n.m;
    EXPECT_EQ(joinNames(parts), n.text) << "[" << n.text << "]";
  }
}

RegressionProblem fiveSets() {
  return makeProblem(2, {{1, 10, 100}, {2, 20, 200}, {3, 30, 300}, {4, 40, 400}, {5, 50, 500}});
}

// A table's header: each name the window would not take gets one it would, distinct
// from every other name in any case; accepted names stay.
TEST(RegressionProblem, HeaderNameCorrections) {
  const struct {
    std::vector<std::string> header;
    std::vector<std::string> corrected;
  } tables[] = {
      {{"stack.loss", "Air Flow", "Acid Conc.", "y_1"}, {"stackloss", "AirFlow", "AcidConc", "y1"}},
      {{"2010", "1st", "x"}, {"y2010", "x1st", "x"}},
      {{"y", "", "...", "x_", "X"}, {"y", "x2", "x3", "x4", "X"}},  // "x" is the accepted X's, in any case
      {{"a", "A", "a"}, {"a", "A2", "a3"}},
      {{"y", "x.1", "x1"}, {"y", "x12", "x1"}},  // a later accepted name is not taken
      {{"h\xc3\xb6he", "t"}, {"hhe", "t"}},
  };
  for (const auto& t : tables) {
    std::vector<std::string> names = t.header;
    for (const NameCorrection& c : NameCorrections(t.header)) {
      EXPECT_EQ(c.given, t.header[c.column]);
      names[c.column] = c.offered;
    }
    EXPECT_EQ(names, t.corrected);
    for (size_t j = 0; j < names.size(); ++j) EXPECT_TRUE(IsAcceptedColumnName(names, j)) << names[j];
  }
}

// Exported sets read back as they were, names with blanks or quotes included.
TEST(RegressionProblem, TableTextReadsBack) {
  const RegressionProblem p = makeProblem(2, {{1, -3.5, 7}, {1e-05, 2, 8}, {1.5e+20, 0.1, -9}}, {" y", "a\"b"}, "z");
  const RegressionProblem read = ParseCsvProblem("t.csv", CsvText(p));
  EXPECT_EQ(read.dependentName, "z");
  EXPECT_EQ(read.names, p.names);
  for (int j = 1; j <= 3; ++j) EXPECT_EQ(column(read, j), column(p, j)) << j;
}

TEST(RegressionProblem, AddAndDeleteSets) {
  // (Adding, deleting a set and down to none as the editor does: RegressionWindowTest.)
  const struct {
    int add, remove;  // delete first, then add
    std::vector<double> x1;
  } cases[] = {
      {1, 5, {1, 2, 3, 4, 0}},  // the spare row holding the old last set must not come back
      {0, 2, {1, 5, 3, 4}},     // the last set moves into the hole
      {-5, 0, {1, 2, 3, 4, 5}}, {-6, 0, {1, 2, 3, 4, 5}}, {0, -1, {1, 2, 3, 4, 5}}, {0, 6, {1, 2, 3, 4, 5}},
  };
  for (const auto& c : cases) {
    RegressionProblem p = fiveSets();
    p.deleteDataSet(c.remove);
    p.addDataSets(c.add);
    SCOPED_TRACE("add " + std::to_string(c.add) + " after deleting " + std::to_string(c.remove));
    EXPECT_EQ(p.N, static_cast<int>(c.x1.size()));
    EXPECT_GE(p.X.lastRow(), p.N);
    EXPECT_EQ(column(p, 1), c.x1);
    std::vector<double> y;
    for (double x : c.x1) y.push_back(100 * x);
    EXPECT_EQ(column(p, 3), y);
  }
}

TEST(RegressionProblem, SizeLimit) {
  EXPECT_TRUE(RegressionProblem::tooLarge(0, 3));
  EXPECT_TRUE(RegressionProblem::tooLarge(1, -1));
  EXPECT_TRUE(RegressionProblem::tooLarge(1, int64_t{1} << 31));
  EXPECT_TRUE(RegressionProblem::tooLarge(2147483647, 3));  // m + 2 must not wrap
  EXPECT_TRUE(RegressionProblem::tooLarge(10, kMaxDataCells / 12));
  EXPECT_FALSE(RegressionProblem::tooLarge(10, kMaxDataCells / 12 - 1));
}

}  // namespace
}  // namespace orvane
