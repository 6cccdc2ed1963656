// Saving over an earlier file: nothing of it may be lost when the new one cannot be
// written, and nothing of a group may be replaced when any member fails.

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "platform/SafeFile.h"

namespace orvane {
namespace {

namespace fs = std::filesystem;

class SafeFileTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() / ("orvane-safefile-" + std::to_string(::getpid()));
    fs::remove_all(dir_);
    fs::create_directories(dir_);
  }
  void TearDown() override { fs::remove_all(dir_); }
  std::string path(const std::string& name) const { return (dir_ / name).string(); }
  static std::string read(const std::string& file) { return ReadWholeFile(file).value_or("<missing>"); }
  size_t entries() const { return static_cast<size_t>(std::distance(fs::directory_iterator(dir_), {})); }

  fs::path dir_;
};

TEST_F(SafeFileTest, AGroupReplacesItsTargetsOnlyWhenEveryMemberIsWritten) {
  {
    SafeSave save;
    save.Lines(path("a.txt"), {"one", "two"});
    save.Text(path("b.txt"), "old b");
    save.Commit();
  }
  EXPECT_EQ(read(path("a.txt")), "one\r\ntwo\r\n");
  EXPECT_EQ(read(path("b.txt")), "old b");

  fs::create_directory(SafeSave::TemporaryName(path("b.txt")));  // b's temporary cannot be made
  try {
    SafeSave save;
    save.Text(path("a.txt"), "new a");
    save.Text(path("b.txt"), "new b");
    save.Commit();
    ADD_FAILURE() << "saved through a blocked temporary";
  } catch (const SaveError& e) {
    EXPECT_EQ(e.target(), path("b.txt"));
    EXPECT_NE(std::string(e.what()).find(path("b.txt")), std::string::npos);
  }
  EXPECT_EQ(read(path("a.txt")), "one\r\ntwo\r\n");
  EXPECT_EQ(read(path("b.txt")), "old b");
  EXPECT_FALSE(fs::exists(SafeSave::TemporaryName(path("a.txt"))));
}

TEST_F(SafeFileTest, PlacesThatCannotBeWrittenGiveAnErrorAndLeaveNothing) {
  EXPECT_THROW(SafeSave().Text(path("missing/x.txt"), "x"), SaveError);
  EXPECT_EQ(entries(), 0u);

  // Committing onto a folder of the same name fails at the rename.
  fs::create_directory(path("taken"));
  SafeSave onto;
  onto.Text(path("taken"), "x");
  EXPECT_THROW(onto.Commit(), SaveError);
}

TEST_F(SafeFileTest, ReadingAndSplittingLines) {
  std::ofstream(path("mixed.txt"), std::ios::binary) << "a\r\nb\n\r\nlast";
  const std::string text = read(path("mixed.txt"));
  EXPECT_EQ(SplitLines(text), (std::vector<std::string>{"a", "b", "", "last"}));
  EXPECT_EQ(SplitLines("one\r\n"), (std::vector<std::string>{"one"}));
  EXPECT_TRUE(SplitLines("").empty());

  std::string reason;
  EXPECT_FALSE(ReadWholeFile(path("none.txt"), &reason));
  EXPECT_FALSE(reason.empty());
  EXPECT_FALSE(ReadWholeFile(dir_.string(), &reason));  // a folder is not a file
}

}  // namespace
}  // namespace orvane
