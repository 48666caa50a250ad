#include "core/files.h"

#include "core/descriptor.h"
#include "core/error_report.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <system_error>

namespace tremor {

namespace {

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

// "PREFIX1234.tmp": the number of the process that wrote it.
std::optional<pid_t> writerOf(std::string_view name, std::string_view prefix) {
    constexpr std::string_view end = ".tmp";
    if (!name.starts_with(prefix) || !name.ends_with(end) ||
        name.size() < prefix.size() + end.size())
        return std::nullopt;
    name.remove_prefix(prefix.size());
    name.remove_suffix(end.size());
    pid_t process = 0;
    const auto [stop, error] = std::from_chars(name.data(), name.data() + name.size(), process);
    if (error != std::errc() || stop != name.data() + name.size() || process <= 0)
        return std::nullopt;
    return process;
}

// What processes that are gone have left behind: a program that is killed cannot tidy up.
void removeAbandoned(const std::filesystem::path& folder, std::string_view prefix) {
    std::error_code ignored;
    for (auto entry = std::filesystem::directory_iterator(folder, ignored);
         entry != std::filesystem::directory_iterator(); entry.increment(ignored)) {
        const auto writer = writerOf(entry->path().filename().string(), prefix);
        if (writer && ::kill(*writer, 0) != 0 && errno == ESRCH)
            ::unlink(entry->path().c_str());
    }
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
    // A file that is too large already is not read first.
    const std::optional<struct stat> status = statusOf(std::string(path));
    if (status && S_ISREG(status->st_mode) &&
        static_cast<std::uint64_t>(status->st_size) > maximumBytes)
        throw RuntimeError(ErrorNumber::OutOfMemory);
    std::string text = readFileHead(path, maximumBytes + 1);
    if (text.size() > maximumBytes)
        throw RuntimeError(ErrorNumber::OutOfMemory);
    return text;
}

std::string readFileHead(std::string_view path, std::uint64_t bytes) {
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
    text.reserve(std::min(static_cast<std::uint64_t>(status.st_size), bytes));
    while (text.size() < bytes) {
        const ssize_t count = ::read(file.number(), buffer.data(),
                                     std::min<std::uint64_t>(buffer.size(), bytes - text.size()));
        if (count == 0)
            break;
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            throw RuntimeError(ErrorNumber::PathFileAccessError);
        text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return text;
}

AtomicFile::AtomicFile(std::string_view path, bool ownerOnly) {
    const std::filesystem::path target = finalTarget(std::filesystem::path(path));
    target_ = target.string();
    // A rename would put a file in the place of a device.
    const std::optional<struct stat> old = statusOf(target_);
    if (old && !S_ISREG(old->st_mode))
        throw RuntimeError(ErrorNumber::PathFileAccessError);

    const std::filesystem::path folder = target.has_parent_path() ? target.parent_path() : ".";
    // Named after its file: others of the same folder may be written while this one is open.
    constexpr std::size_t longestPart = 100; // the file's own name may be as long as any can be
    const std::string prefix =
        fmt::format(".{}-", target.filename().string().substr(0, longestPart));
    removeAbandoned(folder, prefix);
    temporary_ = folder / fmt::format("{}{}.tmp", prefix, ::getpid());
    ::unlink(temporary_.c_str()); // left by a crash of an earlier process of this number
    const mode_t mode = ownerOnly ? S_IRUSR | S_IWUSR : S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH;
    constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    file_ = std::make_unique<Descriptor>(::open(temporary_.c_str(), flags, mode));
    if (file_->isOpen())
        return;
    const int error = errno;
    file_.reset();
    raiseWriteError(error);
}

AtomicFile::~AtomicFile() {
    if (file_ != nullptr)
        ::unlink(temporary_.c_str());
}

void AtomicFile::append(std::string_view text) {
    constexpr std::size_t blockSize = 1U << 20;
    if (block_.empty() && text.size() >= blockSize)
        return writeBlock(text);
    block_ += text;
    if (block_.size() < blockSize)
        return;
    writeBlock(block_);
    block_.clear();
}

void AtomicFile::writeBlock(std::string_view text) {
    if (const int error = file_->write(text); error != 0)
        raiseWriteError(error);
}

void AtomicFile::commit() {
    writeBlock(block_);
    if (::fsync(file_->number()) != 0 || !file_->close() ||
        ::rename(temporary_.c_str(), target_.c_str()) != 0)
        raiseWriteError(errno);
    file_.reset();
    // The new file stands already, so a file system that cannot do this is no error.
    const std::string folder = std::filesystem::path(temporary_).parent_path().string();
    flushFolder(folder);
}

void writeFileAtomically(std::string_view path, std::string_view text, bool ownerOnly) {
    AtomicFile file(path, ownerOnly);
    file.append(text);
    file.commit();
}

int flushFolder(const std::string& path) {
    const Descriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder.isOpen())
        return errno;
    // EINVAL: a file system that has nothing to flush.
    return ::fsync(folder.number()) == 0 || errno == EINVAL ? 0 : errno;
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
    case EBUSY: // locked by another program on a network drive
    case ETXTBSY:
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
