#include "shell_reference.h"

#include <stdlib.h>
#include <sys/resource.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace tremor {
namespace {

double seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
}

Elapsed readClocks(int who) {
    rusage usage{};
    ::getrusage(who, &usage);
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return {std::chrono::duration<double>(now).count(),
            seconds(usage.ru_utime) + seconds(usage.ru_stime)};
}

Elapsed difference(const Elapsed& end, const Elapsed& start) {
    return {end.wall - start.wall, end.processor - start.processor};
}

} // namespace

BenchFolder::BenchFolder() {
    path_ = (std::filesystem::temp_directory_path() / "tremor-bench-XXXXXX").string();
    if (::mkdtemp(path_.data()) == nullptr)
        throw std::runtime_error("no temporary folder");
}

BenchFolder::~BenchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

void writeFile(const std::string& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    file << text;
    file.close();
    if (!file)
        throw std::runtime_error("cannot write " + path);
}

Stopwatch::Stopwatch() : start_(readClocks(RUSAGE_SELF)) {}

Elapsed Stopwatch::elapsed() const {
    return difference(readClocks(RUSAGE_SELF), start_);
}

Elapsed runShell(const std::string& database, const std::string& scriptFile) {
    const std::string command = "sqlite3 -batch -bail -init /dev/null '" + database + "' <'" +
                                scriptFile + "' >/dev/null 2>/dev/null";
    const Elapsed start = readClocks(RUSAGE_CHILDREN);
    const int status = std::system(command.c_str());
    const Elapsed end = readClocks(RUSAGE_CHILDREN);
    if (status != 0)
        throw std::runtime_error("the sqlite3 shell has failed: " + command);
    return difference(end, start);
}

} // namespace tremor
