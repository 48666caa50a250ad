#pragma once

#include "practice_feeds/fdsn_event.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

namespace tremor::practice {

inline std::string readTestDocument(const std::string& name) {
    std::ifstream stream(TREMOR_TEST_DATA "/ingv/" + name, std::ios::binary);
    EXPECT_TRUE(stream) << name;
    return {std::istreambuf_iterator<char>(stream), {}};
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

} // namespace tremor::practice
