#include "alerts/frm_settings_pagerlink.h"
#include "alerts/scripted_socket.h"
#include "alerts/udp_socket.h"
#include "core/qt_clock.h"
#include "core/qt_text.h"
#include "practice_feeds/pagerlink_service.h"
#include "support/fakes.h"
#include "support/window_driver.h"

#include <QtWidgets/QComboBox>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QRadioButton>
#include <QtWidgets/QTableWidget>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

namespace tremor {
namespace {

using namespace std::chrono_literals;
using testing::child;
using testing::pressKey;
using testing::ScriptedSocket;
using Flags = std::initializer_list<std::int16_t>;

const QString ticked = QString(QChar(0xFE));
const QString unticked = QStringLiteral("q");

class FrmSettingsPagerlinkTest : public ::testing::Test {
  protected:
    FrmSettingsPagerlinkTest() {
        settings.PGLserver = "pager.lan";
        settings.PGLport = "7000";
    }
    ~FrmSettingsPagerlinkTest() override { delete form.data(); }

    // The window on the screen, its list fetched; `reply` answers the first request, when not
    // empty.
    void load(const std::string& reply = {}) {
        auto own = std::make_unique<ScriptedSocket>();
        socket = own.get();
        answerWith(reply);
        open(clock, std::move(own));
    }
    void open(Clock& waits, std::unique_ptr<DatagramSocket> own) {
        form = new frmSettingsPagerlink(
            {settings, session, locale, harness.prompts, waits, harness.errors}, std::move(own),
            nullptr);
        form->show();
        for (int i = 0; i < 3; ++i)
            QCoreApplication::processEvents();
    }
    void answerWith(const std::string& reply) {
        clock.onPump = [this, reply] {
            if (!reply.empty() && !socket->sent.empty() && !answered) {
                answered = true;
                socket->arrive(reply);
            }
        };
    }
    bool unloaded() {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return form.isNull();
    }
    template <class Widget>
    Widget* the(const char* name) {
        return child<Widget>(*form, name);
    }
    QString cell(int row, int column) {
        const auto* item = the<QTableWidget>("gridUsers")->item(row, column);
        return item == nullptr ? QString() : item->text();
    }
    void clickCell(int row, int column) {
        auto* grid = the<QTableWidget>("gridUsers");
        const QPointF place = grid->visualItemRect(grid->item(row, column)).center();
        testing::sendMouse(*grid->viewport(), QEvent::MouseButtonPress, place);
        testing::sendMouse(*grid->viewport(), QEvent::MouseButtonRelease, place);
    }
    QColor resultColour() {
        return the<QLabel>("labelResult")->palette().color(QPalette::WindowText);
    }
    void expectNoList() {
        harness.prompts.expectBox("Impossible retrieve a list of users, check Settings please.",
                                  "TREMORLEDGER", BoxIcon::Critical, BoxButtons::Ok, BoxAnswer::Ok);
    }

    AppSettings settings;
    Session session;
    NumberLocale locale = NumberLocale::comma();
    testing::ErrorHarness harness;
    testing::FakeClock clock;
    ScriptedSocket* socket = nullptr;
    bool answered = false;
    QPointer<frmSettingsPagerlink> form;
};

TEST_F(FrmSettingsPagerlinkTest, ShowsTheSettings) {
    settings.PGLserver = "h\xC3\xB4te";
    settings.PGLmagToSend = 3;
    load();
    EXPECT_EQ(form->windowTitle(), QStringLiteral("Settings Pagerlink"));
    EXPECT_EQ(the<QGroupBox>("Frame1")->title(), QStringLiteral("Settings Pagerlink Server"));
    EXPECT_EQ(the<QGroupBox>("Frame2")->title(),
              QStringLiteral("Setting the Message will be sent."));
    EXPECT_EQ(the<QLineEdit>("txtPglServer")->text(), QStringLiteral("h\u00F4te"));
    EXPECT_EQ(the<QLineEdit>("txtPglPort")->text(), QStringLiteral("7000"));
    EXPECT_TRUE(the<QRadioButton>("optBroadcast")->isChecked());
    const auto* magnitudes = the<QComboBox>("cmbMagnitude");
    EXPECT_EQ(magnitudes->count(), 9);
    EXPECT_EQ(magnitudes->itemText(0), QStringLiteral("0"));
    EXPECT_EQ(magnitudes->itemText(8), QStringLiteral("8"));
    EXPECT_EQ(magnitudes->currentText(), QStringLiteral("3"));
    EXPECT_TRUE(the<QTableWidget>("gridUsers")->isHidden());
    EXPECT_EQ(the<QLabel>("labelResult")->text(), QString());
    EXPECT_FALSE(form->isModal());
    EXPECT_TRUE(socket->sent.empty());
}

TEST_F(FrmSettingsPagerlinkTest, FetchesTheListAtOnceInEveryModeButBroadcast) {
    for (const std::int16_t mode : Flags{1, 2}) {
        settings.PGLAllOrSelected = mode;
        settings.PGLselectedUsers = "bruno";
        answered = false;
        load("users anna bruno");
        EXPECT_TRUE(the<QRadioButton>("optSelectedUser")->isChecked());
        const auto* grid = the<QTableWidget>("gridUsers");
        EXPECT_TRUE(grid->isVisible());
        EXPECT_EQ(grid->columnCount(), 3);
        EXPECT_EQ(grid->rowCount(), 2);
        EXPECT_EQ(grid->horizontalHeaderItem(1)->text(), QStringLiteral("Users"));
        EXPECT_EQ(grid->horizontalHeaderItem(2)->text(), QStringLiteral("Selected"));
        EXPECT_EQ(cell(0, 1), QStringLiteral("anna"));
        EXPECT_EQ(cell(0, 2), unticked);
        EXPECT_EQ(cell(1, 1), QStringLiteral("bruno"));
        EXPECT_EQ(cell(1, 2), ticked);
        delete form.data();
    }
}

TEST_F(FrmSettingsPagerlinkTest, GrowsForTheGridAndShrinksBehindIt) {
    load("users anna bruno");
    const int before = form->height();
    const int buttons = the<QPushButton>("CmdOk")->y();
    const int gridHeight = twipsToPixels(2100, form->logicalDpiY());
    the<QRadioButton>("optSelectedUser")->click();
    QCoreApplication::processEvents();
    EXPECT_EQ(form->height(), before + gridHeight);
    EXPECT_EQ(the<QPushButton>("CmdOk")->y(), buttons + gridHeight);
    EXPECT_LT(form->height(), 667);
    the<QRadioButton>("optBroadcast")->click();
    QCoreApplication::processEvents();
    EXPECT_EQ(form->height(), before);
    the<QRadioButton>("optBroadcast")->click();
    EXPECT_EQ(form->height(), before) << "nothing is left to undo";
}

TEST_F(FrmSettingsPagerlinkTest, HidesTheGridOnlyWhereTheWindowIsLow) {
    load("users anna bruno");
    the<QRadioButton>("optSelectedUser")->click();
    const int height = twipsToPixels(6090, form->logicalDpiY()) - 1;
    form->resize(form->width(), height);
    if (form->height() == height) { // large fonts need more
        the<QRadioButton>("optBroadcast")->click();
        EXPECT_EQ(form->height(), height);
        EXPECT_TRUE(the<QTableWidget>("gridUsers")->isHidden());
    }
}

TEST_F(FrmSettingsPagerlinkTest, SwapsATickAtAClickOnItsCellAlone) {
    load("users anna bruno carla");
    the<QRadioButton>("optSelectedUser")->click();
    clickCell(0, 1);
    EXPECT_EQ(cell(0, 2), unticked);
    clickCell(0, 2);
    clickCell(2, 2);
    EXPECT_EQ(cell(0, 2), ticked);
    EXPECT_EQ(cell(2, 2), ticked);
    clickCell(0, 2);
    EXPECT_EQ(cell(0, 2), unticked);
    the<QPushButton>("CmdOk")->click();
    EXPECT_EQ(settings.PGLselectedUsers, "carla");
}

TEST_F(FrmSettingsPagerlinkTest, StoresItsFieldsAtOkAndCloses) {
    load("users anna bruno");
    the<QLineEdit>("txtPglServer")->setText(QStringLiteral("10.0.0.7"));
    the<QLineEdit>("txtPglPort")->setText(QStringLiteral("not yet known"));
    the<QComboBox>("cmbMagnitude")->setCurrentText(QStringLiteral("5"));
    the<QRadioButton>("optSelectedUser")->click();
    clickCell(1, 2);
    the<QPushButton>("CmdOk")->click();
    EXPECT_TRUE(unloaded());
    EXPECT_EQ(settings.PGLserver, "10.0.0.7");
    EXPECT_EQ(settings.PGLport, "not yet known");
    EXPECT_EQ(settings.PGLmagToSend, 5);
    EXPECT_EQ(settings.PGLAllOrSelected, 1);
    EXPECT_EQ(settings.PGLselectedUsers, "bruno");
}

TEST_F(FrmSettingsPagerlinkTest, EmptiesTheSelectionAtOkWithoutAClick) {
    settings.PGLAllOrSelected = 1;
    settings.PGLselectedUsers = "anna|bruno";
    load("users anna bruno");
    EXPECT_EQ(cell(0, 2), ticked);
    the<QPushButton>("CmdOk")->click();
    EXPECT_EQ(settings.PGLselectedUsers, "");
    EXPECT_EQ(settings.PGLAllOrSelected, 1);
}

TEST_F(FrmSettingsPagerlinkTest, StoresBroadcastAsZeroAndKeepsAnOddMagnitude) {
    settings.PGLAllOrSelected = 2;
    settings.PGLmagToSend = 12;
    load("users anna");
    EXPECT_EQ(the<QComboBox>("cmbMagnitude")->currentText(), QStringLiteral("12"));
    the<QRadioButton>("optBroadcast")->click();
    the<QPushButton>("CmdOk")->click();
    EXPECT_EQ(settings.PGLAllOrSelected, 0);
    EXPECT_EQ(settings.PGLmagToSend, 12);
}

TEST_F(FrmSettingsPagerlinkTest, StoresNothingAtCancelAndTheTitleBar) {
    settings.PGLselectedUsers = "anna";
    for (const bool cancel : {true, false}) {
        load();
        the<QLineEdit>("txtPglServer")->setText(QStringLiteral("other"));
        if (cancel)
            the<QPushButton>("CmdCancel")->click();
        else
            form->close();
        EXPECT_TRUE(unloaded());
        EXPECT_EQ(settings.PGLserver, "pager.lan");
        EXPECT_EQ(settings.PGLselectedUsers, "anna");
    }
}

TEST_F(FrmSettingsPagerlinkTest, DoesNothingAtEscapeAndReturn) {
    load();
    for (const char* name : {"txtPglServer", "cmdCheckIfWork", "CmdOk", "cmbMagnitude"}) {
        for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Return}) {
            the<QWidget>(name)->setFocus();
            pressKey(*form->windowHandle(), key);
            EXPECT_FALSE(unloaded()) << name;
        }
    }
    EXPECT_TRUE(socket->sent.empty());
}

TEST_F(FrmSettingsPagerlinkTest, ChecksWhatStandsInTheBoxes) {
    load("users anna");
    the<QLineEdit>("txtPglServer")->setText(QStringLiteral("10.0.0.7"));
    the<QLineEdit>("txtPglPort")->setText(QStringLiteral("7001"));
    the<QPushButton>("cmdCheckIfWork")->click();
    EXPECT_EQ(socket->sent, (std::vector<ScriptedSocket::Sent>{{"10.0.0.7", 7001, "list"}}));
    EXPECT_EQ(the<QLabel>("labelResult")->text(), QStringLiteral("OK"));
    // Pure green cannot be read on a light ground.
    EXPECT_TRUE(the<QLabel>("labelResult")->autoFillBackground());
    EXPECT_LT(the<QLabel>("labelResult")->palette().color(QPalette::Window).lightness(), 64);
    EXPECT_EQ(resultColour(), QColor(0, 255, 0));
    EXPECT_EQ(settings.PGLserver, "pager.lan") << "a check stores nothing";
}

TEST_F(FrmSettingsPagerlinkTest, CountsWhileItWaitsAndSaysNoInRed) {
    load();
    QStringList shown;
    clock.onPump = [&] { shown += the<QLabel>("labelResult")->text(); };
    the<QPushButton>("cmdCheckIfWork")->click();
    shown.removeDuplicates();
    EXPECT_EQ(shown.value(1), QStringLiteral("Wait...1"));
    EXPECT_EQ(shown.value(30), QStringLiteral("Wait...30"));
    EXPECT_EQ(the<QLabel>("labelResult")->text(), QStringLiteral("NO"));
    EXPECT_EQ(resultColour(), QColor(255, 0, 0));
}

TEST_F(FrmSettingsPagerlinkTest, LetsNoSecondWaitBeginInsideOne) {
    load();
    the<QPushButton>("cmdCheckIfWork")->setFocus();
    bool enabled = false;
    clock.onPump = [&] {
        for (const char* name : {"cmdCheckIfWork", "optBroadcast", "optSelectedUser"})
            enabled = enabled || the<QWidget>(name)->isEnabled();
        EXPECT_TRUE(the<QPushButton>("CmdCancel")->isEnabled());
    };
    the<QPushButton>("cmdCheckIfWork")->click();
    EXPECT_FALSE(enabled);
    EXPECT_TRUE(the<QPushButton>("cmdCheckIfWork")->isEnabled());
    EXPECT_EQ(form->focusWidget(), the<QPushButton>("cmdCheckIfWork"));
}

TEST_F(FrmSettingsPagerlinkTest, RaisesAnErrorForAPortThatIsNoNumber) {
    load();
    for (const char* port : {"", "seven"}) {
        the<QLineEdit>("txtPglPort")->setText(QLatin1String(port));
        harness.prompts.expectRuntimeError("Type mismatch", ErrorAnswer::Ignore);
        the<QPushButton>("cmdCheckIfWork")->click();
        EXPECT_EQ(the<QLabel>("labelResult")->text(), QStringLiteral("NO"));
    }
    EXPECT_TRUE(socket->sent.empty());
    delete form.data();
    settings.PGLport = "seven";
    harness.prompts.expectRuntimeError("Form_Load", ErrorAnswer::Ignore);
    load();
}

TEST_F(FrmSettingsPagerlinkTest, OpensWithoutAnErrorOnAFirstStart) {
    settings.PGLserver.clear();
    settings.PGLport.clear();
    load();
    EXPECT_EQ(the<QLineEdit>("txtPglPort")->text(), QString());
}

TEST_F(FrmSettingsPagerlinkTest, LeavesTheGridHiddenWithoutAList) {
    load();
    const int before = form->height();
    expectNoList();
    the<QRadioButton>("optSelectedUser")->click();
    EXPECT_TRUE(the<QTableWidget>("gridUsers")->isHidden());
    EXPECT_EQ(form->height(), before);
    answerWith("users anna");
    the<QRadioButton>("optSelectedUser")->click(); // once more
    EXPECT_TRUE(the<QTableWidget>("gridUsers")->isVisible());
}

TEST_F(FrmSettingsPagerlinkTest, MayBeClosedInsideItsWaits) {
    for (const char* starter : {"cmdCheckIfWork", "optSelectedUser"}) {
        load();
        clock.onPump = [this] { delete form.data(); };
        the<QAbstractButton>(starter)->click();
        EXPECT_TRUE(form.isNull());
        EXPECT_LE(clock.sleeps, 2);
        clock.sleeps = 0;
    }
}

TEST_F(FrmSettingsPagerlinkTest, ShowsNamesAsPlainText) {
    load("users <b>anna</b> \xE9tienne");
    the<QRadioButton>("optSelectedUser")->click();
    EXPECT_EQ(cell(0, 1), QStringLiteral("<b>anna</b>"));
    EXPECT_EQ(cell(1, 1), QStringLiteral("\u00E9tienne"));
}

TEST_F(FrmSettingsPagerlinkTest, WorksWithARealServer) {
    practice::PagerlinkService server(0);
    settings.PGLserver = "localhost";
    settings.PGLport = std::to_string(server.port());
    QtClock realClock(session);
    open(realClock, std::make_unique<UdpSocket>());
    the<QPushButton>("cmdCheckIfWork")->click();
    EXPECT_EQ(the<QLabel>("labelResult")->text(), QStringLiteral("OK"));
    the<QRadioButton>("optSelectedUser")->click();
    EXPECT_EQ(the<QTableWidget>("gridUsers")->rowCount(), 3);
    EXPECT_EQ(cell(2, 1), QStringLiteral("carla"));

    for (const auto fault : {practice::PagerlinkFault::Silent, practice::PagerlinkFault::Refusing,
                             practice::PagerlinkFault::Foreign}) {
        server.setFault(fault);
        realClock.sleep(100ms);
        const auto start = realClock.steady();
        the<QPushButton>("cmdCheckIfWork")->click();
        EXPECT_EQ(the<QLabel>("labelResult")->text(), QStringLiteral("NO"));
        EXPECT_LT(realClock.steady() - start, 14s); // a list is waited for 15 s
    }
}

TEST_F(FrmSettingsPagerlinkTest, TakesAPicture) {
    const QString folder = qEnvironmentVariable("TREMOR_PICTURES");
    if (folder.isEmpty())
        GTEST_SKIP() << "TREMOR_PICTURES names no folder";
    settings.PGLselectedUsers = "bruno|dispatch";
    load("users anna bruno carla dispatch emergency-room filippo");
    EXPECT_TRUE(form->grab().save(folder + QStringLiteral("/pagerlink.png")));
    the<QRadioButton>("optSelectedUser")->click();
    QCoreApplication::processEvents();
    EXPECT_TRUE(form->grab().save(folder + QStringLiteral("/pagerlink_users.png")));
}

} // namespace
} // namespace tremor
