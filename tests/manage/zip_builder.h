#pragma once

#include <gtest/gtest.h>
#include <zip.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace tremor::testing {

struct ZipEntry {
    std::string name;
    std::string bytes;
    std::uint32_t unixMode = 0; // kind and rights, such as 0120777 for a link; 0: none is stored
};

// Makes the archive anew.
inline void makeZip(const std::string& path, const std::vector<ZipEntry>& entries) {
    std::remove(path.c_str());
    zip_t* archive = zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, nullptr);
    ASSERT_NE(archive, nullptr) << path;
    for (const ZipEntry& entry : entries) {
        zip_source_t* source =
            zip_source_buffer(archive, entry.bytes.data(), entry.bytes.size(), 0);
        const zip_int64_t index = zip_file_add(archive, entry.name.c_str(), source, 0);
        ASSERT_GE(index, 0) << zip_strerror(archive);
        if (entry.unixMode != 0) {
            zip_file_set_external_attributes(archive, static_cast<zip_uint64_t>(index), 0,
                                             ZIP_OPSYS_UNIX, entry.unixMode << 16);
        }
    }
    ASSERT_EQ(zip_close(archive), 0) << zip_strerror(archive);
}

} // namespace tremor::testing
