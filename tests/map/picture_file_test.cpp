#include "core/error_report.h"
#include "core/files.h"
#include "map/picture_file.h"
#include "support/fakes.h"
#include "support/file_size_limit.h"

#include <QtGui/QImage>
#include <QtGui/QImageReader>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tremor {
namespace {

// Two fields of colour, sea and a red marker, above a field that runs through many colours.
Picture mapLikePicture() {
    Picture picture{120, 90, {}};
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x) {
            QRgb colour = x < 60 ? 0xD3E2EC : 0xFF0000;
            if (y >= 60)
                colour = qRgb(2 * x, 255 - 2 * x, 2 * y);
            for (const int value : {qRed(colour), qGreen(colour), qBlue(colour)})
                picture.rgb.push_back(static_cast<std::uint8_t>(value));
        }
    return picture;
}

QImage imageOf(const Picture& picture) {
    return QImage(picture.rgb.data(), picture.width, picture.height, 3 * picture.width,
                  QImage::Format_RGB888)
        .copy();
}

int difference(QRgb one, QRgb other) {
    return std::max({std::abs(qRed(one) - qRed(other)), std::abs(qGreen(one) - qGreen(other)),
                     std::abs(qBlue(one) - qBlue(other))});
}

class PictureFile : public ::testing::Test {
  protected:
    std::string path() const { return folder.file("picture"); }
    QImage readBack(const char* format) const {
        QImageReader reader(QString::fromStdString(path()));
        EXPECT_EQ(reader.format(), format);
        return reader.read();
    }
    // The words of the failure; empty for none.
    static std::string failure(const std::function<void()>& save) {
        try {
            save();
        } catch (const RuntimeError& error) {
            EXPECT_EQ(error.number(), ErrorNumber::UserDefined);
            return error.description();
        }
        return {};
    }
    std::string failureOf(const Picture& saved, int format = 2) const {
        return failure([&] { GDIPlusDCToFile(saved, path(), format); });
    }

    testing::TemporaryFolder folder;
    const Picture picture = mapLikePicture();
};

TEST_F(PictureFile, BmpAndPngKeepEveryPixel) {
    GDIPlusDCToFile(picture, path(), 1);
    EXPECT_EQ(readBack("bmp").convertToFormat(QImage::Format_RGB888), imageOf(picture));
    GDIPlusDCToFile(picture, path(), 4);
    EXPECT_EQ(readBack("png").convertToFormat(QImage::Format_RGB888), imageOf(picture));
}

TEST_F(PictureFile, JpegIsSavedAtTheHighestQuality) {
    GDIPlusDCToFile(picture, path(), 2);
    const QImage image = readBack("jpeg");
    ASSERT_EQ(image.size(), QSize(120, 90));
    for (const QPoint place : {QPoint(5, 5), QPoint(30, 30), QPoint(90, 30), QPoint(115, 50)})
        EXPECT_LE(difference(image.pixel(place), imageOf(picture).pixel(place)), 2);
    // The first quantisation table: all ones is what quality 100 means.
    const std::string bytes = readWholeFile(path());
    const std::size_t table = bytes.find("\xFF\xDB");
    ASSERT_NE(table, std::string::npos);
    EXPECT_EQ(bytes.substr(table + 5, 64), std::string(64, '\x01'));
}

TEST_F(PictureFile, GifKeepsUpTo256ColoursAndDithersMore) {
    Picture few = picture;
    few.height = 60;
    few.rgb.resize(std::size_t{3} * 120 * 60);
    GDIPlusDCToFile(few, path(), 3);
    EXPECT_EQ(readBack("gif").convertToFormat(QImage::Format_RGB888), imageOf(few));

    GDIPlusDCToFile(picture, path(), 3);
    const QImage image = readBack("gif");
    ASSERT_EQ(image.size(), QSize(120, 90));
    const QRgb sea =
        image.scaled(2, 3, Qt::IgnoreAspectRatio, Qt::SmoothTransformation).pixel(0, 0);
    EXPECT_LE(difference(sea, 0xD3E2EC), 8); // in the mean
}

TEST_F(PictureFile, OneRowOrColumnIsAPictureToo) {
    for (const auto& [width, height] : {std::pair(1, 1), std::pair(7, 1), std::pair(1, 5)})
        for (const int format : {1, 2, 3, 4}) {
            const Picture small{
                width, height,
                std::vector<std::uint8_t>(static_cast<std::size_t>(3 * width * height), 200)};
            EXPECT_EQ(failureOf(small, format), "");
            EXPECT_EQ(QImage(QString::fromStdString(path())).size(), QSize(width, height));
        }
}

TEST_F(PictureFile, AnyOtherFormatIsUnknown) {
    for (const int format : {0, 5, -1, 2147483647})
        EXPECT_EQ(failureOf(picture, format), "Unknown image format.");
    EXPECT_FALSE(PathExists(path()));
}

TEST_F(PictureFile, WithoutItsEncoderAFormatIsNotSaved) {
    std::vector<PictureEncoder> encoders = pictureEncoders();
    ASSERT_EQ(encoders.size(), 4U);
    std::erase_if(encoders, [](const PictureEncoder& encoder) { return encoder.id == "jpeg"; });
    EXPECT_EQ(failure([&] { GDIPlusDCToFile(picture, path(), 2, encoders); }),
              "Graphic libraries error: There isn't any registrered encoder.");
    EXPECT_FALSE(PathExists(path()));
    EXPECT_EQ(failure([&] { GDIPlusDCToFile(picture, path(), 4, encoders); }), "");
}

TEST_F(PictureFile, EncodersAreFoundByTheIdOfTheirFormat) {
    const std::vector<PictureEncoder> encoders = pictureEncoders();
    const auto found = [&](std::string_view id) { return GetEncoderByFormat(id, encoders); };
    EXPECT_EQ(found("{B96B3CAB-0728-11D3-9D7B-0000F81EF32E}"), "bmp");
    EXPECT_EQ(found("{B96B3CAE-0728-11D3-9D7B-0000F81EF32E}"), "jpeg");
    EXPECT_EQ(found("{b96b3cb0-0728-11d3-9d7b-0000f81ef32e}"), "gif");
    EXPECT_EQ(found("{B96B3CAF-0728-11D3-9D7B-0000F81EF32E}"), "png");
    EXPECT_EQ(found("{B96B3CAD-0728-11D3-9D7B-0000F81EF32E}"), std::nullopt);
    EXPECT_EQ(found("jpeg"), std::nullopt);
}

TEST_F(PictureFile, AFailureHasTheWordsOfItsStatusAndLeavesTheOldFile) {
    EXPECT_EQ(failureOf({}), "Invalid Parameter");
    EXPECT_EQ(failure([&] { GDIPlusDCToFile(picture, folder.file("none/picture"), 2); }),
              "File Not Found");
    std::filesystem::create_directory(folder.file("folder"));
    EXPECT_EQ(failure([&] { GDIPlusDCToFile(picture, folder.file("folder"), 2); }),
              "Generic Error");
    // Nobody makes files there, root neither.
    EXPECT_EQ(failure([&] { GDIPlusDCToFile(picture, "/sys/picture", 2); }), "Access Denied");

    writeFileAtomically(path(), "old", false);
    {
        const testing::FileSizeLimit fullDisk(100);
        EXPECT_EQ(failureOf(picture), "Win32 Error");
    }
    EXPECT_EQ(readWholeFile(path()), "old");
    std::size_t files = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder.path()))
        ++files;
    EXPECT_EQ(files, 2U); // and no half picture beside it
}

TEST(PictureStatus, HasItsWords) {
    const std::vector<std::string> words{"Generic Error",
                                         "Invalid Parameter",
                                         "Out Of Memory",
                                         "Object Busy",
                                         "Insufficient Buffer",
                                         "Not Implemented",
                                         "Win32 Error",
                                         "Wrong State",
                                         "Aborted",
                                         "File Not Found",
                                         "Value Overflow",
                                         "Access Denied",
                                         "Unknown Image Format",
                                         "FontFamily Not Found",
                                         "FontStyle Not Found",
                                         "Not TrueType Font",
                                         "Unsupported Gdiplus Version",
                                         "Gdiplus Not Initialized",
                                         "Property Not Found",
                                         "Property Not Supported"};
    for (int status = 1; status <= 20; ++status)
        EXPECT_EQ(MakeErrorMessage(status), words[static_cast<std::size_t>(status) - 1]) << status;
    for (const int status : {0, 21, -1, 1000})
        EXPECT_EQ(MakeErrorMessage(status), "Unknown GDI+ Error") << status;
}

} // namespace
} // namespace tremor
