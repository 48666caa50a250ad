#include "core/qt_text.h"
#include "setup/frm_setup.h"
#include "setup/setup_fixture.h"
#include "support/window_driver.h"

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QRadioButton>
#include <QtWidgets/QTabWidget>

#include <gtest/gtest.h>

#include <string>

namespace tremor {
namespace {

using testing::child;

class FrmSetupTest : public ::testing::Test, public testing::SetupHarness {
  public:
    FrmSetupTest() : SetupHarness(NumberLocale::point()) {
        settings.IsideOrIngv = 1;
        settings.PrimaryDataSource = "https://kept.test/";
        settings.LocalSourcePath = "/local";
        steps.onUnload = [this] { window->close(); };
        window = new FrmSetup(form, nullptr);
        window->show();
    }
    ~FrmSetupTest() override {
        if (window)
            window->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    template <class Widget>
    Widget* control(const char* name) {
        return child<Widget>(*window, name);
    }
    std::string text(const char* name) { return toBytes(control<QLineEdit>(name)->text()); }
    void type(const char* name, const char* text) {
        control<QLineEdit>(name)->setText(QString::fromLatin1(text));
    }
    void click(const char* name) { control<QAbstractButton>(name)->click(); }
    bool enabled(const char* name) { return control<QWidget>(name)->isEnabled(); }

    QPointer<FrmSetup> window;
};

TEST_F(FrmSetupTest, ShowsTheFieldsAndNotTheAddressesOfTheOptions) {
    EXPECT_EQ(toBytes(window->windowTitle()), "Setup");
    EXPECT_EQ(text("TxtPrimaryDataSource"), "https://kept.test/");
    EXPECT_EQ(text("TxtLocalSourcePath"), "/local");
    EXPECT_TRUE(control<QRadioButton>("opt_Ingv")->isChecked());
    EXPECT_TRUE(control<QRadioButton>("opt_seiscomp")->isChecked());
    EXPECT_TRUE(control<QRadioButton>("optPr")->isChecked());
    EXPECT_TRUE(control<QCheckBox>("chk_auto_PIN")->isChecked());
    EXPECT_EQ(text("TxtMagLev_3"), "0");
}

TEST_F(FrmSetupTest, MasksPasswords) {
    EXPECT_EQ(control<QLineEdit>("TxtPrimarySourcePassword")->echoMode(), QLineEdit::Password);
    EXPECT_EQ(control<QLineEdit>("TxtAlternateSourcePassword")->echoMode(), QLineEdit::Password);
}

TEST_F(FrmSetupTest, AsksForUserAndPasswordOnlyForIside) {
    EXPECT_FALSE(enabled("TxtPrimarySourceUsername"));
    click("opt_Iside");
    EXPECT_TRUE(enabled("TxtPrimarySourceUsername"));
    EXPECT_TRUE(enabled("TxtPrimarySourcePassword"));
    EXPECT_EQ(text("TxtPrimaryDataSource"), "http://iside.test/iside/standard/index.jsp");
    click("opt_Ingv");
    EXPECT_FALSE(enabled("TxtPrimarySourcePassword"));
    EXPECT_EQ(text("TxtPrimaryDataSource"), "https://ingv.test/fdsnws/event/");
}

TEST_F(FrmSetupTest, EnablesTheAlternateSourceByItsCheckBox) {
    EXPECT_FALSE(enabled("TxtAlternateDataSource"));
    click("ChkUseAlternateRemoteSource");
    EXPECT_TRUE(enabled("TxtAlternateDataSource"));
    click("opt_USGS");
    EXPECT_EQ(text("TxtAlternateDataSource"), "https://usgs.test/earthquakes/search/");
    EXPECT_EQ(settings.EmscOrUsgs, 1);
    click("ChkUseAlternateRemoteSource");
    EXPECT_FALSE(enabled("opt_EMSC"));
}

TEST_F(FrmSetupTest, ChoosesBetweenCirclesAndPictures) {
    EXPECT_FALSE(enabled("TxtPathPins"));
    EXPECT_TRUE(enabled("txt_sizeSizePins"));
    click("chk_user_PIN");
    EXPECT_FALSE(control<QCheckBox>("chk_auto_PIN")->isChecked());
    EXPECT_TRUE(enabled("TxtPathPins"));
    EXPECT_FALSE(enabled("txt_sizeSizePins"));
    EXPECT_EQ(settings.PinMode, 0);
    click("chk_auto_PIN");
    EXPECT_FALSE(control<QCheckBox>("chk_user_PIN")->isChecked());
    EXPECT_EQ(settings.PinMode, 1);
    EXPECT_TRUE(enabled("TxtAnimatedGif"));
}

TEST_F(FrmSetupTest, CorrectsHoursWhileTheyAreTyped) {
    type("TxtPrimaryLastNHours", "0");
    EXPECT_EQ(text("TxtPrimaryLastNHours"), "24");
    type("TxtAlternateLastNHours", "48");
    EXPECT_EQ(text("TxtAlternateLastNHours"), "48");
}

TEST_F(FrmSetupTest, AppliesWhatItShowsAndCloses) {
    type("TxtPrimaryPollEvery", "7");
    type("txtPathDbOfStationKit", "/stations.sqlite");
    type("TxtMagLev_1", "2.5");
    type("TxtMagLevSound_1", "b.wav");
    type("txt_sizeSizePins", "6");
    click("chkEnableNotificationEmail");
    click("opt_liveloc");
    click("CmdOk");
    EXPECT_EQ(settings.PrimaryPollEvery, 7);
    EXPECT_EQ(settings.PathDbStationKit, "/stations.sqlite");
    EXPECT_EQ(settings.MagLevel2, 2.5F);
    EXPECT_EQ(settings.MagLevelSound2, "b.wav");
    EXPECT_EQ(settings.PinScale, 6);
    EXPECT_EQ(settings.enableEmail, 1);
    EXPECT_EQ(settings.SeisCompOrLIVELOC, 1);
    EXPECT_EQ(settings.PrimaryDataSource, "https://kept.test/");
    EXPECT_FALSE(window && window->isVisible());
    EXPECT_EQ(steps.steps.back(), "write");
}

TEST_F(FrmSetupTest, KeepsOnlyTheClicksAfterCancel) {
    type("TxtPrimaryPollEvery", "7");
    click("optAl");
    testing::pressKey(*window, Qt::Key_Escape);
    EXPECT_EQ(settings.PriorityEvents, 2);
    EXPECT_EQ(settings.PrimaryPollEvery, 1);
    EXPECT_TRUE(steps.steps.empty());
    EXPECT_FALSE(window && window->isVisible());
}

TEST_F(FrmSetupTest, PutsChosenPathsIntoTheirBoxes) {
    prompts.expectFileDialog("Select Wav file...", "/s/a.wav");
    click("cmdBrowseSound_2");
    EXPECT_EQ(text("TxtMagLevSound_2"), "/s/a.wav");
    prompts.expectFileDialog("Select Wav file...", std::nullopt);
    click("cmdBrowseSound_2");
    EXPECT_EQ(text("TxtMagLevSound_2"), "/s/a.wav");
    prompts.expectFolder("Select subfolder 'Autoloc/events' in Seiscomp folder.", "/sc");
    click("cmdPathSeismoscompServer");
    EXPECT_EQ(text("TxtLocalSourcePath"), "/sc");
}

TEST_F(FrmSetupTest, TellsWhichOtherWindowIsWanted) {
    std::string wanted;
    QObject::connect(window, &FrmSetup::telegramSettings, window, [&] { wanted += "telegram "; });
    QObject::connect(window, &FrmSetup::pagerlinkSettings, window, [&] { wanted += "pager "; });
    QObject::connect(window, &FrmSetup::emailSettings, window, [&] { wanted += "email "; });
    QObject::connect(window, &FrmSetup::geoNames, window, [&] { wanted += "geo "; });
    QObject::connect(window, &FrmSetup::pointsOfInterest, window, [&] { wanted += "poi "; });
    QObject::connect(window, &FrmSetup::playSound, window,
                     [&](const QString& path) { wanted += toBytes(path); });
    type("TxtMagLevSound_0", "x.wav");
    for (const char* name : {"cmdNotTelegram", "cmdNotPagr", "cmdNotEmail", "cmd_UpdateGeo",
                             "cmd_UpdateComuni", "CmdTest_0"})
        click(name);
    EXPECT_EQ(wanted, "telegram pager email geo poi x.wav");
}

TEST_F(FrmSetupTest, FitsTheSmallestScreen) {
    EXPECT_LE(window->sizeHint().width(), 900);
    EXPECT_LE(window->sizeHint().height(), 620);
}

} // namespace
} // namespace tremor
