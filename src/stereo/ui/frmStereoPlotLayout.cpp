// The controls of the stereo window and where they sit: the picture pair on top with
// the zoom and pan buttons beside it, the surface definition under it, then the frames
// of settings.

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "engine/UserConstants.h"
#include "platform/ui/PictureBox.h"
#include "platform/ui/TextBox.h"
#include "stereo/FieldRules.h"
#include "stereo/ui/frmStereoPlot.h"

namespace orvane {

namespace {

constexpr int kNumberWidth = 58;  // a window limit or an angle
constexpr int kStepWidth = 34;    // a step field
constexpr int kPictureGap = 4;    // between the left and the right picture

constexpr const char* kAddUnits = "Add the number of units show on the right";
constexpr const char* kSubUnits = "Subtract the number of units show on the right";
constexpr const char* kAddDegrees = "Add the number of degrees show on the right";
constexpr const char* kSubDegrees = "Subtract the number of degrees show on the right";
constexpr const char* kStepUnits = "Units to add or subtract";
constexpr const char* kStepDegrees = "Degrees to add or subtract";
constexpr const char* kPairTip =
    "Drag to turn the view, turn the wheel to zoom.\n"
    "How to see the pair in depth: Help, \"Viewing the pair in depth\".";
constexpr const char* kAnaglyphTip =
    "Drag to turn the view, turn the wheel to zoom.\n"
    "Seen through red-cyan glasses, red over the left eye: Help, \"Viewing the pair in depth\".";

template <class T>
T* named(T* widget, const QString& name) {
  widget->setObjectName(name);
  return widget;
}

TextBox* field(const char* name, const char* text, int width = kNumberWidth, const char* tip = nullptr) {
  auto* box = named(new TextBox(QString::fromUtf8(text)), QString::fromLatin1(name));
  if (width > 0) box->setFixedWidth(width);
  if (tip) box->setToolTip(QString::fromUtf8(tip));
  return box;
}

QPushButton* button(const char* name, const char* caption, const char* tip = nullptr) {
  auto* b = named(new QPushButton(QString::fromUtf8(caption)), QString::fromLatin1(name));
  if (tip) b->setToolTip(QString::fromUtf8(tip));
  b->setAutoDefault(false);
  return b;
}

QPushButton* stepButton(const char* name, const char* caption, const char* tip) {
  QPushButton* b = button(name, caption, tip);
  b->setFixedWidth(26);
  return b;
}

QLabel* label(const char* text, const char* name = nullptr) {
  auto* l = new QLabel(QString::fromUtf8(text));
  if (name) l->setObjectName(QString::fromLatin1(name));
  return l;
}

QGroupBox* frame(const char* name, const char* caption) {
  return named(new QGroupBox(QString::fromUtf8(caption)), QString::fromLatin1(name));
}

// One row of a frame: a field or a limit pair, then "+", "-" and the step field.
void addStepRow(QGridLayout* grid, int row, QWidget* lower, QWidget* between, QWidget* upper, QPushButton* inc,
                QPushButton* dec, TextBox* step) {
  if (lower) grid->addWidget(lower, row, 0);
  if (between) grid->addWidget(between, row, 1);
  if (upper) grid->addWidget(upper, row, 2);
  grid->addWidget(inc, row, 3);
  grid->addWidget(dec, row, 4);
  grid->addWidget(step, row, 5);
}

QGridLayout* gridOf(QGroupBox* box) {
  auto* grid = new QGridLayout(box);
  grid->setHorizontalSpacing(4);
  grid->setVerticalSpacing(3);
  grid->setContentsMargins(6, 4, 6, 4);
  return grid;
}

// "x:" field, "y:" field, "z:" field in a column.
void addLabelledColumn(QGroupBox* box, std::initializer_list<std::pair<QLabel*, TextBox*>> rows) {
  QGridLayout* grid = gridOf(box);
  int row = 0;
  for (const auto& [l, t] : rows) {
    grid->addWidget(l, row, 0);
    grid->addWidget(t, row, 1);
    ++row;
  }
  grid->setRowStretch(row, 1);
  grid->setColumnStretch(2, 1);
}

}  // namespace

void frmStereoPlot::buildControls() {
  // The picture pair: positioned by hand, since the reduction factor moves them.
  picFrame = named(new QWidget(), QStringLiteral("picFrame"));
  for (int i = 0; i < 2; ++i) {
    pic[i] = named(new PictureBox(picFrame, geometry_.WidthPic0, geometry_.HeightPic0),
                   QStringLiteral("pic(%1)").arg(i));
    pic[i]->setFixedCanvasSize(i == 0 ? geometry_.WidthPic0 : geometry_.WidthPic1,
                               i == 0 ? geometry_.HeightPic0 : geometry_.HeightPic1);
  }
  geometry_.LeftPic0 = 0;
  pic[0]->setGeometry(geometry_.LeftPic0, 0, geometry_.WidthPic0, geometry_.HeightPic0);
  pic[1]->setGeometry(geometry_.LeftPic0 + geometry_.WidthPic0 + kPictureGap, 0, geometry_.WidthPic1,
                      geometry_.HeightPic1);
  picFrame->setFixedSize(geometry_.WidthPic0 + kPictureGap + geometry_.WidthPic1,
                         std::max(geometry_.HeightPic0, geometry_.HeightPic1));
  // The red-cyan picture takes the place of the pair, centred where the two meet.
  picAnaglyph = named(new PictureBox(picFrame, geometry_.WidthPic0, geometry_.HeightPic0),
                      QStringLiteral("picAnaglyph"));
  picAnaglyph->setFixedCanvasSize(geometry_.WidthPic0, geometry_.HeightPic0);
  picAnaglyph->setGeometry((picFrame->width() - geometry_.WidthPic0) / 2, 0, geometry_.WidthPic0,
                           geometry_.HeightPic0);
  picAnaglyph->hide();
  for (PictureBox* p : {pic[0], pic[1], picAnaglyph}) {
    p->setToolTip(QString::fromUtf8(p == picAnaglyph ? kAnaglyphTip : kPairTip));
    p->installEventFilter(this);
  }
  lblViewing = label("&Viewing:", "lblViewing");
  cboViewing = named(new QComboBox(), QStringLiteral("cboViewing"));
  for (std::string_view caption : kViewingModeCaptions)
    cboViewing->addItem(QString::fromUtf8(caption.data(), static_cast<qsizetype>(caption.size())));
  cboViewing->setToolTip(QStringLiteral("How the pair is shown, printed, exported and copied"));
  lblViewing->setBuddy(cboViewing);

  // Zoom, pan and octants.
  cmdZoomIn = button("cmdZoomIn", "Zoom in");
  cmdZoomOut = button("cmdZoomOut", "Zoom out");
  cmdPanRight = button("cmdPanRight", "Pan right");
  cmdPanUp = button("cmdPanUp", "Pan up");
  cmdPanLeft = button("cmdPanLeft", "Pan left");
  cmdPanDown = button("cmdPanDown", "Pan down");
  cmdPanIn = button("cmdPanIn", "Pan in");
  cmdPanOut = button("cmdPanOut", "Pan out");
  fraOctant = frame("fraOctant", "Octant");
  {
    QGridLayout* grid = gridOf(fraOctant);
    for (int k = 0; k < 8; ++k) {
      const QByteArray name = "cmdZoomQ" + QByteArray::number(k + 1);
      const QByteArray caption = "Zoom octant " + QByteArray::number(k + 1);
      cmdZoomQ[k] = button(name.constData(), caption.constData());
      grid->addWidget(cmdZoomQ[k], k / 2, k % 2);
    }
  }
  auto* viewColumn = new QGridLayout();
  viewColumn->addWidget(cmdZoomIn, 0, 0);
  viewColumn->addWidget(cmdZoomOut, 0, 1);
  viewColumn->addWidget(cmdPanUp, 1, 0, 1, 2, Qt::AlignHCenter);
  viewColumn->addWidget(cmdPanLeft, 2, 0);
  viewColumn->addWidget(cmdPanRight, 2, 1);
  viewColumn->addWidget(cmdPanDown, 3, 0, 1, 2, Qt::AlignHCenter);
  viewColumn->addWidget(cmdPanIn, 4, 0);
  viewColumn->addWidget(cmdPanOut, 4, 1);
  viewColumn->addWidget(fraOctant, 5, 0, 1, 2);
  auto* viewingRow = new QHBoxLayout();
  viewingRow->addWidget(lblViewing);
  viewingRow->addWidget(cboViewing, 1);
  viewColumn->addLayout(viewingRow, 6, 0, 1, 2);
  cmdPlot = button("cmdPlot", "&Plot");
  lblPlotStatus = label("", "lblPlotStatus");
  lblPlotStatus->setToolTip(QStringLiteral("Esc stops a plot; what was drawn stays"));
  cmdExit = button("cmdExit", "E&xit");
  TextBox::setCausesValidation(cmdExit, false);

  // The surface.
  chkParametric = named(new QCheckBox(QStringLiteral("Parametric")), QStringLiteral("chkParametric"));
  chkParametric->setToolTip(QStringLiteral("Check if you want parametric representation"));
  lblZ = label("z(x,y)=", "lblZ");
  txtEquationZ = field("txtEquationZ", "(x-1)*x*(x+1)*(y-1)*y*(y+1)*5", 0);
  lblX = label("x(u,v)=", "lblX");
  txtEquationX = field("txtEquationX", "v", 0);
  lblY = label("y(u,v)=", "lblY");
  txtEquationY = field("txtEquationY", "u", 0);
  for (TextBox* t : {txtEquationX, txtEquationY})
    t->setToolTip(QString::fromUtf8(kParametricEquationTip.data(), kParametricEquationTip.size()));
  auto* equations = new QGridLayout();
  equations->addWidget(chkParametric, 0, 0);
  equations->addWidget(lblZ, 0, 1, Qt::AlignRight);
  equations->addWidget(txtEquationZ, 0, 2, 1, 3);
  equations->addWidget(lblX, 1, 1, Qt::AlignRight);
  equations->addWidget(txtEquationX, 1, 2);
  equations->addWidget(lblY, 1, 3, Qt::AlignRight);
  equations->addWidget(txtEquationY, 1, 4);
  equations->setColumnStretch(2, 1);
  equations->setColumnStretch(4, 1);

  // Window.
  fraWindow = frame("fraWindow", "Window");
  txtWindowlx = field("txtWindowlx", "-2.5", kNumberWidth, "Lower limit of window");
  txtWindowgx = field("txtWindowgx", "2.5", kNumberWidth, "Upper limit of window");
  txtWindowly = field("txtWindowly", "-2", kNumberWidth, "Lower limit of window");
  txtWindowgy = field("txtWindowgy", "2", kNumberWidth, "Upper limit of window");
  txtWindowlz = field("txtWindowlz", "-1.5", kNumberWidth, "Lower limit of window");
  txtWindowgz = field("txtWindowgz", "1.5", kNumberWidth, "Upper limit of window");
  cmdIncWindX = stepButton("cmdIncWindX", "+", kAddUnits);
  cmdDecWindX = stepButton("cmdDecWindX", "-", kSubUnits);
  cmdIncWindY = stepButton("cmdIncWindY", "+", kAddUnits);
  cmdDecWindY = stepButton("cmdDecWindY", "-", kSubUnits);
  cmdIncWindZ = stepButton("cmdIncWindZ", "+", kAddUnits);
  cmdDecWindZ = stepButton("cmdDecWindZ", "-", kSubUnits);
  txtStepWindX = field("txtStepWindX", "1", kStepWidth, kStepUnits);
  txtStepWindY = field("txtStepWindY", "1", kStepWidth, kStepUnits);
  txtStepWindZ = field("txtStepWindZ", "1", kStepWidth, kStepUnits);
  {
    QGridLayout* grid = gridOf(fraWindow);
    addStepRow(grid, 0, txtWindowlx, label("<=x<="), txtWindowgx, cmdIncWindX, cmdDecWindX, txtStepWindX);
    addStepRow(grid, 1, txtWindowly, label("<=y<="), txtWindowgy, cmdIncWindY, cmdDecWindY, txtStepWindY);
    addStepRow(grid, 2, txtWindowlz, label("<=z<="), txtWindowgz, cmdIncWindZ, cmdDecWindZ, txtStepWindZ);
  }

  // Range, spacings and segments.
  fraRange = frame("fraRange", "Range");
  txtRangelxu = field("txtRangelxu", "-1", kNumberWidth, "Lower limit of range");
  txtRangegxu = field("txtRangegxu", "1", kNumberWidth, "Upper limit of range");
  txtRangelyv = field("txtRangelyv", "-1", kNumberWidth, "Lower limit of range");
  txtRangegyv = field("txtRangegyv", "1", kNumberWidth, "Upper limit of range");
  lblxu = label("<=x<=", "lblxu");
  lblyv = label("<=y<=", "lblyv");
  cmdIncRangXU = stepButton("cmdIncRangXU", "+", kAddUnits);
  cmdDecRangXU = stepButton("cmdDecRangXU", "-", kSubUnits);
  cmdIncRangYV = stepButton("cmdIncRangYV", "+", kAddUnits);
  cmdDecRangYV = stepButton("cmdDecRangYV", "-", kSubUnits);
  txtStepRangXU = field("txtStepRangXU", "1", kStepWidth, kStepUnits);
  txtStepRangYV = field("txtStepRangYV", "1", kStepWidth, kStepUnits);
  {
    QGridLayout* grid = gridOf(fraRange);
    addStepRow(grid, 0, txtRangelxu, lblxu, txtRangegxu, cmdIncRangXU, cmdDecRangXU, txtStepRangXU);
    addStepRow(grid, 1, txtRangelyv, lblyv, txtRangegyv, cmdIncRangYV, cmdDecRangYV, txtStepRangYV);
    grid->setRowStretch(2, 1);
  }
  fraSpacings = frame("fraSpacings", "# of spacings");
  lblSpacexu = label("x:", "lblSpacexu");
  lblSpaceyv = label("y:", "lblSpaceyv");
  txtSpacexu = field("txtSpacexu", "4", 44);
  txtSpaceyv = field("txtSpaceyv", "4", 44);
  addLabelledColumn(fraSpacings, {{lblSpacexu, txtSpacexu}, {lblSpaceyv, txtSpaceyv}});
  fraSegments = frame("fraSegments", "# of segments per spacing");
  lblSegsxu = label("x:", "lblSegsxu");
  lblSegsyv = label("y:", "lblSegsyv");
  txtSegsxu = field("txtSegsxu", "1", 44);
  txtSegsyv = field("txtSegsyv", "1", 44);
  addLabelledColumn(fraSegments, {{lblSegsxu, txtSegsxu}, {lblSegsyv, txtSegsyv}});

  // Rotation and translation.
  fraRotation = frame("fraRotation", "Rotation (degrees)");
  txtXrot = field("txtXrot", "0", kNumberWidth, "In degrees");
  txtYrot = field("txtYrot", "0", kNumberWidth, "In degrees");
  txtZrot = field("txtZrot", "0", kNumberWidth, "In degrees");
  cmdIncRotX = stepButton("cmdIncRotX", "+", kAddDegrees);
  cmdDecRotX = stepButton("cmdDecRotX", "-", kSubDegrees);
  cmdIncRotY = stepButton("cmdIncRotY", "+", kAddDegrees);
  cmdDecRotY = stepButton("cmdDecRotY", "-", kSubDegrees);
  cmdIncRotZ = stepButton("cmdIncRotZ", "+", kAddDegrees);
  cmdDecRotZ = stepButton("cmdDecRotZ", "-", kSubDegrees);
  txtStepRotX = field("txtStepRotX", "5", kStepWidth, kStepDegrees);
  txtStepRotY = field("txtStepRotY", "5", kStepWidth, kStepDegrees);
  txtStepRotZ = field("txtStepRotZ", "5", kStepWidth, kStepDegrees);
  {
    QGridLayout* grid = gridOf(fraRotation);
    addStepRow(grid, 0, label("x:"), nullptr, txtXrot, cmdIncRotX, cmdDecRotX, txtStepRotX);
    addStepRow(grid, 1, label("y:"), nullptr, txtYrot, cmdIncRotY, cmdDecRotY, txtStepRotY);
    addStepRow(grid, 2, label("z:"), nullptr, txtZrot, cmdIncRotZ, cmdDecRotZ, txtStepRotZ);
  }
  fraTranslation = frame("fraTranslation", "Translation");
  txtXtr = field("txtXtr", "0");
  txtYtr = field("txtYtr", "0");
  txtZtr = field("txtZtr", "0");
  cmdIncTranX = stepButton("cmdIncTranX", "+", kAddUnits);
  cmdDecTranX = stepButton("cmdDecTranX", "-", kSubUnits);
  cmdIncTranY = stepButton("cmdIncTranY", "+", kAddUnits);
  cmdDecTranY = stepButton("cmdDecTranY", "-", kSubUnits);
  cmdIncTranZ = stepButton("cmdIncTranZ", "+", kAddUnits);
  cmdDecTranZ = stepButton("cmdDecTranZ", "-", kSubUnits);
  txtStepTranX = field("txtStepTranX", "1", kStepWidth, kStepUnits);
  txtStepTranY = field("txtStepTranY", "1", kStepWidth, kStepUnits);
  txtStepTranZ = field("txtStepTranZ", "1", kStepWidth, kStepUnits);
  {
    QGridLayout* grid = gridOf(fraTranslation);
    addStepRow(grid, 0, label("x:"), nullptr, txtXtr, cmdIncTranX, cmdDecTranX, txtStepTranX);
    addStepRow(grid, 1, label("y:"), nullptr, txtYtr, cmdIncTranY, cmdDecTranY, txtStepTranY);
    addStepRow(grid, 2, label("z:"), nullptr, txtZtr, cmdIncTranZ, cmdDecTranZ, txtStepTranZ);
  }

  // Axes, divisions, derivatives.
  fraAxes = frame("fraAxes", "Axes");
  txtXorigin = field("txtXorigin", "0", 44);
  txtYorigin = field("txtYorigin", "0", 44);
  txtZorigin = field("txtZorigin", "0", 44);
  addLabelledColumn(fraAxes, {{label("x:"), txtXorigin}, {label("y:"), txtYorigin}, {label("z:"), txtZorigin}});
  fraDivisions = frame("fraDivisions", "Divisions on axes");
  txtDivx = field("txtDivx", "1", 44);
  txtDivy = field("txtDivy", "1", 44);
  txtDivz = field("txtDivz", "1", 44);
  addLabelledColumn(fraDivisions, {{label("x:"), txtDivx}, {label("y:"), txtDivy}, {label("z:"), txtDivz}});
  FraDer = frame("FraDer", "Derivatives");
  txtXder = field("txtXder", "0", 34);
  txtYder = field("txtYder", "0", 34);
  addLabelledColumn(FraDer, {{label("x:"), txtXder}, {label("y:"), txtYder}});
  fraAccuracy = frame("fraAccuracy", "PD accuracy");
  OptAccuracy[1] = named(new QRadioButton(QStringLiteral("High")), QStringLiteral("OptAccuracy(1)"));
  OptAccuracy[0] = named(new QRadioButton(QStringLiteral("Med")), QStringLiteral("OptAccuracy(0)"));
  {
    auto* column = new QVBoxLayout(fraAccuracy);
    column->setContentsMargins(6, 4, 6, 4);
    column->addWidget(OptAccuracy[1]);
    column->addWidget(OptAccuracy[0]);
    column->addStretch();
  }

  // Drawing.
  fraBackground = frame("fraBackground", "Background");
  optBackclr[0] = named(new QRadioButton(QStringLiteral("White")), QStringLiteral("optBackclr(0)"));
  optBackclr[1] = named(new QRadioButton(QStringLiteral("Black")), QStringLiteral("optBackclr(1)"));
  {
    auto* column = new QVBoxLayout(fraBackground);
    column->setContentsMargins(6, 4, 6, 4);
    column->addWidget(optBackclr[0]);
    column->addWidget(optBackclr[1]);
    column->addStretch();
  }
  chkLines = named(new QCheckBox(QStringLiteral("Lines")), QStringLiteral("chkLines"));
  chkLines->setToolTip(QStringLiteral("Check if you want lines"));
  chkDots = named(new QCheckBox(QStringLiteral("Dots")), QStringLiteral("chkDots"));
  chkDots->setToolTip(QStringLiteral("Check if you want random dots"));
  chkPersist = named(new QCheckBox(QStringLiteral("Persist")), QStringLiteral("chkPersist"));
  chkPersist->setToolTip(QStringLiteral("Check if you want persistent graphics"));
  txtNdots = field("txtNdots", "5000", kNumberWidth);
  txtGrid = field("txtGrid", "5", kNumberWidth, "Number of screen grid lines");
  txtStereo = field("txtStereo", "1", kNumberWidth);
  txtReduce = field("txtReduce", "1", kNumberWidth);
  auto* checks = new QVBoxLayout();
  checks->addWidget(chkLines);
  checks->addWidget(chkDots);
  checks->addWidget(chkPersist);
  checks->addStretch();
  auto* drawing = new QGridLayout();
  drawing->addWidget(label("# of dots:"), 0, 0, Qt::AlignRight);
  drawing->addWidget(txtNdots, 0, 1);
  drawing->addWidget(label("# of reference lines:"), 1, 0, Qt::AlignRight);
  drawing->addWidget(txtGrid, 1, 1);
  drawing->addWidget(label("Stereoscopic factor:"), 2, 0, Qt::AlignRight);
  drawing->addWidget(txtStereo, 2, 1);
  drawing->addWidget(label("Reduction factor:"), 3, 0, Qt::AlignRight);
  drawing->addWidget(txtReduce, 3, 1);
  drawing->setRowStretch(4, 1);

  // User constants.
  fraConstants = frame("fraConstants", constantsText::Frame.data());
  fraConstants->setToolTip(QString::fromUtf8(constantsText::FrameTip.data(), constantsText::FrameTip.size()));
  cboConstants = named(new QComboBox(), QStringLiteral("cboConstants"));
  cboConstants->setEditable(true);
  cboConstants->setInsertPolicy(QComboBox::NoInsert);
  cmdAddCons = button("cmdAddCons", "Add", constantsText::AddTip.data());
  cmdRemCons = button("cmdRemCons", constantsText::RemoveCaption.data(), constantsText::RemoveTip.data());
  {
    QGridLayout* grid = gridOf(fraConstants);
    grid->addWidget(cboConstants, 0, 0, 1, 2);
    grid->addWidget(cmdAddCons, 1, 0);
    grid->addWidget(cmdRemCons, 1, 1);
    grid->setRowStretch(2, 1);
  }

  // Beside the pictures: the view buttons, the drawing settings, the constants, Plot
  // and Exit.
  auto* drawingRow = new QHBoxLayout();
  drawingRow->addLayout(checks);
  drawingRow->addLayout(drawing);
  viewColumn->addLayout(drawingRow, 7, 0, 1, 2);
  viewColumn->addWidget(fraConstants, 8, 0, 1, 2);
  viewColumn->setRowStretch(9, 1);
  viewColumn->addWidget(cmdPlot, 10, 0);
  viewColumn->addWidget(cmdExit, 10, 1);
  viewColumn->addWidget(lblPlotStatus, 11, 0, 1, 2);
  auto* viewPanel = new QWidget();
  viewPanel->setLayout(viewColumn);
  viewPanel->setFixedWidth(300);
  viewColumn->setContentsMargins(0, 0, 0, 0);

  auto* top = new QHBoxLayout();
  top->addWidget(picFrame, 0, Qt::AlignTop);
  top->addWidget(viewPanel);

  auto* rowViews = new QHBoxLayout();
  for (QWidget* w : std::initializer_list<QWidget*>{fraWindow, fraRange, fraRotation, fraTranslation})
    rowViews->addWidget(w);
  rowViews->addStretch(1);

  auto* rowSettings = new QHBoxLayout();
  for (QWidget* w : std::initializer_list<QWidget*>{fraSpacings, fraSegments, fraAxes, fraDivisions, FraDer,
                                                    fraAccuracy, fraBackground})
    rowSettings->addWidget(w);
  rowSettings->addStretch(1);

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(6, 4, 6, 6);
  layout->setSpacing(4);
  layout->addLayout(top);
  layout->addLayout(equations);
  layout->addLayout(rowViews);
  layout->addLayout(rowSettings);
}

void frmStereoPlot::buildMenus() {
  menuBar = named(new QMenuBar(this), QStringLiteral("menuBar"));
  mnuFile = named(menuBar->addMenu(QStringLiteral("&File")), QStringLiteral("mnuFile"));
  mnuSave = named(mnuFile->addAction(QStringLiteral("Export to Duplora")), QStringLiteral("mnuSave"));
  mnuSaveAs = named(mnuFile->addAction(QStringLiteral("Export to Duplora As")), QStringLiteral("mnuSaveAs"));
  mnuOpen = named(mnuFile->addAction(QStringLiteral("Import from Duplora")), QStringLiteral("mnuOpen"));
  mnuFile->addSeparator();
  mnuPrint = named(mnuFile->addAction(QStringLiteral("Print")), QStringLiteral("mnuPrint"));
  mnuEdit = named(menuBar->addMenu(QStringLiteral("&Edit")), QStringLiteral("mnuEdit"));
  mnuCopyLeft = named(mnuEdit->addAction(QStringLiteral("Copy Left graph to clipboard")),
                      QStringLiteral("mnuCopyLeft"));
  mnuCopyRight = named(mnuEdit->addAction(QStringLiteral("Copy Right graph to clipboard")),
                       QStringLiteral("mnuCopyRight"));
  mnuHelp = named(menuBar->addAction(QStringLiteral("&Help")), QStringLiteral("mnuHelp"));
  layout()->setMenuBar(menuBar);
}

}  // namespace orvane
