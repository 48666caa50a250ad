#pragma once

#include "core/map_bounds.h"

#include <string>

namespace tremor {

// The view of the workspace map, as the page wrote it.
struct MapView {
    MapBounds bounds;
    std::string centreLatitude;
    std::string centreLongitude;
    std::string zoom;
};

} // namespace tremor
