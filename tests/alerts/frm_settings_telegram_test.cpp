#include "alerts/frm_settings_telegram.h"
#include "alerts/telegram_fixture.h"
#include "core/qt_text.h"
#include "support/window_driver.h"

#include <QtWidgets/QGroupBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>

namespace tremor {
namespace {

using testing::child;

class FrmSettingsTelegramTest : public testing::TelegramTest {
  protected:
    FrmSettingsTelegramTest() { settings.TelegramPollEvery = 7; }
    ~FrmSettingsTelegramTest() override {
        if (window)
            window->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    void open(const NumberLocale& locale = NumberLocale::point()) {
        window = new FrmSettingsTelegram(settings, bot, locale, "https://help/bots", nullptr);
        window->show();
    }
    std::string text(const char* label) { return toBytes(child<QLabel>(*window, label)->text()); }
    std::string typed(const char* name) { return toBytes(box(name)->text()); }
    QLineEdit* box(const char* name) { return child<QLineEdit>(*window, name); }
    void press(const char* button) { child<QPushButton>(*window, button)->click(); }
    bool isGone() {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return window.isNull();
    }
    QRgb colour(const char* label) {
        return child<QLabel>(*window, label)->palette().color(QPalette::WindowText).rgb();
    }

    QPointer<FrmSettingsTelegram> window;
};

TEST_F(FrmSettingsTelegramTest, ShowsTheSettingsAndTheHelp) {
    open();
    EXPECT_EQ(toBytes(window->objectName()), "frmSettingsTelegram");
    EXPECT_EQ(toBytes(window->windowTitle()), "Settings Telegram");
    EXPECT_EQ(toBytes(child<QGroupBox>(*window, "Frame1")->title()), "Setup a BOT");
    EXPECT_EQ(text("Label1"),
              "For setting notifications on Telegram you need to create a Bot and know its Token."
              "\nIf you don't know how to create a Bot, please read the documentation on ");
    EXPECT_EQ(typed("txtUrlTelegram"), "https://help/bots");
    EXPECT_TRUE(box("txtUrlTelegram")->isReadOnly());
    EXPECT_EQ(text("Label2"), "Insert below the &Token generated from BotFather");
    EXPECT_EQ(typed("txtToken"), "12:secret");
    EXPECT_EQ(typed("txtPollBot"), "7");
    EXPECT_EQ(text("lblTestToken") + text("lblNameBot") + text("lblInfoName"), "");
    EXPECT_EQ(toBytes(child<QPushButton>(*window, "cmdTest")->text()), "Test To&ken");
    EXPECT_TRUE(service.urls.empty());
}

TEST_F(FrmSettingsTelegramTest, NeverShowsTheToken) {
    open();
    EXPECT_EQ(box("txtToken")->echoMode(), QLineEdit::Password);
    EXPECT_FALSE(box("txtToken")->displayText().contains(QStringLiteral("secret")));
}

TEST_F(FrmSettingsTelegramTest, StoresOnOkAndCloses) {
    open();
    box("txtToken")->setText(QStringLiteral("3:new"));
    box("txtPollBot")->setText(QStringLiteral("15"));
    press("CmdOk");
    EXPECT_EQ(settings.TelegramToken, "3:new");
    EXPECT_EQ(settings.TelegramPollEvery, 15);
    EXPECT_TRUE(isGone());
}

TEST_F(FrmSettingsTelegramTest, TakesOneMinuteForAPeriodBelowOne) {
    for (const char* period : {"0", "-3", "", "often"}) {
        open(NumberLocale::comma());
        box("txtPollBot")->setText(QLatin1StringView(period));
        press("CmdOk");
        EXPECT_EQ(settings.TelegramPollEvery, 1) << period;
        EXPECT_TRUE(isGone());
    }
}

TEST_F(FrmSettingsTelegramTest, StoresNothingOnCancelOrEscape) {
    for (const bool escape : {false, true}) {
        open();
        box("txtToken")->setText(QStringLiteral("3:new"));
        box("txtPollBot")->setText(QStringLiteral("15"));
        if (escape)
            testing::pressKey(*box("txtToken"), Qt::Key_Escape);
        else
            press("CmdCancel");
        EXPECT_TRUE(isGone());
        EXPECT_EQ(settings.TelegramToken, "12:secret");
        EXPECT_EQ(settings.TelegramPollEvery, 7);
    }
}

TEST_F(FrmSettingsTelegramTest, AcceptsWithReturn) {
    open();
    box("txtPollBot")->setText(QStringLiteral("15"));
    testing::pressKey(*box("txtPollBot"), Qt::Key_Return);
    EXPECT_EQ(settings.TelegramPollEvery, 15);
    EXPECT_TRUE(isGone());
}

TEST_F(FrmSettingsTelegramTest, TestsTheTokenOfItsBox) {
    open();
    service.replies["getMe"] =
        R"({"ok":true,"result":{"id":1,"first_name":"B","username":"<b>my&bot</b>"}})";
    box("txtToken")->setText(QStringLiteral("3:new"));
    press("cmdTest");
    EXPECT_EQ(service.urls.front(), "http://service/bot3:new/getUpdates");
    EXPECT_EQ(text("lblTestToken"), "Ok");
    EXPECT_EQ(colour("lblTestToken"), qRgb(0, 255, 0));
    EXPECT_EQ(text("lblNameBot"), "<b>my&bot</b>");
    EXPECT_EQ(text("lblInfoName"), "Name of BOT\nshare it for add new followers.");
    for (const char* label : {"lblTestToken", "lblNameBot", "lblInfoName"})
        EXPECT_EQ(child<QLabel>(*window, label)->textFormat(), Qt::PlainText) << label;
    EXPECT_EQ(settings.TelegramToken, "12:secret");

    service.replies["getUpdates"] = testing::telegramReply("error_401.json");
    press("cmdTest");
    EXPECT_EQ(text("lblTestToken"), "Failed");
    EXPECT_EQ(colour("lblTestToken"), qRgb(255, 0, 0));
    EXPECT_EQ(text("lblNameBot") + text("lblInfoName"), "");
}

TEST_F(FrmSettingsTelegramTest, KeepsItsSizeWhenTheNameHasALongTail) {
    open();
    const QSize before = window->size();
    press("cmdTest"); // the real reply: some 250 characters behind the name
    QCoreApplication::processEvents();
    EXPECT_EQ(text("lblTestToken"), "Ok");
    EXPECT_GT(text("lblNameBot").size(), 200u);
    EXPECT_EQ(window->size(), before);
    EXPECT_LE(window->minimumSizeHint().width(), 933);
    EXPECT_LE(window->minimumSizeHint().height(), 667);
}

TEST_F(FrmSettingsTelegramTest, LivesOnWhileATestWaits) {
    open();
    int requests = 0;
    service.onRequest = [&](const std::string&) {
        ++requests;
        QCoreApplication::processEvents();
        EXPECT_EQ(text("lblTestToken"), "Testing…");
        press("cmdTest"); // no second test meanwhile
        box("txtPollBot")->setText(QStringLiteral("9"));
    };
    press("cmdTest");
    EXPECT_EQ(requests, 2);
    EXPECT_EQ(typed("txtPollBot"), "9");
    EXPECT_TRUE(child<QPushButton>(*window, "cmdTest")->isEnabled());
}

TEST_F(FrmSettingsTelegramTest, CanBeClosedWhileATestWaits) {
    open();
    service.onRequest = [&](const std::string&) {
        if (window)
            window->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        delete window.data();
    };
    press("cmdTest");
    EXPECT_TRUE(window.isNull());
    EXPECT_EQ(service.urls.size(), 2u);
}

} // namespace
} // namespace tremor
