#pragma once
// The editor's grid as a view of the problem's own data matrix: one row per data set,
// the dependent value in the first column, then x1..xm.
//
// A cell shows what was typed into it; a cell of a set added by hand and not typed into
// is empty; any other cell (the sets of an opened file) shows its value in the general
// number form, formatted when asked for. So a million opened sets cost no more than the
// matrix itself: typed texts are kept for the typed cells only, and the sets added by
// hand carry one mark each.

#include <QAbstractTableModel>
#include <optional>
#include <unordered_map>
#include <vector>

#include "regression/RegressionProblem.h"

namespace orvane {

class DataGridModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  // The sets the problem holds now show their values.
  explicit DataGridModel(RegressionProblem& problem, QObject* parent = nullptr);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

  // The index into X of a grid column (0 = the dependent value, c = x(c)).
  int dataIndex(int column) const;
  // What the cell shows.
  QString cellText(const QModelIndex& index) const;
  // Text typed into a cell: the cell shows it and the matrix holds its leading numeric
  // value. A number beyond the range of a double raises run-time error 6 and changes
  // nothing.
  void setCellText(const QModelIndex& index, const QString& text);
  // Removes a data set: the last one moves into its row, its cells' texts with it.
  void deleteSet(int row);

  // What a cell holds, to be put back as it was: the value, and the text typed into it
  // when there is one (without, the cell shows the value, or nothing in a set added by
  // hand).
  struct CellContent {
    double value = 0;
    std::optional<QString> typed;
    bool operator==(const CellContent&) const = default;
  };
  CellContent cellContent(const QModelIndex& index) const;
  void setCellContent(const QModelIndex& index, const CellContent& content);
  // A whole set, as deleteSet takes it away.
  struct SetContent {
    std::vector<CellContent> cells;
    bool addedByHand = false;
  };
  SetContent setContent(int row) const;
  // Puts a deleted set back in `row`; the set there (the one that had moved in) goes
  // back to a new last row.
  void restoreSet(int row, const SetContent& content);
  // Adds `count` empty sets after the last one (std::bad_alloc when memory runs out,
  // nothing changed), or takes the last `count` sets away.
  void appendSets(int count);
  void removeLastSets(int count);
  // The problem's sizes or names changed. Sets beyond the rows shown so far are new and
  // empty; with `fromFile` every cell shows its value instead.
  void reload(bool fromFile);

 private:
  static qint64 key(int row, int column) { return (qint64(row) << 32) | quint32(column); }

  RegressionProblem& problem_;
  int rows_ = 0;
  int columns_ = 0;
  std::unordered_map<qint64, QString> typed_;  // texts of the typed cells
  std::vector<bool> addedByHand_;              // per row: not filled from the matrix
};

}  // namespace orvane
