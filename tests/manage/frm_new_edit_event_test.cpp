#include "core/qt_text.h"
#include "manage/event_editor_fixture.h"
#include "manage/frm_new_edit_event.h"
#include "support/window_driver.h"

#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTableWidget>

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace tremor {
namespace {

using testing::child;
using testing::pressKey;

constexpr int sourceRow = 5;
constexpr const char* utc = "2024-01-02 00:00:00";

class FrmNewEditEventTest : public ::testing::Test, public testing::EventEditorHarness {
  protected:
    ~FrmNewEditEventTest() override {
        delete window();
        settle();
    }

    void edit() {
        editing.editEvent(utc, [this] { ++closed; });
        settle();
    }
    void add() {
        editing.addEvent([this] { ++closed; });
        settle();
    }
    static void settle() {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    static FrmNewEditEvent* window() {
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (auto* found = qobject_cast<FrmNewEditEvent*>(widget))
                return found;
        return nullptr;
    }
    static QTableWidget& grid() { return *child<QTableWidget>(*window(), "fxgrid"); }
    static QLineEdit* openEditor() {
        QLineEdit* open = nullptr;
        for (QLineEdit* editor : grid().findChildren<QLineEdit*>(QStringLiteral("txt_grid")))
            if (editor->isVisible())
                open = editor;
        return open;
    }
    static std::string cell(int row, int column) {
        return toBytes(grid().item(row, column)->text());
    }
    // Starts editing with a key and types over the old text.
    static void type(int row, const char* text) {
        grid().setCurrentCell(row, 1);
        pressKey(grid(), Qt::Key_Return);
        ASSERT_NE(openEditor(), nullptr);
        openEditor()->setText(fromBytes(text));
    }
    static void press(const char* button) { child<QPushButton>(*window(), button)->click(); }
    static void close() {
        window()->close();
        settle();
    }

    EventEditingWindow editing{catalogue, prompts, harness.errors, nullptr};
    int closed = 0;
};

TEST_F(FrmNewEditEventTest, ShowsTheFieldsOfANewEvent) {
    add();
    EXPECT_EQ(toBytes(window()->windowTitle()), "Add New Event");
    EXPECT_EQ(toBytes(window()->objectName()), "frmNewEditEvent");
    EXPECT_EQ(grid().rowCount(), 7);
    EXPECT_EQ(grid().columnCount(), 2);
    EXPECT_EQ(cell(0, 0), "UTC");
    EXPECT_EQ(cell(6, 0), "null");
    EXPECT_EQ(cell(0, 1), "");
    EXPECT_EQ(grid().currentRow(), 0);
    EXPECT_EQ(grid().currentColumn(), 1);
    close();
    EXPECT_EQ(closed, 1);
}

TEST_F(FrmNewEditEventTest, ShowsTheEventToBeEdited) {
    edit();
    EXPECT_EQ(toBytes(window()->windowTitle()), "Editing an Event in DB");
    EXPECT_EQ(cell(0, 1), utc);
    EXPECT_EQ(cell(sourceRow, 1), "USGS");
}

TEST_F(FrmNewEditEventTest, NamesItsButtons) {
    add();
    EXPECT_EQ(toBytes(child<QPushButton>(*window(), "cmdSalva")->text()), "&Save");
    EXPECT_EQ(toBytes(child<QPushButton>(*window(), "cmd_cancel")->text()), "&Cancel");
    for (const char* name : {"cmdSalva", "cmd_cancel"})
        EXPECT_FALSE(child<QPushButton>(*window(), name)->autoDefault());
}

TEST_F(FrmNewEditEventTest, StartsEditingWithAKeyThatIsNotTyped) {
    edit();
    grid().setCurrentCell(sourceRow, 1);
    pressKey(grid(), Qt::Key_E, {}, QStringLiteral("e"));
    ASSERT_NE(openEditor(), nullptr);
    EXPECT_EQ(toBytes(openEditor()->text()), "USGS");
}

TEST_F(FrmNewEditEventTest, EditsNoName) {
    edit();
    grid().setCurrentCell(sourceRow, 0);
    pressKey(grid(), Qt::Key_E, {}, QStringLiteral("e"));
    EXPECT_EQ(openEditor(), nullptr);
    EXPECT_FALSE(grid().item(sourceRow, 0)->flags().testFlag(Qt::ItemIsEditable));
}

TEST_F(FrmNewEditEventTest, DoesNotStartEditingWithACommand) {
    edit();
    pressKey(grid(), Qt::Key_S, Qt::ControlModifier, QStringLiteral("s"));
    EXPECT_EQ(openEditor(), nullptr);
    pressKey(grid(), Qt::Key_Down);
    EXPECT_EQ(openEditor(), nullptr);
    EXPECT_EQ(grid().currentRow(), 1);
}

TEST_F(FrmNewEditEventTest, KeepsTheTextOnReturnAndMovesDown) {
    edit();
    type(4, "5.5");
    pressKey(*openEditor(), Qt::Key_Return);
    settle();
    EXPECT_EQ(cell(4, 1), "5.5");
    EXPECT_EQ(openEditor(), nullptr);
    EXPECT_EQ(grid().currentRow(), 5);
    EXPECT_EQ(grid().currentColumn(), 1);
    press("cmdSalva");
    settle();
    EXPECT_EQ(window(), nullptr);
    EXPECT_EQ(closed, 1);
    EXPECT_EQ(event(utc).at(4), "5.5");
}

TEST_F(FrmNewEditEventTest, StaysInTheLastRowOnReturn) {
    add();
    type(6, "x");
    pressKey(*openEditor(), Qt::Key_Return);
    settle();
    EXPECT_EQ(grid().currentRow(), 6);
    expectQuestion(BoxAnswer::No);
    close();
}

TEST_F(FrmNewEditEventTest, LeavesTheEditorOnEscapeAndNotTheWindow) {
    edit();
    type(4, "5.5");
    pressKey(*openEditor(), Qt::Key_Escape);
    settle();
    EXPECT_EQ(openEditor(), nullptr);
    EXPECT_EQ(cell(4, 1), "4.5");
    ASSERT_NE(window(), nullptr);
    pressKey(grid(), Qt::Key_Escape); // nothing was changed: no question
    settle();
    EXPECT_EQ(window(), nullptr);
    EXPECT_EQ(closed, 1);
}

TEST_F(FrmNewEditEventTest, SavesWhatIsStillBeingTyped) {
    edit();
    type(4, "5.5");
    press("cmdSalva");
    settle();
    EXPECT_EQ(window(), nullptr);
    EXPECT_EQ(event(utc).at(4), "5.5");
}

TEST_F(FrmNewEditEventTest, AsksBeforeItDropsWhatIsStillBeingTyped) {
    edit();
    type(4, "5.5");
    expectQuestion(BoxAnswer::No);
    press("cmd_cancel");
    settle();
    EXPECT_EQ(window(), nullptr);
    EXPECT_EQ(event(utc).at(4), "4.5");
}

TEST_F(FrmNewEditEventTest, AsksWhenItsFrameIsClosed) {
    edit();
    type(4, "5.5");
    expectQuestion(BoxAnswer::Yes);
    close();
    EXPECT_EQ(window(), nullptr);
    EXPECT_EQ(event(utc).at(4), "5.5");
}

TEST_F(FrmNewEditEventTest, StaysOpenWhenAValueIsRefused) {
    edit();
    type(sourceRow, "L'Aquila");
    expectError("Not saved: Source\r\n1 near \"Aquila\": syntax error");
    press("cmdSalva");
    settle();
    ASSERT_NE(window(), nullptr);
    EXPECT_EQ(closed, 0);
    EXPECT_EQ(cell(sourceRow, 1), "L'Aquila");
    expectQuestion(BoxAnswer::No);
    close();
}

TEST_F(FrmNewEditEventTest, StoresTypedTextAsUtf8) {
    add();
    type(sourceRow, "Forl\xC3\xAC");
    press("cmdSalva");
    settle();
    EXPECT_EQ(value("select hex(Source) from Events where UTC = ''"), "466F726CC3AC");
}

TEST_F(FrmNewEditEventTest, LeavesBytesAloneThatNobodyTyped) {
    run(std::string("update Events set Source = 'Forl\xEC' where UTC = '") + utc + "'");
    edit();
    EXPECT_EQ(cell(sourceRow, 1), "Forl\xC3\xAC");
    press("cmdSalva");
    settle();
    EXPECT_EQ(value(std::string("select hex(Source) from Events where UTC = '") + utc + "'"),
              "466F726CEC");
}

TEST_F(FrmNewEditEventTest, IsOneWindowForAllEvents) {
    edit();
    FrmNewEditEvent* first = window();
    editing.addEvent([] { FAIL() << "never opened"; });
    settle();
    EXPECT_EQ(window(), first);
    EXPECT_EQ(toBytes(first->windowTitle()), "Editing an Event in DB");
    close();
    EXPECT_EQ(closed, 1);
    add();
    ASSERT_NE(window(), nullptr);
    EXPECT_EQ(toBytes(window()->windowTitle()), "Add New Event");
}

// A question that takes its window away while it is open.
class ClosingPrompts : public testing::ScriptedPrompts {
  public:
    BoxAnswer showMessageBox(const MessageBox&) override {
        whileOpen();
        return BoxAnswer::Yes;
    }
    std::function<void()> whileOpen;
};

TEST_F(FrmNewEditEventTest, SurvivesItsOwnEndWhileAQuestionIsOpen) {
    ClosingPrompts closing;
    auto editor = std::make_shared<EventEditor>(catalogue, closing, harness.errors, utc);
    QPointer<FrmNewEditEvent> doomed = new FrmNewEditEvent(editor, nullptr);
    editor.reset();
    doomed->show();
    type(4, "5.5");
    closing.whileOpen = [&] {
        doomed->close(); // asks nothing a second time
        EXPECT_FALSE(doomed.isNull());
        delete doomed.data();
    };
    press("cmd_cancel");
    EXPECT_TRUE(doomed.isNull());
    EXPECT_EQ(event(utc).at(4), "5.5");
}

} // namespace
} // namespace tremor
