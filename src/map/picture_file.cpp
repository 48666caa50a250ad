#include "map/picture_file.h"

#include "core/error_report.h"
#include "core/files.h"
#include "map/class_id.h"

#include <QtCore/QBuffer>
#include <QtGui/QImage>
#include <QtGui/QImageWriter>

#include <gif_lib.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <new>

namespace tremor {
namespace {

constexpr std::string_view gifEncoder = "gif";
constexpr int bestQuality = 100;

// The ids differ in their first number alone.
ClassId formatClass(std::uint32_t first) {
    return {first, 0x0728, 0x11D3, {0x9D, 0x7B, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};
}

struct Format {
    std::uint32_t first; // of its id
    std::string_view encoder;
};

constexpr std::array<Format, 4> formats{
    {{0xB96B3CAB, "bmp"}, {0xB96B3CAE, "jpeg"}, {0xB96B3CB0, gifEncoder}, {0xB96B3CAF, "png"}}};

int appendToText(GifFileType* gif, const GifByteType* bytes, int count) {
    auto& text = *static_cast<std::string*>(gif->UserData);
    text.insert(text.end(), bytes, bytes + count);
    return count;
}

struct GifCloser {
    void operator()(GifFileType* gif) const { EGifCloseFile(gif, nullptr); }
};

using ColourMap = std::unique_ptr<ColorMapObject, decltype(&GifFreeMapObject)>;

// The colours of an indexed picture; a GIF has a power of two of them.
ColourMap colourMapOf(const QImage& indexed) {
    ColourMap map(GifMakeMapObject(256, nullptr), &GifFreeMapObject);
    for (int i = 0; map && i < indexed.colorCount(); ++i) {
        const QRgb colour = indexed.color(i);
        map->Colors[i] = {static_cast<GifByteType>(qRed(colour)),
                          static_cast<GifByteType>(qGreen(colour)),
                          static_cast<GifByteType>(qBlue(colour))};
    }
    return map;
}

bool writeGif(QImage& indexed, std::string& text) {
    const std::unique_ptr<GifFileType, GifCloser> gif(EGifOpen(&text, appendToText, nullptr));
    const ColourMap colours = colourMapOf(indexed);
    const int width = indexed.width();
    const int height = indexed.height();
    bool good = gif && colours &&
                EGifPutScreenDesc(gif.get(), width, height, 8, 0, colours.get()) == GIF_OK &&
                EGifPutImageDesc(gif.get(), 0, 0, width, height, false, nullptr) == GIF_OK;
    for (int y = 0; good && y < height; ++y)
        good = EGifPutLine(gif.get(), indexed.scanLine(y), width) == GIF_OK;
    return good;
}

// The bytes of a picture file; empty when it cannot be encoded.
std::string encoded(const Picture& picture, std::string_view encoder) {
    const QImage image(picture.rgb.data(), picture.width, picture.height,
                       qsizetype{3} * picture.width, QImage::Format_RGB888);
    if (encoder == gifEncoder) {
        std::string text;
        QImage indexed = image.convertToFormat(QImage::Format_Indexed8);
        return writeGif(indexed, text) ? text : std::string();
    }
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, QByteArray(encoder.data(), static_cast<int>(encoder.size())));
    if (encoder == "jpeg")
        writer.setQuality(bestQuality);
    return writer.write(image) ? bytes.toStdString() : std::string();
}

PictureStatus statusOf(const RuntimeError& error) {
    switch (error.number()) {
    case ErrorNumber::DiskFull:
        return PictureStatus::Win32Error;
    case ErrorNumber::PermissionDenied:
        return PictureStatus::AccessDenied;
    case ErrorNumber::PathNotFound:
        return PictureStatus::FileNotFound;
    default:
        return PictureStatus::GenericError;
    }
}

PictureStatus saveToFile(const Picture& picture, std::string_view path, std::string_view encoder) {
    if (picture.rgb.empty())
        return PictureStatus::InvalidParameter;
    try {
        const std::string bytes = encoded(picture, encoder);
        if (bytes.empty())
            return PictureStatus::GenericError;
        writeFileAtomically(path, bytes, false);
        return PictureStatus::Ok;
    } catch (const RuntimeError& error) {
        return statusOf(error);
    } catch (const std::bad_alloc&) {
        return PictureStatus::OutOfMemory;
    }
}

} // namespace

std::string_view MakeErrorMessage(std::int32_t status) {
    constexpr auto words = std::to_array<std::string_view>({"Generic Error",
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
                                                            "Property Not Supported"});
    if (status < 1 || status > static_cast<std::int32_t>(words.size()))
        return "Unknown GDI+ Error";
    return words[static_cast<std::size_t>(status) - 1];
}

std::vector<PictureEncoder> pictureEncoders() {
    const QList<QByteArray> ofQt = QImageWriter::supportedImageFormats();
    std::vector<PictureEncoder> encoders;
    for (const Format& format : formats) {
        const QByteArray name(format.encoder.data(), static_cast<int>(format.encoder.size()));
        if (format.encoder == gifEncoder || ofQt.contains(name))
            encoders.push_back(
                {CLSIDToString(formatClass(format.first)), std::string(format.encoder)});
    }
    return encoders;
}

std::optional<std::string> GetEncoderByFormat(std::string_view formatId,
                                              std::span<const PictureEncoder> encoders) {
    const std::optional<ClassId> wanted = StringToCLSID(formatId);
    const auto encoder = std::ranges::find_if(encoders, [&](const PictureEncoder& candidate) {
        return wanted && StringToCLSID(candidate.formatId) == wanted;
    });
    return encoder == encoders.end() ? std::nullopt : std::optional(encoder->id);
}

void GDIPlusDCToFile(const Picture& picture, std::string_view path, std::int32_t format,
                     std::span<const PictureEncoder> encoders) {
    if (format < 1 || format > static_cast<std::int32_t>(formats.size()))
        throw RuntimeError(ErrorNumber::UserDefined, "Unknown image format.");
    const ClassId id = formatClass(formats[static_cast<std::size_t>(format) - 1].first);
    const std::optional<std::string> encoder = GetEncoderByFormat(CLSIDToString(id), encoders);
    if (!encoder)
        throw RuntimeError(ErrorNumber::UserDefined,
                           "Graphic libraries error: There isn't any registrered encoder.");
    const PictureStatus status = saveToFile(picture, path, *encoder);
    if (status != PictureStatus::Ok)
        throw RuntimeError(ErrorNumber::UserDefined,
                           std::string(MakeErrorMessage(static_cast<std::int32_t>(status))));
}

void GDIPlusDCToFile(const Picture& picture, std::string_view path, std::int32_t format) {
    GDIPlusDCToFile(picture, path, format, pictureEncoders());
}

} // namespace tremor
