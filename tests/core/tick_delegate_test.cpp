#include "core/tick_delegate.h"

#include <QtGui/QPixmap>
#include <QtWidgets/QTableWidget>

#include <gtest/gtest.h>

namespace tremor {
namespace {

TEST(TickDelegate, MarksACellWithThePlaceOfItsBoxInTheSymbolFont) {
    EXPECT_EQ(TickDelegate::mark(false), QStringLiteral("q"));
    EXPECT_EQ(TickDelegate::mark(true), QStringLiteral("\u00FE"));
}

TEST(TickDelegate, ShowsABoxForAMarkAndAnEmptyOneForEveryOtherText) {
    const TickDelegate delegate;
    const QString empty(u'\u2610');
    EXPECT_EQ(delegate.displayText(TickDelegate::mark(true), QLocale()), QString(u'\u2611'));
    EXPECT_EQ(delegate.displayText(TickDelegate::mark(false), QLocale()), empty);
    EXPECT_EQ(delegate.displayText(QString(), QLocale()), empty);
    EXPECT_EQ(delegate.displayText(QStringLiteral("\u00FE\u00FE"), QLocale()), empty);
}

// The middle of a painted cell, without its frame.
QImage middleOf(QTableWidget& table, int column) {
    const QRect cell = table.visualItemRect(table.item(0, column));
    return table.viewport()->grab(cell.adjusted(2, 2, -2, -2)).toImage();
}

TEST(TickDelegate, PaintsTickedAndEmptyCellsDifferentlyAndEqualOnesAlike) {
    QTableWidget table(1, 4);
    table.setItemDelegate(new TickDelegate(&table));
    table.setFocusPolicy(Qt::NoFocus);
    for (int column = 0; column < table.columnCount(); ++column) {
        table.setColumnWidth(column, 40);
        table.setItem(0, column, new QTableWidgetItem(TickDelegate::mark(column % 2 == 1)));
    }
    table.resize(240, 80);
    table.show();
    EXPECT_EQ(middleOf(table, 0), middleOf(table, 2));
    EXPECT_EQ(middleOf(table, 1), middleOf(table, 3));
    EXPECT_NE(middleOf(table, 0), middleOf(table, 1));
}

} // namespace
} // namespace tremor
