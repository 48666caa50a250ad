#pragma once

#include "map/picture.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Saves pictures under the operations and with the words of GDI+.
namespace tremor {

// What became of an operation on a picture, numbered as in GDI+.
enum class PictureStatus : std::int32_t {
    Ok = 0,
    GenericError = 1,
    InvalidParameter = 2,
    OutOfMemory = 3,
    Win32Error = 7,
    FileNotFound = 10,
    AccessDenied = 12,
};

// The words of a status by its number: "Access Denied" for 12. "Unknown GDI+ Error" for one that is
// no failure.
std::string_view MakeErrorMessage(std::int32_t status);

// What can write one kind of picture file.
struct PictureEncoder {
    std::string formatId; // "{B96B3CAE-0728-11D3-9D7B-0000F81EF32E}"
    std::string id;       // "jpeg"
};

// The encoders of this machine: giflib's and those of Qt, of which some are plug-ins that may not
// be installed.
std::vector<PictureEncoder> pictureEncoders();

// The encoder of a format, by the format's id in either case.
std::optional<std::string> GetEncoderByFormat(std::string_view formatId,
                                              std::span<const PictureEncoder> encoders);

// Saves a picture. `format` is 1 for BMP, 2 for JPEG at quality 100, 3 for GIF (more than 256
// colours are dithered) and 4 for PNG. The file takes its place in one step, so that a failure
// leaves the old one.
//
// A failure raises error 1000 with "Unknown image format.", with "Graphic libraries error: There
// isn't any registrered encoder.", or with the words of a status: "Win32 Error" for a full disk,
// "Access Denied", "File Not Found" for a folder that is not there, "Invalid Parameter" for a
// picture without pixels, "Generic Error" for any other.
void GDIPlusDCToFile(const Picture& picture, std::string_view path, std::int32_t format,
                     std::span<const PictureEncoder> encoders);
void GDIPlusDCToFile(const Picture& picture, std::string_view path, std::int32_t format);

} // namespace tremor
