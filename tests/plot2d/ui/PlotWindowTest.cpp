// The 2-D study window driven as a user drives it: a fitted straight line handed over,
// typed formulas, the study commands, zoom, the value panel, constants, printing,
// export and the clipboard, all through the scripted dialogs.

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QGroupBox>
#include <QImage>
#include <QLabel>
#include <QMouseEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>
#include <functional>
#include <memory>

#include "platform/ScriptedDialogs.h"
#include "platform/ui/PictureBox.h"
#include "platform/ui/TextBox.h"
#include "plot2d/ui/frmPlot.h"
#include "regression/Workbench.h"

namespace orvane {
namespace {

// Five data sets around y = 1.05 + 1.99 x, with that line fitted.
void fillFittedProblem(Workbench& w) {
  RegressionProblem& p = w.problem;
  p.m = 1;
  p.N = 5;
  p.names = {"x"};
  p.dependentName = "y";
  p.dimensionData();
  const double ys[] = {3.1, 4.9, 7.2, 8.8, 11.1};
  for (int i = 1; i <= 5; ++i) {
    p.X(0, i) = 1;
    p.X(1, i) = i;
    p.X(2, i) = ys[i - 1];
  }
  p.A = {1.05, 1.99, 0};
  p.computed = true;
  w.fitted = true;
  w.startDirectory = "/start/here";
}

// Dialogs whose event pump runs a test's action once, as a user's click arriving
// while a plot draws.
class PumpingDialogs : public ScriptedDialogs {
 public:
  std::function<void()> duringPump;
  void DoEvents() override {
    ScriptedDialogs::DoEvents();
    if (auto action = std::exchange(duringPump, nullptr)) action();
  }
};

QString pixelName(const QImage& image, double x, double y) {
  return image.pixelColor(int(std::lround(x)), int(std::lround(y))).name();
}

}  // namespace

class PlotWindowTest : public QObject {
  Q_OBJECT

 private:
  template <typename T = QWidget>
  T* control(const char* name) {
    auto* found = window_->findChild<T*>(QString::fromLatin1(name));
    if (!found) qFatal("no control named %s", name);
    return found;
  }
  QString text(const char* name) { return control<QLineEdit>(name)->text(); }
  void type(const char* name, const QString& value) { control<QLineEdit>(name)->setText(value); }
  void click(const char* name) { control<QPushButton>(name)->click(); }
  QStringList items(const char* name) {
    QStringList all;
    auto* list = control<QListWidget>(name);
    for (int i = 0; i < list->count(); ++i) all << list->item(i)->text();
    return all;
  }
  QString label(const char* name) { return control<QLabel>(name)->text(); }
  Canvas& picture() { return control<PictureBox>("Picture1")->canvas(); }
  const QImage& image() { return control<PictureBox>("Picture1")->imageCanvas().image(); }
  // Messages shown so far.
  QStringList messages() {
    QStringList all;
    for (const auto& m : dialogs_->messages()) all << QString::fromStdString(m.prompt);
    return all;
  }

  Workbench workbench_;
  std::unique_ptr<PumpingDialogs> dialogs_;
  std::unique_ptr<frmPlot> window_;

 private slots:
  void init() {
    workbench_ = Workbench{};
    fillFittedProblem(workbench_);
    dialogs_ = std::make_unique<PumpingDialogs>();
    window_ = std::make_unique<frmPlot>(workbench_, *dialogs_);
    window_->txtEquation->setText(QStringLiteral("1.05+1.99*x"));
  }
  void cleanup() {
    window_.reset();
    dialogs_.reset();
  }

  void opensOnTheDataAndDrawsTheFittedLine();
  void controlsCarryTheirCaptionsAndTips();
  void studyCommandsFillTheirListsAndLabels();
  void editingTheStudyClearsTheResults();
  void valuePanel_data();
  void valuePanel();
  void engineErrorBoxAppearsOncePerCommand();
  void zoomAndClickToCentreRewriteTheWindow();
  void windowFieldChangeClearsThePicture();
  void fieldsAreCorrectedAsTheyAreLeft();
  void constantsAreAddedReplacedAndRemoved();
  void printWritesTheReportBelowTheGraph();
  void exportWritesFileAndBitmap();
  void copyAndHelp();
  void plotArrivingDuringAPlotIsQueued();
  void pictureIsReadAtItsCurrentSize();
};

void PlotWindowTest::opensOnTheDataAndDrawsTheFittedLine() {
  // The interval spans the data; the window keeps the data, the line and the axes in sight.
  QCOMPARE(text("txtXlower"), QStringLiteral("1"));
  QCOMPARE(text("txtXupper"), QStringLiteral("5"));
  QCOMPARE(QStringList({text("txtWindowlx"), text("txtWindowgx"), text("txtWindowly"),
                        text("txtWindowgy"), text("txtXorigin"), text("txtYorigin")}),
           QStringList({"-1", "6", "-2", "12", "0", "0"}));
  QCOMPARE(text("txtSubintervals"), QStringLiteral("256"));
  QCOMPARE(text("txtError"), QStringLiteral(".01"));
  QVERIFY(text("txtMaxcy").toInt() >= 7);  // 256 panels need seven halvings

  window_->show();
  QVERIFY(QTest::qWaitForWindowExposed(window_.get()));
  QCOMPARE(control<PictureBox>("Picture1")->size(), QSize(600, 400));
  // The handed-over line is drawn once the window is up.
  QTRY_VERIFY(window_->graphDrawn());
  QCOMPARE(dialogs_->busyCalls(), (std::vector<bool>{true, false}));

  const QImage& shown = image();
  for (int i = 1; i <= 5; ++i) {
    const double x = workbench_.problem.X(1, i), y = workbench_.problem.X(2, i);
    QCOMPARE(pixelName(shown, picture().toPixelX(float(x)), picture().toPixelY(float(y))),
             QStringLiteral("#0000ff"));  // data point, blue
  }
  // The curve passes the line's value halfway between two data points.
  QCOMPARE(pixelName(shown, picture().toPixelX(2.5f), picture().toPixelY(float(1.05 + 1.99 * 2.5))),
           QStringLiteral("#000000"));
  QCOMPARE(pixelName(shown, picture().toPixelX(-0.5f), picture().toPixelY(0)),
           QStringLiteral("#ff0000"));  // x-axis, red
  QVERIFY(messages().isEmpty());

  // Without a fit, the data and axes are drawn but no curve.
  workbench_.fitted = false;
  type("txtEquation", "");
  click("cmdPlot");
  QVERIFY(messages().isEmpty());  // no function is no error
  QCOMPARE(pixelName(image(), picture().toPixelX(2.5f), picture().toPixelY(float(1.05 + 1.99 * 2.5))),
           QStringLiteral("#ffffff"));
  QCOMPARE(pixelName(image(), picture().toPixelX(3), picture().toPixelY(7.2f)),
           QStringLiteral("#0000ff"));
}

void PlotWindowTest::controlsCarryTheirCaptionsAndTips() {
  const struct {
    const char* name;
    const char* caption;
    const char* tip;
  } buttons[] = {
      {"cmdRoots", "&Roots", "Find roots"},
      {"cmdIntegrate", "&Integral", "Compute integral"},
      {"cmdExtrema", "&Extrema", "Find maxima and minima"},
      {"cmdDerVal", "&Value=", "Compute function or derivative"},
      {"cmdPlot", "&Plot", "Plot the selected option"},
      {"cmdExit", "E&xit", ""},
      {"cmdRemCons", "Remove", "Remove selected constant"},
  };
  for (const auto& b : buttons) {
    QCOMPARE(control<QPushButton>(b.name)->text(), QString::fromUtf8(b.caption));
    QCOMPARE(control<QPushButton>(b.name)->toolTip(), QString::fromUtf8(b.tip));
  }
  const char* zoomTips[][2] = {{"cmdZoomOut", "Zoom out"},     {"cmdZoomQ1", "Zoom quadrant 1"},
                               {"cmdZoomIn", "Zoom in"},       {"cmdPanDown", "Pan down"},
                               {"cmdIncWindX", "Wider x-window"}, {"cmdDecWindY", "Narrower y-window"}};
  for (const auto& z : zoomTips) QCOMPARE(control<QPushButton>(z[0])->toolTip(), QString::fromUtf8(z[1]));
  QCOMPARE(control<QLineEdit>("txtError")->toolTip(), QStringLiteral("Error MUST be >0"));
  QCOMPARE(control<QLineEdit>("txtPlotStep")->toolTip(), QStringLiteral("Enter integer between 1 and 80"));
  QCOMPARE(control<QCheckBox>("chkDivisions")->text(), QStringLiteral("Label divisons"));
  QCOMPARE(control<QComboBox>("cboDerivative")->itemText(9), QStringLiteral("9th.derivative"));
  QCOMPARE(control<QComboBox>("cboConstants")->currentText(), QStringLiteral("Example: a=2.37"));
  QCOMPARE(label("lblWindowy"), QStringLiteral("<=y<="));
  QCOMPARE(control<QGroupBox>("fraStudy")->title(), QStringLiteral("Study specifications"));
  QStringList menu;
  for (const char* name : {"mnuSave", "mnuSaveAs", "mnuPrint", "mnuCopy", "mnuHelp"})
    menu << control<QAction>(name)->text();
  QCOMPARE(menu, QStringList({"Export to Curvix", "Export to Curvix As", "Print",
                              "Copy graph to clipboard", "&Help"}));
}

void PlotWindowTest::studyCommandsFillTheirListsAndLabels() {
  type("txtEquation", "x^2-2");
  type("txtXlower", "-2");
  type("txtXupper", "2");
  type("txtError", "1e-10");
  click("cmdRoots");
  const QStringList roots = items("lstRoots");
  QCOMPARE(roots.size(), 2);
  QVERIFY(std::fabs(roots[0].toDouble() + std::sqrt(2.0)) < 1e-12);
  QVERIFY(std::fabs(roots[1].toDouble() - std::sqrt(2.0)) < 1e-12);
  QCOMPARE(window_->results().roots.roots.size(), size_t(2));
  QCOMPARE(label("lblRoots"), QStringLiteral("2 roots"));

  type("txtError", ".01");
  click("cmdIntegrate");
  QCOMPARE(label("lblIntegral").toDouble(), -8.0 / 3);
  click("cmdExtrema");
  QCOMPARE(items("lstExtrema"), QStringList({"Min 0"}));
  QCOMPARE(label("lblExtrema"), QStringLiteral("1 extrema"));
  QVERIFY(window_->results().integral.computed);

  // A pole in the interval: the integral names the reason instead of a value.
  type("txtEquation", "1/x");
  type("txtXlower", "-1");
  type("txtXupper", "1");
  click("cmdIntegrate");
  QCOMPARE(label("lblIntegral"), QStringLiteral("division by zero"));
  QCOMPARE(dialogs_->busyCalls().back(), false);
  QVERIFY(messages().isEmpty());
}

void PlotWindowTest::editingTheStudyClearsTheResults() {
  click("cmdRoots");
  click("cmdIntegrate");
  QCOMPARE(label("lblRoots"), QStringLiteral("0 roots"));
  for (const char* field : {"txtEquation", "txtXupper", "txtSubintervals", "txtError", "txtMaxcy"}) {
    click("cmdRoots");
    click("cmdExtrema");
    const QString before = text(field);
    type(field, before + "0");
    QVERIFY2(label("lblRoots").isEmpty() && label("lblIntegral").isEmpty() &&
                 items("lstRoots").isEmpty() && label("lblExtrema").isEmpty(),
             field);
    QVERIFY(window_->results().roots.roots.empty());
    type(field, before);
  }
  // Plot settings are not study settings.
  click("cmdRoots");
  type("txtDivx", "2");
  QCOMPARE(label("lblRoots"), QStringLiteral("0 roots"));
}

void PlotWindowTest::valuePanel_data() {
  QTest::addColumn<QString>("equation");
  QTest::addColumn<QString>("k");
  QTest::addColumn<QString>("at");
  QTest::addColumn<double>("expected");  // NaN: the label stays empty
  QTest::newRow("cube slope, five points") << "x^3" << "1" << "2" << 12.0;
  QTest::newRow("cube curvature") << "x^3" << "2" << "2" << 12.0;
  QTest::newRow("cube third order") << "x^3" << "3" << "2" << 6.0;
  QTest::newRow("blank order is f") << "x^3" << "" << "2" << 8.0;
  QTest::newRow("negative order is 0") << "x^3" << "-1" << "2" << 0.0;
  QTest::newRow("sqrt slope at 0 fails") << "Sqr(x)" << "1" << "0" << qQNaN();
  QTest::newRow("order 34 is refused") << "x" << "34" << "1" << qQNaN();
}

void PlotWindowTest::valuePanel() {
  QFETCH(QString, equation);
  QFETCH(QString, k);
  QFETCH(QString, at);
  QFETCH(double, expected);
  type("txtEquation", equation);
  type("txtDerNum", k);
  type("txtXeval", at);
  click("cmdDerVal");
  const QString shown = label("lblDerVal");
  if (qIsNaN(expected)) {
    QVERIFY2(shown.isEmpty(), qPrintable(shown));
  } else {
    bool ok = false;
    const double value = shown.toDouble(&ok);
    QVERIFY2(ok, qPrintable(shown));
    QVERIFY2(std::fabs(value - expected) < 1e-3 * (1 + std::fabs(expected)), qPrintable(shown));
  }
  QVERIFY(messages().isEmpty());
}

void PlotWindowTest::engineErrorBoxAppearsOncePerCommand() {
  type("txtEquation", "Foo(x)+1");
  click("cmdPlot");
  QCOMPARE(messages().size(), 1);
  click("cmdRoots");
  QCOMPARE(messages().size(), 2);
  QCOMPARE(messages()[0], messages()[1]);
  QVERIFY(!label("lblRoots").isEmpty() || items("lstRoots").isEmpty());

  // Silenced errors (a pole sampled by the plot) show nothing.
  type("txtEquation", "1/(x-2)");
  type("txtWindowlx", "-2");
  type("txtWindowgx", "2");
  click("cmdPlot");
  QCOMPARE(messages().size(), 2);
}

void PlotWindowTest::zoomAndClickToCentreRewriteTheWindow() {
  type("txtWindowlx", "-10");
  type("txtWindowgx", "10");
  type("txtWindowly", "-5");
  type("txtWindowgy", "5");
  click("cmdZoomQ1");
  QCOMPARE(QStringList({text("txtWindowlx"), text("txtWindowgx"), text("txtWindowly"), text("txtWindowgy")}),
           QStringList({"0", "10", "0", "5"}));
  QVERIFY(window_->graphDrawn());
  click("cmdDecWindX");  // width 10 -> 10 - 10/3
  QVERIFY(std::fabs(text("txtWindowgx").toDouble() - text("txtWindowlx").toDouble() - 20.0 / 3) < 1e-5);
  click("cmdIncWindX");  // and half of it again
  QVERIFY(std::fabs(text("txtWindowgx").toDouble() - text("txtWindowlx").toDouble() - 10) < 1e-5);

  // A click on the picture centres the window there, same extent.
  auto* box = control<PictureBox>("Picture1");
  const QPoint at(int(std::lround(picture().toPixelX(3))), int(std::lround(picture().toPixelY(1))));
  QTest::mouseClick(box, Qt::LeftButton, {}, at);
  const double lx = text("txtWindowlx").toDouble(), gx = text("txtWindowgx").toDouble();
  QVERIFY(std::fabs((lx + gx) / 2 - 3) < 0.05);
  QVERIFY(std::fabs(gx - lx - 10) < 1e-5);
  QMouseEvent move(QEvent::MouseMove, QPointF(at), box->mapToGlobal(QPointF(at)), Qt::NoButton,
                   Qt::NoButton, Qt::NoModifier);
  QCoreApplication::sendEvent(box, &move);
  QVERIFY(box->toolTip().endsWith(QStringLiteral("): Click to center graph here")));

  // A window without extent abandons the plot with a message, and nothing hangs.
  type("txtWindowgx", text("txtWindowlx"));
  click("cmdPlot");
  QCOMPARE(messages().size(), 1);
  QCOMPARE(dialogs_->busy(), false);
}

void PlotWindowTest::windowFieldChangeClearsThePicture() {
  click("cmdPlot");
  QVERIFY(window_->graphDrawn());
  type("txtYorigin", "1");
  QVERIFY(!window_->graphDrawn());
  QCOMPARE(image().pixelColor(300, 200).name(), QStringLiteral("#ffffff"));
  QCOMPARE(image().pixelColor(0, 0).name(), QStringLiteral("#ffffff"));
}

void PlotWindowTest::fieldsAreCorrectedAsTheyAreLeft() {
  window_->show();
  window_->activateWindow();
  QVERIFY(QTest::qWaitForWindowActive(window_.get()));
  auto leave = [&](const char* name, const QString& typed) {
    auto* box = control<TextBox>(name);
    box->setFocus(Qt::TabFocusReason);
    box->setText(typed);
    QTest::keyClick(box, Qt::Key_Tab);
    return box->hasFocus();
  };
  const struct {
    const char* field;
    const char* typed;
    const char* shown;
  } corrections[] = {
      {"txtSubintervals", "100", "128"}, {"txtSubintervals", "1", "2"},
      {"txtSubintervals", "256", "256"}, {"txtMaxcy", "3", "7"},
      {"txtMaxcy", "30", "30"},          {"txtPlotStep", "200", "80"},
  };
  for (const auto& c : corrections) {
    QVERIFY2(!leave(c.field, QString::fromLatin1(c.typed)), c.field);
    QCOMPARE(text(c.field), QString::fromLatin1(c.shown));
  }
  // An error bound that is not positive cannot be left.
  QVERIFY(leave("txtError", "0"));
  QVERIFY(leave("txtError", "-1"));
  QVERIFY(!leave("txtError", ".001"));
  // An inverted study interval or window sends the focus to the other limit.
  type("txtXupper", "5");
  leave("txtXlower", "7");
  QTRY_VERIFY(control<TextBox>("txtXupper")->hasFocus());
  QVERIFY(!leave("txtXupper", "6"));  // still inverted: back to the lower limit
  QTRY_VERIFY(control<TextBox>("txtXlower")->hasFocus());
  QVERIFY(!leave("txtXlower", "1"));
  type("txtWindowly", "-2");
  leave("txtWindowgy", "-3");
  QTRY_VERIFY(control<TextBox>("txtWindowly")->hasFocus());
  QCOMPARE(text("txtWindowgy"), QStringLiteral("-3"));
}

void PlotWindowTest::constantsAreAddedReplacedAndRemoved() {
  auto* combo = control<QComboBox>("cboConstants");
  auto add = [&](const QString& entry) {
    combo->setEditText(entry);
    click("cmdAddCons");
  };
  add("2a=1");
  add("a b=1");
  add("a=1");
  add("b=2*a");
  QCOMPARE(combo->count(), 2);
  type("txtEquation", "x+a+b");
  type("txtDerNum", "0");
  type("txtXeval", "1");
  click("cmdDerVal");
  QCOMPARE(label("lblDerVal"), QStringLiteral("4"));  // b sees the a before it
  add("a=2");  // redefined: now after b
  QCOMPARE(combo->count(), 2);
  QCOMPARE(combo->itemText(0), QStringLiteral("b=2*a"));
  QCOMPARE(combo->itemText(1), QStringLiteral("a=2"));
  click("cmdDerVal");
  QCOMPARE(label("lblDerVal"), QStringLiteral("5"));  // b = 2 from the earlier a, then a = 2

  combo->setCurrentIndex(1);  // a=2
  click("cmdRemCons");
  QCOMPARE(combo->count(), 1);
  type("txtEquation", "x+a");
  click("cmdDerVal");
  QCOMPARE(label("lblDerVal"), QStringLiteral("1"));  // a is now 0
  click("cmdRemCons");  // nothing selected: nothing happens
  QCOMPARE(combo->count(), 1);

  // Enter in the box adds too.
  combo->setFocus();
  combo->lineEdit()->setText(QStringLiteral("c=3"));
  QTest::keyClick(combo->lineEdit(), Qt::Key_Return);
  QCOMPARE(combo->count(), 2);
  QVERIFY(messages().isEmpty());
}

void PlotWindowTest::printWritesTheReportBelowTheGraph() {
  type("txtEquation", "x^2-2");
  type("txtXlower", "-2");
  type("txtXupper", "2");
  control<QComboBox>("cboConstants")->setEditText(QStringLiteral("k=2"));
  click("cmdAddCons");
  click("cmdPlot");
  click("cmdRoots");
  click("cmdExtrema");
  control<QAction>("mnuPrint")->trigger();

  RecordingPrinterPage& page = dialogs_->printer();
  QCOMPARE(page.endDocCount(), 1);
  QCOMPARE(page.pictures().size(), size_t(1));
  QVERIFY(page.pictures()[0].top + page.pictures()[0].height <= 4500);
  const std::vector<std::string> lines = page.texts();
  const std::vector<std::string> head(lines.begin(), lines.begin() + 8);
  QCOMPARE(head, (std::vector<std::string>{"Plot of Function", "", "FUNCTION:", "x^2-2", "",
                                           "CONSTANTS:", "k=2", ""}));
  QCOMPARE(page.lines()[0].y, 4500.0);
  QCOMPARE(page.lines()[0].fontName, std::string("Courier New"));
  auto has = [&](const std::string& line) { return std::find(lines.begin(), lines.end(), line) != lines.end(); };
  QVERIFY(has("    INTERVAL STUDIED: [-2 , 2 ]"));
  QVERIFY(has("ROOTS:"));
  QVERIFY(has("MINIMA:"));
  QVERIFY(has("[ 0 ,-2 ]"));
  QVERIFY(has(" X-WINDOW: [-1 , 6 ]"));

  // A derivative without a persistent image: drawn again for the page.
  control<QCheckBox>("chkPersist")->setChecked(false);
  control<QComboBox>("cboDerivative")->setCurrentIndex(1);
  click("cmdPlot");
  const QImage before = image();
  control<QAction>("mnuPrint")->trigger();
  QCOMPARE(page.endDocCount(), 2);
  QCOMPARE(page.pictures().size(), size_t(2));
  const auto second = std::find_if(page.lines().begin(), page.lines().end(),
                                   [](const PrintedLine& l) { return l.document == 1; });
  QVERIFY(second != page.lines().end());
  QCOMPARE(second->text, std::string("Plot of derivative # 1 "));
  QCOMPARE(image(), before);  // the picture shows the same graph afterwards

  // Cancelling the print dialog prints nothing.
  dialogs_->setCancelPrinting(true);
  control<QAction>("mnuPrint")->trigger();
  QCOMPARE(page.endDocCount(), 2);
}

void PlotWindowTest::exportWritesFileAndBitmap() {
  QTemporaryDir dir;
  QVERIFY(dir.isValid());
  const QString path = dir.filePath(QStringLiteral("study.dat"));
  type("txtEquation", "x^2-2");
  type("txtXlower", "-2");
  type("txtXupper", "2");
  click("cmdPlot");
  click("cmdRoots");
  dialogs_->queueSaveFileName(path.toStdString());
  control<QAction>("mnuSave")->trigger();

  QFile file(path);
  QVERIFY(file.open(QIODevice::ReadOnly));
  QCOMPARE(QString::fromLatin1(file.readAll()),
           QStringLiteral("Curvix\r\n"
                          "\"x^2-2\",-2,2,256,0.01,16,#FALSE#,2,0,0,0\r\n"
                          "-1,6,-2,12,5,0,0,1,2\r\n"
                          " 0 \r\n"
                          "-1.41421357044199 \r\n"
                          " 1.41421357044199 \r\n"));
  const QImage bitmap(path + QStringLiteral(".bmp"));
  QCOMPARE(bitmap.size(), image().size());
  QCOMPARE(bitmap.pixelColor(300, 200), image().pixelColor(300, 200));
  QCOMPARE(QDir(dir.path()).entryList(QDir::Files).size(), 2);  // no temporary left

  // Export again: the same name, no question; with no graph drawn, no new bitmap.
  QFile::remove(path + QStringLiteral(".bmp"));
  type("txtYorigin", "1");
  control<QAction>("mnuSave")->trigger();
  QCOMPARE(dialogs_->fileDialogs().size(), size_t(1));
  QVERIFY(!QFile::exists(path + QStringLiteral(".bmp")));

  // A place that cannot be written: a message, nothing half written.
  dialogs_->queueSaveFileName(dir.filePath(QStringLiteral("missing/x.dat")).toStdString());
  control<QAction>("mnuSaveAs")->trigger();
  QCOMPARE(messages().size(), 1);
  QVERIFY(messages()[0].contains(QStringLiteral("missing/x.dat")));
}

void PlotWindowTest::copyAndHelp() {
  click("cmdPlot");
  control<QAction>("mnuCopy")->trigger();
  QCOMPARE(dialogs_->copiedPictures(), (std::vector<std::pair<int, int>>{{image().width(), image().height()}}));
  control<QAction>("mnuHelp")->trigger();
  QCOMPARE(dialogs_->helpRequests(), (std::vector<std::string>{"/start/here/flatrix.hlp"}));
  QCOMPARE(messages(), QStringList({"Cannot find the help file\r/start/here/flatrix.hlp"}));
}

void PlotWindowTest::plotArrivingDuringAPlotIsQueued() {
  // A zoom pressed while the first plot draws runs once that plot is done.
  type("txtWindowlx", "-10");
  type("txtWindowgx", "10");
  dialogs_->duringPump = [&] { click("cmdZoomIn"); };
  click("cmdPlot");
  QCOMPARE(dialogs_->busyCalls(), (std::vector<bool>{true, false, true, false}));
  QCOMPARE(text("txtWindowlx"), QStringLiteral("-5"));
  QVERIFY(window_->graphDrawn());
  QVERIFY(!window_->plotting());

  // Plot pressed again while drawing: one more whole plot, never a nested one.
  int pumps = 0;
  std::function<void()> pressPlotOnce = [&] {
    if (++pumps == 1) {
      click("cmdPlot");
      QVERIFY(window_->plotting());
    }
    dialogs_->duringPump = pressPlotOnce;
  };
  dialogs_->duringPump = pressPlotOnce;
  const auto busyBefore = dialogs_->busyCalls().size();
  click("cmdPlot");
  dialogs_->duringPump = nullptr;
  QCOMPARE(dialogs_->busyCalls().size() - busyBefore, size_t(4));
  QVERIFY(!window_->plotting());

  // Closing during a plot: the window goes once the plot has ended.
  window_->show();
  QSignalSpy unloaded(window_.get(), &frmPlot::unloaded);
  dialogs_->duringPump = [&] {
    click("cmdExit");
    QCOMPARE(unloaded.count(), 0);
  };
  click("cmdPlot");
  QCOMPARE(unloaded.count(), 1);
  QVERIFY(!window_->isVisible());
}

void PlotWindowTest::pictureIsReadAtItsCurrentSize() {
  window_->show();
  QVERIFY(QTest::qWaitForWindowExposed(window_.get()));
  QTRY_VERIFY(window_->graphDrawn());
  auto* box = control<PictureBox>("Picture1");
  window_->resize(window_->size() + QSize(200, 100));
  QTRY_COMPARE(box->size(), QSize(800, 500));
  QTRY_COMPARE(dialogs_->busyCalls().size(), size_t(4));  // drawn again at the new size
  QCOMPARE(image().size(), QSize(800, 500));
  // The window's right edge is now at the picture's right edge.
  QCOMPARE(picture().toPixelX(6), 800.0);
  QCOMPARE(pixelName(image(), picture().toPixelX(3), picture().toPixelY(7.2f)),
           QStringLiteral("#0000ff"));
}

}  // namespace orvane

QTEST_MAIN(orvane::PlotWindowTest)
#include "PlotWindowTest.moc"
