#pragma once

#include "views/events_grid_model.h"
#include "views/grid_view.h"

#include <QtWidgets/QTableView>

namespace tremor {

// The table of events in the main window. It draws and reports; what a click means is decided by
// whoever receives its signals.
class GridEvents : public QTableView, public GridView {
    Q_OBJECT

  public:
    explicit GridEvents(QWidget* parent = nullptr);

    void clearRows() override;
    void setRows(ResultSet rows) override;
    std::int64_t rowCount() const override;
    void setHeader(int column, std::string_view text) override;
    std::string header(int column) const override;
    void setColumnWidth(int column, std::int32_t twips) override; // 0 hides the column
    std::string cell(std::int64_t row, int column) const override;
    void setRowSelected(std::int64_t row, bool selected) override;
    void setRowsGrey(const std::vector<std::int64_t>& rows) override;
    bool rowVisible(std::int64_t row) const override;
    std::int64_t topRow() const override;
    void setTopRow(std::int64_t row) override;

  Q_SIGNALS:
    // A cell (row from 1) or a column head (row 0) was clicked, or Enter pressed on a row.
    void gridClicked(qint64 row, int column);

    // The current cell has changed, by mouse or by keyboard. Comes before gridClicked.
    void currentCellMoved();

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void keyboardSearch(const QString& text) override;
    void wheelEvent(QWheelEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    void fitFont();
    bool showToolTip(const QHelpEvent& event);
    int modelRow(std::int64_t row) const; // -1 for the header and outside the table

    EventsGridModel* model_;
};

} // namespace tremor
