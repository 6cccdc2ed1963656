// Hostile text in every text field of every window, typed (or, when long, pasted) and
// the field left with Tab: the program lives, a number beyond a double's range shows
// the error box and keeps the focus (a data cell keeps a text it can hold), and nothing
// changes but what the field's own rules change; the plot windows' commands then read
// what their fields were left holding. The Application's last-resort guard for errors
// that escape an event handler must never be reached by any of this.

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <QTableView>
#include <QtTest>
#include <map>
#include <memory>

#include "app/Application.h"
#include "platform/NumberText.h"
#include "platform/RuntimeError.h"
#include "platform/ScriptedDialogs.h"
#include "platform/ui/TextBox.h"
#include "plot2d/ui/frmPlot.h"
#include "regression/RegressionTestSupport.h"
#include "regression/ui/frmEdit.h"
#include "regression/ui/frmEvaluations.h"
#include "regression/ui/frmOrvane.h"
#include "stereo/ui/frmStereoPlot.h"

namespace orvane {
namespace {

ScriptedDialogs* guardDialogs = nullptr;  // where the Application shows escaped errors
size_t guardMessagesAllowed = 0;          // the guard's own test makes one escape

const QStringList kHostileTexts = {"1e999", "-1e999",   "1e-999", "abc",  "",
                                   QString(10000, '9'), "1,5", "NaN", "Inf", QStringLiteral("x\u00e9\u20ac\u6f22")};

bool overflows(const QString& text) {
  try {
    (void)leadingNumber(text.toStdString());
  } catch (const RuntimeError&) {
    return true;
  }
  return false;
}

// Types over the selected text of the widget that holds the focus: Delete, then the text
// key by key, or pasted when long.
void typeText(const QString& text) {
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Delete);
  if (text.size() > 64) {
    QGuiApplication::clipboard()->setText(text);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_V, Qt::ControlModifier);
    return;
  }
  for (const QChar c : text) QTest::sendKeyEvent(QTest::Click, QApplication::focusWidget(), Qt::Key_unknown, QString(c), {});
}

bool activate(QWidget& window) {
  window.show();
  window.activateWindow();
  return QTest::qWaitForWindowActive(&window);
}

// The fields whose text is a name or a formula; every other field holds a number.
const QStringList kTextFields = {"txtDepVarNam", "txtVarNams", "txtEquation", "txtEquationZ", "txtEquationX",
                                 "txtEquationY"};

// Types `text` into `field` and presses Tab, and tells whether it kept the focus.
// "Overflow" comes exactly when a number field holds a number beyond a double, once,
// and the field keeps the focus. (Other boxes are the fields' own: "Type mismatch" for
// the number of data sets, the engine's messages for the stereo window's expressions.)
bool enter(TextBox* field, const QString& text, const ScriptedDialogs& dialogs) {
  const auto before = static_cast<long>(dialogs.messages().size());
  field->setFocus(Qt::TabFocusReason);
  field->selectAll();
  typeText(text);
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  QCoreApplication::processEvents();
  const auto& boxes = dialogs.messages();
  const long overflowBoxes =
      std::count_if(boxes.begin() + before, boxes.end(), [](const auto& box) { return box.prompt == "Overflow"; });
  const bool overflow = !kTextFields.contains(field->objectName()) && overflows(text);
  const QByteArray where = (field->objectName() + " <- " + text.left(12)).toUtf8();
  const bool right = overflowBoxes == (overflow ? 1 : 0) && (!overflow || field->hasFocus());
  [&] { QVERIFY2(right, where.constData()); }();  // a check in a function that returns a value
  return field->hasFocus();
}

std::map<QString, QString> fieldTexts(const QWidget& window) {
  std::map<QString, QString> texts;
  for (const TextBox* box : window.findChildren<TextBox*>()) texts[box->objectName()] = box->text();
  return texts;
}

// The main window with the problem set up up to (not including) field `upTo`.
struct Main {
  ScriptedDialogs dialogs;
  frmOrvane window{dialogs};
  const RegressionProblem& problem = window.workbench().problem;
  TextBox* field(const char* name) { return window.findChild<TextBox*>(name); }
  QPushButton* button(const char* name) { return window.findChild<QPushButton*>(name); }

  bool setUpTo(const char* upTo) {
    if (!activate(window)) return false;
    const std::pair<const char*, const char*> fields[] = {
        {"txtOrder", "1"}, {"txtDepVarNam", "y"}, {"txtVarNams", "x"}, {"txtN", "3"}};
    for (const auto& [name, text] : fields) {
      if (qstrcmp(name, upTo) == 0) return true;
      if (enter(field(name), text, dialogs)) return false;
    }
    return true;
  }
};

RegressionProblem fittedLine() {  // y = 1 + 2x through five data sets
  RegressionProblem line = testing::makeProblem(1, {{1, 3}, {2, 5}, {3, 7}, {4, 9}, {5, 11}}, {"x"});
  line.A = {1, 2, 0};
  line.computed = true;
  return line;
}

// A plot window of its own workbench.
template <class Window>
struct Plot {
  Workbench workbench;
  ScriptedDialogs dialogs;
  std::unique_ptr<Window> window;
  explicit Plot(RegressionProblem problem = {}) {
    workbench.problem = std::move(problem);
    workbench.fitted = workbench.problem.computed;
    window = std::make_unique<Window>(workbench, dialogs);
  }

  // Every visible field: each hostile text entered and checked, then the window's
  // commands run on what the field was left holding, then the field restored. Last,
  // a user constant of each hostile value, added and used by a plot.
  void walk(const QStringList& buttons) {
    QVERIFY(activate(*window));
    const std::map<QString, QString> opening = fieldTexts(*window);
    for (TextBox* field : window->template findChildren<TextBox*>()) {
      if (!field->isVisible()) continue;
      for (const QString& text : kHostileTexts) {
        const bool keptFocus = enter(field, text, dialogs);
        std::map<QString, QString> now = fieldTexts(*window);
        now[field->objectName()] = opening.at(field->objectName());  // a field may correct itself
        QVERIFY2(now == opening, qPrintable(field->objectName() + " <- " + text.left(12)));
        if (!keptFocus) {
          for (const QString& name : buttons) button(name)->click();
          window->template findChild<QAction*>("mnuPrint")->trigger();
        }
        for (TextBox* box : window->template findChildren<TextBox*>())  // zoom and steps moved some
          if (box->text() != opening.at(box->objectName())) box->setText(opening.at(box->objectName()));
        field->setFocus(Qt::TabFocusReason);
        QTest::keyClick(field, Qt::Key_Tab);
        QVERIFY2(!field->hasFocus(), qPrintable(field->objectName()));
      }
    }
    for (const QString& text : kHostileTexts) {
      window->template findChild<QComboBox*>("cboConstants")->setEditText("a=" + text);
      button("cmdAddCons")->click();
      button("cmdPlot")->click();
    }
  }
  QPushButton* button(const QString& name) { return window->template findChild<QPushButton*>(name); }
};

}  // namespace

class HostileTextTest : public QObject {
  Q_OBJECT

 private slots:
  void init() { QGuiApplication::clipboard()->clear(); }
  void cleanup() { QCOMPARE(guardDialogs->messages().size(), guardMessagesAllowed); }  // nothing escaped

  void mainWindowFields() {
    for (const char* name : {"txtOrder", "txtDepVarNam", "txtVarNams", "txtN"}) {
      for (const QString& text : kHostileTexts) {
        Main w;
        QVERIFY(w.setUpTo(name));
        const RegressionProblem before = w.problem;
        const bool keptFocus = enter(w.field(name), text, w.dialogs);
        // Only the field's own part of the problem may change, and a refused count not.
        const RegressionProblem& after = w.problem;
        QVERIFY(after.m == before.m || (qstrcmp(name, "txtOrder") == 0 && !keptFocus));
        QVERIFY(after.names == before.names || qstrcmp(name, "txtVarNams") == 0);
        QVERIFY(after.dependentName == before.dependentName || qstrcmp(name, "txtDepVarNam") == 0);
        QCOMPARE(after.N, before.N);
      }
    }
  }

  // A data cell, then the number of data sets to add.
  void editorCellAndAddDataCount() {
    Main w;
    QVERIFY(w.setUpTo(""));  // three data sets
    w.button("cmdEditData")->click();
    frmEdit* editor = w.window.editor();
    QVERIFY(editor && QTest::qWaitForWindowActive(editor));
    QTest::keyClicks(QApplication::focusWidget(), "7");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    const QModelIndex cell = editor->model()->index(0, 0);
    const QPoint centre = editor->MSFlexGridEdit->visualRect(cell).center();
    for (const QString& text : kHostileTexts) {
      const size_t before = w.dialogs.messages().size();
      QTest::mouseClick(editor->MSFlexGridEdit->viewport(), Qt::LeftButton, {}, centre);  // a double click
      QTest::mouseDClick(editor->MSFlexGridEdit->viewport(), Qt::LeftButton, {}, centre);
      QVERIFY(editor->txtDataEntry->hasFocus());
      editor->txtDataEntry->selectAll();
      typeText(text);  // an overflowing key or paste is undone: the cell keeps a text it can hold
      QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
      const QString kept = QString(text).remove(QRegularExpression("[^-+.0-9Ee]"));  // what the cell's filter lets in
      const QString shown = editor->model()->cellText(cell);
      const bool told = w.dialogs.messages().size() == before + 1 && w.dialogs.messages().back().prompt == "Overflow";
      QCOMPARE(told, overflows(kept));
      QCOMPARE(shown == kept, !told);
      QCOMPARE(w.problem.X(2, 1), leadingNumber(shown.toStdString()));
      QCOMPARE(w.problem.X(1, 1), 0.0);
    }
    for (const QString& text : kHostileTexts) {
      const int sets = w.problem.N;
      const size_t messages = w.dialogs.messages().size();
      w.window.editor()->cmdExit->click();
      w.dialogs.queueInputBox(text.toStdString());
      w.button("cmdAddData")->click();
      QCOMPARE(w.dialogs.messages().size(), messages + (overflows(text) ? 1 : 0));
      QCOMPARE(w.problem.N, sets + (text == "1,5" ? 1 : 0));  // only "1,5" counts, as one
    }
  }

  void estimatesPoint() {
    const RegressionProblem line = fittedLine();
    ScriptedDialogs dialogs;
    frmEvaluations estimates(line, dialogs);
    QVERIFY(activate(estimates));
    for (const QString& text : kHostileTexts) {
      const QString shown = estimates.lblApprox->text();
      if (enter(estimates.txtVarx.at(0), text, dialogs)) {
        QCOMPARE(estimates.lblApprox->text(), shown);
        estimates.txtVarx.at(0)->setText("1");
        continue;
      }
      estimates.cmdCompute->click();
      QCOMPARE(estimates.lblApprox->text().toDouble(), 1 + 2 * leadingNumber(text.toStdString()));
    }
  }

  void studyWindowFields() {
    Plot<frmPlot> plot(fittedLine());
    plot.window->txtEquation->setText("x^2-2");
    plot.walk({"cmdPlot", "cmdRoots", "cmdIntegrate", "cmdExtrema", "cmdDerVal", "cmdZoomIn"});
  }

  void stereoWindowFields() { Plot<frmStereoPlot>().walk({"cmdPlot", "cmdZoomIn", "cmdIncRotX", "cmdIncWindX"}); }

  // The guard behind all this: an error escaping an event handler is shown, not fatal.
  void escapedErrorIsShownByTheApplication() {
    struct Raising : QObject {
      bool event(QEvent*) override { throw RuntimeError(err::Overflow); }
    } raising;
    QEvent event(QEvent::User);
    QVERIFY(!QCoreApplication::sendEvent(&raising, &event));
    QCOMPARE(guardDialogs->messages().size(), size_t{1});
    QCOMPARE(guardDialogs->messages()[0].prompt, std::string("Overflow"));
    guardMessagesAllowed = 1;
  }
};

}  // namespace orvane

int main(int argc, char** argv) {
  orvane::Application application(argc, argv);
  orvane::ScriptedDialogs guard;
  orvane::guardDialogs = &guard;
  application.reportErrorsTo(&guard);
  orvane::HostileTextTest test;
  QTEST_SET_MAIN_SOURCE_PATH
  return QTest::qExec(&test, argc, argv);
}

#include "HostileTextTest.moc"
