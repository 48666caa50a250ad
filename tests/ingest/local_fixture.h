#pragma once

#include "ingest/folder_list.h"
#include "ingest/import_fixture.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <string>
#include <string_view>

namespace tremor::testing {

// A tree of a local locator below `root`, and a catalogue.
class LocalFixture : public ImportFixture {
  protected:
    LocalFixture() { std::filesystem::create_directories(root); }

    // Writes a file below the root, with the folders that it needs.
    void put(const std::string& path, std::string_view text) {
        std::filesystem::create_directories(std::filesystem::path(at(path)).parent_path());
        writeText(at(path), text);
    }
    void makeFolder(const std::string& path) { std::filesystem::create_directories(at(path)); }
    std::string at(const std::string& path) const { return root + "/" + path; }
    std::string textOf(const std::string& path) const { return fileText(at(path)); }
    bool exists(const std::string& path) const { return std::filesystem::exists(at(path)); }

    std::vector<std::string> files(const std::string& path) const { return listFiles(at(path)); }
    std::vector<std::string> folders(const std::string& path) const {
        return listFolders(at(path));
    }

    // The time of a file's last change, in seconds since 1970.
    void setChanged(const std::string& path, std::time_t seconds) const {
        const std::array<struct timespec, 2> times = {{{seconds, 0}, {seconds, 0}}};
        EXPECT_EQ(::utimensat(AT_FDCWD, at(path).c_str(), times.data(), 0), 0);
    }

    // The subfolders of the root as they are handed to a reader, for a root given as `path`.
    static std::vector<FolderEntry> entries(const std::string& path) {
        std::vector<FolderEntry> list;
        for (const std::string& name : listFolders(path)) {
            const std::string full = joinPath(path, name);
            list.push_back({full.substr(path.size()), full, {}});
        }
        return list;
    }

    // From here on the catalogue takes no row.
    void breakCatalogue() { EXPECT_EQ(database.slsExe("pragma query_only = 1"), 0); }
    void mendCatalogue() { EXPECT_EQ(database.slsExe("pragma query_only = 0"), 0); }

    // Bytes that this process reads from files in a call, from the disk or the system's memory.
    template <class Call>
    static std::uint64_t bytesRead(Call&& call) {
        const std::uint64_t before = bytesReadSoFar();
        call();
        return bytesReadSoFar() - before;
    }

    // The readers hold the window still.
    void expectNothingPumped() const {
        EXPECT_EQ(clock.pumps, 0);
        EXPECT_EQ(clock.sleeps, 0);
    }

    const std::string root = folder.file("tree");

  private:
    // "rchar: 4711" in front of others (proc(5)).
    static std::uint64_t bytesReadSoFar() {
        std::ifstream file("/proc/self/io");
        std::string name;
        std::uint64_t count = 0;
        EXPECT_TRUE(file >> name >> count && name == "rchar:") << name;
        return count;
    }
};

} // namespace tremor::testing
