#pragma once

#include "map/picture.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// A map page as the logic sees it. The pages and the program talk through hidden <input> elements
// of the page: the program sets attributes on one and fires it; the page sets attributes and lets
// a click bubble to its document. Everything that crosses is text.
namespace tremor {

// How an element is fired.
enum class Fire {
    Onclick, // its own handler alone
    Click,   // a real click: its own handler, then the handlers of the document
};

// What became of a command. Whatever it is, the program goes on.
enum class PageStatus {
    Done,
    NoElement, // no page, or the page has no such element or no handler on it
    TimedOut,  // the page did not answer in time; it may carry the command out later
    PageGone,  // the page died, or another one was navigated to meanwhile, or the program closes
    Busy,      // another command is waiting for its answer
};

// The view of a map, dot texts as the page wrote them; empty before the first one. South-west and
// north-east corner and centre in degrees.
struct PageView {
    std::string CLAT;
    std::string CLNG;
    std::string ZOOM;
    std::string BLAT;
    std::string BLNG;
    std::string TLAT;
    std::string TLNG;
    std::string SCALE; // metres a pixel at the centre
};

// The page's answering elements at one moment.
struct PageSnapshot {
    std::string VALORE;  // code of the page's last message: "2" a marker was clicked; may be empty
    std::string Cursore; // "42.12345 | 12.34500": where the pointer is, or was clicked
    std::string MARSEL;  // title of the last clicked marker: "2021-01-14 05:45:26.600 Mg: 3.1"
    PageView selection;
};

// Receives what a page sends by itself.
class PageEvents {
  public:
    virtual ~PageEvents() = default;

    // A click or a movement of the mouse has reached the document, after the page's own handlers.
    // The snapshot was taken at that moment; the page may be further by now.
    virtual void documentClicked(const PageSnapshot& page) = 0;
    virtual void documentMouseMoved(const PageSnapshot& page) = 0;

    // A navigation has ended, with or without a page.
    virtual void documentComplete() = 0;
};

// One embedded browser. Calls are made on the user-interface thread.
class WebBrowser {
  public:
    virtual ~WebBrowser() = default;

    // Null: nobody listens.
    virtual void setEvents(PageEvents* events) = 0;

    // Leaves the page and loads another one: the path of a local file, read anew and never from a
    // cache, or "about:blank". ReadyState is below 4 until that ends.
    virtual void Navigate(std::string_view target) = 0;

    static constexpr std::int32_t complete = 4;
    virtual std::int32_t ReadyState() const = 0;

    // The target of the last navigation; "about:blank" before the first one.
    virtual std::string LocationURL() const = 0;

    // Sets an attribute (names in any case) before the next command, or at the end of this turn of
    // the event loop when none follows. Written in the given order; what is written to a page that
    // is left before that is dropped with it.
    virtual void setAttribute(std::string_view element, std::string_view name,
                              std::string_view value) = 0;

    // The same, unless the attribute holds another text than `expected` by then: a message that the
    // page has sent meanwhile is not wiped out.
    virtual void replaceAttribute(std::string_view element, std::string_view name,
                                  std::string_view expected, std::string_view value) = 0;

    // Writes what waits to be written and fires the element, in one round trip. What bubbled to the
    // document meanwhile has been handed to PageEvents when the call returns, or, when the call
    // comes from a handler of PageEvents, will be when that has returned. Bounded in time.
    virtual PageStatus fire(std::string_view element, Fire how) = 0;

    // The answering elements as they are now, in one round trip; nothing when the page gave no
    // answer. Bounded in time. Inside a call of PageEvents use the snapshot given there.
    virtual std::optional<PageSnapshot> snapshot() = 0;

    // The page as it is painted, also behind other windows, in pixels of the control; nothing
    // when there is no page or its area is hidden.
    virtual std::optional<Picture> picture() = 0;
};

// The browsers of the main window, under the names of their controls.
struct PageBrowsers {
    WebBrowser& WebBrowser1; // the workspace map
    WebBrowser& wbr_last;    // the map of the newest event
    WebBrowser& wbrSaveMaps; // off screen: the map of which pictures are saved
};

} // namespace tremor
