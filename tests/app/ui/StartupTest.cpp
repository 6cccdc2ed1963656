// Start-up (the decimal-separator guard, the splash and its wait, the main window) and
// the running shell: the About box, the Help entry, the plot windows and every way out
// of the program.

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QImage>
#include <QPointer>
#include <QProcess>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTextBrowser>
#include <QtTest>
#include <cstdlib>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "app/HelpFolders.h"
#include "app/SubMain.h"
#include "app/frmAbout.h"
#include "platform/ScriptedDialogs.h"
#include "platform/ui/QtDialogs.h"
#include "platform/ui/TextBox.h"
#include "plot2d/ui/frmPlot.h"
#include "regression/RegressionFile.h"
#include "regression/RegressionTestSupport.h"
#include "regression/Solver.h"
#include "regression/ui/frmOrvane.h"
#include "stereo/ui/frmStereoPlot.h"

namespace orvane {
namespace {

// Hands out the readings in order; a reading after the last counts as an overrun and
// answers far in the future, ten seconds on each time, so the wait always ends.
struct ScriptedClock {
  explicit ScriptedClock(std::vector<double> r) : readings(std::move(r)) {}
  std::vector<double> readings;
  size_t calls = 0;
  int overruns = 0;
  std::function<void()> onReading;

  SubMain::Clock clock() {
    return [this] {
      if (onReading) onReading();
      if (calls < readings.size()) return readings[calls++];
      return 1e12 + 10.0 * ++overruns;
    };
  }
};

// Scripted dialogs that let a test look at the windows when the guard asks its question
// and when start-up lets the splash paint.
struct WatchingDialogs : ScriptedDialogs {
  std::function<void()> onMsgBox, onDoEvents;
  int MsgBox(std::string_view prompt, int style, std::string_view title) override {
    if (onMsgBox) onMsgBox();
    return ScriptedDialogs::MsgBox(prompt, style, title);
  }
  void DoEvents() override {
    if (onDoEvents) onDoEvents();
    ScriptedDialogs::DoEvents();
  }
};

struct MainWindowShowWatcher : QObject {
  std::function<void()> onShow;
  explicit MainWindowShowWatcher(std::function<void()> f) : onShow(std::move(f)) { qApp->installEventFilter(this); }
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::Show && qobject_cast<frmOrvane*>(watched)) onShow();
    return false;
  }
};

template <class Window>
Window* shownWindow() {
  for (QWidget* w : QApplication::topLevelWidgets())
    if (auto* window = qobject_cast<Window*>(w); window && window->isVisible()) return window;
  return nullptr;
}

int visibleWindows() {
  int count = 0;
  for (QWidget* window : QApplication::topLevelWidgets()) count += window->isVisible();
  return count;
}

// The program on its way up: dialogs of the given kind, a clock handing out `readings`,
// and the user's separator (a copy: the program asks for it later).
template <class Dialogs = ScriptedDialogs>
struct Launch {
  Dialogs dialogs;
  ScriptedClock clock;
  SubMain subMain;
  explicit Launch(std::vector<double> readings = {}, const std::string& separator = ".")
      : clock(std::move(readings)), subMain(dialogs, clock.clock(), [separator] { return separator; }) {}
  frmOrvane* window() { return subMain.mainWindow(); }
  frmAbout* about() { return subMain.about(); }
  QAction* action(const char* name) { return subMain.mainWindow()->findChild<QAction*>(name); }
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

// The texts of the help windows on screen.
QStringList shownHelp() {
  QStringList texts;
  for (QWidget* window : QApplication::topLevelWidgets())
    if (window->objectName() == "helpWindow" && window->isVisible())
      texts << window->findChild<QTextBrowser*>()->toPlainText();
  return texts;
}

}  // namespace
}  // namespace orvane

// An answer to the decimal-comma warning: the separator the system reports, the answer
// given (-1: none asked), whether the program runs on, whether the point is in force;
// then the way out: by the Exit button or the close box, with the About box open or not.
struct WarningCase {
  std::string separator;
  int answer;
  bool runs, point, exitByButton = false, aboutOpen = false;
};
Q_DECLARE_METATYPE(WarningCase)

namespace orvane {

class StartupAndShellTest : public QObject {
  Q_OBJECT

 private slots:
  // The window must be tall enough for the last line (the web address) to be seen.
  void splashShowsTheTenLines() {
    const QStringList expected{"", "", "", "Orvane Regression", "", "Copyright (C) 2026 The Orvane developers", "",
                               "All Rights Reserved", "", "www.orvane.example"};
    QCOMPARE(frmAbout::splashLines(), expected);
    frmAbout about;
    about.show();
    about.PrintSplash();
    QCOMPARE(about.printedLines(), expected);
    const QImage image = about.grab().toImage();
    const int ink = qGray(about.palette().color(about.backgroundRole()).rgb()) - 96;
    int lowestInk = -1;
    for (int y = 0; y < image.height(); ++y)
      for (int x = 0; x < image.width(); ++x)
        if (qGray(image.pixel(x, y)) < ink) lowestInk = y;
    const int lineSpacing = QFontMetrics(about.font()).lineSpacing();
    QVERIFY2(lowestInk >= 9 * lineSpacing, qPrintable(QString("lowest ink %1, line %2").arg(lowestInk).arg(lineSpacing)));
    QVERIFY(lowestInk < image.height() - 1);
  }

  // The guard asks with no window up, the splash is painted before the wait, and the wait
  // ends at the first reading whose whole second is three past the starting one (late in
  // its second, on a boundary, with a clock that jumps past);
  // only then does the main window show, the splash gone.
  void guardThenSplashThenMainWindow() {
    for (const std::vector<double>& readings : {std::vector<double>{100.9, 101.0, 102.0, 102.999, 103.0},
                                                {100.0, 100.5, 101.0, 102.0, 102.9999, 103.0}, {100.0, 103.5}}) {
      Launch<WatchingDialogs> p(readings, ",");
      p.dialogs.queueMsgBox(mb::Yes);
      QStringList faults;
      auto fault = [&](bool bad, const char* what) {
        if (bad) faults << what;
      };
      p.dialogs.onMsgBox = [&] { fault(visibleWindows() > 0, "a window was visible while the guard asked"); };
      p.dialogs.onDoEvents = [&] {
        fault(!p.about() || !p.about()->isVisible() || p.about()->printedLines().size() != 10,
              "the splash was not shown with its text before events ran");
      };
      p.clock.onReading = [&] {
        fault(p.dialogs.doEvents() == 0, "the wait began before the splash was painted");
        fault(!p.about() || !p.about()->isVisible(), "the splash was hidden during the wait");
        fault(p.subMain.mainWindow() != nullptr, "the main window existed during the wait");
      };
      bool mainShown = false;
      MainWindowShowWatcher watcher([&] {
        mainShown = true;
        fault(p.about()->isVisible(), "the splash was still up when the main window showed");
      });

      QVERIFY(p.subMain.Start());
      QVERIFY(mainShown);
      QCOMPARE(faults, QStringList());
      QCOMPARE(std::pair(p.clock.calls, p.clock.overruns), std::pair(readings.size(), 0));
      QCOMPARE(p.dialogs.messages().size(), size_t{1});
      const ScriptedDialogs::MessageRecord& warning = p.dialogs.messages()[0];
      QCOMPARE(std::tie(warning.title, warning.style), std::tuple(std::string("Decimal Comma Warning!"), 19));
      QCOMPARE(warning.prompt, DecimalPoint::warningText());
      QVERIFY(warning.prompt.starts_with("Proper operation of this application requires the use of the DECIMAL POINT.\r"
                                         "Your system is currently using the DECIMAL COMMA.\r\rDo you wish"));
      QVERIFY(p.subMain.mainWindow() && p.subMain.mainWindow()->isVisible());
      QVERIFY(p.subMain.decimalPoint().pointInForce());
    }
  }

  // Whatever the separator (several bytes too), it is saved whole;
  // it is restored once, whichever way the program ends, and every window closes.
  void answersToTheWarning_data() {
    QTest::addColumn<WarningCase>("c");
    QTest::newRow("Yes runs on with the point") << WarningCase{"\u066B", mb::Yes, true, true, false, true};
    QTest::newRow("No ends") << WarningCase{",", mb::No, false, false};
    QTest::newRow("another answer changes nothing") << WarningCase{",", mb::OK, true, false, true, true};
    QTest::newRow("a point asks nothing") << WarningCase{".", -1, true, true, true, false};
  }
  void answersToTheWarning() {
    QFETCH(WarningCase, c);
    const auto& [text, answer, runs, point, exitByButton, aboutOpen] = c;
    Launch p({10.0, 13.0}, text);
    if (answer >= 0) p.dialogs.queueMsgBox(answer);

    QCOMPARE(p.subMain.Start(), runs);
    QCOMPARE(p.dialogs.messages().size(), size_t(answer >= 0 ? 1 : 0));
    QCOMPARE(p.subMain.decimalPoint().pointInForce(), point);
    QCOMPARE(p.subMain.decimalPoint().savedSeparator(), text);
    if (!runs) {
      QCOMPARE(p.clock.calls, size_t{0});
      QVERIFY(!p.about() && !p.subMain.mainWindow() && visibleWindows() == 0);
      return;
    }
    if (aboutOpen) {  // the About box appends the splash's lines at each opening, until a click closes it
      p.openAbout();
      p.openAbout();
      QCOMPARE(p.about()->printedLines(), frmAbout::splashLines() + frmAbout::splashLines());
      QTest::mouseClick(p.about(), Qt::LeftButton, {}, QPoint(20, 20));
      QVERIFY(!p.about()->isVisible() && p.window()->isVisible());
      p.openAbout();
      QCOMPARE(p.about()->printedLines().size(), 10);
    }
    QWidget other(nullptr, Qt::Window);  // stands for a plot or editor window left open
    other.show();
    QCOMPARE(visibleWindows(), aboutOpen ? 3 : 2);
    if (exitByButton)
      QTest::mouseClick(p.window()->findChild<QAbstractButton*>("cmdExit"), Qt::LeftButton);
    else
      p.window()->close();
    QCOMPARE(p.subMain.decimalPoint().restoreCount(), 1);
    QCOMPARE(p.subMain.decimalPoint().savedSeparator(), text);
    if (answer >= 0) QVERIFY(!p.subMain.decimalPoint().pointInForce());
    QCOMPARE(visibleWindows(), 0);
    QVERIFY(p.about()->printedLines().isEmpty());
    p.window()->close();  // a second unload (the close box after Exit) restores nothing more
    QCOMPARE(p.subMain.decimalPoint().restoreCount(), 1);
  }

  // The user's separator as the system has it: a locale with a decimal comma is compiled
  // into a temporary folder (LOCPATH) so the test does not depend on installed locales.
  void separatorComesFromTheNumericLocale() {
    QTemporaryDir localeDir;
    const QString comma = "de_DE.UTF-8";
    if (QProcess::execute("localedef", {"-i", "de_DE", "-f", "UTF-8", localeDir.filePath(comma)}) != 0)
      QSKIP("localedef cannot compile de_DE here: the locale sources come with the locales package");
    // LC_ALL, LC_NUMERIC and LANG (empty: unset), and the separator they give.
    const QString rows[][4] = {{"", "", "", "."}, {"", "", comma, ","}, {"", "C", comma, "."}, {comma, "C", "", ","},
                               {"xx_YY.UTF-8", "", "", "."}};
    for (const auto& [lcAll, lcNumeric, lang, expected] : rows) {
      const std::pair<const char*, QString> settings[] = {
          {"LOCPATH", localeDir.path()}, {"LC_ALL", lcAll}, {"LC_NUMERIC", lcNumeric}, {"LANG", lang}};
      std::vector<std::pair<const char*, std::optional<QByteArray>>> saved;
      for (const auto& [name, value] : settings) {
        saved.emplace_back(name, qEnvironmentVariableIsSet(name) ? std::optional(qgetenv(name)) : std::nullopt);
        value.isEmpty() ? qunsetenv(name) : qputenv(name, value.toUtf8());
      }
      const QString separator = QString::fromStdString(DecimalPoint::userSeparator());
      for (const auto& [name, value] : saved) value ? qputenv(name, *value) : qunsetenv(name);
      QVERIFY2(separator == expected, qPrintable(lcAll + "|" + lcNumeric + "|" + lang + " gave " + separator));
    }
  }

  // Help is orvane.hlp in the folder that was current when the main window loaded,
  // whatever the current folder is later (a decoy elsewhere must not be found); started
  // from "/", where none is, the installed document beside the program, else the source
  // tree's. One help window serves every request.
  void helpComesFromTheStartFolderElseBesideTheProgram() {
    for (const bool fileThere : {false, true}) {
      QTemporaryDir startDir, otherDir;
      const QString expected = QDir(QFileInfo(startDir.path()).canonicalFilePath()).filePath("orvane.hlp");
      if (fileThere) writeFile(expected, "<html><body><h1>Help</h1></body></html>");
      writeFile(QDir(otherDir.path()).filePath("orvane.hlp"), "<html><body>decoy</body></html>");
      Launch<HelpDialogs> p;
      QVERIFY(p.startIn(startDir.path()));
      const QString old = QDir::currentPath();
      QDir::setCurrent(otherDir.path());
      p.action("mnuHelp")->trigger();
      QDir::setCurrent(old);
      QCOMPARE(shownHelp(), fileThere ? QStringList{"Help"} : QStringList());
      QCOMPARE(p.dialogs.messages, fileThere ? QStringList() : QStringList{"Cannot find the help file\r" + expected});
      QVERIFY(p.window()->isVisible());
    }
    for (const bool installed : {false, true}) {
      QTemporaryDir prefix;
      QDir(prefix.path()).mkpath("bin");
      QDir(prefix.path()).mkpath("share/orvane/help");
      const QString document = prefix.filePath("share/orvane/help/orvane.hlp");
      if (installed) writeFile(document, "<html><body>Installed help</body></html>");
      const QString programFolder = installed ? prefix.filePath("bin") : QCoreApplication::applicationDirPath();
      Launch<HelpDialogs> p;
      p.dialogs.setHelpFolders(HelpFolders(programFolder));
      QVERIFY(p.startIn("/"));
      p.action("mnuHelp")->trigger();
      p.action("mnuHelp")->trigger();
      QCOMPARE(p.dialogs.messages, QStringList());
      const QStringList shown = shownHelp();
      QCOMPARE(shown.size(), 1);
      QVERIFY(shown[0].startsWith(installed ? "Installed help" : "Orvane Regression"));
    }
  }


  // Plot hands the fitted function to the study window for one variable and to the
  // stereo pair for two, and the main window waits, disabled, until that window exits.
  void plotHandsTheFitOverAndExitReturns() {
    QTemporaryDir dir;
    for (const int m : {1, 2}) {
      std::vector<std::vector<double>> sets;  // z = 1 + 2 x1 - x2, against x1 alone or both
      for (const auto& [x1, x2] : std::vector<std::pair<double, double>>{{0, 0}, {1, 0}, {0, 1}, {1, 1}, {2, 1}})
        sets.push_back(m == 1 ? std::vector{x1, 1 + 2 * x1 - x2} : std::vector{x1, x2, 1 + 2 * x1 - x2});
      const std::string path = QDir(dir.path()).filePath(QString("fit%1.txt").arg(m)).toStdString();
      WriteRegressionFiles(path, testing::makeProblem(m, sets, {"s", "t"}));
      Launch p;
      QVERIFY(p.subMain.Start(path));
      frmOrvane& main = *p.window();
      main.findChild<QPushButton*>("cmdCompute")->click();
      QVERIFY(main.workbench().fitted);
      main.findChild<QPushButton*>("cmdPlot")->click();
      frmPlot* plot = shownWindow<frmPlot>();
      frmStereoPlot* stereo = shownWindow<frmStereoPlot>();
      QCOMPARE(std::pair(plot != nullptr, stereo != nullptr), std::pair(m == 1, m == 2));
      const QString fitted = QString::fromStdString(FittedFunctionText(main.workbench().problem));
      QCOMPARE(m == 1 ? plot->txtEquation->text() : stereo->txtEquationZ->text(), fitted);  // its text: SolverTest
      if (plot) QTRY_VERIFY(plot->graphDrawn());  // the fitted line at once
      QPointer<QWidget> study = m == 1 ? static_cast<QWidget*>(plot) : stereo;
      QVERIFY(!main.isEnabled());
      study->findChild<QPushButton*>("cmdExit")->click();
      QVERIFY(main.isEnabled());
      QTRY_VERIFY(study.isNull());
      QVERIFY(p.dialogs.messages().empty());
      main.close();
    }
  }
};

}  // namespace orvane

QTEST_MAIN(orvane::StartupAndShellTest)
#include "StartupTest.moc"
