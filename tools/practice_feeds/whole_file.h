#pragma once

#include <string>
#include <string_view>

namespace tremor::practice {

// Writes a file so that whoever reads the folder sees all of it or nothing: into a hidden file
// beside it first. Throws std::runtime_error.
void writeWholeFile(const std::string& path, std::string_view text);

} // namespace tremor::practice
