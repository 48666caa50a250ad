#pragma once

#include "core/number_locale.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

// The look of a marker: a lookup of depth and magnitude. All bounds are inclusive and the first
// class that matches wins, so that a depth of exactly 5 km belongs to "0 to 5".
namespace tremor {

// Number of the class that holds the value, from 0. The first class begins at 0, each other one at
// the upper bound of the one before; nothing below 0 and above the last bound.
std::optional<std::size_t> classOf(double value, std::span<const double> upperBounds);

// The number in the names of the pin images, "14" for magnitudes from 0 to 1 up to "58" for those
// from 7 to 10; nothing outside 0 to 10.
std::optional<std::string_view> pinNumber(double magnitude);

// The list of the markers' looks, "'yellow'#FFFFFF'" with circles, else "'y_14.png'o_58.png'".
// `depths` (km) and `magnitudes` are dot texts, elements of split marker lists: element 0 is left
// out, the empty one behind the last value is looked up like any other.
//
// An event outside all classes gets no entry, so that the list is shorter than the others. With
// circles a magnitude of 0 is white, and its element becomes "2".
std::string colorImageEvents(std::span<const std::string_view> depths,
                             std::span<std::string_view> magnitudes, bool circles,
                             const NumberLocale& locale);

} // namespace tremor
