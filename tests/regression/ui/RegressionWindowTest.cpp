// The regression window as a user drives it: fields filled in order and locked, data
// typed into the editor, Compute, Evaluations, Add data, Save and Open, Print.

#include <QAction>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTableView>
#include <QTemporaryDir>
#include <QtTest>

#include "platform/ScriptedDialogs.h"
#include "platform/ui/TextBox.h"
#include "regression/ui/DataGridModel.h"
#include "regression/ui/frmEdit.h"
#include "regression/ui/frmEvaluations.h"
#include "regression/ui/frmOrvane.h"

using namespace orvane;

namespace {

QStringList listLines(const QListWidget* list) {
  QStringList lines;
  for (int i = 0; i < list->count(); ++i) lines << list->item(i)->text();
  return lines;
}

double valueAfterEquals(const QString& line) { return line.section('=', 1).toDouble(); }

// The main window with its controls found by name, as a user sees them.
struct MainWindow {
  ScriptedDialogs dialogs;
  frmOrvane window{dialogs};
  TextBox* txtOrder = window.findChild<TextBox*>("txtOrder");
  TextBox* txtDepVarNam = window.findChild<TextBox*>("txtDepVarNam");
  TextBox* txtVarNams = window.findChild<TextBox*>("txtVarNams");
  TextBox* txtN = window.findChild<TextBox*>("txtN");
  QPushButton* cmdEditData = window.findChild<QPushButton*>("cmdEditData");
  QPushButton* cmdAddData = window.findChild<QPushButton*>("cmdAddData");
  QPushButton* cmdCompute = window.findChild<QPushButton*>("cmdCompute");
  QPushButton* cmdEvaluations = window.findChild<QPushButton*>("cmdEvaluations");
  QPushButton* cmdPlot = window.findChild<QPushButton*>("cmdPlot");
  QListWidget* lstCoeff = window.findChild<QListWidget*>("lstCoeff");
  QAction* mnuOpen = window.findChild<QAction*>("mnuOpen");
  QAction* mnuSave = window.findChild<QAction*>("mnuSave");
  QAction* mnuSaveAs = window.findChild<QAction*>("mnuSaveAs");
  QAction* mnuPrint = window.findChild<QAction*>("mnuPrint");
  QAction* mnuAbout = window.findChild<QAction*>("mnuAbout");

  bool show() {
    window.show();
    window.activateWindow();
    return QTest::qWaitForWindowActive(&window);
  }

  // Types into a field and leaves it with Tab; true when the focus moved on.
  bool enter(TextBox* field, const QString& text) {
    field->setFocus(Qt::TabFocusReason);
    field->selectAll();
    QTest::keyClicks(field, text);
    QTest::keyClick(field, Qt::Key_Tab);
    QCoreApplication::processEvents();
    return !field->hasFocus();
  }

  void setUp(const QString& order, const QString& dependent, const QString& names, const QString& sets) {
    QVERIFY(enter(txtOrder, order));
    QVERIFY(enter(txtDepVarNam, dependent));
    QVERIFY(enter(txtVarNams, names));
    QVERIFY(enter(txtN, sets));
  }

  frmEdit* openEditor() {
    cmdEditData->click();
    return window.editor();
  }
};

// Types `text` into grid cell (row, column), rows and columns counted from 0 over the
// data cells (column 0 is the dependent variable), as a user does: the first character
// typed on the grid opens the entry box, the rest goes into it, Enter ends the edit.
void typeCell(frmEdit* editor, int row, int column, const QString& text) {
  editor->MSFlexGridEdit->setCurrentIndex(editor->model()->index(row, column));
  editor->MSFlexGridEdit->setFocus();
  QTest::keyClick(editor->MSFlexGridEdit, text.at(0).toLatin1());
  QVERIFY(editor->txtDataEntry->isVisible());
  QTest::keyClicks(editor->txtDataEntry, text.mid(1));
  QTest::keyClick(editor->txtDataEntry, Qt::Key_Return);
}

// x = 1..5 against y = 1 + 2x with a little scatter.
void typeLineData(frmEdit* editor) {
  const char* given[] = {"3.1", "4.9", "7", "9.2", "10.8"};
  for (int r = 0; r < 5; ++r) {
    typeCell(editor, r, 1, QString::number(r + 1));
    typeCell(editor, r, 0, given[r]);
  }
}

}  // namespace

class RegressionWindowTest : public QObject {
  Q_OBJECT

 private slots:
  void freshWindowOffersOnlyTheSetUp() {
    MainWindow w;
    QVERIFY(w.show());
    QCOMPARE(w.window.windowTitle(), QStringLiteral("Orvane Regression  www.orvane.example"));
    QCOMPARE(w.txtVarNams->text(), QStringLiteral("x,y"));
    QVERIFY(!w.cmdPlot->isVisible());
    QVERIFY(!w.cmdEvaluations->isEnabled());
    QVERIFY(!w.cmdAddData->isEnabled());
    QVERIFY(w.mnuOpen->isEnabled());
    QVERIFY(!w.mnuSave->isEnabled() && !w.mnuSaveAs->isEnabled() && !w.mnuPrint->isEnabled());
    QVERIFY(!w.mnuAbout->isVisible());
    QCOMPARE(w.cmdCompute->toolTip(), QStringLiteral("Compute coefficients"));
    QCOMPARE(w.cmdPlot->toolTip(), QStringLiteral("Select what to plot from list"));
  }

  void fieldsRefuseBadEntriesAndLockWhenLeft() {
    MainWindow w;
    QVERIFY(w.show());
    QVERIFY(!w.enter(w.txtOrder, "0"));
    QVERIFY(!w.enter(w.txtOrder, "abc"));
    QVERIFY(w.enter(w.txtOrder, "2.5"));  // halves round to even
    QCOMPARE(w.window.workbench().problem.m, 2);
    QVERIFY(!w.txtOrder->isEnabled());
    QVERIFY(w.cmdPlot->isVisible());
    QVERIFY(!w.mnuOpen->isEnabled());

    for (const char* refused : {"2y", "y_1", "y 1"}) QVERIFY2(!w.enter(w.txtDepVarNam, refused), refused);
    QVERIFY(w.enter(w.txtDepVarNam, "y2"));
    QVERIFY(!w.txtDepVarNam->isEnabled());

    QVERIFY(!w.enter(w.txtVarNams, "a,,b"));
    QVERIFY(!w.enter(w.txtVarNams, "a"));
    QVERIFY(w.enter(w.txtVarNams, "x, y"));
    QCOMPARE(w.window.workbench().problem.names, (std::vector<std::string>{"x", " y"}));
    QVERIFY(w.mnuSave->isEnabled() && w.mnuSaveAs->isEnabled() && w.mnuPrint->isEnabled());
    QVERIFY(w.mnuAbout->isVisible());

    QVERIFY(!w.enter(w.txtN, "2"));
    QVERIFY(w.dialogs.messages().empty());  // refusals are silent
    QVERIFY(!w.enter(w.txtN, "many"));
    QCOMPARE(w.dialogs.messages().back().prompt, std::string("Type mismatch"));
    QVERIFY(w.enter(w.txtN, "3"));
  }

  void threeVariablesNeverOfferAPlot() {
    MainWindow w;
    QVERIFY(w.show());
    QVERIFY(w.enter(w.txtOrder, "3"));
    QVERIFY(!w.cmdPlot->isVisible());
  }

  void typedDataIsFittedListedAndEvaluated() {
    MainWindow w;
    QVERIFY(w.show());
    w.setUp("1", "y", "x", "5");
    frmEdit* editor = w.openEditor();
    QVERIFY(editor && editor->isVisible());
    QVERIFY(!w.window.isEnabled());
    QVERIFY(!w.txtN->isEnabledTo(&w.window) && w.cmdAddData->isEnabledTo(&w.window));
    QCOMPARE(editor->windowTitle(), QStringLiteral("Enter/Edit data"));
    QCOMPARE(editor->model()->headerData(0, Qt::Horizontal).toString(), QStringLiteral("y"));
    QCOMPARE(editor->model()->headerData(1, Qt::Horizontal).toString(), QStringLiteral("x"));
    QCOMPARE(editor->model()->headerData(3, Qt::Vertical).toString(), QStringLiteral("Set# 4"));

    typeLineData(editor);
    const RegressionProblem& p = w.window.workbench().problem;
    QCOMPARE(p.X(2, 4), 9.2);  // the first grid column is the dependent variable
    QCOMPARE(p.X(1, 5), 5.0);
    editor->cmdExit->click();
    QVERIFY(w.window.isEnabled());

    w.cmdCompute->click();
    const QStringList lines = listLines(w.lstCoeff);
    QCOMPARE(lines.size(), 9);
    QVERIFY(lines[0].startsWith("              CORRELATION COEFFICIENT=0.99"));
    QCOMPARE(lines[5], QString());
    QCOMPARE(lines[6], QStringLiteral("COEFFICIENTS:"));
    QVERIFY(lines[7].startsWith("A0="));
    QVERIFY(lines[8].startsWith("A1="));
    QVERIFY(qAbs(valueAfterEquals(lines[7]) - 1.09) < 1e-12);  // 7 - 1.97 * 3
    QVERIFY(qAbs(valueAfterEquals(lines[8]) - 1.97) < 1e-12);  // Sxy / Sxx = 19.7 / 10
    QCOMPARE(w.dialogs.beeps(), 1);
    QVERIFY(w.cmdEvaluations->isEnabled());
    QVERIFY(w.window.workbench().fitted);

    w.cmdEvaluations->click();
    frmEvaluations* evaluations = w.window.evaluations();
    QVERIFY(evaluations && evaluations->isVisible());
    QCOMPARE(evaluations->windowTitle(), QStringLiteral("Estimates"));
    QCOMPARE(evaluations->lblApprox->text(), QStringLiteral("Derivative"));
    QCOMPARE(evaluations->lblVarx.at(0)->text(), QStringLiteral("x="));
    evaluations->txtVarx.at(0)->setText("2abc");
    evaluations->cmdCompute->click();
    QVERIFY(qAbs(evaluations->lblApprox->text().toDouble() - 5.03) < 1e-12);
  }

  void deletingASetMovesTheLastIntoItsPlaceAndClearsResults() {
    MainWindow w;
    QVERIFY(w.show());
    w.setUp("1", "y", "x", "5");
    frmEdit* editor = w.openEditor();
    typeLineData(editor);
    editor->cmdExit->click();
    w.cmdCompute->click();
    QVERIFY(w.lstCoeff->count() > 0);

    w.openEditor();
    editor->MSFlexGridEdit->setCurrentIndex(editor->model()->index(1, 0));
    editor->cmdDelete->click();
    const RegressionProblem& p = w.window.workbench().problem;
    QCOMPARE(p.N, 4);
    QCOMPARE(w.txtN->text(), QStringLiteral("4"));
    QCOMPARE(editor->model()->rowCount(), 4);
    QCOMPARE(editor->model()->data(editor->model()->index(1, 0)).toString(), QStringLiteral("10.8"));
    QCOMPARE(w.lstCoeff->count(), 0);
    QVERIFY(!w.cmdEvaluations->isEnabled());
  }

  void deletingEverySetLeavesAnEmptyGridThatStillWorks() {
    MainWindow w;
    QVERIFY(w.show());
    w.setUp("1", "y", "x", "3");
    frmEdit* editor = w.openEditor();
    QVERIFY(editor);
    typeCell(editor, 0, 0, "1");
    for (int i = 0; i < 4; ++i) {  // the last press finds no set to delete
      editor->MSFlexGridEdit->setCurrentIndex(editor->model()->index(0, 0));
      editor->cmdDelete->click();
    }
    const RegressionProblem& p = w.window.workbench().problem;
    QCOMPARE(p.N, 0);
    QCOMPARE(w.txtN->text(), QStringLiteral("0"));
    QCOMPARE(editor->model()->rowCount(), 0);

    // Keys and the width toggle on an empty grid change nothing.
    editor->cmdToggleWidth->click();
    editor->MSFlexGridEdit->setFocus();
    QTest::keyClick(editor->MSFlexGridEdit, '5');
    QTest::keyClick(editor->MSFlexGridEdit, Qt::Key_Down);
    QVERIFY(!editor->txtDataEntry->isVisible());
    editor->cmdExit->click();
    QCOMPARE(p.N, 0);

    // Compute has nothing to fit: a listing line or a message, never a crash.
    w.cmdCompute->click();
    QVERIFY(!w.window.workbench().fitted);
    QVERIFY(!w.cmdEvaluations->isEnabled());

    // Add data brings sets back into the empty grid.
    w.dialogs.queueInputBox("3");
    w.cmdAddData->click();
    QCOMPARE(p.N, 3);
    QCOMPARE(w.openEditor()->model()->rowCount(), 3);
  }

  void entryBoxKeepsOnlyNumberKeysAndMovesWithTheArrows() {
    MainWindow w;
    QVERIFY(w.show());
    w.setUp("2", "z", "x,y", "3");
    frmEdit* editor = w.openEditor();
    editor->MSFlexGridEdit->setCurrentIndex(editor->model()->index(0, 0));
    editor->MSFlexGridEdit->setFocus();
    QTest::keyClick(editor->MSFlexGridEdit, 'q');  // not a number key: no edit starts
    QVERIFY(!editor->txtDataEntry->isVisible());
    QTest::keyClick(editor->MSFlexGridEdit, '1');
    QTest::keyClicks(editor->txtDataEntry, "x_e");
    QCOMPARE(editor->txtDataEntry->text(), QStringLiteral("1e"));
    QCOMPARE(w.window.workbench().problem.X(3, 1), 1.0);  // "1e" is stored as 1
    QTest::keyClick(editor->txtDataEntry, Qt::Key_Backspace);  // discarded as well
    QCOMPARE(editor->txtDataEntry->text(), QStringLiteral("1e"));
    QCOMPARE(editor->txtDataEntry->toolTip(), QStringLiteral("A(1,1)=0"));  // the cell as it was

    QTest::keyClick(editor->txtDataEntry, Qt::Key_Right);
    QCOMPARE(editor->MSFlexGridEdit->currentIndex(), editor->model()->index(0, 1));
    QVERIFY(editor->txtDataEntry->isVisible());
    QTest::keyClick(editor->txtDataEntry, Qt::Key_Up);  // the top edge: nothing moves
    QCOMPARE(editor->MSFlexGridEdit->currentIndex(), editor->model()->index(0, 1));

    const int base = editor->MSFlexGridEdit->columnWidth(1);
    editor->cmdToggleWidth->click();
    QCOMPARE(editor->MSFlexGridEdit->columnWidth(1), 2 * base);
    editor->cmdToggleWidth->click();
    QCOMPARE(editor->MSFlexGridEdit->columnWidth(1), base);
  }

  void addDataKeepsTheSetsAndAppendsZeros() {
    MainWindow w;
    QVERIFY(w.show());
    w.setUp("1", "y", "x", "5");
    frmEdit* editor = w.openEditor();
    typeLineData(editor);
    editor->cmdExit->click();

    w.dialogs.queueInputBox(std::string("0"));
    w.cmdAddData->click();
    QCOMPARE(w.window.workbench().problem.N, 5);
    QCOMPARE(w.dialogs.inputs().back().prompt, std::string("How many additional data sets?"));
    QCOMPARE(w.dialogs.inputs().back().title, std::string("Add data"));

    w.dialogs.queueInputBox(std::string("2"));
    w.cmdAddData->click();
    const RegressionProblem& p = w.window.workbench().problem;
    QCOMPARE(p.N, 7);
    QCOMPARE(w.txtN->text(), QStringLiteral("7"));
    QCOMPARE(p.X(2, 5), 10.8);
    QCOMPARE(p.X(2, 7), 0.0);
    QVERIFY(editor->isVisible());
    QCOMPARE(editor->model()->rowCount(), 7);
  }

  void savedProblemReopensWithItsResults() {
    QTemporaryDir folder;
    const std::string path = QDir(folder.path()).filePath("study.txt").toStdString();
    QStringList listing;
    {
      MainWindow w;
      QVERIFY(w.show());
      w.setUp("1", "y", "x", "5");
      frmEdit* editor = w.openEditor();
      typeLineData(editor);
      editor->cmdExit->click();
      w.cmdCompute->click();
      listing = listLines(w.lstCoeff);
      w.dialogs.queueSaveFileName(path);
      w.mnuSave->trigger();
      QVERIFY(QFile::exists(QString::fromStdString(path + ".dat")));
      QCOMPARE(w.window.fileName(), path);
    }
    MainWindow w;
    QVERIFY(w.show());
    w.dialogs.queueOpenFileName(path);
    w.mnuOpen->trigger();
    QCOMPARE(listLines(w.lstCoeff), listing);
    QVERIFY(w.cmdEvaluations->isEnabled());
    QCOMPARE(w.txtOrder->text(), QStringLiteral("1"));
    QCOMPARE(w.txtN->text(), QStringLiteral("5"));
    QCOMPARE(w.txtDepVarNam->text(), QStringLiteral("y"));
    QCOMPARE(w.txtVarNams->text(), QStringLiteral("x"));
    for (TextBox* field : {w.txtOrder, w.txtDepVarNam, w.txtVarNams, w.txtN}) QVERIFY(!field->isEnabled());
    QVERIFY(!w.mnuOpen->isEnabled() && w.mnuSave->isEnabled() && w.mnuAbout->isVisible());
    QVERIFY(w.cmdPlot->isVisible());
    QVERIFY(w.window.editor() && !w.window.editor()->isVisible());
    QCOMPARE(w.window.editor()->model()->data(w.window.editor()->model()->index(3, 0)).toString(),
             QStringLiteral("9.2"));
  }

  void malformedFileIsReportedAndChangesNothing() {
    QTemporaryDir folder;
    const QString spec = QDir(folder.path()).filePath("bad.txt");
    QFile file(spec);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("5,1,#FALSE#,\"y\"\r\nx\r\n");
    file.close();
    QFile data(spec + ".dat");
    QVERIFY(data.open(QIODevice::WriteOnly));
    data.write("5,1\r\n 1\r\n 2\r\n three\r\n");
    data.close();

    MainWindow w;
    QVERIFY(w.show());
    w.dialogs.queueOpenFileName(spec.toStdString());
    w.mnuOpen->trigger();
    QCOMPARE(w.dialogs.messages().size(), size_t{1});
    const std::string message = w.dialogs.messages()[0].prompt;
    QVERIFY2(message.find("bad.txt.dat") != std::string::npos, message.c_str());
    QVERIFY2(message.find("line") != std::string::npos, message.c_str());
    QVERIFY(w.mnuOpen->isEnabled());
    QVERIFY(w.txtOrder->isEnabled());
    QCOMPARE(w.txtOrder->text(), QString());
    QCOMPARE(w.window.workbench().problem.m, 0);
  }

  void printingBeforeComputingListsNamesAndData() {
    MainWindow w;
    QVERIFY(w.show());
    w.setUp("1", "y", "x", "5");
    frmEdit* editor = w.openEditor();
    typeLineData(editor);
    editor->cmdExit->click();
    w.mnuPrint->trigger();
    const std::vector<std::string> printed = w.dialogs.printer().texts();
    QVERIFY(printed.size() > 6);
    QCOMPARE(printed[0], std::string("DEPENDENT VARIABLE: y"));
    QCOMPARE(printed[1], std::string("INDEPENDENT VARIABLES: x"));
    QCOMPARE(printed[4], std::string("DATA:"));
    QCOMPARE(printed[6], std::string("SET # 1 :"));
    QCOMPARE(printed[7], std::string("x= 1 "));
    QCOMPARE(printed[8], std::string("y= 3.1 "));
    QCOMPARE(w.dialogs.printer().endDocCount(), 1);
  }

  void computeBeforeAnyDataSaysWhatIsMissing() {
    MainWindow w;
    QVERIFY(w.show());
    w.setUp("1", "y", "x", "5");
    w.cmdCompute->click();
    QCOMPARE(w.lstCoeff->count(), 0);
    QCOMPARE(w.dialogs.messages().size(), size_t{1});
    QVERIFY(!w.dialogs.busy());
  }
};

QTEST_MAIN(RegressionWindowTest)
#include "RegressionWindowTest.moc"
