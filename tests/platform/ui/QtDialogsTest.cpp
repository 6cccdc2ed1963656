// The Qt dialogs' parts that need no user: help window, clipboard, busy pointer.

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
#include "platform/ui/QImageCanvas.h"
#include "platform/ui/QtDialogs.h"

using namespace orvane;

class QtDialogsTest : public QObject {
  Q_OBJECT

 private slots:
  void messageBoxesMapStylesAndAnswers_data() {
    QTest::addColumn<int>("style");
    QTest::addColumn<int>("buttons");
    QTest::addColumn<int>("icon");
    QTest::addColumn<int>("press");
    QTest::addColumn<int>("answer");
    const int yes = QMessageBox::Yes, no = QMessageBox::No, cancel = QMessageBox::Cancel, ok = QMessageBox::Ok;
    QTest::newRow("decimal comma warning") << 19 << (yes | no | cancel) << int(QMessageBox::Critical) << no << mb::No;
    QTest::newRow("ok only") << 64 << ok << int(QMessageBox::Information) << ok << mb::OK;
    QTest::newRow("ok cancel") << 49 << (ok | cancel) << int(QMessageBox::Warning) << cancel << mb::Cancel;
    QTest::newRow("yes no") << 36 << (yes | no) << int(QMessageBox::Question) << yes << mb::Yes;
    // Escape (-1) answers the box's Cancel.
    QTest::newRow("Esc on yes no cancel") << 35 << (yes | no | cancel) << int(QMessageBox::Question) << -1
                                          << mb::Cancel;
    QTest::newRow("Esc on retry cancel") << 21 << (int(QMessageBox::Retry) | cancel) << int(QMessageBox::Critical) << -1
                                         << mb::Cancel;
    QTest::newRow("abort retry ignore") << 50 << int(QMessageBox::Abort | QMessageBox::Retry | QMessageBox::Ignore)
                                        << int(QMessageBox::Warning) << int(QMessageBox::Retry) << 4;
  }
  void messageBoxesMapStylesAndAnswers() {
    QFETCH(int, style);
    QFETCH(int, buttons);
    QFETCH(int, icon);
    QFETCH(int, press);
    QFETCH(int, answer);
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
};

QTEST_MAIN(QtDialogsTest)
#include "QtDialogsTest.moc"
