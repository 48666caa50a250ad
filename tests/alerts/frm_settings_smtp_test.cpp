#include "alerts/frm_settings_smtp.h"
#include "support/fakes.h"
#include "support/window_driver.h"

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>

#include <gtest/gtest.h>

#include <cstdlib>

namespace tremor::testing {
namespace {

class FrmSettingsSmtpTest : public ::testing::Test {
  protected:
    FrmSettingsSmtpTest() {
        settings.SMTPserver = "mail.example.org";
        settings.SMTPusername = "operator";
        settings.SMTPpassword = "secret";
        settings.SMTPport = 587;
        settings.SMTPreqSSL = 1;
        settings.SMTPfromName = "Forl\xEC";
        settings.SMTPfromEmail = "room@example.org";
        settings.SMTPrecipient = "a@example.org,b@example.org";
        settings.MagToSend = 4;
    }
    ~FrmSettingsSmtpTest() override { delete form.data(); }

    void load() {
        form = new frmSettingsSMTP(settings, NumberLocale::point(), harness.errors, nullptr);
        form->show();
        QCoreApplication::processEvents();
    }
    QString textOf(const char* name) const { return child<QLineEdit>(*form, name)->text(); }
    void type(const char* name, const char* text) {
        child<QLineEdit>(*form, name)->setText(QString::fromUtf8(text));
    }
    void press(const char* name) { child<QPushButton>(*form, name)->click(); }
    QComboBox* magnitudes() const { return child<QComboBox>(*form, "cmbMagnitude"); }

    // True when the window is closed and has deleted itself.
    bool unloaded() {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return form.isNull();
    }

    AppSettings settings;
    ErrorHarness harness;
    QPointer<frmSettingsSMTP> form;
};

TEST_F(FrmSettingsSmtpTest, IsAModelessWindowWithItsTitle) {
    load();
    EXPECT_EQ(form->objectName(), QStringLiteral("frmSettingsSMTP"));
    EXPECT_EQ(form->windowTitle(), QStringLiteral("Settings SMTP"));
    EXPECT_FALSE(form->isModal());
    EXPECT_LE(form->width(), 933);
    EXPECT_LE(form->height(), 667);
    if (const char* const folder = std::getenv("TREMOR_PICTURES")) {
        EXPECT_TRUE(
            form->grab().save(QString::fromUtf8(folder) + QStringLiteral("/frmSettingsSMTP.png")));
    }
}

TEST_F(FrmSettingsSmtpTest, NamesItsFramesAndBoxes) {
    load();
    EXPECT_EQ(child<QGroupBox>(*form, "Frame1")->title(), QStringLiteral("SMTP"));
    EXPECT_EQ(child<QGroupBox>(*form, "Frame2")->title(), QStringLiteral("Header  Email"));
    EXPECT_EQ(child<QGroupBox>(*form, "Frame3")->title(), QStringLiteral("E-Mail "));
    QStringList labels;
    for (const QLabel* label : form->findChildren<QLabel*>()) {
        ASSERT_NE(label->buddy(), nullptr) << label->text().toStdString();
        labels += label->buddy()->objectName() + u'=' + label->text().remove(u'&');
    }
    labels.sort();
    EXPECT_EQ(labels,
              (QStringList{QStringLiteral("cmbMagnitude=Send E-mail if Eartquake is over "),
                           QStringLiteral("txtFromEmail=From Email"),
                           QStringLiteral("txtFromName=From Name"),
                           QStringLiteral("txtPassword=Password"), QStringLiteral("txtPort=Port"),
                           QStringLiteral("txtServer=Server"), QStringLiteral("txtTo=To"),
                           QStringLiteral("txtUsername=Username")}));
    EXPECT_EQ(child<QCheckBox>(*form, "chkSSL")->text().remove(u'&'), QStringLiteral("Req. SSL"));
    EXPECT_EQ(child<QPushButton>(*form, "CmdCancel")->text().remove(u'&'),
              QStringLiteral("Cancel"));
    EXPECT_TRUE(child<QLineEdit>(*form, "txtTo")->toolTip().contains(QLatin1String("commas")));
}

TEST_F(FrmSettingsSmtpTest, GivesEveryMnemonicOnce) {
    load();
    QString letters;
    const auto collect = [&](const QString& text) {
        const qsizetype at = text.indexOf(u'&');
        if (at >= 0)
            letters += text[at + 1].toLower();
    };
    for (const QLabel* label : form->findChildren<QLabel*>())
        collect(label->text());
    for (const QAbstractButton* button : form->findChildren<QAbstractButton*>())
        collect(button->text());
    for (const QChar letter : letters)
        EXPECT_EQ(letters.count(letter), 1) << QString(letter).toStdString();
}

TEST_F(FrmSettingsSmtpTest, ShowsTheSettings) {
    load();
    EXPECT_EQ(textOf("txtServer"), QStringLiteral("mail.example.org"));
    EXPECT_EQ(textOf("txtUsername"), QStringLiteral("operator"));
    EXPECT_EQ(textOf("txtPassword"), QStringLiteral("secret"));
    EXPECT_EQ(textOf("txtPort"), QStringLiteral("587"));
    EXPECT_TRUE(child<QCheckBox>(*form, "chkSSL")->isChecked());
    EXPECT_EQ(textOf("txtFromName"), QString::fromUtf8("Forl\xC3\xAC"));
    EXPECT_EQ(textOf("txtFromEmail"), QStringLiteral("room@example.org"));
    EXPECT_EQ(textOf("txtTo"), QStringLiteral("a@example.org,b@example.org"));
    EXPECT_EQ(magnitudes()->currentText(), QStringLiteral("4"));
}

TEST_F(FrmSettingsSmtpTest, HidesThePassword) {
    load();
    const auto* password = child<QLineEdit>(*form, "txtPassword");
    EXPECT_EQ(password->echoMode(), QLineEdit::Password);
    EXPECT_FALSE(password->displayText().contains(QLatin1String("secret")));
}

TEST_F(FrmSettingsSmtpTest, OffersMagnitudesFromZeroToEight) {
    load();
    ASSERT_EQ(magnitudes()->count(), 9);
    for (int i = 0; i < 9; ++i)
        EXPECT_EQ(magnitudes()->itemText(i), QString::number(i));
}

TEST_F(FrmSettingsSmtpTest, KeepsAThresholdThatItDoesNotOffer) {
    settings.MagToSend = -1;
    load();
    EXPECT_EQ(magnitudes()->currentText(), QStringLiteral("-1"));
    press("CmdOk");
    EXPECT_EQ(settings.MagToSend, -1);
}

TEST_F(FrmSettingsSmtpTest, StoresAllFieldsAndClosesOnOk) {
    load();
    type("txtServer", "smtp.example.net");
    type("txtUsername", "u");
    type("txtPassword", "p\xC3\xA8");
    type("txtPort", "465");
    child<QCheckBox>(*form, "chkSSL")->setChecked(false);
    type("txtFromName", "Room");
    type("txtFromEmail", "r@example.net");
    type("txtTo", "x@example.net");
    magnitudes()->setCurrentIndex(6);
    press("CmdOk");
    EXPECT_TRUE(unloaded());
    EXPECT_EQ(settings.SMTPserver, "smtp.example.net");
    EXPECT_EQ(settings.SMTPusername, "u");
    EXPECT_EQ(settings.SMTPpassword, "p\xC3\xA8");
    EXPECT_EQ(settings.SMTPport, 465);
    EXPECT_EQ(settings.SMTPreqSSL, 0);
    EXPECT_EQ(settings.SMTPfromName, "Room");
    EXPECT_EQ(settings.SMTPfromEmail, "r@example.net");
    EXPECT_EQ(settings.SMTPrecipient, "x@example.net");
    EXPECT_EQ(settings.MagToSend, 6);
}

TEST_F(FrmSettingsSmtpTest, StoresNothingOnCancelAndOnEscape) {
    load();
    type("txtServer", "other");
    press("CmdCancel");
    EXPECT_TRUE(unloaded());
    load();
    type("txtServer", "other");
    pressKey(*child<QLineEdit>(*form, "txtServer"), Qt::Key_Escape);
    EXPECT_TRUE(unloaded());
    EXPECT_EQ(settings.SMTPserver, "mail.example.org");
}

TEST_F(FrmSettingsSmtpTest, ReportsAPortThatIsNoNumberAndClosesAfterIgnore) {
    load();
    type("txtPort", "smtp");
    type("txtServer", "other");
    harness.prompts.expectRuntimeError("Type mismatch", ErrorAnswer::Ignore);
    press("CmdOk");
    EXPECT_TRUE(unloaded());
    EXPECT_EQ(settings.SMTPport, 587);
    EXPECT_EQ(settings.SMTPserver, "other");
}

TEST_F(FrmSettingsSmtpTest, TabsThroughTheBoxesFromTopToBottom) {
    load();
    QStringList order;
    const QWidget* widget = form.data();
    do {
        widget = widget->nextInFocusChain();
        if ((widget->focusPolicy() & Qt::TabFocus) != 0 && !widget->objectName().isEmpty())
            order += widget->objectName();
    } while (widget != form.data());
    EXPECT_EQ(order.join(u' '),
              QStringLiteral("txtServer txtUsername txtPassword txtPort chkSSL txtFromName "
                             "txtFromEmail txtTo cmbMagnitude CmdOk CmdCancel"));
}

} // namespace
} // namespace tremor::testing
