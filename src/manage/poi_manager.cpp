#include "manage/poi_manager.h"

#include "core/code_pages.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <utility>

namespace tremor {
namespace {

constexpr std::string_view module = "Form - frmManagePoI";
constexpr std::string_view doubleApostrophe = "An apostrophe must be typed twice.";

template <class Number>
Number number(std::string_view text) {
    Number value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

// Behind the largest rowid there is none: SQLite refuses the number that this gives.
std::string rowidAfter(std::string_view rowid) {
    const auto last = number<std::int64_t>(rowid);
    return last < 0 ? std::to_string(last + 1)
                    : std::to_string(static_cast<std::uint64_t>(last) + 1);
}

} // namespace

PoiManager::PoiManager(Database& catalogue, Prompts& prompts, ErrorReport& errors)
    : catalogue_(catalogue), prompts_(prompts), errors_(errors) {}

void PoiManager::fillGrid() {
    const ProcedureTrace trace(errors_, module, "fillGrid");
    search_.clear();
    read("", fmt::format(" limit {}", displayLimit));
}

void PoiManager::searchPOI(std::string_view text) {
    const ProcedureTrace trace(errors_, module, "searchPOI");
    if (text.empty()) {
        fillGrid();
        return;
    }
    search_ = text;
    read(fmt::format(" where Name like '%{}%'", text), "");
    if (!failure_.empty() && !pastedTextValue(text))
        failure_.append("\r\n").append(doubleApostrophe);
}

void PoiManager::read(std::string_view condition, std::string_view limit) {
    clear(); // never the old rows and the new ones in memory at once
    if (catalogue_.slsSel(fmt::format("select count(*) from Cities{}", condition)) == 0 &&
        catalogue_.slsGetRow())
        total_ = number<std::size_t>(catalogue_.slsFX(1));
    if (catalogue_.slsSel(fmt::format(
            "select rowid, Name, Latitude, Longitude, Zone from Cities{}{}", condition, limit)) ==
        0) {
        rows_ = catalogue_.takeResult();
        succeed();
    } else {
        total_ = 0;
        fail("The points cannot be read:");
    }
}

void PoiManager::clear() {
    ResultSet empty;
    std::swap(rows_, empty); // an assigned empty set would keep its memory
    edited_.clear();
    added_ = 0;
    total_ = 0;
}

std::string_view PoiManager::cell(std::size_t row, PoiColumn column) const {
    const auto edited = edited_.find(row);
    if (edited == edited_.end() || column >= poiColumnCount)
        return rows_.cell(row, column);
    return edited->second.at(column);
}

PoiManager::Row PoiManager::copyOf(std::size_t row) const {
    Row copy;
    for (std::size_t column = 0; column < poiColumnCount; ++column)
        copy[column] = cell(row, static_cast<PoiColumn>(column));
    return copy;
}

bool PoiManager::StopEditing(std::size_t row, PoiColumn column, std::string_view text) {
    const ProcedureTrace trace(errors_, module, "StopEditing");
    if (row >= rowCount() || column == poiRowid || column >= poiColumnCount)
        return false;
    Row edited = copyOf(row);
    edited.at(column) = text;
    const bool written = write(edited);
    edited_.insert_or_assign(row, std::move(edited));
    return written;
}

// A name of the GeoNames service may hold "' --", which would turn the update of its row into one
// of all rows; the statement of such a text is not even run.
bool PoiManager::write(const Row& row) {
    if (!std::ranges::all_of(
            row, [](const std::string& text) { return pastedTextValue(text).has_value(); })) {
        failure_ = fmt::format("The point was not saved:\r\n{}", doubleApostrophe);
        return false;
    }
    const int code = catalogue_.slsExe(fmt::format(
        "update Cities SET Name = '{}', Latitude = '{}', Longitude = '{}', Zone = '{}' where rowid "
        "= '{}'",
        EncodeUTF8(DecodeUTF8(row[poiName])), row[poiLatitude], row[poiLongitude], row[poiZone],
        row[poiRowid]));
    if (code != 0)
        return fail("The point was not saved:");
    if (catalogue_.changes() == 0) {
        failure_ = "The point was not saved:\r\nIt is not in the database any more.";
        return false;
    }
    return succeed();
}

bool PoiManager::cmd_addPOI_Click() {
    const ProcedureTrace trace(errors_, module, "cmd_addPOI_Click");
    constexpr std::string_view failed = "The point was not added:";
    if (catalogue_.slsSel("select max(rowid) from Cities") != 0)
        return fail(failed);
    catalogue_.slsGetRow();
    const std::string rowid = rowidAfter(catalogue_.slsFX(1));
    if (catalogue_.slsExe(
            fmt::format("INSERT INTO Cities(rowid, Name) Values ('{}', 'insertName')", rowid)) != 0)
        return fail(failed);
    edited_.emplace(rowCount(), Row{rowid, "insertName"});
    ++added_;
    return succeed();
}

bool PoiManager::cmd_delPOI_Click(std::size_t row) {
    const ProcedureTrace trace(errors_, module, "cmd_delPOI_Click");
    if (row >= rowCount())
        return false;
    if (catalogue_.slsExe(
            fmt::format("delete from Cities where rowid ='{}'", cell(row, poiRowid))) != 0)
        return fail("The point was not deleted:");
    searchPOI(std::string(search_)); // a copy: the search is set anew
    return failure_.empty();
}

bool PoiManager::succeed() {
    failure_.clear();
    return true;
}

bool PoiManager::fail(std::string_view what) {
    failure_ = fmt::format("{}\r\n{}", what, catalogue_.slGetError());
    return false;
}

void PoiManager::tell(std::string failure) {
    prompts_.showMessageBox(
        {.text = std::move(failure), .title = "Error..", .icon = BoxIcon::Critical});
}

} // namespace tremor
