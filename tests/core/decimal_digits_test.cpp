#include "core/decimal_digits.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace tremor {
namespace {

// "-123 E-3" for {true, "123", -3}.
std::string picture(const DecimalDigits& number) {
    return (number.negative ? "-" : "") + number.digits + " E" + std::to_string(number.exponent);
}

TEST(DecimalDigits, HoldNoZerosAtEitherEnd) {
    EXPECT_EQ(picture(decimalDigits(0.00123, 15)), "123 E-3");
    EXPECT_EQ(picture(decimalDigits(-1200, 15)), "-12 E3");
    EXPECT_EQ(picture(decimalDigits(1e300, 15)), "1 E300");
    EXPECT_EQ(picture(decimalDigits(std::numeric_limits<double>::denorm_min(), 3)), "494 E-324");
}

TEST(DecimalDigits, AreRoundedToTheSignificantDigits) {
    EXPECT_EQ(picture(decimalDigits(2.0 / 3, 3)), "667 E-1");
    EXPECT_EQ(picture(decimalDigits(9.996, 3)), "1 E1");
    EXPECT_EQ(picture(decimalDigits(7, 1)), "7 E0");
    EXPECT_EQ(picture(decimalDigits(0.1, 17)), "10000000000000001 E-1");
}

TEST(DecimalDigits, OfZeroHaveNoSign) {
    EXPECT_EQ(picture(decimalDigits(-0.0, 15)), "0 E0");
    EXPECT_EQ(picture(roundedToPlaces(decimalDigits(-0.004, 15), 2)), "0 E0");
}

TEST(DecimalDigits, CountThePlacesBehindTheMark) {
    EXPECT_EQ(decimalDigits(0.00123, 15).places(), 5);
    EXPECT_EQ(decimalDigits(12.5, 15).places(), 1);
    EXPECT_EQ(decimalDigits(1200, 15).places(), 0);
    EXPECT_EQ(decimalDigits(0, 15).places(), 0);
}

TEST(RoundedToPlaces, CarriesThroughNines) {
    EXPECT_EQ(picture(roundedToPlaces(decimalDigits(9.995, 15), 2)), "1 E1");
    EXPECT_EQ(picture(roundedToPlaces(decimalDigits(1.995, 15), 2)), "2 E0");
    EXPECT_EQ(picture(roundedToPlaces(decimalDigits(0.95, 15), 1)), "1 E0");
    EXPECT_EQ(picture(roundedToPlaces(decimalDigits(-0.5, 15), 0)), "-1 E0");
}

TEST(RoundedToPlaces, LeavesANumberWithFewerPlaces) {
    EXPECT_EQ(picture(roundedToPlaces(decimalDigits(1.25, 15), 2)), "125 E0");
    EXPECT_EQ(picture(roundedToPlaces(decimalDigits(1.25, 15), 9)), "125 E0");
}

TEST(PlainText, WritesZerosWhereTheDigitsEnd) {
    EXPECT_EQ(plainText(decimalDigits(-0.00123, 15), '.'), "-0.00123");
    EXPECT_EQ(plainText(decimalDigits(1200, 15), '.'), "1200");
    EXPECT_EQ(plainText(decimalDigits(12.5, 15), ','), "12,5");
    EXPECT_EQ(plainText(decimalDigits(0, 15), '.'), "0");
}

TEST(ScientificText, WritesTwoDigitsOfTheExponentAtLeast) {
    EXPECT_EQ(scientificText(decimalDigits(-0.00123, 15), '.'), "-1.23E-03");
    EXPECT_EQ(scientificText(decimalDigits(1.5e15, 15), ','), "1,5E+15");
    EXPECT_EQ(scientificText(decimalDigits(1e300, 15), '.'), "1E+300");
    EXPECT_EQ(scientificText(decimalDigits(0, 15), '.'), "0E+00");
}

} // namespace
} // namespace tremor
