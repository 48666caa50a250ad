#include "database/file_holders.h"

#include "core/error_report.h"
#include "core/files.h"
#include "database/file_identity.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

namespace tremor {

namespace {

namespace fs = std::filesystem;

// Folders that vanish or may not be read, as those of other users' processes, count as empty.
std::vector<fs::path> entriesOf(const fs::path& folder, std::error_code& error) {
    std::vector<fs::path> entries;
    fs::directory_iterator entry(folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error))
        entries.push_back(entry->path());
    return entries;
}

bool isProcess(const fs::path& folder) {
    const std::string name = folder.filename();
    return name.find_first_not_of("0123456789") == std::string::npos &&
           name != fmt::format("{}", ::getpid());
}

// The executable's name, cut by the system to 15 characters; empty for a process that has ended.
std::string nameOf(const fs::path& process) {
    constexpr std::uint64_t longestName = 4096;
    try {
        const std::string text = readWholeFile((process / "comm").string(), longestName);
        return text.substr(0, text.find('\n'));
    } catch (const RuntimeError&) {
        return {};
    }
}

bool isViewer(std::string name) {
    std::ranges::transform(name, name.begin(), [](char c) {
        return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    });
    return name == "TREMORVIEW" || name == "TREMORVIEW.EXE";
}

bool holds(const fs::path& process, const std::optional<FileIdentity>& file) {
    if (!file)
        return false;
    std::error_code error;
    const std::vector<fs::path> links = entriesOf(process / "fd", error);
    return std::ranges::any_of(links,
                               [&](const fs::path& link) { return identityOf(link) == file; });
}

} // namespace

std::string ListRunningPrograms(std::int32_t& status, const std::string& file,
                                const std::string& processes) {
    std::error_code error;
    const std::vector<fs::path> entries = entriesOf(processes, error);
    status = error ? 1 : 0;
    const std::optional<FileIdentity> identity = identityOf(file);
    std::vector<std::string> names;
    for (const fs::path& entry : entries) {
        if (!isProcess(entry))
            continue;
        std::string name = nameOf(entry);
        if (name.empty() || (!isViewer(name) && !holds(entry, identity)))
            continue;
        if (std::ranges::find(names, name) == names.end())
            names.push_back(std::move(name));
    }
    return fmt::format("{}", fmt::join(names, "\r\n"));
}

} // namespace tremor
