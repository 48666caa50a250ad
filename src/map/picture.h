#pragma once

#include <cstdint>
#include <vector>

namespace tremor {

// The pixels of a picture, row by row from the top: red, green, blue, one byte each.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> rgb; // 3 * width * height
};

} // namespace tremor
