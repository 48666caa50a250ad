#include "ingest/panel_download.h"
#include "ingest/scripted_transfer.h"
#include "support/fakes.h"

namespace tremor {
namespace {

class PanelDownloads : public ::testing::Test {
  protected:
    bool fetch() { return download.fetch("https://example.org/events", "/folder/events.csv"); }

    Session session;
    testing::RecordingStatusPanel status;
    testing::FakeClock clock;
    testing::ScriptedTransfer transfer;
    int unloads = 0;
    PanelDownload download{session, status, clock, transfer, [this] { ++unloads; }};
};

TEST_F(PanelDownloads, FetchInChunksOf4096BytesWithTheStatusCheckOn) {
    int stateMeanwhile = 0;
    transfer.course = [&](DownloadEvents& events, std::string_view) {
        stateMeanwhile = session.DownloadState;
        events.DownloadCompleted();
    };
    EXPECT_TRUE(fetch());
    EXPECT_EQ(stateMeanwhile, 2);
    EXPECT_EQ(session.DownloadState, 0);
    EXPECT_EQ(transfer.url, "https://example.org/events");
    EXPECT_EQ(transfer.target, "/folder/events.csv");
    EXPECT_EQ(transfer.chunkSize, 4096);
    EXPECT_FALSE(transfer.withoutStatusCheck);
    EXPECT_EQ(clock.sleeps, 0);
}

TEST_F(PanelDownloads, WaitAMinuteAfterAFailedTransfer) {
    transfer.course = [](DownloadEvents& events, std::string_view) {
        events.DownloadError("Can't open requested file.");
    };
    EXPECT_FALSE(fetch());
    EXPECT_EQ(clock.sleeps, 600);
    EXPECT_EQ(clock.pumps, 600);
    EXPECT_EQ(clock.steady(), std::chrono::seconds(60));
    EXPECT_EQ(session.WaitCounter, 600);
    EXPECT_EQ(session.DownloadState, 2);
}

TEST_F(PanelDownloads, TellAFailureAtOnceWhenNobodyWaitsBehindIt) {
    const auto fetchOnce = [this] { return download.fetchOnce("http://h/", "/folder/file"); };
    transfer.course = [](DownloadEvents& events, std::string_view) { events.DownloadCompleted(); };
    EXPECT_TRUE(fetchOnce());
    transfer.course = [](DownloadEvents& events, std::string_view) { events.DownloadError("no"); };
    EXPECT_FALSE(fetchOnce());
    EXPECT_EQ(session.DownloadState, 2);
    transfer.course = [this](DownloadEvents& events, std::string_view) {
        session.Closing = true;
        events.DownloadCompleted();
    };
    EXPECT_FALSE(fetchOnce());
    EXPECT_EQ(clock.sleeps, 0);
    EXPECT_EQ(session.WaitCounter, 0);
}

TEST_F(PanelDownloads, TakeTheWaitCounterAsTheyFindIt) {
    session.WaitCounter = 590;
    transfer.course = [](DownloadEvents& events, std::string_view) { events.AbortCompleted(); };
    EXPECT_FALSE(fetch());
    EXPECT_EQ(clock.sleeps, 10);
}

TEST_F(PanelDownloads, StopWaitingWhenTheProgramCloses) {
    transfer.course = [](DownloadEvents&, std::string_view) {};
    clock.onPump = [&] {
        if (clock.sleeps == 7)
            session.WaitCounter = Session::waitCounterClosing;
    };
    EXPECT_FALSE(fetch());
    EXPECT_EQ(clock.sleeps, 7);
    EXPECT_GE(session.WaitCounter, Session::waitCounterLimit);
}

TEST_F(PanelDownloads, ShowTheSizeOnlyWhenThereIsOne) {
    transfer.course = [](DownloadEvents& events, std::string_view) {
        events.SizeCalculated(0);
        events.ChunkDownloaded(4);
        events.SizeCalculated(12);
        events.DownloadCompleted();
    };
    EXPECT_TRUE(fetch());
    EXPECT_EQ(status.sizeTexts, std::vector<std::string>{"12 Kb"});
    EXPECT_TRUE(status.values.empty());
    EXPECT_EQ(session.DownloadSizeKb, 12);
}

TEST_F(PanelDownloads, MoveTheBarByTheShareReceived) {
    status.setProgressRange(0, 100);
    transfer.course = [](DownloadEvents& events, std::string_view) {
        events.SizeCalculated(8);
        events.ChunkDownloaded(0);
        events.ChunkDownloaded(1); // 12.5, to the even neighbour
        events.ChunkDownloaded(3); // 37.5
        events.ChunkDownloaded(8);
        events.ChunkDownloaded(9); // rounding drifts: never past the end
        events.DownloadCompleted();
    };
    EXPECT_TRUE(fetch());
    EXPECT_EQ(status.values, (std::vector<int>{12, 38, 100, 100}));
}

TEST_F(PanelDownloads, UnloadThePanelFromAChunkThatArrivesWhileItCloses) {
    transfer.course = [&](DownloadEvents& events, std::string_view) {
        events.SizeCalculated(8);
        session.WaitCounter = Session::waitCounterLimit;
        events.ChunkDownloaded(4);
        events.AbortCompleted();
    };
    EXPECT_FALSE(fetch());
    EXPECT_EQ(unloads, 1);
    EXPECT_TRUE(status.values.empty());
    EXPECT_EQ(clock.sleeps, 0);
}

} // namespace
} // namespace tremor
