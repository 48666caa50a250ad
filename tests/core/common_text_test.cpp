#include "core/common_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace tremor {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

const NumberLocale point = NumberLocale::point();
const NumberLocale comma = NumberLocale::comma();

TEST(ParseDotDouble, ReadsDotTextUnderACommaLocale) {
    EXPECT_EQ(ParseDotDouble("1.5", comma), 1.5);
}

TEST(ParseDotDouble, ReadsDotTextUnderEitherLocale) {
    for (const NumberLocale& locale : {point, comma}) {
        EXPECT_EQ(ParseDotDouble("42.7", locale), 42.7);
        EXPECT_EQ(ParseDotDouble("-13.23", locale), -13.23);
        EXPECT_EQ(ParseDotDouble(" 10 ", locale), 10);
        EXPECT_EQ(ParseDotDouble("8.99E-02", locale), 0.0899);
    }
}

TEST(ParseDotDouble, GivesZeroForWhatIsNoNumber) {
    for (const NumberLocale& locale : {point, comma})
        for (const char* text : {"abc", "", "--", "1.2.3", "1E999", "None"})
            EXPECT_EQ(ParseDotDouble(text, locale), 0) << text;
}

TEST(ParseDotDouble, TakesACommaAsTheLocaleDoes) {
    EXPECT_EQ(ParseDotDouble("1,5", point), 15);
    EXPECT_EQ(ParseDotDouble("1,5", comma), 1.5);
}

TEST(LocaleDecimalSeparator, IsTheMarkOfTheLocale) {
    EXPECT_EQ(LocaleDecimalSeparator(point), ".");
    EXPECT_EQ(LocaleDecimalSeparator(comma), ",");
}

TEST(LocaleToDot, ReplacesTheLocalesMarkOnly) {
    EXPECT_EQ(LocaleToDot("1,5 2,5", comma), "1.5 2.5");
    EXPECT_EQ(LocaleToDot("1,5", point), "1,5");
    EXPECT_EQ(LocaleToDot("1.5", point), "1.5");
    EXPECT_EQ(LocaleToDot("", comma), "");
}

TEST(CommaToDot, ReplacesEachComma) {
    EXPECT_EQ(CommaToDot("1,5,2.5"), "1.5.2.5");
    EXPECT_EQ(CommaToDot(""), "");
}

TEST(SafeToLong, GivesZeroForTheEmptyText) {
    EXPECT_EQ(SafeToLong("", point), 0);
    EXPECT_EQ(SafeToLong("", comma), 0);
}

TEST(SafeToLong, RoundsHalvesToTheEvenNeighbour) {
    EXPECT_EQ(SafeToLong("2.5", point), 2);
    EXPECT_EQ(SafeToLong("3,5", comma), 4);
    EXPECT_EQ(SafeToLong(" -7 ", point), -7);
}

TEST(SafeToLong, GivesZeroForEveryError) {
    for (const char* text : {"abc", "2147483648", "-1E300", "1E999", "12 km"})
        EXPECT_EQ(SafeToLong(text, point), 0) << text;
}

struct FormatCase {
    double value;
    std::int16_t decimals;
    bool keepZeros;
    std::string text;
};

TEST(FormatDotNumber, RoundsHalvesAwayFromZero) {
    const std::vector<FormatCase> cases = {
        {1.5, 0, false, "2"},      {2.5, 0, false, "3"},        {-2.5, 0, true, "-3"},
        {0.5, 0, false, "1"},      {0.49, 0, false, "0"},       {1.005, 2, false, "1.01"},
        {2.675, 2, false, "2.68"}, {-0.125, 2, false, "-0.13"}, {9.996, 2, false, "10"},
        {99.95, 1, true, "100.0"}, {0.05, 1, true, "0.1"},      {0.04, 1, true, "0.0"},
        {0.96, 1, true, "1.0"},    {1.04, 1, false, "1"},
    };
    for (const FormatCase& c : cases)
        EXPECT_EQ(FormatDotNumber(c.value, c.decimals, c.keepZeros), c.text);
}

TEST(FormatDotNumber, LeavesNoFinalPointForAWholeNumber) {
    EXPECT_EQ(FormatDotNumber(2, 3, false), "2");
    EXPECT_EQ(FormatDotNumber(1.5, 0, false), "2");
    EXPECT_EQ(FormatDotNumber(1.5, 0, true), "2");
    EXPECT_EQ(FormatDotNumber(0, 3, false), "0");
}

TEST(FormatDotNumber, WritesOnlyTheNeededDecimalsWithoutKeepZeros) {
    EXPECT_EQ(FormatDotNumber(1.25, 3, false), "1.25");
    EXPECT_EQ(FormatDotNumber(0.001, 3, false), "0.001");
    EXPECT_EQ(FormatDotNumber(120, 3, false), "120");
}

TEST(FormatDotNumber, WritesAllDecimalsWithKeepZeros) {
    EXPECT_EQ(FormatDotNumber(2, 3, true), "2.000");
    EXPECT_EQ(FormatDotNumber(1.25, 3, true), "1.250");
    EXPECT_EQ(FormatDotNumber(-0.5, 2, true), "-0.50");
    EXPECT_EQ(FormatDotNumber(0, 2, true), "0.00");
}

TEST(FormatDotNumber, HoldsTheDecimalsToZeroToFifteen) {
    EXPECT_EQ(FormatDotNumber(1.25, -3, true), "1");
    EXPECT_EQ(FormatDotNumber(0.1, 99, true), "0.100000000000000");
    EXPECT_EQ(FormatDotNumber(0.1, std::numeric_limits<std::int16_t>::max(), false), "0.1");
}

TEST(FormatDotNumber, WritesNoMinusBeforeZero) {
    EXPECT_EQ(FormatDotNumber(-0.0, 0, false), "0");
    EXPECT_EQ(FormatDotNumber(-0.001, 2, true), "0.00");
}

TEST(FormatDotNumber, TurnsToPowersOfTenFromOneThousandBillion) {
    EXPECT_EQ(FormatDotNumber(999999999999999.0, 2, false), "999999999999999");
    EXPECT_EQ(FormatDotNumber(1e15, 2, true), "1E+15");
    EXPECT_EQ(FormatDotNumber(1.5e15, 0, false), "1.5E+15");
    EXPECT_EQ(FormatDotNumber(-1.5e15, 0, false), "-1.5E+15");
    EXPECT_EQ(FormatDotNumber(1.25e120, 0, false), "1.25E+120");
}

TEST(FormatDotNumber, WritesVerySmallNumbersInPlainForm) {
    EXPECT_EQ(FormatDotNumber(1.6e-15, 15, false), "0.000000000000002");
    EXPECT_EQ(FormatDotNumber(1e-300, 15, false), "0");
    EXPECT_EQ(FormatDotNumber(0.0899320363724538, 15, false), "0.089932036372454");
}

TEST(FormatDotNumber, NamesWhatIsNoFiniteNumber) {
    EXPECT_EQ(FormatDotNumber(std::numeric_limits<double>::infinity(), 2, true), "inf");
    EXPECT_EQ(FormatDotNumber(std::nan(""), 2, false), "nan");
}

TEST(TrimAtZero, CutsAtTheFirstZeroCharacter) {
    EXPECT_EQ(TrimAtZero("abc\0def\0"sv), "abc");
    EXPECT_EQ(TrimAtZero("\0abc"sv), "");
    EXPECT_EQ(TrimAtZero("abc"), "abc");
    EXPECT_EQ(TrimAtZero(""), "");
}

TEST(SplitMultiSelect, GivesThePartOfThatNumber) {
    const std::string_view chosen = "/folder\0a.csv\0b.csv"sv;
    EXPECT_EQ(SplitMultiSelect(chosen, 0), "/folder");
    EXPECT_EQ(SplitMultiSelect(chosen, 1), "a.csv");
    EXPECT_EQ(SplitMultiSelect(chosen, 2), "b.csv");
}

TEST(SplitMultiSelect, GivesTheEmptyTextWhenThereIsNoSuchPart) {
    EXPECT_EQ(SplitMultiSelect("a\0b"sv, 2), "");
    EXPECT_EQ(SplitMultiSelect("a\0b"sv, -1), "");
    EXPECT_EQ(SplitMultiSelect("", 0), "");
    EXPECT_EQ(SplitMultiSelect("", std::numeric_limits<std::int32_t>::max()), "");
}

TEST(Split, KeepsEmptyParts) {
    EXPECT_EQ(split("'1'2'", '\''), (std::vector<std::string_view>{"", "1", "2", ""}));
    EXPECT_EQ(split("abc", ','), (std::vector<std::string_view>{"abc"}));
    EXPECT_EQ(split("", ','), (std::vector<std::string_view>{""}));
    EXPECT_EQ(split(",", ','), (std::vector<std::string_view>{"", ""}));
}

TEST(Split, GivesViewsIntoTheText) {
    const std::string text = "a|b";
    EXPECT_EQ(split(text, '|').back().data(), text.data() + 2);
}

TEST(Trim, CutsBlanksOnly) {
    EXPECT_EQ(trim("  a b  "), "a b");
    EXPECT_EQ(trimLeft("  a  "), "a  ");
    EXPECT_EQ(trimRight("  a  "), "  a");
    EXPECT_EQ(trim("\ta\r\n"), "\ta\r\n");
    for (const std::string_view blank : {"", " ", "   "}) {
        EXPECT_EQ(trim(blank), "");
        EXPECT_EQ(trimLeft(blank), "");
        EXPECT_EQ(trimRight(blank), "");
    }
}

TEST(ReplaceAll, ReplacesFromTheLeftAndNotInTheReplacement) {
    EXPECT_EQ(replaceAll("a.b.c", ".", ".."), "a..b..c");
    EXPECT_EQ(replaceAll("aaa", "aa", "b"), "ba");
    EXPECT_EQ(replaceAll("abc", "abc", ""), "");
    EXPECT_EQ(replaceAll("abc", "x", "y"), "abc");
    EXPECT_EQ(replaceAll("abc", "", "y"), "abc");
    EXPECT_EQ(replaceAll("", "x", "y"), "");
}

TEST(StringBuilder, GivesThePiecesInOrder) {
    StringBuilder builder;
    EXPECT_EQ(builder.GetStr(), "");
    builder.Add("one");
    builder.Add("");
    builder.Add("two\0"sv);
    EXPECT_EQ(builder.GetStr(), "onetwo\0"s);
}

TEST(StringBuilder, GrowsInStepsOfTwentyThousandCharacters) {
    StringBuilder builder;
    builder.Add("a long enough first piece of text");
    const std::size_t capacity = builder.GetStr().capacity();
    EXPECT_GE(capacity, 20000U);
    const char* const place = builder.GetStr().data();
    while (builder.GetStr().size() < 20000)
        builder.Add("x");
    EXPECT_EQ(builder.GetStr().data(), place);
}

TEST(StringBuilder, TakesAPieceOfManySteps) {
    StringBuilder builder;
    const std::string piece(123457, 'p');
    builder.Add("q");
    builder.Add(piece);
    EXPECT_EQ(builder.GetStr(), "q" + piece);
}

} // namespace
} // namespace tremor
