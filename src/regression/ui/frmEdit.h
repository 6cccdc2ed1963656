#pragma once
// The data-set editor: the data matrix as a grid, and an entry box laid over the
// current cell that writes every keystroke into the cell and the matrix.

#include <QWidget>
#include <optional>
#include <vector>

#include "regression/RegressionProblem.h"
#include "regression/ui/DataGridModel.h"

class QAction;
class QCloseEvent;
class QModelIndex;
class QPushButton;
class QTableView;
class QUndoStack;

namespace orvane {

struct CellChange;
class Dialogs;
class TextBox;

class frmEdit : public QWidget {
  Q_OBJECT

 public:
  frmEdit(RegressionProblem& problem, Dialogs& dialogs, QWidget* parent = nullptr);
  ~frmEdit() override;

  // Sizes, labels and names from the problem. After an open (`loadedFromFile`) every
  // cell shows its value and the window stays hidden; otherwise the window is shown,
  // typed cells keep their texts and new sets are empty.
  void PrepareGrid(bool loadedFromFile);
  DataGridModel* model() const { return model_; }

  // Fills cells from the current one with a block of numbers, rows on lines and cells
  // separated by tabs, ";" or "," (what spreadsheets put on the clipboard), each field
  // kept to the characters a number is typed with. Asks before it adds data sets and
  // refuses a block wider than the columns left; one step to undo.
  void PasteBlock(const QString& text);
  // Adds `count` empty data sets at the end ("Add data"), one step to undo; std::bad_alloc
  // when memory runs out, nothing changed.
  void AddSets(int count);
  // The selected cells (or the current one) as tab-separated lines.
  QString SelectedText() const;

  QTableView* MSFlexGridEdit;
  TextBox* txtDataEntry;
  QPushButton* cmdToggleWidth;
  QPushButton* cmdDelete;
  QPushButton* cmdExit;
  // Also the grid's context menu: undo and redo of the edits since the editor was
  // opened, copy and paste.
  QAction* mnuUndo;
  QAction* mnuRedo;
  QAction* mnuCopy;
  QAction* mnuPaste;

 signals:
  // Data sets were deleted, added by a paste, or brought back by undo or redo (N changed).
  void setCountChanged();
  // The editor was closed ("Done" or the close box).
  void done();

 protected:
  void closeEvent(QCloseEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private slots:
  void MSFlexGridEdit_DblClick(const QModelIndex& index);
  void txtDataEntry_Change(const QString& text);
  void txtDataEntry_KeyPress(int& keyAscii);
  void txtDataEntry_GotFocus();
  void cmdToggleWidth_Click();
  void cmdDelete_Click();
  void cmdExit_Click();
  void mnuCopy_Click();
  void mnuPaste_Click();

 private:
  // Applies the change as one step of undo (the new sets first, when there are any).
  void pushCells(const QString& what, std::vector<CellChange> changes, int addedSets);
  void startEdit(const QModelIndex& index, const QString& text, bool typed);
  void endEdit();
  void hideEntryBox();
  bool MSFlexGridEdit_KeyPress(const QString& text);
  bool txtDataEntry_KeyDown(int key);
  void placeEntryBox();
  void buildEditActions();
  // The edit of the entry box, as one step to undo, once the box closes.
  void commitEdit();

  RegressionProblem& problem_;
  Dialogs& dialogs_;
  DataGridModel* model_;
  int baseWidth_ = 0;
  bool wideColumns_ = false;
  bool deleted_ = false;
  bool entryFocused_ = false;  // the entry box has had the focus once
  bool caretAtEnd_ = false;    // an edit started by typing keeps its caret after the character
  bool active_ = false;        // the entry box is showing an edit
  int editRow_ = -1;
  int editColumn_ = -1;
  std::optional<DataGridModel::CellContent> editBefore_;  // the edited cell as the edit found it
  QUndoStack* undoStack_;
};

}  // namespace orvane
