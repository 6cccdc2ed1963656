// The regression window and the windows it opens, as a user drives them. Keys go where a
// person's keys go, to the widget that holds the focus in the active window; the keyboard
// tests also run on a real X server (see CMakeLists.txt).

#include <QAbstractItemModelTester>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QListWidget>
#include <QMimeData>
#include <QPushButton>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QtTest>
#include <fstream>

#include "platform/ScriptedDialogs.h"
#include "platform/ui/PictureBox.h"
#include "platform/ui/TextBox.h"
#include "plot2d/PlotDrawing.h"
#include "plot2d/ui/frmPlot.h"
#include "regression/CsvProblem.h"
#include "regression/RegressionFile.h"
#include "regression/RegressionTestSupport.h"
#include "regression/ResidualPlot.h"
#include "regression/Solver.h"
#include "regression/ui/DataGridModel.h"
#include "regression/ui/frmEdit.h"
#include "regression/ui/frmEvaluations.h"
#include "regression/ui/frmOrvane.h"
#include "regression/ui/frmStatistics.h"

using namespace orvane;
using orvane::testing::column;

namespace {

QStringList listLines(const QListWidget* list) {
  QStringList lines;
  for (int i = 0; i < list->count(); ++i) lines << list->item(i)->text();
  return lines;
}

QString cell(frmEdit* editor, int row, int column) {
  return editor->model()->data(editor->model()->index(row, column)).toString();
}

int pixelsOf(PictureBox* picture, Color color) {
  const QImage image = picture->imageCanvas().image();
  const QRgb wanted = QImageCanvas::toQColor(color).rgb();
  int count = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x) count += image.pixel(x, y) == wanted;
  return count;
}

// A file in the one folder of this program's tests.
QString inFolder(const QString& name) {
  static QTemporaryDir folder;
  return QDir(folder.path()).filePath(name);
}


// The main window with its controls found by name, as a user sees them.
struct MainWindow {
  ScriptedDialogs dialogs;
  frmOrvane window{dialogs};
  template <class T = QPushButton>
  T* find(const char* name) { return window.findChild<T*>(name); }
  TextBox *txtOrder = find<TextBox>("txtOrder"), *txtDepVarNam = find<TextBox>("txtDepVarNam"),
          *txtVarNams = find<TextBox>("txtVarNams"), *txtN = find<TextBox>("txtN");
  QPushButton *cmdEditData = find("cmdEditData"), *cmdAddData = find("cmdAddData"), *cmdCompute = find("cmdCompute"),
              *cmdEvaluations = find("cmdEvaluations"), *cmdPlot = find("cmdPlot");
  QListWidget* lstCoeff = find<QListWidget>("lstCoeff");
  QAction *mnuOpen = find<QAction>("mnuOpen"), *mnuSave = find<QAction>("mnuSave"),
          *mnuSaveAs = find<QAction>("mnuSaveAs"), *mnuPrint = find<QAction>("mnuPrint"),
          *mnuAbout = find<QAction>("mnuAbout"), *mnuImportCsv = find<QAction>("mnuImportCsv"),
          *mnuStatistics = find<QAction>("mnuStatistics");
  QLabel* lblWarning = find<QLabel>("lblWarning");
  const RegressionProblem& problem = window.workbench().problem;

  MainWindow() {
    window.show();
    window.activateWindow();
    if (!QTest::qWaitForWindowActive(&window)) qWarning("main window not active");
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

  bool setUp(const QString& order, const QString& dependent, const QString& names, const QString& sets) {
    return enter(txtOrder, order) && enter(txtDepVarNam, dependent) && enter(txtVarNams, names) && enter(txtN, sets);
  }

  // The editor, shown and active, its grid holding the focus on the first cell.
  frmEdit* openEditor() {
    cmdEditData->click();
    frmEdit* editor = window.editor();
    if (editor == nullptr || !QTest::qWaitForWindowActive(editor)) return nullptr;
    return editor->MSFlexGridEdit->hasFocus() ? editor : nullptr;
  }
  frmEdit* editorFor(const QString& order, const QString& dependent, const QString& names, const QString& sets) {
    return setUp(order, dependent, names, sets) ? openEditor() : nullptr;
  }

  // Opens the pair at `path`, written from `p` first when one is given.
  void open(const QString& path, const RegressionProblem* p = nullptr) {
    if (p) WriteRegressionFiles(path.toStdString(), *p);
    dialogs.queueOpenFileName(path.toStdString());
    mnuOpen->trigger();
  }
  frmStatistics* openStatistics() { return pressInMain(Qt::CTRL | Qt::Key_T) ? window.statistics() : nullptr; }

  // Presses keys as a person does, each to whatever holds the focus: "Enter", "Right",
  // "Left", "Up", "Down", "Paste" (Ctrl+V) or characters to type, separated by blanks.
  static bool press(const QString& keys) {
    static const QHash<QString, QKeyCombination> named = {
        {"Enter", Qt::Key_Return}, {"Right", Qt::Key_Right}, {"Left", Qt::Key_Left},
        {"Up", Qt::Key_Up},        {"Down", Qt::Key_Down},   {"Paste", Qt::CTRL | Qt::Key_V}};
    for (const QString& key : keys.split(' ', Qt::SkipEmptyParts)) {
      for (const QString& one : named.contains(key) ? QStringList{key} : key.split(QString(), Qt::SkipEmptyParts)) {
        QWidget* focus = QApplication::focusWidget();
        if (focus == nullptr) return false;
        if (named.contains(one)) QTest::keyClick(focus, named[one].key(), named[one].keyboardModifiers());
        else QTest::keyClicks(focus, one);
      }
    }
    return true;
  }

  // Keys pressed in the main window, made active again as closing the editor leaves it.
  bool pressInMain(QKeyCombination key) {
    window.activateWindow();
    if (!QTest::qWaitForWindowActive(&window)) return false;
    QTest::keyClick(QApplication::focusWidget() ? QApplication::focusWidget() : &window, key.key(),
                    key.keyboardModifiers());
    return true;
  }

  // The window's caption, then what follows it.
  QString titleEnd() const {
    return window.windowTitle().mid(QStringLiteral("Orvane Regression  www.orvane.example").size());
  }
};

}  // namespace

class RegressionWindowTest : public QObject {
  Q_OBJECT

 private slots:
  void fieldsRefuseBadEntriesAndLockWhenLeft() {
    MainWindow w;
    QVERIFY(!w.cmdPlot->isVisible() && !w.cmdEvaluations->isEnabled() && !w.cmdAddData->isEnabled());
    QVERIFY(w.mnuOpen->isEnabled() && !w.mnuSave->isEnabled() && !w.mnuSaveAs->isEnabled());
    QVERIFY(!w.mnuPrint->isEnabled() && !w.mnuAbout->isVisible());

    QVERIFY(!w.enter(w.txtOrder, "0"));
    QVERIFY(w.enter(w.txtOrder, "2.5"));  // halves round to even
    QCOMPARE(w.problem.m, 2);
    QVERIFY(!w.txtOrder->isEnabled() && w.cmdPlot->isVisible() && !w.mnuOpen->isEnabled());

    for (const char* refused : {"2y", ""}) QVERIFY2(!w.enter(w.txtDepVarNam, refused), refused);
    QVERIFY(w.enter(w.txtDepVarNam, "y2"));
    QVERIFY(!w.txtDepVarNam->isEnabled());

    QVERIFY(!w.enter(w.txtVarNams, "a"));  // two are needed
    QVERIFY(w.enter(w.txtVarNams, "x, y"));
    QCOMPARE(w.problem.names, (std::vector<std::string>{"x", " y"}));
    QVERIFY(w.mnuSave->isEnabled() && w.mnuSaveAs->isEnabled() && w.mnuPrint->isEnabled() && w.mnuAbout->isVisible());

    QVERIFY(!w.enter(w.txtN, "2"));
    QVERIFY(w.dialogs.messages().empty());  // refusals are silent
    QVERIFY(w.enter(w.txtN, "3"));

    // "Edit data" before the number of data sets: first the fields before it, silently,
    // then the number itself, its field holding the focus when the box says why.
    MainWindow early;
    early.txtOrder->setFocus();
    QTest::keyClicks(early.txtOrder, "1");
    QTest::mouseClick(early.cmdEditData, Qt::LeftButton);
    QVERIFY(early.dialogs.messages().empty());
    QTRY_VERIFY(early.txtDepVarNam->hasFocus());
    QVERIFY(early.enter(early.txtDepVarNam, "y") && early.enter(early.txtVarNams, "x"));
    QTest::mouseClick(early.cmdEditData, Qt::LeftButton);
    QCOMPARE(early.dialogs.messages().size(), size_t{1});
    QCOMPARE(early.dialogs.messages().back().prompt, std::string("Type mismatch"));
    QVERIFY(early.txtN->hasFocus() && early.window.editor() && !early.window.editor()->isVisible());
  }

  // Typed data fitted, listed, evaluated and its statistics shown (copied, printed, the
  // residual plot redrawn at a new size); a deleted set takes the results with it (undone
  // and redone) and Compute brings them back; the 2-D window draws the bands around the
  // fitted function only; added sets come empty, and an empty grid takes keys safely.
  void typedDataIsFittedThenEdited() {
    MainWindow w;
    QVERIFY(w.setUp("1", "y", "x", "5"));
    w.cmdCompute->click();  // before any data: a message, nothing listed
    QCOMPARE(w.lstCoeff->count(), 0);
    QCOMPARE(w.dialogs.messages().size(), size_t{1});
    QVERIFY(!w.dialogs.busy());
    QVERIFY(!w.mnuStatistics->isEnabled());
    QVERIFY(!w.openStatistics());  // nothing computed: nothing to show

    frmEdit* editor = w.openEditor();
    QVERIFY(editor && editor->isVisible() && !w.window.isEnabled());
    QVERIFY(!w.txtN->isEnabledTo(&w.window) && w.cmdAddData->isEnabledTo(&w.window));
    QCOMPARE(editor->model()->headerData(0, Qt::Horizontal).toString(), QStringLiteral("y"));  // the dependent first
    const char* given[] = {"3.1", "4.9", "7", "9.2", "10.8"};  // y = 1 + 2x, x = 1..5, with a little scatter
    for (int r = 0; r < 5; ++r)
      QVERIFY(w.press(QStringLiteral("%1 Enter Right %2 Enter Down Left").arg(given[r]).arg(r + 1)));
    editor->cmdExit->click();
    QVERIFY(w.window.isEnabled() && w.problem.X(2, 4) == 9.2 && w.problem.X(1, 5) == 5.0);

    const int beeps = w.dialogs.beeps();
    w.cmdCompute->click();
    const QStringList lines = listLines(w.lstCoeff);  // the listing's numbers: SolverTest
    QVERIFY(lines.size() == 9 && lines[8].startsWith("A1=1.97"));  // Sxy / Sxx = 19.7 / 10
    QCOMPARE(w.dialogs.beeps(), beeps + 1);
    QVERIFY(w.cmdEvaluations->isEnabled() && w.window.workbench().fitted);

    QVERIFY(w.mnuStatistics->isEnabled() && !w.lblWarning->isVisible());
    frmStatistics* s = w.openStatistics();
    QVERIFY(s && s->isVisible());
    QCOMPARE(s->grdCoefficients->rowCount(), 2);
    QCOMPARE(s->grdCoefficients->item(1, 0)->text(), QStringLiteral("A1 x"));
    QCOMPARE(s->grdCoefficients->item(1, 1)->text(), lines[8].section('=', 1));  // the listing's own value
    QCOMPARE(listLines(s->lstSummary).filter(QRegularExpression("^Digits trusted: 1[45]")).size(), 1);
    QCOMPARE(s->cboResiduals->count(), 2);
    s->cboResiduals->setCurrentIndex(1);  // against x
    QVERIFY(pixelsOf(s->picResiduals, residualcolors::Points) > 0);
    const QSize before = s->picResiduals->imageCanvas().image().size();
    s->resize(s->width() + 80, s->height() + 60);  // drawn again at the new size
    QTRY_VERIFY(s->picResiduals->imageCanvas().image().size() != before);
    QTRY_VERIFY(pixelsOf(s->picResiduals, residualcolors::Points) > 0);
    s->cmdCopy->click();
    QCOMPARE(w.dialogs.copiedTexts().size(), size_t{1});
    QVERIFY(w.dialogs.copiedTexts()[0].rfind("Coefficients:\n", 0) == 0);
    s->cmdPrint->click();
    QCOMPARE(w.dialogs.printer().texts().front(), std::string("Coefficients:"));
    QCOMPARE(w.dialogs.printer().pictures().size(), size_t{1});
    w.dialogs.setCancelPrinting(true);
    s->cmdPrint->click();
    QCOMPARE(w.dialogs.printer().endDocCount(), 1);  // a cancelled print prints nothing

    w.cmdEvaluations->click();
    frmEvaluations* evaluations = w.window.evaluations();
    QVERIFY(evaluations && evaluations->isVisible());

    editor = w.openEditor();
    editor->MSFlexGridEdit->setCurrentIndex(editor->model()->index(1, 0));
    editor->cmdDelete->click();  // the last set moves into the hole; the results go
    QVERIFY(!w.window.evaluations()->isVisible());  // with the coefficients it evaluated
    QCOMPARE(QStringList({w.txtN->text(), cell(editor, 1, 0)}), QStringList({"4", "10.8"}));
    QCOMPARE(editor->model()->rowCount(), 4);
    QVERIFY(w.lstCoeff->count() == 0 && !w.cmdEvaluations->isEnabled());
    QVERIFY(s->grdCoefficients->rowCount() == 0 && s->lstSummary->count() == 0);  // the statistics too
    QVERIFY(!s->cmdPrint->isEnabled() && !s->cmdCopy->isEnabled() && !w.mnuStatistics->isEnabled());
    QCOMPARE(pixelsOf(s->picResiduals, residualcolors::Points), 0);
    QTest::keyClick(editor->MSFlexGridEdit, Qt::Key_Z, Qt::ControlModifier);  // the set comes back in its row
    QCOMPARE(column(w.problem, 2), std::vector<double>({3.1, 4.9, 7, 9.2, 10.8}));
    QCOMPARE(QStringList({cell(editor, 1, 0), cell(editor, 4, 0), w.txtN->text()}), QStringList({"4.9", "10.8", "5"}));
    QTest::keyClick(editor->MSFlexGridEdit, Qt::Key_Y, Qt::ControlModifier);
    QCOMPARE(column(w.problem, 2), std::vector<double>({3.1, 10.8, 7, 9.2}));
    editor->cmdExit->click();
    w.cmdCompute->click();
    QCOMPARE(s->grdCoefficients->rowCount(), 2);

    frmPlot plot(w.window.workbench(), w.dialogs);
    plot.show();
    QVERIFY(QTest::qWaitForWindowExposed(&plot));
    const QString fitted = QString::fromStdString(FittedFunctionText(w.problem));
    auto* chkBands = plot.findChild<QCheckBox*>("chkBands");
    QVERIFY(chkBands && chkBands->parentWidget()->objectName() == QStringLiteral("fraGraph"));
    const auto bandPixels = [&](const QString& equation, bool bands, int derivative) {
      plot.txtEquation->setText(equation);
      plot.findChild<QComboBox*>("cboDerivative")->setCurrentIndex(derivative);
      chkBands->setChecked(bands);
      plot.findChild<QPushButton*>("cmdPlot")->click();
      return pixelsOf(plot.findChild<PictureBox*>("Picture1"), plotcolors::Bands);
    };
    QVERIFY(bandPixels(fitted, true, 0) > 100);
    QVERIFY(bandPixels(QStringLiteral(" ") + fitted, true, 0) > 100);
    QCOMPARE(bandPixels(fitted, false, 0), 0);
    QCOMPARE(bandPixels(QStringLiteral("2*x"), true, 0), 0);
    QCOMPARE(bandPixels(fitted, true, 1), 0);
    plot.close();

    w.dialogs.queueInputBox(std::string("2"));
    w.cmdAddData->click();
    QCOMPARE(w.txtN->text(), QStringLiteral("6"));
    QVERIFY(editor->isVisible() && editor->model()->rowCount() == 6);
    QCOMPARE(QStringList({cell(editor, 3, 0), cell(editor, 4, 0), cell(editor, 5, 1)}),
             QStringList({"9.2", "", ""}));  // typed cells keep their text, new sets are empty

    for (int i = 0; i < 7; ++i) {  // down to no sets; the last press finds none to delete
      editor->MSFlexGridEdit->setCurrentIndex(editor->model()->index(0, 0));
      editor->cmdDelete->click();
      if (i == 0) QCOMPARE(cell(editor, 0, 0), QString());  // an empty set moved into the first row
    }
    QCOMPARE(w.txtN->text(), QStringLiteral("0"));
    QCOMPARE(editor->model()->rowCount(), 0);
    editor->cmdToggleWidth->click();  // keys and the width toggle on an empty grid change nothing
    editor->MSFlexGridEdit->setFocus();
    QTest::keyClick(editor->MSFlexGridEdit, '5');
    QTest::keyClick(editor->MSFlexGridEdit, Qt::Key_Down);
    QVERIFY(!editor->txtDataEntry->isVisible());
    editor->cmdExit->click();
    w.cmdCompute->click();  // nothing to fit: never a crash
    QVERIFY(!w.window.workbench().fitted && !w.cmdEvaluations->isEnabled());
    w.dialogs.queueInputBox("3");
    w.cmdAddData->click();
    QCOMPARE(w.problem.N, 3);
    QCOMPARE(w.openEditor()->model()->rowCount(), 3);
  }

  // y then x for three sets, each value ended by Enter, the arrows moving between the
  // cells: Enter leaves the cell current, and the problem holds the sets as typed.
  void dataTypedAsAPersonTypesIt() {
    MainWindow w;
    frmEdit* editor = w.editorFor("1", "y", "x", "3");
    QVERIFY(editor);
    QVERIFY(w.press("1 Enter Right 10 Enter Down Left 2 Enter Right 20 Enter Down Left 3 Enter Right 31 Enter"));
    QCOMPARE(editor->MSFlexGridEdit->currentIndex(), editor->model()->index(2, 1));
    QVERIFY(editor->MSFlexGridEdit->hasFocus() && !editor->txtDataEntry->isVisible());
    QCOMPARE(column(w.problem, 2), std::vector<double>({1, 2, 3}));
    QCOMPARE(column(w.problem, 1), std::vector<double>({10, 20, 31}));
  }

  // The entry box takes the characters of a number however they come; a cell shows the
  // text typed into it (new sets are empty), the matrix its leading numeric value. An
  // arrow ends the edit and, inside the grid, edits the next cell.
  void entryBoxKeepsNumberCharactersAndTheirText() {
    MainWindow w;
    frmEdit* editor = w.editorFor("2", "z", "x,y", "3");
    QVERIFY(editor);
    QCOMPARE(cell(editor, 0, 0), QString());
    QVERIFY(w.press("q"));  // not a number key: no edit starts
    QVERIFY(!editor->txtDataEntry->isVisible());
    QVERIFY(w.press("1 x_e"));
    QCOMPARE(editor->txtDataEntry->text(), QStringLiteral("1e"));
    QCOMPARE(w.problem.X(3, 1), 1.0);  // "1e" is stored as 1 in z
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backspace);  // discarded as well
    QCOMPARE(editor->txtDataEntry->text(), QStringLiteral("1e"));
    QCOMPARE(editor->txtDataEntry->toolTip(), QStringLiteral("A(1,1)="));  // the cell as it was

    QVERIFY(w.press("Up"));  // the top edge: the edit ends and nothing moves
    QVERIFY(editor->MSFlexGridEdit->hasFocus() && !editor->txtDataEntry->isVisible());
    QCOMPARE(editor->MSFlexGridEdit->currentIndex(), editor->model()->index(0, 0));
    QCOMPARE(cell(editor, 0, 0), QStringLiteral("1e"));
    QVERIFY(w.press("Right 2.50 Left"));
    QCOMPARE(cell(editor, 0, 1), QStringLiteral("2.50"));
    QCOMPARE(w.problem.X(1, 1), 2.5);
    QVERIFY(editor->txtDataEntry->hasFocus());  // the cell to the left, edited with its text
    QCOMPARE(editor->txtDataEntry->text(), QStringLiteral("1e"));
    QVERIFY(w.press("Left"));  // the left edge
    QCOMPARE(editor->MSFlexGridEdit->currentIndex(), editor->model()->index(0, 0));
    QVERIFY(editor->MSFlexGridEdit->hasFocus());

    QGuiApplication::clipboard()->setText("5abc12");  // pasted text is filtered as typed text
    QVERIFY(w.press("Down Right Right 7 Paste"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Insert, Qt::ShiftModifier);
    QCOMPARE(editor->txtDataEntry->text(), QStringLiteral("7512512"));
    QCOMPARE(w.problem.X(2, 2), 7512512.0);
    QVERIFY(w.press("Enter e5 Enter"));
    QCOMPARE(w.problem.X(2, 2), 0.0);  // "e5" is stored as 0
    QCOMPARE(cell(editor, 1, 2), QStringLiteral("e5"));

    const int base = editor->MSFlexGridEdit->columnWidth(1);
    editor->cmdToggleWidth->click();
    QCOMPARE(editor->MSFlexGridEdit->columnWidth(1), 2 * base);
    editor->cmdToggleWidth->click();
    QCOMPARE(editor->MSFlexGridEdit->columnWidth(1), base);
  }

  // Filip, opened, printed, computed and saved under a new name: the listing has no
  // correct digit and says nothing, the warning says so under the results and not inside
  // them. Opened again, the pair shows the same results and the same warning.
  void savedProblemReopensWithItsResultsAndPrints() {
    const std::string path = inFolder("study.txt").toStdString();
    QStringList listing;
    QString warning;
    {
      MainWindow w;
      const RegressionProblem filip = testing::readDataCsv("Filip");
      w.open(inFolder("filip.txt"), &filip);
      w.mnuPrint->trigger();  // before computing: names and data (the lines: RegressionReportTest)
      QCOMPARE(w.dialogs.printer().texts().at(0), "DEPENDENT VARIABLE: " + filip.dependentName);
      w.cmdCompute->click();
      listing = listLines(w.lstCoeff);
      QVERIFY(listing.size() == 18 && !listing.join("\n").contains("Warning"));  // the listing as always
      QVERIFY(w.lblWarning->isVisible());
      warning = w.lblWarning->text();
      QCOMPARE(warning,
               "Warning: only about 0 digits of the coefficients can be trusted (ill-conditioned data); see Statistics.");
      w.dialogs.queueSaveFileName(path);
      w.mnuSaveAs->trigger();
      QVERIFY(QFile::exists(QString::fromStdString(path + ".dat")));
      QCOMPARE(w.window.fileName(), path);
      QCOMPARE(w.titleEnd(), QStringLiteral(" - study.txt"));
    }
    // A pair that cannot be read: a message naming the data file and its line, the window
    // as it was.
    std::ofstream(inFolder("bad.txt").toStdString(), std::ios::binary) << "5,1,#FALSE#,\"y\"\r\nx\r\n";
    std::ofstream(inFolder("bad.txt.dat").toStdString(), std::ios::binary) << "5,1\r\n 1\r\n 2\r\n three\r\n";
    MainWindow w;
    w.open(inFolder("bad.txt"));
    QCOMPARE(w.dialogs.messages().size(), size_t{1});
    const std::string message = w.dialogs.messages()[0].prompt;
    QVERIFY2(message.find("bad.txt.dat, line ") != std::string::npos, message.c_str());
    QVERIFY(w.mnuOpen->isEnabled() && w.txtOrder->isEnabled() && w.txtOrder->text().isEmpty() && w.problem.m == 0);
    QCOMPARE(w.titleEnd(), QString());
    w.dialogs.queueOpenFileName(path);
    QVERIFY(w.pressInMain(Qt::CTRL | Qt::Key_O));
    QCOMPARE(w.titleEnd(), QStringLiteral(" - study.txt"));
    QCOMPARE(listLines(w.lstCoeff), listing);
    QVERIFY(w.lblWarning->isVisible() && w.mnuStatistics->isEnabled() && w.cmdEvaluations->isEnabled());
    QCOMPARE(w.lblWarning->text(), warning);
    QCOMPARE(QStringList({w.txtOrder->text(), w.txtN->text(), w.txtDepVarNam->text()}),
             QStringList({"10", "82", "y"}));
    QVERIFY(!w.txtN->isEnabled() && !w.mnuOpen->isEnabled() && w.mnuSave->isEnabled() && !w.cmdPlot->isVisible());
    QVERIFY(w.window.editor() && !w.window.editor()->isVisible());
    QCOMPARE(cell(w.window.editor(), 0, 0), QStringLiteral("0.8116"));

    // A change marks the title; Ctrl+S writes the same pair without asking.
    frmEdit* editor = w.openEditor();
    QVERIFY(w.press("8 Enter"));
    editor->cmdExit->click();
    QCOMPARE(w.titleEnd(), QStringLiteral(" - study.txt*"));
    QVERIFY(w.pressInMain(Qt::CTRL | Qt::Key_S));
    QCOMPARE(w.titleEnd(), QStringLiteral(" - study.txt"));
    QCOMPARE(w.dialogs.fileDialogs().size(), size_t{2});  // the two Opens only
    QCOMPARE(ReadRegressionFiles(path).X(11, 1), 8.0);
  }

  // A header the problem cannot take: one list of every name offered, to accept or edit;
  // names still refused are said so and asked again; then the problem is the table's.
  void tableImportedWithItsNamesCorrected() {
    const QString path = inFolder("stack.csv");
    std::ofstream(path.toStdString(), std::ios::binary)
        << "stack.loss;\"Acid Conc.\";y_1;Temp\r\n42;89;80;27\r\n37;86;80;27\r\n37;72;75;25\r\n";

    MainWindow w;  // dropped on the window, a table opens as one; Cancel leaves the window fresh
    w.dialogs.queueEditNames(std::nullopt);
    QMimeData dragged;
    dragged.setUrls({QUrl::fromLocalFile(path)});
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &dragged, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&w.window, &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &dragged, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&w.window, &drop);
    QCOMPARE(w.dialogs.nameLists().size(), size_t{1});
    QVERIFY(w.mnuOpen->isEnabled() && w.txtOrder->isEnabled() && w.problem.m == 0);

    w.dialogs.queueOpenFileName(path.toStdString());
    w.dialogs.queueEditNames(std::vector<std::string>{"loss", "Acid Conc", "TEMP"});
    w.dialogs.queueEditNames(std::vector<std::string>{"loss", "AcidConc", "y1"});
    w.mnuImportCsv->trigger();
    QCOMPARE(w.dialogs.nameLists().size(), size_t{3});
    const ScriptedDialogs::NamesRecord& asked = w.dialogs.nameLists()[1];
    QCOMPARE(asked.labels, (std::vector<std::string>{"Column 1 (dependent), \"stack.loss\":",
                                                     "Column 2, \"Acid Conc.\":", "Column 3, \"y_1\":"}));
    QCOMPARE(asked.names, (std::vector<std::string>{"stackloss", "AcidConc", "y1"}));
    QCOMPARE(w.dialogs.nameLists()[2].names, (std::vector<std::string>{"loss", "Acid Conc", "TEMP"}));
    QCOMPARE(w.dialogs.messages().size(), size_t{1});  // "Acid Conc" is refused first
    QVERIFY(w.dialogs.messages()[0].prompt.find("\"Acid Conc\"") == 0);

    QCOMPARE(w.problem.dependentName, std::string("loss"));
    QCOMPARE(w.problem.names, (std::vector<std::string>{"AcidConc", "y1", "Temp"}));
    QCOMPARE(QStringList({w.txtOrder->text(), w.txtN->text(), w.txtVarNams->text()}),
             QStringList({"3", "3", "AcidConc,y1,Temp"}));
    QCOMPARE(column(w.problem, 4), std::vector<double>({42, 37, 37}));  // the dependent, first in the table
    QVERIFY(!w.mnuOpen->isEnabled() && !w.mnuImportCsv->isEnabled() && w.mnuSave->isEnabled());
    QCOMPARE(w.titleEnd(), QStringLiteral(" - stack.csv"));
    QCOMPARE(w.window.fileName(), std::string());  // Save asks for a pair's name, never writes over the table
    w.mnuSave->trigger();
    QCOMPARE(w.dialogs.fileDialogs().back().initialPath, inFolder("stack.txt").toStdString());

    // Export CSV: a path that runs through a file (refused even to root) is said; then the table comes back.
    w.dialogs.queueSaveFileName((path + "/back.csv").toStdString());
    w.find<QAction>("mnuExportCsv")->trigger();
    QCOMPARE(w.dialogs.messages().size(), size_t{2});
    w.dialogs.queueSaveFileName(inFolder("back.csv").toStdString());
    w.find<QAction>("mnuExportCsv")->trigger();
    QCOMPARE(testing::readText(inFolder("back.csv").toStdString()), CsvText(w.problem));
  }

  // A 3 x 2 block from a spreadsheet fills the cells from the current one, asking before
  // it adds the set it needs; one Ctrl+Z takes all of it back, set included, and Ctrl+Y
  // or Ctrl+Shift+Z puts it back. Ctrl+C copies the selected cells as tab-separated text.
  void blockPastedUndoneAndRedone() {
    MainWindow w;
    frmEdit* editor = w.editorFor("1", "y", "x", "3");
    QVERIFY(editor);
    QAbstractItemModelTester tester(editor->model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
    QVERIFY(w.press("5 Enter"));
    editor->MSFlexGridEdit->setCurrentIndex(editor->model()->index(1, 0));
    w.dialogs.setClipboardText("\"1.5\"\t10\r\n2\t 20\r\n3e1\t-30\r\n");
    w.dialogs.queueMsgBox(mb::Yes);
    QTest::keyClick(editor->MSFlexGridEdit, Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(w.dialogs.messages().size(), size_t{1});
    QCOMPARE(w.dialogs.messages()[0].prompt,
             std::string("The pasted block has 3 rows, 1 more than the data sets from here on.\rAdd 1 data set? "
                         "(No pastes the rows that fit.)"));
    QCOMPARE(w.txtN->text(), QStringLiteral("4"));
    QCOMPARE(column(w.problem, 2), std::vector<double>({5, 1.5, 2, 30}));  // N sets: 4
    QCOMPARE(column(w.problem, 1), std::vector<double>({0, 10, 20, -30}));
    QCOMPARE(QStringList({cell(editor, 1, 0), cell(editor, 3, 1)}), QStringList({"1.5", "-30"}));

    QTest::keyClick(editor->MSFlexGridEdit, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(w.dialogs.copiedTexts().back(), std::string("1.5\t10\n2\t20\n3e1\t-30\n"));  // as the cells show them

    QTest::keyClick(editor->MSFlexGridEdit, Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(w.txtN->text(), QStringLiteral("3"));
    QCOMPARE(column(w.problem, 2), std::vector<double>({5, 0, 0}));
    QCOMPARE(QStringList({cell(editor, 0, 0), cell(editor, 1, 0), cell(editor, 2, 1)}), QStringList({"5", "", ""}));
    QTest::keyClick(editor->MSFlexGridEdit, Qt::Key_Y, Qt::ControlModifier);
    QCOMPARE(column(w.problem, 1), std::vector<double>({0, 10, 20, -30}));
    QTest::keyClick(editor->MSFlexGridEdit, Qt::Key_Z, Qt::ControlModifier);
    QTest::keyClick(editor->MSFlexGridEdit, Qt::Key_Z, Qt::ControlModifier);  // the typed 5 too
    QCOMPARE(cell(editor, 0, 0), QString());
    QVERIFY(!editor->mnuUndo->isEnabled());
    QTest::keyClick(editor->MSFlexGridEdit, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    QTest::keyClick(editor->MSFlexGridEdit, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(column(w.problem, 2), std::vector<double>({5, 1.5, 2, 30}));

    QTest::keyClick(editor->MSFlexGridEdit, Qt::Key_F1);  // the main window's help, from the editor too
    QCOMPARE(w.dialogs.helpRequests().size(), size_t{1});
    QVERIFY(QString::fromStdString(w.dialogs.helpRequests()[0]).endsWith("/orvane.hlp"));

    w.dialogs.setClipboardText("1\t2\t3\n");  // wider than the two columns: refused, nothing changes
    QTest::keyClick(editor->MSFlexGridEdit, Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(w.dialogs.messages().back().prompt,
             std::string("The pasted block is 3 cells wide; from this column on there is room for 2.\r"
                         "Nothing was pasted."));
    QCOMPARE(column(w.problem, 2), std::vector<double>({5, 1.5, 2, 30}));
  }
};

QTEST_MAIN(RegressionWindowTest)
#include "RegressionWindowTest.moc"
