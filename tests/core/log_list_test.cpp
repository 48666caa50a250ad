#include "core/log_list.h"
#include "support/fakes.h"
#include "support/window_driver.h"

#include <QtGui/QClipboard>
#include <QtGui/QContextMenuEvent>
#include <QtGui/QTextDocument>
#include <QtWidgets/QMenu>
#include <QtWidgets/QScrollBar>

#include <gtest/gtest.h>

#include <memory>

namespace tremor {
namespace {

using testing::pressKey;

class LogListViewTest : public ::testing::Test {
  protected:
    LogListViewTest() {
        list.resize(300, 120);
        list.show();
        QApplication::clipboard()->setText(QStringLiteral("untouched"));
    }

    void appendNumbered(int count) {
        for (int i = 0; i < count; ++i)
            list.append("line " + std::to_string(i));
    }

    static QString clipboard() { return QApplication::clipboard()->text(); }

    // The context menu, opened.
    QMenu* openMenu() {
        QContextMenuEvent event(QContextMenuEvent::Mouse, {10, 10},
                                list.mapToGlobal(QPoint(10, 10)));
        QCoreApplication::sendEvent(list.viewport(), &event);
        return qobject_cast<QMenu*>(QApplication::activePopupWidget());
    }

    void chooseFromMenu(const QString& text) {
        QMenu* menu = openMenu();
        ASSERT_NE(menu, nullptr);
        for (QAction* action : menu->actions()) {
            if (action->text() == text)
                action->trigger();
        }
        menu->close();
    }

    LogListView list;
};

TEST_F(LogListViewTest, IsFoundByItsName) {
    EXPECT_EQ(list.objectName(), QStringLiteral("lst_prog_log"));
    EXPECT_FALSE(list.accessibleName().isEmpty());
}

TEST_F(LogListViewTest, AppendsEachLineAsAnEntryOfItsOwn) {
    list.append("--------------------------------");
    list.append("2014-3-7 9:5:12");
    list.append("Forl\xC3\xAC <b>");
    ASSERT_EQ(list.count(), 3);
    EXPECT_EQ(list.item(0)->text(), QStringLiteral("--------------------------------"));
    EXPECT_EQ(list.item(2)->text(), QStringLiteral("Forl\u00EC <b>"));
}

TEST_F(LogListViewTest, KeepsAMessageOfSeveralLinesInOneRowOfTheUsualHeight) {
    list.append("one line");
    const int height = list.visualItemRect(list.item(0)).height();
    list.append("There was a runtime error.\r\nNumber: 13");
    ASSERT_EQ(list.count(), 2);
    list.append("another");
    for (int row = 0; row < 3; ++row)
        EXPECT_EQ(list.visualItemRect(list.item(row)).height(), height);
}

TEST_F(LogListViewTest, ShowsTheLinesOfAMessageInItsToolTipAsPlainText) {
    list.append("<b>first</b>\r\nsecond");
    list.append("single");
    EXPECT_EQ(
        list.item(0)->toolTip(),
        Qt::convertFromPlainText(QStringLiteral("<b>first</b>\nsecond"), Qt::WhiteSpaceNormal));
    EXPECT_TRUE(list.item(0)->toolTip().contains(QLatin1String("&lt;b&gt;")));
    EXPECT_TRUE(list.item(1)->toolTip().isEmpty());
}

TEST_F(LogListViewTest, CanBeScrolledToTheEndOfItsLongestLine) {
    list.append("short");
    list.append(std::string(400, 'W'));
    list.append("short");
    QCoreApplication::processEvents();
    EXPECT_GE(list.horizontalScrollBar()->maximum() + list.viewport()->width(),
              list.fontMetrics().horizontalAdvance(QString(400, u'W')));
}

TEST_F(LogListViewTest, ClearsItself) {
    appendNumbered(5);
    static_cast<LogList&>(list).clear();
    EXPECT_EQ(list.count(), 0);
}

TEST_F(LogListViewTest, SelectsTheLastLineAndScrollsItIntoView) {
    appendNumbered(200);
    list.selectLast();
    ASSERT_EQ(list.selectedItems().size(), 1);
    EXPECT_EQ(list.selectedItems().front()->text(), QStringLiteral("line 199"));
    EXPECT_EQ(list.currentRow(), 199);
    EXPECT_TRUE(list.viewport()->rect().contains(list.visualItemRect(list.item(199)).center()));
}

TEST_F(LogListViewTest, GivesUpAnotherSelectionForTheLastLine) {
    appendNumbered(5);
    list.selectAll();
    list.selectLast();
    EXPECT_EQ(list.selectedItems().size(), 1);
}

TEST_F(LogListViewTest, SelectsNothingInAnEmptyList) {
    list.selectLast();
    EXPECT_TRUE(list.selectedItems().isEmpty());
}

// Counts the paintings of the list's viewport.
class PaintCounter : public QObject {
  public:
    int paints = 0;
    bool eventFilter(QObject*, QEvent* event) override {
        paints += event->type() == QEvent::Paint;
        return false;
    }
};

TEST_F(LogListViewTest, RefreshPaintsAtOnce) {
    QCoreApplication::processEvents();
    PaintCounter counter;
    list.viewport()->installEventFilter(&counter);
    list.append("new");
    EXPECT_EQ(counter.paints, 0);
    list.refresh();
    EXPECT_EQ(counter.paints, 1);
}

TEST_F(LogListViewTest, CopiesTheSelectedLinesFromTopToBottom) {
    appendNumbered(5);
    list.clearSelection();
    list.item(3)->setSelected(true);
    list.item(1)->setSelected(true);
    pressKey(list, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(clipboard(), QStringLiteral("line 1\nline 3"));
}

TEST_F(LogListViewTest, CopiesExactlyTheLastLineWhenOnlyThatIsSelected) {
    appendNumbered(5);
    list.selectLast();
    pressKey(list, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(clipboard(), QStringLiteral("line 4"));
}

TEST_F(LogListViewTest, SelectsAndCopiesEverything) {
    appendNumbered(2);
    list.append("a\r\nb");
    list.selectLast();
    pressKey(list, Qt::Key_A, Qt::ControlModifier);
    pressKey(list, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(clipboard(), QStringLiteral("line 0\nline 1\na\nb"));
}

TEST_F(LogListViewTest, LeavesTheClipboardAloneWhenNothingIsSelected) {
    appendNumbered(2);
    list.clearSelection();
    pressKey(list, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(clipboard(), QStringLiteral("untouched"));
}

TEST_F(LogListViewTest, ExtendsTheSelectionByKeyboard) {
    appendNumbered(4);
    list.setCurrentRow(1);
    pressKey(list, Qt::Key_Down, Qt::ShiftModifier);
    pressKey(list, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(clipboard(), QStringLiteral("line 1\nline 2"));
}

TEST_F(LogListViewTest, OffersCopyAndSelectAllInItsMenu) {
    appendNumbered(3);
    list.selectLast();
    QMenu* menu = openMenu();
    ASSERT_NE(menu, nullptr);
    ASSERT_EQ(menu->actions().size(), 2);
    EXPECT_EQ(menu->actions()[0]->text(), QStringLiteral("Copy"));
    EXPECT_EQ(menu->actions()[1]->text(), QStringLiteral("Select all"));
    menu->close();
    chooseFromMenu(QStringLiteral("Select all"));
    EXPECT_EQ(list.selectedItems().size(), 3);
    chooseFromMenu(QStringLiteral("Copy"));
    EXPECT_EQ(clipboard(), QStringLiteral("line 0\nline 1\nline 2"));
}

TEST_F(LogListViewTest, OffersNoCopyWhenNothingIsSelected) {
    QMenu* menu = openMenu();
    ASSERT_NE(menu, nullptr);
    EXPECT_FALSE(menu->actions()[0]->isEnabled());
    EXPECT_FALSE(menu->actions()[1]->isEnabled());
    menu->close();
}

TEST_F(LogListViewTest, GrowsAndClearsBehindItsOpenMenu) {
    appendNumbered(3);
    list.selectLast();
    const QPointer<QMenu> menu = openMenu();
    ASSERT_NE(menu, nullptr);
    static_cast<LogList&>(list).clear();
    menu->actions()[0]->trigger();
    EXPECT_EQ(clipboard(), QStringLiteral("untouched"));
    menu->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(menu.isNull());
}

} // namespace
} // namespace tremor
