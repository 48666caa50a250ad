#pragma once

#include "core/error_report.h"

#include <optional>

namespace tremor::testing {

// The number of the runtime error that the statement raises; nothing when it runs to its end.
template <class Statement>
std::optional<ErrorNumber> errorOf(Statement&& statement) {
    try {
        statement();
    } catch (const RuntimeError& error) {
        return error.number();
    }
    return std::nullopt;
}

} // namespace tremor::testing
