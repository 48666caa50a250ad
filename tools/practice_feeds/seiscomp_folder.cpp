#include "practice_feeds/seiscomp_folder.h"

#include "practice_feeds/epicentres.h"
#include "practice_feeds/whole_file.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <utility>

namespace tremor::practice {

namespace {

using namespace std::chrono_literals;

constexpr int relocations = 3;
// All of them happen within the first hour.
constexpr std::chrono::milliseconds longestGap = 15min;

} // namespace

std::string seisCompBulletin(const FdsnEvent& event) {
    return fmt::format("\n Autoloc alert practice{}: determined by 6 stations, type A\n\n"
                       " LocSAT solution (with start solution, 6 stations used, weight 6):\n\n"
                       "  {}  {}={:.1f}  {:%Y/%m/%d  %H:%M:%S}  {:.2f} {}  {:.2f} {}  {:.0f} km\n\n"
                       " RMS-ERR:         0.77\n\n",
                       event.id, event.place(), event.magnitudeType(), event.magnitude,
                       calendarTime(event.time), std::abs(event.latitude),
                       event.latitude < 0 ? 'S' : 'N', std::abs(event.longitude),
                       event.longitude < 0 ? 'W' : 'E', event.depth());
}

SeisCompFolder::SeisCompFolder(std::string folder, GrowingCatalogue catalogue)
    : folder_(std::move(folder)),
      catalogue_(std::move(catalogue)),
      relocationGap_(std::min(catalogue_.interval() / (relocations + 1), longestGap)) {
    std::filesystem::create_directories(folder_);
    for (const FdsnEvent& event : catalogue_.events())
        write(event);
}

void SeisCompFolder::advance() {
    const std::lock_guard lock(mutex_);
    const std::size_t added = catalogue_.advance();
    const auto& events = catalogue_.events();
    for (std::size_t i = events.size() - added; i < events.size(); ++i)
        write(events[i]);
    if (relocationGap_ > 0ms && relocationsLeft_ > 0 && !catalogue_.isHeld() &&
        catalogue_.now() >= nextRelocation_)
        relocate();
}

std::string SeisCompFolder::addEvent(const EventWish& wish) {
    const std::lock_guard lock(mutex_);
    return write(catalogue_.addEvent(wish));
}

std::string SeisCompFolder::relocateLatest() {
    const std::lock_guard lock(mutex_);
    return relocate();
}

std::string SeisCompFolder::write(const FdsnEvent& event) {
    std::string file = fileOf(event);
    std::filesystem::create_directory(std::filesystem::path(file).parent_path());
    writeWholeFile(file, seisCompBulletin(event));
    latest_ = event;
    relocationsLeft_ = relocations;
    nextRelocation_ = catalogue_.now() + relocationGap_;
    return file;
}

std::string SeisCompFolder::relocate() {
    --relocationsLeft_;
    nextRelocation_ = catalogue_.now() + relocationGap_;
    std::string file = fileOf(latest_);
    if (!std::filesystem::exists(file))
        return {};
    latest_ = relocated(latest_, random_);
    writeWholeFile(file, seisCompBulletin(latest_));
    return file;
}

std::string SeisCompFolder::fileOf(const FdsnEvent& event) const {
    return fmt::format("{}/ev{:%Y%m%d%H%M%S}/last", folder_, calendarTime(event.time));
}

} // namespace tremor::practice
