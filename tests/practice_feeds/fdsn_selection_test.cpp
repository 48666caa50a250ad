#include "practice_feeds/fdsn_selection.h"
#include "practice_feeds/practice_documents.h"

#include <stdexcept>

namespace tremor::practice {
namespace {

using Query = std::map<std::string, std::string>;

Selection read(const Query& query) {
    return readSelection({"/query", query}, "text", "text");
}

TEST(FdsnSelection, IsUnlimitedWithoutKeys) {
    const std::vector<FdsnEvent> events = recentDocument().events;
    EXPECT_EQ(read({}).of(events).size(), events.size());
    EXPECT_FALSE(read({}).oldestFirst);
}

TEST(FdsnSelection, KnowsLongAndShortNames) {
    const Selection longNames = read({{"starttime", "2026-06-16"},
                                      {"endtime", "2026-06-17"},
                                      {"minlatitude", "41"},
                                      {"maxlatitude", "42"},
                                      {"minlongitude", "13"},
                                      {"maxlongitude", "14"},
                                      {"minmagnitude", "2"},
                                      {"maxmagnitude", "3"}});
    const Selection shortNames = read({{"start", "2026-06-16"},
                                       {"end", "2026-06-17"},
                                       {"minlat", "41"},
                                       {"maxlat", "42"},
                                       {"minlon", "13"},
                                       {"maxlon", "14"},
                                       {"minmag", "2"},
                                       {"maxmag", "3"}});
    for (const Selection& selection : {longNames, shortNames}) {
        EXPECT_EQ(selection.start, at("2026-06-16"));
        EXPECT_EQ(selection.end, at("2026-06-17T00:00:00")); // a bare date ends where it begins
        EXPECT_EQ(selection.minLatitude, 41);
        EXPECT_EQ(selection.maxLatitude, 42);
        EXPECT_EQ(selection.minLongitude, 13);
        EXPECT_EQ(selection.maxLongitude, 14);
        EXPECT_EQ(selection.minMagnitude, 2);
        EXPECT_EQ(selection.maxMagnitude, 3);
    }
}

TEST(FdsnSelection, RefusesValuesThatAreNoneOfTheirKind) {
    for (const auto& [key, value] : Query{{"starttime", "2026-06-16 "},
                                          {"end", "tomorrow"},
                                          {"minlat", ""},
                                          {"maxlongitude", "nan"},
                                          {"minmagnitude", "inf"},
                                          {"limit", "1.5"},
                                          {"orderby", ""},
                                          {"format", ""}})
        EXPECT_THROW(read({{key, value}}), std::invalid_argument) << key;
}

TEST(FdsnSelection, WantsItsFormatWhereThatIsNotTheDefault) {
    EXPECT_THROW(readSelection({"/query", {}}, "text", "xml"), std::invalid_argument);
    EXPECT_NO_THROW(readSelection({"/query", {{"format", "text"}}}, "text", "xml"));
    EXPECT_THROW(readSelection({"/query", {{"format", "xml"}}}, "text", "text"),
                 std::invalid_argument);
}

TEST(FdsnSelection, ABadRequestIsAnsweredInTheFormOfFdsnServices) {
    const Answer answer = badRequest({"/fdsnws/event/1/query", {{"a", "1"}, {"limit", "x"}}},
                                     "Bad limit value: x", at("2026-06-15T03:00:06"));
    EXPECT_EQ(answer.status, 400);
    EXPECT_EQ(answer.body, "Error 400: Bad Request\n\nBad limit value: x\n\n"
                           "Usage details are available from https://www.fdsn.org/webservices\n\n"
                           "Request:\n/fdsnws/event/1/query?a=1&limit=x\n\n"
                           "Request Submitted:\n2026-06-15T03:00:06.000000\n\n"
                           "Service version:\n1.2.0\n");
}

} // namespace
} // namespace tremor::practice
