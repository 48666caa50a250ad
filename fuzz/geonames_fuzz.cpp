// Any bytes as what comes from GeoNames: the first byte says as what. An index page with a list of
// countries behind its first zero byte, a dump for Italy, a dump for another country, or a zip
// archive, with the invariants of each checked.
#include "import_frame.h"
#include "manage/geonames_dump.h"
#include "manage/geonames_index.h"
#include "manage/zip_extract.h"

#include <algorithm>
#include <cstdint>
#include <fstream>

namespace {

using namespace tremor;
using fuzzing::CheckingStatus;

// A folder for the files and a catalogue with the table Cities.
class Ground {
  public:
    Ground() {
        folder_ = (std::filesystem::temp_directory_path() / "tremor-fuzz-XXXXXX").string();
        CheckingStatus::require(::mkdtemp(folder_.data()) != nullptr);
        std::filesystem::create_directory(file("in"));
        std::filesystem::create_directory(file("out"));
        CheckingStatus::require(database_.slsOpen(file("catalogue.sqlite"), "C") == 0);
        for (const char* sql : {"pragma synchronous = off", "pragma journal_mode = memory",
                                "CREATE TABLE Cities ('Name' TEXT NOT NULL , 'Latitude' TEXT, "
                                "'Longitude' TEXT, 'Zone' TEXT)"})
            CheckingStatus::require(database_.slsExe(sql) == 0);
    }
    ~Ground() {
        database_.slClose();
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    Ground(const Ground&) = delete;
    Ground& operator=(const Ground&) = delete;

    std::string file(const std::string& name) const { return folder_ + "/" + name; }
    Database& database() { return database_; }

    std::string write(std::string_view bytes) const {
        const std::string path = file("in/input.zip");
        std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
        return path;
    }
    std::size_t stored() {
        CheckingStatus::require(database_.slsSel("select count(*) from Cities") == 0);
        CheckingStatus::require(database_.slsGetRow());
        return std::strtoull(database_.slsFX(1).c_str(), nullptr, 10);
    }
    // The three files and two folders that the target itself makes.
    std::size_t entries() const {
        using Iterator = std::filesystem::recursive_directory_iterator;
        return static_cast<std::size_t>(std::distance(Iterator(folder_), Iterator()));
    }

  private:
    std::string folder_;
    Database database_;
};

void readList(std::string_view text) {
    const std::size_t border = std::min(text.find('\0'), text.size());
    const std::vector<std::string> names = listedFileNames(text.substr(0, border));
    CheckingStatus::require(names.size() <= maximumGeoNamesFiles);
    for (const std::string& name : names)
        CheckingStatus::require(name.size() == 6);
    const std::vector<GeoNamesFile> files = nameCountries(names, text.substr(border));
    CheckingStatus::require(files.size() <= names.size());
    for (const GeoNamesFile& file : files) {
        CheckingStatus::require(file.FileName.starts_with(file.Id) && !file.Id.empty());
        CheckingStatus::require(file.Id.find_first_of("/\\.'") == std::string::npos);
    }
}

void readDump(std::string_view text, std::string_view zone, Ground& ground) {
    CheckingStatus::require(ground.database().slsExe("delete from Cities") == 0);
    std::size_t announced = 0;
    std::size_t done = 0;
    const DumpOutcome outcome =
        importDump(ground.write(text), zone, ground.database(),
                   {.started = [&](std::size_t lines) { announced = lines; },
                    .lineDone =
                        [&](std::size_t line) {
                            CheckingStatus::require(line == ++done && line <= announced);
                        }});
    CheckingStatus::require(outcome.failure.empty() && done == announced);
    CheckingStatus::require(announced ==
                            static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')));
    CheckingStatus::require(ground.stored() == outcome.stored);
    CheckingStatus::require(outcome.stored + outcome.refused + outcome.unreadable <= announced);
}

void readArchive(std::string_view bytes, Ground& ground) {
    constexpr std::uint64_t maximumBytes = 100000;
    const std::string archive = ground.write(bytes);
    const std::string target = ground.file("out/AD.txt");
    const std::size_t before = ground.entries();
    const std::string reason = unzip(
        archive, ground.file("out/"), "AD.txt", [] {}, maximumBytes);
    CheckingStatus::require(std::filesystem::exists(target) == reason.empty());
    CheckingStatus::require(ground.entries() == before + (reason.empty() ? 1 : 0));
    if (reason.empty())
        CheckingStatus::require(std::filesystem::file_size(target) <= maximumBytes);
    std::filesystem::remove(target);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Ground ground;
    if (size == 0)
        return 0;
    const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
    switch (data[0] % 4) {
    case 0:
        readList(text);
        break;
    case 1:
        readDump(text, "IT", ground);
        break;
    case 2:
        readDump(text, "FR", ground);
        break;
    default:
        readArchive(text, ground);
    }
    return 0;
}
