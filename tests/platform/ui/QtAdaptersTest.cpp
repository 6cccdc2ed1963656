// The platform's Qt adapters: the pixels the image canvas paints and the picture widget
// around it, the dialogs' parts that need no user (message boxes, clipboard, busy pointer;
// the help window: app/ui/StartupTest), a real document through the Qt printer page, and
// the text field's focus events and character filter on every way text comes in.

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <QVBoxLayout>
#include <QtTest>
#include <functional>

#include "platform/PrinterPage.h"
#include "platform/RecordingCanvas.h"
#include "platform/RuntimeError.h"
#include "platform/ui/PictureBox.h"
#include "platform/ui/QImageCanvas.h"
#include "platform/ui/QtDialogs.h"
#include "platform/ui/QtPrinterPage.h"
#include "platform/ui/TextBox.h"

using namespace orvane;

namespace {

QRgb rgbOf(Color c) { return QImageCanvas::toQColor(c).rgb(); }

bool isPdf(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) && file.read(5).startsWith("%PDF");
}

int countPixels(const QImage& image, Color c, int row = -1) {
  int n = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x) n += (row < 0 || y == row) && image.pixel(x, y) == rgbOf(c);
  return n;
}

// A window with two fields and two buttons that logs every event in order; the focus
// starts in txtA.
struct Form {
  QWidget window;
  TextBox* txtA = new TextBox("12.5", &window);
  TextBox* txtB = new TextBox("7", &window);
  QPushButton* cmdGo = new QPushButton("&Go", &window);
  QPushButton* cmdHelp = new QPushButton("Help", &window);
  QStringList log;
  bool refuseA = false;
  bool started = false;

  Form() {
    auto* layout = new QVBoxLayout(&window);
    for (QWidget* w : std::initializer_list<QWidget*>{txtA, txtB, cmdGo, cmdHelp}) layout->addWidget(w);
    TextBox::setCausesValidation(cmdHelp, false);
    QObject::connect(txtA, &TextBox::GotFocus, [this] { log << "A.GotFocus"; });
    QObject::connect(txtA, &TextBox::Validate, [this](bool& cancel) {
      log << "A.Validate";
      cancel = refuseA;
    });
    QObject::connect(txtA, &TextBox::LostFocus, [this] { log << "A.LostFocus"; });
    QObject::connect(txtB, &TextBox::GotFocus, [this] { log << "B.GotFocus"; });
    QObject::connect(cmdGo, &QPushButton::clicked, [this] { log << "Go.Click"; });
    QObject::connect(cmdHelp, &QPushButton::clicked, [this] { log << "Help.Click"; });
    window.show();
    window.activateWindow();
    started = QTest::qWaitForWindowActive(&window);
    txtA->setFocus(Qt::TabFocusReason);
    log.clear();
    started = started && txtA->hasFocus();
  }
};

}  // namespace

class QtAdaptersTest : public QObject {
  Q_OBJECT

 private slots:
  void userCornersLandOnTheCornerPixels() {
    QCOMPARE(QImageCanvas::toQColor(0xA0A0FF), QColor(255, 0xA0, 0xA0));  // red in the low byte
    QImageCanvas canvas(100, 50, 96);
    canvas.Scale(-5, 5, 5, -5);  // y grows upward
    canvas.PSet(-5, 5, colors::Red);
    canvas.PSet(5 - 0.1f, -5 + 0.2f, colors::Blue);  // one pixel in from the far corner
    canvas.PSet(0, 0, colors::Green);
    const QImage& image = canvas.image();
    QCOMPARE(image.pixel(0, 0), rgbOf(colors::Red));
    QCOMPARE(image.pixel(99, 49), rgbOf(colors::Blue));
    QCOMPARE(image.pixel(50, 25), rgbOf(colors::Green));
    QCOMPARE(countPixels(image, colors::White), 100 * 50 - 3);
    // The far corner itself, and a sliver inside it (a frame one twip in), are on the
    // last pixel too: the whole scale is on the picture.
    for (const float inset : {0.0f, 0.0067f}) {
      canvas.PSet(5 - inset, -5 + inset, colors::Magenta);
      QCOMPARE(image.pixel(99, 49), rgbOf(colors::Magenta));
      canvas.PSet(5 - 0.1f, -5 + 0.2f, colors::Blue);
    }
  }

  void linesBoxesAndCircles() {
    QImageCanvas canvas(100, 100, 96);
    canvas.Scale(0, 0, 100, 100);
    canvas.SetDrawStyle(DrawStyle::Dot);
    canvas.Line(0, 5, 99, 5, colors::Black);
    const int dotted = countPixels(canvas.image(), colors::Black, 5);
    QVERIFY2(dotted > 20 && dotted < 80, qPrintable(QString::number(dotted)));
    canvas.SetDrawStyle(DrawStyle::Solid);
    canvas.Line(0, 7, 99, 7, colors::Black);
    QCOMPARE(countPixels(canvas.image(), colors::Black, 7), 100);

    canvas.Line(2, 12, 8, 18, colors::Red, LineKind::Box);
    canvas.Line(10, 20, 14, 24, colors::Blue, LineKind::FilledBox);
    QCOMPARE(canvas.image().pixel(8, 18), rgbOf(colors::Red));
    QCOMPARE(canvas.image().pixel(5, 15), rgbOf(colors::White));  // only the outline
    QCOMPARE(countPixels(canvas.image(), colors::Blue), 25);  // both corners included

    canvas.SetFillStyle(FillStyle::Solid);
    canvas.SetFillColor(colors::Magenta);
    canvas.Circle(50, 50, 10, colors::Blue);
    QCOMPARE(canvas.image().pixel(50, 50), rgbOf(colors::Magenta));
    QCOMPARE(canvas.image().pixel(50, 40), rgbOf(colors::Blue));
    canvas.SetFillStyle(FillStyle::Transparent);
    canvas.Circle(80, 80, 5, colors::Red);
    QCOMPARE(canvas.image().pixel(80, 80), rgbOf(colors::White));  // hollow
  }

  void drawingOutsideIsClipped() {
    QImageCanvas canvas(40, 30, 96);
    canvas.Scale(0, 0, 40, 30);
    const QImage before = canvas.image().copy();
    canvas.Line(-1e30f, -5, -10, -5, colors::Red);
    canvas.Line(50, 40, 1e30f, 1e30f, colors::Red);
    canvas.PSet(-1, 10, colors::Red);
    canvas.PSet(40.5f, 10, colors::Red);  // half a pixel beyond the far edge
    canvas.Circle(1e20f, 1e20f, 5, colors::Red);
    canvas.Circle(1e25f, 0, 1e30f, colors::Red);  // its outline passes far away
    canvas.Line(-1e30f, -1e30f, 1e30f, -1e30f, colors::Red, LineKind::FilledBox);
    canvas.Line(45, 0, 1e30f, 30, colors::Red, LineKind::FilledBox);  // wholly right of it
    canvas.SetCurrentX(1e30f);
    canvas.Print("far away");
    QCOMPARE(canvas.image(), before);
    canvas.Line(-1e6f, 15, 1e6f, 15, colors::Red);  // crossing from far outside: drawn where it crosses
    QCOMPARE(countPixels(canvas.image(), colors::Red, 15), 40);
  }

  void textIsWrittenInForeColorBelowTheCurrentPoint() {
    QImageCanvas canvas(120, 40, 96);
    canvas.Scale(0, 0, 120, 40);
    canvas.SetPixelFont("verdana", -20, -16);
    canvas.SetForeColor(0xC0C000);
    canvas.SetCurrentX(10);
    canvas.SetCurrentY(5);
    canvas.Print("88", false);
    QVERIFY(countPixels(canvas.image(), 0xC0C000) > 10);
    QVERIFY(canvas.CurrentX() > 10);
    QCOMPARE(canvas.CurrentY(), 5.0f);
    QCOMPARE(countPixels(canvas.image().copy(0, 0, 120, 5), colors::White), 120 * 5);  // nothing above
    QVERIFY(canvas.TextHeight("8") > 10);
  }

  void savedBitmapReadsBackAndResizeKeepsState() {
    QTemporaryDir dir;
    QImageCanvas canvas(30, 20, 96);
    canvas.SetBackColor(colors::Yellow);
    canvas.Scale(0, 0, 30, 20);
    canvas.PSet(3, 4, colors::Blue);
    const QString path = dir.filePath("plot.bmp");
    QVERIFY(canvas.SavePicture(path.toStdString()));
    QCOMPARE(QImage(path, "BMP"), canvas.image().convertToFormat(QImage(path, "BMP").format()));
    QVERIFY(!canvas.SavePicture(dir.filePath("no/such/folder/x.bmp").toStdString()));

    canvas.SetForeColor(colors::Red);
    canvas.resize(20, 5);
    QCOMPARE(std::tuple(canvas.pixelWidth(), canvas.ScaleWidth(), canvas.ForeColor()),
             std::tuple(20, 30.0f, colors::Red));
    QCOMPARE(canvas.image().pixel(3, 4), rgbOf(colors::Yellow));  // cleared (kept: the picture box's resize)
  }

  void pictureBoxReportsUserCoordinatesAndFollowsItsSize() {
    PictureBox box(nullptr, 200, 100);
    box.resize(200, 100);
    box.show();
    QVERIFY(QTest::qWaitForWindowExposed(&box));
    box.canvas().Scale(-10, 10, 10, -10);
    QSignalSpy down(&box, &PictureBox::MouseDown);
    QTest::mouseClick(&box, Qt::LeftButton, {}, QPoint(150, 25));
    QCOMPARE(down.count(), 1);
    QCOMPARE(down[0][0].value<Qt::MouseButton>(), Qt::LeftButton);
    QCOMPARE(std::pair(down[0][1].toFloat(), down[0][2].toFloat()), std::pair(5.0f, 5.0f));

    box.canvas().PSet(-10, 10, colors::Red);
    QSignalSpy resized(&box, &PictureBox::Resized);
    box.resize(300, 120);
    QCOMPARE(std::pair(resized.count(), box.canvas().pixelWidth()), std::pair(qsizetype{1}, 300));
    QCOMPARE(box.grab().toImage().pixel(0, 0), rgbOf(colors::Red));  // kept and shown
    box.setFixedCanvasSize(400, 400);
    box.resize(100, 100);
    QCOMPARE(box.canvas().pixelWidth(), 400);
  }

  void messageBoxesMapStylesAndAnswers() {
    const int yes = QMessageBox::Yes, no = QMessageBox::No, cancel = QMessageBox::Cancel, ok = QMessageBox::Ok;
    const int retry = QMessageBox::Retry, abort = QMessageBox::Abort, ignore = QMessageBox::Ignore;
    // A style, the box the user sees, the button pressed (-1: Escape, which answers Cancel) and
    // what MsgBox gives.
    const struct { int style, buttons, icon, press, answer; } rows[] = {
        {35, yes | no | cancel, QMessageBox::Question, no, mb::No}, {36, yes | no, QMessageBox::Question, yes, mb::Yes},
        {64, ok, QMessageBox::Information, ok, mb::OK}, {49, ok | cancel, QMessageBox::Warning, cancel, mb::Cancel},
        {50, abort | retry | ignore, QMessageBox::Warning, retry, 4},
        {21, retry | cancel, QMessageBox::Critical, -1, mb::Cancel}};
    for (const auto& [style, buttons, icon, press, answer] : rows) {
      QtDialogs dialogs(nullptr);
      int seenButtons = -1, seenIcon = -1;
      QString seenText;
      QTimer::singleShot(0, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (box == nullptr) return;
        seenButtons = int(box->standardButtons());
        seenIcon = int(box->icon());
        seenText = box->text();
        if (press < 0)
          QTest::keyClick(box, Qt::Key_Escape);
        else
          box->button(QMessageBox::StandardButton(press))->click();
      });
      QCOMPARE(dialogs.MsgBox("first\rsecond\r\rc\r\nd", style, "Title"), answer);
      QCOMPARE(std::pair(seenButtons, seenIcon), std::pair(buttons, icon));
      QCOMPARE(seenText, QString("first\nsecond\n\nc\nd"));  // each separator one line break
    }
  }

  // A box or dialog belongs to the window the user works in, so it opens over it; closed,
  // it answers nothing.
  void dialogsOpenOverTheActiveWindow() {
    QWidget first, second;
    for (QWidget* window : {&first, &second}) window->resize(320, 200);
    first.show();
    second.show();
    QtDialogs dialogs(&first);  // the window given serves only when none is active
    const std::function<void()> opens[] = {
        [&] { dialogs.MsgBox("Overflow"); },
        [&] { QCOMPARE(dialogs.InputBox("How many additional data sets?", "Add data"), std::nullopt); },
        [&] { QCOMPARE(dialogs.OpenFileName("Open", "All files (*)"), std::nullopt); },
        [&] { QCOMPARE(dialogs.SaveFileName("Save As", "All files (*)"), std::nullopt); },
        [&] { QVERIFY(dialogs.OpenPrinter("Report") == nullptr); },
    };
    for (const std::function<void()>& open : opens) {
      second.activateWindow();
      QVERIFY(QTest::qWaitForWindowActive(&second));
      const QWidget* owner = nullptr;
      QTimer::singleShot(0, [&] {
        if (QWidget* dialog = QApplication::activeModalWidget()) {
          owner = dialog->parentWidget();
          dialog->close();
        }
      });
      open();
      QCOMPARE(owner, &second);
    }
  }

  void copyPutsTheWholePictureOrTheTextOnTheClipboard() {
    QtDialogs dialogs(nullptr);
    QImageCanvas picture(64, 48, 96);
    picture.Scale(0, 1, 1, 0);  // a user scale does not narrow the copy
    picture.PSet(0, 1, colors::Red);
    dialogs.CopyPicture(picture);
    const QImage copied = QGuiApplication::clipboard()->image();
    QCOMPARE(copied.size(), QSize(64, 48));
    QCOMPARE(copied.pixel(0, 0), QColor(Qt::red).rgb());

    RecordingCanvas noPixels;
    dialogs.CopyPicture(noPixels);  // nothing to copy, nothing changes
    QCOMPARE(QGuiApplication::clipboard()->image().size(), QSize(64, 48));
    dialogs.CopyText("Coefficients:\n\u00e9");
    QCOMPARE(QGuiApplication::clipboard()->text(), QString::fromUtf8("Coefficients:\n\u00e9"));
  }

  void busyPointerIsBalanced() {
    {
      QtDialogs dialogs(nullptr);
      dialogs.SetBusy(true);
      dialogs.SetBusy(true);
      QVERIFY(QApplication::overrideCursor() && QApplication::overrideCursor()->shape() == Qt::WaitCursor);
      dialogs.SetBusy(false);  // once is enough, and once more does no harm
      dialogs.SetBusy(false);
      QVERIFY(QApplication::overrideCursor() == nullptr);
      dialogs.SetBusy(true);
    }  // left busy: the dialogs restore the pointer when they go
    QVERIFY(QApplication::overrideCursor() == nullptr);
  }

  void writesAPdfEndedOrNotElseGivesAPrinterError() {
    QTemporaryDir dir;
    const QString path = dir.filePath("report.pdf");
    {
      QtPrinterPage page(path.toStdString(), "Report");
      QImageCanvas picture(200, 150, 96);
      picture.Line(0, 0, 3000, 2250, colors::Red);
      page.PaintPicture(picture, 0, 0, 4320, 3240);
      RecordingCanvas notAnImage;
      page.PaintPicture(notAnImage, 0, 0, 1000, 1000);  // has no pixels: ignored
      page.SetCurrentY(4500);
      page.Write("DATA:");
      page.Tab(34);
      page.Write("ESTIMATE:");
      page.NewLine();
      QVERIFY(page.CurrentY() > 4500.0);
      QVERIFY(page.CurrentY() < 4500.0 + 720);  // a 10-point line, not an inch
      QCOMPARE(page.pagesStarted(), 1);
      for (int i = 0; i < 200; ++i) page.PrintLine("SET # " + std::to_string(i) + " :");
      QVERIFY(page.pagesStarted() >= 2);
      page.EndDoc();
    }
    QVERIFY(isPdf(path));
    QtPrinterPage(dir.filePath("unended.pdf").toStdString()).PrintLine("text");  // nobody ended it: still goes out
    QVERIFY(isPdf(dir.filePath("unended.pdf")));
    QtPrinterPage unwritable("/nonexistent-folder/x/report.pdf");  // a printer error
    QVERIFY_THROWS_EXCEPTION(RuntimeError, unwritable.PrintLine("text"));
  }

  // The text field: focus events in order, Validate before the focus moves, the filter.
  void refusedValidateKeepsTheFocus_data() {
    QTest::addColumn<QString>("route");
    for (const char* route : {"tab", "program", "click on a field", "button", "button via window", "mnemonic"})
      QTest::newRow(route) << route;
  }
  void refusedValidateKeepsTheFocus() {
    QFETCH(QString, route);
    Form form;
    QVERIFY(form.started);
    QCOMPARE(form.txtA->selectedText(), QString("12.5"));  // entering selects the whole text
    auto leave = [&] {
      if (route == "tab") {
        QTest::keyClick(form.txtA, Qt::Key_Tab);
      } else if (route == "program") {
        form.txtB->setFocus();
      } else if (route == "click on a field") {
        QTest::mouseClick(form.txtB, Qt::LeftButton);
      } else if (route == "button") {
        QTest::mouseClick(form.cmdGo, Qt::LeftButton);
      } else if (route == "button via window") {
        QTest::mouseClick(form.window.windowHandle(), Qt::LeftButton, {},
                          form.cmdGo->mapTo(&form.window, form.cmdGo->rect().center()));
      } else {
        QTest::keyClick(form.txtA, Qt::Key_G, Qt::AltModifier);
        QTest::qWait(300);  // a mnemonic clicks after a short animation
      }
    };
    form.refuseA = true;
    leave();
    QVERIFY(form.txtA->hasFocus());
    QCOMPARE(form.log, QStringList({"A.Validate"}));
    QCOMPARE(form.txtA->text(), QString("12.5"));

    form.refuseA = false;  // the next, unrelated attempt is not swallowed
    leave();
    const QString next = route.contains("button") || route == "mnemonic" ? "Go.Click" : "B.GotFocus";
    QTRY_COMPARE_WITH_TIMEOUT(form.log.join(" "), "A.Validate A.Validate A.LostFocus " + next, 1000);
    if (form.txtB->hasFocus()) QCOMPARE(form.txtB->selectedText(), QString("7"));  // a click places no cursor
  }

  void buttonsThatDoNotValidateAreClickedAtOnce() {
    Form form;
    QVERIFY(form.started);
    form.refuseA = true;
    QTest::mouseClick(form.cmdHelp, Qt::LeftButton);
    QCOMPARE(form.log, QStringList({"A.LostFocus", "Help.Click"}));
  }

  void filteredCharactersStayOutHoweverTheyCome() {
    QStringList routes{"typed", "Ctrl+V", "dropped", "input method", "set by the program"};
    // Only a window system has a selection to paste (the run under xvfb-run).
    if (QGuiApplication::clipboard()->supportsSelection()) routes << "middle click";
    for (const QString& route : routes) {
      Form form;
      QVERIFY(form.started);
      form.txtA->setCharacterFilter([](char16_t c) { return c >= '0' && c <= '9'; });
      form.txtA->clear();
      const QString text = QStringLiteral("5abc1\u00e92");
      QGuiApplication::clipboard()->setText(text);
      if (route == "typed") {
        for (const QChar c : text) QTest::sendKeyEvent(QTest::Click, form.txtA, Qt::Key_unknown, QString(c), {});
      } else if (route == "Ctrl+V") {
        QTest::keyClick(form.txtA, Qt::Key_V, Qt::ControlModifier);
      } else if (route == "middle click") {
        QGuiApplication::clipboard()->setText(text, QClipboard::Selection);
        QTest::mouseClick(form.txtA, Qt::MiddleButton);
      } else if (route == "dropped") {
        QMimeData dragged;
        dragged.setText(text);
        const QPoint at = form.txtA->rect().center();
        QDragEnterEvent enter(at, Qt::CopyAction, &dragged, Qt::LeftButton, {});
        QCoreApplication::sendEvent(form.txtA, &enter);
        QDropEvent drop(QPointF(at), Qt::CopyAction, &dragged, Qt::LeftButton, {});
        QCoreApplication::sendEvent(form.txtA, &drop);
      } else if (route == "input method") {
        QInputMethodEvent commit;
        commit.setCommitString(text);
        QCoreApplication::sendEvent(form.txtA, &commit);
      } else {
        form.txtA->setText(text);
      }
      QVERIFY2(form.txtA->text() == "512", qPrintable(route + ": " + form.txtA->text()));
    }
  }

  void keyPressCanDiscardOrChangeKeys() {
    Form form;
    QVERIFY(form.started);
    int enters = 0;
    QObject::connect(form.txtA, &TextBox::KeyPress, [&](int& key) {
      if (key == 13) ++enters;
      if (key >= 'a' && key <= 'z') key = 0;  // letters are discarded
      if (key == ',') key = '.';
    });
    form.txtA->clear();
    QTest::keyClicks(form.txtA, "1a,5x");
    QTest::keyClick(form.txtA, Qt::Key_Return);
    QCOMPARE(std::pair(form.txtA->text(), enters), std::pair(QString("1.5"), 1));
  }
};

QTEST_MAIN(QtAdaptersTest)
#include "QtAdaptersTest.moc"
