#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

namespace tremor {

// Tells files apart whatever their names are.
struct FileIdentity {
    dev_t device = 0;
    ino_t inode = 0;
    bool operator==(const FileIdentity&) const = default;
};

// Of the file that the path leads to, links followed; nothing when there is none.
std::optional<FileIdentity> identityOf(const std::string& path);

} // namespace tremor
