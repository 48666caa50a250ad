#pragma once

#include <sys/types.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

// How a running program does, seen from outside.
namespace tremor::journeys {

// An answer that its window gave late. Times are in seconds.
struct LateAnswer {
    double at = 0;    // since the watch began
    double after = 0; // how long the answer took
    // How long of it the program's main thread, the display's or the asking one was ready to run
    // and the machine gave it no core.
    double withoutCore = 0;

    double ofItsOwn() const { return after - withoutCore; }
};

// Resident memory of the processes, KiB.
struct MemorySample {
    double at = 0; // seconds since the watch began
    long program = 0;
    long web = 0; // the web engine's processes together; pages that they share count in each
};

// Asks the program's main window every 100 ms whether it is alive, as window managers do
// (_NET_WM_PING, https://specifications.freedesktop.org/wm-spec): the answer comes from its event
// loop, also while keys and mouse are held back. And looks at the memory every two seconds.
class ProgramWatch {
  public:
    // The window, whose title begins with "TREMORLEDGER 1.", must stand there.
    ProgramWatch(const std::string& display, pid_t program);
    ~ProgramWatch();
    ProgramWatch(const ProgramWatch&) = delete;
    ProgramWatch& operator=(const ProgramWatch&) = delete;

    // Ends the watch; what follows may be asked then.
    void end();

    // An unanswered question counts with the time that it had.
    const std::vector<LateAnswer>& lateAnswers() const { return late_; } // of 250 ms or more
    long answers() const { return answers_; }
    const std::vector<MemorySample>& memory() const { return memory_; }

  private:
    void watch(const std::string& display);
    double now() const; // seconds since the watch began
    void lookAtMemory();
    bool goesOn(std::chrono::milliseconds pause); // false when the watch is to end

    const pid_t program_;
    const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::vector<LateAnswer> late_;
    std::vector<MemorySample> memory_;
    long answers_ = 0;
    std::mutex mutex_; // of ending_
    std::condition_variable wakeUp_;
    bool ending_ = false;
    std::thread thread_;
};

// The process and all that it has started, directly or not, itself first.
std::vector<pid_t> processesOf(pid_t program);

// Growth of the memory in KiB a minute: the slope of the straight line through the samples from
// `from` seconds on (least squares). 0 for fewer than two.
double growthPerMinute(const std::vector<MemorySample>& samples, double from);

} // namespace tremor::journeys
