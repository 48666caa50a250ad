#pragma once

#include <string>

namespace tremor {

// A map picture around a point that is marked. Web Mercator, in which the world is 256 * 2^zoom
// pixels wide.
struct StaticMapRequest {
    double latitude = 0;  // degrees; beyond +-85.05 the edge of the map is shown
    double longitude = 0; // degrees
    int zoom = 0;         // 0 to 20
    int width = 0;        // pixels
    int height = 0;
};

class StaticMapMaker {
  public:
    virtual ~StaticMapMaker() = default;

    // The picture as the bytes of a PNG file; empty when it cannot be encoded. Error 1000 when the
    // outlines of the world cannot be read.
    virtual std::string drawStaticMap(const StaticMapRequest& request) = 0;
};

} // namespace tremor
