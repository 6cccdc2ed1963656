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

// Hands out the readings in order. The wait must be over by the last one: any further
// reading is counted as an overrun and answers far in the future so the loop still ends.
class ScriptedClock {
 public:
  explicit ScriptedClock(std::vector<double> readings) : readings_(std::move(readings)) {}

  double operator()() {
    if (onReading) onReading();
    if (calls_ < readings_.size()) return readings_[calls_++];
    ++overruns_;
    return 1e12;
  }

  std::function<void()> onReading;
  size_t calls() const { return calls_; }
  int overruns() const { return overruns_; }

 private:
  std::vector<double> readings_;
  size_t calls_ = 0;
  int overruns_ = 0;
};

// Scripted dialogs that let a test look at the windows when the guard asks its question
// and when start-up lets the splash paint.
class WatchingDialogs : public ScriptedDialogs {
 public:
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
class MainWindowShowWatcher : public QObject {
 public:
  explicit MainWindowShowWatcher(std::function<void()> onShow) : onShow_(std::move(onShow)) {
    qApp->installEventFilter(this);
  }
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::Show && qobject_cast<frmOrvane*>(watched)) onShow_();
    return false;
  }

 private:
  std::function<void()> onShow_;
};

bool anyWindowVisible() {
  for (QWidget* window : QApplication::topLevelWidgets())
    if (window->isVisible()) return true;
  return false;
}

SubMain::Clock clockOf(ScriptedClock& clock) {
  return [&clock] { return clock(); };
}

DecimalPoint::SeparatorSource separatorOf(std::string separator) {
  return [separator] { return separator; };
}

const std::string kWarning =
    "Proper operation of this application requires the use of the DECIMAL POINT.\r"
    "Your system is currently using the DECIMAL COMMA.\r"
    "\r"
    "Do you wish to temporarily change this system setting to decimal point?\r"
    "(Upon exiting, this application will restore your setting.)\r"
    "(See HELP FILE or visit www.orvane.example for instructions on how to change MANUALLY)\r"
    "\r"
    "Press YES to change.";

// Sets or clears an environment variable for the life of the object.
class EnvValue {
 public:
  EnvValue(const char* name, std::optional<std::string> value) : name_(name) {
    if (const char* old = std::getenv(name)) old_ = old;
    set(value);
  }
  ~EnvValue() { set(old_); }

 private:
  void set(const std::optional<std::string>& value) {
    if (value)
      qputenv(name_, QByteArray::fromStdString(*value));
    else
      qunsetenv(name_);
  }
  const char* name_;
  std::optional<std::string> old_;
};

}  // namespace

class StartupTest : public QObject {
  Q_OBJECT

 private slots:
  void splashHasTheTenLines();
  void splashPaintsDownToTheLastLine();
  void guardThenSplashThenMainWindow();
  void waitEndsAfterTheThirdSecondBoundary_data();
  void waitEndsAfterTheThirdSecondBoundary();
  void answersToTheWarning_data();
  void answersToTheWarning();
  void pointShowsNoMessage();
  void separatorIsSavedAndRestoredWhole_data();
  void separatorIsSavedAndRestoredWhole();
  void separatorComesFromTheNumericLocale_data();
  void separatorComesFromTheNumericLocale();
};

void StartupTest::splashHasTheTenLines() {
  const QStringList expected{"", "", "", "Orvane Regression", "",
                             "Copyright (C) 2026 The Orvane developers", "",
                             "All Rights Reserved", "", "www.orvane.example"};
  QCOMPARE(frmAbout::splashLines(), expected);
  frmAbout about;
  about.PrintSplash();
  QCOMPARE(about.printedLines(), expected);
}

// The window must be tall enough for the last line (the web address) to be seen.
void StartupTest::splashPaintsDownToTheLastLine() {
  frmAbout about;
  about.show();
  about.PrintSplash();
  const QImage image = about.grab().toImage();
  const QColor background = about.palette().color(about.backgroundRole());
  int lowestInk = -1;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      if (qGray(image.pixel(x, y)) < qGray(background.rgb()) - 96) lowestInk = y;
  const int lineSpacing = QFontMetrics(about.font()).lineSpacing();
  QVERIFY2(lowestInk >= 9 * lineSpacing,
           qPrintable(QString("lowest text row %1, line spacing %2").arg(lowestInk).arg(lineSpacing)));
  QVERIFY(lowestInk < image.height() - 1);
}

void StartupTest::guardThenSplashThenMainWindow() {
  WatchingDialogs dialogs;
  dialogs.queueMsgBox(mb::Yes);
  ScriptedClock clock({500.2, 501.0, 502.5, 503.1});
  SubMain subMain(dialogs, clockOf(clock), separatorOf(","));

  std::vector<QString> faults;
  dialogs.onMsgBox = [&] {
    if (anyWindowVisible()) faults.push_back("a window was visible while the guard asked");
  };
  dialogs.onDoEvents = [&] {
    if (!subMain.about() || !subMain.about()->isVisible() ||
        subMain.about()->printedLines().size() != 10)
      faults.push_back("the splash was not shown with its text before events ran");
  };
  clock.onReading = [&] {
    if (dialogs.doEvents() == 0) faults.push_back("the wait began before the splash was painted");
    if (!subMain.about() || !subMain.about()->isVisible())
      faults.push_back("the splash was hidden during the wait");
    if (subMain.mainWindow()) faults.push_back("the main window existed during the wait");
  };

  bool mainShown = false;
  MainWindowShowWatcher watcher([&] {
    mainShown = true;
    if (subMain.about()->isVisible()) faults.push_back("the splash was still up when the main window showed");
  });

  QVERIFY(subMain.Start());
  QVERIFY(mainShown);
  for (const QString& fault : faults) QFAIL(qPrintable(fault));
  QCOMPARE(dialogs.messages().size(), size_t{1});
  QCOMPARE(dialogs.messages()[0].title, std::string("Decimal Comma Warning!"));
  QCOMPARE(dialogs.messages()[0].style, 19);
  QCOMPARE(dialogs.messages()[0].prompt, kWarning);
  QCOMPARE(clock.calls(), size_t{4});
  QVERIFY(!subMain.about()->isVisible());
  QVERIFY(subMain.mainWindow() && subMain.mainWindow()->isVisible());
  QVERIFY(subMain.decimalPoint().pointInForce());
}

// The wait ends at the first reading whose whole second is three past the starting one.
void StartupTest::waitEndsAfterTheThirdSecondBoundary_data() {
  QTest::addColumn<std::vector<double>>("readings");
  QTest::newRow("late in its second") << std::vector<double>{100.9, 101.0, 102.0, 102.999, 103.0};
  QTest::newRow("on a boundary") << std::vector<double>{100.0, 100.5, 101.0, 102.0, 102.9999, 103.0};
  QTest::newRow("a long first pass") << std::vector<double>{100.0, 103.5};
  QTest::newRow("clock jumps past") << std::vector<double>{100.3, 101.7, 250.0};
}

void StartupTest::waitEndsAfterTheThirdSecondBoundary() {
  QFETCH(std::vector<double>, readings);
  ScriptedDialogs dialogs;
  ScriptedClock clock(readings);
  SubMain subMain(dialogs, clockOf(clock), separatorOf("."));
  bool mainWindowDuringWait = false;
  clock.onReading = [&] { mainWindowDuringWait |= subMain.mainWindow() != nullptr; };
  QVERIFY(subMain.Start());
  QCOMPARE(clock.overruns(), 0);
  QCOMPARE(clock.calls(), readings.size());
  QVERIFY(!mainWindowDuringWait);
}

void StartupTest::answersToTheWarning_data() {
  QTest::addColumn<int>("answer");
  QTest::addColumn<bool>("runs");
  QTest::addColumn<bool>("point");
  QTest::newRow("Yes runs on with the point") << mb::Yes << true << true;
  QTest::newRow("No ends") << mb::No << false << false;
  QTest::newRow("Cancel ends") << mb::Cancel << false << false;
  QTest::newRow("another answer changes nothing") << mb::OK << true << false;
}

void StartupTest::answersToTheWarning() {
  QFETCH(int, answer);
  QFETCH(bool, runs);
  QFETCH(bool, point);
  ScriptedDialogs dialogs;
  dialogs.queueMsgBox(answer);
  ScriptedClock clock({10.0, 13.0});
  SubMain subMain(dialogs, clockOf(clock), separatorOf(","));

  QCOMPARE(subMain.Start(), runs);
  QCOMPARE(dialogs.messages().size(), size_t{1});
  QCOMPARE(subMain.decimalPoint().pointInForce(), point);
  QCOMPARE(subMain.decimalPoint().savedSeparator(), std::string(","));
  if (runs) {
    QVERIFY(subMain.mainWindow() && subMain.mainWindow()->isVisible());
  } else {
    QCOMPARE(clock.calls(), size_t{0});
    QVERIFY(!subMain.about());
    QVERIFY(!subMain.mainWindow());
    QVERIFY(!anyWindowVisible());
  }
}

void StartupTest::pointShowsNoMessage() {
  ScriptedDialogs dialogs;
  ScriptedClock clock({10.0, 13.0});
  SubMain subMain(dialogs, clockOf(clock), separatorOf("."));
  QVERIFY(subMain.Start());
  QVERIFY(dialogs.messages().empty());
  QVERIFY(subMain.decimalPoint().pointInForce());
  subMain.mainWindow()->close();
  QCOMPARE(subMain.decimalPoint().restoreCount(), 1);
  QCOMPARE(subMain.decimalPoint().savedSeparator(), std::string("."));
}

void StartupTest::separatorIsSavedAndRestoredWhole_data() {
  QTest::addColumn<QString>("separator");
  QTest::newRow("comma") << ",";
  QTest::newRow("two characters") << ",.";
  QTest::newRow("multibyte") << QString::fromUtf8("\u066B");
  QTest::newRow("empty reading") << "";
}

void StartupTest::separatorIsSavedAndRestoredWhole() {
  QFETCH(QString, separator);
  const std::string text = separator.toStdString();
  ScriptedDialogs dialogs;
  dialogs.queueMsgBox(mb::Yes);
  ScriptedClock clock({10.0, 13.0});
  SubMain subMain(dialogs, clockOf(clock), separatorOf(text));
  QVERIFY(subMain.Start());
  QCOMPARE(dialogs.messages().size(), size_t{1});
  QCOMPARE(subMain.decimalPoint().savedSeparator(), text);
  subMain.mainWindow()->close();
  QCOMPARE(subMain.decimalPoint().restoreCount(), 1);
  QCOMPARE(subMain.decimalPoint().savedSeparator(), text);
  QVERIFY(!subMain.decimalPoint().pointInForce());
}

// The user's separator as the system has it: a locale with a decimal comma is compiled
// into a temporary folder (LOCPATH) so the test does not depend on installed locales.
void StartupTest::separatorComesFromTheNumericLocale_data() {
  QTest::addColumn<QString>("lcAll");
  QTest::addColumn<QString>("lcNumeric");
  QTest::addColumn<QString>("lang");
  QTest::addColumn<QString>("expected");
  const QString comma = "de_DE.UTF-8";
  QTest::newRow("nothing set") << "" << "" << "" << ".";
  QTest::newRow("LANG") << "" << "" << comma << ",";
  QTest::newRow("LC_NUMERIC") << "" << comma << "" << ",";
  QTest::newRow("LC_NUMERIC before LANG") << "" << "C" << comma << ".";
  QTest::newRow("LC_ALL before LC_NUMERIC") << comma << "C" << "" << ",";
  QTest::newRow("LC_ALL C wins") << "C" << comma << comma << ".";
  QTest::newRow("unknown locale") << "xx_YY.UTF-8" << "" << "" << ".";
}

void StartupTest::separatorComesFromTheNumericLocale() {
  static QTemporaryDir localeDir;
  static const bool compiled = [] {
    return QProcess::execute("localedef", {"-i", "de_DE", "-f", "UTF-8",
                                           localeDir.filePath("de_DE.UTF-8")}) == 0;
  }();
  if (!compiled) QSKIP("localedef cannot compile a test locale here");
  QFETCH(QString, lcAll);
  QFETCH(QString, lcNumeric);
  QFETCH(QString, lang);
  QFETCH(QString, expected);
  auto valueOf = [](const QString& s) {
    return s.isEmpty() ? std::nullopt : std::optional<std::string>(s.toStdString());
  };
  EnvValue locpath("LOCPATH", localeDir.path().toStdString());
  EnvValue all("LC_ALL", valueOf(lcAll));
  EnvValue numeric("LC_NUMERIC", valueOf(lcNumeric));
  EnvValue language("LANG", valueOf(lang));
  QCOMPARE(QString::fromStdString(DecimalPoint::userSeparator()), expected);
}

}  // namespace orvane

QTEST_MAIN(orvane::StartupTest)
#include "StartupTest.moc"
