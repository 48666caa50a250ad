// Any bytes as replies of a Pagerlink server, one datagram a line feed: through the list of the
// settings window and through a dispatch to all users.
#include "alerts/pagerlink_settings.h"
#include "core/common_text.h"
#include "local_frame.h"

#include <algorithm>
#include <cstdint>
#include <deque>
#include <utility>

namespace {

using namespace tremor;
using fuzzing::CheckingStatus;

// A server that has sent its replies already and takes everything.
class FuzzedServer : public DatagramSocket {
  public:
    explicit FuzzedServer(std::string_view replies) {
        for (const std::string_view reply : split(replies, '\n'))
            waiting.emplace_back(reply);
    }
    void send(std::string_view, std::uint16_t, std::string_view bytes) override {
        if (bytes == pagerlinkListRequest)
            return;
        ++notices;
        CheckingStatus::require(bytes.starts_with("form"));
        CheckingStatus::require(bytes.find('\x02') != std::string_view::npos);
    }
    std::optional<std::string> receive() override {
        if (waiting.empty())
            return std::nullopt;
        std::string reply = std::move(waiting.front());
        waiting.pop_front();
        return reply;
    }
    void setDataArrival(std::function<void()> handler) override { arrival = std::move(handler); }

    std::deque<std::string> waiting;
    std::function<void()> arrival;
    std::size_t notices = 0;
};

// Each turn of a wait lets one datagram in.
class TurningClock : public fuzzing::StandingClock {
  public:
    void sleep(std::chrono::milliseconds) override { ++turns; }
    void pump() override {
        if (onPump)
            onPump();
    }
    std::function<void()> onPump;
    int turns = 0;
};

void fillTheWindow(std::string_view replies) {
    auto own = std::make_unique<FuzzedServer>(replies);
    FuzzedServer& server = *own;
    TurningClock clock;
    fuzzing::BoxCounter prompts;
    const Session session;
    PagerlinkSettings window(std::move(own), prompts, clock, session);
    clock.onPump = [&] { server.arrival(); };
    const bool filled = window.fillUsers("anna|bruno");
    CheckingStatus::require(filled == (prompts.boxes == 0));
    CheckingStatus::require(clock.turns <= 151);
    for (std::size_t row = 0; row <= window.users().size(); row += 7)
        window.toggle(row);
    std::size_t length = 0;
    for (const PagerlinkUser& user : window.users()) {
        CheckingStatus::require(user.name.find(' ') == std::string::npos);
        CheckingStatus::require(pagerlinkText(pagerlinkBytes(user.name)) == user.name);
        length += user.ticked ? user.name.size() + 1 : 0;
    }
    if (!window.users().empty())
        CheckingStatus::require(window.selection().size() + 1 == std::max<std::size_t>(length, 1));
}

void dispatch(std::string_view replies, Database& database) {
    FuzzedServer server(replies);
    TurningClock clock;
    fuzzing::BoxCounter prompts;
    bool ticksHeld = false;
    ErrorReport errors(
        prompts, [] { std::abort(); }, 0, ticksHeld);
    fuzzing::CountingLog log;
    const Session session;
    AppSettings settings;
    settings.enablePagerlink = 1;
    settings.PGLport = "7000";
    PagerlinkClient client(
        {settings, session, NumberLocale::point(), database, clock, log, errors, server});
    client.generateMsgPagerlink();
    CheckingStatus::require(clock.turns <= 101 && prompts.errors == 0);
    CheckingStatus::require(server.notices % 5 == 0);
    CheckingStatus::require(log.lines == 0 || server.notices == 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static fuzzing::TemporaryCatalogue catalogue;
    const std::string_view replies(reinterpret_cast<const char*>(data), size);
    CheckingStatus::require(pagerlinkBytes(pagerlinkText(replies)) == replies);
    fillTheWindow(replies);
    Database& database = catalogue.emptied();
    CheckingStatus::require(
        database.slsExe("insert into Events (UTC, Magnitude) values ('2021-01-14', '4.5')") == 0);
    dispatch(replies, database);
    return 0;
}
