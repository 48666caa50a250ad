#include "manage/geonames_fixture.h"
#include "manage/geonames_index.h"

#include <gtest/gtest.h>

namespace tremor {
namespace {

using testing::geonamesDocument;
using testing::indexLine;
using Names = std::vector<std::string>;

TEST(ListedFileNames, TakesTheNamesOfSixCharactersFromTheServicesListing) {
    const std::string page =
        "<!DOCTYPE HTML PUBLIC \"-//W3C//DTD HTML 3.2 Final//EN\">\n<html>\n"
        "<pre><img src=\"/icons/blank.gif\" alt=\"Icon \"> <a href=\"?C=N;O=D\">Name</a>  <hr>"
        "<img src=\"/icons/back.gif\" alt=\"[PARENTDIR]\"> <a href=\"/export/\">Parent</a>\n" +
        indexLine("AD.zip") + indexLine("allCountries.zip") + indexLine("IT.zip") +
        "<img src=\"/icons/text.gif\" alt=\"[TXT]\"> <a href=\"readme.txt\">readme.txt</a>\n" +
        "<hr></pre>\n</body></html>\n";
    EXPECT_EQ(listedFileNames(page), (Names{"AD.zip", "IT.zip"}));
}

TEST(ListedFileNames, OffersNoNameOfAnotherLength) {
    EXPECT_EQ(listedFileNames(indexLine("A.zip") + indexLine("ABC.zip") + indexLine("no.zip")),
              Names{"no.zip"});
}

TEST(ListedFileNames, ReadsTheLastLineWithoutALineFeedAndLinesWithACarriageReturn) {
    std::string page = indexLine("AD.zip");
    page.insert(page.size() - 1, "\r");
    page += indexLine("IT.zip");
    page.pop_back();
    EXPECT_EQ(listedFileNames(page), (Names{"AD.zip", "IT.zip"}));
}

TEST(ListedFileNames, FindsNothingOnAPageOfAnotherLayout) {
    EXPECT_EQ(listedFileNames(""), Names{});
    EXPECT_EQ(listedFileNames("<tr><td><img src=\"x\"></td><td><a href=\"AD.zip\">AD.zip</a></td>"),
              Names{});
    EXPECT_EQ(listedFileNames("<img src=\"x\"> <a href='AD.zip'>AD.zip</a>"), Names{});
    EXPECT_EQ(listedFileNames("<img src=\"x\"> <a href=\"AD.zip\">AD.zip"), Names{});
    EXPECT_EQ(listedFileNames("<img\n<img p\">\n<img p\"><\n"), Names{});
}

TEST(ListedFileNames, TakesNoNameThatCouldLeaveAFolderOrAStatement) {
    EXPECT_EQ(listedFileNames(indexLine("../a.p") + indexLine("a/b.zp") + indexLine("a'.zip") +
                              indexLine("..zzip") + indexLine("\xC3\xA0.zip")),
              Names{});
}

TEST(ListedFileNames, OffersEachFileOnceAndNotWithoutEnd) {
    EXPECT_EQ(listedFileNames(indexLine("AD.zip") + indexLine("AD.zip")), Names{"AD.zip"});
    std::string page;
    for (int number = 0; number < 2000; ++number)
        page += indexLine(std::to_string(1000 + number) + "p");
    EXPECT_TRUE(listedFileNames(page).empty()) << "five characters";
    page.clear();
    for (int number = 0; number < 2000; ++number)
        page += indexLine(std::to_string(1000 + number) + ".p");
    EXPECT_EQ(listedFileNames(page).size(), maximumGeoNamesFiles);
}

TEST(NameCountries, FindsTheCountriesOfTheServicesList) {
    const auto files =
        nameCountries({"IT.zip", "XX.zip", "AD.zip"}, geonamesDocument("countryInfo.txt"));
    ASSERT_EQ(files.size(), 2U);
    EXPECT_EQ(files[0].Id, "IT");
    EXPECT_EQ(files[0].Name, "Italy");
    EXPECT_EQ(files[0].FileName, "IT.zip");
    EXPECT_EQ(files[1].Name, "Andorra");
}

TEST(NameCountries, PassesOverCommentsAndShortLines) {
    const auto files = nameCountries({"IT.zip", "FR.zip", "DE.zip"}, "#IT\ta\tb\tc\tNo\n"
                                                                     "FR\ta\tb\tc\n"
                                                                     "\n"
                                                                     "DE\ta\tb\tc\tGermany");
    ASSERT_EQ(files.size(), 1U);
    EXPECT_EQ(files[0].Name, "Germany");
}

TEST(NameCountries, DropsEverythingWithoutAListOfCountries) {
    EXPECT_TRUE(nameCountries({"IT.zip"}, "").empty());
    EXPECT_TRUE(nameCountries({"IT.zip"}, std::string(1000, '\t')).empty());
}

} // namespace
} // namespace tremor
