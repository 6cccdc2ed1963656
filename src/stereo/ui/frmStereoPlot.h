#pragma once
// The stereo window: a surface z(x,y) (or x(u,v), y(u,v), z(u,v)) drawn as a pair of
// pictures, left and right, to be fused by the viewer; with the view controls, the
// partial-derivative surfaces, user constants, export, import, printing and copying;
// shown side by side, swapped for cross-eyed viewing, or as one red-cyan picture.

#include <QPointF>
#include <QWidget>
#include <array>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "engine/Class1.h"
#include "engine/ExpressionEngine.h"
#include "engine/UserConstants.h"
#include "platform/ui/WheelNotches.h"
#include "regression/Workbench.h"
#include "stereo/EngineSurface.h"
#include "stereo/StereoSettings.h"
#include "stereo/SurfaceMesh.h"
#include "stereo/SurfaceSampler.h"
#include "stereo/ViewControls.h"
#include "stereo/ViewTransform.h"

class QAction;
class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QMenu;
class QMenuBar;
class QPushButton;
class QRadioButton;

namespace orvane {

class Canvas;
class Dialogs;
class PictureBox;
class RuntimeError;
class TextBox;

class frmStereoPlot : public QWidget {
  Q_OBJECT

 public:
  // Form_Load: builds the controls with their defaults, registers the math object.
  frmStereoPlot(Workbench& workbench, Dialogs& dialogs, QWidget* parent = nullptr);
  ~frmStereoPlot() override;

  // The main window writes the fitted plane here before showing the window.
  TextBox* txtEquationZ = nullptr;

  // The two pictures, index 0 left, index 1 right.
  Canvas& picture(int index);
  // True while a plot is being drawn (the window yields to events meanwhile; Esc or the
  // close box stops it).
  bool plotting() const { return plotting_; }
  // The file name Export writes to without asking; empty until one is chosen.
  const std::string& fileName() const { return fileName_; }

 signals:
  // Emitted as the window closes (Exit or the close box).
  void unloaded();

 protected:
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  // The mouse on the pictures: a left-button drag turns the view, the wheel zooms.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private slots:
  void cmdPlot_Click();
  void cmdExit_Click();
  void chkParametric_Click();
  void cmdAddCons_Click();
  void cmdRemCons_Click();
  void mnuSave_Click();
  void mnuSaveAs_Click();
  void mnuOpen_Click();
  void mnuPrint_Click();
  void mnuCopyLeft_Click();
  void mnuCopyRight_Click();
  void mnuHelp_Click();
  void cboViewing_Click();
  void txtRangelxu_LostFocus();
  void txtRangegxu_LostFocus();
  void txtRangelyv_LostFocus();
  void txtRangegyv_LostFocus();
  void txtWindowlx_LostFocus();
  void txtWindowgx_LostFocus();
  void txtWindowly_LostFocus();
  void txtWindowgy_LostFocus();
  void txtWindowlz_LostFocus();
  void txtWindowgz_LostFocus();
  void txtXder_LostFocus();
  void txtYder_LostFocus();
  void txtSpacexu_Validate(bool& cancel);
  void txtSpaceyv_Validate(bool& cancel);
  void txtSegsxu_Validate(bool& cancel);
  void txtSegsyv_Validate(bool& cancel);
  void txtNdots_Validate(bool& cancel);
  void txtGrid_Validate(bool& cancel);
  void txtXder_Validate(bool& cancel);
  void txtYder_Validate(bool& cancel);
  void txtReduce_Validate(bool& cancel);

 private:
  // Opened for every command a user starts; the engine's message for one error is
  // shown once per outermost command.
  class Command;

  void buildControls();
  void buildMenus();
  void connectFieldRules();
  void Form_Load();
  void ScriptControl1_Error(const RuntimeError& error);
  void reportSettingError(int32_t number);

  using TextField = std::pair<TextBox*, std::string StereoFields::*>;
  std::vector<TextField> textFields() const;
  StereoFields readFields() const;
  void showFields(const StereoFields& fields);
  void showConstants(const QString& editText);
  void applyRepresentation();

  // Runs `action` now, or after the plot being drawn ends.
  void whenIdle(std::function<void()> action);
  // Draws the pair, and again while plots were asked for meanwhile; `announce` (the
  // Plot command, not a drag) shows the busy pointer and beeps at the end.
  void runPlot(bool announce);
  void plotOnce();
  void sizePictures(float reduce);
  // Shows the pictures the viewing mode asks for, swapping or composing those drawn.
  void applyViewingMode();
  void composeAnaglyph();
  // What the window shows at the place of picture 0 or 1 (the red-cyan picture for both
  // in that mode): what is copied. The red-cyan picture, when shown, is also printed
  // and exported.
  Canvas& shownPicture(int index);
  Canvas* anaglyphShown();

  void pic_MouseDown(const QPointF& at);
  void pic_MouseMove(const QPointF& at);
  void pic_MouseUp();
  void pic_MouseWheel(int angleDelta);
  SettingsRead readSettingsForOutput();
  void exportTo(const std::string& path);
  bool replaceConfirmed(const std::string& path);
  void importFrom(const std::string& path);
  void ZoomView(int code);
  void stepField(StepTarget target, StepDirection direction);

  // Field rules.
  void rangeLostFocus(TextBox* lower, TextBox* upper, TextBox* focusTo);
  void windowLostFocus(TextBox* lower, TextBox* upper, TextBox* focusTo);
  void derivativeOrdersLostFocus();

  Workbench& workbench_;
  Dialogs& dialogs_;

  ExpressionEngine ScriptControl1;
  Class1 sh;
  EngineSurface surface_{ScriptControl1, sh};
  EngineReader reader_{ScriptControl1};
  UserConstants constants_;
  int32_t lastScriptError_ = 0;

  StereoSettings settings_;  // as read by the last plot
  SurfaceParameters uv_;
  DotGenerator random_{DotGenerator::SeedFromTimer()};
  PictureGeometry geometry_;
  bool drawn_ = false;
  std::string fileName_;
  bool fileWrittenHere_ = false;  // fileName_ was written by an export of this window

  bool plotting_ = false;
  bool plotQueued_ = false;
  bool announcePlot_ = false;  // the plots being drawn include a Plot command
  bool closePending_ = false;
  bool stopRequested_ = false;  // Esc or the close box during a plot
  std::vector<std::function<void()>> afterPlot_;
  int commandDepth_ = 0;
  std::set<std::pair<int32_t, std::string>> errorsShown_;

  ViewingMode viewing_ = ViewingMode::Parallel;
  bool eyesSwapped_ = false;  // picture 0 holds the right eye's picture (crossed viewing)
  // A drag on a picture: one command from press to release, the angles it has reached
  // and where the pointer was last (screen pixels).
  std::unique_ptr<Command> dragCommand_;
  ViewAngles dragAngles_;
  QPointF dragFrom_;
  WheelNotches wheel_;

  // Controls, named as on the form (objectName too; the members of a control array are
  // named "pic(0)", "optBackclr(1)", ...).
  std::array<PictureBox*, 2> pic{};
  PictureBox* picAnaglyph = nullptr;  // the red-cyan picture, in place of the pair
  QWidget* picFrame = nullptr;
  QLabel* lblViewing = nullptr;
  QComboBox* cboViewing = nullptr;  // kViewingModeCaptions

  QCheckBox* chkParametric = nullptr;
  QLabel* lblZ = nullptr;
  QLabel* lblX = nullptr;
  TextBox* txtEquationX = nullptr;
  QLabel* lblY = nullptr;
  TextBox* txtEquationY = nullptr;

  QGroupBox* fraWindow = nullptr;
  TextBox *txtWindowlx = nullptr, *txtWindowgx = nullptr;
  TextBox *txtWindowly = nullptr, *txtWindowgy = nullptr;
  TextBox *txtWindowlz = nullptr, *txtWindowgz = nullptr;
  QPushButton *cmdIncWindX = nullptr, *cmdDecWindX = nullptr;
  QPushButton *cmdIncWindY = nullptr, *cmdDecWindY = nullptr;
  QPushButton *cmdIncWindZ = nullptr, *cmdDecWindZ = nullptr;
  TextBox *txtStepWindX = nullptr, *txtStepWindY = nullptr, *txtStepWindZ = nullptr;

  QGroupBox* fraRange = nullptr;
  TextBox *txtRangelxu = nullptr, *txtRangegxu = nullptr;
  TextBox *txtRangelyv = nullptr, *txtRangegyv = nullptr;
  QLabel *lblxu = nullptr, *lblyv = nullptr;
  QPushButton *cmdIncRangXU = nullptr, *cmdDecRangXU = nullptr;
  QPushButton *cmdIncRangYV = nullptr, *cmdDecRangYV = nullptr;
  TextBox *txtStepRangXU = nullptr, *txtStepRangYV = nullptr;

  QGroupBox* fraSpacings = nullptr;
  QLabel *lblSpacexu = nullptr, *lblSpaceyv = nullptr;
  TextBox *txtSpacexu = nullptr, *txtSpaceyv = nullptr;
  QGroupBox* fraSegments = nullptr;
  QLabel *lblSegsxu = nullptr, *lblSegsyv = nullptr;
  TextBox *txtSegsxu = nullptr, *txtSegsyv = nullptr;

  QGroupBox* fraRotation = nullptr;
  TextBox *txtXrot = nullptr, *txtYrot = nullptr, *txtZrot = nullptr;
  QPushButton *cmdIncRotX = nullptr, *cmdDecRotX = nullptr;
  QPushButton *cmdIncRotY = nullptr, *cmdDecRotY = nullptr;
  QPushButton *cmdIncRotZ = nullptr, *cmdDecRotZ = nullptr;
  TextBox *txtStepRotX = nullptr, *txtStepRotY = nullptr, *txtStepRotZ = nullptr;

  QGroupBox* fraTranslation = nullptr;
  TextBox *txtXtr = nullptr, *txtYtr = nullptr, *txtZtr = nullptr;
  QPushButton *cmdIncTranX = nullptr, *cmdDecTranX = nullptr;
  QPushButton *cmdIncTranY = nullptr, *cmdDecTranY = nullptr;
  QPushButton *cmdIncTranZ = nullptr, *cmdDecTranZ = nullptr;
  TextBox *txtStepTranX = nullptr, *txtStepTranY = nullptr, *txtStepTranZ = nullptr;

  QGroupBox* fraAxes = nullptr;
  TextBox *txtXorigin = nullptr, *txtYorigin = nullptr, *txtZorigin = nullptr;
  QGroupBox* fraDivisions = nullptr;
  TextBox *txtDivx = nullptr, *txtDivy = nullptr, *txtDivz = nullptr;

  QGroupBox* FraDer = nullptr;
  TextBox *txtXder = nullptr, *txtYder = nullptr;
  QGroupBox* fraAccuracy = nullptr;
  std::array<QRadioButton*, 2> OptAccuracy{};  // 0 "Med", 1 "High"

  QGroupBox* fraBackground = nullptr;
  std::array<QRadioButton*, 2> optBackclr{};  // 0 "White", 1 "Black"
  QCheckBox* chkLines = nullptr;
  QCheckBox* chkDots = nullptr;
  QCheckBox* chkPersist = nullptr;
  TextBox* txtNdots = nullptr;
  TextBox* txtGrid = nullptr;
  TextBox* txtStereo = nullptr;
  TextBox* txtReduce = nullptr;

  QGroupBox* fraOctant = nullptr;
  std::array<QPushButton*, 8> cmdZoomQ{};  // cmdZoomQ1 .. cmdZoomQ8
  QPushButton* cmdZoomIn = nullptr;
  QPushButton* cmdZoomOut = nullptr;
  QPushButton *cmdPanRight = nullptr, *cmdPanUp = nullptr, *cmdPanLeft = nullptr;
  QPushButton *cmdPanDown = nullptr, *cmdPanIn = nullptr, *cmdPanOut = nullptr;

  QGroupBox* fraConstants = nullptr;
  QComboBox* cboConstants = nullptr;
  QPushButton* cmdAddCons = nullptr;
  QPushButton* cmdRemCons = nullptr;

  QPushButton* cmdPlot = nullptr;
  QPushButton* cmdExit = nullptr;
  QLabel* lblPlotStatus = nullptr;  // says when the last plot was stopped before its end

  QMenuBar* menuBar = nullptr;
  QMenu* mnuFile = nullptr;
  QAction* mnuSave = nullptr;
  QAction* mnuSaveAs = nullptr;
  QAction* mnuOpen = nullptr;
  QAction* mnuPrint = nullptr;
  QMenu* mnuEdit = nullptr;
  QAction* mnuCopyLeft = nullptr;
  QAction* mnuCopyRight = nullptr;
  QAction* mnuHelp = nullptr;
};

}  // namespace orvane
