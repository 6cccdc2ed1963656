#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "platform/RuntimeError.h"
#include "plot2d/StudyExport.h"
#include "plot2d/StudyReport.h"
#include "PictureDoubles.h"

namespace orvane {
namespace {

using testing::PageLog;
using testing::PictureLog;

// x^2 - 2 with a made-up maximum at 1 where it nearly touches the axis.
double study(double x) { return x == 1 ? 0.005 : x * x - 2; }

StudyResults someResults() {
  StudyResults r;
  r.integral.computed = true;
  r.integral.value = 4;
  r.roots.roots = {-1.4142135623731, 1.4142135623731};
  r.extrema.extrema = {{1, true, true}, {0, false, false}};
  return r;
}

StudyReportInput reportInput() {
  StudyReportInput in;
  in.equation = "x^2-2";
  in.constants = {"a=2.37"};
  in.xlower = -2;
  in.xupper = 2;
  in.subintervals = "128";
  in.maxcy = "7";
  in.error = ".01";
  in.plotted = PlotSetup{-3, 3, -2.5f, 4.5f, 0, 0, 1, 0.5f, 10};
  return in;
}

TEST(StudyReport, FullReportWithGraph) {
  StudyReportInput in = reportInput();
  in.graphDrawn = true;
  PageLog page;
  PictureLog picture;
  LambdaFunction f(study);
  bool imageOnDuringReplot = false;
  printStudyReport(page, in, someResults(), f, picture,
                   [&] { imageOnDuringReplot = picture.AutoRedraw(); });
  const std::vector<std::string> expected = {
      "Plot of Function",
      "",
      "FUNCTION:",
      "x^2-2",
      "",
      "CONSTANTS:",
      "a=2.37",
      "",
      "    INTERVAL STUDIED: [-2 , 2 ]",
      "   # OF SUBINTERVALS: 128",
      "MAX. # OF ITERATIONS: 7",
      "       MAXIMUM ERROR: .01",
      "",
      "INTEGRAL=  4 ",
      "",
      "ROOTS:",
      "-1.4142135623731 ",
      " 1.4142135623731 ",
      "",
      "MAXIMA:",
      "[ 1 , 0.005 ]",
      "***POSSIBLE ROOT",
      "",
      "MINIMA:",
      "[ 0 ,-2 ]",
      "",
      "PLOT SETUP:",
      "",
      "     AXES: [ 0 , 0 ]",
      "DIVISIONS: [ 1 , 0.5 ]",
      " X-WINDOW: [-3 , 3 ]",
      " Y-WINDOW: [-2.5 , 4.5 ]",
  };
  EXPECT_EQ(page.lines, expected);
  EXPECT_EQ(page.FontName(), "Courier New");
  EXPECT_TRUE(imageOnDuringReplot);
  EXPECT_FALSE(picture.AutoRedraw());
  // The graph (200 x 150 pixels) fills 3 inches of height, above the first text line.
  EXPECT_EQ(page.events, (std::vector<std::string>{"picture 0,0 bottom 4320 width 5760",
                                                   "y 4500 before line 0", "end after 32"}));
}

TEST(StudyReport, DerivativeTitleAndPersistentPicture) {
  StudyReportInput in = reportInput();
  in.graphDrawn = true;
  in.persist = true;
  in.derivative = 3;
  PageLog page;
  PictureLog picture;
  LambdaFunction f(study);
  bool replotted = false;
  printStudyReport(page, in, StudyResults{}, f, picture, [&] { replotted = true; });
  EXPECT_FALSE(replotted);
  EXPECT_EQ(page.lines.front(), "Plot of derivative # 3 ");
}

TEST(StudyReport, NoGraphNoResults) {
  StudyReportInput in = reportInput();
  in.constants.clear();
  PageLog page;
  PictureLog picture;
  LambdaFunction f(study);
  printStudyReport(page, in, StudyResults{}, f, picture, {});
  const std::vector<std::string> expected = {
      "",
      "FUNCTION:",
      "x^2-2",
      "",
      "    INTERVAL STUDIED: [-2 , 2 ]",
      "   # OF SUBINTERVALS: 128",
      "MAX. # OF ITERATIONS: 7",
      "       MAXIMUM ERROR: .01",
      "",
      "PLOT SETUP:",
      "",
      "     AXES: [ 0 , 0 ]",
      "DIVISIONS: [ 1 , 0.5 ]",
      " X-WINDOW: [-3 , 3 ]",
      " Y-WINDOW: [-2.5 , 4.5 ]",
  };
  EXPECT_EQ(page.lines, expected);
  EXPECT_EQ(page.events, (std::vector<std::string>{"end after 15"}));
}

class StudyExportTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = std::filesystem::temp_directory_path() /
           ("plot2d-export-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) +
            "-" + ::testing::UnitTest::GetInstance()->current_test_info()->name());
    std::filesystem::remove_all(dir_);
    std::filesystem::create_directories(dir_);
    input_.study = {"x^2-2", "-2", "2", "128", ".01", "7", "Function"};
    input_.plot = {"-3", "3", "-2.5", "4.5", "0", "0", "1", "0.5", "10"};
    input_.constants = {"a=2.37", "b=1"};
  }
  void TearDown() override { std::filesystem::remove_all(dir_); }

  static std::string read(const std::filesystem::path& p) {
    std::ifstream in(p, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
  }

  std::filesystem::path dir_;
  StudyExportInput input_;
};

TEST_F(StudyExportTest, FileLinesAreExact) {
  const std::string path = (dir_ / "study.dat").string();
  PictureLog picture;
  exportStudy(path, input_, someResults(), picture, false, false, {});
  EXPECT_EQ(read(path),
            "Curvix\r\n"
            "\"x^2-2\",-2,2,128,0.01,7,#TRUE#,2,1,1,1\r\n"
            "-3,3,-2.5,4.5,10,0,0,1,0.5\r\n"
            " 2 \r\n"
            "a=2.37\r\n"
            "b=1\r\n"
            " 4 \r\n"
            "-1.4142135623731 \r\n"
            " 1.4142135623731 \r\n"
            " 1 \r\n"
            " 0 \r\n");
  EXPECT_TRUE(picture.saved.empty());  // no graph drawn: no bitmap
  EXPECT_FALSE(std::filesystem::exists(dir_ / "study.dat.bmp"));
}

TEST_F(StudyExportTest, NothingFoundEndsAfterTheConstants) {
  input_.constants.clear();
  input_.study.xlower = "abc";
  const std::vector<std::string> lines = studyExportLines(input_, StudyResults{});
  EXPECT_EQ(lines, (std::vector<std::string>{"Curvix", "\"x^2-2\",0,2,128,0.01,7,#FALSE#,0,0,0,0",
                                             "-3,3,-2.5,4.5,10,0,0,1,0.5", " 0 "}));
}

TEST_F(StudyExportTest, BitmapBesideTheFileWhenAGraphIsDrawn) {
  const std::string path = (dir_ / "study.dat").string();
  PictureLog picture;
  bool imageOnDuringReplot = false;
  exportStudy(path, input_, StudyResults{}, picture, true, false,
              [&] { imageOnDuringReplot = picture.AutoRedraw(); });
  // Written beside the target and moved over it.
  EXPECT_EQ(picture.saved, (std::vector<std::string>{path + ".bmp.part"}));
  EXPECT_EQ(read(path + ".bmp"), "BM");
  EXPECT_FALSE(std::filesystem::exists(path + ".bmp.part"));
  EXPECT_TRUE(imageOnDuringReplot);
  EXPECT_FALSE(picture.AutoRedraw());

  bool replotted = false;
  picture.saved.clear();
  exportStudy(path, input_, StudyResults{}, picture, true, true, [&] { replotted = true; });
  EXPECT_FALSE(replotted);
  EXPECT_EQ(picture.saved.size(), 1u);

  picture.saveSucceeds = false;
  try {
    exportStudy(path, input_, StudyResults{}, picture, true, false, {});
    ADD_FAILURE() << "exported without its bitmap";
  } catch (const RuntimeError& e) {
    EXPECT_EQ(e.number(), err::PathFileAccess);
  }
  EXPECT_EQ(read(path + ".bmp"), "BM");  // the earlier bitmap stays
  EXPECT_FALSE(picture.AutoRedraw());
}

TEST_F(StudyExportTest, AFailedFileKeepsTheEarlierFileAndBitmap) {
  const std::string path = (dir_ / "study.dat").string();
  PictureLog picture;
  exportStudy(path, input_, StudyResults{}, picture, true, true, {});
  const std::string before = read(path);
  std::filesystem::create_directory(path + ".part");  // the file's temporary cannot be made
  EXPECT_THROW(exportStudy(path, input_, someResults(), picture, true, true, {}), RuntimeError);
  EXPECT_EQ(read(path), before);
  EXPECT_EQ(read(path + ".bmp"), "BM");
  EXPECT_FALSE(std::filesystem::exists(path + ".bmp.part"));
  EXPECT_EQ(exportBitmapName("a/study.dat"), "a/study.dat.bmp");
}

}  // namespace
}  // namespace orvane
