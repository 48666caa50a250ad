#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Text encodings. The logic holds bytes as they came; these routines translate at the edges.
namespace tremor {

inline constexpr std::int32_t codePageUtf8 = 65001;
inline constexpr std::int32_t codePageWindows1252 = 1252;
inline constexpr std::int32_t codePageDefault = -1; // the program's own: UTF-8

// Bytes to UTF-16 in the given code page; `length` receives the number of code units. Each
// malformed byte becomes U+FFFD. Of an unknown code page the result is empty, in both directions.
std::u16string AnsiToWide(std::string_view text, std::int32_t codePage, std::int32_t& length);

// UTF-16 to bytes in the given code page; `length` receives the number of bytes. What the code
// page cannot write becomes "?"; a lone surrogate becomes U+FFFD in UTF-8.
std::string WideToAnsi(std::u16string_view text, std::int32_t codePage, std::int32_t& length);

// Text of the windows to the bytes of the database and back. Encoding gives UTF-8; decoding takes
// valid UTF-8 as such and anything else as Windows-1252, so that no byte is ever lost to view.
std::string EncodeUTF8(std::u16string_view text);
std::u16string DecodeUTF8(std::string_view bytes);

// Replaces each two-byte UTF-8 form (lead 110xxxxx with exactly one continuation byte behind it)
// by the Windows-1252 byte of the character it encodes: "Forl\xC3\xAC" becomes "Forl\xEC". All
// other bytes stay: forms of three and four bytes, overlong ones, characters that the page has not.
std::string Utf8ToText(std::string_view text);

// True for well-formed UTF-8 (no overlong forms, no surrogates, nothing above U+10FFFF).
bool isValidUtf8(std::string_view text);

} // namespace tremor
