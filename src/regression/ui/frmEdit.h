#pragma once
// The data-set editor: the data matrix as a grid, and an entry box laid over the
// current cell that writes every keystroke into the cell and the matrix.

#include <QWidget>

#include "regression/RegressionProblem.h"

class QCloseEvent;
class QModelIndex;
class QPushButton;
class QTableView;

namespace orvane {

class DataGridModel;
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

  QTableView* MSFlexGridEdit;
  TextBox* txtDataEntry;
  QPushButton* cmdToggleWidth;
  QPushButton* cmdDelete;
  QPushButton* cmdExit;

 signals:
  // A data set was deleted (N is one less).
  void dataSetDeleted();
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

 private:
  void startEdit(const QModelIndex& index, const QString& text, bool typed);
  void endEdit();
  void hideEntryBox();
  bool MSFlexGridEdit_KeyPress(const QString& text);
  bool txtDataEntry_KeyDown(int key);
  void placeEntryBox();

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
};

}  // namespace orvane
