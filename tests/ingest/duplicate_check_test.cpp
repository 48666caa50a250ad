#include "ingest/duplicate_check.h"
#include "ingest/import_fixture.h"

#include <algorithm>
#include <deque>
#include <random>

namespace tremor {
namespace {

using Marks = std::vector<bool>;

// A file's times and the records that point to them. The empty time is a hole.
struct Times {
    void add(std::string utc) {
        ImportRecord record;
        record.element = records.size();
        record.UTC = texts.emplace_back(std::move(utc));
        records.push_back(record);
    }

    std::deque<std::string> texts;
    std::vector<ImportRecord> records;
};

RecordPass passOver(const std::vector<ImportRecord>& records) {
    return [&records](const RecordVisitor& visit) {
        for (const ImportRecord& record : records) {
            if (!visit(record))
                return;
        }
    };
}

// The search for duplicates written down plainly: for each stored time the first element that has
// it, or all of them; where holes count, nothing behind the first hole is ever reached.
Marks plainMarks(const std::vector<ImportRecord>& records, const std::vector<std::string>& stored,
                 const FeedRules& rules) {
    Marks marks(records.size());
    for (const std::string& utc : stored) {
        for (std::size_t i = 0; i < records.size(); ++i) {
            if (records[i].UTC != utc && !(rules.storesHoles && records[i].UTC.empty()))
                continue;
            marks[i] = true;
            if (!rules.marksAllEqual)
                break;
        }
    }
    return marks;
}

class DuplicateCheckTest : public testing::ImportFixture {
  protected:
    Marks marksOf(const std::vector<ImportRecord>& records, FeedReader reader,
                  std::size_t longestList = DuplicateCheck::usualList) {
        DuplicateCheck check(feedRules(reader), longestList);
        EXPECT_TRUE(check.ask(passOver(records), records.size(), database));
        Marks marks;
        for (const ImportRecord& record : records)
            marks.push_back(check.isDuplicate(record));
        return marks;
    }

    // The marks when the catalogue is read through, as it is for a long file.
    Marks marksByReading(const std::vector<ImportRecord>& records, FeedReader reader) {
        return marksOf(records, reader, 0);
    }
};

class EveryReader : public DuplicateCheckTest, public ::testing::WithParamInterface<FeedReader> {
  protected:
    EveryReader() { EXPECT_EQ(database.slsExe("pragma synchronous = off"), 0); } // many commits
};

TEST_P(EveryReader, FindsTheSameByAStatementAndByReadingThrough) {
    const std::vector<std::string> pool = {"2021-01-14 05:45:26.600",
                                           "2021-01-14 05:45:27.000",
                                           "2021",
                                           "2021.0",
                                           "1e3",
                                           "1000",
                                           " 1000 ",
                                           "0x10",
                                           "d'e",
                                           "d''e",
                                           "d'",
                                           "Inf",
                                           "b\xFF",
                                           "UTC",
                                           "",
                                           "9e999",
                                           "0.30000000000000004",
                                           "0.3",
                                           "-0",
                                           "0",
                                           std::string("a\0b", 3),
                                           "blob",
                                           "'",
                                           "''",
                                           "+"};
    const std::vector<std::string> sources = {"SURVEY-INGV", "EMSC", "USGS"};
    ASSERT_EQ(database.slsExe("insert into Events(UTC, Source) values (x'626C6F62', 'USGS')"), 0);
    ASSERT_EQ(database.slsExe("insert into Events(UTC, Source) values (9e999, 'EMSC')"), 0);
    Statement insert = database.prepare("insert into Events(UTC, Source) values (?, ?)");
    std::mt19937 random(20210114); // NOLINT(cert-msc32-c,cert-msc51-cpp): repeatable on purpose
    for (int turn = 0; turn < 150; ++turn) {
        ASSERT_EQ(database.execute(
                      insert, {pool[random() % pool.size()], sources[random() % sources.size()]}),
                  0);
        Times times;
        for (std::size_t i = random() % 20; i > 0; --i)
            times.add(pool[random() % pool.size()]);
        EXPECT_EQ(marksOf(times.records, GetParam()), marksByReading(times.records, GetParam()));
    }
}

TEST_P(EveryReader, MarksWhatThePlainSearchMarks) {
    const std::vector<std::string> sources = {"SURVEY-INGV", "EMSC", "USGS"};
    std::mt19937 random(1985); // NOLINT(cert-msc32-c,cert-msc51-cpp): repeatable on purpose
    for (int turn = 0; turn < 200; ++turn) {
        ASSERT_EQ(database.slsExe("delete from Events"), 0);
        for (std::size_t i = random() % 6; i > 0; --i)
            store("t" + std::to_string(random() % 8), sources[random() % sources.size()]);
        Times times;
        for (std::size_t i = random() % 12; i > 0; --i)
            times.add(random() % 9 == 0 ? "" : "t" + std::to_string(random() % 8));

        std::string sql = "select UTC from Events where (UTC IN (";
        sql += utcList(times.records, times.records.size() + 1);
        sql += feedRules(GetParam()).duplicateTail;
        const Marks plain = plainMarks(times.records, rows(sql), feedRules(GetParam()));
        EXPECT_EQ(marksOf(times.records, GetParam()), plain);
        EXPECT_EQ(marksByReading(times.records, GetParam()), plain);
    }
}

INSTANTIATE_TEST_SUITE_P(Readers, EveryReader,
                         ::testing::Values(FeedReader::Ingv, FeedReader::IsideCsv, FeedReader::Emsc,
                                           FeedReader::Usgs, FeedReader::UserCsv));

TEST_F(DuplicateCheckTest, StopsAtAHoleAndMarksItInPlaceOfAllTheOthers) {
    store("a", "INGV");
    store("b", "INGV");
    store("c", "INGV");
    Times times;
    for (const std::string utc : {"a", "new", "", "b", "", "c", "a"})
        times.add(utc);
    const Marks expected = {true, false, true, false, false, false, false};
    EXPECT_EQ(marksOf(times.records, FeedReader::UserCsv), expected);
    EXPECT_EQ(marksByReading(times.records, FeedReader::UserCsv), expected);
}

TEST_F(DuplicateCheckTest, LeavesAHoleUnmarkedWhenEveryStoredTimeWasFoundBeforeIt) {
    store("a", "INGV");
    Times times;
    for (const std::string utc : {"a", "", "a"})
        times.add(utc);
    EXPECT_EQ(marksOf(times.records, FeedReader::UserCsv), (Marks{true, false, false}));
}

TEST_F(DuplicateCheckTest, MarksAHoleThatIsStoredAlready) {
    store("", "");
    Times times;
    for (const std::string utc : {"a", "", ""})
        times.add(utc);
    EXPECT_EQ(marksOf(times.records, FeedReader::UserCsv), (Marks{false, true, false}));
    EXPECT_EQ(marksByReading(times.records, FeedReader::UserCsv), (Marks{false, true, false}));
}

TEST_F(DuplicateCheckTest, MarksNothingForAnEmptyCatalogue) {
    Times times;
    times.add("a");
    times.add("");
    EXPECT_EQ(marksByReading(times.records, FeedReader::UserCsv), (Marks{false, false}));
}

TEST_F(DuplicateCheckTest, AsksForManyTimesThatLookLikeNumbers) {
    constexpr std::size_t count = DuplicateCheck::usualList * 5 / 2;
    ASSERT_EQ(database.slsExe("insert into Events(UTC, Source) values (3, 'INGV')"), 0);
    ASSERT_EQ(database.slsExe("insert into Events(UTC, Source) values (49999, 'INGV')"), 0);
    Times times;
    for (std::size_t i = 0; i < count; ++i)
        times.add(std::to_string(i));
    const Marks marks = marksOf(times.records, FeedReader::UserCsv);
    EXPECT_EQ(std::count(marks.begin(), marks.end(), true), 2);
    EXPECT_TRUE(marks[3] && marks[49999]);
}

TEST_F(DuplicateCheckTest, ReadsThroughForMoreTimesThanAListHolds) {
    store("known 20000", "INGV");
    Times times;
    for (std::size_t i = 0; i <= DuplicateCheck::usualList; ++i)
        times.add("known " + std::to_string(i));
    EXPECT_EQ(marksOf(times.records, FeedReader::Ingv),
              marksByReading(times.records, FeedReader::Ingv));
    EXPECT_TRUE(marksOf(times.records, FeedReader::Ingv).back());
}

TEST_F(DuplicateCheckTest, FailsInAShortAndInALongFileWhenTheCatalogueCannotBeRead) {
    Times times;
    times.add("a");
    ASSERT_EQ(database.slsExe("drop table Events"), 0);
    for (const std::size_t longestList : {0, 1}) {
        DuplicateCheck check(feedRules(FeedReader::UserCsv), longestList);
        EXPECT_FALSE(check.ask(passOver(times.records), 1, database));
    }
    EXPECT_EQ(database.slGetError(), "1 no such table: Events");
}

} // namespace
} // namespace tremor
