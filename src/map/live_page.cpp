#include "map/live_page.h"

#include "core/common_text.h"
#include "core/conversions.h"
#include "core/files.h"

#include <fmt/format.h>

#include <utility>

namespace tremor {
namespace {

constexpr std::string_view module = "Module - LivePage";
constexpr std::string_view pageFile = "TremorLedgerLive.html";
constexpr std::string_view partsFolder = "TremorLedgerLive";

// False for a file that cannot be read, too: writing it tells why.
bool hasText(const std::string& path, std::string_view text) {
    try {
        return FileExists(path) && readWholeFile(path, text.size()) == text;
    } catch (const RuntimeError&) {
        return false;
    }
}

void writeIfOther(const std::string& path, std::string_view text) {
    if (!hasText(path, text))
        writeFileAtomically(path, text, false);
}

} // namespace

LivePage::LivePage(const AppSettings& settings, std::string applicationPath, ErrorReport& errors)
    : settings_(settings), applicationPath_(std::move(applicationPath)), errors_(errors) {}

void LivePage::write(const LivePageFiles& files) const {
    ProcedureTrace trace(errors_, module, "LivePage");
    const std::string folder = fmt::format("{}/{}", applicationPath_, partsFolder);
    if (!trace.step([&] { createFolder(folder); }))
        return;
    for (const LivePageFiles::Part& part : files.parts)
        trace.step([&] { writeIfOther(fmt::format("{}/{}", folder, part.name), part.text); });
    trace.step([&] {
        writeIfOther(fmt::format("{}/{}", applicationPath_, pageFile), pageText(files.page));
    });
}

std::string LivePage::pageText(std::string_view page) const {
    const auto degrees = [](double value) { return doubleToText(value, NumberLocale::point()); };
    std::string text = replaceAll(page, "{LATITUDE}", degrees(settings_.CenterLatitude));
    text = replaceAll(text, "{LONGITUDE}", degrees(settings_.CenterLongitude));
    return replaceAll(text, "{ZOOM}", std::to_string(settings_.Zoom));
}

} // namespace tremor
