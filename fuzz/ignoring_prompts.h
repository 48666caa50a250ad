// The operator of the fuzz targets: lets every error pass, and expects no other question.
#pragma once

#include "core/ports.h"

#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

namespace tremor::fuzzing {

class IgnoringPrompts : public Prompts {
  public:
    BoxAnswer showMessageBox(const MessageBox&) override { std::abort(); }
    std::optional<std::string> inputBox(std::string_view, std::string_view) override {
        std::abort();
    }
    std::optional<std::string> showFileDialog(const FileDialogRequest&) override { std::abort(); }
    std::string browseForFolder(std::string_view) override { std::abort(); }
    ErrorAnswer showRuntimeError(std::string_view, std::string_view, int) override {
        ++errors;
        return ErrorAnswer::Ignore;
    }

    int errors = 0;
};

class BoxCounter : public IgnoringPrompts {
  public:
    BoxAnswer showMessageBox(const MessageBox&) override {
        ++boxes;
        return BoxAnswer::Ok;
    }

    int boxes = 0;
};

} // namespace tremor::fuzzing
