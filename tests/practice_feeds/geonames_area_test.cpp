#include "core/hosts.h"
#include "ingest/cls_downloader.h"
#include "manage/geonames_fixture.h"
#include "practice_feeds/geonames_area.h"
#include "practice_feeds/practice_server.h"
#include "support/download_fixture.h"

#include <httplib.h>

#include <filesystem>
#include <stdexcept>

// The area by itself, and the program's import against it through the program's own downloader.
namespace tremor::practice {
namespace {

using tremor::testing::geonamesDocument;
using Texts = std::vector<std::string>;

Answer ask(const GeoNamesArea& area, const std::string& name) {
    return area.answer({"/geonames/export/dump/" + name, {}});
}

class GeoNamesAreaTest : public ::testing::Test {
  protected:
    GeoNamesArea area{TREMOR_TEST_DATA "/geonames"};
};

TEST_F(GeoNamesAreaTest, ListsItsDumpsAsTheServiceDoes) {
    const Answer answer = ask(area, "");
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(listedFileNames(answer.body), (Texts{"AD.zip", "FR.zip"}));
    EXPECT_NE(answer.body.find("<img src=\"/icons/compressed.gif\" alt=\"[   ]\"> "
                               "<a href=\"AD.zip\">AD.zip</a>  2025-11-19 03:05   58K"),
              std::string::npos)
        << answer.body;
}

TEST_F(GeoNamesAreaTest, GivesItsDocumentsByteForByteAndNothingElse) {
    for (const char* name : {"AD.zip", "FR.zip", "countryInfo.txt"})
        EXPECT_EQ(ask(area, name).body, geonamesDocument(name)) << name;
    for (const char* name : {"IT.zip", "../telegram/error_401.json", "cities15000_IT.txt", "?"})
        EXPECT_EQ(ask(area, name).status, 404) << name;
    EXPECT_EQ(area.answer({"/geonames", {}}).status, 404);
}

TEST_F(GeoNamesAreaTest, NeedsACountryListAndADump) {
    const tremor::testing::TemporaryFolder folder;
    EXPECT_THROW(GeoNamesArea(folder.path()), std::runtime_error);
    EXPECT_THROW(GeoNamesArea(folder.file("missing")), std::runtime_error);
}

// The program's own downloader behind the import.
class RealNetwork : public GeoNamesNetwork {
  public:
    RealNetwork(Clock& clock, const Session& session, DownloadLimits limits)
        : clock_(clock), session_(session), limits_(std::move(limits)) {}

    bool IsInternetUp() override { return true; }
    void DownloadFile(GeoNamesTransferEvents& events, std::string_view url, std::string_view target,
                      std::int32_t chunkSize) override {
        Forward forward(events);
        ClsDownloader(forward, clock_, session_, limits_)
            .DownloadFile(url, target, chunkSize, false);
    }
    void AbortDownload() override {}

  private:
    class Forward : public DownloadEvents {
      public:
        explicit Forward(GeoNamesTransferEvents& events) : events_(events) {}
        void SizeCalculated(std::int32_t size) override { events_.SizeCalculated(size); }
        void ChunkDownloaded(std::int32_t total) override { events_.ChunkDownloaded(total); }
        void DownloadCompleted() override { events_.DownloadCompleted(); }
        void DownloadError(std::string_view) override {}
        void AbortCompleted() override {}

      private:
        GeoNamesTransferEvents& events_;
    };

    Clock& clock_;
    const Session& session_;
    DownloadLimits limits_;
};

class GeoNamesThroughTheServer : public tremor::testing::DownloadTest,
                                 public tremor::testing::GeoNamesHarness {
  protected:
    GeoNamesThroughTheServer() {
        limits.stallSeconds = 1;
        import.opened(window);
    }
    void downloadAll() {
        import.cmdCheck();
        window.messages.clear();
        ASSERT_EQ(import.rows().size(), 2U);
        import.toggleSelected(0);
        import.toggleSelected(1);
        import.cmdDownload();
    }
    void switchFault(const std::string& kind) {
        httplib::Client client("127.0.0.1", server.port());
        const auto answer = client.Get("/practice/geonames/fault?count=1&kind=" + kind);
        ASSERT_TRUE(answer && answer->status == 200);
    }

    static ServerOptions options() {
        ServerOptions made;
        made.dataFolder = TREMOR_TEST_DATA;
        made.catalogue.fixed = true;
        return made;
    }

    PracticeServer server{options()};
    RealNetwork real{clock, DownloadTest::session, limits};
    tremor::testing::RecordingGeoNamesWindow window;
    GeoNamesImport import{DownloadTest::session,
                          catalogue,
                          prompts,
                          clock,
                          harness.errors,
                          real,
                          [this] { return GeoNamesHarness::folder.path() + "/"; },
                          parseHosts(server.hostsIni()).GeoNames};
};

TEST_F(GeoNamesThroughTheServer, TheWholeRoadOfItsCountries) {
    downloadAll();
    EXPECT_EQ(window.messages,
              (Texts{"AD.zip Downloaded.", "FR.zip Downloaded.", "All data imported in DB!",
                     "Rows refused by the catalogue: 12 (a value holds an "
                     "apostrophe or a zero byte)"}));
    EXPECT_EQ(stored("sum(Zone = 'AD') || ' ' || sum(Zone = 'FR')"), Texts{"53 659"});
}

TEST_F(GeoNamesThroughTheServer, AFailingTransferStoresNothing) {
    import.cmdCheck();
    import.toggleSelected(0);
    for (const char* kind : {"404", "500", "cut"}) {
        switchFault(kind);
        import.cmdDownload();
        EXPECT_EQ(window.messages.back(), "Timeout connection...") << kind;
        EXPECT_TRUE(stored().empty());
    }
    switchFault("garbage");
    prompts.expectRuntimeError("File not found", ErrorAnswer::Ignore);
    import.cmdDownload();
    EXPECT_TRUE(stored().empty());
    EXPECT_NE(window.messages[window.messages.size() - 2].find("AD.zip was not unpacked: "),
              std::string::npos);
}

} // namespace
} // namespace tremor::practice
