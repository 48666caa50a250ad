#include "journeys/notification_journey.h"

#include "journeys/source_rows.h"
#include "support/texts.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>

namespace tremor::journeys {
namespace {

using namespace std::chrono_literals;

constexpr char importedFromEmsc[] = " Events imported from EMSC";

// From these magnitudes on the sounds level1.wav to level4.wav ring.
constexpr std::array<double, 4> levels{-5, 1.5, 2.5, 3.5};

std::vector<std::string> notifyingSettings(const std::vector<std::string>& more) {
    std::vector<std::string> lines{"UsePrimaryDataSource=1",
                                   "IsideOrIngv=1",
                                   "PrimaryLastNHours=24",
                                   "UseAlternateDataSource=1",
                                   "EmscOrUsgs=0",
                                   "LastWorkSpace=World",
                                   "SMTPserver=localhost",
                                   "SMTPusername=operator",
                                   "SMTPpassword=secret",
                                   "SMTPreqSSL=1",
                                   "SMTPfromName=Control Room",
                                   "SMTPfromEmail=room@example.org",
                                   "SMTPrecipient=first@example.org, second@example.org",
                                   "enableEmail=1",
                                   "MagToSend=-5",
                                   "PGLserver=127.0.0.1",
                                   "PGLAllOrSelected=0",
                                   "enablePagerlink=1",
                                   "TelegramToken=1:practice",
                                   "enableTelegram=1"};
    for (std::size_t i = 0; i < levels.size(); ++i) {
        lines.push_back(fmt::format("MagLevel{}={}", i + 1, levels[i]));
        lines.push_back(fmt::format("MagLevelSound{0}=Sounds/level{0}.wav", i + 1));
    }
    lines.insert(lines.end(), more.begin(), more.end());
    return lines;
}

// The bytes of the chunk "data" of a WAV file with the usual head.
std::string samplesOf(const std::string& wav) {
    const std::size_t chunk = wav.find("data", 12);
    return chunk == std::string::npos ? "" : wav.substr(chunk + 8);
}

std::uint32_t circleColour(const std::string& depth) {
    constexpr std::array<double, 5> bounds{5, 10, 20, 50, 100}; // km
    constexpr std::array<std::uint32_t, 6> colours{0xFF9900, 0xFFFF00, 0x33FF00,
                                                   0x0033FF, 0x9933FF, 0xFF0000};
    const auto bound = std::lower_bound(bounds.begin(), bounds.end(), std::stod(depth));
    return colours[static_cast<std::size_t>(bound - bounds.begin())];
}

} // namespace

std::string NotificationJourney::soundOf(const std::string& magnitude) {
    std::size_t level = levels.size();
    while (level > 1 && std::stof(magnitude) < static_cast<float>(levels[level - 1]))
        --level;
    return fmt::format("Sounds/level{}.wav", level);
}

NotificationJourney::NotificationJourney(const std::vector<std::string>& moreSettings,
                                         const std::vector<std::string>& locators,
                                         const std::vector<std::string>& serviceOptions)
    : MapJourney(notifyingSettings(moreSettings), locators, serviceOptions) {
    journey_.addHost("CaFile=" + mail_.certificateFile());
    journey_.addSetting(fmt::format("SMTPport={}", mail_.port()));
    journey_.addSetting("PGLport=" + linesOf("pagerlink").at(0));
    journey_.addVariable("SDL_AUDIODRIVER=disk");
    journey_.addVariable("SDL_DISKAUDIOFILE=" + soundFile());
    journey_.change("catalogue.sqlite", "insert into Workspace values ('World', 42, 12, 5, -90, "
                                        "-180, 90, 180, 0, 10, 0, 1000)");
    journey_.service(fmt::format("/practice/telegram/write?id={}&first_name=Anna", follower));
}

void NotificationJourney::pollForTheFirstTime() {
    startProgram();
    ASSERT_TRUE(poll()) << journey_.activityLog();
    ASSERT_TRUE(soonInLog(messagesSent, 1)) << journey_.activityLog();
    // The poll behind it finds everything of this one done, and nothing new.
    ASSERT_TRUE(poll()) << journey_.activityLog();
    ASSERT_TRUE(sentOnEveryChannel(1));
    forgetWhatWasSent();
}

// The wish to poll is lost while a poll runs, so it is said again.
bool NotificationJourney::poll() {
    const int before = countInLog(importedFromEmsc);
    for (int i = 0; i < 6; ++i) {
        journey_.key("F5");
        if (journey_.waitForLog(importedFromEmsc, before + 1, 20s))
            return true;
    }
    return false;
}

void NotificationJourney::forgetWhatWasSent() {
    mailsBefore_ = mail_.mailCount();
    journey_.service("/practice/pagerlink/clear");
    journey_.service("/practice/telegram/clear");
    std::filesystem::remove(soundFile());
}

EventRow NotificationJourney::addEventOfIngv() {
    return rowsOfDocument(journey_.service("/practice/add")).at(0);
}

EventRow NotificationJourney::addEventOfIngv(const Place& place) {
    return rowsOfDocument(journey_.service(fmt::format("/practice/add?at={},{}", place.latitude,
                                                       place.longitude)))
        .at(0);
}

EventRow NotificationJourney::addEventOfEmsc() {
    return rowsOfRss(journey_.service("/practice/add?source=emsc")).at(0);
}

int NotificationJourney::countInLog(const std::string& text) {
    int count = 0;
    for (const std::string& line : testing::linesOf(journey_.activityLog()))
        count += line.ends_with(text) ? 1 : 0;
    return count;
}

bool NotificationJourney::soonInLog(const std::string& text, int count) {
    return soon([&] { return countInLog(text) >= count; });
}

std::vector<std::string> NotificationJourney::linesOf(const std::string& control) {
    return testing::linesOf(journey_.service("/practice/" + control));
}

std::vector<std::string> NotificationJourney::datagrams() {
    std::vector<std::string> lines = linesOf("pagerlink");
    lines.erase(lines.begin()); // the port
    std::erase(lines, "list");
    return lines;
}

bool NotificationJourney::listAsked() {
    const std::vector<std::string> lines = linesOf("pagerlink");
    return std::find(lines.begin(), lines.end(), "list") != lines.end();
}

std::vector<std::string> NotificationJourney::telegrams() {
    return linesOf("telegram");
}

::testing::AssertionResult NotificationJourney::sentOnEveryChannel(int events) {
    constexpr std::size_t noticesOfAnEvent = std::size_t{3} * 5; // users and values
    constexpr std::size_t messagesOfAnEvent = 2;
    const auto expected = static_cast<std::size_t>(events);
    if (mails() == events && datagrams().size() == expected * noticesOfAnEvent &&
        telegrams().size() == expected * messagesOfAnEvent)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << mails() << " mails, " << datagrams().size()
                                         << " datagrams, " << telegrams().size() << " messages\n"
                                         << journey_.activityLog();
}

// Behind the samples there is silence, which the program adds.
bool NotificationJourney::rang(const std::string& soundFile) const {
    const std::string samples = samplesOf(journey_.readFile(soundFile));
    const std::string played = testing::contentOf(this->soundFile());
    return !samples.empty() && played.size() > samples.size() && played.starts_with(samples) &&
           played.find_first_not_of('\0', samples.size()) == std::string::npos;
}

bool NotificationJourney::isSilent() const {
    return !std::filesystem::exists(soundFile());
}

bool NotificationJourney::standsOnLastEventMap(const EventRow& event) {
    constexpr int reach = 40;
    constexpr double exactly = 2;
    findSurfaces();
    const Point middle{lastEventMap_.x + lastEventMap_.width / 2.0,
                       lastEventMap_.y + lastEventMap_.height / 2.0};
    const auto spot = look().spot({static_cast<int>(middle.x) - reach,
                                   static_cast<int>(middle.y) - reach, 2 * reach, 2 * reach},
                                  circleColour(event.depth));
    return spot && spot->pixels > 10 && std::abs(spot->x - middle.x) < exactly &&
           std::abs(spot->y - middle.y) < exactly;
}

} // namespace tremor::journeys
