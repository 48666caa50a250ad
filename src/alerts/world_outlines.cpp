#include "alerts/world_outlines.h"

#include "core/error_report.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <numbers>

namespace tremor {

namespace {

static_assert(std::endian::native == std::endian::little, "the packed grid is little-endian");

constexpr double northernmostLatitude = 85.0511287798066;
constexpr double southEdge = 0.99999; // the outline of Antarctica leaves the sheet for the pole

[[noreturn]] void refuse() {
    throw RuntimeError(ErrorNumber::UserDefined, "The outlines of the world are damaged.");
}

class OutlineReader {
  public:
    explicit OutlineReader(std::string_view bytes) : rest_(bytes) {}

    double number() {
        double value = 0;
        if (rest_.size() < sizeof value)
            refuse();
        std::memcpy(&value, rest_.data(), sizeof value);
        rest_.remove_prefix(sizeof value);
        if (!std::isfinite(value))
            refuse();
        return value;
    }

    std::uint64_t unsignedNumber() {
        std::uint64_t value = 0;
        for (unsigned shift = 0; shift < 35 && !rest_.empty(); shift += 7) {
            const auto byte = static_cast<unsigned char>(rest_.front());
            rest_.remove_prefix(1);
            value |= static_cast<std::uint64_t>(byte & 0x7F) << shift;
            if (byte < 0x80)
                return value;
        }
        refuse();
    }

    std::int64_t signedNumber() {
        const std::uint64_t value = unsignedNumber();
        const auto half = static_cast<std::int64_t>(value >> 1);
        return (value & 1) != 0 ? -half - 1 : half;
    }

    bool atEnd() const { return rest_.empty(); }

  private:
    std::string_view rest_;
};

struct Grid {
    double west;
    double south;
    double stepX;
    double stepY;
};

// A point takes two bytes at least, so a count that lies cannot ask for much memory.
MercatorLine readLine(OutlineReader& reader, const Grid& grid) {
    MercatorLine line;
    std::int64_t x = 0;
    std::int64_t y = 0;
    for (std::uint64_t left = reader.unsignedNumber(); left > 0; --left) {
        x += reader.signedNumber();
        y += reader.signedNumber();
        line.push_back(mercatorPoint(grid.south + static_cast<double>(y) * grid.stepY,
                                     grid.west + static_cast<double>(x) * grid.stepX));
    }
    return line;
}

MercatorBox boundsOf(const MercatorLine& line) {
    MercatorBox box = {line.front().x, line.front().y, line.front().x, line.front().y};
    for (const MercatorPoint& point : line) {
        box.left = std::min(box.left, point.x);
        box.right = std::max(box.right, point.x);
        box.top = std::min(box.top, point.y);
        box.bottom = std::max(box.bottom, point.y);
    }
    return box;
}

bool overlap(const MercatorBox& a, const MercatorBox& b) {
    return a.left <= b.right && b.left <= a.right && a.top <= b.bottom && b.top <= a.bottom;
}

// One pass of Sutherland and Hodgman: keeps the side of an edge where `side`, which is linear, is
// not negative.
template <class Side>
MercatorLine clipSide(const MercatorLine& ring, Side side) {
    MercatorLine kept;
    if (ring.empty())
        return kept;
    MercatorPoint from = ring.back();
    for (const MercatorPoint& to : ring) {
        const double before = side(from);
        const double here = side(to);
        if ((before < 0) != (here < 0)) {
            const double t = before / (before - here);
            kept.push_back({from.x + t * (to.x - from.x), from.y + t * (to.y - from.y)});
        }
        if (here >= 0)
            kept.push_back(to);
        from = to;
    }
    return kept;
}

MercatorLine clipRing(const MercatorLine& ring, const MercatorBox& box) {
    MercatorLine kept = clipSide(ring, [&](const MercatorPoint& p) { return p.x - box.left; });
    kept = clipSide(kept, [&](const MercatorPoint& p) { return box.right - p.x; });
    kept = clipSide(kept, [&](const MercatorPoint& p) { return p.y - box.top; });
    return clipSide(kept, [&](const MercatorPoint& p) { return box.bottom - p.y; });
}

void addStretches(const MercatorLine& line, const MercatorBox& box,
                  std::vector<MercatorLine>& stretches) {
    bool joined = false;
    for (std::size_t i = 1; i < line.size(); ++i) {
        const MercatorPoint& a = line[i - 1];
        const MercatorPoint& b = line[i];
        const bool shows = overlap({std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x),
                                    std::max(a.y, b.y)},
                                   box) &&
                           a.y < southEdge && b.y < southEdge;
        if (shows && !joined)
            stretches.push_back({a});
        if (shows)
            stretches.back().push_back(b);
        joined = shows;
    }
}

MercatorLine moved(MercatorLine line, double turns) {
    for (MercatorPoint& point : line)
        point.x += turns;
    return line;
}

// Calls `use` for every line, once for each turn of the world in which it meets the box.
template <class Use>
void readLines(OutlineReader& reader, const Grid& grid, const MercatorBox& box, Use use) {
    for (std::uint64_t left = reader.unsignedNumber(); left > 0; --left) {
        const MercatorLine line = readLine(reader, grid);
        if (line.empty())
            continue;
        const MercatorBox bounds = boundsOf(line);
        for (const int turns : {-1, 0, 1}) {
            if (overlap({bounds.left + turns, bounds.top, bounds.right + turns, bounds.bottom},
                        box))
                use(turns == 0 ? line : moved(line, turns));
        }
    }
}

} // namespace

MercatorPoint mercatorPoint(double latitude, double longitude) {
    const double bounded = std::clamp(latitude, -northernmostLatitude, northernmostLatitude);
    const double sine = std::sin(bounded * std::numbers::pi / 180);
    return {longitude / 360 + 0.5,
            0.5 - std::log((1 + sine) / (1 - sine)) / (4 * std::numbers::pi)};
}

double mercatorLatitude(double y) {
    return std::atan(std::sinh(2 * std::numbers::pi * (0.5 - y))) * 180 / std::numbers::pi;
}

WorldOutlines outlinesWithin(std::string_view packed, const MercatorBox& box) {
    OutlineReader reader(packed);
    Grid grid{};
    grid.west = reader.number();
    grid.south = reader.number();
    grid.stepX = reader.number();
    grid.stepY = reader.number();
    WorldOutlines outlines;
    readLines(reader, grid, box, [&](const MercatorLine& ring) {
        outlines.land.push_back(clipRing(ring, box));
        addStretches(ring, box, outlines.coasts);
    });
    readLines(reader, grid, box,
              [&](const MercatorLine& border) { addStretches(border, box, outlines.borders); });
    if (!reader.atEnd())
        refuse();
    return outlines;
}

} // namespace tremor
