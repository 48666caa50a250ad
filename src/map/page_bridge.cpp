#include "map/page_bridge.h"

#include "core/common_text.h"
#include "core/conversions.h"
#include "core/event_query.h"
#include "core/flag_scope.h"
#include "core/latest_hours.h"

#include <fmt/format.h>

#include <chrono>
#include <cmath>
#include <utility>

namespace tremor {
namespace {

constexpr std::string_view module = "Form - panel";
constexpr std::chrono::milliseconds waitTurn{10};
constexpr double scaleBarPixels = 40;
constexpr double metresPerKilometre = 1000;

// Codes of the page's messages.
constexpr double reloadMarkers = 1;
constexpr double markerClicked = 2;
constexpr double viewHasChanged = 3;
constexpr double pointerMoved = 77;
constexpr double mapClicked = 78;
constexpr double mapReady = 99;
constexpr double reloadSavedMap = 9999;

std::string coordinateText(double degrees, int integerDigits) {
    const std::string digits = FormatDotNumber(std::abs(degrees), 5, true);
    const std::size_t width = static_cast<std::size_t>(integerDigits) + 6; // ".00000"
    const std::string padded =
        digits.size() < width ? std::string(width - digits.size(), '0') + digits : digits;
    return (degrees < 0 ? "-" : " ") + padded;
}

// Label of a bar of 40 pixels: "12km ", "500m ", and with two decimals when there is no scale.
std::string scaleText(double metresPerPixel, const NumberLocale& locale) {
    const double metres = metresPerPixel * scaleBarPixels;
    if (metres >= metresPerKilometre)
        return fmt::format("{:.0f}km ", std::trunc(metres / metresPerKilometre));
    if (metres > 0)
        return fmt::format("{:.0f}m ", std::trunc(metres));
    std::string number = FormatDotNumber(std::abs(metres), 2, true);
    if (number.starts_with('0'))
        number.erase(0, 1);
    number = replaceAll(number, ".", LocaleDecimalSeparator(locale));
    return (metres < 0 ? "-" : "") + number + "m ";
}

} // namespace

PageBridge::PageBridge(PageBrowsers browsers, AppSettings& settings, Session& session, Clock& clock,
                       NumberLocale locale, BridgeSurroundings& surroundings, ErrorReport& errors)
    : browsers_(browsers),
      settings_(settings),
      session_(session),
      clock_(clock),
      locale_(std::move(locale)),
      surroundings_(surroundings),
      errors_(errors) {}

PageBridge::~PageBridge() {
    browsers_.WebBrowser1.setEvents(nullptr);
    browsers_.wbrSaveMaps.setEvents(nullptr);
}

void PageBridge::setObjectHTML() {
    browsers_.WebBrowser1.setEvents(&mainMapEvents_);
    browsers_.wbrSaveMaps.setEvents(&savedMapEvents_);
}

void PageBridge::HTML_onclick(const PageSnapshot& page) {
    ProcedureTrace trace(errors_, module, "HTML_onclick");
    const double code = ParseDotDouble(page.VALORE, locale_);
    if (code == reloadMarkers) {
        if (settings_.RangeHoursOfEventsInMap > 0) {
            const std::string range = latestHours(trace, clock_, settings_, session_);
            trace.step([&] { surroundings_.visualizeEventsinRectangle(range); });
        }
        clearMessage(page);
    } else if (code == markerClicked) {
        event_click_map(page.MARSEL);
        clearMessage(page);
    } else if (code == viewHasChanged) {
        viewChanged(trace);
    } else if (code == pointerMoved) {
        showCoordinates(page.Cursore);
    } else if (code == mapClicked) {
        takeSearchPlace(page);
    } else if (code == mapReady) {
        clearMessage(page); // first: the legend's own click bubbles into this handler
        trace.step([&] { surroundings_.showSavedLegend(); });
    }
}

// A message that the page left without a click is answered at the next movement at the latest.
void PageBridge::HTML_onmousemove(const PageSnapshot& page) {
    const ProcedureTrace trace(errors_, module, "HTML_onmousemove");
    HTML_onclick(page);
}

// A drag sends more messages than the catalogue can answer: those that come in meanwhile are
// answered together, with the latest view.
void PageBridge::viewChanged(ProcedureTrace& trace) {
    if (answeringView_) {
        viewChangedAgain_ = true;
        return;
    }
    const FlagScope answering(answeringView_);
    do {
        viewChangedAgain_ = false;
        if (session_.SearchModeOn == 0 && surroundings_.workspaceIsGlobal())
            showEventsOfView(trace);
        boundsVisualizedMap();
        surroundings_.showScale(scaleLabel_);
    } while (viewChangedAgain_ && !session_.waitsMustEnd());
}

void PageBridge::showEventsOfView(ProcedureTrace& trace) {
    boundsVisualizedMap();
    settings_.searchParQuery = rectangleCondition(bounds_, locale_) + " AND " +
                               latestHours(trace, clock_, settings_, session_);
    // A copy, because the table replaces a refused condition in the settings.
    const std::string condition = settings_.searchParQuery;
    const std::string events = std::string(selectEvents) + condition;
    trace.step([&] { surroundings_.FillGridEvents(condition, {}, {}); });
    trace.step([&] { surroundings_.eventsInMap(events); });
    trace.step([&] { surroundings_.pictureMagnitudeEvents(); });
    browsers_.WebBrowser1.replaceAttribute("MapClick", "VALORE", "3", {});
    browsers_.WebBrowser1.fire("eventi", Fire::Onclick);
    trace.step([&] { surroundings_.pin2gif(events + " order by UTC desc limit 1"); });
}

void PageBridge::showCoordinates(std::string_view cursor) {
    const std::size_t bar = cursor.find('|');
    const std::string_view left = trim(cursor.substr(0, bar));
    const std::string right =
        bar == std::string_view::npos ? std::string() : replaceAll(cursor.substr(bar), "|", {});
    const double latitude = roundHalfEven(ParseDotDouble(left, locale_), 5);
    const double longitude = roundHalfEven(ParseDotDouble(trim(right), locale_), 5);
    surroundings_.showMouseCoordinates(coordinateText(latitude, 2) + "  " +
                                       coordinateText(longitude, 3));
}

void PageBridge::takeSearchPlace(const PageSnapshot& page) {
    if (!surroundings_.searchWantsPlace())
        return;
    if (!page.Cursore.empty()) {
        const auto parts = split(page.Cursore, '|');
        surroundings_.setSearchPlace(trim(parts[0]),
                                     parts.size() > 1 ? trim(parts[1]) : std::string_view());
    }
    clearMessage(page);
}

void PageBridge::clearMessage(const PageSnapshot& page) {
    browsers_.WebBrowser1.replaceAttribute("MapClick", "VALORE", page.VALORE, {});
}

const MapBounds& PageBridge::boundsVisualizedMap() {
    const ProcedureTrace trace(errors_, module, "boundsVisualizedMap");
    WebBrowser& browser = browsers_.WebBrowser1;
    while (browser.ReadyState() != WebBrowser::complete && !session_.waitsMustEnd())
        clock_.sleep(waitTurn);
    const auto page = browser.snapshot();
    if (!page || page->selection.BLAT.empty())
        return bounds_;
    const auto dotText = [this](std::string_view text) {
        return CommaToDot(doubleToText(ParseDotDouble(text, locale_), locale_));
    };
    view_ = page->selection;
    bounds_ = {dotText(view_.BLAT), dotText(view_.BLNG), dotText(view_.TLAT), dotText(view_.TLNG)};
    scaleLabel_ = scaleText(ParseDotDouble(view_.SCALE, locale_), locale_);
    return bounds_;
}

void PageBridge::event_click_map(std::string_view markerTitle) {
    ProcedureTrace trace(errors_, module, "event_click_map");
    const std::size_t mark = markerTitle.find('M');
    if (mark == std::string_view::npos || mark == 0)
        return;
    trace.step([&] { surroundings_.selectEventOfMap(markerTitle.substr(0, mark - 1)); });
}

void PageBridge::WRKSp_onclick(const PageSnapshot& page) {
    ProcedureTrace trace(errors_, module, "WRKSp_onclick");
    if (ParseDotDouble(page.VALORE, locale_) != reloadSavedMap ||
        browsers_.wbrSaveMaps.ReadyState() != WebBrowser::complete)
        return;
    std::string condition;
    if (settings_.LastWorkSpace != "Global")
        condition = settings_.searchParQuery;
    else if (settings_.RangeHoursOfEventsInMap > 0)
        condition = latestHours(trace, clock_, settings_, session_);
    else
        return;
    trace.step(
        [&] { surroundings_.eventsInwebBrowserWorkspace(std::string(selectEvents) + condition); });
}

void PageBridge::WebBrowser1_DocumentComplete() {
    ProcedureTrace trace(errors_, module, "WebBrowser1_DocumentComplete");
    if (!mainMapPending_ || !lastEventMapPending_)
        return;
    mainMapPending_ = false;
    lastEventMapPending_ = false;
    mapLive_ = true;
    documentReady_ = true;
    if (settings_.LastWorkSpace != "Global")
        trace.step([&] {
            surroundings_.eventsInMap(std::string(selectEvents) + settings_.searchParQuery);
        });
}

void PageBridge::mapsLeft() {
    mainMapPending_ = false;
    lastEventMapPending_ = false;
    mapLive_ = false;
    documentReady_ = false;
}

} // namespace tremor
