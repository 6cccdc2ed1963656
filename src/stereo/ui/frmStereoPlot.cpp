#include "stereo/ui/frmStereoPlot.h"

#include <QAction>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <filesystem>
#include <QWheelEvent>
#include <algorithm>
#include <cstdlib>

#include "engine/PointEvaluation.h"
#include "platform/CopyToClipboard.h"
#include "platform/Dialogs.h"
#include "platform/PrinterPage.h"
#include "platform/NumberText.h"
#include "platform/RuntimeError.h"
#include "platform/StopCheck.h"
#include "platform/ui/PictureBox.h"
#include "platform/ui/TextBox.h"
#include "stereo/FieldRules.h"
#include "stereo/StereoExport.h"
#include "platform/ui/Shortcuts.h"
#include "stereo/StereoRender.h"
#include "stereo/StereoReport.h"

namespace orvane {

namespace {

constexpr std::string_view kExportFilter = "Duplora files (*.dup *.txt);;All files (*)";

QString qs(std::string_view text) { return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())); }
std::string text(const TextBox* box) { return box->text().toStdString(); }

}  // namespace

// Every command a user starts opens one; the first (outermost) forgets which engine
// messages were shown, so a formula failing at every sample is reported once per command.
class frmStereoPlot::Command {
 public:
  explicit Command(frmStereoPlot& form) : form_(form) {
    if (form_.commandDepth_++ == 0) form_.errorsShown_.clear();
  }
  ~Command() { --form_.commandDepth_; }
  Command(const Command&) = delete;
  Command& operator=(const Command&) = delete;

 private:
  frmStereoPlot& form_;
};

frmStereoPlot::frmStereoPlot(Workbench& workbench, Dialogs& dialogs, QWidget* parent)
    : QWidget(parent), workbench_(workbench), dialogs_(dialogs) {
  setWindowTitle(QStringLiteral("Stereo Plot"));
  setObjectName(QStringLiteral("frmStereoPlot"));
  setWindowFlag(Qt::Window);  // a window of its own, whatever the parent
  buildControls();
  buildMenus();
  connectFieldRules();
  // Every field but the formulas holds a number; an unreadable one is reported.
  for (TextBox* box : findChildren<TextBox*>())
    box->setNumberField(box != txtEquationZ && box != txtEquationX && box != txtEquationY);
  TextBox::reportErrorsTo(this, dialogs_);
  Form_Load();
}

frmStereoPlot::~frmStereoPlot() = default;

Canvas& frmStereoPlot::picture(int index) { return pic.at(static_cast<size_t>(index))->canvas(); }

void frmStereoPlot::Form_Load() {
  sh.sharedError = &workbench_.evaluationError;
  ScriptControl1.SetErrorHandler([this](const RuntimeError& error) { ScriptControl1_Error(error); });
  RegisterMathObject(ScriptControl1, sh);

  const StereoFields defaults;
  chkLines->setChecked(defaults.lines);
  chkDots->setChecked(defaults.dots);
  chkPersist->setChecked(defaults.persist);
  optBackclr[static_cast<size_t>(defaults.background)]->setChecked(true);
  // The five-point formulas: a derivative surface is drawn as accurately as it can be.
  OptAccuracy[static_cast<size_t>(defaults.accuracy)]->setChecked(true);
  cboConstants->setEditText(qs(constantsText::Example));
  applyRepresentation();

  connect(cmdPlot, &QPushButton::clicked, this, &frmStereoPlot::cmdPlot_Click);
  // Plot is the window's default button: Enter in a formula's field draws the surface.
  cmdPlot->setDefault(true);
  for (TextBox* formula : {txtEquationZ, txtEquationX, txtEquationY})
    connect(formula, &QLineEdit::returnPressed, cmdPlot, &QPushButton::click);
  connect(cmdExit, &QPushButton::clicked, this, &frmStereoPlot::cmdExit_Click);
  connect(chkParametric, &QCheckBox::clicked, this, &frmStereoPlot::chkParametric_Click);
  connect(cmdAddCons, &QPushButton::clicked, this, &frmStereoPlot::cmdAddCons_Click);
  connect(cboConstants->lineEdit(), &QLineEdit::returnPressed, this, &frmStereoPlot::cmdAddCons_Click);
  connect(cmdRemCons, &QPushButton::clicked, this, &frmStereoPlot::cmdRemCons_Click);
  connect(mnuSave, &QAction::triggered, this, &frmStereoPlot::mnuSave_Click);
  connect(mnuSaveAs, &QAction::triggered, this, &frmStereoPlot::mnuSaveAs_Click);
  connect(mnuOpen, &QAction::triggered, this, &frmStereoPlot::mnuOpen_Click);
  connect(mnuPrint, &QAction::triggered, this, &frmStereoPlot::mnuPrint_Click);
  connect(mnuCopyLeft, &QAction::triggered, this, &frmStereoPlot::mnuCopyLeft_Click);
  connect(mnuCopyRight, &QAction::triggered, this, &frmStereoPlot::mnuCopyRight_Click);
  connect(mnuHelp, &QAction::triggered, this, &frmStereoPlot::mnuHelp_Click);
  connect(cboViewing, &QComboBox::currentIndexChanged, this, &frmStereoPlot::cboViewing_Click);
  mnuHelp->setShortcuts(StandardKeys(QKeySequence::HelpContents, QKeySequence(Qt::Key_F1)));
  mnuPrint->setShortcuts(StandardKeys(QKeySequence::Print, QKeySequence(Qt::CTRL | Qt::Key_P)));

  const std::pair<QPushButton*, int> zooms[] = {
      {cmdZoomOut, kZoomOut},     {cmdZoomIn, kZoomIn},       {cmdPanRight, kPanRight}, {cmdPanUp, kPanUp},
      {cmdPanLeft, kPanLeft},     {cmdPanDown, kPanDown},     {cmdPanIn, kPanIn},       {cmdPanOut, kPanOut}};
  for (const auto& [b, code] : zooms) connect(b, &QPushButton::clicked, this, [this, code] { ZoomView(code); });
  for (int k = 0; k < 8; ++k)
    connect(cmdZoomQ[static_cast<size_t>(k)], &QPushButton::clicked, this,
            [this, k] { ZoomView(kZoomOctant1 + k); });

  struct StepButtons {
    QPushButton* inc;
    QPushButton* dec;
    StepTarget target;
  };
  const StepButtons steps[] = {
      {cmdIncWindX, cmdDecWindX, StepTarget::WindX},   {cmdIncWindY, cmdDecWindY, StepTarget::WindY},
      {cmdIncWindZ, cmdDecWindZ, StepTarget::WindZ},   {cmdIncRangXU, cmdDecRangXU, StepTarget::RangXU},
      {cmdIncRangYV, cmdDecRangYV, StepTarget::RangYV}, {cmdIncRotX, cmdDecRotX, StepTarget::RotX},
      {cmdIncRotY, cmdDecRotY, StepTarget::RotY},       {cmdIncRotZ, cmdDecRotZ, StepTarget::RotZ},
      {cmdIncTranX, cmdDecTranX, StepTarget::TranX},   {cmdIncTranY, cmdDecTranY, StepTarget::TranY},
      {cmdIncTranZ, cmdDecTranZ, StepTarget::TranZ}};
  for (const StepButtons& s : steps) {
    const StepTarget target = s.target;
    connect(s.inc, &QPushButton::clicked, this, [this, target] { stepField(target, StepDirection::Inc); });
    connect(s.dec, &QPushButton::clicked, this, [this, target] { stepField(target, StepDirection::Dec); });
  }
}

void frmStereoPlot::connectFieldRules() {
  connect(txtRangelxu, &TextBox::LostFocus, this, &frmStereoPlot::txtRangelxu_LostFocus);
  connect(txtRangegxu, &TextBox::LostFocus, this, &frmStereoPlot::txtRangegxu_LostFocus);
  connect(txtRangelyv, &TextBox::LostFocus, this, &frmStereoPlot::txtRangelyv_LostFocus);
  connect(txtRangegyv, &TextBox::LostFocus, this, &frmStereoPlot::txtRangegyv_LostFocus);
  connect(txtWindowlx, &TextBox::LostFocus, this, &frmStereoPlot::txtWindowlx_LostFocus);
  connect(txtWindowgx, &TextBox::LostFocus, this, &frmStereoPlot::txtWindowgx_LostFocus);
  connect(txtWindowly, &TextBox::LostFocus, this, &frmStereoPlot::txtWindowly_LostFocus);
  connect(txtWindowgy, &TextBox::LostFocus, this, &frmStereoPlot::txtWindowgy_LostFocus);
  connect(txtWindowlz, &TextBox::LostFocus, this, &frmStereoPlot::txtWindowlz_LostFocus);
  connect(txtWindowgz, &TextBox::LostFocus, this, &frmStereoPlot::txtWindowgz_LostFocus);
  connect(txtXder, &TextBox::LostFocus, this, &frmStereoPlot::txtXder_LostFocus);
  connect(txtYder, &TextBox::LostFocus, this, &frmStereoPlot::txtYder_LostFocus);
  connect(txtSpacexu, &TextBox::Validate, this, &frmStereoPlot::txtSpacexu_Validate);
  connect(txtSpaceyv, &TextBox::Validate, this, &frmStereoPlot::txtSpaceyv_Validate);
  connect(txtSegsxu, &TextBox::Validate, this, &frmStereoPlot::txtSegsxu_Validate);
  connect(txtSegsyv, &TextBox::Validate, this, &frmStereoPlot::txtSegsyv_Validate);
  connect(txtNdots, &TextBox::Validate, this, &frmStereoPlot::txtNdots_Validate);
  connect(txtGrid, &TextBox::Validate, this, &frmStereoPlot::txtGrid_Validate);
  connect(txtXder, &TextBox::Validate, this, &frmStereoPlot::txtXder_Validate);
  connect(txtYder, &TextBox::Validate, this, &frmStereoPlot::txtYder_Validate);
  connect(txtReduce, &TextBox::Validate, this, &frmStereoPlot::txtReduce_Validate);
}

// Limit pairs: a refused pair sends the focus to the other limit, without a message.
void frmStereoPlot::txtRangelxu_LostFocus() {
  Command command(*this);
  rangeLostFocus(txtRangelxu, txtRangegxu, txtRangegxu);
}
void frmStereoPlot::txtRangegxu_LostFocus() {
  Command command(*this);
  rangeLostFocus(txtRangelxu, txtRangegxu, txtRangelxu);
}
void frmStereoPlot::txtRangelyv_LostFocus() {
  Command command(*this);
  rangeLostFocus(txtRangelyv, txtRangegyv, txtRangegyv);
}
void frmStereoPlot::txtRangegyv_LostFocus() {
  Command command(*this);
  rangeLostFocus(txtRangelyv, txtRangegyv, txtRangelyv);
}
void frmStereoPlot::txtWindowlx_LostFocus() {
  Command command(*this);
  windowLostFocus(txtWindowlx, txtWindowgx, txtWindowgx);
}
void frmStereoPlot::txtWindowgx_LostFocus() {
  Command command(*this);
  windowLostFocus(txtWindowlx, txtWindowgx, txtWindowlx);
}
void frmStereoPlot::txtWindowly_LostFocus() {
  Command command(*this);
  windowLostFocus(txtWindowly, txtWindowgy, txtWindowgy);
}
void frmStereoPlot::txtWindowgy_LostFocus() {
  Command command(*this);
  windowLostFocus(txtWindowly, txtWindowgy, txtWindowly);
}
void frmStereoPlot::txtWindowlz_LostFocus() {
  Command command(*this);
  windowLostFocus(txtWindowlz, txtWindowgz, txtWindowgz);
}
void frmStereoPlot::txtWindowgz_LostFocus() {
  Command command(*this);
  windowLostFocus(txtWindowlz, txtWindowgz, txtWindowlz);
}
void frmStereoPlot::txtXder_LostFocus() {
  Command command(*this);
  derivativeOrdersLostFocus();
}
void frmStereoPlot::txtYder_LostFocus() {
  Command command(*this);
  derivativeOrdersLostFocus();
}

// Counts and orders: a refused entry keeps the focus, without a message.
void frmStereoPlot::txtSpacexu_Validate(bool& cancel) { cancel = !CountFieldValid(text(txtSpacexu)); }
void frmStereoPlot::txtSpaceyv_Validate(bool& cancel) { cancel = !CountFieldValid(text(txtSpaceyv)); }
void frmStereoPlot::txtSegsxu_Validate(bool& cancel) { cancel = !CountFieldValid(text(txtSegsxu)); }
void frmStereoPlot::txtSegsyv_Validate(bool& cancel) { cancel = !CountFieldValid(text(txtSegsyv)); }
void frmStereoPlot::txtNdots_Validate(bool& cancel) { cancel = !CountFieldValid(text(txtNdots)); }
void frmStereoPlot::txtGrid_Validate(bool& cancel) { cancel = !GridFieldValid(text(txtGrid)); }
void frmStereoPlot::txtXder_Validate(bool& cancel) { cancel = !DerivativeOrderValid(text(txtXder)); }
void frmStereoPlot::txtYder_Validate(bool& cancel) { cancel = !DerivativeOrderValid(text(txtYder)); }
void frmStereoPlot::txtReduce_Validate(bool& cancel) {
  Command command(*this);
  cancel = !ReduceFieldValid(reader_, text(txtReduce));
}

void frmStereoPlot::derivativeOrdersLostFocus() {
  if (!DerivativeOrderSumValid(text(txtXder), text(txtYder))) txtYder->setFocus(Qt::OtherFocusReason);
}

void frmStereoPlot::rangeLostFocus(TextBox* lower, TextBox* upper, TextBox* focusTo) {
  if (!RangeLimitsValid(reader_, text(lower), text(upper))) focusTo->setFocus(Qt::OtherFocusReason);
}

void frmStereoPlot::windowLostFocus(TextBox* lower, TextBox* upper, TextBox* focusTo) {
  if (!WindowLimitsValid(reader_, text(lower), text(upper))) focusTo->setFocus(Qt::OtherFocusReason);
}

void frmStereoPlot::ScriptControl1_Error(const RuntimeError& error) {
  lastScriptError_ = error.number();
  if (isSilencedError(error.number())) return;
  if (!errorsShown_.emplace(error.number(), error.description()).second) return;
  dialogs_.MsgBox(error.description());
}

// A setting without a value (a mesh spacing beyond the single range, say) is reported
// like an evaluation error, once per command, unless the engine's box has said it; the
// plot goes on with the value the setting had.
void frmStereoPlot::reportSettingError(int32_t number) {
  if (number == 0 || number == err::AlreadyReported) return;
  for (const auto& shown : errorsShown_)
    if (shown.first == number) return;
  const RuntimeError error(number);
  errorsShown_.emplace(number, error.description());
  dialogs_.MsgBox(error.description());
}

// ---- Fields ----

// The text fields and the member of StereoFields each one holds.
std::vector<frmStereoPlot::TextField> frmStereoPlot::textFields() const {
  return {
      {txtEquationZ, &StereoFields::equationZ}, {txtEquationX, &StereoFields::equationX},
      {txtEquationY, &StereoFields::equationY}, {txtRangelxu, &StereoFields::rangelxu},
      {txtRangegxu, &StereoFields::rangegxu},   {txtRangelyv, &StereoFields::rangelyv},
      {txtRangegyv, &StereoFields::rangegyv},   {txtSpacexu, &StereoFields::spacexu},
      {txtSpaceyv, &StereoFields::spaceyv},     {txtSegsxu, &StereoFields::segsxu},
      {txtSegsyv, &StereoFields::segsyv},       {txtWindowlx, &StereoFields::windowlx},
      {txtWindowgx, &StereoFields::windowgx},   {txtWindowly, &StereoFields::windowly},
      {txtWindowgy, &StereoFields::windowgy},   {txtWindowlz, &StereoFields::windowlz},
      {txtWindowgz, &StereoFields::windowgz},   {txtXrot, &StereoFields::xrot},
      {txtYrot, &StereoFields::yrot},           {txtZrot, &StereoFields::zrot},
      {txtXtr, &StereoFields::xtr},             {txtYtr, &StereoFields::ytr},
      {txtZtr, &StereoFields::ztr},             {txtStereo, &StereoFields::stereo},
      {txtReduce, &StereoFields::reduce},       {txtNdots, &StereoFields::ndots},
      {txtGrid, &StereoFields::grid},           {txtXorigin, &StereoFields::xorigin},
      {txtYorigin, &StereoFields::yorigin},     {txtZorigin, &StereoFields::zorigin},
      {txtDivx, &StereoFields::divx},           {txtDivy, &StereoFields::divy},
      {txtDivz, &StereoFields::divz},           {txtXder, &StereoFields::xder},
      {txtYder, &StereoFields::yder},           {txtStepWindX, &StereoFields::stepWindX},
      {txtStepWindY, &StereoFields::stepWindY}, {txtStepWindZ, &StereoFields::stepWindZ},
      {txtStepRangXU, &StereoFields::stepRangXU}, {txtStepRangYV, &StereoFields::stepRangYV},
      {txtStepRotX, &StereoFields::stepRotX},   {txtStepRotY, &StereoFields::stepRotY},
      {txtStepRotZ, &StereoFields::stepRotZ},   {txtStepTranX, &StereoFields::stepTranX},
      {txtStepTranY, &StereoFields::stepTranY}, {txtStepTranZ, &StereoFields::stepTranZ}};
}

StereoFields frmStereoPlot::readFields() const {
  StereoFields f;
  for (const auto& [box, member] : textFields()) f.*member = text(box);
  f.parametric = chkParametric->isChecked();
  f.lines = chkLines->isChecked();
  f.dots = chkDots->isChecked();
  f.persist = chkPersist->isChecked();
  f.background = optBackclr[1]->isChecked() ? kBackgroundBlack : kBackgroundWhite;
  f.accuracy = OptAccuracy[1]->isChecked() ? kAccuracyHigh : kAccuracyMed;
  return f;
}

void frmStereoPlot::showFields(const StereoFields& f) {
  for (const auto& [box, member] : textFields())
    if (box->text().toStdString() != f.*member) box->setText(QString::fromStdString(f.*member));
  chkParametric->setChecked(f.parametric);
  chkLines->setChecked(f.lines);
  chkDots->setChecked(f.dots);
  chkPersist->setChecked(f.persist);
  optBackclr[f.background == kBackgroundBlack ? 1 : 0]->setChecked(true);
  OptAccuracy[f.accuracy == kAccuracyHigh ? 1 : 0]->setChecked(true);
  applyRepresentation();
}

void frmStereoPlot::applyRepresentation() {
  const RepresentationLook& look = LookFor(chkParametric->isChecked());
  lblZ->setText(qs(look.lblZ));
  txtEquationZ->setToolTip(qs(look.equationZTip));
  lblxu->setText(qs(look.lblxu));
  lblyv->setText(qs(look.lblyv));
  lblSpacexu->setText(qs(look.lblSpacexu));
  lblSegsxu->setText(qs(look.lblSpacexu));
  lblSpaceyv->setText(qs(look.lblSpaceyv));
  lblSegsyv->setText(qs(look.lblSpaceyv));
  for (QWidget* w : std::initializer_list<QWidget*>{lblX, txtEquationX, lblY, txtEquationY})
    w->setVisible(look.showParametricEquations);
  FraDer->setVisible(look.showDerivativeFrames);
  fraAccuracy->setVisible(look.showDerivativeFrames);
}

void frmStereoPlot::chkParametric_Click() { applyRepresentation(); }

// ---- User constants ----

void frmStereoPlot::showConstants(const QString& editText) {
  cboConstants->clear();
  for (const std::string& entry : constants_.entries()) cboConstants->addItem(QString::fromStdString(entry));
  cboConstants->setEditText(editText);
}

void frmStereoPlot::cmdAddCons_Click() {
  const QString typed = cboConstants->currentText();
  if (constants_.Add(typed.toStdString())) showConstants(typed);
}

void frmStereoPlot::cmdRemCons_Click() {
  Command command(*this);
  const int index = cboConstants->findText(cboConstants->currentText(), Qt::MatchExactly);
  if (index < 0) return;
  try {
    constants_.Remove(index, ScriptControl1);
  } catch (const RuntimeError&) {
    // Reported by the engine's error event; the entry goes all the same.
  }
  showConstants(QString());
}

// ---- Plot ----

void frmStereoPlot::cmdPlot_Click() { runPlot(true); }

void frmStereoPlot::runPlot(bool announce) {
  // A plot asked for while the window draws (it yields to events) is run after.
  if (plotting_) {
    plotQueued_ = true;
    if (announce && !announcePlot_) {
      announcePlot_ = true;
      dialogs_.SetBusy(true);
    }
    return;
  }
  Command command(*this);
  plotting_ = true;
  announcePlot_ = announce;
  if (announcePlot_) dialogs_.SetBusy(true);
  do {
    plotQueued_ = false;
    plotOnce();
  } while (plotQueued_ && !closePending_ && !stopRequested_);
  if (announcePlot_) dialogs_.SetBusy(false);
  plotting_ = false;
  plotQueued_ = false;  // what Esc stopped is not drawn again

  if (closePending_) {
    closePending_ = false;
    afterPlot_.clear();
    close();
    return;
  }
  for (auto& action : std::exchange(afterPlot_, {}))
    QTimer::singleShot(0, this, std::move(action));
}

void frmStereoPlot::plotOnce() {
  // Crossed viewing: the left eye's picture goes to the right and the right eye's to
  // the left, so that the same end comes forward as in parallel viewing.
  eyesSwapped_ = viewing_ == ViewingMode::Crossed;
  Canvas& left = picture(eyesSwapped_ ? 1 : 0);
  Canvas& right = picture(eyesSwapped_ ? 0 : 1);
  left.Cls();
  right.Cls();
  // Settings first, then the constants: the order the window has always had.
  const SettingsRead read = ReadPlotSettings(readFields(), reader_, settings_);
  settings_ = read.settings;
  reportSettingError(read.error);
  for (const std::string& entry : constants_.entries()) {
    try {
      ScriptControl1.ExecuteStatement(entry);
    } catch (const RuntimeError&) {
      // Reported by the engine's error event.
    }
  }
  ApplyPlotAppearance(left, right, settings_);
  sizePictures(settings_.reduce);
  lblPlotStatus->clear();
  stopRequested_ = false;
  dialogs_.DoEvents();

  const RegressionProblem& problem = workbench_.problem;
  std::vector<Point3> marks;
  if (problem.X.lastRow() >= problem.N && problem.X.lastColumn() >= problem.m + 1)
    marks = DataMarksFrom(problem.N, problem.m,
                          [&problem](int32_t row, int32_t column) { return problem.X(column, row); });
  // Every 20 ms of drawing the window's events run, and Esc or the close box stop it.
  StopCheck stop([this] {
    composeAnaglyph();
    dialogs_.DoEvents();
    return stopRequested_;
  });
  const StereoPlot plot{settings_, surface_, uv_, random_, marks, workbench_.fitted, &stop};
  const bool finished = DrawStereoPlot(left, right, plot);
  composeAnaglyph();
  drawn_ = true;
  if (!finished)
    lblPlotStatus->setText(qs(kInterruptedText));
  else if (announcePlot_)
    dialogs_.Beep();
}

void frmStereoPlot::sizePictures(float reduce) {
  const PictureLayout layout = ReducePictures(geometry_, reduce);
  const int rightLeft = pic[1]->geometry().left();
  pic[0]->setFixedCanvasSize(layout.width0, layout.height0);
  pic[0]->setGeometry(layout.left0, 0, layout.width0, layout.height0);
  pic[1]->setFixedCanvasSize(layout.width1, layout.height1);
  pic[1]->setGeometry(rightLeft, 0, layout.width1, layout.height1);
  picAnaglyph->setFixedCanvasSize(layout.width0, layout.height0);
  picAnaglyph->setGeometry((picFrame->width() - layout.width0) / 2, 0, layout.width0, layout.height0);
}

// ---- Viewing modes ----

void frmStereoPlot::cboViewing_Click() {
  viewing_ = static_cast<ViewingMode>(std::clamp(cboViewing->currentIndex(), 0, 2));
  applyViewingMode();
}

void frmStereoPlot::applyViewingMode() {
  const bool anaglyph = viewing_ == ViewingMode::Anaglyph;
  pic[0]->setVisible(!anaglyph);
  pic[1]->setVisible(!anaglyph);
  picAnaglyph->setVisible(anaglyph);
  // A plot being drawn keeps its pictures; the pair is drawn again for the new mode.
  if (plotting_) {
    plotQueued_ = true;
    return;
  }
  if (eyesSwapped_ != (viewing_ == ViewingMode::Crossed)) {
    const QImage first = pic[0]->imageCanvas().image();
    pic[0]->imageCanvas().showImage(pic[1]->imageCanvas().image());
    pic[1]->imageCanvas().showImage(first);
    eyesSwapped_ = !eyesSwapped_;
  }
  composeAnaglyph();
}

void frmStereoPlot::composeAnaglyph() {
  if (viewing_ != ViewingMode::Anaglyph) return;
  const QImage& left = pic[eyesSwapped_ ? 1 : 0]->imageCanvas().image();
  const QImage& right = pic[eyesSwapped_ ? 0 : 1]->imageCanvas().image();
  picAnaglyph->imageCanvas().showImage(RedCyanAnaglyph(left, right));
}

Canvas* frmStereoPlot::anaglyphShown() {
  return viewing_ == ViewingMode::Anaglyph ? &picAnaglyph->canvas() : nullptr;
}

Canvas& frmStereoPlot::shownPicture(int index) {
  Canvas* anaglyph = anaglyphShown();
  return anaglyph != nullptr ? *anaglyph : picture(index);
}

// ---- The mouse on the pictures ----

bool frmStereoPlot::eventFilter(QObject* watched, QEvent* event) {
  if (watched != pic[0] && watched != pic[1] && watched != picAnaglyph) return QWidget::eventFilter(watched, event);
  switch (event->type()) {
    case QEvent::MouseButtonPress: {
      auto* mouse = static_cast<QMouseEvent*>(event);
      if (mouse->button() != Qt::LeftButton) return false;
      pic_MouseDown(mouse->globalPosition());
      return true;
    }
    case QEvent::MouseMove: {
      auto* mouse = static_cast<QMouseEvent*>(event);
      if (!(mouse->buttons() & Qt::LeftButton)) {
        pic_MouseUp();  // a release that went elsewhere (a message box took it)
        return false;
      }
      pic_MouseMove(mouse->globalPosition());
      return true;
    }
    case QEvent::MouseButtonRelease:
      if (static_cast<QMouseEvent*>(event)->button() != Qt::LeftButton) return false;
      pic_MouseUp();
      return true;
    case QEvent::Wheel:
      pic_MouseWheel(static_cast<QWheelEvent*>(event)->angleDelta().y());
      return true;
    default:
      return false;
  }
}

void frmStereoPlot::pic_MouseDown(const QPointF& at) {
  // One command for the whole drag: a field without value is reported once.
  dragCommand_ = std::make_unique<Command>(*this);
  dragFrom_ = at;
  auto angle = [this](const TextBox* box) {
    try {
      return reader_.evalSetting(text(box));
    } catch (const RuntimeError&) {
      return leadingNumber(text(box));
    }
  };
  dragAngles_ = {angle(txtXrot), angle(txtYrot), angle(txtZrot)};
}

void frmStereoPlot::pic_MouseMove(const QPointF& at) {
  if (!dragCommand_) return;
  const QPointF moved = at - dragFrom_;
  if (moved.isNull()) return;
  dragFrom_ = at;
  dragAngles_ = DragRotation(dragAngles_, moved.x(), moved.y());
  StereoFields f;
  ShowAngles(dragAngles_, f);
  txtXrot->setText(QString::fromStdString(f.xrot));
  txtYrot->setText(QString::fromStdString(f.yrot));
  txtZrot->setText(QString::fromStdString(f.zrot));
  runPlot(false);
}

void frmStereoPlot::pic_MouseUp() { dragCommand_.reset(); }

void frmStereoPlot::pic_MouseWheel(int angleDelta) {
  for (int notches = wheel_.add(angleDelta); notches != 0; notches += notches > 0 ? -1 : 1)
    ZoomView(notches > 0 ? kZoomIn : kZoomOut);
}

void frmStereoPlot::whenIdle(std::function<void()> action) {
  if (plotting_)
    afterPlot_.push_back(std::move(action));
  else
    action();
}

// ---- View controls ----

void frmStereoPlot::ZoomView(int code) {
  StereoFields f = readFields();
  try {
    if (!orvane::ZoomView(code, f)) return;
  } catch (const RuntimeError& e) {
    ShowRunTimeError(dialogs_, e);
    return;
  }
  const std::pair<TextBox*, const std::string*> window[] = {
      {txtWindowlx, &f.windowlx}, {txtWindowgx, &f.windowgx}, {txtWindowly, &f.windowly},
      {txtWindowgy, &f.windowgy}, {txtWindowlz, &f.windowlz}, {txtWindowgz, &f.windowgz}};
  for (const auto& [box, value] : window) box->setText(QString::fromStdString(*value));
  cmdPlot_Click();
}

void frmStereoPlot::stepField(StepTarget target, StepDirection direction) {
  StereoFields f = readFields();
  try {
    StepField(target, direction, f);
  } catch (const RuntimeError& e) {
    ShowRunTimeError(dialogs_, e);
    return;
  }
  showFields(f);
}

// ---- Export, import, print, copy ----

SettingsRead frmStereoPlot::readSettingsForOutput() {
  // The file and the report describe the fields as they stand, constants included.
  for (const std::string& entry : constants_.entries()) {
    try {
      ScriptControl1.ExecuteStatement(entry);
    } catch (const RuntimeError&) {
    }
  }
  return ReadPlotSettings(readFields(), reader_, settings_);
}

void frmStereoPlot::exportTo(const std::string& path) {
  Command command(*this);
  try {
    const SettingsRead read = readSettingsForOutput();
    if (drawn_)
      SaveStereoPictures(picture(0), picture(1), path, chkPersist->isChecked(), [this] { cmdPlot_Click(); },
                         anaglyphShown());
    WriteStereoFile(path, read.settings, constants_.entries());
    fileName_ = path;
    fileWrittenHere_ = true;
  } catch (const RuntimeError& e) {
    dialogs_.MsgBox(e.description(), mb::Critical);
  }
}

void frmStereoPlot::mnuSave_Click() {
  whenIdle([this] {
    std::string name = fileName_;
    if (name.empty()) name = dialogs_.SaveFileName("Export to Duplora", kExportFilter).value_or("");
    if (name.empty() || !replaceConfirmed(name)) return;
    exportTo(name);
  });
}

void frmStereoPlot::mnuSaveAs_Click() {
  whenIdle([this] {
    const std::string name = dialogs_.SaveFileName("Export to Duplora As", kExportFilter, fileName_).value_or("");
    if (!name.empty()) exportTo(name);
  });
}

// The file named by an import was not written here: Export asks before replacing it
// (and its two pictures), once.
bool frmStereoPlot::replaceConfirmed(const std::string& path) {
  std::error_code ignored;
  if (fileWrittenHere_ || path != fileName_ || !std::filesystem::exists(path, ignored)) return true;
  return dialogs_.MsgBox(path + "\rwas imported, not exported from this window.\rReplace it and its two pictures?",
                         mb::YesNo + mb::Question, "Export to Duplora") == mb::Yes;
}

void frmStereoPlot::importFrom(const std::string& path) {
  Command command(*this);
  const StereoImport result = ReadStereoFile(path, readFields());
  if (result.status == ImportStatus::Incompatible || result.status == ImportStatus::Unreadable) {
    dialogs_.MsgBox(result.message, result.status == ImportStatus::Unreadable ? mb::Critical : mb::OKOnly);
    return;
  }
  // What was read stands, also before a fault further on in the file.
  showFields(result.fields);
  for (const std::string& entry : result.constants) {
    if (!constants_.Add(entry)) continue;
    try {
      ScriptControl1.ExecuteStatement(entry);
    } catch (const RuntimeError&) {
    }
  }
  showConstants(cboConstants->currentText());
  if (result.status == ImportStatus::Malformed) {
    dialogs_.MsgBox(result.message, mb::Exclamation);
    return;
  }
  fileName_ = path;
  fileWrittenHere_ = false;
}

void frmStereoPlot::mnuOpen_Click() {
  whenIdle([this] {
    const auto name = dialogs_.OpenFileName("Import from Duplora", kExportFilter, fileName_);
    if (name && !name->empty()) importFrom(*name);
  });
}

void frmStereoPlot::mnuPrint_Click() {
  whenIdle([this] {
    Command command(*this);
    std::unique_ptr<PrinterPage> page = dialogs_.OpenPrinter("Stereo Plot");
    if (!page) return;
    try {
      const SettingsRead read = readSettingsForOutput();
      const ReportPictures pictures{picture(0), picture(1), drawn_, chkPersist->isChecked(),
                                    [this] { cmdPlot_Click(); },
                                    anaglyphShown()};
      PrintStereoReport(*page, readFields(), read.settings, constants_.entries(), &pictures);
    } catch (const RuntimeError& e) {
      dialogs_.MsgBox(e.description(), mb::Critical);
    }
  });
}

void frmStereoPlot::mnuCopyLeft_Click() { CopyToClipboard(dialogs_, shownPicture(0)); }

void frmStereoPlot::mnuCopyRight_Click() { CopyToClipboard(dialogs_, shownPicture(1)); }

void frmStereoPlot::mnuHelp_Click() { ShowHelpFile(dialogs_, workbench_.startDirectory, "deptrix.hlp"); }

// ---- Closing ----

void frmStereoPlot::cmdExit_Click() { close(); }

void frmStereoPlot::closeEvent(QCloseEvent* event) {
  // Not in the middle of a drawing: the plot stops, and the window goes once it has.
  if (plotting_) {
    closePending_ = true;
    stopRequested_ = true;
    event->ignore();
    return;
  }
  event->accept();
  emit unloaded();
}

void frmStereoPlot::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape && plotting_) {
    stopRequested_ = true;
    event->accept();
    return;
  }
  QWidget::keyPressEvent(event);
}

}  // namespace orvane
