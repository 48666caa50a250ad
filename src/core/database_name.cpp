#include "core/database_name.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace tremor {
namespace {

constexpr std::int32_t good = 0;
constexpr std::int32_t refused = 1;
constexpr std::int32_t cancelled = 2;

// Whole UTF-8 forms, so that a byte which two characters share refuses only the listed one.
constexpr auto refusedCharacters = std::to_array<std::string_view>(
    {",", ";", ":", ".", "@", "#", "\u00B0", "\u00A7", "]", "+",  "*",      "[", "^", "'", "=",
     ")", "(", "/", "&", "%", "$", "\u00A3", "\"",     "!", "\\", "\u20AC", "<", ">", " "});

} // namespace

std::int32_t checkNameDB(const std::optional<std::string>& name) {
    if (!name)
        return cancelled;
    const bool isRefused =
        std::any_of(refusedCharacters.begin(), refusedCharacters.end(),
                    [&](std::string_view c) { return name->find(c) != std::string::npos; });
    return name->empty() || isRefused ? refused : good;
}

} // namespace tremor
