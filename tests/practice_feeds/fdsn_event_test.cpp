#include "practice_feeds/practice_documents.h"

#include <stdexcept>

namespace tremor::practice {
namespace {

const std::string header =
    "#EventID|Time|Latitude|Longitude|Depth/Km|Author|Catalog|Contributor|"
    "ContributorID|MagType|Magnitude|MagAuthor|EventLocationName|EventType\n";
const std::string good = "1|2026-06-15T03:00:06.430000|38.9802|15.3048|268.5|SURVEY-INGV||||ML|3.3|"
                         "--|Tirreno|earthquake\n";

TEST(FdsnTime, IsReadWithAndWithoutTimeOfDayAndDecimals) {
    EXPECT_EQ(formatUtc(at("2026-06-15T03:00:06.430000")), "2026-06-15T03:00:06.430000");
    EXPECT_EQ(formatUtc(at("2026-06-15 03:00:06")), "2026-06-15T03:00:06.000000");
    EXPECT_EQ(formatUtc(at("2026-06-15T03:00:06.5")), "2026-06-15T03:00:06.500000");
    EXPECT_EQ(formatUtc(at("2024-02-29")), "2024-02-29T00:00:00.000000");
    EXPECT_EQ(formatUtc(at("1969-12-31T23:59:59.999999")), "1969-12-31T23:59:59.999999");
}

TEST(FdsnTime, RefusesEverythingElse) {
    for (const char* text :
         {"", "2026", "2026-06", "2026-6-1", "2026-02-29", "2026-13-01", "2026-06-15T",
          "2026-06-15T1", "2026-06-15T24:00:00", "2026-06-15T03:60:00", "2026-06-15T03:00:60",
          "2026-06-15X03:00:06", "2026-06-15T03:00:06.", "2026-06-15T03:00:06.1234567",
          "2026-06-15T03:00:06.x", "2026-06-15T03:00:06Z", "abcd-ef-gh"})
        EXPECT_EQ(parseUtc(text), std::nullopt) << text;
}

TEST(FdsnDocument, GivesBackRealDocumentsByteForByte) {
    EXPECT_EQ(recentDocument().text(), recentText());
    EXPECT_EQ(recentDocument().events.size(), 60u);
    const std::string later = readTestDocument("derived_laquila_2009-04-06.txt");
    EXPECT_EQ(parseFdsnDocument(later).text(), later);
    EXPECT_EQ(parseFdsnDocument(later).events.size(), 877u);
}

TEST(FdsnDocument, ReadsTheFieldsThatRequestsSelectBy) {
    const FdsnEvent event = parseFdsnDocument(header + good).events.front();
    EXPECT_EQ(event.id, "1");
    EXPECT_EQ(event.time, at("2026-06-15T03:00:06.43"));
    EXPECT_EQ(event.latitude, 38.9802);
    EXPECT_EQ(event.longitude, 15.3048);
    EXPECT_EQ(event.magnitude, 3.3);
    EXPECT_EQ(event.line() + "\n", good);
}

TEST(FdsnEvent, IsMovedInItsLineToo) {
    FdsnEvent event = parseFdsnEvent(good.substr(0, good.size() - 1));
    event.moveTo({-42.5, 1.53});
    EXPECT_EQ(event.line(), "1|2026-06-15T03:00:06.430000|-42.5|1.53|268.5|SURVEY-INGV||||ML|3.3|"
                            "--|Tirreno|earthquake");
    const FdsnEvent read = parseFdsnEvent(event.line());
    EXPECT_EQ(event.latitude, read.latitude);
    EXPECT_EQ(event.longitude, read.longitude);
}

TEST(FdsnDocument, RefusesWhatIsNoDocument) {
    const auto with = [](std::string from, const std::string& to) {
        std::string line = good;
        return header + line.replace(line.find(from), from.size(), to);
    };
    for (const std::string& text :
         {std::string(), header, good, with("|earthquake", ""), with("earthquake", "a|b"),
          with("2026-06-15T", "2026-06-15"), with("38.9802", ""), with("15.3048", "east"),
          with("|3.3|", "||"), header + "no bars\n"})
        EXPECT_THROW(parseFdsnDocument(text), std::runtime_error) << text;
    try {
        parseFdsnDocument(header + good + "1|2\n");
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "line 3: 2 fields, not 14");
    }
}

} // namespace
} // namespace tremor::practice
