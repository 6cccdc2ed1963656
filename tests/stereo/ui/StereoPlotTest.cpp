// The stereo window driven through its controls, with scripted dialogs.

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>
#include <fstream>
#include <functional>
#include <memory>

#include "platform/ScriptedDialogs.h"
#include "platform/ui/PictureBox.h"
#include "platform/ui/TextBox.h"
#include "regression/RegressionTestSupport.h"
#include "regression/Workbench.h"
#include "stereo/ui/frmStereoPlot.h"

using namespace orvane;

namespace {

// Dialogs whose event pump runs a piece of the test during a plot, given the call's number.
class PumpingDialogs : public ScriptedDialogs {
 public:
  std::function<void(int)> onDoEvents;
  void DoEvents() override {
    ScriptedDialogs::DoEvents();
    if (onDoEvents) onDoEvents(doEvents());
  }
};

int countPixels(const QImage& image, QRgb color) {
  int n = 0;
  for (int y = 0; y < image.height(); ++y) {
    const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
    for (int x = 0; x < image.width(); ++x) n += (line[x] & 0xFFFFFF) == (color & 0xFFFFFF);
  }
  return n;
}

int differingPixels(const QImage& a, const QImage& b) {
  if (a.size() != b.size()) return a.width() * a.height();
  int n = 0;
  for (int y = 0; y < a.height(); ++y)
    for (int x = 0; x < a.width(); ++x) n += a.pixel(x, y) != b.pixel(x, y);
  return n;
}

struct Fixture {
  Workbench workbench;
  PumpingDialogs dialogs;
  std::unique_ptr<frmStereoPlot> form;

  explicit Fixture(bool fitted = true) {
    workbench.fitted = fitted;
    workbench.startDirectory = "/nonexistent/start";
    workbench.problem = testing::makeProblem(2, {{1, 1, 0.5}, {-1, 0.5, -1}, {0, 0, 1}});
    form = std::make_unique<frmStereoPlot>(workbench, dialogs);
  }

  template <class T>
  T* find(const QString& name) const {
    T* w = form->findChild<T*>(name);
    if (!w) qFatal("no control %s", qPrintable(name));
    return w;
  }
  TextBox* txt(const QString& name) const { return find<TextBox>(name); }
  QString textOf(const QString& name) const { return txt(name)->text(); }
  QStringList texts(std::initializer_list<const char*> names) const {
    QStringList out;
    for (const char* n : names) out << textOf(n);
    return out;
  }
  void set(const QString& name, const QString& value) const { txt(name)->setText(value); }
  void click(const QString& name) const { find<QPushButton>(name)->click(); }
  void trigger(const QString& name) const { find<QAction>(name)->trigger(); }
  QImage image(int index) const {
    return find<PictureBox>(QStringLiteral("pic(%1)").arg(index))->imageCanvas().image();
  }
  QImage anaglyph() const { return find<PictureBox>("picAnaglyph")->imageCanvas().image(); }
  void view(int mode) const { find<QComboBox>("cboViewing")->setCurrentIndex(mode); }
  // The mouse on a picture, at a position in its pixels.
  void mouse(const QString& picture, QEvent::Type type, QPointF at, Qt::MouseButtons held) const {
    QMouseEvent event(type, at, at, type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, held,
                      Qt::NoModifier);
    QApplication::sendEvent(find<PictureBox>(picture), &event);
  }
  void wheel(const QString& picture, int angleDelta) const {
    QWheelEvent event(QPointF(100, 100), QPointF(100, 100), QPoint(), QPoint(0, angleDelta), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(find<PictureBox>(picture), &event);
  }
  QStringList messages() const {
    QStringList out;
    for (const auto& m : dialogs.messages()) out << QString::fromStdString(m.prompt);
    return out;
  }
};

constexpr QRgb kBlack = 0x000000, kWhite = 0xFFFFFF;

}  // namespace

class StereoPlotTest : public QObject {
  Q_OBJECT

 private slots:
  // Parametric shows the x and y formulas and hides what only an explicit surface has;
  // the step buttons (one table, up and down) rewrite their fields without plotting.
  // Copied pictures have the reduced size; the left picture keeps its right edge, the
  // right one its left edge. Help names the file it looks for; Exit unloads.
  void controlsSwitchStepCopyHelpAndExit() {
    Fixture f;
    auto shown = [&](const char* name) { return f.find<QWidget>(name)->isVisibleTo(f.form.get()); };
    QVERIFY(!shown("txtEquationX") && shown("FraDer"));
    f.find<QCheckBox>("chkParametric")->click();
    QCOMPARE(f.find<QLabel>("lblZ")->text(), QString("z(u,v)="));
    QVERIFY(shown("txtEquationX") && shown("lblY") && !shown("FraDer") && !shown("fraAccuracy"));
    f.find<QCheckBox>("chkParametric")->click();
    QVERIFY(!shown("lblX") && shown("fraAccuracy"));
    f.click("cmdIncWindX");
    f.click("cmdDecRotZ");
    QCOMPARE(f.texts({"txtWindowlx", "txtWindowgx", "txtZrot"}), QStringList({"-3", "3", "-5"}));
    QCOMPARE(f.dialogs.beeps(), 0);

    f.set("txtReduce", "0.5");
    f.click("cmdPlot");
    f.trigger("mnuCopyRight");
    QCOMPARE(f.dialogs.copiedPictures(), (std::vector<std::pair<int, int>>{{200, 200}}));
    QCOMPARE(f.find<PictureBox>("pic(0)")->geometry(), QRect(200, 0, 200, 200));
    QVERIFY(f.find<PictureBox>("pic(1)")->geometry().left() > 400);
    f.trigger("mnuHelp");
    QCOMPARE(f.dialogs.helpRequests(), std::vector<std::string>({"/nonexistent/start/deptrix.hlp"}));
    QSignalSpy unloaded(f.form.get(), &frmStereoPlot::unloaded);
    f.click("cmdExit");
    QCOMPARE(unloaded.count(), 1);
  }

  // A formula's error is said once per plot (a pole silently leaves points out); a
  // setting without value is said and the plot goes on with the one it had; Enter in
  // the formula's field plots.
  void errorsAreSaidOncePerPlot() {
    Fixture f;
    f.find<QCheckBox>("chkDots")->setChecked(true);
    for (const auto& [equation, said] : {std::pair{"q*x", 2}, {"1/(x-x)", 2}}) {  // two plots each
      f.set("txtEquationZ", equation);
      f.click("cmdPlot");
      f.click("cmdPlot");
      QCOMPARE(f.messages().size(), said);
      QCOMPARE(countPixels(f.image(1), kBlack), 0);  // no surface, the rest as usual
    }
    f.set("txtEquationZ", "x*y");
    f.set("txtWindowgz", "zz");
    f.click("cmdPlot");
    QCOMPARE(f.messages().size(), 3);
    QVERIFY(countPixels(f.image(1), kBlack) > 500);
    // A spacing beyond the single range has no value either.
    f.set("txtWindowgz", "1.5");
    f.set("txtRangelxu", "-3e38");
    f.set("txtRangegxu", "3e38");
    f.click("cmdPlot");
    QCOMPARE(f.messages().mid(3), QStringList({"Overflow"}));
    QTest::keyClick(f.txt("txtEquationZ"), Qt::Key_Return);
    QCOMPARE(f.dialogs.beeps(), 7);
    QCOMPARE(f.messages().size(), 5);
  }

  // The derivative chosen, its accuracy and the constants reach the picture (their
  // numbers: StereoDrawingTest, UserConstantsTest). Near the domain's end the
  // five-point formula of Zx reaches beyond it where the three-point one ("Med") does
  // not: only a derivative in use shows the difference.
  void derivativesAndConstantsReachThePicture() {
    Fixture f;
    f.set("txtEquationZ", "Sqr(1.03-x)");
    f.set("txtXder", "1");
    f.click("cmdPlot");
    const int high = countPixels(f.image(1), kBlack);
    f.find<QRadioButton>("OptAccuracy(0)")->setChecked(true);
    f.click("cmdPlot");
    QVERIFY(countPixels(f.image(1), kBlack) > high + 100);

    auto* cbo = f.find<QComboBox>("cboConstants");
    for (const char* typed : {"a=1", "2a=1", "b=3*a"}) {  // the second refused
      cbo->setEditText(typed);
      f.click("cmdAddCons");
    }
    QCOMPARE(cbo->count(), 2);
    f.set("txtXder", "0");
    f.set("txtEquationZ", "b*x*y");
    f.click("cmdPlot");
    QVERIFY(countPixels(f.image(1), kBlack) > 500);
    f.click("cmdRemCons");
    QCOMPARE(cbo->count(), 1);
    QVERIFY(f.messages().isEmpty());
  }

  // Leaving a field (the rules: StereoFieldsTest): refused entries keep the focus,
  // inverted pairs and orders summing to 3 send it to the other limit.
  void fieldRules() {
    const char* rows[][3] = {{"txtSpacexu", "2.5", "txtSpacexu"},  {"txtNdots", "1", "cmdAddCons"},
                             {"txtGrid", "0", "cmdAddCons"},        {"txtReduce", "1.5", "txtReduce"},
                             {"txtReduce", "1/2", "cmdAddCons"},    {"txtXder", "3", "txtXder"},
                             {"txtRangelxu", "2", "txtRangegxu"},   {"txtWindowlz", "1.5", "txtWindowgz"},
                             {"txtWindowgx", "pi", "cmdAddCons"},   {"txtXder", "2", "txtYder"}};
    for (const auto& r : rows) {
      Fixture f;
      f.set("txtYder", "1");
      f.form->show();
      QVERIFY(QTest::qWaitForWindowActive(f.form.get()));
      f.txt(r[0])->setFocus(Qt::TabFocusReason);
      f.set(r[0], r[1]);
      f.find<QPushButton>("cmdAddCons")->setFocus(Qt::TabFocusReason);
      QCoreApplication::processEvents();
      QVERIFY2(QApplication::focusWidget() == f.find<QWidget>(r[2]), r[0]);
      QVERIFY(f.messages().isEmpty());
    }
  }

  // The file's lines are StereoExport's (StereoOutputTest); here, the fields that go in
  // and come back, and a file this window did not write is replaced only when asked.
  // A refused file is said, the fields read before the fault stay, the window keeps no name.
  void exportThenImportRestoresTheSettings() {
    QTemporaryDir dir;
    const QString path = dir.filePath("surface.dup");
    Fixture f;
    f.set("txtXrot", "30");
    f.find<QRadioButton>("optBackclr(1)")->setChecked(true);
    f.find<QComboBox>("cboConstants")->setEditText("k=2.37");
    f.click("cmdAddCons");
    f.click("cmdPlot");
    f.dialogs.queueSaveFileName(dir.filePath("no/such/folder.dup").toStdString());
    f.trigger("mnuSaveAs");  // a save that fails is said, and the window keeps no name
    QVERIFY(f.messages().size() == 1 && f.messages()[0].contains("no/such/folder.dup"));
    QVERIFY(f.form->fileName().empty());
    f.dialogs.queueSaveFileName(path.toStdString());
    f.trigger("mnuSaveAs");
    QVERIFY(QFile::exists(path + "_left.bmp") && QFile::exists(path + "_right.bmp"));
    QCOMPARE(QString::fromStdString(f.form->fileName()), path);

    Fixture g;
    g.dialogs.queueOpenFileName(dir.filePath("none.dup").toStdString());
    g.trigger("mnuOpen");
    QVERIFY(g.messages().last().contains("Cannot open"));
    const std::string malformed = dir.filePath("other.dup").toStdString();
    std::ofstream(malformed, std::ios::binary) << "\"STEREO\",1\r\n\"cos(u)\",\"sin(v)\"\r\n\"u*v\"\r\n";
    g.dialogs.queueOpenFileName(malformed);
    g.trigger("mnuOpen");
    QVERIFY2(g.messages().last().contains("line 4"), qPrintable(g.messages().last()));
    QCOMPARE(g.textOf("txtEquationX"), QString("cos(u)"));
    QCOMPARE(g.find<QLabel>("lblZ")->text(), QString("z(u,v)="));
    QVERIFY(g.form->fileName().empty());
    g.dialogs.queueOpenFileName(path.toStdString());
    g.trigger("mnuOpen");
    QCOMPARE(g.messages().size(), 2);
    QCOMPARE(g.textOf("txtXrot"), QString("30"));
    QVERIFY(g.find<QRadioButton>("optBackclr(1)")->isChecked());
    QVERIFY(!g.find<QCheckBox>("chkParametric")->isChecked());
    QCOMPARE(g.find<QComboBox>("cboConstants")->itemText(0), QString("k=2.37"));

    g.set("txtGrid", "2");
    g.click("cmdPlot");
    const auto contents = [&] {
      const std::string file = path.toStdString();
      return std::vector{testing::readText(file), testing::readText(file + "_left.bmp"),
                         testing::readText(file + "_right.bmp")};
    };
    const std::vector<std::string> before = contents();
    g.dialogs.queueMsgBox(mb::No);
    g.trigger("mnuSave");
    QCOMPARE(g.messages().size(), 3);
    QVERIFY(g.messages()[2].contains(path) && g.messages()[2].endsWith("Replace it and its two pictures?"));
    QVERIFY(contents() == before);
    g.dialogs.queueMsgBox(mb::Yes);
    g.trigger("mnuSave");
    const std::vector<std::string> after = contents();
    for (size_t k = 0; k < 3; ++k) QVERIFY(!after[k].empty() && after[k] != before[k]);
    g.trigger("mnuSave");  // written here now: no more questions
    QCOMPARE(g.messages().size(), 4);
    QVERIFY(g.dialogs.fileDialogs().size() == 3);
  }

  // The window yields while it draws (after sizing, before the surface, between the
  // families, every 20 ms of a long surface). A plot, a zoom and an export asked for then
  // wait for it to end. Esc stops it at its next look: what it drew stays, it says so
  // without a beep, and the plot asked for meanwhile is not drawn. A close stops it too.
  void commandsDuringAPlotWaitEscStopsItCloseEndsIt() {
    QTemporaryDir dir;
    const QString path = dir.filePath("later.dup");
    Fixture f;
    f.form->show();
    f.set("txtSpacexu", "100000");
    f.set("txtSpaceyv", "100000");
    f.dialogs.queueSaveFileName(path.toStdString());
    f.dialogs.onDoEvents = [&](int call) {  // 1 and 2 come before the surface, 3 after 20 ms of it
      QVERIFY(f.form->plotting());
      if (call == 1) {
        f.trigger("mnuSaveAs");
        f.click("cmdPlot");
        f.click("cmdZoomIn");
      }
      if (call == 3) QTest::keyClick(f.txt("txtNdots"), Qt::Key_Escape);
    };
    f.click("cmdPlot");
    QCOMPARE(f.dialogs.doEvents(), 3);
    QCOMPARE(f.find<QLabel>("lblPlotStatus")->text(), QString("Interrupted"));
    QCOMPARE(f.dialogs.beeps(), 0);
    QVERIFY(!f.form->plotting() && !f.dialogs.busy());
    QVERIFY(countPixels(f.image(1), kBlack) > 0);  // part of the mesh
    QCOMPARE(f.textOf("txtWindowgx"), QString("1.25"));
    QVERIFY(!QFile::exists(path));
    QTRY_VERIFY(QFile::exists(path) && QFile::exists(path + "_right.bmp"));

    f.set("txtSpacexu", "4");
    f.set("txtSpaceyv", "4");
    QSignalSpy unloaded(f.form.get(), &frmStereoPlot::unloaded);
    f.dialogs.onDoEvents = [&](int call) {
      QVERIFY(f.form->plotting());
      if (call == 4) f.click("cmdPlot");
      if (call == 7) {
        QVERIFY(f.find<QLabel>("lblPlotStatus")->text().isEmpty());
        f.form->close();
        QCOMPARE(unloaded.count(), 0);
      }
    };
    f.click("cmdPlot");
    QCOMPARE(f.dialogs.beeps(), 1);  // the first plot; the queued one was closed midway
    QCOMPARE(unloaded.count(), 1);
    QVERIFY(!f.form->plotting());
  }

  // Both pictures: background, axes, origin, data marks, border, and the mesh only with
  // a fit; the left one carries the stereo shift. Each picture the window shows turns
  // the view as the pointer moves (redrawn whole, without a beep) and zooms by the wheel.
  void plotDrawsAStereoPairThatDragAndWheelTurnAndZoom() {
    const struct {
      bool fitted;
      int background, mode;
      const char* picture;
    } rows[] = {{true, 0, 0, "pic(0)"}, {true, 1, 1, "pic(1)"}, {false, 0, 2, "picAnaglyph"}};
    for (const auto& r : rows) {
      Fixture f(r.fitted);
      f.find<QRadioButton>(QStringLiteral("optBackclr(%1)").arg(r.background))->setChecked(true);
      f.view(r.mode);
      f.click("cmdPlot");
      QCOMPARE(f.dialogs.beeps(), 1);
      QCOMPARE(f.dialogs.busyCalls(), std::vector<bool>({true, false}));
      const bool white = r.background == 0;
      const QRgb back = white ? kWhite : kBlack, mesh = white ? kBlack : kWhite;
      for (int i = 0; i < 2; ++i) {
        const QImage image = f.image(i);
        QCOMPARE(image.pixel(120, 3) & 0xFFFFFF, back);
        QVERIFY(countPixels(image, white ? qRgb(0, 128, 0) : qRgb(0, 255, 0)) > 100);  // axes
        QVERIFY(countPixels(image, qRgb(255, 0, 0)) > 10);                            // the origin
        QVERIFY(countPixels(image, white ? qRgb(0, 0, 255) : qRgb(255, 255, 0)) > 5);  // the data sets
        QVERIFY(countPixels(image, qRgb(192, 192, 0)) > 1000);                        // the border
        QCOMPARE(countPixels(image, mesh) > 500, r.fitted);
      }
      QVERIFY(differingPixels(f.image(0), f.image(1)) > 100);

      auto shown = [&] { return f.find<PictureBox>(r.picture)->imageCanvas().image(); };
      const QImage before = shown();
      f.mouse(r.picture, QEvent::MouseButtonPress, {200, 200}, Qt::LeftButton);
      f.mouse(r.picture, QEvent::MouseMove, {200, 210}, Qt::LeftButton);
      QCOMPARE(f.texts({"txtXrot", "txtYrot", "txtZrot"}), QStringList({"0", "-5", "0"}));
      QVERIFY(differingPixels(before, shown()) > 200);  // drawn again while the button is down
      f.mouse(r.picture, QEvent::MouseMove, {220, 210}, Qt::LeftButton);
      f.mouse(r.picture, QEvent::MouseButtonRelease, {220, 210}, Qt::NoButton);
      f.mouse(r.picture, QEvent::MouseMove, {300, 300}, Qt::NoButton);
      QCOMPARE(f.texts({"txtXrot", "txtYrot", "txtZrot"}), QStringList({"0", "-5", "-10"}));
      QCOMPARE(f.dialogs.beeps(), 1);
      QVERIFY(f.find<QLabel>("lblPlotStatus")->text().isEmpty());
      // The zooms themselves: StereoFieldsTest; here, whole notches of 120.
      for (const auto& [delta, upperX] : {std::pair{60, "2.5"}, {60, "1.25"}, {-240, "5"}}) {
        f.wheel(r.picture, delta);
        QCOMPARE(f.textOf("txtWindowgx"), QString(upperX));
      }
      QCOMPARE(f.dialogs.beeps(), 4);
      QVERIFY(f.messages().isEmpty());
    }
  }

  // Crossed viewing swaps the pictures; the red-cyan picture holds the left picture's
  // grey level in red and the right one's in green and blue. Copy, print and export
  // take what is shown; the export file and the report's text stay the same.
  void viewingModesShowSwapAndComposeThePair() {
    QTemporaryDir dir;
    Fixture f;
    f.click("cmdPlot");
    const QImage left = f.image(0), right = f.image(1);
    f.trigger("mnuPrint");  // the page's layout: StereoOutputTest
    const std::vector<std::string> parallelText = f.dialogs.printer().texts();
    f.dialogs.queueSaveFileName(dir.filePath("parallel.dup").toStdString());
    f.trigger("mnuSaveAs");

    f.view(1);
    for (int replot = 0; replot < 2; ++replot) {  // switched, then drawn again crossed
      if (replot) f.click("cmdPlot");
      QVERIFY(f.image(0) == right && f.image(1) == left);
    }

    f.view(2);
    QVERIFY(f.find<PictureBox>("picAnaglyph")->isVisibleTo(f.form.get()));
    QVERIFY(!f.find<PictureBox>("pic(0)")->isVisibleTo(f.form.get()));
    for (int replot = 0; replot < 2; ++replot) {
      if (replot) f.click("cmdPlot");
      const QImage a = f.anaglyph();
      QCOMPARE(a.size(), left.size());
      int parallax = 0;
      for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) {
          const QRgb p = a.pixel(x, y);
          if (qRed(p) != qGray(left.pixel(x, y)) || qGreen(p) != qGray(right.pixel(x, y)) || qBlue(p) != qGreen(p))
            QFAIL(qPrintable(QString("pixel %1,%2").arg(x).arg(y)));
          parallax += qRed(p) != qGreen(p);
        }
      QVERIFY(parallax > 100);
    }

    f.trigger("mnuCopyLeft");
    f.trigger("mnuCopyRight");
    QCOMPARE(f.dialogs.copiedPictures().size(), size_t{2});
    f.trigger("mnuPrint");
    // The printer records both documents: the pair then the one picture, the same text.
    RecordingPrinterPage& page = f.dialogs.printer();
    QCOMPARE(page.pictures().size(), size_t{3});
    QVERIFY(page.pictures()[2].left < 5985 && page.pictures()[2].left + page.pictures()[2].width > 5985);
    const std::vector<std::string> texts = page.texts();
    QCOMPARE(std::vector<std::string>(texts.begin() + static_cast<long>(parallelText.size()), texts.end()),
             parallelText);
    const QString path = dir.filePath("anaglyph.dup");
    f.dialogs.queueSaveFileName(path.toStdString());
    f.trigger("mnuSaveAs");
    QImage saved(path + "_anaglyph.bmp");
    QCOMPARE(saved.convertToFormat(QImage::Format_RGB32), f.anaglyph());
    QCOMPARE(testing::readText(path.toStdString()), testing::readText(dir.filePath("parallel.dup").toStdString()));
    QVERIFY(!QFile::exists(dir.filePath("parallel.dup_anaglyph.bmp")));

    f.view(0);
    QCOMPARE(f.image(0), left);
    QVERIFY(f.find<PictureBox>("pic(1)")->isVisibleTo(f.form.get()));
    QCOMPARE(f.dialogs.beeps(), 3);
  }
};

QTEST_MAIN(StereoPlotTest)
#include "StereoPlotTest.moc"
