#pragma once

#include <cstdint>
#include <string>

namespace tremor {

// The programs that keep a catalogue open, one name a line (CR LF between them): every process
// named TREMORVIEW or TREMORVIEW.EXE, the sibling viewer, in any case, and every other one that has
// the file open, as far as the user may see that. This process is left out, and a name comes once.
// `status` is 1 when the list of processes cannot be read, else 0. `processes` is the folder where
// the system lists them (man 5 proc).
std::string ListRunningPrograms(std::int32_t& status, const std::string& file,
                                const std::string& processes = "/proc");

} // namespace tremor
