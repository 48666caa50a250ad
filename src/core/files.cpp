#include "core/files.h"

#include "core/error_report.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

namespace tremor {

namespace {

// An open file that is closed at the end of its block.
class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() {
        if (number_ >= 0)
            ::close(number_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    bool isOpen() const { return number_ >= 0; }
    int number() const { return number_; }

    // Closes now; false when the system reports an error that it had kept back until then.
    bool close() { return ::close(std::exchange(number_, -1)) == 0; }

  private:
    int number_;
};

// What the path names, links followed.
std::optional<struct stat> statusOf(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0)
        return std::nullopt;
    return status;
}

// The file that a chain of symbolic links ends in, whether it exists or not.
std::filesystem::path finalTarget(std::filesystem::path path) {
    constexpr int longestChain = 40; // the system's own limit
    for (int links = 0; links < longestChain; ++links) {
        std::error_code error;
        const std::filesystem::path link = std::filesystem::read_symlink(path, error);
        if (error)
            return path;
        path = path.parent_path() / link;
    }
    throw RuntimeError(ErrorNumber::PathFileAccessError);
}

// Writes a new file and flushes it to the disk. Gives the system's error number, 0 for none.
int writeNewFile(const std::string& path, std::string_view text, mode_t mode) {
    Descriptor file(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
    if (!file.isOpen())
        return errno;
    while (!text.empty()) {
        const ssize_t written = ::write(file.number(), text.data(), text.size());
        if (written >= 0)
            text.remove_prefix(static_cast<std::size_t>(written));
        else if (errno != EINTR)
            return errno;
    }
    return ::fsync(file.number()) == 0 && file.close() ? 0 : errno;
}

// Makes a rename in the folder last through a loss of power. The new file stands already, so a
// file system that cannot do it is no error.
void flushFolder(const std::string& path) {
    const Descriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.isOpen())
        ::fsync(folder.number());
}

// True when the path is a folder that belongs to the user alone, made now or earlier. In a shared
// temporary folder somebody else may have taken the name or put a link there.
bool isPrivateFolder(const std::string& path) {
    if (::mkdir(path.c_str(), S_IRWXU) != 0 && errno != EEXIST)
        return false;
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0 || !S_ISDIR(status.st_mode) ||
        status.st_uid != ::geteuid())
        return false;
    return (status.st_mode & ALLPERMS) == S_IRWXU || ::chmod(path.c_str(), S_IRWXU) == 0;
}

std::string withSlash(std::string path) {
    if (!path.ends_with('/'))
        path += '/';
    return path;
}

} // namespace

bool FileExists(std::string_view path) {
    const std::optional<struct stat> status = statusOf(std::string(path));
    return status && !S_ISDIR(status->st_mode);
}

bool PathExists(std::string_view path) {
    return statusOf(std::string(path)).has_value();
}

bool DeleteFileText(std::string_view path) {
    ::unlink(std::string(path).c_str());
    return true;
}

std::string GetTmpFolder(std::string_view applicationPath) {
    constexpr int namesToTry = 100;
    const char* const wanted = std::getenv("TMPDIR");
    const std::string base =
        fmt::format("{}tremorledger-{}",
                    withSlash(wanted != nullptr && *wanted != '\0' ? wanted : "/tmp"), ::geteuid());
    std::string path = base;
    for (int number = 1; number <= namesToTry; ++number) {
        if (isPrivateFolder(path))
            return withSlash(path);
        path = fmt::format("{}-{}", base, number);
    }
    return withSlash(std::string(applicationPath));
}

std::string GetSystemFolder() {
    return "/usr/lib";
}

std::string readWholeFile(std::string_view path, std::uint64_t maximumBytes) {
    // Without O_NONBLOCK opening a pipe would wait for a writer.
    const Descriptor file(::open(std::string(path).c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!file.isOpen())
        throw RuntimeError(errno == ENOENT || errno == ENOTDIR ? ErrorNumber::FileNotFound
                                                               : ErrorNumber::PathFileAccessError);
    struct stat status {};
    if (::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode))
        throw RuntimeError(ErrorNumber::PathFileAccessError);

    std::string text;
    std::array<char, 65536> buffer{};
    text.reserve(std::min(static_cast<std::uint64_t>(status.st_size), maximumBytes));
    for (;;) {
        const ssize_t count = ::read(file.number(), buffer.data(), buffer.size());
        if (count == 0)
            return text;
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            throw RuntimeError(ErrorNumber::PathFileAccessError);
        text.append(buffer.data(), static_cast<std::size_t>(count));
        if (text.size() > maximumBytes)
            throw RuntimeError(ErrorNumber::OutOfMemory);
    }
}

void writeFileAtomically(std::string_view path, std::string_view text, bool ownerOnly) {
    const std::filesystem::path target = finalTarget(std::filesystem::path(path));
    // A rename would put a file in the place of a device.
    const std::optional<struct stat> old = statusOf(target.string());
    if (old && !S_ISREG(old->st_mode))
        throw RuntimeError(ErrorNumber::PathFileAccessError);

    const std::filesystem::path folder = target.has_parent_path() ? target.parent_path() : ".";
    const std::string temporary = folder / fmt::format(".tremorledger-{}.tmp", ::getpid());
    ::unlink(temporary.c_str()); // left by a crash of an earlier process of this number
    const mode_t mode = ownerOnly ? S_IRUSR | S_IWUSR : S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH;
    int error = writeNewFile(temporary, text, mode);
    if (error == 0 && ::rename(temporary.c_str(), target.c_str()) != 0)
        error = errno;
    if (error != 0) {
        ::unlink(temporary.c_str());
        raiseWriteError(error);
    }
    flushFolder(folder);
}

void raiseWriteError(int systemError) {
    switch (systemError) {
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        throw RuntimeError(ErrorNumber::DiskFull);
    case EACCES:
    case EPERM:
    case EROFS:
        throw RuntimeError(ErrorNumber::PermissionDenied);
    case ENOENT:
    case ENOTDIR:
        throw RuntimeError(ErrorNumber::PathNotFound);
    default:
        throw RuntimeError(ErrorNumber::PathFileAccessError);
    }
}

void createFolder(std::string_view path) {
    std::error_code error;
    std::filesystem::create_directories(std::filesystem::path(path), error);
    if (error)
        throw RuntimeError(ErrorNumber::PathFileAccessError);
}

std::string lastPathComponent(std::string_view path) {
    return std::string(path.substr(path.find_last_of("/\\") + 1));
}

} // namespace tremor
