#include "core/qt_text.h"
#include "support/window_driver.h"
#include "workspaces/frm_search.h"
#include "workspaces/search_fixture.h"

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDateEdit>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QRadioButton>
#include <QtWidgets/QTableWidget>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace tremor {
namespace {

using testing::child;
using testing::pressKey;
using testing::SearchTest;
using testing::valueOf;

class FrmSearchTest : public SearchTest {
  protected:
    ~FrmSearchTest() override { delete form.data(); }

    void load(bool workspaceShown = false) { load(point, workspaceShown); }
    void load(testing::SearchParts& parts, bool workspaceShown) {
        form = new frmSearch(parts.context, parts.filter, parts.workspaces, parts.saved, nullptr);
        form->Form_Load(workspaceShown);
        form->show();
        QCoreApplication::processEvents();
    }
    bool unloaded() {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return form.isNull();
    }

    template <class Widget>
    Widget* get(const char* name) {
        return child<Widget>(*form, name);
    }
    std::string text(const char* name) { return toBytes(get<QLineEdit>(name)->text()); }
    std::string texts(const std::vector<const char*>& names) {
        std::string all;
        for (const char* name : names)
            all += text(name) + "|";
        return all;
    }
    std::string corners() {
        return texts(
            {"txt_BL_Latitude", "txt_BL_Longitude", "txt_TR_Latitude", "txt_TR_Longitude"});
    }
    void type(const char* name, const std::string& typed) {
        auto* box = get<QLineEdit>(name);
        box->clear();
        for (const QChar letter : fromBytes(typed))
            pressKey(*box, Qt::Key_unknown, {}, QString(letter));
    }
    std::string day(const char* name) {
        return toBytes(get<QDateEdit>(name)->date().toString(Qt::ISODate));
    }
    bool ticked(const char* name) { return get<QAbstractButton>(name)->isChecked(); }
    void click(const char* name) { get<QAbstractButton>(name)->click(); }
    bool enabled(const char* name) { return get<QWidget>(name)->isEnabled(); }
    QTableWidget* grid() { return get<QTableWidget>("fxGridSearch"); }
    std::string cell(int row, int column) { return toBytes(grid()->item(row, column)->text()); }
    void clickRow(int row) {
        const QPointF place = grid()->visualItemRect(grid()->item(row, 1)).center();
        testing::sendMouse(*grid()->viewport(), QEvent::MouseButtonPress, place);
        testing::sendMouse(*grid()->viewport(), QEvent::MouseButtonRelease, place);
    }
    std::string count(const char* table = "Search") {
        return valueOf(database, std::string("select count(*) from ") + table);
    }
    void addSearch(const std::string& values) {
        ASSERT_EQ(database.slsExe("insert into Search(NameSearch,RangeDate,StartDate,EndDate,"
                                  "RangeMag,MinMag,MaxMag,RangeInMap,MinLat,MaxLat,MinLon,MaxLon,"
                                  "MethodDefinied) Values(" +
                                  values + ")"),
                  0)
            << database.slGetError();
    }
    void addCentro() {
        ASSERT_EQ(database.slsExe("insert into Workspace values('Centro','42','13','7','41.5',"
                                  "'12','43','14.25','2','5.5','0.5','50')"),
                  0);
        settings.LastWorkSpace = "Centro";
    }

    QPointer<frmSearch> form;
};

// Appearance.

TEST_F(FrmSearchTest, HasEveryControlWithItsCaption) {
    load();
    EXPECT_EQ(form->objectName(), QStringLiteral("frmSearch"));
    EXPECT_EQ(form->windowTitle(), QStringLiteral("Search Parameters"));
    const std::vector<std::pair<const char*, const char*>> captions = {
        {"cmdAddSearch", "Add"},
        {"cmdSetName", "Set Name"},
        {"cmdRemoveSearch", "Delete"},
        {"CmdCancel", "Cancel"},
        {"cmd_query", "Search"},
        {"chk_MagnitudeRange", "Enable this parameter"},
        {"chk_SearchArea", "Enable this parameter"},
        {"chk_RangeDateEvents", "Enable this parameter"},
        {"OptArea", "Define squared area"},
        {"OptDistance", "Distance from Lat / Lon"},
        {"OptManualGPS", "Define area directly from the map"},
        {"chk_saveWrkSpace", "Save as WorkSpace"}};
    for (const auto& [name, caption] : captions)
        EXPECT_EQ(get<QAbstractButton>(name)->text().remove(u'&'), QLatin1StringView(caption));
    EXPECT_EQ(get<QGroupBox>("Frame3")->title(), QStringLiteral("Search Saved"));
    EXPECT_EQ(get<QGroupBox>("Frame2")->title(), QStringLiteral("Magnitude range "));
    EXPECT_EQ(get<QGroupBox>("Frame1")->title(), QStringLiteral("Define search area "));
    EXPECT_EQ(get<QGroupBox>("FrameDates")->title(), QStringLiteral("Range Date Events"));
    EXPECT_EQ(get<QLabel>("lblWrkSpace")->text().remove(u'&'),
              QStringLiteral("Give a name to Workspace"));
    EXPECT_EQ(texts({"txt_min_mag", "txt_max_mag", "TxtDistance", "TxtDepthMin", "TxtDepthMax"}),
              "||||100|");
    EXPECT_TRUE(get<QLineEdit>("txtModifica")->isHidden());
}

TEST_F(FrmSearchTest, FitsASmallScreenAndClipsNothing) {
    load();
    EXPECT_LE(form->width(), 933);
    EXPECT_LE(form->height(), 640);
    for (const QWidget* each : form->findChildren<QWidget*>()) {
        const bool caption = qobject_cast<const QAbstractButton*>(each) != nullptr ||
                             qobject_cast<const QLabel*>(each) != nullptr;
        if (caption && each->isVisible()) {
            EXPECT_GE(each->width(), each->sizeHint().width()) << toBytes(each->objectName());
        }
    }
}

TEST_F(FrmSearchTest, UsesEachMnemonicOnce) {
    load();
    std::string letters;
    for (const QWidget* each : form->findChildren<QWidget*>()) {
        QString caption;
        if (const auto* button = qobject_cast<const QAbstractButton*>(each))
            caption = button->text();
        else if (const auto* label = qobject_cast<const QLabel*>(each))
            caption = label->text();
        if (const auto at = caption.indexOf(u'&'); at >= 0)
            letters += static_cast<char>(caption.at(at + 1).toLower().toLatin1());
    }
    std::sort(letters.begin(), letters.end());
    EXPECT_EQ(std::adjacent_find(letters.begin(), letters.end()), letters.end()) << letters;
    EXPECT_GT(letters.size(), 15U);
}

// Opening.

TEST_F(FrmSearchTest, SuspendsPollingWhileItIsOpen) {
    load();
    EXPECT_EQ(session.PollingSuspended, 1);
    EXPECT_FALSE(form->isModal());
    click("CmdCancel");
    EXPECT_EQ(session.PollingSuspended, 0);
    EXPECT_TRUE(unloaded());
}

TEST_F(FrmSearchTest, OffersTheLastWeekWithoutEvents) {
    load();
    EXPECT_EQ(day("DTStart"), "2016-08-17");
    EXPECT_EQ(day("DTEnd"), "2016-08-24");
    EXPECT_TRUE(ticked("chk_RangeDateEvents"));
    EXPECT_FALSE(ticked("chk_MagnitudeRange"));
    EXPECT_FALSE(ticked("chk_SearchArea"));
    EXPECT_TRUE(ticked("OptArea"));
    EXPECT_EQ(corners(), "||||");
}

TEST_F(FrmSearchTest, OffersTheMonthOfTheOldestEvent) {
    addEvent("2015-12-31 23:59:59");
    addEvent("2016-08-24 01:36:32");
    load();
    EXPECT_EQ(day("DTStart"), "2015-12-01");
}

TEST_F(FrmSearchTest, OffersTheDayOfAnOldestEventWithMilliseconds) {
    addEvent("2015-12-31 23:59:59.600");
    load();
    EXPECT_EQ(day("DTStart"), "2015-12-31");
}

TEST_F(FrmSearchTest, ReportsTheFirstSevenDaysOfAMonth) {
    for (const unsigned today : {1U, 7U}) {
        clock.setNow(std::chrono::local_days(std::chrono::year(2016) / 8 / today));
        prompts.expectRuntimeError("380", ErrorAnswer::Ignore);
        load();
        EXPECT_EQ(day("DTEnd"), day("DTStart"));
        delete form.data();
    }
    clock.setNow(std::chrono::local_days(std::chrono::year(2016) / 8 / 8));
    load();
    EXPECT_EQ(day("DTStart"), "2016-08-01");
}

TEST_F(FrmSearchTest, ReportsAnOldestEventWithoutADate) {
    addEvent("0 garbage");
    prompts.expectRuntimeError("Type mismatch", ErrorAnswer::Ignore);
    load();
    EXPECT_EQ(day("DTStart"), "2016-08-17");
}

TEST_F(FrmSearchTest, LoadsTheWorkspaceInUse) {
    addCentro();
    load(comma, true);
    EXPECT_EQ(corners(), "41.5|12|43|14.25|");
    EXPECT_EQ(texts({"txt_min_mag", "txt_max_mag", "TxtDepthMin", "TxtDepthMax"}), "2|5,5|0,5|50|");
    EXPECT_TRUE(ticked("chk_MagnitudeRange") && ticked("chk_SearchArea") && ticked("OptArea") &&
                ticked("chk_saveWrkSpace"));
    EXPECT_FALSE(ticked("chk_RangeDateEvents"));
    auto* names = get<QComboBox>("cmbWorkSpace");
    EXPECT_TRUE(names->isEnabled());
    EXPECT_EQ(names->count(), 1);
    EXPECT_EQ(names->currentText(), QStringLiteral("Centro"));
}

TEST_F(FrmSearchTest, StaysEmptyWhenTheWorkspaceIsGone) {
    settings.LastWorkSpace = "gone";
    load(true);
    EXPECT_EQ(corners(), "||||");
    EXPECT_FALSE(ticked("OptArea") || ticked("OptDistance") || ticked("chk_SearchArea"));
    click("cmdAddSearch");
    EXPECT_EQ(valueOf(database, "select MethodDefinied from Search"), "0");
}

// Validators.

TEST_F(FrmSearchTest, ResetsACoordinateThatIsNoNumber) {
    load();
    for (const char* box :
         {"txt_BL_Latitude", "txt_BL_Longitude", "txt_TR_Latitude", "txt_TR_Longitude"}) {
        get<QLineEdit>(box)->setText(QStringLiteral("abc"));
        EXPECT_EQ(text(box), "");
        type(box, "-12.5");
        EXPECT_EQ(text(box), "-12.5");
        type(box, "12'");
        EXPECT_EQ(text(box), "");
    }
    EXPECT_FALSE(ticked("chk_SearchArea"));
}

TEST_F(FrmSearchTest, ResetsAMagnitudeToZeroAndTicksItsBox) {
    load();
    for (const char* box : {"txt_min_mag", "txt_max_mag"}) {
        get<QCheckBox>("chk_MagnitudeRange")->setChecked(false);
        get<QLineEdit>(box)->setText(QStringLiteral("abc"));
        EXPECT_EQ(text(box), "0");
        EXPECT_TRUE(ticked("chk_MagnitudeRange"));
        get<QCheckBox>("chk_MagnitudeRange")->setChecked(false);
        get<QLineEdit>(box)->clear();
        EXPECT_FALSE(ticked("chk_MagnitudeRange")) << "an empty box ticks nothing";
        type(box, "4.5");
        EXPECT_TRUE(ticked("chk_MagnitudeRange"));
    }
}

TEST_F(FrmSearchTest, SettlesABareSignBeforeItSearchesOrSaves) {
    load();
    type("txt_BL_Latitude", "-");
    type("txt_min_mag", "-");
    EXPECT_EQ(text("txt_BL_Latitude"), "-");
    click("cmdAddSearch");
    EXPECT_EQ(text("txt_BL_Latitude") + text("txt_min_mag"), "0");
    EXPECT_EQ(valueOf(database, "select MinLat || MinMag from Search"), "0.0");
}

TEST_F(FrmSearchTest, TicksTheDatesWhenAPickerChanges) {
    load();
    for (const char* picker : {"DTStart", "DTEnd"}) {
        get<QCheckBox>("chk_RangeDateEvents")->setChecked(false);
        get<QDateEdit>(picker)->setDate(QDate(2014, 2, 28));
        EXPECT_TRUE(ticked("chk_RangeDateEvents"));
    }
}

TEST_F(FrmSearchTest, LetsItsThreeTicksEnableNothing) {
    load();
    for (const char* box : {"chk_RangeDateEvents", "chk_MagnitudeRange", "chk_SearchArea"}) {
        get<QCheckBox>(box)->setChecked(false);
        for (const char* control : {"DTStart", "DTEnd", "txt_min_mag", "txt_max_mag", "OptArea",
                                    "OptManualGPS", "txt_BL_Latitude", "TxtDepthMin"})
            EXPECT_TRUE(enabled(control)) << control;
    }
}

// The area.

TEST_F(FrmSearchTest, EnablesWhatTheChosenMethodNeeds) {
    load();
    EXPECT_TRUE(enabled("txt_TR_Latitude") && enabled("txt_TR_Longitude"));
    EXPECT_FALSE(enabled("TxtDistance"));
    click("OptDistance");
    EXPECT_FALSE(enabled("txt_TR_Latitude") || enabled("txt_TR_Longitude"));
    EXPECT_TRUE(enabled("TxtDistance") && enabled("txt_BL_Latitude") &&
                enabled("txt_BL_Longitude"));
    click("OptArea");
    EXPECT_TRUE(enabled("txt_TR_Latitude") && enabled("txt_TR_Longitude"));
    EXPECT_FALSE(enabled("TxtDistance"));
}

TEST_F(FrmSearchTest, TakesTheAreaFromTheMap) {
    load();
    click("OptDistance");
    click("OptManualGPS");
    EXPECT_EQ(panel.calls, std::vector<std::string>{"getDataMap"});
    EXPECT_EQ(corners(), "41.5|12.25|43.5|14.75|");
    EXPECT_TRUE(ticked("OptArea"));
    EXPECT_FALSE(ticked("OptDistance") || enabled("TxtDistance"));
    EXPECT_TRUE(enabled("txt_TR_Latitude") && enabled("txt_TR_Longitude"));
    click("cmdAddSearch");
    EXPECT_EQ(valueOf(database, "select MethodDefinied from Search"), "2");
}

TEST_F(FrmSearchTest, KeepsTheCornersWhenTheMapGivesNoAnswer) {
    load();
    type("txt_BL_Latitude", "40");
    panel.view.reset();
    prompts.expectRuntimeError("The map gives no answer.", ErrorAnswer::Ignore);
    click("OptManualGPS");
    EXPECT_EQ(corners(), "40||||");
}

TEST_F(FrmSearchTest, WantsAPlaceOnlyForAnAreaByDistance) {
    load();
    EXPECT_FALSE(form->wantsPlace());
    click("OptDistance");
    EXPECT_FALSE(form->wantsPlace()) << "the area is not enabled";
    click("chk_SearchArea");
    EXPECT_TRUE(form->wantsPlace());
    form->setPlace("42.12345", "-13.50000");
    EXPECT_EQ(corners(), "42.12345|-13.50000|||");
    click("OptArea");
    EXPECT_FALSE(form->wantsPlace());
}

TEST_F(FrmSearchTest, FillsTheNamesOfWorkspacesWhenOneIsToBeSaved) {
    addCentro();
    load();
    auto* names = get<QComboBox>("cmbWorkSpace");
    EXPECT_FALSE(names->isEnabled());
    click("chk_saveWrkSpace");
    EXPECT_TRUE(names->isEnabled());
    EXPECT_EQ(names->count(), 1);
    EXPECT_EQ(names->currentText(), QString());
    names->lineEdit()->clear();
    for (const QChar letter : QStringLiteral("cen"))
        pressKey(*names->lineEdit(), Qt::Key_unknown, {}, QString(letter));
    EXPECT_EQ(names->currentText(), QStringLiteral("cen")) << "nothing completes the name";
    click("chk_saveWrkSpace");
    EXPECT_FALSE(names->isEnabled());
}

// Searching.

TEST_F(FrmSearchTest, ShowsTheEventsSavesTheSearchTurnsSearchModeOnAndCloses) {
    load();
    click("cmd_query");
    EXPECT_TRUE(unloaded());
    ASSERT_EQ(panel.calls.size(), 7U);
    EXPECT_EQ(panel.calls[0], "removeAll");
    EXPECT_EQ(panel.calls[4], "clickEventi");
    EXPECT_EQ(panel.calls[5], "refreshPanel");
    EXPECT_EQ(panel.calls[6], "turnSearchModeOn");
    EXPECT_EQ(count(), "1");
    EXPECT_EQ(session.PollingSuspended, 0);
    EXPECT_EQ(settings.searchParQuery,
              "(UTC >= '2016-08-17 00:00:00') and (UTC <= '2016-08-24 23:59:59')");
}

TEST_F(FrmSearchTest, SavesAFailedSearchAndStaysOpenWithItsValues) {
    load();
    click("chk_RangeDateEvents");
    type("txt_BL_Latitude", "42");
    for (int press = 1; press <= 2; ++press) {
        expectRefusal("You must select a filter.", "Insufficient parameters...");
        click("cmd_query");
        EXPECT_EQ(count(), std::to_string(press));
    }
    EXPECT_FALSE(unloaded());
    EXPECT_EQ(text("txt_BL_Latitude"), "42");
    EXPECT_EQ(panel.calls, (std::vector<std::string>{"refreshPanel", "refreshPanel"}));
    EXPECT_EQ(grid()->rowCount(), 2);
    EXPECT_EQ(session.PollingSuspended, 1);
}

TEST_F(FrmSearchTest, StaysOpenWhenTheOperatorDeclinesManyEvents) {
    addEvents(300);
    load();
    prompts.expectBox("There are too many events to show.\r\nDo you want show all events selected?",
                      "TREMORLEDGER", BoxIcon::None, BoxButtons::YesNo, BoxAnswer::No);
    click("cmd_query");
    EXPECT_FALSE(unloaded());
    EXPECT_EQ(count(), "1");
    EXPECT_EQ(panel.calls, std::vector<std::string>{"refreshPanel"});
}

TEST_F(FrmSearchTest, HandsEveryControlToTheSearch) {
    addEvent("2016-08-20 10:00:00", "42", "13", "20", "4.5");
    load();
    type("txt_min_mag", "2");
    type("txt_max_mag", "5.5");
    click("chk_SearchArea");
    type("txt_BL_Latitude", "41.5");
    type("txt_BL_Longitude", "12");
    type("txt_TR_Latitude", "43");
    type("txt_TR_Longitude", "14.25");
    get<QLineEdit>("TxtDepthMin")->setText(QStringLiteral("5"));
    get<QLineEdit>("TxtDepthMax")->setText(QStringLiteral("50"));
    click("chk_saveWrkSpace");
    get<QComboBox>("cmbWorkSpace")->setEditText(QStringLiteral("Marche"));
    click("cmd_query");
    EXPECT_EQ(settings.searchParQuery,
              "(Latitude >= 41.5) and (Latitude <= 43) AND (Longitude >= 12) and "
              "(Longitude <= 14.25) AND (Magnitude >= '2') and (Magnitude <= '5.5') AND "
              "(Depth >= '5') and (Depth <= '50') AND (UTC >= '2016-08-01 00:00:00') and "
              "(UTC <= '2016-08-24 23:59:59')");
    EXPECT_EQ(found(), 1);
    EXPECT_EQ(valueOf(database, "select Name || DepthMax from Workspace"), "Marche50.0");
}

TEST_F(FrmSearchTest, SearchesByDistance) {
    load();
    click("chk_SearchArea");
    click("OptDistance");
    type("txt_BL_Latitude", "42.7");
    type("txt_BL_Longitude", "13.23");
    type("TxtDistance", "50");
    click("cmd_query");
    EXPECT_NE(settings.searchParQuery.find("(Latitude <= 43.017138262408) and (Longitude"),
              std::string::npos);
    EXPECT_EQ(valueOf(database, "select MethodDefinied from Search"), "3");
}

TEST_F(FrmSearchTest, MayBeClosedWhileItsSearchRuns) {
    load();
    panel.onCall = [this](const std::string& call) {
        if (call == "clickEventi") {
            form->close();
            delete form.data();
        }
    };
    auto* search = get<QPushButton>("cmd_query");
    QMetaObject::invokeMethod(search, "clicked", Q_ARG(bool, false));
    EXPECT_TRUE(form.isNull());
    EXPECT_EQ(count(), "1");
    EXPECT_EQ(panel.calls.back(), "turnSearchModeOn");
}

TEST_F(FrmSearchTest, StartsNoSearchInsideASearch) {
    load();
    panel.onCall = [this](const std::string& call) {
        if (call == "removeAll")
            click("cmd_query");
    };
    click("cmd_query");
    EXPECT_EQ(count(), "1");
}

// Saved searches.

TEST_F(FrmSearchTest, ListsSavedSearchesAndAddsThePresentOne) {
    addSearch("'Amatrice',1,'2016-08-20','2016-08-24',0,'','',0,'','','','',2");
    load();
    ASSERT_EQ(grid()->rowCount(), 1);
    EXPECT_EQ(cell(0, 0) + " " + cell(0, 1), "1 Amatrice");
    click("cmdAddSearch");
    ASSERT_EQ(grid()->rowCount(), 2);
    EXPECT_EQ(cell(1, 0), "2");
    EXPECT_EQ(cell(1, 1).size(), 19U) << "the time of its saving";
}

TEST_F(FrmSearchTest, LoadsTheClickedSearch) {
    addSearch("'a',1,'2016-01-02','2016-03-04',1,'2','5.5',1,'41.5','43','12','14.25',3");
    load();
    get<QLineEdit>("TxtDistance")->setText(QStringLiteral("77"));
    clickRow(0);
    EXPECT_EQ(day("DTStart") + " " + day("DTEnd"), "2016-01-02 2016-03-04");
    EXPECT_EQ(texts({"txt_min_mag", "txt_max_mag"}), "2.0|5.5|");
    EXPECT_EQ(corners(), "41.5|12|43|14.25|");
    EXPECT_TRUE(ticked("OptDistance") && ticked("chk_SearchArea"));
    EXPECT_EQ(text("TxtDistance"), "77") << "it is not kept with the search";
}

TEST_F(FrmSearchTest, LoadsTheSearchUnderTheKeyboardToo) {
    addSearch("'a',0,'2016-01-02','2016-03-04',0,'','',1,'40','','','',2");
    load();
    grid()->setFocus();
    grid()->setCurrentCell(0, 1);
    pressKey(*form->windowHandle(), Qt::Key_Return);
    EXPECT_EQ(text("txt_BL_Latitude"), "40");
}

TEST_F(FrmSearchTest, TicksWhatTheSettingOfDatesAndMagnitudesTicks) {
    addSearch("'off',0,'2016-08-17','2016-08-24',0,'2','5',0,'','','','',0");
    addSearch("'none',0,'2016-08-17','2016-08-24',0,'','',0,'','','','',0");
    load();
    clickRow(0);
    EXPECT_TRUE(ticked("chk_RangeDateEvents")) << "although the pickers showed these days already";
    EXPECT_TRUE(ticked("chk_MagnitudeRange"));
    clickRow(0);
    EXPECT_TRUE(ticked("chk_MagnitudeRange")) << "although the boxes held these numbers already";
    clickRow(1);
    EXPECT_FALSE(ticked("chk_MagnitudeRange")) << "empty boxes tick nothing";
    EXPECT_TRUE(ticked("OptArea"));
}

TEST_F(FrmSearchTest, LetsTheRowsCornersComeAfterThoseOfTheMap) {
    addSearch("'map',0,'2016-08-17','2016-08-24',0,'','',1,'1','2','3','4',1");
    load();
    click("OptDistance");
    clickRow(0);
    EXPECT_EQ(panel.calls, std::vector<std::string>{"getDataMap"});
    EXPECT_EQ(corners(), "1|3|2|4|");
    EXPECT_TRUE(ticked("OptArea"));
}

TEST_F(FrmSearchTest, ReportsTheBrokenFieldsOfARowAndLoadsTheOthers) {
    addSearch("'odd','x','2015-02-29','',1,'abc','5',1,'north','43','" + std::string(10000, 'z') +
              "','14',9");
    load();
    click("OptDistance");
    for (int broken = 0; broken < 3; ++broken) // RangeDate, StartDate, EndDate
        prompts.expectRuntimeError("Type mismatch", ErrorAnswer::Ignore);
    clickRow(0);
    EXPECT_EQ(day("DTStart"), "2016-08-17");
    EXPECT_EQ(texts({"txt_min_mag", "txt_max_mag"}), "0|5.0|");
    EXPECT_EQ(corners(), "||43|14|");
    EXPECT_TRUE(ticked("OptDistance")) << "method 9 chooses nothing";
}

TEST_F(FrmSearchTest, ReportsADayOutsideTheCalendarOfThePicker) {
    addSearch("'old',0,'1000-01-01','2016-03-04',0,'','',0,'','','','',2");
    load();
    prompts.expectRuntimeError("380", ErrorAnswer::Ignore);
    clickRow(0);
    EXPECT_EQ(day("DTStart") + " " + day("DTEnd"), "2016-08-17 2016-03-04");
}

TEST_F(FrmSearchTest, RemovesTheClickedSearchWithoutAQuestionAndOnlyOnce) {
    addSearch("'a',0,'2016-08-17','2016-08-24',0,'','',0,'','','','',2");
    addSearch("'b',0,'2016-08-17','2016-08-24',0,'','',0,'','','','',2");
    load();
    click("cmdRemoveSearch");
    EXPECT_EQ(count(), "2") << "nothing was clicked";
    clickRow(0);
    click("cmdRemoveSearch");
    ASSERT_EQ(grid()->rowCount(), 1);
    EXPECT_EQ(cell(0, 1), "b");
    click("cmdRemoveSearch");
    EXPECT_EQ(count(), "1");
    prompts.expectBox("Please select a search first.", "TREMORLEDGER", BoxIcon::Information,
                      BoxButtons::Ok, BoxAnswer::Ok);
    click("cmdSetName");
}

// Naming in place.

TEST_F(FrmSearchTest, WantsASearchBeforeItIsNamed) {
    load();
    prompts.expectBox("Please select a search first.", "TREMORLEDGER", BoxIcon::Information,
                      BoxButtons::Ok, BoxAnswer::Ok);
    click("cmdSetName");
    EXPECT_TRUE(get<QLineEdit>("txtModifica")->isHidden());
}

class FrmSearchNamingTest : public FrmSearchTest {
  protected:
    void startNaming() {
        addSearch("'old',0,'2016-08-17','2016-08-24',0,'','',0,'','','','',2");
        addSearch("'other',0,'2016-08-17','2016-08-24',0,'','',0,'','','','',2");
        load();
        clickRow(0);
        click("cmdSetName");
        editor = get<QLineEdit>("txtModifica");
    }
    std::string names() { return valueOf(database, "select group_concat(NameSearch) from Search"); }

    QPointer<QLineEdit> editor;
};

TEST_F(FrmSearchNamingTest, EditsTheNameExactlyOverItsCell) {
    startNaming();
    ASSERT_TRUE(editor->isVisible());
    EXPECT_EQ(editor->geometry(), grid()->visualItemRect(grid()->item(0, 1)));
    EXPECT_EQ(editor->parentWidget(), grid()->viewport());
    EXPECT_EQ(editor->selectedText(), QStringLiteral("old"));
    EXPECT_TRUE(editor->hasFocus());
}

TEST_F(FrmSearchNamingTest, StoresTheNameAtEnter) {
    startNaming();
    editor->setText(QStringLiteral("Città"));
    pressKey(*form->windowHandle(), Qt::Key_Return);
    EXPECT_TRUE(editor->isHidden());
    EXPECT_EQ(cell(0, 1), "Città");
    EXPECT_EQ(names(), "Città,other");
    EXPECT_TRUE(grid()->hasFocus());
}

TEST_F(FrmSearchNamingTest, GivesTheNameUpWhenTheEditorIsLeft) {
    startNaming();
    editor->setText(QStringLiteral("lost"));
    get<QWidget>("txt_min_mag")->setFocus();
    EXPECT_TRUE(editor->isHidden());
    EXPECT_TRUE(get<QWidget>("txt_min_mag")->hasFocus());
    click("cmdSetName");
    editor->setText(QStringLiteral("lost"));
    clickRow(1);
    EXPECT_TRUE(editor->isHidden());
    EXPECT_EQ(names(), "old,other");
}

TEST_F(FrmSearchNamingTest, TellsTheLogOfANameWithAnApostrophe) {
    startNaming();
    editor->setText(QStringLiteral("L'Aquila"));
    pressKey(*form->windowHandle(), Qt::Key_Return);
    EXPECT_EQ(names(), "old,other");
    EXPECT_EQ(log.messages,
              std::vector<std::string>{"The search was not named: an apostrophe in a text"});
}

TEST_F(FrmSearchNamingTest, ShowsAndStoresALongName) {
    startNaming();
    editor->setText(QString(10000, u'n'));
    pressKey(*form->windowHandle(), Qt::Key_Return);
    EXPECT_EQ(names().size(), 10000U + 6U);
    EXPECT_LE(form->width(), 933);
}

// Keys.

TEST_F(FrmSearchTest, UnloadsAtEscapeWhereverTheFocusIs) {
    for (const char* focus : {"fxGridSearch", "cmdAddSearch", "DTStart", "chk_RangeDateEvents",
                              "txt_min_mag", "OptArea", "OptManualGPS", "txt_BL_Latitude",
                              "TxtDepthMax", "cmbWorkSpace", "cmd_query"}) {
        load();
        if (std::string_view(focus) == "cmbWorkSpace")
            click("chk_saveWrkSpace");
        get<QWidget>(focus)->setFocus();
        pressKey(*form->windowHandle(), Qt::Key_Escape);
        EXPECT_EQ(session.PollingSuspended, 0) << focus;
        EXPECT_TRUE(unloaded()) << focus;
    }
}

TEST_F(FrmSearchNamingTest, UnloadsAtEscapeInTheEditorAndStoresNoName) {
    startNaming();
    editor->setText(QStringLiteral("lost"));
    pressKey(*form->windowHandle(), Qt::Key_Escape);
    EXPECT_TRUE(unloaded());
    EXPECT_EQ(names(), "old,other");
}

TEST_F(FrmSearchTest, SearchesAtEnterOnlyOnTheSearchButton) {
    load();
    get<QWidget>("txt_min_mag")->setFocus();
    pressKey(*form->windowHandle(), Qt::Key_Return);
    EXPECT_EQ(count(), "0");
    get<QWidget>("cmd_query")->setFocus();
    pressKey(*form->windowHandle(), Qt::Key_Return);
    EXPECT_EQ(count(), "1");
}

} // namespace
} // namespace tremor
