#pragma once

#include "core/controls.h"
#include "core/error_report.h"
#include "core/ports.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <chrono>
#include <deque>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

// Stand-ins for the edges of the logic: operator, clock, log, status line, controls, disk.
namespace tremor::testing {

// Thrown in place of ending the process.
struct ProcessEnded {};

// A script of the questions that the program is expected to ask. An unexpected question fails the
// test at once, an unused one when the script is destroyed.
class ScriptedPrompts : public Prompts {
  public:
    ~ScriptedPrompts() override { EXPECT_TRUE(script_.empty()) << "unused: " << nextExpected(); }

    void expectBox(std::string text, std::string title, BoxIcon icon, BoxButtons buttons,
                   BoxAnswer answer) {
        script_.push_back({Kind::Box,
                           std::move(text),
                           std::move(title),
                           icon,
                           buttons,
                           answer,
                           ErrorAnswer::Ignore,
                           true,
                           {}});
    }
    // The typed text, or nothing for Cancel.
    void expectInput(std::string prompt, std::optional<std::string> typed) {
        script_.push_back({Kind::Input,
                           std::move(prompt),
                           {},
                           BoxIcon::None,
                           BoxButtons::Ok,
                           BoxAnswer::Ok,
                           ErrorAnswer::Ignore,
                           typed.has_value(),
                           typed.value_or("")});
    }
    void expectFileDialog(std::string title, std::optional<std::string> chosen) {
        script_.push_back({Kind::File,
                           {},
                           std::move(title),
                           BoxIcon::None,
                           BoxButtons::Ok,
                           BoxAnswer::Ok,
                           ErrorAnswer::Ignore,
                           chosen.has_value(),
                           chosen.value_or("")});
    }
    // The folder chosen, empty for Cancel.
    void expectFolder(std::string title, std::string chosen) {
        script_.push_back({Kind::Folder,
                           {},
                           std::move(title),
                           BoxIcon::None,
                           BoxButtons::Ok,
                           BoxAnswer::Ok,
                           ErrorAnswer::Ignore,
                           true,
                           std::move(chosen)});
    }
    // `part` must occur in the report.
    void expectRuntimeError(std::string part, ErrorAnswer answer) {
        script_.push_back({Kind::Error,
                           std::move(part),
                           {},
                           BoxIcon::None,
                           BoxButtons::Ok,
                           BoxAnswer::Ok,
                           answer,
                           true,
                           {}});
    }

    BoxAnswer showMessageBox(const MessageBox& box) override {
        const Expected e = next(Kind::Box, box.text);
        EXPECT_EQ(e.text, box.text);
        EXPECT_EQ(e.title, box.title);
        EXPECT_EQ(e.icon, box.icon);
        EXPECT_EQ(e.buttons, box.buttons);
        return e.answer;
    }
    std::optional<std::string> inputBox(std::string_view prompt, std::string_view) override {
        const Expected e = next(Kind::Input, prompt);
        EXPECT_EQ(e.text, prompt);
        return e.given ? std::optional(e.result) : std::nullopt;
    }
    std::optional<std::string> showFileDialog(const FileDialogRequest& request) override {
        const Expected e = next(Kind::File, request.title);
        EXPECT_EQ(e.title, request.title);
        lastFileDialog = request;
        return e.given ? std::optional(e.result) : std::nullopt;
    }
    std::string browseForFolder(std::string_view title) override {
        const Expected e = next(Kind::Folder, title);
        EXPECT_EQ(e.title, title);
        return e.result;
    }
    ErrorAnswer showRuntimeError(std::string_view title, std::string_view text, int) override {
        const Expected e = next(Kind::Error, text);
        EXPECT_NE(text.find(e.text), std::string_view::npos) << text;
        lastErrorTitle = title;
        lastErrorText = text;
        return e.errorAnswer;
    }

    FileDialogRequest lastFileDialog;
    std::string lastErrorTitle;
    std::string lastErrorText;

  private:
    enum class Kind { Box, Input, File, Folder, Error };
    struct Expected {
        Kind kind;
        std::string text;
        std::string title;
        BoxIcon icon;
        BoxButtons buttons;
        BoxAnswer answer;
        ErrorAnswer errorAnswer;
        bool given;
        std::string result;
    };

    std::string nextExpected() const {
        return script_.empty() ? "" : script_.front().title + script_.front().text;
    }
    Expected next(Kind kind, std::string_view what) {
        if (script_.empty() || script_.front().kind != kind) {
            ADD_FAILURE() << "unexpected question: " << what << "\nexpected: " << nextExpected();
            return {kind,
                    std::string(what),
                    {},
                    BoxIcon::None,
                    BoxButtons::Ok,
                    BoxAnswer::Cancel,
                    ErrorAnswer::Ignore,
                    false,
                    {}};
        }
        Expected e = std::move(script_.front());
        script_.pop_front();
        return e;
    }

    std::deque<Expected> script_;
};

// A clock that moves only when it is told to, or when somebody sleeps.
class FakeClock : public Clock {
  public:
    DateTime now() const override { return now_; }
    std::chrono::milliseconds steady() const override { return steady_; }
    void sleep(std::chrono::milliseconds duration) override {
        advance(duration);
        ++sleeps;
        if (onPump)
            onPump();
    }
    void pump() override {
        ++pumps;
        if (onPump)
            onPump();
    }
    void repaint() override { ++repaints; }

    void setNow(DateTime now) { now_ = now; }
    void advance(std::chrono::milliseconds duration) {
        steady_ += duration;
        fraction_ += duration;
        now_ += std::chrono::duration_cast<std::chrono::seconds>(fraction_);
        fraction_ %= std::chrono::seconds(1);
    }

    std::function<void()> onPump; // what the pending messages do
    int sleeps = 0;
    int pumps = 0;
    int repaints = 0;

  private:
    DateTime now_ = std::chrono::local_days(std::chrono::year(2014) / 3 / 7) +
                    std::chrono::hours(9) + std::chrono::minutes(5) + std::chrono::seconds(12);
    std::chrono::milliseconds steady_{0};
    std::chrono::milliseconds fraction_{0};
};

class RecordingLog : public Log {
  public:
    void addLogToList(std::string_view message) override { messages.emplace_back(message); }
    std::vector<std::string> messages;
};

class RecordingStatusPanel : public StatusPanel {
  public:
    void setStatusText(std::string_view text) override { statusTexts.emplace_back(text); }
    void setEventsText(std::string_view text) override { eventsTexts.emplace_back(text); }
    void setDownloadSize(std::string_view text) override { sizeTexts.emplace_back(text); }
    void setProgressRange(int low, int high) override { minimum = low, maximum = high; }
    void setProgress(int value) override { values.push_back(value); }
    std::string statusText() const override {
        return statusTexts.empty() ? std::string() : statusTexts.back();
    }
    int progressMaximum() const override { return maximum; }
    int progress() const override { return values.empty() ? minimum : values.back(); }

    std::vector<std::string> statusTexts;
    std::vector<std::string> eventsTexts;
    std::vector<std::string> sizeTexts;
    std::vector<int> values;
    int minimum = 0;
    int maximum = 100;
};

class RecordingControls : public PanelControls {
  public:
    void controlliForm(std::int32_t state) override { states.push_back(state); }
    void setCaption(std::string_view text) override { captions.emplace_back(text); }
    std::vector<std::int32_t> states;
    std::vector<std::string> captions;
};

// An error report whose Abort throws ProcessEnded.
struct ErrorHarness {
    ScriptedPrompts prompts;
    bool ticksHeld = false;
    ErrorReport errors{prompts, [] { throw ProcessEnded{}; }, 60, ticksHeld};
};

// A folder of its own for a test, removed at the end.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "tremor-test-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr)
            ADD_FAILURE() << "no temporary folder";
        path_ = pattern;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::string& path() const { return path_; } // no "/" at its end
    std::string file(const std::string& name) const { return path_ + "/" + name; }

  private:
    std::string path_;
};

} // namespace tremor::testing
