#include "alerts/newest_event.h"

namespace tremor {

std::optional<NewestEvent> newestEvent(Database& database) {
    std::optional<NewestEvent> event;
    database.slsEach("select Magnitude, UTC, Latitude, Longitude, Depth from Events "
                     "order by UTC desc limit 1",
                     [&](const CurrentRow& row) {
                         const auto text = [&row](int column) {
                             return std::string(row.text(column));
                         };
                         event = {text(1), text(2), text(3), text(4), text(5)};
                         return false;
                     });
    return event;
}

} // namespace tremor
