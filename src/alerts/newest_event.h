#pragma once

#include "database/database.h"

#include <optional>
#include <string>

namespace tremor {

// The newest event of the catalogue, each text as the catalogue gave it.
struct NewestEvent {
    std::string magnitude;
    std::string utc;
    std::string latitude; // degrees
    std::string longitude;
    std::string depth; // km
};

// Nothing when there is no event, or the catalogue gives no answer.
std::optional<NewestEvent> newestEvent(Database& database);

} // namespace tremor
