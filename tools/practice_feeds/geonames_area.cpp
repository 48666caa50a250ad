#include "practice_feeds/geonames_area.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace tremor::practice {

namespace {

constexpr std::string_view areaPath = "/geonames/export/dump/";

bool isZip(const std::string& name) {
    return name.ends_with(".zip");
}

} // namespace

GeoNamesArea::GeoNamesArea(const std::string& folder) {
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
        const std::string name = entry.path().filename().string();
        if (!isZip(name) && name != "countryInfo.txt")
            continue;
        std::ifstream stream(entry.path(), std::ios::binary);
        documents_[name] = {std::istreambuf_iterator<char>(stream), {}};
    }
    const bool hasDump = std::any_of(documents_.begin(), documents_.end(),
                                     [](const auto& document) { return isZip(document.first); });
    if (!hasDump || documents_.count("countryInfo.txt") == 0)
        throw std::runtime_error("no countryInfo.txt or no zip file in " + folder);
}

Answer GeoNamesArea::answer(const Request& request) const {
    const std::string name =
        request.path.starts_with(areaPath) ? request.path.substr(areaPath.size()) : "?";
    if (name.empty())
        return {.body = indexPage(), .contentType = "text/html;charset=UTF-8"};
    const auto document = documents_.find(name);
    if (document == documents_.end())
        return {.status = 404, .body = "Not Found\n"};
    return {.body = document->second,
            .contentType = isZip(name) ? "application/zip" : "text/plain;charset=UTF-8"};
}

std::string GeoNamesArea::indexPage() const {
    std::string page = "<!DOCTYPE HTML PUBLIC \"-//W3C//DTD HTML 3.2 Final//EN\">\n<html>\n"
                       "<head><title>Index of /export/dump</title></head>\n<body>\n"
                       "<h1>Index of /export/dump</h1>\n"
                       "<pre><img src=\"/icons/blank.gif\" alt=\"Icon \"> "
                       "<a href=\"?C=N;O=D\">Name</a> <a href=\"?C=M;O=A\">Last modified</a><hr>"
                       "<img src=\"/icons/back.gif\" alt=\"[PARENTDIR]\"> "
                       "<a href=\"/export/\">Parent Directory</a>\n";
    for (const auto& [name, bytes] : documents_) {
        const bool zip = isZip(name);
        page += fmt::format("<img src=\"/icons/{}.gif\" alt=\"{}\"> <a href=\"{}\">{}</a>"
                            "  2025-11-19 03:05  {:3}K  \n",
                            zip ? "compressed" : "text", zip ? "[   ]" : "[TXT]", name, name,
                            (bytes.size() + 1023) / 1024);
    }
    return page + "<hr></pre>\n</body></html>\n";
}

} // namespace tremor::practice
