#pragma once

#include "core/error_report.h"
#include "core/ports.h"
#include "database/database.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>

namespace tremor {

enum PoiColumn : std::size_t {
    poiRowid,
    poiName,
    poiLatitude,
    poiLongitude,
    poiZone,
    poiColumnCount
};

// Edits the points of interest, table `Cities`, by hand: the rows on show, and the statements that
// change one of them at once. Texts are the bytes of the database; NULL shows as the empty text.
//
// Coordinates are stored as they were typed. Texts go into the statements as they were typed too:
// an apostrophe must be typed twice, also in the text that is searched for.
//
// A statement that fails changes nothing. The call then gives false, or shows no rows, and
// failure() tells why.
class PoiManager {
  public:
    // Rows that are read without a search.
    static constexpr std::size_t displayLimit = 55000;

    // All references must outlive this object.
    PoiManager(Database& catalogue, Prompts& prompts, ErrorReport& errors);

    // Shows the first rows of the table.
    void fillGrid();

    // Shows all rows with this text in their names, in any case of ASCII letters; "%" and "_" stand
    // for any text and any character. An empty text shows the first rows of the table.
    void searchPOI(std::string_view text);

    // The rows on show, and one of their cells; empty outside.
    std::size_t rowCount() const { return rows_.rowCount() + added_; }
    std::string_view cell(std::size_t row, PoiColumn column) const;

    // Rows of the table, or of the search, whether they are on show or not.
    std::size_t total() const { return total_ + added_; }

    // Gives a cell the typed text and writes its whole row to the table, the name as UTF-8. The
    // cell keeps the text when that fails. False outside the rows and in the column of row ids.
    bool StopEditing(std::size_t row, PoiColumn column, std::string_view text);

    // Adds the point "insertName" without a position behind the last row on show.
    bool cmd_addPOI_Click();

    // Removes a point without a question and reads the rows on show again.
    bool cmd_delPOI_Click(std::size_t row);

    // Why the last call has failed; empty when it has not.
    const std::string& failure() const { return failure_; }

    // Shows the text of a failure in a message box.
    void tell(std::string failure);

    // Frees the rows.
    void clear();

  private:
    using Row = std::array<std::string, poiColumnCount>;

    void read(std::string_view condition, std::string_view limit);
    Row copyOf(std::size_t row) const;
    bool write(const Row& row);
    bool succeed();
    bool fail(std::string_view what);

    Database& catalogue_;
    Prompts& prompts_;
    ErrorReport& errors_;
    ResultSet rows_;
    std::unordered_map<std::size_t, Row> edited_; // rows that differ from rows_ or lie behind them
    std::size_t added_ = 0;
    std::size_t total_ = 0;
    std::string search_;
    std::string failure_;
};

} // namespace tremor
