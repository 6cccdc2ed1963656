// The running shell: the About box, the Help entry and every way out of the program.

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>
#include <memory>

#include "app/SubMain.h"
#include "app/frmAbout.h"
#include "platform/ScriptedDialogs.h"
#include "regression/ui/frmOrvane.h"

namespace orvane {
namespace {

// A clock that has always just passed the splash's wait: each reading is a second on.
SubMain::Clock steppingClock() {
  return [now = 1000.0]() mutable { return now += 1.0; };
}

DecimalPoint::SeparatorSource separatorOf(std::string separator) {
  return [separator] { return separator; };
}

// Keeps the test's working directory for the life of the object.
class CurrentDir {
 public:
  explicit CurrentDir(const QString& path) : old_(QDir::currentPath()) { QDir::setCurrent(path); }
  ~CurrentDir() { QDir::setCurrent(old_); }

 private:
  QString old_;
};

QAction* action(QWidget* window, const char* name) {
  auto* found = window->findChild<QAction*>(name);
  if (!found) qFatal("no action named %s", name);
  return found;
}

// The About entry shows once a problem is set up; here it is shown directly.
void openAbout(frmOrvane* window) {
  QAction* about = action(window, "mnuAbout");
  about->setVisible(true);
  about->trigger();
}

int visibleWindows() {
  int count = 0;
  for (QWidget* window : QApplication::topLevelWidgets()) count += window->isVisible();
  return count;
}

}  // namespace

class ShellTest : public QObject {
  Q_OBJECT

 private slots:
  void aboutAppendsUntilClosed();
  void helpLooksInTheStartDirectory_data();
  void helpLooksInTheStartDirectory();
  void exitRestoresOnceAndClosesEverything_data();
  void exitRestoresOnceAndClosesEverything();
};

void ShellTest::aboutAppendsUntilClosed() {
  ScriptedDialogs dialogs;
  SubMain subMain(dialogs, steppingClock(), separatorOf("."));
  QVERIFY(subMain.Start());
  frmOrvane* window = subMain.mainWindow();

  // The splash's lines went with the splash.
  openAbout(window);
  QVERIFY(subMain.about()->isVisible());
  QCOMPARE(subMain.about()->printedLines(), frmAbout::splashLines());

  openAbout(window);
  QCOMPARE(subMain.about()->printedLines(), frmAbout::splashLines() + frmAbout::splashLines());

  QTest::mouseClick(subMain.about(), Qt::LeftButton, {}, QPoint(20, 20));
  QVERIFY(!subMain.about()->isVisible());
  QVERIFY(window->isVisible());
  QCOMPARE(subMain.decimalPoint().restoreCount(), 0);

  openAbout(window);
  QVERIFY(subMain.about()->isVisible());
  QCOMPARE(subMain.about()->printedLines().size(), 10);
}

// Help is the file orvane.hlp in the folder that was current when the main window
// loaded, whatever the current folder is later.
void ShellTest::helpLooksInTheStartDirectory_data() {
  QTest::addColumn<bool>("fileThere");
  QTest::addColumn<bool>("moveAway");
  QTest::newRow("missing file") << false << false;
  QTest::newRow("file shown") << true << false;
  QTest::newRow("missing file, folder changed since") << false << true;
  QTest::newRow("file shown, folder changed since") << true << true;
}

void ShellTest::helpLooksInTheStartDirectory() {
  QFETCH(bool, fileThere);
  QFETCH(bool, moveAway);
  QTemporaryDir startDir, otherDir;
  QVERIFY(startDir.isValid() && otherDir.isValid());
  CurrentDir inStart(startDir.path());
  const QString expected = QDir(QDir::currentPath()).filePath("orvane.hlp");
  if (fileThere) {
    QFile file(expected);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("<html><body><h1>Help</h1></body></html>");
  }
  // A help file in the other folder must not be the one found.
  QFile decoy(QDir(otherDir.path()).filePath("orvane.hlp"));
  QVERIFY(decoy.open(QIODevice::WriteOnly));
  decoy.write("<html><body>decoy</body></html>");
  decoy.close();

  ScriptedDialogs dialogs;
  SubMain subMain(dialogs, steppingClock(), separatorOf("."));
  QVERIFY(subMain.Start());
  std::unique_ptr<CurrentDir> elsewhere;
  if (moveAway) elsewhere = std::make_unique<CurrentDir>(otherDir.path());

  action(subMain.mainWindow(), "mnuHelp")->trigger();

  QCOMPARE(dialogs.helpRequests().size(), size_t{1});
  QCOMPARE(QString::fromStdString(dialogs.helpRequests()[0]), expected);
  if (fileThere) {
    QVERIFY(dialogs.messages().empty());
  } else {
    QCOMPARE(dialogs.messages().size(), size_t{1});
    const QString prompt = QString::fromStdString(dialogs.messages()[0].prompt);
    QVERIFY2(prompt.startsWith("Cannot find the help file"), qPrintable(prompt));
    QVERIFY2(prompt.contains(expected), qPrintable(prompt));
  }
  QVERIFY(subMain.mainWindow()->isVisible());
}

void ShellTest::exitRestoresOnceAndClosesEverything_data() {
  QTest::addColumn<bool>("byButton");
  QTest::addColumn<bool>("aboutOpen");
  QTest::addColumn<QString>("separator");
  QTest::newRow("Exit button, About open") << true << true << ",";
  QTest::newRow("close box, About open") << false << true << ",";
  QTest::newRow("Exit button") << true << false << ".";
  QTest::newRow("close box") << false << false << ".";
}

void ShellTest::exitRestoresOnceAndClosesEverything() {
  QFETCH(bool, byButton);
  QFETCH(bool, aboutOpen);
  QFETCH(QString, separator);
  ScriptedDialogs dialogs;
  SubMain subMain(dialogs, steppingClock(), separatorOf(separator.toStdString()));
  QVERIFY(subMain.Start());
  frmOrvane* window = subMain.mainWindow();
  if (aboutOpen) openAbout(window);
  // Stands for a plot or editor window left open.
  QWidget other(nullptr, Qt::Window);
  other.show();
  QCOMPARE(visibleWindows(), aboutOpen ? 3 : 2);

  if (byButton) {
    auto* exitButton = window->findChild<QAbstractButton*>("cmdExit");
    QVERIFY(exitButton);
    QCOMPARE(exitButton->text(), QString("E&xit"));
    QTest::mouseClick(exitButton, Qt::LeftButton);
  } else {
    window->close();
  }

  QCOMPARE(subMain.decimalPoint().restoreCount(), 1);
  QCOMPARE(subMain.decimalPoint().savedSeparator(), separator.toStdString());
  QCOMPARE(visibleWindows(), 0);
  QVERIFY(subMain.about()->printedLines().isEmpty());

  // A second unload (the close box after Exit) restores nothing more.
  window->close();
  QCOMPARE(subMain.decimalPoint().restoreCount(), 1);
}

}  // namespace orvane

QTEST_MAIN(orvane::ShellTest)
#include "ShellTest.moc"
