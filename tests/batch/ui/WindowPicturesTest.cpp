// What orvane-batch writes against the windows themselves: the study's texts and the
// pictures of the 2-D and stereo windows against the tool's on the same data. (A pair
// saved by "fit --save" opens with the same listing: RegressionCommandsTest.)

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
#include "stereo/ui/frmStereoPlot.h"

namespace orvane {

class WindowPicturesTest : public QObject {
  Q_OBJECT

 private:
  // The regression window's state after Compute on a data file `name` of these lines.
  std::string computeFrom(const char* name, const std::string& lines, Workbench& w) {
    const std::string csv = path(name);
    testing::writeFile(csv, lines);
    w.problem = ReadCsvProblem(csv);
    Compute(w.problem);
    w.fitted = w.problem.computed;
    return csv;
  }
  // The tool's picture and the window's, pixel for pixel; the window's has something drawn.
  static void samePicture(const std::string& file, const QImage& shown) {
    QVERIFY(std::count_if(shown.bits(), shown.bits() + shown.sizeInBytes(), [&](uchar b) { return b != 255; }) > 1000);
    QCOMPARE(QImage(QString::fromStdString(file)).convertToFormat(QImage::Format_RGB32),
             shown.convertToFormat(QImage::Format_RGB32));
  }

  QTemporaryDir dir_;
  std::string path(const char* name) { return dir_.filePath(QString::fromLatin1(name)).toStdString(); }

 private slots:
  void studyPrintsWhatTheStudyWindowShows() {
    Workbench workbench;
    ScriptedDialogs dialogs;
    frmPlot window(workbench, dialogs);
    const char* typed[][2] = {{"txtEquation", "x^3-2*x-1"}, {"txtXlower", "-2"}, {"txtXupper", "2.5"},
                              {"txtError", "1e-10"},        {"txtDerNum", "2"},  {"txtXeval", "0.7"}};
    for (const auto& t : typed) window.findChild<QLineEdit*>(t[0])->setText(t[1]);
    const struct {
      const char *button, *list, *label;
      std::vector<std::string> command;
    } rows[] = {{"cmdRoots", "lstRoots", "lblRoots", {"roots"}},
                {"cmdExtrema", "lstExtrema", "lblExtrema", {"extrema"}},
                {"cmdIntegrate", nullptr, "lblIntegral", {"integral"}},
                {"cmdDerVal", nullptr, "lblDerVal", {"value", "2", "0.7"}}};
    for (const auto& r : rows) {
      window.findChild<QPushButton*>(r.button)->click();
      QStringList shown;
      if (r.list)
        for (auto* l = window.findChild<QListWidget*>(r.list); shown.size() < l->count();)
          shown << l->item(int(shown.size()))->text();
      shown << window.findChild<QLabel*>(r.label)->text();
      std::vector<std::string> args = {"study", "x^3-2*x-1", "--interval", "-2", "2.5", "--error", "1e-10"};
      args.insert(args.end(), r.command.begin(), r.command.end());
      QStringList printed;
      for (const std::string& line : testing::runBatch(args).outLines()) printed << QString::fromStdString(line);
      QCOMPARE(printed, shown);
    }
  }

  void plot2dMatchesTheStudyWindow() {
    Workbench workbench;
    const std::string csv = computeFrom("line.csv", "y,x\n3.1,1\n4.9,2\n7.2,3\n8.8,4\n11.1,5\n", workbench);
    ScriptedDialogs dialogs;
    frmPlot window(workbench, dialogs);
    window.txtEquation->setText(QString::fromStdString(FittedFunctionText(workbench.problem)));
    window.findChild<QPushButton*>("cmdPlot")->click();
    const QImage shown = window.findChild<PictureBox*>("Picture1")->imageCanvas().image();
    const std::string png = path("line.png");
    QCOMPARE(testing::runBatch({"plot2d", "--data", csv, "--size", std::to_string(shown.width()),
                                std::to_string(shown.height()), "--out", png}).status, 0);
    samePicture(png, shown);
  }

  void stereoMatchesTheStereoWindow() {
    Workbench workbench;
    const std::string csv =
        computeFrom("plane.csv", "z,x,y\n0.5,-1,-1\n1,1,0\n-0.5,0,1\n0.2,0.5,0.5\n0.9,-0.5,0.8\n", workbench);
    ScriptedDialogs dialogs;
    frmStereoPlot window(workbench, dialogs);
    window.txtEquationZ->setText(QString::fromStdString(FittedFunctionText(workbench.problem)));
    window.findChild<QPushButton*>("cmdPlot")->click();
    const std::string prefix = path("plane");
    QCOMPARE(testing::runBatch({"stereo", "--data", csv, "--out", prefix}).status, 0);
    samePicture(prefix + "_left.png", dynamic_cast<QImageCanvas&>(window.picture(0)).image());
    samePicture(prefix + "_right.png", dynamic_cast<QImageCanvas&>(window.picture(1)).image());
  }
};

}  // namespace orvane

QTEST_MAIN(orvane::WindowPicturesTest)
#include "WindowPicturesTest.moc"
