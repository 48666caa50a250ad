#pragma once

#include "core/map_bounds.h"
#include "database/database.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tremor {

// The table `GridEvents` as the logic drives it. Grid row 0 is the header, data rows count from 1;
// grid column 0 is hidden and empty, the query's columns stand from grid column 1 on.
class GridView {
  public:
    virtual ~GridView() = default;

    virtual void clearRows() = 0;              // leaves the header alone
    virtual void setRows(ResultSet rows) = 0;  // all data rows at once
    virtual std::int64_t rowCount() const = 0; // with the header row
    virtual void setHeader(int column, std::string_view text) = 0;
    virtual std::string header(int column) const = 0;
    virtual void setColumnWidth(int column, std::int32_t twips) = 0;
    virtual std::string cell(std::int64_t row, int column) const = 0;
    virtual void setRowSelected(std::int64_t row, bool selected) = 0; // the selection colour
    // Grey text (0x808080), in addition to the rows that have it; setRows and clearRows end it.
    virtual void setRowsGrey(const std::vector<std::int64_t>& rows) = 0;
    virtual bool rowVisible(std::int64_t row) const = 0;
    virtual std::int64_t topRow() const = 0;
    virtual void setTopRow(std::int64_t row) = 0;
};

// What the grid asks of the workspace map.
class GridMap {
  public:
    virtual ~GridMap() = default;
    virtual void removeAll() = 0;
    // Refreshes the bounds from the page (boundsVisualizedMap) and gives them. Without a map: the
    // whole world.
    virtual MapBounds boundsVisualizedMap() = 0;
    // Selects the marker of the event (SelezioneMar).
    virtual void selectMarker(std::string_view utc) = 0;
};

// Receives the event that a selection has read from the catalogue (the nearby-towns report).
struct SelectedEvent {
    std::string utc;
    std::string latitude;
    std::string longitude;
    std::string magnitude;
    std::string depth;
    std::string source;
};

class TownsReport {
  public:
    virtual ~TownsReport() = default;
    virtual void eventOnPOI(const SelectedEvent& event) = 0;
};

} // namespace tremor
