#pragma once

#include "core/error_report.h"
#include "core/ports.h"

#include <fmt/format.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace tremor {

// The errors of one run over many files. The operator is asked at the first one; when that is
// ignored, the further ones of the run are only counted, or a folder of broken files would hold an
// unattended program for a minute each.
class RunFailures {
  public:
    // `what`, for the log: "S-files".
    RunFailures(ProcedureTrace& trace, std::string_view what) : trace_(trace), what_(what) {}

    // Runs a statement that concerns `path`, as ProcedureTrace::step does. False when it failed.
    template <class Statement>
    bool step(std::string_view path, Statement&& statement) {
        std::string reason;
        const auto noting = [&] {
            try {
                statement();
            } catch (const std::exception& error) {
                reason = error.what();
                throw;
            }
        };
        if (count_ == 0 ? trace_.step(noting) : succeeds(noting))
            return true;
        if (count_++ == 0)
            first_ = fmt::format("{} ({})", path, reason);
        return false;
    }

    // Counts failures that came along with a failed step.
    void countFurther(std::size_t failures) { count_ += failures; }

    // One line when something failed.
    void writeTo(Log& log) const {
        if (count_ > 0)
            log.addLogToList(
                fmt::format("{} {} could not be read or marked as read, the first one: {}", count_,
                            what_, first_));
    }

  private:
    template <class Statement>
    static bool succeeds(Statement&& statement) {
        try {
            statement();
            return true;
        } catch (const std::exception&) {
            return false;
        }
    }

    ProcedureTrace& trace_;
    std::string_view what_;
    std::size_t count_ = 0;
    std::string first_;
};

} // namespace tremor
