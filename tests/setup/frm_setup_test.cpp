#include "core/qt_text.h"
#include "setup/frm_setup.h"
#include "setup/setup_fixture.h"
#include "support/window_driver.h"

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QRadioButton>
#include <QtWidgets/QTabBar>
#include <QtWidgets/QTabWidget>

#include <gtest/gtest.h>

#include <set>
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

// Where Tab leads to, once around the window, and the arrow keys inside a group of options.
class KeyboardTour {
  public:
    explicit KeyboardTour(QWidget& window) : window_(window) {}

    std::set<const QWidget*> walk() {
        constexpr int tooMany = 100;
        const QPointer<QWidget> first = window_.focusWidget();
        for (int i = 0; i < tooMany; ++i) {
            visit();
            press(Qt::Key_Tab);
            if (window_.focusWidget() == first)
                return reached_;
        }
        ADD_FAILURE() << "Tab does not come back";
        return reached_;
    }

  private:
    void press(Qt::Key key) { testing::pressKey(*window_.focusWidget(), key); }

    // An option is chosen by reaching it, so the one chosen before is chosen again.
    void visit() {
        QWidget* const here = window_.focusWidget();
        reached_.insert(here);
        auto* const option = qobject_cast<QRadioButton*>(here);
        if (option == nullptr)
            return;
        for (const Qt::Key key : {Qt::Key_Right, Qt::Key_Left}) {
            const QWidget* last = nullptr;
            while (window_.focusWidget() != last) {
                last = window_.focusWidget();
                reached_.insert(last);
                press(key);
            }
        }
        option->click();
        option->setFocus();
    }

    QWidget& window_;
    std::set<const QWidget*> reached_;
};

TEST_F(FrmSetupTest, LetsTheKeyboardReachEveryControlOfEveryPage) {
    click("ChkUseAlternateRemoteSource");
    click("opt_Iside");
    window->activateWindow();
    QCoreApplication::processEvents();
    ASSERT_TRUE(window->isActiveWindow());
    auto* const pages = window->findChild<QTabWidget*>();
    pages->tabBar()->setFocus();
    for (int page = 0; page < pages->count(); ++page) {
        ASSERT_EQ(pages->currentIndex(), page);
        const std::set<const QWidget*> reached = KeyboardTour(*window).walk();
        for (const QWidget* control : window->findChildren<QWidget*>()) {
            if (control->isVisible() && control->isEnabled() &&
                control->focusPolicy() != Qt::NoFocus && control->focusProxy() == nullptr) {
                EXPECT_TRUE(reached.contains(control))
                    << toBytes(control->objectName()) << " on page " << page;
            }
        }
        EXPECT_GT(reached.size(), 5u) << page;
        pages->tabBar()->setFocus();
        testing::pressKey(*pages->tabBar(), Qt::Key_Right);
    }
}

TEST_F(FrmSetupTest, ChoosesAnOptionByTheArrowKeysAsByAClick) {
    window->activateWindow();
    QCoreApplication::processEvents();
    ASSERT_TRUE(window->isActiveWindow());
    auto* const ingv = control<QRadioButton>("opt_Ingv");
    ingv->setFocus();
    testing::pressKey(*ingv, Qt::Key_Right);
    EXPECT_TRUE(control<QRadioButton>("opt_Iside")->isChecked());
    EXPECT_EQ(text("TxtPrimaryDataSource"), "http://iside.test/iside/standard/index.jsp");
    EXPECT_TRUE(enabled("TxtPrimarySourceUsername"));
}

TEST_F(FrmSetupTest, FitsTheSmallestScreen) {
    EXPECT_LE(window->sizeHint().width(), 900);
    EXPECT_LE(window->sizeHint().height(), 620);
}

} // namespace
} // namespace tremor
