#include "practice_feeds/ingv_catalogue.h"
#include "practice_feeds/practice_documents.h"

namespace tremor::practice {
namespace {

using namespace std::chrono_literals;

class IngvCatalogueTest : public ::testing::Test {
  protected:
    IngvCatalogue make(const CatalogueOptions& options = {}) {
        return {recentDocument(), laterDocument(), options, [this] { return now; }};
    }
    static std::string placeOf(const FdsnEvent& event) { return event.rest; }

    UtcTime now = at("2031-01-02T03:04:05.678901");
};

TEST_F(IngvCatalogueTest, MovesAllTimesByOneConstantSoThatTheNewestIsFiveMinutesOld) {
    const IngvCatalogue catalogue = make();
    const FdsnDocument original = recentDocument();
    ASSERT_EQ(catalogue.events().size(), original.events.size());
    const auto move = catalogue.events()[0].time - original.events[0].time;
    for (std::size_t i = 0; i < original.events.size(); ++i) {
        EXPECT_EQ(catalogue.events()[i].time - original.events[i].time, move);
        EXPECT_EQ(placeOf(catalogue.events()[i]), placeOf(original.events[i]));
    }
    const auto age = now - catalogue.events().back().time;
    EXPECT_GE(age, 5min);
    EXPECT_LT(age, 5min + 1s);
    // The program cuts the last three digits: they must be zeros as in the original.
    EXPECT_TRUE(formatUtc(catalogue.events().back().time).ends_with("0000"));
}

TEST_F(IngvCatalogueTest, AddsAnEventEachTimeOneIsDue) {
    IngvCatalogue catalogue = make({180s, 1, false});
    now += 179s;
    catalogue.advance();
    EXPECT_EQ(catalogue.events().size(), 60u);
    now += 1s;
    catalogue.advance();
    EXPECT_EQ(catalogue.events().size(), 61u);
    now += 540s;
    catalogue.advance();
    EXPECT_EQ(catalogue.events().size(), 64u);
    EXPECT_EQ(now - catalogue.events().back().time - 2min, 8901us); // down to the hundredth
}

TEST_F(IngvCatalogueTest, AddsNothingByItselfWhenTheIntervalIsZero) {
    IngvCatalogue catalogue = make({0s, 1, false});
    now += 24h;
    catalogue.advance();
    EXPECT_EQ(catalogue.events().size(), 60u);
}

TEST_F(IngvCatalogueTest, GivesTheSameSequenceForTheSameSeedAndAnotherForAnother) {
    const auto sequence = [this](std::uint32_t seed) {
        IngvCatalogue catalogue = make({180s, seed, false});
        std::string places;
        for (int i = 0; i < 20; ++i)
            places += placeOf(catalogue.addEvent()) + "\n";
        return places;
    };
    const std::string first = sequence(7);
    now += 1h; // another start
    EXPECT_EQ(sequence(7), first);
    EXPECT_NE(sequence(8), first);
}

TEST_F(IngvCatalogueTest, GivesNewEventsTimesAndIdentifiersOfTheirOwn) {
    IngvCatalogue catalogue = make();
    for (int i = 0; i < 10; ++i)
        catalogue.addEvent();
    const auto& events = catalogue.events();
    for (std::size_t i = 1; i < events.size(); ++i) {
        EXPECT_LT(events[i - 1].time, events[i].time);
        EXPECT_NE(events[i - 1].id, events[i].id);
    }
}

TEST_F(IngvCatalogueTest, ServesAFixedDocumentByteForByteWithAdditionsBehindIt) {
    IngvCatalogue catalogue = make({180s, 1, true});
    now += 24h;
    catalogue.advance();
    EXPECT_EQ(catalogue.text(), recentText());
    const std::string added = catalogue.addEvent().line();
    EXPECT_EQ(catalogue.text(), recentText() + added + "\n");
}

} // namespace
} // namespace tremor::practice
