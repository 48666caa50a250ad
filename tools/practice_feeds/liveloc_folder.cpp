#include "practice_feeds/liveloc_folder.h"

#include "practice_feeds/whole_file.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <filesystem>
#include <utility>

namespace tremor::practice {

namespace {

using namespace std::chrono_literals;

// One in so many events has too few arrivals for a location.
constexpr int unlocatedEach = 4;

} // namespace

std::string nordicHeader(const FdsnEvent& event, bool located) {
    const std::string location = located ? fmt::format("{:7.3f}{:8.3f}{:5.1f}", event.latitude,
                                                       event.longitude, event.depth())
                                         : std::string();
    // Tenths are cut, so that no minute has 60 seconds.
    const double seconds = static_cast<double>(event.time.time_since_epoch() / 100ms % 600) / 10;
    const std::string line =
        fmt::format(" {:%Y %m%d %H%M} {:4.1f} L {:20}  LOC  6 0.7{:4.1f}LLOC",
                    calendarTime(event.time), seconds, location, event.magnitude);
    return fmt::format("{:79}1", line);
}

LivelocFolder::LivelocFolder(std::string folder, GrowingCatalogue catalogue)
    : folder_(std::move(folder)), catalogue_(std::move(catalogue)) {
    for (const char* name : {"/CAT", "/LOG"})
        std::filesystem::create_directories(folder_ + name);
    for (const FdsnEvent& event : catalogue_.events())
        write(event);
}

void LivelocFolder::advance() {
    const std::lock_guard lock(mutex_);
    const std::size_t added = catalogue_.advance();
    const auto& events = catalogue_.events();
    for (std::size_t i = events.size() - added; i < events.size(); ++i)
        write(events[i]);
}

std::string LivelocFolder::addEvent(const EventWish& wish) {
    const std::lock_guard lock(mutex_);
    return write(catalogue_.addEvent(wish));
}

std::string LivelocFolder::write(const FdsnEvent& event) {
    const bool located = ++written_ % unlocatedEach != 0;
    const std::string path = fmt::format("{}/{:%Y/%m}", folder_, calendarTime(event.time));
    std::filesystem::create_directories(path);
    std::string file = fmt::format("{}/{:%d-%H%M-%S}L.S{:%Y%m}", path, calendarTime(event.time),
                                   calendarTime(event.time));
    writeWholeFile(file, nordicHeader(event, located) + "\n" +
                             fmt::format(" {:79}\n", "STAT SP IPHASW D HRMM SECON CODA AMPLIT PERI "
                                                     "AZIMU VELO AIN AR TRES W  DIS CAZ7") +
                             fmt::format("{:80}\n", ""));
    return file;
}

} // namespace tremor::practice
