#pragma once

#include "core/common_text.h"
#include "core/files.h"
#include "map/js_maps.h"
#include "map/recording_web_browser.h"
#include "support/fakes.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tremor::testing {

using Texts = std::vector<std::string>;

// A page from tests/data/pages as the program has to write it: lines end in CR LF, one empty line
// closes the file, and {FOLDER} is the program's folder.
inline std::string expectedPage(const std::string& name, const std::string& folder) {
    const std::string text = readWholeFile(std::string(TREMOR_TEST_DATA) + "/pages/" + name);
    return replaceAll(replaceAll(text, "{FOLDER}", folder), "\n", "\r\n") + "\r\n";
}

inline std::string visible(std::string_view line) {
    return replaceAll(line, "\r", "\\r");
}

// Compares two texts line by line; the message shows the lines that differ, without the equal ones
// before and behind.
inline ::testing::AssertionResult isPage(std::string_view written, std::string_view expected) {
    if (written == expected)
        return ::testing::AssertionSuccess();
    const std::vector<std::string_view> is = split(written, '\n');
    const std::vector<std::string_view> should = split(expected, '\n');
    const std::size_t shorter = std::min(is.size(), should.size());
    std::size_t head = 0;
    while (head < shorter && is[head] == should[head])
        ++head;
    std::size_t tail = 0;
    while (tail < shorter - head && is[is.size() - 1 - tail] == should[should.size() - 1 - tail])
        ++tail;
    std::string message = fmt::format("from line {} on:\n", head + 1);
    for (std::size_t i = head; i < should.size() - tail; ++i)
        message += fmt::format("- {}\n", visible(should[i]));
    for (std::size_t i = head; i < is.size() - tail; ++i)
        message += fmt::format("+ {}\n", visible(is[i]));
    return ::testing::AssertionFailure() << message;
}

// A program's folder with the image of the last event, and browsers that only record.
class PagesFixture : public ::testing::Test {
  protected:
    PagesFixture() {
        settings.CenterLatitude = 42.5;
        settings.CenterLongitude = 13.25;
        settings.Zoom = 7;
        settings.LastEventMapZoomLevel = "9";
        environment.applicationPath = folder.path();
        environment.hosts.WebHost = "https://web.example";
        environment.hosts.JsonProxy = "https://proxy.example";
        createFolder(folder.file("Img"));
        writeFileAtomically(folder.file("Img/lastepic.gif"), "GIF89a", false);
    }

    JSMaps jsMaps() {
        return {settings, environment, {mainMap, lastMap, saveMap}, log, harness.errors};
    }
    std::string written(const std::string& file) const { return readWholeFile(folder.file(file)); }
    ::testing::AssertionResult writtenIs(const std::string& file, const std::string& expected) {
        return isPage(written(file), expectedPage(expected, folder.path()));
    }
    Texts entries() const {
        Texts names;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }
    std::string navigation(const std::string& file) const {
        return "Navigate " + folder.file(file);
    }

    TemporaryFolder folder;
    AppSettings settings;
    JSMaps::Environment environment;
    RecordingWebBrowser mainMap;
    RecordingWebBrowser lastMap;
    RecordingWebBrowser saveMap;
    RecordingLog log;
    ErrorHarness harness;
};

} // namespace tremor::testing
