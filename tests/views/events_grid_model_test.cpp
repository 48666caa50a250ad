#include "support/fakes.h"
#include "views/events_grid_model.h"

#include <QtGui/QBrush>

#include <gtest/gtest.h>

#include <string>

namespace tremor {
namespace {

class EventsGridModelTest : public ::testing::Test {
  protected:
    EventsGridModelTest() { EXPECT_EQ(database.slsOpen(folder.file("catalogue.sqlite"), "C"), 0); }

    // The rows of a select, such as "select 'a', 'b' union all select 'c', 'd'".
    ResultSet rows(const std::string& sql) {
        EXPECT_EQ(database.slsSel(sql), 0) << database.slGetError();
        return database.takeResult();
    }

    QString text(int row, int column) const {
        return model.data(model.index(row, column), Qt::DisplayRole).toString();
    }
    QColor background(int row) const {
        return model.data(model.index(row, 1), Qt::BackgroundRole).value<QBrush>().color();
    }
    QColor foreground(int row) const {
        return model.data(model.index(row, 1), Qt::ForegroundRole).value<QBrush>().color();
    }

    testing::TemporaryFolder folder;
    Database database;
    EventsGridModel model;
};

TEST_F(EventsGridModelTest, IsEmptyAtFirst) {
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_EQ(model.columnCount(), 7);
    EXPECT_EQ(model.cell(0, 1), "");
}

TEST_F(EventsGridModelTest, ShowsTheResultBehindTheEmptyFirstColumn) {
    model.setRows(rows("select 'a', 'b' union all select 'c', 'd'"));
    EXPECT_EQ(model.rowCount(), 2);
    EXPECT_EQ(text(0, 0), QString());
    EXPECT_EQ(text(0, 1), QStringLiteral("a"));
    EXPECT_EQ(text(1, 2), QStringLiteral("d"));
    EXPECT_EQ(text(1, 3), QString());
}

TEST_F(EventsGridModelTest, GivesTheEmptyTextOutsideTheTable) {
    model.setRows(rows("select 'a'"));
    EXPECT_EQ(model.cell(-1, 1), "");
    EXPECT_EQ(model.cell(0, -1), "");
    EXPECT_EQ(model.cell(1, 1), "");
    EXPECT_EQ(model.cell(0, 2), "");
}

TEST_F(EventsGridModelTest, DecodesUtf8AndElseWindows1252) {
    model.setRows(rows("select cast(x'466F726CC3AC' as text), cast(x'466F726CEC' as text)"));
    EXPECT_EQ(text(0, 1), QStringLiteral("Forl\u00EC"));
    EXPECT_EQ(text(0, 2), QStringLiteral("Forl\u00EC"));
    EXPECT_EQ(model.cell(0, 2), "Forl\xEC"); // the bytes stay what they are
}

TEST_F(EventsGridModelTest, ColoursOneRowWithDarkText) {
    model.setRows(rows("select 'a' union all select 'b'"));
    model.setColouredRow(1);
    EXPECT_EQ(background(1), QColor(128, 255, 255));
    EXPECT_EQ(model.data(model.index(1, 1), Qt::ForegroundRole).value<QBrush>().color(),
              QColor(Qt::black));
    EXPECT_FALSE(model.data(model.index(0, 1), Qt::BackgroundRole).isValid());
    model.setColouredRow(0);
    EXPECT_FALSE(model.data(model.index(1, 1), Qt::BackgroundRole).isValid());
}

TEST_F(EventsGridModelTest, TellsTheViewsWhichRowsChangeTheirColour) {
    model.setRows(rows("select 'a' union all select 'b'"));
    model.setColouredRow(0);
    QList<int> changed;
    QObject::connect(&model, &EventsGridModel::dataChanged, &model,
                     [&](const QModelIndex& first) { changed.append(first.row()); });
    model.setColouredRow(1);
    EXPECT_EQ(changed, (QList<int>{0, 1}));
}

TEST_F(EventsGridModelTest, LosesTheColourWithItsRows) {
    model.setRows(rows("select 'a'"));
    model.setColouredRow(0);
    model.setRows(rows("select 'b'"));
    EXPECT_EQ(model.colouredRow(), -1);
    EXPECT_FALSE(model.data(model.index(0, 1), Qt::BackgroundRole).isValid());
}

TEST_F(EventsGridModelTest, WritesRowsInGreyInAdditionToThoseThatAreGrey) {
    model.setRows(rows("select 'a' union all select 'b' union all select 'c'"));
    EXPECT_FALSE(model.data(model.index(0, 1), Qt::ForegroundRole).isValid());
    model.addGreyRows({0});
    model.addGreyRows({2, -1, 3});
    EXPECT_EQ(foreground(0), QColor(128, 128, 128));
    EXPECT_FALSE(model.data(model.index(1, 1), Qt::ForegroundRole).isValid());
    EXPECT_EQ(foreground(2), QColor(128, 128, 128));
    EXPECT_FALSE(model.data(model.index(0, 1), Qt::BackgroundRole).isValid());
}

TEST_F(EventsGridModelTest, KeepsTheGreyOfARowWithTheSelectionColour) {
    model.setRows(rows("select 'a'"));
    model.addGreyRows({0});
    model.setColouredRow(0);
    EXPECT_EQ(foreground(0), QColor(128, 128, 128));
    EXPECT_EQ(background(0), QColor(128, 255, 255));
}

TEST_F(EventsGridModelTest, LosesTheGreyWithItsRows) {
    model.setRows(rows("select 'a'"));
    model.addGreyRows({0});
    model.setRows(rows("select 'a'"));
    EXPECT_FALSE(model.data(model.index(0, 1), Qt::ForegroundRole).isValid());
}

TEST_F(EventsGridModelTest, TellsTheViewsOnceThatTextHasTurnedGrey) {
    model.addGreyRows({0}); // no row, nothing to tell
    model.setRows(rows("select 'a' union all select 'b'"));
    int changes = 0;
    QObject::connect(&model, &EventsGridModel::dataChanged, &model, [&] { ++changes; });
    model.addGreyRows({0, 1});
    EXPECT_EQ(changes, 1);
}

TEST_F(EventsGridModelTest, HasHeadersBeforeTheFirstQuery) {
    EXPECT_EQ(model.header(0), "");
    EXPECT_EQ(model.header(1), "UTC");
    EXPECT_EQ(model.header(4), "Mg");
    EXPECT_EQ(model.header(6), "Source");
}

TEST_F(EventsGridModelTest, KeepsHeadersWithTheirTrailingBlank) {
    model.setHeader(4, "Mg ");
    EXPECT_EQ(model.header(4), "Mg ");
    EXPECT_EQ(model.headerData(4, Qt::Horizontal, Qt::DisplayRole).toString(),
              QStringLiteral("Mg "));
    model.setRows(rows("select 'a'"));
    EXPECT_EQ(model.header(4), "Mg ");
}

TEST_F(EventsGridModelTest, IgnoresHeadersOutsideTheTable) {
    model.setHeader(-1, "x");
    model.setHeader(7, "x");
    EXPECT_EQ(model.header(-1), "");
    EXPECT_EQ(model.header(7), "");
    EXPECT_FALSE(model.headerData(7, Qt::Horizontal, Qt::DisplayRole).isValid());
}

} // namespace
} // namespace tremor
