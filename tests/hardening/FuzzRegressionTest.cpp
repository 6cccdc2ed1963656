// Every seed of the fuzz targets, and every input that once made a target fail (kept in
// fuzz-findings/<target>/), through the same checks the fuzzer makes.

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>

#include "../../fuzz/FuzzChecks.h"
#include "regression/RegressionTestSupport.h"
// The checks are compiled here too, so that this program needs no fuzzer.
#include "../../fuzz/FuzzChecks.cpp"

namespace orvane {
namespace {

namespace fs = std::filesystem;

// The inputs of one target: seeds and kept findings; how many were checked.
int checkAll(const std::string& target, const std::function<std::string(std::string_view)>& check) {
  int checked = 0;
  for (const fs::path& dir : {testing::sourceDir() / "fuzz" / "corpus" / target,
                              testing::sourceDir() / "tests" / "hardening" / "fuzz-findings" / target}) {
    if (!fs::is_directory(dir)) continue;
    for (const auto& entry : fs::directory_iterator(dir)) {
      SCOPED_TRACE(entry.path().string());
      EXPECT_EQ(check(testing::readText(entry.path())), "");
      ++checked;
    }
  }
  return checked;
}

TEST(FuzzRegression, SeedsAndKeptFindingsPassTheChecks) {
  EXPECT_GE(checkAll("fuzz_engine", fuzz::CheckEngine), 10);
  EXPECT_GE(checkAll("fuzz_regression_file", fuzz::CheckRegressionFile), 5);
  EXPECT_GE(checkAll("fuzz_stereo_import", fuzz::CheckStereoImport), 4);
}

}  // namespace
}  // namespace orvane
