#include "database/database_support.h"
#include "database/row_writer.h"
#include "support/fakes.h"

namespace tremor {
namespace {

constexpr std::string_view insert = "insert into Events(UTC, Source) values (?,?)";

class RowWriter : public ::testing::Test {
  protected:
    RowWriter() {
        EXPECT_EQ(database.slsOpen(folder.file("catalogue.sqlite"), "C"), 0);
        EXPECT_EQ(database.slsExe("create table Events(UTC, Source)"), 0);
    }

    std::string eventCount() { return testing::valueOf(database, "select count(*) from Events"); }

    testing::TemporaryFolder folder;
    Database database;
};
using Transaction = RowWriter;

TEST_F(RowWriter, StoresWhatPastedValuesWouldStore) {
    tremor::RowWriter writer(database, insert);
    ASSERT_TRUE(writer.isReady());
    EXPECT_TRUE(writer.write({"2012", "L''Aquila"}));
    EXPECT_TRUE(writer.write({"", ""}));
    EXPECT_EQ(testing::rowsOf(database, "select UTC, Source from Events"),
              (std::vector<std::vector<std::string>>{{"2012", "L'Aquila"}, {"", ""}}));
    EXPECT_EQ(writer.lost(), 0U);
}

TEST_F(RowWriter, LosesARefusedRowAloneAndKeepsTheFirstReason) {
    ASSERT_EQ(database.slsExe("create unique index once on Events(UTC)"), 0);
    tremor::RowWriter writer(database, insert);
    EXPECT_TRUE(writer.write({"a", "1"}));
    EXPECT_TRUE(writer.write({"a", "2"}));
    EXPECT_TRUE(writer.write({"it's", "3"}));
    EXPECT_TRUE(writer.write({"b", "4"}));
    EXPECT_EQ(eventCount(), "2");
    EXPECT_EQ(writer.lost(), 2U);
    EXPECT_NE(writer.lostReason().find("UNIQUE"), std::string::npos) << writer.lostReason();
}

TEST_F(RowWriter, SaysWhenTheCatalogueItselfFails) {
    tremor::RowWriter writer(database, insert);
    ASSERT_EQ(database.slsExe("pragma query_only = 1"), 0);
    EXPECT_FALSE(writer.write({"a", "1"}));
    EXPECT_EQ(writer.lost(), 0U);
}

TEST_F(RowWriter, IsNotReadyWithAWrongStatement) {
    EXPECT_FALSE(tremor::RowWriter(database, "insert into Nowhere values (?)").isReady());
}

TEST_F(Transaction, TakesEverythingBackUnlessCommitted) {
    constexpr std::string_view store = "insert into Events(UTC) values ('a')";
    {
        const tremor::Transaction transaction(database);
        ASSERT_TRUE(transaction.isOpen());
        EXPECT_EQ(database.slsExe(store), 0);
    }
    EXPECT_EQ(eventCount(), "0");
    {
        tremor::Transaction transaction(database);
        EXPECT_EQ(database.slsExe(store), 0);
        EXPECT_TRUE(transaction.commit());
    }
    EXPECT_EQ(eventCount(), "1");
}

TEST_F(Transaction, IsNotOpenInsideAnother) {
    const tremor::Transaction outer(database);
    EXPECT_FALSE(tremor::Transaction(database).isOpen());
}

} // namespace
} // namespace tremor
