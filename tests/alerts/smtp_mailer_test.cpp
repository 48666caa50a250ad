#include "alerts/smtp_mailer.h"
#include "support/mail_server.h"
#include "support/raw_server.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <chrono>
#include <fstream>
#include <ostream>
#include <string>
#include <vector>

namespace tremor::testing {
namespace {

using Lines = std::vector<std::string>;
using Moment = std::chrono::steady_clock;

// The shortest limit of a mailer that is told none is 30 s.
constexpr std::chrono::seconds wellBeforeItsLimits(20);

class SmtpMailerTest : public ::testing::Test {
  protected:
    SmtpMailerTest() {
        ::setenv("no_proxy", "127.0.0.1,localhost", 1);
        limits.implicitTlsPort = 0;
        mail.to = "first@example.org, Citt\xC3\xA0 <second@example.org>";
        mail.subject = "NEW EVENT 2021-01-14 05:45:26";
        mail.from = "Sala Forl\xC3\xAC<room@example.org>";
        mail.body = "EVT 2021-01-14 05:45:26\r\n.dot\r\nForl\xEC = Km 3\r\n";
        mail.attachment = folder.file("email.png");
        std::ofstream(mail.attachment, std::ios::binary) << picture;
    }

    std::string send(int port, const std::string& password = "secret") {
        SmtpMailer mailer(clock, session, limits);
        const auto start = Moment::now();
        std::string result = mailer.sendMailCDO(mail, {"localhost", port, "operator", password});
        elapsed = Moment::now() - start;
        return result;
    }
    std::string send(const MailServer& server, const std::string& password = "secret") {
        limits.certificateAuthorityFile = server.certificateFile();
        return send(server.port(), password);
    }

    const std::string picture = std::string("\x89PNG\r\n\x1A\n\0\r\n.\r\n", 14);
    TemporaryFolder folder;
    FakeClock clock;
    Session session;
    SmtpLimits limits;
    OutgoingMail mail;
    Moment::duration elapsed{};
};

class SmtpServerTest : public SmtpMailerTest {
  protected:
    MailServer server;
};

TEST_F(SmtpServerTest, SendsOverStartTlsWithUserAndPassword) {
    EXPECT_EQ(send(server), "");
    EXPECT_EQ(server.mailCount(), 1);
    EXPECT_EQ(server.envelope(), (Lines{"from room@example.org", "to first@example.org",
                                        "to second@example.org", "user operator", "tls yes"}));
}

TEST_F(SmtpServerTest, SendsHeadTextAndAttachmentThatAMailProgramReadsBack) {
    ASSERT_EQ(send(server), "");
    const UnpackedMail read(server.raw());
    EXPECT_EQ(read.part("defects"), "");
    EXPECT_EQ(read.part("subject"), mail.subject);
    EXPECT_EQ(read.part("from"), "Sala Forl\xC3\xAC <room@example.org>");
    EXPECT_EQ(read.part("to"), "first@example.org, Citt\xC3\xA0 <second@example.org>");
    EXPECT_NE(read.part("date").find(" +0000"), std::string::npos);
    EXPECT_TRUE(read.part("message-id").ends_with("@example.org>"));
    EXPECT_EQ(read.part("mime-version"), "1.0");
    EXPECT_EQ(read.part("text"), "EVT 2021-01-14 05:45:26\r\n.dot\r\nForl\xC3\xAC = Km 3\r\n");
    EXPECT_EQ(read.part("text-type"), "text/plain; utf-8");
    EXPECT_EQ(read.part("attachment"), picture);
    EXPECT_EQ(read.part("attachment-name"), "email.png");
    EXPECT_EQ(read.part("attachment-type"), "image/png");
}

TEST_F(SmtpServerTest, SendsWithoutAnAttachmentWhenItsPathIsBlank) {
    mail.attachment = "  ";
    ASSERT_EQ(send(server), "");
    const UnpackedMail read(server.raw());
    EXPECT_EQ(read.part("attachment-name"), "");
    EXPECT_NE(read.part("text"), "");
}

TEST_F(SmtpServerTest, TakesASenderWithoutAName) {
    mail.from = "<room@example.org>";
    ASSERT_EQ(send(server), "");
    EXPECT_EQ(UnpackedMail(server.raw()).part("from"), "room@example.org");
}

TEST_F(SmtpServerTest, LetsNoSubjectAddALineToTheHead) {
    mail.subject = "NEW EVENT x\r\nBcc: victim@example.org\r\n\r\nbody";
    ASSERT_EQ(send(server), "");
    const UnpackedMail read(server.raw());
    EXPECT_EQ(read.part("bcc"), "");
    EXPECT_EQ(read.part("subject"), "NEW EVENT x  Bcc: victim@example.org    body");
}

TEST_F(SmtpServerTest, SendsNothingWithoutTheAttachment) {
    mail.attachment = folder.file("missing.png");
    EXPECT_EQ(send(server), "File not found: " + mail.attachment);
    EXPECT_EQ(server.mailCount(), 0);
}

TEST_F(SmtpServerTest, SendsNothingToOneRecipientWhenAnotherIsNone) {
    mail.to += ",bad\raddress";
    EXPECT_EQ(send(server), "\"bad address\" is no e-mail address.");
    EXPECT_EQ(server.mailCount(), 0);
}

TEST_F(SmtpServerTest, GivesTheErrorOfAWrongPassword) {
    EXPECT_EQ(send(server, "wrong"), "Login denied");
    EXPECT_EQ(server.mailCount(), 0);
}

TEST_F(SmtpServerTest, SendsNothingToAServerWhoseCertificateIsUnknown) {
    const std::string error = send(server.port());
    EXPECT_NE(error.find("certificate"), std::string::npos) << error;
    EXPECT_EQ(server.mailCount(), 0);
}

TEST_F(SmtpServerTest, SendsNothingToAServerThatOffersNoStartTls) {
    server.setFaults("starttls missing");
    EXPECT_EQ(send(server), "STARTTLS not supported.");
    EXPECT_EQ(server.mailCount(), 0);
}

TEST_F(SmtpServerTest, SendsWithoutLogInWhereNoneIsOffered) {
    server.setFaults("auth missing");
    EXPECT_EQ(send(server), "");
    EXPECT_EQ(server.envelope().at(3), "user ");
    EXPECT_EQ(server.envelope().at(4), "tls yes");
}

TEST_F(SmtpServerTest, LetsWindowMessagesRunMeanwhile) {
    EXPECT_EQ(send(server), "");
    EXPECT_GT(clock.pumps, 3);
}

// A poll inside the sending, which may wait for minutes, would use up its time.
TEST_F(SmtpServerTest, HoldsTicksMeanwhile) {
    int free = 0;
    clock.onPump = [&] { free += session.TicksHeld ? 0 : 1; };
    EXPECT_EQ(send(server), "");
    EXPECT_GT(clock.pumps, 3);
    EXPECT_EQ(free, 0);
    EXPECT_FALSE(session.TicksHeld);
}

TEST_F(SmtpServerTest, EndsWhenTheProgramCloses) {
    server.setFaults("mail hang");
    clock.onPump = [this] { session.Closing = clock.pumps > 20; };
    EXPECT_EQ(send(server), "The mail was not sent: the program is closing.");
    EXPECT_LT(elapsed, wellBeforeItsLimits);
}

TEST_F(SmtpServerTest, DoesNotWaitForTheAnswerToItsGoodbye) {
    server.setFaults("quit hang");
    EXPECT_EQ(send(server), "");
    EXPECT_LT(elapsed, wellBeforeItsLimits);
    EXPECT_EQ(server.mailCount(), 1);
}

TEST_F(SmtpServerTest, DoesNotWaitForTheAnswerToItsGoodbyeAfterARefusal) {
    for (const char* const stage : {"auth", "mail", "rcpt", "data", "message"}) {
        server.setFaults(std::string(stage) + " refuse\nquit hang");
        EXPECT_NE(send(server), "");
        EXPECT_LT(elapsed, wellBeforeItsLimits) << stage;
    }
}

TEST_F(SmtpMailerTest, SendsOverImplicitTlsOnItsPort) {
    const MailServer server(MailServer::Encryption::Implicit);
    limits.implicitTlsPort = server.port();
    EXPECT_EQ(send(server), "");
    EXPECT_EQ(server.envelope().at(3), "user operator");
    EXPECT_EQ(UnpackedMail(server.raw()).part("attachment"), picture);
}

struct Refusal {
    const char* fault;
    const char* error;
};

void PrintTo(const Refusal& value, std::ostream* stream) {
    *stream << value.fault;
}

class SmtpRefusal : public SmtpServerTest, public ::testing::WithParamInterface<Refusal> {};

TEST_P(SmtpRefusal, BecomesTheResultAndSendsNothing) {
    server.setFaults(GetParam().fault);
    EXPECT_EQ(send(server), GetParam().error);
    EXPECT_EQ(server.mailCount(), 0);
}

INSTANTIATE_TEST_SUITE_P(Stages, SmtpRefusal,
                         ::testing::Values(Refusal{"greeting refuse",
                                                   "Got unexpected smtp-server response: 554"},
                                           Refusal{"ehlo refuse", "Remote access denied: 550"},
                                           Refusal{"starttls refuse", "STARTTLS denied, code 454"},
                                           Refusal{"auth refuse", "Login denied"},
                                           Refusal{"mail refuse", "MAIL failed: 550"},
                                           Refusal{"rcpt refuse", "RCPT failed: 550"},
                                           Refusal{"data refuse", "DATA failed: 554"},
                                           Refusal{"message refuse", "Weird server reply"}));

class SmtpSilence : public SmtpServerTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(SmtpSilence, HasAnEnd) {
    limits.connectSeconds = 1;
    limits.answerSeconds = 1;
    limits.totalSeconds = 2;
    server.setFaults(std::string(GetParam()) + " hang");
    EXPECT_NE(send(server), "");
    EXPECT_LT(elapsed, wellBeforeItsLimits);
    EXPECT_EQ(server.mailCount(), 0);
}

INSTANTIATE_TEST_SUITE_P(Stages, SmtpSilence,
                         ::testing::Values("greeting", "ehlo", "starttls", "auth", "mail", "rcpt",
                                           "data", "message"));

class SmtpCut : public SmtpServerTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(SmtpCut, BecomesAnErrorText) {
    server.setFaults(std::string(GetParam()) + " drop");
    EXPECT_NE(send(server), "");
    EXPECT_EQ(server.mailCount(), 0);
}

INSTANTIATE_TEST_SUITE_P(Stages, SmtpCut,
                         ::testing::Values("greeting", "ehlo", "starttls", "auth", "mail", "rcpt",
                                           "data", "message"));

TEST_F(SmtpMailerTest, GivesTheErrorOfAPortWhereNobodyListens) {
    const std::string error = send(unusedPort());
    EXPECT_NE(error.find("Failed to connect"), std::string::npos) << error;
}

TEST_F(SmtpMailerTest, GivesUpOnAPortThatNeverAnswers) {
    const SilentPort silent;
    limits.connectSeconds = 1;
    EXPECT_NE(send(silent.port()), "");
    EXPECT_LT(elapsed, wellBeforeItsLimits);
}

TEST_F(SmtpMailerTest, GivesUpOnAServerThatSpeaksNoSmtp) {
    const RawServer server([](const RawConnection& connection) {
        connection.send("HTTP/1.1 400 Bad Request\r\n\r\n");
        connection.stall();
    });
    limits.connectSeconds = 1;
    limits.totalSeconds = 2;
    EXPECT_NE(send(server.port()), "");
    EXPECT_LT(elapsed, wellBeforeItsLimits);
}

TEST_F(SmtpMailerTest, RefusesAServerNameOrPortThatCannotBe) {
    SmtpMailer mailer(clock, session, limits);
    EXPECT_NE(mailer.sendMailCDO(mail, {"", 25, "", ""}), "");
    EXPECT_NE(mailer.sendMailCDO(mail, {"user@host/path", 25, "", ""}), "");
    EXPECT_NE(mailer.sendMailCDO(mail, {"bad host\r\n", 25, "", ""}), "");
    EXPECT_NE(mailer.sendMailCDO(mail, {"localhost", -1, "", ""}), "");
    EXPECT_EQ(clock.pumps, 0);
}

} // namespace
} // namespace tremor::testing
