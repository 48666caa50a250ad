#include "database/database.h"

#include <limits>

namespace tremor {

std::size_t ResultSet::rowCount() const {
    if (blocks_.empty())
        return 0;
    return (blocks_.size() - 1) * rowsPerBlock + blocks_.back().ends.size() / names_.size();
}

std::string_view ResultSet::cell(std::size_t row, std::size_t column) const {
    if (row >= rowCount() || column >= names_.size())
        return {};
    const Block& block = blocks_[row / rowsPerBlock];
    const std::size_t index = row % rowsPerBlock * names_.size() + column;
    const std::uint32_t begin = index == 0 ? 0 : block.ends[index - 1];
    return std::string_view(block.cells).substr(begin, block.ends[index] - begin);
}

std::size_t ResultSet::memoryUse() const {
    std::size_t bytes = blocks_.capacity() * sizeof(Block);
    for (const Block& block : blocks_)
        bytes += block.cells.capacity() + block.ends.capacity() * sizeof(block.ends[0]);
    return bytes;
}

bool ResultSet::append(const char* text, std::size_t length) {
    if (blocks_.empty() || blocks_.back().ends.size() == rowsPerBlock * names_.size()) {
        dropSpareMemory();
        blocks_.emplace_back();
    }
    Block& block = blocks_.back();
    if (length > std::numeric_limits<std::uint32_t>::max() - block.cells.size())
        return false;
    block.cells.append(text, length);
    block.ends.push_back(static_cast<std::uint32_t>(block.cells.size()));
    return true;
}

void ResultSet::dropSpareMemory() {
    if (blocks_.empty())
        return;
    blocks_.back().cells.shrink_to_fit();
    blocks_.back().ends.shrink_to_fit();
}

} // namespace tremor
