// The stereo window driven through its controls, with scripted dialogs.

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>
#include <functional>
#include <memory>

#include "platform/ScriptedDialogs.h"
#include "platform/ui/PictureBox.h"
#include "platform/ui/TextBox.h"
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
    // Two variables, three data sets: (1, 1, 0.5), (-1, 0.5, -1), (0, 0, 1).
    RegressionProblem& p = workbench.problem;
    p.m = 2;
    p.N = 3;
    p.dimensionData();
    const double data[3][3] = {{1, 1, 0.5}, {-1, 0.5, -1}, {0, 0, 1}};
    for (int i = 1; i <= 3; ++i)
      for (int j = 1; j <= 3; ++j) p.X(j, i) = data[i - 1][j - 1];
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
  QStringList window() const {
    return texts({"txtWindowlx", "txtWindowgx", "txtWindowly", "txtWindowgy", "txtWindowlz", "txtWindowgz"});
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
  QStringList rotation() const { return texts({"txtXrot", "txtYrot", "txtZrot"}); }
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
  void opensWithTheDefaultsAndSwitchesToParametric() {
    Fixture f;
    QCOMPARE(f.form->windowTitle(), QString("Stereo Plot"));
    QCOMPARE(f.texts({"txtEquationZ", "txtWindowlx", "txtNdots"}),
             QStringList({"(x-1)*x*(x+1)*(y-1)*y*(y+1)*5", "-2.5", "5000"}));
    QVERIFY(f.find<QRadioButton>("OptAccuracy(1)")->isChecked());  // "High"
    QVERIFY(f.find<QRadioButton>("optBackclr(0)")->isChecked());   // "White"
    QCOMPARE(f.image(0).size(), QSize(400, 400));
    QCOMPARE(f.image(1).size(), QSize(400, 400));
    auto* chk = f.find<QCheckBox>("chkParametric");
    auto shown = [&](const char* name) { return f.find<QWidget>(name)->isVisibleTo(f.form.get()); };
    QVERIFY(!shown("txtEquationX") && shown("FraDer"));
    chk->click();
    auto caption = [&](const char* name) { return f.find<QLabel>(name)->text(); };
    QCOMPARE(caption("lblZ") + caption("lblxu") + caption("lblSegsyv"), QString("z(u,v)=<=u<=v:"));
    QVERIFY(shown("txtEquationX") && shown("lblY") && !shown("FraDer") && !shown("fraAccuracy"));
    chk->click();
    QCOMPARE(f.find<QLabel>("lblyv")->text(), QString("<=y<="));
    QVERIFY(!shown("lblX") && shown("fraAccuracy"));
    // The step buttons rewrite their fields without plotting.
    f.click("cmdIncWindX");
    f.click("cmdDecRotZ");
    f.click("cmdIncTranY");
    f.click("cmdDecRangYV");
    QCOMPARE(f.texts({"txtWindowlx", "txtWindowgx", "txtZrot", "txtYtr", "txtRangelyv"}),
             QStringList({"-3", "3", "-5", "1", "-0.5"}));
    QCOMPARE(f.dialogs.beeps(), 0);
  }

  void plotDrawsAStereoPair_data() {
    QTest::addColumn<bool>("fitted");
    QTest::addColumn<int>("background");
    QTest::newRow("surface on white") << true << 0;
    QTest::newRow("surface on black") << true << 1;
    QTest::newRow("no fit: frame, axes and data only") << false << 0;
  }
  void plotDrawsAStereoPair() {
    QFETCH(bool, fitted);
    QFETCH(int, background);
    Fixture f(fitted);
    f.find<QRadioButton>(QStringLiteral("optBackclr(%1)").arg(background))->setChecked(true);
    f.click("cmdPlot");

    QCOMPARE(f.dialogs.beeps(), 1);
    QCOMPARE(f.dialogs.busyCalls(), std::vector<bool>({true, false}));
    const QRgb back = background == 0 ? kWhite : kBlack, mesh = background == 0 ? kBlack : kWhite;
    const QRgb axes = background == 0 ? qRgb(0, 128, 0) : qRgb(0, 255, 0);
    const QRgb mark = background == 0 ? qRgb(0, 0, 255) : qRgb(255, 255, 0);
    for (int i = 0; i < 2; ++i) {
      const QImage image = f.image(i);
      QCOMPARE(image.pixel(120, 3) & 0xFFFFFF, back);
      QVERIFY(countPixels(image, axes) > 100);
      QVERIFY(countPixels(image, qRgb(255, 0, 0)) > 10);  // the origin
      QVERIFY(countPixels(image, mark) > 5);             // the three data sets
      QVERIFY(countPixels(image, qRgb(192, 192, 0)) > 1000);  // the border
      if (fitted)
        QVERIFY(countPixels(image, mesh) > 500);
      else
        QCOMPARE(countPixels(image, mesh), 0);
    }
    // The left picture carries the stereo shift.
    QVERIFY(differingPixels(f.image(0), f.image(1)) > 100);
    QVERIFY(f.messages().isEmpty());
  }

  void engineErrorIsShownOncePerCommand_data() {
    QTest::addColumn<QString>("equation");
    QTest::addColumn<int>("messagesPerPlot");
    QTest::newRow("unknown name") << "q*x" << 1;
    QTest::newRow("division by zero is silent") << "1/(x-x)" << 0;
    QTest::newRow("domain error of the math object is silent") << "Asin(2+x)" << 0;
  }
  void engineErrorIsShownOncePerCommand() {
    QFETCH(QString, equation);
    QFETCH(int, messagesPerPlot);
    Fixture f;
    f.set("txtEquationZ", equation);
    f.find<QCheckBox>("chkDots")->setChecked(true);
    f.click("cmdPlot");
    QCOMPARE(f.messages().size(), messagesPerPlot);
    f.click("cmdPlot");
    QCOMPARE(f.messages().size(), 2 * messagesPerPlot);
    QCOMPARE(f.dialogs.beeps(), 2);
    // No surface, the rest of the picture as usual.
    QCOMPARE(countPixels(f.image(1), kBlack), 0);
  }

  void rotationTurnsThePicture() {
    Fixture f;
    f.click("cmdPlot");
    const QImage straight = f.image(1);
    for (int k = 0; k < 6; ++k) f.click("cmdIncRotZ");
    QCOMPARE(f.textOf("txtZrot"), QString("30"));
    f.click("cmdPlot");
    QVERIFY(differingPixels(straight, f.image(1)) > 200);
    for (int k = 0; k < 6; ++k) f.click("cmdDecRotZ");
    f.click("cmdPlot");
    QCOMPARE(differingPixels(straight, f.image(1)), 0);
  }

  void zoomButtonsRewriteTheWindowAndReplot_data() {
    QTest::addColumn<QString>("button");
    QTest::addColumn<QStringList>("window");
    QTest::newRow("octant 3") << "cmdZoomQ3" << QStringList{"-2.5", "0", "-2", "0", "0", "1.5"};
    QTest::newRow("zoom in") << "cmdZoomIn" << QStringList{"-1.25", "1.25", "-1", "1", "-0.75", "0.75"};
    QTest::newRow("pan right") << "cmdPanRight" << QStringList{"-2.5", "2.5", "-1.5", "2.5", "-1.5", "1.5"};
    QTest::newRow("pan in") << "cmdPanIn" << QStringList{"-3.125", "1.875", "-2", "2", "-1.5", "1.5"};
  }
  void zoomButtonsRewriteTheWindowAndReplot() {
    QFETCH(QString, button);
    QFETCH(QStringList, window);
    Fixture f;
    f.click(button);
    QCOMPARE(f.window(), window);
    QCOMPARE(f.dialogs.beeps(), 1);
  }

  // Zx by the five-point formula is exact for a cubic in x: the same picture as the
  // derivative typed out.
  void derivativeSurfaceAtHighAccuracy() {
    Fixture f;
    f.set("txtXder", "1");
    f.click("cmdPlot");
    const QImage numerical = f.image(1);
    f.set("txtXder", "0");
    f.set("txtEquationZ", "5*(3*x*x-1)*(y-1)*y*(y+1)");
    f.click("cmdPlot");
    const QImage exact = f.image(1);
    // Rounding moves a few pixels of the long steep segments, nothing more.
    QVERIFY(differingPixels(numerical, exact) < 600);
    f.set("txtEquationZ", "(x-1)*x*(x+1)*(y-1)*y*(y+1)*5");
    f.click("cmdPlot");
    QVERIFY(differingPixels(f.image(1), exact) > 3000);
    // Near the end of the domain the five-point formula reaches beyond it (x + 2h) where
    // the three-point one does not: the curve at x = 1 is drawn at "Med" only.
    f.set("txtEquationZ", "Sqr(1.03-x)");
    f.set("txtXder", "1");
    f.click("cmdPlot");
    const int high = countPixels(f.image(1), kBlack);
    f.find<QRadioButton>("OptAccuracy(0)")->setChecked(true);
    f.click("cmdPlot");
    const int med = countPixels(f.image(1), kBlack);
    QVERIFY2(med > high + 100, qPrintable(QString("med %1, high %2").arg(med).arg(high)));
    QVERIFY(f.messages().isEmpty());
  }

  void aSettingWithoutValueIsReportedAndThePlotGoesOn() {
    Fixture f;
    f.set("txtWindowgz", "zz");
    f.click("cmdPlot");
    QCOMPARE(f.messages().size(), 1);
    QCOMPARE(f.dialogs.beeps(), 1);
    QVERIFY(countPixels(f.image(1), kBlack) > 500);  // drawn with the window it had
    // A spacing beyond the single range has no value either: said once per plot.
    f.set("txtWindowgz", "1.5");
    f.set("txtRangelxu", "-3e38");
    f.set("txtRangegxu", "3e38");
    f.click("cmdPlot");
    QCOMPARE(f.messages(), QStringList({f.messages()[0], "Overflow"}));
    QCOMPARE(f.dialogs.beeps(), 2);
    // Enter in the formula's field plots (the window's default button).
    QTest::keyClick(f.txt("txtEquationZ"), Qt::Key_Return);
    QCOMPARE(f.dialogs.beeps(), 3);
    QCOMPARE(f.messages().size(), 3);
  }

  // Leaving a field: refused entries keep the focus, inverted pairs send it to the other limit.
  void fieldRules_data() {
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("focusTo");  // empty: the focus moves on as asked
    QTest::newRow("spacings 2.5") << "txtSpacexu" << "2.5" << "txtSpacexu";
    QTest::newRow("dots 1") << "txtNdots" << "1" << "";
    QTest::newRow("reference lines 0") << "txtGrid" << "0" << "";
    QTest::newRow("reduction 1.5") << "txtReduce" << "1.5" << "txtReduce";
    QTest::newRow("reduction 1/2") << "txtReduce" << "1/2" << "";
    QTest::newRow("x order 3") << "txtXder" << "3" << "txtXder";
    QTest::newRow("range lower above upper") << "txtRangelxu" << "2" << "txtRangegxu";
    QTest::newRow("range equal limits pass") << "txtRangelxu" << "1" << "";
    QTest::newRow("window equal limits refused") << "txtWindowlz" << "1.5" << "txtWindowgz";
    QTest::newRow("window upper as an expression") << "txtWindowgx" << "pi" << "";
    QTest::newRow("orders summing to 3") << "txtXder" << "2" << "txtYder";
  }
  void fieldRules() {
    QFETCH(QString, field);
    QFETCH(QString, value);
    QFETCH(QString, focusTo);
    Fixture f;
    f.set("txtYder", "1");
    f.form->show();
    QVERIFY(QTest::qWaitForWindowActive(f.form.get()));
    f.txt(field)->setFocus(Qt::TabFocusReason);
    f.set(field, value);
    f.find<QPushButton>("cmdAddCons")->setFocus(Qt::TabFocusReason);
    QCoreApplication::processEvents();
    QCOMPARE(QApplication::focusWidget(), f.find<QWidget>(focusTo.isEmpty() ? QString("cmdAddCons") : focusTo));
    QVERIFY(f.messages().isEmpty());
  }

  void userConstantsReachTheFormulas() {
    Fixture f;
    auto* cbo = f.find<QComboBox>("cboConstants");
    for (const char* typed : {"a=1", "2a=1", "a b=1", "b=2*a", "b=3*a"}) {
      cbo->setEditText(typed);
      f.click("cmdAddCons");
    }
    QCOMPARE(QStringList({cbo->itemText(0), cbo->itemText(1)}), QStringList({"a=1", "b=3*a"}));
    QCOMPARE(cbo->count(), 2);  // malformed names refused, b replaced
    // The plot registers them in list order, so b sees a.
    f.set("txtEquationZ", "b*x*y");
    f.click("cmdPlot");
    QVERIFY(f.messages().isEmpty());
    QVERIFY(countPixels(f.image(1), kBlack) > 500);
    cbo->setEditText("b=3*a");
    f.click("cmdRemCons");
    QCOMPARE(cbo->count(), 1);
    // b is now 0: the surface is the plane z = 0, still drawn, without a message.
    f.click("cmdPlot");
    QVERIFY(f.messages().isEmpty());
  }

  void exportThenImportRestoresTheSettings() {
    QTemporaryDir dir;
    const QString path = dir.filePath("surface.dup");
    Fixture f;
    f.set("txtXrot", "30");
    f.set("txtGrid", "4");
    f.set("txtYder", "2");
    f.find<QRadioButton>("optBackclr(1)")->setChecked(true);
    f.find<QComboBox>("cboConstants")->setEditText("k=2.37");
    f.click("cmdAddCons");
    f.click("cmdPlot");
    f.dialogs.queueSaveFileName(path.toStdString());
    f.trigger("mnuSaveAs");

    QVERIFY(QFile::exists(path + "_left.bmp") && QFile::exists(path + "_right.bmp"));
    QVERIFY(!QFile::exists(path + ".part"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString written = QString::fromUtf8(file.readAll());
    QVERIFY(written.startsWith("\"STEREO\",0\r\n\"(x-1)*x*(x+1)*(y-1)*y*(y+1)*5\"\r\n"));
    QVERIFY(written.contains("\r\n1,4\r\n 1 \r\nk=2.37\r\n"));
    QCOMPARE(QString::fromStdString(f.form->fileName()), path);

    // Export again: no dialog, the same file.
    const size_t dialogsBefore = f.dialogs.fileDialogs().size();
    f.trigger("mnuSave");
    QCOMPARE(f.dialogs.fileDialogs().size(), dialogsBefore);

    Fixture g;
    g.find<QCheckBox>("chkParametric")->click();
    g.dialogs.queueOpenFileName(path.toStdString());
    g.trigger("mnuOpen");
    QVERIFY(g.messages().isEmpty());
    QCOMPARE(QStringList({g.textOf("txtXrot"), g.textOf("txtGrid"), g.textOf("txtXder"), g.textOf("txtYder")}),
             QStringList({"30", "4", "0", "2"}));
    QVERIFY(g.find<QRadioButton>("optBackclr(1)")->isChecked());
    QVERIFY(!g.find<QCheckBox>("chkParametric")->isChecked());
    QCOMPARE(g.find<QLabel>("lblZ")->text(), QString("z(x,y)="));
    auto* imported = g.find<QComboBox>("cboConstants");
    QCOMPARE(imported->count(), 1);
    QCOMPARE(imported->itemText(0), QString("k=2.37"));

    // Export after the import: the file was not written by this window, so it asks
    // before replacing it; No leaves the file and its pictures as they were.
    g.set("txtGrid", "2");
    g.click("cmdPlot");
    const auto contents = [&] {
      QStringList all;
      for (const QString& name : {path, path + "_left.bmp", path + "_right.bmp"}) {
        QFile in(name);
        all << (in.open(QIODevice::ReadOnly) ? QString::fromLatin1(in.readAll().toBase64()) : QString());
      }
      return all;
    };
    const QStringList before = contents();
    g.dialogs.queueMsgBox(mb::No);
    g.trigger("mnuSave");
    QCOMPARE(g.messages().size(), 1);
    QVERIFY(g.messages()[0].contains(path) && g.messages()[0].endsWith("Replace it and its two pictures?"));
    QVERIFY(contents() == before);
    g.dialogs.queueMsgBox(mb::Yes);
    g.trigger("mnuSave");
    const QStringList after = contents();
    for (int k = 0; k < 3; ++k) QVERIFY(!after[k].isEmpty() && after[k] != before[k]);
    g.trigger("mnuSave");  // written here now: no more questions
    QCOMPARE(g.messages().size(), 2);
    QVERIFY(g.dialogs.fileDialogs().size() == 1);
  }

  void importRefusesOtherFiles_data() {
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("equationX");  // after the import
    QTest::addColumn<bool>("parametric");
    QTest::newRow("not a stereo file") << QByteArray("\"CURVIX\",0\r\n") << "Incompatible file" << "v" << false;
    QTest::newRow("no such file") << QByteArray("<missing>") << "Cannot open" << "v" << false;
    QTest::newRow("ends after the equations")
        << QByteArray("\"STEREO\",1\r\n\"cos(u)\",\"sin(v)\"\r\n\"u*v\"\r\n") << "line 4" << "cos(u)" << true;
    QTest::newRow("text where a number belongs")
        << QByteArray("\"STEREO\",0\r\n\"x*y\"\r\n1,0,1,abc,5\r\n") << "line 3" << "v" << false;
  }
  void importRefusesOtherFiles() {
    QFETCH(QByteArray, content);
    QFETCH(QString, message);
    QFETCH(QString, equationX);
    QFETCH(bool, parametric);
    QTemporaryDir dir;
    const QString path = dir.filePath("in.dup");
    QFile file(path);
    if (content != "<missing>") QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    file.close();
    Fixture f;
    f.dialogs.queueOpenFileName(path.toStdString());
    f.trigger("mnuOpen");
    QCOMPARE(f.messages().size(), 1);
    QVERIFY2(f.messages()[0].contains(message), qPrintable(f.messages()[0]));
    QCOMPARE(f.textOf("txtEquationX"), equationX);
    QCOMPARE(f.find<QCheckBox>("chkParametric")->isChecked(), parametric);
    QCOMPARE(f.find<QLabel>("lblZ")->text(), parametric ? QString("z(u,v)=") : QString("z(x,y)="));
    QVERIFY(f.form->fileName().empty());
  }

  void printSendsBothPicturesAndTheSettings() {
    Fixture f;
    f.set("txtXder", "1");
    f.set("txtYder", "1");
    f.click("cmdPlot");
    f.trigger("mnuPrint");
    RecordingPrinterPage& page = f.dialogs.printer();
    QCOMPARE(page.endDocCount(), 1);
    QCOMPARE(page.pictures().size(), size_t{2});
    QCOMPARE(page.pictures()[1].left, 5985.0);
    const auto texts = page.texts();
    for (const char* line : {"   CURRENT PARTIAL DERIVATIVE: [Zxy]",
                             "                     X-WINDOW: [-2.5 , 2.5 ]"})
      QVERIFY2(std::find(texts.begin(), texts.end(), line) != texts.end(), line);
    QCOMPARE(page.FontName(), std::string("Arial"));  // the printer's font is given back
  }

  void copyBothPicturesAtTheirSize() {
    Fixture f;
    f.trigger("mnuCopyLeft");
    f.trigger("mnuCopyRight");
    f.set("txtReduce", "0.5");
    f.click("cmdPlot");
    f.trigger("mnuCopyRight");
    using Sizes = std::vector<std::pair<int, int>>;
    QCOMPARE(f.dialogs.copiedPictures(), Sizes({{400, 400}, {400, 400}, {200, 200}}));
    // The left picture keeps its right edge, the right one its left edge.
    const QRect left = f.find<PictureBox>("pic(0)")->geometry();
    const QRect right = f.find<PictureBox>("pic(1)")->geometry();
    QCOMPARE(left, QRect(200, 0, 200, 200));
    QVERIFY(right.left() > 400);
    QCOMPARE(right.size(), QSize(200, 200));
  }

  void helpAndExit() {
    Fixture f;
    f.trigger("mnuHelp");
    QCOMPARE(f.dialogs.helpRequests(), std::vector<std::string>({"/nonexistent/start/deptrix.hlp"}));
    QVERIFY(f.messages().value(0).startsWith("Cannot find the help file"));
    f.form->show();
    QSignalSpy unloaded(f.form.get(), &frmStereoPlot::unloaded);
    f.click("cmdExit");
    QCOMPARE(unloaded.count(), 1);
    QVERIFY(!f.form->isVisible());
  }

  // The window yields while it draws: a second plot and a zoom arriving then wait for
  // the plot to end; a close stops the plot being drawn, and the window goes after it.
  void commandsDuringAPlotWaitForIt() {
    Fixture f;
    f.form->show();
    QSignalSpy unloaded(f.form.get(), &frmStereoPlot::unloaded);
    // Three DoEvents calls per plot: after sizing, before the surface, between the families.
    f.dialogs.onDoEvents = [&](int call) {
      QVERIFY(f.form->plotting());
      if (call == 1) {
        f.click("cmdPlot");
        f.click("cmdZoomIn");
      } else if (call == 4) {
        f.form->close();
        QCOMPARE(unloaded.count(), 0);
      }
    };
    f.click("cmdPlot");
    QCOMPARE(f.dialogs.beeps(), 1);  // the first plot; the queued one was closed midway
    QCOMPARE(f.textOf("txtWindowgx"), QString("1.25"));
    QCOMPARE(unloaded.count(), 1);
    QVERIFY(!f.form->plotting());
  }

  // Esc during a mesh of 100,000 x 100,000 spacings: the plot stops at its next look at
  // the events, keeps what it drew, says so and does not beep; the plot asked for
  // meanwhile is not drawn, and the next one runs as ever.
  void escStopsALongPlot() {
    Fixture f;
    f.set("txtSpacexu", "100000");
    f.set("txtSpaceyv", "100000");
    // Calls 1 and 2 come before the surface, 3 after 20 ms of it.
    f.dialogs.onDoEvents = [&](int call) {
      if (call == 1) f.click("cmdPlot");
      if (call == 3) QTest::keyClick(f.txt("txtNdots"), Qt::Key_Escape);
    };
    f.click("cmdPlot");
    QCOMPARE(f.dialogs.doEvents(), 3);
    QCOMPARE(f.find<QLabel>("lblPlotStatus")->text(), QString("Interrupted"));
    QCOMPARE(f.dialogs.beeps(), 0);
    QVERIFY(!f.form->plotting() && !f.dialogs.busy());
    QVERIFY(countPixels(f.image(1), kBlack) > 0);  // part of the mesh
    f.dialogs.onDoEvents = nullptr;
    f.set("txtSpacexu", "4");
    f.set("txtSpaceyv", "4");
    f.click("cmdPlot");
    QCOMPARE(f.dialogs.beeps(), 1);
    QVERIFY(f.find<QLabel>("lblPlotStatus")->text().isEmpty());
  }

  void exportDuringAPlotRunsAfterIt() {
    QTemporaryDir dir;
    const QString path = dir.filePath("later.dup");
    Fixture f;
    f.dialogs.queueSaveFileName(path.toStdString());
    f.dialogs.onDoEvents = [&](int call) {
      if (call == 1) f.trigger("mnuSaveAs");
    };
    f.click("cmdPlot");
    QVERIFY(!QFile::exists(path));
    QTRY_VERIFY(QFile::exists(path));
    QVERIFY(QFile::exists(path + "_right.bmp"));
  }

  // Each picture the window shows turns the view as the pointer moves and zooms by the
  // wheel, in notches of 120.
  void dragTurnsAndWheelZoomsOnEveryPicture_data() {
    QTest::addColumn<QString>("picture");
    QTest::addColumn<int>("mode");
    QTest::newRow("left, parallel") << "pic(0)" << 0;
    QTest::newRow("right, crossed") << "pic(1)" << 1;
    QTest::newRow("red-cyan") << "picAnaglyph" << 2;
  }
  void dragTurnsAndWheelZoomsOnEveryPicture() {
    QFETCH(QString, picture);
    QFETCH(int, mode);
    Fixture f;
    f.view(mode);
    f.click("cmdPlot");
    auto shown = [&] { return f.find<PictureBox>(picture)->imageCanvas().image(); };
    const QImage before = shown();
    f.mouse(picture, QEvent::MouseButtonPress, {200, 200}, Qt::LeftButton);
    f.mouse(picture, QEvent::MouseMove, {200, 210}, Qt::LeftButton);
    QCOMPARE(f.rotation(), QStringList({"0", "-5", "0"}));
    QVERIFY(differingPixels(before, shown()) > 200);  // drawn again while the button is down
    f.mouse(picture, QEvent::MouseMove, {220, 210}, Qt::LeftButton);
    QCOMPARE(f.rotation(), QStringList({"0", "-5", "-10"}));
    f.mouse(picture, QEvent::MouseButtonRelease, {220, 210}, Qt::NoButton);
    f.mouse(picture, QEvent::MouseMove, {300, 300}, Qt::NoButton);
    QCOMPARE(f.rotation(), QStringList({"0", "-5", "-10"}));
    QCOMPARE(f.dialogs.beeps(), 1);  // a drag redraws without a beep, and whole
    QVERIFY(f.find<QLabel>("lblPlotStatus")->text().isEmpty());

    f.wheel(picture, 60);
    QCOMPARE(f.window(), QStringList({"-2.5", "2.5", "-2", "2", "-1.5", "1.5"}));
    f.wheel(picture, 60);
    QCOMPARE(f.window(), QStringList({"-1.25", "1.25", "-1", "1", "-0.75", "0.75"}));
    f.wheel(picture, -240);
    QCOMPARE(f.window(), QStringList({"-5", "5", "-4", "4", "-3", "3"}));
    QCOMPARE(f.dialogs.beeps(), 4);  // as the zoom buttons: a replot each
    QVERIFY(f.messages().isEmpty());
  }

  // Crossed viewing swaps the pictures; the red-cyan picture holds the left picture's
  // grey level in red and the right one's in green and blue. Copy, print and export
  // take what is shown; the export file and the report's text stay the same.
  void viewingModesShowSwapAndComposeThePair() {
    QTemporaryDir dir;
    Fixture f;
    f.click("cmdPlot");
    const QImage left = f.image(0), right = f.image(1);
    f.trigger("mnuPrint");
    const std::vector<std::string> parallelText = f.dialogs.printer().texts();
    f.dialogs.queueSaveFileName(dir.filePath("parallel.dup").toStdString());
    f.trigger("mnuSaveAs");

    f.view(1);
    QCOMPARE(f.image(0), right);
    QCOMPARE(f.image(1), left);
    f.click("cmdPlot");  // drawn again crossed: the same swap
    QCOMPARE(f.image(0), right);
    QCOMPARE(f.image(1), left);

    f.view(2);
    QVERIFY(f.find<PictureBox>("picAnaglyph")->isVisibleTo(f.form.get()));
    QVERIFY(!f.find<PictureBox>("pic(0)")->isVisibleTo(f.form.get()));
    auto checkAnaglyph = [&] {
      const QImage a = f.anaglyph();
      QCOMPARE(a.size(), left.size());
      int parallax = 0;
      for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) {
          const QRgb p = a.pixel(x, y);
          if (qRed(p) != qGray(left.pixel(x, y)) || qGreen(p) != qGray(right.pixel(x, y)) ||
              qBlue(p) != qGreen(p))
            QFAIL(qPrintable(QString("pixel %1,%2").arg(x).arg(y)));
          parallax += qRed(p) != qGreen(p);
        }
      QVERIFY(parallax > 100);
    };
    checkAnaglyph();
    f.click("cmdPlot");
    checkAnaglyph();

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
    QFile a(path), b(dir.filePath("parallel.dup"));
    QVERIFY(a.open(QIODevice::ReadOnly) && b.open(QIODevice::ReadOnly));
    QCOMPARE(a.readAll(), b.readAll());
    QVERIFY(!QFile::exists(dir.filePath("parallel.dup_anaglyph.bmp")));

    f.view(0);
    QCOMPARE(f.image(0), left);
    QVERIFY(f.find<PictureBox>("pic(1)")->isVisibleTo(f.form.get()));
    QCOMPARE(f.dialogs.beeps(), 3);
  }
};

QTEST_MAIN(StereoPlotTest)
#include "StereoPlotTest.moc"
