#pragma once

#include "core/error_report.h"
#include "core/ports.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tremor {

// The scrolling list `lst_prog_log` as the log drives it.
class LogList {
  public:
    virtual ~LogList() = default;
    virtual void append(std::string_view line) = 0;
    virtual void clear() = 0;
    virtual void selectLast() = 0; // scrolls the last line into view
    virtual void refresh() = 0;    // repaints at once
};

// The activity log: a list of lines, three for each message (32 hyphens, local time, message). A
// list of more than 400 lines is saved before the next message and then cleared; what stands in
// the list when the program ends is lost.
class ActivityLog : public Log {
  public:
    // Files go to `applicationPath` + "/logs/". `errors` receives a failed save.
    ActivityLog(LogList& list, Clock& clock, ErrorReport& errors, std::string applicationPath);

    // A failed save goes to the runtime-error dialog; Ignore clears the list all the same, goes on
    // with the message and adds one line more that tells how many lines were lost and why. Lines
    // that come while the list is being saved, the report of a failed save among them, stay.
    void addLogToList(std::string_view message) override;

    // Adds one line as it stands, without separator and time stamp, and never saves.
    void addBareLine(std::string_view line);
    void selectLast();
    void refresh();

    const std::vector<std::string>& lines() const { return lines_; }

  private:
    void add(std::string line);
    // The line that tells what was lost; empty when all was saved.
    std::string saveAndClear(ProcedureTrace& trace);
    void saveLines(std::size_t count) const;

    LogList& list_;
    Clock& clock_;
    ErrorReport& errors_;
    std::string applicationPath_;
    std::vector<std::string> lines_;
    bool saving_ = false;
};

} // namespace tremor
