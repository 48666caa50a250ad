#include "manage/poi_model.h"

#include "core/qt_text.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QPalette>

#include <algorithm>
#include <array>
#include <limits>

namespace tremor {
namespace {

constexpr int rowidAlignment = Qt::AlignRight | Qt::AlignVCenter;

} // namespace

int PoiModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : rows_;
}

int PoiModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(poiColumnCount);
}

QVariant PoiModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid())
        return {};
    const auto column = static_cast<PoiColumn>(index.column());
    if (role == Qt::DisplayRole || role == Qt::EditRole)
        return fromBytes(manager_.cell(static_cast<std::size_t>(index.row()), column));
    if (column != poiRowid)
        return {};
    // Not grey, although it is disabled.
    if (role == Qt::ForegroundRole)
        return QGuiApplication::palette().brush(QPalette::Active, QPalette::Text);
    if (role == Qt::BackgroundRole)
        return QGuiApplication::palette().brush(QPalette::Active, QPalette::Button);
    if (role == Qt::TextAlignmentRole)
        return rowidAlignment;
    return {};
}

QVariant PoiModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role == Qt::TextAlignmentRole && section == static_cast<int>(poiRowid))
        return rowidAlignment;
    static constexpr std::array<const char*, poiColumnCount> names = {"rowid", "Name", "Latitude",
                                                                      "Longitude", "Zone"};
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal || section < 0 ||
        section >= columnCount())
        return {};
    return QString::fromLatin1(names.at(static_cast<std::size_t>(section)));
}

Qt::ItemFlags PoiModel::flags(const QModelIndex& index) const {
    if (!index.isValid() || index.column() == static_cast<int>(poiRowid))
        return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable;
}

bool PoiModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!index.isValid() || role != Qt::EditRole)
        return false;
    const bool written =
        manager_.StopEditing(static_cast<std::size_t>(index.row()),
                             static_cast<PoiColumn>(index.column()), toBytes(value.toString()));
    Q_EMIT dataChanged(index, index);
    if (!written)
        Q_EMIT refused(index);
    return written;
}

void PoiModel::readAnew(const std::function<void()>& read) {
    beginResetModel();
    read();
    constexpr std::size_t most = std::numeric_limits<int>::max() - 1;
    rows_ = static_cast<int>(std::min(manager_.rowCount(), most));
    endResetModel();
}

void PoiModel::rowAdded() {
    beginInsertRows({}, rows_, rows_);
    ++rows_;
    endInsertRows();
}

} // namespace tremor
