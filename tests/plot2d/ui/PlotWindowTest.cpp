// The 2-D study window driven as a user drives it, through the scripted dialogs.

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMouseEvent>
#include <QPushButton>
#include <QTemporaryDir>
#include <QWheelEvent>
#include <QtTest>
#include <functional>
#include <memory>

#include "platform/ScriptedDialogs.h"
#include "platform/ui/PictureBox.h"
#include "platform/ui/TextBox.h"
#include "plot2d/ui/frmPlot.h"
#include "regression/RegressionTestSupport.h"
#include "regression/Workbench.h"

namespace orvane {
namespace {

// Dialogs whose event pump runs a test's action at a given call, as a click arriving
// during a plot; the pumps before it come before the work.
class PumpingDialogs : public ScriptedDialogs {
 public:
  std::function<void()> duringPump;
  int pumpsToWait = 1;
  void DoEvents() override {
    ScriptedDialogs::DoEvents();
    if (duringPump && --pumpsToWait <= 0) std::exchange(duringPump, nullptr)();
  }
  void atPump(int n, std::function<void()> action) {
    pumpsToWait = n;
    duringPump = std::move(action);
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
  void type(std::initializer_list<std::pair<const char*, const char*>> fields) {
    for (const auto& [name, value] : fields) type(name, value);
  }
  void click(const char* name) { control<QPushButton>(name)->click(); }
  void trigger(const char* name) { control<QAction>(name)->trigger(); }
  QString label(const char* name) { return control<QLabel>(name)->text(); }
  QStringList window() {
    return {text("txtWindowlx"), text("txtWindowgx"), text("txtWindowly"), text("txtWindowgy")};
  }
  Canvas& picture() { return control<PictureBox>("Picture1")->canvas(); }
  const QImage& image() { return control<PictureBox>("Picture1")->imageCanvas().image(); }
  QString colourAt(float x, float y) {
    return image().pixelColor(int(std::lround(picture().toPixelX(x))), int(std::lround(picture().toPixelY(y)))).name();
  }
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
    // Five data sets around y = 1.05 + 1.99 x, with that line fitted.
    workbench_ = Workbench{};
    workbench_.problem = testing::makeProblem(1, {{1, 3.1}, {2, 4.9}, {3, 7.2}, {4, 8.8}, {5, 11.1}}, {"x"});
    workbench_.problem.A = {1.05, 1.99, 0};
    workbench_.problem.computed = workbench_.fitted = true;
    workbench_.startDirectory = "/start/here";
    dialogs_ = std::make_unique<PumpingDialogs>();
    window_ = std::make_unique<frmPlot>(workbench_, *dialogs_);
    window_->txtEquation->setText(QStringLiteral("1.05+1.99*x"));
  }
  void cleanup() {
    window_.reset();
    dialogs_.reset();
  }

  // A study field clears the results, a plot field the picture; Enter in f(x)= plots.
  void editingClearsResultsAndPicture() {
    for (const char* field : {"txtEquation", "txtError"}) {  // its own handler; the study's other fields share one
      for (const char* command : {"cmdRoots", "cmdIntegrate", "cmdExtrema"}) click(command);
      QCOMPARE(label("lblRoots"), QString("0 roots"));
      const QString before = text(field);
      type(field, before + "0");
      QVERIFY2(label("lblRoots").isEmpty() && label("lblIntegral").isEmpty() && label("lblExtrema").isEmpty() &&
                   !control<QListWidget>("lstRoots")->count() && window_->results().roots.roots.empty(),
               field);
      type(field, before);
    }
    click("cmdRoots");
    click("cmdPlot");
    type("txtYorigin", "1");
    QCOMPARE(label("lblRoots"), QString("0 roots"));
    QVERIFY(!window_->graphDrawn());
    QCOMPARE(image().pixelColor(300, 200).name(), QString("#ffffff"));
    QTest::keyClick(control<TextBox>("txtEquation"), Qt::Key_Return);
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
        QPoint from, step;
        int length;
      } edges[] = {{{0, 0}, {0, 1}, h}, {{w - 1, 0}, {0, 1}, h}, {{0, 0}, {1, 0}, w}, {{0, h - 1}, {1, 0}, w}};
      for (const auto& e : edges) {
        int yellow = 0;
        for (int i = 0; i < e.length; ++i) yellow += image().pixelColor(e.from + i * e.step) == QColor(Qt::yellow);
        QVERIFY2(yellow > e.length * 9 / 10, qPrintable(QString("edge %1 at %2 x %3").arg(&e - edges).arg(w).arg(h)));
      }
    }
  }

  // The wheel, a drag, clicks and the picture's keys all move the window (its limits:
  // SettingsViewportTest) and plot again. The fields change when a drag ends, the picture
  // while it goes on.
  void mouseAndKeysMoveTheWindow() {
    auto setup = [&] { return window() << text("txtDivx") << text("txtDivy"); };
    type({{"txtWindowlx", "-10"}, {"txtWindowgx", "10"}, {"txtWindowly", "-5"}, {"txtWindowgy", "5"},
          {"txtDivx", "1"}, {"txtDivy", "0.25"}});
    click("cmdPlot");

    auto* box = control<PictureBox>("Picture1");
    auto pixel = [&](float x, float y) { return QPointF(picture().toPixelX(x), picture().toPixelY(y)); };
    auto mouse = [&](QEvent::Type type, QPointF at, Qt::MouseButton button, Qt::MouseButtons held) {
      QMouseEvent e(type, at, box->mapToGlobal(at), button, held, Qt::NoModifier);
      QCoreApplication::sendEvent(box, &e);
    };
    auto wheel = [&](QPointF at, int delta) {
      QWheelEvent e(at, box->mapToGlobal(at), {}, {0, delta}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
      QCoreApplication::sendEvent(box, &e);
    };
    mouse(QEvent::MouseMove, pixel(3, 1), Qt::NoButton, Qt::NoButton);
    QCOMPARE(box->toolTip(), QString("(3, 1): Click to center graph here"));
    const size_t plots = dialogs_->busyCalls().size();
    const QPointF pointer = pixel(5, 0);
    wheel(pointer, 120);
    QCOMPARE(setup(), QStringList({"-2.5", "7.5", "-2.5", "2.5", "1", "0.5"}));
    QCOMPARE(dialogs_->busyCalls().size(), plots + 2);  // drawn again
    QCOMPARE(pixel(5, 0), pointer);                     // the point stays under the pointer
    wheel(pointer, -60);  // half a notch (a touchpad) waits for the other half
    QCOMPARE(text("txtWindowlx"), QString("-2.5"));
    wheel(pointer, -60);
    QCOMPARE(setup(), QStringList({"-10", "10", "-5", "5", "2", "1"}));

    mouse(QEvent::MouseButtonPress, {300, 200}, Qt::LeftButton, Qt::LeftButton);
    mouse(QEvent::MouseMove, {360, 260}, Qt::NoButton, Qt::LeftButton);
    QCOMPARE(text("txtWindowlx"), QString("-10"));  // the fields wait for the release
    QCOMPARE(picture().ScaleLeft(), -12.0f);        // the picture follows already
    QCOMPARE(colourAt(0, 0), QString("#ff00ff"));   // with the origin drawn there
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
    QCOMPARE(setup(), QStringList({"-4", "6", "-1.5", "3.5", "2", "1"}));  // as "Zoom in"; the keys share one table
    QVERIFY(messages().isEmpty());
    // A window without extent abandons the plot with a message, and nothing hangs.
    type("txtWindowgx", text("txtWindowlx"));
    click("cmdPlot");
    QCOMPARE(messages().size(), 1);
    QCOMPARE(dialogs_->busy(), false);
  }

  // Each field's own handler once (the rules: SettingsViewportTest): corrected, refused
  // (the focus stays), an inverted pair (the focus goes to the other limit).
  void fieldsAreCorrectedAsTheyAreLeft() {
    window_->show();
    window_->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window_.get()));
    auto leave = [&](const char* name, const QString& typed) {  // true: the focus stays
      auto* box = control<TextBox>(name);
      box->setFocus(Qt::TabFocusReason);
      box->setText(typed);
      QTest::keyClick(box, Qt::Key_Tab);
      return box->hasFocus();
    };
    const char* corrections[][3] = {{"txtSubintervals", "100", "128"},
                                    {"txtMaxcy", "3", "6"},  // 128 panels need six halvings
                                    {"txtPlotStep", "200", "80"}};
    for (const auto& c : corrections) {
      QVERIFY2(!leave(c[0], c[1]), c[0]);
      QCOMPARE(text(c[0]), QString(c[2]));
    }
    QVERIFY(leave("txtError", "0"));
    QVERIFY(!leave("txtError", ".001"));
    type("txtXupper", "5");
    leave("txtXlower", "7");
    QTRY_VERIFY(control<TextBox>("txtXupper")->hasFocus());
    QVERIFY(!leave("txtXupper", "6"));  // still inverted: back to the lower limit
    QTRY_VERIFY(control<TextBox>("txtXlower")->hasFocus());
    QVERIFY(!leave("txtXlower", "1"));
    type("txtWindowly", "-2");
    leave("txtWindowgy", "-3");
    QTRY_VERIFY(control<TextBox>("txtWindowly")->hasFocus());
  }

  // Constants by the button, Enter in the box, and Remove of the selected one (their
  // rules: UserConstantsTest); a value, or nothing without a box when it has none.
  void constantsAndValues() {
    auto* combo = control<QComboBox>("cboConstants");
    for (const char* entry : {"2a=1", "a=1", "b=2*a"}) {
      combo->setEditText(entry);
      click("cmdAddCons");
    }
    QCOMPARE(combo->count(), 2);
    type({{"txtEquation", "x+a+b"}, {"txtDerNum", "0"}, {"txtXeval", "1"}});
    click("cmdDerVal");
    QCOMPARE(label("lblDerVal"), QString("4"));
    combo->setCurrentIndex(0);
    click("cmdRemCons");
    click("cmdDerVal");
    QCOMPARE(label("lblDerVal"), QString("1"));  // a is now 0, and b = 2*a with it
    click("cmdRemCons");  // nothing selected: nothing happens
    QCOMPARE(combo->count(), 1);
    combo->setFocus();
    combo->lineEdit()->setText("c=3");
    QTest::keyClick(combo->lineEdit(), Qt::Key_Return);
    QCOMPARE(combo->count(), 2);
    // No value (the engine's error at x - h) leaves the panel empty and shows no box.
    type({{"txtEquation", "Sqr(x)"}, {"txtDerNum", "1"}, {"txtXeval", "0"}});
    click("cmdDerVal");
    QVERIFY(label("lblDerVal").isEmpty() && messages().isEmpty());
  }

  void exportPrintCopyAndHelp() {
    QTemporaryDir dir;
    const QString path = dir.filePath("study.dat");
    type({{"txtEquation", "x^2-2"}, {"txtXlower", "-2"}, {"txtXupper", "2"}});
    click("cmdPlot");
    click("cmdRoots");
    dialogs_->queueSaveFileName(path.toStdString());
    trigger("mnuSave");
    // The lines are StudyExport's (ReportExportTest); here, the fields and the roots reach them.
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray saved = file.readAll();
    QVERIFY(saved.startsWith("Curvix\r\n\"x^2-2\",-2,2,") && saved.endsWith("\r\n 1.41421357044199 \r\n"));
    QCOMPARE(QImage(path + ".bmp").pixelColor(300, 200), image().pixelColor(300, 200));
    QCOMPARE(QDir(dir.path()).entryList(QDir::Files).size(), 2);  // no temporary left
    // Again: the same name, no question; with no graph drawn, no new bitmap.
    QFile::remove(path + ".bmp");
    type("txtYorigin", "1");
    trigger("mnuSave");
    QCOMPARE(dialogs_->fileDialogs().size(), size_t(1));
    QVERIFY(!QFile::exists(path + ".bmp"));
    dialogs_->queueSaveFileName(dir.filePath("missing/x.dat").toStdString());
    trigger("mnuSaveAs");
    QCOMPARE(messages().size(), 1);
    QVERIFY(messages()[0].contains("missing/x.dat"));

    click("cmdPlot");
    trigger("mnuCopy");
    QCOMPARE(dialogs_->copiedPictures(), (std::vector<std::pair<int, int>>{{image().width(), image().height()}}));
    trigger("mnuHelp");
    QCOMPARE(dialogs_->helpRequests(), (std::vector<std::string>{"/start/here/flatrix.hlp"}));
    QCOMPARE(messages().size(), 2);
    // The report's lines are StudyReport's (ReportExportTest); here, which graph reaches
    // the page: without a persistent image one drawn again for it, from the fields as
    // they are now, the picture on the screen unchanged.
    trigger("mnuPrint");
    RecordingPrinterPage& page = dialogs_->printer();
    QCOMPARE(page.pictures().size(), size_t(1));
    control<QCheckBox>("chkPersist")->setChecked(false);
    control<QComboBox>("cboDerivative")->setCurrentIndex(1);
    click("cmdPlot");
    const QImage before = image();
    trigger("mnuPrint");
    QCOMPARE(page.pictures().size(), size_t(2));
    QCOMPARE(image(), before);
    control<QComboBox>("cboDerivative")->setCurrentIndex(2);
    type("txtDivx", "0.5");
    trigger("mnuPrint");
    const auto second = std::ranges::find(page.lines(), 2, &PrintedLine::document);
    QVERIFY(second != page.lines().end());
    QCOMPARE(second->text, std::string("Plot of derivative # 2 "));
    const std::vector<std::string> lines = page.texts();
    QVERIFY(std::find(lines.begin(), lines.end(), "DIVISIONS: [ 0.5 , 2 ]") != lines.end());
    QVERIFY(image() != before);
    dialogs_->setCancelPrinting(true);  // cancelled: nothing printed
    trigger("mnuPrint");
    QCOMPARE(page.endDocCount(), 3);
  }

  // The window yields while it works: a command arriving then (a zoom, through the
  // buttons' table, as Plot itself) waits for the plot, never nests in it.
  void commandsDuringAPlotWaitForIt() {
    type({{"txtWindowlx", "-10"}, {"txtWindowgx", "10"}});
    dialogs_->atPump(1, [&] { click("cmdZoomIn"); });
    click("cmdPlot");
    QCOMPARE(dialogs_->busyCalls(), (std::vector<bool>{true, false, true, false}));
    QCOMPARE(text("txtWindowlx"), QString("-5"));
    QVERIFY(window_->graphDrawn() && !window_->plotting());
  }

  // Esc (in a field) or the close box stops a long command at its next look at the
  // events (every 20 ms): what was found stays, the label says so, the wait cursor goes,
  // and a plot or a study asked for meanwhile is not run after an Esc.
  void longWorkStopsOnEscOrClose() {
    // A slow formula's 9th derivative at every screen unit: Esc while the curve is drawn.
    QString slow = "Sin(x)";
    for (int i = 0; i < 2000; ++i) slow += "+0*Sin(x)";
    type("txtEquation", slow);
    type("txtPlotStep", "1");
    control<QComboBox>("cboDerivative")->setCurrentIndex(9);
    dialogs_->atPump(2, [&] {
      QVERIFY(window_->working());
      click("cmdZoomIn");
      click("cmdRoots");
      QTest::keyClick(control<TextBox>("txtXeval"), Qt::Key_Escape);
    });
    click("cmdPlot");
    QCOMPARE(label("lblPlotStatus"), QString("Interrupted"));
    QCOMPARE(dialogs_->doEvents(), 2);  // no more work after the key
    QCOMPARE(dialogs_->busyCalls().size(), size_t(2));  // the zoom's plot and the roots dropped
    QVERIFY(!dialogs_->busy() && !window_->working() && label("lblRoots").isEmpty());
    type("txtEquation", "x");
    click("cmdPlot");
    QVERIFY(label("lblPlotStatus").isEmpty());

    // Roots of (x-1)(x-2)(x-3) over [0.5, 1e6] in 2^30 steps; the window closed meanwhile.
    window_->show();
    QSignalSpy unloaded(window_.get(), &frmPlot::unloaded);
    type({{"txtEquation", "(x-1)*(x-2)*(x-3)"}, {"txtXlower", "0.5"}, {"txtXupper", "1e6"},
          {"txtSubintervals", "1073741824"}});
    dialogs_->atPump(3, [&] {
      click("cmdExit");
      QCOMPARE(unloaded.count(), 0);
    });
    click("cmdRoots");
    QCOMPARE(control<QListWidget>("lstRoots")->count(), 3);
    QCOMPARE(label("lblRoots"), QString("Interrupted"));
    QCOMPARE(unloaded.count(), 1);
    QVERIFY(!window_->isVisible());
  }

  // Fields from the data (the rules: StudyDefaultsTest); the line drawn once the
  // window is up and again at each new size. A formula's error box comes once per
  // command (none for a pole the plot samples), not again at each redraw.
  void drawnOnOpeningAndAtEachSize() {
    QCOMPARE(window() << text("txtXlower") << text("txtXupper"), QStringList({"-1", "6", "-2", "12", "1", "5"}));
    window_->show();
    QVERIFY(QTest::qWaitForWindowExposed(window_.get()));
    QTRY_VERIFY(window_->graphDrawn());
    QCOMPARE(dialogs_->busyCalls(), (std::vector<bool>{true, false}));
    QCOMPARE(image().size(), QSize(600, 400));
    QCOMPARE(colourAt(3, 7.2f), QString("#0000ff"));                         // a data point
    QCOMPARE(colourAt(2.5f, float(1.05 + 1.99 * 2.5)), QString("#000000"));  // the curve
    window_->resize(window_->size() + QSize(200, 100));
    QTRY_COMPARE(dialogs_->busyCalls().size(), size_t(4));
    QCOMPARE(image().size(), QSize(800, 500));
    QCOMPARE(picture().toPixelX(6), 800.0);  // the window's right edge at the picture's
    type("txtEquation", "Foo(x)+1");
    click("cmdPlot");
    QCOMPARE(messages().size(), 1);
    const size_t busy = dialogs_->busyCalls().size();
    window_->resize(window_->size() + QSize(10, 0));
    QTRY_COMPARE(dialogs_->busyCalls().size(), busy + 2);  // drawn again, without a box
    QCOMPARE(messages().size(), 1);
    click("cmdPlot");
    QCOMPARE(messages().size(), 2);
    type("txtEquation", "1/(x-2)");
    click("cmdPlot");
    QCOMPARE(messages().size(), 2);
    workbench_.fitted = false;  // without a fit: data and axes, and no function is no error
    type("txtEquation", "");
    click("cmdPlot");
    QCOMPARE(colourAt(2.5f, float(1.05 + 1.99 * 2.5)), QString("#ffffff"));
    QCOMPARE(colourAt(3, 7.2f), QString("#0000ff"));
    QCOMPARE(messages().size(), 2);
  }
};

}  // namespace orvane

QTEST_MAIN(orvane::PlotWindowTest)
#include "PlotWindowTest.moc"
