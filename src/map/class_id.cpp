#include "map/class_id.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cstddef>

namespace tremor {
namespace {

constexpr std::string_view form = "{00000000-0000-0000-0000-000000000000}";

// The number whose digits begin at `position`, where there are enough of them.
template <class Number>
Number hexAt(std::string_view text, std::size_t position) {
    Number number = 0;
    const char* const begin = text.data() + position;
    std::from_chars(begin, begin + 2 * sizeof(Number), number, 16);
    return number;
}

bool isHexDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

} // namespace

std::string CLSIDToString(const ClassId& id) {
    const auto& tail = id.data4;
    return fmt::format("{{{:08X}-{:04X}-{:04X}-{:02X}{:02X}-{:02X}{:02X}{:02X}{:02X}{:02X}{:02X}}}",
                       id.data1, id.data2, id.data3, tail[0], tail[1], tail[2], tail[3], tail[4],
                       tail[5], tail[6], tail[7]);
}

std::optional<ClassId> StringToCLSID(std::string_view text) {
    const auto fits = [](char c, char place) { return place == '0' ? isHexDigit(c) : c == place; };
    if (!std::equal(text.begin(), text.end(), form.begin(), form.end(), fits))
        return std::nullopt;
    ClassId id{hexAt<std::uint32_t>(text, 1), hexAt<std::uint16_t>(text, 10),
               hexAt<std::uint16_t>(text, 15)};
    constexpr std::array<std::size_t, 8> places{20, 22, 25, 27, 29, 31, 33, 35};
    for (std::size_t i = 0; i < places.size(); ++i)
        id.data4[i] = hexAt<std::uint8_t>(text, places[i]);
    return id;
}

} // namespace tremor
