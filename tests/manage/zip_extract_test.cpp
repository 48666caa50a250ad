#include "manage/geonames_fixture.h"
#include "manage/zip_extract.h"
#include "support/texts.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace tremor {
namespace {

using testing::contentOf;
using testing::makeZip;

class Unzip : public ::testing::Test {
  protected:
    Unzip() { std::filesystem::create_directory(target); }

    std::string unzip(const std::string& entry = "IT.txt",
                      std::uint64_t maximumBytes = maximumUnzippedBytes) {
        return tremor::unzip(
            zip, target + "/", entry, [this] { ++blocks; }, maximumBytes);
    }
    std::size_t filesInTarget() const {
        using Iterator = std::filesystem::recursive_directory_iterator;
        return static_cast<std::size_t>(std::distance(Iterator(target), Iterator()));
    }
    // Everything below the test's folder: the archive and the target folder, plus what came.
    std::size_t filesInAll() const {
        using Iterator = std::filesystem::recursive_directory_iterator;
        return static_cast<std::size_t>(std::distance(Iterator(folder.path()), Iterator()));
    }

    testing::TemporaryFolder folder;
    std::string zip = folder.file("IT.zip");
    std::string target = folder.file("target");
    int blocks = 0;
};

TEST(ZipFileName, EndsInZipInWhateverCase) {
    EXPECT_EQ(zipFileName("a/IT.zip"), "a/IT.zip");
    EXPECT_EQ(zipFileName("IT.ZiP"), "IT.ZiP");
    EXPECT_EQ(zipFileName("IT"), "IT.ZIP");
    EXPECT_EQ(zipFileName(""), ".ZIP");
    EXPECT_EQ(zipFileName("zip"), "zip.ZIP");
}

TEST_F(Unzip, LeavesTheWholeFileBehindWhenItReturns) {
    const std::string text(300000, 'x');
    makeZip(zip, {{.name = "readme.txt", .bytes = "no"}, {.name = "IT.txt", .bytes = text}});
    EXPECT_EQ(unzip(), "");
    EXPECT_EQ(contentOf(target + "/IT.txt"), text);
    EXPECT_EQ(filesInTarget(), 1U) << "only the wanted file is unpacked";
    EXPECT_GT(blocks, 1);
}

TEST_F(Unzip, ReadsAnArchiveOfTheService) {
    zip = TREMOR_TEST_DATA "/geonames/AD.zip";
    EXPECT_EQ(unzip("AD.txt"), "");
    EXPECT_EQ(contentOf(target + "/AD.txt").size(), 332586U);
}

TEST_F(Unzip, ReplacesAnOlderFileAndDeletesItAlsoInVain) {
    std::ofstream(target + "/IT.txt") << "old and longer";
    makeZip(zip, {{.name = "IT.txt", .bytes = "new"}});
    EXPECT_EQ(unzip(), "");
    EXPECT_EQ(contentOf(target + "/IT.txt"), "new");
    std::filesystem::remove(zip);
    EXPECT_NE(unzip().find("the archive cannot be read: "), std::string::npos);
    EXPECT_EQ(filesInTarget(), 0U);
}

TEST_F(Unzip, LetsNoPathOfTheArchiveLeaveTheFolder) {
    makeZip(zip, {{.name = "../IT.txt", .bytes = "x"},
                  {.name = "/IT.txt", .bytes = "x"},
                  {.name = "sub/IT.txt", .bytes = "x"},
                  {.name = "..\\IT.txt", .bytes = "x"}});
    EXPECT_EQ(unzip(), "the archive holds no file IT.txt");
    EXPECT_EQ(filesInAll(), 2U);
    EXPECT_FALSE(std::filesystem::exists("/IT.txt"));
}

TEST_F(Unzip, TakesOnlyPlainNames) {
    makeZip(zip, {{.name = "../IT.txt", .bytes = "x"}, {.name = "/IT.txt", .bytes = "x"}});
    for (const std::string& entry :
         {std::string("../IT.txt"), std::string("/IT.txt"), std::string("a\\b"), std::string(".."),
          std::string("."), std::string(), std::string("a\0b", 3)})
        EXPECT_EQ(unzip(entry), "the name in the archive is no plain file name") << entry;
    EXPECT_EQ(filesInAll(), 2U);
}

TEST_F(Unzip, RefusesLinksFoldersAndDevices) {
    for (const std::uint32_t mode : {0120777U, 0040755U, 0060644U, 0010644U}) {
        makeZip(zip, {{.name = "IT.txt", .bytes = "/etc/passwd", .unixMode = mode}});
        EXPECT_EQ(unzip(), "IT.txt is no regular file") << mode;
        EXPECT_EQ(filesInTarget(), 0U);
    }
    makeZip(zip, {{.name = "IT.txt", .bytes = "x", .unixMode = 0100644U}});
    EXPECT_EQ(unzip(), "");
}

TEST_F(Unzip, WritesThroughNoLinkInTheFolder) {
    std::ofstream(folder.file("precious")) << "precious";
    std::filesystem::create_symlink(folder.file("precious"), target + "/IT.txt");
    makeZip(zip, {{.name = "IT.txt", .bytes = "x"}});
    EXPECT_EQ(unzip(), "");
    EXPECT_EQ(contentOf(folder.file("precious")), "precious");
    EXPECT_EQ(contentOf(target + "/IT.txt"), "x");
}

TEST_F(Unzip, UnpacksNoBomb) {
    makeZip(zip, {{.name = "IT.txt", .bytes = std::string(2000000, '\0')}});
    ASSERT_LT(std::filesystem::file_size(zip), 10000U);
    EXPECT_EQ(unzip("IT.txt", 1999999), "the unpacked file would exceed 1999999 bytes");
    EXPECT_EQ(blocks, 0) << "the announced size is enough";
    EXPECT_EQ(filesInTarget(), 0U);
    EXPECT_EQ(unzip("IT.txt", 2000000), "");
}

// Both the local header and the directory claim one byte.
TEST_F(Unzip, IsNotDeceivedByAnAnnouncedSize) {
    makeZip(zip, {{.name = "IT.txt", .bytes = std::string(2000000, '\0')}});
    std::string bytes = contentOf(zip);
    const std::string announced("\x80\x84\x1E\x00", 4); // 2000000, little-endian
    std::size_t places = 0;
    for (std::size_t at = 0; (at = bytes.find(announced, at)) != std::string::npos; ++places)
        bytes.replace(at, 4, std::string("\x01\0\0\0", 4));
    ASSERT_GE(places, 1U);
    std::ofstream(zip, std::ios::binary | std::ios::trunc) << bytes;
    EXPECT_NE(unzip("IT.txt", 100000), "");
    EXPECT_EQ(filesInTarget(), 0U);
}

TEST_F(Unzip, LeavesNothingOfADamagedArchive) {
    std::string text;
    for (int number = 0; number < 50000; ++number)
        text += std::to_string(number * 7919 % 50021) + "\n";
    makeZip(zip, {{.name = "IT.txt", .bytes = text}});
    const std::string whole = contentOf(zip);
    const auto write = [this](const std::string& bytes) {
        std::ofstream(zip, std::ios::binary | std::ios::trunc) << bytes;
    };
    std::string spoilt = whole;
    spoilt[whole.size() / 2] = static_cast<char>(~spoilt[whole.size() / 2]);
    write(spoilt);
    EXPECT_NE(unzip().find("the archive is damaged: "), std::string::npos);
    EXPECT_EQ(filesInTarget(), 0U);
    for (const std::string& bytes : {whole.substr(0, whole.size() / 2), std::string("PK"),
                                     std::string(), std::string("<html>404</html>")}) {
        write(bytes);
        EXPECT_NE(unzip(), "") << bytes.size();
        EXPECT_EQ(filesInTarget(), 0U);
    }
}

TEST_F(Unzip, SaysWhenTheFolderIsNotThere) {
    makeZip(zip, {{.name = "IT.txt", .bytes = "x"}});
    std::filesystem::remove(target);
    EXPECT_EQ(unzip(), "the file cannot be written: No such file or directory");
}

} // namespace
} // namespace tremor
