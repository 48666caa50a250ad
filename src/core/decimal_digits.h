#pragma once

#include <string>

// The decimal picture of a binary number: what the routines that write numbers share.
namespace tremor {

// 0.00123 is {false, "123", -3}: 1.23E-03. Zero is {false, "0", 0}.
struct DecimalDigits {
    bool negative = false;
    std::string digits = "0"; // no zeros at the head or at the end, except for zero itself
    int exponent = 0;         // power of ten of the first digit

    // Places behind the decimal mark that the plain form needs.
    int places() const;
};

// The number rounded to `significant` digits (1 to 17). It must be finite.
DecimalDigits decimalDigits(double value, int significant);

// Rounded to `places` decimals (0 or more), halves away from zero.
DecimalDigits roundedToPlaces(DecimalDigits number, int places);

// "-0.00123" and "-1.23E-03", with the given decimal mark.
std::string plainText(const DecimalDigits& number, char decimalMark);
std::string scientificText(const DecimalDigits& number, char decimalMark);

} // namespace tremor
