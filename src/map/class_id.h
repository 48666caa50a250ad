#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tremor {

// The 128 bits by which picture formats are named.
struct ClassId {
    std::uint32_t data1 = 0;
    std::uint16_t data2 = 0;
    std::uint16_t data3 = 0;
    std::array<std::uint8_t, 8> data4{};
    bool operator==(const ClassId&) const = default;
};

// "{B96B3CAE-0728-11D3-9D7B-0000F81EF32E}": braces and upper case.
std::string CLSIDToString(const ClassId& id);

// The same read back, in either case; nothing for any other text.
std::optional<ClassId> StringToCLSID(std::string_view text);

} // namespace tremor
