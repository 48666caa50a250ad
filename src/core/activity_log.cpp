#include "core/activity_log.h"

#include "core/common_text.h"
#include "core/files.h"
#include "core/flag_scope.h"

#include <fmt/format.h>

#include <chrono>
#include <filesystem>
#include <utility>

namespace tremor {

namespace {

constexpr std::size_t mostLines = 400;

// Year to second as plain numbers; `pattern` has a place for each.
std::string plainTime(fmt::format_string<int, unsigned, unsigned, long, long, long> pattern,
                      DateTime time) {
    const auto day = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss clock(time - day);
    return fmt::format(pattern, static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                       static_cast<unsigned>(date.day()), clock.hours().count(),
                       clock.minutes().count(), clock.seconds().count());
}

// Messages can hold names and addresses, so the folder is for its owner alone. A file system
// without modes keeps its own.
void makePrivateFolder(const std::string& folder) {
    if (PathExists(folder))
        return;
    createFolder(folder);
    std::error_code ignored;
    std::filesystem::permissions(folder, std::filesystem::perms::owner_all, ignored);
}

} // namespace

ActivityLog::ActivityLog(LogList& list, Clock& clock, ErrorReport& errors,
                         std::string applicationPath)
    : list_(list), clock_(clock), errors_(errors), applicationPath_(std::move(applicationPath)) {}

void ActivityLog::addLogToList(std::string_view message) {
    ProcedureTrace trace(errors_, "Form - panel", "addLogToList");
    std::string loss;
    if (lines_.size() > mostLines && !saving_)
        loss = saveAndClear(trace);
    add(std::string(32, '-'));
    add(plainTime("{}-{}-{} {}:{}:{}", clock_.now()));
    add(std::string(message));
    if (!loss.empty())
        add(std::move(loss));
    list_.selectLast();
}

void ActivityLog::addBareLine(std::string_view line) {
    add(std::string(line));
}

void ActivityLog::selectLast() {
    list_.selectLast();
}

void ActivityLog::refresh() {
    list_.refresh();
}

void ActivityLog::add(std::string line) {
    list_.append(line);
    lines_.push_back(std::move(line));
}

std::string ActivityLog::saveAndClear(ProcedureTrace& trace) {
    const FlagScope saving(saving_);
    const std::size_t count = lines_.size();
    std::string reason;
    const bool saved = trace.step([&] {
        try {
            saveLines(count);
        } catch (const std::exception& error) {
            reason = error.what();
            throw;
        }
    });

    // A failed save has asked meanwhile, and its report came to this log.
    const auto behindTheSaved = lines_.begin() + static_cast<std::ptrdiff_t>(count);
    lines_.erase(lines_.begin(), behindTheSaved);
    list_.clear();
    for (const std::string& line : lines_)
        list_.append(line);
    return saved ? std::string()
                 : fmt::format("{} lines of the log could not be saved: {}", count, reason);
}

void ActivityLog::saveLines(std::size_t count) const {
    const std::string folder = applicationPath_ + "/logs/";
    makePrivateFolder(folder);
    StringBuilder text;
    // The first separator is left out; each saved file begins with the time of its first message.
    for (std::size_t i = 1; i < count; ++i) {
        text.Add(lines_[i]);
        text.Add("\r\n");
    }
    text.Add("\r\n");
    writeFileAtomically(folder + plainTime("log_{}-{}-{}_{}-{}-{}.txt", clock_.now()),
                        text.GetStr(), true);
}

} // namespace tremor
