#pragma once
// The editor's grid as a view of the problem's own data matrix: one row per data set,
// the dependent value in the first column, then x1..xm. Cells are formatted when asked
// for, so a million sets cost no more than the matrix itself.

#include <QAbstractTableModel>

#include "regression/RegressionProblem.h"

namespace orvane {

class DataGridModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  explicit DataGridModel(RegressionProblem& problem, QObject* parent = nullptr);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

  // The index into X of a grid column (0 = the dependent value, c = x(c)).
  int dataIndex(int column) const;
  // Stores a value typed into a cell.
  void setValue(const QModelIndex& index, double value);
  // Removes a data set: the last one moves into its row.
  void deleteSet(int row);
  // The problem changed as a whole (sizes, names, data).
  void reload();

 private:
  RegressionProblem& problem_;
  int rows_ = 0;
  int columns_ = 0;
};

}  // namespace orvane
