#pragma once

#include "database/database.h"

#include <QtCore/QAbstractTableModel>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tremor {

// The rows of `GridEvents` for Qt's table view: the result of a query as the database gave it.
// Nothing is copied; a text is decoded when a cell is painted. Model row 0 is the first data row,
// model columns are grid columns: column 0 is empty and hidden.
class EventsGridModel : public QAbstractTableModel {
    Q_OBJECT

  public:
    static constexpr int columns = 7;

    using QAbstractTableModel::QAbstractTableModel;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    void setRows(ResultSet rows); // no row is coloured or grey afterwards
    std::string_view cell(int row, int column) const;

    // Columns outside the table are ignored.
    void setHeader(int column, std::string_view text);
    std::string header(int column) const;

    // The one row with the selection colour; -1 for none.
    void setColouredRow(int row);
    int colouredRow() const { return colouredRow_; }

    // Grey text for these rows too; rows outside the table are ignored.
    void addGreyRows(const std::vector<int>& rows);

  private:
    void repaintRow(int row);
    bool isGrey(int row) const;
    QVariant textColour(int row) const;

    ResultSet rows_;
    // Until the first query names its columns, so that an empty table is not without heads.
    std::array<std::string, columns> headers_{"",   "UTC",   "Latitude", "Longitude",
                                              "Mg", "Depth", "Source"};
    int colouredRow_ = -1;
    std::vector<bool> greyRows_; // empty while no row is grey
};

} // namespace tremor
