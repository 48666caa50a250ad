#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

// One file out of a zip archive that came from the network (on libzip, https://libzip.org).
namespace tremor {

// The largest country's dump has some 400 MB; an archive of a few kilobytes can claim and hold far
// more than any disk.
inline constexpr std::uint64_t maximumUnzippedBytes = std::uint64_t{1} << 30;

// The archive's name ends in ".ZIP" in whatever case; ".ZIP" is added to any other one.
std::string zipFileName(std::string_view name);

// Unpacks the entry `entry` ("IT.txt") of the archive `zipFile` into the file of the same name in
// `targetFolder`, which ends in "/" and is the caller's own. A file of that name is deleted first,
// whatever follows; afterwards the whole entry stands there or nothing. Every other entry is passed
// over, so no name of the archive ever becomes a path; a symbolic link, a device, an encrypted
// entry and one above `maximumBytes` are refused. `whileWorking` is called for each block.
//
// Empty when the file is there, else why not: "the archive holds no file IT.txt".
std::string unzip(std::string_view zipFile, std::string_view targetFolder, std::string_view entry,
                  const std::function<void()>& whileWorking,
                  std::uint64_t maximumBytes = maximumUnzippedBytes);

} // namespace tremor
