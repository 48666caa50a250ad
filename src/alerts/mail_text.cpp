#include "alerts/mail_text.h"

#include "core/code_pages.h"
#include "core/common_text.h"
#include "core/error_report.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdint>

namespace tremor {

namespace {

constexpr std::size_t longestAddress = 254;   // RFC 5321, section 4.5.3.1
constexpr std::size_t longestPlainText = 200; // beyond it a field is encoded, which folds it
constexpr std::size_t bytesInEncodedWord = 39;
constexpr std::string_view fold = "\r\n ";

bool isControl(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7F;
}

bool isAscii(char c) {
    return static_cast<unsigned char>(c) < 0x80;
}

bool isContinuation(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

std::string toUtf8(std::string_view bytes) {
    return EncodeUTF8(DecodeUTF8(bytes));
}

std::string withoutControls(std::string text) {
    std::replace_if(text.begin(), text.end(), isControl, ' ');
    return text;
}

std::string base64(std::string_view bytes) {
    constexpr std::string_view digits =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::string_view group = bytes.substr(i, 3);
        std::uint32_t value = 0;
        for (std::size_t k = 0; k < 3; ++k)
            value = value << 8 | (k < group.size() ? static_cast<unsigned char>(group[k]) : 0U);
        for (std::size_t k = 0; k < 4; ++k)
            text += k > group.size() ? '=' : digits[value >> (18 - 6 * k) & 63];
    }
    return text;
}

// Words of whole characters, one on a line.
std::string encodedWords(std::string_view utf8) {
    std::string words;
    while (!utf8.empty()) {
        std::size_t length = std::min(bytesInEncodedWord, utf8.size());
        while (length < utf8.size() && isContinuation(utf8[length]))
            --length;
        words += fmt::format("{}=?UTF-8?B?{}?=", words.empty() ? "" : fold,
                             base64(utf8.substr(0, length)));
        utf8.remove_prefix(length);
    }
    return words;
}

bool mustBeEncoded(std::string_view text) {
    return text.size() > longestPlainText || !std::all_of(text.begin(), text.end(), isAscii) ||
           text.find("=?") != std::string_view::npos;
}

// A name in front of an address, as a quoted string where it holds more than words.
std::string phrase(std::string_view name) {
    if (mustBeEncoded(name))
        return encodedWords(name);
    constexpr std::string_view letters =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789 !#$%&'*+-/=?^_`{|}~";
    if (name.find_first_not_of(letters) == std::string_view::npos)
        return std::string(name);
    return '"' + replaceAll(replaceAll(name, "\\", "\\\\"), "\"", "\\\"") + '"';
}

std::string unquoted(std::string_view name) {
    if (name.size() < 2 || !name.starts_with('"') || !name.ends_with('"'))
        return std::string(name);
    name = name.substr(1, name.size() - 2);
    std::string text;
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (name[i] == '\\' && i + 1 < name.size())
            ++i;
        text += name[i];
    }
    return text;
}

void checkAddress(const std::string& address) {
    const auto refused = [](char c) { return isControl(c) || c == '<' || c == '>'; };
    if (address.empty() || address.size() > longestAddress ||
        std::any_of(address.begin(), address.end(), refused))
        throw RuntimeError(ErrorNumber::UserDefined,
                           fmt::format("\"{}\" is no e-mail address.", withoutControls(address)));
}

} // namespace

MailAddress parseMailAddress(std::string_view text) {
    const std::string decoded = toUtf8(text);
    const std::string_view whole = trim(decoded);
    MailAddress parsed;
    const std::size_t open = whole.rfind('<');
    if (whole.ends_with('>') && open != std::string_view::npos) {
        parsed.name = withoutControls(unquoted(trim(whole.substr(0, open))));
        parsed.address = trim(whole.substr(open + 1, whole.size() - open - 2));
    } else {
        parsed.address = whole;
    }
    checkAddress(parsed.address);
    return parsed;
}

std::vector<MailAddress> parseRecipients(std::string_view list) {
    std::vector<MailAddress> recipients;
    bool quoted = false;
    std::size_t start = 0;
    for (std::size_t i = 0; i <= list.size(); ++i) {
        if (i < list.size() && list[i] == '"')
            quoted = !quoted;
        if (i < list.size() && (quoted || list[i] != ','))
            continue;
        const std::string_view item = trim(list.substr(start, i - start));
        if (!item.empty())
            recipients.push_back(parseMailAddress(item));
        start = i + 1;
    }
    if (recipients.empty())
        throw RuntimeError(ErrorNumber::UserDefined, "There is no e-mail address to send to.");
    return recipients;
}

std::string headerText(std::string_view text) {
    std::string plain = withoutControls(toUtf8(text));
    return mustBeEncoded(plain) ? encodedWords(plain) : plain;
}

std::string addressField(const std::vector<MailAddress>& addresses) {
    std::string field;
    for (const MailAddress& item : addresses) {
        if (!field.empty())
            field += fmt::format(",{}", fold);
        field += item.name.empty() ? item.address
                                   : fmt::format("{} <{}>", phrase(item.name), item.address);
    }
    return field;
}

std::string mailDate(std::chrono::sys_seconds time) {
    constexpr std::array<std::string_view, 7> days = {"Sun", "Mon", "Tue", "Wed",
                                                      "Thu", "Fri", "Sat"};
    constexpr std::array<std::string_view, 12> months = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const auto day = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss clock(time - day);
    return fmt::format(
        "{}, {:02} {} {:04} {:02}:{:02}:{:02} +0000", days[std::chrono::weekday(day).c_encoding()],
        static_cast<unsigned>(date.day()), months[static_cast<unsigned>(date.month()) - 1],
        static_cast<int>(date.year()), clock.hours().count(), clock.minutes().count(),
        clock.seconds().count());
}

std::string bodyText(std::string_view text) {
    std::string body;
    for (const std::string_view line : split(text, '\n')) {
        if (line.data() != text.data())
            body += '\n';
        body += toUtf8(line);
    }
    return body;
}

} // namespace tremor
