#pragma once

#include <cstdint>
#include <string>

namespace tremor {

// The flags and counters that the subsystems share while the program runs. One instance, owned by
// the program and handed on by reference. Everything runs on the user-interface thread; the flags
// stand where a program with threads would have locks, because every wait lets handlers and ticks
// re-enter.
struct Session {
    bool DatabaseOpen = false;         // the panel may use the catalogue
    bool ImportInProgress = false;     // between BEGIN and COMMIT: no source may start now
    std::int16_t PollingSuspended = 0; // 1 while a window that edits the filter or settings is open
    std::int16_t SearchModeOn = 0;     // 1: imports go on, views and notifications stand still
    bool AllWorkspacesOpen = false;
    std::int32_t WaitCounter = 0;    // bounds the waits; 9999 and above ends them all
    bool InternetUp = false;         // the last connectivity probe
    std::int32_t ControlsState = 0;  // the last state given to controlliForm by openDB
    bool ResizeFromLoad = false;     // the next resize is not one of the operator's
    std::int32_t DownloadState = 0;  // 2 while a transfer has not completed, else 0
    std::int32_t DownloadSizeKb = 0; // announced size of the running transfer
    bool PrimaryBusy = false;        // a primary fetch is running
    bool AlternateBusy = false;      // an alternate fetch is running
    float maxNewMagnitude = 0;       // highest magnitude among the new events of a poll
    float LastNewMagnitude = 0;
    std::string LastUtcFilter; // the last text that BuildUtcRangeFilter made
    std::string DatabaseName;  // last component of the catalogue's path
    bool Closing = false;      // the main window is unloading; nothing revives it
    bool TicksHeld = false;    // a runtime-error box is open or a long statement runs

    // What Form_Unload writes into WaitCounter, and the value from which every wait gives up.
    static constexpr std::int32_t waitCounterClosing = 99999;
    static constexpr std::int32_t waitCounterLimit = 9999;

    bool waitsMustEnd() const { return Closing || WaitCounter >= waitCounterLimit; }
};

} // namespace tremor
