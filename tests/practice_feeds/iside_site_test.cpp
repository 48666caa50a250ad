#include "practice_feeds/iside_site.h"
#include "practice_feeds/practice_documents.h"

#include <algorithm>

namespace tremor::practice {
namespace {

using namespace std::chrono_literals;
using Query = std::map<std::string, std::string>;

const std::string indexPage = "/iside/standard/index.jsp";
const std::string resultPage = "/iside/standard/result.jsp";
const std::string downloadPath = "/iside/download";

// The clock stands so that the catalogue keeps the times of its document; a visitor with one
// cookie.
class IsideSiteTest : public ::testing::Test {
  protected:
    SiteAnswer visit(const std::string& path, Query query = {}) {
        SiteRequest request{{path, std::move(query)}, cookies};
        SiteAnswer answer = site.answer(request);
        if (!answer.setCookie.empty())
            cookies = "other=1; " + answer.setCookie.substr(0, answer.setCookie.find(';'));
        return answer;
    }
    SiteAnswer logIn(const std::string& password = std::string(IsideSite::password)) {
        return visit("/iside/standard/login.jsp",
                     {{"login_email", std::string(IsideSite::user)}, {"login_pwd", password}});
    }
    SiteAnswer search(Query form) {
        form.emplace("date_to", "2026/06/29");
        return visit("/iside/standard/search.jsp", std::move(form));
    }
    // The lines of the export of all events since a day.
    std::vector<std::string> exportSince(const std::string& day, Query more = {}) {
        more.emplace("date_from", day);
        search(std::move(more));
        return linesOf(visit(downloadPath).body);
    }
    static Query withoutLimits() {
        return {{"disable_magnitude", "on"}, {"disable_lat_lon", "on"}};
    }
    std::string control(const std::string& kind) {
        return site.control({"/practice/iside/fault", {{"kind", kind}}}).body;
    }

    UtcTime now = recentDocument().events.back().time + 5min;
    IsideSite site{{recentDocument(), drawFrom(laterDocument()), {}, [this] { return now; }}};
    std::string cookies;
};

TEST_F(IsideSiteTest, ShowsTheLoginFormToWhoeverHasNoSession) {
    for (const char* id : {"id=login_email", "id=login_pwd", "id=Login"})
        EXPECT_NE(visit(indexPage, {{"page", "login"}}).body.find(id), std::string::npos) << id;
    const std::string loginPage = indexPage + "?page=login";
    EXPECT_EQ(visit(indexPage).location, loginPage);
    EXPECT_EQ(visit(resultPage, {{"rst", "1"}, {"page", "EVENTS"}}).location, loginPage);
    EXPECT_EQ(search({}).location, loginPage);
    EXPECT_EQ(visit(downloadPath).status, 403);
}

TEST_F(IsideSiteTest, KeepsAWrongPasswordOnAPageThatSaysSo) {
    const SiteAnswer answer = logIn("wrong");
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.setCookie, "");
    EXPECT_NE(answer.body.find("Wrong user or password."), std::string::npos);
    EXPECT_NE(answer.body.find("id=login_email"), std::string::npos);
    EXPECT_EQ(visit(downloadPath).status, 403);
}

TEST_F(IsideSiteTest, OpensASessionThatScriptsCannotReadAndGoesHome) {
    const SiteAnswer answer = logIn();
    EXPECT_NE(answer.setCookie.find("; Path=/iside; HttpOnly"), std::string::npos);
    EXPECT_NE(answer.body.find("location.replace('" + indexPage + "')"), std::string::npos);
    EXPECT_EQ(visit(indexPage).status, 200);
    EXPECT_EQ(visit(indexPage).location, "");
    EXPECT_EQ(visit(indexPage, {{"page", "login"}}).location, indexPage);
    cookies = "JSESSIONID=0";
    EXPECT_EQ(visit(downloadPath).status, 403);
}

TEST_F(IsideSiteTest, GivesEachLoginASessionOfItsOwn) {
    const std::string first = logIn().setCookie;
    EXPECT_NE(logIn().setCookie, first);
}

TEST_F(IsideSiteTest, ProposesTheDayOfTheSearchAndShowsItsResult) {
    logIn();
    const std::string form = visit(resultPage, {{"rst", "1"}, {"page", "EVENTS"}}).body;
    for (const char* id : {"id=disable_magnitude", "id=disable_lat_lon", "id=date_from",
                           "id=date_to", "id=search", "value='2026/06/29'"})
        EXPECT_NE(form.find(id), std::string::npos) << id;
    EXPECT_EQ(search(withoutLimits()).location, resultPage + "?page=EVENTS#result");
    EXPECT_NE(visit(resultPage, {{"page", "EVENTS"}}).body.find("id=result"), std::string::npos);
}

TEST_F(IsideSiteTest, ExportsAllEventsSinceTheDayInSemicolonForm) {
    logIn();
    const auto lines = exportSince("2026/06/15", withoutLimits());
    ASSERT_EQ(lines.size(), recentDocument().events.size() + 2);
    EXPECT_EQ(lines.front(), "#UTC;Latitude;Longitude;Depth;Magnitude;Source");
    EXPECT_EQ(lines[1], "2026-06-15 03:00:06.430;38.9802;15.3048;268.5;3.3;ISIDE");
    EXPECT_EQ(lines.back(), "\r");
    EXPECT_EQ(linesOf(site.control({"/practice/iside", {}}).body), lines);

    const auto later = exportSince("2026/06/29", withoutLimits());
    ASSERT_GT(later.size(), 2u);
    EXPECT_LT(later.size(), lines.size());
    EXPECT_TRUE(std::all_of(later.begin() + 1, later.end() - 1,
                            [](const auto& line) { return line.starts_with("2026-06-29 "); }));
}

TEST_F(IsideSiteTest, KeepsToItsOwnLimitsUntilTheyAreSwitchedOff) {
    logIn();
    const std::size_t all = exportSince("2026/06/15", withoutLimits()).size();
    const std::size_t anyMagnitude =
        exportSince("2026/06/15", {{"disable_magnitude", "on"}}).size();
    const std::size_t anyPosition = exportSince("2026/06/15", {{"disable_lat_lon", "on"}}).size();
    EXPECT_GT(anyMagnitude, 2u);
    EXPECT_LT(anyMagnitude, all);
    EXPECT_GT(anyPosition, 2u);
    EXPECT_LT(anyPosition, all);
}

TEST_F(IsideSiteTest, ExportsNothingForDaysThatAreNone) {
    logIn();
    for (const char* day : {"", "today", "2026/13/01", "2026/06/15 03:00:00"})
        EXPECT_EQ(exportSince(day, withoutLimits()).size(), 2u) << day;
}

TEST_F(IsideSiteTest, ExportsAnAddedEvent) {
    logIn();
    const std::string added = site.addEvent({});
    const auto lines = exportSince("2026/06/29", withoutLimits());
    EXPECT_EQ(lines[lines.size() - 2] + "\n", added);
}

TEST_F(IsideSiteTest, StallsThePagesThatAFaultNames) {
    const auto login = [this] { return visit(indexPage, {{"page", "login"}}).fault; };
    EXPECT_EQ(control("login-stalls"), "ok\n");
    EXPECT_EQ(login(), Fault::Stall);
    control("none");
    EXPECT_EQ(login(), Fault::None);
    logIn();
    const auto form = [this] { return visit(resultPage, {{"rst", "1"}}).fault; };
    EXPECT_EQ(form(), Fault::None);
    control("search-stalls");
    EXPECT_EQ(form(), Fault::Stall);
}

TEST_F(IsideSiteTest, RefusesTheRightPasswordAndChangesItsFormWhenToldTo) {
    control("login-refused");
    EXPECT_EQ(logIn().setCookie, "");
    control("form-changed");
    EXPECT_NE(logIn().setCookie, "");
    EXPECT_EQ(visit(resultPage, {{"rst", "1"}}).body.find("disable_magnitude"), std::string::npos);
}

TEST_F(IsideSiteTest, SpoilsTheExport) {
    logIn();
    search(withoutLimits());
    control("export-dropped");
    EXPECT_EQ(visit(downloadPath).fault, Fault::Cut);
    control("export-empty");
    const SiteAnswer empty = visit(downloadPath);
    EXPECT_EQ(empty.status, 200);
    EXPECT_EQ(empty.body, "");
    EXPECT_EQ(empty.fault, Fault::None);
}

TEST_F(IsideSiteTest, EndsTheSessionBeforeTheExport) {
    logIn();
    control("expired");
    EXPECT_EQ(visit(indexPage).status, 200);
    EXPECT_EQ(visit(downloadPath).status, 403);
    control("none");
    EXPECT_EQ(visit(indexPage).location, indexPage + "?page=login");
}

TEST_F(IsideSiteTest, RefusesAFaultThatItDoesNotKnow) {
    for (const char* kind : {"", "stall", "Expired"})
        EXPECT_EQ(site.control({"/practice/iside/fault", {{"kind", kind}}}).status, 400) << kind;
}

} // namespace
} // namespace tremor::practice
