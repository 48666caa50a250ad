#include "alerts/smtp_form.h"
#include "support/fakes.h"

#include <gtest/gtest.h>

namespace tremor::testing {
namespace {

class SmtpFormTest : public ::testing::Test {
  protected:
    SmtpFormTest() {
        settings.SMTPserver = "mail.example.org";
        settings.SMTPusername = "operator";
        settings.SMTPpassword = " secret ";
        settings.SMTPport = 587;
        settings.SMTPreqSSL = 1;
        settings.SMTPfromName = "Control Room";
        settings.SMTPfromEmail = "room@example.org";
        settings.SMTPrecipient = "a@example.org,b@example.org";
        settings.MagToSend = 4;
        settings.enableEmail = 1;
    }

    void store(const SmtpForm& form, const NumberLocale& locale = NumberLocale::point()) {
        formToSettings(form, settings, locale, harness.errors);
    }

    AppSettings settings;
    ErrorHarness harness;
};

TEST_F(SmtpFormTest, ComesBackAsItWasLoaded) {
    const SmtpForm form = settingsToForm(settings);
    EXPECT_EQ(form.port, "587");
    settings = AppSettings();
    store(form);
    EXPECT_EQ(settings.SMTPserver, "mail.example.org");
    EXPECT_EQ(settings.SMTPusername, "operator");
    EXPECT_EQ(settings.SMTPpassword, " secret ");
    EXPECT_EQ(settings.SMTPport, 587);
    EXPECT_EQ(settings.SMTPreqSSL, 1);
    EXPECT_EQ(settings.SMTPfromName, "Control Room");
    EXPECT_EQ(settings.SMTPfromEmail, "room@example.org");
    EXPECT_EQ(settings.SMTPrecipient, "a@example.org,b@example.org");
    EXPECT_EQ(settings.MagToSend, 4);
    EXPECT_EQ(settings.enableEmail, 0);
}

TEST_F(SmtpFormTest, ReportsAPortThatIsNoNumberAndStoresTheRestAfterIgnore) {
    SmtpForm form = settingsToForm(settings);
    form.server = "other.example.org";
    form.port = "smtp";
    form.to = "c@example.org";
    harness.prompts.expectRuntimeError("Type mismatch", ErrorAnswer::Ignore);
    store(form);
    EXPECT_EQ(settings.SMTPport, 587);
    EXPECT_EQ(settings.SMTPserver, "other.example.org");
    EXPECT_EQ(settings.SMTPrecipient, "c@example.org");
    EXPECT_NE(harness.prompts.lastErrorText.find("formToSettings"), std::string::npos);
}

TEST_F(SmtpFormTest, ReportsAPortBeyondSixteenBits) {
    SmtpForm form = settingsToForm(settings);
    form.port = "40000";
    harness.prompts.expectRuntimeError("Overflow", ErrorAnswer::Ignore);
    store(form);
    EXPECT_EQ(settings.SMTPport, 587);
}

TEST_F(SmtpFormTest, ReadsThePortAsANumberOfTheLocale) {
    SmtpForm form = settingsToForm(settings);
    form.port = "24,6";
    store(form, NumberLocale::comma());
    EXPECT_EQ(settings.SMTPport, 25);
    store(form, NumberLocale::point());
    EXPECT_EQ(settings.SMTPport, 246);
}

TEST_F(SmtpFormTest, ShowsEverySslFlagButZeroAsTicked) {
    settings.SMTPreqSSL = -1;
    EXPECT_TRUE(settingsToForm(settings).reqSsl);
    settings.SMTPreqSSL = 0;
    EXPECT_FALSE(settingsToForm(settings).reqSsl);
}

} // namespace
} // namespace tremor::testing
