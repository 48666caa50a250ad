#include "core/database_name.h"

#include <gtest/gtest.h>

#include <string_view>

namespace tremor {
namespace {

TEST(CheckNameDB, PassesAnOrdinaryName) {
    EXPECT_EQ(checkNameDB("catalogue_2024-A"), 0);
}

TEST(CheckNameDB, PassesTheLetterP) {
    EXPECT_EQ(checkNameDB("p"), 0);
    EXPECT_EQ(checkNameDB("P"), 0);
    EXPECT_EQ(checkNameDB("happy"), 0);
}

TEST(CheckNameDB, TellsACancelledQuestionFromAnEmptyName) {
    EXPECT_EQ(checkNameDB(std::nullopt), 2);
    EXPECT_EQ(checkNameDB(""), 1);
}

TEST(CheckNameDB, RefusesABlank) {
    EXPECT_EQ(checkNameDB("my catalogue"), 1);
    EXPECT_EQ(checkNameDB(" "), 1);
    EXPECT_EQ(checkNameDB("catalogue "), 1);
}

TEST(CheckNameDB, RefusesEachListedCharacterWhereverItStands) {
    for (const std::string_view c :
         {",", ";", ":", ".", "@", "#", "°", "§",  "]", "+",  "*", "[", "^", "'", "=",
          ")", "(", "/", "&", "%", "$", "£", "\"", "!", "\\", "€", "<", ">", " "}) {
        const std::string text(c);
        EXPECT_EQ(checkNameDB(text), 1) << c;
        EXPECT_EQ(checkNameDB(text + "a"), 1) << c;
        EXPECT_EQ(checkNameDB("a" + text), 1) << c;
        EXPECT_EQ(checkNameDB("a" + text + "b"), 1) << c;
    }
}

TEST(CheckNameDB, PassesCharactersThatOnlyShareBytesWithARefusedOne) {
    // Their UTF-8 forms hold the bytes C2, A7, B0, A3 or 82, AC of the refused characters.
    for (const char* name : {"ç", "ð", "ã", "µ", "Forlì", "â", "地震", "“", "ㄬ", "ア"})
        EXPECT_EQ(checkNameDB(name), 0) << name;
}

TEST(CheckNameDB, PassesWhatIsNotListed) {
    EXPECT_EQ(checkNameDB("a-b_c{d}e|f~g?h`i"), 0);
}

TEST(CheckNameDB, BearsBytesThatAreNoText) {
    EXPECT_EQ(checkNameDB("\xC2"), 0);
    EXPECT_EQ(checkNameDB("\xFF\xFE."), 1);
}

} // namespace
} // namespace tremor
