#include "ingest/iside_source.h"

#include "core/common_text.h"
#include "core/dates.h"

#include <algorithm>
#include <utility>

namespace tremor {

namespace {

constexpr std::string_view module = "Form - panel";
constexpr std::string_view eventsFile = "events.csv"; // by this name the import knows the source

constexpr std::string_view loginPage = "/iside/standard/index.jsp?page=login";
constexpr std::string_view homePage = "/iside/standard/index.jsp";
constexpr std::string_view searchPage = "/iside/standard/result.jsp?rst=1&page=EVENTS";
constexpr std::string_view resultPage = "/iside/standard/result.jsp?page=EVENTS#result";
constexpr std::string_view exportFile = "/iside/download?export=1&type=csv&data=EVENTS";

constexpr std::chrono::milliseconds tick{100};
constexpr std::chrono::milliseconds shortTurn{10};

} // namespace

IsideSource::IsideSource(FeedContext context, SiteBrowser& updateFromRemoteWbr,
                         PanelDownload& download, CsvImport& csvImport)
    : context_(std::move(context)),
      browser_(updateFromRemoteWbr),
      download_(download),
      csvImport_(csvImport) {}

void IsideSource::downloadCsvFromIside() {
    ProcedureTrace trace(context_.errors, module, "downloadCsvFromIside");
    Session& session = context_.session;
    session.PrimaryBusy = true;
    context_.status.setProgressRange(0, 100);
    std::string target;
    trace.step([&] { target = context_.temporaryFolder().append(eventsFile); });
    context_.status.setStatusText("Syncing from ISIDE...");
    if (logIn(trace) && search(trace) && fetchExport(target, trace)) {
        csvImport_.CsvFileName = target;
        csvImport_.readCSV(1);
        context_.status.setStatusText("ISIDE Synchronized");
    } else {
        context_.log.addLogToList("ISIDE Synchronization failed");
    }
    if (session.WaitCounter < Session::waitCounterLimit)
        session.WaitCounter = 0;
    session.PrimaryBusy = false;
}

bool IsideSource::logIn(ProcedureTrace& trace) {
    browser_.Navigate(address(loginPage));
    if (!waitUntil([this] { return pageComplete(); }, loginLimit))
        return false;
    if (browser_.hasElement("login_email")) { // else the last session is still alive
        const AppSettings& settings = context_.settings;
        trace.step([&] { browser_.setValue("login_email", settings.PrimarySourceUsername); });
        trace.step([&] { browser_.setValue("login_pwd", settings.PrimarySourcePassword); });
        trace.step([&] { browser_.click("Login"); });
    }
    return waitUntil([this] { return shows(homePage); }, loginLimit);
}

bool IsideSource::search(ProcedureTrace& trace) {
    context_.session.WaitCounter = 0;
    browser_.setSilent();
    browser_.Navigate(address(searchPage));
    if (!waitForSearchPage())
        return false;
    // The form's own limits on magnitude and position.
    trace.step([&] { browser_.click("disable_magnitude"); });
    trace.step([&] { browser_.click("disable_lat_lon"); });
    trace.step([&] { browser_.setValue("date_from", firstDay()); });
    trace.step([&] { browser_.click("search"); });
    return waitUntil([this] { return shows(resultPage); }, searchLimit);
}

bool IsideSource::fetchExport(const std::string& target, ProcedureTrace& trace) {
    context_.session.WaitCounter = 0;
    bool fetched = false;
    trace.step([&] { fetched = download_.fetchOnce(address(exportFile), target); });
    return fetched;
}

// A page that completes exactly at the limit has failed, too.
bool IsideSource::waitUntil(const std::function<bool()>& done, std::int32_t limit) {
    Session& session = context_.session;
    while (!done() && session.WaitCounter <= limit && !session.Closing) {
        context_.clock.sleep(tick);
        ++session.WaitCounter;
        context_.clock.pump();
    }
    return session.WaitCounter < limit && !session.Closing;
}

// Uncounted; short turns leave the processor to the page.
bool IsideSource::waitForSearchPage() {
    const auto end = context_.clock.steady() + searchPageLimit;
    while (!pageComplete() && !context_.session.waitsMustEnd() && context_.clock.steady() < end)
        context_.clock.sleep(shortTurn);
    return pageComplete() && !context_.session.waitsMustEnd();
}

std::string IsideSource::address(std::string_view path) const {
    return context_.hosts.Iside + std::string(path);
}

// "2021/01/14"
std::string IsideSource::firstDay() const {
    const std::string bounds =
        BuildUtcRangeBounds(context_.clock.now(), context_.settings.PrimaryLastNHours);
    std::string day(trimLeft(split(bounds, '|').front()).substr(0, 10));
    std::replace(day.begin(), day.end(), '-', '/');
    return day;
}

} // namespace tremor
