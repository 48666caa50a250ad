#include "core/qt_text.h"

#include <gtest/gtest.h>

#include <limits>

namespace tremor {
namespace {

TEST(FromBytes, TakesWellFormedUtf8AsSuch) {
    EXPECT_EQ(fromBytes("Forl\xC3\xAC \xE2\x80\x93 \xE6\x97\xA5"),
              QStringLiteral("Forl\u00EC \u2013 \u65E5"));
}

TEST(FromBytes, TakesAnythingElseAsWindows1252) {
    EXPECT_EQ(fromBytes("Forl\xEC \x80"), QStringLiteral("Forl\u00EC \u20AC"));
}

TEST(FromBytes, KeepsZeroBytesAndTheEmptyText) {
    EXPECT_EQ(fromBytes(std::string_view("a\0b", 3)),
              QString(QStringLiteral("a") + QChar(0) + u'b'));
    EXPECT_TRUE(fromBytes("").isEmpty());
    EXPECT_TRUE(fromBytes(std::string_view()).isEmpty());
}

TEST(ToBytes, GivesUtf8) {
    EXPECT_EQ(toBytes(QStringLiteral("Forl\u00EC")), "\x46\x6F\x72\x6C\xC3\xAC");
    EXPECT_EQ(toBytes(QString()), "");
}

TEST(ToBytes, GivesTheReplacementCharacterForHalfASurrogatePair) {
    EXPECT_EQ(toBytes(QString(QChar(0xD83D))), "\xEF\xBF\xBD");
}

TEST(ToBytes, UndoesFromBytesForUtf8) {
    const std::string bytes = "Sant'Agata \xE2\x82\xAC \xF0\x9F\x8C\x8B\r\n";
    EXPECT_EQ(toBytes(fromBytes(bytes)), bytes);
}

TEST(FromBytesWithLines, TurnsEveryKindOfLineBreakIntoLf) {
    EXPECT_EQ(fromBytesWithLines("a\r\nb\nc\rd\r\n"), QStringLiteral("a\nb\nc\nd\n"));
}

NumberLocale of(const char* name) {
    return numberLocale(QLocale(QLatin1String(name)));
}

TEST(NumberLocaleOfQt, ReadsTheMarksOfAPointAndOfACommaLocale) {
    EXPECT_EQ(of("en_US").decimalMark, '.');
    EXPECT_EQ(of("en_US").groupMark, ",");
    EXPECT_EQ(of("it_IT").decimalMark, ',');
    EXPECT_EQ(of("it_IT").groupMark, ".");
}

TEST(NumberLocaleOfQt, GivesTheGroupMarkInUtf8) {
    EXPECT_EQ(of("fr_FR").decimalMark, ',');
    EXPECT_EQ(of("fr_FR").groupMark, "\xE2\x80\xAF"); // narrow no-break space
}

TEST(NumberLocaleOfQt, FallsBackToThePointForAMarkOutsideAscii) {
    EXPECT_EQ(of("fa_IR").decimalMark, '.');
}

TEST(NumberLocaleOfQt, NeverLetsTheTwoMarksBeEqual) {
    for (const QLocale& locale :
         QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry)) {
        const NumberLocale numbers = numberLocale(locale);
        EXPECT_NE(numbers.groupMark, std::string(1, numbers.decimalMark))
            << locale.name().toStdString();
    }
}

TEST(NumberLocaleOfQt, ReadsTheOrderOfTheShortDate) {
    EXPECT_EQ(of("en_US").dateOrder, DateOrder::MonthDayYear);
    EXPECT_EQ(of("it_IT").dateOrder, DateOrder::DayMonthYear);
    EXPECT_EQ(of("de_DE").dateOrder, DateOrder::DayMonthYear);
    EXPECT_EQ(of("sv_SE").dateOrder, DateOrder::YearMonthDay);
    EXPECT_EQ(of("ja_JP").dateOrder, DateOrder::YearMonthDay);
}

TEST(NumberLocaleOfQt, ReadsTheSeparatorOfTheShortDate) {
    EXPECT_EQ(of("en_US").dateSeparator, '/');
    EXPECT_EQ(of("it_IT").dateSeparator, '/');
    EXPECT_EQ(of("de_DE").dateSeparator, '.');
    EXPECT_EQ(of("sv_SE").dateSeparator, '-');
}

// "d. M. yyyy": the blank behind the point is no separator.
TEST(NumberLocaleOfQt, SkipsTheBlanksAroundTheSeparator) {
    EXPECT_EQ(of("cs_CZ").dateSeparator, '.');
}

TEST(Twips, AreFifteenToAPixelAt96DotsPerInch) {
    EXPECT_EQ(twipsToPixels(14000, 96), 933);
    EXPECT_EQ(pixelsToTwips(933, 96), 13995);
    EXPECT_EQ(twipsToPixels(0, 96), 0);
}

TEST(Twips, AreRoundedToTheNearest) {
    EXPECT_EQ(twipsToPixels(7, 96), 0);
    EXPECT_EQ(twipsToPixels(8, 96), 1);
    EXPECT_EQ(pixelsToTwips(1, 110), 13);   // 13.09
    EXPECT_EQ(pixelsToTwips(10, 133), 108); // 108.27
    EXPECT_EQ(pixelsToTwips(1, 960), 2);    // 1.5
}

TEST(Twips, AreRoundedAlikeBelowZero) {
    EXPECT_EQ(twipsToPixels(-8, 96), -1);
    EXPECT_EQ(twipsToPixels(-7, 96), 0);
    EXPECT_EQ(pixelsToTwips(-1, 960), -2);
}

TEST(Twips, ComeBackUnchangedFromPixelsAtUsualResolutions) {
    for (const int dpi : {72, 96, 120, 144, 192}) {
        for (const int pixels : {-1920, 1, 640, 1366, 3840})
            EXPECT_EQ(twipsToPixels(pixelsToTwips(pixels, dpi), dpi), pixels) << dpi;
    }
}

TEST(Twips, AreHeldToTheRangeOfTheirType) {
    constexpr int most = std::numeric_limits<int>::max();
    constexpr int least = std::numeric_limits<int>::min();
    EXPECT_EQ(pixelsToTwips(most, 96), most);
    EXPECT_EQ(pixelsToTwips(least, 96), least);
    EXPECT_EQ(twipsToPixels(most, 96), 143165576);
}

TEST(Twips, CountAnImpossibleResolutionAs96) {
    EXPECT_EQ(twipsToPixels(30, 0), 2);
    EXPECT_EQ(pixelsToTwips(2, -5), 30);
}

} // namespace
} // namespace tremor
