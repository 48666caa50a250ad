#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace tremor::testing {

// The bytes of a file; empty when it cannot be opened.
inline std::string contentOf(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

// The lines of a text without their ends, "\n" or "\r\n".
inline std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        if (line.ends_with('\r'))
            line.pop_back();
        lines.push_back(line);
    }
    return lines;
}

} // namespace tremor::testing
