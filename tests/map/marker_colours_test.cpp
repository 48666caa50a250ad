#include "core/common_text.h"
#include "map/marker_colours.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <limits>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace tremor {
namespace {

using Texts = std::vector<std::string_view>;
using Pairs = std::vector<std::pair<const char*, const char*>>;

// The look of one event: the list between its first and its last apostrophe. The lists have the
// unused first element only, as if there were nothing behind the event.
std::string look(std::string_view depth, std::string_view magnitude, bool circles,
                 const NumberLocale& locale = NumberLocale::point()) {
    const Texts depths{"", depth};
    Texts magnitudes{"", magnitude};
    const std::string list = colorImageEvents(depths, magnitudes, circles, locale);
    EXPECT_EQ(list.front(), '\'');
    return list.size() < 2 ? "nothing" : list.substr(1, list.size() - 2);
}

class ColorImageEvents : public ::testing::TestWithParam<NumberLocale> {
  protected:
    void expectLooks(const Pairs& depthAndLook, bool circles, std::string_view magnitude) const {
        for (const auto& [depth, expected] : depthAndLook)
            EXPECT_EQ(look(depth, magnitude, circles, GetParam()), expected) << "depth " << depth;
    }
};

INSTANTIATE_TEST_SUITE_P(PointAndComma, ColorImageEvents,
                         ::testing::Values(NumberLocale::point(), NumberLocale::comma()));

TEST_P(ColorImageEvents, ColoursCirclesByDepth) {
    expectLooks(
        {{"0", "#FF9900"},     {"2.5", "#FF9900"},  {"5", "#FF9900"},      {"5.0", "#FF9900"},
         {"5.001", "yellow"},  {"10", "yellow"},    {"10.1", "#33FF00"},   {"20", "#33FF00"},
         {"20.1", "#0033FF"},  {"50", "#0033FF"},   {"50.1", "#9933FF"},   {"100", "#9933FF"},
         {"100.1", "#FF0000"}, {"9999", "#FF0000"}, {"9999.1", "nothing"}, {"-0.1", "nothing"},
         {"1e999", "#FF9900"}, {"", "#FF9900"},     {"NaN", "#FF9900"},    {"<b>", "#FF9900"}},
        true, "2.5");
}

TEST_P(ColorImageEvents, NamesPinsByDepth) {
    expectLooks({{"0", "o_23.png"},
                 {"5", "o_23.png"},
                 {"5.1", "y_23.png"},
                 {"10", "y_23.png"},
                 {"10.1", "g_23.png"},
                 {"20", "g_23.png"},
                 {"20.1", "b_23.png"},
                 {"50", "b_23.png"},
                 {"50.1", "v_23.png"},
                 {"100", "v_23.png"},
                 {"100.1", "nothing"},
                 {"-0.1", "nothing"}},
                false, "2.5");
}

TEST_P(ColorImageEvents, NamesPinsByMagnitude) {
    const Pairs sizes = {{"0", "14"},   {"1", "14"},   {"1.1", "18"}, {"2", "18"},   {"2.1", "23"},
                         {"3", "23"},   {"3.1", "28"}, {"4", "28"},   {"4.1", "34"}, {"5", "34"},
                         {"5.1", "44"}, {"6", "44"},   {"6.1", "50"}, {"7", "50"},   {"7.1", "58"},
                         {"10", "58"},  {"", "14"}};
    for (const auto& [magnitude, size] : sizes)
        EXPECT_EQ(look("1", magnitude, false, GetParam()), fmt::format("o_{}.png", size));
    EXPECT_EQ(look("1", "10.1", false, GetParam()), "nothing");
    EXPECT_EQ(look("1", "-0.1", false, GetParam()), "nothing");
}

TEST_P(ColorImageEvents, HasFortyPinNames) {
    std::set<std::string> names;
    for (const char* depth : {"1", "6", "11", "21", "51"})
        for (const char* magnitude : {"0.5", "1.5", "2.5", "3.5", "4.5", "5.5", "6.5", "7.5"})
            names.insert(look(depth, magnitude, false, GetParam()));
    EXPECT_EQ(names.size(), 40U);
    EXPECT_TRUE(names.contains("o_14.png"));
    EXPECT_TRUE(names.contains("v_58.png"));
}

TEST_P(ColorImageEvents, MakesCirclesOfMagnitudeZeroWhiteAtEveryDepth) {
    for (const char* zero : {"0", "0.0", "-0", "", "abc"}) {
        const Texts depths{"", "20000"};
        Texts magnitudes{"", zero};
        EXPECT_EQ(colorImageEvents(depths, magnitudes, true, GetParam()), "'#FFFFFF'");
        EXPECT_EQ(magnitudes.at(1), "2");
    }
}

TEST_P(ColorImageEvents, ColoursCirclesOfAnyOtherMagnitude) {
    EXPECT_EQ(look("1", "-1.5", true, GetParam()), "#FF9900");
    EXPECT_EQ(look("1", "99", true, GetParam()), "#FF9900");
}

TEST(ColorImageEventsList, LeavesOutEventsOutsideTheClassesSoThatTheListFallsOutOfStep) {
    const Texts depths{"", "1", "500", "15", ""};
    Texts magnitudes{"", "1", "3", "7.5", ""};
    EXPECT_EQ(colorImageEvents(depths, magnitudes, false, NumberLocale::point()),
              "'o_14.png'g_58.png'o_14.png'");
}

TEST(ColorImageEventsList, LooksUpTheEmptyElementBehindTheLastValueToo) {
    const std::string empty = "'";
    const std::vector<std::string_view> depths = split(empty, '\'');
    Texts magnitudes = depths;
    EXPECT_EQ(colorImageEvents(depths, magnitudes, true, NumberLocale::point()), "'#FFFFFF'");
    magnitudes = depths;
    EXPECT_EQ(colorImageEvents(depths, magnitudes, false, NumberLocale::point()), "'o_14.png'");
}

TEST(ColorImageEventsList, IsALoneApostropheForListsWithoutAnElement) {
    EXPECT_EQ(colorImageEvents({}, {}, true, NumberLocale::point()), "'");
}

TEST(ClassOf, TakesNoNumberThatIsNone) {
    const std::vector<double> bounds{1, 2};
    EXPECT_FALSE(classOf(std::numeric_limits<double>::quiet_NaN(), bounds).has_value());
    EXPECT_FALSE(classOf(std::numeric_limits<double>::infinity(), bounds).has_value());
    EXPECT_EQ(classOf(0, bounds), 0U);
    EXPECT_EQ(classOf(1, bounds), 0U);
    EXPECT_EQ(classOf(1.5, bounds), 1U);
}

} // namespace
} // namespace tremor
