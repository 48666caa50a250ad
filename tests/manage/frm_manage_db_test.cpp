#include "core/qt_clock.h"
#include "core/qt_text.h"
#include "manage/frm_manage_db.h"
#include "manage/manage_fixture.h"
#include "support/window_driver.h"

#include <QtCore/QElapsedTimer>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDateEdit>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTableView>

#include <gtest/gtest.h>

namespace tremor {
namespace {

using testing::child;

class FrmManageDBTest : public ::testing::Test, public testing::ManageHarness {
  public:
    FrmManageDBTest() : ManageHarness(NumberLocale::point()) {
        window = new FrmManageDB(manager, clock, nullptr);
        window->show();
    }
    ~FrmManageDBTest() override {
        if (window)
            window->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    template <class Widget>
    Widget* control(const char* name) {
        return child<Widget>(*window, name);
    }
    void press(const char* name) { control<QPushButton>(name)->click(); }
    void query(const char* text) {
        control<QPlainTextEdit>("txtQuery")->setPlainText(QString::fromLatin1(text));
        press("cmdQuery");
    }
    std::string cell(int row, int column) {
        const auto* model = control<QTableView>("grid")->model();
        return toBytes(model->index(row, column).data().toString());
    }
    void choose(int row) {
        auto* grid = control<QTableView>("grid");
        grid->setCurrentIndex(grid->model()->index(row, 0));
    }

    QtClock clock{session};
    QPointer<FrmManageDB> window;
};

TEST_F(FrmManageDBTest, OpensOnToday) {
    EXPECT_EQ(session.PollingSuspended, 1);
    EXPECT_EQ(toBytes(window->windowTitle()), "Manage DataBase");
    EXPECT_EQ(control<QDateEdit>("StartDateC")->date(), QDate::currentDate());
    EXPECT_EQ(control<QDateEdit>("endDateC")->date(), QDate::currentDate());
    EXPECT_EQ(control<QComboBox>("cmb_FieldsO")->count(), 7);
    EXPECT_EQ(control<QComboBox>("cmb_FieldsG")->count(), 7);
    EXPECT_EQ(control<QComboBox>("cmbSource")->count(), 3);
    window->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(session.PollingSuspended, 0);
    EXPECT_TRUE(window.isNull());
}

TEST_F(FrmManageDBTest, EnablesTheControlsOfACheckedCondition) {
    const std::pair<const char*, const char*> pairs[] = {
        {"chk_conditions_0", "StartDateC"}, {"chk_conditions_0", "endDateC"},
        {"chk_conditions_1", "txtSMg"},     {"chk_conditions_1", "txtEMg"},
        {"chk_conditions_2", "txtSDepth"},  {"chk_conditions_2", "txtEDpeth"},
        {"chk_conditions_3", "cmbSource"},  {"chk_orderby", "cmb_FieldsO"},
        {"chk_orderby", "cmb_ordinamento"}, {"chk_groupby", "cmb_FieldsG"},
        {"chk_groupby", "chk_count"}};
    for (const auto& [box, name] : pairs) {
        EXPECT_FALSE(control<QWidget>(name)->isEnabled()) << name;
        control<QCheckBox>(box)->setChecked(true);
        EXPECT_TRUE(control<QWidget>(name)->isEnabled()) << name;
        control<QCheckBox>(box)->setChecked(false);
        EXPECT_FALSE(control<QWidget>(name)->isEnabled()) << name;
    }
}

TEST_F(FrmManageDBTest, BuildsTheStatementFromItsControls) {
    control<QCheckBox>("chk_conditions_0")->setChecked(true);
    control<QDateEdit>("StartDateC")->setDate(QDate(2024, 1, 2));
    control<QDateEdit>("endDateC")->setDate(QDate(2024, 1, 3));
    control<QCheckBox>("chk_conditions_1")->setChecked(true);
    control<QLineEdit>("txtSMg")->setText(QStringLiteral("4.45"));
    control<QLineEdit>("txtEMg")->setText(QStringLiteral("9"));
    control<QCheckBox>("chk_orderby")->setChecked(true);
    control<QComboBox>("cmb_FieldsO")->setCurrentText(QStringLiteral("Magnitude"));
    control<QComboBox>("cmb_ordinamento")->setCurrentText(QStringLiteral("Descendant"));
    press("cmdBuildQuery");
    EXPECT_EQ(toBytes(control<QPlainTextEdit>("txtQuery")->toPlainText()),
              "select * from Events where ( UTC >= '2024-01-02' ) AND "
              "( UTC <= '2024-01-03 23:59:59' ) AND ( Magnitude >= '4.45' ) AND "
              "( Magnitude <= '9' ) ORDER BY Magnitude DESC");
    press("cmdQuery");
    ASSERT_EQ(control<QTableView>("grid")->model()->rowCount(), 1);
    EXPECT_EQ(cell(0, 4), "4.5");
}

TEST_F(FrmManageDBTest, EditsTheRowThatIsCurrentAndQueriesAgain) {
    query("select * from Events");
    choose(0);
    press("cmdEditEvent");
    EXPECT_EQ(editing.edited, std::vector<std::string>{"2024-01-01 00:00:00"});
    catalogue.slsExe("delete from Events where Magnitude = 1.5");
    editing.close();
    EXPECT_EQ(control<QTableView>("grid")->model()->rowCount(), 2);
}

TEST_F(FrmManageDBTest, ForgetsTheChosenRowAfterANewQuery) {
    query("select * from Events");
    choose(0);
    query("select * from Events");
    prompts.expectBox("Please select an event first.", "Error..", BoxIcon::Critical, BoxButtons::Ok,
                      BoxAnswer::Ok);
    press("cmdDeleteEvent");
}

TEST_F(FrmManageDBTest, OffersThePopUpOnlyOverRows) {
    auto* grid = control<QTableView>("grid");
    auto* popup = window->findChild<QMenu*>();
    ASSERT_NE(popup, nullptr);
    Q_EMIT grid->customContextMenuRequested(QPoint(5, 5));
    EXPECT_FALSE(popup->isVisible());
    query("select * from Events");
    Q_EMIT grid->customContextMenuRequested(grid->visualRect(grid->model()->index(1, 0)).center());
    EXPECT_TRUE(popup->isVisible());
    EXPECT_EQ(grid->currentIndex().row(), 1);
    popup->close();
    window->findChild<QAction*>(QStringLiteral("mnu_Edit"))->trigger();
    EXPECT_EQ(editing.edited, std::vector<std::string>{"2024-01-02 00:00:00"});
}

constexpr char endlessQuery[] =
    "select count(*) from (with recursive n(x) as (select 1 union all select x + 1 from n) "
    "select x from n)";

TEST_F(FrmManageDBTest, StopsASlowQueryAtTheOperatorsWish) {
    QTimer::singleShot(200, window, [this] {
        EXPECT_FALSE(control<QPushButton>("cmdAddEvent")->isEnabled());
        EXPECT_EQ(toBytes(control<QPushButton>("cmdQuery")->text()), "S&top");
        press("cmdQuery");
    });
    query(endlessQuery);
    EXPECT_EQ(toBytes(control<QLabel>("lblRows")->text()), "No result");
    EXPECT_TRUE(control<QPushButton>("cmdAddEvent")->isEnabled());
}

TEST_F(FrmManageDBTest, GoesAwayOnlyAfterItsQuery) {
    QTimer::singleShot(100, window, [this] {
        window->close();
        EXPECT_TRUE(window->isVisible());
    });
    query(endlessQuery);
    EXPECT_FALSE(window && window->isVisible());
}

TEST_F(FrmManageDBTest, StaysAliveWhileItReadsAMillionRows) {
    QElapsedTimer sinceTurn;
    qint64 longest = 0;
    QTimer turn;
    QObject::connect(&turn, &QTimer::timeout, window, [&] {
        if (sinceTurn.isValid())
            longest = std::max(longest, sinceTurn.elapsed());
        sinceTurn.start();
    });
    turn.start(10);
    query("select x as UTC, x as Latitude from (with recursive n(x) as (select 1 union all select "
          "x + 1 from n limit 1000000) select x from n)");
    EXPECT_EQ(control<QTableView>("grid")->model()->rowCount(), 1000000);
    EXPECT_EQ(cell(999999, 0), "1000000");
    EXPECT_TRUE(sinceTurn.isValid()) << "no turn of the event loop during the query";
    RecordProperty("longestPauseMs", static_cast<int>(longest));
}

} // namespace
} // namespace tremor
