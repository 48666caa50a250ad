#pragma once

#include "practice_feeds/practice_server.h"

#include <string>
#include <string_view>
#include <vector>

namespace tremor::practice {

struct CommandLine {
    ServerOptions server;
    std::string hostsIniFile; // empty: none is written
    bool help = false;
};

// The words behind the program's name. Throws std::invalid_argument with a sentence for the user.
CommandLine parseCommandLine(const std::vector<std::string_view>& words);

// What --help prints.
std::string_view helpText();

} // namespace tremor::practice
