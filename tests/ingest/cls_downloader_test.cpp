#include "ingest/cls_downloader.h"
#include "support/download_fixture.h"
#include "support/loopback_server.h"
#include "support/raw_server.h"
#include "support/texts.h"

#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <ostream>

// Events, files, cancelling and closing. What a server may do wrong: http_transfer_test.cpp.
namespace tremor::testing {
namespace {

using namespace std::chrono_literals;
using Calls = std::vector<std::string>;

LoopbackServer::Handler serving(std::string body) {
    return [body = std::move(body)](const LoopbackRequest&) { return LoopbackAnswer{200, body}; };
}

std::string patternOf(std::size_t size) {
    std::string text(size, '\0');
    for (std::size_t i = 0; i < size; ++i)
        text[i] = static_cast<char>((i * 2654435761U) >> 13);
    return text;
}

using ClsDownloaderTest = DownloadTest;

TEST_F(ClsDownloaderTest, ReportsSizeThenEachChunkThenTheEnd) {
    const std::string body = patternOf(10000);
    const LoopbackServer server(serving(body));
    download(server.url("/file"));
    EXPECT_EQ(events.calls, (Calls{"size 10", "chunk 4", "chunk 8", "chunk 10", "completed"}));
    EXPECT_EQ(contentOf(target), body);
}

TEST_F(ClsDownloaderTest, RefusesAnEmptyUrlAndLeavesTheTargetAlone) {
    writeFile(target, "old");
    download("");
    EXPECT_EQ(events.calls, Calls{"error: URL not valid."});
    EXPECT_EQ(contentOf(target), "old");
}

TEST_F(ClsDownloaderTest, ReportsSizeZeroWhenTheServerAnnouncesNoLength) {
    const LoopbackServer server([](const LoopbackRequest&) {
        return LoopbackAnswer{200, std::string(5000, 'x'), {}, false};
    });
    download(server.url("/"));
    EXPECT_EQ(events.calls, (Calls{"size 0", "chunk 4", "chunk 5", "completed"}));
    EXPECT_EQ(contentOf(target), std::string(5000, 'x'));
}

struct Size {
    std::size_t bytes;
    const char* kilobytes;
};

void PrintTo(const Size& value, std::ostream* stream) {
    *stream << value.bytes;
}

class AnnouncedSize : public ClsDownloaderTest, public ::testing::WithParamInterface<Size> {};

TEST_P(AnnouncedSize, IsRoundedToKilobytesWithHalvesToEven) {
    const LoopbackServer server(serving(std::string(GetParam().bytes, 'x')));
    download(server.url("/"));
    EXPECT_EQ(events.calls.front(), std::string("size ") + GetParam().kilobytes);
    EXPECT_EQ(events.last(), "completed");
}

INSTANTIATE_TEST_SUITE_P(Bytes, AnnouncedSize,
                         ::testing::Values(Size{0, "0"}, Size{1, "1"}, Size{511, "1"},
                                           Size{1024, "1"}, Size{1025, "1"}, Size{1536, "2"},
                                           Size{2560, "2"}, Size{2561, "3"}, Size{3584, "4"}),
                         [](const auto& values) {
                             return std::to_string(values.param.bytes) + "Bytes";
                         });

TEST_F(ClsDownloaderTest, RoundsTheTotalAtEveryChunkWithHalvesToEven) {
    const LoopbackServer server(serving(std::string(4608, 'x')));
    download(server.url("/"), 1536); // 1.5, 2 + 1.5, 4 + 1.5
    EXPECT_EQ(events.calls, (Calls{"size 4", "chunk 2", "chunk 4", "chunk 6", "completed"}));
    events.calls.clear();
    download(server.url("/"), 4096); // 4, 4 + 0.5
    EXPECT_EQ(events.calls, (Calls{"size 4", "chunk 4", "chunk 4", "completed"}));
}

TEST_F(ClsDownloaderTest, CompletesAnEmptyBodyWithAnEmptyFileAndNoChunk) {
    const LoopbackServer server(serving(""));
    download(server.url("/"));
    EXPECT_EQ(events.calls, (Calls{"size 0", "completed"}));
    EXPECT_TRUE(targetExists());
    EXPECT_EQ(contentOf(target), "");
}

TEST_F(ClsDownloaderTest, FillsEachChunkThoughTheServerSendsSmallPieces) {
    const RawServer server([](const RawConnection& client) {
        client.readHead();
        client.send("HTTP/1.1 200 OK\r\nContent-Length: 6000\r\n\r\n");
        for (int i = 0; i < 60; ++i) {
            client.send(std::string(100, 'x'));
            client.pause(1ms);
        }
    });
    download(server.url("/"));
    EXPECT_EQ(events.calls, (Calls{"size 6", "chunk 4", "chunk 6", "completed"}));
    EXPECT_EQ(contentOf(target).size(), 6000u);
}

TEST_F(ClsDownloaderTest, WritesTenMegabytesByteForByteWithoutWaitingBetweenChunks) {
    const std::string body = patternOf(10 * 1024 * 1024);
    const LoopbackServer server(serving(body));
    const auto start = std::chrono::steady_clock::now();
    download(server.url("/"));
    // 2560 chunks; a wait of 20 ms at each would take 51 seconds.
    EXPECT_LT(std::chrono::steady_clock::now() - start, 40s);
    EXPECT_TRUE(contentOf(target) == body);
    ASSERT_EQ(events.calls.size(), 2562u);
    EXPECT_EQ(events.calls.front(), "size 10240");
    EXPECT_EQ(events.calls[2560], "chunk 10240");
    EXPECT_GE(clock.pumps, 2560);
}

TEST_F(ClsDownloaderTest, RaisesAChunkBeforeItIsWrittenAndPumpsBetween) {
    const LoopbackServer server(serving(std::string(8192, 'x')));
    std::vector<std::uintmax_t> sizes;
    int pumpsAtFirstChunk = -1;
    events.onCall = [&](const std::string& call) {
        if (call.starts_with("chunk"))
            sizes.push_back(std::filesystem::file_size(target));
        if (call == "chunk 4")
            pumpsAtFirstChunk = clock.pumps;
        if (call == "chunk 8") {
            EXPECT_GT(clock.pumps, pumpsAtFirstChunk);
        }
        if (call.starts_with("size")) {
            EXPECT_FALSE(targetExists());
        }
    };
    download(server.url("/"));
    EXPECT_EQ(sizes, (std::vector<std::uintmax_t>{0, 4096}));
    EXPECT_EQ(contentOf(target).size(), 8192u);
}

TEST_F(ClsDownloaderTest, TakesAnyStatusWhenTheCheckIsSwitchedOff) {
    const LoopbackServer server([](const LoopbackRequest&) {
        return LoopbackAnswer{403, "{\"ok\":false}"};
    });
    download(server.url("/"), 4096, true);
    EXPECT_EQ(events.calls, (Calls{"size 1", "chunk 0", "completed"}));
    EXPECT_EQ(contentOf(target), "{\"ok\":false}");
}

TEST_F(ClsDownloaderTest, DeletesTheOldTargetBeforeItConnects) {
    writeFile(target, "old");
    download("http://127.0.0.1:" + std::to_string(unusedPort()) + "/");
    EXPECT_EQ(events.calls, Calls{cannotOpen});
    EXPECT_FALSE(targetExists());
}

TEST_F(ClsDownloaderTest, ReplacesALinkAndLeavesTheFileBehindItAlone) {
    const std::string victim = folder.file("victim");
    writeFile(victim, "precious");
    std::filesystem::create_symlink(victim, target);
    const LoopbackServer server(serving("new"));
    download(server.url("/"));
    EXPECT_EQ(events.last(), "completed");
    EXPECT_FALSE(std::filesystem::is_symlink(target));
    EXPECT_EQ(contentOf(target), "new");
    EXPECT_EQ(contentOf(victim), "precious");
}

TEST_F(ClsDownloaderTest, RefusesALinkThatAppearsDuringTheTransfer) {
    const std::string victim = folder.file("victim");
    writeFile(victim, "precious");
    events.onCall = [&](const std::string& call) {
        if (call.starts_with("size"))
            std::filesystem::create_symlink(victim, target);
    };
    const LoopbackServer server(serving("new"));
    download(server.url("/"));
    EXPECT_EQ(events.calls, (Calls{"size 1", "error: Path/File access error"}));
    EXPECT_EQ(contentOf(victim), "precious");
}

TEST_F(ClsDownloaderTest, MakesTheFileForTheOwnersEyesOnly) {
    const LoopbackServer server(serving("secret"));
    download(server.url("/"));
    struct stat info {};
    ASSERT_EQ(::stat(target.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600u);
}

TEST_F(ClsDownloaderTest, ReportsATargetThatCannotBeDeletedOrMade) {
    const LoopbackServer server(serving("body"));
    std::filesystem::create_directory(target);
    download(server.url("/"));
    EXPECT_EQ(events.calls, Calls{"error: Path/File access error"});
    EXPECT_TRUE(server.requests().empty());

    events.calls.clear();
    target = folder.file("missing/target.txt");
    download(server.url("/"));
    EXPECT_EQ(events.calls, (Calls{"size 1", "error: Path not found"}));
}

TEST_F(ClsDownloaderTest, RefusesAChunkSizeBelowOne) {
    const LoopbackServer server(serving("body"));
    download(server.url("/"), 0);
    EXPECT_EQ(events.last(), "error: Invalid procedure call or argument");
}

TEST_F(ClsDownloaderTest, LeavesThePartThatFittedOnAFullDisk) {
    const LoopbackServer server(serving(std::string(20000, 'x')));
    struct rlimit before {};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    struct sigaction ignore {};
    struct sigaction previous {};
    ignore.sa_handler = SIG_IGN;
    ::sigaction(SIGXFSZ, &ignore, &previous);
    const struct rlimit small { 8192, before.rlim_max };
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    download(server.url("/"));
    ::setrlimit(RLIMIT_FSIZE, &before);
    ::sigaction(SIGXFSZ, &previous, nullptr);
    EXPECT_EQ(events.calls,
              (Calls{"size 20", "chunk 4", "chunk 8", "chunk 12", "error: Disk full"}));
    EXPECT_EQ(contentOf(target), std::string(8192, 'x'));
}

TEST_F(ClsDownloaderTest, ReportsARunTimeErrorOfAHandlerOnce) {
    const LoopbackServer server(serving("body"));
    events.onCall = [](const std::string& call) {
        if (call.starts_with("chunk"))
            throw RuntimeError(ErrorNumber::TypeMismatch);
    };
    download(server.url("/"));
    EXPECT_EQ(events.calls, (Calls{"size 1", "chunk 0", "error: Type mismatch"}));
}

TEST_F(ClsDownloaderTest, AbortFromInsideAPumpDeletesThePartAndReportsNoError) {
    const LoopbackServer server(serving(std::string(100000, 'x')));
    bool partWasThere = false;
    clock.onPump = [&] {
        if (std::count(events.calls.begin(), events.calls.end(), "chunk 12") != 0) {
            partWasThere = targetExists();
            current->AbortDownload();
        }
    };
    download(server.url("/"));
    EXPECT_TRUE(partWasThere);
    EXPECT_EQ(events.calls, (Calls{"size 98", "chunk 4", "chunk 8", "chunk 12", "aborted"}));
    EXPECT_FALSE(targetExists());
}

TEST_F(ClsDownloaderTest, AbortInThePumpOfTheLastChunkStillCancels) {
    const LoopbackServer server(serving(std::string(4096, 'x')));
    clock.onPump = [&] {
        if (events.last() == "chunk 4")
            current->AbortDownload();
    };
    download(server.url("/"));
    EXPECT_EQ(events.calls, (Calls{"size 4", "chunk 4", "aborted"}));
    EXPECT_FALSE(targetExists());
}

TEST_F(ClsDownloaderTest, AbortEndsTheWaitForAConnection) {
    const SilentPort silent;
    limits.connectSeconds = 60;
    limits.totalSeconds = 60;
    clock.onPump = [&] { current->AbortDownload(); };
    const auto start = std::chrono::steady_clock::now();
    download("http://127.0.0.1:" + std::to_string(silent.port()) + "/");
    EXPECT_EQ(events.calls, Calls{"aborted"});
    EXPECT_LT(std::chrono::steady_clock::now() - start, 30s);
}

TEST_F(ClsDownloaderTest, PumpsOftenWhileTheServerIsSilentAndEndsWhenTheProgramCloses) {
    const RawServer server([](const RawConnection& client) {
        client.readHead();
        client.send("HTTP/1.1 200 OK\r\nContent-Length: 10000\r\n\r\nonly this");
        client.stall();
    });
    limits.stallSeconds = 60;
    limits.totalSeconds = 60;
    clock.onPump = [&] { session.Closing = clock.pumps == 25; }; // turns of 20 ms
    const auto start = std::chrono::steady_clock::now();
    download(server.url("/"));
    EXPECT_LT(std::chrono::steady_clock::now() - start, 30s);
    EXPECT_EQ(clock.pumps, 25);
    EXPECT_EQ(events.calls, (Calls{"size 10", "aborted"}));
    EXPECT_FALSE(targetExists());
}

TEST_F(ClsDownloaderTest, EndsLikeACancelWhenTheWaitsMustEnd) {
    const LoopbackServer server(serving(std::string(100000, 'x')));
    clock.onPump = [&] {
        if (events.last() == "chunk 8")
            session.WaitCounter = Session::waitCounterClosing;
    };
    download(server.url("/"));
    EXPECT_EQ(events.calls, (Calls{"size 98", "chunk 4", "chunk 8", "aborted"}));
    EXPECT_FALSE(targetExists());
}

TEST_F(ClsDownloaderTest, ConnectsToNobodyWhenTheProgramIsClosingAlready) {
    const LoopbackServer server(serving("body"));
    session.Closing = true;
    download(server.url("/"));
    EXPECT_EQ(events.calls, Calls{"aborted"});
    EXPECT_TRUE(server.requests().empty());
}

TEST_F(ClsDownloaderTest, LetsASecondTransferRunInsideAPumpOfTheFirst) {
    const std::string outer = patternOf(50000);
    const std::string inner = patternOf(30000).substr(7);
    const LoopbackServer server([&](const LoopbackRequest& request) {
        return LoopbackAnswer{200, request.target == "/inner" ? inner : outer};
    });
    RecordedDownload innerEvents;
    bool nested = false;
    clock.onPump = [&] {
        if (nested || events.last() != "chunk 8")
            return;
        nested = true;
        ClsDownloader second(innerEvents, clock, session, limits);
        second.DownloadFile(server.url("/inner"), folder.file("inner"), 4096, false);
        EXPECT_EQ(events.last(), "chunk 8");
    };
    download(server.url("/outer"));
    EXPECT_EQ(innerEvents.last(), "completed");
    EXPECT_TRUE(contentOf(folder.file("inner")) == inner);
    EXPECT_EQ(events.last(), "completed");
    EXPECT_TRUE(contentOf(target) == outer);
}

} // namespace
} // namespace tremor::testing
