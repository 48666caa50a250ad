#include "ingest/event_values.h"

#include <gtest/gtest.h>

namespace tremor {
namespace {

constexpr EventValues::Order order = {EventQuantity::Time, EventQuantity::Latitude,
                                      EventQuantity::Longitude, EventQuantity::Depth,
                                      EventQuantity::Magnitude};

EventValues valuesOf(std::initializer_list<ElementValue> given) {
    EventValues values(order);
    for (const ElementValue& value : given)
        values.add(value);
    return values;
}

TEST(ElementName, LeavesPrefixAndAttributesOut) {
    EXPECT_EQ(elementName("latitude"), "latitude");
    EXPECT_EQ(elementName("geo:long unit='a:b'"), "long");
    EXPECT_EQ(elementName("emsc:time\n"), "time");
    EXPECT_EQ(elementName("depth/"), "depth");
}

TEST(ElementName, IsEmptyForWhatOpensNoElement) {
    for (const std::string_view tag : {"", "/time", "!-- time --", "?xml", " time", ":"})
        EXPECT_EQ(elementName(tag), "") << tag;
}

std::string openName(std::string_view text) {
    const auto element = innermostOpenElement(text);
    return element ? std::string(element->name) : "none";
}

TEST(InnermostOpenElement, IsTheLastOneThatIsNotClosed) {
    EXPECT_EQ(openName("<a><geo:lat x='1'>42"), "lat");
    EXPECT_EQ(openName("</time><longitude><uncertainty><b>1</b></uncertainty> "), "longitude");
    EXPECT_EQ(openName("lat><geo:long>0.20>5"), "long");
    EXPECT_EQ(innermostOpenElement("lat><long>0.20>5")->tagEnd, 9U);
}

TEST(InnermostOpenElement, IsNoneOfWhatOpensNoElement) {
    EXPECT_EQ(openName("<a><!-- b --><?c?><d/><e /><![CDATA[f]]>< g><>1<2"), "a");
}

TEST(InnermostOpenElement, IsMissingWhereAllAreClosed) {
    for (const std::string_view text : {"", "text", ">", "<", "</a>", "<a></a>", "<a></b></c>"})
        EXPECT_EQ(openName(text), "none") << text;
}

TEST(EventValues, GoByPlaceWithoutNames) {
    const auto values =
        valuesOf({{"", "t"}, {"", "a"}, {"", "o"}, {"", "d"}, {"", "m"}, {"", "x"}});
    EXPECT_TRUE(values.isComplete());
    EXPECT_EQ(values.find(EventQuantity::Time)->text, "t");
    EXPECT_EQ(values.find(EventQuantity::Latitude)->text, "a");
    EXPECT_EQ(values.find(EventQuantity::Magnitude)->text, "m");
    EXPECT_FALSE(values.names(EventQuantity::Time));
}

TEST(EventValues, GoByPlaceWithNamesThatSayNothing) {
    EXPECT_TRUE(
        valuesOf({{"a", "1"}, {"b", "2"}, {"c", "3"}, {"d", "4"}, {"e", "5"}}).isComplete());
}

TEST(EventValues, GoByTheFirstOfAName) {
    const auto values = valuesOf({{"Mag", "m"},
                                  {"depth", "d"},
                                  {"LONG", "o"},
                                  {"lat", "a"},
                                  {"time", "t"},
                                  {"magnitude", "other"}});
    EXPECT_TRUE(values.isComplete());
    EXPECT_EQ(values.find(EventQuantity::Time)->text, "t");
    EXPECT_EQ(values.find(EventQuantity::Latitude)->text, "a");
    EXPECT_EQ(values.find(EventQuantity::Longitude)->text, "o");
    EXPECT_EQ(values.find(EventQuantity::Depth)->text, "d");
    EXPECT_EQ(values.find(EventQuantity::Magnitude)->text, "m");
}

TEST(EventValues, GiveANamelessValueBesideNamedOnesItsPlace) {
    const auto values =
        valuesOf({{"", "t"}, {"longitude", "o"}, {"latitude", "a"}, {"", "d"}, {"mag", "m"}});
    EXPECT_TRUE(values.isComplete());
    EXPECT_EQ(values.find(EventQuantity::Time)->text, "t");
    EXPECT_EQ(values.find(EventQuantity::Latitude)->text, "a");
    EXPECT_EQ(values.find(EventQuantity::Depth)->text, "d");
}

TEST(EventValues, DoNotTakeAnotherElementForAMissingOne) {
    const auto values = valuesOf({{"time", "t"},
                                  {"latitude", "a"},
                                  {"longitude", "o"},
                                  {"depth", "d"},
                                  {"scalarMoment", "1.2E+19"}});
    EXPECT_FALSE(values.isComplete());
    EXPECT_FALSE(values.find(EventQuantity::Magnitude));
}

TEST(EventValues, AreIncompleteBelowFive) {
    EXPECT_FALSE(valuesOf({}).isComplete());
    EXPECT_FALSE(valuesOf({{"", "t"}, {"", "a"}, {"", "o"}, {"", "d"}}).isComplete());
}

} // namespace
} // namespace tremor
