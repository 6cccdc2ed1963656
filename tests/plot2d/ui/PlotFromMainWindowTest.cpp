// The whole path from data to picture: a one-variable problem opened and computed in the
// main window, Plot there opens the study window with the fitted line, and Exit brings
// the main window back.

#include <QAction>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

#include "platform/ScriptedDialogs.h"
#include "platform/ui/PictureBox.h"
#include "platform/ui/TextBox.h"
#include "plot2d/ui/frmPlot.h"
#include "regression/RegressionFile.h"
#include "regression/ui/frmOrvane.h"

namespace orvane {

class PlotFromMainWindowTest : public QObject {
  Q_OBJECT

 private slots:
  void plotOpensTheStudyAndExitReturns();
};

void PlotFromMainWindowTest::plotOpensTheStudyAndExitReturns() {
  QTemporaryDir dir;
  QVERIFY(dir.isValid());
  RegressionProblem problem;
  problem.m = 1;
  problem.N = 5;
  problem.names = {"t"};
  problem.dependentName = "s";
  problem.dimensionData();
  const double ys[] = {3, 5, 7, 9, 11};  // s = 1 + 2 t exactly
  for (int i = 1; i <= 5; ++i) {
    problem.X(1, i) = i;
    problem.X(2, i) = ys[i - 1];
  }
  const std::string file = dir.filePath(QStringLiteral("line")).toStdString();
  WriteRegressionFiles(file, problem);

  ScriptedDialogs dialogs;
  frmOrvane main(dialogs);
  main.show();
  // The main window hands the function over; the plot window brings it back.
  QPointer<frmPlot> plot;
  QString handedOver;
  connect(&main, &frmOrvane::plotRequested, &main, [&](int m, const QString& text) {
    QCOMPARE(m, 1);
    handedOver = text;
    plot = new frmPlot(main.workbench(), dialogs);
    plot->txtEquation->setText(text);
    connect(plot, &frmPlot::unloaded, &main, [&] {
      main.setEnabled(true);
      plot->deleteLater();
    });
    plot->show();
  });

  dialogs.queueOpenFileName(file);
  main.findChild<QAction*>(QStringLiteral("mnuOpen"))->trigger();
  main.findChild<QPushButton*>(QStringLiteral("cmdCompute"))->click();
  QVERIFY(main.workbench().fitted);
  auto* cmdPlot = main.findChild<QPushButton*>(QStringLiteral("cmdPlot"));
  QVERIFY(cmdPlot->isVisible());
  cmdPlot->click();

  QVERIFY(plot);
  QVERIFY(!main.isEnabled());
  QVERIFY(QTest::qWaitForWindowExposed(plot.data()));
  QCOMPARE(plot->txtEquation->text(), handedOver);
  QVERIFY(handedOver.endsWith(QStringLiteral("*x")));
  // The fitted line is drawn at once, through the data points.
  QTRY_VERIFY(plot->graphDrawn());
  auto* picture = plot->findChild<PictureBox*>(QStringLiteral("Picture1"));
  const QImage& image = picture->imageCanvas().image();
  Canvas& canvas = picture->canvas();
  auto colourAt = [&](float x, float y, int below = 0) {
    return image.pixelColor(int(std::lround(canvas.toPixelX(x))), int(std::lround(canvas.toPixelY(y))) + below).name();
  };
  QCOMPARE(colourAt(3, 7, 2), QStringLiteral("#0000ff"));  // the data point, beside the line
  QCOMPARE(colourAt(3.5f, 8), QStringLiteral("#000000"));

  // A study of the handed-over line: its root lies left of the data.
  plot->findChild<TextBox*>(QStringLiteral("txtXlower"))->setText(QStringLiteral("-2"));
  plot->findChild<QPushButton*>(QStringLiteral("cmdRoots"))->click();
  QCOMPARE(plot->findChild<QLabel*>(QStringLiteral("lblRoots"))->text(), QStringLiteral("1 roots"));

  plot->findChild<QPushButton*>(QStringLiteral("cmdExit"))->click();
  QVERIFY(main.isEnabled());
  QTRY_VERIFY(plot.isNull());
  QVERIFY(dialogs.messages().empty());
}

}  // namespace orvane

QTEST_MAIN(orvane::PlotFromMainWindowTest)
#include "PlotFromMainWindowTest.moc"
