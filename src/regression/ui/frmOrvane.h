#pragma once
// The main window: one regression problem set up field by field, edited, computed,
// evaluated, saved, opened, printed and handed to the plot windows.

#include <QMainWindow>
#include <QString>
#include <memory>
#include <string>

#include "engine/Class1.h"
#include "engine/ExpressionEngine.h"
#include "regression/Workbench.h"

class QAction;
class QDragEnterEvent;
class QDropEvent;
class QLabel;
class QListWidget;
class QMenu;
class QPushButton;

namespace orvane {

class Dialogs;
class RuntimeError;
class TextBox;
class frmEdit;
class frmEvaluations;
class frmStatistics;

class frmOrvane : public QMainWindow {
  Q_OBJECT

 public:
  explicit frmOrvane(Dialogs& dialogs, QWidget* parent = nullptr);
  ~frmOrvane() override;

  // The folder that was current when the window loaded; the help file is looked for there.
  const std::string& startDirectory() const { return workbench_.startDirectory; }

  // The problem, the fit and the shared plot state; plot windows read it.
  Workbench& workbench() { return workbench_; }
  const Workbench& workbench() const { return workbench_; }

  // Empties the results, clears the computed and fitted flags and disables Evaluations
  // (not while a file is being opened).
  void ClearResults();
  // Writes m, N and the names into the fields and prepares the editor grid.
  void SetDisplayedSpecs();

  frmEdit* editor() const { return editor_.get(); }
  frmEvaluations* evaluations() const { return evaluations_.get(); }
  frmStatistics* statistics() const { return statistics_.get(); }
  // The current file of Save, empty until one is opened or saved.
  const std::string& fileName() const { return fileName_; }

  // Opens a regression file pair, or a table of text (a name ending in .csv, or a file
  // without a data file beside it that does not start with a number), as Open and
  // "Import CSV..." do; for the command line and for files dropped on the window. Only a
  // window that holds no problem yet opens one; false when nothing was opened (the user
  // was told why, or cancelled the renaming of a table's columns).
  bool OpenFile(const std::string& path);

 signals:
  void aboutRequested();
  // The window is unloading (Exit or the close box).
  void unloaded();
  // Plot was pressed: the window is now disabled and waits for the plot window (for one
  // or two variables) to take `functionText` and to enable it again when it closes.
  void plotRequested(int m, QString functionText);

 protected:
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private slots:
  void txtOrder_Validate(bool& cancel);
  void txtOrder_LostFocus();
  void txtDepVarNam_Validate(bool& cancel);
  void txtDepVarNam_LostFocus();
  void txtVarNams_Validate(bool& cancel);
  void txtVarNams_LostFocus();
  void txtN_Validate(bool& cancel);
  void cmdEditData_Click();
  void cmdAddData_Click();
  void cmdCompute_Click();
  void cmdEvaluations_Click();
  void cmdPlot_Click();
  void cmdExit_Click();
  void mnuOpen_Click();
  void mnuSave_Click();
  void mnuSaveAs_Click();
  void mnuPrint_Click();
  void mnuHelp_Click();
  void mnuAbout_Click();
  void mnuStatistics_Click();
  void mnuImportCsv_Click();
  void mnuExportCsv_Click();
  void frmEdit_SetCountChanged();
  void frmEdit_Done();

 private:
  void Form_Load();
  void buildControls();
  void buildMenus();
  void ScriptControl1_Error(const RuntimeError& error);
  frmEdit& editorWindow();
  void enableSavingAndAbout();
  void showResults();
  bool writeFiles(const std::string& path);
  // Reads FILE as a table or as a file pair and shows the problem; false when nothing
  // was opened.
  bool openProblem(const std::string& path, bool asTable);
  // The names of a table's header that the problem cannot take, replaced by names the
  // user accepts or edits; false when the user cancels.
  bool acceptColumnNames(RegressionProblem& problem);
  // The menus' keys and the table entries of File.
  void buildFileCommands();
  void helpOnF1(QWidget& window);
  // The caption, the name of the file open and "*" while there are unsaved changes.
  void setModified(bool modified);
  void showTitle();
  // The Statistics entry and the warning line under the results; the summary of the
  // fit computed, or cleared, and shown wherever it is shown.
  void buildStatisticsControls();
  void summarizeFit();
  void showSummary();

  Dialogs& dialogs_;
  Workbench workbench_;
  std::string fileName_;
  bool loadingFile_ = false;  // the loaded-from-file flag
  QString titleName_;         // the file the problem came from or was saved to
  std::string offeredName_;   // what Save offers for an imported table: its name with .txt
  bool modified_ = false;

  // The window's own engine; it checks formulas the way the plot windows evaluate them.
  ExpressionEngine ScriptControl1;
  Class1 sh;

  // Controls, named as on the form.
  QLabel* lblOrder = nullptr;
  TextBox* txtOrder = nullptr;
  QLabel* lblDepVarNam = nullptr;
  TextBox* txtDepVarNam = nullptr;
  QLabel* lblVarNam = nullptr;
  TextBox* txtVarNams = nullptr;
  QLabel* Label1 = nullptr;
  TextBox* txtN = nullptr;
  QPushButton* cmdEditData = nullptr;
  QPushButton* cmdAddData = nullptr;
  QPushButton* cmdCompute = nullptr;
  QLabel* lblResults = nullptr;
  QListWidget* lstCoeff = nullptr;
  QPushButton* cmdEvaluations = nullptr;
  QPushButton* cmdPlot = nullptr;
  QPushButton* cmdExit = nullptr;

  QMenu* mnuFile = nullptr;
  QAction* mnuOpen = nullptr;
  QAction* mnuSave = nullptr;
  QAction* mnuSaveAs = nullptr;
  QAction* mnuPrint = nullptr;
  QAction* mnuHelp = nullptr;
  QAction* mnuAbout = nullptr;
  QAction* mnuStatistics = nullptr;
  QAction* mnuImportCsv = nullptr;
  QAction* mnuExportCsv = nullptr;
  QAction* mnuExit = nullptr;  // Ctrl+Q, the keys of "E&xit"
  QLabel* lblWarning = nullptr;

  // Windows of their own (not children, so that disabling this one leaves them usable).
  std::unique_ptr<frmEdit> editor_;
  std::unique_ptr<frmEvaluations> evaluations_;
  std::unique_ptr<frmStatistics> statistics_;
};

}  // namespace orvane
