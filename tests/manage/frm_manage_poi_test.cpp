#include "core/qt_text.h"
#include "manage/frm_manage_poi.h"
#include "manage/poi_fixture.h"
#include "support/window_driver.h"

#include <QtCore/QThread>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTableView>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace tremor {
namespace {

using testing::child;
using testing::pressKey;

class FrmManagePoITest : public ::testing::Test, public testing::PoiHarness {
  protected:
    ~FrmManagePoITest() override {
        delete window.data();
        QLocale::setDefault(QLocale::c());
    }

    void open(PoiManager& used) {
        window = new FrmManagePoI(used, nullptr);
        window->show();
        settle();
    }
    void open() { open(manager); }
    static void settle() {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    QTableView& grid() const { return *child<QTableView>(*window, "fxGrid"); }
    int rows() const { return grid().model()->rowCount(); }
    std::string cell(int row, int column) const {
        return toBytes(grid().model()->index(row, column).data().toString());
    }
    void go(int row, int column) const {
        grid().setCurrentIndex(grid().model()->index(row, column));
    }
    std::pair<int, int> place() const {
        return {grid().currentIndex().row(), grid().currentIndex().column()};
    }
    QLineEdit* editor() const {
        QLineEdit* open = nullptr;
        for (QLineEdit* found : grid().findChildren<QLineEdit*>(QStringLiteral("txt_grid")))
            if (found->isVisible())
                open = found;
        return open;
    }
    // Types over the text of the open editor.
    void type(const std::string& text) const {
        ASSERT_NE(editor(), nullptr);
        editor()->setText(fromBytes(text));
    }
    void press(Qt::Key key) const {
        ASSERT_NE(editor(), nullptr);
        pressKey(*editor(), key);
        settle();
    }
    void click(const char* button) const {
        child<QPushButton>(*window, button)->click();
        settle();
    }
    void edit(int row, int column, const std::string& text) const {
        go(row, column);
        click("cmd_editPOI");
        type(text);
    }
    void search(const char* text) const {
        child<QLineEdit>(*window, "txt_search")->setText(fromBytes(text));
        pressKey(*child<QLineEdit>(*window, "txt_search"), Qt::Key_Return);
        settle();
    }
    std::string label() const { return toBytes(child<QLabel>(*window, "lblRows")->text()); }

    QPointer<FrmManagePoI> window;
};

TEST_F(FrmManagePoITest, ShowsThePointsUnderTheNamesOfTheirFields) {
    open();
    EXPECT_EQ(toBytes(window->windowTitle()), "Points of Interest");
    EXPECT_EQ(toBytes(window->objectName()), "frmManagePoI");
    ASSERT_EQ(rows(), 3);
    std::vector<std::string> heads;
    for (int column = 0; column < grid().model()->columnCount(); ++column)
        heads.push_back(toBytes(grid().model()->headerData(column, Qt::Horizontal).toString()));
    EXPECT_EQ(heads, (std::vector<std::string>{"rowid", "Name", "Latitude", "Longitude", "Zone"}));
    EXPECT_EQ(cell(1, 1), "Forl\xC3\xAC");
    EXPECT_EQ(label(), "3 point(s)");
    EXPECT_EQ(place(), (std::pair{0, 1}));
}

TEST_F(FrmManagePoITest, NamesItsButtons) {
    open();
    const std::vector<std::pair<const char*, const char*>> captions = {{"cmd_addPOI", "&Add"},
                                                                       {"cmd_editPOI", "&Edit"},
                                                                       {"cmd_delPOI", "&Delete"},
                                                                       {"cmd_ok", "&OK"},
                                                                       {"cmd_cancel", "&Cancel"}};
    for (const auto& [name, caption] : captions) {
        EXPECT_EQ(toBytes(child<QPushButton>(*window, name)->text()), caption);
        EXPECT_FALSE(child<QPushButton>(*window, name)->autoDefault());
    }
}

TEST_F(FrmManagePoITest, ShowsANameThatIsNoUtf8) {
    run("update Cities set Name = 'Forl\xEC' where rowid = 1");
    open();
    EXPECT_EQ(cell(0, 1), "Forl\xC3\xAC");
}

TEST_F(FrmManagePoITest, TellsHowManyPointsItDoesNotShow) {
    addTowns(60000);
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    open();
    EXPECT_EQ(rows(), 55000);
    EXPECT_EQ(label(), "55,000 of 60,003 points on show; search for the others");
    QLocale::setDefault(QLocale(QLocale::Italian, QLocale::Italy));
    search("");
    EXPECT_EQ(label(), "55.000 of 60.003 points on show; search for the others");
    search("Town 60000");
    EXPECT_EQ(rows(), 1);
    EXPECT_EQ(cell(0, 0), "60007");
}

TEST_F(FrmManagePoITest, SearchesWhenTypingPauses) {
    open();
    child<QLineEdit>(*window, "txt_search")->setText(QStringLiteral("rocc"));
    settle();
    EXPECT_EQ(rows(), 3);
    for (int wait = 0; wait < 100 && rows() == 3; ++wait) {
        QThread::msleep(FrmManagePoI::searchDelayMs / 20);
        settle();
    }
    EXPECT_EQ(rows(), 1);
    EXPECT_EQ(cell(0, 1), "Roccaraso");
}

TEST_F(FrmManagePoITest, SearchesAtOnceOnReturnAndShowsAllForAnEmptyText) {
    open();
    search("ro");
    EXPECT_EQ(rows(), 2);
    EXPECT_EQ(label(), "2 point(s)");
    search("nowhere");
    EXPECT_EQ(rows(), 0);
    EXPECT_EQ(label(), "0 point(s)");
    EXPECT_FALSE(child<QPushButton>(*window, "cmd_editPOI")->isEnabled());
    EXPECT_FALSE(child<QPushButton>(*window, "cmd_delPOI")->isEnabled());
    EXPECT_TRUE(child<QPushButton>(*window, "cmd_addPOI")->isEnabled());
    search("");
    EXPECT_EQ(rows(), 3);
}

TEST_F(FrmManagePoITest, TellsThatASearchFailedWithoutABox) {
    open();
    search("L'Aq");
    EXPECT_EQ(rows(), 0);
    EXPECT_EQ(label(), "The points cannot be read: 1 near \"Aq\": syntax error "
                       "An apostrophe must be typed twice.");
}

TEST_F(FrmManagePoITest, GoesOnWithTheNextFieldAfterReturnAndThenWithTheNextRow) {
    open();
    edit(0, 1, "Rome");
    press(Qt::Key_Return);
    EXPECT_EQ(town("1").at(0), "Rome");
    EXPECT_EQ(place(), (std::pair{0, 2}));
    type("41.95");
    press(Qt::Key_Return);
    type("12.55");
    press(Qt::Key_Return);
    EXPECT_EQ(place(), (std::pair{0, 4}));
    type("VA");
    press(Qt::Key_Return);
    EXPECT_EQ(town("1"), (std::vector<std::string>{"Rome", "41.95", "12.55", "VA"}));
    EXPECT_EQ(place(), (std::pair{1, 1}));
    ASSERT_NE(editor(), nullptr);
    EXPECT_EQ(toBytes(editor()->text()), "Forl\xC3\xAC");
}

TEST_F(FrmManagePoITest, EndsEditingBehindTheLastFieldOfTheLastRow) {
    open();
    edit(2, 4, "AQ");
    press(Qt::Key_Return);
    EXPECT_EQ(editor(), nullptr);
    EXPECT_EQ(place(), (std::pair{2, 4}));
    EXPECT_EQ(town("7").at(3), "AQ");
}

TEST_F(FrmManagePoITest, LeavesTheEditorOnEscapeAndNotTheWindow) {
    open();
    edit(0, 1, "Rome");
    press(Qt::Key_Escape);
    EXPECT_EQ(editor(), nullptr);
    EXPECT_EQ(cell(0, 1), "Roma");
    EXPECT_EQ(town("1").at(0), "Roma");
    pressKey(grid(), Qt::Key_Escape);
    settle();
    ASSERT_FALSE(window.isNull());
    EXPECT_TRUE(window->isVisible());
}

TEST_F(FrmManagePoITest, StartsEditingWithAKeyThatIsNotTyped) {
    open();
    go(0, 2);
    pressKey(grid(), Qt::Key_4, {}, QStringLiteral("4"));
    ASSERT_NE(editor(), nullptr);
    EXPECT_EQ(toBytes(editor()->text()), "41.9");
}

TEST_F(FrmManagePoITest, NeverPutsTheCursorOnARowid) {
    open();
    go(1, 0);
    EXPECT_EQ(place(), (std::pair{0, 1}));
    pressKey(grid(), Qt::Key_Left);
    EXPECT_EQ(place(), (std::pair{0, 1}));
    pressKey(grid(), Qt::Key_Home);
    EXPECT_EQ(place(), (std::pair{0, 1}));
    const QPointF rowid = grid().visualRect(grid().model()->index(2, 0)).center();
    testing::sendMouse(*grid().viewport(), QEvent::MouseButtonPress, rowid);
    testing::sendMouse(*grid().viewport(), QEvent::MouseButtonRelease, rowid);
    EXPECT_EQ(place(), (std::pair{2, 1}));
    testing::sendMouse(*grid().viewport(), QEvent::MouseButtonDblClick, rowid);
    EXPECT_EQ(editor(), nullptr);
}

TEST_F(FrmManagePoITest, AddsAPointAndStartsEditingItsName) {
    addTowns(200);
    open();
    click("cmd_addPOI");
    EXPECT_EQ(rows(), 204);
    EXPECT_EQ(place(), (std::pair{203, 1}));
    EXPECT_TRUE(grid().viewport()->rect().contains(grid().visualRect(grid().currentIndex())));
    ASSERT_NE(editor(), nullptr);
    EXPECT_EQ(toBytes(editor()->selectedText()), "insertName");
    type("Chieti");
    press(Qt::Key_Return);
    type("42,35"); // as typed
    click("cmd_ok");
    EXPECT_TRUE(window.isNull());
    EXPECT_EQ(town("208"), (std::vector<std::string>{"Chieti", "42,35", "", ""}));
}

TEST_F(FrmManagePoITest, AddsTheFirstPointOfAnEmptyTable) {
    run("delete from Cities");
    open();
    click("cmd_addPOI");
    EXPECT_EQ(rows(), 1);
    EXPECT_TRUE(child<QPushButton>(*window, "cmd_delPOI")->isEnabled());
    EXPECT_EQ(value("select Name from Cities where rowid = 1"), "insertName");
}

TEST_F(FrmManagePoITest, DeletesThePointOfTheCursorAndStaysThere) {
    addTowns(200);
    open();
    go(150, 2);
    const int top = grid().indexAt({0, 0}).row();
    const std::string next = cell(151, 1);
    click("cmd_delPOI");
    EXPECT_EQ(rows(), 202);
    EXPECT_EQ(place().first, 150);
    EXPECT_EQ(cell(150, 1), next);
    EXPECT_EQ(grid().indexAt({0, 0}).row(), top);
    EXPECT_EQ(value("select count(*) from Cities where Name = 'Town 148'"), "0");
}

TEST_F(FrmManagePoITest, DeletesUntilThereIsNoRow) {
    open();
    for (int left = 2; left >= 0; --left) {
        click("cmd_delPOI");
        EXPECT_EQ(rows(), left);
    }
    EXPECT_FALSE(child<QPushButton>(*window, "cmd_delPOI")->isEnabled());
    EXPECT_EQ(value("select count(*) from Cities"), "0");
}

TEST_F(FrmManagePoITest, DeletesThePointThatIsBeingEdited) {
    open();
    edit(0, 1, "L'Aquila"); // would be refused
    click("cmd_delPOI");
    EXPECT_EQ(rows(), 2);
    EXPECT_EQ(editor(), nullptr);
}

TEST_F(FrmManagePoITest, TellsWhyATextWasNotSavedAndEditsItAgain) {
    open();
    edit(0, 1, "L'Aquila");
    expectError("The point was not saved:\r\nAn apostrophe must be typed twice.");
    press(Qt::Key_Return);
    settle();
    EXPECT_EQ(place(), (std::pair{0, 1}));
    ASSERT_NE(editor(), nullptr);
    EXPECT_EQ(toBytes(editor()->text()), "L'Aquila");
    type("L''Aquila");
    press(Qt::Key_Return);
    EXPECT_EQ(place(), (std::pair{0, 2}));
    EXPECT_EQ(town("1").at(0), "L'Aquila");
}

TEST_F(FrmManagePoITest, KeepsWhatIsBeingTypedOnOkAndWhenItsFrameIsClosed) {
    open();
    edit(0, 1, "Rome");
    click("cmd_ok");
    EXPECT_TRUE(window.isNull());
    EXPECT_EQ(town("1").at(0), "Rome");
    open();
    edit(0, 1, "Roma");
    window->close();
    settle();
    EXPECT_TRUE(window.isNull());
    EXPECT_EQ(town("1").at(0), "Roma");
}

TEST_F(FrmManagePoITest, LeavesWhatIsBeingTypedOnCancel) {
    open();
    edit(0, 1, "Rome");
    click("cmd_cancel");
    EXPECT_TRUE(window.isNull());
    EXPECT_EQ(town("1").at(0), "Roma");
}

TEST_F(FrmManagePoITest, StaysOpenOnOkWhenATextIsRefused) {
    open();
    edit(0, 1, "L'Aquila");
    expectError("The point was not saved:\r\nAn apostrophe must be typed twice.");
    click("cmd_ok");
    ASSERT_FALSE(window.isNull());
    ASSERT_NE(editor(), nullptr);
    EXPECT_EQ(toBytes(editor()->text()), "L'Aquila");
    click("cmd_cancel");
    EXPECT_TRUE(window.isNull());
}

TEST_F(FrmManagePoITest, SurvivesATableThatCannotBeWritten) {
    protect();
    open();
    const std::string error = "\r\n8 attempt to write a readonly database";
    expectError("The point was not added:" + error);
    click("cmd_addPOI");
    EXPECT_EQ(rows(), 3);
    expectError("The point was not deleted:" + error);
    click("cmd_delPOI");
    EXPECT_EQ(rows(), 3);
    EXPECT_EQ(cell(0, 1), "Roma");
    edit(0, 1, "Rome");
    expectError("The point was not saved:" + error);
    press(Qt::Key_Return);
    settle();
    EXPECT_EQ(town("1").at(0), "Roma");
}

TEST_F(FrmManagePoITest, EditsANameOf50000CharactersWithoutCuttingIt) {
    const std::string name(50000, 'n');
    run("update Cities set Name = '" + name + "' where rowid = 1");
    open();
    window->grab();
    go(0, 1);
    click("cmd_editPOI");
    press(Qt::Key_Return);
    EXPECT_EQ(town("1").at(0), name);
}

TEST_F(FrmManagePoITest, SaysSoWhenThereIsNoTable) {
    run("drop table Cities");
    open();
    EXPECT_EQ(rows(), 0);
    EXPECT_EQ(label(), "The points cannot be read: 1 no such table: Cities");
}

// A box that takes its window away while it is open.
class ClosingPrompts : public testing::ScriptedPrompts {
  public:
    BoxAnswer showMessageBox(const MessageBox&) override {
        whileOpen();
        return BoxAnswer::Ok;
    }
    std::function<void()> whileOpen;
};

TEST_F(FrmManagePoITest, SurvivesItsOwnEndWhileABoxIsOpen) {
    ClosingPrompts closing;
    PoiManager used(catalogue, closing, harness.errors);
    closing.whileOpen = [this] { delete window.data(); };
    open(used);
    edit(0, 1, "L'Aquila");
    press(Qt::Key_Return);
    settle();
    EXPECT_TRUE(window.isNull());
    EXPECT_EQ(town("1").at(0), "Roma");
}

TEST_F(FrmManagePoITest, FreesTheRowsWhenItIsClosed) {
    open();
    click("cmd_ok");
    EXPECT_EQ(manager.rowCount(), 0U);
}

TEST_F(FrmManagePoITest, ClipsNothing) {
    open();
    for (QPushButton* button : window->findChildren<QPushButton*>())
        EXPECT_GE(button->width(), button->sizeHint().width()) << toBytes(button->objectName());
    EXPECT_LE(window->minimumSizeHint().width(), 933);
    EXPECT_LE(window->minimumSizeHint().height(), 667);
}

TEST_F(FrmManagePoITest, HasRoomForTheLongestCoordinates) {
    open();
    edit(0, 2, "42.5532699704902");
    press(Qt::Key_Return);
    edit(0, 3, "1.48736000061035");
    press(Qt::Key_Return);
    ASSERT_EQ(cell(0, 3), "1.48736000061035");
    for (const int column : {2, 3})
        EXPECT_GE(grid().columnWidth(column),
                  grid().sizeHintForIndex(grid().model()->index(0, column)).width());
}

TEST_F(FrmManagePoITest, KeepsItsSizeUnderALongFailure) {
    open();
    const QSize before = window->size();
    search((std::string(10000, 'x') + "'").c_str());
    EXPECT_LE(label().size(), 200U);
    EXPECT_EQ(window->size(), before);
    EXPECT_LE(window->minimumSizeHint().width(), 933);
}

TEST_F(FrmManagePoITest, KeepsWhatIsBeingTypedWhenAnotherControlTakesTheFocus) {
    open();
    window->activateWindow();
    settle();
    edit(0, 1, "Rome");
    ASSERT_TRUE(editor()->hasFocus());
    child<QLineEdit>(*window, "txt_search")->setFocus();
    settle();
    EXPECT_EQ(editor(), nullptr);
    EXPECT_EQ(town("1").at(0), "Rome");
}

TEST_F(FrmManagePoITest, KeepsNothingWhenTheMouseCancels) {
    open();
    window->activateWindow();
    settle();
    edit(0, 1, "Rome");
    ASSERT_TRUE(editor()->hasFocus());
    auto* cancel = child<QPushButton>(*window, "cmd_cancel");
    const QPointF middle = cancel->rect().center();
    testing::sendMouse(*cancel, QEvent::MouseButtonPress, middle);
    EXPECT_TRUE(editor()->hasFocus());
    testing::sendMouse(*cancel, QEvent::MouseButtonRelease, middle);
    settle();
    EXPECT_TRUE(window.isNull());
    EXPECT_EQ(town("1").at(0), "Roma");
}

TEST_F(FrmManagePoITest, GoesOnWithTheNextFieldAfterTab) {
    open();
    edit(0, 4, "VA");
    press(Qt::Key_Tab);
    EXPECT_EQ(town("1").at(3), "VA");
    EXPECT_EQ(place(), (std::pair{1, 1}));
    EXPECT_NE(editor(), nullptr);
}

TEST_F(FrmManagePoITest, TakesAPicture) {
    const QString pictures = qEnvironmentVariable("TREMOR_PICTURES");
    if (pictures.isEmpty())
        GTEST_SKIP() << "TREMOR_PICTURES names no folder";
    addTowns(60000);
    open();
    EXPECT_TRUE(window->grab().save(pictures + QStringLiteral("/poi.png")));
    click("cmd_addPOI");
    EXPECT_TRUE(window->grab().save(pictures + QStringLiteral("/poi_added.png")));
    search("nowhere'");
    EXPECT_TRUE(window->grab().save(pictures + QStringLiteral("/poi_failed.png")));
}

} // namespace
} // namespace tremor
