#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "platform/RecordingPrinterPage.h"
#include "platform/RuntimeError.h"
#include "plot2d/StudyExport.h"
#include "plot2d/StudyReport.h"
#include "Plot2dTestDoubles.h"

namespace orvane {
namespace {

using Lines = std::vector<std::string>;
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

StudyReportInput reportInput(bool graph) {
  return {.graphDrawn = graph, .plotted = {0, PlotSetup{-3, 3, -2.5f, 4.5f, 0, 0, 1, 0.5f, 10}},
          .equation = "x^2-2", .constants = {"a=2.37"}, .xlower = -2, .xupper = 2,
          .subintervals = "128", .maxcy = "7", .error = ".01"};
}

const Lines kSetup = {"", "PLOT SETUP:", "", "     AXES: [ 0 , 0 ]", "DIVISIONS: [ 1 , 0.5 ]",
                      " X-WINDOW: [-3 , 3 ]", " Y-WINDOW: [-2.5 , 4.5 ]"};

TEST(StudyReport, WithGraphResultsAndConstants) {
  RecordingPrinterPage page;
  PictureLog picture;
  LambdaFunction f(study);
  bool imageOnDuringReplot = false;
  const StudyReportInput in = reportInput(true);
  printStudyReport(page, in, someResults(), f, picture, [&] {
    imageOnDuringReplot = picture.AutoRedraw();
    return in.plotted;
  });
  Lines expected = {"Plot of Function", "", "FUNCTION:", "x^2-2", "", "CONSTANTS:", "a=2.37", "",
                    "    INTERVAL STUDIED: [-2 , 2 ]", "   # OF SUBINTERVALS: 128",
                    "MAX. # OF ITERATIONS: 7", "       MAXIMUM ERROR: .01", "", "INTEGRAL=  4 ", "",
                    "ROOTS:", "-1.4142135623731 ", " 1.4142135623731 ", "", "MAXIMA:", "[ 1 , 0.005 ]",
                    "***POSSIBLE ROOT", "", "MINIMA:", "[ 0 ,-2 ]"};
  expected.insert(expected.end(), kSetup.begin(), kSetup.end());
  EXPECT_EQ(page.texts(), expected);
  EXPECT_EQ(page.lines()[0].fontName, "Courier New");
  EXPECT_EQ(page.lines()[0].y, 4500);  // below the graph
  EXPECT_EQ(page.endDocCount(), 1);
  EXPECT_TRUE(imageOnDuringReplot);
  EXPECT_FALSE(picture.AutoRedraw());
  // The graph (200 x 150 pixels) fills 3 inches of height at the top left.
  ASSERT_EQ(page.pictures().size(), 1u);
  const PaintedPicture& p = page.pictures()[0];
  EXPECT_EQ(std::vector<double>({p.left, p.top, p.top + p.height, p.width}),
            std::vector<double>({0, 0, 4320, 5760}));
}

TEST(StudyReport, TitleAndSetupDescribeTheGraphOnThePage) {
  StudyReportInput in = reportInput(true);
  in.persist = true;
  in.plotted.derivative = 3;
  RecordingPrinterPage page;
  PictureLog picture;
  LambdaFunction f(study);
  printStudyReport(page, in, StudyResults{}, f, picture, []() -> StudyGraph {
    ADD_FAILURE() << "a persistent graph drawn again for the page";
    return {};
  });
  EXPECT_EQ(page.texts().front(), "Plot of derivative # 3 ");
  // Drawn again for the page (the title and setup lines are then the new graph's:
  // PlotWindowTest), a graph that cannot be drawn ends the report before anything is printed.
  in.persist = false;
  RecordingPrinterPage failed;
  EXPECT_THROW(printStudyReport(failed, in, StudyResults{}, f, picture,
                                []() -> StudyGraph { throw RuntimeError(err::Overflow); }),
               RuntimeError);
  EXPECT_TRUE(failed.texts().empty());
  EXPECT_FALSE(picture.AutoRedraw());

  RecordingPrinterPage plain;
  in = reportInput(false);
  in.constants.clear();
  printStudyReport(plain, in, StudyResults{}, f, picture, {});
  Lines expected = {"", "FUNCTION:", "x^2-2", "", "    INTERVAL STUDIED: [-2 , 2 ]",
                    "   # OF SUBINTERVALS: 128", "MAX. # OF ITERATIONS: 7", "       MAXIMUM ERROR: .01"};
  expected.insert(expected.end(), kSetup.begin(), kSetup.end());
  EXPECT_EQ(plain.texts(), expected);
  EXPECT_TRUE(plain.pictures().empty());
}

class StudyExportTest : public ::testing::Test {
 protected:
  void SetUp() override { std::filesystem::create_directories(dir_); }
  void TearDown() override { std::filesystem::remove_all(dir_); }
  static std::string read(const std::string& p) {
    std::stringstream s;
    s << std::ifstream(p, std::ios::binary).rdbuf();
    return s.str();
  }

  const std::filesystem::path dir_ = std::filesystem::temp_directory_path() /
                                     ("plot2d-export-" + std::to_string(::getpid()) + "-" +
                                      ::testing::UnitTest::GetInstance()->current_test_info()->name());
  const std::string path_ = (dir_ / "study.dat").string();
  StudyExportInput input_{{"x^2-2", "-2", "2", "128", ".01", "7", "Function"},
                          {"-3", "3", "-2.5", "4.5", "0", "0", "1", "0.5", "10"},
                          {"a=2.37", "b=1"}};
};

TEST_F(StudyExportTest, FileLinesAreExact) {
  PictureLog picture;
  exportStudy(path_, input_, someResults(), picture, false, false, {});
  EXPECT_EQ(read(path_),
            "Curvix\r\n\"x^2-2\",-2,2,128,0.01,7,#TRUE#,2,1,1,1\r\n-3,3,-2.5,4.5,10,0,0,1,0.5\r\n"
            " 2 \r\na=2.37\r\nb=1\r\n 4 \r\n-1.4142135623731 \r\n 1.4142135623731 \r\n 1 \r\n 0 \r\n");
  EXPECT_FALSE(std::filesystem::exists(path_ + ".bmp"));  // no graph drawn: no bitmap
  // Nothing found: the file ends after the (no) constants; a bad number reads as 0.
  input_.constants.clear();
  input_.study.xlower = "abc";
  EXPECT_EQ(studyExportLines(input_, StudyResults{}),
            (Lines{"Curvix", "\"x^2-2\",0,2,128,0.01,7,#FALSE#,0,0,0,0", "-3,3,-2.5,4.5,10,0,0,1,0.5", " 0 "}));
}

// The bitmap is written beside and moved over, the picture's image on while it is
// drawn for it (a persistent one is saved as it is). A failed bitmap or file leaves
// the earlier pair as it was, and no temporary.
TEST_F(StudyExportTest, BitmapBesideTheFileAndFailuresKeepTheEarlierPair) {
  PictureLog picture;
  bool imageOnDuringReplot = false;
  exportStudy(path_, input_, StudyResults{}, picture, true, false,
              [&] { imageOnDuringReplot = picture.AutoRedraw(); });
  ASSERT_EQ(picture.saved.size(), 1u);
  EXPECT_EQ(std::filesystem::path(picture.saved[0]).parent_path(), dir_);
  EXPECT_EQ(read(exportBitmapName(path_)), "BM");
  EXPECT_FALSE(std::filesystem::exists(picture.saved[0]));
  EXPECT_TRUE(imageOnDuringReplot && !picture.AutoRedraw());
  exportStudy(path_, input_, StudyResults{}, picture, true, true, [] { ADD_FAILURE() << "drawn again"; });
  EXPECT_EQ(picture.saved.size(), 2u);

  const std::string before = read(path_);
  picture.saveSucceeds = false;
  try {
    exportStudy(path_, input_, someResults(), picture, true, false, {});
    ADD_FAILURE() << "exported without its bitmap";
  } catch (const RuntimeError& e) {
    EXPECT_EQ(e.number(), err::PathFileAccess);
  }
  EXPECT_FALSE(picture.AutoRedraw());
  picture.saveSucceeds = true;
  std::filesystem::permissions(path_, std::filesystem::perms::owner_read);  // the file cannot be replaced
  EXPECT_THROW(exportStudy(path_, input_, someResults(), picture, true, true, {}), RuntimeError);
  EXPECT_EQ(read(path_), before);
  EXPECT_EQ(read(path_ + ".bmp"), "BM");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir_), {}), 2);
}

}  // namespace
}  // namespace orvane
