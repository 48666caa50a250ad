#pragma once

#include <string_view>

namespace tremor {

// A map page, driven through its hidden elements. Calls on a page that does not answer do nothing.
class MapElements {
  public:
    virtual ~MapElements() = default;

    // False while a page is being loaded.
    virtual bool complete() const = 0;

    // Sets an attribute (names in any case) before the next firing.
    virtual void setAttribute(std::string_view element, std::string_view name,
                              std::string_view value) = 0;

    // Fire an element and wait for the page's answer, bounded in time: its own handler alone, or
    // with a click that goes on to the document. Whoever owns the page may have closed it when the
    // call returns.
    virtual void onclick(std::string_view element) = 0;
    virtual void click(std::string_view element) = 0;
};

} // namespace tremor
