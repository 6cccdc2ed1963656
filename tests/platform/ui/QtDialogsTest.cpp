// The Qt dialogs' parts that need no user (message boxes, help window, clipboard, busy
// pointer) and a real document through the Qt printer page, written as a PDF file.

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QMessageBox>
#include <QTimer>
#include <QTemporaryDir>
#include <QTextBrowser>
#include <QtTest>

#include "platform/PrinterPage.h"
#include "platform/RecordingCanvas.h"
#include "platform/RuntimeError.h"
#include "platform/ui/QImageCanvas.h"
#include "platform/ui/QtDialogs.h"
#include "platform/ui/QtPrinterPage.h"

using namespace orvane;

namespace {

// A message box as the user sees it, the answer pressed (-1: Escape) and what MsgBox gives.
struct BoxCase {
  int style, buttons, icon, press, answer;
};

}  // namespace

Q_DECLARE_METATYPE(BoxCase)

class QtDialogsTest : public QObject {
  Q_OBJECT

 private slots:
  void messageBoxesMapStylesAndAnswers_data() {
    QTest::addColumn<BoxCase>("c");
    const int yes = QMessageBox::Yes, no = QMessageBox::No, cancel = QMessageBox::Cancel, ok = QMessageBox::Ok;
    const int retry = QMessageBox::Retry, abort = QMessageBox::Abort, ignore = QMessageBox::Ignore;
    QTest::newRow("decimal comma warning") << BoxCase{19, yes | no | cancel, QMessageBox::Critical, no, mb::No};
    QTest::newRow("ok only") << BoxCase{64, ok, QMessageBox::Information, ok, mb::OK};
    QTest::newRow("ok cancel") << BoxCase{49, ok | cancel, QMessageBox::Warning, cancel, mb::Cancel};
    QTest::newRow("yes no") << BoxCase{36, yes | no, QMessageBox::Question, yes, mb::Yes};
    // Escape answers the box's Cancel.
    QTest::newRow("Esc on yes no cancel") << BoxCase{35, yes | no | cancel, QMessageBox::Question, -1, mb::Cancel};
    QTest::newRow("Esc on retry cancel") << BoxCase{21, retry | cancel, QMessageBox::Critical, -1, mb::Cancel};
    QTest::newRow("abort retry ignore") << BoxCase{50, abort | retry | ignore, QMessageBox::Warning, retry, 4};
  }
  void messageBoxesMapStylesAndAnswers() {
    QFETCH(BoxCase, c);
    const auto [style, buttons, icon, press, answer] = c;
    QtDialogs dialogs(nullptr);
    int seenButtons = -1, seenIcon = -1;
    QString seenText, seenTitle;
    QTimer::singleShot(0, [&] {
      auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
      if (box == nullptr) return;
      seenButtons = int(box->standardButtons());
      seenIcon = int(box->icon());
      seenText = box->text();
      seenTitle = box->windowTitle();
      if (press < 0)
        QTest::keyClick(box, Qt::Key_Escape);
      else
        box->button(QMessageBox::StandardButton(press))->click();
    });
    QCOMPARE(dialogs.MsgBox("first\rsecond\r\rc\r\nd", style, "Title"), answer);
    QCOMPARE(seenButtons, buttons);
    QCOMPARE(seenIcon, icon);
    QCOMPARE(seenText, QString("first\nsecond\n\nc\nd"));  // each separator one line break
    QCOMPARE(seenTitle, QString("Title"));
  }

  // A box or dialog belongs to the window the user works in, so it opens over it; closed,
  // it answers nothing.
  void dialogsOpenOverTheActiveWindow_data() {
    QTest::addColumn<QString>("dialog");
    for (const char* dialog : {"message box", "input box", "open dialog", "save dialog", "print dialog"})
      QTest::newRow(dialog) << dialog;
  }
  void dialogsOpenOverTheActiveWindow() {
    QFETCH(QString, dialog);
    QWidget first, second;
    for (QWidget* window : {&first, &second}) window->resize(320, 200);
    first.show();
    second.show();
    second.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&second));
    QtDialogs dialogs(&first);  // the window given serves only when none is active
    const QWidget* owner = nullptr;
    QTimer::singleShot(0, [&] {
      if (QWidget* open = QApplication::activeModalWidget()) {
        owner = open->parentWidget();
        open->close();
      }
    });
    if (dialog == "message box")
      dialogs.MsgBox("Overflow");
    else if (dialog == "input box")
      QCOMPARE(dialogs.InputBox("How many additional data sets?", "Add data"), std::nullopt);
    else if (dialog == "open dialog")
      QCOMPARE(dialogs.OpenFileName("Open", "All files (*)"), std::nullopt);
    else if (dialog == "save dialog")
      QCOMPARE(dialogs.SaveFileName("Save As", "All files (*)"), std::nullopt);
    else
      QVERIFY(dialogs.OpenPrinter("Report") == nullptr);
    QCOMPARE(owner, &second);
  }

  void helpWindowShowsTheDocumentAndIsReused() {
    QTemporaryDir dir;
    QFile file(dir.filePath("orvane.hlp"));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("<html><body><h1>Regression</h1></body></html>") > 0);
    file.close();

    QtDialogs dialogs(nullptr);
    QVERIFY(!dialogs.ShowHelp(dir.filePath("missing.hlp").toStdString()));
    QVERIFY(!dialogs.ShowHelp(dir.path().toStdString()));
    QVERIFY(dialogs.ShowHelp(file.fileName().toStdString()));
    QVERIFY(dialogs.ShowHelp(file.fileName().toStdString()));

    QList<QWidget*> windows;
    for (QWidget* w : QApplication::topLevelWidgets())
      if (w->objectName() == "helpWindow") windows << w;
    QCOMPARE(windows.size(), 1);
    QCOMPARE(windows[0]->windowTitle(), QString("orvane.hlp"));
    QVERIFY(windows[0]->isVisible());
    auto* browser = windows[0]->findChild<QTextBrowser*>("helpBrowser");
    QVERIFY(browser && browser->toPlainText().contains("Regression"));
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
      dialogs.SetBusy(false);
      QVERIFY(QApplication::overrideCursor() == nullptr);
      dialogs.SetBusy(false);
      dialogs.SetBusy(true);
    }  // left busy: the dialogs restore the pointer when they go
    QVERIFY(QApplication::overrideCursor() == nullptr);
  }

  void writesAPdfWithTextTabsAPictureAndPages() {
    QTemporaryDir dir;
    const QString path = dir.filePath("report.pdf");
    {
      QtPrinterPage page(path.toStdString(), "Report");
      QCOMPARE(page.FontName(), std::string("Courier New"));
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
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.size() > 0);
    QVERIFY(file.read(5).startsWith("%PDF"));
  }

  void aDocumentNobodyEndedStillGoesOut() {
    QTemporaryDir dir;
    const QString path = dir.filePath("unended.pdf");
    QtPrinterPage(path.toStdString()).PrintLine("text");
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly) && file.read(5).startsWith("%PDF"));
  }

  void unwritableFileIsAPrinterError() {
    QtPrinterPage page("/nonexistent-folder/x/report.pdf");
    try {
      page.PrintLine("text");
      page.EndDoc();
      QFAIL("no error");
    } catch (const RuntimeError& e) {
      QCOMPARE(e.number(), 482);
    }
  }
};

QTEST_MAIN(QtDialogsTest)
#include "QtDialogsTest.moc"
