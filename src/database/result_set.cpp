#include "database/database.h"

#include <limits>

namespace tremor {

std::size_t ResultSet::rowCount() const {
    return names_.empty() ? 0 : ends_.size() / names_.size();
}

std::string_view ResultSet::cell(std::size_t row, std::size_t column) const {
    if (row >= rowCount() || column >= names_.size())
        return {};
    const std::size_t index = row * names_.size() + column;
    const bool opensBlock = column == 0 && row % rowsPerBlock == 0;
    const std::uint32_t begin = opensBlock ? 0 : ends_[index - 1];
    const std::uint64_t block = blockStarts_[row / rowsPerBlock];
    return std::string_view(cells_).substr(block + begin, ends_[index] - begin);
}

std::size_t ResultSet::memoryUse() const {
    return cells_.capacity() + blockStarts_.capacity() * sizeof(blockStarts_[0]) +
           ends_.capacity() * sizeof(ends_[0]);
}

bool ResultSet::append(const char* text, std::size_t length) {
    if (ends_.size() % (rowsPerBlock * names_.size()) == 0)
        blockStarts_.push_back(cells_.size());
    const std::uint64_t end = cells_.size() - blockStarts_.back() + length;
    if (end > std::numeric_limits<std::uint32_t>::max())
        return false;
    cells_.append(text, length);
    ends_.push_back(static_cast<std::uint32_t>(end));
    return true;
}

void ResultSet::dropSpareMemory() {
    const auto shrink = [](auto& container) {
        if (container.capacity() - container.size() > container.size() / 8)
            container.shrink_to_fit();
    };
    shrink(cells_);
    shrink(blockStarts_);
    shrink(ends_);
}

} // namespace tremor
