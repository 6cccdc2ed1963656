// The 2-D study window driven as a user drives it, through the scripted dialogs.

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QGroupBox>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMouseEvent>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QWheelEvent>
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

// Dialogs whose event pump runs a test's action once, as a click arriving during a plot.
class PumpingDialogs : public ScriptedDialogs {
 public:
  std::function<void()> duringPump;
  void DoEvents() override {
    ScriptedDialogs::DoEvents();
    if (auto action = std::exchange(duringPump, nullptr)) action();
  }
};

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
  void trigger(const char* name) { control<QAction>(name)->trigger(); }
  QString label(const char* name) { return control<QLabel>(name)->text(); }
  QStringList items(const char* name) {
    QStringList all;
    auto* list = control<QListWidget>(name);
    for (int i = 0; i < list->count(); ++i) all << list->item(i)->text();
    return all;
  }
  QStringList window() {
    return {text("txtWindowlx"), text("txtWindowgx"), text("txtWindowly"), text("txtWindowgy")};
  }
  Canvas& picture() { return control<PictureBox>("Picture1")->canvas(); }
  const QImage& image() { return control<PictureBox>("Picture1")->imageCanvas().image(); }
  QString colourAt(float x, float y) {
    return image()
        .pixelColor(int(std::lround(picture().toPixelX(x))), int(std::lround(picture().toPixelY(y))))
        .name();
  }
  QStringList messages() {
    QStringList all;
    for (const auto& m : dialogs_->messages()) all << QString::fromStdString(m.prompt);
    return all;
  }
  void showAndWait() {
    window_->show();
    window_->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window_.get()));
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

  void opensOnTheDataAndDrawsTheFittedLine() {
    QCOMPARE(QStringList({text("txtXlower"), text("txtXupper"), text("txtSubintervals"), text("txtError")}),
             QStringList({"1", "5", "256", ".01"}));
    QCOMPARE(window() << text("txtXorigin") << text("txtYorigin"), QStringList({"-1", "6", "-2", "12", "0", "0"}));
    QVERIFY(text("txtMaxcy").toInt() >= 7);  // 256 panels need seven halvings
    showAndWait();
    QCOMPARE(control<PictureBox>("Picture1")->size(), QSize(600, 400));
    QTRY_VERIFY(window_->graphDrawn());  // the handed-over line is drawn once the window is up
    QCOMPARE(dialogs_->busyCalls(), (std::vector<bool>{true, false}));
    for (int i = 1; i <= 5; ++i)
      QCOMPARE(colourAt(float(workbench_.problem.X(1, i)), float(workbench_.problem.X(2, i))),
               QStringLiteral("#0000ff"));  // data points
    QCOMPARE(colourAt(2.5f, float(1.05 + 1.99 * 2.5)), QStringLiteral("#000000"));  // the curve
    QCOMPARE(colourAt(-0.5f, 0), QStringLiteral("#ff0000"));                       // x-axis
    // Without a fit: data and axes, no curve, and no function is no error.
    workbench_.fitted = false;
    type("txtEquation", "");
    click("cmdPlot");
    QCOMPARE(colourAt(2.5f, float(1.05 + 1.99 * 2.5)), QStringLiteral("#ffffff"));
    QCOMPARE(colourAt(3, 7.2f), QStringLiteral("#0000ff"));
    QVERIFY(messages().isEmpty());
  }

  void controlsCarryTheirCaptionsAndTips() {
    const char* buttons[][3] = {{"cmdRoots", "&Roots", "Find roots"},
                                {"cmdDerVal", "&Value=", "Compute function or derivative"},
                                {"cmdExit", "E&xit", ""},
                                {"cmdZoomQ1", nullptr, "Zoom quadrant 1"},
                                {"cmdDecWindY", nullptr, "Narrower y-window"}};
    for (const auto& b : buttons) {
      if (b[1]) QCOMPARE(control<QPushButton>(b[0])->text(), QString::fromUtf8(b[1]));
      QCOMPARE(control<QPushButton>(b[0])->toolTip(), QString::fromUtf8(b[2]));
    }
    QCOMPARE(control<QLineEdit>("txtError")->toolTip(), QStringLiteral("Error MUST be >0"));
    QCOMPARE(control<QComboBox>("cboDerivative")->itemText(9), QStringLiteral("9th.derivative"));
    QCOMPARE(control<QGroupBox>("fraStudy")->title(), QStringLiteral("Study specifications"));
    QStringList menu;
    for (const char* name : {"mnuSave", "mnuSaveAs", "mnuPrint", "mnuCopy", "mnuHelp"})
      menu << control<QAction>(name)->text();
    QCOMPARE(menu, QStringList({"Export to Curvix", "Export to Curvix As", "Print", "Copy graph to clipboard",
                                "&Help"}));
  }

  void studyCommandsFillTheirListsAndLabels() {
    type("txtEquation", "x^2-2");
    type("txtXlower", "-2");
    type("txtXupper", "2");
    type("txtError", "1e-10");
    click("cmdRoots");
    const QStringList roots = items("lstRoots");
    QCOMPARE(roots.size(), 2);
    QVERIFY(std::fabs(roots[0].toDouble() + std::sqrt(2.0)) < 1e-12);
    QVERIFY(std::fabs(roots[1].toDouble() - std::sqrt(2.0)) < 1e-12);
    QCOMPARE(label("lblRoots"), QStringLiteral("2 roots"));
    type("txtError", ".01");
    click("cmdIntegrate");
    QCOMPARE(label("lblIntegral").toDouble(), -8.0 / 3);
    click("cmdExtrema");
    QCOMPARE(items("lstExtrema"), QStringList({"Min 0"}));
    QCOMPARE(label("lblExtrema"), QStringLiteral("1 extrema"));
    // A pole: the integral names the reason instead of a value.
    type("txtEquation", "1/x");
    type("txtXlower", "-1");
    type("txtXupper", "1");
    click("cmdIntegrate");
    QCOMPARE(label("lblIntegral"), QStringLiteral("division by zero"));
    QCOMPARE(dialogs_->busyCalls().back(), false);
    QVERIFY(messages().isEmpty());
  }

  void editingClearsResultsAndPicture() {
    for (const char* field : {"txtEquation", "txtXupper", "txtSubintervals", "txtError", "txtMaxcy"}) {
      click("cmdRoots");
      click("cmdIntegrate");
      click("cmdExtrema");
      QCOMPARE(label("lblRoots"), QStringLiteral("0 roots"));
      const QString before = text(field);
      type(field, before + "0");
      QVERIFY2(label("lblRoots").isEmpty() && label("lblIntegral").isEmpty() && items("lstRoots").isEmpty() &&
                   label("lblExtrema").isEmpty() && window_->results().roots.roots.empty(),
               field);
      type(field, before);
    }
    click("cmdRoots");
    click("cmdPlot");
    type("txtYorigin", "1");  // a plot field clears the picture, not the results
    QCOMPARE(label("lblRoots"), QStringLiteral("0 roots"));
    QVERIFY(!window_->graphDrawn());
    QCOMPARE(image().pixelColor(300, 200).name(), QStringLiteral("#ffffff"));
    QTest::keyClick(control<TextBox>("txtEquation"), Qt::Key_Return);  // Enter in f(x)= plots
    QVERIFY(window_->graphDrawn());
  }

  // The frame's four edges on the picture's outermost pixels, at the opening size and
  // at an odd one.
  void frameEdgesAreAllOnThePicture() {
    for (const QSize size : {QSize(600, 400), QSize(517, 333)}) {
      control<PictureBox>("Picture1")->imageCanvas().resize(size.width(), size.height());
      click("cmdPlot");
      const int w = size.width(), h = size.height();
      const struct {
        const char* edge;
        QPoint from, step;
        int length;
      } edges[] = {{"left", {0, 0}, {0, 1}, h},
                   {"right", {w - 1, 0}, {0, 1}, h},
                   {"top", {0, 0}, {1, 0}, w},
                   {"bottom", {0, h - 1}, {1, 0}, w}};
      for (const auto& e : edges) {
        int yellow = 0;
        for (int i = 0; i < e.length; ++i)
          yellow += image().pixelColor(e.from + i * e.step) == QColor(Qt::yellow);
        QVERIFY2(yellow > e.length * 9 / 10, qPrintable(QStringLiteral("%1 at %2 x %3: %4 of %5")
                                                             .arg(e.edge)
                                                             .arg(w)
                                                             .arg(h)
                                                             .arg(yellow)
                                                             .arg(e.length)));
      }
    }
  }

  void valuePanelShowsValueOrStaysEmpty() {
    const struct {
      const char *equation, *k, *at;
      double expected;  // NaN: the label stays empty
    } cases[] = {{"x^3", "1", "2", 12}, {"x^3", "3", "2", 6}, {"x^3", "-1", "2", 0},
                 {"Sqr(x)", "1", "0", qQNaN()}, {"x", "34", "1", qQNaN()}};
    for (const auto& c : cases) {
      type("txtEquation", c.equation);
      type("txtDerNum", c.k);
      type("txtXeval", c.at);
      click("cmdDerVal");
      const QString shown = label("lblDerVal");
      bool ok = false;
      const double value = shown.toDouble(&ok);
      QVERIFY2(qIsNaN(c.expected) ? shown.isEmpty()
                                  : ok && std::fabs(value - c.expected) < 1e-3 * (1 + c.expected),
               qPrintable(QString::fromLatin1(c.equation) + " k=" + c.k + ": " + shown));
    }
    QVERIFY(messages().isEmpty());
  }

  void engineErrorBoxAppearsOncePerCommand() {
    type("txtEquation", "Foo(x)+1");
    click("cmdPlot");
    click("cmdRoots");
    QCOMPARE(messages().size(), 2);
    QCOMPARE(messages()[0], messages()[1]);
    // Silenced errors (a pole sampled by the plot) show nothing.
    type("txtEquation", "1/(x-2)");
    type("txtWindowlx", "-2");
    type("txtWindowgx", "2");
    click("cmdPlot");
    QCOMPARE(messages().size(), 2);
  }

  void zoomAndClickToCentreRewriteTheWindow() {
    type("txtWindowlx", "-10");
    type("txtWindowgx", "10");
    type("txtWindowly", "-5");
    type("txtWindowgy", "5");
    click("cmdZoomQ1");
    QCOMPARE(window(), QStringList({"0", "10", "0", "5"}));
    QVERIFY(window_->graphDrawn());
    auto width = [&] { return text("txtWindowgx").toDouble() - text("txtWindowlx").toDouble(); };
    click("cmdDecWindX");  // 10 -> 10 - 10/3, then wider by half of that: 10 again
    QVERIFY(std::fabs(width() - 20.0 / 3) < 1e-5);
    click("cmdIncWindX");
    QVERIFY(std::fabs(width() - 10) < 1e-5);
    // A click on the picture centres the window there, same extent.
    auto* box = control<PictureBox>("Picture1");
    const QPoint at(int(std::lround(picture().toPixelX(3))), int(std::lround(picture().toPixelY(1))));
    QTest::mouseClick(box, Qt::LeftButton, {}, at);
    QVERIFY(std::fabs((text("txtWindowlx").toDouble() + text("txtWindowgx").toDouble()) / 2 - 3) < 0.05);
    QVERIFY(std::fabs(width() - 10) < 1e-5);
    QMouseEvent move(QEvent::MouseMove, QPointF(at), box->mapToGlobal(QPointF(at)), Qt::NoButton, Qt::NoButton,
                     Qt::NoModifier);
    QCoreApplication::sendEvent(box, &move);
    QVERIFY(box->toolTip().endsWith(QStringLiteral("): Click to center graph here")));
    // A window without extent abandons the plot with a message, and nothing hangs.
    type("txtWindowgx", text("txtWindowlx"));
    click("cmdPlot");
    QCOMPARE(messages().size(), 1);
    QCOMPARE(dialogs_->busy(), false);
  }

  // The wheel zooms about the pointer and a drag pans, both fitting the divisions to the
  // new window; the fields change when the drag ends, the picture while it goes on. A
  // click without motion still centres, and the focused picture's keys act as buttons.
  void wheelDragAndKeysMoveTheWindow() {
    const char* fields[] = {"txtWindowlx", "txtWindowgx", "txtWindowly", "txtWindowgy", "txtDivx", "txtDivy"};
    const char* start[] = {"-10", "10", "-5", "5", "1", "0.25"};
    for (int i = 0; i < 6; ++i) type(fields[i], QString::fromLatin1(start[i]));
    click("cmdPlot");
    auto* box = control<PictureBox>("Picture1");
    auto pixel = [&](float x, float y) { return QPointF(picture().toPixelX(x), picture().toPixelY(y)); };
    auto wheel = [&](QPointF at, int delta) {
      QWheelEvent e(at, box->mapToGlobal(at), {}, {0, delta}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
      QCoreApplication::sendEvent(box, &e);
    };
    auto mouse = [&](QEvent::Type type, QPointF at, Qt::MouseButton button, Qt::MouseButtons held) {
      QMouseEvent e(type, at, box->mapToGlobal(at), button, held, Qt::NoModifier);
      QCoreApplication::sendEvent(box, &e);
    };
    auto setup = [&] { return window() << text("txtDivx") << text("txtDivy"); };
    const size_t plots = dialogs_->busyCalls().size();
    const QPointF pointer = pixel(5, 0);
    wheel(pointer, 120);
    QCOMPARE(setup(), QStringList({"-2.5", "7.5", "-2.5", "2.5", "1", "0.5"}));
    QCOMPARE(dialogs_->busyCalls().size(), plots + 2);  // drawn again
    QCOMPARE(pixel(5, 0), pointer);                     // the point stays under the pointer
    wheel(pointer, -60);  // half a notch (a touchpad) waits for the other half
    QCOMPARE(text("txtWindowlx"), QStringLiteral("-2.5"));
    wheel(pointer, -60);
    QCOMPARE(setup(), QStringList({"-10", "10", "-5", "5", "2", "1"}));

    mouse(QEvent::MouseButtonPress, {300, 200}, Qt::LeftButton, Qt::LeftButton);
    mouse(QEvent::MouseMove, {360, 260}, Qt::NoButton, Qt::LeftButton);
    QCOMPARE(text("txtWindowlx"), QStringLiteral("-10"));  // the fields wait for the release
    QCOMPARE(picture().ScaleLeft(), -12.0f);                // the picture follows already
    QCOMPARE(colourAt(0, 0), QStringLiteral("#ff00ff"));    // with the origin drawn there
    mouse(QEvent::MouseButtonRelease, {360, 260}, Qt::LeftButton, Qt::NoButton);
    QCOMPARE(setup(), QStringList({"-12", "8", "-3.5", "6.5", "2", "1"}));
    QVERIFY(window_->graphDrawn());

    // A press that wobbles less than a drag is a click: centred where it went down.
    mouse(QEvent::MouseButtonPress, pixel(0, 0), Qt::LeftButton, Qt::LeftButton);
    mouse(QEvent::MouseMove, pixel(0, 0) + QPointF(3, 2), Qt::NoButton, Qt::LeftButton);
    QCOMPARE(picture().ScaleLeft(), -12.0f);
    mouse(QEvent::MouseButtonRelease, pixel(0, 0) + QPointF(3, 2), Qt::LeftButton, Qt::NoButton);
    QCOMPARE(window(), QStringList({"-10", "10", "-5", "5"}));
    mouse(QEvent::MouseButtonPress, pixel(1, 1), Qt::RightButton, Qt::RightButton);  // at once
    QCOMPARE(window(), QStringList({"-9", "11", "-4", "6"}));

    box->setFocus();
    QTest::keyClick(box, Qt::Key_Plus);
    QCOMPARE(setup(), QStringList({"-4", "6", "-1.5", "3.5", "2", "1"}));  // as "Zoom in"
    QTest::keyClick(box, Qt::Key_Left);
    QCOMPARE(window(), QStringList({"-6.5", "3.5", "-1.5", "3.5"}));
    QVERIFY(messages().isEmpty());
  }

  void fieldsAreCorrectedAsTheyAreLeft() {
    showAndWait();
    auto leave = [&](const char* name, const QString& typed) {  // true: the focus stays
      auto* box = control<TextBox>(name);
      box->setFocus(Qt::TabFocusReason);
      box->setText(typed);
      QTest::keyClick(box, Qt::Key_Tab);
      return box->hasFocus();
    };
    const char* corrections[][3] = {{"txtSubintervals", "100", "128"}, {"txtSubintervals", "1", "2"},
                                    {"txtSubintervals", "256", "256"}, {"txtMaxcy", "3", "7"},
                                    {"txtMaxcy", "30", "30"},          {"txtPlotStep", "200", "80"}};
    for (const auto& c : corrections) {
      QVERIFY2(!leave(c[0], QString::fromLatin1(c[1])), c[0]);
      QCOMPARE(text(c[0]), QString::fromLatin1(c[2]));
    }
    QVERIFY(leave("txtError", "0"));  // not positive: cannot be left
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

  void constantsAreAddedReplacedAndRemoved() {
    auto* combo = control<QComboBox>("cboConstants");
    QCOMPARE(combo->currentText(), QStringLiteral("Example: a=2.37"));
    auto add = [&](const char* entry) {
      combo->setEditText(QString::fromLatin1(entry));
      click("cmdAddCons");
    };
    for (const char* entry : {"2a=1", "a b=1", "a=1", "b=2*a"}) add(entry);
    QCOMPARE(combo->count(), 2);  // the malformed names refused
    type("txtEquation", "x+a+b");
    type("txtDerNum", "0");
    type("txtXeval", "1");
    click("cmdDerVal");
    QCOMPARE(label("lblDerVal"), QStringLiteral("4"));  // b sees the a before it
    add("a=2");  // redefined: now after b
    QCOMPARE(QStringList({combo->itemText(0), combo->itemText(1)}), QStringList({"b=2*a", "a=2"}));
    click("cmdDerVal");
    QCOMPARE(label("lblDerVal"), QStringLiteral("5"));  // b = 2 from the earlier a, then a = 2
    combo->setCurrentIndex(1);
    click("cmdRemCons");
    type("txtEquation", "x+a");
    click("cmdDerVal");
    QCOMPARE(label("lblDerVal"), QStringLiteral("1"));  // a is now 0
    click("cmdRemCons");  // nothing selected: nothing happens
    QCOMPARE(combo->count(), 1);
    combo->setFocus();  // Enter in the box adds too
    combo->lineEdit()->setText(QStringLiteral("c=3"));
    QTest::keyClick(combo->lineEdit(), Qt::Key_Return);
    QCOMPARE(combo->count(), 2);
    QVERIFY(messages().isEmpty());
  }

  void printWritesTheReportBelowTheGraph() {
    type("txtEquation", "x^2-2");
    type("txtXlower", "-2");
    type("txtXupper", "2");
    control<QComboBox>("cboConstants")->setEditText(QStringLiteral("k=2"));
    click("cmdAddCons");
    click("cmdPlot");
    click("cmdRoots");
    click("cmdExtrema");
    trigger("mnuPrint");
    RecordingPrinterPage& page = dialogs_->printer();
    QCOMPARE(page.endDocCount(), 1);
    QCOMPARE(page.pictures().size(), size_t(1));
    QVERIFY(page.pictures()[0].top + page.pictures()[0].height <= 4500);
    const std::vector<std::string> lines = page.texts();
    QCOMPARE(std::vector<std::string>(lines.begin(), lines.begin() + 8),
             (std::vector<std::string>{"Plot of Function", "", "FUNCTION:", "x^2-2", "", "CONSTANTS:", "k=2",
                                       ""}));
    QCOMPARE(page.lines()[0].y, 4500.0);
    for (const char* line : {"ROOTS:", "[ 0 ,-2 ]", " X-WINDOW: [-1 , 6 ]"})
      QVERIFY2(std::find(lines.begin(), lines.end(), line) != lines.end(), line);
    // A derivative without a persistent image: drawn again for the page, the picture unchanged.
    control<QCheckBox>("chkPersist")->setChecked(false);
    control<QComboBox>("cboDerivative")->setCurrentIndex(1);
    click("cmdPlot");
    const QImage before = image();
    trigger("mnuPrint");
    QCOMPARE(page.pictures().size(), size_t(2));
    const auto second = std::find_if(page.lines().begin(), page.lines().end(),
                                     [](const PrintedLine& l) { return l.document == 1; });
    QVERIFY(second != page.lines().end());
    QCOMPARE(second->text, std::string("Plot of derivative # 1 "));
    QCOMPARE(image(), before);
    // Fields changed since that plot: the page's graph, title and setup lines are all
    // the graph drawn for it now.
    control<QComboBox>("cboDerivative")->setCurrentIndex(2);
    type("txtDivx", "0.5");
    trigger("mnuPrint");
    std::vector<std::string> third;
    for (const PrintedLine& l : page.lines())
      if (l.document == 2) third.push_back(l.text);
    QVERIFY(!third.empty());
    QCOMPARE(third.front(), std::string("Plot of derivative # 2 "));
    QVERIFY(std::find(third.begin(), third.end(), "DIVISIONS: [ 0.5 , 2 ]") != third.end());
    QVERIFY(image() != before);
    dialogs_->setCancelPrinting(true);  // cancelled: nothing printed
    trigger("mnuPrint");
    QCOMPARE(page.endDocCount(), 3);
  }

  void exportWritesFileAndBitmap() {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("study.dat"));
    type("txtEquation", "x^2-2");
    type("txtXlower", "-2");
    type("txtXupper", "2");
    click("cmdPlot");
    click("cmdRoots");
    dialogs_->queueSaveFileName(path.toStdString());
    trigger("mnuSave");
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(QString::fromLatin1(file.readAll()),
             QStringLiteral("Curvix\r\n\"x^2-2\",-2,2,256,0.01,16,#FALSE#,2,0,0,0\r\n-1,6,-2,12,5,0,0,1,2\r\n"
                            " 0 \r\n-1.41421357044199 \r\n 1.41421357044199 \r\n"));
    const QImage bitmap(path + QStringLiteral(".bmp"));
    QCOMPARE(bitmap.size(), image().size());
    QCOMPARE(bitmap.pixelColor(300, 200), image().pixelColor(300, 200));
    QCOMPARE(QDir(dir.path()).entryList(QDir::Files).size(), 2);  // no temporary left
    // Again: the same name, no question; with no graph drawn, no new bitmap.
    QFile::remove(path + QStringLiteral(".bmp"));
    type("txtYorigin", "1");
    trigger("mnuSave");
    QCOMPARE(dialogs_->fileDialogs().size(), size_t(1));
    QVERIFY(!QFile::exists(path + QStringLiteral(".bmp")));
    // A place that cannot be written: a message naming it.
    dialogs_->queueSaveFileName(dir.filePath(QStringLiteral("missing/x.dat")).toStdString());
    trigger("mnuSaveAs");
    QCOMPARE(messages().size(), 1);
    QVERIFY(messages()[0].contains(QStringLiteral("missing/x.dat")));
  }

  void copyAndHelp() {
    click("cmdPlot");
    trigger("mnuCopy");
    QCOMPARE(dialogs_->copiedPictures(), (std::vector<std::pair<int, int>>{{image().width(), image().height()}}));
    trigger("mnuHelp");
    QCOMPARE(dialogs_->helpRequests(), (std::vector<std::string>{"/start/here/flatrix.hlp"}));
    QCOMPARE(messages(), QStringList({"Cannot find the help file\r/start/here/flatrix.hlp"}));
  }

  void commandsDuringAPlotWaitForIt() {
    // A zoom pressed while the first plot draws runs once that plot is done.
    type("txtWindowlx", "-10");
    type("txtWindowgx", "10");
    dialogs_->duringPump = [&] { click("cmdZoomIn"); };
    click("cmdPlot");
    QCOMPARE(dialogs_->busyCalls(), (std::vector<bool>{true, false, true, false}));
    QCOMPARE(text("txtWindowlx"), QStringLiteral("-5"));
    QVERIFY(window_->graphDrawn() && !window_->plotting());
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

  // Esc or the close box stops a long command at its next look at the events (every
  // 20 ms): what was found stays, the label says so, the wait cursor goes, and a plot
  // asked for meanwhile is not drawn after an Esc.
  void longWorkStopsOnEscOrClose() {
    // An integral to 2^30 panels; Esc pressed in a field, after a plot and roots were asked for.
    type("txtEquation", "Sin(x)");
    type("txtSubintervals", "1073741824");
    type("txtMaxcy", "40");
    dialogs_->duringPump = [&] {
      QVERIFY(window_->working());
      click("cmdPlot");
      click("cmdRoots");  // one long command at a time: not run
      QTest::keyClick(control<TextBox>("txtXeval"), Qt::Key_Escape);
    };
    click("cmdIntegrate");
    QCOMPARE(label("lblIntegral"), QStringLiteral("Interrupted"));
    QCOMPARE(dialogs_->doEvents(), 1);  // no more work after the key
    QVERIFY(!dialogs_->busy() && !window_->working());
    QVERIFY(!window_->graphDrawn() && label("lblRoots").isEmpty());

    // A slow formula's 9th derivative at every screen unit: Esc while the curve is drawn.
    QString slow = QStringLiteral("Sin(x)");
    for (int i = 0; i < 2000; ++i) slow += QStringLiteral("+0*Sin(x)");
    type("txtEquation", slow);
    type("txtPlotStep", "1");
    control<QComboBox>("cboDerivative")->setCurrentIndex(9);
    int pumps = 0;
    std::function<void()> escAtTheSecondPump = [&] {
      if (++pumps < 2) {
        dialogs_->duringPump = escAtTheSecondPump;  // the first comes before the curve
        return;
      }
      click("cmdZoomIn");
      QTest::keyClick(window_.get(), Qt::Key_Escape);
    };
    dialogs_->duringPump = escAtTheSecondPump;
    const auto busyBefore = dialogs_->busyCalls().size();
    click("cmdPlot");
    QCOMPARE(label("lblPlotStatus"), QStringLiteral("Interrupted"));
    QCOMPARE(pumps, 2);
    QCOMPARE(dialogs_->busyCalls().size() - busyBefore, size_t(2));  // the zoom's plot dropped
    type("txtEquation", "x");
    click("cmdPlot");
    QVERIFY(label("lblPlotStatus").isEmpty());

    // Roots of (x-1)(x-2)(x-3) over [0.5, 1e6] in 2^30 steps; the window closed meanwhile.
    window_->show();
    QSignalSpy unloaded(window_.get(), &frmPlot::unloaded);
    type("txtEquation", "(x-1)*(x-2)*(x-3)");
    type("txtXlower", "0.5");
    type("txtXupper", "1e6");
    pumps = 0;
    std::function<void()> closeAtTheThirdPump = [&] {
      if (++pumps < 3) {
        dialogs_->duringPump = closeAtTheThirdPump;
        return;
      }
      click("cmdExit");
      QCOMPARE(unloaded.count(), 0);
    };
    dialogs_->duringPump = closeAtTheThirdPump;
    click("cmdRoots");
    QCOMPARE(items("lstRoots").size(), 3);
    QCOMPARE(label("lblRoots"), QStringLiteral("Interrupted"));
    QCOMPARE(unloaded.count(), 1);
    QVERIFY(!window_->isVisible());
  }

  void pictureIsReadAtItsCurrentSize() {
    window_->show();
    QVERIFY(QTest::qWaitForWindowExposed(window_.get()));
    QTRY_VERIFY(window_->graphDrawn());
    window_->resize(window_->size() + QSize(200, 100));
    QTRY_COMPARE(control<PictureBox>("Picture1")->size(), QSize(800, 500));
    QTRY_COMPARE(dialogs_->busyCalls().size(), size_t(4));  // drawn again at the new size
    QCOMPARE(image().size(), QSize(800, 500));
    QCOMPARE(picture().toPixelX(6), 800.0);  // the window's right edge at the picture's
    QCOMPARE(colourAt(3, 7.2f), QStringLiteral("#0000ff"));
    // A formula's error is shown when it is plotted, not again at each redraw for a
    // new size; a plot asked for again shows it again.
    type("txtEquation", "Foo(x)+1");
    click("cmdPlot");
    QCOMPARE(messages().size(), 1);
    for (int i = 1; i <= 3; ++i) {
      const auto busyBefore = dialogs_->busyCalls().size();
      window_->resize(window_->size() + QSize(10 * i, 0));
      QTRY_COMPARE(dialogs_->busyCalls().size(), busyBefore + 2);
    }
    QCOMPARE(messages().size(), 1);
    click("cmdPlot");
    QCOMPARE(messages().size(), 2);
  }
};

}  // namespace orvane

QTEST_MAIN(orvane::PlotWindowTest)
#include "PlotWindowTest.moc"
