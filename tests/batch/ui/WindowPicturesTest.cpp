// What orvane-batch writes against the windows themselves: a file pair saved by
// "fit --save" opened by the regression window, and the pictures of the 2-D study
// window and the stereo window opened on the same regression and plotted as they
// open, against the tool run on the same data file at the windows' picture sizes.

#include <QAction>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>
#include <memory>

#include "batch/BatchSupport.h"
#include "regression/CsvProblem.h"
#include "platform/ScriptedDialogs.h"
#include "platform/ui/PictureBox.h"
#include "platform/ui/QImageCanvas.h"
#include "platform/ui/TextBox.h"
#include "plot2d/ui/frmPlot.h"
#include "regression/Solver.h"
#include "regression/Workbench.h"
#include "regression/ui/frmOrvane.h"
#include "stereo/ui/frmStereoPlot.h"

namespace orvane {

class WindowPicturesTest : public QObject {
  Q_OBJECT

 private:
  // The regression window's state after Compute on the file.
  static void computeFrom(const std::string& csv, Workbench& w) {
    w.problem = ReadCsvProblem(csv);
    Compute(w.problem);
    w.fitted = w.problem.computed;
  }

  static int differingPixels(const QImage& a, const QImage& b) {
    if (a.size() != b.size()) return -1;
    const QImage x = a.convertToFormat(QImage::Format_RGB32), y = b.convertToFormat(QImage::Format_RGB32);
    int count = 0;
    for (int row = 0; row < x.height(); ++row)
      for (int col = 0; col < x.width(); ++col)
        if (x.pixel(col, row) != y.pixel(col, row)) ++count;
    return count;
  }

  // Pixels that are neither white nor black background: something was drawn.
  static int drawnPixels(const QImage& image) {
    int count = 0;
    for (int row = 0; row < image.height(); ++row)
      for (int col = 0; col < image.width(); ++col)
        if (image.pixel(col, row) != image.pixel(0, image.height() / 2)) ++count;
    return count;
  }

  QTemporaryDir dir_;
  std::string path(const char* name) { return dir_.filePath(QString::fromLatin1(name)).toStdString(); }

 private slots:
  void savedPairOpensInTheRegressionWindowWithTheSameListing() {
    const std::string csv = path("data.csv");
    testing::writeFile(csv, "\"yield\",temp,pressure\r\n1,2,3\r\n\r\n2,3,5\r\n3,5,7.5\r\n4,4,-1\r\n");
    const std::string rule = path("saved.txt");
    const testing::BatchRun run = testing::runBatch({"fit", csv, "--save", rule});
    QCOMPARE(run.status, 0);

    ScriptedDialogs dialogs;
    frmOrvane window(dialogs);
    dialogs.queueOpenFileName(rule);
    window.findChild<QAction*>("mnuOpen")->trigger();
    QVERIFY(dialogs.messages().empty());
    QStringList shown, printed;
    auto* list = window.findChild<QListWidget*>("lstCoeff");
    for (int i = 0; i < list->count(); ++i) shown << list->item(i)->text();
    for (const std::string& line : run.outLines()) printed << QString::fromStdString(line);
    QCOMPARE(shown, printed);
  }

  void studyPrintsWhatTheStudyWindowShows() {
    Workbench workbench;
    ScriptedDialogs dialogs;
    frmPlot window(workbench, dialogs);
    auto type = [&](const char* name, const char* text) {
      window.findChild<QLineEdit*>(QString::fromLatin1(name))->setText(QString::fromLatin1(text));
    };
    auto shown = [&](const char* list, const char* label) {
      QStringList lines;
      if (list) {
        auto* l = window.findChild<QListWidget*>(QString::fromLatin1(list));
        for (int i = 0; i < l->count(); ++i) lines << l->item(i)->text();
      }
      lines << window.findChild<QLabel*>(QString::fromLatin1(label))->text();
      return lines;
    };
    auto printed = [](const std::vector<std::string>& args) {
      QStringList lines;
      for (const std::string& line : testing::runBatch(args).outLines()) lines << QString::fromStdString(line);
      return lines;
    };
    type("txtEquation", "x^3-2*x-1");
    type("txtXlower", "-2");
    type("txtXupper", "2.5");
    type("txtError", "1e-10");
    const std::vector<std::string> common = {"study", "x^3-2*x-1", "--interval", "-2", "2.5", "--error", "1e-10"};
    auto with = [&](std::vector<std::string> tail) {
      std::vector<std::string> args = common;
      args.insert(args.end(), tail.begin(), tail.end());
      return args;
    };

    window.findChild<QPushButton*>("cmdRoots")->click();
    QCOMPARE(printed(with({"roots"})), shown("lstRoots", "lblRoots"));
    window.findChild<QPushButton*>("cmdExtrema")->click();
    QCOMPARE(printed(with({"extrema"})), shown("lstExtrema", "lblExtrema"));
    window.findChild<QPushButton*>("cmdIntegrate")->click();
    QCOMPARE(printed(with({"integral"})), shown(nullptr, "lblIntegral"));
    type("txtDerNum", "2");
    type("txtXeval", "0.7");
    window.findChild<QPushButton*>("cmdDerVal")->click();
    QCOMPARE(printed(with({"value", "2", "0.7"})), shown(nullptr, "lblDerVal"));
  }

  void plot2dMatchesTheStudyWindow() {
    const std::string csv = path("line.csv");
    testing::writeFile(csv, "y,x\n3.1,1\n4.9,2\n7.2,3\n8.8,4\n11.1,5\n");
    Workbench workbench;
    computeFrom(csv, workbench);
    ScriptedDialogs dialogs;
    frmPlot window(workbench, dialogs);
    window.txtEquation->setText(QString::fromStdString(FittedFunctionText(workbench.problem)));
    window.findChild<QPushButton*>("cmdPlot")->click();
    const QImage shown = window.findChild<PictureBox*>("Picture1")->imageCanvas().image();
    QVERIFY(drawnPixels(shown) > 1000);

    const std::string png = path("line.png");
    const testing::BatchRun run =
        testing::runBatch({"plot2d", "--data", csv, "--size", std::to_string(shown.width()),
                           std::to_string(shown.height()), "--out", png});
    QCOMPARE(run.status, 0);
    QCOMPARE(differingPixels(QImage(QString::fromStdString(png)), shown), 0);
  }

  void stereoMatchesTheStereoWindow() {
    const std::string csv = path("plane.csv");
    testing::writeFile(csv, "z,x,y\n0.5,-1,-1\n1,1,0\n-0.5,0,1\n0.2,0.5,0.5\n0.9,-0.5,0.8\n");
    Workbench workbench;
    computeFrom(csv, workbench);
    ScriptedDialogs dialogs;
    frmStereoPlot window(workbench, dialogs);
    window.txtEquationZ->setText(QString::fromStdString(FittedFunctionText(workbench.problem)));
    window.findChild<QPushButton*>("cmdPlot")->click();
    QVERIFY(drawnPixels(dynamic_cast<QImageCanvas&>(window.picture(0)).image()) > 1000);

    const std::string prefix = path("plane");
    const testing::BatchRun run = testing::runBatch({"stereo", "--data", csv, "--out", prefix});
    QCOMPARE(run.status, 0);
    const QImage left(QString::fromStdString(prefix + "_left.png"));
    const QImage right(QString::fromStdString(prefix + "_right.png"));
    QCOMPARE(differingPixels(left, dynamic_cast<QImageCanvas&>(window.picture(0)).image()), 0);
    QCOMPARE(differingPixels(right, dynamic_cast<QImageCanvas&>(window.picture(1)).image()), 0);
  }
};

}  // namespace orvane

QTEST_MAIN(orvane::WindowPicturesTest)
#include "WindowPicturesTest.moc"
