#include "alerts/email_notification.h"
#include "support/fakes.h"
#include "support/texts.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

namespace tremor::testing {
namespace {

using Texts = std::vector<std::string>;

class RecordingMailer : public Mailer {
  public:
    std::string sendMailCDO(const OutgoingMail& mail, const SmtpAccount& account) override {
        mails.push_back(mail);
        accounts.push_back(account);
        if (onSend)
            onSend();
        return result;
    }

    std::vector<OutgoingMail> mails;
    std::vector<SmtpAccount> accounts;
    std::string result;
    std::function<void()> onSend;
};

class RecordingMaps : public StaticMapMaker {
  public:
    std::string drawStaticMap(const StaticMapRequest& request) override {
        requests.push_back(request);
        if (damaged)
            throw RuntimeError(ErrorNumber::UserDefined, "damaged");
        return picture;
    }

    std::vector<StaticMapRequest> requests;
    std::string picture = "a picture";
    bool damaged = false;
};

class RecordingMapDownload : public MapImageDownload {
  public:
    void DownloadFile(const std::string& url, const std::string& target, std::int32_t chunkSize,
                      bool withoutStatusCheck) override {
        calls.push_back(fmt::format("{} {} {}", url, chunkSize, withoutStatusCheck));
        if (arrives)
            std::ofstream(target) << "fetched";
        if (onDownload)
            onDownload();
    }

    Texts calls;
    bool arrives = true;
    std::function<void()> onDownload;
};

class EmailNotificationTest : public ::testing::Test {
  protected:
    EmailNotificationTest() {
        EXPECT_EQ(database.slsOpen(folder.file("catalogue.sqlite"), "C"), 0);
        run("CREATE TABLE Events (UTC TEXT, Latitude REAL, Longitude REAL, Depth REAL, "
            "Magnitude REAL)");
        addEvent("2021-01-14 05:45:26", 4.5);
        settings.enableEmail = 1;
        settings.MagToSend = 4;
        settings.SMTPserver = "mail.example.org";
        settings.SMTPport = 587;
        settings.SMTPusername = "operator";
        settings.SMTPpassword = "secret";
        settings.SMTPfromName = "Control Room";
        settings.SMTPfromEmail = "room@example.org";
        settings.SMTPrecipient = "a@example.org, b@example.org";
        session.WaitCounter = 17;
    }

    void run(const std::string& sql) {
        EXPECT_EQ(database.slsExe(sql), 0) << database.slGetError();
    }
    void addEvent(const std::string& utc, double magnitude) {
        run(fmt::format("insert into Events values ('{}', 42.70, 13.23, 10, {})", utc, magnitude));
    }
    void generate(const NumberLocale& locale = NumberLocale::point()) {
        EmailNotification notification(
            {settings, hosts, session, database, log, locale, folder.path(), lastTownsReport},
            download, maps, mailer);
        notification.generateMsgEmail();
    }
    std::string mapFile() const { return folder.file("History/email.png"); }
    void expectNothingDone() {
        EXPECT_TRUE(mailer.mails.empty());
        EXPECT_TRUE(maps.requests.empty());
        EXPECT_EQ(log.messages, Texts{});
        EXPECT_EQ(session.WaitCounter, 17);
    }

    TemporaryFolder folder;
    Database database;
    AppSettings settings;
    Hosts hosts;
    Session session;
    RecordingLog log;
    std::string lastTownsReport = "TOWNS\r\nBorgo = Km 3.27\r\n";
    RecordingMapDownload download;
    RecordingMaps maps;
    RecordingMailer mailer;
};

TEST_F(EmailNotificationTest, SendsSubjectTextAndAccount) {
    generate();
    ASSERT_EQ(mailer.mails.size(), 1U);
    const OutgoingMail& mail = mailer.mails.front();
    EXPECT_EQ(mail.subject, "NEW EVENT 2021-01-14 05:45:26");
    EXPECT_EQ(mail.body, "EVT 2021-01-14 05:45:26\r\nMAG= 4.5 DEPTH= 10.0\r\n"
                         "LOCATION= 42.7 13.23\r\nTOWNS\r\nBorgo = Km 3.27\r\n");
    EXPECT_EQ(mail.from, "Control Room<room@example.org>");
    EXPECT_EQ(mail.to, "a@example.org, b@example.org");
    EXPECT_EQ(mail.attachment, mapFile());
    const SmtpAccount& account = mailer.accounts.front();
    EXPECT_EQ(account.server, "mail.example.org");
    EXPECT_EQ(account.port, 587);
    EXPECT_EQ(account.user, "operator");
    EXPECT_EQ(account.password, "secret");
    EXPECT_EQ(log.messages, Texts{"Mail sent"});
    EXPECT_EQ(session.WaitCounter, 0);
}

TEST_F(EmailNotificationTest, LogsTheErrorOfTheMailerAsItStands) {
    mailer.result = "Login denied";
    generate();
    EXPECT_EQ(log.messages, Texts{"Login denied"});
    EXPECT_EQ(mailer.mails.size(), 1U);
    EXPECT_EQ(session.WaitCounter, 0);
}

TEST_F(EmailNotificationTest, DoesNothingUnlessItIsEnabled) {
    for (const std::int16_t flag : {std::int16_t{0}, std::int16_t{2}, std::int16_t{-1}}) {
        settings.enableEmail = flag;
        generate();
        expectNothingDone();
    }
}

TEST_F(EmailNotificationTest, SendsOneMailAboutTheNewestEvent) {
    addEvent("2021-01-15 00:00:00", 4.1);
    addEvent("2021-01-13 00:00:00", 6.0);
    generate();
    ASSERT_EQ(mailer.mails.size(), 1U);
    EXPECT_EQ(mailer.mails.front().subject, "NEW EVENT 2021-01-15 00:00:00");
}

TEST_F(EmailNotificationTest, SendsNothingWhenASmallEventFollowsABigOne) {
    addEvent("2021-01-14 05:50:00", 2.0);
    generate();
    expectNothingDone();
}

TEST_F(EmailNotificationTest, TakesAMagnitudeEqualToTheThreshold) {
    addEvent("2021-01-15 00:00:00", 4.0);
    generate();
    generate(NumberLocale::comma());
    EXPECT_EQ(mailer.mails.size(), 2U);
}

TEST_F(EmailNotificationTest, ComparesTheMagnitudeUnderACommaLocaleToo) {
    addEvent("2021-01-15 00:00:00", 3.9);
    generate(NumberLocale::comma());
    expectNothingDone();
}

TEST_F(EmailNotificationTest, SendsFromMagnitudeZeroOnWithAThresholdOfZero) {
    settings.MagToSend = 0;
    addEvent("2021-01-15 00:00:00", 0.0);
    generate();
    EXPECT_EQ(mailer.mails.size(), 1U);
}

TEST_F(EmailNotificationTest, SendsNothingForANegativeMagnitude) {
    settings.MagToSend = 0;
    addEvent("2021-01-15 00:00:00", -0.5);
    generate();
    expectNothingDone();
}

TEST_F(EmailNotificationTest, SendsNothingFromAnEmptyCatalogue) {
    settings.MagToSend = 0;
    run("delete from Events");
    generate();
    expectNothingDone();
}

TEST_F(EmailNotificationTest, WritesASenderWithoutANameInBrackets) {
    settings.SMTPfromName = "";
    generate();
    settings.SMTPfromName = "  Room ";
    generate();
    ASSERT_EQ(mailer.mails.size(), 2U);
    EXPECT_EQ(mailer.mails[0].from, "<room@example.org>");
    EXPECT_EQ(mailer.mails[1].from, "Room <room@example.org>");
}

TEST_F(EmailNotificationTest, DrawsTheMapAroundTheEvent) {
    for (const NumberLocale& locale : {NumberLocale::point(), NumberLocale::comma()}) {
        maps.requests.clear();
        generate(locale);
        ASSERT_EQ(maps.requests.size(), 1U);
        const StaticMapRequest& request = maps.requests.front();
        EXPECT_DOUBLE_EQ(request.latitude, 42.7);
        EXPECT_DOUBLE_EQ(request.longitude, 13.23);
        EXPECT_EQ(request.zoom, 8);
        EXPECT_EQ(request.width, 250);
        EXPECT_EQ(request.height, 250);
    }
    EXPECT_EQ(contentOf(mapFile()), "a picture");
    EXPECT_TRUE(download.calls.empty());
    EXPECT_EQ(session.DownloadState, 0);
}

TEST_F(EmailNotificationTest, LeavesNoOlderMapBehindWhenNoneIsDrawn) {
    generate();
    maps.picture.clear();
    generate();
    EXPECT_FALSE(std::filesystem::exists(mapFile()));
}

TEST_F(EmailNotificationTest, SaysWhyThereIsNoMapAndLeavesTheMailToItsOwnError) {
    maps.damaged = true;
    mailer.result = "File not found";
    generate();
    EXPECT_EQ(log.messages, (Texts{mapFile() + ": damaged", "File not found"}));
}

TEST_F(EmailNotificationTest, SaysWhyTheMapCouldNotBeWritten) {
    std::ofstream(folder.file("History")) << "a file in the folder's place";
    mailer.result = "File not found";
    generate();
    ASSERT_EQ(log.messages.size(), 2U);
    EXPECT_TRUE(log.messages.front().starts_with(mapFile() + ": ")) << log.messages.front();
    EXPECT_TRUE(maps.requests.empty());
}

TEST_F(EmailNotificationTest, FetchesTheMapFromANamedHost) {
    hosts.StaticMap = "https://maps.example.org";
    generate();
    EXPECT_EQ(download.calls,
              Texts{"https://maps.example.org/maps/api/staticmap?center=42.7,13.23&zoom=8"
                    "&size=250x250&maptype=hybrid&markers=color:red%7C42.7,13.23 4096 false"});
    EXPECT_EQ(contentOf(mapFile()), "fetched");
    EXPECT_TRUE(maps.requests.empty());
    EXPECT_EQ(mailer.mails.size(), 1U);
}

TEST_F(EmailNotificationTest, SendsAtOnceWhenTheMapDidNotArrive) {
    hosts.StaticMap = "https://maps.example.org";
    download.arrives = false;
    download.onDownload = [this] {
        EXPECT_EQ(session.WaitCounter, 0);
        EXPECT_EQ(session.DownloadState, 2);
    };
    generate();
    EXPECT_EQ(mailer.mails.size(), 1U);
}

TEST_F(EmailNotificationTest, SendsNothingWhenTheProgramClosesDuringTheFetch) {
    hosts.StaticMap = "https://maps.example.org";
    download.onDownload = [this] {
        session.Closing = true;
        session.WaitCounter = Session::waitCounterClosing;
    };
    generate();
    EXPECT_TRUE(mailer.mails.empty());
    EXPECT_EQ(log.messages, Texts{});
    EXPECT_EQ(session.WaitCounter, Session::waitCounterClosing);
}

TEST_F(EmailNotificationTest, SkipsTheSendingWhenTheWaitsWereEnded) {
    hosts.StaticMap = "https://maps.example.org";
    download.onDownload = [this] { session.WaitCounter = 200; };
    generate();
    EXPECT_TRUE(mailer.mails.empty());
    download.onDownload = [this] { session.WaitCounter = 199; };
    generate();
    EXPECT_EQ(mailer.mails.size(), 1U);
}

TEST_F(EmailNotificationTest, DoesNotReviveAProgramThatClosesDuringTheSending) {
    mailer.onSend = [this] {
        session.Closing = true;
        session.WaitCounter = Session::waitCounterClosing;
    };
    generate();
    EXPECT_EQ(session.WaitCounter, Session::waitCounterClosing);
}

} // namespace
} // namespace tremor::testing
