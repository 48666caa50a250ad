#pragma once

#include "ingest/http_cookie.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tremor {

// A browser out of sight in which the program uses the pages of a web site as a person would. Its
// session (cookies) lives as long as this object. Calls are made on the user-interface thread.
class SiteBrowser {
  public:
    virtual ~SiteBrowser() = default;

    // Leaves the page and loads another one. ReadyState is below 4 until that is complete.
    virtual void Navigate(std::string_view url) = 0;

    static constexpr std::int32_t complete = 4;
    // 4 when the page is complete. One that could not be loaded never is.
    virtual std::int32_t ReadyState() const = 0;

    // The whole address of the page now shown, fragment included; "about:blank" without a page.
    virtual std::string LocationURL() const = 0;

    // From now on no page's faults are shown to the operator.
    virtual void setSilent() = 0;

    // Whether the page has an element with this id.
    virtual bool hasElement(std::string_view id) = 0;

    // Write the value of an element and click it. A page without such an element raises error 91.
    // When there is no page any more or it does not answer in time, nothing happens.
    virtual void setValue(std::string_view id, std::string_view value) = 0;
    virtual void click(std::string_view id) = 0;

    // All cookies of the session.
    virtual HttpCookies cookies() const = 0;
};

} // namespace tremor
