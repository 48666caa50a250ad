#include "map/page_values.h"

#include <gtest/gtest.h>

#include <string>

namespace tremor {
namespace {

const NumberLocale point = NumberLocale::point();
const NumberLocale comma = NumberLocale::comma();

TEST(ZoomLiteral, LeavesAPlainNumberAsItStands) {
    for (const NumberLocale& locale : {point, comma}) {
        EXPECT_EQ(zoomLiteral("8", locale), "8");
        EXPECT_EQ(zoomLiteral("0", locale), "0");
        EXPECT_EQ(zoomLiteral("12", locale), "12");
        EXPECT_EQ(zoomLiteral("8.0", locale), "8.0");
        EXPECT_EQ(zoomLiteral("0.5", locale), "0.5");
    }
}

TEST(ZoomLiteral, WritesAnotherNumberOfTheLocaleInDotForm) {
    EXPECT_EQ(zoomLiteral("7,5", comma), "7.5");
    EXPECT_EQ(zoomLiteral("7,5", point), "75"); // a group mark
    EXPECT_EQ(zoomLiteral(" 8 ", point), "8");
    EXPECT_EQ(zoomLiteral("010", point), "10"); // a script would read 8
    EXPECT_EQ(zoomLiteral("-3", point), "-3");
    EXPECT_EQ(zoomLiteral("8.", point), "8");
    EXPECT_EQ(zoomLiteral(".5", point), "0.5");
    EXPECT_EQ(zoomLiteral("&H10", point), "16");
}

TEST(ZoomLiteral, IsTheUsualZoomForWhatIsNoNumber) {
    for (const std::string_view text :
         {"", " ", "near", "8}; alert(1)", "\"></script>", "1e999", "8,", "8.8.8", "inf"}) {
        const std::string literal = zoomLiteral(text, NumberLocale{'.', " "});
        EXPECT_EQ(literal, "8") << text;
    }
}

TEST(PercentEncoded, LeavesAPlainAddressAsItStands) {
    for (const std::string_view text :
         {"https://maps.example:8443", "http://[::1]:80", "/opt/Tremor_Ledger-1.0/Img/a~b.gif", ""})
        EXPECT_EQ(percentEncoded(text), text);
}

TEST(PercentEncoded, WritesEveryOtherByteAsANumber) {
    EXPECT_EQ(percentEncoded("a b"), "a%20b");
    EXPECT_EQ(percentEncoded("'\"<>\\%#?&"), "%27%22%3C%3E%5C%25%23%3F%26");
    EXPECT_EQ(percentEncoded("\r\n\t"), "%0D%0A%09");
    EXPECT_EQ(percentEncoded(std::string_view("\0", 1)), "%00");
    EXPECT_EQ(percentEncoded("\xC3\xAC\xFF"), "%C3%AC%FF");
}

TEST(PageValues, HoldTheSettingsInDotForm) {
    AppSettings settings;
    settings.CenterLatitude = -41.25;
    settings.CenterLongitude = 0;
    settings.Zoom = -1;
    settings.SaveInKml = 1;
    settings.SaveInCsv = 2;
    settings.LastEventMapZoomLevel = "7,5";
    const PageValues values = pageValues(settings, {}, comma, "/opt/Img/lastepic.gif");
    EXPECT_EQ(values.CenterLatitude, "-41.25");
    EXPECT_EQ(values.CenterLongitude, "0");
    EXPECT_EQ(values.Zoom, "-1");
    EXPECT_EQ(values.LastEventMapZoomLevel, "7.5");
    EXPECT_EQ(values.SaveInKml, 1);
    EXPECT_EQ(values.SaveInCsv, 2);
    EXPECT_EQ(values.lastEpic, "/opt/Img/lastepic.gif");
}

TEST(PageValues, HoldTheMapsHostOverHttpAsWell) {
    Hosts hosts;
    hosts.MapsApi = "https://maps.example:8443";
    EXPECT_EQ(pageValues({}, hosts, point, "").mapsApiHttp, "http://maps.example:8443");
    hosts.MapsApi = "maps.example";
    EXPECT_EQ(pageValues({}, hosts, point, "").mapsApiHttp, "http://maps.example");
}

} // namespace
} // namespace tremor
