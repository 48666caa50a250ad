#include "core/qt_text.h"
#include "manage/result_model.h"
#include "support/fakes.h"

#include <gtest/gtest.h>

namespace tremor {
namespace {

TEST(ResultModel, IsEmptyAtFirst) {
    const ResultModel model;
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_EQ(model.columnCount(), 0);
    EXPECT_FALSE(model.headerData(0, Qt::Horizontal, Qt::DisplayRole).isValid());
}

TEST(ResultModel, ShowsNamesAndTextsOfAnyQuery) {
    const testing::TemporaryFolder folder;
    Database database;
    ASSERT_EQ(database.slsOpen(folder.file("result.sqlite"), "C"), 0);
    ASSERT_EQ(database.slsSel("select 'Città' as Town, 10.0 as Depth, null as Missing"), 0);
    ResultModel model;
    model.setRows(database.takeResult());
    ASSERT_EQ(model.rowCount(), 1);
    ASSERT_EQ(model.columnCount(), 3);
    EXPECT_EQ(toBytes(model.headerData(0, Qt::Horizontal, Qt::DisplayRole).toString()), "Town");
    EXPECT_EQ(model.headerData(0, Qt::Vertical, Qt::DisplayRole).toInt(), 1);
    EXPECT_EQ(toBytes(model.data(model.index(0, 0), Qt::DisplayRole).toString()), "Città");
    EXPECT_EQ(toBytes(model.data(model.index(0, 1), Qt::DisplayRole).toString()), "10.0");
    EXPECT_EQ(toBytes(model.data(model.index(0, 2), Qt::DisplayRole).toString()), "");
    EXPECT_EQ(model.cell(5, 0), "");
    EXPECT_EQ(model.cell(0, -1), "");
}

} // namespace
} // namespace tremor
