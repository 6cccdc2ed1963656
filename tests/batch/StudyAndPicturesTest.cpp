// study, plot2d and stereo through the executable: the 2-D window's list and label
// texts, pictures of the requested sizes, the stereo export read back, and refusals.
// (ui/WindowPicturesTest compares the pictures with the windows' own.)

#include <gtest/gtest.h>

#include <QDir>
#include <QImage>
#include <QTemporaryDir>
#include <csignal>
#include <filesystem>

#include "batch/BatchSupport.h"

namespace orvane::testing {
namespace {

struct StudyCase {
  std::vector<std::string> args;  // after "study"
  int status;
  std::vector<std::string> out;
  std::string err;
};

// The routines' own cases are StudyRoutinesTest's; here, each command and option
// reaches them, a failed study ends with status 1, and refusals name the option.
TEST(BatchStudy, PrintsTheWindowsListsAndLabels) {
  const std::vector<StudyCase> cases = {
      {{"x^2-2", "--interval", "-2", "2", "--subintervals", "100", "--error", "1e-10", "roots"},
       0, {"-1.4142135623731", "1.4142135623731", "2 roots"}, ""},
      // 3 subintervals become 4, as in the window: the double root at 0 is on the grid.
      {{"x^2", "--interval", "-1", "1", "--subintervals", "3", "roots"}, 0, {"0", "1 roots"}, ""},
      {{"undefinedName", "roots"}, 1, {}, "error 500: Variable is undefined: 'undefinedName'\n"},
      {{"x^5", "--interval", "0", "1", "--subintervals", "8", "--error", "1e-12", "integral"},
       0, {"0.166666666666667"}, ""},
      {{"1/x", "--interval", "-1", "1", "integral"}, 1, {"division by zero"}, ""},
      {{"Sin(x)", "--interval", "0", "100", "--subintervals", "2", "--maxcy", "0", "--error", "1e-12", "integral"},
       1, {"No convergence"}, ""},
      {{"x^2", "--interval", "-3", "3", "extrema"}, 0, {"Min 0 (possible root)", "1 extrema"}, ""},
      {{"x^3", "value", "1", "2"}, 0, {"12.0000000000006"}, ""},
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
  QTemporaryDir dir;
};

TEST_F(BatchPictures, Plot2dSizesFormatsAndFailures) {
  const std::string bmp = path("line.bmp");
  const BatchRun run = runBatch({"plot2d", "x", "--size", "320", "200", "--out", bmp});
  ASSERT_EQ(run.status, 0) << run.err;
  const QImage line = image("line.bmp");
  EXPECT_EQ(line.size(), QSize(320, 200));
  // The default window without data is symmetric about the origin: the x-axis is red
  // across the middle row, and the curve y = x runs along the picture's diagonal.
  EXPECT_EQ(QColor(line.pixel(80, 100)), QColor(Qt::red));
  EXPECT_EQ(QColor(line.pixel(240, 50)).lightness(), 0);

  const BatchRun data = runBatch({"plot2d", "--data", dataFile("Norris.csv"), "--window", "-100", "1000", "-100",
                                  "1000", "--out", path("norris.png")});
  EXPECT_EQ(data.status, 0) << data.err;
  EXPECT_EQ(image("norris.png").size(), QSize(600, 400));

  const BatchRun wrongType = runBatch({"plot2d", "x", "--out", path("x.gif")});
  EXPECT_EQ(wrongType.status, 1);
  EXPECT_EQ(wrongType.err, "orvane-batch plot2d: --out: \"" + path("x.gif") + "\" must end in .png or .bmp\n");

  const BatchRun inverted = runBatch({"plot2d", "x", "--window", "1", "-1", "0", "1", "--out", path("y.png")});
  EXPECT_EQ(inverted.status, 1);
  EXPECT_FALSE(std::filesystem::exists(path("y.png")));

  // An error the window would show in a box: no picture of a function that was not drawn.
  const BatchRun undefined = runBatch({"plot2d", "x*undefinedName", "--out", path("u.png")});
  EXPECT_EQ(undefined.status, 1);
  EXPECT_EQ(undefined.err, "error 500: Variable is undefined: 'undefinedName'\n");
  EXPECT_FALSE(std::filesystem::exists(path("u.png")));
}

TEST_F(BatchPictures, StereoSizesBackgroundAndImportRoundTrip) {
  struct SizeCase {
    std::vector<std::string> options;
    QSize expected;
  };
  const std::vector<SizeCase> sizes = {{{}, QSize(400, 400)}, {{"--size", "300", "240", "--reduce", "1/3"}, QSize(100, 80)}};
  for (const SizeCase& c : sizes) {
    std::vector<std::string> args = {"stereo", "--out", path("s"), "--format", "bmp"};
    args.insert(args.end(), c.options.begin(), c.options.end());
    args.push_back("x*y");
    const BatchRun run = runBatch(args);
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(image("s_left.bmp").size(), c.expected);
    EXPECT_EQ(image("s_right.bmp").size(), c.expected);
  }

  // A stereoscopic factor of 0 makes the two pictures the same; black background.
  const BatchRun flat = runBatch({"stereo", "--out", path("f"), "--stereo", "0", "--background", "black",
                                  "--dots", "--ndots", "500", "--seed", "7", "x*y"});
  ASSERT_EQ(flat.status, 0) << flat.err;
  EXPECT_EQ(image("f_left.png"), image("f_right.png"));
  EXPECT_EQ(QColor(image("f_left.png").pixel(30, 30)), QColor(Qt::black));

  // --anaglyph: a third picture, of the pair's size, red and cyan where the two differ.
  const BatchRun red = runBatch({"stereo", "--out", path("r"), "--reduce", "0.5", "--anaglyph", "x*y"});
  ASSERT_EQ(red.status, 0) << red.err;
  const QImage ra = image("r_anaglyph.png");
  ASSERT_EQ(ra.size(), QSize(200, 200));
  int parallax = 0;
  for (int y = 0; y < ra.height(); ++y)
    for (int x = 0; x < ra.width(); ++x) parallax += qRed(ra.pixel(x, y)) != qGreen(ra.pixel(x, y));
  EXPECT_GT(parallax, 50);

  // Exported settings and constants, imported again, draw the same pictures.
  const std::string exported = path("surface.stereo");
  const BatchRun first = runBatch({"stereo", "--out", path("a"), "--const", "k=2", "--parametric", "u*Cos(v)",
                                   "u*Sin(v)", "--range", "0", "1", "0", "2*pi", "--spacings", "4", "12",
                                   "--rotate", "30", "pi/6", "0", "--export", exported, "k*u*u/4"});
  ASSERT_EQ(first.status, 0) << first.err;
  EXPECT_TRUE(std::filesystem::exists(exported + "_left.bmp"));
  const BatchRun second = runBatch({"stereo", "--out", path("b"), "--import", exported});
  ASSERT_EQ(second.status, 0) << second.err;
  EXPECT_EQ(image("a_left.png"), image("b_left.png"));
  EXPECT_EQ(image("a_right.png"), image("b_right.png"));

  // An error the window would show in a box: neither pictures nor export.
  const BatchRun undefined = runBatch({"stereo", "--out", path("u"), "--export", path("u.stereo"), "x*nope"});
  EXPECT_EQ(undefined.status, 1);
  EXPECT_EQ(undefined.err, "error 500: Variable is undefined: 'nope'\n");
  EXPECT_FALSE(std::filesystem::exists(path("u_left.png")) || std::filesystem::exists(path("u.stereo")));

  writeFile(path("other.txt"), "\"CURVE\",0\r\n");
  const BatchRun incompatible = runBatch({"stereo", "--out", path("c"), "--import", path("other.txt")});
  EXPECT_EQ(incompatible.status, 1);
  EXPECT_EQ(incompatible.err, "Incompatible file\n");
  EXPECT_FALSE(std::filesystem::exists(path("c_left.png")));

  struct Refusal {
    std::vector<std::string> options;
    std::string err;
  };
  const std::vector<Refusal> refusals = {
      {{"--reduce", "1.5"}, "--reduce: above 0 and at most 1"},
      {{"--spacings", "2.5", "4"}, "--spacings: a whole number of at least 1, not \"2.5\""},
      {{"--derivative", "2", "1"}, "--derivative: orders 0, 1 or 2 whose sum is at most 2"},
      {{"--window", "1", "1", "-2", "2", "-1", "1"}, "--window: each lower limit must be below its upper one"},
      {{"--rotate", "nothing", "0", "0"}, "--rotate: \"nothing\" has no value"},
      {{"--background", "grey"}, "--background: white or black"},
  };
  for (const Refusal& c : refusals) {
    std::vector<std::string> args = {"stereo", "--out", path("d")};
    args.insert(args.end(), c.options.begin(), c.options.end());
    args.push_back("x*y");
    const BatchRun run = runBatch(args);
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.err.find("orvane-batch stereo: " + c.err + "\n"), std::string::npos) << run.err;
    EXPECT_FALSE(std::filesystem::exists(path("d_left.png")));
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
