#include "core/code_pages.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tremor {
namespace {

using namespace std::string_literals;

const std::vector<std::string> malformedTexts = {
    "\x80",             // continuation without a lead
    "\xC3",             // cut form of two bytes
    "\xE2\x82",         // cut form of three
    "\xF0\x9F\x98",     // cut form of four
    "\xC3 ",            // lead without its continuation
    "\xE2\x82 ",        // form broken off in the middle
    "\xC0\x80",         // overlong zero
    "\xC1\xA7",         // overlong letter
    "\xE0\x9F\xBF",     // overlong form of three bytes
    "\xF0\x8F\xBF\xBF", // overlong form of four bytes
    "\xED\xA0\x80",     // high surrogate
    "\xED\xBF\xBF",     // low surrogate
    "\xF4\x90\x80\x80", // above U+10FFFF
    "\xF5\x80\x80\x80", // lead that no form has
    "\xFE",
    "\xFF",
};

TEST(IsValidUtf8, AcceptsWellFormedText) {
    for (const std::string& text :
         {""s, "abc"s, "Forl\xC3\xAC"s, "\xC2\x80"s, "\xDF\xBF"s, "\xE0\xA0\x80"s, "\xED\x9F\xBF"s,
          "\xEE\x80\x80"s, "\xEF\xBF\xBF"s, "\xF0\x90\x80\x80"s, "\xF4\x8F\xBF\xBF"s, "a\0b"s})
        EXPECT_TRUE(isValidUtf8(text)) << text;
}

TEST(IsValidUtf8, RefusesMalformedText) {
    for (const std::string& text : malformedTexts) {
        EXPECT_FALSE(isValidUtf8(text)) << ::testing::PrintToString(text);
        EXPECT_FALSE(isValidUtf8("abc" + text)) << ::testing::PrintToString(text);
    }
}

TEST(EncodeUtf8, StoresATownAsUtf8Bytes) {
    EXPECT_EQ(EncodeUTF8(u"Forl\u00EC"), "\x46\x6F\x72\x6C\xC3\xAC");
}

TEST(EncodeUtf8, WritesFormsOfEveryLength) {
    EXPECT_EQ(EncodeUTF8(u"\x7F\u0080\u07FF\u0800\uFFFF\U00010000\U0010FFFF"),
              "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF");
}

TEST(EncodeUtf8, WritesTheReplacementCharacterForALoneSurrogate) {
    const std::string replacement = "\xEF\xBF\xBD";
    const std::u16string high(1, char16_t{0xD800});
    const std::u16string low(1, char16_t{0xDC00});
    EXPECT_EQ(EncodeUTF8(high), replacement);
    EXPECT_EQ(EncodeUTF8(low), replacement);
    EXPECT_EQ(EncodeUTF8(high + u"a"), replacement + "a");
    EXPECT_EQ(EncodeUTF8(high + high + low), replacement + "\xF0\x90\x80\x80");
}

TEST(DecodeUtf8, ReadsValidUtf8) {
    EXPECT_EQ(DecodeUTF8("Forl\xC3\xAC \xE2\x82\xAC \xF0\x9F\x98\x80"),
              u"Forl\u00EC \u20AC \U0001F600");
}

TEST(DecodeUtf8, ReadsAnythingElseAsWindows1252) {
    EXPECT_EQ(DecodeUTF8("Forl\xEC \x80"), u"Forl\u00EC \u20AC");
    for (const std::string& text : malformedTexts)
        EXPECT_EQ(DecodeUTF8(text).size(), text.size());
}

TEST(DecodeUtf8, GivesBackWhatWasEncoded) {
    const std::u16string text = u"L'Aquila \u00E8 \u0416 \u4E2D \U0001F600";
    EXPECT_EQ(DecodeUTF8(EncodeUTF8(text)), text);
}

TEST(AnsiToWide, CountsCodeUnits) {
    std::int32_t length = -1;
    EXPECT_EQ(AnsiToWide("a\xF0\x9F\x98\x80", codePageUtf8, length), u"a\U0001F600");
    EXPECT_EQ(length, 3);
    EXPECT_EQ(AnsiToWide("", codePageUtf8, length), u"");
    EXPECT_EQ(length, 0);
}

TEST(AnsiToWide, TakesUtf8AsTheProgramsOwnCodePage) {
    std::int32_t length = 0;
    EXPECT_EQ(AnsiToWide("Forl\xC3\xAC", codePageDefault, length), u"Forl\u00EC");
    EXPECT_EQ(length, 5);
    EXPECT_EQ(AnsiToWide("Forl\xC3\xAC", codePageWindows1252, length), u"Forl\u00C3\u00AC");
    EXPECT_EQ(length, 6);
}

TEST(AnsiToWide, WritesTheReplacementCharacterForEachMalformedByte) {
    std::int32_t length = 0;
    EXPECT_EQ(AnsiToWide("a\xE2\x82z", codePageUtf8, length), u"a\uFFFD\uFFFDz");
    for (const std::string& text : malformedTexts)
        EXPECT_NE(AnsiToWide(text, codePageUtf8, length).find(u'\uFFFD'), std::u16string::npos)
            << ::testing::PrintToString(text);
}

TEST(WideToAnsi, CountsBytes) {
    std::int32_t length = -1;
    EXPECT_EQ(WideToAnsi(u"Forl\u00EC", codePageUtf8, length), "Forl\xC3\xAC");
    EXPECT_EQ(length, 6);
    EXPECT_EQ(WideToAnsi(u"Forl\u00EC", codePageDefault, length), "Forl\xC3\xAC");
    EXPECT_EQ(WideToAnsi(u"Forl\u00EC", codePageWindows1252, length), "Forl\xEC");
    EXPECT_EQ(length, 5);
}

TEST(WideToAnsi, WritesAQuestionMarkForWhatTheCodePageLacks) {
    std::int32_t length = 0;
    EXPECT_EQ(WideToAnsi(u"a\u0416\U0001F600\u0080\u009Fb", codePageWindows1252, length), "a????b");
    EXPECT_EQ(length, 6);
}

TEST(CodePages, GiveEveryWindows1252ByteBack) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes += static_cast<char>(byte);
    std::int32_t length = 0;
    const std::u16string wide = AnsiToWide(bytes, codePageWindows1252, length);
    ASSERT_EQ(length, 256);
    EXPECT_EQ(wide[0x80], u'\u20AC');
    EXPECT_EQ(wide[0x9F], u'\u0178');
    EXPECT_EQ(wide[0xE0], u'\u00E0');
    EXPECT_EQ(WideToAnsi(wide, codePageWindows1252, length), bytes);
}

TEST(CodePages, GiveNothingForAnUnknownPage) {
    std::int32_t length = -1;
    EXPECT_EQ(AnsiToWide("abc", 437, length), u"");
    EXPECT_EQ(length, 0);
    length = -1;
    EXPECT_EQ(WideToAnsi(u"abc", 437, length), "");
    EXPECT_EQ(length, 0);
}

TEST(Utf8ToText, JoinsFormsOfTwoBytes) {
    EXPECT_EQ(Utf8ToText("Forl\xC3\xAC"), "Forl\xEC");
    EXPECT_EQ(Utf8ToText("\xC3\xA8\xC3\xA0"), "\xE8\xE0");
    EXPECT_EQ(Utf8ToText("\xC2\xA0"), "\xA0");
    EXPECT_EQ(Utf8ToText("\xC5\xBD"
                         "elezniki"),
              "\x8E"
              "elezniki");
}

TEST(Utf8ToText, HasNoBlankBeforeTheResult) {
    EXPECT_EQ(Utf8ToText("Roma"), "Roma");
    EXPECT_EQ(Utf8ToText(""), "");
}

TEST(Utf8ToText, LeavesAllOtherFormsAsTheyStand) {
    std::vector<std::string> texts = {
        "\xE2\x80\x99",     // three bytes
        "\xF0\x9F\x98\x80", // four bytes
        "\xD0\x96",         // a letter that the page has not
        "\xC2\x80",         // a control code whose place the page uses otherwise
        "\xC3\xA8\xA8",     // one continuation too many
        "\xEC",             // a byte that is joined already
        "\xEC\xE8",
    };
    texts.insert(texts.end(), malformedTexts.begin(), malformedTexts.end());
    for (const std::string& text : texts) {
        EXPECT_EQ(Utf8ToText(text), text) << ::testing::PrintToString(text);
        EXPECT_EQ(Utf8ToText("a" + text + "b"), "a" + text + "b") << ::testing::PrintToString(text);
    }
}

TEST(Utf8ToText, MakesNoAsciiOutOfOverlongForms) {
    EXPECT_EQ(Utf8ToText("\xC0\xA7"), "\xC0\xA7"); // would be an apostrophe
}

} // namespace
} // namespace tremor
