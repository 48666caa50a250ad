#include "ingest/folder_list.h"

#include "core/dates.h"
#include "core/files.h"

#include <fcntl.h>
#include <stdio.h>
#include <strings.h>
#include <sys/stat.h>
#include <time.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <system_error>

namespace tremor {

namespace {

bool comesBefore(const std::string& left, const std::string& right) {
    const int order = ::strcasecmp(left.c_str(), right.c_str());
    return order != 0 ? order < 0 : left < right;
}

template <class Wanted>
std::vector<std::string> namesIn(const std::string& path, Wanted&& wanted) {
    std::vector<std::string> names;
    std::error_code error;
    std::filesystem::directory_iterator entry(path, error);
    while (!error && entry != std::filesystem::directory_iterator()) {
        std::string name = entry->path().filename().string();
        std::error_code unknown; // of one entry alone, such as a link that leads nowhere
        if (!name.starts_with('.') && wanted(entry->status(unknown)))
            names.push_back(std::move(name));
        entry.increment(error);
    }
    if (error)
        raiseWriteError(error.value());
    std::sort(names.begin(), names.end(), comesBefore);
    return names;
}

} // namespace

std::string joinPath(std::string_view folder, std::string_view name) {
    std::string path(folder);
    if (!path.ends_with('/'))
        path += '/';
    return path.append(name);
}

std::vector<std::string> listFolders(const std::string& path) {
    return namesIn(path, [](auto status) { return std::filesystem::is_directory(status); });
}

std::vector<std::string> listFiles(const std::string& path) {
    return namesIn(path, [](auto status) { return std::filesystem::is_regular_file(status); });
}

void renameReplacing(const std::string& from, const std::string& to) {
    if (::rename(from.c_str(), to.c_str()) != 0)
        raiseWriteError(errno);
}

bool renameUnlessTaken(const std::string& from, const std::string& to) {
    return ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0;
}

std::string fileDateText(const std::string& path) {
    constexpr int yearsBefore = 1900; // what tm_year counts from
    constexpr int lastYear = 9999;
    struct stat status {};
    struct tm civil {};
    if (::stat(path.c_str(), &status) != 0 ||
        ::localtime_r(&status.st_mtim.tv_sec, &civil) == nullptr || civil.tm_year < -yearsBefore ||
        civil.tm_year > lastYear - yearsBefore)
        return {};
    return dateToText(DateTime(std::chrono::seconds(status.st_mtim.tv_sec + civil.tm_gmtoff)));
}

} // namespace tremor
