#include "database/file_identity.h"
#include "support/fakes.h"

#include <filesystem>
#include <fstream>

namespace tremor {
namespace {

class FileIdentityTest : public ::testing::Test {
  protected:
    FileIdentityTest() {
        std::ofstream(one) << "text";
        std::ofstream(other) << "text";
    }

    testing::TemporaryFolder folder;
    const std::string one = folder.file("one");
    const std::string other = folder.file("other");
};

TEST_F(FileIdentityTest, TellsFilesOfTheSameTextApart) {
    ASSERT_TRUE(identityOf(one));
    EXPECT_EQ(identityOf(one), identityOf(one));
    EXPECT_NE(identityOf(one), identityOf(other));
}

TEST_F(FileIdentityTest, IsTheSameUnderEveryNameOfAFile) {
    std::filesystem::create_hard_link(one, folder.file("second"));
    std::filesystem::create_symlink(one, folder.file("link"));
    EXPECT_EQ(identityOf(folder.file("second")), identityOf(one));
    EXPECT_EQ(identityOf(folder.file("link")), identityOf(one));
}

TEST_F(FileIdentityTest, IsMissingWhereNoFileIs) {
    EXPECT_EQ(identityOf(folder.file("none")), std::nullopt);
    std::filesystem::create_symlink(folder.file("none"), folder.file("link"));
    EXPECT_EQ(identityOf(folder.file("link")), std::nullopt);
}

} // namespace
} // namespace tremor
