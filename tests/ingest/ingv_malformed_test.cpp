// Documents that no healthy service would send. None of them may crash, hang, lose what is stored
// or take memory out of proportion.
#include "ingest/ingv_fixture.h"

#include <fmt/format.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace tremor {
namespace {

using testing::impossible;
using testing::ingvDocument;
using testing::ingvHeader;
using testing::ingvLine;
using testing::Texts;

#if defined(__SANITIZE_ADDRESS__)
constexpr std::size_t largeFile = 10'000'000;    // bytes
constexpr std::size_t spareMemory = 400'000'000; // the sanitizer keeps 256 MiB of freed memory
#else
constexpr std::size_t largeFile = 20'000'000; // bytes
constexpr std::size_t spareMemory = 0;
#endif

class MalformedIngvDocument : public testing::IngvFixture {
  protected:
    MalformedIngvDocument() { store("kept", "INGV"); }

    // The most memory in bytes, resident, that a process of its own has while it does `work`. The
    // catalogue is opened in that process: SQLite's handles must not cross a fork.
    template <class Work>
    std::size_t peakMemoryOf(Work&& work) {
        database.slClose();
        const pid_t child = ::fork();
        if (child == 0) {
            EXPECT_EQ(database.slsOpen(cataloguePath(), {}), 0);
            work();
            ::_exit(::testing::Test::HasFailure() ? 1 : 0);
        }
        int ending = 0;
        rusage usage = {};
        EXPECT_GT(child, 0) << std::strerror(errno);
        EXPECT_EQ(::wait4(child, &ending, 0, &usage), child);
        EXPECT_TRUE(WIFEXITED(ending)) << "ended by signal " << WTERMSIG(ending);
        EXPECT_EQ(WEXITSTATUS(ending), 0) << "something failed in the process, see above";
        EXPECT_EQ(database.slsOpen(cataloguePath(), {}), 0);
        return static_cast<std::size_t>(usage.ru_maxrss) * 1024;
    }

    void writeLarge(std::size_t bytes, const std::function<std::string(std::size_t)>& line) {
        std::ofstream file(target(), std::ios::binary);
        std::size_t written = 0;
        for (std::size_t number = 0; file && written < bytes; ++number) {
            const std::string text = line(number);
            file << text;
            written += text.size();
        }
        ASSERT_TRUE(file.flush()) << target() << " cannot be written: " << std::strerror(errno);
    }
};

TEST_F(MalformedIngvDocument, EmptyReportsAFailedConnection) {
    read("");
    EXPECT_EQ(log.messages, Texts{std::string(impossible)});
}

TEST_F(MalformedIngvDocument, CutInTheMiddleLosesOnlyTheCutLine) {
    const std::string document = ingvDocument("ingv_2026-06-15_2026-06-29.txt");
    read(std::string_view(document).substr(0, document.size() / 2));
    EXPECT_EQ(eventCount() - 1, 28);
    read(document);
    EXPECT_EQ(eventCount() - 1, 60);
}

TEST_F(MalformedIngvDocument, CutAtEveryPlaceGivesOnlyWholeEvents) {
    std::string document = ingvHeader + ingvLine("2021-01-14T05:45:26.600000", "A") +
                           ingvLine("2021-01-14T05:45:27.600000", "B");
    for (std::size_t size = 0; size <= document.size(); ++size) {
        std::string cut = document.substr(0, size);
        const auto records = parseIngvEvents(cut);
        for (const ImportRecord& record : records)
            EXPECT_TRUE(record.Magnitude == "3.3" && record.UTC.size() == 23) << size;
    }
}

TEST_F(MalformedIngvDocument, WithCarriageReturnsImportsTheSameRows) {
    read("#header\r\n1|2021-01-14T05:45:26.600000|42|13|8|A|||||2|M|P\r\n\r\n");
    EXPECT_EQ(rows("select UTC, Magnitude, Source from Events where Source = 'A'"),
              Texts{"2021-01-14 05:45:26.600|2.0|A"});
}

TEST_F(MalformedIngvDocument, WithWrongColumnCountsSkipsTheShortLines) {
    read("a|b|c\n|||||||||||\n" + ingvLine("2021-01-14T05:45:26.600000") + "||||\n\n|\n");
    EXPECT_EQ(log.messages, Texts{"1 Events imported from INGV"});
}

TEST_F(MalformedIngvDocument, WithTooManyColumnsTakesTheFirstOnes) {
    read("\n1|2021-01-14T05:45:26.600000|42|13|8|A|||||2|" + std::string(100000, '|') + "\n");
    EXPECT_EQ(rows("select UTC, Magnitude from Events where Source = 'A'"),
              Texts{"2021-01-14 05:45:26.600|2.0"});
}

TEST_F(MalformedIngvDocument, OfBarsOnlyImportsNothing) {
    read(std::string(40, '|') + "\n" + std::string(40, '|') + "\n");
    EXPECT_EQ(log.messages, Texts{"0 Events imported from INGV"});
}

TEST_F(MalformedIngvDocument, OfARandomBinaryImportsNothingThatIsStored) {
    read(testing::randomBytes());
    EXPECT_EQ(rows("select Source from Events where UTC = 'kept'"), Texts{"INGV"});
    EXPECT_FALSE(session.ImportInProgress);
}

TEST_F(MalformedIngvDocument, OfAnErrorPageImportsNothing) {
    read("<html>\n<head><title>503 Service Unavailable</title></head>\n<body>\n</body>\n</html>\n");
    EXPECT_EQ(log.messages, Texts{"0 Events imported from INGV"});
}

TEST_F(MalformedIngvDocument, WithZeroBytesLosesOnlyTheirRows) {
    const std::string zero(1, '\0');
    read(ingvLine("2021-01-14T05:45:26.600000", "A") +
         ingvLine("2021-01-14T05:45:27" + zero + ".600000", "B") +
         ingvLine("2021-01-14T05:45:28.600000", "C" + zero) +
         ingvLine("2021-01-14T05:45:29.600000", "D"));
    EXPECT_EQ(rows("select Source from Events where UTC <> 'kept' order by UTC"),
              (Texts{"A", "D"}));
    EXPECT_EQ(log.messages.size(), 2U);
    EXPECT_EQ(log.messages[0], "4 Events imported from INGV");
    EXPECT_TRUE(log.messages[1].starts_with("2 of these events could not be stored"));
}

TEST_F(MalformedIngvDocument, WithAnApostropheInTheAuthorLosesThatRowAndSaysSo) {
    read(ingvLine("2021-01-14T05:45:26.600000", "L'Aquila") +
         ingvLine("2021-01-14T05:45:27.600000", "B"));
    EXPECT_EQ(rows("select Source from Events where UTC <> 'kept'"), Texts{"B"});
    EXPECT_EQ(log.messages.at(0), "2 Events imported from INGV");
    EXPECT_TRUE(log.messages.at(1).starts_with("1 of these events could not be stored"));
}

TEST_F(MalformedIngvDocument, WithBytesThatAreNoUtf8StoresThemAsTheyCame) {
    read(ingvHeader + ingvLine("2021-01-14T05:45:26.600000", "Forl\xEC"));
    EXPECT_EQ(rows("select hex(Source) from Events where UTC <> 'kept'"), Texts{"466F726CEC"});
}

TEST_F(MalformedIngvDocument, WithALineOf10MegabytesImportsItsNeighbours) {
    read(ingvLine("2021-01-14T05:45:26.600000", "A") + std::string(10'000'000, 'x') + "\n" +
         ingvLine("2021-01-14T05:45:27.600000", std::string(10'000'000, 'y')) +
         ingvLine("2021-01-14T05:45:28.600000", "C"));
    EXPECT_EQ(rows("select length(Source) from Events where UTC <> 'kept' order by UTC"),
              (Texts{"1", "10000000", "1"}));
}

TEST_F(MalformedIngvDocument, OfLineFeedsOnlyTakesLittleMoreThanItsSize) {
    ASSERT_NO_FATAL_FAILURE(
        writeLarge(largeFile, [](std::size_t) { return std::string(1'000'000, '\n'); }));
    const std::size_t idle = peakMemoryOf([] {});
    const std::size_t peak = peakMemoryOf([&] {
        source.readCsvIngv();
        EXPECT_EQ(log.messages, Texts{"0 Events imported from INGV"});
    });
    EXPECT_LT(peak, idle + 2 * largeFile + spareMemory);
}

TEST_F(MalformedIngvDocument, OfManyEventsIsImportedWithBoundedMemory) {
    std::size_t lines = 0;
    ASSERT_NO_FATAL_FAILURE(writeLarge(largeFile, [&lines](std::size_t number) {
        ++lines;
        return ingvLine(fmt::format("{:04}-{:02}-{:02}T05:45:26.{:06}", number / 10000 % 10000,
                                    number % 12 + 1, number % 28 + 1, number % 1000 * 1000 + 123));
    }));
    const std::size_t idle = peakMemoryOf([] {});
    const std::size_t peak = peakMemoryOf([&] {
        source.readCsvIngv();
        EXPECT_EQ(log.messages, Texts{fmt::format("{} Events imported from INGV", lines)});
    });
    EXPECT_EQ(static_cast<std::size_t>(eventCount()), lines + 1);
    EXPECT_LT(peak, idle + 4 * largeFile + spareMemory);
}

} // namespace
} // namespace tremor
