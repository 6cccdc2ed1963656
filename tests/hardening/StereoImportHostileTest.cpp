// Stereo files no one should have to import: near misses of the magic, garbage, huge
// lines, absurd counts (values that are not numbers: StereoOutputTest). Each ends in a
// status and a short message naming the line; an incompatible file changes nothing.

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "hardening/AllocationProbe.h"
#include "stereo/StereoExport.h"

namespace orvane {
namespace {

// A file whose every record is right, up to the constants.
const std::string kHead =
    "\"STEREO\",0\r\n\"x*y\"\r\n2,0,0.5,10,3\r\n1,2,3\r\n-1,1,-2,2,-3,3\r\n0,1,0,2\r\n5,6,2,3\r\n"
    "1,1,1,10,20,30,1,2,3\r\n1,3\r\n";

StereoImport parse(const std::string& text) { return ParseStereoFile(text, "hostile.ste", StereoFields{}); }

TEST(StereoImportHostile, NearMissesAndBinaryGarbageEndInAStatusAndAMessage) {
  for (const char* nearMiss : {"", "\"CURVE\",0\r\n", "STEREOX,0\r\n", "\r\n\"STEREO\",0\r\n"})
    EXPECT_EQ(parse(nearMiss).status, ImportStatus::Incompatible) << nearMiss;
  std::mt19937 random(7);
  const StereoFields before;
  for (int round = 0; round < 300; ++round) {
    std::string garbage(1 + random() % 4096, '\0');
    for (char& c : garbage) c = static_cast<char>(random());
    SCOPED_TRACE(round);
    const StereoImport alone = parse(garbage);
    EXPECT_EQ(alone.status, ImportStatus::Incompatible);
    EXPECT_EQ(alone.message, kIncompatibleFile);
    EXPECT_EQ(alone.fields.equationZ, before.equationZ);
    // After the magic, and after a valid part of the file.
    for (const std::string& text : {"\"STEREO\",0\r\n" + garbage, kHead.substr(0, 60) + garbage}) {
      const StereoImport read = parse(text);
      EXPECT_EQ(read.status, ImportStatus::Malformed);
      EXPECT_GE(read.line, 1);
      EXPECT_NE(read.message.find("hostile.ste"), std::string::npos);
    }
  }
}

TEST(StereoImportHostile, TenMegabyteLinesGiveAShortMessageAndAbsurdCountsAllocateNothing) {
  const std::string digits(10 << 20, '9');
  const std::string text(10 << 20, 'q');
  struct Row {
    const char* what;
    std::string file;
    int line;
  };
  const Row rows[] = {
      {"flag", "\"STEREO\"," + digits + "\r\n", 1},
      {"count", "\"STEREO\",0\r\n\"x\"\r\n2,0,0.5," + digits + ",3\r\n", 3},
      {"single", "\"STEREO\",0\r\n\"x\"\r\n" + text + ",0,0.5,10,3\r\n", 3},
      {"constants count", kHead + text + "\r\n", 10},
      {"many items", "\"STEREO\",0\r\n\"x\"\r\n" + std::string(10 << 20, ',') + "\r\n", 3},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    test::resetLargestAllocation();
    const StereoImport read = parse(row.file);
    EXPECT_EQ(read.status, ImportStatus::Malformed);
    EXPECT_EQ(read.line, row.line);
    EXPECT_LT(read.message.size(), 1000u) << read.message.substr(0, 300);
    // Reading a line costs a few times its own size, not a string per item of it.
    EXPECT_LT(test::largestAllocation(), size_t{64} << 20);
  }
  // A 10 MB equation is text like any other: read whole.
  const StereoImport longEquation =
      parse("\"STEREO\",0\r\n\"" + text + "\"\r\n" + kHead.substr(kHead.find("2,0,0.5")) + "0\r\n");
  EXPECT_EQ(longEquation.status, ImportStatus::Ok) << longEquation.message.substr(0, 300);
  EXPECT_EQ(longEquation.fields.equationZ.size(), text.size());
  for (const char* count : {"1000000000", "2147483647", "1E+300", "-1", "1.5", "NaN", "999999"}) {
    SCOPED_TRACE(count);
    test::resetLargestAllocation();
    const StereoImport read = parse(kHead + count + "\r\na=1\r\n");
    EXPECT_LT(test::largestAllocation(), size_t{1} << 16);
    EXPECT_EQ(read.status, ImportStatus::Malformed);
    EXPECT_GE(read.line, 10);
  }
}

}  // namespace
}  // namespace orvane
