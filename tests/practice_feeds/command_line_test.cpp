#include "practice_feeds/command_line.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace tremor::practice {
namespace {

using namespace std::chrono_literals;

TEST(PracticeCommandLine, HasItsDefaults) {
    const CommandLine line = parseCommandLine({"--data", "documents"});
    EXPECT_EQ(line.server.dataFolder, "documents");
    EXPECT_EQ(line.server.port, 0);
    EXPECT_EQ(line.server.catalogue.every, 180s);
    EXPECT_EQ(line.server.catalogue.seed, 1u);
    EXPECT_FALSE(line.server.catalogue.fixed);
    EXPECT_EQ(line.hostsIniFile, "");
    EXPECT_EQ(line.server.seisCompFolder, "");
    EXPECT_EQ(line.server.livelocFolder, "");
    EXPECT_EQ(line.server.pagerlinkPort, std::nullopt);
    EXPECT_FALSE(line.help);
}

TEST(PracticeCommandLine, ReadsEveryOption) {
    const CommandLine line = parseCommandLine(
        {"--port", "8080", "--data", "d", "--every", "90", "--speed", "4", "--seed", "7", "--fixed",
         "--hosts-ini", "h.ini", "--seiscomp", "s", "--liveloc", "l", "--pagerlink", "7000"});
    EXPECT_EQ(line.server.port, 8080);
    EXPECT_EQ(line.server.catalogue.every, 22500ms);
    EXPECT_EQ(line.server.catalogue.seed, 7u);
    EXPECT_TRUE(line.server.catalogue.fixed);
    EXPECT_EQ(line.hostsIniFile, "h.ini");
    EXPECT_EQ(line.server.seisCompFolder, "s");
    EXPECT_EQ(line.server.livelocFolder, "l");
    EXPECT_EQ(line.server.pagerlinkPort, 7000);
    EXPECT_TRUE(parseCommandLine({"--help"}).help);
}

TEST(PracticeCommandLine, RefusesWhatItDoesNotUnderstand) {
    const std::vector<std::vector<std::string_view>> wrong{
        {},
        {"--data"},
        {"--data", "d", "--port", "65536"},
        {"--data", "d", "--port", "-1"},
        {"--data", "d", "--port", "x"},
        {"--data", "d", "--every", ""},
        {"--data", "d", "--every", "-3"},
        {"--data", "d", "--every", "nan"},
        {"--data", "d", "--speed", "0"},
        {"--data", "d", "--seed", "1.5"},
        {"--data", "d", "--unknown"},
        {"--data", "d", "--seiscomp"},
        {"--data", "d", "--liveloc"},
        {"--data", "d", "--pagerlink", "70000"},
        {"documents"},
    };
    for (const auto& words : wrong)
        EXPECT_THROW(parseCommandLine(words), std::invalid_argument)
            << (words.empty() ? "" : words.back());
}

TEST(PracticeCommandLine, NamesEveryOptionInItsHelp) {
    for (const std::string_view option :
         {"--data", "--port", "--every", "--speed", "--seed", "--fixed", "--seiscomp", "--liveloc",
          "--hosts-ini", "--help"})
        EXPECT_NE(helpText().find(option), std::string_view::npos) << option;
}

} // namespace
} // namespace tremor::practice
