#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

// Files. Paths are UTF-8 bytes with "/" as separator.
namespace tremor {

class Descriptor;

// True when the path exists and is no directory.
bool FileExists(std::string_view path);

// True when the path exists, a folder as well as a file.
bool PathExists(std::string_view path);

// Deletes a file and ignores every error. Always true: who must know asks PathExists afterwards.
bool DeleteFileText(std::string_view path);

// The user's private folder for downloads, ending in "/", for example "/tmp/tremorledger-1000/":
// made with mode 0700 below TMPDIR, else /tmp. A name that somebody else owns, or that is a link or
// a file, is refused and the next one taken ("tremorledger-1000-1" and so on), so that every call
// gives the same folder. The application path when no folder can be had.
std::string GetTmpFolder(std::string_view applicationPath);

// The folder of the system's own files, without a separator at its end.
std::string GetSystemFolder();

// The whole file, one byte a character. Error 53 when it does not exist, 75 when it cannot be read
// or is no regular file, 7 beyond `maximumBytes`.
std::string readWholeFile(std::string_view path, std::uint64_t maximumBytes = 1ULL << 31);

// The first `bytes` bytes of the file, fewer when it is shorter. Errors 53 and 75 as above.
std::string readFileHead(std::string_view path, std::uint64_t bytes);

// A file that is written piece by piece and takes its place in one step: the text goes to a
// temporary file beside it, is flushed to disk and renamed over it, so that a crash or a full disk
// leaves the old file or the new one, never half of one, and whoever reads the old one meanwhile is
// not disturbed. `ownerOnly` gives mode 0600, else it is 0644 less the umask. A symbolic link at
// `path` is followed to the file it names, which need not exist yet. One at a time for a file.
//
// Each call can raise error 61 (disk full), 70 (permission denied), 75 (any other, a folder or
// device at `path` included) or 76 (no such folder). Without a commit the old file stays.
class AtomicFile {
  public:
    AtomicFile(std::string_view path, bool ownerOnly);
    ~AtomicFile(); // removes the temporary file
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    // Adds to the text; written in blocks of about 1 MiB.
    void append(std::string_view text);

    // Puts the file in its place. Nothing can be added afterwards.
    void commit();

  private:
    void writeBlock(std::string_view text);

    std::string target_;
    std::string temporary_;
    std::unique_ptr<Descriptor> file_; // null: the temporary file is gone or in its place
    std::string block_;
};

// Replaces the file by one with this text, in the way and with the errors of AtomicFile.
void writeFileAtomically(std::string_view path, std::string_view text, bool ownerOnly);

// Makes new, renamed and deleted names in the folder last through a loss of power. 0 or the
// system's error number.
int flushFolder(const std::string& path);

// Raises the runtime error for an `errno` of opening, writing or deleting a file: 61 for a full
// disk, 70 for a refusal, 76 for a folder that is not there, 75 for any other.
[[noreturn]] void raiseWriteError(int systemError);

// Creates the folder (and its parents) unless it is there. Error 75 when that fails.
void createFolder(std::string_view path);

// What follows the last "/" or "\".
std::string lastPathComponent(std::string_view path);

} // namespace tremor
