// The statistics of the fit as a user meets them: the Statistics window following
// Compute, a delete and Open, its copy and its printout; the warning under the results
// on ill-conditioned data; the 95% bands of the 2-D window around the fitted function
// only.

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTableView>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QtTest>

#include "platform/ScriptedDialogs.h"
#include "platform/ui/PictureBox.h"
#include "platform/ui/QtPrinterPage.h"
#include "platform/ui/TextBox.h"
#include "plot2d/PlotDrawing.h"
#include "plot2d/ui/frmPlot.h"
#include "regression/RegressionFile.h"
#include "regression/ResidualPlot.h"
#include "regression/Solver.h"
#include "regression/ui/DataGridModel.h"
#include "regression/ui/frmEdit.h"
#include "regression/ui/frmOrvane.h"
#include "regression/ui/frmStatistics.h"

using namespace orvane;

namespace {

// Dialogs whose printer writes a PDF file.
class PdfDialogs : public ScriptedDialogs {
 public:
  explicit PdfDialogs(std::string path) : path_(std::move(path)) {}
  std::unique_ptr<PrinterPage> OpenPrinter(std::string_view name) override {
    return std::make_unique<QtPrinterPage>(path_, std::string(name));
  }

 private:
  std::string path_;
};

// A problem with one variable per column: rows of {x1..xm, y}.
RegressionProblem problemOf(int m, const std::vector<std::vector<double>>& rows) {
  RegressionProblem p;
  p.m = m;
  p.N = static_cast<int>(rows.size());
  for (int j = 1; j <= m; ++j) p.names.push_back(m == 1 ? "x" : "x" + std::to_string(j));
  p.dependentName = "y";
  p.dimensionData();
  for (int i = 1; i <= p.N; ++i)
    for (int j = 1; j <= m + 1; ++j) p.X(j, i) = rows[i - 1][j - 1];
  return p;
}

// NIST's degree-10 polynomial, its columns x, x^2, ..., x^10 (tests/regression/data).
RegressionProblem filip() {
  QFile file(qEnvironmentVariable("ORVANE_SOURCE_DIR") + "/tests/regression/data/Filip.csv");
  if (!file.open(QIODevice::ReadOnly)) return {};
  std::vector<std::vector<double>> rows;
  file.readLine();
  while (!file.atEnd()) {
    const QList<QByteArray> fields = file.readLine().trimmed().split(',');
    if (fields.size() < 2) continue;
    rows.emplace_back();
    for (qsizetype k = 1; k < fields.size(); ++k) rows.back().push_back(fields[k].toDouble());
    rows.back().push_back(fields[0].toDouble());
  }
  return problemOf(static_cast<int>(rows.at(0).size()) - 1, rows);
}

QStringList listLines(const QListWidget* list) {
  QStringList lines;
  for (int i = 0; i < list->count(); ++i) lines << list->item(i)->text();
  return lines;
}

int pixelsOf(const QImage& image, Color color) {
  const QRgb wanted = QImageCanvas::toQColor(color).rgb();
  int count = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x) count += image.pixel(x, y) == wanted;
  return count;
}

// The main window over a file pair opened from a temporary folder.
struct MainWindow {
  QTemporaryDir folder;
  ScriptedDialogs& dialogs;
  frmOrvane window{dialogs};
  QAction* mnuStatistics = window.findChild<QAction*>("mnuStatistics");
  QLabel* lblWarning = window.findChild<QLabel*>("lblWarning");
  QListWidget* lstCoeff = window.findChild<QListWidget*>("lstCoeff");
  QPushButton* cmdCompute = window.findChild<QPushButton*>("cmdCompute");

  explicit MainWindow(ScriptedDialogs& d) : dialogs(d) {
    window.show();
    window.activateWindow();
    if (!QTest::qWaitForWindowActive(&window)) qWarning("main window not active");
  }

  void open(const RegressionProblem& p) {
    const std::string path = QDir(folder.path()).filePath("problem.txt").toStdString();
    WriteRegressionFiles(path, p);
    dialogs.queueOpenFileName(path);
    window.findChild<QAction*>("mnuOpen")->trigger();
  }

  frmStatistics* openStatistics() {
    QTest::keyClick(&window, Qt::Key_T, Qt::ControlModifier);
    return window.statistics();
  }
};

// x = 1..5 against y = 1.09 + 1.97 x with residuals 0.04, -0.13, 0, 0.23, -0.14.
const std::vector<std::vector<double>> kLine = {{1, 3.1}, {2, 4.9}, {3, 7}, {4, 9.2}, {5, 10.8}};

}  // namespace

class StatisticsWindowTest : public QObject {
  Q_OBJECT

 private slots:
  void windowFollowsTheFit() {
    ScriptedDialogs dialogs;
    MainWindow w(dialogs);
    w.open(problemOf(1, kLine));
    QVERIFY(!w.mnuStatistics->isEnabled());
    QVERIFY(!w.openStatistics());  // nothing computed: nothing to show

    w.cmdCompute->click();
    QVERIFY(w.mnuStatistics->isEnabled() && !w.lblWarning->isVisible());
    frmStatistics* s = w.openStatistics();
    QVERIFY(s && s->isVisible());
    QCOMPARE(s->windowTitle(), QStringLiteral("Statistics"));
    QCOMPARE(s->grdCoefficients->rowCount(), 2);
    QCOMPARE(s->grdCoefficients->item(1, 0)->text(), QStringLiteral("A1 x"));
    // The estimate is the listing's own value; the standard error that of R's lm.
    QCOMPARE(s->grdCoefficients->item(1, 1)->text(), w.lstCoeff->item(8)->text().section('=', 1));
    QVERIFY(qAbs(s->grdCoefficients->item(1, 2)->text().toDouble() - std::sqrt(0.091 / 30)) < 1e-15);
    QVERIFY(listLines(s->lstSummary).filter(QRegularExpression("^Digits trusted: 1[45]")).size() == 1);
    QCOMPARE(s->cboResiduals->count(), 2);
    QVERIFY(pixelsOf(s->picResiduals->imageCanvas().image(), residualcolors::Points) > 0);

    s->cmdCopy->click();
    QCOMPARE(dialogs.copiedTexts().size(), size_t{1});
    const std::string copied = dialogs.copiedTexts()[0];
    QVERIFY(copied.rfind("Coefficients:\n", 0) == 0 && copied.find("Digits trusted") != std::string::npos);
    s->cmdPrint->click();
    const std::vector<std::string> printed = dialogs.printer().texts();
    QVERIFY(!printed.empty() && printed.front() == "Coefficients:");
    QCOMPARE(dialogs.printer().pictures().size(), size_t{1});

    // A delete changes the data: the statistics go with the results, and come back with Compute.
    w.window.findChild<QPushButton*>("cmdEditData")->click();
    frmEdit* editor = w.window.editor();
    editor->MSFlexGridEdit->setCurrentIndex(editor->model()->index(1, 0));
    editor->cmdDelete->click();
    editor->cmdExit->click();
    QCOMPARE(s->grdCoefficients->rowCount(), 0);
    QCOMPARE(s->lstSummary->count(), 0);
    QVERIFY(!s->cmdPrint->isEnabled() && !s->cmdCopy->isEnabled() && !w.mnuStatistics->isEnabled());
    QCOMPARE(pixelsOf(s->picResiduals->imageCanvas().image(), residualcolors::Points), 0);
    w.cmdCompute->click();
    QCOMPARE(s->grdCoefficients->rowCount(), 2);
  }

  void printsToPdf() {
    QTemporaryDir folder;
    const QString pdf = QDir(folder.path()).filePath("statistics.pdf");
    PdfDialogs dialogs(pdf.toStdString());
    MainWindow w(dialogs);
    w.open(problemOf(1, kLine));
    w.cmdCompute->click();
    w.openStatistics()->cmdPrint->click();
    QFile file(pdf);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.read(5) == "%PDF-");
    QVERIFY(file.size() > 10000);  // the text and the residual picture
  }

  // Filip: the listing has no correct digit and says nothing; the warning says so, under
  // the results and not inside them, after Compute and after opening the computed pair.
  void illConditionedDataWarnUnderTheResults() {
    const RegressionProblem data = filip();
    QCOMPARE(data.m, 10);
    const QString warning = QStringLiteral(
        "Warning: only about 0 digits of the coefficients can be trusted (ill-conditioned data); see Statistics.");
    ScriptedDialogs dialogs;
    MainWindow w(dialogs);
    w.open(data);
    w.cmdCompute->click();
    QVERIFY(w.lblWarning->isVisible());
    QCOMPARE(w.lblWarning->text(), warning);
    QCOMPARE(w.lstCoeff->count(), 18);  // the listing as always
    QVERIFY(!listLines(w.lstCoeff).join("\n").contains("Warning"));

    const QString saved = QDir(w.folder.path()).filePath("computed.txt");
    dialogs.queueSaveFileName(saved.toStdString());
    w.window.findChild<QAction*>("mnuSaveAs")->trigger();
    ScriptedDialogs later;
    MainWindow reopened(later);
    later.queueOpenFileName(saved.toStdString());
    reopened.window.findChild<QAction*>("mnuOpen")->trigger();
    QCOMPARE(listLines(reopened.lstCoeff), listLines(w.lstCoeff));
    QCOMPARE(reopened.lblWarning->text(), warning);
    QVERIFY(reopened.lblWarning->isVisible() && reopened.mnuStatistics->isEnabled());
  }

  void bandsOnlyAroundTheFittedFunction() {
    ScriptedDialogs dialogs;
    MainWindow w(dialogs);
    w.open(problemOf(1, kLine));
    w.cmdCompute->click();
    frmPlot plot(w.window.workbench(), dialogs);
    plot.show();
    QVERIFY(QTest::qWaitForWindowExposed(&plot));
    const QString fitted = QString::fromStdString(FittedFunctionText(w.window.workbench().problem));
    auto* chkBands = plot.findChild<QCheckBox*>("chkBands");
    auto* cboDerivative = plot.findChild<QComboBox*>("cboDerivative");
    auto* cmdPlot = plot.findChild<QPushButton*>("cmdPlot");
    QVERIFY(chkBands && chkBands->parentWidget()->objectName() == QStringLiteral("fraGraph"));
    const auto bandPixels = [&](const QString& equation, bool bands, int derivative) {
      plot.txtEquation->setText(equation);
      cboDerivative->setCurrentIndex(derivative);
      chkBands->setChecked(bands);
      cmdPlot->click();
      return pixelsOf(plot.findChild<PictureBox*>("Picture1")->imageCanvas().image(), plotcolors::Bands);
    };
    QVERIFY(bandPixels(fitted, true, 0) > 100);
    QCOMPARE(bandPixels(fitted, false, 0), 0);
    QCOMPARE(bandPixels(QStringLiteral("2*x"), true, 0), 0);
    QCOMPARE(bandPixels(fitted, true, 1), 0);
    QVERIFY(bandPixels(QStringLiteral(" ") + fitted, true, 0) > 100);
  }
};

QTEST_MAIN(StatisticsWindowTest)
#include "StatisticsWindowTest.moc"
