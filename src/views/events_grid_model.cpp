#include "views/events_grid_model.h"

#include "core/qt_text.h"

#include <QtGui/QBrush>
#include <QtGui/QColor>

#include <algorithm>
#include <limits>
#include <utility>

namespace tremor {
namespace {

constexpr QRgb selectionColour = qRgb(128, 255, 255);
// The light selection colour asks for dark text, also where the palette's own text is light.
constexpr QRgb selectionTextColour = qRgb(0, 0, 0);
constexpr QRgb greyTextColour = qRgb(128, 128, 128);

bool isGridColumn(int column) {
    return column >= 0 && column < EventsGridModel::columns;
}

} // namespace

int EventsGridModel::rowCount(const QModelIndex& parent) const {
    if (parent.isValid())
        return 0;
    constexpr std::size_t most = std::numeric_limits<int>::max() - 1;
    return static_cast<int>(std::min(rows_.rowCount(), most));
}

int EventsGridModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : columns;
}

QVariant EventsGridModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid())
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return fromBytes(cell(index.row(), index.column()));
    case Qt::BackgroundRole:
        return index.row() == colouredRow_ ? QBrush(QColor(selectionColour)) : QVariant();
    case Qt::ForegroundRole:
        return textColour(index.row());
    default:
        return {};
    }
}

QVariant EventsGridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || !isGridColumn(section))
        return {};
    return fromBytes(headers_[static_cast<std::size_t>(section)]);
}

void EventsGridModel::setRows(ResultSet rows) {
    beginResetModel();
    // Swapped, not assigned: an assigned empty text would keep the memory of the old one.
    std::swap(rows_, rows);
    colouredRow_ = -1;
    greyRows_ = {};
    endResetModel();
}

std::string_view EventsGridModel::cell(int row, int column) const {
    if (row < 0 || column < 1)
        return {};
    return rows_.cell(static_cast<std::size_t>(row), static_cast<std::size_t>(column) - 1);
}

void EventsGridModel::setHeader(int column, std::string_view text) {
    if (!isGridColumn(column))
        return;
    headers_[static_cast<std::size_t>(column)] = text;
    Q_EMIT headerDataChanged(Qt::Horizontal, column, column);
}

std::string EventsGridModel::header(int column) const {
    return isGridColumn(column) ? headers_[static_cast<std::size_t>(column)] : std::string();
}

void EventsGridModel::setColouredRow(int row) {
    const int before = std::exchange(colouredRow_, row);
    repaintRow(before);
    repaintRow(row);
}

void EventsGridModel::addGreyRows(const std::vector<int>& rows) {
    greyRows_.resize(static_cast<std::size_t>(rowCount()));
    for (const int row : rows)
        if (row >= 0 && row < rowCount())
            greyRows_[static_cast<std::size_t>(row)] = true;
    if (rowCount() > 0)
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columns - 1), {Qt::ForegroundRole});
}

bool EventsGridModel::isGrey(int row) const {
    const auto number = static_cast<std::size_t>(row);
    return number < greyRows_.size() && greyRows_[number];
}

// Grey stays grey under the selection colour.
QVariant EventsGridModel::textColour(int row) const {
    if (isGrey(row))
        return QBrush(QColor(greyTextColour));
    return row == colouredRow_ ? QBrush(QColor(selectionTextColour)) : QVariant();
}

void EventsGridModel::repaintRow(int row) {
    if (row >= 0 && row < rowCount())
        Q_EMIT dataChanged(index(row, 0), index(row, columns - 1),
                           {Qt::BackgroundRole, Qt::ForegroundRole});
}

} // namespace tremor
