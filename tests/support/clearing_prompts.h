#pragma once

#include "support/fakes.h"

#include <filesystem>
#include <string>
#include <utility>

namespace tremor::testing {

// An operator who removes a file or an empty folder that stands in the way before the error is
// answered.
class ClearingPrompts : public ScriptedPrompts {
  public:
    explicit ClearingPrompts(std::string path) : path_(std::move(path)) {}

    ErrorAnswer showRuntimeError(std::string_view title, std::string_view text,
                                 int seconds) override {
        std::filesystem::remove(path_);
        return ScriptedPrompts::showRuntimeError(title, text, seconds);
    }

  private:
    std::string path_;
};

} // namespace tremor::testing
