#pragma once
// The 2-D study window: f(x) typed or handed over by the regression window, its roots,
// extrema, integral and values of derivatives over a study interval, and its graph
// with the regression's data points, with zoom, pan, printing, export and copying.

#include <QPointF>
#include <QWidget>
#include <array>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "engine/Class1.h"
#include "engine/ExpressionEngine.h"
#include "engine/UserConstants.h"
#include "platform/StopCheck.h"
#include "platform/ui/WheelNotches.h"
#include "plot2d/StudyReport.h"
#include "plot2d/StudyResults.h"
#include "plot2d/StudySettings.h"
#include "plot2d/Viewport.h"
#include "regression/Workbench.h"

class QAction;
class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QListWidget;
class QMenu;
class QMenuBar;
class QPushButton;

namespace orvane {

class Dialogs;
class PictureBox;
class RuntimeError;
class TextBox;

class frmPlot : public QWidget {
  Q_OBJECT

 public:
  // A top-level window (parent normally nullptr); the constructor is the form's load.
  frmPlot(Workbench& workbench, Dialogs& dialogs, QWidget* parent = nullptr);
  ~frmPlot() override;

  // The main window writes the fitted function here, then shows the window.
  TextBox* txtEquation = nullptr;

  // What the study commands found so far (the report and the export list it).
  const StudyResults& results() const { return results_; }
  // A graph is on the picture (cleared when a window field changes).
  bool graphDrawn() const { return graphDrawn_; }
  // A plot is being drawn now.
  bool plotting() const { return plotting_; }
  // A plot or a study command (roots, extrema, integral) is running; the window's
  // events run meanwhile, and Esc or the close box stops it.
  bool working() const { return plotting_ || studying_; }

 signals:
  // The window is unloading; the main window enables itself again.
  void unloaded();

 protected:
  void closeEvent(QCloseEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  // The picture's wheel, left-button drag and keys move the window.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private slots:
  void txtEquation_Change();
  void txtXlower_LostFocus();
  void txtXupper_LostFocus();
  void txtSubintervals_Validate(bool& cancel);
  void txtSubintervals_LostFocus();
  void txtError_GotFocus();
  void txtError_Validate(bool& cancel);
  void txtError_LostFocus();
  void txtMaxcy_Validate(bool& cancel);
  void txtPlotStep_Validate(bool& cancel);
  void txtWindow_Change();
  void txtWindowlx_LostFocus();
  void txtWindowgx_LostFocus();
  void txtWindowly_LostFocus();
  void txtWindowgy_LostFocus();
  void cmdRoots_Click();
  void cmdIntegrate_Click();
  void cmdExtrema_Click();
  void cmdDerVal_Click();
  void cmdPlot_Click();
  void cmdAddCons_Click();
  void cmdRemCons_Click();
  void Picture1_MouseDown(Qt::MouseButton button, float x, float y);
  void Picture1_MouseMove(Qt::MouseButtons buttons, float x, float y);
  void Picture1_Resized();
  void Picture1_Wheel(const QPointF& at, int angleDelta);
  bool Picture1_KeyDown(int key);
  void Picture1_LeftDown(const QPointF& at);
  void Picture1_LeftDrag(const QPointF& at);
  void Picture1_LeftUp(const QPointF& at);
  void mnuSave_Click();
  void mnuSaveAs_Click();
  void mnuPrint_Click();
  void mnuCopy_Click();
  void mnuHelp_Click();
  void cmdExit_Click();
  void chkBands_Click();

 private:
  // Marks the run of one user command: the engine's message box appears at most once
  // per command for the same error, however many points fail. A quiet command (a
  // redraw the user did not ask for) shows none.
  class Command {
   public:
    explicit Command(frmPlot& window, bool quiet = false);
    ~Command();

   private:
    frmPlot& window_;
  };

  void buildControls();
  void buildMenus();
  void Form_Load();
  void ScriptControl1_Error(const RuntimeError& error);
  void ClearResults();
  void reportError(const RuntimeError& error);

  // The settings reader: registers the user constants, then the study fields' texts.
  StudyFieldTexts ReadSettings();
  template <typename Study>
  auto runStudy(Study study);
  // What long work polls: the window's events run about every 20 ms, and Esc or the
  // close box ends the work there.
  StopCheck longWorkCheck();
  // After long work: a close asked for meanwhile closes the window; a plot asked for
  // meanwhile is drawn, unless Esc stopped the work.
  void afterLongWork();
  PlotSetupTexts plotSetupTexts() const;
  // The plot driver: draws the whole graph on the picture (not cleared first).
  void PlotDriver();
  // Clears the picture and draws the graph again from the fields (printing, export);
  // returns what it drew. A plot that cannot be set up is PlotDriver's RuntimeError.
  StudyGraph Replot();
  // cmdPlot_Click, or (redraw) the same plot drawn again for a new picture size,
  // without the error boxes the user has already seen.
  void plotCommand(bool redraw);
  void Zoom(int code);
  void moveWindow(const std::function<std::array<std::string, 4>()>& newWindow);
  void setWindowTexts(const std::array<std::string, 4>& texts);
  // Writes a window the mouse moved to, with its divisions, and plots it.
  void showMovedWindow(const PlotSetup& moved);
  // The window a drag has reached when the pointer is at `at` (pixels), if it can be drawn.
  std::optional<PlotSetup> draggedWindow(const QPointF& at) const;
  void limitPair(TextBox* lower, TextBox* upper, bool leavingLower);
  void exportTo(const std::string& name);
  void showConstants(int current);

  Workbench& workbench_;
  Dialogs& dialogs_;

  // The window's own engine, with its math object registered as "sh".
  ExpressionEngine ScriptControl1;
  Class1 sh;
  UserConstants constants_;
  int32_t lastScriptError_ = 0;
  int commandDepth_ = 0;
  bool quietCommand_ = false;
  std::set<std::pair<int32_t, std::string>> shownErrors_;

  StudyResults results_;
  bool graphDrawn_ = false;
  bool plotted_ = false;        // plottedSetup_ holds the last plot's window
  PlotSetup plottedSetup_;
  int32_t plottedDerivative_ = 0;
  double errorBound_ = 0;       // txtError's value, taken as the field is left
  double log2Subintervals_ = 0;
  std::string exportName_;

  bool plotting_ = false;
  bool studying_ = false;         // roots, extrema or integral running
  bool plotQueued_ = false;       // a plot command arrived while working
  bool closeRequested_ = false;   // the window was closed while working
  bool stopRequested_ = false;    // Esc or the close box during the work
  bool resizeReplotPending_ = false;
  bool firstShow_ = true;

  // The mouse on the picture. A left press becomes a drag once the pointer has moved a
  // few pixels; released before that, it is a click and centres the window there.
  std::optional<QPointF> leftDownAt_;  // pixels
  QPointF leftDownUser_;               // the same point in the plotted coordinates
  bool dragging_ = false;
  PlotSetup dragFrom_;                 // the window when the button went down
  std::optional<PlotSetup> dragWindow_;  // drawn instead of the fields' window while dragging
  WheelNotches wheel_;  // wheel turns short of a whole step (touchpads)

  // Controls, named as on the form.
  QMenuBar* menuBar_ = nullptr;
  QMenu* mnuFile = nullptr;
  QAction* mnuSave = nullptr;
  QAction* mnuSaveAs = nullptr;
  QAction* mnuPrint = nullptr;
  QAction* mnuCopy = nullptr;
  QAction* mnuHelp = nullptr;

  QLabel* lblEquation = nullptr;

  QGroupBox* fraStudy = nullptr;
  TextBox* txtXlower = nullptr;
  QLabel* lblInterval = nullptr;
  TextBox* txtXupper = nullptr;
  QLabel* lblSubintervals = nullptr;
  TextBox* txtSubintervals = nullptr;
  QLabel* lblError = nullptr;
  TextBox* txtError = nullptr;
  QLabel* lblMaxcy = nullptr;
  TextBox* txtMaxcy = nullptr;

  QPushButton* cmdRoots = nullptr;
  QLabel* lblRootsTitle = nullptr;
  QListWidget* lstRoots = nullptr;
  QLabel* lblRoots = nullptr;
  QPushButton* cmdExtrema = nullptr;
  QLabel* lblExtremaTitle = nullptr;
  QListWidget* lstExtrema = nullptr;
  QLabel* lblExtrema = nullptr;
  QPushButton* cmdIntegrate = nullptr;
  QLabel* lblIntegral = nullptr;

  QGroupBox* fraEvaluation = nullptr;
  QLabel* lblDerNum = nullptr;
  TextBox* txtDerNum = nullptr;
  QLabel* lblXeval = nullptr;
  TextBox* txtXeval = nullptr;
  QPushButton* cmdDerVal = nullptr;
  QLabel* lblDerVal = nullptr;

  QGroupBox* fraConstants = nullptr;
  QComboBox* cboConstants = nullptr;
  QPushButton* cmdAddCons = nullptr;
  QPushButton* cmdRemCons = nullptr;

  QGroupBox* fraPlotSetup = nullptr;
  TextBox* txtWindowlx = nullptr;
  QLabel* lblWindowx = nullptr;
  TextBox* txtWindowgx = nullptr;
  TextBox* txtWindowly = nullptr;
  QLabel* lblWindowy = nullptr;
  TextBox* txtWindowgy = nullptr;
  QLabel* lblXorigin = nullptr;
  TextBox* txtXorigin = nullptr;
  QLabel* lblYorigin = nullptr;
  TextBox* txtYorigin = nullptr;
  QLabel* lblDivx = nullptr;
  TextBox* txtDivx = nullptr;
  QLabel* lblDivy = nullptr;
  TextBox* txtDivy = nullptr;
  QLabel* lblPlotStep = nullptr;
  TextBox* txtPlotStep = nullptr;
  QCheckBox* chkGrid = nullptr;
  QCheckBox* chkShade = nullptr;
  QCheckBox* chkWindow = nullptr;
  QCheckBox* chkDivisions = nullptr;
  QCheckBox* chkPersist = nullptr;
  QComboBox* cboDerivative = nullptr;
  QPushButton* cmdPlot = nullptr;
  QLabel* lblPlotStatus = nullptr;  // says when the last plot was stopped before its end

  QGroupBox* fraGraph = nullptr;
  QPushButton* cmdZoomOut = nullptr;
  QPushButton* cmdZoomQ1 = nullptr;
  QPushButton* cmdZoomQ2 = nullptr;
  QPushButton* cmdZoomQ3 = nullptr;
  QPushButton* cmdZoomQ4 = nullptr;
  QPushButton* cmdZoomIn = nullptr;
  QPushButton* cmdPanRight = nullptr;
  QPushButton* cmdPanUp = nullptr;
  QPushButton* cmdPanLeft = nullptr;
  QPushButton* cmdPanDown = nullptr;
  QPushButton* cmdIncWindX = nullptr;
  QPushButton* cmdDecWindX = nullptr;
  QPushButton* cmdIncWindY = nullptr;
  QPushButton* cmdDecWindY = nullptr;
  QCheckBox* chkBands = nullptr;  // the 95% bands around the fitted function

  PictureBox* Picture1 = nullptr;
  QPushButton* cmdExit = nullptr;
};

}  // namespace orvane
