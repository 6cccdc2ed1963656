#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "platform/RecordingPrinterPage.h"
#include "stereo/StereoExport.h"
#include "stereo/StereoReport.h"
#include "stereo/StereoTestDoubles.h"

namespace orvane {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

class StereoFileTest : public ::testing::Test {
 protected:
  void SetUp() override { fs::create_directories(dir_); }
  void TearDown() override { fs::remove_all(dir_); }
  std::string path(const char* name) const { return (dir_ / name).string(); }
  static std::string slurp(const std::string& p) {
    std::ifstream in(p, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
  static void put(const std::string& p, const std::string& text) { std::ofstream(p, std::ios::binary) << text; }
  Lines entries() const {
    Lines names;
    for (const auto& entry : fs::directory_iterator(dir_)) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
  }

  const ::testing::UnitTest& run_ = *::testing::UnitTest::GetInstance();
  const fs::path dir_ = fs::temp_directory_path() / ("stereo_export_" + std::to_string(run_.random_seed()) + "_" +
                                                     run_.current_test_info()->name());
};

TEST_F(StereoFileTest, DefaultSettingsWriteTheseExactLinesAndExportThenImportRestoresEverySetting) {
  const char* const expected =
      "\"STEREO\",0\r\n\"(x-1)*x*(x+1)*(y-1)*y*(y+1)*5\"\r\n1,0,1,5000,5\r\n0,0,0\r\n-2.5,2.5,-2,2,-1.5,1.5\r\n"
      "-1,1,-1,1\r\n4,4,1,1\r\n1,1,1,0,0,0,0,0,0\r\n0,0\r\n 0 \r\n";
  WriteStereoFile(path("plot.txt"), StereoSettings{}, {});
  EXPECT_EQ(slurp(path("plot.txt")), expected);
  EXPECT_EQ(entries(), Lines{"plot.txt"});  // no temporary left
  StereoSettings s;  // parametric: the x and y equations on line 2, quotes doubled
  s.parametric = true;
  s.equationX = "Cos(u)";
  s.equationY = "say \"hi\"";
  s.background = kBackgroundBlack;
  s.selector = kZxy;
  const std::string text = FormatStereoFile(s, {"a=2.37", "b=-1"});
  EXPECT_EQ(text.substr(0, 41), "\"STEREO\",1\r\n\"Cos(u)\",\"say \"\"hi\"\"\"\r\n\"(x-1)");
  EXPECT_NE(text.find("\r\n1,5\r\n 2 \r\na=2.37\r\nb=-1\r\n"), std::string::npos);
  // Parametric, so that every equation goes out and comes back (explicit files: below).
  StereoFields f;  // every field away from its default, a comma inside a quoted string
  f.parametric = true;
  f.background = kBackgroundBlack;
  using SF = StereoFields;
  for (const auto& [field, value] : std::initializer_list<std::pair<std::string SF::*, const char*>>{
           {&SF::equationX, "u*Cos(v)"}, {&SF::equationY, "u*Sin(v)"}, {&SF::equationZ, "u, v"},
           {&SF::rangelxu, "0.25"},      {&SF::rangegxu, "pi/2"},      {&SF::spacexu, "7"},
           {&SF::segsyv, "3"},           {&SF::windowlz, "-4"},        {&SF::xrot, "30"},
           {&SF::ztr, "-0.5"},           {&SF::stereo, "1.5"},         {&SF::reduce, "0.75"},
           {&SF::ndots, "1234"},         {&SF::grid, "0"},             {&SF::xorigin, "0.1"},
           {&SF::divz, "0.2"},           {&SF::xder, "1"},             {&SF::yder, "1"}})
    f.*field = value;
  testing::TableReader reader;
  const StereoSettings written = ReadPlotSettings(f, reader).settings;
  const Lines constants = {"a=2.37", "k = 3"};
  WriteStereoFile(path("round.dup"), written, constants);

  const StereoImport back = ReadStereoFile(path("round.dup"), StereoFields{});
  ASSERT_EQ(back.status, ImportStatus::Ok) << back.message;
  EXPECT_EQ(back.constants, constants);
  EXPECT_EQ(back.fields.rangegxu, "1.570796");
  // Read again, the fields give the very same settings.
  EXPECT_EQ(FormatStereoFile(ReadPlotSettings(back.fields, reader).settings, back.constants),
            FormatStereoFile(written, constants));
}

// A file whose every record is right, no constants; each case below spoils one line.
const Lines kGood = {"\"STEREO\",0", "\"x*y\"",  "2,0,0.5,10,3",          "1,2,3", "-1,1,-2,2,-3,3",
                     "0,1,0,2",      "5,6,2,3", "1,1,1,10,20,30,1,2,3", "1,3",   "0"};

// kGood with `record` in place of line `line`; without a record the file ends before it.
std::string spoiled(size_t line, const char* record) {
  std::string text;
  for (size_t k = 1; k <= kGood.size() && (record || k < line); ++k)
    text += (k == line ? record : kGood[k - 1]) + "\r\n";
  return text;
}

TEST(StereoFileReader, UnquotedMagicAndBareLineEnds) {
  std::string text = "STEREO,0\n";
  for (size_t k = 1; k < kGood.size(); ++k) text += kGood[k] + "\n";
  const StereoImport r = ParseStereoFile(text, "plain.dup", StereoFields{});
  ASSERT_EQ(r.status, ImportStatus::Ok) << r.message;
  const StereoFields& f = r.fields;
  EXPECT_EQ(Lines({f.equationX, f.equationZ, f.reduce, f.grid, f.zorigin, f.segsyv, f.zrot, f.xder, f.yder}),
            Lines({"v", "x*y", "0.5", "3", "3", "3", "30", "2", "0"}));  // selector 3: Zxx; x untouched
}

// A malformed file names its line and what was expected there, keeps the fields read
// before the fault, and a value the window's own field would refuse (some would hang the
// plot) never reaches the field.
TEST(StereoFileReader, AMalformedRecordNamesItsLineAndKeepsWhatWasRead) {
  using SF = StereoFields;
  const struct {
    size_t line;
    const char* record;
    const char* words;
    std::string SF::*kept = nullptr;  // a field the faulty record must not touch
  } rows[] = {
      {5, nullptr, "the viewing window; the file ends before it"},
      {5, "-1,1,-2,abc,-3,3", "a number for the upper y limit in the viewing window, found \"abc\"", &SF::windowgy},
      {3, "2,0,0.5,10", "(5 values), found 4"},
      {3, "\"2\"\"\",0,0.5,10,3", "a number for the stereoscopic factor in the stereoscopic factor, 0, "},
      {3, "\"2\"x,0,0.5,10,3", "number of reference lines, with \",\" after a closing quote"},
      {3, "NaN,0,0.5,10,3", "a number for the stereoscopic factor"},
      {3, "1E+39,0,0.5,10,3", "a single-precision number for the stereoscopic factor"},
      {3, "2,0,0,10,3", "a value above 0 and at most 1 for the reduction factor, found 0", &SF::reduce},
      {3, "2,0,1E-50,10,3", "a value above 0 and at most 1 for the reduction factor, found 1E-50", &SF::reduce},
      {3, "2,0,0.5,0,3", "a whole number of at least 1 for the number of dots, found 0", &SF::ndots},
      {3, "2,0,0.5,3E+9,3", "a whole number of at least 1 for the number of dots, found 3E+9", &SF::ndots},
      {3, "2,0,0.5,10,-1", "a whole number of at least 0 for the number of reference lines, found -1", &SF::grid},
      {5, "-1,1,2,2,-3,3", "the lower y limit below the upper y limit, found 2 and 2", &SF::windowly},
      {6, "0,1,2,1", "the lower y/v limit not above the upper y/v limit, found 2 and 1", &SF::rangelyv},
      {9, "0,6", "a whole number from 0 to 5 for the derivative selector"},
      {9, "0,6.5", "a whole number from 0 to 5 for the derivative selector"},
  };
  StereoFields current;  // what the window shows before the import
  current.reduce = "0.25";
  current.ndots = "77";
  current.grid = "7";
  current.windowly = "-7";
  current.windowgy = "77";
  current.rangelyv = "-9";
  for (const auto& r : rows) {
    const StereoImport imp = ParseStereoFile(spoiled(r.line, r.record), "/tmp/f.dup", current);
    SCOPED_TRACE(imp.message);
    EXPECT_EQ(imp.status, ImportStatus::Malformed);
    EXPECT_EQ(imp.line, static_cast<int>(r.line));
    const std::string head = "Cannot read \"/tmp/f.dup\", line " + std::to_string(r.line) + ": expected ";
    EXPECT_EQ(imp.message.rfind(head, 0), 0u);
    EXPECT_NE(imp.message.find(r.words), std::string::npos) << r.words;
    EXPECT_EQ(imp.fields.equationZ, "x*y");  // read before any fault
    if (r.line > 3) {
      EXPECT_EQ(imp.fields.ndots, "10");
    }
    if (r.kept) {
      EXPECT_EQ(imp.fields.*r.kept, current.*r.kept);
    }
  }
  // Two constants said, one there: that one is returned for registration.
  const StereoImport constant = ParseStereoFile(spoiled(10, " 2 \r\na=1"), "f", current);
  EXPECT_EQ(constant.line, 12);
  EXPECT_NE(constant.message.find("constant 2 of 2; the file ends before it"), std::string::npos);
  EXPECT_EQ(constant.constants, Lines{"a=1"});
  // Equal range limits pass, as in the window.
  EXPECT_EQ(ParseStereoFile(spoiled(6, "1,1,2,2"), "f", current).status, ImportStatus::Ok);
}

TEST_F(StereoFileTest, PicturesAreSavedFromPersistentImages) {
  for (bool persist : {true, false}) {
    testing::StereoPicture left, right;
    left.name = "L";
    right.name = "R";
    left.SetAutoRedraw(persist);
    right.SetAutoRedraw(persist);
    int replots = 0;
    SaveStereoPictures(left, right, path("plot.dup"), persist, [&] { ++replots; });
    EXPECT_EQ(replots, persist ? 0 : 1);  // redrawn into images when not persistent
    EXPECT_EQ(slurp(path("plot.dup_left.bmp")) + slurp(path("plot.dup_right.bmp")), "LR");
    EXPECT_EQ(entries(), (Lines{"plot.dup_left.bmp", "plot.dup_right.bmp"}));
    EXPECT_EQ(left.persistentAtSave, std::vector<bool>{true});
    EXPECT_EQ(right.persistentAtSave, std::vector<bool>{true});
    EXPECT_TRUE(left.AutoRedraw() == persist && right.AutoRedraw() == persist);
  }
  // The right picture fails: neither bitmap of the earlier pair is touched.
  put(path("p_left.bmp"), "old left");
  put(path("p_right.bmp"), "old right");
  testing::StereoPicture left, right;
  right.saveFails = true;
  try {
    SaveStereoPictures(left, right, path("p"), false, nullptr);
    ADD_FAILURE() << "no error raised";
  } catch (const RuntimeError& e) {
    EXPECT_EQ(e.number(), err::PathFileAccess);
    EXPECT_NE(std::string(e.description()).find("p_right.bmp"), std::string::npos);
  }
  EXPECT_FALSE(right.AutoRedraw());
  EXPECT_EQ(slurp(path("p_left.bmp")) + "|" + slurp(path("p_right.bmp")), "old left|old right");
  EXPECT_EQ(entries(), (Lines{"p_left.bmp", "p_right.bmp", "plot.dup_left.bmp", "plot.dup_right.bmp"}));
  EXPECT_THROW(SaveStereoPictures(left, left, path("no/such/dir/p"), true, nullptr), RuntimeError);
}

// Values in the print form (a blank before all but negatives, one after), whole numbers
// without it; the derivative's name and the constants before the setup.
TEST(StereoReport, ExplicitAndParametricTextAndPicturesSideBySideRightOneAt5985Twips) {
  StereoFields f;
  StereoSettings s;
  s.stepxu = 1.0f / 3;
  s.xrot = -30;
  f.xder = f.yder = "1";
  const Lines expected = {
      "FUNCTION:",
      "Z=(x-1)*x*(x+1)*(y-1)*y*(y+1)*5",
      "",
      "   CURRENT PARTIAL DERIVATIVE: [Zxy]",
      "",
      "CONSTANTS:",
      "a=2.37",
      "b=1",
      "",
      "PLOT SETUP:",
      "                         AXES: [ 0 , 0 , 0 ]",
      "                    DIVISIONS: [ 1 , 1 , 1 ]",
      "                      X-RANGE: [-1 , 1 ]",
      "                      Y-RANGE: [-1 , 1 ]",
      "                     X-WINDOW: [-2.5 , 2.5 ]",
      "                     Y-WINDOW: [-2 , 2 ]",
      "                     Z-WINDOW: [-1.5 , 1.5 ]",
      "           NUMBER OF SPACINGS: [ 4 , 4 ]",
      "                     SPACINGS: [ 0.5 , 0.5 ]",
      "PLOTTING SEGMENTS PER SPACING: [ 1 , 1 ]",
      "          PLOTTING INCREMENTS: [ 0.3333333 , 0.5 ]",
      "                  TRANSLATION: [ 0 , 0 , 0 ]",
      "                     ROTATION: [-30 , 0 , 0 ]",
      "               NUMBER OF DOTS:  5000 ",
      "          STEREOSCOPIC FACTOR: 1 ",
      "             REDUCTION FACTOR: 1 ",
  };
  RecordingPrinterPage page;
  PrintStereoReport(page, f, s, Lines{"a=2.37", "b=1"}, nullptr);
  EXPECT_EQ(page.texts(), expected);
  EXPECT_EQ(page.lines().front().y, 4500);  // below the pictures' place, drawn or not
  EXPECT_EQ(page.lines().front().fontName, "Courier New");
  EXPECT_EQ(page.endDocCount(), 1);
  EXPECT_EQ(page.FontName(), "Arial");  // set back at the end
  // Parametric: three equations, U/V ranges, no derivative line.
  f.parametric = true;
  const Lines lines = StereoReportLines(f, s, {});
  EXPECT_EQ(Lines(lines.begin(), lines.begin() + 5),
            (Lines{"PARAMETRIC EQUATIONS:", "X=v", "Y=u", "Z=(x-1)*x*(x+1)*(y-1)*y*(y+1)*5", ""}));
  EXPECT_EQ(Lines(lines.begin() + 8, lines.begin() + 10),
            (Lines{"                      U-RANGE: [-1 , 1 ]", "                      V-RANGE: [-1 , 1 ]"}));
  EXPECT_EQ(lines.size(), expected.size() - 4);
  // The pictures side by side, the right one at 5985 twips.
  for (bool persist : {true, false}) {
    RecordingCanvas left(200, 200), right(200, 180);  // reduced pictures
    left.SetAutoRedraw(persist);
    right.SetAutoRedraw(persist);
    int replots = 0;
    ReportPictures pictures{left, right, true, persist, [&] {
                              ++replots;
                              EXPECT_TRUE(left.AutoRedraw() && right.AutoRedraw()) << "redrawn into images";
                            }};
    RecordingPrinterPage page;
    PrintStereoReport(page, StereoFields{}, StereoSettings{}, {}, &pictures);
    const auto& painted = page.pictures();
    ASSERT_EQ(painted.size(), 2u);
    EXPECT_EQ(std::vector<double>({painted[1].left, painted[1].width, painted[1].height}),
              std::vector<double>({5985, 2200, 1980}));
    EXPECT_EQ(painted[0].left + painted[0].width, 5985 - 120);  // the left one just before, as on screen
    EXPECT_EQ(painted[0].top, painted[1].top);
    EXPECT_EQ(replots, persist ? 0 : 1);
    EXPECT_TRUE(left.AutoRedraw() == persist && right.AutoRedraw() == persist);  // switched back
  }
  RecordingCanvas left, right;  // nothing drawn yet: no pictures
  ReportPictures none{left, right, false, true, nullptr};
  RecordingPrinterPage blank;
  PrintStereoReport(blank, StereoFields{}, StereoSettings{}, {}, &none);
  EXPECT_TRUE(blank.pictures().empty());
  EXPECT_EQ(blank.lines().front().y, 4500);
}

}  // namespace
}  // namespace orvane
