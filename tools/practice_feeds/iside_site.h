#pragma once

#include "practice_feeds/fault_plan.h"
#include "practice_feeds/growing_catalogue.h"
#include "practice_feeds/practice_service.h"

#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace tremor::practice {

struct SiteRequest : Request {
    std::string cookies; // "a=1; b=2"
};

struct SiteAnswer : Answer {
    std::string location = {};  // where it redirects; empty: nowhere
    std::string setCookie = {}; // "a=1; Path=/"; empty: none
    Fault fault = Fault::None;  // by which it is spoilt on its way
};

// What the ISIDE site does in place of its good answers.
enum class IsideFault {
    None,
    LoginStalls,   // the login page never completes
    LoginRefused,  // also of the right password
    FormChanged,   // the search form has no disable_magnitude any more
    SearchStalls,  // the search form never completes
    ExportDropped, // half of the export, then the connection closes
    ExportEmpty,   // an export without a byte
    Expired,       // the session is over when the export is asked for
};

// The ISIDE web site: a person logs in, fills the search form and fetches the export of what was
// found. The session is a cookie for /iside that scripts cannot read. A login goes to the home page
// by a script, a search to its result by a redirect.
//
// The form's own limits are smallestMagnitude and the area from 40 to 44 degrees north and 10 to
// 15 east; its days (UTC) are today's until others are written.
//
// Control requests:
//   /practice/iside                   the last export, as it should have arrived
//   /practice/iside/fault?kind=KIND   login-stalls, login-refused, form-changed, search-stalls,
//                                     export-dropped, export-empty, expired or none
class IsideSite : public EventSource {
  public:
    static constexpr std::string_view user = "operator@example.org";
    static constexpr std::string_view password = "secret";
    static constexpr double smallestMagnitude = 2.5;

    explicit IsideSite(GrowingCatalogue catalogue);

    static std::vector<std::string> paths();
    static std::vector<std::string> controlPaths();

    // Calls come from several threads.
    SiteAnswer answer(const SiteRequest& request);
    Answer control(const Request& request);

    std::string_view name() const override { return "iside"; }
    std::string addEvent(const EventWish& wish) override;

  private:
    // What the form holds when it is sent.
    struct Search {
        std::string firstDay; // "2021/01/14"
        std::string lastDay;
        bool anyMagnitude = false;
        bool anyPosition = false;
    };
    using Sessions = std::map<std::string, Search>;

    SiteAnswer index(const SiteRequest& request, bool loggedIn);
    SiteAnswer login(const SiteRequest& request);
    SiteAnswer loginPage(std::string_view message) const;
    SiteAnswer result(const SiteRequest& request, const Search& search);
    SiteAnswer searchForm() const;
    SiteAnswer search(const SiteRequest& request, Search& search) const;
    SiteAnswer download(const Search* search);
    std::vector<FdsnEvent> found(const Search& search);
    std::string today() const;

    std::mutex mutex_;
    GrowingCatalogue catalogue_;
    IsideFault fault_ = IsideFault::None;
    Sessions sessions_;
    std::string lastExport_;
};

} // namespace tremor::practice
