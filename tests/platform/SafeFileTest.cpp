// Saving over an earlier file: nothing of it may be lost when the new one cannot be
// written, nothing of a group may be replaced when any member fails, and what is not a
// plain file the user may write is refused. Reading takes regular files only.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
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
  std::vector<std::string> entries(const std::string& folder = "") const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(dir_ / folder)) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
  }
  using Files = std::vector<std::pair<std::string, std::string>>;  // {target, text}
  static void save(const Files& files) {
    SafeSave group;
    for (const auto& [target, text] : files) group.Text(target, text);
    group.Commit();
  }
  // The error of saving `files` as one group; a group that saved is a failure.
  static SaveError saveFailure(const Files& files) {
    try {
      save(files);
    } catch (const SaveError& e) {
      return e;
    }
    ADD_FAILURE() << "saved";
    return SaveError("", "");
  }

  fs::path dir_;
};

TEST_F(SafeFileTest, AGroupReplacesItsTargetsOnlyWhenEveryMemberIsWritten) {
  SafeSave first;
  first.Lines(path("a.txt"), {"one", "two"});
  first.Text(path("b.txt"), "old b");
  first.Commit();
  EXPECT_EQ(read(path("a.txt")), "one\r\ntwo\r\n");
  EXPECT_EQ(read(path("b.txt")), "old b");

  fs::permissions(path("b.txt"), fs::perms::owner_read | fs::perms::group_read);  // b cannot be replaced
  const SaveError e = saveFailure({{path("a.txt"), "new a"}, {path("b.txt"), "new b"}});
  EXPECT_EQ(std::pair(e.target(), e.reason()), std::pair(path("b.txt"), std::string("Permission denied")));
  EXPECT_EQ(read(path("a.txt")), "one\r\ntwo\r\n");
  EXPECT_EQ(read(path("b.txt")), "old b");
  EXPECT_EQ(entries(), (std::vector<std::string>{"a.txt", "b.txt"}));  // no temporary left
}

// Each target is refused before anything is written, with the system's reason or the
// program's own, and nothing is left beside it.
TEST_F(SafeFileTest, TargetsThatAreNotPlainWritableFilesAreRefused) {
  fs::create_directory(path("folder"));
  ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0644), 0);
  std::ofstream(path("locked")) << "keep";
  fs::permissions(path("locked"), fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
  fs::create_symlink("loop", path("loop"));
  Files rows = {  // {target, reason}
      {path("missing/x.txt"), "No such file or directory"},
      {path("folder"), "Is a directory"},
      {path("pipe"), "not a regular file"},
      {path("locked"), "Permission denied"},  // also for root: no one may write it
      {path("loop"), "Too many levels of symbolic links"},
  };
  // A device node of our own (only root may make one): what root would otherwise replace.
  if (::mknod(path("null").c_str(), S_IFCHR | 0666, makedev(1, 3)) == 0)
    rows.push_back({path("null"), "not a regular file"});
  const std::vector<std::string> before = entries();
  for (const auto& [target, reason] : rows) {
    const SaveError e = saveFailure({{target, "new"}});
    EXPECT_EQ(e.reason(), reason) << target;
    EXPECT_EQ(std::string(e.what()), "Cannot write \"" + target + "\": " + reason);
  }
  EXPECT_EQ(entries(), before);
  EXPECT_EQ(read(path("locked")), "keep");
  EXPECT_TRUE(fs::is_fifo(path("pipe")));
}

TEST_F(SafeFileTest, AReplacedFileKeepsItsPermissionsAndALinkKeepsPointing) {
  const auto mode = fs::perms::owner_read | fs::perms::owner_write | fs::perms::others_read | fs::perms::owner_exec;
  std::ofstream(path("kept")) << "old";
  fs::permissions(path("kept"), mode);
  save({{path("kept"), "new"}});
  EXPECT_EQ(read(path("kept")), "new");
  EXPECT_EQ(fs::status(path("kept")).permissions(), mode);

  // A new file gets what the user's file-creation mask allows, as any new file does.
  const mode_t mask = ::umask(022);
  ::umask(mask);
  save({{path("fresh"), "x"}});
  EXPECT_EQ(static_cast<mode_t>(fs::status(path("fresh")).permissions()), 0666 & ~mask);

  // A link, relative and across folders, and one that leads to no file yet.
  fs::create_directory(path("real"));
  std::ofstream(path("real/target")) << "old";
  fs::create_symlink("real/target", path("link"));
  fs::create_symlink(path("real/later"), path("dangling"));
  save({{path("link"), "through the link"}, {path("dangling"), "made"}});
  EXPECT_TRUE(fs::is_symlink(path("link")) && fs::is_symlink(path("dangling")));
  EXPECT_EQ(read(path("real/target")), "through the link");
  EXPECT_EQ(read(path("real/later")), "made");
  EXPECT_EQ(entries("real"), (std::vector<std::string>{"later", "target"}));
}

// (Pipes, devices and folders offered to every reader: hardening/RegressionFileHostileTest.)
TEST_F(SafeFileTest, ReadingAndSplittingLines) {
  std::ofstream(path("mixed.txt"), std::ios::binary) << "a\r\nb\n\r\nlast";
  EXPECT_EQ(SplitLines(read(path("mixed.txt"))), (std::vector<std::string>{"a", "b", "", "last"}));
  EXPECT_EQ(SplitLines("one\r\n"), (std::vector<std::string>{"one"}));
  EXPECT_TRUE(SplitLines("").empty());
  // A regular file whose reading fails (here at once, as a failing disk fails): refused
  // with the system's reason.
  std::string reason;
  EXPECT_FALSE(ReadWholeFile("/proc/self/mem", &reason));
  EXPECT_EQ(reason, "Input/output error");
}

TEST_F(SafeFileTest, AFileLargerThanTheMemoryCanHoldIsRefusedBeforeReading) {
  // Sparse: as large as the memory available, yet it takes no room on the disk.
  const uint64_t size = AvailableMemory();
  {
    std::ofstream(path("huge")) << "";
  }
  std::error_code error;
  fs::resize_file(path("huge"), size, error);
  if (error) GTEST_SKIP() << "no sparse file of " << size << " bytes here: " << error.message();
  std::string reason;
  EXPECT_FALSE(ReadWholeFile(path("huge"), &reason));
  EXPECT_NE(reason.find("too large"), std::string::npos) << reason;
  EXPECT_NE(reason.find("of memory"), std::string::npos) << reason;
}

}  // namespace
}  // namespace orvane
