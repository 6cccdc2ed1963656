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

DataGridModel::CellContent DataGridModel::cellContent(const QModelIndex& index) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
  CellContent content{problem_.X(dataIndex(index.column()), index.row() + 1), std::nullopt};
  const auto typed = typed_.find(key(index.row(), index.column()));
  if (typed != typed_.end()) content.typed = typed->second;
  return content;
}

void DataGridModel::setCellContent(const QModelIndex& index, const CellContent& content) {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return;
  problem_.X(dataIndex(index.column()), index.row() + 1) = content.value;
  if (content.typed)
    typed_[key(index.row(), index.column())] = *content.typed;
  else
    typed_.erase(key(index.row(), index.column()));
  emit dataChanged(index, index, {Qt::DisplayRole});
}

DataGridModel::SetContent DataGridModel::setContent(int row) const {
  SetContent content;
  if (row < 0 || row >= rows_) return content;
  for (int c = 0; c < columns_; ++c) content.cells.push_back(cellContent(index(row, c)));
  content.addedByHand = addedByHand_[static_cast<size_t>(row)];
  return content;
}

void DataGridModel::restoreSet(int row, const SetContent& content) {
  if (row < 0 || row > rows_ || static_cast<int>(content.cells.size()) != columns_) return;
  const int last = rows_;
  if (problem_.N < problem_.X.lastRow())
    ++problem_.N;  // the matrix kept the row of the delete
  else
    problem_.addDataSets(1);
  beginInsertRows({}, last, last);
  rows_ = last + 1;
  addedByHand_.push_back(false);
  endInsertRows();
  if (row != last) {
    const SetContent moved = setContent(row);
    for (int c = 0; c < columns_; ++c) setCellContent(index(last, c), moved.cells[static_cast<size_t>(c)]);
    addedByHand_[static_cast<size_t>(last)] = moved.addedByHand;
  }
  for (int c = 0; c < columns_; ++c) setCellContent(index(row, c), content.cells[static_cast<size_t>(c)]);
  addedByHand_[static_cast<size_t>(row)] = content.addedByHand;
  emit dataChanged(index(row, 0), index(row, columns_ - 1), {Qt::DisplayRole});
}

void DataGridModel::appendSets(int count) {
  if (count < 1) return;
  problem_.addDataSets(count);
  beginInsertRows({}, rows_, rows_ + count - 1);
  rows_ += count;
  addedByHand_.resize(static_cast<size_t>(rows_), true);
  endInsertRows();
}

void DataGridModel::removeLastSets(int count) {
  count = std::min(count, rows_);
  if (count < 1) return;
  beginRemoveRows({}, rows_ - count, rows_ - 1);
  rows_ -= count;
  std::erase_if(typed_, [this](const auto& cell) { return (cell.first >> 32) >= rows_; });
  addedByHand_.resize(static_cast<size_t>(rows_));
  while (problem_.N > rows_) problem_.deleteDataSet(problem_.N);
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
