// The statistics of the fit as a user meets them: the Statistics window following
// Compute, a delete and Open, its copy and its printout; the warning under the results
// on ill-conditioned data; the 95% bands of the 2-D window around the fitted function
// only.

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTableView>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QtTest>

#include "platform/ScriptedDialogs.h"
#include "platform/ui/PictureBox.h"
#include "platform/ui/TextBox.h"
#include "plot2d/PlotDrawing.h"
#include "plot2d/ui/frmPlot.h"
#include "regression/RegressionFile.h"
#include "regression/RegressionTestSupport.h"
#include "regression/ResidualPlot.h"
#include "regression/Solver.h"
#include "regression/ui/DataGridModel.h"
#include "regression/ui/frmEdit.h"
#include "regression/ui/frmOrvane.h"
#include "regression/ui/frmStatistics.h"

using namespace orvane;

namespace {

QStringList listLines(const QListWidget* list) {
  QStringList lines;
  for (int i = 0; i < list->count(); ++i) lines << list->item(i)->text();
  return lines;
}

int pixelsOf(PictureBox* picture, Color color) {
  const QImage image = picture->imageCanvas().image();
  const QRgb wanted = QImageCanvas::toQColor(color).rgb();
  int count = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x) count += image.pixel(x, y) == wanted;
  return count;
}

// The main window with a problem opened from a file pair and computed.
struct MainWindow {
  QTemporaryDir folder;
  ScriptedDialogs dialogs;
  frmOrvane window{dialogs};
  QAction* mnuStatistics = window.findChild<QAction*>("mnuStatistics");
  QLabel* lblWarning = window.findChild<QLabel*>("lblWarning");
  QListWidget* lstCoeff = window.findChild<QListWidget*>("lstCoeff");

  // Opens `p` written as a file pair, or the pair at `path`.
  explicit MainWindow(const RegressionProblem& p, std::string path = {}) {
    window.show();
    window.activateWindow();
    if (!QTest::qWaitForWindowActive(&window)) qWarning("main window not active");
    if (path.empty()) {
      path = QDir(folder.path()).filePath("problem.txt").toStdString();
      WriteRegressionFiles(path, p);
    }
    dialogs.queueOpenFileName(path);
    window.findChild<QAction*>("mnuOpen")->trigger();
  }
  void compute() { window.findChild<QPushButton*>("cmdCompute")->click(); }
  frmStatistics* openStatistics() {
    QTest::keyClick(&window, Qt::Key_T, Qt::ControlModifier);
    return window.statistics();
  }
};

// x = 1..5 against y = 1.09 + 1.97 x with residuals 0.04, -0.13, 0, 0.23, -0.14.
const RegressionProblem kLine = testing::makeProblem(1, {{1, 3.1}, {2, 4.9}, {3, 7}, {4, 9.2}, {5, 10.8}}, {"x"});

}  // namespace

class StatisticsWindowTest : public QObject {
  Q_OBJECT

 private slots:
  void windowFollowsTheFit() {
    MainWindow w(kLine);
    QVERIFY(!w.mnuStatistics->isEnabled());
    QVERIFY(!w.openStatistics());  // nothing computed: nothing to show

    w.compute();
    QVERIFY(w.mnuStatistics->isEnabled() && !w.lblWarning->isVisible());
    frmStatistics* s = w.openStatistics();
    QVERIFY(s && s->isVisible());
    QCOMPARE(s->grdCoefficients->rowCount(), 2);
    QCOMPARE(s->grdCoefficients->item(1, 0)->text(), QStringLiteral("A1 x"));
    // The estimate is the listing's own value; the standard error that of R's lm.
    QCOMPARE(s->grdCoefficients->item(1, 1)->text(), w.lstCoeff->item(8)->text().section('=', 1));
    QVERIFY(qAbs(s->grdCoefficients->item(1, 2)->text().toDouble() - std::sqrt(0.091 / 30)) < 1e-15);
    QCOMPARE(listLines(s->lstSummary).filter(QRegularExpression("^Digits trusted: 1[45]")).size(), 1);
    QCOMPARE(s->cboResiduals->count(), 2);
    s->cboResiduals->setCurrentIndex(1);  // against x
    QVERIFY(pixelsOf(s->picResiduals, residualcolors::Points) > 0);
    const QSize before = s->picResiduals->imageCanvas().image().size();
    s->resize(s->width() + 80, s->height() + 60);  // drawn again at the new size
    QTRY_VERIFY(s->picResiduals->imageCanvas().image().size() != before);
    QTRY_VERIFY(pixelsOf(s->picResiduals, residualcolors::Points) > 0);

    s->cmdCopy->click();
    QCOMPARE(w.dialogs.copiedTexts().size(), size_t{1});
    QVERIFY(w.dialogs.copiedTexts()[0].rfind("Coefficients:\n", 0) == 0);
    s->cmdPrint->click();
    QCOMPARE(w.dialogs.printer().texts().front(), std::string("Coefficients:"));
    QCOMPARE(w.dialogs.printer().pictures().size(), size_t{1});
    w.dialogs.setCancelPrinting(true);
    s->cmdPrint->click();
    QCOMPARE(w.dialogs.printer().endDocCount(), 1);  // a cancelled print prints nothing

    // A delete changes the data: the statistics go with the results, and come back with Compute.
    w.window.findChild<QPushButton*>("cmdEditData")->click();
    frmEdit* editor = w.window.editor();
    editor->MSFlexGridEdit->setCurrentIndex(editor->model()->index(1, 0));
    editor->cmdDelete->click();
    editor->cmdExit->click();
    QCOMPARE(s->grdCoefficients->rowCount(), 0);
    QCOMPARE(s->lstSummary->count(), 0);
    QVERIFY(!s->cmdPrint->isEnabled() && !s->cmdCopy->isEnabled() && !w.mnuStatistics->isEnabled());
    QCOMPARE(pixelsOf(s->picResiduals, residualcolors::Points), 0);
    w.compute();
    QCOMPARE(s->grdCoefficients->rowCount(), 2);
  }

  // Filip: the listing has no correct digit and says nothing; the warning says so, under
  // the results and not inside them, after Compute and after opening the computed pair.
  void illConditionedDataWarnUnderTheResults() {
    MainWindow w(testing::readDataCsv("Filip"));
    w.compute();
    QVERIFY(w.lblWarning->isVisible());
    QCOMPARE(w.lblWarning->text(),
             "Warning: only about 0 digits of the coefficients can be trusted (ill-conditioned data); see Statistics.");
    QCOMPARE(w.lstCoeff->count(), 18);  // the listing as always
    QVERIFY(!listLines(w.lstCoeff).join("\n").contains("Warning"));

    const QString saved = QDir(w.folder.path()).filePath("computed.txt");
    w.dialogs.queueSaveFileName(saved.toStdString());
    w.window.findChild<QAction*>("mnuSaveAs")->trigger();
    MainWindow reopened({}, saved.toStdString());
    QCOMPARE(listLines(reopened.lstCoeff), listLines(w.lstCoeff));
    QCOMPARE(reopened.lblWarning->text(), w.lblWarning->text());
    QVERIFY(reopened.lblWarning->isVisible() && reopened.mnuStatistics->isEnabled());
  }

  void bandsOnlyAroundTheFittedFunction() {
    MainWindow w(kLine);
    w.compute();
    frmPlot plot(w.window.workbench(), w.dialogs);
    plot.show();
    QVERIFY(QTest::qWaitForWindowExposed(&plot));
    const QString fitted = QString::fromStdString(FittedFunctionText(w.window.workbench().problem));
    auto* chkBands = plot.findChild<QCheckBox*>("chkBands");
    QVERIFY(chkBands && chkBands->parentWidget()->objectName() == QStringLiteral("fraGraph"));
    const auto bandPixels = [&](const QString& equation, bool bands, int derivative) {
      plot.txtEquation->setText(equation);
      plot.findChild<QComboBox*>("cboDerivative")->setCurrentIndex(derivative);
      chkBands->setChecked(bands);
      plot.findChild<QPushButton*>("cmdPlot")->click();
      return pixelsOf(plot.findChild<PictureBox*>("Picture1"), plotcolors::Bands);
    };
    QVERIFY(bandPixels(fitted, true, 0) > 100);
    QVERIFY(bandPixels(QStringLiteral(" ") + fitted, true, 0) > 100);
    QCOMPARE(bandPixels(fitted, false, 0), 0);
    QCOMPARE(bandPixels(QStringLiteral("2*x"), true, 0), 0);
    QCOMPARE(bandPixels(fitted, true, 1), 0);
  }
};

QTEST_MAIN(StatisticsWindowTest)
#include "StatisticsWindowTest.moc"
