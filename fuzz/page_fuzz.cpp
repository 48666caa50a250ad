// Any bytes that a map page sends and that go into one. The first byte tells as what: the fields of
// a page's message, which end in zero bytes, on a system with a point or with a comma; an address
// and a zoom level of a page; or the name of a workspace's page.
#include "core/common_text.h"
#include "local_frame.h"
#include "map/map_page.h"
#include "map/page_bridge.h"
#include "map/page_values.h"
#include "map/workspace_page_name.h"

#include <array>
#include <cstdint>
#include <string>
#include <utility>

namespace {

using namespace tremor;
using fuzzing::CheckingStatus;

// A page that stands and always answers the same.
class SpeakingPage : public WebBrowser {
  public:
    explicit SpeakingPage(PageSnapshot page) : page_(std::move(page)) {}

    void setEvents(PageEvents*) override {}
    void Navigate(std::string_view) override { std::abort(); }
    std::int32_t ReadyState() const override { return complete; }
    std::string LocationURL() const override { return "about:blank"; }
    void setAttribute(std::string_view, std::string_view, std::string_view) override {}
    void replaceAttribute(std::string_view, std::string_view, std::string_view,
                          std::string_view) override {}
    PageStatus fire(std::string_view, Fire) override { return PageStatus::Done; }
    std::optional<PageSnapshot> snapshot() override { return page_; }
    std::optional<Picture> picture() override { return std::nullopt; }

  private:
    PageSnapshot page_;
};

// What the page says must give statements that run, and texts of one line.
class CheckingSurroundings : public BridgeSurroundings {
  public:
    explicit CheckingSurroundings(Database& database) : database_(database) {}

    bool workspaceIsGlobal() override { return true; }
    void FillGridEvents(std::string_view filter, std::string_view, std::string_view) override {
        eventsInMap("select * from Events where " + std::string(filter));
    }
    void eventsInMap(std::string_view sql) override {
        CheckingStatus::require(database_.slsSel(sql) == 0);
    }
    void eventsInwebBrowserWorkspace(std::string_view sql) override { eventsInMap(sql); }
    void visualizeEventsinRectangle(std::string_view utcFilter) override {
        FillGridEvents(utcFilter, {}, {});
    }
    void pin2gif(std::string_view lastEventSql) override { eventsInMap(lastEventSql); }
    void pictureMagnitudeEvents() override {}
    void selectEventOfMap(std::string_view utc) override {
        CheckingStatus::require(utc.find('M') == std::string_view::npos);
    }
    void showMouseCoordinates(std::string_view text) override {
        CheckingStatus::require(text.find_first_not_of("0123456789.- ") == std::string_view::npos);
    }
    void showScale(std::string_view label) override {
        CheckingStatus::require(label.empty() || label.ends_with("m ")); // empty: no view yet
    }
    void showSavedLegend() override {}
    bool searchWantsPlace() override { return true; }
    void setSearchPlace(std::string_view latitude, std::string_view longitude) override {
        CheckingStatus::require(latitude.find('|') == std::string_view::npos);
        CheckingStatus::require(longitude.find('|') == std::string_view::npos);
    }

  private:
    Database& database_;
};

void hear(std::string_view bytes, const NumberLocale& locale) {
    static fuzzing::TemporaryCatalogue catalogue;
    PageSnapshot said;
    const std::array<std::string*, 11> fields{
        &said.VALORE,         &said.Cursore,        &said.MARSEL,         &said.selection.CLAT,
        &said.selection.CLNG, &said.selection.ZOOM, &said.selection.BLAT, &said.selection.BLNG,
        &said.selection.TLAT, &said.selection.TLNG, &said.selection.SCALE};
    const auto parts = split(bytes, '\0');
    for (std::size_t i = 0; i < fields.size() && i < parts.size(); ++i)
        *fields.at(i) = parts[i];

    SpeakingPage page(said);
    CheckingSurroundings surroundings(catalogue.emptied());
    AppSettings settings;
    settings.RangeHoursOfEventsInMap = 24;
    Session session;
    fuzzing::StandingClock clock;
    fuzzing::IgnoringPrompts prompts;
    bool ticksHeld = false;
    ErrorReport errors(
        prompts, [] { std::abort(); }, 0, ticksHeld);
    PageBridge bridge({page, page, page}, settings, session, clock, locale, surroundings, errors);
    bridge.HTML_onclick(said);
    bridge.HTML_onmousemove(said);
    bridge.WRKSp_onclick(said);
    bridge.boundsVisualizedMap();
    CheckingStatus::require(prompts.errors == 0);
}

std::string decoded(std::string_view text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            bytes += text[i];
            continue;
        }
        CheckingStatus::require(i + 2 < text.size());
        bytes += static_cast<char>(std::stoi(std::string(text.substr(i + 1, 2)), nullptr, 16));
        i += 2;
    }
    return bytes;
}

void fill(std::string_view bytes) {
    const std::string address = percentEncoded(bytes);
    CheckingStatus::require(address.find_first_of("'\"<>&\\ \r\n") == std::string::npos);
    CheckingStatus::require(decoded(address) == bytes);
    for (const NumberLocale& locale : {NumberLocale::point(), NumberLocale::comma()}) {
        const std::string zoom = zoomLiteral(bytes, locale);
        CheckingStatus::require(zoom.find_first_not_of("0123456789.E+-") == std::string::npos);
        char* end = nullptr;
        std::strtod(zoom.c_str(), &end);
        CheckingStatus::require(!zoom.empty() && end == zoom.c_str() + zoom.size());
    }
}

// A folder with settings and the page of another workspace.
void name(std::string_view bytes) {
    static fuzzing::TemporaryCatalogue catalogue;
    static fuzzing::LocalFrame folder(catalogue.emptied());
    folder.write("settings.ini", "[settings]");
    folder.write("notes", "of the operator");
    folder.write("Italy", pageOpening);
    if (!mayNameWorkspacePage(folder.root, bytes))
        return;
    CheckingStatus::require(bytes.find('\0') == std::string_view::npos);
    const std::filesystem::path page = std::filesystem::path(folder.root) / bytes;
    CheckingStatus::require(page.lexically_normal().parent_path() == folder.root);
    std::error_code noSuchName;
    CheckingStatus::require(bytes == "Italy" || !std::filesystem::exists(page, noSuchName));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    switch (data[0] % 4) {
    case 0:
        hear(bytes, NumberLocale::point());
        break;
    case 1:
        hear(bytes, NumberLocale::comma());
        break;
    case 2:
        fill(bytes);
        break;
    default:
        name(bytes);
    }
    return 0;
}
