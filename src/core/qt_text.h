#pragma once

#include "core/number_locale.h"

#include <QtCore/QLocale>
#include <QtCore/QString>

#include <cstdint>
#include <string>
#include <string_view>

// The edge between the windows, which speak QString, and the logic, which holds bytes.
namespace tremor {

// Bytes to what a window shows: well-formed UTF-8 as such, anything else as Windows-1252. Zero
// bytes stay. Nothing fails.
QString fromBytes(std::string_view bytes);

// What a window holds to UTF-8 bytes; half of a surrogate pair becomes U+FFFD.
std::string toBytes(const QString& text);

// Texts for widgets that break lines at LF alone: CR LF and a lone CR become LF.
QString fromBytesWithLines(std::string_view bytes);

// How a locale writes numbers and its short dates. Marks that NumberLocale cannot hold (the
// Arabic decimal mark, a date separator outside ASCII) become "." and "/"; a group mark equal to
// the decimal mark becomes the empty text.
NumberLocale numberLocale(const QLocale& locale = QLocale());

// One pixel is 1440 / `logicalDpi` twips. Rounded to the nearest, halves away from zero; held to
// the 32-bit range. A resolution below 1 counts as 96.
int twipsToPixels(std::int32_t twips, int logicalDpi);
std::int32_t pixelsToTwips(int pixels, int logicalDpi);

} // namespace tremor
