// study, plot2d and stereo through the executable: options, refusals, the stereo export
// read back and signals. (ui/WindowPicturesTest compares the output with the windows'.)

#include <gtest/gtest.h>

#include <QDir>
#include <QImage>
#include <QTemporaryDir>
#include <csignal>
#include <filesystem>
#include <tuple>

#include "batch/BatchSupport.h"

namespace orvane::testing {
namespace {

struct StudyCase {
  std::vector<std::string> args;  // after "study"
  int status;
  std::vector<std::string> out;
  std::string err;
};

// Each option reaches the routines, a failed study ends with status 1, and refusals
// name the option.
TEST(BatchStudy, PrintsTheWindowsListsAndLabels) {
  const std::vector<StudyCase> cases = {
      // 3 subintervals become 4, as in the window: the double root at 0 is on the grid.
      {{"x^2", "--interval", "-1", "1", "--subintervals", "3", "--maxcy", "10", "roots"}, 0, {"0", "1 roots"}, ""},
      {{"undefinedName", "roots"}, 1, {}, "error 500: Variable is undefined: 'undefinedName'\n"},
      {{"1/x^5", "--interval", "-1", "1", "integral"}, 1, {"division by zero"}, ""},
      {{"--const", "a=3", "a*x", "value", "0", "2"}, 0, {"6"}, ""},
      {{"x", "value", "34", "1"}, 1, {}, "error 9: Subscript out of range\n"},
      {{"x", "--interval", "2", "1", "roots"}, 1, {},
       "orvane-batch study: --interval: the upper limit must be greater than the lower one\n"},
      {{"x", "--error", "0", "roots"}, 1, {}, "orvane-batch study: --error: the error bound must be greater than 0\n"},
      {{"x", "wander"}, 1, {},
       "orvane-batch study: unknown study command \"wander\" (roots, integral, extrema or value K X)\n"},
  };
  for (const StudyCase& c : cases) {
    std::vector<std::string> args = {"study"};
    args.insert(args.end(), c.args.begin(), c.args.end());
    const BatchRun run = runBatch(args);
    SCOPED_TRACE(c.args.front() + " " + c.args.back());
    EXPECT_EQ(run.status, c.status);
    EXPECT_EQ(run.outLines(), c.out);
    EXPECT_EQ(run.err, c.err);
  }
}

class BatchPictures : public ::testing::Test {
 protected:
  std::string path(const std::string& name) const { return dir.filePath(QString::fromStdString(name)).toStdString(); }
  QImage image(const std::string& name) const { return QImage(QString::fromStdString(path(name))); }
  // orvane-batch stereo's arguments with its pictures named after `prefix`, and a run of them.
  std::vector<std::string> stereoArgs(const std::string& prefix, std::vector<std::string> args) const {
    args.insert(args.begin(), {"stereo", "--out", path(prefix)});
    return args;
  }
  BatchRun stereo(const std::string& prefix, std::vector<std::string> args) const {
    return runBatch(stereoArgs(prefix, std::move(args)));
  }
  QTemporaryDir dir;
};

TEST_F(BatchPictures, Plot2dSizesAndFormats) {
  const std::string bmp = path("line.bmp");
  // The picture with data is the window's own (ui/WindowPicturesTest); here, the options and
  // the formula given: y = x along the diagonal of a window whose limits are the same in x and y.
  const BatchRun run = runBatch({"plot2d", "x", "--size", "320", "200", "--window", "0", "4", "0", "4", "--out", bmp});
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(image("line.bmp").size(), QSize(320, 200));
  EXPECT_EQ(QColor(image("line.bmp").pixel(240, 50)).lightness(), 0);
}

TEST_F(BatchPictures, StereoSizesBackgroundAndImportRoundTrip) {
  const std::tuple<std::vector<std::string>, QSize, std::string> sizes[] = {
      {{"--format", "bmp", "--size", "300", "240", "--reduce", "1/3", "x*y"}, QSize(100, 80), "bmp"},
      {{"--stereo", "0", "--background", "black", "--dots", "--ndots", "500", "--seed", "7", "x*y"}, QSize(400, 400),
       "png"}};
  for (const auto& [options, size, format] : sizes) {
    const BatchRun run = stereo("s", options);
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(image("s_left." + format).size(), size);
  }
  // The last: a stereoscopic factor of 0 makes the two pictures the same; black background.
  EXPECT_EQ(image("s_left.png"), image("s_right.png"));
  EXPECT_EQ(QColor(image("s_left.png").pixel(30, 30)), QColor(Qt::black));

  // --anaglyph: a third picture, of the pair's size, red and cyan where the two differ.
  ASSERT_EQ(stereo("r", {"--reduce", "0.5", "--anaglyph", "x*y"}).status, 0);
  const QImage ra = image("r_anaglyph.png");
  ASSERT_EQ(ra.size(), QSize(200, 200));
  int parallax = 0;
  for (int y = 0; y < ra.height(); ++y)
    for (int x = 0; x < ra.width(); ++x) parallax += qRed(ra.pixel(x, y)) != qGreen(ra.pixel(x, y));
  EXPECT_GT(parallax, 50);

  // Exported settings and constants, imported again, draw the same pictures.
  const std::string exported = path("surface.stereo");
  ASSERT_EQ(stereo("a", {"--const", "k=2", "--parametric", "u*Cos(v)", "u*Sin(v)", "--range", "0", "1", "0", "2*pi",
                         "--spacings", "4", "12", "--rotate", "30", "pi/6", "0", "--export", exported, "k*u*u/4"})
                .status,
            0);
  EXPECT_TRUE(std::filesystem::exists(exported + "_left.bmp"));
  ASSERT_EQ(stereo("b", {"--import", exported}).status, 0);
  EXPECT_EQ(image("a_left.png"), image("b_left.png"));
  EXPECT_EQ(image("a_right.png"), image("b_right.png"));
}

// Refused with status 1 and a message naming the option, and no picture or export left:
// also for an error the window would show in a box, and for a file of another kind.
TEST_F(BatchPictures, RefusalsLeaveNoFile) {
  writeFile(path("other.txt"), "\"CURVE\",0\r\n");
  const auto stereoD = [&](std::vector<std::string> args) { return stereoArgs("d", std::move(args)); };
  const std::string plot2d = "orvane-batch plot2d: --", option = "orvane-batch stereo: --";
  const std::pair<std::vector<std::string>, std::string> refusals[] = {
      {{"plot2d", "x", "--out", path("x.gif")}, plot2d + "out: \"" + path("x.gif") + "\" must end in .png or .bmp\n"},
      {{"plot2d", "x", "--window", "1", "-1", "0", "1", "--out", path("y.png")},
       plot2d + "window: each upper limit must be greater than its lower one\n"},
      {{"plot2d", "x*undefinedName", "--out", path("u.png")}, "error 500: Variable is undefined: 'undefinedName'\n"},
      {stereoD({"--export", path("d.stereo"), "x*nope"}), "error 500: Variable is undefined: 'nope'\n"},
      {stereoD({"--import", path("other.txt")}), "Incompatible file\n"},
      {stereoD({"--reduce", "1.5", "x*y"}), option + "reduce: above 0 and at most 1\n"},
      {stereoD({"--spacings", "2.5", "4", "x*y"}), option + "spacings: a whole number of at least 1, not \"2.5\"\n"},
      {stereoD({"--derivative", "2", "1", "x*y"}), option + "derivative: orders 0, 1 or 2 whose sum is at most 2\n"},
      {stereoD({"--window", "1", "1", "-2", "2", "-1", "1", "x*y"}),
       option + "window: each lower limit must be below its upper one\n"},
      {stereoD({"--rotate", "nothing", "0", "0", "x*y"}), option + "rotate: \"nothing\" has no value\n"},
      {stereoD({"--background", "grey", "x*y"}), option + "background: white or black\n"},
  };
  for (const auto& [args, err] : refusals) {
    const BatchRun run = runBatch(args);
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.err.find(err), std::string::npos) << run.err;
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList("other.txt"));
  }
}

// Ctrl+C (SIGINT) or SIGTERM during work that would never end: status 130 within
// moments, nothing on standard output, and no picture or temporary file left behind.
TEST_F(BatchPictures, ASignalStopsLongWorkLeavingNoFile) {
  const struct {
    std::vector<std::string> args;
    int signal;
    std::string err;
  } cases[] = {
      {{"study", "Sin(x)", "--subintervals", "1e9", "integral"}, SIGINT, "orvane-batch study: interrupted\n"},
      {{"stereo", "--spacings", "100000", "100000", "--out", path("never"), "x*y"}, SIGTERM,
       "orvane-batch stereo: interrupted\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.args.front());
    QStringList args;
    for (const std::string& a : c.args) args << QString::fromStdString(a);
    QProcess process;
    process.setWorkingDirectory(dir.path());
    // A shell running the tests in the background ignores SIGINT; a terminal does not.
    process.setChildProcessModifier([] { std::signal(SIGINT, SIG_DFL); });
    process.start(QStringLiteral(ORVANE_BATCH_EXE), args);
    ASSERT_TRUE(process.waitForStarted());
    ASSERT_FALSE(process.waitForFinished(1000));  // busy
    ::kill(static_cast<pid_t>(process.processId()), c.signal);
    ASSERT_TRUE(process.waitForFinished(10000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 130);
    EXPECT_EQ(process.readAllStandardOutput().toStdString(), "");
    EXPECT_EQ(process.readAllStandardError().toStdString(), c.err);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot), QStringList());
  }
}

}  // namespace
}  // namespace orvane::testing
