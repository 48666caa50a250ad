#include "core/error_report.h"
#include "core/version.h"
#include "support/fakes.h"

#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <stdexcept>
#include <string>

namespace tremor {
namespace {

using testing::ErrorHarness;
using testing::ProcessEnded;
using testing::RecordingLog;
using testing::ScriptedPrompts;

// A log that answers each message with whatever the test wants.
class HookedLog : public Log {
  public:
    void addLogToList(std::string_view) override {
        ++calls;
        onMessage();
    }
    std::function<void()> onMessage;
    int calls = 0;
};

// Does something while the box stands open, then answers Ignore.
class BusyBox : public ScriptedPrompts {
  public:
    ErrorAnswer showRuntimeError(std::string_view, std::string_view, int seconds) override {
        ++boxes;
        unattendedSeconds = seconds;
        if (whileOpen)
            whileOpen();
        return ErrorAnswer::Ignore;
    }
    std::function<void()> whileOpen;
    int boxes = 0;
    int unattendedSeconds = -1;
};

TEST(ErrorDescription, GivesTheEnglishWordsOfEachNumber) {
    EXPECT_EQ(errorDescription(ErrorNumber::InvalidProcedureCall),
              "Invalid procedure call or argument");
    EXPECT_EQ(errorDescription(ErrorNumber::Overflow), "Overflow");
    EXPECT_EQ(errorDescription(ErrorNumber::OutOfMemory), "Out of memory");
    EXPECT_EQ(errorDescription(ErrorNumber::SubscriptOutOfRange), "Subscript out of range");
    EXPECT_EQ(errorDescription(ErrorNumber::DivisionByZero), "Division by zero");
    EXPECT_EQ(errorDescription(ErrorNumber::TypeMismatch), "Type mismatch");
    EXPECT_EQ(errorDescription(ErrorNumber::BadFileNameOrNumber), "Bad file name or number");
    EXPECT_EQ(errorDescription(ErrorNumber::FileNotFound), "File not found");
    EXPECT_EQ(errorDescription(ErrorNumber::DeviceIOError), "Device I/O error");
    EXPECT_EQ(errorDescription(ErrorNumber::DiskFull), "Disk full");
    EXPECT_EQ(errorDescription(ErrorNumber::PermissionDenied), "Permission denied");
    EXPECT_EQ(errorDescription(ErrorNumber::PathFileAccessError), "Path/File access error");
    EXPECT_EQ(errorDescription(ErrorNumber::PathNotFound), "Path not found");
    EXPECT_EQ(errorDescription(ErrorNumber::ObjectNotSet),
              "Object variable or With block variable not set");
    EXPECT_EQ(errorDescription(ErrorNumber::InvalidPropertyValue), "Invalid property value");
}

TEST(RuntimeError, TakesTheDescriptionOfItsNumberUnlessOneIsGiven) {
    EXPECT_EQ(RuntimeError(ErrorNumber::Overflow).description(), "Overflow");
    const RuntimeError own(ErrorNumber::UserDefined, "No rows.");
    EXPECT_EQ(own.number(), ErrorNumber::UserDefined);
    EXPECT_STREQ(own.what(), "No rows.");
}

TEST(CallStack, ListsTheEntriesOutermostFirst) {
    CallStack stack;
    stack.PushCallStack("Form - panel", "Form_Load");
    stack.PushCallStack("Module - Common", "CheckSqlitening");
    EXPECT_EQ(stack.depth(), 2);
    EXPECT_EQ(stack.text(), " 1) Form_Load (Form - panel)\r\n"
                            " 2) CheckSqlitening (Module - Common)\r\n");
}

TEST(CallStack, PoppingAnEmptyStackDoesNothing) {
    CallStack stack;
    stack.PopCallStack();
    EXPECT_EQ(stack.depth(), 0);
    EXPECT_EQ(stack.text(), "");
}

TEST(CallStack, HoldsTheDepthAt49AndShowsTheLastDeepCallAtLine50) {
    CallStack stack;
    for (int i = 1; i <= 60; ++i)
        stack.PushCallStack("Module - Common", "call" + std::to_string(i));
    EXPECT_EQ(stack.depth(), 49);
    const std::string text = stack.text();
    EXPECT_NE(text.find("\r\n 49) call49 (Module - Common)\r\n 50) call60 (Module - Common)\r\n"),
              std::string::npos)
        << text;
    EXPECT_EQ(text.find(" 51)"), std::string::npos);
}

TEST(CallStack, ShowsNoLine50WhenDepth49WasNeverPassed) {
    CallStack stack;
    for (int i = 1; i <= 49; ++i)
        stack.PushCallStack("Module - Common", "call" + std::to_string(i));
    EXPECT_EQ(stack.depth(), 49);
    EXPECT_EQ(stack.text().find(" 50)"), std::string::npos);
}

TEST(CallStack, APopFromDepth49ForgetsLine50) {
    CallStack stack;
    for (int i = 1; i <= 55; ++i)
        stack.PushCallStack("Module - Common", "call" + std::to_string(i));
    stack.PopCallStack();
    EXPECT_EQ(stack.depth(), 48);
    stack.PushCallStack("Module - Common", "again");
    EXPECT_EQ(stack.depth(), 49);
    EXPECT_EQ(stack.text().find(" 50)"), std::string::npos);
    EXPECT_NE(stack.text().find(" 49) again (Module - Common)\r\n"), std::string::npos);
}

TEST(ErrorReport, BuildsTheReportAndTheTitle) {
    ErrorHarness harness;
    harness.errors.callStack().PushCallStack("Form - panel", "upRemote_Timer");
    harness.errors.callStack().PushCallStack("Form - panel", "readCsvIngv");
    harness.prompts.expectRuntimeError("", ErrorAnswer::Ignore);

    EXPECT_EQ(harness.errors.ShowRuntimeError("Form - panel", "readCsvIngv",
                                              RuntimeError(ErrorNumber::SubscriptOutOfRange)),
              ErrorAnswer::Ignore);

    EXPECT_EQ(harness.prompts.lastErrorText, "There was a runtime error.\r\n"
                                             "Number: 9\r\n"
                                             "Description: Subscript out of range\r\n"
                                             "Module: Form - panel\r\n"
                                             "Routine: readCsvIngv\r\n"
                                             "Line: 0\r\n"
                                             "Call stack: \r\n"
                                             " 1) upRemote_Timer (Form - panel)\r\n"
                                             " 2) readCsvIngv (Form - panel)\r\n");
    const std::string version = std::to_string(versionMajor) + "." + std::to_string(versionMinor) +
                                "." + std::to_string(versionRevision);
    EXPECT_EQ(harness.prompts.lastErrorTitle, "TREMORLEDGER " + version + " - Runtime error");
}

TEST(ErrorReport, WritesTheReportToTheLogAsOneMessage) {
    ErrorHarness harness;
    RecordingLog log;
    harness.errors.setLog(&log);
    harness.prompts.expectRuntimeError("Number: 11\r\n", ErrorAnswer::Ignore);

    harness.errors.ShowRuntimeError("Module - Common", "acos",
                                    RuntimeError(ErrorNumber::DivisionByZero));

    ASSERT_EQ(log.messages.size(), 1U);
    EXPECT_EQ(log.messages.front(), harness.prompts.lastErrorText);
}

TEST(ErrorReport, AsksWithATitleAndATextOfTheCaller) {
    ErrorHarness harness;
    RecordingLog log;
    harness.errors.setLog(&log);
    harness.prompts.expectRuntimeError("Please wait", ErrorAnswer::Retry);
    EXPECT_EQ(harness.errors.ask("Title", "Please wait"), ErrorAnswer::Retry);
    EXPECT_EQ(harness.prompts.lastErrorTitle, "Title");
    EXPECT_EQ(harness.prompts.lastErrorText, "Please wait");
    EXPECT_EQ(log.messages, std::vector<std::string>{"Please wait"});

    harness.prompts.expectRuntimeError("Please wait", ErrorAnswer::Abort);
    EXPECT_THROW(harness.errors.ask("Title", "Please wait"), ProcessEnded);
}

TEST(ErrorReport, HoldsTheTicksWhileTheBoxIsOpenAndHandsOnTheUnattendedSeconds) {
    BusyBox box;
    bool ticksHeld = false;
    ErrorReport errors(
        box, [] { throw ProcessEnded{}; }, 45, ticksHeld);
    bool heldInside = false;
    box.whileOpen = [&] { heldInside = ticksHeld; };

    errors.ShowRuntimeError("Form - panel", "x", RuntimeError(ErrorNumber::Overflow));

    EXPECT_TRUE(heldInside);
    EXPECT_FALSE(ticksHeld);
    EXPECT_EQ(box.unattendedSeconds, 45);
}

TEST(ErrorReport, LeavesTicksHeldThatSomebodyElseHolds) {
    BusyBox box;
    bool ticksHeld = true;
    ErrorReport errors(
        box, [] { throw ProcessEnded{}; }, 60, ticksHeld);
    errors.ShowRuntimeError("Form - panel", "x", RuntimeError(ErrorNumber::Overflow));
    EXPECT_TRUE(ticksHeld);
}

TEST(ErrorReport, LogsASecondErrorUnderAnOpenBoxAndAsksNoFurther) {
    BusyBox box;
    RecordingLog log;
    bool ticksHeld = false;
    ErrorReport errors(
        box, [] { throw ProcessEnded{}; }, 60, ticksHeld);
    errors.setLog(&log);
    ErrorAnswer second = ErrorAnswer::Abort;
    box.whileOpen = [&] {
        second =
            errors.ShowRuntimeError("Form - panel", "inner", RuntimeError(ErrorNumber::Overflow));
    };

    errors.ShowRuntimeError("Form - panel", "outer", RuntimeError(ErrorNumber::TypeMismatch));

    EXPECT_EQ(box.boxes, 1);
    EXPECT_EQ(second, ErrorAnswer::Ignore);
    ASSERT_EQ(log.messages.size(), 2U);
    EXPECT_NE(log.messages[0].find("Routine: outer"), std::string::npos);
    EXPECT_NE(log.messages[1].find("Routine: inner"), std::string::npos);
}

TEST(ErrorReport, AFailingLogNeitherLoopsNorAsks) {
    ErrorHarness harness;
    HookedLog log;
    ErrorAnswer answerInLog = ErrorAnswer::Abort;
    log.onMessage = [&] {
        answerInLog = harness.errors.ShowRuntimeError("Form - panel", "addLogToList",
                                                      RuntimeError(ErrorNumber::DiskFull));
    };
    harness.errors.setLog(&log);
    harness.prompts.expectRuntimeError("Routine: outer", ErrorAnswer::Ignore);

    harness.errors.ShowRuntimeError("Form - panel", "outer", RuntimeError(ErrorNumber::Overflow));

    EXPECT_EQ(log.calls, 1);
    EXPECT_EQ(answerInLog, ErrorAnswer::Ignore);
}

TEST(ErrorReport, StillAsksWhenTheLogThrows) {
    ErrorHarness harness;
    HookedLog log;
    log.onMessage = [] { throw std::bad_alloc(); };
    harness.errors.setLog(&log);
    harness.prompts.expectRuntimeError("Routine: outer", ErrorAnswer::Retry);
    EXPECT_EQ(harness.errors.ShowRuntimeError("Form - panel", "outer",
                                              RuntimeError(ErrorNumber::Overflow)),
              ErrorAnswer::Retry);
}

TEST(ErrorReportDeathTest, NeverReturnsFromAbort) {
    ScriptedPrompts prompts;
    bool ticksHeld = false;
    ErrorReport errors(
        prompts, [] {}, 60, ticksHeld);
    prompts.expectRuntimeError("", ErrorAnswer::Abort);
    EXPECT_DEATH(errors.ShowRuntimeError("Form - panel", "x", RuntimeError(ErrorNumber::Overflow)),
                 "");
    prompts.showRuntimeError("", "", 0); // the child used its own copy of the script
}

TEST(ProcedureTrace, PushesItsEntryAndPopsItAtTheEnd) {
    ErrorHarness harness;
    {
        const ProcedureTrace trace(harness.errors, "Form - panel", "Form_Load");
        EXPECT_EQ(harness.errors.callStack().text(), " 1) Form_Load (Form - panel)\r\n");
    }
    EXPECT_EQ(harness.errors.callStack().depth(), 0);
}

TEST(ProcedureTrace, PopsOnAnEarlyReturn) {
    ErrorHarness harness;
    const auto leavesEarly = [&](bool early) {
        const ProcedureTrace trace(harness.errors, "Form - panel", "openDB");
        if (early)
            return 1;
        return harness.errors.callStack().depth();
    };
    EXPECT_EQ(leavesEarly(true), 1);
    EXPECT_EQ(harness.errors.callStack().depth(), 0);
}

TEST(ProcedureTrace, LeavesAStaleEntryWhenAskedTo) {
    ErrorHarness harness;
    {
        ProcedureTrace trace(harness.errors, "Module - Common", "checkOldDB");
        trace.leaveOnStack();
    }
    harness.prompts.expectRuntimeError(" 1) checkOldDB (Module - Common)\r\n"
                                       " 2) openDB (Module - Common)\r\n",
                                       ErrorAnswer::Ignore);
    ProcedureTrace trace(harness.errors, "Module - Common", "openDB");
    EXPECT_FALSE(trace.step([] { throw RuntimeError(ErrorNumber::FileNotFound); }));
}

TEST(ProcedureTrace, IgnoreGoesOnBehindTheStep) {
    ErrorHarness harness;
    ProcedureTrace trace(harness.errors, "Form - panel", "x");
    harness.prompts.expectRuntimeError("Number: 13\r\nDescription: Type mismatch\r\n",
                                       ErrorAnswer::Ignore);
    int runs = 0;
    bool behind = false;
    EXPECT_FALSE(trace.step([&] {
        ++runs;
        throw RuntimeError(ErrorNumber::TypeMismatch);
    }));
    EXPECT_TRUE(trace.step([&] { behind = true; }));
    EXPECT_EQ(runs, 1);
    EXPECT_TRUE(behind);
}

TEST(ProcedureTrace, RetryRunsTheStepAgainUntilItSucceeds) {
    ErrorHarness harness;
    ProcedureTrace trace(harness.errors, "Form - panel", "x");
    harness.prompts.expectRuntimeError("Number: 70\r\n", ErrorAnswer::Retry);
    harness.prompts.expectRuntimeError("Number: 70\r\n", ErrorAnswer::Retry);
    int runs = 0;
    EXPECT_TRUE(trace.step([&] {
        if (++runs < 3)
            throw RuntimeError(ErrorNumber::PermissionDenied);
    }));
    EXPECT_EQ(runs, 3);
}

TEST(ProcedureTrace, AbortEndsTheProcess) {
    ErrorHarness harness;
    harness.prompts.expectRuntimeError("Number: 6\r\n", ErrorAnswer::Abort);
    bool behind = false;
    const auto procedure = [&] {
        ProcedureTrace trace(harness.errors, "Form - panel", "x");
        trace.step([] { throw RuntimeError(ErrorNumber::Overflow); });
        behind = true;
    };
    EXPECT_THROW(procedure(), ProcessEnded);
    EXPECT_FALSE(behind);
    EXPECT_FALSE(harness.ticksHeld);
}

TEST(ProcedureTrace, ReportsExceptionsOfTheLibraryAsRuntimeErrors) {
    ErrorHarness harness;
    ProcedureTrace trace(harness.errors, "Form - panel", "x");
    harness.prompts.expectRuntimeError("Number: 7\r\nDescription: Out of memory\r\n",
                                       ErrorAnswer::Ignore);
    EXPECT_FALSE(trace.step([] { throw std::bad_alloc(); }));
    harness.prompts.expectRuntimeError("Number: 5\r\nDescription: too long\r\n",
                                       ErrorAnswer::Ignore);
    EXPECT_FALSE(trace.step([] { throw std::length_error("too long"); }));
}

TEST(ProcedureTrace, LetsAnythingElsePass) {
    ErrorHarness harness;
    ProcedureTrace trace(harness.errors, "Form - panel", "x");
    EXPECT_THROW(trace.step([] { throw ProcessEnded{}; }), ProcessEnded);
}

} // namespace
} // namespace tremor
