#include "map/map_snapshots.h"

#include "core/files.h"
#include "map/workspace_page_name.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <optional>
#include <span>
#include <utility>

namespace tremor {
namespace {

constexpr std::string_view module = "Form - panel";
constexpr std::int32_t jpeg = 2;
constexpr int scrollBarWidth = 17; // pixels
constexpr int edgeWidth = 2;
constexpr std::size_t bytesPerPixel = 3;

// A page that has not been painted yet. A map has at least its attribution.
bool isBlank(const Picture& picture) {
    const std::span pixels(picture.rgb);
    return std::equal(pixels.begin() + bytesPerPixel, pixels.end(), pixels.begin());
}

std::optional<Picture> withoutRightEdge(std::optional<Picture> whole) {
    const int width = whole ? whole->width - scrollBarWidth - edgeWidth : 0;
    if (width <= 0 || whole->rgb.empty() || isBlank(*whole))
        return std::nullopt;
    const std::size_t oldRow = bytesPerPixel * static_cast<std::size_t>(whole->width);
    const std::size_t row = bytesPerPixel * static_cast<std::size_t>(width);
    for (std::size_t y = 1; y < static_cast<std::size_t>(whole->height); ++y)
        std::copy_n(&whole->rgb[y * oldRow], row, &whole->rgb[y * row]);
    whole->rgb.resize(row * static_cast<std::size_t>(whole->height));
    whole->width = width;
    return whole;
}

// Each entry is a line of its own that is printed as one, hence the empty lines.
std::string lastEventsText(const SnapshotEvent& event, const std::vector<std::string>& towns) {
    std::string text =
        fmt::format("UTC: {} | LATLNG({},{}) | Mg. {} | Depth. {}\r\n\r\n", event.UTC,
                    event.latitude, event.longitude, event.magnitude, event.depth);
    for (const std::string& town : towns)
        text += town + "\r\n\r\n";
    return text;
}

} // namespace

MapSnapshots::MapSnapshots(std::string applicationPath, SnapshotSurroundings& surroundings,
                           PictureSaver save, ErrorReport& errors)
    : applicationPath_(std::move(applicationPath)),
      surroundings_(surroundings),
      save_(std::move(save)),
      errors_(errors) {}

std::string MapSnapshots::historyFile(std::string_view name) const {
    return fmt::format("{}/History/{}", applicationPath_, name);
}

// True when it was written.
bool MapSnapshots::tellOnce(ProcedureTrace& trace, const std::string& file,
                            const std::function<void()>& write) {
    const bool told = failed_.contains(file);
    bool written = false;
    trace.step([&] {
        try {
            write();
            written = true;
            failed_.erase(file);
        } catch (const RuntimeError&) {
            failed_.insert(file);
            if (!told)
                throw;
        }
    });
    return written;
}

void MapSnapshots::saveJpeg(ProcedureTrace& trace, const std::string& file,
                            const Picture& picture) {
    tellOnce(trace, file, [&] { save_(picture, file, jpeg); });
}

// The old picture goes first, so that none of an earlier event stands beside the new text.
void MapSnapshots::saveLastEvent(ProcedureTrace& trace, const Picture& picture) {
    const std::string file = historyFile("tmplastEvent.jpg");
    DeleteFileText(file);
    if (!PathExists(file))
        saveJpeg(trace, file, picture);
    const std::string text = historyFile("lastEvents.txt");
    tellOnce(trace, text, [&] {
        writeFileAtomically(text, lastEventsText(surroundings_.lastEvent(), surroundings_.towns()),
                            false);
    });
}

void MapSnapshots::mapsInJPG(WebBrowser& browser, SnapshotKind kind, std::string_view name) {
    ProcedureTrace trace(errors_, module, "mapsInJPG");
    if (kind == SnapshotKind::NamedWorkspace && !mayNameWorkspacePage(applicationPath_, name))
        return;
    std::optional<Picture> picture;
    trace.step([&] { picture = withoutRightEdge(browser.picture()); });
    if (!picture)
        return;
    const std::string folder = applicationPath_ + "/History";
    if (!tellOnce(trace, folder, [&] { createFolder(folder); }))
        return;
    if (kind == SnapshotKind::WorkspaceMap)
        saveJpeg(trace, historyFile("tmpcurrent.sr"), *picture);
    else if (kind == SnapshotKind::LastEvent)
        saveLastEvent(trace, *picture);
    else
        saveJpeg(trace, historyFile(fmt::format("current{}.JPG", name)), *picture);
}

void MapSnapshots::TimerCheckScreenshot_Timer() {
    ProcedureTrace trace(errors_, module, "TimerCheckScreenshot_Timer");
    if (surroundings_.takeDocumentReady()) {
        trace.step([&] { surroundings_.onclickEventi(); });
        trace.step([&] {
            surroundings_.pin2gif("select * from Events where " + surroundings_.shownCondition() +
                                  " order by UTC desc limit 1");
        });
    }
    const std::string waiting = historyFile("tmpcurrent.sr");
    if (!FileExists(waiting))
        return;
    const std::string current = historyFile("current.jpg");
    // In one step, so that a reader finds a picture at any moment.
    tellOnce(trace, current, [&] {
        if (std::rename(waiting.c_str(), current.c_str()) != 0)
            raiseWriteError(errno);
    });
}

} // namespace tremor
