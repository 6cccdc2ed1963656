// Start-up: the decimal-separator guard, the splash and its wait, the main window.

#include <QApplication>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>
#include <cstdlib>
#include <functional>
#include <optional>
#include <vector>

#include "app/SubMain.h"
#include "app/frmAbout.h"
#include "platform/ScriptedDialogs.h"
#include "regression/ui/frmOrvane.h"

namespace orvane {
namespace {

// Hands out the readings in order; a reading after the last counts as an overrun and
// answers far in the future so the wait still ends.
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
      ++overruns;
      return 1e12;
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

// Calls back whenever a frmOrvane is shown.
struct MainWindowShowWatcher : QObject {
  std::function<void()> onShow;
  explicit MainWindowShowWatcher(std::function<void()> f) : onShow(std::move(f)) { qApp->installEventFilter(this); }
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::Show && qobject_cast<frmOrvane*>(watched)) onShow();
    return false;
  }
};

bool anyWindowVisible() {
  for (QWidget* window : QApplication::topLevelWidgets())
    if (window->isVisible()) return true;
  return false;
}

DecimalPoint::SeparatorSource separatorOf(std::string separator) {
  return [separator] { return separator; };
}

}  // namespace
}  // namespace orvane

// An answer to the decimal-comma warning: the separator the system reports, the answer
// given (-1: none asked), whether the program runs on, and whether the point is in force.
struct WarningCase {
  std::string separator;
  int answer;
  bool runs, point;
};
// The locale variables LC_ALL, LC_NUMERIC and LANG (empty: unset), and the separator they give.
struct LocaleCase {
  QString lcAll, lcNumeric, lang, expected;
};
Q_DECLARE_METATYPE(WarningCase)
Q_DECLARE_METATYPE(LocaleCase)

namespace orvane {

class StartupTest : public QObject {
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

  void guardThenSplashThenMainWindow() {
    WatchingDialogs dialogs;
    dialogs.queueMsgBox(mb::Yes);
    ScriptedClock clock({500.2, 501.0, 502.5, 503.1});
    SubMain subMain(dialogs, clock.clock(), separatorOf(","));
    QStringList faults;
    auto fault = [&](bool bad, const char* what) {
      if (bad) faults << what;
    };
    dialogs.onMsgBox = [&] { fault(anyWindowVisible(), "a window was visible while the guard asked"); };
    dialogs.onDoEvents = [&] {
      fault(!subMain.about() || !subMain.about()->isVisible() || subMain.about()->printedLines().size() != 10,
            "the splash was not shown with its text before events ran");
    };
    clock.onReading = [&] {
      fault(dialogs.doEvents() == 0, "the wait began before the splash was painted");
      fault(!subMain.about() || !subMain.about()->isVisible(), "the splash was hidden during the wait");
      fault(subMain.mainWindow() != nullptr, "the main window existed during the wait");
    };
    bool mainShown = false;
    MainWindowShowWatcher watcher([&] {
      mainShown = true;
      fault(subMain.about()->isVisible(), "the splash was still up when the main window showed");
    });

    QVERIFY(subMain.Start());
    QVERIFY(mainShown);
    QCOMPARE(faults, QStringList());
    QCOMPARE(dialogs.messages().size(), size_t{1});
    const ScriptedDialogs::MessageRecord& warning = dialogs.messages()[0];
    QCOMPARE(std::tie(warning.title, warning.style), std::tuple(std::string("Decimal Comma Warning!"), 19));
    QVERIFY(warning.prompt.starts_with("Proper operation of this application requires the use of the DECIMAL POINT.\r"));
    QVERIFY(warning.prompt.ends_with("\r(Upon exiting, this application will restore your setting.)\r(See HELP FILE or "
                                     "visit www.orvane.example for instructions on how to change MANUALLY)\r\r"
                                     "Press YES to change."));
    QCOMPARE(clock.calls, size_t{4});
    QVERIFY(!subMain.about()->isVisible());
    QVERIFY(subMain.mainWindow() && subMain.mainWindow()->isVisible());
    QVERIFY(subMain.decimalPoint().pointInForce());
  }

  // The wait ends at the first reading whose whole second is three past the starting one:
  // late in its second, on a boundary, after a long first pass, with a clock that jumps past.
  void waitEndsAfterTheThirdSecondBoundary() {
    for (const std::vector<double>& readings : {std::vector<double>{100.9, 101.0, 102.0, 102.999, 103.0},
                                                 {100.0, 100.5, 101.0, 102.0, 102.9999, 103.0},
                                                 {100.0, 103.5}, {100.3, 101.7, 250.0}}) {
      ScriptedDialogs dialogs;
      ScriptedClock clock(readings);
      SubMain subMain(dialogs, clock.clock(), separatorOf("."));
      bool mainWindowDuringWait = false;
      clock.onReading = [&] { mainWindowDuringWait |= subMain.mainWindow() != nullptr; };
      QVERIFY(subMain.Start());
      QCOMPARE(clock.overruns, 0);
      QCOMPARE(clock.calls, readings.size());
      QVERIFY(!mainWindowDuringWait);
    }
  }

  // Whatever the separator (several characters, several bytes, none), it is saved whole
  // and restored once when the main window closes.
  void answersToTheWarning_data() {
    QTest::addColumn<WarningCase>("c");
    QTest::newRow("Yes runs on with the point") << WarningCase{",", mb::Yes, true, true};
    QTest::newRow("No ends") << WarningCase{",", mb::No, false, false};
    QTest::newRow("Cancel ends") << WarningCase{",", mb::Cancel, false, false};
    QTest::newRow("another answer changes nothing") << WarningCase{",", mb::OK, true, false};
    QTest::newRow("two characters") << WarningCase{",.", mb::Yes, true, true};
    QTest::newRow("multibyte") << WarningCase{"\u066B", mb::Yes, true, true};
    QTest::newRow("empty reading") << WarningCase{"", mb::Yes, true, true};
    QTest::newRow("a point asks nothing") << WarningCase{".", -1, true, true};
  }
  void answersToTheWarning() {
    QFETCH(WarningCase, c);
    const auto& [text, answer, runs, point] = c;
    ScriptedDialogs dialogs;
    if (answer >= 0) dialogs.queueMsgBox(answer);
    ScriptedClock clock({10.0, 13.0});
    SubMain subMain(dialogs, clock.clock(), separatorOf(text));

    QCOMPARE(subMain.Start(), runs);
    QCOMPARE(dialogs.messages().size(), size_t(answer >= 0 ? 1 : 0));
    QCOMPARE(subMain.decimalPoint().pointInForce(), point);
    QCOMPARE(subMain.decimalPoint().savedSeparator(), text);
    if (!runs) {
      QCOMPARE(clock.calls, size_t{0});
      QVERIFY(!subMain.about() && !subMain.mainWindow() && !anyWindowVisible());
      return;
    }
    QVERIFY(subMain.mainWindow() && subMain.mainWindow()->isVisible());
    subMain.mainWindow()->close();
    QCOMPARE(subMain.decimalPoint().restoreCount(), 1);
    QCOMPARE(subMain.decimalPoint().savedSeparator(), text);
    if (answer >= 0) QVERIFY(!subMain.decimalPoint().pointInForce());
  }

  // The user's separator as the system has it: a locale with a decimal comma is compiled
  // into a temporary folder (LOCPATH) so the test does not depend on installed locales.
  void separatorComesFromTheNumericLocale_data() {
    QTest::addColumn<LocaleCase>("c");
    const QString comma = "de_DE.UTF-8";
    QTest::newRow("nothing set") << LocaleCase{"", "", "", "."};
    QTest::newRow("LANG") << LocaleCase{"", "", comma, ","};
    QTest::newRow("LC_NUMERIC") << LocaleCase{"", comma, "", ","};
    QTest::newRow("LC_NUMERIC before LANG") << LocaleCase{"", "C", comma, "."};
    QTest::newRow("LC_ALL before LC_NUMERIC") << LocaleCase{comma, "C", "", ","};
    QTest::newRow("LC_ALL C wins") << LocaleCase{"C", comma, comma, "."};
    QTest::newRow("unknown locale") << LocaleCase{"xx_YY.UTF-8", "", "", "."};
  }
  void separatorComesFromTheNumericLocale() {
    static QTemporaryDir localeDir;
    static const bool compiled =
        QProcess::execute("localedef", {"-i", "de_DE", "-f", "UTF-8", localeDir.filePath("de_DE.UTF-8")}) == 0;
    if (!compiled) QSKIP("localedef cannot compile de_DE here: the locale sources come with the locales package");
    QFETCH(LocaleCase, c);
    const auto& [lcAll, lcNumeric, lang, expected] = c;
    const std::pair<const char*, QString> settings[] = {
        {"LOCPATH", localeDir.path()}, {"LC_ALL", lcAll}, {"LC_NUMERIC", lcNumeric}, {"LANG", lang}};
    std::vector<std::pair<const char*, std::optional<QByteArray>>> saved;
    for (const auto& [name, value] : settings) {
      saved.emplace_back(name, qEnvironmentVariableIsSet(name) ? std::optional(qgetenv(name)) : std::nullopt);
      value.isEmpty() ? qunsetenv(name) : qputenv(name, value.toUtf8());
    }
    const QString separator = QString::fromStdString(DecimalPoint::userSeparator());
    for (const auto& [name, value] : saved) value ? qputenv(name, *value) : qunsetenv(name);
    QCOMPARE(separator, expected);
  }
};

}  // namespace orvane

QTEST_MAIN(orvane::StartupTest)
#include "StartupTest.moc"
