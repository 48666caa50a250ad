#include "map/class_id.h"

#include <gtest/gtest.h>

#include <string_view>

namespace tremor {
namespace {

constexpr std::string_view jpegFormat = "{B96B3CAE-0728-11D3-9D7B-0000F81EF32E}";
constexpr ClassId jpegId{
    0xB96B3CAE, 0x0728, 0x11D3, {0x9D, 0x7B, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};

TEST(ClassId, HasATextInBracesThatIsReadBack) {
    EXPECT_EQ(CLSIDToString(jpegId), jpegFormat);
    EXPECT_EQ(StringToCLSID(jpegFormat), jpegId);
    EXPECT_EQ(CLSIDToString({}), "{00000000-0000-0000-0000-000000000000}");
    EXPECT_EQ(StringToCLSID("{00000000-0000-0000-0000-000000000000}"), ClassId());
}

TEST(ClassId, IsReadInSmallLettersToo) {
    EXPECT_EQ(StringToCLSID("{b96b3cae-0728-11d3-9d7b-0000f81ef32e}"), jpegId);
}

TEST(ClassId, IsNoOtherText) {
    for (const std::string_view text :
         {"", "{}", "B96B3CAE-0728-11D3-9D7B-0000F81EF32E", "{B96B3CAE-0728-11D3-9D7B-0000F81EF32E",
          "{B96B3CAE-0728-11D3-9D7B-0000F81EF32E} ", "{B96B3CAE-0728-11D3-9D7B-0000F81EF32G}",
          "{B96B3CAE 0728-11D3-9D7B-0000F81EF32E}", "{-96B3CAE-0728-11D3-9D7B-0000F81EF32E}",
          "(B96B3CAE-0728-11D3-9D7B-0000F81EF32E)"})
        EXPECT_EQ(StringToCLSID(text), std::nullopt) << text;
}

} // namespace
} // namespace tremor
