#include "practice_feeds/iside_site.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <random>
#include <utility>

namespace tremor::practice {

namespace {

using namespace std::chrono_literals;

constexpr std::string_view sessionCookie = "JSESSIONID=";
constexpr const char* indexPath = "/iside/standard/index.jsp";
constexpr const char* loginPath = "/iside/standard/login.jsp";
constexpr const char* resultPath = "/iside/standard/result.jsp";
constexpr const char* searchPath = "/iside/standard/search.jsp";
constexpr const char* downloadPath = "/iside/download";

constexpr std::pair<std::string_view, IsideFault> faultKinds[] = {
    {"none", IsideFault::None},
    {"login-stalls", IsideFault::LoginStalls},
    {"login-refused", IsideFault::LoginRefused},
    {"form-changed", IsideFault::FormChanged},
    {"search-stalls", IsideFault::SearchStalls},
    {"export-dropped", IsideFault::ExportDropped},
    {"export-empty", IsideFault::ExportEmpty},
    {"expired", IsideFault::Expired}};

SiteAnswer page(std::string_view body) {
    return {{200,
             fmt::format("<!DOCTYPE html><html><head><title>ISIDE</title></head><body>{}</body>"
                         "</html>\n",
                         body),
             "text/html;charset=UTF-8"}};
}

SiteAnswer redirect(std::string location) {
    SiteAnswer answer;
    answer.status = 302;
    answer.location = std::move(location);
    return answer;
}

// "a=1; JSESSIONID=0f; b=2" gives "0f".
std::string sessionOf(std::string_view cookies) {
    const std::size_t start = cookies.find(sessionCookie);
    if (start == std::string_view::npos)
        return {};
    const std::string_view value = cookies.substr(start + sessionCookie.size());
    return std::string(value.substr(0, value.find(';')));
}

std::string newSession() {
    std::random_device random;
    return fmt::format("{:08x}{:08x}{:08x}{:08x}", random(), random(), random(), random());
}

// "2021/01/14", in UTC.
std::optional<UtcTime> dayOf(std::string text) {
    std::replace(text.begin(), text.end(), '/', '-');
    return text.size() == 10 ? parseUtc(text) : std::nullopt;
}

// "2026-06-15 03:00:06.430;38.9802;15.3048;268.5;3.3;ISIDE"
std::string csvLine(const FdsnEvent& event) {
    std::string time = formatUtc(event.time);
    time.replace(time.find('T'), 1, " ");
    time.resize(time.size() - 3);
    return fmt::format("{};{};{};{};{};ISIDE\n", time, event.latitude, event.longitude,
                       event.depth(), event.magnitude);
}

} // namespace

IsideSite::IsideSite(GrowingCatalogue catalogue) : catalogue_(std::move(catalogue)) {}

std::vector<std::string> IsideSite::paths() {
    return {indexPath, loginPath, resultPath, searchPath, downloadPath};
}

std::vector<std::string> IsideSite::controlPaths() {
    return {"/practice/iside", "/practice/iside/fault"};
}

std::string IsideSite::addEvent(const EventWish& wish) {
    const std::lock_guard lock(mutex_);
    return csvLine(catalogue_.addEvent(wish));
}

SiteAnswer IsideSite::answer(const SiteRequest& request) {
    const std::lock_guard lock(mutex_);
    catalogue_.advance();
    const bool isDownload = request.path == downloadPath;
    if (isDownload && fault_ == IsideFault::Expired)
        sessions_.clear();
    const auto session = sessions_.find(sessionOf(request.cookies));
    const bool loggedIn = session != sessions_.end();
    if (isDownload)
        return download(loggedIn ? &session->second : nullptr);
    if (request.path == loginPath)
        return login(request);
    if (request.path == indexPath)
        return index(request, loggedIn);
    if (!loggedIn)
        return redirect(fmt::format("{}?page=login", indexPath));
    if (request.path == searchPath)
        return search(request, session->second);
    return result(request, session->second);
}

SiteAnswer IsideSite::index(const SiteRequest& request, bool loggedIn) {
    const bool wantsLogin = request.value("page") == "login";
    if (!loggedIn)
        return wantsLogin ? loginPage({}) : redirect(fmt::format("{}?page=login", indexPath));
    return wantsLogin ? redirect(indexPath) : page("<h1>ISIDE</h1>Welcome.");
}

SiteAnswer IsideSite::loginPage(std::string_view message) const {
    SiteAnswer answer =
        page(fmt::format("<p>{}</p><form method=post action={}><input id=login_email "
                         "name=login_email><input id=login_pwd name=login_pwd type=password><input "
                         "id=Login type=submit value=Login></form>",
                         message, loginPath));
    if (fault_ == IsideFault::LoginStalls)
        answer.fault = Fault::Stall;
    return answer;
}

SiteAnswer IsideSite::login(const SiteRequest& request) {
    if (fault_ == IsideFault::LoginRefused || request.value("login_email") != user ||
        request.value("login_pwd") != password)
        return loginPage("Wrong user or password.");
    const std::string session = newSession();
    sessions_[session] = {.firstDay = today(), .lastDay = today()};
    SiteAnswer answer = page(fmt::format("<script>location.replace('{}')</script>", indexPath));
    answer.setCookie = fmt::format("{}{}; Path=/iside; HttpOnly", sessionCookie, session);
    return answer;
}

SiteAnswer IsideSite::result(const SiteRequest& request, const Search& search) {
    if (request.value("rst") == "1")
        return searchForm();
    return page(fmt::format("<p>Events found.</p><p id=result>{}</p>", found(search).size()));
}

SiteAnswer IsideSite::searchForm() const {
    const char* magnitude =
        fault_ == IsideFault::FormChanged ? "any_magnitude" : "disable_magnitude";
    SiteAnswer answer = page(fmt::format(
        "<form method=post action={0}><input type=checkbox id={1} name={1}><input type=checkbox "
        "id=disable_lat_lon name=disable_lat_lon><input id=date_from name=date_from "
        "value='{2}'><input id=date_to name=date_to value='{2}'><input id=search type=submit "
        "value=Search></form>",
        searchPath, magnitude, today()));
    if (fault_ == IsideFault::SearchStalls)
        answer.fault = Fault::Stall;
    return answer;
}

SiteAnswer IsideSite::search(const SiteRequest& request, Search& search) const {
    search = {.firstDay = request.value("date_from"),
              .lastDay = request.value("date_to"),
              .anyMagnitude = request.find("disable_magnitude") != nullptr,
              .anyPosition = request.find("disable_lat_lon") != nullptr};
    return redirect(fmt::format("{}?page=EVENTS#result", resultPath));
}

SiteAnswer IsideSite::download(const Search* search) {
    if (search == nullptr)
        return {{403, "Please log in.\n"}};
    std::string text = "#UTC;Latitude;Longitude;Depth;Magnitude;Source\n";
    for (const FdsnEvent& event : found(*search))
        text += csvLine(event);
    text += "\r\n";
    lastExport_ = text;
    SiteAnswer answer{{200, std::move(text), "text/csv;charset=UTF-8"}};
    if (fault_ == IsideFault::ExportEmpty)
        answer.body.clear();
    if (fault_ == IsideFault::ExportDropped)
        answer.fault = Fault::Cut;
    return answer;
}

std::vector<FdsnEvent> IsideSite::found(const Search& search) {
    const std::optional<UtcTime> start = dayOf(search.firstDay);
    const std::optional<UtcTime> lastDay = dayOf(search.lastDay);
    std::vector<FdsnEvent> events;
    if (!start || !lastDay)
        return events;
    const auto wanted = [&](const FdsnEvent& event) {
        return event.time >= *start && event.time < *lastDay + 24h &&
               (search.anyMagnitude || event.magnitude >= smallestMagnitude) &&
               (search.anyPosition || (event.latitude >= 40 && event.latitude <= 44 &&
                                       event.longitude >= 10 && event.longitude <= 15));
    };
    std::copy_if(catalogue_.events().begin(), catalogue_.events().end(), std::back_inserter(events),
                 wanted);
    return events;
}

std::string IsideSite::today() const {
    std::string day = formatUtc(catalogue_.now()).substr(0, 10);
    std::replace(day.begin(), day.end(), '-', '/');
    return day;
}

Answer IsideSite::control(const Request& request) {
    const std::lock_guard lock(mutex_);
    if (!request.path.ends_with("/fault"))
        return {200, lastExport_};
    const std::string kind = request.value("kind");
    const auto* const found = std::find_if(std::begin(faultKinds), std::end(faultKinds),
                                           [&](const auto& entry) { return entry.first == kind; });
    if (found == std::end(faultKinds))
        return {400, "kind is login-stalls, login-refused, form-changed, search-stalls, "
                     "export-dropped, export-empty, expired or none\n"};
    fault_ = found->second;
    return {200, "ok\n"};
}

} // namespace tremor::practice
