#include "core/qt_text.h"

#include "core/code_pages.h"

#include <algorithm>
#include <limits>

namespace tremor {
namespace {

constexpr std::int64_t twipsPerInch = 1440;
constexpr int usualDpi = 96;

// The format with its quoted literals taken out: their letters are no fields.
QString withoutLiterals(const QString& format) {
    QString result;
    bool quoted = false;
    for (const QChar c : format) {
        if (c == u'\'')
            quoted = !quoted;
        else if (!quoted)
            result += c;
    }
    return result;
}

// "d.MM.yy": the order in which day, month and year come.
DateOrder orderOf(const QString& format) {
    const qsizetype day = format.indexOf(u'd');
    const qsizetype month = format.indexOf(u'M');
    const qsizetype year = format.indexOf(u'y');
    if (year < day && year < month)
        return DateOrder::YearMonthDay;
    return month < day ? DateOrder::MonthDayYear : DateOrder::DayMonthYear;
}

bool isField(QChar c) {
    return c == u'd' || c == u'M' || c == u'y';
}

// The first mark behind the first field; direction marks and blanks around it do not count.
char separatorOf(const QString& format) {
    const auto firstField = std::find_if(format.begin(), format.end(), isField);
    const auto mark = std::find_if(firstField, format.end(), [](QChar c) {
        return c.unicode() > ' ' && c.unicode() < 0x7F && !c.isLetterOrNumber();
    });
    return mark == format.end() ? '/' : mark->toLatin1();
}

int scaled(std::int64_t value, std::int64_t numerator, std::int64_t denominator) {
    const std::int64_t product = value * numerator;
    const std::int64_t half = product < 0 ? -denominator / 2 : denominator / 2;
    return static_cast<int>(std::clamp<std::int64_t>((product + half) / denominator,
                                                     std::numeric_limits<std::int32_t>::min(),
                                                     std::numeric_limits<std::int32_t>::max()));
}

std::int64_t usableDpi(int logicalDpi) {
    return logicalDpi < 1 ? usualDpi : logicalDpi;
}

} // namespace

QString fromBytes(std::string_view bytes) {
    return QString::fromStdU16String(DecodeUTF8(bytes));
}

std::string toBytes(const QString& text) {
    return EncodeUTF8(QStringView(text).utf16() == nullptr
                          ? std::u16string_view()
                          : std::u16string_view(QStringView(text).utf16(),
                                                static_cast<std::size_t>(text.size())));
}

QString fromBytesWithLines(std::string_view bytes) {
    QString text = fromBytes(bytes);
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.replace(u'\r', u'\n');
    return text;
}

NumberLocale numberLocale(const QLocale& locale) {
    NumberLocale result;
    const QString decimalMark = locale.decimalPoint();
    if (decimalMark.size() == 1 && decimalMark.front().unicode() < 0x80)
        result.decimalMark = decimalMark.front().toLatin1();
    result.groupMark = toBytes(locale.groupSeparator());
    if (result.groupMark == std::string(1, result.decimalMark))
        result.groupMark.clear();
    const QString format = withoutLiterals(locale.dateFormat(QLocale::ShortFormat));
    result.dateOrder = orderOf(format);
    result.dateSeparator = separatorOf(format);
    return result;
}

int twipsToPixels(std::int32_t twips, int logicalDpi) {
    return scaled(twips, usableDpi(logicalDpi), twipsPerInch);
}

std::int32_t pixelsToTwips(int pixels, int logicalDpi) {
    return scaled(pixels, twipsPerInch, usableDpi(logicalDpi));
}

} // namespace tremor
