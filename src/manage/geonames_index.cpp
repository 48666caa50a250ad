#include "manage/geonames_index.h"

#include "core/common_text.h"

#include <algorithm>
#include <set>
#include <unordered_map>

namespace tremor {

namespace {

constexpr std::size_t fileNameLength = 6;

// What follows the first `mark`; empty without one.
std::string_view behind(std::string_view text, std::string_view mark) {
    const std::size_t place = text.find(mark);
    return place == std::string_view::npos ? std::string_view() : text.substr(place + mark.size());
}

std::string_view codeOf(std::string_view fileName) {
    return fileName.substr(0, fileName.find('.'));
}

bool isLetterOrDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool isPlainCode(std::string_view code) {
    return !code.empty() && code.size() < fileNameLength &&
           std::all_of(code.begin(), code.end(), isLetterOrDigit);
}

// The file name on a line of the index page; empty for any other line.
std::string_view listedFileName(std::string_view line) {
    if (!line.starts_with("<img"))
        return {};
    const std::string_view rest = behind(line, "p\">");
    const std::size_t end = rest.find('<');
    if (end != fileNameLength)
        return {};
    const std::string_view name = rest.substr(0, end);
    return isPlainCode(codeOf(name)) ? name : std::string_view();
}

} // namespace

std::vector<std::string> listedFileNames(std::string_view indexPage) {
    std::vector<std::string> names;
    std::set<std::string_view> known;
    for (const std::string_view line : split(indexPage, '\n')) {
        const std::string_view name = listedFileName(line);
        if (name.empty() || !known.insert(name).second)
            continue;
        names.emplace_back(name);
        if (names.size() == maximumGeoNamesFiles)
            break;
    }
    return names;
}

std::vector<GeoNamesFile> nameCountries(const std::vector<std::string>& fileNames,
                                        std::string_view countryInfo) {
    constexpr std::size_t nameField = 4;
    std::unordered_map<std::string_view, std::string_view> countries;
    for (const std::string_view line : split(countryInfo, '\n')) {
        if (line.starts_with('#'))
            continue;
        const std::vector<std::string_view> fields = split(line, '\t');
        if (fields.size() > nameField)
            countries[fields.front()] = fields[nameField];
    }
    std::vector<GeoNamesFile> files;
    for (const std::string& fileName : fileNames) {
        const auto country = countries.find(codeOf(fileName));
        if (country != countries.end())
            files.push_back({std::string(country->first), std::string(country->second), fileName});
    }
    return files;
}

} // namespace tremor
