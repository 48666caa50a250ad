#pragma once

#include "core/ports.h"

#include <stdexcept>
#include <string>
#include <string_view>

// Stand-ins for the neighbours that a benchmark does not measure.
namespace tremor {

// There is no operator: every question ends the benchmark.
class NobodyAnswers : public Prompts {
  public:
    BoxAnswer showMessageBox(const MessageBox& box) override { throw std::runtime_error(box.text); }
    std::optional<std::string> inputBox(std::string_view prompt, std::string_view) override {
        throw std::runtime_error(std::string(prompt));
    }
    std::optional<std::string> showFileDialog(const FileDialogRequest& request) override {
        throw std::runtime_error(request.title);
    }
    std::string browseForFolder(std::string_view title) override {
        throw std::runtime_error(std::string(title));
    }
    ErrorAnswer showRuntimeError(std::string_view, std::string_view text, int) override {
        throw std::runtime_error(std::string(text));
    }
};

class StandingClock : public Clock {
  public:
    DateTime now() const override { return {}; }
    std::chrono::milliseconds steady() const override { return {}; }
    void sleep(std::chrono::milliseconds) override {}
    void pump() override {}
    void repaint() override {}
};

class UnseenStatus : public StatusPanel {
  public:
    void setStatusText(std::string_view) override {}
    void setEventsText(std::string_view) override {}
    void setDownloadSize(std::string_view) override {}
    void setProgressRange(int, int maximum) override { maximum_ = maximum; }
    void setProgress(int value) override { value_ = value; }
    std::string statusText() const override { return {}; }
    int progressMaximum() const override { return maximum_; }
    int progress() const override { return value_; }

  private:
    int maximum_ = 100;
    int value_ = 0;
};

class Silence : public Sound {
  public:
    void play(std::string_view) override {}
};

class LastMessage : public Log {
  public:
    void addLogToList(std::string_view message) override { lastMessage = message; }
    std::string lastMessage;
};

} // namespace tremor
