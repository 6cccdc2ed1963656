// Saves that cannot complete: a place where no file can be made, a name the file system
// refuses, a device that fills up during the write. Each ends in a message naming the
// file, and the previous files stay as they were, with no temporary file left behind.

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>

#include <sys/resource.h>
#include <unistd.h>

#include "platform/RuntimeError.h"
#include "regression/RegressionFile.h"
#include "stereo/StereoExport.h"

namespace orvane {
namespace {

namespace fs = std::filesystem;

std::string contents(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

RegressionProblem problemOf(int sets) {
  RegressionProblem p;
  p.m = 2;
  p.N = sets;
  p.dependentName = "y";
  p.names = {"a", "b"};
  p.dimensionData();
  for (int i = 1; i <= sets; ++i)
    for (int j = 1; j <= 3; ++j) p.X(j, i) = i * 0.1 + j;
  return p;
}

class SaveFailure : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() / ("orvane-save-" + std::to_string(::getpid()));
    fs::remove_all(dir_);
    fs::create_directories(dir_);
    problem_ = (dir_ / "old.reg").string();
    WriteRegressionFiles(problem_, problemOf(3));
    oldProblem_ = contents(problem_);
    oldData_ = contents(problem_ + ".dat");
    stereo_ = (dir_ / "old.ste").string();
    WriteStereoFile(stereo_, StereoSettings{}, {"a=1"});
    oldStereo_ = contents(stereo_);
  }
  void TearDown() override { fs::remove_all(dir_); }

  // The previous files exactly as they were, and nothing else in the folder.
  void expectUntouched() {
    EXPECT_EQ(contents(problem_), oldProblem_);
    EXPECT_EQ(contents(problem_ + ".dat"), oldData_);
    EXPECT_EQ(contents(stereo_), oldStereo_);
    int files = 0;
    for (const auto& entry : fs::directory_iterator(dir_)) {
      ++files;
      EXPECT_TRUE(entry.path() == problem_ || entry.path() == problem_ + ".dat" || entry.path() == stereo_)
          << "left behind: " << entry.path();
    }
    EXPECT_EQ(files, 3);
  }

  fs::path dir_;
  std::string problem_, oldProblem_, oldData_, stereo_, oldStereo_;
};

// Files may grow to `bytes` only, as on a device that is nearly full (/dev/full cannot
// stand in: a save goes to a temporary file beside its target and renames it, so it
// never writes into the target); the signal the limit raises is ignored so the write
// fails instead.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    getrlimit(RLIMIT_FSIZE, &saved_);
    previous_ = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit = saved_;
    limit.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &saved_);
    std::signal(SIGXFSZ, previous_);
  }

 private:
  rlimit saved_{};
  void (*previous_)(int) = nullptr;
};

TEST_F(SaveFailure, AFullDeviceLeavesThePreviousFilesIntact) {
  // The new files are far larger than what fits; the old ones are small.
  const RegressionProblem bigger = problemOf(20000);
  StereoSettings settings;
  settings.equationZ = std::string(100000, 'x');
  {
    FileSizeLimit limit(4096);
    try {
      WriteRegressionFiles(problem_, bigger);
      ADD_FAILURE() << "saved past the limit";
    } catch (const RegressionFileError& e) {
      EXPECT_NE(std::string(e.what()).find(problem_), std::string::npos) << e.what();
    }
    try {
      WriteStereoFile(stereo_, settings, {"a=2"});
      ADD_FAILURE() << "saved past the limit";
    } catch (const RuntimeError& e) {
      EXPECT_EQ(e.number(), err::PathFileAccess);
      EXPECT_NE(e.description().find(stereo_), std::string::npos) << e.description();
    }
  }
  expectUntouched();
}

TEST_F(SaveFailure, OnlyTheDataFileTooLargeStillKeepsThePair) {
  // The problem file fits, its data file does not: neither may change, or the
  // pair would no longer belong together.
  const RegressionProblem bigger = problemOf(20000);
  {
    FileSizeLimit limit(8192);
    EXPECT_THROW(WriteRegressionFiles(problem_, bigger), RegressionFileError);
  }
  expectUntouched();
}

// Faults that hold for every user, root included: a folder that is a file, a name the
// file system refuses, and a device with no room left at all.
TEST_F(SaveFailure, SavesThatCannotStartGiveAMessageNamingTheFile) {
  const std::string tooLong = (dir_ / (std::string(300, 'n') + ".reg")).string();
  const struct {
    std::string problem, stereo;
    rlim_t room;
  } rows[] = {
      {problem_ + ".dat/new.reg", stereo_ + "/new.ste", RLIM_INFINITY},
      {tooLong, tooLong, RLIM_INFINITY},
      {problem_, stereo_, 0},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.problem.substr(0, 80));
    std::optional<FileSizeLimit> noRoom;
    if (row.room != RLIM_INFINITY) noRoom.emplace(row.room);
    try {
      WriteRegressionFiles(row.problem, problemOf(5));
      ADD_FAILURE() << "saved";
    } catch (const RegressionFileError& e) {
      EXPECT_NE(std::string(e.what()).find(row.problem), std::string::npos) << e.what();
    }
    try {
      WriteStereoFile(row.stereo, StereoSettings{}, {});
      ADD_FAILURE() << "saved";
    } catch (const RuntimeError& e) {
      EXPECT_EQ(e.number(), err::PathFileAccess);
      EXPECT_NE(e.description().find(row.stereo.substr(0, 40)), std::string::npos) << e.description();
    }
  }
  expectUntouched();
}

TEST(SaveNowhere, PlacesWhereNoFileCanBeMadeGiveAMessage) {
  // Even for root: no file is ever created in these.
  for (const std::string target : {"/proc/orvane-hostile.reg", "/dev/null/orvane.reg", "/nonexistent-dir/x.reg"}) {
    SCOPED_TRACE(target);
    try {
      WriteRegressionFiles(target, problemOf(2));
      ADD_FAILURE() << "saved";
    } catch (const RegressionFileError& e) {
      EXPECT_NE(std::string(e.what()).find(target), std::string::npos) << e.what();
    }
    try {
      WriteStereoFile(target, StereoSettings{}, {});
      ADD_FAILURE() << "saved";
    } catch (const RuntimeError& e) {
      EXPECT_EQ(e.number(), err::PathFileAccess);
    }
    EXPECT_FALSE(fs::exists(target));
  }
}

}  // namespace
}  // namespace orvane
