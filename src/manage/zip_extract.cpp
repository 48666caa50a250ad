#include "manage/zip_extract.h"

#include "core/descriptor.h"
#include "core/files.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zip.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <system_error>
#include <vector>

namespace tremor {

namespace {

struct DiscardArchive {
    void operator()(zip_t* archive) const { zip_discard(archive); }
};
struct CloseEntry {
    void operator()(zip_file_t* entry) const { zip_fclose(entry); }
};
using Archive = std::unique_ptr<zip_t, DiscardArchive>;
using Entry = std::unique_ptr<zip_file_t, CloseEntry>;

std::string systemReason(int error) {
    return "the file cannot be written: " + std::generic_category().message(error);
}

bool isPlainName(std::string_view name) {
    return !name.empty() && name != "." && name != ".." &&
           name.find_first_of(std::string_view("/\\\0", 3)) == std::string_view::npos;
}

// Archives made on other systems say nothing of the kind.
bool isRegularFile(zip_t* archive, zip_uint64_t index) {
    zip_uint8_t system = 0;
    zip_uint32_t attributes = 0;
    if (zip_file_get_external_attributes(archive, index, 0, &system, &attributes) != 0)
        return false;
    if (system != ZIP_OPSYS_UNIX)
        return true;
    const zip_uint32_t kind = (attributes >> 16) & S_IFMT;
    return kind == 0 || kind == S_IFREG;
}

std::string tooLarge(std::uint64_t maximumBytes) {
    return fmt::format("the unpacked file would exceed {} bytes", maximumBytes);
}

// Copies the entry, whose announced size need not be true.
std::string copyEntry(zip_file_t* entry, Descriptor& target,
                      const std::function<void()>& whileWorking, std::uint64_t maximumBytes) {
    std::vector<char> block(std::size_t{1} << 16);
    for (std::uint64_t total = 0;;) {
        const zip_int64_t count = zip_fread(entry, block.data(), block.size());
        if (count < 0)
            return fmt::format("the archive is damaged: {}", zip_file_strerror(entry));
        if (count == 0)
            return target.close() ? std::string() : systemReason(errno);
        total += static_cast<std::uint64_t>(count);
        if (total > maximumBytes)
            return tooLarge(maximumBytes);
        const int error = target.write({block.data(), static_cast<std::size_t>(count)});
        if (error != 0)
            return systemReason(error);
        whileWorking();
    }
}

// As unzip, into `path`; a part of the file can be left.
std::string unzipInto(const std::string& path, const std::string& zipFile, const std::string& entry,
                      const std::function<void()>& whileWorking, std::uint64_t maximumBytes) {
    int error = 0;
    const Archive archive(zip_open(zipFile.c_str(), ZIP_RDONLY, &error));
    if (!archive) {
        zip_error_t reason;
        zip_error_init_with_code(&reason, error);
        std::string text =
            fmt::format("the archive cannot be read: {}", zip_error_strerror(&reason));
        zip_error_fini(&reason);
        return text;
    }
    const zip_int64_t place = zip_name_locate(archive.get(), entry.c_str(), ZIP_FL_ENC_GUESS);
    if (place < 0)
        return fmt::format("the archive holds no file {}", entry);
    const auto index = static_cast<zip_uint64_t>(place);
    if (!isRegularFile(archive.get(), index))
        return fmt::format("{} is no regular file", entry);
    zip_stat_t status;
    zip_stat_init(&status);
    if (zip_stat_index(archive.get(), index, 0, &status) == 0 &&
        (status.valid & ZIP_STAT_SIZE) != 0 && status.size > maximumBytes)
        return tooLarge(maximumBytes);
    const Entry opened(zip_fopen_index(archive.get(), index, 0));
    if (!opened)
        return fmt::format("the archive cannot be read: {}", zip_strerror(archive.get()));
    // Whoever has put a file or a link there meanwhile gets nothing.
    Descriptor target(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!target.isOpen())
        return systemReason(errno);
    return copyEntry(opened.get(), target, whileWorking, maximumBytes);
}

} // namespace

std::string zipFileName(std::string_view name) {
    constexpr std::string_view extension = ".ZIP";
    std::string end(name.substr(name.size() - std::min(name.size(), extension.size())));
    for (char& c : end)
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    return std::string(name) + (end == extension ? "" : std::string(extension));
}

std::string unzip(std::string_view zipFile, std::string_view targetFolder, std::string_view entry,
                  const std::function<void()>& whileWorking, std::uint64_t maximumBytes) {
    if (!isPlainName(entry))
        return "the name in the archive is no plain file name";
    const std::string path = std::string(targetFolder).append(entry);
    DeleteFileText(path);
    std::string reason =
        unzipInto(path, zipFileName(zipFile), std::string(entry), whileWorking, maximumBytes);
    if (!reason.empty())
        DeleteFileText(path);
    return reason;
}

} // namespace tremor
