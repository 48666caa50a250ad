#include "core/prerequisites.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <memory>
#include <utility>

namespace tremor {

namespace {

constexpr std::string_view moduleLabel = "Module - Common";
constexpr std::string_view dataFormatFile = "msstdfmt.dll";
constexpr long classCannotBeCreated = 429;

// What the storage engine needs, in the order in which it is looked for.
constexpr std::array<std::string_view, 6> storageParts = {"SQLiteningS",      "SQLitening",
                                                          "SQLite3",          "SQLiteningAuxRuts",
                                                          "SQLiteningClient", "SQLiteningZlib"};

constexpr std::string_view adviceToUpdate =
    "Please update the TREMORHUB front-end to the version 1.3.8 or greater to download it.";

void showCriticalBox(Prompts& prompts, std::string text) {
    MessageBox box;
    box.text = std::move(text);
    box.icon = BoxIcon::Critical;
    prompts.showMessageBox(box);
}

bool sqliteAnswers() {
    sqlite3* opened = nullptr;
    const int result = sqlite3_open(":memory:", &opened);
    const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> connection(opened, &sqlite3_close);
    return result == SQLITE_OK &&
           sqlite3_exec(opened, "select 1", nullptr, nullptr, nullptr) == SQLITE_OK;
}

std::string storageFile(std::string_view part) {
    return fmt::format("{}.dll", part);
}

// Behind a class that cannot be created: registers it once, and says so when that fails.
bool registeredAfterAll(RuntimeParts& parts, Prompts& prompts, ProcedureTrace& trace) {
    long result = -1;
    trace.step([&] { result = parts.registerDataFormat(); });
    if (result == 0)
        return true;
    showCriticalBox(prompts, "Critical initialization error.\r\n"
                             "msstdfmt DLL registration failed.\r\n"
                             "Please try to run the program as administrator.");
    return false;
}

} // namespace

bool SystemRuntimeParts::fileExists(std::string_view fileName) {
    if (fileName == dataFormatFile)
        return true;
    const bool known = std::any_of(storageParts.begin(), storageParts.end(),
                                   [&](auto part) { return fileName == storageFile(part); });
    return known && sqliteAnswers();
}

long SystemRuntimeParts::createDataFormat(std::string& description) {
    description.clear();
    return 0;
}

long SystemRuntimeParts::registerDataFormat() {
    return 0;
}

bool CheckMSSTDFMT(RuntimeParts& parts, Prompts& prompts, ErrorReport& errors) {
    ProcedureTrace trace(errors, moduleLabel, "CheckMSSTDFMT");
    bool exists = false;
    trace.step([&] { exists = parts.fileExists(dataFormatFile); });
    if (!exists) {
        showCriticalBox(prompts, fmt::format("msstdfmt DLL not found.\r\n"
                                             "TREMORLEDGER can't work without it.\r\n{}",
                                             adviceToUpdate));
        return false;
    }
    std::string description;
    const long number = parts.createDataFormat(description);
    if (number == 0)
        return true;
    if (number == classCannotBeCreated)
        return registeredAfterAll(parts, prompts, trace);
    showCriticalBox(prompts, fmt::format("Critical initialization error.\r\n"
                                         "Number: {}\r\n"
                                         "Description: {}",
                                         number, description));
    return false;
}

bool CheckSqlitening(RuntimeParts& parts, Prompts& prompts, ErrorReport& errors) {
    ProcedureTrace trace(errors, moduleLabel, "CheckSqlitening");
    for (const std::string_view part : storageParts) {
        bool exists = false;
        trace.step([&] { exists = parts.fileExists(storageFile(part)); });
        if (!exists) {
            // STATIONKIT is deliberate: only the box of the data format names this program.
            showCriticalBox(prompts, fmt::format("{} DLL not found.\r\n"
                                                 "STATIONKIT can't work without it.\r\n{}",
                                                 part, adviceToUpdate));
            return false;
        }
    }
    return true;
}

bool checkPrerequisites(RuntimeParts& parts, Prompts& prompts, ErrorReport& errors) {
    return CheckMSSTDFMT(parts, prompts, errors) && CheckSqlitening(parts, prompts, errors);
}

} // namespace tremor
