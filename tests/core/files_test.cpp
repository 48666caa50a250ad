#include "core/files.h"
#include "support/error_of.h"
#include "support/fakes.h"
#include "support/file_size_limit.h"
#include "support/ordinary_user.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

namespace tremor {
namespace {

namespace fs = std::filesystem;
using testing::errorOf;
using testing::FileSizeLimit;
using testing::OrdinaryUser;
using testing::TemporaryFolder;

void put(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

std::ptrdiff_t entriesIn(const std::string& folder) {
    return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
}

unsigned modeOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777U;
}

// TMPDIR for the length of a test.
class TmpDir {
  public:
    explicit TmpDir(const char* value) {
        if (const char* const old = ::getenv("TMPDIR"))
            before_ = old;
        if (value != nullptr)
            ::setenv("TMPDIR", value, 1);
        else
            ::unsetenv("TMPDIR");
    }
    ~TmpDir() {
        if (before_)
            ::setenv("TMPDIR", before_->c_str(), 1);
        else
            ::unsetenv("TMPDIR");
    }
    TmpDir(const TmpDir&) = delete;
    TmpDir& operator=(const TmpDir&) = delete;

  private:
    std::optional<std::string> before_;
};

class Umask {
  public:
    explicit Umask(mode_t mask) : before_(::umask(mask)) {}
    ~Umask() { ::umask(before_); }
    Umask(const Umask&) = delete;
    Umask& operator=(const Umask&) = delete;

  private:
    mode_t before_;
};

class Files : public ::testing::Test {
  protected:
    TemporaryFolder folder_;
    std::string path_ = folder_.file("a.txt");
};

TEST_F(Files, ExistForFilesButNotForFolders) {
    put(path_, "x");
    EXPECT_TRUE(FileExists(path_));
    EXPECT_FALSE(FileExists(folder_.path()));
    EXPECT_FALSE(FileExists(folder_.file("missing")));
    EXPECT_FALSE(FileExists(path_ + "/below"));
    EXPECT_FALSE(FileExists(""));
}

TEST_F(Files, PathsExistForFilesAndFolders) {
    put(path_, "x");
    EXPECT_TRUE(PathExists(path_));
    EXPECT_TRUE(PathExists(folder_.path()));
    EXPECT_TRUE(PathExists(folder_.path() + "/"));
    EXPECT_FALSE(PathExists(folder_.file("missing")));
    EXPECT_FALSE(PathExists(""));
}

TEST_F(Files, OfABrokenLinkDoNotExist) {
    fs::create_symlink(folder_.file("missing"), path_);
    EXPECT_FALSE(FileExists(path_));
    EXPECT_FALSE(PathExists(path_));
}

TEST_F(Files, AreDeletedAndEveryErrorIsIgnored) {
    put(path_, "x");
    EXPECT_TRUE(DeleteFileText(path_));
    EXPECT_FALSE(PathExists(path_));
    EXPECT_TRUE(DeleteFileText(path_));
    EXPECT_TRUE(DeleteFileText(folder_.path()));
    EXPECT_TRUE(PathExists(folder_.path()));
}

TEST_F(Files, AreReadByteForByte) {
    std::string text;
    for (int i = 0; i < 300000; ++i)
        text += static_cast<char>(i % 256);
    put(path_, text);
    EXPECT_EQ(readWholeFile(path_), text);
    put(path_, "");
    EXPECT_EQ(readWholeFile(path_), "");
}

TEST_F(Files, AreReadUpToTheLimit) {
    put(path_, "12345");
    EXPECT_EQ(readWholeFile(path_, 5), "12345");
    EXPECT_EQ(errorOf([&] { readWholeFile(path_, 4); }), ErrorNumber::OutOfMemory);
}

TEST_F(Files, AreReadUpToTheBytesThatAreWanted) {
    put(path_, "12345");
    EXPECT_EQ(readFileHead(path_, 3), "123");
    EXPECT_EQ(readFileHead(path_, 5), "12345");
    EXPECT_EQ(readFileHead(path_, 100), "12345");
    EXPECT_EQ(readFileHead(path_, 0), "");
    EXPECT_EQ(errorOf([&] { readFileHead(folder_.file("missing"), 3); }),
              ErrorNumber::FileNotFound);
    EXPECT_EQ(errorOf([&] { readFileHead(folder_.path(), 3); }), ErrorNumber::PathFileAccessError);
}

TEST_F(Files, ThatCannotBeReadRaiseAnError) {
    put(path_, "x");
    EXPECT_EQ(errorOf([&] { readWholeFile(folder_.file("missing")); }), ErrorNumber::FileNotFound);
    EXPECT_EQ(errorOf([&] { readWholeFile(path_ + "/below"); }), ErrorNumber::FileNotFound);
    EXPECT_EQ(errorOf([&] { readWholeFile(folder_.path()); }), ErrorNumber::PathFileAccessError);
    EXPECT_EQ(errorOf([&] { readWholeFile("/dev/zero"); }), ErrorNumber::PathFileAccessError);
}

TEST_F(Files, ThatArePipesAreNotWaitedFor) {
    ASSERT_EQ(::mkfifo(path_.c_str(), 0600), 0);
    EXPECT_EQ(errorOf([&] { readWholeFile(path_); }), ErrorNumber::PathFileAccessError);
}

TEST_F(Files, AreWrittenByteForByte) {
    const std::string text("a\0b\r\n\xFF", 6);
    writeFileAtomically(path_, text, false);
    EXPECT_EQ(readWholeFile(path_), text);
    writeFileAtomically(path_, "", false);
    EXPECT_EQ(readWholeFile(path_), "");
    EXPECT_EQ(entriesIn(folder_.path()), 1);
}

TEST_F(Files, AreReplacedByANewFile) {
    put(path_, "old");
    struct stat before {};
    struct stat after {};
    ASSERT_EQ(::stat(path_.c_str(), &before), 0);
    std::ifstream reader(path_);
    writeFileAtomically(path_, "new", false);
    ASSERT_EQ(::stat(path_.c_str(), &after), 0);
    EXPECT_NE(before.st_ino, after.st_ino);
    std::string seen;
    reader >> seen;
    EXPECT_EQ(seen, "old"); // who reads it meanwhile is not disturbed
    EXPECT_EQ(readWholeFile(path_), "new");
}

TEST_F(Files, GetTheModeOfTheirKind) {
    {
        const Umask none(0);
        writeFileAtomically(path_, "x", false);
        EXPECT_EQ(modeOf(path_), 0644U);
        writeFileAtomically(path_, "x", true);
        EXPECT_EQ(modeOf(path_), 0600U);
    }
    const Umask strict(077);
    writeFileAtomically(path_, "x", false);
    EXPECT_EQ(modeOf(path_), 0600U);
}

TEST_F(Files, BehindALinkAreReplacedAndTheLinkStays) {
    fs::create_directory(folder_.file("real"));
    put(folder_.file("real/b.txt"), "old");
    fs::create_symlink("real/b.txt", folder_.file("link"));
    fs::create_symlink(folder_.file("link"), path_);
    writeFileAtomically(path_, "new", true);
    EXPECT_TRUE(fs::is_symlink(path_));
    EXPECT_TRUE(fs::is_symlink(folder_.file("link")));
    EXPECT_EQ(readWholeFile(folder_.file("real/b.txt")), "new");
    EXPECT_EQ(modeOf(folder_.file("real/b.txt")), 0600U);
}

TEST_F(Files, BehindABrokenLinkAreMadeWhereItPoints) {
    fs::create_symlink("b.txt", path_);
    writeFileAtomically(path_, "new", false);
    EXPECT_TRUE(fs::is_symlink(path_));
    EXPECT_EQ(readWholeFile(folder_.file("b.txt")), "new");
}

TEST_F(Files, BehindACircleOfLinksRaiseAnError) {
    fs::create_symlink("b.txt", path_);
    fs::create_symlink("a.txt", folder_.file("b.txt"));
    EXPECT_EQ(errorOf([&] { writeFileAtomically(path_, "x", false); }),
              ErrorNumber::PathFileAccessError);
}

TEST_F(Files, WithARelativePathAreWrittenInTheCurrentFolder) {
    const fs::path before = fs::current_path();
    fs::current_path(folder_.path());
    writeFileAtomically("a.txt", "here", false);
    fs::current_path(before);
    EXPECT_EQ(readWholeFile(path_), "here");
}

TEST_F(Files, InAMissingFolderCannotBeWritten) {
    EXPECT_EQ(errorOf([&] { writeFileAtomically(folder_.file("no/a.txt"), "x", false); }),
              ErrorNumber::PathNotFound);
    put(path_, "x");
    EXPECT_EQ(errorOf([&] { writeFileAtomically(path_ + "/below", "x", false); }),
              ErrorNumber::PathNotFound);
    EXPECT_EQ(readWholeFile(path_), "x");
}

TEST_F(Files, CannotTakeThePlaceOfFoldersAndDevices) {
    fs::create_directory(path_);
    EXPECT_EQ(errorOf([&] { writeFileAtomically(path_, "x", false); }),
              ErrorNumber::PathFileAccessError);
    EXPECT_TRUE(fs::is_directory(path_));
    const std::string pipe = folder_.file("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(errorOf([&] { writeFileAtomically(pipe, "x", false); }),
              ErrorNumber::PathFileAccessError);
    EXPECT_TRUE(fs::is_fifo(pipe));
    EXPECT_EQ(entriesIn(folder_.path()), 2);
}

TEST_F(Files, WithoutRightsInTheFolderRaisePermissionDenied) {
    put(path_, "old");
    fs::permissions(folder_.path(), fs::perms::owner_read | fs::perms::owner_exec);
    std::optional<ErrorNumber> error;
    {
        const OrdinaryUser user;
        error = errorOf([&] { writeFileAtomically(path_, "x", false); });
    }
    fs::permissions(folder_.path(), fs::perms::owner_all);
    EXPECT_EQ(error, ErrorNumber::PermissionDenied);
    EXPECT_EQ(readWholeFile(path_), "old");
}

TEST_F(Files, WithoutTheRightToReadRaiseAnError) {
    put(path_, "x");
    fs::permissions(path_, fs::perms::none);
    const OrdinaryUser user;
    EXPECT_EQ(errorOf([&] { readWholeFile(path_); }), ErrorNumber::PathFileAccessError);
}

TEST_F(Files, KeepTheirOldTextWhenWritingBreaksOff) {
    put(path_, "old");
    {
        const FileSizeLimit limit(4096);
        EXPECT_EQ(errorOf([&] { writeFileAtomically(path_, std::string(10000, 'x'), false); }),
                  ErrorNumber::DiskFull);
    }
    EXPECT_EQ(readWholeFile(path_), "old");
    EXPECT_EQ(entriesIn(folder_.path()), 1);
}

TEST_F(Files, AreWrittenOverTheRemainsOfACrash) {
    const std::string name = fs::path(path_).filename().string();
    put(folder_.file(fmt::format(".{}-{}.tmp", name, ::getpid())), "remains");
    writeFileAtomically(path_, "new", false);
    EXPECT_EQ(readWholeFile(path_), "new");
    EXPECT_EQ(entriesIn(folder_.path()), 1);
}

TEST_F(Files, LeaveNoRemainsOfProcessesThatWereKilled) {
    const pid_t gone = ::fork();
    if (gone == 0)
        ::_exit(0);
    ASSERT_EQ(::waitpid(gone, nullptr, 0), gone);
    const std::string start = "." + fs::path(path_).filename().string() + "-";
    const std::string abandoned = folder_.file(fmt::format("{}{}.tmp", start, gone));
    put(abandoned, "half");
    const std::vector<std::string> others{
        folder_.file(fmt::format("{}{}.tmp", start, ::getppid())), // another program writes it
        folder_.file(fmt::format(".another-{}.tmp", gone)), folder_.file(start + ".tmp"),
        folder_.file(start + "1x.tmp")};
    for (const std::string& other : others)
        put(other, "stays");
    writeFileAtomically(path_, "new", false);
    EXPECT_EQ(readWholeFile(path_), "new");
    EXPECT_FALSE(FileExists(abandoned));
    for (const std::string& other : others)
        EXPECT_TRUE(FileExists(other)) << other;
}

TEST_F(Files, OfOneFolderCanBeWrittenAtTheSameTime) {
    const std::string other = folder_.file("other.txt");
    AtomicFile file(path_, false);
    file.append("outer");
    writeFileAtomically(other, "inner", false);
    file.commit();
    EXPECT_EQ(readWholeFile(path_), "outer");
    EXPECT_EQ(readWholeFile(other), "inner");
    EXPECT_EQ(entriesIn(folder_.path()), 2);
}

TEST_F(Files, WithTheLongestNamesAreWritten) {
    const std::string path = folder_.file(std::string(NAME_MAX, 'n'));
    writeFileAtomically(path, "x", false);
    EXPECT_EQ(readWholeFile(path), "x");
}

TEST_F(Files, WrittenPieceByPieceStandWhenTheyAreComplete) {
    put(path_, "old");
    std::string text;
    {
        AtomicFile file(path_, false);
        for (int i = 0; i < 50000; ++i) {
            const std::string piece(static_cast<std::size_t>(i % 97), static_cast<char>(i));
            file.append(piece);
            text += piece;
        }
        const std::string large(3000000, 'x');
        file.append(large);
        file.append("end");
        text += large + "end";
        EXPECT_EQ(readWholeFile(path_), "old");
        file.commit();
    }
    EXPECT_EQ(readWholeFile(path_), text);
    EXPECT_EQ(entriesIn(folder_.path()), 1);
}

TEST_F(Files, WrittenPieceByPieceLeaveNothingWithoutACommit) {
    put(path_, "old");
    {
        AtomicFile file(path_, false);
        file.append(std::string(2000000, 'x'));
        EXPECT_EQ(entriesIn(folder_.path()), 2);
    }
    EXPECT_EQ(readWholeFile(path_), "old");
    EXPECT_EQ(entriesIn(folder_.path()), 1);
}

TEST_F(Files, WrittenPieceByPieceRaiseAnErrorAsSoonAsTheDiskIsFull) {
    const FileSizeLimit limit(4096);
    AtomicFile file(path_, false);
    file.append("a");
    EXPECT_EQ(errorOf([&] { file.append(std::string(1U << 20, 'x')); }), ErrorNumber::DiskFull);
}

TEST_F(Files, ThatAreTooLargeAreNotReadFirst) {
    put(path_, "");
    fs::resize_file(path_, 1ULL << 40); // without blocks on the disk
    EXPECT_EQ(errorOf([&] { readWholeFile(path_); }), ErrorNumber::OutOfMemory);
}

TEST_F(Files, CreateFolderMakesParentsAndAcceptsWhatIsThere) {
    createFolder(folder_.file("a/b/c"));
    EXPECT_TRUE(fs::is_directory(folder_.file("a/b/c")));
    createFolder(folder_.file("a/b/c"));
    createFolder(folder_.file("a/d/"));
    EXPECT_TRUE(fs::is_directory(folder_.file("a/d")));
}

TEST_F(Files, CreateFolderFailsWhereAFileStands) {
    put(path_, "x");
    EXPECT_EQ(errorOf([&] { createFolder(path_); }), ErrorNumber::PathFileAccessError);
    EXPECT_EQ(errorOf([&] { createFolder(path_ + "/b"); }), ErrorNumber::PathFileAccessError);
    EXPECT_EQ(errorOf([] { createFolder(""); }), ErrorNumber::PathFileAccessError);
}

TEST(LastPathComponent, FollowsTheLastSeparator) {
    EXPECT_EQ(lastPathComponent("/srv/data/events.sqlite"), "events.sqlite");
    EXPECT_EQ(lastPathComponent("C:\\data\\events.sqlite"), "events.sqlite");
    EXPECT_EQ(lastPathComponent("/srv\\events.sqlite"), "events.sqlite");
    EXPECT_EQ(lastPathComponent("events.sqlite"), "events.sqlite");
    EXPECT_EQ(lastPathComponent("/srv/"), "");
    EXPECT_EQ(lastPathComponent(""), "");
}

class GetTmpFolderTest : public ::testing::Test {
  protected:
    TemporaryFolder folder_;
    TmpDir environment_{folder_.path().c_str()};
    std::string name_ = folder_.file(fmt::format("tremorledger-{}", ::geteuid()));
};

TEST_F(GetTmpFolderTest, IsAFolderOfTheUserAlone) {
    const Umask none(0);
    EXPECT_EQ(GetTmpFolder("/app"), name_ + "/");
    EXPECT_TRUE(fs::is_directory(name_));
    EXPECT_EQ(modeOf(name_), 0700U);
}

TEST_F(GetTmpFolderTest, IsTheSameAtEveryCall) {
    const std::string first = GetTmpFolder("/app");
    put(first + "a.csv", "x");
    EXPECT_EQ(GetTmpFolder("/app"), first);
    EXPECT_TRUE(FileExists(first + "a.csv"));
}

TEST_F(GetTmpFolderTest, IsClosedToOthersWhenItWasOpen) {
    fs::create_directory(name_);
    fs::permissions(name_, fs::perms::all);
    EXPECT_EQ(GetTmpFolder("/app"), name_ + "/");
    EXPECT_EQ(modeOf(name_), 0700U);
}

TEST_F(GetTmpFolderTest, RefusesALinkAndAFile) {
    fs::create_directory(folder_.file("elsewhere"));
    fs::create_symlink("elsewhere", name_);
    put(name_ + "-1", "x");
    EXPECT_EQ(GetTmpFolder("/app"), name_ + "-2/");
    EXPECT_EQ(GetTmpFolder("/app"), name_ + "-2/");
    EXPECT_EQ(entriesIn(folder_.file("elsewhere")), 0);
}

TEST_F(GetTmpFolderTest, RefusesAFolderOfSomebodyElse) {
    fs::create_directory(name_);
    if (::chown(name_.c_str(), 65534, 65534) != 0)
        GTEST_SKIP() << "only root can give a folder away";
    EXPECT_EQ(GetTmpFolder("/app"), name_ + "-1/");
    EXPECT_EQ(modeOf(name_ + "-1"), 0700U);
}

TEST_F(GetTmpFolderTest, IsTheApplicationPathWhenNoFolderCanBeMade) {
    const TmpDir missing(folder_.file("missing").c_str());
    EXPECT_EQ(GetTmpFolder("/app"), "/app/");
    EXPECT_EQ(GetTmpFolder("/app/"), "/app/");
}

TEST_F(GetTmpFolderTest, IsBelowTheSystemsFolderWithoutTmpdir) {
    const std::string start = fmt::format("/tmp/tremorledger-{}", ::geteuid());
    const bool wasThere = PathExists(start);
    for (const char* const value : {static_cast<const char*>(nullptr), ""}) {
        const TmpDir environment(value);
        EXPECT_TRUE(GetTmpFolder("/app").starts_with(start));
    }
    if (!wasThere) {
        EXPECT_TRUE(fs::remove(start));
    }
}

TEST(GetSystemFolder, HasNoSeparatorAtItsEnd) {
    EXPECT_TRUE(PathExists(GetSystemFolder()));
    EXPECT_NE(GetSystemFolder().back(), '/');
}

} // namespace
} // namespace tremor
