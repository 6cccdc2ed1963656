// The running shell: the About box, the Help entry and every way out of the program.

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTextBrowser>
#include <QtTest>

#include "app/HelpFolders.h"
#include "app/SubMain.h"
#include "app/frmAbout.h"
#include "platform/ScriptedDialogs.h"
#include "platform/ui/QtDialogs.h"
#include "regression/ui/frmOrvane.h"

namespace orvane {
namespace {

// A started program whose clock has always just passed the splash's wait.
struct Started {
  ScriptedDialogs dialogs;
  SubMain subMain;
  explicit Started(const std::string& separator = ".")
      : subMain(dialogs, [now = 1000.0]() mutable { return now += 1.0; }, [separator] { return separator; }) {}
  frmOrvane* window() { return subMain.mainWindow(); }
  QAction* action(const char* name) { return window()->findChild<QAction*>(name); }
  void openAbout() {  // the About entry shows once a problem is set up; here it is shown directly
    action("mnuAbout")->setVisible(true);
    action("mnuAbout")->trigger();
  }
  // Starts with `folder` as the current one, as when the program is started from there,
  // and puts the test's own current folder back.
  bool startIn(const QString& folder) {
    const QString old = QDir::currentPath();
    QDir::setCurrent(folder);
    const bool started = subMain.Start();
    QDir::setCurrent(old);
    return started;
  }
};

void writeFile(const QString& path, const char* text) {
  QFile file(path);
  if (file.open(QIODevice::WriteOnly)) file.write(text);
}

// The desktop's own dialogs, with message boxes recorded instead of shown.
struct HelpDialogs : QtDialogs {
  HelpDialogs() : QtDialogs(nullptr) {}
  QStringList messages;
  int MsgBox(std::string_view prompt, int, std::string_view) override {
    messages << QString::fromUtf8(prompt.data(), qsizetype(prompt.size()));
    return mb::OK;
  }
};

int visibleWindows() {
  int count = 0;
  for (QWidget* window : QApplication::topLevelWidgets()) count += window->isVisible();
  return count;
}

}  // namespace

class ShellTest : public QObject {
  Q_OBJECT

 private slots:
  void aboutAppendsUntilClosed() {
    Started p;
    QVERIFY(p.subMain.Start());
    p.openAbout();  // the splash's lines went with the splash
    QVERIFY(p.subMain.about()->isVisible());
    QCOMPARE(p.subMain.about()->printedLines(), frmAbout::splashLines());
    p.openAbout();
    QCOMPARE(p.subMain.about()->printedLines(), frmAbout::splashLines() + frmAbout::splashLines());

    QTest::mouseClick(p.subMain.about(), Qt::LeftButton, {}, QPoint(20, 20));
    QVERIFY(!p.subMain.about()->isVisible());
    QVERIFY(p.window()->isVisible());
    QCOMPARE(p.subMain.decimalPoint().restoreCount(), 0);
    p.openAbout();
    QCOMPARE(p.subMain.about()->printedLines().size(), 10);
  }

  // Help is orvane.hlp in the folder that was current when the main window loaded,
  // whatever the current folder is later; a decoy elsewhere must not be found.
  void helpLooksInTheStartDirectory_data() {
    QTest::addColumn<bool>("fileThere");
    QTest::addColumn<bool>("moveAway");
    QTest::newRow("missing file") << false << false;
    QTest::newRow("file shown") << true << false;
    QTest::newRow("missing file, folder changed since") << false << true;
    QTest::newRow("file shown, folder changed since") << true << true;
  }
  void helpLooksInTheStartDirectory() {
    QFETCH(bool, fileThere);
    QFETCH(bool, moveAway);
    QTemporaryDir startDir, otherDir;
    const QString expected = QDir(QFileInfo(startDir.path()).canonicalFilePath()).filePath("orvane.hlp");
    if (fileThere) writeFile(expected, "<html><body><h1>Help</h1></body></html>");
    writeFile(QDir(otherDir.path()).filePath("orvane.hlp"), "<html><body>decoy</body></html>");

    Started p;
    QVERIFY(p.startIn(startDir.path()));
    const QString old = QDir::currentPath();
    QDir::setCurrent(moveAway ? otherDir.path() : startDir.path());
    p.action("mnuHelp")->trigger();
    QDir::setCurrent(old);
    QCOMPARE(p.dialogs.helpRequests().size(), size_t{1});
    QCOMPARE(QString::fromStdString(p.dialogs.helpRequests()[0]), expected);
    QCOMPARE(p.dialogs.messages().size(), size_t(fileThere ? 0 : 1));
    if (!fileThere) {
      const QString prompt = QString::fromStdString(p.dialogs.messages()[0].prompt);
      QVERIFY2(prompt.startsWith("Cannot find the help file") && prompt.contains(expected), qPrintable(prompt));
    }
    QVERIFY(p.window()->isVisible());
  }

  // Started from "/", where no help document is: the help window shows the installed
  // document beside the program when there is one, else the source tree's.
  void helpOpensWhenStartedFromRoot_data() {
    QTest::addColumn<bool>("installed");
    QTest::newRow("built") << false;
    QTest::newRow("installed") << true;
  }
  void helpOpensWhenStartedFromRoot() {
    QFETCH(bool, installed);
    QTemporaryDir prefix;
    QDir(prefix.path()).mkpath("bin");
    QDir(prefix.path()).mkpath("share/orvane/help");
    if (installed)
      writeFile(prefix.filePath("share/orvane/help/orvane.hlp"), "<html><body>Installed help</body></html>");
    const QString program = installed ? prefix.filePath("bin") : QCoreApplication::applicationDirPath();
    const QString old = QDir::currentPath();
    QDir::setCurrent("/");

    HelpDialogs dialogs;
    dialogs.setHelpFolders(HelpFolders(program));
    SubMain subMain(dialogs, [now = 1000.0]() mutable { return now += 1.0; }, [] { return std::string("."); });
    const bool started = subMain.Start();
    if (started) subMain.mainWindow()->findChild<QAction*>("mnuHelp")->trigger();
    QDir::setCurrent(old);
    QVERIFY(started);
    QCOMPARE(dialogs.messages, QStringList());
    QTextBrowser* browser = nullptr;
    for (QWidget* window : QApplication::topLevelWidgets())
      if (window->objectName() == "helpWindow" && window->isVisible()) browser = window->findChild<QTextBrowser*>();
    QVERIFY(browser);
    QVERIFY(browser->toPlainText().startsWith(installed ? "Installed help" : "Orvane Regression"));
    browser->window()->close();
  }

  void exitRestoresOnceAndClosesEverything_data() {
    QTest::addColumn<bool>("byButton");
    QTest::addColumn<bool>("aboutOpen");
    QTest::addColumn<QString>("separator");
    QTest::newRow("Exit button, About open") << true << true << ",";
    QTest::newRow("close box, About open") << false << true << ",";
    QTest::newRow("Exit button") << true << false << ".";
    QTest::newRow("close box") << false << false << ".";
  }
  void exitRestoresOnceAndClosesEverything() {
    QFETCH(bool, byButton);
    QFETCH(bool, aboutOpen);
    QFETCH(QString, separator);
    Started p(separator.toStdString());
    QVERIFY(p.subMain.Start());
    if (aboutOpen) p.openAbout();
    QWidget other(nullptr, Qt::Window);  // stands for a plot or editor window left open
    other.show();
    QCOMPARE(visibleWindows(), aboutOpen ? 3 : 2);

    if (byButton) {
      auto* exitButton = p.window()->findChild<QAbstractButton*>("cmdExit");
      QVERIFY(exitButton);
      QCOMPARE(exitButton->text(), QString("E&xit"));
      QTest::mouseClick(exitButton, Qt::LeftButton);
    } else {
      p.window()->close();
    }
    QCOMPARE(p.subMain.decimalPoint().restoreCount(), 1);
    QCOMPARE(p.subMain.decimalPoint().savedSeparator(), separator.toStdString());
    QCOMPARE(visibleWindows(), 0);
    QVERIFY(p.subMain.about()->printedLines().isEmpty());
    p.window()->close();  // a second unload (the close box after Exit) restores nothing more
    QCOMPARE(p.subMain.decimalPoint().restoreCount(), 1);
  }
};

}  // namespace orvane

QTEST_MAIN(orvane::ShellTest)
#include "ShellTest.moc"
