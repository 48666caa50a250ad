#pragma once

#include "practice_feeds/fdsn_event.h"
#include "support/texts.h"

#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace tremor::practice {

inline std::string fileText(const std::string& path) {
    EXPECT_TRUE(std::ifstream(path)) << path;
    return tremor::testing::contentOf(path);
}

inline std::string readTestDocument(const std::string& name) {
    return fileText(TREMOR_TEST_DATA "/ingv/" + name);
}

inline std::string recentText() {
    return readTestDocument("ingv_2026-06-15_2026-06-29.txt");
}

inline FdsnDocument recentDocument() {
    return parseFdsnDocument(recentText());
}

inline FdsnDocument laterDocument() {
    return parseFdsnDocument(readTestDocument("derived_laquila_2009-04-06.txt"));
}

inline UtcTime at(const std::string& text) {
    const auto time = parseUtc(text);
    EXPECT_TRUE(time.has_value()) << text;
    return time.value_or(UtcTime());
}

// The tags of an XML text in their order, "time", "value", "/value" ..., with the names of their
// attributes: "origin catalog:datasource publicID".
inline std::vector<std::string> tagsOf(const std::string& xml) {
    static const std::regex tag("<(/?[A-Za-z:]+)([^>]*)>");
    static const std::regex attribute(" ([A-Za-z:]+)=");
    std::vector<std::string> tags;
    for (std::sregex_iterator it(xml.begin(), xml.end(), tag), end; it != end; ++it) {
        tags.push_back((*it)[1]);
        const std::string attributes = (*it)[2];
        for (std::sregex_iterator a(attributes.begin(), attributes.end(), attribute); a != end; ++a)
            tags.back() += " " + (*a)[1].str();
    }
    return tags;
}

inline std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

} // namespace tremor::practice
