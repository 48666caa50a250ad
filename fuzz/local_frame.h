// What the fuzz targets of the local sources share: a folder tree, a catalogue and everybody whom
// a reader speaks to. The operator ignores every error.
#pragma once

#include "ignoring_prompts.h"
#include "import_frame.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace tremor::fuzzing {

class StandingClock : public Clock {
  public:
    DateTime now() const override { return {}; }
    std::chrono::milliseconds steady() const override { return {}; }
    void sleep(std::chrono::milliseconds) override { std::abort(); }
    void pump() override { std::abort(); }
    void repaint() override {}
};

class CountingLog : public Log {
  public:
    void addLogToList(std::string_view) override { ++lines; }
    int lines = 0;
};

// The world of one run.
class LocalFrame {
  public:
    explicit LocalFrame(Database& database) : database_(database) {
        root = (std::filesystem::temp_directory_path() / "tremor-fuzz-XXXXXX").string();
        CheckingStatus::require(::mkdtemp(root.data()) != nullptr);
    }
    ~LocalFrame() {
        std::error_code ignored;
        std::filesystem::remove_all(root, ignored);
    }
    LocalFrame(const LocalFrame&) = delete;
    LocalFrame& operator=(const LocalFrame&) = delete;

    FeedContext context() {
        return {session_,  settings, hosts_,
                database_, status_,  clock_,
                log,       errors_,  [] { return std::string(); }};
    }
    void write(const std::string& name, std::string_view bytes) const {
        const std::filesystem::path path = root + "/" + name;
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary)
            .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }
    bool exists(const std::string& name) const {
        return std::filesystem::exists(root + "/" + name);
    }

    std::string root;
    AppSettings settings;
    IgnoringPrompts prompts;
    CountingLog log;

  private:
    Database& database_;
    Session session_;
    Hosts hosts_;
    CheckingStatus status_;
    StandingClock clock_;
    bool ticksHeld_ = false;
    ErrorReport errors_{prompts, [] { std::abort(); }, 0, ticksHeld_};
};

} // namespace tremor::fuzzing
