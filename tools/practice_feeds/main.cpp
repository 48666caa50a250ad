#include "practice_feeds/command_line.h"
#include "practice_feeds/practice_server.h"
#include "practice_feeds/whole_file.h"

#include <fmt/format.h>
#include <signal.h>

#include <cstdio>
#include <stdexcept>

namespace {

void serveUntilSignal(const tremor::practice::CommandLine& line) {
    // Blocked before the server starts its threads, so that none of them takes the signal.
    sigset_t endSignals;
    sigemptyset(&endSignals);
    sigaddset(&endSignals, SIGTERM);
    sigaddset(&endSignals, SIGINT);
    pthread_sigmask(SIG_BLOCK, &endSignals, nullptr);

    const tremor::practice::PracticeServer server(line.server);
    if (!line.hostsIniFile.empty())
        tremor::practice::writeWholeFile(line.hostsIniFile, server.hostsIni());
    fmt::print("practice feeds on {}\n", server.url());
    std::fflush(stdout);
    int signalNumber = 0;
    sigwait(&endSignals, &signalNumber);
}

} // namespace

int main(int argc, char** argv) {
    try {
        const auto line = tremor::practice::parseCommandLine({argv + 1, argv + argc});
        if (line.help)
            fmt::print("{}", tremor::practice::helpText());
        else
            serveUntilSignal(line);
        return 0;
    } catch (const std::invalid_argument& error) {
        fmt::print(stderr, "practice_feeds: {}; see --help\n", error.what());
        return 2;
    } catch (const std::exception& error) {
        fmt::print(stderr, "practice_feeds: {}\n", error.what());
        return 1;
    }
}
