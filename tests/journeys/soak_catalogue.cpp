#include "journeys/soak_catalogue.h"

#include "journeys/source_rows.h"
#include "support/texts.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <set>

namespace tremor::journeys {
namespace {

namespace fs = std::filesystem;

bool givesWay(const std::string& source) {
    return source == "ingv" || source == "iside";
}

std::string listOf(const std::string& what, const std::vector<EventRow>& rows) {
    constexpr std::size_t most = 8;
    std::string text;
    for (std::size_t i = 0; i < std::min(rows.size(), most); ++i)
        text += what + " " + rows[i].utc + " | " + rows[i].latitude + " | " + rows[i].longitude +
                " | " + rows[i].depth + " | " + rows[i].magnitude + " | " + rows[i].source + "\n";
    if (rows.size() > most)
        text += what + " " + std::to_string(rows.size() - most) + " more\n";
    return text;
}

} // namespace

void ExpectedCatalogue::set(const std::string& source, std::vector<EventRow> rows) {
    rows_[source] = std::move(rows);
}

std::size_t ExpectedCatalogue::size() const {
    std::size_t count = 0;
    for (const auto& [source, rows] : rows_)
        count += rows.size();
    return count;
}

std::string ExpectedCatalogue::differences(std::vector<EventRow> found) const {
    std::map<std::string, std::set<std::string>> sourcesOfTime;
    for (const auto& [source, rows] : rows_)
        for (const EventRow& row : rows)
            if (source != "emsc")
                sourcesOfTime[row.utc].insert(source);
    const auto isShared = [&](const EventRow& row) {
        const auto entry = sourcesOfTime.find(row.utc);
        return row.source != "EMSC" && entry != sourcesOfTime.end() && entry->second.size() > 1 &&
               std::any_of(entry->second.begin(), entry->second.end(), givesWay);
    };

    std::vector<EventRow> expected;
    std::set<std::string> sharedTimes;
    for (const auto& [source, rows] : rows_)
        for (const EventRow& row : rows)
            if (isShared(row))
                sharedTimes.insert(row.utc);
            else
                expected.push_back(row);
    std::string text;
    for (const std::string& time : sharedTimes)
        if (std::none_of(found.begin(), found.end(), [&](const EventRow& row) {
                return row.utc == time && row.source != "EMSC";
            }))
            text += "missing " + time + ", which several sources have\n";
    std::erase_if(found, isShared);

    std::sort(expected.begin(), expected.end());
    std::sort(found.begin(), found.end());
    std::vector<EventRow> missing;
    std::vector<EventRow> tooMany;
    std::set_difference(expected.begin(), expected.end(), found.begin(), found.end(),
                        std::back_inserter(missing));
    std::set_difference(found.begin(), found.end(), expected.begin(), expected.end(),
                        std::back_inserter(tooMany));
    return text + listOf("missing", missing) + listOf("too many", tooMany);
}

std::vector<EventRow> rowsOfSeisCompFolder(const std::string& folder) {
    std::vector<EventRow> rows;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        if (entry.path().filename() == "last")
            rows.push_back(rowOfBulletin(testing::contentOf(entry.path())));
    return rows;
}

std::vector<EventRow> rowsOfSeisanFolder(const std::string& folder) {
    constexpr std::size_t latitude = 23; // column 24
    constexpr std::size_t latitudeWidth = 6;
    std::vector<EventRow> rows;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file() ||
            entry.path().filename().string().find(".S") == std::string::npos)
            continue;
        const std::string text = testing::contentOf(entry.path());
        if (text.substr(latitude, latitudeWidth).find_first_not_of(' ') != std::string::npos)
            rows.push_back(rowOfSFile(text));
    }
    return rows;
}

} // namespace tremor::journeys
