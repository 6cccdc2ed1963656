#include "regression/ui/frmEdit.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

#include "platform/Dialogs.h"
#include "platform/RuntimeError.h"
#include "platform/ui/TextBox.h"
#include "regression/ui/DataGridModel.h"

namespace orvane {

namespace {

// The characters a number can be typed with.
bool isEntryCharacter(char16_t c) {
  return c == '+' || c == '-' || c == '.' || (c >= '0' && c <= '9') || c == 'E' || c == 'e';
}

}  // namespace

frmEdit::frmEdit(RegressionProblem& problem, Dialogs& dialogs, QWidget* parent)
    : QWidget(parent, Qt::Window), problem_(problem), dialogs_(dialogs), model_(new DataGridModel(problem, this)) {
  setObjectName(QStringLiteral("frmEdit"));
  setWindowTitle(QStringLiteral("Enter/Edit data"));

  MSFlexGridEdit = new QTableView();
  MSFlexGridEdit->setObjectName(QStringLiteral("MSFlexGridEdit"));
  MSFlexGridEdit->setModel(model_);
  MSFlexGridEdit->setEditTriggers(QAbstractItemView::NoEditTriggers);
  MSFlexGridEdit->setSelectionMode(QAbstractItemView::SingleSelection);
  MSFlexGridEdit->setSelectionBehavior(QAbstractItemView::SelectItems);
  MSFlexGridEdit->setWordWrap(false);
  MSFlexGridEdit->setTabKeyNavigation(false);  // Tab leaves the grid, as from any control
  // Fixed row heights: the view never measures a million rows.
  MSFlexGridEdit->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  MSFlexGridEdit->horizontalHeader()->setSectionResizeMode(QHeaderView::Interactive);
  MSFlexGridEdit->installEventFilter(this);
  baseWidth_ = MSFlexGridEdit->horizontalHeader()->defaultSectionSize();

  txtDataEntry = new TextBox(MSFlexGridEdit->viewport());
  txtDataEntry->setObjectName(QStringLiteral("txtDataEntry"));
  txtDataEntry->setAlignment(Qt::AlignCenter);
  txtDataEntry->setCharacterFilter(isEntryCharacter);  // typed, pasted and dropped alike
  txtDataEntry->hide();
  txtDataEntry->installEventFilter(this);

  cmdToggleWidth = new QPushButton(QStringLiteral("Toggle Width"));
  cmdToggleWidth->setObjectName(QStringLiteral("cmdToggleWidth"));
  cmdDelete = new QPushButton(QStringLiteral("Delete data set"));
  cmdDelete->setObjectName(QStringLiteral("cmdDelete"));
  cmdExit = new QPushButton(QStringLiteral("Done"));
  cmdExit->setObjectName(QStringLiteral("cmdExit"));

  auto* buttons = new QHBoxLayout();
  buttons->addWidget(cmdToggleWidth);
  buttons->addWidget(cmdDelete);
  buttons->addStretch();
  buttons->addWidget(cmdExit);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(MSFlexGridEdit, 1);
  layout->addLayout(buttons);
  resize(520, 420);

  connect(MSFlexGridEdit, &QTableView::doubleClicked, this, &frmEdit::MSFlexGridEdit_DblClick);
  connect(txtDataEntry, &QLineEdit::textChanged, this, &frmEdit::txtDataEntry_Change);
  connect(txtDataEntry, &TextBox::KeyPress, this, &frmEdit::txtDataEntry_KeyPress);
  connect(txtDataEntry, &TextBox::GotFocus, this, &frmEdit::txtDataEntry_GotFocus);
  connect(txtDataEntry, &TextBox::LostFocus, this, &frmEdit::hideEntryBox);
  connect(cmdToggleWidth, &QPushButton::clicked, this, &frmEdit::cmdToggleWidth_Click);
  connect(cmdDelete, &QPushButton::clicked, this, &frmEdit::cmdDelete_Click);
  connect(cmdExit, &QPushButton::clicked, this, &frmEdit::cmdExit_Click);
}

frmEdit::~frmEdit() = default;

void frmEdit::PrepareGrid(bool loadedFromFile) {
  hideEntryBox();
  model_->reload(loadedFromFile);
  const int width = wideColumns_ ? 2 * baseWidth_ : baseWidth_;
  for (int c = 0; c < model_->columnCount(); ++c) MSFlexGridEdit->setColumnWidth(c, width);
  if (model_->rowCount() > 0 && model_->columnCount() > 0)
    MSFlexGridEdit->setCurrentIndex(model_->index(0, 0));
  if (!loadedFromFile) {
    show();
    raise();
    activateWindow();
    MSFlexGridEdit->setFocus();
  }
}

void frmEdit::startEdit(const QModelIndex& index, const QString& text, bool typed) {
  if (!index.isValid()) return;
  active_ = false;  // setting the text is not a keystroke
  editRow_ = index.row();
  editColumn_ = index.column();
  MSFlexGridEdit->setCurrentIndex(index);
  MSFlexGridEdit->scrollTo(index);
  const QString cellText = model_->cellText(index);
  txtDataEntry->setText(text);
  txtDataEntry->setToolTip(QStringLiteral("A(%1,%2)=%3").arg(editRow_ + 1).arg(editColumn_ + 1).arg(cellText));
  placeEntryBox();
  txtDataEntry->show();
  active_ = true;
  if (typed) txtDataEntry_Change(text);  // the character typed on the grid is the first keystroke
  caretAtEnd_ = typed;
  txtDataEntry->setFocus();
  if (txtDataEntry->hasFocus() && caretAtEnd_) txtDataEntry_GotFocus();
}

void frmEdit::placeEntryBox() {
  txtDataEntry->setGeometry(MSFlexGridEdit->visualRect(model_->index(editRow_, editColumn_)));
}

void frmEdit::hideEntryBox() {
  active_ = false;
  // The grid takes the focus before the box goes: a box hidden with the focus would pass
  // it on as Tab does, and the grid would step to another cell.
  if (window()->focusWidget() == txtDataEntry) MSFlexGridEdit->setFocus();
  txtDataEntry->hide();
}

void frmEdit::endEdit() {
  hideEntryBox();
  MSFlexGridEdit->setFocus();
}

void frmEdit::MSFlexGridEdit_DblClick(const QModelIndex& index) { startEdit(index, model_->cellText(index), false); }

bool frmEdit::MSFlexGridEdit_KeyPress(const QString& text) {
  if (text.size() != 1 || text.at(0).unicode() < 32) return false;  // navigation keys
  if (isEntryCharacter(text.at(0).unicode())) startEdit(MSFlexGridEdit->currentIndex(), text, true);
  return true;
}

void frmEdit::txtDataEntry_Change(const QString& text) {
  if (!active_ || !txtDataEntry->isVisible()) return;
  const QModelIndex cell = model_->index(editRow_, editColumn_);
  try {
    model_->setCellText(cell, text);
  } catch (const RuntimeError& error) {
    // A number beyond the range of a double: the cell keeps what it had.
    const QSignalBlocker quiet(txtDataEntry);
    txtDataEntry->setText(model_->cellText(cell));
    ShowRunTimeError(dialogs_, error);
  }
}

void frmEdit::txtDataEntry_KeyPress(int& keyAscii) {
  if (keyAscii == 13) endEdit();
  if (keyAscii < 32) keyAscii = 0;  // Backspace too: the user retypes over a selection
}

void frmEdit::txtDataEntry_GotFocus() {
  if (caretAtEnd_ || !entryFocused_) {
    txtDataEntry->deselect();
    txtDataEntry->setCursorPosition(static_cast<int>(txtDataEntry->text().size()));
  }
  entryFocused_ = true;
  caretAtEnd_ = false;
}

bool frmEdit::txtDataEntry_KeyDown(int key) {
  int row = editRow_, column = editColumn_;
  switch (key) {
    case Qt::Key_Left: --column; break;
    case Qt::Key_Right: ++column; break;
    case Qt::Key_Up: --row; break;
    case Qt::Key_Down: ++row; break;
    default: return false;
  }
  endEdit();
  if (row >= 0 && column >= 0 && row < model_->rowCount() && column < model_->columnCount()) {
    const QModelIndex next = model_->index(row, column);
    startEdit(next, model_->cellText(next), false);
  }
  return true;
}

bool frmEdit::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress) {
    auto* key = static_cast<QKeyEvent*>(event);
    if (watched == txtDataEntry) return txtDataEntry_KeyDown(key->key());
    if (watched == MSFlexGridEdit && !(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier)))
      return MSFlexGridEdit_KeyPress(key->text());
  }
  return QWidget::eventFilter(watched, event);
}

void frmEdit::cmdToggleWidth_Click() {
  hideEntryBox();
  wideColumns_ = !wideColumns_;
  const int width = wideColumns_ ? 2 * baseWidth_ : baseWidth_;
  for (int c = 0; c < model_->columnCount(); ++c) MSFlexGridEdit->setColumnWidth(c, width);
}

void frmEdit::cmdDelete_Click() {
  const QModelIndex current = MSFlexGridEdit->currentIndex();
  if (!current.isValid()) return;
  deleted_ = true;
  hideEntryBox();
  model_->deleteSet(current.row());
  emit dataSetDeleted();
}

void frmEdit::cmdExit_Click() { close(); }

void frmEdit::closeEvent(QCloseEvent* event) {
  hideEntryBox();
  event->accept();
  emit done();
}

}  // namespace orvane
