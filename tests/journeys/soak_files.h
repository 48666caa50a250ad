#pragma once

#include <chrono>
#include <string>
#include <vector>

// The files of a program folder, as a killed program leaves them.
namespace tremor::journeys {

// Which of the files that the program writes are not whole, one a line; empty when all are. Pages
// end with their last tag, KML is XML, tables and texts end with a line, pictures with their end
// marker. Left out are hidden files, which never take the place of another, and logs/*.log, into
// which answers of Telegram are being received.
std::string brokenFiles(const std::string& folder);

// Hidden files that an interrupted replacement has left in the folder.
std::vector<std::string> abandonedFiles(const std::string& folder);

// A catalogue once its journal has been dealt with as the next program does.
struct KilledCatalogue {
    std::string integrity; // "ok", or what SQLite finds wrong
    std::string rows;      // how many events there are
};

// Looks at a copy, so that the files stay as they are.
KilledCatalogue killedCatalogue(const std::string& file);

// How a settings file differs from a whole one of the same program; empty when it does not. The
// lines must be the same but for the values that follow the events and the view of the map.
std::string brokenSettings(const std::string& settings, const std::string& whole);

// Counts what happens to the files of a folder and of those in it, from its beginning on.
class FolderWatch {
  public:
    explicit FolderWatch(const std::string& folder);
    ~FolderWatch();
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;

    // Returns at the very moment of the change with this number, 1 is the first; false after the
    // limit.
    bool waitForChange(int number, std::chrono::milliseconds limit);

    const std::string& lastChanged() const { return lastChanged_; } // file's name; may be empty

  private:
    int descriptor_ = -1;
    int changes_ = 0;
    std::string lastChanged_;
};

} // namespace tremor::journeys
