#pragma once

#include <string_view>
#include <vector>

// Natural Earth's coast lines and borders (1:10m, naturalearthdata.com, public domain), as the
// build packs them from the data of the maps engine (src/map/engine/bundle/pack_outlines.js).
namespace tremor {

// A place on the Web-Mercator world of width 1: x grows to the east from 180 W, y to the south from
// the northernmost latitude.
struct MercatorPoint {
    double x = 0;
    double y = 0;
};

MercatorPoint mercatorPoint(double latitude, double longitude); // degrees
double mercatorLatitude(double y);                              // degrees

struct MercatorBox {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;
};

using MercatorLine = std::vector<MercatorPoint>;

struct WorldOutlines {
    std::vector<MercatorLine> land;    // rings, cut to the box; holes among them (even-odd)
    std::vector<MercatorLine> coasts;  // open stretches that touch the box
    std::vector<MercatorLine> borders; // the same, between countries
};

// What shows in a box, whose edges may lie beyond the sheet: the world goes on there.
// `packed`: west, south, step of x, step of y as 64-bit floats (little-endian, degrees), then
// unsigned LEB128 numbers, signed ones in zigzag form: number of rings, for each its number of
// points and as many pairs of differences (x, y) in steps; then the same for the border lines.
// Error 1000 for data that end too early, go on too long or hold numbers that cannot be.
WorldOutlines outlinesWithin(std::string_view packed, const MercatorBox& box);

} // namespace tremor
