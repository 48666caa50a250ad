#pragma once

#include "journeys/map_journey.h"
#include "support/mail_server.h"

#include <cstddef>
#include <string>
#include <vector>

namespace tremor::journeys {

// The program with all three channels on: mail, Pagerlink with the users anna, bruno and carla, and
// Telegram with the follower 100. It shows a workspace that holds the whole world, so that its
// sounds ring for every event, and polls INGV and the EMSC. The samples it plays go into a file.
class NotificationJourney : public MapJourney {
  protected:
    static constexpr int follower = 100;
    static constexpr char eventReported[] = "New Earthquake reported from last update...";
    static constexpr char messagesSent[] = "Telegram : Event sended to 1 contact.";

    // The sound that rings for a magnitude with the settings of the journey.
    static std::string soundOf(const std::string& magnitude);

    explicit NotificationJourney(const std::vector<std::string>& moreSettings = {},
                                 const std::vector<std::string>& locators = {},
                                 const std::vector<std::string>& serviceOptions = {});

    // Polls what the services have at the start and reports its newest event; that is behind us
    // when the journey begins, and nothing has been sent.
    void pollForTheFirstTime();
    // Both remote sources are asked; false when no answer came in time.
    bool poll();
    void forgetWhatWasSent();

    // One new event at a source, and what the readers make of it.
    EventRow addEventOfIngv();
    EventRow addEventOfIngv(const Place& place);
    EventRow addEventOfEmsc();

    int countInLog(const std::string& text);
    bool soonInLog(const std::string& text, int count);

    // What has been sent since forgetWhatWasSent().
    int mails() const { return mail_.mailCount() - mailsBefore_; }
    std::vector<std::string> datagrams(); // without the requests of the list
    std::vector<std::string> telegrams(); // JSON
    bool listAsked();                     // Pagerlink has been asked for its users
    // Each channel has reported this many events and not one more.
    ::testing::AssertionResult sentOnEveryChannel(int events);

    // The whole of a WAV file's samples has been played, once, by the last sound.
    bool rang(const std::string& soundFile) const;
    bool isSilent() const; // since forgetWhatWasSent()

    // The map of the last event has a circle of the event's colour in its middle.
    bool standsOnLastEventMap(const EventRow& event);

    testing::MailServer mail_;

  private:
    std::vector<std::string> linesOf(const std::string& control);
    std::string soundFile() const { return journey_.file("played.raw"); }

    int mailsBefore_ = 0;
};

} // namespace tremor::journeys
