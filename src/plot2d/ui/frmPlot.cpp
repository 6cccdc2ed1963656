#include "plot2d/ui/frmPlot.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <optional>
#include <span>
#include <tuple>

#include "engine/PointEvaluation.h"
#include "platform/CopyToClipboard.h"
#include "platform/Dialogs.h"
#include "platform/NumberText.h"
#include "platform/PrinterPage.h"
#include "platform/RuntimeError.h"
#include "platform/ui/PictureBox.h"
#include "platform/ui/TextBox.h"
#include "plot2d/Derivatives.h"
#include "plot2d/EngineFunction.h"
#include "plot2d/ExtremaFinder.h"
#include "plot2d/Integrator.h"
#include "plot2d/PlotDrawing.h"
#include "plot2d/RootFinder.h"
#include "plot2d/StudyDefaults.h"
#include "platform/ui/Shortcuts.h"
#include "plot2d/StudyExport.h"
#include "plot2d/StudyReport.h"
#include "regression/Solver.h"

namespace orvane {

namespace {

using studyOpening::kPictureHeight;
using studyOpening::kPictureWidth;

QString qs(std::string_view text) { return QString::fromUtf8(text.data(), qsizetype(text.size())); }
std::string str(const QString& text) { return text.toStdString(); }

template <typename T>
T* named(T* widget, const char* name, const char* tip = nullptr) {
  widget->setObjectName(QString::fromLatin1(name));
  if (tip != nullptr) widget->setToolTip(QString::fromUtf8(tip));
  return widget;
}

QLabel* label(const char* name, const char* caption, const char* tip = nullptr) {
  return named(new QLabel(QString::fromUtf8(caption)), name, tip);
}

TextBox* field(const char* name, const char* tip = nullptr) {
  auto* box = named(new TextBox(), name, tip);
  box->setMinimumWidth(52);
  return box;
}

QPushButton* button(const char* name, const char* caption, const char* tip) {
  return named(new QPushButton(QString::fromUtf8(caption)), name, tip);
}

// Only a different text is written, so that the Change handlers see real changes.
void setText(QLineEdit* box, const std::string& text) {
  const QString q = qs(text);
  if (box->text() != q) box->setText(q);
}

// The regression's data sets as points: the independent variable of each set (rows
// 1..N) and its given dependent value; none before the data exist.
std::pair<std::span<const double>, std::span<const double>> dataPoints(const RegressionProblem& p) {
  if (p.m < 1 || p.N < 1 || p.X.lastColumn() < p.m + 1 || p.X.lastRow() < p.N) return {};
  const auto n = static_cast<size_t>(p.N);
  return {std::span<const double>(p.X.column(1) + 1, n), std::span<const double>(p.X.column(p.m + 1) + 1, n)};
}

// The 95% bands while the curve is the fitted function of one variable (as handed over,
// blanks aside); none otherwise.
std::function<BandHalfWidths(double)> fittedBands(const Workbench& w, std::string equation, int32_t derivative) {
  const RegressionProblem& p = w.problem;
  if (!w.fitted || !w.summary || !w.summary->determined || p.m != 1 || derivative != 0) return {};
  std::erase_if(equation, [](char ch) { return ch == ' ' || ch == '\t'; });
  if (equation != FittedFunctionText(p)) return {};
  return [summary = &*w.summary](double x) { return BandsAt(*summary, x); };
}

// The picture's size in twips (1440 to the inch), as the viewport reads it.
float twips(int pixels, double dpi) { return static_cast<float>(pixels * 1440.0 / dpi); }

}  // namespace

frmPlot::Command::Command(frmPlot& window, bool quiet) : window_(window) {
  if (window_.commandDepth_++ != 0) return;
  window_.shownErrors_.clear();
  window_.quietCommand_ = quiet;
}

frmPlot::Command::~Command() { --window_.commandDepth_; }

frmPlot::frmPlot(Workbench& workbench, Dialogs& dialogs, QWidget* parent)
    : QWidget(parent, Qt::Window), workbench_(workbench), dialogs_(dialogs) {
  setObjectName(QStringLiteral("frmPlot"));
  setWindowTitle(QStringLiteral("Orvane Regression - Function study"));
  buildControls();
  buildMenus();
  Form_Load();
}

frmPlot::~frmPlot() = default;

void frmPlot::buildControls() {
  lblEquation = label("lblEquation", "f(x)=");
  txtEquation = field("txtEquation");
  lblEquation->setBuddy(txtEquation);

  // Study specifications.
  fraStudy = named(new QGroupBox(QStringLiteral("Study specifications")), "fraStudy");
  txtXlower = field("txtXlower", "Lower limit of interval to be studied");
  lblInterval = label("lblInterval", "<=x<=", "Defines interval to be studied");
  txtXupper = field("txtXupper", "Upper limit of interval to be studied");
  lblSubintervals = label("lblSubintervals", " # of subintervals:",
                          "Should be enough to detect all roots & extrema, and to find an accurate integral.");
  txtSubintervals = field("txtSubintervals", "Minimum # of subintervals");
  lblError = label("lblError", "Approx. error bound:");
  txtError = field("txtError", "Error MUST be >0");
  lblMaxcy = label("lblMaxcy", "Max. # of iterations:");
  txtMaxcy = field("txtMaxcy", "Limits number of main loop iterations");
  auto* study = new QGridLayout(fraStudy);
  study->addWidget(txtXlower, 0, 0);
  study->addWidget(lblInterval, 0, 1, Qt::AlignCenter);
  study->addWidget(txtXupper, 0, 2);
  study->addWidget(lblSubintervals, 1, 0, 1, 2);
  study->addWidget(txtSubintervals, 1, 2);
  study->addWidget(lblError, 2, 0, 1, 2);
  study->addWidget(txtError, 2, 2);
  study->addWidget(lblMaxcy, 3, 0, 1, 2);
  study->addWidget(txtMaxcy, 3, 2);

  // The study commands and what they found.
  cmdRoots = button("cmdRoots", "&Roots", "Find roots");
  lblRootsTitle = label("lblRootsTitle", "Roots");
  lstRoots = named(new QListWidget(), "lstRoots");
  lblRoots = label("lblRoots", "", "How many roots were found");
  cmdExtrema = button("cmdExtrema", "&Extrema", "Find maxima and minima");
  lblExtremaTitle = label("lblExtremaTitle", "Extrema");
  lstExtrema = named(new QListWidget(), "lstExtrema");
  lblExtrema = label("lblExtrema", "", "How many extrema were found");
  cmdIntegrate = button("cmdIntegrate", "&Integral", "Compute integral");
  lblIntegral = label("lblIntegral", "", "Integral");
  for (QLabel* result : {lblRoots, lblExtrema, lblIntegral}) {
    result->setTextInteractionFlags(Qt::TextSelectableByMouse);
    result->setFrameShape(QFrame::StyledPanel);
    result->setMinimumHeight(result->sizeHint().height() + 4);
  }
  for (QListWidget* list : {lstRoots, lstExtrema}) {
    list->setMinimumHeight(72);
    list->setMaximumHeight(110);
  }
  lblRootsTitle->setBuddy(lstRoots);
  lblExtremaTitle->setBuddy(lstExtrema);
  auto* found = new QGridLayout();
  found->addWidget(cmdRoots, 0, 0);
  found->addWidget(cmdExtrema, 0, 1);
  found->addWidget(lblRootsTitle, 1, 0);
  found->addWidget(lblExtremaTitle, 1, 1);
  found->addWidget(lstRoots, 2, 0);
  found->addWidget(lstExtrema, 2, 1);
  found->addWidget(lblRoots, 3, 0);
  found->addWidget(lblExtrema, 3, 1);
  auto* integral = new QHBoxLayout();
  integral->addWidget(cmdIntegrate);
  integral->addWidget(lblIntegral, 1);
  found->addLayout(integral, 4, 0, 1, 2);

  // Evaluation of function or derivatives.
  fraEvaluation = named(new QGroupBox(QStringLiteral("Evaluation of function or derivatives")),
                        "fraEvaluation");
  lblDerNum = label("lblDerNum", "Which derivative?");
  txtDerNum = field("txtDerNum", "Enter 0 for the function itself");
  lblXeval = label("lblXeval", "At x=");
  txtXeval = field("txtXeval", "Point of evaluation");
  cmdDerVal = button("cmdDerVal", "&Value=", "Compute function or derivative");
  lblDerVal = label("lblDerVal", "", "Value of function or derivative");
  lblDerVal->setTextInteractionFlags(Qt::TextSelectableByMouse);
  lblDerVal->setFrameShape(QFrame::StyledPanel);
  lblDerNum->setBuddy(txtDerNum);
  lblXeval->setBuddy(txtXeval);
  auto* evaluation = new QGridLayout(fraEvaluation);
  evaluation->addWidget(lblDerNum, 0, 0);
  evaluation->addWidget(txtDerNum, 0, 1);
  evaluation->addWidget(lblXeval, 1, 0);
  evaluation->addWidget(txtXeval, 1, 1);
  evaluation->addWidget(cmdDerVal, 2, 0);
  evaluation->addWidget(lblDerVal, 2, 1);

  // User constants.
  fraConstants = named(new QGroupBox(qs(constantsText::Frame)), "fraConstants");
  fraConstants->setToolTip(qs(constantsText::FrameTip));
  cboConstants = named(new QComboBox(), "cboConstants");
  cboConstants->setEditable(true);
  cboConstants->setInsertPolicy(QComboBox::NoInsert);
  cmdAddCons = named(new QPushButton(QStringLiteral("Add")), "cmdAddCons");
  cboConstants->setMinimumContentsLength(14);
  cmdAddCons->setToolTip(qs(constantsText::AddTip));
  cmdRemCons = named(new QPushButton(qs(constantsText::RemoveCaption)), "cmdRemCons");
  cmdRemCons->setToolTip(qs(constantsText::RemoveTip));
  cmdAddCons->setMaximumWidth(56);
  cmdRemCons->setMaximumWidth(72);
  auto* constantsLayout = new QHBoxLayout(fraConstants);
  constantsLayout->addWidget(cboConstants, 1);
  constantsLayout->addWidget(cmdAddCons);
  constantsLayout->addWidget(cmdRemCons);

  // Plot setup.
  fraPlotSetup = named(new QGroupBox(QStringLiteral("Plot setup")), "fraPlotSetup");
  txtWindowlx = field("txtWindowlx", "Lower limit for x (plotting)");
  lblWindowx = label("lblWindowx", "<=x<=");
  txtWindowgx = field("txtWindowgx", "Upper limit for x (plotting)");
  txtWindowly = field("txtWindowly", "Lower limit for y (plotting)");
  lblWindowy = label("lblWindowy", "<=y<=");
  txtWindowgy = field("txtWindowgy", "Upper limit for y (plotting)");
  lblXorigin = label("lblXorigin", "x-origin:");
  txtXorigin = field("txtXorigin", "Position of y-axis");
  lblYorigin = label("lblYorigin", "y-origin:");
  txtYorigin = field("txtYorigin", "Position of x-axis");
  lblDivx = label("lblDivx", "x-divisions:");
  txtDivx = field("txtDivx", "Size of divisions on x-axis");
  lblDivy = label("lblDivy", "y-divisions:");
  txtDivy = field("txtDivy", "Size of divisions on y-axis");
  lblPlotStep = label("lblPlotStep", "Plot step:");
  txtPlotStep = field("txtPlotStep", "Enter integer between 1 and 80");
  chkGrid = named(new QCheckBox(QStringLiteral("Grid")), "chkGrid",
                  "Check for grid lines across the window instead of ticks");
  chkShade = named(new QCheckBox(QStringLiteral("Shade")), "chkShade",
                   "Check if you want the area shaded");
  chkWindow = named(new QCheckBox(QStringLiteral("Label window")), "chkWindow",
                    "Check to label the window edges");
  chkDivisions = named(new QCheckBox(QStringLiteral("Label divisons")), "chkDivisions",
                       "Check to label the divisions");
  chkPersist = named(new QCheckBox(QStringLiteral("Persist")), "chkPersist",
                     "Check if you want persistent graphics");
  cboDerivative = named(new QComboBox(), "cboDerivative", "Select what to plot from list");
  cboDerivative->addItems({QStringLiteral("Function"), QStringLiteral("1st.derivative"),
                           QStringLiteral("2nd.derivative"), QStringLiteral("3rd.derivative"),
                           QStringLiteral("4th.derivative"), QStringLiteral("5th.derivative"),
                           QStringLiteral("6th.derivative"), QStringLiteral("7th.derivative"),
                           QStringLiteral("8th.derivative"), QStringLiteral("9th.derivative")});
  cmdPlot = button("cmdPlot", "&Plot", "Plot the selected option");
  lblPlotStatus = label("lblPlotStatus", "", "Esc stops a plot; what was drawn stays");
  for (QLabel* l : {lblXorigin, lblYorigin, lblDivx, lblDivy, lblPlotStep})
    l->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  lblXorigin->setBuddy(txtXorigin);
  lblYorigin->setBuddy(txtYorigin);
  lblDivx->setBuddy(txtDivx);
  lblDivy->setBuddy(txtDivy);
  lblPlotStep->setBuddy(txtPlotStep);
  auto* setup = new QGridLayout(fraPlotSetup);
  setup->addWidget(txtWindowlx, 0, 0);
  setup->addWidget(lblWindowx, 0, 1, Qt::AlignCenter);
  setup->addWidget(txtWindowgx, 0, 2);
  setup->addWidget(lblXorigin, 0, 3);
  setup->addWidget(txtXorigin, 0, 4);
  setup->addWidget(txtWindowly, 1, 0);
  setup->addWidget(lblWindowy, 1, 1, Qt::AlignCenter);
  setup->addWidget(txtWindowgy, 1, 2);
  setup->addWidget(lblYorigin, 1, 3);
  setup->addWidget(txtYorigin, 1, 4);
  auto* divisions = new QHBoxLayout();
  divisions->addWidget(lblDivx);
  divisions->addWidget(txtDivx);
  divisions->addWidget(lblDivy);
  divisions->addWidget(txtDivy);
  setup->addLayout(divisions, 2, 0, 1, 3);
  setup->addWidget(lblPlotStep, 2, 3);
  setup->addWidget(txtPlotStep, 2, 4);
  auto* checks = new QGridLayout();
  checks->addWidget(chkGrid, 0, 0);
  checks->addWidget(chkShade, 0, 1);
  checks->addWidget(chkPersist, 0, 2);
  checks->addWidget(chkWindow, 1, 0, 1, 2);
  checks->addWidget(chkDivisions, 1, 2);
  setup->addLayout(checks, 3, 0, 1, 5);
  auto* plotRow = new QHBoxLayout();
  plotRow->addWidget(cboDerivative, 1);
  plotRow->addWidget(cmdPlot);
  plotRow->addWidget(lblPlotStatus);
  setup->addLayout(plotRow, 4, 0, 1, 5);

  // Graph: zoom, quadrants, pan, wider and narrower.
  fraGraph = named(new QGroupBox(QStringLiteral("Graph")), "fraGraph");
  cmdZoomIn = button("cmdZoomIn", "+", "Zoom in");
  cmdZoomOut = button("cmdZoomOut", "\u2212", "Zoom out");
  cmdZoomQ1 = button("cmdZoomQ1", "Q1", "Zoom quadrant 1");
  cmdZoomQ2 = button("cmdZoomQ2", "Q2", "Zoom quadrant 2");
  cmdZoomQ3 = button("cmdZoomQ3", "Q3", "Zoom quadrant 3");
  cmdZoomQ4 = button("cmdZoomQ4", "Q4", "Zoom quadrant 4");
  cmdPanUp = button("cmdPanUp", "\u2191", "Pan up");
  cmdPanDown = button("cmdPanDown", "\u2193", "Pan down");
  cmdPanLeft = button("cmdPanLeft", "\u2190", "Pan left");
  cmdPanRight = button("cmdPanRight", "\u2192", "Pan right");
  cmdIncWindX = button("cmdIncWindX", "x \u2194", "Wider x-window");
  cmdDecWindX = button("cmdDecWindX", "x \u2192\u2190", "Narrower x-window");
  cmdIncWindY = button("cmdIncWindY", "y \u2195", "Wider y-window");
  cmdDecWindY = button("cmdDecWindY", "y \u2193\u2191", "Narrower y-window");
  auto* graph = new QGridLayout(fraGraph);
  graph->setSpacing(2);
  graph->addWidget(cmdZoomQ2, 0, 0);
  graph->addWidget(cmdPanUp, 0, 1);
  graph->addWidget(cmdZoomQ1, 0, 2);
  graph->addWidget(cmdPanLeft, 1, 0);
  graph->addWidget(cmdZoomIn, 1, 1);
  graph->addWidget(cmdPanRight, 1, 2);
  graph->addWidget(cmdZoomQ3, 2, 0);
  graph->addWidget(cmdPanDown, 2, 1);
  graph->addWidget(cmdZoomQ4, 2, 2);
  graph->addWidget(cmdZoomOut, 3, 1);
  graph->addWidget(cmdIncWindX, 0, 3);
  graph->addWidget(cmdDecWindX, 1, 3);
  graph->addWidget(cmdIncWindY, 2, 3);
  graph->addWidget(cmdDecWindY, 3, 3);
  chkBands = named(new QCheckBox(QStringLiteral("95% bands")), "chkBands",
                   "Check to draw the 95% confidence band of the mean and the prediction band "
                   "around the fitted function");
  graph->addWidget(chkBands, 4, 0, 1, 4);
  connect(chkBands, &QCheckBox::toggled, this, &frmPlot::chkBands_Click);
  for (QPushButton* b : fraGraph->findChildren<QPushButton*>()) {
    b->setMinimumWidth(34);
    b->setMaximumWidth(b->text().size() > 2 ? 56 : 40);
    b->setAutoDefault(false);
  }

  Picture1 = new PictureBox(nullptr, kPictureWidth, kPictureHeight);
  Picture1->setObjectName(QStringLiteral("Picture1"));
  Picture1->setFocusPolicy(Qt::StrongFocus);  // + - and the arrows zoom and pan it
  Picture1->installEventFilter(this);
  cmdExit = button("cmdExit", "E&xit", nullptr);
  // Leaving the window never waits for a field to be filled in correctly.
  TextBox::setCausesValidation(cmdExit, false);

  // The picture takes the free space; the study controls stand to its right.
  auto* equationRow = new QHBoxLayout();
  equationRow->addWidget(lblEquation);
  equationRow->addWidget(txtEquation, 1);

  auto* below = new QHBoxLayout();
  below->addWidget(fraPlotSetup, 1);
  below->addWidget(fraGraph);
  auto* left = new QVBoxLayout();
  left->addWidget(Picture1, 1);
  left->addLayout(below);

  auto* right = new QVBoxLayout();
  right->addWidget(fraStudy);
  right->addLayout(found);
  right->addWidget(fraEvaluation);
  right->addWidget(fraConstants);
  right->addStretch(1);
  auto* exitRow = new QHBoxLayout();
  exitRow->addStretch();
  exitRow->addWidget(cmdExit);
  right->addLayout(exitRow);
  auto* rightPanel = new QWidget();
  rightPanel->setObjectName(QStringLiteral("studyPanel"));
  rightPanel->setLayout(right);
  right->setContentsMargins(0, 0, 0, 0);
  rightPanel->setFixedWidth(320);

  auto* middle = new QHBoxLayout();
  middle->addLayout(left, 1);
  middle->addWidget(rightPanel);

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(equationRow);
  layout->addLayout(middle, 1);

  connect(txtEquation, &QLineEdit::textChanged, this, &frmPlot::txtEquation_Change);
  // Plot is the window's default button: Enter in the function's field draws it.
  cmdPlot->setDefault(true);
  connect(txtEquation, &QLineEdit::returnPressed, cmdPlot, &QPushButton::click);
  for (TextBox* box : {txtXlower, txtXupper, txtSubintervals, txtError, txtMaxcy})
    connect(box, &QLineEdit::textChanged, this, &frmPlot::ClearResults);
  connect(txtXlower, &TextBox::LostFocus, this, &frmPlot::txtXlower_LostFocus);
  connect(txtXupper, &TextBox::LostFocus, this, &frmPlot::txtXupper_LostFocus);
  connect(txtSubintervals, &TextBox::Validate, this, &frmPlot::txtSubintervals_Validate);
  connect(txtSubintervals, &TextBox::LostFocus, this, &frmPlot::txtSubintervals_LostFocus);
  connect(txtError, &TextBox::GotFocus, this, &frmPlot::txtError_GotFocus);
  connect(txtError, &TextBox::Validate, this, &frmPlot::txtError_Validate);
  connect(txtError, &TextBox::LostFocus, this, &frmPlot::txtError_LostFocus);
  connect(txtMaxcy, &TextBox::Validate, this, &frmPlot::txtMaxcy_Validate);
  connect(txtPlotStep, &TextBox::Validate, this, &frmPlot::txtPlotStep_Validate);
  for (TextBox* box : {txtWindowlx, txtWindowgx, txtWindowly, txtWindowgy, txtXorigin, txtYorigin})
    connect(box, &QLineEdit::textChanged, this, &frmPlot::txtWindow_Change);
  connect(txtWindowlx, &TextBox::LostFocus, this, &frmPlot::txtWindowlx_LostFocus);
  connect(txtWindowgx, &TextBox::LostFocus, this, &frmPlot::txtWindowgx_LostFocus);
  connect(txtWindowly, &TextBox::LostFocus, this, &frmPlot::txtWindowly_LostFocus);
  connect(txtWindowgy, &TextBox::LostFocus, this, &frmPlot::txtWindowgy_LostFocus);

  connect(cmdRoots, &QPushButton::clicked, this, &frmPlot::cmdRoots_Click);
  connect(cmdIntegrate, &QPushButton::clicked, this, &frmPlot::cmdIntegrate_Click);
  connect(cmdExtrema, &QPushButton::clicked, this, &frmPlot::cmdExtrema_Click);
  connect(cmdDerVal, &QPushButton::clicked, this, &frmPlot::cmdDerVal_Click);
  connect(cmdPlot, &QPushButton::clicked, this, &frmPlot::cmdPlot_Click);
  connect(cmdAddCons, &QPushButton::clicked, this, &frmPlot::cmdAddCons_Click);
  connect(cmdRemCons, &QPushButton::clicked, this, &frmPlot::cmdRemCons_Click);
  connect(cboConstants->lineEdit(), &QLineEdit::returnPressed, this, &frmPlot::cmdAddCons_Click);
  connect(cmdExit, &QPushButton::clicked, this, &frmPlot::cmdExit_Click);

  const std::pair<QPushButton*, int> zooms[] = {
      {cmdZoomOut, 0},  {cmdZoomQ1, 1},   {cmdZoomQ2, 2},   {cmdZoomQ3, 3},  {cmdZoomQ4, 4},
      {cmdZoomIn, 5},   {cmdPanRight, 6}, {cmdPanUp, 7},    {cmdPanLeft, 8}, {cmdPanDown, 9},
      {cmdIncWindX, 10}, {cmdDecWindX, 11}, {cmdIncWindY, 12}, {cmdDecWindY, 13}};
  for (const auto& [b, code] : zooms)
    connect(b, &QPushButton::clicked, this, [this, code = code] { Zoom(code); });

  connect(Picture1, &PictureBox::MouseDown, this, &frmPlot::Picture1_MouseDown);
  connect(Picture1, &PictureBox::MouseMove, this, &frmPlot::Picture1_MouseMove);
  connect(Picture1, &PictureBox::Resized, this, &frmPlot::Picture1_Resized);
}

void frmPlot::buildMenus() {
  menuBar_ = named(new QMenuBar(this), "menuBar");
  mnuFile = named(menuBar_->addMenu(QStringLiteral("&File")), "mnuFile");
  mnuSave = named(mnuFile->addAction(QStringLiteral("Export to Curvix")), "mnuSave");
  mnuSaveAs = named(mnuFile->addAction(QStringLiteral("Export to Curvix As")), "mnuSaveAs");
  mnuFile->addSeparator();
  mnuPrint = named(mnuFile->addAction(QStringLiteral("Print")), "mnuPrint");
  mnuCopy = named(mnuFile->addAction(QStringLiteral("Copy graph to clipboard")), "mnuCopy");
  mnuHelp = named(menuBar_->addAction(QStringLiteral("&Help")), "mnuHelp");
  layout()->setMenuBar(menuBar_);

  connect(mnuSave, &QAction::triggered, this, &frmPlot::mnuSave_Click);
  connect(mnuSaveAs, &QAction::triggered, this, &frmPlot::mnuSaveAs_Click);
  connect(mnuPrint, &QAction::triggered, this, &frmPlot::mnuPrint_Click);
  connect(mnuCopy, &QAction::triggered, this, &frmPlot::mnuCopy_Click);
  connect(mnuHelp, &QAction::triggered, this, &frmPlot::mnuHelp_Click);
  // A text field keeps Ctrl+C for its own text.
  mnuCopy->setShortcuts(StandardKeys(QKeySequence::Copy, QKeySequence(Qt::CTRL | Qt::Key_C)));
  mnuHelp->setShortcuts(StandardKeys(QKeySequence::HelpContents, QKeySequence(Qt::Key_F1)));
  mnuPrint->setShortcuts(StandardKeys(QKeySequence::Print, QKeySequence(Qt::CTRL | Qt::Key_P)));
}

void frmPlot::Form_Load() {
  // Every field but the formula holds a number; an unreadable one is reported.
  for (TextBox* box : findChildren<TextBox*>()) box->setNumberField(box != txtEquation);
  TextBox::reportErrorsTo(this, dialogs_);
  sh.sharedError = &workbench_.evaluationError;
  ScriptControl1.SetErrorHandler([this](const RuntimeError& error) { ScriptControl1_Error(error); });
  RegisterMathObject(ScriptControl1, sh);

  // Open on the regression's data and its fitted line.
  const RegressionProblem& p = workbench_.problem;
  const auto [xs, ys] = dataPoints(p);
  std::optional<FittedLine> line;
  if (workbench_.fitted && p.m == 1 && p.A.size() >= 2) line = FittedLine{p.A[0], p.A[1]};
  const StudyWindowDefaults d = defaultStudyWindow(xs, ys, line);

  setText(txtXlower, d.xlower);
  setText(txtXupper, d.xupper);
  setText(txtSubintervals, studyOpening::kSubintervals);
  setText(txtError, studyOpening::kErrorBound);
  setText(txtMaxcy, studyOpening::kMaxcy);
  setText(txtWindowlx, d.plot.windowlx);
  setText(txtWindowgx, d.plot.windowgx);
  setText(txtWindowly, d.plot.windowly);
  setText(txtWindowgy, d.plot.windowgy);
  setText(txtXorigin, d.plot.xorigin);
  setText(txtYorigin, d.plot.yorigin);
  setText(txtDivx, d.plot.divx);
  setText(txtDivy, d.plot.divy);
  setText(txtPlotStep, studyOpening::kPlotStep);
  setText(txtDerNum, studyOpening::kDerivative);
  setText(txtXeval, d.xlower);
  errorBound_ = leadingNumber(str(txtError->text()));
  chkDivisions->setChecked(true);
  chkPersist->setChecked(true);
  cboConstants->setEditText(qs(constantsText::Example));
  cboConstants->lineEdit()->setCursorPosition(0);
  graphDrawn_ = false;
}

// ---- The engine's errors ----

void frmPlot::ScriptControl1_Error(const RuntimeError& error) {
  lastScriptError_ = error.number();
  if (isSilencedError(error.number())) return;
  reportError(error);
}

// One box per command for the same error, not one per sampled point; none in a redraw
// the user did not ask for.
void frmPlot::reportError(const RuntimeError& error) {
  if (quietCommand_) return;
  if (!shownErrors_.emplace(error.number(), error.description()).second) return;
  dialogs_.MsgBox(error.description());
}

// ---- Study specifications ----

void frmPlot::txtEquation_Change() { ClearResults(); }

void frmPlot::ClearResults() {
  if (results_.displayed() || !lblRoots->text().isEmpty() || !lblExtrema->text().isEmpty() ||
      !lblIntegral->text().isEmpty() || lstRoots->count() > 0 || lstExtrema->count() > 0) {
    lblIntegral->clear();
    lblRoots->clear();
    lblExtrema->clear();
    lstRoots->clear();
    lstExtrema->clear();
  }
  results_ = StudyResults{};
}

void frmPlot::limitPair(TextBox* lower, TextBox* upper, bool leavingLower) {
  const auto other = limitPairFocus(leavingLower ? LimitField::Lower : LimitField::Upper,
                                    str(lower->text()), str(upper->text()));
  if (!other) return;
  (*other == LimitField::Lower ? lower : upper)->setFocus(Qt::OtherFocusReason);
}

void frmPlot::txtXlower_LostFocus() { limitPair(txtXlower, txtXupper, true); }
void frmPlot::txtXupper_LostFocus() { limitPair(txtXlower, txtXupper, false); }

void frmPlot::txtSubintervals_Validate(bool& cancel) {
  cancel = false;
  setText(txtSubintervals, subintervalsOnValidate(str(txtSubintervals->text())));
}

void frmPlot::txtSubintervals_LostFocus() {
  setText(txtSubintervals, subintervalsOnLostFocus(str(txtSubintervals->text())));
}

void frmPlot::txtError_GotFocus() { errorBound_ = leadingNumber(str(txtError->text())); }

void frmPlot::txtError_Validate(bool& cancel) { cancel = !errorBoundAccepted(str(txtError->text())); }

void frmPlot::txtError_LostFocus() { errorBound_ = leadingNumber(str(txtError->text())); }

void frmPlot::txtMaxcy_Validate(bool& cancel) {
  cancel = false;
  const MaxcyCheck check = maxcyOnValidate(str(txtMaxcy->text()), str(txtSubintervals->text()));
  log2Subintervals_ = check.log2Subintervals;
  setText(txtMaxcy, check.text);
}

StudyFieldTexts frmPlot::ReadSettings() {
  // Each constant runs on its own: one the engine refuses (and has reported) does not
  // keep the later ones out.
  for (const std::string& entry : constants_.entries()) {
    try {
      ScriptControl1.ExecuteStatement(entry);
    } catch (const RuntimeError&) {
    }
  }
  StudyFieldTexts t;
  t.equation = str(txtEquation->text());
  t.xlower = str(txtXlower->text());
  t.xupper = str(txtXupper->text());
  t.subintervals = str(txtSubintervals->text());
  t.error = str(txtError->text());
  t.maxcy = str(txtMaxcy->text());
  t.derivative = str(cboDerivative->currentText());
  return t;
}

// ---- Study commands ----

// One study command on f(x) as the fields give it, with the busy pointer shown; the
// routine's result is returned for the window to show.
template <typename Study>
auto frmPlot::runStudy(Study study) {
  sh.ierr = 0;
  dialogs_.SetBusy(true);
  studying_ = true;
  const StudyFieldTexts texts = ReadSettings();
  EngineFunction f(ScriptControl1, sh, texts.equation);
  DerivativeEvaluator d(f);
  StopCheck stop = longWorkCheck();
  d.setStopCheck(&stop);
  auto result = study(d, texts);
  studying_ = false;
  dialogs_.SetBusy(false);
  return result;
}

StopCheck frmPlot::longWorkCheck() {
  stopRequested_ = false;
  return StopCheck([this] {
    dialogs_.DoEvents();
    return stopRequested_;
  });
}

void frmPlot::afterLongWork() {
  const bool plotAsked = std::exchange(plotQueued_, false);
  if (closeRequested_) {
    closeRequested_ = false;
    close();
  } else if (plotAsked && !stopRequested_) {
    cmdPlot_Click();
  }
}

void frmPlot::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape && working()) {
    stopRequested_ = true;
    event->accept();
    return;
  }
  QWidget::keyPressEvent(event);
}

namespace {
// A list's lines and its label; the label stays when the search ended in an error.
template <typename Result>
void showFound(QListWidget* list, QLabel* label, const Result& result) {
  for (const std::string& line : result.list) list->addItem(qs(line));
  if (result.label) label->setText(qs(*result.label));
}
}  // namespace

// A study command clicked while the window works is not run: one long command at a time.
void frmPlot::cmdRoots_Click() {
  if (working()) return;
  Command command(*this);
  lstRoots->clear();
  results_.roots = runStudy([](DerivativeEvaluator& d, const StudyFieldTexts& t) { return findRoots(d, t); });
  showFound(lstRoots, lblRoots, results_.roots);
  afterLongWork();
}

void frmPlot::cmdIntegrate_Click() {
  if (working()) return;
  Command command(*this);
  results_.integral = runStudy([](DerivativeEvaluator& d, const StudyFieldTexts& t) { return integrate(d, t); });
  if (results_.integral.label) lblIntegral->setText(qs(*results_.integral.label));
  afterLongWork();
}

void frmPlot::cmdExtrema_Click() {
  if (working()) return;
  Command command(*this);
  lstExtrema->clear();
  results_.extrema = runStudy([](DerivativeEvaluator& d, const StudyFieldTexts& t) { return findExtrema(d, t); });
  showFound(lstExtrema, lblExtrema, results_.extrema);
  afterLongWork();
}

void frmPlot::cmdDerVal_Click() {
  Command command(*this);
  lblDerVal->clear();
  sh.ierr = 0;
  const StudyFieldTexts texts = ReadSettings();
  EngineFunction f(ScriptControl1, sh, texts.equation);
  DerivativeEvaluator d(f);
  const ValuePanelResult value = computeValuePanel(d, str(txtDerNum->text()), str(txtXeval->text()));
  if (value.error != 0) lastScriptError_ = value.error;
  lblDerVal->setText(qs(value.text));
}

// ---- User constants ----

void frmPlot::showConstants(int current) {
  cboConstants->blockSignals(true);
  cboConstants->clear();
  for (const std::string& entry : constants_.entries()) cboConstants->addItem(qs(entry));
  cboConstants->setCurrentIndex(current);
  cboConstants->blockSignals(false);
}

void frmPlot::cmdAddCons_Click() {
  const std::string typed = str(cboConstants->currentText());
  if (!constants_.Add(typed)) return;
  showConstants(constants_.numcon() - 1);
  cboConstants->setEditText(qs(typed));
}

void frmPlot::cmdRemCons_Click() {
  // The selected entry is the one shown in the box; a text typed over it selects none.
  const int index = cboConstants->currentIndex();
  if (index < 0 || cboConstants->itemText(index) != cboConstants->currentText()) return;
  Command command(*this);
  try {
    constants_.Remove(index, ScriptControl1);
  } catch (const RuntimeError&) {
    // The entry is gone; the engine has said why the name could not be reset.
  }
  showConstants(-1);
  cboConstants->setEditText(QString());
}

// ---- Plotting ----

PlotSetupTexts frmPlot::plotSetupTexts() const {
  PlotSetupTexts t;
  t.windowlx = str(txtWindowlx->text());
  t.windowgx = str(txtWindowgx->text());
  t.windowly = str(txtWindowly->text());
  t.windowgy = str(txtWindowgy->text());
  t.xorigin = str(txtXorigin->text());
  t.yorigin = str(txtYorigin->text());
  t.divx = str(txtDivx->text());
  t.divy = str(txtDivy->text());
  t.plotStep = str(txtPlotStep->text());
  return t;
}

void frmPlot::PlotDriver() {
  StopCheck stop = longWorkCheck();
  lblPlotStatus->clear();
  sh.ierr = 0;
  const StudyFieldTexts texts = ReadSettings();
  const StudySettings s = readStudySettings(texts);
  PlotRequest request;
  request.setup = dragWindow_ ? *dragWindow_ : readPlotSetup(plotSetupTexts());
  request.options.grid = chkGrid->isChecked();
  request.options.shade = chkShade->isChecked();
  request.options.labelWindow = chkWindow->isChecked();
  request.options.labelDivisions = chkDivisions->isChecked();
  request.options.fittedFunction = workbench_.fitted;
  request.options.derivative = s.k;
  request.options.xlower = s.xlower;
  request.options.xupper = s.xupper;

  Canvas& picture = Picture1->canvas();
  request.width = twips(picture.pixelWidth(), picture.dpi());
  request.height = twips(picture.pixelHeight(), picture.dpi());
  std::tie(request.dataX, request.dataY) = dataPoints(workbench_.problem);
  if (chkBands->isChecked()) request.bands = fittedBands(workbench_, s.equation, s.k);

  EngineFunction f(ScriptControl1, sh, s.equation);
  DerivativeEvaluator d(f);
  d.setStopCheck(&stop);
  const DrawnPlot drawn = drawPlot(picture, d, request);
  if (drawn.interrupted) lblPlotStatus->setText(qs(kInterruptedText));
  plottedSetup_ = drawn.viewport.setup;
  plottedDerivative_ = s.k;
  plotted_ = true;
}

StudyGraph frmPlot::Replot() {
  plotting_ = true;
  Picture1->canvas().Cls();
  try {
    PlotDriver();
  } catch (const RuntimeError&) {
    plotting_ = false;
    throw;
  }
  plotting_ = false;
  afterLongWork();
  return {plottedDerivative_, plottedSetup_};
}

void frmPlot::cmdPlot_Click() { plotCommand(false); }

void frmPlot::plotCommand(bool redraw) {
  // A plot asked for while the window works (from the event pump) runs after it.
  if (working()) {
    plotQueued_ = true;
    return;
  }
  plotting_ = true;
  do {
    plotQueued_ = false;
    // A plot asked for during a redraw is the user's own: its errors are shown.
    Command command(*this, std::exchange(redraw, false));
    dialogs_.SetBusy(true);
    Canvas& picture = Picture1->canvas();
    picture.Cls();
    graphDrawn_ = true;
    picture.SetAutoRedraw(chkPersist->isChecked());
    try {
      PlotDriver();
      dialogs_.SetBusy(false);
    } catch (const RuntimeError& e) {
      // A window without extent or out of range: the plot is abandoned.
      dialogs_.SetBusy(false);
      reportError(e);
    }
  } while (plotQueued_ && !closeRequested_ && !stopRequested_);
  plotting_ = false;
  afterLongWork();
}

void frmPlot::chkBands_Click() {
  if (graphDrawn_) cmdPlot_Click();
}

void frmPlot::txtWindow_Change() {
  Picture1->canvas().Cls();
  lblPlotStatus->clear();
  graphDrawn_ = false;
}

void frmPlot::txtWindowlx_LostFocus() { limitPair(txtWindowlx, txtWindowgx, true); }
void frmPlot::txtWindowgx_LostFocus() { limitPair(txtWindowlx, txtWindowgx, false); }
void frmPlot::txtWindowly_LostFocus() { limitPair(txtWindowly, txtWindowgy, true); }
void frmPlot::txtWindowgy_LostFocus() { limitPair(txtWindowly, txtWindowgy, false); }

void frmPlot::txtPlotStep_Validate(bool& cancel) {
  cancel = false;
  setText(txtPlotStep, plotStepOnValidate(str(txtPlotStep->text())));
}

void frmPlot::setWindowTexts(const std::array<std::string, 4>& texts) {
  setText(txtWindowlx, texts[0]);
  setText(txtWindowgx, texts[1]);
  setText(txtWindowly, texts[2]);
  setText(txtWindowgy, texts[3]);
}

// Moves the window to the limits `newWindow` gives and plots it there; a window that
// cannot be moved so is reported and left as it was.
void frmPlot::moveWindow(const std::function<std::array<std::string, 4>()>& newWindow) {
  std::array<std::string, 4> texts;
  try {
    texts = newWindow();
  } catch (const RuntimeError& e) {
    Command command(*this);
    reportError(e);
    return;
  }
  setWindowTexts(texts);
  cmdPlot_Click();
}

void frmPlot::Zoom(int code) {
  moveWindow([&] {
    return zoomTexts(code, str(txtWindowlx->text()), str(txtWindowgx->text()), str(txtWindowly->text()),
                     str(txtWindowgy->text()));
  });
}

void frmPlot::Picture1_MouseDown(Qt::MouseButton, float x, float y) {
  moveWindow([&] { return centreTexts(plotted_ ? plottedSetup_ : readPlotSetup(plotSetupTexts()), x, y); });
}

void frmPlot::Picture1_MouseMove(Qt::MouseButtons, float x, float y) {
  Picture1->setToolTip(qs(positionTooltip(x, y)));
}

bool frmPlot::eventFilter(QObject* watched, QEvent* event) {
  if (watched != Picture1) return QWidget::eventFilter(watched, event);
  switch (event->type()) {
    case QEvent::Wheel: {
      const auto* wheel = static_cast<QWheelEvent*>(event);
      Picture1_Wheel(wheel->position(), wheel->angleDelta().y());
      return true;
    }
    case QEvent::KeyPress:
      return Picture1_KeyDown(static_cast<QKeyEvent*>(event)->key());
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease: {
      // Other buttons centre the window as they are pressed.
      const auto* mouse = static_cast<QMouseEvent*>(event);
      if (mouse->button() != Qt::LeftButton) return false;
      if (event->type() == QEvent::MouseButtonPress) {
        Picture1_LeftDown(mouse->position());
      } else {
        Picture1_LeftUp(mouse->position());
      }
      return true;
    }
    case QEvent::MouseMove: {
      // Passed on as well: the tooltip follows the pointer.
      const auto* mouse = static_cast<QMouseEvent*>(event);
      if (mouse->buttons() & Qt::LeftButton) Picture1_LeftDrag(mouse->position());
      return false;
    }
    default:
      return false;
  }
}

void frmPlot::showMovedWindow(const PlotSetup& moved) {
  const std::array<std::string, 6> texts = mouseMoveTexts(moved);
  setWindowTexts({texts[0], texts[1], texts[2], texts[3]});
  setText(txtDivx, texts[4]);
  setText(txtDivy, texts[5]);
  cmdPlot_Click();
}

void frmPlot::Picture1_Wheel(const QPointF& at, int angleDelta) {
  if (dragging_) return;
  const int notches = wheel_.add(angleDelta);
  if (notches == 0) return;
  // The pointer is placed on the fields' window, which is the one drawn unless they
  // were edited since (the picture is empty then).
  const Canvas& picture = Picture1->canvas();
  const float shareX = float(at.x() / picture.pixelWidth()), shareY = float(at.y() / picture.pixelHeight());
  std::optional<PlotSetup> zoomed;
  try {
    zoomed = wheelZoom(readPlotSetup(plotSetupTexts()), shareX, shareY, notches);
  } catch (const RuntimeError& e) {
    Command command(*this);
    reportError(e);
    return;
  }
  if (zoomed) showMovedWindow(*zoomed);
}

bool frmPlot::Picture1_KeyDown(int key) {
  // The zoom buttons' codes: 5 zoom in, 0 zoom out, 6..9 pan right, up, left, down.
  static constexpr std::pair<int, int> kKeys[] = {{Qt::Key_Plus, 5},  {Qt::Key_Equal, 5}, {Qt::Key_Minus, 0},
                                                  {Qt::Key_Right, 6}, {Qt::Key_Up, 7},    {Qt::Key_Left, 8},
                                                  {Qt::Key_Down, 9}};
  for (const auto& [k, code] : kKeys)
    if (k == key) {
      if (!dragging_) Zoom(code);  // during a drag the mouse has the window
      return true;
    }
  return false;
}

void frmPlot::Picture1_LeftDown(const QPointF& at) {
  leftDownAt_ = at;
  leftDownUser_ = Picture1->toUser(at);
  dragging_ = false;
  dragWindow_.reset();
}

std::optional<PlotSetup> frmPlot::draggedWindow(const QPointF& at) const {
  const QPointF moved = at - *leftDownAt_;
  const Canvas& picture = Picture1->canvas();
  return dragPan(dragFrom_, float(moved.x() / picture.pixelWidth()), float(moved.y() / picture.pixelHeight()));
}

void frmPlot::Picture1_LeftDrag(const QPointF& at) {
  if (!leftDownAt_) return;
  if (!dragging_) {
    if ((at - *leftDownAt_).manhattanLength() < QApplication::startDragDistance()) return;
    try {
      dragFrom_ = readPlotSetup(plotSetupTexts());
    } catch (const RuntimeError&) {
      return;  // fields that cannot be read: no drag, and the release is a click
    }
    dragging_ = true;
  }
  if (std::optional<PlotSetup> window = draggedWindow(at)) dragWindow_ = window;
  // The picture follows at once; a drag arriving while a plot draws is drawn after it.
  if (working()) {
    plotQueued_ = true;
    return;
  }
  Command command(*this);
  Replot();
}

void frmPlot::Picture1_LeftUp(const QPointF& at) {
  if (!leftDownAt_) return;
  if (!std::exchange(dragging_, false)) {
    leftDownAt_.reset();
    Picture1_MouseDown(Qt::LeftButton, float(leftDownUser_.x()), float(leftDownUser_.y()));
    return;
  }
  const std::optional<PlotSetup> released = draggedWindow(at);
  const std::optional<PlotSetup> reached = released ? released : dragWindow_;
  leftDownAt_.reset();
  dragWindow_.reset();
  if (reached) {
    showMovedWindow(*reached);
  } else {
    cmdPlot_Click();
  }
}

void frmPlot::Picture1_Resized() {
  // The graph is drawn again for the picture's new size, once the resizing settles.
  if (!graphDrawn_ || resizeReplotPending_) return;
  resizeReplotPending_ = true;
  QTimer::singleShot(0, this, [this] {
    resizeReplotPending_ = false;
    if (graphDrawn_) plotCommand(true);  // the formula's errors were shown when it was plotted
  });
}

// ---- Menus ----

void frmPlot::exportTo(const std::string& name) {
  Command command(*this);
  StudyExportInput input;
  input.study = ReadSettings();
  input.plot = plotSetupTexts();
  input.constants = constants_.entries();
  dialogs_.SetBusy(true);
  try {
    exportStudy(name, input, results_, Picture1->canvas(), graphDrawn_, chkPersist->isChecked(), [this] {
      try {
        Replot();
      } catch (const RuntimeError& e) {
        reportError(e);
      }
    });
    dialogs_.SetBusy(false);
  } catch (const RuntimeError& e) {
    dialogs_.SetBusy(false);
    dialogs_.MsgBox(e.description(), mb::Critical);
  }
}

void frmPlot::mnuSave_Click() {
  if (working()) return;  // export and print draw the graph again: never during work
  if (exportName_.empty()) exportName_ = dialogs_.SaveFileName("Export to Curvix", "").value_or("");
  if (!exportName_.empty()) exportTo(exportName_);
}

void frmPlot::mnuSaveAs_Click() {
  if (working()) return;
  exportName_ = dialogs_.SaveFileName("Export to Curvix As", "").value_or("");
  if (!exportName_.empty()) exportTo(exportName_);
}

void frmPlot::mnuPrint_Click() {
  if (working()) return;
  Command command(*this);
  std::unique_ptr<PrinterPage> page = dialogs_.OpenPrinter("Function study");
  if (!page) return;
  const StudyFieldTexts texts = ReadSettings();
  StudyReportInput input;
  input.graphDrawn = graphDrawn_;
  input.persist = chkPersist->isChecked();
  input.equation = texts.equation;
  input.constants = constants_.entries();
  input.subintervals = texts.subintervals;
  input.maxcy = texts.maxcy;
  input.error = texts.error;
  dialogs_.SetBusy(true);
  try {
    input.xlower = leadingNumber(texts.xlower);
    input.xupper = leadingNumber(texts.xupper);
    input.plotted = plotted_ ? StudyGraph{plottedDerivative_, plottedSetup_}
                             : StudyGraph{0, readPlotSetup(plotSetupTexts())};
    EngineFunction f(ScriptControl1, sh, texts.equation);
    // Without a persistent image the graph is drawn again from the fields as they are
    // now; the title and setup lines follow that graph, not the previous one.
    printStudyReport(*page, input, results_, f, Picture1->canvas(), [this] { return Replot(); });
    dialogs_.SetBusy(false);
  } catch (const RuntimeError& e) {
    dialogs_.SetBusy(false);
    reportError(e);
  }
}

void frmPlot::mnuCopy_Click() { CopyToClipboard(dialogs_, Picture1->canvas()); }

void frmPlot::mnuHelp_Click() { ShowHelpFile(dialogs_, workbench_.startDirectory, "flatrix.hlp"); }

// ---- Opening and closing ----

void frmPlot::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  if (!firstShow_) return;
  firstShow_ = false;
  // The picture opens at its designed size; the window grows or shrinks around it.
  const QSize wanted(kPictureWidth, kPictureHeight);
  if (Picture1->size() != wanted) resize(size() + (wanted - Picture1->size()));
  // The handed-over function is drawn at once.
  if (!txtEquation->text().trimmed().isEmpty())
    QMetaObject::invokeMethod(this, &frmPlot::cmdPlot_Click, Qt::QueuedConnection);
}

void frmPlot::cmdExit_Click() { close(); }

void frmPlot::closeEvent(QCloseEvent* event) {
  if (working()) {
    // Closed from the event pump of long work: the work stops, and the window goes
    // once it has returned.
    closeRequested_ = true;
    stopRequested_ = true;
    event->ignore();
    return;
  }
  event->accept();
  emit unloaded();
}

}  // namespace orvane
