#pragma once

#include "core/ports.h"

#include <array>
#include <cstdint>
#include <exception>
#include <functional>
#include <string>
#include <string_view>

// The call stack, the runtime-error dialog and the guard that stands at the head of every
// procedure that can fail.
namespace tremor {

// Numbers of runtime errors, as the dialog shows them.
enum class ErrorNumber : std::int32_t {
    InvalidProcedureCall = 5,
    Overflow = 6,
    OutOfMemory = 7,
    SubscriptOutOfRange = 9,
    DivisionByZero = 11,
    TypeMismatch = 13,
    BadFileNameOrNumber = 52,
    FileNotFound = 53,
    DeviceIOError = 57,
    DiskFull = 61,
    PermissionDenied = 70,
    PathFileAccessError = 75,
    PathNotFound = 76,
    ObjectNotSet = 91,
    InvalidPropertyValue = 380,
    UserDefined = 1000, // raised by the program itself with a text of its own
};

// The English description of a number, for example "Type mismatch".
std::string_view errorDescription(ErrorNumber number);

// A runtime error: number and description. The line number of the report is always 0.
class RuntimeError : public std::exception {
  public:
    explicit RuntimeError(ErrorNumber number);
    RuntimeError(ErrorNumber number, std::string description);

    ErrorNumber number() const { return number_; }
    const std::string& description() const { return description_; }
    const char* what() const noexcept override { return description_.c_str(); }

  private:
    ErrorNumber number_;
    std::string description_;
};

// The trace of entered procedures, at most 50 entries; a help for the reader of a report and
// nothing that the logic rests on.
class CallStack {
  public:
    static constexpr std::int32_t capacity = 50;

    // Records "procedure (module)". The depth never passes 49: from there on each further call
    // overwrites the entry at index 49.
    void PushCallStack(std::string_view module, std::string_view procedure);

    // Drops the last entry; nothing when the stack is empty.
    void PopCallStack();

    std::int32_t depth() const { return depth_; }

    // One line an entry, " 1) procedure (module)" and CR LF, outermost first. At depth 49 an entry
    // at index 49 that was written since depth 49 was reached is shown as line 50.
    std::string text() const;

  private:
    // Joined only for a report: procedures are entered by the million.
    struct Entry {
        std::string module;
        std::string procedure;
    };

    std::array<Entry, capacity> entries_;
    std::int32_t depth_ = 0;
    bool lastEntryWritten_ = false;
};

// Shows runtime errors and carries out Abort. One instance for the whole program.
class ErrorReport {
  public:
    // `endProcess` must not return: the program ends at once, without clean-up and without saving.
    // A test may throw from it. `unattendedSeconds` as in Prompts::showRuntimeError.
    // `ticksHeld` is true while a box is open.
    ErrorReport(Prompts& prompts, std::function<void()> endProcess, int unattendedSeconds,
                bool& ticksHeld);

    // The report is written to this log as well (an unattended room finds it there). May be null.
    void setLog(Log* log) { log_ = log; }

    CallStack& callStack() { return callStack_; }

    // Builds the report ("There was a runtime error." and so on), asks, and returns the answer.
    // Abort ends the process and does not return. A second error that arises while a box is open
    // shows no further box: it is logged and answered with Ignore. An error of the log itself, met
    // while a report is being logged, is answered with Ignore alone.
    ErrorAnswer ShowRuntimeError(std::string_view module, std::string_view procedure,
                                 const RuntimeError& error);

    // The same box and the same rules with a title and a text of the caller's own.
    ErrorAnswer ask(std::string_view title, const std::string& text);

  private:
    void writeToLog(const std::string& report);

    Prompts& prompts_;
    std::function<void()> endProcess_;
    int unattendedSeconds_;
    bool& ticksHeld_;
    Log* log_ = nullptr;
    CallStack callStack_;
    bool boxOpen_ = false;
    bool logging_ = false;
};

// Stands at the head of every procedure that can fail:
//
//     ProcedureTrace trace(errors, "Form - panel", "readCsvIngv");
//     trace.step([&] { text = readWholeFile(path); });
//
// The constructor pushes the entry and the destructor pops it, also on an early return. A step is
// one statement that can fail: Retry runs it again, Ignore goes on behind it.
class ProcedureTrace {
  public:
    // The two texts must outlive the guard (literals).
    ProcedureTrace(ErrorReport& errors, std::string_view module, std::string_view procedure);
    ~ProcedureTrace();
    ProcedureTrace(const ProcedureTrace&) = delete;
    ProcedureTrace& operator=(const ProcedureTrace&) = delete;

    // Leaves the entry on the stack when the procedure ends (a stale line in later reports).
    void leaveOnStack() { popAtEnd_ = false; }

    // Runs the statement. True when it ran to its end (at once or after Retry), false when it
    // failed and was ignored. std::bad_alloc counts as error 7, any other standard exception as 5
    // with its own text.
    template <class Statement>
    bool step(Statement&& statement) {
        for (;;) {
            try {
                statement();
                return true;
            } catch (...) {
                if (!retryCurrentException())
                    return false;
            }
        }
    }

  private:
    // Reports the exception in flight; true for Retry. Exceptions that are no std::exception pass.
    bool retryCurrentException();

    ErrorReport& errors_;
    std::string_view module_;
    std::string_view procedure_;
    bool popAtEnd_ = true;
};

} // namespace tremor
