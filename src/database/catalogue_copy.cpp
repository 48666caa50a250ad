#include "database/catalogue_copy.h"

#include "core/files.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <vector>

namespace tremor {

namespace {

constexpr std::size_t pieceSize = 1U << 20U;

using Piece = std::vector<char>;

// Fills the piece from that place of the file, less at its end. 0 or the system's error number.
int readPiece(const Descriptor& file, std::uint64_t place, Piece& piece) {
    piece.resize(pieceSize);
    std::size_t filled = 0;
    while (filled < pieceSize) {
        const ssize_t count = ::pread(file.number(), piece.data() + filled, pieceSize - filled,
                                      static_cast<off_t>(place + filled));
        if (count == 0)
            break;
        if (count > 0)
            filled += static_cast<std::size_t>(count);
        else if (errno != EINTR)
            return errno;
    }
    piece.resize(filled);
    return 0;
}

int writeCopy(const Descriptor& source, const std::string& target,
              const std::function<void()>& afterEachPiece) {
    struct stat status {};
    if (::fstat(source.number(), &status) != 0)
        return errno;
    Descriptor copy(::open(target.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                           S_IRUSR | S_IWUSR));
    if (!copy.isOpen())
        return errno;
    Piece piece;
    for (std::uint64_t place = 0;; place += piece.size()) {
        if (const int error = readPiece(source, place, piece); error != 0)
            return error;
        if (piece.empty())
            break;
        if (const int error = copy.write({piece.data(), piece.size()}); error != 0)
            return error;
        afterEachPiece();
    }
    const bool flushed = ::fchmod(copy.number(), status.st_mode & ACCESSPERMS) == 0 &&
                         ::fsync(copy.number()) == 0 && copy.close();
    return flushed ? 0 : errno;
}

// EIO when the files differ.
int compare(const Descriptor& source, const std::string& target,
            const std::function<void()>& afterEachPiece) {
    const Descriptor copy(::open(target.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    if (!copy.isOpen())
        return errno;
    // So that what the disk holds is compared and not what the system remembers.
    ::posix_fadvise(copy.number(), 0, 0, POSIX_FADV_DONTNEED);
    Piece expected;
    Piece found;
    for (std::uint64_t place = 0;; place += expected.size()) {
        if (const int error = readPiece(source, place, expected); error != 0)
            return error;
        if (const int error = readPiece(copy, place, found); error != 0)
            return error;
        if (expected != found)
            return EIO;
        if (expected.empty())
            return 0;
        afterEachPiece();
    }
}

std::string folderOf(const std::string& path) {
    const std::string folder = std::filesystem::path(path).parent_path().string();
    return folder.empty() ? "." : folder;
}

} // namespace

std::string freeBackupName(const std::string& path) {
    const std::string first = path + "_backup";
    std::string name = first;
    for (int number = 1; PathExists(name); ++number)
        name = fmt::format("{}{}", first, number);
    return name;
}

void copyWholeFile(const Descriptor& source, const std::string& target,
                   const std::function<void()>& afterEachPiece) {
    const std::string incomplete = target + ".incomplete";
    ::unlink(incomplete.c_str()); // left by a crash
    int error = writeCopy(source, incomplete, afterEachPiece);
    if (error == 0)
        error = compare(source, incomplete, afterEachPiece);
    if (error == 0 && std::rename(incomplete.c_str(), target.c_str()) != 0)
        error = errno;
    if (error != 0) {
        ::unlink(incomplete.c_str());
        raiseWriteError(error);
    }
    if (error = flushFolder(folderOf(target)); error != 0) {
        ::unlink(target.c_str());
        raiseWriteError(error);
    }
}

} // namespace tremor
