#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "RegressionTestSupport.h"
#include "regression/RegressionProblem.h"

namespace orvane {
namespace {

using testing::column;
using testing::makeProblem;

TEST(RegressionProblem, NameRules) {
  struct Dependent {
    std::string name;
    bool valid;
  };
  const std::vector<Dependent> dependents = {
      {"y", true},   {"y2", true},  {"Yield", true}, {"Z9a", true}, {"", false},
      {"2y", false}, {"y_1", false}, {"y 1", false}, {" y", false}, {"y-", false},
      {"\xc3\xa9t", false},  // a letter, but not an ASCII one
      {"_y", false},
  };
  for (const Dependent& d : dependents) EXPECT_EQ(isValidDependentName(d.name), d.valid) << "[" << d.name << "]";

  struct Names {
    std::string text;
    int m;
    std::vector<std::string> parts;
    bool fits;
  };
  const std::vector<Names> names = {
      {"x,y", 2, {"x", "y"}, true},
      {"x, y", 2, {"x", " y"}, true},  // not trimmed: the blank starts the second name
      {"x", 1, {"x"}, true},
      {"x,,z", 3, {"x", "", "z"}, false},
      {"x,y", 1, {"x", "y"}, false},
      {"x,y", 3, {"x", "y"}, false},
      {"", 1, {""}, false},
      {"x,", 2, {"x", ""}, false},
      {",", 2, {"", ""}, false},
      {"a b,c_d,e-f", 3, {"a b", "c_d", "e-f"}, true},  // anything but "," goes
      {"x,y", 0, {"x", "y"}, false},
  };
  for (const Names& n : names) {
    const std::vector<std::string> parts = splitNames(n.text);
    EXPECT_EQ(parts, n.parts) << "[" << n.text << "]";
    EXPECT_EQ(namesFitOrder(parts, n.m), n.fits) << "[" << n.text << "] m=" << n.m;
    EXPECT_EQ(joinNames(parts), n.text) << "[" << n.text << "]";
  }
  EXPECT_EQ(joinNames({}), "");
}

RegressionProblem fiveSets() {
  return makeProblem(2, {{1, 10, 100}, {2, 20, 200}, {3, 30, 300}, {4, 40, 400}, {5, 50, 500}});
}

TEST(RegressionProblem, AddingSetsKeepsTheOldOnesAndAddsZeros) {
  RegressionProblem p = fiveSets();
  p.addDataSets(2);
  EXPECT_EQ(p.N, 7);
  EXPECT_GE(p.X.lastRow(), 7);
  EXPECT_EQ(column(p, 1), (std::vector<double>{1, 2, 3, 4, 5, 0, 0}));
  EXPECT_EQ(column(p, 2), (std::vector<double>{10, 20, 30, 40, 50, 0, 0}));
  EXPECT_EQ(column(p, 3), (std::vector<double>{100, 200, 300, 400, 500, 0, 0}));

  // After a delete the matrix has a spare row holding the old last set: an added set
  // must still start as zeros.
  p = fiveSets();
  p.deleteDataSet(5);
  p.addDataSets(1);
  EXPECT_EQ(column(p, 1), (std::vector<double>{1, 2, 3, 4, 0}));
  EXPECT_EQ(column(p, 3), (std::vector<double>{100, 200, 300, 400, 0}));

  // Nothing to add, or a count that would remove sets, changes nothing.
  for (int count : {0, -1, -5, -6}) {
    p = fiveSets();
    p.addDataSets(count);
    EXPECT_EQ(p.N, 5) << count;
    EXPECT_EQ(column(p, 1), (std::vector<double>{1, 2, 3, 4, 5})) << count;
  }
}

TEST(RegressionProblem, DeletingMovesTheLastSetIntoTheHole) {
  struct Case {
    int row;
    std::vector<double> x1;
  };
  const std::vector<Case> cases = {
      {2, {1, 5, 3, 4}},
      {1, {5, 2, 3, 4}},
      {5, {1, 2, 3, 4}},
  };
  for (const Case& c : cases) {
    RegressionProblem p = fiveSets();
    p.deleteDataSet(c.row);
    EXPECT_EQ(p.N, 4) << c.row;
    EXPECT_EQ(column(p, 1), c.x1) << c.row;
    std::vector<double> y;
    for (double x : c.x1) y.push_back(100 * x);
    EXPECT_EQ(column(p, 3), y) << c.row;
  }
  // Rows that are not data sets are left alone.
  for (int row : {0, -1, 6, 100}) {
    RegressionProblem p = fiveSets();
    p.deleteDataSet(row);
    EXPECT_EQ(p.N, 5) << row;
    EXPECT_EQ(column(p, 1), (std::vector<double>{1, 2, 3, 4, 5})) << row;
  }
  // Deleting down to nothing is allowed and stops there.
  RegressionProblem p = makeProblem(1, {{1, 2}});
  p.deleteDataSet(1);
  EXPECT_EQ(p.N, 0);
  p.deleteDataSet(1);
  EXPECT_EQ(p.N, 0);
}

TEST(RegressionProblem, SizeLimit) {
  EXPECT_FALSE(RegressionProblem::tooLarge(1, 3));
  EXPECT_FALSE(RegressionProblem::tooLarge(1, 1000000));
  EXPECT_TRUE(RegressionProblem::tooLarge(0, 3));
  EXPECT_TRUE(RegressionProblem::tooLarge(1, -1));
  EXPECT_TRUE(RegressionProblem::tooLarge(1, int64_t{1} << 31));
  EXPECT_TRUE(RegressionProblem::tooLarge(2147483647, 3));  // m + 2 must not wrap
  EXPECT_TRUE(RegressionProblem::tooLarge(10, kMaxDataCells / 12));
  EXPECT_FALSE(RegressionProblem::tooLarge(10, kMaxDataCells / 12 - 1));
}

}  // namespace
}  // namespace orvane
