#include "core/conversions.h"
#include "support/error_of.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace tremor {
namespace {

using testing::errorOf;

const NumberLocale point = NumberLocale::point();
const NumberLocale comma = NumberLocale::comma();

struct TextCase {
    std::string text;
    double value;
};

TEST(TextToDouble, ReadsNumbersUnderAPointLocale) {
    const std::vector<TextCase> cases = {
        {"0", 0},
        {"42.7", 42.7},
        {"  -3.25  ", -3.25},
        {"+7", 7},
        {".5", 0.5},
        {"-.5", -0.5},
        {"5.", 5},
        {"007", 7},
        {"42,5", 425},
        {"1,234,567.5", 1234567.5},
        {",5", 5},
        {"5,", 5},
        {"1,,2", 12},
        {"1e3", 1000},
        {"1.5E+2", 150},
        {"1D-2", 0.01},
        {"2d2", 200},
        {"123456789012345678", 123456789012345678.0},
        {"1E-400", 0},
        {"0E99999999999999999999", 0},
        {"1.7976931348623157E+308", std::numeric_limits<double>::max()},
        {"4.9E-324", std::numeric_limits<double>::denorm_min()},
        {"&HFF", 255},
        {"&hff", 255},
        {"&O17", 15},
        {" &o17 ", 15},
        {"&HFFFFFFFF", 4294967295.0},
    };
    for (const TextCase& c : cases) {
        EXPECT_EQ(textToDouble(c.text, point), c.value) << c.text;
        EXPECT_TRUE(isNumericText(c.text, point)) << c.text;
    }
}

TEST(TextToDouble, ReadsNumbersUnderACommaLocale) {
    const std::vector<TextCase> cases = {
        {"42,7", 42.7}, {"42.7", 427}, {"1.234.567,5", 1234567.5}, {"-0,5", -0.5}, {"1.5E2", 1500},
        {"1,5E2", 150}, {",25", 0.25}, {"8,99E-02", 0.0899},       {"&HFF", 255},
    };
    for (const TextCase& c : cases) {
        EXPECT_EQ(textToDouble(c.text, comma), c.value) << c.text;
        EXPECT_TRUE(isNumericText(c.text, comma)) << c.text;
    }
}

TEST(TextToDouble, DropsAGroupMarkOfSeveralBytes) {
    NumberLocale locale = comma;
    locale.groupMark = "\xE2\x80\xAF"; // narrow no-break space
    EXPECT_EQ(textToDouble("1\xE2\x80\xAF"
                           "234,5",
                           locale),
              1234.5);
    EXPECT_EQ(errorOf([&] {
                  textToDouble("1\xE2\x80"
                               "234",
                               locale);
              }),
              ErrorNumber::TypeMismatch);
}

TEST(TextToDouble, KnowsALocaleWithoutAGroupMark) {
    NumberLocale locale = point;
    locale.groupMark.clear();
    EXPECT_EQ(textToDouble("1234.5", locale), 1234.5);
    EXPECT_EQ(errorOf([&] { textToDouble("1,234", locale); }), ErrorNumber::TypeMismatch);
}

TEST(TextToDouble, RefusesWhatIsNoNumberUnderEitherLocale) {
    const std::vector<std::string> texts = {
        "",          " ",
        "abc",       "1a",
        "a1",        "--1",
        "+-1",       "- 1",
        "1-",        "1 2",
        ".",         ",",
        "-",         "+",
        "E5",        "1E",
        "1E+",       "1E5.5",
        "1F5",       "0x10",
        "inf",       "nan",
        "-inf",      "&",
        "&H",        "&HG",
        "&O8",       "&HFG",
        "-&H1",      "&H-1",
        "&X1",       "&H 1",
        "1\r",       "1\t",
        "\n1",       "1\xA0",
        "1.2.3,4,5", std::string("1\0", 2),
        "\xC2\xB2",
    };
    for (const std::string& text : texts)
        for (const NumberLocale& locale : {point, comma}) {
            EXPECT_EQ(errorOf([&] { textToDouble(text, locale); }), ErrorNumber::TypeMismatch)
                << text;
            EXPECT_FALSE(isNumericText(text, locale)) << text;
        }
}

TEST(TextToDouble, TakesNoGroupMarkBehindTheDecimalMark) {
    EXPECT_FALSE(isNumericText("1.2,3", point));
    EXPECT_FALSE(isNumericText("1,2.3", comma));
    EXPECT_FALSE(isNumericText("1.2.3", point));
    EXPECT_FALSE(isNumericText("1E1,0", point));
}

TEST(TextToDouble, OverflowsBeyondTheRangeOfADouble) {
    for (const std::string& text :
         {std::string("1E309"), std::string("-1E309"), std::string("1E99999999999999999999"),
          "1" + std::string(400, '0'), "0.1E400" + std::string(),
          std::string("&HFFFFFFFFFFFFFFFFF")}) {
        EXPECT_EQ(errorOf([&] { textToDouble(text, point); }), ErrorNumber::Overflow) << text;
        EXPECT_FALSE(isNumericText(text, point)) << text;
    }
}

TEST(TextToDouble, GivesZeroForWhatIsTooSmallForADouble) {
    for (const std::string& text : {std::string("1E-330"), std::string("-1E-99999999999999999999"),
                                    "0." + std::string(400, '0') + "1", std::string("123E-400")})
        EXPECT_EQ(textToDouble(text, point), 0) << text;
}

TEST(TextToDouble, IgnoresTheLocaleOfTheProcess) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    bool found = false;
    for (const char* name : {"it_IT.UTF-8", "de_DE.UTF-8", "fr_FR.UTF-8"})
        found = found || std::setlocale(LC_ALL, name) != nullptr;
    if (!found)
        GTEST_SKIP() << "no locale with a decimal comma is installed";
    EXPECT_EQ(textToDouble("1.5", point), 1.5);
    EXPECT_EQ(textToDouble("1,5", comma), 1.5);
    EXPECT_EQ(leadingNumber("1.5"), 1.5);
    EXPECT_EQ(doubleToText(1.5, point), "1.5");
    EXPECT_EQ(doubleToText(1.5, comma), "1,5");
    std::setlocale(LC_ALL, before.c_str());
}

TEST(CoordinateToDouble, ReadsEitherDecimalMark) {
    EXPECT_EQ(coordinateToDouble("42.7"), 42.7);
    EXPECT_EQ(coordinateToDouble("42,7"), 42.7);
    EXPECT_EQ(coordinateToDouble(" -13,23 "), -13.23);
    EXPECT_EQ(coordinateToDouble("8,99321605918731E-02"), 0.0899321605918731);
    EXPECT_EQ(coordinateToDouble("180"), 180);
}

TEST(CoordinateToDouble, KnowsNoGroupMark) {
    for (const char* text : {"1.234,5", "1,234.5", "1,234,567", "", "north"})
        EXPECT_EQ(errorOf([&] { coordinateToDouble(text); }), ErrorNumber::TypeMismatch) << text;
}

TEST(CoordinateOrZero, IsZeroForWhatIsNoNumber) {
    EXPECT_EQ(coordinateOrZero("13,23"), 13.23);
    for (const char* text : {"1.234,5", "", "north", "1E999"})
        EXPECT_EQ(coordinateOrZero(text), 0) << text;
}

TEST(TextToLong, RoundsHalvesToTheEvenNeighbour) {
    const std::vector<TextCase> cases = {{"0.5", 0},   {"1.5", 2},  {"2.5", 2},   {"-0.5", 0},
                                         {"-1.5", -2}, {"2.51", 3}, {"-2.5", -2}, {"1E3", 1000}};
    for (const TextCase& c : cases) {
        EXPECT_EQ(textToLong(c.text, point), c.value) << c.text;
        EXPECT_EQ(textToInteger(c.text, point), c.value) << c.text;
    }
    EXPECT_EQ(textToLong("2,5", comma), 2);
}

TEST(TextToLong, HoldsThe32BitRange) {
    EXPECT_EQ(textToLong("2147483647.4", point), 2147483647);
    EXPECT_EQ(textToLong("-2147483648.5", point), std::numeric_limits<std::int32_t>::min());
    for (const char* text : {"2147483647.5", "2147483648", "-2147483649", "1E300"})
        EXPECT_EQ(errorOf([&] { textToLong(text, point); }), ErrorNumber::Overflow) << text;
    EXPECT_EQ(errorOf([] { textToLong("x", point); }), ErrorNumber::TypeMismatch);
}

TEST(TextToInteger, HoldsThe16BitRange) {
    EXPECT_EQ(textToInteger("32767", point), 32767);
    EXPECT_EQ(textToInteger("-32768", point), -32768);
    for (const char* text : {"32767.5", "40000", "-32769"})
        EXPECT_EQ(errorOf([&] { textToInteger(text, point); }), ErrorNumber::Overflow) << text;
    EXPECT_EQ(errorOf([] { textToInteger("", point); }), ErrorNumber::TypeMismatch);
}

TEST(TextToSingle, GivesTheNearest32BitFloat) {
    EXPECT_EQ(textToSingle("4.3", point), 4.3f);
    EXPECT_EQ(textToSingle("4,3", comma), 4.3f);
    EXPECT_EQ(textToSingle("-1E-50", point), 0.0f);
    for (const char* text : {"1E39", "-1E39"})
        EXPECT_EQ(errorOf([&] { textToSingle(text, point); }), ErrorNumber::Overflow) << text;
    EXPECT_EQ(errorOf([] { textToSingle("4.3x", point); }), ErrorNumber::TypeMismatch);
}

TEST(LeadingNumber, ReadsTheNumberAtTheHead) {
    const std::vector<TextCase> cases = {
        {"12", 12},
        {"12 km", 12},
        {"-3.5abc", -3.5},
        {"  4 2 . 5 x", 42.5},
        {"\t1\n2", 12},
        {"1e3x", 1000},
        {"1.5D2", 150},
        {"2E", 2},
        {"2E+", 2},
        {"2Ex", 2},
        {".5", 0.5},
        {"5.", 5},
        {"+6", 6},
        {"1.2.3", 1.2},
        {"1,5", 1},
        {"1\r2", 1},
        {"M 4", 0},
        {"", 0},
        {"-", 0},
        {".", 0},
        {"abc", 0},
        {"--1", 0},
        {"inf", 0},
        {"nan", 0},
        {"1E-999", 0},
        {"e5", 0},
        {std::string("3\0"
                     "4",
                     3),
         3},
    };
    for (const TextCase& c : cases)
        EXPECT_EQ(leadingNumber(c.text), c.value) << c.text;
}

TEST(LeadingNumber, GivesTheLargestDoubleForANumberBeyondIt) {
    EXPECT_EQ(leadingNumber("1E999"), std::numeric_limits<double>::max());
    EXPECT_EQ(leadingNumber("-1E999 km"), std::numeric_limits<double>::lowest());
}

struct NumberCase {
    double value;
    std::string text;
};

TEST(DoubleToText, WritesTheShortestTextOfFifteenDigits) {
    const std::vector<NumberCase> cases = {
        {0, "0"},
        {-0.0, "0"},
        {1, "1"},
        {-1, "-1"},
        {0.1, "0.1"},
        {-0.25, "-0.25"},
        {4.3, "4.3"},
        {0.1 + 0.2, "0.3"},
        {1.0 / 3, "0.333333333333333"},
        {2.0 / 3, "0.666666666666667"},
        {100, "100"},
        {1200, "1200"},
        {3.14159265358979312, "3.14159265358979"},
        {1.5707963267949, "1.5707963267949"},
        {43.017138262408, "43.017138262408"},
        {123456789012345, "123456789012345"},
        {-123456789012345, "-123456789012345"},
        {999999999999999, "999999999999999"},
        {1e15, "1E+15"},
        {999999999999999.9, "1E+15"},
        {1.5e15, "1.5E+15"},
        {1234567890123456, "1.23456789012346E+15"},
        {-1e100, "-1E+100"},
        {1.7976931348623157e308, "1.79769313486232E+308"},
        {0.0899320363724538, "8.99320363724538E-02"},
        {0.0899320363724500, "0.08993203637245"},
        {0.5e-14, "0.000000000000005"},
        {1e-15, "0.000000000000001"},
        {1.5e-15, "1.5E-15"},
        {1e-16, "1E-16"},
        {-2.5e-300, "-2.5E-300"},
    };
    for (const NumberCase& c : cases) {
        EXPECT_EQ(doubleToText(c.value, point), c.text);
        std::string withComma = c.text;
        if (const std::size_t mark = withComma.find('.'); mark != std::string::npos)
            withComma[mark] = ',';
        EXPECT_EQ(doubleToText(c.value, comma), withComma);
    }
}

TEST(DoubleToText, IsReadBackToFifteenDigits) {
    for (const NumberLocale& locale : {point, comma})
        for (int power = -40; power <= 40; ++power) {
            const double value = 1.23456789 * std::pow(3.7, power);
            EXPECT_NEAR(textToDouble(doubleToText(value, locale), locale) / value, 1, 1e-14);
        }
}

TEST(DoubleToText, NamesWhatIsNoFiniteNumber) {
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(doubleToText(infinity, point), "inf");
    EXPECT_EQ(doubleToText(-infinity, point), "-inf");
    EXPECT_EQ(doubleToText(std::nan(""), comma), "nan");
}

TEST(SingleToText, WritesTheShortestTextOfSevenDigits) {
    EXPECT_EQ(singleToText(4.3f, point), "4.3");
    EXPECT_EQ(singleToText(4.3f, comma), "4,3");
    EXPECT_EQ(singleToText(-0.0f, point), "0");
    EXPECT_EQ(singleToText(0.1f, point), "0.1");
    EXPECT_EQ(singleToText(1.0f / 3, point), "0.3333333");
    EXPECT_EQ(singleToText(9999999.0f, point), "9999999");
    EXPECT_EQ(singleToText(1e7f, point), "1E+07");
    EXPECT_EQ(singleToText(12345678.0f, comma), "1,234568E+07");
    EXPECT_EQ(singleToText(0.01234567f, point), "1.234567E-02");
    EXPECT_EQ(singleToText(0.012345f, point), "0.012345");
}

TEST(RoundHalfEven, RoundsHalvesToTheEvenNeighbour) {
    EXPECT_EQ(roundHalfEven(0.5), 0);
    EXPECT_EQ(roundHalfEven(1.5), 2);
    EXPECT_EQ(roundHalfEven(2.5), 2);
    EXPECT_EQ(roundHalfEven(-2.5), -2);
    EXPECT_EQ(roundHalfEven(2.500001), 3);
    EXPECT_EQ(roundHalfEven(0.125, 2), 0.12);
    EXPECT_EQ(roundHalfEven(0.375, 2), 0.38);
    EXPECT_EQ(roundHalfEven(3.2749, 2), 3.27);
    EXPECT_EQ(roundHalfEven(9.8, 2), 9.8);
    EXPECT_EQ(roundHalfEven(-4.25, 1), -4.2);
}

TEST(RoundHalfEven, LeavesAValueWithoutRoomForDecimals) {
    EXPECT_EQ(roundHalfEven(1e300, 15), 1e300);
    EXPECT_EQ(roundHalfEven(1.5, 400), 1.5);
    EXPECT_TRUE(std::isnan(roundHalfEven(std::nan(""), 2)));
}

TEST(DoubleToLong, OverflowsForWhatDoesNotFit) {
    EXPECT_EQ(doubleToLong(2147483647.0), 2147483647);
    EXPECT_EQ(doubleToLong(-0.5), 0);
    EXPECT_EQ(doubleToInteger(32766.5), 32766);
    for (const double value :
         {2147483648.0, -2147483649.0, std::nan(""), std::numeric_limits<double>::infinity()}) {
        EXPECT_EQ(errorOf([&] { doubleToLong(value); }), ErrorNumber::Overflow) << value;
        EXPECT_EQ(errorOf([&] { doubleToInteger(value); }), ErrorNumber::Overflow) << value;
    }
    EXPECT_EQ(errorOf([] { doubleToInteger(32768); }), ErrorNumber::Overflow);
}

} // namespace
} // namespace tremor
