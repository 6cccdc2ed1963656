#include "regression/ui/DataGridModel.h"

#include <algorithm>

#include "platform/NumberText.h"

namespace orvane {

namespace {
int rowsOf(const RegressionProblem& p) { return std::max(0, std::min(p.N, p.X.lastRow())); }
int columnsOf(const RegressionProblem& p) { return p.X.lastColumn() == p.m + 1 ? p.m + 1 : 0; }
}  // namespace

DataGridModel::DataGridModel(RegressionProblem& problem, QObject* parent)
    : QAbstractTableModel(parent),
      problem_(problem),
      rows_(rowsOf(problem)),
      columns_(columnsOf(problem)),
      addedByHand_(static_cast<size_t>(rows_), false) {}

int DataGridModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : rows_; }

int DataGridModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : columns_; }

int DataGridModel::dataIndex(int column) const { return column == 0 ? problem_.m + 1 : column; }

QVariant DataGridModel::data(const QModelIndex& index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
  if (role == Qt::TextAlignmentRole) return int(Qt::AlignCenter);
  if (role != Qt::DisplayRole) return {};
  return cellText(index);
}

QString DataGridModel::cellText(const QModelIndex& index) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
  if (!typed_.empty()) {
    const auto typed = typed_.find(key(index.row(), index.column()));
    if (typed != typed_.end()) return typed->second;
  }
  if (addedByHand_[static_cast<size_t>(index.row())]) return {};
  return QString::fromStdString(formatGeneral(problem_.X(dataIndex(index.column()), index.row() + 1)));
}

QVariant DataGridModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role != Qt::DisplayRole) return {};
  if (orientation == Qt::Vertical) return QStringLiteral("Set# %1").arg(section + 1);
  if (section == 0) return QString::fromStdString(problem_.dependentName);
  if (section - 1 < static_cast<int>(problem_.names.size()))
    return QString::fromStdString(problem_.names[static_cast<size_t>(section - 1)]);
  return QString();
}

void DataGridModel::setCellText(const QModelIndex& index, const QString& text) {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return;
  const double value = leadingNumber(text.toStdString());  // may overflow: then nothing changes
  problem_.X(dataIndex(index.column()), index.row() + 1) = value;
  typed_[key(index.row(), index.column())] = text;
  emit dataChanged(index, index, {Qt::DisplayRole});
}

void DataGridModel::deleteSet(int row) {
  if (row < 0 || row >= rows_) return;
  const int last = rows_ - 1;
  for (int c = 0; c < columns_; ++c) typed_.erase(key(row, c));
  if (row != last) {
    // The last set moves into the row first, so the view never sees a row without data.
    for (int j = 1; j <= problem_.m + 1; ++j) problem_.X(j, row + 1) = problem_.X(j, last + 1);
    for (int c = 0; c < columns_; ++c) {
      const auto moved = typed_.find(key(last, c));
      if (moved == typed_.end()) continue;
      typed_.emplace(key(row, c), std::move(moved->second));
      typed_.erase(moved);
    }
    addedByHand_[static_cast<size_t>(row)] = addedByHand_[static_cast<size_t>(last)];
    emit dataChanged(index(row, 0), index(row, columns_ - 1), {Qt::DisplayRole});
  }
  beginRemoveRows({}, last, last);
  problem_.deleteDataSet(last + 1);
  rows_ = last;
  addedByHand_.pop_back();
  endRemoveRows();
}

void DataGridModel::reload(bool fromFile) {
  beginResetModel();
  const int rows = rowsOf(problem_);
  columns_ = columnsOf(problem_);
  if (fromFile) {
    typed_.clear();
    addedByHand_.assign(static_cast<size_t>(rows), false);
  } else {
    std::erase_if(typed_, [rows](const auto& cell) { return (cell.first >> 32) >= rows; });
    addedByHand_.resize(static_cast<size_t>(rows), true);
  }
  rows_ = rows;
  endResetModel();
}

}  // namespace orvane
