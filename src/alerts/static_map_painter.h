#pragma once

#include "alerts/static_map.h"

namespace tremor {

// Draws land, sea, coast lines and borders from Natural Earth, which the program carries, with a
// red marker in the middle, a scale bar and the source's name. Needs no network.
class StaticMapPainter : public StaticMapMaker {
  public:
    std::string drawStaticMap(const StaticMapRequest& request) override;
};

} // namespace tremor
