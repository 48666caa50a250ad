#include "core/qt_clock.h"
#include "core/qt_text.h"
#include "manage/frm_download.h"
#include "manage/geonames_fixture.h"
#include "support/window_driver.h"

#include <QtGui/QShortcut>
#include <QtWidgets/QLabel>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTableWidget>

#include <gtest/gtest.h>

namespace tremor {
namespace {

using testing::child;
using testing::dumpLine;
using Texts = std::vector<std::string>;

class FrmDownloadTest : public ::testing::Test, public testing::GeoNamesHarness {
  protected:
    ~FrmDownloadTest() override {
        if (window)
            window->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    // The list is fetched by then.
    void open() {
        window = new frmDownload(import, nullptr);
        window->show();
        while (window->findChild<QListWidget*>()->count() < 2)
            clock.pump();
    }
    template <class Widget>
    Widget* control(const char* name) {
        return child<Widget>(*window, name);
    }
    void press(const char* name) { control<QPushButton>(name)->click(); }
    std::string cell(int row, int column) {
        return toBytes(control<QTableWidget>("fxgrid")->item(row, column)->text());
    }
    void click(int row, int column) {
        auto* grid = control<QTableWidget>("fxgrid");
        const QPointF place = grid->visualItemRect(grid->item(row, column)).center();
        testing::sendMouse(*grid->viewport(), QEvent::MouseButtonPress, place);
        testing::sendMouse(*grid->viewport(), QEvent::MouseButtonRelease, place);
    }
    Texts messages() {
        Texts texts;
        auto* list = control<QListWidget>("lstLog");
        for (int row = 0; row < list->count(); ++row)
            texts.push_back(toBytes(list->item(row)->text()));
        return texts;
    }

    QtClock clock{session};
    GeoNamesImport import{session,
                          catalogue,
                          prompts,
                          clock,
                          harness.errors,
                          network,
                          [this] { return folder.path() + "/"; },
                          "https://geonames.test"};
    QPointer<frmDownload> window;
};

TEST_F(FrmDownloadTest, ShowsTheCountriesOnOffer) {
    catalogue.slsExe("insert into Cities values ('Roma', '41.9', '12.5', 'IT')");
    open();
    EXPECT_EQ(toBytes(window->windowTitle()), "Download POI from GeoNames");
    auto* grid = control<QTableWidget>("fxgrid");
    ASSERT_EQ(grid->rowCount(), 3);
    Texts headers;
    for (int column = 0; column < grid->columnCount(); ++column)
        headers.push_back(toBytes(grid->horizontalHeaderItem(column)->text()));
    EXPECT_EQ(headers, (Texts{"Id", "Name", "Imported", "Select"}));
    EXPECT_EQ(cell(0, 0), "AD");
    EXPECT_EQ(cell(0, 1), "Andorra");
    EXPECT_EQ(cell(0, 2), "q");
    EXPECT_EQ(cell(2, 2), "\xC3\xBE");
    EXPECT_EQ(cell(2, 3), "q");
    EXPECT_EQ(messages(), (Texts{"List of POI available, ready.", "List of POI, ready."}));
}

TEST_F(FrmDownloadTest, TogglesBothMarksByMouseAndSpaceBar) {
    open();
    for (const int column : {2, 3}) {
        click(1, column);
        EXPECT_EQ(cell(1, column), "\xC3\xBE") << column;
        click(1, column);
        EXPECT_EQ(cell(1, column), "q") << column;
    }
    click(1, 0);
    click(1, 1);
    EXPECT_EQ(cell(1, 1), "France");
    EXPECT_FALSE(import.rows()[1].selected);
    auto* grid = control<QTableWidget>("fxgrid");
    grid->setCurrentCell(1, 1);
    window->activateWindow();
    grid->setFocus();
    clock.pump();
    for (auto* shortcut : grid->findChildren<QShortcut*>())
        Q_EMIT shortcut->activated();
    EXPECT_EQ(cell(1, 3), "\xC3\xBE");
    EXPECT_TRUE(import.rows()[1].selected);
}

TEST_F(FrmDownloadTest, ImportsWhatIsSelectedAndRemovesItAgain) {
    open();
    click(0, 3);
    press("cmdDownload");
    EXPECT_EQ(stored("count(*)"), Texts{"53"});
    EXPECT_EQ(cell(0, 2), "\xC3\xBE");
    EXPECT_EQ(cell(0, 3), "q");
    EXPECT_EQ(toBytes(control<QLabel>("Label1")->text()), "2907 / 2907");
    EXPECT_EQ(control<QProgressBar>("ProgressBar1")->value(), 2907);
    EXPECT_EQ(messages().back(), "Rows refused by the catalogue: 3 (a value holds an apostrophe "
                                 "or a zero byte)");
    click(0, 3);
    press("cmdRemove");
    EXPECT_TRUE(stored().empty());
    EXPECT_EQ(cell(0, 2), "q");
    prompts.expectBox("Do you want remove all Point Of Interest from this DB?", "Deleting POI...",
                      BoxIcon::Question, BoxButtons::YesNo, BoxAnswer::Yes);
    press("cmdEmptyPOI");
    press("cmdCheck");
    EXPECT_EQ(messages().back(), "Syncing complete!");
}

TEST_F(FrmDownloadTest, TakesNoCommandWhileOneRuns) {
    open();
    bool seen = false;
    network.whileDownloading = [&](GeoNamesTransferEvents&) {
        seen = true;
        for (const char* name : {"cmdCheck", "cmdDownload", "cmdRemove", "cmdEmptyPOI"})
            EXPECT_FALSE(control<QPushButton>(name)->isEnabled()) << name;
        EXPECT_TRUE(control<QPushButton>("cmd_cancel")->isEnabled());
    };
    press("cmdCheck");
    EXPECT_TRUE(seen);
    EXPECT_TRUE(control<QPushButton>("cmdCheck")->isEnabled());
}

TEST_F(FrmDownloadTest, ClosesByBothButtonsAndLeavesTheWaitsAlone) {
    for (const char* name : {"cmd_ok", "cmd_cancel"}) {
        open();
        session.WaitCounter = 7;
        press(name);
        EXPECT_FALSE(network.aborted) << name;
        EXPECT_EQ(session.WaitCounter, 7);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_TRUE(window.isNull()) << name;
    }
}

TEST_F(FrmDownloadTest, ClosesAtEscapeWhenNothingRuns) {
    open();
    testing::pressKey(*window, Qt::Key_Escape);
    EXPECT_EQ(session.WaitCounter, 0);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(window.isNull());
}

// The transfer fails, so the wait for it would last for half a minute.
TEST_F(FrmDownloadTest, EscapeEndsARunningDownloadAndLaterWaitsWork) {
    open();
    click(1, 3);
    QTimer::singleShot(250, window, [this] {
        EXPECT_TRUE(import.running());
        testing::pressKey(*window, Qt::Key_Escape);
        EXPECT_FALSE(window && window->isVisible());
        EXPECT_EQ(session.WaitCounter, 0);
    });
    const auto before = clock.steady();
    press("cmdDownload");
    EXPECT_LT((clock.steady() - before).count(), 20000);
    EXPECT_TRUE(network.aborted);
    EXPECT_FALSE(import.running());
    EXPECT_EQ(session.WaitCounter, 0);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(window.isNull());

    network.aborted = false;
    offerDump("FR", dumpLine("Lyon", "PPL"));
    open();
    click(1, 3);
    press("cmdDownload");
    EXPECT_EQ(stored("Name"), Texts{"Lyon"});
}

TEST_F(FrmDownloadTest, CanGoWhileADownloadRuns) {
    open();
    click(1, 3);
    QTimer::singleShot(150, qApp, [this] { window->close(); });
    QTimer::singleShot(200, qApp,
                       [] { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); });
    press("cmdDownload");
    EXPECT_TRUE(window.isNull());
    EXPECT_FALSE(import.running());
}

TEST_F(FrmDownloadTest, FitsASmallScreen) {
    open();
    EXPECT_LE(window->minimumSizeHint().width(), 933);
    EXPECT_LE(window->minimumSizeHint().height(), 667);
    EXPECT_LE(window->width(), 933);
    EXPECT_LE(window->height(), 667);
}

} // namespace
} // namespace tremor
