#include "map/marker_list.h"

#include <gtest/gtest.h>

namespace tremor {
namespace {

TEST(MarkerList, IsALoneApostropheWithoutValues) {
    EXPECT_EQ(MarkerList().text(), "'");
}

TEST(MarkerList, HasAnApostropheInFrontOfBetweenAndBehindTheValues) {
    MarkerList list;
    list.Add("42.7");
    list.Add("13.2");
    EXPECT_EQ(list.text(), "'42.7'13.2'");
}

TEST(MarkerList, KeepsAPlaceForAnEmptyValue) {
    MarkerList list;
    list.Add("");
    list.Add("a");
    EXPECT_EQ(list.text(), "''a'");
}

TEST(MarkerList, ShowsAnApostropheOfAValueAsTheTypographicOneSoThatTheListsStayInStep) {
    MarkerList list;
    list.Add("L'Aquila");
    list.Add("'''");
    EXPECT_EQ(list.text(), "'L\u2019Aquila'\u2019\u2019\u2019'");
    EXPECT_EQ(split(list.text(), '\'').size(), 4U);
}

TEST(MarkerList, LeavesEveryOtherByteAsItIs) {
    const std::string value("<script>\"\n]]>\0\xEC&|", 18);
    EXPECT_EQ(MarkerList::listed(value), value);
}

} // namespace
} // namespace tremor
