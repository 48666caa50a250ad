#include "ingest/folder_list.h"
#include "ingest/local_fixture.h"
#include "support/error_of.h"
#include "support/time_zone.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <optional>

namespace tremor {
namespace {

namespace fs = std::filesystem;
using testing::errorOf;
using Names = std::vector<std::string>;

class FolderList : public testing::LocalFixture {};

TEST(JoinPath, PutsExactlyOneSeparatorBetween) {
    EXPECT_EQ(joinPath("/a", "b"), "/a/b");
    EXPECT_EQ(joinPath("/a/", "b"), "/a/b");
    EXPECT_EQ(joinPath("/a", ""), "/a/");
}

TEST_F(FolderList, SortsNamesWhateverTheirCase) {
    for (const char* const name : {"b", "C", "a", "B", "_x", "10", "9"})
        put(name, "");
    EXPECT_EQ(files(""), (Names{"10", "9", "_x", "a", "B", "b", "C"}));
    for (const char* const name : {"year/b", "year/C", "year/a"})
        makeFolder(name);
    EXPECT_EQ(folders("year"), (Names{"a", "b", "C"}));
}

TEST_F(FolderList, KeepsFilesAndFoldersApartAndLeavesHiddenOnesOut) {
    put("file", "");
    put(".hidden", "");
    makeFolder("folder");
    makeFolder(".git");
    EXPECT_EQ(files(""), Names{"file"});
    EXPECT_EQ(folders(""), Names{"folder"});
}

TEST_F(FolderList, FollowsLinksToFilesAndFolders) {
    put("file", "");
    makeFolder("folder");
    fs::create_symlink("file", at("to_file"));
    fs::create_symlink("folder", at("to_folder"));
    EXPECT_EQ(files(""), (Names{"file", "to_file"}));
    EXPECT_EQ(folders(""), (Names{"folder", "to_folder"}));
}

TEST_F(FolderList, LeavesOutWhatIsNeitherAFileNorAFolder) {
    fs::create_symlink("nowhere", at("dangling"));
    fs::create_symlink("loop", at("loop"));
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0600), 0);
    fs::create_symlink("/dev/zero", at("device"));
    struct sockaddr_un address {};
    address.sun_family = AF_UNIX;
    at("socket").copy(address.sun_path, sizeof address.sun_path - 1);
    const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(::bind(socket, reinterpret_cast<struct sockaddr*>(&address), sizeof address), 0);
    EXPECT_TRUE(files("").empty());
    EXPECT_TRUE(folders("").empty());
    ::close(socket);
}

TEST_F(FolderList, KeepsNamesThatAreNotUtf8) {
    put("caf\xe9", "");
    makeFolder("\xff\xfe");
    EXPECT_EQ(files(""), Names{"caf\xe9"});
    EXPECT_EQ(folders(""), Names{"\xff\xfe"});
}

TEST_F(FolderList, RaisesTheErrorOfAFolderThatCannotBeListed) {
    put("file", "");
    EXPECT_EQ(errorOf([&] { listFiles(at("missing")); }), ErrorNumber::PathNotFound);
    EXPECT_EQ(errorOf([&] { listFolders(at("file")); }), ErrorNumber::PathNotFound);
    EXPECT_EQ(errorOf([&] { listFiles(at(std::string(5000, 'x'))); }),
              ErrorNumber::PathFileAccessError);
    makeFolder("locked");
    ASSERT_EQ(::chmod(at("locked").c_str(), 0), 0);
    const auto expected = ::geteuid() == 0 ? std::nullopt // the superuser may look everywhere
                                           : std::optional(ErrorNumber::PermissionDenied);
    EXPECT_EQ(errorOf([&] { listFiles(at("locked")); }), expected);
    ASSERT_EQ(::chmod(at("locked").c_str(), 0700), 0);
}

TEST_F(FolderList, RenamesOverAnExistingFile) {
    put("new", "new");
    put("old", "old");
    renameReplacing(at("new"), at("old"));
    EXPECT_EQ(files(""), Names{"old"});
    EXPECT_EQ(textOf("old"), "new");
}

TEST_F(FolderList, KeepsBothWhenARenameIsRefused) {
    put("file", "text");
    put("folder/inside", "");
    EXPECT_EQ(errorOf([&] { renameReplacing(at("file"), at("folder")); }),
              ErrorNumber::PathFileAccessError);
    EXPECT_EQ(errorOf([&] { renameReplacing(at("missing"), at("other")); }),
              ErrorNumber::PathNotFound);
    EXPECT_EQ(textOf("file"), "text");
    EXPECT_TRUE(exists("folder/inside"));
}

TEST_F(FolderList, RenamesToAFreeNameOnly) {
    put("a", "a");
    put("b", "b");
    EXPECT_FALSE(renameUnlessTaken(at("a"), at("b")));
    EXPECT_EQ(textOf("b"), "b");
    EXPECT_TRUE(renameUnlessTaken(at("a"), at("c")));
    EXPECT_EQ(files(""), (Names{"b", "c"}));
}

TEST_F(FolderList, GivesTheDateOfAFileInLocalTime) {
    put("file", "");
    setChanged("file", 1389704726); // 2014-01-14 13:05:26 UTC
    {
        const testing::TimeZone zone("Europe/Rome");
        EXPECT_EQ(fileDateText(at("file")), "2014-01-14 14:05:26");
    }
    const testing::TimeZone zone("America/New_York");
    EXPECT_EQ(fileDateText(at("file")), "2014-01-14 08:05:26");
    setChanged("file", 1405343126); // 2014-07-14 13:05:26 UTC, in summer
    EXPECT_EQ(fileDateText(at("file")), "2014-07-14 09:05:26");
}

TEST_F(FolderList, GivesNoDateForAFileThatHasNone) {
    EXPECT_EQ(fileDateText(at("missing")), "");
    put("file", "");
    setChanged("file", 999999999999); // the year 33658, where the disk can hold it
    const std::string date = fileDateText(at("file"));
    EXPECT_TRUE(date.empty() || date.size() == 19) << date;
}

} // namespace
} // namespace tremor
