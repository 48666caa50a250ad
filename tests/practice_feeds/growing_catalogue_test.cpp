#include "practice_feeds/growing_catalogue.h"
#include "practice_feeds/practice_documents.h"

namespace tremor::practice {
namespace {

using namespace std::chrono_literals;

class GrowingCatalogueTest : public ::testing::Test {
  protected:
    GrowingCatalogue make(const CatalogueOptions& options = {}) {
        return {recentDocument(), drawFrom(laterDocument()), options, [this] { return now; }};
    }
    static std::string placeOf(const FdsnEvent& event) { return event.rest; }

    UtcTime now = at("2031-01-02T03:04:05.678901");
};

TEST_F(GrowingCatalogueTest, MovesAllTimesByOneConstantSoThatTheNewestIsFiveMinutesOld) {
    const GrowingCatalogue catalogue = make();
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

TEST_F(GrowingCatalogueTest, AddsAnEventEachTimeOneIsDue) {
    GrowingCatalogue catalogue = make({180s, 1, false});
    now += 179s;
    catalogue.advance();
    EXPECT_EQ(catalogue.events().size(), 60u);
    now += 1s;
    EXPECT_EQ(catalogue.advance(), 1u);
    EXPECT_EQ(catalogue.events().size(), 61u);
    now += 540s;
    catalogue.advance();
    EXPECT_EQ(catalogue.events().size(), 64u);
    EXPECT_EQ(now - catalogue.events().back().time - 2min, 8901us); // down to the hundredth
}

TEST_F(GrowingCatalogueTest, AddsNothingByItselfWhenTheIntervalIsZero) {
    GrowingCatalogue catalogue = make({0s, 1, false});
    now += 24h;
    catalogue.advance();
    EXPECT_EQ(catalogue.events().size(), 60u);
}

TEST_F(GrowingCatalogueTest, AddsNothingWhileItIsHeldAndCatchesUpAfterwards) {
    CatalogueOptions options{180s, 1, false};
    GrowingCatalogue catalogue = make(options);
    *options.held = true;
    now += 400s;
    EXPECT_TRUE(catalogue.isHeld());
    EXPECT_EQ(catalogue.advance(), 0u);
    catalogue.addEvent();
    EXPECT_EQ(catalogue.events().size(), 61u);
    *options.held = false;
    EXPECT_EQ(catalogue.advance(), 2u);
}

TEST_F(GrowingCatalogueTest, GivesTheSameSequenceForTheSameSeedAndAnotherForAnother) {
    const auto sequence = [this](std::uint32_t seed) {
        GrowingCatalogue catalogue = make({180s, seed, false});
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

TEST_F(GrowingCatalogueTest, GivesNewEventsTimesAndIdentifiersOfTheirOwn) {
    GrowingCatalogue catalogue = make();
    for (int i = 0; i < 10; ++i)
        catalogue.addEvent();
    const auto& events = catalogue.events();
    for (std::size_t i = 1; i < events.size(); ++i) {
        EXPECT_LT(events[i - 1].time, events[i].time);
        EXPECT_NE(events[i - 1].id, events[i].id);
    }
    // Forms with whole seconds must tell them apart, too.
    for (std::size_t i = events.size() - 10; i < events.size(); ++i)
        EXPECT_GE(events[i].time - events[i - 1].time, 1s);
}

TEST_F(GrowingCatalogueTest, PutsALateEventInItsPlace) {
    GrowingCatalogue catalogue = make();
    const FdsnEvent late = catalogue.addEvent({.age = 24h});
    EXPECT_LE(std::chrono::abs(now - late.time - 24h), 10ms);
    const FdsnEvent second = catalogue.addEvent({.age = 24h});
    EXPECT_EQ(second.time - late.time, 1s);
    const auto& events = catalogue.events();
    ASSERT_EQ(events.size(), 62u);
    for (std::size_t i = 1; i < events.size(); ++i)
        EXPECT_LT(events[i - 1].time, events[i].time);
    EXPECT_LT(late.time, events.back().time);
}

TEST_F(GrowingCatalogueTest, PutsAnEventWhereItIsAskedFor) {
    GrowingCatalogue catalogue = make();
    const FdsnEvent drawn = make().addEvent();
    const FdsnEvent moved = catalogue.addEvent({.epicentre = Epicentre{42.5, -1.53}});
    EXPECT_EQ(moved.latitude, 42.5);
    EXPECT_EQ(moved.longitude, -1.53);
    EXPECT_EQ(moved.depth(), drawn.depth());
    EXPECT_EQ(moved.magnitude, drawn.magnitude);
    EXPECT_EQ(catalogue.events().back().line(), moved.line());
}

TEST_F(GrowingCatalogueTest, ServesAFixedDocumentByteForByteWithAdditionsBehindIt) {
    GrowingCatalogue catalogue = make({180s, 1, true});
    now += 24h;
    catalogue.advance();
    EXPECT_EQ(catalogue.text(), recentText());
    const std::string added = catalogue.addEvent().line();
    EXPECT_EQ(catalogue.text(), recentText() + added + "\n");
}

} // namespace
} // namespace tremor::practice
