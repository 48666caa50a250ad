#include "alerts/pagerlink_settings.h"

#include "core/common_text.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <utility>

namespace tremor {

namespace {

using namespace std::chrono_literals;

constexpr auto turn = 100ms;
constexpr std::int32_t checkTurns = 30;
constexpr std::int32_t listTurns = 150;

} // namespace

PagerlinkSettings::PagerlinkSettings(std::unique_ptr<DatagramSocket> winsock, Prompts& prompts,
                                     Clock& clock, const Session& session)
    : winsock_(std::move(winsock)), prompts_(prompts), clock_(clock), session_(session) {
    winsock_->setDataArrival([this] { DataArrival(); });
}

void PagerlinkSettings::setServer(std::string_view host, std::uint16_t port) {
    host_ = host;
    port_ = port;
}

void PagerlinkSettings::DataArrival() {
    if (const std::optional<std::string> bytes = winsock_->receive()) {
        replyArrived_ = true;
        reply_ = pagerlinkText(*bytes);
    }
}

bool PagerlinkSettings::waitOneTurn() {
    clock_.pump();
    clock_.sleep(turn);
    ++waitCounter_;
    return !abandoned_ && !session_.waitsMustEnd();
}

PagerlinkSettings::Check
PagerlinkSettings::checkIfWork(const std::function<void(std::int32_t)>& showTurn) {
    winsock_->send(host_, port_, pagerlinkListRequest);
    bool ended = false;
    while (!replyArrived_ && waitCounter_ <= checkTurns && !ended) {
        ended = !waitOneTurn();
        if (!ended)
            showTurn(waitCounter_);
    }
    const bool works = replyArrived_ && waitCounter_ < checkTurns;
    waitCounter_ = 0;
    replyArrived_ = false;
    if (ended)
        return Check::Abandoned;
    return works ? Check::Works : Check::Failed;
}

bool PagerlinkSettings::waitForReply() {
    while (reply_.empty() && waitCounter_ <= listTurns) {
        winsock_->send(host_, port_, pagerlinkListRequest);
        if (!waitOneTurn())
            return false;
    }
    if (waitCounter_ < listTurns)
        return true;
    prompts_.showMessageBox({.text = "Impossible retrieve a list of users, check Settings please.",
                             .icon = BoxIcon::Critical});
    return false;
}

bool PagerlinkSettings::fillUsers(std::string_view selectedUsers) {
    const bool replied = waitForReply();
    if (replied) {
        const std::vector<std::string_view> selected = split(selectedUsers, '|');
        users_.clear();
        for (const std::string_view name : pagerlinkUsers(reply_))
            users_.push_back({std::string(name),
                              std::find(selected.begin(), selected.end(), name) != selected.end()});
    }
    waitCounter_ = 0;
    replyArrived_ = false;
    reply_.clear();
    return replied;
}

void PagerlinkSettings::toggle(std::size_t row) {
    if (row >= users_.size())
        return;
    users_[row].ticked = !users_[row].ticked;
    selection_.clear();
    for (const PagerlinkUser& user : users_) {
        if (user.ticked)
            selection_ += user.name + "|";
    }
    if (!selection_.empty())
        selection_.pop_back();
}

} // namespace tremor
