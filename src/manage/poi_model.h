#pragma once

#include "manage/poi_manager.h"

#include <QtCore/QAbstractTableModel>

#include <functional>

namespace tremor {

// The points of interest on show for Qt's table view. A text is decoded when its cell is painted.
// The column of row ids is disabled, so that it is never the current one.
class PoiModel : public QAbstractTableModel {
    Q_OBJECT

  public:
    PoiModel(PoiManager& manager, QObject* owner) : QAbstractTableModel(owner), manager_(manager) {}

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    // Writes the text to the table of the catalogue.
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;

    // Runs something that reads the rows anew.
    void readAnew(const std::function<void()>& read);

    // A row has come behind the last one.
    void rowAdded();

  Q_SIGNALS:
    // A text did not get into the table; its cell shows it all the same.
    void refused(const QModelIndex& cell);

  private:
    PoiManager& manager_;
    int rows_ = 0;
};

} // namespace tremor
