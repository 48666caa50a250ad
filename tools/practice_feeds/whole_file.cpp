#include "practice_feeds/whole_file.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace tremor::practice {

void writeWholeFile(const std::string& path, std::string_view text) {
    const std::filesystem::path target(path);
    const std::filesystem::path unfinished =
        target.parent_path() / ("." + target.filename().string() + ".tmp");
    std::ofstream stream(unfinished, std::ios::binary | std::ios::trunc);
    stream << text;
    stream.close();
    std::error_code error;
    if (stream)
        std::filesystem::rename(unfinished, target, error);
    if (!stream || error)
        throw std::runtime_error("cannot write " + path);
}

} // namespace tremor::practice
