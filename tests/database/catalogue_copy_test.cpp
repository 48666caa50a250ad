#include "core/error_report.h"
#include "core/files.h"
#include "database/catalogue_copy.h"
#include "support/error_of.h"
#include "support/fakes.h"
#include "support/file_size_limit.h"
#include "support/ordinary_user.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <string>

namespace tremor {
namespace {

namespace fs = std::filesystem;
using testing::errorOf;

void nothing() {}

class CatalogueCopy : public ::testing::Test {
  protected:
    static void write(const std::string& file, const std::string& text) {
        std::ofstream(file, std::ios::binary) << text;
    }
    std::optional<ErrorNumber> copy(const std::function<void()>& afterEachPiece = nothing) {
        const Descriptor file(::open(source.c_str(), O_RDONLY | O_CLOEXEC));
        return errorOf([&] { copyWholeFile(file, target, afterEachPiece); });
    }
    bool nothingLeft() const { return !PathExists(target) && !PathExists(target + ".incomplete"); }

    testing::TemporaryFolder folder;
    std::string source = folder.file("catalogue.sqlite");
    std::string target = folder.file("catalogue.sqlite_backup");
};

TEST_F(CatalogueCopy, TakesTheFirstFreeName) {
    EXPECT_EQ(freeBackupName(source), source + "_backup");
    write(source + "_backup", "");
    EXPECT_EQ(freeBackupName(source), source + "_backup1");
    write(source + "_backup1", "");
    fs::create_directory(source + "_backup2");
    EXPECT_EQ(freeBackupName(source), source + "_backup3");
}

TEST_F(CatalogueCopy, HasTheSameBytes) {
    for (const std::size_t size : {0U, 1U, 4096U, (1U << 20U) - 1, 1U << 20U, 3500000U}) {
        std::string text;
        for (std::size_t i = 0; i < size; ++i)
            text += static_cast<char>(i * 7 % 251);
        write(source, text);
        EXPECT_EQ(copy(), std::nullopt);
        EXPECT_EQ(readWholeFile(target), text);
        EXPECT_FALSE(PathExists(target + ".incomplete"));
    }
}

TEST_F(CatalogueCopy, HasTheSamePermissions) {
    write(source, "x");
    for (const mode_t mode : {0600U, 0644U, 0664U, 0640U}) {
        ASSERT_EQ(::chmod(source.c_str(), mode), 0);
        EXPECT_EQ(copy(), std::nullopt);
        EXPECT_EQ(static_cast<mode_t>(fs::status(target).permissions()), mode);
    }
}

TEST_F(CatalogueCopy, TakesThePlaceOfTheRemainsOfACrash) {
    write(source, "new");
    write(target + ".incomplete", "remains");
    EXPECT_EQ(copy(), std::nullopt);
    EXPECT_EQ(readWholeFile(target), "new");
}

TEST_F(CatalogueCopy, DoesNotExistUntilItIsWhole) {
    write(source, std::string(3000000, 'x'));
    int pieces = 0;
    EXPECT_EQ(copy([&] {
                  ++pieces;
                  EXPECT_FALSE(PathExists(target));
              }),
              std::nullopt);
    EXPECT_EQ(pieces, 6); // three written, three compared
}

TEST_F(CatalogueCopy, LeavesNothingWhenTheDiskIsFull) {
    write(source, std::string(3000000, 'x'));
    const testing::FileSizeLimit limit(2500000);
    EXPECT_EQ(copy(), ErrorNumber::DiskFull);
    EXPECT_TRUE(nothingLeft());
}

TEST_F(CatalogueCopy, NoticesWhatTheDiskGotWrong) {
    write(source, std::string(3000000, 'x'));
    int pieces = 0;
    EXPECT_EQ(copy([&] {
                  if (++pieces == 3) // written
                      std::fstream(target + ".incomplete", std::ios::in | std::ios::out)
                          .seekp(2000000)
                          .put('y');
              }),
              ErrorNumber::PathFileAccessError);
    EXPECT_TRUE(nothingLeft());
}

TEST_F(CatalogueCopy, NoticesThatItIsTooShort) {
    write(source, std::string(3000000, 'x'));
    int pieces = 0;
    EXPECT_EQ(copy([&] {
                  if (++pieces == 3)
                      fs::resize_file(target + ".incomplete", 2999999);
              }),
              ErrorNumber::PathFileAccessError);
    EXPECT_TRUE(nothingLeft());
}

TEST_F(CatalogueCopy, IsRefusedWithoutRightsInTheFolder) {
    write(source, "x");
    fs::permissions(folder.path(), fs::perms::owner_read | fs::perms::owner_exec);
    const Descriptor file(::open(source.c_str(), O_RDONLY | O_CLOEXEC));
    std::optional<ErrorNumber> error;
    {
        const testing::OrdinaryUser user;
        error = errorOf([&] { copyWholeFile(file, target, nothing); });
    }
    fs::permissions(folder.path(), fs::perms::owner_all);
    EXPECT_EQ(error, ErrorNumber::PermissionDenied);
    EXPECT_TRUE(nothingLeft());
}

TEST_F(CatalogueCopy, CannotTakeThePlaceOfAFolder) {
    write(source, "x");
    fs::create_directory(target);
    EXPECT_EQ(copy(), ErrorNumber::PathFileAccessError);
    EXPECT_TRUE(fs::is_directory(target));
}

TEST_F(CatalogueCopy, OfWhatIsNoFileFails) {
    source = folder.path();
    EXPECT_EQ(copy(), ErrorNumber::PathFileAccessError);
    source = folder.file("missing");
    EXPECT_EQ(copy(), ErrorNumber::PathFileAccessError);
    EXPECT_TRUE(nothingLeft());
}

} // namespace
} // namespace tremor
