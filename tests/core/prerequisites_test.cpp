#include "core/prerequisites.h"
#include "support/fakes.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace tremor {
namespace {

using testing::ErrorHarness;
using testing::ProcessEnded;

class FakeParts : public RuntimeParts {
  public:
    bool fileExists(std::string_view fileName) override {
        asked.emplace_back(fileName);
        if (fileFailures > 0) {
            --fileFailures;
            throw RuntimeError(ErrorNumber::DeviceIOError);
        }
        return !missing.contains(std::string(fileName));
    }
    long createDataFormat(std::string& text) override {
        ++creations;
        text = description;
        return createNumber;
    }
    long registerDataFormat() override {
        ++registrations;
        return registerResult;
    }

    std::set<std::string> missing;
    std::vector<std::string> asked;
    int fileFailures = 0;
    long createNumber = 0;
    std::string description;
    long registerResult = 0;
    int creations = 0;
    int registrations = 0;
};

struct Prerequisites : ::testing::Test {
    void expectCritical(const std::string& text) {
        harness.prompts.expectBox(text, "TREMORLEDGER", BoxIcon::Critical, BoxButtons::Ok,
                                  BoxAnswer::Ok);
    }
    bool check() { return checkPrerequisites(parts, harness.prompts, harness.errors); }

    ErrorHarness harness;
    FakeParts parts;
};

const std::vector<std::string> allFiles = {
    "msstdfmt.dll",          "SQLiteningS.dll",      "SQLitening.dll",    "SQLite3.dll",
    "SQLiteningAuxRuts.dll", "SQLiteningClient.dll", "SQLiteningZlib.dll"};

TEST_F(Prerequisites, PassWithoutABoxWhenEverythingIsThere) {
    EXPECT_TRUE(check());
    EXPECT_EQ(parts.asked, allFiles);
    EXPECT_EQ(parts.creations, 1);
    EXPECT_EQ(parts.registrations, 0);
    EXPECT_EQ(harness.errors.callStack().depth(), 0);
}

TEST_F(Prerequisites, AMissingDataFormatShowsOneBoxAndTheStorageIsNotReached) {
    parts.missing = {"msstdfmt.dll"};
    expectCritical("msstdfmt DLL not found.\r\n"
                   "TREMORLEDGER can't work without it.\r\n"
                   "Please update the TREMORHUB front-end to the version 1.3.8 or greater to "
                   "download it.");
    EXPECT_FALSE(check());
    EXPECT_EQ(parts.asked, std::vector<std::string>{"msstdfmt.dll"});
    EXPECT_EQ(parts.creations, 0);
    EXPECT_EQ(harness.errors.callStack().depth(), 0);
}

TEST_F(Prerequisites, AClassThatCannotBeCreatedIsRegisteredOnce) {
    parts.createNumber = 429;
    EXPECT_TRUE(check());
    EXPECT_EQ(parts.registrations, 1);
}

TEST_F(Prerequisites, AFailedRegistrationAsksForAnAdministrator) {
    parts.createNumber = 429;
    parts.registerResult = 5;
    expectCritical("Critical initialization error.\r\n"
                   "msstdfmt DLL registration failed.\r\n"
                   "Please try to run the program as administrator.");
    EXPECT_FALSE(check());
    EXPECT_EQ(parts.registrations, 1);
    EXPECT_EQ(parts.asked.size(), 1U);
}

TEST_F(Prerequisites, AnyOtherErrorOfTheDataFormatIsShownWithNumberAndDescription) {
    parts.createNumber = 70;
    parts.description = "Permission denied";
    expectCritical("Critical initialization error.\r\n"
                   "Number: 70\r\n"
                   "Description: Permission denied");
    EXPECT_FALSE(check());
    EXPECT_EQ(parts.registrations, 0);
}

TEST_F(Prerequisites, EachMissingStoragePartHasItsBoxAndEndsTheCheck) {
    for (std::size_t i = 1; i < allFiles.size(); ++i) {
        parts.asked.clear();
        parts.missing = {allFiles[i]};
        const std::string name = allFiles[i].substr(0, allFiles[i].size() - 4);
        expectCritical(name + " DLL not found.\r\n"
                              "STATIONKIT can't work without it.\r\n"
                              "Please update the TREMORHUB front-end to the version 1.3.8 or "
                              "greater to download it.");
        EXPECT_FALSE(check()) << name;
        EXPECT_EQ(parts.asked,
                  std::vector<std::string>(allFiles.begin(),
                                           allFiles.begin() + static_cast<std::ptrdiff_t>(i) + 1));
    }
}

TEST_F(Prerequisites, OnlyTheFirstOfSeveralMissingPartsIsReported) {
    parts.missing = {"SQLiteningZlib.dll", "SQLite3.dll"};
    expectCritical("SQLite3 DLL not found.\r\n"
                   "STATIONKIT can't work without it.\r\n"
                   "Please update the TREMORHUB front-end to the version 1.3.8 or greater to "
                   "download it.");
    EXPECT_FALSE(check());
}

TEST_F(Prerequisites, AnErrorInsideACheckGoesToTheRuntimeErrorDialog) {
    parts.fileFailures = 1;
    harness.prompts.expectRuntimeError("Number: 57\r\nDescription: Device I/O error\r\n"
                                       "Module: Module - Common\r\nRoutine: CheckMSSTDFMT\r\n",
                                       ErrorAnswer::Retry);
    EXPECT_TRUE(check());
}

TEST_F(Prerequisites, AbortInsideACheckEndsTheProcess) {
    parts.fileFailures = 1;
    harness.prompts.expectRuntimeError("Routine: CheckSqlitening\r\n", ErrorAnswer::Abort);
    EXPECT_THROW(CheckSqlitening(parts, harness.prompts, harness.errors), ProcessEnded);
}

TEST_F(Prerequisites, AnIgnoredErrorCountsAsAMissingPart) {
    parts.fileFailures = 1;
    harness.prompts.expectRuntimeError("Routine: CheckSqlitening\r\n", ErrorAnswer::Ignore);
    expectCritical("SQLiteningS DLL not found.\r\n"
                   "STATIONKIT can't work without it.\r\n"
                   "Please update the TREMORHUB front-end to the version 1.3.8 or greater to "
                   "download it.");
    EXPECT_FALSE(CheckSqlitening(parts, harness.prompts, harness.errors));
}

TEST(SystemRuntimeParts, HasEveryPartWhereSqliteAnswers) {
    SystemRuntimeParts parts;
    for (const std::string& file : allFiles)
        EXPECT_TRUE(parts.fileExists(file)) << file;
    EXPECT_FALSE(parts.fileExists("other.dll"));
    EXPECT_FALSE(parts.fileExists(""));
}

TEST(SystemRuntimeParts, HasItsOwnDataFormat) {
    SystemRuntimeParts parts;
    std::string description = "stale";
    EXPECT_EQ(parts.createDataFormat(description), 0);
    EXPECT_EQ(description, "");
    EXPECT_EQ(parts.registerDataFormat(), 0);
}

} // namespace
} // namespace tremor
