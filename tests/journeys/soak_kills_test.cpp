#include "journeys/soak_files.h"
#include "journeys/soak_journey.h"
#include "journeys/soak_report.h"

#include <fmt/format.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <thread>

namespace tremor::journeys {
namespace {

using namespace std::chrono_literals;

constexpr double defaultKills = 8; // TREMOR_SOAK_KILLS
constexpr char catalogue[] = "catalogue.sqlite";

// When the program is killed.
enum class Moment {
    Starting, // within its first seconds
    Working,  // any time after a poll has begun
    Writing,  // just when a file changes
    Ending    // while it leaves
};

constexpr const char* nameOf(Moment moment) {
    switch (moment) {
    case Moment::Starting:
        return "starting";
    case Moment::Working:
        return "working";
    case Moment::Writing:
        return "writing";
    default:
        return "ending";
    }
}

// A program that is killed with all its processes again and again, in one and the same folder.
class Kills : public SoakJourney {
  protected:
    // It starts as if nothing had happened: its window, its catalogue, and not a word.
    void startAgain() {
        startProgram();
        ASSERT_EQ(unexpectedWindows(), "") << journey_.activityLog();
    }

    // The settings as the program writes them, from a first run.
    void learnWholeSettings() {
        startAgain();
        journey_.key("alt+f x");
        ASSERT_EQ(journey_.waitForExit(longEnough), 0);
        wholeSettings_ = journey_.readFile("settings.ini");
        ASSERT_NE(wholeSettings_.find("[TELEGRAM]\r\n"), std::string::npos);
    }

    Moment drawMoment() {
        const std::array moments{Moment::Writing, Moment::Writing, Moment::Writing,
                                 Moment::Working, Moment::Ending,  Moment::Starting};
        return moments[std::uniform_int_distribution<std::size_t>(0, moments.size() - 1)(random_)];
    }

    // Starts the program, lets it work, and kills it; what happened in a few words.
    std::string runAndKill(Moment moment) {
        if (moment == Moment::Starting) {
            const auto pause = milliseconds(4000);
            journey_.startProgram();
            std::this_thread::sleep_for(pause);
            journey_.killProgram();
            return fmt::format("{} ms after the start", pause.count());
        }
        startAgain();
        FolderWatch files(journey_.folder());
        journey_.key("F5");
        if (std::uniform_int_distribution<int>(0, 1)(random_) == 1)
            openAllWorkspaces();
        std::string how;
        if (moment == Moment::Writing) {
            const int number = std::uniform_int_distribution<int>(1, 60)(random_);
            const bool reached = files.waitForChange(number, 15s);
            journey_.killProgram();
            return reached ? fmt::format("at change {}, of {}", number, files.lastChanged())
                           : fmt::format("15 s later, no {} changes", number);
        }
        if (moment == Moment::Ending)
            journey_.key("alt+f x");
        const auto pause = milliseconds(moment == Moment::Ending ? 400 : 8000);
        std::this_thread::sleep_for(pause);
        journey_.killProgram();
        return fmt::format("{} ms later", pause.count());
    }

    void expectThatNothingIsBroken() {
        const KilledCatalogue killed = killedCatalogue(journey_.file(catalogue));
        EXPECT_EQ(killed.integrity, "ok");
        EXPECT_EQ(brokenSettings(journey_.readFile("settings.ini"), wholeSettings_), "");
        EXPECT_EQ(brokenFiles(journey_.folder()), "");
        const std::size_t rows = std::stoul("0" + killed.rows);
        EXPECT_GE(rows, rows_) << "the catalogue has lost rows";
        rows_ = rows;
    }

    std::size_t rows() const { return rows_; }

  private:
    std::chrono::milliseconds milliseconds(int most) {
        return std::chrono::milliseconds(std::uniform_int_distribution<int>(0, most)(random_));
    }

    std::string wholeSettings_;
    std::size_t rows_ = 0;
};

TEST_F(Kills, TheProgramGoesOnBehindAKillAtAnyMoment) {
    const int kills = static_cast<int>(numberOfVariable("TREMOR_SOAK_KILLS", defaultKills));
    std::ofstream log;
    if (const std::string folder = reportFolder(); !folder.empty())
        log.open(folder + "/kills.txt");
    const auto say = [&](const std::string& line) {
        std::cout << line << std::endl;
        log << line << std::endl;
    };
    say(fmt::format("{} kills, seed {:.0f}", kills,
                    numberOfVariable("TREMOR_SOAK_SEED", defaultSeed)));
    letKilledPollsLoseEvents();
    ASSERT_NO_FATAL_FAILURE(learnWholeSettings());
    for (int i = 1; i <= kills && !HasFailure(); ++i) {
        const Moment moment = drawMoment();
        const std::string how = runAndKill(moment);
        expectThatNothingIsBroken();
        say(fmt::format("{:3}. {}: {}; {} rows", i, nameOf(moment), how, rows()));
    }
    if (HasFailure())
        return keepProgramFolder(journey_.folder());

    // A last run puts everything right.
    ASSERT_NO_FATAL_FAILURE(startAgain());
    hold();
    EXPECT_TRUE(catalogueIsWhatTheSourcesSaid({}));
    journey_.waitForWindow(mainWindow, 60);
    journey_.key("alt+f x");
    EXPECT_EQ(journey_.waitForExit(longEnough), 0);
    expectThatNothingIsBroken();
    EXPECT_EQ(abandonedFiles(journey_.folder()), std::vector<std::string>{});
    say(fmt::format("{} rows at the end, {} expected", rows(), expected_.size()));
}

} // namespace
} // namespace tremor::journeys
