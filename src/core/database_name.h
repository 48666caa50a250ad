#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tremor {

// Judges a name typed for a new catalogue (UTF-8, without extension): 0 it is good, 1 it is empty
// or holds a character that file names and statements do not bear, 2 the question was cancelled
// (no text at all).
std::int32_t checkNameDB(const std::optional<std::string>& name);

} // namespace tremor
