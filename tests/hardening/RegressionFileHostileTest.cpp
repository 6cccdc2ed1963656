// Regression file pairs and tables no one should have to open: garbage, absurd counts,
// huge lines, values that are not numbers. Each is refused with a message naming the
// file and the line, without allocating for what the header claims. (Pipes, devices and
// folders, to every reader through the commands: RegressionCommandsTest; names that
// survive a save: RegressionFileTest.)

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "hardening/AllocationProbe.h"
#include "regression/RegressionTestSupport.h"

namespace orvane {
namespace {

const std::string kGoodProblem = "3,1,#FALSE#,\"y\"\r\nx\r\n";
const std::string kGoodData = "3,1\r\n 1\r\n 2\r\n 2\r\n 4\r\n 3\r\n 6\r\n";

// Each bad pair is refused with a message that starts with the file and the line at
// fault (the data file alone for sizes beyond memory), short enough for a message box;
// a huge line costs a few times its own size, not a string per field of it (a table of
// 10 MB of commas once took 700 MB), and counts that promise more than the file or the
// memory holds are refused before the data matrix exists.
TEST(RegressionFileHostile, BadPairsNameTheFileAndTheLine) {
  const std::string huge(10 << 20, '7'), commas(10 << 20, ',');
  const auto head = [](const std::string& first, const std::string& rest = "x\r\n") { return first + "\r\n" + rest; };
  struct Row {
    std::string what, problemText, data, where;
    size_t allocationLimit = size_t{64} << 20;
    bool table = false;  // read as a table of text
  };
  std::vector<Row> rows = {
      {"empty problem file", "", kGoodData, "hostile.reg, line 1:"},
      {"flag not a boolean", head("3,1,1,\"y\""), kGoodData, "hostile.reg, line 1:"},
      {"field missing", head("3,1,#FALSE#"), kGoodData, "hostile.reg, line 1:"},
      {"open quote", head("3,1,#FALSE#,\"y"), kGoodData, "hostile.reg, line 1:"},
      {"huge m, ends early", head("3,2000000000,#FALSE#,\"y\""), kGoodData, "hostile.reg, line 3:"},
      {"ends before the statistics", head("3,1,#TRUE#,\"y\"", "x\r\n 0\r\n 2\r\n"), kGoodData, "hostile.reg, line 5:"},
      {"four statistics", head("3,1,#TRUE#,\"y\"", "x\r\n 0\r\n 2\r\n1,0,0,4\r\n"), kGoodData, "hostile.reg, line 5:"},
      // Names the writer could not give back as they were (fuzz findings: written back, the
      // first could not be read again, the second became two names).
      {"two names on a line", head("3,1,#FALSE#,\"y\"", "a,b\r\n"), kGoodData, "hostile.reg, line 2:"},
      {"finding: quoted dependent", "2,2,#FALSE#,iii \"dep\" \n a b\"\n c \n", "2,2\n1\n2\n3\n4\n5\n6\n",
       "hostile.reg, line 1:"},
      {"finding: comma in a name", "1,1,#FALSE#,\"y\"\n\"a,b\"\n", "1,1\n1\n2\n", "hostile.reg, line 2:"},
      {"empty data file", kGoodProblem, "", "hostile.reg.dat, line 1:"},
      {"data ends early", kGoodProblem, "3,1\r\n 1\r\n 2\r\n 2\r\n 4\r\n", "hostile.reg.dat, line 6:"},
      {"data ends before the statistics", head("3,1,#TRUE#,\"y\"", "x\r\n 0\r\n 2\r\n1,0,0,4,4\r\n"), kGoodData,
       "hostile.reg.dat, line 8:"},
      {"more sets than memory", head("2000000000,1,#FALSE#,\"y\""), "2000000000,1\r\n 1\r\n", "hostile.reg.dat: "},
      {"10 MB count", head(huge + ",1,#FALSE#,\"y\""), kGoodData, "hostile.reg, line 1:"},
      {"10 MB of commas for the header", head(commas), kGoodData, "hostile.reg, line 1:"},
      {"10 MB value", kGoodProblem, "3,1\r\n 1\r\n" + huge + "\r\n 2\r\n 4\r\n 3\r\n 6\r\n",
       "hostile.reg.dat, line 3:"},
      {"10 MB of commas for a value", kGoodProblem, "3,1\r\n" + commas + "\r\n 2\r\n 2\r\n 4\r\n 3\r\n 6\r\n",
       "hostile.reg.dat, line 2:"},
      {"10 MB data counts", kGoodProblem, huge + "\r\n", "hostile.reg.dat, line 1:"},
      {"table: a 10 MB field", "y,x\n1," + huge + "x\n", "",
       "hostile.csv, line 2: expected a number in column 2 (x), not \"" + huge.substr(0, 40) + "...\".", 40 << 20, true},
      {"table: 10 MB of commas in a set", "y,x\n1" + commas + "\n", "",
       "hostile.csv, line 2: expected 2 numbers separated by \",\", found 10485761 fields.", 40 << 20, true},
      {"table: 10 MB of commas in the header", "y" + commas + "\n", "",
       "hostile.csv, line 1: expected at most 16383 columns (more variables than a fit can solve), found 10485761.",
       40 << 20, true},
      {"table: a 10 MB name of quotes", "y," + std::string(10 << 20, '"') + "\n", "",
       "hostile.csv, line 1: expected at least 3 data sets, found 0.", 40 << 20, true},
  };
  // Counts that are no count, or out of range; those of the data file must also be the
  // problem file's.
  for (const char* counts : {"three,1", "-1,1", "3,0", "1.5,1", "2147483648,1", "1E+300,1", "3 3,1", "3,", "NaN,1"})
    rows.push_back({counts, head(counts + std::string(",#FALSE#,\"y\"")), kGoodData, "hostile.reg, line 1:"});
  for (const char* counts : {"4,1", "3,2", "0,1", "-3,1", "3"})
    rows.push_back({counts, kGoodProblem, counts + kGoodData.substr(3), "hostile.reg.dat, line 1:"});
  for (const char* counts : {"1000000000,1", "2147483647,1", "50000000,1", "1000000,2", "1,2147483647", "1000000000,3",
                             "200000000,1"}) {
    const int m = std::stoi(std::string(counts).substr(std::string(counts).find(',') + 1));
    std::string names;
    for (int j = 0; j < m && m < 10; ++j) names += "x" + std::to_string(j) + "\r\n";
    rows.push_back({counts, head(counts + std::string(",#FALSE#,\"y\""), names),
                    counts + std::string("\r\n 1\r\n 2\r\n 3\r\n"), "hostile.reg", size_t{1} << 20});
  }
  // Garbage in either file, and after a valid start of the problem file.
  std::mt19937 random(20261123);
  for (int round = 0; round < 300; ++round) {
    std::string garbage(1 + random() % 4096, '\0');
    for (char& c : garbage) c = static_cast<char>(random());
    const std::string what = "garbage " + std::to_string(round);
    rows.push_back({what + " for the problem file", garbage, kGoodData, "hostile.reg"});
    rows.push_back({what + " for the data file", kGoodProblem, garbage, "hostile.reg.dat"});
    rows.push_back({what + " after the counts", "3,1,#FALSE#,\"y\"\r\n" + garbage, garbage, "hostile.reg"});
  }
  // Values that are no finite number, in the data and in the coefficients of a fit.
  for (const char* value : {"NaN", "nan", "-nan", "Inf", "-Infinity", "inf", "1E+400", "-1E+309", "1.#INF", "1.#QNAN",
                            "0x1p3", "", "1,2", "1 2", "--1", "1e", "\x01"})
    rows.push_back({value, kGoodProblem, "3,1\r\n 1\r\n 2\r\n 2\r\n" + std::string(value) + "\r\n 3\r\n 6\r\n",
                    "hostile.reg.dat, line 5: expected the value of y in data set 2"});
  for (const char* value : {"NaN", "Inf", "1E+999"})
    rows.push_back({value, head("3,1,#TRUE#,\"y\"", "x\r\n 1\r\n" + std::string(value) + "\r\n1,0,0,0,0\r\n"),
                    kGoodData, "hostile.reg, line 4:"});
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    test::resetLargestAllocation();
    const std::string message =
        testing::refusal(row.table ? "hostile.csv" : "hostile.reg", row.problemText, row.data, row.table);
    EXPECT_LT(test::peakAllocated(), row.allocationLimit);
    EXPECT_EQ(message.substr(0, row.where.size()), row.where) << message.substr(0, 200);
    EXPECT_LT(message.size(), 1000u);
  }
}

}  // namespace
}  // namespace orvane
