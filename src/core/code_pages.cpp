#include "core/code_pages.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>

namespace tremor {

namespace {

constexpr char32_t replacementCharacter = 0xFFFD;

// Windows-1252 from 0x80 to 0x9F. The five bytes without a character stand for the control codes
// of the same number, as the system that the code page comes from has it.
constexpr char32_t firstWindowsByte = 0x80;
constexpr std::array<char16_t, 32> windowsCharacters = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char32_t fromWindows1252(unsigned char byte) {
    const std::size_t index = byte - std::size_t{firstWindowsByte};
    return byte >= firstWindowsByte && index < windowsCharacters.size() ? windowsCharacters[index]
                                                                        : byte;
}

std::optional<char> toWindows1252(char32_t character) {
    const auto found = std::find(windowsCharacters.begin(), windowsCharacters.end(), character);
    if (found != windowsCharacters.end())
        return static_cast<char>(firstWindowsByte + (found - windowsCharacters.begin()));
    if (character < firstWindowsByte ||
        (character >= firstWindowsByte + windowsCharacters.size() && character <= 0xFF))
        return static_cast<char>(character);
    return std::nullopt;
}

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

struct Utf8Form {
    char32_t character = replacementCharacter;
    std::size_t length = 1;
    bool wellFormed = false;
};

// The form at the head of a text that is not empty; one malformed byte where none begins.
Utf8Form utf8Form(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text.front());
    if (lead < 0x80)
        return {lead, 1, true};
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < length)
        return {};
    char32_t character = lead & (0x7Fu >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if (!isContinuation(text[i]))
            return {};
        character = character << 6 | (static_cast<unsigned char>(text[i]) & 0x3Fu);
    }
    const bool overlong =
        (length == 3 && character < 0x800) || (length == 4 && character < 0x10000);
    const bool surrogate = character >= 0xD800 && character <= 0xDFFF;
    if (overlong || surrogate || character > 0x10FFFF)
        return {};
    return {character, length, true};
}

void appendUtf8(std::string& text, char32_t character) {
    const auto continuation = [&](int shift) {
        text += static_cast<char>(0x80 | (character >> shift & 0x3F));
    };
    if (character < 0x80) {
        text += static_cast<char>(character);
    } else if (character < 0x800) {
        text += static_cast<char>(0xC0 | character >> 6);
        continuation(0);
    } else if (character < 0x10000) {
        text += static_cast<char>(0xE0 | character >> 12);
        continuation(6);
        continuation(0);
    } else {
        text += static_cast<char>(0xF0 | character >> 18);
        continuation(12);
        continuation(6);
        continuation(0);
    }
}

void appendUtf16(std::u16string& text, char32_t character) {
    if (character >= 0x10000) {
        text += static_cast<char16_t>(0xD7C0 + (character >> 10));
        character = 0xDC00 + (character & 0x3FF);
    }
    text += static_cast<char16_t>(character);
}

// Takes the character at the head of the text off it; a lone surrogate as U+FFFD.
char32_t takeUtf16(std::u16string_view& text) {
    const char16_t unit = text.front();
    text.remove_prefix(1);
    if (unit < 0xD800 || unit > 0xDFFF)
        return unit;
    if (unit >= 0xDC00 || text.empty() || text.front() < 0xDC00 || text.front() > 0xDFFF)
        return replacementCharacter;
    const char32_t low = text.front() & 0x3FFu;
    text.remove_prefix(1);
    return 0x10000 + ((unit & 0x3FFu) << 10) + low;
}

std::u16string wideFromUtf8(std::string_view text) {
    std::u16string wide;
    while (!text.empty()) {
        const Utf8Form form = utf8Form(text);
        appendUtf16(wide, form.character);
        text.remove_prefix(form.length);
    }
    return wide;
}

std::u16string wideFromWindows1252(std::string_view text) {
    std::u16string wide;
    for (const char byte : text)
        appendUtf16(wide, fromWindows1252(static_cast<unsigned char>(byte)));
    return wide;
}

std::string utf8FromWide(std::u16string_view wide) {
    std::string text;
    while (!wide.empty())
        appendUtf8(text, takeUtf16(wide));
    return text;
}

std::string windows1252FromWide(std::u16string_view wide) {
    std::string text;
    while (!wide.empty())
        text += toWindows1252(takeUtf16(wide)).value_or('?');
    return text;
}

bool isUtf8Page(std::int32_t codePage) {
    return codePage == codePageUtf8 || codePage == codePageDefault;
}

} // namespace

std::u16string AnsiToWide(std::string_view text, std::int32_t codePage, std::int32_t& length) {
    std::u16string wide;
    if (isUtf8Page(codePage))
        wide = wideFromUtf8(text);
    else if (codePage == codePageWindows1252)
        wide = wideFromWindows1252(text);
    length = static_cast<std::int32_t>(wide.size());
    return wide;
}

std::string WideToAnsi(std::u16string_view text, std::int32_t codePage, std::int32_t& length) {
    std::string bytes;
    if (isUtf8Page(codePage))
        bytes = utf8FromWide(text);
    else if (codePage == codePageWindows1252)
        bytes = windows1252FromWide(text);
    length = static_cast<std::int32_t>(bytes.size());
    return bytes;
}

std::string EncodeUTF8(std::u16string_view text) {
    return utf8FromWide(text);
}

std::u16string DecodeUTF8(std::string_view bytes) {
    return isValidUtf8(bytes) ? wideFromUtf8(bytes) : wideFromWindows1252(bytes);
}

std::string Utf8ToText(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        std::size_t length = 1;
        if (static_cast<unsigned char>(text.front()) >= 0x80)
            while (length < text.size() && isContinuation(text[length]))
                ++length;
        const Utf8Form form = utf8Form(text);
        const std::optional<char> single = form.wellFormed && form.length == 2 && length == 2
                                               ? toWindows1252(form.character)
                                               : std::nullopt;
        if (single)
            result += *single;
        else
            result.append(text.substr(0, length));
        text.remove_prefix(length);
    }
    return result;
}

bool isValidUtf8(std::string_view text) {
    while (!text.empty()) {
        const Utf8Form form = utf8Form(text);
        if (!form.wellFormed)
            return false;
        text.remove_prefix(form.length);
    }
    return true;
}

} // namespace tremor
