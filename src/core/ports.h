#pragma once

#include "core/civil_time.h"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

// The small interfaces through which the logic meets the world: the operator, the clock, the
// status line. Windows implement them in the program, scripts of expected calls in the tests.
namespace tremor {

enum class BoxIcon { None, Critical, Question, Exclamation, Information };
enum class BoxButtons { Ok, OkCancel, YesNo };
enum class BoxAnswer { Ok = 1, Cancel = 2, Yes = 6, No = 7 };

// A message box. Text and title are plain text in UTF-8 (never rich text); lines are separated by
// CR LF.
struct MessageBox {
    std::string text;
    std::string title = "TREMORLEDGER";
    BoxIcon icon = BoxIcon::None;
    BoxButtons buttons = BoxButtons::Ok;
};

// The three answers of the runtime-error dialog, with the numbers that ShowRuntimeError returns.
enum class ErrorAnswer { Abort = 3, Retry = 4, Ignore = 5 };

struct FileDialogRequest {
    std::string title;
    std::string initialFolder;
    std::string initialName;
    std::string filter;           // "Sqlite File (*.sqlite)|*.sqlite": label and pattern, in pairs
    std::string defaultExtension; // without the point; added to a name typed without one
    bool forSaving = false;
    bool multiSelect = false;
};

// Everything that asks the operator. All calls return when the question is answered; meanwhile
// windows repaint and ticks go on, except under showRuntimeError, where ticks are held.
class Prompts {
  public:
    virtual ~Prompts() = default;

    virtual BoxAnswer showMessageBox(const MessageBox& box) = 0;

    // The text typed (UTF-8), or nothing when the box was cancelled.
    virtual std::optional<std::string> inputBox(std::string_view prompt,
                                                std::string_view title) = 0;

    // The path chosen, or nothing when cancelled. With multiSelect the paths are separated by a
    // zero character.
    virtual std::optional<std::string> showFileDialog(const FileDialogRequest& request) = 0;

    // The folder chosen, or the empty text.
    virtual std::string browseForFolder(std::string_view title) = 0;

    // The critical box with Abort, Retry and Ignore. Without key or mouse it answers Ignore by
    // itself after `unattendedSeconds` (0: never), so that an unattended room is not left with a
    // stopped program.
    virtual ErrorAnswer showRuntimeError(std::string_view title, std::string_view text,
                                         int unattendedSeconds) = 0;
};

// Local time and waiting. Every wait of the program goes through here and has an end.
class Clock {
  public:
    virtual ~Clock() = default;

    // Local civil time, to the second.
    virtual DateTime now() const = 0;

    // Milliseconds of a clock that never jumps; only differences mean something.
    virtual std::chrono::milliseconds steady() const = 0;

    // Waits while letting pending window messages run: timers and user events re-enter here.
    virtual void sleep(std::chrono::milliseconds duration) = 0;

    // Lets pending window messages run once: timers and user events re-enter here.
    virtual void pump() = 0;

    // Lets windows repaint and nothing else: ticks are held and user input stays queued, so that
    // nothing re-enters. For work that cannot be interrupted, such as a long statement.
    virtual void repaint() = 0;
};

// The loudspeaker.
class Sound {
  public:
    virtual ~Sound() = default;

    // Plays a WAV file and returns when it has been played to its end. Meanwhile windows repaint
    // and nothing else happens, as in Clock::repaint. Returns at once, and tells nobody, when the
    // file is missing or is no WAV file, or when there is no device.
    virtual void play(std::string_view path) = 0;
};

// The activity log as everybody but its own window sees it.
class Log {
  public:
    virtual ~Log() = default;

    // Adds a separator, a time stamp and the message (UTF-8; CR LF inside stays in one entry).
    virtual void addLogToList(std::string_view message) = 0;
};

// The status controls of the main window: the countdown label `lbl_log_bkg`, the import counter
// `lbl_events`, the size label `lbl_tot` and the bar `prgBar`.
class StatusPanel {
  public:
    virtual ~StatusPanel() = default;

    virtual void setStatusText(std::string_view text) = 0;   // lbl_log_bkg
    virtual void setEventsText(std::string_view text) = 0;   // lbl_events, repainted at once
    virtual void setDownloadSize(std::string_view text) = 0; // lbl_tot
    virtual void setProgressRange(int minimum, int maximum) = 0;
    virtual void setProgress(int value) = 0; // held to the range
    virtual std::string statusText() const = 0;
    virtual int progressMaximum() const = 0;
    virtual int progress() const = 0;
};

} // namespace tremor
