#include "journeys/soak_files.h"

#include "support/texts.h"

#include <poll.h>
#include <sqlite3.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <stdexcept>

namespace tremor::journeys {
namespace {

namespace fs = std::filesystem;

// Folders of the program folder that the program itself does not write.
const std::set<std::string>& foreignFolders() {
    static const std::set<std::string> names{"Img", "Sounds", "seiscomp", "liveloc"};
    return names;
}

std::string withoutBlankEnd(const std::string& text) {
    return text.substr(0, text.find_last_not_of(" \r\n\t") + 1);
}

bool isWholePage(const std::string& text) {
    return withoutBlankEnd(text).ends_with("</html>");
}

bool endsWithALine(const std::string& text) {
    return text.ends_with('\n');
}

bool isWholeJpeg(const std::string& bytes) {
    return bytes.starts_with("\xFF\xD8\xFF") && bytes.ends_with("\xFF\xD9");
}

bool isWholePng(const std::string& bytes) {
    using namespace std::string_literals;
    return bytes.starts_with("\x89PNG\r\n\x1A\n") &&
           bytes.ends_with("\0\0\0\0IEND\xAE\x42\x60\x82"s);
}

// By the end of a file's name, in small letters.
bool isWhole(const fs::path& path) {
    static const std::map<std::string, std::function<bool(const std::string&)>> tests{
        {".html", isWholePage},  {".csv", endsWithALine}, {".css", endsWithALine},
        {".txt", endsWithALine}, {".ini", endsWithALine}, {".jpg", isWholeJpeg},
        {".sr", isWholeJpeg},    {".png", isWholePng}};
    std::string extension = path.extension();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (extension == ".kml")
        return std::system(("xmllint --nonet --noout '" + path.string() + "'").c_str()) == 0;
    const std::string text = testing::contentOf(path);
    const auto test = tests.find(extension);
    if (test != tests.end())
        return test->second(text);
    // The page of a workspace has its name, and nothing behind it.
    return !text.starts_with("<!DOCTYPE") || isWholePage(text);
}

bool isHidden(const fs::path& path) {
    return path.filename().string().starts_with('.');
}

// Of the folder and its subfolders, less those of others.
std::vector<fs::path> filesOf(const std::string& folder) {
    std::vector<fs::path> files;
    for (auto entry = fs::recursive_directory_iterator(folder);
         entry != fs::recursive_directory_iterator(); ++entry) {
        if (entry->is_directory() && foreignFolders().contains(entry->path().filename()))
            entry.disable_recursion_pending();
        if (entry->is_regular_file())
            files.push_back(entry->path());
    }
    return files;
}

std::vector<std::string> linesOf(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

// The key of a line, or the whole line of one without.
std::string keyOf(const std::string& line) {
    return line.substr(0, line.find('='));
}

// SQLite's words for an error instead of a value.
std::string firstValue(sqlite3* connection, const char* sql) {
    sqlite3_stmt* raw = nullptr;
    sqlite3_prepare_v2(connection, sql, -1, &raw, nullptr);
    const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> statement(raw, sqlite3_finalize);
    if (raw == nullptr || sqlite3_step(raw) != SQLITE_ROW)
        return sqlite3_errmsg(connection);
    return reinterpret_cast<const char*>(sqlite3_column_text(raw, 0));
}

bool mayChange(const std::string& key) {
    static const std::set<std::string> keys{"CenterLatitude", "CenterLongitude", "Zoom",
                                            "startDate",      "endDate",         "LastEvent",
                                            "searchParQuery", "PanelXSize",      "PanelYSize"};
    return keys.contains(key);
}

} // namespace

std::string brokenFiles(const std::string& folder) {
    std::string broken;
    for (const fs::path& file : filesOf(folder))
        if (!isHidden(file) && file.extension() != ".log" && !isWhole(file))
            broken += fs::relative(file, folder).string() + ", " +
                      std::to_string(fs::file_size(file)) + " bytes\n";
    return broken;
}

std::vector<std::string> abandonedFiles(const std::string& folder) {
    std::vector<std::string> names;
    for (const fs::path& file : filesOf(folder))
        if (isHidden(file))
            names.push_back(fs::relative(file, folder));
    return names;
}

KilledCatalogue killedCatalogue(const std::string& file) {
    std::string pattern = (fs::temp_directory_path() / "tremor-catalogue-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
        throw std::runtime_error("no temporary folder");
    const std::string copy = pattern + "/catalogue";
    for (const char* suffix : {"", "-journal", "-wal"})
        if (fs::exists(file + suffix))
            fs::copy_file(file + suffix, copy + suffix);

    KilledCatalogue killed;
    {
        sqlite3* raw = nullptr;
        sqlite3_open_v2(copy.c_str(), &raw, SQLITE_OPEN_READWRITE, nullptr);
        const std::unique_ptr<sqlite3, int (*)(sqlite3*)> connection(raw, sqlite3_close);
        killed.integrity = firstValue(raw, "pragma integrity_check");
        killed.rows = firstValue(raw, "select count(*) from Events");
    }
    fs::remove_all(pattern);
    return killed;
}

std::string brokenSettings(const std::string& settings, const std::string& whole) {
    const std::vector<std::string> lines = linesOf(settings);
    const std::vector<std::string> expected = linesOf(whole);
    if (!settings.ends_with("\r\n"))
        return "no line end at the end";
    if (lines.size() != expected.size())
        return std::to_string(lines.size()) + " lines, not " + std::to_string(expected.size());
    for (std::size_t i = 0; i < lines.size(); ++i)
        if (keyOf(lines[i]) != keyOf(expected[i]) ||
            (lines[i] != expected[i] && !mayChange(keyOf(lines[i]))))
            return "\"" + lines[i] + "\" is not \"" + expected[i] + "\"";
    return {};
}

FolderWatch::FolderWatch(const std::string& folder)
    : descriptor_(inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {
    constexpr std::uint32_t changes =
        IN_CREATE | IN_MODIFY | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_CLOSE_WRITE;
    inotify_add_watch(descriptor_, folder.c_str(), changes);
    for (const auto& entry : fs::directory_iterator(folder))
        if (entry.is_directory() && !foreignFolders().contains(entry.path().filename()))
            inotify_add_watch(descriptor_, entry.path().c_str(), changes);
}

FolderWatch::~FolderWatch() {
    close(descriptor_);
}

bool FolderWatch::waitForChange(int number, std::chrono::milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    alignas(inotify_event) std::array<char, 4096> buffer{};
    while (changes_ < number) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            end - std::chrono::steady_clock::now());
        pollfd waiting{descriptor_, POLLIN, 0};
        if (left.count() <= 0 || poll(&waiting, 1, static_cast<int>(left.count())) <= 0)
            return false;
        const ssize_t bytes = read(descriptor_, buffer.data(), buffer.size());
        for (ssize_t at = 0; at < bytes;) {
            inotify_event event{};
            std::memcpy(&event, buffer.data() + at, sizeof(event));
            if (event.len > 0)
                lastChanged_ = buffer.data() + at + sizeof(event);
            at += static_cast<ssize_t>(sizeof(event) + event.len);
            ++changes_;
        }
    }
    return true;
}

} // namespace tremor::journeys
