#include "regression/ui/frmEdit.h"

#include <QAction>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QPushButton>
#include <QTableView>
#include <QUndoCommand>
#include <QUndoStack>
#include <QVBoxLayout>
#include <functional>
#include <memory>
#include <new>

#include "platform/Dialogs.h"
#include "platform/NumberText.h"
#include "platform/RuntimeError.h"
#include "platform/ui/Shortcuts.h"
#include "platform/ui/TextBox.h"

namespace orvane {

// One cell's text before and after a step of undo.
struct CellChange {
  int row = 0, column = 0;
  DataGridModel::CellContent before, after;
};

namespace {

using CellContent = DataGridModel::CellContent;

// The characters a number can be typed with.
bool isEntryCharacter(char16_t c) {
  return c == '+' || c == '-' || c == '.' || (c >= '0' && c <= '9') || c == 'E' || c == 'e';
}

QString numberCharacters(const QString& field) {
  QString kept;
  for (const QChar c : field)
    if (isEntryCharacter(c.unicode())) kept += c;
  return kept;
}

// A block of text as spreadsheets copy it: rows on lines, cells separated by tabs, or
// else by ";", or else by ","; the line end after the last row is not a row.
std::vector<QStringList> splitBlock(QString text) {
  text.remove(QLatin1Char('\r'));
  while (text.endsWith(QLatin1Char('\n'))) text.chop(1);
  if (text.isEmpty()) return {};
  const QChar separator = text.contains(QLatin1Char('\t'))  ? QLatin1Char('\t')
                          : text.contains(QLatin1Char(';')) ? QLatin1Char(';')
                                                            : QLatin1Char(',');
  std::vector<QStringList> rows;
  for (const QString& line : text.split(QLatin1Char('\n'))) rows.push_back(line.split(separator));
  return rows;
}

bool isBlock(const QString& text) {
  const std::vector<QStringList> rows = splitBlock(text);
  return rows.size() > 1 || (rows.size() == 1 && rows.front().size() > 1);
}

// The question to ask when a field holds more than a number's characters, blanks and
// quotes: the first such field, and what would be kept of it.
std::optional<QString> alteredFieldQuestion(const std::vector<QStringList>& rows) {
  for (size_t r = 0; r < rows.size(); ++r)
    for (const QString& field : rows[r]) {
      QString plain = field;
      plain.remove(QLatin1Char(' ')).remove(QLatin1Char('"'));
      if (numberCharacters(plain) == plain) continue;
      return QStringLiteral("The pasted text holds characters a number is not typed with: \"%1\" in row %2 would "
                            "be kept as \"%3\".\rPaste it so?")
          .arg(field.left(40))
          .arg(r + 1)
          .arg(numberCharacters(field));
    }
  return std::nullopt;
}

// Cells typed or pasted, and the sets a paste added at the end.
class CellsCommand : public QUndoCommand {
 public:
  CellsCommand(const QString& text, DataGridModel& model, std::vector<CellChange> changes, int addedSets,
               std::function<void()> countChanged)
      : QUndoCommand(text), model_(model), changes_(std::move(changes)), addedSets_(addedSets),
        countChanged_(std::move(countChanged)) {}

  void redo() override {
    if (addedSets_ > 0) {
      model_.appendSets(addedSets_);
      countChanged_();
    }
    for (const CellChange& c : changes_) model_.setCellContent(model_.index(c.row, c.column), c.after);
  }
  void undo() override {
    for (auto c = changes_.rbegin(); c != changes_.rend(); ++c)
      model_.setCellContent(model_.index(c->row, c->column), c->before);
    if (addedSets_ > 0) {
      model_.removeLastSets(addedSets_);
      countChanged_();
    }
  }

 private:
  DataGridModel& model_;
  std::vector<CellChange> changes_;
  int addedSets_;
  std::function<void()> countChanged_;
};

// "Delete data set": undone, the set comes back in its row and the set that had moved
// into it goes back to the end.
class DeleteCommand : public QUndoCommand {
 public:
  DeleteCommand(DataGridModel& model, int row, std::function<void()> countChanged)
      : QUndoCommand(QStringLiteral("Delete data set")), model_(model), row_(row), content_(model.setContent(row)),
        countChanged_(std::move(countChanged)) {}

  void redo() override {
    model_.deleteSet(row_);
    countChanged_();
  }
  void undo() override {
    model_.restoreSet(row_, content_);
    countChanged_();
  }

 private:
  DataGridModel& model_;
  int row_;
  DataGridModel::SetContent content_;
  std::function<void()> countChanged_;
};

}  // namespace

frmEdit::frmEdit(RegressionProblem& problem, Dialogs& dialogs, QWidget* parent)
    : QWidget(parent, Qt::Window),
      problem_(problem),
      dialogs_(dialogs),
      model_(new DataGridModel(problem, this)),
      undoStack_(new QUndoStack(this)) {
  setObjectName(QStringLiteral("frmEdit"));
  setWindowTitle(QStringLiteral("Enter/Edit data"));

  MSFlexGridEdit = new QTableView();
  MSFlexGridEdit->setObjectName(QStringLiteral("MSFlexGridEdit"));
  MSFlexGridEdit->setModel(model_);
  MSFlexGridEdit->setEditTriggers(QAbstractItemView::NoEditTriggers);
  MSFlexGridEdit->setSelectionMode(QAbstractItemView::ContiguousSelection);  // a block to copy
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
  buildEditActions();

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

void frmEdit::buildEditActions() {
  const auto action = [this](const char* name, const QString& text, const QList<QKeySequence>& keys) {
    auto* a = new QAction(text, this);
    a->setObjectName(QString::fromLatin1(name));
    a->setShortcuts(keys);
    addAction(a);  // the keys work wherever the focus is in the editor
    MSFlexGridEdit->addAction(a);
    return a;
  };
  QList<QKeySequence> redoKeys = StandardKeys(QKeySequence::Redo, QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z));
  if (!redoKeys.contains(QKeySequence(Qt::CTRL | Qt::Key_Y))) redoKeys.append(QKeySequence(Qt::CTRL | Qt::Key_Y));
  mnuUndo = action("mnuUndo", QStringLiteral("Undo"), StandardKeys(QKeySequence::Undo, QKeySequence(Qt::CTRL | Qt::Key_Z)));
  mnuRedo = action("mnuRedo", QStringLiteral("Redo"), redoKeys);
  auto* separator = new QAction(this);
  separator->setSeparator(true);
  MSFlexGridEdit->addAction(separator);
  mnuCopy = action("mnuCopy", QStringLiteral("Copy"), StandardKeys(QKeySequence::Copy, QKeySequence(Qt::CTRL | Qt::Key_C)));
  mnuPaste = action("mnuPaste", QStringLiteral("Paste"), StandardKeys(QKeySequence::Paste, QKeySequence(Qt::CTRL | Qt::Key_V)));
  MSFlexGridEdit->setContextMenuPolicy(Qt::ActionsContextMenu);
  mnuUndo->setEnabled(false);
  mnuRedo->setEnabled(false);
  connect(undoStack_, &QUndoStack::canUndoChanged, mnuUndo, &QAction::setEnabled);
  connect(undoStack_, &QUndoStack::canRedoChanged, mnuRedo, &QAction::setEnabled);
  // An edit still open in the entry box is a step of its own, before the one undone.
  connect(mnuUndo, &QAction::triggered, this, [this] {
    hideEntryBox();
    undoStack_->undo();
  });
  connect(mnuRedo, &QAction::triggered, this, [this] {
    hideEntryBox();
    undoStack_->redo();
  });
  connect(mnuCopy, &QAction::triggered, this, &frmEdit::mnuCopy_Click);
  connect(mnuPaste, &QAction::triggered, this, &frmEdit::mnuPaste_Click);
}

void frmEdit::PrepareGrid(bool loadedFromFile) {
  hideEntryBox();
  model_->reload(loadedFromFile);
  const int width = wideColumns_ ? 2 * baseWidth_ : baseWidth_;
  for (int c = 0; c < model_->columnCount(); ++c) MSFlexGridEdit->setColumnWidth(c, width);
  if (model_->rowCount() > 0 && model_->columnCount() > 0)
    MSFlexGridEdit->setCurrentIndex(model_->index(0, 0));
  undoStack_->clear();  // undo reaches back to the opening of the editor, no further
  if (!loadedFromFile) {
    show();
    raise();
    activateWindow();
    MSFlexGridEdit->setFocus();
  }
}

void frmEdit::startEdit(const QModelIndex& index, const QString& text, bool typed) {
  if (!index.isValid()) return;
  commitEdit();
  editBefore_ = model_->cellContent(index);
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

void frmEdit::commitEdit() {
  if (!editBefore_) return;
  const CellContent before = *std::exchange(editBefore_, std::nullopt);
  if (editRow_ >= model_->rowCount() || editColumn_ >= model_->columnCount()) return;
  const CellContent after = model_->cellContent(model_->index(editRow_, editColumn_));
  if (after == before) return;
  pushCells(QStringLiteral("Edit cell"), {{editRow_, editColumn_, before, after}}, 0);
}

void frmEdit::pushCells(const QString& what, std::vector<CellChange> changes, int addedSets) {
  auto command = std::make_unique<CellsCommand>(what, *model_, std::move(changes), addedSets,
                                                [this] { emit setCountChanged(); });
  undoStack_->push(command.get());  // applied here; a failure leaves the stack as it was
  command.release();
}

void frmEdit::hideEntryBox() {
  commitEdit();
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
    if (watched == txtDataEntry && key->matches(QKeySequence::Paste) &&
        isBlock(QString::fromStdString(dialogs_.ClipboardText()))) {
      endEdit();  // a block fills cells from this one, as on the grid
      mnuPaste_Click();
      return true;
    }
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
  undoStack_->push(new DeleteCommand(*model_, current.row(), [this] { emit setCountChanged(); }));
}

void frmEdit::AddSets(int count) {
  hideEntryBox();
  pushCells(QStringLiteral("Add data"), {}, count);
}

QString frmEdit::SelectedText() const {
  const QItemSelection selection = MSFlexGridEdit->selectionModel()->selection();
  const QModelIndex current = MSFlexGridEdit->currentIndex();
  if (selection.isEmpty() && !current.isValid()) return {};
  // Ranges, not indexes: a million selected rows cost no list of a million indexes.
  const QItemSelectionRange range = selection.isEmpty() ? QItemSelectionRange(current) : selection.first();
  QString text;
  for (int r = range.top(); r <= range.bottom(); ++r) {
    for (int c = range.left(); c <= range.right(); ++c) {
      if (c > range.left()) text += QLatin1Char('\t');
      text += model_->cellText(model_->index(r, c));
    }
    text += QLatin1Char('\n');
  }
  return text;
}

void frmEdit::mnuCopy_Click() {
  const QString text = SelectedText();
  if (!text.isEmpty()) dialogs_.CopyText(text.toStdString());
}

void frmEdit::mnuPaste_Click() { PasteBlock(QString::fromStdString(dialogs_.ClipboardText())); }

void frmEdit::PasteBlock(const QString& text) {
  hideEntryBox();
  std::vector<QStringList> rows = splitBlock(text);
  if (rows.empty() || model_->columnCount() == 0) return;
  const QModelIndex current = MSFlexGridEdit->currentIndex();
  const int top = current.isValid() ? current.row() : 0;
  const int left = current.isValid() ? current.column() : 0;
  qsizetype width = 0;
  for (const QStringList& row : rows) width = std::max(width, row.size());
  if (left + width > model_->columnCount()) {
    dialogs_.MsgBox(QStringLiteral("The pasted block is %1 cells wide; from this column on there is room for %2.\r"
                                   "Nothing was pasted.")
                        .arg(width)
                        .arg(model_->columnCount() - left)
                        .toStdString(),
                    mb::Exclamation, "Paste");
    return;
  }
  // Blanks and quotes go unremarked; other characters a number is not typed with are
  // left out as typing would, but not without asking.
  if (const std::optional<QString> question = alteredFieldQuestion(rows))
    if (dialogs_.MsgBox(question->toStdString(), mb::YesNo | mb::Question, "Paste") != mb::Yes) return;
  const int missing = top + static_cast<int>(rows.size()) - model_->rowCount();
  int added = 0;
  if (missing > 0) {
    const QString question = QStringLiteral("The pasted block has %1 rows, %2 more than the data sets from here on.\r"
                                            "Add %2 data %3? (No pastes the rows that fit.)")
                                 .arg(rows.size())
                                 .arg(missing)
                                 .arg(missing == 1 ? QStringLiteral("set") : QStringLiteral("sets"));
    const int answer = dialogs_.MsgBox(question.toStdString(), mb::YesNoCancel | mb::Question, "Paste");
    if (answer == mb::Cancel) return;
    if (answer == mb::Yes) {
      if (RegressionProblem::tooLarge(problem_.m, int64_t{problem_.N} + missing)) {
        dialogs_.MsgBox("Out of memory", mb::Critical);
        return;
      }
      added = missing;
    } else {
      rows.resize(rows.size() - static_cast<size_t>(missing));
    }
  }
  std::vector<CellChange> changes;
  try {
    for (size_t r = 0; r < rows.size(); ++r)
      for (qsizetype c = 0; c < rows[r].size(); ++c) {
        const QString kept = numberCharacters(rows[r][c]);
        const int row = top + static_cast<int>(r), column = left + static_cast<int>(c);
        const CellContent before = row < model_->rowCount() ? model_->cellContent(model_->index(row, column)) : CellContent{};
        changes.push_back({row, column, before, CellContent{leadingNumber(kept.toStdString()), kept}});
      }
  } catch (const RuntimeError& error) {
    ShowRunTimeError(dialogs_, error);  // a number beyond the range of a double: nothing changes
    return;
  }
  if (changes.empty()) return;
  try {
    pushCells(QStringLiteral("Paste"), std::move(changes), added);
  } catch (const std::bad_alloc&) {
    dialogs_.MsgBox("Out of memory", mb::Critical);
    return;
  }
  const QModelIndex last = model_->index(top + static_cast<int>(rows.size()) - 1, left + static_cast<int>(width) - 1);
  MSFlexGridEdit->selectionModel()->select(QItemSelection(model_->index(top, left), last),
                                           QItemSelectionModel::ClearAndSelect);
}

void frmEdit::cmdExit_Click() { close(); }

void frmEdit::closeEvent(QCloseEvent* event) {
  hideEntryBox();
  event->accept();
  emit done();
}

}  // namespace orvane
