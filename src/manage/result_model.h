#pragma once

#include "database/database.h"

#include <QtCore/QAbstractTableModel>

#include <string_view>

namespace tremor {

// Any query's result for Qt's table view, as the database gave it: heads are the column names,
// and a text is decoded when its cell is painted, so that a million rows cost their bytes only.
class ResultModel : public QAbstractTableModel {
    Q_OBJECT

  public:
    using QAbstractTableModel::QAbstractTableModel;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    void setRows(ResultSet rows);

    // The bytes of a cell, row and column from 0; empty outside the table.
    std::string_view cell(int row, int column) const;

  private:
    ResultSet rows_;
};

} // namespace tremor
