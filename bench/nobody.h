#pragma once

#include "core/ports.h"

#include <stdexcept>
#include <string>

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

} // namespace tremor
