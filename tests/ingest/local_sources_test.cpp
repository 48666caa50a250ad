#include "ingest/local_fixture.h"
#include "ingest/local_sources.h"

namespace tremor {
namespace {

using Texts = std::vector<std::string>;

constexpr std::string_view sfile =
    " 2012  520  2 3 52.1 L  44.890  11.230  6.3  TES                                1\n";
constexpr std::string_view bulletin =
    "LocSAT solution\n\nItaly  ML 5.9  2012/05/20  02:03:52  44.89 N  11.23 E  6.3 km\n";

// Keeps what ImportInProgress was at each status text.
class FlagStatus : public testing::RecordingStatusPanel {
  public:
    explicit FlagStatus(const Session& session) : session_(session) {}
    void setStatusText(std::string_view text) override {
        RecordingStatusPanel::setStatusText(text);
        flags.push_back(session_.ImportInProgress);
    }
    std::vector<bool> flags;

  private:
    const Session& session_;
};

class LocalSources : public testing::LocalFixture {
  protected:
    void list(const std::string& path, std::int16_t seisCompOrLiveloc) {
        settings.LocalSourcePath = path;
        settings.SeisCompOrLIVELOC = seisCompOrLiveloc;
        sources.ListFolder(path);
        EXPECT_FALSE(session.ImportInProgress);
        expectNothingPumped();
    }
    Texts storedSources() { return rows("select Source from Events order by rowid"); }

    FlagStatus flagStatus{session};
    FeedContext own{session,  settings,       hosts,
                    database, flagStatus,     clock,
                    log,      harness.errors, context.temporaryFolder};
    LivelocSource liveloc{own};
    SeisCompSource seisComp{own, harness.prompts, "/program", NumberLocale::point()};
    tremor::LocalSources sources{own, liveloc, seisComp};
};

TEST_F(LocalSources, ReadsSfilesWhenTheSettingsSaySo) {
    put("2012/05/a", sfile);
    put("CAT/05/a", sfile);
    put("ev1/last", bulletin);
    list(root, 1);
    EXPECT_EQ(storedSources(), Texts{"LIVELOC"});
    EXPECT_EQ(flagStatus.statusTexts, (Texts{"Import liveloc...", "Import from LIVELOC COMPLETE"}));
    EXPECT_EQ(flagStatus.flags, (std::vector<bool>{true, false}));
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(LocalSources, ReadsSeisCompFoldersOtherwise) {
    put("2012/05/a", sfile);
    put("ev1/last", bulletin);
    list(root + "/", 0);
    EXPECT_EQ(storedSources(), Texts{"SEISCP"});
    EXPECT_EQ(flagStatus.statusTexts,
              (Texts{"Import Seiscomp...", "Import from Seiscomp COMPLETE"}));
    EXPECT_EQ(flagStatus.flags, (std::vector<bool>{true, false}));
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(LocalSources, NeedsTheSlashForSeisCompOnly) {
    put("ev1/last", bulletin);
    list(root, 0);
    EXPECT_TRUE(storedSources().empty());
    put("2012/05/a", sfile);
    list(root + "/", 1);
    EXPECT_EQ(storedSources(), Texts{"LIVELOC"});
}

TEST_F(LocalSources, SaysWhenThereIsNoSuchFolder) {
    put("file", "");
    for (const std::string& path : {at("missing"), std::string(), at("file"), at("file") + "/x"})
        list(path, 1);
    list(at("missing"), 0);
    EXPECT_EQ(log.messages, Texts(5, "Local source not available."));
    EXPECT_EQ(flagStatus.statusTexts.front(), "Import liveloc...");
    EXPECT_EQ(flagStatus.statusTexts.back(), "Import Seiscomp...");
    EXPECT_EQ(flagStatus.statusTexts.size(), 5U);
}

TEST_F(LocalSources, EndsQuietlyOnAnEmptyFolder) {
    list(root, 1);
    list(root + "/", 0);
    EXPECT_TRUE(log.messages.empty());
    EXPECT_EQ(flagStatus.statusTexts.size(), 4U);
}

} // namespace
} // namespace tremor
