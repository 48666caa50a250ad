#pragma once

#include <string_view>

// How every query of the events on display begins; the condition of a search, a workspace or the
// visible map follows.
namespace tremor {

inline constexpr std::string_view selectEvents = "select * from Events where ";

} // namespace tremor
