#include "core/error_report.h"

#include "core/flag_scope.h"
#include "core/version.h"

#include <fmt/format.h>

#include <cstdlib>
#include <new>
#include <utility>

namespace tremor {

namespace {

std::string reportText(std::string_view module, std::string_view procedure,
                       const RuntimeError& error, const CallStack& callStack) {
    return fmt::format("There was a runtime error.\r\n"
                       "Number: {}\r\n"
                       "Description: {}\r\n"
                       "Module: {}\r\n"
                       "Routine: {}\r\n"
                       "Line: 0\r\n"
                       "Call stack: \r\n"
                       "{}",
                       static_cast<std::int32_t>(error.number()), error.description(), module,
                       procedure, callStack.text());
}

} // namespace

std::string_view errorDescription(ErrorNumber number) {
    switch (number) {
    case ErrorNumber::InvalidProcedureCall:
        return "Invalid procedure call or argument";
    case ErrorNumber::Overflow:
        return "Overflow";
    case ErrorNumber::OutOfMemory:
        return "Out of memory";
    case ErrorNumber::SubscriptOutOfRange:
        return "Subscript out of range";
    case ErrorNumber::DivisionByZero:
        return "Division by zero";
    case ErrorNumber::TypeMismatch:
        return "Type mismatch";
    case ErrorNumber::BadFileNameOrNumber:
        return "Bad file name or number";
    case ErrorNumber::FileNotFound:
        return "File not found";
    case ErrorNumber::DeviceIOError:
        return "Device I/O error";
    case ErrorNumber::DiskFull:
        return "Disk full";
    case ErrorNumber::PermissionDenied:
        return "Permission denied";
    case ErrorNumber::PathFileAccessError:
        return "Path/File access error";
    case ErrorNumber::PathNotFound:
        return "Path not found";
    case ErrorNumber::ObjectNotSet:
        return "Object variable or With block variable not set";
    case ErrorNumber::InvalidPropertyValue:
        return "Invalid property value";
    case ErrorNumber::UserDefined:
        break;
    }
    return "Application-defined or object-defined error";
}

RuntimeError::RuntimeError(ErrorNumber number)
    : RuntimeError(number, std::string(errorDescription(number))) {}

RuntimeError::RuntimeError(ErrorNumber number, std::string description)
    : number_(number), description_(std::move(description)) {}

void CallStack::PushCallStack(std::string_view module, std::string_view procedure) {
    Entry& entry = entries_[static_cast<std::size_t>(depth_)];
    entry.module = module;
    entry.procedure = procedure;
    if (depth_ < capacity - 1)
        ++depth_;
    else
        lastEntryWritten_ = true;
}

void CallStack::PopCallStack() {
    if (depth_ == 0)
        return;
    --depth_;
    lastEntryWritten_ = false;
}

std::string CallStack::text() const {
    std::string result;
    const std::int32_t shown = lastEntryWritten_ ? capacity : depth_;
    for (std::int32_t i = 0; i < shown; ++i) {
        const Entry& entry = entries_[static_cast<std::size_t>(i)];
        result += fmt::format(" {}) {} ({})\r\n", i + 1, entry.procedure, entry.module);
    }
    return result;
}

ErrorReport::ErrorReport(Prompts& prompts, std::function<void()> endProcess, int unattendedSeconds,
                         bool& ticksHeld)
    : prompts_(prompts),
      endProcess_(std::move(endProcess)),
      unattendedSeconds_(unattendedSeconds),
      ticksHeld_(ticksHeld) {}

ErrorAnswer ErrorReport::ShowRuntimeError(std::string_view module, std::string_view procedure,
                                          const RuntimeError& error) {
    return ask(fmt::format("{} - Runtime error", programTitleAndVersion),
               reportText(module, procedure, error, callStack_));
}

ErrorAnswer ErrorReport::ask(std::string_view title, const std::string& text) {
    // The log reports its own failures here: one of those must neither be logged again nor ask.
    if (logging_)
        return ErrorAnswer::Ignore;
    writeToLog(text);
    if (boxOpen_)
        return ErrorAnswer::Ignore;

    ErrorAnswer answer = ErrorAnswer::Ignore;
    {
        const FlagScope open(boxOpen_);
        const FlagScope held(ticksHeld_);
        answer = prompts_.showRuntimeError(title, text, unattendedSeconds_);
    }
    if (answer == ErrorAnswer::Abort) {
        endProcess_();
        std::abort();
    }
    return answer;
}

void ErrorReport::writeToLog(const std::string& report) {
    if (log_ == nullptr)
        return;
    const FlagScope logging(logging_);
    try {
        log_->addLogToList(report);
    } catch (const std::exception&) {
        // The box still tells everything.
    }
}

ProcedureTrace::ProcedureTrace(ErrorReport& errors, std::string_view module,
                               std::string_view procedure)
    : errors_(errors), module_(module), procedure_(procedure) {
    errors_.callStack().PushCallStack(module_, procedure_);
}

ProcedureTrace::~ProcedureTrace() {
    if (popAtEnd_)
        errors_.callStack().PopCallStack();
}

bool ProcedureTrace::retryCurrentException() {
    const auto asks = [this](const RuntimeError& error) {
        return errors_.ShowRuntimeError(module_, procedure_, error) == ErrorAnswer::Retry;
    };
    try {
        throw;
    } catch (const RuntimeError& error) {
        return asks(error);
    } catch (const std::bad_alloc&) {
        return asks(RuntimeError(ErrorNumber::OutOfMemory));
    } catch (const std::exception& error) {
        return asks(RuntimeError(ErrorNumber::InvalidProcedureCall, error.what()));
    }
}

} // namespace tremor
