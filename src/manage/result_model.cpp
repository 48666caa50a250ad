#include "manage/result_model.h"

#include "core/qt_text.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace tremor {

int ResultModel::rowCount(const QModelIndex& parent) const {
    if (parent.isValid())
        return 0;
    constexpr std::size_t most = std::numeric_limits<int>::max() - 1;
    return static_cast<int>(std::min(rows_.rowCount(), most));
}

int ResultModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.columnCount());
}

QVariant ResultModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::ToolTipRole))
        return {};
    return fromBytes(cell(index.row(), index.column()));
}

QVariant ResultModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role != Qt::DisplayRole)
        return {};
    if (orientation == Qt::Vertical)
        return section + 1;
    if (section < 0 || section >= columnCount())
        return {};
    return fromBytes(rows_.columnNames()[static_cast<std::size_t>(section)]);
}

void ResultModel::setRows(ResultSet rows) {
    beginResetModel();
    std::swap(rows_, rows); // an assigned empty text would keep the memory of the old one
    endResetModel();
}

std::string_view ResultModel::cell(int row, int column) const {
    if (row < 0 || column < 0)
        return {};
    return rows_.cell(static_cast<std::size_t>(row), static_cast<std::size_t>(column));
}

} // namespace tremor
