#include "practice_feeds/ingv_feed.h"

#include "practice_feeds/fdsn_selection.h"

#include <stdexcept>
#include <utility>

namespace tremor::practice {

IngvFeed::IngvFeed(GrowingCatalogue catalogue, bool answersWhole)
    : catalogue_(std::move(catalogue)), answersWhole_(answersWhole) {}

Answer IngvFeed::answer(const Request& request) {
    const std::lock_guard lock(mutex_);
    Selection selection;
    try {
        selection = readSelection(request, "text", "xml");
    } catch (const std::invalid_argument& error) {
        return badRequest(request, error.what(), catalogue_.now());
    }
    catalogue_.advance();
    if (answersWhole_)
        return {200, catalogue_.text()};
    const FdsnDocument document{catalogue_.header(), selection.of(catalogue_.events())};
    return document.events.empty() ? Answer{204} : Answer{200, document.text()};
}

std::string IngvFeed::addEvent(const EventWish& wish) {
    const std::lock_guard lock(mutex_);
    return catalogue_.addEvent(wish).line();
}

std::string IngvFeed::served() {
    const std::lock_guard lock(mutex_);
    catalogue_.advance();
    return catalogue_.text();
}

} // namespace tremor::practice
