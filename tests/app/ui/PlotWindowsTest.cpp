// Plot in the main window hands the fitted function to the study window for one
// variable or the stereo window for two, and waits, disabled, until that window exits.

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QPointer>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>
#include <utility>
#include <vector>

#include "app/PlotWindows.h"
#include "platform/ScriptedDialogs.h"
#include "platform/ui/TextBox.h"
#include "plot2d/ui/frmPlot.h"
#include "regression/RegressionFile.h"
#include "regression/RegressionTestSupport.h"
#include "regression/Solver.h"
#include "regression/ui/frmOrvane.h"
#include "stereo/ui/frmStereoPlot.h"

namespace orvane {
namespace {

template <class Window>
Window* shownWindow() {
  for (QWidget* w : QApplication::topLevelWidgets())
    if (auto* window = qobject_cast<Window*>(w); window && window->isVisible()) return window;
  return nullptr;
}

}  // namespace

class PlotWindowsTest : public QObject {
  Q_OBJECT

 private slots:
  // One variable: the study window; two: the stereo pair.
  void plotHandsTheFitOverAndExitReturns() {
    for (const int m : {1, 2}) {
      // z = 1 + 2 x1 - x2 at the corners of the unit square and one more point, against
      // x1 alone or both.
      std::vector<std::vector<double>> sets;
      for (const auto& [x1, x2] : std::vector<std::pair<double, double>>{{0, 0}, {1, 0}, {0, 1}, {1, 1}, {2, 1}})
        sets.push_back(m == 1 ? std::vector{x1, 1 + 2 * x1 - x2} : std::vector{x1, x2, 1 + 2 * x1 - x2});
      QTemporaryDir dir;
      const std::string path = QDir(dir.path()).filePath("fit.txt").toStdString();
      WriteRegressionFiles(path, testing::makeProblem(m, sets, {"s", "t"}));
      ScriptedDialogs dialogs;
      frmOrvane main(dialogs);
      ConnectPlotWindows(main, dialogs);
      main.show();
      dialogs.queueOpenFileName(path);
      main.findChild<QAction*>("mnuOpen")->trigger();
      main.findChild<QPushButton*>("cmdCompute")->click();
      QVERIFY(main.workbench().fitted);
      const QString fitted = QString::fromStdString(FittedFunctionText(main.workbench().problem));
      auto* cmdPlot = main.findChild<QPushButton*>("cmdPlot");
      QVERIFY(cmdPlot->isVisible());
      cmdPlot->click();

      frmPlot* plot = shownWindow<frmPlot>();
      frmStereoPlot* stereo = shownWindow<frmStereoPlot>();
      QCOMPARE(std::pair(plot != nullptr, stereo != nullptr), std::pair(m == 1, m == 2));
      QCOMPARE(m == 1 ? plot->txtEquation->text() : stereo->txtEquationZ->text(), fitted);  // its text: SolverTest
      if (plot) QTRY_VERIFY(plot->graphDrawn());  // the fitted line at once
      QPointer<QWidget> study = m == 1 ? static_cast<QWidget*>(plot) : stereo;
      QVERIFY(!main.isEnabled());
      study->findChild<QPushButton*>("cmdExit")->click();
      QVERIFY(main.isEnabled());
      QTRY_VERIFY(study.isNull());
      QVERIFY(dialogs.messages().empty());
    }
  }
};

}  // namespace orvane

QTEST_MAIN(orvane::PlotWindowsTest)
#include "PlotWindowsTest.moc"
