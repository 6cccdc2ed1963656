#include "regression/ui/frmOrvane.h"

#include <QAction>
#include <QCloseEvent>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QFont>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QMetaMethod>
#include <QMimeData>
#include <QPushButton>
#include <QVBoxLayout>
#include <new>

#include "engine/PointEvaluation.h"
#include "platform/Dialogs.h"
#include "platform/NumberText.h"
#include "platform/PrinterPage.h"
#include "platform/RecordLine.h"
#include "platform/RuntimeError.h"
#include "platform/SafeFile.h"
#include "platform/ui/Shortcuts.h"
#include "platform/ui/TextBox.h"
#include "regression/CsvProblem.h"
#include "regression/RegressionFile.h"
#include "regression/RegressionReport.h"
#include "regression/Solver.h"
#include "regression/ui/DataGridModel.h"
#include "regression/ui/frmEdit.h"
#include "regression/ui/frmEvaluations.h"
#include "regression/ui/frmStatistics.h"

namespace orvane {

namespace {

constexpr std::string_view kFileFilter = "All files (*)";
constexpr std::string_view kCsvFilter = "Tables of text (*.csv *.tsv *.txt);;All files (*)";
const QString kCaption = QStringLiteral("Orvane Regression  www.orvane.example");
constexpr const char* kOutOfMemory = "Out of memory";

QString qs(const std::string& text) { return QString::fromStdString(text); }

template <typename T>
T* named(T* widget, const char* name) {
  widget->setObjectName(QString::fromLatin1(name));
  return widget;
}

}  // namespace

frmOrvane::frmOrvane(Dialogs& dialogs, QWidget* parent) : QMainWindow(parent), dialogs_(dialogs) {
  setWindowTitle(kCaption);
  buildControls();
  buildMenus();
  buildStatisticsControls();
  buildFileCommands();
  Form_Load();
}

frmOrvane::~frmOrvane() = default;

void frmOrvane::buildControls() {
  auto* central = new QWidget(this);
  setCentralWidget(central);

  lblOrder = named(new QLabel(QStringLiteral("Enter # of independent variables:")), "lblOrder");
  txtOrder = named(new TextBox(), "txtOrder");
  lblDepVarNam = named(new QLabel(QStringLiteral("Name of dependent variable:")), "lblDepVarNam");
  txtDepVarNam = named(new TextBox(), "txtDepVarNam");
  lblVarNam = named(new QLabel(), "lblVarNam");
  txtVarNams = named(new TextBox(QStringLiteral("x,y")), "txtVarNams");
  Label1 = named(new QLabel(QStringLiteral("# of data sets:")), "Label1");
  txtN = named(new TextBox(), "txtN");
  cmdEditData = named(new QPushButton(QStringLiteral("Edit data")), "cmdEditData");
  cmdAddData = named(new QPushButton(QStringLiteral("Add data")), "cmdAddData");
  cmdCompute = named(new QPushButton(QStringLiteral("Compute")), "cmdCompute");
  cmdCompute->setToolTip(QStringLiteral("Compute coefficients"));
  lblResults = named(new QLabel(QStringLiteral("Results")), "lblResults");
  lstCoeff = named(new QListWidget(), "lstCoeff");
  QFont fixed(QStringLiteral("Courier New"));
  fixed.setStyleHint(QFont::TypeWriter);
  lstCoeff->setFont(fixed);
  lstCoeff->setMinimumWidth(QFontMetrics(fixed).horizontalAdvance(QString(60, QLatin1Char('M'))));
  lblResults->setBuddy(lstCoeff);
  cmdEvaluations = named(new QPushButton(QStringLiteral("Evaluations")), "cmdEvaluations");
  cmdPlot = named(new QPushButton(QStringLiteral("&Plot")), "cmdPlot");
  cmdPlot->setToolTip(QStringLiteral("Select what to plot from list"));
  cmdExit = named(new QPushButton(QStringLiteral("E&xit")), "cmdExit");
  // Leaving the program never waits for a field to be filled in correctly.
  TextBox::setCausesValidation(cmdExit, false);
  txtOrder->setNumberField(true);
  txtN->setNumberField(true);

  auto* fields = new QGridLayout();
  fields->addWidget(lblOrder, 0, 0);
  fields->addWidget(txtOrder, 0, 1);
  fields->addWidget(lblDepVarNam, 1, 0);
  fields->addWidget(txtDepVarNam, 1, 1);
  fields->addWidget(lblVarNam, 2, 0, 1, 2);
  fields->addWidget(txtVarNams, 3, 0, 1, 2);
  fields->addWidget(Label1, 4, 0);
  fields->addWidget(txtN, 4, 1);

  auto* dataButtons = new QHBoxLayout();
  dataButtons->addWidget(cmdEditData);
  dataButtons->addWidget(cmdAddData);
  dataButtons->addWidget(cmdCompute);

  auto* lowerButtons = new QHBoxLayout();
  lowerButtons->addWidget(cmdEvaluations);
  lowerButtons->addWidget(cmdPlot);
  lowerButtons->addStretch();
  lowerButtons->addWidget(cmdExit);

  auto* layout = new QVBoxLayout(central);
  layout->addLayout(fields);
  layout->addLayout(dataButtons);
  layout->addWidget(lblResults);
  layout->addWidget(lstCoeff, 1);
  layout->addLayout(lowerButtons);

  setTabOrder(txtOrder, txtDepVarNam);
  setTabOrder(txtDepVarNam, txtVarNams);
  setTabOrder(txtVarNams, txtN);
  setTabOrder(txtN, cmdEditData);
  setTabOrder(cmdEditData, cmdAddData);
  setTabOrder(cmdAddData, cmdCompute);
  setTabOrder(cmdCompute, lstCoeff);
  setTabOrder(lstCoeff, cmdEvaluations);
  setTabOrder(cmdEvaluations, cmdPlot);
  setTabOrder(cmdPlot, cmdExit);

  cmdAddData->setEnabled(false);
  cmdEvaluations->setEnabled(false);
  cmdPlot->setVisible(false);

  connect(txtOrder, &TextBox::Validate, this, &frmOrvane::txtOrder_Validate);
  connect(txtOrder, &TextBox::LostFocus, this, &frmOrvane::txtOrder_LostFocus);
  connect(txtDepVarNam, &TextBox::Validate, this, &frmOrvane::txtDepVarNam_Validate);
  connect(txtDepVarNam, &TextBox::LostFocus, this, &frmOrvane::txtDepVarNam_LostFocus);
  connect(txtVarNams, &TextBox::Validate, this, &frmOrvane::txtVarNams_Validate);
  connect(txtVarNams, &TextBox::LostFocus, this, &frmOrvane::txtVarNams_LostFocus);
  connect(txtN, &TextBox::Validate, this, &frmOrvane::txtN_Validate);
  connect(cmdEditData, &QPushButton::clicked, this, &frmOrvane::cmdEditData_Click);
  connect(cmdAddData, &QPushButton::clicked, this, &frmOrvane::cmdAddData_Click);
  connect(cmdCompute, &QPushButton::clicked, this, &frmOrvane::cmdCompute_Click);
  connect(cmdEvaluations, &QPushButton::clicked, this, &frmOrvane::cmdEvaluations_Click);
  connect(cmdPlot, &QPushButton::clicked, this, &frmOrvane::cmdPlot_Click);
  connect(cmdExit, &QPushButton::clicked, this, &frmOrvane::cmdExit_Click);
}

void frmOrvane::buildMenus() {
  mnuFile = named(menuBar()->addMenu(QStringLiteral("File")), "mnuFile");
  mnuOpen = named(mnuFile->addAction(QStringLiteral("Open")), "mnuOpen");
  mnuFile->addSeparator();
  mnuSave = named(mnuFile->addAction(QStringLiteral("Save")), "mnuSave");
  mnuSaveAs = named(mnuFile->addAction(QStringLiteral("Save As")), "mnuSaveAs");
  mnuFile->addSeparator();
  mnuPrint = named(mnuFile->addAction(QStringLiteral("Print")), "mnuPrint");
  mnuHelp = named(menuBar()->addAction(QStringLiteral("Help")), "mnuHelp");
  mnuAbout = named(menuBar()->addAction(QStringLiteral("About")), "mnuAbout");

  connect(mnuOpen, &QAction::triggered, this, &frmOrvane::mnuOpen_Click);
  connect(mnuSave, &QAction::triggered, this, &frmOrvane::mnuSave_Click);
  connect(mnuSaveAs, &QAction::triggered, this, &frmOrvane::mnuSaveAs_Click);
  connect(mnuPrint, &QAction::triggered, this, &frmOrvane::mnuPrint_Click);
  connect(mnuHelp, &QAction::triggered, this, &frmOrvane::mnuHelp_Click);
  connect(mnuAbout, &QAction::triggered, this, &frmOrvane::mnuAbout_Click);
}

void frmOrvane::buildFileCommands() {
  mnuOpen->setShortcuts(StandardKeys(QKeySequence::Open, QKeySequence(Qt::CTRL | Qt::Key_O)));
  mnuSave->setShortcuts(StandardKeys(QKeySequence::Save, QKeySequence(Qt::CTRL | Qt::Key_S)));
  mnuSaveAs->setShortcuts(StandardKeys(QKeySequence::SaveAs, QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S)));
  mnuPrint->setShortcuts(StandardKeys(QKeySequence::Print, QKeySequence(Qt::CTRL | Qt::Key_P)));
  mnuHelp->setShortcuts(StandardKeys(QKeySequence::HelpContents, QKeySequence(Qt::Key_F1)));
  mnuExit = named(new QAction(QStringLiteral("E&xit"), this), "mnuExit");
  mnuExit->setShortcuts(StandardKeys(QKeySequence::Quit, QKeySequence(Qt::CTRL | Qt::Key_Q)));
  addAction(mnuExit);
  cmdExit->setToolTip(QStringLiteral("Ctrl+Q"));
  connect(mnuExit, &QAction::triggered, this, &frmOrvane::cmdExit_Click);

  // Tables of text beside the file pair: imported when a pair could be opened, exported
  // when the problem could be saved.
  const QList<QAction*> entries = mnuFile->actions();
  mnuImportCsv = named(new QAction(QStringLiteral("Import CSV..."), this), "mnuImportCsv");
  mnuExportCsv = named(new QAction(QStringLiteral("Export CSV..."), this), "mnuExportCsv");
  mnuFile->insertAction(entries.value(entries.indexOf(mnuOpen) + 1), mnuImportCsv);
  mnuFile->insertAction(entries.value(entries.indexOf(mnuSaveAs) + 1), mnuExportCsv);
  connect(mnuOpen, &QAction::enabledChanged, mnuImportCsv, &QAction::setEnabled);
  connect(mnuSave, &QAction::enabledChanged, mnuExportCsv, &QAction::setEnabled);
  connect(mnuImportCsv, &QAction::triggered, this, &frmOrvane::mnuImportCsv_Click);
  connect(mnuExportCsv, &QAction::triggered, this, &frmOrvane::mnuExportCsv_Click);
  setAcceptDrops(true);
}

// The windows without a Help menu of their own show this window's help on F1.
void frmOrvane::helpOnF1(QWidget& window) {
  auto* help = new QAction(&window);
  help->setShortcuts(StandardKeys(QKeySequence::HelpContents, QKeySequence(Qt::Key_F1)));
  window.addAction(help);
  connect(help, &QAction::triggered, this, &frmOrvane::mnuHelp_Click);
}

void frmOrvane::Form_Load() {
  workbench_.startDirectory = QDir::currentPath().toStdString();
  sh.sharedError = &workbench_.evaluationError;
  ScriptControl1.SetErrorHandler([this](const RuntimeError& error) { ScriptControl1_Error(error); });
  RegisterMathObject(ScriptControl1, sh);
  mnuSave->setEnabled(false);
  mnuSaveAs->setEnabled(false);
  mnuPrint->setEnabled(false);
  mnuAbout->setVisible(false);
  lblVarNam->setText(QStringLiteral("Enter the names of the independent variables, separated by commas:"));
  TextBox::reportErrorsTo(this, dialogs_);
  txtOrder->setFocus();  // the problem is set up from its first field on
  workbench_.tolerance = 0.004;
  workbench_.tolerance2 = 0.008;
  workbench_.toleranceSquared = 0.008 * 0.008;
}

void frmOrvane::ScriptControl1_Error(const RuntimeError& error) { dialogs_.MsgBox(error.description()); }

void frmOrvane::ClearResults() {
  if (loadingFile_) return;
  lstCoeff->clear();
  workbench_.problem.computed = false;
  workbench_.fitted = false;
  cmdEvaluations->setEnabled(false);
  if (evaluations_) evaluations_->close();  // it would evaluate coefficients that are gone
  workbench_.summary.reset();
  showSummary();
}

void frmOrvane::SetDisplayedSpecs() {
  const RegressionProblem& p = workbench_.problem;
  txtOrder->setText(QString::number(p.m));
  txtN->setText(QString::number(p.N));
  txtDepVarNam->setText(qs(p.dependentName));
  txtVarNams->setText(qs(joinNames(p.names)));
  editorWindow().PrepareGrid(loadingFile_);
}

frmEdit& frmOrvane::editorWindow() {
  if (!editor_) {
    // A window of its own (no parent), so disabling the main window leaves it usable.
    editor_ = std::make_unique<frmEdit>(workbench_.problem, dialogs_);
    connect(editor_.get(), &frmEdit::setCountChanged, this, &frmOrvane::frmEdit_SetCountChanged);
    helpOnF1(*editor_);
    // Any change of the data, typed, pasted, deleted, undone or redone, is unsaved.
    const auto changed = [this] { setModified(true); };
    connect(editor_->model(), &QAbstractItemModel::dataChanged, this, changed);
    connect(editor_->model(), &QAbstractItemModel::rowsInserted, this, changed);
    connect(editor_->model(), &QAbstractItemModel::rowsRemoved, this, changed);
    connect(editor_.get(), &frmEdit::done, this, &frmOrvane::frmEdit_Done);
  }
  return *editor_;
}

// ---- the four problem fields, in the order they are filled ----

void frmOrvane::txtOrder_Validate(bool& cancel) {
  if (loadingFile_) return;
  const double value = leadingNumber(txtOrder->text().toStdString());
  if (!(value >= 1) || value > 2147483647.0) {
    cancel = true;
    return;
  }
  workbench_.problem.m = toInt32(value);
}

void frmOrvane::txtOrder_LostFocus() {
  if (loadingFile_) return;
  txtOrder->setEnabled(false);
  if (workbench_.problem.m < 3) cmdPlot->setVisible(true);
  mnuOpen->setEnabled(false);
  if (txtDepVarNam->isEnabled()) txtDepVarNam->setFocus();
}

void frmOrvane::txtDepVarNam_Validate(bool& cancel) {
  if (loadingFile_) return;
  workbench_.problem.dependentName = txtDepVarNam->text().toStdString();
  if (!isValidDependentName(workbench_.problem.dependentName)) cancel = true;
}

void frmOrvane::txtDepVarNam_LostFocus() {
  if (loadingFile_) return;
  if (txtVarNams->isEnabled()) txtVarNams->setFocus();
  txtDepVarNam->setEnabled(false);
}

void frmOrvane::txtVarNams_Validate(bool& cancel) {
  if (loadingFile_) return;
  std::vector<std::string> parts = splitNames(txtVarNams->text().toStdString());
  if (!namesFitOrder(parts, workbench_.problem.m)) {
    cancel = true;
    return;
  }
  workbench_.problem.names = std::move(parts);
}

void frmOrvane::txtVarNams_LostFocus() {
  if (loadingFile_) return;
  if (txtN->isEnabled()) txtN->setFocus();
  txtVarNams->setEnabled(false);
  enableSavingAndAbout();
  setModified(true);
}

void frmOrvane::txtN_Validate(bool& cancel) {
  if (loadingFile_) return;
  double value = 0;
  try {
    value = parseStrict(txtN->text().toStdString());
  } catch (const RuntimeError& error) {
    ShowRunTimeError(dialogs_, error);
    cancel = true;
    return;
  }
  if (value < 3) cancel = true;
}

void frmOrvane::enableSavingAndAbout() {
  mnuSave->setEnabled(true);
  mnuSaveAs->setEnabled(true);
  mnuPrint->setEnabled(true);
  mnuAbout->setVisible(true);
}

// ---- data ----

void frmOrvane::cmdEditData_Click() {
  if (workbench_.problem.m < 1) {
    txtOrder->setFocus();  // the problem has no variables yet
    return;
  }
  // The grid is made before the first sets exist, so that it shows them as new.
  frmEdit& editor = editorWindow();
  int32_t N = 0;
  try {
    N = toInt32(parseStrict(txtN->text().toStdString()));
  } catch (const RuntimeError& error) {
    // Until the fields before it are filled in, the number of data sets is not asked
    // for: the focus goes to the first of them, as a refused field keeps it. After,
    // the focus shows the field the box is about.
    for (TextBox* earlier : {txtDepVarNam, txtVarNams})
      if (earlier->isEnabled()) {
        earlier->setFocus();
        return;
      }
    txtN->setFocus();
    ShowRunTimeError(dialogs_, error);
    return;
  }
  RegressionProblem& p = workbench_.problem;
  if (!p.dataDimensioned) {
    if (N < 3) return;
    if (RegressionProblem::tooLarge(p.m, N)) {
      dialogs_.MsgBox(kOutOfMemory, mb::Critical);
      return;
    }
    try {
      p.N = N;
      p.dimensionData();
    } catch (const std::bad_alloc&) {
      dialogs_.MsgBox(kOutOfMemory, mb::Critical);
      return;
    }
    cmdAddData->setEnabled(true);
    txtN->setEnabled(false);
  }
  editor.PrepareGrid(false);
  setEnabled(false);
}

void frmOrvane::cmdAddData_Click() {
  const std::optional<std::string> answer =
      dialogs_.InputBox("How many additional data sets?", "Add data");
  if (!answer) return;
  double value = 0;
  try {
    value = roundHalfEven(leadingNumber(*answer));
  } catch (const RuntimeError& error) {
    ShowRunTimeError(dialogs_, error);
    return;
  }
  if (!(value >= 1) || value > 2147483647.0 - workbench_.problem.N) return;
  if (RegressionProblem::tooLarge(workbench_.problem.m, workbench_.problem.N + static_cast<int64_t>(value))) {
    dialogs_.MsgBox(kOutOfMemory, mb::Critical);
    return;
  }
  // The editor opens first, so that the new sets are its first step to undo.
  cmdEditData_Click();
  if (!editor_ || !editor_->isVisible()) return;
  try {
    editor_->AddSets(static_cast<int32_t>(value));
  } catch (const std::bad_alloc&) {
    dialogs_.MsgBox(kOutOfMemory, mb::Critical);
  }
}

// Sets were added, deleted, or brought back or taken away again by undo and redo. As a
// delete does, a set taken away clears the results; added sets leave them.
void frmOrvane::frmEdit_SetCountChanged() {
  const bool fewer = workbench_.problem.N < txtN->text().toInt();
  txtN->setText(QString::number(workbench_.problem.N));
  if (fewer) ClearResults();
}

void frmOrvane::frmEdit_Done() { setEnabled(true); }

// ---- the fit ----

void frmOrvane::cmdCompute_Click() {
  if (!workbench_.problem.dataDimensioned) {
    dialogs_.MsgBox("There are no data sets yet: enter them with \"Edit data\" or open a file.", mb::Exclamation);
    return;
  }
  dialogs_.SetBusy(true);
  ClearResults();
  workbench_.problem.computed = false;
  try {
    const FitOutcome outcome = Compute(workbench_.problem);
    if (outcome != FitOutcome::Computed) lstCoeff->addItem(qs(SingularMessage(outcome)));
  } catch (const std::bad_alloc&) {
    dialogs_.MsgBox(kOutOfMemory, mb::Critical);
  }
  workbench_.fitted = workbench_.problem.computed;
  if (workbench_.problem.computed) {
    dialogs_.Beep();
    showResults();
    setModified(true);  // the fit is saved with the problem
  }
  dialogs_.SetBusy(false);
}

void frmOrvane::showResults() {
  lstCoeff->clear();
  for (const std::string& line : ResultsListing(workbench_.problem)) lstCoeff->addItem(qs(line));
  cmdEvaluations->setEnabled(true);
  summarizeFit();
}

// ---- the statistics of the fit ----

void frmOrvane::buildStatisticsControls() {
  mnuStatistics = named(new QAction(QStringLiteral("&Statistics"), this), "mnuStatistics");
  mnuStatistics->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_T));
  mnuStatistics->setToolTip(QStringLiteral("Standard errors, tests, residuals and digits trusted of the fit (Ctrl+T)"));
  mnuStatistics->setEnabled(false);
  menuBar()->insertAction(mnuHelp, mnuStatistics);
  connect(mnuStatistics, &QAction::triggered, this, &frmOrvane::mnuStatistics_Click);

  lblWarning = named(new QLabel(), "lblWarning");
  lblWarning->setStyleSheet(QStringLiteral("color: #c00000"));
  lblWarning->setWordWrap(true);
  lblWarning->setVisible(false);
  auto* layout = static_cast<QVBoxLayout*>(centralWidget()->layout());
  layout->insertWidget(layout->indexOf(lstCoeff) + 1, lblWarning);
}

void frmOrvane::summarizeFit() {
  try {
    workbench_.summary = SummarizeFit(workbench_.problem);
  } catch (const std::bad_alloc&) {
    workbench_.summary.reset();
    dialogs_.MsgBox("Out of memory: no statistics for this fit.", mb::Exclamation);
  }
  showSummary();
}

void frmOrvane::showSummary() {
  const std::string warning = workbench_.summary ? DigitsWarning(*workbench_.summary) : std::string();
  lblWarning->setText(qs(warning));
  lblWarning->setVisible(!warning.empty());
  mnuStatistics->setEnabled(workbench_.summary.has_value());
  if (statistics_) statistics_->Refresh();
}

void frmOrvane::mnuStatistics_Click() {
  if (!statistics_) {
    statistics_ = std::make_unique<frmStatistics>(workbench_, dialogs_);
    helpOnF1(*statistics_);
  }
  statistics_->show();
  statistics_->raise();
  statistics_->activateWindow();
}

void frmOrvane::cmdEvaluations_Click() {
  if (!evaluations_ || !evaluations_->isVisible()) {
    evaluations_ = std::make_unique<frmEvaluations>(workbench_.problem, dialogs_);
    helpOnF1(*evaluations_);
  }
  evaluations_->show();
  evaluations_->raise();
  evaluations_->activateWindow();
}

void frmOrvane::cmdPlot_Click() {
  workbench_.plotOrigin = 1;
  setEnabled(false);
  const int m = workbench_.problem.m;
  if (m != 1 && m != 2) return;
  const QString text = workbench_.problem.computed ? qs(FittedFunctionText(workbench_.problem)) : QString();
  if (!isSignalConnected(QMetaMethod::fromSignal(&frmOrvane::plotRequested))) {
    setEnabled(true);  // no plot window in this build: nothing would enable us again
    return;
  }
  emit plotRequested(m, text);
}

void frmOrvane::cmdExit_Click() { close(); }

void frmOrvane::closeEvent(QCloseEvent* event) {
  if (evaluations_) evaluations_->close();
  if (statistics_) statistics_->close();
  if (editor_) editor_->close();
  event->accept();
  emit unloaded();
}

// ---- the file pair ----

void frmOrvane::mnuOpen_Click() {
  const std::optional<std::string> name = dialogs_.OpenFileName("Open", kFileFilter);
  if (!name || name->empty()) return;
  OpenFile(*name);
}

void frmOrvane::mnuImportCsv_Click() {
  const std::optional<std::string> name = dialogs_.OpenFileName("Import CSV", kCsvFilter);
  if (!name || name->empty()) return;
  openProblem(*name, true);
}

bool frmOrvane::OpenFile(const std::string& path) {
  return openProblem(path, ReadsAsCsv(path));
}

bool frmOrvane::openProblem(const std::string& path, bool asTable) {
  if (!mnuOpen->isEnabled()) {
    dialogs_.MsgBox("This window already holds a problem; a file is opened before one is set up.\r" + path,
                    mb::Exclamation);
    return false;
  }
  RegressionProblem opened;
  try {
    opened = asTable ? ReadCsvProblem(path) : ReadRegressionFiles(path);
  } catch (const RegressionFileError& error) {
    dialogs_.MsgBox(error.what(), mb::Exclamation);
    return false;
  } catch (const std::bad_alloc&) {
    dialogs_.MsgBox(kOutOfMemory, mb::Critical);
    return false;
  }
  if (asTable && !acceptColumnNames(opened)) return false;
  fileName_ = asTable ? std::string() : path;  // Save writes a pair, never over the table
  if (asTable) {
    const QFileInfo table(qs(path));
    offeredName_ = table.dir().filePath(table.completeBaseName() + QStringLiteral(".txt")).toStdString();
  }
  loadingFile_ = true;
  workbench_.problem = std::move(opened);
  workbench_.fitted = workbench_.problem.computed;
  cmdAddData->setEnabled(true);
  for (TextBox* field : {txtN, txtOrder, txtVarNams, txtDepVarNam}) field->setEnabled(false);
  if (workbench_.problem.m < 3) cmdPlot->setVisible(true);
  SetDisplayedSpecs();
  lstCoeff->clear();
  cmdEvaluations->setEnabled(false);
  if (workbench_.problem.computed) showResults();
  mnuOpen->setEnabled(false);
  enableSavingAndAbout();
  loadingFile_ = false;
  titleName_ = QFileInfo(qs(path)).fileName();
  setModified(false);
  return true;
}

bool frmOrvane::acceptColumnNames(RegressionProblem& problem) {
  std::vector<std::string> names = ColumnNames(problem);
  const std::vector<NameCorrection> corrections = NameCorrections(names);
  if (corrections.empty()) return true;
  std::vector<std::string> labels, offered;
  for (const NameCorrection& c : corrections) {
    labels.push_back("Column " + std::to_string(c.column + 1) + (c.column == 0 ? " (dependent), " : ", ") + "\"" +
                     Excerpt(c.given) + "\":");
    offered.push_back(c.offered);
  }
  const std::string prompt =
      "The problem takes names made of a letter followed by letters and digits, each a name of its own. These "
      "columns are offered the names below; accept them or edit them.";
  for (;;) {
    if (!dialogs_.EditNames("Import CSV", prompt, labels, offered) || offered.size() != corrections.size())
      return false;
    for (size_t i = 0; i < corrections.size(); ++i) names[corrections[i].column] = offered[i];
    size_t refused = 0;
    while (refused < names.size() && IsAcceptedColumnName(names, refused)) ++refused;
    if (refused == names.size()) break;
    dialogs_.MsgBox("\"" + Excerpt(names[refused]) +
                        "\" is not a name the problem takes: a letter followed by letters and digits, not the "
                        "name of another column.",
                    mb::Exclamation, "Import CSV");
  }
  RenameColumns(problem, std::move(names));
  return true;
}

void frmOrvane::mnuSave_Click() {
  if (fileName_.empty()) {
    const std::optional<std::string> name = dialogs_.SaveFileName("Save", kFileFilter, offeredName_);
    if (name) fileName_ = *name;
  }
  if (!fileName_.empty()) writeFiles(fileName_);
}

void frmOrvane::mnuSaveAs_Click() {
  const std::optional<std::string> name = dialogs_.SaveFileName("Save As", kFileFilter, fileName_);
  if (!name || name->empty()) return;
  fileName_ = *name;
  writeFiles(fileName_);
}

bool frmOrvane::writeFiles(const std::string& path) {
  try {
    WriteRegressionFiles(path, workbench_.problem);
  } catch (const RegressionFileError& error) {
    dialogs_.MsgBox(error.what(), mb::Critical);
    return false;
  }
  titleName_ = QFileInfo(qs(path)).fileName();
  setModified(false);
  return true;
}

void frmOrvane::mnuExportCsv_Click() {
  if (!workbench_.problem.dataDimensioned) {
    dialogs_.MsgBox("There are no data sets yet: enter them with \"Edit data\" first.", mb::Exclamation);
    return;
  }
  const std::optional<std::string> name = dialogs_.SaveFileName("Export CSV", kCsvFilter);
  if (!name || name->empty()) return;
  try {
    SafeSave save;
    save.Text(*name, CsvText(workbench_.problem));
    save.Commit();
  } catch (const SaveError& error) {
    dialogs_.MsgBox(error.what(), mb::Critical);
  } catch (const std::bad_alloc&) {
    dialogs_.MsgBox(kOutOfMemory, mb::Critical);
  }
}

void frmOrvane::setModified(bool modified) {
  modified_ = modified;
  showTitle();
}

void frmOrvane::showTitle() {
  if (titleName_.isEmpty() && !modified_) {
    setWindowTitle(kCaption);
    return;
  }
  const QString name = titleName_.isEmpty() ? QStringLiteral("Untitled") : titleName_;
  setWindowTitle(kCaption + QStringLiteral(" - ") + name + (modified_ ? QStringLiteral("*") : QString()));
}

// A single file dropped from a file manager opens as File > Open would.
void frmOrvane::dragEnterEvent(QDragEnterEvent* event) {
  const QList<QUrl> urls = event->mimeData()->urls();
  if (urls.size() == 1 && urls.front().isLocalFile()) event->acceptProposedAction();
}

void frmOrvane::dropEvent(QDropEvent* event) {
  const QList<QUrl> urls = event->mimeData()->urls();
  if (urls.size() != 1 || !urls.front().isLocalFile()) return;
  event->acceptProposedAction();
  OpenFile(urls.front().toLocalFile().toStdString());
}

void frmOrvane::mnuPrint_Click() {
  int32_t sets = 0;
  try {
    sets = toInt32(leadingNumber(txtN->text().toStdString()));
  } catch (const RuntimeError&) {
    sets = 0;
  }
  std::unique_ptr<PrinterPage> page = dialogs_.OpenPrinter("Orvane Regression");
  if (!page) return;
  try {
    PrintRegressionReport(*page, workbench_.problem, sets);
  } catch (const RuntimeError& error) {
    dialogs_.MsgBox(error.description(), mb::Critical);
  }
}

void frmOrvane::mnuHelp_Click() {
  ShowHelpFile(dialogs_, workbench_.startDirectory, "orvane.hlp");
}

void frmOrvane::mnuAbout_Click() { emit aboutRequested(); }

}  // namespace orvane
